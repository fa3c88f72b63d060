// gks_band.cpp: the rubber band, a figure that follows the pointer while a button
// is down. It is drawn on the window alone, in xor, so that drawing it again
// removes it. State: the kind of band, its points and limits in pixels.

#include "gks_evnt.h"

#include "gks_pix.h"
#include "gks_x11.h"

#include <algorithm>
#include <array>

namespace {

constexpr int line_band = 1;
constexpr int constrained_band = 3;
constexpr int fix_x = 1;
constexpr int fix_y = 2;

struct Band {
    int kind = 0;       // 0: no band
    int constraint = 0; // fix_x and fix_y hold a coordinate of the moving point
    int num = 0;        // points set
    std::array<XPoint, 5> pts{};
    bool limited = false;
    std::array<XPoint, 2> limits{}; // least and greatest, per axis
    bool drawn = false;             // is on the window
    bool anchored = false;          // a button has been pressed
};
Band band;

XPoint x_point(const Gpt& pt) {
    const Gpixel at = pixel_of(pt);
    return {at.x, at.y};
}

// The line ends in a third point when it is between two neighbours.
void draw_band() {
    const Window window = gget_root_window();
    const XPoint* pts = band.pts.data();
    if (band.kind != line_band && band.kind != constrained_band) {
        gxrect(window, pts, pts + 1);
        return;
    }
    gxline(window, pts, pts + 1);
    if (band.kind == constrained_band && band.num > 2) {
        gxline(window, pts, pts + 2);
    }
}

XPoint limited_point(XPoint at) {
    if (!band.limited) {
        return at;
    }
    return {std::clamp(at.x, band.limits[0].x, band.limits[1].x),
            std::clamp(at.y, band.limits[0].y, band.limits[1].y)};
}

void move_point(XPoint at) {
    at = limited_point(at);
    if (band.kind != constrained_band) {
        band.pts[1] = at;
        return;
    }
    if (band.constraint != fix_x) {
        band.pts[0].x = at.x;
    }
    if (band.constraint != fix_y) {
        band.pts[0].y = at.y;
    }
}

void erase_band() {
    if (gget_line_gc_func() == GXcopy) {
        gset_line_gc_func(GXxor);
    }
    if (band.drawn) {
        draw_band();
    }
}

} // namespace

void ginit_band() {
    band.kind = 0;
    band.limited = false;
}

int gset_rubber_band(int value) {
    band.kind = value;
    return 0;
}

int gset_rubber_band_points(const Gpt* pts, int n, int constraint) {
    band.num = std::clamp(n, 0, static_cast<int>(band.pts.size()));
    for (int i = 0; i < band.num; ++i) {
        band.pts[i] = x_point(pts[i]);
    }
    band.constraint = constraint;
    return 0;
}

int gset_rubber_band_limits(const Gpt* pts) {
    const XPoint a = x_point(pts[0]);
    const XPoint b = x_point(pts[1]);
    band.limits = {
        {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}}
    };
    band.limited = true;
    return 0;
}

void gband_press(XPoint at) {
    band.pts[0] = at;
    band.drawn = false;
    band.anchored = true;
}

void gband_move(XPoint at) {
    if (band.kind == 0 || !band.anchored) {
        return;
    }
    erase_band();
    move_point(at);
    draw_band();
    band.drawn = true;
}

XPoint gband_release(XPoint at) {
    band.anchored = true;
    if (band.kind == 0) {
        return at;
    }
    erase_band();
    gset_line_gc_func(GXcopy);
    move_point(at);
    draw_band();
    const XPoint moved = band.kind == constrained_band ? band.pts[0] : at;
    band.drawn = false;
    ginit_band();
    return moved;
}
