// Map layer: the shipped databases, both forms of the file and damage to it,
// the language of the list, and where the lines come to lie on paper.
#include "map.h"

#include "maptran.h"
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

struct Place {
    float lat, lon;
};
using Line = std::vector<Place>;
using PsLine = std::vector<Gpt>;

// The lines of a database, read without the code under test.
std::vector<Line> read_map(const std::string& name) {
    const std::string data = read_text(etc + name);
    std::vector<Line> out;
    std::istringstream in(data);
    std::size_t n = 0;
    for (float skip = 0; in >> n >> skip >> skip >> skip >> skip >> skip && n > 0;) {
        for (Place& p : out.emplace_back(n)) {
            in >> p.lat >> p.lon;
        }
    }
    const auto word = [&](std::size_t at) {
        const auto byte = [&](std::size_t i) {
            return std::uint32_t{static_cast<std::uint8_t>(data.at(at + i))};
        };
        return byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
    };
    for (std::size_t at = 0; out.empty() || in.fail(); at += 22 + 8 * n) {
        n = word(at) >> 16;
        if (n == 0) {
            break;
        }
        Line& line = out.emplace_back(n);
        for (std::size_t i = 0; i < n; ++i) {
            line[i] = {std::bit_cast<float>(word(at + 22 + 8 * i)),
                       std::bit_cast<float>(word(at + 26 + 8 * i))};
        }
    }
    return out;
}

// Distance of a place to the nearest line, km.
double distance(const std::vector<Line>& map, const Place& p) {
    const double w = std::cos(p.lat * M_PI / 180);
    double best = 1e9;
    for (const Line& line : map) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            const Place &a = line[i - 1], &b = line[i];
            const double ax = (a.lon - p.lon) * w, ay = a.lat - p.lat;
            const double dx = (b.lon - a.lon) * w, dy = b.lat - a.lat;
            const double t = std::clamp(-(ax * dx + ay * dy) / (dx * dx + dy * dy + 1e-12), 0., 1.);
            best = std::min(best, std::hypot(ax + t * dx, ay + t * dy));
        }
    }
    return best * 111.195;
}

// A PostScript picture as lines of points in plot coordinates.
struct Picture {
    std::vector<PsLine> lines;
    int fills = 0;
    std::string maps; // names on the status line
    Glim window{};    // in plot coordinates

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

Picture draw(const Domain& domain, const std::function<void()>& body) {
    const TempDir directory;
    const std::string file = directory.path() + "/plot.ps";
    RES_put("device", ("p," + file).c_str());
    int id = 0;
    Gws_type type = ws_none;
    Glim offset{0, 0, 0.04F, 0.04F};
    GPH_setup(&id, &type, static_cast<float>(domain.nx - 1) / static_cast<float>(domain.ny - 1),
              &offset);
    MAP_setup(&domain);
    Picture out;
    MAP_get_window(&out.window);
    const Glim& w = out.window;
    const float x0 = xW_ps(w.x_min), y0 = yW_ps(w.y_min),
                scale = (xW_ps(w.x_max) - x0) / MAP_get_hor();
    body();
    GPH_end(id);
    std::istringstream in(read_text(file));
    PsLine path;
    for (std::string line; std::getline(in, line);) {
        const std::string op = line.substr(line.find_last_of(' ') + 1);
        float x = 0, y = 0;
        if (line.starts_with("%%Message: Map: ")) {
            out.maps += line.substr(15);
        } else if (op == "np") {
            path.clear();
        } else if ((op == "mv" || op == "ln") && std::istringstream(line) >> x >> y) {
            path.push_back({w.x_min + (x - x0) / scale, w.y_min + (y - y0) / scale});
        } else if (op == "stroke") {
            out.lines.push_back(path);
        }
        out.fills += op == "fill";
    }
    return out;
}
Picture draw_map(const Domain& domain, int flag = map_plain) {
    return draw(domain, [flag] { MAP_draw(flag); });
}

int map_result(std::string bytes) {
    FILE* file =
        bytes.empty() ? std::fopen("/dev/null", "rb") : fmemopen(bytes.data(), bytes.size(), "rb");
    const int result = MAP_map(file);
    std::fclose(file);
    return result;
}

// proj plat=clat plon=clon nx ny dx=dy, and two parameters.
Domain make(const char* what) {
    Domain d;
    std::istringstream in(what);
    in >> d.proj >> d.clat >> d.clon >> d.nx >> d.ny >> d.dx;
    d.dy = d.dx;
    if (float p = 0, q = 0; in >> p >> q) {
        d.param[0] = p;
        d.param[1] = q;
    }
    return d;
}

class Map : public testing::Test {
protected:
    void SetUp() override {
        MESS_set(0, mess_warn | mess_error);
        FLAG_resetplot(1);
        RES_put("file_path", etc);
    }
    const Domain us = make("1 39 -97 25 17 2.3");
};

} // namespace

TEST_F(Map, ShippedFiles) {
    // Name, and whether it holds rings rather than lines.
    std::istringstream rows("zyr.map 0 us_cnty.map 0 cont.map 0 country.map 0 land.map 1 "
                            "lakes.map 1 rivers.map 0 us_outl.map 0 us_state.map 0 "
                            "ca_prov.map 0 cont_lo.map 0 ctry_lo.map 0");
    bool rings = false;
    for (std::string name; rows >> name >> rings;) {
        std::size_t count = 0, bad = 0;
        std::set<std::array<float, 4>> seen;
        for (const Line& line : read_map(name)) {
            count += line.size();
            bad += rings ? line.front().lat != line.back().lat : line.size() > 999;
            for (std::size_t i = 1; i < line.size(); ++i) {
                const Place &a = line[i - 1], &b = line[i];
                bad += std::fabs(a.lat - b.lat) > 1.001F || std::fabs(a.lon - b.lon) > 1.001F ||
                       std::fabs(b.lat) > 90 || std::fabs(b.lon) > 180;
                const bool back = std::pair(a.lat, a.lon) > std::pair(b.lat, b.lon);
                const Place &s = back ? b : a, &e = back ? a : b;
                bad += !seen.insert({s.lat, s.lon, e.lat, e.lon}).second && !rings; // drawn twice
            }
        }
        EXPECT_TRUE(count > 800 && bad == 0) << name << ' ' << count << ' ' << bad;
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

// A database draws the same in text as in binary.
TEST_F(Map, BothForms) {
    std::ostringstream text;
    text.precision(9);
    for (const Line& line : read_map("us_state.map")) {
        text << line.size() << " 0 0 0 0 0\n";
        for (const Place& p : line) {
            text << p.lat << ' ' << p.lon << '\n';
        }
    }
    const std::string binary = read_text(std::string(etc) + "us_state.map");
    const Picture a = draw(us, [&] { EXPECT_EQ(map_result(binary), 0); });
    const Picture b = draw(us, [&] { EXPECT_EQ(map_result(text.str()), -1); }); // no end record
    ASSERT_EQ(a.lines.size(), b.lines.size());
    for (std::size_t i = 0; i < a.lines.size(); ++i) {
        EXPECT_TRUE(std::equal(a.lines[i].begin(), a.lines[i].end(), b.lines[i].begin(),
                               b.lines[i].end(),
                               [](const Gpt& p, const Gpt& q) { return p.x == q.x && p.y == q.y; }))
            << i;
    }
    EXPECT_GT(a.lines.size(), 40U);
}

TEST_F(Map, LongAndDamagedRecords) {
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
    draw(make("99 0 0 25 17 1"), [&] { EXPECT_EQ(map_result(binary), 1); });
}

// Which databases a list draws, in order, under and over the data.
TEST_F(Map, ListLanguage) {
    const TempDir directory;
    for (const char* name : {"a", "b", "c"}) {
        directory.write(name, "2 0 0 0 0 0\n38 -98\n39 -97\n0 0 0 0 0 0\n");
    }
    directory.write("modern.fnt", read_text(std::string(etc) + "modern.fnt"));
    RES_put("file_path", directory.path().c_str());
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
    EXPECT_EQ(draw_map(make("2 40 -90 25 17 2")).maps, " a b");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "MAP_draw: Unable to open map list file: gone.lst\n");
    FLAG_setplot(8, 0);
    EXPECT_EQ(draw_map(us).maps, "");
}

// The list that the domain chooses, the one set by a program, the shipped ones.
TEST_F(Map, Lists) {
    EXPECT_EQ(draw_map(us).maps, " zyr.map");
    EXPECT_EQ(draw_map(make("1 36 128 25 17 .5")).maps, " cont.map country.map");
    EXPECT_EQ(draw_map(make("1 50 -100 25 25 4.2")).maps, " cont.map country.map");
    MAP_file("us_outl.map");
    MAP_set_format("red:fp=sol");
    const Picture filled = draw_map(us);
    EXPECT_TRUE(filled.maps == " us_outl.map" && filled.fills > 80 && filled.lines.empty());
    RES_put("map_file", "fi:usa.lst");
    EXPECT_EQ(draw_map(us).maps, " zyr.map");
    EXPECT_EQ(draw_map(make("1 35 -98 25 17 .3")).maps, " us_cnty.map zyr.map");
    EXPECT_EQ(draw_map(make("1 35 -98 25 17 .3"), map_under).maps, " rivers.map lakes.map");
    EXPECT_EQ(draw_map(make("1 13.8 145 25 17 .4")).maps, " cont.map country.map");
}

// Lines of the world on every projection: no part of a picture is crossed by
// a segment longer than a step of the lines can be.
TEST_F(Map, NoLineCrossesThePicture) {
    const char* const domains[] = {
        "2 0 180 73 37 5",    // latitude-longitude about the date line
        "2 0 -97 73 37 5",    // the same, cut in Asia
        "3 0 -97 41 31 10",   // Mercator
        "1 -90 0 25 25 6",    // south pole
        "1 60 180 25 17 2.3", // date line
        "1 90 -97 25 25 10",  // northern hemisphere
        "4 40 -97 25 17 4 30 60",
        "5 15 -90 25 25 5.4",
        "7 0 0 25 13 10.8",    // Mollweide
        "7 0 170 25 13 10.8",  // the same about the date line
        "8 40 -97 25 25 10.8", // Lambert azimuthal: the rim is one point
        "9 0 -75 25 25 5.6 421.64 1",
    };
    for (const char* text : domains) {
        const Domain domain = make(text);
        RES_put("map_file", "cont_lo.map,ctry_lo.map");
        const Picture lines = draw_map(domain);
        EXPECT_GT(lines.lines.size(), 10U) << text;
        EXPECT_LT(lines.longest(), domain.proj == proj_lambert_az ? 0.09 : 0.04) << text;
        if (domain.proj == proj_ortho) { // nothing shines through from the far side
            for (const PsLine& line : lines.lines) {
                EXPECT_TRUE(std::all_of(line.begin(), line.end(),
                                        [](const Gpt& p) { return std::hypot(p.x, p.y) < 63.8F; }));
            }
        }
        RES_put("map_file", "lalo:10"); // has longer steps
        EXPECT_LT(draw_map(domain).longest(), 0.35) << text;
    }
}

TEST_F(Map, Grids) {
    // Ten-degree lines of a picture from 20 to 60 N and 120 to 60 W.
    RES_put("map_file", "gone");
    MAP_latlon(10, 10, 10, 0);
    const auto on_ten = [](float v) { return std::fabs(v - 10 * std::round(v / 10)) < 0.05F; };
    int parallels = 0, meridians = 0, arms = 0;
    for (const PsLine& line : draw_map(make("2 40 -90 61 41 1"), map_under).lines) {
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
    const Picture diagram = draw(make("20 0 0 10 20 10"), [] { EXPECT_EQ(MAP_lines(5, -4), -1); });
    const auto is_line = [](const PsLine& line) { return line.size() == 25; };
    EXPECT_EQ(std::count_if(diagram.lines.begin(), diagram.lines.end(), is_line), 3 + 3);
}

TEST_F(Map, RangeRings) {
    const auto ring = [](const Domain& domain, float lat, float lon) {
        return draw(domain, [&] {
            float x = 0, y = 0;
            MAP_tran(lat, lon, &x, &y);
            MAP_draw_circle(x, y, 230);
        });
    };
    EXPECT_EQ(ring(us, 41, -90).lines.at(0).size(), 49U);
    const Picture cut = ring(make("2 50 0 73 17 5"), 50, 179);
    EXPECT_TRUE(cut.lines.size() > 1 && cut.longest() < 0.05);
}
