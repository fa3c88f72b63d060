// The weather is a field of reflectivity and one of wind over the plane around
// the radar, made of a few shapes with smooth edges and of noise at several
// scales.
#include "storm.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr float no_echo = -30.0F;

// --- Noise ------------------------------------------------------------------

// A number from 0 to 1 for a point of the lattice.
float lattice(int x, int y) {
    auto h =
        static_cast<std::uint32_t>(x) * 0x9E3779B1U ^ static_cast<std::uint32_t>(y) * 0x85EBCA77U;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return static_cast<float>((h ^ (h >> 15)) & 0xFFFFFFU) / 16777216.0F;
}

float smooth(float t) {
    return t * t * (3.0F - 2.0F * t);
}

// Smooth noise from -1 to 1 with features of `size` km.
float noise(float x, float y, float size) {
    const float fx = std::floor(x / size);
    const float fy = std::floor(y / size);
    const float u = smooth(x / size - fx);
    const float v = smooth(y / size - fy);
    const int ix = static_cast<int>(fx);
    const int iy = static_cast<int>(fy);
    const float low = std::lerp(lattice(ix, iy), lattice(ix + 1, iy), u);
    const float high = std::lerp(lattice(ix, iy + 1), lattice(ix + 1, iy + 1), u);
    return 2.0F * std::lerp(low, high, v) - 1.0F;
}

// Noise of three scales, each half as large and half as strong as the one
// before.
float rough(float x, float y, float size) {
    return (4.0F * noise(x, y, size) + 2.0F * noise(x + 71.3F, y - 13.7F, size / 2) +
            noise(x - 31.1F, y + 57.9F, size / 4)) /
           7.0F;
}

// --- Shapes -----------------------------------------------------------------

// 1 inside, 0 outside, with a soft edge of `width` around `at`.
float step_down(float value, float at, float width) {
    return 1.0F - smooth(std::clamp((value - at) / width + 0.5F, 0.0F, 1.0F));
}

// A bell of the distance from a centre, along and across a direction.
float bell(float x, float y, float cx, float cy, float east_of_north_deg, float along,
           float across) {
    const float a = east_of_north_deg * 0.0174533F;
    const float u = ((x - cx) * std::sin(a) + (y - cy) * std::cos(a)) / along;
    const float v = ((x - cx) * std::cos(a) - (y - cy) * std::sin(a)) / across;
    return std::exp(-(u * u + v * v));
}

// Sum of two echoes, which add as power.
float add_dbz(float a, float b) {
    const float high = std::max(a, b);
    return high - std::min(a, b) > 30.0F
               ? high
               : high + 10.0F * std::log10(1.0F + std::pow(10.0F, (std::min(a, b) - high) / 10.0F));
}

// An echo of `peak` dBZ that fades into nothing with the weight.
float echo(float peak, float weight) {
    return no_echo + (peak - no_echo) * std::clamp(weight, 0.0F, 1.0F);
}

// Distance from the point to a line of points, and how far along it (0 to 1).
struct Near {
    float distance, along;
};
template <std::size_t N> Near near_line(const float (&line)[N][2], float x, float y) {
    Near best = {1e9F, 0};
    for (std::size_t i = 0; i + 1 < N; ++i) {
        const float dx = line[i + 1][0] - line[i][0];
        const float dy = line[i + 1][1] - line[i][1];
        const float t = std::clamp(
            ((x - line[i][0]) * dx + (y - line[i][1]) * dy) / (dx * dx + dy * dy), 0.0F, 1.0F);
        const float d = std::hypot(x - line[i][0] - t * dx, y - line[i][1] - t * dy);
        if (d < best.distance) {
            best = {d, (static_cast<float>(i) + t) / static_cast<float>(N - 1)};
        }
    }
    return best;
}

// --- The weather ------------------------------------------------------------

// A right-moving supercell whose core is at (0, 0): the core, the forward
// flank and anvil toward the east-north-east, and a hook on its south-west
// side around a notch of weak echo.
float supercell(float x, float y) {
    constexpr float hook[][2] = {
        {-4.0F, 3.5F  },
        {-7.5F, -0.5F },
        {-8.6F, -5.0F },
        {-7.2F, -9.2F },
        {-3.8F, -11.2F},
        {-0.6F, -10.4F},
        {0.7F,  -8.0F },
        {-0.4F, -6.2F }
    };
    const float wx = x + 2.2F * noise(x, y, 7.0F);
    const float wy = y + 2.2F * noise(x + 50.0F, y, 7.0F);
    float dbz = echo(59.0F, bell(wx, wy, -1.0F, 3.0F, 60, 16.0F, 10.0F));
    dbz = std::max(dbz, echo(66.0F, bell(wx, wy, -1.5F, 3.0F, 45, 8.5F, 6.5F)));
    // Forward flank: sharp toward the inflow in the south, feathered downwind.
    const float flank = std::max(bell(wx, wy, 22.0F, 15.0F, 62, 32.0F, 15.0F),
                                 0.97F * bell(wx, wy, 9.0F, 8.0F, 62, 14.0F, 9.0F));
    const float inflow = step_down(-(wy - 0.35F * wx) - 3.0F, 0.0F, 7.0F);
    dbz = std::max(dbz, echo(50.0F + 4.0F * rough(x, y, 6.0F), flank * (0.25F + 0.75F * inflow)));
    const float anvil = bell(x, y, 52.0F, 36.0F, 58, 68.0F, 30.0F);
    dbz = std::max(dbz, echo(25.0F + 6.0F * rough(x, y, 14.0F), std::sqrt(anvil)));
    // Weak echo in the inflow notch, and the hook around it.
    const float notch = bell(wx, wy, -1.6F, -5.6F, 75, 6.0F, 3.6F);
    dbz = std::lerp(dbz, std::min(dbz, 16.0F), std::min(1.0F, 1.35F * notch));
    const Near n = near_line(hook, x + 0.5F * noise(x, y, 2.5F), y + 0.5F * noise(x, y + 9, 2.5F));
    const float width = 3.0F - 1.2F * n.along;
    const float peak = n.along > 0.85F ? 58.0F : 53.0F - 7.0F * n.along; // ball at the tip
    return std::max(dbz, echo(peak, std::exp(-n.distance * n.distance / (width * width))));
}

// The leading edge of the squall line at a point, ahead of the chord.
float squall_front(float x, float y) {
    return 38.0F * std::exp(-(y + 5.0F) * (y + 5.0F) / (88.0F * 88.0F)) - 0.0009F * y * y +
           6.0F * rough(y, 17.0F, 34.0F) + 2.5F * noise(x, y, 6.0F);
}

// A line of storms along y, bowing toward the east, with rain behind it. `x` is
// the distance ahead of the chord.
float squall_line(float x, float y) {
    const float behind = squall_front(x, y) - x; // km behind the leading edge
    const float ends = step_down(std::abs(y), 150.0F, 60.0F);
    // Cells along the line: stronger and weaker stretches, towers in them.
    const float cells = 0.85F + 0.10F * noise(y, 3.0F, 26.0F) + 0.16F * rough(x, y, 13.0F) +
                        0.05F * noise(x, y, 2.0F);
    const float tail = std::max(behind - 6.0F, 0.0F) / 11.0F;
    const float convective = step_down(-behind, 0.0F, 3.0F) * std::exp(-tail * tail);
    float dbz = echo(61.0F * cells, convective * ends);
    // Behind a gap, a wide area of steady rain with a brighter band in it.
    const float depth = 92.0F + 40.0F * rough(x, y, 70.0F) - 0.0015F * y * y;
    const float rain = step_down(-(behind - 9.0F), 0.0F, 9.0F) * step_down(behind, depth, 55.0F);
    const float bright = std::exp(-std::pow((behind - 52.0F) / 24.0F, 2.0F));
    const float steady =
        22.0F + 11.0F * bright + 9.0F * rough(x, y, 26.0F) + 2.5F * noise(x, y, 3.0F);
    dbz = std::max(dbz, echo(steady, rain * step_down(std::abs(y + 14.0F * noise(x, y, 30.0F)),
                                                      160.0F, 90.0F)));
    // Outflow boundary: a fine line of insects and dust ahead of the bow.
    const float ahead = -behind - 9.0F - 3.0F * noise(y, 40.0F, 25.0F);
    const float fine =
        std::exp(-ahead * ahead / 1.2F) * step_down(std::abs(y + 25.0F), 70.0F, 50.0F);
    return std::max(dbz, echo(14.0F + 5.0F * noise(x, y, 3.0F), fine));
}

// Small showers south of the supercell.
float showers(float x, float y) {
    constexpr float cells[][4] = {
        {58.0F,  -92.0F,  7.0F, 54.0F},
        {66.0F,  -84.0F,  5.0F, 45.0F},
        {22.0F,  -128.0F, 6.0F, 50.0F},
        {88.0F,  -58.0F,  4.0F, 40.0F},
        {104.0F, -112.0F, 8.0F, 48.0F}
    };
    float dbz = no_echo;
    for (const auto& c : cells) {
        const float wx = x + 2.5F * noise(x, y, 5.0F);
        const float wy = y + 2.5F * noise(x, y + 33.0F, 5.0F);
        dbz = std::max(dbz, echo(c[3], bell(wx, wy, c[0], c[1], 50, c[2] * 1.7F, c[2])));
        dbz = std::max(dbz,
                       echo(20.0F, bell(wx, wy, c[0] + 9, c[1] + 8, 50, c[2] * 3.2F, c[2] * 1.6F)));
    }
    return dbz;
}

// Ground clutter, and the insects of a warm afternoon, around the radar.
float near_radar(float x, float y, float range) {
    const float bugs = 15.0F + 5.0F * rough(x, y, 16.0F) + 4.0F * noise(x, y, 1.3F) - range / 5.0F;
    const float grain =
        lattice(static_cast<int>(std::floor(x / 0.7F)), static_cast<int>(std::floor(y / 0.7F)));
    const float patch = std::max(0.0F, rough(x + 9.0F, y - 4.0F, 9.0F) + 0.35F);
    const float clutter = 52.0F * grain * grain * patch * step_down(range, 16.0F, 26.0F);
    return std::max(bugs, clutter > 6.0F ? clutter : no_echo);
}

// The line's chord runs from the north-north-east to the south-south-west:
// position ahead of it and along it.
struct Chord {
    float ahead, along;
};
Chord chord(float x, float y) {
    constexpr float c = 0.9063F; // 25 degrees
    constexpr float s = 0.4226F;
    return {(x + 92.0F) * c - (y - 18.0F) * s, (x + 92.0F) * s + (y - 18.0F) * c};
}

constexpr float cell_x = 14.0F; // core of the supercell
constexpr float cell_y = -46.0F;
constexpr float cell_size = 1.45F;

// A vortex turning to the left around (0, 0), fastest on the circle of `core`
// km, that draws air in.
StormWind vortex(float x, float y, float core, float fastest, float inflow) {
    const float r = std::max(std::hypot(x, y), 0.01F);
    const float part = r < core ? r / core : std::pow(core / r, 1.2F);
    const float turn = fastest * part / r;
    const float draw = inflow * part / r;
    return {-turn * y - draw * x, turn * x - draw * y};
}

} // namespace

float storm_grain(int x, int y) {
    return lattice(x, y) - 0.5F;
}

float storm_dbz(float x, float y) {
    const float range = std::hypot(x, y);
    const Chord line = chord(x, y);
    float dbz = add_dbz(supercell((x - cell_x) / cell_size, (y - cell_y) / cell_size),
                        squall_line(line.ahead, line.along));
    dbz = add_dbz(dbz, showers(x, y));
    dbz += 1.6F * noise(x, y, 1.1F);
    // Far away the beam passes over the rain.
    dbz -= 16.0F * std::pow(std::max(range - 150.0F, 0.0F) / 200.0F, 2.0F);
    return add_dbz(dbz, near_radar(x, y, range));
}

float storm_mesocyclone_km(float x, float y) {
    return std::hypot(x - cell_x - cell_size * -1.2F, y - cell_y - cell_size * -6.4F);
}

StormWind storm_wind(float x, float y) {
    const float range = std::hypot(x, y);
    const float height = std::min(0.0087F * range + range * range / 17000.0F, 7.0F); // of the beam
    StormWind wind = {3.0F + 5.0F * height, 9.0F + 2.0F * height};
    // Behind the line's edge the outflow comes from the west-north-west, and
    // far behind it weakens.
    const Chord line = chord(x, y);
    const float behind = squall_front(line.ahead, line.along) - line.ahead;
    const float cold =
        step_down(-behind, 0.0F, 6.0F) * step_down(std::abs(line.along), 190.0F, 80.0F);
    const float jet = 25.0F * std::exp(-std::pow((line.along + 5.0F) / 75.0F, 2.0F)) *
                      step_down(behind, 40.0F, 60.0F);
    wind.east = std::lerp(wind.east, 6.0F + jet, cold);
    wind.north = std::lerp(wind.north, -3.0F - 0.25F * jet, cold);
    // The mesocyclone at the hook, with the downdraft on its south-west side.
    const float mx = x - cell_x - cell_size * -1.2F;
    const float my = y - cell_y - cell_size * -6.4F;
    const StormWind wide = vortex(mx, my, 5.0F, 19.0F, 4.0F);
    const StormWind tight = vortex(mx, my, 1.6F, 24.0F, 2.0F);
    const float rear = bell(mx, my, -5.0F, -4.5F, 45, 5.0F, 3.5F);
    wind.east += wide.east + tight.east + 13.0F * rear + 2.0F * noise(x, y, 5.0F);
    wind.north += wide.north + tight.north - 4.0F * rear + 2.0F * noise(x + 17.0F, y, 5.0F);
    return wind;
}
