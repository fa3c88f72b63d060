// lev2_plt: the Level II plotter: one elevation scan of one moment as a polar
// picture around the site. State: the header of the open volume, the moment
// and scan chosen, the words of `plot_param`, the run over the files (rad_run).
#include "lev2_plt.h"

#include "cont.h"
#include "date.h"
#include "lev2.h"
#include "lev2_stream.h"
#include "map.h"
#include "maptran.h"
#include "plt_tally.h"
#include "rad_fill.h"
#include "rad_probe.h"
#include "rad_run.h"
#include "region.h"
#include "state_keeper.h"
#include "text_num.h"
#include "units.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int default_range = 460;   // grid steps of 0.54 nautical miles
constexpr int scan_first = -9999;    // the lowest scan that holds the moment
constexpr float radial_width = 1.0F; // degrees about the azimuth, also of half degree radials
constexpr int first_clear = 30;      // coverage patterns of clear air
constexpr int last_clear = 39;

// Which of the scans that hold the moment is meant: by angle, and which of those
// that the volume takes at this angle.
struct WantedCut {
    enum class By : std::uint8_t { number, angle, lowest, highest };
    By by = By::number;
    float angle = 0;
    int repeat = 1; // 0: the last
};
constexpr float same_cut_deg = 0.15F; // scans so near are one cut taken again

struct State {
    LEV2_info info;                   // header of the open volume
    char datim[date_label_size] = ""; // its date label
    char misc[40] = "";               // lower right label
    Domain domain;                    // its own
    int scan_num = 1;                 // elevation number drawn, scan_first: not yet known
    int told_scan = missing;          // the one that was named for want of a number
    int scan_type = lev2_refl;        // moment drawn
    WantedCut wanted;
    bool told_variable = false; // that `variable` names no moment
    int range = default_range;  // size of the own domain
    RadWords words;
    RadRun run;
};
State lev2;

// --- Moments ------------------------------------------------------------------

constexpr char reflectivity[] =
    "-50:off,5:blue,10:lblue,15:cyan,20:lcyan,25:green,30:lgreen,35:brown,40:yellow,45:red,"
    "50:lred,55:magenta,60:lmagenta,65:dgray,70:lgray,75:white";
constexpr char velocity[] =
    "-70:blue,-63:lblue,-49:cyan,-35:lcyan,-25:green,-19:lgreen,-9:dgray,0:off,1:lgray,"
    "10:yellow,20:brown,26:lred,36:red,50:lmagenta,64:magenta";

struct Moment {
    const char* word; // how `variable` begins, the number of the scan after it
    const char* label;
    const char* colors; // a list, or a level file that the user can change
    const char* levels; // the level file of "auto"
    bool range;         // smallest and largest value are shown, not the largest alone
    int decimals;       // of these
    float most;         // where the smallest value starts
};
constexpr std::array<Moment, lev2_moments> moments = {
    {
     {"ref", "Reflectivity (Dbz)", reflectivity, "reflectivity", false, 0, 100.0F},
     {"vel", "Velocity (m/s)", velocity, "velocity_ms", true, 0, 100.0F},
     {"spect", "Spectrum width (m/s)", velocity, "width_ms", true, 0, 100.0F},
     {"zdr", "Differential reflectivity (dB)", "diff_refl", "diff_refl", true, 1, 100.0F},
     {"phi", "Differential phase (deg)", "diff_phase", "diff_phase", true, 0, 360.0F},
     {"rho", "Correlation coefficient", "correlation", "correlation", true, 2, 100.0F},
     {"cfp", "Clutter filter power (dB)", "clutter_power", "clutter_power", true, 0, 100.0F},
     }
};

const Moment& moment() {
    return moments[static_cast<std::size_t>(lev2.scan_type)];
}

// "0.5", "max" or "min", and then ":last" or ":2". False for any other text.
bool take_cut(const char* text, WantedCut* wanted) {
    if (strnicmp(text, "max", 3) == 0 || strnicmp(text, "min", 3) == 0) {
        wanted->by = strnicmp(text, "max", 3) == 0 ? WantedCut::By::highest : WantedCut::By::lowest;
        text += 3;
    } else if (take_float(&text, &wanted->angle)) {
        wanted->by = WantedCut::By::angle;
    } else {
        return false;
    }
    if (take_char(&text, ':')) {
        if (strnicmp(text, "last", 4) == 0) {
            wanted->repeat = 0;
            text += 4;
        } else if (!take_int(&text, &wanted->repeat) || wanted->repeat < 1) {
            return false;
        }
    }
    return *text == '\0' || *text == ',';
}

// Whether an item of `variable` names a moment, which is then chosen. Without a
// number after it the volume says which scan it is.
bool take_item(const char* item) {
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const int length = static_cast<int>(std::strlen(moments[i].word));
        if (strnicmp(item, moments[i].word, length) == 0) {
            const char* at = item + length;
            int number = 0;
            const bool numbered = take_int(&at, &number);
            lev2.scan_type = static_cast<int>(i);
            lev2.wanted = {};
            if (item[length] == '@') {
                lev2.scan_num = scan_first;
                if (!take_cut(item + length + 1, &lev2.wanted)) {
                    lev2.wanted = {};
                    MESS_print(mess_warn, "LEV2_plot: No angle in the variable:%s\n", item);
                }
                return true;
            }
            lev2.scan_num = numbered ? std::clamp(number, -1000000, 1000000) : scan_first;
            return true;
        }
    }
    return false;
}

// The first item of `variable` that names a moment chooses.
void decode_variable() {
    const char* variable = RES_get("variable");
    if (variable == nullptr || *variable == '\0') {
        return;
    }
    bool known = false;
    for (const char* item = variable; item != nullptr;) {
        item += std::strspn(item, " ");
        if (take_item(item)) {
            return;
        }
        known = known || strnicmp(item, "watch", 5) == 0;
        item = std::strchr(item, ',');
        item = item != nullptr ? item + 1 : nullptr;
    }
    if (!known && !lev2.told_variable) {
        lev2.told_variable = true;
        MESS_print(mess_warn, "LEV2_plot: Unknown variable:%s, drawn is \"%s%d\"\n", variable,
                   moment().word, lev2.scan_num);
    }
}

// --- Cuts by meaning ------------------------------------------------------------

// How far a cut is from the one wanted.
float distance_of(const LEV2_cut& cut) {
    switch (lev2.wanted.by) {
    case WantedCut::By::highest:
        return -cut.angle;
    case WantedCut::By::lowest:
        return cut.angle;
    default:
        return std::fabs(cut.angle - lev2.wanted.angle);
    }
}

// The scan that `variable` describes, by a walk of its own over the volume, which
// starts over afterwards. Leaves the scan open when none holds the moment.
void find_cut() {
    if (lev2.wanted.by == WantedCut::By::number) {
        return;
    }
    LEV2_data data;
    while (LEV2_get_block(&data) != 0) {
        LEV2_next_block();
    }
    const auto type = static_cast<std::size_t>(lev2.scan_type);
    const LEV2_cut* nearest = nullptr;
    for (const LEV2_cut& cut : LEV2_get_cuts()) {
        if (cut.moments[type] > 0 &&
            (nearest == nullptr || distance_of(cut) < distance_of(*nearest) - same_cut_deg / 2)) {
            nearest = &cut;
        }
    }
    int repeat = 0;
    int found = scan_first;
    for (const LEV2_cut& cut : LEV2_get_cuts()) {
        if (nearest != nullptr && cut.moments[type] > 0 &&
            std::fabs(cut.angle - nearest->angle) <= same_cut_deg) {
            ++repeat;
            if (lev2.wanted.repeat == 0 || repeat <= lev2.wanted.repeat) {
                found = cut.num;
            }
        }
    }
    if (repeat > 0 && repeat < lev2.wanted.repeat) {
        MESS_print(mess_warn, "LEV2_plot: The volume takes this cut %d times, drawn is scan %d\n",
                   repeat, found);
    }
    lev2.scan_num = found;
    LEV2_rewind_file();
}

// --- Radials ------------------------------------------------------------------

// A walk over the volume, and what it finds for the labels.
struct Walk {
    Map own;    // of the volume
    Map plot;   // of the picture
    RadFan fan; // of radials around the site
    RadFills fills;
    RadByteLooks looks;          // of one-byte words
    float scale = 0, offset = 0; // by which they are values
    RadStrip strip;
    long room = rad_most_figures;
    int elev_num = missing; // of the radial before
    float largest = lev2_below, smallest = moment().most;
    float elev = 0;         // degrees, of the scan
    bool clear_air = false; // mode of the scan
    bool cluttered = false; // a gate was left out near the site
    bool left = false;      // what follows the scan was not read

    Walk(const Domain& domain, const Map& picture)
        : own(map_make(domain)), plot(picture), fan(own, domain.clat, domain.clon),
          fills(rad_folded(lev2.words, lev2_folded, true)), strip(own, plot) {}
    Walk(const Walk&) = delete; // its parts refer to the maps
    Walk& operator=(const Walk&) = delete;
};

void print_radial(Walk& walk, const LEV2_data& data) {
    const bool first = data.elev_num != walk.elev_num;
    walk.elev_num = data.elev_num;
    const unsigned level = first ? mess_mess : mess_debug;
    if (MESS_check(level) != 0) {
        MESS_print(level, "El#=%d El=%.1f Az=%.1f Ptr=%d,%d,%d Num=%d,%d\n", data.elev_num,
                   data.elev_ang, data.rad_az, data.refl_ptr, data.vel_ptr, data.spect_ptr,
                   data.num_refl, data.num_vel);
    }
}

// In degrees: a degree, or, exactly, what the radial says.
float width_of(const LEV2_data& data) {
    return lev2.words.exact == 0 ? radial_width : data.az_space;
}

// The radial as it lies on the map: on a straight line, or, exactly, as it is on the earth,
// the distances being those of the centres of gates.
RadEdges radial_edges(const Map& own, RadFan& fan, const LEV2_data& data, const LEV2_gates& gates) {
    const float width = width_of(data);
    if (lev2.words.exact == 0) {
        const RadBeam beam = {data.rad_az, -width / 2, width, gates.first_km / 100.0,
                              static_cast<double>(gates.size_km) * own.domain.dx};
        return rad_radial_edges(own, fan.site(), beam);
    }
    const double ground = std::cos(data.elev_ang * deg_to_rad);
    const double step_km = gates.size_km * ground;
    return fan.edges({data.rad_az - width / 2.0, width, gates.centre_km * ground - step_km / 2,
                      step_km, gates.count});
}

// The gates that lie behind the site, as the first ones of old radials: they are none.
int gates_behind(const LEV2_gates& gates) {
    const float size = std::max(gates.size_km, 0.001F);
    const float count = (-gates.centre_km / size) + 0.5F; // those with their far end behind
    return lev2.words.exact == 0 ? 0 : std::clamp(static_cast<int>(count), 0, gates.count);
}

// The look of a value that was met, for the strip.
int look_of(Walk& walk, float value) {
    walk.largest = std::max(walk.largest, value);
    if (value > lev2_folded) {
        walk.smallest = std::min(walk.smallest, value);
    }
    const Gattribs* attrib = walk.fills.get(value);
    return attrib != nullptr ? walk.strip.look_of(*attrib) : RadStrip::no_look;
}

// Gates of one byte, from gate `first` on.
RadStrip::Added add_bytes(Walk& walk, const LEV2_gates& gates, int first) {
    if (gates.scale != walk.scale || gates.offset != walk.offset) {
        walk.scale = gates.scale;
        walk.offset = gates.offset;
        walk.looks.forget();
    }
    const auto find = [&](std::uint8_t word) { return look_of(walk, gates.value(word)); };
    return walk.strip.add_bytes(first, gates.bytes.subspan(static_cast<std::size_t>(first)),
                                lev2.words.clutter,
                                [&](std::uint8_t word) { return walk.looks.get(word, find); });
}

RadStrip::Added add_words(Walk& walk, const LEV2_gates& gates, int first) {
    RadStrip::Added added;
    added.drawn = walk.strip.add_each(first, gates.count - first, [&](int i) {
        const int look = look_of(walk, gates.value(gates.word(first + i)));
        const bool hidden = look != RadStrip::no_look && first + i < lev2.words.clutter;
        added.hidden = added.hidden || hidden;
        return hidden ? RadStrip::no_look : look;
    });
    return added;
}

// Draws the gates of the moment selected.
void draw_radial(Walk& walk, const LEV2_data& data) {
    const LEV2_gates& gates = LEV2_get_gates();
    walk.clear_air = data.cov_patt >= first_clear && data.cov_patt <= last_clear;
    walk.elev = data.elev_ang;
    PLT_tally_radial(data.rad_az - width_of(data) / 2, width_of(data));
    const RadEdges edges = radial_edges(walk.own, walk.fan, data, gates);
    walk.strip.begin();
    const int first = gates_behind(gates);
    const RadStrip::Added added =
        gates.word_bytes == 1 ? add_bytes(walk, gates, first) : add_words(walk, gates, first);
    walk.cluttered = walk.cluttered || added.hidden;
    walk.room -= added.drawn;
    walk.strip.draw(edges);
}

// Scans come in the order of their numbers, from the lowest one up.
void take_scan(int number) {
    lev2.scan_num = number;
    if (lev2.told_scan != number) {
        lev2.told_scan = number;
        MESS_print(mess_warn, "LEV2_plot: No scan is named, drawn is \"%s%d\"\n", moment().word,
                   number);
    }
}

// Whether the rest of the volume can be left unread: the scan was met with its
// moment. Without it the scans that have it are to be named.
bool is_done() {
    return LEV2_is_scan_done(lev2.scan_num) != 0 &&
           LEV2_get_cuts().back().moments[static_cast<std::size_t>(lev2.scan_type)] > 0;
}

void draw_scan(Walk& walk) {
    const bool to_end = MESS_check(mess_debug) != 0; // each record is to be seen
    LEV2_data data;
    for (; walk.room > 0; LEV2_next_block()) {
        walk.left = !to_end && is_done();
        if (walk.left || LEV2_get_block(&data) == 0) {
            break;
        }
        if (data.type != lev2_radial_fixed && data.type != lev2_radial_generic) {
            continue;
        }
        print_radial(walk, data);
        if (lev2.scan_num == scan_first && LEV2_set_data_type(lev2.scan_type) != 0) {
            take_scan(data.elev_num);
        }
        if (data.elev_num == lev2.scan_num && LEV2_set_data_type(lev2.scan_type) != 0) {
            draw_radial(walk, data);
        }
    }
    if (walk.room <= 0) {
        MESS_print(mess_warn, "LEV2_plot: More gates than any scan has, cut: scan %d\n",
                   lev2.scan_num);
        PLT_lost_output();
    }
    if (lev2.scan_num == scan_first) { // none holds it
        lev2.scan_num = LEV2_get_cuts().empty() ? 1 : LEV2_get_cuts().front().num;
    }
}

// Tells why nothing is to be seen.
void tell_empty(const Walk& walk) {
    if (walk.strip.in_view() || LEV2_warn_empty(lev2.scan_num, lev2.scan_type) != 0) {
        return;
    }
    if (walk.strip.drawn()) {
        MESS_print(mess_warn, "LEV2_plot: Scan %d lies outside the plot domain\n", lev2.scan_num);
    } else if (walk.cluttered) {
        MESS_print(mess_warn, "LEV2_plot: Scan %d has no echo beyond the %d gates of \"clutter\"\n",
                   lev2.scan_num, lev2.words.clutter);
    } else {
        MESS_print(mess_warn,
                   "LEV2_plot: Scan %d has no value that is drawn, the largest is %.1f\n",
                   lev2.scan_num, walk.largest);
    }
}

// --- Value at a place -----------------------------------------------------------

// The gates of a radial on the volume's own map, with bytes of their own.
struct KeptRadial {
    RadEdges edges;
    LEV2_gates gates;
    std::vector<std::uint8_t> bytes;
};

// The scan that was asked for last: to unpack a volume again up to a high cut may take
// a second. `kept = {}` forgets it.
struct Kept {
    RadSource source; // of the picture; without a name there is none
    int type = 0;     // moment
    Map own;          // of the volume
    std::vector<KeptRadial> radials;
};
Kept kept;
constexpr std::size_t most_kept_bytes = 32UL * 1024 * 1024; // no scan has a quarter of it

// Reads the scan of a picture from its file. Whether it could be read.
bool keep_scan(const RadSource& source) {
    LEV2_info info;
    kept = {};
    if (lev2_open_volume(source.name.c_str()) == 0) {
        return false;
    }
    LEV2_get_header(&info);
    Domain domain;
    LEV2_get_domain(info.lat, info.lon, static_cast<float>(lev2.range), &domain);
    kept.source = source;
    kept.type = lev2.scan_type;
    kept.own = map_make(domain);
    RadFan fan(kept.own, info.lat, info.lon);
    const int scan = std::exchange(lev2.scan_num, source.scan);
    std::size_t bytes = 0;
    LEV2_data data;
    for (; !is_done() && bytes < most_kept_bytes && LEV2_get_block(&data) != 0; LEV2_next_block()) {
        const bool radial = data.type == lev2_radial_fixed || data.type == lev2_radial_generic;
        if (!radial || data.elev_num != lev2.scan_num || LEV2_set_data_type(lev2.scan_type) == 0) {
            continue;
        }
        const LEV2_gates& gates = LEV2_get_gates();
        bytes += gates.bytes.size() + sizeof(KeptRadial);
        kept.radials.push_back({
            radial_edges(kept.own, fan, data, gates),
            gates,
            {gates.bytes.begin(), gates.bytes.end()}
        });
        kept.radials.back().gates.bytes = kept.radials.back().bytes; // stays when it moves
    }
    lev2.scan_num = scan;
    LEV2_close_file();
    return true;
}

// The value at a point on the own map of the scan kept: what is drawn last lies on top,
// and what has no value is not drawn over another.
std::string kept_value(Gpt at) {
    float value = lev2_below;
    for (const KeptRadial& radial : kept.radials) {
        const int gate = rad_figure_at(radial.edges, at);
        if (gate >= std::max(lev2.words.clutter, 0) && gate < radial.gates.count) {
            const float here = radial.gates.value(radial.gates.word(gate));
            value = here > lev2_below ? here : value;
        }
    }
    if (value <= lev2_below) {
        return "";
    }
    return value == lev2_folded ? "RF" : rad_number_text(value) + rad_unit_text(moment().label);
}

// The value of the picture on show at a plot point, from its file; empty when there
// is none, or while a volume is read.
std::string value_at(float x, float y) {
    const RadSource* source = lev2_stream_is_open() ? nullptr : rad_shown_source();
    Gpt place{missing_f, missing_f}; // latitude, longitude
    MAP_untran(x, y, &place.x, &place.y);
    if (source == nullptr || !rad_is_place(place)) {
        return "";
    }
    const RadQuiet quiet;
    const bool known = kept.source == *source && kept.type == lev2.scan_type;
    if (!known && !keep_scan(*source)) {
        return "";
    }
    Gpt at{missing_f, missing_f};
    kept.own.tran(place.x, place.y, &at.x, &at.y);
    return rad_is_place(at) ? kept_value(at) : "";
}

// --- Frame --------------------------------------------------------------------

void set_colors() {
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    CONT_set_quantity(moment().levels);
    CONT_set_fill_colors(moment().colors, 0);
    CONT_set_type(cont_fill);
}

void draw_site() {
    Gattribs data;
    ATTRIB_init(&data);
    ATTRIB_get("color_data", rad_plain_color(), &data);
    GPH_line_attr(nullptr); // the last line of the map may be wide
    GPH_line_attr(&data);
    GPH_mark_attr(&data, 1.0F);
    rad_draw_site(lev2.words, data, lev2.info.lat, lev2.info.lon);
}

// For the account of the run.
void note_scan(const Walk& walk) {
    PLT_tally& tally = PLT_get_tally();
    const bool any = walk.largest > lev2_folded;
    tally.product = moment().label;
    tally.moment = moment().word;
    tally.cut = lev2.scan_num;
    tally.elev = tally.radials > 0 ? walk.elev : missing_f;
    tally.low = any ? walk.smallest : missing_f;
    tally.high = any ? walk.largest : missing_f;
}

void set_labels(const Walk& walk) {
    note_scan(walk);
    const char* mode = walk.clear_air ? "cl" : "pr";
    if (moment().range) {
        const int decimals = moment().decimals;
        std::snprintf(lev2.misc, sizeof lev2.misc, "Md=%s Sc=%d El=%.1f Rng=%.*f,%.*f", mode,
                      lev2.scan_num, walk.elev, decimals, walk.smallest, decimals, walk.largest);
    } else {
        std::snprintf(lev2.misc, sizeof lev2.misc, "Md=%s Sc=%d El=%.1f Mx=%.0f", mode,
                      lev2.scan_num, walk.elev, walk.largest);
    }
    PLT_label_up_left(moment().label);
    PLT_label_low_right(lev2.misc);
    PLT_label_up_right(lev2.datim);
}

// --- Run ----------------------------------------------------------------------

// Reads the header of the open volume: its site, domain and date.
const Domain* take_volume() {
    LEV2_get_header(&lev2.info);
    PLT_tally& tally = PLT_get_tally();
    tally.site = lev2.info.id;
    tally.lat = lev2.info.lat;
    tally.lon = lev2.info.lon;
    tally.date = lev2.info.date;
    LEV2_get_domain(lev2.info.lat, lev2.info.lon, static_cast<float>(lev2.range), &lev2.domain);
    DATE_make_label(&lev2.info.date, lev2.datim);
    rad_fill_date(lev2.run, lev2.info.date);
    return &lev2.domain;
}

constexpr RadPlotter plotter = {
    LEV2_plot_param, LEV2_open_file, LEV2_close_file, take_volume,
    LEV2_plot_frame, LEV2_callback,  LEV2_plot,       LEV2_plot_nextfile,
};

void decode_word(const char* word) {
    if (strnicmp(word, "range", 5) == 0) {
        lev2.range = rad_word_int(word, 5);
    } else {
        rad_take_word(lev2.words, word);
    }
}

} // namespace

int LEV2_set_date(const Date* datim) {
    rad_set_date(lev2.run, datim);
    return 0;
}

int LEV2_plot(Domain* domain) {
    const bool redraw = rad_open_session(plotter, lev2.run, lev2.words, domain);
    MESS_print(mess_mess, "Product domain: ");
    DOM_print(mess_mess, &lev2.domain);
    return rad_plot_files(plotter, lev2.run, domain, redraw);
}

int LEV2_plot_frame() {
    MAP_draw(map_under);
    LEV2_print_info();
    LEV2_plot_summary();
    rad_draw_bar();
    MAP_draw(map_over | map_plain);
    GPH_trans(tran_map);
    rad_draw_watches(is_set(lev2.info.date.year) ? lev2.info.date : lev2.run.file_date);
    PLT_labels();
    return 0;
}

int LEV2_plot_nextfile() {
    return rad_plot_nextfile(plotter, lev2.run);
}

int LEV2_plot_summary() {
    PLT_set_callback(LEV2_callback);
    decode_variable();
    if (FLAG_getplot(part_summary) == 0) {
        return 0;
    }
    find_cut();
    GPH_trans(tran_map);
    set_colors();
    Walk walk(lev2.domain, MAP_current());
    PLT_mess("LEV2 Sum");
    draw_scan(walk);
    rad_note_scan(lev2.scan_num);
    LEV2_list_cuts(mess_mess);
    if (walk.left) {
        MESS_print(mess_mess, "Read to the end of scan %d, \"--info\" lists all\n", lev2.scan_num);
    }
    tell_empty(walk);
    draw_site();
    set_labels(walk);
    return 0;
}

int LEV2_plot_param() {
    rad_decode_words(decode_word);
    return LEV2_set_exact(lev2.words.exact);
}

void LEV2_callback(int, const char* str, float x, float y) {
    if (PLT_print_location(str, x, y) == 0) {
        rad_tell_value(value_at(x, y));
    }
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
}

int LEV2_open_file(const char* filename) {
    if (lev2_open_volume(filename) == 0) {
        return 0;
    }
    if (CONT_get_bar() != -2) {
        CONT_set_bar(1);
    }
    return 1;
}

int LEV2_print_info() {
    MESS_print(mess_mess, "\n");
    return 0;
}

void keep_lev2_plt(StateKeeper& keeper) {
    keeper.close_by([] { LEV2_close_file(); });
    keeper.keep(lev2);
}
