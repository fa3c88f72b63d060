// gks_input: how far the hold at the end of a plot is, and what waits for that end.
// Owns this, which gks_evnt moves on; a reset of the plot (ginit_plot) clears it.

#include "gks_evnt.h"

#include "gks.h"

namespace {

Ginput input;

} // namespace

Ginput& ginput() {
    return input;
}

int ginit_event(int type) {
    ginit_band();
    if (type == 0) {
        input.input_mode = input_idle;
        input.size_due = false;
        input.num_waiting = 0;
    }
    return 0;
}

int gset_input_mode(int value) {
    input.input_mode = value == input_hold ? input_hold : input_idle;
    return 0;
}

int gget_input_mode() {
    return input.input_mode != input_leave ? 1 : 0;
}
