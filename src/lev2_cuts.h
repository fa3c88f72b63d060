// lev2_cuts.h: the table of the cuts that a walk of a Level II volume meets,
// and its texts. Functions of their arguments.
#pragma once

#include "lev2.h"

#include <array>
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
