// gks_evnt.h: what the modules of the events share: gks_evnt.cpp takes them from
// the server, gks_input.cpp keeps what waits, gks_keys.cpp knows keys and buttons,
// gks_help.cpp shows them, gks_band.cpp the rubber band. Included by these alone.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include <X11/Xlib.h>

// --- Keys and buttons (gks_keys.cpp) --------------------------------------------

constexpr std::size_t event_name_size = 80;

// "B1-P", "B3-R": a button and whether it was pressed or released.
void gname_button(unsigned button, bool press, char* name);
// Appends "-Alt", "-Shft" and "-Cntrl", in this order.
void gname_modifiers(unsigned state, char* name);

// What follows a key besides the call to the plotter.
enum class Key_end { none, leave_hold, no_callback };
// Does what the key does on its own; (x, y) is the pointer.
Key_end gserve_key(KeySym key, unsigned state, int x, int y);
void gserve_button(unsigned button, unsigned state);

// A key or button and what it does, in the order of a list for the user.
struct Key_help {
    const char* key;
    const char* meaning;
};
std::vector<Key_help> gkey_help();

// --- The list of keys (gks_help.cpp) --------------------------------------------

// Shows it over the picture, or prints it where the window has no room.
void gshow_keys();
// Takes it away. Returns whether it was there.
bool ghide_keys();

// --- Rubber band (gks_band.cpp) -------------------------------------------------

void ginit_band();
void gband_press(XPoint at);
void gband_move(XPoint at);
// Draws the final band and ends it. Returns the position to report: the moved
// point of a constrained line, else `at`.
XPoint gband_release(XPoint at);

// --- The hold (gks_input.cpp) ---------------------------------------------------

enum Input_mode : int { input_idle, input_hold, input_key_seen, input_leave };

// A button whose call to the plotter waits.
struct Waiting {
    std::array<char, event_name_size> name{};
    XPoint at{}; // pixels
    bool release = false;
};

struct Ginput {
    Input_mode input_mode = input_idle;
    bool size_due = false; // the window has a new size
    std::array<Waiting, 16> waiting;
    std::size_t num_waiting = 0;
};
Ginput& ginput();
