// zyrrad.cpp: the entry point. It reads the settings, finds out which kind of
// radar file is asked for, gets the name of the first file and hands over to
// the plotter of that kind, which does the rest of the run.
#include "zyrrad.h"
#include "data_file.h"
#include "date.h"
#include "file_kind.h"
#include "files.h"
#include "kavrad.h"
#include "lev2.h"
#include "lev2_plt.h"
#include "nids.h"
#include "nids_plt.h"
#include "no_memory.h"
#include "nowrad.h"
#include "plt_tool.h"
#include "rad_account.h"
#include "rad_check.h"
#include "rad_files.h"
#include "rad_info.h"
#include "rad_input.h"
#include "rad_list.h"
#include "rarep.h"
#include "region.h"
#include "res_table.h"
#include "rrwds.h"
#include "run_end.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>

#include <malloc.h>
#include <unistd.h>

namespace {

// The settings of this program, in the order of the help.
constexpr auto res_key = res_listed<true>();
constexpr auto res_pos = res_listed<false>();

void run_nids(Domain* domain) {
    NIDS_set_ext_info(FILE_get_ext_info());
    NIDS_set_date(nullptr);
    DOM_get_region(domain, 3);
    NIDS_plot(domain);
}

void run_lev2(Domain* domain) {
    LEV2_set_date(nullptr);
    DOM_get_region(domain, 3);
    LEV2_plot(domain);
}

void run_lev2z(Domain* domain) {
    LEV2_set_compress(1);
    run_lev2(domain);
}

void run_rrwds(Domain* domain) {
    RRWDS_set_date(nullptr);
    DOM_get_region(domain, 3);
    RRWDS_plot(domain);
}

// A mosaic has no domain of its own: it is drawn on each one that the user names.
void run_nowrad(Domain* domain) {
    NOWRad_set_date(nullptr);
    while (DOM_prompt_region(domain, 1) >= 1) {
        NOWRad_plot(domain);
    }
}

void run_kavrad(Domain* domain) {
    KAVRAD_set_date(nullptr);
    while (DOM_prompt_region(domain, 1) >= 1) {
        KAVRAD_plot(domain);
    }
}

void run_rcm(Domain* domain) {
    RCM_set_date(nullptr);
    DOM_get_region(domain, 3);
    RCM_prompt_id();
    RCM_plot(domain);
}

// A summary is drawn on each domain that the user names, for each choice of
// variables.
void run_summary(Domain* domain) {
    RAD_set_date(nullptr);
    while (DOM_prompt_region(domain, 1) >= 1) {
        RAD_set_prompt_variable(1);
        while (RAD_prompt_variable() != 0) {
            RAD_plot(domain);
        }
    }
}

// One kind of radar file: how a typed name is read, what the user is asked, and
// what plots it.
struct Plotter {
    int input; // flag 14
    int type;  // of FILE_set_type
    const char* prompt;
    void (*run)(Domain* domain);
};

constexpr Plotter plotters[] = {
    {input_nids,     1, "Enter the NIDS filename: ",    run_nids   },
    {input_lev2,     1, "Enter the Level 2 filename: ", run_lev2   },
    {input_lev2z,    1, "Enter the Level 2 filename: ", run_lev2z  },
    {input_rrwds,    0, "Enter the RRWDS filename: ",   run_rrwds  },
    {input_nowrad,   0, "Enter the NOWRad filename: ",  run_nowrad },
    {input_kavrad,   0, "Enter the KAVRAD filename: ",  run_kavrad },
    {input_rcm_site, 0, "Enter the RCM filename: ",     run_rcm    },
    {input_summary,  0, "Enter the radar filename: ",   run_summary},
};

// The exit code of "--info [--json] FILE...".
int print_info(int count, char** words) {
    const auto is_json = [](const char* word) { return std::strcmp(word, "--json") == 0; };
    char** const files = std::stable_partition(words, words + count, is_json);
    const int num = static_cast<int>(words + count - files);
    if (num == 0) {
        MESS_print(mess_error, "zyrrad: --info needs the names of files\n");
        return end_file;
    }
    return RAD_print_files(num, files, files != words) == 0 ? 0 : end_file;
}

// Finds out which kind of file is asked for. The exit code if there is none.
int find_kind() {
    if (RAD_find_input() != 0) {
        return end_file;
    }
    RAD_cvt_in_file();
    MESS_print_prog("RADAR DATA PLOTTING");
    return 0;
}

// Plots files of that kind. Returns the exit code.
int plot_kind() {
    // What is of no other kind is a summary, the last row.
    const auto* plotter =
        std::find_if(std::begin(plotters), std::end(plotters) - 1,
                     [](const Plotter& row) { return row.input == FLAG_get(flag_input); });
    std::array<char, file_name_size> file{};
    FILE_set_type(plotter->type);
    FILE_get_file(plotter->prompt, file.data());
    Domain domain;
    plotter->run(&domain);
    return 0;
}

int plot() {
    const int code = find_kind();
    return code != 0 ? code : plot_kind();
}

// Ends a run that only answers: an answer that a full disk cut short is a failure.
void end_answer(int code) {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        MESS_print(mess_error, "zyrrad: Unable to write to standard output\n");
        code = end_output;
    }
    ZYR_exit(code);
}

// Memory that unpacking gives back serves the picture that is made of it. The C library
// would return each block of this size to the system and get a new one, whose pages cost
// more than a picture's own work on them.
void keep_freed_memory() {
    constexpr int largest_block = 8 << 20;
    constexpr int largest_rest = 16 << 20;
    mallopt(M_MMAP_THRESHOLD, largest_block);
    mallopt(M_TRIM_THRESHOLD, largest_rest);
}

// The log of messages takes no radar file's place.
std::FILE* open_log(const char* name, const char* mode) {
    std::array<std::uint8_t, 512> area{};
    const FILE_ptr there(FILE_size(name) > 0 ? FILE_open_data(name) : nullptr);
    const bool radar = there != nullptr && there.get() != stdin &&
                       file_kind(FILE_head(there.get(), area)).input != nullptr;
    return radar ? nullptr : FILE_open(name, mode);
}

} // namespace

int main(int argc, char** argv) {
    keep_freed_memory();
    ZYR_watch_memory([](const char* message) { MESS_print(mess_error, "%s", message); });
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        MESS_print(mess_print, "zyrrad %s\n", ZYR_version());
        end_answer(0);
    }
    // What follows "--info" are files; settings come before it.
    char** const info = std::find_if(
        argv, argv + argc, [](const char* word) { return std::strcmp(word, "--info") == 0; });
    const int num_args = static_cast<int>(info - argv);
    RES_set_actions({.hour = FILE_set_time, .domain = DOM_decode});
    MESS_set_log_tools({.open = open_log, .close = FILE_close, .stamp = DATE_get_current_str});
    RES_init(num_args, argv, res_key.data(), res_pos.data());
    if (FLAG_help() != 0) {
        std::array<char, file_name_size> name{};
        RES_get_progname(name.data());
        MESS_print(mess_print, "%s: This program plots various types of radar data\n", name.data());
        RES_help_print(name.data(), res_key.data(), res_pos.data());
        MESS_print(
            mess_print,
            "Types of input: auto, nids, lev2, lev2z, nowrad, kavrad, rrwds, rcmsite, mdr, rcm\n"
            "Words of -pp off unless given: storms (storm symbols of NIDS products),\n"
            "  exact (values and places of NIDS and Level II by the formats' own documents),\n"
            "  georef (images say where they lie), empty=N (exit code of a run without echoes)\n"
            "Level II: -va vel2, vel@0.5, ref@max, vel@0.5:last; level files of -cof may be .pal\n"
            "More: zyrrad --list products|regions|colours|fonts|stations|projections|variables|"
            "options; --info FILE...; --files-from LIST; "
            "--report FILE; man zyrrad\n");
        end_answer(0);
    }
    if (const char* kind = RES_get("--list")) {
        end_answer(RAD_list(kind) == 0 ? 0 : end_file);
    }
    if (num_args < argc) {
        end_answer(print_info(argc - num_args - 1, info + 1));
    }
    RAD_check_settings();
    if (!RAD_open_account()) {
        ZYR_exit(end_output);
    }
    if (RAD_wants_list()) {
        ZYR_exit(RAD_exit_code(RAD_plot_list(plot)));
    }
    PLT_param_decode();
    if (RAD_keeps_account()) {
        const char* first = RES_get("filename");
        const std::string input = first == nullptr ? "" : first;
        const int code = ZYR_catch_exit(plot);
        RAD_close_account(input.substr(0, input.find('\n')).c_str(), code);
        ZYR_exit(RAD_exit_code(code));
    }
    if (const int code = find_kind(); code != 0) {
        ZYR_exit(code);
    }
    if (argc == 1 && isatty(STDIN_FILENO) != 0) {
        RAD_print_greeting();
    }
    return plot_kind();
}
