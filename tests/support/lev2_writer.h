// lev2_writer.h: makes Level II volumes for tests, benches, fuzz seeds and the
// demo: records are put together as bytes, lev2_volume joins them to a file.
#pragma once

#include "nids_writer.h"

#include <string>
#include <utility>
#include <vector>

// --- Records ----------------------------------------------------------------

// A moment of a radial. The fixed message (type 1) takes "REF", "VEL" and "SW "
// and has fixed scales; in the generic one (31) a block is written for each.
struct Lev2Moment {
    std::string name = "REF"; // three letters; "" writes a block without name
    int first_m = 2125;       // distance of the first gate
    int gate_m = 250;         // gate length
    int word_size = 8;        // bits: 8 or 16
    float scale = 2.0F, offset = 66.0F;
    std::vector<int> words; // one a gate: 0 below threshold, 1 range folded
};

struct Lev2Radial {
    int type = 31; // or 1
    float az = 0;  // degrees
    bool half_degree = false;
    float elev = 0.5F; // degrees
    int elev_num = 1;
    int num = 1;    // radial number
    int status = 1; // 0 starts an elevation, 3 the volume
    int vcp = 12;
    int vel_res = 2;         // type 1: 2 half metres a second, 4 whole ones
    float nyquist = 26.0F;   // m/s
    std::string id = "KTLX"; // type 31
    float lat = 35.333F, lon = -97.278F;
    int height_m = 370;
    int days = 18037, ms = 81084000; // 20 May 2019 22:31:24
    std::vector<Lev2Moment> moments;
};

// A whole record of a radial.
Bytes lev2_radial(const Lev2Radial& radial);
// A record of 2432 bytes of another message type, such as metadata.
Bytes lev2_other(int type);
// The record of the coverage pattern: for each cut whether its radials are half a
// degree wide.
Bytes lev2_pattern(const std::vector<bool>& half_degrees);
// Where a record of type 31 keeps its parts, counted from its start.
constexpr std::size_t lev2_size_at = 12;     // message size
constexpr std::size_t lev2_data_at = 28;     // data header
constexpr std::size_t lev2_pointers_at = 60; // offsets of the blocks, from there

// --- Volumes ----------------------------------------------------------------

struct Lev2Volume {
    std::string name = "AR2V0006.001"; // 12 characters
    std::string site = "KTLX";
    int days = 18037, ms = 81084000;
    std::vector<Bytes> units; // records, one after the other; split for bzip2
};

Bytes lev2_header(const Lev2Volume& volume);
// One bzip2 unit with its length in front, negative if asked for.
Bytes lev2_unit(const Bytes& records, bool negative = false);
// The file: header and records, each unit packed by bzip2 if `packed`; the last
// one has a negative length, as real ones do.
Bytes lev2_volume(const Lev2Volume& volume, bool packed);
Bytes lev2_gzip(const Bytes& data);

// --- Samples ----------------------------------------------------------------

// Three scans: reflectivity; reflectivity, velocity and spectrum width; and the
// first again later. `type` as of Lev2Radial; 20 gates a radial, metadata
// records in front, a unit for these and for each scan.
Lev2Volume lev2_sample(int type, int radials = 12);
// A unit of the coverage pattern, then units of 120 radials of four gates, whose
// elevation number is that of the list.
Lev2Volume lev2_units(const std::vector<int>& scans, const std::vector<bool>& half_degrees);
// Small files of every kind, by name.
std::vector<std::pair<std::string, Bytes>> lev2_samples();
