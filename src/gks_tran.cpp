// gks_tran: sets the normalisation and workstation transformations (gks_pipe.cpp):
// each setter records itself and gives the device its clip. Owns what a replay sets
// aside; ginit_tran (from gopen_ws) sets all of it up.

#include "gks_attr.h"
#include "gks_draw.h"
#include "gks_pipe.h"
#include "state_keeper.h"

namespace {

constexpr int size_changed = 10; // of the device, given to ginit_tran
constexpr int missing_tran = -1; // selected at the start of a replay
Gtransformations tran_aside;     // while a replay runs

void set_clip() {
    const Gcoords& vp = gtransformations().cur_vp;
    const float x0 = xNDC_ps(vp.x_min);
    const float y0 = yNDC_ps(vp.y_min);
    const float x1 = xNDC_ps(vp.x_max);
    const float y1 = yNDC_ps(vp.y_max);
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        gdraw_set_clip(gtransformations().clip_rect);
        break;
    case Gdevice::metafile:
        gcgm_set_clip(x0, y0, x1, y1);
        break;
    case Gdevice::postscript:
        gps_set_clip(x0, y0, x1, y1);
        break;
    case Gdevice::hpgl:
        ghpgl_set_clip(x0, y0, x1, y1);
        break;
    case Gdevice::none:
        break;
    }
}

} // namespace

void gput_tran_state() {
    const Glim wkvp = to_lim(gtransformations().wkvp);
    const Glim wkwn = to_lim(gtransformations().wkwn);
    grecord(obj_ws_vp, gget_ws_id(), wkvp);
    grecord(obj_ws_win, gget_ws_id(), wkwn);
    for (int n = 0; n < num_trans; ++n) {
        const Glim vp = to_lim(gtransformations().vp[n]);
        const Glim wn = to_lim(gtransformations().wn[n]);
        grecord(obj_vp, n, vp);
        grecord(obj_win, n, wn);
    }
    grecord(obj_norm_tran, gtransformations().cur_trans);
}

void ghold_tran_state(Ghold what) {
    if (what == Ghold::restore) {
        gtransformations() = tran_aside;
        set_clip();
        return;
    }
    tran_aside = gtransformations();
    if (what == Ghold::begin) {
        gtransformations().cur_trans = missing_tran;
    }
}

int ginit_tran(int type) {
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    if (type != size_changed) {
        gtransformations().wkwn = unit_square;
        gtransformations().wn.fill(unit_square);
        gtransformations().vp.fill(unit_square);
        gtransformations().cur_trans = 0;
        gtransformations().cur_wn = unit_square;
        gtransformations().cur_vp = unit_square;
    }
    gtransformations().wkvp =
        from_lim({0.0F, static_cast<float>(width - 1), 0.0F, static_cast<float>(height - 1)});
    grefit_tran();
    if (type != size_changed) {
        set_clip();
    }
    return 0;
}

int gset_win_size(int width, int height) {
    gset_xsize(width, height);
    return ginit_tran(size_changed);
}

int gset_ws_win(int ws_id, const Glim* lim) {
    grecord(obj_ws_win, ws_id, *lim);
    gtransformations().wkwn = from_lim(*lim);
    grefit_tran();
    set_clip();
    return 0;
}

int gset_ws_vp(int ws_id, const Glim* lim) {
    grecord(obj_ws_vp, ws_id, *lim);
    gtransformations().wkvp = from_lim(*lim);
    grefit_tran();
    set_clip();
    return 0;
}

int gsel_norm_tran(int n) {
    if (!gis_tran("gsel_norm_tran", n)) {
        return -1;
    }
    if (n == gtransformations().cur_trans) {
        return 0;
    }
    grecord(obj_norm_tran, n);
    gtransformations().cur_trans = n;
    gtransformations().cur_wn = gtransformations().wn[n];
    gtransformations().cur_vp = gtransformations().vp[n];
    gderive_tran();
    set_clip();
    return 0;
}

int gset_vp(int n, const Glim* lim) {
    if (!gis_tran("gset_vp", n)) {
        return -1;
    }
    grecord(obj_vp, n, *lim);
    gtransformations().vp[n] = from_lim(*lim);
    if (n == gtransformations().cur_trans) {
        gtransformations().cur_vp = gtransformations().vp[n];
        gderive_tran();
        set_clip();
    }
    return 0;
}

int gset_win(int n, const Glim* lim) {
    if (!gis_tran("gset_win", n)) {
        return -1;
    }
    grecord(obj_win, n, *lim);
    gtransformations().wn[n] = from_lim(*lim);
    if (n == gtransformations().cur_trans) {
        gtransformations().cur_wn = gtransformations().wn[n];
        gderive_tran();
    }
    return 0;
}

void keep_gks_tran(StateKeeper& keeper) {
    keeper.keep(tran_aside);
}
