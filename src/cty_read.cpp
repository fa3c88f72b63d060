// cty_read.cpp: the station file, line by line. State: the one open file.
// Nothing must be called first; files are given by the path to open.
//
//   field  form   content
//   1      %20s   name, '_' for a blank
//   2      %2s    state, "--" if none
//   3      %2s    country
//   4      %9s    identifier, a first '-' if none
//   5      word   '*' if it has MOS data, a digit of priority, '*' if upper air
//   6, 7   %f     latitude, longitude, degrees
//   8      %f     height in metres, above 9000: unknown
//   9      %d     WMO number, 99999 if none
//   10     %d     extra number, may be absent
#include "zyrcty.h"

#include "files.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr int longest_line = 255; // the rest of a longer one is passed over
constexpr int unset_priority = 9; // of a flag word without a digit
constexpr float highest = 9000;   // above: the height is unknown

// The open station file; `file = {}` after it was closed.
struct File {
    FILE_ptr stream;
    int fd = -1;
    char name[file_name_size] = "";
};
File file;

bool is_open(int fd) {
    return file.stream != nullptr && fd == file.fd;
}

// Cursor of one line; each call passes blanks and takes one field.
struct Fields {
    const char* at;

    void pass_blanks() {
        while (is_blank(*at)) {
            ++at;
        }
    }
    // At most size - 1 characters; the rest of a longer word stays.
    bool word(char* out, std::size_t size) {
        pass_blanks();
        std::size_t n = 0;
        while (n + 1 < size && *at != '\0' && !is_blank(*at)) {
            out[n++] = *at++;
        }
        out[n] = '\0';
        return n > 0;
    }
    bool number(float* out) { return take_float(&at, out); }
    bool integer(int* out) { return scan_int(&at, any_width, out) == 1; }
};

void read_flags(const char* text, CTY_data* city) {
    if (*text == '*') {
        city->mos = '*';
        ++text;
    }
    city->prior = unset_priority;
    if (is_digit(*text)) {
        city->prior = *text++ - '0';
    }
    if (*text == '*') {
        city->ua = '*';
    }
}

// Returns the number of fields read, in order.
int read_fields(const char* line, CTY_data* city) {
    Fields f{line};
    char flags[20] = "";
    int n = 0;
    const auto done = [&n](bool got) {
        n += got ? 1 : 0;
        return got;
    };
    const bool place = done(f.word(city->name, sizeof city->name)) &&
                       done(f.word(city->state, sizeof city->state)) &&
                       done(f.word(city->region, sizeof city->region)) &&
                       done(f.word(city->id, sizeof city->id)) && done(f.word(flags, sizeof flags));
    if (place && done(f.number(&city->lat)) && done(f.number(&city->lon)) &&
        done(f.number(&city->el)) && done(f.integer(&city->wmo))) {
        done(f.integer(&city->num));
    }
    read_flags(flags, city);
    if (city->el > highest) {
        city->el = missing_f;
    }
    return n;
}

} // namespace

int CTY_open(const char* filename, int f_access, int /*f_type*/) {
    if (filename == nullptr) {
        return -1;
    }
    CTY_close(file.fd);
    FILE_ptr stream(f_access == 1 ? FILE_open(filename, "w") : FILE_open_text(filename));
    if (!stream) {
        return -1;
    }
    file.fd = std::max(fileno(stream.get()), 0); // a bounded stream has none
    file.stream = std::move(stream);
    copy_text(file.name, sizeof file.name, filename);
    return file.fd;
}

int CTY_rewind(int city_fd) {
    if (!is_open(city_fd)) {
        return -1;
    }
    return std::fseek(file.stream.get(), 0, SEEK_SET) == 0 ? 0 : -1;
}

int CTY_close(int city_fd) {
    if (!is_open(city_fd)) {
        return -1;
    }
    file = {};
    return 0;
}

int CTY_getinfo(int city_fd, CTY_info* info) {
    if (!is_open(city_fd) || info == nullptr) {
        return -1;
    }
    *info = {};
    copy_text(info->name, sizeof info->name, file.name);
    info->num_stats = CTY_estimate(file.name);
    return 0;
}

int CTY_estimate(const char* filename) {
    constexpr long usual_line = 59;
    constexpr long most = 4000;
    const long size = FILE_size(filename);
    return static_cast<int>(size < 0 ? most : std::min(size / usual_line, most));
}

int CTY_read(int city_fd, CTY_data* city) {
    if (!is_open(city_fd) || city == nullptr) {
        return -1;
    }
    char line[longest_line + 1];
    while (fgetnline(file.stream.get(), line, longest_line) >= 0) {
        *city = {};
        const int n = read_fields(line, city);
        if (n > 0) {
            return n;
        }
    }
    return -1;
}
