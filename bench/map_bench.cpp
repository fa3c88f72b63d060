// What map lines cost: a PostScript plot of the whole United States with its
// counties, against a loop that only reads the same files and transforms the
// same points. Prints both and their ratio; fails above the ratio allowed.
#include "gks.h"
#include "map.h"
#include "maptran.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr double allowed = 3;
constexpr int rounds = 40;
constexpr std::array<const char*, 2> files{"us_cnty.map", "zyr.map"};

float f32be(const std::uint8_t* p) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(p[0]) << 24 |
                                static_cast<std::uint32_t>(p[1]) << 16 |
                                static_cast<std::uint32_t>(p[2]) << 8 | p[3]);
}

// Reads a file record by record and transforms its points. Returns their number.
long read_and_transform(const char* name, float* sum) {
    const std::string path = std::string(ZYR_SOURCE_DIR "/etc/") + name;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        std::perror(path.c_str());
        std::exit(2);
    }
    long points = 0;
    std::array<std::uint8_t, 22> head;
    std::array<std::uint8_t, 8000> data;
    while (std::fread(head.data(), 1, head.size(), file) == head.size()) {
        const std::size_t count = static_cast<std::size_t>(head[0]) << 8 | head[1];
        if (count == 0 || 8 * count > data.size() ||
            std::fread(data.data(), 8, count, file) != count) {
            break;
        }
        for (std::size_t i = 0; i < count; ++i) {
            float x = 0;
            float y = 0;
            MAP_tran(f32be(&data[8 * i]), f32be(&data[8 * i + 4]), &x, &y);
            *sum += x + y;
        }
        points += static_cast<long>(count);
    }
    (void)std::fclose(file);
    return points;
}

template <typename Work> double best_ms(Work work) {
    double best = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> spent =
            std::chrono::steady_clock::now() - start;
        best = std::min(best, spent.count());
    }
    return best;
}

} // namespace

int main() {
    MESS_set(0, mess_warn | mess_error);
    FLAG_resetplot(1);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("map_file", (std::string(files[0]) + "," + files[1]).c_str());
    RES_put("device", "p,/dev/null");
    Domain us;
    us.proj = proj_pstereo;
    us.clat = 39;
    us.clon = -97;
    us.nx = 25;
    us.ny = 17;
    us.dx = us.dy = 2.3F;
    int id = 0;
    Gws_type type = ws_none;
    Glim offset{0, 0, 0.04F, 0.04F};
    GPH_setup(&id, &type, 1.5F, &offset);
    MAP_setup(&us);

    float sum = 0;
    long points = 0;
    const double loop = best_ms([&] {
        points = 0;
        for (const char* name : files) {
            points += read_and_transform(name, &sum);
        }
    });
    const double plot = best_ms([] { MAP_draw(map_plain); });
    GPH_end(id);
    std::printf("map lines of the United States with counties, %ld points (sum %.0f)\n", points,
                static_cast<double>(sum));
    std::printf("  plot to PostScript   %7.2f ms\n  read and transform   %7.2f ms\n", plot, loop);
    std::printf("  ratio                %7.2f (at most %.1f)\n", plot / loop, allowed);
    return plot / loop <= allowed ? 0 : 1;
}
