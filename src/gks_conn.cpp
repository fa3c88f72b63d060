// gks_conn: the connection to an X server as the modules that speak with it share
// it: the display, the plot's window on it, and what was chosen before the opening.
// Owns just that and calls no other of them; gks_x11 connects and closes.

#include "gks_disp.h"

#include <algorithm>

namespace {

Gdisp disp;
Gdisp_settings disp_settings;

} // namespace

Gdisp& gdisp() {
    return disp;
}

Gdisp_settings& gdisp_settings() {
    return disp_settings;
}

// --- Inquiries ------------------------------------------------------------------

Display* gget_display() {
    return disp.display;
}

int gget_screen() {
    return disp.screen;
}

Visual* gget_visual() {
    return disp.visual;
}

Window gget_root_window() {
    return disp.root_window;
}

bool ghas_window() {
    return disp.has_window;
}

GC gget_root_gc() {
    return disp.root_gc;
}

const Watoms& gwindow_atoms() {
    Watoms& atoms = disp.atoms;
    if (atoms.protocols != None) {
        return atoms;
    }
    // The order of the record.
    std::array<std::array<char, 17>, 4> names = {
        {{"WM_PROTOCOLS"}, {"WM_DELETE_WINDOW"}, {"_NET_WM_NAME"}, {"UTF8_STRING"}}
    };
    std::array<char*, names.size()> list{};
    std::array<Atom, names.size()> found{};
    std::transform(names.begin(), names.end(), list.begin(),
                   [](auto& name) { return name.data(); });
    XInternAtoms(disp.display, list.data(), static_cast<int>(list.size()), False, found.data());
    atoms = {found[0], found[1], found[2], found[3]};
    return atoms;
}

Atom gget_close_atom() {
    return gwindow_atoms().close;
}

// --- The window -----------------------------------------------------------------

void gset_root_size(int width, int height) {
    gscreen().root_width = width;
    gscreen().root_height = height;
}

XWindowAttributes gwindow_attributes() {
    XWindowAttributes attributes{};
    XGetWindowAttributes(disp.display, disp.root_window, &attributes);
    return attributes;
}

void gfill_drawable(Drawable drawable, unsigned long pixel, unsigned width, unsigned height) {
    XSetForeground(disp.display, disp.root_gc, pixel);
    XFillRectangle(disp.display, drawable, disp.root_gc, 0, 0, width, height);
    XSetForeground(disp.display, disp.root_gc, gscreen().fore_colr);
}
