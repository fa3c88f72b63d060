// maptran: the current map: the calls that have no map to give and mean the one
// that the plot lies on. Everything else is in map_proj, as functions of a map.
// State: the current map. MAP_domain must be called before any transformation.
#include "maptran.h"

#include "state_keeper.h"

namespace {

struct State {
    Map map;
    int plot_limit = missing;
};
State state;

} // namespace

// --- The current domain ------------------------------------------------------------------

const Map& MAP_current() {
    return state.map;
}

int MAP_domain(const Domain* dom) {
    if (dom == nullptr) {
        state.map.set_code(missing);
        return -1;
    }
    state.map.take(*dom);
    return 0;
}

Domain* MAP_get_domain(Domain* dom) {
    if (dom == nullptr) {
        return &state.map.domain;
    }
    *dom = state.map.domain;
    return dom;
}

int MAP_proj(int proj) {
    state.map.set_code(proj);
    return 0;
}

int MAP_get_proj() {
    return state.map.domain.proj;
}

int MAP_coord(float rlat, float rlon) {
    state.map.set_reference(rlat, rlon);
    return 0;
}

float MAP_get_clat() {
    return state.map.domain.clat;
}

float MAP_get_clon() {
    return state.map.domain.clon;
}

int MAP_tran_center(float* x, float* y) {
    return MAP_tran(state.map.domain.clat, state.map.domain.clon, x, y);
}

int MAP_set_limits() {
    state.map.set_limits();
    return 0;
}

int MAP_get_limits(MAP_limits* lim) {
    *lim = state.map.limits;
    return 0;
}

int MAP_set_view(const MAP_limits* vp) {
    state.map.set_view(*vp);
    return 0;
}

int MAP_get_up_left(float* x, float* y) {
    *x = state.map.limits.x_min;
    *y = state.map.limits.y_max;
    return 0;
}

// --- Transformation ----------------------------------------------------------------------

int MAP_tran(float lat, float lon, float* x, float* y) {
    return state.map.tran(lat, lon, x, y);
}

int MAP_untran(float x, float y, float* lat, float* lon) {
    return state.map.untran(x, y, lat, lon);
}

int MAP_in_domain(float x, float y) {
    return state.map.shows(x, y) ? 1 : 0;
}

int MAP_in_grid_domain(float x, float y) {
    constexpr double steps = 3.0;
    return state.map.shows(x, y, steps) ? 1 : 0;
}

int MAP_grid_tran(float gx, float gy, float* x, float* y) {
    return state.map.grid_tran(gx, gy, x, y) - 1;
}

int MAP_grid_untran(float x, float y, float* gx, float* gy) {
    return state.map.grid_untran(x, y, gx, gy) - 1;
}

// --- Directions and distances --------------------------------------------------------------

int MAP_offset(float xi, float yi, float dir, float rad_km, float* xf, float* yf) {
    return state.map.offset(xi, yi, dir, rad_km, xf, yf);
}

float MAP_factor(float lat, float /*lon*/) {
    return state.map.factor(lat);
}

float MAP_dir_adj(float dir, float x, float y) {
    return state.map.dir_adj(dir, x, y);
}

float MAP_dir(float x1, float y1, float x2, float y2) {
    return state.map.dir(x1, y1, x2, y2);
}

int MAP_set_plot_limit(int val) {
    state.plot_limit = val;
    return 0;
}

void keep_maptran(StateKeeper& keeper) {
    keeper.keep(state);
}
