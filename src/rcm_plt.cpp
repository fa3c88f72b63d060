// rcm_plt: the plotter of one site's Radar Coded Message. State: the open file,
// the site wanted and its place, the message at hand with its grid, the words of
// `plot_param`, the run over the files (rad_run).
#include "rarep.h"

#include "cont.h"
#include "data_file.h"
#include "date.h"
#include "file_kind.h"
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_fill.h"
#include "rad_run.h"
#include "rad_storm.h"
#include "region.h"
#include "state_keeper.h"
#include "var_tool.h"
#include "zyrcty.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr char colors[] = "None,Blue,Cyan,Green,Yellow,Red,Magenta";
constexpr int highest_level = 6;        // 7 and 8 stand for echoes beyond the range of levels
constexpr int answers = 5;              // at the prompt for the site
constexpr int most_messages = 100000;   // of a file, before it counts as endless
constexpr std::size_t named_sites = 60; // letters of a message that lists them

constexpr float cell = 0.11899F; // 100 km at 60 degrees north
constexpr float box = 0.47596F;  // of the national grid: four cells
constexpr int boxes_before = 12; // from the left and upper edge of a site's grid to its own box

constexpr float text_expan = 0.85F;
constexpr int next_seconds = 60; // between files of a refresh

struct State {
    std::FILE* ifile = nullptr;
    char name[file_name_size] = ""; // of its file
    char id[10] = "";               // site wanted
    bool looked_up = false;         // in the station file
    bool listed = false;            // it is there
    bool told_place = false;        // that it is not
    float clat = 0;                 // its place
    float clon = 0;
    char datim[date_label_size] = "";
    RCM_report report;
    Domain own; // of a picture about the site
    RadWords words;
    RadRun run;
};
State rcm;

// --- The site -------------------------------------------------------------------

// Identifiers of four letters are those of three with a letter for the region.
bool same_site(const char* a, const char* b) {
    const std::size_t length_a = std::strlen(a);
    const std::size_t length_b = std::strlen(b);
    a += length_a == 4 && length_b == 3 ? 1 : 0;
    b += length_b == 4 && length_a == 3 ? 1 : 0;
    return stricmp(a, b) == 0;
}

bool find_listed(const char* id) {
    return CTY_get_loc("rad.cty", id, &rcm.clat, &rcm.clon) == 1;
}

// Where the site is: by the station file, else as the message says.
void find_place() {
    if (!rcm.looked_up) {
        rcm.looked_up = true;
        rcm.listed = find_listed(rcm.id) || (std::strlen(rcm.id) == 4 && find_listed(rcm.id + 1));
    }
    if (rcm.listed) {
        return;
    }
    const bool known = is_set(rcm.report.lat) && is_set(rcm.report.lon);
    rcm.clat = known ? rcm.report.lat : 0.0F;
    rcm.clon = known ? rcm.report.lon : 0.0F;
    if (!rcm.told_place) {
        rcm.told_place = true;
        MESS_print(mess_warn, "RCM_plot: Site not in rad.cty: %s, plotted at %.2f %.2f%s\n", rcm.id,
                   static_cast<double>(rcm.clat), static_cast<double>(rcm.clon),
                   known ? " of its message" : "");
    }
}

bool is_site(const char* answer) {
    const std::size_t length = std::strlen(answer);
    return (length == 3 || length == 4) && std::isalpha(static_cast<unsigned char>(answer[0])) != 0;
}

// --- Files ------------------------------------------------------------------------

void forget_message() {
    RCM_init(&rcm.report);
    rcm.datim[0] = '\0';
}

// Adds a site to a list, as long as there is room.
void list_site(const char* id, std::string* sites) {
    if (sites->find(id) == std::string::npos && sites->size() < named_sites) {
        *sites += std::string(sites->empty() ? "" : ", ") + (*id == '\0' ? "no site" : id);
    }
}

// Reads on to the site's message. Returns the messages before it, -1 with that
// one at hand.
int pass_others(std::string* sites) {
    for (int count = 0; count < most_messages; ++count) {
        const int result = RCM_read_site(rcm.ifile, &rcm.report);
        if (result < 0) {
            return count;
        }
        if (same_site(rcm.report.id, rcm.id)) {
            if (result == 0) {
                MESS_print(mess_warn, "RCM_plot: The message of %s is damaged:%s\n", rcm.id,
                           rcm.name);
            }
            return -1;
        }
        list_site(rcm.report.id, sites);
    }
    return most_messages;
}

// Opens a file and reads the site's message.
int open_site(const char* filename) {
    forget_message();
    if (RCM_open_file(filename) == 0) {
        return 0;
    }
    std::array<std::uint8_t, 512> area{};
    const auto head = FILE_head(rcm.ifile, area);
    std::string sites;
    const int others = pass_others(&sites);
    if (others < 0) {
        constexpr unsigned detail = 0xF00000;
        RCM_print(detail, &rcm.report);
        DATE_make_label(&rcm.report.date, rcm.datim);
        return 1;
    }
    forget_message();
    RCM_close_file();
    if (others == 0) {
        MESS_print(mess_error, "RCM_open_file: No Radar Coded Message in file:%s\n", filename);
        tell_file_kind("RCM_open_file", head);
    } else {
        MESS_print(mess_error, "RCM_open_file: No message of %s in file:%s\n", rcm.id, filename);
        MESS_print(mess_error, "RCM_open_file: It has those of %s\n", sites.c_str());
    }
    return 0;
}

const Domain* take_message() {
    DATE_make_label(&rcm.report.date, rcm.datim);
    rad_fill_date(rcm.run, rcm.report.date);
    find_place();
    PLT_tally& tally = PLT_get_tally();
    tally.product = "Radar Coded Message";
    tally.site = rcm.report.id;
    tally.lat = rcm.clat;
    tally.lon = rcm.clon;
    tally.date = rcm.report.date;
    RCM_site_domain(rcm.clat, rcm.clon, &rcm.own);
    rcm.own.nx = rcm.own.ny = 100;
    return &rcm.own;
}

constexpr RadPlotter plotter = {
    RCM_plot_param, open_site,    RCM_close_file, take_message,
    RCM_plot_frame, RCM_callback, RCM_plot,       RCM_plot_nextfile,
};

// --- The grid ---------------------------------------------------------------------

Domain national_domain() {
    Domain domain;
    DOM_init(&domain);
    domain.proj = proj_pstereo;
    domain.plat = 90.0F;
    domain.plon = -105.0F;
    domain.clat = 39.76421F;
    domain.clon = -97.14669F;
    domain.nx = 113;
    domain.ny = 89;
    domain.dx = domain.dy = box;
    return domain;
}

// The grid of the site at hand on its own map and on the plot.
struct Grid {
    Map own, plot;
    bool same = false;                   // the maps share their projection
    Gpt corner = {missing_f, missing_f}; // upper left
    [[nodiscard]] bool is_one() const { return is_set(corner.x); }
};

Grid site_grid() {
    Domain domain;
    RCM_site_domain(rcm.clat, rcm.clon, &domain);
    Grid grid{.own = map_make(domain), .plot = MAP_current()};
    Domain plot = grid.plot.domain;
    grid.same = DOM_comp_proj(&domain, &plot) != 0;
    RCM_grid_corner(rcm.clat, rcm.clon, &grid.corner.x, &grid.corner.y);
    return grid;
}

// The middle of a cell on the plot.
Gpt place_of(const Grid& grid, float column, float row) {
    if (!is_set(column) || !is_set(row) || !grid.is_one()) {
        return {missing_f, missing_f};
    }
    const Gpt own = {grid.corner.x + cell * (0.5F + column), grid.corner.y - cell * (0.5F + row)};
    float lat = missing_f;
    float lon = missing_f;
    Gpt p = own;
    if (!grid.same && (grid.own.untran(own.x, own.y, &lat, &lon) == 0 ||
                       grid.plot.tran(lat, lon, &p.x, &p.y) == 0)) {
        return {missing_f, missing_f};
    }
    return p;
}

void set_colors() {
    CONT_param_decode();
    CONT_reset_fill_set();
    CONT_set_quantity(nullptr);
    CONT_set_fill_colors(colors, 0);
    CONT_set_type(cont_fill_request);
    CONT_set_base(-0.5F);
    CONT_set_intrvl(1.0F);
    CONT_set_range(highest_level, 0.0F);
    CONT_set_cutoff(highest_level, 0.0F);
}

void draw_echoes(const Grid& grid) {
    RadFills fills;
    RadStrip strip(grid.own, grid.plot);
    for (int row = 0; row < rcm_cells; ++row) {
        strip.begin();
        for (int column = 0; column < rcm_cells; ++column) {
            const auto level = rcm.report.echo[column][row];
            const Gattribs* look = fills.get(static_cast<float>(level > highest_level ? 0 : level));
            if (look != nullptr) {
                strip.add(column, 1, 1, *look);
            }
        }
        const double top = grid.corner.y;
        strip.draw({
            {grid.corner.x, top - row * static_cast<double>(cell),       cell, 0.0},
            {grid.corner.x, top - (row + 1) * static_cast<double>(cell), cell, 0.0}
        });
    }
}

// --- Symbols ----------------------------------------------------------------------

// Its kind of hail, how it moves, its name and its height.
void draw_storm(const Grid& grid, const Gattribs& data, const RCM_storm& storm) {
    constexpr int mark_plus = 2;
    constexpr int mark_star = 3;
    constexpr int mark_cross = 5;
    const Gpt p = place_of(grid, storm.x, storm.y);
    if (!rad_is_place(p)) {
        return;
    }
    const bool hail = storm.hail == rcm_hail_positive || storm.hail == rcm_hail_probable;
    rad_draw_mark(p, hail ? CLR_get_ind("lgreen") : rad_white(data),
                  storm.hail == rcm_hail_positive ? mark_star
                  : hail                          ? mark_cross
                                                  : mark_plus);
    const bool moves = is_set(storm.dir) && is_set(storm.spd);
    const std::string top = is_set(storm.hgt) ? std::to_string(storm.hgt) : "";
    rad_draw_storm(p, data,
                   {storm.id,
                    moves ? grid.plot.dir_adj(static_cast<float>(storm.dir), p.x, p.y) : missing_f,
                    static_cast<float>(storm.spd), top.c_str()});
}

void draw_composite(const Grid& grid, const Gattribs& data, const RCM_report& report) {
    constexpr int mark_circle = 4;
    constexpr int mark_vortex = 7;
    for (int i = 0; i < report.num_storm; ++i) {
        draw_storm(grid, data, report.storm[i]);
    }
    for (int i = 0; i < report.num_meso; ++i) {
        const RCM_mark& meso = report.meso[i];
        rad_draw_mark(place_of(grid, meso.x, meso.y), CLR_get_ind("yellow"), mark_circle);
    }
    for (int i = 0; i < report.num_tvs; ++i) {
        const RCM_mark& tvs = report.tvs[i];
        rad_draw_mark(place_of(grid, tvs.x, tvs.y), CLR_get_ind("lred"), mark_vortex);
    }
}

// Each variable selected. One that is neither "comp" nor "watch" is an item
// without a place: only what needs none shows.
void draw_variables(const Grid& grid, const Gattribs& data, const RCM_report& report) {
    for (int i = 0; i < VAR_get_num(); ++i) {
        const char* name = VAR_get_name(i);
        if (stricmp(name, "comp") == 0) {
            draw_composite(grid, data, report);
        } else if (stricmp(name, "watch") != 0) {
            const VAR_data& var = VAR_get_vars()[i];
            RAW_data item;
            RAW_data_init(&item);
            item.type = var.type;
            copy_text(item.format, sizeof item.format, var.format);
            RAW_plot_data(&item);
        }
    }
}

} // namespace

int RCM_set_date(const Date* datim) {
    rad_set_date(rcm.run, datim);
    return 0;
}

int RCM_prompt_id() {
    rcm.looked_up = rcm.listed = false;
    const char* wanted = RES_get("identifier");
    if (wanted != nullptr && *wanted != '\0') {
        copy_text(rcm.id, sizeof rcm.id, wanted);
        return 0;
    }
    for (int i = 0; i < answers; ++i) {
        char answer[6] = "";
        ZYR_prompts("Enter station to be used in the analysis: ", answer, sizeof answer);
        if (stricmp(answer, "exit") == 0) {
            ZYR_exit(0);
        }
        if (is_site(answer)) {
            std::transform(answer, answer + sizeof answer, rcm.id,
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
            return 0;
        }
    }
    MESS_print(mess_error, "RCM_prompt_id: No station: -id names one, as -id TLX\n");
    ZYR_exit(end_file);
    return -1;
}

int RCM_open_file(const char* filename) {
    copy_text(rcm.name, sizeof rcm.name, filename);
    rcm.ifile = FILE_open_data(filename);
    if (rcm.ifile == nullptr) {
        MESS_print(mess_error, "RCM_open_file: Unable to open file:%s\n", filename);
        return 0;
    }
    FILE_get_date(&rcm.run.file_date);
    DATE_make_label(&rcm.run.file_date, rcm.datim);
    if (CONT_get_bar() != -2) {
        CONT_set_bar(1);
    }
    return 1;
}

int RCM_rewind_file() {
    if (rcm.ifile == nullptr) {
        return 0;
    }
    std::rewind(rcm.ifile);
    return 1;
}

int RCM_close_file() {
    if (rcm.ifile == nullptr) {
        return 0;
    }
    FILE_close(rcm.ifile);
    rcm.ifile = nullptr;
    return 1;
}

int RCM_plot(Domain* domain) {
    const bool redraw = rad_open_session(plotter, rcm.run, rcm.words, domain);
    return rad_plot_files(plotter, rcm.run, domain, redraw);
}

int RCM_plot_frame() {
    MAP_draw(map_under);
    RCM_plot_summary();
    rad_draw_bar();
    MAP_draw(map_over | map_plain);
    RCM_plot_data(&rcm.report);
    PLT_labels();
    return 0;
}

int RCM_plot_summary() {
    PLT_set_callback(RCM_callback);
    GPH_trans(tran_map);
    PLT_label_up_left("RCM Base Reflectivity");
    PLT_label_up_right(rcm.datim);
    set_colors();
    const Grid grid = site_grid();
    PLT_mess("RCM Sum");
    if (FLAG_getplot(part_summary) == 0) {
        return -1;
    }
    rad_check_view(rcm.run, grid.own, grid.plot, rcm.name);
    if (grid.is_one()) {
        draw_echoes(grid);
    }
    return 0;
}

int RCM_plot_data(const RCM_report* report) {
    if (FLAG_getplot(part_data) == 0) {
        return -1;
    }
    const CONT_keeper levels; // of the echoes: they are those of the bar and the readout
    Gattribs data;
    ATTRIB_init(&data);
    ATTRIB_get("color_data", rad_plain_color(), &data);
    float scale = 1.0F;
    RES_getval("plot_scale", &scale, CV_float);
    PLT_mess("RCM Extra");
    GPH_line_attr(nullptr); // the last line of the map may be wide
    GPH_line_attr(&data);
    GPH_mark_attr(&data, 1.0F);
    CONT_reset_values();
    gset_marker_type(2);
    RAW_plot_init(&data, scale);
    rad_draw_site(rcm.words, data, rcm.clat, rcm.clon);

    gset_char_space(1.0F);
    const char* variable = RES_get("variable");
    VAR_setup(nullptr, variable != nullptr ? variable : "");
    data.expan = text_expan;
    GPH_line_attr(&data);
    GPH_fill_attr(&data);
    GPH_text_attr(&data, 7.0F);
    GPH_mark_attr(&data, 1.5F);
    gset_marker_type(2);
    GPH_text_align(GLEFT_HOR, 2);
    draw_variables(site_grid(), data, *report);
    gset_char_space(0.0F);
    rad_draw_watches(is_set(report->date.year) ? report->date : rcm.run.file_date);
    return 0;
}

// Files are a minute apart at the least; the same message again is no news.
int RCM_plot_nextfile() {
    char name[file_name_size] = "";
    const int seconds = FILE_get_nsecs() + next_seconds;
    FILE_set_date_off(&rcm.run.base_date, seconds, name);
    MESS_print(mess_debug, "File: %s\n", name);
    FILE_set_nsecs(seconds);
    if (FILE_exist(name) == 0) {
        return 0;
    }
    const auto shown = std::make_unique<RCM_report>(rcm.report);
    if (open_site(name) == 0 || *shown == rcm.report) {
        RCM_close_file();
        return 0;
    }
    copy_text(rcm.run.probed, sizeof rcm.run.probed, name);
    rad_show_next(plotter, rcm.run, name);
    return 0;
}

int RCM_plot_param() {
    return rad_decode_words([](const char* word) { rad_take_word(rcm.words, word); });
}

void RCM_callback(int, const char* str, float x, float y) {
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
    CONT_flash_value(str, x, y);
}

int RCM_grid_corner(float lat, float lon, float* x, float* y) {
    const Map national = map_make(national_domain());
    float column = missing_f;
    float row = missing_f;
    *x = *y = missing_f;
    Gpt site{missing_f, missing_f};
    // The grid's lines are those of the boxes: the site's place on it is brought
    // down to a line first.
    if (national.tran(lat, lon, &site.x, &site.y) == 0 ||
        national.grid_untran(site.x, site.y, &column, &row) == 0) {
        return 0;
    }
    return national.grid_tran(std::floor(column) - boxes_before, std::floor(row) - boxes_before, x,
                              y);
}

void RCM_site_domain(float lat, float lon, Domain* domain) {
    DOM_init(domain);
    domain->proj = proj_pstereo;
    domain->plat = 90.0F;
    domain->plon = -105.0F;
    domain->clat = lat;
    domain->clon = lon;
    domain->nx = domain->ny = rcm_cells;
    domain->dx = domain->dy = cell;
}

void keep_rcm_plt(StateKeeper& keeper) {
    keeper.close_by([] { RCM_close_file(); });
    keeper.keep(rcm);
}
