// What pictures without a screen cost. A product of 360 by 460 bins with its map
// against a process that unpacks it and writes the same picture by libpng; a
// super-resolution product against bzip2, a bare filler of the same polygons and
// libpng, and against the same run with an X server; 200 products in one run against
// as many of these. Processor time, each the least of several taken in turn. Prints
// ratios, and fails beyond those allowed.
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "nids.h"
#include "nids_plt.h"
#include "nids_storm.h"
#include "page_floor.h"
#include "plt_tool.h"
#include "png_floor.h"
#include "redraw_areas.h"
#include "region.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <bzlib.h>

namespace {

constexpr int rounds = 11;
constexpr int width = 640; // of a picture, as the program makes it unasked
constexpr int height = 512;
constexpr int many = 200;
constexpr int few = 20;
constexpr char floor_word[] = "--floor";
int failures = 0;

void judge(const char* what, double spent, double floor, double allowed, const char* unit) {
    const bool good = spent <= allowed * floor;
    std::printf("  %-34s %8.2f %s, floor %8.2f; ratio %.2f (at most %.2f)%s\n", what, spent, unit,
                floor, spent / floor, allowed, good ? "" : "  TOO MUCH");
    failures += good ? 0 : 1;
}

// --- Floors ---------------------------------------------------------------------

void unpack(const std::string& product) {
    static std::vector<char> out(8 << 20);
    const std::string bytes = read_file(product);
    const std::size_t at = bytes.find("BZh");
    auto size = static_cast<unsigned>(out.size());
    if (at == std::string::npos ||
        BZ2_bzBuffToBuffDecompress(out.data(), &size, const_cast<char*>(bytes.data()) + at,
                                   static_cast<unsigned>(bytes.size() - at), 0, 0) != BZ_OK) {
        std::puts("NOT COMPRESSED");
        ++failures;
    }
}

// A picture as plain bytes, for the process that is the floor.
void keep_picture(const Indexed& picture, const std::string& name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "wb"), std::fclose);
    const std::array<int, 3> head = {picture.width, picture.height,
                                     static_cast<int>(picture.palette.size())};
    std::fwrite(head.data(), sizeof head, 1, file.get());
    std::fwrite(picture.palette.data(), sizeof(png_color), picture.palette.size(), file.get());
    std::fwrite(picture.pixels.data(), 1, picture.pixels.size(), file.get());
}

Indexed kept_picture(const char* name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name, "rb"), std::fclose);
    std::array<int, 3> head{};
    Indexed out;
    if (file == nullptr || std::fread(head.data(), sizeof head, 1, file.get()) != 1) {
        return out;
    }
    out.width = head[0];
    out.height = head[1];
    out.palette.resize(static_cast<std::size_t>(head[2]));
    out.pixels.resize(static_cast<std::size_t>(out.width) * static_cast<std::size_t>(out.height));
    const bool whole =
        std::fread(out.palette.data(), sizeof(png_color), out.palette.size(), file.get()) ==
            out.palette.size() &&
        std::fread(out.pixels.data(), 1, out.pixels.size(), file.get()) == out.pixels.size();
    return whole ? out : Indexed{};
}

// Fills convex polygons with their outline: of each row what lies between the pixels of
// the sides. Asks nothing: all lies within the picture.
class Filler {
public:
    Filler() : pixels(static_cast<std::size_t>(width) * height) {}
    void draw(const Polygons& all) {
        std::fill(pixels.begin(), pixels.end(), 0U);
        const XPoint* p = all.points.data();
        for (std::size_t i = 0; i < all.counts.size(); p += all.counts[i], ++i) {
            fill(p, all.counts[i], static_cast<std::uint32_t>(all.pixels[i]));
        }
    }
    std::vector<std::uint32_t> pixels;

private:
    void take(int x, int y) {
        const auto row = static_cast<std::size_t>(y);
        left_[row] = std::min(left_[row], x);
        right_[row] = std::max(right_[row], x);
    }
    void fill(const XPoint* p, int n, std::uint32_t pixel) {
        int top = p[0].y;
        int low = top;
        for (int i = 1; i < n; ++i) {
            top = std::min<int>(top, p[i].y);
            low = std::max<int>(low, p[i].y);
        }
        for (int y = top; y <= low; ++y) {
            left_[static_cast<std::size_t>(y)] = INT_MAX;
            right_[static_cast<std::size_t>(y)] = INT_MIN;
        }
        for (int i = 0; i + 1 < n; ++i) {
            const int dx = p[i + 1].x - p[i].x;
            const int dy = p[i + 1].y - p[i].y;
            const int steps = std::max(std::abs(dx), std::abs(dy));
            take(p[i].x, p[i].y);
            for (int k = 1; k < steps; ++k) { // to the nearest pixel
                take(p[i].x + (2 * k * dx + (dx < 0 ? -steps : steps)) / (2 * steps),
                     p[i].y + (2 * k * dy + (dy < 0 ? -steps : steps)) / (2 * steps));
            }
        }
        for (int y = top; y <= low; ++y) {
            const auto row = static_cast<std::size_t>(y);
            std::fill(pixels.begin() + y * width + left_[row],
                      pixels.begin() + y * width + right_[row] + 1, pixel);
        }
    }
    std::array<int, height> left_{}, right_{};
};

// --- The program ----------------------------------------------------------------

std::vector<std::string> data_alone(const std::string& picture, const std::string& product) {
    return {"-inp", "nids",           "-dr",  "sum", "-pp", "nobar", "-de", "d,memory",
            "-of",  "png@" + picture, product};
}

// The areas of such a picture in pixels, as the program draws them.
Polygons areas_of(const std::string& product) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", "d,memory");
    RES_put("out_file", "png@none.png");
    RES_put("plot_param", "nobar");
    RES_conv_data("none", nullptr, CV_mess);
    FLAG_resetplot(1);
    for (const int item : {0, 8}) {
        FLAG_setplot(item, 0);
    }
    NIDS_info info;
    std::FILE* file = FILE_open(product.c_str(), "r");
    NIDS_get_header(file, &info);
    FILE_close(file);
    PLT_open(DOM_aspect(&info.domain));
    gset_cache(1);
    gset_redraw(1);
    PLT_reset(DOM_aspect(&info.domain));
    NIDS_open_file(product.c_str());
    MAP_setup(&info.domain);
    NIDS_plot_frame();
    NIDS_close_file();
    Polygons all = redraw_areas();
    GPH_end(gget_ws_id());
    return all;
}

// --- Measures -------------------------------------------------------------------

void measure_map(const TempDir& dir, const std::string& product) {
    const std::string out = dir.path() + "/map.png";
    const std::string raw = dir.path() + "/map.raw";
    const std::vector<std::string> args = {"-inp", "nids",       "-de",  "d,memory",
                                           "-of",  "png@" + out, product};
    const Run first = run_program(args);
    const Indexed picture = read_indexed(out);
    keep_picture(picture, raw);
    double program = 1e9;
    double floor = 1e9;
    for (int i = 0; i < rounds; ++i) {
        program = std::min(program, run_program(args).seconds);
        floor = std::min(floor,
                         run_self({floor_word, product, raw, dir.path() + "/floor.png"}).seconds);
    }
    std::printf("360 by 460 bins with the map, %d by %d, exit %d, peak %.1f MB\n", picture.width,
                picture.height, first.code, static_cast<double>(first.peak_kb) / 1024.0);
    judge("start, bzip2 and libpng", program * 1e3, floor * 1e3, 1.3, "ms");
}

// How many pixels of the filler's picture are not those of the program's.
double share_that_differs(const Filler& filler, const Indexed& picture) {
    std::size_t bad = 0;
    for (std::size_t i = 0; i < filler.pixels.size() && i < picture.pixels.size(); ++i) {
        const png_color& c = picture.palette[picture.pixels[i]];
        const std::uint32_t rgb = static_cast<std::uint32_t>(c.red) << 16 |
                                  static_cast<std::uint32_t>(c.green) << 8 | c.blue;
        bad += rgb != filler.pixels[i] ? 1 : 0;
    }
    return picture.pixels.size() == filler.pixels.size()
               ? static_cast<double>(bad) / static_cast<double>(filler.pixels.size())
               : 1.0;
}

struct Bare {
    Polygons all;
    Indexed picture;
    double ms = 0; // to unpack, fill and write
};

Bare measure_bare(const TempDir& dir, const std::string& product) {
    Bare bare;
    const std::string out = dir.path() + "/bare.png";
    run_program(data_alone(out, product));
    bare.picture = read_indexed(out);
    bare.all = areas_of(product);
    Filler filler;
    filler.draw(bare.all);
    const double differs = share_that_differs(filler, bare.picture);
    std::printf("  %zu areas; %.3f %% of the filler's pixels differ\n", bare.all.counts.size(),
                differs * 100);
    if (differs > 0.002) {
        std::puts("  NOT THE SAME PICTURE");
        ++failures;
    }
    const auto work = [&] {
        unpack(product);
        filler.draw(bare.all);
        write_indexed(bare.picture, out);
    };
    bare.ms = least_time(rounds, work) * 1e3;
    return bare;
}

void measure_super(const TempDir& dir, const std::string& product) {
    std::puts("720 by 1840 bins, the data alone");
    const Bare bare = measure_bare(dir, product);
    const std::string out = dir.path() + "/super.png";
    const XServer server(24, width, height);
    double memory = 1e9;
    double screen = 1e9;
    std::vector<std::string> in_window = data_alone(out, product);
    std::replace(in_window.begin(), in_window.end(), std::string("d,memory"), std::string("d"));
    for (int i = 0; i < rounds; ++i) {
        memory = std::min(memory, run_program(data_alone(out, product)).seconds * 1e3);
        if (server.works()) {
            setenv("DISPLAY", server.name().c_str(), 1);
            const double before = spent_ms(server.pid());
            const double client = run_program(in_window).seconds * 1e3;
            screen = std::min(screen, client + spent_ms(server.pid()) - before);
            unsetenv("DISPLAY");
        }
    }
    judge("bzip2, bare filler and libpng", memory, bare.ms, 1.5, "ms");
    if (server.works()) {
        judge("client and server, less a third", memory, screen, 1 / 1.5, "ms");
    }
}

Run draw_many(const std::string& pictures, const std::string& product, int count) {
    std::vector<std::string> args = data_alone(pictures + "/%i.png", product);
    args.insert(args.end(), static_cast<std::size_t>(count - 1), product);
    std::filesystem::remove_all(pictures);
    std::filesystem::create_directory(pictures);
    return run_program(args);
}

// Comes while this process is small: a child's figure begins with its parent's size.
void measure_memory(const TempDir& dir, const std::string& product) {
    const std::string pictures = dir.path() + "/pictures";
    const auto megabytes = [&](int count) {
        return static_cast<double>(draw_many(pictures, product, count).peak_kb) / 1024.0;
    };
    const double some = megabytes(few);
    std::puts("memory");
    judge("of 200 pictures, against 20", megabytes(many), some, 1.02, "MB");
}

void measure_many(const TempDir& dir, const std::string& product) {
    std::printf("%d products in one run, the data alone\n", many);
    const Bare bare = measure_bare(dir, product);
    const std::string pictures = dir.path() + "/pictures";
    Run all{.seconds = 1e9, .peak_kb = 0, .code = -1};
    for (int i = 0; i < 3; ++i) {
        const Run next = draw_many(pictures, product, many);
        all = next.seconds < all.seconds ? next : all;
    }
    const std::string last = pictures + "/" + std::to_string(many - 1) + ".png";
    if (all.code != 0 || read_indexed(last).pixels != bare.picture.pixels) {
        std::printf("  NOT WRITTEN, exit %d\n", all.code);
        ++failures;
    }
    judge("bzip2, bare filler and libpng", all.seconds * 1e3, bare.ms * many, 1.5, "ms");
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 5 && argv[1] == std::string(floor_word)) {
        unpack(argv[2]);
        write_indexed(kept_picture(argv[3]), argv[4]);
        return failures;
    }
    unsetenv("DISPLAY");
    MESS_set(0, 0);
    const TempDir dir;
    const auto write = [&dir](const char* name, const Bytes& bytes) {
        return dir.write(name, {bytes.begin(), bytes.end()});
    };
    const std::string storm = write("storm", nids_sample_storm(94));
    measure_memory(dir, storm);
    measure_map(dir, storm);
    measure_super(dir, write("super", nids_sample_storm(153)));
    measure_many(dir, storm);
    return failures == 0 ? 0 : 1;
}
