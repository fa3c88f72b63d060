// kav_plt: the plotter of KAVRAD mosaics. State: the open file, its header, and what
// mosaics share (rad_mosaic).
#include "kavrad.h"

#include "cont.h"
#include "data_file.h"
#include "file_kind.h"
#include "files.h"
#include "maptran.h"
#include "plt_tool.h"
#include "rad_mosaic.h"
#include "state_keeper.h"

#include <array>
#include <cstdint>

namespace {

struct State {
    std::FILE* ifile = nullptr;
    KAVRAD_info info;
    RadMosaicPlot plot;
};
State state;

int plot_frame() {
    return rad_mosaic_frame(state.plot, state.info.date, KAVRAD_plot_summary);
}

int plot_nextfile();

constexpr RadPlotter plotter = {
    KAVRAD_plot_param, KAVRAD_open_file, KAVRAD_close_file, rad_mosaic_domain,
    plot_frame,        KAVRAD_callback,  KAVRAD_plot,       plot_nextfile,
};

int plot_nextfile() {
    return rad_plot_nextfile(plotter, state.plot.run);
}

} // namespace

int KAVRAD_set_date(const Date* datim) {
    rad_set_date(state.plot.run, datim);
    return 0;
}

int KAVRAD_open_file(const char* filename) {
    state.ifile = FILE_open_data(filename);
    if (state.ifile == nullptr) {
        MESS_print(mess_error, "KAVRAD_open_file: Unable to open file: %s\n", filename);
        return 0;
    }
    std::array<std::uint8_t, 512> area{};
    const auto head = FILE_head(state.ifile, area);
    if (is_other_kind(head, "kavrad")) { // drawn all the same: the format has no mark
        MESS_print(mess_warn, "KAVRAD_open_file: Not a KAVRAD file: %s\n", filename);
        tell_file_kind("KAVRAD_open_file", head);
    }
    KAVRAD_header(state.ifile, &state.info);
    rad_mosaic_take(state.plot, filename, state.info.date, state.info.label, state.info.domain);
    return 1;
}

int KAVRAD_rewind_file() {
    return KAVRAD_rewind(state.ifile);
}

int KAVRAD_close_file() {
    if (state.ifile == nullptr) {
        return 0;
    }
    FILE_close(state.ifile);
    state.ifile = nullptr;
    return 1;
}

int KAVRAD_plot(Domain* domain) {
    const bool redraw = rad_open_session(plotter, state.plot.run, state.plot.words, domain);
    return rad_plot_files(plotter, state.plot.run, domain, redraw);
}

int KAVRAD_plot_param() {
    return rad_decode_words([](const char* word) { rad_mosaic_word(state.plot, word); });
}

void KAVRAD_callback(int, const char* str, float x, float y) {
    PLT_print_location(str, x, y);
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
    CONT_flash_value(str, x, y);
}

int KAVRAD_plot_summary() {
    if (!rad_mosaic_begin(state.plot, state.info.label, state.info.domain)) {
        return -1;
    }
    PLT_set_callback(KAVRAD_callback);
    PLT_mess("KAVRAD Sum");
    RadMosaic mosaic(state.info.domain, MAP_current(), state.plot.run_len,
                     RadMosaic::Corners::from_bottom, 1);
    const int nx = state.info.domain.nx;
    // A cell has its value and its run at most; runs of 0 would go on for ever.
    long left = 2L * (nx + 1) * state.info.domain.ny;
    KAVRAD_packet packet;
    int column = 0;
    int line = 0;
    for (; !mosaic.is_past(line) && KAVRAD_get_packet(state.ifile, &packet) != 0;) {
        if (--left < 0) {
            MESS_print(mess_warn,
                       "KAVRAD_plot_summary: More packets than cells, the rest is left\n");
            break;
        }
        if (packet.run == -1) {
            if (column == 0) {
                continue; // it closes the line that ended by itself
            }
            packet.run = nx - column;
        }
        mosaic.draw(line, column, packet.run, packet.value);
        column += packet.run;
        if (column >= nx - 1) {
            column = 0;
            ++line;
        }
    }
    if (left >= 0 && line < state.info.domain.ny && !mosaic.is_past(line) && !KAVRAD_has_ended()) {
        MESS_print(mess_warn, "KAVRAD_plot_summary: The file is damaged or not whole:%s\n",
                   state.plot.name);
    }
    return 0;
}

void keep_kav_plt(StateKeeper& keeper) {
    keeper.close_by([] { KAVRAD_close_file(); });
    keeper.keep(state);
}
