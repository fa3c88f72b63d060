// cont_levl: the levels that a colour bar shows, from a forced range, the range of
// the grid and the resources con_interval and con_base. Works on the levels of
// cont, which a plotter sets first.
#include "cont.h"

#include "cont_state.h"
#include "text_list.h"
#include "text_num.h"
#include "zyrresrc.h"

#include <utility>

using namespace cont;

namespace {

constexpr int most_boxes = 200;

// A value of `con_base`: ">N" begins the bar and its colours at N, "<N" ends
// it there, N alone is the base. A forced range of the bar is the stronger.
void take_base(const char* word, bool forced, float* high, float* low) {
    const bool from = *word == '>';
    const bool to = *word == '<';
    word += from || to ? 1 : 0;
    float value = 0.0F;
    if (((from || to) && forced) || !take_float(&word, &value)) {
        return;
    }
    if (to) {
        *high = value;
        return;
    }
    state().base = value;
    if (from) {
        *low = value;
    }
}

void take_bases(bool forced, float* high, float* low) {
    const TextList words = RES_items("con_base");
    for (const char* word : words) {
        take_base(word, forced, high, low);
    }
}

// The levels between the ends of the range. False without a range.
bool work_out_levels(float high, float low) {
    State& s = state();
    if (is_set(s.cont_value[0])) {
        s.conlo = s.cont_value[0];
        return true;
    }
    if (!is_set(high)) {
        return false;
    }
    if (high < low) {
        std::swap(high, low);
    }
    if (s.intrvl <= 0.0F) {
        s.num_cont = s.color_num - 1;
        s.intrvl = CONT_calc_intrvl(high, low, s.num_cont);
    }
    const Extent extent = regular_extent(low, high, is_set(s.base) ? s.base : 0.0F, s.intrvl);
    s.conlo = extent.lo;
    s.conhi = extent.hi;
    s.num_cont = extent.num;
    return true;
}

} // namespace

bool cont::settle_bar_levels() {
    State& s = state();
    const bool forced = is_set(s.bar_max);
    float high = forced ? s.bar_max : s.grid_max;
    float low = forced ? s.bar_min : s.grid_min;
    ask_interval();
    take_bases(forced, &high, &low);
    if ((!is_set(s.conlo) || forced) && !work_out_levels(high, low)) {
        return false;
    }
    if (is_set(s.cont_value[0])) {
        s.intrvl = level_width(0);
    }
    return s.num_cont >= 1 && s.num_cont <= most_boxes && s.intrvl != 0.0F && is_set(s.intrvl) &&
           s.color_num > 0;
}
