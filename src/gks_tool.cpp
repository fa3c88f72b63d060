// gks_tool.cpp: life of the kernel and of the workstation: opening, closing,
// the type and size of the device, names, and the kernel's reports. gopen_gks
// comes first, then gopen_ws.

#include "gks.h"
#include "gks_draw.h"
#include "gks_tran.h"
#include "gks_utf8.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

struct Kernel {
    std::FILE* err_file = nullptr; // null: kernel not open
    int open_graphics = 0;         // 1: a workstation is open
};
Kernel kernel;

struct Station {
    Gws_type win_type = ws_none;
    int win_width = 640; // drawing area, device units
    int win_height = 512;
    int win_x = 0; // its offset
    int win_y = 0;
    int redraw = 1; // of the redraw list before a file device
    std::array<char, 20> prog_name{"X11_Graph"};
    std::array<char, 60> win_title{"X11_Graph"};
};
Station station;

// How ginit_plot and ginit_tran are told the device.
enum Init_type {
    init_none = -1,
    init_display = 0,
    init_again = 1, // on the same display
    init_postscript = 2,
    init_hpgl = 3,
    init_metafile = 4,
    init_size = 10 // the size of the device has changed
};

// A file device has no events, and its file is all that is kept of the plot.
void hold_redraw() {
    gset_cache(0);
    station.redraw = gset_redraw(0);
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

// The branch of the device, with what initialises the plot there. Negative
// after a report.
int open_device(const char* conn_id, Gdevice device) {
    switch (device) {
    case Gdevice::window:
        return gopen_window(conn_id) == 0 ? init_display : init_none;
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

int gopen_gks(const char* path, int /*size*/) {
    kernel.err_file = path != nullptr ? std::fopen(path, "w") : stderr;
    return kernel.err_file == nullptr ? 1 : 0;
}

int gclose_gks() {
    std::FILE* file = std::exchange(kernel.err_file, nullptr);
    if (file != nullptr && file != stderr) {
        std::fclose(file);
    }
    return 0;
}

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
            gset_redraw(station.redraw);
        }
        return -1;
    }
    kernel.open_graphics = 1;
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
    if (kernel.open_graphics == 0) {
        return -1;
    }
    gclose_display();
    station.win_width = 0;
    station.win_height = 0;
    if (is_file_device(gget_device())) {
        gset_redraw(station.redraw);
    }
    const int status = close_device(gget_device());
    kernel.open_graphics = 0;
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

int gchk_graphics() {
    return kernel.open_graphics;
}

int gchk_open(const char* func) {
    if (kernel.open_graphics != 0) {
        return 0;
    }
    gerr_printf(func, "GKS not opened\n");
    return -1;
}

int gget_ws_id() {
    return 1;
}

float gkept_width(float width) {
    switch (gget_device()) {
    case Gdevice::postscript:
        return gps_kept_width(width);
    case Gdevice::window:
    case Gdevice::pixmap:
    case Gdevice::metafile:
    case Gdevice::hpgl:
    case Gdevice::none:
        return width;
    }
    return width;
}

void gerr_printf(const char* func, const char* format, ...) {
    if (kernel.err_file == nullptr) {
        return;
    }
    std::array<char, 80> text{};
    std::va_list args;
    va_start(args, format);
    std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    MESS_print(mess_warn, "%s: ", func);
    MESS_print(mess_warn, "%s\n", text.data());
}

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

Gws_type gget_win_type() {
    return station.win_type;
}

int gset_win_type(Gws_type type) {
    station.win_type = type;
    return 0;
}

Gdevice gget_device() {
    return static_cast<Gdevice>(station.win_type);
}

bool gtype_is_WIN() {
    return station.win_type == ws_window;
}

bool gtype_is_PIX() {
    return station.win_type == ws_pixmap;
}

bool gtype_is_WIN_PIX() {
    return gtype_is_WIN() || gtype_is_PIX();
}

bool gtype_is_PS() {
    return station.win_type == ws_postscript;
}

bool gtype_is_HPGL() {
    return station.win_type == ws_hpgl;
}

bool gtype_is_META() {
    return station.win_type == ws_metafile;
}

int gget_win_size(int* width, int* height) {
    *width = station.win_width;
    *height = station.win_height;
    return 0;
}

int gget_win_offset(int* x, int* y) {
    *x = station.win_x;
    *y = station.win_y;
    return 0;
}

int gset_win_size(int width, int height) {
    gset_xsize(width, height);
    return ginit_tran(init_size);
}

int gset_xsize(int width, int height) {
    station.win_width = width;
    station.win_height = height;
    return 0;
}

int gset_xoff(int x, int y) {
    station.win_x = x;
    station.win_y = y;
    return 0;
}

int ginq_disp_space_size(Gws_type /*ws_type*/, int* err, Gdsp_size* size) {
    size->coord_units = GOTHER_UNIT;
    size->coord_size = {static_cast<float>(station.win_width - 1),
                        static_cast<float>(station.win_height - 1)};
    size->ras_size = {station.win_width, station.win_height};
    *err = 0;
    return 0;
}

int gset_prog_name(const char* name) {
    copy_text(station.prog_name.data(), station.prog_name.size(), name);
    return 0;
}

const char* gget_prog_name() {
    return station.prog_name.data();
}

void gcut_title(char* text) {
    const std::size_t size = std::strlen(text);
    for (std::size_t i = 1; i <= std::min<std::size_t>(size, 4); ++i) {
        const std::size_t length = utf8_length(static_cast<unsigned char>(text[size - i]));
        if (length > i) {
            text[size - i] = '\0';
        }
        if (length != 0) {
            return;
        }
    }
}

int gset_win_title(const char* title) {
    if (copy_text(station.win_title.data(), station.win_title.size(), title) != 0) {
        gcut_title(station.win_title.data());
    }
    return gshow_win_title();
}

const char* gget_win_title() {
    return station.win_title.data();
}

int gmessage(int level, const char* text) {
    if (!gtype_is_META()) {
        gnew_obj(obj_message, level, static_cast<int>(std::strlen(text)) + 1, text);
    }
    switch (gget_device()) {
    case Gdevice::metafile:
        return gmeta_line("ME %s", text);
    case Gdevice::postscript:
        return gps_comment("%%%%Message: %s", text);
    case Gdevice::window:
    case Gdevice::pixmap:
    case Gdevice::hpgl:
    case Gdevice::none:
        return 0;
    }
    return 0;
}
