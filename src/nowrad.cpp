// nowrad: the reader of NOWrad mosaics. A tag is 0x00, 0xF0 and its number;
// numbers of two bytes have the low byte first. A file is
//
//   tag 0x09  a byte n, n bytes, a byte     passed over
//   tag 0x0A  text: rows, columns
//   tag 0x03  80 bytes                      title, with the date
//   tag 0x0B  a byte "C" or "L", text       projection, in radians
//   tag 0x0C  line number (2), packets      once a line
//
// A packet is a byte of two nibbles, the second the colour index, 5 dBZ each:
//
//   0x00 - 0xCF  high nibble + 1 columns
//   0xDi n n     n + 1 columns
//   0xEi n       n + 1 columns
//   0xFm         the mask m of the columns that follow
//
// State: the stream, the last bytes read as a tag, and the place in the line.
// NOWRad_header must have been called.
#include "nowrad.h"

#include "byte_source.h"
#include "map_proj.h"
#include "region.h"
#include "state_keeper.h"
#include "text_num.h"
#include "units.h"

#include <array>
#include <cctype>
#include <cstring>
#include <string>

namespace {

constexpr float level_dbz = 5.0F;
constexpr std::size_t title_size = 80;
constexpr int most_cells = 65535; // of a row or column
constexpr int tag_comment = 0x09, tag_size = 0x0A, tag_title = 0x03, tag_projection = 0x0B,
              tag_line = 0x0C;
constexpr int mark = 0xF0; // second byte of a tag

struct Stream {
    ByteSource bytes;
    std::array<int, 3> data{}; // the tag read last
    int pre = 1;               // the control byte before; 1 stands for any but 0
    int col_mask = 0;
    long tot_run = 0; // columns of the line so far
    bool is_one = false;
};
Stream stream;

bool read_tag() {
    for (int& byte : stream.data) {
        byte = stream.bytes.get();
        if (byte == ByteSource::end) {
            return false;
        }
    }
    return true;
}

bool at_tag(int number) {
    return stream.data[0] == 0 && stream.data[1] == mark && stream.data[2] == number;
}

bool take_tag(int number) {
    return read_tag() && at_tag(number);
}

bool take_number(int* value) {
    const std::string text = stream.bytes.number();
    const char* at = text.c_str();
    return take_int(&at, value);
}

bool take_angle(float* value) {
    const std::string text = stream.bytes.number();
    const char* at = text.c_str();
    return take_float(&at, value);
}

// --- Title --------------------------------------------------------------------

struct MonthRow {
    std::size_t place; // of the letter that decides
    char first, letter;
    int month;
};
constexpr MonthRow month_rows[] = {
    {0, 'f', 'f', 2 },
    {0, 's', 's', 9 },
    {0, 'o', 'o', 10},
    {0, 'n', 'n', 11},
    {0, 'd', 'd', 12},
    {1, 'j', 'a', 1 },
    {2, 'j', 'n', 6 },
    {2, 'j', 'l', 7 },
    {2, 'm', 'r', 3 },
    {2, 'm', 'y', 5 },
    {2, 'a', 'r', 4 },
    {2, 'a', 'g', 8 },
};

int month_of(const std::string& word) {
    std::string low = word;
    low.resize(3, ' ');
    for (char& c : low) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (const MonthRow& row : month_rows) {
        if (low[0] == row.first && low[row.place] == row.letter) {
            return row.month;
        }
    }
    return missing;
}

// "12:05 03-JUN-99": hour, minute, day, month, year as it is written.
void scan_date(const char* at, Date* date) {
    int hour = 0;
    int min = 0;
    int day = 0;
    int year = 0;
    if (!take_int(&at, &hour) || !take_char(&at, ':') || !take_int(&at, &min)) {
        return;
    }
    date->hour = hour;
    date->min = min;
    if (!take_int(&at, &day) || !take_char(&at, '-')) {
        return;
    }
    date->day = day;
    const std::string word(at, strnlen(at, 3));
    date->month = month_of(word);
    at += word.size();
    if (take_char(&at, '-') && take_int(&at, &year)) {
        date->year = year;
    }
}

struct TitleRow {
    const char* begin;
    const char* label;
    std::size_t date; // its column, from 0
};
constexpr TitleRow title_rows[] = {
    {"NOWrad Master", "NOWRad Radar Master Composite (Dbz)", 20},
    {"USRAD Hi",      "NOWRad Radar US Composite (Dbz)",     23},
};

void take_title(const std::string& title, NOWRad_info* info) {
    for (const TitleRow& row : title_rows) {
        if (title.compare(0, std::strlen(row.begin), row.begin) == 0) {
            copy_text(info->label, sizeof info->label, row.label);
            scan_date(title.c_str() + row.date, &info->date);
            return;
        }
    }
}

// --- Projection ---------------------------------------------------------------

// In double precision: the whole degrees of a projection come out whole, and a picture
// of the same projection is found to be one.
float degrees(float radians) {
    return static_cast<float>(static_cast<double>(radians) * rad_to_deg);
}

// Longitude and latitude of the centre of the top, a number, height and width of
// a cell.
bool take_latlon(Domain* domain) {
    float lon = 0;
    float top = 0;
    float unused = 0;
    float dy = 0;
    float dx = 0;
    if (!take_angle(&lon) || !take_angle(&top) || !take_angle(&unused) || !take_angle(&dy) ||
        !take_angle(&dx)) {
        return false;
    }
    domain->proj = proj_latlon;
    domain->dx = degrees(dx);
    domain->dy = degrees(dy);
    domain->clon = domain->plon = degrees(lon);
    domain->clat = degrees(top) - domain->dy * static_cast<float>(domain->ny - 1) / 2.0F;
    return true;
}

// True latitudes, reference, centre and spacing of a Lambert section. All files
// of the kind have the same centre and spacing, which theirs name loosely.
bool take_lambert(Domain* domain) {
    std::array<float, 8> raw{};
    for (float& number : raw) {
        if (!take_angle(&number)) {
            return false;
        }
    }
    MESS_print(mess_debug, "US SECT: %f %f = %f %f = %f %f = %f %f\n", static_cast<double>(raw[0]),
               static_cast<double>(raw[1]), static_cast<double>(raw[2]),
               static_cast<double>(raw[3]), static_cast<double>(raw[4]),
               static_cast<double>(raw[5]), static_cast<double>(raw[6]),
               static_cast<double>(raw[7]));
    domain->proj = proj_lambert;
    domain->param[1] = degrees(raw[0]);
    domain->param[0] = degrees(raw[1]);
    domain->plat = degrees(raw[2]);
    domain->plon = degrees(raw[3]);
    domain->param[2] = 1.0F;
    domain->clat = 38.69F;
    domain->clon = -96.03F;
    domain->dx = 0.0722F;
    domain->dy = 0.0859F;
    return true;
}

bool take_projection(Domain* domain) {
    switch (stream.bytes.get()) {
    case 'C':
        return take_latlon(domain) && domain->dx > 0 && domain->dy > 0;
    case 'L':
        return take_lambert(domain);
    default:
        return false;
    }
}

bool take_size(Domain* domain) {
    return take_number(&domain->ny) && take_number(&domain->nx) && domain->ny >= 1 &&
           domain->ny <= most_cells && domain->nx >= 1 && domain->nx <= most_cells;
}

bool take_header(NOWRad_info* info) {
    Domain& domain = info->domain;
    stream.is_one = take_tag(tag_comment);
    if (!stream.is_one) {
        return false;
    }
    const int comment = stream.bytes.get();
    if (comment == ByteSource::end || !stream.bytes.skip(static_cast<std::size_t>(comment) + 1)) {
        return false;
    }
    std::string title;
    if (!take_tag(tag_size) || !take_size(&domain) || !take_tag(tag_title) ||
        !stream.bytes.take(title_size, &title)) {
        return false;
    }
    take_title(title, info);
    return take_tag(tag_projection) && take_projection(&domain) && read_tag();
}

} // namespace

int NOWRad_header(std::FILE* ifile, NOWRad_info* info) {
    *info = {};
    DOM_init(&info->domain);
    stream = {};
    if (ifile == nullptr) {
        return 0;
    }
    stream.bytes.begin(ifile);
    if (take_header(info)) {
        return 1;
    }
    stream.data = {};
    return 0;
}

bool NOWRad_is_one() {
    return stream.is_one;
}

int NOWRad_rewind(std::FILE* ifile) {
    if (ifile == nullptr) {
        return 0;
    }
    std::rewind(ifile);
    NOWRad_info scratch;
    NOWRad_header(ifile, &scratch);
    return 1;
}

int NOWRad_line(std::FILE* ifile, int* line) {
    if (!stream.bytes.reads(ifile) || !at_tag(tag_line)) {
        return 0;
    }
    const int low = stream.bytes.get();
    const int high = stream.bytes.get();
    if (high == ByteSource::end) {
        return 0;
    }
    *line = low + 256 * high;
    MESS_print(mess_debug, "\rLine start:");
    MESS_print(mess_debug, "%4d\n", *line);
    stream.data = {};
    stream.tot_run = 0;
    stream.col_mask = 0;
    stream.pre = 1;
    return 1;
}

int NOWRad_get_packet(std::FILE* ifile, NOWRad_packet* packet) {
    ByteSource& bytes = stream.bytes;
    const int b = bytes.reads(ifile) ? bytes.get() : ByteSource::end;
    if (b == ByteSource::end) {
        return 0;
    }
    const int high = b >> 4;
    packet->value = static_cast<float>(b & 15) * level_dbz;
    packet->mask = stream.col_mask;
    const int pre = stream.pre;
    stream.pre = 1;
    if (high == 0xF) {
        if (pre == 0 && b == mark) {
            const int number = bytes.get();
            if (number > 0) {
                stream.data = {0, mark, number};
                return 0;
            }
        }
        stream.col_mask = b & 15;
        packet->run = 0;
        packet->value = 0.0F;
        return 1;
    }
    if (high >= 0xD) {
        const int first = bytes.get();
        const int second = high == 0xD ? bytes.get() : 0;
        if (first == ByteSource::end || second == ByteSource::end) {
            return 0;
        }
        packet->run = first + 256 * second + 1;
    } else {
        if (b == 0) {
            const int second = bytes.get();
            const int number = second == ByteSource::end ? ByteSource::end : bytes.get();
            if (second == mark && number > 0) {
                stream.data = {0, mark, number};
                return 0;
            }
            for (const int read : {second, number}) {
                if (read != ByteSource::end) {
                    bytes.back();
                }
            }
        }
        packet->run = high + 1;
        stream.pre = b;
    }
    stream.tot_run += packet->run;
    return 1;
}

void keep_nowrad(StateKeeper& keeper) {
    keeper.keep(stream);
}
