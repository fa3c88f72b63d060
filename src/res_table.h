// res_table.h: the definition table of the settings: one row per resource, from
// which the options, the environment variables and the help follow. Facts
// alone; what reads them is res_table.cpp.
#pragma once

#include "zyrresrc.h"

#include <array>
#include <cstddef>
#include <iterator>

// What the help prints after a row's first line.
enum class HelpMore { none, levels, domain, region, device, output };

struct ResRow {
    res_type type;
    const char* def;
    const char* env;
    RES_cmd cmd;
    DEF_convert cvt;
    HelpMore more;
    const char* argument; // as the help shows it; null for rows that the program does not list
    const char* help;
};

// clang-format off
inline constexpr ResRow res_rows[] = {
    {RES_help, "help", "zyrhelp", "h", CV_help, HelpMore::none, "-h", "Print this help"},
    {RES_batch, "batch", "zyrbatch", "ba", CV_batch, HelpMore::none, "-ba", "Run program in batch mode"},
    {RES_message, "message", "zyrmess", "me", CV_mess, HelpMore::levels, "-me level", "Message level to be displayed:"},
    {RES_file_path, "file_path", "zyrfile", "fp", CV_path, HelpMore::none, "-fp path", "File path"},
    {RES_data_path, "data_path", "zyrdata", "dp", CV_path, HelpMore::none, "-dp path", "Raw data path"},
    {RES_con_path, "con_path", "zyrcon", "cp", CV_path, HelpMore::none, "-cp path", "Converted data path"},
    {RES_grid_path, "grid_path", "zyrgrid", "gp", CV_path, HelpMore::none, "-gp path", "Gridded data path"},
    {RES_raw_path, "raw_path", "zyrraw", "rp", CV_path, HelpMore::none, "-rp path", "Raw files path"},
    {RES_image_path, "image_path", "zyrimage", "ip", CV_string, HelpMore::none, "-ip path", "Image file path"},
    {RES_watch_path, "watch_path", "zyrwatch", "wp", CV_path, HelpMore::none, "-wp path", "Watch file data path"},
    {RES_text_path, "text_path", "zyrtext", "tp", CV_path, HelpMore::none, "-tp path", "Text file path"},
    {RES_model_path, "model_path", "zyrmpath", "mp", CV_path, HelpMore::none, "-mp path", "Model file path"},
    {RES_sat_path, "sat_path", "zyrsat", "sp", CV_path, HelpMore::none, "-sp path", "Satellite file path"},
    {RES_city_file, "city_file", "zyrcity", "cf", CV_string, HelpMore::none, "-cf file", "City database file name"},
    {RES_map_file, "map_file", "zyrmap", "mf", CV_string, HelpMore::none, "-mf file[,file]", "Map database files"},
    {RES_inputg, "input", "zyrin", "inp", CV_string, HelpMore::none, "-in type", "Type of input"},
    {RES_output, "output", "zyrout", "ou", CV_string, HelpMore::none, "-ou type", "Type of output"},
    {RES_name_conv, "name_conv", "zyrnameconv", "nc", CV_name, HelpMore::none, "-nc type", "Naming convention file name"},
    {RES_in_file, "in_file", "zyrinfile", "if", CV_string, HelpMore::none, "-if type", "Input data file type"},
    {RES_out_file, "out_file", "zyroutfile", "of", CV_string, HelpMore::output, "-of type", "Output file type"},
    {RES_file_param, "file_param", "zyrfileparam", "pf", CV_file_param, HelpMore::none, "-pf param", "File parameters: use,calc,over,app"},
    {RES_current, "current", "zyrcurrent", "cu", CV_current, HelpMore::none, "-cu [hour]", "Use current data file"},
    {RES_hour, "hour", "zyrhour", "ho", CV_hour, HelpMore::none, "-ho hour", "Actual hour of the file"},
    {RES_num_hour, "num_hour", "zyrnumhour", "nh", CV_string, HelpMore::none, "-nh hour[,step]", "Number of hours to view"},
    {RES_identifier, "identifier", "zyrident", "id", CV_string, HelpMore::none, "-id ident", "Specific station identifier"},
    {RES_plot_domain, "plot_domain", "zyrdomain", "pd", CV_domain, HelpMore::domain, "-pd region or [proj],clat,clon[,nx,ny][,dx,dy]", "Output plot domain"},
    {RES_grid_domain, "grid_domain", "zyrgrddomain", "gd", CV_domain, HelpMore::domain, "-gd region or [proj],clat,clon[,nx,ny][,dx,dy]", "Grid domain"},
    {RES_region, "region", "zyrregion", "re", CV_region, HelpMore::region, "-re region or [proj],clat,clon[,nx,ny][,dx,dy]", "Region to be used for plotting and gridding"},
    {RES_stat_prior, "stat_prior", "zyrprior", "pr", CV_int, HelpMore::none, "-pr prior", "Priority of stations used in the plot"},
    {RES_variable, "variable", "zyrvar", "va", CV_string, HelpMore::none, "-va var", "Variable to be plotted or contoured"},
    {RES_plot_type, "plot_type", "zyrplot", "pl", CV_plot_type, HelpMore::none, "-pl type", "Plot type: cf,lcf,ln,dln,ndln,value,none"},
    {RES_plot_scale, "plot_scale", "zyrscale", "sc", CV_float, HelpMore::none, "-sc scale", "Text and wind vector scale factor"},
    {RES_plot_format, "plot_format", "zyrformat", "fm", CV_string, HelpMore::none, "-fm format", "Numeric format"},
    {RES_plot_param, "plot_param", "zyrpltparam", "pp", CV_string, HelpMore::none, "-pp param", "Plot parameters"},
    {RES_draw, "draw", "zyrdraw", "dr", CV_draw, HelpMore::none, "-dr param[,...]", "Draw components: text,data,sum,map,none"},
    {RES_label, "label", "zyrlabel", "la", CV_string, HelpMore::none, "-la label", "Plot labels"},
    {RES_con_interval, "con_interval", "zyrconint", "in", CV_float, HelpMore::none, "-in intrvl", "Contour interval"},
    {RES_con_base, "con_base", "zyrconbase", "cb", CV_float, HelpMore::none, "-cb base", "Color fill contour/vector base value"},
    {RES_font_list, "font_list", "zyrfontlist", "fl", CV_string, HelpMore::none, "-fl list", "List of fonts to use"},
    {RES_color_table, "color_table", "zyrclrtbl", "ct", CV_string, HelpMore::none, "-ct file", "Color table file name"},
    {RES_color_text, "color_text", "zyrclrtext", "cot", CV_string, HelpMore::none, "-cot clr", "Text color"},
    {RES_color_data, "color_data", "zyrclrdata", "cod", CV_string, HelpMore::none, "-cod clr", "Data plotting color"},
    {RES_color_map, "color_map", "zyrclrmap", "com", CV_string, HelpMore::none, "-com clr", "line map color"},
    {RES_color_grid, "color_grid", "zyrclrgrid", "cogr", CV_string, HelpMore::none, "-cogr clr", "grid color"},
    {RES_color_line, "color_line", "zyrclrln", "coln", CV_string, HelpMore::none, "-coln clr", "Lat-lon line color"},
    {RES_color_wind, "color_wind", "zyrclrwind", "cowd", CV_string, HelpMore::none, "-cowd clr", "Wind barb colors"},
    {RES_color_watch, "color_watch", "zyrclrwatch", "cowa", CV_string, HelpMore::none, "-cowa sclr,tclr", "Watch box colors"},
    {RES_color_cmap, "color_cmap", "zyrclrcmap", "cocm", CV_string, HelpMore::none, "-cocm clr", "Fill map color"},
    {RES_color_cont, "color_cont", "zyrclrcont", "coco", CV_string, HelpMore::none, "-coco clr", "Line contour color"},
    {RES_color_fill, "color_fill", "zyrclrfill", "cof", CV_string, HelpMore::none, "-cof clr[,...]", "Fill contour colors"},
    {RES_color_label, "color_label", "zyrclrlab", "cola", CV_string, HelpMore::none, "-cola clr", "Line label color"},
    {RES_color_clabel, "color_clabel", "zyrclrclab", "cocl", CV_string, HelpMore::none, "-cocl clr", "Fill label color"},
    {RES_device, "device", "zyrdevice", "de", CV_device, HelpMore::device, "-de dev[,name]", "Output device: d,p,q,w,m"},
    {RES_title, "title", "zyrtitle", "ti", CV_string, HelpMore::none, "-ti title", "Window title"},
    {RES_icon, "icon", "zyricon", "ic", CV_bool, HelpMore::none, "-ic", "Open window iconified"},
    {RES_background, "background", "zyrback", "bg", CV_string, HelpMore::none, "-bg clr", "Background color"},
    {RES_geometry, "geometry", "zyrgeometry", "ge", CV_string, HelpMore::none, "-ge wxh+x+y", "Window geometry"},
    {RES_filenames, "filename", "zyrfilename", 10, CV_strings, HelpMore::none, "file [file...]", "Input file names"},
    {RES_ingestor, "ingestor", "zyringestor", "di", CV_ingestor, HelpMore::none, nullptr, nullptr},
    {RES_in_files, "in_file", "zyrinfile", "if", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_input, "input", "zyrin", "in", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_bull_file, "bull_file", "zyrbullfile", "bf", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_log_file, "log_file", "zyrlog", "lf", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_decode_hour, "decode_hour", "zyrdecode", "dh", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_model, "model", "zyrmodel", "mo", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_grid_type, "grid_type", "zyrgridtype", "gt", CV_int, HelpMore::none, nullptr, nullptr},
    {RES_grid_num, "grid_num", "zyrgridnum", "gn", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_product, "product", "zyrproduct", "ph", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_forecast, "forecast", "zyrforecast", "fc", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_state, "state", "zyrstate", "st", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_time, "time", "zyrtime", "ft", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_level, "level", "zyrlevel", "le", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_object_param, "object_param", "zyrobject", "oa", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_parameter, "parameter", "zyrparam", "pa", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_table, "table", "zyrtable", "ta", CV_bool, HelpMore::none, nullptr, nullptr},
    {RES_color_front, "color_front", "zyrclrfront", "cofr", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_cloud, "color_cloud", "zyrclrcld", "cocd", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_wx, "color_wx", "zyrclrwx", "cowx", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_pop, "color_pop", "zyrclrpop", "copp", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_sound, "color_sound", "zyrclrsnd", "cosd", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_therm, "color_therm", "zyrclrtherm", "coth", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_thrmtxt, "color_thrmtxt", "zyrclrthtxt", "cott", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_hodo, "color_hodo", "zyrclrhodo", "coh", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_color_hodtxt, "color_hodtxt", "zyrclrhdtxt", "coht", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_window_num, "window_num", "zyrwindownum", "wn", CV_int, HelpMore::none, nullptr, nullptr},
    {RES_command, "command", "zyrcommand", 10, CV_strings, HelpMore::none, nullptr, nullptr},
    {RES_commands, "command", "zyrcommand", "cd", CV_string, HelpMore::none, nullptr, nullptr},
    {RES_filename, "filename", "zyrfilename", 1, CV_strcpy, HelpMore::none, nullptr, nullptr},
    {RES_values, "value", "zyrvalue", 10, CV_strings, HelpMore::none, nullptr, nullptr},
};
// clang-format on

// --- What the program lists ---------------------------------------------------

// Keyed rows have an option; the others take arguments by position.
constexpr bool res_is_listed(const ResRow& row, bool keyed) {
    return row.argument != nullptr && (row.cmd.text != nullptr) == keyed;
}

constexpr std::size_t res_count_listed(bool keyed) {
    std::size_t count = 0;
    for (const ResRow& row : res_rows) {
        count += res_is_listed(row, keyed) ? 1 : 0;
    }
    return count;
}

// The listed types in the order of the help, closed by RES_null.
template <bool keyed> constexpr auto res_listed() {
    std::array<res_type, res_count_listed(keyed) + 1> types{};
    std::size_t next = 0;
    for (const ResRow& row : res_rows) {
        if (res_is_listed(row, keyed)) {
            types[next++] = row.type;
        }
    }
    return types;
}

constexpr bool res_rows_once() {
    for (const ResRow* row = std::begin(res_rows); row != std::end(res_rows); ++row) {
        for (const ResRow* other = row + 1; other != std::end(res_rows); ++other) {
            if (row->type == other->type) {
                return false;
            }
        }
    }
    return true;
}
static_assert(res_rows_once());

// Null if the type has no row.
const ResRow* res_find_row(res_type type);
