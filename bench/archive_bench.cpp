// What an archive costs: 2,000 products of mixed sizes, from a list, to PNG in one process,
// against bzip2, a bare filler of the same polygons and libpng for the same pictures; the
// first hundred against the last; memory; two processes by xargs against one. Processor
// time, but for xargs. Prints ratios, and fails beyond those allowed.
#include "bare_picture.h"
#include "nids_storm.h"
#include "page_floor.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int many = 2000;
constexpr int hundred = 100;
constexpr int rounds = 5;

// Of ten products so many are of a kind.
struct Kind {
    const char* name;
    Bytes (*make)();
    int share;
};
constexpr std::array kinds = {
    Kind{"storm",    [] { return nids_sample_storm(94); },  4},
    Kind{"velocity", nids_sample_velocity,                  3},
    Kind{"classes",  nids_sample_classes,                   2},
    Kind{"super",    [] { return nids_sample_storm(153); }, 1},
};

std::vector<std::string> options(const std::string& pictures) {
    return {"-inp", "nids", "-dr", "sum",      "-pp", "nobar",
            "-me",  "none", "-de", "d,memory", "-of", "png@" + pictures + "/%f.png"};
}

std::string fresh(const TempDir& dir, const char* name) {
    const std::string made = dir.path() + "/" + name;
    fs::remove_all(made);
    fs::create_directory(made);
    return made;
}

long count_files(const std::string& directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

// The milliseconds of some lines of a report.
double sum_ms(const std::string& report, int from, int to) {
    std::ifstream in(report);
    double sum = 0;
    std::string line;
    for (int i = 0; std::getline(in, line) && i < to; ++i) {
        const std::size_t at = line.rfind("\"ms\": ");
        sum += i >= from && at != line.npos ? std::atof(line.c_str() + at + 6) : 0.0;
    }
    return sum;
}

double wall_seconds(const std::string& command) {
    const auto start = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0) {
        std::printf("  FAILED: %s\n", command.c_str());
        ++failures;
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void measure_cores(const TempDir& dir, const std::string& list) {
    if (std::thread::hardware_concurrency() < 2) {
        std::puts("  one core: xargs is not measured");
        return;
    }
    std::string words;
    for (const std::string& word : options(fresh(dir, "cores"))) {
        words += " '" + word + "'";
    }
    const auto run = [&](int processes) {
        return wall_seconds("zyrdefault=" ZYR_SOURCE_DIR "/etc xargs -a " + list + " -n 100 -P " +
                            std::to_string(processes) + " " ZYR_PROGRAM + words);
    };
    double one = 1e9;
    double two = 1e9;
    for (int i = 0; i < 3; ++i) {
        one = std::min(one, run(1));
        two = std::min(two, run(2));
    }
    judge("two processes, 1.8 times the rate", two, one, 1 / 1.8, "s");
}

} // namespace

int main() {
    unsetenv("DISPLAY");
    MESS_set(0, 0);
    const TempDir dir;
    std::vector<std::string> of_ten; // the product of each in ten
    double floor_ms = 0;
    const std::string pictures = fresh(dir, "pictures");
    fs::create_directory(dir.path() + "/in");
    for (const Kind& kind : kinds) {
        const Bytes bytes = kind.make();
        const std::string name = dir.write(kind.name, {bytes.begin(), bytes.end()});
        of_ten.insert(of_ten.end(), static_cast<std::size_t>(kind.share), name);
    }
    const std::string list = dir.path() + "/list";
    {
        std::ofstream out(list);
        for (int i = 0; i < many; ++i) {
            const std::string name = dir.path() + "/in/" + std::to_string(i) + ".nids";
            fs::create_hard_link(of_ten[static_cast<std::size_t>(i % 10)], name);
            out << name << '\n';
        }
    }
    // The program first, while this process is small: a child's figure begins with its parent's.
    const std::string report = dir.path() + "/report";
    std::vector<std::string> args = options(pictures);
    args.insert(args.end(), {"--files-from", list, "--report", report});
    const Run all = run_program(args);
    const long written = count_files(pictures);
    const double first = sum_ms(report, 0, hundred);
    const double last = sum_ms(report, many - hundred, many);
    for (const Kind& kind : kinds) {
        std::printf("%s\n", kind.name);
        floor_ms +=
            many / 10 * kind.share * measure_bare(dir, dir.path() + "/" + kind.name, rounds).ms;
    }
    std::printf("%d products in one process, exit %d\n", many, all.code);
    if (all.code != 0 || written != many) {
        std::printf("  NOT WRITTEN: %ld pictures\n", written);
        ++failures;
    }
    judge("bzip2, bare filler and libpng", all.seconds * 1e3, floor_ms, 1.3, "ms");
    judge("the last hundred, against the first", last, first, 1.1, "ms");
    judge("peak memory", static_cast<double>(all.peak_kb) / 1024.0, 64.0, 1.0, "MB");
    measure_cores(dir, list);
    return failures == 0 ? 0 : 1;
}
