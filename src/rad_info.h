// rad_info.h: what radar files hold, as lines for a person or a program.
#pragma once

// Prints a line for each file, in the order of their times: kind, product, site,
// time, position, volume coverage pattern, cuts, extremes.
//   json  each line is a JSON object (doc/json.md has its members)
// Returns 0; -1 when no file is of a kind that is known.
int RAD_print_files(int count, const char* const* files, bool json);

// Puts the kind of the first file in the place of the word "auto" in the resource
// `input`, by the file's bytes. Returns 0, also without that word; -1 after a
// message when the file cannot be looked at or is of no kind that is plotted.
int RAD_find_input();
