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

ProgramRun plot(const TempDir& dir, const std::string& args) {
    ProgramCall call;
    call.directory = dir.path();
    call.env["zyrdefault"] = ZYR_SOURCE_DIR "/etc";
    std::istringstream words("-inp nids " + args);
    for (std::string word; words >> word;) {
        call.args.push_back(word);
    }
    return run_program(ZYR_PROGRAM, call);
}

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

void write_samples(const TempDir& dir) {
    for (const auto& [name, bytes] : nids_samples()) {
        dir.write(name, {bytes.begin(), bytes.end()});
    }
}

// A text metafile without its date.
std::string metafile(const TempDir& dir, const std::string& name) {
    std::string text = read_text(dir.path() + "/" + name);
    const std::size_t at = text.find("#CreationDate");
    return text.erase(at, text.find('\n', at) - at);
}

} // namespace

// Both devices have a page of 1000 by 800 units, so that nothing is scaled. The
// binary form has the lines alone.
TEST(MetafilePlot, PlaysToTheFiguresOfThePlot) {
    const TempDir dir;
    write_samples(dir);
    const std::string page = " -ge 1389x1112 -de p,";
    for (const std::string name : {"radial", "digital", "raster", "symbols"}) {
        const std::string product = "-pp pscolor,nobar ./" + name;
        for (const std::string& args :
             {page + "plot.ps", std::string(" -de m,plot.meta"), std::string(" -de m,plot.cgm,cgm"),
              page + "played.ps -dr map -mf mf:plot.meta"})
            EXPECT_EQ(plot(dir, product + args).err, "");
        const auto expected = ps_ink(read_text(dir.path() + "/plot.ps"));
        const auto got = ps_ink(read_text(dir.path() + "/played.ps"));
        EXPECT_GT(expected.size(), 100U) << name;
        ASSERT_EQ(got.size(), expected.size()) << name;
        for (std::size_t i = 0; i < got.size(); ++i)
            ASSERT_TRUE(alike(got[i], expected[i])) << got[i] << "\n" << expected[i];

        const CgmFile file = read_cgm(read_text(dir.path() + "/plot.cgm"));
        EXPECT_EQ(file.fault, "");
        EXPECT_EQ(file.frame(), "0,1 1,1 1,2 1,11 1,9 2,6 0,3 0,4 0,5 0,2 ");
        EXPECT_EQ(static_cast<int>(file.all({4, 1}).size()),
                  count_text(read_text(dir.path() + "/plot.meta"), "\nPL "));
        for (const CgmElement& clip : file.all({3, 5})) {
            for (const auto& [x, y] : clip.points())
                EXPECT_TRUE(x >= 0 && x < 1000 && y >= 0 && y < 1000);
        }
    }
}

class WindowMetafile : public PlotWindow {};

TEST_F(WindowMetafile, IsTheOneOfTheDevice) {
    write_samples(dir);
    for (const std::string name : {"radial", "symbols"}) {
        start("./" + name + " -ge 1000x800 -me warn,mess");
        user->key(XK_m, alt);
        EXPECT_TRUE(said("Created metafile\n"));
        leave();
        ASSERT_EQ(plot(dir, "./" + name + " -de m,device.meta").err, "");
        EXPECT_EQ(metafile(dir, "zyr.meta"), metafile(dir, "device.meta"));
    }
    const std::string plain = read_text(dir.path() + "/zyr.meta");
    EXPECT_GT(count_text(plain, "\nTE "), 5);
    start("./radial", {
                          {"zyrredraw", "NO"        },
                          {"METAOUT",   "empty.meta"}
    });
    user->key(XK_m, alt);
    EXPECT_TRUE(said("gobj_print_meta: No redraw data to make metafile from\n"));
    leave();
    EXPECT_EQ(count_text(read_text(dir.path() + "/empty.meta"), "\n"), 4);
}
