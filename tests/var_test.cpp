// Variable texts, variable files, their menus and labels.
#include "var_tool.h"

#include "feed_stdin.h"
#include "plt_tool.h"
#include "run_program.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>
#include <string>

namespace {

const TempDir& files() {
    static const TempDir dir;
    return dir;
}

// The table as "flag type name time/level [units] {format}" a record, what is
// unset left out.
std::string decoded(const char* file, const std::string& text) {
    const int result = VAR_setup(file, text.c_str());
    std::string all;
    for (int i = 0; i < VAR_get_num(); ++i) {
        const VAR_data& var = VAR_get_vars()[i];
        all += (i > 0 ? "; " : "") + std::to_string(var.flag) + " " + VAR_print_type(var.type) +
               " " + var.name;
        if (is_set(var.time) && var.time != 0) {
            all += " " + std::to_string(var.time) + "/" + std::to_string(var.level);
        }
        all += var.units[0] != '\0' ? " [" + std::string(var.units) + "]" : "";
        all += var.format[0] != '\0' ? " {" + std::string(var.format) + "}" : "";
    }
    EXPECT_EQ(result, VAR_get_num() > 0 ? 1 : 0) << text;
    return all;
}

struct Row {
    const char* text;
    const char* expected;
};

class VarText : public testing::Test {
protected:
    void SetUp() override {
        RES_put("file_path", files().path().c_str());
        files().write("t.var", "# a comment\n"
                               "two Two_things 1 top:kft, h24 : 850 : id::text\n"
                               "long Long 0 a, \\\n  b,\\\n c\n"
                               "top Top_of_it 1 top:kft:value:%3.0f\n"
                               "grp Group 1 {x,y}\n"
                               "ping Ping 1 pong,pong,pong,pong,pong\n"
                               "pong Pong 1 ping,ping,ping,ping,ping,ping\n"
                               "none Nothing 1\n");
        files().write("variable.lup", "# numbers abbreviation name\n"
                                      "11,1,,3 T Temperature\n"
                                      "52 rh Relative humidity\n"
                                      "61\n");
    }
};

TEST_F(VarText, Forms) {
    constexpr Row rows[] = {
        {"top:C:cf",                      "0 fcont top [C]"                                    },
        {"id, meso",                      "0 value id; 0 value meso"                           },
        {"h12:500:hght:m:mark:co=red:ur", "0 mark hght 12/500 [m] {co=red:ur}"                 },
        {"id::text:fm=a:b:c",             "0 text id {fm=a:b:c}"                               },
        {"id:kt:%3.1f",                   "0 value id [kt] {%3.1f}"                            },
        {"Plot, map::ul",                 "4 plot Plot; 4 map map {:ul}"                       },
        {"cont,WX",                       "0 cont cont; 0 symb WX"                             },
        {"#12.5, +T",                     "0 const #12.5; 0 value T"                           },
        {"f(a, g(b,c)), d",               "2 value f; 10 value a; 12 value g; 20 value b; 20 value "
                            "c; 0 value d"                          },
        {"m{a, v<b>}[kt:mark:ul]",        "5 mark m [kt] {ul}; 1 value a; 6 value v; 2 value b"},
        {"a[:value:ur],f(b[:mark:ul])",   "0 value a {ur}; 2 value f; 10 value b"              },
        {"a\\,b, c\\[d",                  "0 value a,b; 0 value c[d"                           },
        {"a,f(b,c",                       "0 value a; 2 value f"                               },
        {"a,{b},v<c",                     "0 value a; 5 value ; 1 value b; 6 value v"          },
        {"a[b,c",                         "0 value a"                                          },
        {"[kt],,a,",                      "0 value a"                                          },
        {"",                              ""                                                   },
        {"h24:700:m{a,h6:500:b}",         "5 value m 24/700; 1 value a 24/700; 1 value b 6/500"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(decoded(nullptr, row.text), row.expected) << row.text;
    }
}

TEST_F(VarText, Definitions) {
    constexpr Row rows[] = {
        {"two",                      "0 value top [kft] {%3.0f}; 0 text id 24/850"            },
        {"h6:500:two",               "0 value top 6/500 [kft] {%3.0f}; 0 text id 24/850"      },
        {"h6:500:long",              "0 value a 6/500; 0 value b 6/500; 0 value c 6/500"      },
        {"top, +top, TOP",           "0 value top [kft] {%3.0f}; 0 value top; 0 value TOP"    },
        {"top[m:mark:ul],long:x:wx", "0 mark top [m] {ul}; 0 value a; 0 value b; 0 symb c [x]"},
        {"grp,none,z",               "5 value ; 1 value x; 1 value y; 0 value z"              },
        {"fi:t.var:none,fi",         "0 value fi"                                             },
        {"fi:absent.var:top",        "0 value top"                                            },
    };
    for (const Row& row : rows) {
        EXPECT_EQ(decoded("t.var", row.text), row.expected) << row.text;
    }
}

// Numbers of the lookup file, of ensembles and of names that are numbers.
TEST_F(VarText, Numbers) {
    const auto numbers = [](const char* text) {
        VAR_setup(nullptr, text);
        const VAR_data& var = VAR_get_vars()[0];
        return std::string(var.name) + " " + std::to_string(var.var[0]) + " " +
               std::to_string(var.var[1]) + " " + std::to_string(var.var[3]);
    };
    constexpr Row rows[] = {
        {"t",                  "t 11 1 -9999"                          },
        {"max-T",              "max-T 11 1 -9999"                      },
        {"11",                 "Temperature 11 -9999 -9999"            },
        {"99",                 "99 99 -9999 -9999"                     },
        {"rain",               "rain -9999 -9999 -9999"                },
        {"ensmean\\[]rh",      "ensmean[]rh 19000052 -9999 -9999"      },
        {"ensdev\\[]rain",     "ensdev[]rain -9999 -9999 -9999"        },
        {"ens\\[-2]rh",        "ens[-2]rh 19322052 -9999 -9999"        },
        {"ens\\[+3]rh",        "ens[+3]rh 19343052 -9999 -9999"        },
        {"ensprob\\[>2.5]rh",  "ensprob[>2.5]rh 1910522025 -9999 -9999"},
        {"ensprob\\[\\<-50]t", "ensprob[<-50]t 1910116150 1 -9999"     },
        {"ensprob\\[^2]99999", "ensprob[^2]99999 -9999 -9999 -9999"    },
    };
    for (const Row& row : rows) {
        EXPECT_EQ(numbers(row.text), row.expected) << row.text;
    }
}

// What nests too deep, is too long or multiplies is left out, and what follows
// is read as far as there is room.
TEST_F(VarText, Limits) {
    std::string deep = "a";
    for (int i = 0; i < 30; ++i) {
        deep = "g" + std::to_string(i) + "{" + deep + "}";
    }
    VAR_setup(nullptr, (deep + ",z").c_str());
    EXPECT_EQ(VAR_get_num(), 11);
    EXPECT_STREQ(VAR_get_name(10), "z");
    std::string many;
    for (int i = 0; i < 200; ++i) {
        many += "v" + std::to_string(i) + ",";
    }
    VAR_setup(nullptr, many.c_str());
    EXPECT_EQ(VAR_get_num(), var_max);
    VAR_setup(nullptr, std::string(1000000, '(').c_str());
    VAR_setup("t.var", "ping,z");
    EXPECT_STREQ(VAR_get_name(VAR_get_num() - 1), "z");
    const std::string name(10000, 'n');
    VAR_setup(nullptr, (name + ":" + name + ":" + name + ":" + name).c_str());
    EXPECT_EQ(std::string(VAR_get_name(0)), name.substr(0, 19));
    EXPECT_STREQ(VAR_get_name(1), "");
    EXPECT_STREQ(VAR_get_name(-1), "");
}

// `plot_type` lays contour kinds over every record and grids under vectors; a
// setting's type gives way to it.
TEST_F(VarText, PlotType) {
    FLAG_set(flag_plot_type, 15);
    EXPECT_EQ(decoded(nullptr, "a,b::mark,c[:text:ul]"), "0 fcont a; 0 mark b; 0 fcont c {ul}");
    FLAG_set(flag_plot_type, 11);
    EXPECT_EQ(decoded(nullptr, "a"), "0 grid a");
    EXPECT_EQ(VAR_is_type_PLOT(0), 0);
    FLAG_set(flag_plot_type, 99);
    EXPECT_EQ(decoded(nullptr, "f(a[x:mark]),c[:text:ul]"), "2 value f; 10 value a; 0 text c {ul}");
    EXPECT_EQ(VAR_is_type_PLOT(2), 1);
    EXPECT_EQ(VAR_is_LABEL(0), 1);
    EXPECT_EQ(VAR_is_LABEL(1), 0);
}

TEST_F(VarText, Labels) {
    const auto label = [](const char* text, int type) {
        PLT_set_label_type(type);
        VAR_setup(nullptr, text);
        char out[plt_label_size] = "";
        EXPECT_EQ(VAR_make_var_form_datatype(0, out), 0);
        return std::string(out);
    };
    EXPECT_EQ(label("h12:500:t:C:value:ur", 1), "500 mb Temperature (C) - ur");
    EXPECT_EQ(label("h12-6acc:500:t:C:value:ur", 0), "6 hour acc 500 mb Temperature (C)");
    EXPECT_EQ(label("t:C", -1), "T (C)");
    EXPECT_EQ(label("t", -2), "T");
    EXPECT_EQ(label("meso:kt", 1), "meso (kt)");
    EXPECT_EQ(label("77", 0), "v77");
    EXPECT_EQ(
        label(("sfc:" + std::string(300, 'x') + "::" + std::string(300, 'y')).c_str(), 1).size(),
        69U);
    EXPECT_EQ(VAR_make_var_form_datatype(1, std::string(80, ' ').data()), -1);
    RES_put("plot_param", "strong,labminimal");
    VAR_setup(nullptr, "t");
    EXPECT_EQ(PLT_get_label_type(), -2);
}

TEST_F(VarText, Conditions) {
    VAR_set_model_str("rcm2");
    FLAG_reset(missing);
    FLAG_set(flag_def_time, 12);
    struct {
        const char* condition;
        int shown;
    } const rows[] = {
        {"1",                    1},
        {"0",                    0},
        {"mo=rcm2",              1},
        {"mo=rcm",               0},
        {"mo=r*",                1},
        {"mo=*c*2",              1},
        {"mo=*c",                0},
        {"mo=rc?2",              1},
        {"mo=....",              1},
        {"mo=rcm[0-9]",          1},
        {"mo=rcm[13]",           0},
        {"mo=mdr|rcm2",          1},
        {"mo=~mdr",              1},
        {"mo=~rcm2",             0},
        {"mo=mdr|~sao",          1},
        {"mo=r*&ft=1?",          1},
        {"mo=r*&ft=24",          0},
        {"mo=mdr,ft=12",         1},
        {"le=",                  1},
        {"le=500",               0},
        {"xx=rcm2",              0},
        {"",                     0},
        {"mo=[",                 0},
        {"mo=****************x", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(VAR_menu_display(row.condition), row.shown) << row.condition;
    }
}

TEST_F(VarText, Menu) {
    char text[81] = "";
    VAR_open_file("t.var");
    EXPECT_EQ(VAR_read_menu(), 6);
    FLAG_set(flag_batch, 1);
    EXPECT_EQ(VAR_menu("Title", "? ", text, 3), 1);
    EXPECT_STREQ(text, "two");
    FLAG_set(flag_batch, 0);
    feed_stdin("list\n2\n0\nh12:500:t\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(VAR_menu("Title", "? ", text, 3), 1);
    EXPECT_STREQ(text, "top");
    EXPECT_EQ(VAR_menu("Title", "? ", text, 3), 0);
    EXPECT_EQ(VAR_menu("Title", "? ", text, 3), missing);
    EXPECT_STREQ(text, "h12:500:t");
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("  1: Two things"), std::string::npos) << out;
    EXPECT_NE(out.find("  0: Return to previous menu"), std::string::npos) << out;
    EXPECT_NE(out.find(" Abbr    Description\ntwo      Two things"), std::string::npos) << out;
    EXPECT_EQ(VAR_open_file("absent.var"), 0);
    FLAG_set(flag_batch, 1);
    VAR_menu("Title", "? ", text, 3);
    EXPECT_STREQ(text, "def");
}

} // namespace
