// gks_line: polylines and their attributes. Owns the line state, which
// ginit_plot resets through greset_line; a display has a pen that follows it.

#include "gks_attr.h"
#include "gks_pix.h"
#include "gks_print.h"
#include "state_keeper.h"

#include <cmath>

namespace {

struct LineState {
    int line_color = 1;
    int line_type = 1; // 1 solid, 2 to 5 dashed
    float line_width = 1.0F;
};
LineState line;
// While a replay runs.
struct LineAside {
    LineState line;
    int print_bold = 1;
};
LineAside aside;

// Attributes that no setter is given, so that each next one counts.
constexpr LineState unknown_state = {missing_index, missing_index, -1.0F};

int show_polyline(int n, const Gpt* pts) {
    gnew_obj(obj_polyline, n, n * static_cast<int>(sizeof(Gpt)), pts);
    const PixelFigure figure(n, pts);
    if (figure.points() == nullptr) {
        gerr_printf("gpolyline", "malloc error\n");
        return -1;
    }
    gdraw_lines(Gpen::line, n, figure.points());
    return 0;
}

} // namespace

int gpolyline(int n, const Gpt* pts) {
    if (gchk_open("gpolyline") != 0) {
        return -1;
    }
    if (n < 2) {
        gerr_printf("gpolyline", "invalid number of points: %d\n", n);
        return -1;
    }
    if (gpts_in_win(n, pts) == 0) {
        return 0;
    }
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_polyline(n, pts);
    case Gdevice::metafile:
        return gmeta_polyline(n, pts);
    case Gdevice::postscript:
        return gps_polyline(n, pts, line.line_color, line.line_width, line.line_type);
    case Gdevice::hpgl:
        return ghpgl_polyline(n, pts, line.line_color, line.line_width, line.line_type);
    case Gdevice::none:
        return 0;
    }
    return 0;
}

int gset_line_colr_ind(int ind) {
    if (gchk_colr("gset_line_colr_ind", &ind) != 0) {
        return -1;
    }
    if (ind == line.line_color) {
        return 0;
    }
    line.line_color = ind;
    if (grecord(obj_line_colr, ind)) {
        gdraw_set_color(Gpen::line, ind);
    }
    return 0;
}

int gset_linewidth(float width) {
    if (gchk_open("gset_linewidth") != 0) {
        return -1;
    }
    if (!std::isfinite(width) || width < 0.0F) {
        gerr_printf("gset_linewidth", "invalid line width: %f\n", static_cast<double>(width));
        return -1;
    }
    if (width == line.line_width) {
        return 0;
    }
    line.line_width = gkept_width(width);
    if (grecord(obj_linewidth, width)) {
        gdraw_set_width(Gpen::line, width);
    }
    return 0;
}

int gset_linetype(int type) {
    if (gchk_open("gset_linetype") != 0) {
        return -1;
    }
    if (type < 0) {
        gerr_printf("gset_linetype", "invalid line type: %d\n", type);
        return -1;
    }
    if (type == line.line_type) {
        return 0;
    }
    line.line_type = type;
    if (grecord(obj_linetype, type)) {
        gdraw_set_dash(type);
    }
    return 0;
}

int gset_line_print_bold(int value) {
    const int factor = value > 0 ? value : 1;
    gprint_set_bold(factor);
    grecord(obj_line_bold, factor);
    return 0;
}

int gget_line_colr() {
    return line.line_color;
}

int greset_line() {
    line = {};
    return 0;
}

int ginit_line(int type) {
    gdraw_init_pen(Gpen::line, type);
    return 0;
}

void gput_line_state() {
    const LineState now = line;
    line = unknown_state;
    if (gget_color_ind(now.line_color) != -1) {
        gset_line_colr_ind(now.line_color);
    } else { // without a pixel no setter takes it
        gnew_obj(obj_line_colr, now.line_color, 0, nullptr);
    }
    gset_linetype(now.line_type);
    gset_linewidth(now.line_width);
    line = now; // also what a setter refused
}

void ghold_line_state(Ghold what) {
    if (what == Ghold::restore) {
        line = aside.line;
        gprint_set_bold(aside.print_bold);
        return;
    }
    aside = {line, gget_line_print_bold()};
    if (what == Ghold::begin) {
        line = unknown_state;
    }
}

void keep_gks_line(StateKeeper& keeper) {
    keeper.keep(line);
    keeper.keep(aside);
}
