// What reading a product costs against the bzip2 decompression that it needs:
// the block alone, and opening the file plus the walk of all of its packets.
//   nids_walk_bench [FILE...]     by default a storm in super resolution
#include "nids_storm.h"
#include "nids_walk.h"
#include "walk_floor.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

constexpr int rounds = 25;

// Counts radials alone: what is done with a bin is the plotter's cost.
struct Count : NidsSink {
    int radials = 0;
    void line(float /*angle*/, float /*width*/) { radials++; }
};

void measure(const char* name, const Bytes& file) {
    const std::array<std::uint8_t, 3> mark = {'B', 'Z', 'h'};
    const auto found = std::search(file.begin(), file.end(), mark.begin(), mark.end());
    if (found == file.end()) {
        std::printf("%s: no bzip2 block\n", name);
        return;
    }
    const auto at = static_cast<std::size_t>(found - file.begin());
    long bytes = 0;
    Count count;
    std::vector<double> unpacking;
    std::vector<double> reading;
    for (int i = 0; i < rounds; ++i) {
        unpacking.push_back(
            milliseconds([&] { bytes = unpack_stream<10000>(std::span(file).subspan(at)); }));
        reading.push_back(milliseconds([&] {
            count = {};
            NIDS_info info;
            nids_walk(nids_memory(file).get(), info, count);
        }));
    }
    std::sort(unpacking.begin(), unpacking.end());
    std::sort(reading.begin(), reading.end());
    std::printf("%s: %ld bytes, %d radials\n", name, bytes, count.radials);
    std::printf("  bzip2 alone  least %.2f ms, median %.2f ms\n", unpacking[0],
                unpacking[rounds / 2]);
    std::printf("  open + walk  least %.2f ms, median %.2f ms\n", reading[0], reading[rounds / 2]);
    std::printf("  ratio        least %.3f, median %.3f\n", reading[0] / unpacking[0],
                reading[rounds / 2] / unpacking[rounds / 2]);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        measure("storm", nids_sample_storm(153));
    }
    for (int i = 1; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        measure(argv[i], Bytes{std::istreambuf_iterator<char>(in), {}});
    }
    return 0;
}
