// seeds.h: inputs for the fuzz targets beside the whole samples: products of every
// scale, header and flag, and files that are damaged or cut where a reader looks.
#pragma once

#include "nids_writer.h"

#include <string>
#include <utility>
#include <vector>

using Seeds = std::vector<std::pair<std::string, Bytes>>;

Seeds nids_seeds();
Seeds lev2_seeds();
Seeds mosaic_seeds(const std::string& kind); // "nowrad", "kavrad", "rrwds"
Seeds image_seeds(const std::string& kind);  // "gif", "png", "xwd", "native"
// Images after a byte for the display and one for the place.
Seeds overlay_seeds();
