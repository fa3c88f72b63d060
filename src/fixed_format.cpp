// fixed_format.cpp: numbers of no, two and six decimals, byte for byte as "%.0f",
// "%3.2f" and "%f". No state.

#include "fixed_format.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// "00" to "99".
constexpr auto digit_pairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

char* put_pair(char* out, std::uint32_t n) {
    std::memcpy(out, &digit_pairs[std::size_t{2} * n], 2);
    return out + 2;
}

// "0" to "999", as most coordinates of a page begin.
struct Whole {
    std::array<char, 3> text;
    std::uint8_t size;
};
constexpr auto small_wholes = [] {
    std::array<Whole, 1000> wholes{};
    for (std::uint32_t n = 0; n < wholes.size(); ++n) {
        Whole& whole = wholes[n];
        for (const std::uint32_t unit : {100U, 10U, 1U}) {
            if (n >= unit || unit == 1) {
                whole.text[whole.size++] = static_cast<char>('0' + n / unit % 10);
            }
        }
    }
    return wholes;
}();

// The whole part, without leading zeros. `out` has room for three characters.
char* put_whole(char* out, std::uint32_t n) {
    if (n < small_wholes.size()) {
        const Whole& whole = small_wholes[n];
        std::memcpy(out, whole.text.data(), whole.text.size());
        return out + whole.size;
    }
    return put_pair(put_whole(out, n / 100), n % 100);
}

// Adding 2^52 leaves no bits for a fraction: the sum is rounded to a whole
// number, ties to even, and its low bits are that number. Below 2^52.
std::uint64_t rounded(double value) {
    constexpr double shift = 4503599627370496.0;
    return std::bit_cast<std::uint64_t>(value + shift) - std::bit_cast<std::uint64_t>(shift);
}

} // namespace

char* format_fixed0(char* out, float value) {
    const double size = std::fabs(static_cast<double>(value));
    // False for NaN too.
    if (!(size < 1.0e9)) {
        return out + std::snprintf(out, fixed0_size, "%.0f", static_cast<double>(value));
    }
    if (std::signbit(value)) {
        *out++ = '-';
    }
    return put_whole(out, static_cast<std::uint32_t>(rounded(size)));
}

char* format_fixed2(char* out, float value) {
    // A float times 100 has at most 31 significant bits, so this is exact.
    const double hundredths = std::fabs(static_cast<double>(value) * 100.0);
    // False for NaN too.
    if (!(hundredths < 1.0e9)) {
        return out + std::snprintf(out, fixed2_size, "%3.2f", static_cast<double>(value));
    }
    const auto n = static_cast<std::uint32_t>(rounded(hundredths));
    if (std::signbit(value)) {
        *out++ = '-';
    }
    out = put_whole(out, n / 100);
    *out++ = '.';
    return put_pair(out, n % 100);
}

char* format_fixed6(char* out, float value) {
    constexpr std::uint64_t million = 1000000;
    // A float times 10^6 has at most 38 significant bits, so this is exact.
    const double millionths = std::fabs(static_cast<double>(value) * 1.0e6);
    if (!(millionths < 1.0e15)) {
        return out + std::snprintf(out, fixed6_size, "%f", static_cast<double>(value));
    }
    const std::uint64_t n = rounded(millionths);
    const auto decimals = static_cast<std::uint32_t>(n % million);
    if (std::signbit(value)) {
        *out++ = '-';
    }
    out = put_whole(out, static_cast<std::uint32_t>(n / million));
    *out++ = '.';
    out = put_pair(out, decimals / 10000);
    out = put_pair(out, decimals / 100 % 100);
    return put_pair(out, decimals % 100);
}
