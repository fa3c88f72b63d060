// proj_lambert: Lambert conformal maps, the origin at the apex of the cone. No
// state.
#include "proj.h"

namespace proj {

void take_lambert(Map& m) {
    const Domain& d = m.domain;
    const bool given = is_set(d.param[0]);
    m.tlat1 = given ? d.param[0] : 30.0F;
    m.tlat2 = given ? d.param[1] : 60.0F;
}

// xfactor: cone constant n (15-3); mult: F (15-2). The true latitudes enter as
// they stand, a southern domain keeps positive ones.
void derive_lambert(Map& m) {
    m.scale = m.domain.plat >= 0.0F ? 1.0F : -1.0F;
    const double t1 = m.tlat1;
    const double t2 = m.tlat2;
    const double tan1 = tan_deg(45.0 - t1 / 2.0);
    const double n = m.tlat1 != m.tlat2 ? (std::log(cos_deg(t1)) - std::log(cos_deg(t2))) /
                                              (std::log(tan1) - std::log(tan_deg(45.0 - t2 / 2.0)))
                                        : cos_deg(90.0 - t1 * m.scale);
    m.xfactor = to_float(n);
    m.mult = to_float(cos_deg(t1) / (std::pow(tan1, n) * n));
}

MapPair lambert_lat(const Map& m, double lat) {
    const double sgn = m.scale;
    const double n = m.xfactor;
    if (!is_set(m.xfactor) || !is_set(m.mult)) {
        return map_nowhere; // true latitudes that make no cone
    }
    const double held = std::max(sgn * lat, -89.0);
    const double r = m.mult * R * std::pow(tan_deg(45.0 - held / 2.0), n);
    return {r, -sgn * r};
}

MapPair lambert_lon(const Map& m, double lon) {
    const double n = m.xfactor;
    const double theta = n * turn_once(lon - m.domain.plon) * rad;
    return {std::sin(theta), std::cos(theta)};
}

MapPair lambert(const Map& m, double lat, double lon) {
    return lambert_lat(m, lat) * lambert_lon(m, lon);
}

MapPair lambert_inverse(const Map& m, double x, double y) {
    const double sgn = m.scale;
    const double n = m.xfactor;
    if (!is_set(m.xfactor) || !is_set(m.mult)) {
        return map_nowhere;
    }
    const double theta = x == 0.0 && y == 0.0 ? 0.0 : atan2_deg(x, -sgn * y);
    const double tangent = std::pow(length(x, y) / (R * m.mult), 1.0 / n);
    return {90.0 * sgn - 2.0 * sgn * deg * std::atan(tangent), theta / n + m.domain.plon};
}

// A domain may name it; one that does not has the scale of its cone (15-4).
float lambert_factor(const Map& m, double lat) {
    if (is_set(m.domain.param[2])) {
        return m.domain.param[2];
    }
    const double held = std::clamp(lat, -89.0, 89.0);
    const MapPair p = lambert(m, held, m.domain.plon);
    return p.ok ? to_float(m.xfactor * std::fabs(p.second) / (R * cos_deg(held))) : 1.0F;
}

float lambert_dir_adj(const Map& m, float dir, float x, float y) {
    return to_float(dir - atan2_deg(x, -m.scale * y));
}

} // namespace proj
