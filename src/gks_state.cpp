// gks_state: what every module of the kernel asks: whether it is open, the type,
// size and place of the workstation, its names, and where reports go. Owns just
// that and calls no other module of the kernel; gks_tool.cpp opens and closes.

#include "gks_state.h"

#include "gks_utf8.h"
#include "state_keeper.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstdarg>
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
    bool image_run = false;          // the plot ends in image files
    std::array<char, 40> geometry{}; // of gset_geometry; outlives a closing
    std::array<char, 20> prog_name{"X11_Graph"};
    std::array<char, 60> win_title{"X11_Graph"};
};
Station station;

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

int gchk_graphics() {
    return kernel.open_graphics;
}

void gmark_open(bool open) {
    kernel.open_graphics = open ? 1 : 0;
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

void gkeep_win_title(const char* title) {
    if (copy_text(station.win_title.data(), station.win_title.size(), title) != 0) {
        gcut_title(station.win_title.data());
    }
}

const char* gget_win_title() {
    return station.win_title.data();
}

int gset_geometry(const char* geometry) {
    return copy_text(station.geometry.data(), station.geometry.size(), geometry);
}

const char* gchosen_geometry() {
    return station.geometry[0] != '\0' ? station.geometry.data() : RES_get("geometry");
}

int gset_image_run(int value) {
    station.image_run = value != 0;
    return 0;
}

bool gis_image_run() {
    return station.image_run;
}

void keep_gks_state(StateKeeper& keeper) {
    keeper.keep(kernel);
    keeper.keep(station);
}
