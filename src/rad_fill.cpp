// rad_fill: the look of radar values, and strips of filled figures. No state
// of its own; the levels and colours of the frame (cont.h) must be set.
#include "rad_fill.h"

#include "cont.h"
#include "region.h"
#include "units.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr float overlap_deg = 0.01F; // by which radials cover the next one's edge
constexpr double earth_km = 6371.22; // radius of the maps' earth

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

RadEdges rad_earth_edges(const Map& own, double lat, double lon, const RadRay& ray) {
    const double sin_lat = std::sin(lat * deg_to_rad);
    const double cos_lat = std::cos(lat * deg_to_rad);
    // The image of the place at an azimuth and a distance.
    const auto place = [&](double azimuth, double km) {
        const double sin_d = std::sin(km / earth_km);
        const double cos_d = std::cos(km / earth_km);
        const double north = sin_d * std::cos(azimuth * deg_to_rad);
        const double across = sin_d * std::sin(azimuth * deg_to_rad); // to the meridian
        const double along = cos_lat * cos_d - sin_lat * north;
        const double up = sin_lat * cos_d + cos_lat * north; // to the equator
        const auto to_lat =
            static_cast<float>(std::atan2(up, std::hypot(across, along)) / deg_to_rad);
        const auto to_lon = static_cast<float>(lon + std::atan2(across, along) / deg_to_rad);
        Gpt p = {};
        if (own.tran(to_lat, to_lon, &p.x, &p.y) == 0) {
            p = {NAN, NAN};
        }
        return p;
    };
    const auto edge = [&](double azimuth) {
        const double n = ray.count;
        const Gpt near = place(azimuth, ray.start_km);
        const Gpt middle = place(azimuth, ray.start_km + ray.step_km * n / 2);
        const Gpt far = place(azimuth, ray.start_km + ray.step_km * n);
        RadRuler ruler;
        ruler.x = near.x;
        ruler.y = near.y;
        // The curve through the three.
        ruler.dx = (4.0 * middle.x - 3.0 * near.x - far.x) / n;
        ruler.dy = (4.0 * middle.y - 3.0 * near.y - far.y) / n;
        ruler.ddx = 2.0 * (near.x - 2.0 * middle.x + far.x) / (n * n);
        ruler.ddy = 2.0 * (near.y - 2.0 * middle.y + far.y) / (n * n);
        return ruler;
    };
    return {edge(ray.azimuth), edge(ray.azimuth + ray.width + overlap_deg)};
}

RadStrip::RadStrip(const Map& own, const Map& plot)
    : own_(own), plot_(plot), same_(DOM_comp_proj(&own.domain, &plot.domain) != 0) {}

void RadStrip::begin() {
    steps_.clear();
    figures_.clear();
}

int RadStrip::add(int start, int count, int chunk, const Gattribs& attrib) {
    const int end = start + count;
    if (start >= end) {
        return 0;
    }
    const std::size_t before = figures_.size();
    if (steps_.empty() || steps_.back() != start) {
        steps_.push_back(start);
    }
    for (int step = start; step < end;) {
        step = std::min(step + chunk, end);
        figures_.push_back({steps_.size() - 1, attrib.color, attrib.fill_pat});
        steps_.push_back(step);
    }
    return static_cast<int>(figures_.size() - before);
}

void RadStrip::draw(const RadEdges& edges) {
    if (figures_.empty()) {
        return;
    }
    drawn_ = true;
    place(edges.first, near_);
    place(edges.second, far_);
    if (!same_) {
        reproject(near_);
        reproject(far_);
    }
    for (const Figure& figure : figures_) {
        const std::size_t i = figure.first;
        const std::array<Gpt, 5> corners = {near_[i], near_[i + 1], far_[i + 1], far_[i], near_[i]};
        if (!std::all_of(corners.begin(), corners.end(), rad_is_place)) {
            continue;
        }
        if (!in_view_) {
            note(corners);
        }
        if (figure.color != color_ || figure.fill_pat != fill_pat_) {
            color_ = figure.color;
            fill_pat_ = figure.fill_pat;
            Gattribs attrib;
            attrib.color = color_;
            attrib.fill_pat = fill_pat_;
            GPH_fill_attr(&attrib);
        }
        gfill_area(static_cast<int>(corners.size()), corners.data());
    }
}

void RadStrip::place(const RadRuler& ruler, std::vector<Gpt>& points) const {
    points.clear();
    for (const int step : steps_) {
        points.push_back(ruler.at(step));
    }
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
