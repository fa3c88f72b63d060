// What plotting the first reflectivity scan of a Level II volume costs against
// the least that its work can cost: bzip2's own decompression of all units,
// which the walk goes through, plus a loop that writes the same polygons. Also
// the peak memory.
//   lev2_plot_bench [FILE...]     by default a written storm and real volumes
#include "lev2_storm.h"
#include "page_floor.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <bzlib.h>

namespace {

constexpr std::size_t header_size = 24;
constexpr std::size_t length_size = 4;

// Unpacks every unit of a volume. Returns the bytes; 0 for one that is not
// packed.
std::size_t decompress(std::string& volume, std::vector<char>& out) {
    std::size_t bytes = 0;
    for (std::size_t at = header_size; at + length_size < volume.size();) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < length_size; i++) {
            bits = bits << 8 | static_cast<std::uint8_t>(volume[at + i]);
        }
        const auto size = static_cast<std::uint32_t>(std::abs(static_cast<std::int32_t>(bits)));
        at += length_size;
        auto room = static_cast<unsigned>(out.size());
        if (volume.compare(at, 3, "BZh") != 0 || size > volume.size() - at ||
            BZ2_bzBuffToBuffDecompress(out.data(), &room, volume.data() + at, size, 0, 0) !=
                BZ_OK) {
            break;
        }
        bytes += room;
        at += size;
    }
    return bytes;
}

// `peak_kb` was measured while this process was small: a child's figure begins
// with its parent's size.
void measure(const std::string& file, long peak_kb, int rounds) {
    const std::string ps = std::filesystem::temp_directory_path() / "zyr_lev2_bench.ps";
    Run run;
    double program = 1e9;
    for (int i = 0; i < rounds; i++) {
        run = run_program({"-inp", "lev2z", "-de", "p," + ps, file});
        program = std::min(program, run.seconds);
    }
    const Page page = read_page(read_file(ps));
    std::string volume = read_file(file);
    std::vector<char> out(64 << 20);
    std::size_t bytes = 0;
    const double unzip = least_time(rounds, [&] { bytes = decompress(volume, out); });
    const double floor = least_time(rounds, [&] { write_page(page, ps); });
    std::printf("%s: exit %d, %zu figures, %zu bytes unpacked\n", file.c_str(), run.code,
                page.points.size(), bytes);
    std::printf("  bzip2 %.4f s + write %.4f s = floor %.4f s; program %.4f s; ratio %.2f; "
                "peak %.1f MB\n",
                unzip, floor, unzip + floor, program, program / (unzip + floor),
                static_cast<double>(peak_kb) / 1024.0);
    std::filesystem::remove(ps);
}

// The written storm as a file.
std::string write_storm() {
    const std::string name = std::filesystem::temp_directory_path() / "zyr_lev2_bench.ar2v";
    const Bytes storm = lev2_sample_storm();
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(storm.data()),
               static_cast<std::streamsize>(storm.size()));
    return name;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files(argv + 1, argv + argc);
    for (const char* name : {"KCRP20200101_000431_V06", "Level2_KFTG_20150430_1419.ar2v",
                             "KDMX20250101_225441_V06", "KTLX20100501_000444_V03"}) {
        const std::string file = std::string(ZYR_REAL_DATA "/level2/") + name;
        if (argc < 2 && std::filesystem::exists(file)) {
            files.push_back(file);
        }
    }
    const std::string storm = argc < 2 ? write_storm() : "";
    if (argc < 2) {
        files.push_back(storm);
    }
    std::vector<long> peaks;
    for (const auto& file : files) {
        peaks.push_back(run_program({"-inp", "lev2z", "-de", "p,/dev/null", file}).peak_kb);
    }
    for (std::size_t i = 0; i < files.size(); i++) {
        measure(files[i], peaks[i], 7);
    }
    std::filesystem::remove(storm);
    return 0;
}
