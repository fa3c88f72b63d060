// gks.h: the graphics kernel. One output device (a workstation, known by a
// type number) is open at a time; what is drawn passes through six
// normalisation transformations and goes to the device from inside each
// primitive, by a test of the workstation type.
//
// Phases: closed; kernel open (gopen_gks); workstation open (gopen_ws).
// Drawing and attribute setters work in the last alone: before it they report
// "GKS not opened" and return -1. Unless told otherwise a call returns 0, or
// -1 after a report, and then the old state stays in force.
#pragma once

#include <cstdint>
#include <cstdio>

// --- Types --------------------------------------------------------------------

using Gint = std::int32_t;
using Gfloat = float;
using Gws_type = Gint;        // one of the ws_ numbers
using Gconn_id = const char*; // connection text: output name, then options, split at commas
using Gcoord_unit = Gint;

constexpr Gcoord_unit GMETER_UNIT = 0;
constexpr Gcoord_unit GOTHER_UNIT = 1;

constexpr Gws_type ws_none = 0; // not chosen yet
constexpr Gws_type ws_window = 1;
constexpr Gws_type ws_metafile = 3;
constexpr Gws_type ws_postscript = 4;
constexpr Gws_type ws_hpgl = 5;
constexpr Gws_type ws_pixmap = 6;

struct Gpt {
    Gfloat x, y;
};
struct Gint_pt {
    Gint x_coord, y_coord;
};
// Limits of a window or viewport. Mind the order: Gcoords has another.
struct Glim {
    Gfloat x_min, x_max, y_min, y_max;
};
struct Gtran {
    Glim win, vp;
};
struct Gcoords {
    float x_min, y_min, x_max, y_max;
    float x_ext, y_ext; // x_max - x_min, y_max - y_min
};
// Scale factors between two rectangles.
struct Gtransform {
    float x, y;
};
struct Grectangle {
    Gint x, y, width, height;
};
// A rectangle as a window system takes it.
struct Gclip_rect {
    std::int16_t x, y;
    std::uint16_t width, height;
};
struct Gcolr_rep {
    Gfloat red, green, blue; // 0.0 to 1.0
};
struct Gdsp_size {
    Gcoord_unit coord_units;
    Gpt coord_size;   // largest device coordinate
    Gint_pt ras_size; // width and height
};
struct Gaspect {
    Gfloat x, y;
};
struct Gcenter {
    Gint x, y; // 2 centred, 3 against the maximum, else starting at 0
};

enum Gfill_int_style { GHOLLOW = 0, GSOLID = 1, GPAT = 2, GHATCH = 3 };
enum Gtext_prec { GSTRING_PREC = 0, GCHAR_PREC = 1, GSTROKE_PREC = 2 };
enum Gtext_hor { GNORMAL_HOR = 0, GLEFT_HOR = 1, GCENTER_HOR = 2, GRIGHT_HOR = 3 };
enum Gtext_ver {
    GNORMAL_VERT = 0,
    GTOP_VERT = 1,
    GCAP_VERT = 2,
    GHALF_VERT = 3,
    GBASE_VERT = 4,
    GBOTTOM_VERT = 5
};
enum Gtext_path { GRIGHT_PATH = 0, GLEFT_PATH = 1, GUP_PATH = 2, GDOWN_PATH = 3 };

struct Gfontprec {
    Gint font; // place in the font list, from 1
    Gtext_prec prec;
};
struct Gtext_align {
    Gtext_hor hor;
    Gtext_ver ver;
};

// Normalisation transformations of the plot layer.
constexpr int tran_page = 1; // the page, window equal to viewport
constexpr int tran_map = 2;  // the map window of the current domain
constexpr int tran_grid = 3; // grid indices
constexpr int num_trans = 6;

// Colour indexes: -1 the background (kept as entry 256), 0 to 256, and print
// colours 500 to 508, which mean the same on every print device: black, white
// and grey 0.7, each with the line width factors 1, 2 and 4.
constexpr int background_colr = 256;
constexpr int num_colrs = 257;
constexpr int first_print_colr = 500;
constexpr int last_print_colr = 508;

// --- Kernel and workstation (gks_tool.cpp) ------------------------------------

// `path` of the error file, null for standard error. `size` is not used.
// Returns 0; nonzero if there is no place to report to.
int gopen_gks(const char* path, int size);
int gclose_gks();
int gemergency_close_gks();
int gactivate_ws(int ws_id);
int gdeactivate_ws(int ws_id);
// Opens the device of `ws_type`. An output that cannot be opened, or a device
// that this build lacks, is reported and gives -1.
int gopen_ws(int ws_id, const char* conn_id, Gws_type ws_type);
int gclose_ws(int ws_id);
// A new page. File devices begin a page by being opened: nothing happens.
int gclear_ws(int ws_id, int flag);
// 1 while a workstation is open.
int gchk_graphics();
// 0 if the kernel is open for drawing; otherwise reports under `func`, -1.
int gchk_open(const char* func);
int gget_ws_id();
// Reports a kernel error under the name of the call. Silent while closed.
[[gnu::format(printf, 2, 3)]] void gerr_printf(const char* func, const char* format, ...);
// Resets attributes and transformations; 0 and 1 display, 2 PostScript,
// 3 HPGL, 4 metafile. -1 changes nothing and is returned.
int ginit_plot(int type);

Gws_type gget_win_type();
int gset_win_type(Gws_type type);
bool gtype_is_WIN();
bool gtype_is_PIX();
bool gtype_is_WIN_PIX();
bool gtype_is_PS();
bool gtype_is_HPGL();
bool gtype_is_META();

// Drawing area of the workstation in device units, 0 by 0 when closed.
int gget_win_size(int* width, int* height);
int gget_win_offset(int* x, int* y);
// Changes the size and refits the picture; windows and viewports stay.
int gset_win_size(int width, int height);
int gset_xsize(int width, int height);
int gset_xoff(int x, int y);
// Bits of a pixel; 10 marks a file device.
int gget_win_depth();
// Size of the device's space, in device units.
int ginq_disp_space_size(Gws_type ws_type, int* err, Gdsp_size* size);

int gset_prog_name(const char* name); // at most 19 characters
const char* gget_prog_name();
int gset_win_title(const char* title); // at most 59; -1 as long as there is no window
const char* gget_win_title();

// Status line: a comment in a PostScript file. `level` is kept for the window.
int gmessage(int level, const char* text);

// --- Frames and events (gks_loop.cpp) -----------------------------------------
// Only a window keeps frames and has events. On a file device every frame is
// drawn straight into the file and these calls say so by their results.

int gcreate_frame(int ind);  // 0 without a window
int gselect_frame(int ind);  // -1 without a window
int gdisplay_frame(int ind); // -1 without a window
int gget_num_images();       // 0
int gget_cur_frame();        // -1: none on show
int gset_looping(int value); // 0: nothing to loop over
int gcheck_event();          // number of user events served
int gupdate_window();        // -1 without a window

// --- Transformations (gks_tran.cpp) -------------------------------------------

// `type` as ginit_plot, or 10: the device size has changed.
int ginit_tran(int type);
int gset_ws_win(int ws_id, const Glim* lim);
int gset_ws_vp(int ws_id, const Glim* lim);
// A number outside 0 to 5 is reported and refused by all of these.
int gsel_norm_tran(int n);
int gset_vp(int n, const Glim* lim);
int gset_win(int n, const Glim* lim);
int ginq_norm_tran(int n, int* err, Gtran* tran);
int ginq_cur_norm_tran_num(int* err, int* n);
// Fits a rectangle of the shape `asp` into `vin`.
int gset_aspect(const Glim* vin, Glim* vout, Gaspect asp, Gcenter center);
// 0 if the box of the points (world coordinates) lies wholly to one side of
// the current window, else 1.
int gpts_in_win(int n, const Gpt* pts);
// Current viewport in device units, its far edge included.
int gget_xviewport(Gclip_rect* rect);
int gget_gviewport(Grectangle* rect);

float xW_p(float x); // world to pixel, Y down, within 30000
float yW_p(float y);
float xp_W(float x); // pixel to world
float yp_W(float y);
float xW_ps(float x); // world to print unit, Y up, within 100000
float yW_ps(float y);
float xNDC_p(float x);
float yNDC_p(float y);
float xNDC_ps(float x);
float yNDC_ps(float y);
float xW_NDC(float x);
float yW_NDC(float y);
// World coordinates of transformation `from` as those of `to`.
float xW_trans(float x, int from, int to);
float yW_trans(float y, int from, int to);

// --- Lines (gks_line.cpp) -----------------------------------------------------

// World coordinates of the current transformation; at least 2 points.
int gpolyline(int n, const Gpt* pts);
int gset_line_colr_ind(int ind);
int gset_linewidth(float width);     // 0 is a hairline on a display, 1 in print
int gset_linetype(int type);         // 1 solid, 2 to 5 dashed
int gset_line_print_bold(int value); // extra factor on widths in print
int gget_line_print_bold();
int gget_line_colr();
int greset_line();

// --- Fills (gks_fill.cpp) -----------------------------------------------------

// A closed area; pattern styles draw nothing in PostScript.
int gfill_area(int n, const Gpt* pts);
int gset_fill_colr_ind(int ind);
int gset_fill_int_style(int style);   // a Gfill_int_style
int gset_fill_style_ind(int ind);     // pattern 0 to 19
int gset_fill_print_solid(int value); // 1: fills print black
int gget_fill_print_solid();
int gget_fill_colr();
int greset_fill();
// Paints the rectangle (world coordinates) in the background colour.
int gclear_region(const Glim* lim);

// --- Markers (gks_mark.cpp) ---------------------------------------------------

int gpolymarker(int n, const Gpt* pts);
int gset_marker_colr_ind(int ind);
int gset_marker_size(float height); // one unit is 10 pixels on a display
int gset_marker_type(int type);     // 1 to 9; others draw nothing
int gset_marker_width(float width);
int gget_marker_colr();
int greset_marker();

// --- Stroke text (gks_text.cpp) -----------------------------------------------

// Draws `str` at `pos`, in world coordinates, with the text attributes.
int gtext(const Gpt* pos, const char* str);
int gset_text_colr_ind(int ind);
int gset_char_ht(float height); // height of capitals, world units
int gset_expan(float factor);
int gset_text_width(float width);
int gset_space(float space);      // extra space in hundreds of font units
int gset_char_space(float space); // above 0: fixed pitch
int gset_char_up_vec(const Gpt* up);
int gset_text_align(const Gtext_align* align);
int ginq_text_align(int* err, Gtext_align* align);
int gset_text_path(int path); // accepted, without effect
// Chooses the font of that place in the list and reads its file.
int gset_fontprec(const Gfontprec* font);
// A list of fonts stronger than the resource: names split at commas, or
// "fi:" and a list file.
int gset_font_list(const char* list);
int gsetup_fonts();
// A number, or the short name of a font in the list; 1 if there is none such.
int gget_font_index(const char* name);
int gset_font_drop(int depth); // drop shadow, pixels, on a display
int gget_font_drop();
int gget_text_colr();
int greset_text();

// --- Colours (gks_colr.cpp) ---------------------------------------------------

int gset_colr_rep(int ws_id, int ind, const Gcolr_rep* rep);
// Stores a colour on the device; a negative index asks for any near one or a
// new one. Returns the device's pixel value, 1 on file devices.
long galloc_colr(int ind, float red, float grn, float blu);
// Components of an index, -1 being the background.
int gget_color_rgb(int ind, float* red, float* grn, float* blu);
int gis_valid_colr(int ind);
// 1 if the colour lies within 0.01, summed over the components, of entry
// `ind`; -1 has no colour.
int gis_color_near(float red, float grn, float blu, int ind);
// The checks of every colour setter, reported under `func`.
int gchk_colr(const char* func, int ind);
int gset_inverse(int value); // 1: black on white
int gget_inverse();
int ginit_background();

// --- PostScript (gks_ps.cpp) --------------------------------------------------

// Everything that gopen_ws does for type 4. Returns 0, or -1 after a report.
int gps_open_ws(const char* conn_id);
// Opens an output: "|command", "+file" (append) or a file. Null on failure.
std::FILE* gps_open_file(const char* name);
int gps_init();
int gps_set_size(float sx, float sy); // page, inches
int gps_init_file();
// Ends and closes the file; -1 without one.
int gps_close_file();
[[gnu::format(printf, 1, 2)]] int gps_printf(const char* format, ...);
// One line of comment: control characters in it become blanks, so that no
// text reaches the printer as commands. Cut at 250 characters.
[[gnu::format(printf, 1, 2)]] int gps_comment(const char* format, ...);

// Path elements in world coordinates, and the same in points.
int gps_move(float x, float y);
int gps_line(float x, float y);
int gps_move_abs(float x, float y);
int gps_line_abs(float x, float y);
// "mv" to the first point and "ln" to the others, in world coordinates.
int gps_path(int n, const Gpt* pts);
// A whole polyline and a whole solid area, in the attributes given.
int gps_polyline(int n, const Gpt* pts, int color, float width, int type);
int gps_fill_area(int n, const Gpt* pts, int color);
// The clip path round device limits.
int gps_set_clip(float x0, float y0, float x1, float y1);

// State commands, written only when the state changes.
int gps_set_color(int ind);
int gps_set_fill_color(int ind);
int gps_set_width(int ind, float width);
int gps_set_type(int type);
int gps_set_base_width(float width);
int gps_set_color_rep(float red, float grn, float blu, int ind);
float gps_get_gray(int ind);

int gps_set_EPS(int value);
int gps_set_orient(int portrait);
int gps_set_scale(float scale);
int gps_set_colorPS(int value);
int gps_get_colorPS();
int gps_set_reverse(int value);
