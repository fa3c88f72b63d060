// res_start.cpp: the start of the settings: defaults files, a loop window, the
// environment and the command line are merged into the database, each over the
// one before it. It owns the program's definition table, which RES_init fills.
#include "data_tree.h"
#include "date.h"
#include "def_read.h"
#include "files.h"
#include "res_list.h"
#include "res_table.h"
#include "res_window.h"
#include "text_list.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr int all_positions = 10; // the row that takes every positional argument
constexpr unsigned trace_level = 0x80000000;

struct State {
    std::array<RES_defobj, std::size(res_rows) + 1> res_table{};
    std::vector<std::string> unknown; // options that no row fits
    std::vector<std::string> keys;    // settings of defaults files, the same
    std::vector<std::string> typed;   // rows whose option was given
    bool named_files = false;         // the user named the defaults files
};
State state;

// --- Defaults files and environment -----------------------------------------

void store_setting(const char* key, const char* value, const RES_defobj* def_table) {
    bool fits = false;
    for (int i = 0; def_table[i].def != nullptr; ++i) {
        const RES_defobj& row = def_table[i];
        if (*row.def != '\0' && DEF_cmp(row.def, key) != 0) {
            RES_new(i, row.def, value, row.cvt);
            MESS_print(trace_level, "RESRC: %s=%s\n", row.def, value);
            fits = true;
        }
    }
    std::array<char, res_name_size> name{};
    if (!fits && DEF_valid(key) != 0 && DEF_parse_name(key, name.data()) != 0) {
        RES_new(missing, name.data(), value, CV_string);
        state.keys.emplace_back(name.data());
    }
}

// Is it the directory in which the program runs, which is not the user's own?
bool is_foreign_place(const char* item) {
    if (item != nullptr && *item != '\0' && std::strcmp(item, ".") != 0 &&
        std::strcmp(item, "./") != 0) {
        return false;
    }
    struct stat here {};
    struct stat home {};
    const char* user = std::getenv("HOME");
    return user == nullptr || stat(".", &here) != 0 || stat(user, &home) != 0 ||
           here.st_dev != home.st_dev || here.st_ino != home.st_ino;
}

// A missing file yields no setting. Of a file that a user only came by in a
// directory no value is taken that could name a command.
void read_defaults(const char* item, bool given, const RES_defobj* def_table) {
    constexpr int most = 10000;
    const bool foreign = !given && is_foreign_place(item);
    std::array<char, def_line_size> key{};
    std::array<char, def_value_size> value{};
    if (DEF_open(item) != 0 && given && FILE_is_dir(item) == 0 && stricmp(item, "none") != 0) {
        MESS_print(mess_warn, "RES_decode: Unable to open defaults file: %s\n", item);
        FILE_tell_nearest("RES_decode", nullptr, item);
    }
    for (int i = 0; DEF_get(key.data(), value.data()) == 1; ++i) {
        if (i == most) {
            MESS_print(mess_warn, "RES_decode: More than %d settings: %s\n", most, DEF_file());
            break;
        }
        if (foreign && std::strchr(value.data(), '|') != nullptr) {
            MESS_print(mess_warn,
                       "RES_decode: Command refused: %s %s in %s of the current directory\n",
                       key.data(), value.data(), DEF_file());
            continue;
        }
        store_setting(key.data(), value.data(), def_table);
    }
    DEF_close();
}

std::vector<std::string> search_list() {
    const char* list = RES_get("default");
    if (list == nullptr) {
        return data_tree_search(RES_get_prog());
    }
    const TextList items(list, ':');
    return {items.begin(), items.end()};
}

// `given`: the list was given as an option, not found in the environment or built in.
void read_search_list(bool given, const RES_defobj* def_table) {
    const std::vector<std::string> places = search_list();
    DEF_clr_tag();
    if (places.empty()) {
        read_defaults(nullptr, given, def_table);
    }
    for (const std::string& place : places) {
        const char* item = place.c_str();
        if (*item == '+') {
            if (DEF_tag(item + 1) != 0) {
                MESS_print(mess_warn, "RES_decode: Too many tags: %s\n", item + 1);
            }
        } else if (*item == '#') {
            RES_link_window(item + 1, def_table);
        } else {
            read_defaults(item, given, def_table);
        }
    }
}

// Defaults files that the user names take the place of those of the data tree, whose
// maps and colours are wanted all the same.
bool find_data_tree() {
    for (const std::string& place : data_tree_search(RES_get_prog())) {
        const std::string tree = place.empty() ? "." : place;
        if (FILE_exist((tree + "/zyr.cfg").c_str()) != 0) {
            RES_put("file_path", tree.c_str());
            return true;
        }
    }
    return false;
}

// The files that lie beside an installed zyr.cfg are found wherever that is.
// Without them a page has neither colours nor letters.
void settle_file_path() {
    if (const char* path = RES_get("file_path"); path != nullptr) {
        if (!RES_is_typed("file_path") || *path == '\0' || FILE_is_dir(path) == 1) {
            return;
        }
        MESS_print(mess_warn, "file_path: No directory: %s, the data tree's is taken\n", path);
    }
    if (*DEF_cfg_dir() != '\0') {
        RES_put("file_path", DEF_cfg_dir());
        return;
    }
    if (state.named_files && find_data_tree()) {
        return;
    }
    std::string looked_in;
    for (const std::string& place : search_list()) {
        looked_in += (looked_in.empty() ? "" : ":") + place;
    }
    MESS_print(mess_warn, "RES_init: No data tree with maps, colours and fonts in: %s\n",
               looked_in.c_str());
    MESS_print(mess_warn, "RES_init: Name the directory of zyr.cfg in zyrdefault, or with -fp\n");
}

void read_environment(const RES_defobj* def_table) {
    std::array<char, def_value_size> value{};
    for (int i = 0; def_table[i].def != nullptr; ++i) {
        const RES_defobj& row = def_table[i];
        if (*row.def != '\0' && DEF_env(row.def, row.env, value.data()) != 0) {
            RES_new(i, row.def, value.data(), row.cvt);
        }
    }
}

// --- Command line -----------------------------------------------------------

bool is_short_option(const char* arg) {
    return arg[0] == '-' && is_letter(arg[1]);
}

bool is_option(const char* arg) {
    return is_short_option(arg) || (arg[0] == '-' && arg[1] == '-' && is_letter(arg[2]));
}

struct Option {
    std::array<char, res_name_size> name{};
    const char* value = nullptr;
    bool from_next = false; // the value is the next argument
};

// Splits argument `i` into name and value. A value is what follows "=", else
// the next argument unless that is an option; so "-90,30" is a value.
Option read_option(int i, int argc, char** argv) {
    Option option;
    const char* text = argv[i] + (argv[i][1] == '-' ? 2 : 1);
    const char* equals = std::strchr(text, '=');
    const std::size_t length =
        equals != nullptr ? static_cast<std::size_t>(equals - text) : std::strlen(text);
    const std::size_t kept = std::min(length, option.name.size() - 1);
    std::memcpy(option.name.data(), text, kept);
    if (equals != nullptr) {
        option.value = equals + 1;
    } else if (i + 1 < argc && !is_short_option(argv[i + 1])) {
        option.value = argv[i + 1];
        option.from_next = true;
    }
    return option;
}

// `name` and `default` decide which defaults apply: they are taken first.
// Returns whether `default` was given.
bool scan_pseudo(int argc, char** argv) {
    bool given = false;
    for (int i = 1; i < argc; ++i) {
        if (!is_short_option(argv[i])) {
            continue;
        }
        const Option option = read_option(i, argc, argv);
        const char* name = option.name.data();
        if (option.value != nullptr && begins_exactly("name", name)) {
            RES_new(missing, "name", option.value, CV_string);
            DEF_name(option.value);
        } else if (option.value != nullptr &&
                   (begins_exactly(name, "default") || begins_exactly(name, "df"))) {
            RES_new(missing, "default", option.value, CV_string);
            given = true;
        }
        i += option.from_next ? 1 : 0;
    }
    return given;
}

bool is_pseudo(const char* name) {
    return begins("name", name) || begins(name, "default") || begins(name, "df");
}

enum Pass { by_option, by_name, by_beginning };

bool fits(Pass pass, const char* name, const RES_defobj& row) {
    switch (pass) {
    case by_option:
        return stricmp(name, row.cmd.text) == 0;
    case by_name:
        return stricmp(name, row.def) == 0;
    case by_beginning:
        return begins(row.def, name);
    }
    return false;
}

// Row of an option: by abbreviation, by full name, by the beginning of a name,
// in this order. Returns `missing` if nothing fits.
int find_option(const char* name, const RES_defobj* def_table) {
    for (const Pass pass : {by_option, by_name, by_beginning}) {
        for (int i = 0; def_table[i].def != nullptr; ++i) {
            const RES_defobj& row = def_table[i];
            if (row.cmd.text != nullptr && *row.def != '\0' && fits(pass, name, row)) {
                return i;
            }
        }
    }
    return missing;
}

bool takes_no_argument(DEF_convert cvt) {
    return cvt == CV_bool || cvt == CV_batch || cvt == CV_help;
}

// What is asked of the program and is no setting, and whether a value follows.
struct Request {
    const char* word;
    bool has_value;
};
constexpr std::array requests = {
    Request{"--list",       true },
    Request{"--files-from", true },
    Request{"--report",     true },
    Request{"--resume",     false},
    Request{"--keep-going", false},
    Request{"--stop",       false},
};

const Request* find_request(const Option& option, const char* typed) {
    const std::string_view word(typed, std::strcspn(typed, "="));
    const auto* row = std::find_if(requests.begin(), requests.end(),
                                   [&](const Request& request) { return word == request.word; });
    return row != requests.end() && (row->has_value || option.from_next || option.value == nullptr)
               ? row
               : nullptr;
}

// Returns how many arguments after the option it used up.
int take_option(Option option, const char* typed, const RES_defobj* def_table) {
    const char* name = option.name.data();
    if (const Request* request = find_request(option, typed)) {
        RES_new(missing, request->word, request->has_value ? option.value : nullptr, CV_string);
        return request->has_value && option.from_next ? 1 : 0;
    }
    if (is_pseudo(name)) {
        return option.from_next ? 1 : 0;
    }
    const int index = find_option(name, def_table);
    if (!is_set(index)) {
        state.unknown.emplace_back(name);
        RES_new(missing, name, option.value, CV_string);
        return option.from_next ? 1 : 0;
    }
    const RES_defobj& row = def_table[index];
    if (option.from_next && takes_no_argument(row.cvt)) {
        option.value = nullptr;
        option.from_next = false;
    }
    state.typed.emplace_back(row.def);
    RES_new(index, row.def, option.value, row.cvt);
    RES_show_window(row.def, option.value);
    return option.from_next ? 1 : 0;
}

void take_position(int count, const char* arg, const RES_defobj* def_table) {
    int index = missing;
    for (int i = 0; def_table[i].def != nullptr; ++i) {
        const RES_cmd& cmd = def_table[i].cmd;
        if (cmd.text != nullptr) {
            continue;
        }
        if (cmd.position == count) {
            index = i;
            break;
        }
        if (cmd.position == all_positions) {
            index = i;
        }
    }
    if (!is_set(index)) {
        return;
    }
    const RES_defobj& row = def_table[index];
    if (row.cmd.position == all_positions && count > 1) {
        RES_append(index, row.def, arg, row.cvt);
    } else {
        RES_new(index, row.def, arg, row.cvt);
    }
}

void read_arguments(int argc, char** argv, const RES_defobj* def_table) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0) {
            continue;
        }
        if (is_option(argv[i])) {
            i += take_option(read_option(i, argc, argv), argv[i], def_table);
        } else {
            take_position(++count, argv[i], def_table);
        }
    }
}

} // namespace

int RES_init(int argc, char** argv, const res_type* res_key, const res_type* res_pos) {
    FLAG_reset(missing);
    int rows = 0;
    for (const res_type* list : {res_key, res_pos}) {
        for (; *list != RES_null; ++list) {
            if (rows == static_cast<int>(std::size(res_rows))) {
                MESS_print(mess_warn, "RES_init: Too many resources: %d\n", *list);
                break;
            }
            RES_enter(&state.res_table[rows++], *list);
        }
    }
    state.res_table[rows].def = nullptr;
    RES_decode(argc > 0 ? argv[0] : nullptr, "Zyr", argc, argv, state.res_table.data());
    if (FLAG_help() == 0) {
        settle_file_path();
    }
    if (const char* zone = std::getenv("zyrtz")) {
        if (DATE_is_TZ(zone) != 0) { // or times in UTC would bear another zone's name
            DATE_set_TZ(zone);
        }
    }
    return 1;
}

const std::vector<std::string>& RES_unknown_keys() {
    return state.keys;
}

bool RES_is_typed(const char* name) {
    return std::find(state.typed.begin(), state.typed.end(), name) != state.typed.end();
}

const std::vector<std::string>& RES_unknown_options() {
    return state.unknown;
}

int RES_decode(const char* /*progname*/, const char* /*res_class*/, int argc, char** argv,
               const RES_defobj* def_table) {
    RES_setCL(argc, argv);
    DEF_prog();
    if (const char* list = std::getenv("zyrdefault")) {
        RES_new(missing, "default", list, CV_string);
    }
    const bool given = scan_pseudo(argc, argv);
    state.named_files = given;
    read_search_list(given, def_table);
    read_environment(def_table);
    read_arguments(argc, argv, def_table);
    RES_leave_window();
    for (const res_obj* entry = RES_first(); entry != nullptr; entry = entry->next) {
        if (is_set(entry->index)) {
            RES_conv_data(entry->data, def_table[entry->index].out, entry->cvt);
        }
    }
    return 0;
}
