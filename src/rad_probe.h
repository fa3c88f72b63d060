// rad_probe.h: what lies under the pointer of a window: which file the picture on
// show is of, and which bin or cell of its data a place falls into. Values are
// decoded again when they are asked for: a plot keeps none.
#pragma once

#include "rad_fill.h"

#include <cstdint>
#include <string>

// A file that was drawn.
struct RadSource {
    std::string name;
    int scan = 0;                                        // the plotter's: which part of the file
    std::int64_t size = 0, seconds = 0, nanoseconds = 0; // of the file as it was drawn

    bool operator==(const RadSource&) const = default;
};

// The pictures drawn so far are no more.
void rad_forget_sources();
// A frame of the window (0 where there are none) is a picture of this file now.
void rad_note_source(int frame, const char* name);
// Part of the file of the source noted last.
void rad_note_scan(int scan);
// A frame takes the picture of the one after it.
void rad_shift_source(int frame);
// The source of the picture on show. Null when there is none, and when its file is
// gone, has changed, or can be read but once.
const RadSource* rad_shown_source();

// Which figure of a strip, counted from its first edge points, lies over a point on
// the data's own map; -1: none.
int rad_figure_at(const RadEdges& edges, Gpt at);

// The line of a value, unless it is empty.
void rad_tell_value(const std::string& value);
// "45", "-0.25", "0.98": no more decimals than the number has.
std::string rad_number_text(float value);
// The unit that a label ends in, with a blank before it: " Dbz" of "Base reflectivity
// (Dbz)"; empty for none.
std::string rad_unit_text(const char* label);

// No messages while it lives: a file that is read again has been complained of.
class RadQuiet {
public:
    RadQuiet();
    ~RadQuiet();
    RadQuiet(const RadQuiet&) = delete;
    RadQuiet& operator=(const RadQuiet&) = delete;

private:
    unsigned mask_ = 0;
};
