// png_floor.h: what benches measure an image of the window against: libpng
// alone, writing the same rows of palette indexes and packing them alike.
#pragma once

#include "zyrimg.h"

#include <cstdio>
#include <string>
#include <vector>

#include <png.h>
#include <zlib.h>

// A picture as the program writes it.
struct Indexed {
    int width = 0, height = 0;
    std::vector<png_color> palette;
    std::vector<png_byte> pixels; // indexes, row by row; none when the file is not as expected
};

inline Indexed read_indexed(const std::string& name) {
    IMG_report image;
    Indexed out;
    if (PNG_read(name.c_str(), &image, 0) == 1) {
        out.width = image.width;
        out.height = image.height;
        for (int i = 0; i < image.num_colors; ++i) {
            const IMG_color& c = image.colors[i];
            const auto byte = [](float part) { return static_cast<png_byte>(part * 255 + 0.5F); };
            out.palette.push_back({byte(c.red), byte(c.grn), byte(c.blu)});
        }
        out.pixels.assign(image.data.get(),
                          image.data.get() + std::size_t(image.width) * image.height);
    }
    return out;
}

inline void write_indexed(const Indexed& picture, const std::string& name) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_compression_level(png, 1);
    png_set_compression_strategy(png, Z_RLE);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width),
                 static_cast<png_uint_32>(picture.height), 8, PNG_COLOR_TYPE_PALETTE,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, picture.palette.data(), static_cast<int>(picture.palette.size()));
    png_write_info(png, info);
    for (std::size_t at = 0; at < picture.pixels.size(); at += std::size_t(picture.width)) {
        png_write_row(png, &picture.pixels[at]);
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}
