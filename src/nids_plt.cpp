// nids_plt: the NIDS plotter. For each selected product it opens the file,
// draws a frame and shows it. State: the open product, the words of
// `plot_param`, the dates of the file selection. The drawing of the packets is
// in nids_draw, their colours in nids_colr, the text grid file in nids_grid.
#include "nids_plt.h"

#include "cont.h"
#include "date.h"
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "nids_draw.h"
#include "plt_tool.h"
#include "region.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numbers>

namespace {

constexpr int num_rings = 4;

struct State {
    std::FILE* ifile = nullptr;       // the open product
    char probed[file_name_size] = ""; // its name while it is open behind its header, else empty
    NIDS_info info;                   // its header
    char datim[date_label_size] = ""; // its date label
    Date file_date;                   // date of the file, filled from the product where unset
    Date base_date;                   // reference date of the file selection
    int num_plt = 0;                  // limit on the storms plotted, 0: none
    int plt_site = 0;                 // mark the site
    int plt_graph = 0;                // draw the graphic block
    int plt_strong = 0;               // plot only strong storms
    std::array<float, num_rings> plt_dist{}; // radii of the range rings, nautical miles
    int clutter_rad = 0;                     // bins near the site left out of radials
    int refresh = 0;                         // look for newer files every 60 seconds
    std::int64_t fsecs = 0; // time of the file shown last, on a multiple of the file step
};
State nids;

constexpr float default_ring_nmi = 100.0F;
constexpr int default_clutter = 25;
constexpr int refresh_seconds = 60;
constexpr int item_data = 7; // plot component
constexpr float km_per_nmi = 1.852F;

// --- Words of plot_param ------------------------------------------------------

// A number behind a word of `length` letters and one character.
double word_number(const char* word, std::size_t length) {
    return std::strlen(word) > length ? std::strtod(word + length + 1, nullptr) : 0.0;
}

int word_int(const char* word, std::size_t length) {
    return static_cast<int>(std::clamp(word_number(word, length), -1.0e9, 1.0e9));
}

void set_rings(const char* word) {
    constexpr std::size_t length = 4; // of "dist"
    if (std::strlen(word) == length) {
        nids.plt_dist[0] = default_ring_nmi;
        return;
    }
    const char* at = word + length + 1;
    for (float& ring : nids.plt_dist) {
        char* end = nullptr;
        const float value = std::strtof(at, &end);
        if (end == at) {
            return;
        }
        ring = std::isfinite(value) ? value : 0.0F;
        if (*end != ':') {
            return;
        }
        at = end + 1;
    }
}

void set_clutter(const char* word) {
    constexpr std::size_t length = 7; // of "clutter"
    nids.clutter_rad = std::strlen(word) == length ? default_clutter : word_int(word, length);
}

// A word and what it stores.
struct Switch {
    const char* word;
    int State::*field;
    int value;
};
constexpr std::array<Switch, 6> switches = {
    {
     {"site", &State::plt_site, 1},
     {"nograph", &State::plt_graph, 0},
     {"graph", &State::plt_graph, 1},
     {"strong", &State::plt_strong, 1},
     {"refresh", &State::refresh, 1},
     {"noclutter", &State::clutter_rad, 0},
     }
};

void decode_word(const char* word) {
    for (const Switch& row : switches) {
        if (stricmp(word, row.word) == 0) {
            nids.*row.field = row.value;
            return;
        }
    }
    if (strnicmp(word, "dist", 4) == 0) {
        set_rings(word);
    } else if (stricmp(word, "nodist") == 0) {
        nids.plt_dist[0] = 0.0F;
    } else if (strnicmp(word, "numplt", 6) == 0) {
        nids.num_plt = word_int(word, 6);
    } else if (strnicmp(word, "clutter", 7) == 0) {
        set_clutter(word);
    }
}

// --- Files --------------------------------------------------------------------

// Cuts seconds down to a multiple of the step between files.
std::int64_t on_file_step(std::int64_t seconds) {
    const std::int64_t step = std::max<std::int64_t>(FILE_get_late_off(), 1);
    return seconds / step * step;
}

void fill_unset(int& field, int value) {
    if (!is_set(field)) {
        field = value;
    }
}

void fill_file_date(const Date& date) {
    fill_unset(nids.file_date.year, date.year);
    fill_unset(nids.file_date.month, date.month);
    fill_unset(nids.file_date.day, date.day);
    fill_unset(nids.file_date.hour, date.hour);
    fill_unset(nids.file_date.min, date.min);
}

// The product's own domain serves a request without one.
bool take_own_domain(Domain* domain) {
    if (is_set(domain->proj) || !is_set(nids.info.domain.proj)) {
        return false;
    }
    *domain = nids.info.domain;
    return true;
}

// Opens the session for the first file. A file that does not open is met again
// in the walk over the files, which decides about it.
void open_session(Domain* domain) {
    NIDS_plot_param();
    char name[file_name_size] = "";
    FILE_set_date(&nids.base_date, name);
    if (NIDS_open_file(name) != 0) {
        copy_text(nids.probed, sizeof nids.probed, name);
    }
    take_own_domain(domain);
    PLT_open(DOM_aspect(domain));
    PLT_set_callback(NIDS_callback);
    PLT_set_zoom_func(NIDS_plot);
    PLT_set_resize_func(NIDS_plot);
    if (nids.refresh != 0) {
        PLT_set_refresh_func(refresh_seconds, NIDS_plot_nextfile);
    }
}

// What an open product brings to the page: its date label, the parts of the
// file's date that are not known, a colour bar unless it is refused.
void take_product() {
    DATE_make_label(&nids.info.date, nids.datim);
    fill_file_date(nids.info.date);
    if (CONT_get_bar() != -2) {
        CONT_set_bar(1);
    }
}

// Opens a file of the walk. The first one is open already, behind its header:
// a standard stream can be read but once, and half of a product's unpacking
// would be done twice.
bool open_next(const char* name) {
    const bool probed = nids.ifile != nullptr && std::strcmp(nids.probed, name) == 0;
    nids.probed[0] = '\0';
    if (probed) {
        take_product(); // the session has set zone and bar since
        return true;
    }
    NIDS_close_file();
    return NIDS_open_file(name) != 0;
}

// Draws the file `name` as frame number `frame`; false if it does not open.
bool plot_file(const char* name, int frame, Domain* domain) {
    if (!open_next(name)) {
        NIDS_close_file();
        return false;
    }
    if (take_own_domain(domain)) {
        PLT_panel(DOM_aspect(domain));
        MAP_setup(domain);
    }
    Date date;
    FILE_get_date(&date);
    nids.fsecs = on_file_step(DATE_num_sec(&date));
    const bool several = FILE_get_num_file() != 0;
    if (several) {
        gselect_frame(gcreate_frame(frame));
    }
    NIDS_plot_frame();
    NIDS_close_file();
    if (several) {
        gdisplay_frame(frame);
    }
    PLT_dump(frame);
    return true;
}

// --- Frame --------------------------------------------------------------------

Gattribs attributes(const char* resource, const char* otherwise) {
    Gattribs attrib;
    ATTRIB_init(&attrib);
    ATTRIB_get(resource, otherwise, &attrib);
    return attrib;
}

const char* plain_color() {
    return gget_inverse() != 0 ? "black" : "white";
}

} // namespace

int NIDS_set_date(const Date* datim) {
    if (datim == nullptr) {
        FILE_get_date(&nids.base_date);
    } else {
        nids.base_date = *datim;
    }
    return 0;
}

int NIDS_plot(Domain* domain) {
    const bool redraw = gchk_graphics() != 0;
    if (redraw) {
        PLT_reset(DOM_aspect(domain));
    } else {
        open_session(domain);
    }
    MAP_setup(domain);
    MAP_fill_cont(0);
    FILE_first(&nids.base_date);
    char name[file_name_size] = "";
    int left_out = 0;
    for (int frame = 0; FILE_get_next(name) != 0;) {
        if (!PLT_has_room(frame)) {
            left_out++;
        } else if (plot_file(name, frame, domain)) {
            frame++;
        } else if (FILE_get_num_file() == 0) {
            PLT_exit(10);
        }
    }
    PLT_tell_left_out(left_out);
    if (FILE_get_num_file() != 0) {
        gset_looping(1);
    }
    if (!redraw) {
        PLT_close();
    }
    return 0;
}

int NIDS_plot_frame() {
    MAP_draw(map_under);
    NIDS_print_info();
    NIDS_plot_summary();
    if (CONT_get_bar() > 0) {
        GPH_trans(tran_page);
        CONT_draw_bar(1, "");
        GPH_trans(tran_map);
    }
    MAP_draw(map_over | map_plain);
    NIDS_plot_data();
    PLT_labels();
    return 0;
}

int NIDS_plot_nextfile() {
    char name[file_name_size] = "";
    const std::int64_t seconds = FILE_set_current(nullptr, name);
    MESS_print(mess_debug, "File: %d %s\n", static_cast<int>(seconds), name);
    if (seconds == nids.fsecs || NIDS_open_file(name) == 0) {
        NIDS_close_file();
        return 0;
    }
    NIDS_set_date(nullptr);
    nids.fsecs = seconds;
    const int frames = gget_num_images();
    for (int i = 0; i + 1 < frames; i++) {
        gcopy_frame(i, i + 1); // the oldest frame goes
    }
    if (frames > 0) {
        gselect_frame(gcreate_frame(frames - 1));
    } else {
        gclear_frame(frame_base);
    }
    NIDS_plot_frame();
    NIDS_close_file();
    if (frames > 0) {
        gdisplay_frame(frames - 1);
    }
    return 0;
}

int NIDS_plot_summary() {
    const NIDS_info& info = nids.info;
    PLT_set_callback(NIDS_callback);
    GPH_trans(tran_map);
    PLT_label_up_left(info.info);
    PLT_label_low_right(info.misc);
    PLT_label_up_right(nids.datim);

    NIDS_frame frame;
    frame.ifile = nids.ifile;
    frame.info = &info;
    frame.datim = nids.datim;
    frame.clutter_rad = nids.clutter_rad;
    MAP_get_domain(&frame.plot);
    MAP_domain(&info.domain);
    MAP_tran(info.domain.clat, info.domain.clon, &frame.x0, &frame.y0);
    MAP_domain(&frame.plot);
    NIDS_set_colors(info);
    frame.data = attributes("color_data", plain_color());
    frame.grid = attributes("color_grid", "red");
    PLT_mess("NIDS Sum");
    return NIDS_draw_packets(frame);
}

int NIDS_plot_data() {
    if (FLAG_getplot(item_data) == 0) {
        return -1;
    }
    const Gattribs data = attributes("color_data", plain_color());
    PLT_mess("NIDS Extra");
    float x = missing_f;
    float y = missing_f;
    const bool on_map = MAP_tran(nids.info.domain.clat, nids.info.domain.clon, &x, &y) != 0;
    GPH_line_attr(&data);
    GPH_mark_attr(&data, 1.0F);
    CONT_reset_values();
    gset_marker_type(2);
    if (nids.plt_site != 0 && on_map) {
        GPH_mark(x, y);
    }
    for (std::size_t i = 0; nids.plt_dist[0] != 0.0F && on_map && i < nids.plt_dist.size(); i++) {
        if (nids.plt_dist[i] != 0.0F) {
            MAP_draw_circle(x, y, nids.plt_dist[i] * km_per_nmi);
        }
    }
    return 0;
}

int NIDS_plot_param() {
    int count = 0;
    char** words = nullptr;
    RES_getvals("plot_param", &count, &words);
    for (int i = 0; i < count; i++) {
        decode_word(words[i]);
    }
    free_parsed_array(count, words);
    return 0;
}

void NIDS_callback(int, const char* str, float x, float y) {
    const Domain& site = nids.info.domain;
    NIDS_print_loc_elev(str, x, y, site.clat, site.clon, nids.info.elev);
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
    CONT_flash_value(str, x, y);
}

int NIDS_print_loc_elev(const char* str, float x, float y, float slat, float slon, float selev) {
    if (std::strcmp(str, "v-Alt") != 0) {
        return -1;
    }
    constexpr double earth_radius = 63.713; // 100 km
    constexpr double nmi_per_unit = 100 * 0.53996;
    constexpr double feet_per_nmi = 6076.22;
    float sx = missing_f;
    float sy = missing_f;
    float lat = missing_f;
    float lon = missing_f;
    MAP_tran(slat, slon, &sx, &sy);
    MAP_untran(x, y, &lat, &lon);
    const double r = std::hypot(x - sx, y - sy) / MAP_factor(slat, slon);
    const double angle = (90.0 + selev) * std::numbers::pi / 180.0;
    const double height =
        std::sqrt(r * r + earth_radius * earth_radius - 2 * r * earth_radius * std::cos(angle)) -
        earth_radius;
    MESS_print(mess_debug, "Str: %s Pos: %6.2f,%6.2f Lat: %6.2f Lon: %6.2f\n", str, x, y, lat, lon);
    MESS_print(mess_print, "Lat: %6.2f Lon: %6.2f Dist: %5.1fnm Alt: %5.0fft\n", lat, lon,
               r * nmi_per_unit, height * nmi_per_unit * feet_per_nmi);
    return 0;
}

int NIDS_open_file(const char* filename) {
    nids.ifile = FILE_open(filename, "r");
    if (nids.ifile == nullptr) {
        MESS_print(mess_error, "NIDS_open_file: Unable to open file:%s\n", filename);
        return 0;
    }
    if (NIDS_get_header(nids.ifile, &nids.info) == 0) {
        nids.info = {};
        MESS_print(mess_error, "NIDS_open_file: Unable to read file:%s\n", filename);
        return 0;
    }
    take_product();
    return 1;
}

int NIDS_rewind_file() {
    return nids.ifile == nullptr ? 0 : (NIDS_get_header(nids.ifile, &nids.info), 1);
}

int NIDS_close_file() {
    if (nids.ifile == nullptr) {
        return 0;
    }
    FILE_close(nids.ifile);
    nids.ifile = nullptr;
    return 1;
}

int NIDS_print_info() {
    const NIDS_info& info = nids.info;
    MESS_print(mess_mess, "Product type: %s\n", info.info);
    MESS_print(mess_mess, "Product date: %s\n", nids.datim);
    MESS_print(mess_mess, "Product location: %5.2f %5.2f\n", info.domain.clat, info.domain.clon);
    MESS_print(mess_mess, "Product domain: ");
    DOM_print(mess_mess, &info.domain);
    MESS_print(mess_mess, "Threshold values: ");
    for (int i = 0; i < nids_num_thres; i++) {
        if (i % 8 == 7) {
            MESS_print(mess_mess, "%.1f\n                  ", info.thres[i]);
        } else {
            MESS_print(mess_mess, i % 4 == 3 ? "%.1f|" : "%.1f ", info.thres[i]);
        }
    }
    MESS_print(mess_mess, "\n");
    return 0;
}
