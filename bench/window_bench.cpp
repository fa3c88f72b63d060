// What the window costs. A full product drawn into it, against a bare client
// that sends the same polygons; a step of a loop, against two bare copies; the
// memory of the redraw list, against its points and records; the processor time
// of a window that is held. Starts an X server of its own; prints ratios, and
// fails above those allowed.
#include "plt_tool.h"

#include "bare_client.h"
#include "files.h"
#include "gks_x11.h"
#include "map.h"
#include "maptran.h"
#include "nids.h"
#include "nids_plt.h"
#include "nids_writer.h"
#include "redraw_areas.h"
#include "region.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

int failures = 0;

void say_ratio(const char* what, double ours, double floor, double allowed, const char* unit) {
    const bool good = ours <= allowed * floor;
    std::printf("  %-24s %10.3f %s against %10.3f; ratio %.2f (at most %.1f)%s\n", what, ours, unit,
                floor, ours / floor, allowed, good ? "" : "  TOO MUCH");
    failures += good ? 0 : 1;
}

// 360 radials of 460 bins, each bin of another level than its neighbours.
std::string full_product() {
    NidsSample sample;
    sample.thres = {-320, 5, 254};
    sample.p[3] = 5;
    unsigned random = 1;
    std::vector<Bytes> radials(360, Bytes(460));
    for (Bytes& radial : radials) {
        for (std::uint8_t& level : radial) {
            random = random * 1664525U + 1013904223U;
            level = static_cast<std::uint8_t>(2 + (random >> 16U) % 254);
        }
    }
    sample.layers.push_back(nids_radial_packet(16, 460, radials));
    const Bytes bytes = nids_message(sample);
    return {bytes.begin(), bytes.end()};
}

// --- The plot -------------------------------------------------------------------

// Opens the window for the data alone: no texts, no maps, no bar. Returns the
// area of the product.
Domain open_window(const XServer& server, const std::string& product) {
    setenv("DISPLAY", server.name().c_str(), 1);
    RES_put("device", "d");
    RES_put("geometry", (std::to_string(bench_width) + "x" + std::to_string(bench_height)).c_str());
    return open_data_alone(product);
}

// As a replot draws it: on the product's own area.
void plot(const std::string& product, Domain domain) {
    PLT_reset(DOM_aspect(&domain));
    NIDS_open_file(product.c_str());
    MAP_setup(&domain);
    NIDS_plot_frame();
    NIDS_close_file();
    gsync();
}

// --- Measures ---------------------------------------------------------------------

void measure_plot(const XServer& server, const std::string& product, const Domain& domain) {
    plot(product, domain);
    Polygons all = redraw_areas();
    const BareClient bare(server);
    std::printf("a full product of 360 by 460 bins: %zu areas in the list\n", all.counts.size());
    const auto [ours, floor] = least_ms(
        server, 7, [&] { plot(product, domain); }, [&] { bare.draw(all); });
    say_ratio("drawn into the window", ours, floor, 1.5, "ms");
    const double least = static_cast<double>(all.points.size() * sizeof(Gpt)) +
                         static_cast<double>(all.records) * sizeof(drawable);
    say_ratio("memory of the list", static_cast<double>(gget_objs_bytes()) / 1e6, least / 1e6, 1.5,
              "MB");
}

void measure_loop(const XServer& server) {
    for (int i = 0; i < 3; ++i) {
        gcreate_frame(i);
    }
    gset_looping(1);
    const BareClient bare(server);
    constexpr int steps = 20;
    const auto step = [] { gdisplay_frame(ginc_frame(0)); };
    step();
    const unsigned long before = XNextRequest(gget_display());
    step();
    const unsigned long requests = XNextRequest(gget_display()) - before;
    const auto [ours, floor] = least_ms(
        server, 10,
        [&] {
            for (int i = 0; i < steps; ++i) {
                step();
            }
        },
        [&] {
            for (int i = 0; i < steps; ++i) {
                bare.copy_twice();
            }
        });
    std::printf("a step of a loop of %d by %d: %lu requests\n", bench_width, bench_height,
                requests);
    say_ratio("against two copies", ours / steps, floor / steps, 1.5, "ms");
    gdelete_all_frames();
}

void measure_hold(const XServer& server, const std::string& product) {
    constexpr int seconds = 10;
    const RunningProgram program(
        ZYR_PROGRAM, {
                         .args = {"-inp", "nids", "-de", "d", product},
                         .env = {{"DISPLAY", server.name()},   {"zyrdefault", ZYR_SOURCE_DIR "/etc"} },
                         .input = "",
                         .directory = ""
    });
    const XUser user(server);
    const Window window = user.find_window();
    user.settle(program.pid());
    const double before = spent_ms(program.pid());
    sleep(seconds);
    const double used = spent_ms(program.pid()) - before;
    const bool good = window != 0 && used == 0;
    std::printf("a held window: %.3f ms of processor time in %d s%s\n", used, seconds,
                good ? "" : "  TOO MUCH");
    failures += good ? 0 : 1;
}

} // namespace

int main() {
    const XServer server(24, bench_width, bench_height);
    if (!server.works()) {
        std::puts("Xvfb does not start");
        return 1;
    }
    const TempDir dir;
    const std::string product = dir.write("full", full_product());
    measure_plot(server, product, open_window(server, product));
    measure_loop(server);
    GPH_end(gget_ws_id());
    measure_hold(server, product);
    return failures == 0 ? 0 : 1;
}
