// lev2.h: the reader of WSR-88D Level II volumes (base data: reflectivity,
// velocity, spectrum width and the moments of two polarizations, radial by
// radial).
//
// One volume is open at a time. A walk:
//
//   LEV2_open_file, LEV2_get_header
//   while LEV2_get_block gives a record
//       LEV2_set_data_type picks a moment of a radial; then LEV2_get_gates for
//       all of its gates at once, or LEV2_get_data gate by gate
//       LEV2_next_block, and LEV2_is_scan_done when one scan is wanted
//   LEV2_list_cuts or LEV2_warn_empty report what the walk met; LEV2_close_file
#pragma once

#include "zyr.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// --- The volume ---------------------------------------------------------------

// What the header of a volume says.
struct LEV2_info {
    char id[10] = {};                       // site, three letters; empty: not known
    float lat = missing_f, lon = missing_f; // its position, degrees
    Date date;                              // unset where the header holds no date
};

// Kinds of input, of LEV2_set_compress: 0 plain records, otherwise bzip2 units.
// It is what the user says; a file of the other kind is read as what it is,
// with a warning. Returns 0.
int LEV2_set_compress(int val);
// Whether spectrum width goes by the scale of its block (1) or by the one that it has
// always had (0, at the start). Returns 0.
int LEV2_set_exact(int on);
// Opens a file, which may also be packed by gzip, and closes the one before.
// Returns 1; 0 with a message when it does not open.
// LEV2_open_file (lev2_plt) also sets the colour bar, unless it is refused.
int lev2_open_volume(const char* filename);
int LEV2_open_file(const char* filename);
// Start the volume over, close it. Return 1; 0 with no file open.
int LEV2_rewind_file();
int LEV2_close_file();
// Reads the volume header and looks up the site; the walk starts after it, at
// the first radial if that was needed to know the site. A volume that names none
// has that of `identifier`, or of the file's name. A site that is not in
// the station file has the position 38.98, -77.48, with a warning. Nothing is
// done with no file open. The date's label is the plotter's. Returns 0.
int LEV2_get_header(LEV2_info* info);
// Plot domain around a site, `range` grid steps of 0.54 nautical miles (below
// 1: 1) to the top and bottom. Returns 0.
int LEV2_get_domain(float clat, float clon, float range, Domain* domain);

// --- Records --------------------------------------------------------------------

constexpr int lev2_radial_fixed = 1;    // message type of a radial of three moments
constexpr int lev2_radial_generic = 31; // of one made of blocks

constexpr int lev2_refl = 0;  // moments: reflectivity, dBZ
constexpr int lev2_vel = 1;   // velocity, m/s
constexpr int lev2_spect = 2; // spectrum width, m/s
constexpr int lev2_zdr = 3;   // differential reflectivity, dB; this and what follows: generic only
constexpr int lev2_phi = 4;   // differential phase, degrees
constexpr int lev2_rho = 5;   // correlation coefficient
constexpr int lev2_cfp = 6;   // clutter filter power removed, dB
constexpr int lev2_moments = 7;

struct LEV2_moment_name {
    const char* name;
    int decimals; // of its values in print
};
constexpr std::array<LEV2_moment_name, lev2_moments> lev2_names = {
    {
     {"reflectivity", 1},
     {"velocity", 1},
     {"spectrum width", 1},
     {"differential reflectivity", 1},
     {"differential phase", 1},
     {"correlation coefficient", 2},
     {"clutter filter power", 1},
     }
};

// One record. Fields after `seg_num` are of radials; "generic" ones are of
// type 31 only, "fixed" ones of type 1 only.
struct LEV2_data {
    char id[5] = {};                        // site (generic)
    float lat = missing_f, lon = missing_f; // site, degrees (generic)
    int elev = missing;                     // site height, metres (generic)
    int code = missing;                     // not assigned
    int type = 0;                           // message type
    int seq = 0;                            // sequence number
    int date = 0, time = 0;                 // message: days (1: 1 January 1970), milliseconds
    int num_seg = 0, seg_num = 0;           // segments, this segment
    int coll_time = 0, mod_date = 0;        // collection, as `time` and `date`
    float range = 0;                        // unambiguous range, km (fixed)
    float rad_az = 0;                       // azimuth, degrees
    int rad_num = 0;                        // number of the radial
    int rad_status = 0;                     // 0 starts an elevation, 3 a volume
    int rad_len = 0;                        // bytes (generic)
    float az_space = 0;                     // azimuth spacing, degrees
    int comp = 0;                           // compression flag (generic)
    float elev_ang = 0;                     // elevation angle, degrees
    int elev_num = 0;                       // elevation number within the volume
    int rad_blank = 0, az_index = 0;        // (generic)
    int blk_count = 0;                      // data blocks (generic)
    float first_refl = missing_f, first_vel = missing_f; // first gate, km
    float refl_size = missing_f, vel_size = missing_f;   // gate length, km
    int num_refl = missing, num_vel = missing;           // gates
    int sector_num = 0;
    // Offsets of the moments, 0: the radial has no such moment.
    int refl_ptr = 0, vel_ptr = 0, spect_ptr = 0;
    int zdr_ptr = 0, phi_ptr = 0, rho_ptr = 0, cfp_ptr = 0; // (generic)
    int vol_ptr = 0, elev_ptr = 0, rad_ptr = 0;             // of other blocks (generic)
    float vel_res = 0;                                      // Doppler resolution code (fixed)
    int cov_patt = 0;                                       // volume coverage pattern
    float nyquist_vel = 0;                                  // m/s
    float atmos_atten = 0;
    float threshold_param = 0; // (fixed)
};

// Reads the headers of the record at hand; records of other types than the two
// of radials give their type alone. Returns 1; 0 at the end of the volume or
// where it is damaged, with a warning if it ends inside a record.
int LEV2_get_block(LEV2_data* data);
// Goes to the next record. Returns 1; 0 with no record at hand.
int LEV2_next_block();
// Between two records: 1 when the walk has met all radials of a scan, and the volume
// shows that no others of its number follow, so that nothing need be unpacked any
// more. 0 where they may. Only packed volumes whose units are those of the coverage
// pattern that they give in front can show it.
int LEV2_is_scan_done(int scan);

// --- Gates ----------------------------------------------------------------------

constexpr float lev2_below = -100.0F; // value of word 0: below the threshold
constexpr float lev2_folded = -90.0F; // of word 1: range folded

// Selects a moment of the radial at hand, at its first gate. Returns 1; 0 when
// the radial does not have it.
int LEV2_set_data_type(int type);
// The next gate's value; lev2_below after the last.
float LEV2_get_data();

// The gates of the selected moment as they lie in the record: valid until
// LEV2_next_block. A word is one byte, or two, big-endian.
struct LEV2_gates {
    std::span<const std::uint8_t> bytes; // count * word_bytes of them
    int count = 0;                       // gates, never more than the record holds
    int word_bytes = 1;                  // 1 or 2
    float first_km = 0, size_km = 0;     // distance of the first gate, gate length
    float centre_km = 0;                 // of the first gate's centre, to the metre
    float scale = 1, offset = 0;         // value = (word - offset) / scale, always finite
    unsigned first_value = 2;            // words below it are no values

    [[nodiscard]] unsigned word(int i) const {
        const auto at = static_cast<std::size_t>(i);
        return word_bytes == 1 ? bytes[at] : bytes[2 * at] * 256U + bytes[2 * at + 1];
    }
    [[nodiscard]] float value(unsigned word) const {
        if (word < first_value) {
            return word == 1 && first_value == 2 ? lev2_folded : lev2_below;
        }
        return (static_cast<float>(word) - offset) / scale;
    }
};
// `count` is 0 unless LEV2_set_data_type returned 1 for this radial.
const LEV2_gates& LEV2_get_gates();

// --- Cuts -----------------------------------------------------------------------

// What the walk since LEV2_get_header has met of one elevation number.
struct LEV2_cut {
    int num = 0;     // elevation number
    float angle = 0; // mean of its radials, degrees
    int radials = 0;
    std::array<int, lev2_moments> moments{}; // radials that have the moment
};
constexpr int lev2_max_cuts = 64; // further elevation numbers are not kept

std::span<const LEV2_cut> LEV2_get_cuts();
// A line for each cut at a message level.
void LEV2_list_cuts(unsigned level);
// One warning why the walk met nothing of a moment in a scan: no radials at
// all, no such scan, or no such moment in it, and which scans have it. Returns
// 1 with a warning; 0 when the scan has the moment.
int LEV2_warn_empty(int scan, int type);
