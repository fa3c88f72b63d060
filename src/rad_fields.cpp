// rad_fields: what texts and netCDF files of radar summaries have alike: levels of the
// grid, the label's date, kinds of precipitation. No state.
#include "rad_read.h"

#include "date.h"
#include "text_scan.h"
#include "tools.h"

#include <cstring>
#include <string_view>

namespace {

// The characters of a set, cut at the size of their field.
void take_set(const char** at, std::string_view set, char* word, std::size_t size) {
    std::size_t length = 0;
    for (; **at != '\0' && set.find(**at) != set.npos; ++*at) {
        if (length + 1 < size) {
            word[length++] = **at;
        }
    }
    word[length] = '\0';
}

struct IntensityMark {
    const char* text;
    int intens;
};
constexpr IntensityMark intensity_marks[] = {
    {"-",  1},
    {"+",  3},
    {"++", 4},
    {"X",  5},
    {"XX", 6},
    {"U",  9},
};

} // namespace

void rad_put_level(RAD_info* info, int column, int row, int level) {
    if (column >= 0 && column < rad_columns && row >= 0 && row < rad_rows) {
        info->summary[column][row] = static_cast<signed char>(level);
    }
}

void rad_decode_label(RAD_info* info) {
    Date date;
    const bool known = DATE_decode_label(info->datim, &date) == 0 && is_set(date.day) &&
                       date.year > 0 && date.month > 0;
    info->date = known ? date : Date{};
}

void rad_take_precipitation(const char** at, MDR_prec* prec) {
    skip_blanks(at);
    take_set(at, "*TRWSZLPAI", prec->type, sizeof prec->type);
    if (prec->type[0] == '\0' || prec->type[0] == '*') {
        copy_text(prec->type, sizeof prec->type, " ");
    }
    char mark[4] = "";
    take_set(at, "-+XU", mark, sizeof mark);
    for (const IntensityMark& row : intensity_marks) {
        if (std::strcmp(row.text, mark) == 0) {
            prec->intens = row.intens;
        }
    }
}
