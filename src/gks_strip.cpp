// gks_strip: areas in a row. No state.
//
// Most bins of a fine product are smaller than a pixel, so that what is done for each of
// them is most of a picture's cost: pixels are worked out for a block of points at a
// time, colours are looked up once, and bins that the next one hides are left out.
#include "gks_strip.h"

#include "gks_draw.h"
#include "gks_pipe.h"
#include "gks_pix.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>

namespace {

// A pair of points, one of each line.
struct Rung {
    Gpixel near, far;

    bool operator==(const Rung& other) const {
        return std::bit_cast<std::uint64_t>(*this) == std::bit_cast<std::uint64_t>(other);
    }
    // No pixel lies between its two.
    [[nodiscard]] bool is_short() const {
        return std::abs(near.x - far.x) < 2 && std::abs(near.y - far.y) < 2;
    }
};

// Quads on their way to the display.
class Quads {
public:
    Quads() = default;
    ~Quads() { flush(); }
    Quads(const Quads&) = delete;
    Quads& operator=(const Quads&) = delete;
    void add(const Rung& from, const Rung& to, int color) {
        if (used_ == 0 || !hides_last(from, to)) {
            if (used_ == quads_.size()) {
                flush();
            }
            ++used_;
        }
        quads_[used_ - 1] = {
            {from.near, to.near, to.far, from.far},
            color
        };
        from_ = from;
        to_ = to;
    }

private:
    // The next covers all that the last one does: the same pixels; or the last is no more
    // than the two ends of one rung, which are corners of the next.
    [[nodiscard]] bool hides_last(const Rung& from, const Rung& to) const {
        return from == from_ && (to == to_ || (from_ == to_ && from_.is_short()));
    }
    void flush() {
        gdraw_quads({quads_.data(), used_});
        used_ = 0;
    }
    std::array<Gcolored_quad, 256> quads_; // not cleared: written before it is read
    std::size_t used_ = 0;
    Rung from_{}, to_{}; // of the last one
};

// The colours of areas as the fill state takes them. That is asked once for each index,
// but is to end with the colour of the last area.
class Colors {
public:
    Colors() { known_.fill({-1, 0}); }
    ~Colors() { gset_fill_colr_ind(index_); }
    Colors(const Colors&) = delete;
    Colors& operator=(const Colors&) = delete;
    int get(int index) {
        if (index != index_) {
            Known& known = known_[static_cast<std::size_t>(index) % known_.size()];
            if (known.index == index || gset_fill_colr_ind(index) == 0) {
                if (known.index != index) {
                    known = {index, gget_fill_colr()};
                }
                index_ = index;
                color_ = known.color;
            }
        }
        return color_;
    }

private:
    struct Known {
        int index, color;
    };
    std::array<Known, 64> known_{};
    int index_ = gget_fill_colr(); // of the last area
    int color_ = index_;
};

// On which sides of the window a point lies.
unsigned sides_beyond(const Gcoords& window, const Gpt& p) {
    return (p.x < window.x_min ? 1U : 0U) | (p.x > window.x_max ? 2U : 0U) |
           (p.y < window.y_min ? 4U : 0U) | (p.y > window.y_max ? 8U : 0U);
}

// Some neighbours of a strip: their rungs and those before and after them.
struct Block {
    static constexpr int size = 256;
    std::array<Rung, size + 1> rungs;
    bool inside; // all its points lie in the window

    Block(const Gpipe& pipe, const Gcoords& window, int n, const Gpt* near, const Gpt* far) {
        unsigned beyond = 0;
        for (int i = 0; i <= n; ++i) {
            rungs[static_cast<std::size_t>(i)] = {to_pixel(pipe, near[i]), to_pixel(pipe, far[i])};
        }
        for (int i = 0; i <= n; ++i) {
            beyond |= sides_beyond(window, near[i]) | sides_beyond(window, far[i]);
        }
        inside = beyond == 0;
    }
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
    Colors known;
    for (int start = 0; start < n; start += Block::size) {
        const int count = std::min(Block::size, n - start);
        const Block block(pipe, window, count, near + start, far + start);
        for (int k = 0; k < count; ++k) {
            const int i = start + k;
            if (colors[i] < 0) {
                continue;
            }
            // The box about the four corners decides, as for every area.
            if (block.inside ||
                (sides_beyond(window, near[i]) & sides_beyond(window, far[i]) &
                 sides_beyond(window, near[i + 1]) & sides_beyond(window, far[i + 1])) == 0) {
                const auto at = static_cast<std::size_t>(k);
                quads.add(block.rungs[at], block.rungs[at + 1], known.get(colors[i]));
            }
        }
    }
}
