// gks_cursor.cpp: cursors, titles and the bell of the window. The text behind
// the title is a channel between programs: it carries the number of the frame
// on show and the mark of a window that is busy.

#include "gks_disp.h"
#include "zyr.h"

#include <X11/cursorfont.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr std::size_t name_size = 60; // title and what stands behind it each

// In the order of the cursor numbers.
constexpr std::array<unsigned, num_cursors> shapes = {XC_X_cursor, XC_left_ptr, XC_fleur,
                                                      XC_exchange, XC_dot,      XC_pencil,
                                                      XC_tcross,   XC_xterm,    XC_watch};

struct X_deleter {
    void operator()(void* memory) const { XFree(memory); }
};
using X_text = std::unique_ptr<char, X_deleter>;

void show_name(const char* name, bool as_icon) {
    XStoreName(gget_display(), gget_root_window(), name);
    if (as_icon)
        XSetIconName(gget_display(), gget_root_window(), name);
    XSync(gget_display(), False);
}

} // namespace

void gmake_cursors() {
    for (std::size_t i = 0; i < shapes.size(); ++i)
        gdisp().cursors[i] = XCreateFontCursor(gget_display(), shapes[i]);
}

void gfree_cursors() {
    for (Cursor& cursor : gdisp().cursors) {
        if (cursor != 0)
            XFreeCursor(gget_display(), cursor);
        cursor = 0;
    }
}

int gset_cursor(int n) {
    if (!gtype_is_WIN_PIX() || gget_display() == nullptr)
        return 0;
    const int before = gset_cursor_type(n);
    XSync(gget_display(), False);
    return before;
}

int gset_cursor_type(int n) {
    if (n < 0 || n >= num_cursors)
        return gdisp().cursor;
    const Cursor cursor = gdisp().cursors[n];
    if (cursor != 0)
        XDefineCursor(gget_display(), gget_root_window(), cursor);
    return std::exchange(gdisp().cursor, n);
}

int gget_cursor_type() {
    return gdisp().cursor;
}

int gbell(int percent) {
    constexpr int usual = 50;
    if (gget_display() == nullptr)
        return 0;
    XBell(gget_display(), percent == 0 ? usual : std::clamp(percent, -100, 100));
    XSync(gget_display(), False);
    return 0;
}

int gshow_win_title() {
    if (!gdisp().has_window)
        return -1;
    constexpr bool as_icon = true;
    show_name(gget_win_title(), as_icon);
    return 0;
}

int gset_win_title_extra(const char* text) {
    if (!gdisp().has_window)
        return -1;
    std::array<char, 2 * name_size> name{};
    if (text == nullptr || *text == '\0')
        copy_text(name.data(), name.size(), gget_win_title());
    else
        std::snprintf(name.data(), name.size(), "%s %s", gget_win_title(), text);
    show_name(name.data(), false);
    return 0;
}

int gget_win_title_extra(char* buf) {
    *buf = '\0';
    if (!gdisp().has_window)
        return -1;
    char* fetched = nullptr;
    gtrap_errors(0); // a foreign window may be gone
    XFetchName(gget_display(), gget_root_window(), &fetched);
    gtrap_errors(1);
    const X_text name(fetched);
    if (!name)
        return -1;
    const std::size_t title = std::strlen(gget_win_title());
    if (std::strlen(name.get()) > title + 1)
        copy_text(buf, name_size, name.get() + title + 1);
    return 0;
}
