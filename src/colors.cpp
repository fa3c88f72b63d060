// colors.cpp: the colour table and the attribute language. Owns the table of
// 256 colours, which CLR_read_table fills when the workstation opens.

#include "text_num.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include "files.h"
#include "near_word.h"
#include "res_table.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace {

struct Rgb {
    std::array<char, 20> name{};
    float red = 0.0F; // 0.0 to 1.0
    float grn = 0.0F;
    float blu = 0.0F;
};

constexpr int max_colors = 256;
constexpr const char* default_table = "zyr.clr";
constexpr int device_metafile = 3; // of flag 2, and the pages after it
constexpr int device_hpgl = 5;
constexpr int kept_names = 16; // slots whose names survive a new table

struct ColorTable {
    std::array<Rgb, max_colors> colors{};
    int num_colors = 0;
    int num_fill = 0;                 // colours meant for fills
    bool any = false;                 // the file read last names a color
    bool any_number = false;          // with a number
    bool no_text = false;             // it holds bytes that no text does
    std::vector<std::string> unknown; // names that were warned of
};
ColorTable table;

struct Word {
    const char* text;
    int value;
};
constexpr std::array special_colors = {
    Word{"end",   -2 },
    Word{"none",  -1 },
    Word{"off",   -1 },
    Word{"back",  -1 },
    Word{"pblk",  500},
    Word{"pbblk", 501},
    Word{"ptblk", 502},
    Word{"pwht",  503},
    Word{"pbwht", 504},
    Word{"ptwht", 505},
    Word{"pgry",  506},
    Word{"pbgry", 507},
    Word{"ptgry", 508},
};
constexpr std::array line_styles = {
    Word{"sol",    1},
    Word{"dsh",    2},
    Word{"lsdsh",  3},
    Word{"llsdsh", 4},
    Word{"dot",    5},
};
constexpr std::array fill_patterns = {
    Word{"sol",  0 },
    Word{"st",   1 },
    Word{"ost",  2 },
    Word{"rst",  3 },
    Word{"lst",  4 },
    Word{"vln",  5 },
    Word{"||",   5 },
    Word{"dlr",  6 },
    Word{"\\\\", 6 },
    Word{"drl",  7 },
    Word{"//",   7 },
    Word{"hln",  8 },
    Word{"--",   8 },
    Word{"hat",  9 },
    Word{"XX",   9 },
    Word{"clr",  10},
    Word{"0%",   10},
    Word{"1%",   11},
    Word{"2%",   12},
    Word{"3%",   13},
    Word{"4%",   14},
    Word{"5%",   15},
    Word{"6%",   16},
    Word{"7%",   17},
    Word{"8%",   18},
    Word{"9%",   19},
};
// By prefix: the first that fits wins.
constexpr std::array markers = {
    Word{"pnt",    1},
    Word{".",      1},
    Word{"plus",   2},
    Word{"+",      2},
    Word{"star",   3},
    Word{"*",      3},
    Word{"crcl",   4},
    Word{"circle", 4},
    Word{"o",      4},
    Word{"x",      5},
    Word{"sqr",    6},
    Word{"square", 6},
    Word{"#",      6},
    Word{"tri",    7},
    Word{"^",      7},
    Word{"itri",   9},
    Word{"v",      9},
    Word{"dot",    8},
};

// Whole words, any case.
const Word* find_word(std::span<const Word> words, const char* text) {
    const auto at = std::find_if(words.begin(), words.end(),
                                 [&](const Word& w) { return stricmp(w.text, text) == 0; });
    return at == words.end() ? nullptr : &*at;
}

int word_or_number(std::span<const Word> words, const char* text) {
    const Word* word = find_word(words, text);
    return word != nullptr ? word->value : text_int(text);
}

// --- Colour table file --------------------------------------------------------

float unit_range(float v) {
    return std::clamp(v, 0.0F, 1.0F);
}

float component(int byte) {
    return unit_range(static_cast<float>(byte) / 255.0F);
}

// Three components of `width` digits; how many there were. A decimal one may
// have blanks for its zeros.
int take_components(const char** text, int width, int base, Rgb* color) {
    int count = 0;
    for (float* part : {&color->red, &color->grn, &color->blu}) {
        int value = 0;
        if (base == 10) {
            skip_blanks(text);
        }
        if (!take_digits(text, width, base, &value)) {
            break;
        }
        *part = component(value);
        ++count;
    }
    return count;
}

// "name r g b" or "name #RRGGBB", as far as it scans.
void parse_entry(const char* text, Rgb* color) {
    skip_blanks(&text);
    const char* end = text;
    while (*end != '\0' && std::isspace(static_cast<unsigned char>(*end)) == 0) {
        ++end;
    }
    if (end == text) {
        return;
    }
    const auto length = std::min<std::size_t>(end - text, color->name.size() - 1);
    color->name = {};
    std::memcpy(color->name.data(), text, length);
    text += length; // a longer name goes on where the numbers should be
    int parts = 0;
    for (float* part : {&color->red, &color->grn, &color->blu}) {
        float value = 0.0F;
        if (!take_float(&text, &value)) {
            break;
        }
        *part = unit_range(value);
        ++parts;
    }
    skip_blanks(&text);
    if (take_char(&text, '#')) {
        parts = take_components(&text, 2, 16, color);
    }
    table.any = true;
    table.any_number = table.any_number || parts > 0;
}

// Where the lines of one file go.
struct Slots {
    int base;          // first slot of the file
    int slot = 0;      // of the next entry, from the base
    int highest = -1;  // seen, from the base
    int end_slot = -1; // at "END"
};

void read_line(char* text, bool first_file, Slots* at) {
    wstrim_string(text);
    const char* line = text;
    skip_blanks(&line);
    at->highest = std::max(at->highest, at->slot);
    if (*line == '#') {
        return;
    }
    if (stricmp(line, "END") == 0) {
        if (first_file) {
            at->end_slot = at->slot;
        }
        return;
    }
    int slot = at->slot;
    take_int(&line, &slot);
    slot = std::clamp(slot, -max_colors, max_colors);
    at->slot = slot; // also of a line that is left out
    if (slot < 0 || slot >= max_colors - at->base) {
        return;
    }
    parse_entry(line, &table.colors[at->base + slot]);
    at->highest = std::max(at->highest, slot);
    at->slot = slot + 1;
}

// The rest of a line beyond its limit is passed over. The number of pieces has
// a limit of its own, as a device may give them without end.
void read_table_file(std::FILE* file, bool first_file, bool count_fills) {
    constexpr int most_pieces = 100000;
    constexpr int most_of_line = 1000;
    Slots at{first_file ? 0 : table.num_colors};
    table.any = false;
    table.any_number = false;
    table.no_text = false;
    std::array<char, 101> line{};
    bool begins = true;
    int pieces = 0; // of the line
    for (int i = 0; i < most_pieces && std::fgets(line.data(), line.size(), file) != nullptr; ++i) {
        const bool ends = std::strchr(line.data(), '\n') != nullptr;
        pieces = begins ? 1 : pieces + 1;
        table.no_text = pieces > most_of_line ||
                        std::any_of(line.begin(), line.begin() + std::strlen(line.data()),
                                    [](char c) { return c > '\0' && c < ' ' && !is_blank(c); });
        if (table.no_text) {
            return;
        }
        if (begins) {
            read_line(line.data(), first_file, &at);
        }
        begins = ends;
    }
    table.num_colors = std::min(at.base + at.highest + 1, max_colors);
    if (first_file && count_fills) {
        table.num_fill = std::clamp(at.end_slot >= 0 ? at.end_slot : at.highest, 0, max_colors);
    }
}

// --- Names --------------------------------------------------------------------

int find_color(const char* name) {
    for (int i = 0; i < table.num_colors; ++i) {
        if (stricmp(table.colors[i].name.data(), name) == 0) {
            return i;
        }
    }
    return -1;
}

// "#RRGGBB" and "#rrrgggbbb": a new entry under that name.
int add_numeric(const char* name) {
    const std::size_t length = std::strlen(name);
    const bool hex = length == 7;
    if (*name != '#' || (!hex && length != 10)) {
        return -1;
    }
    Rgb color;
    const char* text = name + 1;
    if (take_components(&text, hex ? 2 : 3, hex ? 16 : 10, &color) != 3) {
        return -1;
    }
    return CLR_add(name, color.red, color.grn, color.blu);
}

// Whether it is a name that was not warned of yet; beyond some, none is.
bool is_new(const char* name) {
    constexpr std::size_t most = 50;
    std::vector<std::string>& unknown = table.unknown;
    if (unknown.size() == most ||
        std::find(unknown.begin(), unknown.end(), name) != unknown.end()) {
        return false;
    }
    unknown.emplace_back(name);
    return true;
}

void warn_number(int number) {
    if (is_new(std::to_string(number).c_str())) {
        MESS_print(mess_warn, "ATTRIB_get: No color of that number: %d, the last is %d\n", number,
                   table.num_colors - 1);
    }
}

std::string nearest_name(const char* name) {
    KnownWords names;
    for (int i = 0; i < table.num_colors; ++i) {
        if (table.colors[i].name[0] != '\0' && table.colors[i].name[0] != '#') {
            names.push_back({table.colors[i].name.data()});
        }
    }
    names.push_back({"none"});
    return std::string(nearest_word(names, name));
}

// A name that is none is warned of once, while there is a table to look it up in.
void warn_name(const char* name) {
    if (table.num_colors == 0 || !is_new(name)) {
        return;
    }
    if (*name == '#') {
        MESS_print(mess_warn, "CLR_get_ind: Unknown color: %s, a color in digits is #RRGGBB\n",
                   name);
    } else {
        MESS_print(mess_warn, "CLR_get_ind: Unknown color: %s, the nearest is %s\n", name,
                   nearest_name(name).c_str());
    }
}

// A window reports what it cannot show; a page looks at no background. Names of
// the window server alone cannot be known here.
void warn_background() {
    const char* name = RES_get("background");
    const int device = FLAG_get(flag_device);
    const auto is = [name](const char* word) { return begins(name, word); };
    if (device < device_metafile || device > device_hpgl || name == nullptr || *name == '\0' ||
        is("none") || is("def") || is("over") || is("#") || is("rgb:") || CLR_look_up(name) != -1) {
        return;
    }
    MESS_print(mess_warn, "background: Unknown color: %s, the nearest is %s; paper is white\n",
               name, nearest_name(name).c_str());
}

const Rgb& color_at(int ind) {
    return table.colors[ind >= 0 && ind < max_colors ? ind : max_colors - 1];
}

// --- Attribute language -------------------------------------------------------

bool parse_long_form(const char* field, Gattribs* attrib) {
    if (std::strlen(field) < 3 || field[2] != '=') {
        return false;
    }
    const auto is = [field](const char* word) { return strnicmp(field, word, 2) == 0; };
    const char* value = field + 3;
    if (is("co")) {
        attrib->color = CLR_get_ind(value);
    } else if (is("wi")) {
        attrib->width = text_float(value);
    } else if (is("st")) {
        attrib->style = word_or_number(line_styles, value);
    } else if (is("fo")) {
        attrib->font = gget_font_index(value);
    } else if (is("fi") || is("fp")) {
        attrib->fill_pat = ATTR_parse_fill_pat(value);
    } else if (is("sc") || is("hi")) {
        attrib->height = text_float(value);
    } else if (is("te")) {
        attrib->expan = text_float(value);
    } else {
        return false;
    }
    return true;
}

// Can a field after the color be read? Names of colors and fonts are looked up.
bool is_readable(const char* field) {
    constexpr std::array short_forms = {"w", "s", "t", "f", "h", "e"};
    const auto is = [field](const char* word) { return begins(field, word); };
    const bool is_long = std::strlen(field) > 2 && field[2] == '=';
    const char* value = field + (is_long ? 3 : 1);
    if (!is_long) {
        return is_number(value) ? std::any_of(short_forms.begin(), short_forms.end(), is)
                                : std::strcmp(field, "fM") == 0;
    }
    if (is("st")) {
        return is_number(value) || find_word(line_styles, value) != nullptr;
    }
    if (is("fi") || is("fp")) {
        return ATTR_is_fill_pat(value);
    }
    return is("co") || is("fo") ||
           ((is("wi") || is("sc") || is("hi") || is("te")) && is_number(value));
}

// Once: an attribute is parsed with each picture.
void warn_field(const char* field) {
    if (is_new(field)) {
        MESS_print(mess_warn,
                   "ATTRIB_parse: Unknown attribute: %s; they are co=, wi=, st=, fo=, fi=, hi= and "
                   "te=\n",
                   field);
    }
}

void parse_short_form(const char* field, Gattribs* attrib) {
    const char* value = field + 1;
    switch (*field) {
    case 'w':
        attrib->width = text_float(value);
        break;
    case 's':
        attrib->style = text_int(value);
        break;
    case 't':
        attrib->font = text_int(value);
        break;
    case 'f':
        attrib->fill_pat = *value == 'M' ? missing : text_int(value);
        break;
    case 'h':
        attrib->height = text_float(value);
        break;
    case 'e':
        attrib->expan = text_float(value);
        break;
    default:
        break;
    }
}

void parse_field(const char* field, bool first, Gattribs* attrib) {
    if (*field == '\0') {
        return;
    }
    if (first && std::strchr(field, '=') == nullptr) {
        attrib->color = CLR_get_ind(field);
        return;
    }
    if (!is_readable(field)) {
        warn_field(field);
    }
    if (!parse_long_form(field, attrib)) {
        parse_short_form(field, attrib);
    }
}

bool has_names() {
    return std::any_of(table.colors.begin(), table.colors.begin() + table.num_colors,
                       [](const Rgb& color) { return color.name[0] != '\0'; });
}

// Reads the files of a list one after another. Returns whether one of them opened.
bool read_tables(const char* names, bool count_fills) {
    const TextList files(names, ',');
    bool first_file = true;
    for (const char* name : files) {
        if (*name == '\0') {
            continue; // would be standard input
        }
        std::array<char, file_name_size> path{};
        FILE_add_path(RES_get("file_path"), name, path.data());
        const FILE_ptr file(FILE_open_text(path.data()));
        if (!file) {
            MESS_print(mess_warn, "CLR_read_table: Unable to open color table: %s\n", path.data());
            FILE_tell_nearest("CLR_read_table", RES_get("file_path"), name);
            continue;
        }
        const ColorTable before = table;
        read_table_file(file.get(), first_file, count_fills);
        // Such as a picture, or a device.
        if (table.no_text || !has_names() || (table.any && !table.any_number)) {
            MESS_print(mess_warn, "CLR_read_table: No colors in: %s\n", path.data());
            table = before;
            continue;
        }
        first_file = false;
    }
    return !first_file;
}

} // namespace

// --- Colour table -------------------------------------------------------------

int CLR_read_table(const char* filename) {
    const char* resource = RES_get("color_table");
    const char* names = default_table;
    if (filename != nullptr && *filename != '\0') {
        names = filename;
    } else if (resource != nullptr && *resource != '\0') {
        names = resource;
    }
    for (int i = kept_names; i < max_colors; ++i) {
        table.colors[i].name = {};
    }
    const bool count_fills = filename == nullptr && resource != nullptr;
    if (!read_tables(names, count_fills) && std::strcmp(names, default_table) != 0) {
        // Without any color no echo would be drawn.
        MESS_print(mess_warn, "CLR_read_table: The default color table is taken: %s\n",
                   default_table);
        read_tables(default_table, false);
    }
    return 0;
}

int CLR_clear_table() {
    table.num_colors = 0;
    return 0;
}

int CLR_add(const char* name, float red, float grn, float blu) {
    if (table.num_colors >= max_colors) {
        return -1;
    }
    const int ind = table.num_colors++;
    Rgb& color = table.colors[ind];
    copy_text(color.name.data(), color.name.size(), name);
    color.red = red;
    color.grn = grn;
    color.blu = blu;
    const Gcolr_rep rep = {red, grn, blu};
    gset_colr_rep(gget_ws_id(), ind, &rep);
    return ind;
}

int CLR_get_num_fill() {
    return table.num_fill;
}

int CLR_get_num() {
    return table.num_colors;
}

int CLR_look_up(const char* name) {
    if (name == nullptr || *name == '\0') {
        return -1;
    }
    if (const Word* word = find_word(special_colors, name)) {
        return word->value;
    }
    const int ind = find_color(name);
    if (ind >= 0) {
        return ind;
    }
    if (*name == '#') {
        return add_numeric(name);
    }
    return is_digit(*name) ? text_int(name) : -1;
}

int CLR_get_ind(const char* name) {
    const int ind = CLR_look_up(name);
    if (ind == -1 && name != nullptr && *name != '\0' &&
        find_word(special_colors, name) == nullptr) {
        warn_name(name);
    }
    return ind;
}

int CLR_check_settings() {
    warn_background();
    for (const ResRow& row : res_rows) {
        if (std::strncmp(row.def, "color_", 6) != 0 || !res_is_listed(row, true) ||
            row.type == RES_color_table || row.type == RES_color_fill) {
            continue;
        }
        for (const char* item : RES_items(row.def)) {
            const std::string name(item, std::strcspn(item, ":"));
            // A number of its own is not put into the table before it is used.
            if (name.find('=') == std::string::npos && !name.starts_with('#')) {
                CLR_get_ind(name.c_str());
            }
        }
    }
    return 0;
}

const char* CLR_get_name(int ind) {
    return color_at(ind).name.data();
}

int CLR_get_rgb(int ind, float* red, float* grn, float* blu) {
    const Rgb& color = color_at(ind);
    *red = color.red;
    *grn = color.grn;
    *blu = color.blu;
    return 0;
}

// --- Attributes ---------------------------------------------------------------

int ATTR_parse_fill_pat(const char* str) {
    return word_or_number(fill_patterns, str);
}

int ATTR_parse_marker(const char* str) {
    for (const Word& word : markers) {
        if (begins(str, word.text)) {
            return word.value;
        }
    }
    return text_int(str);
}

bool ATTR_is_marker(const char* str) {
    return is_number(str) ||
           std::any_of(std::begin(markers), std::end(markers),
                       [str](const Word& word) { return begins(str, word.text); });
}

bool ATTR_is_fill_pat(const char* str) {
    return is_number(str) || find_word(fill_patterns, str) != nullptr;
}

int ATTRIB_parse(const char* str, Gattribs* attrib) {
    if (str == nullptr) {
        return 0;
    }
    bool first = true;
    for (;;) {
        const std::size_t length = std::strcspn(str, ":");
        std::array<char, res_value_size> field{};
        std::memcpy(field.data(), str, std::min(length, field.size() - 1));
        parse_field(field.data(), first, attrib);
        first = false;
        if (str[length] == '\0') {
            return 0;
        }
        str += length + 1;
    }
}

int ATTRIB_init(Gattribs* attrib) {
    *attrib = {};
    return 0;
}

int ATTRIB_update(Gattribs* attr1, const Gattribs* attr2) {
    const auto update = [](auto* to, auto from) {
        if (is_set(from)) {
            *to = from;
        }
    };
    update(&attr1->color, attr2->color);
    update(&attr1->width, attr2->width);
    update(&attr1->height, attr2->height);
    update(&attr1->expan, attr2->expan);
    update(&attr1->style, attr2->style);
    update(&attr1->fill_pat, attr2->fill_pat);
    update(&attr1->font, attr2->font);
    return 0;
}

int ATTRIB_get(const char* resrc, const char* def, Gattribs* attrib) {
    ATTRIB_parse(def, attrib);
    const char* value = RES_get(resrc);
    if (value == nullptr) {
        return 0;
    }
    ATTRIB_parse(value, attrib);
    constexpr int first_print = 500; // colors of paper
    constexpr int last_print = 508;
    if (attrib->color > max_colors && (attrib->color < first_print || attrib->color > last_print)) {
        warn_number(attrib->color); // no device takes it
        attrib->color = -1;
    }
    return 1;
}

int ATTRIB_print(const Gattribs* attrib) {
    MESS_print(mess_print, "Color: %d\n", attrib->color);
    MESS_print(mess_print, "Style: %d\n", attrib->style);
    MESS_print(mess_print, "Height: %5.2f\n", static_cast<double>(attrib->height));
    MESS_print(mess_print, "Width: %5.2f\n", static_cast<double>(attrib->width));
    MESS_print(mess_print, "Expansion: %5.2f\n", static_cast<double>(attrib->expan));
    MESS_print(mess_print, "Fill: %d\n", attrib->fill_pat);
    MESS_print(mess_print, "Font: %d\n", attrib->font);
    return 0;
}

void keep_colors(StateKeeper& keeper) {
    keeper.keep(table);
}
