// zyrgks.h: what the plot layer draws with: the attribute record and its small
// language, the colour table, and the GPH_ calls over the kernel (gks.h).
#pragma once

#include "gks.h"
#include "zyr.h"

// --- Attributes and colours (colors.cpp) --------------------------------------

// How something is to look. Unset fields leave the kernel's state alone.
struct Gattribs {
    int color = missing;      // colour index; negative sets none, -1 draws nothing
    float width = missing_f;  // line width
    float height = missing_f; // text height or marker size, times the caller's size
    float expan = missing_f;  // text expansion
    int style = missing;      // line type or marker type
    int fill_pat = missing;   // 0 solid, else a hatch index 1 to 19
    int font = missing;       // place in the font list, from 1
};

// Reads the colour table: `filename`, else resource `color_table`, else
// "zyr.clr", each a list split at commas. A missing file is passed over.
int CLR_read_table(const char* filename);
int CLR_clear_table();
// Takes the next slot and gives it to the kernel. Returns its index, -1 when full.
int CLR_add(const char* name, float red, float grn, float blu);
int CLR_get_num_fill();
int CLR_get_num();
// Index of a colour name, "#RRGGBB", "#rrrgggbbb" (decimal) or number. -1 no
// colour ("none", "off", "back", unknown), -2 for "end", print colours 500 up.
int CLR_get_ind(const char* name);
// The same without the warning of a name that is none.
int CLR_look_up(const char* name);
// Warns of colours in the settings that are none. Call it after CLR_read_table.
int CLR_check_settings();
// An index outside the table reads the last entry.
const char* CLR_get_name(int ind);
int CLR_get_rgb(int ind, float* red, float* grn, float* blu);

int ATTR_parse_fill_pat(const char* str);
// Whether the text is a pattern: a word or a number.
bool ATTR_is_fill_pat(const char* str);
bool ATTR_is_marker(const char* str);
int ATTR_parse_marker(const char* str);
// "red:wi=2:st=dsh"; fields that are not named stay as they are.
int ATTRIB_parse(const char* str, Gattribs* attrib);
int ATTRIB_init(Gattribs* attrib);
// Copies every field that is set in `attr2` to `attr1`.
int ATTRIB_update(Gattribs* attr1, const Gattribs* attr2);
// Parses `def`, then the resource `resrc` over it. 1 if the resource exists.
int ATTRIB_get(const char* resrc, const char* def, Gattribs* attrib);
int ATTRIB_print(const Gattribs* attrib);

// --- Opening, page and panel (gph_tool.cpp) -----------------------------------

// The whole opening: device from the resource, colour table, kernel, page.
//   asp_ratio  width over height of the plot area; 0 takes the panel's shape
//   offset     in: margins as fractions of the panel (left x_min, right x_max,
//              bottom y_min, top y_max); out: the plot area, NDC
// Ends the program with 4 when the device cannot be opened.
int GPH_setup(int* ws_id, Gws_type* ws_type, float asp_ratio, Glim* offset);
int GPH_begin(int* ws_id, const char* conn_id, Gws_type* ws_type);
// Returns 0; -1 when not all of the device's file could be written.
int GPH_end(int ws_id);
// A new page on the open workstation; then as GPH_panel.
int GPH_reset(int* ws_id, Gws_type* ws_type, float asp_ratio, Glim* offset);
int GPH_panel(int* ws_id, Gws_type* ws_type, float asp_ratio, Glim* offset);
// Holds a window until the user ends it; returns at once on a file device.
int GPH_hold(int ws_id);
int GPH_set_win_title();
// The panel: sizes and offsets as fractions of the page.
int GPH_set_view_size(float sizex, float sizey, float offx, float offy);
int GPH_get_view_size(Glim* lim); // in NDC

// --- Drawing helpers (gph_tool.cpp) -------------------------------------------

int GPH_trans(int n);
int GPH_view(int n, const Glim* lim);
int GPH_win(int n, const Glim* lim);
int GPH_get_view(int n, Glim* lim);
int GPH_get_win(int n, Glim* lim);

// Apply the fields that are set; null sets the plain look.
int GPH_line_attr(const Gattribs* attrib);
int GPH_fill_attr(const Gattribs* attrib);
int GPH_mark_attr(const Gattribs* attrib, float scale);
int GPH_text_attr(const Gattribs* attrib, float scale); // -1 for null
int GPH_set_color(int ind, float red, float grn, float blu);
int GPH_text_font(const char* name); // null: the default font
int GPH_set_def_font(const char* name);
int GPH_text_align(int hor, int vert); // a Gtext_hor and a Gtext_ver
int GPH_get_text_align(int* hor, int* vert);
int GPH_text_rotate(float deg); // clockwise

int GPH_line(float x1, float y1, float x2, float y2);
int GPH_mark(float x, float y);
int GPH_border(const Glim* lim);
int GPH_rect(float x1, float y1, float x2, float y2);
int GPH_frect(float x1, float y1, float x2, float y2);
int GPH_circle(float x, float y, float r);
int GPH_fcircle(float x, float y, float r);
int GPH_pprint(const Gpt* pos, const char* str);
// Texts longer than 59 and 99 characters are cut.
[[gnu::format(printf, 2, 3)]] int GPH_pprintf(const Gpt* pos, const char* format, ...);
[[gnu::format(printf, 3, 4)]] int GPH_printf(float x, float y, const char* format, ...);
