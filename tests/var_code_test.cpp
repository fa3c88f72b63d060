// Time and level codes of variables, and their labels.
#include "var_tool.h"

#include "zyr.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <sstream>
#include <string>

namespace {

// Words split at blanks, and what is expected of each, in the same order.
using Rows = std::initializer_list<std::pair<const char*, const char*>>;

// Runs `decode` on every word and joins what it gives.
template <class Decode> void check(Rows rows, Decode decode) {
    for (const auto& [all_words, results] : rows) {
        std::istringstream words(all_words);
        std::string all;
        for (std::string word; words >> word;) {
            all += (all.empty() ? "" : " ") + decode(word.c_str());
        }
        EXPECT_EQ(all, results) << all_words;
    }
}

// Each as status:time; 77 is what stood there before.
TEST(VarCode, Times) {
    FLAG_set(flag_def_time, 12);
    const auto decode = [](const char* word) {
        int time = 77;
        const int status = VAR_dec_time(word, &time);
        return std::to_string(status) + ":" + std::to_string(time);
    };
    EXPECT_EQ(decode(""), "1:12");
    check(
        {
            {"time time-6 time-6acc",                  "1:12 1:6 1:4006012"                      },
            {"anal anal-3avg miss init in",            "2:0 2:3003000 2:-9999 2:0 2:0"           },
            {"h12 h12-6 h12-6acc h12-6uavg h12-6what", "2:12 2:12 2:4006012 2:23006012 2:2006012"},
            {"d2 e1 3day 3d 1.5day 2e",                "2:48 2:36 2:72 2:72 2:36 2:60"           },
            {"TT h hght 500 -6 h12x",                  "0:77 0:77 0:77 0:77 0:77 0:77"           },
            {"h99999999999-1",                         "2:9999"                                  }
    },
        decode);
}

// The enclosing item comes before the flags, and nothing gives 0.
TEST(VarCode, Inheritance) {
    const auto inherited = [](const char* text) {
        int time = 77;
        int ltype = 77;
        int level = 78;
        std::ostringstream all;
        all << VAR_dec_time(text, &time) << ':' << time << ' ';
        all << VAR_dec_level(text, &ltype, &level) << ':' << ltype << ':' << level;
        return all.str();
    };
    FLAG_reset(missing);
    EXPECT_EQ(inherited(""), "2:0 2:77:78");
    FLAG_set(flag_def_ltype, 100);
    FLAG_set(flag_def_level, 700);
    EXPECT_EQ(inherited(""), "2:0 1:100:700");
    int held = 0;
    while (VAR_base_push({1, 2, 24 + held, 2, 103, 10}) == 0) {
        ++held;
    }
    EXPECT_EQ(held, 10);
    EXPECT_EQ(inherited(""), "1:33 1:103:10");
    EXPECT_EQ(inherited("level"), "0:77 1:100:700");
    EXPECT_EQ(inherited("time-3"), "1:30 2:77:78");
    int left = 0;
    while (VAR_base_pop() == 0) {
        ++left;
    }
    EXPECT_EQ(left, 10);
    EXPECT_EQ(inherited(""), "2:0 1:100:700");
}

// Each as type:level, or with its label.
TEST(VarCode, LevelsAndTheirLabels) {
    char label[var_label_size] = "";
    const auto decode = [&](const char* word) {
        int ltype = 77;
        int level = 78;
        EXPECT_EQ(VAR_dec_level(word, &ltype, &level), 2) << word;
        const int result = VAR_make_datalevel(0, ltype, level, label);
        EXPECT_EQ(result, ltype == 77 || ltype == missing ? -1 : 0) << word;
        return std::to_string(ltype) + ":" + std::to_string(level);
    };
    const auto labelled = [&](const char* word) {
        decode(word);
        return "[" + std::string(label) + "]";
    };
    check(
        {
            {"none miss sfc sfc[3 trop - sl sclw_top",
             "0:0 -9999:-9999 1:0 1:3 7:0 9:0 102:0 254:0"                                            },
            {"500 p500 850-500 p500-850",                    "100:500 100:500 101:50085 101:50085"    },
            {"sfc-500mb trop-100 sfc[50]-700",               "101:50190 101:10195 101:70205"          },
            {"1000ft 1000-2000ft h1000-3000 trop+1000m",     "103:304 104:6003 104:30010 104:10995"   },
            {"a2 0-3000m_ag s0.995 s0.8-0.45 0.57sig",
             "105:2 106:30000 107:9950 108:450800 107:5700"                                           },
            {"12lev k315 k300-350 30mb_ag 30mb_ag-0",        "109:12 113:315 114:350300 115:30 116:30"},
            {"2pv 0.9eta 0.9-0.5eta p99999999999 999999eta",
             "117:2 119:9000 120:500900 100:999999 119:999999999"                                     },
            {"s.5 5parsec 500- 12lev-14 1.2.3 s850-11005",   "77:78 77:78 77:78 77:78 77:78 77:78"    }
    },
        decode);
    check(
        {
            {"miss sfc[3 850-500 sfc-500 trop-100",
             "[] [Surface[3]] [850-500 mb] [sfc-500 mb] [trop-100 mb]"                         },
            {"a2 0-3000m_ag s0.995 s0.8-0.45",
             "[2 m AG] [0-3000 m AG] [0.99 sigma] [0.80-0.45 sigma]"                           },
            {"12lev k315 k300-350 30mb_ag-0",       "[12 lev] [315 K] [300-350 K] [30-0 mb AG]"},
            {"2pv 0.9-0.5eta",                      "[2*10^-6 Km2/kgs] [0.90-0.50 Eta]"        }
    },
        labelled);
}

TEST(VarCode, TimeLabels) {
    const auto labelled = [](const char* word) {
        char label[var_label_size] = "";
        VAR_make_datalevel(std::stoi(word), 100, 500, label);
        return "[" + std::string(label) + "]";
    };
    check(
        {
            {"12 -9999 4006012", "[500 mb] [500 mb] [6 hour acc 500 mb]"   },
            {"13006012 3801805", "[12 hour iavg 500 mb] [4 day avg 500 mb]"},
            {"6901902 8000006",  "[1 month max 500 mb] [6 hour 500 mb]"    }
    },
        labelled);
}

} // namespace
