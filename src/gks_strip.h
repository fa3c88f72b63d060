// gks_strip.h: areas in a row between two lines of points, as the bins of a radial
// lie. What two neighbours share is worked out once where figures become pixels at once.
#pragma once

#include "gks.h"

// Whether figures become pixels at once and nothing else: no list keeps them, and no
// event comes between two of them.
bool gdraws_at_once();

// Draws solid areas: number i has the corners near[i], near[i + 1], far[i + 1] and
// far[i], and the colour index colors[i]; one below 0 is left out. Both lines have a
// point more than there are areas. The same as gset_fill_colr_ind and gfill_area for
// each; the style must be GSOLID.
void gfill_strip(int n, const Gpt* near, const Gpt* far, const int* colors);
