// nids_pages.h: the part of the NIDS plotter (nids_plt.h) that draws the pages of
// a product's graphic block and plots the storms of its tables.
#pragma once

#include "map_proj.h"
#include "nids.h"
#include "zyrgks.h"

#include <cstdio>

struct NIDS_report;
struct RAW_data;
struct VAR_data;

// What the pages of one frame are drawn with.
struct NIDS_page_frame {
    std::FILE* ifile = nullptr; // after the symbology block
    const NIDS_info* info = nullptr;
    Map plot;            // the plot's, current on entry and exit
    Gattribs data;       // attributes of texts, barbs and tracks
    Gattribs grid;       // of the lines of the pages
    float scale = 1.0F;  // of arrows
    bool symbols = true; // draw the composites and tracks of storms
    bool pages = false;  // draw the pages themselves
    int num_plt = 0;     // only so many storms, 0: all
    bool strong = false; // only strong storms
};

// Draws the pages if asked for, and each storm of their tables by the variables
// that VAR_setup decoded. Returns 1; 0 when there is nothing to be drawn.
int NIDS_draw_pages(const NIDS_page_frame& frame);

// Value and text of a storm for one variable: "id", "tvs", "meso", "posh", "poh",
// "hsize", "vil", "dbzm", "dbzht", "top", "dir", "spd", "mvmt", in any case and
// with "-" and more after it. What the storm does not have is left unset.
//   data  out: values and text; the rest is left alone
// Returns 0.
int NIDS_get_plot_data(const NIDS_report* report, const VAR_data* var, RAW_data* data);
