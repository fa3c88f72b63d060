// The storm's reflectivity and wind (storm.h) sampled on the radials of a Level
// II volume in super resolution.
#include "lev2_storm.h"

#include "storm.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int radials = 720; // of a cut in super resolution
constexpr int radials_in_unit = 120;
constexpr int low_gates = 1832; // of reflectivity in the first cut
constexpr int gates = 1192;     // of all else
constexpr float first_km = 2.125F;
constexpr float gate_km = 0.25F;

struct Cut {
    float elev; // degrees
    bool doppler, half_degree;
};
constexpr Cut cuts[] = {
    {0.5F, false, true },
    {0.5F, true,  true },
    {0.9F, false, false},
    {0.9F, true,  false},
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
    float dbz = 0, velocity = 0, width = 0, diff_dbz = 0, correlation = 0;
};

// How far the beam of an angle is above that of the lowest cut.
float above_lowest_km(float elev, float range) {
    return range * (std::sin(elev * 0.0174533F) - std::sin(cuts[0].elev * 0.0174533F));
}

// Two polarizations: the rounder the drops the smaller the difference, and what is no
// rain is less alike in both: hail, debris of a tornado, insects and the ground.
void polarize(Sample& s, float debris, float range, float grain) {
    // Insects are as strong as storm_dbz makes them: 15 dBZ at the radar, less by range.
    const float rain = std::clamp((s.dbz - 13.0F + range / 5.0F) / 12.0F, 0.0F, 1.0F);
    const float hail = std::clamp((s.dbz - 54.0F) / 10.0F, 0.0F, 1.0F);
    const float swirl = (s.dbz > 30.0F ? 1.0F : 0.0F) * std::exp(-debris * debris);
    const float drops = std::clamp(s.dbz / 14.0F - 0.5F, 0.1F, 4.0F) * (1.0F - 0.9F * hail);
    s.diff_dbz = std::lerp(4.0F + 5.0F * grain, drops + 0.6F * grain, rain) * (1.0F - swirl);
    s.correlation =
        std::lerp(0.62F + 0.5F * grain, 0.985F - 0.07F * hail + 0.02F * grain, rain) - 0.5F * swirl;
}

// A gate of radial `radial` of 720 at an angle. Upward the storm leans to the north-east
// and gets weaker, its vortex above all.
Sample measure(int radial, int gate, const Cut& cut) {
    const float azimuth = (static_cast<float>(radial) + 0.5F) * 6.2831853F / radials;
    const float range = first_km + static_cast<float>(gate) * gate_km;
    const float up = above_lowest_km(cut.elev, range);
    const float x = range * std::sin(azimuth);
    const float y = range * std::cos(azimuth);
    const float sx = x - 0.9F * up; // the same place of the storm, below
    const float sy = y - 0.6F * up;
    Sample s;
    // A gate is measured to about half a decibel, and what is weaker than the
    // receiver's noise is not seen.
    s.dbz = storm_dbz(sx, sy) - 1.1F * up + 1.2F * storm_grain(radial + 7000, gate);
    s.heard = s.dbz > std::max(-5.0F, -31.0F + 15.0F * std::log10(range));
    if (!s.heard) {
        return s;
    }
    const float core = storm_mesocyclone_km(sx, sy);
    const float grain = storm_grain(radial + 4000, gate);
    if (cut.doppler) {
        const StormWind wind = storm_wind(sx, sy);
        s.velocity =
            (wind.east * x + wind.north * y) / range + 1.6F * storm_grain(radial + 9000, gate);
        s.width = 1.5F + 6.0F * std::exp(-core * core / 16.0F) + grain;
    } else {
        polarize(s, core / 2.5F * (1.0F + up), range, grain);
    }
    return s;
}

// Radial `index` of 720.
Lev2Radial make_radial(const Cut& cut, int index) {
    Lev2Moment refl;
    Lev2Moment vel{"VEL", refl.first_m, refl.gate_m, 8, 2.0F, 129.0F, {}};
    Lev2Moment width{"SW ", refl.first_m, refl.gate_m, 8, 2.0F, 129.0F, {}};
    Lev2Moment diff{"ZDR", refl.first_m, refl.gate_m, 8, 16.0F, 128.0F, {}};
    Lev2Moment correlation{"RHO", refl.first_m, refl.gate_m, 8, 300.0F, -60.5F, {}};
    const auto put = [](Lev2Moment& moment, const Sample& s, float value) {
        moment.words.push_back(s.heard ? word_of(value, moment.scale, moment.offset) : 0);
    };
    const bool first = &cut == &cuts[0];
    for (int gate = 0; gate < (first ? low_gates : gates); ++gate) {
        const Sample s = measure(index, gate, cut);
        if (cut.doppler) {
            put(vel, s, s.velocity);
            put(width, s, s.width);
            continue;
        }
        put(refl, s, s.dbz);
        if (first && gate < gates) {
            put(diff, s, s.diff_dbz);
            put(correlation, s, s.correlation);
        }
    }
    Lev2Radial radial;
    radial.az = (static_cast<float>(index) + 0.5F) * 360.0F / radials;
    radial.moments = cut.doppler ? std::vector{vel, width} : std::vector{refl};
    if (first) {
        radial.moments.insert(radial.moments.end(), {diff, correlation});
    }
    return radial;
}

} // namespace

Bytes lev2_sample_storm() {
    Lev2Volume volume;
    std::vector<bool> half_degrees;
    int scan = 0;
    for (const Cut& cut : cuts) {
        ++scan;
        half_degrees.push_back(cut.half_degree);
        const int count = cut.half_degree ? radials : radials / 2;
        for (int i = 0; i < count; ++i) {
            Lev2Radial radial = make_radial(cut, i * radials / count);
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
