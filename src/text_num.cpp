// text_num.cpp: numbers out of untrusted text. No state.

#include "text_num.h"

#include "text_scan.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>

namespace {

template <typename T> bool take_by(T (*read)(const char*, char**), const char** text, T* value) {
    char* end = nullptr;
    const T number = read(*text, &end);
    if (end == *text) {
        return false;
    }
    *value = number;
    *text = end;
    return true;
}

template <typename T, typename... Format>
bool take_chars(std::string_view* text, T* value, Format... format) {
    const auto [end, error] =
        std::from_chars(text->data(), text->data() + text->size(), *value, format...);
    if (error != std::errc()) {
        return false;
    }
    text->remove_prefix(static_cast<std::size_t>(end - text->data()));
    return true;
}

} // namespace

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

bool is_number(const char* text) {
    float value = 0.0F;
    return take_float(&text, &value) && *text == '\0';
}

bool take_int(const char** text, int* value) {
    long n = 0;
    if (!take_long(text, &n)) {
        return false;
    }
    *value = static_cast<int>(std::clamp<long>(n, INT_MIN, INT_MAX));
    return true;
}

bool take_long(const char** text, long* value, int base) {
    char* end = nullptr;
    const long n = std::strtol(*text, &end, base);
    if (end == *text) {
        return false;
    }
    *value = n;
    *text = end;
    return true;
}

bool take_float(const char** text, float* value) {
    const char* at = *text;
    float f = 0.0F;
    if (!take_real(&at, &f) || !std::isfinite(f)) {
        return false;
    }
    *value = f;
    *text = at;
    return true;
}

bool take_real(const char** text, float* value) {
    return take_by(std::strtof, text, value);
}

bool take_real(const char** text, double* value) {
    return take_by(std::strtod, text, value);
}

bool take_plain(std::string_view* text, int* value) {
    return take_chars(text, value);
}

bool take_plain(std::string_view* text, std::int64_t* value) {
    return take_chars(text, value);
}

bool take_plain(std::string_view* text, float* value, std::chars_format format) {
    const std::string_view before = *text;
    float number = 0.0F;
    if (!take_chars(text, &number, format)) {
        return false;
    }
    if (!std::isfinite(number)) {
        *text = before;
        return false;
    }
    *value = number;
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

int scan_int(const char** text, int width, int* value) {
    const char* at = *text;
    skip_blanks(&at);
    const bool negative = *at == '-';
    if ((*at == '-' || *at == '+') && width > 0) {
        ++at;
        --width;
    }
    if (width <= 0 || !is_digit(*at)) {
        return 0;
    }
    long long number = 0;
    for (; width > 0 && is_digit(*at); --width, ++at) {
        number = std::min(number * 10 + (*at - '0'), 1LL + INT_MAX);
    }
    number = negative ? -number : std::min(number, static_cast<long long>(INT_MAX));
    *value = static_cast<int>(number);
    *text = at;
    return 1;
}

int trunc_int(float value) {
    constexpr float limit = 2.0e9F;
    if (std::isnan(value)) {
        return 0;
    }
    return static_cast<int>(std::clamp(value, -limit, limit));
}
