// mosaic_writer.h: makes NOWrad and KAVRAD mosaics for tests, benches, fuzz seeds
// and pictures.
#pragma once

#include "nids_writer.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

// Colour index (NOWrad, 0 to 15) or code (KAVRAD, 0 to 63) of a cell, row 0 on top.
using MosaicCell = std::function<int(int row, int column)>;

struct NowradImage {
    int ny = 0, nx = 0;
    char kind = 'C';
    // Kind C: longitude and latitude of the middle of the top, an unused number,
    // height and width of a cell; kind L: eight numbers. Radians.
    std::string projection;
    std::string title = "NOWrad Master       22:30 20-MAY-2019";
};
// A mosaic on latitude and longitude: degrees.
NowradImage nowrad_latlon(int ny, int nx, double lon, double top, double dy, double dx);
// The Lambert section of the United States.
NowradImage nowrad_lambert(int ny, int nx);
Bytes nowrad_file(const NowradImage& image, const MosaicCell& cell);
// The header alone, up to the tag of the first line.
Bytes nowrad_header(const NowradImage& image);

struct KavradImage {
    bool coarse = true;
    char type = ' ';                   // 'C': type 1
    std::string date = "223000200519"; // hour, minute, second, day, month, year
};
Bytes kavrad_file(const KavradImage& image, const MosaicCell& cell);
// Header and record alone, up to the image.
Bytes kavrad_header(const KavradImage& image);

// An invented evening over the United States: a squall line from Texas to Ohio
// with rain behind it, showers over Florida, snow in the northern Rockies. dBZ at
// a place in degrees; below 0: no echo.
float mosaic_dbz(double lat, double lon);
// The whole country as files: NOWrad of either kind, KAVRAD on either grid. A
// divisor of the resolution makes them smaller.
Bytes nowrad_sample(char kind, int divisor = 1);
Bytes kavrad_sample(bool coarse);
// Small files of every kind, by name.
std::vector<std::pair<std::string, Bytes>> nowrad_samples();
std::vector<std::pair<std::string, Bytes>> kavrad_samples();
