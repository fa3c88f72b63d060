// Stroke text: font files, the font list, layout.

#include "gks_font.h"
#include "ps_page.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace {

// Strokes and the places of A, B and C as a font file.
std::string font_text(const std::string& strokes, int a, int b = -1, int c = -1) {
    std::array<int, 256> index{};
    index.fill(-1);
    index['A'] = a;
    index['B'] = b;
    index['C'] = c;
    std::string text = strokes + "\n";
    for (const int place : index)
        text += std::to_string(place) + " ";
    return text;
}

// 'A' a stem of the cell's height, 100 wide; 'B' 33 points; 'C' begins with
// the pen down.
std::string test_font() {
    std::string strokes = "255 128 35 0 140 228 35 255 ";
    for (int i = 0; i < 33; ++i)
        strokes += std::to_string(i == 0 ? 128 : i) + " 35 ";
    return font_text(strokes + "255 5 35 6 35 255 254", 1, 8, 75);
}

// What a text draws on a page where the test font is the only one and a font
// unit is a hundredth of a point.
std::string drawn(const char* text, const std::function<void()>& setup) {
    const std::string path = temp_name("test.fnt");
    write_text(path, test_font());
    RES_put("font_list", path.c_str());
    PsPage page;
    std::remove(path.c_str());
    const Glim window = {0.0F, 57500.0F, 0.0F, 57500.0F};
    gset_win(0, &window);
    gset_char_ht(105.0F);
    setup();
    GPH_printf(10000.0F, 10000.0F, "%s", text);
    return text_between(page.drawn(), "%%TE", "%%");
}

} // namespace

TEST(FontFile, BothLayouts) {
    Gfont font;
    ASSERT_EQ(gparse_font(test_font(), &font), 0);
    EXPECT_EQ(font.width['A'], 100);
    EXPECT_EQ(font.index['Z'], -1);
    EXPECT_EQ(font.width[' '], 40);
    // With labels: the first number is dropped, so offsets count from the data.
    // A y may be any byte.
    const std::string strokes = "0 letterA 128 35 50 255 255 letterB 128 254 255 end 254";
    ASSERT_EQ(gparse_font(font_text(strokes, 0, 5), &font), 0);
    EXPECT_EQ(font.width['A'], 50);
    Gstroke s{};
    int place = font.index['B'];
    EXPECT_TRUE(gnext_stroke(font, &place, &s));
    EXPECT_EQ(s.y, 254);
    EXPECT_FALSE(gnext_stroke(font, &place, &s));
}

TEST(FontFile, DamageGivesNoGlyphs) {
    const std::string good = test_font();
    std::string too_long = "255 ";
    for (int i = 0; i < 7500; ++i)
        too_long += "1 1 ";
    Gfont font;
    for (const std::string& text :
         {std::string(), std::string("255"), std::string("255 254"), good.substr(0, 40),
          good.substr(0, good.size() - 4), "x" + good, std::string("255 300 1 254"),
          font_text(too_long + "255 254", 1)}) {
        EXPECT_EQ(gparse_font(text, &font), -1) << text.substr(0, 40);
        EXPECT_EQ(font.index['A'], -1);
        EXPECT_EQ(font.width[' '], 0);
    }
    // An index outside the data is no glyph.
    ASSERT_EQ(gparse_font(font_text("255 128 35 255 254", 99, -7), &font), 0);
    EXPECT_EQ(font.index['A'], -1);
    EXPECT_EQ(font.index['B'], -1);
}

TEST(FontFile, ShippedFontsHaveTheirLetters) {
    for (const char* name : {"modern", "bold", "roman", "romanb", "italic", "script", "greek"}) {
        Gfont font;
        const std::string path = std::string(ZYR_SOURCE_DIR "/etc/") + name + ".fnt";
        ASSERT_EQ(gparse_font(read_text(path), &font), 0) << name;
        for (const char c :
             std::string("0123456789+-.,:%/ABCDEFGHIJKLMNOPQRSTUVWXabcdefghijklmnopqrstuvwx"))
            EXPECT_GE(font.index[static_cast<unsigned char>(c)], 0) << name << " " << c;
        EXPECT_GT(font.width['i'], 0) << "the closing move gives every letter its room";
        EXPECT_GT(font.width['M'], font.width['i']);
    }
}

TEST(FontList, GivenListFileStopsAtTenFonts) {
    const PsPage page;
    const std::string list = temp_name("list.fnl");
    std::string lines;
    for (int i = 1; i <= 12; ++i)
        lines += "f" + std::to_string(i) + "\n modern.fnt "; // words, not lines
    write_text(list, lines);
    gset_font_list(("fi:" + list).c_str());
    EXPECT_EQ(gsetup_fonts(), 0);
    EXPECT_EQ(gget_font_index("f10"), 10);
    EXPECT_EQ(gget_font_index("f11"), 1);
    const Gfontprec none = {11, GSTROKE_PREC};
    EXPECT_EQ(gset_fontprec(&none), -1);
    std::remove(list.c_str());
}

TEST(Text, StrokesAndFlushes) {
    // Glyph by glyph: the closing move leaves one more path; a blank moves on
    // by 65, a letter without a glyph not at all.
    EXPECT_EQ(drawn("A ZA", [] {}),
              "np\n100.00 100.00 mv\n100.00 101.05 ln\nstroke\nnp\n101.00 100.00 mv\nstroke\n"
              "np\n101.90 100.00 mv\n101.90 101.05 ln\nstroke\nnp\n102.90 100.00 mv\nstroke\n");
    EXPECT_NE(drawn("B", [] {})
                  .find("100.29 100.00 ln\nstroke\nnp\n100.29 100.00 mv\n100.30 100.00 ln\n"),
              std::string::npos)
        << "after 30 points a stroke goes on in a new path";
    EXPECT_EQ(drawn("C", [] {}), "np\n100.05 100.00 mv\n100.06 100.00 ln\nstroke\n");
}

// Where the first stem begins: position 100, 100 plus the offset.
TEST(Text, AlignmentSizeAndRotation) {
    struct Case {
        const char* text;
        Gtext_hor hor;
        Gtext_ver ver;
        void (*setup)();
        const char* start;
    };
    const auto none = [] {};
    const auto fixed = [] { gset_char_space(0.5F); }; // pitch 62.5, the last 50
    const auto large = [] {
        gset_expan(2.0F);
        gset_char_ht(210.0F);
    };
    const auto down = [] { GPH_text_rotate(90.0F); };
    for (const Case& c : {
             Case{"AA", GNORMAL_HOR, GNORMAL_VERT, none,  "100.00 100.00"}, // 125 + 100 units wide
             Case{"AA", GLEFT_HOR,   GBOTTOM_VERT, none,  "100.00 100.35"},
             Case{"AA", GCENTER_HOR, GTOP_VERT,    none,  "98.88 98.75"  },
             Case{"AZ", GRIGHT_HOR,  GHALF_VERT,   none,  "98.75 99.50"  },
             Case{"AA", GRIGHT_HOR,  GBASE_VERT,   fixed, "98.88 100.00" },
             Case{"AA", GRIGHT_HOR,  GBASE_VERT,   large, "91.00 100.00" },
             Case{"AA", GRIGHT_HOR,  GCAP_VERT,    down,  "98.95 102.25" },
    }) {
        const std::string text = drawn(c.text, [&] {
            GPH_text_align(c.hor, c.ver);
            c.setup();
        });
        EXPECT_TRUE(text.starts_with("np\n" + std::string(c.start) + " mv\n")) << text;
    }
}

TEST(Text, AttributesAndComment) {
    RES_put("font_list", "modern.fnt,bold.fnt");
    PsPage page;
    const Gpt at = {0.5F, 0.5F};
    const Gpt nowhere = {0.0F, 0.0F};
    EXPECT_EQ(gset_char_up_vec(&nowhere), -1);
    EXPECT_EQ(gtext(&at, ""), 0);
    Gattribs attrib;
    ATTRIB_parse("502:w2:h3:e2:t2", &attrib);
    GPH_text_attr(&attrib, 0.01F);
    gtext(&at, "a\n%b");
    const std::string text = page.drawn();
    EXPECT_TRUE(text.starts_with("%%TE:0.500000 0.500000 a %b\n8 dot lw\nnp\n")) << text;
}
