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

// Quads on their way to the display. The last one waits for the next, which may hide it.
class Quads {
public:
    Quads() = default;
    ~Quads() {
        keep_last();
        flush();
    }
    Quads(const Quads&) = delete;
    Quads& operator=(const Quads&) = delete;
    void add(Rung from, Rung to, int color) {
        if (!hides_last(from, to)) {
            keep_last();
        }
        from_ = from;
        to_ = to;
        color_ = color;
    }

private:
    // The next covers all that the last one does: the same pixels; or the last is no more
    // than the two ends of one rung, which are corners of the next.
    [[nodiscard]] bool hides_last(Rung from, Rung to) const {
        return from == from_ && (to == to_ || (from_ == to_ && from_.is_short()));
    }
    void keep_last() {
        if (color_ < 0) {
            return;
        }
        if (used_ == quads_.size()) {
            flush();
        }
        quads_[used_++] = {
            {from_.near, to_.near, to_.far, from_.far},
            color_
        };
    }
    void flush() {
        gdraw_quads({quads_.data(), used_});
        used_ = 0;
    }
    std::array<Gcolored_quad, 256> quads_; // not cleared: written before it is read
    std::size_t used_ = 0;
    Rung from_{}, to_{}; // the last one
    int color_ = -1;     // below 0: none yet
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

// The road of gks_pipe.h and to_pixel for two points at once, x and y of each: the same
// numbers by the same steps, but that Y down takes the edge off and turns the factor.
class TwoPoints {
public:
    TwoPoints(const Gpipe& p, const Gcoords& window)
        : wn_(both(p.wn_x, p.wn_y)), wn_vp_(both(p.wn_vp_x, p.wn_vp_y)), vp_(both(p.vp_x, p.vp_y)),
          wkwn_(both(p.wkwn_x, p.wkwn_y_max)), plt_f_(both(p.plt_fx, -p.plt_fy)),
          plt_(both(p.plt_x, p.plt_y)), low_(both(window.x_min, window.y_min)),
          high_(both(window.x_max, window.y_max)) {}
    std::array<Gpixel, 2> take(const Gpt& a, const Gpt& b) {
        // By halves: a whole put together in memory would be waited for.
        const auto v_of = [](const Gpt& p) { return std::bit_cast<Two>(p); };
        Four v = __builtin_shufflevector(v_of(a), v_of(b), 0, 1, 2, 3);
        beyond_ |= (v < low_) | (v > high_);
        v = (((v - wn_) * wn_vp_ + vp_) - wkwn_) * plt_f_ + plt_;
        const Four limit = both(pixel_limit, pixel_limit);
        v = v > -limit ? v : -limit;
        v = v < limit ? v : limit;
        const auto whole = __builtin_convertvector(v + 0.5F, Ints);
        const auto pixel = __builtin_convertvector(whole, Shorts);
        return std::bit_cast<std::array<Gpixel, 2>>(pixel);
    }
    // Whether all points so far lie in the window.
    [[nodiscard]] bool inside() const {
        return (beyond_[0] | beyond_[1] | beyond_[2] | beyond_[3]) == 0;
    }

private:
    using Two [[gnu::vector_size(8)]] = float;
    using Four [[gnu::vector_size(16)]] = float;
    using Ints [[gnu::vector_size(16)]] = std::int32_t;
    using Shorts [[gnu::vector_size(8)]] = std::int16_t;
    static Four both(float x, float y) { return Four{x, y, x, y}; }
    Four wn_, wn_vp_, vp_, wkwn_, plt_f_, plt_;
    Four low_, high_; // of the window
    Ints beyond_{};
};

// Some neighbours of a strip in pixels.
class Block {
public:
    static constexpr int size = 256;
    Block(const Gpipe& pipe, const Gcoords& window, int n, const Gpt* near, const Gpt* far) {
        TwoPoints road(pipe, window);
        for (int i = 0; i <= n; ++i) {
            rungs_[static_cast<std::size_t>(i)] = std::bit_cast<Rung>(road.take(near[i], far[i]));
        }
        inside_ = road.inside();
    }
    [[nodiscard]] bool inside() const { return inside_; }
    [[nodiscard]] const Rung& rung(int i) const { return rungs_[static_cast<std::size_t>(i)]; }

private:
    std::array<Rung, size + 1> rungs_; // written as far as they are read
    bool inside_;
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
            if (block.inside() ||
                (sides_beyond(window, near[i]) & sides_beyond(window, far[i]) &
                 sides_beyond(window, near[i + 1]) & sides_beyond(window, far[i + 1])) == 0) {
                quads.add(block.rung(k), block.rung(k + 1), known.get(colors[i]));
            }
        }
    }
}
