// var_tool.cpp: a variable text as a table of records (var_tool.h). State: the
// table of the last VAR_setup. The variable file and the lookup file are
// var_file's, times and levels and the stack of enclosing items var_code's.
#include "var_tool.h"

#include "plt_tool.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "tools.h"
#include "zyr.h"
#include "zyrgrid.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr unsigned var_debug = 0x40000000;
constexpr int default_type = var_type_value;
constexpr int plot_type_all = 99;  // flag 11: no type of its own
constexpr int most_lookups = 1000; // definitions that a text may use

struct State {
    std::array<VAR_data, var_max> var = {};
    int num = 0;
    int plevel = 0; // function depth
    int vlevel = 0; // group depth
    int lookups = 0;
    // What has been warned of in this text.
    bool told_full = false;
    bool told_deep = false;
    bool told_lookups = false;
};
State state;

// --- Data types -----------------------------------------------------------------

struct TypeRow {
    int code;
    const char* label;
    const char* word;  // of VAR_dec_type; null: not to be asked for by a word
    const char* other; // a second word
};
constexpr TypeRow types[] = {
    {1,  "data",   "data",   nullptr},
    {2,  "value",  "value",  nullptr},
    {3,  "text",   "text",   nullptr},
    {4,  "mark",   "mark",   "mk"   },
    {5,  "int",    nullptr,  nullptr},
    {6,  "map",    nullptr,  nullptr},
    {7,  "frame",  nullptr,  nullptr},
    {8,  "panel",  nullptr,  nullptr},
    {10, "grid",   nullptr,  nullptr},
    {11, "cont",   "cont",   nullptr},
    {12, "lcont",  "ln",     nullptr},
    {13, "dln",    "dln",    nullptr},
    {14, "ndln",   "ndln",   nullptr},
    {15, "fcont",  "cf",     nullptr},
    {16, "bcont",  "lcf",    nullptr},
    {17, "gvalue", "gvalue", nullptr},
    {20, "wind",   "wind",   nullptr},
    {21, "vect",   "vect",   nullptr},
    {22, "barb",   "barb",   nullptr},
    {23, "strm",   "strm",   "track"},
    {30, "plot",   "plot",   nullptr},
    {31, "cloud",  "cloud",  nullptr},
    {32, "wbarb",  "wbarb",  nullptr},
    {33, "cbarb",  "cbarb",  nullptr},
    {34, "dbarb",  "dbarb",  nullptr},
    {35, "vbarb",  "vbarb",  nullptr},
    {36, "symb",   "symb",   "wx"   },
    {37, "line",   "line",   nullptr},
    {40, "const",  nullptr,  nullptr},
};

struct LayoutRow {
    const char* name;
    int type;
};
constexpr LayoutRow layouts[] = {
    {"map",   var_type_map  },
    {"plot",  var_type_plot },
    {"frame", var_type_frame},
    {"panel", var_type_panel},
};

bool in_grid_types(int type) {
    return type >= var_type_grid && type <= var_type_track;
}

// Contour kinds and vectors: types that `plot_type` lays over others.
bool is_overriding(int type) {
    return (type >= var_type_lcont && type <= var_type_gvalue) ||
           (type >= var_type_vect && type <= var_type_track);
}

int decide_type(const VAR_data& var, const char* name) {
    const int plot_type = FLAG_get(flag_plot_type);
    const int role = var.flag % 10;
    int type = var.type;
    if (role == var_role_vector) {
        type = in_grid_types(plot_type) ? plot_type : var_type_grid;
    } else if (role == var_role_function && GRD_is_math_func(name) != 0) {
        type = in_grid_types(plot_type) ? plot_type : GRD_is_math_func(name);
    } else if (is_overriding(plot_type)) {
        type = plot_type;
    } else if (in_grid_types(VAR_base_type())) {
        type = var_type_grid;
    }
    return is_set(type) ? type : default_type;
}

// --- Numbers of variables --------------------------------------------------------

// "ensmean[]name" and its like: how a variable's number becomes that of a form
// of an ensemble.
struct Ensemble {
    const char* variable;    // what is after the "]"
    std::int64_t factor = 1; // number * factor + offset
    std::int64_t offset = 0;
};

bool skip_word(const char** text, const char* word) {
    const std::size_t length = std::strlen(word);
    if (strnicmp(*text, word, static_cast<int>(length)) != 0) {
        return false;
    }
    *text += length;
    return true;
}

bool read_member(const char* at, Ensemble* form) {
    const bool minus = take_char(&at, '-');
    const bool plus = !minus && take_char(&at, '+');
    int member = 0;
    if (!take_int(&at, &member) || !take_char(&at, ']')) {
        return false;
    }
    form->offset = (minus  ? 19320000
                    : plus ? 19340000
                           : 19300000) +
                   1000LL * std::clamp(member, 0, 19);
    form->variable = at;
    return true;
}

bool read_probability(const char* at, Ensemble* form) {
    constexpr std::string_view signs = "<>^";
    const std::size_t sign = *at == '\0' ? std::string_view::npos : signs.find(*at);
    float limit = 0.0F;
    if (sign == std::string_view::npos || !take_float(&(++at), &limit) || !take_char(&at, ']')) {
        return false;
    }
    const int code = float2int(limit);
    const auto place = static_cast<std::int64_t>(sign) * 1000;
    form->factor = 10000;
    form->offset = code < 0 ? 1910006000 + place - code : 1910001000 + place + code;
    form->variable = at;
    return true;
}

bool read_ensemble(const char* name, Ensemble* form) {
    if (skip_word(&name, "ensmean[]")) {
        *form = {name, 1, 19000000};
        return true;
    }
    if (skip_word(&name, "ensdev[]")) {
        *form = {name, 1, 19001000};
        return true;
    }
    return skip_word(&name, "ensprob[") ? read_probability(name, form)
                                        : skip_word(&name, "ens[") && read_member(name, form);
}

// The variable of a name such as "max-top": what is after the function word.
const char* variable_of(const char* name) {
    const char* minus = std::strchr(name, '-');
    return minus == nullptr || minus == name || minus[1] == '\0' ? name : minus + 1;
}

void find_numbers(const char* variable, VAR_data* var) {
    const char* at = variable;
    int number = 0;
    if (string_is_num(variable) != 0 && take_int(&at, &number)) {
        var->var[0] = number;
        if (const VAR_desc* row = VAR_find_number(number)) {
            copy_text(var->name, sizeof var->name, row->name);
        }
    } else if (const VAR_desc* row = VAR_find_abbr(variable + (*variable == '+' ? 1 : 0))) {
        std::copy(std::begin(row->ind), std::end(row->ind), var->var);
    }
}

// Fills name, type and numbers. Returns whether there is a name.
bool VAR_dec_var(const char* name, VAR_data* var) {
    copy_text(var->name, sizeof var->name, name);
    if (*name == '#') {
        var->type = var_type_const;
        return true;
    }
    var->type = decide_type(*var, name);
    if (*name == '\0') {
        return false;
    }
    Ensemble form;
    if (!read_ensemble(name, &form)) {
        find_numbers(variable_of(name), var);
        return true;
    }
    find_numbers(form.variable, var);
    copy_text(var->name, sizeof var->name, name);
    if (is_set(var->var[0])) {
        const std::int64_t number = form.factor * var->var[0] + form.offset;
        const bool fits = number <= std::numeric_limits<int>::max() && number >= 0;
        var->var[0] = fits ? static_cast<int>(number) : missing;
    }
    return true;
}

// --- Records -------------------------------------------------------------------

int plain_flag() {
    return 10 * state.plevel + state.vlevel;
}

bool is_layout(const VAR_data& var) {
    return var.flag >= 0 && var.flag % 10 == var_role_layout &&
           (var.type == var_type_map || var.type == var_type_plot || var.type == var_type_frame ||
            var.type == var_type_panel);
}

// Adds a record. Null, with one warning, when the table is full.
VAR_data* add_record(const VAR_data& var) {
    if (state.num >= var_max) {
        if (!state.told_full) {
            MESS_print(mess_warn, "VAR_setup: More than %d variables, from %s on left out\n",
                       var_max, var.name);
        }
        state.told_full = true;
        return nullptr;
    }
    state.var[static_cast<std::size_t>(state.num)] = var;
    return &state.var[static_cast<std::size_t>(state.num++)];
}

bool push_base(const VAR_data& var) {
    const VAR_base base = {var.type, var.tstat, var.time, var.lstat, var.ltype, var.level};
    if (VAR_base_push(base) == 0) {
        return true;
    }
    if (!state.told_deep) {
        MESS_print(mess_warn, "VAR_setup: Variables nested too deep, left out: %s\n", var.name);
    }
    state.told_deep = true;
    return false;
}

using Fields = std::vector<std::string>;

// At least one field, which may be empty.
Fields split_fields(std::string_view text) {
    Fields fields(1);
    for (const char c : text) {
        if (c == ':') {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

std::string without_escapes(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            ++i;
        }
        if (text[i] != '\\' || (i > 0 && text[i - 1] == '\\')) {
            plain += text[i];
        }
    }
    return plain;
}

std::string join_from(const Fields& fields, std::size_t first) {
    std::string text;
    for (std::size_t i = first; i < fields.size(); ++i) {
        text += (i > first ? ":" : "") + fields[i];
    }
    return text;
}

// Units, type and format from field `at` on. `with_type`: whether a type
// keyword counts; it is passed over in any case.
void take_settings(const Fields& fields, std::size_t at, bool with_type, VAR_data* var) {
    const bool layout = is_layout(*var);
    if (at < fields.size() && !layout) {
        copy_text(var->units, sizeof var->units, fields[at++].c_str());
    }
    const int type = at < fields.size() ? VAR_dec_type(fields[at].c_str()) : -1;
    if (type >= 0) {
        ++at;
        var->type = with_type && !layout ? type : var->type;
    }
    if (at < fields.size()) {
        copy_text(var->format, sizeof var->format, join_from(fields, at).c_str());
    }
}

// --- The text ---------------------------------------------------------------------

void process(std::string_view text, const VAR_data* seed);

// Time and level: from the first two fields if the first is a time, else from
// the item that encloses it. Returns the place of the name.
std::size_t take_time(const Fields& fields, VAR_data* var) {
    if (fields.size() >= 3) {
        int time = 0;
        const int status = VAR_dec_time(fields[0].c_str(), &time);
        if (status != var_stat_none) {
            var->tstat = status;
            var->time = time;
            var->lstat = VAR_dec_level(fields[1].c_str(), &var->ltype, &var->level);
            return 2;
        }
    }
    if (var->tstat == var_stat_none) {
        var->tstat = VAR_dec_time("", &var->time);
        var->lstat = VAR_dec_level("", &var->ltype, &var->level);
    }
    return 0;
}

bool take_layout(const Fields& fields, VAR_data* var) {
    for (const LayoutRow& row : layouts) {
        if (stricmp(fields[0].c_str(), row.name) == 0) {
            copy_text(var->name, sizeof var->name, fields[0].c_str());
            var->type = row.type;
            var->flag = 10 * state.plevel + var_role_layout;
            return true;
        }
    }
    return false;
}

// The definition of a name, for a bounded number of names: definitions that
// call each other multiply.
const char* find_definition(const char* name) {
    const char* definition = nullptr;
    VAR_lookup(name, &definition);
    if (definition == nullptr || ++state.lookups <= most_lookups) {
        return definition;
    }
    if (!state.told_lookups) {
        MESS_print(mess_warn, "VAR_setup: More than %d definitions in a text, left out: %s\n",
                   most_lookups, name);
    }
    state.told_lookups = true;
    return "";
}

struct Spec {
    bool named = false;   // the record has a name and is to be kept
    bool defined = false; // its definition has been processed instead
};

// A name, with a look at the variable file if `look` is true.
Spec take_name(const std::string& name, bool look, VAR_data* var) {
    if (name[0] == '+') {
        var->flag = plain_flag();
        return {VAR_dec_var(name.c_str() + 1, var), false};
    }
    if (!look || name.substr(0, sizeof var->name - 1) == var->name) {
        if (look) {
            var->flag = plain_flag();
        }
        return {VAR_dec_var(name.c_str(), var), false};
    }
    copy_text(var->name, sizeof var->name, name.c_str());
    const int type = VAR_dec_type(name.c_str());
    var->type = type >= 0 ? type : var->type;
    if (const char* definition = find_definition(name.c_str())) {
        if (push_base(*var)) {
            process(definition, var);
            VAR_base_pop();
        }
        return {false, true};
    }
    var->flag = plain_flag();
    return {VAR_dec_var(name.c_str(), var), false};
}

// One spec. `var` starts as the record that a definition's first item fills.
Spec VAR_process_var(std::string_view text, bool look, VAR_data* var) {
    const Fields fields = split_fields(without_escapes(text));
    if (take_layout(fields, var)) {
        take_settings(fields, 1, false, var);
        return {true, false};
    }
    const std::size_t at = take_time(fields, var);
    const int before = state.num;
    const Spec spec = take_name(fields[at], look, var);
    if (!spec.defined) {
        take_settings(fields, at + 1, true, var);
    } else if (state.num > before) {
        take_settings(fields, at + 1, true, &state.var[static_cast<std::size_t>(state.num - 1)]);
    }
    return spec;
}

struct Mark {
    char open, close;
    int role;
    const char* word;
};
constexpr Mark marks[] = {
    {'(', ')', var_role_function, "Function"},
    {'{', '}', var_role_group,    "Group"   },
    {'<', '>', var_role_vector,   "Vector"  },
};

const Mark* find_mark(char c) {
    const auto* mark = std::find_if(std::begin(marks), std::end(marks),
                                    [c](const Mark& m) { return m.open == c; });
    return mark == std::end(marks) ? nullptr : mark;
}

// Place of the mark that closes the one in front of `from`; npos if none does.
std::size_t find_close(std::string_view text, std::size_t from, char open, char close) {
    int depth = 1;
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == close && --depth == 0) {
            return i;
        } else if (text[i] == open) {
            ++depth;
        }
    }
    return std::string_view::npos;
}

// One level of a text while it is read.
struct Reader {
    std::string_view text;
    const VAR_data* seed;     // of the first item; null: none
    std::size_t item = 0;     // where the current item began
    VAR_data* head = nullptr; // what settings without a spec apply to

    VAR_data fresh() {
        const VAR_data var = seed != nullptr ? *seed : VAR_data{};
        seed = nullptr;
        return var;
    }

    // The item up to `end` as a plain variable.
    void plain(std::size_t end) {
        if (end <= item) {
            return;
        }
        VAR_data var = fresh();
        const int before = state.num;
        const Spec spec = VAR_process_var(text.substr(item, end - item), true, &var);
        head = spec.named ? add_record(var) : nullptr;
        if (spec.defined && state.num > before) {
            head = &state.var[static_cast<std::size_t>(state.num - 1)];
        }
    }

    VAR_data* add_head(std::size_t end, const Mark& mark) {
        VAR_data var = fresh();
        VAR_process_var(text.substr(item, end - item), false, &var);
        var.flag = 10 * state.plevel + mark.role;
        VAR_data* record = add_record(var);
        if (mark.role == var_role_function && GRD_is_vect_func(var.name) != 0) {
            var.flag = 10 * state.plevel + var_role_second;
            add_record(var);
        }
        return record;
    }

    // A function, group or vector whose mark is at `at`. Returns its end.
    std::size_t nested(std::size_t at, const Mark& mark) {
        head = add_head(at, mark);
        const std::size_t end = find_close(text, at + 1, mark.open, mark.close);
        if (end == std::string_view::npos) {
            MESS_print(var_debug,
                       mark.role == var_role_vector ? "Unmatched <>\n" : "Unmatched ()\n");
            return end;
        }
        if (head != nullptr && push_base(*head)) {
            const std::string inside(text.substr(at + 1, end - at - 1));
            MESS_print(var_debug, "%s %s %c %s %c\n", mark.word, head->name, mark.open,
                       inside.c_str(), mark.close);
            int& depth = mark.role == var_role_function ? state.plevel : state.vlevel;
            ++depth;
            process(inside, nullptr);
            --depth;
            VAR_base_pop();
        }
        return end;
    }

    // Settings whose "[" is at `at`. Returns their end.
    std::size_t settings(std::size_t at) {
        plain(at);
        const std::size_t end = find_close(text, at + 1, '[', ']');
        if (end == std::string_view::npos) {
            MESS_print(var_debug, "Unmatched []\n");
        } else if (head != nullptr && state.plevel == 0) {
            const int plot_type = FLAG_get(flag_plot_type);
            take_settings(split_fields(without_escapes(text.substr(at + 1, end - at - 1))), 0,
                          !is_set(plot_type) || plot_type == plot_type_all, head);
        }
        return end;
    }
};

void process(std::string_view text, const VAR_data* seed) {
    Reader reader{text, seed};
    std::size_t i = 0;
    for (; i < text.size() && !state.told_full; ++i) {
        const char c = text[i];
        const Mark* mark = find_mark(c);
        if (c == '\\') {
            ++i;
        } else if (mark != nullptr || c == '[') {
            i = mark != nullptr ? reader.nested(i, *mark) : reader.settings(i);
            if (i == std::string_view::npos) {
                return;
            }
            reader.item = i + 1;
        } else if (c == ',') {
            reader.plain(i);
            reader.item = i + 1;
            reader.head = nullptr;
        }
    }
    reader.plain(std::min(i, text.size()));
}

std::string without_blanks(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const bool escaped = !out.empty() && out.back() == '\\';
        if (escaped || std::isspace(static_cast<unsigned char>(c)) == 0) {
            out += c;
        }
    }
    return out;
}

// --- Labels ------------------------------------------------------------------------

struct LabelWord {
    const char* prefix; // of a word of `plot_param`
    int type;
};
constexpr LabelWord label_words[] = {
    {"labm", -2},
    {"labs", -1},
    {"labn", 0 },
    {"labc", 1 },
};

void VAR_param_decode() {
    const TextList items = RES_items("plot_param");
    for (const char* item : items) {
        for (const LabelWord& row : label_words) {
            if (strnicmp(item, row.prefix, 4) == 0) {
                PLT_set_label_type(row.type);
            }
        }
    }
}

bool in_table(int index) {
    return index >= 0 && index < state.num;
}

} // namespace

int VAR_setup(const char* file, const char* text) {
    VAR_param_decode();
    state = {};
    std::string rest = without_blanks(text != nullptr ? text : "");
    std::string name = file != nullptr ? file : "";
    if (strnicmp(rest.c_str(), "fi:", 3) == 0) {
        const std::size_t end = std::min(rest.find(':', 3), rest.size());
        name = rest.substr(3, end - 3);
        rest.erase(0, std::min(end + 1, rest.size()));
    }
    if (!name.empty()) {
        VAR_open_file(name.c_str());
    }
    while (VAR_base_pop() == 0) {
    }
    VAR_base base = {FLAG_get(flag_plot_type), missing, missing, missing, missing, missing};
    base.tstat = VAR_dec_time("", &base.time);
    base.lstat = VAR_dec_level("", &base.ltype, &base.level);
    VAR_base_push(base);
    process(rest, nullptr);
    VAR_base_pop();
    bool found = false;
    for (int i = 0; i < state.num; ++i) {
        MESS_print(var_debug, "Var: %d -- ", i);
        VAR_print(&state.var[static_cast<std::size_t>(i)]);
        found = found || state.var[static_cast<std::size_t>(i)].flag >= 0;
    }
    if (!found) {
        MESS_print(var_debug, "Unable to determine variables\n");
    }
    return found ? 1 : 0;
}

VAR_data* VAR_get_vars() {
    return state.var.data();
}

int VAR_get_num() {
    return state.num;
}

const char* VAR_get_name(int index) {
    return in_table(index) ? state.var[static_cast<std::size_t>(index)].name : "";
}

int VAR_is_LABEL(int index) {
    constexpr int labelled[] = {0, var_role_function, var_role_group, var_role_vector};
    return in_table(index) &&
                   std::find(std::begin(labelled), std::end(labelled),
                             state.var[static_cast<std::size_t>(index)].flag) != std::end(labelled)
               ? 1
               : 0;
}

int VAR_is_type_PLOT(int index) {
    const int type = in_table(index) ? state.var[static_cast<std::size_t>(index)].type : missing;
    return (type >= var_type_map && type <= var_type_panel) || in_grid_types(type) ? 0 : 1;
}

int VAR_dec_type(const char* text) {
    for (const TypeRow& row : types) {
        if ((row.word != nullptr && stricmp(text, row.word) == 0) ||
            (row.other != nullptr && stricmp(text, row.other) == 0)) {
            return row.code;
        }
    }
    return -1;
}

const char* VAR_print_type(int code) {
    for (const TypeRow& row : types) {
        if (row.code == code) {
            return row.label;
        }
    }
    return "----";
}

void VAR_print(const VAR_data* var) {
    MESS_print(var_debug, "%3d %-20s %-6s %d %d %d:%d [%s] %s\n", var->flag, var->name,
               VAR_print_type(var->type), var->var[0], var->time, var->ltype, var->level,
               var->units, var->format);
}

char* VAR_str(char* buffer, int number, const char* units) {
    number %= 1000;
    const VAR_desc* row = VAR_find_number(number);
    char unknown[16] = "";
    std::snprintf(unknown, sizeof unknown, "v%d", number);
    const char* name = row == nullptr ? unknown : PLT_get_label_type() < 0 ? row->abbr : row->name;
    const bool with_units = units != nullptr && *units != '\0';
    std::snprintf(buffer, var_label_size, with_units ? "%s (%s)" : "%s", name, units);
    return buffer;
}

int VAR_make_var_form_datatype(int index, char* text) {
    text[0] = '\0';
    if (!in_table(index)) {
        return -1;
    }
    const VAR_data& var = state.var[static_cast<std::size_t>(index)];
    char level[var_label_size] = "";
    char name[var_label_size] = "";
    VAR_make_datalevel(var.time, var.ltype, var.level, level);
    if (is_set(var.var[0])) {
        VAR_str(name, var.var[0], var.units);
    } else {
        // A variable that has no number goes by the name that the user gave.
        std::snprintf(name, sizeof name, var.units[0] != '\0' ? "%s (%s)" : "%s", var.name,
                      var.units);
    }
    const bool with_format = PLT_get_label_type() >= 1 && var.format[0] != '\0';
    const std::string label = std::string(level) + (level[0] != '\0' ? " " : "") + name +
                              (with_format ? " - " : "") + (with_format ? var.format : "");
    copy_text(text, plt_label_size, label.c_str());
    return 0;
}

void keep_var_tool(StateKeeper& keeper) {
    keeper.keep(state);
}
