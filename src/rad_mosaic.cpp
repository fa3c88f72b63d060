// rad_mosaic: mosaics on the plot. No state of its own; the colours of the frame
// must be set before a RadMosaic is made.
#include "rad_mosaic.h"

#include "cont.h"
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "region.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr char colors[] =
    "-100:off,5:blue,10:lblue,15:cyan,20:lcyan,25:green,30:lgreen,35:brown,40:yellow,45:red,"
    "50:lred,55:magenta,60:lmagenta,65:dgray,70:lgray,75:white";
constexpr int chunk_alike = 10;
constexpr int samples = 48; // of the window, each way

} // namespace

void rad_mosaic_word(RadMosaicPlot& plot, const char* word) {
    constexpr std::size_t length = 3; // of "run"
    if (strnicmp(word, "run", static_cast<int>(length)) == 0) {
        plot.run_len = std::max(rad_word_int(word, length), 1);
    } else {
        rad_take_word(plot.words, word);
    }
}

void rad_mosaic_take(RadMosaicPlot& plot, const char* name, const Date& date, const char* label,
                     const Domain& domain) {
    copy_text(plot.name, sizeof plot.name, name);
    PLT_tally& tally = PLT_get_tally();
    tally.product = label;
    tally.date = date;
    tally.has_site = false;
    tally.lat = domain.clat;
    tally.lon = domain.clon;
    DATE_make_label(&date, plot.datim);
    FILE_get_date(&plot.run.file_date);
    rad_fill_date(plot.run, date);
    MESS_print(mess_mess, "Product domain: ");
    DOM_print(mess_mess, &domain);
    MESS_print(mess_mess, "Product type: %s\n", label);
    MESS_print(mess_mess, "Product date: %s\n", plot.datim);
    PLT_label_up_right(plot.datim);
    if (CONT_get_bar() != -2) {
        CONT_set_bar(1);
    }
    rad_check_variable(plot.run, "a mosaic");
}

int rad_mosaic_frame(const RadMosaicPlot& plot, const Date& date, int (*summary)()) {
    MAP_draw(map_under);
    summary();
    rad_draw_bar();
    MAP_draw(map_over | map_plain);
    GPH_trans(tran_map);
    rad_draw_watches(is_set(date.year) ? date : plot.run.file_date);
    PLT_labels();
    return 0;
}

bool rad_mosaic_begin(RadMosaicPlot& plot, const char* label, const Domain& domain) {
    if (FLAG_getplot(part_summary) == 0) {
        return false;
    }
    GPH_trans(tran_map);
    PLT_label_up_left(label);
    PLT_label_low_right("");
    PLT_label_up_right(plot.datim);
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    CONT_set_quantity("reflectivity");
    CONT_set_fill_colors(colors, 0);
    CONT_set_base(0.0F);
    CONT_set_type(cont_fill);
    CONT_set_intrvl(5.0F);
    CONT_set_range(76.0F, 0.0F);
    if (!is_set(domain.proj)) {
        return false;
    }
    rad_check_view(plot.run, map_make(domain), MAP_current(), plot.name);
    return true;
}

const Domain* rad_mosaic_domain() {
    static constexpr Domain none;
    return &none;
}

RadMosaic::RadMosaic(const Domain& product, const Map& plot, int run_len, Corners corners,
                     int first_line)
    : own_(map_make(product)), plot_(plot), corners_(corners), first_line_(first_line) {
    // The latitude of a pole says nothing on code 2.
    Domain first = product;
    Domain second = plot.domain;
    if (product.proj == proj_latlon) {
        first.plat = second.plat = 0.0F;
    }
    const bool alike = DOM_comp_proj(&first, &second) != 0;
    chunk_ = run_len != 0 ? run_len : alike ? chunk_alike : 1;
    if (product.proj == proj_latlon) {
        top_ = product.clat + static_cast<double>(product.dy) * (product.ny - 1) / 2;
        left_ = product.clon - static_cast<double>(product.dx) * (product.nx - 1) / 2;
    } else {
        left_ = own_.limits.x_min;
        top_ = own_.limits.y_max;
    }
    rows_ = {0, product.ny};
}

// What the first echo needs. Files without one cost no work on the map.
void RadMosaic::prepare() {
    found_ = true;
    const auto count = static_cast<std::size_t>(own_.domain.nx) + 1;
    for (Edge& edge : edges_) {
        edge.points.resize(count);
        edge.line.assign(count, missing);
    }
    if (own_.domain.proj == proj_latlon && plot_.has_halves()) {
        turns_.resize(count);
        turned_.assign(count, false);
    }
    find_window();
}

// Widens the box (left, right, bottom, top) in the product's coordinates by a
// point of the plot. `whole` is set where the point says nothing.
void RadMosaic::look_at(float x, float y, std::array<double, 4>* box, bool* whole) const {
    float lat = missing_f;
    float lon = missing_f;
    if (plot_.untran(x, y, &lat, &lon) == 0 || !is_set(lat)) {
        *whole = true;
        return;
    }
    double a = lon;
    double b = lat;
    if (own_.domain.proj == proj_latlon) {
        // The turn that lies nearest to the image.
        a = own_.domain.clon + std::remainder(a - own_.domain.clon, 360.0);
    } else {
        float px = missing_f;
        float py = missing_f;
        if (own_.tran(lat, lon, &px, &py) == 0) {
            *whole = true;
            return;
        }
        a = px;
        b = py;
    }
    (*box)[0] = std::min((*box)[0], a);
    (*box)[1] = std::max((*box)[1], a);
    (*box)[2] = std::min((*box)[2], b);
    (*box)[3] = std::max((*box)[3], b);
}

// Rows and columns that may meet the window, by points along its edge: a box about
// their images, and as much as lies between two points more on each side.
void RadMosaic::find_window() {
    const Domain& own = own_.domain;
    rows_ = {0, own.ny};
    columns_ = {0, own.nx};
    const MAP_limits& lim = plot_.limits;
    std::array<double, 4> box = {1e9, -1e9, 1e9, -1e9};
    bool whole = false;
    for (int i = 0; i <= samples && !whole; ++i) {
        const float x = lim.x_min + (lim.x_max - lim.x_min) * static_cast<float>(i) / samples;
        const float y = lim.y_min + (lim.y_max - lim.y_min) * static_cast<float>(i) / samples;
        look_at(x, lim.y_min, &box, &whole);
        look_at(x, lim.y_max, &box, &whole);
        look_at(lim.x_min, y, &box, &whole);
        look_at(lim.x_max, y, &box, &whole);
    }
    if (whole) {
        return;
    }
    const bool degrees = own.proj == proj_latlon;
    for (const float pole : {90.0F, -90.0F}) {
        float x = missing_f;
        float y = missing_f;
        if (plot_.tran(pole, own.clon, &x, &y) != 0 && plot_.shows(x, y, 2.0)) {
            return; // all longitudes meet in the window
        }
    }
    const auto range = [](double low, double high, double step, int count) {
        const double margin = (high - low) / samples + 2 * step;
        const double first = std::floor((low - margin) / step);
        const double last = std::ceil((high + margin) / step);
        return Range{static_cast<int>(std::clamp(first, 0.0, static_cast<double>(count))),
                     static_cast<int>(std::clamp(last, 0.0, static_cast<double>(count)))};
    };
    rows_ = range(top_ - box[3], top_ - box[2], own.dy, own.ny + first_line_);
    rows_.first = std::max(rows_.first - first_line_, 0);
    rows_.end = std::min(rows_.end - first_line_, own.ny);
    // An image or a window that goes round the earth has no first column.
    if (!degrees || (static_cast<double>(own.dx) * own.nx < 340.0 && box[1] - box[0] < 180.0)) {
        columns_ = range(box[0] - left_, box[1] - left_, own.dx, own.nx);
    }
}

// Where the line of a corner meets its column on the plot. Returns 0 for nowhere.
int RadMosaic::place(Edge& edge, int line, int column, Gpt& p) {
    const Domain& own = own_.domain;
    const auto at = static_cast<std::size_t>(column);
    const auto x = [&] { return static_cast<float>(left_ + column * static_cast<double>(own.dx)); };
    const auto y = [&] {
        return static_cast<float>(top_ - (line + first_line_) * static_cast<double>(own.dy));
    };
    if (!turns_.empty()) {
        if (edge.half_line != line) {
            edge.half_line = line;
            edge.half = plot_.lat_half(y());
        }
        if (!turned_[at]) {
            turned_[at] = true;
            turns_[at] = plot_.lon_half(x());
        }
        return Map::join(edge.half, turns_[at], &p.x, &p.y);
    }
    float lat = y();
    float lon = x();
    if (own.proj != proj_latlon && (own_.untran(lon, lat, &lat, &lon) == 0 || !is_set(lat))) {
        return 0;
    }
    return plot_.tran(lat, lon, &p.x, &p.y);
}

const Gpt& RadMosaic::corner(int line, int column) {
    Edge& edge = edges_[static_cast<std::size_t>(line & 1)];
    const auto at = static_cast<std::size_t>(column);
    if (edge.line[at] == line) {
        return edge.points[at];
    }
    edge.line[at] = line;
    Gpt& p = edge.points[at];
    if (place(edge, line, column, p) == 0) {
        p = {missing_f, missing_f};
    }
    return p;
}

// Counts a figure asked for. False when there were too many.
bool RadMosaic::has_room() {
    if (asked_ < most_asked && drawn_ < rad_most_figures) {
        ++asked_;
        return true;
    }
    if (asked_ <= most_asked) {
        asked_ = most_asked + 1; // reported
        MESS_print(mess_warn, "RadMosaic: More figures than any mosaic has, cut\n");
        PLT_lost_output();
    }
    return false;
}

// Whether the box about a figure meets the window.
bool RadMosaic::in_view(const std::array<Gpt, 5>& figure) const {
    const MAP_limits& lim = plot_.limits;
    const auto [left, right] = std::minmax({figure[0].x, figure[1].x, figure[2].x, figure[3].x});
    const auto [low, high] = std::minmax({figure[0].y, figure[1].y, figure[2].y, figure[3].y});
    return left <= lim.x_max && right >= lim.x_min && low <= lim.y_max && high >= lim.y_min;
}

// A run on a line that may meet the window.
void RadMosaic::draw_seen(int line, int column, int run, float value) {
    const Gattribs* look = fills_.get(value);
    const int end =
        static_cast<int>(std::min<long>(static_cast<long>(column) + run, own_.domain.nx));
    if (look == nullptr || column >= end || column < 0) {
        return;
    }
    if (!found_) {
        prepare();
        draw(line, column, run, value); // where the line is still seen
        return;
    }
    // The pieces before the window are passed over as a whole.
    int from = column;
    if (from < columns_.first) {
        from += (columns_.first - from) / chunk_ * chunk_;
    }
    if (from >= std::min(end, columns_.end)) {
        return;
    }
    Gpt right_top = corner(line, from);
    Gpt right_low = corner(line + 1, from);
    while (from < end && from < columns_.end && has_room()) {
        const Gpt left_top = right_top;
        const Gpt left_low = right_low;
        from = std::min(from + chunk_, end);
        right_top = corner(line, from);
        right_low = corner(line + 1, from);
        if (!rad_is_place(left_top) || !rad_is_place(left_low) || !rad_is_place(right_low) ||
            !rad_is_place(right_top)) {
            continue;
        }
        const std::array<Gpt, 5> figure =
            corners_ == Corners::from_top
                ? std::array<Gpt, 5>{left_top, left_low, right_low, right_top, left_top}
                : std::array<Gpt, 5>{left_low, left_top, right_top, right_low, left_low};
        if (!in_view(figure)) {
            continue;
        }
        ++drawn_;
        ++PLT_get_tally().figures;
        if (look_ == nullptr || look_copy_.color != look->color ||
            look_copy_.fill_pat != look->fill_pat) {
            look_copy_ = {};
            look_copy_.color = look->color;
            look_copy_.fill_pat = look->fill_pat;
            look_ = &look_copy_;
            GPH_fill_attr(look_);
        }
        gfill_area(static_cast<int>(figure.size()), figure.data());
    }
}
