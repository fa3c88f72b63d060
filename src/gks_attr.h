// gks_attr.h: the recorded attributes: settings that the redraw list and a text
// metafile keep. One table says of each its object code, its word in a metafile
// and its setter, whose signature says which values it has; recording, writing,
// reading and replay follow from it.
#pragma once

#include "gks.h"

#include <array>
#include <string_view>
#include <variant>

// Setters by the values they take.
using Gset_number = int(int n);
using Gset_real = int(float f);
using Gset_point = int(const Gpt* pt);
using Gset_font = int(const Gfontprec* font);
using Gset_align = int(const Gtext_align* align);
using Gset_limits = int(int n, const Glim* lim);
using Gset_color = int(int ws_id, int ind, const Gcolr_rep* rep);
using Gsetter = std::variant<Gset_number*, Gset_real*, Gset_point*, Gset_font*, Gset_align*,
                             Gset_limits*, Gset_color*>;

// How the word is taken out of a metafile.
enum class Gread { play, drop, unknown };

struct Gattribute {
    Gobj code;
    std::string_view word; // empty: not in a metafile
    Gread read;
    Gsetter set;
};

// The values of one setting, in the order of a metafile: whole numbers, then
// others. Limits run x_min, y_min, x_max, y_max there.
struct Gvalues {
    std::array<int, 2> n{};
    std::array<float, 4> f{};
};
struct Gcounts {
    int integers, reals;
};

// Null for what is no attribute.
const Gattribute* gfind_attribute(int code);
const Gattribute* gfind_attribute(std::string_view word);
Gcounts gcount_values(const Gattribute& attribute);
// Calls the setter.
int gplay_attribute(const Gattribute& attribute, const Gvalues& values);
// The same from a record of the redraw list; -1 when its data is missing.
int gplay_record(const Gattribute& attribute, const drawobj& record);

// Records a setting: on a metafile as its line, else in the redraw list. True on
// a display, whose pens are to follow; the other devices take the settings with
// each figure.
bool grecord(Gobj code, int n);
bool grecord(Gobj code, float f);
bool grecord(Gobj code, const Gpt& pt);
bool grecord(Gobj code, const Gfontprec& font);
bool grecord(Gobj code, const Gtext_align& align);
bool grecord(Gobj code, int n, const Glim& lim);
bool grecord(Gobj code, int ws_id, int ind, const Gcolr_rep& rep);

// --- Attribute state as a whole -------------------------------------------------
// A metafile and the redraw list hold only changes: both begin with the state
// in force. gput_... sends every attribute of the module as its setter does.
void gput_tran_state();
void gput_line_state();
void gput_fill_state();
void gput_marker_state();
void gput_text_state();

// An attribute that no setter is given.
constexpr int missing_index = -9999;
// A replay must leave the state as it was. `begin` sets the state aside, and
// the first setters of the replay all count; `keep` sets a copy aside; `restore`
// brings the state back.
enum class Ghold { begin, keep, restore };
void ghold_tran_state(Ghold what);
void ghold_line_state(Ghold what);
void ghold_fill_state(Ghold what);
void ghold_marker_state(Ghold what);
void ghold_text_state(Ghold what);

// All of it at once (gks_obj.cpp).
void gput_state();
void ghold_state(Ghold what);
