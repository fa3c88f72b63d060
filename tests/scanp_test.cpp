// The format scanner: every conversion, widths, missing markers, alternatives,
// the cursor, and fields larger than their buffers.
#include "scanp.h"

#include "zyr.h"

#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <sstream>
#include <string>

namespace {

// One scan of a text item: "matched length done:stored".
std::string scan_text(const char* format, std::string text) {
    char out[80] = "untouched";
    parse_param param;
    scanp_set(&param, text.data());
    const int matched = scanp(&param, format, out);
    EXPECT_EQ(param.matched, matched);
    return std::to_string(matched) + " " + std::to_string(param.len) + " " +
           std::to_string(param.done) + (param.assigned == 1 ? ":" + std::string(out) : "");
}

// One scan of a number: "matched length:stored".
std::string scan_number(const std::string& format, std::string text) {
    int integer = 0;
    float real = 0;
    const bool is_int = std::tolower(format.back()) == 'd';
    void* out = is_int ? static_cast<void*>(&integer) : &real;
    parse_param param;
    scanp_set(&param, text.data());
    std::ostringstream result;
    result << scanp(&param, format.c_str(), out) << ' ' << param.len;
    if (param.assigned == 1) {
        result << ':' << (is_int ? std::to_string(integer) : (std::ostringstream() << real).str());
    }
    return result.str();
}

TEST(Scanp, TextFields) {
    // clang-format off
    const char* const rows[][3] = {
        {"%s", "KTLX 12", "1 4 1:KTLX"}, 
        {"%5s", "KTLX ", "0 0 0"},  // exactly that wide
        {"%<5s", "KTLX ", "1 4 1:KTLX"}, {"%S", "two words\n", "1 10 1:two words\n"},
        {"%3S", " a b", "1 3 1: a "}, {"%N", "012a", "1 3 1:012"}, 
        {"%A", "Ab1", "1 2 1:Ab"}, {"%w", " \t\r\nx", "1 4 1: \t\r\n"},
        {"%W", " \t\nx", "1 2 1: \t"}, {"%[abc/N]", "a1cd", "1 3 1:a1c"},
        {"%[^/A //]", "12/x", "1 2 1:12"}, {"%[/]x]", "]x[", "1 2 1:]x"},
        {"%[abc", "ab", "1 2 1:ab"},  // the set ends with the format
        {"%(EDITED|UNEDITED)", "UNEDITED ", "1 8 1:UNEDITED"},
        {"%(A|AB)", "AB", "1 1 1:A"},  // the first that fits
        {"%(A|B)", "C", "0 0 0"}, {"%(A|)", "C", "0 0 0"},  // an empty one never fits
        {"%<(A|B)x", "x", "1 1 1"}, {"%!-/!(A|B)", "-/x", "1 2 1:"},
        {"%!-/!(A|B)", "-x", "1 1 1:"}, {"a %s", "a \n\tb", "1 5 1:b"},
        {" %s", "b", "0 0 0"},  // a blank wants a blank
        {"%", "b", "0 0 0"},
    };
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_EQ(scan_text(row[0], row[1]), row[2]) << row[0];
    }
}

TEST(Scanp, Numbers) {
    // clang-format off
    const char* const rows[][3] = {
        {"%d", "-12x", "1 3:-12"}, {"%d", "-", "0 0"}, {"%3d", "12", "0 0"},
        {"%<3d", "1234", "1 3:123"}, {"%2d", "1234", "1 2:12"}, {"%4D", "  12", "1 4:12"},
        {"%4D", "12x", "0 0"}, {"%4D", "    ", "0 0"},
        {"%!M!d", "M", "1 1:-9999"}, {"%!M!d", "x", "0 0"},
        {"%2!MMM!d", "MMM", "1 2:-9999"},  // compared up to the width
        {"%d", "99999999999", "1 11:2147483647"}, {"%f", "-1.5e2", "1 6:-150"},
        {"%f", "1.5e+", "1 3:1.5"}, {"%f", "1..5", "1 2:1"}, {"%f", ".5", "1 2:0.5"},
        {"%f", "-.", "0 0"}, {"%!-!f", "- 3", "1 1:-9999"}, {"%!-!f", "-3", "1 2:-3"},
        {"%6F", " 1.25 ", "1 6:1.25"}, {"%3f", "1.50", "1 3:1.5"},
    };
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_EQ(scan_number(row[0], row[1]), row[2]) << row[0];
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
    EXPECT_EQ(std::string(id) + none, "KTLXkept");
    EXPECT_EQ((std::array{a, offset, b, param.assigned}), (std::array{2, 10, 7, 4}));
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
    EXPECT_EQ(scanp_char(&param, 99) + scanp_char(&param, -99), '\0');
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
        EXPECT_EQ(scan_text(format, word), "1 79 1:" + std::string(79, 'x')) << format;
    }
    EXPECT_EQ(scan_text("%*s", word), "1 200 1"); // passed over, it may be longer
}

} // namespace
