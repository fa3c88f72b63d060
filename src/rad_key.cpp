// rad_key: the key of levels. State: its measures, for the blinking.
#include "rad_key.h"

#include "cont.h"
#include "plt_tool.h"
#include "state_keeper.h"
#include "zyrgks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace {

constexpr std::array<const char*, 6> level_dbz = {"20", "30", "40", "45", "50", "55"};
constexpr const char* title = "Intensities (Dbz):";
constexpr float most_height = 0.02F;
constexpr float least_height = 0.01F;

struct Key {
    float x_lab = 0.0F; // from the left end of the view to the first number
    float y_lab = 0.0F; // height of a box; 0: no key yet
};
Key key;

void blink(int color) {
    float red = 0.0F;
    float grn = 0.0F;
    float blu = 0.0F;
    CLR_get_rgb(color, &red, &grn, &blu);
    for (int i = 0; i < 4; ++i) {
        ZYR_sleep(0.5F);
        GPH_set_color(color, 0.0F, 0.0F, 0.0F);
        ZYR_sleep(0.5F);
        GPH_set_color(color, red, grn, blu);
    }
}

} // namespace

int RAD_draw_bar() {
    key = {};
    if (CONT_get_bar() == -2 || (FLAG_getplot(part_text) == 0 && CONT_get_bar() < 1)) {
        return -1;
    }
    GPH_trans(tran_page);
    Gattribs text;
    ATTRIB_init(&text);
    ATTRIB_get("color_text", gget_inverse() != 0 ? "black" : "white", &text);
    Glim view{};
    Glim panel{};
    PLT_get_view(&view);
    GPH_get_view_size(&panel);
    const float h = std::min(view.y_min - panel.y_min, most_height);
    if (!(h >= least_height)) {
        return -1;
    }
    const float height = is_set(text.height) ? text.height : 1.0F;
    const float expan = is_set(text.expan) ? text.expan : 1.0F;
    key.y_lab = height * 0.75F * h;
    key.x_lab = height * 9.5F * h * expan;
    GPH_text_attr(&text, 0.75F * h);
    GPH_text_align(GLEFT_HOR, GCAP_VERT);

    const float line = view.y_min - 0.01F * (view.y_max - view.y_min);
    const bool labelled = text.color != -1;
    if (labelled) {
        // The first number may begin before the title ends.
        const float wide = gtext_width(title, 0.75F * h * height);
        const float room = key.x_lab - 0.02F;
        const bool tight = PLT_get_fit_lab() != 0 && wide > room && room > 0.0F;
        gset_char_ht(0.75F * h * height * (tight ? room / wide : 1.0F));
        GPH_printf(view.x_min + 0.01F, line, "%s", title);
        gset_char_ht(0.75F * h * height);
    }
    for (std::size_t i = 0; i < level_dbz.size(); ++i) {
        const float x = view.x_min + key.x_lab + 4.0F * static_cast<float>(i) * key.y_lab;
        if (labelled) {
            GPH_printf(x, line, "%s", level_dbz[i]);
        }
        Gattribs level;
        CONT_get_fill_attrib(static_cast<float>(i + 1), &level);
        if (level.color >= 0) {
            GPH_fill_attr(&level);
            GPH_frect(x + 2.0F * key.y_lab, line - key.y_lab, x + 3.0F * key.y_lab, line);
        }
    }
    GPH_fill_attr(nullptr);
    GPH_trans(tran_map);
    return 0;
}

int RAD_flash_levels(const char* str, float x, float y) {
    if (str == nullptr || std::strncmp(str, "f-Alt", 4) != 0 || key.y_lab == 0.0F) {
        return -1;
    }
    Glim view{};
    PLT_get_view(&view);
    const float px = xW_trans(x, tran_map, tran_page);
    const float py = yW_trans(y, tran_map, tran_page);
    const float place = ((px - view.x_min) - key.x_lab) / 0.06F + 1.01F;
    const float top = view.y_min - 0.01F;
    if (!(place >= 1.0F && place < 7.0F) || py > top || py < top - key.y_lab) {
        return -1;
    }
    Gattribs attrib;
    CONT_get_fill_attrib(std::trunc(place), &attrib);
    if (attrib.color < 0) {
        return -1;
    }
    blink(attrib.color);
    return 0;
}

void keep_rad_key(StateKeeper& keeper) {
    keeper.keep(key);
}
