// lev2_cuts.h: the table of the cuts that a walk of a Level II volume meets and
// its texts, and the table of those that the volume means to take. Functions of
// their arguments.
#pragma once

#include "lev2.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

struct Lev2Cuts {
    std::array<LEV2_cut, lev2_max_cuts> row{}; // in the order in which they are met
    std::size_t count = 0;

    [[nodiscard]] std::span<const LEV2_cut> rows() const { return std::span(row).first(count); }
};

// Counts a radial and which moments it has.
void lev2_count_radial(Lev2Cuts& cuts, const LEV2_data& data);
// "Scan 2: El=0.5 720 radials: reflectivity velocity".
std::string lev2_cut_text(const LEV2_cut& cut);
// Why a moment of a scan is not to be seen; empty when it is there.
std::string lev2_empty_text(const Lev2Cuts& cuts, int scan, int type);

// The cuts of a volume coverage pattern, which the volume gives before its radials.
struct Lev2Pattern {
    std::array<int, lev2_max_cuts> radials{}; // of each cut, elevation numbers from 1 up
    int count = 0;                            // 0: not known
};

// From the data of a message of type 5.
Lev2Pattern lev2_read_pattern(std::span<const std::uint8_t> data);
// The bzip2 units that the first `cuts` of them fill: one of metadata, then as many
// as have 120 radials each.
int lev2_pattern_units(const Lev2Pattern& pattern, int cuts);
// Whether a walk has met the first `cuts` of them, whole, and no other radials.
bool lev2_is_walked(const Lev2Cuts& walked, const Lev2Pattern& pattern, int cuts);
