// rad_files: the run over a list of inputs. State: what the run has come to. The
// settings must be read and the files of the data tree are kept in memory from the
// first picture on (FILE_keep_read).
#include "rad_files.h"

#include "files.h"
#include "gks.h"
#include "name_list.h"
#include "out_file.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_account.h"
#include "rad_state.h"
#include "run_end.h"
#include "text_scan.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct State {
    long inputs = 0; // taken from the list
    long total = 0;  // of the list, 0: not known before its end
    long drawn = 0;
    long empty = 0; // of those
    long failed = 0;
    long passed = 0;            // over, as their pictures are there
    bool resume = false;        //
    bool shows = false;         // progress, on a terminal
    bool shown = false;         // a line of it is there
    double start = 0, told = 0; // seconds, of the run and of the line of progress
};
State state;

// --- The list -------------------------------------------------------------------

// The list, of which nothing else reads: a prompt finds the end of its input instead of
// names. -1 after a message.
int open_list(const char* name) {
    int fd = -1;
    if (FILE_is_stdio(name) != 0) {
        fd = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    } else {
        std::array<char, file_name_size> path{};
        fd = open(FILE_add_user_path(name, path.data()), O_RDONLY | O_CLOEXEC);
    }
    struct stat info {};
    const bool usable = fd >= 0 && fstat(fd, &info) == 0 && !S_ISDIR(info.st_mode) &&
                        !S_ISBLK(info.st_mode) &&
                        (!S_ISCHR(info.st_mode) || isatty(fd) != 0 || FILE_is_stdio(name) != 0);
    if (!usable) {
        MESS_print(mess_error, "zyrrad: No list of inputs: %s\n", name);
        return -1;
    }
    if (S_ISREG(info.st_mode)) {
        NameList names(fd);
        while (names.next()) {
            ++state.total;
        }
        lseek(fd, 0, SEEK_SET);
    }
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing >= 0) {
        dup2(nothing, STDIN_FILENO);
        close(nothing);
    }
    return fd;
}

// --- Progress -------------------------------------------------------------------

double seconds_now() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

void take_line_away() {
    if (state.shown) {
        std::fputs("\r\033[K", stderr);
        state.shown = false;
    }
}

std::string time_text(double seconds) {
    const long whole = std::clamp(std::lround(seconds), 0L, 359999L);
    std::array<char, 32> text{};
    if (whole < 3600) {
        std::snprintf(text.data(), text.size(), "%ld:%02ld", whole / 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60,
                      whole % 60);
    }
    return text.data();
}

// A line that stays in its place, a few times a second at most.
void show_progress() {
    constexpr double pause = 0.2;
    if (!state.shows || seconds_now() - state.told < pause) {
        return;
    }
    state.told = seconds_now();
    take_line_away();
    const double seconds = seconds_now() - state.start;
    const double rate = static_cast<double>(state.inputs) / std::max(seconds, 1e-3);
    std::fprintf(stderr, "%ld", state.inputs);
    if (state.total > 0) {
        constexpr int width = 20;
        const int done =
            static_cast<int>(width * std::min(state.inputs, state.total) / state.total);
        std::fprintf(stderr, " of %ld [%-*s]", state.total, width,
                     std::string(static_cast<std::size_t>(done), '#').c_str());
    }
    std::fprintf(stderr, " %.1f/s", rate);
    if (state.total > 0) {
        const auto left = static_cast<double>(std::max(state.total - state.inputs, 0L));
        std::fprintf(stderr, " %s left", time_text(left / std::max(rate, 1e-3)).c_str());
    }
    if (state.failed > 0) {
        std::fprintf(stderr, " %ld failed", state.failed);
    }
    std::fflush(stderr);
    state.shown = true;
}

void print_summary() {
    take_line_away();
    // Standard output may be that of the report's lines.
    const unsigned level = RES_get("--report") != nullptr ? mess_warn : mess_print;
    const double seconds = seconds_now() - state.start;
    MESS_print(level, "%ld inputs: %ld drawn, %ld of them empty, %ld failed", state.inputs,
               state.drawn, state.empty, state.failed);
    if (state.resume) {
        MESS_print(level, ", %ld were there", state.passed);
    }
    MESS_print(level, "; %.1f s, %.1f a second\n", seconds,
               static_cast<double>(state.inputs) / std::max(seconds, 1e-3));
}

// --- Outputs --------------------------------------------------------------------

bool has_key(const std::string& pattern) {
    for (std::size_t at = pattern.find('%'); at != std::string::npos && at + 1 < pattern.size();
         at = pattern.find('%', at + 2)) {
        if (pattern[at + 1] != '%') {
            return true;
        }
    }
    return false;
}

// Whether each picture has a file of its own. An image is drawn in memory.
bool check_output() {
    PLT_param_decode();
    const std::string pattern = PLT_output_pattern();
    const Gws_type device = FLAG_get(flag_device);
    const bool page = device == ws_metafile || device == ws_postscript || device == ws_hpgl;
    if (page ? PLT_has_dump() : !PLT_has_dump() || device > ws_window) {
        MESS_print(mess_error, "zyrrad: A run over a list writes files: -of png@DIR/%%f.png or "
                               "-de p,DIR/%%f.ps\n");
        return false;
    }
    if (pattern.starts_with('|') || !has_key(pattern)) {
        MESS_print(mess_error,
                   "zyrrad: Each picture needs a file of its own, with a key in its name: %%f the "
                   "name of the input, %%i its number: %s\n",
                   pattern.c_str());
        return false;
    }
    return true;
}

// --- Inputs ---------------------------------------------------------------------

// A name that every part of the program takes for that of a file in a directory.
std::string plain_name(const std::string& name) {
    const bool plain = name.starts_with('/') || name.starts_with("./") || name.starts_with("../") ||
                       name.starts_with("~/");
    return plain ? name : "./" + name;
}

// Why an input cannot be tried, empty if it can.
std::string refusal_of(const std::string& name) {
    struct stat info {};
    std::array<char, file_name_size> path{};
    if (name.size() >= file_name_size) {
        return "Name too long";
    }
    if (name.find('\n') != std::string::npos) {
        return "Name with a line end";
    }
    if (stat(FILE_add_user_path(name.c_str(), path.data()), &info) != 0) {
        return "No such file";
    }
    return S_ISREG(info.st_mode) ? "" : "No plain file";
}

// A name for a message: without control characters, and not too long.
std::string shown_name(const std::string& name) {
    constexpr std::size_t most = 200;
    std::string shown = name.substr(0, most);
    std::replace_if(
        shown.begin(), shown.end(),
        [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; }, '?');
    return shown + (name.size() > most ? "..." : "");
}

// The exit code of one input.
int plot_input(const std::string& name, int (*plot)()) {
    const std::string why = refusal_of(name);
    if (!why.empty()) {
        MESS_print(mess_error, "zyrrad: %s: %s\n", why.c_str(), shown_name(name).c_str());
        return end_file;
    }
    RES_put_again("filename", name.c_str());
    std::array<char, 24> number{};
    std::snprintf(number.data(), number.size(), "%06ld", state.inputs);
    PLT_set_number(number.data());
    claim_outputs();
    const int code = ZYR_catch_exit(plot);
    const PLT_tally& tally = PLT_get_tally();
    if (code != 0) {
        MESS_print(mess_error, "zyrrad: Failed, %d: %s\n", code, shown_name(name).c_str());
    } else if (!tally.there && tally.outputs.empty()) {
        MESS_print(mess_error, "zyrrad: No picture: %s\n", shown_name(name).c_str());
        return end_file;
    }
    return code;
}

// The same, with its account.
int take_input(const std::string& name, int (*plot)()) {
    const long empty = RAD_num_empty();
    const long pictures = RAD_num_pictures();
    const int code = plot_input(name, plot);
    const bool there = code == 0 && PLT_get_tally().there;
    RAD_close_account(name.c_str(), code);
    if (code != 0) {
        ++state.failed;
    } else if (there) {
        ++state.passed;
    } else {
        ++state.drawn;
        state.empty += RAD_num_empty() - empty == RAD_num_pictures() - pictures ? 1 : 0;
    }
    return code;
}

std::string text_of(const char* resource) {
    const char* text = RES_get(resource);
    return text == nullptr ? "" : text;
}

} // namespace

bool RAD_wants_list() {
    return RES_get("--files-from") != nullptr;
}

int RAD_plot_list(int (*plot)()) {
    if (MESS_check_set() == 0) {
        MESS_set(0, mess_print | mess_error | mess_warn); // the account is what is of use
    }
    if (RES_items("filename").count() > 0) {
        MESS_print(mess_warn, "zyrrad: Files besides the list are left out\n");
    }
    RES_new(missing, "filename", nullptr, CV_strings); // so that commas split no name
    if (!check_output()) {
        return end_file;
    }
    if (FLAG_get(flag_device) <= ws_window) {
        RES_put("device", "d,memory");
    }
    std::vector<std::pair<const char*, std::string>> settings;
    for (const char* resource : {"input", "device"}) {
        if (RES_get(resource) != nullptr) {
            settings.emplace_back(resource, text_of(resource));
        }
    }
    const int list = open_list(text_of("--files-from").c_str());
    if (list < 0) {
        return end_file;
    }
    state.resume = RES_get("--resume") != nullptr;
    PLT_set_resume(state.resume);
    const StateKeeper& keeper = RAD_take_state();
    FILE_keep_read();
    const bool stops = RES_get("--stop") != nullptr;
    state.shows = isatty(STDERR_FILENO) != 0;
    state.start = seconds_now();
    MESS_set_before(take_line_away);
    int worst = 0;
    NameList names(list);
    while (const std::optional<std::string> name = names.next()) {
        ++state.inputs;
        keeper.restore();
        for (const auto& [resource, value] : settings) { // as before the first picture
            RES_put_again(resource, value.c_str());
        }
        const int code = take_input(plain_name(*name), plot);
        worst = std::max(worst, code);
        show_progress();
        if (stops && code != 0) {
            break;
        }
    }
    keeper.restore();
    close(list);
    print_summary();
    return worst;
}
