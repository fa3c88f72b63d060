// gks_raster.h: figures as pixels of a picture in memory, each the very pixels that
// the window protocol, and where it leaves a choice the sample server, gives them.
#pragma once

#include "gks_draw.h"

#include <cstdint>
#include <span>

// Columns x1 to x2 - 1 and rows y1 to y2 - 1.
struct Gbox {
    int x1, y1, x2, y2;
};

// Rows of 32-bit pixels, and the part of them that may change.
struct Gcanvas {
    std::uint32_t* pixels;
    int width; // of a row
    Gbox clip; // within the picture
};

// What a pixel becomes; under a pattern only where the pattern has its bits.
struct Gink {
    std::uint32_t pixel;
    const std::array<unsigned char, pattern_size>* pattern; // null: solid
};

struct Gstroke {
    int width;         // 0: the thinnest line, by Bresenham's rule
    bool projecting;   // ends reach half a width further; for width 1 and more
    const Gdash* dash; // null: solid. Begins anew with each polyline
};

// The pixels whose centre lies inside, by the even-odd rule; a centre on the
// outline counts where the inside is to its right, or below it.
void graster_area(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points);
// An area and the thin line about it, which is its points in turn.
void graster_quad(const Gcanvas& canvas, std::uint32_t pixel, const Gquad& quad);
void graster_outlined(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points);
// A polyline; its corners are bevelled.
void graster_lines(const Gcanvas& canvas, const Gink& ink, const Gstroke& stroke,
                   std::span<const Gpixel> points);
void graster_point(const Gcanvas& canvas, const Gink& ink, Gpixel at);
