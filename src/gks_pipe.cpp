// gks_pipe: the transformations as they are: six windows and viewports, the
// workstation's, and all that is derived from them, with the coordinate functions
// that go by them. Owns that state. Nothing here draws or records: gks_tran.cpp sets
// them, and every device draws by them.

#include "gks_pipe.h"

#include "state_keeper.h"
#include "text_num.h"

#include <algorithm>

namespace {

Gtransformations tran;

// An empty rectangle has no scale: all of it falls on one point.
float ratio(float a, float b) {
    return b == 0.0F ? 0.0F : a / b;
}

Gtransform scales(const Gcoords& to, const Gcoords& from) {
    return {ratio(to.x_ext, from.x_ext), ratio(to.y_ext, from.y_ext)};
}

// Fits the workstation window into the viewport, at its low corner.
Gcoords fit_plt(const Gcoords& wkwn, const Gcoords& wkvp, int win_x, int win_y) {
    Gcoords plt{};
    if (ratio(wkvp.x_ext, wkwn.x_ext) > ratio(wkvp.y_ext, wkwn.y_ext)) {
        plt.y_ext = wkvp.y_ext;
        plt.y_max = wkvp.y_max;
        plt.x_ext = ratio(wkwn.x_ext * wkvp.y_ext, wkwn.y_ext);
        plt.x_max = plt.x_ext + wkvp.x_min;
    } else {
        plt.x_ext = wkvp.x_ext;
        plt.x_max = wkvp.x_max;
        plt.y_ext = ratio(wkwn.y_ext * wkvp.x_ext, wkwn.x_ext);
        plt.y_max = plt.y_ext + wkvp.y_min;
    }
    plt.x_min = static_cast<float>(win_x) + wkvp.x_min;
    plt.y_min = static_cast<float>(win_y) + wkvp.y_min;
    return plt;
}

Gclip_rect pixel_rect(const Gcoords& vp) {
    const int x = trunc_int(xNDC_p(vp.x_min) + 0.5F);
    const int width = trunc_int(xNDC_p(vp.x_max) - static_cast<float>(x) + 1.5F);
    const int y = trunc_int(yNDC_p(vp.y_max) + 0.5F);
    const int height = trunc_int(yNDC_p(vp.y_min) - static_cast<float>(y) + 1.5F);
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::uint16_t>(std::clamp(width, 0, 65535)),
            static_cast<std::uint16_t>(std::clamp(height, 0, 65535))};
}

// The same on paper, Y up.
Grectangle print_rect(const Gcoords& vp) {
    const int x = trunc_int(xNDC_ps(vp.x_min));
    const int y = trunc_int(yNDC_ps(vp.y_min));
    return {x, y, trunc_int(xNDC_ps(vp.x_max) - static_cast<float>(x) + 1.5F),
            trunc_int(yNDC_ps(vp.y_max) - static_cast<float>(y) + 1.5F)};
}

// One axis of gset_aspect.
void place(float low, float high, float size, Gint center, float* out_low, float* out_high) {
    if (center == 2) {
        *out_low = low + ((high - low) - size) / 2.0F;
        *out_high = *out_low + size;
    } else if (center == 3) {
        *out_high = high;
        *out_low = high - size;
    } else {
        *out_low = 0.0F;
        *out_high = size;
    }
}

} // namespace

Gtransformations& gtransformations() {
    return tran;
}

void gderive_tran() {
    tran.wn_vp = scales(tran.cur_vp, tran.cur_wn);
    tran.wkwn_plt = scales(tran.plt, tran.wkwn);
    tran.pipe = {tran.cur_wn.x_min, tran.cur_wn.y_min, tran.wn_vp.x,    tran.wn_vp.y,
                 tran.cur_vp.x_min, tran.cur_vp.y_min, tran.wkwn.x_min, tran.wkwn.y_min,
                 tran.wkwn_plt.x,   tran.wkwn_plt.y,   tran.plt.x_min,  tran.plt.y_min,
                 tran.wkwn.y_max};
    tran.clip_rect = pixel_rect(tran.cur_vp);
}

void grefit_tran() {
    int x = 0;
    int y = 0;
    gget_win_offset(&x, &y);
    tran.plt = fit_plt(tran.wkwn, tran.wkvp, x, y);
    gderive_tran();
}

bool gis_tran(const char* func, int n) {
    if (n >= 0 && n < num_trans) {
        return true;
    }
    gerr_printf(func, "invalid transformation number: %d\n", n);
    return false;
}

const Gpipe& gget_pipe() {
    return tran.pipe;
}

int ginq_norm_tran(int n, int* err, Gtran* out) {
    if (!gis_tran("ginq_norm_tran", n)) {
        *err = -1;
        return -1;
    }
    *out = {to_lim(tran.wn[n]), to_lim(tran.vp[n])};
    *err = 0;
    return 0;
}

int ginq_cur_norm_tran_num(int* err, int* n) {
    *err = 0;
    *n = tran.cur_trans;
    return 0;
}

int gset_aspect(const Glim* vin, Glim* vout, Gaspect asp, Gcenter center) {
    const float dx = vin->x_max - vin->x_min;
    const float dy = vin->y_max - vin->y_min;
    float w = dx;
    float h = dy;
    if (asp.y / dy > asp.x / dx) {
        w = asp.x * dy / asp.y;
    } else {
        h = asp.y * dx / asp.x;
    }
    const Glim in = *vin; // `vout` may be the same record
    place(in.x_min, in.x_max, w, center.x, &vout->x_min, &vout->x_max);
    place(in.y_min, in.y_max, h, center.y, &vout->y_min, &vout->y_max);
    return 0;
}

int gpts_in_win(int n, const Gpt* pts) {
    if (n < 1) {
        return 0;
    }
    Glim box = {pts[0].x, pts[0].x, pts[0].y, pts[0].y};
    for (int i = 1; i < n; ++i) {
        box.x_min = std::min(box.x_min, pts[i].x);
        box.x_max = std::max(box.x_max, pts[i].x);
        box.y_min = std::min(box.y_min, pts[i].y);
        box.y_max = std::max(box.y_max, pts[i].y);
    }
    const Gcoords& w = tran.cur_wn;
    const bool outside =
        box.x_max < w.x_min || box.x_min > w.x_max || box.y_max < w.y_min || box.y_min > w.y_max;
    return outside ? 0 : 1;
}

int gget_xviewport(Gclip_rect* rect) {
    *rect = tran.clip_rect;
    return 0;
}

int gget_gviewport(Grectangle* rect) {
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        *rect = {tran.clip_rect.x, tran.clip_rect.y, tran.clip_rect.width, tran.clip_rect.height};
        break;
    case Gdevice::metafile:
    case Gdevice::postscript:
    case Gdevice::hpgl:
    case Gdevice::none:
        *rect = print_rect(tran.cur_vp);
        break;
    }
    return 0;
}

float xW_NDC(float x) {
    return (x - tran.cur_wn.x_min) * tran.wn_vp.x + tran.cur_vp.x_min;
}

float yW_NDC(float y) {
    return (y - tran.cur_wn.y_min) * tran.wn_vp.y + tran.cur_vp.y_min;
}

float xNDC_p(float x) {
    return hold_within((x - tran.wkwn.x_min) * tran.wkwn_plt.x + tran.plt.x_min, pixel_limit);
}

float yNDC_p(float y) {
    return hold_within((tran.wkwn.y_max - y) * tran.wkwn_plt.y + tran.plt.y_min, pixel_limit);
}

float xNDC_ps(float x) {
    return hold_within((x - tran.wkwn.x_min) * tran.wkwn_plt.x + tran.plt.x_min, print_limit);
}

float yNDC_ps(float y) {
    return hold_within((y - tran.wkwn.y_min) * tran.wkwn_plt.y + tran.plt.y_min, print_limit);
}

float xW_p(float x) {
    return xNDC_p(xW_NDC(x));
}

float yW_p(float y) {
    return yNDC_p(yW_NDC(y));
}

float xW_ps(float x) {
    return pipe_x(tran.pipe, x);
}

float yW_ps(float y) {
    return pipe_y(tran.pipe, y);
}

float xp_W(float x) {
    const float ndc = ratio(x - tran.plt.x_min, tran.wkwn_plt.x) + tran.wkwn.x_min;
    return ratio(ndc - tran.cur_vp.x_min, tran.wn_vp.x) + tran.cur_wn.x_min;
}

float yp_W(float y) {
    const float ndc = tran.wkwn.y_max - ratio(y - tran.plt.y_min, tran.wkwn_plt.y);
    return ratio(ndc - tran.cur_vp.y_min, tran.wn_vp.y) + tran.cur_wn.y_min;
}

float xW_trans(float x, int from, int to) {
    if (!gis_tran("xW_trans", from) || !gis_tran("xW_trans", to)) {
        return x;
    }
    const Gcoords& fw = tran.wn[from];
    const Gcoords& fv = tran.vp[from];
    const Gcoords& tw = tran.wn[to];
    const Gcoords& tv = tran.vp[to];
    const float ndc = ratio((x - fw.x_min) * fv.x_ext, fw.x_ext) + fv.x_min;
    return ratio(ndc - tv.x_min, tv.x_ext) * tw.x_ext + tw.x_min;
}

float yW_trans(float y, int from, int to) {
    if (!gis_tran("yW_trans", from) || !gis_tran("yW_trans", to)) {
        return y;
    }
    const Gcoords& fw = tran.wn[from];
    const Gcoords& fv = tran.vp[from];
    const Gcoords& tw = tran.wn[to];
    const Gcoords& tv = tran.vp[to];
    const float ndc = ratio((y - fw.y_min) * fv.y_ext, fw.y_ext) + fv.y_min;
    return ratio(ndc - tv.y_min, tv.y_ext) * tw.y_ext + tw.y_min;
}

void keep_gks_pipe(StateKeeper& keeper) {
    keeper.keep(tran);
}
