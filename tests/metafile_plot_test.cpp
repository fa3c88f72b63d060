// Metafiles of whole plots: the same figures on another device, in the binary
// form, and out of a window.

#include "cgm_walk.h"
#include "nids_page.h"
#include "plot_window.h"
#include "ps_ink.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace {

// Words that are equal, or numbers that the rounding to six decimals of a world
// coordinate explains.
bool alike(const std::string& a, const std::string& b) {
    std::istringstream in_a(a);
    std::istringstream in_b(b);
    std::string p;
    std::string q;
    while (in_a >> p && in_b >> q) {
        char* end = nullptr;
        const double number = std::strtod(p.c_str(), &end);
        const double off = std::fabs(number - std::strtod(q.c_str(), nullptr));
        if (p != q && (end == p.c_str() || off > 0.011 + std::fabs(number) * 5e-6))
            return false;
    }
    return !in_a && !(in_b >> q);
}

// A text metafile without its date.
std::string undated(std::string text) {
    const std::size_t at = text.find("#CreationDate");
    return text.erase(at, text.find('\n', at) - at);
}

} // namespace

class MetafilePlot : public RadarPlot {
protected:
    MetafilePlot() : RadarPlot(nids_samples()) {}
};

// Both devices have a page of 1000 by 800 units, so that nothing is scaled. The
// binary form has the lines alone.
TEST_F(MetafilePlot, PlaysToTheFiguresOfThePlot) {
    const std::string page = " -ge 1389x1112 -de p,";
    for (const std::string name : {"radial", "digital", "raster", "precip"}) {
        const std::string product = "-pp pscolor,nobar ./" + name;
        for (const std::string& args :
             {page + "plot.ps", std::string(" -de m,plot.meta"), std::string(" -de m,plot.cgm,cgm"),
              page + "played.ps -dr map -mf mf:plot.meta"})
            EXPECT_EQ(nids_page(dir, product + args).run.err, "");
        const auto expected = ps_ink(read("plot.ps"));
        const auto got = ps_ink(read("played.ps"));
        EXPECT_GT(expected.size(), 100U) << name;
        ASSERT_EQ(got.size(), expected.size()) << name;
        for (std::size_t i = 0; i < got.size(); ++i)
            ASSERT_TRUE(alike(got[i], expected[i])) << got[i] << "\n" << expected[i];

        const CgmFile file = read_cgm(read("plot.cgm"));
        EXPECT_EQ(file.fault, "");
        EXPECT_EQ(file.frame(), "0,1 1,1 1,2 1,11 1,9 2,6 0,3 0,4 0,5 0,2 ");
        EXPECT_EQ(static_cast<int>(file.all({4, 1}).size()),
                  count_text(read("plot.meta"), "\nPL "));
        for (const CgmElement& clip : file.all({3, 5})) {
            for (const auto& [x, y] : clip.points())
                EXPECT_TRUE(x >= 0 && x < 1000 && y >= 0 && y < 1000);
        }
    }
}

class WindowMetafile : public PlotWindow {};

TEST_F(WindowMetafile, IsTheOneOfTheDevice) {
    const auto file = [&](const std::string& name) { return read_text(dir.path() + "/" + name); };
    for (const auto& [name, bytes] : nids_samples()) {
        if (name != "radial" && name != "symbols")
            continue;
        write(name, bytes);
        start(name + " -ge 1000x800 -me warn,mess");
        user->key(XK_m, alt);
        EXPECT_TRUE(said("Created metafile\n"));
        leave();
        ASSERT_EQ(launch(name + " -de m,device.meta")->wait().err, "");
        EXPECT_EQ(undated(file("zyr.meta")), undated(file("device.meta")));
        EXPECT_GT(count_text(file("zyr.meta"), "\nTE "), 5);
    }
    start("radial", {
                        {"zyrredraw", "NO"        },
                        {"METAOUT",   "empty.meta"}
    });
    user->key(XK_m, alt);
    EXPECT_TRUE(said("gobj_print_meta: No redraw data to make metafile from\n"));
    leave();
    EXPECT_EQ(count_text(file("empty.meta"), "\n"), 4);
}
