// Domain strings and region files: the first line is decoded, the rest is the
// region file "zyr.reg" of that run. What comes out is projected.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "maptran.h"
#include "region.h"
#include "zyrresrc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// A directory of this process.
std::string work_dir() {
    std::string dir = (std::filesystem::temp_directory_path() / "domain_fuzz.").string();
    dir += std::to_string(getpid());
    std::filesystem::create_directories(dir);
    return dir;
}

// "var" asks the user for its centre.
bool asks(const std::string& text) {
    std::string lower = text;
    low_string(lower.data());
    return lower.find("var") != std::string::npos;
}

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void project(const Domain& domain) {
    MAP_domain(&domain);
    for (float lat = -90.0F; lat <= 90.0F; lat += 15.0F) {
        float x = 0.0F;
        float y = 0.0F;
        MAP_tran(lat, lat * 2.0F, &x, &y);
        float lat2 = 0.0F;
        float lon2 = 0.0F;
        MAP_untran(x, y, &lat2, &lon2);
        require(std::isfinite(x) && std::isfinite(y));
        require(std::isfinite(lat2) && std::isfinite(lon2));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    if (asks(text)) {
        return 0;
    }
    MESS_set(0, 0);
    const std::string dir = work_dir();
    RES_put("file_path", dir.c_str());
    const std::size_t end = std::min(text.find('\n'), size);
    std::ofstream(dir + "/zyr.reg") << text.substr(std::min(end + 1, size));
    Domain domain;
    const int result = DOM_decode(text.substr(0, end).c_str(), &domain);
    require(result == dom_by_value || result == dom_by_region || result == dom_invalid ||
            result == missing);
    require(std::isfinite(DOM_aspect(&domain)));
    if (result > 0) {
        project(domain);
    }
    DOM_read_menu("zyr.reg");
    std::filesystem::remove_all(dir);
    return 0;
}
