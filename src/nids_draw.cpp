// nids_draw: the symbology packets of a NIDS product. Radials and raster rows
// become filled polygons, a radial or row at a time; vectors, wind barbs and
// texts are drawn as they are read. No state of its own.
#include "nids_draw.h"

#include "files.h"
#include "nids_storms.h"
#include "nids_tables.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_fill.h"
#include "windbarb.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

constexpr int raster_chunk = 10;   // cells of a raster figure on the product's own projection
constexpr float barb_size = 20.0F; // plot units
constexpr float text_height = 8.0F;
constexpr double mm_per_inch = 25.4; // the document's decibels are of millimetres

// These take the figures that they draw off `room`, and end where none is left.
void draw_radials(const NIDS_frame& frame, RadFills& fills, long& room) {
    RadStrip strip(frame.own, frame.plot);
    RadFan fan(frame.own, frame.info->domain.clat, frame.info->domain.clon);
    RadByteLooks looks; // of the levels of this packet
    const auto find = [&](std::uint8_t level) {
        const Gattribs* attrib = fills.get(NIDS_bin_value(level));
        return attrib != nullptr ? strip.look_of(*attrib) : RadStrip::no_look;
    };
    float sangle = 0;
    float dangle = 0;
    while (room > 0 && NIDS_get_radial(frame.ifile, &sangle, &dangle) > 0) {
        PLT_tally_radial(sangle, dangle);
        const RadEdges edges = nids_radial_edges(frame, fan, sangle, dangle);
        strip.begin();
        int bin = 0;
        NIDS_data data;
        while (NIDS_get_data(frame.ifile, &data) > 0) {
            strip.make_room(edges);
            const int run = static_cast<int>(data.run);
            const Gattribs* attrib = fills.get(data.val);
            if (attrib != nullptr) {
                const int start = std::max(bin, frame.clutter_rad);
                room -= strip.add(start, bin + run - start, 1, *attrib);
            }
            bin += run;
            // Those of a digital radial that are at hand go the short way.
            const auto levels = NIDS_take_bins();
            const auto look = [&](std::uint8_t level) { return looks.get(level, find); };
            room -= strip.add_bytes(bin, levels, frame.clutter_rad, look).drawn;
            bin += static_cast<int>(levels.size());
        }
        strip.draw(edges);
    }
}

// The cells of one row go onto the page and into the grid file, if any.
void draw_row(const NIDS_frame& frame, RadFills& fills, std::FILE* grid, const RadEdges& edges,
              RadStrip& strip, long& room) {
    strip.begin();
    const int chunk = strip.same() ? raster_chunk : 1;
    const bool decibel = nids_product(frame.info->code).decibel;
    int column = 0;
    NIDS_data data;
    while (NIDS_get_data(frame.ifile, &data) > 0) {
        strip.make_room(edges);
        const int run = static_cast<int>(data.run);
        const float value = decibel ? nids_cell_value(frame, data.val) : data.val;
        for (int i = 0; grid != nullptr && i < run; ++i) {
            std::fprintf(grid, "%f\n", static_cast<double>(value));
        }
        const Gattribs* attrib = fills.get(value);
        if (attrib != nullptr) {
            room -= strip.add(column, run, chunk, *attrib);
        }
        room -= grid != nullptr ? run : 0;
        column += run;
    }
    strip.draw(edges);
}

// The upper left corner of a raster, and the size of its cells.
struct RasterPlace {
    double left, top, cell;
};

// Exactly, the radar is where the middle cells meet; on the grid of precipitation
// processing, whose lines lie at whole cells from the pole, in the middle cell.
RasterPlace raster_place(const NIDS_frame& frame) {
    const NIDS_info& info = *frame.info;
    const double d = info.domain.dx;
    if (!frame.exact || info.src > nids_max_site) {
        return {frame.site.x - d * (info.nx - 1) / 2, frame.site.y + d * (info.ny - 1) / 2, d};
    }
    if (nids_product(info.code).map != NidsMap::precip_grid) {
        return {frame.site.x - d * info.nx / 2, frame.site.y + d * info.ny / 2, d};
    }
    constexpr double cell = 0.047625; // a fortieth of the coarse grid's 190.5 km
    constexpr int north_pole = 90;
    Gpt pole = {};
    frame.own.tran(north_pole, info.domain.plon, &pole.x, &pole.y);
    const double column = std::floor((frame.site.x - pole.x) / cell);
    const double row = std::floor((frame.site.y - pole.y) / cell);
    const int columns_left = info.nx / 2; // of the middle one
    const int rows_above = info.ny / 2;
    return {pole.x + (column - columns_left) * cell, pole.y + (row + 1 + rows_above) * cell, cell};
}

void draw_raster(const NIDS_frame& frame, RadFills& fills, long& room) {
    OutputPtr grid = NIDS_grd_open(*frame.info, frame.datim);
    RadStrip strip(frame.own, frame.plot);
    for (int row = 0; room > 0 && NIDS_get_rastor(frame.ifile) > 0; ++row) {
        const RadEdges edges = nids_row_edges(frame, row);
        draw_row(frame, fills, grid.get(), edges, strip, room);
    }
    if (grid && close_output(grid.release()) != 0) {
        MESS_print(mess_warn, "NIDS_plot: Unable to write grid file\n");
        PLT_lost_output();
    }
}

// Image of a point that a packet gives in the coordinates of the plot.
Gpt image(const NIDS_frame& frame, float x, float y) {
    Gpt p{missing_f, missing_f};
    if (frame.plot.tran(x, y, &p.x, &p.y) == 0) {
        p = {missing_f, missing_f};
    }
    return p;
}

void draw_vectors(const NIDS_frame& frame, long& room) {
    GPH_line_attr(&frame.grid);
    NIDS_vector_data vector;
    for (; room > 0 && NIDS_get_vector(frame.ifile, &vector) > 0; --room) {
        const Gpt from = image(frame, vector.x1, vector.y1);
        const Gpt to = image(frame, vector.x2, vector.y2);
        if (frame.grid.color >= 0 && rad_is_place(from) && rad_is_place(to)) {
            GPH_line(from.x, from.y, to.x, to.y);
            ++PLT_get_tally().figures;
        }
    }
}

void draw_winds(const NIDS_frame& frame, RadFills& fills, long& room) {
    NIDS_wind_data wind;
    for (; room > 0 && NIDS_get_wind(frame.ifile, &wind) > 0; room -= nids_barb_strokes) {
        const Gpt p = image(frame, wind.x, wind.y);
        const Gattribs* attrib = fills.get(wind.val);
        if (attrib != nullptr && attrib->color >= 0 && rad_is_place(p)) {
            GPH_fill_attr(attrib);
            GPH_line_attr(attrib);
            WIND_barb(p.x, p.y, wind.dir, wind.spd, barb_size, 0.0F);
            ++PLT_get_tally().figures;
        }
    }
}

void draw_text(const NIDS_frame& frame, long& room) {
    NIDS_text_data text;
    NIDS_get_text(frame.ifile, &text);
    if (frame.storms != nullptr && nids_take_storm_text(text, frame.storms)) {
        return;
    }
    const Gpt p = image(frame, text.x, text.y);
    GPH_text_attr(&frame.data, text_height);
    GPH_text_align(GLEFT_HOR, GCAP_VERT);
    if (frame.data.color >= 0 && rad_is_place(p)) {
        gtext(&p, text.data);
        ++PLT_get_tally().figures;
        room -= nids_text_strokes(text.data);
    }
}

// Returns whether the packet is of a kind that is drawn.
bool draw_packet(const NIDS_frame& frame, RadFills& fills, int type, long& room) {
    switch (type) {
    case nids_packet_radial:
    case nids_packet_dig_radial:
        draw_radials(frame, fills, room);
        break;
    case nids_packet_raster:
    case nids_packet_dig_precip:
        draw_raster(frame, fills, room);
        break;
    case nids_packet_vector:
    case nids_packet_vector_val:
        draw_vectors(frame, room);
        break;
    case nids_packet_wind:
        draw_winds(frame, fills, room);
        break;
    case nids_packet_text:
    case nids_packet_text_val:
        draw_text(frame, room);
        break;
    default: // passed over by the reader
        return false;
    }
    return true;
}

// Whether the plot component "sum" switches a packet.
bool is_summary(int type) {
    return type != nids_packet_wind && type != nids_packet_text && type != nids_packet_text_val;
}

} // namespace

// The bins begin at the site, or, exactly, where their packet and the elevation say.
RadEdges nids_radial_edges(const NIDS_frame& frame, RadFan& fan, float sangle, float dangle) {
    if (frame.exact) {
        const NIDS_bins bins = NIDS_get_bins();
        return fan.edges({sangle, dangle, bins.first_km, bins.size_km, std::max(bins.count, 1)});
    }
    const RadBeam beam = {sangle, 0.0F, dangle, 0.0, frame.info->domain.dx};
    return rad_radial_edges(frame.own, frame.site, beam);
}

RadEdges nids_row_edges(const NIDS_frame& frame, int row) {
    const auto [left, top, d] = raster_place(frame);
    return {
        {left, top - row * d,       d, 0.0},
        {left, top - (row + 1) * d, d, 0.0}
    };
}

float nids_cell_value(const NIDS_frame& frame, float value) {
    if (!nids_product(frame.info->code).decibel || !is_set(value)) {
        return value;
    }
    const double unit = frame.exact ? mm_per_inch : 100.0;
    return static_cast<float>(std::pow(10.0, static_cast<double>(value) / 10.0) / unit);
}

void nids_pass_packet(std::FILE* ifile, int type) {
    const auto skip_runs = [&] {
        NIDS_data data;
        while (NIDS_get_data(ifile, &data) > 0) {
        }
    };
    NIDS_vector_data vector;
    NIDS_wind_data wind;
    NIDS_text_data text;
    NIDS_symbol symbol;
    float sangle = 0;
    float dangle = 0;
    switch (type) {
    case nids_packet_radial:
    case nids_packet_dig_radial:
        while (NIDS_get_radial(ifile, &sangle, &dangle) > 0) {
            skip_runs();
        }
        break;
    case nids_packet_raster:
    case nids_packet_dig_precip:
        while (NIDS_get_rastor(ifile) > 0) {
            skip_runs();
        }
        break;
    case nids_packet_vector:
    case nids_packet_vector_val:
        while (NIDS_get_vector(ifile, &vector) > 0) {
        }
        break;
    case nids_packet_wind:
        while (NIDS_get_wind(ifile, &wind) > 0) {
        }
        break;
    case nids_packet_text:
    case nids_packet_text_val:
        NIDS_get_text(ifile, &text);
        break;
    default:
        while (NIDS_is_symbol(type) != 0 && NIDS_get_symbol(ifile, &symbol) > 0) {
        }
        break;
    }
}

long nids_text_strokes(const char* text) {
    constexpr std::size_t of_letter = 3;
    return static_cast<long>(of_letter * std::strlen(text));
}

void nids_report_flood(const NIDS_info& info) {
    MESS_print(mess_warn, "NIDS_plot: More figures than any product has, cut: %s\n", info.info);
    PLT_lost_output();
}

int NIDS_draw_packets(const NIDS_frame& frame) {
    RadFills fills(frame.folded);
    int type = frame.info->type;
    bool any = false;
    long room = rad_most_figures;
    const auto walk = [&](int status) {
        for (; status > 0 && room > 0; status = NIDS_packet(frame.ifile, &type)) {
            if (type == nids_packet_raster_alt) {
                type = nids_packet_raster;
            }
            if (frame.storms != nullptr && NIDS_is_symbol(type) != 0) {
                nids_take_storms(frame.ifile, frame.storms);
            } else if (is_summary(type) && FLAG_getplot(part_summary) == 0) {
                nids_pass_packet(frame.ifile, type);
                any = true;
            } else {
                any = draw_packet(frame, fills, type, room) || any;
            }
        }
    };
    walk(NIDS_packet_status());
    if (NIDS_trends(frame.ifile) == 1) {
        walk(NIDS_packet(frame.ifile, &type));
    }
    if (room <= 0) {
        nids_report_flood(*frame.info);
    }
    return any ? 1 : 0;
}
