// rad_key.h: the key of the six levels of digitised radar reports, in the place
// of a colour bar.
#pragma once

// Draws the key below the view: levels 1 to 6 of the colours in force as "20" to
// "55" dBZ. Returns 0; -1 when it is refused, switched off, or has no room.
int RAD_draw_bar();
// Event callback: "f-Alt" over the key makes that level's colour blink 4 times.
//   x, y  position in transformation 2
// Returns 0; -1 when the event is another or lies beside the key.
int RAD_flash_levels(const char* str, float x, float y);
