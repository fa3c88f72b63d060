// text_num.cpp: numbers out of untrusted text. No state.

#include "text_num.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>

int text_int(const char* text) {
    int value = 0;
    take_int(&text, &value);
    return value;
}

float text_float(const char* text) {
    float value = 0.0F;
    take_float(&text, &value);
    return value;
}

bool take_int(const char** text, int* value) {
    char* end = nullptr;
    const long n = std::strtol(*text, &end, 10);
    if (end == *text) {
        return false;
    }
    *value = static_cast<int>(std::clamp<long>(n, INT_MIN, INT_MAX));
    *text = end;
    return true;
}

bool take_float(const char** text, float* value) {
    char* end = nullptr;
    const float f = std::strtof(*text, &end);
    if (end == *text || !std::isfinite(f)) {
        return false;
    }
    *value = f;
    *text = end;
    return true;
}

bool take_char(const char** text, char c) {
    if (**text == '\0' || std::tolower(static_cast<unsigned char>(**text)) !=
                              std::tolower(static_cast<unsigned char>(c))) {
        return false;
    }
    ++*text;
    return true;
}

bool take_digits(const char** text, int width, int base, int* value) {
    int n = 0;
    int count = 0;
    for (; count < width; ++count) {
        const auto c = static_cast<unsigned char>((*text)[count]);
        int digit = 0;
        if (std::isdigit(c)) {
            digit = c - '0';
        } else if (base == 16 && std::isxdigit(c)) {
            digit = std::tolower(c) - 'a' + 10;
        } else {
            break;
        }
        n = n * base + digit;
    }
    if (count == 0) {
        return false;
    }
    *value = n;
    *text += count;
    return true;
}

int trunc_int(float value) {
    constexpr float limit = 2.0e9F;
    if (std::isnan(value)) {
        return 0;
    }
    return static_cast<int>(std::clamp(value, -limit, limit));
}
