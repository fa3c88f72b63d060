// nids_wedge: a radial bin by bin. No state; the colours must be set.
#include "nids_wedge.h"

#include "cont.h"
#include "plt_tally.h"
#include "zyr.h"
#include "zyrgks.h"

namespace {

void move(Gpt& p, double dx, double dy) {
    p.x = static_cast<float>(p.x + dx);
    p.y = static_cast<float>(p.y + dy);
}

} // namespace

int NIDS_plot_WEDGE(Gpt* pts, const WEDGE_info* wedge, float radius, float intens) {
    if (FLAG_getplot(part_summary) == 0) {
        return -1;
    }
    const double r = radius;
    move(pts[1], r * wedge->dx1, r * wedge->dy1);
    move(pts[2], r * wedge->dx2, r * wedge->dy2);
    pts[4] = pts[0];
    PLT_tally_value(intens);
    Gattribs attrib;
    CONT_get_fill_attrib(intens, &attrib);
    if (is_set(CONT_get_fill_pat())) {
        attrib.fill_pat = CONT_get_fill_pat();
    } else if (!is_set(attrib.fill_pat)) {
        attrib.fill_pat = 0;
    }
    if (is_set(intens) && attrib.color >= 0) {
        GPH_fill_attr(&attrib);
        gfill_area(5, pts);
        ++PLT_get_tally().figures;
    }
    move(pts[0], r * wedge->dx1, r * wedge->dy1);
    move(pts[3], r * wedge->dx2, r * wedge->dy2);
    return 0;
}
