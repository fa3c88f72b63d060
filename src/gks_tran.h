// gks_tran.h: the road from world coordinates to the print device, for loops
// over many points. All steps are in single precision, in this order.
#pragma once

// The current transformation and the workstation's, ready to use.
struct Gpipe {
    float wn_x, wn_y;       // corner of the window, world
    float wn_vp_x, wn_vp_y; // world to NDC
    float vp_x, vp_y;       // corner of the viewport, NDC
    float wkwn_x, wkwn_y;   // corner of the workstation window, NDC
    float plt_fx, plt_fy;   // NDC to device units
    float plt_x, plt_y;     // corner of the device rectangle
};

// Valid until the next call that changes a transformation.
const Gpipe& gget_pipe();

constexpr float print_limit = 100000.0F;

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
