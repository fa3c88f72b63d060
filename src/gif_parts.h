// gif_parts.h: what the writers of still and of animated GIF files share.
#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

constexpr int gif_most_side = 65535;

// Bytes of a header or table on their way to a file.
class GIF_bytes {
public:
    GIF_bytes& u8(int value) {
        bytes.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    GIF_bytes& u16(int value) { return u8(value & 0xFF).u8(value >> 8 & 0xFF); }
    void write(std::FILE* file) const { std::fwrite(bytes.data(), 1, bytes.size(), file); }

private:
    std::vector<std::uint8_t> bytes;
};

// Settings of the user.
bool GIF_is_interlaced();
bool GIF_is_transparent();
// Smallest number of bits that holds `count` indexes, at least 1.
int GIF_index_bits(int count);
// The pixels of a picture, rows of indexes below 2^bits, with the empty block.
void GIF_put_pixels(std::FILE* file, int width, int height, const std::uint8_t* index, int bits);
