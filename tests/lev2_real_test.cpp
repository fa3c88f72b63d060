// Reads every real Level II volume that lies beside the tree and compares each
// scan with what an independent decoder found in the same file
// (reference.jsonl).
#include "lev2_walk.h"
#include "reference.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Moment {
    double radials = 0;
    double gates = 0, first_km = 0, size_km = 0; // of the first radial that has most of them
    double least = 1e9, most = -1e9, valid = 0;  // of the gates that hold a value
};
struct Scan {
    double num = 0, radials = 0, azimuth = 0, elevation = 0; // angles of the first radial
    std::array<Moment, lev2_moments> moments;
    LEV2_data first;
};
using Scans = std::map<int, Scan>;

void add_gates(const LEV2_gates& gates, Moment& seen) {
    if (gates.count > seen.gates) {
        seen.gates = gates.count;
        seen.first_km = gates.first_km;
        seen.size_km = gates.size_km;
    }
    for (int i = 0; i < gates.count; ++i) {
        const unsigned word = gates.word(i);
        if (word > 1) {
            // The reference takes the marks of the clutter filter, too, for values.
            const double value = (static_cast<float>(word) - gates.offset) / gates.scale;
            seen.least = std::min(seen.least, value);
            seen.most = std::max(seen.most, value);
            ++seen.valid;
        }
    }
}

Scans read_scans(const std::string& path, LEV2_info& info) {
    MESS_set(0, 0);
    Scans scans;
    lev2_walk(path.c_str(), info, [&scans](const LEV2_data& d) {
        if (d.type != lev2_radial_fixed && d.type != lev2_radial_generic) {
            return;
        }
        Scan& scan = scans[d.elev_num];
        if (scan.radials++ == 0) {
            scan.num = d.elev_num;
            scan.azimuth = d.rad_az;
            scan.elevation = d.elev_ang;
            scan.first = d;
        }
        for (int type = 0; type < lev2_moments; ++type) {
            Moment& seen = scan.moments[static_cast<std::size_t>(type)];
            seen.radials += LEV2_set_data_type(type);
            add_gates(LEV2_get_gates(), seen);
        }
    });
    return scans;
}

constexpr std::array<const char*, lev2_moments> names = {"REF", "VEL", "SW", "ZDR",
                                                         "PHI", "RHO", "CFP"};

// A scan of the reference: `json` reaches from its first key to the next scan.
// First gates of the fixed message are read as whole kilometres.
Scan told_scan(const std::string& json, const std::string& radials, bool fixed) {
    Scan scan;
    scan.num = json_number(json, "elevation_number");
    scan.radials = std::strtod(radials.c_str(), nullptr);
    scan.azimuth = json_number(json, "first_azimuth");
    scan.elevation = json_number(json, "first_elevation");
    for (std::size_t type = 0; type < names.size(); ++type) {
        const std::size_t at = json.find(std::string("\"") + names[type] + "\": {");
        if (at != std::string::npos) {
            const std::string part = json.substr(at, json.find('}', at) - at);
            const double first_km = json_number(part, "first_gate_km");
            scan.moments[type] = {json_number(part, "radials"),
                                  json_number(part, "gates"),
                                  fixed ? static_cast<int>(first_km) : first_km,
                                  json_number(part, "gate_km"),
                                  json_number(part, "min"),
                                  json_number(part, "max"),
                                  json_number(part, "valid")};
        }
    }
    return scan;
}

std::string text_of(const Scan& scan) {
    std::array<char, 900> text{};
    int n = std::snprintf(text.data(), text.size(), "%.0f: %.0f radials az %.4f el %.4f", scan.num,
                          scan.radials, scan.azimuth, scan.elevation);
    for (std::size_t type = 0; type < names.size(); ++type) {
        const Moment& m = scan.moments[type];
        n += std::snprintf(text.data() + n, text.size() - static_cast<std::size_t>(n),
                           " %s %.0f x %.0f at %.3f + %.3f, %.2f to %.2f in %.0f", names[type],
                           m.radials, m.gates, m.first_km, m.size_km, m.least, m.most, m.valid);
    }
    return text.data();
}

// The pieces of a text between commas, or between two marks.
std::vector<std::string> split(const std::string& text, const std::string& mark) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(mark, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end + mark.size();
    }
    return parts;
}

// Compares a file with its line; the number of scans.
int compare(const std::string& line, const std::string& path) {
    LEV2_info info;
    const Scans scans = read_scans(real_data + path, info);
    const std::size_t list = line.find("\"radials_per_sweep\": [") + 22;
    const auto radials = split(line.substr(list, line.find(']', list) - list), ",");
    const auto told = split(line, "{\"first_azimuth\"");
    EXPECT_EQ(scans.size() + 1, told.size());
    std::size_t i = 1;
    for (const auto& [num, scan] : scans) {
        if (i < told.size() && i <= radials.size()) {
            EXPECT_EQ(text_of(scan),
                      text_of(told_scan("\"first_azimuth\"" + told[i], radials[i - 1],
                                        scan.first.type == lev2_radial_fixed)));
        }
        ++i;
    }
    if (line.find("\"lat\": null") == std::string::npos && !scans.empty()) {
        EXPECT_NEAR(scans.begin()->second.first.lat, json_number(line, "lat"), 1e-3);
        EXPECT_EQ(scans.begin()->second.first.cov_patt, static_cast<int>(json_number(line, "vcp")));
    }
    return static_cast<int>(scans.size());
}

// What a walk for one scan sees, as text; `records` counts all that it takes.
std::string walk_scan(const std::string& path, int scan, bool stops, int* records) {
    std::ostringstream seen;
    LEV2_info info;
    LEV2_data d;
    *records = 0;
    LEV2_open_file(path.c_str());
    LEV2_get_header(&info);
    while (!(stops && LEV2_is_scan_done(scan) == 1) && LEV2_get_block(&d) == 1) {
        ++*records;
        const bool radial = d.type == lev2_radial_fixed || d.type == lev2_radial_generic;
        for (int type = 0; radial && d.elev_num == scan && type < lev2_moments; ++type) {
            LEV2_set_data_type(type);
            const auto bytes = LEV2_get_gates().bytes;
            seen << d.rad_az << ' '
                 << std::hash<std::string_view>()(
                        {reinterpret_cast<const char*>(bytes.data()), bytes.size()})
                 << '\n';
        }
        LEV2_next_block();
    }
    LEV2_close_file();
    return seen.str();
}

} // namespace

TEST(Lev2Real, ScansOfTheReference) {
    int files = 0;
    int scans = 0;
    const auto check = [&](const std::string& path, const std::string& line) {
        SCOPED_TRACE(path);
        scans += compare(line, path);
        ++files;
    };
    if (!each_reference("level2/", check)) {
        GTEST_SKIP() << "no real files here";
    }
    EXPECT_EQ(files, 14);
    EXPECT_EQ(scans, 98);
}

// A walk for one scan that leaves the rest of a volume sees what a walk through all
// of it sees.
TEST(Lev2Real, TheRestOfAVolumeIsLeft) {
    const std::map<std::string, bool> packed_whole = {
        {"KCRP20200101_000431_V06",        true},
        {"KDMX20250101_225441_V06",        true},
        {"KMKX20200115_150035.bin",        true},
        {"Level2_KFTG_20150430_1419.ar2v", true},
        {"Level2_TSTL_20220213_2357.ar2v", true}
    };
    MESS_set(0, 0);
    LEV2_set_compress(1);
    int left = 0;
    const auto check = [&](const std::string& path, const std::string& line) {
        SCOPED_TRACE(path);
        const bool leaves = packed_whole.contains(path.substr(path.find('/') + 1));
        const auto scans = static_cast<int>(split(line, "{\"first_azimuth\"").size()) - 1;
        for (const int scan : std::set<int>{1, 2, (scans + 1) / 2}) {
            int all = 0;
            int some = 0;
            EXPECT_EQ(walk_scan(real_data + path, scan, true, &some),
                      walk_scan(real_data + path, scan, false, &all));
            EXPECT_EQ(some < all, leaves && scan < scans) << scan << ": " << some << " of " << all;
            left += some < all ? 1 : 0;
        }
    };
    if (!each_reference("level2/", check)) {
        GTEST_SKIP() << "no real files here";
    }
    EXPECT_GT(left, 10);
}

// A volume is sent in pieces; the first ones together are its start.
TEST(Lev2Real, PiecesTogether) {
    std::vector<std::uint8_t> bytes;
    for (const char* name : {"level2/20210729-123848-001-S", "level2/20210729-123848-002-I"}) {
        std::ifstream in(real_data + std::string(name), std::ios::binary);
        if (!in) {
            GTEST_SKIP() << "no real files here";
        }
        bytes.insert(bytes.end(), std::istreambuf_iterator<char>(in), {});
    }
    LEV2_info info;
    const MemoryFile file(bytes);
    const Scans scans = read_scans(file.name(), info);
    EXPECT_STREQ(info.id, "LOT");
    EXPECT_EQ(info.date.hour * 10000 + info.date.min * 100 + info.date.sec, 123848);
    ASSERT_EQ(scans.size(), 1U);
    EXPECT_EQ(scans.begin()->second.moments[lev2_refl].radials, 120.0);
}
