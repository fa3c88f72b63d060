// plt_tally.h: what a picture came to: the account of a run takes it from here. The
// plotters and the session enter it while they draw.
#pragma once

#include "zyr.h"

#include <bitset>
#include <string>
#include <vector>

struct PLT_tally {
    // What the input holds.
    std::string product; // in words
    int code = missing;  // of a product
    std::string moment;  // of a scan of a volume
    int cut = missing;   // number of the scan
    float elev = missing_f;
    std::string site;     // identifier
    bool has_site = true; // there is one, at the place
    float lat = missing_f, lon = missing_f;
    Date date; // of the volume scan

    // What was drawn of it.
    long radials = 0;                        // with a direction
    long out_of_range = 0;                   // without one that there is
    double widths = 0;                       // of the radials, degrees
    std::bitset<3600> covered;               // tenths of degrees from north
    long figures = 0;                        // of the data, as they were handed to the device
    float low = missing_f, high = missing_f; // of the values met

    std::vector<std::string> outputs; // files that were written whole
    bool there = false;               // the picture was made by an earlier run
};

PLT_tally& PLT_get_tally();
// Takes a value that was met.
void PLT_tally_value(float value);
// Takes a radial: the azimuth at which it begins, and its width.
void PLT_tally_radial(float azimuth, float width);
// How many radials of their mean width the circle has room for besides.
long PLT_missing_radials(const PLT_tally& tally);
