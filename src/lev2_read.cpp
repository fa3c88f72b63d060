// lev2_read: reader of WSR-88D Level II volumes: volume header, records, and
// the gates of a radial. State: the record at hand, the moment selected and
// the cuts met so far; the bytes are lev2_stream's. lev2_open_volume comes
// first.
// All numbers are big-endian.
//
//   volume header, 24 bytes          message header, 16 bytes, after a record's
//   0  12 file name                  prefix of 12 bytes
//   12 4  date, days                 0  2  message size, halfwords
//   16 4  time, milliseconds         2  1  channel
//   20 1  not used                   3  1  message type
//   21 3  site                       4  2  sequence number
//                                    6  2  date, days
//                                    8  4  time, milliseconds
//                                    12 2  segments
//                                    14 2  this segment
//
// The data header of a radial follows; offsets of moments count from it.
//
//   fixed (type 1, record 2432 bytes)     generic (type 31, twice the size field)
//   0  4  collection time                 0  4  site
//   4  2  collection date                 4  4  collection time
//   6  2  range, 0.1 km                   8  2  collection date
//   8  2  azimuth, coded                  10 2  radial number
//   10 2  radial number                   12 4  azimuth, float
//   12 2  radial status                   16 1  compression
//   14 2  elevation angle, coded          18 2  radial length
//   16 2  elevation number                20 1  azimuth spacing, 1: half a degree
//   18 2  first gate, reflectivity, m     21 1  radial status
//   20 2  first gate, Doppler, m          22 1  elevation number
//   22 2  gate length, reflectivity, m    23 1  sector number
//   24 2  gate length, Doppler, m         24 4  elevation angle, float
//   26 2  gates, reflectivity             28 1  blanking
//   28 2  gates, Doppler                  29 1  azimuth indexing
//   30 2  sector number                   30 2  blocks
//   32 4  calibration                     32 4  offset of each block
//   36 2  offset of reflectivity
//   38 2  of velocity                     blocks: a letter and a name of 3, then
//   40 2  of spectrum width               VOL  8 4 lat, 12 4 lon, 16 2 height,
//   42 2  Doppler resolution                   40 2 coverage pattern
//   44 2  coverage pattern                ELV  6 2 attenuation, 0.001
//   62 2  Nyquist velocity, 0.01 m/s      RAD  16 2 Nyquist velocity, 0.01 m/s
//   64 2  attenuation, 0.001              moments  8 2 gates, 10 2 first gate, m,
//   66 2  threshold, 0.1                       12 2 gate length, m, 19 1 word size,
//                                              20 4 scale, 24 4 offset, 28 words
#include "lev2.h"

#include "byte_reader.h"
#include "data_file.h"
#include "file_kind.h"
#include "files.h"
#include "lev2_cuts.h"
#include "lev2_stream.h"
#include "map_proj.h"
#include "nids.h"
#include "region.h"
#include "state_keeper.h"
#include "tools.h"
#include "units.h"
#include "zyrcty.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace {

// --- Constants and tables -----------------------------------------------------

constexpr std::size_t prefix_size = 12;
constexpr std::size_t mess_header_size = 16;
constexpr std::size_t data_header_at = prefix_size + mess_header_size;
constexpr std::size_t fixed_message_size = 2420;
constexpr int pattern_message = 5; // type of the message with the coverage pattern
static_assert(prefix_size + 2UL * 0xFFFF <= lev2_buffer_size, "a record fits the buffer");

// Of a message type 1, whose angles are coded in steps of an eighth of this.
constexpr double angle_unit = 0.0439453125;

// Blocks of a message type 31 in the order of their offsets.
// The first six have a place of their own, by which one without a name is known.
enum Place {
    place_vol,
    place_elev,
    place_rad,
    place_refl,
    place_vel,
    place_spect,
    place_zdr,
    place_phi,
    place_rho,
    place_cfp,
    num_blocks
};
constexpr int num_places = place_zdr;
constexpr std::array<std::string_view, num_blocks> block_names = {
    "VOL", "ELV", "RAD", "REF", "VEL", "SW ", "ZDR", "PHI", "RHO", "CFP"};
constexpr int max_blocks = 10;
constexpr std::size_t moment_head_size = 28;

struct Scale {
    float scale, offset;
};
constexpr Scale refl_fixed = {2.0F, 66.0F};
constexpr Scale vel_fine = {2.0F, 129.0F};
constexpr Scale vel_coarse = {1.0F, 129.0F};
constexpr Scale spect_fixed = {2.0F, 129.0F};
constexpr unsigned cfp_first_value = 8; // words below it say how gates were filtered
constexpr int resolution_fine = 2;      // of `vel_res`

constexpr LEV2_gates no_gates;

constexpr float default_lat = 38.98F; // of a site that is not known
constexpr float default_lon = -77.48F;
constexpr float max_lat = 90.0F;

constexpr int max_day = 2932896; // 31 December 9999
constexpr std::uint32_t ms_per_day = 86400000;

constexpr float step_nmi = 0.54F; // of the plot domain
constexpr float max_range = 100000.0F;

// --- State --------------------------------------------------------------------

using Moments = std::array<LEV2_gates, lev2_moments>;

constexpr int not_looked = -1;

struct State {
    int compress = 0;               // what the user says about the file
    bool exact = false;             // widths by the scale of their block
    char name[file_name_size] = ""; // the open file, or the one before
    bool told_kind = false;         // warnings given about it
    bool told_piece = false;        //
    bool told_site = false;         //
    bool told_end = false;          //
    bool walked = false;            // the caller passed a record since the header
    bool at_hand = false;           // `data` is the current record
    std::size_t size = 0;           // its bytes, with the prefix
    LEV2_data data;                 //
    Moments moments{};              // its gates, `count` 0 for a moment it lacks
    int scan_type = -1;             // moment selected
    int next_gate = 0;              //
    Lev2Cuts cuts;
    Lev2Pattern pattern;       // that the volume gave
    int last_cut = not_looked; // elevation number at the volume's end, see find_last_cut
};
State lev2;

// --- Gates --------------------------------------------------------------------

// Whether every word has a value that is a number.
bool is_scale(const LEV2_gates& gates) {
    return gates.scale != 0 && std::isfinite(gates.value(2)) &&
           std::isfinite(gates.value(gates.word_bytes == 1 ? 0xFF : 0xFFFF));
}

// The words of `count` gates at an offset of the radial, as many as it holds.
LEV2_gates take_gates(std::span<const std::uint8_t> radial, std::size_t at, int count,
                      LEV2_gates gates) {
    if (at == 0 || at >= radial.size() || count < 1 || !is_scale(gates)) {
        return {};
    }
    const int held = static_cast<int>(radial.size() - at) / gates.word_bytes;
    gates.count = std::min(count, held);
    const int size = gates.count * gates.word_bytes;
    gates.bytes = radial.subspan(at, static_cast<std::size_t>(size));
    return gates;
}

LEV2_gates scaled(float first_km, float size_km, Scale scale) {
    LEV2_gates gates;
    gates.first_km = first_km;
    gates.size_km = size_km;
    gates.scale = scale.scale;
    gates.offset = scale.offset;
    return gates;
}

// --- Fixed radials (type 1) ---------------------------------------------------

float coded_angle(int value) {
    return static_cast<float>(value / 8.0 * angle_unit);
}

float thousandths(int value) {
    return static_cast<float>(value / 1000.0);
}

void read_fixed(std::span<const std::uint8_t> radial, LEV2_data& d) {
    ByteReader r(radial);
    d.coll_time = r.i32be();
    d.mod_date = r.u16be();
    d.range = static_cast<float>(r.u16be()) / 10.0F;
    d.rad_az = coded_angle(r.u16be());
    d.rad_num = r.u16be();
    d.rad_status = r.u16be();
    d.elev_ang = coded_angle(r.u16be());
    d.elev_num = r.u16be();
    const int refl_km = r.i16be() / 1000; // whole kilometres
    const int vel_km = r.i16be() / 1000;
    d.first_refl = static_cast<float>(refl_km);
    d.first_vel = static_cast<float>(vel_km);
    d.refl_size = thousandths(r.u16be());
    d.vel_size = thousandths(r.u16be());
    d.num_refl = r.u16be();
    d.num_vel = r.u16be();
    d.sector_num = r.u16be();
    r.seek(36);
    d.refl_ptr = r.u16be();
    d.vel_ptr = r.u16be();
    d.spect_ptr = r.u16be();
    d.vel_res = static_cast<float>(r.u16be());
    d.cov_patt = r.u16be();
    r.seek(62);
    d.nyquist_vel = static_cast<float>(r.i16be() / 100.0);
    d.atmos_atten = thousandths(r.i16be());
    d.threshold_param = static_cast<float>(r.i16be() / 10.0);
    d.az_space = 1.0F;
}

Moments fixed_moments(std::span<const std::uint8_t> radial, const LEV2_data& d) {
    ByteReader r(radial);
    r.seek(18);
    const float refl_centre_km = thousandths(r.i16be());
    const float vel_centre_km = thousandths(r.i16be());
    const Scale vel = static_cast<int>(d.vel_res) == resolution_fine ? vel_fine : vel_coarse;
    const auto at = [](int offset) { return static_cast<std::size_t>(offset); };
    Moments m;
    m[lev2_refl] = take_gates(radial, at(d.refl_ptr), d.num_refl,
                              scaled(d.first_refl, d.refl_size, refl_fixed));
    m[lev2_vel] =
        take_gates(radial, at(d.vel_ptr), d.num_vel, scaled(d.first_vel, d.vel_size, vel));
    m[lev2_spect] = take_gates(radial, at(d.spect_ptr), d.num_vel,
                               scaled(d.first_vel, d.vel_size, spect_fixed));
    m[lev2_refl].centre_km = refl_centre_km;
    m[lev2_vel].centre_km = m[lev2_spect].centre_km = vel_centre_km;
    return m;
}

// --- Generic radials (type 31) ------------------------------------------------

// Offsets of the blocks by place, 0: absent. A block's own name decides what it
// is; one without a name is what the place of its offset says.
using Blocks = std::array<std::uint32_t, num_blocks>;

// The name after the letter that opens a block; empty for none.
std::string_view block_name(std::span<const std::uint8_t> radial, std::uint32_t at) {
    const auto* text = reinterpret_cast<const char*>(radial.data() + at);
    const auto in_name = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ';
    };
    const bool named = std::all_of(text, text + 4, in_name) && text[0] >= 'A' && text[1] >= 'A';
    return named ? std::string_view(text + 1, 3) : std::string_view();
}

Blocks find_blocks(std::span<const std::uint8_t> radial, int count) {
    Blocks named{};
    Blocks placed{};
    ByteReader r(radial);
    r.seek(32);
    for (int i = 0; i < std::clamp(count, num_places, max_blocks); ++i) {
        const std::uint32_t at = r.u32be();
        if (at == 0 || at >= radial.size() || radial.size() - at < moment_head_size) {
            continue;
        }
        const std::string_view name = block_name(radial, at);
        const auto* place = std::find(block_names.begin(), block_names.end(), name);
        if (place != block_names.end()) {
            std::uint32_t& slot = named[static_cast<std::size_t>(place - block_names.begin())];
            slot = slot == 0 ? at : slot;
        } else if (name.empty() && i < num_places) {
            placed[static_cast<std::size_t>(i)] = at;
        }
    }
    for (std::size_t i = 0; i < named.size(); ++i) {
        named[i] = named[i] == 0 ? placed[i] : named[i];
    }
    return named;
}

void read_generic(std::span<const std::uint8_t> radial, LEV2_data& d) {
    ByteReader r(radial);
    const auto id = r.bytes(4);
    std::copy(id.begin(), id.end(), d.id);
    d.coll_time = r.i32be();
    d.mod_date = r.u16be();
    d.rad_num = r.u16be();
    d.rad_az = r.f32be();
    d.comp = r.u8();
    r.skip(1);
    d.rad_len = r.u16be();
    d.az_space = r.u8() == 1 ? 0.5F : 1.0F;
    d.rad_status = r.u8();
    d.elev_num = r.u8();
    d.sector_num = r.u8();
    d.elev_ang = r.f32be();
    d.rad_blank = r.u8();
    d.az_index = r.u8();
    d.blk_count = r.u16be();
}

float finite_or(float v, float otherwise) {
    return std::isfinite(v) ? v : otherwise;
}

void read_volume_block(std::span<const std::uint8_t> block, LEV2_data& d) {
    ByteReader r(block);
    r.seek(8);
    d.lat = finite_or(r.f32be(), missing_f);
    d.lon = finite_or(r.f32be(), missing_f);
    d.elev = r.i16be();
    r.seek(40);
    d.cov_patt = r.u16be();
    // Terminal radars give thousandths of a degree.
    if (is_set(d.lat) && std::abs(d.lat) > max_lat) {
        d.lat /= 1000.0F;
        d.lon /= 1000.0F;
    }
}

LEV2_gates read_moment(std::span<const std::uint8_t> radial, std::uint32_t at) {
    if (at == 0) {
        return {};
    }
    ByteReader r(radial.subspan(at));
    r.seek(8);
    LEV2_gates gates;
    const int count = r.u16be();
    gates.first_km = gates.centre_km = thousandths(r.i16be());
    gates.size_km = thousandths(r.u16be());
    r.seek(19);
    gates.word_bytes = r.u8() == 16 ? 2 : 1;
    gates.scale = r.f32be();
    gates.offset = r.f32be();
    return take_gates(radial, at + moment_head_size, count, gates);
}

// Widths of one byte have one scale, whatever the block says, unless they are to be
// exact.
LEV2_gates read_spect(std::span<const std::uint8_t> radial, std::uint32_t at, bool exact) {
    LEV2_gates gates = read_moment(radial, at);
    if (gates.word_bytes == 1 && !exact) {
        gates.scale = spect_fixed.scale;
        gates.offset = spect_fixed.offset;
    }
    return gates;
}

LEV2_gates read_clutter(std::span<const std::uint8_t> radial, std::uint32_t at) {
    LEV2_gates gates = read_moment(radial, at);
    gates.first_value = cfp_first_value;
    return gates;
}

Moments read_blocks(std::span<const std::uint8_t> radial, LEV2_data& d, bool exact) {
    const Blocks at = find_blocks(radial, d.blk_count);
    d.vol_ptr = static_cast<int>(at[place_vol]);
    d.elev_ptr = static_cast<int>(at[place_elev]);
    d.rad_ptr = static_cast<int>(at[place_rad]);
    if (d.vol_ptr != 0) {
        read_volume_block(radial.subspan(at[place_vol]), d);
    }
    if (d.elev_ptr != 0) {
        ByteReader r(radial.subspan(at[place_elev]));
        r.seek(6);
        d.atmos_atten = thousandths(r.i16be());
    }
    if (d.rad_ptr != 0) {
        ByteReader r(radial.subspan(at[place_rad]));
        r.seek(16);
        d.nyquist_vel = static_cast<float>(r.i16be() / 100.0);
    }
    d.refl_ptr = static_cast<int>(at[place_refl]);
    d.vel_ptr = static_cast<int>(at[place_vel]);
    d.spect_ptr = static_cast<int>(at[place_spect]);
    d.zdr_ptr = static_cast<int>(at[place_zdr]);
    d.phi_ptr = static_cast<int>(at[place_phi]);
    d.rho_ptr = static_cast<int>(at[place_rho]);
    d.cfp_ptr = static_cast<int>(at[place_cfp]);
    return {read_moment(radial, at[place_refl]),        read_moment(radial, at[place_vel]),
            read_spect(radial, at[place_spect], exact), read_moment(radial, at[place_zdr]),
            read_moment(radial, at[place_phi]),         read_moment(radial, at[place_rho]),
            read_clutter(radial, at[place_cfp])};
}

void set_counts(const Moments& m, LEV2_data& d) {
    if (const LEV2_gates& refl = m[lev2_refl]; refl.count > 0) {
        d.num_refl = refl.count;
        d.first_refl = refl.first_km;
        d.refl_size = refl.size_km;
    }
    if (const LEV2_gates& vel = m[lev2_vel]; vel.count > 0) {
        d.num_vel = vel.count;
        d.first_vel = vel.first_km;
        d.vel_size = vel.size_km;
    }
}

// --- Records ------------------------------------------------------------------

void read_mess_header(std::span<const std::uint8_t> record, LEV2_data& d, std::size_t& size) {
    ByteReader r(record.subspan(prefix_size));
    const std::size_t halfwords = r.u16be();
    r.skip(1);
    d.type = r.u8();
    d.seq = r.u16be();
    d.date = r.u16be();
    d.time = r.i32be();
    d.num_seg = r.u16be();
    d.seg_num = r.u16be();
    const std::size_t message = d.type == lev2_radial_generic ? 2 * halfwords : fixed_message_size;
    size = prefix_size + message;
    MESS_print(mess_debug, "Block-type: %d size: %d seq: %d seg: %d nseg: %d\n", d.type,
               static_cast<int>(message), d.seq, d.seg_num, d.num_seg);
}

bool is_radial(const LEV2_data& d) {
    return d.type == lev2_radial_fixed || d.type == lev2_radial_generic;
}

void print_radial(const LEV2_data& d) {
    MESS_print(mess_debug, "Range: %.1f\n", d.range);
    MESS_print(mess_debug, "Rad azimuth: %.2f\n", d.rad_az);
    MESS_print(mess_debug, "Rad num: %d\n", d.rad_num);
    MESS_print(mess_debug, "Rad status: %d\n", d.rad_status);
    MESS_print(mess_debug, "Elev ang: %.2f\n", d.elev_ang);
    MESS_print(mess_debug, "Elev num: %d\n", d.elev_num);
    MESS_print(mess_debug, "Range to first refl: %d\n", static_cast<int>(d.first_refl));
    MESS_print(mess_debug, "Range to first vel: %d\n", static_cast<int>(d.first_vel));
    MESS_print(mess_debug, "Refl data size: %d\n", static_cast<int>(d.refl_size * 1000));
    MESS_print(mess_debug, "Doppler data size: %d\n", static_cast<int>(d.vel_size * 1000));
    MESS_print(mess_debug, "Num refl gates: %d\n", d.num_refl);
    MESS_print(mess_debug, "Num vel gates: %d\n", d.num_vel);
    MESS_print(mess_debug, "Sector num within cut: %d\n", d.sector_num);
    MESS_print(mess_debug, "Refl data ptr: %d\n", d.refl_ptr);
    MESS_print(mess_debug, "Dop data ptr: %d\n", d.vel_ptr);
    MESS_print(mess_debug, "Spect data ptr: %d\n", d.spect_ptr);
    MESS_print(mess_debug, "Doppler res: %d\n", static_cast<int>(d.vel_res));
    MESS_print(mess_debug, "Coverage patt: %d\n", d.cov_patt);
}

// Angles that are no numbers, or far outside a circle, leave a radial without
// moments.
bool angles_are_good(const LEV2_data& d) {
    constexpr float most = 720.0F;
    return std::abs(d.rad_az) <= most && std::abs(d.elev_ang) <= most; // false for no number
}

void read_radial(std::span<const std::uint8_t> radial, State& s) {
    LEV2_data& d = s.data;
    if (d.type == lev2_radial_fixed) {
        read_fixed(radial, d);
        s.moments = fixed_moments(radial, d);
    } else {
        read_generic(radial, d);
        s.moments = read_blocks(radial, d, s.exact);
        set_counts(s.moments, d);
    }
    if (!angles_are_good(d)) {
        d.rad_az = d.elev_ang = 0;
        s.moments = {};
    }
    const auto unless_absent = [&s](std::size_t type, int ptr) {
        return s.moments[type].count > 0 ? ptr : 0;
    };
    d.refl_ptr = unless_absent(lev2_refl, d.refl_ptr);
    d.vel_ptr = unless_absent(lev2_vel, d.vel_ptr);
    d.spect_ptr = unless_absent(lev2_spect, d.spect_ptr);
    d.zdr_ptr = unless_absent(lev2_zdr, d.zdr_ptr);
    d.phi_ptr = unless_absent(lev2_phi, d.phi_ptr);
    d.rho_ptr = unless_absent(lev2_rho, d.rho_ptr);
    d.cfp_ptr = unless_absent(lev2_cfp, d.cfp_ptr);
    if (MESS_check(mess_debug) != 0) {
        print_radial(d);
    }
}

// Tells once a file why its walk ends where it does, unless all was read.
// Always gives 0.
int tell_end(State& s, bool in_radial) {
    const char* why = nullptr;
    switch (lev2_stream_end()) {
    case Lev2End::damaged:
        why = "is damaged or not whole";
        break;
    case Lev2End::too_long:
        why = "is too long";
        break;
    default:
        why = in_radial ? "ends inside a radial" : nullptr;
        break;
    }
    if (why != nullptr && !s.told_end) {
        s.told_end = true;
        MESS_print(mess_warn, "LEV2_get_block: The volume %s:%s\n", why, s.name);
    }
    return 0;
}

// Result as LEV2_get_block.
int read_record(State& s) {
    s.at_hand = false;
    s.scan_type = -1;
    s.data = {};
    s.moments = {};
    auto record = lev2_record(data_header_at);
    if (record.size() < data_header_at) {
        return tell_end(s, false);
    }
    read_mess_header(record, s.data, s.size);
    record = lev2_record(s.size);
    if (record.size() < s.size) {
        return tell_end(s, is_radial(s.data));
    }
    s.at_hand = true;
    if (s.size < data_header_at) {
        return 1;
    }
    const auto message = record.subspan(data_header_at, s.size - data_header_at);
    if (is_radial(s.data)) {
        read_radial(message, s);
    } else if (s.data.type == pattern_message) {
        s.pattern = lev2_read_pattern(message);
    }
    return 1;
}

void next_record(State& s) {
    lev2_advance(s.size);
    s.at_hand = false;
    s.moments = {};
}

// The last cut, where the volume has as many units as its coverage pattern fills up to
// it, and a unit of its last ones says that they are of this cut: then no cut comes
// twice. 0 where that is not so, or can't be told without reading it all. To look into a
// unit costs half as much as to draw it, so the smallest is asked.
int find_last_cut(const Lev2Pattern& pattern) {
    const auto units = lev2_list_units();
    const int count = static_cast<int>(units.size());
    int last = pattern.count;
    while (last >= 1 && lev2_pattern_units(pattern, last) != count) {
        --last;
    }
    if (last < 1) {
        return 0;
    }
    const auto first = units.begin() + lev2_pattern_units(pattern, last - 1);
    const auto smallest =
        std::min_element(first, units.end(), [](const Lev2UnitPlace& a, const Lev2UnitPlace& b) {
            return a.size < b.size;
        });
    constexpr std::size_t number_at = data_header_at + 22;
    constexpr std::size_t type_at = prefix_size + 3;
    std::array<std::uint8_t, number_at + 1> head{};
    const bool fits = smallest != units.end() && lev2_unpack_head(*smallest, head) &&
                      head[type_at] == lev2_radial_generic && head[number_at] == last;
    return fits ? last : 0;
}

// --- Volume header ------------------------------------------------------------

Date date_of(std::int64_t day, std::int64_t ms) {
    Date date;
    if (day >= 1 && day <= max_day) {
        NIDS_julian_date(static_cast<int>(day), &date.year, &date.month, &date.day);
    }
    if (ms >= 0 && ms < ms_per_day) {
        NIDS_dec_time(static_cast<int>(ms / 1000), &date.hour, &date.min, &date.sec);
    }
    return date;
}

// The letters of a site; "" where there are others, as in a header left blank.
void copy_site(std::span<const std::uint8_t> letters, LEV2_info& info) {
    const bool good = std::all_of(letters.begin(), letters.end(), [](std::uint8_t c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    });
    const auto size = good ? letters.size() : 0;
    std::copy_n(letters.begin(), size, info.id);
    info.id[size] = '\0';
}

// Goes to the first radial; false when there is none. Records of other types
// are for nobody.
bool find_radial(State& s) {
    while (read_record(s) == 1) {
        if (is_radial(s.data)) {
            return true;
        }
        next_record(s);
    }
    return false;
}

void tell_kind(State& s) {
    if (lev2_stream_packed() != (s.compress != 0) && !s.told_kind) {
        s.told_kind = true;
        MESS_print(mess_warn, "LEV2_get_header: %s file, read as \"%s\":%s\n",
                   lev2_stream_packed() ? "A compressed" : "An uncompressed",
                   lev2_stream_packed() ? "lev2z" : "lev2", s.name);
    }
}

void tell_site(State& s, const LEV2_info& info, bool radial) {
    if (s.told_site) {
        return;
    }
    s.told_site = true;
    std::array<char, 60> position{};
    if (radial && is_set(s.data.lat) && is_set(s.data.lon)) {
        std::snprintf(position.data(), position.size(), " (the volume says %.3f,%.3f)",
                      static_cast<double>(s.data.lat), static_cast<double>(s.data.lon));
    }
    const char* const typed = info.id[0] == '\0' ? RES_get("identifier") : nullptr;
    MESS_print(mess_warn, "LEV2_get_header: Unknown site:\"%s\"%s, plotted at %.2f,%.2f\n",
               typed != nullptr ? typed : info.id, position.data(), static_cast<double>(info.lat),
               static_cast<double>(info.lon));
    if (info.id[0] == '\0') {
        MESS_print(mess_warn,
                   "LEV2_get_header: A site in the file's name (KTLX...) is taken, or -id KTLX\n");
    }
}

// Takes a site that the station file knows, by three letters or four.
bool take_site(std::string_view letters, LEV2_info& info) {
    if (letters.size() != 3 && letters.size() != 4) {
        return false;
    }
    const std::string id(letters.substr(letters.size() - 3));
    return CTY_get_loc("rad.cty", id.c_str(), &info.lat, &info.lon) == 1 &&
           copy_text(info.id, sizeof info.id, id.c_str()) == 0;
}

// The site of a volume that names none: the user's, or that in its file's name,
// a word of four capitals as in "KTLX19990503_235621.gz".
bool take_told_site(const State& s, LEV2_info& info) {
    const char* identifier = RES_get("identifier");
    if (identifier != nullptr && take_site(identifier, info)) {
        return true;
    }
    const char* const slash = std::strrchr(s.name, '/');
    std::string_view rest = slash == nullptr ? s.name : slash + 1;
    const auto is_letter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    const auto is_capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    while (!rest.empty()) {
        const auto* const end = std::find_if_not(rest.begin(), rest.end(), is_letter);
        const std::string_view word = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
        if (word.size() == 4 && std::all_of(word.begin(), word.end(), is_capital) &&
            take_site(word, info)) {
            MESS_print(mess_mess, "LEV2_get_header: No site in the volume, taken by its name:%s\n",
                       info.id);
            return true;
        }
        rest.remove_prefix(std::max<std::size_t>(word.size(), 1));
    }
    return false;
}

LEV2_info read_header(State& s) {
    LEV2_info info;
    const auto header = lev2_stream_header();
    ByteReader r(header);
    r.seek(12);
    const std::uint32_t day = r.u32be();
    const std::uint32_t ms = r.u32be();
    r.skip(1);
    copy_site(r.bytes(3), info);
    if (r.ok()) {
        info.date = date_of(day, ms);
    }
    info.lat = default_lat;
    info.lon = default_lon;
    const auto known = [&info] {
        return info.id[0] != '\0' && CTY_get_loc("rad.cty", info.id, &info.lat, &info.lon) == 1;
    };
    const bool found = known();
    if (found) {
        return info;
    }
    const bool radial = find_radial(s);
    if (radial && header.empty()) {
        info.date = date_of(s.data.mod_date, s.data.coll_time);
    }
    if (radial && info.id[0] == '\0' && s.data.type == lev2_radial_generic) {
        const std::array<std::uint8_t, 3> letters = {static_cast<std::uint8_t>(s.data.id[1]),
                                                     static_cast<std::uint8_t>(s.data.id[2]),
                                                     static_cast<std::uint8_t>(s.data.id[3])};
        copy_site(letters, info);
        if (known()) {
            return info;
        }
    }
    if (info.id[0] == '\0' && take_told_site(s, info)) {
        return info;
    }
    tell_site(s, info, radial);
    return info;
}

} // namespace

// --- The volume ---------------------------------------------------------------

int LEV2_set_compress(int val) {
    lev2.compress = val;
    return 0;
}

int LEV2_set_exact(int on) {
    lev2.exact = on != 0;
    return 0;
}

int lev2_open_volume(const char* filename) {
    FILE_ptr file(FILE_open_data(filename));
    const bool opened = file != nullptr;
    std::array<std::uint8_t, 512> area{};
    const auto head = opened ? FILE_head(file.get(), area) : std::span<const std::uint8_t>();
    lev2_stream_open(std::move(file));
    State fresh;
    fresh.compress = lev2.compress;
    fresh.exact = lev2.exact;
    if (std::strcmp(lev2.name, filename) == 0) { // what was reported is not reported again
        fresh.told_kind = lev2.told_kind;
        fresh.told_piece = lev2.told_piece;
        fresh.told_site = lev2.told_site;
        fresh.told_end = lev2.told_end;
    }
    lev2 = fresh;
    copy_text(lev2.name, sizeof lev2.name, filename);
    if (!opened) {
        MESS_print(mess_error, "LEV2_open_file: Unable to open file:%s\n", filename);
        return 0;
    }
    const char* input = file_kind(head).input;
    if (input == nullptr || std::strncmp(input, "lev2", 4) != 0) {
        lev2_stream_open(nullptr);
        MESS_print(mess_error, "LEV2_open_file: Unable to read file:%s\n", filename);
        tell_file_kind("LEV2_open_file", head);
        return 0;
    }
    return 1;
}

int LEV2_rewind_file() {
    LEV2_info info;
    return lev2_stream_is_open() ? (LEV2_get_header(&info), 1) : 0;
}

int LEV2_close_file() {
    if (!lev2_stream_is_open()) {
        return 0;
    }
    lev2_stream_open(nullptr);
    lev2.at_hand = false;
    lev2.moments = {};
    return 1;
}

int LEV2_get_header(LEV2_info* info) {
    if (!lev2_stream_is_open()) {
        return 0;
    }
    // Before the first step there is nothing to go back to.
    if (lev2.walked && !lev2_stream_rewind()) {
        MESS_print(mess_warn, "LEV2_get_header: Unable to go back:%s\n", lev2.name);
    }
    lev2.walked = lev2.at_hand = false;
    lev2.cuts = {};
    tell_kind(lev2);
    if (lev2_stream_header().empty() && lev2_stream_packed() && !lev2.told_piece) {
        lev2.told_piece = true;
        MESS_print(mess_warn, "LEV2_get_header: No volume header, read as a piece of a volume:%s\n",
                   lev2.name);
    }
    *info = read_header(lev2);
    return 0;
}

int LEV2_get_domain(float clat, float clon, float range, Domain* domain) {
    const float steps = range >= 1.0F ? std::min(range, max_range) : 1.0F; // no number: 1
    DOM_init(domain);
    domain->proj = proj_pstereo;
    domain->plat = domain->clat = clat;
    domain->plon = domain->clon = clon;
    domain->ny = static_cast<int>(2 * steps + 1);
    domain->nx = static_cast<int>(3 * steps + 1);
    domain->dx = static_cast<float>(map_stereo_factor(clat) * (step_nmi * km_per_nmi) / 100.0);
    domain->dy = domain->dx;
    return 0;
}

// --- Records ------------------------------------------------------------------

int LEV2_get_block(LEV2_data* data) {
    if (!lev2_stream_is_open()) {
        return 0;
    }
    const int result = read_record(lev2);
    *data = lev2.data;
    return result;
}

int LEV2_next_block() {
    if (!lev2.at_hand) {
        return 0;
    }
    if (is_radial(lev2.data)) {
        lev2_count_radial(lev2.cuts, lev2.data);
    }
    next_record(lev2);
    lev2.walked = true;
    return 1;
}

int LEV2_is_scan_done(int scan) {
    if (!lev2_stream_is_open() || lev2.at_hand || !lev2_is_walked(lev2.cuts, lev2.pattern, scan) ||
        lev2_units_walked() != lev2_pattern_units(lev2.pattern, scan)) {
        return 0;
    }
    if (lev2.last_cut == not_looked) {
        lev2.last_cut = find_last_cut(lev2.pattern);
    }
    return lev2.last_cut >= scan ? 1 : 0;
}

// --- Gates --------------------------------------------------------------------

int LEV2_set_data_type(int type) {
    lev2.scan_type = type >= 0 && type < lev2_moments ? type : -1;
    lev2.next_gate = 0;
    return LEV2_get_gates().count > 0 ? 1 : 0;
}

float LEV2_get_data() {
    const LEV2_gates& gates = LEV2_get_gates();
    return lev2.next_gate < gates.count ? gates.value(gates.word(lev2.next_gate++)) : lev2_below;
}

const LEV2_gates& LEV2_get_gates() {
    return lev2.scan_type < 0 ? no_gates : lev2.moments[static_cast<std::size_t>(lev2.scan_type)];
}

// --- Cuts ---------------------------------------------------------------------

std::span<const LEV2_cut> LEV2_get_cuts() {
    return lev2.cuts.rows();
}

void LEV2_list_cuts(unsigned level) {
    for (const LEV2_cut& cut : lev2.cuts.rows()) {
        MESS_print(level, "%s\n", lev2_cut_text(cut).c_str());
    }
}

int LEV2_warn_empty(int scan, int type) {
    const int moment = std::clamp(type, 0, lev2_moments - 1);
    const std::string why = lev2_empty_text(lev2.cuts, scan, moment);
    if (why.empty()) {
        return 0;
    }
    MESS_print(mess_warn, "LEV2_plot: %s\n", why.c_str());
    return 1;
}

void keep_lev2_read(StateKeeper& keeper) {
    keeper.keep(lev2);
}
