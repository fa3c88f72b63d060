// rad_fill.h: how radar values become filled figures: the look of each value,
// and the bins of a radial or cells of a row as polygons between two lines.
#pragma once

#include "map_proj.h"
#include "zyrgks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

// Whether a point has a place on the page.
inline bool rad_is_place(const Gpt& p) {
    return is_set(p.x) && std::isfinite(p.x) && std::isfinite(p.y);
}

// A value that has a look of its own, whatever the levels say.
struct RadFolded {
    float value = NAN; // none
    Gattribs look;
};

// The looks of bytes as numbers for RadStrip, each found when it is first met.
class RadByteLooks {
public:
    RadByteLooks() { forget(); }
    void forget() { looks_.fill(unknown); }
    template <class Find> int get(std::uint8_t byte, Find find) {
        int& look = looks_[byte];
        if (look == unknown) {
            look = find(byte);
        }
        return look;
    }

private:
    static constexpr int unknown = std::numeric_limits<int>::min();
    std::array<int, 256> looks_{};
};

// How the values of one frame are filled. CONT_get_fill_attrib is asked once
// for each value met; the answer depends on the value alone while the frame's
// colours are. Most frames hold at most some 256 different values.
class RadFills {
public:
    explicit RadFills(const RadFolded& folded = {});
    // Null for a value that is not drawn. Valid until the next call.
    const Gattribs* get(float value) {
        if (value != last_value_) { // neighbours are often equal
            last_ = find(value);
            last_value_ = value;
        }
        return last_;
    }

private:
    const Gattribs* find(float value);

    struct Slot {
        bool used = false;
        std::uint32_t bits = 0; // of the value
        Gattribs attrib;
    };
    std::array<Slot, 1024> slots_{};
    RadFolded folded_;
    int pattern_; // takes the place of each step's own; missing: none
    float last_value_ = missing_f;
    const Gattribs* last_ = nullptr; // a missing value is never drawn
};

// A line of points at steps from an origin, in the coordinates of the data; straight
// unless its step changes.
struct RadRuler {
    double x = 0, y = 0;     // step 0
    double dx = 0, dy = 0;   // a step
    double ddx = 0, ddy = 0; // by how much half of the next step differs

    [[nodiscard]] Gpt at(int step) const {
        return {static_cast<float>(x + step * (dx + step * ddx)),
                static_cast<float>(y + step * (dy + step * ddy))};
    }
};

// The two edges of a radial, a step being a bin, or of a row, a step being a
// cell.
struct RadEdges {
    RadRuler first, second;
};

// Where a radial lies: its first edge at the azimuth plus the shift, the second
// a little beyond the width; degrees. Distances in plot units.
struct RadBeam {
    float azimuth = 0, shift = 0, width = 0;
    double start = 0; // of the first bin
    double step = 0;  // length of a bin
};

// The edges of a radial around a site on the data's own map.
RadEdges rad_radial_edges(const Map& own, Gpt site, const RadBeam& beam);

// A radial on the earth.
struct RadRay {
    double azimuth = 0, width = 0;    // of its first edge, degrees from north; to the second
    double start_km = 0, step_km = 0; // along the ground: near end of the first bin, length
    int count = 0;                    // bins
};

// The great circles around a site on the data's own map, as near as curves of the second
// order come, which is some ten metres at 460 km. Found once in a number of directions;
// what lies between them is interpolated, within a metre. Where the map has no image the
// edges have none.
class RadFan {
public:
    RadFan(const Map& own, float lat, float lon);    // the map must outlive it
    [[nodiscard]] Gpt site() const { return site_; } // on the map
    // The edges of a radial.
    RadEdges edges(const RadRay& ray);

private:
    static constexpr int count = 72;
    static constexpr double spoke_deg = 360.0 / count;
    // A great circle: place from the site by a distance in km and by its square.
    struct Spoke {
        double x = 0, y = 0, xx = 0, yy = 0;
    };

    void fit(double reach_km);
    [[nodiscard]] RadRuler ruler(double azimuth, const RadRay& ray) const;

    const Map& own_;
    double lat_, lon_; // degrees
    Gpt site_ = {};
    double reach_km_ = 0;                   // to which the spokes were found
    std::array<Spoke, count + 3> spokes_{}; // the first is that before north
};

// Bytes most of which are 0: a stretch in which they are not, and what lies before it.
struct RadStretch {
    int first, end;
};
// The next one at or after `from`, eight bytes at a time.
RadStretch rad_next_stretch(std::span<const std::uint8_t> bytes, int from);

// What one file may draw: as many figures as make a page of some 256 MB. The
// largest real ones have about half of it; packed bytes can ask for any
// number, and a window keeps them all for a redraw.
constexpr long rad_most_figures = 2500000;

// The figures between two rulers: the bins of a radial between its edges, the
// cells of a row between its top and bottom. They are collected first, so that
// a corner shared by two figures is placed but once.
class RadStrip {
public:
    // Maps of the data and of the plot; both must stay.
    RadStrip(const Map& own, const Map& plot);

    // Whether plot and data share their projection, so that corners need no
    // way through latitude and longitude.
    [[nodiscard]] bool same() const { return same_; }

    void begin();
    // Draws what is held when it is much: a damaged file's radials may be very
    // long.
    void make_room(const RadEdges& edges) {
        if (num_figures_ >= max_figures) {
            draw(edges);
            begin();
        }
    }
    // Figures from step `start` on, each `chunk` steps long and the last as
    // long as what is left of `count`. Returns their number.
    int add(int start, int count, int chunk, const Gattribs& attrib);
    // The number by which a look goes into add_each; it stays for this strip's life.
    int look_of(const Gattribs& attrib);
    static constexpr int no_look = -1; // not drawn
    // Figures of one step each from `start` on, number i of them with `look(i)`. For
    // many at a time, drawn or not: there is nothing to decide for each. Returns how
    // many are drawn.
    template <class Look> int add_each(int start, int count, Look look);
    // The same from bytes, each with `look(byte)`; those before step `hidden` are left
    // out. Eight zeros in a row, as most radials have them, cost next to nothing.
    struct Added {
        int drawn = 0;
        bool hidden = false; // one that was left out has a look
    };
    template <class Look>
    Added add_bytes(int start, std::span<const std::uint8_t> bytes, int hidden, Look look);
    // What lies outside the window costs no transformation.
    void draw(const RadEdges& edges);

    // Whether a figure was drawn so far, and whether one meets the plot window.
    [[nodiscard]] bool drawn() const { return drawn_; }
    [[nodiscard]] bool in_view() const { return in_view_; }

private:
    static constexpr std::size_t max_figures = 8192;

    // The plot window in the coordinates of the data: a box about it.
    struct Box {
        double left = 1e30, right = -1e30, low = 1e30, high = -1e30;
        bool known = false; // else anything may lie in it
    };
    struct StepRange {
        double first, last;
        [[nodiscard]] bool holds(int step) const { return step >= first && step <= last; }
    };

    [[nodiscard]] Box find_window() const;
    [[nodiscard]] StepRange seen_steps(const RadEdges& edges) const;
    void place(const RadRuler& ruler, std::size_t first, std::size_t end,
               std::vector<Gpt>& points) const;
    void reproject(std::vector<Gpt>& points) const;
    void open(int start, int count);
    void close(int end);
    void drop_placeless(std::span<int> looks) const;
    [[nodiscard]] std::array<Gpt, 5> corners(std::size_t i) const;
    void fill(std::span<const int> looks);
    void fill_solid(std::span<const int> looks, std::size_t from, std::size_t end);
    void look_as(const Gattribs& look);
    void note(const std::array<Gpt, 5>& corners);

    const Map& own_;
    const Map& plot_;
    bool same_;
    Box window_;
    int longest_ = 0; // of the figures so far, steps
    bool drawn_ = false, in_view_ = false;
    int color_ = missing;    // of the last figure drawn
    int fill_pat_ = missing; // and its pattern
    // The figures: number i goes from steps_[i] to the next one's start. Where none
    // follows, one without a look does. The first used_ are in force.
    std::vector<int> steps_, looks_;
    std::size_t used_ = 0, num_figures_ = 0;
    static constexpr int first_hatched = -2; // and down: looks in hatched_
    std::vector<Gattribs> hatched_;
    std::vector<Gpt> near_, far_; // the points of the two rulers at those steps_ that are seen
};

template <class Look> int RadStrip::add_each(int start, int count, Look look) {
    if (count <= 0) {
        return 0;
    }
    const std::size_t before = used_;
    open(start, count);
    bool gap = used_ == before; // one goes on here, or there is nothing yet
    std::size_t at = used_;
    int drawn = 0;
    for (int i = 0; i < count; ++i) {
        looks_[at] = look(i);
        steps_[at] = start + i;
        const bool empty = looks_[at] == no_look;
        at += gap && empty ? 0 : 1; // what goes on with a gap is written over
        drawn += empty ? 0 : 1;
        gap = empty;
    }
    used_ = at;
    if (!gap) {
        close(start + count);
    }
    longest_ = std::max(longest_, 1);
    num_figures_ += static_cast<std::size_t>(drawn);
    return drawn;
}

template <class Look>
RadStrip::Added RadStrip::add_bytes(int start, std::span<const std::uint8_t> bytes, int hidden,
                                    Look look) {
    Added added;
    const int size = static_cast<int>(bytes.size());
    int at = std::clamp(hidden - start, 0, size);
    for (const std::uint8_t byte : bytes.first(static_cast<std::size_t>(at))) {
        added.hidden = look(byte) != no_look || added.hidden;
    }
    while (at < size) {
        auto [first, end] = rad_next_stretch(bytes, at);
        if (first > at && look(0) != no_look) {
            first = at;
        }
        const auto part = bytes.subspan(static_cast<std::size_t>(first));
        added.drawn += add_each(start + first, end - first,
                                [&](int i) { return look(part[static_cast<std::size_t>(i)]); });
        at = end;
    }
    return added;
}
