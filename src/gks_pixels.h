// gks_pixels.h: an image record as pixels of the open display, for the two sides of
// gks_draw.h and for what is laid over a plot.
#pragma once

#include "zyrimg.h"

#include <array>
#include <cstdint>
#include <vector>

// Whether the record holds all its pixels, in a layout that can be read.
bool gimage_is_readable(const IMG_report& image);

// Whether a pixel's value is a level, neither an index nor components.
bool gimage_is_gray(const IMG_report& image);
// The colour of a value; one beyond the table is entry 0.
IMG_color gimage_color(const IMG_report& image, std::uint32_t value);

// Displays up to this depth have a colour map.
constexpr int small_depth = 8;

// Turns the values of a record into pixels of this display.
class Gimage_pixels {
public:
    explicit Gimage_pixels(const IMG_report& image);

    // The record holds pixels of this display already.
    [[nodiscard]] bool unchanged() const { return unchanged_; }
    // The pixels of row `y`.
    void row(int y, std::vector<std::uint32_t>* out) const;

private:
    [[nodiscard]] std::uint32_t convert(std::uint32_t value) const;

    const IMG_report* image_;
    bool unchanged_;
    std::array<std::uint32_t, 256> table_{};
};
