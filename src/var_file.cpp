// var_file.cpp: the files behind variable texts (var_tool.h): the variable file
// with its menu, and the lookup file variable.lup. State: the entries of the
// open variable file, the menu made from them, the rows of variable.lup and
// the model name. Nothing has to be called first.
#include "var_tool.h"

#include "files.h"
#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr unsigned var_debug = 0x40000000;
constexpr unsigned file_warning = 0x40;
constexpr std::size_t most_bytes = std::size_t{64} << 20; // of a file
constexpr std::size_t most_rows = 750;                    // of variable.lup
constexpr int most_menu = 49;
constexpr std::size_t menu_text_size = 31;

// One entry of the variable file.
struct Entry {
    std::string abbr;
    std::string text; // of the menu
    std::string condition;
    std::string definition; // without blanks
};

struct State {
    std::vector<Entry> entries;
    std::array<MENU_item, most_menu + 2> menu = {};
    std::vector<VAR_desc> rows; // of variable.lup
    bool rows_read = false;
    char model_str[20] = {};
};
State state;

// Opens a file along `file_path`; a command is not taken for a name.
FILE_ptr open_text(const char* name) {
    char path[file_name_size] = "";
    FILE_add_path(RES_get("file_path"), name, path);
    if (*name == '\0' || path[0] == '|' || FILE_is_dir(path) == 1) {
        return nullptr;
    }
    return FILE_ptr(FILE_open_text(path));
}

// Lines of any length, for as many bytes as a text file may have.
class Lines {
public:
    explicit Lines(std::FILE* stream, const char* name) : stream_(stream), name_(name) {}

    bool next(std::string* line) {
        line->clear();
        int c = std::fgetc(stream_);
        if (c == EOF) {
            return false;
        }
        for (; c != EOF && c != '\n'; c = std::fgetc(stream_)) {
            if (++used_ > most_bytes) {
                MESS_print(mess_warn, "%s: File too large, the rest is left out\n", name_);
                return false;
            }
            *line += static_cast<char>(c);
        }
        ++used_;
        return true;
    }

private:
    std::FILE* stream_;
    const char* name_;
    std::size_t used_ = 0;
};

std::string take_word(std::string_view* text) {
    std::size_t begin = 0;
    while (begin < text->size() && is_blank((*text)[begin])) {
        ++begin;
    }
    std::size_t end = begin;
    while (end < text->size() && !is_blank((*text)[end])) {
        ++end;
    }
    std::string word(text->substr(begin, end - begin));
    text->remove_prefix(end);
    return word;
}

// Blanks go out of a definition, but for one that a "\" makes plain.
void append_definition(std::string_view text, std::string* definition) {
    for (const char c : text) {
        const bool escaped = !definition->empty() && definition->back() == '\\';
        if (!is_blank(c) || (escaped && c == ' ')) {
            *definition += c;
        }
    }
}

void read_entries(Lines lines, std::vector<Entry>* entries) {
    std::string line;
    while (lines.next(&line)) {
        std::string_view rest = line;
        Entry entry;
        entry.abbr = take_word(&rest);
        entry.text = take_word(&rest).substr(0, menu_text_size - 1);
        entry.condition = take_word(&rest);
        if (entry.abbr.empty() || entry.abbr[0] == '#') {
            continue;
        }
        std::replace(entry.text.begin(), entry.text.end(), '_', ' ');
        append_definition(rest, &entry.definition);
        while (!entry.definition.empty() && entry.definition.back() == '\\') {
            entry.definition.pop_back();
            if (!lines.next(&line)) {
                break;
            }
            append_definition(line, &entry.definition);
        }
        entries->push_back(std::move(entry));
    }
}

// --- Conditions -------------------------------------------------------------------

// Length of the set at the start of a pattern, brackets included; 0 if it is
// no set.
std::size_t set_length(std::string_view pattern) {
    const std::size_t end =
        pattern.empty() || pattern[0] != '[' ? std::string_view::npos : pattern.find(']', 2);
    return end == std::string_view::npos ? 0 : end + 1;
}

bool in_set(std::string_view set, char c) {
    for (std::size_t i = 0; i < set.size(); ++i) {
        if (i + 2 < set.size() && set[i + 1] == '-') {
            if (set[i] <= c && c <= set[i + 2]) {
                return true;
            }
            i += 2;
        } else if (set[i] == c) {
            return true;
        }
    }
    return false;
}

// Length of the pattern item that fits a character; 0 if it does not fit.
std::size_t fits_one(std::string_view pattern, char c) {
    const std::size_t set = set_length(pattern);
    if (set > 0) {
        return in_set(pattern.substr(1, set - 2), c) ? set : 0;
    }
    return !pattern.empty() && (pattern[0] == '?' || pattern[0] == '.' || pattern[0] == c) ? 1 : 0;
}

// Whether a pattern fits the whole text. After a "*" the last start of its run
// is enough to come back to.
bool fits(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;
    std::size_t run = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = ++p;
            run = t;
        } else if (const std::size_t length = fits_one(pattern.substr(p), text[t])) {
            p += length;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star;
            t = ++run;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') {
        ++p;
    }
    return p == pattern.size();
}

// The next piece of a list, which is cut off its front; false at its end.
bool next_piece(std::string_view* list, char separator, std::string_view* piece) {
    if (list->data() == nullptr) {
        return false;
    }
    const std::size_t end = std::min(list->find(separator), list->size());
    *piece = list->substr(0, end);
    *list = end < list->size() ? list->substr(end + 1) : std::string_view();
    return true;
}

bool fits_choice(std::string_view choices, std::string_view text) {
    std::string_view choice;
    while (next_piece(&choices, '|', &choice)) {
        const bool negated = !choice.empty() && choice[0] == '~';
        if (fits(negated ? choice.substr(1) : choice, text) != negated) {
            return true;
        }
    }
    return false;
}

std::string number_text(int value) {
    return is_set(value) ? std::to_string(value) : "";
}

bool holds_test(std::string_view test) {
    const std::string_view key = test.substr(0, 3);
    const std::string_view pattern = test.substr(std::min<std::size_t>(3, test.size()));
    if (key == "mo=") {
        return fits_choice(pattern, state.model_str);
    }
    if (key == "ft=") {
        return fits_choice(pattern, number_text(FLAG_get(flag_def_time)));
    }
    return key == "le=" && fits_choice(pattern, number_text(FLAG_get(flag_def_level)));
}

bool holds_all(std::string_view tests) {
    std::string_view test;
    while (next_piece(&tests, '&', &test)) {
        if (!holds_test(test)) {
            return false;
        }
    }
    return true;
}

// --- The lookup file ----------------------------------------------------------------

// "n,n,n,n,n abbr long name"; what begins with no number is a comment.
bool read_row(std::string_view line, VAR_desc* row) {
    const std::string numbers = take_word(&line);
    const char* at = numbers.c_str();
    for (int i = 0; i < 5 && take_int(&at, &row->ind[i]) && take_char(&at, ','); ++i) {
    }
    const std::string abbr = take_word(&line);
    if (!is_set(row->ind[0]) || abbr.empty()) {
        return false;
    }
    copy_text(row->abbr, sizeof row->abbr, abbr.c_str());
    const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
    const std::string name(line.substr(begin));
    copy_text(row->name, sizeof row->name, name.c_str());
    wstrim_string(row->name);
    return true;
}

const std::vector<VAR_desc>& VAR_read_varfile() {
    constexpr const char* name = "variable.lup";
    if (state.rows_read) {
        return state.rows;
    }
    state.rows_read = true;
    const FILE_ptr file = open_text(name);
    if (!file) {
        MESS_print(file_warning, "VAR_read_varfile: Unable to open file: %s\n", name);
        return state.rows;
    }
    Lines lines(file.get(), name);
    std::string line;
    while (state.rows.size() < most_rows && lines.next(&line)) {
        VAR_desc row;
        if (read_row(line, &row)) {
            state.rows.push_back(row);
        }
    }
    return state.rows;
}

} // namespace

int VAR_open_file(const char* name) {
    char own[file_name_size] = "";
    if (name == nullptr || *name == '\0') {
        RES_get_progname(own);
        const std::string with_end = std::string(own) + ".var";
        copy_text(own, sizeof own, with_end.c_str());
        name = own;
    }
    state.menu = {};
    state.entries.clear();
    const FILE_ptr file = open_text(name);
    if (!file) {
        MESS_print(file_warning, "VAR_open_file: Unable to open var file: %s\n", name);
        return 0;
    }
    read_entries(Lines(file.get(), name), &state.entries);
    return 1;
}

int VAR_lookup(const char* name, const char** definition) {
    *definition = nullptr;
    for (const Entry& entry : state.entries) {
        if (entry.abbr == name) {
            *definition = entry.definition.c_str();
            return 1;
        }
    }
    MESS_print(var_debug, "VAR_lookup: not found\n");
    return 0;
}

void VAR_add_names(KnownWords* words) {
    for (const Entry& entry : state.entries) {
        words->push_back({entry.abbr.c_str()});
    }
}

int VAR_read_menu() {
    state.menu = {};
    state.menu[0] = {"Return to previous menu", "back", 0, {1}};
    int count = 0;
    for (const Entry& entry : state.entries) {
        if (count < most_menu && VAR_menu_display(entry.condition.c_str()) != 0) {
            state.menu[static_cast<std::size_t>(++count)] = {
                entry.text.c_str(), entry.abbr.c_str(), 1, {1}};
        }
    }
    return count;
}

int VAR_menu(const char* title, const char* prompt, char* text, int flag) {
    const int count = VAR_read_menu();
    if (FLAG_batch() > 0) {
        copy_text(text, 81, count > 0 ? state.menu[1].abbr : "def");
        return 1;
    }
    int choice = MENU_process(title, state.menu.data(), 0, prompt, text, flag);
    while (!is_set(choice) && stricmp(text, "list") == 0) {
        VAR_print_file();
        choice = MENU_process(title, state.menu.data(), 0, prompt, text, flag);
    }
    return choice;
}

int VAR_print_file() {
    MESS_print(mess_print, " Abbr    Description\n");
    for (const Entry& entry : state.entries) {
        MESS_print(mess_print, "%-8s %-50s\n", entry.abbr.c_str(), entry.text.c_str());
    }
    return 0;
}

int VAR_menu_display(const char* condition) {
    if (std::strcmp(condition, "1") == 0) {
        return 1;
    }
    std::string_view list = condition;
    std::string_view tests;
    while (next_piece(&list, ',', &tests)) {
        if (holds_all(tests)) {
            return 1;
        }
    }
    return 0;
}

int VAR_set_model_str(const char* text) {
    copy_text(state.model_str, sizeof state.model_str, text != nullptr ? text : "");
    return 0;
}

const char* VAR_get_model_str() {
    return state.model_str;
}

const VAR_desc* VAR_find_number(int number) {
    for (const VAR_desc& row : VAR_read_varfile()) {
        if (row.ind[0] == number) {
            return &row;
        }
    }
    return nullptr;
}

const VAR_desc* VAR_find_abbr(const char* abbr) {
    for (const VAR_desc& row : VAR_read_varfile()) {
        if (stricmp(row.abbr, abbr) == 0) {
            return &row;
        }
    }
    return nullptr;
}

void keep_var_file(StateKeeper& keeper) {
    keeper.keep(state);
}
