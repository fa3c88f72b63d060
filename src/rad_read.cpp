// rad_read: files of radar summaries. State: the open file, a text of which is
// held whole, and the place of the next report.
//
// Text files have lines of 80 characters; what is longer is left out.
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
#include "zyrrad.h"

#include "cdf.h"
#include "data_file.h"
#include "date.h"
#include "file_kind.h"
#include "files.h"
#include "text_num.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t most_text = std::size_t{16} << 20;
constexpr std::size_t line_length = 80;
constexpr int text_fd = 1; // the number of an open text
constexpr int default_min = 35;
constexpr std::string_view magic = "ZYRRAD";

// Sizes and names of what netCDF files hold.
constexpr int mdr_columns = 120;
constexpr int mdr_rows = 90;
constexpr int most_level = 11; // type 12: these and above are no report
constexpr std::size_t string_size = 12;
constexpr float nmi_per_km = 0.53996F;
constexpr float knots_per_ms = 1.944F;
constexpr float feet_per_m = 3.2808F;

struct State {
    int fd = -1;
    int file_type = 0;
    std::string text;                         // of an open text
    std::size_t at = 0;                       // the next line
    std::size_t list = 0;                     // the line after "SDXX STATION"; 0: none
    int stat_num = 0;                         // the report at `at`
    long num_station = 0;                     // reports of a netCDF file
    std::array<char, line_length + 1> line{}; // the last line read
    bool has_line = false;                    // which begins the next record of the RCM list
    std::array<std::uint8_t, 512> head{};
    std::size_t head_size = 0;
};
State state;

bool is_text_type(int type) {
    return type >= rad_type_raw && type <= rad_type_zyrrad;
}

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
    if (state.file_type == rad_type_zyrrad) {
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

// --- Grids ------------------------------------------------------------------------

void put_level(RAD_info* info, int column, int row, int level) {
    if (column >= 0 && column < rad_columns && row >= 0 && row < rad_rows) {
        info->summary[column][row] = static_cast<signed char>(level);
    }
}

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
            put_level(info, section.column + i, section.row, level ? line[i] - '0' : 0);
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
        put_level(info, section.column++, section.row, rcm_level(*line));
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

void decode_label(RAD_info* info) {
    Date date;
    const bool known = DATE_decode_label(info->datim, &date) == 0 && is_set(date.day) &&
                       date.year > 0 && date.month > 0;
    info->date = known ? date : Date{};
}

int text_info(RAD_info* info) {
    to_start();
    if (state.file_type != rad_type_raw && next_line()) {
        const char* label = state.line.data();
        skip_blanks(&label);
        copy_text(info->datim, sizeof info->datim, label);
        trim_string(info->datim);
        decode_label(info);
        if (is_set(info->date.day) && !is_set(info->date.min)) {
            info->date.min = default_min;
        }
    }
    return read_grid(info);
}

// --- Reports of a text ------------------------------------------------------------

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

// "TRW++": type and intensity.
void take_precipitation(const char** at, MDR_prec* prec) {
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
    take_precipitation(&at, &report->prec[0]);
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

int read_text_report(MDR_report* report, int rep_type, int wanted) {
    if (state.file_type == rad_type_raw || state.list == 0) {
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

// --- netCDF -------------------------------------------------------------------------

constexpr int most_places = 4; // dimensions of a variable that are looked at

// Where a value lies: the numbers along the dimensions of these names.
struct Index {
    const char* dim;
    int pos;
    int range = 1;
};

using Indexes = std::initializer_list<Index>;

// Sets the place of the next reading of a variable, whose dimensions may come in any
// order. Texts reach along the dimensions that are not named.
void set_place(int var, Indexes indexes) {
    std::array<int, cdf_max_dims> dims{};
    std::array<int, cdf_max_dims> pos{};
    std::array<int, cdf_max_dims> range{};
    range.fill(static_cast<int>(string_size) - 1);
    const int count = CDF_get_var_dims(var, dims.data());
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        for (const Index& index : indexes) {
            if (CDF_get_dim(index.dim) == dims[at]) {
                pos[at] = index.pos;
                range[at] = index.range;
            }
        }
    }
    CDF_set_pos(most_places, pos[0], pos[1], pos[2], pos[3]);
    CDF_set_range(most_places, range[0], range[1], range[2], range[3]);
}

void get_str(const char* name, Indexes indexes, char* text, std::size_t size) {
    const int var = CDF_get_var(name);
    set_place(var, indexes);
    std::array<char, string_size> value{};
    CDF_get_str(var, value.data(), value.size());
    trim_string(value.data());
    copy_text(text, size, value.data());
}

// A number; `value` stays where there is none, which files say by a fill value far
// outside of what is measured.
bool get_float(const char* name, Indexes indexes, float* value) {
    const int var = CDF_get_var(name);
    set_place(var, indexes);
    float number = missing_f;
    constexpr float most = 1.0e9F;
    if (CDF_get_number(var, &number) != 0 || !(number > missing_f && number < most)) {
        return false;
    }
    *value = number;
    return true;
}

void get_int(const char* name, Indexes indexes, int* value) {
    float number = missing_f;
    if (get_float(name, indexes, &number)) {
        *value = trunc_int(number);
    }
}

int get_count(const char* name, Indexes indexes, int most) {
    int count = 0;
    get_int(name, indexes, &count);
    return std::clamp(count, 0, most);
}

// The grid of a variable, whichever way it lies.
int get_grid(const char* name, RAD_info* info) {
    const int var = CDF_get_var(name);
    std::array<int, cdf_max_dims> dims{};
    const int count = CDF_get_var_dims(var, dims.data());
    const int x = CDF_get_dim("mdr_x");
    const int y = CDF_get_dim("mdr_y");
    if (count != 2 || std::min(x, y) < 0 || dims[0] + dims[1] != x + y ||
        (dims[0] != x && dims[0] != y)) {
        return -1;
    }
    const int nx = static_cast<int>(std::clamp(CDF_get_dim_size(x), 0L, long{mdr_columns}));
    const int ny = static_cast<int>(std::clamp(CDF_get_dim_size(y), 0L, long{mdr_rows}));
    std::array<signed char, static_cast<std::size_t>(mdr_columns) * mdr_rows> levels{};
    set_place(var, {
                       {"mdr_x", 0, nx},
                       {"mdr_y", 0, ny}
    });
    if (CDF_get_byte_array(var, levels.data(), levels.size()) != 0) {
        return -1;
    }
    const bool rows_first = dims[0] == y;
    for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            const int at = rows_first ? j * nx + i : i * ny + j;
            const auto level = int{levels[static_cast<std::size_t>(at)]};
            put_level(info, i, j,
                      state.file_type == rad_type_report && level >= most_level ? -1 : level);
        }
    }
    return 0;
}

int netcdf_info(RAD_info* info) {
    CDF_set_fd(state.fd);
    CDF_print_errors(0);
    long reports = CDF_get_dim_size(-1);
    if (reports < 0) { // of a copy whose dimension has a fixed size
        const int dim = CDF_get_dim(state.file_type == rad_type_station ? "station" : "report");
        reports = dim < 0 ? 0 : CDF_get_dim_size(dim);
    }
    state.num_station = std::max(reports, 0L);
    info->type = rad_mdr;
    if (state.file_type == rad_type_station) {
        CDF_get_glob_att("datetime", info->datim, sizeof info->datim);
        decode_label(info);
        return get_grid("summary", info);
    }
    std::array<char, 17> time{};
    const int var = CDF_get_var("mdr_time");
    set_place(var, {
                       {"time_len", 0, 16}
    });
    CDF_get_str(var, time.data(), time.size());
    if (DATE_decode_seq(time.data(), &info->date) == 0 && is_set(info->date.year)) {
        std::array<char, date_label_size> label{};
        DATE_make_label(&info->date, label.data());
        copy_text(info->datim, sizeof info->datim, label.data());
    }
    return get_grid("mdr", info);
}

void read_station_report(MDR_report* report, int n) {
    const Index at = {"station", n};
    get_str("region", {at}, report->region, sizeof report->region);
    get_float("mdr_x", {at}, &report->x);
    get_float("mdr_y", {at}, &report->y);
    get_int("type", {at}, &report->type);
    get_str("config", {at}, report->config, sizeof report->config);
    std::array<char, string_size> prec{};
    get_str("prec",
            {
                at, {"reports", 0}
    },
            prec.data(), prec.size());
    const char* text = prec.data();
    take_precipitation(&text, &report->prec[0]);
    report->numprec = report->prec[0].type[0] != ' ' ? 1 : 0;
    get_str("trend", {at}, report->trend, sizeof report->trend);
    for (int i = 0; i < mdr_max_move; ++i) {
        MDR_move& move = report->move[i];
        const Index item = {"reports", i};
        std::array<char, string_size> type{};
        get_str("move_type", {at, item}, type.data(), type.size());
        move.type = type[0] != '\0' ? type[0] : ' ';
        get_int("move_dir", {at, item}, &move.dir);
        get_int("move_spd", {at, item}, &move.spd);
    }
    MDR_tops& tops = report->tops[0];
    get_int("max_tops", {at}, &tops.h);
    get_int("max_tops_dir", {at}, &tops.dir);
    get_int("max_tops_rad", {at}, &tops.rad);
}

// The text of a kind of precipitation, by its bits.
void name_precipitation(int bits, MDR_prec* prec) {
    std::string text;
    text += (bits & RA_THUNDERSTORM) != 0 ? "T" : "";
    text += (bits & RA_FREEZING) != 0 ? "Z" : "";
    text += (bits & RA_RAIN) != 0 ? "R" : "";
    text += (bits & 3) == RA_SNOW ? "S" : "";
    text += (bits & RA_ICE_PELLETS) != 0 ? "IP" : "";
    text += (bits & 7) > RA_ICE_PELLETS ? "L" : "";
    text += (bits & RA_SHOWER) != 0 ? "W" : "";
    copy_text(prec->type, sizeof prec->type, text.empty() ? " " : text.c_str());
}

void read_precipitation(MDR_report* report, Index at) {
    const int covers = get_count("ncover", {at}, mdr_max_prec);
    for (int i = 0; i < covers; ++i) {
        const Index cover = {"maxcover", i};
        const int types = get_count("nprecip", {at, cover}, mdr_max_prec);
        for (int j = 0; j < types && report->numprec < mdr_max_prec; ++j) {
            MDR_prec& prec = report->prec[report->numprec++];
            const Index type = {"maxprecip", j};
            int bits = 0;
            if (j == 0) {
                get_int("coverage", {at, cover}, &prec.area_cov);
            }
            get_int("precip_type", {at, cover, type}, &bits);
            name_precipitation(bits, &prec);
            get_int("intensity", {at, cover, type}, &prec.intens);
        }
    }
}

// A length of the file in nautical miles.
int miles(float km) {
    return trunc_int(km * nmi_per_km);
}

void read_places(MDR_report* report, Index at) {
    const int places = get_count("nazran", {at}, mdr_max_loc);
    int n = 0;
    for (; n < places; ++n) {
        float azimuth = missing_f;
        float range = missing_f;
        if (get_float("azimuth",
                      {
                          at, {"maxazran", n}
        },
                      &azimuth) &&
            get_float("range", {at, {"maxazran", n}}, &range)) {
            report->loc[n] = {trunc_int(azimuth + 0.01F), miles(range)};
        }
    }
    float width = missing_f;
    if (n < mdr_max_loc &&
        get_count("nwidth",
                  {
                      at
    },
                  1) > 0 &&
        get_float("width", {at, {"maxwidth", 0}}, &width)) {
        report->loc[n] = {missing, miles(width)};
    }
    float height = missing_f;
    if (get_count("nheight",
                  {
                      at
    },
                  1) > 0 &&
        get_float("height", {at, {"maxheight", 0}}, &height)) {
        report->tops[0] = {trunc_int((1.0F + height) * feet_per_m) / 100, report->loc[0].dir,
                           report->loc[0].rad};
    }
}

constexpr const char* station_status[] = {"", "NE", "OM", "NA"};
constexpr const char* objects[] = {"", "AREA", "LINE", "CELL"};
constexpr const char* trends[] = {" ", "+", "-", "NC", "NEW"};

// The row of a table, or its first for a number that it lacks.
template <std::size_t N> const char* row_of(const char* const (&table)[N], int number) {
    return table[number >= 0 && number < static_cast<int>(N) ? number : 0];
}

void read_coded_report(MDR_report* report, int n) {
    const Index at = {"report", n};
    get_int("rpt_time", {at}, &report->time);
    get_int("radar_type", {at}, &report->type);
    const int status = get_count("opstat", {at}, most_level);
    const int object = get_count("object", {at}, most_level);
    const char* config = row_of(objects, object);
    copy_text(report->config, sizeof report->config,
              *config != '\0' ? config : row_of(station_status, status));
    read_precipitation(report, at);
    copy_text(report->trend, sizeof report->trend,
              row_of(trends, get_count("trend",
                                       {
                                           at, {"maxcover",  0},
                                            {"maxprecip", 0}
    },
                                       most_level)));
    read_places(report, at);
    const int moves = get_count("nmove", {at}, mdr_max_move);
    for (int i = 0; i < moves; ++i) {
        MDR_move& move = report->move[i];
        move.type = report->config[0] != '\0' ? report->config[0] : ' ';
        float speed = missing_f;
        get_int("move_dir",
                {
                    at, {"maxmove", i}
        },
                &move.dir);
        if (get_float("move_speed",
                      {
                          at, {"maxmove", i}
        },
                      &speed)) {
            move.spd = trunc_int((speed + 0.1F) * knots_per_ms);
        }
    }
}

int read_netcdf_report(MDR_report* report, int rep_type, int wanted) {
    const int n = wanted != -1 ? wanted : state.stat_num;
    if (n < 0 || n >= state.num_station) {
        return -1;
    }
    state.stat_num = n + 1;
    CDF_set_fd(state.fd);
    const char* dim = state.file_type == rad_type_station ? "station" : "report";
    get_str("id",
            {
                {dim, n}
    },
            report->id, sizeof report->id);
    if (rep_type == 0) {
        if (state.file_type == rad_type_station) {
            read_station_report(report, n);
        } else {
            read_coded_report(report, n);
        }
    }
    return 0;
}

// --- Files --------------------------------------------------------------------------

// Type of a text by its first bytes; `rad_type_report` for netCDF, -1 for neither.
int type_of(std::string_view head) {
    if (head.empty()) {
        return -1;
    }
    if (head.starts_with("CDF") || head.starts_with("\211HDF")) {
        return rad_type_report;
    }
    switch (head[0]) {
    case '*':
        return rad_type_raw;
    case ' ':
    case '0':
    case '1':
    case '2':
        return rad_type_text;
    case 'W':
        return rad_type_zyrrad;
    default:
        return head.starts_with(magic) ? rad_type_zyrrad : -1;
    }
}

// The same of an open file; a netCDF file stays open as `*fd`.
int find_type(std::FILE* file, const char* name, int* fd) {
    const auto head = FILE_head(file, state.head);
    state.head_size = head.size();
    const int type = type_of({reinterpret_cast<const char*>(head.data()), head.size()});
    if (type != rad_type_report) {
        return type;
    }
    *fd = CDF_open(file, name);
    if (*fd < 0) {
        return -1;
    }
    CDF_print_errors(0);
    return CDF_get_dim("station") >= 0 ? rad_type_station : rad_type_report;
}

// Reads a text whole. What came before the end of a damaged packing stands.
bool read_text(std::FILE* file, const char* name) {
    std::array<char, 65536> block{};
    state.text.clear();
    for (std::size_t got = 1; got > 0 && state.text.size() <= most_text;) {
        got = std::fread(block.data(), 1, block.size(), file);
        state.text.append(block.data(), got);
    }
    if (state.text.size() > most_text) {
        MESS_print(mess_error, "RAD_open: The file is larger than 16 MB: %s\n", name);
        state.text.clear();
        return false;
    }
    if (std::ferror(file) != 0) {
        MESS_print(mess_warn, "RAD_open: The file is damaged: %s\n", name);
    }
    return true;
}

void empty(RAD_info* info) {
    std::memset(info->summary, 0, sizeof info->summary);
    info->datim[0] = '\0';
    info->cmdline = nullptr;
    info->date = {};
    info->type = missing;
}

} // namespace

int RAD_chktype(const char* filename) {
    const FILE_ptr file(FILE_open_data(filename));
    int fd = -1;
    const int type = file != nullptr ? find_type(file.get(), filename, &fd) : -1;
    CDF_close(fd);
    return type;
}

int RAD_open(const char* filename, int f_access, int* f_type) {
    state.head_size = 0;
    const FILE_ptr file(f_access == 0 ? FILE_open_data(filename) : nullptr);
    if (file == nullptr) {
        return -1;
    }
    int fd = -1;
    const int type = find_type(file.get(), filename, &fd);
    // The user's type chooses among texts: what is netCDF says so itself.
    const bool given = is_text_type(*f_type) && is_text_type(type);
    *f_type = given ? *f_type : type;
    if (type < 0 || (is_text_type(type) && !read_text(file.get(), filename))) {
        return -1;
    }
    if (state.fd >= 0) {
        RAD_close(state.fd);
    }
    state.file_type = *f_type;
    state.fd = is_text_type(type) ? text_fd : fd;
    return state.fd;
}

void RAD_tell_kind(const char* routine) {
    if (state.head_size > 0) {
        tell_file_kind(routine, std::span(state.head).first(state.head_size));
    }
}

int RAD_getinfo(int cvt_fd, RAD_info* info) {
    empty(info);
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    return is_text_type(state.file_type) ? text_info(info) : netcdf_info(info);
}

int RAD_rewind(int cvt_fd) {
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    state.stat_num = 0;
    state.list = 0;
    if (!is_text_type(state.file_type)) {
        return 0;
    }
    to_start();
    if (state.file_type == rad_type_raw) {
        return 0;
    }
    while (next_line()) {
        if (begins_exactly(state.line.data(), "SDXX STATION")) {
            state.list = state.at;
            return 0;
        }
    }
    to_start(); // an RCM list begins at its first record
    return 0;
}

int RAD_close(int cvt_fd) {
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    if (!is_text_type(state.file_type)) {
        CDF_close(state.fd);
    }
    state = {};
    return 0;
}

int MDR_read(int cvt_fd, MDR_report* report, int rep_type, const int* statnum) {
    *report = {};
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    const int wanted = statnum != nullptr ? *statnum : state.stat_num;
    return is_text_type(state.file_type) ? read_text_report(report, rep_type, wanted)
                                         : read_netcdf_report(report, rep_type, wanted);
}

int RCM_read(int cvt_fd, RCM_report* report, int rep_type, const int*) {
    RCM_init(report);
    const bool listed = state.file_type == rad_type_text || state.file_type == rad_type_zyrrad;
    if (cvt_fd < 0 || cvt_fd != state.fd || !listed || !find_record()) {
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
