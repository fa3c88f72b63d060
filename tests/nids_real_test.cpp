// Reads every real product that lies beside the tree and compares it with what
// an independent decoder found in the same file (reference.jsonl) and with the
// packets and pages that the walk must meet (MANIFEST.tsv).
#include "nids_impl.h"
#include "nids_walk.h"
#include "reference.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Counts = std::map<float, long>; // cells of each value

// What a walk meets: radials or rows with the cells of each, packets, pages.
struct Seen : NidsSink {
    NIDS_info info;
    std::vector<int> cells;
    Counts counts;
    std::vector<int> packets;
    int pages = 0;

    void packet(int code) { packets.push_back(code); }
    void line(float /*angle*/, float /*width*/) { cells.push_back(0); }
    void run(const NIDS_data& data) {
        cells.back() += static_cast<int>(data.run);
        counts[data.val] += static_cast<long>(data.run);
    }
    void page(int /*number*/) { pages++; }
};

Seen read_product(const std::string& path) {
    MESS_set(0, 0);
    Seen seen;
    const NidsFile file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (file != nullptr) {
        nids_walk(file.get(), seen.info, seen);
    }
    return seen;
}

// Codes in order, "8x42" for 42 times packet 8.
std::string packet_text(const std::vector<int>& codes) {
    std::string out;
    for (std::size_t i = 0, n = 0; i < codes.size(); i += n) {
        for (n = 1; i + n < codes.size() && codes[i + n] == codes[i]; ++n) {
        }
        std::array<char, 16> code{};
        std::snprintf(code.data(), code.size(), codes[i] > 999 ? "%04X" : "%d", codes[i]);
        out += (i == 0 ? "" : " ") + std::string(code.data());
        out += n > 1 ? "x" + std::to_string(n) : "";
    }
    return codes.empty() ? "-" : out;
}

// Cells of each value, from the cells of each raw level.
Counts reference_counts(const std::string& line, std::size_t from, int type) {
    Counts counts;
    const bool digital = type == nids_packet_dig_radial || type == nids_packet_dig_precip;
    const std::size_t begin = line.find("\"levels\": {", from) + 11;
    std::istringstream pairs(line.substr(begin, line.find('}', begin) - begin));
    for (std::string pair; std::getline(pairs, pair, ',');) {
        const long level = std::strtol(pair.c_str() + pair.find('"') + 1, nullptr, 10);
        const float value = digital ? nids_level_value(nids_header(), type, static_cast<int>(level))
                                    : nids_header().thres[static_cast<std::size_t>(level)];
        counts[value] += std::strtol(pair.c_str() + pair.find(':') + 1, nullptr, 10);
    }
    return counts;
}

// Header and shape of the grid, as text.
std::string shape(double code, double src, double lat, double lon, double feet, double lines,
                  double cells) {
    std::array<char, 120> text{};
    std::snprintf(text.data(), text.size(), "%.0f %.0f %.3f %.3f %.0f ft %.0f x %.0f", code, src,
                  lat, lon, feet, lines, cells);
    return text.data();
}

// Compares a file with its line of the reference, whose first layer holds a
// grid at `at`.
void compare(const std::string& line, const std::string& path, std::size_t at) {
    const Seen seen = read_product(real_data + path);
    const NIDS_info& info = seen.info;
    const bool radial = line.compare(at + 21, 8, "\"radial\"") == 0;
    const double lines = json_number(line, radial ? "radials" : "rows", at);
    double cells = json_number(line, radial ? "gates_min" : "columns_min", at);
    Counts counts = reference_counts(line, at, info.type);
    const auto [least, most] = std::minmax_element(seen.cells.begin(), seen.cells.end());
    ASSERT_TRUE(least != seen.cells.end() && *least == *most);
    if (radial && *least == cells + 1 && *least % 2 == 0) { // a byte pads an odd radial
        counts[missing_f] += static_cast<long>(lines);
        ++cells;
    }
    EXPECT_EQ(shape(info.code, info.src, info.domain.clat, info.domain.clon, info.alt / 0.3048,
                    static_cast<double>(seen.cells.size()), *least),
              shape(json_number(line, "message"), json_number(line, "source"),
                    json_number(line, "lat"), json_number(line, "lon"),
                    json_number(line, "height_ft"), lines, cells));
    EXPECT_EQ(seen.counts, counts);
}

TEST(NidsReal, CountsOfTheReference) {
    int files = 0;
    const auto check = [&files](const std::string& path, const std::string& line) {
        const std::size_t at = line.find("\"layers\": [[{\"kind\": \"ra"); // radial, raster
        if (at != std::string::npos) {
            SCOPED_TRACE(path);
            compare(line, path, at);
            ++files;
        }
    };
    if (!each_reference("nids/", check)) {
        GTEST_SKIP() << "no real files here";
    }
    EXPECT_EQ(files, 171);
}

// Files of which the manifest's reader left a compressed block packed.
struct Unpacked {
    const char* path;
    const char* packets;
};
constexpr Unpacked unpacked[] = {
    {"nids/KGJX_N0F_20200817_0551.nids",       "AF1F"   },
    {"nids/KGJX_NAF_20200817_0551.nids",       "AF1F"   },
    {"nids/KGJX_NXF_20200817_0600.nids",       "AF1F"   },
    {"nids/KLZK_H0C_20200814_0417",            "16"     },
    {"nids/KLZK_H0W_20200812_1305",            "16"     },
    {"nids/KOKX_SDUS41_RSLOKX_201108280758",   "28"     },
    {"nids/KOUN_SDUS44_RSLTLX_201305202358",   "28"     },
    {"nids/Level3_MCI_DSP_20160526_2154.nids", "16 FFFF"},
};

// Files whose pages lie where the description says, which the manifest's walk did
// not reach.
struct Paged {
    const char* path;
    int pages;
};
constexpr Paged paged[] = {
    {"nids/ICT_NMD_2026_07_10_05_07_19",       1},
    {"nids/ICT_NST_2026_07_10_05_07_19",       6},
    {"nids/KBMX_SDUS34_NSTBMX_201501020205",   3},
    {"nids/KBMX_SDUS64_NHIBMX_201501020205",   3},
    {"nids/KBMX_SDUS64_NTVBMX_201501020205",   1},
    {"nids/KDGX_NST_2022_01_16_09_31",         2},
    {"nids/KOKX_SDUS31_NMDOKX_201108280702",   1},
    {"nids/KOKX_SDUS31_NSTOKX_201108280702",   6},
    {"nids/KOUN_SDUS34_NMDTLX_201305202016",   1},
    {"nids/KOUN_SDUS34_NSTTLX_201305202016",   4},
    {"nids/KOUN_SDUS64_NHITLX_201305202016",   4},
    {"nids/LOT_NMD_2021_06_21_04_22_17",       5},
    {"nids/Level3_MCI_NMD_20160526_2154.nids", 2},
    {"nids/SRX_NST_2021_03_25_02_54_45",       5},
    {"nids/TBW_NHI_2021_04_19_19_02",          4},
    {"nids/TBW_NST_2021_04_19_19_02",          4},
    {"nids/TLX_NST_2026_07_10_05_08_45",       1},
};

// Packets, pages and date that the manifest's columns tell.
std::string told(const std::vector<std::string>& column) {
    std::string packets = column[14];
    if (packets.rfind("BA07", 0) == 0) { // the first code is folded
        packets.replace(0, 4, "BA0F");
    }
    for (const Unpacked& row : unpacked) {
        packets = column[0] == row.path ? row.packets : packets;
    }
    std::string pages = column[15];
    for (const Paged& row : paged) {
        pages = column[0] == row.path ? std::to_string(row.pages) : pages;
    }
    return packets + ", " + pages + " pages, " + column[11];
}

TEST(NidsReal, PacketsAndPagesOfTheManifest) {
    std::ifstream manifest(real_data + std::string("MANIFEST.tsv"));
    if (!manifest) {
        GTEST_SKIP() << "no real files here";
    }
    int files = 0;
    for (std::string line; std::getline(manifest, line);) {
        std::istringstream in(line);
        std::vector<std::string> column;
        for (std::string text; std::getline(in, text, '\t');) {
            column.push_back(text);
        }
        if (column.size() < 16 || column[3] != "nids") {
            continue;
        }
        ++files;
        const Seen seen = read_product(real_data + column[0]);
        const Date& d = seen.info.date;
        std::array<char, 60> date{};
        std::snprintf(date.data(), date.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", d.year, d.month,
                      d.day, d.hour, d.min, d.sec);
        EXPECT_EQ(packet_text(seen.packets) + ", " + std::to_string(seen.pages) + " pages, " +
                      (column[11] == "-" ? "-" : date.data()), // a text bulletin has none
                  told(column))
            << column[0];
    }
    EXPECT_EQ(files, 224);
}

} // namespace
