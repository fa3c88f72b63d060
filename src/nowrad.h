// nowrad.h: NOWrad national mosaics: a header of tags, then lines of runs of
// columns, from the top of the image to its bottom.
#pragma once

#include "zyr.h"

#include <cstdio>

// --- Reader (nowrad.cpp) ------------------------------------------------------

struct NOWRad_info {
    char label[40] = ""; // of the kind of mosaic, empty for one that is not known
    Date date;           // unset where the title holds none
    Domain domain;       // the image; `proj` 2 or 4
};

struct NOWRad_packet {
    int run = 0;       // columns
    float value = 0.0; // dBZ
    int mask = 0;      // of the columns; nothing uses it
};

// Reads the header. Returns 1 with the first line ready to be read; 0 for a null
// file, a wrong tag, a size outside 1 to 65535, or a file that ends: no line is
// read then, and what was found is in `info`.
int NOWRad_header(std::FILE* ifile, NOWRad_info* info);
// Whether the last header began as a NOWrad file does.
bool NOWRad_is_one();
// Back to the first line. Returns 1; 0 for a null file.
int NOWRad_rewind(std::FILE* ifile);
// Starts the next line; `line` takes its number as the file has it. Returns 1; 0
// after the last one.
int NOWRad_line(std::FILE* ifile, int* line);
// The next run of the line. Returns 1; 0 at the end of the line or the file.
int NOWRad_get_packet(std::FILE* ifile, NOWRad_packet* packet);

// --- Plotter (now_plt.cpp) ----------------------------------------------------

// Reference date of the file selection; null: the file's date. Returns 0.
int NOWRad_set_date(const Date* datim);
// Returns 1; 0 after a message when the file does not open or is no NOWrad file.
int NOWRad_open_file(const char* filename);
// These return 1; 0 when no file is open.
int NOWRad_rewind_file();
int NOWRad_close_file();
// The whole plot on `domain`. Returns 0; ends the program with 10 when a single
// file does not open.
int NOWRad_plot(Domain* domain);
// One frame's echoes. Returns 0; -1 when they are switched off.
int NOWRad_plot_summary();
// Takes the words of `plot_param`. Returns 0.
int NOWRad_plot_param();
void NOWRad_callback(int type, const char* str, float x, float y);
