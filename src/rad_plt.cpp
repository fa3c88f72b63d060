// rad_plt: the plotter of radar summaries: the levels as a filled contour of the
// national grid, the reports as texts and symbols at their stations. State: the
// open file and its grid, the report in hand, the words of `plot_param`, the
// choice of variables, the run over the files (rad_run). The variables must be
// chosen (RAD_prompt_variable) before the plot.
#include "zyrrad.h"

#include "cont.h"
#include "date.h"
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "no_memory.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_item.h"
#include "rad_key.h"
#include "rad_run.h"
#include "region.h"
#include "state_keeper.h"
#include "units.h"
#include "var_tool.h"
#include "watch.h"
#include "windbarb.h"
#include "zyrcty.h"
#include "zyrgks.h"
#include "zyrgrid.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr int plot_levels = 52; // plot types: filled, with the key of levels
constexpr int plot_marks = 55;
constexpr int plot_steps = 51; // by two levels
constexpr int station_priority = 3;
constexpr int default_items = 100;
// Marks, texts and circles of a file; a country full of storms has some thousands.
// One text may take 6 KB of a page.
constexpr int most_items = 40000;
constexpr double default_dist = 100.0; // of the circle about a station, nautical miles
constexpr double least_dist = 10.0;
constexpr double most_dist = 10000.0;
constexpr char colors[] = "None,Blue,Cyan,Green,Yellow,Red,Magenta";

// Where the grids lie.
struct GridRow {
    int type;
    float clat, clon;
    int nx, ny;
    float step;
};
constexpr GridRow grids[] = {
    {rad_mdr, 40.02738F, -96.1069F,  120, 90,  0.47596F},
    {rad_rcm, 39.71121F, -97.09452F, 449, 353, 0.11899F},
};

struct State {
    int cvt_fd = -1; // of the open file
    RAD_info info;
    MDR_report mdr_report;
    RCM_report rcm_report;
    int stat_num = 0; // of the next report
    char var_str[res_value_size] = "";
    int variable_prompt = 1; // 0: the variables are chosen and nothing is left to ask
    bool var_file = false;   // the variable file was opened
    float scale = 1.0F;
    float plt_dist = 0.0F; // circle about each station, nautical miles; 0: none
    int num_plt = default_items;
    Domain stored; // whose stations are in the table
    int items = 0; // drawn of the open file
    RadWords words;
    RadRun run;
};
State state;

// --- Words ------------------------------------------------------------------------

void take_word(const char* word) {
    constexpr std::size_t dist = 4; // letters
    constexpr std::size_t numplt = 6;
    if (strnicmp(word, "dist", dist) == 0) {
        const double number =
            std::strlen(word) == dist ? default_dist : rad_word_number(word, dist);
        // Also of what is no number.
        state.plt_dist =
            static_cast<float>(std::min(number > least_dist ? number : least_dist, most_dist));
    } else if (stricmp(word, "nodist") == 0) {
        state.plt_dist = 0.0F;
    } else if (strnicmp(word, "numplt", numplt) == 0) {
        state.num_plt = rad_word_int(word, numplt);
    } else if (stricmp(word, "noclar") == 0) {
        rad_leave_out_clear();
    } else if (stricmp(word, "nobar") == 0) {
        CONT_set_bar(-2);
    } else {
        rad_take_word(state.words, word);
    }
}

// --- Frames -----------------------------------------------------------------------

// The date of the open file and its label, in the zone of the session.
const Domain* take_file() {
    FILE_get_date(&state.run.file_date);
    const Date& date = state.info.date;
    PLT_get_tally().product = "Radar summary";
    PLT_get_tally().has_site = false;
    PLT_get_tally().date = date;
    PLT_init_labels();
    PLT_set_overlay(0);
    if (is_set(date.day)) {
        state.run.file_date = date;
        PLT_set_data_date(&date);
        std::array<char, date_label_size> label{};
        DATE_make_label(&date, label.data());
        PLT_label_up_right(label.data());
    } else {
        PLT_label_up_right(state.info.datim);
    }
    static constexpr Domain none; // it is drawn on the one that the user chose
    return &none;
}

// The stations of the picture: another domain has others, in other places.
void store_stations() {
    Domain domain;
    MAP_get_domain(&domain);
    if (!is_set(state.stored.proj) || DOM_comp(&domain, &state.stored) == 0) {
        CTY_store("rad.cty", cty_xy, &domain, station_priority);
        state.stored = domain;
    }
}

void label_variables() {
    for (int i = 0; i < VAR_get_num(); ++i) {
        if (VAR_is_type_PLOT(i) != 0 && VAR_is_LABEL(i) != 0) {
            std::array<char, plt_label_size> label{};
            VAR_make_var_form_datatype(i, label.data());
            PLT_label_up_left(label.data());
            if (PLT_next_overlay() == -1) {
                break;
            }
        }
    }
    PLT_set_overlay(0);
}

int plot_frame() {
    GPH_trans(tran_map);
    store_stations();
    const int label_type = PLT_get_label_type(); // each line of labels moves it on
    label_variables();
    RAD_plot_frame();
    PLT_set_label_type(label_type);
    return 0;
}

constexpr RadPlotter plotter = {
    RAD_plot_param, RAD_open_file, RAD_close_file,    take_file, plot_frame,
    RAD_callback,   RAD_plot,      RAD_plot_nextfile, true,
};

// --- The grid ---------------------------------------------------------------------

// The value that a level is drawn with.
float grid_value(signed char level) {
    if (level == 8 || level == 9) {
        return 1.0F;
    }
    return level < 0 ? 0.0F : static_cast<float>(level);
}

const GridRow* find_grid() {
    const auto* row = std::find_if(std::begin(grids), std::end(grids),
                                   [](const GridRow& g) { return g.type == state.info.type; });
    return row != std::end(grids) ? row : nullptr;
}

// Room for the levels as values; without it the run ends.
std::unique_ptr<float[]> field_of(std::size_t size) {
    const ZYR_own_report report;
    std::unique_ptr<float[]> values(new (std::nothrow) float[size]);
    if (values == nullptr) {
        MESS_print(mess_warn, "No memory for radar summary field\n");
        PLT_exit(end_memory);
    }
    return values;
}

GRD_report make_grid(const GridRow& row) {
    GRD_report grid;
    Domain& domain = grid.domain;
    DOM_init(&domain);
    domain.proj = proj_pstereo;
    domain.plat = 90.0F;
    domain.plon = -105.0F;
    domain.clat = row.clat;
    domain.clon = row.clon;
    domain.nx = row.nx;
    domain.ny = row.ny;
    domain.dx = domain.dy = row.step;
    return grid;
}

float setting(const char* name, float value) {
    RES_getval(name, &value, CV_float);
    return value;
}

// Levels and colours of the grid, anew for each.
void set_levels(int type) {
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    CONT_set_quantity(nullptr);
    CONT_set_fill_colors(colors, 0);
    CONT_set_type(type >= 1 ? type : plot_levels);
    CONT_set_base(setting("con_base", -0.5F));
    CONT_set_intrvl(setting("con_interval", type == plot_steps ? 2.0F : 1.0F));
}

// --- Reports ----------------------------------------------------------------------

// The watches, when a variable asks for them. Returns whether one does not.
bool draw_watches() {
    bool others = false;
    bool watches = false;
    for (int i = 0; i < VAR_get_num(); ++i) {
        (rad_is_watch(i) ? watches : others) = true;
    }
    if (watches) {
        WATCH_decode(&state.run.file_date);
        WATCH_plot();
    }
    return others;
}

// Counts an item. False when there were too many.
bool take_item() {
    if (state.items == most_items) {
        MESS_print(mess_error, "RAD_plot_data: More than %d items: the rest is left out\n",
                   most_items);
        PLT_lost_output();
    }
    ++PLT_get_tally().figures;
    return state.items++ < most_items;
}

bool has_content(const RAW_data& data) {
    return data.data[0] != '\0' || is_set(data.value[0]);
}

// Draws one item in the form of its variable.
void draw_item(const VAR_data& var, RAW_data* data) {
    if (has_content(*data) && is_set(data->x) && take_item()) {
        data->type = var.type;
        copy_text(data->format, sizeof data->format, var.format);
        RAW_plot_data(data);
    }
}

RAW_data item_at(const CTY_locate& station) {
    RAW_data data;
    RAW_data_init(&data);
    data.x = station.x;
    data.y = station.y;
    return data;
}

void draw_station(const CTY_locate& station) {
    if (state.words.site != 0 && take_item()) {
        RAW_data data = item_at(station);
        data.type = var_type_mark;
        copy_text(data.data, sizeof data.data, "plus");
        RAW_plot_data(&data);
    }
}

void draw_mdr_report(const CTY_locate& station) {
    if (state.plt_dist >= static_cast<float>(least_dist) && take_item()) {
        MAP_draw_circle(station.x, station.y, state.plt_dist * km_per_nmi_f);
    }
    draw_station(station);
    for (int i = 0; i < VAR_get_num(); ++i) {
        const VAR_data& var = VAR_get_vars()[i];
        RAW_data data = item_at(station);
        if (!rad_is_watch(i)) {
            if (MDR_get_data(&state.mdr_report, &var, &data) == 0) {
                return;
            }
            draw_item(var, &data);
        }
    }
}

void draw_rcm_report(const CTY_locate& station) {
    draw_station(station);
    for (int i = 0; i < VAR_get_num(); ++i) {
        const VAR_data& var = VAR_get_vars()[i];
        for (int j = 0; !rad_is_watch(i) && j < state.num_plt; ++j) {
            RAW_data data = item_at(station);
            if (RCM_get_data(&state.rcm_report, j, &var, &data) == 0) {
                break;
            }
            draw_item(var, &data);
        }
    }
}

int find_station(const char* id, CTY_locate* data) {
    stat_XY_data station;
    if (CTY_search(id, &station) == 0) {
        MESS_print(mess_debug, "Not in database: %s\n", id);
        return 0;
    }
    *data = station.city;
    return 1;
}

} // namespace

int RAD_set_date(const Date* datim) {
    rad_set_date(state.run, datim);
    return 0;
}

int RAD_open_file(const char* filename) {
    RAD_close_file();
    int f_type = 0;
    state.cvt_fd = RAD_open(filename, 0, &f_type);
    if (state.cvt_fd < 0) {
        MESS_print(mess_warn, "Unable to open file:%s\n", filename);
        RAD_tell_kind("RAD_open_file");
        return 0;
    }
    if (RAD_getinfo(state.cvt_fd, &state.info) == -1) {
        MESS_print(mess_warn, "RAD_open_file: No grid of levels in the file:%s\n", filename);
    }
    take_file();
    MESS_print(mess_mess, "Date: %s\n", state.info.datim);
    return 1;
}

int RAD_rewind_file() {
    state.stat_num = 0;
    return RAD_rewind(state.cvt_fd) == 0 ? 1 : 0;
}

int RAD_close_file() {
    const bool open = RAD_close(state.cvt_fd) == 0;
    state.cvt_fd = -1;
    return open ? 1 : 0;
}

int RAD_plot(Domain* domain) {
    ZYR_set_no_memory_code(end_memory);
    const bool redraw = rad_open_session(plotter, state.run, state.words, domain);
    return rad_plot_files(plotter, state.run, domain, redraw);
}

int RAD_plot_frame() {
    MAP_draw(map_under);
    RAD_plot_summary();
    MAP_draw(map_over | map_plain);
    GPH_trans(tran_map);
    RAD_plot_data();
    RAD_draw_label();
    return 0;
}

int RAD_set_prompt_variable(int val) {
    state.variable_prompt = val;
    return 0;
}

int RAD_prompt_variable() {
    if (!state.var_file) {
        VAR_open_file("rad.var");
        state.var_file = true;
    }
    VAR_read_menu();
    if (state.variable_prompt == 0) {
        return 0;
    }
    int result = 1;
    const char* variable = RES_get("variable");
    if (variable != nullptr && *variable != '\0') {
        copy_text(state.var_str, sizeof state.var_str, variable);
        state.variable_prompt = 0;
    } else {
        result = VAR_menu("\n        Variable Menu\n", "Enter the variable: ", state.var_str, 3);
        if (FLAG_batch() != 0) {
            state.variable_prompt = 0;
        }
        if (result == 0) {
            return 0;
        }
        if (result < 0 && is_set(result)) {
            ZYR_exit(0);
        }
    }
    VAR_setup(nullptr, state.var_str);
    return result;
}

int RAD_plot_summary() {
    if (FLAG_getplot(part_summary) == 0) {
        return -1;
    }
    const GridRow* const row = find_grid();
    if (row == nullptr) {
        return 0; // of a file without a grid
    }
    const int asked = FLAG_get(flag_plot_type);
    const int type = asked < 1 ? plot_levels : asked;
    FLAG_set(flag_plot_type, type);
    GRD_report grid = make_grid(*row);
    const auto size = static_cast<std::size_t>(row->nx) * static_cast<std::size_t>(row->ny);
    const auto values = field_of(size);
    for (int y = 0; y < row->ny; ++y) {
        for (int x = 0; x < row->nx; ++x) {
            const auto at = static_cast<std::size_t>(y) * row->nx + static_cast<std::size_t>(x);
            values[at] = grid_value(state.info.summary[x][y]);
            if (is_set(values[at]) && values[at] > 0.0F) {
                ++PLT_get_tally().figures;
                PLT_tally_value(values[at]);
            }
        }
    }
    grid.grid = values.get();
    GPH_trans(tran_map);
    set_levels(type);
    PLT_mess("Radar Sum");
    CONT_draw_contour(&grid);
    if (type == plot_levels || type == plot_marks) {
        RAD_draw_bar();
    }
    GPH_trans(tran_map);
    FLAG_set(flag_plot_type, asked);
    return 0;
}

int RAD_plot_data() {
    if (FLAG_getplot(part_data) == 0) {
        return -1;
    }
    if (!draw_watches()) {
        return 0;
    }
    const CONT_keeper levels; // of the grid, for the readout and the next frame
    Gattribs data;
    ATTRIB_init(&data);
    ATTRIB_get("color_data", rad_plain_color(), &data);
    state.scale = setting("plot_scale", 1.0F);
    GPH_line_attr(&data);
    RAW_plot_init(&data, state.scale);
    CTY_locate station;
    RAD_rewind_file();
    state.items = 0;
    int status = 0;
    if (state.info.type == rad_mdr) {
        rad_check_names(rad_mdr);
        while (state.items <= most_items &&
               (status = MDR_read_report(&state.mdr_report, &station)) != -1) {
            if (status == 1) {
                draw_mdr_report(station);
            }
        }
    } else if (state.info.type == rad_rcm) {
        rad_check_names(rad_rcm);
        while (state.items <= most_items &&
               (status = RCM_read_report(&state.rcm_report, &station)) != -1) {
            if (status == 1) {
                draw_rcm_report(station);
            }
        }
    }
    return 0;
}

int MDR_read_report(MDR_report* report, CTY_locate* data) {
    if (MDR_read(state.cvt_fd, report, 0, &state.stat_num) == -1) {
        return -1;
    }
    ++state.stat_num;
    return find_station(report->id, data);
}

int RCM_read_report(RCM_report* report, CTY_locate* data) {
    if (RCM_read(state.cvt_fd, report, 0, &state.stat_num) == -1) {
        return -1;
    }
    ++state.stat_num;
    return find_station(report->id, data);
}

int RAD_draw_label() {
    PLT_labels();
    Gattribs text;
    ATTRIB_init(&text);
    ATTRIB_get("color_text", rad_plain_color(), &text);
    const bool shown = FLAG_getplot(part_text) != 0 || CONT_get_bar() >= 1;
    if (FLAG_getplot(part_data) == 0 || VAR_get_num() < 1 || !shown || text.color < 0 ||
        stricmp(VAR_get_name(0), "amv") != 0) {
        return 0;
    }
    // How long the arrow of 25 knots is.
    Glim view{};
    PLT_get_view(&view);
    const float s = (view.y_max - view.y_min) * (0.05F * state.scale);
    const float x = view.x_max - 0.01F - s;
    const float y = view.y_min - 0.018F;
    GPH_trans(tran_page);
    GPH_line_attr(&text);
    WIND_vect(x, y, 270.0F, 1.0F, s, 1.0F);
    GPH_text_attr(&text, 0.015F);
    GPH_text_align(GRIGHT_HOR, GHALF_VERT);
    GPH_printf(x - 0.01F, y, "Area Movement: 25 knts");
    GPH_trans(tran_map);
    return 0;
}

int RAD_plot_nextfile() {
    return rad_plot_nextfile(plotter, state.run);
}

int RAD_plot_param() {
    return rad_decode_words(take_word);
}

void RAD_callback(int, const char* str, float x, float y) {
    PLT_print_location(str, x, y);
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
    RAD_flash_levels(str, x, y);
}

void keep_rad_plt(StateKeeper& keeper) {
    keeper.close_by([] { RAD_close_file(); });
    keeper.keep(state);
}
