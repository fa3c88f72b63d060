// image_view.h: what an image record and a PNG file show.
#pragma once

#include "img_pixel.h"

#include <gtest/gtest.h>

#include "x_server.h" // after gtest: Xlib's macros hide names of its

#include <string>
#include <vector>

#include <png.h>

// By libpng alone; empty if it is no PNG file.
inline Picture read_png(const std::string& name) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&png, name.c_str()) == 0) {
        return {};
    }
    png.format = PNG_FORMAT_BGRA; // 0xAARRGGBB as this machine reads it
    Picture picture{static_cast<int>(png.width), static_cast<int>(png.height), {}};
    picture.rgb.resize(std::size_t{png.width} * png.height);
    png_image_finish_read(&png, nullptr, picture.rgb.data(), 0, nullptr);
    for (std::uint32_t& pixel : picture.rgb) {
        pixel &= 0xFFFFFF;
    }
    return picture;
}

inline Picture picture_of_record(const IMG_report& image) {
    Picture picture{image.width, image.height, {}};
    const IMG_coloring coloring(image);
    std::vector<std::uint32_t> row(static_cast<std::size_t>(image.width));
    for (int y = 0; y < image.height; ++y) {
        IMG_row_values(image, y, image.width, row.data());
        for (const std::uint32_t value : row) {
            const IMG_rgb c = coloring(value);
            picture.rgb.push_back(std::uint32_t{c.red} << 16U | std::uint32_t{c.grn} << 8U | c.blu);
        }
    }
    return picture;
}
