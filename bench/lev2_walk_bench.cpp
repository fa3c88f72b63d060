// What reading a compressed Level II volume costs against the bzip2
// decompression that it needs: all units alone, and opening the file plus the
// walk of all of its records.
//   lev2_walk_bench [FILE...]     by default a written volume of four cuts
#include "lev2_walk.h"
#include "lev2_writer.h"
#include "walk_floor.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

namespace {

constexpr int rounds = 9;
constexpr std::size_t header_size = 24;

long unpack(const Bytes& file) {
    long total = 0;
    for (std::size_t at = header_size; at + 4 < file.size();) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            bits = bits << 8 | file[at + i];
        }
        const auto length = static_cast<std::size_t>(std::abs(static_cast<std::int32_t>(bits)));
        at += 4;
        total +=
            unpack_stream<200000>(std::span(file).subspan(at, std::min(length, file.size() - at)));
        at += length;
    }
    return total;
}

void measure(const char* name, const Bytes& file) {
    const MemoryFile volume(file);
    long bytes = 0;
    int records = 0;
    std::vector<double> unpacking;
    std::vector<double> reading;
    MESS_set(0, 0);
    LEV2_set_compress(1);
    for (int i = 0; i < rounds; ++i) {
        unpacking.push_back(milliseconds([&] { bytes = unpack(file); }));
        reading.push_back(milliseconds([&] {
            LEV2_info info;
            records = lev2_walk(volume.name(), info, [](const LEV2_data& /*data*/) {});
        }));
    }
    std::sort(unpacking.begin(), unpacking.end());
    std::sort(reading.begin(), reading.end());
    std::printf("%s: %ld bytes, %d records\n", name, bytes, records);
    std::printf("  bzip2 alone  least %.2f ms, median %.2f ms\n", unpacking[0],
                unpacking[rounds / 2]);
    std::printf("  open + walk  least %.2f ms, median %.2f ms\n", reading[0], reading[rounds / 2]);
    std::printf("  ratio        least %.3f, median %.3f\n", reading[0] / unpacking[0],
                reading[rounds / 2] / unpacking[rounds / 2]);
}

// Four cuts in super resolution, units of 120 radials.
Bytes written_volume() {
    constexpr int cuts = 4;
    constexpr int radials = 720;
    constexpr int unit_radials = 120;
    constexpr int gates = 1832;
    std::mt19937 random(1);
    Lev2Volume volume;
    for (int i = 0; i < cuts * radials; ++i) {
        if (i % unit_radials == 0) {
            volume.units.emplace_back();
        }
        Lev2Radial radial;
        radial.half_degree = true;
        radial.elev_num = i / radials + 1;
        radial.num = i % radials + 1;
        radial.az = static_cast<float>(i % radials) / 2.0F;
        Lev2Moment refl;
        for (int gate = 0; gate < gates; ++gate) {
            const bool echo = (gate / 64 + i / 32) % 3 == 0;
            refl.words.push_back(echo ? 90 + static_cast<int>(random() % 8) : 0);
        }
        radial.moments = {refl};
        const Bytes record = lev2_radial(radial);
        volume.units.back().insert(volume.units.back().end(), record.begin(), record.end());
    }
    return lev2_volume(volume, true);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        measure("written", written_volume());
    }
    for (int i = 1; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        measure(argv[i], Bytes{std::istreambuf_iterator<char>(in), {}});
    }
    return 0;
}
