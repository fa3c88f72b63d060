// A raw file laid over a plot, on every device, and under one.
#include "nids_page.h"
#include "plot_window.h"
#include "ps_ink.h"

namespace {

// An item of each type about the radar of the samples.
constexpr const char* items = "ZYRRAW\n1800Z 02 JAN 26\n!Items\n"
                              "id lat lon data value text mark cloud wbarb cbarb dbarb vbarb track "
                              "wx line end\n"
                              "$\n"
                              "A 35.3 -97.3 7:ul %:text 1.5,2:%z3.1f:ur star:mark:co=red 4:cloud "
                              "270,65:wbarb 0,0:cbarb:xy=5,0 180,15:dbarb:xy=-5,0 90,20:vbarb "
                              "240,30:track:co=blue 61:wx:sf=wx.smb:lc post:line -\n"
                              "B 35.8 -96.9 -:text 35.5,-97.5:line\n";

} // namespace

class RawPage : public RadarPlot {
protected:
    RawPage() : RadarPlot(nids_samples()) { dir.write("items.raw", items); }
    const std::string rows = "-pd ps,35.3,-97.3,41,31,.05,.05 -dr data,map -pp pscolor,nobar ";
};

TEST_F(RawPage, EveryItemType) {
    expect_golden(nids_page(dir, rows + "-mf rf:./items.raw ./precip"), "raw_items");
}

// The plot model that the data tree brings, about one station.
TEST_F(RawPage, StationModel) {
    const std::string model = read_text(ZYR_SOURCE_DIR "/etc/stations.raw");
    dir.write("one.raw", model.substr(0, model.find("$\n") + 2) +
                             "OKC 35.3 -97.3 6 310,65 -12 -15 052 -18 7 TSRA 12 3 7 9 KOKC\n");
    const NidsPage page = nids_page(dir, rows + "-mf rf:./one.raw ./precip");
    expect_golden(page, "raw_station");
}

// Width, expansion and font of one item are not those of the next.
TEST_F(RawPage, AnItemsLookIsItsOwn) {
    const auto second = [&](const std::string& first) {
        dir.write("two.raw", "ZYRRAW\n1800Z 02 JAN 26\n!Items\nid lat lon a b\n$\nA 35.3 -97.3 " +
                                 first + " LOW:xy=0,4\n");
        const std::string page = nids_page(dir, rows + "-mf rf:./two.raw ./precip").text;
        return page.substr(page.find(" LOW\n"));
    };
    std::string after = second("BIG:wi=6:te=2:fo=2");
    const std::string width = "1.0 dot lw\n";
    ASSERT_NE(after.find(width), std::string::npos);
    EXPECT_EQ(after.erase(after.find(width), width.size()), second("BIG"));
}

// A metafile of the overlay plays to the figures of the page itself.
TEST_F(RawPage, Metafile) {
    const std::string overlay = rows + "-mf rf:./items.raw ./precip";
    EXPECT_EQ(nids_page(dir, overlay + " -ge 1389x1112 -de p,plot.ps").run.err, "");
    EXPECT_EQ(nids_page(dir, overlay + " -de m,plot.meta").run.err, "");
    EXPECT_EQ(
        nids_page(dir, rows + "-ge 1389x1112 -de p,played.ps -dr map -mf mf:plot.meta ./precip")
            .run.err,
        "");
    const auto expected = ps_ink(read("plot.ps"));
    EXPECT_GT(expected.size(), 40U);
    EXPECT_EQ(ps_ink(read("played.ps")).size(), expected.size());
}

// A plotter's page draws the overlay too: pen moves of its lines and letters.
TEST_F(RawPage, Hpgl) {
    const auto moves = [&](const std::string& overlay) {
        EXPECT_EQ(nids_page(dir, rows + overlay + " -de h,plot.hpgl ./precip").run.err, "");
        return count_text(read("plot.hpgl"), "PD") + count_text(read("plot.hpgl"), "LB");
    };
    EXPECT_GT(moves("-mf rf:./items.raw"), moves("-mf lalo:90") + 40);
}

// Under the data the overlay changes no grey of them, and its bar is the same.
TEST_F(RawPage, AnOverlayUnderTheDataChangesNone) {
    const auto data = [](const std::string& page) {
        const std::size_t begin = page.find("NIDS Sum");
        return page.substr(begin, page.find("%%Message: Map", begin) - begin);
    };
    for (const char* sample : {"radial", "digital", "raster"}) {
        const std::string args = std::string("-dr data,map,sum,text ./") + sample + " -mf ";
        const NidsPage plain = nids_page(dir, args + "lalo:10");
        const NidsPage under = nids_page(dir, args + "lalo:10,-rf:./items.raw");
        EXPECT_NE(golden_text(plain.text), golden_text(under.text)) << sample;
        EXPECT_TRUE(data(plain.text) == data(under.text)) << sample;
        EXPECT_GT(data(plain.text).size(), 100U) << sample;
    }
}

class RawWindow : public PlotWindow {};

TEST_F(RawWindow, ShowsTheOverlay) {
    dir.write("items.raw", items);
    write("a", disc_product(4));
    const std::string args = "./a -pp nobar -pd ps,35.3,-97.3,41,31,.05,.05 -mf ";
    const Picture plain = picture_of(args + "zyr.map:none");
    const Picture over = picture_of(args + "zyr.map:none,rf:" + dir.path() + "/items.raw");
    EXPECT_GE(over.colors(), plain.colors() + 2);
    EXPECT_GT(pixels_that_differ(plain, over), 300);
}
