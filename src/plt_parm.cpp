// plt_parm: the words of the resource `plot_param` that belong to every plot.
// They set the map, the colour bar, the kernel and the file layer; words for the plot
// session and for modules that read them later are kept in PLT_settings.
#include "plt_tool.h"

#include "cont.h"
#include "date.h"
#include "files.h"
#include "geometry_text.h"
#include "gif_loop.h"
#include "gks.h"
#include "img_kind.h"
#include "map.h"
#include "maptran.h"
#include "region.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "zyrcty.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

PLT_settings settings;

enum class Word {
    full,
    full_labels,
    fit_labels,
    page,
    redraw,
    id_type,
    zone,
    overlay,
    latlon,
    grid_factor,
    skip,
    plot_offset,
    plot_limit,
    location_priority,
    panel,
    font,
    gif_interlace,
    gif_transparent,
    gif_delay,
    gif_plays,
    inverse,
    local_colormap,
    rw_colors,
    loop_title,
    ps_color,
    ps_reverse,
    pix_mode,
    bar,
    no_bar,
    headers,
    shadow,
    max_bad,
    empty,
    min_size,
    grid_format,
    place
};

struct WordRow {
    const char* text;
    bool prefix; // a value may follow
    Word word;
    int number; // what the word stands for, where one action serves several
};

// The first row that fits a word counts.
constexpr std::array<WordRow, 44> words = {
    {
     {"full", false, Word::full, 0},
     {"fullab", false, Word::full_labels, 1},
     {"fitlab", false, Word::fit_labels, 1},
     {"nopage", false, Word::page, 0},
     {"page", false, Word::page, 1},
     {"noredraw", false, Word::redraw, 0},
     {"id", false, Word::id_type, 0},
     {"wmo", false, Word::id_type, 1},
     {"cod_wmo", false, Word::id_type, 2},
     {"tz", true, Word::zone, 0},
     {"over", true, Word::overlay, 0},
     {"lalo", true, Word::latlon, 0},
     {"gridx", true, Word::grid_factor, 0},
     {"plt_skip", true, Word::skip, 0},
     {"plt_off", true, Word::plot_offset, 0},
     {"plt_grid", true, Word::plot_limit, 0},
     {"loc_pr", true, Word::location_priority, 0},
     {"vp_size", true, Word::panel, 0},
     {"font", true, Word::font, 0},
     {"gif_inter", false, Word::gif_interlace, 1},
     {"gif_norm", false, Word::gif_interlace, 0},
     {"gif_trans", false, Word::gif_transparent, 1},
     {"gif_delay", true, Word::gif_delay, 0},
     {"gif_plays", true, Word::gif_plays, 0},
     {"inv", false, Word::inverse, 1},
     {"lcmap", false, Word::local_colormap, 1},
     {"nolcmap", false, Word::local_colormap, 0},
     {"rwclr", false, Word::rw_colors, 1},
     {"norwclr", false, Word::rw_colors, 0},
     {"nolooptitle", false, Word::loop_title, 0},
     {"pscolor", false, Word::ps_color, 1},
     {"psrev", false, Word::ps_reverse, 1},
     {"clear", false, Word::pix_mode, 1},
     {"new", false, Word::pix_mode, 2},
     {"kill", false, Word::pix_mode, 9},
     {"bar", true, Word::bar, 2},
     {"nobar", false, Word::no_bar, -2},
     {"nohdr", false, Word::headers, 0},
     {"shadow", true, Word::shadow, 4},
     {"max_bad", true, Word::max_bad, 5},
     {"empty", true, Word::empty, 5},
     {"min_size", true, Word::min_size, 0},
     {"grdfmt", true, Word::grid_format, 0},
     {"georef", false, Word::place, 1},
     }
};

int int_value(const char* text, int if_none) {
    int value = if_none;
    take_int(&text, &value);
    return value;
}

// A number of at least 1, else what the word stands for.
int positive(const char* text, int otherwise) {
    const int value = int_value(text, 0);
    return value < 1 ? otherwise : value;
}

// Up to N numbers with colons between them. Returns how many there were.
template <typename T, std::size_t N>
std::size_t read_numbers(const char* text, bool (*take)(const char**, T*),
                         std::array<T, N>* numbers) {
    std::size_t count = 0;
    while (count < N && take(&text, &(*numbers)[count])) {
        ++count;
        if (!take_char(&text, ':')) {
            break;
        }
    }
    return count;
}

// Two numbers, of which one serves both. False when there is none.
template <typename T>
bool read_pair(const char* text, bool (*take)(const char**, T*), std::array<T, 2>* pair) {
    const std::size_t count = read_numbers(text, take, pair);
    if (count == 1) {
        (*pair)[1] = (*pair)[0];
    }
    return count > 0;
}

void set_latlon(const char* value) {
    std::array<float, 4> numbers{};
    const std::size_t count = read_numbers(value, take_float, &numbers);
    if (count == 0) {
        return;
    }
    const float lon = count > 1 ? numbers[1] : numbers[0];
    MAP_latlon(numbers[0], lon, trunc_int(numbers[2]), trunc_int(numbers[3]));
}

void set_overlay(const char* value) {
    std::array<int, 2> numbers{};
    const std::size_t count = read_numbers(value, take_int, &numbers);
    if (count > 0) {
        PLT_set_overlay_base(numbers[0]);
    }
    if (count > 1) {
        PLT_set_num_overlay(numbers[1]);
    }
}

void set_skip(const char* value) {
    std::array<int, 2> skip{};
    if (read_pair(value, take_int, &skip)) {
        CONT_set_skip(skip[0], skip[1]);
    }
}

void set_plot_offset(const char* value) {
    std::array<float, 2> offset{};
    if (read_pair(value, take_float, &offset)) {
        CONT_set_plot_offset(offset[0], offset[1]);
    }
}

void set_bar(const char* value, int bar) {
    std::array<float, 2> range{missing_f, missing_f};
    CONT_set_bar(bar);
    if (read_numbers(value, take_float, &range) > 0) {
        CONT_set_bar_range(range[1], range[0]);
    }
}

// Seconds of a picture; of the last one twice that unless they follow.
void set_gif_delay(const char* value) {
    std::array<float, 2> delays{};
    const std::size_t count = read_numbers(value, take_float, &delays);
    if (count == 0 || !GIF_set_pace(delays[0], count > 1 ? delays[1] : 2.0F * delays[0])) {
        MESS_print(mess_warn, "plot_param: No delay: %s\n", value);
    }
}

// Words that set something outside the plot session. `rest` is all that is
// after the word, `value` the same without the separator.
void apply_elsewhere(const WordRow& row, const char* rest, const char* value) {
    switch (row.word) {
    case Word::id_type:
        CTY_set_id_type(row.number);
        break;
    case Word::zone:
        if (DATE_is_TZ(value) != 0) { // or times in UTC would bear another zone's name
            DATE_set_TZ(value);
        }
        break;
    case Word::latlon:
        set_latlon(value);
        break;
    case Word::skip:
        set_skip(value);
        break;
    case Word::plot_offset:
        set_plot_offset(value);
        break;
    case Word::plot_limit:
        MAP_set_plot_limit(int_value(value, 1));
        break;
    case Word::location_priority:
        if (*value != '\0') {
            DOM_set_loc_prior(int_value(value, 0));
        }
        break;
    case Word::font:
        GPH_set_def_font(value);
        break;
    case Word::gif_interlace:
        GIF_interlace(row.number);
        break;
    case Word::gif_transparent:
        GIF_transparent(row.number);
        break;
    case Word::gif_delay:
        set_gif_delay(value);
        break;
    case Word::gif_plays:
        if (!GIF_set_plays(int_value(value, missing))) {
            MESS_print(mess_warn, "plot_param: No number of plays: %s\n", value);
        }
        break;
    case Word::inverse:
        gset_inverse(row.number);
        break;
    case Word::redraw:
        gset_redraw(row.number);
        break;
    case Word::local_colormap:
        gset_local_colormap(row.number);
        break;
    case Word::rw_colors:
        gset_rw_colors(row.number);
        break;
    case Word::loop_title:
        gset_loop_title(row.number);
        break;
    case Word::pix_mode:
        gset_pix_mode(row.number);
        break;
    case Word::ps_color:
        gps_set_colorPS(row.number);
        gset_inverse(1);
        break;
    case Word::ps_reverse:
        gps_set_reverse(row.number);
        break;
    case Word::bar:
        set_bar(value, row.number);
        break;
    case Word::no_bar:
        CONT_set_bar(row.number);
        break;
    case Word::shadow:
        gset_font_drop(positive(value, row.number));
        break;
    case Word::min_size:
        FILE_set_min_size(positive(value, row.number));
        break;
    case Word::grid_factor:
        settings.grid_factor = int_value(rest, settings.grid_factor);
        break;
    default:
        break;
    }
}

void apply(const WordRow& row, const char* rest) {
    const char* value = *rest == '\0' ? rest : rest + 1;
    switch (row.word) {
    case Word::full_labels:
        PLT_set_full_lab(row.number);
        [[fallthrough]];
    case Word::full:
        PLT_set_view_offset(0.0F);
        break;
    case Word::fit_labels:
        PLT_set_fit_lab(row.number);
        break;
    case Word::page:
        MESS_set_page(row.number);
        break;
    case Word::overlay:
        set_overlay(value);
        break;
    case Word::panel:
        PLT_panel_decode(value);
        break;
    case Word::headers:
        settings.headers = row.number;
        break;
    case Word::empty: {
        constexpr int largest = 125; // a shell has other meanings for more
        settings.empty_code = std::min(positive(value, row.number), largest);
        break;
    }
    case Word::max_bad:
        settings.max_bad = positive(value, row.number);
        break;
    case Word::place:
        settings.place = row.number != 0;
        break;
    case Word::grid_format:
        copy_text(settings.grid_format, sizeof settings.grid_format, value);
        break;
    default:
        apply_elsewhere(row, rest, value);
        break;
    }
}

// Whether the row fits the word; `rest` is then after it.
bool fits(const WordRow& row, const char* word, const char** rest) {
    const std::size_t length = std::strlen(row.text);
    *rest = word + std::min(length, std::strlen(word));
    return row.prefix ? strnicmp(word, row.text, static_cast<int>(length)) == 0
                      : stricmp(word, row.text) == 0;
}

// A kind of image and, after a separator, the name of its files.
void take_dump(const IMG_kind& kind, const char* word) {
    const char* rest = word + std::strlen(kind.word);
    PLT_set_dump(kind.dump, *rest == '\0' ? rest : rest + 1);
}

void decode_word(const char* word) {
    const char* rest = nullptr;
    for (const WordRow& row : words) {
        if (fits(row, word, &rest)) {
            apply(row, rest);
            return;
        }
    }
    if (const IMG_kind* kind = IMG_find_word(word); kind != nullptr) {
        take_dump(*kind, word);
    }
}

// Some kinds of image are asked for in the list of output files as well.
void decode_output(const char* word) {
    const IMG_kind* kind = IMG_find_word(word);
    if (kind != nullptr && kind->out_file) {
        take_dump(*kind, word);
    }
}

void decode_list(const char* resource, void (*decode)(const char*)) {
    const TextList list = RES_items(resource);
    for (const char* item : list) {
        decode(item);
    }
}

} // namespace

int PLT_param_decode() {
    decode_list("plot_param", decode_word);
    decode_list("out_file", decode_output);
    return 0;
}

void PLT_add_param_words(KnownWords* known) {
    for (const WordRow& row : words) {
        known->push_back({row.text, row.prefix});
    }
    for (const IMG_kind& kind : IMG_kinds()) {
        known->push_back({kind.word, true});
    }
}

int PLT_panel_decode(const char* text) {
    Gpanel panel;
    if (!read_panel(text, &panel) || panel.width <= 0.0F || panel.height <= 0.0F ||
        !is_on_page(panel)) {
        return -1;
    }
    return GPH_set_view_size(panel.width, panel.height, panel.x, panel.y);
}

int PLT_set_dump(int type, const char* filename) {
    settings.dump = type;
    if (filename == nullptr || *filename == '\0') {
        const IMG_kind* kind = IMG_find_dump(type);
        filename = kind == nullptr ? "" : kind->file_name;
    }
    const int status = copy_text(settings.dump_file, sizeof settings.dump_file, filename);
    if (status != 0) {
        MESS_print(mess_warn, "PLT_set_dump: Name is too long, cut to: %s\n", settings.dump_file);
    }
    return status;
}

bool PLT_has_dump() {
    return settings.dump != 0;
}

const PLT_settings& PLT_get_settings() {
    return settings;
}

void keep_plt_parm(StateKeeper& keeper) {
    keeper.keep(settings);
}
