// gks_line.cpp: polylines and their attributes. Owns the line state, which
// ginit_plot resets through greset_line.

#include "gks.h"

#include <cmath>

namespace {

struct LineState {
    int line_color = 1;
    int line_type = 1; // 1 solid, 2 to 5 dashed
    float line_width = 1.0F;
    int print_bold = 1; // factor on widths in print; no reset touches it
};
LineState line;

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
    if (gtype_is_PS())
        gps_polyline(n, pts, line.line_color, line.line_width, line.line_type);
    return 0;
}

int gset_line_colr_ind(int ind) {
    if (gchk_colr("gset_line_colr_ind", ind) != 0)
        return -1;
    line.line_color = ind;
    return 0;
}

int gset_linewidth(float width) {
    if (gchk_open("gset_linewidth") != 0)
        return -1;
    if (!std::isfinite(width) || width < 0.0F) {
        gerr_printf("gset_linewidth", "invalid line width: %f\n", static_cast<double>(width));
        return -1;
    }
    line.line_width = gtype_is_PS() && width == 0.0F ? 1.0F : width;
    return 0;
}

int gset_linetype(int type) {
    if (gchk_open("gset_linetype") != 0)
        return -1;
    if (type < 0) {
        gerr_printf("gset_linetype", "invalid line type: %d\n", type);
        return -1;
    }
    line.line_type = type;
    return 0;
}

int gset_line_print_bold(int value) {
    line.print_bold = value > 0 ? value : 1;
    return 0;
}

int gget_line_print_bold() {
    return line.print_bold;
}

int gget_line_colr() {
    return line.line_color;
}

int greset_line() {
    line.line_color = 1;
    line.line_type = 1;
    line.line_width = 1.0F;
    return 0;
}
