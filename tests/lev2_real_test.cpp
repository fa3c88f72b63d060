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
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct MomentSeen {
    int radials = 0;
    LEV2_gates gates; // of the first radial that has most of them; no bytes
    std::array<long, 256> words{};
};
struct Scan {
    int radials = 0;
    LEV2_data first;
    std::array<MomentSeen, lev2_moments> moments;
};
using Scans = std::map<int, Scan>;

Scans read_scans(const std::string& path, LEV2_info& info) {
    MESS_set(0, 0);
    Scans scans;
    lev2_walk(path.c_str(), info, [&scans](const LEV2_data& d) {
        if (d.type != lev2_radial_fixed && d.type != lev2_radial_generic) {
            return;
        }
        Scan& scan = scans[d.elev_num];
        if (scan.radials++ == 0) {
            scan.first = d;
        }
        for (int type = 0; type < lev2_moments; type++) {
            MomentSeen& seen = scan.moments[static_cast<std::size_t>(type)];
            seen.radials += LEV2_set_data_type(type);
            const LEV2_gates& gates = LEV2_get_gates();
            if (gates.count > seen.gates.count) {
                seen.gates = gates;
                seen.gates.bytes = {};
            }
            for (const std::uint8_t byte : gates.bytes) {
                seen.words[byte]++;
            }
        }
    });
    return scans;
}

// --- Both as text -------------------------------------------------------------

std::string scan_text(int num, double radials, double azimuth, double elevation) {
    std::array<char, 100> text{};
    std::snprintf(text.data(), text.size(), "%d: %.0f radials az %.4f el %.4f", num, radials,
                  azimuth, elevation);
    return text.data();
}

std::string moment_text(const char* name, double radials, double gates, double first_km,
                        double size_km, double least, double most, double valid) {
    std::array<char, 140> text{};
    std::snprintf(text.data(), text.size(), " %s %.0f x %.0f at %.3f + %.3f, %.2f to %.2f in %.0f",
                  name, radials, gates, first_km, size_km, least, most, valid);
    return text.data();
}

constexpr std::array<const char*, lev2_moments> names = {"REF", "VEL", "SW"};

std::string text_of(const Scan& scan) {
    std::string text =
        scan_text(scan.first.elev_num, scan.radials, static_cast<double>(scan.first.rad_az),
                  static_cast<double>(scan.first.elev_ang));
    for (std::size_t type = 0; type < names.size(); type++) {
        const MomentSeen& seen = scan.moments[type];
        if (seen.radials == 0) {
            continue;
        }
        unsigned least = 255;
        unsigned most = 0;
        long valid = 0;
        for (unsigned word = 2; word < 256; word++) {
            if (seen.words[word] > 0) {
                least = std::min(least, word);
                most = word;
                valid += seen.words[word];
            }
        }
        text += moment_text(
            names[type], seen.radials, seen.gates.count, static_cast<double>(seen.gates.first_km),
            static_cast<double>(seen.gates.size_km), static_cast<double>(seen.gates.value(least)),
            static_cast<double>(seen.gates.value(most)), static_cast<double>(valid));
    }
    return text;
}

// A scan of the reference: `json` reaches from its first key to the next scan.
// First gates of the fixed message are read as whole kilometres.
std::string text_of(const std::string& json, const std::string& radials, bool fixed) {
    std::string text =
        scan_text(static_cast<int>(json_number(json, "elevation_number")),
                  std::strtod(radials.c_str(), nullptr), json_number(json, "first_azimuth"),
                  json_number(json, "first_elevation"));
    for (const char* name : names) {
        const std::size_t at = json.find(std::string("\"") + name + "\": {");
        if (at == std::string::npos) {
            continue;
        }
        const std::string moment = json.substr(at, json.find('}', at) - at);
        const double first_km = json_number(moment, "first_gate_km");
        text += moment_text(name, json_number(moment, "radials"), json_number(moment, "gates"),
                            fixed ? static_cast<int>(first_km) : first_km,
                            json_number(moment, "gate_km"), json_number(moment, "min"),
                            json_number(moment, "max"), json_number(moment, "valid"));
    }
    return text;
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
            EXPECT_EQ(text_of(scan), text_of("\"first_azimuth\"" + told[i], radials[i - 1],
                                             scan.first.type == lev2_radial_fixed));
        }
        i++;
    }
    if (line.find("\"lat\": null") == std::string::npos && !scans.empty()) {
        EXPECT_NEAR(scans.begin()->second.first.lat, json_number(line, "lat"), 1e-3);
        EXPECT_EQ(scans.begin()->second.first.cov_patt, static_cast<int>(json_number(line, "vcp")));
    }
    return static_cast<int>(scans.size());
}

} // namespace

TEST(Lev2Real, ScansOfTheReference) {
    int files = 0;
    int scans = 0;
    const auto check = [&](const std::string& path, const std::string& line) {
        SCOPED_TRACE(path);
        scans += compare(line, path);
        files++;
    };
    if (!each_reference("level2/", check)) {
        GTEST_SKIP() << "no real files here";
    }
    EXPECT_EQ(files, 14);
    EXPECT_EQ(scans, 98);
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
    EXPECT_EQ(scans.begin()->second.moments[lev2_refl].radials, 120);
}
