// nids_storm.h: the invented storm (storm.h) as a NIDS reflectivity product.
#pragma once

#include "nids_writer.h"

// A wrapped product, bzip2-compressed.
//   code 94:  360 radials of 460 bins of 1 km
//   code 153: 720 radials of 1840 bins of 250 m
Bytes nids_sample_storm(int code = 94);
