// zyrrad.cpp: the entry point. It reads the settings, finds out which kind of
// radar file is asked for, gets the name of the first file and hands over to
// the plotter of that kind, which does the rest of the run.
#include "files.h"
#include "lev2.h"
#include "lev2_plt.h"
#include "nids.h"
#include "nids_plt.h"
#include "rad_input.h"
#include "region.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

// The settings of this program, in the order of the help.
constexpr res_type res_key[] = {
    RES_help,        RES_batch,        RES_message,     RES_file_path,  RES_data_path,
    RES_con_path,    RES_grid_path,    RES_raw_path,    RES_image_path, RES_watch_path,
    RES_text_path,   RES_model_path,   RES_sat_path,    RES_city_file,  RES_map_file,
    RES_inputg,      RES_output,       RES_name_conv,   RES_in_file,    RES_out_file,
    RES_file_param,  RES_current,      RES_hour,        RES_num_hour,   RES_identifier,
    RES_plot_domain, RES_grid_domain,  RES_region,      RES_stat_prior, RES_variable,
    RES_plot_type,   RES_plot_scale,   RES_plot_format, RES_plot_param, RES_draw,
    RES_label,       RES_con_interval, RES_con_base,    RES_font_list,  RES_color_table,
    RES_color_text,  RES_color_data,   RES_color_map,   RES_color_grid, RES_color_line,
    RES_color_wind,  RES_color_watch,  RES_color_cmap,  RES_color_cont, RES_color_fill,
    RES_color_label, RES_color_clabel, RES_device,      RES_title,      RES_icon,
    RES_background,  RES_geometry,     RES_null,
};
static_assert(std::size(res_key) == 57 + 1);

constexpr res_type res_pos[] = {RES_filenames, RES_null};

constexpr int exit_no_file = 10;

void run_nids(Domain* domain) {
    NIDS_set_ext_info(FILE_get_ext_info());
    NIDS_set_date(nullptr);
    DOM_get_region(domain, 3);
    NIDS_plot(domain);
}

void run_lev2(Domain* domain) {
    LEV2_set_date(nullptr);
    DOM_get_region(domain, 3);
    LEV2_plot(domain);
}

void run_lev2z(Domain* domain) {
    LEV2_set_compress(1);
    run_lev2(domain);
}

// One kind of radar file: how a typed name is read, what the user is asked, and
// what plots it.
struct Plotter {
    int input; // flag 14
    int type;  // of FILE_set_type
    const char* prompt;
    void (*run)(Domain* domain);
};

constexpr Plotter plotters[] = {
    {input_nids,  1, "Enter the NIDS filename: ",    run_nids },
    {input_lev2,  1, "Enter the Level 2 filename: ", run_lev2 },
    {input_lev2z, 1, "Enter the Level 2 filename: ", run_lev2z},
};

} // namespace

int main(int argc, char** argv) {
    RES_init(argc, argv, res_key, res_pos);
    if (FLAG_help() != 0) {
        std::array<char, file_name_size> name{};
        RES_get_progname(name.data());
        MESS_print(mess_print, "%s: This program plots various types of radar data\n", name.data());
        RES_help_print(name.data(), res_key, res_pos);
        ZYR_exit(0);
    }
    RAD_cvt_in_file();
    MESS_print_prog("RADAR DATA PLOTTING");

    const auto* plotter =
        std::find_if(std::begin(plotters), std::end(plotters),
                     [](const Plotter& row) { return row.input == FLAG_get(flag_input); });
    if (plotter == std::end(plotters)) {
        const char* input = RES_get("input");
        MESS_print(mess_error, "zyrrad: This build plots no input of this type: %s\n",
                   input != nullptr && *input != '\0' ? input : "radar summary");
        MESS_print(mess_error, "zyrrad: Name the type with -inp: nids, lev2 or lev2z\n");
        ZYR_exit(exit_no_file);
    }
    std::array<char, file_name_size> file{};
    FILE_set_type(plotter->type);
    FILE_get_file(plotter->prompt, file.data());
    Domain domain;
    plotter->run(&domain);
    return 0;
}
