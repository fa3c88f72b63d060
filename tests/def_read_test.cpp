// Defaults files: the conditional language, the matching of keys, the
// environment, and the ranks of all sources.
#include "def_read.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

namespace {

// Reads a file's text and gives its settings as "key=value;".
std::string settings(const std::string& text, const std::vector<std::string>& tags = {}) {
    const TempDir dir;
    DEF_clr_tag();
    for (const std::string& tag : tags) {
        DEF_tag(tag.c_str());
    }
    std::string all;
    std::array<char, def_line_size> key{};
    std::array<char, def_value_size> value{};
    EXPECT_EQ(DEF_open(dir.write("defaults", text).c_str()), 0);
    while (DEF_get(key.data(), value.data()) == 1) {
        all += std::string(key.data()) + "=" + value.data() + ";";
    }
    DEF_close();
    return all;
}

void set_program(const char* path, const char* title) {
    std::string own = path;
    char* argv[] = {own.data(), nullptr};
    RES_setCL(1, argv);
    DEF_prog();
    DEF_name(title);
    RES_setCL(0, nullptr);
}

} // namespace

TEST(DefRead, ReadsSettingsAndConditions) {
    // The text of a file and its settings.
    const std::vector<std::pair<const char*, const char*>> rows = {
        {"# note\n\n \t\nOne\n*.A: 1 2 3\n",                          "*.a=1;"                    },
        {"a  \" b  c \" d\r\nb \"\"\nc \"open\r\n",                   "a= b  c ;b=;c=open;"       },
        {"IF no\na 1\nELSE\na 2\nEND\nb 3\n",                         "a=2;b=3;"                  },
        {"IF no\na 1\nELIF Y\na 2\nELIF x\na 3\nELSE\na 4\nEND\n",    "a=2;"                      },
        {"IF no\nIF x\na 1\nELSE\na 2\nEND\na 3\nEND\nb 1\n",         "b=1;"                      },
        {"DEF z\nIF Z\na 1\nEND\nUNDEF Z\nIF z\na 2\nEND\nUNDEF q\n", "def=z;a=1;undef=Z;undef=q;"},
        {"IF\na 1\nif x\nEND\nb 2\n",                                 "a=1;if=x;b=2;"             },
        {"ELSE\nELIF x\nEND\na 1\n",                                  "a=1;"                      },
    };
    testing::internal::CaptureStderr();
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(settings(text, {"x", "y"}), expected) << text;
    }
    // All that they say comes from the last two.
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "DEF_get: end without an if\nDEF_get: else without an if\n"
              "DEF_get: elif without an if\nDEF_get: end without an if\n");
    // A block goes on in the next file.
    EXPECT_EQ(settings("IF no\na 1\n"), "");
    EXPECT_EQ(settings("b 2\nEND\nc 3\n"), "c=3;");
}

TEST(DefRead, KeepsItsLimits) {
    std::string tags;
    std::string blocks;
    std::string ends;
    for (int i = 0; i < 12; ++i) {
        tags += "DEF t" + std::to_string(i) + "\n";
        blocks += "IF t0\n";
        ends += "END\n";
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(settings(tags + "IF t9\na 1\nEND\nIF t10\nb 1\nEND\n").substr(12 * 7 + 2), "a=1;");
    EXPECT_EQ(settings(blocks + "a 1\nELSE\na 2\n" + ends + "b 1\nIF t0\nb 2\nEND\n", {"t0"}),
              "b=1;b=2;");
    EXPECT_EQ(settings("k " + std::string(230, 'v') + "\n"), "k=" + std::string(200, 'v') + ";");
    // Longer lines come in pieces, except that a comment's rest stays one.
    EXPECT_EQ(settings("#" + std::string(300, '#') + " a b\nk " + std::string(260, ' ') + "v w\n"),
              "v=w;");
    const std::string warnings = testing::internal::GetCapturedStderr();
    EXPECT_NE(warnings.find("too many tags: t10\n"), std::string::npos);
    EXPECT_NE(warnings.find("too many nested blocks: t0\n"), std::string::npos);
    EXPECT_NE(warnings.find("value of k cut"), std::string::npos);
}

TEST(DefRead, FitsKeysToResources) {
    // Title, resource, and the patterns that fit and that do not.
    const std::vector<std::array<std::string, 4>> rows = {
        {"",     "file_path",   "prog*path prog.file_path **path", "file_path * prog.file_path.x"},
        {"",     "path_path",   "*_path",                          "*path"                       }, // no second try
        {"",     "color_label", "*label",                          "*.label"                     },
        {"Top",  "title",       "Top.title",                       "prog.title"                  },
        {"+sub", "title",       "prog.sub.title",                  "prog.title"                  },
    };
    for (const auto& [title, resource, good, bad] : rows) {
        set_program("/usr/bin/prog", title.c_str());
        for (const auto& [patterns, expected] : {std::pair(good, 1), std::pair(bad, 0)}) {
            std::istringstream words(patterns);
            for (std::string word; words >> word;) {
                EXPECT_EQ(DEF_cmp(resource.c_str(), word.c_str()), expected) << word;
            }
        }
    }
    set_program("prog", "");
    EXPECT_EQ(DEF_valid("*.own") + DEF_valid("prog.own"), 2);
    EXPECT_EQ(DEF_valid("own") + DEF_valid("else.own") + DEF_valid("*") + DEF_valid("*."), 0);
    std::array<char, res_name_size> name{};
    testing::internal::CaptureStderr();
    EXPECT_EQ(DEF_parse_name(("prog*" + std::string(60, 'n')).c_str(), name.data()), 1);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(std::string(name.data()), std::string(49, 'n'));
    EXPECT_EQ(DEF_parse_name("prog.", name.data()), 0);
}

TEST(DefRead, LooksIntoTheEnvironment) {
    std::array<char, def_value_size> value{};
    set_program("prog", "");
    EXPECT_EQ(DEF_env("some_res", "zyrshort", value.data()), 0);
    for (const char* name : {"zyrsome_res", "zyrshort", "zyrprog.some_res"}) { // rising rank
        setenv(name, name, 1);
        EXPECT_EQ(DEF_env("some_res", "zyrshort", value.data()), 1);
        EXPECT_STREQ(value.data(), name);
    }
    set_program("prog", "+sub");
    setenv("zyrprog.sub.some_res", std::string(300, 'e').c_str(), 1);
    testing::internal::CaptureStderr();
    DEF_env("some_res", "zyrshort", value.data());
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(std::string(value.data()), std::string(200, 'e'));
}

TEST(DefRead, OpensTheFirstNameOfADirectory) {
    const TempDir dir;
    EXPECT_EQ(DEF_open(dir.path().c_str()), -1);
    EXPECT_EQ(DEF_get(nullptr, nullptr), -1);
    std::array<char, def_line_size> key{};
    std::array<char, def_value_size> value{};
    for (const char* name : {"Zyr.res", ".zyrdef", "zyr.cfg"}) {
        dir.write(name, std::string("found ") + name + "\n");
        ASSERT_EQ(DEF_open(dir.path().c_str()), 0);
        ASSERT_EQ(DEF_get(key.data(), value.data()), 1);
        EXPECT_STREQ(value.data(), name);
        EXPECT_EQ(DEF_cfg_dir(), *name == 'z' ? dir.path() + "/" : "");
    }
    EXPECT_EQ(DEF_get(key.data(), value.data()), -1);
}
