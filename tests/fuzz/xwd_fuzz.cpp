// Window dumps. The seeds are made by
// `make_sample --image-seeds xwd tests/fuzz/seeds/xwd_fuzz`.
#include "image_walk.h"

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Its messages go past the message module.
    static const bool quiet = std::freopen("/dev/null", "w", stderr) != nullptr;
    if (quiet) {
        image_walk({data, data + size}, XWD_read);
    }
    return 0;
}
