// kavrad: the reader of KAVRAD mosaics. A record of 52 bytes at offset 1996,
// the image after it:
//
//   offset  size  field
//   14      1     "C": values of type 1
//   16      12    hour, minute, second, day, month, year, two columns each
//   38      1     10: the coarse grid
//   42      2     start, high byte first
//   44      2     end, high byte first
//
// State: the stream, and the value and its kind that the next packet may keep.
// KAVRAD_header must have been called.
#include "kavrad.h"

#include "byte_source.h"
#include "map_proj.h"
#include "region.h"
#include "state_keeper.h"
#include "text_scan.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <string>

namespace {

constexpr std::size_t record_at = 1996;
constexpr std::size_t record_size = 52;
constexpr float no_echo = -100.0F;

struct Stream {
    ByteSource bytes;
    int type = 0;
    float value = no_echo;
    bool whole = false; // the record was there
    bool ended = false; // the mark of the image's end was met
};
Stream stream;

struct Grid {
    int nx, ny;
    float dx, dy; // degrees
};
constexpr Grid coarse = {2560, 2880, 0.0257812F, 0.0171874F};
constexpr Grid fine = {5120, 5760, 0.0128906F, 0.0085937F};
constexpr int coarse_mark = 10;

// Two columns as a number, missing for none; either may be blank.
int two_columns(const char* at) {
    int value = 0;
    bool any = false;
    for (int i = 0; i < 2; ++i) {
        if (is_digit(at[i])) {
            value = value * 10 + (at[i] - '0');
            any = true;
        } else if (at[i] != ' ') {
            return missing;
        }
    }
    return any ? value : missing;
}

void take_date(const char* at, Date* date) {
    int* const fields[] = {&date->hour, &date->min,   &date->sec,
                           &date->day,  &date->month, &date->year};
    for (int* field : fields) {
        *field = two_columns(at);
        at += 2;
    }
    if (is_set(date->year)) {
        date->year += date->year < 50 ? 2000 : 1900;
    }
}

int u16(const std::string& bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]) * 256 + static_cast<std::uint8_t>(bytes[at + 1]);
}

// dBZ of the low six bits of a byte; `value` stays where they mean none.
float value_of(int c, int type, float value) {
    if (type == 1) {
        return c == 0  ? no_echo
               : c < 4 ? static_cast<float>((c + 1) * 10)
               : c < 7 ? static_cast<float>((c - 3) * 5 + 40)
                       : value;
    }
    if (c == 16) {
        return no_echo;
    }
    // Each sixteen codes begin a hundred of their own.
    return c > 48 ? value
                  : static_cast<float>(c == 32   ? 100
                                       : c == 48 ? 200
                                       : c < 16  ? c * 5
                                       : c < 32  ? (c - 16) * 5 + 100
                                                 : (c - 32) * 5 + 200);
}

} // namespace

int KAVRAD_header(std::FILE* ifile, KAVRAD_info* info) {
    *info = {};
    DOM_init(&info->domain);
    stream = {};
    if (ifile == nullptr) {
        return 0;
    }
    stream.bytes.begin(ifile);
    std::string record;
    stream.whole = stream.bytes.skip(record_at) && stream.bytes.take(record_size, &record);
    record.resize(record_size, '\0');

    const Grid& grid = record[38] == coarse_mark ? coarse : fine;
    Domain& domain = info->domain;
    domain.proj = proj_latlon;
    domain.clat = 39.0F;
    domain.clon = -96.0F;
    domain.nx = grid.nx;
    domain.ny = grid.ny;
    domain.dx = grid.dx;
    domain.dy = grid.dy;
    copy_text(info->label, sizeof info->label, "KAV Radar Master Grid");
    if (stream.whole) {
        take_date(record.c_str() + 16, &info->date);
        info->start = u16(record, 42);
        info->end = u16(record, 44);
        info->type = record[14] == 'C' ? 1 : 0;
    }
    stream.type = info->type;
    return 1;
}

int KAVRAD_rewind(std::FILE* ifile) {
    if (ifile == nullptr) {
        return 0;
    }
    std::rewind(ifile);
    KAVRAD_info scratch;
    KAVRAD_header(ifile, &scratch);
    return 1;
}

int KAVRAD_get_packet(std::FILE* ifile, KAVRAD_packet* packet) {
    if (!stream.whole || !stream.bytes.reads(ifile)) {
        return 0;
    }
    const int b = stream.bytes.get();
    switch (b) {
    case 0x21:
        stream.ended = true;
        return 0;
    case ByteSource::end:
        return 0;
    case 0x22:
        return 1;
    case 0x23:
        packet->run = -1;
        break;
    case 0x24: {
        const int run = stream.bytes.get();
        if (run == ByteSource::end) {
            return 0;
        }
        packet->run = run;
        break;
    }
    default:
        if (b < 32) {
            packet->run = b;
        } else {
            packet->run = b / 64;
            stream.value = value_of(b & 63, stream.type, stream.value);
        }
        break;
    }
    packet->value = stream.value;
    return 1;
}

bool KAVRAD_has_ended() {
    return stream.ended;
}

void keep_kavrad(StateKeeper& keeper) {
    keeper.keep(stream);
}
