// PNG files. The seeds are made by
// `make_sample --image-seeds png tests/fuzz/seeds/png_fuzz`.
#include "image_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    image_walk({data, data + size}, PNG_read);
    if (size == 0) { // too large for the buffer of a file that takes nothing
        IMG_report image;
        image.width = image.height = 400;
        image.depth = image.bits_pixel = 8;
        image.bytes_line = image.width;
        image.data = IMG_pixels(new std::uint8_t[160000]);
        std::uint32_t noise = 1;
        for (std::size_t i = 0; i < 160000; ++i) {
            noise = noise * 1664525U + 1013904223U;
            image.data[i] = static_cast<std::uint8_t>(noise >> 24);
        }
        PNG_encode("/dev/full", image, {});
    }
    return 0;
}
