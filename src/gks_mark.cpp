// gks_mark: markers, figures in device units that do not scale with the window.
// Owns the marker state, which ginit_plot resets through greset_marker; a display
// has a pen that follows it.

#include "gks_attr.h"
#include "gks_draw.h"
#include "gks_pipe.h"
#include "state_keeper.h"
#include "text_num.h"

#include <array>
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
MarkerState marker_aside; // while a replay runs

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

int show_path(int n, const Gpt* points) {
    constexpr float short_limit = 32767.0F; // a marker may be of any size
    std::array<Gpixel, std::size(circle)> pixels{};
    for (int i = 0; i < n; ++i) {
        pixels[i] = {static_cast<std::int16_t>(hold_within(points[i].x, short_limit)),
                     static_cast<std::int16_t>(hold_within(points[i].y, short_limit))};
    }
    if (n == 1) {
        gdraw_point(Gpen::marker, pixels[0]);
    } else {
        gdraw_lines(Gpen::marker, n, pixels.data());
    }
    return 0;
}

// Points in device units.
int mark_draw(int n, const Gpt* points) {
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_path(n, points);
    case Gdevice::postscript:
        return gps_marker_path(n, points);
    case Gdevice::hpgl:
        return ghpgl_marker_path(n, points);
    case Gdevice::metafile: // holds the positions
    case Gdevice::none:
        return 0;
    }
    return 0;
}

void draw_marker(Gpt at, float size) {
    const double h = marker.marker_type == type_dot ? 1 : trunc_int(size / 2.0F);
    for (const Path& path : paths) {
        if (path.type != marker.marker_type) {
            continue;
        }
        std::array<Gpt, std::size(circle)> points{};
        int n = 0;
        for (const Vertex& v : path.vertices) {
            points[n++] = {static_cast<float>(static_cast<double>(at.x) + v.x * h),
                           static_cast<float>(static_cast<double>(at.y) + v.y * h)};
        }
        mark_draw(n, points.data());
    }
}

int show_markers(int n, const Gpt* pts) {
    constexpr float pixels_per_size = 10.0F;
    const float size = marker.marker_height * pixels_per_size;
    gnew_obj(obj_polymarker, n, n * static_cast<int>(sizeof(Gpt)), pts);
    const int shadow = gget_font_drop();
    for (int i = 0; i < n; ++i) {
        const Gpt at = {xW_p(pts[i].x) + 0.5F, yW_p(pts[i].y) + 0.5F};
        if (shadow > 0) {
            gdraw_set_black(Gpen::marker);
            for (int k = 0; k < shadow; ++k) {
                draw_marker({at.x + static_cast<float>(k), at.y + static_cast<float>(k)}, size);
            }
            gdraw_set_color(Gpen::marker, marker.marker_color);
        }
        draw_marker(at, size);
    }
    return 0;
}

// `unit`: device units of a marker of size 1.
int print_markers(int n, const Gpt* pts, float unit) {
    for (int i = 0; i < n; ++i) {
        draw_marker({xW_ps(pts[i].x), yW_ps(pts[i].y)}, marker.marker_height * unit);
    }
    return 0;
}

} // namespace

int gpolymarker(int n, const Gpt* pts) {
    if (gchk_open("gpolyline") != 0) {
        return -1;
    }
    const int color = marker.marker_color;
    const float width = marker.marker_width;
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_markers(n, pts);
    case Gdevice::metafile:
        return gmeta_polymarker(n, pts);
    case Gdevice::postscript:
        return print_markers(n, pts, gps_begin_markers(n, color, width));
    case Gdevice::hpgl:
        return print_markers(n, pts, ghpgl_begin_markers(color, width));
    case Gdevice::none:
        return 0;
    }
    return 0;
}

int gset_marker_colr_ind(int ind) {
    if (gchk_colr("gset_marker_colr_ind", &ind) != 0) {
        return -1;
    }
    if (ind == marker.marker_color) {
        return 0;
    }
    marker.marker_color = ind;
    if (grecord(obj_marker_colr, ind)) {
        gdraw_set_color(Gpen::marker, ind);
    }
    return 0;
}

int gset_marker_size(float height) {
    if (gchk_open("gset_marker_size") != 0) {
        return -1;
    }
    if (!std::isfinite(height) || height < 0.0F) {
        gerr_printf("gset_marker_size", "invalid marker size: %f\n", static_cast<double>(height));
        return -1;
    }
    if (height == marker.marker_height) {
        return 0;
    }
    marker.marker_height = height;
    grecord(obj_marker_size, height);
    return 0;
}

int gset_marker_type(int type) {
    if (gchk_open("gset_marker_type") != 0) {
        return -1;
    }
    if (type == marker.marker_type) {
        return 0;
    }
    marker.marker_type = type;
    grecord(obj_marker_type, type);
    return 0;
}

int gset_marker_width(float width) {
    if (gchk_open("gset_marker_width") != 0) {
        return -1;
    }
    if (!std::isfinite(width) || width < 0.0F) {
        gerr_printf("gset_marker_width", "invalid marker width: %f\n", static_cast<double>(width));
        return -1;
    }
    if (width == marker.marker_width) {
        return 0;
    }
    marker.marker_width = gkept_width(width);
    if (grecord(obj_marker_width, width)) {
        gdraw_set_width(Gpen::marker, width);
    }
    return 0;
}

int gget_marker_colr() {
    return marker.marker_color;
}

int greset_marker() {
    marker = {};
    return 0;
}

int ginit_marker(int type) {
    gdraw_init_pen(Gpen::marker, type);
    return 0;
}

void gput_marker_state() {
    const MarkerState now = marker;
    marker = {missing_index, missing_index, -1.0F, -1.0F};
    if (gget_color_ind(now.marker_color) != -1) {
        gset_marker_colr_ind(now.marker_color);
    } else { // without a pixel no setter takes it
        gnew_obj(obj_marker_colr, now.marker_color, 0, nullptr);
    }
    gset_marker_type(now.marker_type);
    gset_marker_width(now.marker_width);
    gset_marker_size(now.marker_height);
    marker = now; // also what a setter refused
}

void ghold_marker_state(Ghold what) {
    if (what == Ghold::restore) {
        marker = marker_aside;
        return;
    }
    marker_aside = marker;
    if (what == Ghold::begin) {
        marker = {missing_index, missing_index, -1.0F, -1.0F};
    }
}

void keep_gks_mark(StateKeeper& keeper) {
    keeper.keep(marker);
    keeper.keep(marker_aside);
}
