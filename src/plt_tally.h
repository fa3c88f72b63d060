// plt_tally.h: what a picture came to: the account of a run takes it from here. The
// plotters and the session enter it while they draw.
#pragma once

#include "zyr.h"

#include <string>
#include <vector>

struct PLT_tally {
    long figures = 0;                 // of the data, as they were handed to the device
    float low = missing_f;            // of the values met
    float high = missing_f;           //
    bool there = false;               // the picture was made by an earlier run
    int pictures = 0;                 // that were written whole
    std::vector<std::string> outputs; // names of their files
};

PLT_tally& PLT_get_tally();
// Takes a value that was met.
void PLT_tally_value(float value);
