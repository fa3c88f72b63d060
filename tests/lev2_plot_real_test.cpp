// The Level II plotter on the collection of real volumes, where it lies beside
// the tree: each moment of each scan gives a whole page that holds a figure for
// each gate that the levels say is drawn.
#include "lev2_walk.h"
#include "nids_page.h"

#include <array>
#include <filesystem>
#include <map>
#include <utility>

namespace {

// Gates that are drawn, by elevation number and moment.
using Scans = std::map<std::pair<int, int>, long>;

constexpr std::array<const char*, lev2_moments> variables = {"ref", "vel", "spect", "zdr",
                                                             "phi", "rho", "cfp"};

void add_radial(Scans& scans, const LEV2_data& data) {
    for (int type = 0; type < lev2_moments; ++type) {
        if (LEV2_set_data_type(type) == 0) {
            continue;
        }
        long& figures = scans[{data.elev_num, type}];
        for (int i = 0; i < LEV2_get_gates().count; ++i) {
            const float v = LEV2_get_data();
            constexpr std::array<float, lev2_moments> lowest = {5, -70, -70, -8, 0, 0.2F, 0};
            const bool doppler = type == lev2_vel || type == lev2_spect;
            figures += v >= lowest[static_cast<std::size_t>(type)] && (!doppler || v < 0 || v >= 1);
        }
    }
}

// A picture without figures and without a reason is a fault.
void check_scan(const std::string& file, int scan, int type, long figures, const TempDir& dir) {
    const std::string variable = variables[static_cast<std::size_t>(type)] + std::to_string(scan);
    SCOPED_TRACE(file + " " + variable);
    const NidsPage page =
        nids_page(dir, "-pp nobar -dr sum,text -me warn -va " + variable + " " + file, "lev2");
    EXPECT_EQ(page.run.code, 0) << page.run.err;
    // Beyond the corners of the page nothing is drawn.
    EXPECT_LE(page.figures(), figures);
    EXPECT_GE(page.figures(), figures * 9 / 10);
    EXPECT_EQ(count_text(page.text, " Sc=" + std::to_string(scan) + " El="), 1);
    EXPECT_EQ(count_text(page.run.err, "LEV2_plot: "), figures == 0 ? 1 : 0) << page.run.err;
    EXPECT_EQ(count_text(page.text, "nan") + count_text(page.text, "inf "), 0);
    EXPECT_TRUE(page.text.ends_with("showpage\nend\n%%EOF\n"));
}

} // namespace

// With the sanitizers, which make a page ten times slower, one scan of each
// volume stands for all.
TEST(Lev2PlotReal, EveryMomentOfEveryScanIsDrawnWhole) {
    const std::string data = ZYR_REAL_DATA "/level2";
    if (!std::filesystem::exists(data) || !std::filesystem::exists(ZYR_PROGRAM)) {
        GTEST_SKIP() << "no real volumes or no program";
    }
#ifdef ZYR_SANITIZED
    constexpr std::size_t stride = 40;
#else
    constexpr std::size_t stride = 5;
#endif
    MESS_set(0, 0);
    const TempDir dir;
    std::size_t index = 0;
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
        const std::string file = std::filesystem::absolute(entry.path());
        Scans scans;
        LEV2_info info;
        lev2_walk(file.c_str(), info, [&scans](const LEV2_data& d) { add_radial(scans, d); });
        for (const auto& [key, figures] : scans) {
            if (index++ % stride == 0) {
                check_scan(file, key.first, key.second, figures, dir);
            }
        }
    }
    EXPECT_GT(index, 200U);
}
