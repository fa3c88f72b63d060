// gks_zoom.h: the arithmetic of the pixel zoom, apart from its state.
#pragma once

#include <X11/Xlib.h>

// First pixel shown along an axis of `size` pixels when it is magnified `f`
// times about `centre`. No pixel beyond the picture comes on show.
int gzoom_origin(int size, int centre, int f);

// Replaces the image by the part that begins at (ox, oy), magnified `f` times:
// pixels of 32, 24, 16, 8, 4 or 1 bits, in either byte and bit order. Other
// sizes leave the image as it is.
void gmagnify(XImage& image, int ox, int oy, int f);
