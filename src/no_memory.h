// no_memory.h: what the program does when memory runs out: one message, and the
// end with 4. A picture that lacks something never takes a file's name.
#pragma once

// From here on, memory that `new` cannot get ends the run, after `report` has said
// so, and so does the crash of a library that got none. Call it first of all.
void ZYR_watch_memory(void (*report)(const char* message));
// Ends the run with a message and 4; unfinished outputs go.
[[noreturn]] void ZYR_no_memory();
// What takes unfinished outputs away; safe inside a signal handler.
void ZYR_clear_at_no_memory(void (*clear)());
// The code instead of 4 from here on.
void ZYR_set_no_memory_code(int code);
// For one who reports the failure in words of its own and goes on: the run ends
// with 4, and outputs that are open keep what stood under their names.
void ZYR_note_no_memory();
// Was something left out for want of memory?
bool ZYR_lacked_memory();

// What malloc and its like gave; without it the run ends.
template <class T> T* ZYR_need(T* block) {
    if (block == nullptr) {
        ZYR_no_memory();
    }
    return block;
}

// While one lives, `new (std::nothrow)` gives null instead of ending the run, and
// the failure is noted: the code about it reports.
class ZYR_own_report {
public:
    ZYR_own_report();
    ~ZYR_own_report();
    ZYR_own_report(const ZYR_own_report&) = delete;
    ZYR_own_report& operator=(const ZYR_own_report&) = delete;
};
