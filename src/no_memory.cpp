// no_memory.cpp: the end of a run whose memory runs out. Owns the note that
// something was left out, and who reports by itself.
#include "no_memory.h"
#include "state_keeper.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

#include <unistd.h>

namespace {

constexpr const char* message = "Out of memory\n";

struct State {
    int code = 4;        // to end with
    int own_reports = 0; // ZYR_own_report alive
    bool lacked = false;
    bool ending = false; // the message is being said
    void (*report)(const char* message) = nullptr;
    void (*clear)() = nullptr; // takes unfinished outputs away
};
State state;

void handle_new() {
    if (state.own_reports == 0) {
        ZYR_no_memory();
    }
    state.lacked = true;
    throw std::bad_alloc();
}

// What throws by itself, without asking the handler.
[[noreturn]] void handle_end() {
    if (const std::exception_ptr now = std::current_exception()) {
        try {
            std::rethrow_exception(now);
        } catch (const std::bad_alloc&) {
            ZYR_no_memory();
        } catch (...) {
        }
    }
    std::abort();
}

// Libraries of the display and of netCDF use what they did not get: their crash after
// a failed allocation is the end of memory. Any other stays what it is.
extern "C" void handle_crash(int signal) {
    if (errno != ENOMEM) {
        std::raise(signal); // by default, once this returns
        return;
    }
    if (state.clear != nullptr) {
        state.clear();
    }
    const std::string_view text = message;
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size())); // nothing is left to do
    _exit(state.code);
}

void watch_crashes() {
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT}) {
        struct sigaction now {};
        if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler != SIG_DFL) {
            continue; // of a sanitizer
        }
        struct sigaction action {};
        action.sa_handler = handle_crash;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

void ZYR_watch_memory(void (*report)(const char* message)) {
    state.report = report;
    std::set_new_handler(handle_new);
    std::set_terminate(handle_end);
    watch_crashes();
}

void ZYR_no_memory() {
    state.lacked = true;
    if (state.ending) {
        _exit(state.code); // not even for the way out
    }
    state.ending = true;
    if (state.report != nullptr) {
        state.report(message);
    }
    std::exit(state.code);
}

void ZYR_clear_at_no_memory(void (*clear)()) {
    state.clear = clear;
}

void ZYR_set_no_memory_code(int code) {
    state.code = code;
}

void ZYR_note_no_memory() {
    state.lacked = true;
}

bool ZYR_lacked_memory() {
    return state.lacked;
}

ZYR_own_report::ZYR_own_report() {
    ++state.own_reports;
}

ZYR_own_report::~ZYR_own_report() {
    --state.own_reports;
}

void keep_no_memory(StateKeeper& keeper) {
    keeper.keep(state.lacked);
}
