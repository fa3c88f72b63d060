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

XDisplay x_display;

// Leaves the window of type 6; if asked to, its owner's hold ends.
void end_pixmap() {
    if (gdisp_settings().pix_mode == pix_ask_end) {
        gtell_owner(pix_ask_end);
    }
    gset_redraw(gdisp().redraw);
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
    gdraw_use(&x_display);
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
    if (gtype_is_PIX()) {
        end_pixmap();
    }
    const Gdisplay_watch watch(gis_image_run());
    XCloseDisplay(display); // waits for the last answer
    disp = {};
}

void gtell_owner(char what) {
    constexpr Atom message_type = 62;
    if (!gdisp().has_window) {
        return;
    }
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = gget_root_window();
    event.xclient.message_type = message_type;
    event.xclient.format = 8;
    event.xclient.data.b[0] = what;
    XSendEvent(gget_display(), gget_root_window(), True, 0, &event);
    XSync(gget_display(), False);
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
    const Gdisplay_watch watch(gis_image_run()); // where nobody sees that it hangs
    XSync(gget_display(), False);
}
