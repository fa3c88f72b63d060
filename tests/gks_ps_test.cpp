// PostScript workstation: heading, options, page and closing.

#include "gks.h"
#include "ps_page.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

constexpr const char* definitions =
    "/inch {72 mul} def\n/dot {.33 mul} def\n/mv {moveto} def\n/ln {lineto} def\n"
    "/lw {setlinewidth} def\n/np {newpath} def\n/cp {closepath} def\n";

} // namespace

TEST(PostScript, HeadingAndClosing) {
    struct Case {
        const char* options;
        std::string box, turn, color, scale; // `box` of an EPS file
    };
    for (const Case& c : {
             Case{"",               "",            "90 rotate\n.25 inch -8.25 inch translate\n", "0 setgray\n",         ""                 },
             Case{"PORT,sz=8.5x11", "",            ".25 inch .25 inch translate\n",              "0 setgray\n",         ""                 },
             Case{"eps,scale=.5",   "0 0 576 756", "90 rotate\n0. inch -8.50 inch translate\n",
                  "0 setgray\n",                                                                                        "0.50 0.50 scale\n"},
             Case{"eps,port",       "0 0 756 576", "",                                           "0 setgray\n",         ""                 },
             Case{"color",          "",            "90 rotate\n.25 inch -8.25 inch translate\n", "0 0 0 setrgbcolor\n",
                  ""                                                                                                                       },
    }) {
        gps_set_scale(1.0F);
        gps_set_orient(0);
        gps_set_EPS(0);
        gset_win_title("A title");
        PsPage page(c.options);
        const std::string text = page.whole();
        const bool eps = !c.box.empty();
        EXPECT_TRUE(text.starts_with(
            (eps ? "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: " + c.box : "%!PS-Adobe-1.0") +
            "\n%%Title: ZYR Graphics Display: A title\n"
            "%%Creator: ZYR Postscript Processor-2.0\n%%CreationDate: "))
            << text.substr(0, 200);
        EXPECT_EQ(text_between(text, "%%CreationDate", "%%ZYR"),
                  std::string("%%EndComments\n%%Postscript initialization\n") +
                      (eps ? "" : "30 dict begin\n/saveobj save def\n") + definitions + c.turn +
                      c.color + "2 setlinejoin\n1 dot lw\n[] 0 setdash\n" + c.scale +
                      "%%Begin plot\n");
        EXPECT_NE(text.find("%%ZYR Plot: A title\ninitclip\n"), std::string::npos);
        EXPECT_TRUE(text.ends_with(eps ? "%%End of plot\nshowpage\n%%EOF\n"
                                       : "%%End of plot\nsaveobj restore\nshowpage\nend\n%%EOF\n"))
            << c.options;
        EXPECT_EQ(gget_inverse(), gps_get_colorPS());
        gps_set_colorPS(0);
    }
}

TEST(PostScript, AppendsWithAShortHeadingAndNoEnd) {
    gset_win_title("More");
    PsPage page("", true);
    const std::string text = page.whole();
    EXPECT_TRUE(text.starts_with("0 setgray\n1 dot lw\n[] 0 setdash\n%%ZYR Plot: More\n"));
    EXPECT_TRUE(text.ends_with("%%End of plot\n"));
}

TEST(PostScript, PageOptionsAndGeometry) {
    struct Row {
        const char* options;
        const char* env;      // zyrps_param
        const char* geometry; // resource
        std::array<int, 4> area;
        const char* refused;
    };
    for (const Row& row : {
             Row{"",            "",           "",                {756, 576, 0, 0},   ""                                 },
             Row{"A4",          "legal,gray", "",                {805, 558, 0, 0},   ""                                 }, // the connection text wins
             Row{"",            "x,,ansid",   "",                {2412, 1548, 0, 0}, "invalid option: x"                },
             Row{"sz:10.5x8.5", "",           "",                {720, 576, 0, 0},   ""                                 },
             Row{"sz=0.5x-3",   "",           "",                {756, 576, 0, 0},   "invalid option: sz=0.5x-3"        }, // no room
             Row{"small=9",
                 "small=x",                   "",
                 {756, 576, 0, 0},
                 "invalid option: small=x\ngopen_ws: invalid option: small=9"                                           },
             Row{"",            "",           "P2x2+0+0",        {378, 288, 0, 288}, ""                                 },
             Row{"",            "",           "P3x3+0+0",        {252, 192, 0, 384}, ""                                 }, // two thirds, whole
             Row{"",            "",           "p20x1+7+0",       {94, 576, 661, 0},  ""                                 }, // at most 8 columns
             Row{"",            "",           "P0.5x0.25+0.5+0", {378, 144, 378, 0}, ""                                 },
             Row{"",            "",           "800x600-10+20",   {576, 432, -7, 14}, ""                                 },
             Row{"",            "",           "100x50",          {72, 36, 0, 0},     ""                                 },
             Row{"",            "",           "100x50+9",        {756, 576, 0, 0},   ""                                 },
             Row{"",            "",           "+100+50",         {756, 576, 72, 36}, ""                                 },
             Row{"",            "",           "0x9",             {756, 576, 0, 0},   "geometry leaves no room: 0x9"     },
             Row{"",            "",           "9x999999",        {756, 576, 0, 0},   "geometry leaves no room: 9x999999"},
    }) {
        RES_put("geometry", row.geometry);
        setenv("zyrps_param", row.env, 1);
        testing::internal::CaptureStderr();
        ASSERT_EQ(gps_open_ws(("|cat >/dev/null," + std::string(row.options)).c_str()), 0);
        EXPECT_EQ(device_area(), row.area) << row.options << row.env << row.geometry;
        gps_close_file();
        const std::string refused = row.refused;
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  refused.empty() ? "" : "gopen_ws: " + refused + "\n");
    }
}

// What a colour table, a metafile or an attribute may say, and no device takes.
TEST(Printers, NumbersBeyondTheirRangeAreHeld) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Row {
        Gws_type type;
        const char* options;
        const char* line;
        const char* area;
    };
    for (const Row& row : {
             Row{ws_postscript, "gray",  "100000.0 dot lw\n", "\n0.370 setgray\n"             },
             Row{ws_postscript, "color", "100000.0 dot lw\n", "\n0.00 1.00 0.00 setrgbcolor\n"},
             Row{ws_hpgl,       "nopcl", "PW100000.0;\n",     "\nFT10,63;\n"                  },
    }) {
        FilePage page(row.type, row.options);
        const Gcolr_rep rep = {nan, 1e30F, -5.0F};
        EXPECT_EQ(gset_colr_rep(1, 3, &rep), 0);
        Gcolr_rep held{};
        gget_color_rgb(3, &held.red, &held.green, &held.blue);
        EXPECT_TRUE(held.red == 0.0F && held.green == 1.0F && held.blue == 0.0F);
        const std::array<Gpt, 3> corners = {
            {{0, 0}, {1, 0}, {1, 1}}
        };
        gset_linewidth(3e38F);
        gset_line_print_bold(4);
        gpolyline(3, corners.data());
        gset_line_print_bold(1);
        gset_fill_colr_ind(3);
        gfill_area(3, corners.data());
        const std::string text = page.whole();
        EXPECT_NE(text.find(row.line), std::string::npos) << row.options;
        EXPECT_NE(text.find(row.area), std::string::npos) << row.options;
    }
    EXPECT_EQ(gps_set_scale(1e30F), -1);
    gps_set_colorPS(0);
}

TEST(PostScript, NamesAndPipes) {
    const std::string file = temp_name("name.ps");
    setenv("PSPRINT", ("|cat >" + file).c_str(), 1);
    unsetenv("zyrps_print");
    testing::internal::CaptureStdout();
    ASSERT_EQ(gps_open_ws(",eps"), 0); // an empty first field
    EXPECT_EQ(gps_close_file(), 0);
    EXPECT_EQ(gps_close_file(), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Spooling to: cat >" + file + "\nCreated Postscript file\n");
    EXPECT_TRUE(read_text(file).starts_with("%!PS-Adobe-3.0"));
    gps_set_EPS(0);
    ASSERT_EQ(gps_open_ws("|exit 3"), 0); // nobody reads: no signal ends the program
    for (int i = 0; i < 20000; ++i)
        gps_move(0.0F, 0.0F);
    EXPECT_EQ(gps_close_file(), -1);
    std::remove(file.c_str());
}
