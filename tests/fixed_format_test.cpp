#include "fixed_format.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>

namespace {

// All formats of a value.
std::string ours(float value) {
    std::array<char, fixed0_size> none{};
    std::array<char, fixed2_size> two{};
    std::array<char, fixed6_size> six{};
    const std::string first(two.data(), format_fixed2(two.data(), value));
    return std::string(none.data(), format_fixed0(none.data(), value)) + " " + first + " " +
           std::string(six.data(), format_fixed6(six.data(), value));
}

std::string theirs(float value) {
    std::array<char, fixed0_size + fixed2_size + fixed6_size> text{};
    const auto v = static_cast<double>(value);
    std::snprintf(text.data(), text.size(), "%.0f %3.2f %f", v, v, v);
    return text.data();
}

} // namespace

TEST(FixedFormat, KnownValues) {
    std::istringstream words("0 -0 -0.001 0.004999 0.125 0.375 -0.125 0.995 9.995 99.995 1e5 -1e5 "
                             "9999999 1e7 1.1e7 9.99999936e8 1e9 3e9 1e20 3.4028235e38 "
                             "-3.4028235e38 1e-45 inf -inf nan");
    for (std::string word; words >> word;) {
        const float v = std::strtof(word.c_str(), nullptr);
        EXPECT_EQ(ours(v), theirs(v)) << word;
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
