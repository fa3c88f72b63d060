// bare_client.h: what benches of the window measure the program against: a
// client that sends polygons to an X server with no more ado, and the processor
// time of client and server together. The clock on the wall would tell more
// about what else the machine does.
#pragma once

#include "x_server.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <X11/Xutil.h>
#include <unistd.h>

constexpr int bench_width = 1280; // of the window, pixels
constexpr int bench_height = 1024;

// Processor time of a process, in milliseconds.
inline double spent_ms(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/schedstat");
    double nanoseconds = 0;
    file >> nanoseconds;
    return nanoseconds / 1e6;
}

// What a piece of work costs this process and the server together.
template <typename Work> double cost_ms(const XServer& server, Work work) {
    const auto spent = [&] { return spent_ms(getpid()) + spent_ms(server.pid()); };
    const double before = spent();
    work();
    return spent() - before;
}

// The least costs of two pieces of work, taken in turn.
template <typename A, typename B>
std::pair<double, double> least_ms(const XServer& server, int rounds, A a, B b) {
    double first = 1e9;
    double second = 1e9;
    for (int i = 0; i < rounds; ++i) {
        first = std::min(first, cost_ms(server, a));
        second = std::min(second, cost_ms(server, b));
    }
    return {first, second};
}

// Areas in pixels of the window.
struct Polygons {
    std::vector<XPoint> points;
    std::vector<int> counts;
    std::vector<unsigned long> pixels; // of each polygon
    int records = 0;                   // in the list they come from
};

class BareClient {
public:
    explicit BareClient(const XServer& server) : display(XOpenDisplay(server.name().c_str())) {
        const int screen = DefaultScreen(display);
        window = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0, bench_width,
                                     bench_height, 0, 0, 0);
        XMapWindow(display, window);
        for (Pixmap& pixmap : pixmaps) {
            pixmap = XCreatePixmap(display, window, bench_width, bench_height,
                                   static_cast<unsigned>(DefaultDepth(display, screen)));
        }
        XGCValues values{};
        values.graphics_exposures = False;
        gc = XCreateGC(display, window, GCGraphicsExposures, &values);
        sync();
    }
    ~BareClient() { XCloseDisplay(display); }
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    void sync() const { XSync(display, False); }
    void draw(Polygons& all) const {
        XFillRectangle(display, pixmaps[0], gc, 0, 0, bench_width, bench_height);
        XPoint* points = all.points.data();
        unsigned long pixel = ~0UL;
        for (std::size_t i = 0; i < all.counts.size(); points += all.counts[i], ++i) {
            if (all.pixels[i] != pixel) {
                pixel = all.pixels[i];
                XSetForeground(display, gc, pixel);
            }
            XFillPolygon(display, pixmaps[0], gc, points, all.counts[i], Nonconvex,
                         CoordModeOrigin);
            XDrawLines(display, pixmaps[0], gc, points, all.counts[i], CoordModeOrigin);
        }
        sync();
    }
    void copy_twice() const {
        XCopyArea(display, pixmaps[0], pixmaps[1], gc, 0, 0, bench_width, bench_height, 0, 0);
        XCopyArea(display, pixmaps[1], window, gc, 0, 0, bench_width, bench_height, 0, 0);
        sync();
    }
    void fetch_image() const {
        XDestroyImage(
            XGetImage(display, pixmaps[0], 0, 0, bench_width, bench_height, AllPlanes, ZPixmap));
    }

private:
    Display* display;
    Window window = 0;
    GC gc = nullptr;
    std::array<Pixmap, 2> pixmaps{};
};
