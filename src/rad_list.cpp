// rad_list.cpp: prints what there is to choose from, as tables that `grep` and
// `cut` like. It keeps nothing; RES_init comes first.
#include "rad_list.h"

#include "files.h"
#include "map_proj.h"
#include "near_word.h"
#include "nids_tables.h"
#include "res_table.h"
#include "tools.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <array>
#include <cctype>
#include <cstring>
#include <string>

namespace {

void list_products() {
    constexpr int most_code = 300;
    for (int code = 1; code <= most_code; ++code) {
        const NidsProduct& row = nids_product(code);
        const char* label = row.label != nullptr ? row.label : row.mosaic;
        if (label != nullptr) {
            MESS_print(mess_print, "%d\t%s\n", code, label);
        }
    }
}

// The lines of a text along `file_path`, without comments.
void list_text(const char* name) {
    std::array<char, file_name_size> path{};
    FILE_add_path(RES_get("file_path"), name, path.data());
    const FILE_ptr file(FILE_open_text(path.data()));
    if (!file) {
        MESS_print(mess_warn, "RAD_list: Unable to open file: %s\n", path.data());
        return;
    }
    constexpr int longest = 500;
    std::array<char, longest + 1> line{};
    while (fgetnline(file.get(), line.data(), longest) >= 0) {
        if (line[0] == '#' || string_is_blank(line.data()) != 0) {
            continue;
        }
        // Runs of blanks part the fields.
        std::string row;
        for (const char* at = line.data(); *at != '\0'; ++at) {
            if (std::isspace(static_cast<unsigned char>(*at)) == 0) {
                row += *at;
            } else if (!row.empty() && row.back() != '\t') {
                row += '\t';
            }
        }
        MESS_print(mess_print, "%s\n", row.c_str());
    }
}

void list_regions() {
    list_text("zyr.reg");
}

void list_colors() {
    CLR_read_table(nullptr);
    for (int i = 0; i < CLR_get_num(); ++i) {
        if (*CLR_get_name(i) != '\0') {
            float red = 0;
            float green = 0;
            float blue = 0;
            CLR_get_rgb(i, &red, &green, &blue);
            MESS_print(mess_print, "%d\t%s\t%.3f\t%.3f\t%.3f\n", i, CLR_get_name(i),
                       static_cast<double>(red), static_cast<double>(green),
                       static_cast<double>(blue));
        }
    }
}

void list_fonts() {
    list_text("zyr.fnl");
}

void list_stations() {
    list_text("sao.cty");
    list_text("rad.cty");
}

void list_projections() {
    for (const Projection& row : map_projections()) {
        std::string words;
        for (const char* word : row.words) {
            if (word != nullptr) {
                words += (words.empty() ? "" : ",") + std::string(*word == '=' ? word + 1 : word);
            }
        }
        MESS_print(mess_print, "%d\t%s\t%s\n", row.code, row.name, words.c_str());
    }
}

void list_variables() {
    // Words of the moments and tables themselves; the files add to them.
    for (const char* word : {"ref", "vel", "spect", "zdr", "phi", "rho", "cfp"}) {
        MESS_print(mess_print, "%s\tLevel II\n", word);
    }
    list_text("nids.var");
    list_text("rad.var");
}

void list_options() {
    for (const ResRow& row : res_rows) {
        if (res_is_listed(row, true)) {
            MESS_print(mess_print, "-%s\t%s\t%s\t%s\n", row.cmd.text, row.def, row.env, row.help);
        }
    }
}

void (*lister(const char* kind))() {
    struct Kind {
        const char* word;
        void (*list)();
    };
    constexpr Kind kinds[] = {
        {"products",    list_products   },
        {"regions",     list_regions    },
        {"colours",     list_colors     },
        {"colors",      list_colors     },
        {"fonts",       list_fonts      },
        {"stations",    list_stations   },
        {"projections", list_projections},
        {"variables",   list_variables  },
        {"options",     list_options    },
    };
    KnownWords words;
    for (const Kind& row : kinds) {
        if (stricmp(row.word, kind) == 0) {
            return row.list;
        }
        words.push_back({row.word});
    }
    if (*kind == '\0') {
        MESS_print(mess_warn, "RAD_list: No word: --list products|regions|colours|fonts|stations|"
                              "projections|variables|options\n");
        return nullptr;
    }
    MESS_print(mess_warn, "RAD_list: Unknown word: %s, the nearest is %s\n", kind,
               std::string(nearest_word(words, kind)).c_str());
    return nullptr;
}

} // namespace

int RAD_list(const char* kind) {
    void (*const list)() = lister(kind);
    if (list == nullptr) {
        return -1;
    }
    list();
    return 0;
}

void RAD_print_greeting() {
    MESS_print(mess_print,
               "zyrrad draws weather radar files on a map: in a window, on pages, as images.\n"
               "  zyrrad -inp nids -de p,picture.ps FILE     (-inp lev2 for Level II volumes)\n"
               "All options: zyrrad -h; the manual: man zyrrad\n\n");
}
