// img_pixel: pixels of an image record as numbers and as places in a palette.
// No state.
#include "img_pixel.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <span>

namespace {

// Bits that a pixel takes in a line.
int stored_bits(const IMG_report& image) {
    if (image.bits_pixel == 32) {
        return 32;
    }
    return image.depth == 15 ? 16 : image.depth;
}

constexpr int table_bits = 10;
constexpr std::size_t table_size = std::size_t{1} << table_bits;

// Place of each pixel value met, by hashing. Holds at most 256 of 1024 slots.
class Places {
public:
    Places() { slots.fill(-1); }
    // Place in the palette, or -1 and the slot where it belongs.
    int find(std::uint32_t value, std::size_t* slot) const {
        std::size_t at = (value * 2654435761U) >> (32 - table_bits);
        while (slots[at] >= 0 && values[at] != value) {
            at = (at + 1) % table_size;
        }
        *slot = at;
        return slots[at];
    }
    void put(std::size_t slot, std::uint32_t value, int place) {
        slots[slot] = static_cast<std::int16_t>(place);
        values[slot] = value;
    }

private:
    std::array<std::int16_t, table_size> slots{};
    std::array<std::uint32_t, table_size> values{};
};

// The palette while it is being made.
class Builder {
public:
    Builder(const IMG_report& image, std::uint32_t background, IMG_indexed* out)
        : coloring(image), back(background), to(out) {}

    std::uint8_t place(std::uint32_t value) {
        std::size_t slot = 0;
        int at = places.find(value, &slot);
        if (at < 0 && to->num_color < img_palette_size) {
            at = to->num_color++;
            places.put(slot, value, at);
            to->color[at] = coloring(value);
            if (value == back) {
                to->trans = at;
            }
        }
        return static_cast<std::uint8_t>(std::max(at, 0));
    }

private:
    IMG_coloring coloring;
    Places places;
    std::uint32_t back;
    IMG_indexed* to;
};

// Pixels of fewer than 8 bits; the lowest bit first at 1 bit, else the highest.
std::uint32_t packed_value(const unsigned char* line, int x, int bits) {
    const int per_byte = 8 / bits;
    const unsigned byte = line[x / per_byte];
    const int step = x % per_byte;
    const int shift = bits == 1 ? step : 8 - bits * (step + 1);
    return (byte >> shift) & ((1U << bits) - 1U);
}

// Where the run of equal values that begins at `x` ends.
std::size_t end_of_run(std::span<const std::uint32_t> values, std::size_t x) {
    constexpr std::size_t step = 8; // compared at a time: most runs are long
    const std::uint32_t value = values[x];
    for (; x + step <= values.size(); x += step) {
        std::uint32_t others = 0;
        for (std::size_t i = 0; i < step; ++i) {
            others |= values[x + i] ^ value;
        }
        if (others != 0) {
            break;
        }
    }
    while (x < values.size() && values[x] == value) {
        ++x;
    }
    return x;
}

} // namespace

int IMG_line_pixels(const IMG_report& image) {
    const int bits = stored_bits(image);
    return bits < 1 ? 0 : static_cast<int>(std::int64_t{image.bytes_line} * 8 / bits);
}

void IMG_row_values(const IMG_report& image, int row, int count, std::uint32_t* values) {
    const unsigned char* p = image.data.get() + std::size_t(image.bytes_line) * row;
    const int held = std::min(count, IMG_line_pixels(image));
    const bool high_first = image.byte_order == 1;
    switch (const int bits = stored_bits(image)) {
    case 32:
        if (!high_first && std::endian::native == std::endian::little) {
            std::memcpy(values, p, std::size_t{4} * std::max(held, 0));
            std::for_each(values, values + std::max(held, 0),
                          [](auto& value) { value &= 0xFFFFFF; });
            break;
        }
        for (int x = 0; x < held; ++x, p += 4) {
            values[x] = high_first ? std::uint32_t(p[1]) << 16 | std::uint32_t(p[2]) << 8 | p[3]
                                   : std::uint32_t(p[2]) << 16 | std::uint32_t(p[1]) << 8 | p[0];
        }
        break;
    case 24:
        for (int x = 0; x < held; ++x, p += 3) {
            values[x] = high_first ? std::uint32_t(p[0]) << 16 | std::uint32_t(p[1]) << 8 | p[2]
                                   : std::uint32_t(p[2]) << 16 | std::uint32_t(p[1]) << 8 | p[0];
        }
        break;
    case 16:
        for (int x = 0; x < held; ++x, p += 2) {
            values[x] =
                high_first ? std::uint32_t(p[0]) << 8 | p[1] : std::uint32_t(p[1]) << 8 | p[0];
        }
        break;
    case 8:
        std::copy_n(p, held, values);
        break;
    case 4:
    case 2:
    case 1:
        for (int x = 0; x < held; ++x) {
            values[x] = packed_value(p, x, bits);
        }
        break;
    default: // no pixel of this program has so many bits
        std::fill_n(values, held, 0U);
        break;
    }
    std::fill(values + std::max(held, 0), values + count, 0U);
}

IMG_coloring::IMG_coloring(const IMG_report& from)
    : image(&from), red(split(from.red)), grn(split(from.grn)), blu(split(from.blu)) {}

IMG_coloring::Mask IMG_coloring::split(std::uint32_t mask) {
    return {mask, mask == 0 ? 0 : std::countr_zero(mask), std::popcount(mask)};
}

std::uint8_t IMG_coloring::component(std::uint32_t value, const Mask& mask) {
    const std::uint32_t part = (value & mask.mask) >> mask.shift;
    return static_cast<std::uint8_t>(mask.bits <= 8 ? part << (8 - mask.bits)
                                                    : part >> (mask.bits - 8));
}

IMG_rgb IMG_coloring::operator()(std::uint32_t value) const {
    if (image->color_type == 1 && image->colors != nullptr) {
        const bool direct = IMG_is_direct(*image);
        const auto part = [&](const Mask& mask, float IMG_color::*component) {
            const std::uint32_t at = direct ? (value & mask.mask) >> mask.shift : value;
            const bool held = at < static_cast<std::uint32_t>(image->num_colors);
            const float level = held ? std::clamp(image->colors[at].*component, 0.0F, 1.0F) : 0.0F;
            // A hair more, so that whole values survive the float.
            return static_cast<std::uint8_t>(level * 255.0F + 0.001F);
        };
        return {part(red, &IMG_color::red), part(grn, &IMG_color::grn), part(blu, &IMG_color::blu)};
    }
    if (red.mask == 0 && grn.mask == 0 && blu.mask == 0) { // grey levels
        const std::uint32_t most = image->depth < 8 ? (1U << image->depth) - 1U : 255U;
        const auto grey = static_cast<std::uint8_t>(std::min(value, most) * 255U / most);
        return {grey, grey, grey};
    }
    return {component(value, red), component(value, grn), component(value, blu)};
}

bool IMG_is_direct(const IMG_report& image) {
    const int bits =
        std::max({std::popcount(image.red), std::popcount(image.grn), std::popcount(image.blu)});
    return image.color_type == 1 && image.colors != nullptr && bits > 0 &&
           std::int64_t{image.num_colors} <= std::int64_t{1} << bits;
}

bool IMG_is_sound(const IMG_report& image, const char* caller) {
    constexpr std::array<int, 7> known = {1, 2, 4, 8, 16, 24, 32};
    const bool sound = image.data != nullptr && image.width > 0 && image.height > 0 &&
                       image.bytes_line > 0 &&
                       std::size_t(image.width) * std::size_t(image.height) <= img_most_pixels &&
                       std::find(known.begin(), known.end(), stored_bits(image)) != known.end();
    if (!sound) {
        MESS_print(mess_warn, "%s: Unable to write %dx%d pixels of depth %d\n", caller, image.width,
                   image.height, image.depth);
    }
    return sound;
}

bool IMG_make_indexed(const IMG_report& image, std::uint32_t background, IMG_indexed* out) {
    *out = {};
    const auto width = static_cast<std::size_t>(image.width);
    std::vector<std::uint32_t> values;
    try {
        out->index.resize(width * static_cast<std::size_t>(image.height));
        values.resize(width);
    } catch (const std::bad_alloc&) {
        return false;
    }
    const bool padded = IMG_line_pixels(image) > image.width;
    Builder builder(image, background, out);
    std::uint8_t* index = out->index.data();
    for (int row = 0; row < image.height; ++row) {
        IMG_row_values(image, row, image.width, values.data());
        for (std::size_t x = 0; x < width;) { // by runs of one value
            const std::size_t end = end_of_run(values, x);
            std::memset(index + x, builder.place(values[x]), end - x);
            x = end;
        }
        index += width;
        if (padded) {
            builder.place(0);
        }
    }
    return true;
}

bool IMG_read_head(std::FILE* file, unsigned char* out, std::size_t n) {
    constexpr char note[] = {'*', '*', ' '};
    if (n < sizeof note || std::fread(out, 1, sizeof note, file) != sizeof note) {
        return false;
    }
    if (std::memcmp(out, note, sizeof note) == 0) {
        int c = 0;
        while ((c = std::getc(file)) != EOF && c != '\n') {
        }
        return std::fread(out, 1, n, file) == n;
    }
    return std::fread(out + sizeof note, 1, n - sizeof note, file) == n - sizeof note;
}
