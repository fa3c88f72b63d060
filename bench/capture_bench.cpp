// What an image of the window costs against libpng alone: PNG_dump, from the
// request to the server on, and libpng writing the same rows of palette
// indexes. The picture is that of the sample storm, 1280 by 1024. Counts the
// processor time of both processes, so that a busy machine says the same.
#include "bare_client.h"
#include "gks_x11.h"
#include "nids_storm.h"
#include "png_floor.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrimg.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdio>
#include <string>

int main() {
    const XServer server(24, bench_width, bench_height);
    if (!server.works()) {
        std::puts("no Xvfb: nothing to measure");
        return 0;
    }
    const TempDir dir;
    const Bytes storm = nids_sample_storm(153);
    dir.write("storm", {storm.begin(), storm.end()});
    ProgramCall call;
    call.env = {
        {"DISPLAY",    server.name()        },
        {"zyrdefault", ZYR_SOURCE_DIR "/etc"}
    };
    call.directory = dir.path();
    call.args = {"-inp", "nids", "-de", "d", "-ge", "1280x1024", "-pp", "png=plot.png", "storm"};
    run_program(ZYR_PROGRAM, call);
    const auto file = [&](const char* name) { return dir.path() + "/" + name; };
    const Indexed picture = read_indexed(file("plot.png"));
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    gset_geometry("1280x1024");
    if (picture.width != bench_width || picture.height != bench_height ||
        gopen_gks(nullptr, 0) != 0 || gopen_ws(1, server.name().c_str(), ws_window) != 0) {
        std::puts("unable to make the picture");
        return 1;
    }
    const Glim page = {0, 1, 0, 0.8F};
    gset_ws_win(1, &page);
    gset_vp(tran_page, &page);
    gset_win(tran_page, &page);
    gsel_norm_tran(tran_page);
    goverlay_image_file(file("plot.png").c_str(), "", 0, 0);

    constexpr int rounds = 25;
    double alone = 1e9;
    double capture = 1e9;
    double dump = 1e9;
    for (int i = 0; i < rounds; ++i) {
        alone =
            std::min(alone, cost_ms(server, [&] { write_indexed(picture, file("alone.png")); }));
        capture = std::min(capture, cost_ms(server, [] {
                               IMG_report image;
                               gget_image(&image);
                           }));
        dump = std::min(dump, cost_ms(server, [&] { PNG_dump(file("dump.png").c_str()); }));
    }
    const bool same = read_indexed(file("dump.png")).pixels == picture.pixels;
    std::printf("libpng alone %.1f ms, capture %.1f ms, dump %.1f ms: ratio %.2f%s\n", alone,
                capture, dump, dump / alone, same ? "" : ", but another picture");
    gclose_ws(1);
    return same ? 0 : 1;
}
