// gks_record: records what the primitives are given: in the redraw list, or on a
// metafile as its line. Of the table of gks_attr.h it takes the words alone, when it
// is compiled: the setters are above it, and gks_attr calls them. No state.

#include "gks_attr.h"
#include "gks_meta.h"

#include <algorithm>
#include <cstring>

namespace {

consteval auto words_of_attributes() {
    std::array<Gword, gattributes.size()> out{};
    std::transform(gattributes.begin(), gattributes.end(), out.begin(), [](const Gattribute& a) {
        return Gword{a.code, a.word, gcount_values(a), std::holds_alternative<Gset_point*>(a.set)};
    });
    return out;
}
constexpr auto words = words_of_attributes();

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
    const auto* row =
        std::find_if(words.begin(), words.end(), [&](const Gword& w) { return w.code == code; });
    if (row != words.end() && !row->word.empty()) {
        gmeta_attribute(*row, values);
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

float gkept_width(float width) {
    switch (gget_device()) {
    case Gdevice::postscript:
        return gps_kept_width(width);
    case Gdevice::window:
    case Gdevice::pixmap:
    case Gdevice::metafile:
    case Gdevice::hpgl:
    case Gdevice::none:
        return width;
    }
    return width;
}

int gmessage(int level, const char* text) {
    if (!gtype_is_META()) {
        gnew_obj(obj_message, level, static_cast<int>(std::strlen(text)) + 1, text);
    }
    switch (gget_device()) {
    case Gdevice::metafile:
        return gmeta_line("ME %s", text);
    case Gdevice::postscript:
        return gps_comment("%%%%Message: %s", text);
    case Gdevice::window:
    case Gdevice::pixmap:
    case Gdevice::hpgl:
    case Gdevice::none:
        return 0;
    }
    return 0;
}
