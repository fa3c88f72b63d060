// cont: contour levels and the colours of values. Every radar value gets
// its colour here; the contours (cont_draw.cpp) and the colour bar
// (cont_bar.cpp) read the same levels. Owns the state of all three. Nothing
// has to be called first; colour names need the colour table.
#include "cont.h"

#include "cont_pal.h"
#include "cont_state.h"
#include "files.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"
#include "zyrgrid.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace cont;

namespace {

// The list without a list: used when the colour table marks no fill colours.
constexpr const char* fill_name[] = {"Magenta", "LMagenta", "Blue",   "LBlue", "Cyan",
                                     "LCyan",   "Green",    "LGreen", "Brown", "Yellow",
                                     "Red",     "LRed",     "DGray",  "LGray", "White"};

constexpr int color_list_end = -2; // what CLR_get_ind gives for "end"
constexpr std::size_t entry_size = res_value_size;
constexpr int max_file_lines = 10000; // comment lines included
constexpr int max_line_chars = 80;
constexpr const char* level_extension = ".lvl";

State contours;
std::set<std::string> misplaced_files; // level files among colors that were reported
std::string unread_file;               // the level file last reported as one that cannot be read
std::string falling_list;              // the list last reported as one whose levels fall

// --- Levels -----------------------------------------------------------------

void clear_levels() {
    std::fill(std::begin(contours.cont_value), std::end(contours.cont_value), missing_f);
    contours.num_cont = missing;
    contours.ascending = false;
}

void clear_labels() {
    for (auto& label : contours.cont_label) {
        label[0] = '\0';
    }
}

// What was worked out from the levels of an earlier frame.
void clear_extent() {
    contours.conlo = missing_f;
    contours.conhi = missing_f;
    contours.cbase = missing_f;
    contours.levels_asked = false;
}

void note_order() {
    const float* first = contours.cont_value;
    contours.ascending = contours.num_cont > 0 && is_set(first[0]) &&
                         std::is_sorted(first, first + contours.num_cont);
}

// Entries without a level get one by their place between two that have one.
// Behind the last level they go on at its distance from the one before.
void interpolate_levels() {
    float* levels = contours.cont_value;
    const auto fill = [levels](int lo, int end, float distance) {
        for (int i = lo + 1; i < end; ++i) {
            levels[i] = levels[lo] + static_cast<float>(i - lo) * distance;
        }
    };
    int lo = 0;
    for (int hi = 1; hi < contours.color_num; ++hi) {
        if (is_set(levels[hi])) {
            fill(lo, hi, (levels[hi] - levels[lo]) / static_cast<float>(hi - lo));
            lo = hi;
        }
    }
    const bool rises = lo > 0 && levels[lo] > levels[lo - 1];
    fill(lo, contours.color_num, rises ? levels[lo] - levels[lo - 1] : 1.0F);
}

// Ends the step list and takes count, interval and range from it.
void finish_steps() {
    State& s = contours;
    const int num = s.color_num;
    s.fill_attrib[num] = {};
    s.fill_attrib[num].color = color_list_end;
    s.cont_value[num] = missing_f;
    if (num == 0) {
        clear_levels();
    }
    if (is_set(s.cont_value[0])) {
        interpolate_levels();
        s.intrvl = num > 1 ? s.cont_value[1] - s.cont_value[0] : missing_f;
        s.grid_min = s.cont_value[0];
        s.grid_max = s.cont_value[num - 1];
    }
    s.num_cont = num;
    note_order();
}

// --- Level and colour strings -----------------------------------------------

// A number at the start of `text`; `end` is set past it. No word, such as
// "inf" or "nan", counts.
bool leading_number(const char* text, float* value, const char** end) {
    const char* digits = text + (*text == '-' || *text == '+' ? 1 : 0);
    digits += *digits == '.' ? 1 : 0;
    if (!is_digit(*digits)) {
        return false;
    }
    float number = 0.0F;
    take_real(&text, &number);
    *value = std::clamp(number, -FLT_MAX, FLT_MAX);
    *end = text;
    return true;
}

// Takes the field ":la=text" out of an entry. Returns whether there was one.
bool take_label(char* entry, char* label) {
    for (char* at = entry; *at != '\0'; ++at) {
        if (strnicmp(at, ":la=", 4) != 0) {
            continue;
        }
        const char* text = at + 4;
        const std::size_t length = std::strcspn(text, ":");
        const std::size_t kept = std::min(length, cont_label_size - 1);
        std::memcpy(label, text, kept);
        label[kept] = '\0';
        std::memmove(at, text + length, std::strlen(text + length) + 1);
        return true;
    }
    return false;
}

// A step without a colour name is not drawn.
Gattribs parse_attribs(const char* text) {
    Gattribs attrib;
    CONT_fill_attrib_init(&attrib);
    ATTRIB_parse(text, &attrib);
    if (!is_set(attrib.color)) {
        attrib.color = -1;
    }
    return attrib;
}

// An entry without the blanks beside its colons.
void copy_entry(char (&out)[entry_size], const char* text) {
    std::size_t n = 0;
    for (; *text != '\0' && n + 1 < entry_size; ++text) {
        while (*text == ':' && n > 0 && is_white(out[n - 1])) {
            --n;
        }
        if (!is_white(*text) || (n > 0 && out[n - 1] != ':')) {
            out[n++] = *text;
        }
    }
    out[n] = '\0';
}

int full_or(int result) {
    return contours.color_num >= cont_max_steps ? -1 : result;
}

// All colours from the left name's to the right name's become steps.
int decode_range(char* entry) {
    char* dash = std::strchr(entry, '-');
    *dash = '\0';
    Gattribs attrib = parse_attribs(entry);
    const int last = std::max(parse_attribs(dash + 1).color, -1);
    attrib.color = std::max(attrib.color, -1);
    const int step = last < attrib.color ? -1 : 1;
    for (;; attrib.color += step) {
        const int at = contours.color_num;
        contours.fill_attrib[at] = attrib;
        contours.cont_value[at] = missing_f;
        contours.cont_label[at][0] = '\0';
        ++contours.color_num;
        if (attrib.color == last || contours.color_num >= cont_max_steps) {
            return full_or(0);
        }
    }
}

// A level file among colors, which the look-up of names would take for one.
bool is_level_file(const char* entry) {
    if (std::strpbrk(entry, "./") == nullptr || std::strpbrk(entry, ":=#") != nullptr) {
        return false;
    }
    float level = 0.0F;
    const char* end = nullptr;
    return (!leading_number(entry, &level, &end) || *end != '\0') && CLR_look_up(entry) == -1;
}

void report_misplaced_file(const char* name) {
    if (misplaced_files.insert(name).second) {
        MESS_print(mess_warn,
                   "CONT_set_fill_colors: A level file stands alone, in a list it is left out: "
                   "%s\n",
                   name);
    }
}

int decode_single(char* entry) {
    if (is_level_file(entry)) {
        report_misplaced_file(entry);
        return 0;
    }
    const int at = contours.color_num;
    char label[cont_label_size] = "";
    const bool labelled = take_label(entry, label);

    const char* attribs = entry;
    const char* end = nullptr;
    float level = missing_f;
    const bool has_level = leading_number(entry, &level, &end);
    if (has_level && *end == ':') {
        attribs = end + 1;
        if (!labelled) {
            std::snprintf(label, sizeof label, "%.*s", static_cast<int>(end - entry), entry);
        }
    }
    const Gattribs attrib = parse_attribs(attribs);
    if (attrib.color == color_list_end) {
        return -1;
    }
    if (has_level) {
        contours.cont_value[at] = level;
    }
    copy_text(contours.cont_label[at], cont_label_size, label);
    contours.fill_attrib[at] = attrib;
    ++contours.color_num;
    return full_or(0);
}

// --- Level files ------------------------------------------------------------

// A line of at most 80 characters; what is longer is passed over. False at
// the end of the file.
bool read_line(std::FILE* file, char (&line)[max_line_chars + 2]) {
    if (std::fgets(line, sizeof line, file) == nullptr) {
        return false;
    }
    if (std::strchr(line, '\n') == nullptr) {
        // A line without an end, as a device may give, ends the file here.
        constexpr int longest = 1 << 20;
        int c = 0;
        for (int n = 0; n < longest && c != '\n' && c != EOF; ++n) {
            c = std::fgetc(file);
        }
        line[max_line_chars] = '\0';
        return c == '\n' || c == EOF;
    }
    return true;
}

// The line without white space at either end.
char* strip(char* line) {
    while (std::isspace(static_cast<unsigned char>(*line)) != 0) {
        ++line;
    }
    std::size_t length = std::strlen(line);
    while (length > 0 && std::isspace(static_cast<unsigned char>(line[length - 1])) != 0) {
        line[--length] = '\0';
    }
    return line;
}

void begin_steps() {
    contours.color_num = 0;
    clear_labels();
}

FILE_ptr open_level_file(const std::string& name) {
    char path[file_name_size] = "";
    FILE_add_path(RES_get("file_path"), name.c_str(), path);
    return FILE_ptr(FILE_open_text(path));
}

// A level file by its name, or by its name without the extension. Returns 0; -1
// when it does not open or has no entry.
int read_level_file(const char* name) {
    FILE_ptr file = open_level_file(name);
    if (!file) {
        file = open_level_file(std::string(name) + level_extension);
    }
    if (!file) {
        return -1;
    }
    std::vector<std::string> lines;
    char line[max_line_chars + 2] = "";
    for (int n = 0; n < max_file_lines && read_line(file.get(), line); ++n) {
        const char* text = strip(line);
        if (*text != '\0' && *text != '@' && *text != '#' && *text != ';') {
            lines.emplace_back(text);
        }
    }
    if (!lines.empty() && cont_is_pal(lines[0])) {
        lines = cont_pal_entries(lines, contours.quantity);
    }
    if (lines.empty()) {
        return -1;
    }
    begin_steps();
    for (const std::string& entry : lines) {
        if (CONT_decode_fill_color(entry.c_str()) != 0) {
            break;
        }
    }
    finish_steps();
    return 0;
}

// Says that a level file cannot be read, once: each frame and layer asks for it.
void report_level_file(const char* name, bool by_user) {
    if (unread_file == name) {
        return;
    }
    unread_file = name;
    MESS_print(mess_warn, "CONT_set_fill_colors: Unable to read contour level file: %s\n", name);
    if (std::strchr(name, ':') != nullptr) {
        MESS_print(mess_warn, "CONT_set_fill_colors: A list of levels has two colors or more\n");
    } else {
        const std::string end = std::strchr(name, '.') != nullptr ? "" : level_extension;
        FILE_tell_nearest("CONT_set_fill_colors", RES_get("file_path"), (name + end).c_str());
    }
    if (by_user) {
        MESS_print(mess_warn, "CONT_set_fill_colors: The product's own colors are taken\n");
    }
}

// Says once that levels fall: what is above the first is of the last color.
void report_falling(const char* list) {
    if (is_set(contours.cont_value[0]) && !contours.ascending && falling_list != list) {
        falling_list = list;
        MESS_print(mess_warn,
                   "CONT_set_fill_colors: The levels fall, a list begins with the lowest: %s\n",
                   list);
    }
}

int set_table_colors(int num) {
    begin_steps();
    contours.color_num = std::min(num, cont_max_steps);
    for (int i = 0; i < contours.color_num; ++i) {
        CONT_fill_attrib_init(&contours.fill_attrib[i]);
        contours.fill_attrib[i].color = i;
    }
    clear_levels();
    finish_steps();
    return -1;
}

void set_list(int count, const char* const* entries) {
    begin_steps();
    for (int i = 0; i < count && CONT_decode_fill_color(entries[i]) == 0; ++i) {
    }
    finish_steps();
}

// The list that the user gave in place of the plotter's own, if any.
const char* user_list() {
    const char* list = RES_get("color_fill");
    const bool none = list == nullptr || *list == '\0' || stricmp(list, "miss") == 0 ||
                      strnicmp(list, "def", 3) == 0;
    if (!none && stricmp(list, "auto") == 0) {
        return contours.quantity;
    }
    return none ? nullptr : list;
}

// --- Colour of a value ------------------------------------------------------

// Regular levels that the plotter has left open are those of the bar, so that
// it tells the picture's colours. Without an interval all values are one step.
int regular_step(float value) {
    State& s = contours;
    if (!is_set(s.cbase)) {
        if (!s.levels_asked && (!is_set(s.intrvl) || !is_set(s.base))) {
            s.levels_asked = true;
            settle_bar_levels(s);
        }
        s.cbase = is_set(s.base) ? s.base : s.conlo;
    }
    if (!is_set(s.intrvl)) {
        return 0;
    }
    const float base = is_set(s.cbase) ? s.cbase : 0.0F;
    const double k = std::floor(static_cast<double>((value - base) / s.intrvl) + 0.01);
    if (!(std::fabs(k) < 1e15)) {
        return 0;
    }
    const long long step = static_cast<long long>(k) % s.color_num;
    return static_cast<int>(step < 0 ? step + s.color_num : step);
}

int explicit_step(float value) {
    const State& s = contours;
    const float* levels = s.cont_value;
    const int last = std::min(s.num_cont, s.color_num) - 1;
    if (value < levels[0] || last < 0) {
        return -1;
    }
    if (s.ascending) {
        const float* above = std::upper_bound(levels, levels + last + 1, value);
        return static_cast<int>(above - levels) - 1;
    }
    for (int i = 0; i < last; ++i) {
        if (levels[i] <= value && value < levels[i + 1]) {
            return i;
        }
    }
    return last;
}

int step_of(float value) {
    const State& s = contours;
    if (!is_set(value) || std::isnan(value) || s.color_num <= 0) {
        return -1;
    }
    if ((is_set(s.min_cut) && value < s.min_cut) || (is_set(s.max_cut) && value > s.max_cut)) {
        return -1;
    }
    return is_set(s.cont_value[0]) ? explicit_step(value) : regular_step(value);
}

// --- plot_param -------------------------------------------------------------

// Up to four whole numbers with `separator` between them.
int read_numbers(const char* text, char separator, int (&numbers)[4]) {
    int count = 0;
    while (count < 4 && take_int(&text, &numbers[count])) {
        ++count;
        if (*text++ != separator) {
            break;
        }
    }
    return count;
}

void decode_label_word(const char* value) {
    int n[4] = {};
    int count = read_numbers(value, ':', n);
    if (count < 2) {
        count = std::max(count, read_numbers(value, '.', n));
    }
    if (count == 1) {
        CONT_set_label_type(n[0] / 10, n[0] % 10);
    } else if (count >= 2) {
        CONT_set_label_type(n[0], n[1]);
    }
    if (count >= 3) {
        CONT_set_label_space(n[2], count == 4 ? n[3] : n[2]);
    }
}

void decode_number(const char* value, float* out) {
    const char* end = nullptr;
    leading_number(value, out, &end);
}

enum class Param {
    fill,
    label,
    rotated,
    level,
    lines,
    lowest,
    highest,
    grid,
    map_lines,
    flat_lines
};

struct ParamRow {
    KnownWord known;
    Param param;
};

// The first row that fits counts.
constexpr ParamRow params[] = {
    {{"fill", true},   Param::fill      },
    {{"lab", true},    Param::label     },
    {{"rlab", true},   Param::rotated   },
    {{"hlab", true},   Param::level     },
    {{"maxl", true},   Param::lines     },
    {{"conmin", true}, Param::lowest    },
    {{"conmax", true}, Param::highest   },
    {{"grid"},         Param::grid      },
    {{"mapcon"},       Param::map_lines },
    {{"conmap"},       Param::flat_lines},
};

void set_param(Param param, const char* value) {
    switch (param) {
    case Param::fill:
        CONT_set_fill_pat(ATTR_parse_fill_pat(value));
        break;
    case Param::label:
        decode_label_word(value);
        break;
    case Param::rotated:
        contours.rot_label = 1;
        break;
    case Param::level:
        contours.rot_label = 0;
        break;
    case Param::lines: {
        int n[4] = {};
        if (read_numbers(value, ':', n) > 0) {
            contours.max_line_fact = n[0];
        }
        break;
    }
    case Param::lowest:
        decode_number(value, &contours.min_cut);
        break;
    case Param::highest:
        decode_number(value, &contours.max_cut);
        break;
    case Param::grid:
        CONT_draw_grid(1);
        break;
    case Param::map_lines:
        contours.mapcon = 1;
        break;
    case Param::flat_lines:
        contours.mapcon = 0;
        break;
    }
}

void decode_param(const char* word) {
    for (const ParamRow& row : params) {
        const std::size_t length = std::strlen(row.known.text);
        if (row.known.prefix ? strnicmp(word, row.known.text, static_cast<int>(length)) == 0
                             : stricmp(word, row.known.text) == 0) {
            // The value is after the word and one separator character.
            set_param(row.param, word + length + (word[length] != '\0' ? 1 : 0));
            return;
        }
    }
}

// ceil(v * parts) / parts; the product is single precision, so that 0.3
// stays 0.3.
} // namespace

namespace cont {

State::State() noexcept {
    std::fill(std::begin(cont_value), std::end(cont_value), missing_f);
    fill_attrib[0].color = color_list_end;
}

State& state() {
    return contours;
}

float level_at(int i) {
    const State& s = contours;
    if (is_set(s.cont_value[0])) {
        return s.cont_value[std::clamp(i, 0, cont_max_steps)];
    }
    return s.conlo + static_cast<float>(i) * s.intrvl;
}

float level_width(int i) {
    return level_width(contours, i);
}

int first_step(float base) {
    const State& s = contours;
    if (is_set(s.cont_value[0]) || s.color_num <= 0) {
        return 0;
    }
    const float from = is_set(base) ? base : s.conlo;
    const int k = whole(std::floor(static_cast<double>((s.conlo - from) / s.intrvl) + 0.01));
    return ((k % s.color_num) + s.color_num) % s.color_num;
}

const char* plain_color() {
    return gget_inverse() != 0 ? "black" : "white";
}

void set_line_attribs() {
    State& s = contours;
    ATTRIB_init(&s.ln_cont_attr);
    ATTRIB_get("color_cont", plain_color(), &s.ln_cont_attr);
    if (is_set(s.fill_pat)) {
        s.ln_cont_attr.fill_pat = s.fill_pat;
    }
}

void use_step(int step, float level) {
    State& s = contours;
    s.con_off = step;
    const Gattribs& own = s.fill_attrib[step];
    const Gattribs& common = s.ln_cont_attr;

    Gattribs fill;
    fill.color = own.color;
    fill.fill_pat = own.fill_pat >= 0 ? own.fill_pat : std::max(common.fill_pat, 0);
    if (!is_line_type(s.cont_type)) {
        GPH_fill_attr(&fill);
    }
    if (!has_lines(s.cont_type)) {
        return;
    }
    Gattribs line;
    line.color = common.color;
    if (line.color < 0) {
        line.color = s.fill_attrib[(step + 1) % s.color_num].color;
    }
    const bool dashed = s.cont_type == cont_dashed || (s.cont_type == cont_neg_dashed && level < 0);
    line.style = is_set(own.style)      ? own.style
                 : is_set(common.style) ? common.style
                 : dashed               ? 2
                                        : 1;
    line.width = is_set(own.width) ? own.width : is_set(common.width) ? common.width : 0.0F;
    GPH_line_attr(&line);
}

} // namespace cont

// --- Settings ---------------------------------------------------------------

int CONT_init() {
    State& s = contours;
    s.cont_type = missing;
    s.intrvl = missing_f;
    clear_levels();
    clear_labels();
    s.base = missing_f;
    s.min_cut = missing_f;
    s.max_cut = missing_f;
    s.grid_min = missing_f;
    s.grid_max = missing_f;
    s.x_label_space = missing;
    s.y_label_space = missing;
    s.fill_pat = missing;
    s.color_fill_set = 0;
    s.levels_asked = false;
    s.scale = 1.0F;
    s.label_skip = 2;
    s.ext_radius = 2;
    s.x_skip = 1;
    s.y_skip = 1;
    s.num_form[0] = '\0';
    return 0;
}

int CONT_set_values(const float* values, int num) {
    State& s = contours;
    if (s.color_fill_set == 1 || values == nullptr || num < 1) {
        return -1;
    }
    clear_levels();
    clear_extent();
    int count = 0;
    while (count < num && count < cont_max_steps && is_set(values[count])) {
        s.cont_value[count] = values[count];
        ++count;
    }
    s.num_cont = count;
    s.intrvl = num > 1 ? values[1] - values[0] : missing_f;
    s.grid_min = values[0];
    s.grid_max = values[num - 1];
    note_order();
    return 0;
}

int CONT_reset_values() {
    State& s = contours;
    if (is_set(s.cont_value[0])) {
        s.intrvl = missing_f;
        s.grid_min = missing_f;
        s.grid_max = missing_f;
        s.cont_value[0] = missing_f;
    }
    return 0;
}

int CONT_get_values(float* values) {
    const State& s = contours;
    if (!is_set(s.cont_value[0])) {
        return 0;
    }
    if (values != nullptr) {
        std::copy_n(s.cont_value, std::clamp(s.num_cont, 0, cont_max_steps), values);
    }
    return s.num_cont;
}

int CONT_set_intrvl(float value) {
    contours.intrvl = value;
    return 0;
}

float CONT_get_intrvl() {
    return contours.intrvl;
}

int CONT_set_base(float value) {
    contours.base = value;
    return 0;
}

float CONT_get_base() {
    return contours.base;
}

int CONT_set_range(float max, float min) {
    contours.grid_max = max;
    contours.grid_min = min;
    return 0;
}

int CONT_set_bar_range(float max, float min) {
    contours.bar_max = max;
    contours.bar_min = min;
    return 0;
}

int CONT_set_cutoff(float max, float min) {
    if (is_set(max)) {
        contours.max_cut = max;
    }
    if (is_set(min)) {
        contours.min_cut = min;
    }
    return 0;
}

int CONT_set_type(int ind) {
    contours.cont_type = ind == cont_fill_request ? cont_fill : ind;
    return 0;
}

int CONT_get_type() {
    return contours.cont_type;
}

float CONT_get_bar_end() {
    return contours.bar_inc == 0.0F ? missing_f : contours.bar_lim.x_max;
}

int CONT_set_bar(int value) {
    contours.plt_bar = value;
    return 0;
}

int CONT_get_bar() {
    return contours.plt_bar;
}

int CONT_set_skip(int x, int y) {
    contours.x_skip = x;
    contours.y_skip = y;
    return 0;
}

int CONT_set_plot_offset(float x, float y) {
    contours.x_off = x;
    contours.y_off = y;
    return 0;
}

int CONT_set_fill_pat(int type) {
    contours.fill_pat = type;
    return 0;
}

int CONT_get_fill_pat() {
    return contours.fill_pat;
}

int CONT_set_label_type(int skip, int rad) {
    contours.label_skip = skip;
    contours.ext_radius = rad;
    return 0;
}

int CONT_set_label_space(int x, int y) {
    contours.x_label_space = x;
    contours.y_label_space = y;
    return 0;
}

int CONT_draw_grid(int value) {
    contours.draw_grid = value;
    return 0;
}

// --- Colours ----------------------------------------------------------------

// The next list must not find anything of the frame before: a list of plain
// names leaves level slots as they are.
int CONT_reset_fill_set() {
    contours.color_fill_set = 0;
    clear_levels();
    clear_labels();
    clear_extent();
    contours.intrvl = missing_f;
    contours.base = missing_f;
    contours.grid_min = missing_f;
    contours.grid_max = missing_f;
    return 0;
}

int CONT_set_fill_colors(const char* string, int flag) {
    if (contours.color_fill_set == 1) {
        return -1;
    }
    const char* user = flag == 0 ? user_list() : nullptr;
    const char* list = user != nullptr ? user : string;
    contours.color_fill_set = 1;
    clear_extent();

    const TextList entries(list, ',');
    if (entries.count() == 0) {
        const int num = CLR_get_num_fill();
        if (num > 0) {
            return set_table_colors(num);
        }
        set_list(static_cast<int>(std::size(fill_name)), fill_name);
        return 0;
    }
    const bool is_file = entries.count() == 1 && std::strchr(entries[0], '-') == nullptr;
    const bool missing_file = is_file && read_level_file(entries[0]) != 0;
    if (missing_file) {
        report_level_file(entries[0], user != nullptr);
    }
    if (!is_file) {
        set_list(entries.count(), entries.begin());
    }
    float first = 0.0F;
    const char* end = nullptr;
    // Colors alone keep the levels of the product.
    if (!missing_file && user != nullptr && (is_file || leading_number(entries[0], &first, &end))) {
        report_falling(user);
    }
    if (missing_file && user != nullptr) { // without any level no echo would be drawn
        contours.color_fill_set = 0;
        return CONT_set_fill_colors(string, 1);
    }
    return 0;
}

int CONT_set_quantity(const char* quantity) {
    contours.quantity = quantity;
    return 0;
}

int CONT_decode_fill_color(const char* str) {
    contours.color_num = std::max(contours.color_num, 0);
    if (contours.color_num >= cont_max_steps) {
        return -1;
    }
    char entry[entry_size];
    copy_entry(entry, str);
    const bool range = entry[0] != '-' && std::strchr(entry, '-') != nullptr;
    return range ? decode_range(entry) : decode_single(entry);
}

int CONT_fill_attrib_init(Gattribs* attrib) {
    return ATTRIB_init(attrib);
}

int CONT_set_fill_attribs(const Gattribs* attrib) {
    State& s = contours;
    s.color_num = 0;
    while (s.color_num < cont_max_steps && attrib[s.color_num].color >= -1) {
        s.fill_attrib[s.color_num] = attrib[s.color_num];
        ++s.color_num;
    }
    if (s.color_num == 0) {
        CONT_fill_attrib_init(&s.fill_attrib[0]);
        s.fill_attrib[0].color = 1;
        s.color_num = 1;
    }
    s.fill_attrib[s.color_num] = {};
    s.fill_attrib[s.color_num].color = color_list_end;
    return 0;
}

int CONT_get_fill_attrib_ind(int ind, Gattribs* attrib) {
    if (ind < 0 || ind >= contours.color_num) {
        *attrib = {};
        attrib->color = -1;
        return -1;
    }
    *attrib = contours.fill_attrib[ind];
    // Without a pattern of its own a step is solid, whatever came before it.
    if (!is_set(attrib->fill_pat)) {
        attrib->fill_pat = 0;
    }
    return 0;
}

int CONT_get_fill_attrib(float value, Gattribs* attrib) {
    return CONT_get_fill_attrib_ind(step_of(value), attrib);
}

// --- Range of the levels ----------------------------------------------------

int CONT_set_cont_ext(const GRD_report* grid) {
    State& s = contours;
    if (is_set(s.cont_value[0])) {
        s.conlo = s.cont_value[0];
        s.cbase = is_set(s.base) ? s.base : s.conlo;
        return 0;
    }
    if (!is_set(s.grid_max) && grid != nullptr) {
        GRD_maxmin(grid, &s.grid_max, &s.grid_min);
    }
    if (!is_set(s.grid_max)) {
        return -1;
    }
    ask_interval(s);
    if (!is_set(s.intrvl) && s.cont_type != cont_values) {
        s.intrvl = 0.0F;
    }
    if (is_set(s.intrvl) && s.intrvl <= 0.0F) {
        s.num_cont = s.color_num - 1;
        s.intrvl = CONT_calc_intrvl(s.grid_max, s.grid_min, s.num_cont);
    }
    const Extent extent =
        regular_extent(s.grid_min, s.grid_max, is_set(s.base) ? s.base : 0.0F, s.intrvl);
    s.conlo = extent.lo;
    s.conhi = extent.hi;
    s.num_cont = extent.num;
    s.cbase = is_set(s.base) ? s.base : s.conlo;
    return 0;
}

void CONT_add_param_words(KnownWords* known) {
    for (const ParamRow& row : params) {
        known->push_back(row.known);
    }
}

int CONT_param_decode() {
    const TextList words = RES_items("plot_param");
    for (const char* word : words) {
        decode_param(word);
    }
    return 0;
}

CONT_keeper::CONT_keeper() : kept_(std::make_unique<cont::State>(contours)) {}

CONT_keeper::~CONT_keeper() {
    contours = *kept_;
}

void keep_cont(StateKeeper& keeper) {
    keeper.keep(contours);
}
