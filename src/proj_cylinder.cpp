// proj_cylinder: latitude-longitude maps, in degrees, and Mercator maps. No state.
#include "proj.h"

namespace proj {

MapPair latlon_lat(const Map& /*m*/, double lat) {
    return {1.0, lat};
}

MapPair latlon_lon(const Map& m, double lon) {
    return {turn_once(lon - m.domain.plon), 1.0};
}

MapPair latlon(const Map& m, double lat, double lon) {
    return latlon_lat(m, lat) * latlon_lon(m, lon);
}

MapPair latlon_inverse(const Map& m, double x, double y) {
    return {y, turn_once(m.domain.plon + x)};
}

MapPair mercator_lat(const Map& /*m*/, double lat) {
    const double held = std::clamp(lat, -89.9, 89.9);
    return {1.0, -R * std::log(tan_deg(45.0 - held / 2.0))};
}

MapPair mercator_lon(const Map& m, double lon) {
    constexpr double half = 180.0 * R * rad;
    double x = (lon - m.domain.plon) * R * rad;
    if (x > half) {
        x -= 2.0 * half;
    } else if (x < -half) {
        x += 2.0 * half;
    }
    return {x, 1.0};
}

MapPair mercator(const Map& m, double lat, double lon) {
    return mercator_lat(m, lat) * mercator_lon(m, lon);
}

MapPair mercator_inverse(const Map& m, double x, double y) {
    const double lat = 90.0 - 2.0 * deg * std::atan(1.0 / std::exp(y / R));
    return {lat, turn_once(m.domain.plon + x / (R * rad))};
}

} // namespace proj
