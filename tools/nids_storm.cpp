// The storm's reflectivity (storm.h) sampled on the radials of a NIDS product.
#include "nids_storm.h"

#include "storm.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

Bytes nids_sample_storm(int code) {
    const bool super = code == 153;
    const int radials = super ? 720 : 360;
    const int bins = super ? 1840 : 460;
    const float bin_km = super ? 0.25F : 1.0F;
    float max_dbz = -30.0F;
    std::vector<Bytes> data;
    for (int i = 0; i < radials; i++) {
        Bytes radial(static_cast<std::size_t>(bins));
        const float azimuth =
            (static_cast<float>(i) + 0.5F) * 6.2831853F / static_cast<float>(radials);
        for (int j = 0; j < bins; j++) {
            const float range = (static_cast<float>(j) + 0.5F) * bin_km;
            const float dbz = storm_dbz(range * std::sin(azimuth), range * std::cos(azimuth));
            // Each bin is measured to about half a decibel, and what is weaker
            // than the receiver's noise is not seen.
            const float seen = dbz + 1.2F * storm_grain(i + 7000, j);
            const bool heard = seen > -31.0F + 20.0F * std::log10(std::max(range, 1.0F)) * 0.75F;
            const float level = std::round((seen + 32.0F) / 0.5F) + 2.0F;
            radial[static_cast<std::size_t>(j)] =
                heard && seen > -5.0F ? static_cast<std::uint8_t>(std::clamp(level, 2.0F, 255.0F))
                                      : 0;
            max_dbz = std::max(max_dbz, seen);
        }
        data.push_back(std::move(radial));
    }
    NidsSample s;
    s.code = code;
    s.thres = {-320, 5, 254};
    s.p[3] = 5;
    s.p[4] = static_cast<int>(max_dbz);
    s.layers = {nids_radial_packet(16, bins, data)};
    s.bzip2 = true;
    return nids_wrapped("SD", nids_message(s));
}
