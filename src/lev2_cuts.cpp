// lev2_cuts: the table of the cuts that a walk of a Level II volume meets, the
// texts that describe it, and the table of cuts in the volume's coverage pattern. It
// keeps no state. The pattern, message type 5, big-endian:
//
//   6  2   number of cuts
//   22 46  each, byte 4 of these: bit 0 for radials of half a degree
#include "lev2_cuts.h"

#include "byte_reader.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <utility>
#include <vector>

namespace {

// Numbers in ascending order, runs joined: "1-3,5".
std::string number_list(std::vector<int> numbers) {
    std::sort(numbers.begin(), numbers.end());
    std::string text;
    for (std::size_t i = 0, n = 0; i < numbers.size(); i += n) {
        for (n = 1; i + n < numbers.size() && numbers[i + n] == numbers[i] + static_cast<int>(n);) {
            ++n;
        }
        text += (i == 0 ? "" : ",") + std::to_string(numbers[i]);
        text += n > 1 ? "-" + std::to_string(numbers[i + n - 1]) : "";
    }
    return text;
}

// Numbers of the cuts that have a moment; of all for a type below 0.
std::string scans_with(const Lev2Cuts& cuts, int type) {
    std::vector<int> numbers;
    for (const LEV2_cut& cut : cuts.rows()) {
        if (type < 0 || cut.moments[static_cast<std::size_t>(type)] > 0) {
            numbers.push_back(cut.num);
        }
    }
    return number_list(std::move(numbers));
}

std::string angle_text(float angle) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", static_cast<double>(angle));
    return text.data();
}

constexpr std::size_t pattern_count_at = 6;
constexpr std::size_t pattern_cuts_at = 22;
constexpr std::size_t pattern_cut_size = 46;
constexpr std::size_t pattern_flags_at = 4;
constexpr int unit_radials = 120;

} // namespace

void lev2_count_radial(Lev2Cuts& cuts, const LEV2_data& data) {
    const auto begin = cuts.row.begin();
    const auto end = begin + static_cast<int>(cuts.count);
    auto at = std::find_if(begin, end, [&](const LEV2_cut& c) { return c.num == data.elev_num; });
    if (at == end) {
        if (cuts.count == cuts.row.size()) {
            return;
        }
        ++cuts.count;
        *at = {};
        at->num = data.elev_num;
    }
    ++at->radials;
    at->angle += (data.elev_ang - at->angle) / static_cast<float>(at->radials);
    const std::array<int, lev2_moments> offsets = {data.refl_ptr, data.vel_ptr, data.spect_ptr,
                                                   data.zdr_ptr,  data.phi_ptr, data.rho_ptr,
                                                   data.cfp_ptr};
    for (std::size_t type = 0; type < offsets.size(); ++type) {
        at->moments[type] += offsets[type] != 0 ? 1 : 0;
    }
}

std::string lev2_cut_text(const LEV2_cut& cut) {
    std::string text = "Scan " + std::to_string(cut.num) + ": El=" + angle_text(cut.angle) + " " +
                       std::to_string(cut.radials) + " radials:";
    bool any = false;
    for (std::size_t type = 0; type < lev2_moments; ++type) {
        if (cut.moments[type] > 0) {
            text += any ? ", " : " ";
            text += lev2_names[type].name;
            any = true;
        }
    }
    return any ? text : text + " no moment that is plotted";
}

std::string lev2_empty_text(const Lev2Cuts& cuts, int scan, int type) {
    if (cuts.count == 0) {
        return "The file holds no radials";
    }
    const auto rows = cuts.rows();
    const auto at =
        std::find_if(rows.begin(), rows.end(), [&](const LEV2_cut& c) { return c.num == scan; });
    if (at == rows.end()) {
        return "There is no scan " + std::to_string(scan) + ", the volume has " +
               scans_with(cuts, -1);
    }
    const std::string name = lev2_names[static_cast<std::size_t>(type)].name;
    if (at->moments[static_cast<std::size_t>(type)] > 0) {
        return "";
    }
    const std::string others = scans_with(cuts, type);
    return "Scan " + std::to_string(scan) + " (El=" + angle_text(at->angle) + ") has no " + name +
           (others.empty() ? ", nor has any other" : ", scans that have it: " + others);
}

Lev2Pattern lev2_read_pattern(std::span<const std::uint8_t> data) {
    Lev2Pattern pattern;
    ByteReader r(data);
    r.seek(pattern_count_at);
    const std::size_t count = r.u16be();
    if (count > pattern.radials.size()) {
        return {};
    }
    for (std::size_t i = 0; i < count; ++i) {
        r.seek(pattern_cuts_at + i * pattern_cut_size + pattern_flags_at);
        pattern.radials[i] = (r.u8() & 1) != 0 ? 720 : 360;
    }
    pattern.count = r.ok() ? static_cast<int>(count) : 0;
    return pattern;
}

int lev2_pattern_units(const Lev2Pattern& pattern, int cuts) {
    const auto begin = pattern.radials.begin();
    return 1 + std::accumulate(begin, begin + std::min(cuts, pattern.count), 0) / unit_radials;
}

bool lev2_is_walked(const Lev2Cuts& walked, const Lev2Pattern& pattern, int cuts) {
    const auto rows = walked.rows();
    if (cuts < 1 || cuts > pattern.count || static_cast<int>(rows.size()) != cuts) {
        return false;
    }
    for (std::size_t i = rows.size(); i-- > 0;) { // the last one is seldom whole
        if (rows[i].num != static_cast<int>(i) + 1 || rows[i].radials != pattern.radials[i]) {
            return false;
        }
    }
    return true;
}
