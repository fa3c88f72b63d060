// gks_line.cpp: polylines and their attributes. Owns the line state, which
// ginit_plot resets through greset_line, and the graphics context that draws it
// on a display, which ginit_line makes.

#include "gks_pix.h"
#include "gks_tran.h"
#include "gks_x11.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace {

struct LineState {
    int line_color = 1;
    int line_type = 1; // 1 solid, 2 to 5 dashed
    float line_width = 1.0F;
    int print_bold = 1; // factor on widths in print; no reset touches it
};
LineState line;
LineState line_aside; // while a replay runs

struct LineContext {
    GC gc = nullptr;
    int function = GXcopy; // GXxor while a rubber band is drawn
};
LineContext context;

// Lengths on and off, pixels.
struct Dash {
    int count;
    std::array<char, 4> lengths;
};
constexpr int first_dashed = 2;
constexpr std::array<Dash, 4> dashes = {
    {
     {2, {6, 6}},
     {2, {3, 6}},
     {4, {6, 6, 3, 6}},
     {2, {2, 2}},
     }
};

// The look of the context follows the state.
void apply_color() {
    if (context.gc != nullptr)
        XSetForeground(gget_display(), context.gc,
                       static_cast<unsigned long>(gget_color_ind(line.line_color)));
}

void apply_width() {
    if (context.gc == nullptr)
        return;
    XGCValues values{};
    values.line_width = pixel_width(line.line_width);
    XChangeGC(gget_display(), context.gc, GCLineWidth, &values);
}

void apply_type() {
    if (context.gc == nullptr)
        return;
    XGCValues values{};
    values.line_style = line.line_type == 1 ? LineSolid : LineOnOffDash;
    XChangeGC(gget_display(), context.gc, GCLineStyle, &values);
    const int row = line.line_type - first_dashed;
    if (row >= 0 && row < static_cast<int>(dashes.size()))
        XSetDashes(gget_display(), context.gc, 0, dashes[row].lengths.data(), dashes[row].count);
}

int write_polyline(int n, const Gpt* pts) {
    constexpr int end_line = 1;
    if (gmeta_get_type() == 0)
        gmeta_points("PL", n, pts, end_line);
    else
        gcgm_polyline(n, pts);
    return 1;
}

int show_polyline(int n, const Gpt* pts) {
    gflush_fill();
    gnew_obj(obj_polyline, n, n * static_cast<int>(sizeof(Gpt)), pts);
    PixelFigure figure(n, pts);
    if (figure.points() == nullptr) {
        gerr_printf("gpolyline", "malloc error\n");
        return -1;
    }
    XDrawLines(gget_display(), gget_draw_window(), context.gc, figure.points(), n, CoordModeOrigin);
    return 0;
}

} // namespace

int gpolyline(int n, const Gpt* pts) {
    if (gchk_open("gpolyline") != 0)
        return -1;
    if (n < 2) {
        gerr_printf("gpolyline", "invalid number of points: %d\n", n);
        return -1;
    }
    if (gpts_in_win(n, pts) == 0)
        return 0;
    if (gtype_is_META())
        return write_polyline(n, pts);
    if (gtype_is_WIN_PIX())
        return show_polyline(n, pts);
    if (gtype_is_PS())
        gps_polyline(n, pts, line.line_color, line.line_width, line.line_type);
    return 0;
}

int gset_line_colr_ind(int ind) {
    if (gchk_colr("gset_line_colr_ind", &ind) != 0)
        return -1;
    if (ind == line.line_color)
        return 0;
    line.line_color = ind;
    if (gtype_is_META())
        return gmeta_printf("PL_CLR %d\n", ind);
    gnew_obj(obj_line_colr, ind, 0, nullptr);
    apply_color();
    return 0;
}

int gset_linewidth(float width) {
    if (gchk_open("gset_linewidth") != 0)
        return -1;
    if (!std::isfinite(width) || width < 0.0F) {
        gerr_printf("gset_linewidth", "invalid line width: %f\n", static_cast<double>(width));
        return -1;
    }
    if (width == line.line_width)
        return 0;
    line.line_width = gtype_is_PS() && width == 0.0F ? 1.0F : width;
    if (gtype_is_META())
        return gmeta_printf("PL_LW %f\n", static_cast<double>(line.line_width));
    gnew_obj(obj_linewidth, 1, sizeof width, &width);
    apply_width();
    return 0;
}

int gset_linetype(int type) {
    if (gchk_open("gset_linetype") != 0)
        return -1;
    if (type < 0) {
        gerr_printf("gset_linetype", "invalid line type: %d\n", type);
        return -1;
    }
    if (type == line.line_type)
        return 0;
    line.line_type = type;
    if (gtype_is_META())
        return gmeta_printf("PL_TYPE %d\n", type);
    gnew_obj(obj_linetype, type, 0, nullptr);
    apply_type();
    return 0;
}

int gset_line_print_bold(int value) {
    line.print_bold = value > 0 ? value : 1;
    gnew_obj(obj_line_bold, line.print_bold, 0, nullptr);
    return 0;
}

int gget_line_print_bold() {
    return line.print_bold;
}

int gget_line_colr() {
    return line.line_color;
}

int greset_line() {
    const int bold = line.print_bold;
    line = {};
    line.print_bold = bold;
    return 0;
}

int ginit_line(int type) {
    Display* display = gget_display();
    if (display == nullptr || type < 0 || type > 1)
        return 0;
    if (type == 0)
        context.gc = XCreateGC(display, gget_root_window(), 0, nullptr);
    XSetForeground(display, context.gc, WhitePixel(display, gget_screen()));
    XSetBackground(display, context.gc, BlackPixel(display, gget_screen()));
    gset_line_gc_func(GXcopy);
    gset_gc_clip();
    return 0;
}

void gput_line_state() {
    const LineState now = line;
    line = {missing_index, missing_index, -1.0F, now.print_bold};
    if (gget_color_ind(now.line_color) != -1)
        gset_line_colr_ind(now.line_color);
    else // without a pixel no setter takes it
        gnew_obj(obj_line_colr, now.line_color, 0, nullptr);
    gset_linetype(now.line_type);
    gset_linewidth(now.line_width);
    line = now; // also what a setter refused
}

void ghold_line_state(Ghold what) {
    if (what == Ghold::restore) {
        line = line_aside;
        return;
    }
    line_aside = line;
    if (what == Ghold::begin)
        line = {missing_index, missing_index, -1.0F, line.print_bold};
}

GC gget_line_gc() {
    return context.gc;
}

int gget_line_gc_func() {
    return context.function;
}

int gset_line_gc_func(int func) {
    context.function = func;
    if (context.gc != nullptr)
        XSetFunction(gget_display(), context.gc, func);
    return 0;
}

void grenew_line_color() {
    apply_color();
}

void gfree_line_gc() {
    if (context.gc != nullptr)
        XFreeGC(gget_display(), context.gc);
    context = {};
}

int gxline(Drawable drawable, const XPoint* a, const XPoint* b) {
    if (context.gc == nullptr)
        return -1;
    XDrawLine(gget_display(), drawable, context.gc, a->x, a->y, b->x, b->y);
    return 0;
}

int gxrect(Drawable drawable, const XPoint* a, const XPoint* b) {
    if (context.gc == nullptr)
        return -1;
    XDrawRectangle(gget_display(), drawable, context.gc, std::min(a->x, b->x), std::min(a->y, b->y),
                   static_cast<unsigned>(std::abs(a->x - b->x)),
                   static_cast<unsigned>(std::abs(a->y - b->y)));
    return 0;
}
