// cont_levl: level arithmetic, and the levels that a colour bar shows, from a forced
// range, the range of the grid and the resources con_interval and con_base. No state:
// works on the levels of cont, which a plotter sets first.
#include "cont.h"

#include "cont_state.h"
#include "text_list.h"
#include "text_num.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace cont;

namespace {

constexpr int most_boxes = 200;

// A value of `con_base`: ">N" begins the bar and its colours at N, "<N" ends
// it there, N alone is the base. A forced range of the bar is the stronger.
void take_base(State& s, const char* word, bool forced, float* high, float* low) {
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
    s.base = value;
    if (from) {
        *low = value;
    }
}

void take_bases(State& s, bool forced, float* high, float* low) {
    const TextList words = RES_items("con_base");
    for (const char* word : words) {
        take_base(s, word, forced, high, low);
    }
}

// The levels between the ends of the range. False without a range.
bool work_out_levels(State& s, float high, float low) {
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

float round_up(float v, float parts) {
    return std::ceil(v * parts) / parts;
}

} // namespace

namespace cont {

int whole(double value) {
    constexpr double most = 1e9;
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, -most, most));
}

Extent regular_extent(float low, float high, float base, float intrvl) {
    Extent extent{high, low, 0};
    if (high >= low) {
        extent.lo = base + std::floor((low - base) / intrvl) * intrvl;
        extent.hi = base + std::floor((high - base) / intrvl + 1.0F) * intrvl;
        if (high - base == extent.hi) {
            extent.hi += intrvl;
        }
    }
    extent.num =
        whole((static_cast<double>(extent.hi - extent.lo) + 0.01) / static_cast<double>(intrvl));
    return extent;
}

void ask_interval(State& s) {
    if (!is_set(s.intrvl)) {
        RES_getval("con_interval", &s.intrvl, CV_float);
    }
}

float level_width(const State& s, int i) {
    if (!is_set(s.cont_value[0])) {
        return s.intrvl;
    }
    constexpr float open_end = 1e6F;
    return i >= s.num_cont - 1 ? open_end : s.cont_value[i + 1] - s.cont_value[i];
}

bool settle_bar_levels(State& s) {
    const bool forced = is_set(s.bar_max);
    float high = forced ? s.bar_max : s.grid_max;
    float low = forced ? s.bar_min : s.grid_min;
    ask_interval(s);
    take_bases(s, forced, &high, &low);
    if ((!is_set(s.conlo) || forced) && !work_out_levels(s, high, low)) {
        return false;
    }
    if (is_set(s.cont_value[0])) {
        s.intrvl = level_width(s, 0);
    }
    return s.num_cont >= 1 && s.num_cont <= most_boxes && s.intrvl != 0.0F && is_set(s.intrvl) &&
           s.color_num > 0;
}

} // namespace cont

float CONT_calc_intrvl(float max, float min, int num) {
    const float v = (max - min) / static_cast<float>(num == 0 ? 1 : num);
    if (v >= 1.0F) {
        return std::ceil(v);
    }
    for (const float parts : {10.0F, 100.0F, 1000.0F, 10000.0F}) {
        if (v >= 1.0F / parts) {
            return round_up(v, parts);
        }
    }
    return v == 0.0F ? 1.0F : v;
}
