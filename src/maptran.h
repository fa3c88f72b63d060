// maptran.h: latitude and longitude to plot coordinates and back, for one
// current domain. Plot coordinates are units of 100 km on earth projections
// and degrees on latitude-longitude domains.
#pragma once

#include "zyr.h"

// Projection codes of `Domain::proj`. Codes 1 to 9 are maps.
enum {
    proj_pstereo = 1,
    proj_latlon = 2,
    proj_merc = 3,
    proj_lambert = 4,
    proj_ortho = 5,
    proj_gnomonic = 6,
    proj_mollweide = 7,
    proj_lambert_az = 8,
    proj_satellite = 9,
    proj_xy = 20,
    proj_xz = 21,
    proj_xlogp = 22,
    proj_hodograph = 23,
    proj_category = 24,
    proj_xp = 25,
    proj_skewt = 40,
    proj_stuve = 41,
    proj_emagram = 42,
    proj_tephigram = 43,
    proj_rot_tephigram = 44,
    proj_zoom = 50,
    proj_size = 51,
    proj_pixel = 99
};

// Whether a code is a map of the earth.
constexpr bool is_map_proj(int proj) {
    return proj >= 1 && proj <= 9;
}

// A window of plot coordinates.
struct MAP_limits {
    float x_min = 0.0F;
    float x_max = 0.0F;
    float y_min = 0.0F;
    float y_max = 0.0F;
};

// --- The current domain -----------------------------------------------------

// Makes a copy of `dom` current and computes its limits. An unset `plat` or
// `plon` takes the centre's. Returns 0; null: no projection, -1.
int MAP_domain(const Domain* dom);

// Copies the current domain to `dom`. Returns `dom`; for null the address of
// the module's own record.
Domain* MAP_get_domain(Domain* dom);

// Change the code or the reference point alone; the limits stay. Return 0.
int MAP_proj(int proj);
int MAP_coord(float rlat, float rlon);
int MAP_get_proj();

// Centre of the current domain, degrees, and its image.
float MAP_get_clat();
float MAP_get_clon();
int MAP_tran_center(float* x, float* y);

// Window of the picture: computed anew; read; upper left corner. Return 0.
int MAP_set_limits();
int MAP_get_limits(MAP_limits* lim);
int MAP_get_up_left(float* x, float* y);

// Viewport of the page, which the skew-T and tephigram need for their slant.
int MAP_set_view(const MAP_limits* vp);

// --- Transformation ---------------------------------------------------------

// Plot coordinates of a point on the current domain.
//   lat, lon  degrees, north and east positive; any longitude
//   x, y      out
// Returns 1; 0, with both outputs missing, when the point has no image. Codes
// without a formula (21, 50, 51, -1) leave the outputs alone and return 1.
int MAP_tran(float lat, float lon, float* x, float* y);

// The inverse, with the same returns. At the centre of a Lambert azimuthal
// domain it returns 0 though both outputs are valid.
int MAP_untran(float x, float y, float* lat, float* lon);

// Whether a plot point lies in the limits, edges included; the second widens
// them by three grid steps on every side. 1 without projection.
int MAP_in_domain(float x, float y);
int MAP_in_grid_domain(float x, float y);

// Grid position (0, 0 at the upper left, gy downward) to plot point and back.
// Return 0; -1 with both outputs missing for a missing first coordinate.
int MAP_grid_tran(float gx, float gy, float* x, float* y);
int MAP_grid_untran(float x, float y, float* gx, float* gy);

// --- Directions and distances -----------------------------------------------

// The plot point `rad` km from the plot point (xi, yi) in the direction `dir`,
// degrees clockwise from north. Returns as MAP_tran.
int MAP_offset(float xi, float yi, float dir, float rad, float* xf, float* yf);

// Map scale: plot units per 100 km on the earth.
float MAP_factor(float lat, float lon);

// Direction on the plot of the earth direction `dir` at the plot point (x, y),
// degrees clockwise from up; missing when the satellite does not see it.
float MAP_dir_adj(float dir, float x, float y);

// Earth direction from one plot point to another, degrees.
float MAP_dir(float x1, float y1, float x2, float y2);

// Stores the limit of the plot parameter "plt_grid". Returns 0.
int MAP_set_plot_limit(int val);
