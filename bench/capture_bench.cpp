// What an image of the window costs against libpng alone: PNG_dump, from the
// request to the server on, and libpng writing the same rows of palette
// indexes. The picture is that of the sample storm, 1280 by 1024. Counts the
// processor time of both processes, so that a busy machine says the same.
#include "gks_x11.h"
#include "nids_storm.h"
#include "run_program.h"
#include "x_server.h"
#include "zyrgks.h"
#include "zyrimg.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include <png.h>

namespace {

constexpr int width = 1280;
constexpr int height = 1024;

double used(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

// Milliseconds of this process and of the server.
template <typename Work> double cost(clockid_t server, Work work) {
    const double start = used(CLOCK_PROCESS_CPUTIME_ID) + used(server);
    work();
    return used(CLOCK_PROCESS_CPUTIME_ID) + used(server) - start;
}

// The picture as the program writes it: palette and rows of indexes.
struct Indexed {
    std::vector<png_color> palette;
    std::vector<png_byte> pixels;
};

Indexed read_indexed(const std::string& name) {
    IMG_report image;
    Indexed out;
    if (PNG_read(name.c_str(), &image, 0) == 1 && image.width == width && image.height == height) {
        for (int i = 0; i < image.num_colors; i++) {
            const IMG_color& c = image.colors[i];
            const auto byte = [](float part) { return static_cast<png_byte>(part * 255 + 0.5F); };
            out.palette.push_back({byte(c.red), byte(c.grn), byte(c.blu)});
        }
        out.pixels.assign(image.data, image.data + std::size_t{width} * height);
    }
    IMG_free(&image);
    return out;
}

void write_alone(const Indexed& picture, const std::string& name) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, picture.palette.data(), static_cast<int>(picture.palette.size()));
    png_write_info(png, info);
    for (int y = 0; y < height; y++) {
        png_write_row(png, &picture.pixels[std::size_t{width} * y]);
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

} // namespace

int main() {
    const XServer server(24, width, height);
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
    if (picture.pixels.empty() || gopen_gks(nullptr, 0) != 0 ||
        gopen_ws(1, server.name().c_str(), ws_window) != 0) {
        std::puts("unable to make the picture");
        return 1;
    }
    const Glim page = {0, 1, 0, 0.8F};
    gset_ws_win(1, &page);
    gset_vp(tran_page, &page);
    gset_win(tran_page, &page);
    gsel_norm_tran(tran_page);
    goverlay_image_file(file("plot.png").c_str(), "", 0, 0);

    clockid_t clock = 0;
    clock_getcpuclockid(server.pid(), &clock);
    constexpr int rounds = 25;
    double alone = 1e9;
    double capture = 1e9;
    double dump = 1e9;
    for (int i = 0; i < rounds; i++) {
        alone = std::min(alone, cost(clock, [&] { write_alone(picture, file("alone.png")); }));
        capture = std::min(capture, cost(clock, [] {
                               IMG_report image;
                               gget_image(&image);
                               IMG_free(&image);
                           }));
        dump = std::min(dump, cost(clock, [&] { PNG_dump(file("dump.png").c_str()); }));
    }
    const bool same = read_indexed(file("dump.png")).pixels == picture.pixels;
    std::printf("libpng alone %.1f ms, capture %.1f ms, dump %.1f ms: ratio %.2f%s\n", alone,
                capture, dump, dump / alone, same ? "" : ", but another picture");
    gclose_ws(1);
    return same ? 0 : 1;
}
