// What raw files cost: reading 100,000 rows against a bare loop of fgets and
// strtof over the same file, and 4,000 stations of five elements each to
// PostScript against a loop that formats and writes the same strokes. Prints
// both ratios; fails above those allowed.
#include "map.h"
#include "maptran.h"
#include "page_floor.h"
#include "plot_session.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr double allowed_read = 1.5;
constexpr double allowed_plot = 2.0;
constexpr int rounds = 9;

std::string scratch(const char* name) {
    return std::filesystem::temp_directory_path() / name;
}

void write_rows(const std::string& name, int rows, const char* elements) {
    std::ofstream out(name);
    out << "ZYRRAW\n1800Z 02 JAN 26\n!Bench\nid lat lon " << elements << "\n$\n";
    for (int i = 0; i < rows; ++i) {
        const int spread = i * 7919 % 10000;
        out << "S" << i << ' ' << 30.0 + spread * 0.0015 << ' ' << -105.0 + i % 250 * 0.06 << ' '
            << i % 40 - 10 << "." << i % 10 << ' ' << i % 30 - 15 << ' ' << 980 + i % 50 << ".5 "
            << i * 13 % 360 << ',' << i % 60 << ' ' << 50 + i % 50 << '\n';
    }
}

// The row's position and every number in it.
double read_bare(const std::string& name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "r"), std::fclose);
    std::array<char, 402> line{};
    double sum = 0;
    while (std::fgets(line.data(), line.size(), file.get()) != nullptr) {
        const char* at = std::strchr(line.data(), ' ');
        while (at != nullptr && *at != '\n' && *at != '\0') {
            char* end = nullptr;
            sum += static_cast<double>(std::strtof(at, &end));
            at = end == at ? at + 1 : end;
        }
    }
    return sum;
}

double read_raw(const std::string& name) {
    int type = 0;
    const int fd = RAW_open(name.c_str(), raw_read_access, &type);
    RAW_info info;
    RAW_getinfo(fd, &info);
    RAW_report report;
    double sum = 0;
    int row = 0;
    for (int result = 0; result != -1;) {
        result = RAW_read(fd, &report, RAW_selector(raw_each), &row);
        sum += result == 1 ? static_cast<double>(report.value[0]) : 0.0;
        row += result == 0 ? 1 : 0;
    }
    RAW_close(fd);
    return sum;
}

void plot(const std::string& rows, const std::string& page) {
    const int id = open_bare_page("p," + page + ",color");
    Domain domain;
    domain.proj = proj_lambert;
    domain.clat = 37;
    domain.clon = -97;
    domain.nx = domain.ny = 41;
    domain.dx = domain.dy = 0.5;
    MAP_setup(&domain);
    RAW_plot_file(rows.c_str(), 0);
    GPH_end(id);
}

int judge(const char* what, double spent, double floor, double allowed) {
    std::printf("%s: %.4f s, floor %.4f s, ratio %.2f (allowed %.1f)\n", what, spent, floor,
                spent / floor, allowed);
    return spent > allowed * floor ? 1 : 0;
}

} // namespace

int main() {
    MESS_set(0, 0);
    const std::string rows = scratch("zyr_raw_bench.raw");
    const std::string page = scratch("zyr_raw_bench.ps");
    double sum = 0;
    write_rows(rows, 100000, "t d p w h");
    double bare = 1e9;
    double raw = 1e9;
    for (int i = 0; i < rounds; ++i) {
        bare = std::min(bare, least_time(1, [&] { sum += read_bare(rows); }));
        raw = std::min(raw, least_time(1, [&] { sum += read_raw(rows); }));
    }
    int failed = judge("100,000 rows read", raw, bare, allowed_read);
    write_rows(rows, 4000,
               "t:T:ul:%1.0f:co=red d:D:ll:%1.0f:co=green p:P:ur:%1.0f w:W:wbarb h:H:lr:%1.0f");
    plot(rows, page);
    const Page strokes = read_page(read_file(page));
    double floor = 1e9;
    double spent = 1e9;
    for (int i = 0; i < rounds; ++i) {
        spent = std::min(spent, least_time(1, [&] { plot(rows, page); }));
        floor = std::min(floor, least_time(1, [&] { write_page(strokes, page); }));
    }
    std::printf("%zu figures, %zu points, checksum %g\n", strokes.points.size(),
                strokes.xy.size() / 2, sum);
    failed += judge("4,000 stations plotted", spent, floor, allowed_plot);
    std::filesystem::remove(rows);
    std::filesystem::remove(page);
    return failed;
}
