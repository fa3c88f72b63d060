// What a whole run of the program costs against the least that its work can
// cost: bzip2's own decompression of the product plus a loop that formats and
// writes the same polygons with a fixed two-decimal formatter. Also a run with exact
// values and places against it, the start of the process and its peak memory.
//   plot_bench [FILE...]     products to plot; by default the largest samples
#include "page_floor.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <bzlib.h>

namespace {

// bzip2 alone, from the first block signature on; 0 bytes for other products.
unsigned decompress(std::string& product, std::vector<char>& out) {
    const std::size_t at = product.find("BZh");
    auto size = static_cast<unsigned>(out.size());
    if (at == std::string::npos ||
        BZ2_bzBuffToBuffDecompress(out.data(), &size, product.data() + at,
                                   static_cast<unsigned>(product.size() - at), 0, 0) != BZ_OK) {
        return 0;
    }
    return size;
}

// `peak_kb` was measured while this process was small: a child's figure begins
// with its parent's size.
void measure(const std::string& file, long peak_kb, int rounds) {
    const std::string ps = std::filesystem::temp_directory_path() / "zyr_plot_bench.ps";
    Run run;
    double program = 1e9;
    for (int i = 0; i < rounds; ++i) {
        run = run_program({"-inp", "nids", "-de", "p," + ps, file});
        program = std::min(program, run.seconds);
    }
    const Page page = read_page(read_file(ps));
    double exact = 1e9;
    for (int i = 0; i < rounds; ++i) {
        exact = std::min(
            exact, run_program({"-inp", "nids", "-pp", "exact", "-de", "p," + ps, file}).seconds);
    }
    std::string product = read_file(file);
    std::vector<char> block(8 << 20);
    unsigned bytes = 0;
    const double unzip = least_time(rounds, [&] { bytes = decompress(product, block); });
    const double floor = least_time(rounds, [&] { write_page(page, ps); });
    std::printf("%s: exit %d, %zu figures, %u bytes unpacked\n", file.c_str(), run.code,
                page.points.size(), bytes);
    std::printf("  bzip2 %.4f s + write %.4f s = floor %.4f s; program %.4f s; ratio %.2f; "
                "peak %.1f MB\n",
                unzip, floor, unzip + floor, program, program / (unzip + floor),
                static_cast<double>(peak_kb) / 1024.0);
    std::printf("  exact values and places %.4f s; ratio %.2f (at most 1)\n", exact,
                exact / program);
    std::filesystem::remove(ps);
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files(argv + 1, argv + argc);
    for (const char* name : {"KBMX_SDUS54_N0QBMX_201501020205", "LSX_N0B_2022_03_30_15_40_41",
                             "JUA_N0B_2026_07_06_15_43_47", "AMX_N0G_2026_07_10_05_03_18"}) {
        const std::string file = std::string(ZYR_REAL_DATA "/nids/") + name;
        if (argc < 2 && std::filesystem::exists(file)) {
            files.push_back(file);
        }
    }
    double start = 1e9;
    for (int i = 0; i < 20; ++i) {
        start = std::min(start, run_program({"-h"}).seconds);
    }
    std::printf("start of the process: %.2f ms\n", start * 1e3);
    std::vector<long> peaks;
    for (const auto& file : files) {
        peaks.push_back(run_program({"-inp", "nids", "-de", "p,/dev/null", file}).peak_kb);
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        measure(files[i], peaks[i], 7);
    }
    return 0;
}
