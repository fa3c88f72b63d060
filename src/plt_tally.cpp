// plt_tally: the account of the picture under way. State: that, from one picture to the
// next in a run over a list, else for the whole run.
#include "plt_tally.h"

#include "state_keeper.h"

#include <algorithm>
#include <cmath>

namespace {

PLT_tally tally;

} // namespace

PLT_tally& PLT_get_tally() {
    return tally;
}

void PLT_tally_value(float value) {
    if (is_set(value)) {
        tally.low = is_set(tally.low) ? std::min(tally.low, value) : value;
        tally.high = is_set(tally.high) ? std::max(tally.high, value) : value;
    }
}

void PLT_tally_radial(float azimuth, float width) {
    constexpr float circle = 360.0F;
    const bool valid =
        azimuth >= -circle && azimuth <= 2 * circle && width > 0.0F && width <= circle;
    if (!valid) {
        ++tally.out_of_range;
        return;
    }
    ++tally.radials;
    tally.widths += static_cast<double>(width);
    constexpr int tenths = 3600;
    const int from = static_cast<int>(std::floor(azimuth * 10.0F));
    const int to = std::max(static_cast<int>(std::ceil((azimuth + width) * 10.0F)), from + 1);
    for (int tenth = from; tenth < to; ++tenth) {
        tally.covered.set(static_cast<std::size_t>((tenth % tenths + tenths) % tenths));
    }
}

long PLT_missing_radials(const PLT_tally& t) {
    if (t.radials == 0) {
        return 0;
    }
    const double gap = static_cast<double>(t.covered.size() - t.covered.count()) / 10.0;
    return std::lround(gap * static_cast<double>(t.radials) / t.widths);
}

void keep_plt_tally(StateKeeper& keeper) {
    keeper.keep(tally);
}
