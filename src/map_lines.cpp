// map_lines.cpp: the grid of latitudes and longitudes over a map, and the plain
// grid of other diagrams; the window that all lies in. State: the steps and spacings set by
// MAP_latlon. MAP_setup must have been called, and the attributes of lines and text set.
#include "map.h"
#include "map_wrap.h"

#include "maptran.h"
#include "plt_tool.h"
#include "state_keeper.h"
#include "zyr.h"
#include "zyrgks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

constexpr float finest_step = 0.05F; // degrees; finer grids would take minutes
constexpr int most_lines = 1000;     // of the grid of a diagram
constexpr std::size_t label_size = 40;

struct State {
    float latln = 0; // step of the parallels, degrees, 0: no grid
    float lonln = 0; // step of the meridians
    int dot = 0;     // spacing of dots, degrees, 0: none
    int extra = 0;   // spacing of labels along the lines
};
State state;

// --- Maps ------------------------------------------------------------------------

// What is common to all lines of one grid.
struct Grid {
    double dlat;
    double dlon;
    int dot;
    int extra;
    const Map& map;
    float pad; // from the edge of the picture to a label
};

// An image, or none.
struct Image {
    Gpt at{0, 0};
    bool seen = false;
};

Image image_of(const Map& map, double lat, double lon) {
    Image out;
    out.seen =
        map.tran(static_cast<float>(lat), static_cast<float>(lon), &out.at.x, &out.at.y) == 1;
    return out;
}

void print_at(float x, float y, const char* text) {
    GPH_printf(x, y, "%s", text);
}

// The label of a parallel where it enters the picture on the left, and of a
// meridian where it enters at the bottom.
void label_parallel(const Grid& g, const Gpt& a, const Gpt& b, const char* label) {
    const float edge = g.map.limits.x_min;
    if ((a.x < edge) != (b.x < edge)) {
        const float y = a.y + (b.y - a.y) * (edge - a.x) / (b.x - a.x);
        if (y >= g.map.limits.y_min && y <= g.map.limits.y_max) {
            print_at(edge + g.pad, y, label);
        }
    }
}

void label_meridian(const Grid& g, const Gpt& a, const Gpt& b, const char* label) {
    const float edge = g.map.limits.y_min;
    if ((a.y < edge) != (b.y < edge)) {
        const float x = a.x + (b.x - a.x) * (edge - a.y) / (b.y - a.y);
        if (x >= g.map.limits.x_min && x <= g.map.limits.x_max) {
            print_at(x, edge + g.pad, label);
        }
    }
}

// A piece across the edge of the map is seen at both ends.
void parallel_piece(const Grid& g, const Gpt& a, const Gpt& b, const char* label) {
    const MapEdge& edge = g.map.row->edge;
    if (map_is_torn(edge, a, b)) {
        return;
    }
    map_wrap_line(edge, a, b, map_grid_jump, [&](const Gpt& from, const Gpt& to) {
        GPH_line(from.x, from.y, to.x, to.y);
        label_parallel(g, from, to, label);
    });
}

// Where repeated labels begin: a multiple of the other lines' step, less half.
double first_label(int extra, int from, double step) {
    const double start = extra * std::trunc(static_cast<double>(from) / extra) - extra / 2.0;
    return std::trunc(start / step) * step - step / 2;
}

void repeat_label(const Grid& g, double lat, double lon, const char* label) {
    const Image place = image_of(g.map, lat, lon);
    if (place.seen && g.map.shows(place.at.x, place.at.y)) {
        print_at(place.at.x, place.at.y, label);
    }
}

void draw_parallel(const Grid& g, double lat, const char* label) {
    constexpr double step = 2.5;
    Image last = image_of(g.map, lat, -180);
    for (int i = 2; i * step <= 360; ++i) { // the first piece is twice as long
        const Image next = image_of(g.map, lat, -180 + i * step);
        if (last.seen && next.seen) {
            parallel_piece(g, last.at, next.at, label);
        }
        last = next;
    }
    if (g.extra > 0) {
        GPH_text_align(GCENTER_HOR, GHALF_VERT);
        const double first = first_label(g.extra, -179, g.dlon);
        for (int i = 0; first + i * g.extra <= 180; ++i) {
            repeat_label(g, lat, first + i * g.extra, label);
        }
        GPH_text_align(GLEFT_HOR, GHALF_VERT);
    }
}

// Latitude at which meridians end. Where they all meet in a point the last
// step is left out, so that the pole is not blotted.
double meridian_end(const Grid& g) {
    return g.map.row->meridians_meet ? std::trunc(89 / g.dlat) * g.dlat : 90;
}

void draw_meridian(const Grid& g, double lon, const char* label) {
    const double end = meridian_end(g);
    Image last = image_of(g.map, -end, lon);
    const int pieces = static_cast<int>(std::ceil(2 * end / g.dlat - 0.001));
    for (int i = 1; i <= pieces; ++i) {
        const Image next = image_of(g.map, std::min(-end + i * g.dlat, end), lon);
        if (last.seen && next.seen && !map_is_torn(g.map.row->edge, last.at, next.at)) {
            GPH_line(last.at.x, last.at.y, next.at.x, next.at.y);
            label_meridian(g, last.at, next.at, label);
        }
        last = next;
    }
    if (g.extra > 0) {
        const double first = first_label(g.extra, -89, g.dlat);
        for (int i = 0; first + i * g.extra < 90; ++i) {
            repeat_label(g, first + i * g.extra, lon, label);
        }
    }
}

void draw_parallels(const Grid& g) {
    char label[label_size];
    GPH_text_align(GLEFT_HOR, GHALF_VERT);
    for (int i = 0; i * g.dlat < 90; ++i) {
        std::snprintf(label, sizeof label, "%1.0fN", i * g.dlat);
        draw_parallel(g, i * g.dlat, i == 0 ? "EQ" : label);
    }
    for (int i = 1; i * g.dlat < 90; ++i) {
        std::snprintf(label, sizeof label, "%1.0fS", i * g.dlat);
        draw_parallel(g, -i * g.dlat, label);
    }
}

void draw_meridians(const Grid& g) {
    char label[label_size];
    GPH_text_align(GCENTER_HOR, GBASE_VERT);
    for (int i = 0; i * g.dlon <= 180; ++i) {
        const double lon = i * g.dlon;
        std::snprintf(label, sizeof label, "%1.0fE", lon);
        draw_meridian(g, lon, lon == 0 ? "PM" : lon == 180 ? "DL" : label);
    }
    for (int i = 1; i * g.dlon < 180; ++i) {
        std::snprintf(label, sizeof label, "%1.0fW", i * g.dlon);
        draw_meridian(g, -i * g.dlon, label);
    }
}

// One arm of a cross; not drawn where it would span the edge of the map.
void draw_arm(const Image& a, const Image& b) {
    if (a.seen && b.seen && std::fabs(a.at.x - b.at.x) < 5) {
        GPH_line(a.at.x, a.at.y, b.at.x, b.at.y);
    }
}

void draw_dots(const Map& map, int dot) {
    constexpr double arm = 0.1;
    for (int lat = -79 / dot * dot; lat < 80; lat += dot) {
        for (int lon = -179 / dot * dot; lon <= 180; lon += dot) {
            draw_arm(image_of(map, lat, lon - arm), image_of(map, lat, lon + arm));
            draw_arm(image_of(map, lat - arm, lon), image_of(map, lat + arm, lon));
        }
    }
}

void draw_map_grid(const Map& map, float dlat, float dlon) {
    constexpr double whole_circle = 360.0; // a wider step draws no further line
    const Grid g{std::min<double>(dlat, whole_circle),
                 std::min<double>(dlon, whole_circle),
                 state.dot,
                 state.extra,
                 map,
                 0.01F * MAP_get_hor()};
    draw_parallels(g);
    draw_meridians(g);
    if (g.dot > 0) {
        draw_dots(map, std::min(g.dot, 360));
    }
}

// --- Diagrams --------------------------------------------------------------------

// Grid values along one coordinate.
struct Axis {
    double start; // first value
    double from;  // ends of the diagram
    double to;
    double step; // signed, towards the other end
};

// A negative step begins at a multiple of the step.
Axis make_axis(double from, double extent, double step, int sign) {
    Axis axis{from, from, from + extent, std::fabs(step) * sign};
    if (step < 0) {
        axis.start = std::trunc(from / step) * step;
    }
    return axis;
}

int axis_lines(const Axis& axis) {
    const double n = (axis.to - axis.start) / axis.step;
    return std::isfinite(n) && n >= 0 && n < most_lines ? static_cast<int>(n + 1e-4) + 1 : 0;
}

double axis_value(const Axis& axis, int i) {
    return axis.start + i * axis.step;
}

// A line of the diagram in short pieces: it may be curved.
void diagram_line(const Map& map, double a1, double b1, double a2, double b2) {
    constexpr int pieces = 24;
    std::array<Gpt, pieces + 1> points;
    MapLine line(map.row->edge, points.data(), false);
    for (int i = 0; i <= pieces; ++i) {
        const double t = static_cast<double>(i) / pieces;
        const Image p = image_of(map, a1 + t * (a2 - a1), b1 + t * (b2 - b1));
        line.add(p.at.x, p.at.y, p.seen);
    }
    line.end();
}

// Second coordinates run down where they are pressures.
int second_sign(const Projection& row, double extent) {
    return row.second_step != 0 ? row.second_step : extent < 0 ? -1 : 1;
}

void print_number(float x, float y, double value) {
    char text[label_size];
    set_num(text, "2.2.0", static_cast<float>(value));
    print_at(x, y, text);
}

// Numbers outside the viewport, on the page.
void number_axes(const Map& map, const Axis& first, const Axis& second) {
    constexpr float gap = 0.01F;
    Glim view{};
    GPH_get_view(tran_map, &view);
    gsel_norm_tran(tran_page);
    if (map.row->numbered) {
        GPH_text_align(GCENTER_HOR, GTOP_VERT);
        for (int i = 0; i < axis_lines(first); ++i) {
            const Image p = image_of(map, axis_value(first, i), second.from);
            const float x = xW_trans(p.at.x, tran_map, tran_page);
            if (p.seen && x >= view.x_min && x <= view.x_max) {
                print_number(x, view.y_min - gap, axis_value(first, i));
            }
        }
    }
    GPH_text_align(GRIGHT_HOR, GHALF_VERT);
    for (int i = 0; i < axis_lines(second); ++i) {
        const Image p = image_of(map, first.from, axis_value(second, i));
        const float y = yW_trans(p.at.y, tran_map, tran_page);
        if (p.seen && y >= view.y_min && y <= view.y_max) {
            print_number(view.x_min - gap, y, axis_value(second, i));
        }
    }
    gsel_norm_tran(tran_map);
}

void draw_diagram_grid(const Map& map, float dfirst, float dsecond) {
    const Domain& domain = map.domain;
    const double extent1 = static_cast<double>(domain.dx);
    const double extent2 = static_cast<double>(domain.dy);
    const Axis first = make_axis(domain.clat, extent1, dfirst, extent1 < 0 ? -1 : 1);
    const Axis second = make_axis(domain.clon, extent2, dsecond, second_sign(*map.row, extent2));
    for (int i = 0; i < axis_lines(first); ++i) {
        const double value = axis_value(first, i);
        diagram_line(map, value, second.from, value, second.to);
    }
    for (int i = 0; i < axis_lines(second); ++i) {
        const double value = axis_value(second, i);
        diagram_line(map, first.from, value, first.to, value);
    }
    number_axes(map, first, second);
}

} // namespace

int MAP_latlon(float lat, float lon, int dt, int ex) {
    state = {lat, lon, dt, ex};
    return 0;
}

int MAP_get_latlon(float* lat, float* lon) {
    *lat = state.latln;
    *lon = state.lonln;
    return 0;
}

int MAP_lines(float dlat, float dlon) {
    if (!is_set(dlat) || !is_set(dlon)) {
        return -1;
    }
    gsel_norm_tran(tran_map);
    PLT_mess("Map-lalo: %.1f,%.1f", static_cast<double>(dlat), static_cast<double>(dlon));
    const Map& map = MAP_current();
    const bool is_map = is_map_proj(map.domain.proj);
    if (is_map) {
        if (!(dlat >= finest_step) || !(dlon >= finest_step)) {
            MESS_print(mess_warn, "MAP_lines: Invalid steps of the grid: %g,%g\n",
                       static_cast<double>(dlat), static_cast<double>(dlon));
            return -1;
        }
        draw_map_grid(map, dlat, dlon);
    } else {
        draw_diagram_grid(map, dlat, dlon);
    }
    GPH_line_attr(nullptr);
    GPH_text_attr(nullptr, 1);
    return is_map ? 0 : -1;
}

float MAP_get_vert() {
    Glim window{};
    MAP_get_window(&window);
    return window.y_max - window.y_min;
}

float MAP_get_hor() {
    Glim window{};
    MAP_get_window(&window);
    return window.x_max - window.x_min;
}

int MAP_get_window(Glim* wind) {
    GPH_get_win(tran_map, wind);
    return 0;
}

void keep_map_lines(StateKeeper& keeper) {
    keeper.keep(state);
}
