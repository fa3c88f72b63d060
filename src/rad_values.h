// rad_values.h: values of settings that cannot be read.
#pragma once

// Warns, once, of numbers, times, sizes and codes in the settings that are none;
// what the plot takes instead is in the message. The plot goes on. Call it after
// RES_init.
void RAD_check_values();
