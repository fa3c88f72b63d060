// windbarb.h: a wind at a point, drawn as a barb, an arrow or a storm track in
// world coordinates of the current transformation, in the line and fill
// attributes in force.
//
// In all calls (x, y) is the point, `dir` the direction in degrees that the
// wind comes from, clockwise from the y axis. They return 0; -1 with nothing
// drawn for a speed of 0 and for a missing `dir` or `spd`.
#pragma once

// A barb of `spd` knots, held at 300: flags of 50, barbs of 10, a half barb
// of 5, rounded to the nearest 5.
//   size    length of the staff, world units
//   offset  distance from the point at which the staff starts, world units
int WIND_barb(float x, float y, float dir, float spd, float size, float offset);

// The same with `dir` an earth direction, turned to the map's grid.
int WIND_barb_map(float x, float y, float dir, float spd, float size, float offset);

// An arrow from the point to where the wind goes.
//   size   length of a unit of speed, world units
//   arrow  relative size of the head; 0 or less: no head
int WIND_vect(float x, float y, float dir, float spd, float size, float arrow);

// The same with `dir` an earth direction, turned to the map's grid.
int WIND_vect_map(float x, float y, float dir, float spd, float size, float arrow);

// A storm's track from the point to where it goes.
//   spd    length of the track, world units
//   arrow  size of cross marks and head, world units; 0 or less: no head
//   maj    number of cross marks, the first at the point, none at the tip
//   min    not used
int WIND_track(float x, float y, float dir, float spd, float arrow, int maj, int min);
