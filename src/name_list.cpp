// name_list: a list of names as it comes in. Its state is the reader's own.
#include "name_list.h"

#include <cerrno>
#include <string_view>

#include <unistd.h>

std::optional<std::string> NameList::next() {
    std::string name;
    for (;;) {
        const int c = get();
        if (c < 0 || c == mark_) {
            if (mark_ == '\n' && name.ends_with('\r')) {
                name.pop_back();
            }
            if (c < 0 && name.empty()) {
                return std::nullopt;
            }
            if (!name.empty()) {
                return name;
            }
        } else if (name.size() < longest) {
            name += static_cast<char>(c);
        }
    }
}

int NameList::get() {
    if (at_ == end_ && !fill()) {
        return -1;
    }
    return static_cast<unsigned char>(buffer_[at_++]);
}

bool NameList::fill() {
    ssize_t got = 0;
    do {
        got = read(fd_, buffer_.data(), buffer_.size());
    } while (got < 0 && errno == EINTR);
    at_ = 0;
    end_ = got > 0 ? static_cast<std::size_t>(got) : 0;
    const std::string_view piece(buffer_.data(), end_);
    if (!known_ && piece.find_first_of(std::string_view("\n\0", 2)) != std::string_view::npos) {
        known_ = true;
        mark_ = piece.find('\0') != std::string_view::npos ? '\0' : '\n';
    }
    return end_ > 0;
}
