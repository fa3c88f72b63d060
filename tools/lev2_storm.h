// lev2_storm.h: the invented storm (storm.h) as a Level II volume.
#pragma once

#include "lev2_writer.h"

// Scan 1: reflectivity, 720 radials of 1832 gates of 250 m, differential reflectivity
// and correlation coefficient of 1192. Scan 2: velocity and spectrum width, 1192 gates.
// Both at 0.5 degrees. In 360 radials of 1192 gates the same storm higher up, where it
// leans and is weaker: 3 and 4 at 0.9 degrees, reflectivity at 1.8, Doppler at 2.4.
// Packed by bzip2.
Bytes lev2_sample_storm();
