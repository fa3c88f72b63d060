// gks_fill: filled areas and their attributes. Owns the fill state, which
// ginit_plot resets through greset_fill; a display has a pen that follows it.

#include "gks_attr.h"
#include "gks_pix.h"
#include "gks_print.h"
#include "state_keeper.h"
#include "text_num.h"

namespace {

struct FillState {
    int fill_inter_style = GSOLID;
    int fill_inter_index = 1; // pattern number
    int fill_color = 1;
    // A metafile holds another pattern than this state: a pattern only goes to
    // the file there.
    bool pattern_elsewhere = false;
};
FillState fill;
// While a replay runs.
struct FillAside {
    FillState fill;
    int print_solid = 0;
};
FillAside aside;

// Attributes that no setter is given, so that each next one counts.
constexpr FillState unknown_state = {missing_index, missing_index, missing_index};

void apply_style() {
    gdraw_set_fill_style(fill.fill_inter_style, fill.fill_inter_index);
}

int show_area(int n, const Gpt* pts) {
    if (!gdraw_ready()) {
        return 0;
    }
    gnew_obj(obj_fill_area, n, n * static_cast<int>(sizeof(Gpt)), pts);
    const PixelFigure figure(n, pts);
    if (figure.points() == nullptr) {
        gerr_printf("gfill_area", "malloc error\n");
        return -1;
    }
    gdraw_area(n, figure.points(), fill.fill_color, fill.fill_inter_style == GSOLID);
    return 0;
}

int show_clear(const Glim& lim) {
    if (!gdraw_ready()) {
        return -1;
    }
    const int x = trunc_int(xW_p(lim.x_min) + 0.5F);
    const int y = trunc_int(yW_p(lim.y_max) + 0.5F);
    const int width = trunc_int(xW_p(lim.x_max) - static_cast<float>(x) + 0.5F);
    const int height = trunc_int(yW_p(lim.y_min) - static_cast<float>(y) + 0.5F);
    if (width > 0 && height > 0) {
        gdraw_clear({x, y, width, height});
    }
    return 0;
}

} // namespace

int gfill_area(int n, const Gpt* pts) {
    if (gpts_in_win(n, pts) == 0) {
        return 0;
    }
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_area(n, pts);
    case Gdevice::metafile:
        return gmeta_fill_area(n, pts);
    case Gdevice::postscript:
        return gps_fill_area(n, pts, fill.fill_color, fill.fill_inter_style);
    case Gdevice::hpgl:
        return ghpgl_fill_area(n, pts, fill.fill_color);
    case Gdevice::none:
        return 0;
    }
    return 0;
}

int gset_fill_colr_ind(int ind) {
    if (ind == fill.fill_color) {
        return 0;
    }
    if (gchk_colr("gset_fill_colr_ind", &ind) != 0) {
        return -1;
    }
    if (ind == fill.fill_color) {
        return 0; // a print colour stands for it
    }
    fill.fill_color = ind;
    grecord(obj_fill_colr, ind);
    return 0; // a display takes the colour with the next area
}

int gset_fill_int_style(int style) {
    if (style == fill.fill_inter_style) {
        return 0;
    }
    if (gchk_open("gset_fill_int_style") != 0) {
        return -1;
    }
    fill.fill_inter_style = style;
    if (grecord(obj_fill_int_style, style)) {
        apply_style();
    }
    return 0;
}

int gset_fill_style_ind(int ind) {
    const bool same = ind == fill.fill_inter_index;
    if (same && !fill.pattern_elsewhere) {
        return 0;
    }
    if (gchk_open("gset_fill_style_ind") != 0) {
        return -1;
    }
    if (ind < 0 || ind >= num_patterns) {
        gerr_printf("gset_fill_style_ind", "invalid style index: %d\n", ind);
        return -1;
    }
    const bool shown = grecord(obj_fill_style_ind, ind);
    if (gtype_is_META()) {
        fill.pattern_elsewhere = !same;
        return 0;
    }
    fill.fill_inter_index = ind;
    if (shown) {
        apply_style();
    }
    return 0;
}

int gset_fill_print_solid(int value) {
    gprint_set_solid(value);
    grecord(obj_fill_solid, value);
    return 0;
}

int gget_fill_colr() {
    return fill.fill_color;
}

int greset_fill() {
    fill = {};
    return 0;
}

int ginit_fill(int type) {
    gdraw_init_pen(Gpen::fill, type);
    return 0;
}

void gput_fill_state() {
    const FillState now = fill;
    fill = unknown_state;
    gset_fill_int_style(now.fill_inter_style);
    gset_fill_style_ind(now.fill_inter_index);
    if (gget_color_ind(now.fill_color) != -1) {
        gset_fill_colr_ind(now.fill_color);
    } else { // without a pixel no setter takes it
        gnew_obj(obj_fill_colr, now.fill_color, 0, nullptr);
    }
    fill = now; // also what a setter refused
}

void ghold_fill_state(Ghold what) {
    if (what == Ghold::restore) {
        fill = aside.fill;
        gprint_set_solid(aside.print_solid);
        return;
    }
    gflush_fill();
    aside = {fill, gget_fill_print_solid()};
    if (what == Ghold::begin) {
        fill = unknown_state;
    }
}

int gclear_region(const Glim* lim) {
    const Gdevice device = gget_device();
    if (device != Gdevice::metafile) {
        gnew_obj(obj_clear_region, 1, sizeof *lim, lim);
    }
    switch (device) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_clear(*lim);
    case Gdevice::metafile:
        return gmeta_clear_region(*lim);
    case Gdevice::postscript:
        return gps_clear_region(*lim);
    case Gdevice::hpgl:
    case Gdevice::none:
        return 0;
    }
    return 0;
}

void keep_gks_fill(StateKeeper& keeper) {
    keeper.keep(fill);
    keeper.keep(aside);
}
