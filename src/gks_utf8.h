// gks_utf8.h: characters of UTF-8, as titles hold them.
#pragma once

#include <cstddef>

// Bytes of the character that a first byte begins; 0 for one that begins none.
constexpr std::size_t utf8_length(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}
