// gks_plot.h: how ginit_plot (gks_plot.cpp) and ginit_tran learn the device.
#pragma once

#include "gks.h"

enum Init_type {
    init_none = -1,
    init_display = 0,
    init_again = 1, // on the same display
    init_postscript = 2,
    init_hpgl = 3,
    init_metafile = 4
};
