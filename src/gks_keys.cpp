// gks_keys.cpp: what keys and buttons do in a window, and the names under which
// the plotter hears of them. Keys act with Alt held, buttons without. No state.

#include "gks_evnt.h"

#include "gks_loop.h"
#include "gks_x11.h"
#include "zyr.h"

#include <array>
#include <cstdio>
#include <cstring>

#include <X11/keysym.h>

namespace {

constexpr unsigned alt_mask = Mod1Mask;

struct Modifier {
    unsigned mask;
    const char* suffix;
};
constexpr std::array modifiers = {
    Modifier{alt_mask,    "-Alt"  },
    Modifier{ShiftMask,   "-Shft" },
    Modifier{ControlMask, "-Cntrl"},
};

enum class Key { leave, remove, zoom, unzoom, meta, loop, forward, back };
struct KeyRow {
    KeySym sym;
    Key key;
};
constexpr std::array key_map = {
    KeyRow{XK_q,            Key::leave  },
    KeyRow{XK_d,            Key::remove },
    KeyRow{XK_z,            Key::zoom   },
    KeyRow{XK_u,            Key::unzoom },
    KeyRow{XK_m,            Key::meta   },
    KeyRow{XK_l,            Key::loop   },
    KeyRow{XK_bracketright, Key::forward},
    KeyRow{XK_bracketleft,  Key::back   },
};

// --- Loop and frames ----------------------------------------------------------

// On through the frames, or faster through a running loop; or the opposite.
void step_frames(bool forward) {
    if (gget_looping() != 0)
        ginc_loop_delay(gloop_delay_step(gget_loop_delay(), !forward));
    else
        gdisplay_frame(ginc_frame(forward ? 1 : -1));
}

void print_metafile() {
    const int cursor = gset_cursor(cursor_number_wait);
    gobj_print_meta();
    gset_cursor(cursor);
}

Key_end act(Key key, int x, int y) {
    switch (key) {
    case Key::leave:
        return Key_end::leave_hold;
    case Key::remove:
        gdelete_frame(frame_current);
        break;
    case Key::zoom:
        gzoom(frame_current, x, y, -2, 0);
        break;
    case Key::unzoom:
        if (gget_zoom() != 1) {
            gunzoom();
            return Key_end::no_callback;
        }
        break;
    case Key::meta:
        print_metafile();
        break;
    case Key::loop:
        gtoggle_loop(-1);
        break;
    case Key::forward:
    case Key::back:
        step_frames(key == Key::forward);
        break;
    }
    return Key_end::none;
}

} // namespace

void gname_button(unsigned button, bool press, char* name) {
    std::snprintf(name, event_name_size, "B%u-%c", button, press ? 'P' : 'R');
}

void gname_modifiers(unsigned state, char* name) {
    for (const Modifier& row : modifiers) {
        const std::size_t length = std::strlen(name);
        if ((state & row.mask) != 0)
            copy_text(name + length, event_name_size - length, row.suffix);
    }
}

Key_end gserve_key(KeySym key, unsigned state, int x, int y) {
    if (key == XK_Return)
        return Key_end::leave_hold;
    if ((state & alt_mask) == 0)
        return Key_end::none;
    for (const KeyRow& row : key_map) {
        if (row.sym == key)
            return act(row.key, x, y);
    }
    return Key_end::none;
}

void gserve_button(unsigned button, unsigned state) {
    if ((state & alt_mask) != 0)
        return;
    switch (button) {
    case Button1:
    case Button3:
        step_frames(button == Button3);
        break;
    case Button2:
        gtoggle_loop(-1);
        break;
    default:
        break;
    }
}
