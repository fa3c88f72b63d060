// rad_input.h: which kind of radar file a run is about.
#pragma once

#include "zyr.h"

// Values of flag 14, the input type.
constexpr int input_summary = 31;
constexpr int input_rrwds = 32;
constexpr int input_nids = 33;
constexpr int input_nowrad = 34;
constexpr int input_rcm_site = 35;
constexpr int input_kavrad = 36;
constexpr int input_lev2 = 37;
constexpr int input_lev2z = 38;

// Turns the resources `input` and `in_file` into flags 14, 16 and 17, the
// naming convention (FILE_set_name) and the model (VAR_set_model_str). `in_file` chooses the
// convention; the input type only where `input` gave none. Returns 0.
int RAD_cvt_in_file();
