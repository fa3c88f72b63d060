// nids_wedge.h: one radial of a radar drawn bin by bin from the site outward.
#pragma once

#include "gks.h"

// The step of one bin along the two edges of a radial, plot units.
struct WEDGE_info {
    double dx1 = 0, dy1 = 0;
    double dx2 = 0, dy2 = 0;
    float drad = 0; // not used
};

// Draws a bin and moves on to the next.
//   pts     5 corners, all at the site before the first bin
//   radius  length of the bin in steps
//   intens  its value; missing_f, or one without a colour, is passed over
// Returns 0; -1 when the plot component "summary" is off.
int NIDS_plot_WEDGE(Gpt* pts, const WEDGE_info* wedge, float radius, float intens);
