// watch.h: severe thunderstorm and tornado watches of the United States, read
// from their aviation bulletins and drawn as boxes over a radar picture.
#pragma once

#include "zyr.h"

// Whether the resource `variable` lists the word "watch".
bool WATCH_wanted();

// Reads the bulletins of the nine hours up to a time, in files of the naming
// convention "wat_dat", and keeps the watches in force then: 20 at most. The
// file selection is as before afterwards. Returns 0; -1 when no file was found,
// after one warning.
int WATCH_decode(const Date* datim);

// Reads one file and adds its watches.
//   datim     date for a file whose own is not known
//   cur_time  seconds since 1970 at which a watch must be in force
// Returns 1; 0 after a message when the file or the station database is missing.
int WATCH_decode_file(const char* filename, const Date* datim, long cur_time);

// Draws the watches on the plot of the current domain: the plot component
// "data", colours of the resource `color_watch`. Returns 0.
int WATCH_plot();

// Labels: 0 as "S53" and "to 2Z", else in words and the display zone.
int WATCH_set_label(int type);
