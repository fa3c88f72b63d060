// gks_raster: the pixels of areas, thin and wide lines, and dashes. No state.
//
// All sums are of integers, or of doubles where the protocol's sample server has
// doubles, so that both round alike. Most areas of a radar picture cover one to four
// pixels: small ones are filled row by row without a table of edges.

#include "gks_raster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

namespace {

// The next whole number at or above a fraction; `divisor` is positive.
std::int64_t ceil_div(std::int64_t value, std::int64_t divisor) {
    return value > 0 ? (value - 1) / divisor + 1 : -(-value / divisor);
}

int ceil_int(double value) {
    return static_cast<int>(std::ceil(value));
}

bool has_bit(const Gink& ink, int x, int y) {
    return ((*ink.pattern)[y & 7] >> (x & 7) & 1) != 0;
}

void set_pixel(const Gcanvas& canvas, const Gink& ink, int x, int y) {
    if (ink.pattern == nullptr || has_bit(ink, x, y)) {
        canvas.pixels[static_cast<std::ptrdiff_t>(y) * canvas.width + x] = ink.pixel;
    }
}

bool same_place(Gpixel a, Gpixel b) {
    return a.x == b.x && a.y == b.y;
}

bool is_inside(const Gbox& box, int x, int y) {
    return x >= box.x1 && x < box.x2 && y >= box.y1 && y < box.y2;
}

// Columns x1 to x2 - 1 of row y, which lies within the clip.
void fill_span(const Gcanvas& canvas, const Gink& ink, int y, int x1, int x2) {
    x1 = std::max(x1, canvas.clip.x1);
    x2 = std::min(x2, canvas.clip.x2);
    if (ink.pattern != nullptr) {
        for (int x = x1; x < x2; ++x) {
            set_pixel(canvas, ink, x, y);
        }
    } else if (x1 < x2) {
        std::uint32_t* row = canvas.pixels + static_cast<std::ptrdiff_t>(y) * canvas.width;
        std::fill(row + x1, row + x2, ink.pixel);
    }
}

void fill_box(const Gcanvas& canvas, const Gink& ink, const Gbox& box) {
    const int y2 = std::min(box.y2, canvas.clip.y2);
    for (int y = std::max(box.y1, canvas.clip.y1); y < y2; ++y) {
        fill_span(canvas, ink, y, box.x1, box.x2);
    }
}

// --- Areas ----------------------------------------------------------------------

// Side of an area, from its upper end to before its lower one.
struct Side {
    int x, y;   // upper end
    int dx, dy; // to the lower one; dy above 0
};

Side side_between(Gpixel a, Gpixel b) {
    const Gpixel& top = a.y < b.y ? a : b;
    const Gpixel& low = a.y < b.y ? b : a;
    return {top.x, top.y, low.x - top.x, low.y - top.y};
}

// The first column at or right of the side in row y. Coordinates have 16 bits: the
// product has 33 at most, and 32 in all but figures that pass the whole range.
int crossing(const Side& side, int y) {
    const int rows = y - side.y;
    if (rows == 0 || side.dx == 0) {
        return side.x;
    }
    if (std::abs(side.dx) < 0x4000 && rows < 0x4000) { // the common case
        const int value = rows * side.dx;
        return side.x + (value > 0 ? (value - 1) / side.dy + 1 : -(-value / side.dy));
    }
    return side.x + static_cast<int>(ceil_div(std::int64_t{rows} * side.dx, side.dy));
}

// Fills between the columns of a row in pairs.
void fill_row(const Gcanvas& canvas, const Gink& ink, int y, int* columns, int count) {
    if (count == 2) {
        fill_span(canvas, ink, y, std::min(columns[0], columns[1]),
                  std::max(columns[0], columns[1]));
        return;
    }
    std::sort(columns, columns + count);
    for (int i = 0; i + 1 < count; i += 2) {
        fill_span(canvas, ink, y, columns[i], columns[i + 1]);
    }
}

constexpr int few_points = 12;

void fill_small(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points, int top,
                int low) {
    std::array<Side, few_points> sides;
    int num_sides = 0;
    Gpixel before = points.back();
    for (const Gpixel& point : points) {
        if (point.y != before.y) {
            sides[num_sides++] = side_between(before, point);
        }
        before = point;
    }
    std::array<int, few_points> columns;
    for (int y = top; y < low; ++y) {
        int count = 0;
        for (int i = 0; i < num_sides; ++i) {
            const Side& side = sides[i];
            if (y >= side.y && y - side.y < side.dy) {
                columns[count++] = crossing(side, y);
            }
        }
        fill_row(canvas, ink, y, columns.data(), count);
    }
}

// Of many corners: sides come into the row where they begin.
void fill_large(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points, int top,
                int low) {
    std::vector<Side> sides;
    sides.reserve(points.size());
    Gpixel before = points.back();
    for (const Gpixel& point : points) {
        if (point.y != before.y) {
            sides.push_back(side_between(before, point));
        }
        before = point;
    }
    std::sort(sides.begin(), sides.end(), [](const Side& a, const Side& b) { return a.y < b.y; });
    std::vector<Side> active;
    std::vector<int> columns;
    std::size_t next = 0;
    for (int y = top; y < low; ++y) {
        for (; next < sides.size() && sides[next].y <= y; ++next) {
            active.push_back(sides[next]);
        }
        std::erase_if(active, [y](const Side& side) { return y - side.y >= side.dy; });
        columns.clear();
        for (const Side& side : active) {
            columns.push_back(crossing(side, y));
        }
        fill_row(canvas, ink, y, columns.data(), static_cast<int>(columns.size()));
    }
}

// --- Thin lines -----------------------------------------------------------------

// A thin segment goes along its longer axis. Where the other coordinate lies midway
// between two pixels it steps on.
struct Thin {
    bool steep; // the longer axis is y
    int at, across;
    int step, side_step; // 1 or -1 along the axes
    int len, rise;       // steps of each

    Thin(Gpixel a, Gpixel b) {
        const int dx = b.x - a.x;
        const int dy = b.y - a.y;
        steep = std::abs(dx) < std::abs(dy);
        at = steep ? a.y : a.x;
        across = steep ? a.x : a.y;
        const int along = steep ? dy : dx;
        const int aside = steep ? dx : dy;
        step = along < 0 ? -1 : 1;
        side_step = aside < 0 ? -1 : 1;
        len = std::abs(along);
        rise = std::abs(aside);
    }
    // Steps aside before pixel k.
    [[nodiscard]] int aside(int k) const {
        return len == 0
                   ? 0
                   : static_cast<int>((std::int64_t{2} * k * rise + len) / (std::int64_t{2} * len));
    }
};

// The pixels from `first` to before `last` that lie in the clip.
template <class Put> void walk(const Thin& line, const Gbox& clip, int first, int last, Put put) {
    const int low = line.steep ? clip.y1 : clip.x1;
    const int high = line.steep ? clip.y2 : clip.x2; // beyond the last
    const int side_low = line.steep ? clip.x1 : clip.y1;
    const int side_high = line.steep ? clip.x2 : clip.y2;
    if (line.step > 0) {
        first = std::max(first, low - line.at);
        last = std::min(last, high - line.at);
    } else {
        first = std::max(first, line.at - high + 1);
        last = std::min(last, line.at - low + 1);
    }
    if (first >= last) {
        return;
    }
    const int begun = line.aside(first);
    int at = line.at + line.step * first;
    int across = line.across + line.side_step * begun;
    // As the remainder of aside(), less a whole.
    std::int64_t rest =
        std::int64_t{2} * first * line.rise + line.len - std::int64_t{2} * line.len * (begun + 1);
    for (int k = first; k < last; ++k, at += line.step) {
        if (across >= side_low && across < side_high) {
            put(k, line.steep ? across : at, line.steep ? at : across);
        }
        rest += std::int64_t{2} * line.rise;
        if (rest >= 0) {
            across += line.side_step;
            rest -= std::int64_t{2} * line.len;
        }
    }
}

// All of a solid segment but its last pixel, with nothing to ask on the way.
void draw_free(const Gcanvas& canvas, std::uint32_t pixel, const Thin& line) {
    const std::ptrdiff_t row = canvas.width;
    const std::ptrdiff_t x = line.steep ? line.across : line.at;
    const std::ptrdiff_t y = line.steep ? line.at : line.across;
    std::uint32_t* p = canvas.pixels + y * row + x;
    const std::ptrdiff_t step = line.steep ? line.step * row : line.step;
    const std::ptrdiff_t side_step = line.steep ? line.side_step : line.side_step * row;
    int rest = -line.len;
    for (int k = 0; k < line.len; ++k) {
        *p = pixel;
        p += step;
        rest += 2 * line.rise;
        if (rest >= 0) {
            p += side_step;
            rest -= 2 * line.len;
        }
    }
}

void thin_solid(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points) {
    const Gbox& clip = canvas.clip;
    bool seen = true; // both ends of the last segment
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Gpixel a = points[i];
        const Gpixel b = points[i + 1];
        const Thin line(a, b);
        seen = ink.pattern == nullptr && is_inside(clip, a.x, a.y) && is_inside(clip, b.x, b.y);
        if (seen) {
            draw_free(canvas, ink.pixel, line);
        } else {
            walk(line, clip, 0, line.len,
                 [&](int /*k*/, int x, int y) { set_pixel(canvas, ink, x, y); });
        }
    }
    // The server takes the end of a closed line for drawn, though it be one pixel.
    if (!seen || !same_place(points.front(), points.back())) {
        graster_point(canvas, ink, points.back());
    }
}

// Whether pixel number `k` of a polyline is on.
bool is_on(const Gdash& dash, int period, int k) {
    int rest = k % period;
    for (int i = 0; i < dash.count; ++i) {
        rest -= dash.lengths[i];
        if (rest < 0) {
            return i % 2 == 0;
        }
    }
    return true;
}

int period_of(const Gdash& dash) {
    int sum = 0;
    for (int i = 0; i < dash.count; ++i) {
        sum += dash.lengths[i];
    }
    return sum;
}

void thin_dashed(const Gcanvas& canvas, const Gink& ink, const Gdash& dash,
                 std::span<const Gpixel> points) {
    const int period = period_of(dash);
    int begun = 0; // of the period, at the segment's start
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Thin line(points[i], points[i + 1]);
        const bool last = i + 2 == points.size();
        walk(line, canvas.clip, 0, line.len + (last ? 1 : 0), [&](int k, int x, int y) {
            if (is_on(dash, period, begun + k)) {
                set_pixel(canvas, ink, x, y);
            }
        });
        begun = (begun + line.len) % period;
    }
}

// --- Areas of four corners with their outline -----------------------------------

// Where such a figure goes down once and up once each row is one span: what the area
// takes lies between two pixels of the outline, or next to one. The outline alone decides
// the span, in one go over the sides.
constexpr int few_rows = 24;

class Spans {
public:
    Spans(int top, int rows) : top_(top), rows_(rows) {
        for (int i = 0; i < rows; ++i) {
            of_row_[i] = {std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
        }
    }
    void take(int x, int y) {
        Row& row = of_row_[y - top_];
        row.first = std::min(row.first, x);
        row.last = std::max(row.last, x);
    }
    // The pixels of a thin side but its last, as draw_free has them.
    void take_side(Gpixel a, Gpixel b) {
        take(a.x, a.y);
        if (std::abs(b.x - a.x) < 2 && std::abs(b.y - a.y) < 2) {
            return;
        }
        const Thin line(a, b);
        int at = line.at;
        int across = line.across;
        int rest = -line.len;
        for (int k = 1; k < line.len; ++k) {
            at += line.step;
            rest += 2 * line.rise;
            if (rest >= 0) {
                across += line.side_step;
                rest -= 2 * line.len;
            }
            line.steep ? take(across, at) : take(at, across);
        }
    }
    void fill(const Gcanvas& canvas, std::uint32_t pixel) const {
        std::uint32_t* row = canvas.pixels + static_cast<std::ptrdiff_t>(top_) * canvas.width;
        for (int i = 0; i < rows_; ++i, row += canvas.width) {
            for (int x = of_row_[i].first; x <= of_row_[i].last; ++x) {
                row[x] = pixel;
            }
        }
    }

private:
    struct Row {
        int first, last;
    };
    int top_, rows_;
    std::array<Row, few_rows> of_row_; // set as far as it is used
};

// Whether the sides turn from down to up and back no more than once.
bool goes_down_once(const Gquad& quad) {
    int turns = 0;
    int first = 0;
    int before = 0;
    for (std::size_t i = 0; i < quad.size(); ++i) {
        const int dy = quad[(i + 1) % quad.size()].y - quad[i].y;
        if (dy != 0) {
            const int way = dy < 0 ? -1 : 1;
            first = first == 0 ? way : first;
            turns += before != 0 && way != before ? 1 : 0;
            before = way;
        }
    }
    return turns + (before != first ? 1 : 0) <= 2;
}

// Draws one of few rows within the clip. False, with nothing drawn, for others.
bool fill_quad(const Gcanvas& canvas, std::uint32_t pixel, const Gquad& quad) {
    const auto [a, b, c, d] = quad;
    const int left = std::min(std::min(a.x, b.x), std::min(c.x, d.x));
    const int right = std::max(std::max(a.x, b.x), std::max(c.x, d.x));
    const int top = std::min(std::min(a.y, b.y), std::min(c.y, d.y));
    const int low = std::max(std::max(a.y, b.y), std::max(c.y, d.y));
    const Gbox& clip = canvas.clip;
    if (left < clip.x1 || right >= clip.x2 || top < clip.y1 || low >= clip.y2 ||
        low - top >= few_rows) {
        return false;
    }
    if (right - left <= 1 && low - top <= 1) {
        if (left == right && top == low) {
            return true; // the server leaves it out, see thin_solid
        }
        for (const Gpixel& p : quad) { // its corners are all
            canvas.pixels[static_cast<std::ptrdiff_t>(p.y) * canvas.width + p.x] = pixel;
        }
        return true;
    }
    if (!goes_down_once(quad)) {
        return false;
    }
    Spans spans(top, low - top + 1);
    spans.take_side(a, b);
    spans.take_side(b, c);
    spans.take_side(c, d);
    spans.take_side(d, a);
    spans.fill(canvas, pixel);
    return true;
}

// --- Wide lines -----------------------------------------------------------------

struct Corner {
    double x, y;
};

// The line that a side of a convex figure lies on: x * dy - y * dx = k.
struct Slope {
    std::int64_t dx, dy;
    double k;
};

// A convex figure whose corners and slopes are measured from pixels of their own,
// the bases: corner i to corner i + 1 on slope i.
struct Convex {
    static constexpr int most = 4;
    int count = 0;
    std::array<Corner, most> corners{};
    std::array<Slope, most> slopes{};
    std::array<Gpixel, most> corner_base{};
    std::array<Gpixel, most> slope_base{};

    void add(Corner corner, Slope slope, Gpixel base) { add(corner, base, slope, base); }
    void add(Corner corner, Gpixel base, Slope slope, Gpixel of_slope) {
        corners[count] = corner;
        slopes[count] = slope;
        corner_base[count] = base;
        slope_base[count] = of_slope;
        ++count;
    }
    [[nodiscard]] double x(int i) const { return corners[i % count].x + corner_base[i % count].x; }
    [[nodiscard]] double y(int i) const { return corners[i % count].y + corner_base[i % count].y; }
    // The first row at or below a corner.
    [[nodiscard]] int row(int i) const {
        return ceil_int(corners[i % count].y) + corner_base[i % count].y;
    }
};

bool turns_right(const Convex& figure) {
    double sum = 0.0;
    for (int i = 0; i < figure.count; ++i) {
        sum += (figure.x(i) - figure.x(0)) * (figure.y(i + 1) - figure.y(0)) -
               (figure.x(i + 1) - figure.x(0)) * (figure.y(i) - figure.y(0));
    }
    return sum > 0.0;
}

// The columns that a side bounds, row by row.
struct Bound {
    int first_row, last_row; // up to before the last
    std::int64_t dx, dy, sum;
    int base_x, base_y;
    bool right;

    [[nodiscard]] int column(int y) const {
        const std::int64_t value = sum + std::int64_t{y - base_y} * dx;
        return base_x + static_cast<int>(ceil_div(value, dy));
    }
};

void fill_convex(const Gcanvas& canvas, const Gink& ink, const Convex& figure) {
    const bool clockwise = turns_right(figure);
    std::array<Bound, Convex::most> bounds{};
    int count = 0;
    int top = std::numeric_limits<int>::max();
    int low = std::numeric_limits<int>::min();
    for (int i = 0; i < figure.count; ++i) {
        Slope slope = figure.slopes[i];
        const int from = figure.row(i);
        const int to = figure.row(i + 1);
        top = std::min(top, from);
        low = std::max(low, from);
        if (slope.dy == 0 || from == to) {
            continue;
        }
        if (slope.dy < 0) {
            slope = {-slope.dx, -slope.dy, -slope.k};
        }
        bounds[count++] = {std::min(from, to),
                           std::max(from, to),
                           slope.dx,
                           slope.dy,
                           static_cast<std::int64_t>(std::ceil(slope.k)),
                           figure.slope_base[i].x,
                           figure.slope_base[i].y,
                           (to > from) == clockwise};
    }
    const int end = std::min(low, canvas.clip.y2);
    for (int y = std::max(top, canvas.clip.y1); y < end; ++y) {
        int left = std::numeric_limits<int>::min();
        int right = std::numeric_limits<int>::max();
        int sides = 0;
        for (int i = 0; i < count; ++i) {
            const Bound& bound = bounds[i];
            if (y < bound.first_row || y >= bound.last_row) {
                continue;
            }
            if (bound.right) {
                right = std::min(right, bound.column(y));
                sides |= 1;
            } else {
                left = std::max(left, bound.column(y));
                sides |= 2;
            }
        }
        if (sides == 3 && left < right) {
            fill_span(canvas, ink, y, left, right);
        }
    }
}

// An end of a segment, for the corner with the next one.
struct Face {
    double xa, ya; // to the corner on its side
    int dx, dy;    // of the segment, away from the end
    Gpixel at;
};

// The figure of one wide segment, its ends cut straight or half a width further.
void wide_segment(const Gcanvas& canvas, const Gink& ink, int width, Gpixel a, Gpixel b,
                  bool further_a, bool further_b, Face* face_a, Face* face_b) {
    if (b.y < a.y || (b.y == a.y && b.x < a.x)) {
        std::swap(a, b);
        std::swap(further_a, further_b);
        std::swap(face_a, face_b);
    }
    const int dx = b.x - a.x;
    const int dy = b.y - a.y;
    const double half = static_cast<double>(width) / 2.0;
    const int before = width / 2;
    const int after = (width + 1) / 2;
    *face_a = {0.0, 0.0, dx, dy, a};
    *face_b = {0.0, 0.0, -dx, -dy, b};
    if (dy == 0) {
        face_a->ya = -half;
        face_b->ya = half;
        fill_box(canvas, ink,
                 {a.x - (further_a ? before : 0), a.y - before, b.x + (further_b ? after : 0),
                  a.y - before + width});
        return;
    }
    if (dx == 0) {
        face_a->xa = half;
        face_b->xa = -half;
        fill_box(canvas, ink,
                 {a.x - before, a.y - (further_a ? before : 0), a.x - before + width,
                  b.y + (further_b ? after : 0)});
        return;
    }
    const double length = std::hypot(static_cast<double>(dx), static_cast<double>(dy));
    const double r = half / length;
    const double xa = r * dy;
    const double ya = -r * dx;
    const double k = half * length;
    face_a->xa = xa;
    face_a->ya = ya;
    face_b->xa = -xa;
    face_b->ya = -ya;
    // What an end reaches further, along the segment.
    const double ex = -ya;
    const double ey = xa;
    const double ax = further_a ? -ex : 0.0;
    const double ay = further_a ? -ey : 0.0;
    const double bx = further_b ? ex : 0.0;
    const double by = further_b ? ey : 0.0;
    Convex figure;
    figure.add({xa + ax, ya + ay}, {dx, dy, k}, a);
    figure.add({xa + bx, ya + by}, {-dy, dx, (xa + bx) * dx + (ya + by) * dy}, b);
    figure.add({-xa + bx, -ya + by}, b, {dx, dy, -k}, a);
    figure.add({-xa + ax, -ya + ay}, {-dy, dx, (xa + ax) * dx + (ya + ay) * dy}, a);
    if (!further_b) {
        figure.slopes[1].k = 0.0;
    }
    if (!further_a) {
        figure.slopes[3].k = 0.0;
    }
    fill_convex(canvas, ink, figure);
}

// The bevel between two segments: the triangle that they leave open.
void join(const Gcanvas& canvas, const Gink& ink, int width, Face left, Face right) {
    const double turn =
        -static_cast<double>(left.dx) * right.dy + static_cast<double>(right.dx) * left.dy;
    if (width == 1 && turn != 0.0) {
        graster_point(canvas, ink, left.at);
        return;
    }
    if (turn == 0.0) {
        return;
    }
    Face& turned = turn > 0.0 ? left : right;
    turned.xa = -turned.xa;
    turned.ya = -turned.ya;
    turned.dx = -turned.dx;
    turned.dy = -turned.dy;
    const double dx = right.xa - left.xa;
    const double dy = right.ya - left.ya;
    const double scale = std::max(std::fabs(dx), std::fabs(dy));
    constexpr double fine = 65536.0;
    Slope bevel = {static_cast<std::int64_t>(dx * fine / scale),
                   static_cast<std::int64_t>(dy * fine / scale), 0.0};
    bevel.k = ((left.xa + right.xa) * static_cast<double>(bevel.dy) -
               (left.ya + right.ya) * static_cast<double>(bevel.dx)) /
              2.0;
    Convex figure;
    figure.add({right.xa, right.ya}, {-right.dy, right.dx, 0.0}, left.at);
    figure.add({0.0, 0.0}, {left.dy, -left.dx, 0.0}, left.at);
    figure.add({left.xa, left.ya}, bevel, left.at);
    fill_convex(canvas, ink, figure);
}

void wide_solid(const Gcanvas& canvas, const Gink& ink, const Gstroke& stroke,
                std::span<const Gpixel> points) {
    const bool closed = same_place(points.front(), points.back());
    const bool further = stroke.projecting && !closed;
    bool drawn = false;
    Face first{};
    Face before{};
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (same_place(points[i - 1], points[i])) {
            continue;
        }
        const bool last = i + 1 == points.size();
        Face left{};
        Face right{};
        wide_segment(canvas, ink, stroke.width, points[i - 1], points[i], further && !drawn,
                     further && last, &left, &right);
        if (drawn) {
            join(canvas, ink, stroke.width, left, before);
        } else {
            first = left;
        }
        before = right;
        drawn = true;
    }
    if (drawn && closed) {
        join(canvas, ink, stroke.width, first, before);
    } else if (!drawn) {
        Face none{};
        Face other{};
        wide_segment(canvas, ink, stroke.width, points.back(), points.back(), stroke.projecting,
                     stroke.projecting, &none, &other);
    }
}

// Where in its dashes a polyline is.
struct Dash_state {
    const Gdash& dash;
    int index = 0;
    int offset = 0;        // of the dash, gone by
    bool ended_on = false; // the segment before, in its last pixel

    [[nodiscard]] bool on() const { return index % 2 == 0; }
    [[nodiscard]] int length() const { return dash.lengths[index]; }
    void next() { index = index + 1 == dash.count ? 0 : index + 1; }
};

// The dashes of one segment, each a rectangle along it.
void dashed_segment(const Gcanvas& canvas, const Gink& ink, int width, Gpixel a, Gpixel b,
                    Dash_state* state, Face* face_a, Face* face_b) {
    const int dx = b.x - a.x;
    const int dy = b.y - a.y;
    const double half = static_cast<double>(width) / 2.0;
    double length = 0.0;
    double rdx = 0.0;
    double rdy = 0.0;
    if (dx == 0) {
        length = std::abs(dy);
        rdy = dy < 0 ? -half : half;
    } else if (dy == 0) {
        length = std::abs(dx);
        rdx = dx < 0 ? -half : half;
    } else {
        length = std::hypot(static_cast<double>(dx), static_cast<double>(dy));
        const double r = half / length;
        rdx = r * dx;
        rdy = r * dy;
    }
    const double k = half * length;
    Convex figure;
    figure.add({rdy, -rdx}, {dx, dy, k}, a);    // top
    figure.add({rdy, -rdx}, {-dy, dx, 0.0}, a); // right
    figure.add({-rdy, rdx}, {-dx, -dy, k}, a);  // bottom
    figure.add({-rdy, rdx}, {dy, -dx, 0.0}, a); // left
    enum { top, right, bottom, left };
    auto& corners = figure.corners;
    auto& slopes = figure.slopes;
    int remain = state->length() - state->offset;
    double rest = length;
    while (rest > remain) {
        const double step_x = (remain * dx) / length;
        const double step_y = (remain * dy) / length;
        for (const int i : {right, bottom}) {
            corners[i].x += step_x;
            corners[i].y += step_y;
        }
        slopes[right].k = corners[right].x * dx + corners[right].y * dy;
        if (state->on()) {
            fill_convex(canvas, ink, figure);
        }
        rest -= remain;
        state->next();
        remain = state->length();
        corners[left] = corners[bottom];
        corners[top] = corners[right];
        slopes[left].k = -slopes[right].k;
    }
    if (state->on()) {
        for (const int i : {top, left}) {
            corners[i].x -= dx;
            corners[i].y -= dy;
        }
        corners[right] = {rdy, -rdx};
        corners[bottom] = {-rdy, rdx};
        slopes[right].k = 0.0;
        slopes[left].k += static_cast<double>(dx) * dx + static_cast<double>(dy) * dy;
        figure.corner_base.fill(b);
        figure.slope_base.fill(b);
        fill_convex(canvas, ink, figure);
    }
    state->ended_on = state->on();
    remain = static_cast<int>(remain - rest);
    if (remain == 0) {
        state->next();
        remain = state->length();
    }
    state->offset = state->length() - remain;
    *face_a = {rdy, -rdx, dx, dy, a};
    *face_b = {-rdy, rdx, -dx, -dy, b};
}

void wide_dashed(const Gcanvas& canvas, const Gink& ink, const Gstroke& stroke,
                 std::span<const Gpixel> points) {
    const bool closed = same_place(points.front(), points.back());
    Dash_state state{*stroke.dash};
    bool drawn = false;
    bool first_on = false;
    bool before_on = false;
    Face first{};
    Face before{};
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (same_place(points[i - 1], points[i])) {
            continue;
        }
        const bool on = state.on();
        Face left{};
        Face right{};
        dashed_segment(canvas, ink, stroke.width, points[i - 1], points[i], &state, &left, &right);
        if (!drawn) {
            first = left;
            first_on = on;
        } else if (on && before_on) {
            join(canvas, ink, stroke.width, left, before);
        }
        before = right;
        before_on = state.ended_on;
        drawn = true;
    }
    if (drawn && closed && first_on && before_on) {
        join(canvas, ink, stroke.width, first, before);
    }
}

} // namespace

void graster_point(const Gcanvas& canvas, const Gink& ink, Gpixel at) {
    if (is_inside(canvas.clip, at.x, at.y)) {
        set_pixel(canvas, ink, at.x, at.y);
    }
}

void graster_area(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points) {
    if (points.size() < 3) {
        return;
    }
    const auto [top, low] = std::minmax_element(
        points.begin(), points.end(), [](const Gpixel& a, const Gpixel& b) { return a.y < b.y; });
    const int first = std::max<int>(top->y, canvas.clip.y1);
    const int last = std::min<int>(low->y, canvas.clip.y2);
    if (points.size() <= few_points) {
        fill_small(canvas, ink, points, first, last);
    } else {
        fill_large(canvas, ink, points, first, last);
    }
}

void graster_outlined(const Gcanvas& canvas, const Gink& ink, std::span<const Gpixel> points) {
    if (ink.pattern == nullptr && points.size() == 5 && same_place(points[0], points[4])) {
        graster_quad(canvas, ink.pixel, {points[0], points[1], points[2], points[3]});
        return;
    }
    graster_area(canvas, ink, points);
    graster_lines(canvas, ink, {0, false, nullptr}, points);
}

void graster_quad(const Gcanvas& canvas, std::uint32_t pixel, const Gquad& quad) {
    if (!fill_quad(canvas, pixel, quad)) {
        const std::array<Gpixel, 5> closed = {quad[0], quad[1], quad[2], quad[3], quad[0]};
        graster_area(canvas, {pixel, nullptr}, closed);
        graster_lines(canvas, {pixel, nullptr}, {0, false, nullptr}, closed);
    }
}

void graster_lines(const Gcanvas& canvas, const Gink& ink, const Gstroke& stroke,
                   std::span<const Gpixel> points) {
    if (points.size() < 2) {
        return;
    }
    const bool dashed = stroke.dash != nullptr && stroke.dash->count > 0;
    if (stroke.width > 0) {
        dashed ? wide_dashed(canvas, ink, stroke, points) : wide_solid(canvas, ink, stroke, points);
    } else if (dashed) {
        thin_dashed(canvas, ink, *stroke.dash, points);
    } else {
        thin_solid(canvas, ink, points);
    }
}
