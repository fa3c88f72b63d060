// gks_ps.cpp: the PostScript workstation. Device units are points, Y up. The
// module keeps the printer's graphics state in its own variables and writes a
// command only when that state changes. gps_open_ws (from gopen_ws) comes
// first; options set by the plot parameters hold from before it.

#include "fixed_format.h"
#include "geometry_text.h"
#include "gks.h"
#include "gks_attr.h"
#include "gks_join.h"
#include "gks_pack.h"
#include "gks_palette.h"
#include "gks_pipe.h"
#include "gks_print.h"
#include "out_file.h"
#include "out_text.h"
#include "text_num.h"
#include "zyr.h"

#include "files.h"
#include "state_keeper.h"
#include "zyrresrc.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

namespace {

constexpr float points_per_inch = 72.0F;
constexpr float points_per_pixel = 0.72F;
constexpr float color_in_force = -1.0F; // `gray_level` while a colour is in force

// The end of a page. An EPS file has saved nothing and begun no dictionary that
// it could end.
constexpr std::string_view page_end = "saveobj restore\nshowpage\nend\n%%EOF\n";
constexpr std::string_view eps_end = "showpage\n%%EOF\n";

// How each colour index prints.
struct PrintColor {
    float gray = 0.0F;
    std::array<char, 40> gray_text{"0.000 setgray\n"};
    std::array<char, 40> rgb_text{"0.00 0.00 0.00 setrgbcolor\n"};
};

struct Printer {
    // In force in the file.
    float gray_level = 0.0F;
    int ps_col_ind = -1;
    float line_width = 1.0F; // multiple of the base width
    float line_type = 1.0F;

    float base_width = 1.0F; // dots
    int pr_color = 0;
    int pr_rev = 0;
    int pr_port = 0;
    int pr_eps = 0;
    float pr_scale = 1.0F;
    float sx = 11.0F; // page, inches
    float sy = 8.5F;
    std::array<PrintColor, num_colrs> colors{};

    int pr_small = 0; // dots an inch of the printer that a small page is for; 0: a plain page

    std::FILE* out_file = nullptr; // where the drawing goes
    std::FILE* page = nullptr;     // of a small page, which takes the drawing packed
    bool append = false;
    std::string_view end; // of the page that is added to
    Gpage_box clip{};     // of a small page
    Gpage_pt last{};      // place in its path
};
Printer ps;

bool is_small() {
    return ps.page != nullptr;
}

constexpr float page_units = 100.0F; // of a small page, a point

int page_unit(float v) {
    return static_cast<int>(std::lrint(static_cast<double>(v) * page_units));
}

// One of the coordinates of a path while its text is in one place. Cells have sides
// along the axes, and figures end where they begin: the number of the first point, and
// the one written last, are copied where they come again.
class Coordinate {
public:
    // `out` has room for fixed2_size characters. Returns the end of the text.
    char* put(char* out, float value) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        for (const Written* known : {&last_, &first_}) {
            if (known->bits == bits) {
                std::memmove(out, known->text, copied); // what comes next is written over the rest
                return out + known->size;
            }
        }
        char* end = format_fixed2(out, value);
        const auto size = static_cast<std::size_t>(end - out);
        if (size <= copied) {
            (first_.text == nullptr ? first_ : last_) = {bits, size, out};
        }
        return end;
    }

private:
    static constexpr std::size_t copied = 16;
    struct Written {
        std::uint32_t bits = ~0U; // of the value; at first none that the device has
        std::size_t size = 0;
        const char* text = nullptr;
    };
    Written first_, last_;
};

void write_kept();

// The text of one primitive.
class Text : public OutText {
public:
    // What is kept of the primitives before it comes first.
    Text() : OutText(ps.out_file) { write_kept(); }
    // `op` is " mv\n" or " ln\n"; device units.
    void point(float x, float y, std::string_view op) {
        if (is_small()) {
            step(page_unit(x), page_unit(y), op == move);
            return;
        }
        make_room(std::size_t{2} * fixed2_size + op.size() + 1);
        char* p = format_fixed2(place(), x);
        *p++ = ' ';
        advance(format_fixed2(p, y));
        put(op);
    }
    // Of a small page: to a place, or by a step from the last one.
    void step(int x, int y, bool begins) {
        number(begins ? x : x - ps.last.x);
        put(" ");
        number(begins ? y : y - ps.last.y);
        put(begins ? " M\n" : " l\n");
        ps.last = {x, y};
    }
    // World coordinates.
    void path(int n, const Gpt* pts) {
        if (is_small()) {
            const Gpipe& pipe = gget_pipe();
            for (int i = 0; i < n; ++i) {
                step(page_unit(pipe_x(pipe, pts[i].x)), page_unit(pipe_y(pipe, pts[i].y)), i == 0);
            }
            return;
        }
        const Gpipe& pipe = gget_pipe();
        for (int start = 0; start < n; start += few) {
            make_room(std::size_t{few} * (2 * fixed2_size + 1 + move.size()));
            Coordinate x;
            Coordinate y;
            char* p = place();
            for (int i = start; i < std::min(n, start + few); ++i) {
                p = x.put(p, pipe_x(pipe, pts[i].x));
                *p++ = ' ';
                p = y.put(p, pipe_y(pipe, pts[i].y));
                std::memcpy(p, (i == 0 ? move : line).data(), move.size());
                p += move.size();
            }
            advance(p);
        }
    }

    static constexpr int few = 8; // points whose text surely fits
    static constexpr std::string_view move = " mv\n";
    static constexpr std::string_view line = " ln\n";
    static_assert(move.size() == line.size());
};

// A grey that is no colour's own: the fixed levels of the print colours.
void put_gray(OutText& out, float level, std::string_view command) {
    if (ps.gray_level != level) {
        out.put(command);
    }
    ps.gray_level = level;
}

// Entry of an index, -1 and all that is outside the table being the background.
const PrintColor& print_color(int ind) {
    return ps.colors[ind >= 0 && ind < num_colrs ? ind : background_colr];
}

void put_rgb(OutText& out, int ind) {
    if (ps.ps_col_ind == ind && ps.gray_level < 0.0F) {
        return;
    }
    out.put(print_color(ind).rgb_text.data());
    ps.gray_level = color_in_force;
    ps.ps_col_ind = ind;
}

void put_print_colr(OutText& out, int ind) {
    constexpr std::array commands = {"0 setgray\n", "1 setgray\n", ".7 setgray\n"};
    put_gray(out, gprint_gray(ind), commands[(ind - first_print_colr) / 3]);
}

// Lines and text: in grey output always black.
void put_color(OutText& out, int ind) {
    if (gis_print_colr(ind)) {
        put_print_colr(out, ind);
    } else if (ps.pr_color != 0) {
        put_rgb(out, ind);
    } else {
        put_gray(out, 0.0F, "0 setgray\n");
    }
}

// The colour of an area by its own index.
void put_area_color(OutText& out, int ind) {
    if (ps.pr_color != 0) {
        put_color(out, ind);
    } else if (gis_print_colr(ind)) {
        put_print_colr(out, ind);
    } else if (ind < 0) {
        put_gray(out, 1.0F, "1 setgray\n");
    } else {
        const PrintColor& color = print_color(ind);
        put_gray(out, color.gray, color.gray_text.data());
    }
}

void put_fill_color(OutText& out, int ind) {
    if (ps.pr_color == 0 && gget_fill_print_solid() != 0) {
        out.put("0 setgray\n");
        ps.gray_level = 0.0F;
    } else {
        put_area_color(out, ind);
    }
}

void put_width(OutText& out, int ind, float width) {
    const int factor = gprint_factor(ind);
    const int bold = factor > 1 ? factor : gget_line_print_bold();
    const float wanted = static_cast<float>(bold) * width;
    if (wanted == ps.line_width) {
        return;
    }
    const float dots = gprint_held_width(static_cast<float>(bold) * ps.base_width * width);
    std::array<char, 64> text{};
    if (factor > 1) {
        std::snprintf(text.data(), text.size(), "%d dot lw\n", trunc_int(dots));
    } else {
        std::snprintf(text.data(), text.size(), "%2.1f dot lw\n", static_cast<double>(dots));
    }
    out.put(text.data());
    ps.line_width = wanted;
}

void put_type(OutText& out, int type) {
    constexpr std::array dashes = {"[] 0 setdash\n", "[6] 0 setdash\n", "[3 6] 0 setdash\n",
                                   "[6 6 3 6] 0 setdash\n", "[2] 0 setdash\n"};
    constexpr std::array small_dashes = {"[] 0 setdash\n", "[600] 0 setdash\n",
                                         "[300 600] 0 setdash\n", "[600 600 300 600] 0 setdash\n",
                                         "[200] 0 setdash\n"};
    if (static_cast<float>(type) == ps.line_type) {
        return;
    }
    if (type >= 1 && type <= static_cast<int>(dashes.size())) {
        out.put(is_small() ? small_dashes[type - 1] : dashes[type - 1]);
    }
    ps.line_type = static_cast<float>(type);
}

float hold(float v) {
    return hold_within(v, print_limit);
}

// What a primitive is, with the number of its points. A packed page has no reader of it.
void put_comment(OutText& out, std::string_view kind, int n) {
    if (!is_small()) {
        out.put(kind);
        out.number(n);
        out.put("\n");
    }
}

// --- A small page ---------------------------------------------------------------

void write_kept() {
    if (is_small()) {
        gjoin_flush(ps.out_file, ps.clip, put_area_color);
    }
}

// The colour index under which a fill prints now: what is kept of it is written later,
// when other fills may print black or not.
int print_index(int ind) {
    const bool black = ps.pr_color == 0 && gget_fill_print_solid() != 0;
    return black ? first_print_colr : ind;
}

int fill_small(int n, const Gpt* pts, int color) {
    constexpr int corners = 4;
    const Gpipe& pipe = gget_pipe();
    if (n == corners ||
        (n == corners + 1 && pts[0].x == pts[corners].x && pts[0].y == pts[corners].y)) {
        std::array<Gpage_pt, corners> at{};
        for (int i = 0; i < corners; ++i) {
            at[i] = {page_unit(pipe_x(pipe, pts[i].x)), page_unit(pipe_y(pipe, pts[i].y))};
        }
        if (gjoin_add(at, print_index(color))) {
            return 0;
        }
        write_kept();
        if (gjoin_add(at, print_index(color))) {
            return 0;
        }
    }
    Text out;
    out.path(n, pts);
    out.put("cp\n");
    put_fill_color(out, color);
    out.put("fill\n");
    return 0;
}

// They begin at the corner of the page, from which the plot is moved and scaled.
Gpage_dots printer_dots() {
    const auto scale = static_cast<double>(ps.pr_scale);
    constexpr double inch = static_cast<double>(points_per_inch * page_units);
    const double margin = ps.pr_eps != 0 ? 0.0 : 0.25;
    const double height = std::round(100.0 * (static_cast<double>(ps.sy) - margin)) / 100.0;
    return {inch / ps.pr_small / scale, -margin * inch / scale,
            (ps.pr_port != 0 ? -margin : height) * inch / scale};
}

// From here on the drawing is packed. Its dictionary is its own, and what it sets is
// gone after it: another plot may be added to the page.
void begin_small() {
    ps.page = ps.out_file;
    ps.last = {};
    ps.clip = {-page_unit(print_limit), page_unit(print_limit), -page_unit(print_limit),
               page_unit(print_limit)};
    constexpr std::string_view unpack =
        "{currentfile/ASCII85Decode filter dup/FlateDecode filter cvx exec flushfile}exec\n";
    std::fwrite(unpack.data(), 1, unpack.size(), ps.page);
    ps.out_file = gpack_open(ps.page);
    gjoin_begin(printer_dots());
    Text out;
    out.put("gsave 16 dict begin .01 dup scale/lw{100 mul setlinewidth}bind def 1 dot lw\n");
    out.put(gjoin_prologue());
}

void end_small() {
    {
        Text out;
        out.put("end grestore\n");
    }
    gpack_close(ps.out_file);
    ps.out_file = std::exchange(ps.page, nullptr);
}

// --- Options and geometry -----------------------------------------------------

bool decode_switch(const char* option) {
    if (stricmp(option, "port") == 0) {
        gps_set_orient(1);
    } else if (stricmp(option, "land") == 0) {
        gps_set_orient(0);
    } else if (stricmp(option, "eps") == 0) {
        gps_set_EPS(1);
    } else if (stricmp(option, "noeps") == 0) {
        gps_set_EPS(0);
    } else if (stricmp(option, "color") == 0) {
        gps_set_colorPS(1);
        gset_inverse(1);
    } else if (stricmp(option, "gray") == 0) {
        gps_set_colorPS(0);
    } else if (stricmp(option, "nosmall") == 0) {
        gps_set_small(0);
    } else {
        return false;
    }
    return true;
}

bool decode_option(const char* option) {
    float value = 0.0F;
    if (const char* scale = gprint_value(option, "scale")) {
        return take_float(&scale, &value) && gps_set_scale(value) == 0;
    }
    if (const char* width = gprint_value(option, "lwidth")) {
        return take_float(&width, &value) &&
               gps_set_base_width(static_cast<float>(trunc_int(value))) == 0;
    }
    if (const char* dots = gprint_value(option, "small")) {
        constexpr int laser = 300;
        int dpi = laser;
        return (*dots == '\0' || take_int(&dots, &dpi)) && gps_set_small(dpi) == 0;
    }
    Gpage page{};
    if (gprint_page(option, &page)) {
        return gps_set_size(page.x, page.y) == 0;
    }
    return decode_switch(option);
}

const char* geometry_text() {
    const char* text = RES_get("geometry");
    for (const char* env : {"zyrps_geometry", "PSGEOMETRY"}) {
        text = text != nullptr ? text : std::getenv(env);
    }
    return text;
}

// --- Head of the file ---------------------------------------------------------

void put_heading() {
    if (ps.pr_eps != 0) {
        gps_printf("%%!PS-Adobe-3.0 EPSF-3.0\n");
        gps_printf(ps.pr_port != 0 ? "%%%%BoundingBox: 0 0 756 576\n"
                                   : "%%%%BoundingBox: 0 0 576 756\n");
    } else {
        gps_printf(ps.pr_small != 0 ? "%%!PS-Adobe-3.0\n" : "%%!PS-Adobe-1.0\n");
    }
    if (ps.pr_small != 0) {
        gps_printf("%%%%LanguageLevel: 3\n%%%%DocumentData: Clean7Bit\n");
    }
    gps_comment("%%%%Title: ZYR Graphics Display: %s", gget_win_title());
    gps_printf("%%%%Creator: ZYR Postscript Processor-2.0\n");
    gps_printf("%%%%CreationDate: %s", creation_date().c_str());
    gps_printf("%%%%EndComments\n%%%%Postscript initialization\n");
}

void put_page_setup() {
    if (ps.pr_eps == 0) {
        gps_printf("30 dict begin\n/saveobj save def\n");
    }
    gps_printf("/inch {72 mul} def\n/dot {.33 mul} def\n/mv {moveto} def\n/ln {lineto} def\n"
               "/lw {setlinewidth} def\n/np {newpath} def\n/cp {closepath} def\n");
    if (ps.pr_port == 0) {
        const auto height = static_cast<double>(ps.sy);
        gps_printf("90 rotate\n");
        if (ps.pr_eps != 0) {
            gps_printf("0. inch -%.2f inch translate\n", height);
        } else {
            gps_printf(".25 inch -%.2f inch translate\n", height - 0.25);
        }
    } else if (ps.pr_eps == 0) {
        gps_printf(".25 inch .25 inch translate\n");
    }
}

} // namespace

// --- Opening and closing ------------------------------------------------------

int gps_open_ws(const char* conn_id) {
    std::array<char, file_name_size> name{};
    output_name(conn_id, {"zyrps_print", "PSPRINT"}, "zyr.ps", name.data(), name.size());
    gset_win_type(ws_postscript);
    if (gps_open_file(name.data()) == nullptr) {
        gerr_printf("gopen_ws", "unable to open postscript file\n");
        explain_output("gopen_ws");
        return -1;
    }
    gps_init();
    gps_set_size(11.0F, 8.5F);
    take_options(std::getenv("zyrps_param"), 0, decode_option);
    take_options(conn_id, 1, decode_option);
    gps_init_file();
    const auto side = [](double inches) { return whole_units((inches - 0.5) * points_per_inch); };
    const Grectangle page = {0, 0, side(ps.sx), side(ps.sy)};
    set_page_area(geometry_text(), page, points_per_pixel);
    return 0;
}

std::FILE* gps_open_file(const char* name) {
    ps.out_file = gprint_open(name, {page_end, eps_end}, &ps.append, &ps.end);
    if (std::getenv("PSCOLOR") != nullptr) {
        ps.pr_color = 1;
    }
    return ps.out_file;
}

int gps_init() {
    ps.gray_level = 0.0F;
    ps.ps_col_ind = -1;
    ps.line_width = 1.0F;
    ps.line_type = 1.0F;
    return 0;
}

int gps_set_size(float sx, float sy) {
    ps.sx = sx;
    ps.sy = sy;
    return 0;
}

int gps_init_file() {
    if (!ps.append) {
        put_heading();
        put_page_setup();
    }
    gps_printf(ps.pr_color != 0 ? "0 0 0 setrgbcolor\n" : "0 setgray\n");
    if (!ps.append) {
        gps_printf("2 setlinejoin\n");
    }
    gps_printf("1 dot lw\n[] 0 setdash\n");
    ps.line_width = 1.0F / ps.base_width; // one dot, whatever a width of 1 is
    if (!ps.append) {
        if (ps.pr_scale != 1.0F) {
            const auto scale = static_cast<double>(ps.pr_scale);
            gps_printf("%.2f %.2f scale\n", scale, scale);
        }
        gps_printf("%%%%Begin plot\n");
    }
    gps_comment("%%%%ZYR Plot: %s", gget_win_title());
    if (ps.pr_small != 0 && ps.out_file != nullptr) {
        begin_small();
    }
    return 0;
}

int gps_close_file() {
    if (ps.out_file == nullptr) {
        return -1;
    }
    if (is_small()) {
        end_small();
    }
    gps_printf("%%%%End of plot\n");
    if (!ps.append) {
        ps.end = ps.pr_eps != 0 ? eps_end : page_end;
    }
    Text().put(ps.end);
    const int status = close_output(std::exchange(ps.out_file, nullptr));
    if (status < 0) {
        gerr_printf("gps_close_file", "unable to write postscript file\n");
        explain_output("gps_close_file");
    } else if (status == 0) {
        MESS_print(mess_mess, "Created Postscript file\n");
    }
    return status;
}

int gps_printf(const char* format, ...) {
    if (ps.out_file == nullptr) {
        return 0;
    }
    std::va_list args;
    va_start(args, format);
    std::vfprintf(ps.out_file, format, args);
    va_end(args);
    return 0;
}

int gps_comment(const char* format, ...) {
    constexpr std::size_t most = 250;
    if (is_small()) {
        return 0; // nobody reads it there
    }
    std::va_list args;
    va_start(args, format);
    put_line(ps.out_file, most, format, args);
    va_end(args);
    return 0;
}

// --- Paths --------------------------------------------------------------------

int gps_move(float x, float y) {
    Text().point(xW_ps(x), yW_ps(y), Text::move);
    return 0;
}

int gps_line(float x, float y) {
    Text().point(xW_ps(x), yW_ps(y), Text::line);
    return 0;
}

int gps_move_abs(float x, float y) {
    Text().point(hold(x), hold(y), Text::move);
    return 0;
}

int gps_line_abs(float x, float y) {
    Text().point(hold(x), hold(y), Text::line);
    return 0;
}

int gps_path(int n, const Gpt* pts) {
    Text().path(n, pts);
    return 0;
}

int gps_polyline(int n, const Gpt* pts, int color, float width, int type) {
    Text out;
    put_comment(out, "%%PL:", n);
    put_width(out, color, width);
    put_color(out, color);
    put_type(out, type);
    out.put("np\n");
    out.path(n, pts);
    out.put("stroke\n");
    return 0;
}

int gps_fill_area(int n, const Gpt* pts, int color, int style) {
    if (style != GSOLID) {
        return 0;
    }
    if (is_small()) {
        return fill_small(n, pts, color);
    }
    Text out;
    put_comment(out, "%%FA:", n);
    out.put("np\n");
    out.path(n, pts);
    out.put("cp\n");
    put_fill_color(out, color);
    out.put("fill\n");
    return 0;
}

float gps_begin_markers(int n, int color, float width) {
    Text out;
    put_comment(out, "%%PM:", n);
    put_width(out, color, width);
    put_color(out, color);
    put_type(out, 1);
    return 10.0F * points_per_pixel;
}

int gps_marker_path(int n, const Gpt* pts) {
    Text out;
    out.put("np\n");
    for (int i = 0; i < n; ++i) {
        out.point(hold(pts[i].x), hold(pts[i].y), i == 0 ? Text::move : Text::line);
    }
    out.put("stroke\n");
    return 0;
}

int gps_begin_text(const Gpt& pos, const char* str, int color, float width) {
    std::array<char, fixed6_size> x{};
    std::array<char, fixed6_size> y{};
    format_fixed6(x.data(), pos.x);
    format_fixed6(y.data(), pos.y);
    gps_comment("%%%%TE:%s %s %s", x.data(), y.data(), str);
    Text out;
    put_width(out, color, width);
    put_color(out, color);
    put_type(out, 1);
    return 0;
}

int gps_glyph(int n, const Gpen_step* steps) {
    constexpr int longest_stroke = 30;
    constexpr std::string_view next_stroke = "stroke\nnp\n";
    const Gpipe& pipe = gget_pipe();
    int points = 0; // of the stroke under way
    Text out;
    out.put("np\n");
    for (const Gpen_step& step : std::span(steps, static_cast<std::size_t>(n))) {
        const float x = pipe_x(pipe, step.at.x);
        const float y = pipe_y(pipe, step.at.y);
        if (!step.down) {
            if (points > 1) {
                out.put(next_stroke);
            }
            out.point(x, y, Text::move);
            points = 1;
            continue;
        }
        out.point(x, y, Text::line);
        if (++points == longest_stroke) {
            out.put(next_stroke);
            out.point(x, y, Text::move);
            points = 1;
        }
    }
    out.put("stroke\n");
    return 0;
}

int gps_clear_region(const Glim& lim) {
    const Gpt pts[] = {
        {lim.x_min, lim.y_min},
        {lim.x_max, lim.y_min},
        {lim.x_max, lim.y_max},
        {lim.x_min, lim.y_max}
    };
    Text out;
    out.put(is_small() ? "np\n" : "%%CLR\nnp\n");
    out.path(4, pts);
    out.put("cp\n");
    put_fill_color(out, -1);
    out.put("fill\n");
    return 0;
}

float gps_kept_width(float width) {
    return width == 0.0F ? 1.0F : width;
}

int gps_set_clip(float x0, float y0, float x1, float y1) {
    constexpr float margin = 0.1F;
    const Gpage_box box = {page_unit(x0 - margin), page_unit(x1 + margin), page_unit(y0 - margin),
                           page_unit(y1 + margin)};
    if (is_small() && ps.clip == box) {
        return 0;
    }
    Text out;
    ps.clip = box;
    out.put("initclip\nnp\n");
    out.point(x0 - margin, y0 - margin, Text::move);
    out.point(x0 - margin, y1 + margin, Text::line);
    out.point(x1 + margin, y1 + margin, Text::line);
    out.point(x1 + margin, y0 - margin, Text::line);
    out.put("cp\nclip\n");
    return 0;
}

// --- State --------------------------------------------------------------------

int gps_set_color(int ind) {
    Text out;
    put_color(out, ind);
    return 0;
}

int gps_set_fill_color(int ind) {
    Text out;
    put_fill_color(out, ind);
    return 0;
}

int gps_set_width(int ind, float width) {
    Text out;
    put_width(out, ind, width);
    return 0;
}

int gps_set_type(int type) {
    Text out;
    put_type(out, type);
    return 0;
}

int gps_set_base_width(float width) {
    if (!(width >= 0.0F)) {
        return -1;
    }
    ps.base_width = width;
    return 0;
}

int gps_set_color_rep(float red, float grn, float blu, int ind) {
    if (ind < -1 || ind >= num_colrs) {
        return -1;
    }
    write_kept(); // in the colours that it was drawn in
    red = gcolor_component(red);
    grn = gcolor_component(grn);
    blu = gcolor_component(blu);
    PrintColor& color = ps.colors[ind < 0 ? background_colr : ind];
    const auto before = color.rgb_text;
    const double sum =
        0.9 * static_cast<double>(red) + static_cast<double>(grn) + 0.8 * static_cast<double>(blu);
    const auto gray = static_cast<float>(sum / 2.7);
    color.gray = ps.pr_rev != 0 ? 1.0F - gray : gray;
    std::snprintf(color.gray_text.data(), color.gray_text.size(), "%3.3f setgray\n",
                  static_cast<double>(color.gray));
    std::snprintf(color.rgb_text.data(), color.rgb_text.size(), "%4.2f %4.2f %4.2f setrgbcolor\n",
                  static_cast<double>(red), static_cast<double>(grn), static_cast<double>(blu));
    if (ind == ps.ps_col_ind && before != color.rgb_text) {
        ps.ps_col_ind = missing_index; // what is in force is its old colour
    }
    return 0;
}

float gps_get_gray(int ind) {
    return print_color(ind).gray;
}

int gps_set_EPS(int value) {
    ps.pr_eps = value;
    return 0;
}

int gps_set_orient(int portrait) {
    ps.pr_port = portrait;
    return 0;
}

int gps_set_scale(float scale) {
    // A scale of nothing would be an error of the printer, a huge one shows a point.
    if (!(scale >= 0.01F && scale <= 100.0F)) {
        return -1;
    }
    ps.pr_scale = scale;
    return 0;
}

int gps_set_colorPS(int value) {
    ps.pr_color = value;
    return 0;
}

int gps_get_colorPS() {
    return ps.pr_color;
}

int gps_set_small(int dpi) {
    constexpr int least = 72;
    constexpr int most = 2400;
    if (dpi != 0 && (dpi < least || dpi > most)) {
        return -1;
    }
    ps.pr_small = dpi;
    return 0;
}

int gps_set_reverse(int value) {
    ps.pr_rev = value;
    return 0;
}

void keep_gks_ps(StateKeeper& keeper) {
    keeper.keep(ps);
}
