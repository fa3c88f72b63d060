// Strings, lines, byte order, station numbers and the keyed table.
#include "table.h"
#include "tools.h"
#include "zyr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::unique_ptr<std::FILE, Closer> stream_of(std::string& text) {
    return std::unique_ptr<std::FILE, Closer>(fmemopen(text.data(), text.size(), "r"));
}

TEST(Strings, ParseString) {
    struct Row {
        const char* text;
        int result, count;
        const char* joined; // the fields, each with a bar behind it
    };
    const Row rows[] = {
        {"a,b,,", 0,  2, "a|b|" },
        {",a",    0,  2, "|a|"  },
        {"a,,b",  0,  3, "a||b|"},
        {"abc",   0,  1, "abc|" },
        {"",      -1, 0, ""     },
        {",,",    -1, 0, ""     },
        {nullptr, -1, 0, ""     },
    };
    for (const Row& row : rows) {
        int count = 99;
        char** array = nullptr;
        EXPECT_EQ(parse_string(row.text, ',', &count, &array), row.result);
        EXPECT_EQ(array == nullptr, row.result != 0);
        ASSERT_EQ(count, row.count);
        std::string joined;
        for (int i = 0; i < count; ++i) {
            joined += std::string(array[i]) + "|";
        }
        EXPECT_EQ(joined, row.joined);
        free_parsed_array(count, array);
    }
    char a[] = "a";
    char b[] = "b";
    char* words[] = {a, b};
    EXPECT_EQ(searchstr(words, 2, "B"), 1);
    EXPECT_EQ(searchstr(words, 2, "c"), 0);
}

TEST(Strings, CompareWithoutCase) {
    EXPECT_EQ(stricmp("NiDs", "nIdS"), 0);
    EXPECT_LT(stricmp("ab", "ABC"), 0);
    EXPECT_GT(stricmp("b", "A"), 0);
    EXPECT_EQ(stricmp(nullptr, "a"), 1);
    EXPECT_EQ(strnicmp("nids_19", "NIDS", 4), 0);
    EXPECT_EQ(strnicmp("ab", "ab", 9), 0);
    EXPECT_NE(strnicmp("nid", "nids", 4), 0);
    EXPECT_EQ(strnicmp("a", nullptr, 1), 1);
}

TEST(Strings, Clean) {
    struct Row {
        int (*clean)(char*);
        const char *text, *expected;
    };
    const Row rows[] = {
        {wstrim_string,                                    "a\r\nb  \n",   "ab"      },
        {trim_string,                                      " a  ",         " a"      },
        {trim_cr_string,                                   "a\r\r",        "a"       },
        {strip_spaces,                                     "  a   b  ",    " a b"    },
        {strip_escape,                                     "a\\,b\\\\c\\", "a,b\\c"  },
        {up_string,                                        "aZ\xe4-1",     "AZ\xe4-1"},
        {low_string,                                       "Az[1",         "az[1"    },
        {trim_string,                                      "    ",         ""        },
        {[](char* t) { return fill_string(t, '_', ' '); }, "_a__",         " a  "    },
        {[](char* t) { return strip_string(t, 'x'); },     "xaxbx",        "ab"      },
    };
    for (const Row& row : rows) {
        std::string text = row.text;
        row.clean(text.data());
        EXPECT_STREQ(text.c_str(), row.expected) << row.text;
    }
}

TEST(Strings, Tests) {
    struct Row {
        const char* text;
        int num, alpha, blank, is_float;
    };
    const Row rows[] = {
        {"12",    1, 0, 0, 0},
        {"-12",   1, 0, 0, 0},
        {"-",     0, 0, 0, 0},
        {"",      0, 0, 1, 0},
        {"1.5",   0, 0, 0, 1},
        {"aB",    0, 1, 0, 0},
        {" \t\r", 0, 0, 1, 0},
        {"1E5",   0, 0, 0, 1},
        {"+1",    0, 0, 0, 0},
        {nullptr, 0, 0, 1, 0},
        {"\xe4",  0, 0, 0, 0},
    };
    for (const Row& row : rows) {
        const char* note = row.text == nullptr ? "null" : row.text;
        EXPECT_EQ(string_is_num(row.text), row.num) << note;
        EXPECT_EQ(string_is_alpha(row.text), row.alpha) << note;
        EXPECT_EQ(string_is_blank(row.text), row.blank) << note;
        EXPECT_EQ(string_is_float(row.text), row.is_float) << note;
    }
}

TEST(Strings, ContourLabels) {
    struct Row {
        const char* format;
        float value;
        const char* expected;
    };
    const Row rows[] = {
        {"2.2.0",  35.0F,  "35"       },
        {"2.2.0",  0.0F,   " 0"       },
        {"2.2.0",  0.25F,  "0.25"     },
        {"2.2.0",  -30.0F, "-30"      },
        {"2.2.0",  1e-6F,  " 0"       },
        {"5.3.1",  12.34F, " 12.3"    },
        {"0.3.0",  1.5F,   "1.50"     },
        {"12.2.0", 7.0F,   "      7.0"},
        {"2.2.0",  0.01F,  "0.010"    },
        {"1.1.0",  250.0F, "250"      },
        {"",       5.0F,   "5"        },
    };
    for (const Row& row : rows) {
        char buffer[40];
        set_num(buffer, row.format, row.value);
        EXPECT_STREQ(buffer, row.expected) << row.format << ' ' << row.value;
    }
    char buffer[40];
    set_num(buffer, "9.999999999.99", 3e38F); // no format can overrun the buffer
    EXPECT_EQ(std::strlen(buffer), 39U);
    set_num(buffer, "2.2.0", -INFINITY);
    EXPECT_STREQ(buffer, "-inf");
}

TEST(Strings, BoundedCopy) {
    char out[4] = "zzz";
    EXPECT_EQ(copy_text(out, sizeof out, "abc"), 0);
    EXPECT_EQ(copy_text(out, sizeof out, "abcd"), -1);
    EXPECT_STREQ(out, "abc");
    EXPECT_EQ(copy_text(out, sizeof out, out + 1), 0);
    EXPECT_STREQ(out, "bc");
    EXPECT_EQ(copy_text(out, 0, "x"), -1);
    EXPECT_EQ(copy_text(out, sizeof out, nullptr), 0);
    EXPECT_STREQ(out, "");
}

TEST(Lines, LongEmptyAndLast) {
    std::string text = "first\n\n" + std::string(300, 'x') + "\nrest of it\nlast";
    const auto file = stream_of(text);
    char line[line_length + 1];
    EXPECT_EQ(fgetline(file.get(), line), 5);
    EXPECT_STREQ(line, "first");
    EXPECT_EQ(fgetstring(file.get(), line, 10), 0);
    EXPECT_STREQ(line, "");
    EXPECT_EQ(fgetline(file.get(), line), line_length); // the rest of the line is passed over
    EXPECT_EQ(std::getc(file.get()), 'r');
    EXPECT_EQ(fskipline(file.get()), 0);
    EXPECT_EQ(fgetnline(file.get(), line, 3), 3);
    EXPECT_STREQ(line, "las");
    EXPECT_EQ(fgetstring(file.get(), line, 10), -1);
    EXPECT_STREQ(line, "");
    EXPECT_EQ(fskipline(file.get()), -1);
}

TEST(Lines, Integers) {
    struct Row {
        const char* text;
        int width, found, value;
        const char* rest;
    };
    const Row rows[] = {
        {" 12x",         any_width, 1, 12,              "x"  },
        {"-12",          2,         1, -1,              "2"  },
        {"+7",           9,         1, 7,               ""   },
        {"- 7",          9,         0, 77,              "- 7"},
        {"x",            9,         0, 77,              "x"  },
        {"-",            1,         0, 77,              "-"  },
        {"99999999999",  any_width, 1, 2147483647,      ""   },
        {"-99999999999", any_width, 1, -2147483647 - 1, ""   },
    };
    for (const Row& row : rows) {
        const char* at = row.text;
        int value = 77;
        EXPECT_EQ(scan_int(&at, row.width, &value), row.found) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
        EXPECT_STREQ(at, row.rest) << row.text;
    }
}

TEST(Bytes, OrderOfTheFile) {
    std::uint32_t word = 0x01020304;
    std::uint16_t halves[2] = {0x0102, 0x0304};
    const bool little = *static_cast<unsigned char*>(static_cast<void*>(&word)) == 4;
    EXPECT_EQ(swap_setup(little ? 2 : 1), 0);
    EXPECT_EQ(swap_long(&word), -1);
    EXPECT_EQ(word, 0x01020304U);
    EXPECT_EQ(swap_setup(-1), 0);
    EXPECT_EQ(swap_setup(0), 1);
    EXPECT_EQ(swap_setup(little ? 1 : 2), 1);
    EXPECT_EQ(swap_longs(&word, 1), 0);
    EXPECT_EQ(word, 0x04030201U);
    EXPECT_EQ(swap_shorts(halves, 2), 0);
    EXPECT_EQ(halves[1], 0x0403);
    swap_setup(1);
    std::string bytes("\0\0\1\2\1\2\7", 7);
    const auto file = stream_of(bytes);
    EXPECT_EQ(fread_long_swap(&word, file.get()), 1);
    EXPECT_EQ(word, 258U);
    EXPECT_EQ(fread_short_swap(halves, file.get()), 1);
    EXPECT_EQ(halves[0], 258);
    EXPECT_EQ(fread_short_swap(halves, file.get()), 0);
}

TEST(Numbers, PackedFloats) {
    struct Row {
        float value;
        int code;
    };
    const Row rows[] = {
        {0,       0   },
        {1,       10  },
        {-1,      -10 },
        {25.4F,   125 },
        {0.7F,    970 },
        {99.7F,   210 },
        {12e5F,   612 },
        {-0.025F, -825}
    };
    for (const Row& row : rows) {
        EXPECT_EQ(float2int(row.value), row.code) << row.value;
    }
    EXPECT_FLOAT_EQ(linear_interp(3, 1, 5, 10, 20), 15);
    EXPECT_FLOAT_EQ(linear_interp(3, 1, 1, 10, 20), 10);
    EXPECT_NEAR(calc_earth_dist(0, 179, 0, -179), 222.4, 0.1);
    EXPECT_NEAR(calc_earth_dist(90, 0, -90, 77), 20015.8, 1);
}

TEST(Numbers, StationIdentifiers) {
    struct Row {
        int number;
        const char* id;
        int back; // what the identifier reads as
    };
    const Row rows[] = {
        {1001,  "EN001", 1001 },
        {2699,  "ES699", 2699 },
        {3949,  "EG949", 3949 },
        {3950,  "EI950", 3950 },
        {98328, "RP328", 98328},
        {97180, "WA180", 97180},
        {72365, "K2365", 72365},
        {71801, "C1801", 71801},
        {99999, "99999", 99999},
        {5000,  "05000", 5000 },
        {0,     "00000", 0    },
    };
    for (const Row& row : rows) {
        char id[12];
        EXPECT_STREQ(wmo_to_id(id, row.number), row.id);
        int number = 0;
        EXPECT_EQ(id_to_wmo(row.id, &number), row.back == 99999 ? 0 : 1) << row.id;
        EXPECT_EQ(number, row.back) << row.id;
    }
    for (const char* none : {"KTLX", "QQ123", "EN0011", "E-123", "", "K23a5"}) {
        int number = 0;
        EXPECT_EQ(id_to_wmo(none, &number), 0) << none;
        EXPECT_EQ(number, -1) << none;
    }
}

TEST(Table, KeysOrderAndDuplicates) {
    TAB_table table;
    ASSERT_EQ(TAB_create(&table, 3, sizeof(int), 2), 0); // three buckets: chains in each
    EXPECT_EQ(TAB_key(&table, ""), 0);
    EXPECT_EQ(TAB_key(&table, "ab"), (97 * 257 + 98) % 35177 % 3);
    EXPECT_GE(TAB_key(&table, "\x80\xff"), 0);
    EXPECT_EQ(TAB_first(&table), nullptr);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(TAB_enter(&table, &i, std::to_string(i % 10).c_str(), i < 5 ? "few" : "many"), 0);
    }
    EXPECT_EQ(table.num_entry, 20);
    const auto value = [](void* data) { return data == nullptr ? -1 : *static_cast<int*>(data); };
    EXPECT_EQ(value(TAB_search(&table, 1, "7")), 7);
    EXPECT_EQ(value(TAB_search(&table, 2, "many")), 5);
    EXPECT_EQ(TAB_search(&table, 1, "many"), nullptr);
    EXPECT_EQ(TAB_search(&table, 3, "7"), nullptr);
    EXPECT_EQ(TAB_search(&table, 0, "7"), nullptr);
    EXPECT_EQ(TAB_search(nullptr, 1, "7"), nullptr);
    void* found[4] = {};
    EXPECT_EQ(TAB_searches(&table, 1, "7", found, 4), 2);
    EXPECT_EQ(value(found[1]), 17);
    EXPECT_EQ(TAB_searches(&table, 2, "many", found, 4), 4);
    int expected = 0;
    for (void* data = TAB_first(&table); data != nullptr; data = TAB_next(&table)) {
        EXPECT_EQ(value(data), expected++);
    }
    EXPECT_EQ(expected, 20);
    TAB_clear(&table);
    EXPECT_EQ(TAB_search(&table, 1, "7"), nullptr);
    EXPECT_EQ(TAB_enter(&table, &expected, "x", "y"), -1);
    EXPECT_EQ(TAB_create(&table, 3, 4, 5), -1);
    EXPECT_EQ(TAB_create(&table, 0, 4, 1), -1);
}

} // namespace
