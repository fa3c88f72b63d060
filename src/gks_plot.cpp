// gks_plot: the attributes of all primitives as one: reset for a plot, sent again,
// set aside for a replay. No state: each primitive has its own.

#include "gks_plot.h"

#include "gks_attr.h"
#include "gks_draw.h"

int ginit_plot(int type) {
    if (type == init_none) {
        return -1;
    }
    greset_text();
    greset_line();
    greset_marker();
    greset_fill();
    ginit_loop();
    ginit_tran(type);
    ginit_text(type);
    ginit_line(type);
    ginit_marker(type);
    ginit_fill(type);
    if (type == init_display) {
        gclear_errors();
        if (gtype_is_PIX()) {
            gset_rw_colors(0); // the colours of its owner stay
        }
    }
    if (type == init_display || type == init_again) {
        ginit_event(type);
        gdraw_reset_pens();
    }
    return 0;
}

void gput_state() {
    gput_tran_state();
    gput_line_state();
    gput_fill_state();
    gput_marker_state();
    gput_text_state();
}

void ghold_state(Ghold what) {
    ghold_tran_state(what);
    ghold_line_state(what);
    ghold_fill_state(what);
    ghold_marker_state(what);
    ghold_text_state(what);
}
