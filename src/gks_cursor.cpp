// gks_cursor.cpp: cursors and the bell of the window. The cursors' ids belong to
// the state of the display (gks_disp.h).

#include "gks_disp.h"

#include <X11/cursorfont.h>

#include <algorithm>
#include <utility>

namespace {

// In the order of the cursor numbers.
constexpr std::array<unsigned, num_cursors> shapes = {XC_X_cursor, XC_left_ptr, XC_fleur,
                                                      XC_exchange, XC_dot,      XC_pencil,
                                                      XC_tcross,   XC_xterm,    XC_watch};

} // namespace

void gmake_cursors() {
    Display* display = gget_display();
    const Font font = XLoadFont(display, "cursor");
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        gdisp().cursors[i] = gmake_font_cursor(font, shapes[i]);
    }
    XUnloadFont(display, font);
}

void gfree_cursors() {
    for (Cursor& cursor : gdisp().cursors) {
        if (cursor != 0) {
            XFreeCursor(gget_display(), cursor);
        }
        cursor = 0;
    }
}

int gset_cursor(int n) {
    if (!gtype_is_WIN_PIX() || gget_display() == nullptr) {
        return 0;
    }
    const int before = gset_cursor_type(n);
    XFlush(gget_display());
    return before;
}

int gset_cursor_type(int n) {
    if (n < 0 || n >= num_cursors) {
        return gdisp().cursor;
    }
    const Cursor cursor = gdisp().cursors[n];
    if (cursor != 0) {
        XDefineCursor(gget_display(), gget_root_window(), cursor);
    }
    return std::exchange(gdisp().cursor, n);
}

int gget_cursor_type() {
    return gdisp().cursor;
}

int gbell(int percent) {
    constexpr int usual = 50;
    if (gget_display() == nullptr) {
        return 0;
    }
    XBell(gget_display(), percent == 0 ? usual : std::clamp(percent, -100, 100));
    XFlush(gget_display());
    return 0;
}
