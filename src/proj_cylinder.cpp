// proj_cylinder: latitude-longitude maps, in degrees, and Mercator maps. No state.
#include "proj.h"

namespace proj {

MapPair latlon(const Map& m, double lat, double lon) {
    return {turn_once(lon - m.domain.plon), lat};
}

MapPair latlon_inverse(const Map& m, double x, double y) {
    return {y, turn_once(m.domain.plon + x)};
}

MapPair mercator(const Map& m, double lat, double lon) {
    constexpr double half = 180.0 * R * rad;
    double x = (lon - m.domain.plon) * R * rad;
    if (x > half) {
        x -= 2.0 * half;
    } else if (x < -half) {
        x += 2.0 * half;
    }
    const double held = std::clamp(lat, -89.9, 89.9);
    return {x, -R * std::log(tan_deg(45.0 - held / 2.0))};
}

MapPair mercator_inverse(const Map& m, double x, double y) {
    const double lat = 90.0 - 2.0 * deg * std::atan(1.0 / std::exp(y / R));
    return {lat, turn_once(m.domain.plon + x / (R * rad))};
}

} // namespace proj
