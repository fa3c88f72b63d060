// zyrgrid.h: a grid in memory, and what is asked of one (grd_tool.cpp).
#pragma once

#include "zyr.h"

// A field on the points of a domain. The values belong to whoever made the
// grid; nothing here frees them.
struct GRD_report {
    int type = missing;          // data type code
    char source[20] = {};        // where the data come from
    char version[20] = {};       // version of that source
    char datim[40] = {};         // date label
    char info[80] = {};          // product label
    Date date;                   // date of the data
    char model[20] = {};         // model or network name
    int ltype = missing;         // level type (var_tool.h)
    int level = missing;         // level value
    int time = missing;          // time code (var_tool.h)
    char var[20] = {};           // variable name
    char units[15] = {};         // units of the values
    Domain domain;               // grid[ny][nx] lies on its points
    const float* grid = nullptr; // north row first; missing_f: no value
};

// Range of the values, missing and non-finite ones left out.
//   max, min  out: missing_f when the grid holds no value
// Returns 0; -1 when the grid has no data array.
int GRD_maxmin(const GRD_report* grid, float* max, float* min);

// Plot coordinates, on `domain`, of every point of a grid on another domain.
//   x, y  in: arrays made by an earlier call, which are freed, or null;
//         out: new arrays [ny][nx], north row first, to be freed with free();
//         missing_f where a point has no image
// The current map domain is the same afterwards. Returns 0; -1 with both null
// and "GRD_proj_XY: Unable to allocate grid arrays\n" when there is no memory.
int GRD_proj_XY(const GRD_report* grid, const Domain* domain, float** x, float** y);

// Whether a function of a variable text yields a vector, and the data type of a
// known function. Radar values are plotted as they are read, by no function of
// a grid calculator: both answer 0 for every name.
int GRD_is_vect_func(const char* name);
int GRD_is_math_func(const char* name);
