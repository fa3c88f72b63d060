// map_file.cpp: map databases and range rings: lines of the earth, broken
// where the map has an edge. A database is read and drawn record by record and
// is never held in memory; one that lies far from the picture is passed over before
// it is projected. State: whether outlines are painted.
//
//   binary, big endian, no padding            text
//   offset  size  field                       header line
//   0       2     point count, unsigned         count maxlat minlat
//   2       16    maxlat, minlat, maxlon,       maxlon minlon offset
//                 minlon, floats, not used
//   18      4     offset, not used            then a line "lat lon"
//   22      8     latitude, longitude of      for each point
//                 each point, floats
//
// A count of 0 ends the file. Degrees, east positive.
#include "map.h"
#include "map_wrap.h"

#include "gks_strip.h"
#include "maptran.h"
#include "no_memory.h"
#include "state_keeper.h"
#include "text_num.h"
#include "units.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr int usual_points = 1000; // records below this need no memory of their own
constexpr int most_text_points = 32767;
constexpr std::size_t point_bytes = 8;
constexpr float least_degrees = 1e-6F; // 10 cm, the smallest but 0 that a place has

struct State {
    int fill = 0; // 1: outlines are painted
};
State state;

// --- Reading -------------------------------------------------------------------

// A file through a buffer of fixed size. Past the end every read fails.
class Source {
public:
    explicit Source(std::FILE* stream) : stream_(stream) {}

    // `n` bytes in a row, valid until the next call; null at the end. `n` is at
    // most the size of the buffer.
    const std::uint8_t* bytes(std::size_t n) {
        if (end_ - at_ < n && !refill(n)) {
            return nullptr;
        }
        const std::uint8_t* out = buffer_.data() + at_;
        at_ += n;
        return out;
    }

    // The same without taking them; null also where they exceed the buffer.
    const std::uint8_t* ahead(std::size_t n) {
        const bool there = n <= buffer_.size() && (end_ - at_ >= n || refill(n));
        return there ? buffer_.data() + at_ : nullptr;
    }

    // How many of the next `n` bytes the buffer holds, after reading on.
    std::size_t held(std::size_t n) {
        if (end_ - at_ < n) {
            refill(n);
        }
        return std::min(n, end_ - at_);
    }

    // The next word, cut to the buffer given; its rest is passed over.
    bool word(char* out, std::size_t size) {
        int c = next();
        while (c >= 0 && std::isspace(c) != 0) {
            c = next();
        }
        std::size_t n = 0;
        for (; c >= 0 && std::isspace(c) == 0; c = next()) {
            if (n + 1 < size) {
                out[n++] = static_cast<char>(c);
            }
        }
        out[n] = '\0';
        return n > 0;
    }

    // The first bytes of the file as text, without taking them.
    void peek(char* out, std::size_t size) {
        if (end_ - at_ < size) {
            refill(size);
        }
        const std::size_t n = std::min(size - 1, end_ - at_);
        std::memcpy(out, buffer_.data() + at_, n);
        out[n] = '\0';
    }

private:
    int next() {
        const std::uint8_t* byte = bytes(1);
        return byte == nullptr ? -1 : *byte;
    }
    // Moves the rest to the front and reads on. False if `n` bytes are not to
    // be had.
    bool refill(std::size_t n) {
        std::memmove(buffer_.data(), buffer_.data() + at_, end_ - at_);
        end_ -= at_;
        at_ = 0;
        end_ += std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, stream_);
        return end_ >= n;
    }

    std::FILE* stream_;
    std::array<std::uint8_t, 32768> buffer_;
    std::size_t at_ = 0;
    std::size_t end_ = 0;
};

std::uint32_t u32be(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
           static_cast<std::uint32_t>(p[2]) << 8 | p[3];
}

float f32be(const std::uint8_t* p) {
    return std::bit_cast<float>(u32be(p));
}

// The first record decides: its six header fields scan as text.
bool is_text(Source& source) {
    std::array<char, 200> text;
    source.peek(text.data(), text.size());
    const char* at = text.data();
    for (int i = 0; i < 6; ++i) {
        float field = 0.0F;
        if (!take_real(&at, &field)) {
            return false;
        }
    }
    return true;
}

// Degrees of a place on the earth: a text, read as such a number, is far below, and
// random bytes are so once in four times.
bool is_degrees(float value, float largest) {
    const float size = std::fabs(value);
    return size == 0.0F || (size >= least_degrees && size <= largest);
}

// Whether at least half of the points lie on the earth.
bool are_of_earth(const std::uint8_t* points, int count) {
    constexpr float most_lat = 90.0F, most_lon = 720.0F;
    int on_earth = 0;
    for (int i = 0; i < count; ++i, points += point_bytes) {
        on_earth +=
            is_degrees(f32be(points), most_lat) && is_degrees(f32be(points + 4), most_lon) ? 1 : 0;
    }
    return 2 * on_earth >= count;
}

// One form of the file: a record's point count (-1: damaged or at the end),
// then its points.
class Records {
public:
    explicit Records(std::FILE* stream) : source_(stream), text_(is_text(source_)) {}

    [[nodiscard]] bool are_bytes() const { return !text_; }
    int count() { return text_ ? text_count() : binary_count(); }

    // The points of a record while they are still bytes, without taking them; null
    // where they are not in the buffer, as those of a text never do.
    const std::uint8_t* ahead(int count) {
        return text_ ? nullptr : source_.ahead(static_cast<std::size_t>(count) * point_bytes);
    }
    // Whether most of the first points lie on the earth; those of a text do.
    bool on_earth(int count) {
        const std::size_t looked_at = static_cast<std::size_t>(std::min(count, usual_points));
        const std::size_t bytes = text_ ? 0 : source_.held(looked_at * point_bytes);
        return are_of_earth(source_.ahead(bytes), static_cast<int>(bytes / point_bytes));
    }
    void pass(int count) { source_.bytes(static_cast<std::size_t>(count) * point_bytes); }

    bool point(float* lat, float* lon) {
        if (text_) {
            return number(lat) && number(lon);
        }
        const std::uint8_t* p = source_.bytes(point_bytes);
        if (p == nullptr) {
            return false;
        }
        *lat = f32be(p);
        *lon = f32be(p + 4);
        return true;
    }

private:
    bool number(float* out) {
        std::array<char, 40> word;
        if (!source_.word(word.data(), word.size())) {
            return false;
        }
        const char* at = word.data();
        return take_real(&at, out);
    }
    int text_count() {
        float header[6] = {};
        for (float& field : header) {
            if (!number(&field)) {
                return -1;
            }
        }
        const bool usable = header[0] >= 0 && header[0] <= most_text_points;
        return usable ? static_cast<int>(header[0]) : -1;
    }
    int binary_count() {
        const std::uint8_t* p = source_.bytes(22);
        return p == nullptr ? -1 : p[0] << 8 | p[1];
    }

    Source source_;
    bool text_;
};

// --- What lies far away ---------------------------------------------------------

// A rectangle of latitudes and longitudes, degrees.
struct Box {
    float south = 90.0F, north = -90.0F;
    float west = 360.0F, east = -360.0F;

    void take(float lat, float lon) {
        south = std::min(south, lat);
        north = std::max(north, lat);
        west = std::min(west, lon);
        east = std::max(east, lon);
    }
};

// The extent of a record while its points are still bytes. Most records of a database
// are far away, and to find that out is all that they cost: both numbers of two points
// are taken at a time.
class Extent {
public:
    Extent(const std::uint8_t* points, int count) {
        const std::uint8_t* const end = points + static_cast<std::ptrdiff_t>(count) * point_bytes;
        for (; end - points >= static_cast<std::ptrdiff_t>(2 * point_bytes);
             points += 2 * point_bytes) {
            take(points);
        }
        if (points < end) { // an odd one, twice
            std::array<std::uint8_t, 2 * point_bytes> two{};
            std::memcpy(two.data(), points, point_bytes);
            std::memcpy(two.data() + point_bytes, points, point_bytes);
            take(two.data());
        }
    }
    // All lie on the earth, none of them where a number of another kind would.
    [[nodiscard]] bool on_earth() const { return !any(off_) && !any(tiny_); }
    [[nodiscard]] bool valid() const { return !any(off_); }
    [[nodiscard]] Box box() const {
        Box box;
        for (const int i : {0, 2}) {
            box.take(low_[i], low_[i + 1]);
            box.take(high_[i], high_[i + 1]);
        }
        return box;
    }

private:
    using Four [[gnu::vector_size(16)]] = float;
    using Words [[gnu::vector_size(16)]] = std::uint32_t;
    using Ints [[gnu::vector_size(16)]] = std::int32_t;
    static bool any(Ints mask) { return (mask[0] | mask[1] | mask[2] | mask[3]) != 0; }
    void take(const std::uint8_t* bytes) {
        Words v;
        std::memcpy(&v, bytes, sizeof v);
        if constexpr (std::endian::native == std::endian::little) {
            v = v >> 24 | (v >> 8 & 0xFF00U) | (v << 8 & 0xFF0000U) | v << 24;
        }
        const auto degrees = std::bit_cast<Four>(v);
        const auto size = std::bit_cast<Four>(v & 0x7FFFFFFFU);
        low_ = degrees < low_ ? degrees : low_;
        high_ = degrees > high_ ? degrees : high_;
        off_ |= ~(size <= Four{90.0F, 360.0F, 90.0F, 360.0F});
        tiny_ |= (size < least_degrees) & (size != 0.0F);
    }
    Four low_{90.0F, 360.0F, 90.0F, 360.0F};
    Four high_ = -low_;
    Ints off_{}, tiny_{};
};

// The picture as such a rectangle, to tell which records it does not show: those
// whose distance exceeds their own size so far that not even the upright rectangle
// about their image, which decides whether a line goes to the device, meets it. Where
// pixels are all that is kept, those that only bend too little to reach it.
class Neighbourhood {
public:
    explicit Neighbourhood(const Map& map) : plane_(map.row->code == proj_latlon) {
        constexpr float largest_lat = 80.0F; // no pole near by
        constexpr float largest_lon = 120.0F;
        constexpr int steps = 12;
        constexpr int codes[] = {proj_latlon, proj_pstereo, proj_lambert, proj_merc};
        if (std::ranges::find(codes, map.row->code) == std::end(codes)) {
            return;
        }
        const MAP_limits& w = map.limits;
        for (int i = 0; i <= steps; ++i) {
            const float t = static_cast<float>(i) / steps;
            const float x = w.x_min + t * (w.x_max - w.x_min);
            const float y = w.y_min + t * (w.y_max - w.y_min);
            const bool seen = take(map, x, w.y_min) && take(map, x, w.y_max) &&
                              take(map, w.x_min, y) && take(map, w.x_max, y);
            if (!seen) {
                return;
            }
        }
        far_scale_ = map.scale;
        known_ = box_.north < largest_lat && box_.south > -largest_lat &&
                 box_.east - box_.west < largest_lon;
        // Room for wide lines, and for the bow of an edge between two samples.
        const float share = at_once_ ? 0.08F : 0.2F;
        pad_ = share * (box_.north - box_.south + box_.east - box_.west);
    }

    // Whether a record can be left out. False where in doubt.
    [[nodiscard]] bool far_from(const Extent& record) const {
        if (!known_ || !record.valid()) {
            return false;
        }
        const Box box = record.box();
        return gap(box) > pad_ + largest_growth(box) * size(box);
    }

private:
    bool take(const Map& map, float x, float y) {
        float lat = 0, lon = 0;
        if (map.untran(x, y, &lat, &lon) != 1 || !std::isfinite(lat) || !std::isfinite(lon)) {
            return false;
        }
        if (box_.north < box_.south) {
            centre_ = lon;
        }
        box_.take(lat, centre_ + std::remainder(lon - centre_, 360.0F));
        return true;
    }
    // Degrees of longitude are shorter away from the equator, but on a map whose
    // plane they are.
    [[nodiscard]] float shrink(float lat) const {
        return plane_ ? 1.0F : std::cos(lat * static_cast<float>(deg_to_rad));
    }
    [[nodiscard]] float gap(const Box& record) const {
        const float in_lat = std::max({box_.south - record.north, record.south - box_.north, 0.0F});
        // From the middle of one to that of the other, less half of each.
        const float halves = (box_.east - box_.west + record.east - record.west) / 2.0F;
        const float middles = std::fabs(
            std::remainder((box_.east + box_.west - record.east - record.west) / 2.0F, 360.0F));
        const float lat = std::max({std::fabs(box_.north), std::fabs(box_.south),
                                    std::fabs(record.north), std::fabs(record.south)});
        return std::max(in_lat, std::max(middles - halves, 0.0F) * shrink(std::min(lat, 90.0F)));
    }
    [[nodiscard]] static float size(const Box& record) {
        return record.north - record.south + record.east - record.west;
    }
    // How many times its size a record has to lie off: its image grows towards the
    // pole that is far away.
    [[nodiscard]] float largest_growth(const Box& record) const {
        constexpr float usual = 3.0F, grown = 8.0F, endless = 1000.0F;
        constexpr float bend = 0.2F; // of lines on their way along a parallel
        const float far = far_scale_ < 0.0F ? -record.north : record.south;
        const float lat = std::min({far, -std::fabs(record.north), -std::fabs(record.south)});
        if (far > -30.0F && lat > -75.0F) {
            return at_once_ && size(record) < 30.0F ? bend : usual;
        }
        return lat > -75.0F ? grown : endless;
    }

    Box box_;
    float centre_ = 0.0F;
    float pad_ = 0.0F;
    float far_scale_ = 1.0F; // -1: the far pole is the northern one
    bool plane_;
    bool at_once_ = gdraws_at_once();
    bool known_ = false;
};

// --- Drawing -------------------------------------------------------------------

// Room for the points of a record.
class Points {
public:
    // Null without memory.
    Gpt* room(int count) {
        if (count < usual_points) {
            return usual_.data();
        }
        if (count > size_) {
            const ZYR_own_report report; // the caller does
            large_.reset(new (std::nothrow) Gpt[static_cast<std::size_t>(count) + 1]);
            size_ = large_ ? count : 0;
        }
        return large_.get();
    }

private:
    std::array<Gpt, usual_points> usual_;
    std::unique_ptr<Gpt[]> large_;
    int size_ = 0;
};

// False if the record ends early.
bool draw_record(const Map& map, Records& records, int count, MapLine line) {
    bool whole = true;
    for (int i = 0; i < count; ++i) {
        float lat = 0;
        float lon = 0;
        float x = 0;
        float y = 0;
        whole = records.point(&lat, &lon);
        if (!whole) {
            break;
        }
        const bool has_image = map.tran(lat, lon, &x, &y) == 1;
        line.add(x, y, has_image);
    }
    line.end();
    return whole;
}

} // namespace

float map_wrap_width(const MapEdge& edge, float y) {
    if (edge.half_height == 0.0) {
        return static_cast<float>(edge.width);
    }
    const double part = y / edge.half_height;
    return static_cast<float>(edge.width * std::sqrt(std::max(0.0, 1 - part * part)));
}

void MapLine::end() {
    if (count_ > 1) {
        if (fill_) {
            gfill_area(count_, points_);
        } else {
            gpolyline(count_, points_);
        }
    }
    count_ = 0;
}

// Ends the piece at the other image of `point`, beyond the edge; on a map without
// one at the point itself.
void MapLine::jump(const Gpt& point) {
    const float shift = map_wrap_shift(edge_, points_[count_ - 1], point, map_line_jump);
    points_[count_++] = {point.x + shift, point.y};
    end();
}

int MAP_set_fill(int value) {
    state.fill = value;
    return 0;
}

int MAP_map(std::FILE* map_file) {
    const Map& map = MAP_current();
    if (!is_map_proj(map.domain.proj) || map_file == nullptr) {
        return 1;
    }
    Records records(map_file);
    const Neighbourhood near(map);
    Points points;
    for (bool first = true;; first = false) {
        const int count = records.count();
        if (count <= 0) {
            return first && count == 0 && records.are_bytes() ? map_no_database : count;
        }
        const std::uint8_t* bytes = records.ahead(count);
        const Extent extent(bytes, bytes != nullptr ? count : 0);
        if ((bytes == nullptr || !extent.on_earth()) && !records.on_earth(count)) {
            return first ? map_no_database : -1;
        }
        if (bytes != nullptr && near.far_from(extent)) {
            records.pass(count);
            continue;
        }
        Gpt* room = points.room(count);
        const bool fill = state.fill != 0;
        if (room == nullptr || !draw_record(map, records, count, {map.row->edge, room, fill})) {
            return -1;
        }
    }
}

int MAP_draw_circle(float x, float y, float rad) {
    constexpr int steps = 48;
    std::array<Gpt, steps + 2> points;
    const Map& map = MAP_current();
    MapLine line(map.row->edge, points.data(), false);
    for (int i = 0; i <= steps; ++i) {
        float xf = 0;
        float yf = 0;
        const float bearing = 7.5F * static_cast<float>(i);
        const bool has_image = map.offset(x, y, bearing, rad, &xf, &yf) == 1;
        line.add(xf, yf, has_image);
    }
    line.end();
    return 0;
}

void keep_map_file(StateKeeper& keeper) {
    keeper.keep(state);
}
