// cont_state.h: what the source files of the contour module share: the
// state, the level arithmetic and the attributes of a colour step.
#pragma once

#include "cont.h"
#include "zyrgks.h"

namespace cont {

struct State {
    // Levels. cont_value[0] unset: regular levels of `intrvl` from `cbase`.
    float cont_value[cont_max_steps + 1] = {};             // ended by missing_f
    char cont_label[cont_max_steps][cont_label_size] = {}; // text on the bar, or empty
    int num_cont = missing;                                // number of levels
    bool ascending = false;                                // explicit levels never fall
    float intrvl = missing_f;
    float base = missing_f;  // base of the intervals, as given
    float cbase = missing_f; // the base in use
    float conlo = missing_f; // lowest level
    float conhi = missing_f; // top of the highest

    // Colours.
    Gattribs fill_attrib[cont_max_steps + 1]; // ended by colour -2
    int color_num = missing;                  // number of steps
    int color_fill_set = 0;                   // 1: settled
    int fill_pat = missing;                   // one pattern for all fills
    const char* quantity = nullptr;           // its level file is "auto", or null

    // Ranges.
    float grid_min = missing_f, grid_max = missing_f;
    float bar_min = missing_f, bar_max = missing_f;
    float min_cut = missing_f, max_cut = missing_f; // values outside draw nothing
    bool levels_asked = false; // what is unset of base and interval was settled

    // How to draw.
    int cont_type = missing;
    int plt_bar = 0; // above 0 draw a bar, -2 refused
    float scale = 1.0F;
    int x_skip = 1, y_skip = 1;         // stride of numbers
    float x_off = 0.0F, y_off = 0.0F;   // their offset, fractions of the map's height
    char num_form[16] = {};             // their format, or empty
    int label_skip = 2, ext_radius = 2; // label every n-th contour; search radius of extremes
    int x_label_space = missing, y_label_space = missing;
    int max_line_fact = -2; // limit of levels in a cell
    int rot_label = 0;      // 1: labels follow the line
    int mapcon = 0;         // 1: contours in map coordinates
    int draw_grid = 0;      // 1: draw grid points

    // The bar.
    Glim bar_lim = {};    // rectangle of boxes and numbers
    float bar_inc = 0.0F; // width of a box; 0: no bar yet

    // The drawing under way.
    int con_off = 0;           // colour step in force
    Gattribs ln_cont_attr;     // line attributes
    bool index_coords = false; // points are grid indices, which never wrap

    State() noexcept;
};

State& state();

constexpr bool is_line_type(int type) {
    return type == cont_lines || type == cont_dashed || type == cont_neg_dashed;
}
constexpr bool has_lines(int type) {
    return is_line_type(type) || type == cont_fill_lines;
}

// --- Level arithmetic (cont_levl.cpp) -------------------------------------------

// The value cut to a whole number, held within a thousand million.
int whole(double value);

// Regular levels that cover a range.
struct Extent {
    float lo, hi; // lowest level, top of the highest
    int num;      // levels between
};
Extent regular_extent(float low, float high, float base, float intrvl);

// Reads the resource con_interval when no interval is set.
void ask_interval(State& s);

// Fixes the levels that the bar shows from what is set and from the resources
// con_interval and con_base. Returns whether they make a bar.
bool settle_bar_levels(State& s);
// From level i to the next (1e6 after the last explicit one).
float level_width(const State& s, int i);

// --- The levels in force (cont.cpp) ---------------------------------------------

// Level i, and the distance to the next.
float level_at(int i);
float level_width(int i);
// Colour step of level 0, counted from `base` (missing: from the level itself).
int first_step(float base);

// Line attributes of contours and bar: `color_cont` over black or white.
void set_line_attribs();
// Name of the colour that stands out: "black" on an inverse workstation.
const char* plain_color();
// Makes `step` the step in force and sets the kernel's fill and line
// attributes. `level` decides where lines are dashed.
void use_step(int step, float level);

} // namespace cont
