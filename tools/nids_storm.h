// nids_storm.h: an invented storm over Oklahoma as a NIDS reflectivity product.
#pragma once

#include "nids_writer.h"

// A supercell with a hook echo ahead of a bowing squall line with trailing
// stratiform rain, seen by KTLX on 20 May 2019, 22:31:24 UTC, bzip2-compressed.
//   code 94:  360 radials of 460 bins of 1 km
//   code 153: 720 radials of 1840 bins of 250 m
Bytes nids_sample_storm(int code = 94);
