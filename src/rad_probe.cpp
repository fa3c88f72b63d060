// rad_probe: the files of the pictures on show, and where a point lies in a strip
// of bins. State: the sources by number, which the kernel keeps with each frame, so
// that they follow it when frames are deleted.
#include "rad_probe.h"

#include "files.h"
#include "state_keeper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include <sys/stat.h>

namespace {

constexpr std::size_t most_sources = 256; // twice the frames: a refresh adds one each time

struct State {
    std::vector<RadSource> sources;
    int first = 0; // number of the first of them
};
State state;

// The file's size and time. False for what is no plain file: a stream or a pipe can
// be read but once, and a command would run again.
bool take_status(const char* name, RadSource* source) {
    struct stat info {};
    char path[file_name_size];
    if (FILE_is_stdio(name) != 0 || *name == '|' || *name == '\0' ||
        stat(FILE_add_user_path(name, path), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    source->size = info.st_size;
    source->seconds = info.st_mtim.tv_sec;
    source->nanoseconds = info.st_mtim.tv_nsec;
    return true;
}

void put_number(int frame, int number) {
    std::array<unsigned char, sizeof number> bytes{};
    std::memcpy(bytes.data(), &number, sizeof number);
    gset_image_data(frame, bytes.data(), static_cast<int>(bytes.size()));
}

// -1 where none is kept.
int get_number(int frame) {
    std::array<unsigned char, frame_data_size> bytes{};
    int number = -1;
    if (gget_image_data(frame, bytes.data()) == static_cast<int>(sizeof number)) {
        std::memcpy(&number, bytes.data(), sizeof number);
    }
    return number;
}

// How many steps along a strip of straight edges a point lies; below 0: not on it.
double steps_along(const RadEdges& edges, Gpt at) {
    const RadRuler& one = edges.first;
    const RadRuler& two = edges.second;
    const double bend_x = one.dx - two.dx;
    const double bend_y = one.dy - two.dy;
    const double bend = bend_x * bend_x + bend_y * bend_y;
    const double length = one.dx * one.dx + one.dy * one.dy;
    double steps = -1;
    if (bend <= 1e-12 * length) { // a row: the point between two parallels
        const double x = at.x - one.x;
        const double y = at.y - one.y;
        const double below = one.dx * (at.y - two.y) - one.dy * (at.x - two.x);
        if ((one.dx * y - one.dy * x) * below <= 0 && length > 0) {
            steps = (x * one.dx + y * one.dy) / length;
        }
    } else { // a radial: as so much of each edge from where both meet
        const double meet = ((two.x - one.x) * bend_x + (two.y - one.y) * bend_y) / bend;
        const double x = at.x - (one.x + meet * one.dx);
        const double y = at.y - (one.y + meet * one.dy);
        const double area = one.dx * two.dy - one.dy * two.dx;
        const double a = (x * two.dy - y * two.dx) / area;
        const double b = (one.dx * y - one.dy * x) / area;
        if (a >= 0 && b >= 0) {
            steps = a + b + meet;
        }
    }
    return steps;
}

// The straight line that a bent one is like at a step.
RadRuler straight_at(const RadRuler& ruler, double step) {
    return {ruler.x - step * step * ruler.ddx, ruler.y - step * step * ruler.ddy,
            ruler.dx + 2 * step * ruler.ddx, ruler.dy + 2 * step * ruler.ddy};
}

} // namespace

void rad_forget_sources() {
    state = {};
}

void rad_note_source(int frame, const char* name) {
    RadSource source;
    source.name = take_status(name, &source) ? name : "";
    state.sources.push_back(source);
    if (state.sources.size() > most_sources) {
        state.sources.erase(state.sources.begin());
        ++state.first;
    }
    put_number(frame, state.first + static_cast<int>(state.sources.size()) - 1);
}

void rad_note_scan(int scan) {
    if (!state.sources.empty()) {
        state.sources.back().scan = scan;
    }
}

void rad_shift_source(int frame) {
    put_number(frame, get_number(frame + 1));
}

const RadSource* rad_shown_source() {
    if (state.sources.empty()) {
        return nullptr;
    }
    // Without frames the picture is the last one drawn.
    const int last = state.first + static_cast<int>(state.sources.size()) - 1;
    const int number = gget_num_images() < 1 ? last : get_number(std::max(gget_cur_frame(), 0));
    if (number < state.first || number > last) {
        return nullptr;
    }
    const RadSource& source = state.sources[static_cast<std::size_t>(number - state.first)];
    RadSource now;
    const bool same = take_status(source.name.c_str(), &now) && now.size == source.size &&
                      now.seconds == source.seconds && now.nanoseconds == source.nanoseconds;
    return same ? &source : nullptr;
}

int rad_figure_at(const RadEdges& edges, Gpt at) {
    const RadRuler& one = edges.first;
    const double step = std::hypot(one.dx, one.dy);
    const bool bent = one.ddx != 0 || one.ddy != 0;
    // Of a bent strip the piece that is straight where the point is, ever nearer.
    double steps = bent && step > 0 ? std::hypot(at.x - one.x, at.y - one.y) / step : 0;
    for (int i = bent ? 3 : 1; i > 0 && steps >= 0; --i) {
        steps = steps_along({straight_at(one, steps), straight_at(edges.second, steps)}, at);
    }
    constexpr double farthest = 1e6; // no strip has so many
    return steps >= 0 && steps < farthest ? static_cast<int>(steps) : -1;
}

void rad_tell_value(const std::string& value) {
    if (!value.empty()) {
        MESS_print(mess_print, "Value: %s\n", value.c_str());
    }
}

std::string rad_number_text(float value) {
    char text[64] = "";
    std::snprintf(text, sizeof text, "%.2f", static_cast<double>(value));
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.ends_with('.')) {
        number.pop_back();
    }
    return number == "-0" ? "0" : number;
}

std::string rad_unit_text(const char* label) {
    const std::string_view text = label;
    const std::size_t open = text.rfind('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return "";
    }
    const std::string_view unit = text.substr(open + 1, close - open - 1);
    if (unit == "1000 ft") { // after a number it would be another number
        return " kft";
    }
    const std::size_t blank = unit.rfind(' '); // "max Dbz"
    return " " + std::string(blank == std::string_view::npos ? unit : unit.substr(blank + 1));
}

RadQuiet::RadQuiet() {
    for (unsigned bit = 1; bit != 0; bit <<= 1) {
        mask_ |= MESS_check(bit) != 0 ? bit : 0;
    }
    constexpr int take_away = 9;
    MESS_set(take_away, ~0U);
}

RadQuiet::~RadQuiet() {
    constexpr int add = 11;
    MESS_set(add, mask_);
}

void keep_rad_probe(StateKeeper& keeper) {
    keeper.keep(state);
}
