// gks_evnt.h: what the modules of the events share: gks_evnt.cpp takes them from
// the server, gks_keys.cpp knows keys and buttons, gks_band.cpp the rubber band.
// Included by these alone.
#pragma once

#include <cstddef>

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

// --- Rubber band (gks_band.cpp) -------------------------------------------------

void ginit_band();
void gband_press(XPoint at);
void gband_move(XPoint at);
// Draws the final band and ends it. Returns the position to report: the moved
// point of a constrained line, else `at`.
XPoint gband_release(XPoint at);
