// nids_exact.h: how the levels of a product are values by the format's own document,
// where that differs from what the reader makes of them otherwise. Functions of their
// arguments.
#pragma once

#include "nids_impl.h"

// How a level of 256 becomes a value.
enum class NidsExactScale {
    none,   // as otherwise: the document and the reader agree
    linear, // least + (level - first) * step, both from the thresholds
    floats, // (level - offset) / scale, and how many levels are flags
    masked  // as otherwise, but by the bits of the mask are some levels flags
};

struct NidsExact {
    int code = 0;
    NidsExactScale scale = NidsExactScale::none;
    float divisor = 1;       // of the least value, or of all of `floats`
    float step_divisor = 10; // of the step
    int first = 2;           // the level of the least value; those below it have none
    bool folded = false;     // level 1 is range folded
    bool knots = false;      // the thresholds are metres a second
    // Of products that the reader does not know otherwise.
    const char* label = nullptr;
    const char* colors = nullptr; // a level file
    float bin_nmi = 0;
};

// The row of a code; one without facts where the document and the reader agree.
const NidsExact& nids_exact(int code);
// The value of a level; missing_f, or nids_folded, where it has none. `otherwise`: the
// value that the reader makes of it.
float nids_exact_value(const NidsHeader& header, int packet, int level, float otherwise);
// The 16 coded levels of a product as `thres` has them, but nids_folded for the one of
// folded bins.
std::array<float, nids_num_thres> nids_exact_levels(const NidsHeader& header);
