// gks_pack.h: a page's drawing as a packed stream: deflated, and in the base 85
// text that a printer or a mail takes as it is.
#pragma once

#include <cstdio>

// Begins a stream in `page`: what is written to the file that this returns goes
// there packed. One at a time. Running out of memory ends the program.
std::FILE* gpack_open(std::FILE* page);
// Completes the stream with its end mark. What could not be written is an error of
// the page's file.
void gpack_close(std::FILE* stream);
