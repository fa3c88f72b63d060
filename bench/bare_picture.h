// bare_picture.h: the floor of a picture without a screen: a product unpacked by bzip2,
// the polygons that the program draws of it filled by a bare loop, libpng.
#pragma once

#include "files.h"
#include "map.h"
#include "maptran.h"
#include "nids.h"
#include "nids_plt.h"
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
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <bzlib.h>

constexpr int width = 640; // of a picture, as the program makes it unasked
constexpr int height = 512;
inline int failures = 0;

inline void judge(const char* what, double spent, double floor, double allowed, const char* unit) {
    const bool good = spent <= allowed * floor;
    std::printf("  %-34s %8.2f %s, floor %8.2f; ratio %.2f (at most %.2f)%s\n", what, spent, unit,
                floor, spent / floor, allowed, good ? "" : "  TOO MUCH");
    failures += good ? 0 : 1;
}

inline void unpack(const std::string& product) {
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

inline std::vector<std::string> data_alone(const std::string& picture, const std::string& product) {
    return {"-inp", "nids",           "-dr",  "sum", "-pp", "nobar", "-de", "d,memory",
            "-of",  "png@" + picture, product};
}

// The areas of such a picture in pixels, as the program draws them.
inline Polygons areas_of(const std::string& product) {
    RES_put("device", "d,memory");
    RES_put("out_file", "png@none.png");
    const Domain domain = open_data_alone(product);
    gset_cache(1);
    gset_redraw(1);
    PLT_reset(DOM_aspect(&domain));
    NIDS_open_file(product.c_str());
    MAP_setup(&domain);
    NIDS_plot_frame();
    NIDS_close_file();
    Polygons all = redraw_areas();
    GPH_end(gget_ws_id());
    return all;
}

// How many pixels of the filler's picture are not those of the program's.
inline double share_that_differs(const Filler& filler, const Indexed& picture) {
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

inline Bare measure_bare(const TempDir& dir, const std::string& product, int rounds) {
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
