// gks_state.h: the part of the kernel's state that its own modules alone set or ask
// for; the rest is declared in gks.h.
#pragma once

#include "gks.h"

// Drawing is allowed from now on, or no more. For gopen_ws and gclose_ws.
void gmark_open(bool open);
// Takes the title without showing it.
void gkeep_win_title(const char* title);
// The geometry asked for: the resource, unless gset_geometry gave one; null if
// neither did.
const char* gchosen_geometry();
