// image_walk.h: an image file from memory, read and written again in every
// format.
#pragma once

#include "img_kind.h"
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
    // The size of the input chooses among the ways of the writer.
    GIF_interlace(static_cast<int>(bytes.size() & 1));
    GIF_transparent(static_cast<int>(bytes.size() >> 1 & 1));
    const MemoryFile file(bytes);
    IMG_report header;
    header.depth = 32;
    read(file.name(), &header, 1);
    IMG_report any;
    IMG_read_any(file.name(), &any, 0, 32);
    IMG_report image;
    image.depth = 32;
    if (read(file.name(), &image, 0) != 1) {
        return;
    }
    constexpr int most_bytes = 1 << 18; // larger pictures take too long
    const MemoryFile out({});
    if (image.data == nullptr || image.width < 1 || image.height < 1) {
        std::abort();
    }
    if (image.bytes_line >= most_bytes / image.height) {
        return;
    }
    image.texts = {
        {"Title", "what a file says of itself"}
    };
    for (const IMG_kind& kind : IMG_kinds()) {
        IMG_report none;
        if (kind.write("/dev/null/none", image, {}) == 1 ||
            kind.write("/dev/full", image, {}) == 1 || kind.read("/dev/null/none", &none, 0) == 1 ||
            IMG_find_dump(kind.dump) != &kind) {
            std::abort();
        }
        if (kind.write(out.name(), image, {}) == 1) {
            IMG_report again;
            again.depth = 32;
            const int result = kind.read(out.name(), &again, 0);
            const bool same = again.width == image.width && again.height == image.height;
            // A dump also holds what cannot be read: pixels of no depth.
            if ((result != 1 || !same) && kind.write != XWD_encode) {
                std::abort();
            }
        }
    }
    IMG_write(out.name(), &image, 1);
    XWD_write(out.name(), &image);
    IMG_read_any("/dev/null/none", &any, 0, 32);
}
