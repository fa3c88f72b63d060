// The NIDS plotter on the collection of real products, where it lies beside
// the tree: every page is whole and holds one figure for each bin or piece of a
// row that the decoded packets and the level tables say is drawn.
#include "nids.h"
#include "nids_draw.h"
#include "nids_page.h"
#include "nids_walk.h"

#include "cont.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace {

constexpr int parts = 4;

// Counts the figures of a page from its packets.
struct Count : NidsSink {
    const NIDS_info& info;
    bool raster = false;
    long figures = 0;

    explicit Count(const NIDS_info& product) : info(product) {}
    static bool drawn(float value) {
        Gattribs attrib;
        CONT_get_fill_attrib(value, &attrib);
        return attrib.color != -1;
    }
    void line(float, float width) { raster = width == 0; }
    void run(const NIDS_data& data) {
        const bool precip = info.code == 81 && data.val != missing_f;
        if (drawn(precip ? std::pow(10.0F, data.val / 10) / 100 : data.val)) {
            figures += std::lround(raster ? std::ceil(data.run / 10) : data.run);
        }
    }
    void wind(const NIDS_wind_data& data) { // a flag for each 50 knots
        figures += drawn(data.val) ? static_cast<long>((data.spd + 2.01F) / 50) : 0;
    }
};

// -1 for a file that is no product.
long count_figures(const std::string& name, NIDS_info& info) {
    const NidsFile file(std::fopen(name.c_str(), "rb"), std::fclose);
    if (file == nullptr || NIDS_get_header(file.get(), &info) == 0 || NIDS_is_plausible() == 0) {
        return -1;
    }
    NIDS_set_colors(info);
    Count count(info);
    int type = info.type;
    for (int status = NIDS_packet_status(); status > 0; status = NIDS_packet(file.get(), &type)) {
        nids_walk_packet(file.get(), type, count);
    }
    return count.figures;
}

void check_product(const std::string& name, const TempDir& dir) {
    NIDS_info info;
    const long expected = count_figures(name, info);
    // A product without figures may have a table of storms, whose marks are filled too.
    const std::string items = expected > 0 ? "sum,text,data " : "sum,text ";
    const NidsPage page = nids_page(dir, "-pp nobar -dr " + items + name);
    const int labels = expected < 0 ? 0 : 1;
    EXPECT_EQ(page.run.code, expected < 0 ? 10 : 0) << name << "\n" << page.run.err;
    EXPECT_EQ(page.figures(), std::max(expected, 0L)) << name;
    EXPECT_EQ(count_text(page.text, "\nfill\n"), std::max(expected, 0L)) << name;
    EXPECT_EQ(count_text(page.text, std::string(" ") + info.info + "\n"), labels) << name;
    EXPECT_EQ(count_text(page.text, std::string(" ") + info.misc + "\n"), labels) << name;
    EXPECT_EQ(count_text(page.text, "nan") + count_text(page.text, "inf "), 0) << name;
    EXPECT_EQ(page.text.ends_with("showpage\nend\n%%EOF\n"), expected >= 0) << name;
}

} // namespace

// The collection in parts, so that they run side by side. With the sanitizers,
// which make a page ten times slower, every fourth product stands for all.
class NidsReal : public testing::TestWithParam<int> {};

TEST_P(NidsReal, EveryProductIsDrawnWhole) {
    const std::string data = ZYR_REAL_DATA "/nids";
    if (!std::filesystem::exists(data) || !std::filesystem::exists(ZYR_PROGRAM)) {
        GTEST_SKIP() << "no real products or no program";
    }
#ifdef ZYR_SANITIZED
    constexpr int stride = 4;
#else
    constexpr int stride = 1;
#endif
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_conv_data("none", nullptr, CV_mess);
    CLR_read_table(nullptr);
    const TempDir dir;
    int products = 0;
    int index = 0;
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
        if (index++ % (parts * stride) == GetParam()) {
            check_product(std::filesystem::absolute(entry.path()), dir);
            ++products;
        }
    }
    EXPECT_GT(products, 0);
}

INSTANTIATE_TEST_SUITE_P(Parts, NidsReal, testing::Range(0, parts));
