// Items on a map: the format language and what of each type reaches the page.
#include "zyrraw.h"

#include "cont.h"
#include "figure_page.h"
#include "map.h"
#include "maptran.h"
#include "region.h"
#include "run_program.h"
#include "wx_symb.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

namespace {

// What `draw` puts on a map of 100 by 100 units, as "T(x,y) text", "L points"
// and "A points" of the figures in order. Letters are left out of the lines.
std::string drawn(const std::function<void()>& draw) {
    Domain stereo;
    DOM_decode("latlon:40:-97,40,-97,101,101,1,1", &stereo);
    FigurePage page(stereo, ZYR_SOURCE_DIR);
    page.window({0.0F, 100.0F, 0.0F, 100.0F});
    draw();
    page.read(tran_map);
    std::string all;
    for (const FigureText& text : page.texts) {
        all += "T" + show({text.pos}) + " " + text.text + "\n";
    }
    for (const Figure& figure : page.figures) {
        all += (figure.filled ? "A" : "L") + show(figure.points) + "\n";
    }
    return all;
}

RAW_data item(int type, const char* format, const char* text, float a = missing_f,
              float b = missing_f) {
    RAW_data data;
    data.x = 50;
    data.y = 50;
    data.type = type;
    copy_text(data.format, sizeof data.format, format);
    copy_text(data.data, sizeof data.data, text);
    data.value[0] = a;
    data.value[1] = b;
    return data;
}

std::string drawn(const RAW_data& data, const char* plot_param = "") {
    return drawn([&] {
        RES_put("plot_param", plot_param);
        const Gattribs none;
        EXPECT_EQ(RAW_plot_init(&none, 1.0F), 0);
        RAW_plot_data(&data);
    });
}

TEST(RawPlot, Formats) {
    const auto parsed = [](const char* format) {
        RAW_attribs a;
        const int type = RAW_parse_format(&a, format);
        char text[200] = "";
        std::snprintf(text, sizeof text, "%d %.3f,%.3f %d%d %g %d %s|%s|%s %d", type,
                      static_cast<double>(a.x), static_cast<double>(a.y), a.hor, a.vert,
                      static_cast<double>(a.scale), a.marker, a.text, a.format, a.symbol, a.skip);
        return std::string(text);
    };
    const struct {
        const char* format;
        const char* expected;
    } rows[] = {
        {"",                     "0 0.000,0.000 23 1 0 || 1"         },
        {"%4.1f:UL",             "2 -0.012,0.020 33 1 0 |%4.1f| 1"   },
        {"lr:wx:sf=sky.smb",     "36 0.012,-0.020 13 1 0 ||sky.smb 1"},
        {"CR:mk=dot:mk=TRI",     "0 0.012,0.000 13 1 7 || 1"         },
        {"xy=-2,1.5:ta=lt",      "0 -0.024,0.030 11 1 0 || 1"        },
        {"xy=3-1",               "0 0.036,-0.020 13 1 0 || 1"        },
        {"ta=rs:sk=4:tx=ab",     "0 0.000,0.000 34 1 0 ab|| 4"       },
        {"sc=0:fm=%z5.1f",       "2 0.000,0.000 23 1 0 |%z5.1f| 1"   },
        {"sc=2.5:value:text",    "3 0.000,0.000 23 2.5 0 || 1"       },
        {"hi=-3:wi=x:zz=1:sk=0", "0 0.000,0.000 23 1 0 || 1"         },
        {"tx=abcdefghijklmnopq", "0 0.000,0.000 23 1 0 abcdefghi|| 1"},
        {":::mk=1001:",          "0 0.000,0.000 23 1 1001 || 1"      },
        {"co",                   "0 0.000,0.000 23 1 0 || 1"         },
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parsed(row.format), row.expected) << row.format;
    }
    int marker = 0;
    for (const char* word : {"pnt", "plus", "star", "crcl", "x", "sqr", "tri", "dot", "itri"}) {
        RAW_attribs a;
        RAW_parse_format(&a, ("mk=" + std::string(word)).c_str());
        EXPECT_EQ(a.marker, ++marker) << word;
    }
}

// The number as it is written, by format. Formats of files never reach printf.
TEST(RawPlot, NumberFormats) {
    const struct {
        const char* format;
        float value;
        const char* expected;
    } rows[] = {
        {"",            21.6F,  "22"      },
        {"%z3.1f",      0.5F,   ".5"      },
        {"%z3.1f",      -0.5F,  "-.5"     },
        {"%z6.2f",      0.25F,  "  .25"   },
        {"%z1.0f",      0.2F,   "0"       },
        {"fm=%04.0fmb", 998.4F, "0998mb"  },
        {"%+5.1e",      12.0F,  "+1.2e+01"},
        {"%s",          7.0F,   "7"       },
        {"%n",          7.0F,   "7"       },
        {"%500f",       7.0F,   "7"       },
        {"%.500f",      7.0F,   "7"       },
        {"%*f",         7.0F,   "7"       },
        {"%f%f",        7.0F,   "7"       },
        {"%Lf",         7.0F,   "7"       },
        {"%",           7.0F,   "7"       },
        {"%5",          7.0F,   "7"       },
        {"%zs",         7.0F,   "7"       },
        {"fm=plain",    7.0F,   "7"       },
    };
    for (const auto& row : rows) {
        const std::string all = drawn(item(2, row.format, "", row.value));
        EXPECT_NE(all.find(std::string(") ") + row.expected + "\n"), std::string::npos)
            << row.format << " " << all;
    }
}

// Counts of lines and areas, and the first figure, of each type.
TEST(RawPlot, Types) {
    const auto summary = [](const RAW_data& data) {
        const std::string all = drawn(data);
        const auto count = [&](char c) {
            return std::to_string(std::count(all.begin(), all.end(), c));
        };
        return count('T') + " " + count('L') + " " + count('A') + " " +
               all.substr(0, all.find('\n'));
    };
    EXPECT_EQ(drawn(item(4, "", "")), "");
    EXPECT_EQ(drawn(item(23, "", "", 90, 0)), "");
    EXPECT_EQ(drawn(item(35, "", "", 90)), "");
    EXPECT_EQ(drawn(item(31, "", "")), "");
    EXPECT_EQ(drawn(item(32, "", "", -1, 20)), "");
    EXPECT_EQ(summary(item(31, "", "4")).substr(0, 5), "0 1 1");
    EXPECT_EQ(summary(item(31, "", "", 8)).substr(0, 5), "0 0 1");
    EXPECT_EQ(summary(item(33, "", "", 0, 0)).substr(0, 22), "0 1 0 L(51.30,50.00) (");
    EXPECT_EQ(summary(item(33, "", "", 0, 10)), "0 2 0 L(50.00,51.00) (50.00,55.00)");
    EXPECT_EQ(summary(item(34, "", "", 0, 0)).substr(0, 5), "0 2 0");
    EXPECT_EQ(summary(item(34, "", "", 0, 10)).substr(0, 5), "0 3 0");
    EXPECT_EQ(summary(item(32, "sc=2", "", 0, 10)), "0 2 0 L(50.00,50.00) (50.00,60.00)");
    EXPECT_EQ(summary(item(23, "", "", 0, 20)).substr(0, 5), "0 7 0");
    EXPECT_EQ(summary(item(35, "", "", 180, 100)), "0 3 0 L(50.00,50.00) (50.00,51.85)");
}

// A fixed text, marker, line or bar comes before the type; the place of a text
// is that of its word.
TEST(RawPlot, Settings) {
    EXPECT_EQ(drawn(item(2, "tx=Hi:ur", "x", 5)).substr(0, 17), "T(51.20,52.00) Hi");
    EXPECT_EQ(drawn(item(2, "mk=4", "")), "");
    EXPECT_NE(drawn(item(2, "mk=1001", "x")).find("L(51.00,50.00)"), std::string::npos);
    EXPECT_EQ(drawn(item(2, "co=none", "x", 5)), "");
    EXPECT_EQ(drawn(item(2, "mn=6", "", 5)), "");
    EXPECT_EQ(drawn(item(2, "mx=6", "x")).substr(0, 16), "T(50.00,50.00) x");
    EXPECT_EQ(drawn(item(2, "", "", 5), "ybar=-3,cl"), "L(48.50,50.00) (48.50,-3.00)\n");
    RES_put("plot_format", "lc:sc=2");
    EXPECT_EQ(drawn(item(2, "", "", 5), "text=AB").substr(0, 17), "T(50.00,46.00) AB");
}

TEST(RawPlot, Lines) {
    const auto lines = [](std::initializer_list<RAW_data> items) {
        return drawn([&] {
            const Gattribs none;
            RAW_plot_init(&none, 1.0F);
            for (const RAW_data& data : items) {
                RAW_plot_data(&data);
            }
        });
    };
    const auto at = [](float x, float y, const char* text) {
        RAW_data data = item(37, "", text);
        data.x = x;
        data.y = y;
        return data;
    };
    EXPECT_EQ(lines({at(1, 2, "post"), at(1, 2, "-"), at(3, 4, "")}),
              "L(3.00,4.00) (1.00,2.00)\nL(3.00,4.00) (1.00,2.00)\n");
    EXPECT_EQ(lines({at(1, 2, "pre"), at(3, 4, "pre")}), "L(3.00,4.00) (1.00,2.00)\n");
    RAW_data place = at(1, 2, "40,-97");
    place.value[0] = 40;
    place.value[1] = -97;
    float x = 0;
    float y = 0;
    const std::string all = lines({place});
    MAP_tran(40, -97, &x, &y);
    EXPECT_EQ(all, "L" +
                       show({
                           {1, 2},
                           {x, y}
    }) +
                       "\n");
}

// Colours by level: from `con_interval`, and from the wind's speed.
TEST(RawPlot, ColoursByLevel) {
    RES_put("color_fill", "Red,Green,off");
    RES_put("con_interval", "10");
    const auto color = [](const RAW_data& data) {
        Domain stereo;
        DOM_decode("latlon:40:-97,40,-97,101,101,1,1", &stereo);
        FigurePage page(stereo, ZYR_SOURCE_DIR);
        const Gattribs none;
        RAW_plot_init(&none, 1.0F);
        RAW_plot_data(&data);
        page.read(tran_map);
        return page.figures.empty() ? std::string("-") : page.figures[0].color;
    };
    EXPECT_EQ(color(item(31, "", "0", 5)), "red");
    EXPECT_EQ(color(item(31, "", "0", 15)), "green");
    EXPECT_EQ(color(item(31, "co=blue", "0", 15)), "blue");
    EXPECT_EQ(color(item(31, "", "0", 25)), "-");
    EXPECT_EQ(color(item(32, "", "", 25, 15)), "green");
    // Colours that suit the data of the radar are not those of items over them.
    RES_put("color_fill", "auto");
    RES_put("con_interval", "");
    CONT_set_quantity("reflectivity");
    EXPECT_EQ(color(item(31, "co=blue", "0", -20)), "blue");
    EXPECT_EQ(color(item(31, "", "0", 45)), "green");
}

// An overlay leaves levels, bar and fills of the plot about it as they were.
TEST(RawPlot, OverlayLeavesThePlotAlone) {
    const TempDir dir;
    const std::string name = dir.write("a.raw", "A 40 -97 3:31 4\n");
    const float levels[] = {1, 5, 9};
    drawn([&] {
        CONT_set_values(levels, 3);
        CONT_set_fill_colors("Red,Green,Blue", 1);
        CONT_set_bar(2);
        Gattribs before;
        CONT_get_fill_attrib(6, &before);
        gset_fill_print_solid(0);
        EXPECT_EQ(MAP_process(("rf:" + name).c_str()), 0);
        Gattribs after;
        CONT_get_fill_attrib(6, &after);
        EXPECT_EQ(before.color, after.color);
        EXPECT_EQ(CONT_get_values(nullptr), 3);
        EXPECT_EQ(CONT_get_bar(), 2);
        EXPECT_EQ(gget_fill_print_solid(), 0);
    });
}

// On every projection an item lies at its place, with the same figures, and a
// north wind comes from where north is there, or from above where directions are
// not turned. The satellite's inverse does not bring its directions back.
TEST(RawPlot, EveryProjection) {
    const TempDir dir;
    const std::string name =
        dir.write("a.raw", "A 41 -93 0,25:wbarb 42,-93:line -7:%1.0f 61:wx 3:cloud 0,20:vbarb\n");
    enum class North { meridian, up, any };
    struct Row {
        const char* projection;
        North north;
    };
    for (const auto& [projection, north] : std::initializer_list<Row>{
             {"ll",                North::meridian},
             {"ps",                North::meridian},
             {"lamb:30:-97:30:60", North::meridian},
             {"merc",              North::meridian},
             {"la",                North::up      },
             {"gn",                North::up      },
             {"or",                North::up      },
             {"mo",                North::up      },
             {"sat:0:-75",         North::any     }
    }) {
        Domain domain;
        DOM_decode((std::string(projection) + ",38,-97,41,31,.5,.5").c_str(), &domain);
        FigurePage page(domain, ZYR_SOURCE_DIR);
        RES_put("file_path", ZYR_SOURCE_DIR "/etc");
        EXPECT_EQ(RAW_plot_file(name.c_str(), 0), 0);
        Gpt at;
        EXPECT_EQ(MAP_tran(41, -93, &at.x, &at.y), 1) << projection;
        page.read(tran_map);
        const auto angle = [](const Figure& line) {
            const Gpt from = line.points[0];
            const Gpt to = line.points[1];
            return static_cast<double>(std::atan2(to.x - from.x, to.y - from.y)) * 180 / 3.14159265;
        };
        const std::vector<Figure> lines = page.lines();
        ASSERT_EQ(lines.size(), 10U) << projection; // barb 4, line, cloud 2, arrow 3
        EXPECT_NEAR(lines[0].points[0].x, at.x, 0.02) << projection;
        EXPECT_NEAR(lines[0].points[0].y, at.y, 0.02) << projection;
        if (north != North::any) {
            EXPECT_NEAR(angle(lines[0]), north == North::up ? 0.0 : angle(lines[4]), 0.6)
                << projection;
        }
        ASSERT_EQ(page.texts.size(), 1U);
        EXPECT_EQ(page.texts[0].text, "-7");
    }
}

// Of thousands of stations a picture shows those of its priority: more, the less
// of the country it holds.
TEST(RawPlot, StationsThinOut) {
    const TempDir dir;
    std::istringstream cities(read_text(ZYR_SOURCE_DIR "/etc/sao.cty"));
    std::string rows;
    std::array<std::string, 7> w;
    for (std::string line; std::getline(cities, line);) {
        std::istringstream words(line);
        for (std::string& word : w) {
            words >> word;
        }
        rows += w[3] + " - - 1:%1.0f\n";
    }
    const std::string name = dir.write("all.raw", rows);
    const auto shown = [&](const char* text, const char* priority) {
        Domain domain;
        DOM_decode(text, &domain);
        FigurePage page(domain, ZYR_SOURCE_DIR);
        RES_put("file_path", ZYR_SOURCE_DIR "/etc");
        RES_put("identifier", "all");
        RES_put("stat_prior", priority);
        DOM_set_base_prior(static_cast<float>(domain.ny - 1) * domain.dy);
        RAW_plot_file(name.c_str(), 1);
        page.read(tran_map);
        return page.texts.size();
    };
    const char* const country = "ps,39,-97,51,31,1,1";
    const std::size_t chosen = shown(country, "+0");
    EXPECT_GT(chosen, 20U);
    EXPECT_LT(chosen, 400U);
    EXPECT_GT(shown(country, "+1"), chosen);
    EXPECT_LT(shown(country, "1"), chosen + 1);
    EXPECT_GT(shown(country, "9"), 2500U);
}

// A file with labels takes places from the stations of its priority.
TEST(RawPlot, Files) {
    const TempDir dir;
    const std::string name = dir.write("a.raw", "ZYRRAW\n1200Z 23 NOV 26\n!Obs\n"
                                                "id lat lon t:Temp:%1.0f w:Wx:ur\n$\n"
                                                "OKC 35 -97 21 a_b\nXYZ 39 -97 22 c\n"
                                                "QQQ - - 7 d\n");
    const auto texts = [&](const char* file, int label) {
        const std::string all = drawn([&] {
            RES_put("file_path", dir.path().c_str());
            RAW_plot_file(file, label);
        });
        std::string seen;
        for (std::size_t at = all.find("T("); at != std::string::npos;
             at = all.find("T(", at + 1)) {
            const std::size_t begin = all.find(") ", at) + 2;
            seen += all.substr(begin, all.find('\n', begin) - begin) + ";";
        }
        return seen;
    };
    EXPECT_EQ(texts(name.c_str(), 0), "21;a b;22;c;");
    EXPECT_EQ(texts((name + "-t:ul").c_str(), 0), "21;22;");
    EXPECT_EQ(texts((name + "-0:sk=2").c_str(), 0), "21;");
    EXPECT_EQ(texts((name + "-9").c_str(), 0), "");
    dir.write("sao.cty", "Oklahoma_City        OK US OKC       1  35.40  -97.60  390.0 72353\n"
                         "Elsewhere            OK US XYZ       3  39.00  -97.00  390.0 72354\n");
    RES_put("stat_prior", "2");
    EXPECT_EQ(texts(name.c_str(), 1), "21;a b;");
    RES_put("identifier", "XYZ");
    EXPECT_EQ(texts(name.c_str(), 1), "");
    RES_put("identifier", "all");
    RES_put("stat_prior", "5");
    EXPECT_EQ(texts(name.c_str(), 1), "21;a b;22;c;");
    RES_put("identifier", "XYZ");
    EXPECT_EQ(texts(name.c_str(), 1), "22;c;");
    // An offset in `plot_param` sets the side, and an alignment in `plot_format` its own.
    RES_put("plot_param", "ul");
    RES_put("plot_format", "ta=lt");
    int hor = 0;
    int vert = 0;
    drawn([&] {
        RAW_plot_file((name + "-t").c_str(), 0);
        GPH_get_text_align(&hor, &vert);
    });
    EXPECT_EQ(hor, GLEFT_HOR);
    EXPECT_EQ(vert, GTOP_VERT);
}

TEST(Symbols, FilesAndAlignment) {
    const TempDir dir;
    std::string many = "RAIN 0,0 1,1 L 0,0 1,0 1,1 Fill $\nRA 0,0 0,1 L\n$\n"
                       "thisnameistoolong 0,0 1,1 L $\nONE 0,0 L $\nLONG";
    for (int i = 0; i < 25; ++i) {
        many += " 0,0." + std::to_string(i + 10);
    }
    many += " L\n$\nBAD 0,0 1,x 1,1 L $\nEND 0,0 1,1";
    dir.write("wx.smb", many);
    const auto symbol = [&](const char* text, int hor, int vert) {
        return drawn([&] {
            RES_put("file_path", dir.path().c_str());
            GPH_text_align(hor, vert);
            WX_symb(50, 50, text, 10);
        });
    };
    EXPECT_EQ(symbol("rainy", 1, 5), "L(50.00,50.00) (60.00,60.00)\nA(50.00,50.00) (60.00,50.00) "
                                     "(60.00,60.00)\n");
    EXPECT_EQ(symbol("RA", 3, 1), "L(40.00,40.00) (40.00,50.00)\n");
    EXPECT_EQ(symbol("RA", 2, 3), "L(45.00,45.00) (45.00,55.00)\n");
    EXPECT_EQ(symbol("thisnameistoolong", 1, 5), "");
    EXPECT_EQ(symbol("ONE", 1, 5), "");
    EXPECT_EQ(symbol("R", 1, 5), "");
    EXPECT_EQ(symbol(" RA", 1, 5), "");
    const std::string path = symbol("LONG", 1, 5);
    EXPECT_EQ(std::count(path.begin(), path.end(), 'L'), 2);
    EXPECT_EQ(symbol("END", 1, 5), "L(50.00,50.00) (60.00,60.00)\n");
    // Another file and back.
    dir.write("b.smb", "RA 0,0 1,0 L $");
    EXPECT_EQ(WX_symb_file("b.smb"), 0);
    EXPECT_EQ(WX_symb_file("B.smb"), -1);
    EXPECT_EQ(symbol("RA", 1, 5), "L(50.00,50.00) (60.00,50.00)\n");
    EXPECT_EQ(WX_symb_file(nullptr), 0);
    EXPECT_EQ(WX_symb_file("absent.smb"), -1);
    EXPECT_EQ(symbol("RA", 1, 5), "");
    // An item without a symbol file of its own takes the usual one again.
    EXPECT_EQ(symbol("RA", 1, 5), "");
    RES_put("file_path", dir.path().c_str());
    WX_symb_file("b.smb");
    EXPECT_EQ(drawn([&] {
                  const Gattribs none;
                  const RAW_data data = item(36, "", "RA");
                  RAW_plot_init(&none, 1.0F);
                  RAW_plot_data(&data);
              }),
              "L(48.50,48.50) (48.50,51.50)\n");
}

// Every symbol that the program comes with is found by its whole name, no
// earlier one hides it, and it draws something.
TEST(Symbols, OfTheDataTree) {
    const struct {
        const char* name;
        int count;
    } files[] = {
        {"wx.smb",    100},
        {"metar.smb", 68 },
        {"sky.smb",   11 },
        {"tend.smb",  9  },
        {"cl.smb",    9  },
        {"cm.smb",    9  },
        {"ch.smb",    9  },
    };
    for (const auto& file : files) {
        std::istringstream text(read_text(std::string(ZYR_SOURCE_DIR) + "/etc/" + file.name));
        std::map<std::string, std::string> pictures;
        bool at_name = true;
        int count = 0;
        for (std::string word; text >> word;) {
            if (at_name) {
                ++count;
                pictures[word] = drawn([&] {
                    WX_symb_file(file.name);
                    EXPECT_EQ(WX_symb(50, 50, word.c_str(), 10), 1) << word;
                });
                EXPECT_FALSE(pictures[word].empty()) << file.name << " " << word;
            }
            at_name = word[0] == '$';
        }
        EXPECT_EQ(count, file.count) << file.name;
        EXPECT_EQ(pictures.size(), static_cast<std::size_t>(file.count)) << file.name;
    }
}

TEST(Symbols, AbsentFilesAreWarnedOfOnce) {
    testing::internal::CaptureStderr();
    for (const char* name : {"absent.smb", "gone.smb", "absent.smb", "ABSENT.smb"}) {
        EXPECT_EQ(WX_symb_file(name), -1);
    }
    EXPECT_EQ(count_text(testing::internal::GetCapturedStderr(), "Unable to open"), 2);
}

// Lines, areas and their share of the circle, by cover.
TEST(Symbols, CloudCover) {
    const struct {
        const char* covers;
        int lines;
        double eighths;
    } rows[] = {
        {"0Cbosx", 1, 0},
        {"1F",     2, 0},
        {"2S",     1, 2},
        {"3",      2, 2},
        {"4",      1, 4},
        {"5",      2, 4},
        {"6B",     1, 6},
        {"8O",     0, 8},
        {"9X",     3, 0},
        {"mM?",    2, 0},
    };
    Domain stereo;
    DOM_decode("latlon:40:-97,40,-97,101,101,1,1", &stereo);
    for (const auto& row : rows) {
        for (const char* cover = row.covers; *cover != '\0'; ++cover) {
            FigurePage page(stereo, ZYR_SOURCE_DIR);
            page.window({0.0F, 100.0F, 0.0F, 100.0F});
            WX_cloud(50, 50, 10, *cover);
            page.read(tran_map);
            double area = 0;
            for (const Figure& figure : page.areas()) {
                area += std::fabs(polygon_area(figure.points));
            }
            EXPECT_EQ(page.lines().size(), row.lines) << *cover;
            EXPECT_NEAR(area, 300.0 * row.eighths / 8, 1) << *cover;
        }
    }
}

} // namespace
