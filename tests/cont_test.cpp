// Levels and colours of values, contours of small known fields, and the bar.
#include "cont.h"
#include "cont_state.h"

#include "figure_page.h"
#include "maptran.h"
#include "plt_tool.h"
#include "region.h"
#include "run_program.h"
#include "zyrgrid.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>

namespace {

// The state of a program that has just started, with the colour table read.
void start() {
    MESS_set(0, mess_error);
    FLAG_reset(missing);
    for (const char* name : {"color_fill", "plot_param"}) {
        RES_put(name, "");
    }
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    CLR_read_table(nullptr);
    cont::state() = cont::State();
}

[[gnu::format(printf, 1, 2)]] std::string printed(const char* format, ...) {
    char text[200] = "";
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

std::string color_name(int ind) {
    return ind < 0 ? "none" : CLR_get_name(ind);
}

// All steps as "level:colour[label]", "-" for no level.
std::string steps() {
    const cont::State& s = cont::state();
    std::string all;
    for (int i = 0; i < s.color_num; ++i) {
        const auto value = static_cast<double>(s.cont_value[i]);
        const std::string label = s.cont_label[i];
        all += (i > 0 ? " " : "") + (is_set(s.cont_value[0]) ? printed("%g", value) : "-") + ":" +
               color_name(s.fill_attrib[i].color) + (label.empty() ? "" : "[" + label + "]");
    }
    return all;
}

std::string color_of(float value) {
    Gattribs attrib;
    CONT_get_fill_attrib(value, &attrib);
    return color_name(attrib.color);
}

// Colours with regular levels, as a plotter sets them.
void set_regular(const char* list, float base, float intrvl, float max, float min) {
    CONT_set_fill_colors(list, 1);
    CONT_set_type(cont_fill);
    CONT_set_base(base);
    CONT_set_intrvl(intrvl);
    CONT_set_range(max, min);
}

// A text that goes in and what has to come out.
using Rows = std::vector<std::pair<const char*, std::string>>;

TEST(Cont, ListsOfLevelsAndColors) {
    const Rows rows = {
        {"10:Red,Green-Blue,40:Yellow",
         "10:red[10] 15:green 20:lcyan 25:cyan 30:lblue 35:blue 40:yellow[40]"                      },
        {"blue-cyan,green",                       "-:blue -:lblue -:cyan -:green"                   },
        {"-5:off, 0:red:la=rain:wi=2,1e1:nosuch", "-5:none[-5] 0:red[rain] 10:none[1e1]"            },
        {"0:red,1234567.8901:blue",               "0:red[0] 1.23457e+06:blue[1234567.8]"            },
        {"2:red,7:blue,cyan,green",               "2:red[2] 7:blue[7] 12:cyan 17:green"             },
        {"3:red,blue-lblue",                      "3:red[3] 4:blue 5:lblue"                         },
        {"red,end,blue",                          "-:red"                                           },
        {"0:red,nan:blue,9e99:cyan",              "0:red[0] 1.70141e+38:none 3.40282e+38:cyan[9e99]"},
        {",,x-y",                                 "-:none -:none -:none"                            },
    };
    for (const auto& [list, want] : rows) {
        start();
        EXPECT_EQ(CONT_set_fill_colors(list, 1), 0);
        EXPECT_EQ(steps(), want) << list;
    }
    // 256 steps are the most, from a long list, a wide range or a long file.
    const TempDir dir;
    std::string many;
    std::string rows_of_file;
    for (int i = 0; i < 300; ++i) {
        many += "red,";
        rows_of_file += printed("%d:red\n", i);
    }
    const std::string file = dir.write("long.lev", rows_of_file);
    for (const std::string& list : {many, std::string("0-99999,red"), file}) {
        start();
        CONT_set_fill_colors(list.c_str(), 1);
        EXPECT_EQ(cont::state().color_num, 256) << list;
        EXPECT_EQ(cont::state().fill_attrib[256].color, -2);
    }
    start();
    EXPECT_EQ(CONT_set_fill_colors(nullptr, 1), 0);
    EXPECT_EQ(steps().substr(0, 21), "-:magenta -:lmagenta ");
    EXPECT_EQ(cont::state().num_cont, 15);
}

TEST(Cont, ColorOfAValue) {
    const auto colors = [](const char* list, const std::vector<float>& values) {
        start();
        CONT_set_fill_colors(list, 1);
        CONT_set_base(0);
        CONT_set_intrvl(5); // explicit levels pay no heed to it
        std::string all;
        for (const float value : values) {
            all += color_of(value) + " ";
        }
        return all;
    };
    EXPECT_EQ(colors("0:red,5:green,5:blue,10:yellow,20:off", {-0.01F, 0, 4.99F, 5, 19.99F, 20}),
              "none red red blue yellow none ");
    EXPECT_EQ(colors("0:red,10:green,5:blue", {7, 12}), "red blue ");
    EXPECT_EQ(colors("red,green,blue,cyan,yellow", {0, 17, 9.9F, 9.96F, 25, -0.1F, 3e38F}),
              "red cyan green blue red yellow red ");
    EXPECT_EQ(colors("0:red,5:green,10:blue", {1e30F, missing_f, std::nanf("")}),
              "blue none none ");
    CONT_set_cutoff(10, missing_f);
    CONT_set_cutoff(missing_f, 1);
    EXPECT_EQ(color_of(0.9F) + color_of(1.0F) + color_of(10.0F) + color_of(10.1F),
              "noneredbluenone");

    // A step without a pattern is solid, also after a hatched one.
    start();
    CONT_set_fill_colors("0:red:fi=hat:wi=3,10:blue", 1);
    Gattribs hatched;
    Gattribs solid;
    CONT_get_fill_attrib(5, &hatched);
    CONT_get_fill_attrib(15, &solid);
    EXPECT_TRUE(hatched.fill_pat == 9 && hatched.width == 3.0F && solid.fill_pat == 0);
}

// Products bring their own levels; the first setting of a frame wins, and the
// next frame finds nothing of it.
TEST(Cont, FramesAndThresholds) {
    start();
    const float levels[] = {1, 2, 4, missing_f, 9};
    EXPECT_EQ(CONT_set_values(levels, 5), 0);
    EXPECT_EQ(CONT_set_fill_colors("off,red,blue", 0), 0);
    EXPECT_EQ(steps(), "1:none 2:red 4:blue");
    EXPECT_EQ(CONT_set_values(levels, 2), -1);
    EXPECT_EQ(CONT_set_fill_colors("5:red,6:blue", 0), -1);
    float copy[256];
    EXPECT_TRUE(CONT_get_values(copy) == 3 && copy[2] == 4.0F);
    CONT_reset_fill_set();
    set_regular("red,green", -0.5F, 1, 2, 0);
    EXPECT_EQ(std::to_string(CONT_get_values(nullptr)) + color_of(0.6F), "0green");
    start();
    CONT_set_values(std::vector<float>(400, 1.0F).data(), 400);
    EXPECT_EQ(CONT_get_values(nullptr), 256);
}

TEST(Cont, TheUsersOwnLists) {
    const auto taken = [](const char* list, const char* own) {
        start();
        RES_put("color_fill", own);
        const int result = CONT_set_fill_colors(list, 0);
        return printed("%d %d ", result, cont::state().num_cont) + steps().substr(0, 19);
    };
    EXPECT_EQ(taken("7:red,8:blue", "DEFault"), "0 2 7:red[7] 8:blue[8]");
    EXPECT_EQ(taken("7:red,8:blue", "yellow,cyan"), "0 2 -:yellow -:cyan");
    EXPECT_EQ(color_of(-5) + color_of(3), "yellowyellow") << "no interval";
    // A colour table of the user's marks its fill colours by END.
    const auto of_table = [&] {
        RES_put("color_table", "zyr.clr");
        return taken(nullptr, "");
    };
    EXPECT_EQ(in_child(of_table), "-1 15 -:blue -:lblue -:cy");
}

TEST(Cont, LevelFiles) {
    const TempDir dir;
    dir.write("rain.lev", "# comment\n@ comment\n\n  10:red:la=Heavy rain  \n20:blue:la=" +
                              std::string(200, 'x') + "\n30 : green");
    start();
    RES_put("file_path", dir.path().c_str());
    EXPECT_EQ(CONT_set_fill_colors("rain.lev", 1), 0);
    EXPECT_EQ(steps(), "10:red[Heavy rai] 20:blue[xxxxxxxxx] 30:green[30]");
    // Without the file the steps stay, and are settled.
    CONT_reset_fill_set();
    EXPECT_EQ(CONT_set_fill_colors("red", 1), 0);
    EXPECT_EQ(cont::state().color_num, 3);
    EXPECT_EQ(CONT_set_fill_colors("1:red,2:blue", 1), -1);
}

// Colour tables of other programs: gradients, solid colours, opacity, units.
TEST(Cont, TradedColorTables) {
    const TempDir dir;
    const auto taken = [&](const std::string& text, const char* quantity) {
        dir.write("table.pal", text);
        start();
        RES_put("file_path", dir.path().c_str());
        CONT_set_quantity(quantity);
        EXPECT_EQ(CONT_set_fill_colors("table.pal", 1), 0);
        return steps();
    };
    EXPECT_EQ(taken("; a comment\nProduct: BR\nUnits: DBZ\nStep: 10\n"
                    "SolidColor: 40 255 0 0\r\ncolor: 10 0 0 0 80 160 240\nColor: 20 0 0 255\n"
                    "Color4: 30 9 9 9 128\nbad line\nColor: x\n",
                    "reflectivity"),
              "10:#000000[10] 11.25:#0a141e[11.25] 12.5:#14283c[12.5] 13.75:#1e3c5a[13.75] "
              "15:#285078[15] 16.25:#326496[16.25] 17.5:#3c78b4[17.5] 18.75:#468cd2[18.75] "
              "20:#0000ff[20] 21.25:#0101e0[21.25] 22.5:#0202c2[22.5] 23.75:#0303a3[23.75] "
              "25:#050584[25] 26.25:#060665[26.25] 27.5:#070747[27.5] 28.75:#080828[28.75] "
              "30:#090909[30] 31.25:#280808[31.25] 32.5:#470707[32.5] 33.75:#650606[33.75] "
              "35:#840505[35] 36.25:#a30303[36.25] 37.5:#c20202[37.5] 38.75:#e00101[38.75] "
              "40:#ff0000[40]");
    // Metres a second of knots, with the folded gates of a volume in front.
    const std::string speed = "Units: KTS\nRF: 119 0 125\nSolidColor: -100 1 2 3\n"
                              "SolidColor: 0 4 5 6\n";
    EXPECT_EQ(taken(speed, "velocity"), "-100:#010203[-100] 0:#040506[0]");
    EXPECT_EQ(taken(speed, "velocity_ms"),
              "-91:#77007d[-91] -89:none[-89] -51.4444:#010203[-51.4444] 0:#040506[0]");
    // As many lines as there may be: the colour table holds them.
    std::string many;
    for (int i = 0; i < 9000; ++i) {
        many += "Color: " + std::to_string(i) + " 1 2 " + std::to_string(i % 7) + "\n";
    }
    const std::string all = taken(many, nullptr);
    EXPECT_LE(std::count(all.begin(), all.end(), ':'), 256);
}

// The level files of the data tree go by their name, and "auto" by the quantity.
TEST(Cont, ShippedLevelFiles) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZYR_SOURCE_DIR "/etc")) {
        if (entry.path().extension() != ".lvl") {
            continue;
        }
        ++files;
        start();
        const std::string name = entry.path().stem();
        RES_put("color_fill", "auto");
        CONT_set_quantity(name.c_str());
        EXPECT_EQ(CONT_set_fill_colors("1:red,2:blue", 0), 0) << name;
        const std::string by_quantity = steps();
        EXPECT_TRUE(cont::state().ascending && cont::state().num_cont >= 10) << name;
        EXPECT_EQ(by_quantity.find("none"), std::string::npos) << by_quantity;
        // What stands for no data in a volume has no colour, in a volume's units.
        if (name != "velocity" && name != "width") {
            EXPECT_GT(std::atof(by_quantity.c_str()), -90.0) << name;
        }
        CONT_reset_fill_set();
        CONT_set_fill_colors(name.c_str(), 1);
        EXPECT_EQ(steps(), by_quantity);
    }
    EXPECT_GT(files, 10);
    start();
    RES_put("color_fill", "auto");
    CONT_set_quantity(nullptr);
    CONT_set_fill_colors("1:red,2:blue", 0);
    EXPECT_EQ(steps(), "1:red[1] 2:blue[2]");
}

TEST(Cont, IntervalsAndExtent) {
    const std::vector<float> intervals = {
        CONT_calc_intrvl(100, 0, 15),    CONT_calc_intrvl(3, 0, 10),
        CONT_calc_intrvl(0.25F, 0, 10),  CONT_calc_intrvl(0.0025F, 0, 10),
        CONT_calc_intrvl(0.001F, 0, 32), CONT_calc_intrvl(5, 5, 10),
        CONT_calc_intrvl(8, 0, 0)};
    EXPECT_EQ(intervals, (std::vector<float>{7, 0.3F, 0.03F, 0.0003F, 0.001F / 32, 1, 8}));
    // Lowest level, top of the highest and number.
    const auto extent = [](float max, float min, float base, float intrvl) {
        start();
        set_regular("red,green,blue,cyan,yellow", base, intrvl, max, min);
        const int result = CONT_set_cont_ext(nullptr);
        const cont::State& s = cont::state();
        return printed("%d %g %g %d", result, static_cast<double>(s.conlo),
                       static_cast<double>(s.conhi), s.num_cont);
    };
    EXPECT_EQ(extent(16, 0, 0, 4), "0 0 20 5");
    EXPECT_EQ(extent(6, 0, -0.5F, 1), "0 -0.5 7.5 8"); // the range ends on the top level
    EXPECT_EQ(extent(6.2F, 0, -0.5F, 1), "0 -0.5 6.5 7");
    EXPECT_EQ(extent(-3, -17, missing_f, 5), "0 -20 0 4");
    EXPECT_EQ(extent(100, 0, 0, missing_f), "0 0 125 5");
    EXPECT_EQ(extent(missing_f, 0, 0, 4), "-1 -9999 -9999 5");
}

TEST(Cont, PlotParamWords) {
    const Rows rows = {
        {"FILL=hat,lab=24,rlab,maxl=7,grid",      "9 2,4,-9999,-9999 1 7 -9999,-9999 1 0"},
        {"fill:,lab:3:5,rlab,hlab,conmin=-2.5",   "0 3,5,-9999,-9999 0 -2 -2.5,-9999 0 0"},
        {"lab=3:5:7:9,mapcon,conmap,conmin,maxl", "-9999 3,5,7,9 0 -2 -9999,-9999 0 0"   },
    };
    for (const auto& [words, want] : rows) {
        start();
        RES_put("plot_param", words);
        CONT_param_decode();
        const cont::State& s = cont::state();
        EXPECT_EQ(printed("%d %d,%d,%d,%d %d %d %g,%g %d %d", s.fill_pat, s.label_skip,
                          s.ext_radius, s.x_label_space, s.y_label_space, s.rot_label,
                          s.max_line_fact, static_cast<double>(s.min_cut),
                          static_cast<double>(s.max_cut), s.draw_grid, s.mapcon),
                  want)
            << words;
    }
}

// --- Grids and pages --------------------------------------------------------

Domain plane_domain(int nx, int ny, const char* proj = "ps:-97,40,-97") {
    Domain domain;
    EXPECT_EQ(DOM_decode(printed("%s,%d,%d,1,1", proj, nx, ny).c_str(), &domain), 1) << proj;
    return domain;
}

// A field of grid indices, y counted from the bottom.
struct Field {
    std::vector<float> values;
    GRD_report grid;

    Field(int nx, int ny, const std::function<float(float, float)>& f) {
        for (int y = ny - 1; y >= 0; --y) {
            for (int x = 0; x < nx; ++x) {
                values.push_back(f(static_cast<float>(x), static_cast<float>(y)));
            }
        }
        grid.domain = plane_domain(nx, ny);
        grid.grid = values.data();
    }
};

// The page of a field in colours `list`, read in grid indices.
FigurePage contoured(const Field& field, int type, const char* list, const char* words = "") {
    start();
    FigurePage page(field.grid.domain, ZYR_SOURCE_DIR);
    RES_put("plot_param", words);
    RES_put("color_cont", "red");
    CONT_init();
    CONT_param_decode();
    CONT_set_fill_colors(list, 1);
    CONT_set_type(type);
    EXPECT_EQ(CONT_draw_contour(&field.grid), 0);
    page.read(tran_grid);
    return page;
}

// What is filled in each colour, in cells.
std::map<std::string, double> areas(const FigurePage& page) {
    std::map<std::string, double> sums;
    for (const Figure& figure : page.areas()) {
        sums[figure.color] += polygon_area(figure.points);
    }
    return sums;
}

// Levels 3 and 5 pass grid points exactly, 4.5 none. Closed rings: at each
// point where a line ends, a second one begins.
TEST(Contour, ConeGivesClosedRings) {
    const Field cone(15, 15, [](float x, float y) { return std::hypot(x - 7.0F, y - 7.0F); });
    for (const int type : {cont_lines, cont_fill_lines}) {
        const FigurePage page =
            contoured(cone, type, "-1:green,3:green,4.5:green,5:green,99:green");
        std::map<std::string, int> ends;
        std::map<int, double> length; // of each ring, by its nearest half
        for (const Figure& line : page.lines("red")) {
            const Gpt& a = line.points[0];
            const Gpt& b = line.points[1];
            const double r = std::hypot((a.x + b.x) / 2.0 - 7.0, (a.y + b.y) / 2.0 - 7.0);
            length[static_cast<int>(std::lround(2.0 * r))] += std::hypot(a.x - b.x, a.y - b.y);
            ++ends[show({a})];
            ++ends[show({b})];
        }
        for (const auto& [at, count] : ends) {
            EXPECT_EQ(count, 2) << at << " type " << type;
        }
        EXPECT_EQ(length.size(), 3U);
        for (const int twice : {6, 9, 10}) {
            EXPECT_NEAR(length[twice], M_PI * twice, 0.3);
        }
    }
}

// Whole numbers with whole levels: corners on levels, flat cells and saddles.
// The areas of all bands cover the grid once, each where its values are.
TEST(Contour, BandsCoverTheGridOnce) {
    std::mt19937 random(7);
    const Field field(14, 11, [&](float, float) { return static_cast<float>(random() % 7); });
    const FigurePage page =
        contoured(field, cont_fill, "0:blue,1.5:cyan,2:green,3:brown,4.25:yellow");
    double total = 0.0;
    for (auto& [color, area] : areas(page)) {
        EXPECT_GT(area, 5.0) << color;
        total += area;
    }
    EXPECT_NEAR(total, 13.0 * 10.0, 0.2);

    // Bands that are off leave their place empty, and so do values outside the range.
    const Field plane(6, 4, [](float x, float) { return 10 * x; });
    const FigurePage slope =
        contoured(plane, cont_fill, "0:off,10:red,25:off,30:blue", "conmin=15,conmax=40");
    EXPECT_NEAR(areas(slope)["red"], 3.0, 0.02);
    EXPECT_NEAR(areas(slope)["blue"], 3.0, 0.02);
}

// High at the lower left and the upper right. Above the saddle's middle (5)
// the high corners are cut off, below it the low ones.
TEST(Contour, Saddles) {
    const Field saddle(2, 2, [](float x, float y) { return x == y ? 10.0F : 0.0F; });
    const struct {
        const char* list;
        const char* line1;
        const char* line2;
        std::size_t above; // polygons
    } rows[] = {
        {"-1:blue,6:green,99:green", "(0.40,0.00) (0.00,0.40)", "(0.60,1.00) (1.00,0.60)", 2},
        {"-1:blue,4:green,99:green", "(0.60,0.00) (1.00,0.40)", "(0.40,1.00) (0.00,0.60)", 1},
    };
    for (const auto& row : rows) {
        const FigurePage lines = contoured(saddle, cont_lines, row.list);
        ASSERT_EQ(lines.lines("red").size(), 2U) << row.list;
        EXPECT_EQ(show(lines.lines("red")[0].points), row.line1);
        EXPECT_EQ(show(lines.lines("red")[1].points), row.line2);
        const FigurePage fills = contoured(saddle, cont_fill, row.list);
        EXPECT_EQ(fills.areas("green").size(), row.above) << row.list;
        EXPECT_EQ(fills.areas("blue").size(), 3 - row.above) << row.list;
    }
}

TEST(Contour, ValuesAndMissingPoints) {
    const Field field(3, 2, [](float x, float y) { return x == 1 ? missing_f : 1.5F + y; });
    const FigurePage page = contoured(field, cont_values, "0:off,2:red,9:blue");
    ASSERT_EQ(page.texts.size(), 2U); // 1.5 is off
    EXPECT_EQ(show({page.texts[0].pos, page.texts[1].pos}), "(0.00,1.00) (2.00,1.00)");
    EXPECT_EQ(page.texts[0].text, "2");
    EXPECT_TRUE(contoured(field, cont_fill, "0:red,2:red").figures.empty());

    // A tiny interval over a tall cell: the cell is skipped, at once.
    const Field cliff(2, 2, [](float x, float) { return x == 0 ? 0.0F : 1e6F; });
    start();
    RES_put("con_interval", "0.000001");
    EXPECT_TRUE(contoured(cliff, cont_fill, "red,blue").figures.empty());
    RES_put("con_interval", "");
}

TEST(Contour, RangeOfAGrid) {
    const float values[] = {missing_f, 3.0F, std::nanf(""), -2.0F, HUGE_VALF, 5.0F};
    GRD_report report;
    report.domain = plane_domain(6, 1);
    float max = 0.0F;
    float min = 0.0F;
    EXPECT_EQ(GRD_maxmin(&report, &max, &min), -1);
    report.grid = values;
    EXPECT_TRUE(GRD_maxmin(&report, &max, &min) == 0 && max == 5.0F && min == -2.0F);
}

// A grid on another domain: points at their places on the map, which is its
// own map afterwards.
TEST(Contour, GridsOnOtherDomains) {
    const Field plane(3, 3, [](float x, float) { return x; });
    Domain map = plane_domain(21, 21);
    map.clon = -95.0F;
    MAP_domain(&map);
    float* x = nullptr;
    float* y = nullptr;
    float cx = 0.0F;
    float cy = 0.0F;
    for (int again = 0; again < 2; ++again) { // the second call frees the first arrays
        ASSERT_EQ(GRD_proj_XY(&plane.grid, &map, &x, &y), 0);
    }
    MAP_tran(40, -97, &cx, &cy);
    EXPECT_NEAR(x[4], cx, 1e-3F);
    EXPECT_NEAR(x[5] - x[4], 1.0F, 1e-3F);
    EXPECT_NEAR(y[1] - y[4], 1.0F, 1e-3F);
    EXPECT_EQ(MAP_get_clon(), -95.0F);
    std::free(x);
    std::free(y);
}

TEST(Contour, FiguresOverTheEdgeOfTheMap) {
    const auto drawn = [](const char* proj, const std::vector<float>& xy) {
        std::vector<Gpt> pts;
        for (std::size_t i = 0; i + 1 < xy.size(); i += 2) {
            pts.push_back({xy[i], xy[i + 1]});
        }
        start();
        FigurePage page(plane_domain(361, 181, proj), ZYR_SOURCE_DIR);
        page.window({-200, 200, -100, 100});
        CONT_set_fill_colors("red,red", 1);
        CONT_draw_lines(cont_fill_lines, static_cast<int>(pts.size()), pts.data());
        page.read(tran_map);
        std::string all;
        for (const Figure& figure : page.figures) {
            all += (figure.filled ? "A" : "L") + show(figure.points) + " ";
        }
        return all;
    };
    EXPECT_EQ(drawn("ll,0,0", {179, 0, -179, 0, -179, 5}),
              "A(179.00,0.00) (181.00,0.00) (181.00,5.00) "
              "A(-181.00,0.00) (-179.00,0.00) (-179.00,5.00) ");
    EXPECT_EQ(drawn("ll,0,0", {179, 0, -178, 5}),
              "L(179.00,0.00) (182.00,5.00) L(-181.00,0.00) (-178.00,5.00) ");
    EXPECT_EQ(drawn("merc,0,0", {199, 0, -199, 0, -199, 5}),
              "A(199.00,0.00) (201.31,0.00) (201.31,5.00) "
              "A(-201.31,0.00) (-199.00,0.00) (-199.00,5.00) ");
    EXPECT_EQ(drawn("moll,0,0", {-126, 0, 126, 0}),
              "L(128.85,0.00) (126.00,0.00) L(-126.00,0.00) (-128.85,0.00) ");
    EXPECT_EQ(drawn("lamb,0,0", {-60, 0, 60, 0, 60, 5}), "");
}

// --- Colour bar -------------------------------------------------------------

struct BarPage {
    std::vector<std::string> boxes; // their colours
    std::string numbers;
    int result = 0;
    Glim view = {};
};

BarPage bar(const std::function<void()>& set_levels, const char* label = "") {
    BarPage bar;
    start();
    FigurePage page(plane_domain(41, 31), ZYR_SOURCE_DIR);
    CONT_init();
    set_levels();
    GPH_trans(tran_page);
    PLT_get_view(&bar.view);
    bar.result = CONT_draw_bar(1, label);
    page.read(tran_page);
    for (const Figure& box : page.areas()) {
        bar.boxes.push_back(box.color);
    }
    for (const FigureText& text : page.texts) {
        bar.numbers += text.text + "|";
    }
    return bar;
}

TEST(Bar, LevelsLabelsAndReadout) {
    const BarPage five = bar([] { set_regular("lblue,lcyan,off,yellow,lred", 0, 4, 16, 0); });
    EXPECT_EQ(five.numbers, " 0|4.0|8.0|12|16|20|");
    EXPECT_EQ(five.boxes.size(), 4U);
    // The left half of the view less 3 percent.
    const float width = five.view.x_max - five.view.x_min;
    const float left = five.view.x_min + 0.03F * width;
    const float inc = 0.47F * width / 5.0F;
    const float y = five.view.y_min - 0.02F;
    EXPECT_EQ(CONT_get_bar_value(left + 1.99F * inc, y), 4.0F);
    EXPECT_EQ(CONT_get_bar_value(left + 2.01F * inc, y), 8.0F);
    EXPECT_EQ(CONT_get_bar_value(left - 0.01F, y), missing_f);
    EXPECT_EQ(CONT_get_bar_value(left, five.view.y_min), missing_f);

    const auto set_named = [] { CONT_set_fill_colors("-50:off,5:blue:la=weak,7.5:red", 1); };
    const BarPage named = bar(
        [&] {
            set_named();
            CONT_set_type(cont_fill);
        },
        "dBZ");
    EXPECT_EQ(named.numbers, "-50|weak|7.5|dBZ|");
    EXPECT_EQ(named.boxes.size(), 2U);
    const BarPage lines = bar([&] {
        set_named();
        CONT_set_type(cont_lines);
    });
    EXPECT_TRUE(lines.boxes.empty() && lines.result == 0);
}

TEST(Bar, HowManyNumbers) {
    std::string numbers;
    for (const int boxes : {14, 16, 200, 201}) {
        const float top = static_cast<float>(boxes) - 0.5F;
        const BarPage page = bar([&] { set_regular("red,blue,green", 0, 1, top, 0); });
        const auto count = std::count(page.numbers.begin(), page.numbers.end(), '|');
        numbers += std::to_string(page.result) + " " + std::to_string(count) + ", ";
    }
    EXPECT_EQ(numbers, "0 15, 0 9, 0 16, -1 0, ");
}

// What a plotter leaves open of the levels is settled once, for picture and bar.
TEST(Bar, RangesAndBases) {
    const auto numbers = [](const char* base, const char* intrvl, float bar_max, float bar_min) {
        std::map<float, std::string> picture; // colours of values, before there is a bar
        const BarPage page = bar([&] {
            RES_put("con_base", base);
            RES_put("con_interval", intrvl);
            set_regular("red,blue,green", missing_f, missing_f, 25, 0);
            CONT_set_bar_range(bar_max, bar_min);
            for (const float value : {-3.0F, 7.0F, 12.5F, 33.0F, 44.0F, 52.0F}) {
                picture[value] = color_of(value);
            }
        });
        for (const auto& [value, color] : picture) {
            const float box = std::floor((value - cont::level_at(0)) / cont::level_width(0));
            if (box >= 0.0F && box < static_cast<float>(page.boxes.size())) {
                EXPECT_EQ(page.boxes[static_cast<std::size_t>(box)], color) << base << " " << value;
            }
        }
        return page.numbers;
    };
    EXPECT_EQ(numbers(">5,<44", "10", missing_f, missing_f), "5.0|15|25|35|45|");
    EXPECT_EQ(numbers("2", "10", missing_f, missing_f), "-8.0|2.0|12|22|32|");
    EXPECT_EQ(numbers(">5", "10", 60, 40), "40|50|60|70|");
    EXPECT_EQ(numbers("", "10", 40, 55), "40|50|60|"); // swapped
    EXPECT_EQ(numbers("1", "0", missing_f, missing_f), "-12|1.0|14|27|");
    RES_put("con_base", "");
    RES_put("con_interval", "");
}

TEST(Bar, Refusals) {
    EXPECT_EQ(bar([] { CONT_set_type(cont_fill); }).result, -1);
    EXPECT_EQ(CONT_get_bar_value(0.3F, 0.03F), missing_f); // no bar, no value
    const auto no_room_below = [] {
        CONT_set_fill_colors("1:red,2:blue", 1);
        PLT_set_view_offset(0.0F);
        PLT_reset(1.0F);
    };
    EXPECT_EQ(bar(no_room_below).result, -1);
    EXPECT_EQ(CONT_flash_value("v-Alt", 0.3F, 0.03F), -1);
}

} // namespace
