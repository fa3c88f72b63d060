// plt_tally: the account of the picture under way. State: that, from one picture to the
// next in a run over a list, else for the whole run.
#include "plt_tally.h"

#include "state_keeper.h"

#include <algorithm>

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

void keep_plt_tally(StateKeeper& keeper) {
    keeper.keep(tally);
}
