// gks_pix.h: the points of one figure in pixels, for the display branches of the
// primitives. Up to ten points, the common case, need no allocation.
#pragma once

#include "gks_tran.h"
#include "gks_x11.h"

#include <array>
#include <memory>
#include <new>

// Pixel of a point of the current transformation.
inline XPoint pixel_of(const Gpt& pt) {
    const Gpipe& p = gget_pipe();
    return {static_cast<short>(static_cast<int>(pipe_px(p, pt.x) + 0.5F)),
            static_cast<short>(static_cast<int>(pipe_py(p, pt.y) + 0.5F))};
}

class PixelFigure {
public:
    // Null points when there is no memory for them.
    PixelFigure(int n, const Gpt* pts) {
        if (n > few) {
            more.reset(new (std::nothrow) XPoint[n]);
            at = more.get();
        }
        const Gpipe& p = gget_pipe();
        for (int i = 0; at != nullptr && i < n; ++i) {
            at[i] = {static_cast<short>(static_cast<int>(pipe_px(p, pts[i].x) + 0.5F)),
                     static_cast<short>(static_cast<int>(pipe_py(p, pts[i].y) + 0.5F))};
        }
    }
    XPoint* points() { return at; }

private:
    static constexpr int few = 10;
    std::array<XPoint, few> here; // left unset: the loop fills it
    std::unique_ptr<XPoint[]> more;
    XPoint* at = here.data();
};
