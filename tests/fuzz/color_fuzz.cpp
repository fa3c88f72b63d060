// Colour tables and the attribute language: up to a line "==" the input is a table,
// after it each line is an attribute string, a marker and a background.
#include "run_program.h"
#include "state_keeper.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void check_table() {
    require(CLR_get_num() <= 256 && CLR_get_num_fill() <= 256);
    for (int i = -1; i <= CLR_get_num(); ++i) {
        float red = 0;
        float grn = 0;
        float blu = 0;
        CLR_get_rgb(i, &red, &grn, &blu);
        for (const float part : {red, grn, blu}) {
            require(part >= 0.0F && part <= 1.0F);
        }
        require(std::strlen(CLR_get_name(i)) < 20);
    }
}

void take(const std::string& line) {
    Gattribs attrib;
    RES_put_again("color_line", line.c_str());
    ATTRIB_get("color_line", "red", &attrib);
    Gattribs all;
    ATTRIB_update(&all, &attrib);
    ATTRIB_print(&all);
    ATTR_is_marker(line.c_str());
    ATTR_parse_marker(line.c_str());
    RES_put_again("background", line.c_str());
    CLR_check_settings();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const StateKeeper first = [] {
        StateKeeper keeper;
        MESS_set(0, 0);
        FLAG_set(flag_device, ws_postscript);
        RES_put("file_path", dir.path().c_str());
        keep_colors(keeper);
        return keeper;
    }();
    first.restore();
    const std::string all(reinterpret_cast<const char*>(data), size);
    const std::size_t cut = std::min(all.find("==\n"), all.size());
    dir.rewrite("zyr.clr", all.substr(0, cut));
    RES_put_again("color_table", size % 2 == 0 ? "" : "none.clr,,zyr.clr,zyr.clr");
    CLR_read_table(size % 3 == 0 ? "zyr.clr" : nullptr);
    check_table();
    std::istringstream lines(cut < all.size() ? all.substr(cut + 3) : "");
    for (std::string line; std::getline(lines, line);) {
        take(line);
    }
    check_table();
    CLR_clear_table();
    take("blue");
    return 0;
}
