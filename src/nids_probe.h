// nids_probe.h: the part of the NIDS plotter (nids_plt.h) that finds the value of the
// bin or cell under a place of the picture.
#pragma once

#include "nids_draw.h"

#include <string>

// The value of what NIDS_draw_packets draws with the same frame over a point on the
// product's own map, as "45 Dbz", "RF" (range folded) or the name of a class; empty
// where there is no data. Walks the packets to their end.
std::string nids_value_at(const NIDS_frame& frame, Gpt at);

// The same of one level as it is in the product: one of 16 of a run, or of 256.
//   value  what it is decoded to
std::string nids_level_text(const NIDS_info& info, int packet, int level, float value);
