// Window dumps. The seeds are made by
// `make_sample --image-seeds xwd tests/fuzz/seeds/xwd_fuzz`. Their reader's
// messages go to standard error: search with -close_fd_mask=2.
#include "image_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    image_walk({data, data + size}, XWD_read);
    return 0;
}
