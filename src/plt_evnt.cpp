// plt_evnt: what the user's events do to a plot: a rectangle zooms into the
// domain, a new window size or the clock draws it again, and a key says where
// the pointer is. State: the functions that the plotter registered, and
// the zoom. The plotter registers them after PLT_open.
#include "plt_tool.h"

#include "gks.h"
#include "maptran.h"
#include "region.h"
#include "state_keeper.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

struct Events {
    PLT_mouse_func* callback = nullptr;
    PLT_domain_func* zoom_func = nullptr;
    PLT_domain_func* resize_func = nullptr;
    PLT_refresh_func* refresh_func = nullptr;
    int zoom = 0;    // depth of the zoom
    int code = 0;    // 1: a rectangle is being drawn
    Gpt press{0, 0}; // its first corner
    Domain orig_dom; // domain before the first zoom
};
Events events;

// Extent of the picture over the steps of its grid.
float spacing(float extent, int points) {
    return extent / static_cast<float>(std::max(points - 1, 1));
}

// The domain of the rectangle between two plot points on a map.
Domain zoom_map(Domain domain, Gpt a, Gpt b) {
    MAP_untran((a.x + b.x) / 2, (a.y + b.y) / 2, &domain.clat, &domain.clon);
    const float height = std::fabs(b.y - a.y);
    domain.dx = std::max(spacing(std::fabs(b.x - a.x), domain.nx), spacing(height, domain.ny));
    domain.dy = domain.dx;
    DOM_set_base_prior(height);
    return domain;
}

// The same on a diagram, whose domain is a corner and an extent in data values.
Domain zoom_diagram(Domain domain, Gpt a, Gpt b) {
    const Gpt low{std::min(a.x, b.x), std::min(a.y, b.y)};
    const Gpt high{std::max(a.x, b.x), std::max(a.y, b.y)};
    const MapZoom zoom = MAP_current().row->zoom;
    const bool polar = zoom == MapZoom::plot;
    float first = missing_f;
    float second = missing_f;
    MAP_untran(low.x, low.y, &domain.clat, &domain.clon);
    MAP_untran(high.x, high.y, &first, &second);
    const bool plot_dx = zoom != MapZoom::data;
    domain.dx = plot_dx ? high.x - low.x : first - domain.clat;
    domain.dy = polar ? high.y - low.y : second - domain.clon;
    if (polar) {
        domain.clat = low.x;
        domain.clon = low.y;
    }
    return domain;
}

// Runs a redraw of the plotter between what every one needs before and after.
template <typename Func> void run_redraw(Func func) {
    gsel_norm_tran(0);
    const int cursor = gset_cursor(cursor_number_wait);
    func();
    gsel_norm_tran(tran_map);
    gupdate_window();
    gset_cursor(cursor);
}

// Returns whether the plotter has drawn anew: it keeps the picture when its file
// is gone.
bool redraw(PLT_domain_func* func, Domain domain) {
    bool drawn = false;
    run_redraw([&] { drawn = func != nullptr && func(&domain) >= 0; });
    return drawn;
}

Domain current_domain() {
    Domain domain;
    MAP_get_domain(&domain);
    return domain;
}

void set_base_prior(const Domain& domain) {
    if (is_map_proj(domain.proj)) {
        DOM_set_base_prior(static_cast<float>(domain.ny - 1) * domain.dy);
    }
}

// A click with an unsteady hand draws a rectangle, too.
bool is_too_small(Gpt a, Gpt b) {
    constexpr float least = 5.0F; // pixels of the window
    const auto zoom = static_cast<float>(gget_zoom());
    return zoom * std::fabs(xW_p(a.x) - xW_p(b.x)) < least ||
           zoom * std::fabs(yW_p(a.y) - yW_p(b.y)) < least;
}

int zoom_in(Gpt release) {
    if (is_too_small(events.press, release)) {
        gupdate_window(); // the rubber band goes
        return -1;
    }
    events.code = 0;
    const Domain before = current_domain();
    const Domain domain = is_map_proj(before.proj) ? zoom_map(before, events.press, release)
                                                   : zoom_diagram(before, events.press, release);
    if (events.zoom == 0) {
        events.orig_dom = before;
    }
    ++events.zoom;
    MESS_print(mess_mess, "New domain: ");
    DOM_print(mess_mess, &domain);
    if (!redraw(events.zoom_func, domain)) {
        --events.zoom;
        set_base_prior(before);
    }
    return 0;
}

int zoom_out() {
    MESS_print(mess_mess, "Original domain: ");
    DOM_print(mess_mess, &events.orig_dom);
    const Domain before = current_domain();
    set_base_prior(events.orig_dom);
    events.code = 0;
    if (redraw(events.zoom_func, events.orig_dom)) {
        events.zoom = 0;
    } else {
        set_base_prior(before);
    }
    return 0;
}

} // namespace

int PLT_set_callback(PLT_mouse_func* func) {
    events.callback = func;
    if (func != nullptr) {
        gset_mouse_callback(func);
    }
    return 0;
}

int PLT_set_zoom_func(PLT_domain_func* func) {
    events.zoom_func = func;
    return 0;
}

int PLT_set_resize_func(PLT_domain_func* func) {
    events.resize_func = func;
    return 0;
}

int PLT_set_refresh_func(int seconds, PLT_refresh_func* func) {
    events.refresh_func = func;
    return gset_refresh_callback(seconds, PLT_plot_refresh);
}

int PLT_get_zoom() {
    return events.zoom;
}

int PLT_plot_zoom(const char* event, float x, float y) {
    if (std::strcmp(event, "B1-P-Shft") == 0) {
        events.press = {x, y};
        events.code = 1;
        constexpr int rectangle_band = 2;
        gset_rubber_band(rectangle_band);
        return 0;
    }
    if (std::strncmp(event, "B1-R", 4) == 0 && events.code == 1) {
        return zoom_in({x, y});
    }
    if (std::strcmp(event, "u-Alt") == 0 && gget_zoom() == 1 && events.zoom > 0) {
        return zoom_out();
    }
    if (std::strcmp(event, "r-Alt") == 0) {
        redraw(events.zoom_func, current_domain());
        return 0;
    }
    events.code = 0;
    return -1;
}

int PLT_plot_resize(const char* event, float, float) {
    if (std::strcmp(event, "size") != 0) {
        return -1;
    }
    redraw(events.resize_func, current_domain());
    return 0;
}

void PLT_plot_refresh() {
    run_redraw([] {
        if (events.refresh_func != nullptr) {
            events.refresh_func();
        }
    });
}

int PLT_print_location(const char* event, float x, float y) {
    if (std::strcmp(event, "v-Alt") != 0) {
        return -1;
    }
    float lat = missing_f;
    float lon = missing_f;
    MAP_untran(x, y, &lat, &lon);
    MESS_print(mess_print, "Lat: %6.2f Lon: %7.2f XY: %6.2f %6.2f Pixel: %6.2f %6.2f\n", lat, lon,
               x, y, xW_p(x), yW_p(y));
    return 0;
}

void keep_plt_evnt(StateKeeper& keeper) {
    keeper.keep(events);
}
