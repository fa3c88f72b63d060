// nids_draw.h: the parts of the NIDS plotter (nids_plt.h) that draw one frame:
// colours, symbology packets and the text grid file.
#pragma once

#include "map_proj.h"
#include "nids.h"
#include "out_file.h"
#include "rad_fill.h"
#include "zyrgks.h"

#include <cstdio>

struct NidsStorms;

// --- Colours (nids_colr.cpp) --------------------------------------------------

// Levels and colours of a product, by its code: settled anew for each frame,
// so that nothing of the frame before is left. Returns 0.
int NIDS_set_colors(const NIDS_info& info);

// --- Symbology packets (nids_draw.cpp) ----------------------------------------

// What the packets of one frame are drawn with.
struct NIDS_frame {
    std::FILE* ifile = nullptr; // after the header of the first packet
    const NIDS_info* info = nullptr;
    const char* datim = "";       // date label
    Map own;                      // of the product
    Map plot;                     // of the picture
    Gpt site = {};                // on the product's own map
    int clutter_rad = 0;          // bins near the site that are left out
    bool exact = false;           // places by the format's own document
    RadFolded folded;             // range folded bins
    Gattribs data, grid;          // attributes of text and of lines
    NidsStorms* storms = nullptr; // takes the storm symbols; null: they are not walked
};

// Draws every packet from the one whose header was read last to the end of the
// block or of what can be read. Returns 1; 0 when none is of a kind that is drawn.
int NIDS_draw_packets(const NIDS_frame& frame);
// The edges of the radial read last, and of a raster row, counted from the top.
RadEdges nids_radial_edges(const NIDS_frame& frame, RadFan& fan, float sangle, float dangle);
RadEdges nids_row_edges(const NIDS_frame& frame, int row);
// The value of a bin or cell in the unit of the label: decibels as what they are of.
float nids_cell_value(const NIDS_frame& frame, float value);
// Passes over a packet whose drawing is switched off, or that has no bins or cells.
void nids_pass_packet(std::FILE* ifile, int type);

// What barbs and texts count of the figures that a product may draw.
constexpr long nids_barb_strokes = 16;
long nids_text_strokes(const char* text);
// Says that a product was cut because it asks for more; the run ends with 4.
void nids_report_flood(const NIDS_info& info);

// --- Text grid file (nids_grid.cpp) -------------------------------------------

// The grid file if one is asked for (NIDS_grd_out_file), with its heading
// written; null if none is asked for or it does not open, with a warning.
OutputPtr NIDS_grd_open(const NIDS_info& info, const char* datim);
