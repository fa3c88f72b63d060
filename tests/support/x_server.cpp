#include "x_server.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <set>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XRes.h>
#include <X11/extensions/XTest.h>

namespace {

constexpr const char* loop_title = "Loop window";
constexpr Atom request_type = 62; // of the messages to a loop window

struct FreeX {
    void operator()(void* data) const { XFree(data); }
};
struct FreeImage {
    void operator()(XImage* image) const { XDestroyImage(image); }
};

// A window that goes away between two calls is no reason to end the test.
int pass_over(Display*, XErrorEvent*) {
    return 0;
}

// State, processor time and changes of a process: equal texts, with the state
// asleep, mean that it did nothing in between.
std::string activity(int pid) {
    const std::string dir = "/proc/" + std::to_string(pid);
    std::ifstream status(dir + "/status");
    std::string all;
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("State:") || line.find("ctxt_switches") != std::string::npos) {
            all += line + ";";
        }
    }
    return all;
}

// Eight bits of a component under its mask in a pixel.
std::uint32_t component(unsigned long pixel, unsigned long mask) {
    if (mask == 0) {
        return 0;
    }
    const unsigned long lowest = mask & (~mask + 1);
    const auto value = static_cast<std::uint32_t>((pixel & mask) / lowest);
    const auto most = static_cast<std::uint32_t>(mask / lowest);
    std::uint32_t bits = 0;
    while ((most >> bits) != 0) {
        bits++;
    }
    return bits > 8 ? value >> (bits - 8) : value << (8 - bits);
}

// The colour of every pixel value of a colour map of up to 256 cells.
std::vector<std::uint32_t> cells(Display* display, Colormap map) {
    std::array<XColor, 256> colors{};
    for (std::size_t i = 0; i < colors.size(); i++) {
        colors[i].pixel = i;
    }
    XQueryColors(display, map, colors.data(), static_cast<int>(colors.size()));
    std::vector<std::uint32_t> rgb;
    for (const XColor& color : colors) {
        rgb.push_back((color.red >> 8U) << 16U | (color.green >> 8U) << 8U | color.blue >> 8U);
    }
    return rgb;
}

Picture read_drawable(Display* display, Drawable drawable, int width, int height, Colormap map) {
    Picture picture;
    const Visual* visual = DefaultVisual(display, DefaultScreen(display));
    const std::unique_ptr<XImage, FreeImage> image(
        XGetImage(display, drawable, 0, 0, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), AllPlanes, ZPixmap));
    if (image == nullptr) {
        return picture;
    }
    picture = {width, height, {}};
    picture.rgb.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const std::vector<std::uint32_t> table =
        image->depth <= 8 ? cells(display, map) : std::vector<std::uint32_t>{};
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            const unsigned long pixel = XGetPixel(image.get(), x, y);
            picture.rgb.push_back(image->depth <= 8
                                      ? table[pixel & 255U]
                                      : component(pixel, visual->red_mask) << 16U |
                                            component(pixel, visual->green_mask) << 8U |
                                            component(pixel, visual->blue_mask));
        }
    }
    return picture;
}

bool is_plot(Display* display, Window window) {
    XClassHint hint{};
    XWindowAttributes attributes{};
    if (XGetClassHint(display, window, &hint) == 0) {
        return false;
    }
    const std::unique_ptr<char, FreeX> name(hint.res_name);
    const std::unique_ptr<char, FreeX> kind(hint.res_class);
    return std::strcmp(kind.get(), "Zyr") == 0 &&
           XGetWindowAttributes(display, window, &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

// A window manager puts the plot's window into one of its own.
Window find_below(Display* display, Window parent) {
    Window root = 0;
    Window up = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, parent, &root, &up, &children, &count) == 0) {
        return 0;
    }
    const std::unique_ptr<Window, FreeX> owner(children);
    for (unsigned i = 0; i < count; i++) {
        const Window child = children[i];
        const Window found = is_plot(display, child) ? child : find_below(display, child);
        if (found != 0) {
            return found;
        }
    }
    return 0;
}

} // namespace

bool wait_until(const std::function<bool()>& done, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) {
            return done();
        }
        usleep(4000);
    }
    return true;
}

// --- Server -------------------------------------------------------------------

XServer::XServer(int depth, int width, int height) {
    const std::string size =
        std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return;
    }
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        close(ends[0]);
        const std::string fd = std::to_string(ends[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-noreset", "-nolisten", "tcp", "-screen",
               "0", size.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::array<char, 16> text{}; // the number and a line end, when it is ready
    std::size_t length = 0;
    ssize_t got = 0;
    while (length + 1 < text.size() && std::strchr(text.data(), '\n') == nullptr &&
           (got = read(ends[0], &text[length], text.size() - 1 - length)) > 0) {
        length += static_cast<std::size_t>(got);
    }
    close(ends[0]);
    if (char* end = std::strchr(text.data(), '\n')) {
        *end = '\0';
        name_ = std::string(":") + text.data();
    }
}

XServer::~XServer() {
    stop();
}

void XServer::stop() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM); // it removes its lock and socket
        waitpid(pid_, nullptr, 0);
    }
    pid_ = -1;
}

// --- Picture ------------------------------------------------------------------

int Picture::colors() const {
    return static_cast<int>(std::set<std::uint32_t>(rgb.begin(), rgb.end()).size());
}

std::ostream& operator<<(std::ostream& out, const Picture& picture) {
    return out << picture.width << "x" << picture.height << " in " << picture.colors()
               << " colours";
}

int pixels_that_differ(const Picture& a, const Picture& b) {
    if (a.width != b.width || a.height != b.height) {
        return std::max(a.width * a.height, b.width * b.height);
    }
    int count = 0;
    for (std::size_t i = 0; i < a.rgb.size(); i++) {
        count += a.rgb[i] != b.rgb[i] ? 1 : 0;
    }
    return count;
}

// --- User ---------------------------------------------------------------------

XUser::XUser(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
    XSetErrorHandler(pass_over);
}

Window XUser::find_window() const {
    Window window = 0;
    wait_until([&] {
        window = find_below(display(), DefaultRootWindow(display()));
        return window != 0;
    });
    return window;
}

bool XUser::settle(int pid) const {
    return wait_until([&] {
        const std::string before = activity(pid);
        if (before.find("State:\tS") == std::string::npos) {
            return before.empty() || before.find("State:\tZ") != std::string::npos;
        }
        for (int i = 0; i < 6; i++) {
            XSync(display(), False);
            usleep(5000);
            if (activity(pid) != before) {
                return false;
            }
        }
        return true;
    });
}

Picture XUser::look(Window window) const {
    XWindowAttributes attributes{};
    XSync(display(), False);
    if (XGetWindowAttributes(display(), window, &attributes) == 0) {
        return {};
    }
    return read_drawable(display(), window, attributes.width, attributes.height,
                         attributes.colormap);
}

std::string XUser::title(Window window) const {
    char* name = nullptr;
    const bool there = XFetchName(display(), window, &name) != 0;
    const std::unique_ptr<char, FreeX> owner(name);
    return there ? name : "";
}

std::string XUser::icon_title(Window window) const {
    char* name = nullptr;
    const bool there = XGetIconName(display(), window, &name) != 0;
    const std::unique_ptr<char, FreeX> owner(name);
    return there ? name : "";
}

std::map<std::string, int> XUser::resources(Window window) const {
    int count = 0;
    XResType* types = nullptr;
    std::map<std::string, int> all;
    if (XResQueryClientResources(display(), window, &count, &types) == 0) {
        return all;
    }
    const std::unique_ptr<XResType, FreeX> owner(types);
    for (int i = 0; i < count; i++) {
        const std::unique_ptr<char, FreeX> name(XGetAtomName(display(), types[i].resource_type));
        all[name.get()] = static_cast<int>(types[i].count);
    }
    return all;
}

void XUser::point(Window window, int x, int y) const {
    XWarpPointer(display(), None, window, 0, 0, 0, 0, x, y);
    XSync(display(), False);
}

void XUser::hold(unsigned modifiers, bool down) const {
    struct Key {
        unsigned modifier;
        KeySym sym;
    };
    constexpr std::array<Key, 3> keys = {
        {{alt, XK_Alt_L}, {shift, XK_Shift_L}, {control, XK_Control_L}}
    };
    for (const Key& key : keys) {
        if ((modifiers & key.modifier) != 0) {
            XTestFakeKeyEvent(display(), XKeysymToKeycode(display(), key.sym), down ? 1 : 0, 0);
        }
    }
    XSync(display(), False);
}

void XUser::key(KeySym sym, unsigned modifiers) const {
    const unsigned code = XKeysymToKeycode(display(), sym);
    hold(modifiers, true);
    XTestFakeKeyEvent(display(), code, True, 0);
    XTestFakeKeyEvent(display(), code, False, 0);
    hold(modifiers, false);
}

void XUser::press(unsigned button, unsigned modifiers) const {
    hold(modifiers, true);
    XTestFakeButtonEvent(display(), button, True, 0);
    hold(modifiers, false);
}

void XUser::release(unsigned button, unsigned modifiers) const {
    hold(modifiers, true);
    XTestFakeButtonEvent(display(), button, False, 0);
    hold(modifiers, false);
}

void XUser::click(unsigned button, unsigned modifiers) const {
    press(button, modifiers);
    release(button, modifiers);
}

void XUser::resize(Window window, int width, int height) const {
    XResizeWindow(display(), window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(display(), False);
}

void XUser::iconify(Window window) const {
    XUnmapWindow(display(), window);
    XSync(display(), False);
}

void XUser::map(Window window) const {
    XMapWindow(display(), window);
    XSync(display(), False);
}

void XUser::cover(Window window) const {
    XWindowAttributes attributes{};
    XGetWindowAttributes(display(), window, &attributes);
    XSetWindowAttributes look{};
    look.background_pixel = 0x5A5A5A & ((1UL << static_cast<unsigned>(attributes.depth)) - 1);
    look.override_redirect = True;
    const Window above = XCreateWindow(
        display(), DefaultRootWindow(display()), attributes.x, attributes.y,
        static_cast<unsigned>(attributes.width + 2 * attributes.border_width),
        static_cast<unsigned>(attributes.height + 2 * attributes.border_width), 0, CopyFromParent,
        InputOutput, CopyFromParent, CWBackPixel | CWOverrideRedirect, &look);
    XMapRaised(display(), above);
    XSync(display(), False);
    XDestroyWindow(display(), above);
    XSync(display(), False);
}

void XUser::send(Window window, int code) const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = request_type;
    event.xclient.format = 8;
    event.xclient.data.b[0] = static_cast<char>(code);
    XSendEvent(display(), window, True, NoEventMask, &event);
    XSync(display(), False);
}

// --- Loop window ----------------------------------------------------------------

LoopWindow::LoopWindow(const XUser& user, int width, int height)
    : user_(user), width_(width), height_(height) {
    Display* display = user.display();
    const auto w = static_cast<unsigned>(width);
    const auto h = static_cast<unsigned>(height);
    window_ = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, w, h, 0, 0, 0);
    XStoreName(display, window_, loop_title);
    XMapWindow(display, window_);
    pixmap_ = XCreatePixmap(display, window_, w, h,
                            static_cast<unsigned>(DefaultDepth(display, DefaultScreen(display))));
    fill(BlackPixel(display, DefaultScreen(display)));
}

void LoopWindow::fill(unsigned long pixel) const {
    Display* display = user_.display();
    const GC gc = XCreateGC(display, pixmap_, 0, nullptr);
    XSetForeground(display, gc, pixel);
    XFillRectangle(display, pixmap_, gc, 0, 0, static_cast<unsigned>(width_),
                   static_cast<unsigned>(height_));
    XFreeGC(display, gc);
    XSync(display, False);
}

std::string LoopWindow::id_decimal() const {
    return std::to_string(pixmap_) + ":" + std::to_string(width_) + "x" + std::to_string(height_);
}

std::string LoopWindow::id_hexadecimal() const {
    std::ostringstream text;
    text << "0x" << std::hex << pixmap_ << std::dec << ":" << width_ << "x" << height_;
    return text.str();
}

std::string LoopWindow::id_with_window() const {
    Display* display = user_.display();
    return "+" + std::to_string(window_) + ":" + id_decimal() + ":" +
           std::to_string(DefaultColormap(display, DefaultScreen(display)));
}

std::vector<int> LoopWindow::serve(const std::function<void()>& busy) {
    Display* display = user_.display();
    std::vector<int> codes;
    XEvent event{};
    while (XCheckTypedWindowEvent(display, window_, ClientMessage, &event) != 0) {
        const XClientMessageEvent& message = event.xclient;
        if (message.message_type != request_type || message.format != 8) {
            continue;
        }
        codes.push_back(message.data.b[0]);
        if (codes.back() == 2) {
            XStoreName(display, window_, (std::string(loop_title) + " +").c_str());
            XSync(display, False);
            busy();
            XStoreName(display, window_, loop_title);
            XSync(display, False);
        }
    }
    return codes;
}

Picture LoopWindow::look() const {
    Display* display = user_.display();
    XSync(display, False);
    return read_drawable(display, pixmap_, width_, height_,
                         DefaultColormap(display, DefaultScreen(display)));
}
