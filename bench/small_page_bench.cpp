// What a small page of a product costs beside the plain one: the time of writing,
// the bytes, and the time in which gs, where there is one, draws it at 300 dpi.
//   small_page_bench [FILE...]     products to plot; by default the largest samples
#include "page_floor.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

double best_run(const std::string& device, const std::string& file) {
    double best = 1e9;
    for (int i = 0; i < 7; ++i) {
        best = std::min(best, run_program({"-inp", "nids", "-de", device, file}).seconds);
    }
    return best;
}

double children_seconds() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime);
}

double drawing_seconds(const std::string& page) {
    const std::string command =
        "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -r300 -o /dev/null '" + page + "'";
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const double start = children_seconds();
        if (std::system(command.c_str()) != 0) {
            return 0.0;
        }
        best = std::min(best, children_seconds() - start);
    }
    return best;
}

void measure(const std::string& file) {
    const std::string directory = std::filesystem::temp_directory_path();
    const std::string plain = directory + "/zyr_plain_bench.ps";
    const std::string small = directory + "/zyr_small_bench.ps";
    const double plain_s = best_run("p," + plain + ",color", file);
    const double small_s = best_run("p," + small + ",color,small", file);
    std::printf("%s\n  plain %.3f s %8ju bytes; small %.3f s %8ju bytes; ratio of times %.2f "
                "(at most 3)\n",
                file.c_str(), plain_s,
                static_cast<std::uintmax_t>(std::filesystem::file_size(plain)), small_s,
                static_cast<std::uintmax_t>(std::filesystem::file_size(small)), small_s / plain_s);
    const double plain_draw = drawing_seconds(plain);
    const double small_draw = drawing_seconds(small);
    if (plain_draw > 0.0) {
        std::printf("  gs draws the plain one in %.2f s, the small one in %.2f s; ratio %.3f "
                    "(at most 0.2)\n",
                    plain_draw, small_draw, small_draw / plain_draw);
    }
    std::filesystem::remove(plain);
    std::filesystem::remove(small);
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files(argv + 1, argv + argc);
    for (const char* name : {"KBMX_SDUS54_N0QBMX_201501020205", "LSX_N0B_2022_03_30_15_40_41"}) {
        const std::string file = std::string(ZYR_REAL_DATA "/nids/") + name;
        if (argc < 2 && std::filesystem::exists(file)) {
            files.push_back(file);
        }
    }
    for (const auto& file : files) {
        measure(file);
    }
    return 0;
}
