// now_plt: the plotter of NOWRad mosaics. State: the open file, its header, and what
// mosaics share (rad_mosaic).
#include "nowrad.h"

#include "cont.h"
#include "data_file.h"
#include "file_kind.h"
#include "files.h"
#include "maptran.h"
#include "plt_tool.h"
#include "rad_mosaic.h"
#include "state_keeper.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

struct State {
    std::FILE* ifile = nullptr;
    NOWRad_info info;
    RadMosaicPlot plot;
};
State state;

int plot_frame() {
    return rad_mosaic_frame(state.plot, state.info.date, NOWRad_plot_summary);
}

void tell_not_whole() {
    MESS_print(mess_warn, "NOWRad_plot_summary: The file is damaged or not whole:%s\n",
               state.plot.name);
}

int plot_nextfile();

constexpr RadPlotter plotter = {
    NOWRad_plot_param, NOWRad_open_file, NOWRad_close_file, rad_mosaic_domain,
    plot_frame,        NOWRad_callback,  NOWRad_plot,       plot_nextfile,
};

int plot_nextfile() {
    return rad_plot_nextfile(plotter, state.plot.run);
}

} // namespace

int NOWRad_set_date(const Date* datim) {
    rad_set_date(state.plot.run, datim);
    return 0;
}

int NOWRad_open_file(const char* filename) {
    state.ifile = FILE_open_data(filename);
    if (state.ifile == nullptr) {
        MESS_print(mess_error, "NOWRad_open_file: Unable to open file: %s\n", filename);
        return 0;
    }
    std::array<std::uint8_t, 512> area{};
    const auto head = FILE_head(state.ifile, area);
    NOWRad_header(state.ifile, &state.info);
    if (!NOWRad_is_one()) {
        MESS_print(mess_error, "NOWRad_open_file: Not a NOWrad file: %s\n", filename);
        tell_file_kind("NOWRad_open_file", head);
        NOWRad_close_file();
        return 0;
    }
    rad_mosaic_take(state.plot, filename, state.info.date, state.info.label, state.info.domain);
    return 1;
}

int NOWRad_rewind_file() {
    return NOWRad_rewind(state.ifile);
}

int NOWRad_close_file() {
    if (state.ifile == nullptr) {
        return 0;
    }
    FILE_close(state.ifile);
    state.ifile = nullptr;
    return 1;
}

int NOWRad_plot(Domain* domain) {
    const bool redraw = rad_open_session(plotter, state.plot.run, state.plot.words, domain);
    return rad_plot_files(plotter, state.plot.run, domain, redraw);
}

int NOWRad_plot_param() {
    return rad_decode_words([](const char* word) { rad_mosaic_word(state.plot, word); });
}

void NOWRad_callback(int, const char* str, float x, float y) {
    PLT_print_location(str, x, y);
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
    CONT_flash_value(str, x, y);
}

int NOWRad_plot_summary() {
    if (!rad_mosaic_begin(state.plot, state.info.label, state.info.domain)) {
        if (!is_set(state.info.domain.proj)) {
            tell_not_whole(); // the header breaks off, or is none
        }
        return -1;
    }
    PLT_set_callback(NOWRad_callback);
    PLT_mess("NOWRad Sum");
    RadMosaic mosaic(state.info.domain, MAP_current(), state.plot.run_len,
                     RadMosaic::Corners::from_top, 0);
    int number = 0;
    int line = 0;
    for (; !mosaic.is_past(line) && NOWRad_line(state.ifile, &number) != 0; ++line) {
        NOWRad_packet packet;
        for (int column = 0; NOWRad_get_packet(state.ifile, &packet) != 0;) {
            mosaic.draw(line, column, packet.run, packet.value);
            column = std::min(column + packet.run, state.info.domain.nx);
        }
    }
    if (line < state.info.domain.ny && !mosaic.is_past(line)) {
        tell_not_whole();
    }
    return 0;
}

void keep_now_plt(StateKeeper& keeper) {
    keeper.close_by([] { NOWRad_close_file(); });
    keeper.keep(state);
}
