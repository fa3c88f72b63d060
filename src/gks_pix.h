// gks_pix.h: the points of one figure in pixels, for the display branches of the
// primitives. Up to ten points, the common case, need no allocation.
#pragma once

#include "gks_draw.h"
#include "gks_pipe.h"
#include "no_memory.h"

#include <array>
#include <memory>
#include <new>

// The pixel that a place falls on: half a pixel on, and cut.
inline std::int16_t to_pixel(float place) {
    constexpr float half = 0.5F;
    return static_cast<std::int16_t>(static_cast<int>(place + half));
}

inline Gpixel to_pixel(const Gpipe& p, const Gpt& pt) {
    return {to_pixel(pipe_px(p, pt.x)), to_pixel(pipe_py(p, pt.y))};
}

// Pixel of a point of the current transformation.
inline Gpixel pixel_of(const Gpt& pt) {
    return to_pixel(gget_pipe(), pt);
}

class PixelFigure {
public:
    // Null points when there is no memory for them.
    PixelFigure(int n, const Gpt* pts) {
        if (n > few) {
            const ZYR_own_report report;
            more.reset(new (std::nothrow) Gpixel[n]);
            at = more.get();
        }
        if (at == nullptr || n < 1) {
            return;
        }
        const Gpipe& p = gget_pipe();
        // Areas of the data end where they begin.
        const bool closed = pts[n - 1].x == pts[0].x && pts[n - 1].y == pts[0].y;
        const int own = closed ? n - 1 : n;
        at[0] = to_pixel(p, pts[0]);
        for (int i = 1; i < own; ++i) {
            at[i] = to_pixel(p, pts[i]);
        }
        at[n - 1] = closed ? at[0] : at[n - 1];
    }
    const Gpixel* points() const { return at; }

private:
    static constexpr int few = 10;
    std::array<Gpixel, few> here; // left unset: the loop fills it
    std::unique_ptr<Gpixel[]> more;
    Gpixel* at = here.data();
};
