// gks_pipe.h: the transformations in force (gks_pipe.cpp), which gks_tran.cpp alone
// sets; and the road from world coordinates to the device, for loops over many
// points. All its steps are in single precision, in this order.
#pragma once

#include "gks.h"

#include <array>

// --- The road -------------------------------------------------------------------

// The current transformation and the workstation's, ready to use.
struct Gpipe {
    float wn_x, wn_y;       // corner of the window, world
    float wn_vp_x, wn_vp_y; // world to NDC
    float vp_x, vp_y;       // corner of the viewport, NDC
    float wkwn_x, wkwn_y;   // corner of the workstation window, NDC
    float plt_fx, plt_fy;   // NDC to device units
    float plt_x, plt_y;     // corner of the device rectangle
    float wkwn_y_max;       // upper edge of the workstation window, NDC
};

// Valid until the next call that changes a transformation.
const Gpipe& gget_pipe();

constexpr float print_limit = 100000.0F;
constexpr float pixel_limit = 30000.0F;

// Holds a device coordinate within `limit`; NaN becomes -limit.
inline float hold_within(float v, float limit) {
    return v > -limit ? (v < limit ? v : limit) : -limit;
}

inline float pipe_x(const Gpipe& p, float x) {
    const float ndc = (x - p.wn_x) * p.wn_vp_x + p.vp_x;
    return hold_within((ndc - p.wkwn_x) * p.plt_fx + p.plt_x, print_limit);
}

inline float pipe_y(const Gpipe& p, float y) {
    const float ndc = (y - p.wn_y) * p.wn_vp_y + p.vp_y;
    return hold_within((ndc - p.wkwn_y) * p.plt_fy + p.plt_y, print_limit);
}

// Pixels, Y down.
inline float pipe_px(const Gpipe& p, float x) {
    const float ndc = (x - p.wn_x) * p.wn_vp_x + p.vp_x;
    return hold_within((ndc - p.wkwn_x) * p.plt_fx + p.plt_x, pixel_limit);
}

inline float pipe_py(const Gpipe& p, float y) {
    const float ndc = (y - p.wn_y) * p.wn_vp_y + p.vp_y;
    return hold_within((p.wkwn_y_max - ndc) * p.plt_fy + p.plt_y, pixel_limit);
}

// --- The transformations ----------------------------------------------------------

constexpr Gcoords unit_square = {0.0F, 0.0F, 1.0F, 1.0F, 1.0F, 1.0F};

struct Gtransformations {
    std::array<Gcoords, num_trans> wn{}; // windows, world
    std::array<Gcoords, num_trans> vp{}; // viewports, NDC
    int cur_trans = 0;
    Gcoords cur_wn = unit_square;
    Gcoords cur_vp = unit_square;
    Gtransform wn_vp = {1.0F, 1.0F};
    Gcoords wkwn = unit_square; // workstation window, NDC
    Gcoords wkvp = unit_square; // workstation viewport, device units
    Gcoords plt = unit_square;  // device rectangle in use
    Gtransform wkwn_plt = {1.0F, 1.0F};
    Gclip_rect clip_rect = {0, 0, 1, 1}; // current viewport in pixels
    Gpipe pipe{};
};
Gtransformations& gtransformations();
// To be called after a change: the first works out all that follows from windows,
// viewports and the device rectangle, the second first fits that to the device.
void gderive_tran();
void grefit_tran();
// False, after a report, for a number that no transformation has.
bool gis_tran(const char* func, int n);

constexpr Gcoords from_lim(const Glim& lim) {
    return {
        lim.x_min, lim.y_min, lim.x_max, lim.y_max, lim.x_max - lim.x_min, lim.y_max - lim.y_min};
}

constexpr Glim to_lim(const Gcoords& c) {
    return {c.x_min, c.x_max, c.y_min, c.y_max};
}
