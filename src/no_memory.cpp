// no_memory.cpp: the end of a run whose memory runs out. Owns the note that
// something was left out, and who reports by itself.
#include "no_memory.h"

#include <cstdlib>
#include <exception>
#include <new>

#include <unistd.h>

namespace {

constexpr int exit_no_memory = 4;

struct State {
    int own_reports = 0; // ZYR_own_report alive
    bool lacked = false;
    bool ending = false; // the message is being said
    void (*report)(const char* message) = nullptr;
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

} // namespace

void ZYR_watch_memory(void (*report)(const char* message)) {
    state.report = report;
    std::set_new_handler(handle_new);
    std::set_terminate(handle_end);
}

void ZYR_no_memory() {
    state.lacked = true;
    if (state.ending) {
        _exit(exit_no_memory); // not even for the way out
    }
    state.ending = true;
    if (state.report != nullptr) {
        state.report("Out of memory\n");
    }
    std::exit(exit_no_memory);
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
