// gks_x11.cpp: the display and the plot's own window (workstation type 1). Owns
// the state of the connection (gks_disp.h). gopen_ws opens it; everything is
// drawn into a pixmap, which gupdate_window and exposures copy to the window.

#include "gks_disp.h"
#include "zyr.h"

#include "zyrresrc.h"

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

Gdisp disp;
Gdisp_settings settings;

// A radar screen with its sweep. Rows of six bytes, the lowest bit leftmost.
constexpr std::array<unsigned char, icon_bytes> zyr_bits = {
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xfc, 0x3f, 0x00, 0x00, 0x00, 0x80, 0x5f, 0xfd,
    0x01, 0x00, 0x00, 0xe0, 0x01, 0xab, 0x07, 0x00, 0x00, 0x38, 0xd5, 0xd5, 0x1f, 0x00, 0x00, 0x1c,
    0x00, 0xaa, 0x3f, 0x00, 0x00, 0x06, 0x55, 0xd5, 0x6f, 0x00, 0x00, 0x03, 0x80, 0xea, 0xcf, 0x00,
    0x80, 0x01, 0xd4, 0xd5, 0x87, 0x01, 0xc0, 0x00, 0xfc, 0xff, 0x03, 0x03, 0x60, 0x00, 0xd7, 0xf5,
    0x01, 0x06, 0x30, 0x80, 0x01, 0xea, 0x01, 0x0c, 0x30, 0x40, 0x50, 0xf5, 0x02, 0x0c, 0x18, 0x20,
    0x80, 0x7a, 0x04, 0x18, 0x08, 0x10, 0x50, 0x75, 0x08, 0x10, 0x0c, 0x08, 0x00, 0x3b, 0x10, 0x30,
    0x0c, 0x0c, 0xe0, 0x1f, 0x30, 0x30, 0x04, 0x04, 0x38, 0x1e, 0x20, 0x20, 0x06, 0x06, 0x4c, 0x3d,
    0x60, 0x60, 0x06, 0x02, 0x86, 0x66, 0x40, 0x60, 0x06, 0x02, 0x42, 0x43, 0x40, 0x60, 0x02, 0x02,
    0x03, 0xc3, 0x40, 0x40, 0x02, 0x02, 0x81, 0x81, 0x40, 0x40, 0x92, 0x27, 0x49, 0x92, 0xe4, 0x49,
    0x4a, 0x93, 0x25, 0xc9, 0xd2, 0x44, 0x02, 0x02, 0x81, 0x80, 0x40, 0x40, 0x02, 0x02, 0x03, 0xc0,
    0xe0, 0x40, 0x06, 0x02, 0x02, 0x41, 0xe0, 0x60, 0x06, 0x02, 0x86, 0x60, 0xe0, 0x60, 0x06, 0x06,
    0x0c, 0x30, 0x60, 0x60, 0x04, 0x04, 0x38, 0x1d, 0x27, 0x20, 0x0c, 0x0c, 0xe0, 0x87, 0x3f, 0x30,
    0x0c, 0x08, 0x00, 0xc0, 0x1f, 0x30, 0x08, 0xf0, 0x00, 0xc1, 0x1f, 0x10, 0x18, 0xe0, 0x80, 0xc0,
    0x1f, 0x18, 0x30, 0xe0, 0x00, 0x80, 0x0f, 0x0c, 0x30, 0x80, 0x01, 0x81, 0x07, 0x0c, 0x60, 0x00,
    0x87, 0xe0, 0x00, 0x06, 0xc0, 0x00, 0xfc, 0x3f, 0x00, 0x03, 0x80, 0x01, 0x80, 0x01, 0x80, 0x01,
    0x00, 0x03, 0x80, 0x00, 0xc0, 0x00, 0x00, 0x06, 0x00, 0x00, 0x60, 0x00, 0x00, 0x1c, 0x00, 0x01,
    0x38, 0x00, 0x00, 0x38, 0x80, 0x00, 0x1c, 0x00, 0x00, 0xe0, 0x01, 0x80, 0x07, 0x00, 0x00, 0x80,
    0x1f, 0xf8, 0x01, 0x00, 0x00, 0x00, 0xfc, 0x3f, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
};

constexpr long window_events = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                               EnterWindowMask | LeaveWindowMask | ButtonMotionMask | ExposureMask |
                               StructureNotifyMask | FocusChangeMask;

bool is_environment(const char* name) {
    return std::getenv(name) != nullptr;
}

// An X default of the program's name; null if there is none.
const char* x_default(const char* name) {
    return XGetDefault(disp.display, gget_prog_name(), name);
}

int window_side(int side, int usual) {
    return side <= 0 ? usual : std::clamp(side, min_side, max_side);
}

// --- Opening ------------------------------------------------------------------

// Position and size, from the geometry asked for. A side of 0 is the usual one,
// and one that is too long is held within what a server can keep.
XSizeHints size_hints() {
    XSizeHints hints{};
    hints.flags = PPosition | PSize;
    hints.x = 100;
    hints.y = 100;
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    hints.width = window_side(width, default_width);
    hints.height = window_side(height, default_height);

    const char* text = gchosen_geometry();
    if (text == nullptr)
        text = x_default("geometry");
    if (text == nullptr || *text == '\0')
        return hints;
    int x = 0;
    int y = 0;
    unsigned w = 0;
    unsigned h = 0;
    const int found = XParseGeometry(text, &x, &y, &w, &h);
    if (found == 0)
        MESS_print(mess_warn, "gopen_ws: invalid geometry: %s\n", text);
    if ((found & WidthValue) != 0 && (found & HeightValue) != 0) {
        constexpr unsigned most = max_side;
        hints.flags = (hints.flags & ~PSize) | USSize;
        if (w > most || h > most)
            MESS_print(mess_warn, "gopen_ws: window size cut to %d: %s\n", max_side, text);
        hints.width = window_side(static_cast<int>(std::min(w, most)), hints.width);
        hints.height = window_side(static_cast<int>(std::min(h, most)), hints.height);
    }
    if ((found & XValue) != 0 && (found & YValue) != 0) {
        constexpr int far = 30000; // a window's place has 16 bits
        hints.flags = (hints.flags & ~PPosition) | USPosition;
        hints.x = std::clamp(x, -far, far);
        hints.y = std::clamp(y, -far, far);
        if ((found & XNegative) != 0)
            hints.x += DisplayWidth(disp.display, disp.screen) - hints.width;
        if ((found & YNegative) != 0)
            hints.y += DisplayHeight(disp.display, disp.screen) - hints.height;
        hints.x = std::clamp(hints.x, -far, far);
        hints.y = std::clamp(hints.y, -far, far);
    }
    if (settings.fixed_size != 0) {
        hints.flags |= PMinSize | PMaxSize;
        hints.min_width = hints.max_width = hints.width;
        hints.min_height = hints.max_height = hints.height;
    }
    return hints;
}

bool make_window(const XSizeHints& hints) {
    constexpr unsigned border = 5;
    const bool inverse = gget_inverse() != 0;
    const unsigned long black = BlackPixel(disp.display, disp.screen);
    const unsigned long white = WhitePixel(disp.display, disp.screen);
    XSetWindowAttributes values{};
    values.background_pixel = inverse ? white : black;
    values.border_pixel = values.background_pixel;
    values.backing_store = Always;
    values.event_mask = window_events;
    values.colormap = gget_colormap();
    gtrap_errors(0);
    disp.root_window = XCreateWindow(
        disp.display, RootWindow(disp.display, disp.screen), hints.x, hints.y,
        static_cast<unsigned>(hints.width), static_cast<unsigned>(hints.height), border, disp.depth,
        InputOutput, disp.visual,
        CWBackPixel | CWBorderPixel | CWBackingStore | CWEventMask | CWColormap, &values);
    if (gtrap_errors(1) != 0)
        disp.root_window = 0;
    disp.has_window = disp.root_window != 0;
    return disp.has_window;
}

bool starts_iconic() {
    int icon = 0;
    if (RES_get("icon") != nullptr)
        RES_getval("icon", &icon, CV_bool);
    if (settings.icon != 0 || icon > 0)
        return true;
    const char* text = x_default("iconic");
    return text != nullptr && stricmp(text, "on") == 0;
}

// Title, icon and size for the window manager.
void tell_window_manager(XSizeHints* hints) {
    Display* display = disp.display;
    std::array<char, 60> title{};
    copy_text(title.data(), title.size(), gget_win_title());
    fill_string(title.data(), '_', ' ');
    XSetStandardProperties(display, disp.root_window, title.data(), title.data(), 0, nullptr, 0,
                           hints);
    gset_win_title(title.data());

    const auto* bits = settings.own_icon ? settings.icon_bits.data() : zyr_bits.data();
    std::array<char, icon_bytes> image{};
    std::memcpy(image.data(), bits, image.size());
    disp.icon_pixmap = XCreatePixmapFromBitmapData(
        display, disp.root_window, image.data(), icon_size, icon_size, 1, 0, 1); // set bits are ink
    XWMHints wm{};
    wm.flags = InputHint | StateHint | IconPixmapHint;
    wm.input = True;
    wm.initial_state = starts_iconic() ? IconicState : NormalState;
    wm.icon_pixmap = disp.icon_pixmap;
    XSetWMHints(display, disp.root_window, &wm);

    std::array<char, 20> name{};
    std::array<char, 4> kind{"Zyr"};
    copy_text(name.data(), name.size(), gget_prog_name());
    XClassHint hint{name.data(), kind.data()};
    XSetClassHint(display, disp.root_window, &hint);
}

// The window is up when its first event comes, which stays for the event loop.
// An iconic window may never get one: the wait is bounded.
void wait_until_up() {
    constexpr int most_waits = 60;
    constexpr int wait_ms = 50;
    XSync(disp.display, False);
    for (int i = 0; i < most_waits; ++i) {
        XEvent event{};
        if (XCheckWindowEvent(disp.display, disp.root_window, ExposureMask | StructureNotifyMask,
                              &event) != 0) {
            XPutBackEvent(disp.display, &event);
            return;
        }
        pollfd connection = {ConnectionNumber(disp.display), POLLIN, 0};
        poll(&connection, 1, wait_ms);
    }
}

// A pixmap in the background's pixel; 0 if the server has no room for it.
Pixmap make_base(int width, int height) {
    const auto w = static_cast<unsigned>(width);
    const auto h = static_cast<unsigned>(height);
    gtrap_errors(0);
    const Pixmap pixmap =
        XCreatePixmap(disp.display, disp.root_window, w, h, static_cast<unsigned>(disp.depth));
    gfill_drawable(pixmap, disp.back_colr, w, h);
    return gtrap_errors(1) == 0 ? pixmap : 0;
}

// A pixmap of the new size, the picture at its top left. Without room for it
// the old one stays.
void renew_base(int width, int height) {
    const Pixmap fresh = make_base(width, height);
    if (fresh == 0)
        return;
    XCopyArea(disp.display, disp.base_window, fresh, disp.root_gc, 0, 0,
              static_cast<unsigned>(width), static_cast<unsigned>(height), 0, 0);
    XFreePixmap(disp.display, disp.base_window);
    disp.base_window = fresh;
    disp.draw_window = fresh;
}

void set_root_size(int width, int height) {
    disp.root_width = width;
    disp.root_height = height;
}

XWindowAttributes window_attributes() {
    XWindowAttributes attributes{};
    XGetWindowAttributes(disp.display, disp.root_window, &attributes);
    return attributes;
}

int unable() {
    MESS_print(mess_warn, "gopen_ws: unable to open window\n");
    return gfail_display();
}

} // namespace

Gdisp& gdisp() {
    return disp;
}

Gdisp_settings& gdisp_settings() {
    return settings;
}

int gopen_display(const char* conn_id) {
    int count = 0;
    char** fields = nullptr;
    parse_string(conn_id, ',', &count, &fields);
    ginstall_error_handlers();
    disp = {};
    disp.display = XOpenDisplay(count > 0 && *fields[0] != '\0' ? fields[0] : nullptr);
    free_parsed_array(count, fields);
    if (disp.display == nullptr) {
        MESS_print(mess_warn, "gopen_ws: unable to connect to display\n");
        return gfail_display();
    }
    disp.screen = DefaultScreen(disp.display);
    disp.depth = DefaultDepth(disp.display, disp.screen);
    disp.visual = DefaultVisual(disp.display, disp.screen);
    gset_def_cmap(DefaultColormap(disp.display, disp.screen));
    return 0;
}

const char* gchosen_geometry() {
    return settings.geometry[0] != '\0' ? settings.geometry.data() : RES_get("geometry");
}

void gsetup_display(Drawable drawable) {
    XGCValues values{};
    values.graphics_exposures = False; // nobody waits for the events of a copy
    disp.root_gc = XCreateGC(disp.display, drawable, GCGraphicsExposures, &values);
    disp.fore_colr = WhitePixel(disp.display, disp.screen);
    disp.back_colr = BlackPixel(disp.display, disp.screen);
    if (gget_inverse() != 0)
        std::swap(disp.fore_colr, disp.back_colr);
    XSetForeground(disp.display, disp.root_gc, disp.fore_colr);
    disp.red_mask = disp.visual->red_mask;
    disp.grn_mask = disp.visual->green_mask;
    disp.blu_mask = disp.visual->blue_mask;
}

int gopen_window(const char* conn_id) {
    gset_win_type(ws_window);
    if (gopen_display(conn_id) != 0)
        return -1;
    gset_cache(1);
    if (is_environment("zyrinverse"))
        gset_inverse(1);
    XSizeHints hints = size_hints();
    if (!make_window(hints))
        return unable();
    tell_window_manager(&hints);
    gsetup_display(disp.root_window);
    XMapWindow(disp.display, disp.root_window);
    wait_until_up();
    ginit_xcolr();

    // The window manager has the last word on the size.
    const XWindowAttributes given = window_attributes();
    set_root_size(given.width, given.height);
    gset_xsize(given.width, given.height);
    disp.base_window = make_base(given.width, given.height);
    if (disp.base_window == 0)
        return unable();
    disp.draw_window = disp.base_window;
    XClearWindow(disp.display, disp.root_window);
    gmake_cursors();
    return 0;
}

// --- Closing ------------------------------------------------------------------

int gfail_display() {
    gclose_display();
    gset_win_type(ws_none);
    return -1;
}

int gclose_display() {
    Display* display = disp.display;
    if (display == nullptr)
        return 0;
    gflush_fill();
    if (gtype_is_WIN()) {
        greset_zoom();
        gdelete_all_frames();
        if (disp.base_window != 0)
            XFreePixmap(display, disp.base_window);
        if (disp.root_window != 0)
            XDestroyWindow(display, disp.root_window); // unmaps it first
    }
    gfree_line_gc();
    gfree_fill_gc();
    gfree_marker_gc();
    gfree_text_gc();
    gdel_fill_pat();
    gfree_xcolr();
    gfree_cursors();
    if (disp.icon_pixmap != 0)
        XFreePixmap(display, disp.icon_pixmap);
    if (disp.root_gc != nullptr)
        XFreeGC(display, disp.root_gc);
    XSync(display, False);
    gend_pixmap();
    XCloseDisplay(display);
    disp = {};
    return 0;
}

// --- Settings and inquiries ---------------------------------------------------

int gset_geometry(const char* geometry) {
    return copy_text(settings.geometry.data(), settings.geometry.size(), geometry);
}

int gset_iconic(int value) {
    settings.icon = value;
    return 0;
}

int gset_fixed_size() {
    settings.fixed_size = 1;
    return 0;
}

int gset_icon_bitmap(const unsigned char* bits) {
    settings.own_icon = bits != nullptr;
    if (bits != nullptr)
        std::memcpy(settings.icon_bits.data(), bits, settings.icon_bits.size());
    return 0;
}

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

Pixmap gget_base_window() {
    return disp.base_window;
}

int gset_base_window(Pixmap id) {
    gflush_fill();
    disp.base_window = id;
    return 0;
}

Drawable gget_draw_window() {
    return disp.draw_window;
}

int gset_draw_window(Drawable id) {
    gflush_fill();
    disp.draw_window = id != 0 ? id : disp.base_window;
    return 0;
}

GC gget_root_gc() {
    return disp.root_gc;
}

unsigned long gget_red_mask() {
    return disp.red_mask;
}

unsigned long gget_grn_mask() {
    return disp.grn_mask;
}

unsigned long gget_blu_mask() {
    return disp.blu_mask;
}

unsigned long gget_fore_pixel() {
    return disp.fore_colr;
}

unsigned long gget_back_pixel() {
    return disp.back_colr;
}

int gget_win_depth() {
    constexpr int file_depth = 10; // marks that no display is in use
    return disp.display != nullptr ? disp.depth : file_depth;
}

int gget_root_size(int* width, int* height) {
    *width = disp.root_width;
    *height = disp.root_height;
    return disp.display != nullptr ? 0 : -1;
}

// --- The window at work -------------------------------------------------------

void gfill_drawable(Drawable drawable, unsigned long pixel, unsigned width, unsigned height) {
    XSetForeground(disp.display, disp.root_gc, pixel);
    XFillRectangle(disp.display, drawable, disp.root_gc, 0, 0, width, height);
    XSetForeground(disp.display, disp.root_gc, disp.fore_colr);
}

void greset_gcs() {
    if (disp.display == nullptr)
        return;
    gflush_fill();
    XGCValues values{};
    values.line_width = 0;
    values.line_style = LineSolid;
    values.join_style = JoinBevel;
    for (GC gc : {gget_line_gc(), gget_marker_gc(), gget_text_gc(), gget_fill_gc()}) {
        if (gc != nullptr)
            XChangeGC(disp.display, gc, GCLineWidth | GCLineStyle | GCJoinStyle, &values);
    }
    XSync(disp.display, False);
}

int gresize_window(int width, int height) {
    if (!gtype_is_WIN() || disp.root_window == 0)
        return 0;
    const bool by_program = width > 0;
    const bool renew = by_program || width == -1;
    if (by_program) {
        width = window_side(width, default_width);
        height = window_side(height, default_height);
        XResizeWindow(disp.display, disp.root_window, static_cast<unsigned>(width),
                      static_cast<unsigned>(height));
    } else {
        const XWindowAttributes given = window_attributes();
        if (given.width == disp.root_width && given.height == disp.root_height)
            return 0;
        width = given.width;
        height = given.height;
    }
    gflush_fill();
    XClearWindow(disp.display, disp.root_window);
    if (renew)
        renew_base(width, height);
    set_root_size(width, height);
    gset_win_size(width, height);
    greset_zoom();
    gdelete_all_frames();
    return 1;
}

int gupdate_window() {
    if (disp.root_window == 0 || disp.base_window == 0)
        return -1;
    gflush_fill();
    if (disp.has_window)
        XCopyArea(disp.display, disp.base_window, disp.root_window, disp.root_gc, 0, 0,
                  static_cast<unsigned>(disp.root_width), static_cast<unsigned>(disp.root_height),
                  0, 0);
    return gsync();
}

int gclear_window_region(const Glim* lim) {
    if (disp.display == nullptr)
        return -1;
    gflush_fill();
    const int x = static_cast<int>(xW_p(lim->x_min) + 0.5F);
    const int y = static_cast<int>(yW_p(lim->y_max) + 0.5F);
    const int width = static_cast<int>(xW_p(lim->x_max) - static_cast<float>(x) + 0.5F);
    const int height = static_cast<int>(yW_p(lim->y_min) - static_cast<float>(y) + 0.5F);
    if (width <= 0 || height <= 0)
        return 0;
    XSetForeground(disp.display, disp.root_gc, static_cast<unsigned long>(gget_color_ind(-1)));
    XFillRectangle(disp.display, disp.draw_window, disp.root_gc, x, y, static_cast<unsigned>(width),
                   static_cast<unsigned>(height));
    XSetForeground(disp.display, disp.root_gc, disp.fore_colr);
    return 0;
}

int gsync() {
    if (disp.display == nullptr)
        return 0;
    gflush_fill();
    XSync(disp.display, False);
    return 0;
}
