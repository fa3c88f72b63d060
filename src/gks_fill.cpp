// gks_fill.cpp: filled areas and their attributes. Owns the fill state, which
// ginit_plot resets through greset_fill, and on a display the graphics context
// and the pattern bitmaps, which ginit_fill makes.
//
// A display shows the last area only when it must (gflush_fill): an area with
// the same corners in pixels hides it, and fine radials fall on the same pixels
// again and again.

#include "gks_disp.h"
#include "gks_pix.h"
#include "gks_tran.h"
#include "gks_x11.h"

#include <algorithm>
#include <array>

namespace {

constexpr int num_patterns = 20;
constexpr int pattern_size = 8;

// Rows from the top, the lowest bit leftmost. From full through hatches; from
// 10 on a ramp of density.
constexpr std::array<std::array<unsigned char, pattern_size>, num_patterns> bitmap = {
    {
     {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff},
     {0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55},
     {0x55, 0x00, 0x55, 0x00, 0x55, 0x00, 0x55, 0x00},
     {0x24, 0x11, 0x82, 0x48, 0x42, 0x11, 0x28, 0x84},
     {0x33, 0x33, 0x00, 0x00, 0xcc, 0xcc, 0x00, 0x00},
     {0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33},
     {0x03, 0x06, 0x0c, 0x18, 0x30, 0x60, 0xc0, 0x81},
     {0x81, 0xc0, 0x60, 0x30, 0x18, 0x0c, 0x06, 0x03},
     {0xff, 0xff, 0x00, 0x00, 0xff, 0xff, 0x00, 0x00},
     {0xc3, 0x66, 0x3c, 0x18, 0x3c, 0x66, 0xc3, 0x81},
     {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
     {0x40, 0x10, 0x20, 0x01, 0x00, 0x04, 0x08, 0x02},
     {0x08, 0xa0, 0x44, 0x11, 0x22, 0x10, 0x81, 0x44},
     {0x45, 0x28, 0x94, 0x43, 0x50, 0x09, 0x52, 0xa8},
     {0x19, 0xca, 0x34, 0x1a, 0xe1, 0x32, 0xa5, 0xcc},
     {0x55, 0xdc, 0x3b, 0xe2, 0x97, 0xaa, 0x65, 0x3e},
     {0x7a, 0xe5, 0x5f, 0xab, 0xf5, 0xeb, 0x5e, 0xb5},
     {0xfe, 0xbb, 0xf5, 0x6f, 0xfe, 0xd7, 0xbd, 0xeb},
     {0xfd, 0xff, 0xef, 0x7f, 0xdf, 0xfe, 0xf7, 0xaf},
     {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff},
     }
};

struct FillState {
    int fill_inter_style = GSOLID;
    int fill_inter_index = 1; // pattern number
    int fill_color = 1;
    int print_solid = 0; // 1: fills print black; no reset touches it
    // A metafile holds another pattern than this state: a pattern only goes to
    // the file there.
    bool pattern_elsewhere = false;
};
FillState fill;
FillState fill_aside; // while a replay runs

struct FillContext {
    GC gc = nullptr;
    std::array<Pixmap, num_patterns> fill_pat{};
    int color = missing_index; // index whose pixel is the foreground

    // The area held back; `held` 0: none.
    int held = 0; // points
    int held_color = 0;
    std::array<XPoint, 5> points{};
};
FillContext context;

void apply_color(int ind) {
    if (context.color == ind)
        return;
    context.color = ind;
    XSetForeground(gget_display(), context.gc, static_cast<unsigned long>(gget_color_ind(ind)));
}

void apply_style() {
    if (context.gc == nullptr)
        return;
    gflush_fill();
    if (fill.fill_inter_style == GSOLID) {
        XSetFillStyle(gget_display(), context.gc, FillSolid);
    } else if (fill.fill_inter_style == GPAT) {
        XSetFillStyle(gget_display(), context.gc, FillStippled);
        const int ind = fill.fill_inter_index; // unset while the state is put again
        const Pixmap pattern = ind < 0 ? 0 : context.fill_pat[ind];
        if (pattern != 0)
            XSetStipple(gget_display(), context.gc, pattern);
    }
}

// The outline covers the edge pixels, so that neighbours meet without gaps.
void send_area(int n, XPoint* points, int color) {
    apply_color(color);
    XFillPolygon(gget_display(), gget_draw_window(), context.gc, points, n, Nonconvex,
                 CoordModeOrigin);
    XDrawLines(gget_display(), gget_draw_window(), context.gc, points, n, CoordModeOrigin);
}

bool same_points(const XPoint* a, const XPoint* b, int n) {
    return std::equal(a, a + n, b,
                      [](const XPoint& p, const XPoint& q) { return p.x == q.x && p.y == q.y; });
}

int show_area(int n, const Gpt* pts) {
    gnew_obj(obj_fill_area, n, n * static_cast<int>(sizeof(Gpt)), pts);
    PixelFigure figure(n, pts);
    XPoint* points = figure.points();
    if (points == nullptr) {
        gerr_printf("gfill_area", "malloc error\n");
        return -1;
    }
    const bool solid = fill.fill_inter_style == GSOLID;
    if (solid && context.held == n && same_points(points, context.points.data(), n)) {
        context.held_color = fill.fill_color;
        return 0;
    }
    gflush_fill();
    if (!solid || n > static_cast<int>(context.points.size())) {
        send_area(n, points, fill.fill_color);
        return 0;
    }
    std::copy_n(points, n, context.points.begin());
    context.held = n;
    context.held_color = fill.fill_color;
    return 0;
}

} // namespace

int gfill_area(int n, const Gpt* pts) {
    if (gpts_in_win(n, pts) == 0)
        return 0;
    if (gtype_is_META()) {
        constexpr int open_end = 0;
        gmeta_points("FA", n, pts, open_end);
        return 1;
    }
    if (gtype_is_WIN_PIX() && context.gc != nullptr)
        return show_area(n, pts);
    if (gtype_is_PS() && fill.fill_inter_style == GSOLID)
        gps_fill_area(n, pts, fill.fill_color);
    return 0;
}

void gflush_fill() {
    const int n = context.held;
    context.held = 0;
    if (n > 0)
        send_area(n, context.points.data(), context.held_color);
}

int gset_fill_colr_ind(int ind) {
    if (ind == fill.fill_color)
        return 0;
    if (gchk_colr("gset_fill_colr_ind", &ind) != 0)
        return -1;
    if (ind == fill.fill_color)
        return 0; // a print colour stands for it
    fill.fill_color = ind;
    if (gtype_is_META())
        return gmeta_printf("FA_CLR %d\n", ind);
    gnew_obj(obj_fill_colr, ind, 0, nullptr);
    return 0; // the context takes the colour with the next area
}

int gset_fill_int_style(int style) {
    if (style == fill.fill_inter_style)
        return 0;
    if (gchk_open("gset_fill_int_style") != 0)
        return -1;
    gflush_fill();
    fill.fill_inter_style = style;
    if (gtype_is_META())
        return gmeta_printf("FA_INT %d\n", style);
    gnew_obj(obj_fill_int_style, style, 0, nullptr);
    apply_style();
    return 0;
}

int gset_fill_style_ind(int ind) {
    const bool same = ind == fill.fill_inter_index;
    if (same && !fill.pattern_elsewhere)
        return 0;
    if (gchk_open("gset_fill_style_ind") != 0)
        return -1;
    if (ind < 0 || ind >= num_patterns) {
        gerr_printf("gset_fill_style_ind", "invalid style index: %d\n", ind);
        return -1;
    }
    if (gtype_is_META()) {
        fill.pattern_elsewhere = !same;
        return gmeta_printf("FA_ST %d\n", ind);
    }
    fill.fill_inter_index = ind;
    gnew_obj(obj_fill_style_ind, ind, 0, nullptr);
    apply_style();
    return 0;
}

int gset_fill_print_solid(int value) {
    fill.print_solid = value;
    gnew_obj(obj_fill_solid, value, 0, nullptr);
    return 0;
}

int gget_fill_print_solid() {
    return fill.print_solid;
}

int gget_fill_colr() {
    return fill.fill_color;
}

int greset_fill() {
    const int solid = fill.print_solid;
    fill = {};
    fill.print_solid = solid;
    return 0;
}

int ginit_fill(int type) {
    Display* display = gget_display();
    if (display == nullptr || type < 0 || type > 1)
        return 0;
    if (type == 0) {
        context.gc = XCreateGC(display, gget_root_window(), 0, nullptr);
        for (int i = 0; i < num_patterns; ++i)
            context.fill_pat[i] =
                gmake_bitmap(gget_root_window(), bitmap[i].data(), pattern_size, pattern_size);
    }
    gflush_fill();
    context.color = missing_index;
    XSetForeground(display, context.gc, WhitePixel(display, gget_screen()));
    XSetBackground(display, context.gc, BlackPixel(display, gget_screen()));
    XSetFillStyle(display, context.gc, FillSolid);
    gset_gc_clip();
    return 0;
}

void gput_fill_state() {
    const FillState now = fill;
    fill = {missing_index, missing_index, missing_index, now.print_solid};
    gset_fill_int_style(now.fill_inter_style);
    gset_fill_style_ind(now.fill_inter_index);
    if (gget_color_ind(now.fill_color) != -1)
        gset_fill_colr_ind(now.fill_color);
    else // without a pixel no setter takes it
        gnew_obj(obj_fill_colr, now.fill_color, 0, nullptr);
    fill = now; // also what a setter refused
}

void ghold_fill_state(Ghold what) {
    if (what == Ghold::restore) {
        fill = fill_aside;
        return;
    }
    gflush_fill();
    fill_aside = fill;
    if (what == Ghold::begin)
        fill = {missing_index, missing_index, missing_index, fill.print_solid};
}

GC gget_fill_gc() {
    if (context.gc != nullptr) {
        gflush_fill();
        apply_color(fill.fill_color);
    }
    return context.gc;
}

void grenew_fill_color() {
    context.color = missing_index;
}

int gdel_fill_pat() {
    for (Pixmap& pattern : context.fill_pat) {
        if (pattern != 0)
            XFreePixmap(gget_display(), pattern);
        pattern = 0;
    }
    return 0;
}

void gfree_fill_gc() {
    if (context.gc != nullptr)
        XFreeGC(gget_display(), context.gc);
    const auto patterns = context.fill_pat;
    context = {};
    context.fill_pat = patterns; // gdel_fill_pat frees them
}

int gclear_region(const Glim* lim) {
    if (gtype_is_META()) {
        return gmeta_printf("CLR_REG %f %f %f %f\n", static_cast<double>(lim->x_min),
                            static_cast<double>(lim->y_min), static_cast<double>(lim->x_max),
                            static_cast<double>(lim->y_max));
    }
    gnew_obj(obj_clear_region, 1, sizeof *lim, lim);
    if (gtype_is_WIN_PIX())
        return gclear_window_region(lim);
    if (!gtype_is_PS())
        return 0;
    const Gpt pts[] = {
        {lim->x_min, lim->y_min},
        {lim->x_max, lim->y_min},
        {lim->x_max, lim->y_max},
        {lim->x_min, lim->y_max}
    };
    gps_printf("%%%%CLR\nnp\n");
    gps_path(4, pts);
    gps_printf("cp\n");
    gps_set_fill_color(-1);
    gps_printf("fill\n");
    return 0;
}
