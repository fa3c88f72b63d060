// proj_diagram: diagrams, whose pairs are no place on the earth: linear axes,
// pressure scales, the hodograph and the thermodynamic diagrams. No state.
#include "proj.h"

namespace proj {

namespace {

constexpr double kappa = 1.0 / 3.5; // gas constant over heat capacity of air

// Linear axes: `lo` is the axis' start, the factor its stretch.
double stretch(double value, double lo, double factor) {
    return (value - lo) * factor + lo;
}
double unstretch(double value, double lo, double factor) {
    return (value - lo) / factor + lo;
}

// Potential temperature in kelvin of air at `temp` kelvin and `pres` hPa.
double pot_temp(double temp, double pres) {
    return temp * std::pow(1000.0 / pres, kappa);
}

// Turns a plot point about the middle of the limits by 45 degrees on the page,
// clockwise for `turn` 1 and back for -1.
MapPair turn_on_page(const Map& m, MapPair p, double turn) {
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

// Orders the two corners into limits.
void set_corners(Map& m, double x1, double y1, double x2, double y2) {
    m.limits = {to_float(std::min(x1, x2)), to_float(std::max(x1, x2)), to_float(std::min(y1, y2)),
                to_float(std::max(y1, y2))};
}

// Limits from the images of the domain's corners, before the slant or turn that
// itself needs the limits.
template <typename Image> void set_by_image(Map& m, Image image) {
    const Domain& d = m.domain;
    const double first = d.clat;
    const double second = d.clon;
    const MapPair origin = image(first, second);
    set_corners(m, origin.first, origin.second, image(first + d.dx, second).first,
                image(first, second + d.dy).second);
}

} // namespace

// --- Limits ---------------------------------------------------------------------

void axes_limits(Map& m) {
    const Domain& d = m.domain;
    set_corners(m, d.clat, d.clon, d.clat * 1.0 + d.nx, d.clon * 1.0 + d.ny);
}

void xp_limits(Map& m) {
    const Domain& d = m.domain;
    set_corners(m, d.clat, -d.clon, d.clat * 1.0 + d.nx, -d.clon * 1.0 + d.ny);
}

void hodograph_limits(Map& m) {
    const Domain& d = m.domain;
    set_corners(m, d.clat, d.clon, d.clat * 1.0 + d.dx, d.clon * 1.0 + d.dy);
}

void skewt_limits(Map& m) {
    set_by_image(m, [](double first, double second) { return MapPair{first, -std::log(second)}; });
}

void thermo_limits(Map& m) {
    set_by_image(m, [&m](double first, double second) { return thermo(m, first, second); });
}

// The images of the centre and of the far end; an image that is none is missing.
void corner_limits(Map& m) {
    const auto image = [&m](double first, double second) {
        const MapPair p =
            m.row->forward == nullptr ? map_nowhere : m.row->forward(m, first, second);
        const bool ok = p.ok && fits_float(p.first) && fits_float(p.second);
        return ok ? MapPair{to_float(p.first), to_float(p.second)} : MapPair{missing_f, missing_f};
    };
    const Domain& d = m.domain;
    const MapPair origin = image(d.clat, d.clon);
    const MapPair end = image(d.clat * 1.0 + d.dx, d.clon * 1.0 + d.dy);
    set_corners(m, origin.first, origin.second, end.first, end.second);
}

// --- Axes -----------------------------------------------------------------------

void derive_axes(Map& m) {
    m.xfactor = to_float(m.domain.nx / static_cast<double>(m.domain.dx));
    m.yfactor = to_float(m.domain.ny / static_cast<double>(m.domain.dy));
}

MapPair same(const Map& /*m*/, double first, double second) {
    return {first, second};
}

MapPair pixel(const Map& /*m*/, double x, double y) {
    return {x, -y};
}

MapPair axes(const Map& m, double first, double second) {
    return {stretch(first, m.limits.x_min, m.xfactor), stretch(second, m.limits.y_min, m.yfactor)};
}
MapPair axes_inverse(const Map& m, double x, double y) {
    return {unstretch(x, m.limits.x_min, m.xfactor), unstretch(y, m.limits.y_min, m.yfactor)};
}

MapPair xp(const Map& m, double first, double second) {
    return {stretch(first, m.limits.x_min, m.xfactor),
            (m.limits.y_min - second) * m.yfactor + m.limits.y_min};
}
MapPair xp_inverse(const Map& m, double x, double y) {
    return {unstretch(x, m.limits.x_min, m.xfactor),
            (m.limits.y_min - y) / m.yfactor + m.limits.y_min};
}

MapPair log_pressure(const Map& /*m*/, double first, double pres) {
    return {first, -std::log(pres)};
}
MapPair log_pressure_inverse(const Map& /*m*/, double x, double y) {
    return {x, std::exp(-y)};
}

MapPair stuve(const Map& /*m*/, double first, double pres) {
    return {first, -std::pow(pres, 0.285714)};
}
MapPair stuve_inverse(const Map& /*m*/, double x, double y) {
    return {x, std::pow(-y, 3.5)};
}

MapPair hodograph(const Map& /*m*/, double dir, double spd) {
    return {spd * sin_deg(dir), spd * cos_deg(dir)};
}
MapPair hodograph_inverse(const Map& /*m*/, double x, double y) {
    const double dir = x == 0.0 && y == 0.0 ? 0.0 : atan2_deg(x, y);
    return {dir < 0.0 ? dir + 360.0 : dir, length(x, y)};
}

// --- Thermodynamic diagrams -----------------------------------------------------

// Slant of a skew-T (xfactor): degrees of temperature for a unit of log
// pressure, so that isotherms run at 45 degrees on the page.
void derive_skewt(Map& m) {
    const double view_aspect = (static_cast<double>(m.view.y_max) - m.view.y_min) /
                               (static_cast<double>(m.view.x_max) - m.view.x_min);
    m.xfactor = to_float((static_cast<double>(m.limits.x_max) - m.limits.x_min) * view_aspect /
                         (static_cast<double>(m.limits.y_max) - m.limits.y_min));
}

MapPair skewt(const Map& m, double temp_c, double pres) {
    const double y = -std::log(pres);
    return {is_set(m.xfactor) ? temp_c + (y - m.limits.y_min) * m.xfactor : NAN, y};
}
MapPair skewt_inverse(const Map& m, double x, double y) {
    return {is_set(m.xfactor) ? x - (y - m.limits.y_min) * m.xfactor : NAN, std::exp(-y)};
}

// Temperature and log of potential temperature: the tephigram before its turn.
MapPair thermo(const Map& /*m*/, double temp_c, double pres) {
    return {temp_c, std::log(pot_temp(temp_c + 273.15, pres))};
}
MapPair thermo_inverse(const Map& /*m*/, double x, double y) {
    return {x, 1000.0 * std::pow((x + 273.15) / std::exp(y), 3.5)};
}

MapPair tephigram(const Map& m, double temp_c, double pres) {
    return turn_on_page(m, thermo(m, temp_c, pres), 1.0);
}
MapPair tephigram_inverse(const Map& m, double x, double y) {
    const MapPair p = turn_on_page(m, {x, y}, -1.0);
    return thermo_inverse(m, p.first, p.second);
}

} // namespace proj
