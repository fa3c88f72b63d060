// rad_check.cpp: looks for what a user mistyped in the settings, before
// anything is drawn. A word counts as mistyped only where no plotter, layer or
// device knows it: the lists are theirs. It keeps nothing; RES_init comes first.
#include "rad_check.h"

#include "cont.h"
#include "near_word.h"
#include "plt_tool.h"
#include "rad_run.h"
#include "rad_values.h"
#include "res_list.h"
#include "res_table.h"
#include "text_list.h"
#include "text_scan.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

namespace {

// Words of `plot_param` that the plotters of single formats and the layers of
// raw data take.
constexpr KnownWord layer_words[] = {
    {"strong"  },
    {"storms"  },
    {"nostorms"},
    {"numplt",   true},
    {"run",          true},
    {"nostatus"},
    {"noclar"},
    {"slabel"  },
    {"skip",   true},
    {"text",     true},
    {"mark",          true},
    {"line" },
    {"yba",     true},
    {"xy=",          true},
    {"ul"        },
    {"uc" },
    {"ur"     },
    {"tl"         },
    {"tc" },
    {"tr"        },
    {"bl"    },
    {"bc"},
    {"br"        },
    {"ll" },
    {"lc"     },
    {"lr"         },
    {"cc" },
    {"cl"        },
    {"cr"    },
};

// Devices by their words; the first letter is what counts.
constexpr const char* devices[] = {"display", "postscript", "ps",    "q",
                                   "hpgl",    "metafile",   "window"};

// What is no device, and how it is made.
struct OtherWay {
    const char* word;
    const char* way;
};
constexpr OtherWay other_ways[] = {
    {"png",  "an image is written with -of png=FILE"    },
    {"gif",  "an image is written with -of gif=FILE"    },
    {"jpg",  "an image is written with -of png=FILE"    },
    {"jpeg", "an image is written with -of png=FILE"    },
    {"xwd",  "an image is written with -pp xwd=FILE"    },
    {"img",  "an image is written with -pp img=FILE"    },
    {"pdf",  "a PDF is made with -de 'p,|ps2pdf - FILE'"},
    {"eps",  "a page is written with -de p,FILE"        },
    {"cgm",  "a metafile is written with -de m,FILE,cgm"},
};

const char* device_name(int type) {
    switch (type) {
    case 3:
        return "a metafile";
    case 4:
        return "PostScript";
    case 5:
        return "HPGL";
    case 6:
        return "another window";
    default:
        return "the display";
    }
}

// Each item of a list that is split at commas.
template <typename Take> void each_item(const char* resource, Take take) {
    const TextList items = RES_items(resource);
    for (const char* item : items) {
        if (*item != '\0') {
            take(item);
        }
    }
}

char lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// --- Options ------------------------------------------------------------------

bool has_row(const std::string& option) {
    return std::any_of(std::begin(res_rows), std::end(res_rows), [&](const ResRow& row) {
        return stricmp(row.def, option.c_str()) == 0 ||
               (row.cmd.text != nullptr && stricmp(row.cmd.text, option.c_str()) == 0);
    });
}

bool needs_value(DEF_convert cvt) {
    return cvt != CV_help && cvt != CV_batch && cvt != CV_bool && cvt != CV_current;
}

void check_options() {
    KnownWords options = {{"-version"}, {"-list"}, {"-info"}, {"-help"}};
    for (const ResRow& row : res_rows) {
        if (res_is_listed(row, true)) {
            options.push_back({row.cmd.text});
            options.push_back({row.def});
        }
    }
    for (const std::string& option : RES_unknown_options()) {
        if (!has_row(option)) {
            MESS_print(mess_warn, "RES_decode: Unknown option: -%s, the nearest is -%s\n",
                       option.c_str(), std::string(nearest_word(options, option)).c_str());
        }
    }
    KnownWords settings;
    for (const ResRow& row : res_rows) {
        settings.push_back({row.def});
    }
    for (const std::string& key : RES_unknown_keys()) { // others may be of another program
        const std::string nearest(close_word(settings, key));
        if (!nearest.empty() && nearest != key) {
            MESS_print(mess_warn, "RES_decode: Unknown setting: %s, the nearest is %s\n",
                       key.c_str(), nearest.c_str());
        }
    }
    // Settings that a file leaves empty on purpose have an empty text.
    for (const res_obj* entry = RES_first(); entry != nullptr; entry = entry->next) {
        for (const ResRow& row : res_rows) {
            if (entry->data == nullptr && res_is_listed(row, true) && needs_value(row.cvt) &&
                stricmp(row.def, entry->name) == 0) {
                MESS_print(mess_warn, "RES_decode: No value: -%s, it is left out\n", row.cmd.text);
            }
        }
    }
    for (const char* request : {"--resume", "--keep-going", "--stop"}) {
        if (RES_get(request) != nullptr && RES_get("--files-from") == nullptr) {
            MESS_print(mess_warn, "RES_decode: Left out: %s, it goes with --files-from LIST\n",
                       request);
        }
    }
    const char* output = RES_get("output");
    if (output != nullptr) {
        MESS_print(mess_warn,
                   "output: %s draws nothing: a page is written with -de p,FILE, an image "
                   "with -of png=FILE\n",
                   output);
    }
}

// --- Words --------------------------------------------------------------------

// Types of plot as a user may call them, and their words.
struct PlainName {
    const char* name;
    const char* word;
};
constexpr PlainName plot_names[] = {
    {"contour",    "ln"  },
    {"line",       "ln"  },
    {"dashed",     "dln" },
    {"filled",     "cf"  },
    {"shaded",     "cf"  },
    {"vector",     "vect"},
    {"streamline", "strm"},
};

// The nearest word and, where that was taken from a plain name, the name.
std::string nearest_of(const char* resource, KnownWords words, const char* item) {
    const bool plain = std::strcmp(resource, "plot_type") == 0;
    for (const PlainName& row : plot_names) {
        if (plain) {
            words.push_back({row.name});
        }
    }
    std::string nearest(nearest_word(words, item));
    for (const PlainName& row : plot_names) {
        if (plain && nearest == row.name) {
            return std::string(row.word) + " (" + row.name + ")";
        }
    }
    return nearest;
}

void check_list(const char* resource, const KnownWords& words, bool signs) {
    each_item(resource, [&](const char* item) {
        item += signs && (*item == '+' || *item == '-') ? 1 : 0;
        if (!is_known_word(words, item)) {
            MESS_print(mess_warn, "%s: Unknown word: %s, the nearest is %s\n", resource, item,
                       nearest_of(resource, words, item).c_str());
        }
    });
}

void check_plot_param() {
    KnownWords words(std::begin(layer_words), std::end(layer_words));
    PLT_add_param_words(&words);
    CONT_add_param_words(&words);
    rad_add_words(&words);
    check_list("plot_param", words, false);
}

void check_conversion(const char* resource, DEF_convert cvt) {
    KnownWords words;
    RES_add_words(cvt, &words);
    const char* value = RES_get(resource);
    if (cvt == CV_plot_type && value != nullptr && std::strchr(value, ',') != nullptr) {
        MESS_print(mess_warn, "%s: No list: %s, the default is taken; there is one type a plot\n",
                   resource, value);
        return;
    }
    check_list(resource, words, cvt == CV_draw);
}

// Two letters of a place, a digit if need be, and a colon.
bool is_label(std::string_view item) {
    if (item.size() < 3) {
        return false;
    }
    const bool placed = std::strchr("ul", lower(item[0])) != nullptr &&
                        std::strchr("lcr", lower(item[1])) != nullptr;
    return placed && item.substr(is_digit(item[2]) ? 3 : 2).starts_with(':');
}

void check_label() {
    each_item("label", [](const char* item) {
        if (!is_label(item)) {
            MESS_print(mess_warn,
                       "label: No place: %s, a label begins with ul:, uc:, ur:, ll:, lc: or lr:\n",
                       item);
        } else if (is_digit(item[2]) && item[2] - '0' >= plt_overlays) {
            MESS_print(mess_warn, "label: No line: %s, %d is taken; the lines are 0 to %d\n", item,
                       plt_overlays - 1, plt_overlays - 1);
        } else if (std::strlen(std::strchr(item, ':') + 1) >= plt_label_size) {
            MESS_print(mess_warn, "label: Too long: %s, its first %d letters are taken\n", item,
                       static_cast<int>(plt_label_size) - 1);
        }
    });
}

// --- Device -------------------------------------------------------------------

void check_device() {
    const char* value = RES_get("device");
    if (value == nullptr || *value == '\0') {
        return;
    }
    const std::string word(value, std::strcspn(value, ","));
    const char* taken = device_name(RES_set_device(value));
    for (const OtherWay& row : other_ways) {
        if (stricmp(word.c_str(), row.word) == 0) {
            MESS_print(mess_warn, "device: %s is no device, %s is taken; %s\n", word.c_str(), taken,
                       row.way);
            return;
        }
    }
    const bool known = std::any_of(std::begin(devices), std::end(devices), [&](const char* device) {
        return strnicmp(word.c_str(), device, static_cast<int>(word.size())) == 0;
    });
    if (!known) {
        MESS_print(mess_warn,
                   "device: Unknown word: %s, %s is taken; the devices are d display, "
                   "p PostScript, q or h HPGL, m metafile, w window\n",
                   word.c_str(), taken);
    }
}

struct SwitchRow {
    const char* name;
    const char* taken; // for a word that is none
};
constexpr SwitchRow switches[] = {
    {"batch", "on" },
    {"icon",  "off"},
};

void check_switches() {
    for (const SwitchRow& row : switches) {
        const char* value = RES_get(row.name);
        if (value != nullptr && *value != '\0' && !RES_is_switch(value)) {
            MESS_print(mess_warn, "%s: No switch: %s, %s is taken; a switch is on or off\n",
                       row.name, value, row.taken);
        }
    }
}

} // namespace

void RAD_check_settings() {
    check_options();
    check_plot_param();
    check_conversion("draw", CV_draw);
    check_conversion("plot_type", CV_plot_type);
    check_conversion("file_param", CV_file_param);
    check_label();
    check_device();
    check_switches();
    RAD_check_values();
}
