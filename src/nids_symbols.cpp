// nids_symbols: the packets of storm symbols of a NIDS product. State: whether they
// are wanted, and how far the open packet is read; NIDS_packet opens one.
//
// After its code a packet has its length in bytes, then records of halfwords; i and
// j are quarters of a kilometre east and north of the radar, in packet 21 eighths:
//
//   code        records
//   2           i j, letters to the end: one that stands for a symbol
//   3, 11       i j radius: mesocyclone, correlated shear
//   12, 26      i j: tornado vortex at the ground, elevated
//   13, 14      i j: hail, probable hail
//   15          i j, two letters: name of a storm
//   19          i j, percent of hail, of severe hail, inches: -999 not known
//   20          i j type attribute: a point feature, by its type
//   23, 24      packets 2, 6 and 25 one in the other: past and forecast track
//   25          i j radius: circle of a forecast
//   6           i j, then i j of each end: lines (only within 23 and 24)
//   21          two letters, i j, then lists of a code, two bytes of count and of
//               the newest one's place from 1, and a number of each volume
//   22          no length: a byte of count, a byte, and so many halfwords
//   28, 29      a halfword, a length of 4 bytes: passed over
#include "nids_impl.h"

#include "byte_reader.h"
#include "state_keeper.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr int packet_special = 2;
constexpr int packet_lines = 6;
constexpr int packet_past = 23;
constexpr int packet_forecast = 24;
constexpr int packet_trend = 21;
constexpr int packet_volumes = 22;
constexpr int packet_generic = 28;
constexpr int packet_generic_alt = 29;

struct State {
    NidsSource source{};
    bool wanted = false;
    int outer = 0;       // code of the packet: 23, 24, or that of the records
    int code = 0;        // of the records that are read
    long outer_left = 0; // bytes of the packet after those records
    long left = 0;       // bytes of the records not yet read
    bool begun = false;  // a line has its first point
    float x = 0, y = 0;  // the end of the line so far
};
State state;

struct Layout {
    int code;
    int size; // of a record, or of the part of it that must be there
    NidsSymbol kind;
};
constexpr Layout layouts[] = {
    {packet_special, 4,  NidsSymbol::cell       },
    {3,              6,  NidsSymbol::mesocyclone},
    {packet_lines,   4,  NidsSymbol::past_line  },
    {11,             6,  NidsSymbol::shear      },
    {12,             4,  NidsSymbol::vortex     },
    {13,             4,  NidsSymbol::hail       },
    {14,             4,  NidsSymbol::hail       },
    {15,             6,  NidsSymbol::name       },
    {19,             10, NidsSymbol::hail       },
    {20,             8,  NidsSymbol::mesocyclone},
    {packet_trend,   6,  NidsSymbol::cell       },
    {25,             6,  NidsSymbol::circle     },
    {26,             4,  NidsSymbol::high_vortex},
};

const Layout* find_layout(int code) {
    const auto* found = std::find_if(std::begin(layouts), std::end(layouts),
                                     [code](const Layout& row) { return row.code == code; });
    return found == std::end(layouts) ? nullptr : found;
}

// Kinds of a point feature by its type from 1 on. Types 7 and 8 are not used.
constexpr NidsSymbol features[] = {
    NidsSymbol::mesocyclone, // continued from the volume before
    NidsSymbol::mesocyclone,
    NidsSymbol::vortex, // continued
    NidsSymbol::vortex,
    NidsSymbol::high_vortex, // continued
    NidsSymbol::high_vortex,     NidsSymbol::cell,        NidsSymbol::cell,
    NidsSymbol::low_mesocyclone, NidsSymbol::mesocyclone, NidsSymbol::weak_mesocyclone,
};

// Symbols that a packet 2 says by a letter.
struct Letter {
    char letter;
    NidsSymbol kind;
};
constexpr Letter letters[] = {
    {'!', NidsSymbol::past    },
    {'"', NidsSymbol::cell    },
    {'#', NidsSymbol::forecast},
    {'$', NidsSymbol::past    },
    {'%', NidsSymbol::forecast},
};

constexpr float quarter_km = 0.25F;
constexpr float eighth_km = 0.125F;
constexpr int hail_positive = 100; // percent, of packets that say it in a word
constexpr int hail_probable = 50;

// The next `n` bytes of the records. Whether they were all there.
template <std::size_t N> bool take(FILE* ifile, std::array<std::uint8_t, N>& area, int n) {
    if (n > state.left || state.source.read(area.data(), n, ifile) < 1) {
        return false;
    }
    state.left -= n;
    return true;
}

int pass_over_rest(FILE* ifile) {
    const long rest = state.left;
    state.left = 0;
    return state.source.skip(ifile, rest);
}

// Opens the next packet inside one of a track. Returns 1; 0 when there is none; -1
// at the end of the stream.
int next_inner(FILE* ifile) {
    constexpr int size = 4;
    std::array<std::uint8_t, size> area{};
    state.left = state.outer_left;
    state.outer_left = 0;
    if (state.left < size) {
        return pass_over_rest(ifile) < 1 ? -1 : 0;
    }
    if (!take(ifile, area, size)) {
        return -1;
    }
    ByteReader reader(area);
    state.code = reader.u16be();
    const long inner = std::min<long>(reader.u16be(), state.left);
    state.outer_left = state.left - inner;
    state.left = inner;
    state.begun = false;
    return 1;
}

// What the lists of a trend say of the newest volume. Returns 1; -1 at the end of
// the stream.
int take_trends(FILE* ifile, NIDS_symbol* symbol) {
    std::array<std::uint8_t, 4> head{};
    std::array<std::uint8_t, 510> values{}; // as many as a byte can count
    while (state.left >= 4) {
        if (!take(ifile, head, 4)) {
            return -1;
        }
        ByteReader reader(head);
        const int code = reader.u16be();
        const int count = reader.u8();
        const int newest = reader.u8();
        if (2L * count > state.left) {
            break;
        }
        if (count == 0) {
            continue;
        }
        if (!take(ifile, values, 2 * count)) {
            return -1;
        }
        ByteReader list(values);
        list.skip(2 * static_cast<std::size_t>(std::clamp(newest, 1, count) - 1));
        const int value = list.u16be();
        constexpr int flag = 1000; // added where the top is above the highest beam
        switch (code) {
        case 1:
            symbol->top = static_cast<float>(value % flag) / 10.0F;
            break;
        case 4:
            symbol->hail = value;
            break;
        case 5:
            symbol->shail = value;
            break;
        default:
            break;
        }
    }
    return pass_over_rest(ifile) < 1 ? -1 : 1;
}

// The letter of a symbol, and past what may follow it.
int take_letter(FILE* ifile, NIDS_symbol* symbol) {
    std::array<std::uint8_t, 1> letter{};
    if (state.left > 0 && !take(ifile, letter, 1)) {
        return -1;
    }
    for (const Letter& row : letters) {
        if (row.letter == static_cast<char>(letter[0])) {
            symbol->kind = row.kind;
        }
    }
    return pass_over_rest(ifile) < 1 ? -1 : 1;
}

void set_name(NIDS_symbol* symbol, ByteReader& reader) {
    symbol->name[0] = static_cast<char>(reader.u8());
    symbol->name[1] = static_cast<char>(reader.u8());
}

// A record by its layout; `area` holds the part that must be there. Returns 1; 0
// where it is no symbol of its own; -1 at the end of the stream.
int take_record(FILE* ifile, const Layout& layout, ByteReader reader, NIDS_symbol* symbol) {
    *symbol = {};
    symbol->kind = layout.kind;
    const bool trend = layout.code == packet_trend;
    const float unit = trend ? eighth_km : quarter_km;
    if (trend) {
        set_name(symbol, reader);
    }
    symbol->x = unit * static_cast<float>(reader.i16be());
    symbol->y = unit * static_cast<float>(reader.i16be());
    switch (layout.code) {
    case packet_special:
        return take_letter(ifile, symbol);
    case packet_lines: {
        symbol->kind =
            state.outer == packet_past ? NidsSymbol::past_line : NidsSymbol::forecast_line;
        symbol->x2 = symbol->x;
        symbol->y2 = symbol->y;
        symbol->x = state.x;
        symbol->y = state.y;
        state.x = symbol->x2;
        state.y = symbol->y2;
        const bool begun = state.begun;
        state.begun = true;
        return begun ? 1 : 0;
    }
    case 13:
    case 14:
        symbol->hail = hail_positive;
        symbol->shail = layout.code == 13 ? hail_positive : hail_probable;
        return 1;
    case 15:
        set_name(symbol, reader);
        return 1;
    case 19:
        symbol->hail = reader.i16be();
        symbol->shail = reader.i16be();
        symbol->size = static_cast<float>(reader.i16be());
        return 1;
    case 20: {
        const int type = reader.i16be();
        symbol->radius = quarter_km * static_cast<float>(reader.i16be());
        symbol->kind = type >= 1 && type <= static_cast<int>(std::size(features))
                           ? features[type - 1]
                           : NidsSymbol::cell;
        return 1;
    }
    case packet_trend:
        return take_trends(ifile, symbol);
    default:
        symbol->radius = quarter_km * static_cast<float>(reader.i16be()); // 0 past the end
        return 1;
    }
}

} // namespace

bool nids_is_symbol_packet(int code) {
    return state.wanted &&
           ((code != packet_lines && find_layout(code) != nullptr) || code == packet_past ||
            code == packet_forecast || code == packet_volumes || code == packet_generic ||
            code == packet_generic_alt);
}

int nids_open_symbols(FILE* ifile, int code, const NidsSource& source) {
    const bool wanted = state.wanted;
    state = {};
    state.source = source;
    state.wanted = wanted;
    state.outer = state.code = code;
    std::array<std::uint8_t, 6> area{};
    const bool generic = code == packet_generic || code == packet_generic_alt;
    const int size = generic ? 6 : 2;
    if (source.read(area.data(), size, ifile) < 1) {
        return -1;
    }
    ByteReader reader(area);
    if (generic) {
        reader.skip(2);
        state.left = reader.u32be();
        MESS_print(mess_debug, "Generic Data:%d\n", code);
    } else if (code == packet_volumes) {
        state.left = 2L * reader.u8();
        MESS_print(mess_debug, "Volume Scan Times:%d\n", code);
    } else {
        state.left = reader.u16be();
        MESS_print(mess_debug, "Storm Symbol Data:%d\n", code);
    }
    MESS_print(mess_debug, "Number of bytes: %ld\n", state.left);
    if (code == packet_past || code == packet_forecast) {
        state.outer_left = state.left;
        state.left = 0;
    }
    return 1;
}

int NIDS_take_symbols(int on) {
    state.wanted = on != 0;
    return 0;
}

int NIDS_is_symbol(int code) {
    return nids_is_symbol_packet(code) ? 1 : 0;
}

int NIDS_get_symbol(FILE* ifile, NIDS_symbol* symbol) {
    std::array<std::uint8_t, 10> area{};
    for (;;) {
        const Layout* layout = find_layout(state.code);
        if (layout == nullptr || state.left < layout->size) {
            if (pass_over_rest(ifile) < 1) {
                return -1;
            }
            const int inner = next_inner(ifile);
            if (inner < 1) {
                return inner;
            }
            continue;
        }
        if (!take(ifile, area, layout->size)) {
            return -1;
        }
        const std::span<const std::uint8_t> record(area.data(),
                                                   static_cast<std::size_t>(layout->size));
        const int result = take_record(ifile, *layout, ByteReader(record), symbol);
        if (result != 0) {
            return result;
        }
    }
}

void keep_nids_symbols(StateKeeper& keeper) {
    keeper.keep(state);
}
