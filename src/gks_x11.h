// gks_x11.h: the part of the kernel (gks.h) that speaks in X types: the display
// of workstation types 1 and 6, its drawables, graphics contexts and colour
// maps. Included by kernel modules alone. Without a display the pointers are
// null and the ids 0.
#pragma once

#include "gks_draw.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

// --- Display and window (gks_conn.cpp) ------------------------------------------

Display* gget_display();
int gget_screen();
Visual* gget_visual();
Window gget_root_window(); // the plot's window, not the screen's
bool ghas_window();        // whether there is one, not the pixmap alone
// The window is gone from the server: the plot goes on in the pixmap.
void glose_window();
GC gget_root_gc();
// Errors counted by the handler.
int gget_num_error();
Atom gget_close_atom(); // of the window manager's wish that the window closes
// `print` 0: errors are kept from the user and only noted until a call with 1,
// which syncs and returns whether one came.
int gtrap_errors(int print);
// How many seconds a server may take to open a window, 20 at start.
void gset_display_patience(int seconds);

// --- Colour maps (gks_xcolr.cpp) ------------------------------------------------

Colormap gget_colormap(); // the private one, else the screen's
int gset_def_cmap(Colormap map);
int gset_user_cmap(Colormap map);
Colormap gget_user_cmap();
// Gives back the private map and forgets all pixels.
void gfree_xcolr();

// --- Pens (gks_xdraw.cpp, which draws for the primitives by gks_draw.h) -----------

GC gget_line_gc();
int gget_line_gc_func();
int gset_line_gc_func(int func);
// One pixel line, and the rectangle of two corners, with the line context.
int gxline(Drawable drawable, const XPoint* a, const XPoint* b);
int gxrect(Drawable drawable, const XPoint* a, const XPoint* b);
GC gfill_gc_in(int color); // in the pixel of that index
GC gget_fill_gc();         // in that of the fill colour (gks_window.cpp)
GC gget_marker_gc();
GC gget_text_gc();
// Frees the contexts, the patterns and the server's font.
void gfree_pens();

// --- Events -------------------------------------------------------------------

int gprocess_x11_event(XEvent* event);

// --- Images (gks_ximage.cpp) -------------------------------------------------------

int gset_ximage_params(IMG_report* image, XImage* ximage);

// --- The X server's side of gks_draw.h ------------------------------------------

// Pens, figures and pictures are in gks_xdraw.cpp, images in gks_ximage.cpp,
// colours in gks_xcolr.cpp, the magnified picture in gks_zoom.cpp, the window in
// gks_x11.cpp. Closing comes first: the compiler puts the table of methods where the
// first one is, and gks_x11 alone may call all of these modules.
class XDisplay final : public Gdisplay {
public:
    void close() override;
    [[nodiscard]] bool has_pen(Gpen pen) const override;
    void init_pen(Gpen pen, int type) override;
    void reset_pens() override;
    void set_color(Gpen pen, int ind) override;
    void set_black(Gpen pen) override;
    void set_width(Gpen pen, int width) override;
    void set_dash(int type) override;
    void set_fill_style(int style, int pattern) override;
    void set_clip(const Gclip_rect& rect) override;
    void point(Gpen pen, Gpixel at) override;
    void lines(Gpen pen, int n, const Gpixel* points) override;
    void area(int n, const Gpixel* points, int color) override;
    Gpicture make_picture(int width, int height) override;
    void free_picture(Gpicture picture) override;
    void fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel) override;
    void copy_picture(Gpicture from, Gpicture to, const Grectangle& rect) override;
    int put_image(IMG_report* image, long trans, int x, int y) override;
    int take_image(IMG_report* image, bool lent) override;
    [[nodiscard]] bool keeps_frames() const override;
    [[nodiscard]] bool is_magnified() const override;
    bool show_magnified(int frame) override;
    void end_magnifying() override;
    void show() override;
    void blank() override;
    void flush() override;
    void sync() override;
    bool parse_color(const char* text, Gcolr_levels* levels) override;
    bool take_cell(int* pixel) override;
    void store_cell(int pixel, const Gcolr_levels& levels) override;
    int share_pixel(const Gcolr_levels& levels, int otherwise) override;
    int share_levels(Gcolr_levels* levels) override;
    Gcolr_levels screen_levels(bool white) override;
    const char* default_of(const char* name) override;
    int load_font(const char* name) override;
    void free_font() override;
    bool measure(std::string_view text, Gstring_size* size) override;
    void string(int x, int y, std::string_view text) override;
};
