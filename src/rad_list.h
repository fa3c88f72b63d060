// rad_list.h: what there is: tables for `--list`, and the program's own words.
#pragma once

// Prints a table of the things of that kind (products, regions, colours, fonts,
// stations, projections, variables, options), one a line, fields parted by tabs.
// Returns 0; -1, with a warning that names the nearest kind, for any other word.
int RAD_list(const char* kind);
// What the program is, an example, the help and the manual: three lines.
void RAD_print_greeting();
