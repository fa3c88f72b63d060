// gks_draw.h: all that the kernel draws on a display (workstation types 1 and 6),
// in pixels, Y down, on the picture in force. The primitives, the frames and the
// capture know a display by these calls alone (gks_draw.cpp). Two sides make them:
// the X server's (gks_xdraw, gks_xcolr and gks_ximage, where Xlib's types stay)
// and the memory's (gks_mdraw). Which one is chosen when the display opens.
//
// There are four pens, one for each kind of figure, which keep their look until
// it is set anew; all four share the clip. Without a display every call changes
// nothing.
#pragma once

#include "gks.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// --- The display that is open -------------------------------------------------------

// A picture that can be drawn on: on an X server a pixmap. 0: none.
using Gpicture = unsigned long;

constexpr int default_width = 640;
constexpr int default_height = 512;
// Sides of a window and its picture. One pixel has no shape; 8192 is beyond any
// screen, and a square of it takes 256 MB.
constexpr int min_side = 2;
constexpr int max_side = 8192;

// What every display has. Closing it puts all of it back.
struct Gscreen {
    int depth = 0;
    bool true_color = false; // a pixel gives its colour, by the masks
    unsigned long red_mask = 0;
    unsigned long grn_mask = 0;
    unsigned long blu_mask = 0;
    unsigned long fore_colr = 0;
    unsigned long back_colr = 0;
    int root_width = default_width; // of the window
    int root_height = default_height;
    Gpicture base_window = 0; // what the window shows; foreign on type 6
    Gpicture draw_window = 0; // that, or a frame
};
Gscreen& gscreen();
bool gdraw_is_open();
// A side of a window held within its limits; `usual` for 0 or less.
int gwindow_side(int side, int usual);

// --- Pens and figures -----------------------------------------------------------------

struct Gpixel {
    std::int16_t x, y;
};
using Gquad = std::array<Gpixel, 4>; // the corners of an area in turn
enum class Gpen { line, marker, text, fill };

// True while a display is open and its pens are made.
bool gdraw_ready();
// `type` 0 makes the pen, 0 and 1 give it its first look; others do nothing.
void gdraw_init_pen(Gpen pen, int type);
// All four: width 0, solid, bevel joins.
void gdraw_reset_pens();

void gdraw_set_color(Gpen pen, int ind); // the pixel that the index has now
void gdraw_set_black(Gpen pen);          // the screen's own, for shadows
void gdraw_set_width(Gpen pen, float width);
void gdraw_set_dash(int type);                     // of the line pen: 1 solid, 2 to 5 dashed
void gdraw_set_fill_style(int style, int pattern); // of the fill pen
void gdraw_set_clip(const Gclip_rect& rect);

void gdraw_point(Gpen pen, Gpixel at);
void gdraw_lines(Gpen pen, int n, const Gpixel* points);
// An area with its outline, so that neighbours meet without gaps. A solid one may
// be held back until gflush_fill, since the next may hide it.
void gdraw_area(int n, const Gpixel* points, int color, bool solid);
// Solid areas of four corners, each with its colour.
struct Gcolored_quad {
    Gquad corners;
    int color;
};
void gdraw_quads(std::span<const Gcolored_quad> quads);
void gdraw_clear(const Grectangle& rect); // in the background

// --- Pictures ---------------------------------------------------------------------------

Gpicture gdraw_make_picture(int width, int height); // 0 without room for it
void gdraw_free_picture(Gpicture picture);
void gdraw_fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel);
// Copies a rectangle to the same place of another picture.
void gdraw_copy_picture(Gpicture from, Gpicture to, const Grectangle& rect);
// Lays an image (its pixels readable, its colours those of the record) over the
// picture in force, without those of the pixel `trans`. Returns 1; 0 without memory.
int gdraw_put_image(IMG_report* image, long trans, int x, int y);
// The picture in force as a record, of the size of the window. Returns 1, or 0
// after a report. `lent`: the pixels may be the picture's, for one who only reads
// them, before anything else is drawn.
int gdraw_take_image(IMG_report* image, bool lent);
// What the window shows goes, until something is shown again.
void gdraw_blank();
// A window may show its picture magnified (gzoom). The second shows a frame so, false
// when there is nothing to magnify; the third forgets it, as when the picture is gone.
bool gdraw_is_magnified();
bool gdraw_show_magnified(int frame);
void gdraw_end_magnifying();

Gpicture gget_base_window();
int gset_base_window(Gpicture id);
Gpicture gget_draw_window();       // where primitives draw
int gset_draw_window(Gpicture id); // 0: the base picture
unsigned long gget_red_mask();
unsigned long gget_grn_mask();
unsigned long gget_blu_mask();
unsigned long gget_fore_pixel();
unsigned long gget_back_pixel();
Gpicture gget_frame_id(int ind); // gks_loop.cpp
int gset_frame_id(int ind, Gpicture picture);

// --- Texts in a font of the window server -----------------------------------------

struct Gstring_size {
    int width, ascent, descent;
};
// Takes a font of the server for texts: -1 if there is none of that name.
int gdraw_load_font(const char* name);
void gdraw_free_font();
// False without such a font: texts are strokes.
bool gdraw_measure(std::string_view text, Gstring_size* size);
void gdraw_string(int x, int y, std::string_view text);

// --- Colours (gks_xcolr) ------------------------------------------------------------

// Components as the window system counts them, to 65535.
struct Gcolr_levels {
    std::uint16_t red, grn, blu;
};
// A writable cell, and its colour. False when there are none.
bool gdraw_take_cell(int* pixel);
void gdraw_store_cell(int pixel, const Gcolr_levels& levels);
// The pixel of a shared cell; `otherwise` if the server has no more.
int gdraw_share_pixel(const Gcolr_levels& levels, int otherwise);
// The background's: takes the levels wanted, gives those that the screen shows.
int gdraw_share_levels(Gcolr_levels* levels);
Gcolr_levels gdraw_screen_levels(bool white);                   // of its black or white pixel
bool gdraw_parse_color(const char* text, Gcolr_levels* levels); // a name of the server

// The display's setting of a name for this program; null if there is none.
const char* gdraw_default(const char* name);

// --- Facts that every display draws by ----------------------------------------------

// Lengths on and off of a line type, pixels; count 0 for a type without dashes.
struct Gdash {
    int count;
    std::array<char, 4> lengths;
};
Gdash gline_dash(int type);

constexpr int num_patterns = 20;
constexpr int pattern_size = 8;
// Rows of a fill pattern from the top, the lowest bit leftmost.
const std::array<unsigned char, pattern_size>& gfill_pattern(int ind);

// --- The sides --------------------------------------------------------------------------

// What a kind of display does for the calls above, which see to the rest: the area
// held back, true colours, the checks. A method is called while the display is open.
class Gdisplay {
public:
    Gdisplay() = default;
    Gdisplay(const Gdisplay&) = delete;
    Gdisplay& operator=(const Gdisplay&) = delete;
    virtual ~Gdisplay() = default;

    [[nodiscard]] virtual bool has_pen(Gpen pen) const = 0;
    virtual void init_pen(Gpen pen, int type) = 0;
    virtual void reset_pens() = 0;
    virtual void set_color(Gpen pen, int ind) = 0;
    virtual void set_black(Gpen pen) = 0;
    virtual void set_width(Gpen pen, int width) = 0;
    virtual void set_dash(int type) = 0;
    virtual void set_fill_style(int style, int pattern) = 0;
    virtual void set_clip(const Gclip_rect& rect) = 0;

    virtual void point(Gpen pen, Gpixel at) = 0;
    virtual void lines(Gpen pen, int n, const Gpixel* points) = 0;
    virtual void area(int n, const Gpixel* points, int color) = 0;
    virtual void quads(std::span<const Gcolored_quad> quads);

    virtual Gpicture make_picture(int width, int height) = 0;
    virtual void free_picture(Gpicture picture) = 0;
    virtual void fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel) = 0;
    virtual void copy_picture(Gpicture from, Gpicture to, const Grectangle& rect) = 0;
    virtual int put_image(IMG_report* image, long trans, int x, int y) = 0;
    virtual int take_image(IMG_report* image, bool lent) = 0;
    [[nodiscard]] virtual bool keeps_frames() const = 0;

    // What cannot magnify does none of it.
    [[nodiscard]] virtual bool is_magnified() const { return false; }
    virtual bool show_magnified(int /*frame*/) { return false; }
    virtual void end_magnifying() {}
    // The window shows the base picture, or nothing.
    virtual void show() = 0;
    virtual void blank() = 0;
    virtual void flush() = 0;
    virtual void sync() = 0;
    virtual void close() = 0;

    virtual bool parse_color(const char* text, Gcolr_levels* levels) = 0;
    // Of a display without true colours.
    virtual bool take_cell(int* pixel) = 0;
    virtual void store_cell(int pixel, const Gcolr_levels& levels) = 0;
    virtual int share_pixel(const Gcolr_levels& levels, int otherwise) = 0;
    virtual int share_levels(Gcolr_levels* levels) = 0;
    virtual Gcolr_levels screen_levels(bool white) = 0;

    virtual const char* default_of(const char* name) = 0;
    virtual int load_font(const char* name) = 0;
    virtual void free_font() = 0;
    virtual bool measure(std::string_view text, Gstring_size* size) = 0;
    virtual void string(int x, int y, std::string_view text) = 0;
};

// Puts a side in force; null when its display has closed.
void gdraw_use(Gdisplay* side);

// --- The display in memory (gks_mdraw.cpp) ------------------------------------------------

// Whether the connection text names it.
bool gnames_memory(const char* conn_id);
// Opens it as a window of the geometry asked for. Returns 0, or -1 after a report.
int gopen_memory();
