// Strings, lines, byte order, station numbers and the keyed table.
#include "table.h"
#include "text_num.h"
#include "tools.h"
#include "zyr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::unique_ptr<std::FILE, Closer> stream_of(std::string& text) {
    return std::unique_ptr<std::FILE, Closer>(fmemopen(text.data(), text.size(), "r"));
}

TEST(Strings, ParseString) {
    // The result and the fields with a bar after each.
    const auto parsed = [](const char* text) {
        int count = 99;
        char** array = nullptr;
        std::string joined = std::to_string(parse_string(text, ',', &count, &array)) + "|";
        for (int i = 0; i < count; ++i) {
            joined += std::string(array[i]) + "|";
        }
        free_parsed_array(count, array);
        return joined;
    };
    EXPECT_EQ(parsed("a,b,,") + parsed(",a") + parsed("a,,b"), "0|a|b|0||a|0|a||b|");
    EXPECT_EQ(parsed("") + parsed(",,") + parsed(nullptr), "-1|-1|-1|");
}

TEST(Strings, CompareWithoutCase) {
    EXPECT_EQ(stricmp("NiDs", "nIdS"), 0);
    EXPECT_EQ(strnicmp("nids_19", "NIDS", 4), 0);
    EXPECT_EQ(stricmp(nullptr, "a"), 1);
    EXPECT_EQ(strnicmp("a", nullptr, 1), 1);
    EXPECT_LT(stricmp("ab", "ABC"), 0);
    EXPECT_NE(strnicmp("nid", "nids", 4), 0);
}

TEST(Strings, CleanAndTest) {
    const auto cleaned = [](auto clean, std::string text, auto... more) {
        clean(text.data(), more...);
        return std::string(text.c_str());
    };
    EXPECT_EQ(cleaned(wstrim_string, "a\r\nb  \n"), "ab");
    EXPECT_EQ(cleaned(trim_string, " a  ") + cleaned(trim_string, "   "), " a");
    EXPECT_EQ(cleaned(strip_spaces, "  a   b  "), " a b");
    EXPECT_EQ(cleaned(strip_escape, "a\\,b\\\\c\\"), "a,b\\c");
    EXPECT_EQ(cleaned(up_string, "aZ\xe4-1"), "AZ\xe4-1");
    // One digit each: number, letters, blank, float.
    const auto tests = [](const char* text) {
        return string_is_num(text) * 1000 + string_is_alpha(text) * 100 +
               string_is_blank(text) * 10 + string_is_float(text);
    };
    EXPECT_EQ(tests("-12"), 1000);
    EXPECT_EQ(tests("-") + tests("+1") + tests("\xe4"), 0);
    EXPECT_EQ(tests("aB"), 100);
    EXPECT_EQ(tests("") + tests(" \t\r") + tests(nullptr), 30);
    EXPECT_EQ(tests("1E5"), 1);
}

TEST(Strings, ContourLabels) {
    const auto label = [](const char* format, float value) {
        char buffer[40];
        set_num(buffer, format, value);
        return std::string(buffer) + ";";
    };
    EXPECT_EQ(label("2.2.0", 35) + label("2.2.0", -30), "35;-30;");
    EXPECT_EQ(label("2.2.0", 0) + label("2.2.0", 1e-6F), " 0; 0;");
    EXPECT_EQ(label("2.2.0", 0.25F) + label("2.2.0", 0.01F), "0.25;0.010;");
    EXPECT_EQ(label("5.3.1", 12.34F) + label("12.2.0", 7), " 12.3;      7.0;"); // at most 9 wide
    EXPECT_EQ(label("1.1.0", 250) + label("", 5) + label("2.2.0", -INFINITY), "250;5;-inf;");
    EXPECT_EQ(label("9.999999999.99", 3e38F).size(), 40U); // no format overruns the buffer
}

TEST(Strings, BoundedCopy) {
    char out[4] = "zzz";
    EXPECT_EQ(copy_text(out, sizeof out, "abcd"), -1);
    EXPECT_STREQ(out, "abc");
    EXPECT_EQ(copy_text(out, sizeof out, out + 1), 0);
    EXPECT_STREQ(out, "bc");
    EXPECT_EQ(copy_text(out, 0, "x"), -1);
    EXPECT_EQ(copy_text(out, sizeof out, nullptr) + out[0], 0);
}

TEST(Lines, LongEmptyAndLast) {
    std::string text = "first\n\n" + std::string(300, 'x') + "\nrest of it\nlast";
    const auto file = stream_of(text);
    char line[line_length + 1];
    const auto read = [&](int result) { return std::to_string(result) + line; };
    EXPECT_EQ(read(fgetline(file.get(), line)), "5first");
    EXPECT_EQ(read(fgetstring(file.get(), line, 10)), "0");
    EXPECT_EQ(fgetline(file.get(), line), line_length); // the rest of the line is passed over
    EXPECT_EQ(std::getc(file.get()), 'r');
    EXPECT_EQ(fskipline(file.get()), 0);
    EXPECT_EQ(read(fgetnline(file.get(), line, 3)), "3las");
    EXPECT_EQ(read(fgetstring(file.get(), line, 10)), "-1");
    EXPECT_EQ(fskipline(file.get()), -1);
}

// What a reader takes of a text, with what is after it; "-" for nothing.
template <typename T, typename Read> std::string taken(const char* text, Read read) {
    T value{};
    const char* at = text;
    std::ostringstream out;
    if (!read(&at, &value)) {
        return at == text ? "-" : "- at " + std::string(at);
    }
    out << value << "|" << at;
    return out.str();
}

template <typename T> bool take_plain_of(const char** at, T* value) {
    std::string_view text = *at;
    const std::size_t before = text.size();
    const bool read = take_plain(&text, value);
    *at += before - text.size();
    return read;
}

bool scan_three(const char** at, int* value) {
    return scan_int(at, 3, value) == 1;
}
bool four_hex(const char** at, int* value) {
    return take_digits(at, 4, 16, value);
}

TEST(Numbers, FormsOfEachReader) {
    struct Row {
        const char* text;
        const char *whole, *plain, *scanned, *hex; // take_int, take_plain, scan_int, take_digits
        const char *real, *single, *plain_real;    // take_real, take_float, take_plain
    };
    // clang-format off
    const Row rows[] = {
        {"12x",         "12|x",         "12|x",  "12|x",      "18|x",     "12|x",        "12|x",      "12|x"},
        {" 7",          "7|",           "-",     "7|",        "-",        "7|",          "7|",        "-"},
        {"+7",          "7|",           "-",     "7|",        "-",        "7|",          "7|",        "-"},
        {"-1234",       "-1234|",       "-1234|", "-12|34",   "-",        "-1234|",      "-1234|",    "-1234|"},
        {"- 7",         "-",            "-",     "-",         "-",        "-",           "-",         "-"},
        {"",            "-",            "-",     "-",         "-",        "-",           "-",         "-"},
        {".5:",         "-",            "-",     "-",         "-",        "0.5|:",       "0.5|:",     "0.5|:"},
        {"2e3",         "2|e3",         "2|e3",  "2|e3",      "739|",     "2000|",       "2000|",     "2000|"},
        {"0x1F",        "0|x1F",        "0|x1F", "0|x1F",     "0|x1F",    "31|",         "31|",       "0|x1F"},
        {"inf",         "-",            "-",     "-",         "-",        "inf|",        "-",         "-"},
        {"nan",         "-",            "-",     "-",         "-",        "nan|",        "-",         "-"},
        {"1e99",        "1|e99",        "1|e99", "1|e99",     "7833|",   "inf|",        "-",         "-"},
        {"99999999999", "2147483647|",  "-",     "999|99999999", "39321|9999999", "1e+11|", "1e+11|", "1e+11|"},
    };
    // clang-format on
    for (const Row& row : rows) {
        const char* text = row.text;
        EXPECT_EQ(taken<int>(text, take_int), row.whole) << text;
        EXPECT_EQ(taken<int>(text, take_plain_of<int>), row.plain) << text;
        EXPECT_EQ(taken<int>(text, scan_three), row.scanned) << text;
        EXPECT_EQ(taken<int>(text, four_hex), row.hex) << text;
        EXPECT_EQ(
            taken<float>(text, [](const char** at, float* out) { return take_real(at, out); }),
            row.real)
            << text;
        EXPECT_EQ(taken<float>(text, take_float), row.single) << text;
        EXPECT_EQ(taken<float>(text, take_plain_of<float>), row.plain_real) << text;
    }
    int value = 0;
    const char* low = "-99999999999";
    EXPECT_TRUE(scan_int(&low, any_width, &value) == 1 && value == -2147483647 - 1);
    EXPECT_TRUE(is_number("-1.5e1") && !is_number("1 ") && !is_number("") && !is_number("inf"));
    long address = 0;
    const char* hex = "0x2a:";
    EXPECT_TRUE(take_long(&hex, &address, 16) && address == 42 && *hex == ':');
}

TEST(Bytes, OrderOfTheFile) {
    std::uint32_t word = 0x01020304;
    std::uint16_t halves[2] = {0x0102, 0x0304};
    const bool little = *static_cast<unsigned char*>(static_cast<void*>(&word)) == 4;
    EXPECT_EQ(swap_setup(little ? 2 : 1), 0);
    EXPECT_EQ(swap_long(&word), -1);
    EXPECT_EQ(swap_setup(little ? 1 : 2), 1);
    EXPECT_EQ(swap_longs(&word, 1) + swap_shorts(halves, 2), 0);
    EXPECT_EQ(word, 0x04030201U);
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

TEST(Numbers, PackedFloatsAndLines) {
    EXPECT_EQ(float2int(-1) + float2int(0), -10);
    EXPECT_EQ(float2int(25.4F), 125);
    EXPECT_EQ(float2int(99.7F), 210);
    EXPECT_EQ(float2int(-0.025F), -825);
    EXPECT_FLOAT_EQ(linear_interp(3, 1, 5, 10, 20), 15);
    EXPECT_FLOAT_EQ(linear_interp(3, 1, 1, 10, 20), 10);
    EXPECT_NEAR(calc_earth_dist(0, 179, 0, -179), 222.4, 0.1);
    EXPECT_NEAR(calc_earth_dist(90, 0, -90, 77), 20015.8, 1);
}

TEST(Numbers, StationIdentifiers) {
    int back = 0;
    const auto there_and_back = [&back](int number, const char* expected) {
        char id[12];
        EXPECT_STREQ(wmo_to_id(id, number), expected);
        EXPECT_EQ(id_to_wmo(expected, &back), 1) << expected;
        EXPECT_EQ(back, number) << expected;
    };
    there_and_back(3949, "EG949");
    there_and_back(3950, "EI950");
    there_and_back(98328, "RP328");
    there_and_back(72365, "K2365"); // one letter, four digits
    there_and_back(5000, "05000");  // in no range
    for (const char* none : {"KTLX", "QQ123", "EN0011", "E-123", "", "K23a5", "99999"}) {
        EXPECT_EQ(id_to_wmo(none, &back), 0) << none;
        EXPECT_EQ(back, *none == '9' ? 99999 : -1) << none;
    }
}

int value_of(const void* data) {
    return data == nullptr ? -1 : *static_cast<const int*>(data);
}

// Twenty records under ten first keys and two second ones, in chains.
void fill(TAB_table& table) {
    ASSERT_EQ(TAB_create(&table, 3, sizeof(int), 2), 0);
    for (int i = 0; i < 20; ++i) {
        TAB_enter(&table, &i, std::to_string(i % 10).c_str(), i < 5 ? "few" : "many");
    }
}

TEST(Table, Searches) {
    TAB_table table;
    EXPECT_EQ(TAB_create(&table, 3, 4, 5) + TAB_create(&table, 0, 4, 1), -2);
    fill(table);
    EXPECT_GE(TAB_key(&table, "\x80\xff"), 0);
    const auto first = [&](int which, const char* key) {
        return value_of(TAB_search(&table, which, key));
    };
    EXPECT_EQ(first(1, "7"), 7);
    EXPECT_EQ(first(2, "many"), 5);
    EXPECT_EQ(first(1, "many") + first(3, "7") + first(0, "7") + first(1, nullptr), -4);
    void* found[4] = {};
    EXPECT_EQ(TAB_searches(&table, 1, "7", found, 4), 2);
    EXPECT_EQ(value_of(found[1]), 17);
    EXPECT_EQ(TAB_searches(&table, 2, "many", found, 4), 4);
    TAB_clear(&table);
}

TEST(Table, WalksInOrderOfEntryAndClears) {
    TAB_table table;
    fill(table);
    int count = 0;
    for (void* data = TAB_first(&table); data != nullptr; data = TAB_next(&table)) {
        EXPECT_EQ(value_of(data), count++);
    }
    EXPECT_EQ(count, 20);
    TAB_clear(&table);
    EXPECT_EQ(value_of(TAB_first(&table)) + value_of(TAB_search(&table, 1, "7")), -2);
    EXPECT_EQ(TAB_enter(&table, &count, "x", "y"), -1);
}

} // namespace
