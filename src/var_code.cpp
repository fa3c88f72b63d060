// var_code.cpp: time and level of a variable as integer codes (var_tool.h).
// Owns the stack of enclosing items, which gives a variable what its own text
// leaves out. Nothing has to be called first.
#include "var_tool.h"

#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "units.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned var_debug = 0x40000000;
constexpr int max_bases = 10;
constexpr std::size_t word_size = 40;

struct State {
    std::array<VAR_base, max_bases> base = {};
    int base_ind = -1; // top of the stack; -1: no item encloses
};
State var_state;

// --- Times ------------------------------------------------------------------

constexpr int kind_factor = 1000000;
constexpr int start_factor = 1000;
constexpr int range_kind = 2; // also what an unknown word means

struct Kind {
    int kind;
    const char* word;
    const char* label;
};
constexpr Kind kinds[] = {
    {2,  "rng",  "rng " },
    {3,  "avg",  "avg " },
    {4,  "acc",  "acc " },
    {5,  "dif",  "dif " },
    {6,  "max",  "max " },
    {7,  "min",  "min " },
    {13, "iavg", "iavg "},
    {23, "uavg", "uavg "},
    {18, "var",  "var " },
};

// A time text: word, then "-" and a number, then a word for the kind.
struct TimeText {
    char word[word_size] = {};
    int number = 0;
    char kind[word_size] = {};
    int fields = 0; // how many of the three were read
};

// A number at the start of `text`, held within six digits so that it can be
// packed. False if there is none.
bool read_int(const char** text, int* value) {
    constexpr int most = 999999;
    const bool found = take_int(text, value);
    *value = std::clamp(*value, -most, most);
    return found;
}

TimeText split_time(const char* text) {
    TimeText result;
    const std::size_t length = std::strcspn(text, "-");
    if (length == 0) {
        return result;
    }
    std::snprintf(result.word, sizeof result.word, "%.*s", static_cast<int>(length), text);
    result.fields = 1;
    text += length;
    if (*text != '-' || !read_int(&(++text), &result.number)) {
        return result;
    }
    result.number = std::clamp(result.number, -999, 999);
    result.fields = 2;
    if (*text != '\0') {
        copy_text(result.kind, sizeof result.kind, text);
        result.fields = 3;
    }
    return result;
}

int kind_of(const char* word) {
    for (const Kind& row : kinds) {
        if (std::strcmp(word, row.word) == 0) {
            return row.kind;
        }
    }
    return range_kind;
}

int pack_time(const TimeText& text, int start, int end) {
    return kind_of(text.kind) * kind_factor + start * start_factor + end;
}

// Hours of a word such as "h12", "d2", "e1", "2day", "1.5day". False if it is
// no such word.
bool read_hours(const char* word, int* hours) {
    const char prefix = *word;
    const bool prefixed = prefix == 'h' || prefix == 'd' || prefix == 'e';
    const char* rest = word + (prefixed ? 1 : 0);
    int number = 0;
    if (!is_digit(*rest) || !read_int(&rest, &number)) {
        return false;
    }
    const bool day = prefixed ? prefix == 'd' && *rest == '\0'
                              : std::strcmp(rest, "day") == 0 || std::strcmp(rest, "d") == 0;
    const bool half = prefixed ? prefix == 'e' && *rest == '\0'
                               : std::strcmp(rest, ".5day") == 0 || std::strcmp(rest, "e") == 0;
    number = std::min(number, 9999);
    *hours = day ? 24 * number : half ? 24 * number + 12 : number;
    return day || half || (prefix == 'h' && *rest == '\0');
}

// The time of the enclosing item, else the default. False without either.
bool inherited_time(int* time) {
    const int top = var_state.base_ind;
    const int value =
        top >= 0 ? var_state.base[static_cast<std::size_t>(top)].time : FLAG_get(flag_def_time);
    if (top < 0 && !is_set(value)) {
        return false;
    }
    *time = value;
    return true;
}

int inherit_less(const TimeText& text, int* time) {
    int base = 0;
    inherited_time(&base);
    if (text.fields > 1 && is_set(base)) {
        const int end = base % start_factor;
        base = text.fields == 3 ? pack_time(text, end - text.number, end) : end - text.number;
    }
    *time = base;
    return var_stat_inherited;
}

// --- Levels -----------------------------------------------------------------

struct LevelWord {
    const char* word;
    int ltype, level;
};
constexpr LevelWord level_words[] = {
    {"none",      0,       0      },
    {"snd",       0,       0      },
    {"miss",      missing, missing},
    {"sfc",       1,       0      },
    {"sf",        1,       0      },
    {"sea",       1,       0      },
    {"se",        1,       0      },
    {"frz",       4,       0      },
    {"lcl",       5,       0      },
    {"mwnd",      6,       0      },
    {"trop",      7,       0      },
    {"-",         9,       0      },
    {"sl",        102,     0      },
    {"whole",     200,     0      },
    {"top_frz",   204,     0      },
    {"gcld_bot",  206,     0      },
    {"gcld_top",  207,     0      },
    {"blcld_bot", 209,     0      },
    {"blcld_top", 210,     0      },
    {"blcld_lyr", 211,     0      },
    {"lcld_bot",  212,     0      },
    {"lcld_top",  213,     0      },
    {"lcld_lyr",  214,     0      },
    {"cld_ceil",  215,     0      },
    {"mcld_bot",  222,     0      },
    {"mcld_top",  223,     0      },
    {"mcld_lyr",  224,     0      },
    {"hcld_bot",  232,     0      },
    {"hcld_top",  233,     0      },
    {"hcld_lyr",  234,     0      },
    {"conv_bot",  242,     0      },
    {"conv_top",  243,     0      },
    {"conv_lyr",  244,     0      },
    {"wbzero",    245,     0      },
    {"maxepot",   246,     0      },
    {"equilib",   247,     0      },
    {"sconv_bot", 248,     0      },
    {"sconv_top", 249,     0      },
    {"dconv_bot", 251,     0      },
    {"dconv_top", 252,     0      },
    {"sclw_bot",  253,     0      },
    {"sclw_top",  254,     0      },
};

// How the two ends of a layer go into one number.
enum class Packing {
    pressure,   // smaller / 10, then larger / 10
    height,     // second / 100, then first / 100
    thousandth, // thousandths of second, then of first
    whole,      // second, then first
    none        // no layer of this unit
};

constexpr double coded = 10000.0; // sigma and eta levels

struct Unit {
    const char* word;
    int ltype;     // of a single level
    double factor; // for a single level
    int layer;     // type of a layer
    Packing packing;
};
constexpr Unit units[] = {
    {"",      100, 1.0,        101, Packing::pressure  },
    {"mb",    100, 1.0,        101, Packing::pressure  },
    {"ft",    103, m_per_foot, 104, Packing::height    },
    {"m",     103, 1.0,        104, Packing::height    },
    {"ft_ag", 105, m_per_foot, 106, Packing::height    },
    {"m_ag",  105, 1.0,        106, Packing::height    },
    {"k",     113, 1.0,        114, Packing::whole     },
    {"mb_ag", 115, 1.0,        116, Packing::whole     },
    {"sig",   107, coded,      108, Packing::thousandth},
    {"lev",   109, 1.0,        0,   Packing::none      },
    {"pv",    117, 1.0,        0,   Packing::none      },
    {"eta",   119, coded,      120, Packing::thousandth},
};

// The same by a letter before the number.
struct LetterUnit {
    char letter;
    const char* word; // in `units`
};
constexpr LetterUnit letters[] = {
    {'p', "mb"  },
    {'h', "m"   },
    {'a', "m_ag"},
    {'s', "sig" },
    {'k', "k"   }
};

const Unit* find_unit(const char* word) {
    for (const Unit& unit : units) {
        if (std::strcmp(word, unit.word) == 0) {
            return &unit;
        }
    }
    return nullptr;
}

// Codes of the ends of a layer that are no number.
constexpr int layer_sfc = 1900;
constexpr int layer_sfc_above = 2000; // plus the number in "sfc[n"
constexpr int layer_maxt = 1910;
constexpr int layer_trop = 1950;
constexpr int trop_plus = 99500; // with heights: above and below the tropopause
constexpr int trop_minus = 99600;

// One end of a layer, or a single level.
struct Term {
    double value = 0.0;
    bool is_sfc = false;        // "sfc[n"
    bool is_trop = false;       // "trop"
    bool named = false;         // a word: no unit changes it
    const Unit* unit = nullptr; // null: none given
};

bool skip_word(const char** text, const char* word) {
    const std::size_t length = std::strlen(word);
    if (std::strncmp(*text, word, length) != 0) {
        return false;
    }
    *text += length;
    return true;
}

bool read_named(const char** text, Term* term) {
    int number = 0;
    if (skip_word(text, "sfc[")) {
        term->is_sfc = true;
        if (!read_int(text, &number)) {
            return false;
        }
        skip_word(text, "]");
        term->value = layer_sfc_above + number;
    } else if (skip_word(text, "sfc")) {
        term->value = layer_sfc;
    } else if (skip_word(text, "maxt")) {
        term->value = layer_maxt;
    } else if (skip_word(text, "trop")) {
        term->value = layer_trop;
        term->is_trop = true;
    } else {
        return false;
    }
    term->named = true;
    return true;
}

// A plain decimal number; no exponent and no sign, since "e" begins a unit
// and "-" a layer.
bool read_decimal(const char** text, double* value) {
    const std::size_t length = std::strspn(*text, "0123456789.");
    char digits[24] = "";
    if (length == 0 || length >= sizeof digits) {
        return false;
    }
    std::memcpy(digits, *text, length);
    const char* at = digits;
    *value = 0.0;
    take_real(&at, value);
    *value = std::min(*value, 999999.0);
    *text += length;
    return *at == '\0';
}

bool read_term(const char** text, Term* term) {
    if (!read_named(text, term) && (term->is_sfc || !read_decimal(text, &term->value))) {
        return false;
    }
    char word[word_size] = "";
    std::size_t length = 0;
    while ((std::isalpha(static_cast<unsigned char>((*text)[length])) != 0 ||
            (*text)[length] == '_') &&
           length < sizeof word - 1) {
        word[length] = (*text)[length];
        ++length;
    }
    *text += length;
    if (length > 0) {
        term->unit = find_unit(word);
        return term->unit != nullptr;
    }
    return true;
}

// Truncated, with room for what a decimal fraction lacks in binary.
int trunc_level(double value) {
    constexpr double most = 999999999; // a number of any unit is below it on earth
    return static_cast<int>(std::clamp(value + 1e-6, -most, most));
}

std::int64_t pack_layer(const Unit& unit, double first, double second) {
    const auto join = [](int high, int low) { return std::int64_t{high} * 1000 + low; };
    switch (unit.packing) {
    case Packing::pressure:
        return join(trunc_level(std::min(first, second)) / 10,
                    trunc_level(std::max(first, second)) / 10);
    case Packing::height:
        return join(trunc_level(second) / 100, trunc_level(first) / 100);
    case Packing::thousandth:
        return join(trunc_level(1000.0 * second), trunc_level(1000.0 * first));
    default:
        return join(trunc_level(second), trunc_level(first));
    }
}

// End of a layer in the layer's unit.
double end_value(const Term& term, const Unit& unit, char joint) {
    if (unit.packing == Packing::height && term.is_trop) {
        return joint == '+' ? trop_plus : trop_minus;
    }
    const bool scaled = !term.named && unit.packing == Packing::height;
    return scaled ? term.value * unit.factor : term.value;
}

struct Level {
    int ltype, level;
};

bool decode_layer(const Term& first, const Term& second, char joint, Level* level) {
    const Unit* unit = first.unit != nullptr    ? first.unit
                       : second.unit != nullptr ? second.unit
                                                : find_unit("");
    if (unit->packing == Packing::none) {
        return false;
    }
    const std::int64_t code =
        pack_layer(*unit, end_value(first, *unit, joint), end_value(second, *unit, joint));
    *level = {unit->layer, static_cast<int>(code)};
    return code == level->level; // what no code holds is no layer
}

// Numbers with units, and layers of them.
bool decode_terms(const char* text, const Unit* given, Level* level) {
    Term first;
    if (!read_term(&text, &first)) {
        return false;
    }
    first.unit = first.unit == nullptr ? given : first.unit;
    if (*text == '-' || *text == '+') {
        const char joint = *text++;
        Term second;
        return read_term(&text, &second) && *text == '\0' &&
               decode_layer(first, second, joint, level);
    }
    if (*text != '\0') {
        return false;
    }
    if (first.named) {
        *level = {1, static_cast<int>(first.value) - layer_sfc_above};
        return first.is_sfc;
    }
    const Unit& unit = first.unit != nullptr ? *first.unit : *find_unit("");
    *level = {unit.ltype, trunc_level(first.value * unit.factor)};
    return true;
}

bool decode_level(const char* text, Level* level) {
    for (const LevelWord& row : level_words) {
        if (std::strcmp(text, row.word) == 0) {
            *level = {row.ltype, row.level};
            return true;
        }
    }
    for (const LetterUnit& row : letters) {
        if (*text == row.letter && is_digit(text[1])) {
            return decode_terms(text + 1, find_unit(row.word), level);
        }
    }
    return decode_terms(text, nullptr, level);
}

// --- Labels -----------------------------------------------------------------

struct LevelLabel {
    int ltype;
    const char* text;
};
// Types whose label is a fixed text.
constexpr LevelLabel level_labels[] = {
    {4,   "Freezing level"           },
    {5,   "Adiabatic condensation"   },
    {6,   "Maximum wind"             },
    {7,   "Tropopause"               },
    {9,   "Sea bottom"               },
    {102, "Sea level"                },
    {200, "Entire atmosphere"        },
    {204, "Top freezing level"       },
    {206, "Grid cloud bottom"        },
    {207, "Grid cloud top"           },
    {209, "Boundary cloud bottom"    },
    {210, "Boundary cloud top"       },
    {211, "Boundary cloud layer"     },
    {212, "Low cloud bottom"         },
    {213, "Low cloud top"            },
    {214, "Low cloud layer"          },
    {215, "Cloud ceiling"            },
    {222, "Middle cloud bottom"      },
    {223, "Middle cloud top"         },
    {224, "Middle cloud layer"       },
    {232, "High cloud bottom"        },
    {233, "High cloud top"           },
    {234, "High cloud layer"         },
    {242, "Convective cloud bottom"  },
    {243, "Convective cloud top"     },
    {244, "Convective cloud layer"   },
    {245, "Wet bulb zero"            },
    {246, "Maximum theta-e"          },
    {247, "Equilibrium level"        },
    {248, "Shallow convection bottom"},
    {249, "Shallow convection top"   },
    {251, "Deep convection bottom"   },
    {252, "Deep convection top"      },
    {253, "Supercooled water bottom" },
    {254, "Supercooled water top"    },
};

// Text under construction in the caller's buffer.
struct Label {
    char* text;
    std::size_t used = 0;

    template <class... Args> void add(const char* format, Args... args) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // literals of this file alone
#pragma GCC diagnostic ignored "-Wformat-security"
        const int n = std::snprintf(text + used, var_label_size - used, format, args...);
#pragma GCC diagnostic pop
        used = std::min(used + static_cast<std::size_t>(std::max(n, 0)), var_label_size - 1);
    }
};

// An hour field as a number of its unit: 0 hours, 1 days, 2 months.
struct Span {
    int number, unit;
};

Span span_of(int field) {
    return field >= 900   ? Span{field - 900, 2}
           : field >= 800 ? Span{field - 800, 1}
                          : Span{field, 0};
}

void label_time(int time, Label* label) {
    constexpr const char* forms[] = {"%d hour ", "%d day ", "%d month "};
    const int kind = time / kind_factor;
    if (kind <= 1) {
        return;
    }
    const Span start = span_of(time % kind_factor / start_factor);
    const Span end = span_of(time % start_factor);
    const int value = kind <= 9 ? std::abs(end.number - start.number) : end.number;
    label->add(forms[end.unit], value);
    for (const Kind& row : kinds) {
        if (row.kind == kind) {
            label->add("%s", row.label);
        }
    }
}

void label_pressure_layer(int level, Label* label) {
    const int top = level / 1000 * 10;
    const int bottom = level % 1000 * 10;
    if (level == 510 || level == 508 || level == 599) {
        label->add("Layer %d", level);
    } else if (bottom == layer_sfc) {
        label->add("sfc-%d mb", top);
    } else if (bottom == layer_maxt) {
        label->add("maxt-%d mb", top);
    } else if (bottom == layer_trop) {
        label->add("trop-%d mb", top);
    } else if (bottom >= layer_sfc_above) {
        label->add("sfc[%d]-%d mb", bottom - layer_sfc_above, top);
    } else {
        label->add("%d-%d mb", bottom, top);
    }
}

void label_height_layer(int level, Label* label) {
    const int first = level % 1000 * 100;
    const int second = level / 1000 * 100;
    if (first == trop_plus) {
        label->add("trop+%d m", second);
    } else if (first == trop_minus) {
        label->add("trop-%d m", second);
    } else {
        label->add("%d-%d mb", first, second);
    }
}

void label_surface(int level, Label* label) {
    if (level == 0) {
        label->add("Surface");
    } else {
        label->add("Surface[%d]", level > layer_sfc_above ? level - layer_sfc_above : level);
    }
}

// Label of a fixed type. False if there is none.
bool label_word(int ltype, Label* label) {
    for (const LevelLabel& row : level_labels) {
        if (row.ltype == ltype) {
            label->add("%s", row.text);
            return true;
        }
    }
    return false;
}

bool label_level(int ltype, int level, Label* label) {
    const int first = level % 1000; // bottom of a layer
    const int second = level / 1000;
    const double part = level / 10000.0;
    const double first_part = first / 1000.0;
    const double second_part = second / 1000.0;
    switch (ltype) {
    case 0:
        break;
    case 1:
        label_surface(level, label);
        break;
    case 100:
        label->add("%d mb", level);
        break;
    case 101:
        label_pressure_layer(level, label);
        break;
    case 103:
        label->add("%d m", level);
        break;
    case 104:
        label_height_layer(level, label);
        break;
    case 105:
        label->add("%d m AG", level);
        break;
    case 106:
        label->add("%d-%d m AG", first * 100, second * 100);
        break;
    case 107:
        label->add("%3.2f sigma", part);
        break;
    case 108:
        label->add("%3.2f-%3.2f sigma", first_part, second_part);
        break;
    case 109:
        label->add("%d lev", level);
        break;
    case 113:
        label->add("%d K", level);
        break;
    case 114:
        label->add("%3.0f-%3.0f K", static_cast<double>(first), static_cast<double>(second));
        break;
    case 115:
        label->add("%d mb AG", level);
        break;
    case 116:
        label->add("%d-%d mb AG", first, second);
        break;
    case 117:
        label->add("%d*10^-6 Km2/kgs", level);
        break;
    case 119:
        label->add("%3.2f Eta", part);
        break;
    case 120:
        label->add("%3.2f-%3.2f Eta", first_part, second_part);
        break;
    default:
        return label_word(ltype, label);
    }
    return true;
}

} // namespace

int VAR_base_push(const VAR_base& base) {
    if (var_state.base_ind >= max_bases - 1) {
        return -1;
    }
    var_state.base[static_cast<std::size_t>(++var_state.base_ind)] = base;
    return 0;
}

int VAR_base_pop() {
    if (var_state.base_ind < 0) {
        return -1;
    }
    --var_state.base_ind;
    return 0;
}

int VAR_base_type() {
    const int top = var_state.base_ind;
    return top >= 0 ? var_state.base[static_cast<std::size_t>(top)].type : missing;
}

int VAR_dec_time(const char* text, int* time) {
    if (text == nullptr || *text == '\0') {
        if (inherited_time(time)) {
            return var_stat_inherited;
        }
        *time = 0;
        return var_stat_given;
    }
    const TimeText parts = split_time(text);
    const bool packed = parts.fields == 3;
    int hours = 0;
    if (std::strcmp(parts.word, "time") == 0) {
        return inherit_less(parts, time);
    }
    if (std::strcmp(parts.word, "anal") == 0) {
        *time = packed ? pack_time(parts, parts.number, 0) : 0;
    } else if (std::strcmp(parts.word, "miss") == 0) {
        *time = missing;
    } else if (std::strcmp(parts.word, "init") == 0 || std::strcmp(parts.word, "in") == 0) {
        *time = 0;
    } else if (read_hours(parts.word, &hours)) {
        *time = packed ? pack_time(parts, hours - parts.number, hours) : hours;
    } else {
        return var_stat_none;
    }
    return var_stat_given;
}

int VAR_dec_level(const char* text, int* ltype, int* level) {
    if (text == nullptr || *text == '\0') {
        const int top = var_state.base_ind;
        if (top >= 0) {
            *ltype = var_state.base[static_cast<std::size_t>(top)].ltype;
            *level = var_state.base[static_cast<std::size_t>(top)].level;
            return var_stat_inherited;
        }
        if (!is_set(FLAG_get(flag_def_ltype)) || !is_set(FLAG_get(flag_def_level))) {
            return var_stat_given;
        }
        text = "level";
    }
    if (std::strcmp(text, "level") == 0) {
        *ltype = FLAG_get(flag_def_ltype);
        *level = FLAG_get(flag_def_level);
        return var_stat_inherited;
    }
    Level decoded = {*ltype, *level};
    if (decode_level(text, &decoded)) {
        *ltype = decoded.ltype;
        *level = decoded.level;
    }
    MESS_print(var_debug, "Level: %s = %d %ld\n", text, *ltype, static_cast<long>(*level));
    return var_stat_given;
}

int VAR_make_datalevel(int time, int ltype, int level, char* text) {
    Label label = {text};
    text[0] = '\0';
    label_time(time, &label);
    if (label_level(ltype, level, &label)) {
        return 0;
    }
    MESS_print(mess_debug, "VAR_make_datatype: no ltype: %d\n", ltype);
    return -1;
}

void keep_var_code(StateKeeper& keeper) {
    keeper.keep(var_state);
}
