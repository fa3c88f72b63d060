// What the reports of a radar summary cost: the whole picture of some 200 reports
// with their station model, against a run that only reads the file and contours its
// grid; both with the start of the program. Prints the ratio; fails above the one
// allowed.
#include "page_floor.h"
#include "summary_writer.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr double allowed = 1.5;
constexpr int rounds = 15;

} // namespace

int main() {
    const std::string dir = std::filesystem::temp_directory_path();
    const std::string file = dir + "/zyr_summary_bench.rad";
    const std::string page = dir + "/zyr_summary_bench.ps";
    const Bytes bytes = summary_sample(false);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    double whole = 1e9;
    double grid = 1e9;
    int code = 0;
    for (int i = 0; i < rounds; ++i) {
        for (const bool reports : {true, false}) {
            const Run run = run_program({"-inp", "mdr", "-dr", reports ? "sum,data,text" : "sum",
                                         "-pd", "us", "-va", "model", "-de", "p," + page, file});
            (reports ? whole : grid) = std::min(reports ? whole : grid, run.seconds);
            code = std::max(code, run.code);
        }
    }
    std::filesystem::remove(file);
    std::filesystem::remove(page);
    std::printf("200 reports: %.4f s, grid alone %.4f s, ratio %.2f (allowed %.1f), code %d\n",
                whole, grid, whole / grid, allowed, code);
    return code != 0 || whole > allowed * grid ? 1 : 0;
}
