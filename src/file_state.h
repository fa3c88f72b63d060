// file_state.h: the one current convention and file name, shared by files.cpp,
// which owns it, and file_sel.cpp. No other module includes this.
#pragma once

#include "name_tmpl.h"
#include "zyr.h"

struct FileState {
    char filename[file_name_size] = ""; // current file name, typed or built
    int filename_type = 0;              // 1: from a user or a full path; 0: built from a date
    char conv[file_name_size] = "";     // current template
    char hconv[file_name_size] = "";    // header template
    char ext[20] = "";                  // text of %e
    char ext_info[40] = "";             // extra text cut from a typed name, with its mark
    int file_type = 0;                  // how typed names are read: FILE_set_type
    int min_size = 0;                   // a usable file is larger; from the convention line
    int rmin_size = 0;                  // the same, from FILE_set_min_size
    int late_off = 3600;                // smallest time step of the template, seconds
    Date set = {.sec = 0};              // date parts fixed by the user
    Date file_date;                     // date of the current file
    NameKeys keys;                      // template keys
};

FileState& file_state();

// Stores a file name or template; one that does not fit is cut, with a warning
// that names the routine.
void store_name(const char* routine, char* out, const char* text);
