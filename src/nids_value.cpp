// nids_value: the header blocks of the open NIDS product, and the values and lengths
// that go by them. Owns the blocks, which nids_header fills in; a walk of the packets
// (nids) reads its levels by them.

#include "nids_exact.h"
#include "nids_impl.h"
#include "nids_tables.h"
#include "state_keeper.h"
#include "units.h"

#include <cmath>

namespace {

NidsHeader header_blocks;

} // namespace

const NidsHeader& nids_header() {
    return header_blocks;
}

NidsHeader& nids_fill_header() {
    return header_blocks;
}

float nids_tenths(int value) {
    return static_cast<float>(value) / 10.0F;
}

float nids_finite(float v) {
    return std::isfinite(v) ? v : missing_f;
}

float nids_level_value(const NidsHeader& header, int packet, int level) {
    const NidsProduct& product = nids_product(header.mess.code);
    const auto& v = header.thres;
    const auto b = static_cast<float>(level);
    float value = b * v[1] + v[0];
    if (packet == nids_packet_dig_precip) {
        value = level < 255 ? value : missing_f;
    } else {
        switch (product.scale) {
        case NidsScale::liquid:
            value = b < v[2] ? (b - v[1]) / v[0] : std::exp((b - v[4]) / v[3]);
            break;
        case NidsScale::tops:
            value = static_cast<float>(level & header.pr_desc.thres[0]) / v[1] - v[2];
            break;
        case NidsScale::floats:
            value = is_set(v[0]) && is_set(v[2]) ? (b - v[2]) / v[0] : missing_f;
            break;
        default:
            break;
        }
        value = level < 2 ? missing_f : value;
        value /= product.divisor;
    }
    value = nids_finite(value); // a step or divisor may be damaged
    return header.exact ? nids_exact_value(header, packet, level, value) : value;
}

float nids_bin_km() {
    // Tables of bins have nautical miles to two or three digits; the radars' are
    // multiples of 50 metres.
    constexpr double unit_km = 0.05;
    const int code = header_blocks.mess.code;
    const float known = nids_product(code).bin_nmi;
    const float bin_nmi = known > 0 ? known : nids_exact(code).bin_nmi;
    const double units = (bin_nmi > 0 ? bin_nmi : nids_usual_bin_nmi) * km_per_nmi / unit_km;
    return static_cast<float>(std::round(units) * unit_km);
}

float nids_ground_factor(int packet_scale) {
    constexpr double tolerance = 0.002; // of thousandths that are cut, and of a tenth of a degree
    const NidsHeader& header = header_blocks;
    if (nids_product(header.mess.code).params.elev == NidsElev::none) {
        return 1.0F;
    }
    const double cosine = std::cos(nids_tenths(header.pr_desc.p[3]) * deg_to_rad);
    return std::abs(packet_scale / 1000.0 - cosine) < tolerance ? static_cast<float>(cosine) : 1.0F;
}

void keep_nids_value(StateKeeper& keeper) {
    keeper.keep(header_blocks);
}
