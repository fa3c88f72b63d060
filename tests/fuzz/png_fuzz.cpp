// PNG files. The seeds are made by
// `make_sample --image-seeds png tests/fuzz/seeds/png_fuzz`.
#include "image_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    image_walk({data, data + size}, PNG_read);
    return 0;
}
