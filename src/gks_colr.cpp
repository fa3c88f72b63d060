// gks_colr: gives colours to the workstation: an index its components and on a
// display its pixel, and the plot its background. The table is in gks_palette.cpp;
// here is whether writable cells are tried, and the background asked for.

#include "gks_attr.h"
#include "gks_draw.h"
#include "gks_palette.h"
#include "state_keeper.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr long file_pixel = 1;   // what galloc_colr says on a file device
constexpr float full = 65535.0F; // of a component
constexpr unsigned trace = 0x40000000;

struct ColorState {
    int rw_colors = 1; // 1: try writable cells
    std::array<char, 50> background{};
};
ColorState colr;

// The last index whose colour is near, else the next unused one.
int suitable_index(float red, float grn, float blu) {
    int found = -1;
    for (int i = 0; i < gpalette().max_color_ind; ++i) {
        if (gis_color_near(red, grn, blu, i, 0) != 0) {
            found = i;
        }
    }
    return found >= 0 ? found : gpalette().max_color_ind + 1;
}

Gcolr_levels levels(float red, float grn, float blu) {
    return {gcolor_level(red), gcolor_level(grn), gcolor_level(blu)};
}

Gcolr_levels levels_of(int ind) {
    return levels(gpalette().red[ind], gpalette().grn[ind], gpalette().blu[ind]);
}

// The pixel that comes closest to a colour of which the server has no more.
int nearest_pixel(float red, float grn, float blu) {
    int pixel = 0;
    float least = 4.0F;
    const Gpalette& table = gpalette();
    for (int i = 0; i < num_colrs; ++i) {
        const float distance = std::fabs(red - table.red[i]) + std::fabs(grn - table.grn[i]) +
                               std::fabs(blu - table.blu[i]);
        if (table.color_ind[i] != no_pixel && distance < least) {
            least = distance;
            pixel = table.color_ind[i];
        }
    }
    return pixel;
}

// A shared cell. If there is none left the request keeps the pixel it came
// with, the nearest one.
void alloc_shared(int ind) {
    gpalette().color_ind[ind] = no_pixel; // not near itself
    const int nearest =
        nearest_pixel(gpalette().red[ind], gpalette().grn[ind], gpalette().blu[ind]);
    gpalette().color_ind[ind] = gdraw_share_pixel(levels_of(ind), nearest);
}

// Writes the colour into the index's own cell: what is in that colour
// changes at once.
void store_cell(int ind) {
    const Gcolr_levels stored = levels_of(ind);
    gdraw_store_cell(gpalette().color_ind[ind], stored);
    MESS_print(trace, "Stored new RW Cells: %d %d (%.2f %.2f %.2f) (%5d %5d %5d)\n", ind,
               gpalette().color_ind[ind], static_cast<double>(gpalette().red[ind]),
               static_cast<double>(gpalette().grn[ind]), static_cast<double>(gpalette().blu[ind]),
               stored.red, stored.grn, stored.blu);
}

// A writable cell; the first refusal is for good.
bool alloc_cell(int ind) {
    if (colr.rw_colors != 0 && !gdraw_take_cell(&gpalette().color_ind[ind])) {
        colr.rw_colors = 0;
    }
    if (colr.rw_colors == 0) {
        return false;
    }
    MESS_print(trace, "Allocated RW Cells: %d\n", gpalette().color_ind[ind]);
    return true;
}

// Gives the index a pixel of its new colour.
void alloc_pixel(int ind) {
    const bool has_pixel = gpalette().color_ind[ind] != no_pixel;
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
    gpalette().red[background_colr] = red;
    gpalette().grn[background_colr] = grn;
    gpalette().blu[background_colr] = blu;
}

int set_display_background(const char* text) {
    Gcolr_levels shown =
        text != nullptr ? named_background(text) : gdraw_screen_levels(gpalette().inverse != 0);
    gflush_fill();
    gpalette().color_ind[background_colr] = gdraw_share_levels(&shown);
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
    const Gcolr_rep held = {gcolor_component(rep->red), gcolor_component(rep->green),
                            gcolor_component(rep->blue)};
    grecord(obj_colr_rep, ws_id, ind, held);
    if (!gtype_is_META() || !gdraw_ready()) { // else a window's list is written out
        galloc_colr(ind, held.red, held.green, held.blue);
    }
    return 0;
}

long galloc_colr(int ind, float red, float grn, float blu) {
    if (ind < 0) {
        ind = suitable_index(red, grn, blu);
        MESS_print(trace, "%s ind: %d (%.2f %.2f %.2f)\n",
                   ind > gpalette().max_color_ind ? "Allocated new" : "Used existing", ind,
                   static_cast<double>(red), static_cast<double>(grn), static_cast<double>(blu));
    }
    const bool display = gtype_is_WIN_PIX() && gdraw_ready();
    if (ind >= num_colrs) { // the table is full
        return display ? nearest_pixel(red, grn, blu) : file_pixel;
    }
    gpalette().max_color_ind = std::max(gpalette().max_color_ind, ind);
    const bool same =
        red == gpalette().red[ind] && grn == gpalette().grn[ind] && blu == gpalette().blu[ind];
    if (display && !(same && gpalette().color_ind[ind] != no_pixel)) {
        gflush_fill(); // it keeps the old pixel
    }
    gpalette().red[ind] = red;
    gpalette().grn[ind] = grn;
    gpalette().blu[ind] = blu;
    gps_set_color_rep(red, grn, blu, ind);
    if (!display) {
        return file_pixel;
    }
    if (!same || gpalette().color_ind[ind] == no_pixel) {
        alloc_pixel(ind);
        renew_pens(ind);
    }
    return gpalette().color_ind[ind];
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

int gset_background(const char* text) {
    return copy_text(colr.background.data(), colr.background.size(), text);
}

int gset_rw_colors(int value) {
    colr.rw_colors = value;
    return 0;
}

void keep_gks_colr(StateKeeper& keeper) {
    keeper.keep(colr);
}
