// Values and places of NIDS products by the format's own document: the word "exact" of
// `plot_param`. The figures are worked out by hand from the document's tables, and from
// the extremes that real products state.
#include "nids_page.h"
#include "nids_walk.h"
#include "nids_writer.h"
#include "reference.h"

#include "cont.h"
#include "maptran.h"
#include "rad_probe.h"
#include "rad_run.h"
#include "region.h"
#include "units.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Values : NidsSink {
    NIDS_info info;
    std::vector<float> all;
    std::string texts;
    NIDS_bins bins;

    void line(float /*angle*/, float /*width*/) { bins = NIDS_get_bins(); }
    void run(const NIDS_data& data) { all.push_back(data.val); }
    void text(const NIDS_text_data& data) {
        texts += std::to_string(static_cast<int>(data.x)) + "," +
                 std::to_string(static_cast<int>(data.y)) + " " + data.data + ";";
    }
};

Values read_product(FILE* file, bool exact) {
    Values values;
    MESS_set(0, 0);
    NIDS_set_exact(exact ? 1 : 0);
    if (file != nullptr) {
        nids_walk(file, values.info, values);
    }
    NIDS_set_exact(0);
    return values;
}

Values read_product(const NidsSample& sample, bool exact) {
    const Bytes bytes = nids_message(sample);
    const NidsFile file = nids_memory(bytes);
    return read_product(file.get(), exact);
}

// "-" none, "RF" range folded.
std::string text_of(const std::vector<float>& values) {
    std::string text;
    for (const float value : values) {
        std::array<char, 24> number{};
        std::snprintf(number.data(), number.size(), "%.4g", static_cast<double>(value));
        text += text.empty() ? "" : " ";
        text += value == nids_folded ? "RF" : is_set(value) ? number.data() : "-";
    }
    return text;
}

} // namespace

TEST(NidsExact, ValuesOfLevels) {
    struct Row {
        int code;
        std::array<int, 16> thres;
        std::vector<std::uint8_t> levels;
        const char* values;
    };
    const std::vector<Row> rows = {
        {32,  {-320, 5, 256},                          {0, 1, 2, 66, 163},   "- - -32 0 48.5"     },
        {94,  {-320, 5, 254},                          {0, 1, 2, 66, 255},   "- - -32 0 94.5"     },
        {99,  {-635, 5, 254},                          {0, 1, 2, 129, 255},  "- RF -123.4 0 122.5"},
        {182, {-635, 5, 254},                          {0, 1, 2, 129, 255},  "- RF -123.4 0 122.5"},
        {186, {-400, 5, 254},                          {1, 2, 102},          "- -40 10"           },
        {155, {0, 5, 43},                              {0, 1, 2, 129, 159},  "- RF - 0 29.16"     },
        {138, {0, 2, 256},                             {0, 1, 236, 255},     "0 0.02 4.72 5.1"    },
        {159, {16768, 0, 17152, 0, 0, 255, 2},         {0, 1, 2, 128, 255},  "- RF -7.875 0 7.938"},
        {161, {17302, 0, 49778, 0, 0, 255, 2},         {0, 1, 2, 255},       "- RF 0.2083 1.052"  },
        {163, {16800, 0, 16940, 0, 0, 243, 2, 1},      {1, 2, 43, 242, 243}, "RF -2.05 0 9.95 -"  },
        {165, {0, 0, 0, 0, 0, 255},                    {0, 10, 140},         "0 10 140"           },
        {168, {16443, 0x69AA, 16384, 0, 0, 255, 2},    {1, 2},               "RF 0"               },
        {170, {16477, 30893, 16167, 26964, 0, 255, 1}, {0, 1, 255},          "- 0.001 0.735"      },
        {174, {16588, 14490, 17152, 0, 0, 255, 1},     {0, 1, 21, 128},      "- -0.199 -0.1677 0" },
        {135, {127, 1, 2, 128},                        {0, 1, 2, 129, 0x84}, "- - 0 - 2"          },
        {134, {0x5000, 0x4400, 20, 0x5400, 0x4200},    {0, 1, 18, 20},       "- - 1 1.783"        },
        {153, {-320, 0, 254},                          {2, 255},             "-32 -32"            },
        {159, {0x7FC0, 0, 0, 0, 0, 255, 2},            {1, 2},               "RF -"               }, // damaged
    };
    for (const Row& row : rows) {
        NidsSample sample;
        sample.code = row.code;
        sample.thres = row.thres;
        sample.layers = {nids_radial_packet(16, static_cast<int>(row.levels.size()), {row.levels})};
        EXPECT_EQ(text_of(read_product(sample, true).all), row.values) << row.code;
        const auto otherwise = read_product(sample, false).all;
        EXPECT_EQ(std::count(otherwise.begin(), otherwise.end(), nids_folded), 0) << row.code;
    }
}

TEST(NidsExact, OtherPackets) {
    NidsSample sample;
    sample.code = 81;
    sample.thres = {-60, 125, 256};
    sample.layers = {
        nids_raster_packet(17, 1, {Bytes{1, 0, 1, 1, 1, 2, 1, 254, 1, 255}}
          )
    };
    EXPECT_EQ(text_of(read_product(sample, true).all), "- -6 -5.875 25.62 -");
    sample.code = 27;
    sample.thres = {0x8002, 0x0140, 0x8001, 0x0005, 0x8003};
    sample.layers = {
        nids_radial_packet(nids_packet_radial, 5, {Bytes{0x10, 0x11, 0x12, 0x13, 0x14, 0x00}}
          )
    };
    EXPECT_EQ(text_of(read_product(sample, true).all), "-90 -64 -90 5 RF -90");
    EXPECT_EQ(text_of(read_product(sample, false).all), "-90 -64 -90 5 -90 -90");
    // Text without a value, between texts with one.
    const Bytes plain = nids_join({
        nids_words({1,    4 + 6, 30,  40 }
        ), { 'S', 'T',   'O', 'R', 'M', 'S'}
    });
    sample.layers = {nids_join(
        {nids_text_packet(8, 1, 10, 20, "AB"), plain, nids_text_packet(8, 1, 50, 60, "CD")})};
    EXPECT_EQ(read_product(sample, true).texts, "10,20 AB;30,40 STORMS;50,60 CD;");
    EXPECT_EQ(read_product(sample, false).texts, "10,20 AB;40,21332 ORMS;50,60 CD;");
}

// The scale factor of a packet is the cosine of the elevation, or says nothing. Bins
// are multiples of 50 metres.
TEST(NidsExact, PlacesOfBins) {
    struct Row {
        int code, elevation, scale, first;
        double first_km, size_km;
    };
    const Row rows[] = {
        {94,  5,   999,  0,  0.0,      0.999962},
        {94,  195, 942,  0,  0.0,      0.942641},
        {94,  195, 942,  10, 9.42641,  0.942641},
        {94,  195, 500,  0,  0.0,      1.0     },
        {153, 100, 984,  4,  0.984808, 0.246202},
        {180, 3,   1,    0,  0.0,      0.15    },
        {186, 6,   1,    2,  0.6,      0.3     },
        {170, 0,   250,  0,  0.0,      0.25    },
        {138, 0,   2000, 1,  2.0,      2.0     },
        {155, 0,   1000, 0,  0.0,      0.25    },
        {20,  5,   999,  0,  0.0,      1.999924},
    };
    for (const Row& row : rows) {
        NidsSample sample;
        sample.code = row.code;
        sample.p[3] = row.elevation;
        const int packet = row.code == 20 ? nids_packet_radial : 16;
        Bytes bytes = nids_radial_packet(packet, 2,
                                         {
                                             Bytes{70, 70}
        });
        const Bytes first = nids_words({row.first});
        const Bytes scale = nids_words({row.scale});
        std::copy(first.begin(), first.end(), bytes.begin() + 2);
        std::copy(scale.begin(), scale.end(), bytes.begin() + 10);
        sample.layers = {bytes};
        const NIDS_bins bins = read_product(sample, true).bins;
        EXPECT_NEAR(bins.size_km, row.size_km, 1e-5) << row.code << " " << row.scale;
        EXPECT_NEAR(bins.first_km, row.first_km, 1e-4) << row.code << " " << row.scale;
        EXPECT_EQ(bins.count, 2);
    }
}

// Real products state their largest and least value.
TEST(NidsExact, ExtremesOfRealProducts) {
    const std::map<int, double> rounding = {
  // of what they state
        {32,  1.0 },
        {94,  0.5 },
        {99,  1.0 },
        {138, 0.01},
        {153, 0.5 },
        {154, 1.0 },
        {155, 1.0 },
        {159, 0.1 },
        {161, 0.01},
        {163, 0.05},
        {167, 0.01},
        {170, 0.05},
        {172, 0.05},
        {173, 0.05},
        {174, 0.05},
        {175, 0.05},
        {180, 0.5 },
        {182, 1.5 },
        {186, 0.5 },
    };
    std::map<int, int> seen;
    const auto check = [&](const std::string& path, const std::string& line) {
        const auto row = rounding.find(static_cast<int>(json_number(line, "code")));
        if (row == rounding.end()) {
            return;
        }
        const NidsFile file(std::fopen((real_data + path).c_str(), "rb"), std::fclose);
        const auto all = read_product(file.get(), true).all;
        float most = -1e9F;
        float least = 1e9F;
        for (const float value : all) {
            if (is_set(value) && value != nids_folded) {
                most = std::max(most, value);
                least = std::min(least, value);
            }
        }
        ++seen[row->first];
        if (most < least) { // nothing in the air
            return;
        }
        EXPECT_NEAR(most, json_number(line, "max"), row->second + 1e-3) << path;
        const double told = json_number(line, "min");
        // One bin of this one is the least there can be, and not counted.
        if (is_set(static_cast<float>(told)) && !path.ends_with("TV2ORD_201501150004")) {
            EXPECT_NEAR(least, told, row->second + 1e-3) << path;
        }
    };
    if (!each_reference("nids/", check)) {
        GTEST_SKIP() << "no real files here";
    }
    EXPECT_EQ(seen.size(), rounding.size());
}

// Edges on the earth against vectors in space.
TEST(RadEdges, LieOnGreatCircles) {
    for (const double lat : {35.3, 64.5, 13.4}) {
        Domain domain;
        DOM_init(&domain);
        domain.proj = proj_pstereo;
        domain.plat = domain.clat = static_cast<float>(lat);
        domain.plon = domain.clon = -97;
        domain.nx = domain.ny = 11;
        domain.dx = domain.dy = 1;
        const Map own = map_make(domain);
        RadFan fan(own, static_cast<float>(lat), -97);
        fan.edges({0, 0.5, 0, 1.0, 60}); // the others are longer
        for (const double azimuth : {0.0, 77.0, 200.0, -2.5, 357.4, 359.9, 362.6}) {
            const RadEdges edges = fan.edges({azimuth, 0.5, -0.5, 1.0, 460});
            for (const int step : {0, 1, 115, 300, 460}) {
                const double angle = (step - 0.5) / 6371.22;
                const double phi = lat * deg_to_rad;
                const double a = azimuth * deg_to_rad;
                // Up, north and east at the radar, in space.
                const std::array<double, 3> p = {std::cos(angle) * std::cos(phi) -
                                                     std::sin(angle) * std::cos(a) * std::sin(phi),
                                                 std::sin(angle) * std::sin(a),
                                                 std::cos(angle) * std::sin(phi) +
                                                     std::sin(angle) * std::cos(a) * std::cos(phi)};
                float x = 0;
                float y = 0;
                own.tran(static_cast<float>(std::asin(p[2]) / deg_to_rad),
                         static_cast<float>(std::atan2(p[1], p[0]) / deg_to_rad - 97), &x, &y);
                const Gpt at = edges.first.at(step);
                EXPECT_LT(std::hypot(at.x - x, at.y - y), 0.0006)
                    << lat << " " << azimuth << " " << step;
            }
            for (const int step : {1, 3, 200, 458}) { // and back, from the middle of a bin
                Gpt middle = {0, 0};
                for (const RadRuler& edge : {edges.first, edges.second}) {
                    for (const Gpt& corner : {edge.at(step), edge.at(step + 1)}) {
                        middle.x += corner.x / 4;
                        middle.y += corner.y / 4;
                    }
                }
                EXPECT_EQ(rad_figure_at(edges, middle), step) << lat << " " << azimuth;
            }
            const Gpt first = edges.first.at(460);
            const Gpt second = edges.second.at(460);
            const double width_km = std::hypot(first.x - second.x, first.y - second.y) /
                                    own.factor(static_cast<float>(lat)) * 100;
            EXPECT_NEAR(width_km, 460 * 0.51 * deg_to_rad, 0.3);
        }
    }
}

class NidsExactPage : public RadarPlot {
protected:
    NidsExactPage() : RadarPlot(nids_samples()) {}
};

// Folded bins are drawn, in the colour that is asked for; cells of a raster meet at the
// radar. Without the word nothing is changed.
TEST_F(NidsExactPage, FiguresAndTheirPlaces) {
    NidsSample sample;
    sample.code = 99;
    sample.thres = {-635, 5, 254};
    sample.layers = {
        nids_radial_packet(16, 6, {Bytes{0, 1, 1, 1, 160, 160}, Bytes{1, 0, 0, 0, 0, 2}}
          )
    };
    write("folded", nids_message(sample));
    const struct {
        const char* words;
        int figures;
    } rows[] = {
        {"",                 2},
        {",exact",           6},
        {",noexact",         2},
        {",exact,clutter:2", 4},
        {",exact=red",       6},
        {",exact=none",      2},
    };
    for (const auto& row : rows) {
        const NidsPage page =
            nids_page(dir, std::string("./folded -me warn -dr sum -pp nobar") + row.words);
        EXPECT_EQ(page.figures(), row.figures) << row.words;
        EXPECT_EQ(page.run.err, "") << row.words;
    }
    const auto plain = first_figure(nids_page(dir, "./raster -dr sum -pp nobar").text);
    const auto exact = first_figure(nids_page(dir, "./raster -dr sum -pp nobar,exact").text);
    ASSERT_EQ(plain.size(), 5U);
    ASSERT_EQ(exact.size(), 5U);
    const double half = (plain[1][1] - plain[2][1]) / 2; // of a cell's height
    for (std::size_t i = 0; i < plain.size(); ++i) {
        EXPECT_NEAR(exact[i][0] - plain[i][0], -std::abs(half), 0.02);
        EXPECT_NEAR(exact[i][1] - plain[i][1], std::abs(half), 0.02);
    }
}

// Decibels of millimetres make inches; level 1 is the least, -6.
TEST_F(NidsExactPage, PrecipitationInInches) {
    NidsSample sample;
    sample.code = 81;
    sample.thres = {-60, 125, 256};
    sample.layers = {
        nids_raster_packet(17, 1, {Bytes{2, 1, 1, 49, 1, 161, 1, 0, 1, 255}}
          )
    };
    write("precipitation", nids_message(sample));
    nids_page(dir, "./precipitation -pp exact -of zyr:@./grid.txt -dr sum");
    const std::string grid = read("grid.txt");
    EXPECT_TRUE(grid.ends_with("\n0.009889\n0.009889\n0.039370\n0.988932\n"
                               "-9999.000000\n-9999.000000\n"))
        << grid;
}

TEST(RadFolded, HasTheColourOfTheWordTheLevelsOrItsOwn) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_conv_data("none", nullptr, CV_mess);
    CLR_read_table(nullptr);
    CONT_init();
    CONT_set_fill_colors("-91:red,-89:off,0:blue", 0);
    RadWords words;
    const auto color_of = [&words](bool listed) {
        RadFills fills(rad_folded(words, -90.0F, listed));
        const Gattribs* attrib = fills.get(-90.0F);
        return attrib == nullptr ? -1 : attrib->color;
    };
    EXPECT_EQ(color_of(true), CLR_get_ind("red")) << "of the levels alone";
    words.exact = 1;
    EXPECT_EQ(color_of(true), CLR_get_ind("red"));
    EXPECT_EQ(color_of(false), CLR_get_ind("purple"));
    CONT_init();
    CONT_set_fill_colors("0:blue", 0);
    EXPECT_EQ(color_of(true), CLR_get_ind("purple"));
    EXPECT_TRUE(rad_take_word(words, "EXACT=green"));
    EXPECT_EQ(color_of(true), CLR_get_ind("green"));
}
