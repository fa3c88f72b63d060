// map_file.cpp: map databases and range rings: lines of the earth, broken
// where the map has an edge. A database is read and drawn record by record and
// is never held in memory. State: whether outlines are painted.
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

#include "maptran.h"
#include "no_memory.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr int usual_points = 1000; // records below this need no memory of their own
constexpr int most_text_points = 32767;

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
        char* end = nullptr;
        std::strtof(at, &end);
        if (end == at) {
            return false;
        }
        at = end;
    }
    return true;
}

// One form of the file: a record's point count (-1: damaged or at the end),
// then its points.
class Records {
public:
    explicit Records(std::FILE* stream) : source_(stream), text_(is_text(source_)) {}

    int count() { return text_ ? text_count() : binary_count(); }

    bool point(float* lat, float* lon) {
        if (text_) {
            return number(lat) && number(lon);
        }
        const std::uint8_t* p = source_.bytes(8);
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
        char* end = nullptr;
        *out = std::strtof(word.data(), &end);
        return end != word.data();
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
    Points points;
    for (;;) {
        const int count = records.count();
        if (count <= 0) {
            return count;
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
