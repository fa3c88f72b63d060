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

inline constexpr std::array gattributes = {
    Gattribute{obj_ws_vp,          "WS_VP",   Gread::unknown, gset_ws_vp           },
    Gattribute{obj_ws_win,         "WS_WIN",  Gread::drop,    gset_ws_win          },
    Gattribute{obj_norm_tran,      "TR",      Gread::play,    gsel_norm_tran       },
    Gattribute{obj_vp,             "VP",      Gread::play,    gset_vp              },
    Gattribute{obj_win,            "WIN",     Gread::play,    gset_win             },
    Gattribute{obj_colr_rep,       "CLR",     Gread::play,    gset_colr_rep        },
    Gattribute{obj_linetype,       "PL_TYPE", Gread::play,    gset_linetype        },
    Gattribute{obj_linewidth,      "PL_LW",   Gread::play,    gset_linewidth       },
    Gattribute{obj_line_colr,      "PL_CLR",  Gread::play,    gset_line_colr_ind   },
    Gattribute{obj_line_bold,      "",        Gread::unknown, gset_line_print_bold },
    Gattribute{obj_marker_type,    "PM_TYPE", Gread::play,    gset_marker_type     },
    Gattribute{obj_marker_size,    "PM_SIZE", Gread::play,    gset_marker_size     },
    Gattribute{obj_marker_colr,    "PM_CLR",  Gread::play,    gset_marker_colr_ind },
    Gattribute{obj_marker_width,   "PM_WDTH", Gread::play,    gset_marker_width    },
    Gattribute{obj_space,          "TE_SPC",  Gread::play,    gset_space           },
    Gattribute{obj_char_space,     "TE_CSPC", Gread::play,    gset_char_space      },
    Gattribute{obj_expan,          "TE_EXP",  Gread::play,    gset_expan           },
    Gattribute{obj_text_colr,      "TE_CLR",  Gread::play,    gset_text_colr_ind   },
    Gattribute{obj_char_ht,        "TE_HGHT", Gread::play,    gset_char_ht         },
    Gattribute{obj_char_up,        "TE_UP",   Gread::play,    gset_char_up_vec     },
    Gattribute{obj_fontprec,       "TE_FNT",  Gread::play,    gset_fontprec        },
    Gattribute{obj_text_align,     "TE_ALGN", Gread::play,    gset_text_align      },
    Gattribute{obj_text_width,     "TE_WDTH", Gread::play,    gset_text_width      },
    Gattribute{obj_fill_int_style, "FA_INT",  Gread::play,    gset_fill_int_style  },
    Gattribute{obj_fill_style_ind, "FA_ST",   Gread::play,    gset_fill_style_ind  },
    Gattribute{obj_fill_colr,      "FA_CLR",  Gread::play,    gset_fill_colr_ind   },
    Gattribute{obj_fill_solid,     "",        Gread::unknown, gset_fill_print_solid},
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

// By the setter's signature.
constexpr Gcounts gcount_values(const Gattribute& attribute) {
    struct Count {
        constexpr Gcounts operator()(Gset_number*) const { return {1, 0}; }
        constexpr Gcounts operator()(Gset_real*) const { return {0, 1}; }
        constexpr Gcounts operator()(Gset_point*) const { return {0, 2}; }
        constexpr Gcounts operator()(Gset_font*) const { return {2, 0}; }
        constexpr Gcounts operator()(Gset_align*) const { return {2, 0}; }
        constexpr Gcounts operator()(Gset_limits*) const { return {1, 4}; }
        constexpr Gcounts operator()(Gset_color*) const { return {2, 3}; }
    };
    return std::visit(Count{}, attribute.set);
}

// --- Playing (gks_attr.cpp) -----------------------------------------------------

// Null for what is no attribute.
const Gattribute* gfind_attribute(int code);
const Gattribute* gfind_attribute(std::string_view word);
// Calls the setter.
int gplay_attribute(const Gattribute& attribute, const Gvalues& values);
// The same from a record of the redraw list; -1 when its data is missing.
int gplay_record(const Gattribute& attribute, const drawobj& record);

// --- Recording (gks_record.cpp) -------------------------------------------------

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

// All of it at once (gks_plot.cpp).
void gput_state();
void ghold_state(Ghold what);
