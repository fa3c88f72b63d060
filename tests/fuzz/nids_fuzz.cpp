// The NIDS reader on any bytes: header, symbology block and pages. The seeds
// are made by `make_sample --seeds tests/fuzz/seeds/nids_fuzz`.
#include "nids_walk.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace {

// A value that is no number would reach a device.
struct CheckedSink : NidsSink {
    void line(float /*angle*/, float /*width*/) {
        const NIDS_bins bins = NIDS_get_bins();
        constexpr float most_km = 1000; // a page of its own counts as a bin of 512 nautical miles
        if (!(bins.size_km > 0 && bins.size_km < most_km && bins.first_km >= 0)) {
            std::abort();
        }
    }
    void run(const NIDS_data& data) {
        if (!std::isfinite(data.val) || data.run < 0) {
            std::abort();
        }
    }
    void symbol(const NIDS_symbol& symbol) {
        if (!std::isfinite(symbol.x) || !std::isfinite(symbol.y2) || !std::isfinite(symbol.top)) {
            std::abort();
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    NIDS_is_product({data, size});
    // The first byte may select a product of a collective file.
    const bool collective = size > 0 && data[0] == '*';
    const std::vector<std::uint8_t> bytes(data, data + size);
    struct Way {
        const char* selector;
        int symbols;
    };
    for (const Way& way : {
             Way{"",   0},
             Way{"",   1},
             Way{"#1", 0}
    }) {
        if (*way.selector != '\0' && !collective) {
            break;
        }
        NIDS_set_ext_info(way.selector);
        NIDS_take_symbols(way.symbols);
        NIDS_set_exact(way.symbols);
        NIDS_info info;
        CheckedSink sink;
        const NidsFile file = nids_memory(bytes);
        nids_walk(file.get(), info, sink);
        std::array<unsigned char, 4> rest{}; // what is left is read, or refused
        NIDS_read_long(rest.data(), file.get());
    }
    return 0;
}
