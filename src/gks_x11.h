// gks_x11.h: the part of the kernel (gks.h) that speaks in X types: the display
// of workstation types 1 and 6, its drawables, graphics contexts and colour
// maps. Included by kernel modules alone. Without a display the pointers are
// null and the ids 0.
#pragma once

#include "gks.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

// --- Display and window (gks_x11.cpp) -------------------------------------------

Display* gget_display();
int gget_screen();
Visual* gget_visual();
Window gget_root_window(); // the plot's window, not the screen's
bool ghas_window();        // whether there is one, not the pixmap alone
// The window is gone from the server: the plot goes on in the pixmap.
void glose_window();
Pixmap gget_base_window(); // its backing pixmap
int gset_base_window(Pixmap id);
Drawable gget_draw_window();       // where primitives draw
int gset_draw_window(Drawable id); // 0: the base pixmap
GC gget_root_gc();
unsigned long gget_red_mask();
unsigned long gget_grn_mask();
unsigned long gget_blu_mask();
unsigned long gget_fore_pixel();
unsigned long gget_back_pixel();
// Errors counted by the handler.
int gget_num_error();
Atom gget_close_atom(); // of the window manager's wish that the window closes
// `print` 0: errors are kept from the user and only noted until a call with 1,
// which syncs and returns whether one came.
int gtrap_errors(int print);

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
GC gget_fill_gc();
GC gget_marker_gc();
GC gget_text_gc();
// Frees the contexts, the patterns and the server's font.
void gfree_pens();

// --- Frames and events ----------------------------------------------------------

Pixmap gget_frame_id(int ind);
int gset_frame_id(int ind, Pixmap pixmap);
int gprocess_x11_event(XEvent* event);

// --- Images (gks_img.cpp) -------------------------------------------------------

int gset_ximage_params(IMG_report* image, XImage* ximage);
