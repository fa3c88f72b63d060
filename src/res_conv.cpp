// res_conv.cpp: what a setting's text is turned into: numbers, flags, switches,
// the message level. Domains and file dates lie above the settings: the entry
// point hands in what decodes them (RES_set_actions).
#include "zyrresrc.h"

#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>

namespace {

struct State {
    RES_actions actions; // handed in by the entry point
};
State state;

struct Keyword {
    const char* word;
    int value;
};

constexpr Keyword plot_types[] = {
    {"raw",    0 },
    {"ln",     12},
    {"dln",    13},
    {"ndln",   14},
    {"cf",     15},
    {"lcf",    16},
    {"value",  17},
    {"gvalue", 17},
    {"vect",   21},
    {"barb",   22},
    {"strm",   23},
    {"stream", 23},
    {"an",     54},
    {"number", 54},
    {"pm",     55},
    {"stuve",  61},
    {"skewt",  62},
    {"ema",    63},
    {"teph",   64},
    {"rteph",  65},
    {"hodo",   69},
    {"none",   99},
};

constexpr Keyword file_params[] = {
    {"use",    3},
    {"reuse",  3},
    {"over",   1},
    {"calc",   1},
    {"recalc", 1},
    {"app",    2},
};

constexpr Keyword draw_switches[] = {
    {"text",    part_text      },
    {"text_ul", part_up_left   },
    {"text_uc", part_up_center },
    {"text_ur", part_up_right  },
    {"text_ll", part_low_left  },
    {"text_lc", part_low_center},
    {"text_lr", part_low_right },
    {"data",    part_data      },
    {"map",     part_map       },
    {"grid",    part_grid      },
    {"sum",     part_summary   },
    {"bord",    part_border    },
};

constexpr Keyword bool_words[] = {
    {"true",  1},
    {"on",    1},
    {"yes",   1},
    {"false", 0},
    {"off",   0},
    {"no",    0},
};

template <std::size_t N> const Keyword* find_word(const Keyword (&table)[N], const char* word) {
    const auto* row = std::find_if(std::begin(table), std::end(table),
                                   [&](const Keyword& k) { return stricmp(k.word, word) == 0; });
    return row == std::end(table) ? nullptr : row;
}

int clamp_int(long value) {
    return static_cast<int>(
        std::clamp<long>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

void set_plot_type(const char* text) {
    if (const Keyword* row = find_word(plot_types, text)) {
        FLAG_set(flag_plot_type, row->value);
    }
}

void set_file_param(const char* text) {
    if (const Keyword* row = find_word(file_params, text)) {
        FLAG_set(flag_file_param, row->value);
    }
}

void set_draw_item(const char* item) {
    const int on = *item == '-' ? 0 : 1;
    if (*item == '-' || *item == '+') {
        ++item;
    }
    if (stricmp(item, "none") == 0) {
        FLAG_setplot(part_any, 0);
    } else if (stricmp(item, "all") == 0) {
        FLAG_setplot(part_any, 1);
    } else if (const Keyword* row = find_word(draw_switches, item)) {
        FLAG_setplot(row->value, on);
        if (row->value == part_text) { // "text" takes the border along
            FLAG_setplot(part_border, on);
        }
    }
}

// A plain list names what is drawn; one that begins with a sign edits the default.
void set_draw(const char* text) {
    const TextList items(text, ',');
    if (items.count() > 0 && *items[0] != '+' && *items[0] != '-') {
        FLAG_resetplot(0);
    }
    for (const char* item : items) {
        set_draw_item(item);
    }
}

// Fields of the text of `hour`.
struct HourText {
    const char* at;

    // Up to `width` digits; false if a digit is wanting at the first place.
    bool digits(int width, int& field) {
        const char* from = at;
        return take_digits(&at, width, 10, &field) && at - from == width;
    }
    bool number(int& field) {
        constexpr int limit = 99999;
        const bool read = take_int(&at, &field);
        field = read ? std::clamp(field, -limit, limit) : field;
        return read;
    }
    bool skip(char c) {
        const bool there = *at == c;
        at += there ? 1 : 0;
        return there;
    }
};

// "H:M", with "-0:M" for minutes back.
Date clock_text(const char* text) {
    Date date;
    HourText in{text};
    if (in.number(date.hour) && in.skip(':')) {
        in.number(date.min);
    }
    if (*text == '-' && date.hour == 0) {
        date.hour = missing;
        date.min = is_set(date.min) ? -date.min : missing;
    }
    return date;
}

void store_int(const char* value, int* out) {
    if (is_digit(value[0]) || value[0] == '-' || value[0] == '+') {
        const bool hex = value[1] == 'x' || value[1] == 'X';
        long number = 0;
        if (take_long(&value, &number, hex ? 16 : 10)) {
            *out = hex ? static_cast<int>(static_cast<std::uint32_t>(number)) : clamp_int(number);
        }
    }
}

void store_float(const char* value, float* out) {
    double number = 0.0;
    if (take_real(&value, &number) && std::isfinite(number)) {
        constexpr double limit = std::numeric_limits<float>::max();
        *out = static_cast<float>(std::clamp(number, -limit, limit));
    }
}

void store_path(const char* value, char** out) {
    const bool none = stricmp(value, "none") == 0;
    const std::size_t length = none ? 0 : std::strlen(value);
    char* path = new (std::nothrow) char[length + 2]; // room for the closing "/"
    if (path == nullptr) {
        return;
    }
    std::memcpy(path, value, length);
    const bool open_end = length > 0 && path[length - 1] != '/';
    path[length] = open_end ? '/' : '\0';
    path[length + (open_end ? 1 : 0)] = '\0';
    *out = path;
}

void store_device(const char* value, const char** out) {
    const TextList items(value, ',');
    FLAG_set(flag_device, items.count() > 0 ? RES_set_device(items[0]) : 1);
    const char* rest = value != nullptr ? std::strchr(value, ',') : nullptr;
    const bool empty_id = FLAG_get(flag_device) == 6 && rest != nullptr && rest[1] == ',';
    if (items.count() > 1 || empty_id) { // an id that a script left empty is not one left out
        *out = rest + 1;
    }
}

// The conversions that store. Returns 1 if `cvt` is one of them.
void store(const char* value, void* out, DEF_convert cvt) {
    switch (cvt) {
    case CV_int:
        store_int(value, static_cast<int*>(out));
        break;
    case CV_short:
        if (is_digit(*value)) {
            *static_cast<short*>(out) = static_cast<short>(
                std::clamp<int>(text_int(value), 0, std::numeric_limits<short>::max()));
        }
        break;
    case CV_long:
        if (is_digit(*value)) {
            take_long(&value, static_cast<long*>(out));
        }
        break;
    case CV_color:
        take_long(&value, static_cast<long*>(out));
        break;
    case CV_float:
        store_float(value, static_cast<float*>(out));
        break;
    case CV_string:
        *static_cast<const char**>(out) = value;
        break;
    case CV_strcpy:
        if (copy_text(static_cast<char*>(out), def_value_size, value) != 0) {
            MESS_print(mess_warn, "RES_conv_data: Value cut: %s\n", value);
        }
        break;
    case CV_path:
        store_path(value, static_cast<char**>(out));
        break;
    case CV_region:
    case CV_domain:
        if (state.actions.domain != nullptr) {
            state.actions.domain(value, static_cast<Domain*>(out));
        }
        break;
    case CV_device:
        store_device(value, static_cast<const char**>(out));
        break;
    default:
        break;
    }
}

// The conversions that act and need no `out`. Returns whether `cvt` is one.
bool act(const char* value, DEF_convert cvt) {
    switch (cvt) {
    case CV_mess:
        MESS_set_str(value);
        return true;
    case CV_hour: {
        const Date date = RES_dec_hour(value);
        if (state.actions.hour != nullptr) {
            state.actions.hour(&date);
        }
        return true;
    }
    case CV_file_param:
        set_file_param(value);
        return true;
    case CV_plot_type:
        set_plot_type(value);
        return true;
    case CV_draw:
        set_draw(value);
        return true;
    case CV_none:
    case CV_current:
    case CV_name:
    case CV_ingestor:
    case CV_strings:
        return true; // read as text
    default:
        return false;
    }
}

} // namespace

void RES_set_actions(const RES_actions& actions) {
    state.actions = actions;
}

int RES_conv_data(const char* value, void* out, DEF_convert cvt) {
    if (cvt == CV_batch) {
        FLAG_set_batch(1);
        if (MESS_check_set() == 0) {
            MESS_set(0, mess_print | mess_error | mess_warn);
        }
        return 1;
    }
    if (cvt == CV_help) {
        FLAG_set(flag_help, 1);
        return 1;
    }
    if (cvt == CV_bool && out != nullptr) {
        const Keyword* word = find_word(bool_words, value != nullptr ? value : "on");
        if (word != nullptr) {
            *static_cast<int*>(out) = word->value;
        }
        return 1;
    }
    if (value == nullptr) {
        return 0;
    }
    if (act(value, cvt)) {
        return 1;
    }
    if (out == nullptr) {
        return 0;
    }
    store(value, out, cvt);
    return 1;
}

Date RES_dec_hour(const char* text) {
    Date date;
    HourText in{text};
    const std::size_t length = std::strlen(text);
    const bool colon = std::strchr(text, ':') != nullptr;
    if (in.skip('#')) {
        [[maybe_unused]] const bool all = in.digits(4, date.year) && in.digits(2, date.month) &&
                                          in.digits(2, date.day) && in.digits(2, date.hour) &&
                                          in.digits(2, date.min);
    } else if (std::strchr(text, 'd') != nullptr) {
        if (in.number(date.day) && in.skip('d') && in.number(date.hour) && in.skip(':')) {
            in.number(date.min);
        }
    } else if (length == 6 && !colon) {
        [[maybe_unused]] const bool all =
            in.digits(2, date.month) && in.digits(2, date.day) && in.digits(2, date.hour);
    } else if ((length == 4 || length == 3) && !colon && is_digit(*text)) {
        if (in.digits(length == 4 ? 2 : 1, date.day)) {
            in.digits(2, date.hour);
        }
    } else if (in.skip(':')) {
        in.number(date.min);
    } else if (text[0] == '-' && text[1] == ':') {
        in.at += 2;
        date.min = in.number(date.min) ? -date.min : missing;
    } else {
        date = clock_text(text);
    }
    return date;
}

bool RES_is_switch(const char* text) {
    return find_word(bool_words, text) != nullptr;
}

void RES_add_words(DEF_convert cvt, KnownWords* known) {
    const auto add = [known](const auto& table) {
        for (const Keyword& row : table) {
            known->push_back({row.word});
        }
    };
    switch (cvt) {
    case CV_draw:
        add(draw_switches);
        known->push_back({"none"});
        known->push_back({"all"});
        break;
    case CV_plot_type:
        add(plot_types);
        break;
    case CV_file_param:
        add(file_params);
        break;
    default:
        break;
    }
}

int RES_set_device(const char* text) {
    switch (text != nullptr ? std::toupper(static_cast<unsigned char>(*text)) : '\0') {
    case 'P':
        return 4;
    case 'H':
    case 'Q':
        return 5;
    case 'M':
        return 3;
    case 'W':
        return 6;
    default:
        return 1;
    }
}
