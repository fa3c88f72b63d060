// rad_values.cpp: looks for values of settings that cannot be read, before
// anything is drawn: numbers, times, sizes, codes. It keeps nothing; RES_init
// comes first.
#include "rad_values.h"

#include "date.h"
#include "files.h"
#include "geometry_text.h"
#include "img_kind.h"
#include "near_word.h"
#include "plt_tool.h"
#include "region.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"
#include "watch.h"
#include "zyrcty.h"
#include "zyrgks.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

namespace {

// Each item of a list that is split at commas.
template <typename Take> void each_item(const char* resource, Take take) {
    const TextList items = RES_items(resource);
    for (const char* item : items) {
        if (*item != '\0') {
            take(item);
        }
    }
}

const char* value_of(const char* resource) {
    const char* value = RES_get(resource);
    return value != nullptr ? value : "";
}

// "n" in the form is a whole number with or without a sign, "9" one digit; any
// other character is itself.
bool has_form(const char* text, const char* form) {
    for (; *form != '\0'; ++form) {
        if (*form == 'n') {
            text += *text == '-' || *text == '+' ? 1 : 0;
            const std::size_t digits = std::strspn(text, "0123456789");
            if (digits == 0) {
                return false;
            }
            text += digits;
        } else if (*form == '9' ? !is_digit(*text) : *text != *form) {
            return false;
        } else {
            ++text;
        }
    }
    return *text == '\0';
}

bool has_form(const char* text, std::initializer_list<const char*> forms) {
    return std::any_of(forms.begin(), forms.end(),
                       [text](const char* form) { return has_form(text, form); });
}

// --- Numbers ------------------------------------------------------------------

// A word of `plot_param` with numbers, split at colons.
struct NumberRow {
    const char* word;
    int least; // numbers after it
    int most;
    const char* example;
};

// A word that another one begins with is after that one.
constexpr NumberRow number_rows[] = {
    {"over",     1, 2, "over=1:2"     },
    {"lab",      1, 4, "lab=22"       },
    {"lalo",     1, 4, "lalo=5:10"    },
    {"plt_skip", 1, 2, "plt_skip=2:2" },
    {"plt_off",  1, 2, "plt_off=0.5:1"},
    {"plt_grid", 0, 1, "plt_grid=1"   },
    {"loc_pr",   0, 1, "loc_pr=1"     },
    {"bar",      0, 2, "bar=0:70"     },
    {"shadow",   0, 1, "shadow=4"     },
    {"max_bad",  0, 1, "max_bad=5"    },
    {"min_size", 0, 1, "min_size=100" },
    {"dist",     0, 4, "dist=50:100"  },
    {"clutter",  0, 1, "clutter=25"   },
    {"range",    1, 1, "range=2"      },
    {"numplt",   1, 1, "numplt=10"    },
    {"conmin",   1, 1, "conmin=20"    },
    {"conmax",   1, 1, "conmax=60"    },
    {"maxl",     1, 1, "maxl=4"       },
    {"skip",     1, 1, "skip=2"       },
    {"run",      1, 1, "run=10"       },
    {"ybar",     0, 1, "ybar=-30"     },
    {"yba",      0, 1, "yba=-30"      },
    {"xy",       2, 2, "xy=1:2"       },
};

// What is after the numbers; `count` how many there were.
const char* after_numbers(const char* text, int most, int* count) {
    float number = 0.0F;
    const char* at = text;
    for (*count = 0; *count < most && take_float(&at, &number);) {
        ++*count;
        text = at;
        if (*count == most || *at != ':') {
            break;
        }
        ++at;
    }
    return text;
}

// What is after a word and one separator; null for another word.
const char* value_after(const char* word, const char* item) {
    if (!begins(item, word)) {
        return nullptr;
    }
    const char* value = item + std::strlen(word);
    return *value == '\0' ? value : value + 1;
}

void check_numbers(const char* item) {
    for (const NumberRow& row : number_rows) {
        const char* value = value_after(row.word, item);
        if (value == nullptr) {
            continue;
        }
        int count = 0;
        const char* rest = after_numbers(value, row.most, &count);
        if (count < row.least || (*rest != '\0' && *rest != '.')) {
            MESS_print(mess_warn,
                       "plot_param: No number: %s, at \"%s\"; what comes before it counts, an "
                       "example is %s\n",
                       item, rest, row.example);
        }
        return;
    }
}

// More lines of labels than there are would leave no room to read one.
void check_overlays(const char* item) {
    const char* value = value_after("over", item);
    if (value == nullptr) {
        return;
    }
    int line = 0;
    int lines = 0;
    const bool given = take_int(&value, &line);
    const bool counted = given && take_char(&value, ':') && take_int(&value, &lines);
    if (given && line >= plt_overlays) {
        MESS_print(mess_warn, "plot_param: No line: %s, %d is taken; the lines are 0 to %d\n", item,
                   plt_overlays - 1, plt_overlays - 1);
    } else if (counted && std::abs(lines) > plt_overlays) {
        MESS_print(mess_warn, "plot_param: Too many lines: %s, there are %d\n", item, plt_overlays);
    }
}

void check_marker(const char* item) {
    const char* value = value_after("mark", item);
    if (value != nullptr && !begins(value, "cld") && !ATTR_is_marker(value)) {
        MESS_print(mess_warn, "plot_param: No marker: %s, none is taken; an example is mark=plus\n",
                   item);
    }
}

void check_pattern(const char* item) {
    const char* value = value_after("fill", item);
    if (value != nullptr && !ATTR_is_fill_pat(value)) {
        MESS_print(mess_warn,
                   "plot_param: No pattern: %s, fills are solid; an example is fill=hat\n", item);
    }
}

void check_panel(const char* item) {
    const char* value = value_after("vp_size", item);
    Gpanel panel;
    if (value != nullptr && (!read_panel(value, &panel) || panel.width <= 0.0F ||
                             panel.height <= 0.0F || !is_on_page(panel))) {
        MESS_print(mess_warn,
                   "plot_param: No part of the page: %s, all of it is taken; an example is "
                   "vp_size=2x2+1+0\n",
                   item);
    }
}

// -in is taken for the type of input, as the help names it.
void check_interval() {
    const char* value = value_of("con_interval");
    if (*value != '\0' && (!is_number(value) || text_float(value) <= 0.0F)) {
        MESS_print(mess_warn,
                   "con_interval: No interval: %s, the product's own is taken; the type of input "
                   "is named by -inp\n",
                   value);
    }
}

void check_base() {
    each_item("con_base", [](const char* item) {
        if (!is_number(item + (*item == '<' || *item == '>' ? 1 : 0))) {
            MESS_print(mess_warn,
                       "con_base: No number: %s, it is left out; a base is VALUE, '>VALUE' or "
                       "'<VALUE'\n",
                       item);
        }
    });
}

void check_scale() {
    const char* value = value_of("plot_scale");
    if (*value != '\0' && !is_number(value)) {
        MESS_print(mess_warn, "plot_scale: No number: %s, %g is taken\n", value,
                   static_cast<double>(std::isdigit(static_cast<unsigned char>(*value)) != 0
                                           ? text_float(value)
                                           : 1.0F));
    }
}

void check_priority() {
    const char* value = value_of("stat_prior");
    if (*value != '\0' && !has_form(value, "n")) {
        MESS_print(mess_warn,
                   "stat_prior: No number: %s, it is left out; a priority is 1 to 6, or +N or -N\n",
                   value);
    }
}

// --- Times --------------------------------------------------------------------

bool in_range(int field, int low, int high) {
    return !is_set(field) || (field >= low && field <= high);
}

bool is_hour(const char* text) {
    const Date date = RES_dec_hour(text);
    return has_form(text, {"999999", "9999", "999", "ndn", "ndn:n", ":n", "-:n", "n", "n:n",
                           "#9999", "#999999", "#99999999", "#9999999999", "#999999999999"}) &&
           in_range(date.month, 1, 12) && in_range(date.day, -99, 31) &&
           in_range(date.hour, -9999, 23) && in_range(date.min, -9999, 59);
}

void check_hour() {
    const char* value = value_of("hour");
    if (*value != '\0' && !is_hour(value)) {
        const Date none = {.sec = 0};
        FILE_set_time(&none); // half a time would name another file
        MESS_print(mess_warn,
                   "hour: No time: %s, it is left out; a time is HOUR, HOUR:MINUTE, MMDDHH or "
                   "#YYYYMMDDHHMM\n",
                   value);
    }
}

// "hours", "hours:minutes" or ":minutes", with a sign.
bool is_span(const char* text) {
    return has_form(text, {"n", "n:n", ":n", "-:n"});
}

bool is_none(const char* text) {
    return std::strpbrk(text, "123456789") == nullptr;
}

void check_span() {
    const TextList items = RES_items("num_hour");
    for (int i = 0; i < items.count(); ++i) {
        const char* item = items[i];
        if (i > 1) {
            MESS_print(mess_warn, "num_hour: Left out: %s, there are but hours and a step\n", item);
        } else if (*item != '\0' && !is_span(item)) {
            MESS_print(mess_warn,
                       "num_hour: No hours: %s, 0 is taken; a time is HOURS or HOURS:MINUTES\n",
                       item);
        } else if (i == 1 && is_none(item)) {
            MESS_print(mess_warn, "num_hour: No step: %s, that of the files is taken\n", item);
        }
    }
}

void check_request(const char* resource, const char* request) {
    const char* rest = FILE_request_rest(request + (begins_exactly(request, "cu") ? 2 : 0));
    if (*rest != '\0') {
        MESS_print(mess_warn,
                   "%s: No time: %s, \"%s\" is left out; a request is la, -HOURS or "
                   "#YYYYMMDDHHMM\n",
                   resource, request, rest);
    }
}

void check_zone(const char* zone) {
    if (DATE_is_TZ(zone) == 0) {
        MESS_print(mess_warn,
                   "tz: No hours from UTC: %s, times stay in UTC; a zone is NAME:HOURS, as "
                   "CST:-6\n",
                   zone);
    }
}

void check_zones() {
    each_item("plot_param", [](const char* item) {
        if (begins(item, "tz")) {
            check_zone(item[2] == '\0' ? "" : item + 3);
        }
    });
    if (const char* zone = std::getenv("zyrtz")) {
        check_zone(zone);
    }
}

// --- Page and labels ----------------------------------------------------------

bool take_number(const char** text) {
    const std::size_t digits = std::strspn(*text, ".0123456789");
    *text += digits;
    return digits > 0;
}

// "+x": an offset may have a sign of its own, as in "+-5".
bool take_offset(const char** text) {
    if (**text != '+' && **text != '-') {
        return false;
    }
    *text += (*text)[1] == '-' ? 2 : 1;
    return take_number(text);
}

// "wxh+x+y" from its beginning: what is not given keeps its default.
bool is_panel(const char* at) {
    if (!take_number(&at) || (take_char(&at, 'x') && !take_number(&at))) {
        return false;
    }
    if (take_offset(&at)) {
        take_offset(&at);
    }
    return *at == '\0';
}

// "wxh", "+x+y" or both, with "=" in front for a window; or a panel after "p".
bool is_geometry(const char* text) {
    if (*text == 'p' || *text == 'P') {
        return is_panel(text + 1);
    }
    const char* at = text + (*text == '=' ? 1 : 0);
    bool given = false;
    if (take_number(&at)) {
        if (!take_char(&at, 'x') || !take_number(&at)) {
            return false;
        }
        given = true;
    }
    if (take_offset(&at)) {
        given = take_offset(&at);
    }
    return given && *at == '\0';
}

void check_geometry() {
    const char* value = value_of("geometry");
    if (*value != '\0' && !is_geometry(value)) {
        MESS_print(mess_warn,
                   "geometry: No size: %s, the device's own is taken; a size is WIDTHxHEIGHT or "
                   "WIDTHxHEIGHT+X+Y\n",
                   value);
    }
}

void check_label_codes() {
    each_item("label", [](const char* item) {
        for (const char* at = std::strchr(item, '%'); at != nullptr; at = std::strchr(at, '%')) {
            if (!PLT_is_label_code(at[1])) {
                MESS_print(mess_warn,
                           "label: Unknown code: %.2s in %s, it is left out; the codes are %%D %%V "
                           "%%W %%y %%m %%b %%h %%d %%n %%f %%F %%%%\n",
                           at, item);
                return;
            }
            at += 2;
        }
    });
}

// --- Files --------------------------------------------------------------------

// A text grid, or a kind of image that the list of output files takes.
void check_output(const char* item) {
    const IMG_kind* kind = IMG_find_word(item);
    if (begins(item, "zyr") || (kind != nullptr && kind->out_file)) {
        return;
    }
    if (kind != nullptr) {
        MESS_print(mess_warn, "out_file: Left out: %s, plot_param takes it: -pp %s\n", item, item);
        return;
    }
    KnownWords words = {{"zyr"}};
    for (const IMG_kind& known : IMG_kinds()) {
        if (known.out_file) {
            words.push_back({known.word});
        }
    }
    const char* point = std::strrchr(item, '.');
    const std::string_view nearest = nearest_word(
        words, point != nullptr && std::strpbrk(item, "=:") == nullptr ? point + 1 : item);
    MESS_print(mess_warn,
               "out_file: Unknown word: %s, the nearest is %s; an image is written with -of "
               "png=FILE\n",
               item, std::string(nearest).c_str());
}

// Few plots look a station up, but a name that is given is a file's.
void check_city_file() {
    const char* name = value_of("city_file");
    char path[file_name_size];
    if (*name != '\0' && stricmp(name, "none") != 0 &&
        FILE_exist(FILE_add_path(RES_get("file_path"), name, path)) == 0) {
        CTY_tell_missing(name);
    }
}

// Where inputs lie; the directories of outputs are made. Paths of defaults files serve
// other machines and programs, too.
constexpr const char* input_paths[] = {"data_path", "con_path",   "raw_path", "watch_path",
                                       "text_path", "model_path", "sat_path"};

void check_paths() {
    for (const char* name : input_paths) {
        const char* path = value_of(name);
        const bool reported = std::strcmp(name, "watch_path") == 0 && WATCH_wanted(); // with a file
        if (RES_is_typed(name) && !reported && *path != '\0' && stricmp(path, "none") != 0 &&
            FILE_is_dir(path) != 1) {
            MESS_print(mess_warn, "%s: No directory: %s, no file is found in it\n", name, path);
            FILE_tell_nearest(name, nullptr, path);
        }
    }
}

} // namespace

void RAD_check_values() {
    each_item("plot_param", [](const char* item) {
        check_numbers(item);
        check_panel(item);
        check_pattern(item);
        check_overlays(item);
        check_marker(item);
    });
    check_interval();
    check_base();
    check_scale();
    check_priority();
    check_hour();
    check_span();
    check_request("current", value_of("current"));
    for (const char* name : RES_items("filename")) {
        if (FILE_is_request(name)) {
            check_request("filename", name);
        }
    }
    check_zones();
    check_geometry();
    check_label_codes();
    RAW_check_format("plot_format", value_of("plot_format"));
    DOM_check_text("grid_domain", value_of("grid_domain"));
    check_paths();
    each_item("out_file", check_output);
    check_city_file();
}
