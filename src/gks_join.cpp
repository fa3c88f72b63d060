// gks_join: the filled figures of a small page. Owns those that are kept until
// something else is drawn. Bins of a radial that follow one another in one colour
// become one figure as they come. Of many small ones the dots of the printer are
// worked out, a band of the page at a time, and what is written are the outlines
// of the areas of one colour: a printer paints each dot that a figure touches, the
// last figure wins, and the outlines run between the dots, so that the page shows
// the same. Few or large figures are written as they are, at any resolution.

#include "gks_join.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t most_quads = 1000000;
constexpr std::size_t most_paints = 255;
constexpr std::size_t most_cells = std::size_t{1} << 24; // of a band
constexpr int path_points = 1000; // of a path, after which a new one begins: old printers hold 1500
// Fewer or larger figures are written as they are. Dots squared.
constexpr std::size_t few_figures = 200;
constexpr double large_figure = 64.0;

struct Vector {
    double x, y;
};

double cross(const Vector& a, const Vector& b) {
    return a.x * b.y - a.y * b.x;
}

Vector step(const Gpage_pt& from, const Gpage_pt& to) {
    return {static_cast<double>(to.x) - from.x, static_cast<double>(to.y) - from.y};
}

// The directions from the start of a side in which a straight line passes all of
// its points closely enough.
class Sleeve {
public:
    void begin(const Gpage_pt& start, const Gpage_pt& end) {
        start_ = start;
        open_ = true;
        narrow(step(start, end));
    }
    // Whether the side can go on to a point.
    [[nodiscard]] bool reaches(const Gpage_pt& end) const {
        const Vector v = step(start_, end);
        return open_ || (v.x * last_.x + v.y * last_.y >= last_.x * last_.x + last_.y * last_.y &&
                         cross(low_, v) >= 0.0 && cross(v, high_) >= 0.0);
    }
    void extend(const Gpage_pt& end) { narrow(step(start_, end)); }

private:
    static constexpr double tolerance = 1.5; // places are rounded

    void narrow(const Vector& v) {
        const double length = std::hypot(v.x, v.y);
        last_ = v;
        if (length <= 2.0 * tolerance) {
            return; // any direction
        }
        const Vector off = {-v.y / length * tolerance, v.x / length * tolerance};
        const Vector low = {v.x - off.x, v.y - off.y};
        const Vector high = {v.x + off.x, v.y + off.y};
        if (open_ || cross(low_, low) > 0.0) {
            low_ = low;
        }
        if (open_ || cross(high, high_) > 0.0) {
            high_ = high;
        }
        open_ = false;
    }

    Gpage_pt start_{};
    bool open_ = true;
    Vector last_{}, low_{}, high_{};
};

struct Quad {
    std::array<Gpage_pt, 4> at; // near side from 0 to 1, far side from 3 to 2
    std::uint8_t paint;         // in `paints`, from 1
};

struct Join {
    Gpage_dots dots;
    std::vector<Quad> quads;
    std::vector<int> paints; // the caller's
    std::size_t figures = 0;
    double area = 0.0; // of all, hundredths of a point squared
    Sleeve near, far;  // of the last quad
};
Join join;

// Twice the area, of one sign for each sense of rotation.
double signed_area(const std::array<Gpage_pt, 4>& p) {
    return cross(step(p[0], p[2]), step(p[1], p[3]));
}

// Rounding of the places may dent a figure by a unit.
bool is_convex(std::span<const Gpage_pt, 4> p) {
    bool left = false;
    bool right = false;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const Vector a = step(p[i], p[(i + 1) % 4]);
        const Vector b = step(p[(i + 1) % 4], p[(i + 2) % 4]);
        const double dent = 2.0 * (std::hypot(a.x, a.y) + std::hypot(b.x, b.y));
        left = left || cross(a, b) > dent;
        right = right || cross(a, b) < -dent;
    }
    return !left || !right;
}

// The number of a paint; 0 where there is no room for another one.
std::uint8_t paint_number(int paint) {
    if (!join.quads.empty() && join.paints[join.quads.back().paint - 1U] == paint) {
        return join.quads.back().paint;
    }
    const auto found = std::ranges::find(join.paints, paint);
    if (found == join.paints.end()) {
        if (join.paints.size() == most_paints) {
            return 0;
        }
        join.paints.push_back(paint);
        return static_cast<std::uint8_t>(join.paints.size());
    }
    return static_cast<std::uint8_t>(found - join.paints.begin() + 1);
}

bool extend_last(std::span<const Gpage_pt, 4> p, std::uint8_t paint) {
    if (join.quads.empty()) {
        return false;
    }
    Quad& last = join.quads.back();
    if (last.paint != paint || last.at[1] != p[0] || last.at[2] != p[3] ||
        !join.near.reaches(p[1]) || !join.far.reaches(p[2])) {
        return false;
    }
    last.at[1] = p[1];
    last.at[2] = p[2];
    join.near.extend(p[1]);
    join.far.extend(p[2]);
    return true;
}

// --- Paths on their way to the page -------------------------------------------------

class Path {
public:
    Path(OutText& out, Gput_paint put_paint) : out_(out), put_paint_(put_paint) {}
    // Begins a part of the path, or the path.
    void begin(int x, int y, int paint) {
        if (points_ == 0) {
            put_paint_(out_, join.paints[paint - 1U]);
            numbers(x, y);
            out_.put("M\n");
        } else {
            numbers(x - x_, y - y_);
            put_last("m\n", "n\n");
        }
        x_ = x;
        y_ = y;
        ++points_;
    }
    void step(int x, int y, std::string_view op) {
        numbers(x, y);
        out_.put(op);
        ++points_;
    }
    // The last step of a part, along x alone if `flat`; what is left closes it.
    void last(int x, int y, bool flat) { last_ = {x, y, flat}; }
    // No further part may belong to the same area.
    void rest() {
        if (points_ >= path_points) {
            end();
        }
    }
    void end() {
        if (points_ > 0) {
            put_last("f\n", "F\n");
            points_ = 0;
        }
    }

private:
    struct Last {
        int x, y;
        bool flat;
    };
    void numbers(int a, int b) {
        out_.number(a);
        out_.put(" ");
        out_.number(b);
        out_.put(" ");
    }
    void put_last(std::string_view op, std::string_view flat_op) {
        out_.number(last_.x);
        out_.put(" ");
        if (!last_.flat) {
            out_.number(last_.y);
            out_.put(" ");
        }
        out_.put(last_.flat ? flat_op : op);
    }

    OutText& out_;
    Gput_paint put_paint_;
    Last last_{};
    int x_ = 0, y_ = 0; // where the part began
    int points_ = 0;    // of the path; 0: none is open
};

// As they are. Parts of a path turn the same way, or they would cancel out where
// they overlap.
void write_quads(Path& path) {
    int paint = 0;
    bool left = false;
    for (const Quad& quad : join.quads) {
        const std::array<Gpage_pt, 4>& p = quad.at;
        const bool turns_left = signed_area(p) > 0.0;
        if (quad.paint != paint || turns_left != left) {
            path.end();
            paint = quad.paint;
            left = turns_left;
        }
        path.begin(p[0].x, p[0].y, paint);
        path.step(p[1].x - p[0].x, p[1].y - p[0].y, "l\n");
        path.step(p[2].x - p[1].x, p[2].y - p[1].y, "l\n");
        path.last(p[3].x - p[2].x, p[3].y - p[2].y, false);
        path.rest();
    }
    path.end();
}

// --- The dots of a band of the page ---------------------------------------------------

// A dot as it is painted, with a rim of unpainted ones about the band, so that no
// neighbour has to be looked for outside.
class Band {
public:
    // `left` and `low` are the dots of the lower left corner.
    Band(int left, int low, int width, int rows)
        : left_(left), low_(low), width_(width), rows_(rows), stride_(std::size_t(width) + 2),
          paints_(stride_ * (std::size_t(rows) + 2)), marks_(paints_.size()) {}

    void paint(const Quad& quad);
    void write(Path& path);

private:
    enum Mark : std::uint8_t { traced = 1, seen = 2 }; // its lower side; it itself
    enum Direction { go_right, go_up, go_left, go_down };

    // Place of a dot in the band, -1 to its size.
    [[nodiscard]] std::size_t place(int x, int y) const {
        return (static_cast<std::size_t>(y) + 1) * stride_ + static_cast<std::size_t>(x) + 1;
    }
    [[nodiscard]] bool is(int x, int y, std::uint8_t paint) const {
        return paints_[place(x, y)] == paint;
    }
    void write_rows(Path& path, int first, int end, std::uint8_t paint);
    void write_area(Path& path, int x, int y);
    void trace(Path& path, int x, int y);
    void push_runs(int from, int to, int y, std::uint8_t paint);

    struct Dot {
        int x, y;
    };
    int left_, low_, width_, rows_;
    std::size_t stride_;
    std::vector<std::uint8_t> paints_, marks_;
    std::vector<Dot> stack_; // of the area that is walked over
};

// The part of a side between two heights, in dots: how far it reaches left and right.
void reach(const Vector& a, const Vector& b, double low, double high, double* from, double* to) {
    const Vector& bottom = a.y <= b.y ? a : b;
    const Vector& top = a.y <= b.y ? b : a;
    if (top.y < low || bottom.y > high) {
        return;
    }
    const double slope = top.y > bottom.y ? (top.x - bottom.x) / (top.y - bottom.y) : 0.0;
    const double x1 = bottom.y < low ? bottom.x + (low - bottom.y) * slope : bottom.x;
    const double x2 = top.y > high ? bottom.x + (high - bottom.y) * slope : top.x;
    *from = std::min({*from, x1, x2});
    *to = std::max({*to, x1, x2});
}

// The dots from `low` to `high`, at least one, that an extent touches with more than
// its edge.
struct Touched {
    int first, last;
};
Touched touched(double low, double high) {
    constexpr double edge = 1e-7;
    const int first = static_cast<int>(std::floor(low + edge));
    return {first, std::max(first, static_cast<int>(std::ceil(high - edge)) - 1)};
}

// All dots that a figure touches, as a printer fills it.
void Band::paint(const Quad& quad) {
    std::array<Vector, 4> p{};
    for (std::size_t i = 0; i < p.size(); ++i) {
        p[i] = {(quad.at[i].x - join.dots.x) / join.dots.size - left_,
                (quad.at[i].y - join.dots.y) / join.dots.size - low_};
    }
    const auto by_y = [](const Vector& a, const Vector& b) { return a.y < b.y; };
    const auto [lowest, highest] = std::ranges::minmax(p, by_y);
    const Touched rows = touched(lowest.y, highest.y);
    for (int y = std::max(rows.first, 0); y <= std::min(rows.last, rows_ - 1); ++y) {
        double from = std::numeric_limits<double>::max();
        double to = -from;
        for (std::size_t i = 0; i < p.size(); ++i) {
            reach(p[i], p[(i + 1) % p.size()], y, y + 1.0, &from, &to);
        }
        if (from > to || from >= width_ || to < 0.0) {
            continue;
        }
        const Touched dots = touched(std::max(from, -1.0), std::min(to, width_ + 1.0));
        const int first = std::max(dots.first, 0);
        const int last = std::min(dots.last, width_ - 1);
        if (first <= last) {
            std::memset(&paints_[place(first, y)], quad.paint,
                        static_cast<std::size_t>(last - first) + 1);
        }
    }
}

// The outline that has the lower side of a dot in it, with the area on its left.
// Areas are of dots that share sides: at a dot across a corner it turns away.
void Band::trace(Path& path, int x, int y) {
    const std::uint8_t paint = paints_[place(x, y)];
    while (is(x - 1, y, paint) && !is(x - 1, y - 1, paint)) {
        --x; // to the corner
    }
    const int first_x = x;
    const int first_y = y;
    path.begin(left_ + x, low_ + y, paint);
    Direction direction = go_right;
    Dot corner = {x, y}; // the last one
    int across = 0;      // step along x that waits for one along y
    do {
        bool ahead_left = false;
        bool ahead_right = false;
        switch (direction) {
        case go_right:
            marks_[place(x, y)] |= traced;
            ++x;
            ahead_left = is(x, y, paint);
            ahead_right = is(x, y - 1, paint);
            break;
        case go_up:
            ++y;
            ahead_left = is(x - 1, y, paint);
            ahead_right = is(x, y, paint);
            break;
        case go_left:
            --x;
            ahead_left = is(x - 1, y - 1, paint);
            ahead_right = is(x - 1, y, paint);
            break;
        case go_down:
            --y;
            ahead_left = is(x, y - 1, paint);
            ahead_right = is(x - 1, y - 1, paint);
            break;
        }
        if (ahead_left && !ahead_right) {
            continue;
        }
        const auto next = static_cast<Direction>((direction + (ahead_left ? 3 : 1)) % 4);
        if (direction == go_right || direction == go_left) {
            across = x - corner.x;
        } else if (x != first_x || y != first_y || next != go_right) {
            path.step(across, y - corner.y, "L\n");
        }
        corner = {x, y};
        direction = next;
    } while (x != first_x || y != first_y || direction != go_right);
    path.last(across, 0, true);
}

// The runs of dots of a row that belong to the area beside the one that reaches
// from `from` to `to`.
void Band::push_runs(int from, int to, int y, std::uint8_t paint) {
    for (int x = from; x < to; ++x) {
        if (!is(x, y, paint)) {
            continue;
        }
        if ((marks_[place(x, y)] & seen) == 0) {
            stack_.push_back({x, y});
        }
        while (x + 1 < to && is(x + 1, y, paint)) {
            ++x;
        }
    }
}

// The area that has its lowest dot here: its outline, and those of its holes.
void Band::write_area(Path& path, int x, int y) {
    const std::uint8_t paint = paints_[place(x, y)];
    stack_.push_back({x, y});
    while (!stack_.empty()) {
        const Dot dot = stack_.back();
        stack_.pop_back();
        if ((marks_[place(dot.x, dot.y)] & seen) != 0) {
            continue;
        }
        int from = dot.x;
        while (is(from - 1, dot.y, paint)) {
            --from;
        }
        int to = from;
        for (; is(to, dot.y, paint); ++to) {
            std::uint8_t& mark = marks_[place(to, dot.y)];
            mark |= seen;
            if ((mark & traced) == 0 && !is(to, dot.y - 1, paint)) {
                trace(path, to, dot.y);
            }
        }
        push_runs(from, to, dot.y - 1, paint);
        push_runs(from, to, dot.y + 1, paint);
    }
    path.rest();
}

// The areas of a paint that have their first dot in some rows.
void Band::write_rows(Path& path, int first, int end, std::uint8_t paint) {
    for (int y = first; y < end; ++y) {
        const std::uint8_t* const row = &paints_[place(0, y)];
        for (int x = 0; x < width_; ++x) {
            const void* found = std::memchr(row + x, paint, static_cast<std::size_t>(width_ - x));
            if (found == nullptr) {
                break;
            }
            x = static_cast<int>(static_cast<const std::uint8_t*>(found) - row);
            if ((marks_[place(x, y)] & seen) == 0) {
                write_area(path, x, y);
            }
            while (row[x + 1] == paint) {
                ++x;
            }
        }
    }
    path.end();
}

// A few rows at a time, each time beginning with another paint: on coarser printers
// areas overlap, and no colour shall win everywhere.
void Band::write(Path& path) {
    constexpr int strip = 8;
    const auto count = static_cast<int>(join.paints.size());
    for (int y = 0; y < rows_; y += strip) {
        for (int i = 0; i < count; ++i) {
            const int turn = (i + y / strip) % count;
            const int paint = (y / strip) % 2 == 0 ? turn : count - 1 - turn;
            write_rows(path, y, std::min(y + strip, rows_), static_cast<std::uint8_t>(paint + 1));
        }
    }
}

// --- All that is kept -----------------------------------------------------------------

// What the figures take of the box, in dots; none if `width` or `rows` is 0.
struct Extent {
    int left, low, width, rows;
};
Extent extent_in(const Gpage_box& box) {
    Gpage_box b = {std::numeric_limits<int>::max(), std::numeric_limits<int>::min(),
                   std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    for (const Quad& quad : join.quads) {
        for (const Gpage_pt& p : quad.at) {
            b = {std::min(b.x_min, p.x), std::max(b.x_max, p.x), std::min(b.y_min, p.y),
                 std::max(b.y_max, p.y)};
        }
    }
    const auto dots = [](int low, int high, int box_low, int box_high, double origin) {
        const Touched all = touched((std::max(low, box_low) - origin) / join.dots.size - 1.0,
                                    (std::min(high, box_high) - origin) / join.dots.size + 1.0);
        return std::pair(all.first, std::max(all.last - all.first + 1, 0));
    };
    const auto [left, width] = dots(b.x_min, b.x_max, box.x_min, box.x_max, join.dots.x);
    const auto [low, rows] = dots(b.y_min, b.y_max, box.y_min, box.y_max, join.dots.y);
    return {left, low, width, rows};
}

void write_dots(OutText& out, Path& path, const Gpage_box& box) {
    const Extent all = extent_in(box);
    if (all.width == 0 || all.rows == 0) {
        return;
    }
    for (const auto& [number, end] :
         {std::pair(join.dots.x, " "), std::pair(join.dots.y, " translate "),
          std::pair(join.dots.size, " dup scale\n")}) {
        out.number(static_cast<float>(number), 6);
        out.put(end);
    }
    const int most_rows =
        std::max(static_cast<int>(most_cells / static_cast<std::size_t>(all.width)), 1);
    for (int done = 0; done < all.rows; done += most_rows) {
        Band band(all.left, all.low + done, all.width, std::min(most_rows, all.rows - done));
        for (const Quad& quad : join.quads) {
            band.paint(quad);
        }
        band.write(path);
    }
    out.put("P setmatrix\n");
}

} // namespace

std::string_view gjoin_prologue() {
    return "/M{newpath moveto}bind def/l{rlineto}bind def\n"
           "/L{exch 0 rlineto 0 exch rlineto}bind def\n"
           "/m{rlineto closepath rmoveto}bind def/f{rlineto closepath fill}bind def\n"
           "/n{0 rlineto closepath rmoveto}bind def/F{0 rlineto closepath fill}bind def\n"
           "/P matrix currentmatrix def\n";
}

void gjoin_begin(const Gpage_dots& dots) {
    join = {};
    join.dots = dots;
}

bool gjoin_add(std::span<const Gpage_pt, 4> corners, int paint) {
    const std::uint8_t number = paint_number(paint);
    if (number == 0 || join.quads.size() == most_quads || !is_convex(corners)) {
        return false;
    }
    Quad quad{{}, number};
    std::ranges::copy(corners, quad.at.begin());
    ++join.figures;
    join.area += std::abs(signed_area(quad.at)) / 2.0;
    if (!extend_last(corners, number)) {
        join.quads.push_back(quad);
        join.near.begin(corners[0], corners[1]);
        join.far.begin(corners[3], corners[2]);
    }
    return true;
}

void gjoin_flush(std::FILE* file, const Gpage_box& box, Gput_paint put_paint) {
    if (join.quads.empty()) {
        return;
    }
    OutText out(file);
    Path path(out, put_paint);
    const double mean =
        join.area / (join.dots.size * join.dots.size) / static_cast<double>(join.figures);
    if (join.figures > few_figures && mean < large_figure) {
        write_dots(out, path, box);
    } else {
        write_quads(path);
    }
    join.quads.clear();
    join.paints.clear();
    join.figures = 0;
    join.area = 0.0;
}
