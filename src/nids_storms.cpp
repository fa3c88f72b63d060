// nids_storms: the storm symbols of a NIDS product on the map. No state of its own.
#include "nids_storms.h"

#include "map.h"
#include "maptran.h"
#include "plt_tally.h"
#include "rad_fill.h"
#include "units.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// Bounds what a damaged file can ask for; the largest product has some thousands.
constexpr std::size_t most_symbols = 20000;

constexpr float mark_scale = 1.5F; // of a storm, as on the pages
constexpr float farthest_km = 1000.0F;

enum Marker {
    marker_plus = 2,
    marker_star = 3,
    marker_circle = 4,
    marker_cross = 5,
    marker_square = 6,
    marker_triangle = 9 // on its tip
};

// How a kind of symbol is marked. Kinds without a row are drawn by routines.
struct Look {
    const char* color; // null: of the data
    NidsSymbol kind;
    int marker;
    float size;
    float width;
};
constexpr Look looks[] = {
    {nullptr,  NidsSymbol::cell,             marker_circle,   0.7F, 1},
    {nullptr,  NidsSymbol::cell,             marker_cross,    0.5F, 1},
    {"yellow", NidsSymbol::mesocyclone,      marker_circle,   1.0F, 2},
    {"yellow", NidsSymbol::low_mesocyclone,  marker_circle,   1.0F, 4},
    {"yellow", NidsSymbol::weak_mesocyclone, marker_circle,   0.7F, 1},
    {"yellow", NidsSymbol::shear,            marker_square,   0.7F, 1},
    {"red",    NidsSymbol::vortex,           marker_triangle, 1.0F, 2},
    {"lred",   NidsSymbol::high_vortex,      marker_triangle, 0.8F, 1},
    {nullptr,  NidsSymbol::past,             marker_square,   0.2F, 1},
    {nullptr,  NidsSymbol::forecast,         marker_plus,     0.4F, 1},
};

// Whether a symbol begins a storm; the others belong to the one before them.
bool is_storm(NidsSymbol kind) {
    return kind < NidsSymbol::name;
}

bool is_strong(const NIDS_symbol& symbol) {
    constexpr int severe_strong = 49; // percent, above it, as in the tables
    const bool weak = symbol.kind == NidsSymbol::cell || symbol.kind == NidsSymbol::hail;
    return !weak || symbol.shail > severe_strong;
}

struct Drawing {
    const NidsStormFrame& frame;
    Gpt site;
    float step; // of texts from their mark
    bool any = false;
    const NIDS_symbol* mark = nullptr;  // of the storm met last
    const NIDS_symbol* apart = nullptr; // the last name that is apart from its mark

    // Image of a place by its kilometres east and north of the radar.
    [[nodiscard]] Gpt image(float x, float y) const {
        const float km = std::hypot(x, y);
        const auto azimuth = static_cast<float>(std::atan2(x, y) / deg_to_rad);
        Gpt p{missing_f, missing_f};
        if (km > farthest_km || frame.plot.offset(site.x, site.y, azimuth, km, &p.x, &p.y) == 0) {
            p = {missing_f, missing_f};
        }
        return p;
    }
};

void draw_mark(Drawing& drawing, Gpt p, const Look& look) {
    const Gattribs& data = drawing.frame.data;
    const int color = look.color == nullptr ? data.color : CLR_get_ind(look.color);
    if (color < 0) {
        return;
    }
    gset_marker_colr_ind(color);
    gset_marker_width(look.width);
    gset_marker_type(look.marker);
    gset_marker_size(look.size * mark_scale * drawing.frame.scale);
    GPH_mark(p.x, p.y);
    ++PLT_get_tally().figures;
    drawing.any = true;
}

void draw_marks(Drawing& drawing, NidsSymbol kind, Gpt p) {
    for (const Look& look : looks) {
        if (look.kind == kind) {
            draw_mark(drawing, p, look);
        }
    }
}

void draw_text(Drawing& drawing, Gpt p, float side, const char* text) {
    const Gattribs& data = drawing.frame.data;
    const Gpt at = {p.x + side * drawing.step, p.y + drawing.step};
    GPH_text_attr(&data, 2 * drawing.step);
    GPH_text_align(side < 0 ? GRIGHT_HOR : GLEFT_HOR, GBASE_VERT);
    if (data.color >= 0 && rad_is_place(p)) {
        gtext(&at, text);
        ++PLT_get_tally().figures;
        drawing.any = true;
    }
}

// A mark by the most that the hail is likely to be, and its size. Whether there is
// one.
bool draw_hail(Drawing& drawing, const NIDS_symbol& symbol, Gpt p) {
    constexpr Look severe = {"green", NidsSymbol::hail, marker_star, 1.0F, 2};
    constexpr Look likely = {"green", NidsSymbol::hail, marker_cross, 1.0F, 2};
    constexpr Look hail = {"green", NidsSymbol::hail, marker_plus, 0.7F, 1};
    if (symbol.shail < 50 && symbol.hail < 50) {
        return false;
    }
    draw_mark(drawing, p, symbol.shail >= 75 ? severe : symbol.shail >= 50 ? likely : hail);
    if (symbol.size > 0) {
        char text[16] = "";
        std::snprintf(text, sizeof text, "%.0f\"", static_cast<double>(symbol.size));
        draw_text(drawing, p, 1.0F, text);
    }
    return true;
}

void draw_line(Drawing& drawing, const NIDS_symbol& symbol, Gpt from) {
    const Gpt to = drawing.image(symbol.x2, symbol.y2);
    if (drawing.frame.data.color < 0 || !rad_is_place(to)) {
        return;
    }
    constexpr int solid = 1;
    constexpr int dotted = 3;
    GPH_line_attr(&drawing.frame.data);
    gset_linetype(symbol.kind == NidsSymbol::past_line ? dotted : solid);
    GPH_line(from.x, from.y, to.x, to.y);
    gset_linetype(solid);
    drawing.any = true;
}

// The extent of a rotation or of a forecast, as wide as it is on the earth.
void draw_circle(Drawing& drawing, const NIDS_symbol& symbol, Gpt p) {
    constexpr float widest_km = 100.0F;
    const int color =
        symbol.kind == NidsSymbol::circle ? drawing.frame.data.color : CLR_get_ind("yellow");
    if (symbol.radius > 0 && symbol.radius <= widest_km && color >= 0) {
        GPH_line_attr(&drawing.frame.data);
        gset_line_colr_ind(color);
        MAP_draw_circle(p.x, p.y, symbol.radius);
        drawing.any = true;
    }
}

// Texts of a file are untrusted: of a name only what can be seen is drawn.
void draw_name(Drawing& drawing, const NIDS_symbol& symbol, Gpt p) {
    char text[sizeof symbol.name + 1] = "";
    std::size_t n = 0;
    for (const char c : symbol.name) {
        if (c > ' ' && c <= '~') {
            text[n++] = c;
        }
    }
    if (n > 0) {
        draw_text(drawing, p, -1.0F, text);
    }
}

// The name of a storm. Where it is apart from what it names, as that of a vortex,
// the storm is there, which is marked once for all of its vortices.
void draw_named(Drawing& drawing, const NIDS_symbol& symbol, Gpt p) {
    constexpr float near_km = 0.5F;
    const auto is_at = [&symbol](const NIDS_symbol* other) {
        return other != nullptr && std::hypot(symbol.x - other->x, symbol.y - other->y) < near_km;
    };
    if (drawing.mark != nullptr && !is_at(drawing.mark)) {
        if (is_at(drawing.apart) &&
            std::strncmp(symbol.name, drawing.apart->name, sizeof symbol.name) == 0) {
            return;
        }
        drawing.apart = &symbol;
        draw_marks(drawing, NidsSymbol::cell, p);
    }
    draw_name(drawing, symbol, p);
}

void draw_symbol(Drawing& drawing, const NIDS_symbol& symbol) {
    const Gpt p = drawing.image(symbol.x, symbol.y);
    if (!rad_is_place(p)) {
        return;
    }
    switch (symbol.kind) {
    case NidsSymbol::past_line:
    case NidsSymbol::forecast_line:
        draw_line(drawing, symbol, p);
        return;
    case NidsSymbol::name:
        draw_named(drawing, symbol, p);
        return;
    default:
        break;
    }
    NidsSymbol kind = symbol.kind;
    if (kind == NidsSymbol::hail || kind == NidsSymbol::cell) {
        // A storm without hail is marked as any.
        kind = draw_hail(drawing, symbol, p) ? NidsSymbol::hail : NidsSymbol::cell;
    }
    draw_marks(drawing, kind, p);
    draw_circle(drawing, symbol, p);
    if (is_storm(kind)) {
        draw_name(drawing, symbol, p);
    }
    if (symbol.top > 0) {
        char text[16] = "";
        std::snprintf(text, sizeof text, "%.0f", static_cast<double>(symbol.top));
        draw_text(drawing, p, 1.0F, text);
    }
}

void keep(const NIDS_symbol& symbol, NidsStorms* storms) {
    if (storms->symbols.size() < most_symbols) {
        storms->symbols.push_back(symbol);
    } else if (!storms->full) {
        storms->full = true;
        MESS_print(mess_warn, "NIDS_plot: More storm symbols than any product has, cut\n");
    }
}

} // namespace

void nids_take_storms(std::FILE* ifile, NidsStorms* storms) {
    NIDS_symbol symbol;
    while (NIDS_get_symbol(ifile, &symbol) > 0) {
        keep(symbol, storms);
    }
}

bool nids_take_storm_text(const NIDS_text_data& text, NidsStorms* storms) {
    if (storms->symbols.empty()) {
        return false;
    }
    NIDS_symbol symbol;
    symbol.kind = NidsSymbol::name;
    constexpr float quarter_km = 0.25F;
    symbol.x = quarter_km * text.x;
    symbol.y = quarter_km * text.y;
    copy_text(symbol.name, sizeof symbol.name, text.data);
    keep(symbol, storms);
    return true;
}

bool nids_draw_storms(const NidsStormFrame& frame, const NidsStorms& storms) {
    const Domain& own = frame.info->domain;
    Drawing drawing{
        frame, {missing_f, missing_f},
         MAP_get_vert() * 0.01F * frame.scale
    };
    if (frame.plot.tran(own.clat, own.clon, &drawing.site.x, &drawing.site.y) == 0) {
        return false;
    }
    int count = 0;
    bool wanted = true;
    for (const NIDS_symbol& symbol : storms.symbols) {
        if (is_storm(symbol.kind)) {
            drawing.mark = &symbol;
            ++count;
            const bool among = frame.num_plt != 0 && count <= frame.num_plt;
            const bool strong = frame.strong && is_strong(symbol);
            wanted = among || strong || (frame.num_plt == 0 && !frame.strong);
        }
        if (wanted) {
            draw_symbol(drawing, symbol);
        }
    }
    return drawing.any;
}
