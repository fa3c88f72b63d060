// Storms on the map: which are plotted and how, the pages themselves, the frame
// after, and the place of every storm of the real products.
#include "nids_page.h"
#include "ps_ink.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

class NidsStorms : public RadarPlot {
protected:
    NidsStorms() : RadarPlot(nids_samples()) {}
};

// The texts of the storms of a page, in order.
std::string storm_texts(const std::string& page) {
    std::string out;
    const std::size_t from = std::min(page.find("%%Message: NIDS Extra"), page.size());
    std::istringstream in(page.substr(from, page.find("%%Message: Labels") - from));
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line.starts_with("%%TE:") ? line.substr(5) : "");
        std::string x;
        std::string y;
        std::string text;
        if (words >> x >> y && std::getline(words >> std::ws, text)) {
            out += (out.empty() ? "" : " ") + text;
        }
    }
    return out;
}

} // namespace

TEST_F(NidsStorms, GoldenPages) {
    for (const auto& [golden, options] : {
             std::pair("nids_storms", "./storms -va comp,track"),
             {"nids_table",  "./storms -va table"},
             {"nids_tracks", "./tracks"          }
    }) {
        expect_golden(
            nids_page(dir, std::string(options) +
                               " -dr data -pp nobar,site -pd merc,35.3,-97.3,41,31,.1,.1"),
            golden);
    }
}

TEST_F(NidsStorms, WhatIsPlotted) {
    struct Row {
        const char* args;
        const char* texts;
        int warnings; // that nothing is drawn
    };
    const Row rows[] = {
        {"./storms",                               "",                             0},
        {"./storms -va comp",                      "K3 38 P1 30 W8 22",            0},
        {"./storms -va COMP -pp numplt=1",         "K3 38",                        0},
        {"./storms -va comp -pp strong",           "K3 38 P1 30",                  0},
        {"./storms -va comp -pp strong,numplt=3",  "K3 38 P1 30 W8 22",            0},
        {"./storms -va comp -dr sum",              "",                             0},
        {"./storms -va id,top::value:fm=%1.0f",    "K3 38 P1 30 W8 22",            0},
        {"./storms -va tvs,meso-x::text",          "1 MESO MESO",                  0},
        {"./storms -va posh,poh::text",            "80 * 50 *",                    0},
        {"./storms -va hsize::value:fm=%4.2f,vil", "1.75 55 0.25 31 8",            0},
        {"./storms -va dbzm,dbzht,dir,spd",        "62 13 245 31 51 9 44 8 230 9", 0},
        {"./storms -va nothing",                   "",                             0},
        {"./tracks",                               "K3 P1",                        0},
        {"./tracks -va id",                        "K3 P1",                        0},
        {"./tracks -va watch",                     "",                             1},
        {"./tracks -dr sum",                       "",                             1},
    };
    for (const Row& row : rows) {
        const NidsPage page = nids_page(dir, std::string("-me warn -pp nobar ") + row.args);
        EXPECT_EQ(page.run.code, 0) << row.args << page.run.err;
        EXPECT_EQ(storm_texts(page.text), row.texts) << row.args;
        EXPECT_EQ(count_text(page.run.err, "Nothing of this product is drawn"), row.warnings)
            << row.args << page.run.err;
    }
}

TEST_F(NidsStorms, FrameAfterHasItsOwnBarAndColours) {
    const auto last_frame = [&](const std::string& files) {
        const std::string page =
            nids_page(dir, "-dr sum,data -va comp,top -pd merc,35.3,-97.3,41,31,.1,.1 " + files)
                .text;
        return ps_ink(page.substr(page.rfind("%%Message: NIDS Sum")));
    };
    const auto alone = last_frame("./radial");
    EXPECT_GT(alone.size(), 56U);
    EXPECT_EQ(last_frame("./storms ./radial"), alone);
}
