#include "fixed_format.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

// Both formats of a value.
std::string ours(float value) {
    std::array<char, fixed2_size> two{};
    std::array<char, fixed6_size> six{};
    const std::string first(two.data(), format_fixed2(two.data(), value));
    return first + " " + std::string(six.data(), format_fixed6(six.data(), value));
}

std::string theirs(float value) {
    std::array<char, fixed2_size + fixed6_size> text{};
    std::snprintf(text.data(), text.size(), "%3.2f %f", static_cast<double>(value),
                  static_cast<double>(value));
    return text.data();
}

} // namespace

TEST(FixedFormat, KnownValues) {
    using limits = std::numeric_limits<float>;
    for (const float v : {0.0F,
                          -0.0F,
                          -0.001F,
                          0.004999F,
                          0.125F,
                          0.375F,
                          -0.125F,
                          0.995F,
                          9.995F,
                          99.995F,
                          1e5F,
                          -1e5F,
                          9999999.0F,
                          1e7F,
                          1.1e7F,
                          9.99999936e8F,
                          1e9F,
                          3e9F,
                          1e20F,
                          limits::max(),
                          limits::lowest(),
                          limits::denorm_min(),
                          limits::infinity(),
                          -limits::infinity(),
                          limits::quiet_NaN()}) {
        EXPECT_EQ(ours(v), theirs(v));
    }
}

TEST(FixedFormat, BytesOfPrintfForEveryKindOfValue) {
    std::mt19937 random(20);
    std::uniform_real_distribution<float> page(-1000.0F, 1000.0F);
    std::uniform_real_distribution<float> clamped(-100000.0F, 100000.0F);
    for (int i = 0; i < 300000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        const float tie = static_cast<float>(static_cast<int>(bits % 2000001) - 1000000) / 8.0F;
        for (const float v :
             {std::bit_cast<float>(bits), page(random), clamped(random), tie, tie / 16.0F}) {
            ASSERT_EQ(ours(v), theirs(v)) << "bits " << std::bit_cast<std::uint32_t>(v);
        }
    }
}
