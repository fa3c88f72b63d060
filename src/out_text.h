// out_text.h: the text of one primitive on its way to a print file, gathered so
// that it goes out in one piece. No number depends on the locale.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

class OutText {
public:
    // Nothing is written without a file.
    explicit OutText(std::FILE* out_file) : file(out_file) {}
    ~OutText() { flush(); }
    OutText(const OutText&) = delete;
    OutText& operator=(const OutText&) = delete;

    void put(std::string_view text) {
        make_room(text.size());
        const std::size_t n = std::min(text.size(), buf.size() - used);
        if (n > 0) { // an empty text may have no address
            std::memcpy(buf.data() + used, text.data(), n);
        }
        used += n;
    }
    void number(int n) {
        make_room(number_size);
        advance(std::to_chars(place(), place() + number_size, n).ptr);
    }
    // As printf writes "%.*f".
    void number(float value, int decimals) {
        make_room(number_size);
        advance(std::to_chars(place(), place() + number_size, static_cast<double>(value),
                              std::chars_format::fixed, decimals)
                    .ptr);
    }

protected:
    // For text that is written in place: room for `n` characters, their start, and
    // the end of what was written.
    void make_room(std::size_t n) {
        if (n > buf.size() - used) {
            flush();
        }
    }
    char* place() { return buf.data() + used; }
    void advance(const char* end) { used = static_cast<std::size_t>(end - buf.data()); }

private:
    static constexpr std::size_t number_size = 64; // any float with a few decimals
    void flush() {
        if (file != nullptr) {
            fwrite_unlocked(buf.data(), 1, used, file);
        }
        used = 0;
    }

    std::FILE* file;
    std::array<char, 1024> buf; // not cleared: written before it is read
    std::size_t used = 0;
};
