// lev2_storm.h: the invented storm (storm.h) as a Level II volume.
#pragma once

#include "lev2_writer.h"

// Scan 1: reflectivity, 720 radials of 1832 gates of 250 m. Scan 2: velocity and
// spectrum width, 720 radials of 1192 gates. Both at 0.5 degrees; the same again at
// 0.9, and in 360 radials at 1.8 and 2.4. Packed by bzip2.
Bytes lev2_sample_storm();
