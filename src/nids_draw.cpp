// nids_draw: the symbology packets of a NIDS product. Radials and raster rows
// become filled polygons, a radial or row at a time; vectors, wind barbs and
// texts are drawn as they are read. No state of its own.
#include "nids_draw.h"

#include "files.h"
#include "maptran.h"
#include "region.h"
#include "windbarb.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace {

constexpr double deg_to_rad = std::numbers::pi / 180.0;
constexpr int item_summary = 10;     // plot component of the packets
constexpr float overlap_deg = 0.01F; // by which radials cover the next one's edge
constexpr int raster_chunk = 10;     // cells of a raster figure on the product's own projection
constexpr float barb_size = 20.0F;   // plot units
constexpr float text_height = 8.0F;
constexpr int code_precip_array = 81;

bool is_place(const Gpt& p) {
    return is_set(p.x) && std::isfinite(p.x) && std::isfinite(p.y);
}

// A line of points at steps from an origin, in the product's coordinates.
struct Ruler {
    double x = 0, y = 0;   // step 0
    double dx = 0, dy = 0; // a step

    [[nodiscard]] Gpt at(int step) const {
        return {static_cast<float>(x + step * dx), static_cast<float>(y + step * dy)};
    }
};

// The figures between two rulers: the bins of a radial between its edges, the
// cells of a row between its top and bottom. They are collected first, so that
// the domain is changed but once for all corners of a radial or row.
class Strip {
public:
    explicit Strip(const NIDS_frame& frame)
        : frame_(frame), same_(DOM_comp_proj(&frame.info->domain, &frame.plot) != 0) {}

    // Whether plot and product share their projection, so that corners need no
    // way through latitude and longitude.
    [[nodiscard]] bool same() const { return same_; }

    void begin() {
        steps_.clear();
        figures_.clear();
    }

    // Draws what is held when it is much: a damaged product's radials may be
    // very long.
    void make_room(const Ruler& a, const Ruler& b) {
        if (figures_.size() >= max_figures) {
            draw(a, b);
            begin();
        }
    }

    // Figures from step `start` on, each `chunk` steps long and the last as
    // long as what is left of `count`.
    void add(int start, int count, int chunk, const Gattribs& attrib) {
        const int end = start + count;
        if (start >= end) {
            return;
        }
        if (steps_.empty() || steps_.back() != start) {
            steps_.push_back(start);
        }
        for (int step = start; step < end;) {
            step = std::min(step + chunk, end);
            figures_.push_back({steps_.size() - 1, attrib.color, attrib.fill_pat});
            steps_.push_back(step);
        }
    }

    void draw(const Ruler& a, const Ruler& b) {
        if (figures_.empty()) {
            return;
        }
        place(a, near_);
        place(b, far_);
        if (!same_) {
            reproject();
        }
        for (const Figure& figure : figures_) {
            const std::size_t i = figure.first;
            const std::array<Gpt, 5> corners = {near_[i], near_[i + 1], far_[i + 1], far_[i],
                                                near_[i]};
            if (!std::all_of(corners.begin(), corners.end(), is_place)) {
                continue;
            }
            if (figure.color != color_ || figure.fill_pat != fill_pat_) {
                color_ = figure.color;
                fill_pat_ = figure.fill_pat;
                Gattribs attrib;
                attrib.color = color_;
                attrib.fill_pat = fill_pat_;
                GPH_fill_attr(&attrib);
            }
            gfill_area(static_cast<int>(corners.size()), corners.data());
        }
    }

private:
    static constexpr std::size_t max_figures = 8192;

    struct Figure {
        std::size_t first; // its near step; the far one is the next
        int color, fill_pat;
    };

    void place(const Ruler& ruler, std::vector<Gpt>& points) {
        points.clear();
        for (const int step : steps_) {
            points.push_back(ruler.at(step));
        }
    }

    // Product coordinates to latitude and longitude, and these to the plot's.
    void reproject() {
        MAP_domain(&frame_.info->domain);
        for (const std::span<Gpt> line : {std::span(near_), std::span(far_)}) {
            for (Gpt& p : line) {
                const Gpt from = p;
                MAP_untran(from.x, from.y, &p.x, &p.y);
            }
        }
        MAP_domain(&frame_.plot);
        for (const std::span<Gpt> line : {std::span(near_), std::span(far_)}) {
            for (Gpt& p : line) {
                const Gpt from = p;
                if (!is_place(from) || MAP_tran(from.x, from.y, &p.x, &p.y) == 0) {
                    p = {missing_f, missing_f};
                }
            }
        }
    }

    const NIDS_frame& frame_;
    bool same_;
    int color_ = missing;    // of the last figure drawn
    int fill_pat_ = missing; // and its pattern
    std::vector<int> steps_; // steps at which figures begin and end
    std::vector<Figure> figures_;
    std::vector<Gpt> near_, far_; // the points of the two rulers at steps_
};

// The two edges of a radial, a step being a bin, or of a row, a step being a
// cell.
struct Edges {
    Ruler first, second;
};

Edges radial_edges(const NIDS_frame& frame, float sangle, float dangle) {
    MAP_domain(&frame.info->domain);
    const float start = MAP_dir_adj(sangle, frame.x0, frame.y0);
    MAP_domain(&frame.plot);
    const double d = frame.info->domain.dx;
    const auto edge = [&](double angle) {
        return Ruler{frame.x0, frame.y0, d * std::sin(angle * deg_to_rad),
                     d * std::cos(angle * deg_to_rad)};
    };
    return {edge(start), edge(start + dangle + overlap_deg)};
}

void draw_radials(const NIDS_frame& frame, NIDS_fills& fills) {
    Strip strip(frame);
    float sangle = 0;
    float dangle = 0;
    while (NIDS_get_radial(frame.ifile, &sangle, &dangle) > 0) {
        const Edges edges = radial_edges(frame, sangle, dangle);
        strip.begin();
        int bin = 0;
        NIDS_data data;
        while (NIDS_get_data(frame.ifile, &data) > 0) {
            strip.make_room(edges.first, edges.second);
            const int run = static_cast<int>(data.run);
            const Gattribs* attrib = fills.get(data.val);
            if (attrib != nullptr) {
                const int start = std::max(bin, frame.clutter_rad);
                strip.add(start, bin + run - start, 1, *attrib);
            }
            bin += run;
        }
        strip.draw(edges.first, edges.second);
    }
}

// The cells of one row go onto the page and into the grid file, if any.
void draw_row(const NIDS_frame& frame, NIDS_fills& fills, std::FILE* grid, const Edges& edges,
              Strip& strip) {
    strip.begin();
    const int chunk = strip.same() ? raster_chunk : 1;
    int column = 0;
    NIDS_data data;
    while (NIDS_get_data(frame.ifile, &data) > 0) {
        strip.make_room(edges.first, edges.second);
        const int run = static_cast<int>(data.run);
        float value = data.val;
        if (frame.info->code == code_precip_array && is_set(value)) {
            value = static_cast<float>(std::pow(10.0, static_cast<double>(value) / 10.0) / 100.0);
        }
        for (int i = 0; grid != nullptr && i < run; i++) {
            std::fprintf(grid, "%f\n", static_cast<double>(value));
        }
        const Gattribs* attrib = fills.get(value);
        if (attrib != nullptr) {
            strip.add(column, run, chunk, *attrib);
        }
        column += run;
    }
    strip.draw(edges.first, edges.second);
}

void draw_raster(const NIDS_frame& frame, NIDS_fills& fills) {
    const FILE_ptr grid(NIDS_grd_open(*frame.info, frame.datim));
    Strip strip(frame);
    const double d = frame.info->domain.dx;
    const double left = frame.x0 - d * (frame.info->nx - 1) / 2;
    const double top = frame.y0 + d * (frame.info->ny - 1) / 2;
    for (int row = 0; NIDS_get_rastor(frame.ifile) > 0; row++) {
        const Edges edges = {
            {left, top - row * d,       d, 0.0},
            {left, top - (row + 1) * d, d, 0.0}
        };
        draw_row(frame, fills, grid.get(), edges, strip);
    }
}

// Passes over a radial, raster or vector packet whose drawing is switched off.
void skip_packet(const NIDS_frame& frame, int type) {
    const auto skip_runs = [&] {
        NIDS_data data;
        while (NIDS_get_data(frame.ifile, &data) > 0) {
        }
    };
    NIDS_vector_data vector;
    float sangle = 0;
    float dangle = 0;
    switch (type) {
    case nids_packet_radial:
    case nids_packet_dig_radial:
        while (NIDS_get_radial(frame.ifile, &sangle, &dangle) > 0) {
            skip_runs();
        }
        break;
    case nids_packet_raster:
    case nids_packet_dig_precip:
        while (NIDS_get_rastor(frame.ifile) > 0) {
            skip_runs();
        }
        break;
    case nids_packet_vector:
    case nids_packet_vector_val:
        while (NIDS_get_vector(frame.ifile, &vector) > 0) {
        }
        break;
    default:
        break;
    }
}

// Image of a point that a packet gives in the coordinates of the plot.
Gpt image(float x, float y) {
    Gpt p{missing_f, missing_f};
    if (MAP_tran(x, y, &p.x, &p.y) == 0) {
        p = {missing_f, missing_f};
    }
    return p;
}

void draw_vectors(const NIDS_frame& frame) {
    GPH_line_attr(&frame.grid);
    NIDS_vector_data vector;
    while (NIDS_get_vector(frame.ifile, &vector) > 0) {
        const Gpt from = image(vector.x1, vector.y1);
        const Gpt to = image(vector.x2, vector.y2);
        if (is_place(from) && is_place(to)) {
            GPH_line(from.x, from.y, to.x, to.y);
        }
    }
}

void draw_winds(const NIDS_frame& frame, NIDS_fills& fills) {
    NIDS_wind_data wind;
    while (NIDS_get_wind(frame.ifile, &wind) > 0) {
        const Gpt p = image(wind.x, wind.y);
        const Gattribs* attrib = fills.get(wind.val);
        if (attrib != nullptr && attrib->color >= 0 && is_place(p)) {
            GPH_fill_attr(attrib);
            GPH_line_attr(attrib);
            WIND_barb(p.x, p.y, wind.dir, wind.spd, barb_size, 0.0F);
        }
    }
}

void draw_text(const NIDS_frame& frame) {
    NIDS_text_data text;
    NIDS_get_text(frame.ifile, &text);
    const Gpt p = image(text.x, text.y);
    GPH_text_attr(&frame.data, text_height);
    GPH_text_align(GLEFT_HOR, GCAP_VERT);
    if (frame.data.color >= 0 && is_place(p)) {
        gtext(&p, text.data);
    }
}

void draw_packet(const NIDS_frame& frame, NIDS_fills& fills, int type) {
    switch (type) {
    case nids_packet_radial:
    case nids_packet_dig_radial:
        draw_radials(frame, fills);
        break;
    case nids_packet_raster:
    case nids_packet_dig_precip:
        draw_raster(frame, fills);
        break;
    case nids_packet_vector:
    case nids_packet_vector_val:
        draw_vectors(frame);
        break;
    case nids_packet_wind:
        draw_winds(frame, fills);
        break;
    case nids_packet_text:
    case nids_packet_text_val:
        draw_text(frame);
        break;
    default: // passed over by the reader
        break;
    }
}

// Whether the plot component "sum" switches a packet.
bool is_summary(int type) {
    return type != nids_packet_wind && type != nids_packet_text && type != nids_packet_text_val;
}

} // namespace

int NIDS_draw_packets(const NIDS_frame& frame) {
    NIDS_fills fills;
    int type = frame.info->type;
    for (int status = NIDS_packet_status(); status > 0; status = NIDS_packet(frame.ifile, &type)) {
        if (type == nids_packet_raster_alt) {
            type = nids_packet_raster;
        }
        if (is_summary(type) && FLAG_getplot(item_summary) == 0) {
            skip_packet(frame, type);
        } else {
            draw_packet(frame, fills, type);
        }
    }
    return 0;
}
