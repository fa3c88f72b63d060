// gks_tran.h: the road from world coordinates to the device, for loops over many
// points. All steps are in single precision, in this order.
#pragma once

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

// --- Attribute state as a whole -------------------------------------------------
// A metafile and the redraw list hold only changes: both begin with the state
// in force. gput_... sends every attribute of the module as its setter does.
void gput_tran_state();
void gput_line_state();
void gput_fill_state();
void gput_marker_state();
void gput_text_state();

// An attribute that no setter is given.
constexpr int missing_index = -9999;
// A replay must leave the state as it was. `begin` sets the state aside, and
// the first setters of the replay all count; `keep` sets a copy aside; `restore`
// brings the state back.
enum class Ghold { begin, keep, restore };
void ghold_tran_state(Ghold what);
void ghold_line_state(Ghold what);
void ghold_fill_state(Ghold what);
void ghold_marker_state(Ghold what);
void ghold_text_state(Ghold what);

// All of it at once (gks_obj.cpp).
void gput_state();
void ghold_state(Ghold what);
