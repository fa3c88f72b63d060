// gks_fill.cpp: filled areas and their attributes. Owns the fill state, which
// ginit_plot resets through greset_fill.

#include "gks.h"

namespace {

constexpr int num_patterns = 20;

struct FillState {
    int fill_inter_style = GSOLID;
    int fill_inter_index = 1; // pattern number
    int fill_color = 1;
    int print_solid = 0; // 1: fills print black; no reset touches it
};
FillState fill;

} // namespace

int gfill_area(int n, const Gpt* pts) {
    if (gpts_in_win(n, pts) == 0)
        return 0;
    if (gtype_is_PS() && fill.fill_inter_style == GSOLID)
        gps_fill_area(n, pts, fill.fill_color);
    return 0;
}

int gset_fill_colr_ind(int ind) {
    if (ind == fill.fill_color)
        return 0;
    if (gchk_colr("gset_fill_colr_ind", ind) != 0)
        return -1;
    fill.fill_color = ind;
    return 0;
}

int gset_fill_int_style(int style) {
    if (style == fill.fill_inter_style)
        return 0;
    if (gchk_open("gset_fill_int_style") != 0)
        return -1;
    fill.fill_inter_style = style;
    return 0;
}

int gset_fill_style_ind(int ind) {
    if (ind == fill.fill_inter_index)
        return 0;
    if (gchk_open("gset_fill_style_ind") != 0)
        return -1;
    if (ind < 0 || ind >= num_patterns) {
        gerr_printf("gset_fill_style_ind", "invalid style index: %d\n", ind);
        return -1;
    }
    fill.fill_inter_index = ind;
    return 0;
}

int gset_fill_print_solid(int value) {
    fill.print_solid = value;
    return 0;
}

int gget_fill_print_solid() {
    return fill.print_solid;
}

int gget_fill_colr() {
    return fill.fill_color;
}

int greset_fill() {
    fill.fill_inter_style = GSOLID;
    fill.fill_inter_index = 1;
    fill.fill_color = 1;
    return 0;
}

int gclear_region(const Glim* lim) {
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
