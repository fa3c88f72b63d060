// NOWrad and KAVRAD mosaics: what the readers give of written images, and where
// the plotters draw it.
#include "kavrad.h"
#include "mosaic_writer.h"
#include "nowrad.h"

#include "cont.h"
#include "figure_page.h"
#include "map_proj.h"
#include "maptran.h"
#include "memory_file.h"
#include "nids_page.h"
#include "rad_fill.h"
#include "rad_mosaic.h"
#include "region.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

struct Close {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using Stream = std::unique_ptr<std::FILE, Close>;

Stream opened(const Bytes& bytes) {
    const MemoryFile file(bytes);
    return Stream(std::fopen(file.name(), "rb"));
}

struct Image {
    int header = 0;
    NOWRad_info info;
    std::vector<std::vector<int>> lines; // colour index of each column
    int packets = 0;
};

Image nowrad_read(const Bytes& bytes) {
    const Stream file = opened(bytes);
    Image image;
    image.header = NOWRad_header(file.get(), &image.info);
    int number = 0;
    while (NOWRad_line(file.get(), &number) != 0) {
        std::vector<int>& line = image.lines.emplace_back();
        NOWRad_packet packet;
        while (NOWRad_get_packet(file.get(), &packet) != 0) {
            ++image.packets;
            line.insert(line.end(), static_cast<std::size_t>(packet.run),
                        static_cast<int>(packet.value / 5.0F));
        }
    }
    return image;
}

// The packets after a header, as "run:value ".
std::string nowrad_packets(std::vector<std::uint8_t> body) {
    Bytes bytes = nowrad_header(nowrad_latlon(1, 99, -97, 40, 0.1, 0.1));
    bytes.insert(bytes.end(), {0x00, 0xF0, 0x0C, 0, 0});
    bytes.insert(bytes.end(), body.begin(), body.end());
    const Stream file = opened(bytes);
    NOWRad_info info;
    std::string text;
    int number = 0;
    NOWRad_packet packet;
    NOWRad_header(file.get(), &info);
    while (NOWRad_line(file.get(), &number) != 0) {
        while (NOWRad_get_packet(file.get(), &packet) != 0) {
            text += std::to_string(packet.run) + ":" +
                    std::to_string(static_cast<int>(packet.value)) +
                    (packet.mask != 0 ? "m" + std::to_string(packet.mask) : "") + " ";
        }
        text += "| ";
    }
    return text;
}

std::string kavrad_packets(std::vector<std::uint8_t> body, char type = ' ') {
    Bytes bytes = kavrad_header({.type = type});
    bytes.insert(bytes.end(), body.begin(), body.end());
    const Stream file = opened(bytes);
    KAVRAD_info info;
    std::string text;
    KAVRAD_packet packet;
    KAVRAD_header(file.get(), &info);
    while (KAVRAD_get_packet(file.get(), &packet) != 0) {
        text +=
            std::to_string(packet.run) + ":" + std::to_string(static_cast<int>(packet.value)) + " ";
    }
    return text;
}

} // namespace

TEST(NOWRad, EveryImageComesBack) {
    std::mt19937 random(5);
    for (int i = 0; i < 40; ++i) {
        const int ny = 1 + static_cast<int>(random() % 9);
        const int nx = 1 + static_cast<int>(random() % 900);
        const auto grain = 1 + random() % 200;
        std::vector<int> cells(static_cast<std::size_t>(ny) * nx);
        for (int& cell : cells) {
            cell = random() % grain == 0 || &cell == &cells[0] ? static_cast<int>(random() % 16)
                                                               : *(&cell - 1);
        }
        const auto cell = [&](int row, int column) { return cells[row * nx + column]; };
        const Image image = nowrad_read(nowrad_file(nowrad_latlon(ny, nx, -97, 40, 1, 1), cell));
        EXPECT_EQ(image.header, 1);
        ASSERT_EQ(image.lines.size(), static_cast<std::size_t>(ny));
        for (int row = 0; row < ny; ++row) {
            EXPECT_EQ(image.lines[row],
                      std::vector<int>(cells.begin() + row * nx, cells.begin() + (row + 1) * nx))
                << row << " of " << ny << " by " << nx;
        }
    }
}

TEST(NOWRad, Packets) {
    const std::vector<std::pair<std::vector<std::uint8_t>, const char*>> rows = {
        {{0x35, 0xCF},                   "4:25 13:75 | "         },
        {{0xE7, 0x00, 0xE7, 0xFF},       "1:35 256:35 | "        },
        {{0xD2, 0x01, 0x02},             "514:10 | "             }, // low byte first
        {{0xD2, 0xFF, 0xFF},             "65536:10 | "           },
        {{0xF3, 0x11, 0xF0, 0x11},       "0:0 2:5m3 0:0m3 2:5 | "},
        {{0x00, 0x12},                   "1:0 2:10 | "           },
        {{0x00, 0xF0, 0x00, 0x11},       "1:0 0:0 2:5 | "        },
        {{0x00, 0xF0, 0x0C, 1, 0, 0x11}, "| 2:5 | "              }, // the next line
        {{0x11, 0x00, 0xF0, 0x0F, 0x11}, "2:5 | "                }, // another tag ends the image
        {{0x00},                         "1:0 | "                },
        {{0x00, 0xF0},                   "1:0 0:0 | "            },
        {{0xE1},                         "| "                    }, // cut
        {{0xD1, 0x05},                   "| "                    },
    };
    for (const auto& [body, packets] : rows) {
        EXPECT_EQ(nowrad_packets(body), packets) << testing::PrintToString(body);
    }
}

TEST(NOWRad, HeadersOfBothKinds) {
    NowradImage latlon = nowrad_latlon(21, 11, -97.3, 41.5, 0.5, 0.25);
    const auto blank = [](int, int) { return 0; };
    NOWRad_info info = nowrad_read(nowrad_file(latlon, blank)).info;
    EXPECT_STREQ(info.label, "NOWRad Radar Master Composite (Dbz)");
    const Date& date = info.date;
    EXPECT_EQ((std::array{date.year, date.month, date.day, date.hour, date.min}),
              (std::array{2019, 5, 20, 22, 30}));
    EXPECT_EQ(info.domain.proj, proj_latlon);
    EXPECT_NEAR(info.domain.clat, 41.5 - 0.5 * 10, 1e-4); // the file has the top
    EXPECT_NEAR(info.domain.clon, -97.3, 1e-4);
    EXPECT_NEAR(info.domain.plon, -97.3, 1e-4);
    EXPECT_NEAR(info.domain.dx, 0.25, 1e-6);
    EXPECT_NEAR(info.domain.dy, 0.5, 1e-6);
    EXPECT_EQ(info.domain.nx, 11);

    info = nowrad_read(nowrad_file(nowrad_lambert(3, 4), blank)).info;
    EXPECT_STREQ(info.label, "NOWRad Radar US Composite (Dbz)");
    EXPECT_EQ(info.domain.proj, proj_lambert);
    EXPECT_NEAR(info.domain.param[0], 30, 1e-3);
    EXPECT_NEAR(info.domain.param[1], 60, 1e-3);
    EXPECT_NEAR(info.domain.plat, 39, 1e-3);
    EXPECT_NEAR(info.domain.plon, -97, 1e-3);
    EXPECT_EQ(info.domain.clat, 38.69F); // fixed, whatever the file says
    EXPECT_EQ(info.domain.dx, 0.0722F);
    EXPECT_EQ(info.date.hour, 22);
    NowradImage dense = nowrad_lambert(3, 4); // a sign parts numbers as a blank does
    dense.projection.erase(dense.projection.find(" -"), 1);
    info = nowrad_read(nowrad_file(dense, blank)).info;
    EXPECT_NEAR(info.domain.plon, -97, 1e-3);

    const std::vector<std::pair<const char*, std::array<int, 2>>> month_words = {
        {"Jan", {1, 99}      },
        {"JUN", {6, 99}      },
        {"jul", {7, 99}      },
        {"Mar", {3, 99}      },
        {"MAY", {5, 99}      },
        {"Apr", {4, 99}      },
        {"Aug", {8, 99}      },
        {"Sep", {9, 99}      },
        {"Xyz", {missing, 99}}
    };
    for (const auto& [word, wanted] : month_words) {
        latlon.title = std::string("NOWrad Master       01:05 03-") + word + "-99";
        const Date found = nowrad_read(nowrad_file(latlon, blank)).info.date;
        EXPECT_EQ((std::array{found.month, found.year}), wanted) << word;
    }
    latlon.title = "Another title";
    info = nowrad_read(nowrad_file(latlon, blank)).info;
    EXPECT_STREQ(info.label, "");
    EXPECT_EQ(info.date.year, missing);
}

TEST(NOWRad, RefusedHeadersGiveNoLine) {
    const auto ramp = [](int row, int column) { return row + column; };
    const NowradImage good = nowrad_latlon(3, 5, -97, 40, 1, 1);
    const auto refused = [&](NowradImage image) {
        const Image read = nowrad_read(nowrad_file(image, ramp));
        return read.header == 0 && read.lines.empty();
    };
    EXPECT_FALSE(refused(good));
    NowradImage bad = good;
    bad.kind = 'M';
    EXPECT_TRUE(refused(bad));
    bad = good;
    bad.projection = "0.1 0.2";
    EXPECT_TRUE(refused(bad));
    for (const std::array<int, 2>& size : {
             std::array{0,          5    },
             {3,          0    },
             {-3,         5    },
             {3,          65536},
             {2147483647, 5    }
    }) {
        Bytes bytes = nowrad_header(good);
        const std::string text = std::to_string(size[0]) + " " + std::to_string(size[1]);
        Bytes edited(bytes.begin(), bytes.begin() + 12);
        edited.insert(edited.end(), text.begin(), text.end());
        edited.insert(edited.end(), bytes.begin() + 15, bytes.end());
        edited.insert(edited.end(), {0, 0xF0, 0x0C, 0, 0, 0x11});
        const Image read = nowrad_read(edited);
        EXPECT_TRUE(read.header == 0 && read.lines.empty()) << text;
    }
    // Cut anywhere: what is there, and no more.
    const Bytes whole = nowrad_file(good, ramp);
    const std::size_t header = nowrad_header(good).size();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Image read = nowrad_read(Bytes(whole.begin(), whole.begin() + size));
        EXPECT_EQ(read.header, size >= header + 3 ? 1 : 0) << size;
        EXPECT_LE(read.lines.size(), 3U);
    }
}

TEST(KAVRAD, Packets) {
    const std::vector<std::pair<std::vector<std::uint8_t>, const char*>> rows = {
        {{0x05, 0x40, 0x05},                         "5:-100 1:0 5:0 "                           }, // the value begins at -100 and stays
        {{0x24, 0x28},                               "40:-100 "                                  },
        {{0x48, 0x88, 0xC8},                         "1:40 2:40 3:40 "                           },
        {{0x50, 0x4F, 0x60, 0x5F, 0x70, 0x6F, 0x7F}, "1:-100 1:75 1:100 1:175 1:200 1:275 1:275 "},
        {{0x51, 0x22, 0x23, 0x22},                   "1:105 1:105 -1:105 -1:105 "                },
        {{0x20, 0x01, 0x28, 0x01},                   "0:100 1:100 0:240 1:240 "                  }, // a run of 0 sets the value
        {{0x41, 0x21, 0x41},                         "1:5 "                                      },
        {{0x24},                                     ""                                          },
    };
    for (const auto& [body, packets] : rows) {
        EXPECT_EQ(kavrad_packets(body), packets) << testing::PrintToString(body);
    }
    EXPECT_EQ(kavrad_packets({0x40, 0x41, 0x43, 0x44, 0x46, 0x47}, 'C'),
              "1:-100 1:20 1:40 1:45 1:55 1:55 ");
}

TEST(KAVRAD, EveryImageComesBack) {
    constexpr int nx = 2560;
    constexpr int ny = 2880;
    std::mt19937 random(11);
    std::vector<int> cells(std::size_t{nx} * ny);
    for (int& cell : cells) {
        cell = random() % 300 == 0 || &cell == &cells[0] ? static_cast<int>(random() % 16)
                                                         : *(&cell - 1);
    }
    const Bytes bytes =
        kavrad_file({}, [&](int row, int column) { return cells[row * nx + column]; });
    const Stream file = opened(bytes);
    KAVRAD_info info;
    KAVRAD_packet packet;
    KAVRAD_header(file.get(), &info);
    std::size_t at = 0;
    while (KAVRAD_get_packet(file.get(), &packet) != 0) {
        for (int i = 0; i < packet.run; ++i, ++at) {
            ASSERT_LT(at, cells.size());
            ASSERT_EQ(packet.value, static_cast<float>(5 * cells[at])) << at;
        }
    }
    EXPECT_EQ(at, cells.size());
}

TEST(KAVRAD, Header) {
    const auto info_of = [](const KavradImage& image, std::size_t size = 2048) {
        Bytes bytes = kavrad_header(image);
        bytes.resize(size);
        const Stream file = opened(bytes);
        KAVRAD_info info;
        EXPECT_EQ(KAVRAD_header(file.get(), &info), 1);
        KAVRAD_packet packet;
        EXPECT_EQ(KAVRAD_get_packet(file.get(), &packet), 0);
        return info;
    };
    const auto date_of = [](const KAVRAD_info& info) {
        const Date& d = info.date;
        return std::array{d.hour, d.min, d.sec, d.day, d.month, d.year};
    };
    KAVRAD_info info = info_of({});
    EXPECT_EQ((std::array{info.domain.nx, info.domain.ny}), (std::array{2560, 2880}));
    EXPECT_STREQ(info.label, "KAV Radar Master Grid");
    EXPECT_EQ((std::array{info.start, info.end, info.type}), (std::array{1, 200, 0}));
    EXPECT_EQ(date_of(info), (std::array{22, 30, 0, 20, 5, 2019}));
    info = info_of({.coarse = false, .type = 'C', .date = " 5 1 2 3 499"});
    EXPECT_EQ((std::array{info.domain.nx, info.domain.ny, info.type}), (std::array{5120, 5760, 1}));
    EXPECT_EQ(date_of(info), (std::array{5, 1, 2, 3, 4, 1999}));
    EXPECT_EQ(info_of({.date = "0000000101 5"}).date.year, 2005);
    for (const std::size_t size : {0, 1996, 2047}) {
        EXPECT_EQ(info_of({}, size).date.year, missing) << size;
    }
    KAVRAD_info none;
    EXPECT_EQ(KAVRAD_header(nullptr, &none), 0);
}

namespace {

class MosaicPlot : public RadarPlot {
protected:
    MosaicPlot()
        : RadarPlot({
              {"now", nowrad_samples()[0].second},
              {"lam", nowrad_samples()[1].second},
              {"kav", kavrad_samples()[0].second},
    }) {}

    int figures(const std::string& args, const std::string& input = "nowrad") {
        const NidsPage page = nids_page(dir, "-dr sum -pp nobar" + args, input);
        EXPECT_EQ(page.run.code, 0) << args << page.run.err;
        return page.figures();
    }
};

} // namespace

// A run of 25 columns on a mosaic of one line.
TEST_F(MosaicPlot, RunsAreDrawnInPieces) {
    const auto run = [](int, int column) { return column >= 3 && column < 28 ? 8 : 0; };
    write("run", nowrad_file(nowrad_latlon(1, 40, -97, 36, 0.1, 0.1), run));
    EXPECT_EQ(figures(" ./run -pd ll:0:-97,36,-97,61,41,.1,.1"), 3);
    EXPECT_EQ(figures(" ./run -pd ps,36,-97,41,31,.2,.2"), 25);
    EXPECT_EQ(figures(",run=7 ./run -pd ps,36,-97,41,31,.2,.2"), 4);
    EXPECT_EQ(figures(",run ./run -pd ll:0:-97,36,-97,61,41,.1,.1"), 25);
    // The radians of a Lambert section come back as the degrees that a picture names.
    NowradImage section = nowrad_lambert(1, 40);
    section.projection = " 1.0471975512 0.5235987756 0.6806784083 -1.6929693744 -1.7 0.7 .001 .001";
    write("section", nowrad_file(section, run));
    EXPECT_EQ(figures(" ./section -pd lc:39:-97:30:60:1,38.69,-96.03,61,41,.1,.1"), 3);
    const NidsPage away =
        nids_page(dir, "-dr sum -pp nobar ./run -pd ps,36,-60,41,31,.2,.2", "nowrad");
    EXPECT_EQ(away.figures(), 0);
    EXPECT_NE(away.run.err.find("shows nothing of the data"), std::string::npos) << away.run.err;
    // 40 columns of 40 dBZ, then the rest of the line; three columns, the same again, and five.
    EXPECT_EQ(figures(" ./kav -pd ll:0:-96,39,-96,2561,2881,.0257812,.0171874", "kavrad"),
              1 + 4 + 252 + 1 + 1 + 1);
}

TEST_F(MosaicPlot, GoldenPages) {
    expect_golden(
        nids_page(dir, "-dr sum,text,bord -pd ll:0:-97.3,36,-97.3,51,21,.12,.15 ./now", "nowrad"),
        "nowrad_latlon");
    expect_golden(
        nids_page(dir, "-dr sum -pp nobar,run=9 -pd ps,38.7,-96,31,13,.08,.1 ./lam", "nowrad"),
        "nowrad_lambert");
    expect_golden(nids_page(dir, "-dr sum,text -pd ps,63.7,-128.9,31,21,.03,.04 ./kav", "kavrad"),
                  "kavrad");
}

namespace {

// What a close window shows is what a wide one shows of it: `draw` loses nothing of
// it, and leaves out what is elsewhere.
void expect_close_as_wide(const std::string& center, const std::string& wide_size,
                          const std::string& close_size, const std::function<void()>& draw) {
    const auto drawn = [&](const std::string& size, Domain* plot) {
        EXPECT_EQ(DOM_decode((center + size).c_str(), plot), 1);
        FigurePage page(*plot, ZYR_SOURCE_DIR);
        CONT_reset_fill_set();
        CONT_set_fill_colors("0:red,50:blue", 1);
        MAP_get_domain(plot);
        draw();
        page.read(2);
        return page.areas();
    };
    Domain wide;
    Domain close;
    const auto all = drawn(wide_size, &wide);
    const auto some = drawn(close_size, &close);
    const MAP_limits lim = map_make(close).limits;
    // The page keeps two decimals: what only touches the window may be missed.
    const auto meets = [&lim](const Figure& figure, float margin) {
        const auto& p = figure.points;
        const auto [left, right] = std::minmax({p[0].x, p[1].x, p[2].x, p[3].x});
        const auto [low, high] = std::minmax({p[0].y, p[1].y, p[2].y, p[3].y});
        return right > lim.x_min + margin && left < lim.x_max - margin &&
               high > lim.y_min + margin && low < lim.y_max - margin;
    };
    const auto count = [&meets](const std::vector<Figure>& figures, float margin) {
        return std::count_if(figures.begin(), figures.end(),
                             [&](const Figure& figure) { return meets(figure, margin); });
    };
    const auto wanted = count(all, 0.05F);
    EXPECT_GT(wanted, 30) << center;
    EXPECT_GE(count(some, 0.0F), wanted) << center;
    EXPECT_LE(count(some, 0.1F), wanted) << center;
    EXPECT_LT(some.size(), all.size()) << center;
}

} // namespace

// On any projection, over a pole and the date line.
TEST(Mosaic, NothingInTheWindowIsLeftOut) {
    struct Row {
        const char* center;
        double lon, top;
    };
    const std::vector<Row> rows = {
        {"ps,36.1,-95.2",                -97.5, 53},
        {"lamb:30:-97:30:60,36.1,-95.2", -97.5, 53},
        {"merc,36.1,-95.2",              -97.5, 53},
        {"lamaz,36.1,-95.2",             -97.5, 53},
        {"ortho,36.1,-95.2",             -97.5, 53},
        {"moll,36.1,-95.2",              -97.5, 53},
        {"sat,36.1,-95.2",               -97.5, 53},
        {"ll,36.1,-95.2",                -97.5, 53},
        {"ps:90:-97,88,-97",             -97.5, 89},
        {"merc,10,179",                  178,   25},
        {"ll,10,-179.5",                 179,   25},
    };
    for (const Row& row : rows) {
        NOWRad_info info;
        {
            const auto blank = [](int, int) { return 0; };
            const Stream file =
                opened(nowrad_file(nowrad_latlon(60, 90, row.lon, row.top, 0.53, 0.61), blank));
            ASSERT_EQ(NOWRad_header(file.get(), &info), 1);
        }
        expect_close_as_wide(row.center, ",121,81,1,1", ",13,9,.9,.9", [&info] {
            RadMosaic mosaic(info.domain, MAP_current(), 1, RadMosaic::Corners::from_top, 0);
            for (int line = 0; line < 60; ++line) {
                mosaic.draw(line, 0, 90, 20.0F);
            }
        });
    }
}

// Radials about a site near the centre, in the window and beyond its edges.
TEST(Radials, NothingInTheWindowIsLeftOut) {
    for (const char* center :
         {"ps,36.1,-95.2", "lamb:30:-97:30:60,36.1,-95.2", "merc,36.1,-95.2", "ll,36.1,-95.2",
          "ortho,36.1,-95.2", "ps:90:-97,85,-97", "merc,10,179", "sat,36.1,-95.2"}) {
        Domain around;
        ASSERT_EQ(DOM_decode(center, &around), 1);
        for (const char* own_map : {"ps", "ll", "lamb"}) {
            std::array<char, 80> text{};
            std::snprintf(text.data(), text.size(), "%s,%.2f,%.2f,921,921,.01,.01", own_map,
                          static_cast<double>(around.clat) - 0.7,
                          static_cast<double>(around.clon) + 0.4);
            Domain product;
            ASSERT_EQ(DOM_decode(text.data(), &product), 1);
            const Map own = map_make(product);
            Gpt site{};
            own.tran(product.clat, product.clon, &site.x, &site.y);
            expect_close_as_wide(center, ",81,61,.3,.3", ",13,9,.09,.09", [&] {
                RadStrip strip(own, MAP_current());
                Gattribs look;
                look.color = 4;
                look.fill_pat = 0;
                for (int i = 0; i < 72; ++i) {
                    const RadEdges edges = rad_radial_edges(
                        own, site, {static_cast<float>(5 * i), 0.0F, 5.0F, 0.0, 0.05});
                    strip.begin();
                    strip.add(3, 80, 1, look);
                    strip.draw(edges);
                }
            });
        }
    }
}

// Few bytes can ask for thousands of millions of figures.
TEST(Mosaic, AFloodOfFiguresIsCut) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    CLR_read_table(nullptr);
    CONT_reset_fill_set();
    CONT_set_fill_colors("0:red,50:blue", 1);
    Domain image;
    ASSERT_EQ(DOM_decode("ll:0:-97,36,-97,65535,65535,.0001,.0001", &image), 1);
    testing::internal::CaptureStderr();
    RES_conv_data("warn", nullptr, CV_mess);
    RadMosaic mosaic(image, map_make(image), 1, RadMosaic::Corners::from_top, 0);
    for (int line = 0; line < 60; ++line) {
        mosaic.draw(line, 0, 65535, 20.0F);
    }
    EXPECT_EQ(count_text(testing::internal::GetCapturedStderr(), "More figures than any mosaic"),
              1);
}

// Whatever is cut off or changed, a reading ends, with what stood before it, and a
// packet takes a byte at least.
TEST(Mosaic, DamagedFilesEndTheReading) {
    const auto each_damage = [](const Bytes& whole, auto read) {
        for (std::size_t i = 0; i < whole.size(); ++i) {
            read(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i)), i, true);
            for (const int change : {0x01, 0x10, 0x80, 0xFF}) {
                Bytes changed = whole;
                changed[i] ^= static_cast<std::uint8_t>(change);
                read(changed, i, false);
            }
        }
    };
    for (const auto& sample : nowrad_samples()) {
        const std::string& name = sample.first; // lambdas take no bindings
        const Bytes& bytes = sample.second;
        const Image whole = nowrad_read(bytes);
        each_damage(bytes, [&](const Bytes& damaged, std::size_t at, bool cut) {
            const Image got = nowrad_read(damaged);
            ASSERT_LE(got.packets, static_cast<int>(bytes.size())) << name << at;
            ASSERT_LE(got.lines.size(), whole.lines.size()) << name << at;
            if (got.header == 1) {
                ASSERT_GE(std::min(got.info.domain.nx, got.info.domain.ny), 1) << name << at;
                ASSERT_LE(std::max(got.info.domain.nx, got.info.domain.ny), 65535) << name << at;
            }
            for (std::size_t i = 0; cut && i + 1 < got.lines.size(); ++i) {
                ASSERT_EQ(got.lines[i], whole.lines[i]) << name << at;
            }
        });
    }
    for (const auto& sample : kavrad_samples()) {
        const std::string& name = sample.first; // lambdas take no bindings
        const Bytes& bytes = sample.second;
        const std::size_t head = kavrad_header({}).size();
        const auto read = [&](const Bytes& damaged) {
            const Stream file = opened(damaged);
            KAVRAD_info info;
            KAVRAD_header(file.get(), &info);
            std::vector<std::pair<int, float>> packets;
            for (KAVRAD_packet packet; KAVRAD_get_packet(file.get(), &packet) != 0;) {
                packets.emplace_back(packet.run, packet.value);
            }
            return packets;
        };
        const auto whole = read(bytes);
        EXPECT_GT(whole.size(), 3U);
        each_damage(bytes, [&](const Bytes& damaged, std::size_t at, bool cut) {
            const auto got = read(damaged);
            ASSERT_LE(got.size(), bytes.size() - head) << name << at;
            if (cut) {
                ASSERT_LE(got.size(), whole.size());
                ASSERT_TRUE(std::equal(got.begin(), got.end(), whole.begin())) << name << at;
            }
        });
    }
}

TEST_F(MosaicPlot, OtherFilesAndPipes) {
    write("html", {'<', 'h', 't', 'm', 'l', '>'});
    const std::string args = "-dr sum,text -pp nobar -pd ll:0:-97.3,36,-97.3,51,21,.12,.12 ";
    EXPECT_EQ(nids_page(dir, args + "./html", "nowrad").run.code, 10);
    EXPECT_EQ(nids_page(dir, args + "./none", "nowrad").run.code, 10);
    EXPECT_EQ(nids_page(dir, args + "./html", "kavrad").run.code, 0);
    expect_piped(nids_page(dir, args + "./now", "nowrad"), "now", args, "nowrad");
}
