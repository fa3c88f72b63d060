// Map layer: the shipped databases, both forms of the file and damage to it,
// the language of the list, and where the lines come to lie on paper.
#include "map.h"

#include "figure_page.h"
#include "maptran.h"
#include "region.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <set>
#include <sstream>

namespace {

const char* const etc = ZYR_SOURCE_DIR "/etc/";

using PsLine = std::vector<Gpt>;

// A PostScript picture as lines of points in plot coordinates.
struct Picture {
    std::vector<PsLine> lines;
    int fills = 0;
    std::string maps;  // names on the status line
    std::string texts; // a "|" after one at the left edge
    Glim window{};     // in plot coordinates

    // Distance of the nearest segment from the origin.
    double nearest() const {
        double best = 1e9;
        for (const PsLine& line : lines) {
            for (std::size_t i = 1; i < line.size(); ++i) {
                const Gpt &a = line[i - 1], &b = line[i];
                const double dx = b.x - a.x, dy = b.y - a.y;
                const double t = -(a.x * dx + a.y * dy) / (dx * dx + dy * dy + 1e-12);
                const double part = std::clamp(t, 0., 1.);
                best = std::min(best, std::hypot(a.x + part * dx, a.y + part * dy));
            }
        }
        return best;
    }
    // The longest segment with its middle in the picture, in widths of it.
    double longest() const {
        double most = 0;
        const Glim& w = window;
        for (const PsLine& line : lines) {
            for (std::size_t i = 1; i < line.size(); ++i) {
                const Gpt &a = line[i - 1], &b = line[i];
                const float x = (a.x + b.x) / 2, y = (a.y + b.y) / 2;
                const bool inside = x > w.x_min && x < w.x_max && y > w.y_min && y < w.y_max;
                most = std::max(
                    most, inside ? std::hypot(a.x - b.x, a.y - b.y) / (w.x_max - w.x_min) : 0.);
            }
        }
        return most;
    }
};

const char* const us = "39,-97,2.3";
const char* file_path = etc; // while something is drawn

Picture draw(const std::string& place, const std::function<void()>& body) {
    Domain domain;
    DOM_decode(place.c_str(), &domain);
    FigurePage page(domain, ZYR_SOURCE_DIR);
    MESS_set(0, mess_warn | mess_error);
    RES_put("file_path", file_path);
    Picture out;
    MAP_get_window(&out.window);
    body();
    page.read(tran_map);
    for (const Figure& figure : page.figures) {
        out.fills += figure.filled;
        if (!figure.filled) {
            out.lines.push_back(figure.points);
        }
    }
    for (const FigureText& text : page.texts) {
        out.texts += text.text + (text.pos.x < out.window.x_min + 1 ? "| " : " ");
    }
    for (const std::string& message : page.messages) {
        out.maps += message.starts_with("Map: ") ? message.substr(4) : "";
    }
    return out;
}
Picture draw_map(const std::string& domain, int flag = map_plain) {
    return draw(domain, [flag] { MAP_draw(flag); });
}

int map_result(std::string bytes) {
    FILE* file = fmemopen(bytes.data(), bytes.size(), "rb");
    const int result = MAP_map(file);
    std::fclose(file);
    return result;
}

} // namespace

TEST(Map, ShippedFiles) {
    // Name, and whether it holds rings rather than lines.
    std::istringstream rows("zyr.map 0 us_cnty.map 0 cont.map 0 country.map 0 land.map 1 "
                            "lakes.map 1 rivers.map 0 us_outl.map 0 us_state.map 0 "
                            "ca_prov.map 0 cont_lo.map 0 ctry_lo.map 0");
    bool rings = false;
    for (std::string name; rows >> name >> rings;) {
        std::size_t count = 0, bad = 0, twice = 0;
        std::set<std::array<float, 4>> seen;
        RES_put("map_file", name.c_str());
        for (const PsLine& line : draw_map("lat,0,0,73,37,5,5").lines) { // degrees
            count += line.size();
            bad += rings ? line.front().y != line.back().y : line.size() > 999;
            for (std::size_t i = 1; i < line.size(); ++i) {
                const Gpt &a = line[i - 1], &b = line[i];
                bad += std::fabs(a.x - b.x) > 1.002F || std::fabs(a.y - b.y) > 1.002F ||
                       std::fabs(b.x) > 180.001F || std::fabs(b.y) > 90;
                const bool back = std::pair(a.x, a.y) > std::pair(b.x, b.y);
                const Gpt &s = back ? b : a, &e = back ? a : b;
                twice += (s.x != e.x || s.y != e.y) && !seen.insert({s.x, s.y, e.x, e.y}).second;
            }
        }
        EXPECT_TRUE(count > 800 && bad == 0 && (rings || twice < 10))
            << name << ' ' << count << ' ' << bad << ' ' << twice;
    }
}

TEST(Map, LinesLieWhereTheyAre) {
    // File, place, and how near its line must be, km: four corners, tip of Cape
    // Cod, Cape Flattery, the 49th parallel, mouth of the Rio Grande, four
    // corners of Canada, three borders at Basel and Iguazu, Cabo da Roca, Cape
    // of Good Hope, Cape Dezhnev beyond the date line.
    std::istringstream rows("us_state.map 37.0,-109.045 0.3 us_outl.map 42.081,-70.22 1.0 "
                            "us_outl.map 48.384,-124.726 1.0 zyr.map 49,-110 0.3 "
                            "zyr.map 25.957,-97.147 1.5 ca_prov.map 60,-110 0.5 "
                            "country.map 47.59,7.589 1.5 country.map -25.594,-54.594 1.5 "
                            "cont.map 38.781,-9.5 2.0 cont.map -34.357,18.475 2.0 "
                            "cont.map 66.081,-169.652 2.0");
    double km = 0;
    for (std::string name, place; rows >> name >> place >> km;) {
        RES_put("map_file", name.c_str());
        place.insert(0, "ortho,").append(",.05");
        EXPECT_LT(draw_map(place).nearest() * 100, km) << name << ' ' << place;
    }
}

// A database draws the same in text as in binary.
TEST(Map, BothForms) {
    const std::string text = read_text(std::string(etc) + "ca_prov.map");
    std::string binary;
    const auto put = [&](std::uint32_t value, int bytes) {
        while (bytes-- > 0) {
            binary += static_cast<char>(value >> 8 * bytes);
        }
    };
    std::istringstream in(text);
    std::uint32_t n = 0;
    for (float number = 0; in >> n >> number >> number >> number >> number >> number;) {
        put(n, 2);
        binary.append(20, '\0');
        for (std::uint32_t i = 0; i < 2 * n && in >> number; ++i) {
            put(std::bit_cast<std::uint32_t>(number), 4);
        }
    }
    const char* const canada = "60,-95,3";
    const Picture a = draw(canada, [&] { EXPECT_EQ(map_result(text), 0); });
    const Picture b = draw(canada, [&] { EXPECT_EQ(map_result(binary), 0); });
    ASSERT_TRUE(a.lines.size() > 10 && a.lines.size() == b.lines.size());
    for (std::size_t i = 0; i < a.lines.size(); ++i) {
        EXPECT_EQ(show(a.lines[i]), show(b.lines[i]));
    }
}

TEST(Map, LongAndDamagedRecords) {
    const std::string binary = read_text(std::string(etc) + "us_state.map");
    std::string many = "1200 0 0 0 0 0\n";
    for (int i = 0; i < 1200; ++i) {
        many += "38 -95\n";
    }
    EXPECT_EQ(draw(us, [&] { map_result(many + "0 0 0 0 0 0"); }).lines.at(0).size(), 1200U);
    // Cut in the first record: what stands before is drawn.
    draw(us, [&] {
        for (std::size_t n = 0; n < 200; ++n) {
            EXPECT_EQ(map_result(binary.substr(0, n)), -1) << n;
        }
        for (const char* bad :
             {"2 0 0 0 0 0\n30 -100\nx", "-2 0 0 0 0 0\n", "40000 0 0 0 0 0\n", "\n"}) {
            EXPECT_EQ(map_result(bad), -1) << bad;
        }
    });
    EXPECT_EQ(
        draw(us, [] { map_result("9 0 0 0 0 0\n30 -100\n31 -99\n32 -98\n33"); }).lines.at(0).size(),
        3U);
    draw("pix,0,0,25,17,1,1", [&] { EXPECT_EQ(map_result(binary), 1); });
}

// Which databases a list draws, in order, under and over the data.
TEST(Map, ListLanguage) {
    const TempDir directory;
    for (const char* name : {"a", "b", "c"}) {
        directory.write(name, "2 0 0 0 0 0\n38 -98\n39 -97\n0 0 0 0 0 0\n");
    }
    file_path = directory.path().c_str();
    // The picture is 36.8 high with its centre at 39, -97.
    const char* const rows[][3] = {
        {"a -b +c",                            " b", " a c"       },
        {"a [30,50,-110,-80] b [] c",          "",   " a b"       },
        {"[50,30,-80,-110,36.9] a [] c",       "",   " a"         },
        {"[30,50,-110,-80,36.7] a [] c",       "",   " c"         },
        {"a [0,1,0,1] b -c",                   " c", " a"         },
        {"s+36:a s+37:b S-37:c",               "",   " a c"       },
        {">36<37:a >36<36.5:b <37>36:c",       "",   " a c"       },
        {">36:s-37:a <36:b >36c",              "",   " a"         },
        {"s+30:>30:<40:a s+30:>40:b",          "",   " a"         },
        {"a:none b:blue:w2 gone c",            "",   " a b gone c"},
        {"im:x.gif IF:x.gif::1:2 mf:x rf:x a", "",   " a"         },
    };
    for (const auto& row : rows) {
        directory.write("a.lst", row[0]);
        RES_put("map_file", "fi:a.lst");
        EXPECT_EQ(draw_map(us, map_under).maps, row[1]) << row[0];
        EXPECT_EQ(draw_map(us, map_over | map_plain).maps, row[2]) << row[0];
    }
    // A height of 32 passes both conditions with that number.
    RES_put("map_file", "FI:gone.lst,>32:a,<32:b,");
    testing::internal::CaptureStderr();
    EXPECT_EQ(draw_map("lat,40,-90,2").maps, " a b");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "MAP_draw: Unable to open map list file: gone.lst\n");
    const auto switched_off = [] {
        FLAG_setplot(8, 0);
        MAP_draw(map_plain);
    };
    EXPECT_EQ(draw(us, switched_off).maps, "");
    file_path = etc;
}

// The list that the domain chooses, the one set by a program, the shipped ones.
TEST(Map, Lists) {
    EXPECT_EQ(draw_map(us).maps, " zyr.map");
    EXPECT_EQ(draw_map("36,128,.5").maps, " cont.map country.map");
    EXPECT_EQ(draw_map("50,-100,25,25,4.2").maps, " cont.map country.map");
    MAP_file("us_outl.map");
    MAP_set_format("red:fp=sol");
    const Picture filled = draw_map(us);
    EXPECT_TRUE(filled.maps == " us_outl.map" && filled.fills > 80 && filled.lines.empty());
    RES_put("map_file", "fi:usa.lst");
    EXPECT_EQ(draw_map(us).maps, " zyr.map");
    EXPECT_EQ(draw_map("35,-98,.3").maps, " us_cnty.map zyr.map");
    EXPECT_EQ(draw_map("35,-98,.3", map_under).maps, " rivers.map lakes.map");
    EXPECT_EQ(draw_map("13.8,145,.4").maps, " cont.map country.map");
    RES_put("map_file", "fi:usa.lst,us_outl.map"); // the blocks of a list end with it
    EXPECT_EQ(draw_map("35,-98,.3").maps, " us_cnty.map zyr.map us_outl.map");
    EXPECT_TRUE(draw_map("pix,0,0,511").lines.empty()); // a page of numbers
}

// Lines of the world on every projection: no part of a picture is crossed by
// a segment longer than a step of the lines can be.
TEST(Map, NoLineCrossesThePicture) {
    const char* const domains[] = {
        "lat,0,180,73,37,5,5", // about the date line
        "lat,0,-97,73,37,5,5", // cut in Asia
        "merc,0,-97,41,31,10,10",
        "-90,0,25,25,6",   // south pole
        "60,180,2.3",      // date line
        "90,-97,25,25,10", // northern hemisphere
        "lamb:40:-97:30:60,40,-97,4",
        "ortho,15,-90,25,25,5.4,5.4",
        "moll,0,0,25,13,10.8,10.8",
        "moll,0,170,25,13,10.8,10.8", // about the date line
        "la,40,-97,25,25,10.8,10.8",  // the rim is one point
        "sat:0:-75:421.64:1,0,-75,25,25,5.6,5.6",
    };
    for (const char* text : domains) {
        RES_put("map_file", "cont_lo.map,ctry_lo.map");
        const Picture lines = draw_map(text);
        EXPECT_GT(lines.lines.size(), 10U) << text;
        EXPECT_LT(lines.longest(), *text == 'l' && text[2] == ',' ? 0.09 : 0.04) << text;
        if (*text == 'o') { // nothing shines through from the far side
            for (const PsLine& line : lines.lines) {
                EXPECT_TRUE(std::all_of(line.begin(), line.end(),
                                        [](const Gpt& p) { return std::hypot(p.x, p.y) < 63.8F; }));
            }
        }
        RES_put("map_file", "lalo:10"); // has longer steps
        EXPECT_LT(draw_map(text).longest(), 0.35) << text;
    }
}

// Letters of the hemispheres, where the lines enter on the left and at the bottom.
TEST(Map, LettersOfTheGrid) {
    RES_put("map_file", "gone");
    MAP_latlon(10, 20, 0, 0);
    const auto letters = [](const char* domain) { return draw_map(domain, map_under).texts; };
    EXPECT_EQ(letters("lat,-3,-5,51,31,1,1"), "EQ| 10N| 10S| PM 20E 20W ");
    EXPECT_EQ(letters("lat,-33,150,31,21,1,1"), "30S| 40S| 140E 160E ");
}

TEST(Map, Grids) {
    // Ten-degree lines of a picture from 20 to 60 N and 120 to 60 W.
    RES_put("map_file", "gone");
    MAP_latlon(10, 10, 10, 0);
    const auto on_ten = [](float v) { return std::fabs(v - 10 * std::round(v / 10)) < 0.05F; };
    int parallels = 0, meridians = 0, arms = 0;
    for (const PsLine& line : draw_map("lat,40,-90,61,41,1,1", map_under).lines) {
        const Gpt a = line.front(), b = line.back();
        arms += std::hypot(a.x - b.x, a.y - b.y) < 0.3F && line.size() == 2;
        parallels += std::fabs(a.y - b.y) < 0.01F && on_ten(a.y) && b.x - a.x > 2.4F;
        meridians += std::fabs(a.x - b.x) < 0.01F && on_ten(a.x) && b.y - a.y > 9;
    }
    EXPECT_TRUE(parallels >= 5 * 24 && meridians >= 7 * 4 && arms >= 2 * 7 * 5);
    draw(us, [] {
        EXPECT_EQ(MAP_lines(missing_f, 5), -1);
        EXPECT_EQ(MAP_lines(1e-6F, 5), -1);
        EXPECT_EQ(MAP_lines(30, 30), 0);
    });
    const Picture diagram = draw("xy,0,0,10,20,10,10", [] { EXPECT_EQ(MAP_lines(5, -4), -1); });
    const auto is_line = [](const PsLine& line) { return line.size() == 25; };
    EXPECT_EQ(std::count_if(diagram.lines.begin(), diagram.lines.end(), is_line), 3 + 3);
}

TEST(Map, RangeRings) {
    const auto ring = [](const char* domain, float lat, float lon) {
        return draw(domain, [&] {
            float x = 0, y = 0;
            MAP_tran(lat, lon, &x, &y);
            MAP_draw_circle(x, y, 230);
        });
    };
    EXPECT_EQ(ring(us, 41, -90).lines.at(0).size(), 49U);
    const Picture cut = ring("lat,50,0,73,17,5,5", 50, 179);
    EXPECT_TRUE(cut.lines.size() > 1 && cut.longest() < 0.05);
}
