// byte_source: the bytes of an open file. No state of its own.
#include "byte_source.h"

#include <algorithm>
#include <cctype>

bool ByteSource::fill() {
    if (file_ == nullptr) {
        return false;
    }
    // The last bytes stay in front, for the way back.
    std::copy(block_.begin() + static_cast<std::ptrdiff_t>(size_ - keep),
              block_.begin() + static_cast<std::ptrdiff_t>(size_), block_.begin());
    at_ = size_ = keep;
    size_ += std::fread(block_.data() + keep, 1, block_.size() - keep, file_);
    return size_ > keep;
}

bool ByteSource::take(std::size_t count, std::string* bytes) {
    for (bytes->clear(); bytes->size() < count;) {
        const int c = get();
        if (c == end) {
            return false;
        }
        *bytes += static_cast<char>(c);
    }
    return true;
}

bool ByteSource::skip(std::size_t count) {
    while (count > 0 && get() != end) {
        --count;
    }
    return count == 0;
}

std::string ByteSource::number() {
    constexpr std::size_t longest = 40;
    int c = get();
    while (c != end && std::isspace(c) != 0) {
        c = get();
    }
    std::string letters;
    // A sign that follows no exponent begins the next number.
    const auto goes_on = [&letters](int next) {
        const bool exponent = !letters.empty() && (letters.back() == 'e' || letters.back() == 'E');
        const bool sign = next == '+' || next == '-';
        return (sign && (letters.empty() || exponent)) || std::isdigit(next) != 0 || next == '.' ||
               next == 'e' || next == 'E';
    };
    while (c != end && letters.size() < longest && goes_on(c)) {
        letters += static_cast<char>(c);
        c = get();
    }
    if (c != end) {
        back();
    }
    return letters;
}
