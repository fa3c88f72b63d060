// byte_reader.h: bounds-checked reading of big-endian numbers from a block of bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

// Reads numbers from front to back. A read that would pass the end gives 0
// (or an empty span) and leaves the reader failed for good; test ok() once per
// record. Numbers are put together unsigned and made signed last.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool ok() const { return ok_; }
    [[nodiscard]] std::size_t position() const { return at_; }
    [[nodiscard]] std::size_t remaining() const { return ok_ ? bytes_.size() - at_ : 0; }

    std::uint8_t u8() {
        const auto b = bytes(1);
        return b.empty() ? std::uint8_t{0} : b[0];
    }

    std::uint16_t u16be() { return static_cast<std::uint16_t>(number<2>()); }
    std::int16_t i16be() { return static_cast<std::int16_t>(u16be()); }
    std::uint32_t u32be() { return number<4>(); }
    std::int32_t i32be() { return static_cast<std::int32_t>(u32be()); }
    float f32be() {
        const std::uint32_t bits = u32be();
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    // The next `n` bytes, empty when fewer are left.
    std::span<const std::uint8_t> bytes(std::size_t n) {
        if (!ok_ || n > bytes_.size() - at_) {
            ok_ = false;
            return {};
        }
        const auto part = bytes_.subspan(at_, n);
        at_ += n;
        return part;
    }
    void skip(std::size_t n) { static_cast<void>(bytes(n)); }

    // Goes to an offset from the front; one past the last byte is allowed.
    void seek(std::size_t offset) {
        ok_ = ok_ && offset <= bytes_.size();
        at_ = ok_ ? offset : at_;
    }

private:
    template <std::size_t N> std::uint32_t number() {
        std::uint32_t value = 0;
        for (const std::uint8_t b : bytes(N)) {
            value = value << 8 | b;
        }
        return value;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
    bool ok_ = true;
};
