// map_wrap.h: what the parts of the map layer share: lines of plot points that
// are broken where the map of the earth has an edge.
#pragma once

#include "gks.h"

// Difference in x between neighbours that means a jump across the edge.
constexpr float map_line_jump = 20; // in lines of a database
constexpr float map_grid_jump = 50; // in pieces of a lat-lon line

// How far apart the two images of one place are on the two edges of a map,
// at height `y` of the plot; 0 on projections whose map has no such edge.
float map_wrap_offset(int proj, float y);

// Whether the line from a to b is no line on this map, though both ends have
// an image: on a Lambert azimuthal map the antipode of the centre is the whole
// rim, and a step across it would cross the picture.
bool map_is_torn(int proj, const Gpt& a, const Gpt& b);

// Collects the points of a line and draws it in as many pieces as the map
// needs: a point without image ends a piece, and at the edge of the map the
// join is drawn out of the picture.
class MapLine {
public:
    // `points` has room for every point of the line, and one more. `fill`:
    // pieces are painted as closed areas.
    MapLine(int proj, Gpt* points, bool fill) : points_(points), proj_(proj), fill_(fill) {}

    // The next point by its image, or its lack of one.
    void add(float x, float y, bool has_image) {
        if (!has_image) {
            end();
            return;
        }
        const Gpt point{x, y};
        if (count_ > 0) {
            const float step = x - points_[count_ - 1].x;
            if (step < -map_line_jump || step > map_line_jump) {
                jump(point, step);
            } else if (proj_ == torn_proj && map_is_torn(proj_, points_[count_ - 1], point)) {
                end();
            }
        }
        points_[count_++] = point;
    }
    // Draws what is held and starts again.
    void end();

private:
    static constexpr int torn_proj = 8;

    void jump(const Gpt& point, float step);

    Gpt* points_;
    int proj_;
    bool fill_;
    int count_ = 0;
};
