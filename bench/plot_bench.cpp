// What a whole run of the program costs against the least that its work can
// cost: bzip2's own decompression of the product plus a loop that formats and
// writes the same polygons with a fixed two-decimal formatter. Also the start
// of the process and its peak memory.
//   plot_bench [FILE...]     products to plot; by default the largest samples
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <bzlib.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Run {
    double seconds = 0;
    long peak_kb = 0;
    int code = -1;
};

// Runs the program with the source tree's data files, its output thrown away.
Run run_program(const std::vector<std::string>& args) {
    std::vector<char*> argv{const_cast<char*>(ZYR_PROGRAM)};
    for (const auto& arg : args) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    const auto start = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        setenv("zyrdefault", ZYR_SOURCE_DIR "/etc", 1);
        setenv("zyrfile", ZYR_SOURCE_DIR "/etc", 1);
        const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(null, 1);
        dup2(null, 2);
        execv(ZYR_PROGRAM, argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    return {seconds_since(start), usage.ru_maxrss, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

template <typename Work> double least_time(int rounds, Work work) {
    double least = 1e9;
    for (int i = 0; i < rounds; i++) {
        const auto start = Clock::now();
        work();
        least = std::min(least, seconds_since(start));
    }
    return least;
}

std::string read_file(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Every figure of the page as a run of points; other lines are left out.
struct Page {
    std::vector<float> xy;
    std::vector<int> points; // of each figure
};

Page read_page(const std::string& text) {
    Page page;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        char* rest = nullptr;
        const float x = std::strtof(line.c_str(), &rest);
        const float y = std::strtof(rest, &rest);
        if (std::strcmp(rest, " mv") == 0) {
            page.points.push_back(1);
        } else if (std::strcmp(rest, " ln") == 0 && !page.points.empty()) {
            page.points.back()++;
        } else {
            continue;
        }
        page.xy.push_back(x);
        page.xy.push_back(y);
    }
    return page;
}

char* put_fixed(char* out, float value) {
    const long hundredths = std::lround(std::fabs(value) * 100.0F);
    if (value < 0) {
        *out++ = '-';
    }
    std::array<char, 12> digits{};
    int n = 0;
    for (long whole = hundredths / 100; whole > 0 || n == 0; whole /= 10) {
        digits[static_cast<std::size_t>(n++)] = static_cast<char>('0' + whole % 10);
    }
    while (n > 0) {
        *out++ = digits[static_cast<std::size_t>(--n)];
    }
    *out++ = '.';
    *out++ = static_cast<char>('0' + hundredths / 10 % 10);
    *out++ = static_cast<char>('0' + hundredths % 10);
    return out;
}

char* put_text(char* out, const char* text) {
    const std::size_t n = std::strlen(text);
    std::memcpy(out, text, n);
    return out + n;
}

void write_page(const Page& page, const std::string& name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "w"), std::fclose);
    std::vector<char> buffer(1 << 16);
    const float* xy = page.xy.data();
    char* out = buffer.data();
    for (const int points : page.points) {
        out = put_text(out, "%%FA:5\nnp\n");
        for (int i = 0; i < points; i++, xy += 2) {
            out = put_fixed(out, xy[0]);
            *out++ = ' ';
            out = put_fixed(out, xy[1]);
            out = put_text(out, i == 0 ? " mv\n" : " ln\n");
            if (out - buffer.data() > (1 << 16) - 256) {
                std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()),
                            file.get());
                out = buffer.data();
            }
        }
        out = put_text(out, "cp\nfill\n");
    }
    std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()), file.get());
}

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
    for (int i = 0; i < rounds; i++) {
        run = run_program({"-inp", "nids", "-de", "p," + ps, file});
        program = std::min(program, run.seconds);
    }
    const Page page = read_page(read_file(ps));
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
    for (int i = 0; i < 20; i++) {
        start = std::min(start, run_program({"-h"}).seconds);
    }
    std::printf("start of the process: %.2f ms\n", start * 1e3);
    std::vector<long> peaks;
    for (const auto& file : files) {
        peaks.push_back(run_program({"-inp", "nids", "-de", "p,/dev/null", file}).peak_kb);
    }
    for (std::size_t i = 0; i < files.size(); i++) {
        measure(files[i], peaks[i], 7);
    }
    return 0;
}
