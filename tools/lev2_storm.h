// lev2_storm.h: the invented storm (storm.h) as a Level II volume.
#pragma once

#include "lev2_writer.h"

// Scan 1: reflectivity, 720 radials of 1832 gates of 250 m. Scan 2: velocity and
// spectrum width, 720 radials of 1192 gates. Both at 0.5 degrees, packed by bzip2.
Bytes lev2_sample_storm();
