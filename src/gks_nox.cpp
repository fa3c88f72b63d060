// gks_nox: stands for the window in a build without X (-DZYR_X11=OFF), whose only
// display is the one in memory. It has no events, no cursor and no title to show.
// No state.

#include "gks_draw.h"
#include "gks_state.h"
#include "zyr.h"

namespace {

int no_display() {
    MESS_print(mess_warn, "gopen_ws: unable to connect to display\n");
    MESS_print(mess_warn, "gopen_ws: this build has no windows; a page needs none: -de p,FILE; nor "
                          "do images: -of png@FILE\n");
    gset_win_type(ws_none);
    return -1;
}

} // namespace

int gopen_window(const char* /*conn_id*/) {
    return gis_image_run() ? 1 : no_display();
}

int gopen_pixmap(const char* /*conn_id*/) {
    return no_display();
}

int gset_pix_mode(int /*mode*/) {
    return 0;
}

int gget_pix_mode() {
    return 0;
}

int gset_local_colormap(int /*value*/) {
    return 0;
}

void gclear_errors() {}

// --- Title, cursor and bell -----------------------------------------------------

int gshow_win_title() {
    return -1;
}

int gset_win_title(const char* title) {
    gkeep_win_title(title);
    return -1;
}

int gset_win_title_extra(const char* /*text*/) {
    return -1;
}

int gset_cursor(int /*n*/) {
    return 0;
}

int gget_cursor_type() {
    return 0;
}

int gbell(int /*percent*/) {
    return 0;
}

// --- Events and zoom ------------------------------------------------------------

int ginit_event(int /*type*/) {
    return 0;
}

int gcheck_event() {
    return 0;
}

int ghold(int /*ws_id*/) {
    return 0;
}

int gget_input_mode() {
    return 0;
}

int gset_mouse_callback(Gmouse_func* /*func*/) {
    return 0;
}

int gset_refresh_callback(int /*seconds*/, Grefresh_func* /*func*/) {
    return 0;
}

int gset_rubber_band(int /*value*/) {
    return 0;
}

int gzoom(int /*ind*/, int /*x*/, int /*y*/, int /*factor*/, int /*flag*/) {
    return 0;
}

int greset_zoom() {
    return 0;
}

int gget_zoom() {
    return 1;
}
