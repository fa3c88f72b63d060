// gks_mark.cpp: markers, figures in device units that do not scale with the
// window. Owns the marker state, which ginit_plot resets through
// greset_marker, and the graphics context that draws it on a display, which
// ginit_marker makes.

#include "gks_pix.h"
#include "gks_tran.h"
#include "gks_x11.h"
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
GC mark_gc = nullptr;

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

void print_path(std::span<const Gpt> points) {
    gps_printf("np\n");
    gps_move_abs(points[0].x, points[0].y);
    for (const Gpt& p : points.subspan(1))
        gps_line_abs(p.x, p.y);
    gps_printf("stroke\n");
}

void show_path(std::span<const Gpt> points) {
    constexpr float short_limit = 32767.0F; // a marker may be of any size
    std::array<XPoint, std::size(circle)> pixels{};
    for (std::size_t i = 0; i < points.size(); ++i)
        pixels[i] = {static_cast<short>(hold_within(points[i].x, short_limit)),
                     static_cast<short>(hold_within(points[i].y, short_limit))};
    if (points.size() == 1)
        XDrawPoint(gget_display(), gget_draw_window(), mark_gc, pixels[0].x, pixels[0].y);
    else
        XDrawLines(gget_display(), gget_draw_window(), mark_gc, pixels.data(),
                   static_cast<int>(points.size()), CoordModeOrigin);
}

// One path in device coordinates.
void mark_draw(std::span<const Vertex> vertices, Gpt at, double h) {
    std::array<Gpt, std::size(circle)> points{};
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        points[i] = {static_cast<float>(static_cast<double>(at.x) + vertices[i].x * h),
                     static_cast<float>(static_cast<double>(at.y) + vertices[i].y * h)};
    }
    const std::span<const Gpt> used(points.data(), vertices.size());
    if (gtype_is_WIN_PIX())
        show_path(used);
    else if (gtype_is_PS())
        print_path(used);
}

void draw_marker(Gpt at, float size) {
    const int h = marker.marker_type == type_dot ? 1 : trunc_int(size / 2.0F);
    for (const Path& path : paths) {
        if (path.type == marker.marker_type)
            mark_draw(path.vertices, at, h);
    }
}

void apply_color() {
    if (mark_gc != nullptr)
        XSetForeground(gget_display(), mark_gc,
                       static_cast<unsigned long>(gget_color_ind(marker.marker_color)));
}

void apply_width() {
    if (mark_gc == nullptr)
        return;
    XGCValues values{};
    values.line_width = pixel_width(marker.marker_width);
    XChangeGC(gget_display(), mark_gc, GCLineWidth, &values);
}

void show_markers(int n, const Gpt* pts) {
    constexpr float pixels_per_size = 10.0F;
    const float size = marker.marker_height * pixels_per_size;
    gflush_fill();
    gnew_obj(obj_polymarker, n, n * static_cast<int>(sizeof(Gpt)), pts);
    const int shadow = gget_font_drop();
    for (int i = 0; i < n; ++i) {
        const Gpt at = {xW_p(pts[i].x) + 0.5F, yW_p(pts[i].y) + 0.5F};
        if (shadow > 0) {
            XSetForeground(gget_display(), mark_gc, BlackPixel(gget_display(), gget_screen()));
            for (int k = 0; k < shadow; ++k)
                draw_marker({at.x + static_cast<float>(k), at.y + static_cast<float>(k)}, size);
            apply_color();
        }
        draw_marker(at, size);
    }
}

void print_markers(int n, const Gpt* pts) {
    constexpr float points_per_size = 10.0F * 0.72F;
    gps_printf("%%%%PM:%d\n", n);
    gps_set_width(marker.marker_color, marker.marker_width);
    gps_set_color(marker.marker_color);
    gps_set_type(1);
    for (int i = 0; i < n; ++i)
        draw_marker({xW_ps(pts[i].x), yW_ps(pts[i].y)}, marker.marker_height * points_per_size);
}

} // namespace

int gpolymarker(int n, const Gpt* pts) {
    if (gchk_open("gpolyline") != 0)
        return -1;
    if (gtype_is_META()) {
        constexpr int open_end = 0;
        gmeta_points("PM", n, pts, open_end);
    } else if (gtype_is_WIN_PIX()) {
        show_markers(n, pts);
    } else if (gtype_is_PS()) {
        print_markers(n, pts);
    }
    return 0;
}

int gset_marker_colr_ind(int ind) {
    if (gchk_colr("gset_marker_colr_ind", &ind) != 0)
        return -1;
    if (ind == marker.marker_color)
        return 0;
    marker.marker_color = ind;
    if (gtype_is_META())
        return gmeta_printf("PM_CLR %d\n", ind);
    gnew_obj(obj_marker_colr, ind, 0, nullptr);
    apply_color();
    return 0;
}

int gset_marker_size(float height) {
    if (gchk_open("gset_marker_size") != 0)
        return -1;
    if (!std::isfinite(height) || height < 0.0F) {
        gerr_printf("gset_marker_size", "invalid marker size: %f\n", static_cast<double>(height));
        return -1;
    }
    if (height == marker.marker_height)
        return 0;
    marker.marker_height = height;
    if (gtype_is_META())
        return gmeta_printf("PM_SIZE %f\n", static_cast<double>(height));
    gnew_obj(obj_marker_size, 1, sizeof height, &height);
    return 0;
}

int gset_marker_type(int type) {
    if (gchk_open("gset_marker_type") != 0)
        return -1;
    if (type == marker.marker_type)
        return 0;
    marker.marker_type = type;
    if (gtype_is_META())
        return gmeta_printf("PM_TYPE %d\n", type);
    gnew_obj(obj_marker_type, type, 0, nullptr);
    return 0;
}

int gset_marker_width(float width) {
    if (gchk_open("gset_marker_width") != 0)
        return -1;
    if (!std::isfinite(width) || width < 0.0F) {
        gerr_printf("gset_marker_width", "invalid marker width: %f\n", static_cast<double>(width));
        return -1;
    }
    if (width == marker.marker_width)
        return 0;
    marker.marker_width = gtype_is_PS() && width == 0.0F ? 1.0F : width;
    if (gtype_is_META())
        return gmeta_printf("PM_WDTH %f\n", static_cast<double>(marker.marker_width));
    gnew_obj(obj_marker_width, 1, sizeof width, &width);
    apply_width();
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
    Display* display = gget_display();
    if (display == nullptr || type < 0 || type > 1)
        return 0;
    if (type == 0)
        mark_gc = XCreateGC(display, gget_draw_window(), 0, nullptr);
    XSetForeground(display, mark_gc, WhitePixel(display, gget_screen()));
    XSetBackground(display, mark_gc, BlackPixel(display, gget_screen()));
    gset_gc_clip();
    return 0;
}

void gput_marker_state() {
    const MarkerState now = marker;
    marker = {missing_index, missing_index, -1.0F, -1.0F};
    if (gget_color_ind(now.marker_color) != -1)
        gset_marker_colr_ind(now.marker_color);
    else // without a pixel no setter takes it
        gnew_obj(obj_marker_colr, now.marker_color, 0, nullptr);
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
    if (what == Ghold::begin)
        marker = {missing_index, missing_index, -1.0F, -1.0F};
}

GC gget_marker_gc() {
    return mark_gc;
}

void grenew_marker_color() {
    apply_color();
}

void gfree_marker_gc() {
    if (mark_gc != nullptr)
        XFreeGC(gget_display(), mark_gc);
    mark_gc = nullptr;
}
