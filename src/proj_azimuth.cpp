// proj_azimuth: azimuthal maps: orthographic, gnomonic and Lambert equal-area. No
// state.
#include "proj.h"

namespace proj {

void derive_ortho(Map& m) {
    if (!is_set(m.domain.plat)) {
        m.domain.plat = 0.0F;
    }
}

MapPair ortho(const Map& m, double lat, double lon) {
    const double a = m.cos_lat0;
    const double b = m.sin_lat0;
    const double sin_lat = sin_deg(lat);
    const double cos_lat = cos_deg(lat);
    const double delta = (lon - m.domain.plon) * rad;
    const double cos_delta = std::cos(delta);
    // The rim is seen, and its cosine is below 0 by the rounding of pi.
    constexpr double rim = -1.0e-12;
    if (b * sin_lat + a * cos_lat * cos_delta < rim) {
        return map_nowhere;
    }
    return {R * std::sin(delta) * cos_lat, R * (a * sin_lat - b * cos_lat * cos_delta)};
}

MapPair ortho_inverse(const Map& m, double x, double y) {
    const double a = m.cos_lat0;
    const double b = m.sin_lat0;
    const double w = R * R - x * x - y * y;
    if (!(w >= 0.0)) {
        return map_nowhere;
    }
    const double z = std::sqrt(w);
    return {asin_deg((a * y + b * z) / R), m.domain.plon + atan2_deg(x, a * z - b * y)};
}

MapPair gnomonic(const Map& m, double lat, double lon) {
    const double sin_lat = sin_deg(lat);
    const double cos_lat = cos_deg(lat);
    const double delta = (lon - m.domain.plon) * rad;
    const double cos_delta = std::cos(delta);
    const double cos_c = m.sin_lat0 * sin_lat + m.cos_lat0 * cos_lat * cos_delta; // (5-3)
    // The horizon is infinitely far away; the last half degree is left out.
    constexpr double horizon = 0.0087;
    if (cos_c < horizon) {
        return map_nowhere;
    }
    const double k = R / cos_c;
    return {k * cos_lat * std::sin(delta),
            k * (m.cos_lat0 * sin_lat - m.sin_lat0 * cos_lat * cos_delta)}; // (22-4), (22-5)
}

MapPair gnomonic_inverse(const Map& m, double x, double y) {
    const double c = std::atan(length(x, y) / R); // (22-16)
    const double sin_c_rho = std::cos(c) / R;     // sin c / rho
    const double sin_lat = std::cos(c) * m.sin_lat0 + y * sin_c_rho * m.cos_lat0;
    return {asin_deg(sin_lat), m.domain.plon + atan2_deg(x, R * m.cos_lat0 - y * m.sin_lat0)};
}

MapPair lambert_az(const Map& m, double lat, double lon) {
    const double sin_lat = sin_deg(lat);
    const double cos_lat = cos_deg(lat);
    const double delta = (lon - m.domain.plon) * rad;
    const double cos_delta = std::cos(delta);
    const auto c = static_cast<float>(m.sin_lat0 * sin_lat + m.cos_lat0 * cos_lat * cos_delta);
    if (c <= -1.0F) {
        return map_nowhere;
    }
    const double k = R * std::sqrt(2.0 / (1.0 + c)); // (24-2)
    return {k * cos_lat * std::sin(delta),
            k * (m.cos_lat0 * sin_lat - m.sin_lat0 * cos_lat * cos_delta)};
}

MapPair lambert_az_inverse(const Map& m, double x, double y) {
    const double lat0 = m.domain.plat;
    const double lon0 = m.domain.plon;
    const double rho = length(x, y);
    const double half_sine = rho / (2.0 * R);
    if (!(half_sine <= 1.0)) {
        return map_nowhere;
    }
    if (rho < on_point) {
        return {lat0, lon0};
    }
    const double c = static_cast<float>(2.0 * std::asin(half_sine));
    const double sin_c = std::sin(c);
    const double cos_c = std::cos(c);
    const double sin_lat = y * m.cos_lat0 * sin_c / rho + cos_c * m.sin_lat0;
    const double lat = asin_deg(sin_lat);
    if (std::fabs(std::fabs(lat0) - 90.0) < on_point) {
        return {lat, lat0 >= 0.0 ? lon0 + atan2_deg(x, -y) : lon0 - atan2_deg(-x, y)};
    }
    const double d = cos_c - sin_lat * m.sin_lat0;
    return {lat, d == 0.0 ? lon0 : lon0 + atan2_deg(m.cos_lat0 * sin_c * x, d * rho)};
}

} // namespace proj
