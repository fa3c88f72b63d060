// rad_state.h: the state of all modules, taken and put back.
#pragma once

#include "state_keeper.h"

// Takes the state that each picture is to start from. To be called once, when the
// settings are read. Its `restore` ends what is open and puts all back.
const StateKeeper& RAD_take_state();
