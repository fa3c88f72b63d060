// Level and colour lists, level files and the contour words of plot_param, with the
// bar, the contours and the numbers that they give. The first byte says which: "f" a
// level file, "v" and "m" one of velocity in knots and metres a second, "p" plot_param,
// "b" con_base and con_interval, "u" the list of a user, "t" the list of the colour
// table, else a list.
#include "cont.h"
#include "cont_state.h"
#include "map.h"
#include "maptran.h"
#include "plot_session.h"
#include "run_program.h"
#include "state_keeper.h"
#include "zyrgrid.h"
#include "zyrresrc.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

const TempDir& dir() {
    static const TempDir own;
    return own;
}

const StateKeeper& open_session() {
    static const StateKeeper keeper = [] {
        require(open_plot_session("p,/dev/null"));
        Domain domain = mercator_domain();
        MAP_setup(&domain);
        StateKeeper first;
        keep_colors(first);
        keep_cont(first);
        return first;
    }();
    return keeper;
}

void take(char kind, const std::string& text) {
    RES_put_again("color_fill", kind == 'u' ? text.c_str() : "miss");
    RES_put_again("plot_param", kind == 'p' ? text.c_str() : "");
    RES_put_again("con_base", kind == 'b' ? text.c_str() : "");
    RES_put_again("con_interval", kind == 'b' ? text.c_str() : "");
    CONT_set_quantity(kind == 'v' ? "velocity" : kind == 'm' ? "velocity_ms" : nullptr);
    CONT_param_decode();
    if (kind == 'f' || kind == 'v' || kind == 'm') {
        CONT_set_fill_colors(dir().rewrite("a.lev", text).c_str(), 1);
    } else if (kind == 't') {
        RES_put_again("color_table", "zyr.clr");
        CLR_read_table(nullptr);
        CONT_set_fill_colors("", 1);
    } else if (kind == 'u') {
        CONT_set_fill_colors(text.size() % 2 == 0 ? "reflectivity" : "red-blue", 0);
    } else {
        const bool list = kind != 'p' && kind != 'b';
        CONT_set_fill_colors(list ? text.c_str() : "red-blue,green", 1);
    }
}

// A hill with a gap, contoured in each way, and the bar of its levels.
void draw() {
    constexpr std::array<float, 12> values = {1, 5, -30, 2, 9, 60, missing_f, 1e6F, 0, 3, 20, 41};
    GRD_report grid;
    grid.domain = MAP_current().domain;
    grid.domain.nx = 4;
    grid.domain.ny = 3;
    grid.domain.dx = grid.domain.dy = 0.5F;
    grid.grid = values.data();
    for (const int type : {cont_lines, cont_neg_dashed, cont_fill_lines, cont_values}) {
        CONT_set_type(type);
        CONT_draw_contour(&grid);
    }
    CONT_set_cont_ext(&grid);
    CONT_draw_bar(1, "label");
    const Glim& bar = cont::state().bar_lim;
    CONT_get_bar_value((bar.x_min + bar.x_max) / 2, (bar.y_min + bar.y_max) / 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const StateKeeper& first = open_session();
    if (size == 0) {
        return 0;
    }
    first.restore();
    CONT_init();
    take(static_cast<char>(data[0]),
         std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    const cont::State& s = cont::state();
    require(s.color_num <= cont_max_steps && s.num_cont <= cont_max_steps);
    require(s.color_num < 0 || s.fill_attrib[s.color_num].color == -2);
    for (const char(&label)[cont_label_size] : s.cont_label) {
        require(label[cont_label_size - 1] == '\0');
    }
    for (const float value : {-1e38F, -7.5F, 0.0F, 0.1F, 12.0F, 1e38F, missing_f}) {
        Gattribs attrib;
        CONT_get_fill_attrib(value, &attrib);
        require(attrib.color >= -1);
    }
    std::array<float, cont_max_steps> levels{};
    require(CONT_get_values(levels.data()) <= cont_max_steps);
    CONT_set_cont_ext(nullptr);
    draw();
    CONT_set_range(100.0F, -100.0F);
    CONT_set_cutoff(50.0F, 5.0F);
    CONT_set_bar_range(90.0F, 0.0F);
    draw();
    require(CONT_set_fill_colors("red", 1) == -1); // until they are free again
    CONT_reset_values();
    CONT_reset_fill_set();
    CONT_set_intrvl(CONT_get_intrvl());
    CONT_set_base(CONT_get_base());
    CONT_set_type(CONT_get_type());
    CONT_set_bar(CONT_get_bar());
    CONT_set_fill_pat(CONT_get_fill_pat());
    CONT_set_skip(2, 1);
    CONT_set_plot_offset(0.01F, 0.0F);
    CONT_set_values(levels.data(), 3);
    CONT_set_fill_attribs(std::array<Gattribs, 1>{}.data());
    draw();
    return 0;
}
