// gks_colr.cpp: the workstation's colour table. Owns the components of the 257
// entries, of which the last is the background, and on a display their pixels
// and the colour maps. ginit_xcolr starts the pixels over when a display opens.

#include "gks_x11.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>

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
    int max_color_ind = 0;     // highest index used
    Colormap def_colormap = 0; // of the screen
    Colormap user_colormap = 0;
    int local_cmap = 0;           // 1: make a private colour map
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
        if (gis_color_near(red, grn, blu, i, 0) != 0)
            found = i;
    }
    return found >= 0 ? found : colr.max_color_ind + 1;
}

unsigned short component(float value) {
    return static_cast<unsigned short>(std::clamp(value, 0.0F, 1.0F) * full);
}

XColor x_color(float red, float grn, float blu) {
    XColor color{};
    color.red = component(red);
    color.green = component(grn);
    color.blue = component(blu);
    color.flags = DoRed | DoGreen | DoBlue;
    return color;
}

// The pixel that comes closest to a colour of which the server has no more.
unsigned long nearest_pixel(float red, float grn, float blu) {
    unsigned long pixel = 0;
    float least = 4.0F;
    for (int i = 0; i < num_colrs; ++i) {
        const float distance = std::fabs(red - colr.red[i]) + std::fabs(grn - colr.grn[i]) +
                               std::fabs(blu - colr.blu[i]);
        if (colr.color_ind[i] != no_pixel && distance < least) {
            least = distance;
            pixel = static_cast<unsigned long>(colr.color_ind[i]);
        }
    }
    return pixel;
}

bool has_masks() {
    return gget_visual() != nullptr && gget_visual()->c_class == TrueColor;
}

// A component of 16 bits in its place in a pixel.
unsigned long masked(unsigned value, unsigned long mask) {
    if (mask == 0)
        return 0;
    const int bits = std::min(std::popcount(mask), 16);
    return static_cast<unsigned long>(value >> (16 - bits)) << std::countr_zero(mask);
}

unsigned long masked_pixel(const XColor& color) {
    return gget_color_rgb_Xval(color.red, color.green, color.blue);
}

// What a server says of a pixel's component.
unsigned short shown_component(unsigned long pixel, unsigned long mask) {
    if (mask == 0)
        return 0;
    const unsigned long most = mask >> std::countr_zero(mask);
    return static_cast<unsigned short>(((pixel & mask) >> std::countr_zero(mask)) * 0xFFFF / most);
}

// The server's part of an allocation: the pixel, and the colour that it shows. A
// request is spent on it only where the pixels do not tell.
void take_shared(XColor* color) {
    if (has_masks()) {
        color->pixel = masked_pixel(*color);
        color->red = shown_component(color->pixel, gget_red_mask());
        color->green = shown_component(color->pixel, gget_grn_mask());
        color->blue = shown_component(color->pixel, gget_blu_mask());
    } else {
        XAllocColor(gget_display(), gget_colormap(), color);
        XQueryColor(gget_display(), gget_colormap(), color);
    }
}

// A shared cell. If there is none left the request keeps the pixel it came
// with, the nearest one.
void alloc_shared(int ind) {
    XColor color = x_color(colr.red[ind], colr.grn[ind], colr.blu[ind]);
    if (has_masks()) {
        colr.color_ind[ind] = static_cast<int>(masked_pixel(color));
        return;
    }
    colr.color_ind[ind] = no_pixel; // not near itself
    color.pixel = nearest_pixel(colr.red[ind], colr.grn[ind], colr.blu[ind]);
    XAllocColor(gget_display(), gget_colormap(), &color);
    colr.color_ind[ind] = static_cast<int>(color.pixel);
}

// Writes the colour into the index's own cell: what stands in that colour
// changes at once.
void store_cell(int ind) {
    XColor color = x_color(colr.red[ind], colr.grn[ind], colr.blu[ind]);
    color.pixel = static_cast<unsigned long>(colr.color_ind[ind]);
    XStoreColor(gget_display(), gget_colormap(), &color);
    MESS_print(trace, "Stored new RW Cells: %d %d (%.2f %.2f %.2f) (%5d %5d %5d)\n", ind,
               colr.color_ind[ind], static_cast<double>(colr.red[ind]),
               static_cast<double>(colr.grn[ind]), static_cast<double>(colr.blu[ind]), color.red,
               color.green, color.blue);
}

// A writable cell; the first refusal is for good.
bool alloc_cell(int ind) {
    unsigned long pixel = 0;
    if (has_masks())
        colr.rw_colors = 0;
    if (colr.rw_colors != 0 &&
        XAllocColorCells(gget_display(), gget_colormap(), False, nullptr, 0, &pixel, 1) == 0)
        colr.rw_colors = 0;
    if (colr.rw_colors == 0)
        return false;
    colr.color_ind[ind] = static_cast<int>(pixel);
    MESS_print(trace, "Allocated RW Cells: %d\n", colr.color_ind[ind]);
    return true;
}

// Gives the index a pixel of its new colour.
void alloc_pixel(int ind) {
    const bool has_pixel = colr.color_ind[ind] != no_pixel;
    if (has_pixel ? colr.rw_colors != 0 : alloc_cell(ind))
        store_cell(ind);
    else
        alloc_shared(ind);
}

// What is drawn from now on in the index takes its new pixel.
void renew_contexts(int ind) {
    if (ind == gget_line_colr())
        grenew_line_color();
    if (ind == gget_text_colr())
        grenew_text_color();
    if (ind == gget_marker_colr())
        grenew_marker_color();
    grenew_fill_color(); // its context may still hold any index
}

// --- Background ---------------------------------------------------------------

const char* background_text() {
    const char* text = colr.background.data();
    if (*text == '\0')
        text = RES_get("background");
    if (text == nullptr && gget_display() != nullptr)
        text = XGetDefault(gget_display(), gget_prog_name(), "background");
    return text;
}

// The plot goes over what is there.
bool is_over(const char* text) {
    return stricmp(text, "none") == 0 || stricmp(text, "def") == 0 || stricmp(text, "over") == 0;
}

XColor named_background(const char* text) {
    XColor color{};
    Gcolr_rep rep{};
    if (gfind_color(text, &rep) >= 0)
        return x_color(rep.red, rep.green, rep.blue);
    if (XParseColor(gget_display(), gget_colormap(), text, &color) == 0)
        MESS_print(mess_warn, "ginit_background: invalid color: %s\n", text);
    return color;
}

XColor plain_background() {
    XColor color{};
    if (has_masks()) // black and white are what they are on any such screen
        return colr.inverse != 0 ? x_color(1.0F, 1.0F, 1.0F) : color;
    color.pixel = colr.inverse != 0 ? WhitePixel(gget_display(), gget_screen())
                                    : BlackPixel(gget_display(), gget_screen());
    XQueryColor(gget_display(), gget_colormap(), &color);
    return color;
}

void set_display_background(const char* text) {
    XColor color = text != nullptr ? named_background(text) : plain_background();
    gflush_fill();
    take_shared(&color);
    colr.color_ind[background_colr] = static_cast<int>(color.pixel);
    colr.red[background_colr] = static_cast<float>(color.red) / full;
    colr.grn[background_colr] = static_cast<float>(color.green) / full;
    colr.blu[background_colr] = static_cast<float>(color.blue) / full;
    renew_contexts(background_colr);
}

} // namespace

int gset_colr_rep(int ws_id, int ind, const Gcolr_rep* rep) {
    if (gchk_open("gset_colr_rep") != 0)
        return -1;
    if (ind >= first_print_colr && ind <= last_print_colr)
        return 0;
    if (gis_valid_colr(ind) == 0) {
        gerr_printf("gset_colr_rep", "invalid color index: %d\n", ind);
        return -1;
    }
    if (gtype_is_META()) {
        gmeta_printf("CLR %d %d %f %f %f\n", ws_id, ind, static_cast<double>(rep->red),
                     static_cast<double>(rep->green), static_cast<double>(rep->blue));
        if (gget_display() == nullptr) // else a window's list is written out
            galloc_colr(ind, rep->red, rep->green, rep->blue);
        return 0;
    }
    gnew_obj(obj_colr_rep, ind, sizeof *rep, rep);
    galloc_colr(ind, rep->red, rep->green, rep->blue);
    return 0;
}

long galloc_colr(int ind, float red, float grn, float blu) {
    if (ind < 0) {
        ind = suitable_index(red, grn, blu);
        MESS_print(trace, "%s ind: %d (%.2f %.2f %.2f)\n",
                   ind > colr.max_color_ind ? "Allocated new" : "Used existing", ind,
                   static_cast<double>(red), static_cast<double>(grn), static_cast<double>(blu));
    }
    const bool display = gtype_is_WIN_PIX() && gget_display() != nullptr;
    if (ind >= num_colrs) // the table is full
        return display ? static_cast<long>(nearest_pixel(red, grn, blu)) : file_pixel;
    colr.max_color_ind = std::max(colr.max_color_ind, ind);
    const bool same = red == colr.red[ind] && grn == colr.grn[ind] && blu == colr.blu[ind];
    if (display && !(same && colr.color_ind[ind] != no_pixel))
        gflush_fill(); // it keeps the old pixel
    colr.red[ind] = red;
    colr.grn[ind] = grn;
    colr.blu[ind] = blu;
    gps_set_color_rep(red, grn, blu, ind);
    if (!display)
        return file_pixel;
    if (!same || colr.color_ind[ind] == no_pixel) {
        alloc_pixel(ind);
        renew_contexts(ind);
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
    if (ind == -1)
        return 0;
    if (flag != 0) {
        const auto last = std::find(colr.color_ind.rbegin(), colr.color_ind.rend(), ind);
        ind = static_cast<int>(colr.color_ind.rend() - last) - 1;
    }
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
    const bool print = *ind >= first_print_colr;
    if (print && gtype_is_WIN_PIX())
        *ind = 1;
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
    if (text != nullptr && *text == '\0')
        text = nullptr;
    const bool over = text != nullptr && is_over(text);
    if (gtype_is_WIN_PIX())
        set_display_background(over ? nullptr : text);
    if (gtype_is_PS()) {
        colr.red[background_colr] = 1.0F;
        colr.grn[background_colr] = 1.0F;
        colr.blu[background_colr] = 1.0F;
        gps_set_color_rep(1.0F, 1.0F, 1.0F, background_colr);
    }
    if (gtype_is_WIN() && !over)
        gclear_frame(frame_base);
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

unsigned long gget_color_rgb_Xval(unsigned red, unsigned grn, unsigned blu) {
    return masked(red, gget_red_mask()) | masked(grn, gget_grn_mask()) |
           masked(blu, gget_blu_mask());
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

int gset_local_colormap(int value) {
    colr.local_cmap = value;
    return 0;
}

int ginit_xcolr() {
    const bool local = colr.local_cmap != 0 || std::getenv("LOCAL_CMAP") != nullptr ||
                       std::getenv("zyrlocal_cmap") != nullptr;
    if (gtype_is_WIN() && local)
        colr.user_colormap =
            XCreateColormap(gget_display(), gget_root_window(), gget_visual(), AllocNone);
    if (gtype_is_WIN() && colr.user_colormap != 0)
        XSetWindowColormap(gget_display(), gget_root_window(), colr.user_colormap);
    colr.color_ind.fill(no_pixel);
    return 0;
}

void gfree_xcolr() {
    if (gtype_is_WIN() && colr.user_colormap != 0)
        XFreeColormap(gget_display(), colr.user_colormap);
    colr.user_colormap = 0;
    colr.def_colormap = 0;
    colr.color_ind.fill(0); // as on a file device
}

Colormap gget_colormap() {
    return colr.user_colormap != 0 ? colr.user_colormap : colr.def_colormap;
}

int gset_def_cmap(Colormap map) {
    colr.def_colormap = map;
    return 0;
}

int gset_user_cmap(Colormap map) {
    colr.user_colormap = map;
    return 0;
}

Colormap gget_user_cmap() {
    return colr.user_colormap;
}
