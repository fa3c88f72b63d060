// gks_draw.h: all that the kernel draws on a display (workstation types 1 and 6),
// in pixels, Y down, on the drawable in force. The primitives know a display by
// these calls alone; gks_xdraw and gks_xcolr make them with Xlib, whose types
// stay there.
//
// There are four pens, one for each kind of figure, which keep their look until
// it is set anew; all four share the clip. Without a display every call changes
// nothing.
#pragma once

#include "gks.h"

#include <array>
#include <cstdint>
#include <string_view>

struct Gpixel {
    std::int16_t x, y;
};
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
void gdraw_clear(const Grectangle& rect); // in the background

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
