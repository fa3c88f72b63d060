// tools.cpp: lines and integers of text, byte order, small arithmetic, and
// identifiers of WMO station numbers. Owns the byte order state: call
// swap_setup before reading a file that has an order.
#include "tools.h"

#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "units.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

// Station number ranges with the prefix of their identifiers, counted from
// public station lists: where a block mixes prefixes, the most frequent one.
// Ascending, without overlap. A number in none has no prefix.
struct WmoRange {
    int first, last;
    const char* prefix;
};
// clang-format off
constexpr WmoRange wmo_ranges[] = {
    {1000, 1499, "EN"}, {2000, 2699, "ES"}, {2800, 2999, "EF"}, {3000, 3949, "EG"},
    {3950, 3999, "EI"}, {4000, 4099, "BI"}, {4100, 4399, "BG"}, {6000, 6199, "EK"},
    {6200, 6399, "EH"}, {6400, 6599, "EB"}, {6600, 6899, "LS"}, {7000, 7799, "LF"},
    {8000, 8499, "LE"}, {8500, 8599, "LP"}, {10000, 10399, "ET"}, {10400, 10599, "ED"},
    {10600, 10699, "ET"}, {10700, 10799, "ED"}, {10800, 10999, "ET"}, {11000, 11399, "LO"},
    {11400, 11799, "LK"}, {11800, 11999, "LZ"}, {12100, 12599, "EP"}, {12700, 13199, "LH"},
    {13200, 13699, "LY"}, {14000, 14199, "LJ"}, {14200, 14699, "LD"}, {15000, 15699, "LR"},
    {16000, 16599, "LI"}, {16600, 16799, "LG"}, {17000, 17699, "LT"}, {20600, 20899, "UO"},
    {21800, 23999, "UL"}, {24200, 24299, "UE"}, {24500, 25199, "UE"}, {25400, 25999, "UH"},
    {26000, 26799, "EY"}, {26800, 27999, "UM"}, {28200, 28999, "US"}, {29200, 31099, "UN"},
    {31200, 32599, "UH"}, {33000, 34999, "UK"}, {35100, 37699, "UA"}, {37700, 38999, "UT"},
    {40000, 40099, "OS"}, {40100, 40199, "LL"}, {40200, 40699, "OE"}, {40700, 40899, "OI"},
    {40900, 40999, "OA"}, {41000, 41199, "OE"}, {41200, 41299, "OO"}, {41300, 41499, "OY"},
    {41500, 41799, "OP"}, {41800, 41999, "VG"}, {42000, 42299, "VI"}, {42300, 42799, "VE"},
    {42800, 43099, "VA"}, {43100, 43599, "VO"}, {44200, 44399, "ZM"}, {44400, 44499, "VN"},
    {45000, 45099, "VH"}, {46600, 46899, "RC"}, {47000, 47099, "ZK"}, {47100, 47199, "RK"},
    {47400, 47899, "RJ"}, {47900, 47999, "RO"}, {48000, 48199, "VY"}, {48300, 48599, "VT"},
    {48600, 48699, "WM"}, {48800, 48899, "VV"}, {48900, 48999, "VL"}, {50500, 52899, "ZW"},
    {53400, 54999, "ZB"}, {56100, 57999, "ZP"}, {58200, 59999, "ZS"}, {60000, 60299, "GM"},
    {60300, 60699, "DA"}, {60700, 60799, "DT"}, {61000, 61099, "DR"}, {61200, 61299, "GA"},
    {61400, 61499, "GQ"}, {61600, 61799, "GO"}, {61800, 61999, "GU"}, {62000, 62499, "HE"},
    {62600, 63099, "HS"}, {63100, 63299, "HC"}, {63300, 63599, "HA"}, {63600, 63799, "HK"},
    {63800, 63899, "HT"}, {63900, 64399, "FZ"}, {64400, 64499, "FC"}, {64500, 64599, "FO"},
    {64600, 64699, "FE"}, {64700, 64799, "FT"}, {64800, 64999, "FK"}, {65000, 65399, "DN"},
    {65400, 65499, "DG"}, {65500, 65699, "DI"}, {66100, 66499, "FN"}, {67000, 67199, "FM"},
    {67200, 67399, "FQ"}, {67400, 67699, "FL"}, {67700, 67999, "FV"}, {68000, 68099, "FY"},
    {68100, 68999, "FA"}, {69000, 69999, "K"}, {70000, 70499, "PA"}, {71000, 71999, "C"},
    {72200, 74999, "K"}, {76000, 76899, "MM"}, {78000, 78199, "MY"}, {78200, 78399, "MU"},
    {78400, 78599, "MD"}, {78600, 78699, "MG"}, {78700, 78799, "MH"}, {78800, 78999, "TT"},
    {80000, 80399, "SK"}, {80400, 80499, "SV"}, {81000, 81199, "SY"}, {81200, 81499, "SM"},
    {82000, 83999, "SB"}, {84000, 84299, "SE"}, {84300, 84799, "SP"}, {85000, 85399, "SL"},
    {85400, 85999, "SC"}, {86000, 86299, "SG"}, {86300, 86699, "SU"}, {86900, 87999, "SA"},
    {88800, 89299, "SA"}, {89500, 89699, "NZ"}, {91000, 91499, "PH"}, {91500, 91599, "NW"},
    {91600, 91799, "NF"}, {91800, 91899, "NC"}, {91900, 91999, "NT"}, {92000, 92199, "AY"},
    {93000, 93999, "NZ"}, {94000, 94099, "AY"}, {94100, 95999, "Y"}, {96000, 96999, "WI"},
    {97000, 97999, "WA"}, {98000, 98999, "RP"},
};
// clang-format on

constexpr bool ranges_in_order() {
    int last = -1;
    for (const WmoRange& range : wmo_ranges) {
        if (range.first <= last || range.last < range.first || range.last > 99999) {
            return false;
        }
        last = range.last;
    }
    return true;
}
static_assert(ranges_in_order());

constexpr int no_station = 99999;
constexpr double earth_radius_km = 6371.22;

// Byte order of the file being read.
struct Order {
    int swap = 1; // 1: multi-byte items are reversed
};
Order order_state;

int reverse_items(void* data, std::size_t size, int count) {
    if (order_state.swap == 0) {
        return -1;
    }
    auto* at = static_cast<unsigned char*>(data);
    for (int i = 0; i < count; ++i, at += size) {
        std::reverse(at, at + size);
    }
    return 0;
}

// The value of the digits from `text` to its end; -1 for anything else.
int all_digits(const char* text, std::size_t count) {
    int number = -1;
    const char* at = text;
    if (std::strlen(text) != count || !std::all_of(text, text + count, is_digit) ||
        scan_int(&at, any_width, &number) == 0) {
        return -1;
    }
    return number;
}

// The first number with these last digits in a range of the prefix. Without
// one, the digits join the base of the first such range.
int number_of(const char* prefix, std::size_t prefix_length, int digits) {
    const int unit = prefix_length == 1 ? 10000 : 1000;
    int fallback = -1;
    for (const WmoRange& range : wmo_ranges) {
        if (std::strlen(range.prefix) != prefix_length ||
            std::strncmp(range.prefix, prefix, prefix_length) != 0) {
            continue;
        }
        for (int base = range.first / unit * unit; base <= range.last; base += unit) {
            const int number = base + digits;
            if (number >= range.first && number <= range.last) {
                return number;
            }
            if (fallback < 0) {
                fallback = number;
            }
        }
    }
    return fallback;
}

} // namespace

int fgetnline(std::FILE* stream, char* buffer, int n) {
    constexpr long longest = 64L << 20; // a line without end, as of /dev/zero, is the end
    long passed = 0;
    int length = 0;
    int c = std::getc(stream);
    if (c == EOF) {
        buffer[0] = '\0';
        return -1;
    }
    for (; c != EOF && c != '\n'; c = std::getc(stream)) {
        if (length < n) {
            buffer[length++] = static_cast<char>(c);
        }
        if (++passed > longest) {
            buffer[0] = '\0';
            return -1;
        }
    }
    buffer[length] = '\0';
    return length;
}

int fgetline(std::FILE* stream, char* buffer) {
    return fgetnline(stream, buffer, line_length);
}

int fgetstring(std::FILE* stream, char* buffer, int n) {
    return std::min(fgetnline(stream, buffer, n), 1);
}

int fskipline(std::FILE* stream) {
    char none[1];
    return fgetnline(stream, none, 0);
}

int swap_setup(int order) {
    constexpr bool big_host = std::endian::native == std::endian::big;
    switch (order) {
    case 1:
        order_state.swap = big_host ? 0 : 1;
        break;
    case 2:
        order_state.swap = big_host ? 1 : 0;
        break;
    default:
        order_state.swap = order < 0 ? 0 : 1;
        break;
    }
    return order_state.swap;
}

int swap_long(void* data) {
    return reverse_items(data, 4, 1);
}

int swap_short(void* data) {
    return reverse_items(data, 2, 1);
}

int swap_longs(void* data, int count) {
    return reverse_items(data, 4, count);
}

int swap_shorts(void* data, int count) {
    return reverse_items(data, 2, count);
}

int fread_long_swap(void* data, std::FILE* stream) {
    const auto items = static_cast<int>(std::fread(data, 4, 1, stream));
    if (items == 1) {
        swap_long(data);
    }
    return items;
}

int fread_short_swap(void* data, std::FILE* stream) {
    const auto items = static_cast<int>(std::fread(data, 2, 1, stream));
    if (items == 1) {
        swap_short(data);
    }
    return items;
}

int float2int(float value) {
    if (value == 0 || !std::isfinite(value)) {
        return 0;
    }
    const double size = std::abs(static_cast<double>(value));
    int e = static_cast<int>(std::floor(std::log10(size)));
    int mantissa = static_cast<int>(std::lround(size / std::pow(10.0, e - 1)));
    if (mantissa > 99) { // rounded up to the next power of ten
        mantissa = 10;
        ++e;
    }
    const int code = 100 * (e < 0 ? e + 10 : e) + mantissa;
    return value < 0 ? -code : code;
}

float linear_interp(float x, float x1, float x2, float y1, float y2) {
    return x1 == x2 ? y1 : y1 + (x - x1) * (y2 - y1) / (x2 - x1);
}

float calc_earth_dist(float lat1, float lon1, float lat2, float lon2) {
    const double p1 = lat1 * deg_to_rad;
    const double p2 = lat2 * deg_to_rad;
    const double half_lat = std::sin((p2 - p1) / 2);
    const double half_lon = std::sin((static_cast<double>(lon2) - lon1) * deg_to_rad / 2);
    const double h = half_lat * half_lat + std::cos(p1) * std::cos(p2) * half_lon * half_lon;
    return static_cast<float>(2 * earth_radius_km * std::asin(std::sqrt(std::min(h, 1.0))));
}

char* wmo_to_id(char* buffer, int number) {
    constexpr std::size_t size = 12;
    for (const WmoRange& range : wmo_ranges) {
        if (number < range.first || number > range.last) {
            continue;
        }
        if (range.prefix[1] == '\0') {
            std::snprintf(buffer, size, "%s%4.4d", range.prefix, number % 10000);
        } else {
            std::snprintf(buffer, size, "%s%3.3d", range.prefix, number % 1000);
        }
        return buffer;
    }
    std::snprintf(buffer, size, "%5.5d", number);
    return buffer;
}

int id_to_wmo(const char* identifier, int* number) {
    *number = -1;
    if (identifier == nullptr || std::strlen(identifier) != 5) {
        return 0;
    }
    *number = all_digits(identifier, 5);
    for (std::size_t letters = 1; letters <= 2 && *number < 0; ++letters) {
        const int digits = all_digits(identifier + letters, 5 - letters);
        if (digits >= 0) {
            *number = number_of(identifier, letters, digits);
        }
    }
    return *number >= 0 && *number != no_station ? 1 : 0;
}

void keep_tools(StateKeeper& keeper) {
    keeper.keep(order_state);
}
