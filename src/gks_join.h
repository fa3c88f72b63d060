// gks_join.h: the filled figures of a small page, gathered and joined: bins of one
// colour along a radial into one figure, and all that is finer than the printer's
// dots into the outlines of what the dots show.
#pragma once

#include "out_text.h"

#include <span>

// Hundredths of a point.
struct Gpage_pt {
    int x, y;
    bool operator==(const Gpage_pt&) const = default;
};
struct Gpage_box {
    int x_min, x_max, y_min, y_max;
    bool operator==(const Gpage_box&) const = default;
};

// The operators of the paths, PostScript: M begins a path, l goes on by x and y, L by
// x and then y; m and n begin another part of the path by a step from where this one
// began, f and F fill it, all of them after a last step of it, n and F along x alone.
// `P` is the matrix in force, in which hundredths of a point are drawn.
std::string_view gjoin_prologue();

// Where the dots of the printer lie.
struct Gpage_dots {
    double size = 24.0; // hundredths of a point
    double x = 0.0;     // a corner of one
    double y = 0.0;
};
// Starts over.
void gjoin_begin(const Gpage_dots& dots);
// Keeps a figure of four corners, drawn after those kept before. `paint` is what
// the caller knows its colour by. False where it cannot be kept: it is not convex,
// or the module is full.
bool gjoin_add(std::span<const Gpage_pt, 4> corners, int paint);
// Writes what is kept, as far as it shows in the box, and keeps nothing more.
// `put_paint` writes a colour.
using Gput_paint = void (*)(OutText& out, int paint);
void gjoin_flush(std::FILE* file, const Gpage_box& box, Gput_paint put_paint);
