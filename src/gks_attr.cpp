// gks_attr: the table of the recorded attributes and what follows from it. No
// state.

#include "gks_attr.h"

#include "gks_meta.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::array attributes = {
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

// Calls a setter with the values of a record.
struct Play {
    const Gvalues& v;
    int operator()(Gset_number* set) const { return set(v.n[0]); }
    int operator()(Gset_real* set) const { return set(v.f[0]); }
    int operator()(Gset_point* set) const {
        const Gpt pt = {v.f[0], v.f[1]};
        return set(&pt);
    }
    int operator()(Gset_font* set) const {
        const Gfontprec font = {v.n[0], static_cast<Gtext_prec>(v.n[1])};
        return set(&font);
    }
    int operator()(Gset_align* set) const {
        const Gtext_align align = {static_cast<Gtext_hor>(v.n[0]), static_cast<Gtext_ver>(v.n[1])};
        return set(&align);
    }
    int operator()(Gset_limits* set) const {
        const Glim lim = {v.f[0], v.f[2], v.f[1], v.f[3]};
        return set(v.n[0], &lim);
    }
    int operator()(Gset_color* set) const {
        const Gcolr_rep rep = {v.f[0], v.f[1], v.f[2]};
        return set(gget_ws_id(), v.n[1], &rep);
    }
};

struct Count {
    Gcounts operator()(Gset_number*) const { return {1, 0}; }
    Gcounts operator()(Gset_real*) const { return {0, 1}; }
    Gcounts operator()(Gset_point*) const { return {0, 2}; }
    Gcounts operator()(Gset_font*) const { return {2, 0}; }
    Gcounts operator()(Gset_align*) const { return {2, 0}; }
    Gcounts operator()(Gset_limits*) const { return {1, 4}; }
    Gcounts operator()(Gset_color*) const { return {2, 3}; }
};

// Plays a record of the list, whose data was copied byte by byte.
struct PlayRecord {
    const drawobj& record;
    template <typename T> T data() const {
        T value{};
        if (record.data != nullptr) {
            std::memcpy(&value, record.data, sizeof value);
        }
        return value;
    }
    int operator()(Gset_number* set) const { return set(record.values); }
    int operator()(Gset_real* set) const { return set(data<float>()); }
    int operator()(Gset_point* set) const { return with<Gpt>(set); }
    int operator()(Gset_font* set) const { return with<Gfontprec>(set); }
    int operator()(Gset_align* set) const { return with<Gtext_align>(set); }
    int operator()(Gset_limits* set) const {
        const auto lim = data<Glim>();
        return set(record.values, &lim);
    }
    int operator()(Gset_color* set) const {
        const auto rep = data<Gcolr_rep>();
        return set(gget_ws_id(), record.values, &rep);
    }

private:
    template <typename T> int with(int (*set)(const T*)) const {
        const T value = data<T>();
        return set(&value);
    }
};

// Where settings go.
enum class Way { show, keep, write };

Way way() {
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return Way::show;
    case Gdevice::metafile:
        return Way::write;
    case Gdevice::postscript:
    case Gdevice::hpgl:
    case Gdevice::none:
        return Way::keep;
    }
    return Way::keep;
}

void write(Gobj code, const Gvalues& values) {
    const Gattribute* attribute = gfind_attribute(code);
    if (attribute != nullptr && !attribute->word.empty()) {
        gmeta_attribute(*attribute, values);
    }
}

// `data` as the list keeps it, null for a number alone.
bool record(Gobj code, int n, int size, const void* data, const Gvalues& values) {
    const Way here = way();
    if (here == Way::write) {
        write(code, values);
    } else {
        gnew_obj(code, n, size, data);
    }
    return here == Way::show;
}

} // namespace

const Gattribute* gfind_attribute(int code) {
    const auto* row = std::find_if(attributes.begin(), attributes.end(),
                                   [&](const Gattribute& a) { return a.code == code; });
    return row != attributes.end() ? row : nullptr;
}

const Gattribute* gfind_attribute(std::string_view word) {
    const auto* row = std::find_if(attributes.begin(), attributes.end(), [&](const Gattribute& a) {
        return a.read != Gread::unknown && a.word == word;
    });
    return row != attributes.end() ? row : nullptr;
}

Gcounts gcount_values(const Gattribute& attribute) {
    return std::visit(Count{}, attribute.set);
}

int gplay_attribute(const Gattribute& attribute, const Gvalues& values) {
    return std::visit(Play{values}, attribute.set);
}

int gplay_record(const Gattribute& attribute, const drawobj& record) {
    if (record.data == nullptr && !std::holds_alternative<Gset_number*>(attribute.set)) {
        return -1;
    }
    return std::visit(PlayRecord{record}, attribute.set);
}

bool grecord(Gobj code, int n) {
    return record(code, n, 0, nullptr, {{n}, {}});
}

bool grecord(Gobj code, float f) {
    return record(code, 1, sizeof f, &f, {{}, {f}});
}

bool grecord(Gobj code, const Gpt& pt) {
    return record(code, 1, sizeof pt, &pt,
                  {
                      {    },
                      { pt.x, pt.y}
    });
}

bool grecord(Gobj code, const Gfontprec& font) {
    return record(code, 1, sizeof font, &font,
                  {
                      {font.font,               font.prec},
                      {                       }
    });
}

bool grecord(Gobj code, const Gtext_align& align) {
    return record(code, 1, sizeof align, &align,
                  {
                      {align.hor,               align.ver},
                      {                       }
    });
}

bool grecord(Gobj code, int n, const Glim& lim) {
    return record(code, n, sizeof lim, &lim,
                  {
                      {n         },
                      { lim.x_min, lim.y_min, lim.x_max, lim.y_max}
    });
}

bool grecord(Gobj code, int ws_id, int ind, const Gcolr_rep& rep) {
    return record(code, ind, sizeof rep, &rep,
                  {
                      {ws_id,      ind     },
                      { rep.red, rep.green, rep.blue}
    });
}
