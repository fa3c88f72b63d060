// What national mosaics cost, of an evening with 337,000 cells of echo. A whole
// NOWrad to PostScript, on its own projection and on another, against a loop that
// decodes it, projects the corners with sines and cosines of each column taken once,
// and writes the same figures; a picture of 80 km out of a KAVRAD against a process
// that decodes it; NOWrad into a window, and as PNG, against a bare client that sends
// the same polygons, and libpng. Counts the processor time of the whole run, its
// start included. Prints ratios, and fails above those allowed.
#include "bare_client.h"
#include "kavrad.h"
#include "map.h"
#include "maptran.h"
#include "mosaic_writer.h"
#include "nowrad.h"
#include "page_floor.h"
#include "plt_tool.h"
#include "png_floor.h"
#include "redraw_areas.h"
#include "region.h"
#include "run_program.h"
#include "zyrimg.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr double allowed = 1.5;
constexpr int rounds = 9;
constexpr double deg = std::numbers::pi / 180.0;
int failures = 0;

void judge(const char* what, double spent, double floor, const char* unit) {
    const bool good = spent <= allowed * floor;
    std::printf("  %-28s %9.4f %s, floor %9.4f; ratio %.2f (at most %.1f)%s\n", what, spent, unit,
                floor, spent / floor, allowed, good ? "" : "  TOO MUCH");
    failures += good ? 0 : 1;
}

// --- Weather --------------------------------------------------------------------

// The evening of the samples with a second line after the first.
int dense_level(double lat, double lon) {
    const float dbz = std::max(mosaic_dbz(lat, lon), mosaic_dbz(lat, lon + 2.5));
    return static_cast<int>(std::clamp(dbz / 5.0F, 0.0F, 15.0F));
}

Bytes dense_nowrad() {
    constexpr int ny = 1837;
    constexpr int nx = 3661;
    constexpr double dy = 0.0167;
    constexpr double dx = 0.0185;
    constexpr double west = -97.5 - dx * (nx - 1) / 2;
    return nowrad_file(nowrad_latlon(ny, nx, -97.5, 53.0, dy, dx), [](int row, int column) {
        return dense_level(53.0 - row * dy, west + column * dx);
    });
}

Bytes dense_kavrad() {
    constexpr double dy = 0.0085937;
    constexpr double dx = 0.0128906;
    constexpr int none = 16;
    return kavrad_file({.coarse = false}, [](int row, int column) {
        const int level =
            dense_level(39.0 + dy * (5759 / 2.0 - row), -96.0 + dx * (column - 5119 / 2.0));
        return level == 0 ? none : level;
    });
}

// --- NOWrad to PostScript -----------------------------------------------------

// The figures of a page, written as the program writes them.
class FigureWriter {
public:
    explicit FigureWriter(const std::string& name)
        : file_(std::fopen(name.c_str(), "w"), std::fclose) {}
    ~FigureWriter() { flush(); }
    FigureWriter(const FigureWriter&) = delete;
    FigureWriter& operator=(const FigureWriter&) = delete;

    void put(const std::array<Gpt, 5>& points) {
        char* out = put_text(buffer_.data() + used_, "%%FA:5\nnp\n");
        const char* verb = " mv\n";
        for (const Gpt& p : points) {
            out = put_fixed(out, p.x);
            *out++ = ' ';
            out = put_fixed(out, p.y);
            out = put_text(out, verb);
            verb = " ln\n";
        }
        out = put_text(out, "cp\nfill\n");
        used_ = static_cast<std::size_t>(out - buffer_.data());
        if (used_ > buffer_.size() - 256) {
            flush();
        }
        ++count;
    }
    int count = 0;

private:
    void flush() {
        std::fwrite(buffer_.data(), 1, used_, file_.get());
        used_ = 0;
    }
    std::unique_ptr<FILE, int (*)(FILE*)> file_;
    std::vector<char> buffer_ = std::vector<char>(1 << 16);
    std::size_t used_ = 0;
};

// Points of the page, columns with their angles known and rows with their radius.
class Projector {
public:
    Projector(const NOWRad_info& info, bool polar)
        : polar_(polar),
          top_(info.domain.clat + static_cast<double>(info.domain.dy) * (info.domain.ny - 1) / 2),
          left_(info.domain.clon - static_cast<double>(info.domain.dx) * (info.domain.nx - 1) / 2),
          dx_(info.domain.dx), dy_(info.domain.dy) {
        for (int i = 0; i <= info.domain.nx; ++i) {
            const double theta = (left_ + i * dx_ - info.domain.clon) * deg;
            sines_.push_back(std::sin(theta));
            cosines_.push_back(std::cos(theta));
        }
    }
    void line(int row) {
        upper_ = row == 0 ? height(0) : lower_;
        lower_ = height(row + 1);
    }
    [[nodiscard]] Gpt upper(int column) const { return at(upper_, column); }
    [[nodiscard]] Gpt lower(int column) const { return at(lower_, column); }

private:
    [[nodiscard]] double height(int row) const {
        const double lat = top_ - row * dy_;
        return polar_ ? 118.0 * std::tan((45.0 - lat / 2.0) * deg) : lat;
    }
    [[nodiscard]] Gpt at(double y, int column) const {
        const auto i = static_cast<std::size_t>(column);
        return polar_ ? Gpt{static_cast<float>(300.0 + 4.0 * y * sines_[i]),
                            static_cast<float>(600.0 - 4.0 * y * cosines_[i])}
                      : Gpt{static_cast<float>(20.0 + column * dx_ * 8.0),
                            static_cast<float>(y * 8.0)};
    }
    bool polar_;
    double top_, left_, dx_, dy_;
    double upper_ = 0, lower_ = 0;
    std::vector<double> sines_, cosines_;
};

// A NOWrad file from its first line on. Returns the figures.
int floor_nowrad(const std::string& input, const NOWRad_info& info, int chunk,
                 const std::string& page) {
    const std::string bytes = read_file(input);
    const auto byte = [&bytes](std::size_t at) { return static_cast<std::uint8_t>(bytes[at]); };
    FigureWriter writer(page);
    Projector projector(info, chunk == 1);
    std::size_t at = bytes.find(std::string("\0\xF0\x0C", 3));
    for (int row = 0; at + 3 <= bytes.size() && byte(at + 2) == 0x0C; ++row) {
        projector.line(row);
        at += 5;
        for (int column = 0;;) {
            const int b = byte(at);
            if (b == 0 && byte(at + 1) == 0xF0) {
                break;
            }
            const int high = b >> 4;
            const int run = high == 0xD   ? byte(at + 1) + 256 * byte(at + 2) + 1
                            : high == 0xE ? byte(at + 1) + 1
                                          : high + 1;
            at += high == 0xD ? 3 : high == 0xE ? 2 : 1;
            const int end = column + run;
            for (int from = (b & 15) == 0 ? end : column; from < end; from += chunk) {
                const int to = std::min(from + chunk, end);
                writer.put({projector.upper(from), projector.lower(from), projector.lower(to),
                            projector.upper(to), projector.upper(from)});
            }
            column = end;
        }
    }
    return writer.count;
}

void measure_page(const std::string& input, const NOWRad_info& info, const char* what,
                  const char* domain, int chunk) {
    const TempDir dir;
    const std::string page = dir.path() + "/page.ps";
    const std::string other = dir.path() + "/floor.ps";
    double program = 1e9;
    double floor = 1e9;
    int wanted = 0;
    for (int i = 0; i < rounds; ++i) {
        program = std::min(program, run_program({"-inp", "nowrad", "-pd", domain, "-dr", "sum",
                                                 "-pp", "nobar", "-de", "p," + page, input})
                                        .seconds);
        floor = std::min(floor,
                         least_time(1, [&] { wanted = floor_nowrad(input, info, chunk, other); }));
    }
    const std::size_t found = read_page(read_file(page)).points.size();
    std::printf("NOWrad, %s: %zu figures, floor %d\n", what, found, wanted);
    if (std::abs(static_cast<double>(found) / wanted - 1.0) > 0.01) {
        std::puts("  NOT THE SAME FIGURES");
        ++failures;
    }
    judge("to PostScript", program, floor, "s");
}

// --- A small picture out of a large KAVRAD ------------------------------------

long decode(const std::string& input) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(input.c_str(), "rb"), std::fclose);
    KAVRAD_info info;
    KAVRAD_header(file.get(), &info);
    KAVRAD_packet packet;
    long cells = 0;
    while (KAVRAD_get_packet(file.get(), &packet) != 0) {
        cells += packet.run;
    }
    return cells;
}

constexpr char decode_word[] = "--decode";

void measure_close(const std::string& input, const char* what) {
    double program = 1e9;
    double floor = 1e9;
    for (int i = 0; i < rounds; ++i) {
        program =
            std::min(program, run_program({"-inp", "kavrad", "-pd", "ps,35.4,-94,9,9,.1,.1", "-dr",
                                           "sum", "-pp", "nobar", "-de", "p,/dev/null", input})
                                  .seconds);
        floor = std::min(floor, run_self({decode_word, input}).seconds);
    }
    std::printf("KAVRAD, %s: %ld cells\n", what, decode(input));
    judge("80 km of it", program, floor, "s");
}

// --- Window -------------------------------------------------------------------

void measure_window(const XServer& server, const std::string& input, Domain domain) {
    setenv("DISPLAY", server.name().c_str(), 1);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", "d");
    RES_put("plot_param", "nobar");
    RES_put("geometry", (std::to_string(bench_width) + "x" + std::to_string(bench_height)).c_str());
    RES_conv_data("none", nullptr, CV_mess);
    FLAG_resetplot(1);
    for (const int item : {0, 8}) {
        FLAG_setplot(item, 0);
    }
    PLT_open(DOM_aspect(&domain));
    const auto plot = [&] {
        PLT_reset(DOM_aspect(&domain));
        NOWRad_open_file(input.c_str());
        MAP_setup(&domain);
        NOWRad_plot_summary();
        NOWRad_close_file();
        gsync();
    };
    plot();
    Polygons all = redraw_areas();
    const BareClient bare(server);
    const TempDir dir;
    const std::string image = dir.path() + "/plot.png";
    PNG_dump(image.c_str());
    const Indexed picture = read_indexed(image);
    std::printf("NOWrad, %zu areas in the window\n", all.counts.size());
    const auto [ours, floor] = least_ms(server, rounds, plot, [&] { bare.draw(all); });
    judge("drawn into the window", ours, floor, "ms");
    const auto [png, png_floor] = least_ms(
        server, rounds,
        [&] {
            plot();
            PNG_dump(image.c_str());
        },
        [&] {
            bare.draw(all);
            bare.fetch_image();
            write_indexed(picture, dir.path() + "/floor.png");
        });
    judge("and written as PNG", png, png_floor, "ms");
}

} // namespace

int main(int argc, char** argv) {
    MESS_set(0, 0);
    if (argc == 3 && argv[1] == std::string(decode_word)) {
        return decode(argv[2]) > 0 ? 0 : 1;
    }
    const TempDir dir;
    const auto write = [&dir](const char* name, const Bytes& bytes) {
        return dir.write(name, {bytes.begin(), bytes.end()});
    };
    const std::string nowrad = write("now", dense_nowrad());
    NOWRad_info info;
    {
        const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(nowrad.c_str(), "rb"),
                                                         std::fclose);
        NOWRad_header(file.get(), &info);
    }
    measure_page(nowrad, info, "latitude and longitude, in tens", "ll:0:-97.5,37.7,-97.5,71,33,1,1",
                 10);
    measure_page(nowrad, info, "polar, cell by cell", "ps:90:-97.5,36,-97.5,101,71,1,1", 1);
    measure_close(write("kav", dense_kavrad()), "an evening");
    // No cell like its neighbour.
    measure_close(write("noise", kavrad_file({.coarse = false},
                                             [](int row, int column) {
                                                 return 1 +
                                                        (row * 7 + column * 5 + column % 3) % 14;
                                             })),
                  "each cell of its own");
    const XServer server(24, bench_width, bench_height);
    if (!server.works()) {
        std::puts("Xvfb does not start");
        return 1;
    }
    Domain domain;
    DOM_decode("ll:0:-97.5,37.7,-97.5,71,33,1,1", &domain);
    measure_window(server, nowrad, domain);
    return failures == 0 ? 0 : 1;
}
