// rad_input.cpp: turns the resources `input` and `in_file` into the input type
// (flag 14), the source (flags 16 and 17), a naming convention and a model.
// It keeps nothing; RES_init must have run.
#include "rad_input.h"

#include "files.h"
#include "near_word.h"
#include "text_list.h"
#include "text_scan.h"
#include "var_tool.h"
#include "zyrresrc.h"

#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr int source_raw = 0;
constexpr int source_converted = 1;
constexpr int format_native = 3;
constexpr int format_netcdf = 12;

// How an item is compared.
enum class How {
    starts, // begins with the word, in any case
    equals, // in any case
    holds   // as it is written
};

struct Rule {
    How how;
    const char* word;
    int type;          // flag 14; missing: left alone
    int source;        // flag 16; missing: left alone
    const char* entry; // naming convention; null: left alone, empty: the item itself
    const char* model; // null: left alone
};

constexpr const char* itself = "";

// The first rule that fits an item is taken.
constexpr Rule input_rules[] = {
    {How::starts, "raw",     missing,        source_raw,       "rad_dat", nullptr},
    {How::starts, "cvt",     missing,        source_converted, nullptr,   nullptr},
    {How::equals, "conv",    missing,        source_converted, nullptr,   nullptr},
    {How::equals, "site",    input_rrwds,    missing,          "rrwds",   nullptr},
    {How::equals, "rrwds",   input_rrwds,    missing,          "rrwds",   nullptr},
    {How::equals, "nids",    input_nids,     missing,          "nids",    nullptr},
    {How::equals, "lev2z",   input_lev2z,    missing,          "lev2",    nullptr},
    {How::equals, "lev2",    input_lev2,     missing,          "lev2",    nullptr},
    {How::equals, "nowrad",  input_nowrad,   missing,          "nowrad",  nullptr},
    {How::equals, "kavrad",  input_kavrad,   missing,          "kavrad",  nullptr},
    {How::equals, "rcmsite", input_rcm_site, missing,          "rcm_dat", nullptr},
    {How::equals, "rcm",     input_summary,  missing,          "rcm_cvt", "rcm"  },
    {How::holds,  "rad",     missing,        source_converted, nullptr,   nullptr},
    {How::equals, "mdr",     input_summary,  missing,          "rad_raw", nullptr},
};

constexpr Rule in_file_rules[] = {
    {How::starts, "raw",     missing,        source_raw,       "rad_raw", nullptr},
    {How::starts, "cvt",     missing,        source_converted, "rad_cvt", nullptr},
    {How::equals, "conv",    missing,        source_converted, "rad_cvt", nullptr},
    {How::equals, "site",    input_rrwds,    missing,          "rrwds",   nullptr},
    {How::holds,  "rrwds",   input_rrwds,    missing,          itself,    nullptr},
    {How::holds,  "nids",    input_nids,     missing,          itself,    nullptr},
    {How::holds,  "lev2z",   input_lev2z,    missing,          itself,    nullptr},
    {How::holds,  "lev2",    input_lev2,     missing,          itself,    nullptr},
    {How::holds,  "nowrad",  input_nowrad,   missing,          itself,    nullptr},
    {How::equals, "kavrad",  input_kavrad,   missing,          itself,    nullptr},
    {How::holds,  "rad",     missing,        source_converted, itself,    nullptr},
    {How::equals, "mdr",     input_summary,  missing,          "rad_raw", "mdr"  },
    {How::equals, "rcmsite", input_rcm_site, missing,          "rcm_dat", nullptr},
    {How::equals, "rcm",     input_summary,  missing,          "rcm_cvt", "rcm"  },
};

constexpr Rule any_in_file = {How::holds, "", missing, missing, itself, nullptr};

bool fits(const Rule& rule, const char* item) {
    switch (rule.how) {
    case How::starts:
        return begins(item, rule.word);
    case How::equals:
        return stricmp(item, rule.word) == 0;
    case How::holds:
        return std::strstr(item, rule.word) != nullptr;
    }
    return false;
}

template <std::size_t N> const Rule* find_rule(const Rule (&rules)[N], const char* item) {
    for (const Rule& rule : rules) {
        if (fits(rule, item)) {
            return &rule;
        }
    }
    return nullptr;
}

void set_type(const Rule& rule) {
    if (is_set(rule.type)) {
        FLAG_set(flag_input, rule.type);
    }
    if (is_set(rule.source)) {
        FLAG_set(flag_raw_conv, rule.source);
    }
}

// Returns whether the files have a convention.
bool set_names(const Rule& rule, const char* item) {
    bool found = true;
    if (rule.entry != nullptr) {
        found = FILE_set_name(*rule.entry == '\0' ? item : rule.entry) != 0;
    }
    if (rule.model != nullptr) {
        VAR_set_model_str(rule.model);
    }
    return found;
}

// Returns whether the item names a format.
bool set_format(const char* item) {
    const bool native = std::strstr(item, "zyr") != nullptr;
    const bool netcdf = std::strstr(item, "nc") != nullptr || std::strstr(item, "cdf") != nullptr;
    if (native) {
        FLAG_set(flag_format, format_native);
    }
    if (netcdf) {
        FLAG_set(flag_format, format_netcdf);
    }
    return native || netcdf;
}

// What is after "_" is the part of a convention's name that the user fills in.
std::string nearest_input(std::string_view item) {
    KnownWords words;
    for (const Rule& rule : input_rules) {
        words.push_back({rule.word});
    }
    struct PlainName {
        const char* name;
        const char* word;
    };
    constexpr PlainName names[] = {
        {"level2", "lev2"  },
        {"level3", "nids"  },
        {"mosaic", "nowrad"}
    };
    for (const PlainName& row : names) {
        words.push_back({row.name});
    }
    std::string nearest(nearest_word(words, item.substr(0, item.find('_'))));
    for (const PlainName& row : names) {
        if (nearest == row.name) {
            return row.word;
        }
    }
    return nearest;
}

void tell_unknown(const char* item) {
    MESS_print(mess_warn, "input: Unknown word: %s, the nearest is %s\n", item,
               nearest_input(item).c_str());
}

// Returns whether an item of `input` was known.
bool read_input() {
    bool given = false;
    const TextList items = RES_items("input");
    for (const char* item : items) {
        if (const Rule* rule = find_rule(input_rules, item)) {
            set_type(*rule);
            set_names(*rule, item);
            given = true;
        } else if (*item != '\0') {
            tell_unknown(item);
        }
    }
    return given;
}

bool is_lev2(int type) {
    return type == input_lev2 || type == input_lev2z;
}

// Reports an item of `in_file` that does not fit what is read: files of another
// type, or a word that nothing knows.
void check_item(const char* item, const Rule& rule, bool given, bool found) {
    const int type = FLAG_get(flag_input);
    if (is_set(rule.type) && rule.type != type && !(is_lev2(rule.type) && is_lev2(type))) {
        MESS_print(mess_warn, "in_file: %s names files of another type than the input\n", item);
    } else if (&rule == &any_in_file && !given && *item != '@' && !found) {
        MESS_print(mess_warn,
                   "in_file: Unknown word: %s; without -inp radar summaries are read, the type of "
                   "a file is found by -inp auto\n",
                   item);
    } else if (!found && std::strpbrk(item, "@./%*") == nullptr) { // a name alone is a file's
        MESS_print(mess_warn, "in_file: Unknown word: %s, the nearest is %s\n", item,
                   nearest_input(item).c_str());
    }
}

} // namespace

int RAD_cvt_in_file() {
    FILE_set_name("rad_cvt");
    FLAG_set(flag_input, input_summary);
    VAR_set_model_str("mdr");
    const bool given = read_input();
    const TextList items = RES_items("in_file");
    for (const char* item : items) {
        const Rule* rule = find_rule(in_file_rules, item);
        if (rule == nullptr) {
            rule = &any_in_file;
        }
        if (!given) {
            set_type(*rule);
        }
        const bool found = set_names(*rule, item);
        const bool format = set_format(item);
        check_item(item, *rule, given, found || format);
    }
    return 0;
}
