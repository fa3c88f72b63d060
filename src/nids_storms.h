// nids_storms.h: the part of the NIDS plotter (nids_plt.h) that keeps the storm
// symbols of a product while its packets are walked, and draws them over the map.
#pragma once

#include "map_proj.h"
#include "nids.h"
#include "zyrgks.h"

#include <cstdio>
#include <vector>

// The symbols of one product in their order. Those of a storm follow its mark.
struct NidsStorms {
    std::vector<NIDS_symbol> symbols;
    bool full = false; // there were more than are kept
};

// Takes the symbols of the packet whose header was read.
void nids_take_storms(std::FILE* ifile, NidsStorms* storms);
// Takes a text that names the storm met last. Whether there was one.
bool nids_take_storm_text(const NIDS_text_data& text, NidsStorms* storms);

// What the storms of one frame are drawn with.
struct NidsStormFrame {
    const NIDS_info* info = nullptr;
    Map plot;            // of the picture, current
    Gattribs data;       // attributes of texts and of marks without a colour of their own
    float scale = 1.0F;  // of marks and texts
    int num_plt = 0;     // only so many storms, 0: all
    bool strong = false; // only strong storms
};

// Draws them, in the attributes given. Whether one was drawn.
bool nids_draw_storms(const NidsStormFrame& frame, const NidsStorms& storms);
