// gks_mark.cpp: markers, figures in device units that do not scale with the
// window. Owns the marker state, which ginit_plot resets through
// greset_marker.

#include "gks.h"
#include "text_num.h"

#include <cmath>
#include <span>

namespace {

struct MarkerState {
    int marker_color = 1;
    int marker_type = 1;
    float marker_width = 1.0F;
    float marker_height = 10.0F; // one unit is 10 pixels on a display
};
MarkerState marker;

// A path in half sizes about the position.
struct Vertex {
    double x, y;
};
constexpr Vertex across[] = {
    {-1, 0},
    {1,  0}
};
constexpr Vertex upright[] = {
    {0, 1 },
    {0, -1}
};
constexpr Vertex rising[] = {
    {-1, -1},
    {1,  1 }
};
constexpr Vertex falling[] = {
    {1,  -1},
    {-1, 1 }
};
constexpr Vertex circle[] = {
    {-1,    0    },
    {-.866, .5   },
    {-.5,   .866 },
    {0,     1    },
    {.5,    .866 },
    {.866,  .5   },
    {1,     0    },
    {.866,  -.5  },
    {.5,    -.866},
    {0,     -1   },
    {-.5,   -.866},
    {-.866, -.5  },
    {-1,    0    }
};
constexpr Vertex square[] = {
    {-1, 1 },
    {1,  1 },
    {1,  -1},
    {-1, -1},
    {-1, 1 }
};
constexpr Vertex triangle[] = {
    {-1, 1 },
    {1,  1 },
    {0,  -1},
    {-1, 1 }
};
constexpr Vertex point[] = {
    {0, 0}
};
constexpr Vertex inverted[] = {
    {-1, -1},
    {1,  -1},
    {0,  1 },
    {-1, -1}
};
// A dot keeps its size.
constexpr Vertex dot[] = {
    {0, 0},
    {1, 0},
    {1, 1},
    {0, 1},
    {0, 0}
};

struct Path {
    int type;
    std::span<const Vertex> vertices;
};
constexpr int type_dot = 1;
// In drawing order; a type may have several paths.
constexpr Path paths[] = {
    {type_dot, dot     },
    {2,        across  },
    {2,        upright },
    {3,        across  },
    {3,        rising  },
    {3,        upright },
    {3,        falling },
    {4,        circle  },
    {5,        rising  },
    {5,        falling },
    {6,        square  },
    {7,        triangle},
    {8,        point   },
    {9,        inverted},
};

// One path in device coordinates.
void mark_draw(std::span<const Vertex> vertices, Gpt at, double h) {
    if (!gtype_is_PS())
        return;
    gps_printf("np\n");
    bool first = true;
    for (const Vertex& v : vertices) {
        const auto x = static_cast<float>(static_cast<double>(at.x) + v.x * h);
        const auto y = static_cast<float>(static_cast<double>(at.y) + v.y * h);
        if (first)
            gps_move_abs(x, y);
        else
            gps_line_abs(x, y);
        first = false;
    }
    gps_printf("stroke\n");
}

void draw_marker(Gpt at, float size) {
    const int h = marker.marker_type == type_dot ? 1 : trunc_int(size / 2.0F);
    for (const Path& path : paths) {
        if (path.type == marker.marker_type)
            mark_draw(path.vertices, at, h);
    }
}

} // namespace

int gpolymarker(int n, const Gpt* pts) {
    if (gchk_open("gpolyline") != 0)
        return -1;
    if (!gtype_is_PS())
        return 0;
    constexpr float units_per_size = 10.0F * 0.72F;
    gps_printf("%%%%PM:%d\n", n);
    gps_set_width(marker.marker_color, marker.marker_width);
    gps_set_color(marker.marker_color);
    gps_set_type(1);
    for (int i = 0; i < n; ++i)
        draw_marker({xW_ps(pts[i].x), yW_ps(pts[i].y)}, marker.marker_height * units_per_size);
    return 0;
}

int gset_marker_colr_ind(int ind) {
    if (gchk_colr("gset_marker_colr_ind", ind) != 0)
        return -1;
    marker.marker_color = ind;
    return 0;
}

int gset_marker_size(float height) {
    if (gchk_open("gset_marker_size") != 0)
        return -1;
    if (!std::isfinite(height) || height < 0.0F) {
        gerr_printf("gset_marker_size", "invalid marker size: %f\n", static_cast<double>(height));
        return -1;
    }
    marker.marker_height = height;
    return 0;
}

int gset_marker_type(int type) {
    if (gchk_open("gset_marker_type") != 0)
        return -1;
    marker.marker_type = type;
    return 0;
}

int gset_marker_width(float width) {
    if (gchk_open("gset_marker_width") != 0)
        return -1;
    if (!std::isfinite(width) || width < 0.0F) {
        gerr_printf("gset_marker_width", "invalid marker width: %f\n", static_cast<double>(width));
        return -1;
    }
    marker.marker_width = gtype_is_PS() && width == 0.0F ? 1.0F : width;
    return 0;
}

int gget_marker_colr() {
    return marker.marker_color;
}

int greset_marker() {
    marker = {};
    return 0;
}
