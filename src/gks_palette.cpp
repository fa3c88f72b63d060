// gks_palette: the workstation's colour table: components of the 257 entries, of
// which the last is the background, and on a display their pixels. Owns that table
// and what colours go by besides. Nothing here asks a device: gks_colr.cpp fills it.

#include "gks_palette.h"
#include "state_keeper.h"

#include <cmath>

namespace {

Gpalette colr;

int entry(int ind) {
    return ind < 0 || ind >= num_colrs ? background_colr : ind;
}

} // namespace

Gpalette& gpalette() {
    return colr;
}

int gget_color_ind(int ind) {
    return colr.color_ind[entry(ind)];
}

int gget_color_rgb(int ind, float* red, float* grn, float* blu) {
    const int i = entry(ind);
    *red = colr.red[i];
    *grn = colr.grn[i];
    *blu = colr.blu[i];
    return 0;
}

int gis_valid_colr(int ind) {
    const bool in_table = ind >= -1 && ind < num_colrs;
    const bool print = ind >= first_print_colr && ind <= last_print_colr;
    return in_table || print ? 1 : 0;
}

int gis_color_near(float red, float grn, float blu, int ind, int flag) {
    if (ind == -1) {
        return 0;
    }
    if (flag != 0) {
        const auto last = std::find(colr.color_ind.rbegin(), colr.color_ind.rend(), ind);
        ind = static_cast<int>(colr.color_ind.rend() - last) - 1;
    }
    if (ind < 0 || ind >= num_colrs) {
        return 0;
    }
    const float distance = std::fabs(red - colr.red[ind]) + std::fabs(grn - colr.grn[ind]) +
                           std::fabs(blu - colr.blu[ind]);
    return distance < 0.01F ? 1 : 0;
}

int gchk_colr(const char* func, int* ind) {
    if (gchk_open(func) != 0) {
        return -1;
    }
    if (gis_valid_colr(*ind) == 0) {
        gerr_printf(func, "invalid color index: %d\n", *ind);
        return -1;
    }
    const bool print = *ind >= first_print_colr;
    if (print && gtype_is_WIN_PIX()) {
        *ind = 1;
    }
    if (!print && gtype_is_WIN_PIX() && gget_color_ind(*ind) == no_pixel) {
        gerr_printf(func, "color index not initialized\n");
        return -1;
    }
    return 0;
}

int gset_inverse(int value) {
    colr.inverse = value;
    return 0;
}

int gget_inverse() {
    return colr.inverse;
}

int gset_color_finder(Gcolor_finder find) {
    colr.find = find;
    return 0;
}

int gfind_color(const char* name, Gcolr_rep* rep) {
    return colr.find == nullptr ? -1 : colr.find(name, rep);
}

int gget_color_rgb256(int ind, int* red, int* grn, int* blu) {
    const int i = entry(ind);
    // The nearest step of a screen with 256 steps a component, as the server takes it.
    const auto whole = [](float value) { return (gcolor_level(value) + 128) / 257; };
    *red = whole(colr.red[i]);
    *grn = whole(colr.grn[i]);
    *blu = whole(colr.blu[i]);
    return 0;
}

int gget_back_color() {
    return gget_color_ind(-1);
}

void gforget_pixels(bool display) {
    colr.color_ind.fill(display ? no_pixel : 0);
}

void keep_gks_palette(StateKeeper& keeper) {
    keeper.keep(colr);
}
