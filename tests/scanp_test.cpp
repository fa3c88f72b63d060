// The format scanner: every conversion, widths, missing markers, alternatives,
// the cursor, and fields larger than their buffers.
#include "scanp.h"

#include "zyr.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct TextRow {
    const char* format;
    const char* text;
    int matched;
    int len;
    int done;
    const char* stored; // null: nothing is
};

TEST(Scanp, TextFields) {
    const TextRow rows[] = {
        {"%s",                 "KTLX 12",     1, 4,  1, "KTLX"       },
        {"%4s",                "KTLX",        1, 4,  1, "KTLX"       },
        {"%5s",                "KTLX ",       0, 0,  0, nullptr      }, // exactly that wide
        {"%<5s",               "KTLX ",       1, 4,  1, "KTLX"       },
        {"%S",                 "two words\n", 1, 10, 1, "two words\n"},
        {"%3S",                " a b",        1, 3,  1, " a "        },
        {"%N",                 "012a",        1, 3,  1, "012"        },
        {"%N",                 "a012",        0, 0,  0, nullptr      },
        {"%A",                 "Ab1",         1, 2,  1, "Ab"         },
        {"%w",                 " \t\r\nx",    1, 4,  1, " \t\r\n"    },
        {"%W",                 " \t\nx",      1, 2,  1, " \t"        },
        {"%[abc/N]",           "a1cd",        1, 3,  1, "a1c"        },
        {"%[^/A //]",          "12/x",        1, 2,  1, "12"         },
        {"%[/]x]",             "]x[",         1, 2,  1, "]x"         },
        {"%[abc",              "ab",          1, 2,  1, "ab"         }, // the set ends with the format
        {"%(EDITED|UNEDITED)", "UNEDITED ",   1, 8,  1, "UNEDITED"   },
        {"%(A|AB)",            "AB",          1, 1,  1, "A"          }, // the first that fits
        {"%(A|B)",             "C",           0, 0,  0, nullptr      },
        {"%(A|)",              "C",           0, 0,  0, nullptr      }, // an empty one never fits
        {"%<(A|B)x",           "x",           1, 1,  1, nullptr      },
        {"%!-/!(A|B)",         "-/x",         1, 2,  1, ""           },
        {"%!-/!(A|B)",         "-x",          1, 1,  1, ""           },
        {"a %s",               "a \n\tb",     1, 5,  1, "b"          },
        {" %s",                "b",           0, 0,  0, nullptr      }, // a blank wants a blank
        {"%q",                 "b",           0, 0,  0, nullptr      },
        {"%",                  "b",           0, 0,  0, nullptr      },
    };
    for (const TextRow& row : rows) {
        std::string text = row.text;
        char out[80] = "untouched";
        parse_param param;
        scanp_set(&param, text.data());
        EXPECT_EQ(scanp(&param, row.format, out), row.matched) << row.format << ':' << row.text;
        EXPECT_EQ(param.len, row.len) << row.format << ':' << row.text;
        EXPECT_EQ(param.done, row.done) << row.format << ':' << row.text;
        EXPECT_STREQ(out, row.stored == nullptr ? "untouched" : row.stored) << row.format;
        EXPECT_EQ(param.assigned, row.stored == nullptr ? 0 : 1) << row.format;
    }
}

struct NumberRow {
    const char* format;
    const char* text;
    int matched;
    int len;
    float value; // what the argument holds, 77 if nothing was stored
};

TEST(Scanp, Numbers) {
    const NumberRow rows[] = {
        {"%d",       "-12x",        1, 3,  -12          },
        {"%d",       "-",           0, 0,  77           },
        {"%3d",      "12",          0, 0,  77           },
        {"%<3d",     "1234",        1, 3,  123          },
        {"%2d",      "1234",        1, 2,  12           },
        {"%4D",      "  12",        1, 4,  12           },
        {"%4D",      "12  x",       1, 4,  12           },
        {"%4D",      "12x",         0, 0,  77           },
        {"%4D",      "    ",        0, 0,  77           },
        {"%!M!d",    "M",           1, 1,  -9999        },
        {"%!M!d",    "x",           0, 0,  77           },
        {"%2!MMM!d", "MMM",         1, 2,  -9999        }, // compared up to the width
        {"%d",       "99999999999", 1, 11, 2147483648.0F},
        {"%f",       "-1.5e2",      1, 6,  -150         },
        {"%f",       "1.5e+",       1, 3,  1.5F         },
        {"%f",       "1..5",        1, 2,  1            },
        {"%f",       ".5",          1, 2,  0.5F         },
        {"%f",       "-.",          0, 0,  77           },
        {"%!-!f",    "- 3",         1, 1,  -9999        },
        {"%!-!f",    "-3",          1, 2,  -3           },
        {"%6F",      " 1.25 ",      1, 6,  1.25F        },
        {"%3f",      "1.25",        1, 3,  1.2F         },
    };
    for (const NumberRow& row : rows) {
        std::string text = row.text;
        const std::string kind = row.format;
        parse_param param;
        scanp_set(&param, text.data());
        int integer = 77;
        float number = 77;
        const bool is_int = kind.back() == 'd' || kind.back() == 'D';
        const int matched =
            is_int ? scanp(&param, row.format, &integer) : scanp(&param, row.format, &number);
        EXPECT_EQ(matched, row.matched) << row.format << ':' << row.text;
        EXPECT_EQ(param.len, row.len) << row.format << ':' << row.text;
        EXPECT_EQ(is_int ? static_cast<float>(integer) : number, row.value) << row.format;
    }
}

TEST(Scanp, SkippedAndMissingItemsKeepTheArgumentsInStep) {
    std::string text = "1 2 KTLX x7";
    parse_param param;
    scanp_set(&param, text.data());
    int a = 0;
    int b = 0;
    int offset = 0;
    char id[80];
    char none[80] = "kept";
    // The second number finds no marker, the alternatives find nothing.
    EXPECT_EQ(scanp(&param, "%*d %d %!M!d%4s %<(q|r)x%n%d", &a, &b, id, none, &offset, &b), 6);
    EXPECT_EQ(a, 2);
    EXPECT_STREQ(id, "KTLX");
    EXPECT_STREQ(none, "kept");
    EXPECT_EQ(offset, 10);
    EXPECT_EQ(b, 7);
    EXPECT_EQ(param.assigned, 4);
}

TEST(Scanp, CursorMovesOnlyByHand) {
    std::string text = "/NEXRAA 042 99";
    parse_param param;
    scanp_set(&param, text.data());
    EXPECT_EQ(scanp(&param, "%*(/NEXRAA) "), 1);
    EXPECT_EQ(param.off, 0);
    EXPECT_EQ(scanp_inc(&param), 8);
    EXPECT_STREQ(scanp_str(&param), "042 99");
    EXPECT_EQ(scanp_char(&param, 1), '4');
    EXPECT_EQ(scanp_char(&param, 99), '\0');
    EXPECT_EQ(scanp_char(&param, -99), '\0');
    EXPECT_EQ(scanp_replace(&param, '9', '8'), 2);
    EXPECT_EQ(text, "/NEXRAA 042 88");
    char mark[2] = {'?', '?'};
    EXPECT_EQ(scanp(&param, "%c", mark), 1); // one character, no terminator
    EXPECT_EQ(std::string(mark, 2), "0?");
    EXPECT_EQ(scanp_inc_off(&param, 2147483647), 14); // never beyond the text
    EXPECT_EQ(scanp(&param, "%n", nullptr), -1);
    EXPECT_EQ(param.done, 0);
    EXPECT_EQ(scanp_off(&param, -5), 0);
    EXPECT_EQ(scanp(&param, ""), -1);
    int n = 7;
    EXPECT_EQ(scanp(&param, "%n", &n), 1);
    EXPECT_EQ(n, 0);
}

TEST(Scanp, FieldsStayInsideTheirBuffer) {
    std::string word(200, 'x');
    for (const char* format : {"%s", "%<79s", "%S", "%150s", "%<150A", "%[x]"}) {
        parse_param param;
        scanp_set(&param, word.data());
        char out[80];
        EXPECT_EQ(scanp(&param, format, out), 1) << format;
        EXPECT_EQ(std::string(out), std::string(79, 'x')) << format;
        EXPECT_EQ(param.len, 79) << format;
    }
    parse_param param;
    scanp_set(&param, word.data());
    EXPECT_EQ(scanp(&param, "%*s"), 1); // passed over, it may be longer
    EXPECT_EQ(param.len, 200);
}

} // namespace
