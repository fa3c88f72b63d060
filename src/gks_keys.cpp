// gks_keys.cpp: what keys and buttons do in a window, and the names under which
// the plotter hears of them. Keys act with Alt held, buttons without. No state.

#include "gks_evnt.h"

#include "files.h"
#include "gks_loop.h"
#include "gks_x11.h"
#include "img_kind.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
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

enum class Key { leave, remove, zoom, unzoom, meta, gif, xwd, loop, forward, back };
struct KeyRow {
    KeySym sym;
    Key key;
    Key_help help;
};
constexpr std::array key_map = {
    KeyRow{XK_q,            Key::leave,   {"Alt-q", "the same"}                                  },
    KeyRow{XK_l,            Key::loop,    {"Alt-l", "start or stop the loop"}                    },
    KeyRow{XK_bracketright, Key::forward, {"Alt-]", "next frame; loop running: faster"}          },
    KeyRow{XK_bracketleft,  Key::back,    {"Alt-[", "earlier frame; loop running: slower"}       },
    KeyRow{XK_d,            Key::remove,  {"Alt-d", "delete the frame on show"}                  },
    KeyRow{XK_z,            Key::zoom,    {"Alt-z", "magnify by two about the pointer"}          },
    KeyRow{XK_u,            Key::unzoom,  {"Alt-u", "undo the magnification, or else the zoom"}  },
    KeyRow{XK_g,            Key::gif,     {"Alt-g", "write a GIF, of a running loop one a frame"}},
    KeyRow{XK_x,            Key::xwd,     {"Alt-x", "the same as XWD files"}                     },
    KeyRow{XK_m,            Key::meta,    {"Alt-m", "write a metafile (without frames)"}         },
};
// What has no row of its own above: Return comes first, and after the keys what
// plotters and buttons do.
constexpr Key_help return_help = {"Return", "end the program"};
constexpr std::array plotter_help = {
    Key_help{"Alt-r",              "draw the picture again"              },
    Key_help{"Alt-v",              "print place and value at the pointer"},
    Key_help{"Shift, left button", "draw a rectangle to zoom into"       },
    Key_help{"left, right button", "frame back, on; loop: slower, faster"},
    Key_help{"middle button",      "start or stop the loop"              },
    Key_help{"F1",                 "these keys; any key takes them away" },
};

// --- Dumps --------------------------------------------------------------------

// Name of a dump along the image path: the first letters of the title, and the
// frame number unless it is negative.
void dump_path(const IMG_kind& kind, int frame, char* path) {
    char title[6];
    std::snprintf(title, sizeof title, "%.5s", gget_win_title());
    for (char& c : title) {
        c = c == ' ' || c == '/' ? '_' : c; // a title names no directory
    }
    char name[file_name_size];
    if (frame < 0) {
        std::snprintf(name, sizeof name, "%s.%s", title, kind.word);
    } else {
        std::snprintf(name, sizeof name, "%s-%2.2d.%s", title, frame, kind.word);
    }
    FILE_add_path(RES_get("image_path"), name, path);
}

// Writes one file and reports it; by its bare path where there is a heading.
void dump_one(const IMG_kind& kind, int frame, bool in_list) {
    char path[file_name_size];
    dump_path(kind, frame, path);
    if (gdump_image(kind, path, nullptr) == 0) {
        MESS_print(mess_warn, "gprocess_x11_event: Unable to write %s file: %s\n", kind.name, path);
    } else if (in_list) {
        MESS_print(mess_mess, "%s\n", path);
    } else {
        MESS_print(mess_mess, "Created %s file: %s\n", kind.name, path);
    }
}

void dump_frames(const IMG_kind& kind) {
    const int n = gget_num_images();
    const int cursor = gset_cursor(cursor_number_wait);
    if (n < 2) {
        dump_one(kind, -1, false);
    } else if (gget_looping() != 0) {
        MESS_print(mess_mess, "Creating %s files:\n", kind.name);
        for (int i = 0; i < n; ++i) {
            gselect_frame(i);
            dump_one(kind, i, true);
        }
    } else {
        const int frame = std::max(gget_cur_frame(), 0);
        gselect_frame(frame);
        dump_one(kind, frame, false);
    }
    gset_cursor(cursor);
}

// --- Loop and frames ----------------------------------------------------------

// On through the frames, or faster through a running loop; or the opposite.
void step_frames(bool forward) {
    if (gget_looping() != 0) {
        ginc_loop_delay(gloop_delay_step(gget_loop_delay(), !forward));
    } else {
        gdisplay_frame(ginc_frame(forward ? 1 : -1));
    }
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
    case Key::gif:
        dump_frames(*IMG_find_word("gif"));
        break;
    case Key::xwd:
        dump_frames(*IMG_find_word("xwd"));
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
        if ((state & row.mask) != 0) {
            copy_text(name + length, event_name_size - length, row.suffix);
        }
    }
}

Key_end gserve_key(KeySym key, unsigned state, int x, int y) {
    if (key == XK_Return) {
        return Key_end::leave_hold;
    }
    if ((state & alt_mask) == 0) {
        return Key_end::none;
    }
    for (const KeyRow& row : key_map) {
        if (row.sym == key) {
            return act(row.key, x, y);
        }
    }
    return Key_end::none;
}

std::vector<Key_help> gkey_help() {
    std::vector<Key_help> rows{return_help};
    for (const KeyRow& row : key_map) {
        rows.push_back(row.help);
    }
    rows.insert(rows.end(), plotter_help.begin(), plotter_help.end());
    return rows;
}

void gserve_button(unsigned button, unsigned state) {
    if ((state & alt_mask) != 0) {
        return;
    }
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
