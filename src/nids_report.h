// nids_report.h: what the storm tables on the pages of a NIDS product say, one
// record a storm. Functions of their arguments.
//
// A table is a list, with a line for each storm after a header line, or it is
// made of columns, with a storm in each and a line for each kind of value.
#pragma once

#include "nids_tables.h"
#include "zyr.h"

#include <array>

struct NIDS_report {
    char id[4] = "";       // storm identifier
    float ang = missing_f; // azimuth from the site, degrees
    float rad = missing_f; // range from the site, nautical miles
    int tvs = 0;           // a tornado vortex signature is reported
    int meso = 0;          // a mesocyclone is reported, its strength rank where known
    int hail = 0;          // probability of hail, percent
    int shail = 0;         // probability of severe hail, percent
    float hsize = 0;       // hail size, inches
    float vil = 0;         // vertically integrated liquid, kg/m^2
    float max_dbz = 0;     // maximum reflectivity
    float max_dbz_z = 0;   // its height, 1000 feet
    float vlow = 0;        // lowest level value of the short list
    float tops = 0;        // storm top, 1000 feet
    float dir = missing_f; // direction that the storm comes from, degrees
    float spd = missing_f; // its speed, knots
    float mw_vol = 0;      // not assigned
};

// Lists by their header.
enum class NidsList {
    none,  // no header seen
    brief, // one that has "VLOW"
    full   // one that has "VIL"
};

// Takes a line of a list. A header line sets `list`, by which the lines after it
// are read. Returns whether the line is a storm; `storm` then holds it.
bool nids_list_line(const char* line, NidsList* list, NIDS_report* storm);

// The storms of a page of columns. Columns without a storm have no place.
constexpr int nids_page_columns = 6;
using NidsColumns = std::array<NIDS_report, nids_page_columns>;

// Takes a line of a page of columns: what it says goes to the storms.
void nids_column_line(NidsTable table, const char* line, NidsColumns* storms);

// Whether a storm has a place.
bool nids_has_place(const NIDS_report& storm);
// A storm to be warned of: a vortex, a mesocyclone or likely severe hail.
bool nids_is_strong(const NIDS_report& storm);
