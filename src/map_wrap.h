// map_wrap.h: what the parts of the map layer and the contours share: lines and
// areas are broken where the map of the earth has an edge (MapEdge).
#pragma once

#include "gks.h"
#include "map_proj.h"

#include <cmath>

// Difference in x between neighbours that means a jump across the edge.
constexpr float map_line_jump = 20; // in lines of a database
constexpr float map_grid_jump = 50; // in pieces of a lat-lon line

// How far apart the two images of one place are on the two sides of a map, at
// height `y` of the plot; 0 on maps without such an edge.
float map_wrap_width(const MapEdge& edge, float y);

// By how much x of `b` must move to lie on the side of the map where `a` is; 0
// when the two are neighbours, no more than `gap` apart, or the map has no edge.
inline float map_wrap_shift(const MapEdge& edge, const Gpt& a, const Gpt& b, float gap) {
    const float step = b.x - a.x;
    if (std::fabs(step) <= gap || edge.width == 0.0) {
        return 0.0F;
    }
    const float width = map_wrap_width(edge, b.y);
    return step < 0 ? width : -width;
}

// Hands a line to `draw` or, where it crosses the edge of the map, its two images:
// it is seen on both sides.
template <typename Draw>
void map_wrap_line(const MapEdge& edge, const Gpt& a, const Gpt& b, float gap, Draw draw) {
    const float shift = map_wrap_shift(edge, a, b, gap);
    if (shift == 0.0F) {
        draw(a, b);
        return;
    }
    draw(a, Gpt{b.x + shift, b.y});
    draw(Gpt{a.x - shift, a.y}, b);
}

// Whether the line from a to b is no line on this map, though both ends have
// an image.
inline bool map_is_torn(const MapEdge& edge, const Gpt& a, const Gpt& b) {
    return edge.tear > 0.0F && std::hypot(a.x - b.x, a.y - b.y) > edge.tear;
}

// Collects the points of a line and draws it in as many pieces as the map
// needs: a point without image ends a piece, and at the edge of the map the
// join is drawn out of the picture.
class MapLine {
public:
    // `points` has room for every point of the line, and one more. `fill`:
    // pieces are painted as closed areas.
    MapLine(const MapEdge& edge, Gpt* points, bool fill)
        : edge_(edge), points_(points), fill_(fill) {}

    // The next point by its image, or its lack of one.
    void add(float x, float y, bool has_image) {
        if (!has_image) {
            end();
            return;
        }
        const Gpt point{x, y};
        if (count_ > 0) {
            const Gpt& last = points_[count_ - 1];
            if (map_is_torn(edge_, last, point)) {
                end();
            } else if (std::fabs(x - last.x) > map_line_jump) {
                jump(point);
            }
        }
        points_[count_++] = point;
    }
    // Draws what is held and starts again.
    void end();

private:
    void jump(const Gpt& point);

    const MapEdge& edge_;
    Gpt* points_;
    bool fill_;
    int count_ = 0;
};
