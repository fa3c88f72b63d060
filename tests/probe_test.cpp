// The value under the pointer: texts of levels, places in strips, and the program's
// window on several projections: data whose value tells how far and in which quarter
// of the radar it lies are looked at where the program itself says the pointer is.
#include "lev2_writer.h"
#include "nids_probe.h"
#include "nids_walk.h"
#include "plot_window.h"
#include "rad_probe.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

TEST(Probe, FigureOfAStrip) {
    // A radial of 1 unit a bin between north and 10 degrees, its first bin at 2; a row
    // of cells 3 wide, 1 high.
    const double s = std::sin(10 / 57.29578);
    const double c = std::cos(10 / 57.29578);
    const RadEdges radial = {
        {5, 7, 0, 1},
        {5, 7, s, c}
    };
    const RadEdges gates = {
        {5,         9,         0, 1},
        {5 + 2 * s, 7 + 2 * c, s, c}
    };
    const RadEdges row = {
        {-6, 4, 3, 0},
        {-6, 3, 3, 0}
    };
    struct Row {
        const RadEdges& edges;
        float x, y;
        int figure;
    };
    const Row rows[] = {
        {radial, 5.01F,  7.5F,   0  },
        {radial, 5.1F,   9.4F,   2  },
        {radial, 5.4F,   9.4F,   2  },
        {radial, 5.45F,  9.4F,   -1 }, // beside its edge
        {radial, 4.99F,  9.4F,   -1 },
        {radial, 5.1F,   6.0F,   -1 }, // on the other side of the radar
        {radial, 9.0F,   107.4F, 100},
        {gates,  5.1F,   8.9F,   -1 }, // before the first gate
        {gates,  5.1F,   9.4F,   0  },
        {gates,  9.0F,   107.4F, 98 },
        {row,    -5.9F,  3.5F,   0  },
        {row,    -2.9F,  3.1F,   1  },
        {row,    -2.9F,  4.1F,   -1 },
        {row,    -2.9F,  2.9F,   -1 },
        {row,    -6.1F,  3.5F,   -1 },
        {row,    2.9e9F, 3.5F,   -1 },
    };
    for (const Row& r : rows) {
        EXPECT_EQ(rad_figure_at(r.edges, {r.x, r.y}), r.figure) << r.x << " " << r.y;
    }
}

TEST(Probe, TextOfALevel) {
    struct Row {
        int code, packet, level;
        const char* text;
    };
    const Row rows[] = {
        {19,  0xAF1F, 0,   ""        },
        {19,  0xAF1F, 2,   "10 Dbz"  },
        {27,  0xAF1F, 4,   "-0.5 knt"},
        {27,  0xAF1F, 15,  "RF"      },
        {41,  0xBA0F, 5,   ">5 kft"  },
        {41,  0xBA0F, 6,   "<30 kft" },
        {164, 0xAF1F, 7,   "GR"      },
        {94,  16,     0,   ""        },
        {94,  16,     1,   "RF"      },
        {94,  16,     104, "20 Dbz"  },
        {94,  16,     105, "20.5 Dbz"},
        {134, 16,     1,   ""        },
        {165, 16,     90,  "GR"      },
        {165, 16,     150, "RF"      },
        {165, 16,     130, ""        },
        {165, 16,     95,  ""        },
        {81,  17,     255, ""        },
    };
    for (const Row& r : rows) {
        NidsSample s;
        s.code = r.code;
        s.thres = r.packet == 16 || r.packet == 17
                      ? std::array<int, 16>{-320, 5, 254}
                      : std::array<int, 16>{0x8002,      5,      10, 15,    0x2100 | 10, 0x0800 | 5,
                                            0x0400 | 30, 0x8007, 0,  0,     0,           0,
                                            0,           0,      0,  0x8003};
        if (r.code == 165) {
            s.thres = {0x3F80, 0, 0, 0}; // 1.0, 0.0
        }
        s.layers = {
            r.packet == 16 ? nids_radial_packet(16, 1, {{static_cast<std::uint8_t>(r.level)}                                                      }
                  )
            : r.packet == 0xAF1F
                ? nids_radial_packet(0xAF1F, 2, {{static_cast<std::uint8_t>(16 + r.level), 0}                                              }
                  )
                : nids_raster_packet(r.packet, r.packet == 17 ? 1 : 0,
                                     {r.packet == 17
                                          ? Bytes{1, static_cast<std::uint8_t>(r.level)}
                                          : Bytes{static_cast<std::uint8_t>(16 + r.level)}}
                  )
        };
        const Bytes bytes = nids_message(s);
        const NidsFile file = nids_memory(bytes);
        NIDS_info info;
        MESS_set(0, 0);
        ASSERT_EQ(NIDS_get_header(file.get(), &info), 1);
        float angle = 0;
        NIDS_data data;
        if (NIDS_get_radial(file.get(), &angle, &angle) < 1) {
            NIDS_get_rastor(file.get());
        }
        ASSERT_EQ(NIDS_get_data(file.get(), &data), 1) << r.code;
        EXPECT_EQ(NIDS_get_level(), r.level) << r.code;
        EXPECT_EQ(nids_level_text(info, r.packet, NIDS_get_level(), data.val), r.text)
            << r.code << " " << r.level;
    }
    EXPECT_EQ(rad_number_text(-0.001F), "0");
    EXPECT_EQ(rad_number_text(100.0F), "100");
    EXPECT_EQ(rad_unit_text("Layer 1 comp refl (max Dbz)"), " Dbz");
    EXPECT_EQ(rad_unit_text("Correlation coefficient"), "");
}

// --- Windows --------------------------------------------------------------------

namespace {

constexpr float site_lat = 35.333F;
constexpr float site_lon = -97.278F;
constexpr int ring_km = 60;
constexpr int rings = 3;

// From 1 up; 0: nothing there.
int index_at(float azimuth, float km) {
    const int ring = static_cast<int>(km) / ring_km;
    return ring >= rings ? 0 : 1 + rings * (static_cast<int>(azimuth / 90) % 4) + ring;
}

Bytes runs_product() {
    NidsSample s;
    s.code = 19;
    s.thres = {0x8002, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
    std::vector<Bytes> radials;
    for (int az = 0; az < 360; ++az) {
        Bytes runs;
        for (int bin = 0; bin < ring_km * rings; bin += 15) {
            const int level = index_at(static_cast<float>(az), static_cast<float>(bin));
            runs.push_back(static_cast<std::uint8_t>(0xF0 | level));
        }
        radials.push_back(runs);
    }
    s.layers = {nids_radial_packet(0xAF1F, 230, radials)};
    return nids_wrapped("SD", nids_message(s));
}

Bytes digital_product() {
    NidsSample s;
    s.thres = {-320, 5, 254};
    std::vector<Bytes> radials;
    for (int az = 0; az < 360; ++az) {
        Bytes levels;
        for (int bin = 0; bin < ring_km * rings; ++bin) {
            const int index = index_at(static_cast<float>(az), static_cast<float>(bin));
            levels.push_back(static_cast<std::uint8_t>(2 * (5 * index + 32)));
        }
        radials.push_back(levels);
    }
    s.layers = {nids_radial_packet(16, 460, radials)};
    s.bzip2 = true;
    return nids_wrapped("SD", nids_message(s));
}

Bytes raster_product() {
    NidsSample s;
    s.code = 38;
    s.thres = {0x8002, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
    std::vector<Bytes> rows;
    constexpr int half = 50;
    for (int j = 0; j < 2 * half; ++j) {
        Bytes row;
        for (int i = 0; i < 2 * half; ++i) {
            const auto x = static_cast<float>(4 * (i - half) + 2);
            const auto y = static_cast<float>(4 * (half - j) - 2);
            const float azimuth = std::fmod(std::atan2(x, y) * 57.29578F + 360.0F, 360.0F);
            row.push_back(static_cast<std::uint8_t>(16 | index_at(azimuth, std::hypot(x, y))));
        }
        rows.push_back(row);
    }
    s.layers = {nids_raster_packet(0xBA07, 0, rows)};
    return nids_message(s);
}

Bytes volume(bool packed) {
    Lev2Volume v;
    for (int cut = 1; cut <= 2; ++cut) {
        Bytes unit;
        for (int i = 0; i < 360; ++i) {
            Lev2Radial radial;
            radial.az = static_cast<float>(i) + 0.5F;
            radial.elev_num = cut;
            radial.num = i + 1;
            radial.status = i == 0 ? 0 : i == 359 ? (cut == 2 ? 3 : 2) : 1;
            Lev2Moment moment;
            moment.first_m = 0;
            moment.gate_m = 1000;
            moment.name = cut == 1 ? "REF" : "VEL";
            for (int gate = 0; gate < ring_km * rings; ++gate) {
                const int index = index_at(radial.az, static_cast<float>(gate));
                moment.words.push_back(2 * 5 * index + 66);
            }
            radial.moments = {moment};
            unit = nids_join({unit, lev2_radial(radial)});
        }
        v.units.push_back(unit);
    }
    return lev2_volume(v, packed);
}

// Azimuth and range of a place on the earth's sphere.
void from_radar(double lat, double lon, double* azimuth, double* km) {
    constexpr double rad = 3.14159265358979 / 180;
    const double a = site_lat * rad;
    const double b = lat * rad;
    const double d = (lon - site_lon) * rad;
    const double cosine = std::sin(a) * std::sin(b) + std::cos(a) * std::cos(b) * std::cos(d);
    *km = 6371.2 * std::acos(std::min(cosine, 1.0));
    *azimuth = std::atan2(std::sin(d) * std::cos(b),
                          std::cos(a) * std::sin(b) - std::sin(a) * std::cos(b) * std::cos(d)) /
               rad;
    *azimuth += *azimuth < 0 ? 360 : 0;
}

class ProbeWindow : public PlotWindow {
protected:
    // The lines that Alt-v prints at a pixel.
    std::string ask(int x, int y) {
        const int before = count_text(program->out(), "Lat:");
        const std::size_t from = program->out().size();
        user->point(window, x, y);
        user->key(XK_v, alt);
        EXPECT_TRUE(wait_until([&] { return count_text(program->out(), "Lat:") > before; }, 10));
        settle();
        return program->out().substr(from);
    }
};

} // namespace

TEST_F(ProbeWindow, ValueOfThePlace) {
    write("runs", runs_product());
    write("digital", digital_product());
    write("raster", raster_product());
    write("volume", volume(false));
    write("packed", volume(true));
    const char* own = "";
    const char* mercator = " -pd merc,35.3,-96.9,51,41,.1,.1";
    const char* latlon = " -pd latlon,35.0,-97.3,61,41,.1,.1";
    const char* stereo = " -pd ps,36.0,-96.0,51,41,.1,.1";
    struct Row {
        const char* args;
        const char* domain;
        const char* unit;
        double blur; // km, of a cell and of the place that is told
        int more;    // than the values as they are without a word
    };
    const Row rows[] = {
        {"runs",                           own,      "Dbz", 3, 0 },
        {"runs",                           mercator, "Dbz", 3, 0 },
        {"digital",                        latlon,   "Dbz", 3, 0 },
        {"digital",                        stereo,   "Dbz", 3, 0 },
        {"raster",                         own,      "Dbz", 7, 0 },
        {"raster",                         mercator, "Dbz", 7, 0 },
        {"-inp lev2 volume -pp range=220", own,      "Dbz", 3, 0 },
        {"-inp lev2 volume -va vel",       latlon,   "m/s", 3, 0 },
        {"digital -pp exact",              mercator, "Dbz", 3, -1},
        {"-inp lev2 volume -pp exact",     stereo,   "Dbz", 3, 0 },
        {"-inp lev2z packed -va ref@max",  mercator, "Dbz", 3, 0 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.args) + row.domain);
        start(std::string(row.args) + row.domain);
        int values = 0;
        int nothing = 0;
        for (int i = 0; i < 24; ++i) {
            const std::string told = ask(40 + 107 * i % 560, 60 + 151 * i % 380);
            double lat = 0;
            double lon = 0;
            ASSERT_EQ(std::sscanf(told.c_str(), "Lat: %lf Lon: %lf", &lat, &lon), 2) << told;
            double azimuth = 0;
            double km = 0;
            from_radar(lat, lon, &azimuth, &km);
            const double edge = std::fabs(std::remainder(azimuth, 90)) / 57.3 * km;
            const double ring = std::fabs(std::remainder(km, ring_km));
            if (edge < row.blur || ring < row.blur) {
                continue;
            }
            const int index = index_at(static_cast<float>(azimuth), static_cast<float>(km));
            const std::string value =
                "Value: " + std::to_string(5 * index + row.more) + " " + row.unit + "\n";
            EXPECT_EQ(told.substr(told.find('\n') + 1), index == 0 ? "" : value)
                << azimuth << " " << km;
            (index == 0 ? nothing : values) += 1;
        }
        EXPECT_GT(values, 5);
        EXPECT_GT(values + nothing, 14);
        leave();
    }
}

TEST_F(ProbeWindow, FollowsTheFrameAndTheFile) {
    write("five", disc_product(5));
    write("nine", disc_product(9, 40));
    const auto told = [&] { // by a place beside the site
        const std::string lines = ask(332, 268);
        return lines.substr(lines.find('\n') + 1);
    };
    start("five nine");
    user->key(XK_l, alt); // the loop stops at one of them
    settle();
    const std::string one = told();
    user->key(XK_bracketright, alt);
    const std::string other = told();
    EXPECT_TRUE((one == "Value: 25 Dbz\n" && other == "Value: 45 Dbz\n") ||
                (one == "Value: 45 Dbz\n" && other == "Value: 25 Dbz\n"))
        << one << other;
    user->key(XK_d, alt);
    EXPECT_EQ(told(), one) << "the frame on show was deleted";
    std::filesystem::remove(dir.path() + (one == "Value: 25 Dbz\n" ? "/five" : "/nine"));
    EXPECT_EQ(told(), "") << "its file is gone";
    leave();

    write("nine", disc_product(9, 40));
    start("nine");
    EXPECT_EQ(told(), "Value: 45 Dbz\n");
    write("nine", disc_product(5, 50));
    EXPECT_EQ(told(), "") << "another file has its name";
    user->key(XK_r, alt); // drawn anew
    settle();
    EXPECT_EQ(told(), "Value: 25 Dbz\n");
    leave();
}
