// resrc.cpp: the resource database. It owns the one list of settings and the
// definition table; RES_init fills both and must run before anything is asked.
// The same table gives the options, the environment variables and the help.
#include "zyrresrc.h"

#include "date.h"
#include "def_read.h"
#include "files.h"
#include "mqueue.h"
#include "region.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>

namespace {

constexpr int max_rows = 74;
constexpr int all_positions = 10; // the row that takes every positional argument
constexpr const char* built_in_search = ".:/home/zyr/etc:/usr/local/zyr/etc";
constexpr unsigned trace_level = 0x80000000;

// --- The vocabulary ---------------------------------------------------------

// What the help prints behind a row's first line.
enum More { more_none, more_levels, more_domain, more_region };

struct Row {
    res_type type;
    const char* def;
    const char* env;
    RES_cmd cmd;
    DEF_convert cvt;
    More more;
    const char* argument; // as the help shows it; null for rows that we do not list
    const char* help;
};

// One row per resource. The help's argument is not always the option: `-in`
// is con_interval, and `input` is reached by `-inp`.
// clang-format off
constexpr Row vocabulary[] = {
    {RES_help, "help", "zyrhelp", "h", CV_help, more_none, "-h", "Print this help"},
    {RES_batch, "batch", "zyrbatch", "ba", CV_batch, more_none, "-ba", "Run program in batch mode"},
    {RES_message, "message", "zyrmess", "me", CV_mess, more_levels, "-me level", "Message level to be displayed:"},
    {RES_file_path, "file_path", "zyrfile", "fp", CV_path, more_none, "-fp path", "File path"},
    {RES_data_path, "data_path", "zyrdata", "dp", CV_path, more_none, "-dp path", "Raw data path"},
    {RES_con_path, "con_path", "zyrcon", "cp", CV_path, more_none, "-cp path", "Converted data path"},
    {RES_grid_path, "grid_path", "zyrgrid", "gp", CV_path, more_none, "-gp path", "Gridded data path"},
    {RES_raw_path, "raw_path", "zyrraw", "rp", CV_path, more_none, "-rp path", "Raw files path"},
    {RES_image_path, "image_path", "zyrimage", "ip", CV_string, more_none, "-ip path", "Image file path"},
    {RES_watch_path, "watch_path", "zyrwatch", "wp", CV_path, more_none, "-wp path", "Watch file data path"},
    {RES_text_path, "text_path", "zyrtext", "tp", CV_path, more_none, "-tp path", "Text file path"},
    {RES_model_path, "model_path", "zyrmpath", "mp", CV_path, more_none, "-mp path", "Model file path"},
    {RES_sat_path, "sat_path", "zyrsat", "sp", CV_path, more_none, "-sp path", "Satellite file path"},
    {RES_city_file, "city_file", "zyrcity", "cf", CV_string, more_none, "-cf file", "City database file name"},
    {RES_map_file, "map_file", "zyrmap", "mf", CV_string, more_none, "-mf file[,file]", "Map database files"},
    {RES_inputg, "input", "zyrin", "inp", CV_string, more_none, "-in type", "Type of input"},
    {RES_output, "output", "zyrout", "ou", CV_string, more_none, "-ou type", "Type of output"},
    {RES_name_conv, "name_conv", "zyrnameconv", "nc", CV_name, more_none, "-nc type", "Naming convention file name"},
    {RES_in_file, "in_file", "zyrinfile", "if", CV_string, more_none, "-if type", "Input data file type"},
    {RES_out_file, "out_file", "zyroutfile", "of", CV_string, more_none, "-of type", "Output file type"},
    {RES_file_param, "file_param", "zyrfileparam", "pf", CV_file_param, more_none, "-pf param", "File parameters: use,calc,over,app"},
    {RES_current, "current", "zyrcurrent", "cu", CV_current, more_none, "-cu [hour]", "Use current data file"},
    {RES_hour, "hour", "zyrhour", "ho", CV_hour, more_none, "-ho hour", "Actual hour of the file"},
    {RES_num_hour, "num_hour", "zyrnumhour", "nh", CV_string, more_none, "-nh hour[,step]", "Number of hours to view"},
    {RES_identifier, "identifier", "zyrident", "id", CV_string, more_none, "-id ident", "Specific station identifier"},
    {RES_plot_domain, "plot_domain", "zyrdomain", "pd", CV_domain, more_domain, "-pd region or [proj],clat,clon[,nx,ny][,dx,dy]", "Output plot domain"},
    {RES_grid_domain, "grid_domain", "zyrgrddomain", "gd", CV_domain, more_domain, "-gd region or [proj],clat,clon[,nx,ny][,dx,dy]", "Grid domain"},
    {RES_region, "region", "zyrregion", "re", CV_region, more_region, "-re region or [proj],clat,clon[,nx,ny][,dx,dy]", "Region to be used for plotting and gridding"},
    {RES_stat_prior, "stat_prior", "zyrprior", "pr", CV_int, more_none, "-pr prior", "Priority of stations used in the plot"},
    {RES_variable, "variable", "zyrvar", "va", CV_string, more_none, "-va var", "Variable to be plotted or contoured"},
    {RES_plot_type, "plot_type", "zyrplot", "pl", CV_plot_type, more_none, "-pl type", "Plot type: cf,lcf,ln,dln,ndln,value,none"},
    {RES_plot_scale, "plot_scale", "zyrscale", "sc", CV_float, more_none, "-sc scale", "Text and wind vector scale factor"},
    {RES_plot_format, "plot_format", "zyrformat", "fm", CV_string, more_none, "-fm format", "Numeric format"},
    {RES_plot_param, "plot_param", "zyrpltparam", "pp", CV_string, more_none, "-pp param", "Plot parameters"},
    {RES_draw, "draw", "zyrdraw", "dr", CV_draw, more_none, "-dr param[,...]", "Draw components: text,data,sum,map,none"},
    {RES_label, "label", "zyrlabel", "la", CV_string, more_none, "-la label", "Plot labels"},
    {RES_con_interval, "con_interval", "zyrconint", "in", CV_float, more_none, "-in intrvl", "Contour interval"},
    {RES_con_base, "con_base", "zyrconbase", "cb", CV_float, more_none, "-cb base", "Color fill contour/vector base value"},
    {RES_font_list, "font_list", "zyrfontlist", "fl", CV_string, more_none, "-fl list", "List of fonts to use"},
    {RES_color_table, "color_table", "zyrclrtbl", "ct", CV_string, more_none, "-ct file", "Color table file name"},
    {RES_color_text, "color_text", "zyrclrtext", "cot", CV_string, more_none, "-cot clr", "Text color"},
    {RES_color_data, "color_data", "zyrclrdata", "cod", CV_string, more_none, "-cod clr", "Data plotting color"},
    {RES_color_map, "color_map", "zyrclrmap", "com", CV_string, more_none, "-com clr", "line map color"},
    {RES_color_grid, "color_grid", "zyrclrgrid", "cogr", CV_string, more_none, "-cogr clr", "grid color"},
    {RES_color_line, "color_line", "zyrclrln", "coln", CV_string, more_none, "-coln clr", "Lat-lon line color"},
    {RES_color_wind, "color_wind", "zyrclrwind", "cowd", CV_string, more_none, "-cowd clr", "Wind barb colors"},
    {RES_color_watch, "color_watch", "zyrclrwatch", "cowa", CV_string, more_none, "-cowa sclr,tclr", "Watch box colors"},
    {RES_color_cmap, "color_cmap", "zyrclrcmap", "cocm", CV_string, more_none, "-cocm clr", "Fill map color"},
    {RES_color_cont, "color_cont", "zyrclrcont", "coco", CV_string, more_none, "-coco clr", "Line contour color"},
    {RES_color_fill, "color_fill", "zyrclrfill", "cof", CV_string, more_none, "-cof clr[,...]", "Fill contour colors"},
    {RES_color_label, "color_label", "zyrclrlab", "cola", CV_string, more_none, "-cola clr", "Line label color"},
    {RES_color_clabel, "color_clabel", "zyrclrclab", "cocl", CV_string, more_none, "-cocl clr", "Fill label color"},
    {RES_device, "device", "zyrdevice", "de", CV_device, more_none, "-de dev[,name]", "Output device: d,p,q,w,m"},
    {RES_title, "title", "zyrtitle", "ti", CV_string, more_none, "-ti title", "Window title"},
    {RES_icon, "icon", "zyricon", "ic", CV_bool, more_none, "-ic", "Open window iconified"},
    {RES_background, "background", "zyrback", "bg", CV_string, more_none, "-bg clr", "Background color"},
    {RES_geometry, "geometry", "zyrgeometry", "ge", CV_string, more_none, "-ge wxh+x+y", "Window geometry"},
    {RES_filenames, "filename", "zyrfilename", 10, CV_strings, more_none, "file [file...]", "Input file names"},
    {RES_ingestor, "ingestor", "zyringestor", "di", CV_ingestor, more_none, nullptr, nullptr},
    {RES_in_files, "in_file", "zyrinfile", "if", CV_string, more_none, nullptr, nullptr},
    {RES_input, "input", "zyrin", "in", CV_string, more_none, nullptr, nullptr},
    {RES_bull_file, "bull_file", "zyrbullfile", "bf", CV_string, more_none, nullptr, nullptr},
    {RES_log_file, "log_file", "zyrlog", "lf", CV_string, more_none, nullptr, nullptr},
    {RES_decode_hour, "decode_hour", "zyrdecode", "dh", CV_string, more_none, nullptr, nullptr},
    {RES_model, "model", "zyrmodel", "mo", CV_string, more_none, nullptr, nullptr},
    {RES_grid_type, "grid_type", "zyrgridtype", "gt", CV_int, more_none, nullptr, nullptr},
    {RES_grid_num, "grid_num", "zyrgridnum", "gn", CV_string, more_none, nullptr, nullptr},
    {RES_product, "product", "zyrproduct", "ph", CV_string, more_none, nullptr, nullptr},
    {RES_forecast, "forecast", "zyrforecast", "fc", CV_string, more_none, nullptr, nullptr},
    {RES_state, "state", "zyrstate", "st", CV_string, more_none, nullptr, nullptr},
    {RES_time, "time", "zyrtime", "ft", CV_string, more_none, nullptr, nullptr},
    {RES_level, "level", "zyrlevel", "le", CV_string, more_none, nullptr, nullptr},
    {RES_object_param, "object_param", "zyrobject", "oa", CV_string, more_none, nullptr, nullptr},
    {RES_parameter, "parameter", "zyrparam", "pa", CV_string, more_none, nullptr, nullptr},
    {RES_table, "table", "zyrtable", "ta", CV_bool, more_none, nullptr, nullptr},
    {RES_color_front, "color_front", "zyrclrfront", "cofr", CV_string, more_none, nullptr, nullptr},
    {RES_color_cloud, "color_cloud", "zyrclrcld", "cocd", CV_string, more_none, nullptr, nullptr},
    {RES_color_wx, "color_wx", "zyrclrwx", "cowx", CV_string, more_none, nullptr, nullptr},
    {RES_color_pop, "color_pop", "zyrclrpop", "copp", CV_string, more_none, nullptr, nullptr},
    {RES_color_sound, "color_sound", "zyrclrsnd", "cosd", CV_string, more_none, nullptr, nullptr},
    {RES_color_therm, "color_therm", "zyrclrtherm", "coth", CV_string, more_none, nullptr, nullptr},
    {RES_color_thrmtxt, "color_thrmtxt", "zyrclrthtxt", "cott", CV_string, more_none, nullptr, nullptr},
    {RES_color_hodo, "color_hodo", "zyrclrhodo", "coh", CV_string, more_none, nullptr, nullptr},
    {RES_color_hodtxt, "color_hodtxt", "zyrclrhdtxt", "coht", CV_string, more_none, nullptr, nullptr},
    {RES_window_num, "window_num", "zyrwindownum", "wn", CV_int, more_none, nullptr, nullptr},
    {RES_command, "command", "zyrcommand", 10, CV_strings, more_none, nullptr, nullptr},
    {RES_commands, "command", "zyrcommand", "cd", CV_string, more_none, nullptr, nullptr},
    {RES_filename, "filename", "zyrfilename", 1, CV_strcpy, more_none, nullptr, nullptr},
    {RES_values, "value", "zyrvalue", 10, CV_strings, more_none, nullptr, nullptr},};
// clang-format on
static_assert(std::size(vocabulary) == 57 + 1 + 31);

const Row* find_row(res_type type) {
    const auto* row = std::find_if(std::begin(vocabulary), std::end(vocabulary),
                                   [&](const Row& r) { return r.type == type; });
    return row == std::end(vocabulary) ? nullptr : row;
}

struct Keyword {
    const char* word;
    int value;
};

constexpr Keyword plot_types[] = {
    {"raw",    0 },
    {"ln",     12},
    {"dln",    13},
    {"ndln",   14},
    {"cf",     15},
    {"lcf",    16},
    {"value",  17},
    {"gvalue", 17},
    {"vect",   21},
    {"barb",   22},
    {"strm",   23},
    {"stream", 23},
    {"an",     54},
    {"number", 54},
    {"pm",     55},
    {"stuve",  61},
    {"skewt",  62},
    {"ema",    63},
    {"teph",   64},
    {"rteph",  65},
    {"hodo",   69},
    {"none",   99},
};

constexpr Keyword file_params[] = {
    {"use",    3},
    {"reuse",  3},
    {"over",   1},
    {"calc",   1},
    {"recalc", 1},
    {"app",    2},
};

constexpr int switch_border = 11;
constexpr int switch_all = 12;
constexpr Keyword draw_switches[] = {
    {"text",    0            },
    {"text_ul", 1            },
    {"text_uc", 2            },
    {"text_ur", 3            },
    {"text_ll", 4            },
    {"text_lc", 5            },
    {"text_lr", 6            },
    {"data",    7            },
    {"map",     8            },
    {"grid",    9            },
    {"sum",     10           },
    {"bord",    switch_border},
};

constexpr Keyword bool_words[] = {
    {"true",  1},
    {"on",    1},
    {"yes",   1},
    {"false", 0},
    {"off",   0},
    {"no",    0},
};

template <std::size_t N> const Keyword* find_word(const Keyword (&table)[N], const char* word) {
    const auto* row = std::find_if(std::begin(table), std::end(table),
                                   [&](const Keyword& k) { return stricmp(k.word, word) == 0; });
    return row == std::end(table) ? nullptr : row;
}

// --- State ------------------------------------------------------------------

// One resource. Texts are owned and live as long as the run.
struct res_obj {
    int index = missing; // row of the definition table
    char* name = nullptr;
    char* data = nullptr;   // null: given without a value
    std::size_t length = 0; // of `data`
    std::size_t room = 0;   // what `data` can hold; RES_append leaves some to grow
    DEF_convert cvt = CV_none;
    res_obj* next = nullptr;
};

struct State {
    res_obj root_res;           // head of the list, itself no resource
    res_obj* last = &root_res;  // tail
    res_obj* retired = nullptr; // holds replaced values, which callers may still point at
    int clargc = 0;
    char** clargv = nullptr;
    std::array<RES_defobj, max_rows + 1> res_table{};
    std::array<char, 4> spare_name{"ZYR"}; // program name when no memory is left
    // The loop window.
    int queue = missing;
    int conn_id = missing; // set: connected
};
State state;

// A copy of `length` characters with room for `room` in all, if that is more.
char* new_text(const char* text, std::size_t length, std::size_t room = 0) {
    char* copy = new (std::nothrow) char[std::max(length, room) + 1];
    if (copy != nullptr) {
        std::memcpy(copy, text, length);
        copy[length] = '\0';
    }
    return copy;
}

res_obj* find_resource(const char* name) {
    for (res_obj* entry = state.root_res.next; entry != nullptr; entry = entry->next) {
        if (std::strcmp(entry->name, name) == 0) {
            return entry;
        }
    }
    return nullptr;
}

// Takes `data` (may be null) as the entry's value and keeps the old text.
int replace_data(res_obj* entry, char* data, std::size_t length, std::size_t room) {
    if (entry->data != nullptr) {
        auto* keeper = new (std::nothrow) res_obj;
        if (keeper == nullptr) {
            delete[] data;
            return -1;
        }
        keeper->data = entry->data;
        keeper->next = state.retired;
        state.retired = keeper;
    }
    entry->data = data;
    entry->length = length;
    entry->room = room;
    return 0;
}

// --- Conversions ------------------------------------------------------------

int clamp_int(long value) {
    return static_cast<int>(
        std::clamp<long>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

bool is_digit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

bool is_letter(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

void set_plot_type(const char* text) {
    if (const Keyword* row = find_word(plot_types, text)) {
        FLAG_set(flag_plot_type, row->value);
    }
}

void set_file_param(const char* text) {
    if (const Keyword* row = find_word(file_params, text)) {
        FLAG_set(flag_file_param, row->value);
    }
}

void set_draw_item(const char* item) {
    const int on = *item == '-' ? 0 : 1;
    if (*item == '-' || *item == '+') {
        ++item;
    }
    if (stricmp(item, "none") == 0) {
        FLAG_setplot(switch_all, 0);
    } else if (stricmp(item, "all") == 0) {
        FLAG_setplot(switch_all, 1);
    } else if (const Keyword* row = find_word(draw_switches, item)) {
        FLAG_setplot(row->value, on);
        if (row->value == 0) { // "text" takes the border along
            FLAG_setplot(switch_border, on);
        }
    }
}

// A plain list names what is drawn; one that begins with a sign edits the default.
void set_draw(const char* text) {
    int count = 0;
    char** items = nullptr;
    parse_string(text, ',', &count, &items);
    if (count > 0 && *items[0] != '+' && *items[0] != '-') {
        FLAG_resetplot(0);
    }
    for (int i = 0; i < count; ++i) {
        set_draw_item(items[i]);
    }
    free_parsed_array(count, items);
}

// Fields of the text of `hour`.
struct HourText {
    const char* at;

    // Up to `width` digits; false if a digit is wanting at the first place.
    bool digits(int width, int& field) {
        if (!is_digit(*at)) {
            return false;
        }
        int value = 0;
        for (; width > 0 && is_digit(*at); --width, ++at) {
            value = 10 * value + (*at - '0');
        }
        field = value;
        return width == 0;
    }
    bool number(int& field) {
        char* end = nullptr;
        const long value = std::strtol(at, &end, 10);
        if (end == at) {
            return false;
        }
        constexpr long limit = 99999;
        field = static_cast<int>(std::clamp(value, -limit, limit));
        at = end;
        return true;
    }
    bool skip(char c) {
        const bool there = *at == c;
        at += there ? 1 : 0;
        return there;
    }
};

// "H:M", with "-0:M" for minutes back.
Date clock_text(const char* text) {
    Date date;
    HourText in{text};
    if (in.number(date.hour) && in.skip(':')) {
        in.number(date.min);
    }
    if (*text == '-' && date.hour == 0) {
        date.hour = missing;
        date.min = is_set(date.min) ? -date.min : missing;
    }
    return date;
}

void store_int(const char* value, int* out) {
    if (is_digit(value[0]) || value[0] == '-' || value[0] == '+') {
        char* end = nullptr;
        if (value[1] == 'x' || value[1] == 'X') {
            const unsigned long number = std::strtoul(value, &end, 16);
            if (end != value) {
                *out = static_cast<int>(static_cast<std::uint32_t>(number));
            }
            return;
        }
        const long number = std::strtol(value, &end, 10);
        if (end != value) {
            *out = clamp_int(number);
        }
    }
}

void store_float(const char* value, float* out) {
    char* end = nullptr;
    const double number = std::strtod(value, &end);
    if (end != value && std::isfinite(number)) {
        constexpr double limit = std::numeric_limits<float>::max();
        *out = static_cast<float>(std::clamp(number, -limit, limit));
    }
}

void store_path(const char* value, char** out) {
    const bool none = stricmp(value, "none") == 0;
    const std::size_t length = none ? 0 : std::strlen(value);
    char* path = new (std::nothrow) char[length + 2]; // room for the closing "/"
    if (path == nullptr) {
        return;
    }
    std::memcpy(path, value, length);
    path[length] = '\0';
    FILE_add_path_delim(path);
    *out = path;
}

void store_device(const char* value, const char** out) {
    int count = 0;
    char** items = nullptr;
    parse_string(value, ',', &count, &items);
    FLAG_set(flag_device, count > 0 ? RES_set_device(items[0]) : 1);
    if (count > 1) {
        *out = std::strchr(value, ',') + 1;
    }
    free_parsed_array(count, items);
}

// The conversions that store. Returns 1 if `cvt` is one of them.
void store(const char* value, void* out, DEF_convert cvt) {
    switch (cvt) {
    case CV_int:
        store_int(value, static_cast<int*>(out));
        break;
    case CV_short:
        if (is_digit(*value)) {
            *static_cast<short*>(out) = static_cast<short>(std::clamp<long>(
                std::strtol(value, nullptr, 10), 0, std::numeric_limits<short>::max()));
        }
        break;
    case CV_long:
        if (is_digit(*value)) {
            *static_cast<long*>(out) = std::strtol(value, nullptr, 10);
        }
        break;
    case CV_color: {
        char* end = nullptr;
        const long number = std::strtol(value, &end, 10);
        if (end != value) {
            *static_cast<long*>(out) = number;
        }
        break;
    }
    case CV_float:
        store_float(value, static_cast<float*>(out));
        break;
    case CV_string:
        *static_cast<const char**>(out) = value;
        break;
    case CV_strcpy:
        if (copy_text(static_cast<char*>(out), def_value_size, value) != 0) {
            MESS_print(mess_warn, "RES_conv_data: Value cut: %s\n", value);
        }
        break;
    case CV_path:
        store_path(value, static_cast<char**>(out));
        break;
    case CV_region:
    case CV_domain:
        DOM_decode(value, static_cast<Domain*>(out));
        break;
    case CV_device:
        store_device(value, static_cast<const char**>(out));
        break;
    default:
        break;
    }
}

// The conversions that act and need no `out`. Returns whether `cvt` is one.
bool act(const char* value, DEF_convert cvt) {
    switch (cvt) {
    case CV_mess:
        MESS_set_str(value);
        return true;
    case CV_hour: {
        const Date date = RES_dec_hour(value);
        FILE_set_time(&date);
        return true;
    }
    case CV_file_param:
        set_file_param(value);
        return true;
    case CV_plot_type:
        set_plot_type(value);
        return true;
    case CV_draw:
        set_draw(value);
        return true;
    case CV_none:
    case CV_current:
    case CV_name:
    case CV_ingestor:
    case CV_strings:
        return true; // read as text
    default:
        return false;
    }
}

// --- The loop window --------------------------------------------------------

bool connected() {
    return is_set(state.conn_id);
}

// Reads replies up to the one that ends an answer, passing over the others.
void await_reply() {
    std::array<char, mq_text_size> text{};
    while (MQ_get(state.queue, state.conn_id, text.data()) == 0) {
    }
}

// Returns whether an answer is on its way.
bool send_value(const char* def, const char* value) {
    return MQ_put(state.queue, state.conn_id, "set res %s %s", def,
                  value != nullptr ? value : "") >= 0;
}

// Takes the answer to one query. Returns whether it brought a value.
bool take_value(int index, const RES_defobj& row) {
    std::array<char, mq_text_size> text{};
    bool arrived = false;
    while (MQ_get(state.queue, state.conn_id, text.data()) == 0) {
        if (text[0] == '\0' || text[0] == '!' || text[0] == '\n') {
            continue;
        }
        text[std::strlen(text.data()) - 1] = '\0'; // the line end
        RES_new(index, row.def, text.data(), row.cvt);
        arrived = true;
    }
    return arrived;
}

// Brings both sides to the same settings: the window's win, ours fill its gaps.
void exchange_values(const RES_defobj* def_table) {
    int asked = 0;
    while (def_table[asked].def != nullptr &&
           MQ_put(state.queue, state.conn_id, "query res %s", def_table[asked].def) >= 0) {
        ++asked;
    }
    int pushed = 0;
    for (int i = 0; i < asked; ++i) {
        const RES_defobj& row = def_table[i];
        if (take_value(i, row)) {
            continue;
        }
        const res_obj* held = find_resource(row.def);
        if (held != nullptr && send_value(row.def, held->data)) {
            ++pushed;
        }
    }
    for (; pushed > 0; --pushed) {
        await_reply();
    }
}

// `number` is the text behind the "#" of a search-list item.
void link_window(const char* number, const RES_defobj* def_table) {
    char* end = nullptr;
    const long value = std::strtol(number, &end, 10);
    const int queue = end == number ? -1 : MQ_open(clamp_int(value));
    if (queue == -1) {
        MESS_print(mess_warn, "ZYRloop window: %s not running or no message queue exists\n",
                   number);
        return;
    }
    const int conn_id = MQ_connect(queue);
    if (conn_id == -1) {
        MESS_print(mess_warn, "ZYRloop window: %s unable to connect\n", number);
        return;
    }
    state.queue = queue;
    state.conn_id = conn_id;
    exchange_values(def_table);
}

void leave_window() {
    if (connected() && MQ_put(state.queue, state.conn_id, "quit") >= 0) {
        await_reply();
    }
    state.conn_id = missing;
}

// --- Defaults files and environment -----------------------------------------

void store_setting(const char* key, const char* value, const RES_defobj* def_table) {
    bool fits = false;
    for (int i = 0; def_table[i].def != nullptr; ++i) {
        const RES_defobj& row = def_table[i];
        if (*row.def != '\0' && DEF_cmp(row.def, key) != 0) {
            RES_new(i, row.def, value, row.cvt);
            MESS_print(trace_level, "RESRC: %s=%s\n", row.def, value);
            fits = true;
        }
    }
    std::array<char, res_name_size> name{};
    if (!fits && DEF_valid(key) != 0 && DEF_parse_name(key, name.data()) != 0) {
        RES_new(missing, name.data(), value, CV_string);
    }
}

void read_defaults(const char* item, const RES_defobj* def_table) {
    std::array<char, def_line_size> key{};
    std::array<char, def_value_size> value{};
    DEF_open(item); // a missing file yields no setting
    while (DEF_get(key.data(), value.data()) == 1) {
        store_setting(key.data(), value.data(), def_table);
    }
    DEF_close();
}

void read_search_list(const RES_defobj* def_table) {
    const char* list = RES_get("default");
    int count = 0;
    char** items = nullptr;
    parse_string(list != nullptr ? list : built_in_search, ':', &count, &items);
    DEF_clr_tag();
    if (count == 0) {
        read_defaults(nullptr, def_table);
    }
    for (int i = 0; i < count; ++i) {
        const char* item = items[i];
        if (*item == '+') {
            if (DEF_tag(item + 1) != 0) {
                MESS_print(mess_warn, "RES_decode: Too many tags: %s\n", item + 1);
            }
        } else if (*item == '#') {
            link_window(item + 1, def_table);
        } else {
            read_defaults(item, def_table);
        }
    }
    free_parsed_array(count, items);
}

void read_environment(const RES_defobj* def_table) {
    std::array<char, def_value_size> value{};
    for (int i = 0; def_table[i].def != nullptr; ++i) {
        const RES_defobj& row = def_table[i];
        if (*row.def != '\0' && DEF_env(row.def, row.env, value.data()) != 0) {
            RES_new(i, row.def, value.data(), row.cvt);
        }
    }
}

// --- Command line -----------------------------------------------------------

bool is_short_option(const char* arg) {
    return arg[0] == '-' && is_letter(arg[1]);
}

bool is_option(const char* arg) {
    return is_short_option(arg) || (arg[0] == '-' && arg[1] == '-' && is_letter(arg[2]));
}

struct Option {
    std::array<char, res_name_size> name{};
    const char* value = nullptr;
    bool from_next = false; // the value is the next argument
};

// Splits argument `i` into name and value. A value is what follows "=", else
// the next argument unless that is an option; so "-90,30" is a value.
Option read_option(int i, int argc, char** argv) {
    Option option;
    const char* text = argv[i] + (argv[i][1] == '-' ? 2 : 1);
    const char* equals = std::strchr(text, '=');
    const std::size_t length =
        equals != nullptr ? static_cast<std::size_t>(equals - text) : std::strlen(text);
    const std::size_t kept = std::min(length, option.name.size() - 1);
    std::memcpy(option.name.data(), text, kept);
    if (equals != nullptr) {
        option.value = equals + 1;
    } else if (i + 1 < argc && !is_short_option(argv[i + 1])) {
        option.value = argv[i + 1];
        option.from_next = true;
    }
    return option;
}

bool begins(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

bool begins_any_case(const char* text, const char* start) {
    return strnicmp(text, start, static_cast<int>(std::strlen(start))) == 0;
}

// `name` and `default` decide which defaults apply: they are taken first.
void scan_pseudo(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (!is_short_option(argv[i])) {
            continue;
        }
        const Option option = read_option(i, argc, argv);
        const char* name = option.name.data();
        if (option.value != nullptr && begins("name", name)) {
            RES_new(missing, "name", option.value, CV_string);
            DEF_name(option.value);
        } else if (option.value != nullptr && (begins(name, "default") || begins(name, "df"))) {
            RES_new(missing, "default", option.value, CV_string);
        }
        i += option.from_next ? 1 : 0;
    }
}

bool is_pseudo(const char* name) {
    return begins_any_case("name", name) || begins_any_case(name, "default") ||
           begins_any_case(name, "df");
}

enum Pass { by_option, by_name, by_beginning };

bool fits(Pass pass, const char* name, const RES_defobj& row) {
    switch (pass) {
    case by_option:
        return stricmp(name, row.cmd.text) == 0;
    case by_name:
        return stricmp(name, row.def) == 0;
    case by_beginning:
        return begins_any_case(row.def, name);
    }
    return false;
}

// Row of an option: by abbreviation, by full name, by the beginning of a name,
// in this order. Returns `missing` if nothing fits.
int find_option(const char* name, const RES_defobj* def_table) {
    for (const Pass pass : {by_option, by_name, by_beginning}) {
        for (int i = 0; def_table[i].def != nullptr; ++i) {
            const RES_defobj& row = def_table[i];
            if (row.cmd.text != nullptr && *row.def != '\0' && fits(pass, name, row)) {
                return i;
            }
        }
    }
    return missing;
}

bool takes_no_argument(DEF_convert cvt) {
    return cvt == CV_bool || cvt == CV_batch || cvt == CV_help;
}

// Returns how many arguments behind the option it used up.
int take_option(Option option, const RES_defobj* def_table) {
    const char* name = option.name.data();
    if (is_pseudo(name)) {
        return option.from_next ? 1 : 0;
    }
    const int index = find_option(name, def_table);
    if (!is_set(index)) {
        RES_new(missing, name, option.value, CV_string);
        return option.from_next ? 1 : 0;
    }
    const RES_defobj& row = def_table[index];
    if (option.from_next && takes_no_argument(row.cvt)) {
        option.value = nullptr;
        option.from_next = false;
    }
    RES_new(index, row.def, option.value, row.cvt);
    if (connected() && send_value(row.def, option.value)) {
        await_reply();
    }
    return option.from_next ? 1 : 0;
}

void take_position(int count, const char* arg, const RES_defobj* def_table) {
    int index = missing;
    for (int i = 0; def_table[i].def != nullptr; ++i) {
        const RES_cmd& cmd = def_table[i].cmd;
        if (cmd.text != nullptr) {
            continue;
        }
        if (cmd.position == count) {
            index = i;
            break;
        }
        if (cmd.position == all_positions) {
            index = i;
        }
    }
    if (!is_set(index)) {
        return;
    }
    const RES_defobj& row = def_table[index];
    if (row.cmd.position == all_positions && count > 1) {
        RES_append(index, row.def, arg, row.cvt);
    } else {
        RES_new(index, row.def, arg, row.cvt);
    }
}

void read_arguments(int argc, char** argv, const RES_defobj* def_table) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0) {
            continue;
        }
        if (is_option(argv[i])) {
            i += take_option(read_option(i, argc, argv), def_table);
        } else {
            take_position(++count, argv[i], def_table);
        }
    }
}

// --- Help -------------------------------------------------------------------

void help_more(const Row& row) {
    switch (row.more) {
    case more_none:
        break;
    case more_levels:
        MESS_print(mess_print,
                   "               none,print,error,warn,mess,out1,*out2,out3,out4,debug\n");
        break;
    case more_domain:
    case more_region:
        MESS_print(mess_print, "             %s\n", row.help);
        MESS_print(mess_print, "               region=predefined region:\n");
        MESS_print(mess_print, "                  us,ne,at,se,mw,sp,nw,sw,etc\n");
        MESS_print(
            mess_print,
            "               proj=projection, clat=central latitude, clon=central longitude,\n");
        MESS_print(mess_print,
                   "               nx,ny=number of gridpoints and dx,dy=grid spacing\n");
        if (row.more == more_region) {
            MESS_print(mess_print, "               us,ne,at,se,mw,sp,nw,sw,var\n");
        }
        break;
    }
}

} // namespace

// --- Start ------------------------------------------------------------------

int RES_init(int argc, char** argv, const res_type* res_key, const res_type* res_pos) {
    FLAG_reset(missing);
    int rows = 0;
    for (const res_type* list : {res_key, res_pos}) {
        for (; *list != RES_null; ++list) {
            if (rows == max_rows) {
                MESS_print(mess_warn, "RES_init: Too many resources: %d\n", *list);
                break;
            }
            RES_enter(&state.res_table[rows++], *list);
        }
    }
    state.res_table[rows].def = nullptr;
    RES_decode(argc > 0 ? argv[0] : nullptr, "Zyr", argc, argv, state.res_table.data());
    // The files that lie beside an installed zyr.cfg are found wherever that is.
    if (RES_get("file_path") == nullptr && *DEF_cfg_dir() != '\0') {
        RES_put("file_path", DEF_cfg_dir());
    }
    if (const char* zone = std::getenv("zyrtz")) {
        DATE_set_TZ(zone);
    }
    return 1;
}

int RES_decode(const char* /*progname*/, const char* /*res_class*/, int argc, char** argv,
               const RES_defobj* def_table) {
    RES_setCL(argc, argv);
    DEF_prog();
    if (const char* list = std::getenv("zyrdefault")) {
        RES_new(missing, "default", list, CV_string);
    }
    scan_pseudo(argc, argv);
    read_search_list(def_table);
    read_environment(def_table);
    read_arguments(argc, argv, def_table);
    leave_window();
    for (const res_obj* entry = state.root_res.next; entry != nullptr; entry = entry->next) {
        if (is_set(entry->index)) {
            RES_conv_data(entry->data, def_table[entry->index].out, entry->cvt);
        }
    }
    return 0;
}

int RES_fill_obj(RES_defobj* row, const char* def, const char* env, RES_cmd cmd, DEF_convert cvt,
                 void* out, int* num) {
    *row = {def, env, cmd, cvt, out, num};
    return 0;
}

int RES_enter(RES_defobj* row, res_type type) {
    if (const Row* known = find_row(type)) {
        return RES_fill_obj(row, known->def, known->env, known->cmd, known->cvt, nullptr, nullptr);
    }
    MESS_print(mess_print, "%d\n", type);
    return RES_fill_obj(row, "", "", {}, CV_none, nullptr, nullptr);
}

void RES_setCL(int argc, char** argv) {
    state.clargc = argc;
    state.clargv = argv;
}

const char* RES_get_prog() {
    return state.clargc > 0 && state.clargv != nullptr ? state.clargv[0] : nullptr;
}

char* RES_get_progname(char* buffer) {
    const char* prog = RES_get_prog();
    if (prog == nullptr) {
        prog = "ZYR";
    }
    const char* slash = std::strrchr(prog, '/');
    const char* name = slash != nullptr ? slash + 1 : prog;
    if (buffer != nullptr) {
        copy_text(buffer, file_name_size, name);
        return buffer;
    }
    char* copy = new_text(name, std::strlen(name));
    return copy != nullptr ? copy : state.spare_name.data();
}

// --- The list ---------------------------------------------------------------

int RES_new(int index, const char* name, const char* data, DEF_convert cvt) {
    const std::size_t length = data != nullptr ? std::strlen(data) : 0;
    char* value = data != nullptr ? new_text(data, length) : nullptr;
    if (data != nullptr && value == nullptr) {
        return -1;
    }
    res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        entry = new (std::nothrow) res_obj;
        char* own_name = new_text(name, std::strlen(name));
        if (entry == nullptr || own_name == nullptr) {
            delete entry;
            delete[] own_name;
            delete[] value;
            return -1;
        }
        entry->name = own_name;
        state.last->next = entry;
        state.last = entry;
    }
    entry->index = index;
    entry->cvt = cvt;
    return replace_data(entry, value, length, length);
}

int RES_append(int index, const char* name, const char* data, DEF_convert cvt) {
    res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        return RES_new(index, name, data, cvt);
    }
    if (data == nullptr) {
        return 0;
    }
    if (entry->data == nullptr) {
        return RES_new(entry->index, name, data, entry->cvt);
    }
    const std::size_t more = std::strlen(data);
    const std::size_t length = entry->length + 1 + more;
    if (length > entry->room) { // twice the room, so that thousands of files cost no more than one
        const std::size_t room = 2 * length;
        char* text = new_text(entry->data, entry->length, room);
        if (text == nullptr || replace_data(entry, text, entry->length, room) != 0) {
            return -1;
        }
    }
    char* end = entry->data + entry->length;
    *end = '\n';
    std::memcpy(end + 1, data, more + 1);
    entry->length = length;
    return 0;
}

int RES_put(const char* name, const char* value) {
    return RES_new(missing, name, value, CV_string);
}

const char* RES_get(const char* name) {
    const res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        return nullptr;
    }
    return entry->data != nullptr ? entry->data : "";
}

int RES_getval(const char* name, void* out, DEF_convert cvt) {
    const res_obj* entry = find_resource(name);
    return entry != nullptr && out != nullptr ? RES_conv_data(entry->data, out, cvt) : 0;
}

int RES_getvals(const char* name, int* count, char*** array) {
    *count = 0;
    *array = nullptr;
    if (const res_obj* entry = find_resource(name)) {
        parse_string(entry->data, entry->cvt == CV_strings ? '\n' : ',', count, array);
    }
    return *count;
}

int RES_list() {
    constexpr unsigned list_level = 8;
    for (const res_obj* entry = state.root_res.next; entry != nullptr; entry = entry->next) {
        if (entry->data != nullptr) {
            MESS_print(list_level, "%s: %s\n", entry->name, entry->data);
        } else {
            MESS_print(list_level, "%s:\n", entry->name);
        }
    }
    return 0;
}

int RES_conv_data(const char* value, void* out, DEF_convert cvt) {
    if (cvt == CV_batch) {
        FLAG_set_batch(1);
        if (MESS_check_set() == 0) {
            MESS_set(0, mess_print | mess_error | mess_warn);
        }
        return 1;
    }
    if (cvt == CV_help) {
        FLAG_set(flag_help, 1);
        return 1;
    }
    if (cvt == CV_bool && out != nullptr) {
        const Keyword* word = find_word(bool_words, value != nullptr ? value : "on");
        if (word != nullptr) {
            *static_cast<int*>(out) = word->value;
        }
        return 1;
    }
    if (value == nullptr) {
        return 0;
    }
    if (act(value, cvt)) {
        return 1;
    }
    if (out == nullptr) {
        return 0;
    }
    store(value, out, cvt);
    return 1;
}

Date RES_dec_hour(const char* text) {
    Date date;
    HourText in{text};
    const std::size_t length = std::strlen(text);
    const bool colon = std::strchr(text, ':') != nullptr;
    if (in.skip('#')) {
        [[maybe_unused]] const bool all = in.digits(4, date.year) && in.digits(2, date.month) &&
                                          in.digits(2, date.day) && in.digits(2, date.hour) &&
                                          in.digits(2, date.min);
    } else if (std::strchr(text, 'd') != nullptr) {
        if (in.number(date.day) && in.skip('d') && in.number(date.hour) && in.skip(':')) {
            in.number(date.min);
        }
    } else if (length == 6 && !colon) {
        [[maybe_unused]] const bool all =
            in.digits(2, date.month) && in.digits(2, date.day) && in.digits(2, date.hour);
    } else if ((length == 4 || length == 3) && !colon && is_digit(*text)) {
        if (in.digits(length == 4 ? 2 : 1, date.day)) {
            in.digits(2, date.hour);
        }
    } else if (in.skip(':')) {
        in.number(date.min);
    } else if (text[0] == '-' && text[1] == ':') {
        in.at += 2;
        date.min = in.number(date.min) ? -date.min : missing;
    } else {
        date = clock_text(text);
    }
    return date;
}

int RES_set_device(const char* text) {
    switch (text != nullptr ? std::toupper(static_cast<unsigned char>(*text)) : '\0') {
    case 'P':
        return 4;
    case 'H':
    case 'Q':
        return 5;
    case 'M':
        return 3;
    case 'W':
        return 6;
    default:
        return 1;
    }
}

// --- Help -------------------------------------------------------------------

int RES_help_print(const char* name, const res_type* res_key, const res_type* res_pos) {
    MESS_print(mess_print, "%s syntax (version:%s)\n", name, ZYR_version());
    MESS_print(mess_print, "   %s [options...]\n", name);
    MESS_print(mess_print, "Keyed options...\n");
    MESS_print(mess_print, " %-10s  Resource/defaults file name\n", "-df file");
    MESS_print(mess_print, " %-10s  Program name\n", "-na name");
    for (; *res_key != RES_null; ++res_key) {
        RES_help_item(*res_key);
    }
    MESS_print(mess_print, "Positional options...\n");
    for (; *res_pos != RES_null; ++res_pos) {
        RES_help_item(*res_pos);
    }
    return 0;
}

int RES_help_item(res_type type) {
    const Row* row = find_row(type);
    if (row == nullptr || row->argument == nullptr) {
        return 0;
    }
    // A domain's argument is long: its text stands on a line of its own.
    const bool own_line = row->more == more_domain || row->more == more_region;
    MESS_print(mess_print, " %-10s  %s\n", row->argument, own_line ? "" : row->help);
    help_more(*row);
    return 1;
}
