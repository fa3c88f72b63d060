// rad_text: texts of radar summaries. State: the open text, held whole, and the place
// of the next report.
//
// Lines have 80 characters; what is longer is left out.
//
//   ZYRRAD                      type 3 alone
//   2235Z 20 MAY 19             types 2 and 3: the date
//   SDUS41 KWBC                 opens a grid of MDR levels
//   + 01 081                    the block begins at row 1 + 1, column 81
//   1120034                     rows of levels 1 to 9; all else is 0
//   +                           the end of the block and the section, as is "*"
//   RCM                         opens a grid of RCM levels
//   +123                        row 123 follows from column 0, over as many lines
//   1:=                         as it needs: 1 to 6; 7 to < are 1 to 6, = to B too
//   SDXX STATION                opens the list of MDR reports
//   OKC LINE TRW++ + 450,235045 L2532 C2435 *
//   ** TLX 3 PCPN               a record of the RCM list, to the next line with "*"
//   Z 450 35.10 -97.20          top, latitude, longitude
//   T 1 35.10 -97.20            tornado vortex; M mesocyclone
//   S A1 35.10 -97.20 240 35 450 2   storm: direction, speed, top, hail
#include "rad_read.h"

#include "date.h"
#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t most_text = std::size_t{16} << 20;
constexpr std::size_t line_length = 80;
constexpr int default_min = 35;

struct State {
    int type = 0;
    std::string text;
    std::size_t at = 0;                       // the next line
    std::size_t list = 0;                     // the line after "SDXX STATION"; 0: none
    int stat_num = 0;                         // the report at `at`
    std::array<char, line_length + 1> line{}; // the last line read
    bool has_line = false;                    // which begins the next record of the RCM list
};
State state;

// --- Lines ------------------------------------------------------------------------

// The next line, at most 80 characters, without its end. False after the last.
bool next_line() {
    if (state.at >= state.text.size()) {
        return false;
    }
    const std::size_t end = std::min(state.text.find('\n', state.at), state.text.size());
    std::size_t length = std::min(end - state.at, line_length);
    std::copy_n(state.text.begin() + static_cast<std::ptrdiff_t>(state.at), length,
                state.line.begin());
    while (length > 0 && state.line[length - 1] == '\r') {
        --length;
    }
    state.line[length] = '\0';
    state.at = end + 1;
    return true;
}

// Of text types: past the magic line.
void to_start() {
    state.at = 0;
    state.has_line = false;
    if (state.type == rad_type_zyrrad) {
        next_line();
    }
}

// The next word, cut at the size of its field. False at the end of the line.
bool take_word(const char** at, char* word, std::size_t size) {
    skip_blanks(at);
    std::size_t length = 0;
    for (; **at != '\0' && !is_blank(**at); ++*at) {
        if (length + 1 < size) {
            word[length++] = **at;
        }
    }
    word[length] = '\0';
    return length > 0;
}

// --- Grids ------------------------------------------------------------------------

int rcm_level(char c) {
    if (c >= '1' && c <= '6') {
        return c - '0';
    }
    if (c >= '7' && c <= '<') {
        return c - '6';
    }
    return c >= '=' && c <= 'B' ? c - '<' : 0;
}

struct Section {
    int type = 0;      // rad_mdr or rad_rcm while a section is open
    bool open = false; // a block of an MDR section is
    int row = 0;
    int column = 0;
};

// Begins a block, at "+ row column".
void open_block(Section& section) {
    const char* at = state.line.data() + 1;
    int row = 0;
    int column = 0;
    take_int(&at, &row);
    take_int(&at, &column);
    section.open = true;
    section.row = std::clamp(row, -1, rad_rows) + 1;
    section.column = std::clamp(column, -1, rad_columns);
}

// A line of an MDR section. Whether it opened the block.
bool take_mdr_line(Section& section, RAD_info* info) {
    const char* line = state.line.data();
    if (*line == '*' || (*line == '+' && section.open)) {
        section = {};
        return false;
    }
    if (*line == '+') {
        open_block(section);
        return true;
    }
    if (section.open) {
        for (int i = 0; line[i] != '\0'; ++i) {
            const bool level = line[i] >= '1' && line[i] <= '9';
            rad_put_level(info, section.column + i, section.row, level ? line[i] - '0' : 0);
        }
        section.row = std::min(section.row + 1, rad_rows);
    }
    return false;
}

void take_rcm_line(Section& section, RAD_info* info) {
    const char* line = state.line.data();
    if (*line == '+') {
        const char* at = line + 1;
        int row = 0;
        take_int(&at, &row);
        section.row = std::clamp(row, 0, rad_rows - 1);
        section.column = 0;
        return;
    }
    for (; *line != '\0' && section.column < rad_columns; ++line) {
        rad_put_level(info, section.column++, section.row, rcm_level(*line));
    }
}

// The grid of a text. Returns 0, -1 without one.
int read_grid(RAD_info* info) {
    Section section;
    while (next_line()) {
        const char* line = state.line.data();
        if (begins_exactly(line, "SDUS") || begins_exactly(line, "RCM")) {
            section = {};
            section.type = *line == 'S' ? rad_mdr : rad_rcm;
            if (section.type == rad_rcm && !is_set(info->type)) {
                info->type = rad_rcm;
            }
        } else if (section.type == rad_mdr) {
            const bool opened = take_mdr_line(section, info);
            info->type = opened && !is_set(info->type) ? rad_mdr : info->type;
        } else if (section.type == rad_rcm) {
            if (*line == '*') {
                state.has_line = true;
                break;
            }
            take_rcm_line(section, info);
        }
    }
    return is_set(info->type) ? 0 : -1;
}

// --- Reports of a text ------------------------------------------------------------

// "450,235045": height, direction and range.
void take_tops(const char* word, MDR_tops* tops) {
    if (!take_int(&word, &tops->h) || *word != ',') {
        return;
    }
    ++word;
    take_digits(&word, 3, 10, &tops->dir);
    take_digits(&word, 3, 10, &tops->rad);
}

// "L2532": type, direction in tens of degrees, speed. False when there is none.
bool take_move(const char** at, MDR_move* move) {
    skip_blanks(at);
    if (**at == '\0') {
        return false;
    }
    const char type = *(*at)++;
    if (type == '*') {
        return true;
    }
    move->type = type;
    skip_blanks(at);
    int tens = 0;
    if (!take_digits(at, 2, 10, &tens)) {
        return false;
    }
    move->dir = tens * 10;
    skip_blanks(at);
    take_digits(at, 2, 10, &move->spd);
    return true;
}

// One report out of the line in hand; what is missing in it stays empty.
void decode_report(const char* at, MDR_report* report) {
    char word[20] = "";
    take_word(&at, report->config, sizeof report->config);
    rad_take_precipitation(&at, &report->prec[0]);
    if (take_word(&at, report->trend, sizeof report->trend) && report->trend[0] == '*') {
        report->trend[0] = '\0';
    }
    if (report->trend[0] == '\0') {
        copy_text(report->trend, sizeof report->trend, " ");
    }
    if (take_word(&at, word, sizeof word)) {
        take_tops(word, &report->tops[0]);
    }
    for (MDR_move& move : report->move) {
        if (!take_move(&at, &move)) {
            return;
        }
    }
}

// A line that is not blank.
bool next_report_line() {
    while (next_line()) {
        const char* at = state.line.data();
        skip_blanks(&at);
        if (*at != '\0') {
            return true;
        }
    }
    return false;
}

// --- Records of the RCM list --------------------------------------------------------

struct StationWord {
    const char* word;
    int RCM_report::*field;
    int value;
};
constexpr StationWord station_words[] = {
    {"PCPN", &RCM_report::mode,   rcm_mode_precipitation},
    {"CLAR", &RCM_report::mode,   rcm_mode_clear_air    },
    {"NA",   &RCM_report::status, rcm_status_unavailable},
    {"NE",   &RCM_report::status, rcm_status_no_echoes  },
    {"OM",   &RCM_report::status, rcm_status_maintenance},
};

// "** TLX 3 PCPN"
void take_station(const char* at, RCM_report* report) {
    at += 2;
    take_word(&at, report->id, sizeof report->id);
    take_int(&at, &report->num);
    char word[8] = "";
    while (take_word(&at, word, sizeof word)) {
        for (const StationWord& row : station_words) {
            if (std::strcmp(row.word, word) == 0) {
                report->*row.field = row.value;
            }
        }
    }
}

void take_place(const char** at, float* lat, float* lon) {
    if (take_float(at, lat)) {
        take_float(at, lon);
    }
}

// One more place in a list, unless it is full.
template <typename Item, std::size_t N> Item* add_item(Item (&list)[N], int* count) {
    return *count < static_cast<int>(N) ? &list[(*count)++] : nullptr;
}

void take_mark(const char* at, RCM_mark* mark) {
    if (mark != nullptr && take_word(&at, mark->id, sizeof mark->id)) {
        take_place(&at, &mark->x, &mark->y);
    }
}

void take_storm(const char* at, RCM_storm* storm) {
    if (storm == nullptr || !take_word(&at, storm->id, sizeof storm->id)) {
        return;
    }
    take_place(&at, &storm->x, &storm->y);
    for (int* const number : {&storm->dir, &storm->spd, &storm->hgt, &storm->hail}) {
        if (!take_int(&at, number)) {
            return;
        }
    }
}

void take_record_line(const char* line, RCM_report* report) {
    const char* at = line + 1;
    if (!is_blank(*at)) {
        return;
    }
    switch (*line) {
    case 'Z':
        if (take_int(&at, &report->maxt)) {
            take_place(&at, &report->maxt_x, &report->maxt_y);
        }
        break;
    case 'T':
        take_mark(at, add_item(report->tvs, &report->num_tvs));
        break;
    case 'M':
        take_mark(at, add_item(report->meso, &report->num_meso));
        break;
    case 'S':
        take_storm(at, add_item(report->storm, &report->num_storm));
        break;
    default:
        break;
    }
}

// To the line that begins the next record.
bool find_record() {
    while (!state.has_line || !begins_exactly(state.line.data(), "**")) {
        state.has_line = next_line();
        if (!state.has_line) {
            return false;
        }
    }
    return true;
}

} // namespace

bool rad_text_take(std::FILE* file, const char* name, int type) {
    std::array<char, 65536> block{};
    state = {};
    state.type = type;
    for (std::size_t got = 1; got > 0 && state.text.size() <= most_text;) {
        got = std::fread(block.data(), 1, block.size(), file);
        state.text.append(block.data(), got);
    }
    if (state.text.size() > most_text) {
        MESS_print(mess_error, "RAD_open: The file is larger than 16 MB: %s\n", name);
        state = {};
        return false;
    }
    if (std::ferror(file) != 0) {
        MESS_print(mess_warn, "RAD_open: The file is damaged: %s\n", name);
    }
    return true;
}

void rad_text_forget() {
    state = {};
}

int rad_text_info(RAD_info* info) {
    to_start();
    if (state.type != rad_type_raw && next_line()) {
        const char* label = state.line.data();
        skip_blanks(&label);
        copy_text(info->datim, sizeof info->datim, label);
        trim_string(info->datim);
        rad_decode_label(info);
        if (is_set(info->date.day) && !is_set(info->date.min)) {
            info->date.min = default_min;
        }
    }
    return read_grid(info);
}

void rad_text_rewind() {
    state.stat_num = 0;
    state.list = 0;
    to_start();
    if (state.type == rad_type_raw) {
        return;
    }
    while (next_line()) {
        if (begins_exactly(state.line.data(), "SDXX STATION")) {
            state.list = state.at;
            return;
        }
    }
    to_start(); // an RCM list begins at its first record
}

int rad_text_report(MDR_report* report, int rep_type, const int* statnum) {
    const int wanted = statnum != nullptr ? *statnum : state.stat_num;
    if (state.type == rad_type_raw || state.list == 0) {
        return -1;
    }
    if (wanted < state.stat_num) {
        state.at = state.list;
        state.stat_num = 0;
    }
    for (; state.stat_num < wanted; ++state.stat_num) {
        if (!next_report_line()) {
            return -1;
        }
    }
    if (!next_report_line()) {
        return -1;
    }
    ++state.stat_num;
    const char* at = state.line.data();
    take_word(&at, report->id, sizeof report->id);
    if (rep_type != 1) {
        decode_report(at, report);
    }
    return 0;
}

int rad_text_message(RCM_report* report, int rep_type) {
    const bool listed = state.type == rad_type_text || state.type == rad_type_zyrrad;
    if (!listed || !find_record()) {
        return -1;
    }
    report->status = rcm_status_normal;
    take_station(state.line.data(), report);
    while ((state.has_line = next_line()) && state.line[0] != '*') {
        if (rep_type != 1) {
            take_record_line(state.line.data(), report);
        }
    }
    return 1;
}

void keep_rad_text(StateKeeper& keeper) {
    keeper.keep(state);
}
