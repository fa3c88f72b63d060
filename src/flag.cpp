// flag.cpp: the switchboard of the program: 30 numbered flags and the 13
// switches that say which components of a plot are drawn. It owns both
// tables and needs nothing to be called first; RES_init unsets all flags.

#include "state_keeper.h"
#include "zyr.h"

#include <array>

namespace {

constexpr int num_flags = 30;
constexpr int num_switches = part_any + 1;

constexpr std::array<long, num_flags> unset_flags() noexcept {
    std::array<long, num_flags> all{};
    all.fill(missing);
    return all;
}

struct State {
    std::array<long, num_flags> flags = unset_flags();
    std::array<int, num_switches> plot_it{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
};
constinit State state;

bool is_flag(int n) {
    return n >= 0 && n < num_flags;
}

bool is_switch(int index) {
    return index >= 0 && index < num_switches;
}

int sum(const std::array<int, num_switches>& values, int first, int last) {
    int total = 0;
    for (int i = first; i <= last; ++i) {
        total += values[i];
    }
    return total;
}

} // namespace

int FLAG_get(int n) {
    return static_cast<int>(FLAG_getl(n));
}

long FLAG_getl(int n) {
    return is_flag(n) ? state.flags[n] : 0;
}

int FLAG_set(int n, int value) {
    return FLAG_setl(n, value);
}

int FLAG_setl(int n, long value) {
    if (!is_flag(n)) {
        return -1;
    }
    state.flags[n] = value;
    return 0;
}

int FLAG_reset(int value) {
    return FLAG_resetl(value);
}

int FLAG_resetl(long value) {
    state.flags.fill(value);
    return 0;
}

int FLAG_batch() {
    return FLAG_get(flag_batch) > 0 ? 1 : 0;
}

int FLAG_set_batch(int value) {
    return FLAG_set(flag_batch, value);
}

int FLAG_help() {
    return FLAG_get(flag_help) > 0 ? 1 : 0;
}

int FLAG_setplot(int index, int value) {
    if (!is_switch(index)) {
        return -1;
    }
    auto& plot_it = state.plot_it;
    plot_it[index] = value;
    if (index == part_any) {
        plot_it.fill(value);
    }
    if (index == part_text) {
        for (int i = 0; i <= part_low_right; ++i) {
            plot_it[i] = value;
        }
    }
    plot_it[part_text] = sum(plot_it, part_text + 1, part_low_right);
    plot_it[part_any] = sum(plot_it, part_text, part_any - 1);
    return 0;
}

int FLAG_getplot(int index) {
    return is_switch(index) ? state.plot_it[index] : 0;
}

int FLAG_resetplot(int value) {
    state.plot_it.fill(value);
    return 0;
}

void keep_flag(StateKeeper& keeper) {
    keeper.keep(state);
}
