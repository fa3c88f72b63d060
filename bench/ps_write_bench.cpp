// How long a picture of N five-point cells takes to write: through the kernel,
// and in a bare loop that formats the same points.
//
//   ps_write_bench [N [output]]      500000 cells to /dev/null

#include "fixed_format.h"
#include "gks_pipe.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Cell = std::array<Gpt, 5>;

// Cells along radials about the centre, as a super-resolution product has them.
std::vector<Cell> make_cells(std::size_t n) {
    constexpr std::size_t bins = 700;
    std::vector<Cell> cells(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 0.5 * static_cast<double>(i - i % bins) / bins * 3.14159265 / 180.0;
        const double b = a + 0.51 * 3.14159265 / 180.0;
        const double r = static_cast<double>(i % bins) / bins;
        const double s = r + 1.0 / bins;
        const auto at = [](double radius, double angle) {
            return Gpt{static_cast<float>(radius * std::sin(angle)),
                       static_cast<float>(radius * std::cos(angle))};
        };
        cells[i] = {at(r, a), at(s, a), at(s, b), at(r, b), at(r, a)};
    }
    return cells;
}

template <class F> double seconds(F&& work) {
    double best = 1e9;
    for (int i = 0; i < 5; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

void open_kernel(const char* output) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", (std::string("p,") + output).c_str());
    int ws_id = 0;
    Gws_type ws_type = ws_none;
    Glim area = {0.0F, 0.0F, 0.0F, 0.0F};
    GPH_setup(&ws_id, &ws_type, 1.0F, &area);
    const Glim window = {-1.0F, 1.0F, -1.0F, 1.0F};
    GPH_win(tran_map, &window);
    GPH_trans(tran_map);
}

void draw(const std::vector<Cell>& cells) {
    Gattribs attrib;
    attrib.fill_pat = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        attrib.color = static_cast<int>(i / 3 % 15); // runs of three bins
        GPH_fill_attr(&attrib);
        gfill_area(static_cast<int>(cells[i].size()), cells[i].data());
    }
}

// The same number of bytes and figures, without a kernel.
void floor_loop(const std::vector<Cell>& cells, std::FILE* file) {
    std::array<char, 1024> text{};
    for (const Cell& cell : cells) {
        char* p = text.data();
        const auto put = [&p](const char* s) {
            while (*s != '\0') {
                *p++ = *s++;
            }
        };
        put("%%FA:5\nnp\n");
        for (std::size_t i = 0; i < cell.size(); ++i) {
            p = format_fixed2(p, cell[i].x * 288.0F + 378.0F);
            *p++ = ' ';
            p = format_fixed2(p, cell[i].y * 288.0F + 288.0F);
            put(i == 0 ? " mv\n" : " ln\n");
        }
        put("cp\nfill\n");
        std::fwrite(text.data(), 1, static_cast<std::size_t>(p - text.data()), file);
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::size_t n = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 500000;
    const char* output = argc > 2 ? argv[2] : "/dev/null";
    const std::vector<Cell> cells = make_cells(n);
    open_kernel(output);
    const double kernel = seconds([&] { draw(cells); });
    std::FILE* file = std::fopen(output, "w");
    if (file == nullptr) {
        return EXIT_FAILURE;
    }
    const double bare = seconds([&] { floor_loop(cells, file); });
    std::fclose(file);
    std::printf("cells %zu  kernel %.3f s  bare loop %.3f s  ratio %.2f\n", n, kernel, bare,
                kernel / bare);
    return EXIT_SUCCESS;
}
