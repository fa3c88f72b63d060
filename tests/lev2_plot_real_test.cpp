// The Level II plotter on the collection of real volumes, where it lies beside
// the tree: each moment of each scan gives a whole page that holds a figure for
// each gate that the levels say is drawn, and the extremes in its label.
#include "lev2_walk.h"
#include "nids_page.h"

#include "cont.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <utility>

namespace {

struct Expected {
    long figures = 0;
    float smallest = 100, largest = -100, elev = 0;
    bool clear_air = false;
};
using Scans = std::map<std::pair<int, int>, Expected>; // by elevation number and moment

constexpr std::array<const char*, lev2_moments> variables = {"ref", "vel", "spect"};

void add_radial(Scans& scans, const LEV2_data& data) {
    for (int type = 0; type < lev2_moments; type++) {
        if (LEV2_set_data_type(type) == 0) {
            continue;
        }
        Expected& e = scans[{data.elev_num, type}];
        e.elev = data.elev_ang;
        e.clear_air = data.cov_patt / 10 == 3;
        for (int i = 0; i < LEV2_get_gates().count; i++) {
            const float v = LEV2_get_data();
            e.largest = std::max(e.largest, v);
            e.smallest = v > -90 ? std::min(e.smallest, v) : e.smallest;
            e.figures += type == lev2_refl ? v >= 5 : (v >= -70 && v < 0) || v >= 1;
        }
    }
}

std::string label_of(int scan, int type, const Expected& e) {
    std::array<char, 60> text{};
    const char* mode = e.clear_air ? "cl" : "pr";
    if (type == lev2_refl) {
        std::snprintf(text.data(), text.size(), "Md=%s Sc=%d El=%.1f Mx=%.0f\n", mode, scan,
                      static_cast<double>(e.elev), static_cast<double>(e.largest));
    } else {
        std::snprintf(text.data(), text.size(), "Md=%s Sc=%d El=%.1f Rng=%.0f,%.0f\n", mode, scan,
                      static_cast<double>(e.elev), static_cast<double>(e.smallest),
                      static_cast<double>(e.largest));
    }
    return text.data();
}

// A picture without figures and without a reason is a fault.
void check_scan(const std::string& file, int scan, int type, const Expected& e,
                const TempDir& dir) {
    const std::string variable = variables[static_cast<std::size_t>(type)] + std::to_string(scan);
    const std::string where = file + " " + variable;
    const NidsPage page =
        nids_page(dir, "-pp nobar -dr sum,text -me warn -va " + variable + " " + file, "lev2");
    EXPECT_EQ(page.run.code, 0) << where << "\n" << page.run.err;
    EXPECT_EQ(count_text(page.text, label_of(scan, type, e)), 1)
        << where << label_of(scan, type, e);
    // Beyond the corners of the page nothing is drawn.
    EXPECT_LE(page.figures(), e.figures) << where;
    EXPECT_GE(page.figures(), e.figures * 9 / 10) << where;
    EXPECT_EQ(count_text(page.run.err, "LEV2_plot: "), e.figures == 0 ? 1 : 0) << where << "\n"
                                                                               << page.run.err;
    EXPECT_EQ(count_text(page.text, "nan") + count_text(page.text, "inf "), 0) << where;
    EXPECT_TRUE(page.text.ends_with("showpage\nend\n%%EOF\n")) << where;
}

} // namespace

// With the sanitizers, which make a page ten times slower, one scan of each
// volume stands for all.
TEST(Lev2PlotReal, EveryMomentOfEveryScanIsDrawnWhole) {
    const std::string data = ZYR_REAL_DATA "/level2";
    if (!std::filesystem::exists(data) || !std::filesystem::exists(ZYR_PROGRAM)) {
        GTEST_SKIP() << "no real volumes or no program";
    }
#ifdef __SANITIZE_ADDRESS__
    constexpr std::size_t stride = 40;
#else
    constexpr std::size_t stride = 5;
#endif
    RES_conv_data("none", nullptr, CV_mess);
    const TempDir dir;
    std::size_t index = 0;
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
        const std::string file = std::filesystem::absolute(entry.path());
        Scans scans;
        LEV2_info info;
        lev2_walk(file.c_str(), info, [&scans](const LEV2_data& d) { add_radial(scans, d); });
        for (const auto& [key, expected] : scans) {
            if (index++ % stride == 0) {
                check_scan(file, key.first, key.second, expected, dir);
            }
        }
    }
    EXPECT_GT(index, 200U);
}
