// gks_xdraw: the drawing of gks_draw.h through Xlib. Owns the graphics contexts
// of the four pens, the pattern bitmaps and a font of the server if one was asked
// for. ginit_plot (from gopen_ws) makes the pens by gdraw_init_pen; the closing of
// the display frees them.

#include "gks_draw.h"

#include "gks_disp.h"
#include "gks_pix.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr int num_pens = 4;
constexpr int no_color = -9999; // index in force in no pen

struct XDraw {
    std::array<GC, num_pens> gcs{};
    int line_function = GXcopy; // GXxor while a rubber band is drawn
    std::array<Pixmap, num_patterns> patterns{};
    int fill_color = no_color;        // index whose pixel is the fill pen's foreground
    XFontStruct* font_info = nullptr; // a font of the server for texts
};
XDraw draw;

GC& gc_of(Gpen pen) {
    return draw.gcs[static_cast<std::size_t>(pen)];
}

// Xlib only reads the points, though it does not say so.
static_assert(sizeof(Gpixel) == sizeof(XPoint));
XPoint* x_points(const Gpixel* points) {
    return reinterpret_cast<XPoint*>(const_cast<Gpixel*>(points));
}

void set_foreground(Gpen pen, unsigned long pixel) {
    if (gc_of(pen) != nullptr) {
        XSetForeground(gget_display(), gc_of(pen), pixel);
    }
}

void set_fill_foreground(int ind) {
    if (draw.fill_color == ind) {
        return;
    }
    draw.fill_color = ind;
    set_foreground(Gpen::fill, static_cast<unsigned long>(gget_color_ind(ind)));
}

// Lines and fills belong to the window, the others to what is drawn on.
void make_gc(Gpen pen) {
    const bool on_window = pen == Gpen::line || pen == Gpen::fill;
    gc_of(pen) =
        XCreateGC(gget_display(), on_window ? gget_root_window() : gget_draw_window(), 0, nullptr);
}

void make_patterns() {
    for (int i = 0; i < num_patterns; ++i) {
        draw.patterns[i] =
            gmake_bitmap(gget_root_window(), gfill_pattern(i).data(), pattern_size, pattern_size);
    }
}

void free_server_font() {
    if (draw.font_info != nullptr) {
        XFreeFont(gget_display(), draw.font_info);
    }
    draw.font_info = nullptr;
}

// The first look of a pen besides its colours and its clip.
void start_pen(Gpen pen) {
    GC gc = gc_of(pen);
    switch (pen) {
    case Gpen::line:
        gset_line_gc_func(GXcopy);
        break;
    case Gpen::fill:
        draw.fill_color = no_color;
        XSetFillStyle(gget_display(), gc, FillSolid);
        break;
    case Gpen::text:
        XSetLineAttributes(gget_display(), gc, 1, LineSolid, CapProjecting, JoinBevel);
        break;
    case Gpen::marker:
        break;
    }
}

} // namespace

// --- Pens ---------------------------------------------------------------------

bool XDisplay::has_pen(Gpen pen) const {
    return gc_of(pen) != nullptr;
}

void XDisplay::init_pen(Gpen pen, int type) {
    Display* display = gget_display();
    if (type == 0) {
        make_gc(pen);
    }
    if (type == 0 && pen == Gpen::fill) {
        make_patterns();
    }
    start_pen(pen);
    XSetForeground(display, gc_of(pen), WhitePixel(display, gget_screen()));
    XSetBackground(display, gc_of(pen), BlackPixel(display, gget_screen()));
}

void XDisplay::reset_pens() {
    XGCValues values{};
    values.line_width = 0;
    values.line_style = LineSolid;
    values.join_style = JoinBevel;
    for (GC gc : draw.gcs) {
        if (gc != nullptr) {
            XChangeGC(gget_display(), gc, GCLineWidth | GCLineStyle | GCJoinStyle, &values);
        }
    }
}

void gfree_pens() {
    for (GC& gc : draw.gcs) {
        if (gc != nullptr) {
            XFreeGC(gget_display(), gc);
        }
    }
    free_server_font();
    gdel_fill_pat();
    draw = {};
}

int gdel_fill_pat() {
    for (Pixmap& pattern : draw.patterns) {
        if (pattern != 0) {
            XFreePixmap(gget_display(), pattern);
        }
        pattern = 0;
    }
    return 0;
}

void XDisplay::set_color(Gpen pen, int ind) {
    if (pen == Gpen::fill) {
        draw.fill_color = no_color; // it is set with the next area
    } else {
        set_foreground(pen, static_cast<unsigned long>(gget_color_ind(ind)));
    }
}

void XDisplay::set_black(Gpen pen) {
    set_foreground(pen, BlackPixel(gget_display(), gget_screen()));
}

void XDisplay::set_width(Gpen pen, int width) {
    XGCValues values{};
    values.line_width = width;
    XChangeGC(gget_display(), gc_of(pen), GCLineWidth, &values);
}

void XDisplay::set_dash(int type) {
    GC gc = gc_of(Gpen::line);
    XGCValues values{};
    values.line_style = type == 1 ? LineSolid : LineOnOffDash;
    XChangeGC(gget_display(), gc, GCLineStyle, &values);
    const Gdash dash = gline_dash(type);
    if (dash.count > 0) {
        XSetDashes(gget_display(), gc, 0, dash.lengths.data(), dash.count);
    }
}

void XDisplay::set_fill_style(int style, int pattern) {
    GC gc = gc_of(Gpen::fill);
    if (style == GSOLID) {
        XSetFillStyle(gget_display(), gc, FillSolid);
    } else if (style == GPAT) {
        XSetFillStyle(gget_display(), gc, FillStippled);
        // Unset while the state is put again.
        if (pattern >= 0 && draw.patterns[pattern] != 0) {
            XSetStipple(gget_display(), gc, draw.patterns[pattern]);
        }
    }
}

void XDisplay::set_clip(const Gclip_rect& rect) {
    XRectangle clip = {rect.x, rect.y, rect.width, rect.height};
    for (GC gc : draw.gcs) {
        if (gc != nullptr) {
            XSetClipRectangles(gget_display(), gc, 0, 0, &clip, 1, Unsorted);
        }
    }
}

// --- Figures ------------------------------------------------------------------

void XDisplay::point(Gpen pen, Gpixel at) {
    XDrawPoint(gget_display(), gget_draw_window(), gc_of(pen), at.x, at.y);
}

void XDisplay::lines(Gpen pen, int n, const Gpixel* points) {
    XDrawLines(gget_display(), gget_draw_window(), gc_of(pen), x_points(points), n,
               CoordModeOrigin);
}

void XDisplay::area(int n, const Gpixel* points, int color) {
    set_fill_foreground(color);
    XPoint* at = x_points(points);
    XFillPolygon(gget_display(), gget_draw_window(), gc_of(Gpen::fill), at, n, Nonconvex,
                 CoordModeOrigin);
    XDrawLines(gget_display(), gget_draw_window(), gc_of(Gpen::fill), at, n, CoordModeOrigin);
}

// --- Pictures -------------------------------------------------------------------

Gpicture XDisplay::make_picture(int width, int height) {
    return XCreatePixmap(gget_display(), gget_base_window(), static_cast<unsigned>(width),
                         static_cast<unsigned>(height), static_cast<unsigned>(gget_win_depth()));
}

void XDisplay::free_picture(Gpicture picture) {
    XFreePixmap(gget_display(), picture);
}

void XDisplay::fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel) {
    XSetForeground(gget_display(), gget_root_gc(), pixel);
    XFillRectangle(gget_display(), picture, gget_root_gc(), rect.x, rect.y,
                   static_cast<unsigned>(rect.width), static_cast<unsigned>(rect.height));
    XSetForeground(gget_display(), gget_root_gc(), gget_fore_pixel());
}

void XDisplay::copy_picture(Gpicture from, Gpicture to, const Grectangle& rect) {
    XCopyArea(gget_display(), from, to, gget_root_gc(), rect.x, rect.y,
              static_cast<unsigned>(rect.width), static_cast<unsigned>(rect.height), rect.x,
              rect.y);
}

bool XDisplay::keeps_frames() const {
    return true;
}

// --- Texts in a font of the server ----------------------------------------------

int XDisplay::load_font(const char* name) {
    draw.font_info = XLoadQueryFont(gget_display(), name);
    if (draw.font_info == nullptr) {
        return -1;
    }
    XSetFont(gget_display(), gc_of(Gpen::text), draw.font_info->fid);
    return 0;
}

void XDisplay::free_font() {
    free_server_font();
}

bool XDisplay::measure(std::string_view text, Gstring_size* size) {
    if (draw.font_info == nullptr) {
        return false;
    }
    *size = {XTextWidth(draw.font_info, text.data(), static_cast<int>(text.size())),
             draw.font_info->ascent, draw.font_info->descent};
    return true;
}

void XDisplay::string(int x, int y, std::string_view text) {
    XDrawString(gget_display(), gget_draw_window(), gc_of(Gpen::text), x, y, text.data(),
                static_cast<int>(text.size()));
}

// --- The contexts for the window's own modules ----------------------------------

GC gget_line_gc() {
    return gc_of(Gpen::line);
}

GC gget_marker_gc() {
    return gc_of(Gpen::marker);
}

GC gget_text_gc() {
    return gc_of(Gpen::text);
}

GC gfill_gc_in(int color) {
    if (gc_of(Gpen::fill) != nullptr) {
        gflush_fill();
        set_fill_foreground(color);
    }
    return gc_of(Gpen::fill);
}

int gget_line_gc_func() {
    return draw.line_function;
}

int gset_line_gc_func(int func) {
    draw.line_function = func;
    if (gc_of(Gpen::line) != nullptr) {
        XSetFunction(gget_display(), gc_of(Gpen::line), func);
    }
    return 0;
}

int gxline(Drawable drawable, const XPoint* a, const XPoint* b) {
    if (gc_of(Gpen::line) == nullptr) {
        return -1;
    }
    XDrawLine(gget_display(), drawable, gc_of(Gpen::line), a->x, a->y, b->x, b->y);
    return 0;
}

int gxrect(Drawable drawable, const XPoint* a, const XPoint* b) {
    if (gc_of(Gpen::line) == nullptr) {
        return -1;
    }
    XDrawRectangle(gget_display(), drawable, gc_of(Gpen::line), std::min(a->x, b->x),
                   std::min(a->y, b->y), static_cast<unsigned>(std::abs(a->x - b->x)),
                   static_cast<unsigned>(std::abs(a->y - b->y)));
    return 0;
}

const char* XDisplay::default_of(const char* name) {
    return XGetDefault(gget_display(), gget_prog_name(), name);
}
