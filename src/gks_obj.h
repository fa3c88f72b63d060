// gks_obj.h: what the redraw list (gks_obj.cpp) shares with the kernel's own modules.
#pragma once

#include "gks.h"

// The first record; null without any. The next one hangs on each.
const drawable* gfirst_obj();

// The events of a window are served in the middle of a plot: by gcheck_event, which
// lies above all that records and is handed in at the opening.
using Gevent_server = int();
void gset_event_server(Gevent_server* serve);
int gserve_events(); // 0 without a server
