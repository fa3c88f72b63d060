// gks_xerr.cpp: what happens when the X server refuses a request, goes away, or
// does not answer while a window is opened, or in a run that ends in image files.
// Owns the error state and the patience. gopen_display installs the handlers.
//
// A handler runs inside an Xlib call and may send no request itself. Frames and
// windows go with the connection when the program ends.

#include "gks_disp.h"
#include "zyr.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr int most_errors = 25;

struct ErrorState {
    int Xerror = 0;       // 1: an error came since this was cleared
    int Xerror_print = 1; // 0: errors are noted and no more
    int num_error = 0;    // errors reported
};
ErrorState errors;

int patience = 20; // seconds for an answer of a server

// The library cannot be made to give up, nor be left in the middle.
extern "C" void no_answer(int) {
    constexpr std::string_view text = "gopen_ws: the display does not answer; a page needs none: "
                                      "-de p,FILE\n";
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size())); // nothing is left to do
    _exit(end_output);
}

void set_timer(int seconds) {
    itimerval timer{};
    timer.it_value.tv_sec = seconds;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

int Xerror_handler(Display* display, XErrorEvent* event) {
    errors.Xerror = 1;
    // What was on its way to a window that another client has just destroyed: its
    // event says so.
    const bool of_window = gtype_is_WIN() && event->resourceid == gget_root_window() &&
                           (event->error_code == BadWindow || event->error_code == BadDrawable);
    if (errors.Xerror_print == 0 || of_window) {
        return 0;
    }
    std::array<char, 80> text{};
    std::array<char, 20> number{};
    std::array<char, 60> request{};
    XGetErrorText(display, event->error_code, text.data(), text.size());
    std::snprintf(number.data(), number.size(), "%d", event->request_code);
    XGetErrorDatabaseText(display, "XRequest", number.data(), number.data(), request.data(),
                          request.size());
    MESS_print(mess_warn, "X11 error: %s in %s\n", text.data(), request.data());
    if (++errors.num_error == most_errors) {
        MESS_print(mess_error, "X11 error: too many errors\n");
        std::exit(end_output);
    }
    return 0;
}

int XerrorIO_handler(Display* /*display*/) {
    MESS_print(mess_error, "Fatal X11 Error\n");
    std::exit(end_output);
}

} // namespace

Gdisplay_watch::Gdisplay_watch(bool set) : set_(set) {
    if (!set_) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = no_answer;
    sigemptyset(&action.sa_mask);
    sigaction(SIGALRM, &action, &before_);
    set_timer(patience);
}

Gdisplay_watch::~Gdisplay_watch() {
    if (!set_) {
        return;
    }
    set_timer(0);
    sigaction(SIGALRM, &before_, nullptr);
}

void gset_display_patience(int seconds) {
    patience = seconds;
}

void ginstall_error_handlers() {
    XSetErrorHandler(Xerror_handler);
    XSetIOErrorHandler(XerrorIO_handler);
}

void gclear_errors() {
    errors.Xerror = 0;
    errors.Xerror_print = 1;
}

int gget_noted_error() {
    return errors.Xerror;
}

int gget_num_error() {
    return errors.num_error;
}

int gtrap_errors(int print) {
    if (gget_display() == nullptr) {
        return 0;
    }
    // Errors of requests before this call count as before.
    if (XLastKnownRequestProcessed(gget_display()) + 1 != XNextRequest(gget_display())) {
        XSync(gget_display(), False);
    }
    errors.Xerror_print = print;
    const int came = errors.Xerror;
    if (print == 0) {
        errors.Xerror = 0;
    }
    return print != 0 ? came : 0;
}
