// gks_print: pages, options and print colours of the print devices. State: what
// the plot asks of whichever is in force, which no reset touches.

#include "gks_print.h"

#include "out_file.h"
#include "state_keeper.h"
#include "text_num.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <sys/stat.h>

namespace {

struct PrintWish {
    int bold = 1;  // factor on the widths of lines and text
    int solid = 0; // 1: fills print black
};
PrintWish wish;

struct PageSize {
    const char* name;
    Gpage page;
};
constexpr std::array page_sizes = {
    PageSize{"letter", {11.0F, 8.5F}   },
    PageSize{"legal",  {14.0F, 8.5F}   },
    PageSize{"11x17",  {17.0F, 11.0F}  },
    PageSize{"ansid",  {34.0F, 22.0F}  },
    PageSize{"a4",     {11.69F, 8.26F} },
    PageSize{"a3",     {16.54F, 11.69F}},
    PageSize{"a2",     {23.39F, 16.54F}},
    PageSize{"a1",     {33.11F, 23.39F}},
    PageSize{"b4",     {14.33F, 10.12F}},
    PageSize{"b3",     {20.27F, 14.33F}},
    PageSize{"b2",     {28.66F, 20.27F}},
    PageSize{"b1",     {40.55F, 28.66F}},
};

// Print colours come in three greys of three widths each.
constexpr std::array grays = {0.0F, 1.0F, 0.7F};
constexpr std::array factors = {1, 2, 4};

// Page sizes outside this range leave no room or overrun the coordinates.
bool usable_size(const Gpage& page) {
    constexpr float least = 1.0F;
    constexpr float most = 200.0F;
    return page.x >= least && page.x <= most && page.y >= least && page.y <= most;
}

bool read_size(const char* text, Gpage* page) {
    Gpage read{};
    if (!take_float(&text, &read.x) || !take_char(&text, 'x') || !take_float(&text, &read.y) ||
        !usable_size(read)) {
        return false;
    }
    *page = read;
    return true;
}

// A plot alone in a file that was to hold one already has neither head nor end.
void warn_of_no_page(std::FILE* file, const char* name) {
    struct stat info {};
    if (fstat(fileno(file), &info) == 0 && S_ISREG(info.st_mode) && info.st_size == 0) {
        MESS_print(mess_warn,
                   "gopen_ws: No page to add to: %s, the first plot of a page is written "
                   "without +\n",
                   name);
    }
}

} // namespace

const char* gprint_value(const char* option, const char* word) {
    const std::size_t n = std::strlen(word);
    if (strnicmp(option, word, static_cast<int>(n)) != 0) {
        return nullptr;
    }
    return option[n] == '\0' ? option + n : option + n + 1;
}

bool gprint_page(const char* option, Gpage* page) {
    if (const char* size = gprint_value(option, "sz")) {
        return read_size(size, page);
    }
    const auto* row = std::find_if(page_sizes.begin(), page_sizes.end(), [&](const PageSize& size) {
        return stricmp(option, size.name) == 0;
    });
    if (row == page_sizes.end()) {
        return false;
    }
    *page = row->page;
    return true;
}

std::FILE* gprint_open(const char* name, std::initializer_list<std::string_view> ends, bool* append,
                       std::string_view* end) {
    *append = *name == '+';
    *end = {};
    if (*append) {
        ++name;
    }
    if (!*append && *name == '|') {
        MESS_print(mess_mess, "Spooling to: %s\n", name + 1);
    } else {
        MESS_print(mess_mess, *append ? "Appending to: %s\n" : "Creating: %s\n", name);
    }
    std::FILE* const file = open_output(name, *append);
    if (file != nullptr && *append) {
        *end = take_end_off(name, ends);
        warn_of_no_page(file, name);
    }
    return file;
}

bool gis_print_colr(int ind) {
    return ind >= first_print_colr && ind <= last_print_colr;
}

float gprint_gray(int ind) {
    return grays[(ind - first_print_colr) / 3];
}

int gprint_factor(int ind) {
    return gis_print_colr(ind) ? factors[(ind - first_print_colr) % 3] : 1;
}

void gprint_set_bold(int factor) {
    wish.bold = factor;
}

int gget_line_print_bold() {
    return wish.bold;
}

void gprint_set_solid(int value) {
    wish.solid = value;
}

int gget_fill_print_solid() {
    return wish.solid;
}

void keep_gks_print(StateKeeper& keeper) {
    keeper.keep(wish);
}
