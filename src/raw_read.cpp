// raw_read.cpp: raw data files row by row (zyrraw.h). State: the open files, at
// most five, known by their place in the table. Nothing has to be called first.
#include "zyrraw.h"

#include "date.h"
#include "files.h"
#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>

namespace {

constexpr std::size_t most_bytes = std::size_t{64} << 20; // of a file
constexpr std::size_t longest_word = 79;
constexpr char magic = 'Z';

struct State {
    std::array<std::unique_ptr<RAW_file>, raw_max_files> rfile = {};
    // A selector below raw_selectors is the address of its place here, so that
    // a number and a name are distinguished without a look at either.
    std::array<char, raw_selectors> selectors = {};
};
State state;

RAW_file* get_file(int raw_fd) {
    return raw_fd >= 0 && raw_fd < raw_max_files
               ? state.rfile[static_cast<std::size_t>(raw_fd)].get()
               : nullptr;
}

// The number of a selector; missing if it is a name.
int selector_number(const char* selector) {
    const char* first = state.selectors.data();
    const bool number =
        !std::less<>{}(selector, first) && std::less<>{}(selector, first + state.selectors.size());
    return number ? static_cast<int>(selector - first) : missing;
}

// Cursor of one row; a word ends at a blank or at the end.
struct Words {
    const char* at;

    void pass_blanks() {
        while (is_blank(*at)) {
            ++at;
        }
    }
    // The next word as a piece of the row. False at the end.
    bool next(const char** begin, std::size_t* length) {
        pass_blanks();
        *begin = at;
        while (*at != '\0' && !is_blank(*at)) {
            ++at;
        }
        *length = static_cast<std::size_t>(at - *begin);
        return *length > 0;
    }
};

// Bounded copy of a piece of text.
void copy_piece(char* out, std::size_t size, const char* begin, std::size_t length) {
    const std::size_t n = std::min(length, size - 1);
    std::memcpy(out, begin, n);
    out[n] = '\0';
}

// A number that begins with a digit, "-" or "."; moves `*at` past it.
bool read_number(const char** at, const char* end, float* value) {
    std::string_view text(*at, static_cast<std::size_t>(end - *at));
    const bool read = take_plain(&text, value);
    *at = end - text.size();
    return read;
}

// --- Rows -------------------------------------------------------------------------

// The next row into `line`, without its end. False at the end, which an empty
// row is too.
bool next_line(RAW_file* raw) {
    raw->in_hand = false;
    if (raw->ended || raw->access != raw_read_access) {
        return false;
    }
    std::size_t n = 0;
    std::size_t used = 0;
    int c = getc_unlocked(raw->file);
    for (; c != EOF && c != '\n' && used < most_bytes; c = getc_unlocked(raw->file)) {
        if (n < raw_line_length) {
            raw->line[n++] = static_cast<char>(c);
        }
        ++used;
    }
    raw->bytes += used + 1;
    n -= n > 0 && raw->line[n - 1] == '\r' ? 1 : 0;
    raw->line[n] = '\0';
    if (raw->bytes > most_bytes) {
        MESS_print(mess_warn, "RAW_read: File too large, the rest is left out: %s\n", raw->name);
        raw->ended = true;
    } else if (n == 0) {
        raw->ended = true;
        if (c == '\n' && !raw->is_input) {
            // Rows after an empty one are data that a user may miss.
            int next = std::getc(raw->file);
            while (next != EOF && is_blank(static_cast<char>(next))) {
                next = std::getc(raw->file);
            }
            if (next != EOF) {
                MESS_print(
                    mess_warn,
                    "RAW_read: The data end at an empty line, rows after it are left out: %s\n",
                    raw->name);
            }
        }
    }
    raw->in_hand = !raw->ended;
    return raw->in_hand;
}

// A header line, empty ones included, cut to the buffer. False at the end of the
// file, or where a file without line ends has become too long.
bool header_line(RAW_file* raw, char* out, std::size_t size) {
    std::size_t n = 0;
    int c = getc_unlocked(raw->file);
    const bool found = c != EOF;
    for (; c != EOF && c != '\n' && ++raw->bytes < most_bytes; c = getc_unlocked(raw->file)) {
        if (n + 1 < size) {
            out[n++] = static_cast<char>(c);
        }
    }
    out[n] = '\0';
    wstrim_string(out);
    return found;
}

// --- The header --------------------------------------------------------------------

// One word of any length, cut to the buffer. Returns its length, 0 at the end.
std::size_t stream_word(RAW_file* raw, char* out, std::size_t size) {
    int c = std::getc(raw->file);
    while (c != EOF && is_blank(static_cast<char>(c)) && ++raw->bytes < most_bytes) {
        c = std::getc(raw->file);
    }
    std::size_t n = 0;
    for (; c != EOF && !is_blank(static_cast<char>(c)) && ++raw->bytes < most_bytes;
         c = std::getc(raw->file)) {
        if (n + 1 < size) {
            out[n++] = static_cast<char>(c);
        }
    }
    out[n] = '\0';
    if (c != EOF) {
        std::ungetc(c, raw->file);
    }
    return n;
}

void add_field(RAW_file* raw, const char* word) {
    const int i = raw->num_field;
    if (i >= raw_max_fields) {
        return;
    }
    const char* end = word + std::strlen(word);
    const char* info = std::find(word, end, ':');
    copy_piece(raw->field[i], sizeof raw->field[i], word, static_cast<std::size_t>(info - word));
    if (info != end) {
        ++info;
        const char* fmt = std::find(info, end, ':');
        copy_piece(raw->field_info[i], sizeof raw->field_info[i], info,
                   static_cast<std::size_t>(fmt - info));
        fill_string(raw->field_info[i], '_', ' ');
        if (fmt != end) {
            copy_text(raw->field_fmt[i], sizeof raw->field_fmt[i], fmt + 1);
        }
    }
    raw->num_field = i + 1;
}

int position_columns(const RAW_file& raw) {
    if (raw.num_field == 0) {
        return 3;
    }
    const char* second = raw.num_field > 1 ? raw.field[1] : "";
    if (raw.num_field > 3 && (stricmp(second, "lat") == 0 || stricmp(second, "x") == 0)) {
        return 3;
    }
    const bool level = stricmp(second, "p") == 0 || stricmp(second, "pres") == 0;
    return raw.num_field > 2 && level ? 2 : 1;
}

void read_fields(RAW_file* raw) {
    raw->num_field = 0;
    char word[120] = "";
    while (stream_word(raw, word, sizeof word) > 0 && word[0] != '$') {
        add_field(raw, word);
    }
    header_line(raw, word, sizeof word);
}

void read_header(RAW_file* raw, RAW_info* info) {
    raw->num = 0;
    raw->ind = 0;
    raw->in_hand = false;
    raw->ended = false;
    raw->bytes = 0;
    char text[raw_line_length + 1] = "";
    char first[2] = "";
    header_line(raw, first, sizeof first);
    if (header_line(raw, text, sizeof text)) {
        copy_text(info->datim, sizeof info->datim, text);
        DATE_decode_label(text, &info->date);
    }
    text[0] = '\0';
    header_line(raw, text, sizeof text);
    const bool fields = text[0] == '!';
    copy_text(info->info, sizeof info->info, text + (fields ? 1 : 0));
    if (fields) {
        read_fields(raw);
    }
    raw->field_off = position_columns(*raw);
}

// --- Values --------------------------------------------------------------------------

// Identifier and position of the row in hand. Returns the offset past them.
int read_prefix(RAW_file* raw, RAW_report* report) {
    Words words{raw->line};
    const char* begin = nullptr;
    std::size_t length = 0;
    words.pass_blanks();
    const auto offset = [&] { return static_cast<int>(words.at - raw->line); };
    raw->field_ind[0] = offset();
    words.next(&begin, &length);
    copy_piece(report->id, sizeof report->id, begin, length);
    report->wmo = length > 4 ? text_int(report->id) : missing;
    report->type = missing;
    report->lat = report->lon = report->elev = missing_f;
    report->prior = missing;
    report->value[0] = report->value[1] = missing_f;
    report->data[0] = report->format[0] = '\0';
    float place[2] = {missing_f, missing_f};
    bool read = true;
    for (int i = 1; i < raw->field_off; ++i) {
        words.pass_blanks();
        raw->field_ind[i] = offset();
        words.next(&begin, &length);
        const bool none = length == 1 && *begin == '-';
        const char* at = begin;
        read =
            (none || (read_number(&at, begin + length, &place[i - 1]) && at == begin + length)) &&
            read;
    }
    if (read) {
        report->lat = place[0];
        report->lon = place[1];
    }
    return offset();
}

void decode_value(const RAW_file& raw, int ind, RAW_report* report, const char* str,
                  std::size_t length) {
    report->format[0] = '\0';
    if (ind >= 0 && ind < raw.num_field) {
        copy_text(report->format, sizeof report->format, raw.field_fmt[ind]);
    }
    const char* end = str + length;
    const char* colon = std::find(str, end, ':');
    if (colon != end) {
        const std::size_t used = std::strlen(report->format);
        if (used > 0 && used + 1 < sizeof report->format) {
            report->format[used] = ':';
        }
        const std::size_t at = used > 0 ? std::min(used + 1, sizeof report->format - 1) : 0;
        copy_piece(report->format + at, sizeof report->format - at, colon + 1,
                   static_cast<std::size_t>(end - colon - 1));
        end = colon;
    }
    const char* equal = std::find(str, end, '=');
    const char* value = equal != end ? equal + 1 : str;
    report->value[0] = report->value[1] = missing_f;
    report->data[0] = '\0';
    if (value == end || (end - value == 1 && *value == '-')) {
        return;
    }
    const bool number = *value == '-' || *value == '.' || is_digit(*value);
    const char* at = value;
    if (number && read_number(&at, end, &report->value[0]) && at != end && *at == ',') {
        ++at;
        at += at != end && *at == '+' ? 1 : 0;
        read_number(&at, end, &report->value[1]);
    }
    copy_piece(report->data, sizeof report->data, value, static_cast<std::size_t>(end - value));
}

// Each value of a row in turn.
int read_each(RAW_file* raw, RAW_report* report, bool fresh) {
    if (fresh) {
        raw->cur_field = raw->field_off;
    } else {
        ++raw->cur_field;
    }
    const int from = raw->ind;
    Words words{raw->line + from};
    const char* begin = nullptr;
    std::size_t length = 0;
    if (words.next(&begin, &length)) {
        decode_value(*raw, raw->cur_field, report, begin, std::min(length, longest_word));
        report->type = raw->cur_field;
        raw->ind = static_cast<int>(words.at - raw->line);
        return 1;
    }
    raw->ind = fresh ? -1 : 0;
    return fresh ? 1 : 0;
}

// The value of "name=value" in the row.
bool read_named(const RAW_file& raw, const char* name, const char* from, RAW_report* report) {
    const std::size_t size = std::strlen(name);
    Words words{from};
    const char* begin = nullptr;
    std::size_t length = 0;
    while (words.next(&begin, &length)) {
        if (length > size && begin[size] == '=' &&
            strnicmp(begin, name, static_cast<int>(size)) == 0) {
            decode_value(raw, missing, report, begin, std::min(length, longest_word));
            report->type = static_cast<int>(begin - raw.line);
            return true;
        }
    }
    return false;
}

// The value in one place of the row.
int read_field(RAW_file* raw, RAW_report* report, const char* selector) {
    const int number = selector_number(selector);
    int index = is_set(number) ? number - raw_first_value : missing;
    if (number == raw_ident || (!is_set(number) && stricmp(selector, "id") == 0)) {
        index = -raw->field_off;
    } else if (!is_set(number)) {
        for (int i = 0; i < raw->num_field && !is_set(index); ++i) {
            index = stricmp(raw->field[i], selector) == 0 ? i - raw->field_off : missing;
        }
        if (!is_set(index)) {
            return read_named(*raw, selector, raw->line + raw->ind, report) ? 1 : 0;
        }
    }
    const int column = raw->field_off + index;
    if (column < 0) {
        return 0;
    }
    Words words{raw->line + (index < 0 ? raw->field_ind[column] : raw->ind)};
    const char* begin = nullptr;
    std::size_t length = 0;
    for (int i = 0; i < index; ++i) {
        words.next(&begin, &length);
    }
    if (!words.next(&begin, &length)) {
        return 0;
    }
    decode_value(*raw, column, report, begin, std::min(length, longest_word));
    if (column == 0) { // an identifier is text, though it may be a number
        copy_piece(report->data, sizeof report->data, begin, length);
    }
    report->type = column;
    return 1;
}

// Brings row `wanted` in hand. False at the end.
bool go_to(int raw_fd, RAW_file* raw, int wanted) {
    if (raw->is_input || raw->type == raw_type_plain) {
        // No way back, and no need of one: rows are asked for in order.
        if (raw->in_hand && wanted <= raw->num && raw->num > 0) {
            return true;
        }
    } else if (wanted == 0 || wanted < raw->num || (!raw->in_hand && raw->num == 0)) {
        RAW_rewind(raw_fd);
    }
    if (raw->in_hand && raw->num == wanted) {
        return true;
    }
    if (!raw->in_hand && raw->num == 0) {
        if (!next_line(raw)) {
            return false;
        }
    }
    while (raw->num < wanted) {
        if (!next_line(raw)) {
            return false;
        }
        ++raw->num;
    }
    return raw->in_hand;
}

// --- Opening -------------------------------------------------------------------------

// Whether the first line, read to `text`, is a data row all the same.
bool is_row(const char* text) {
    char words[3][40] = {};
    Words cursor{text};
    for (auto& word : words) {
        const char* begin = nullptr;
        std::size_t length = 0;
        cursor.next(&begin, &length);
        copy_piece(word, sizeof word, begin, length);
    }
    return is_number(words[1]) && is_number(words[2]);
}

struct Standard {
    const char* name;
    int type;
};
constexpr Standard standards[] = {
    {"",     raw_type_file },
    {"-",    raw_type_file },
    {"std",  raw_type_file },
    {"stdn", raw_type_plain},
};

} // namespace

char* RAW_selector(int number) {
    return &state.selectors[static_cast<std::size_t>(std::clamp(number, 0, raw_selectors - 1))];
}

int RAW_chktype(const char* filename) {
    if (*filename == '|' || FILE_is_dir(filename) == 1) {
        return -1;
    }
    const FILE_ptr file(FILE_open(filename, "r"));
    if (!file) {
        return -1;
    }
    char first[raw_line_length + 1] = "";
    if (std::fgets(first, sizeof first, file.get()) == nullptr) {
        return raw_type_plain;
    }
    return first[0] == magic && !is_row(first) ? raw_type_file : raw_type_plain;
}

int RAW_open(const char* filename, int f_access, int* f_type) {
    const auto slot =
        std::find_if(state.rfile.begin(), state.rfile.end(), [](const auto& f) { return !f; });
    if (slot == state.rfile.end() || filename == nullptr || *filename == '|') {
        return -1;
    }
    bool standard = false;
    int type = *f_type == 2 ? raw_type_file : *f_type;
    for (const Standard& row : standards) {
        if (stricmp(filename, row.name) == 0) {
            standard = true;
            type = row.type;
        }
    }
    if (type == 0 && f_access != raw_write_access) {
        type = RAW_chktype(filename);
    }
    constexpr const char* modes[] = {"r", "w", "a"};
    if ((type != raw_type_file && type != raw_type_plain) || f_access < raw_read_access ||
        f_access > raw_append_access || (!standard && FILE_is_dir(filename) == 1)) {
        return -1;
    }
    FILE_ptr stream(FILE_open(filename, modes[f_access]));
    if (!stream) {
        return -1;
    }
    auto raw = std::make_unique<RAW_file>();
    raw->fd = fileno(stream.get());
    raw->file = stream.release();
    copy_text(raw->name, sizeof raw->name, filename);
    raw->type = type;
    raw->access = f_access;
    raw->is_input = standard;
    *f_type = type;
    *slot = std::move(raw);
    return static_cast<int>(slot - state.rfile.begin());
}

int RAW_getinfo(int raw_fd, RAW_info* info) {
    RAW_file* raw = get_file(raw_fd);
    if (raw == nullptr) {
        return -1;
    }
    *info = {};
    if (raw->type != raw_type_plain && raw->access == raw_read_access) {
        if (!raw->is_input) {
            std::rewind(raw->file);
        }
        read_header(raw, info);
    }
    return 0;
}

int RAW_get_field_ind(int raw_fd, const char* field) {
    const RAW_file* raw = get_file(raw_fd);
    if (raw == nullptr || field == nullptr) {
        return missing;
    }
    const int number = selector_number(field);
    if (is_set(number)) {
        return number - raw_first_value + raw->field_off;
    }
    for (int i = 0; i < raw->num_field; ++i) {
        if (stricmp(raw->field[i], field) == 0) {
            return i;
        }
    }
    return missing;
}

const char* RAW_get_field_name(int raw_fd, const char* field) {
    const int place = RAW_get_field_ind(raw_fd, field);
    const RAW_file* raw = get_file(raw_fd);
    if (raw != nullptr && place >= 0 && place < raw->num_field) {
        return raw->field[place];
    }
    return is_set(selector_number(field)) ? nullptr : field;
}

const char* RAW_get_field_info(int raw_fd, const char* field) {
    const int place = RAW_get_field_ind(raw_fd, field);
    const RAW_file* raw = get_file(raw_fd);
    return raw != nullptr && place >= 0 && place < raw->num_field &&
                   raw->field_info[place][0] != '\0'
               ? raw->field_info[place]
               : nullptr;
}

int RAW_read(int raw_fd, RAW_report* report, const char* rep_type, const int* statnum) {
    RAW_file* raw = get_file(raw_fd);
    if (raw == nullptr) {
        return 0;
    }
    if (raw->access != raw_read_access) {
        return -1;
    }
    const bool each = selector_number(rep_type) == raw_each;
    const bool same = each && raw->in_hand && *statnum == raw->num;
    if (same && raw->ind == -1) {
        raw->ind = 0;
        return 0;
    }
    if (same && raw->ind > 0) {
        return read_each(raw, report, false);
    }
    if (!go_to(raw_fd, raw, *statnum)) {
        return -1;
    }
    raw->ind = read_prefix(raw, report);
    if (each) {
        return read_each(raw, report, true);
    }
    const int result = read_field(raw, report, rep_type);
    raw->ind = 0;
    return result;
}

int RAW_dec_line(int raw_fd, int ind, RAW_report* report, const char* str) {
    const RAW_file* raw = get_file(raw_fd);
    const RAW_file none;
    decode_value(raw != nullptr ? *raw : none, ind, report, str,
                 std::min(std::strlen(str), longest_word));
    return 0;
}

int RAW_rewind(int raw_fd) {
    RAW_file* raw = get_file(raw_fd);
    if (raw == nullptr || raw->access != raw_read_access) {
        return -1;
    }
    if (raw->type == raw_type_plain || raw->is_input) {
        return 0;
    }
    RAW_info info;
    return RAW_getinfo(raw_fd, &info);
}

int RAW_close(int raw_fd) {
    RAW_file* raw = get_file(raw_fd);
    if (raw == nullptr) {
        return -1;
    }
    FILE_close(raw->file);
    state.rfile[static_cast<std::size_t>(raw_fd)].reset();
    return 0;
}

void keep_raw_read(StateKeeper& keeper) {
    keeper.close_by([] { state.rfile = {}; });
}
