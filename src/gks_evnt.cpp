// gks_evnt: the events of the window: polling, the hold at the end of a plot,
// the timed refresh and the calls to the plotter. State: the plotter's two
// functions; how far the hold is, and what waits for the end of a plot, is in
// gks_input. Only a window has events, and only while gset_cache is on.
//
// The kernel polls in the middle of drawing calls, so that a window answers
// during a long plot. What only copies pixmaps, exposures and the frames that
// buttons bring on show, is served there and then. But a call to the plotter
// may draw everything anew, and a new size replaces the pixmaps: in the middle
// of a plot the plotter has a file open, a projection of its own in force and
// a drawing half done, and the plot below would go on with what the inner one
// left. So these wait until the plot, or the plotter's function, has ended.

#include "gks_evnt.h"

#include "gks_disp.h"
#include "gks_plot.h"
#include "gks_x11.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <utility>

#include <poll.h>

namespace {

struct Events {
    int mapped = 0;
    bool expose_served = false; // the window is up to date for this series
    Gmouse_func* mouse_CB = nullptr;
    bool user_event = false; // the last event came from the user
    int in_plotter = 0;      // depth of the plotter's functions under way
    int refresh = 0;         // seconds, 0: none
    Grefresh_func* refresh_CB = nullptr;
};
Events evnt;

constexpr int type_key = 2;
constexpr int type_button = 3;

bool has_events() {
    return gtype_is_WIN() && gget_cache() != 0 && gget_display() != nullptr;
}

// From the plotter's registration to the hold, and in its functions.
bool plot_under_way() {
    return evnt.in_plotter > 0 || (ginput().input_mode == input_idle && evnt.mouse_CB != nullptr);
}

// --- Calls to the plotter -----------------------------------------------------

void call_plotter(int type, const char* name, float x, float y) {
    if (evnt.mouse_CB == nullptr) {
        return;
    }
    const int cursor = gset_cursor(cursor_number_ptr);
    ++evnt.in_plotter;
    evnt.mouse_CB(type, name, x, y);
    --evnt.in_plotter;
    gset_cursor(cursor);
}

void call_at(int type, const char* name, XPoint at) {
    call_plotter(type, name, xp_W(xZ_p(at.x)), yp_W(yZ_p(at.y)));
}

void take_size() {
    ginput().size_due = false;
    if (gresize_window(-1, -1) == 0) {
        return;
    }
    ginput().num_waiting = 0; // a position on the old page means nothing on the new one
    ginit_plot(init_again);
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    call_plotter(type_key, "size", static_cast<float>(width), static_cast<float>(height));
}

void call_button(const char* name, XPoint at, bool release) {
    if (!plot_under_way()) {
        call_at(type_button, name, at);
    } else if (ginput().num_waiting < ginput().waiting.size()) {
        Waiting& row = ginput().waiting[ginput().num_waiting++];
        copy_text(row.name.data(), row.name.size(), name);
        row.at = at;
        row.release = release;
    }
}

// Serves what a plot has put off. Returns whether there was something.
bool serve_waiting() {
    if (plot_under_way() || (!ginput().size_due && ginput().num_waiting == 0)) {
        return false;
    }
    if (ginput().size_due) {
        take_size();
    }
    const auto waiting = ginput().waiting;
    const std::size_t n = std::exchange(ginput().num_waiting, 0);
    for (std::size_t i = 0; i < n; ++i) {
        if (waiting[i].release) {
            ginit_band(); // the press has just begun it, the button is up by now
        }
        call_at(type_button, waiting[i].name.data(), waiting[i].at);
    }
    return true;
}

// --- One event ----------------------------------------------------------------

// One copy serves a series of exposures, and all that have come by now.
void expose(XExposeEvent* event) {
    evnt.mapped = 1;
    XEvent later;
    while (XCheckTypedEvent(gget_display(), Expose, &later) != 0) {
        *event = later.xexpose;
    }
    if (!evnt.expose_served) {
        gupdate_window();
    }
    evnt.expose_served = event->count > 0;
}

void configure(const XConfigureEvent& event) {
    if (event.window != gget_root_window()) {
        return;
    }
    XConfigureEvent last = event;
    XEvent later;
    while (XCheckTypedWindowEvent(gget_display(), event.window, ConfigureNotify, &later) != 0) {
        last = later.xconfigure;
    }
    int width = 0;
    int height = 0;
    gget_root_size(&width, &height);
    if (last.width == width && last.height == height && !ginput().size_due) {
        return; // it was moved
    }
    ginput().size_due = true;
    if (!plot_under_way()) {
        take_size();
    }
}

// Another client has destroyed the window. A plot under way is drawn to its end,
// as its images may be asked for, and there is nothing to hold.
void destroyed(const XDestroyWindowEvent& event) {
    if (event.window != gget_root_window()) {
        return;
    }
    ghide_keys();
    glose_window();
    evnt.mapped = 0;
    ginput().size_due = false;
    ginput().num_waiting = 0;
    ginput().input_mode = input_leave;
}

// A program attached to this window asks for a pixmap to draw the next frame
// in. The pixmap that it knows moves on to the end of the loop.
void new_frame() {
    const int n = gget_num_images();
    if (n == 0) {
        gunzoom();
        gcreate_frame(0);
        gset_looping(1);
        gswitch_frame(0, frame_base);
    } else if (gcreate_frame(frame_last) == n) {
        gcopy_frame(n, n - 1);
        gswitch_frame(n, n - 1);
        gclear_frame(n);
        gflush();
    }
}

void client_message(const XClientMessageEvent& event) {
    constexpr char ask_frame = 2;
    constexpr char ask_end = 9;
    constexpr int bytes_format = 8;
    constexpr int longs_format = 32;
    if (event.format == longs_format && static_cast<Atom>(event.data.l[0]) == gget_close_atom()) {
        ginput().input_mode = input_leave;
    }
    if (event.format != bytes_format) {
        return;
    }
    if (event.data.b[0] == ask_end) {
        ginput().input_mode = input_leave;
    }
    if (event.data.b[0] == ask_frame) {
        gset_win_title_extra("+"); // the requester waits until this goes
        new_frame();
    }
    gset_win_title_extra("");
}

XPoint point(int x, int y) {
    return {static_cast<short>(x), static_cast<short>(y)};
}

XPoint pointer_position(XPoint otherwise) {
    Window root = 0;
    Window child = 0;
    int root_x = 0;
    int root_y = 0;
    int x = 0;
    int y = 0;
    unsigned mask = 0;
    return XQueryPointer(gget_display(), gget_root_window(), &root, &child, &root_x, &root_y, &x,
                         &y, &mask) != 0
               ? point(x, y)
               : otherwise;
}

void key_press(XKeyEvent* event) {
    evnt.user_event = true;
    if (ginput().input_mode != input_hold && ginput().input_mode != input_key_seen) {
        return;
    }
    ginput().input_mode = input_key_seen;
    std::array<char, event_name_size> name{};
    constexpr int text_size = 60; // leaves room for the modifiers
    KeySym key = NoSymbol;
    event->state &= ~static_cast<unsigned>(LockMask); // a key means the same with Caps Lock on
    int length = 0;
    {
        const Gdisplay_watch watch; // the first key asks the server what its keys mean
        length = XLookupString(event, name.data(), text_size, &key, nullptr);
    }
    name[static_cast<std::size_t>(std::clamp(length, 0, text_size))] = '\0';
    const bool modifier = IsModifierKey(key);
    if (!modifier && ghide_keys()) {
        return; // that is all it does, so that Return may serve
    }
    if (key == XK_F1) {
        return gshow_keys();
    }
    if (key == XK_KP_Enter) {
        key = XK_Return;
    }
    if (key == XK_Return) {
        copy_text(name.data(), name.size(), "Ret");
    }
    const Key_end end = gserve_key(key, event->state, event->x, event->y);
    if (end == Key_end::leave_hold) {
        ginput().input_mode = input_leave;
    }
    if (end == Key_end::no_callback) {
        return;
    }
    gname_modifiers(event->state, name.data());
    call_at(type_key, name.data(), pointer_position(point(event->x, event->y)));
}

void button(const XButtonEvent& event) {
    evnt.user_event = true;
    const bool press = event.type == ButtonPress;
    if (press && ghide_keys()) {
        return;
    }
    XPoint at = point(event.x, event.y);
    if (press) {
        gserve_button(event.button, event.state);
        gband_press(at);
    } else {
        at = gband_release(at);
    }
    std::array<char, event_name_size> name{};
    gname_button(event.button, press, name.data());
    gname_modifiers(event.state, name.data());
    call_button(name.data(), at, !press);
}

void motion(XMotionEvent* event) {
    XEvent later;
    while (XCheckTypedEvent(gget_display(), MotionNotify, &later) != 0) {
        *event = later.xmotion;
    }
    gband_move(point(event->x, event->y));
}

// --- Polling ------------------------------------------------------------------

// Whether an event is taken in the middle of a plot. Keys count in a hold alone:
// the earlier ones are dropped, those of a redraw in a hold are kept for it.
Bool may_interrupt(Display* /*display*/, XEvent* event, XPointer /*arg*/) {
    switch (event->type) {
    case ClientMessage:
        return False;
    case KeyPress:
        return ginput().input_mode == input_idle ? True : False;
    default:
        return True;
    }
}

bool next_event(XEvent* event) {
    Display* display = gget_display();
    if (plot_under_way()) {
        return XCheckIfEvent(display, event, may_interrupt, nullptr) != 0;
    }
    if (XPending(display) == 0) {
        return false;
    }
    XNextEvent(display, event);
    return true;
}

int serve_pending() {
    int served = 0;
    XEvent event;
    while (next_event(&event)) {
        gprocess_x11_event(&event);
        served += evnt.user_event ? 1 : 0;
    }
    return served;
}

// --- Hold ---------------------------------------------------------------------

using Clock = std::chrono::steady_clock;

void show_cursor(int number) {
    if (gget_cursor_type() != number) {
        gset_cursor(number);
    }
}

// Waits for an event, at most half a second; in the first quiet seconds less.
void poll_still(int* quiet) {
    constexpr int lively_passes = 50;
    pollfd connection = {ConnectionNumber(gget_display()), POLLIN, 0};
    if (XPending(gget_display()) == 0) {
        poll(&connection, 1, *quiet < lively_passes ? 100 : 500);
    }
    *quiet = gcheck_event() > 0 ? 0 : *quiet + 1;
}

void show_next_frame() {
    show_cursor(cursor_number_loop);
    gloop_sleep();
    if (evnt.mapped == 0) {
        ZYR_sleep(0.1F); // with a delay of 0 a hidden loop would never rest
    } else if (gget_looping() != 0 && gget_input_mode() != 0) {
        gdisplay_frame(ginc_frame(0));
    }
    ZYR_init_time();
    gcheck_event();
}

void hold_pass(int* quiet) {
    std::fflush(stdout); // a pipe after the program reads on while it waits
    if (gget_num_images() >= 2 && gget_looping() != 0) {
        show_next_frame();
        *quiet = 0;
        return;
    }
    show_cursor(gget_num_images() < 2 ? cursor_number_rect : cursor_number_stop);
    if (evnt.refresh > 0) {
        poll_still(quiet);
    } else {
        gwait_event();
    }
}

void serve_refresh(Clock::time_point* due) {
    const auto now = Clock::now();
    if (evnt.refresh <= 0 || now < *due || evnt.refresh_CB == nullptr) {
        return;
    }
    ++evnt.in_plotter;
    evnt.refresh_CB();
    --evnt.in_plotter;
    // Times that went by in a long callback are not made up for.
    *due = std::max(*due, now) + std::chrono::seconds(evnt.refresh);
}

} // namespace

int gcheck_event() {
    if (!has_events()) {
        return 0;
    }
    serve_waiting();
    return serve_pending();
}

int gwait_event() {
    if (!has_events()) {
        return 0;
    }
    if (serve_waiting()) {
        return serve_pending(); // a loop may have begun: do not wait
    }
    XEvent event;
    XNextEvent(gget_display(), &event);
    gprocess_x11_event(&event);
    return (evnt.user_event ? 1 : 0) + serve_pending();
}

int gprocess_x11_event(XEvent* event) {
    evnt.user_event = false;
    if (!has_events()) {
        return 0;
    }
    if (event->type != Expose && event->type != ConfigureNotify) {
        evnt.expose_served = false;
    }
    switch (event->type) {
    case Expose:
        expose(&event->xexpose);
        break;
    case MapNotify:
    case UnmapNotify:
        evnt.mapped = event->type == MapNotify ? 1 : 0;
        break;
    case ConfigureNotify:
        configure(event->xconfigure);
        break;
    case DestroyNotify:
        destroyed(event->xdestroywindow);
        break;
    case ClientMessage:
        client_message(event->xclient);
        break;
    case KeyPress:
        key_press(&event->xkey);
        break;
    case ButtonPress:
    case ButtonRelease:
        button(event->xbutton);
        break;
    case MotionNotify:
        motion(&event->xmotion);
        break;
    default:
        break; // the focus and the rest have no effect
    }
    return 0;
}

int ghold(int /*ws_id*/) {
    if (!has_events()) {
        return 0;
    }
    gcheck_event();
    gflush();
    if (gget_looping() != 0) {
        ZYR_init_time();
    }
    ginput().input_mode = ghas_window() ? input_hold : input_leave;
    gcheck_event(); // what the plot has put off
    auto due = Clock::now() + std::chrono::seconds(evnt.refresh);
    int quiet = 0;
    while (gget_input_mode() != 0) {
        hold_pass(&quiet);
        serve_refresh(&due);
    }
    gset_input_mode(input_idle);
    gbell(50);
    gset_cursor(cursor_number_x);
    return gflush();
}

int gloop_sleep() {
    constexpr float slice = 0.2F;  // the window answers after that at the latest
    constexpr float least = 0.05F; // a delay of 0 must not keep the server busy for nothing
    if (gget_cur_frame() < 0 || gget_cur_frame() > gget_num_images()) {
        return -1;
    }
    const int looping = gget_looping();
    // An event may stop the loop or end the hold: then the wait is over too.
    while (gget_looping() == looping && gget_input_mode() != 0) {
        const float rest = std::max(gget_frame_delay(frame_current), least) - ZYR_elapse_time();
        if (!(rest > 0.0F)) {
            return 0;
        }
        if (rest > slice) {
            gcheck_event();
        }
        ZYR_sleep(std::min(rest, slice));
    }
    return 0;
}

int gis_mapped() {
    return evnt.mapped;
}

int gset_mouse_callback(Gmouse_func* func) {
    evnt.mouse_CB = func;
    return 0;
}

int gset_refresh_callback(int seconds, Grefresh_func* func) {
    evnt.refresh = seconds;
    evnt.refresh_CB = func;
    return 0;
}
