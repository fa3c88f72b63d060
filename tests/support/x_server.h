// x_server.h: an X server of the test's own, and a user who sits at it: looks
// at the program's window as it is on the screen, presses keys and buttons, and
// does what a window manager or a second program would do to the window.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <X11/Xlib.h>
#include <X11/keysym.h>

// Asks `done` every few milliseconds until it says yes; false when it has not
// within the limit, which is long: only a failing test waits for it.
bool wait_until(const std::function<bool()>& done, double seconds = 30);

// Xvfb on a free display number. Ends with the object, or with the test. Without
// Xvfb the tests say SKIPPED, but fail where ZYR_NEED_DISPLAY is set.
class XServer {
public:
    // `visual_class` of its screen, such as DirectColor; negative: the usual one.
    explicit XServer(int depth = 24, int width = 1024, int height = 800, int visual_class = -1);
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    bool works() const { return !name_.empty(); } // false where there is no Xvfb
    const std::string& name() const { return name_; }
    int pid() const { return pid_; }
    void stop();

private:
    int pid_ = -1;
    std::string name_; // such as ":7"
};

// What a window shows, as 0xRRGGBB, row by row.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> rgb;

    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return rgb[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
    }
    [[nodiscard]] int colors() const; // number of different ones
    bool operator==(const Picture&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Picture& picture); // for reports
int pixels_that_differ(const Picture& a, const Picture& b);

enum Modifier : unsigned { no_modifier = 0, alt = 1, shift = 2, control = 4 };

// The user. Every call has taken place at the server when it returns; what the
// program makes of it takes longer: wait for what it shows, or for `settle`.
class XUser {
public:
    explicit XUser(const XServer& server) : XUser(server.name()) {}
    explicit XUser(const std::string& display);

    Display* display() const { return display_.get(); }
    // The server is gone: closing the connection would end the test.
    void abandon() { static_cast<void>(display_.release()); }
    // The mapped top-level window of class "Zyr"; 0 if none comes.
    Window find_window() const;
    // Waits until process `pid` sleeps and the server has done all it was sent.
    bool settle(int pid) const;

    Picture look(Window window) const;
    std::string title(Window window) const;
    std::string icon_title(Window window) const;
    // Resources that the window's owner holds, by type, such as "PIXMAP" and "GC".
    std::map<std::string, int> resources(Window window) const;

    // The pointer goes to a pixel of the window. Keys go where the pointer is.
    void point(Window window, int x, int y) const;
    void key(KeySym sym, unsigned modifiers = no_modifier) const;
    void press(unsigned n, unsigned modifiers = no_modifier) const { button(n, true, modifiers); }
    void release(unsigned n, unsigned modifiers = no_modifier) const {
        button(n, false, modifiers);
    }
    void click(unsigned n, unsigned modifiers = no_modifier) const {
        press(n, modifiers);
        release(n, modifiers);
    }

    void resize(Window window, int width, int height) const;
    void iconify(Window window) const; // as without a window manager: unmaps it
    void map(Window window) const;
    // Covers all of the window for a moment.
    void cover(Window window) const;
    // What a program attached to the window sends to it, and a window manager
    // that is to close it.
    void send(Window window, int code) const;
    void close(Window window) const;

private:
    void hold(unsigned modifiers, bool down) const;
    void button(unsigned n, bool down, unsigned modifiers) const;
    void send(Window window, XEvent event) const;

    struct Closer {
        void operator()(Display* display) const { XCloseDisplay(display); }
    };
    std::unique_ptr<Display, Closer> display_;
};

// A window and a pixmap that another program draws into: what the program finds
// when it is attached to a loop window. Plays the owner's part.
class LoopWindow {
public:
    LoopWindow(const XUser& user, int width, int height);

    Window window() const { return window_; }
    Pixmap pixmap() const { return pixmap_; }
    // The three forms of the text by which other programs find the drawable.
    [[nodiscard]] std::string id_with_window() const;
    [[nodiscard]] std::string id_decimal() const;
    [[nodiscard]] std::string id_hexadecimal() const;

    // Takes the requests that have come, answers those for a new frame by the
    // mark "+" in the title, shown while `busy` runs, and returns their codes.
    std::vector<int> serve(const std::function<void()>& busy = [] {});
    void fill(unsigned long pixel) const;
    Picture look() const; // at the pixmap

private:
    const XUser& user_;
    int width_, height_;
    Window window_ = 0;
    Pixmap pixmap_ = 0;
};
