// proj_mollweide: Mollweide maps, an ellipse with the whole earth. No state.
#include "proj.h"

namespace proj {

MapPair mollweide(const Map& m, double lat, double lon) {
    const double target = pi * sin_deg(lat);
    auto t = static_cast<float>(lat * rad);
    for (int i = 0; i < 15; ++i) { // (31-4)
        const double slope = 1.0 + std::cos(t);
        if (slope == 0.0) {
            break;
        }
        const auto step = static_cast<float>(-(t + std::sin(t * 1.0) - target) / slope);
        const float before = t;
        t += step;
        // Once `t` stands still every further turn gives the same.
        if (t == before || std::fabs(step) < 1.0e-10F) {
            break;
        }
    }
    const double h = t / 2.0;
    const double delta = turn_once(lon - m.domain.plon);
    const double x = std::fabs(lat) > 89.99 ? 0.0 : std::cos(h) * (delta * R / 90.0);
    return {x, R * std::sin(h)};
}

MapPair mollweide_inverse(const Map& m, double x, double y) {
    const double u = y / R;
    if (!(std::fabs(u) <= 1.0)) {
        return map_nowhere;
    }
    const double v = std::asin(u);
    const double w = (std::sin(2.0 * v) + 2.0 * v) / pi;
    if (!(std::fabs(w) <= 1.0)) {
        return map_nowhere;
    }
    return {std::asin(w) * deg, m.domain.plon + 90.0 * x / (R * std::cos(v))};
}

} // namespace proj
