// gks_print.h: what the print devices share: pages, options, and the print
// colours. No state.
#pragma once

#include "gks.h"

#include <cstdio>

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
//   append  out: 1 for "+"
std::FILE* gprint_open(const char* name, bool* append);

// Print colours 500 to 508: their grey level and the factor on their width.
bool gis_print_colr(int ind);
float gprint_gray(int ind);
// The factor on the width of any index: that of a print colour, else 1.
int gprint_factor(int ind);
