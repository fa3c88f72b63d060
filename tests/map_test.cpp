// Map layer: the shipped databases, both forms of the file and damage to it,
// the language of the list, and where the lines come to lie.
#include "map.h"

#include "maptran.h"
#include "ps_plot.h"
#include "run_program.h"
#include "zyrcty.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <set>
#include <sstream>

namespace {

const char* const etc = ZYR_SOURCE_DIR "/etc/";

struct Place {
    float lat, lon;
};
using Line = std::vector<Place>;

// The lines of a database, read without the code under test.
std::vector<Line> read_map(const std::string& name) {
    const std::string data = read_text(etc + name);
    std::vector<Line> out;
    if (std::isdigit(static_cast<unsigned char>(data[0])) != 0) {
        std::istringstream in(data);
        float n = 0, skip = 0;
        while (in >> n >> skip >> skip >> skip >> skip >> skip && n > 0) {
            Line line(static_cast<std::size_t>(n));
            for (Place& p : line) {
                in >> p.lat >> p.lon;
            }
            out.push_back(line);
        }
        return out;
    }
    const auto word = [&](std::size_t at) {
        std::uint32_t v = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            v = v << 8 | static_cast<std::uint8_t>(data.at(at + i));
        }
        return v;
    };
    for (std::size_t at = 0, n = 0; (n = word(at) >> 16) > 0; at += 22 + 8 * n) {
        Line line(n);
        for (std::size_t i = 0; i < n; ++i) {
            line[i] = {std::bit_cast<float>(word(at + 22 + 8 * i)),
                       std::bit_cast<float>(word(at + 26 + 8 * i))};
        }
        out.push_back(line);
    }
    return out;
}

// Distance of a place to the nearest line, km.
double distance(const std::vector<Line>& map, const Place& p) {
    const double w = std::cos(p.lat * M_PI / 180);
    double best = 1e9;
    for (const Line& line : map) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            const double ax = (line[i - 1].lon - p.lon) * w, ay = line[i - 1].lat - p.lat;
            const double dx = (line[i].lon - line[i - 1].lon) * w;
            const double dy = line[i].lat - line[i - 1].lat;
            const double t = std::clamp(-(ax * dx + ay * dy) / (dx * dx + dy * dy + 1e-12), 0., 1.);
            best = std::min(best, std::hypot(ax + t * dx, ay + t * dy));
        }
    }
    return best * 111.195;
}

std::string be(float v) {
    const auto bits = std::bit_cast<std::uint32_t>(v);
    std::string out;
    for (int shift = 24; shift >= 0; shift -= 8) {
        out += static_cast<char>(bits >> shift);
    }
    return out;
}

std::string binary(const std::vector<Line>& map) {
    std::string out;
    for (const Line& line : map) {
        out += {static_cast<char>(line.size() >> 8), static_cast<char>(line.size())};
        out += std::string(20, '\0');
        for (const Place& p : line) {
            out += be(p.lat) + be(p.lon);
        }
    }
    return out + std::string(22, '\0');
}

std::string text(const std::vector<Line>& map) {
    std::ostringstream out;
    for (const Line& line : map) {
        out << line.size() << " 0.0 0.0 0.0 0.0 0\n";
        for (const Place& p : line) {
            out << p.lat << ' ' << p.lon << '\n';
        }
    }
    out << "0 0.0 0.0 0.0 0.0 0\n";
    return out.str();
}

int map_result(const std::string& bytes) {
    FILE* file = bytes.empty() ? std::fopen("/dev/null", "rb")
                               : fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "rb");
    const int result = MAP_map(file);
    std::fclose(file);
    return result;
}

Domain make(const char* what) {
    Domain d;
    std::istringstream in(what);
    in >> d.proj >> d.plat >> d.plon >> d.clat >> d.clon >> d.nx >> d.ny >> d.dx;
    in >> d.param[0] >> d.param[1];
    d.param[0] = in.eof() && d.param[0] == 0 ? missing_f : d.param[0];
    d.param[1] = d.param[1] == 0 ? missing_f : d.param[1];
    d.dy = d.dx;
    return d;
}

class Map : public testing::Test {
protected:
    void SetUp() override {
        MESS_set(0, mess_warn | mess_error);
        FLAG_resetplot(1);
        RES_put("file_path", etc);
    }
    const Domain us = make("1 39 -97 39 -97 25 17 2.3");
};

} // namespace

TEST_F(Map, ShippedFiles) {
    // Name, records, points, and whether it holds rings rather than lines.
    std::istringstream rows("zyr.map 1066 45120 0 us_cnty.map 3008 27604 0 cont.map 4080 135248 0 "
                            "country.map 208 20490 0 land.map 1397 33010 1 lakes.map 116 5993 1 "
                            "rivers.map 301 19353 0 us_outl.map 255 8945 0 us_state.map 55 3326 0 "
                            "ca_prov.map 16 890 0 cont_lo.map 130 6861 0 ctry_lo.map 159 3319 0");
    std::size_t records = 0, points = 0;
    bool rings = false;
    for (std::string name; rows >> name >> records >> points >> rings;) {
        const std::vector<Line> map = read_map(name);
        std::size_t count = 0, bad = 0, twice = 0;
        std::set<std::array<float, 4>> seen;
        for (const Line& line : map) {
            count += line.size();
            bad += rings ? line.front().lat != line.back().lat : line.size() > 999;
            for (std::size_t i = 1; i < line.size(); ++i) {
                const Place &a = line[i - 1], &b = line[i];
                bad += std::fabs(a.lat - b.lat) > 1.001F || std::fabs(a.lon - b.lon) > 1.001F ||
                       std::fabs(b.lat) > 90 || std::fabs(b.lon) > 180;
                const bool swap = std::pair(a.lat, a.lon) > std::pair(b.lat, b.lon);
                const Place &s = swap ? b : a, &e = swap ? a : b;
                twice += !seen.insert({s.lat, s.lon, e.lat, e.lon}).second;
            }
        }
        EXPECT_EQ(map.size(), records) << name;
        EXPECT_EQ(count, points) << name;
        EXPECT_TRUE(bad == 0 && (rings || twice == 0)) << name << ' ' << bad << ' ' << twice;
    }
}

TEST_F(Map, LinesLieWhereTheyAre) {
    // File, place, and how near its line must be, km: four corners, tip of Cape
    // Cod, Cape Flattery, the 49th parallel, mouth of the Rio Grande, four
    // corners of Canada, three borders at Basel and Iguazu, Cabo da Roca, Cape
    // of Good Hope, Cape Dezhnev beyond the date line.
    std::istringstream rows("us_state.map 37.0 -109.045 0.3 us_outl.map 42.081 -70.22 1.0 "
                            "us_outl.map 48.384 -124.726 1.0 zyr.map 49 -110 0.3 "
                            "zyr.map 25.957 -97.147 1.5 ca_prov.map 60 -110 0.5 "
                            "country.map 47.59 7.589 1.5 country.map -25.594 -54.594 1.5 "
                            "cont.map 38.781 -9.5 2.0 cont.map -34.357 18.475 2.0 "
                            "cont.map 66.081 -169.652 2.0");
    Place place{};
    double km = 0;
    for (std::string name; rows >> name >> place.lat >> place.lon >> km;) {
        EXPECT_LT(distance(read_map(name), place), km) << name << ' ' << place.lat;
    }
}

TEST_F(Map, BothFormsAndDamage) {
    const std::vector<Line> map = {
        {{30, -100}, {35, -101}, {40, -90}},
        Line(1200, {38,          -95                  }
        ), {{45, -80},          {46, -81}}
    };
    const std::string forms[] = {binary(map), text(map)};
    std::vector<PsLine> drawn[2];
    for (int i = 0; i < 2; ++i) {
        drawn[i] = ps_plot(us, [&] { EXPECT_EQ(map_result(forms[i]), 0); }).lines;
        ASSERT_EQ(drawn[i].size(), 3U);
        EXPECT_EQ(drawn[i][1].size(), 1200U);
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(
            std::memcmp(drawn[0][i].data(), drawn[1][i].data(), sizeof(Gpt) * drawn[0][i].size()),
            0);
    }
}

TEST_F(Map, DamagedFiles) {
    // Cut anywhere before the end record: what stands before is drawn.
    const std::string first = binary({
        {{30, -100}, {35, -101}, {40, -90}}
    });
    const PsPicture cut = ps_plot(us, [&] {
        for (std::size_t n = 0; n < first.size(); ++n) {
            EXPECT_EQ(map_result(first.substr(0, n)), -1) << n;
        }
        for (const char* bad : {"2 0 0 0 0 0\n30 -100\n", "2 0 0 0 0 0\n30 -100\nx",
                                "-2 0 0 0 0 0\n", "40000 0 0 0 0 0\n", "2 0 0 0 0", "\n"}) {
            EXPECT_EQ(map_result(bad), -1) << bad;
        }
    });
    EXPECT_EQ(cut.lines.size(), 8 + 22U); // two points whole, or all three
    ps_plot(make("99 0 0 0 0 25 17 1"), [&] { EXPECT_EQ(map_result(first), 1); });
}

// Which databases a list draws, in order.
TEST_F(Map, ListLanguage) {
    const TempDir directory;
    const std::string one = binary({
        {{38, -98}, {39, -97}}
    });
    for (const char* name : {"a.map", "b.map", "c.map"}) {
        directory.write(name, one);
    }
    directory.write("modern.fnt", read_text(std::string(etc) + "modern.fnt"));
    RES_put("file_path", directory.path().c_str());
    struct Row {
        const char* list; // words of a list file, or with commas the resource
        const char* under;
        const char* over;
    };
    // The picture is 36.8 high with its centre at 39, -97.
    const Row rows[] = {
        {"a.map -b.map +c.map",                            "b.map", "a.map c.map"               },
        {"a.map [30,50,-110,-80] b.map [] c.map",          "",      "a.map b.map"               },
        {"[50,30,-80,-110,36.9] a.map [] c.map",           "",      "a.map"                     },
        {"[30,50,-110,-80,36.7] a.map [] c.map",           "",      "c.map"                     },
        {"[39,39,-97,-97] a.map [1,2,3,4] b.map [] c.map", "",      "a.map"                     },
        {"a.map [0,1,0,1] b.map -c.map",                   "c.map", "a.map"                     },
        {"-[0,1,0,1] -a.map -[] -b.map",                   "b.map", ""                          },
        {"s+36:a.map s+37:b.map S-37:c.map",               "",      "a.map c.map"               },
        {">36<37:a.map >36<36.5:b.map <37>36:c.map",       "",      "a.map c.map"               },
        {">36:s-37:a.map <36:b.map >36c.map",              "",      "a.map"                     },
        {"s+30:>30:<40:a.map s+30:>40:b.map",              "",      "a.map"                     },
        {"a.map:none b.map:blue:w2 gone.map c.map",        "",      "a.map b.map gone.map c.map"},
        {"im:x.gif IF:x.gif::1:2 mf:x.meta rf:x a.map",    "",      "a.map"                     },
    };
    // A height of 32 passes both conditions with that number.
    const Domain exact = make("2 0 0 40 -90 25 17 2");
    const auto drawn = [](const Domain& domain, int flag) {
        std::string out;
        for (const std::string& m : ps_plot(domain, [&] { MAP_draw(flag); }).messages) {
            out += m.starts_with("Map: ") ? (out.empty() ? "" : " ") + m.substr(5) : "";
        }
        return out;
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.list);
        directory.write("a.lst", row.list);
        RES_put("map_file", "fi:a.lst");
        EXPECT_EQ(drawn(us, map_under), row.under);
        EXPECT_EQ(drawn(us, map_over | map_plain), row.over);
    }
    RES_put("map_file", "FI:gone.lst,>32:a.map,<32:b.map,");
    testing::internal::CaptureStderr();
    EXPECT_EQ(drawn(exact, map_plain), "a.map b.map");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "MAP_draw: Unable to open map list file: gone.lst\n");
    FLAG_setplot(8, 0);
    EXPECT_EQ(drawn(us, map_plain), "");
    EXPECT_EQ(MAP_process(nullptr), -1);
}

TEST_F(Map, ListOfTheDomain) {
    const auto first = [](const Domain& domain) {
        return ps_plot(domain, [] { MAP_draw(map_plain); }).messages.at(0);
    };
    EXPECT_EQ(first(us), "Map: zyr.map");
    EXPECT_EQ(first(make("1 36 128 36 128 25 17 .5")), "Map: cont.map"); // not the list before
    EXPECT_EQ(first(make("1 50 -100 50 -100 25 25 4.2")), "Map: cont.map");
    MAP_file("us_outl.map");
    MAP_set_format("red:fp=sol");
    const PsPicture picture = ps_plot(us, [] { MAP_draw(map_plain); });
    EXPECT_EQ(picture.messages.at(0), "Map: us_outl.map");
    EXPECT_GT(picture.fills.size(), 80U);
    EXPECT_EQ(picture.lines.size(), 0U);
}

// Lines of the world on every projection: no part of a picture is crossed by
// a segment longer than a step of the lines can be.
TEST_F(Map, NoLineCrossesThePicture) {
    struct Row {
        const char* domain;
        double bound; // longest visible segment, in widths of the picture
        const char* note;
    };
    const Row rows[] = {
        {"2 0 180 0 180 73 37 5",            0.01, "latitude-longitude about the date line"    },
        {"2 0 -97 0 -97 73 37 5",            0.01, "latitude-longitude, cut in Asia"           },
        {"3 0 -97 0 -97 41 31 10",           0.02, "Mercator"                                  },
        {"1 -90 0 -90 0 25 25 6",            0.02, "south pole"                                },
        {"1 60 180 60 180 25 17 2.3",        0.03, "date line"                                 },
        {"1 90 -97 90 -97 25 25 10",         0.04, "northern hemisphere"                       },
        {"4 40 -97 40 -97 25 17 4 30 60",    0.02, "Lambert conformal"                         },
        {"5 15 -90 15 -90 25 25 5.4",        0.02, "orthographic"                              },
        {"7 0 0 0 0 25 13 10.8",             0.02, "Mollweide"                                 },
        {"7 0 170 0 170 25 13 10.8",         0.02, "Mollweide about the date line"             },
        {"8 40 -97 40 -97 25 25 10.8",       0.09, "Lambert azimuthal, the antipode is the rim"},
        {"9 0 -75 0 -75 25 25 5.6 421.64 1", 0.02, "satellite"                                 },
    };
    RES_put("map_file", "cont_lo.map,ctry_lo.map");
    for (const Row& row : rows) {
        const PsPicture picture = ps_plot(make(row.domain), [] { MAP_draw(map_plain); });
        EXPECT_GT(picture.lines.size(), 10U) << row.note;
        EXPECT_LT(picture.longest(), row.bound) << row.note;
    }
    // The grid has longer steps, but on no projection one across the picture.
    RES_put("map_file", "lalo:10");
    for (const Row& row : rows) {
        EXPECT_LT(ps_plot(make(row.domain), [] { MAP_draw(map_plain); }).longest(), 0.35)
            << row.note;
    }
    const PsPicture ortho = ps_plot(make("5 15 -90 15 -90 25 25 5.4"), [] {
        FILE* file = std::fopen(ZYR_SOURCE_DIR "/etc/cont_lo.map", "rb");
        MAP_map(file);
        std::fclose(file);
    });
    for (const PsLine& line : ortho.lines) {
        for (const Gpt& p : line) {
            ASSERT_LT(std::hypot(ortho.plot(p).x, ortho.plot(p).y), 63.8F);
        }
    }
}

// Where the paper shows three radars, against formulas of our own.
TEST_F(Map, DevicePositions) {
    const double k = 63.7122 * (1 + std::sin(M_PI / 3));
    const auto polar = [&](double lat, double lon) {
        const double r = k * std::tan((90 - lat) * M_PI / 360), t = (lon + 97) * M_PI / 180;
        return std::pair(r * std::sin(t), -r * std::cos(t));
    };
    const auto centre = polar(39, -97);
    const char* ids[] = {"KTLX", "AMX", "klot"};
    const Place places[] = {
        {35.33335F, -97.27776F},
        {25.61106F, -80.41269F},
        {41.60444F, -88.08436F}
    };
    const PsPicture picture = ps_plot(us, [&] {
        gset_marker_type(2);
        for (const char* id : ids) {
            float lat = 0, lon = 0, x = 0, y = 0;
            ASSERT_EQ(CTY_get_loc("rad.cty", id, &lat, &lon), 1);
            MAP_tran(lat, lon, &x, &y);
            GPH_mark(x, y);
        }
    });
    ASSERT_EQ(picture.lines.size(), 6U); // two strokes a marker
    const double scale = (picture.device.x_max - picture.device.x_min) / 55.2;
    for (std::size_t i = 0; i < 3; ++i) {
        const PsLine& stroke = picture.lines[2 * i];
        const auto p = polar(places[i].lat, places[i].lon);
        EXPECT_NEAR((stroke[0].x + stroke[1].x) / 2,
                    picture.device.x_min + (p.first - centre.first + 27.6) * scale, 0.5);
        EXPECT_NEAR(stroke[0].y, picture.device.y_min + (p.second - centre.second + 18.4) * scale,
                    0.5);
    }
}

TEST_F(Map, LatLonGrid) {
    RES_put("map_file", nullptr);
    // Ten-degree lines of a picture from 20 to 60 N and 120 to 60 W.
    MAP_latlon(10, 10, 10, 0);
    const PsPicture grid = ps_plot(make("2 0 0 40 -90 61 41 1"), [] { MAP_draw(map_under); });
    const auto on_ten = [](float v) { return std::fabs(v - 10 * std::round(v / 10)) < 0.05F; };
    int parallels = 0, meridians = 0, arms = 0;
    for (const PsLine& line : grid.lines) {
        const Gpt a = grid.plot(line.front()), b = grid.plot(line.back());
        arms += std::hypot(a.x - b.x, a.y - b.y) < 0.3F && line.size() == 2;
        parallels += std::fabs(a.y - b.y) < 0.01F && on_ten(a.y) && b.x - a.x > 2.4F;
        meridians += std::fabs(a.x - b.x) < 0.01F && on_ten(a.x) && b.y - a.y > 9;
    }
    EXPECT_TRUE(parallels >= 5 * 24 && meridians >= 7 * 4 && arms >= 2 * 7 * 5);
    MAP_latlon(0, 0, 0, 0);
    ps_plot(us, [] {
        EXPECT_EQ(MAP_lines(missing_f, 5), -1);
        EXPECT_EQ(MAP_lines(1e-6F, 5), -1);
        EXPECT_EQ(MAP_lines(30, 30), 0);
    });
}

TEST_F(Map, DiagramGrid) {
    const PsPicture diagram =
        ps_plot(make("20 0 0 0 0 10 20 10"), [] { EXPECT_EQ(MAP_lines(5, -4), -1); });
    EXPECT_EQ(std::count_if(diagram.lines.begin(), diagram.lines.end(),
                            [](const PsLine& line) { return line.size() == 25; }),
              3 + 3);
}

TEST_F(Map, RangeRings) {
    const PsPicture ring = ps_plot(us, [] {
        float x = 0, y = 0;
        MAP_tran(41, -90, &x, &y);
        MAP_draw_circle(x, y, 230);
    });
    ASSERT_EQ(ring.lines.size(), 1U);
    ASSERT_EQ(ring.lines[0].size(), 49U);
    MAP_domain(&us);
    for (const Gpt& p : ring.lines[0]) {
        float lat = 0, lon = 0;
        MAP_untran(ring.plot(p).x, ring.plot(p).y, &lat, &lon);
        const double dlon = (lon + 90) * M_PI / 180, a = 41 * M_PI / 180, b = lat * M_PI / 180;
        const double c = std::sin(a) * std::sin(b) + std::cos(a) * std::cos(b) * std::cos(dlon);
        EXPECT_NEAR(std::acos(c) * 6371.22, 230, 5);
    }
    const Domain edge = make("2 0 0 50 179 25 17 5");
    EXPECT_LT(ps_plot(edge, [] { MAP_draw_circle(179, 50, 400); }).longest(), 0.05);
}
