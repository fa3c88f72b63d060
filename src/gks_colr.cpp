// gks_colr.cpp: the workstation's colour table. Owns the components of the 257
// entries, of which the last is the background.

#include "gks_x11.h"

#include <array>
#include <cmath>

namespace {

struct ColorState {
    std::array<float, num_colrs> red{};
    std::array<float, num_colrs> grn{};
    std::array<float, num_colrs> blu{};
    int max_color_ind = 0; // highest index used
    int inverse = 0;       // 1: black on white
};
ColorState colr;

int entry(int ind) {
    return ind < 0 || ind >= num_colrs ? background_colr : ind;
}

// The last index whose colour is near, else the next unused one.
int suitable_index(float red, float grn, float blu) {
    int found = -1;
    for (int i = 0; i < colr.max_color_ind; ++i) {
        if (gis_color_near(red, grn, blu, i, 0) != 0)
            found = i;
    }
    return found >= 0 ? found : colr.max_color_ind + 1;
}

} // namespace

int gset_colr_rep(int /*ws_id*/, int ind, const Gcolr_rep* rep) {
    if (gchk_open("gset_colr_rep") != 0)
        return -1;
    if (ind >= first_print_colr && ind <= last_print_colr)
        return 0;
    if (gis_valid_colr(ind) == 0) {
        gerr_printf("gset_colr_rep", "invalid color index: %d\n", ind);
        return -1;
    }
    galloc_colr(ind, rep->red, rep->green, rep->blue);
    return 0;
}

long galloc_colr(int ind, float red, float grn, float blu) {
    constexpr long file_pixel = 1;
    if (ind < 0)
        ind = suitable_index(red, grn, blu);
    if (ind >= num_colrs)
        return file_pixel; // the table is full
    if (ind > colr.max_color_ind)
        colr.max_color_ind = ind;
    colr.red[ind] = red;
    colr.grn[ind] = grn;
    colr.blu[ind] = blu;
    gps_set_color_rep(red, grn, blu, ind);
    return file_pixel;
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

int gis_color_near(float red, float grn, float blu, int ind, int /*flag*/) {
    if (ind < 0 || ind >= num_colrs)
        return 0;
    const float distance = std::fabs(red - colr.red[ind]) + std::fabs(grn - colr.grn[ind]) +
                           std::fabs(blu - colr.blu[ind]);
    return distance < 0.01F ? 1 : 0;
}

int gchk_colr(const char* func, int* ind) {
    if (gchk_open(func) != 0)
        return -1;
    if (gis_valid_colr(*ind) == 0) {
        gerr_printf(func, "invalid color index: %d\n", *ind);
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

int ginit_background() {
    if (!gtype_is_PS())
        return 0;
    colr.red[background_colr] = 1.0F;
    colr.grn[background_colr] = 1.0F;
    colr.blu[background_colr] = 1.0F;
    return gps_set_color_rep(1.0F, 1.0F, 1.0F, background_colr);
}

int gget_color_ind(int) {
    return 0;
}
int gget_color_rgb256(int, int*, int*, int*) {
    return 0;
}
unsigned long gget_color_rgb_Xval(unsigned, unsigned, unsigned) {
    return 0;
}
int gset_background(const char*) {
    return 0;
}
int gget_back_color() {
    return 0;
}
int gset_rw_colors(int) {
    return 0;
}
int gset_local_colormap(int) {
    return 0;
}
int ginit_xcolr() {
    return 0;
}
Colormap gget_colormap() {
    return 0;
}
int gset_def_cmap(Colormap) {
    return 0;
}
int gset_user_cmap(Colormap) {
    return 0;
}
Colormap gget_user_cmap() {
    return 0;
}
