// cont_draw.cpp: filled and line contours of a grid, and its values as
// numbers. The grid is walked cell by cell, without tracing contours through
// it: each cell draws its part of every band and line between its corners.
// Reads the levels of cont.cpp; owns the cell under way.
#include "cont.h"

#include "cont_state.h"
#include "map.h"
#include "map_wrap.h"
#include "maptran.h"
#include "plt_tool.h"
#include "region.h"
#include "text_scan.h"
#include "zyrgrid.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

using namespace cont;

namespace {

// Entries of Cell::dz besides fractions.
constexpr float side_flat = -3.0F;   // both ends are equal
constexpr float side_missed = -2.0F; // the level lies beyond the ends
constexpr float side_other = -1.0F;  // the level meets a corner, which the other side counts

// The sides of a cell by the corners at their ends, and the way round it:
// corner 0 is at the lower left, 1 right of it, 2 above it, 3 opposite.
struct Side {
    int a, b;
};
constexpr Side sides[4] = {
    {0, 1},
    {0, 2},
    {2, 3},
    {1, 3}
};
constexpr int round_corner[4] = {0, 1, 3, 2};
constexpr int round_side[4] = {0, 3, 2, 1}; // from round_corner[k] to the next

struct Cell {
    float x[4], y[4], z[4]; // corners
    float zmin, zmax;
    float dz[4];  // fraction at which the current level crosses each side
    int cross[5]; // the crossed sides, ascending; -1 after the last
    int numsides;
    float total; // below 2 the saddle's lines cut off corners 0 and 3
};
Cell cell;

struct Free {
    void operator()(float* p) const { std::free(p); }
};
using Floats = std::unique_ptr<float, Free>;

// What stays the same for all cells of a grid.
struct Field {
    const GRD_report* grid = nullptr;
    int nx = 0, ny = 0;
    Floats x, y; // plot coordinates of the points; null: grid indices
    float vert_size = 0.0F;

    std::size_t at(int column, int row) const { // row from the top
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(nx) +
               static_cast<std::size_t>(column);
    }
    float px(int column, int row) const {
        return x ? x.get()[at(column, row)] : static_cast<float>(column);
    }
    float py(int column, int row) const {
        return y ? y.get()[at(column, row)] : static_cast<float>(ny - 1 - row);
    }
    float value(int column, int row) const { return grid->grid[at(column, row)]; }
};

bool usable(float v) {
    return is_set(v) && std::isfinite(v);
}

// --- Wrapping ---------------------------------------------------------------

// Grid indices never wrap.
const MapEdge& map_edge() {
    static constexpr MapEdge none;
    return state().index_coords ? none : MAP_current().row->edge;
}

bool across(const MapEdge& edge, const Gpt& a, const Gpt& b) {
    const bool either_side = edge.half_height == 0.0 || (a.x < 0.0F) != (b.x < 0.0F);
    return either_side && map_wrap_shift(edge, a, b, edge.gap) != 0.0F;
}

bool is_split(const MapEdge& edge, int num_pt, const Gpt* pts) {
    if (edge.width == 0.0) {
        return false;
    }
    for (int i = 0; i < num_pt; ++i) {
        const Gpt& next = pts[i + 1 < num_pt ? i + 1 : 0];
        if (std::fabs(pts[i].x - next.x) > edge.gap ||
            (edge.limit > 0.0F && std::fabs(pts[i].x) > edge.limit)) {
            return true;
        }
    }
    return false;
}

// A polygon over the map's edge is drawn twice, once on either side.
void fill_split(const MapEdge& edge, int num_pt, const Gpt* pts) {
    if (edge.slanted) {
        return;
    }
    std::vector<Gpt> moved(pts, pts + num_pt);
    for (Gpt& pt : moved) {
        pt.x += pt.x < -edge.side ? map_wrap_width(edge, pt.y) : 0.0F;
    }
    gfill_area(num_pt, moved.data());
    const bool all = edge.side == 0.0F;
    for (Gpt& pt : moved) {
        pt.x -= all || pt.x > edge.side ? map_wrap_width(edge, pt.y) : 0.0F;
    }
    gfill_area(num_pt, moved.data());
}

// A line over the map's edge comes first where it runs off on the right.
void draw_line(const MapEdge& edge, const Gpt* pts) {
    if (!across(edge, pts[0], pts[1])) {
        gpolyline(2, pts);
        return;
    }
    if (edge.slanted) {
        return;
    }
    const bool to_left = pts[1].x < pts[0].x;
    const Gpt& right = to_left ? pts[0] : pts[1];
    const Gpt& left = to_left ? pts[1] : pts[0];
    map_wrap_line(edge, right, left, edge.gap, [to_left](const Gpt& r, const Gpt& l) {
        const Gpt line[] = {to_left ? r : l, to_left ? l : r};
        gpolyline(2, line);
    });
}

// The point at fraction d from end 1 to end 2, which are brought to one side of
// the map where they lie on either; on an ellipse to the right one.
Gpt between(Gpt from, Gpt to, float d) {
    const MapEdge& edge = map_edge();
    if (!edge.slanted && across(edge, to, from)) {
        Gpt& moved = edge.half_height != 0.0 && to.x < from.x ? to : from;
        const Gpt& other = &moved == &to ? from : to;
        moved.x += map_wrap_shift(edge, other, moved, edge.gap);
    }
    const double part = d;
    return {static_cast<float>(from.x + (static_cast<double>(to.x) - from.x) * part),
            static_cast<float>(from.y + (static_cast<double>(to.y) - from.y) * part)};
}

// --- One level in a cell ----------------------------------------------------

Gpt side_point(int side, float d) {
    const Side& s = sides[side];
    return between({cell.x[s.a], cell.y[s.a]}, {cell.x[s.b], cell.y[s.b]}, d);
}

float side_fraction(int side, float level) {
    const float from = cell.z[sides[side].a];
    const float to = cell.z[sides[side].b];
    return (level - from) / (to - from);
}

// Where the level crosses each side. A corner exactly on the level belongs to
// one of its two sides alone.
void compute_dz(float level) {
    constexpr int left_out[4] = {1, 0, 2, 3}; // corner that each side leaves to the other
    cell.numsides = 0;
    for (int side = 0; side < 4; ++side) {
        float& dz = cell.dz[side];
        if (cell.z[sides[side].a] == cell.z[sides[side].b]) {
            dz = side_flat;
        } else if (level == cell.z[left_out[side]]) {
            dz = side_other;
        } else {
            dz = side_fraction(side, level);
            dz = dz >= 0.0F && dz <= 1.0F ? dz : side_missed;
        }
        cell.numsides += dz >= 0.0F ? 1 : 0;
    }
    const bool odd = cell.numsides == 3;
    int count = 0;
    for (int side = 0; side < 4; ++side) {
        const float corner = side == 0 || side == 2 ? 0.0F : 1.0F;
        if (cell.dz[side] >= 0.0F && !(odd && cell.dz[side] == corner)) {
            cell.cross[count++] = side;
        }
    }
    // Lines have two ends: one crossing touches a corner, three pass one.
    cell.numsides = count == 4 ? 4 : count >= 2 ? 2 : 0;
    cell.cross[cell.numsides] = -1;
    cell.total = cell.dz[0] + cell.dz[1] + 2.0F - cell.dz[2] - cell.dz[3];
}

// The side at which a line that crosses `side` of a saddle leaves the cell.
int saddle_partner(int side, float total) {
    constexpr int low[4] = {1, 0, 3, 2};
    constexpr int high[4] = {3, 2, 1, 0};
    return total < 2.0F ? low[side] : high[side];
}

void draw_segment(int side1, int side2) {
    const Gpt line[] = {side_point(side1, cell.dz[side1]), side_point(side2, cell.dz[side2])};
    CONT_draw_lines(cont_lines, 2, line);
}

// The lines of the level that compute_dz has placed.
void compute_lines(float level) {
    if (cell.numsides == 2) {
        draw_segment(cell.cross[0], cell.cross[1]);
    } else if (cell.numsides == 4) {
        const int partner = saddle_partner(0, cell.total);
        draw_segment(0, partner);
        draw_segment(2, saddle_partner(2, cell.total));
    }
    for (int side = 0; side < 4; ++side) {
        const Side& s = sides[side];
        if (cell.dz[side] == side_flat && cell.z[s.a] == level) {
            const Gpt line[] = {
                {cell.x[s.a], cell.y[s.a]},
                {cell.x[s.b], cell.y[s.b]}
            };
            CONT_draw_lines(cont_lines, 2, line);
        }
    }
}

// --- A band in a cell -------------------------------------------------------

// A point of the band's outline, met on the way round the cell.
struct Node {
    Gpt pt;
    int side;   // side crossed; -1: a corner
    bool upper; // crosses the band's upper level, else the lower
    bool entry; // comes into the band there, else leaves it
    bool used;
};

struct Outline {
    std::array<Node, 12> nodes; // at most 4 corners and 8 crossings
    int count = 0;
    int crossings[2] = {0, 0}; // of the lower and of the upper level

    void add(const Node& node) {
        nodes[static_cast<std::size_t>(count++)] = node;
        if (node.side >= 0) {
            ++crossings[node.upper ? 1 : 0];
        }
    }
    Node& operator[](int i) { return nodes[static_cast<std::size_t>(i)]; }
};

// 0 below the band, 1 in it, 2 above; a level belongs to the band above it.
int place(float z, float lo, float hi) {
    return z < lo ? 0 : z < hi ? 1 : 2;
}

void add_side(Outline* outline, int side, int from, int to, float lo, float hi) {
    const auto add = [&](bool upper, bool entry) {
        const float d = side_fraction(side, upper ? hi : lo);
        outline->add({side_point(side, d), side, upper, entry, false});
    };
    if (from < to) {
        if (from == 0) {
            add(false, true);
        }
        if (to == 2) {
            add(true, false);
        }
    } else if (from > to) {
        if (from == 2) {
            add(true, true);
        }
        if (to == 0) {
            add(false, false);
        }
    }
}

// The entry that the band's outline reaches from an exit, along the line of
// the same level; -1: none.
int find_entry(Outline* outline, const Node& exit, float lo, float hi) {
    int wanted = -1;
    if (outline->crossings[exit.upper ? 1 : 0] == 4) {
        const float level = exit.upper ? hi : lo;
        const float total = side_fraction(0, level) + side_fraction(1, level) + 2.0F -
                            side_fraction(2, level) - side_fraction(3, level);
        wanted = saddle_partner(exit.side, total);
    }
    for (int i = 0; i < outline->count; ++i) {
        const Node& node = (*outline)[i];
        const bool level = node.side >= 0 && node.entry && node.upper == exit.upper;
        if (level && (wanted < 0 || node.side == wanted)) {
            return i;
        }
    }
    return -1;
}

void fill_from(Outline* outline, int start, float lo, float hi) {
    std::array<Gpt, 16> polygon = {};
    std::size_t num = 0;
    int i = start;
    while (i >= 0 && !(*outline)[i].used && num < polygon.size() - 1) {
        Node& node = (*outline)[i];
        node.used = true;
        polygon[num++] = node.pt;
        const bool leaves = node.side >= 0 && !node.entry;
        i = leaves ? find_entry(outline, node, lo, hi) : (i + 1) % outline->count;
    }
    if (num >= 3) {
        polygon[num++] = polygon[0];
        CONT_draw_lines(cont_fill, static_cast<int>(num), polygon.data());
    }
}

// Fills the part of the cell between two levels: walks round the cell, and
// where the way leaves the band, follows the level's line to where it comes
// back. A saddle gives two polygons.
void fill_band(float lo, float hi) {
    Outline outline;
    for (int k = 0; k < 4; ++k) {
        const int corner = round_corner[k];
        const int next = round_corner[(k + 1) % 4];
        const int from = place(cell.z[corner], lo, hi);
        const int to = place(cell.z[next], lo, hi);
        if (from == 1) {
            outline.add({
                {cell.x[corner], cell.y[corner]},
                -1, false, true, false
            });
        }
        add_side(&outline, round_side[k], from, to, lo, hi);
    }
    for (int i = 0; i < outline.count; ++i) {
        const Node& node = outline[i];
        if (node.side >= 0 && node.entry && !node.used) {
            fill_from(&outline, i, lo, hi);
        }
    }
}

void fill_cell() {
    std::array<Gpt, 5> box = {};
    for (std::size_t k = 0; k < box.size(); ++k) {
        const int corner = round_corner[k % 4];
        box[k] = {cell.x[corner], cell.y[corner]};
    }
    CONT_draw_lines(cont_fill, static_cast<int>(box.size()), box.data());
}

// --- Cells ------------------------------------------------------------------

// Lines at the levels between the corners; `first` to `last` hold them all.
void draw_cell_lines(int first, int last, int step0) {
    const State& s = state();
    for (int i = first; i < last; ++i) {
        const float level = level_at(i);
        if (level < cell.zmin) {
            continue;
        }
        if (level > cell.zmax || (is_set(s.max_cut) && level > s.max_cut)) {
            return;
        }
        if (is_set(s.min_cut) && level < s.min_cut) {
            continue;
        }
        use_step((step0 + i) % s.color_num, level);
        compute_dz(level);
        compute_lines(level);
    }
}

// Level i and the band above it, cut where values are not to be drawn.
struct Band {
    float lo, top;
    float level; // upper level, uncut
    bool under;  // wholly below the cell or the lower cut
    bool over;   // wholly above the upper cut
};

Band band_at(int i) {
    const State& s = state();
    Band band = {};
    band.lo = level_at(i);
    band.level = band.lo + level_width(i);
    band.top = band.level;
    band.under = cell.zmin > band.level || (is_set(s.min_cut) && band.level <= s.min_cut);
    band.over = is_set(s.max_cut) && band.lo > s.max_cut;
    if (is_set(s.min_cut)) {
        band.lo = std::max(band.lo, s.min_cut);
    }
    if (is_set(s.max_cut)) {
        band.top = std::min(band.top, s.max_cut);
    }
    return band;
}

// Fills the bands from the lowest that reaches into the cell.
void draw_cell_bands(int first, int last, int step0) {
    for (int i = first; i < last; ++i) {
        const Band band = band_at(i);
        if (band.over) {
            return;
        }
        // A flat cell on a level belongs to the band above it.
        const bool flat_on_top = cell.zmin == cell.zmax && cell.zmin == band.level;
        if (band.under || flat_on_top || cell.zmax < band.lo) {
            continue;
        }
        use_step((step0 + i) % state().color_num, band.level);
        if (cell.zmin >= band.lo && cell.zmax <= band.top) {
            fill_cell();
            return;
        }
        if (cell.zmax <= band.top) {
            fill_band(band.lo, FLT_MAX); // what lies on the top is in the band, too
            return;
        }
        fill_band(band.lo, band.top);
    }
}

// The upper lines of the bands. They follow the fills of the cell, which
// would paint them over.
void draw_cell_edges(int first, int last, int step0) {
    for (int i = first; i < last; ++i) {
        const Band band = band_at(i);
        if (band.over || (!band.under && cell.zmax <= band.top)) {
            return;
        }
        if (!band.under) {
            use_step((step0 + i) % state().color_num, band.level);
            compute_dz(band.top);
            compute_lines(band.top);
        }
    }
}

// Takes the cell whose upper left point is (column, row). False when a corner
// has no value or no place.
bool load_cell(const Field& field, int column, int row) {
    constexpr int dc[4] = {0, 1, 0, 1};
    constexpr int dr[4] = {1, 1, 0, 0};
    for (int k = 0; k < 4; ++k) {
        cell.x[k] = field.px(column + dc[k], row + dr[k]);
        cell.y[k] = field.py(column + dc[k], row + dr[k]);
        cell.z[k] = field.value(column + dc[k], row + dr[k]);
        if (!usable(cell.x[k]) || !usable(cell.y[k]) || !usable(cell.z[k])) {
            return false;
        }
    }
    cell.zmin = *std::min_element(cell.z, cell.z + 4);
    cell.zmax = *std::max_element(cell.z, cell.z + 4);
    return true;
}

// Levels that a cell may hold before it is taken for a cliff and skipped.
double level_limit() {
    const State& s = state();
    constexpr double no_limit = 10000.0;
    if (s.max_line_fact < 0) {
        return static_cast<double>(s.color_num) * -static_cast<double>(s.max_line_fact);
    }
    return s.max_line_fact == 0 ? no_limit : static_cast<double>(s.max_line_fact);
}

void draw_cell(double limit, int step0) {
    const State& s = state();
    const bool regular = !is_set(s.cont_value[0]);
    const bool lines = is_line_type(s.cont_type);
    if ((lines && cell.zmin == cell.zmax) || (is_set(s.min_cut) && s.min_cut > cell.zmax)) {
        return;
    }
    int first = 0;
    int last = s.num_cont;
    if (regular) {
        // Only the levels about the cell need a look.
        const double intrvl = s.intrvl;
        const double count = static_cast<double>(cell.zmax - cell.zmin) / intrvl;
        if (count > limit) {
            return;
        }
        first = std::max(0, whole((static_cast<double>(cell.zmin) - s.conlo) / intrvl) - 2);
        last = static_cast<int>(std::min<double>(last, first + count + 6.0));
    }
    if (lines) {
        draw_cell_lines(first, last, step0);
    } else {
        draw_cell_bands(first, last, step0);
        if (has_lines(s.cont_type)) {
            draw_cell_edges(first, last, step0);
        }
    }
}

void draw_cells(const Field& field) {
    const State& s = state();
    if (s.color_num <= 0 || s.num_cont <= 0 || !(s.intrvl > 0.0F || is_set(s.cont_value[0]))) {
        return;
    }
    const double limit = level_limit();
    const int step0 = first_step(s.cbase);
    for (int row = 0; row + 1 < field.ny; ++row) {
        for (int column = 0; column + 1 < field.nx; ++column) {
            if (load_cell(field, column, row)) {
                draw_cell(limit, step0);
            }
        }
    }
}

// --- Numbers ----------------------------------------------------------------

// Whether a text is "%", flags, width, decimals and one of f, e, g, and no more.
bool is_number_format(const char* text) {
    if (*text != '%') {
        return false;
    }
    ++text;
    text += std::strspn(text, "-+ #0");
    for (int digits = 0; is_digit(*text) && digits < 2; ++digits) {
        ++text;
    }
    if (*text == '.') {
        ++text;
        text += is_digit(*text) ? 1 : 0;
    }
    return *text != '\0' && std::strchr("feEgG", *text) != nullptr && text[1] == '\0';
}

// The numbers' format, from `plot_format` when that is a number format.
void settle_number_format() {
    State& s = state();
    const char* format = RES_get("plot_format");
    if (s.num_form[0] == '\0' && format != nullptr && is_number_format(format)) {
        copy_text(s.num_form, sizeof s.num_form, format);
    }
}

void format_value(float value, char (&text)[128]) {
    const State& s = state();
    if (s.num_form[0] == '\0') {
        set_num(text, "1.1.0", value);
        return;
    }
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // checked by is_number_format
    std::snprintf(text, sizeof text, s.num_form, static_cast<double>(value));
#pragma GCC diagnostic pop
}

void draw_values(const Field& field, int label_color) {
    const State& s = state();
    const bool levels = is_set(s.cont_value[0]);
    const float dx = s.x_off * MAP_get_vert();
    const float dy = s.y_off * MAP_get_vert();
    GPH_text_align(s.x_off < 0.0F   ? GRIGHT_HOR
                   : s.x_off > 0.0F ? GLEFT_HOR
                                    : GCENTER_HOR,
                   GHALF_VERT);
    for (int row = 0; row < field.ny; row += std::max(s.y_skip, 1)) {
        for (int column = 0; column < field.nx; column += std::max(s.x_skip, 1)) {
            const float value = field.value(column, row);
            const Gpt pos = {field.px(column, row), field.py(column, row)};
            if (!usable(value) || !usable(pos.x) || !usable(pos.y)) {
                continue;
            }
            int color = label_color;
            if (levels) {
                Gattribs attrib;
                CONT_get_fill_attrib(value, &attrib);
                color = attrib.color;
                if (color >= 0) {
                    gset_text_colr_ind(color);
                }
            }
            if (color < 0) {
                continue;
            }
            char text[128] = "";
            format_value(value, text);
            const Gpt moved = {pos.x + dx, pos.y + dy};
            GPH_pprint(&moved, text);
        }
    }
}

// --- The grid ---------------------------------------------------------------

bool is_off_word(const char* word) {
    return stricmp(word, "off") == 0 || stricmp(word, "none") == 0 || stricmp(word, "back") == 0;
}

Gattribs label_attribs() {
    Gattribs attrib = state().ln_cont_attr;
    const char* lines = RES_get("color_cont");
    const bool follow =
        lines != nullptr && !is_off_word(lines) && RES_get("color_label") == nullptr;
    ATTRIB_get("color_label", follow ? lines : plain_color(), &attrib);
    return attrib;
}

// Places the grid's points: its own domain is drawn in grid indices.
int place_points(Field* field) {
    const Domain& own = field->grid->domain;
    const Domain& plot = MAP_current().domain;
    State& s = state();
    s.index_coords = DOM_comp(&plot, &own) == 1;
    if (s.index_coords) {
        Glim view = {};
        PLT_get_view(&view);
        const Glim window = {0.0F, static_cast<float>(own.nx - 1), 0.0F,
                             static_cast<float>(own.ny - 1)};
        GPH_view(tran_grid, &view);
        GPH_win(tran_grid, &window);
        GPH_trans(tran_grid);
        field->vert_size = static_cast<float>(own.ny - 1);
        return 0;
    }
    float* x = nullptr;
    float* y = nullptr;
    if (GRD_proj_XY(field->grid, &plot, &x, &y) != 0) {
        MESS_print(mess_warn, "CONT_draw_contour: Unable to project grid\n");
        return -1;
    }
    field->x.reset(x);
    field->y.reset(y);
    field->vert_size = MAP_get_vert();
    return 0;
}

int settle_extent(const GRD_report* grid) {
    State& s = state();
    CONT_set_fill_colors(nullptr, 0);
    if (!is_set(s.grid_max)) {
        GRD_maxmin(grid, &s.grid_max, &s.grid_min);
        return CONT_set_cont_ext(grid);
    }
    return is_set(s.conlo) ? 0 : CONT_set_cont_ext(grid);
}

void draw_field(const Field& field) {
    const State& s = state();
    set_line_attribs();
    const Gattribs label = label_attribs();
    GPH_text_align(GCENTER_HOR, GHALF_VERT);
    GPH_text_attr(&label, s.scale * field.vert_size * 0.015F);
    GPH_fill_attr(nullptr);
    if (s.cont_type == cont_values) {
        settle_number_format();
        draw_values(field, label.color);
    } else {
        draw_cells(field);
    }
    GPH_fill_attr(nullptr);
    GPH_line_attr(nullptr);
}

} // namespace

int CONT_draw_lines(int type, int num_pt, const Gpt* pts) {
    const State& s = state();
    if (s.con_off < 0 || s.con_off >= s.color_num || s.fill_attrib[s.con_off].color == -1 ||
        num_pt < 2) {
        return -1;
    }
    const MapEdge& edge = map_edge();
    if (is_line_type(type) || num_pt == 2) {
        draw_line(edge, pts);
    } else if (is_split(edge, num_pt, pts)) {
        fill_split(edge, num_pt, pts);
    } else {
        gfill_area(num_pt, pts);
    }
    return 0;
}

int CONT_draw_contour(const GRD_report* grid) {
    if (grid == nullptr || grid->grid == nullptr || grid->domain.nx < 1 || grid->domain.ny < 1) {
        return 0;
    }
    Field field;
    field.grid = grid;
    field.nx = grid->domain.nx;
    field.ny = grid->domain.ny;
    if (place_points(&field) != 0) {
        return -1;
    }
    const int result = settle_extent(grid);
    if (result == 0) {
        draw_field(field);
    }
    if (state().index_coords) {
        GPH_trans(tran_map);
        state().index_coords = false;
    }
    return result;
}
