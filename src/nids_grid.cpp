// nids_grid: the text grid file of a raster product, asked for by a value of
// the resource `out_file` that begins with "zyr". Its lines:
//
//   ZYRGRID
//   date label
//   product label
//   projection word, clat clon dx dy nx ny of the product's domain
//   one value a line, row by row from the top; missing cells hold -9999
#include "nids_draw.h"
#include "nids_plt.h"

#include "files.h"
#include "plt_tool.h"
#include "region.h"
#include "text_list.h"
#include "zyrresrc.h"

#include <string>

namespace {

constexpr char default_convention[] = "nids_grd_zyr";

} // namespace

int NIDS_grd_out_file() {
    int found = 0;
    const TextList names = RES_items("out_file");
    for (int i = 0; i < names.count() && found == 0; ++i) {
        if (strnicmp(names[i], "zyr", 3) == 0) {
            const std::string convention = std::string(names[i]).substr(3);
            FILE_set_name(convention.size() < 2 ? default_convention : convention.c_str() + 1);
            found = 1;
        }
    }
    return found;
}

OutputPtr NIDS_grd_open(const NIDS_info& info, const char* datim) {
    OutputPtr grid;
    FILE_save_name_conv();
    if (NIDS_grd_out_file() != 0) {
        Date date = info.date;
        char name[file_name_size] = "";
        FILE_set_date(&date, name);
        MESS_print(mess_mess, "Opening grid file: %s\n", name);
        grid.reset(open_output(name, false));
        if (grid == nullptr) {
            MESS_print(mess_warn, "NIDS_grd_open: Unable to open grid file: %s\n", name);
            explain_output("NIDS_grd_open");
            PLT_lost_output();
        }
    }
    FILE_restore_name_conv();
    if (grid != nullptr) {
        const Domain& d = info.domain;
        std::fprintf(grid.get(), "ZYRGRID\n%s\n%s\n%s%f %f %f %f %d %d\n", datim, info.info,
                     DOM_proj_word(&d).c_str(), static_cast<double>(d.clat),
                     static_cast<double>(d.clon), static_cast<double>(d.dx),
                     static_cast<double>(d.dy), d.nx, d.ny);
    }
    return grid;
}
