// The NIDS plotter on small made products: whole pages against golden files,
// figure counts, the text grid file, redraws, colours and the location readout.
//
// `cmake --build --preset release --target update-golden` writes the golden
// files anew (tests/data/golden); look at the rendered pages before committing.
#include "nids_plt.h"

#include "nids.h"
#include "nids_draw.h"
#include "nids_page.h"
#include "plot_session.h"

#include "cont.h"
#include "files.h"
#include "maptran.h"
#include "rad_fill.h"
#include "zyrgks.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

namespace {

class NidsPlot : public RadarPlot {
protected:
    NidsPlot() : RadarPlot(nids_samples()) {}
};

} // namespace

TEST_F(NidsPlot, GoldenPages) {
    const std::vector<std::array<const char*, 3>> rows = {
  // golden file, sample, options
        {"nids_radial",   "radial",  "-dr data,sum,bord -pp site,dist=50:100"            },
        {"nids_digital",  "digital", "-dr sum,text"                                      },
        {"nids_raster",   "raster",  "-dr sum -pp nobar"                                 },
        {"nids_precip",   "precip",  "-dr sum -pp nobar -cof=-60:5:8"                    },
        {"nids_wind",     "wind",    "-dr sum"                                           },
        {"nids_symbols",  "symbols", "-dr sum -pp nobar"                                 },
        {"nids_mercator", "radial",  "-dr sum -pp nobar -pd merc,35.3,-97.3,41,31,.1,.13"},
    };
    for (const auto& [golden, sample, options] : rows) {
        expect_golden(nids_page(dir, std::string("./") + sample + " " + options), golden);
    }
}

// A text of the product hangs from its place, which is 30 of 511 rows below the top
// of the view.
TEST_F(NidsPlot, TextsHangFromTheirTops) {
    const NidsPage page = nids_page(dir, "./wind -dr sum");
    std::istringstream lines(page.text.substr(page.text.find(" ALT KFT\n") + 9));
    float top = 0;
    for (std::string line; std::getline(lines, line) && line != "initclip";) {
        float x = 0;
        float y = 0;
        if (std::sscanf(line.c_str(), "%f %f", &x, &y) == 2) {
            top = std::max(top, y);
        }
    }
    EXPECT_NEAR(top, 552 - 30 * 529.0F / 511, 0.5F);
}

// Site and rings look the same after a wide map line.
TEST_F(NidsPlot, RingsForgetTheMapLine) {
    std::string parts[2];
    for (const int width : {3, 6}) {
        const NidsPage page = nids_page(dir, "./radial -pp site,dist=50 -mf zyr.map:red:s3:w" +
                                                 std::to_string(width));
        parts[width / 6] = page.text.substr(page.text.find("NIDS Extra"));
    }
    EXPECT_EQ(parts[0], parts[1]);
}

// No colour: no text, no frame of picture or bar, no mark, no ring. The width of
// `color_cont` is that of the bar's frame.
TEST_F(NidsPlot, WhatHasNoColorIsNotDrawn) {
    const std::string look = "./radial -dr -map -pp site,dist=50 ";
    const auto strokes = [&](const std::string& options) {
        const NidsPage page = nids_page(dir, look + options);
        return count_text(page.text.substr(page.text.find("NIDS Extra")), "stroke\n");
    };
    EXPECT_GT(strokes(""), strokes("-cod none"));
    EXPECT_GT(strokes("-cod none"), 10);
    EXPECT_EQ(strokes("-cod none -cot none"), 0);
    EXPECT_EQ(count_text(nids_page(dir, look).text, "3.0 dot lw"), 0);
    EXPECT_EQ(count_text(nids_page(dir, look + "-coco red:wi=3").text, "3.0 dot lw"), 1);
}

// The radial sample: 15 bins off and 9 at 20 dBZ; 15 and 9; none; 8 and 15. The
// rows of the raster sample: 15 and 5 cells; 3; none; 9; 4.
TEST_F(NidsPlot, FiguresFollowTheOptions) {
    struct Row {
        int figures;
        const char* args;
    };
    const std::vector<Row> rows = {
        {56,        " ./radial"                                },
        {0,         ",clutter ./radial"                        }, // 24 bins lie within the default 25
        {6 + 6 + 5, ",clutter:18 ./radial"                     },
        {56,        ",clutter,noclutter ./radial"              },
        {0,         " ./radial -dr data"                       },
        {0,         " ./radial -pd ps,-35,80,41,31,.1,.1"      }, // elsewhere
        {8 * 4,     " ./digital"                               }, // levels up to 66 lie below 5 dBZ
        {4,         " ./raster"                                }, // pieces of 10 cells, two beside the page
        {36,        " ./raster -pd merc,35.3,-97.3,41,31,.1,.1"}, // a figure a cell
        {56 + 32,   " ./radial ./digital"                      },
        {56,        " ./none ./radial"                         }, // a missing file is left out of a sequence
    };
    for (const Row& row : rows) {
        const std::string args = std::string("-dr sum -pp nobar") + row.args;
        const NidsPage page = nids_page(dir, args);
        EXPECT_EQ(page.run.code, 0) << args << page.run.err;
        EXPECT_EQ(page.figures(), row.figures) << args;
    }
}

// With "fitlab" a long lower right label begins after the last number of the bar.
TEST_F(NidsPlot, LabelAndBarKeepClear) {
    struct Row {
        const char* label;
        const char* word;
        bool clear;
    };
    const std::vector<Row> rows = {
        {"Md=0_Rng=124(0.1)_El=0.5_Mn:Mx=-110:122_of_all",                       "none",   false}, // the label is long
        {"Md=0_Rng=124(0.1)_El=0.5_Mn:Mx=-110:122_of_all",                       "fitlab", true }, // a shorter bar
        {"a_text_of_sixty_eight_characters_that_leaves_hardly_any_room_for_bar", "fitlab", true },
        {"short",                                                                "fitlab", true }
    };
    for (const Row& row : rows) {
        const NidsPage page = nids_page(dir, std::string("-dr sum,text -la lr:") + row.label +
                                                 " -pp " + row.word + " ./digital");
        double number = 0.0; // right end of the bar's numbers, points
        double label = 1e9;  // left end of the label
        double* end = nullptr;
        std::istringstream lines(page.text);
        for (std::string line; std::getline(lines, line);) {
            double x = 0.0;
            double y = 0.0;
            char verb[3] = "";
            if (line.starts_with("%%")) {
                const bool is_label = line.find(std::string(row.label, 2)) != std::string::npos;
                end = !line.starts_with("%%TE:") ? nullptr : is_label ? &label : &number;
            } else if (end != nullptr &&
                       std::sscanf(line.c_str(), "%lf %lf %2s", &x, &y, verb) == 3 && y < 30.0) {
                *end = end == &label ? std::min(label, x) : std::max(number, x);
            }
        }
        EXPECT_GT(number, 100.0) << row.label;
        EXPECT_EQ(label > number, row.clear)
            << row.label << " " << row.word << " " << label << " " << number;
    }
}

TEST_F(NidsPlot, SingleFilesThatDoNotOpenEndTheRun) {
    write("refused", {'R', '3'});
    for (const auto& [name, failure] : {
             std::pair("./none", "open file:./none\n"), {"./refused", "read file:./refused\n"}
    }) {
        const NidsPage page = nids_page(dir, name);
        EXPECT_EQ(page.run.code, 10) << name;
        EXPECT_EQ(count_text(page.run.err, std::string("NIDS_open_file: Unable to ") + failure), 1);
    }
}

// The first product is opened before the session is and drawn in it.
TEST_F(NidsPlot, FirstProductObeysTheSessionAndMayComeOnce) {
    const NidsPage page = nids_page(dir, "-pp tz=-CST:-6,nobar ./radial");
    EXPECT_EQ(count_text(page.text, "4:31 PM CST [2231Z] 20 MAY 19\n"), 1);
    expect_piped(page, "radial", "-pp tz=-CST:-6,nobar", "nids");
}

TEST_F(NidsPlot, WritesTheTextGridFile) {
    EXPECT_EQ(nids_page(dir, "./precip -of zyr:@./grid.txt -dr sum").run.code, 0);
    const std::string grid = read("grid.txt");
    EXPECT_TRUE(grid.starts_with("ZYRGRID\n2231Z 20 MAY 19\nDigital precip array (in)\n"
                                 "PS:-105.000000 35.333000 -97.278000 0.047596 0.047596 2 2\n"))
        << grid.substr(0, 200);
    EXPECT_EQ(count_text(grid, "\n0.002512"), 100) << "level 0: -6 dB, 10^(v / 10) / 100";
    EXPECT_EQ(count_text(grid, "\n-9999.000000"), 31) << "level 255";
    EXPECT_EQ(count_text(grid, "\n0.007943"), 131) << "level 40: -1 dB";
    EXPECT_EQ(count_text(grid, "\n"), 4 + 2 * 131);
}

TEST_F(NidsPlot, ZoomAndRefreshDrawAgain) {
    ASSERT_TRUE(open_plot_session("p," + dir.path() + "/page.ps"));
    setenv("zyrcurtime", "201905202230", 1);
    RES_put("data_path", dir.path().c_str());
    FILE_set_name("@%D/%Y%m%d%h%10n");
    RES_put("filename", dir.write("201905202220", read("radial")).c_str());
    char name[file_name_size];
    FILE_get_file("", name);
    NIDS_set_date(nullptr);
    Domain domain = mercator_domain();

    PLT_set_zoom_func(NIDS_plot); // as the first plot does
    EXPECT_EQ(NIDS_plot(&domain), 0);
    EXPECT_EQ(gchk_graphics(), 1) << "a redraw leaves the session open";
    EXPECT_EQ(PLT_plot_zoom("r-Alt", 0, 0), 0);
    EXPECT_EQ(NIDS_plot_nextfile(), 0) << "the file on show is the newest";
    dir.write("201905202230", read("radial"));
    NIDS_plot_nextfile();
    NIDS_plot_nextfile();
    PLT_close();
    EXPECT_EQ(count_text(read("page.ps"), "NIDS Sum"), 3) << "two plots and one newer file";
}

TEST(NidsColors, FollowTheCodeAndForgetTheFrameBefore) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_conv_data("none", nullptr, CV_mess);
    CLR_read_table(nullptr);
    // Code, then values with the colours wanted.
    const std::vector<const char*> rows = {
        "94 -100 off 5 blue 4.99 off 99 white",
        "48 3 lblue 17 lred 0 lblue",
        "19 5 blue -1 off",
        "27 0.5 off",
        "154 -71 off -70 blue",
        "56 -1 off",
        "134 0 blue",
        "165 140 dgray",
        "161 0 yellow",
        "159 -.9 dgray",
        "172 .01 blue -99.99 off",
        "48 3 lblue",
        "177 60 dgreen",
        "37 -9999 off 5 blue",
    };
    for (const char* row : rows) {
        std::istringstream in(row);
        NIDS_info info;
        in >> info.code;
        for (int i = 0; i < nids_num_thres; ++i) {
            info.thres[i] = i == 0 ? -100.0F : static_cast<float>(5 * i);
        }
        NIDS_set_colors(info);
        EXPECT_EQ(CONT_get_type(), 15);
        RadFills fills;
        std::string color;
        for (float value = 0; in >> value >> color;) {
            const Gattribs* attrib = fills.get(value);
            EXPECT_EQ(attrib == nullptr ? -1 : attrib->color, CLR_get_ind(color.c_str()))
                << row << ": " << value;
        }
    }
}

// "auto" goes by what the label says the product is.
TEST(NidsColors, AutoTakesTheQuantitysLevels) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("color_fill", "auto");
    CLR_read_table(nullptr);
    const std::vector<std::pair<const char*, float>> rows = {
        {"Base velocity (knt)",                 -300.0F}, // label, first level
        {"Stm rel mn rad velocity (knt)",       -300.0F},
        {"Base spectrum width (knt)",           0.0F   },
        {"Digital hyb reflectivity (Dbz)",      5.0F   },
        {"Layer 1 comp refl (max Dbz)",         5.0F   },
        {"Digital diff refl (dBZ)",             -8.0F  },
        {"Digital correl coeff",                0.2F   },
        {"Digital spec diff phase (Deg/km)",    -10.0F },
        {"Hybrid hydro class",                  10.0F  },
        {"Enh Echo tops (1000 ft)",             1.0F   },
        {"Vert int liquid (kg/m^3)",            1.0F   },
        {"Digital storm total diff accum (in)", -50.0F },
        {"1 hr accum",                          0.01F  },
        {"Sfc 24 hr precipitation (in)",        0.01F  },
        {"Mesocyclone detection",               7.0F   }, // of no quantity: its thresholds
    };
    for (const auto& [label, first] : rows) {
        NIDS_info info;
        copy_text(info.info, sizeof info.info, label);
        for (int i = 0; i < 16; ++i) {
            info.thres[i] = static_cast<float>(7 + i);
        }
        NIDS_set_colors(info);
        std::array<float, 256> levels{};
        ASSERT_GT(CONT_get_values(levels.data()), 0) << label;
        EXPECT_EQ(levels[0], first) << label;
    }
    RES_put("color_fill", "");
}

TEST(NidsReadout, DistanceAndBeamHeight) {
    Domain domain;
    RES_conv_data("print", nullptr, CV_mess);
    ASSERT_EQ(DOM_decode("ps:-97,60,-97,11,11,1,1", &domain), 1);
    MAP_domain(&domain);
    float x = 0;
    float y = 0;
    MAP_tran(60, -97, &x, &y);
    EXPECT_EQ(NIDS_print_loc_elev("q", x, y, 60, -97, 0), -1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(NIDS_print_loc_elev("v-Alt", x, y + 1, 60, -97, 0.5F), 0);
    // 100 km at 0.5 degrees: 0.873 km of slope and 0.785 km of curvature.
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Lat:  60.90 Lon: -97.00 Dist:  54.0nm Alt:  5437ft\n");
}
