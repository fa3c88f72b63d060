// rrwds.h: RRWDS images: one radar's reflectivity in eight levels, a record for
// each degree of azimuth.
#pragma once

#include "nids.h"

// Reference date of the file selection; null: the file's date. Returns 0.
int RRWDS_set_date(const Date* datim);
// Opens a file and reads its header. Returns 1; 0 after a message when it does
// not open or has no header. A single file of a station that "rad.cty" does not
// know ends the program with 11.
int RRWDS_open_file(const char* filename);
// Reads the header of 12 bytes. Returns 1; 0 when there are fewer; -1, after
// "RRWDS_get_header: Station not found\n", when nobody knows the station.
int RRWDS_get_header(std::FILE* ifile, NIDS_info* info);
// Back to the first azimuth. These return 1; 0 when no file is open.
int RRWDS_rewind_file();
int RRWDS_close_file();
// The whole plot on `domain`, or on the radar's own where its `proj` is not set.
int RRWDS_plot(Domain* domain);
// Gives a domain without `proj` the surroundings of the open file's radar.
// Returns 0; -1 when it has one.
int RRWDS_domain(Domain* domain);
// Echoes, site and rings of the open file. Returns 0.
int RRWDS_plot_data();
// Takes the words of `plot_param`. Returns 0.
int RRWDS_plot_param();
void RRWDS_callback(int type, const char* str, float x, float y);
