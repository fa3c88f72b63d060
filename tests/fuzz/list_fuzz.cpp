// Lists of inputs: the input is read as one, and its names are those of another way of
// splitting it.
#include "name_list.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::string> split(std::string_view text) {
    const char mark = text.find('\0') != std::string_view::npos ? '\0' : '\n';
    std::vector<std::string> names;
    while (!text.empty()) {
        const std::size_t end = text.find(mark);
        std::string_view name = text.substr(0, end).substr(0, NameList::longest);
        if (mark == '\n' && name.ends_with('\r')) {
            name.remove_suffix(1);
        }
        if (!name.empty()) {
            names.emplace_back(name);
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t piece = 65536; // the mark is found in the first one
    if (size > piece) {
        return 0;
    }
    const std::string text(data, data + size);
    const int fd = memfd_create("list", 0);
    if (fd < 0 || write(fd, text.data(), size) != static_cast<ssize_t>(size)) {
        std::abort();
    }
    lseek(fd, 0, SEEK_SET);
    NameList list(fd);
    for (const std::string& name : split(text)) {
        if (list.next() != name) {
            std::abort();
        }
    }
    if (list.next().has_value()) {
        std::abort();
    }
    close(fd);
    return 0;
}
