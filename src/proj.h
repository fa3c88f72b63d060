// proj.h: what the files of the projections (proj_*.cpp) share: the earth,
// arithmetic in degrees, and what each file gives to its row of the table in
// map_proj.cpp.
//
// Formulas are the spherical ones of J. P. Snyder, Map Projections: A Working
// Manual (USGS Professional Paper 1395), up to scale and origin. phi and lambda
// are latitude and longitude, phi0 and lambda0 those of the reference point.
#pragma once

#include "map_proj.h"

#include "units.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace proj {

constexpr double rad = deg_to_rad; // radians per degree
constexpr double deg = 180.0 / pi; // degrees per radian

// The earth, in 100 km: sphere, equator and pole of the ellipsoid.
constexpr float earth_rad = 63.7122F;
constexpr float earth_maj = 63.78137F;
constexpr float earth_min = 63.56752F;
constexpr double R = earth_rad;

inline double sin_deg(double angle) {
    return std::sin(angle * rad);
}
inline double cos_deg(double angle) {
    return std::cos(angle * rad);
}
inline double tan_deg(double angle) {
    return std::tan(angle * rad);
}
inline double atan2_deg(double y, double x) {
    return std::atan2(y, x) * deg;
}
inline double length(double x, double y) {
    return std::sqrt(x * x + y * y);
}
// For arguments that pass 1 by rounding alone.
inline double asin_deg(double sine) {
    return std::asin(std::clamp(sine, -1.0, 1.0)) * deg;
}

// One step of 360 degrees towards -180 to 180.
inline double turn_once(double angle) {
    if (angle > 180.0) {
        return angle - 360.0;
    }
    return angle < -180.0 ? angle + 360.0 : angle;
}

inline bool fits_float(double value) {
    return std::fabs(value) <= static_cast<double>(FLT_MAX); // false for NaN
}
inline float to_float(double value) {
    return fits_float(value) ? static_cast<float>(value) : missing_f;
}

// --- What each file gives -------------------------------------------------------

// proj_stereo: polar stereographic.
void take_stereo(Map& m);
void derive_stereo(Map& m);
MapPair stereo(const Map& m, double lat, double lon);
MapPair stereo_lat(const Map& m, double lat);
MapPair stereo_lon(const Map& m, double lon);
MapPair stereo_inverse(const Map& m, double x, double y);
float stereo_factor(const Map& m, double lat);
float stereo_dir_adj(const Map& m, float dir, float x, float y);
float stereo_dir(const Map& m, double plot_dir, float x, float y);

// proj_cylinder: latitude-longitude and Mercator.
MapPair latlon(const Map& m, double lat, double lon);
MapPair latlon_lat(const Map& m, double lat);
MapPair latlon_lon(const Map& m, double lon);
MapPair latlon_inverse(const Map& m, double x, double y);
MapPair mercator(const Map& m, double lat, double lon);
MapPair mercator_lat(const Map& m, double lat);
MapPair mercator_lon(const Map& m, double lon);
MapPair mercator_inverse(const Map& m, double x, double y);

// proj_lambert: Lambert conformal.
void take_lambert(Map& m);
void derive_lambert(Map& m);
MapPair lambert(const Map& m, double lat, double lon);
MapPair lambert_lat(const Map& m, double lat);
MapPair lambert_lon(const Map& m, double lon);
MapPair lambert_inverse(const Map& m, double x, double y);
float lambert_factor(const Map& m, double lat);
float lambert_dir_adj(const Map& m, float dir, float x, float y);

// proj_azimuth: orthographic, gnomonic and Lambert azimuthal.
void derive_ortho(Map& m);
MapPair ortho(const Map& m, double lat, double lon);
MapPair ortho_inverse(const Map& m, double x, double y);
MapPair gnomonic(const Map& m, double lat, double lon);
MapPair gnomonic_inverse(const Map& m, double x, double y);
MapPair lambert_az(const Map& m, double lat, double lon);
MapPair lambert_az_inverse(const Map& m, double x, double y);
// How far from the centre and from a pole a point counts as being on it.
constexpr double on_point = 1.0e-10;

// proj_mollweide: Mollweide.
MapPair mollweide(const Map& m, double lat, double lon);
MapPair mollweide_inverse(const Map& m, double x, double y);

// proj_satellite: view from a satellite over the equator.
void take_satellite(Map& m);
void derive_satellite(Map& m);
MapPair satellite(const Map& m, double lat, double lon);
MapPair satellite_inverse(const Map& m, double x, double y);

// proj_diagram: pairs that are no place on the earth.
void derive_axes(Map& m);
void derive_skewt(Map& m);
void axes_limits(Map& m);
void xp_limits(Map& m);
void hodograph_limits(Map& m);
void skewt_limits(Map& m);
void thermo_limits(Map& m);
void corner_limits(Map& m);
MapPair pixel(const Map& m, double x, double y);
MapPair axes(const Map& m, double first, double second);
MapPair axes_inverse(const Map& m, double x, double y);
MapPair xp(const Map& m, double first, double second);
MapPair xp_inverse(const Map& m, double x, double y);
MapPair log_pressure(const Map& m, double first, double pres);
MapPair log_pressure_inverse(const Map& m, double x, double y);
MapPair stuve(const Map& m, double first, double pres);
MapPair stuve_inverse(const Map& m, double x, double y);
MapPair hodograph(const Map& m, double dir, double spd);
MapPair hodograph_inverse(const Map& m, double x, double y);
MapPair skewt(const Map& m, double temp_c, double pres);
MapPair skewt_inverse(const Map& m, double x, double y);
MapPair tephigram(const Map& m, double temp_c, double pres);
MapPair tephigram_inverse(const Map& m, double x, double y);
MapPair thermo(const Map& m, double temp_c, double pres);
MapPair thermo_inverse(const Map& m, double x, double y);
MapPair same(const Map& m, double first, double second);

} // namespace proj
