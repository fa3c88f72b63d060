// gph_tool.cpp: the calls that the plot layer draws through: opening, page and
// panel, attribute records, and short forms of the kernel's primitives. Owns
// the panel and the default font. GPH_setup comes first.

#include "zyrgks.h"
#include "zyrresrc.h"

#include "files.h"
#include "state_keeper.h"
#include "units.h"

#include <array>
#include <cmath>
#include <cstdarg>

namespace {

constexpr const char* error_file = "zyrgks.err";
constexpr int circle_points = 37; // every 10 degrees, the start twice

struct PlotState {
    bool ws_open = false;
    Gws_type wk_type = ws_none;
    Gws_type wk_itype = ws_none; // as asked for, before any prompt
    float xvp = 1.0F;            // size of the device, NDC
    float yvp = 1.0F;
    float sizex = 1.0F; // panel, fractions of the page
    float sizey = 1.0F;
    float offx = 0.0F;
    float offy = 0.0F;
    std::array<char, 20> font_name{}; // default font
};
PlotState plot;

double radians(double deg) {
    return deg * deg_to_rad;
}

std::array<Gpt, 5> rectangle(float x1, float y1, float x2, float y2) {
    return {
        {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}
    };
}

std::array<Gpt, circle_points> circle(float x, float y, float r) {
    std::array<Gpt, circle_points> pts{};
    for (int i = 0; i < circle_points; ++i) {
        const double a = radians(10.0 * i);
        pts[i] = {
            static_cast<float>(static_cast<double>(x) + static_cast<double>(r) * std::cos(a)),
            static_cast<float>(static_cast<double>(y) + static_cast<double>(r) * std::sin(a))};
    }
    return pts;
}

// A colour name of the table, for the kernel.
int find_color(const char* name, Gcolr_rep* rep) {
    const int ind = CLR_look_up(name);
    if (ind >= 0 && rep != nullptr) {
        CLR_get_rgb(ind, &rep->red, &rep->green, &rep->blue);
    }
    return ind;
}

// The size of the device, its longer side being 1.
int ginq_maxview(Gws_type ws_type, float* xvp, float* yvp) {
    int err = 0;
    Gdsp_size size{};
    *xvp = 1.0F;
    *yvp = 1.0F;
    const int status = ginq_disp_space_size(ws_type, &err, &size);
    if (status < 0) {
        return status;
    }
    const Gpt s = size.coord_size;
    if (s.x <= 0.0F || s.y <= 0.0F) {
        return -1;
    }
    if (s.x > s.y) {
        *yvp = s.y / s.x;
    } else {
        *xvp = s.x / s.y;
    }
    return 0;
}

} // namespace

// --- Opening, page and panel --------------------------------------------------

int GPH_setup(int* ws_id, Gws_type* ws_type, float asp_ratio, Glim* offset) {
    const char* conn_id = nullptr;
    RES_getval("device", &conn_id, CV_device);
    *ws_type = FLAG_get(flag_device);
    if (*ws_type < 1) {
        *ws_type = FLAG_batch() > 0 ? ws_window : ws_none;
    }
    GPH_set_win_title();
    CLR_read_table(nullptr);
    CLR_check_settings();
    gset_color_finder(find_color);
    GPH_begin(ws_id, conn_id, ws_type);
    return GPH_reset(ws_id, ws_type, asp_ratio, offset);
}

int GPH_begin(int* ws_id, const char* conn_id, Gws_type* ws_type) {
    FILE_delete(error_file);
    *ws_id = gget_ws_id();
    plot.wk_itype = *ws_type;
    if (*ws_type == ws_none) {
        std::array<char, 10> buffer{};
        ZYR_prompts("Display (D) or Postscript (P): ", buffer.data(), buffer.size());
        *ws_type = RES_set_device(buffer.data());
        FLAG_set(flag_device, *ws_type);
    }
    plot.wk_type = *ws_type;
    if (!plot.ws_open) {
        if (gopen_gks(nullptr, 10000) != 0) {
            MESS_print(mess_error, "GPH_begin: Error opening Kernel System\n");
            gemergency_close_gks();
            ZYR_exit(end_output);
        }
        if (gopen_ws(*ws_id, conn_id, *ws_type) != 0) {
            MESS_print(mess_error, "GPH_begin: Error opening workstation\n");
            ZYR_exit(end_output);
        }
    }
    plot.ws_open = true;
    return gactivate_ws(*ws_id);
}

int GPH_end(int ws_id) {
    const bool open = gchk_graphics() != 0;
    gdeactivate_ws(ws_id);
    const int status = gclose_ws(ws_id);
    gclose_gks();
    plot.ws_open = false;
    FLAG_set(flag_device, plot.wk_itype);
    return open ? status : 0;
}

int GPH_reset(int* ws_id, Gws_type* ws_type, float asp_ratio, Glim* offset) {
    gclear_ws(*ws_id, 1);
    const int status = ginq_maxview(*ws_type, &plot.xvp, &plot.yvp);
    if (status < 0) {
        return status;
    }
    const Glim page = {0.0F, plot.xvp, 0.0F, plot.yvp};
    gset_ws_win(*ws_id, &page);
    gset_vp(tran_page, &page);
    gset_win(tran_page, &page);
    GPH_panel(ws_id, ws_type, asp_ratio, offset);
    for (int i = 0; i < CLR_get_num(); ++i) {
        Gcolr_rep rep{};
        CLR_get_rgb(i, &rep.red, &rep.green, &rep.blue);
        gset_colr_rep(*ws_id, i, &rep);
    }
    GPH_text_font(nullptr);
    return 0;
}

int GPH_panel(int* /*ws_id*/, Gws_type* /*ws_type*/, float asp_ratio, Glim* offset) {
    const Glim m = *offset;
    const Glim room = {(plot.sizex * m.x_min + plot.offx) * plot.xvp,
                       (plot.sizex + plot.offx - plot.sizex * m.x_max) * plot.xvp,
                       (plot.sizey * m.y_min + plot.offy) * plot.yvp,
                       (plot.sizey + plot.offy - plot.sizey * m.y_max) * plot.yvp};
    Gaspect aspect = {asp_ratio, 1.0F};
    if (asp_ratio == 0.0F) {
        aspect = {plot.sizex * plot.xvp, plot.sizey * plot.yvp};
    }
    constexpr Gint centred = 2;
    gset_aspect(&room, offset, aspect, {centred, centred});
    for (const int n : {tran_map, tran_grid}) {
        gset_vp(n, offset);
        gset_win(n, offset);
    }
    GPH_line_attr(nullptr);
    GPH_fill_attr(nullptr);
    GPH_mark_attr(nullptr, 1.0F);
    GPH_text_attr(nullptr, 1.0F);
    return 0;
}

int GPH_hold(int ws_id) {
    gupdate_window();
    return gtype_is_WIN() ? ghold(ws_id) : 0;
}

int GPH_set_win_title() {
    std::array<char, file_name_size> program{};
    RES_get_progname(program.data());
    const char* name = RES_get("name");
    gset_prog_name(name != nullptr ? name : program.data());
    const char* title = RES_get("title");
    if (title == nullptr && name != nullptr) {
        title = *name == '+' ? name + 1 : name;
    }
    gset_win_title(title != nullptr ? title : program.data());
    return 0;
}

int GPH_set_view_size(float sizex, float sizey, float offx, float offy) {
    plot.sizex = sizex;
    plot.sizey = sizey;
    plot.offx = offx;
    plot.offy = offy;
    return 0;
}

int GPH_get_view_size(Glim* lim) {
    *lim = {plot.offx * plot.xvp, (plot.sizex + plot.offx) * plot.xvp, plot.offy * plot.yvp,
            (plot.sizey + plot.offy) * plot.yvp};
    return 0;
}

// --- Transformations ----------------------------------------------------------

int GPH_trans(int n) {
    return gsel_norm_tran(n);
}

int GPH_view(int n, const Glim* lim) {
    return gset_vp(n, lim);
}

int GPH_win(int n, const Glim* lim) {
    return gset_win(n, lim);
}

int GPH_get_view(int n, Glim* lim) {
    int err = 0;
    Gtran tran{};
    if (ginq_norm_tran(n, &err, &tran) != 0) {
        return -1;
    }
    *lim = tran.vp;
    return 0;
}

int GPH_get_win(int n, Glim* lim) {
    int err = 0;
    Gtran tran{};
    if (ginq_norm_tran(n, &err, &tran) != 0) {
        return -1;
    }
    *lim = tran.win;
    return 0;
}

// --- Attributes ---------------------------------------------------------------

int GPH_line_attr(const Gattribs* attrib) {
    if (attrib == nullptr) {
        gset_linetype(1);
        gset_linewidth(0.0F);
        return 0;
    }
    if (attrib->color >= 0) {
        gset_line_colr_ind(attrib->color);
    }
    if (is_set(attrib->style)) {
        gset_linetype(attrib->style);
    }
    if (is_set(attrib->width)) {
        gset_linewidth(attrib->width);
    }
    return 0;
}

int GPH_fill_attr(const Gattribs* attrib) {
    if (attrib == nullptr) {
        gset_fill_int_style(GSOLID);
        return 0;
    }
    if (attrib->color >= 0) {
        gset_fill_colr_ind(attrib->color);
    }
    if (attrib->fill_pat == 0) {
        gset_fill_int_style(GSOLID);
    } else if (is_set(attrib->fill_pat)) {
        gset_fill_int_style(GPAT);
        gset_fill_style_ind(attrib->fill_pat);
    }
    return 0;
}

int GPH_mark_attr(const Gattribs* attrib, float scale) {
    if (attrib == nullptr) {
        gset_marker_width(0.0F);
        return 0;
    }
    if (attrib->color >= 0) {
        gset_marker_colr_ind(attrib->color);
    }
    if (is_set(attrib->style)) {
        gset_marker_type(attrib->style);
    }
    if (is_set(attrib->height)) {
        gset_marker_size(attrib->height * scale);
    } else if (scale > 0.0F) {
        gset_marker_size(scale);
    }
    if (is_set(attrib->width)) {
        gset_marker_width(attrib->width);
    }
    return 0;
}

int GPH_text_attr(const Gattribs* attrib, float scale) {
    if (attrib == nullptr) {
        gset_text_width(0.0F);
        gset_expan(1.0F);
        return -1;
    }
    if (attrib->color >= 0) {
        gset_text_colr_ind(attrib->color);
    }
    gset_char_ht(is_set(attrib->height) ? attrib->height * scale : scale);
    if (is_set(attrib->width)) {
        gset_text_width(attrib->width);
    }
    if (is_set(attrib->expan)) {
        gset_expan(attrib->expan);
    }
    if (is_set(attrib->font)) {
        const Gfontprec font = {attrib->font, GSTROKE_PREC};
        gset_fontprec(&font);
    }
    gset_space(0.25F);
    return 0;
}

int GPH_set_color(int ind, float red, float grn, float blu) {
    const Gcolr_rep rep = {red, grn, blu};
    return gset_colr_rep(gget_ws_id(), ind, &rep);
}

int GPH_text_font(const char* name) {
    const Gfontprec font = {gget_font_index(name != nullptr ? name : plot.font_name.data()),
                            GSTROKE_PREC};
    return gset_fontprec(&font);
}

int GPH_set_def_font(const char* name) {
    copy_text(plot.font_name.data(), plot.font_name.size(), name);
    return 0;
}

int GPH_text_align(int hor, int vert) {
    const Gtext_align align = {static_cast<Gtext_hor>(hor), static_cast<Gtext_ver>(vert)};
    return gset_text_align(&align);
}

int GPH_get_text_align(int* hor, int* vert) {
    int err = 0;
    Gtext_align align{};
    ginq_text_align(&err, &align);
    *hor = align.hor;
    *vert = align.ver;
    return err;
}

int GPH_text_rotate(float deg) {
    const double a = radians(static_cast<double>(deg));
    const Gpt up = {static_cast<float>(std::sin(a)), static_cast<float>(std::cos(a))};
    return gset_char_up_vec(&up);
}

// --- Figures and text ---------------------------------------------------------

int GPH_line(float x1, float y1, float x2, float y2) {
    const std::array<Gpt, 2> pts = {
        {{x1, y1}, {x2, y2}}
    };
    return gpolyline(static_cast<int>(pts.size()), pts.data());
}

int GPH_mark(float x, float y) {
    const Gpt pt = {x, y};
    return gpolymarker(1, &pt);
}

int GPH_border(const Glim* lim) {
    return GPH_rect(lim->x_min, lim->y_min, lim->x_max, lim->y_max);
}

int GPH_rect(float x1, float y1, float x2, float y2) {
    const auto pts = rectangle(x1, y1, x2, y2);
    return gpolyline(static_cast<int>(pts.size()), pts.data());
}

int GPH_frect(float x1, float y1, float x2, float y2) {
    const auto pts = rectangle(x1, y1, x2, y2);
    return gfill_area(static_cast<int>(pts.size()), pts.data());
}

int GPH_circle(float x, float y, float r) {
    const auto pts = circle(x, y, r);
    return gpolyline(circle_points, pts.data());
}

int GPH_fcircle(float x, float y, float r) {
    const auto pts = circle(x, y, r);
    return gfill_area(circle_points, pts.data());
}

int GPH_pprint(const Gpt* pos, const char* str) {
    return gtext(pos, str);
}

int GPH_pprintf(const Gpt* pos, const char* format, ...) {
    std::array<char, 60> text{};
    std::va_list args;
    va_start(args, format);
    std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    return gtext(pos, text.data());
}

int GPH_printf(float x, float y, const char* format, ...) {
    std::array<char, 100> text{};
    std::va_list args;
    va_start(args, format);
    std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    const Gpt pos = {x, y};
    return gtext(&pos, text.data());
}

void keep_gph_tool(StateKeeper& keeper) {
    keeper.keep(plot);
}
