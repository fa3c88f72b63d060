// proj_satellite: the earth as a satellite over the equator sees it. No state.
#include "proj.h"

namespace proj {

namespace {

constexpr float orbit_default = 421.61F; // of a domain that names none
constexpr float earth_ratio2 = earth_min * earth_min / (earth_maj * earth_maj);

MapPair satellite_ellipse_inverse(const Map& m, double x, double y) {
    const double ratio2 = earth_ratio2;
    const double tx = x / m.orbit.rad;
    const double ty = y / m.orbit.rad;
    const double ax = m.orbit.scan_angles ? tx : std::atan(tx);
    const double ay = m.orbit.scan_angles ? ty : std::atan(ty);
    const double cx = std::cos(ax);
    const double sx = std::sin(ax);
    const double cy = std::cos(ay);
    const double sy = std::sin(ay);
    const double b = m.orbit.rad * cx * cy;
    const double g = sy * sy / ratio2 + cy * cy;
    const double d = b * b - g * m.orbit.rad2_earth2;
    if (!(d >= 0.0)) {
        return map_nowhere; // the ray passes the earth by
    }
    const double v = (b - std::sqrt(d)) / g;
    const double q = m.orbit.rad - v * cx * cy;
    const double p = v * sx * cy;
    return {std::atan(v * sy / (ratio2 * length(p, q))) * deg,
            m.domain.plon + std::atan(p / q) * deg};
}

// Takes both tangents for coordinates of one plane, so it is no exact inverse
// away from the axes.
MapPair satellite_sphere_inverse(const Map& m, double x, double y) {
    if (m.orbit.scan_angles) {
        x = m.orbit.rad * std::tan(x / m.orbit.rad);
        y = m.orbit.rad * std::tan(y / m.orbit.rad);
    }
    const double n = m.orbit.rad2 + x * x + y * y;
    const double d = m.orbit.rad4 - m.orbit.rad2_earth2 * n;
    if (!(d >= 0.0)) {
        return map_nowhere;
    }
    const double v = (m.orbit.rad2 - std::sqrt(d)) / n;
    const double lat = std::asin(v * y / R);
    return {lat * deg, m.domain.plon + std::asin(v * x / (R * std::cos(lat))) * deg};
}

} // namespace

void take_satellite(Map& m) {
    MapOrbit& o = m.orbit;
    o.rad = is_set(m.domain.param[0]) ? m.domain.param[0] : orbit_default;
    o.rad2 = o.rad * o.rad;
    o.rad4 = o.rad2 * o.rad2;
    o.rad2_earth2 = o.rad2 - earth_maj * earth_maj;
    o.earth_ratio = earth_rad / o.rad;
}

void derive_satellite(Map& m) {
    m.orbit.scan_angles = m.domain.param[1] == 1.0F;
}

MapPair satellite(const Map& m, double lat, double lon) {
    const bool ellipse = m.domain.ellipse != 0;
    const double ratio2 = earth_ratio2;
    const double psi = ellipse ? std::atan(tan_deg(lat) * ratio2) : lat * rad;
    const double sin_psi = std::sin(psi);
    const double cos_psi = std::cos(psi);
    const double delta = (lon - m.domain.plon) * rad;
    const double sin_delta = std::sin(delta);
    const double cos_delta = std::cos(delta);
    if (m.orbit.earth_ratio > cos_psi * cos_delta) {
        return map_nowhere; // behind the limb
    }
    const double rho =
        ellipse ? earth_min / std::sqrt(1.0 - (1.0 - ratio2) * cos_psi * cos_psi) : R;
    const double across = rho * sin_delta * cos_psi;
    const double q = m.orbit.rad - rho * cos_psi * cos_delta;
    double x = across / q;
    double y = rho * sin_psi / length(across, q);
    if (m.orbit.scan_angles) {
        x = std::atan(x);
        y = std::atan(y);
    }
    return {x * m.orbit.rad, y * m.orbit.rad};
}

MapPair satellite_inverse(const Map& m, double x, double y) {
    return m.domain.ellipse != 0 ? satellite_ellipse_inverse(m, x, y)
                                 : satellite_sphere_inverse(m, x, y);
}

} // namespace proj
