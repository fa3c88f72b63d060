// rrwds_writer.h: makes RRWDS images for tests, fuzz seeds and pictures.
#pragma once

#include "nids_writer.h"

#include <functional>
#include <string>

struct RrwdsImage {
    std::string site = "TLX";
    bool near = false; // range 100, not 200
    int hour = 22, min = 31, day = 20, month = 5;
    float elev = 0.5F;
};
// `level(azimuth, bin)` is 0 to 7.
Bytes rrwds_file(const RrwdsImage& image, const std::function<int(int azimuth, int bin)>& level);
// The invented storm (storm.h) as KTLX's image of 200 nautical miles.
Bytes rrwds_sample();
