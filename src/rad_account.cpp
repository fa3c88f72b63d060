// rad_account: the account of a run. State: where its lines go, and the pictures whose
// output is not yet whole.
#include "rad_account.h"

#include "files.h"
#include "json_text.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_sites.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

struct Picture {
    std::string input;
    PLT_tally tally;
    int code = 0;
    double begun = 0; // seconds
    double ended = 0;
};

struct State {
    std::FILE* out = nullptr; // of the lines
    pid_t owner = 0;          // what a batch run leaves in the background writes none
    bool under_way = false;   // `picture` is being drawn
    Picture picture;
    std::vector<Picture> pages; // drawn, on a page that is not yet written
    std::optional<RadSites> sites;
    long written = 0;  // pictures since the plot began
    long pictures = 0; // that were drawn, in all
    long empty = 0;    // of these
};

State state;

double seconds_now() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

std::string site_of(const PLT_tally& tally) {
    if (!tally.site.empty() || !tally.has_site || !is_set(tally.lat)) {
        return tally.site;
    }
    if (!state.sites) {
        state.sites = RAD_read_sites();
    }
    return RAD_site_at(*state.sites, tally.lat, tally.lon);
}

void put_size(JsonObject& line, const char* key, const std::string& name) {
    const long size = FILE_is_stdio(name.c_str()) != 0 ? -1 : FILE_size(name.c_str());
    if (size >= 0) {
        line.raw(key, std::to_string(size));
    }
}

std::string text_of(const Picture& picture) {
    const PLT_tally& tally = picture.tally;
    JsonObject line;
    line.raw("input", json_quoted(picture.input));
    put_size(line, "bytes", picture.input);
    line.text("product", tally.product);
    line.count("code", tally.code);
    line.text("moment", tally.moment);
    line.count("cut", tally.cut);
    line.real("angle", tally.elev, 2);
    line.text("site", site_of(tally));
    line.real("lat", tally.lat, 4);
    line.real("lon", tally.lon, 4);
    line.text("time", iso_time(tally.date));
    if (tally.radials + tally.out_of_range > 0) {
        line.count("radials", tally.radials);
        line.count("missing", PLT_missing_radials(tally));
        line.count("out_of_range", tally.out_of_range);
    }
    line.count("figures", tally.figures);
    line.real("min", tally.low, 2);
    line.real("max", tally.high, 2);
    for (const std::string& output : tally.outputs) { // of several the last
        if (&output == &tally.outputs.back()) {
            line.text("output", output);
            put_size(line, "size", output);
        }
    }
    if (tally.there) {
        line.raw("there", "true");
    }
    line.raw("exit", std::to_string(picture.code));
    line.raw("ms", std::to_string(std::lround(1000 * (picture.ended - picture.begun))));
    return line.str();
}

void write(const Picture& picture) {
    State& s = state;
    ++s.written;
    if (picture.code == 0 && !picture.tally.there) {
        ++s.pictures;
        s.empty += picture.tally.figures == 0 ? 1 : 0;
    }
    if (s.out != nullptr && s.owner == getpid()) {
        std::fprintf(s.out, "%s\n", text_of(picture).c_str());
        std::fflush(s.out); // the account of a run that is killed is whole, too
    }
}

} // namespace

bool RAD_open_account() {
    const char* name = RES_get("--report");
    if (name == nullptr) {
        return true;
    }
    // It is written as it goes, and what a run that is resumed says comes after that of
    // before. A file that holds something else is not taken for one.
    const FILE_ptr old(FILE_size(name) > 0 ? FILE_open(name, "r") : nullptr);
    if (old == nullptr || old.get() == stdin || std::getc(old.get()) == '{') {
        state.out = FILE_open(name, RES_get("--resume") != nullptr ? "a" : "w");
    }
    state.owner = getpid();
    if (state.out == nullptr) {
        MESS_print(mess_error, "zyrrad: Unable to write the report: %s\n", name);
        return false;
    }
    return true;
}

bool RAD_keeps_account() {
    return state.out != nullptr || PLT_get_settings().empty_code != 0;
}

void RAD_begin_account(const char* input) {
    State& s = state;
    if (s.under_way) { // without an end
        return;
    }
    PLT_get_tally() = {};
    s.picture = {};
    s.picture.input = input;
    s.picture.begun = seconds_now();
    s.under_way = true;
}

void RAD_end_account(int code) {
    State& s = state;
    if (!s.under_way) {
        return;
    }
    s.under_way = false;
    s.picture.tally = PLT_get_tally();
    s.picture.code = code;
    s.picture.ended = seconds_now();
    if (code != 0 || !s.picture.tally.outputs.empty()) {
        write(s.picture);
    } else {
        s.pages.push_back(s.picture);
    }
}

void RAD_close_account(const char* input, int code) {
    State& s = state;
    RAD_end_account(code);
    for (Picture& page : s.pages) {
        page.code = code;
        page.ended = s.pages.size() == 1 ? seconds_now() : page.ended;
        page.tally.outputs = PLT_get_tally().outputs;
        write(page);
    }
    s.pages.clear();
    if (s.written == 0) {
        RAD_begin_account(input);
        RAD_end_account(code);
        for (const Picture& page : s.pages) {
            write(page);
        }
        s.pages.clear();
    }
    s.written = 0;
}

long RAD_num_pictures() {
    return state.pictures;
}

long RAD_num_empty() {
    return state.empty;
}

int RAD_exit_code(int code) {
    State& s = state;
    if (s.out != nullptr && (std::ferror(s.out) != 0 || FILE_close(s.out) != 0)) {
        MESS_print(mess_error, "zyrrad: Unable to write the report\n");
        code = code == 0 ? end_output : code;
    }
    s.out = nullptr;
    const int if_empty = PLT_get_settings().empty_code;
    return code == 0 && if_empty != 0 && s.pictures > 0 && s.empty == s.pictures ? if_empty : code;
}
