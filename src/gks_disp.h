// gks_disp.h: the open display as its own modules share it: gks_conn.cpp keeps it,
// gks_x11.cpp connects, shows and closes, gks_window.cpp makes the plot's window,
// gks_pixmap.cpp attaches to that of another program, gks_cursor.cpp has the
// cursors, gks_title.cpp the titles, gks_xerr.cpp the errors.
#pragma once

#include "gks_x11.h"

#include <array>
#include <csignal>
#include <string>

constexpr int num_cursors = 9;
constexpr int icon_size = 48;
constexpr int icon_bytes = icon_size * icon_size / 8;
// Atoms that are no constants of the protocol, asked for in one go at the opening.
struct Watoms {
    Atom protocols = None;
    Atom close = None;
    Atom net_name = None;
    Atom utf8 = None;
};

// What an X display has besides gscreen(), as long as the connection lasts.
// gclose_display gives every id back.
struct Gdisp {
    Display* display = nullptr;
    int screen = 0;
    Visual* visual = nullptr;
    Window root_window = 0; // the plot's window; without one, on type 6, the pixmap
    bool has_window = false;
    GC root_gc = nullptr; // for copies and clears; its foreground is fore_colr
    Pixmap icon_pixmap = 0;
    std::array<Cursor, num_cursors> cursors{}; // type 1 alone
    int cursor = 0;                            // number of the one in force
    int redraw = 1;                            // of the redraw list before type 6
    Watoms atoms;
};

// What is chosen before the opening and outlives a closing.
struct Gdisp_settings {
    int fixed_size = 0; // 1: the window manager is given a fixed size
    int icon = 0;       // 1: start iconic
    int pix_mode = 0;   // type 6: 1 clear, 2 new frame, 9 end the window
    std::array<unsigned char, icon_bytes> icon_bits{};
    bool own_icon = false; // icon_bits was set
};

Gdisp& gdisp();
Gdisp_settings& gdisp_settings();

// Connects to the display named in the first field of `conn_id`, or the
// default one. Returns 0, or -1 after a report.
int gopen_display(const char* conn_id);
// Makes root_gc for the drawable and fills in pixels and masks of the screen.
void gsetup_display(Drawable drawable);
// Closes what is open and leaves no workstation. Returns -1.
int gfail_display();
void gset_root_size(int width, int height);
XWindowAttributes gwindow_attributes();
// A pixmap in the background's pixel, asked for without the wait for an answer: errors
// are the caller's.
Pixmap gsend_base(int width, int height);
// Paints a drawable in a pixel from corner to corner.
void gfill_drawable(Drawable drawable, unsigned long pixel, unsigned width, unsigned height);

// Sends the owner of the window of type 6 a message by its first byte, which is also
// the pix_mode that asks for it.
constexpr char pix_ask_frame = 2;
constexpr char pix_ask_end = 9;
void gtell_owner(char what);

const Watoms& gwindow_atoms();
// The name of any window, as UTF-8; empty without one.
std::string gfetch_name(Window window);

// A bitmap in the form of X bitmap files: rows of bytes, the lowest bit leftmost.
Pixmap gmake_bitmap(Drawable drawable, const unsigned char* bits, unsigned width, unsigned height);

// A cursor of the server's cursor font, black with a white rim.
Cursor gmake_font_cursor(Font font, unsigned glyph);

void gmake_cursors();
void gfree_cursors();

void ginstall_error_handlers();

// While one lives that is set, a server that does not answer ends the run.
class Gdisplay_watch {
public:
    explicit Gdisplay_watch(bool set = true);
    ~Gdisplay_watch();
    Gdisplay_watch(const Gdisplay_watch&) = delete;
    Gdisplay_watch& operator=(const Gdisplay_watch&) = delete;

private:
    bool set_;
    struct sigaction before_ {};
};
int gget_noted_error(); // 1: an error has come while they are kept from the user
