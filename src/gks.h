// gks.h: the graphics kernel. One output device (a workstation, known by a
// type number) is open at a time; what is drawn passes through six
// normalisation transformations and goes to the device from inside each
// primitive, by a test of the workstation type.
//
// Phases: closed; kernel open (gopen_gks); workstation open (gopen_ws).
// Drawing and attribute setters work in the last alone: before it they report
// "GKS not opened" and return -1. Unless said otherwise a call returns 0, or
// -1 after a report, and then the old state stays in force.
#pragma once

#include <cstddef>
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

// The workstation types as the primitives and setters branch on them: a switch
// over all, one line a device, so that the compiler names a forgotten one.
enum class Gdevice : Gint {
    none = ws_none,
    window = ws_window,
    metafile = ws_metafile,
    postscript = ws_postscript,
    hpgl = ws_hpgl,
    pixmap = ws_pixmap
};

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
// A step of the pen along a glyph, world coordinates.
struct Gpen_step {
    Gpt at;
    bool down; // draw, not move
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

enum Gfill_int_style : int { GHOLLOW = 0, GSOLID = 1, GPAT = 2, GHATCH = 3 };
enum Gtext_prec : int { GSTRING_PREC = 0, GCHAR_PREC = 1, GSTROKE_PREC = 2 };
enum Gtext_hor : int { GNORMAL_HOR = 0, GLEFT_HOR = 1, GCENTER_HOR = 2, GRIGHT_HOR = 3 };
enum Gtext_ver : int {
    GNORMAL_VERT = 0,
    GTOP_VERT = 1,
    GCAP_VERT = 2,
    GHALF_VERT = 3,
    GBASE_VERT = 4,
    GBOTTOM_VERT = 5
};
enum Gtext_path : int { GRIGHT_PATH = 0, GLEFT_PATH = 1, GUP_PATH = 2, GDOWN_PATH = 3 };

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
// What is only asked or noted is in gks_state.cpp, the reset of a plot in
// gks_plot.cpp, what the primitives record in gks_record.cpp, titles in gks_title.cpp.

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
// Returns 0; -1 when none is open, or after a report that not all of its file
// could be written.
int gclose_ws(int ws_id);
// A new page. File devices begin a page by being opened: nothing happens.
int gclear_ws(int ws_id, int flag);
// 1 while a workstation is open.
int gchk_graphics();
// 0 if the kernel is open for drawing; otherwise reports under `func`, -1.
int gchk_open(const char* func);
int gget_ws_id();
// A line width as the device in force keeps it.
float gkept_width(float width);
// Reports a kernel error under the name of the call. Silent while closed.
[[gnu::format(printf, 2, 3)]] void gerr_printf(const char* func, const char* format, ...);
// Resets attributes and transformations; 0 and 1 display, 2 PostScript,
// 3 HPGL, 4 metafile. -1 changes nothing and is returned.
int ginit_plot(int type);

Gws_type gget_win_type();
int gset_win_type(Gws_type type);
Gdevice gget_device(); // the same type, for a switch
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

// Status line: a comment in a PostScript file, a record of a metafile and of
// the redraw list. `level` is kept for the window.
int gmessage(int level, const char* text);

// --- Window (gks_x11.cpp; X types and ids in gks_x11.h) -------------------------
// Its opening and its size are in gks_window.cpp, type 6 in gks_pixmap.cpp, cursors in
// gks_cursor.cpp, what is the same on every display in gks_draw.cpp. A display is open
// on types 1 and 6. Calls that need one return 0 or -1 at once on a file device and
// change nothing.

// What gopen_ws does for types 1 and 6. Returns 0, or -1 after a report. A window whose
// display does not answer gives 1, and no report, if the plot ends in image files.
int gopen_window(const char* conn_id);
// 1: the plot ends in image files, so that the display in memory serves it where no
// other answers.
int gset_image_run(int value);
bool gis_image_run();
int gopen_pixmap(const char* conn_id);
// Gives back what the two opened; called by gclose_ws.
int gclose_display();

// "WxH+X+Y", or on type 6 a panel "PWxH+X+Y"; stronger than the resource.
int gset_geometry(const char* geometry); // at most 39 characters
int gset_iconic(int value);
int gset_fixed_size();
int gset_icon_bitmap(const unsigned char* bits); // 48 by 48, 288 bytes
// On type 6: 1 clears the drawing area, 2 asks for a new frame, 9 ends the
// window at closing.
int gset_pix_mode(int mode);
int gget_pix_mode();
void gclear_errors(); // of the window system, as counted
// Size of the whole window, or of the foreign drawable on type 6.
int gget_root_size(int* width, int* height);
// `width` above 0: the program resizes; -1: the window manager has resized.
// Returns 1, with frames and zoom gone; 0 when the size is as before.
int gresize_window(int width, int height);
int gupdate_window(); // copies the base pixmap to the window; -1 without one
int gclear_window();  // paints the base pixmap in the background; -1 without one
int gsync();
int gflush();                // sends what is drawn so far; nothing is waited for, as by gsync
int gbell(int percent);      // 0: 50
int gshow_win_title();       // gives the window the title in force; -1 without one
void gcut_title(char* text); // drops a UTF-8 character at the end that a buffer has cut in two
int gset_win_title_extra(const char* text); // after the title; empty removes it
int gget_win_title_extra(char* buf);        // buf: 60 bytes
// Cursors 0 to 8. Return the number before.
int gset_cursor(int n);
int gset_cursor_type(int n);
int gget_cursor_type();
constexpr int cursor_number_x = 0;   // default, after a hold
constexpr int cursor_number_ptr = 1; // during a callback
constexpr int cursor_number_move = 2;
constexpr int cursor_number_loop = 3; // looping
constexpr int cursor_number_stop = 4; // frames, not looping
constexpr int cursor_number_draw = 5;
constexpr int cursor_number_rect = 6; // one image, waiting
constexpr int cursor_number_text = 7;
constexpr int cursor_number_wait = 8; // busy

// --- Frames (gks_loop.cpp) and zoom (gks_zoom.cpp) ------------------------------
// A frame is a pixmap on the server; only a window keeps frames. Frame
// references: 0 and up a number, and the three below.

constexpr int frame_last = -1;
constexpr int frame_current = -2;
constexpr int frame_base = -3; // the base pixmap, where a call can take it
constexpr int frames_all = -4; // gset_loop_delay alone
constexpr int max_frames = 128;
constexpr int frame_data_size = 50;

int ginit_loop(); // empties the table; frees nothing
// Makes or reuses a frame, cleared; negative: the next one. Returns its
// number; -1 with a report when the table is full; 0 without a display.
int gcreate_frame(int ind);
int gclear_frame(int ind);
int gselect_frame(int ind);  // -1 without a window
int gdisplay_frame(int ind); // -1 without a window
int gswitch_frame(int ind1, int ind2);
int gcopy_frame(int dest, int src);
int gdelete_frame(int ind); // 1 done, 0 refused
int gdelete_all_frames();
int gget_num_images();
// Whether frames stay. Else, in memory, each takes the place of the one before.
bool gkeeps_frames();
int gget_cur_frame(); // -1: none on show
int gset_looping(int value);
int gget_looping();
int gtoggle_loop(int value); // 1 on, 0 off, else the other
int gset_loop_direct(int value);
int gget_loop_direct();
int gset_loop_title(int value);
int gset_loop_delay(float delay, int ind); // 1 done, 0 refused
int ginc_loop_delay(float step);
float gget_loop_delay();
float gget_frame_delay(int ind);
int ginc_frame(int step); // next frame number, -1 without frames
int gloop_sleep();        // gks_evnt.cpp: events may end it
int gset_image_data(int ind, const unsigned char* data, int size); // -1 above 50 bytes
int gget_image_data(int ind, unsigned char* data);                 // size

// Pixel zoom about (x, y), -1 the old centre; a factor below -1 multiplies.
// `flag` 1 renews the view of a frame, 0 is a new zoom. Returns 1 when done.
int gzoom(int ind, int x, int y, int factor, int flag);
int gunzoom();
int greset_zoom();
int gget_zoom();
float xZ_p(float x); // window pixel to picture pixel
float yZ_p(float y);

// --- Events (gks_evnt.cpp; gks_input.cpp, gks_band.cpp) -------------------------

// Type 2 key or window size, 3 button; its name; world coordinates (pixels for
// "size").
using Gmouse_func = void(int type, const char* event, float x, float y);
using Grefresh_func = void();

int ginit_event(int type);
int gcheck_event(); // serves what is pending; number of user events
int gwait_event();  // the same, but waits for the first
int ghold(int ws_id);
int gset_input_mode(int value);
int gget_input_mode(); // 1 until the hold is to end
int gis_mapped();
int gset_mouse_callback(Gmouse_func* func);
int gset_rubber_band(int value); // 0 off, 1 line, 3 constrained line, else rectangle
int gset_rubber_band_points(const Gpt* pts, int n, int constraint);
int gset_rubber_band_limits(const Gpt* pts); // two points, world
int gset_refresh_callback(int seconds, Grefresh_func* func);

// --- Redraw list (gks_obj.cpp; played by gks_replay.cpp) ------------------------

// One recorded call. `data` is its copy of the call's data, or null.
struct drawable {
    int type;
    int values; // a number, or the count of points
    drawable* next;
    char* data;
};
using drawobj = drawable;

// Object codes: what is called when a record is played.
enum Gobj {
    obj_message = 5,
    obj_ws_vp = 10,
    obj_ws_win = 11,
    obj_norm_tran = 15,
    obj_vp = 16,
    obj_win = 17,
    obj_colr_rep = 20,
    obj_clear_region = 25,
    obj_polyline = 30,
    obj_linetype = 33,
    obj_linewidth = 34,
    obj_line_colr = 35,
    obj_line_bold = 36,
    obj_polymarker = 40,
    obj_marker_type = 43,
    obj_marker_size = 44,
    obj_marker_colr = 45,
    obj_marker_width = 46,
    obj_text = 50,
    obj_space = 53,
    obj_char_space = 54,
    obj_expan = 55,
    obj_text_colr = 56,
    obj_char_ht = 57,
    obj_char_up = 58,
    obj_fontprec = 59,
    obj_text_align = 60,
    obj_text_width = 61,
    obj_fill_area = 70,
    obj_fill_int_style = 73,
    obj_fill_style_ind = 74,
    obj_fill_colr = 75,
    obj_fill_solid = 76
};

int ginit_objs();
// Counts the call, serves events at every 500th, and records it while the list
// is in use. Returns the place of its `size` bytes, copied from `data` if that
// is not null; null when nothing is kept.
char* gnew_obj(int type, int values, int size, const void* data);
int gclear_objs();
std::size_t gget_objs_bytes(); // bytes of the records and their data
int gset_cache(int value);     // 1: events are served
int gget_cache();
int gset_redraw(int value); // 1: the list is in use. Returns the old value
int gget_redraw();
int gobj_redraw_funcs(const drawobj* obj); // plays one record
int gobj_print_meta();                     // writes the list as a metafile

// --- Metafile (gks_meta.cpp, gks_cgm.cpp, gks_meta_read.cpp) -------------------

// What gopen_ws does for type 3. Returns 0, or -1 after a report.
int gmeta_open_ws(const char* conn_id);
std::FILE* gmeta_open_file(const char* name);
int gmeta_init_file();
int gmeta_close_file();       // -1 without a file
int gmeta_set_type(int type); // 0 text, 1 CGM
int gmeta_get_type();
// Writes to a text metafile alone. Always 0.
[[gnu::format(printf, 1, 2)]] int gmeta_printf(const char* format, ...);
// The same as one line: control characters in it become blanks, so that no
// text of a plot is taken for records. Cut at 511 characters.
[[gnu::format(printf, 1, 2)]] int gmeta_line(const char* format, ...);
// "PL 5 x,y x,y ...": a keyword, the count and the points, broken after every
// fourth. `end` 1: always ends the line; 0: not after a multiple of four.
int gmeta_points(const char* keyword, int n, const Gpt* pts, int end);
// The records of the primitives. A binary metafile takes polylines and clips.
int gmeta_polyline(int n, const Gpt* pts);  // 1
int gmeta_fill_area(int n, const Gpt* pts); // 1
int gmeta_polymarker(int n, const Gpt* pts);
int gmeta_text(const Gpt& pos, const char* str);
int gmeta_clear_region(const Glim& lim);
// Plays a text metafile on the open workstation, in the state in force, and
// leaves the state that it set. -1 after a report if it cannot be opened.
int gread_metafile(const char* filename);
// The same over a plot: state and colours are afterwards as they were before.
int goverlay_metafile(const char* filename);
// Binary elements; `len` 31 is the long form. Text metafiles take none of them.
int gcgm_control(int maj, int min, int len, int param);
int gcgm_point(float x, float y);    // world
int gcgm_ps_point(float x, float y); // device units
int gcgm_polyline(int n, const Gpt* pts);
int gcgm_set_clip(float x0, float y0, float x1, float y1); // device units
// The attributes of what it draws are no part of a binary metafile: nothing is written.
int gcgm_set_color(int ind);
int gcgm_set_fill_color(int ind);
int gcgm_set_width(int ind, float width);
int gcgm_set_type(int type);

// --- Capture (gks_img.cpp; records in zyrimg.h, kinds in img_kind.h) ------------

struct IMG_kind;
struct IMG_report;
// The picture of the current draw window. Returns 1, or 0 after a report.
int gget_image(IMG_report* image);
// Writes an image file, the background and the title being those of the window.
int gwrite_image(const IMG_kind& kind, const char* filename, const IMG_report& image);
// The one road from the window to an image file of any kind. `describe`, unless
// null, completes the record of the capture.
int gdump_image(const IMG_kind& kind, const char* filename, void (*describe)(IMG_report* image));
// Adds the picture to the animation that is being written; the first one opens the file.
int gadd_image(const char* filename, void (*describe)(IMG_report* image));
int gread_image_file(const char* filename, IMG_report* image);
// Lays an image over the plot, `background` transparent; position relative to
// the viewport, negative from the right or bottom edge.
int goverlay_image_file(const char* filename, const char* background, int x, int y);
int goverlay_image(IMG_report* image, const char* background, int x, int y);
int gsetup_image_colors(IMG_report* image, long trans);

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
int ginit_line(int type); // 0 makes the graphics context, 0 and 1 set it up

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
int ginit_fill(int type);
int gdel_fill_pat();
// Sends what gfill_area still holds back to the display. Every other drawing
// and every copy of the drawing comes after it.
void gflush_fill();
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
int ginit_marker(int type);

// --- Stroke text (gks_text.cpp) -----------------------------------------------

// Draws `str` at `pos`, in world coordinates, with the text attributes.
int gtext(const Gpt* pos, const char* str);
// Width of `str` in world units, with capitals of that height and the font,
// expansion and spacing in force; 0 when nothing can be measured.
float gtext_width(const char* str, float height);
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
int ginit_text(int type);

// --- Colours (gks_colr.cpp) ---------------------------------------------------

int gset_colr_rep(int ws_id, int ind, const Gcolr_rep* rep);
// Stores a colour on the device; a negative index asks for any near one or a
// new one. Returns the device's pixel value, 1 on file devices.
long galloc_colr(int ind, float red, float grn, float blu);
// Pixel of an index, -1 being the background; -1 while it has none. 0 on file
// devices.
int gget_color_ind(int ind);
// Components of an index, -1 being the background.
int gget_color_rgb(int ind, float* red, float* grn, float* blu);
int gget_color_rgb256(int ind, int* red, int* grn, int* blu); // 0 to 255
// Pixel of a colour of 16-bit components on a true colour visual.
unsigned long gget_color_rgb_Xval(unsigned red, unsigned grn, unsigned blu);
int gis_valid_colr(int ind);
// 1 if the colour lies within 0.01, summed over the components, of entry
// `ind`, or with `flag` of the last entry with the pixel `ind`; -1 has no
// colour.
int gis_color_near(float red, float grn, float blu, int ind, int flag);
// The checks of every colour setter, reported under `func`. A print colour
// becomes 1 on a display.
int gchk_colr(const char* func, int* ind);
int gset_inverse(int value); // 1: black on white
int gget_inverse();
int gset_background(const char* text); // stronger than the resource; at most 49 characters
int gget_back_color();
// What the program's own colour names stand for: the index of a name, -1 for none,
// and its components unless `rep` is null. Handed in by GPH_setup; without it a
// background is named as X names colours.
using Gcolor_finder = int (*)(const char* name, Gcolr_rep* rep);
int gset_color_finder(Gcolor_finder find);
int gfind_color(const char* name, Gcolr_rep* rep);
int gset_rw_colors(int value);      // 1: try writable colour cells
int gset_local_colormap(int value); // 1: make a private colour map
int ginit_xcolr();
void gforget_pixels(bool display); // of all indexes, as a display or a file device has none
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
// A whole polyline and a whole area, in the attributes given; of the fill styles
// the solid one alone draws.
int gps_polyline(int n, const Gpt* pts, int color, float width, int type);
int gps_fill_area(int n, const Gpt* pts, int color, int style);
// Begin markers and a text: a comment and the attributes. The first returns the
// points of a marker of size 1.
float gps_begin_markers(int n, int color, float width);
int gps_begin_text(const Gpt& pos, const char* str, int color, float width);
int gps_marker_path(int n, const Gpt* pts); // in points
int gps_glyph(int n, const Gpen_step* steps);
int gps_clear_region(const Glim& lim);
// A width as the attributes keep it: 0 is the width of 1.
float gps_kept_width(float width);
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
// Small pages for printers of so many dots an inch, 72 to 2400; 0: plain ones. -1, and
// nothing changed, for other numbers.
int gps_set_small(int dpi);
int gps_set_reverse(int value);

// --- HPGL (gks_hpgl.cpp), the twin of the PostScript device -------------------

// Everything that gopen_ws does for type 5. Returns 0, or -1 after a report.
int ghpgl_open_ws(const char* conn_id);
// Opens an output: "|command", "+file" (append) or a file. Null on failure.
std::FILE* ghpgl_open_file(const char* name);
int ghpgl_init();
int ghpgl_init_file();
// Ends and closes the file; -1 without one.
int ghpgl_close_file();
// For commands without decimals, which would depend on the locale.
[[gnu::format(printf, 1, 2)]] int ghpgl_printf(const char* format, ...);

// Pen moves in world coordinates, and the same in plotter units.
int ghpgl_move(float x, float y);
int ghpgl_line(float x, float y);
int ghpgl_move_abs(float x, float y);
int ghpgl_line_abs(float x, float y);
// A whole polyline and a whole area, in the attributes given; every fill style is
// drawn as solid.
int ghpgl_polyline(int n, const Gpt* pts, int color, float width, int type);
int ghpgl_fill_area(int n, const Gpt* pts, int color);
// Begin markers and a text by their attributes. The first returns the plotter
// units of a marker of size 1.
float ghpgl_begin_markers(int color, float width);
int ghpgl_begin_text(int color, float width);
int ghpgl_marker_path(int n, const Gpt* pts); // plotter units
int ghpgl_glyph(int n, const Gpen_step* steps);
// The input window round device limits.
int ghpgl_set_clip(float x0, float y0, float x1, float y1);

// State commands, written only when the state changes.
int ghpgl_set_color(int ind);
int ghpgl_set_fill_color(int ind);
int ghpgl_set_width(int ind, float width);
int ghpgl_set_type(int type);

int ghpgl_set_base_width(float width); // of a line width of 1, millimetres
int ghpgl_set_pcl(int value);          // 0 plain, 1 wrapped, 2 wrapped and rotated
int ghpgl_set_rotate(int deg);         // of the page; 90, 180 and 270 count
int ghpgl_set_scale(float scale);      // of all coordinates
