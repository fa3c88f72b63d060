// plt_labl: the labels of a plot. Six positions about the viewport hold up to
// six lines each, one for each overlay; the plotters set them while they draw
// and PLT_labels writes them when the frame is done, after the resource
// `label` has had its say. State: the texts and how overlays are counted.
#include "plt_tool.h"

#include "date.h"
#include "gks.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include "cont.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr float letter_part = 0.75F;     // of a line's step, the height of letters
constexpr float side_part = 0.01F;       // of the viewport's width, beside a label
constexpr float bar_gap = 0.02F;         // the same, between bar and label
constexpr std::size_t append_limit = 59; // longest line that appending makes

constexpr Date zero_date = {0, 0, 0, 0, 0, 0, 0, 0};

struct Labels {
    char text[plt_positions][plt_overlays][plt_label_size] = {};
    int begin[plt_positions] = {}; // where appending writes in line 0
    int overlay = 0;               // line that label calls write
    int base = 0;                  // offset of the first line, in lines
    int lines = 0;                 // lines in use
    int type = 0;                  // negative: one line, overlays appended
    Date date = zero_date;         // for the label codes
    int fhour = 0;                 // forecast time of the same
};
Labels labels;

// Where and when a position is drawn.
struct Position {
    const char* name; // in the resource `label`
    int component;    // of `draw`
    int horizontal;   // alignment
    bool upper;
    bool yields_to_bar; // the colour bar takes its place
};
constexpr std::array<Position, plt_positions> positions = {
    {
     {"ul", part_up_left, GLEFT_HOR, true, false},
     {"uc", part_up_center, GCENTER_HOR, true, false},
     {"ur", part_up_right, GRIGHT_HOR, true, false},
     {"ll", part_low_left, GLEFT_HOR, false, true},
     {"lc", part_low_center, GCENTER_HOR, false, true},
     {"lr", part_low_right, GRIGHT_HOR, false, false},
     }
};

bool is_line(int lab, int over) {
    return lab >= 0 && lab < plt_positions && over >= 0 && over < plt_overlays;
}

int set_label(int lab, const char* text) {
    if (labels.type < 0 && labels.overlay > 0) {
        return PLT_label_strcat(lab, text);
    }
    return labels.overlay < 0 ? -1 : PLT_label_strcpy(lab, text);
}

std::string two_digits(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%2.2d", value);
    return text;
}

// The first three letters of a word, with blanks in front of a shorter one.
std::string three_letters(const char* word) {
    char text[8];
    std::snprintf(text, sizeof text, "%3.3s", word);
    return text;
}

constexpr const char* label_codes = "DVWymbhdnfF%";

// Text of one label code; empty for letters that are none.
std::string label_code(char code) {
    char text[200] = "";
    Date date = labels.date;
    switch (code) {
    case 'D':
        DATE_make_label(&date, text);
        return text;
    case 'V':
        DATE_make_label_valid_time(labels.fhour, &date, text);
        return text;
    case 'W':
        date.hour = missing;
        DATE_make_label_valid_time(labels.fhour, &date, text);
        return text;
    case 'y':
        return two_digits(date.year % 100);
    case 'm':
        return two_digits(date.month);
    case 'b':
        return three_letters(DATE_month(date.month));
    case 'h':
        return two_digits(date.hour);
    case 'd':
        return two_digits(date.day);
    case 'n':
        return two_digits(date.min);
    case 'f':
        return DATE_fhour_label(text, labels.fhour, 0);
    case 'F':
        return DATE_fhour_label(text, labels.fhour, 1);
    case '%':
        return "%";
    default:
        return "";
    }
}

std::string expand(const char* form) {
    std::string text;
    for (const char* at = form; *at != '\0'; ++at) {
        if (*at == '_') {
            text += ' ';
        } else if (*at != '%') {
            text += *at;
        } else if (at[1] != '\0') {
            text += label_code(*++at);
        }
    }
    return text;
}

// One entry of the resource `label`: position, optional overlay digit, colon,
// text. Marks the position as fixed when there is no digit.
void set_entry(const char* entry, std::array<bool, plt_positions>& fixed) {
    for (std::size_t lab = 0; lab < positions.size(); ++lab) {
        if (strnicmp(entry, positions[lab].name, 2) != 0) {
            continue;
        }
        const char* rest = entry + 2;
        const bool digit = is_digit(*rest);
        if (rest[digit ? 1 : 0] != ':') {
            return;
        }
        PLT_set_overlay(digit ? *rest - '0' : 0);
        set_label(static_cast<int>(lab), expand(rest + (digit ? 2 : 1)).c_str());
        PLT_set_overlay(0);
        fixed[lab] = fixed[lab] || !digit;
        return;
    }
}

std::array<bool, plt_positions> read_entries() {
    std::array<bool, plt_positions> fixed{};
    const TextList entries = RES_items("label");
    for (const char* entry : entries) {
        PLT_set_overlay(0);
        set_entry(entry, fixed);
    }
    return fixed;
}

// Where the lines of all positions are.
struct Layout {
    Glim view;
    int lines;    // a position
    float step;   // from line to line
    float offset; // of the first line from the viewport
};

// Room below the viewport.
float room_below(const Layout& layout) {
    Glim size{};
    GPH_get_view_size(&size);
    return PLT_get_full_lab() != 0 ? 0.06F : layout.view.y_min - size.y_min;
}

void set_lines(Layout* layout, float room) {
    const float height = layout->view.y_max - layout->view.y_min;
    layout->lines = labels.type < 0 ? 1 : std::max(labels.lines, 1);
    const auto lines = static_cast<float>(layout->lines);
    layout->step = std::min(room / lines, height * 0.03F);
    layout->offset =
        PLT_get_full_lab() != 0 ? -0.2F * layout->step - lines * layout->step : 0.2F * layout->step;
}

float text_height(const Layout& layout) {
    return letter_part * layout.step;
}

int lines_of(const Layout& layout, bool fixed) {
    return fixed ? 1 : std::min(layout.lines, plt_overlays);
}

float longest_line(std::size_t lab, int lines, float height) {
    float longest = 0.0F;
    for (int i = 0; i < lines; ++i) {
        longest = std::max(longest, gtext_width(labels.text[lab][i], height));
    }
    return longest;
}

// How much smaller the lower right label is written so that it ends before the
// colour bar begins.
float shrink_beside_bar(std::size_t lab, bool fixed, const Layout& layout) {
    const bool beside = lab == low_right && PLT_get_fit_lab() != 0 && CONT_get_bar() >= 1;
    if (!beside || !is_set(CONT_get_bar_end())) {
        return 1.0F;
    }
    const float width = layout.view.x_max - layout.view.x_min;
    const float room =
        layout.view.x_max - side_part * width - (CONT_get_bar_end() + bar_gap * width);
    const float longest = longest_line(lab, lines_of(layout, fixed), text_height(layout));
    return longest <= room || room <= 0.0F ? 1.0F : room / longest;
}

void draw_position(const Position& position, std::size_t lab, bool fixed, const Layout& layout) {
    const Glim& view = layout.view;
    const float width = view.x_max - view.x_min;
    const float base = static_cast<float>(labels.base) * layout.step;
    float x = (view.x_min + view.x_max) / 2;
    if (position.horizontal == GLEFT_HOR) {
        x = view.x_min + side_part * width;
    } else if (position.horizontal == GRIGHT_HOR) {
        x = view.x_max - side_part * width;
    }
    float y = view.y_max + layout.offset + base;
    if (!position.upper) {
        const float above = static_cast<float>(layout.lines - 1) * layout.step;
        y = view.y_min - layout.offset - above + base;
    }
    GPH_text_align(position.horizontal, position.upper ? GBASE_VERT : GCAP_VERT);
    const float shrink = shrink_beside_bar(lab, fixed, layout);
    if (shrink < 1.0F) {
        gset_char_ht(shrink * text_height(layout));
    }
    const int lines = lines_of(layout, fixed);
    for (int i = 0; i < lines; ++i, y += layout.step) {
        if (labels.text[lab][i][0] != '\0') {
            GPH_printf(x, y, "%s", labels.text[lab][i]);
        }
    }
    if (shrink < 1.0F) {
        gset_char_ht(text_height(layout));
    }
}

} // namespace

int PLT_init_labels() {
    std::memset(labels.text, 0, sizeof labels.text);
    std::fill(std::begin(labels.begin), std::end(labels.begin), 0);
    labels.lines = 0;
    return 0;
}

int PLT_set_num_overlay(int ind) {
    labels.lines = ind < 0 ? -std::max(ind, -plt_overlays)
                           : std::max(labels.lines, std::min(ind, plt_overlays));
    return 0;
}

int PLT_get_num_over() {
    return labels.lines;
}

int PLT_set_overlay(int ind) {
    labels.overlay = std::min(ind, plt_overlays - 1);
    labels.lines = std::max(labels.lines, labels.overlay);
    return 0;
}

int PLT_set_overlay_base(int ind) {
    labels.base = std::min(ind, plt_overlays - 1);
    labels.lines = std::max(labels.lines, labels.base);
    return 0;
}

int PLT_get_overlay_base() {
    return labels.base;
}

int PLT_next_overlay() {
    if (labels.overlay >= plt_overlays) {
        return -1;
    }
    ++labels.overlay;
    if (labels.type != 0) {
        labels.type += labels.type > 0 ? 1 : -1;
    }
    for (int lab = 0; lab < plt_positions; ++lab) {
        labels.begin[lab] = static_cast<int>(std::strlen(labels.text[lab][0]));
    }
    labels.lines = std::max(labels.lines, labels.overlay);
    return labels.overlay;
}

int PLT_set_label_type(int type) {
    labels.type = type;
    return 0;
}

int PLT_get_label_type() {
    return labels.type;
}

char* PLT_get_label(int lab, int over) {
    return is_line(lab, over) ? labels.text[lab][over] : nullptr;
}

int PLT_label_up_left(const char* text) {
    return set_label(up_left, text);
}

int PLT_label_up_center(const char* text) {
    return set_label(up_center, text);
}

int PLT_label_up_right(const char* text) {
    return set_label(up_right, text);
}

int PLT_label_low_left(const char* text) {
    return set_label(low_left, text);
}

int PLT_label_low_center(const char* text) {
    return set_label(low_center, text);
}

int PLT_label_low_right(const char* text) {
    return set_label(low_right, text);
}

int PLT_label_strcpy(int lab, const char* text) {
    if (text == nullptr || !is_line(lab, labels.overlay) || std::strlen(text) >= plt_label_size) {
        return -1;
    }
    return copy_text(labels.text[lab][labels.overlay], plt_label_size, text);
}

int PLT_label_strcat(int lab, const char* text) {
    if (text == nullptr || !is_line(lab, 0)) {
        return -1;
    }
    const auto begin = static_cast<std::size_t>(labels.begin[lab]);
    if (begin + std::strlen(text) > append_limit) {
        return -1;
    }
    std::snprintf(labels.text[lab][0] + begin, plt_label_size - begin, " %s", text);
    return 0;
}

int PLT_label_date(const Date* date) {
    labels.date = date == nullptr ? zero_date : *date;
    return 0;
}

int PLT_label_for_time(long fhour) {
    labels.fhour = static_cast<int>(std::clamp(fhour, -1000000000L, 1000000000L));
    return 0;
}

int PLT_label_format(const char* form, char* text) {
    return copy_text(text, plt_label_size, expand(form).c_str());
}

bool PLT_is_label_code(char code) {
    return code != '\0' && std::strchr(label_codes, code) != nullptr;
}

float PLT_low_right_begin() {
    const std::array<bool, plt_positions> fixed = read_entries();
    Layout layout{};
    PLT_get_view(&layout.view);
    set_lines(&layout, room_below(layout));
    Gattribs attrib;
    ATTRIB_init(&attrib);
    ATTRIB_get("color_text", "", &attrib);
    const float height = text_height(layout) * (is_set(attrib.height) ? attrib.height : 1.0F);
    const float longest = longest_line(low_right, lines_of(layout, fixed[low_right]), height);
    const float width = layout.view.x_max - layout.view.x_min;
    return longest > 0.0F ? layout.view.x_max - side_part * width - longest : layout.view.x_max;
}

int PLT_labels() {
    const std::array<bool, plt_positions> fixed = read_entries();
    Gattribs attrib;
    ATTRIB_init(&attrib);
    ATTRIB_get("color_text", gget_inverse() != 0 ? "black" : "white", &attrib);
    PLT_mess("Labels");
    GPH_trans(1);
    Layout layout{};
    PLT_get_view(&layout.view);
    GPH_line_attr(nullptr);
    GPH_text_attr(nullptr, 1.0F);
    GPH_text_font(nullptr);
    GPH_line_attr(&attrib);

    const float room = room_below(layout);
    const bool off = attrib.color == -1;
    if (!off && PLT_get_border() != 0 && FLAG_getplot(part_border) != 0) {
        GPH_border(&layout.view);
    }
    if (room < 0.005F) {
        return -1;
    }
    if (off || FLAG_getplot(part_text) == 0) {
        return 0;
    }
    set_lines(&layout, room);
    GPH_text_attr(&attrib, text_height(layout));
    for (std::size_t lab = 0; lab < positions.size(); ++lab) {
        const Position& position = positions[lab];
        if (FLAG_getplot(position.component) != 0 &&
            !(position.yields_to_bar && CONT_get_bar() >= 1)) {
            draw_position(position, lab, fixed[lab], layout);
        }
    }
    return 0;
}

void keep_plt_labl(StateKeeper& keeper) {
    keeper.keep(labels);
}
