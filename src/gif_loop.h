// gif_loop.h: the pictures of a run as one animated GIF.
#pragma once

#include "img_kind.h"

// Seconds that a picture stays and that the last one stays, and how often all are
// shown, 0 for ever. False for what a GIF cannot say; the defaults are those of the
// window's loop.
bool GIF_set_pace(float delay, float pause);
bool GIF_set_plays(int plays);

// Adds a picture; the first one opens the file. Returns 1; 0 with or without a
// message, and the file is given up.
int GIF_add_frame(const char* filename, const IMG_report& image, const IMG_look& look);
// A picture of the run is lost: what lacks one is not whole, and is given up in the end.
void GIF_lose_frame();
// Whether a file is open that waits for further pictures.
bool GIF_has_frames();
// Completes the file: 1, or 0 if there is none or not all of it could be written.
int GIF_end_frames();
