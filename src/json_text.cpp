// json_text: texts of JSON. No state.
#include "json_text.h"

#include <array>
#include <cmath>
#include <cstdio>

std::string iso_time(const Date& date) {
    std::array<char, 80> text{};
    if (!is_set(date.year) || !is_set(date.month) || !is_set(date.day)) {
        return "";
    }
    if (!is_set(date.hour)) {
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", date.year, date.month, date.day);
    } else {
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", date.year,
                      date.month, date.day, date.hour, is_set(date.min) ? date.min : 0,
                      is_set(date.sec) ? date.sec : 0);
    }
    return text.data();
}

std::string json_number(double value, int decimals) {
    std::array<char, 60> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

bool json_is_known(float value) {
    return is_set(value) && std::isfinite(value);
}

std::string json_quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte >= 0x7F) {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", byte);
            out += escape.data();
        } else {
            out += c;
        }
    }
    return out + "\"";
}
