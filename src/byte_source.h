// byte_source.h: the bytes of an open file one after the other, with a way back
// of a few bytes, from pipes too.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

class ByteSource {
public:
    static constexpr int end = -1;

    // From where the file is.
    void begin(std::FILE* file) {
        file_ = file;
        at_ = size_ = keep;
    }
    [[nodiscard]] bool reads(const std::FILE* file) const { return file_ == file; }
    // The next byte, 0 to 255, or `end`.
    int get() { return at_ < size_ || fill() ? block_[at_++] : end; }
    // Takes back the byte read last; at most `keep` in a row.
    void back() { --at_; }
    // As many bytes, or as there are. Returns whether all came.
    bool take(std::size_t count, std::string* bytes);
    bool skip(std::size_t count);
    // A number written as text, after white space: its letters, empty for none.
    std::string number();

private:
    static constexpr std::size_t keep = 4;
    bool fill();

    std::FILE* file_ = nullptr;
    std::size_t at_ = keep, size_ = keep;
    std::array<std::uint8_t, keep + 65536> block_{};
};
