// image_walk.h: an image file from memory, read and written again in every
// format.
#pragma once

#include "img_pixel.h"
#include "memory_file.h"
#include "zyr.h"

#include <cstdlib>

using ImageReader = int (*)(const char* filename, IMG_report* image, int type);

// Whatever a reader accepts can be written, and read again as the same picture
// where the format keeps it.
inline void image_walk(const std::vector<std::uint8_t>& bytes, ImageReader read) {
    MESS_set(0, 0);
    IMG_set_patience(0);
    const MemoryFile file(bytes);
    IMG_report header;
    header.depth = 32;
    read(file.name(), &header, 1);
    IMG_report image;
    image.depth = 32;
    if (read(file.name(), &image, 0) == 1) {
        constexpr int most_bytes = 1 << 18; // larger pictures take too long
        const MemoryFile out({});
        if (image.data == nullptr || image.width < 1 || image.height < 1) {
            std::abort();
        }
        const bool small = image.bytes_line < most_bytes / image.height;
        for (const auto write : {GIF_write, PNG_write, XWD_write}) {
            if (small && write(out.name(), &image) == 1) {
                IMG_report again;
                again.depth = 32;
                const int result = write == GIF_write   ? GIF_read(out.name(), &again, 0)
                                   : write == PNG_write ? PNG_read(out.name(), &again, 0)
                                                        : XWD_read(out.name(), &again, 0);
                const bool same = again.width == image.width && again.height == image.height;
                // A dump also holds what cannot be read: pixels of no depth.
                if ((result != 1 || !same) && write != XWD_write) {
                    std::abort();
                }
            }
        }
        for (int packed = 0; small && packed < 2; packed++) {
            IMG_write(out.name(), &image, packed);
        }
    }
}
