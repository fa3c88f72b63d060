// nids_storm.h: the invented storm (storm.h) as NIDS reflectivity products.
#pragma once

#include "nids_writer.h"

// A wrapped product, bzip2-compressed.
//   code 94:  360 radials of 460 bins of 1 km
//   code 153: 720 radials of 1840 bins of 250 m
Bytes nids_sample_storm(int code = 94);

// The wind toward the radar (code 99), and classes of what falls (code 165).
Bytes nids_sample_velocity();
Bytes nids_sample_classes();
// The wind above the radar as barbs (code 48): a column a volume, a row a height.
Bytes nids_sample_profile();

// The same as a composite reflectivity product (code 37): 464 rows of cells of 1 km,
// and the pages of its storm table. With `symbols` its cells, their tracks, hail and
// rotation come after the rows, as packets of symbols.
Bytes nids_sample_storm_table(bool symbols = false);
