// Storm tables as records: lines as they come and lines that are damaged, and
// every storm of the real products against the columns of its page.
#include "nids_report.h"

#include "map_proj.h"
#include "nids_page.h"
#include "nids_walk.h"
#include "region.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <numbers>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr char header[] =
    " STM ID  AZ/RAN TVS  MDA  POSH/POH/MX SIZE VIL DBZM  HT  TOP  FCST MVMT ";
constexpr char brief[] = " STM  AZ RAN TVS MESO HAIL DBZM HT VLOW TOP FCST MVMT";

std::string number(float v) {
    std::array<char, 40> out{};
    std::snprintf(out.data(), out.size(), "%g", static_cast<double>(v));
    return is_set(v) ? out.data() : "-";
}

// What a record says: id, place, vortex, mesocyclone, hail, size, liquid, largest
// value and its height, top, movement.
std::string said(const NIDS_report& s) {
    std::ostringstream out;
    out << s.id << " " << number(s.ang) << "/" << number(s.rad) << " " << s.tvs << " " << s.meso
        << " " << s.shail << "/" << s.hail << " " << number(s.hsize) << " " << number(s.vil) << " "
        << number(s.max_dbz) << " " << number(s.max_dbz_z) << " " << number(s.tops) << " "
        << number(s.dir) << "/" << number(s.spd);
    return out.str();
}

std::string list_line(const std::string& line, NidsList list) {
    NIDS_report storm;
    return nids_list_line(line.c_str(), &list, &storm) ? said(storm) : "";
}

TEST(NidsReport, LinesOfLists) {
    struct Row {
        NidsList list;
        const char* line;
        const char* expected; // empty: no storm
    };
    const Row rows[] = {
        {NidsList::full,  "    M0  309/  8 TVS    13   30/ 40/ 0.75    30  65 10.2 >18.1  226/ 16  ",
         "M0 309/8 1 13 30/40 0.75 30 65 10.2 18.1 226/16"                                                                             },
        {NidsList::full,  "    E1   27/126 NONE NONE     UNKNOWN       52  57 24.0  37.2    NEW    ",
         "E1 27/126 0 0 0/0 0 52 57 24 37.2 -/-"                                                                                       },
        {NidsList::full,  "    E1   27/126 NONE NONE     UNKNOWN       52  57 24.0  37.2  246",
         "E1 27/126 0 0 0/0 0 52 57 24 37.2 246/-"                                                                                     },
        {NidsList::full,  "    LONG 27.5/6 YES  MESO 100/100/<0.50     5  42 12.4 > 7.6    8/  8",
         "LON 27.5/6 1 1 100/100 0.25 5 42 12.4 7.6 8/8"                                                                               },
        {NidsList::full,  "A 1/2 NONE -3             10/ 20  <3.00",
         "A 1/2 0 0 10/20 0.25 0 0 0 0 -/-"                                                                                            },
        {NidsList::full,  "A 1/2 X",                                                                  "A 1/2 0 0 0/0 0 0 0 0 0 -/-"    },
        {NidsList::full,  "A 1/2",                                                                    ""                               },
        {NidsList::full,  "A 1",                                                                      ""                               },
        {NidsList::full,  "A nan/2 TVS",                                                              ""                               },
        {NidsList::full,  "A 1/1e7 TVS",                                                              ""                               },
        {NidsList::full,  "A 1/-9999 TVS",                                                            ""                               },
        {NidsList::full,  "",                                                                         ""                               },
        {NidsList::full,  "NO STORM 1/2 TVS",                                                         ""                               },
        {NidsList::full,  header,                                                                     ""                               },
        {NidsList::none,  "    M0  309/  8 TVS    13   30/ 40",                                       ""                               },
        {NidsList::brief, "B1 120 45 YES NO POS 55 12.1 48 >35.2 240 25",
         "B1 120/45 1 0 100/0 0 0 55 12.1 35.2 240/25"                                                                                 },
        {NidsList::brief, "B1 120 45 NO YES PRO 55 12.1 48 35.2 240 1e9",
         "B1 120/45 0 1 50/0 0 0 55 12.1 35.2 -/-"                                                                                     },
        {NidsList::brief, "B1 120 45 NO YES PRO 55 12.1 48 35.2 1e9",
         "B1 120/45 0 1 50/0 0 0 55 12.1 35.2 -/-"                                                                                     },
        {NidsList::brief, "B1 120 45 NO NO NO",                                                       "B1 120/45 0 0 0/0 0 0 0 0 0 -/-"},
        {NidsList::brief, "B1 120 x",                                                                 ""                               },
    };
    for (const Row& row : rows) {
        EXPECT_EQ(list_line(row.line, row.list), row.expected) << row.line;
    }
}

// Rows cut at every byte, and with a number in every place: what is said before the
// cut is what the whole row says, or nothing.
TEST(NidsReport, RowsCutAtEveryByte) {
    const std::string row =
        "    M0  309/  8 TVS    13   30/ 40/ 0.75    30  65 10.2 >18.1  226/ 16  ";
    for (std::size_t length = 0; length <= row.size(); ++length) {
        const std::string cut = list_line(row.substr(0, length), NidsList::full);
        EXPECT_TRUE(cut.empty() || cut.starts_with("M0 309/")) << length << " " << cut;
        list_line(row.substr(0, length) + std::string(10000, '9'), NidsList::full);
        list_line(row.substr(0, length) + std::string(10000, '9'), NidsList::brief);
    }
    for (const NidsTable table :
         {NidsTable::tracks, NidsTable::hail, NidsTable::vortices, NidsTable::mesocyclones}) {
        for (const char* label : {"STORM ID", "AZ/RAN", "FCST MVT", "DBZM HGT", "POSH/POH",
                                  "MAX HAIL SIZE", "TYPE STID", "AZ    RAN", "CIR STMID"}) {
            NidsColumns columns;
            for (std::size_t length = 0; length < 60; ++length) {
                const std::string text = std::string(label) + std::string(length, '/');
                nids_column_line(table, text.c_str(), &columns);
            }
            nids_column_line(table, (label + std::string(10000, '8')).c_str(), &columns);
            EXPECT_LT(std::strlen(columns[0].id), sizeof columns[0].id) << label;
        }
    }
}

// A header line decides how the lines after it are read; one with both words is full.
TEST(NidsReport, HeadersOfLists) {
    NidsList list = NidsList::none;
    NIDS_report storm;
    for (const auto& [line, expected] : {
             std::pair(brief, NidsList::brief),
             {"A1 1 2 NO", NidsList::brief},
             {header,      NidsList::full },
             {"VIL VLOW",  NidsList::full },
             {"VLOW",      NidsList::brief}
    }) {
        nids_list_line(line, &list, &storm);
        EXPECT_EQ(list, expected) << line;
    }
}

// --- Real products --------------------------------------------------------------

// The words of a line after its label, in order. A slash splits them, and a mark in
// front of a number is a part of it.
class Words {
public:
    explicit Words(std::string line, std::size_t label = 0) {
        std::replace(line.begin(), line.end(), '/', ' ');
        in_.str(line.substr(label));
    }
    std::string word() { // empty at the end
        std::string out;
        in_ >> out;
        return out == ">" || out == "<" ? out + word() : out;
    }
    std::string value() { return bare(word()); }
    std::string pair() {
        const std::string first = value();
        return first + "/" + value();
    }
    // A pair, or what is meant by the word in its place.
    std::string pair_or(const std::string& none) {
        const std::string first = word();
        return first.find_first_of("0123456789") != 0 ? none : bare(first) + "/" + value();
    }
    std::string size() {
        const std::string text = word();
        return text[0] == '<' ? "0.25" : bare(text);
    }

private:
    static std::string bare(const std::string& text) {
        const std::size_t at = std::min(text.find_first_not_of("<>"), text.size());
        return number(std::strtof(text.c_str() + at, nullptr));
    }
    std::istringstream in_;
};

using Storms = std::multiset<std::string>;

std::string list_storm(const std::string& line) {
    Words w(line);
    std::string out = w.word();
    out += " " + w.pair();
    out += w.word() == "TVS" ? " 1" : " 0";
    out += " " + w.value();
    const std::string hail = w.pair_or("");
    out += hail.empty() ? " 0/0 0" : " " + hail + " " + w.size();
    for (int i = 0; i < 4; ++i) {
        out += " " + w.value();
    }
    return out + " " + w.pair_or("-/-");
}

// The storms of a page of five lines with a column each.
void add_columns(NidsTable table, const std::vector<std::string>& l, Storms& out) {
    if (table == NidsTable::tracks) {
        Words ids(l[0], 9);
        Words places(l[1], 7);
        Words movements(l[2], 9);
        Words largest(l[4], 9);
        for (std::string id = ids.word(); !id.empty(); id = ids.word()) {
            const std::string dbz = largest.value();
            out.insert(id + " " + places.pair() + " 0 0 0/0 0 0 " + dbz + " " + largest.value() +
                       " 0 " + movements.pair_or("-/-"));
        }
    } else if (table == NidsTable::hail) {
        Words ids(l[0], 10);
        Words places(l[1], 8);
        Words chances(l[2], 10);
        Words sizes(l[3], 15);
        for (std::string id = ids.word(); !id.empty(); id = ids.word()) {
            const std::string chance = chances.pair_or("0/0");
            out.insert(id + " " + places.pair() + " 0 0 " + chance + " " + sizes.size() +
                       " 0 0 0 0 -/-");
        }
    } else {
        const bool vortices = table == NidsTable::vortices;
        Words ids(l[0], 10);
        Words ranks(l[1], 10);
        Words places(l[vortices ? 1 : 2], 10);
        for (std::string kind = ids.word(); !kind.empty() && kind != "NO"; kind = ids.word()) {
            const std::string id = ids.word();
            const std::string rank = ranks.pair();
            out.insert(id + " " + places.pair() +
                       (vortices ? " 1 0" : " 0 " + rank.substr(0, rank.find('/'))) +
                       " 0/0 0 0 0 0 0 -/-");
        }
    }
}

struct Pages : NidsSink {
    NIDS_info info;
    std::vector<std::vector<std::string>> lines;
    void page(int /*number*/) { lines.emplace_back(); }
    void text(const NIDS_text_data& data) {
        if (!lines.empty()) {
            lines.back().emplace_back(data.data);
        }
    }
};

// What the words of the pages say, and what the program makes of their lines.
void read_both(const Pages& pages, Storms& words, Storms& records) {
    const NidsTable table = nids_product(pages.info.code).table;
    NidsList list = NidsList::none;
    for (const auto& lines : pages.lines) {
        NidsColumns columns;
        NIDS_report storm;
        for (const std::string& line : lines) {
            nids_column_line(table, line.c_str(), &columns);
            if (table == NidsTable::list && nids_list_line(line.c_str(), &list, &storm)) {
                records.insert(said(storm));
            }
            if (table == NidsTable::list && line.find("STM") == std::string::npos &&
                line.find_first_not_of(' ') != std::string::npos) {
                words.insert(list_storm(line));
            }
        }
        for (const NIDS_report& column : columns) {
            if (table != NidsTable::list && nids_has_place(column)) {
                records.insert(said(column));
            }
        }
        if (table != NidsTable::list) {
            add_columns(table, lines, words);
        }
    }
}

// Whole degrees and nautical miles of a place on the page from the radar; "off"
// where it lies 0.1 km or more beside them.
std::string place(const Map& map, double x, double y) {
    constexpr double km_per_degree = 111.195;
    constexpr double radian = std::numbers::pi / 180;
    float lat = 0;
    float lon = 0;
    map.untran(static_cast<float>(x), static_cast<float>(y), &lat, &lon);
    const Domain& radar = map.domain;
    const double north = (lat - radar.clat) * km_per_degree;
    const double east = (lon - radar.clon) * km_per_degree * std::cos(radar.clat * radian);
    const double range = std::hypot(east, north) / 1.852;
    const double azimuth = std::fmod(std::atan2(east, north) / radian + 360.5, 360.0) - 0.5;
    const double off =
        std::hypot(range - std::round(range), (azimuth - std::round(azimuth)) * radian * range);
    return off * 1.852 >= 0.1 ? "off"
                              : number(static_cast<float>(std::round(azimuth))) + "/" +
                                    number(static_cast<float>(std::round(range)));
}

// Each storm as "id azimuth/range top": of the words of its page, where tops are
// whole numbers and only lists have any; and as it is plotted.
Storms wanted(const Storms& words, bool tops) {
    Storms out;
    for (const std::string& storm : words) {
        std::istringstream in(storm);
        std::array<std::string, 10> w;
        for (std::string& word : w) {
            in >> word;
        }
        std::array<char, 20> top{};
        std::snprintf(top.data(), top.size(), " %.0f", std::strtod(w[9].c_str(), nullptr));
        out.insert(w[0] + " " + w[1] + (tops ? top.data() : ""));
    }
    return out;
}

Storms plotted(const TempDir& dir, const std::string& file, const Domain& radar, bool tops) {
    constexpr double rows = 620;
    constexpr double step = 0.02;
    constexpr double beside = rows * step * 0.01; // texts are this far from the place
    std::ostringstream args;
    args << "-dr data -va comp -pp nobar -pd ps," << radar.clat << "," << radar.clon << ",931,"
         << rows + 1 << "," << step << "," << step << " " << file;
    const NidsPage page = nids_page(dir, args.str());
    EXPECT_EQ(page.run.code, 0) << file << page.run.err;
    const Map map = map_make(radar);
    Storms out;
    std::string id;
    std::istringstream in(page.text);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line.starts_with("%%TE:") ? line.substr(5) : "");
        double x = 0;
        double y = 0;
        std::string text;
        if (!(words >> x >> y >> text)) {
            continue;
        }
        if (id.empty()) {
            id = text + " " + place(map, x + beside, y - beside);
        } else {
            id += " " + text;
        }
        if (!tops || std::count(id.begin(), id.end(), ' ') == 2) {
            out.insert(id);
            id.clear();
        }
    }
    return out;
}

TEST(NidsReport, EveryStormOfTheRealProducts) {
    const std::string data = ZYR_REAL_DATA "/nids";
    if (!std::filesystem::exists(data)) {
        GTEST_SKIP() << "no real products here";
    }
    MESS_set(0, 0);
    const TempDir dir;
    std::map<std::string, std::size_t> counts;
    std::map<int, int> products;
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
        const NidsFile file(std::fopen(entry.path().c_str(), "rb"), std::fclose);
        Pages pages;
        nids_walk(file.get(), pages.info, pages);
        if (pages.lines.empty()) {
            continue;
        }
        Storms words;
        Storms records;
        read_both(pages, words, records);
        EXPECT_EQ(records, words) << entry.path();
        const bool tops = nids_product(pages.info.code).table == NidsTable::list;
        EXPECT_EQ(plotted(dir, std::filesystem::absolute(entry.path()), pages.info.domain, tops),
                  wanted(words, tops))
            << entry.path();
        counts[entry.path().filename()] = records.size();
        products[pages.info.code] += records.empty() ? 0 : 1;
    }
    EXPECT_EQ(counts["KOUN_SDUS54_NCRTLX_201305202016"], 22U);
    EXPECT_EQ(counts["KOUN_SDUS34_NSTTLX_201305202016"], 22U);
    EXPECT_EQ(counts["KOKX_SDUS51_NCROKX_201108280702"], 32U);
    EXPECT_EQ(counts["KOUN_SDUS64_NTVTLX_201305202016"], 4U);
    EXPECT_EQ(counts["KBMX_SDUS64_NTVBMX_201501020205"], 0U);
    EXPECT_EQ(counts["LOT_NMD_2021_06_21_04_22_17"], 25U);
    const std::map<int, int> expected = {
        {36,  1},
        {37,  4},
        {38,  2},
        {58,  8},
        {59,  3},
        {61,  3},
        {141, 5}
    };
    EXPECT_EQ(products, expected);
}

} // namespace
