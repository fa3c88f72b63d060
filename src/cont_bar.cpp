// cont_bar: the colour bar below a picture, the value under a point of it and the
// blinking of one of its colours. No state: the levels, which a plotter sets first,
// and the place of the last bar drawn are those of cont.
#include "cont.h"

#include "cont_state.h"
#include "plt_tool.h"
#include "text_num.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstring>

using namespace cont;

namespace {

constexpr float most_room = 0.035F; // height of the bar with its numbers
constexpr float least_room = 0.01F;

// Ends the bar before the lower right label, but not below a fifth of the
// viewport's width: the label gives way then. Lifts the numbers off the edge.
void keep_clear(const Glim& view, Glim* lim) {
    const float width = view.x_max - view.x_min;
    const float label = PLT_low_right_begin() - 0.02F * width;
    lim->x_max = std::min(lim->x_max, std::max(label, lim->x_min + 0.2F * width));
    lim->y_min += 0.1F * (lim->y_max - lim->y_min);
}

// Where the bar lies. False without room.
bool lay_out(const Glim& view) {
    Glim panel = {};
    GPH_get_view_size(&panel);
    const bool inside = PLT_get_full_lab() != 0;
    float room = view.y_min - panel.y_min;
    if (inside || room > most_room) {
        room = most_room;
    } else if (!(room >= least_room)) {
        return false;
    }
    Glim& lim = state().bar_lim;
    lim.x_min = view.x_min + 0.03F * (view.x_max - view.x_min);
    lim.x_max = (view.x_min + view.x_max) / 2.0F;
    lim.y_max = inside ? view.y_min + room : view.y_min - 0.15F * room;
    lim.y_min = inside ? view.y_min + 0.15F * room : view.y_min - room;
    if (PLT_get_fit_lab() != 0) {
        keep_clear(view, &lim);
    }
    state().bar_inc = (lim.x_max - lim.x_min) / static_cast<float>(state().num_cont);
    return true;
}

float middle() {
    const Glim& lim = state().bar_lim;
    return (lim.y_min + lim.y_max) / 2.0F;
}

void draw_box(int i, int step) {
    const State& s = state();
    const float left = s.bar_lim.x_min + static_cast<float>(i) * s.bar_inc;
    const float right = left + s.bar_inc;
    const float top = s.bar_lim.y_max;
    use_step(step, level_at(i));
    const int type = s.cont_type;
    if (type >= cont_fill && type <= cont_values && s.fill_attrib[step].color >= 0) {
        const Gpt box[] = {
            {left,  middle()},
            {right, middle()},
            {right, top     },
            {left,  top     },
            {left,  middle()}
        };
        CONT_draw_lines(cont_fill, 5, box);
    }
    if (has_lines(type)) {
        const Gpt edge[] = {
            {right, middle()},
            {right, top     }
        };
        CONT_draw_lines(cont_lines, 2, edge);
    }
}

void print_number(int i, float level) {
    const State& s = state();
    char text[40] = "";
    if (i < s.num_cont && i < cont_max_steps && s.cont_label[i][0] != '\0') {
        copy_text(text, sizeof text, s.cont_label[i]);
    } else {
        set_num(text, "2.2.0", level);
    }
    const Gpt pos = {state().bar_lim.x_min + static_cast<float>(i) * state().bar_inc,
                     state().bar_lim.y_min};
    GPH_pprint(&pos, text);
}

void draw_boxes(bool numbers) {
    const State& s = state();
    const int every = s.num_cont / 15 + 1;
    const int first = first_step(s.base);
    for (int i = 0; i < s.num_cont; ++i) {
        draw_box(i, (first + i) % s.color_num);
        if (numbers && i % every == 0) {
            print_number(i, level_at(i));
        }
    }
    if (numbers && !is_set(s.cont_value[0])) {
        print_number(s.num_cont, level_at(s.num_cont));
    }
}

} // namespace

int CONT_draw_bar(int orient, const char* label) {
    state().bar_inc = 0.0F;
    Glim view = {};
    PLT_get_view(&view);
    if (orient != 1 || !settle_bar_levels(state()) || !lay_out(view)) {
        return -1;
    }
    Gattribs text;
    ATTRIB_get("color_text", plain_color(), &text);
    set_line_attribs();
    const Glim& lim = state().bar_lim;
    GPH_text_attr(&text, 0.35F * (lim.y_max - lim.y_min));
    GPH_text_align(GCENTER_HOR, GBASE_VERT);

    state().index_coords = false;
    draw_boxes(text.color >= 0);
    GPH_fill_attr(nullptr);
    GPH_line_attr(nullptr);
    if (text.color >= 0) {
        Gattribs frame = state().ln_cont_attr; // its width and style
        frame.color = text.color;
        GPH_line_attr(&frame);
        GPH_rect(lim.x_min, lim.y_max,
                 lim.x_min + static_cast<float>(state().num_cont) * state().bar_inc, middle());
    }
    if (text.color >= 0 && label != nullptr && *label != '\0') {
        GPH_text_align(GLEFT_HOR, GCAP_VERT);
        const Gpt pos = {view.x_max, view.y_min - 0.01F};
        GPH_pprint(&pos, label);
    }
    return 0;
}

float CONT_get_bar_value(float x, float y) {
    const State& s = state();
    const Glim& lim = s.bar_lim;
    const bool inside = x >= lim.x_min && x <= lim.x_max && y >= lim.y_min && y <= lim.y_max;
    if (s.bar_inc == 0.0F || !inside) {
        return missing_f;
    }
    const int k = whole(static_cast<double>((x - lim.x_min) / s.bar_inc));
    if (!is_set(s.cont_value[0])) {
        return static_cast<float>(k) * s.intrvl + s.conlo;
    }
    return s.cont_value[std::clamp(k, 0, std::max(s.num_cont - 1, 0))];
}

int CONT_flash_value(const char* str, float x, float y) {
    if (str == nullptr || std::strncmp(str, "f-Alt", 4) != 0) {
        return -1;
    }
    const float value =
        CONT_get_bar_value(xW_trans(x, tran_map, tran_page), yW_trans(y, tran_map, tran_page));
    if (!is_set(value)) {
        return -1;
    }
    Gattribs attrib;
    CONT_get_fill_attrib(value, &attrib);
    if (attrib.color < 0) {
        return -1;
    }
    float red = 0.0F;
    float grn = 0.0F;
    float blu = 0.0F;
    CLR_get_rgb(attrib.color, &red, &grn, &blu);
    for (int i = 0; i < 4; ++i) {
        ZYR_sleep(0.5F);
        GPH_set_color(attrib.color, 0.0F, 0.0F, 0.0F);
        ZYR_sleep(0.5F);
        GPH_set_color(attrib.color, red, grn, blu);
    }
    return 0;
}
