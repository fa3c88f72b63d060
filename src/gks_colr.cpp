// gks_colr: the workstation's colour table. Owns the components of the 257
// entries, of which the last is the background, and on a display their pixels.

#include "gks_attr.h"
#include "gks_draw.h"
#include "gks_tran.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr long file_pixel = 1; // what galloc_colr says on a file device
constexpr int no_pixel = -1;
constexpr float full = 65535.0F; // of a component
constexpr unsigned trace = 0x40000000;

struct ColorState {
    std::array<int, num_colrs> color_ind{}; // pixels; no_pixel: none yet
    std::array<float, num_colrs> red{};
    std::array<float, num_colrs> grn{};
    std::array<float, num_colrs> blu{};
    int max_color_ind = 0;        // highest index used
    int rw_colors = 1;            // 1: try writable cells
    int inverse = 0;              // 1: black on white
    Gcolor_finder find = nullptr; // of the program's colour names
    std::array<char, 50> background{};
};
ColorState colr;

int entry(int ind) {
    return ind < 0 || ind >= num_colrs ? background_colr : ind;
}

// The last index whose colour is near, else the next unused one.
int suitable_index(float red, float grn, float blu) {
    int found = -1;
    for (int i = 0; i < colr.max_color_ind; ++i) {
        if (gis_color_near(red, grn, blu, i, 0) != 0) {
            found = i;
        }
    }
    return found >= 0 ? found : colr.max_color_ind + 1;
}

std::uint16_t component(float value) {
    return static_cast<std::uint16_t>(std::clamp(value, 0.0F, 1.0F) * full);
}

Gcolr_levels levels(float red, float grn, float blu) {
    return {component(red), component(grn), component(blu)};
}

Gcolr_levels levels_of(int ind) {
    return levels(colr.red[ind], colr.grn[ind], colr.blu[ind]);
}

// The pixel that comes closest to a colour of which the server has no more.
int nearest_pixel(float red, float grn, float blu) {
    int pixel = 0;
    float least = 4.0F;
    for (int i = 0; i < num_colrs; ++i) {
        const float distance = std::fabs(red - colr.red[i]) + std::fabs(grn - colr.grn[i]) +
                               std::fabs(blu - colr.blu[i]);
        if (colr.color_ind[i] != no_pixel && distance < least) {
            least = distance;
            pixel = colr.color_ind[i];
        }
    }
    return pixel;
}

// A shared cell. If there is none left the request keeps the pixel it came
// with, the nearest one.
void alloc_shared(int ind) {
    colr.color_ind[ind] = no_pixel; // not near itself
    const int nearest = nearest_pixel(colr.red[ind], colr.grn[ind], colr.blu[ind]);
    colr.color_ind[ind] = gdraw_share_pixel(levels_of(ind), nearest);
}

// Writes the colour into the index's own cell: what stands in that colour
// changes at once.
void store_cell(int ind) {
    const Gcolr_levels stored = levels_of(ind);
    gdraw_store_cell(colr.color_ind[ind], stored);
    MESS_print(trace, "Stored new RW Cells: %d %d (%.2f %.2f %.2f) (%5d %5d %5d)\n", ind,
               colr.color_ind[ind], static_cast<double>(colr.red[ind]),
               static_cast<double>(colr.grn[ind]), static_cast<double>(colr.blu[ind]), stored.red,
               stored.grn, stored.blu);
}

// A writable cell; the first refusal is for good.
bool alloc_cell(int ind) {
    if (colr.rw_colors != 0 && !gdraw_take_cell(&colr.color_ind[ind])) {
        colr.rw_colors = 0;
    }
    if (colr.rw_colors == 0) {
        return false;
    }
    MESS_print(trace, "Allocated RW Cells: %d\n", colr.color_ind[ind]);
    return true;
}

// Gives the index a pixel of its new colour.
void alloc_pixel(int ind) {
    const bool has_pixel = colr.color_ind[ind] != no_pixel;
    if (has_pixel ? colr.rw_colors != 0 : alloc_cell(ind)) {
        store_cell(ind);
    } else {
        alloc_shared(ind);
    }
}

// What is drawn from now on in the index takes its new pixel.
void renew_pens(int ind) {
    if (ind == gget_line_colr()) {
        gdraw_set_color(Gpen::line, ind);
    }
    if (ind == gget_text_colr()) {
        gdraw_set_color(Gpen::text, ind);
    }
    if (ind == gget_marker_colr()) {
        gdraw_set_color(Gpen::marker, ind);
    }
    gdraw_set_color(Gpen::fill, ind); // it may still hold any index
}

// --- Background ---------------------------------------------------------------

const char* background_text() {
    const char* text = colr.background.data();
    if (*text == '\0') {
        text = RES_get("background");
    }
    return text != nullptr ? text : gdraw_default("background");
}

// The plot goes over what is there.
bool is_over(const char* text) {
    return stricmp(text, "none") == 0 || stricmp(text, "def") == 0 || stricmp(text, "over") == 0;
}

Gcolr_levels named_background(const char* text) {
    Gcolr_rep rep{};
    if (gfind_color(text, &rep) >= 0) {
        return levels(rep.red, rep.green, rep.blue);
    }
    Gcolr_levels named{};
    if (!gdraw_parse_color(text, &named)) {
        MESS_print(mess_warn, "ginit_background: invalid color: %s\n", text);
    }
    return named;
}

void store_background(float red, float grn, float blu) {
    colr.red[background_colr] = red;
    colr.grn[background_colr] = grn;
    colr.blu[background_colr] = blu;
}

int set_display_background(const char* text) {
    Gcolr_levels shown =
        text != nullptr ? named_background(text) : gdraw_screen_levels(colr.inverse != 0);
    gflush_fill();
    colr.color_ind[background_colr] = gdraw_share_levels(&shown);
    store_background(static_cast<float>(shown.red) / full, static_cast<float>(shown.grn) / full,
                     static_cast<float>(shown.blu) / full);
    renew_pens(background_colr);
    return 0;
}

// Paper is white.
int set_paper_background() {
    store_background(1.0F, 1.0F, 1.0F);
    return gps_set_color_rep(1.0F, 1.0F, 1.0F, background_colr);
}

} // namespace

int gset_colr_rep(int ws_id, int ind, const Gcolr_rep* rep) {
    if (gchk_open("gset_colr_rep") != 0) {
        return -1;
    }
    if (ind >= first_print_colr && ind <= last_print_colr) {
        return 0;
    }
    if (gis_valid_colr(ind) == 0) {
        gerr_printf("gset_colr_rep", "invalid color index: %d\n", ind);
        return -1;
    }
    grecord(obj_colr_rep, ws_id, ind, *rep);
    if (!gtype_is_META() || !gdraw_ready()) { // else a window's list is written out
        galloc_colr(ind, rep->red, rep->green, rep->blue);
    }
    return 0;
}

long galloc_colr(int ind, float red, float grn, float blu) {
    if (ind < 0) {
        ind = suitable_index(red, grn, blu);
        MESS_print(trace, "%s ind: %d (%.2f %.2f %.2f)\n",
                   ind > colr.max_color_ind ? "Allocated new" : "Used existing", ind,
                   static_cast<double>(red), static_cast<double>(grn), static_cast<double>(blu));
    }
    const bool display = gtype_is_WIN_PIX() && gdraw_ready();
    if (ind >= num_colrs) { // the table is full
        return display ? nearest_pixel(red, grn, blu) : file_pixel;
    }
    colr.max_color_ind = std::max(colr.max_color_ind, ind);
    const bool same = red == colr.red[ind] && grn == colr.grn[ind] && blu == colr.blu[ind];
    if (display && !(same && colr.color_ind[ind] != no_pixel)) {
        gflush_fill(); // it keeps the old pixel
    }
    colr.red[ind] = red;
    colr.grn[ind] = grn;
    colr.blu[ind] = blu;
    gps_set_color_rep(red, grn, blu, ind);
    if (!display) {
        return file_pixel;
    }
    if (!same || colr.color_ind[ind] == no_pixel) {
        alloc_pixel(ind);
        renew_pens(ind);
    }
    return colr.color_ind[ind];
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

int ginit_background() {
    const char* text = background_text();
    if (text != nullptr && *text == '\0') {
        text = nullptr;
    }
    const bool over = text != nullptr && is_over(text);
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        set_display_background(over ? nullptr : text);
        break;
    case Gdevice::postscript:
        set_paper_background();
        break;
    case Gdevice::metafile:
    case Gdevice::hpgl:
    case Gdevice::none:
        break;
    }
    if (gtype_is_WIN() && !over) {
        gclear_frame(frame_base);
    }
    return 0;
}

int gget_color_rgb256(int ind, int* red, int* grn, int* blu) {
    const int i = entry(ind);
    // The nearest step of a screen with 256 steps a component, as the server takes it.
    const auto whole = [](float value) { return (component(value) + 128) / 257; };
    *red = whole(colr.red[i]);
    *grn = whole(colr.grn[i]);
    *blu = whole(colr.blu[i]);
    return 0;
}

int gset_background(const char* text) {
    return copy_text(colr.background.data(), colr.background.size(), text);
}

int gget_back_color() {
    return gget_color_ind(-1);
}

int gset_rw_colors(int value) {
    colr.rw_colors = value;
    return 0;
}

void gforget_pixels(bool display) {
    colr.color_ind.fill(display ? no_pixel : 0);
}
