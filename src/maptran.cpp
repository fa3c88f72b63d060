// maptran.cpp: map projections. One domain is current; everything drawn on a
// map goes through MAP_tran, so what depends on the domain alone is derived in
// `derive` when the domain, the code or the reference point changes, and a
// point costs only its own trigonometry.
//
// State: the current domain, its limits, the page's viewport and the derived
// values. MAP_domain must be called before any transformation.
//
// Formulas are the spherical ones of J. P. Snyder, Map Projections: A Working
// Manual (USGS Professional Paper 1395), up to scale and origin. phi and lambda
// are latitude and longitude, phi0 and lambda0 those of the reference point.
#include "maptran.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

constexpr double pi = 3.1415926535898;
constexpr double rad = pi / 180.0; // radians per degree
constexpr double deg = 180.0 / pi; // degrees per radian

// The earth, in 100 km: sphere, equator and pole of the ellipsoid.
constexpr float earth_rad = 63.7122F;
constexpr float earth_maj = 63.78137F;
constexpr float earth_min = 63.56752F;
constexpr double R = earth_rad;

constexpr float orbit_start = 421.64F;   // orbit radius before any domain
constexpr float orbit_default = 421.61F; // for a satellite domain without one
constexpr double km_per_degree = 111.195;
constexpr double kappa = 1.0 / 3.5; // gas constant over heat capacity of air

// Everything that belongs to the current domain.
struct Map {
    Domain domain;
    MAP_limits limits;
    MAP_limits view;

    float tlat1 = 30.0F; // true latitudes, degrees
    float tlat2 = 60.0F;
    float sat_rad = orbit_start; // orbit radius and what follows from it
    float sat_rad2 = orbit_start * orbit_start;
    float sat_rad4 = orbit_start * orbit_start * orbit_start * orbit_start;
    float sat2_earth2 = orbit_start * orbit_start - earth_maj * earth_maj;
    float earth_ratio = earth_rad / orbit_start;
    float earth_ratio2 = earth_min * earth_min / (earth_maj * earth_maj);

    // Derived for the code: cone constant, slant or axis scales; radius
    // constant; hemisphere.
    float xfactor = missing_f;
    float yfactor = missing_f;
    float mult = missing_f;
    float scale = 1.0F;    // 1 north, -1 south
    double sin_lat0 = 0.0; // sine and cosine of the reference latitude
    double cos_lat0 = 1.0;
    bool scan_angles = false; // satellite: scan angles in place of tangents

    int plot_limit = missing;
};
Map map;

// A pair of coordinates, or the news that there is none.
struct Pair {
    double first = 0.0;
    double second = 0.0;
    bool ok = true;
};
constexpr Pair nowhere{0.0, 0.0, false};

double sin_deg(double angle) {
    return std::sin(angle * rad);
}
double cos_deg(double angle) {
    return std::cos(angle * rad);
}
double tan_deg(double angle) {
    return std::tan(angle * rad);
}
double atan2_deg(double y, double x) {
    return std::atan2(y, x) * deg;
}
double length(double x, double y) {
    return std::sqrt(x * x + y * y);
}
// For arguments that pass 1 by rounding alone.
double asin_deg(double sine) {
    return std::asin(std::clamp(sine, -1.0, 1.0)) * deg;
}

// One step of 360 degrees towards -180 to 180.
double turn_once(double angle) {
    if (angle > 180.0) {
        return angle - 360.0;
    }
    return angle < -180.0 ? angle + 360.0 : angle;
}

// Any longitude to -180 to 180; the remainder is exact.
double wrap_lon(double lon) {
    return turn_once(std::fabs(lon) > 180.0 ? std::fmod(lon, 360.0) : lon);
}

bool fits_float(double value) {
    return std::fabs(value) <= static_cast<double>(FLT_MAX); // false for NaN
}

float to_float(double value) {
    return fits_float(value) ? static_cast<float>(value) : missing_f;
}

// --- Polar stereographic (1): origin at the pole, true at `tlat1` ------------

void derive_pstereo(Map& m) {
    m.scale = m.domain.plat >= 0.0F ? 1.0F : -1.0F;
    m.mult = to_float(R * (1.0 + m.scale * sin_deg(m.tlat1)));
}

Pair pstereo(const Map& m, double lat, double lon) {
    const double s = -m.scale;
    // The far pole is infinitely far away: latitudes behind it are held.
    const double held = s * lat > 75.0 ? 75.0 : s * lat;
    const double r = m.mult * tan_deg((held + 90.0) / 2.0);
    const double theta = (lon - m.domain.plon) * rad;
    return {r * std::sin(theta), s * r * std::cos(theta)};
}

Pair pstereo_inverse(const Map& m, double x, double y) {
    const double s = -m.scale;
    const double theta = x == 0.0 && y == 0.0 ? 0.0 : atan2_deg(x, s * y);
    const double rho = length(x, y);
    return {(2.0 * deg * std::atan(rho / m.mult) - 90.0) * s, m.domain.plon + theta};
}

// --- Latitude-longitude (2), in degrees, and Mercator (3) ----------------------

Pair mercator(const Map& m, double lat, double lon) {
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

Pair mercator_inverse(const Map& m, double x, double y) {
    const double lat = 90.0 - 2.0 * deg * std::atan(1.0 / std::exp(y / R));
    return {lat, turn_once(m.domain.plon + x / (R * rad))};
}

// --- Lambert conformal (4): origin at the apex of the cone -----------------------

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

Pair lambert(const Map& m, double lat, double lon) {
    const double sgn = m.scale;
    const double n = m.xfactor;
    if (!is_set(m.xfactor) || !is_set(m.mult)) {
        return nowhere; // true latitudes that make no cone
    }
    const double held = std::max(sgn * lat, -89.0);
    const double theta = n * turn_once(lon - m.domain.plon) * rad;
    const double r = m.mult * R * std::pow(tan_deg(45.0 - held / 2.0), n);
    return {r * std::sin(theta), -sgn * r * std::cos(theta)};
}

// Scale at a latitude (15-4).
float lambert_scale(const Map& m, double lat) {
    const double held = std::clamp(lat, -89.0, 89.0);
    const Pair p = lambert(m, held, m.domain.plon);
    return p.ok ? to_float(m.xfactor * std::fabs(p.second) / (R * cos_deg(held))) : 1.0F;
}

Pair lambert_inverse(const Map& m, double x, double y) {
    const double sgn = m.scale;
    const double n = m.xfactor;
    if (!is_set(m.xfactor) || !is_set(m.mult)) {
        return nowhere;
    }
    const double theta = x == 0.0 && y == 0.0 ? 0.0 : atan2_deg(x, -sgn * y);
    const double tangent = std::pow(length(x, y) / (R * m.mult), 1.0 / n);
    return {90.0 * sgn - 2.0 * sgn * deg * std::atan(tangent), theta / n + m.domain.plon};
}

// --- Azimuthal projections: orthographic (5), gnomonic (6), equal-area (8) -------

void derive_ortho(Map& m) {
    if (!is_set(m.domain.plat)) {
        m.domain.plat = 0.0F;
    }
}

Pair ortho(const Map& m, double lat, double lon) {
    const double a = m.cos_lat0;
    const double b = m.sin_lat0;
    const double sin_lat = sin_deg(lat);
    const double cos_lat = cos_deg(lat);
    const double delta = (lon - m.domain.plon) * rad;
    const double cos_delta = std::cos(delta);
    // The rim is seen, and its cosine is below 0 by the rounding of pi.
    constexpr double rim = -1.0e-12;
    if (b * sin_lat + a * cos_lat * cos_delta < rim) {
        return nowhere;
    }
    return {R * std::sin(delta) * cos_lat, R * (a * sin_lat - b * cos_lat * cos_delta)};
}

Pair ortho_inverse(const Map& m, double x, double y) {
    const double a = m.cos_lat0;
    const double b = m.sin_lat0;
    const double w = R * R - x * x - y * y;
    if (!(w >= 0.0)) {
        return nowhere;
    }
    const double z = std::sqrt(w);
    return {asin_deg((a * y + b * z) / R), m.domain.plon + atan2_deg(x, a * z - b * y)};
}

Pair gnomonic(const Map& m, double lat, double lon) {
    const double sin_lat = sin_deg(lat);
    const double cos_lat = cos_deg(lat);
    const double delta = (lon - m.domain.plon) * rad;
    const double cos_delta = std::cos(delta);
    const double cos_c = m.sin_lat0 * sin_lat + m.cos_lat0 * cos_lat * cos_delta; // (5-3)
    // The horizon is infinitely far away; the last half degree is left out.
    constexpr double horizon = 0.0087;
    if (cos_c < horizon) {
        return nowhere;
    }
    const double k = R / cos_c;
    return {k * cos_lat * std::sin(delta),
            k * (m.cos_lat0 * sin_lat - m.sin_lat0 * cos_lat * cos_delta)}; // (22-4), (22-5)
}

Pair gnomonic_inverse(const Map& m, double x, double y) {
    const double c = std::atan(length(x, y) / R); // (22-16)
    const double sin_c_rho = std::cos(c) / R;     // sin c / rho
    const double sin_lat = std::cos(c) * m.sin_lat0 + y * sin_c_rho * m.cos_lat0;
    return {asin_deg(sin_lat), m.domain.plon + atan2_deg(x, R * m.cos_lat0 - y * m.sin_lat0)};
}

Pair lambert_az(const Map& m, double lat, double lon) {
    const double sin_lat = sin_deg(lat);
    const double cos_lat = cos_deg(lat);
    const double delta = (lon - m.domain.plon) * rad;
    const double cos_delta = std::cos(delta);
    const auto c = static_cast<float>(m.sin_lat0 * sin_lat + m.cos_lat0 * cos_lat * cos_delta);
    if (c <= -1.0F) {
        return nowhere;
    }
    const double k = R * std::sqrt(2.0 / (1.0 + c)); // (24-2)
    return {k * cos_lat * std::sin(delta),
            k * (m.cos_lat0 * sin_lat - m.sin_lat0 * cos_lat * cos_delta)};
}

// How far from the centre and from a pole a point counts as being on it.
constexpr double on_point = 1.0e-10;

Pair lambert_az_inverse(const Map& m, double x, double y) {
    const double lat0 = m.domain.plat;
    const double lon0 = m.domain.plon;
    const double rho = length(x, y);
    const double half_sine = rho / (2.0 * R);
    if (!(half_sine <= 1.0)) {
        return nowhere;
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

// --- Mollweide (7) ---------------------------------------------------------------

Pair mollweide(const Map& m, double lat, double lon) {
    const double target = pi * sin_deg(lat);
    auto t = static_cast<float>(lat * rad);
    for (int i = 0; i < 15; i++) { // (31-4)
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

Pair mollweide_inverse(const Map& m, double x, double y) {
    const double u = y / R;
    if (!(std::fabs(u) <= 1.0)) {
        return nowhere;
    }
    const double v = std::asin(u);
    const double w = (std::sin(2.0 * v) + 2.0 * v) / pi;
    if (!(std::fabs(w) <= 1.0)) {
        return nowhere;
    }
    return {std::asin(w) * deg, m.domain.plon + 90.0 * x / (R * std::cos(v))};
}

// --- Satellite view (9): from a point over the equator ------------------------------

void derive_satellite(Map& m) {
    m.scan_angles = m.domain.param[1] == 1.0F;
}

Pair satellite(const Map& m, double lat, double lon) {
    const bool ellipse = m.domain.ellipse != 0;
    const double ratio2 = m.earth_ratio2;
    const double psi = ellipse ? std::atan(tan_deg(lat) * ratio2) : lat * rad;
    const double sin_psi = std::sin(psi);
    const double cos_psi = std::cos(psi);
    const double delta = (lon - m.domain.plon) * rad;
    const double sin_delta = std::sin(delta);
    const double cos_delta = std::cos(delta);
    if (m.earth_ratio > cos_psi * cos_delta) {
        return nowhere; // behind the limb
    }
    const double rho =
        ellipse ? earth_min / std::sqrt(1.0 - (1.0 - ratio2) * cos_psi * cos_psi) : R;
    const double across = rho * sin_delta * cos_psi;
    const double q = m.sat_rad - rho * cos_psi * cos_delta;
    double x = across / q;
    double y = rho * sin_psi / length(across, q);
    if (m.scan_angles) {
        x = std::atan(x);
        y = std::atan(y);
    }
    return {x * m.sat_rad, y * m.sat_rad};
}

Pair satellite_ellipse_inverse(const Map& m, double x, double y) {
    const double ratio2 = m.earth_ratio2;
    const double tx = x / m.sat_rad;
    const double ty = y / m.sat_rad;
    const double ax = m.scan_angles ? tx : std::atan(tx);
    const double ay = m.scan_angles ? ty : std::atan(ty);
    const double cx = std::cos(ax);
    const double sx = std::sin(ax);
    const double cy = std::cos(ay);
    const double sy = std::sin(ay);
    const double b = m.sat_rad * cx * cy;
    const double g = sy * sy / ratio2 + cy * cy;
    const double d = b * b - g * m.sat2_earth2;
    if (!(d >= 0.0)) {
        return nowhere; // the ray passes the earth by
    }
    const double v = (b - std::sqrt(d)) / g;
    const double q = m.sat_rad - v * cx * cy;
    const double p = v * sx * cy;
    return {std::atan(v * sy / (ratio2 * length(p, q))) * deg,
            m.domain.plon + std::atan(p / q) * deg};
}

// Takes both tangents for coordinates of one plane, so it is no exact inverse
// away from the axes.
Pair satellite_sphere_inverse(const Map& m, double x, double y) {
    if (m.scan_angles) {
        x = m.sat_rad * std::tan(x / m.sat_rad);
        y = m.sat_rad * std::tan(y / m.sat_rad);
    }
    const double n = m.sat_rad2 + x * x + y * y;
    const double d = m.sat_rad4 - m.sat2_earth2 * n;
    if (!(d >= 0.0)) {
        return nowhere;
    }
    const double v = (m.sat_rad2 - std::sqrt(d)) / n;
    const double lat = std::asin(v * y / R);
    return {lat * deg, m.domain.plon + std::asin(v * x / (R * std::cos(lat))) * deg};
}

Pair satellite_inverse(const Map& m, double x, double y) {
    return m.domain.ellipse != 0 ? satellite_ellipse_inverse(m, x, y)
                                 : satellite_sphere_inverse(m, x, y);
}

// --- Diagrams: the pair is no place on the earth ------------------------------------

// Linear axes (20, 24): `lo` is the axis' start, the factor its stretch.
double stretch(double value, double lo, double factor) {
    return (value - lo) * factor + lo;
}
double unstretch(double value, double lo, double factor) {
    return (value - lo) / factor + lo;
}

void derive_axes(Map& m) {
    m.xfactor = to_float(m.domain.nx / static_cast<double>(m.domain.dx));
    m.yfactor = to_float(m.domain.ny / static_cast<double>(m.domain.dy));
}

// Slant of a skew-T (xfactor): degrees of temperature for a unit of log
// pressure, so that isotherms run at 45 degrees on the page.
void derive_skewt(Map& m) {
    const double view_aspect = (static_cast<double>(m.view.y_max) - m.view.y_min) /
                               (static_cast<double>(m.view.x_max) - m.view.x_min);
    m.xfactor = to_float((static_cast<double>(m.limits.x_max) - m.limits.x_min) * view_aspect /
                         (static_cast<double>(m.limits.y_max) - m.limits.y_min));
}

// Potential temperature in kelvin of air at `temp` kelvin and `pres` hPa.
double pot_temp(double temp, double pres) {
    return temp * std::pow(1000.0 / pres, kappa);
}

// Temperature and log of potential temperature (44, and 43 before its turn).
Pair thermo(double temp_c, double pres) {
    return {temp_c, std::log(pot_temp(temp_c + 273.15, pres))};
}
Pair thermo_inverse(double temp_c, double y) {
    return {temp_c, 1000.0 * std::pow((temp_c + 273.15) / std::exp(y), 3.5)};
}

// Turns a plot point about the middle of the limits by 45 degrees on the page,
// clockwise for `turn` 1 and back for -1.
Pair turn_on_page(const Map& m, Pair p, double turn) {
    const double width = static_cast<double>(m.limits.x_max) - m.limits.x_min;
    const double height = static_cast<double>(m.limits.y_max) - m.limits.y_min;
    const double page_x = (static_cast<double>(m.view.x_max) - m.view.x_min) / width;
    const double page_y = (static_cast<double>(m.view.y_max) - m.view.y_min) / height;
    const double mid_x = m.limits.x_min + width / 2.0;
    const double mid_y = m.limits.y_min + height / 2.0;
    const double u = (p.first - mid_x) * page_x;
    const double v = (p.second - mid_y) * page_y;
    const double half = std::sqrt(0.5);
    return {mid_x + half * (u + turn * v) / page_x, mid_y + half * (v - turn * u) / page_y};
}

// --- All codes ------------------------------------------------------------------------

bool has_formula(int proj) {
    switch (proj) {
    case missing:
    case proj_xy:
    case proj_xlogp:
    case proj_hodograph:
    case proj_category:
    case proj_xp:
    case proj_skewt:
    case proj_stuve:
    case proj_emagram:
    case proj_tephigram:
    case proj_rot_tephigram:
    case proj_pixel:
        return true;
    default:
        return is_map_proj(proj);
    }
}

// Fills the derived values for the current code.
void derive(Map& m) {
    m.xfactor = missing_f;
    m.yfactor = missing_f;
    m.mult = missing_f;
    m.scale = 1.0F;
    switch (m.domain.proj) {
    case proj_pstereo:
        derive_pstereo(m);
        break;
    case proj_lambert:
        derive_lambert(m);
        break;
    case proj_ortho:
        derive_ortho(m);
        break;
    case proj_satellite:
        derive_satellite(m);
        break;
    case proj_xy:
    case proj_category:
    case proj_xp:
        derive_axes(m);
        break;
    case proj_skewt:
        derive_skewt(m);
        break;
    default:
        break;
    }
    m.sin_lat0 = sin_deg(m.domain.plat);
    m.cos_lat0 = cos_deg(m.domain.plat);
}

Pair forward_diagram(const Map& m, double lat, double lon) {
    switch (m.domain.proj) {
    case proj_pixel:
        return {lat, -lon};
    case proj_xy:
    case proj_category:
        return {stretch(lat, m.limits.x_min, m.xfactor), stretch(lon, m.limits.y_min, m.yfactor)};
    case proj_xp:
        return {stretch(lat, m.limits.x_min, m.xfactor),
                (m.limits.y_min - lon) * m.yfactor + m.limits.y_min};
    case proj_xlogp:
    case proj_emagram:
        return {lat, -std::log(lon)};
    case proj_stuve:
        return {lat, -std::pow(lon, 0.285714)};
    case proj_hodograph:
        return {lon * sin_deg(lat), lon * cos_deg(lat)};
    case proj_skewt: {
        const double y = -std::log(lon);
        return {is_set(m.xfactor) ? lat + (y - m.limits.y_min) * m.xfactor : NAN, y};
    }
    case proj_tephigram:
        return turn_on_page(m, thermo(lat, lon), 1.0);
    case proj_rot_tephigram:
        return thermo(lat, lon);
    default:
        return {lat, lon};
    }
}

Pair forward(const Map& m, double lat, double lon) {
    switch (m.domain.proj) {
    case proj_pstereo:
        return pstereo(m, lat, lon);
    case proj_latlon:
        return {turn_once(lon - m.domain.plon), lat};
    case proj_merc:
        return mercator(m, lat, lon);
    case proj_lambert:
        return lambert(m, lat, lon);
    case proj_ortho:
        return ortho(m, lat, lon);
    case proj_gnomonic:
        return gnomonic(m, lat, lon);
    case proj_mollweide:
        return mollweide(m, lat, lon);
    case proj_lambert_az:
        return lambert_az(m, lat, lon);
    case proj_satellite:
        return satellite(m, lat, lon);
    default:
        return forward_diagram(m, lat, lon);
    }
}

Pair inverse_diagram(const Map& m, double x, double y) {
    switch (m.domain.proj) {
    case proj_pixel:
        return {x, -y};
    case proj_xy:
    case proj_category:
        return {unstretch(x, m.limits.x_min, m.xfactor), unstretch(y, m.limits.y_min, m.yfactor)};
    case proj_xp:
        return {unstretch(x, m.limits.x_min, m.xfactor),
                (m.limits.y_min - y) / m.yfactor + m.limits.y_min};
    case proj_xlogp:
    case proj_emagram:
        return {x, std::exp(-y)};
    case proj_stuve:
        return {x, std::pow(-y, 3.5)};
    case proj_hodograph: {
        const double dir = x == 0.0 && y == 0.0 ? 0.0 : atan2_deg(x, y);
        return {dir < 0.0 ? dir + 360.0 : dir, length(x, y)};
    }
    case proj_skewt:
        return {is_set(m.xfactor) ? x - (y - m.limits.y_min) * m.xfactor : NAN, std::exp(-y)};
    case proj_tephigram: {
        const Pair p = turn_on_page(m, {x, y}, -1.0);
        return thermo_inverse(p.first, p.second);
    }
    default:
        return thermo_inverse(x, y);
    }
}

Pair inverse(const Map& m, double x, double y) {
    switch (m.domain.proj) {
    case proj_pstereo:
        return pstereo_inverse(m, x, y);
    case proj_latlon:
        return {y, turn_once(m.domain.plon + x)};
    case proj_merc:
        return mercator_inverse(m, x, y);
    case proj_lambert:
        return lambert_inverse(m, x, y);
    case proj_ortho:
        return ortho_inverse(m, x, y);
    case proj_gnomonic:
        return gnomonic_inverse(m, x, y);
    case proj_mollweide:
        return mollweide_inverse(m, x, y);
    case proj_lambert_az:
        return lambert_az_inverse(m, x, y);
    case proj_satellite:
        return satellite_inverse(m, x, y);
    default:
        return inverse_diagram(m, x, y);
    }
}

// Stores a pair, or two missing values if there is none or a number of it is
// none. Returns 1 or 0.
int store(Pair p, float* first, float* second) {
    const bool ok = p.ok && fits_float(p.first) && fits_float(p.second);
    *first = ok ? static_cast<float>(p.first) : missing_f;
    *second = ok ? static_cast<float>(p.second) : missing_f;
    return ok ? 1 : 0;
}

// Whether two inputs are numbers; on a map a missing one is no place.
bool usable(int proj, float first, float second) {
    if (!std::isfinite(first) || !std::isfinite(second)) {
        return false;
    }
    return !is_map_proj(proj) || (is_set(first) && is_set(second));
}

// Orders the two corners into limits.
void set_corners(MAP_limits& limits, double x1, double y1, double x2, double y2) {
    limits = {to_float(std::min(x1, x2)), to_float(std::max(x1, x2)), to_float(std::min(y1, y2)),
              to_float(std::max(y1, y2))};
}

// Image of a point for the corners of a diagram, before the slant or turn that
// itself needs the limits.
Pair corner(const Map& m, double first, double second) {
    switch (m.domain.proj) {
    case proj_skewt:
        return {first, -std::log(second)};
    case proj_tephigram:
    case proj_rot_tephigram:
        return thermo(first, second);
    default: {
        float x = missing_f;
        float y = missing_f;
        if (has_formula(m.domain.proj)) {
            store(forward(m, first, second), &x, &y);
        }
        return {x, y};
    }
    }
}

void set_map_limits(Map& m) {
    const Domain& d = m.domain;
    float cx = missing_f;
    float cy = missing_f;
    MAP_tran(d.clat, d.clon, &cx, &cy);
    const double half_x = d.dx * (d.nx - 1.0) / 2.0;
    const double half_y = d.dy * (d.ny - 1.0) / 2.0;
    m.limits = {to_float(cx - half_x), to_float(cx + half_x), to_float(cy - half_y),
                to_float(cy + half_y)};
}

void set_diagram_limits(Map& m) {
    const Domain& d = m.domain;
    const double lat = d.clat;
    const double lon = d.clon;
    switch (d.proj) {
    case proj_xy:
    case proj_category:
        set_corners(m.limits, lat, lon, lat + d.nx, lon + d.ny);
        break;
    case proj_xp:
        set_corners(m.limits, lat, -lon, lat + d.nx, -lon + d.ny);
        break;
    case proj_hodograph:
        set_corners(m.limits, lat, lon, lat + d.dx, lon + d.dy);
        break;
    case proj_skewt:
    case proj_tephigram:
    case proj_rot_tephigram: {
        const Pair origin = corner(m, lat, lon);
        set_corners(m.limits, origin.first, origin.second, corner(m, lat + d.dx, lon).first,
                    corner(m, lat, lon + d.dy).second);
        break;
    }
    default: {
        const Pair origin = corner(m, lat, lon);
        const Pair end = corner(m, lat + d.dx, lon + d.dy);
        set_corners(m.limits, origin.first, origin.second, end.first, end.second);
    }
    }
}

// Place `dist` km from a place in the direction `dir`, on a plane of degrees.
Pair step_on_earth(float lat, float lon, double dir, double dist) {
    return {lat + dist * cos_deg(dir) / km_per_degree,
            lon + dist * sin_deg(dir) / (km_per_degree * cos_deg(lat))};
}

bool in_window(const MAP_limits& limits, double x, double y, double margin_x, double margin_y) {
    return x >= limits.x_min - margin_x && x <= limits.x_max + margin_x &&
           y >= limits.y_min - margin_y && y <= limits.y_max + margin_y;
}

// Direction on the plot by the image of a point 1 km away.
float satellite_dir(float dir, float x, float y) {
    float x2 = missing_f;
    float y2 = missing_f;
    if (MAP_offset(x, y, dir, 1.0F, &x2, &y2) == 0) {
        return missing_f;
    }
    return to_float(atan2_deg(static_cast<double>(x2) - x, static_cast<double>(y2) - y));
}

} // namespace

// --- The current domain ------------------------------------------------------------------

int MAP_domain(const Domain* dom) {
    if (dom == nullptr) {
        map.domain.proj = missing;
        return -1;
    }
    map.domain = *dom;
    Domain& d = map.domain;
    if (!is_set(d.plat)) {
        d.plat = d.clat;
    }
    if (!is_set(d.plon)) {
        d.plon = d.clon;
    }
    const bool given = is_set(d.param[0]);
    if (d.proj == proj_pstereo) {
        map.tlat1 = given ? d.param[0] : (d.plat < 0.0F ? -60.0F : 60.0F);
    } else if (d.proj == proj_lambert) {
        map.tlat1 = given ? d.param[0] : 30.0F;
        map.tlat2 = given ? d.param[1] : 60.0F;
    } else if (d.proj == proj_satellite) {
        map.sat_rad = given ? d.param[0] : orbit_default;
        map.sat_rad2 = map.sat_rad * map.sat_rad;
        map.sat_rad4 = map.sat_rad2 * map.sat_rad2;
        map.sat2_earth2 = map.sat_rad2 - earth_maj * earth_maj;
        map.earth_ratio = earth_rad / map.sat_rad;
    }
    derive(map);
    MAP_set_limits();
    return 0;
}

Domain* MAP_get_domain(Domain* dom) {
    if (dom == nullptr) {
        return &map.domain;
    }
    *dom = map.domain;
    return dom;
}

int MAP_proj(int proj) {
    map.domain.proj = proj;
    derive(map);
    return 0;
}

int MAP_get_proj() {
    return map.domain.proj;
}

int MAP_coord(float rlat, float rlon) {
    map.domain.plat = rlat;
    map.domain.plon = rlon;
    derive(map);
    return 0;
}

float MAP_get_clat() {
    return map.domain.clat;
}

float MAP_get_clon() {
    return map.domain.clon;
}

int MAP_tran_center(float* x, float* y) {
    return MAP_tran(map.domain.clat, map.domain.clon, x, y);
}

int MAP_set_limits() {
    if (is_map_proj(map.domain.proj)) {
        set_map_limits(map);
        return 0;
    }
    set_diagram_limits(map);
    derive(map); // the slant follows the limits
    return 0;
}

int MAP_get_limits(MAP_limits* lim) {
    *lim = map.limits;
    return 0;
}

int MAP_set_view(const MAP_limits* vp) {
    map.view = *vp;
    derive(map);
    return 0;
}

int MAP_get_up_left(float* x, float* y) {
    *x = map.limits.x_min;
    *y = map.limits.y_max;
    return 0;
}

// --- Transformation ----------------------------------------------------------------------

int MAP_tran(float lat, float lon, float* x, float* y) {
    const int proj = map.domain.proj;
    if (!has_formula(proj)) {
        return 1;
    }
    if (!usable(proj, lat, lon)) {
        return store(nowhere, x, y);
    }
    return store(forward(map, lat, is_map_proj(proj) ? wrap_lon(lon) : lon), x, y);
}

int MAP_untran(float x, float y, float* lat, float* lon) {
    const int proj = map.domain.proj;
    if (!has_formula(proj) || !is_set(proj)) {
        return 1;
    }
    if (!usable(proj, x, y)) {
        return store(nowhere, lat, lon);
    }
    const int result = store(inverse(map, x, y), lat, lon);
    const bool at_centre = proj == proj_lambert_az && length(x, y) < on_point;
    return at_centre ? 0 : result;
}

int MAP_in_domain(float x, float y) {
    return !is_set(map.domain.proj) || in_window(map.limits, x, y, 0.0, 0.0) ? 1 : 0;
}

int MAP_in_grid_domain(float x, float y) {
    const Domain& d = map.domain;
    return !is_set(d.proj) || in_window(map.limits, x, y, 3.0 * d.dx, 3.0 * d.dy) ? 1 : 0;
}

int MAP_grid_tran(float gx, float gy, float* x, float* y) {
    const Domain& d = map.domain;
    const Pair p{static_cast<double>(d.dx) * gx + map.limits.x_min,
                 map.limits.y_max - static_cast<double>(d.dy) * gy};
    return store(is_set(gx) ? p : nowhere, x, y) - 1;
}

int MAP_grid_untran(float x, float y, float* gx, float* gy) {
    const Domain& d = map.domain;
    const Pair p{(static_cast<double>(x) - map.limits.x_min) / d.dx,
                 (static_cast<double>(map.limits.y_max) - y) / d.dy};
    return store(is_set(x) ? p : nowhere, gx, gy) - 1;
}

// --- Directions and distances --------------------------------------------------------------

int MAP_offset(float xi, float yi, float dir, float rad_km, float* xf, float* yf) {
    // The result of the inverse is no test: it is 0 at the centre of a Lambert
    // azimuthal domain. A point that lies nowhere comes back missing.
    float lat = missing_f;
    float lon = missing_f;
    MAP_untran(xi, yi, &lat, &lon);
    if (!is_set(lat) || !is_set(lon)) {
        return store(nowhere, xf, yf);
    }
    const Pair end = step_on_earth(lat, lon, dir, rad_km);
    return MAP_tran(to_float(end.first), to_float(end.second), xf, yf);
}

float MAP_factor(float lat, float /*lon*/) {
    switch (map.domain.proj) {
    case proj_pstereo:
        // Held near the far pole, where the scale has no bound.
        return static_cast<float>(1.866 / std::max(1.0e-6, 1.0 + sin_deg(lat)));
    case proj_lambert:
        // A domain may name it; one that does not has the scale of its cone.
        return is_set(map.domain.param[2]) ? map.domain.param[2] : lambert_scale(map, lat);
    default:
        return 1.0F;
    }
}

float MAP_dir_adj(float dir, float x, float y) {
    const Domain& d = map.domain;
    const bool north = d.plat >= 0.0F;
    switch (d.proj) {
    case proj_pstereo:
        if (x == 0.0F && y == 0.0F) {
            return to_float(north ? static_cast<double>(dir) - d.plon
                                  : static_cast<double>(dir) + d.plon);
        }
        return to_float(north ? dir - atan2_deg(x, -y) : dir + atan2_deg(x, y));
    case proj_lambert:
        return to_float(dir - atan2_deg(x, -map.scale * y));
    case proj_satellite:
        return satellite_dir(dir, x, y);
    default:
        return to_float(dir);
    }
}

float MAP_dir(float x1, float y1, float x2, float y2) {
    const double a = atan2_deg(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1);
    if (map.domain.proj != proj_pstereo) {
        return to_float(a);
    }
    return to_float(map.domain.plat >= 0.0F ? a + atan2_deg(x1, -y1) : a - atan2_deg(x1, y1));
}

int MAP_set_plot_limit(int val) {
    map.plot_limit = val;
    return 0;
}
