// gks_hpgl: the HPGL workstation. Device units are plotter units, 1015 to the
// inch, Y up. A file is plain HPGL, or in the PCL commands that put a printer into
// HPGL mode. The module keeps the plotter's state in its own variables and writes
// a command only when that state changes. ghpgl_open_ws (from gopen_ws) comes
// first. Greys are the PostScript device's, which every device fills in.

#include "gks.h"

#include "fixed_format.h"
#include "geometry_text.h"
#include "gks_pipe.h"
#include "gks_print.h"
#include "out_file.h"
#include "out_text.h"
#include "text_num.h"
#include "zyr.h"

#include "files.h"
#include "state_keeper.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdlib>
#include <span>
#include <string_view>
#include <utility>

namespace {

constexpr double units_per_inch = 1015.0;
constexpr float units_per_pixel = 10.15F;
constexpr int page_offset = 10;
constexpr Gpage usual_page = {10.5F, 8.0F};
constexpr float roll_width = 23.5F;    // inches
constexpr float longest_side = 98.0F;  // inches within the coordinates
constexpr float unknown_level = -1.0F; // of no command

constexpr std::string_view page_end = "SP;PG;\n";
constexpr std::string_view pcl_end = "SP;PG;\n\033%0A\033E";

enum Pcl { pcl_none = 0, pcl_wrapped = 1, pcl_rotated = 2 };

struct Plotter {
    // In force in the file.
    float gray_level = 0.0F; // of the pen
    float fill_level = 0.0F;
    int col_ind = -1;
    float line_width = 1.0F; // multiple of the base width
    float line_type = 1.0F;

    int pcl = pcl_wrapped;
    float base_width = 0.2F; // millimetres
    int pr_rot = 0;          // of the page, degrees
    float pr_scale = 1.0F;   // of all coordinates, about the page's corner
    Gpage page = usual_page;

    std::FILE* out_file = nullptr;
    bool append = false;
    std::string_view end; // of the page that is added to
};
Plotter hp;

// The commands of one primitive.
class Commands : public OutText {
public:
    Commands() : OutText(hp.out_file) {}
    // "PU" or "PD" and a place in device units.
    void pen(std::string_view command, float x, float y) {
        make_room(command.size() + std::size_t{2} * fixed0_size + 2);
        char* p = std::copy(command.begin(), command.end(), place());
        p = put_place(p, x, y);
        *p++ = ';';
        advance(p);
    }
    void move(const Gpipe& pipe, const Gpt& pt) { pen(up, pipe_x(pipe, pt.x), pipe_y(pipe, pt.y)); }
    void line(const Gpipe& pipe, const Gpt& pt) {
        pen(down, pipe_x(pipe, pt.x), pipe_y(pipe, pt.y));
    }
    void place_at(float x, float y) {
        make_room(std::size_t{2} * fixed0_size + 1);
        advance(put_place(place(), x, y));
    }

    static constexpr std::string_view up = "PU";
    static constexpr std::string_view down = "PD";

private:
    static char* put_place(char* out, float x, float y) {
        out = format_fixed0(out, hold_within(x * hp.pr_scale, print_limit));
        *out++ = ',';
        return format_fixed0(out, hold_within(y * hp.pr_scale, print_limit));
    }
};

// --- State commands -----------------------------------------------------------

// The pen keeps its colour; print colours are screened.
void put_color(Commands& out, int ind) {
    constexpr std::array screens = {"SV;\n", "SV1,0;\n", "SV1,30;\n"};
    const bool print = gis_print_colr(ind);
    const float level = print ? gprint_gray(ind) : 0.0F;
    if (level == hp.gray_level) {
        return;
    }
    out.put(screens[print ? (ind - first_print_colr) / 3 : 0]);
    hp.gray_level = level;
}

void put_fill_color(Commands& out, int ind) {
    if (gget_fill_print_solid() != 0) {
        out.put("FT1;\n");
        hp.fill_level = 0.0F;
        return;
    }
    const float white = 1.0F;
    const float gray = ind == -1             ? white
                       : gis_print_colr(ind) ? gprint_gray(ind)
                                             : gps_get_gray(ind);
    if (gray == hp.fill_level) {
        return;
    }
    out.put("FT10,");
    out.number(100.0F - gray * 100.0F, 0);
    out.put(";\n");
    hp.fill_level = gray;
}

void put_width(Commands& out, int ind, float width) {
    const int factor = gprint_factor(ind);
    const float wide = width == 0.0F ? 1.0F : width;
    const float times = static_cast<float>(factor > 1 ? factor : gget_line_print_bold());
    if (times * wide == hp.line_width) {
        return;
    }
    out.put("PW");
    out.number(gprint_held_width(times * hp.base_width * wide), 1);
    out.put(";\n");
    hp.line_width = times * wide;
}

void put_type(Commands& out, int type) {
    constexpr std::array types = {"LT;\n", "LT2,5,1;\n", "LT5,8,1;\n", "LT6,10,1;\n", "LT2,1,1;\n"};
    if (static_cast<float>(type) == hp.line_type) {
        return;
    }
    if (type >= 1 && type <= static_cast<int>(types.size())) {
        out.put(types[type - 1]);
    }
    hp.line_type = static_cast<float>(type);
}

// --- Options ------------------------------------------------------------------

bool is_turned() {
    return hp.pr_rot == 90 || hp.pr_rot == 180 || hp.pr_rot == 270;
}

bool set_page(const Gpage& page) {
    if (page.x > longest_side || page.y > longest_side) {
        return false;
    }
    hp.page = page;
    return true;
}

// Words that need no value, and what they set.
constexpr int keep = -1;
struct Switch {
    const char* word;
    int pcl, rotation;
};
constexpr std::array switches = {
    Switch{"pcl",   pcl_wrapped, keep},
    Switch{"nopcl", pcl_none,    keep},
    Switch{"lj",    pcl_rotated, keep},
    Switch{"port",  keep,        90  },
    Switch{"land",  keep,        0   },
};

bool decode_switch(const char* option) {
    for (const Switch& row : switches) {
        if (stricmp(option, row.word) != 0) {
            continue;
        }
        if (row.pcl != keep) {
            ghpgl_set_pcl(row.pcl);
        }
        if (row.rotation != keep) {
            ghpgl_set_rotate(row.rotation);
        }
        return true;
    }
    return false;
}

bool decode_option(const char* option) {
    float value = 0.0F;
    if (const char* angle = gprint_value(option, "rot")) {
        return take_float(&angle, &value) && ghpgl_set_rotate(trunc_int(value)) == 0 &&
               (hp.pr_rot == 0 || is_turned()); // a plotter has no other
    }
    if (const char* scale = gprint_value(option, "scale")) {
        return take_float(&scale, &value) && ghpgl_set_scale(value) == 0;
    }
    if (const char* width = gprint_value(option, "lwidth")) {
        return take_float(&width, &value) && ghpgl_set_base_width(value) == 0;
    }
    Gpage page{};
    return gprint_page(option, &page) ? set_page(page) : decode_switch(option);
}

// A roll is the plotter's own, so that the environment alone names it.
bool decode_environment(const char* option) {
    const char* length = gprint_value(option, "roll");
    if (length == nullptr) {
        return decode_option(option);
    }
    constexpr float least = 1.0F;
    float inches = 0.0F;
    return take_float(&length, &inches) && inches >= least && set_page({inches, roll_width});
}

const char* geometry_text() {
    const char* text = RES_get("geometry");
    return text != nullptr ? text : std::getenv("zyrhp_geometry");
}

} // namespace

// --- Opening and closing --------------------------------------------------------

int ghpgl_open_ws(const char* conn_id) {
    std::array<char, file_name_size> name{};
    output_name(conn_id, {"zyrhp_out"}, "zyr.hpgl", name.data(), name.size());
    gset_win_type(ws_hpgl);
    if (ghpgl_open_file(name.data()) == nullptr) {
        gerr_printf("gopen_ws", "unable to open HPGL file\n");
        explain_output("gopen_ws");
        return -1;
    }
    hp.page = usual_page;
    ghpgl_init();
    take_options(std::getenv("zyrhp_param"), 0, decode_environment);
    take_options(conn_id, 1, decode_option);
    const auto side = [](double inches) { return whole_units((inches - 0.5) * units_per_inch); };
    const Grectangle area = {page_offset, page_offset, side(hp.page.x), side(hp.page.y)};
    set_page_area(geometry_text(), area, units_per_pixel);
    return ghpgl_init_file();
}

std::FILE* ghpgl_open_file(const char* name) {
    hp.out_file = gprint_open(name, {pcl_end, page_end}, &hp.append, &hp.end);
    return hp.out_file;
}

int ghpgl_init() {
    hp.pcl = pcl_wrapped;
    hp.gray_level = 0.0F;
    // What an earlier plot of the same file left is not known.
    hp.fill_level = hp.append ? unknown_level : 0.0F;
    hp.col_ind = -1;
    hp.line_width = 1.0F;
    hp.line_type = 1.0F;
    return 0;
}

int ghpgl_init_file() {
    Commands out;
    if (!hp.append) {
        if (hp.pcl != pcl_none) {
            out.put("\033E\033%1B\033&l1O\n"); // reset, HPGL mode, landscape
        }
        out.put("IN;SP1;PA;\n");
        if (hp.pcl == pcl_rotated) {
            out.put("RO90;\n");
        }
        if (is_turned()) {
            out.put("RO");
            out.number(hp.pr_rot);
            out.put(";\n");
        }
    }
    out.put("PW");
    out.number(hp.base_width, 1);
    out.put(";SV;LT;\n");
    return 0;
}

int ghpgl_close_file() {
    if (hp.out_file == nullptr) {
        return -1;
    }
    if (!hp.append) {
        hp.end = hp.pcl != pcl_none ? pcl_end : page_end;
    }
    Commands().put(hp.end);
    const int status = close_output(std::exchange(hp.out_file, nullptr));
    if (status < 0) {
        gerr_printf("ghpgl_close_file", "unable to write HPGL file\n");
        explain_output("ghpgl_close_file");
    } else if (status == 0) {
        MESS_print(mess_mess, "Created HPGL file\n");
    }
    return status;
}

int ghpgl_printf(const char* format, ...) {
    if (hp.out_file == nullptr) {
        return 0;
    }
    std::va_list args;
    va_start(args, format);
    std::vfprintf(hp.out_file, format, args);
    va_end(args);
    return 0;
}

// --- Figures --------------------------------------------------------------------

int ghpgl_move(float x, float y) {
    Commands().move(gget_pipe(), {x, y});
    return 0;
}

int ghpgl_line(float x, float y) {
    Commands().line(gget_pipe(), {x, y});
    return 0;
}

int ghpgl_move_abs(float x, float y) {
    Commands().pen(Commands::up, x, y);
    return 0;
}

int ghpgl_line_abs(float x, float y) {
    Commands().pen(Commands::down, x, y);
    return 0;
}

int ghpgl_polyline(int n, const Gpt* pts, int color, float width, int type) {
    constexpr int points_per_line = 10;
    const Gpipe& pipe = gget_pipe();
    Commands out;
    put_width(out, color, width);
    put_color(out, color);
    put_type(out, type);
    for (int i = 0; i < n; ++i) {
        if (i == 0) {
            out.move(pipe, pts[i]);
        } else {
            out.line(pipe, pts[i]);
        }
        if ((i + 1) % points_per_line == 0) {
            out.put("\n");
        }
    }
    out.put("\n");
    return 0;
}

int ghpgl_fill_area(int n, const Gpt* pts, int color) {
    const Gpipe& pipe = gget_pipe();
    Commands out;
    put_fill_color(out, color);
    out.move(pipe, pts[0]);
    out.put("PM0;");
    for (int i = 1; i < n; ++i) {
        out.line(pipe, pts[i]);
    }
    out.put("PM1;PM2;FP;\n");
    return 0;
}

float ghpgl_begin_markers(int color, float width) {
    ghpgl_begin_text(color, width);
    return 10.0F * units_per_pixel;
}

int ghpgl_marker_path(int n, const Gpt* pts) {
    Commands out;
    for (int i = 0; i < n; ++i) {
        out.pen(i == 0 ? Commands::up : Commands::down, pts[i].x, pts[i].y);
    }
    out.put("\n");
    return 0;
}

int ghpgl_begin_text(int color, float width) {
    Commands out;
    put_width(out, color, width);
    put_color(out, color);
    put_type(out, 1);
    return 0;
}

int ghpgl_glyph(int n, const Gpen_step* steps) {
    constexpr int longest_stroke = 30;
    const Gpipe& pipe = gget_pipe();
    int points = 0; // of the stroke under way
    Commands out;
    for (const Gpen_step& step : std::span(steps, static_cast<std::size_t>(n))) {
        if (!step.down) {
            out.move(pipe, step.at);
            points = 1;
            continue;
        }
        out.line(pipe, step.at);
        if (++points == longest_stroke) { // the pen stays down at its place
            out.put("\n");
            points = 1;
        }
    }
    out.put("\n");
    return 0;
}

int ghpgl_set_clip(float x0, float y0, float x1, float y1) {
    constexpr float margin = 0.1F;
    Commands out;
    out.put("IW ");
    out.place_at(x0 - margin, y0 - margin);
    out.put(",");
    out.place_at(x1 + margin, y1 + margin);
    out.put(";\n");
    return 0;
}

// --- State ----------------------------------------------------------------------

int ghpgl_set_color(int ind) {
    Commands out;
    put_color(out, ind);
    return 0;
}

int ghpgl_set_fill_color(int ind) {
    Commands out;
    put_fill_color(out, ind);
    return 0;
}

int ghpgl_set_width(int ind, float width) {
    Commands out;
    put_width(out, ind, width);
    return 0;
}

int ghpgl_set_type(int type) {
    Commands out;
    put_type(out, type);
    return 0;
}

int ghpgl_set_base_width(float width) {
    constexpr float most = 100.0F; // millimetres
    if (!(width >= 0.0F && width <= most)) {
        return -1;
    }
    hp.base_width = width;
    return 0;
}

int ghpgl_set_pcl(int value) {
    hp.pcl = value;
    return 0;
}

int ghpgl_set_rotate(int deg) {
    hp.pr_rot = deg;
    return 0;
}

int ghpgl_set_scale(float scale) {
    // The picture would be a point, or held back at the limits.
    if (!(scale >= 0.01F && scale <= 100.0F)) {
        return -1;
    }
    hp.pr_scale = scale;
    return 0;
}

void keep_gks_hpgl(StateKeeper& keeper) {
    keeper.keep(hp);
}
