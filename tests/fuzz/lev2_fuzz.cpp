// The Level II reader on any bytes: header, records, gates and the texts about
// the cuts. The seeds are made by
// `make_sample --lev2-seeds tests/fuzz/seeds/lev2_fuzz`.
#include "lev2_stream.h"
#include "lev2_walk.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

void expect(bool good) {
    if (!good) {
        std::abort();
    }
}

// What a plotter takes for granted.
void check(const LEV2_data& data) {
    expect(std::isfinite(data.rad_az) && std::isfinite(data.elev_ang));
    expect(std::isfinite(data.lat) && std::isfinite(data.lon));
    for (int type = -1; type <= lev2_moments; ++type) {
        const bool has = LEV2_set_data_type(type) == 1;
        const LEV2_gates& gates = LEV2_get_gates();
        expect(has == (gates.count > 0));
        expect(static_cast<int>(gates.bytes.size()) == gates.count * gates.word_bytes);
        for (int i = 0; i < gates.count; ++i) {
            const float value = LEV2_get_data();
            expect(std::isfinite(value) && value == gates.value(gates.word(i)));
        }
        expect(LEV2_get_data() == lev2_below);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Radials are printed for one input alone: each is a page of text.
    static bool printed = false;
    MESS_set(0, printed ? 0 : mess_debug);
    const MemoryFile file(std::vector<std::uint8_t>(data, data + size));
    LEV2_info info;
    const int records = lev2_walk(file.name(), info, check);
    expect(std::isfinite(info.lat) && std::isfinite(info.lon));
    for (int type = 0; type < lev2_moments; ++type) {
        LEV2_warn_empty(1, type);
    }
    LEV2_list_cuts(mess_mess);
    expect(LEV2_get_cuts().size() <= static_cast<std::size_t>(lev2_max_cuts));
    printed = printed || records > 2;
    MESS_set(0, 0);
    // Back to the first record, which is the one that came first.
    LEV2_set_compress(static_cast<int>(size % 2));
    LEV2_data first;
    LEV2_data again;
    if (LEV2_open_file(file.name()) == 1) {
        LEV2_get_header(&info);
        while (LEV2_is_scan_done(1) == 0 && LEV2_get_block(&first) == 1) {
            LEV2_next_block();
        }
        LEV2_get_header(&info);
        const int got = LEV2_get_block(&first);
        LEV2_next_block();
        LEV2_get_block(&again);
        expect(LEV2_rewind_file() == 1);
        expect(LEV2_get_block(&again) == got && again.type == first.type);
        LEV2_close_file();
    }
    for (const bool walked : {false, true}) { // the units ahead of the walk
        std::array<std::uint8_t, 64> head{};
        lev2_stream_open(FILE_ptr(std::fopen(file.name(), "rbe")));
        const auto units = lev2_list_units();
        if (!units.empty()) {
            lev2_unpack_head(units.back(), head);
        }
        while (walked && !lev2_record(1).empty()) {
            lev2_units_walked();
            lev2_advance(lev2_record(1).size());
            lev2_units_walked();
        }
    }
    LEV2_open_file("/dev/null/none");
    expect(LEV2_get_header(&info) == 0 && LEV2_get_block(&first) == 0 && LEV2_next_block() == 0);
    expect(LEV2_rewind_file() == 0 && LEV2_close_file() == 0);
    return 0;
}
