// gks_print.h: what the print devices share: pages, options, the print colours,
// and what the plot asks of all of them.
#pragma once

#include "gks.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string_view>

struct Gpage {
    float x, y; // inches
};

// The value of an option, which is after the word and one separator; null for
// another option.
const char* gprint_value(const char* option, const char* word);
// A page name ("a4"), or "sz=11x8.5" within what has room for a plot. False for
// any other option.
bool gprint_page(const char* option, Gpage* page);

// Opens "|command", "+file" or a file, and says which. Null on failure.
//   ends    what a whole page of the device may end with
//   append  out: 1 for "+"
//   end     out: the end that was taken off the page for another plot on it, to
//           be written after that
std::FILE* gprint_open(const char* name, std::initializer_list<std::string_view> ends, bool* append,
                       std::string_view* end);

// Print colours 500 to 508: their grey level and the factor on their width.
bool gis_print_colr(int ind);
float gprint_gray(int ind);
// The factor on the width of any index: that of a print colour, else 1.
int gprint_factor(int ind);

// A width in units of a device within what it takes; what is no number is 0. The
// attributes are bounded by the type alone, and factors come on top.
inline float gprint_held_width(float width) {
    constexpr float widest = 100000.0F;
    return width > 0.0F ? std::min(width, widest) : 0.0F;
}

// Where the setters of gks.h keep their values, and the getters find them.
void gprint_set_bold(int factor);
void gprint_set_solid(int value);
