// Native images. The seeds are made by
// `make_sample --image-seeds native tests/fuzz/seeds/native_fuzz`.
#include "image_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    image_walk({data, data + size}, IMG_read_zyr);
    return 0;
}
