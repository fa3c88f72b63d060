#include "x_server.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <csignal>
#include <cstdio>
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
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
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
    const auto value = static_cast<std::uint32_t>((pixel & mask) >> std::countr_zero(mask));
    const int bits = std::popcount(mask);
    return bits > 8 ? value >> (bits - 8) : value << (8 - bits);
}

Picture read_drawable(Display* display, Drawable drawable, int width, int height, Colormap map) {
    const std::unique_ptr<XImage, FreeImage> image(
        XGetImage(display, drawable, 0, 0, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), AllPlanes, ZPixmap));
    if (image == nullptr) {
        return {};
    }
    const Visual* visual = DefaultVisual(display, DefaultScreen(display));
    std::array<XColor, 256> cells{}; // of the colour map, if the pixels are numbers of such
    const bool mapped = image->depth <= 8;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i].pixel = i;
    }
    if (mapped) {
        XQueryColors(display, map, cells.data(), static_cast<int>(cells.size()));
    }
    Picture picture = {width, height, {}};
    picture.rgb.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const unsigned long pixel = XGetPixel(image.get(), x, y);
            const XColor& cell = cells[pixel & 255U];
            picture.rgb.push_back(mapped ? (cell.red >> 8U) << 16U | (cell.green >> 8U) << 8U |
                                               cell.blue >> 8U
                                         : component(pixel, visual->red_mask) << 16U |
                                               component(pixel, visual->green_mask) << 8U |
                                               component(pixel, visual->blue_mask));
        }
    }
    return picture;
}

// The text that such a call of Xlib gives for a window; empty if there is none.
std::string text_of(int (*fetch)(Display*, Window, char**), Display* display, Window window) {
    char* text = nullptr;
    const bool there = fetch(display, window, &text) != 0;
    const std::unique_ptr<char, FreeX> owner(text);
    return there && text != nullptr ? text : "";
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

XServer::XServer(int depth, int width, int height, int visual_class) {
    const std::string kind = std::to_string(visual_class);
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
               "0", size.c_str(), visual_class < 0 ? nullptr : "-cc", kind.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> ready(fdopen(ends[0], "r"), &std::fclose);
    std::array<char, 16> number{}; // of the display, when it is ready
    if (std::fgets(number.data(), static_cast<int>(number.size()), ready.get()) != nullptr) {
        name_ = ":" + std::to_string(std::strtol(number.data(), nullptr, 10));
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
    for (std::size_t i = 0; i < a.rgb.size(); ++i) {
        count += a.rgb[i] != b.rgb[i] ? 1 : 0;
    }
    return count;
}

// --- User ---------------------------------------------------------------------

XUser::XUser(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
    XSetErrorHandler(pass_over);
}

Window XUser::find_window() const {
    Window found = 0;
    wait_until([&] {
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        XQueryTree(display(), DefaultRootWindow(display()), &root, &parent, &children, &count);
        const std::unique_ptr<Window, FreeX> owner(children);
        for (unsigned i = 0; i < count && found == 0; ++i) {
            found = is_plot(display(), children[i]) ? children[i] : 0;
        }
        return found != 0;
    });
    return found;
}

bool XUser::settle(int pid) const {
    return wait_until([&] {
        const std::string before = activity(pid);
        if (before.find("State:\tS") == std::string::npos) {
            return before.empty() || before.find("State:\tZ") != std::string::npos;
        }
        for (int i = 0; i < 6; ++i) {
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
    return text_of(XFetchName, display(), window);
}

std::string XUser::icon_title(Window window) const {
    return text_of(XGetIconName, display(), window);
}

std::map<std::string, int> XUser::resources(Window window) const {
    int count = 0;
    XResType* types = nullptr;
    std::map<std::string, int> all;
    if (XResQueryClientResources(display(), window, &count, &types) == 0) {
        return all;
    }
    const std::unique_ptr<XResType, FreeX> owner(types);
    for (int i = 0; i < count; ++i) {
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

void XUser::button(unsigned n, bool down, unsigned modifiers) const {
    hold(modifiers, true);
    XTestFakeButtonEvent(display(), n, down ? 1 : 0, 0);
    hold(modifiers, false);
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
    XWindowAttributes at{};
    XGetWindowAttributes(display(), window, &at);
    XSetWindowAttributes look{};
    look.background_pixel = 0x5A5A5A & ((1UL << static_cast<unsigned>(at.depth)) - 1);
    look.override_redirect = True;
    const Window above =
        XCreateWindow(display(), DefaultRootWindow(display()), at.x, at.y,
                      static_cast<unsigned>(at.width + 2 * at.border_width),
                      static_cast<unsigned>(at.height + 2 * at.border_width), 0, CopyFromParent,
                      InputOutput, CopyFromParent, CWBackPixel | CWOverrideRedirect, &look);
    map(above);
    XDestroyWindow(display(), above);
    XSync(display(), False);
}

void XUser::send(Window window, int code) const {
    XEvent event{};
    event.xclient.message_type = request_type;
    event.xclient.format = 8;
    event.xclient.data.b[0] = static_cast<char>(code);
    send(window, event);
}

void XUser::close(Window window) const {
    Atom* protocols = nullptr; // that the window takes part in: this one alone
    int count = 0;
    XGetWMProtocols(display(), window, &protocols, &count);
    const std::unique_ptr<Atom, FreeX> owner(protocols);
    XEvent event{};
    event.xclient.message_type = XInternAtom(display(), "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = count == 1 ? static_cast<long>(*protocols) : 0;
    send(window, event);
}

void XUser::send(Window window, XEvent event) const {
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
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
