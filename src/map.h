// map.h: what lies on every picture beside its data: map lines, the grid of
// latitudes and longitudes, range rings, and other files laid over the plot.
// The transformations themselves (MAP_domain, MAP_tran ...) are in maptran.h.
#pragma once

#include <cstdio>

struct Domain;
struct Glim;

// --- Map layer (map.cpp, map_lines.cpp, map_file.cpp) -----------------------

// Bits of MAP_draw: which entries of the map list are drawn.
constexpr int map_under = 1; // entries that begin with '-', before the data
constexpr int map_over = 2;  // entries that begin with '+'
constexpr int map_plain = 4; // all others
constexpr int map_no_database = -2;

// Makes `domain` current and sets the window of transformation 2, the map's
// own, to its limits. Call it before anything is drawn on a map. Returns 0.
int MAP_setup(const Domain* domain);

// Draws the map layer: the entries of the resource `map_file`, or of the
// list chosen for the domain, and the grid set by MAP_latlon. Plotters call
// MAP_draw(map_under) before the data and MAP_draw(map_over | map_plain)
// after it. Returns 0; -1 when the plot component "map" is off.
//
// The list is split at commas; "fi:NAME" is a file of entries, a word each.
// An entry is an optional '-' or '+', conditions on the height of the
// picture, each with a colon after it (">N:", "<N:", ">N<M:", "s+N:",
// "s-N:"), and then one of
//   [lat1,lat2,lon1,lon2,height]  begins a region block (in a file only)
//   im:FILE, if:FILE              image on the map, or on the page
//   mf:FILE, rf:FILE              metafile, raw data file
//   lalo:DLAT:DLON:ATTRIBUTES     grid of latitudes and longitudes
//   FILE:ATTRIBUTES               map database; with a fill pattern its
//                                 outlines are painted
int MAP_draw(int flag);

// Draws one entry. Returns 0 if it was drawn, -1 if it was skipped or failed.
// Before the first MAP_draw plain entries are drawn.
int MAP_process(const char* str);

// 1: MAP_map paints the outlines as closed areas, 0 (at start): it draws them
// as lines. MAP_process sets it by the attributes of the entry. Returns 0.
int MAP_set_fill(int value);

// Draws a map database that is at its start, with the line and fill
// attributes in force, and leaves the file open. Text and binary files are
// distinguished by the first record:
//
//   text    a line "count maxlat minlat maxlon minlon offset", then a line
//           "latitude longitude" for each point
//   binary  big endian: count (2 bytes, unsigned), four floats as above,
//           offset (4 bytes), then latitude and longitude (floats) per point
//
// A count of 0 ends the file. Returns 0 at the end record, -1 at the end of
// the file or where it is damaged, 1 without reading when the current domain
// is no map, map_no_database where nothing was drawn of bytes that are no map.
int MAP_map(std::FILE* map_file);

// Draws the lat-lon grid of the current domain with labels, dots and repeated
// labels as set by MAP_latlon. dlat, dlon: steps in degrees. Returns 0 on
// maps; -1 if a step is unset or not usable, and on plain diagrams, whose
// grid is drawn as well.
int MAP_lines(float dlat, float dlon);

// Range ring of `rad` km about the plot point (x, y), broken where it crosses
// the edge of the map. Returns 0.
int MAP_draw_circle(float x, float y, float rad);

// Steps of the grid in degrees (0: no grid), spacing of its dots and of the
// labels along its lines in whole degrees (0: none). Return 0.
int MAP_latlon(float lat, float lon, int dt, int ex);
int MAP_get_latlon(float* lat, float* lon);

// 1: databases without attributes of their own take `color_cmap`, else
// `color_map`. Returns 0.
int MAP_fill_cont(int value);

// Sets the map list used without the resource `map_file`, and the default
// attribute string of databases; null empties either. Return 0; -1 if the
// text was too long and was cut.
int MAP_file(const char* file);
int MAP_set_format(const char* str);

// Height and width of the window of transformation 2, in plot units, and the
// window itself (returns 0).
float MAP_get_vert();
float MAP_get_hor();
int MAP_get_window(Glim* wind);
