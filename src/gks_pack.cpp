// gks_pack: the packed stream of a small page. Owns the one that is open. What is
// written runs through deflate and base 85 into the page, a piece at a time, so
// that a page of any length takes the same memory.

#include "gks_pack.h"

#include "no_memory.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include <zlib.h>

namespace {

// A level above takes twice the time for a tenth less.
constexpr int level = 5;
constexpr std::size_t line_length = 75;

// Four bytes become five characters from '!' on, the most significant first; four
// zeros a "z".
class Base85 {
public:
    void begin(std::FILE* page) {
        page_ = page;
        held_ = 0;
        used_ = 0;
    }
    void put(std::span<const std::uint8_t> bytes) {
        for (const std::uint8_t byte : bytes) {
            word_ = word_ << 8 | byte;
            if (++held_ == word_size) {
                put_word(word_size + 1);
                held_ = 0;
            }
        }
    }
    void end() {
        if (held_ > 0) {
            word_ <<= 8 * (word_size - held_);
            put_word(held_ + 1);
        }
        put_line();
        std::fputs("~>\n", page_);
    }

private:
    static constexpr int word_size = 4;

    // The first `count` digits of the word, of which five are all.
    void put_word(int count) {
        if (word_ == 0 && count > word_size) {
            put_character('z');
            return;
        }
        std::array<char, word_size + 1> digits{};
        for (std::size_t i = digits.size(); i-- > 0;) {
            digits[i] = static_cast<char>('!' + word_ % 85);
            word_ /= 85;
        }
        std::for_each_n(digits.begin(), count, [this](char digit) { put_character(digit); });
    }
    void put_character(char c) {
        if (used_ == 0 && c == '%') {
            line_[used_++] = ' '; // no line of the data is a comment of the page
        }
        line_[used_++] = c;
        if (used_ >= line_length) {
            put_line();
        }
    }
    void put_line() {
        line_[used_] = '\n';
        std::fwrite(line_.data(), 1, used_ + 1, page_);
        used_ = 0;
    }

    std::FILE* page_ = nullptr;
    std::uint32_t word_ = 0;
    int held_ = 0; // bytes in the word
    std::size_t used_ = 0;
    std::array<char, line_length + 2> line_{};
};

struct Pack {
    z_stream deflate{};
    Base85 text;
    std::array<char, std::size_t{1} << 16> buffer{}; // of the stream that is written to
};
Pack pack;

void run_deflate(int flush) {
    std::array<std::uint8_t, 4096> out{};
    do {
        pack.deflate.next_out = out.data();
        pack.deflate.avail_out = out.size();
        deflate(&pack.deflate, flush);
        pack.text.put(std::span(out).first(out.size() - pack.deflate.avail_out));
    } while (pack.deflate.avail_out == 0);
}

ssize_t take(void* /*cookie*/, const char* bytes, std::size_t size) {
    // zlib reads it alone; its type has no const.
    pack.deflate.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes));
    pack.deflate.avail_in = static_cast<uInt>(size);
    run_deflate(Z_NO_FLUSH);
    return static_cast<ssize_t>(size);
}

} // namespace

std::FILE* gpack_open(std::FILE* page) {
    pack.deflate = {};
    if (deflateInit(&pack.deflate, level) != Z_OK) {
        ZYR_no_memory();
    }
    pack.text.begin(page);
    std::FILE* const stream = ZYR_need(fopencookie(
        nullptr, "w", {.read = nullptr, .write = take, .seek = nullptr, .close = nullptr}));
    std::setvbuf(stream, pack.buffer.data(), _IOFBF, pack.buffer.size());
    return stream;
}

void gpack_close(std::FILE* stream) {
    std::fclose(stream);
    pack.deflate.avail_in = 0;
    run_deflate(Z_FINISH);
    deflateEnd(&pack.deflate);
    pack.text.end();
}
