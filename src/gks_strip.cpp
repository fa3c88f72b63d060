// gks_strip: areas in a row. No state.
#include "gks_strip.h"

#include "gks_draw.h"
#include "gks_pipe.h"
#include "gks_pix.h"

#include <array>

namespace {

// On which sides of the window a point lies.
unsigned sides_beyond(const Gcoords& window, const Gpt& p) {
    return (p.x < window.x_min ? 1U : 0U) | (p.x > window.x_max ? 2U : 0U) |
           (p.y < window.y_min ? 4U : 0U) | (p.y > window.y_max ? 8U : 0U);
}

// A pair of points, one of each line.
struct Rung {
    Gpixel near, far;
    unsigned beyond; // sides of the window beyond which both lie

    Rung(const Gpipe& pipe, const Gcoords& window, const Gpt& a, const Gpt& b)
        : near(to_pixel(pipe, a)), far(to_pixel(pipe, b)),
          beyond(sides_beyond(window, a) & sides_beyond(window, b)) {}
};

// Quads on their way to the display.
class Quads {
public:
    Quads() = default;
    ~Quads() { flush(); }
    Quads(const Quads&) = delete;
    Quads& operator=(const Quads&) = delete;
    void add(const Gquad& corners, int color) {
        if (used_ == quads_.size()) {
            flush();
        }
        quads_[used_++] = {corners, color};
    }

private:
    void flush() {
        gdraw_quads({quads_.data(), used_});
        used_ = 0;
    }
    std::array<Gcolored_quad, 256> quads_; // not cleared: written before it is read
    std::size_t used_ = 0;
};

void fill_each(int n, const Gpt* near, const Gpt* far, const int* colors) {
    for (int i = 0; i < n; ++i) {
        if (colors[i] >= 0) {
            const std::array<Gpt, 5> corners = {near[i], near[i + 1], far[i + 1], far[i], near[i]};
            gset_fill_colr_ind(colors[i]);
            gfill_area(static_cast<int>(corners.size()), corners.data());
        }
    }
}

} // namespace

bool gdraws_at_once() {
    return gtype_is_WIN() && gget_redraw() == 0 && gget_cache() == 0 && gdraw_ready();
}

void gfill_strip(int n, const Gpt* near, const Gpt* far, const int* colors) {
    // An event between two areas may change the transformation, and a list wants each.
    if (!gdraws_at_once()) {
        fill_each(n, near, far, colors);
        return;
    }
    const Gpipe pipe = gget_pipe();
    const Gcoords window = gtransformations().cur_wn;
    Quads quads;
    bool known = false; // `last` is that of point i
    Rung last(pipe, window, near[0], far[0]);
    for (int i = 0; i < n; ++i) {
        if (colors[i] < 0) {
            known = false;
            continue;
        }
        if (!known) {
            last = Rung(pipe, window, near[i], far[i]);
        }
        const Rung next(pipe, window, near[i + 1], far[i + 1]);
        // The box about the four corners decides, as for every area.
        if ((last.beyond & next.beyond) == 0) {
            gset_fill_colr_ind(colors[i]);
            quads.add({last.near, next.near, next.far, last.far}, gget_fill_colr());
        }
        last = next;
        known = true;
    }
}
