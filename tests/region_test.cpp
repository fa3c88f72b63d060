// Domains in text form: every shape, region files, the resources and the
// prompt, and the region file that we ship.
#include "region.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <set>
#include <span>
#include <sstream>
#include <string>

#include "feed_stdin.h"
#include "files.h"
#include "maptran.h"
#include "run_program.h"
#include "zyrresrc.h"

namespace {

const char* const etc = ZYR_SOURCE_DIR "/etc";
const char* const invalid_line = "DOM_decode: Invalid plot domain\n";

// Works in an empty directory of its own, which is the `file_path`.
class Region : public testing::Test {
protected:
    void SetUp() override {
        MESS_set(1, mess_print | mess_error | mess_warn);
        RES_put("file_path", dir_.path().c_str());
    }
    // Rows: a text and what it decodes to: result, then proj plat plon clat
    // clon nx ny dx dy, unset ones as "-".
    void expect_decoded(std::span<const char* const[2]> rows) {
        for (const auto& row : rows) {
            const int result = DOM_decode(row[0], &d_);
            std::ostringstream out;
            out << result << ": " << d_.proj;
            for (const float value : {d_.plat, d_.plon, d_.clat, d_.clon, static_cast<float>(d_.nx),
                                      static_cast<float>(d_.ny), d_.dx, d_.dy}) {
                out << ' ';
                is_set(value) ? out << value : out << '-';
            }
            EXPECT_EQ(out.str(), row[1]) << row[0];
            EXPECT_EQ(FLAG_get(flag_domain), result) << row[0];
        }
    }
    // Whether the picture of a region shows a place.
    bool shows(const char* word, float lat, float lon) {
        float x = 0, y = 0;
        return DOM_decode(word, &d_) > 0 && MAP_domain(&d_) == 0 &&
               MAP_tran(lat, lon, &x, &y) == 1 && MAP_in_domain(x, y) == 1;
    }
    TempDir dir_;
    Domain d_;
};

} // namespace

TEST_F(Region, Shapes) {
    const char* const rows[][2] = {
        {"merc,-90,40,-95,31,21,0.5,0.6", "1: 3 - -90 40 -95 31 21 0.5 0.6"    },
        {"ps,40,-95,31,21,0.5,0.6",       "1: 1 - - 40 -95 31 21 0.5 0.6"      },
        {"PS,-90,40,-95,0.5,0.6",         "1: 1 - -90 40 -95 25 17 0.5 0.6"    },
        {"ps,40,-95,31,21,0.5",           "1: 1 - 40 -95 31 25 17 21 0.5"      }, // plon second
        {"lat,40,-95,0.5,0.6",            "1: 2 - - 40 -95 25 17 0.5 0.6"      },
        {"40,-95,31,21,0.5",              "1: 1 - - 40 -95 31 21 0.5 0.5"      },
        {"lamb:30:-97:30:60,40,-97,2.0",  "1: 4 30 -97 40 -97 25 17 2 2"       },
        {"ps:-100,40,-95",                "1: 1 - -100 40 -95 25 17 1.2 1.2"   },
        {"ortho:e,40,-95",                "1: 5 - 0 40 -95 25 17 1.2 1.2"      }, // plon alone
        {"zoom,40,-95",                   "1: 50 - - 40 -95 25 17 1 1"         },
        {"sizes,640.9,480",               "1: 51 - - - - 640 480 - -"          },
        {"39,-97,,",                      "1: 1 - - 39 -97 25 17 1.2 1.2"      },
        {"39,,0.5",                       "1: 1 - - 39 - 25 17 0.5 0.5"        },
        {"SP",                            "2: 1 - -100 32.5 -100 25 17 1.2 1.2"},
        {"nowhere",                       "2: -1 - - - - 25 17 1.2 1.2"        },
        {"39",                            "2: -1 - - - - 25 17 1.2 1.2"        },
        {"MISS",                          "-9999: -1 - - - - 25 17 1.2 1.2"    }, // left alone
    };
    expect_decoded(rows);
    DOM_decode("sat:e:0:-75:421.64:1,35,-75,4.0", &d_);
    EXPECT_TRUE(d_.ellipse == 1 && d_.plat == 0 && d_.param[0] == 421.64F && d_.param[1] == 1);
    char key[30] = "";
    DOM_decode("ps,39.123,-97.456,25,17,1.25,1.25", &d_);
    EXPECT_STREQ(FILE_get_key('r', key), "ps,39.123,-97.456,25,17,1.25,");
    EXPECT_EQ(DOM_decode(nullptr, &d_), missing);
}

// No word of the table of projections hides another one's.
TEST_F(Region, ProjectionWords) {
    for (const Projection& row : map_projections()) {
        for (const char* word : row.words) {
            if (word != nullptr) {
                EXPECT_EQ(DOM_proj_str(*word == '=' ? word + 1 : word), row.code) << word;
            }
        }
    }
    EXPECT_EQ(DOM_proj_str("lambaz"), 4);
    EXPECT_EQ(DOM_proj_str("xpx"), -1);
    EXPECT_EQ(DOM_proj_str(nullptr), -1);
}

TEST_F(Region, Refused) {
    dir_.write("zyr.reg", "loop Circle 0 loop\nbad Bad 0 1,2,3,4,5,6,7,8,9\n");
    dir_.write("mine.reg", "a A_name 1 10,20\n");
    for (const char* text :
         {"1,2,3,4,5,6,7,8,9", "foo,40,-95,1", "a,b", "40,nan", "1e99,3", "fi:none.reg", "x.reg:us",
          "none.reg:", "fi:|echo us", "fi:-", "loop", "bad", "mine.reg:c"}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(DOM_decode(text, &d_), -1) << text;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), invalid_line) << text;
    }
}

TEST_F(Region, Files) {
    dir_.write("zyr.reg", "# the first\nhere Right_here 1 35,-97,0.5\n"
                          "far Far_away 0 mine.reg:b\n\nlate Late 1 1,2\n");
    dir_.write("mine.reg", "a A_name 1 10,20\nb Hidden 0 12,22\n");
    dir_.write("bare.reg", "#c\n13,23,0.25\n");
    const char* const rows[][2] = {
        {"HERE",        "2: 1 - - 35 -97 25 17 0.5 0.5" },
        {"far",         "2: 1 - - 12 22 25 17 1.2 1.2"  },
        {"fi:mine.reg", "2: 1 - - 10 20 25 17 1.2 1.2"  },
        {"bare.reg:x",  "2: 1 - - 13 23 25 17 0.25 0.25"},
        {"mine.reg:B",  "2: 1 - - 12 22 25 17 1.2 1.2"  },
        {"late",        "2: -1 - - - - 25 17 1.2 1.2"   }, // after a blank line
        {"mine.reg:",   "2: -9999 - - - - - - - -"      }, // the menu alone
    };
    expect_decoded(rows);
}

TEST_F(Region, Menu) {
    dir_.write("zyr.reg", "abcdefg A_name_longer_than_twenty_letters 7 10,20\nb Hidden 0 12,22\n");
    feed_stdin("list\nexit\n");
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            DOM_prompt_region(&d_, 1);
        },
        testing::ExitedWithCode(0),
        "  1: A name longer than t .* Abbr    Description\nabcdefg  A_name_longer_than_twenty");
}

TEST_F(Region, Prompt) {
    dir_.write("zyr.reg", "ta Tornado_Alley 1 37,-98,1\nzz Zed 1 12,13\n");
    feed_stdin("nonsense\n2\na,b\n40,-95,0.5\nback\n");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(DOM_prompt_region(&d_, 1), 2);
    EXPECT_EQ(d_.clat, 12);
    EXPECT_EQ(DOM_prompt_region(&d_, 1), 1);
    EXPECT_EQ(d_.clat, 40);
    EXPECT_EQ(DOM_prompt_region(&d_, 1), 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("\n        Region Menu\n"),
              std::string::npos);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("Invalid domain\n") + invalid_line + "Invalid domain\n");
    // A resource gives one domain and no prompt after it, or ends the program.
    RES_put("plot_domain", "miss"); // leaves the question to the next one
    RES_put("region", "nowhere");
    EXPECT_EXIT(DOM_prompt_region(&d_, 1), testing::ExitedWithCode(43), "^Invalid domain\n");
    RES_put("region", "zz");
    EXPECT_EQ(DOM_prompt_region(&d_, 1), 2);
    EXPECT_EQ(DOM_prompt_region(&d_, 1), 0);
}

TEST_F(Region, ResourcesForData) {
    RES_put("region", "10,20");
    EXPECT_EQ(DOM_get_region(&d_, 3), 1);
    RES_put("plot_domain", "us");
    EXPECT_EQ(DOM_get_region(&d_, 3), 2);
    EXPECT_EQ(DOM_get_region(&d_, 0), 1); // plot_domain does not count
    for (const char* text : {"nowhere", "zoom,1,2", "1,2,3,4,5,6,7,8,9"}) {
        RES_put("plot_domain", text);
        testing::internal::CaptureStderr();
        EXPECT_EQ(DOM_get_region(&d_, 3), -1) << text;
        EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with(std::string(invalid_line) +
                                                                       '"' + text + "\" "))
            << text;
        EXPECT_EQ(d_.proj, missing) << text; // the data's own is taken
    }
}

TEST_F(Region, CompareAndPrint) {
    Domain a;
    DOM_decode("ps,39,-97,1.5", &a);
    Domain b = a;
    b.plat = 39; // what an unset one stands for
    b.plon = -97;
    EXPECT_EQ(DOM_comp(&a, &b), 1);
    b.clat = 40;
    EXPECT_TRUE(DOM_comp(&a, &b) == 0 && DOM_comp_proj(&a, &b) == 1);
    b.plon = -98;
    EXPECT_EQ(DOM_comp_proj(&a, &b), 0);
    EXPECT_EQ(DOM_aspect(&a), 1.5F);
    b.ny = 1;
    EXPECT_EQ(DOM_aspect(&b), 1.0F);

    testing::internal::CaptureStdout();
    DOM_decode("lc:e:30:-97:25:60,40,-97.5,2", &a);
    DOM_print(mess_print, &a);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "lamb:e:30.000:-97.000:25.000:60.000:,40.000,-97.500,25,17,2.0000,2.0000\n");
}

TEST_F(Region, Priorities) {
    std::istringstream rows("50.1 x 1 50 x 2 19.2 abc 3 12.5 x 4 3 x 6 19.2 +25 5 19.2 -1 2 "
                            "19.2 7x 7");
    std::string change;
    int prior = 0;
    for (float height = 0; rows >> height >> change >> prior;) {
        RES_put("stat_prior", change.c_str());
        DOM_set_base_prior(height);
        EXPECT_EQ(DOM_get_prior(), prior) << height << " " << change;
    }
}

TEST_F(Region, ShippedFile) {
    RES_put("file_path", etc);
    std::istringstream in(read_text(std::string(etc) + "/zyr.reg"));
    std::set<std::string> seen;
    int shown = 0;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string abbr, name, text;
        int flag = -1;
        ASSERT_TRUE(words >> abbr >> name >> flag >> text) << line;
        EXPECT_TRUE(abbr.size() <= 5 && name.size() <= 20 && seen.insert(abbr).second) << line;
        shown += flag;
        RES_put("plot_domain", abbr.c_str());
        EXPECT_EQ(DOM_get_region(&d_, 3), 2) << line;
        EXPECT_LT(d_.nx * static_cast<double>(d_.dx), 370.0) << line; // no counts taken for steps
        EXPECT_TRUE(shows(abbr.c_str(), d_.clat, d_.clon)) << line;
    }
    EXPECT_TRUE(shown <= 19 && seen.size() > 100);
}

TEST_F(Region, ShippedPlaces) {
    RES_put("file_path", etc);
    // Built-in words mean the same with and without the file.
    for (const char* word : {"us", "ne", "at", "se", "mw", "sp", "nw", "sw"}) {
        Domain built_in;
        DOM_get_def_region(word, &built_in);
        DOM_decode(word, &d_);
        EXPECT_EQ(DOM_comp(&built_in, &d_), 1) << word;
    }
    std::istringstream places("pr 18.1 -66.1 gu 13.5 144.8 ak 71.3 -156.8 nhem 1 40 "
                              "globe 70 -100 world -60 179 sate 40 -75 id:DCA 38.85 -77.04 "
                              "ID:DCA,.02 38.85 -77.04 ps,id:sao.cty:DCA,25,17,.02 38.85 -77.04");
    float lat = 0, lon = 0;
    for (std::string word; places >> word >> lat >> lon;) {
        EXPECT_TRUE(shows(word.c_str(), lat, lon)) << word;
    }
    EXPECT_FALSE(shows("ct", 40, -75.2F));
    EXPECT_EQ(DOM_decode("id:XXXYY", &d_), -1);
}
