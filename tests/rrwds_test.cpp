// RRWDS images: header, levels, where the bins lie, and how a run ends.
#include "rrwds.h"

#include "memory_file.h"
#include "nids_page.h"
#include "rrwds_writer.h"

#include "figure_page.h"
#include "nids_wedge.h"
#include "ps_ink.h"
#include "zyrresrc.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace {

// Every ninth azimuth is full.
constexpr int full = 40;
int any(int azimuth, int bin) {
    return azimuth % 9 == 0 ? 1 + (azimuth * 7 + bin) % 6 : 0;
}

RrwdsImage image_of(const std::string& site) {
    RrwdsImage image;
    image.site = site;
    return image;
}

RrwdsImage close_image() {
    RrwdsImage image;
    image.near = true;
    image.elev = -1.3F;
    return image;
}

class RrwdsPlot : public RadarPlot {
protected:
    RrwdsPlot() : RadarPlot({}) {
        write("far", rrwds_file({}, any));
        write("close", rrwds_file(close_image(), any));
        write("none", rrwds_file(image_of("QQQ"), any));
        write("steps",
              rrwds_file({}, [](int azimuth, int bin) { return azimuth % 9 == 0 ? bin % 8 : 0; }));
        write("empty", rrwds_file({}, [](int azimuth, int) { return azimuth % 2 * 7; }));
    }

    [[nodiscard]] NidsPage page(const std::string& args) const {
        return nids_page(dir, "-dr sum,text " + args, "rrwds");
    }
};

} // namespace

TEST(RRWDS, Header) {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    const auto header = [](const Bytes& bytes, NIDS_info* info) {
        const MemoryFile file(bytes);
        std::FILE* stream = std::fopen(file.name(), "rb");
        const int result = RRWDS_get_header(stream, info);
        (void)std::fclose(stream);
        return result;
    };
    NIDS_info info;
    RrwdsImage image = close_image();
    image.hour = 23;
    image.min = 59;
    image.day = 31;
    image.month = 12;
    image.elev = -12.3F;
    EXPECT_EQ(header(rrwds_file(image, any), &info), 1);
    EXPECT_STREQ(info.info, "Reflectivity for TLX");
    EXPECT_STREQ(info.misc, "Range: 100 Elev:-12.3");
    EXPECT_EQ(
        (std::array{info.date.year, info.date.month, info.date.day, info.date.hour, info.date.min}),
        (std::array{missing, 12, 31, 23, 59}));
    EXPECT_EQ(info.domain.dx, 0.5F);
    EXPECT_NEAR(info.domain.clat, 35.333, 0.01);
    EXPECT_EQ(header(rrwds_file({}, any), &info), 1);
    EXPECT_STREQ(info.misc, "Range: 200 Elev:0.5");
    EXPECT_EQ(info.domain.dx, 1.0F);
    const TempDir dir;
    const Bytes whole = rrwds_file({}, any);
    EXPECT_EQ(RRWDS_open_file(dir.write("far", {whole.begin(), whole.end()}).c_str()), 1);
    Domain own;
    EXPECT_EQ(RRWDS_domain(&own), 0);
    EXPECT_EQ((std::array{own.proj, own.nx, own.ny}), (std::array{1, 601, 401}));
    EXPECT_EQ(RRWDS_domain(&own), -1);
    for (std::size_t size = 0; size < 12; ++size) {
        Bytes cut = rrwds_file({}, any);
        cut.resize(size);
        EXPECT_EQ(header(cut, &info), 0) << size;
    }
    for (const char* site : {"QQQ", "", "\x01\xFF "}) {
        EXPECT_EQ(header(rrwds_file(image_of(site), any), &info), -1) << site;
    }
}

TEST_F(RrwdsPlot, FiguresFollowLevelsAndClutter) {
    struct Row {
        int figures; // the key has six of its own
        const char* args;
    };
    const Row rows[] = {
        {full * 200,     "./far"               },
        {full * 176,     "-pp clutter ./far"   },
        {full * 151,     "-pp clutter ./close" },
        {full * 191,     "-pp clutter:10 ./far"},
        {full * 150,     "./steps"             }, // levels 0 and 7 are not drawn
        {0,              "./empty"             },
        {2 * full * 200, "./far ./none ./close"}, // of the runs' files one is unknown
    };
    for (const Row& row : rows) {
        const NidsPage got = page(std::string("-pd ps,35.3,-97.3,101,101,.1,.1 ") + row.args);
        EXPECT_EQ(got.run.code, 0) << row.args << got.run.err;
        const int keys = count_text(got.text, "Intensities (Dbz):");
        EXPECT_GE(keys, 1) << row.args;
        EXPECT_EQ(got.figures() - 6 * keys, row.figures) << row.args;
    }
    EXPECT_EQ(page("-pp nobar ./far").figures(), full * 200) << "no key";
}

TEST_F(RrwdsPlot, LevelsHaveTheirColours) {
    const NidsPage got = page("-pp pscolor,nobar -pd ps,35.3,-97.3,101,101,.1,.1 ./steps");
    std::map<std::string, int> fills; // by colour
    for (const std::string& ink : ps_ink(got.text)) {
        if (ink.starts_with("fill")) {
            ++fills[ink.substr(0, ink.find('|'))];
        }
    }
    EXPECT_EQ(fills.size(), 6U);
    for (const auto& [color, count] : fills) {
        EXPECT_EQ(count, full * 25) << color;
    }
}

// A Lambert picture's third parameter is the scale of the bins, 1 where it has none.
TEST_F(RrwdsPlot, LambertScale) {
    const auto ink = [&](const char* scale) {
        return ps_ink(page(std::string("-pp nobar -dr sum -pd lamb:30:-97:30:60") + scale +
                           ",35.3,-97.3,101,101,.1,.1 ./far")
                          .text);
    };
    EXPECT_EQ(ink(""), ink(":1"));
    EXPECT_NE(ink(""), ink(":1.1"));
}

TEST_F(RrwdsPlot, EndsOfARun) {
    EXPECT_EQ(page("./missing").run.code, 10);
    write("short", Bytes(11, 'T'));
    EXPECT_EQ(page("./short").run.code, 10);
    const NidsPage unknown = page("./none");
    EXPECT_EQ(unknown.run.code, 11);
    EXPECT_NE(unknown.run.err.find("RRWDS_get_header: Station not found"), std::string::npos);
    // A cut file draws the azimuths that it has.
    Bytes cut = rrwds_file({}, any);
    cut.resize(12 + 80 * 7 + 33);
    write("cut", cut);
    const NidsPage some = page("-pp nobar ./cut");
    EXPECT_EQ(some.run.code, 0);
    EXPECT_EQ(some.figures(), 200);
    EXPECT_NE(some.run.err.find("ends at azimuth 7"), std::string::npos) << some.run.err;
    write("header", Bytes(cut.begin(), cut.begin() + 12));
    EXPECT_EQ(page("-pp nobar ./header").figures(), 0);
}

TEST_F(RrwdsPlot, GoldenPage) {
    const auto wedge = [](int azimuth, int bin) {
        return azimuth % 90 == 45 && bin % 40 == 39 ? 1 + bin / 40 : 0;
    };
    write("few", rrwds_file(close_image(), wedge));
    expect_golden(nids_page(dir, "-dr sum,data,text -pp site,dist=50 ./few", "rrwds"), "rrwds");
}

// A file cut at any byte draws its whole azimuths, one with any byte changed no more
// figures than a full one; each byte of the header, every 1597th of the rest.
TEST_F(RrwdsPlot, DamagedFilesDrawWhatIsWhole) {
    const Bytes whole = rrwds_file({}, any);
    constexpr std::size_t head = 12, record = 80;
    const auto figures = [this](const Bytes& bytes) {
        write("damaged", bytes);
        const NidsPage got = page("-pp nobar -dr sum ./damaged");
        EXPECT_TRUE(got.run.code == 0 || got.run.code == 10 || got.run.code == 11)
            << got.run.code << got.run.err;
        return got.run.code == 0 ? got.figures() : 0;
    };
    const int most = 360 * 240;
    for (std::size_t at = 0; at < whole.size(); at += at < head ? 1 : 1597) {
        Bytes changed = whole;
        changed[at] ^= 0x81;
        EXPECT_LE(figures(changed), most) << at;
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at));
        const std::size_t azimuths = at < head ? 0 : (at - head) / record;
        const int full_ones = static_cast<int>((azimuths + 8) / 9); // every ninth
        EXPECT_EQ(figures(cut), full_ones * 200) << at;
    }
}

// Corners move outward by a step a bin.
TEST(Wedge, CornersMoveOn) {
    const WEDGE_info wedge = {1.0, 0.0, 1.0, 0.5, 0.0F};
    std::array<Gpt, 5> corners{};
    MESS_set(0, 0);
    FLAG_setplot(10, 0);
    EXPECT_EQ(NIDS_plot_WEDGE(corners.data(), &wedge, 1.0F, 1.0F), -1);
    FLAG_setplot(10, 1);
    for (int bin = 1; bin <= 2; ++bin) {
        EXPECT_EQ(NIDS_plot_WEDGE(corners.data(), &wedge, 2.0F, missing_f), 0);
    }
    EXPECT_EQ(show({corners.begin(), corners.end()}),
              "(4.00,0.00) (4.00,0.00) (4.00,2.00) (4.00,2.00) (2.00,0.00)");
}
