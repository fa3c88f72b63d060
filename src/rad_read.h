// rad_read.h: the two kinds of files of radar summaries, texts (rad_text) and netCDF
// (rad_cdf), as rad_read reads them, and what both need.
#pragma once

#include "zyrrad.h"

#include <cstdio>

// Puts a level in its place; one outside the grid is left out.
void rad_put_level(RAD_info* info, int column, int row, int level);
// The date of the label; unset when a part of it is.
void rad_decode_label(RAD_info* info);
// Takes "TRW++" as type and intensity.
void rad_take_precipitation(const char** at, MDR_prec* prec);

// --- Texts --------------------------------------------------------------------

// Holds a text of a type whole; what came before the end of a damaged packing
// is. False with a message when it is too large.
bool rad_text_take(std::FILE* file, const char* name, int type);
void rad_text_forget();
// Date and grid, into an empty record. Returns 0, -1 without a grid.
int rad_text_info(RAD_info* info);
// Goes to the first report.
void rad_text_rewind();
// The next report or number `*statnum`, of `rep_type` 1 its name alone. Returns 0,
// -1 at the end.
int rad_text_report(MDR_report* report, int rep_type, const int* statnum);
// The next record of the RCM list, likewise. Returns 1, -1 at the end.
int rad_text_message(RCM_report* report, int rep_type);

// --- netCDF -------------------------------------------------------------------

// Date, grid and number of reports of an open file, into an empty record. Returns 0,
// -1 without a grid.
int rad_cdf_info(int fd, int type, RAD_info* info, long* reports);
// Report `n`, of `rep_type` 1 its name alone.
void rad_cdf_report(int fd, int type, MDR_report* report, int rep_type, int n);
