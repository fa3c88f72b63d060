// nids_exact: the values of levels by the format's own document. No state. The
// thresholds of the digital products, halfwords 31 to 38 of the description:
//
//   linear  31 least value, signed   32 step   33 number of levels
//   floats  31, 32 scale   33, 34 offset, as 32-bit floats   36 largest level
//           37 flags from level 0 up   38 flags from the largest level down
#include "nids_exact.h"

#include "nids_tables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace {

constexpr double ms_to_knots = 1.943844;
constexpr NidsExact no_facts;
constexpr auto linear = NidsExactScale::linear;
constexpr auto floats = NidsExactScale::floats;

// clang-format off
constexpr NidsExact rows[] = {
    {.code = 32, .scale = linear, .divisor = 10},
    {.code = 81, .scale = linear, .divisor = 10, .step_divisor = 1000, .first = 1},
    {.code = 94, .scale = linear, .divisor = 10},
    {.code = 99, .scale = linear, .divisor = 10, .folded = true, .knots = true},
    {.code = 135, .scale = NidsExactScale::masked},
    {.code = 138, .scale = linear, .divisor = 100, .step_divisor = 100, .first = 0},
    {.code = 153, .scale = linear, .divisor = 10},
    {.code = 154, .scale = linear, .divisor = 10, .folded = true, .knots = true},
    {.code = 155, .scale = linear, .divisor = 10, .first = 129, .folded = true, .knots = true,
     .label = "Digital spectrum width (knt)", .colors = "width", .bin_nmi = 0.135F},
    {.code = 159, .scale = floats, .folded = true},
    {.code = 161, .scale = floats, .folded = true},
    {.code = 163, .scale = floats, .folded = true},
    {.code = 165, .scale = floats},
    {.code = 167, .scale = floats, .folded = true, .label = "Super res digital correl coeff",
     .colors = "correlation", .bin_nmi = 0.135F},
    {.code = 168, .scale = floats, .folded = true, .label = "Super res digital diff phase (Deg)",
     .colors = "diff_phase", .bin_nmi = 0.135F},
    {.code = 170, .scale = floats, .divisor = 100},
    {.code = 172, .scale = floats, .divisor = 100},
    {.code = 173, .scale = floats, .divisor = 100},
    {.code = 174, .scale = floats, .divisor = 100},
    {.code = 175, .scale = floats, .divisor = 100},
    {.code = 176, .scale = floats},
    {.code = 177, .scale = floats},
    {.code = 180, .scale = linear, .divisor = 10},
    {.code = 182, .scale = linear, .divisor = 10, .folded = true, .knots = true},
    {.code = 186, .scale = linear, .divisor = 10},
    {.code = 193, .scale = linear, .divisor = 10,
     .label = "Super res digital reflectivity (Dbz)", .colors = "reflectivity", .bin_nmi = 0.135F},
    {.code = 195, .scale = linear, .divisor = 10,
     .label = "Digital reflectivity (Dbz)", .colors = "reflectivity", .bin_nmi = 0.54F},
};
// clang-format on

// Marks of a coded level: it is a text, and which.
constexpr unsigned text_bit = 0x8000;
constexpr unsigned text_mask = 0xFF;
constexpr unsigned text_folded = 3;

float linear_value(const NidsExact& row, const NidsProdDesc& desc, int level) {
    if (level < row.first) {
        return missing_f;
    }
    const double least =
        static_cast<std::int16_t>(desc.thres[0]) / static_cast<double>(row.divisor);
    const double above =
        (level - row.first) * desc.thres[1] / static_cast<double>(row.step_divisor);
    return static_cast<float>((least + above) * (row.knots ? ms_to_knots : 1.0));
}

float floats_value(const NidsExact& row, const NidsProdDesc& desc, int level) {
    const auto& t = desc.thres;
    const int largest = t[5] == 0 || t[5] > 255 ? 255 : t[5];
    if (level < t[6] || level > largest - t[7]) {
        return missing_f;
    }
    const auto number = [](unsigned high, unsigned low) {
        return std::bit_cast<float>(static_cast<std::uint32_t>(high << 16 | low));
    };
    const float scale = number(t[0], t[1]);
    const float offset = number(t[2], t[3]);
    return (static_cast<float>(level) - offset) / (scale == 0.0F ? 1.0F : scale) / row.divisor;
}

} // namespace

const NidsExact& nids_exact(int code) {
    const auto* row = std::find_if(std::begin(rows), std::end(rows),
                                   [code](const NidsExact& r) { return r.code == code; });
    return row != std::end(rows) ? *row : no_facts;
}

float nids_exact_value(const NidsHeader& header, int packet, int level, float otherwise) {
    const NidsExact& row = nids_exact(header.mess.code);
    const NidsProdDesc& desc = header.pr_desc;
    constexpr int outside = 255; // of what the radar sees, in a packet 17
    float value = otherwise;
    if (packet == nids_packet_dig_precip && level == outside) {
        return missing_f;
    }
    switch (row.scale) {
    case NidsExactScale::linear:
        value = linear_value(row, desc, level);
        break;
    case NidsExactScale::floats:
        value = floats_value(row, desc, level);
        break;
    case NidsExactScale::masked:
        value = (level & desc.thres[0]) < 2 ? missing_f : otherwise;
        break;
    case NidsExactScale::none:
        break;
    }
    const bool flag = level == 1 && row.folded && !(is_set(value) && std::isfinite(value));
    return flag ? nids_folded : std::isfinite(value) ? value : missing_f;
}

std::array<float, nids_num_thres> nids_exact_levels(const NidsHeader& header) {
    auto levels = header.thres;
    if (nids_product(header.mess.code).scale == NidsScale::levels) {
        for (std::size_t i = 0; i < levels.size(); ++i) {
            const unsigned t = header.pr_desc.thres[i];
            levels[i] =
                (t & text_bit) != 0 && (t & text_mask) == text_folded ? nids_folded : levels[i];
        }
    }
    return levels;
}
