// raw_plt.cpp: one labelled item on a map: a number, a text, a marker, a wind, a
// cloud circle, a weather symbol or a line; and whole raw files of them. State:
// the settings of the current plot, the places of the last two items, and whether
// a line waits for the next one. RAW_plot_init comes first; the map is set up.
#include "zyrraw.h"

#include "cont.h"
#include "map.h"
#include "maptran.h"
#include "plt_tool.h"
#include "region.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"
#include "units.h"
#include "var_tool.h"
#include "windbarb.h"
#include "wx_symb.h"
#include "zyrcty.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace {

constexpr int plot_type_none = 99; // flag 11: nothing is drawn
constexpr float column = 0.012F;   // offsets of the position words, window heights
constexpr float row = 0.02F;

// A format as it was laid over `base`: a file's columns come with few formats,
// again and again.
struct Parsed {
    char format[sizeof RAW_data::format] = {};
    bool used = false;
    int type = 0; // that it names, or 0
    RAW_attribs attr;
};
constexpr std::size_t most_parsed = 16;

struct State {
    RAW_attribs base; // of the current plot
    Gattribs plain;   // `color_data`: where no colour is given
    Gpt pts[2] = {
  // of the last two items, the latest first
        {missing_f, missing_f},
        {missing_f, missing_f}
    };
    bool post_line = false;                      // a line to the next item is due
    Gattribs worn;                               // look of the item drawn last
    std::array<Parsed, most_parsed> parsed = {}; // the oldest goes first
    std::size_t next_parsed = 0;
    std::string told; // the file that was warned of last
};
State state;

bool is_place(const Gpt& point) {
    return is_set(point.x) && is_set(point.y);
}

// --- The format language -----------------------------------------------------------

struct PositionRow {
    const char* word;
    float x, y; // window heights
    int hor, vert;
    float param_x; // the same as a word of `plot_param`
};
constexpr PositionRow positions[] = {
    {"ul", -column, row,     3, 3, -column},
    {"uc", 0.0F,    row,     2, 3, 0.0F   },
    {"ur", column,  row,     1, 3, column },
    {"tl", -column, column,  3, 3, -column},
    {"tc", 0.0F,    column,  2, 3, 0.0F   },
    {"tr", column,  column,  1, 3, column },
    {"cl", -column, 0.0F,    3, 3, -0.015F},
    {"cc", 0.0F,    0.0F,    2, 3, 0.0F   },
    {"cr", column,  0.0F,    1, 3, 0.015F },
    {"bl", -column, -column, 3, 3, -column},
    {"bc", 0.0F,    -column, 2, 3, 0.0F   },
    {"br", column,  -column, 1, 3, column },
    {"ll", -column, -row,    3, 3, -column},
    {"lc", 0.0F,    -row,    2, 3, 0.0F   },
    {"lr", column,  -row,    1, 3, column },
};

const PositionRow* find_position(const char* word) {
    for (const PositionRow& place : positions) {
        if (stricmp(word, place.word) == 0) {
            return &place;
        }
    }
    return nullptr;
}

enum class Prefix {
    xy,
    resource,
    color,
    format,
    height,
    scale,
    width,
    font,
    expansion,
    text,
    align,
    marker,
    symbol,
    minimum,
    maximum,
    skip
};
struct PrefixRow {
    const char* word; // two letters in front of a "="
    Prefix prefix;
};
constexpr PrefixRow prefixes[] = {
    {"xy", Prefix::xy       },
    {"rs", Prefix::resource },
    {"co", Prefix::color    },
    {"fm", Prefix::format   },
    {"hi", Prefix::height   },
    {"sc", Prefix::scale    },
    {"wi", Prefix::width    },
    {"fo", Prefix::font     },
    {"te", Prefix::expansion},
    {"tx", Prefix::text     },
    {"ta", Prefix::align    },
    {"mk", Prefix::marker   },
    {"sf", Prefix::symbol   },
    {"wf", Prefix::symbol   },
    {"mn", Prefix::minimum  },
    {"mx", Prefix::maximum  },
    {"sk", Prefix::skip     },
};

struct MarkerRow {
    const char* word;
    int marker;
};
constexpr MarkerRow markers[] = {
    {"dot",    8},
    {"pnt",    1},
    {"plus",   2},
    {"star",   3},
    {"crcl",   4},
    {"circle", 4},
    {"x",      5},
    {"sqr",    6},
    {"square", 6},
    {"tri",    7},
    {"itri",   9},
};

int marker_of(const char* word) {
    for (const MarkerRow& known : markers) {
        if (stricmp(word, known.word) == 0) {
            return known.marker;
        }
    }
    return text_int(word);
}

// A number of 0 or more; anything else leaves `out` as it was.
void take_size(const char* text, float* out) {
    float value = 0.0F;
    if (take_float(&text, &value) && value >= 0.0F) {
        *out = value;
    }
}

void take_limit(const char* text, float* out) {
    take_float(&text, out);
}

// Two numbers, one after the other or with a mark between, as an offset.
void take_offset(const char* text, RAW_attribs* attr) {
    float x = 0.0F;
    float y = 0.0F;
    if (!take_float(&text, &x)) {
        return;
    }
    if (*text == ',' || *text == ':') {
        ++text;
    }
    take_float(&text, &y);
    attr->x = x * column;
    attr->y = y * row;
}

int side_of(float x) {
    return x < 0.0F ? GRIGHT_HOR : x > 0.0F ? GLEFT_HOR : GCENTER_HOR;
}

void take_align(const char* text, RAW_attribs* attr) {
    const int hor = std::tolower(static_cast<unsigned char>(text[0]));
    const int vert = hor == '\0' ? '\0' : std::tolower(static_cast<unsigned char>(text[1]));
    attr->hor = hor == 'l' ? 1 : hor == 'r' ? 3 : 2;
    attr->vert = vert == 't' ? 1 : vert == 'c' ? 2 : vert == 's' ? 4 : vert == 'b' ? 5 : 3;
}

void take_resource(const char* name, RAW_attribs* attr) {
    Gattribs look;
    if (ATTRIB_get(name, "green", &look) == 1) {
        ATTRIB_update(&attr->attrib, &look);
    }
}

void take_scale(const char* text, RAW_attribs* attr) {
    const float value = text_float(text);
    attr->scale = value < 0.01F || value > 1000.0F ? 1.0F : value;
}

// Returns the type that the part names, 0 for none.
int take_prefix(Prefix prefix, const char* text, RAW_attribs* attr) {
    switch (prefix) {
    case Prefix::xy:
        take_offset(text, attr);
        attr->hor = side_of(attr->x);
        attr->vert = GHALF_VERT;
        break;
    case Prefix::resource:
        take_resource(text, attr);
        break;
    case Prefix::color:
        attr->attrib.color = CLR_get_ind(text);
        break;
    case Prefix::format:
        copy_text(attr->format, sizeof attr->format, text);
        return var_type_value;
    case Prefix::height:
        take_size(text, &attr->attrib.height);
        break;
    case Prefix::scale:
        take_scale(text, attr);
        break;
    case Prefix::width:
        take_size(text, &attr->attrib.width);
        break;
    case Prefix::font:
        attr->attrib.font = gget_font_index(text);
        break;
    case Prefix::expansion:
        take_size(text, &attr->attrib.expan);
        break;
    case Prefix::text:
        copy_text(attr->text, sizeof attr->text, text);
        break;
    case Prefix::align:
        take_align(text, attr);
        break;
    case Prefix::marker:
        attr->marker = marker_of(text);
        break;
    case Prefix::symbol:
        copy_text(attr->symbol, sizeof attr->symbol, text);
        break;
    case Prefix::minimum:
        take_limit(text, &attr->min);
        break;
    case Prefix::maximum:
        take_limit(text, &attr->max);
        break;
    case Prefix::skip:
        attr->skip = std::max(text_int(text), 1);
        break;
    }
    return 0;
}

// One part of a format. Returns the type that it names, 0 for none.
int take_part(const char* part, RAW_attribs* attr) {
    if (*part == '%') {
        return take_prefix(Prefix::format, part, attr);
    }
    if (const int type = VAR_dec_type(part); type > 0) {
        return type;
    }
    if (const PositionRow* place = find_position(part)) {
        attr->x = place->x;
        attr->y = place->y;
        attr->hor = place->hor;
        attr->vert = place->vert;
        return 0;
    }
    for (const PrefixRow& known : prefixes) {
        if (part[0] != '\0' && part[1] != '\0' && part[2] == '=' &&
            strnicmp(part, known.word, 2) == 0) {
            return take_prefix(known.prefix, part + 3, attr);
        }
    }
    return 0;
}

// --- Words of plot_param -------------------------------------------------------------

// What is from the sixth character on.
const char* from_sixth(const char* word) {
    return std::strlen(word) > 5 ? word + 5 : "";
}

void take_bar(const char* word, RAW_attribs* attr) {
    word += 3;
    word += std::tolower(static_cast<unsigned char>(*word)) == 'r' ? 1 : 0;
    word += *word != '\0' ? 1 : 0;
    attr->bar = trunc_int(text_float(word));
}

void take_word(const char* word, RAW_attribs* attr) {
    if (begins(word, "skip")) {
        attr->skip = std::max(text_int(from_sixth(word)), 1);
    } else if (begins(word, "text")) {
        copy_text(attr->text, sizeof attr->text, from_sixth(word));
    } else if (begins(word, "mark")) {
        const char* name = from_sixth(word);
        attr->marker = begins(name, "cld") ? raw_cloud_marker : ATTR_parse_marker(name);
    } else if (stricmp(word, "line") == 0) {
        attr->line = 1;
    } else if (begins(word, "yba")) {
        take_bar(word, attr);
    } else if (begins(word, "xy=")) {
        take_offset(word + 3, attr);
    } else if (const PositionRow* place = find_position(word)) {
        attr->x = place->param_x;
        attr->y = place->y;
    }
}

void RAW_plot_param() {
    const TextList words = RES_items("plot_param");
    for (const char* word : words) {
        take_word(word, &state.base);
    }
}

// "con_base": ">N" the least value drawn, and the base; "<N" the largest; N the base.
void take_base() {
    const TextList items = RES_items("con_base");
    RAW_attribs& base = state.base;
    for (const char* item : items) {
        const char mark = item[0];
        const char* number = item + (mark == '<' || mark == '>' ? 1 : 0);
        take_limit(number, mark == '<' ? &base.max : &base.base);
        base.min = mark == '>' ? base.base : base.min;
    }
    if (items.count() > 0) {
        CONT_set_base(base.base);
        CONT_set_cutoff(base.max, base.min);
    }
}

void take_interval() {
    const char* text = RES_get("con_interval");
    float value = 0.0F;
    if (text != nullptr && take_float(&text, &value) && value > 0.0F) {
        state.base.intrvl = value;
        CONT_set_intrvl(value);
    }
}

void take_format(const char* format) {
    state.parsed = {};
    if (const int type = format != nullptr ? RAW_parse_format(&state.base, format) : 0; type > 0) {
        state.base.type = type;
    }
}

// --- Numbers -------------------------------------------------------------------------

std::size_t digits_at(const char* text) {
    return std::strspn(text, "0123456789");
}

// Whether a format holds one conversion of a float, with at most two digits of
// width and of precision. Formats come out of files: nothing else may reach
// printf.
bool is_number_format(const char* format) {
    const char* at = std::strchr(format, '%');
    if (at == nullptr || std::strchr(at + 1, '%') != nullptr) {
        return false;
    }
    at += 1 + std::strspn(at + 1, "-+ #0");
    std::size_t digits = digits_at(at);
    at += digits;
    if (digits > 2) {
        return false;
    }
    if (*at == '.') {
        digits = digits_at(++at);
        at += digits;
        if (digits > 2) {
            return false;
        }
    }
    return *at != '\0' && std::strchr("eEfFgG", *at) != nullptr;
}

// Whether a part of a format says something.
bool is_part(const char* part) {
    return *part == '\0' || VAR_dec_type(part) > 0 || find_position(part) != nullptr ||
           std::any_of(std::begin(prefixes), std::end(prefixes), [part](const PrefixRow& known) {
               return begins(part, known.word) && part[2] == '=';
           });
}

void warn_part(const char* what, const char* part) {
    if (*part == '%' || begins(part, "fm=")) {
        if (!is_number_format(part)) {
            MESS_print(mess_warn,
                       "%s: No format of a number: %s, it is left out; one is as %%5.1f\n", what,
                       part);
        }
        return;
    }
    if (is_part(part)) {
        return;
    }
    KnownWords words;
    RES_add_words(CV_plot_type, &words);
    for (const PositionRow& place : positions) {
        words.push_back({place.word});
    }
    for (const PrefixRow& prefix : prefixes) {
        words.push_back({prefix.word});
    }
    MESS_print(mess_warn,
               "%s: Unknown word: %s, it is left out, the nearest is %s; a format of numbers is as "
               "%%5.1f\n",
               what, part, std::string(nearest_word(words, part)).c_str());
}

// Takes out the zero in front of a point; a lone zero stays.
void drop_zero(char* text) {
    char* at = text + std::strspn(text, " -");
    if (at[0] == '0' && at[1] == '.') {
        std::memmove(at, at + 1, std::strlen(at));
    }
}

constexpr const char* whole_number = "%1.0f"; // as most formats are: without printf

void number_text(const char* format, float value, char* out, std::size_t size) {
    char plain[sizeof RAW_attribs::format + 1] = "";
    const bool no_zero = format[0] == '%' && format[1] == 'z';
    copy_text(plain, sizeof plain, format + (no_zero ? 1 : 0));
    plain[0] = no_zero ? '%' : plain[0];
    if (std::strcmp(plain, whole_number) == 0 || !is_number_format(plain)) {
        const auto [end, error] =
            std::to_chars(out, out + size - 1, value, std::chars_format::fixed, 0);
        *(error == std::errc() ? end : out) = '\0';
        return;
    }
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // is_number_format has seen it
    std::snprintf(out, size, plain, static_cast<double>(value));
#pragma GCC diagnostic pop
    if (no_zero) {
        drop_zero(out);
    }
}

// --- Drawing -------------------------------------------------------------------------

// One item as it is drawn: where, how large, and how it looks.
struct Item {
    const RAW_data& data;
    const RAW_attribs& cur;
    Gpt at;     // with its offset
    float size; // scale times the height of the window
};

void draw_text(const Item& item, const char* text) {
    if (*text != '\0') {
        gtext(&item.at, text);
    }
}

void draw_value(const Item& item) {
    if (!is_set(item.data.value[0])) {
        draw_text(item, item.data.data);
        return;
    }
    char text[100] = "";
    number_text(item.cur.format, item.data.value[0], text, sizeof text);
    draw_text(item, text);
}

void draw_marker(const Item& item, int marker) {
    if (marker == raw_cloud_marker) {
        WX_cloud(item.at.x, item.at.y, 0.01F * item.size, '0');
        return;
    }
    gset_marker_type(marker);
    GPH_mark(item.at.x, item.at.y);
}

void draw_cloud(const Item& item) {
    const float value = item.data.value[0];
    const char eighths = is_set(value) && value >= 0.0F && value <= 9.0F
                             ? static_cast<char>('0' + static_cast<int>(value))
                             : '\0';
    const char cover = item.data.data[0] != '\0' ? item.data.data[0] : eighths;
    if (cover != '\0') {
        WX_cloud(item.at.x, item.at.y, 0.01F * item.size, cover);
    }
}

// A barb that begins at `offset` from the point, or for a calm a circle.
//   dot   radius of a circle that is drawn in any case, 0: none
//   calm  radius of that of a calm
void draw_barb(const Item& item, float dot, float calm, float offset) {
    const float* wind = item.data.value;
    if (dot > 0.0F) {
        WX_cloud(item.at.x, item.at.y, dot * item.size, '0');
    }
    if (wind[1] == 0.0F) {
        WX_cloud(item.at.x, item.at.y, calm * item.size, '0');
    } else if (wind[0] >= 0.0F) {
        WIND_barb_map(item.at.x, item.at.y, wind[0], wind[1], 0.05F * item.size,
                      offset * item.size);
    }
}

void draw_vector(const Item& item) {
    const float* wind = item.data.value;
    if (wind[1] > 0.0F) {
        WIND_vect_map(item.at.x, item.at.y, wind[0], wind[1] * km_per_nmi_f / 100.0F,
                      item.cur.scale, 1.0F);
    }
}

void draw_track(const Item& item) {
    const float* wind = item.data.value;
    if (wind[1] > 0.0F && is_set(wind[0])) {
        const float factor = MAP_factor(MAP_get_clat(), MAP_get_clon());
        WIND_track(item.at.x, item.at.y, MAP_dir_adj(wind[0], item.at.x, item.at.y),
                   2.0F * factor * wind[1] * km_per_nmi_f / 100.0F, 0.1F * item.size, 4, 0);
    }
}

void draw_symbol(const Item& item) {
    if (item.cur.symbol[0] == '\0') {
        WX_symb_file(nullptr);
    }
    WX_symb(item.at.x, item.at.y, item.data.data, 0.03F * item.size);
}

void join_points() {
    if (is_place(state.pts[0]) && is_place(state.pts[1])) {
        gpolyline(2, state.pts);
    }
}

void draw_line(const Item& item) {
    if (stricmp(item.data.data, "post") == 0) {
        state.post_line = true;
        return;
    }
    if (stricmp(item.data.data, "pre") != 0) {
        const float* place = item.data.value;
        state.pts[0] = {item.data.x, item.data.y};
        if (is_set(place[0]) && is_set(place[1]) &&
            MAP_tran(place[0], place[1], &state.pts[1].x, &state.pts[1].y) == 0) {
            return;
        }
    }
    join_points();
}

void draw_by_type(const Item& item, int type) {
    switch (type) {
    case var_type_data:
    case var_type_text:
        draw_text(item, item.data.data);
        break;
    case var_type_mark:
        if (item.data.data[0] != '\0') {
            draw_marker(item, ATTR_parse_marker(item.data.data));
        }
        break;
    case var_type_cloud:
        draw_cloud(item);
        break;
    case var_type_cbarb:
        draw_barb(item, 0.0F, 0.013F, 0.01F);
        break;
    case var_type_dbarb:
        draw_barb(item, 0.003F, 0.006F, 0.003F);
        break;
    case var_type_wbarb:
        draw_barb(item, 0.0F, 0.003F, 0.0F);
        break;
    case var_type_vbarb:
        draw_vector(item);
        break;
    case var_type_track:
        draw_track(item);
        break;
    case var_type_symb:
        draw_symbol(item);
        break;
    case var_type_line:
        draw_line(item);
        break;
    default: // types of grids have no form of their own at a point
        draw_value(item);
    }
}

void draw_item(const Item& item, int type) {
    if (item.cur.text[0] != '\0') {
        draw_text(item, item.cur.text);
    } else if (item.cur.marker != 0) {
        if (item.data.data[0] != '\0' || is_set(item.data.value[0])) {
            draw_marker(item, item.cur.marker);
        }
    } else if (item.cur.line != 0) {
        join_points();
    } else if (is_set(item.cur.bar)) {
        const Gpt bar[2] = {
            item.at, {item.at.x, static_cast<float>(item.cur.bar)}
        };
        gpolyline(2, bar);
    } else {
        draw_by_type(item, type);
    }
}

bool is_speed_type(int type) {
    return (type >= var_type_vect && type <= var_type_track) ||
           (type >= var_type_wbarb && type <= var_type_vbarb);
}

bool is_cut(float value, const RAW_attribs& attr) {
    return is_set(value) &&
           ((is_set(attr.min) && value < attr.min) || (is_set(attr.max) && value > attr.max));
}

// The place of the item that arrives, and the line to it that is due.
void move_to(float x, float y) {
    if (x == state.pts[0].x && y == state.pts[0].y) {
        return;
    }
    state.pts[1] = state.pts[0];
    state.pts[0] = {x, y};
    if (state.post_line) {
        join_points();
        state.post_line = false;
    }
}

// Returns whether the value has a level's colour now.
bool color_by_level(const RAW_data& data, RAW_attribs* cur) {
    const float value = data.value[is_speed_type(data.type) ? 1 : 0];
    if (!is_set(value) || (!is_set(cur->intrvl) && CONT_get_values(nullptr) <= 0)) {
        return false;
    }
    Gattribs step;
    CONT_get_fill_attrib(value, &step);
    ATTRIB_update(&cur->attrib, &step);
    return true;
}

// Puts back what the last item's own look set and the plot leaves open. Not before the
// next one arrives: the line to it has the look of the one that it starts from.
void drop_look() {
    const Gattribs own = state.worn;
    const Gattribs& base = state.base.attrib;
    state.worn = {};
    if (is_set(own.width) && !is_set(base.width)) {
        GPH_mark_attr(nullptr, 1.0F);
        gset_linewidth(0.0F);
        gset_text_width(0.0F);
    }
    if (is_set(own.style) && !is_set(base.style)) {
        gset_linetype(1);
    }
    if (is_set(own.fill_pat) && !is_set(base.fill_pat)) {
        GPH_fill_attr(nullptr);
    }
    if (is_set(own.expan) && !is_set(base.expan)) {
        gset_expan(1.0F);
    }
    if (is_set(own.font) && !is_set(base.font)) {
        GPH_text_font(nullptr);
    }
}

bool is_unset(const Gattribs& attr) {
    return !is_set(attr.color) && !is_set(attr.width) && !is_set(attr.height) &&
           !is_set(attr.expan) && !is_set(attr.style) && !is_set(attr.fill_pat) &&
           !is_set(attr.font);
}

// The format laid over the settings of the plot, which nothing has changed.
const Parsed& parsed_over_base(const char* format) {
    for (const Parsed& known : state.parsed) {
        if (known.used && std::strcmp(known.format, format) == 0) {
            return known;
        }
    }
    Parsed& fresh = state.parsed[state.next_parsed];
    state.next_parsed = (state.next_parsed + 1) % most_parsed;
    copy_text(fresh.format, sizeof fresh.format, format);
    fresh.used = true;
    fresh.attr = state.base;
    fresh.type = RAW_parse_format(&fresh.attr, format);
    return fresh;
}

// --- Raw files -----------------------------------------------------------------------

// How a file is being plotted.
struct FilePlot {
    int raw_fd;
    const char* field;   // selector
    const char* format;  // of the name; null: none
    const char* name;    // as it was given
    bool labels;         // a plot of its own, not an overlay
    bool stored = false; // the station table holds the stations wanted
    bool table = false;  // there is a station table
    TextList ids = RES_items("identifier");
};

// Place of a row on the plot. False if it has none.
bool place_row(FilePlot* plot, const RAW_report& report, float* x, float* y) {
    if (plot->labels && (plot->table || !is_set(report.lat))) {
        if (!plot->table) {
            Domain domain;
            MAP_get_domain(&domain);
            plot->table = CTY_store("sao.cty", cty_xy, &domain, 5) == 1;
        }
        stat_XY_data station;
        if (CTY_search(report.id, &station) == 1) {
            *x = station.city.x;
            *y = station.city.y;
            return true;
        }
        if (plot->stored) {
            return false;
        }
    }
    return is_set(report.lat) && is_set(report.lon) &&
           MAP_tran(report.lat, report.lon, x, y) == 1 && is_set(*x) && is_set(*y);
}

// Diagrams plot the rows by number, or by level, and not on a map.
void place_on_diagram(int proj, int record, RAW_report* report) {
    if (proj == proj_category) {
        report->lat = static_cast<float>(record);
        report->lon = report->value[0];
    } else if (proj == proj_xlogp) {
        report->lon = report->lat;
        report->lat = report->value[0];
    }
}

// Identifier of a row under the bottom axis of a diagram by row number.
void label_category(const RAW_report& report, int record, float x) {
    float step = 0.0F;
    float unused = 0.0F;
    MAP_get_latlon(&step, &unused);
    const int every =
        std::max(trunc_int(step > 0.0F ? step : std::ceil(std::fabs(MAP_get_vert()) / 10.0F)), 1);
    if (record % every != 0) {
        return;
    }
    Gattribs attr;
    ATTRIB_get("color_line", "magenta", &attr);
    if (attr.color == -1) {
        return;
    }
    Glim view{};
    PLT_get_view(&view);
    GPH_trans(tran_page);
    GPH_text_attr(&attr, 0.015F * (view.y_max - view.y_min));
    GPH_line_attr(&attr);
    GPH_text_align(GCENTER_HOR, GTOP_VERT);
    GPH_trans(tran_map);
    const float page_x = xW_trans(x, tran_map, tran_page);
    GPH_trans(tran_page);
    GPH_printf(page_x, view.y_min - 0.01F, "%s", report.id);
    GPH_trans(tran_map);
}

void fill_item(const FilePlot& plot, const RAW_report& report, RAW_data* data) {
    data->type = state.base.type;
    copy_text(data->data, sizeof data->data, report.data);
    fill_string(data->data, '_', ' ');
    const bool two = report.format[0] != '\0' && plot.format != nullptr;
    std::snprintf(data->format, sizeof data->format, "%s%s%s", report.format, two ? ":" : "",
                  plot.format != nullptr ? plot.format : "");
    data->value[0] = report.value[0];
    data->value[1] = report.value[1];
}

bool is_selected(const FilePlot& plot, const RAW_report& report) {
    const bool all = plot.ids.count() == 1 && stricmp(plot.ids[0], "all") == 0;
    return !plot.labels || all || CTY_ids_cmp(plot.ids.count(), plot.ids.begin(), report.id) == 1;
}

// Fields may be named in the rows alone: only a file read to its end lacks one.
void warn_field(const FilePlot& plot, bool any) {
    if (any || state.told == plot.name) {
        return;
    }
    state.told = plot.name;
    MESS_print(mess_warn, "RAW_plot_file: No value of the field: %s\n", plot.name);
}

void plot_rows(FilePlot& plot) {
    const int proj = MAP_get_proj();
    const bool each = plot.field == RAW_selector(raw_each);
    RAW_report report;
    RAW_data data;
    int placed = -1; // the row whose place is in `data`
    bool has_place = false;
    bool any = each; // value of the field
    for (int record = 0;;) {
        const int result = RAW_read(plot.raw_fd, &report, plot.field, &record);
        if (result == -1) {
            warn_field(plot, any || record == 0);
            return;
        }
        any = any || report.data[0] != '\0' || is_set(report.value[0]);
        if ((each && result == 0) || record % state.base.skip != 0 || !is_selected(plot, report)) {
            ++record;
            continue;
        }
        if (placed != record || !is_map_proj(proj)) {
            RAW_data_init(&data);
            RAW_report placing = report;
            place_on_diagram(proj, record, &placing);
            has_place = place_row(&plot, placing, &data.x, &data.y);
            placed = record;
        }
        if (has_place) {
            if (proj == proj_category) {
                label_category(report, record, data.x);
            }
            fill_item(plot, report, &data);
            RAW_plot_data(&data);
        }
        record += each ? 0 : 1;
    }
}

void label_plot(const FilePlot& plot, const RAW_info& info) {
    const char* field = RAW_get_field_info(plot.raw_fd, plot.field);
    field = field != nullptr ? field : RAW_get_field_name(plot.raw_fd, plot.field);
    const std::string text = info.info + (field != nullptr ? std::string("-") + field : "");
    PLT_label_up_left(text.c_str());
    PLT_label_up_right(info.datim);
}

} // namespace

int RAW_init_attrib(RAW_attribs* attr) {
    *attr = {};
    return 0;
}

int RAW_plot_init(const Gattribs* attrib, float sc) {
    if (FLAG_getplot(part_any) == 0 || FLAG_get(flag_plot_type) == plot_type_none) {
        return -1;
    }
    std::string told = std::move(state.told);
    state = {};
    state.told = std::move(told);
    state.base.scale = sc;
    state.base.attrib = *attrib;
    ATTRIB_get("color_data", "green", &state.plain);
    RAW_plot_param();
    GPH_line_attr(nullptr);
    GPH_fill_attr(nullptr);
    GPH_mark_attr(nullptr, 1.0F);
    GPH_text_font(nullptr);
    GPH_trans(tran_map);
    CONT_init();
    CONT_set_quantity(nullptr); // colours that suit the radar's data do not suit these values
    CONT_set_fill_colors(nullptr, 0);
    if (!is_set(CONT_get_type())) {
        CONT_set_type(cont_fill);
    }
    take_format(RES_get("plot_format"));
    take_base();
    take_interval();
    RAW_set_attribs(&state.base);
    state.base.hor = side_of(state.base.x);
    GPH_text_align(state.base.hor, state.base.vert);
    return 0;
}

int RAW_set_attribs(const RAW_attribs* attr) {
    Gattribs look = attr->attrib;
    if (!is_set(look.color)) {
        look = state.plain;
        ATTRIB_update(&look, &attr->attrib);
    }
    if (look.color < 0) {
        return -1;
    }
    GPH_line_attr(&look);
    GPH_text_attr(&look, attr->scale * MAP_get_vert() * 0.018F);
    GPH_text_align(attr->hor, attr->vert);
    GPH_mark_attr(&look, attr->scale);
    GPH_fill_attr(&look);
    if (attr->symbol[0] != '\0') {
        WX_symb_file(attr->symbol);
    }
    return 0;
}

int RAW_parse_format(RAW_attribs* attr, const char* fmt) {
    int type = 0;
    char part[sizeof RAW_data::format] = "";
    while (*fmt != '\0') {
        const std::size_t length = std::strcspn(fmt, ":");
        copy_text(part, std::min(sizeof part, length + 1), fmt);
        const int named = take_part(part, attr);
        type = named > 0 ? named : type;
        fmt += length + (fmt[length] == ':' ? 1 : 0);
    }
    return type;
}

void RAW_check_format(const char* what, const char* format) {
    const TextList parts(format, ':');
    for (const char* part : parts) {
        warn_part(what, part);
    }
}

int RAW_plot_data(const RAW_data* data) {
    if (FLAG_getplot(part_data) == 0 || FLAG_get(flag_plot_type) == plot_type_none) {
        return -1;
    }
    RAW_attribs cur = state.base;
    move_to(data->x, data->y);
    ATTRIB_update(&cur.attrib, &data->attr);
    const bool changed = color_by_level(*data, &cur) || !is_unset(data->attr);
    if (is_cut(data->value[0], cur)) {
        return -1;
    }
    int named = 0;
    if (changed) {
        named = RAW_parse_format(&cur, data->format);
    } else {
        const Parsed& parsed = parsed_over_base(data->format);
        cur = parsed.attr;
        named = parsed.type;
    }
    const int type = named > 0 ? named : data->type;
    drop_look();
    if (is_cut(data->value[0], cur) || RAW_set_attribs(&cur) == -1) {
        return -1;
    }
    state.worn = cur.attrib;
    const float vert = MAP_get_vert();
    const float size = cur.scale * vert;
    const Gpt at = {data->x + cur.x * size, data->y + cur.y * size};
    if (MESS_check(mess_debug) != 0) {
        MESS_print(mess_debug, "PLOT: %8.3f %8.3f %-5s %-10s %-10s %8.3f\n",
                   static_cast<double>(data->x), static_cast<double>(data->y), VAR_print_type(type),
                   data->format, data->data, static_cast<double>(data->value[0]));
    }
    draw_item({*data, cur, at, size}, type);
    return 0;
}

int RAW_plot_file(const char* file, int label) {
    const char* field = nullptr;
    const char* format = nullptr;
    const int raw_fd = RAW_file_open(file, &field, &format, raw_read_access);
    if (raw_fd < 0) {
        return 0;
    }
    // The plot around an overlay keeps its levels, colours and fills.
    const CONT_keeper levels;
    const int print_solid = gget_fill_print_solid();
    Gattribs attr;
    ATTRIB_get("color_data", "green", &attr);
    float scale = 1.0F;
    RES_getval("plot_scale", &scale, CV_float);
    FilePlot plot{raw_fd, field, format, file, label != 0};
    if (RAW_plot_init(&attr, scale) == 0) {
        gset_fill_print_solid(1);
        Domain domain;
        MAP_get_domain(&domain);
        if (plot.labels && (RES_get("city_file") != nullptr || RES_get("stat_prior") != nullptr)) {
            plot.stored = CTY_store("sao.cty", cty_xy_pos, &domain, DOM_get_prior()) == 1;
            plot.table = plot.stored;
        }
        if (format != nullptr && state.told != file) { // once, not with each frame
            state.told = file;
            RAW_check_format("RAW_plot_file", format);
        }
        // Once more: an alignment that it names is stronger than the side of an offset.
        take_format(RES_get("plot_format"));
        take_format(format);
        RAW_info info;
        RAW_getinfo(raw_fd, &info);
        if (plot.labels) {
            label_plot(plot, info);
        }
        plot_rows(plot);
        drop_look();
        gset_fill_print_solid(print_solid);
    }
    RAW_close(raw_fd);
    return 0;
}

void keep_raw_plt(StateKeeper& keeper) {
    keeper.keep(state);
}
