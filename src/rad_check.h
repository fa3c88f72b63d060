// rad_check.h: what a user mistyped.
#pragma once

// Warns, once, of words of settings that nothing in the program knows, with the
// nearest word that there is. The plot goes on. Call it after RES_init.
void RAD_check_settings();
