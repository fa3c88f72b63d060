// rad_fill: the look of radar values, and strips of filled figures. No state
// of its own; the levels and colours of the frame (cont.h) must be set.
#include "rad_fill.h"

#include "cont.h"
#include "gks_strip.h"
#include "plt_tally.h"
#include "region.h"
#include "units.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr float overlap_deg = 0.01F; // by which radials cover the next one's edge
constexpr double earth_km = 6371.22; // radius of the maps' earth
constexpr int samples = 24;          // along each side of the window

// Projections on which small figures keep their shape well enough to compare their
// size with their distance from the window.
bool is_even(const Map& map) {
    constexpr int codes[] = {proj_latlon, proj_pstereo, proj_lambert, proj_merc};
    return std::find(std::begin(codes), std::end(codes), map.row->code) != std::end(codes);
}

// Steps at which a coordinate lies between two limits.
void narrow(double at, double step, double low, double high, double* first, double* last) {
    if (step == 0.0) {
        if (!(at >= low && at <= high)) {
            *last = *first - 1.0;
        }
        return;
    }
    const double a = (low - at) / step;
    const double b = (high - at) / step;
    *first = std::max(*first, std::min(a, b));
    *last = std::min(*last, std::max(a, b));
}

// Without a way out of the loop, so that it takes several at a time.
bool all_in_place(const std::vector<Gpt>& points) {
    int missing_ones = 0;
    for (const Gpt& p : points) {
        missing_ones |= rad_is_place(p) ? 0 : 1;
    }
    return missing_ones == 0;
}

} // namespace

// --- Look of values -------------------------------------------------------------

RadFills::RadFills(const RadFolded& folded) : folded_(folded), pattern_(CONT_get_fill_pat()) {}

const Gattribs* RadFills::find(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    Slot& slot = slots_[(bits * 0x9E3779B1U) >> 22];
    if (!slot.used || slot.bits != bits) {
        slot.used = true;
        slot.bits = bits;
        if (value == folded_.value) {
            slot.attrib = folded_.look;
        } else {
            PLT_tally_value(value);
            CONT_get_fill_attrib(value, &slot.attrib);
        }
        if (is_set(pattern_)) {
            slot.attrib.fill_pat = pattern_;
        } else if (!is_set(slot.attrib.fill_pat)) {
            slot.attrib.fill_pat = 0; // a hatched step before it must not show through
        }
    }
    return slot.attrib.color == -1 ? nullptr : &slot.attrib;
}

RadStretch rad_next_stretch(std::span<const std::uint8_t> bytes, int from) {
    const int size = static_cast<int>(bytes.size());
    std::uint64_t eight = 0;
    constexpr int step = sizeof eight;
    const auto are_zero = [&](int at) {
        std::memcpy(&eight, bytes.data() + at, sizeof eight);
        return eight == 0;
    };
    int first = from;
    while (first + step <= size && are_zero(first)) {
        first += step;
    }
    int end = first;
    while (end + step <= size && !are_zero(end)) {
        end += step;
    }
    return {first, end + step <= size ? end : size};
}

// --- Strips ---------------------------------------------------------------------

RadEdges rad_radial_edges(const Map& own, Gpt site, const RadBeam& beam) {
    const float from = own.dir_adj(beam.azimuth, site.x, site.y) + beam.shift;
    const auto edge = [&](double angle) {
        const double east = std::sin(angle * deg_to_rad);
        const double north = std::cos(angle * deg_to_rad);
        return RadRuler{site.x + beam.start * east, site.y + beam.start * north, beam.step * east,
                        beam.step * north};
    };
    return {edge(from), edge(from + beam.width + overlap_deg)};
}

RadFan::RadFan(const Map& own, float lat, float lon) : own_(own), lat_(lat), lon_(lon) {
    if (own.tran(lat, lon, &site_.x, &site_.y) == 0) {
        site_ = {NAN, NAN};
    }
}

// The curve of a spoke goes through the site, the middle of the reach and its end.
void RadFan::fit(double reach_km) {
    reach_km_ = reach_km;
    const double sin_lat = std::sin(lat_ * deg_to_rad);
    const double cos_lat = std::cos(lat_ * deg_to_rad);
    for (std::size_t i = 0; i < spokes_.size(); ++i) {
        const double azimuth = (static_cast<double>(i) - 1.0) * spoke_deg * deg_to_rad;
        // The image of the place at a distance.
        const auto place = [&](double km) {
            const double sin_d = std::sin(km / earth_km);
            const double cos_d = std::cos(km / earth_km);
            const double north = sin_d * std::cos(azimuth);
            const double across = sin_d * std::sin(azimuth); // to the meridian
            const double along = cos_lat * cos_d - sin_lat * north;
            const double up = sin_lat * cos_d + cos_lat * north; // to the equator
            const double lat = std::atan2(up, std::hypot(across, along)) / deg_to_rad;
            const double lon = lon_ + std::atan2(across, along) / deg_to_rad;
            Gpt p = {};
            if (own_.tran(static_cast<float>(lat), static_cast<float>(lon), &p.x, &p.y) == 0) {
                p = {NAN, NAN};
            }
            return p;
        };
        const Gpt middle = place(reach_km / 2);
        const Gpt end = place(reach_km);
        const double square = reach_km * reach_km;
        spokes_[i] = {(4.0 * middle.x - 3.0 * site_.x - end.x) / reach_km,
                      (4.0 * middle.y - 3.0 * site_.y - end.y) / reach_km,
                      2.0 * (site_.x - 2.0 * middle.x + end.x) / square,
                      2.0 * (site_.y - 2.0 * middle.y + end.y) / square};
    }
}

// Between spokes by the cubic through the four around it.
RadRuler RadFan::ruler(double azimuth, const RadRay& ray) const {
    const double turns = azimuth / 360.0;
    const double at = std::min((turns - std::floor(turns)) * count, count - 1e-9);
    if (!std::isfinite(at)) {
        return {NAN, NAN};
    }
    const auto first = static_cast<std::size_t>(at);
    const double t = at - static_cast<double>(first);
    const double weights[] = {-t * (t - 1) * (t - 2) / 6, (t + 1) * (t - 1) * (t - 2) / 2,
                              -(t + 1) * t * (t - 2) / 2, (t + 1) * t * (t - 1) / 6};
    Spoke curve;
    for (std::size_t i = 0; i < std::size(weights); ++i) {
        const Spoke& spoke = spokes_[first + i];
        curve.x += weights[i] * spoke.x;
        curve.y += weights[i] * spoke.y;
        curve.xx += weights[i] * spoke.xx;
        curve.yy += weights[i] * spoke.yy;
    }
    const double start = ray.start_km;
    const double step = ray.step_km;
    return {site_.x + start * (curve.x + start * curve.xx),
            site_.y + start * (curve.y + start * curve.yy),
            step * (curve.x + 2.0 * start * curve.xx),
            step * (curve.y + 2.0 * start * curve.yy),
            step * step * curve.xx,
            step * step * curve.yy};
}

RadEdges RadFan::edges(const RadRay& ray) {
    // A little further than asked for, as the next radials may be longer.
    const double end_km = std::max(1.0, ray.start_km + ray.step_km * ray.count);
    if (end_km > reach_km_) {
        fit(end_km * 1.01);
    }
    return {ruler(ray.azimuth, ray), ruler(ray.azimuth + ray.width + overlap_deg, ray)};
}

RadStrip::RadStrip(const Map& own, const Map& plot)
    : own_(own), plot_(plot), same_(DOM_comp_proj(&own.domain, &plot.domain) != 0),
      window_(find_window()) {}

// By points along the edge of the window, and as much as lies between two of them more
// on each side. Unknown where a pole or a point without image is near.
RadStrip::Box RadStrip::find_window() const {
    const MAP_limits& w = plot_.limits;
    if (same_) {
        return {w.x_min, w.x_max, w.y_min, w.y_max, true};
    }
    if (!is_even(own_) || !is_even(plot_)) {
        return {};
    }
    for (const float pole : {90.0F, -90.0F}) {
        float x = missing_f;
        float y = missing_f;
        if (plot_.tran(pole, plot_.domain.clon, &x, &y) != 0 && plot_.shows(x, y, 2.0)) {
            return {};
        }
    }
    Box box;
    box.known = true;
    const auto take = [&](float x, float y) {
        Gpt place{missing_f, missing_f};
        Gpt p{missing_f, missing_f};
        if (plot_.untran(x, y, &place.x, &place.y) == 0 || std::fabs(place.x) > 75.0F ||
            own_.tran(place.x, place.y, &p.x, &p.y) == 0) {
            box.known = false;
            return;
        }
        box.left = std::min<double>(box.left, p.x);
        box.right = std::max<double>(box.right, p.x);
        box.low = std::min<double>(box.low, p.y);
        box.high = std::max<double>(box.high, p.y);
    };
    for (int i = 0; i <= samples && box.known; ++i) {
        const float t = static_cast<float>(i) / samples;
        const float x = w.x_min + (w.x_max - w.x_min) * t;
        const float y = w.y_min + (w.y_max - w.y_min) * t;
        take(x, w.y_min);
        take(x, w.y_max);
        take(w.x_min, y);
        take(w.x_max, y);
    }
    const double pad_x = (box.right - box.left) / samples;
    const double pad_y = (box.high - box.low) / samples;
    return {box.left - pad_x, box.right + pad_x, box.low - pad_y, box.high + pad_y, box.known};
}

// Steps of which a figure may meet the window, with both its ends. The upright box
// about a figure decides what goes to the device: so much farther off it is held to be
// seen, and more where the plot turns and stretches it.
RadStrip::StepRange RadStrip::seen_steps(const RadEdges& edges) const {
    constexpr double endless = 1e9;
    StepRange seen{-endless, endless};
    const RadRuler& a = edges.first;
    const RadRuler& b = edges.second;
    const auto is_bent = [](const RadRuler& ruler) { return ruler.ddx != 0.0 || ruler.ddy != 0.0; };
    if (!window_.known || is_bent(a) || is_bent(b)) {
        return seen;
    }
    const auto chord = [&](int step) {
        return std::hypot(b.x - a.x + step * (b.dx - a.dx), b.y - a.y + step * (b.dy - a.dy));
    };
    const double length = longest_ * std::hypot(a.dx, a.dy);
    const double size = std::max(chord(steps_[0]), chord(steps_[used_ - 1])) + length;
    const double pad = size * (same_ ? 1.5 : 8.0) + length;
    narrow(a.x, a.dx, window_.left - pad, window_.right + pad, &seen.first, &seen.last);
    narrow(a.y, a.dy, window_.low - pad, window_.high + pad, &seen.first, &seen.last);
    return seen;
}

void RadStrip::begin() {
    used_ = 0;
    num_figures_ = 0;
}

int RadStrip::look_of(const Gattribs& attrib) {
    if (attrib.fill_pat == 0 && attrib.color >= 0) {
        return attrib.color;
    }
    const auto same = [&](const Gattribs& other) {
        return other.color == attrib.color && other.fill_pat == attrib.fill_pat;
    };
    const auto found = std::find_if(hatched_.begin(), hatched_.end(), same);
    const auto place = static_cast<int>(found - hatched_.begin());
    if (found == hatched_.end()) {
        hatched_.emplace_back();
        hatched_.back().color = attrib.color;
        hatched_.back().fill_pat = attrib.fill_pat;
    }
    return first_hatched - place;
}

// Makes room for figures of so many steps, and continues those that end at `start`.
void RadStrip::open(int start, int count) {
    const std::size_t most = used_ + static_cast<std::size_t>(count) + 1;
    if (steps_.size() < most) {
        steps_.resize(most);
        looks_.resize(most);
    }
    if (used_ > 0 && steps_[used_ - 1] == start) {
        --used_;
    }
}

void RadStrip::close(int end) {
    steps_[used_] = end;
    looks_[used_] = no_look;
    ++used_;
}

int RadStrip::add(int start, int count, int chunk, const Gattribs& attrib) {
    if (count <= 0) {
        return 0;
    }
    const int end = start + count;
    const int look = look_of(attrib);
    longest_ = std::max(longest_, std::min(count, chunk));
    open(start, count);
    const std::size_t before = used_;
    for (int step = start; step < end; step = std::min(step + chunk, end)) {
        steps_[used_] = step;
        looks_[used_] = look;
        ++used_;
    }
    const std::size_t added = used_ - before;
    num_figures_ += added;
    close(end);
    return static_cast<int>(added);
}

void RadStrip::draw(const RadEdges& edges) {
    if (num_figures_ == 0) {
        return;
    }
    drawn_ = true;
    PLT_get_tally().figures += static_cast<long>(num_figures_);
    const StepRange seen = seen_steps(edges);
    std::size_t first = 0;
    std::size_t end = used_;
    while (first < end && !seen.holds(steps_[first])) {
        ++first;
    }
    while (end > first && !seen.holds(steps_[end - 1])) {
        --end;
    }
    if (end - first < 2) {
        return;
    }
    place(edges.first, first, end, near_);
    place(edges.second, first, end, far_);
    if (!same_) {
        reproject(near_);
        reproject(far_);
    }
    const std::span<int> looks(looks_.data() + first, end - first - 1);
    if (!all_in_place(near_) || !all_in_place(far_)) {
        drop_placeless(looks);
    }
    for (std::size_t i = 0; i < looks.size() && !in_view_; ++i) {
        if (looks[i] != no_look) {
            note(corners(i));
        }
    }
    fill(looks);
}

// Those with a corner that has no image.
void RadStrip::drop_placeless(std::span<int> looks) const {
    for (std::size_t i = 0; i < looks.size(); ++i) {
        if (!(rad_is_place(near_[i]) && rad_is_place(near_[i + 1]) && rad_is_place(far_[i + 1]) &&
              rad_is_place(far_[i]))) {
            looks[i] = no_look;
        }
    }
}

std::array<Gpt, 5> RadStrip::corners(std::size_t i) const {
    return {near_[i], near_[i + 1], far_[i + 1], far_[i], near_[i]};
}

// Solid figures go out together; a hatched one has an attribute of its own.
void RadStrip::fill(std::span<const int> looks) {
    std::size_t from = 0;
    for (std::size_t i = 0; !hatched_.empty() && i < looks.size(); ++i) {
        if (looks[i] <= first_hatched) {
            fill_solid(looks, from, i);
            from = i + 1;
            look_as(hatched_[static_cast<std::size_t>(first_hatched - looks[i])]);
            const auto points = corners(i);
            gfill_area(static_cast<int>(points.size()), points.data());
        }
    }
    fill_solid(looks, from, looks.size());
}

void RadStrip::fill_solid(std::span<const int> looks, std::size_t from, std::size_t end) {
    const auto is_drawn = [](int look) { return look != no_look; };
    const auto part = looks.subspan(from, end - from);
    const auto first = std::find_if(part.begin(), part.end(), is_drawn);
    if (first == part.end()) {
        return;
    }
    if (fill_pat_ != 0) {
        Gattribs solid;
        solid.color = *first;
        solid.fill_pat = 0;
        look_as(solid);
    }
    gfill_strip(static_cast<int>(part.size()), near_.data() + from, far_.data() + from,
                part.data());
    color_ = gget_fill_colr();
}

void RadStrip::look_as(const Gattribs& look) {
    if (look.color == color_ && look.fill_pat == fill_pat_) {
        return;
    }
    color_ = look.color;
    fill_pat_ = look.fill_pat;
    GPH_fill_attr(&look);
}

void RadStrip::place(const RadRuler& ruler, std::size_t first, std::size_t end,
                     std::vector<Gpt>& points) const {
    points.resize(end - first);
    const RadRuler own = ruler; // else each store might change it
    std::transform(steps_.begin() + static_cast<std::ptrdiff_t>(first),
                   steps_.begin() + static_cast<std::ptrdiff_t>(end), points.begin(),
                   [own](int step) { return own.at(step); });
}

// The data's coordinates to latitude and longitude, and these to the plot's.
void RadStrip::reproject(std::vector<Gpt>& points) const {
    for (Gpt& p : points) {
        Gpt place = p;
        own_.untran(p.x, p.y, &place.x, &place.y);
        if (!rad_is_place(place) || plot_.tran(place.x, place.y, &p.x, &p.y) == 0) {
            p = {missing_f, missing_f};
        }
    }
}

// Looks whether the box about a figure meets the plot window.
void RadStrip::note(const std::array<Gpt, 5>& corners) {
    const MAP_limits& lim = plot_.limits;
    const auto [left, right] =
        std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
    const auto [low, high] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
    in_view_ = left <= lim.x_max && right >= lim.x_min && low <= lim.y_max && high >= lim.y_min;
}
