// rad_sites.h: which radar is at a place.
#pragma once

#include "zyrcty.h"

#include <string>
#include <vector>

using RadSites = std::vector<CTY_data>;

// The radars of the station file; none without it.
RadSites RAD_read_sites();
// The radar at a place, by the longest of its identifiers; empty for none.
std::string RAD_site_at(const RadSites& sites, float lat, float lon);
