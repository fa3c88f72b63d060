// rad_storm: marks, barb and texts of a storm. No state.
#include "rad_storm.h"

#include "map.h"
#include "plt_tally.h"
#include "rad_fill.h"
#include "windbarb.h"

namespace {

void draw_text(const Gattribs& data, Gpt p, int hor, const char* text) {
    GPH_text_attr(&data, MAP_get_vert() * 0.02F);
    GPH_text_align(hor, GBASE_VERT);
    gtext(&p, text);
}

} // namespace

void rad_draw_mark(Gpt p, int color, int type) {
    if (color >= 0 && rad_is_place(p)) {
        gset_marker_colr_ind(color);
        gset_marker_width(2);
        gset_marker_type(type);
        GPH_mark(p.x, p.y);
        ++PLT_get_tally().figures;
    }
}

int rad_white(const Gattribs& data) {
    return gget_inverse() != 0 ? data.color : CLR_get_ind("white");
}

void rad_draw_storm(Gpt p, const Gattribs& data, const RadStorm& storm) {
    if (data.color < 0) {
        return;
    }
    const float height = MAP_get_vert();
    if (is_set(storm.dir)) {
        WIND_barb(p.x, p.y, storm.dir, storm.spd, height * 0.075F, 0.0F);
    }
    const float v = height * 0.01F;
    draw_text(data, {p.x - v, p.y + v}, GRIGHT_HOR, storm.id);
    if (*storm.top != '\0') {
        draw_text(data, {p.x + v, p.y + v}, GLEFT_HOR, storm.top);
    }
}
