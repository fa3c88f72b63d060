// string.cpp: splitting, comparing, cleaning and testing of text, contour
// labels, and the one bounded copy. No state; nothing here prints.
#include "zyr.h"

#include "no_memory.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

// Longest label that set_num writes, the closing zero included.
constexpr std::size_t label_size = 40;

unsigned char uchar(char c) {
    return static_cast<unsigned char>(c);
}

int lower(char c) {
    return std::tolower(uchar(c));
}

// Removes the characters that `drop` names; the text closes up.
template <class Drop> void remove_if(char* text, Drop drop) {
    char* end = text + std::strlen(text);
    *std::remove_if(text, end, drop) = '\0';
}

// Removes a run of `c` at the end.
void trim_end(char* text, char c) {
    std::size_t n = std::strlen(text);
    while (n > 0 && text[n - 1] == c) {
        --n;
    }
    text[n] = '\0';
}

} // namespace

int parse_string(const char* text, char delimiter, int* count, char*** array) {
    *count = 0;
    *array = nullptr;
    std::string_view body = text == nullptr ? "" : text;
    while (!body.empty() && body.back() == delimiter) {
        body.remove_suffix(1);
    }
    if (body.empty()) {
        return -1;
    }
    // One block: the pointers, then the copy they point into. A caller that
    // moves its pointers about still frees the right address.
    const auto fields =
        1 + static_cast<std::size_t>(std::count(body.begin(), body.end(), delimiter));
    const std::size_t head = fields * sizeof(char*);
    auto* block = static_cast<char*>(ZYR_need(std::malloc(head + body.size() + 1)));
    char* copy = block + head;
    std::memcpy(copy, body.data(), body.size());
    copy[body.size()] = '\0';
    auto** list = static_cast<char**>(static_cast<void*>(block));
    for (std::size_t i = 0; i < fields; ++i) {
        list[i] = copy;
        char* end = std::strchr(copy, delimiter);
        if (end != nullptr) {
            *end = '\0';
            copy = end + 1;
        }
    }
    *count = static_cast<int>(fields);
    *array = list;
    return 0;
}

void free_parsed_array(int /*count*/, char** array) {
    std::free(array);
}

int stricmp(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) {
        return 1;
    }
    while (*a != '\0' && lower(*a) == lower(*b)) {
        ++a;
        ++b;
    }
    return lower(*a) - lower(*b);
}

int strnicmp(const char* a, const char* b, int n) {
    if (a == nullptr || b == nullptr) {
        return 1;
    }
    for (; n > 0; --n, ++a, ++b) {
        if (lower(*a) != lower(*b)) {
            return lower(*a) - lower(*b);
        }
        if (*a == '\0') {
            break;
        }
    }
    return 0;
}

int searchstr(char** array, int count, const char* text) {
    for (int i = 0; i < count; ++i) {
        if (stricmp(array[i], text) == 0) {
            return 1;
        }
    }
    return 0;
}

int fill_string(char* text, char a, char b) {
    std::replace(text, text + std::strlen(text), a, b);
    return 0;
}

int strip_string(char* text, char c) {
    remove_if(text, [c](char have) { return have == c; });
    return 0;
}

int wstrim_string(char* text) {
    remove_if(text, [](char c) { return c == '\n' || c == '\r'; });
    return trim_string(text);
}

int trim_string(char* text) {
    trim_end(text, ' ');
    return 0;
}

int trim_cr_string(char* text) {
    trim_end(text, '\r');
    return 0;
}

int strip_spaces(char* text) {
    trim_string(text);
    char* end = std::unique(text, text + std::strlen(text),
                            [](char a, char b) { return a == ' ' && b == ' '; });
    *end = '\0';
    return 0;
}

int strip_escape(char* text) {
    bool escaped = false;
    remove_if(text, [&escaped](char c) {
        escaped = c == '\\' && !escaped;
        return escaped;
    });
    return 0;
}

int up_string(char* text) {
    for (; *text != '\0'; ++text) {
        if (*text >= 'a' && *text <= 'z') {
            *text = static_cast<char>(*text - 'a' + 'A');
        }
    }
    return 0;
}

int low_string(char* text) {
    for (; *text != '\0'; ++text) {
        if (*text >= 'A' && *text <= 'Z') {
            *text = static_cast<char>(*text - 'A' + 'a');
        }
    }
    return 0;
}

int string_is_num(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    const std::string_view digits = *text == '-' ? text + 1 : text;
    return !digits.empty() && std::all_of(digits.begin(), digits.end(), is_digit) ? 1 : 0;
}

int string_is_alpha(const char* text) {
    const std::string_view all = text == nullptr ? "" : text;
    const auto is_letter = [](char c) { return std::isalpha(uchar(c)) != 0; };
    return !all.empty() && std::all_of(all.begin(), all.end(), is_letter) ? 1 : 0;
}

int string_is_blank(const char* text) {
    const std::string_view all = text == nullptr ? "" : text;
    return std::all_of(all.begin(), all.end(), [](char c) { return uchar(c) < 33; }) ? 1 : 0;
}

int string_is_float(const char* text) {
    return text != nullptr && std::strpbrk(text, ".E") != nullptr ? 1 : 0;
}

int set_num(char* buffer, const char* format, float value) {
    int part[3] = {0, 0, 0}; // width, decimals, least decimals
    const char* at = format;
    for (int& number : part) {
        if (scan_int(&at, any_width, &number) == 0) {
            break;
        }
        number = std::clamp(number, 0, 20);
        if (*at++ != '.') {
            break;
        }
    }
    int width = std::min(part[0] < 1 ? part[1] + 1 : part[0], 9);
    if (std::abs(value) < 1e-5F) {
        value = 0;
    }
    int e = 2;
    if (value != 0 && std::isfinite(value)) {
        e = static_cast<int>(std::floor(std::log10(std::abs(value))));
    }
    const int decimals = std::max(part[1] - (e + 1), part[2]);
    width = std::max(width, decimals);
    std::snprintf(buffer, label_size, "%*.*f", width, decimals, static_cast<double>(value));
    return 0;
}

int copy_text(char* out, std::size_t size, const char* text) {
    if (size == 0) {
        return -1;
    }
    const std::string_view all = text == nullptr ? "" : text;
    const std::size_t n = std::min(all.size(), size - 1);
    std::memmove(out, all.data(), n); // a text may be cut inside its own buffer
    out[n] = '\0';
    return n == all.size() ? 0 : -1;
}
