// mosaic_writer: the bytes of mosaics, and the invented weather of the samples.
#include "mosaic_writer.h"

#include "map_proj.h"
#include "storm.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

constexpr double deg = std::numbers::pi / 180.0;
constexpr int nowrad_longest = 0xD000;
constexpr int kavrad_nx[] = {5120, 2560};
constexpr int kavrad_ny[] = {5760, 2880};
constexpr double kavrad_dx[] = {0.0128906, 0.0257812};
constexpr double kavrad_dy[] = {0.0085937, 0.0171874};

void append(Bytes& out, const std::string& text) {
    out.insert(out.end(), text.begin(), text.end());
}

// Byte by byte: GCC 12 takes the insertion of a list for an overflow.
void put(Bytes& out, std::initializer_list<int> bytes) {
    for (const int byte : bytes) {
        out.push_back(static_cast<std::uint8_t>(byte & 255));
    }
}

void tag(Bytes& out, std::uint8_t number) {
    put(out, {0x00, 0xF0, number});
}

void nowrad_run(Bytes& out, int index, int run) {
    const auto low = static_cast<std::uint8_t>(index);
    // A run of one column of index 0 before a mask byte would read as a tag:
    // the short form is left to other runs.
    if (run <= 13 && (index != 0 || run > 1)) {
        out.push_back(static_cast<std::uint8_t>((run - 1) << 4 | low));
    } else if (run <= 256) {
        put(out, {0xE0 | low, run - 1});
    } else {
        const int m = run - 1;
        put(out, {0xD0 | low, m, m >> 8});
    }
}

// Calls `put(value, run)` for the runs of a row.
template <typename Put>
void each_run(const MosaicCell& cell, int row, int nx, int longest, Put put) {
    for (int column = 0; column < nx;) {
        const int value = cell(row, column);
        int end = column + 1;
        while (end < nx && end - column < longest && cell(row, end) == value) {
            ++end;
        }
        put(value, end - column);
        column = end;
    }
}

std::string radians(std::initializer_list<double> degrees) {
    std::string text;
    for (const double number : degrees) {
        char word[40];
        std::snprintf(word, sizeof word, "%.9f ", number * deg);
        text += word;
    }
    return text;
}

int level(double dbz) {
    return static_cast<int>(std::clamp(dbz / 5.0, 0.0, 15.0));
}

// How much a place is in a blob: 1 at its middle, 0 outside.
double blob(double lat, double lon, double lat0, double lon0, double size_lat, double size_lon) {
    const double r = std::hypot((lat - lat0) / size_lat, (lon - lon0) / size_lon);
    return std::max(0.0, 1.0 - r);
}

} // namespace

NowradImage nowrad_latlon(int ny, int nx, double lon, double top, double dy, double dx) {
    NowradImage image;
    image.ny = ny;
    image.nx = nx;
    image.projection = radians({lon, top, 0.0, dy, dx});
    return image;
}

NowradImage nowrad_lambert(int ny, int nx) {
    NowradImage image;
    image.ny = ny;
    image.nx = nx;
    image.kind = 'L';
    image.title = "USRAD Hi               22:30 20-MAY-2019";
    image.projection = radians({60, 30, 39, -97, -96, 38.7, 0.01, 0.01});
    return image;
}

Bytes nowrad_header(const NowradImage& image) {
    Bytes out;
    tag(out, 0x09);
    put(out, {4, 'N', 'O', 'T', 'E', 0});
    tag(out, 0x0A);
    append(out, std::to_string(image.ny) + " " + std::to_string(image.nx));
    tag(out, 0x03);
    std::string title = image.title;
    title.resize(80, ' ');
    append(out, title);
    tag(out, 0x0B);
    out.push_back(static_cast<std::uint8_t>(image.kind));
    append(out, image.projection.substr(0, image.projection.find_last_not_of(' ') + 1));
    return out;
}

Bytes nowrad_file(const NowradImage& image, const MosaicCell& cell) {
    Bytes out = nowrad_header(image);
    for (int row = 0; row < image.ny; ++row) {
        tag(out, 0x0C);
        put(out, {row, row >> 8});
        each_run(cell, row, image.nx, nowrad_longest,
                 [&out](int value, int run) { nowrad_run(out, value, run); });
    }
    tag(out, 0x0F);
    return out;
}

Bytes kavrad_header(const KavradImage& image) {
    Bytes out(2048, 0);
    out[1996 + 14] = static_cast<std::uint8_t>(image.type);
    std::copy(image.date.begin(), image.date.end(), out.begin() + 1996 + 16);
    out[1996 + 38] = image.coarse ? 10 : 5;
    out[1996 + 43] = 1;
    out[1996 + 45] = 200;
    return out;
}

Bytes kavrad_file(const KavradImage& image, const MosaicCell& cell) {
    Bytes out = kavrad_header(image);
    const int nx = kavrad_nx[image.coarse ? 1 : 0];
    const int ny = kavrad_ny[image.coarse ? 1 : 0];
    for (int row = 0; row < ny; ++row) {
        int in_force = -1;
        each_run(cell, row, nx, 255 + 3, [&](int value, int run) {
            // A byte of one to three columns brings the value, the rest follows it.
            const int first = std::min(run, 3);
            out.push_back(static_cast<std::uint8_t>(first * 64 + value));
            in_force = value;
            const int rest = run - first;
            if (rest >= 32) {
                put(out, {0x24, rest});
            } else if (rest > 0) {
                out.push_back(static_cast<std::uint8_t>(rest));
            }
        });
    }
    out.push_back(0x21);
    return out;
}

float mosaic_dbz(double lat, double lon) {
    // The line bows eastward from Texas (30, -98) to Ohio (41, -82).
    const double along = (lat - 30.0) / 11.0;
    const double line = -98.0 + 16.0 * along + 1.6 * std::sin(along * 3.1);
    const double ahead = lon - line; // degrees east of the line
    const double ends = std::clamp(8.0 * std::min(along + 0.05, 1.05 - along), 0.0, 1.0);
    const auto grain =
        static_cast<double>(storm_grain(static_cast<int>(lon * 9), static_cast<int>(lat * 9)));
    double dbz = -10.0;
    if (ends > 0) {
        const double core = 62.0 * std::exp(-std::pow(ahead / 0.35, 2.0));
        const double rain = ahead < 0 && ahead > -3.5 ? 34.0 * (1.0 + ahead / 4.5) : 0.0;
        dbz = std::max(dbz, ends * std::max(core, rain) + 8.0 * grain - 4.0);
    }
    for (int i = 0; i < 24; ++i) { // showers over Florida and the Gulf
        const double lat0 = 25.5 + std::fmod(i * 1.37, 5.0);
        const double lon0 = -84.0 + std::fmod(i * 2.11, 4.5);
        dbz = std::max(dbz, 58.0 * blob(lat, lon, lat0, lon0, 0.22, 0.26) - 4.0 + 6.0 * grain);
    }
    dbz = std::max(dbz, 42.0 * blob(lat, lon, 46.5, -111.0, 3.0, 4.5) + 14.0 * grain - 9.0);
    return static_cast<float>(dbz);
}

Bytes nowrad_sample(char kind, int divisor) {
    if (kind == 'L') {
        // The grid that every file of the kind has.
        Domain domain;
        domain.proj = proj_lambert;
        domain.plat = 39.0F;
        domain.plon = -97.0F;
        domain.param[0] = 30.0F;
        domain.param[1] = 60.0F;
        domain.param[2] = 1.0F;
        domain.clat = 38.69F;
        domain.clon = -96.03F;
        domain.nx = 700 / divisor;
        domain.ny = 400 / divisor;
        domain.dx = 0.0722F;
        domain.dy = 0.0859F;
        const Map map = map_make(domain);
        return nowrad_file(nowrad_lambert(domain.ny, domain.nx), [&](int row, int column) {
            float lat = 0;
            float lon = 0;
            map.untran(map.limits.x_min + static_cast<float>(column) * domain.dx,
                       map.limits.y_max - static_cast<float>(row) * domain.dy, &lat, &lon);
            return level(mosaic_dbz(lat, lon));
        });
    }
    const int ny = 1837 / divisor;
    const int nx = 3661 / divisor;
    const double dy = 0.0167 * divisor;
    const double dx = 0.0185 * divisor;
    const double west = -97.5 - dx * (nx - 1) / 2;
    return nowrad_file(nowrad_latlon(ny, nx, -97.5, 53.0, dy, dx), [=](int row, int column) {
        return level(mosaic_dbz(53.0 - row * dy, west + column * dx));
    });
}

Bytes kavrad_sample(bool coarse) {
    const int i = coarse ? 1 : 0;
    const double top = 39.0 + kavrad_dy[i] * (kavrad_ny[i] - 1) / 2;
    const double west = -96.0 - kavrad_dx[i] * (kavrad_nx[i] - 1) / 2;
    KavradImage image;
    image.coarse = coarse;
    return kavrad_file(image, [=](int row, int column) {
        const int code = level(mosaic_dbz(top - row * kavrad_dy[i], west + column * kavrad_dx[i]));
        return code == 0 ? 16 : code;
    });
}

std::vector<std::pair<std::string, Bytes>> nowrad_samples() {
    const auto ramp = [](int row, int column) { return (row + column / 7) % 16; };
    return {
        {"latlon", nowrad_file(nowrad_latlon(12, 40, -97.3, 36.5, 0.11, 0.13), ramp)},
        {"lambert",    nowrad_file(nowrad_lambert(10,                           30),                        ramp)                            },
    };
}

std::vector<std::pair<std::string, Bytes>> kavrad_samples() {
    // A few runs and the end: whole grids are large.
    Bytes small = kavrad_header({});
    put(small, {0x48, 0x24, 0x28, 0x23, 0x23, 0x50, 0x23, 0xCA, 0x22, 0x05, 0x21});
    Bytes marked = kavrad_header({.coarse = false, .type = 'C', .date = " 5 0 0 1 1 5"});
    put(marked, {0x41, 0x1F, 0x84, 0x23, 0x23, 0x21});
    return {
        {"coarse", small },
        {"marked", marked},
    };
}
