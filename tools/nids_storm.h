// nids_storm.h: the invented storm (storm.h) as NIDS reflectivity products.
#pragma once

#include "nids_writer.h"

// A wrapped product, bzip2-compressed.
//   code 94:  360 radials of 460 bins of 1 km
//   code 153: 720 radials of 1840 bins of 250 m
Bytes nids_sample_storm(int code = 94);

// The same as a composite reflectivity product (code 37): 464 rows of cells of 1 km,
// and the pages of its storm table. With `symbols` its cells, their tracks, hail and
// rotation come after the rows, as packets of symbols.
Bytes nids_sample_storm_table(bool symbols = false);
