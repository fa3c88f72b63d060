// Templates, naming conventions, paths, and the selection of files in made-up
// directories.
#include "files.h"

#include "date.h"
#include "date_text.h"
#include "feed_stdin.h"
#include "name_tmpl.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

const char* fake_resource(const char* name) {
    return std::string(name) == "data_path" ? "/dat" : nullptr;
}

constexpr NameKeys keys = [] {
    NameKeys out;
    std::string_view("KTLX").copy(out.text[std::size_t{'s'}], 4);
    return out;
}();

NameSource source_of(const char* conv) {
    NameSource source;
    source.conv = conv;
    source.keys = &keys;
    source.resource = fake_resource;
    return source;
}

TEST(Template, TypedNames) {
    const struct {
        const char *conv, *typed, *name, *date;
        int late_off;
    } rows[] = {
  // A date typed alone gets its path and its ending.
        {"%D/%Y%m%d%h.rad", "2010050112",       "/dat/2010050112.rad", "2010 5 1 12 -",  3600   },
        {"%D/%Y%m%d%h.rad", "20100501",         "/dat/20100501",       "2010 5 1 - -",   86400  },
        {"%D/%Y%m%d%h%5n",  "201005011207",     "/dat/201005011207",   "2010 5 1 12 7",  300    },
        {"%C/%y%b%d%3h",    "10may0106",        "./10may0106",         "2010 5 1 6 -",   10800  },
        {"%y%j",            "49366",            "49366",               "2049 12 31 - -", 86400  },
 // A full name keeps its directory, as many levels as the template has.
        {"%D/%Y/%m%d.x",    "/a/b/2010/0501.x", "/a/b/2010/0501.x",    "2010 5 1 - -",   86400  },
        {"%D/%Y/%m",        "./x",              "./x",                 "- - - - -",      missing},
        {"%D/%Y%m",         "a/b",              "/dat/a/b",            "- - - - -",      missing},
 // Literal letters overwrite a typed date, unless they stand in braces.
        {"%D/{nids}%Y%m",   "201005",           "/dat/nids201005",     "2010 5 - - -",   missing},
        {"%D/nn%Y%m",       "201005",           "/dat/nn1005",         "1005 - - - -",   missing},
        {"%D/%Y{_%m}x",     "201005",           "/dat/2010_05x",       "2010 5 - - -",   missing},
 // Keys, extension, the rest.
        {"%D/%q_%Y",        "KTLX_2010",        "/dat/KTLX_2010",      "- - - - -",      missing},
        {"%Y_%e.nids",      "2010_N0R.nids",    "2010_N0R.nids",       "2010 - - - -",   missing},
        {"%Y%%%m",          "2010%05",          "2010%05",             "2010 5 - - -",   missing},
        {"%",               "x",                "",                    "- - - - -",      missing},
        {"%{name",          "x",                "x",                   "- - - - -",      missing},
    };
    for (const auto& row : rows) {
        const NameResult result = match_name(source_of(row.conv), row.typed);
        EXPECT_STREQ(result.name, row.name) << row.conv << ' ' << row.typed;
        EXPECT_EQ(text_of(result.date), row.date) << row.conv << ' ' << row.typed;
        EXPECT_EQ(result.late_off, row.late_off) << row.conv << ' ' << row.typed;
    }
}

// Names of real files, whole and as far as a user types them: "%*" leaves the rest
// open until it is looked up.
TEST(Template, OpenNames) {
    const struct {
        const char *conv, *typed, *name, *date;
    } rows[] = {
        {"%D/%*%Y%m%d_%h%n%*",    "KTLX20190715_120037_V06",                         "/dat/KTLX20190715_120037_V06",
         "2019 7 15 12 0"                                                                                                                                                        },
        {"%D/%*%Y%m%d_%h%n%*",    "/a/2018/KTLX20190715_1200",                       "/a/2018/KTLX20190715_1200",
         "2019 7 15 12 0"                                                                                                                                                        },
        {"%D/%*%Y%m%d_%h%n%*",    "0012ABCD20190715_120037",                         "/dat/0012ABCD20190715_120037",
         "2019 7 15 12 0"                                                                                                                                                        },
        {"%D/%s_%*%Y_%m_%d%*",    "KTLX_N0B_2022_03_30_15",                          "/dat/KTLX_N0B_2022_03_30_15",
         "2022 3 30 - -"                                                                                                                                                         },
        {"%D/%q_%*%y%j",          "x_n22089",                                        "/dat/x_n22089",                                                            "2022 3 30 - -" },
        {"%D/%4*%Y%m%d",          "KTLX20190715",                                    "/dat/KTLX20190715",                                                        "2019 7 15 - -" },
        {"%D/%4*%Y%m%d",          "KTL20190715",                                     "/dat/KTL20190715",                                                         "- - - - -"     },
        {"%D/%*%Y%m%d_%h%n%*",    "201907151200",                                    "/dat/20190715_1200",                                                       "2019 7 15 12 0"},
        {"%D/%*_%Y_%m_%d%*",      "20190715",                                        "/dat/2019_07_15",                                                          "2019 7 15 - -" },
        {"%D/%*%Y%m%d%*",         "sn.last",                                         "/dat/sn.last",                                                             "- - - - -"     },
        {"%*%*%*%*%*%*%*%*%*%*x",
         "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", "- - - - -"     },
    };
    for (const auto& row : rows) {
        const NameResult result = match_name(source_of(row.conv), row.typed);
        EXPECT_STREQ(result.name, row.name) << row.conv << ' ' << row.typed;
        EXPECT_EQ(text_of(result.date), row.date) << row.conv << ' ' << row.typed;
    }
    NameSource source = source_of("%D/[%q]%2*_%Y%h*");
    Date date;
    date.year = 2019;
    EXPECT_STREQ(build_name(source, date, {}).name, "/dat/[*]??_2019??*");
    source.glob = true;
    EXPECT_STREQ(build_name(source, date, {}).name, "/dat/\\[*]??_2019??\\*");
}

TEST(Template, NamesOfDates) {
    constexpr int none = missing;
    // A step of -100 rounds to multiples of 0, which count as 1.
    const struct {
        const char *conv, *name, *date;
        int late_off;
        int set_day, set_hour, set_min; // fixed by the user, or a step
    } rows[] = {
        {"%D/%Y%m%d%h.rad",             "/dat/2010051314.rad", "2010 5 13 14 -", 3600,    none, none, none},
        {"%D/%y%b%j %3h",               "/dat/10may133_12",    "2010 5 13 12 -", 10800,   none, none, none},
        {"%3h",                         "09",                  "- - - 9 -",      10800,   none, 11,   none},
        {"%h",                          "13",                  "- - - 13 -",     21600,   none, -106, none},
        {"%h",                          "15",                  "- - - 15 -",     3600,    none, -100, none},
        {"%h%n",                        "1430",                "- - - 14 30",    900,     none, none, -15 },
        {"%d%h",                        "1014",                "- - 10 14 -",    3600,    -5,   none, none},
        {"%j%d",                        "14020",               "- 5 20 - -",     86400,   20,   none, none},
        {"%s%2s%q%e",                   "KTLXKT0N0R",          "- - - - -",      missing, none, none, none},
        {"{a}%%%{data_path}%{none}%{x", "a%/dat",              "- - - - -",      missing, none, none, none},
    };
    const Date date = date_of(2010, 5, 13, 14, 37);
    for (const auto& row : rows) {
        NameSource source = source_of(row.conv);
        source.ext = "N0R";
        source.set = date_of(missing, missing, row.set_day, row.set_hour, row.set_min);
        const NameResult result = build_name(source, date, Date{});
        EXPECT_STREQ(result.name, row.name) << row.conv;
        EXPECT_EQ(text_of(result.date), row.date) << row.conv;
        EXPECT_EQ(result.late_off, row.late_off) << row.conv;
    }
}

TEST(Template, GivenPartsAndLongNames) {
    const Date date = date_of(2010, 5, 13, 14, 37);
    NameSource source = source_of("%Y_%e.nids");
    EXPECT_STREQ(match_name(source, "2010_N0R.nids").ext, "N0R");
    source.ext = "N0V"; // a known extension takes the place of the typed one
    source.set = date_of(missing, missing, 5, -106);
    const NameResult known = match_name(source, "2010_N0R.nids");
    EXPECT_STREQ(known.name, "2010_N0V.nids");
    EXPECT_EQ(text_of(known.date), "2010 - 5 -106 -"); // the fixed parts go before
    source = source_of("%D/%Y%y%m%b%d%j%h%n");
    source.path = "/given";
    const NameResult unknown = build_name(source, Date{}, date);
    EXPECT_STREQ(unknown.name, "/given/00000000xxx000000000");
    EXPECT_EQ(text_of(unknown.date), "- - - - -");
    EXPECT_EQ(path_of_name("%D/%Y/%m", "/a/b/2010/05"), "/a/b");
    EXPECT_EQ(path_of_name("%D/%Y/%m", "/05") + path_of_name("%D", "/a/b"), "");
    const std::string wide(200, '7');
    EXPECT_TRUE(match_name(source_of("%D/*"), wide.c_str()).cut);
    EXPECT_TRUE(build_name(source_of(wide.c_str()), date, date).cut);
}

TEST(Template, ListsQuoteAllButGlobs) {
    // clang-format off
    const struct {
        const char *conv, *pattern;
    } rows[] = {
        {"%D/%Y%y%m%d%h%n.rad", "'/dat''/'?[0-9]??[0-9]?[0-9]?[0-9]?[0-9]?[0-9]?'.rad'"},
        {"{a}%b%j*", "'a'?[a-z]??[0-9]?*"}, {"$(x) `y`;'z'", "'$(x) `y`;'\\''z'\\'''"},
        {"%s%q%2q%e%%", "'KTLX'*??*'%'"}, {"%{x y}", "*'x y'"}, {"~user/x", "~user'/x'"},
        {"~;x", "~';x'"}, {"", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_EQ(list_pattern(source_of(row.conv)), row.pattern) << row.conv;
    }
}

// A directory of its own as the current one.
class Files : public testing::Test {
protected:
    TempDir directory;
    fs::path home = fs::canonical(directory.path());

    void SetUp() override {
        fs::current_path(home);
        MESS_set(0, 0);
        unsetenv("zyrcurtime");
        RES_put("name_conv", "name_conv");
        RES_put("data_path", ".");
        set_resources(nullptr, nullptr);
        const Date none = {.sec = 0};
        FILE_set_time(&none);
        FILE_set_type(0);
        FLAG_set(flag_batch, 0);
        FLAG_set(flag_file_param, missing);
    }
    void TearDown() override { fs::current_path("/"); }

    static void put(const std::string& name, std::size_t bytes = 10) {
        std::ofstream(name) << std::string(bytes, 'x');
    }
    static std::string set_date(const Date& date) {
        char name[file_name_size];
        FILE_set_date(&date, name);
        return name;
    }
    static void set_resources(const char* filename, const char* num_hour) {
        RES_new(missing, "filename", filename, CV_strings);
        RES_put("num_hour", num_hour);
    }
};

TEST_F(Files, ConventionFile) {
    std::ofstream("conv") << "# nids comment\n\nnids_19 one%e - 1000\nnids two%e h%Y\n"
                             "radarkindwithaverylongname three\nshort\n";
    RES_put("name_conv", "conv");
    const Date date = date_of(2010, 5, 1, 12, 0);
    const struct {
        const char* kind;
        int result;
        const char *name, *header;
    } rows[] = {
        {"nids_19",              1, "one",        ""     }, // the first line that fits
        {"NIDS_20",              1, "two20",      "h2010"}, // a partial match gives %e
        {"radarkindwithaverylo", 1, "three",      ""     }, // cut to 19 characters
        {"other%Y",              0, "other2010",  ""     }, // its own template
        {"rest:a=b c:q:x=y%x%a", 0, "rest",       ""     },
        {"%x%a:q",               0, "y%x%ab_c:q", ""     }, // keys stay; a ":" that fits no key too
        {"None",                 0, "filename",   ""     },
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FILE_set_name(row.kind), row.result) << row.kind;
        EXPECT_EQ(set_date(date), row.name) << row.kind;
        char header[file_name_size];
        FILE_set_header_date(&date, header);
        EXPECT_STREQ(header, row.header) << row.kind;
    }
    RES_put("name_conv", "absent");
    EXPECT_EQ(FILE_set_name("nids"), 0);
    EXPECT_EQ(set_date(date), "nids");
}

TEST_F(Files, SavedConventionsAndLongNames) {
    std::ofstream("name_conv") << "a_ %Y_%e - 5\nb %h\nwide " << std::string(200, 'w') << "\n";
    const Date date = date_of(2010, 5, 1, 12, 0);
    FILE_set_name("a_x");
    EXPECT_EQ(set_date(date), "2010_x");
    FILE_save_name_conv();
    FILE_set_name("b");
    EXPECT_EQ(set_date(date), "12");
    FILE_restore_name_conv();
    EXPECT_STREQ(FILE_get_filename(nullptr), "2010_x");
    EXPECT_EQ(FILE_get_late_off(), missing);
    EXPECT_EQ(set_date(date), "2010_x"); // %e is back too
    EXPECT_EQ(FILE_set_name(std::string(300, 'k').c_str()), 0);
    EXPECT_EQ(FILE_set_name("wide"), 1);
    EXPECT_EQ(set_date(date), std::string(155, 'w')); // a line is cut at 160
    char key[30];
    FILE_set_key('z', std::string(40, 'k').c_str());
    EXPECT_EQ(std::string(FILE_get_key('z', key)), std::string(29, 'k'));
}

TEST_F(Files, Paths) {
    char out[file_name_size];
    EXPECT_STREQ(FILE_add_path("p/", "f", out), "p/f");
    EXPECT_STREQ(FILE_add_path(nullptr, "f", out), "f");
    for (const char* alone : {"-", "~/f", "./f", "/f", "STD", "stdn", ""}) {
        EXPECT_STREQ(FILE_add_path("p", alone, out), alone);
    }
    EXPECT_LT(std::string(FILE_add_path(std::string(200, 'p').c_str(), "f", out)).size(), 160U);
    EXPECT_STREQ(FILE_add_user_path("~no_such_user_/f", out), "~no_such_user_/f");
    EXPECT_NE(*FILE_add_user_path("~/f", out), '~');
}

TEST_F(Files, Streams) {
    EXPECT_EQ(FILE_exist("") + FILE_exist("absent"), 1);
    EXPECT_EQ(FILE_open("absent", "r"), nullptr);
    EXPECT_EQ(FILE_open("-", "r"), stdin);
    EXPECT_EQ(FILE_close(FILE_open("|cat > piped", "w")), 0); // waits for the command
    EXPECT_EQ(FILE_size("piped"), 0);
    EXPECT_NE(FILE_close(FILE_open("|exec 2>&-; cat > made/never", "w")), 0);
    EXPECT_EQ(FILE_exist("made"), 0); // no directory for a command
}

TEST_F(Files, Directories) {
    EXPECT_EQ(FILE_close(FILE_open("new/deep/f", "w")), 0);
    EXPECT_EQ(FILE_size("new/deep/f"), 0);
    EXPECT_EQ(FILE_is_dir("new/deep"), 1);
    EXPECT_EQ(FILE_make_dir("new/other", 1), 1);
    EXPECT_EQ(FILE_make_dir("std\\f", 1) + FILE_make_dir("std//z/f", 1), 0);
    EXPECT_EQ(FILE_is_dir("std/z"), 1); // a directory may have the name of a stream
    EXPECT_EQ(FILE_delete("new/deep/f"), 0);
}

TEST_F(Files, Overwrite) {
    put("old");
    EXPECT_EQ(FILE_overwrite("new", 1), 1);
    EXPECT_EQ(FILE_overwrite("old", 0), 0);
    std::istringstream answers("Y 1 over 1 app 2 use 3");
    int result = 0;
    for (std::string answer; answers >> answer >> result;) {
        feed_stdin(answer + "\n");
        EXPECT_EQ(FILE_overwrite("old", 2), result) << answer;
    }
    FLAG_set(flag_batch, 1);
    EXPECT_EQ(FILE_overwrite("old", 1), 3);
    FLAG_set(flag_file_param, 2);
    EXPECT_EQ(FILE_overwrite("old", 1), 2);
}

TEST_F(Files, RelativeRequests) {
    put("2010050103.rad");
    put("2010050100.rad");
    put("2010050105.rad", 0); // empty files do not count
    setenv("zyrcurtime", "#201005011210", 1);
    // clang-format off
    const struct {
        const char *request, *name;
    } rows[] = {
        {nullptr, "2010050103.rad"}, {"la", "2010050103.rad"}, {"l", "2010050103.rad"},
        {"la#5", "2010050108.rad"},  // the last one tried
        {"la#0", "2010050112.rad"}, {"", "2010050112.rad"}, {"-3", "2010050109.rad"},
        {"3", "2010050109.rad"}, {"+3", "2010050115.rad"}, {"-1d3:30", "2010043008.rad"},
        {"-0:30", "2010050111.rad"}, {"la-2", "2010050101.rad"}, {"la+1", "2010050104.rad"},
        {"-10la", "2010050100.rad"}, {"+3la", "2010050103.rad"},
        {"#201004302310-1", "2010043022.rad"}, {"#2010043020+la", "2010050100.rad"},  // forward
        {"#20100501", "2010050100.rad"}, {"#junk", nullptr},  // only must not fail
        {"-99999999999d", nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        FILE_set_name("@%Y%m%d%h.rad");
        char name[file_name_size];
        FILE_set_current(row.request, name);
        EXPECT_TRUE(row.name == nullptr || row.name == std::string(name)) << name << row.name;
    }
    char name[file_name_size];
    FILE_set_name("@fixed.rad"); // no time field: every try is the same
    EXPECT_EQ(FILE_set_current("la#3", name), 1272715800 - 2 * 100000);
    EXPECT_STREQ(name, "fixed.rad");
}

TEST_F(Files, OpenTemplatesAreLookedUp) {
    RES_put("name_conv", ZYR_SOURCE_DIR "/etc/name_conv");
    RES_put("data_path", "in");
    fs::create_directory("in");
    for (const char* name :
         {"in/KTLX20190715_115544_V06", "in/KTLX20190715_120037_V06", "in/KTLX20190715_120058_V06",
          "in/KINX20190715_120410_V06", "in/Level2_KFTG_20190716_0001.ar2v", "in/notes.txt",
          "in/KBMX_SDUS54_N0QBMX_201501020205", "in/LOT_N0B_2022_03_30_15_40_41",
          "in/LOT_N0B_2022_03_30_15_46_02", "in/LSX_N0B_2022_03_30_16_00_00",
          "in/Level3_FFC_N0Q_20140407_1805.nids", "in/KDDC_N0Q_20200817_0501.nids"}) {
        put(name, 2000);
    }
    put("in/KTLX20190715_121500_V06", 10); // still arriving
    setenv("zyrcurtime", "201907151220", 1);
    const struct {
        const char *kind, *request, *name;
    } rows[] = {
        {"lev2",               "la",                      "in/KINX20190715_120410_V06"          },
        {"lev2_KTLX",          "la",                      "in/KTLX20190715_120058_V06"          },
        {"lev2_KTLX",          "la#5",                    "in/*KTLX*20190715_1220*"             },
        {"lev2_KTLX",          "la#21",                   "in/KTLX20190715_120058_V06"          },
        {"lev2_KTLX",          "la-0:05",                 "in/KTLX20190715_115544_V06"          },
        {"lev2_KTLX",          "#201907150000+la",        "in/KTLX20190715_115544_V06"          },
        {"lev2_KFTG",          "la",                      "in/*KFTG*20190715_1220*"             }, // of tomorrow
        {"lev2_KTLX",          "201907151200",            "in/KTLX20190715_120058_V06"          },
        {"lev2",               "20190715",                "in/KINX20190715_120410_V06"          },
        {"lev2",               "20180715",                "in/*20180715_*"                      },
        {"lev2",               "KTLX20190715_120037_V06", "in/KTLX20190715_120037_V06"          },
        {"nids_wmo_N0Q:s=BMX", "la",                      "in/KBMX_SDUS54_N0QBMX_201501020205"  },
        {"nids_sec_N0B:s=LOT", "20220330",                "in/LOT_N0B_2022_03_30_15_46_02"      },
        {"nids_sec_N0B:s=L",   "#20220331la",             "in/*L_N0B_2022_03_31_00_00*"         },
        {"nids_min_N0Q:s=FFC", "la",                      "in/Level3_FFC_N0Q_20140407_1805.nids"},
        {"nids_min_N0Q:s=DDC", "20200817",                "in/KDDC_N0Q_20200817_0501.nids"      },
    };
    for (const auto& row : rows) {
        FILE_set_type(0);
        EXPECT_EQ(FILE_set_name(row.kind), 1);
        char name[file_name_size];
        FILE_set_file(row.request, name);
        const std::string pattern = row.name;
        const bool open = pattern.ends_with("_*"); // how the hours are shown is free
        EXPECT_EQ(open ? std::string(name, pattern.size() - 2) + "_*" : name, pattern)
            << row.kind << ' ' << row.request;
        // The plotters build a name anew from its date and must come back to it.
        if (FILE_exist(name) == 1) {
            Date date;
            FILE_get_date(&date);
            char again[file_name_size];
            FILE_set_filename(name);
            FILE_set_date(&date, again);
            EXPECT_STREQ(again, name);
        }
    }
}

TEST_F(Files, ClockValuesNameTheLastSuchTime) {
    constexpr int none = missing;
    const struct {
        const char* now;
        int month, day, hour, min;
        const char* name;
    } rows[] = {
        {"201005010640", none, none, 12,   none, "201004301240"},
        {"201005010640", none, none, none, 50,   "201005010550"},
        {"201005010640", 7,    none, none, none, "200907010640"},
        {"201005010640", 4,    1,    4,    5,    "201004010405"},
        {"201005010640", none, none, -6,   none, "201005010640"},
        {"201001100640", none, 29,   none, none, "200912290640"},
        {"201003010640", none, none, 7,    none, "201002280740"},
    };
    for (const auto& row : rows) {
        setenv("zyrcurtime", row.now, 1);
        const Date set = date_of(missing, row.month, row.day, row.hour, row.min);
        FILE_set_time(&set);
        FILE_set_name("@%Y%m%d%h%n");
        char name[file_name_size];
        FILE_set_current("", name);
        EXPECT_STREQ(name, row.name);
    }
}

TEST_F(Files, TypedNamesWithTheShippedConventions) {
    RES_put("name_conv", ZYR_SOURCE_DIR "/etc/name_conv");
    fs::create_directories("lev-3");
    for (const char* name : {"lev-3/gsm-1.nids", "latest.nids", "20210729-123848-001-S",
                             "201005011200.nids", "2010050112.rad"}) {
        put(name);
    }
    const std::string full = (home / "lev-3/gsm-1.nids").string();
    const struct {
        const char* kind;
        int type;
        const char *typed, *name, *date, *extra;
    } rows[] = {
        {"rad_dat",  0, "2010050112",            "./2010050112.rad",        "2010 5 1 12 -", ""  },
        {"nowrad",   0, "20210729-123848-001-S", "./20210729-123848-001-S", "- - - - -",     ""  },
        {"rad_dat",  0, "@any/name",             "any/name",                "- - - - -",     ""  },
        {"rad_dat",  0, "std",                   "-",                       "- - - - -",     ""  },
        {"nids",     1, "lev-3/gsm-1.nids",      "lev-3/gsm-1.nids",        "- - - - -",     ""  },
        {"nids",     1, "lev-3/gsm-1.nids#1",    "lev-3/gsm-1.nids",        "- - - - -",     "#1"}, // after the file
        {"nids",     1, "@lev-3/gsm-1.nids:2",   "lev-3/gsm-1.nids",        "- - - - -",     ":2"},
        {"nids",     1, "|cat latest-1",         "|cat latest-1",           "- - - - -",     ""  }, // a command
        {"nids",     1, full.c_str(),            full.c_str(),              "- - - - -",     ""  },
        {"nids",     1, "latest.nids",           "latest.nids",             "- - - - -",     ""  }, // a file, no request
        {"lev2",     1, "20210729-123848-001-S", "20210729-123848-001-S",   "- - - - -",     ""  },
        {"nids",     1, "201005011200.nids",     "201005011200.nids",       "2010 5 1 12 0", ""  },
        {"nids",     1, "201005011200",          "./201005011200.nids",     "2010 5 1 12 0", ""  },
        {"nids_n0r", 1, "201005011200:2",        "./201005011200_n0r.nids", "2010 5 1 12 0", ":2"},
        {"nids",     1, "absent-1",              "./absent",                "- - - - -",     "-1"},
    };
    for (const auto& row : rows) {
        FILE_set_type(row.type);
        char name[file_name_size];
        EXPECT_EQ(FILE_set_name(row.kind) + FILE_set_file(row.typed, name), 1) << row.kind;
        EXPECT_STREQ(name, row.name);
        Date date;
        FILE_get_date(&date);
        EXPECT_EQ(text_of(date), row.date) << row.typed;
        EXPECT_STREQ(FILE_get_ext_info(), row.extra) << row.typed;
        // The plotters build a name anew from its date and must come back to it.
        if (FILE_exist(name) == 1 && row.name != std::string("-")) {
            FILE_set_filename(name);
            char again[file_name_size];
            FILE_set_date(nullptr, again);
            EXPECT_TRUE(fs::equivalent(again, name)) << again << ' ' << name;
        }
    }
}

TEST_F(Files, StepsThroughASequence) {
    set_resources("2010050112", "-3");
    FILE_set_name("@%Y%m%d%h");
    const Date date = date_of(2010, 5, 1, 12);
    set_date(date);
    FILE_first(&date);
    EXPECT_EQ(FILE_get_nsecs(), -10800);
    char name[file_name_size];
    EXPECT_EQ(FILE_next_file(name), 1);
    EXPECT_STREQ(name, "2010050110");
    FILE_prev_file(name);
    EXPECT_STREQ(name, "2010050109");
    FILE_set_nsecs(0);
    EXPECT_EQ(FILE_get_next(name), 1);
    EXPECT_STREQ(name, "2010050112");
    EXPECT_EQ(FILE_get_next(name), 0);
    EXPECT_EQ(FILE_set_date_off(&date, -7200, name), -2);
    EXPECT_STREQ(name, "2010050110");
    set_resources("2010050112", "99999999999,99999999999"); // no overflow
    FILE_first(&date);
    for (int i = 0; i < 99 && FILE_get_next(name) == 1; ++i) {
    }
}

TEST_F(Files, ListIsNoCommand) {
    RES_put("data_path", "a'b;touch harm;'");
    FILE_set_name("@%D/`touch harm`$(touch harm)%Y");
    FILE_list_file();
    EXPECT_EQ(FILE_exist("harm"), 0);
}

} // namespace
