// image_sample.h: pictures as a window gives them, in any layout of pixels, and
// what colours they show.
#pragma once

#include "zyrimg.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

struct ImageSample {
    int width = 64, height = 48;
    int depth = 24, bits_pixel = 32;
    int colors = 16;    // different ones; colour 0 is black, the background
    int byte_order = 0; // also of the bytes of a pixel
};

// Which colour stands where: echoes in cells about the centre, with lines over
// them.
int image_color_at(const ImageSample& sample, int x, int y);
// Pixel value of a colour, and what it looks like: 0xrrggbb, with the bits that
// the depth has.
std::uint32_t image_value(const ImageSample& sample, int color);
std::uint32_t image_rgb(const ImageSample& sample, int color);
// The record; rows are padded to four bytes.
IMG_report image_sample(const ImageSample& sample);
// Small files of a kind ("gif", "png", "xwd", "native"), by name, made by the
// program's writers.
std::vector<std::pair<std::string, std::vector<std::uint8_t>>>
image_samples(const std::string& kind);
