// img_place.h: where a picture lies on the earth, in the forms that other programs
// read: a world file, a projection file in WKT, lines of text for a PNG.
#pragma once

#include "map_proj.h"

#include <string>

// Where the pixels of a picture lie on the plot of a map.
struct IMG_place {
    Map map;
    double x = 0.0, y = 0.0;   // centre of the first pixel, left and top, in plot coordinates
    double dx = 0.0, dy = 0.0; // from pixel to pixel, to the right and up; both above 0
};

// Coordinate system of the files: metres on the sphere of the program, degrees on
// latitude-longitude domains, the origin where the program has it. Well-known text
// of OGC 01-009. Empty for maps that it has no name for, and for no map.
std::string IMG_place_wkt(const Map& map);
// The six lines of a world file: step to the right, two rotations of 0, step down
// (negative), x and y of the centre of the first pixel.
std::string IMG_place_world(const IMG_place& place);
// The domain of a map, as the domain option takes it.
std::string IMG_place_domain(const Map& map);

// Name of the world file beside a picture: first and last letter of its ending and
// "w" ("storm.pgw" for "storm.png"), ".wld" for a name without one.
std::string IMG_world_name(const std::string& image_name);
// Writes the files beside a picture: world file, WKT (".prj"), and the record in
// which GDAL looks for the WKT (".aux.xml" after the whole name). Returns 1; after a
// message 0 where there is nothing to say of the picture, -1 where a file could not
// be written.
int IMG_write_place(const char* image_name, const IMG_place& place);
