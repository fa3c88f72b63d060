// rad_sites: the radars of the station file. No state.
#include "rad_sites.h"

#include <cmath>
#include <cstring>

namespace {

constexpr float site_deg = 0.05F; // a radar within so many degrees is the one of the table

} // namespace

RadSites RAD_read_sites() {
    RadSites sites;
    const int city_fd = CTY_open_file("rad.cty", nullptr);
    CTY_data city;
    for (int fields = CTY_read(city_fd, &city); fields >= 0; fields = CTY_read(city_fd, &city)) {
        if (fields >= cty_fields) {
            sites.push_back(city);
        }
    }
    CTY_close(city_fd);
    return sites;
}

std::string RAD_site_at(const RadSites& sites, float lat, float lon) {
    std::string found;
    for (const CTY_data& city : sites) {
        const bool here =
            std::fabs(city.lat - lat) < site_deg && std::fabs(city.lon - lon) < site_deg;
        if (here && std::strlen(city.id) > found.size()) {
            found = city.id;
        }
    }
    return found;
}
