// name_list.h: a list of names as it comes in, from a file or a pipe.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

// The names of a list, one by one. A line end is after each, or, where the first piece
// with either has a zero byte, one of these.
class NameList {
public:
    // Reads a descriptor, which stays the caller's.
    explicit NameList(int fd) : fd_(fd) {}

    // The next name that is not empty; none at the end. A longer one than any file can
    // have is cut.
    std::optional<std::string> next();

    static constexpr std::size_t longest = 8192;

private:
    int get();
    bool fill();

    int fd_;
    std::array<char, 65536> buffer_{};
    std::size_t at_ = 0, end_ = 0;
    char mark_ = '\n';
    bool known_ = false; // which mark it is
};
