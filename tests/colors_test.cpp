// Colour table and attribute language.

#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace {

std::array<float, 3> rgb(int ind) {
    std::array<float, 3> c{};
    CLR_get_rgb(ind, &c[0], &c[1], &c[2]);
    return c;
}

int read_table(const std::string& text) {
    const TempDir dir;
    CLR_read_table(dir.write("table.clr", text).c_str());
    return CLR_get_num();
}

// All fields, for comparing.
auto fields(const Gattribs& a) {
    return std::tuple(a.color, a.width, a.height, a.expan, a.style, a.fill_pat, a.font);
}

const std::array<float, 3> red = {1.0F, 0.0F, 0.0F};

} // namespace

TEST(ColorTable, LineForms) {
    const std::string long_line = "# " + std::string(98, '-') + "\n" + std::string(120, '#') + "\n";
    struct Case {
        std::string text;
        int count;
        const char* name;
        int ind;
        std::array<float, 3> color;
    };
    for (const Case& c : {
             Case{"Red 1 0 0\nblue 0 0 1\n",                   2,   "RED",  0,  red      },
             Case{"  red #ff0000  \r\n",                       1,   "red",  0,  red      },
             Case{"20 red 1 0 0\nnavy #0000FF\n",              22,  "navy", 21, {0, 0, 1}},
             Case{"  # comment\nred 1 0 0\n\nsea 0 0 1\n",     3,   "sea",  2,  {0, 0, 1}},
             Case{"red 1 0 0\n# one slot more\n",              2,   "red",  0,  red      },
             Case{long_line + "red 1 0 0\n",                   1,   "red",  0,  red      },
             Case{"red 2 -1 nan\n",                            1,   "red",  0,  {1, 0, 0}}, // held in range, as far as it scans
  // A number outside the table counts for the lines after it, and for the size.
             Case{"300 far 1 0 0\nout 0 1 0\n12 deep 1 0 0\n", 256, "deep", 12, red      },
             Case{"300 far 1 0 0\nout 0 1 0\n",                256, "out",  -1, {}       },
             Case{"-4 low 1 0 0\n",                            1,   "low",  -1, {}       },
             Case{"99999999999999999999 x 1 1 1\n",            1,   "x",    -1, {0, 0, 0}},
    }) {
        CLR_clear_table();
        EXPECT_EQ(read_table(c.text), c.count) << c.text;
        EXPECT_EQ(CLR_get_ind(c.name), c.ind) << c.text;
        if (c.ind >= 0) {
            EXPECT_EQ(rgb(c.ind), c.color) << c.text;
        }
    }
}

TEST(ColorTable, ListsAndFillCount) {
    const TempDir dir;
    const std::string a = dir.write("a", "red 1 0 0\ngreen 0 1 0\n END \r\nblack 0 0 0\n");
    const std::string b = dir.write("b", "END\nsky .5 .7 1\nEND\n");
    RES_put("color_table", (a + ",,missing.clr," + b).c_str());
    CLR_read_table(nullptr);
    EXPECT_EQ(CLR_get_num(), 5) << "the END after the last entry counts";
    EXPECT_EQ(CLR_get_num_fill(), 2) << "of the first file alone";
    EXPECT_EQ(CLR_get_ind("sky"), 3);
    CLR_read_table(a.c_str());
    EXPECT_EQ(CLR_get_num(), 3);
    CLR_read_table("missing.clr");
    EXPECT_EQ(CLR_get_num(), 3) << "a missing table changes nothing";
}

TEST(ColorNames, LookUp) {
    CLR_clear_table();
    EXPECT_EQ(CLR_get_ind("3"), 3) << "a number needs no table";
    EXPECT_EQ(read_table("blue 0 0 1\n3 lime 0 1 0\n"), 4);
    // A numeric name takes a slot at the first look-up, the same one at the second.
    std::string found;
    for (const char* name : {"END", "None", "PBlk", "Lime", "#12345", "#GG0000", "99999999999",
                             "#ff0000", "#FF0000", "#255000000", "#255  0  0"})
        found += std::to_string(CLR_get_ind(name)) + " ";
    EXPECT_EQ(found, "-2 -1 500 3 -1 -1 2147483647 4 4 5 6 ");
    EXPECT_EQ(rgb(4), red);
    EXPECT_EQ(rgb(5), red);
    EXPECT_EQ(rgb(6), red) << "blanks count as zeros";
    EXPECT_STREQ(CLR_get_name(5), "#255000000");
    while (CLR_get_num() < 256)
        CLR_add("filler", 0.5F, 0.5F, 0.5F);
    EXPECT_EQ(CLR_add("one too many", 0, 0, 0), -1);
    EXPECT_STREQ(CLR_get_name(1000), "filler");
}

TEST(Attributes, Language) {
    read_table("blue 0 0 1\nred 1 0 0\n");
    struct Case {
        const char* text;
        Gattribs want;
    };
    constexpr int no = missing;
    constexpr float nof = missing_f;
    for (const Case& c : {
             Case{"red:wi=2:st=dsh",             {1, 2, nof, nof, 2, no, no}   },
             Case{":wi=2",                       {no, 2, nof, nof, no, no, no} },
             Case{"CO=blue:FI=hat:HI=1.5:TE=.5", {0, nof, 1.5F, .5F, no, 9, no}},
             Case{"7:fp=30%:sc=2:ST=LSDSH:fo=4", {7, nof, 2, nof, 3, 30, 4}    },
             Case{"blue:w3:s4:t5:f6:h7:e8",      {0, 3, 7, 8, 4, 6, 5}         },
             Case{"blue:f6:fM:W3:zz=1:?",        {0, nof, nof, nof, no, no, no}},
             Case{"red::st=7:wi=nan",            {1, 0, nof, nof, 7, no, no}   },
    }) {
        Gattribs got;
        ATTRIB_parse(c.text, &got);
        EXPECT_EQ(fields(got), fields(c.want)) << c.text;
    }
}

TEST(Attributes, ResourceOverDefault) {
    read_table("blue 0 0 1\nred 1 0 0\n");
    Gattribs attrib;
    EXPECT_EQ(ATTRIB_get("color_map", "red:w2", &attrib), 0);
    RES_put("color_map", "blue");
    EXPECT_EQ(ATTRIB_get("color_map", "red:w2:s3", &attrib), 1);
    Gattribs more;
    more.width = 5;
    ATTRIB_update(&attrib, &more);
    EXPECT_EQ(fields(attrib), fields({0, 5, missing_f, missing_f, 3, missing, missing}));
}

TEST(Attributes, PatternAndMarkerWords) {
    std::string patterns, markers;
    for (const char* word : {"SOL", "ost", "\\\\", "xx", "0%", "9%", "12", "other"})
        patterns += std::to_string(ATTR_parse_fill_pat(word)) + " ";
    EXPECT_EQ(patterns, "0 2 6 9 10 19 12 0 ");
    for (const char* word : {"Pnt", "*", "open", "X", "itri", "dot", "12", ""})
        markers += std::to_string(ATTR_parse_marker(word)) + " ";
    EXPECT_EQ(markers, "1 3 4 5 9 8 12 0 ");
}
