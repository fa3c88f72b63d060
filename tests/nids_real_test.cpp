// Reads every real product that lies beside the tree and compares it with what
// an independent decoder found in the same file (reference.jsonl) and with the
// packets and pages that the walk must meet (MANIFEST.tsv).
#include "nids_impl.h"
#include "nids_walk.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

const std::string data_dir = ZYR_REAL_DATA "/";

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
        for (n = 1; i + n < codes.size() && codes[i + n] == codes[i]; n++) {
        }
        std::array<char, 16> code{};
        std::snprintf(code.data(), code.size(), codes[i] > 999 ? "%04X" : "%d", codes[i]);
        out += (i == 0 ? "" : " ") + std::string(code.data());
        out += n > 1 ? "x" + std::to_string(n) : "";
    }
    return codes.empty() ? "-" : out;
}

// The number, or the text, behind a key of a JSON line, searched from `from` on.
double number(const std::string& line, const std::string& key, std::size_t from = 0) {
    const std::size_t at = line.find("\"" + key + "\": ", from);
    return at == std::string::npos ? missing
                                   : std::strtod(line.c_str() + at + key.size() + 4, nullptr);
}
std::string word(const std::string& line, const std::string& key) {
    const std::size_t at = line.find("\"" + key + "\": \"") + key.size() + 5;
    return line.substr(at, line.find('"', at) - at);
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

TEST(NidsReal, CountsOfTheReference) {
    std::ifstream reference(data_dir + "reference.jsonl");
    if (!reference) {
        GTEST_SKIP() << "no real files here";
    }
    int files = 0;
    for (std::string line; std::getline(reference, line);) {
        const std::string path = word(line, "path");
        const std::size_t at = line.find("\"layers\": [[{\"kind\": \"ra"); // radial, raster
        if (path.rfind("nids/", 0) != 0 || at == std::string::npos) {
            continue;
        }
        SCOPED_TRACE(path);
        files++;
        const Seen seen = read_product(data_dir + path);
        ASSERT_FALSE(seen.cells.empty());
        const auto [least, most] = std::minmax_element(seen.cells.begin(), seen.cells.end());
        const bool radial = line.compare(at + 21, 8, "\"radial\"") == 0;
        const double bins = number(line, radial ? "gates_min" : "columns_min", at);
        const double lines = number(line, radial ? "radials" : "rows", at);
        Counts expected = reference_counts(line, at, seen.info.type);
        if (radial && *least == bins + 1 && *least % 2 == 0) {
            expected[missing_f] += static_cast<long>(lines); // a byte pads an odd radial
        } else {
            EXPECT_EQ(*least, bins);
        }
        EXPECT_EQ(*most, *least);
        EXPECT_EQ(static_cast<double>(seen.cells.size()), lines);
        EXPECT_EQ(seen.counts, expected);
        EXPECT_EQ(seen.info.code, number(line, "message"));
        EXPECT_EQ(seen.info.src, number(line, "source"));
        EXPECT_NEAR(seen.info.domain.clat, number(line, "lat"), 0.0006);
        EXPECT_NEAR(seen.info.domain.clon, number(line, "lon"), 0.0006);
        EXPECT_NEAR(seen.info.alt, number(line, "height_ft") * 0.3048, 0.01);
    }
    EXPECT_EQ(files, 171);
}

// Files of which the manifest's reader left a compressed block packed.
const std::map<std::string, std::string> unpacked = {
    {"nids/KGJX_N0F_20200817_0551.nids",       "AF1F"   },
    {"nids/KGJX_NAF_20200817_0551.nids",       "AF1F"   },
    {"nids/KGJX_NXF_20200817_0600.nids",       "AF1F"   },
    {"nids/KLZK_H0C_20200814_0417",            "16"     },
    {"nids/KLZK_H0W_20200812_1305",            "16"     },
    {"nids/KOKX_SDUS41_RSLOKX_201108280758",   "28"     },
    {"nids/KOUN_SDUS44_RSLTLX_201305202358",   "28"     },
    {"nids/Level3_MCI_DSP_20160526_2154.nids", "16 FFFF"},
};

TEST(NidsReal, PacketsAndPagesOfTheManifest) {
    std::ifstream manifest(data_dir + "MANIFEST.tsv");
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
        SCOPED_TRACE(column[0]);
        files++;
        Seen seen = read_product(data_dir + column[0]);
        const Date& d = seen.info.date;
        std::array<char, 60> date{};
        std::snprintf(date.data(), date.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", d.year, d.month,
                      d.day, d.hour, d.min, d.sec);
        if (column[11] != "-") { // a text bulletin
            EXPECT_EQ(date.data(), column[11]);
        }
        if (column[14].rfind("BA07", 0) == 0) { // the first code is folded
            column[14].replace(0, 4, "BA0F");
        }
        const auto row = unpacked.find(column[0]);
        EXPECT_EQ(packet_text(seen.packets), row == unpacked.end() ? column[14] : row->second);
        EXPECT_EQ(seen.pages, std::strtol(column[15].c_str(), nullptr, 10));
    }
    EXPECT_EQ(files, 224);
}

} // namespace
