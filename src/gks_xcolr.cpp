// gks_xcolr: the colours of gks_draw.h through Xlib. Owns the colour maps:
// ginit_xcolr takes a private one when a display opens, if that is asked for;
// gks_colr keeps which pixel belongs to which index.

#include "gks_draw.h"
#include "gks_x11.h"

#include <cstdlib>

namespace {

struct ColorMaps {
    Colormap def_colormap = 0; // of the screen
    Colormap user_colormap = 0;
    int local_cmap = 0; // 1: make a private colour map
};
ColorMaps maps;

XColor x_color(const Gcolr_levels& levels) {
    XColor color{};
    color.red = levels.red;
    color.green = levels.grn;
    color.blue = levels.blu;
    color.flags = DoRed | DoGreen | DoBlue;
    return color;
}

Gcolr_levels levels_of(const XColor& color) {
    return {color.red, color.green, color.blue};
}

} // namespace

bool XDisplay::take_cell(int* pixel) {
    unsigned long cell = 0;
    if (XAllocColorCells(gget_display(), gget_colormap(), False, nullptr, 0, &cell, 1) == 0) {
        return false;
    }
    *pixel = static_cast<int>(cell);
    return true;
}

void XDisplay::store_cell(int pixel, const Gcolr_levels& levels) {
    XColor color = x_color(levels);
    color.pixel = static_cast<unsigned long>(pixel);
    XStoreColor(gget_display(), gget_colormap(), &color);
}

int XDisplay::share_pixel(const Gcolr_levels& levels, int otherwise) {
    XColor color = x_color(levels);
    color.pixel = static_cast<unsigned long>(otherwise); // what a refusal leaves
    XAllocColor(gget_display(), gget_colormap(), &color);
    return static_cast<int>(color.pixel);
}

int XDisplay::share_levels(Gcolr_levels* levels) {
    XColor color = x_color(*levels);
    XAllocColor(gget_display(), gget_colormap(), &color);
    XQueryColor(gget_display(), gget_colormap(), &color);
    *levels = levels_of(color);
    return static_cast<int>(color.pixel);
}

Gcolr_levels XDisplay::screen_levels(bool white) {
    XColor color{};
    color.pixel = white ? WhitePixel(gget_display(), gget_screen())
                        : BlackPixel(gget_display(), gget_screen());
    XQueryColor(gget_display(), gget_colormap(), &color);
    return levels_of(color);
}

bool XDisplay::parse_color(const char* text, Gcolr_levels* levels) {
    XColor color{};
    const bool found = XParseColor(gget_display(), gget_colormap(), text, &color) != 0;
    *levels = levels_of(color);
    return found;
}

// --- Colour maps --------------------------------------------------------------

int gset_local_colormap(int value) {
    maps.local_cmap = value;
    return 0;
}

int ginit_xcolr() {
    const bool local = maps.local_cmap != 0 || std::getenv("LOCAL_CMAP") != nullptr ||
                       std::getenv("zyrlocal_cmap") != nullptr;
    if (gtype_is_WIN() && local) {
        maps.user_colormap =
            XCreateColormap(gget_display(), gget_root_window(), gget_visual(), AllocNone);
    }
    if (gtype_is_WIN() && maps.user_colormap != 0) {
        XSetWindowColormap(gget_display(), gget_root_window(), maps.user_colormap);
    }
    gforget_pixels(true);
    return 0;
}

void gfree_xcolr() {
    if (gtype_is_WIN() && maps.user_colormap != 0) {
        XFreeColormap(gget_display(), maps.user_colormap);
    }
    maps.user_colormap = 0;
    maps.def_colormap = 0;
    gforget_pixels(false);
}

Colormap gget_colormap() {
    return maps.user_colormap != 0 ? maps.user_colormap : maps.def_colormap;
}

int gset_def_cmap(Colormap map) {
    maps.def_colormap = map;
    return 0;
}

int gset_user_cmap(Colormap map) {
    maps.user_colormap = map;
    return 0;
}

Colormap gget_user_cmap() {
    return maps.user_colormap;
}
