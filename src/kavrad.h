// kavrad.h: KAVRAD national mosaics: a record at a fixed place, then runs of
// columns on a fixed grid of latitude and longitude.
#pragma once

#include "zyr.h"

#include <cstdio>

// --- Reader (kavrad.cpp) ------------------------------------------------------

struct KAVRAD_info {
    char label[40] = "";
    Date date;              // unset where the file is too short
    Domain domain;          // the image, on code 2
    int start = 0, end = 0; // not used
    int type = 0;           // 1: values as in files marked "C"
};

struct KAVRAD_packet {
    int run = 0; // columns; -1: to the end of the line
    float value = 0.0;
};

// Reads the header. Returns 1, also for a file that is too short and so has
// neither date nor echoes; 0 for a null file.
int KAVRAD_header(std::FILE* ifile, KAVRAD_info* info);
// Back to the first packet. Returns 1; 0 for a null file.
int KAVRAD_rewind(std::FILE* ifile);
// The next packet. One that repeats leaves `packet` as the caller left it.
// Returns 1; 0 at the end of the image or of the file.
int KAVRAD_get_packet(std::FILE* ifile, KAVRAD_packet* packet);
// Whether the mark of the image's end was met, and not that of the file alone.
bool KAVRAD_has_ended();

// --- Plotter (kav_plt.cpp): as the partners in nowrad.h -----------------------

int KAVRAD_set_date(const Date* datim);
int KAVRAD_open_file(const char* filename);
int KAVRAD_rewind_file();
int KAVRAD_close_file();
int KAVRAD_plot(Domain* domain);
int KAVRAD_plot_summary();
int KAVRAD_plot_param();
void KAVRAD_callback(int type, const char* str, float x, float y);
