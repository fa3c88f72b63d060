// gks_window: opens the plot's own window, workstation type 1: its place and
// size, what the window manager is given, its pixmap. The state is that of the
// display (gks_disp.h).

#include "gks_disp.h"
#include "gks_state.h"
#include "zyr.h"

#include "zyrresrc.h"

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

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
    return XGetDefault(gdisp().display, gget_prog_name(), name);
}

// A side of 0 is the usual one, and one that is too long is held within what a
// server can keep.
void place_size(XSizeHints* hints, unsigned width, unsigned height) {
    constexpr unsigned most = max_side;
    hints->flags = (hints->flags & ~PSize) | USSize;
    if (width > most || height > most) {
        MESS_print(mess_warn, "gopen_ws: window size cut to %d\n", max_side);
    }
    hints->width = gwindow_side(static_cast<int>(std::min(width, most)), hints->width);
    hints->height = gwindow_side(static_cast<int>(std::min(height, most)), hints->height);
}

// `negative` as XParseGeometry gives it: from the right or the bottom.
void place_position(XSizeHints* hints, int x, int y, int negative) {
    constexpr int far = 30000; // a window's place has 16 bits
    Display* display = gdisp().display;
    x = std::clamp(x, -far, far);
    y = std::clamp(y, -far, far);
    if ((negative & XNegative) != 0) {
        x += DisplayWidth(display, gdisp().screen) - hints->width;
    }
    if ((negative & YNegative) != 0) {
        y += DisplayHeight(display, gdisp().screen) - hints->height;
    }
    hints->flags = (hints->flags & ~PPosition) | USPosition;
    hints->x = std::clamp(x, -far, far);
    hints->y = std::clamp(y, -far, far);
}

// Position and size, from the geometry asked for.
XSizeHints size_hints() {
    constexpr int usual_place = 100;
    XSizeHints hints{};
    hints.flags = PPosition | PSize;
    hints.x = usual_place;
    hints.y = usual_place;
    gget_win_size(&hints.width, &hints.height);
    hints.width = gwindow_side(hints.width, default_width);
    hints.height = gwindow_side(hints.height, default_height);

    const char* text = gchosen_geometry();
    if (text == nullptr) {
        text = x_default("geometry");
    }
    if (text != nullptr && *text != '\0') {
        int x = 0;
        int y = 0;
        unsigned width = 0;
        unsigned height = 0;
        const int found = XParseGeometry(text, &x, &y, &width, &height);
        if (found == 0) {
            MESS_print(mess_warn, "gopen_ws: invalid geometry: %s\n", text);
        }
        if ((found & WidthValue) != 0 && (found & HeightValue) != 0) {
            place_size(&hints, width, height);
        }
        if ((found & XValue) != 0 && (found & YValue) != 0) {
            place_position(&hints, x, y, found);
        }
    }
    if (gdisp_settings().fixed_size != 0) {
        hints.flags |= PMinSize | PMaxSize;
        hints.min_width = hints.max_width = hints.width;
        hints.min_height = hints.max_height = hints.height;
    }
    return hints;
}

// Whether the server has room for it is known with the answer to its mapping.
void make_window(const XSizeHints& hints) {
    constexpr unsigned border = 5;
    const bool inverse = gget_inverse() != 0;
    const unsigned long black = BlackPixel(gdisp().display, gdisp().screen);
    const unsigned long white = WhitePixel(gdisp().display, gdisp().screen);
    XSetWindowAttributes values{};
    values.background_pixel = inverse ? white : black;
    values.border_pixel = values.background_pixel;
    values.backing_store = Always;
    values.event_mask = window_events;
    values.colormap = gget_colormap();
    gdisp().root_window = XCreateWindow(
        gdisp().display, RootWindow(gdisp().display, gdisp().screen), hints.x, hints.y,
        static_cast<unsigned>(hints.width), static_cast<unsigned>(hints.height), border,
        gscreen().depth, InputOutput, gdisp().visual,
        CWBackPixel | CWBorderPixel | CWBackingStore | CWEventMask | CWColormap, &values);
    gdisp().has_window = true;
}

bool starts_iconic() {
    int icon = 0;
    if (RES_get("icon") != nullptr) {
        RES_getval("icon", &icon, CV_bool);
    }
    if (gdisp_settings().icon != 0 || icon > 0) {
        return true;
    }
    const char* text = x_default("iconic");
    return text != nullptr && stricmp(text, "on") == 0;
}

// Title, icon and size for the window manager.
void tell_window_manager(XSizeHints* hints) {
    Display* display = gdisp().display;
    std::array<char, 60> title{};
    copy_text(title.data(), title.size(), gget_win_title());
    fill_string(title.data(), '_', ' ');
    XSetWMNormalHints(display, gdisp().root_window, hints);
    gset_win_title(title.data());

    const auto* bits =
        gdisp_settings().own_icon ? gdisp_settings().icon_bits.data() : zyr_bits.data();
    std::array<unsigned char, icon_bytes> image{};
    std::transform(bits, bits + icon_bytes, image.begin(),
                   [](unsigned char byte) { return static_cast<unsigned char>(~byte); }); // ink
    gdisp().icon_pixmap = gmake_bitmap(gdisp().root_window, image.data(), icon_size, icon_size);
    XWMHints wm{};
    wm.flags = InputHint | StateHint | IconPixmapHint;
    wm.input = True;
    wm.initial_state = starts_iconic() ? IconicState : NormalState;
    wm.icon_pixmap = gdisp().icon_pixmap;
    XSetWMHints(display, gdisp().root_window, &wm);

    std::array<char, 20> name{};
    std::array<char, 4> kind{"Zyr"};
    copy_text(name.data(), name.size(), gget_prog_name());
    XClassHint hint{name.data(), kind.data()};
    XSetClassHint(display, gdisp().root_window, &hint);

    // Closing the window ends the hold; else it would end the connection.
    Atom close = gwindow_atoms().close;
    XSetWMProtocols(display, gdisp().root_window, &close, 1);
}

// The window is up when it is mapped or exposed, an icon with its first event,
// which stays for the event loop. On the way its events give the size, on which
// the window manager has the last word, so that nobody need ask. A window that
// nobody maps gets none: the wait is bounded, and a refusal ends it.
void wait_until_up(bool iconic, int* width, int* height) {
    constexpr int most_waits = 60;
    constexpr int wait_ms = 50;
    for (int i = 0; i < most_waits && gget_noted_error() == 0;) {
        XEvent event{};
        if (XCheckWindowEvent(gdisp().display, gdisp().root_window,
                              ExposureMask | StructureNotifyMask, &event) == 0) {
            pollfd connection = {ConnectionNumber(gdisp().display), POLLIN, 0};
            poll(&connection, 1, wait_ms);
            ++i;
            continue;
        }
        if (event.type == ConfigureNotify) {
            *width = event.xconfigure.width;
            *height = event.xconfigure.height;
        }
        if (iconic || event.type == MapNotify || event.type == Expose ||
            event.type == DestroyNotify) {
            XPutBackEvent(gdisp().display, &event);
            return;
        }
    }
}

int unable() {
    MESS_print(mess_warn, "gopen_ws: unable to open window\n");
    gtrap_errors(0); // nor will what was refused be freed
    return gfail_display();
}

// A pixmap in the background's pixel; 0 if the server has no room for it.
Pixmap make_base(int width, int height) {
    gtrap_errors(0);
    const Pixmap pixmap = gsend_base(width, height);
    return gtrap_errors(1) == 0 ? pixmap : 0;
}

// A pixmap of the new size, the picture at its top left. Without room for it
// the old one stays.
void renew_base(int width, int height) {
    const Pixmap fresh = make_base(width, height);
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

int gset_iconic(int value) {
    gdisp_settings().icon = value;
    return 0;
}

int gset_fixed_size() {
    gdisp_settings().fixed_size = 1;
    return 0;
}

int gset_icon_bitmap(const unsigned char* bits) {
    gdisp_settings().own_icon = bits != nullptr;
    if (bits != nullptr) {
        std::memcpy(gdisp_settings().icon_bits.data(), bits, gdisp_settings().icon_bits.size());
    }
    return 0;
}

int gopen_window(const char* conn_id) {
    gset_win_type(ws_window);
    const Gdisplay_watch watch;
    if (gopen_display(conn_id) != 0) {
        return gis_image_run() ? 1 : -1;
    }
    gset_cache(1);
    if (is_environment("zyrinverse")) {
        gset_inverse(1);
    }
    XSizeHints hints = size_hints();
    // One answer of the server is waited for, after window and pixmap.
    gtrap_errors(0);
    make_window(hints);
    tell_window_manager(&hints);
    gsetup_display(gdisp().root_window);
    XMapWindow(gdisp().display, gdisp().root_window);
    wait_until_up(starts_iconic(), &hints.width, &hints.height);
    ginit_xcolr();
    gset_root_size(hints.width, hints.height);
    gset_xsize(hints.width, hints.height);
    gscreen().base_window = gsend_base(hints.width, hints.height);
    if (gtrap_errors(1) != 0) {
        return unable();
    }
    gscreen().draw_window = gscreen().base_window;
    XClearWindow(gdisp().display, gdisp().root_window);
    gmake_cursors();
    return 0;
}

// --- The window at work -------------------------------------------------------

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

GC gget_fill_gc() {
    return gfill_gc_in(gget_fill_colr());
}
