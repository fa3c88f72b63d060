// geometry_text.cpp: the area of a page that a plot may use. No state.

#include "geometry_text.h"

#include "text_num.h"
#include "zyr.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace {

int scaled(float factor, int n) {
    return whole_units(static_cast<double>(factor) * n);
}

// Do two stretches have a part in common?
template <typename Number> bool meet(Number at, Number length, Number from, Number size) {
    return at < from + size && at + length > from;
}

// A point has no extent, and coordinates beyond the limit are held back. Nothing
// is seen of what lies beside the page.
bool usable(const Grectangle& area, const Grectangle& page) {
    constexpr int least = 2;
    constexpr int most = 100000;
    const auto in_range = [](int v, int low) { return v >= low && v <= most; };
    return in_range(area.width, least) && in_range(area.height, least) && in_range(area.x, -most) &&
           in_range(area.y, -most) && meet(area.x, area.width, page.x, page.width) &&
           meet(area.y, area.height, page.y, page.height);
}

} // namespace

int whole_units(double length) {
    constexpr double least_part = 2.5e-7;
    constexpr double limit = 2.0e9;
    const double held = length > -limit ? std::min(length, limit) : -limit;
    const double near = std::round(held);
    return static_cast<int>(std::fabs(held - near) <= std::fabs(held) * least_part ? near : held);
}

bool read_panel(const char* text, Gpanel* panel) {
    constexpr float most_cells = 8.0F;
    const bool whole = take_float(&text, &panel->width) && take_char(&text, 'x') &&
                       take_float(&text, &panel->height) && take_char(&text, '+') &&
                       take_float(&text, &panel->x) && take_char(&text, '+') &&
                       take_float(&text, &panel->y);
    if (panel->width > 1.0F) {
        const float columns = std::clamp(panel->width, 1.0F, most_cells);
        const float rows = std::clamp(panel->height, 1.0F, most_cells);
        *panel = {1.0F / columns, 1.0F / rows, panel->x / columns, 1.0F - (panel->y + 1.0F) / rows};
    }
    return whole;
}

bool is_on_page(const Gpanel& panel) {
    return meet(panel.x, panel.width, 0.0F, 1.0F) && meet(panel.y, panel.height, 0.0F, 1.0F);
}

Grectangle panel_area(const Gpanel& panel, const Grectangle& page) {
    return {scaled(panel.x, page.width), scaled(panel.y, page.height),
            scaled(panel.width, page.width), scaled(panel.height, page.height)};
}

Grectangle unit_area(const char* text, const Grectangle& page, float unit) {
    const char* cursor = text;
    int w = 0;
    int h = 0;
    const bool sized = take_int(&cursor, &w) && take_char(&cursor, 'x') && take_int(&cursor, &h);
    if (!sized) {
        cursor = text;
    }
    int x = 0;
    int y = 0;
    const bool across = take_int(&cursor, &x);
    const bool placed = across && take_int(&cursor, &y);
    if (across && !placed) {
        return page;
    }
    Grectangle area = page;
    if (sized) {
        area.width = scaled(unit, w);
        area.height = scaled(unit, h);
    }
    if (placed) {
        area.x = page.x + scaled(unit, x);
        area.y = page.y + scaled(unit, y);
    }
    return area;
}

void set_page_area(const char* text, const Grectangle& page, float unit) {
    Grectangle area = page;
    if (text != nullptr && *text != '\0') {
        if (std::tolower(static_cast<unsigned char>(*text)) == 'p') {
            Gpanel panel;
            read_panel(text + 1, &panel); // what is not given keeps its default
            area = panel_area(panel, page);
        } else {
            area = unit_area(text, page, unit);
        }
        if (!usable(area, page)) {
            MESS_print(mess_warn, "gopen_ws: geometry leaves no room: %s\n", text);
            area = page;
        }
    }
    gset_xsize(area.width, area.height);
    gset_xoff(area.x, area.y);
}
