// gks_tool.cpp: life of the workstation: opening, clearing and closing it, each by
// what its device needs. gopen_gks comes first, then gopen_ws. State: whether the
// redraw list was in use before; what the others ask is in gks_state.cpp.

#include "gks.h"
#include "gks_attr.h"
#include "gks_draw.h"
#include "gks_obj.h"
#include "gks_plot.h"
#include "gks_state.h"
#include "state_keeper.h"
#include "zyr.h"

#include <cstdlib>
#include <cstring>

namespace {

struct Opening {
    int redraw = 1; // of the redraw list before a file device
};
Opening opening;

// A file device has no events, and its file is all that is kept of the plot.
void hold_redraw() {
    gset_cache(0);
    opening.redraw = gset_redraw(0);
}

bool is_file_device(Gdevice device) {
    switch (device) {
    case Gdevice::metafile:
    case Gdevice::postscript:
    case Gdevice::hpgl:
        return true;
    case Gdevice::window:
    case Gdevice::pixmap:
    case Gdevice::none:
        return false;
    }
    return false;
}

// A window, or the display in memory where that is named or no other answers.
int open_screen(const char* conn_id) {
    const int status = gnames_memory(conn_id) ? 1 : gopen_window(conn_id);
    return status > 0 ? gopen_memory() : status;
}

// The branch of the device, with what initialises the plot there. Negative
// after a report.
int open_device(const char* conn_id, Gdevice device) {
    switch (device) {
    case Gdevice::window:
        return open_screen(conn_id) == 0 ? init_display : init_none;
    case Gdevice::pixmap:
        return gopen_pixmap(conn_id) == 0 ? init_display : init_none;
    case Gdevice::postscript:
        return gps_open_ws(conn_id) == 0 ? init_postscript : init_none;
    case Gdevice::hpgl:
        return ghpgl_open_ws(conn_id) == 0 ? init_hpgl : init_none;
    case Gdevice::metafile:
        return gmeta_open_ws(conn_id) == 0 ? init_metafile : init_none;
    case Gdevice::none:
        break;
    }
    gerr_printf("gopen_ws", "invalid workstation type: %d\n", static_cast<int>(device));
    return init_none;
}

// What is left to the device besides its display. -1 when its file is not whole.
int close_device(Gdevice device) {
    switch (device) {
    case Gdevice::window:
        return gclear_objs();
    case Gdevice::postscript:
        return gps_close_file();
    case Gdevice::hpgl:
        return ghpgl_close_file();
    case Gdevice::metafile:
        return gmeta_close_file();
    case Gdevice::pixmap:
    case Gdevice::none:
        return 0;
    }
    return 0;
}

} // namespace

int gemergency_close_gks() {
    return 0;
}

int gactivate_ws(int /*ws_id*/) {
    return 0;
}

int gdeactivate_ws(int /*ws_id*/) {
    return 0;
}

int gopen_ws(int /*ws_id*/, const char* conn_id, Gws_type ws_type) {
    const char* print = std::getenv("zyrprint");
    if (ws_type == ws_postscript && print != nullptr && stricmp(print, "hpgl") == 0) {
        ws_type = ws_hpgl;
    }
    const auto device = static_cast<Gdevice>(ws_type);
    const bool file_device = is_file_device(device);
    if (file_device) {
        hold_redraw();
    }
    const int init = open_device(conn_id, device);
    if (init == init_none) {
        if (file_device) {
            gset_redraw(opening.redraw);
        }
        return -1;
    }
    gmark_open(true);
    gset_event_server(gcheck_event);
    ginit_objs();
    ginit_plot(init);
    if (gtype_is_META()) {
        gput_state();
    }
    gsetup_fonts(); // a missing font has been reported: the plot goes on without text
    ginit_background();
    constexpr int mode_clear = 1;
    if (gtype_is_PIX() && gget_pix_mode() == mode_clear) {
        gclear_frame(frame_base);
    }
    if (gtype_is_WIN_PIX()) {
        gflush();
        gcheck_event();
    }
    gset_cursor(cursor_number_wait);
    return 0;
}

int gclose_ws(int /*ws_id*/) {
    if (gchk_graphics() == 0) {
        return -1;
    }
    gclose_display();
    gset_xsize(0, 0);
    if (is_file_device(gget_device())) {
        gset_redraw(opening.redraw);
    }
    const int status = close_device(gget_device());
    gmark_open(false);
    return status;
}

int gclear_ws(int /*ws_id*/, int /*flag*/) {
    if (!gtype_is_WIN() || gclear_window() != 0) {
        return 0; // a page of a file device begins with its opening
    }
    greset_zoom();
    gclear_objs();
    gput_state();
    ginit_plot(init_none);
    return 0;
}

void keep_gks_tool(StateKeeper& keeper) {
    keeper.keep(opening);
}
