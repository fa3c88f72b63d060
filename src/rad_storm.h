// rad_storm.h: what is drawn at a storm's place, whichever format knows of it.
#pragma once

#include "zyrgks.h"

struct RadStorm {
    const char* id = "";
    float dir = missing_f; // on the plot, degrees it comes from; unset: no barb
    float spd = 0;         // knots
    const char* top = "";  // empty: none
};

// A marker of a type; none in a negative colour or at no place.
void rad_draw_mark(Gpt p, int color, int type);
// The colour that stands for white: white on white paper would be no mark.
int rad_white(const Gattribs& data);
// How the storm moves as a barb, its name to the upper left and its top to the upper
// right, in the colour of `data` and the line and fill attributes in force.
void rad_draw_storm(Gpt p, const Gattribs& data, const RadStorm& storm);
