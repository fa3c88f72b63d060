// gks_x11: connects to the display, shows the picture in the window, and closes.
// The state is that of the connection (gks_disp.h), which gks_window.cpp and
// gks_pixmap.cpp fill in at the opening. Everything is drawn into a pixmap, which
// gupdate_window and exposures copy to the window.

#include "gks_disp.h"
#include "text_list.h"
#include "text_num.h"
#include "zyr.h"

#include <string>
#include <utility>

namespace {

// A pixmap of the new size, the picture at its top left. Without room for it
// the old one stays.
void renew_base(int width, int height) {
    const Pixmap fresh = gmake_base(width, height);
    if (fresh == 0) {
        return;
    }
    XCopyArea(gget_display(), gscreen().base_window, fresh, gget_root_gc(), 0, 0,
              static_cast<unsigned>(width), static_cast<unsigned>(height), 0, 0);
    XFreePixmap(gget_display(), gscreen().base_window);
    gscreen().base_window = fresh;
    gscreen().draw_window = fresh;
}

} // namespace

int gopen_display(const char* conn_id) {
    Gdisp& disp = gdisp();
    const TextList fields(conn_id, ',');
    ginstall_error_handlers();
    disp = {};
    const std::string name =
        XDisplayName(fields.count() > 0 && *fields[0] != '\0' ? fields[0] : nullptr);
    disp.display = XOpenDisplay(name.c_str());
    if (disp.display == nullptr && gtype_is_WIN() && gis_image_run()) {
        return gfail_display(); // the display in memory takes its place
    }
    if (disp.display == nullptr) {
        MESS_print(mess_warn, "gopen_ws: unable to connect to display\n");
        MESS_print(
            mess_warn,
            "gopen_ws: display: %s; a page needs none: -de p,FILE; nor do images: -of png=FILE\n",
            name.empty() ? "DISPLAY is not set" : name.c_str());
        return gfail_display();
    }
    gdraw_use(&gx_display());
    disp.screen = DefaultScreen(disp.display);
    disp.visual = DefaultVisual(disp.display, disp.screen);
    Gscreen& screen = gscreen();
    screen.depth = DefaultDepth(disp.display, disp.screen);
    screen.true_color = disp.visual->c_class == TrueColor;
    screen.red_mask = disp.visual->red_mask;
    screen.grn_mask = disp.visual->green_mask;
    screen.blu_mask = disp.visual->blue_mask;
    gset_def_cmap(DefaultColormap(disp.display, disp.screen));
    return 0;
}

void gsetup_display(Drawable drawable) {
    Gdisp& disp = gdisp();
    XGCValues values{};
    values.graphics_exposures = False; // nobody waits for the events of a copy
    disp.root_gc = XCreateGC(disp.display, drawable, GCGraphicsExposures, &values);
    gscreen().fore_colr = WhitePixel(disp.display, disp.screen);
    gscreen().back_colr = BlackPixel(disp.display, disp.screen);
    if (gget_inverse() != 0) {
        std::swap(gscreen().fore_colr, gscreen().back_colr);
    }
    XSetForeground(disp.display, disp.root_gc, gscreen().fore_colr);
}

// --- Closing ------------------------------------------------------------------

int gfail_display() {
    gclose_display();
    gset_win_type(ws_none);
    return -1;
}

void XDisplay::close() {
    Gdisp& disp = gdisp();
    Display* display = disp.display;
    if (gtype_is_WIN()) {
        greset_zoom();
        gdelete_all_frames();
        if (gscreen().base_window != 0) {
            XFreePixmap(display, gscreen().base_window);
        }
        if (disp.has_window) {
            XDestroyWindow(display, disp.root_window); // unmaps it first
        }
    }
    gfree_pens();
    gfree_xcolr();
    gfree_cursors();
    if (disp.icon_pixmap != 0) {
        XFreePixmap(display, disp.icon_pixmap);
    }
    if (disp.root_gc != nullptr) {
        XFreeGC(display, disp.root_gc);
    }
    gend_pixmap();
    XCloseDisplay(display); // waits for the last answer
    disp = {};
}

void glose_window() {
    Gdisp& disp = gdisp();
    gfree_cursors();
    disp.has_window = false;
    disp.root_window = gscreen().base_window;
}

// --- The window at work -------------------------------------------------------

Pixmap gsend_base(int width, int height) {
    Gdisp& disp = gdisp();
    const auto w = static_cast<unsigned>(width);
    const auto h = static_cast<unsigned>(height);
    const Pixmap pixmap =
        XCreatePixmap(disp.display, disp.root_window, w, h, static_cast<unsigned>(gscreen().depth));
    gfill_drawable(pixmap, gscreen().back_colr, w, h);
    return pixmap;
}

Pixmap gmake_base(int width, int height) {
    gtrap_errors(0);
    const Pixmap pixmap = gsend_base(width, height);
    return gtrap_errors(1) == 0 ? pixmap : 0;
}

int gresize_window(int width, int height) {
    Gdisp& disp = gdisp();
    if (!gtype_is_WIN() || !disp.has_window) {
        return 0;
    }
    const bool by_program = width > 0;
    const bool renew = by_program || width == -1;
    if (by_program) {
        width = gwindow_side(width, default_width);
        height = gwindow_side(height, default_height);
        XResizeWindow(disp.display, disp.root_window, static_cast<unsigned>(width),
                      static_cast<unsigned>(height));
    } else {
        const XWindowAttributes given = gwindow_attributes();
        const bool gone = given.width <= 0; // its event is still to come
        if (gone ||
            (given.width == gscreen().root_width && given.height == gscreen().root_height)) {
            return 0;
        }
        width = given.width;
        height = given.height;
    }
    gflush_fill();
    XClearWindow(disp.display, disp.root_window);
    if (renew) {
        renew_base(width, height);
    }
    gset_root_size(width, height);
    gset_win_size(width, height);
    greset_zoom();
    gdelete_all_frames();
    return 1;
}

// --- What the drawing asks of the window ------------------------------------------

void XDisplay::show() {
    Gdisp& disp = gdisp();
    if (disp.has_window) {
        XCopyArea(disp.display, gscreen().base_window, disp.root_window, disp.root_gc, 0, 0,
                  static_cast<unsigned>(gscreen().root_width),
                  static_cast<unsigned>(gscreen().root_height), 0, 0);
    }
}

void XDisplay::blank() {
    if (gdisp().has_window) {
        XClearWindow(gget_display(), gget_root_window());
    }
}

void XDisplay::flush() {
    XFlush(gget_display());
}

void XDisplay::sync() {
    XSync(gget_display(), False);
}
