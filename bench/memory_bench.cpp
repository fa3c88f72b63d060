// What pictures without a screen cost. A product of 360 by 460 bins with its map
// against a process that unpacks it and writes the same picture by libpng; a
// super-resolution product against bzip2, a bare filler of the same polygons and
// libpng, and against the same run with an X server; 200 products in one run against
// as many of these. Processor time, each the least of several taken in turn. Prints
// ratios, and fails beyond those allowed.
#include "bare_picture.h"
#include "nids_storm.h"
#include "page_floor.h"
#include "png_floor.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int rounds = 11;
constexpr int many = 200;
constexpr int few = 20;
constexpr char floor_word[] = "--floor";
// --- Floors ---------------------------------------------------------------------

// A picture as plain bytes, for the process that is the floor.
void keep_picture(const Indexed& picture, const std::string& name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "wb"), std::fclose);
    const std::array<int, 3> head = {picture.width, picture.height,
                                     static_cast<int>(picture.palette.size())};
    std::fwrite(head.data(), sizeof head, 1, file.get());
    std::fwrite(picture.palette.data(), sizeof(png_color), picture.palette.size(), file.get());
    std::fwrite(picture.pixels.data(), 1, picture.pixels.size(), file.get());
}

Indexed kept_picture(const char* name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name, "rb"), std::fclose);
    std::array<int, 3> head{};
    Indexed out;
    if (file == nullptr || std::fread(head.data(), sizeof head, 1, file.get()) != 1) {
        return out;
    }
    out.width = head[0];
    out.height = head[1];
    out.palette.resize(static_cast<std::size_t>(head[2]));
    out.pixels.resize(static_cast<std::size_t>(out.width) * static_cast<std::size_t>(out.height));
    const bool whole =
        std::fread(out.palette.data(), sizeof(png_color), out.palette.size(), file.get()) ==
            out.palette.size() &&
        std::fread(out.pixels.data(), 1, out.pixels.size(), file.get()) == out.pixels.size();
    return whole ? out : Indexed{};
}

// --- Measures -------------------------------------------------------------------

void measure_map(const TempDir& dir, const std::string& product) {
    const std::string out = dir.path() + "/map.png";
    const std::string raw = dir.path() + "/map.raw";
    const std::vector<std::string> args = {"-inp", "nids",       "-de",  "d,memory",
                                           "-of",  "png@" + out, product};
    const Run first = run_program(args);
    const Indexed picture = read_indexed(out);
    keep_picture(picture, raw);
    double program = 1e9;
    double floor = 1e9;
    for (int i = 0; i < rounds; ++i) {
        program = std::min(program, run_program(args).seconds);
        floor = std::min(floor,
                         run_self({floor_word, product, raw, dir.path() + "/floor.png"}).seconds);
    }
    std::printf("360 by 460 bins with the map, %d by %d, exit %d, peak %.1f MB\n", picture.width,
                picture.height, first.code, static_cast<double>(first.peak_kb) / 1024.0);
    judge("start, bzip2 and libpng", program * 1e3, floor * 1e3, 1.3, "ms");
}

void measure_super(const TempDir& dir, const std::string& product) {
    std::puts("720 by 1840 bins, the data alone");
    const Bare bare = measure_bare(dir, product, rounds);
    const std::string out = dir.path() + "/super.png";
    const XServer server(24, width, height);
    double memory = 1e9;
    double screen = 1e9;
    std::vector<std::string> in_window = data_alone(out, product);
    std::replace(in_window.begin(), in_window.end(), std::string("d,memory"), std::string("d"));
    for (int i = 0; i < rounds; ++i) {
        memory = std::min(memory, run_program(data_alone(out, product)).seconds * 1e3);
        if (server.works()) {
            setenv("DISPLAY", server.name().c_str(), 1);
            const double before = spent_ms(server.pid());
            const double client = run_program(in_window).seconds * 1e3;
            screen = std::min(screen, client + spent_ms(server.pid()) - before);
            unsetenv("DISPLAY");
        }
    }
    judge("bzip2, bare filler and libpng", memory, bare.ms, 1.5, "ms");
    if (server.works()) {
        judge("client and server, less a third", memory, screen, 1 / 1.5, "ms");
    }
}

Run draw_many(const std::string& pictures, const std::string& product, int count) {
    std::vector<std::string> args = data_alone(pictures + "/%i.png", product);
    args.insert(args.end(), static_cast<std::size_t>(count - 1), product);
    std::filesystem::remove_all(pictures);
    std::filesystem::create_directory(pictures);
    return run_program(args);
}

// Comes while this process is small: a child's figure begins with its parent's size.
void measure_memory(const TempDir& dir, const std::string& product) {
    const std::string pictures = dir.path() + "/pictures";
    const auto megabytes = [&](int count) {
        return static_cast<double>(draw_many(pictures, product, count).peak_kb) / 1024.0;
    };
    const double some = megabytes(few);
    std::puts("memory");
    judge("of 200 pictures, against 20", megabytes(many), some, 1.02, "MB");
}

void measure_many(const TempDir& dir, const std::string& product) {
    std::printf("%d products in one run, the data alone\n", many);
    const Bare bare = measure_bare(dir, product, rounds);
    const std::string pictures = dir.path() + "/pictures";
    Run all{.seconds = 1e9, .peak_kb = 0, .code = -1};
    for (int i = 0; i < 3; ++i) {
        const Run next = draw_many(pictures, product, many);
        all = next.seconds < all.seconds ? next : all;
    }
    const std::string last = pictures + "/" + std::to_string(many - 1) + ".png";
    if (all.code != 0 || read_indexed(last).pixels != bare.picture.pixels) {
        std::printf("  NOT WRITTEN, exit %d\n", all.code);
        ++failures;
    }
    judge("bzip2, bare filler and libpng", all.seconds * 1e3, bare.ms * many, 1.5, "ms");
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 5 && argv[1] == std::string(floor_word)) {
        unpack(argv[2]);
        write_indexed(kept_picture(argv[3]), argv[4]);
        return failures;
    }
    unsetenv("DISPLAY");
    MESS_set(0, 0);
    const TempDir dir;
    const auto write = [&dir](const char* name, const Bytes& bytes) {
        return dir.write(name, {bytes.begin(), bytes.end()});
    };
    const std::string storm = write("storm", nids_sample_storm(94));
    measure_memory(dir, storm);
    measure_map(dir, storm);
    measure_super(dir, write("super", nids_sample_storm(153)));
    measure_many(dir, storm);
    return failures == 0 ? 0 : 1;
}
