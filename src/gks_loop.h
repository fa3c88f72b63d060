// gks_loop.h: the arithmetic of the loop, apart from its state.
#pragma once

// Frame number `step` frames after `cur` in the range `first` to `last`; step
// 0 is one frame in the direction `*direct` (0 backward, 1 forward, 2 rocking
// and going back, 3 rocking and going forward), which turns round at the ends
// when rocking.
int gnext_frame(int cur, int step, int first, int last, int* direct);

// What a key or button adds to the delay of a loop, in seconds: fine steps
// where a tenth would be coarse.
float gloop_delay_step(float delay, bool slower);
