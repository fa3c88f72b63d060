// img_pixel.h: the pixels of an image record as numbers, and the palette of a
// picture, which the GIF and PNG writers share.
//
// Layout of a pixel in IMG_report::data:
//   32 bits, byte_order 1   bytes 1, 2, 3, most significant first
//   32 bits, byte_order 0   bytes 2, 1, 0, most significant first
//   24 bits                 three bytes in byte_order
//   16 bits (depth 15, 16)  two bytes in byte_order
//   8 bits                  the byte
//   4 and 2 bits            the high bits of a byte first
//   1 bit                   the lowest bit of a byte first
#pragma once

#include "zyrimg.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

// Pixels that fill a line, padding included; at least `width` on a sound image.
int IMG_line_pixels(const IMG_report& image);
// Whether the record holds a picture that can be written in another format; if
// not, a warning in the name of `caller`.
bool IMG_is_sound(const IMG_report& image, const char* caller);
// The first `count` pixels of a row as numbers; those beyond the line are 0.
void IMG_row_values(const IMG_report& image, int row, int count, std::uint32_t* values);

// Whether each component of a pixel has a place of its own in the colour table
// (direct colour): the table is no longer than a mask counts.
bool IMG_is_direct(const IMG_report& image);

// Colour components of a pixel value, 0 to 255.
struct IMG_rgb {
    std::uint8_t red, grn, blu;
};

// What turns the pixel values of an image into colours.
class IMG_coloring {
public:
    explicit IMG_coloring(const IMG_report& image);
    IMG_rgb operator()(std::uint32_t value) const;

private:
    struct Mask {
        std::uint32_t mask = 0;
        int shift = 0; // of its lowest bit
        int bits = 0;
    };
    static Mask split(std::uint32_t mask);
    static std::uint8_t component(std::uint32_t value, const Mask& mask);

    const IMG_report* image;
    Mask red, grn, blu;
};

constexpr int img_palette_size = 256;

// A picture of at most 256 colours.
struct IMG_indexed {
    std::vector<std::uint8_t> index;               // [height][width], places in `color`
    std::array<IMG_rgb, img_palette_size> color{}; // in the order of first use
    int num_color = 0;                             // of these, in use
    int trans = -1;                                // place of the background, -1 without one
};

// The palette of the pixels, row by row; padding counts as value 0. A colour
// beyond the 256th gets index 0. `background` is the pixel value of the
// background. The record has to be sound. False when memory is short.
bool IMG_make_indexed(const IMG_report& image, std::uint32_t background, IMG_indexed* out);

// The first `n` bytes of an image file; a first line that begins with "** " is
// a note of who sent it and is passed over. False if there are fewer.
bool IMG_read_head(std::FILE* file, unsigned char* out, std::size_t n);
