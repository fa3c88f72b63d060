// gks_palette.h: the colour table (gks_palette.cpp), which gks_colr.cpp alone fills.
#pragma once

#include "gks.h"

#include <algorithm>
#include <array>
#include <cstdint>

constexpr int no_pixel = -1; // of an index that has none yet

struct Gpalette {
    std::array<int, num_colrs> color_ind{}; // pixels
    std::array<float, num_colrs> red{};
    std::array<float, num_colrs> grn{};
    std::array<float, num_colrs> blu{};
    int max_color_ind = 0;        // highest index used
    int inverse = 0;              // 1: black on white
    Gcolor_finder find = nullptr; // of the program's colour names
};
Gpalette& gpalette();

// A component within its range; what is no number is 0.
inline float gcolor_component(float value) {
    return value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}
// A component as window systems count it, to 65535.
inline std::uint16_t gcolor_level(float value) {
    constexpr float full = 65535.0F;
    return static_cast<std::uint16_t>(gcolor_component(value) * full);
}
