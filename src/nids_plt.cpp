// nids_plt: the NIDS plotter: what a frame of a product is made of. State: the
// open product, the words of `plot_param`, the run over the files. The run
// itself is in rad_run, the drawing of the packets in nids_draw, their colours
// in nids_colr, the text grid file in nids_grid.
#include "nids_plt.h"

#include "cont.h"
#include "data_file.h"
#include "date.h"
#include "file_kind.h"
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "near_word.h"
#include "nids_draw.h"
#include "nids_impl.h"
#include "nids_pages.h"
#include "nids_probe.h"
#include "nids_storms.h"
#include "nids_tables.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_probe.h"
#include "rad_run.h"
#include "region.h"
#include "state_keeper.h"
#include "units.h"
#include "var_tool.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <array>
#include <cmath>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

namespace {

struct State {
    std::FILE* ifile = nullptr;       // the open product
    char name[file_name_size] = "";   // of its file
    NIDS_info info;                   // its header
    char datim[date_label_size] = ""; // its date label
    int num_plt = 0;                  // limit on the storms plotted, 0: none
    int plt_strong = 0;               // plot only strong storms
    bool symbols = false;             // draw the symbols of storm packets
    bool any_drawn = false;           // of the symbology block of this frame
    NidsStorms storms;                // of this frame
    RadWords words;
    bool told_variable = false; // that `variable` names what no plotter knows
    RadRun run;
};
State nids;

void decode_word(const char* word) {
    if (stricmp(word, "strong") == 0) {
        nids.plt_strong = 1;
    } else if (strnicmp(word, "numplt", 6) == 0) {
        nids.num_plt = rad_word_int(word, 6);
    } else if (stricmp(word, "storms") == 0) {
        nids.symbols = true;
    } else if (stricmp(word, "nostorms") == 0) {
        nids.symbols = false;
    } else {
        // Storms by their packets are nearer than those of the tables.
        nids.symbols = nids.symbols || strnicmp(word, "exact", 5) == 0;
        rad_take_word(nids.words, word);
    }
}

// What an open product brings to the page: its date label, the parts of the
// file's date that are not known, a colour bar unless it is refused.
// For the account of the run.
void note_product() {
    const NIDS_info& info = nids.info;
    const NidsProdDesc& desc = nids_header().pr_desc;
    PLT_tally& tally = PLT_get_tally();
    tally.product = info.info;
    tally.code = info.code;
    tally.date = info.date;
    tally.has_site = info.src <= nids_max_site;
    // A product that is no map has its radar's place in the description alone.
    tally.lat = static_cast<float>(desc.lat) / 1000.0F;
    tally.lon = static_cast<float>(desc.lon) / 1000.0F;
    if (nids_product(info.code).params.elev != NidsElev::none) {
        tally.elev = info.elev;
    }
}

const Domain* take_product() {
    note_product();
    DATE_make_label(&nids.info.date, nids.datim);
    rad_fill_date(nids.run, nids.info.date);
    if (CONT_get_bar() != -2) {
        CONT_set_bar(1);
    }
    return &nids.info.domain;
}

constexpr RadPlotter plotter = {
    NIDS_plot_param, NIDS_open_file, NIDS_close_file, take_product,
    NIDS_plot_frame, NIDS_callback,  NIDS_plot,       NIDS_plot_nextfile,
};

// --- Frame --------------------------------------------------------------------

Gattribs attributes(const char* resource, const char* otherwise) {
    Gattribs attrib;
    ATTRIB_init(&attrib);
    ATTRIB_get(resource, otherwise, &attrib);
    return attrib;
}

// What this plotter knows by `variable`: the kinds of the plot, and the columns of
// the tables of storms.
constexpr KnownWord own_variables[] = {
    {"comp"}, {"track"}, {"table"}, {"watch"}, {"none"},  {"id"},  {"tvs"}, {"meso"}, {"posh"},
    {"poh"},  {"hsize"}, {"vil"},   {"dbzm"},  {"dbzht"}, {"top"}, {"dir"}, {"spd"},  {"mvmt"},
};
// What the others know: a word of theirs is no mistake, as settings serve runs of
// several kinds of file.
constexpr KnownWord other_variables[] = {
  // moments of Level II
    {"ref",   true},
    {"vel",       true},
    {"spect",true},
    {"zdr", true},
    {"phi",       true},
    {"rho",   true},
    {"cfp",   true},
 // reports of summaries and coded messages
    {"city"      },
    {"stat"},
    {"mode"  },
    {"hail"      },
    {"pr_typ"},
    {"pr_tt"      },
    {"pr_tnd"    },
    {"pr_amv"},
    {"pr_cmv"      },
    {"echtop"},
    {"echotop"  },
};

// Warns once of a variable that no plotter knows, and of variables of which this
// plotter draws none.
void check_variables() {
    KnownWords words(std::begin(own_variables), std::end(own_variables));
    const KnownWords others(std::begin(other_variables), std::end(other_variables));
    const char* foreign = nullptr;
    bool any = VAR_get_num() == 0;
    for (int i = 0; i < VAR_get_num() && !nids.told_variable; ++i) {
        const char* name = VAR_get_name(i);
        const std::string_view word(name, std::strcspn(name, "-"));
        const bool own = word.empty() || is_known_word(words, word);
        any = any || own;
        if (own) {
            continue;
        }
        if (is_known_word(others, word)) {
            foreign = name;
            continue;
        }
        nids.told_variable = true;
        VAR_add_names(&words);
        words.insert(words.end(), others.begin(), others.end());
        MESS_print(mess_warn, "NIDS_plot: Unknown variable: %s, the nearest is %s\n", name,
                   std::string(nearest_word(words, word)).c_str());
    }
    if (!any && foreign != nullptr && !nids.told_variable) {
        nids.told_variable = true;
        MESS_print(mess_warn,
                   "NIDS_plot: No variable of a NIDS product: %s, its own data are drawn\n",
                   foreign);
    }
}

// Decodes the variables by which storms are plotted. A product that is nothing
// but its table is not left an empty map where none is asked for.
void select_variables() {
    const char* variable = RES_get("variable");
    const bool asked = variable != nullptr && *variable != '\0';
    const bool table_alone =
        !nids.any_drawn && nids_product(nids.info.code).table != NidsTable::list;
    VAR_setup(asked ? "nids.var" : nullptr, asked ? variable : table_alone ? "comp,track" : "");
    check_variables();
}

bool is_selected(const char* name) {
    for (int i = 0; i < VAR_get_num(); ++i) {
        if (stricmp(VAR_get_name(i), name) == 0) {
            return true;
        }
    }
    return false;
}

// Site, range rings, pages, storms, watches. Whether the pages held anything to be
// drawn.
bool draw_data() {
    const CONT_keeper levels; // of the data: they are those of the bar and the readout
    NIDS_page_frame frame;
    frame.ifile = nids.ifile;
    frame.info = &nids.info;
    frame.plot = MAP_current();
    frame.data = attributes("color_data", rad_plain_color());
    frame.grid = attributes("color_grid", "red");
    RES_getval("plot_scale", &frame.scale, CV_float);
    PLT_mess("NIDS Extra");
    GPH_line_attr(nullptr); // the last line of the map may be wide
    GPH_line_attr(&frame.data);
    GPH_mark_attr(&frame.data, 1.0F);
    CONT_reset_values();
    gset_marker_type(2);
    RAW_plot_init(&frame.data, frame.scale);
    rad_draw_site(nids.words, frame.data, nids.info.domain.clat, nids.info.domain.clon);
    select_variables();
    frame.pages = nids.words.graph != 0 || is_selected("table");
    frame.num_plt = nids.num_plt;
    frame.strong = nids.plt_strong != 0;
    // Their symbols take the place of those of the tables, which are of the same
    // storms.
    frame.symbols = nids.storms.symbols.empty();
    const bool any = NIDS_draw_pages(frame) != 0;
    const bool symbols = nids_draw_storms(
        {&nids.info, frame.plot, frame.data, frame.scale, frame.num_plt, frame.strong},
        nids.storms);
    rad_draw_watches(nids.info.date);
    return any || symbols;
}

// --- Value at a place -----------------------------------------------------------

// The value of the picture on show at a plot point, from its file; empty when there
// is none, or while a product is read.
std::string value_at(float x, float y) {
    const RadSource* source = nids.ifile == nullptr ? rad_shown_source() : nullptr;
    Gpt place{missing_f, missing_f}; // latitude, longitude
    MAP_untran(x, y, &place.x, &place.y);
    if (source == nullptr || !rad_is_place(place)) {
        return "";
    }
    const RadQuiet quiet;
    const FILE_ptr file(FILE_open_data(source->name.c_str()));
    NIDS_info info;
    if (file == nullptr || NIDS_get_header(file.get(), &info) == 0 || NIDS_is_plausible() == 0) {
        return "";
    }
    NIDS_frame frame;
    frame.ifile = file.get();
    frame.info = &info;
    frame.clutter_rad = nids.words.clutter;
    frame.exact = nids.words.exact != 0;
    frame.own = map_make(info.domain);
    frame.own.tran(info.domain.clat, info.domain.clon, &frame.site.x, &frame.site.y);
    Gpt at{missing_f, missing_f};
    frame.own.tran(place.x, place.y, &at.x, &at.y);
    return rad_is_place(at) ? nids_value_at(frame, at) : "";
}

} // namespace

int NIDS_set_date(const Date* datim) {
    rad_set_date(nids.run, datim);
    return 0;
}

int NIDS_plot(Domain* domain) {
    const bool redraw = rad_open_session(plotter, nids.run, nids.words, domain);
    return rad_plot_files(plotter, nids.run, domain, redraw);
}

int NIDS_plot_frame() {
    MAP_draw(map_under);
    NIDS_print_info();
    NIDS_plot_summary();
    rad_draw_bar();
    MAP_draw(map_over | map_plain);
    NIDS_plot_data();
    PLT_labels();
    return 0;
}

int NIDS_plot_nextfile() {
    return rad_plot_nextfile(plotter, nids.run);
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
    frame.clutter_rad = nids.words.clutter;
    frame.exact = nids.words.exact != 0;
    frame.own = map_make(info.domain);
    frame.plot = MAP_current();
    rad_check_view(nids.run, frame.own, frame.plot, nids.name);
    frame.own.tran(info.domain.clat, info.domain.clon, &frame.site.x, &frame.site.y);
    NIDS_set_colors(info);
    frame.folded = rad_folded(nids.words, nids_folded, false);
    frame.data = attributes("color_data", rad_plain_color());
    frame.grid = attributes("color_grid", "red");
    nids.storms = {};
    frame.storms = nids.symbols ? &nids.storms : nullptr;
    PLT_mess("NIDS Sum");
    nids.any_drawn = NIDS_draw_packets(frame) != 0;
    if (NIDS_is_whole() == 0) {
        MESS_print(mess_warn, "NIDS_plot_summary: The product is damaged or not whole:%s\n",
                   nids.name);
    }
    return 0;
}

int NIDS_plot_data() {
    const bool wanted = FLAG_getplot(part_data) != 0;
    const bool any = wanted && draw_data();
    if (!nids.any_drawn && !any) {
        MESS_print(mess_warn, "NIDS_plot: Nothing of this product is drawn: %s\n", nids.info.info);
    }
    return wanted ? 0 : -1;
}

int NIDS_plot_param() {
    rad_decode_words(decode_word);
    NIDS_take_symbols(nids.symbols ? 1 : 0);
    return NIDS_set_exact(nids.words.exact);
}

void NIDS_callback(int, const char* str, float x, float y) {
    const Domain& site = nids.info.domain;
    if (NIDS_print_loc_elev(str, x, y, site.clat, site.clon, nids.info.elev) == 0) {
        rad_tell_value(value_at(x, y));
    }
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
    const double angle = (90.0 + selev) * deg_to_rad;
    const double height =
        std::sqrt(r * r + earth_radius * earth_radius - 2 * r * earth_radius * std::cos(angle)) -
        earth_radius;
    MESS_print(mess_debug, "Str: %s Pos: %6.2f,%6.2f Lat: %6.2f Lon: %6.2f\n", str, x, y, lat, lon);
    MESS_print(mess_print, "Lat: %6.2f Lon: %6.2f Dist: %5.1fnm Alt: %5.0fft\n", lat, lon,
               r * nmi_per_unit, height * nmi_per_unit * feet_per_nmi);
    return 0;
}

int NIDS_open_file(const char* filename) {
    copy_text(nids.name, sizeof nids.name, filename);
    nids.ifile = FILE_open_data(filename);
    if (nids.ifile == nullptr) {
        MESS_print(mess_error, "NIDS_open_file: Unable to open file:%s\n", filename);
        return 0;
    }
    std::array<std::uint8_t, 512> area{};
    const auto head = FILE_head(nids.ifile, area);
    // Small archives and bzip2 files have bytes that pass for a place on earth.
    if (is_other_kind(head, "nids") || NIDS_get_header(nids.ifile, &nids.info) == 0 ||
        NIDS_is_plausible() == 0) {
        nids.info = {};
        MESS_print(mess_error, "NIDS_open_file: Unable to read file:%s\n", filename);
        tell_file_kind("NIDS_open_file", head);
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
    for (int i = 0; i < nids_num_thres; ++i) {
        if (i % 8 == 7) {
            MESS_print(mess_mess, "%.1f\n                  ", info.thres[i]);
        } else {
            MESS_print(mess_mess, i % 4 == 3 ? "%.1f|" : "%.1f ", info.thres[i]);
        }
    }
    MESS_print(mess_mess, "\n");
    return 0;
}

void keep_nids_plt(StateKeeper& keeper) {
    keeper.close_by([] { NIDS_close_file(); });
    keeper.keep(nids);
}
