// wx_tool: compass points. Owns no state.
#include "wx_tool.h"

#include "zyr.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 16> compass = {"N",  "NNE", "NE", "ENE", "E",  "ESE",
                                                      "SE", "SSE", "S",  "SSW", "SW", "WSW",
                                                      "W",  "WNW", "NW", "NNW"};
constexpr float compass_step = 22.5F;

} // namespace

float dir_decode(const char* str) {
    const std::string_view text = str == nullptr ? "" : str;
    for (std::size_t i = 0; i < compass.size(); ++i) {
        if (compass[i] == text) {
            return static_cast<float>(i) * compass_step;
        }
    }
    return missing_f;
}
