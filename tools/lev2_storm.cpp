// The storm's reflectivity and wind (storm.h) sampled on the radials of a Level
// II volume in super resolution.
#include "lev2_storm.h"

#include "storm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace {

constexpr int radials = 720; // of a cut in super resolution
constexpr int radials_in_unit = 120;
constexpr int refl_gates = 1832;
constexpr int doppler_gates = 1192;
constexpr float first_km = 2.125F;
constexpr float gate_km = 0.25F;

struct Cut {
    float elev; // degrees
    bool doppler, half_degree;
};
constexpr Cut cuts[] = {
    {0.5F, false, true },
    {0.5F, true,  true },
    {0.9F, false, true },
    {0.9F, true,  true },
    {1.8F, false, false},
    {2.4F, true,  false}
};

// Word of a value; 0 and 1 have other meanings.
int word_of(float value, float scale, float offset) {
    return std::clamp(static_cast<int>(std::lround(value * scale + offset)), 2, 255);
}

// What one gate measures.
struct Sample {
    bool heard = false;
    float dbz = 0, velocity = 0, width = 0;
};

Sample measure(int radial, int gate, bool doppler) {
    const float azimuth = (static_cast<float>(radial) + 0.5F) * 6.2831853F / radials;
    const float range = first_km + static_cast<float>(gate) * gate_km;
    const float x = range * std::sin(azimuth);
    const float y = range * std::cos(azimuth);
    Sample s;
    // A gate is measured to about half a decibel, and what is weaker than the
    // receiver's noise is not seen.
    s.dbz = storm_dbz(x, y) + 1.2F * storm_grain(radial + 7000, gate);
    s.heard = s.dbz > std::max(-5.0F, -31.0F + 15.0F * std::log10(range));
    if (s.heard && doppler) {
        const StormWind wind = storm_wind(x, y);
        const float core = storm_mesocyclone_km(x, y) / 4.0F;
        s.velocity =
            (wind.east * x + wind.north * y) / range + 1.6F * storm_grain(radial + 9000, gate);
        s.width = 1.5F + 6.0F * std::exp(-core * core) + storm_grain(radial + 4000, gate);
    }
    return s;
}

// The storm looks the same from every angle: radial `index` of 720.
Lev2Radial make_radial(bool doppler, int index) {
    Lev2Moment refl;
    Lev2Moment vel{"VEL", refl.first_m, refl.gate_m, 8, 2.0F, 129.0F, {}};
    Lev2Moment width{"SW ", refl.first_m, refl.gate_m, 8, 2.0F, 129.0F, {}};
    for (int gate = 0; gate < (doppler ? doppler_gates : refl_gates); ++gate) {
        const Sample s = measure(index, gate, doppler);
        refl.words.push_back(s.heard ? word_of(s.dbz, refl.scale, refl.offset) : 0);
        vel.words.push_back(s.heard ? word_of(s.velocity, vel.scale, vel.offset) : 0);
        width.words.push_back(s.heard ? word_of(s.width, width.scale, width.offset) : 0);
    }
    Lev2Radial radial;
    radial.az = (static_cast<float>(index) + 0.5F) * 360.0F / radials;
    radial.moments = doppler ? std::vector{vel, width} : std::vector{refl};
    return radial;
}

} // namespace

Bytes lev2_sample_storm() {
    std::array<std::vector<Lev2Radial>, 2> circle; // reflectivity, Doppler
    for (int i = 0; i < radials; ++i) {
        circle[0].push_back(make_radial(false, i));
        circle[1].push_back(make_radial(true, i));
    }
    Lev2Volume volume;
    std::vector<bool> half_degrees;
    int scan = 0;
    for (const Cut& cut : cuts) {
        ++scan;
        half_degrees.push_back(cut.half_degree);
        const int count = cut.half_degree ? radials : radials / 2;
        for (int i = 0; i < count; ++i) {
            Lev2Radial radial = circle[cut.doppler ? 1 : 0][i * radials / count];
            radial.half_degree = cut.half_degree;
            radial.elev = cut.elev;
            radial.elev_num = scan;
            radial.num = i + 1;
            radial.status = i > 0 ? 1 : scan == 1 ? 3 : 0;
            if (i % radials_in_unit == 0) {
                volume.units.emplace_back();
            }
            const Bytes record = lev2_radial(radial);
            volume.units.back().insert(volume.units.back().end(), record.begin(), record.end());
        }
    }
    volume.units.insert(volume.units.begin(),
                        nids_join({lev2_other(15), lev2_pattern(half_degrees), lev2_other(2)}));
    return lev2_volume(volume, true);
}
