// proj_stereo: polar stereographic maps, the origin at the pole, true at `tlat1`.
// No state.
#include "proj.h"

namespace proj {

void take_stereo(Map& m) {
    const Domain& d = m.domain;
    m.tlat1 = is_set(d.param[0]) ? d.param[0] : (d.plat < 0.0F ? -60.0F : 60.0F);
}

void derive_stereo(Map& m) {
    m.scale = m.domain.plat >= 0.0F ? 1.0F : -1.0F;
    m.mult = to_float(R * (1.0 + m.scale * sin_deg(m.tlat1)));
}

MapPair stereo_lat(const Map& m, double lat) {
    const double s = -m.scale;
    // The far pole is infinitely far away: latitudes beyond it are held.
    const double held = s * lat > 75.0 ? 75.0 : s * lat;
    const double r = m.mult * tan_deg((held + 90.0) / 2.0);
    return {r, s * r};
}

MapPair stereo_lon(const Map& m, double lon) {
    const double theta = (lon - m.domain.plon) * rad;
    return {std::sin(theta), std::cos(theta)};
}

MapPair stereo(const Map& m, double lat, double lon) {
    return stereo_lat(m, lat) * stereo_lon(m, lon);
}

MapPair stereo_inverse(const Map& m, double x, double y) {
    const double s = -m.scale;
    const double theta = x == 0.0 && y == 0.0 ? 0.0 : atan2_deg(x, s * y);
    const double rho = length(x, y);
    return {(2.0 * deg * std::atan(rho / m.mult) - 90.0) * s, m.domain.plon + theta};
}

// True at 60 degrees of the hemisphere that the latitude is counted in, and
// held near the far pole, where the scale has no bound.
float stereo_factor(const Map& /*m*/, double lat) {
    return map_stereo_factor(lat);
}

float stereo_dir_adj(const Map& m, float dir, float x, float y) {
    const Domain& d = m.domain;
    const bool north = d.plat >= 0.0F;
    if (x == 0.0F && y == 0.0F) {
        return to_float(north ? static_cast<double>(dir) - d.plon
                              : static_cast<double>(dir) + d.plon);
    }
    return to_float(north ? dir - atan2_deg(x, -y) : dir + atan2_deg(x, y));
}

float stereo_dir(const Map& m, double plot_dir, float x, float y) {
    return to_float(m.domain.plat >= 0.0F ? plot_dir + atan2_deg(x, -y)
                                          : plot_dir - atan2_deg(x, y));
}

} // namespace proj

float map_stereo_factor(double lat) {
    return static_cast<float>(1.866 / std::max(1.0e-6, 1.0 + proj::sin_deg(lat)));
}
