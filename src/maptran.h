// maptran.h: latitude and longitude to plot coordinates and back, for one
// current domain, that of the plot; for any other see map_proj.h. Plot
// coordinates are units of 100 km on earth projections and degrees on
// latitude-longitude domains.
#pragma once

#include "map_proj.h"

// --- The current domain -----------------------------------------------------

// The current map. Take it as an argument where its plot coordinates are meant;
// a second map is a value of its own (map_make), not a domain set and put back.
const Map& MAP_current();

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
