// cont.h: levels and colours of values, filled and line contours of a grid,
// and the colour bar.
//
// A plotter's order: CONT_init (or, for a further frame, CONT_reset_fill_set),
// CONT_param_decode, CONT_set_values or CONT_set_fill_colors with its own
// list, CONT_set_type, CONT_set_base, CONT_set_intrvl, then drawing. Levels are
// either explicit, a list of values, or regular, a base and an interval with
// the colours repeating cyclically.
#pragma once

#include "near_word.h"

#include <cstddef>
#include <memory>

namespace cont {
struct State;
}
struct Gattribs;
struct Gpt;
struct GRD_report;

constexpr int cont_max_steps = 256;         // levels and colour steps
constexpr std::size_t cont_label_size = 10; // text of a level on the bar, with its zero

// Plot types.
constexpr int cont_lines = 12;        // contour lines
constexpr int cont_dashed = 13;       // dashed lines
constexpr int cont_neg_dashed = 14;   // lines, dashed below zero
constexpr int cont_fill = 15;         // colour fill
constexpr int cont_fill_lines = 16;   // colour fill with lines
constexpr int cont_values = 17;       // numbers at the grid points
constexpr int cont_fill_request = 52; // stored as cont_fill

// --- Levels and colours (cont.cpp) ------------------------------------------

// Unsets type, interval, base, levels, labels, cut-offs, ranges and formats and
// frees the colours; the bar's switch and range, the value plot's offset and
// the words of plot_param about lines stay.
int CONT_init();

// Explicit levels, ascending; at most 256, ended by missing_f or `num`. Sets
// the interval and the value range from them. Returns 0; -1 when the colours
// are settled or there is no value.
int CONT_set_values(const float* values, int num);
// Forgets explicit levels, interval and range; regular levels stay. Returns 0.
int CONT_reset_values();
// Copies the explicit levels to `values` (room for 256) unless it is null.
// Returns their number, 0 while levels are regular.
int CONT_get_values(float* values);

int CONT_set_intrvl(float value);
float CONT_get_intrvl();
int CONT_set_base(float value);
float CONT_get_base();
// Range of the values, and a range forced on the colour bar: the maximum first.
int CONT_set_range(float max, float min);
int CONT_set_bar_range(float max, float min);
// Values above `max` or below `min` draw nothing; a missing one is left alone.
int CONT_set_cutoff(float max, float min);
int CONT_set_type(int ind);
int CONT_get_type();
// Colour bar: above 0 draw one, -2 refused by the user.
int CONT_set_bar(int value);
int CONT_get_bar();
int CONT_set_skip(int x, int y);
int CONT_set_plot_offset(float x, float y);
// One pattern for all fills, missing: each step's own.
int CONT_set_fill_pat(int type);
int CONT_get_fill_pat();
int CONT_set_label_type(int skip, int rad);
int CONT_set_label_space(int x, int y);
int CONT_draw_grid(int value);

// Opens the colours to be set again, by another plotter or for another frame,
// and forgets levels, interval, base and range of the last one.
int CONT_reset_fill_set();

// Colours, and with them levels, from a list such as "10:Red,Green-Blue,40:off"
// or the name of a level file.
//   string  the list; null: the colour table's fill colours, or 15 names
//   flag    0: the resource `color_fill`, if given, takes its place
// Entries: colour range "A-B", "level:attributes", "attributes"; ":la=text"
// gives the bar's label. The first setting wins until CONT_reset_fill_set.
// Returns 0, also with "CONT_set_fill_colors: Unable to read contour level
// file: %s\n" when a level file does not open (the steps stay); -1 when the
// colours are settled already or the colour table's own were taken.
int CONT_set_fill_colors(const char* string, int flag);
// What the data are that are coloured next: the name of the level file that
// "auto" of `color_fill` takes. Null: of no known quantity, "auto" is as unset.
int CONT_set_quantity(const char* quantity);
// Decodes one entry and appends its steps. Returns 0; -1 when the entry is
// "end" or the list is full.
int CONT_decode_fill_color(const char* str);
// Clears the attributes of a step.
int CONT_fill_attrib_init(Gattribs* attrib);
// Takes steps from an array that a colour below -1 ends; an empty one becomes
// one step of colour 1.
int CONT_set_fill_attribs(const Gattribs* attrib);
// Attributes of a step. Returns 0; -1 with colour -1 when there is none.
int CONT_get_fill_attrib_ind(int ind, Gattribs* attrib);

// Attributes of the step that `value` lies in; colour -1: the value is not
// drawn. Called for every radar bin. Returns 0; -1 when no step holds the value.
int CONT_get_fill_attrib(float value, Gattribs* attrib);

// A round interval that divides the range into some `num` steps.
float CONT_calc_intrvl(float max, float min, int num);
// Fixes the lowest and highest level and their number from the range, that of
// `grid` if none is set. Returns 0; -1 without a range.
int CONT_set_cont_ext(const GRD_report* grid);

// Takes the contour words of the resource `plot_param`.
int CONT_param_decode();
// Adds the words of `plot_param` that it takes.
void CONT_add_param_words(KnownWords* known);

// --- Drawing (cont_draw.cpp) ------------------------------------------------

// Draws a grid by the plot type. Returns 0; -1 when its points have no place
// on the map or its values no range.
int CONT_draw_contour(const GRD_report* grid);
// One filled polygon (types 15, 16) or one line of two points (12 to 14),
// split or repeated where it crosses the edge of a map that wraps round.
// Returns 0; -1 with nothing drawn when the current step's colour is -1.
int CONT_draw_lines(int type, int num_pt, const Gpt* pts);

// --- Colour bar (cont_bar.cpp) ----------------------------------------------

// Draws the bar below the viewport, with transformation 1 selected.
//   orient  1; other values have no layout
//   label   a text at the viewport's lower right corner, or empty
// Returns 0; -1 with no bar when there is no room or no levels.
int CONT_draw_bar(int orient, const char* label);
// Right end of the bar drawn last, in transformation 1; missing_f: none yet.
float CONT_get_bar_end();
// Value of the bar at a position in transformation 1, missing_f outside it.
float CONT_get_bar_value(float x, float y);
// Event callback: "f-Alt" over the bar makes that colour blink 4 times.
//   x, y  position in transformation 2
// Returns 0; -1 when the event is another or lies beside the bar.
int CONT_flash_value(const char* str, float x, float y);

// --- For a plot within a plot (cont.cpp) --------------------------------------

// Levels, colours and bar as they were when the object was made come back when
// it goes: what is drawn with levels of its own in between changes none.
class CONT_keeper {
public:
    CONT_keeper();
    ~CONT_keeper();
    CONT_keeper(const CONT_keeper&) = delete;
    CONT_keeper& operator=(const CONT_keeper&) = delete;

private:
    std::unique_ptr<cont::State> kept_;
};
