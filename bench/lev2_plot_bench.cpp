// What plotting the first reflectivity scan of a Level II volume costs against
// the least that its work can cost: bzip2's own decompression of the units up to
// the end of that scan, plus a loop that writes the same polygons, or,
// for an image without a screen, plus a bare loop that fills them and libpng writing
// the same picture, or, for an image of the window, plus a bare client that sends them
// in place of the loop. Also the peak memory. Starts an X server of its own.
//   lev2_plot_bench [FILE...]     by default a written storm and real volumes
#include "bare_client.h"
#include "bare_picture.h"
#include "lev2_storm.h"
#include "page_floor.h"
#include "png_floor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <bzlib.h>

namespace {

constexpr std::size_t header_size = 24;
constexpr std::size_t length_size = 4;

// Whether unpacked records begin with a radial of another scan than the first.
bool is_beyond(const std::vector<char>& records) {
    constexpr std::size_t type_at = 15;
    constexpr std::size_t number_at = 50;
    return records[type_at] == 31 && records[number_at] > 1;
}

// Unpacks `*units` units of a volume, or below 0 those up to the end of its first scan,
// whose number it then is. Returns the bytes; 0 for one that is not packed.
std::size_t decompress(std::string& volume, std::vector<char>& out, int* units) {
    const int most = *units;
    *units = 0;
    std::size_t bytes = 0;
    for (std::size_t at = header_size; at + length_size < volume.size() && *units != most;) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < length_size; ++i) {
            bits = bits << 8 | static_cast<std::uint8_t>(volume[at + i]);
        }
        const auto size = static_cast<std::uint32_t>(std::abs(static_cast<std::int32_t>(bits)));
        at += length_size;
        auto room = static_cast<unsigned>(out.size());
        if (volume.compare(at, 3, "BZh") != 0 || size > volume.size() - at ||
            BZ2_bzBuffToBuffDecompress(out.data(), &room, volume.data() + at, size, 0, 0) !=
                BZ_OK) {
            break;
        }
        if (most < 0 && is_beyond(out)) {
            break;
        }
        ++*units;
        bytes += room;
        at += size;
    }
    return bytes;
}

// The areas of a page as a picture of some width and height shows them.
Polygons polygons_of(const Page& page, int wide, int high) {
    constexpr float page_width = 755; // points, between the margins of a sheet on its side
    const float scale = static_cast<float>(wide) / page_width;
    Polygons all;
    const float* xy = page.xy.data();
    for (std::size_t i = 0; i < page.points.size(); xy += 2 * page.points[i], ++i) {
        if (page.shades[i] < 0) {
            continue;
        }
        for (int k = 0; k < 2 * page.points[i]; k += 2) {
            const long x = std::lround(xy[k] * scale);
            const long y = high - 1 - std::lround(xy[k + 1] * scale);
            all.points.push_back({static_cast<short>(std::clamp(x, 0L, wide - 1L)),
                                  static_cast<short>(std::clamp(y, 0L, high - 1L))});
        }
        all.counts.push_back(page.points[i]);
        all.pixels.push_back(static_cast<unsigned long>(page.shades[i]));
    }
    return all;
}

// The first cut alone, without the map, bar and labels that no floor has.
std::vector<std::string> cut_alone(const std::string& file, const std::string& words,
                                   const std::vector<std::string>& output) {
    std::vector<std::string> args = {"-inp", "lev2z", "-dr", "sum", "-pp", "nobar" + words};
    args.insert(args.end(), output.begin(), output.end());
    args.push_back(file);
    return args;
}

// A volume that is not packed has no floor to speak of.
void say(const char* output, double program, double floor, bool packed) {
    std::printf("  to %-14s %.4f s against %.4f s; ratio %.2f%s\n", output, program, floor,
                program / floor, packed ? " (at most 1.3)" : "");
}

// The program draws into memory, writes the picture and ends.
void measure_memory(const std::string& file, const Page& page, double unzip, int rounds) {
    const std::string png = std::filesystem::temp_directory_path() / "zyr_lev2_bench.png";
    const Polygons all = polygons_of(page, width, height);
    Filler filler;
    double program = 1e9;
    double mapped = 1e9; // with map, bar and labels
    double write = 1e9;
    for (int i = 0; i < rounds; ++i) {
        program = std::min(
            program,
            run_program(cut_alone(file, "", {"-de", "d,memory", "-of", "png@" + png})).seconds);
        const Indexed picture = read_indexed(png);
        write = std::min(write, least_time(1, [&] {
                             filler.draw(all);
                             write_indexed(picture, png);
                         }));
        mapped = std::min(
            mapped,
            run_program({"-inp", "lev2z", "-de", "d,memory", "-of", "png@" + png, file}).seconds);
    }
    std::printf("  bzip2 %.4f s, bare filler and libpng %.4f s\n", unzip, write);
    say("PNG", program, unzip + write, unzip > 0);
    std::printf("  map, bar, labels %.4f s; ratio %.2f\n", mapped, mapped / (unzip + write));
    std::filesystem::remove(png);
}

// The program draws into a window, writes its image and ends.
void measure_window(const XServer& server, const std::string& file, const Page& page, double unzip,
                    int rounds) {
    const std::string png = std::filesystem::temp_directory_path() / "zyr_lev2_bench.png";
    const BareClient bare(server);
    Polygons all = polygons_of(page, bench_width, bench_height);
    double program = 1e9;
    double send = 1e9;
    double write = 1e9;
    for (int i = 0; i < rounds; ++i) {
        double run = 0;
        const double served = cost_ms(server, [&] {
            run = run_program(cut_alone(file, ",png=" + png, {"-de", "d", "-ge", "1280x1024"}))
                      .seconds;
            bare.sync();
        });
        program = std::min(program, run + served / 1e3);
        const Indexed picture = read_indexed(png);
        send = std::min(send, cost_ms(server, [&] { bare.draw(all); }) / 1e3);
        write = std::min(write, cost_ms(server, [&] {
                                    bare.fetch_image();
                                    write_indexed(picture, png);
                                }) / 1e3);
    }
    std::printf("  bzip2 %.4f s, bare client %.4f s, image and libpng %.4f s\n", unzip, send,
                write);
    say("window and PNG", program, unzip + send + write, unzip > 0);
    std::filesystem::remove(png);
}

// `peak_kb` was measured while this process was small: a child's figure begins
// with its parent's size.
void measure(const XServer& server, const std::string& file, long peak_kb, int rounds) {
    const std::string ps = std::filesystem::temp_directory_path() / "zyr_lev2_bench.ps";
    Run run;
    double program = 1e9;
    double exact = 1e9;
    for (int i = 0; i < 2 * rounds; ++i) { // in turn, as they differ by little
        exact = std::min(exact, run_program(cut_alone(file, ",exact", {"-de", "p," + ps})).seconds);
        run = run_program(cut_alone(file, "", {"-de", "p," + ps}));
        program = std::min(program, run.seconds);
    }
    const Page page = read_page(read_file(ps));
    std::string volume = read_file(file);
    std::vector<char> out(64 << 20);
    std::size_t bytes = 0;
    int units = -1;
    bytes = decompress(volume, out, &units);
    const double spent = least_time(rounds, [&] { bytes = decompress(volume, out, &units); });
    const double unzip = bytes > 0 ? spent : 0;
    const double write = least_time(rounds, [&] { write_page(page, ps); });
    std::printf("%s: exit %d, %zu figures, %d units of %zu bytes, peak %.1f MB\n", file.c_str(),
                run.code, page.points.size(), units, bytes, static_cast<double>(peak_kb) / 1024.0);
    std::printf("  bzip2 %.4f s, polygons written %.4f s\n", unzip, write);
    say("PostScript", program, unzip + write, unzip > 0);
    std::printf("  exact places   %.4f s; ratio %.2f (at most 1)\n", exact, exact / program);
    std::filesystem::remove(ps);
    measure_memory(file, page, unzip, rounds);
    if (server.works()) {
        measure_window(server, file, page, unzip, rounds);
    }
}

// The written storm as a file.
std::string write_storm() {
    const std::string name = std::filesystem::temp_directory_path() / "zyr_lev2_bench.ar2v";
    const Bytes storm = lev2_sample_storm();
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(storm.data()),
               static_cast<std::streamsize>(storm.size()));
    return name;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files(argv + 1, argv + argc);
    for (const char* name : {"KCRP20200101_000431_V06", "Level2_KFTG_20150430_1419.ar2v",
                             "KDMX20250101_225441_V06", "KTLX20100501_000444_V03"}) {
        const std::string file = std::string(ZYR_REAL_DATA "/level2/") + name;
        if (argc < 2 && std::filesystem::exists(file)) {
            files.push_back(file);
        }
    }
    const std::string storm = argc < 2 ? write_storm() : "";
    if (argc < 2) {
        files.push_back(storm);
    }
    std::vector<long> peaks;
    for (const auto& file : files) {
        peaks.push_back(run_program({"-inp", "lev2z", "-de", "p,/dev/null", file}).peak_kb);
    }
    const XServer server(24, bench_width, bench_height);
    if (server.works()) {
        setenv("DISPLAY", server.name().c_str(), 1);
    } else {
        std::puts("no Xvfb: no window is measured");
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        measure(server, files[i], peaks[i], 7);
    }
    std::filesystem::remove(storm);
    return 0;
}
