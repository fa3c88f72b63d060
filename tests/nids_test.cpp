#include "nids_walk.h"
#include "nids_writer.h"

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// The walk as text, in order.
struct Dump : NidsSink {
    std::ostringstream out;

    void packet(int code) { out << "<" << code << ">"; }
    void line(float angle, float width) { out << "[" << angle << "+" << width << "]"; }
    void run(const NIDS_data& d) { out << d.run << "*" << d.val << " "; }
    void vector(const NIDS_vector_data& d) {
        out << "v" << d.val << ":" << d.x1 << "," << d.y1 << "-" << d.x2 << "," << d.y2 << " ";
    }
    void wind(const NIDS_wind_data& d) {
        out << "w" << d.val << ":" << d.x << "," << d.y << "," << d.dir << "," << d.spd << " ";
    }
    void text(const NIDS_text_data& d) {
        out << "t" << d.val << ":" << d.x << "," << d.y << "'" << d.data << "' ";
    }
    void symbol(const NIDS_symbol& d) {
        out << "s" << static_cast<int>(d.kind) << ":" << d.x << "," << d.y << " ";
    }
    void page(int number) { out << "{" << number << "}"; }
};

// The walk's text; "none" for no product.
std::string walk(const Bytes& bytes, NIDS_info* info = nullptr) {
    MESS_set(0, 0);
    NIDS_info own;
    Dump dump;
    const NidsFile file = nids_memory(bytes);
    if (nids_walk(file.get(), info != nullptr ? *info : own, dump) != 1) {
        return "none";
    }
    return dump.out.str();
}

TEST(NidsNumbers, FloatsAndDates) {
    const int bits[] = {0x0000, 0xC000, 0x4200, 0x7C00, 0x0200, 0x8001};
    const float values[] = {0.0F, -1.0F, 1.5F, 32768.0F, 1.0F, -2 / 1024.0F};
    for (std::size_t i = 0; i < std::size(bits); ++i) {
        EXPECT_EQ(NIDS_float16(bits[i]), values[i]) << std::hex << bits[i];
    }
    EXPECT_EQ(NIDS_float32(0xC2C8, 0x4000), -100.125F);
    const int days[] = {-5, 365, 366, 790, 11017};
    const int dates[] = {19700101, 19701231, 19710101, 19720229, 20000229};
    for (std::size_t i = 0; i < std::size(days); ++i) {
        std::array<int, 3> d{};
        NIDS_julian_date(days[i], &d[0], &d[1], &d[2]);
        EXPECT_EQ(d[0] * 10000 + d[1] * 100 + d[2], dates[i]);
    }
}

// Values of the levels of a digital radial or of the precipitation packet, and of
// a run, which takes a threshold as it is: a damaged one must be a number, too.
struct LevelCase {
    int code;
    int packet, level;
    float value;
    std::array<int, 16> thres;
};

TEST(NidsLevels, ValueOfALevel) {
    const LevelCase cases[] = {
        {94,  16,     104,  20.0F,      {-320, 5, 254}                      },
        {99,  16,     127,  0.0F,       {-635, 5, 254}                      }, // still is exactly 0
        {186, 16,     84,   10.0F,      {0, 0, 0}                           },
        {138, 16,     8,    2.0F,       {0, 25, 255}                        },
        {134, 16,     18,   1.0F,       {0x5000, 0x4400, 20, 0x5400, 0x4200}}, // (18 - 2) / 16
        {134, 16,     20,   1.7826928F, {0x5000, 0x4400, 20, 0x5400, 0x4200}}, // exp((20 - 1.5) / 32)
        {135, 16,     0x84, 2.0F,       {0x7F, 1, 2}                        },
        {159, 16,     160,  32.0F,      {0, 0, 0x4300, 0}                   }, // a scale of 0 counts as 1
        {159, 16,     160,  missing_f,  {0x7F80, 1, 0x4300, 0}              },
        {134, 16,     18,   missing_f,  {0, 0, 20, 0, 0}                    }, // no division by 0
        {170, 16,     200,  1.0F,       {0x4000, 0, 0, 0}                   },
        {170, 16,     0,    -99.99F,    {0x4000, 0, 0, 0}                   },
        {81,  17,     254,  25.75F,     {-6000, 125, 254}                   },
        {81,  17,     255,  missing_f,  {-6000, 125, 254}                   },
        {174, 0xAF1F, 0x10, missing_f,  {0xFFFF, 0xFFFF, 0x7F80, 0}         },
        {174, 0xAF1F, 0x12, missing_f,  {0xFFFF, 0xFFFF, 0x7F80, 0}         },
    };
    struct Last : NidsSink {
        float val = 0;
        void run(const NIDS_data& d) { val = d.val; }
    };
    for (const LevelCase& c : cases) {
        NidsSample s;
        s.code = c.code;
        s.thres = c.thres;
        const auto level = static_cast<std::uint8_t>(c.level);
        const std::vector<Bytes> data = {
            Bytes{level, level}
        };
        s.layers = {c.packet == 17 ? nids_raster_packet(17, 0, data)
                                   : nids_radial_packet(c.packet, 1, data)};
        const Bytes bytes = nids_message(s);
        NIDS_info info;
        Last last;
        nids_walk(nids_memory(bytes).get(), info, last);
        EXPECT_FLOAT_EQ(last.val, c.value) << c.code << " level " << c.level;
    }
}

TEST(NidsLevels, CodedThresholds) {
    NidsSample s;
    s.code = 19;
    s.thres = {0x0005, 0x0105, 0x1005, 0x2005, 0x3064, 0x0805, 0x0405, 0x0905,
               0x0205, 0x8000, 0xB104, 0x8002, 0x9003, 0x00FF, 0,      0x0100};
    const float values[] = {5.0F, -5.0F,   0.5F,    0.25F,  0.5F,  5.01F,  4.99F, -5.01F,
                            5.0F, -100.0F, -100.0F, -90.0F, -9.0F, 255.0F, 0.0F,  0.0F};
    NIDS_info info;
    walk(nids_message(s), &info);
    for (std::size_t i = 0; i < std::size(values); ++i) {
        EXPECT_FLOAT_EQ(info.thres[i], values[i]) << i;
    }
}

// Label, parameter line, bin or cell of the domain in metres and its size, of
// a product with 230 bins and the parameters p[1] to p[10].
void expect_info(int code, int src, const std::array<int, 10>& params, const char* expected) {
    NidsSample s;
    s.code = code;
    s.src = src;
    std::copy(params.begin(), params.end(), s.p.begin() + 1);
    s.layers = {nids_radial_packet(16, 230, {Bytes{0}})};
    NIDS_info info;
    walk(nids_message(s), &info);
    // The map of a site is true at 60 degrees north, by (1 + sin 60) / (1 + sin lat).
    const double factor = src > 9999 ? 1.0 : (1 + std::sin(M_PI / 3)) / (1 + std::sin(0.616677));
    std::ostringstream out;
    out << info.info << "|" << info.misc << "|" << std::lround(info.domain.dx / factor * 1e5) << "|"
        << info.domain.nx << "x" << info.domain.ny << " " << info.domain.proj;
    EXPECT_EQ(out.str(), expected);
    EXPECT_EQ(info.domain.dy, info.domain.dx);
    EXPECT_EQ(info.domain.plon, info.domain.clon);
    EXPECT_NEAR(info.alt, 389.2, 0.1);
}

TEST(NidsHeader, LabelLineAndDomain) {
    expect_info(94, 1, {0, 0, 5, 61},
                "Base reflectivity (Dbz)|Md=pr Rng=248(0.5) El=0.5 Mx=61|1000|691x461 1");
    expect_info(
        56, 1, {0, 0, 5, -50, 60, 0, 0, 255, 2304},
        "Stm rel mn rad velocity (knt)|Md=pr El=0.5 Stm=230-26 Mn,Mx=-50,60|1000|691x461 1");
    expect_info(80, 1, {0, 0, 0, 47, 15215, 134},
                "Sfc storm total rainfall acc. (in)|Md=pr Rng=124(1.1) B=28/02:14 Mx=4.7|2000|"
                "691x461 1");
    expect_info(66, 1, {0, 0, 0, 50, 24, 33},
                "Layer 2 comp refl (max Dbz)|Md=pr Rng=124(2.2) Lyr=24-33 Mx=50|4000|691x461 1");
    expect_info(175, 1, {15215, 134, 0, 150, 0, 0, -25},
                "Digital storm total diff accum (in)|Md=pr Rng=124(0.1) B=28/02:14 "
                "Mn,Mx=-0.25,1.50|250|691x461 1");
    expect_info(158, 1, {0, 0, 5, -40, 79},
                "Not supported - 158|Md=pr Rng=0(0.0) El=0.5 Mn,Mx=-4.0,7.9|1000|691x461 1");
    expect_info(103, 10000, {0, 0, 0, 50, 0, 0, 0, 0, 0, 600},
                "Composite reflectivity (Dbz)|Md=pr Res=4.0 Mx=50|4000|600x460 4");
    expect_info(35, 10000, {0, 0, 0, 50, 0, 0, 0, 0, 0, 600},
                "Composite reflectivity (Dbz)|Md=pr Res=0.5 Mx=50|540|600x460 4");
}

// Composites come on a Lambert map of two true latitudes, velocities in metres a second.
TEST(NidsHeader, MapOfCompositesAndKnots) {
    NidsSample s;
    s.code = 103;
    s.src = 10000;
    s.layers = {nids_radial_packet(16, 230, {Bytes{0}})};
    NIDS_info info;
    walk(nids_message(s), &info);
    const Domain& d = info.domain;
    EXPECT_EQ((std::array{d.param[0], d.param[1], d.param[2], d.plat}),
              (std::array{33.0F, 45.0F, 1.0F, 90.0F}));
    s.code = 99;
    s.src = 1;
    s.thres = {-635, 5, 254};
    walk(nids_message(s), &info);
    EXPECT_NEAR(info.thres[0], -63.5 * 1.944, 1e-3);
    EXPECT_NEAR(info.thres[1], 0.5 * 1.944, 1e-4);
}

TEST(NidsStream, EveryWrapperAndCompressionGivesTheSameWalk) {
    NidsSample s;
    s.thres = {-320, 5, 254};
    std::mt19937 random(1);
    std::vector<Bytes> radials(90, Bytes(460));
    for (Bytes& radial : radials) { // long enough for several buffers
        for (auto& level : radial) {
            level = static_cast<std::uint8_t>(random());
        }
    }
    s.layers = {nids_radial_packet(16, 460, radials)};
    s.pages = {nids_text_packet(8, 0, 5, 6, "END")};
    const Bytes plain = nids_message(s);
    const std::string expected = walk(plain);
    ASSERT_EQ(expected.substr(expected.size() - 17), "{1}t-32:5,6'END' ");
    s.bzip2 = true;
    const Bytes packed = nids_message(s);
    const Bytes trailer = {0x0D, 0x0D, 0x0A, 0x03};
    std::vector<Bytes> files = {packed};
    for (const std::string mark : {"\x01\r", "**", "\n*", "SD", "DS", "@\f"}) {
        files.push_back(nids_wrapped(mark, plain));
        files.push_back(nids_join({nids_wrapped(mark, packed), trailer}));
    }
    for (const int streams : {1, 2, 3, 17}) {
        files.push_back(nids_wrapped("SD", nids_zlib(plain, streams)));
        files.push_back(nids_join({files.back(), trailer}));
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_TRUE(walk(files[i]) == expected) << i;
    }
    // A code without a row is unpacked when its description says so.
    s.code = 250;
    EXPECT_NE(walk(nids_message(s)).find("<16>"), std::string::npos);
}

TEST(NidsStream, CollectiveFileAndRefusedData) {
    const auto samples = nids_samples();
    const Bytes collective =
        std::map<std::string, Bytes>(samples.begin(), samples.end()).at("collective");
    const char* selectors[] = {"#0", "#1", "#2"};
    const int types[] = {0xAF1F, 16, missing};
    for (std::size_t i = 0; i < std::size(types); ++i) {
        NIDS_info info;
        info.type = missing;
        NIDS_set_ext_info(selectors[i]);
        walk(collective, &info);
        EXPECT_EQ(info.type, types[i]) << selectors[i];
    }
    NIDS_set_ext_info(nullptr);
    EXPECT_EQ(walk(nids_wrapped("SD", {'R', '3', 0, 94, 0, 0, 0, 0})), "none");
    EXPECT_EQ(walk({}), "none");
    NIDS_info info;
    EXPECT_EQ(NIDS_get_header(nullptr, &info), 0);
}

TEST(NidsStream, UnpackedDataHaveACeiling) {
    const Bytes bomb = nids_wrapped("SD", nids_zlib(Bytes(40 << 20, 0), 1));
    const NidsFile file = nids_memory(bomb);
    NIDS_info info;
    NIDS_get_header(file.get(), &info);
    std::vector<std::uint8_t> area(1 << 20);
    long total = 0;
    while (NIDS_read(area.data(), 1 << 20, file.get()) == 1) {
        total += 1 << 20;
    }
    EXPECT_LE(total, 32 << 20);
    EXPECT_GE(total, 30 << 20);
}

TEST(NidsPackets, OddCases) {
    const auto packets = [](const Bytes& bytes) {
        NidsSample s;
        s.code = 19;
        s.thres = {0, 5, 10};
        s.layers = {bytes};
        return walk(nids_message(s));
    };
    const std::string text(150, 'x');
    EXPECT_EQ(packets(nids_join(
                  {nids_text_packet(8, 1, 2, 3, text), nids_text_packet(1, 16, -2, 3, "behind")})),
              "<8>t5:2,3'" + text.substr(0, 99) + "' <1>t-9999:-2,3'behind' ");
    EXPECT_EQ(packets(nids_words({4, 10, -1, 1, 2, 3, 4})), "<4>w-9999:1,2,3,4 ");
    // Lengths that are no multiple of a record end with the record.
    EXPECT_EQ(packets(nids_words({7, 9, 1, 2, 3, 4, 5, 6, 7, 8, 7, -8})),
              "<7>v0:1,2-3,4 v0:5,6-7,8 <7>");
    EXPECT_EQ(packets(nids_words({0xAF1F, 0, 8, 0, 0, 1, -1, 99})), "<44831><99>");
}

// What a damaged product gives is a part of what the whole one gives.
TEST(NidsDamage, CutsAndFlips) {
    std::mt19937 random(7);
    for (const auto& [name, bytes] : nids_samples()) {
        SCOPED_TRACE(name);
        NIDS_set_ext_info(name == "collective" ? "#1" : "");
        NIDS_take_symbols(name == "cells" || name == "trends" ? 1 : 0);
        const std::string whole = walk(bytes);
        ASSERT_GT(whole.size(), 20U);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            const std::string cut =
                walk(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
            EXPECT_TRUE(cut == "none" || whole.rfind(cut, 0) == 0) << size << " " << cut;
        }
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            Bytes flipped = bytes;
            flipped[at] ^= static_cast<std::uint8_t>(1U << random() % 8);
            NIDS_info info;
            if (walk(flipped, &info) != "none") {
                EXPECT_TRUE(std::isfinite(info.domain.dx) && info.domain.nx > 1) << at;
            }
        }
        EXPECT_EQ(walk(bytes), whole); // nothing is left of what came before
    }
    NIDS_take_symbols(0);
}

} // namespace
