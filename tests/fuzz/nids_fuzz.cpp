// The NIDS reader on any bytes: header, symbology block and pages. The seeds
// are made by `make_sample --seeds tests/fuzz/seeds/nids_fuzz`.
#include "nids_walk.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace {

// A value that is no number would reach a device.
struct CheckedSink : NidsSink {
    void run(const NIDS_data& data) {
        if (!std::isfinite(data.val) || data.run < 0) {
            std::abort();
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    // The first byte may select a product of a collective file.
    const bool collective = size > 0 && data[0] == '*';
    const std::vector<std::uint8_t> bytes(data, data + size);
    for (const char* selector : {"", "#1"}) {
        NIDS_set_ext_info(selector);
        NIDS_info info;
        CheckedSink sink;
        const NidsFile file = nids_memory(bytes);
        nids_walk(file.get(), info, sink);
        std::array<unsigned char, 4> rest{}; // what is left is read, or refused
        NIDS_read_long(rest.data(), file.get());
        if (!collective) {
            break;
        }
    }
    return 0;
}
