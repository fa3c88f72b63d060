// nids_report: the text lines of storm tables as storms. Lines are untrusted:
// columns after their end are empty, and what does not read leaves its field
// as it was. No state.
#include "nids_report.h"

#include "text_num.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

namespace {

constexpr float farthest = 1e6F;     // a bearing or range beyond is none
constexpr float small_hail = 0.25F;  // inches, said as "less than 0.50"
constexpr int severe_positive = 100; // percent, of the words of the brief list
constexpr int severe_probable = 50;  //
constexpr int severe_strong = 49;    // above this a storm is strong
constexpr std::string_view blanks = " \t\r\n\v\f";

// The next word of a text, and the text after it.
std::string_view take_word(std::string_view* text) {
    text->remove_prefix(std::min(text->find_first_not_of(blanks), text->size()));
    const std::string_view word = text->substr(0, text->find_first_of(blanks));
    text->remove_prefix(word.size());
    return word;
}

// The same on a cursor.
std::string_view take_word(const char** text) {
    std::string_view rest(*text);
    const std::string_view word = take_word(&rest);
    *text = rest.data();
    return word;
}

void set_id(NIDS_report* storm, std::string_view word) {
    const std::size_t size = std::min(word.size(), sizeof storm->id - 1);
    std::copy_n(word.data(), size, storm->id);
    storm->id[size] = '\0';
}

// Two numbers split by a slash. Whether both were there; the first is stored
// even if the second is none.
bool take_pair(const char** text, float* first, float* second) {
    return take_float(text, first) && take_char(text, '/') && take_float(text, second);
}

bool take_pair(const char** text, int* first, int* second) {
    return take_int(text, first) && take_char(text, '/') && take_int(text, second);
}

bool in_reach(float v) {
    return is_set(v) && std::abs(v) <= farthest;
}

bool too_far(float v) {
    return is_set(v) && !in_reach(v);
}

// A movement that would leave every map is none. A direction without a speed counts.
void check_movement(NIDS_report* storm) {
    if (too_far(storm->dir) || too_far(storm->spd)) {
        storm->dir = storm->spd = missing_f;
    }
}

void take_movement(const char** text, NIDS_report* storm) {
    take_pair(text, &storm->dir, &storm->spd);
    check_movement(storm);
}

// The text of a line from a column on; empty after its end.
const char* at_column(const char* line, std::size_t column) {
    return line + std::min(column, std::strlen(line));
}

// --- Lists --------------------------------------------------------------------

// "A1  120  45  YES  NO  POS  55.0  12.1  48 > 35.2  240  25"
void brief_line(const char* text, NIDS_report* storm) {
    set_id(storm, take_word(&text));
    if (!take_float(&text, &storm->ang) || !take_float(&text, &storm->rad)) {
        return;
    }
    storm->tvs = take_word(&text) == "YES" ? 1 : 0;
    storm->meso = take_word(&text) == "YES" ? 1 : 0;
    const std::string_view hail = take_word(&text);
    storm->shail = hail == "POS" ? severe_positive : hail == "PRO" ? severe_probable : 0;
    if (!take_float(&text, &storm->max_dbz) || !take_float(&text, &storm->max_dbz_z) ||
        !take_float(&text, &storm->vlow)) {
        return;
    }
    text += std::strspn(text, " >");
    if (take_float(&text, &storm->tops) && take_float(&text, &storm->dir)) {
        take_float(&text, &storm->spd);
    }
    check_movement(storm);
}

int mesocyclone(std::string_view word) {
    if (word == "YES" || word == "MESO") {
        return 1;
    }
    char text[12] = "";
    std::copy_n(word.data(), std::min(word.size(), sizeof text - 1), text);
    return std::max(text_int(text), 0);
}

// "   M0  309/  8 TVS    13   30/ 30/ 0.75    30  65 10.2 >18.1  226/ 16"
void full_line(const char* line, NIDS_report* storm) {
    const char* text = line;
    set_id(storm, take_word(&text));
    if (!take_pair(&text, &storm->ang, &storm->rad)) {
        return;
    }
    const std::string_view vortex = take_word(&text);
    if (vortex.empty()) {
        storm->ang = missing_f;
        return;
    }
    storm->tvs = vortex == "YES" || vortex == "TVS" ? 1 : 0;
    storm->meso = mesocyclone(take_word(&text));

    text = at_column(line, 26);
    take_pair(&text, &storm->shail, &storm->hail);
    const char* size = at_column(line, 35);
    if (*at_column(line, 34) == '<' || *size == '<') {
        storm->hsize = small_hail;
    } else {
        take_float(&size, &storm->hsize);
    }
    text = at_column(line, 42);
    if (take_float(&text, &storm->vil) && take_float(&text, &storm->max_dbz) &&
        take_float(&text, &storm->max_dbz_z)) {
        text += std::strspn(text, " >");
        take_float(&text, &storm->tops);
    }
    text = at_column(line, 62);
    take_movement(&text, storm);
}

// --- Columns ------------------------------------------------------------------

// What a line of a page of columns holds.
enum class Row {
    id,
    cell_id,
    vortex_id,
    place,
    two_words,
    movement,
    maximum,
    hail,
    hail_size,
    rank
};

struct Line {
    const char* label; // with which the line begins, blanks aside
    NidsTable table;
    Row row;
};
constexpr Line lines[] = {
    {"STORM ID",      NidsTable::tracks,       Row::id       },
    {"AZ/RAN",        NidsTable::tracks,       Row::place    },
    {"FCST MVT",      NidsTable::tracks,       Row::movement },
    {"DBZM HGT",      NidsTable::tracks,       Row::maximum  },
    {"STORM ID",      NidsTable::hail,         Row::id       },
    {"AZ/RAN",        NidsTable::hail,         Row::place    },
    {"POSH/POH",      NidsTable::hail,         Row::hail     },
    {"MAX HAIL SIZE", NidsTable::hail,         Row::hail_size},
    {"TYPE STID",     NidsTable::vortices,     Row::vortex_id},
    {"AZ    RAN",     NidsTable::vortices,     Row::two_words},
    {"CIR STMID",     NidsTable::mesocyclones, Row::cell_id  },
    {"AZ    RAN",     NidsTable::mesocyclones, Row::two_words},
    {"SR   LLRV",     NidsTable::mesocyclones, Row::rank     },
};

// Where the columns of a table are.
struct Layout {
    NidsTable table;
    std::size_t first, width;
};
constexpr Layout layouts[] = {
    {NidsTable::tracks,       10, 10},
    {NidsTable::hail,         16, 9 },
    {NidsTable::vortices,     11, 10},
    {NidsTable::mesocyclones, 11, 10},
};

// One cell of a line.
void take_cell(Row row, std::string_view cell, NIDS_report* storm) {
    char buffer[16] = "";
    std::copy_n(cell.data(), std::min(cell.size(), sizeof buffer - 1), buffer);
    const char* text = buffer;
    switch (row) {
    case Row::id:
        set_id(storm, take_word(&text));
        break;
    case Row::cell_id: // after the number of the circulation
        take_word(&text);
        set_id(storm, take_word(&text));
        break;
    case Row::vortex_id: // after its kind, at the ground or elevated
        storm->tvs = take_word(&text).empty() ? 0 : 1;
        set_id(storm, take_word(&text));
        break;
    case Row::place:
        take_pair(&text, &storm->ang, &storm->rad);
        break;
    case Row::two_words:
        if (take_float(&text, &storm->ang)) {
            take_float(&text, &storm->rad);
        }
        break;
    case Row::movement: // "NEW" for none
        take_movement(&text, storm);
        break;
    case Row::maximum:
        if (take_float(&text, &storm->max_dbz)) {
            take_float(&text, &storm->max_dbz_z);
        }
        break;
    case Row::hail: // "UNKNOWN" for none
        take_pair(&text, &storm->shail, &storm->hail);
        break;
    case Row::hail_size:
        text += std::strspn(text, " ");
        if (*text == '<') {
            storm->hsize = small_hail;
        } else {
            take_float(&text, &storm->hsize);
        }
        break;
    case Row::rank: // every column of the table is a mesocyclone
        if (take_int(&text, &storm->meso)) {
            storm->meso = std::max(storm->meso, 1);
        }
        break;
    }
}

} // namespace

bool nids_has_place(const NIDS_report& storm) {
    return in_reach(storm.ang) && in_reach(storm.rad);
}

bool nids_is_strong(const NIDS_report& storm) {
    return storm.tvs != 0 || storm.meso != 0 || storm.shail > severe_strong;
}

bool nids_list_line(const char* line, NidsList* list, NIDS_report* storm) {
    if (std::strstr(line, "VLOW") != nullptr) {
        *list = NidsList::brief;
    }
    if (std::strstr(line, "VIL") != nullptr) {
        *list = NidsList::full;
    }
    const std::string_view text = line;
    if (*list == NidsList::none || text.starts_with(" STM") || text.starts_with("NO STORM")) {
        return false;
    }
    *storm = {};
    if (*list == NidsList::brief) {
        brief_line(line, storm);
    } else {
        full_line(line, storm);
    }
    return nids_has_place(*storm);
}

void nids_column_line(NidsTable table, const char* line, NidsColumns* storms) {
    const std::string_view text = line;
    const std::string_view label = text.substr(std::min(text.find_first_not_of(' '), text.size()));
    const auto* found = std::find_if(std::begin(lines), std::end(lines), [&](const Line& row) {
        return row.table == table && label.starts_with(row.label);
    });
    const auto* layout = std::find_if(std::begin(layouts), std::end(layouts),
                                      [&](const Layout& row) { return row.table == table; });
    if (found == std::end(lines) || layout == std::end(layouts)) {
        return;
    }
    std::size_t at = layout->first;
    for (NIDS_report& storm : *storms) {
        if (at < text.size()) {
            take_cell(found->row, text.substr(at, layout->width), &storm);
        }
        at += layout->width;
    }
}
