// gks_xreq.cpp: two requests to the server that are made by hand: pixmaps of one
// plane, for the icon and the fill patterns, and cursors. No state.
//
// Xlib has calls for both, but they offer each bitmap and each cursor to the
// library of cursor themes, which asks the server three questions first and waits
// for the answers. Over a slow connection that is a good part of the time to the
// first picture. The bits are put in two halves for the same reason: that library
// looks at whole bitmaps alone.

#include "gks_disp.h"

#include <X11/Xproto.h>

#include <X11/Xlibint.h> // the last: its macros hide names of others

namespace {

// The server's request, without what XCreatePixmap does after it.
Pixmap create_plane(Drawable drawable, unsigned width, unsigned height) {
    Display* dpy = gget_display(); // the name that the macros want
    LockDisplay(dpy);
    const Pixmap id = XAllocID(dpy);
    auto* request =
        static_cast<xCreatePixmapReq*>(_XGetRequest(dpy, X_CreatePixmap, sizeof(xCreatePixmapReq)));
    request->drawable = static_cast<CARD32>(drawable);
    request->pid = static_cast<CARD32>(id);
    request->width = static_cast<CARD16>(width);
    request->height = static_cast<CARD16>(height);
    request->depth = 1;
    UnlockDisplay(dpy);
    SyncHandle();
    return id;
}

} // namespace

Cursor gmake_font_cursor(Font font, unsigned glyph) {
    Display* dpy = gget_display();
    constexpr CARD16 full = 0xFFFF;
    LockDisplay(dpy);
    const Cursor id = XAllocID(dpy);
    auto* request = static_cast<xCreateGlyphCursorReq*>(
        _XGetRequest(dpy, X_CreateGlyphCursor, sizeof(xCreateGlyphCursorReq)));
    request->cid = static_cast<CARD32>(id);
    request->source = static_cast<CARD32>(font);
    request->mask = static_cast<CARD32>(font);
    request->sourceChar = static_cast<CARD16>(glyph);
    request->maskChar = static_cast<CARD16>(glyph + 1); // its mask is the next one
    request->foreRed = request->foreGreen = request->foreBlue = 0;
    request->backRed = request->backGreen = request->backBlue = full;
    UnlockDisplay(dpy);
    SyncHandle();
    return id;
}

Pixmap gmake_bitmap(Drawable drawable, const unsigned char* bits, unsigned width, unsigned height) {
    Display* display = gget_display();
    const Pixmap bitmap = create_plane(drawable, width, height);
    const GC gc = XCreateGC(display, bitmap, 0, nullptr);
    XSetForeground(display, gc, 1);
    XSetBackground(display, gc, 0);
    XImage image{};
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.format = XYBitmap;
    image.data = reinterpret_cast<char*>(const_cast<unsigned char*>(bits)); // only read
    image.byte_order = LSBFirst;
    image.bitmap_unit = 8;
    image.bitmap_bit_order = LSBFirst;
    image.bitmap_pad = 8;
    image.depth = 1;
    image.bits_per_pixel = 1;
    image.bytes_per_line = static_cast<int>((width + 7) / 8);
    if (XInitImage(&image) != 0) {
        const auto half = static_cast<int>(height / 2);
        const auto lower = height - static_cast<unsigned>(half);
        XPutImage(display, bitmap, gc, &image, 0, 0, 0, 0, width, static_cast<unsigned>(half));
        XPutImage(display, bitmap, gc, &image, 0, half, 0, half, width, lower);
    }
    XFreeGC(display, gc);
    return bitmap;
}
