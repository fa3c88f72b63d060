// xdump: window dumps in the XWD layout: pixels and masks as the server gave
// them. No state. The reader takes what no other reader knows. Messages go to
// standard error.
//
// File, numbers most significant byte first:
//   25 x 4  header, see `XWDFileHeader`
//   n       window name with its closing zero: header_size - 100 bytes
//   16 n    colour records: pixel (4), 0 (4), red, green, blue (2 each), flags 7, 0
//   ...     height * bytes_line bytes of pixels
// Other programs write records of 12 bytes, without the zero after the pixel,
// single bits in any order, and pixels as planes: a bitmap for each bit, the
// highest first.
#include "img_kind.h"

#include "byte_reader.h"
#include "files.h"
#include "img_pixel.h"
#include "out_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr std::uint32_t header_bytes = 100;
constexpr std::uint32_t color_bytes = 16;
constexpr std::uint32_t short_color_bytes = 12; // of other programs
constexpr std::uint32_t most_side = 65535;
constexpr std::uint32_t pseudo_color = 3;
constexpr std::uint32_t true_color = 4;
constexpr std::uint32_t direct_color = 5;
constexpr std::uint32_t z_pixmap = 2; // 0 and 1: planes

// Fields in the order of the file, 4 bytes each.
struct XWDFileHeader {
    std::uint32_t header_size;
    std::uint32_t file_version = 7;
    std::uint32_t pixmap_format = 2; // Z
    std::uint32_t pixmap_depth;
    std::uint32_t pixmap_width;
    std::uint32_t pixmap_height;
    std::uint32_t xoffset = 0;
    std::uint32_t byte_order;
    std::uint32_t bitmap_unit = 32;
    std::uint32_t bitmap_bit_order;
    std::uint32_t bitmap_pad = 32;
    std::uint32_t bits_per_pixel;
    std::uint32_t bytes_per_line;
    std::uint32_t visual_class;
    std::uint32_t red_mask;
    std::uint32_t green_mask;
    std::uint32_t blue_mask;
    std::uint32_t bits_per_rgb = 8;
    std::uint32_t colormap_entries;
    std::uint32_t ncolors;
    std::uint32_t window_width;
    std::uint32_t window_height;
    std::uint32_t window_x = 0;
    std::uint32_t window_y = 0;
    std::uint32_t window_bdrwidth = 0;
};
using Field = std::uint32_t XWDFileHeader::*;
constexpr Field fields[] = {
    &XWDFileHeader::header_size,      &XWDFileHeader::file_version, &XWDFileHeader::pixmap_format,
    &XWDFileHeader::pixmap_depth,     &XWDFileHeader::pixmap_width, &XWDFileHeader::pixmap_height,
    &XWDFileHeader::xoffset,          &XWDFileHeader::byte_order,   &XWDFileHeader::bitmap_unit,
    &XWDFileHeader::bitmap_bit_order, &XWDFileHeader::bitmap_pad,   &XWDFileHeader::bits_per_pixel,
    &XWDFileHeader::bytes_per_line,   &XWDFileHeader::visual_class, &XWDFileHeader::red_mask,
    &XWDFileHeader::green_mask,       &XWDFileHeader::blue_mask,    &XWDFileHeader::bits_per_rgb,
    &XWDFileHeader::colormap_entries, &XWDFileHeader::ncolors,      &XWDFileHeader::window_width,
    &XWDFileHeader::window_height,    &XWDFileHeader::window_x,     &XWDFileHeader::window_y,
    &XWDFileHeader::window_bdrwidth,
};
static_assert(sizeof fields / sizeof fields[0] * 4 == header_bytes);

int fail(const char* text) {
    std::fputs(text, stderr);
    return 0;
}

// --- Writing --------------------------------------------------------------------

void put_be(std::vector<std::uint8_t>* out, std::uint32_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        out->push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

std::uint32_t u32(int value) {
    return static_cast<std::uint32_t>(value);
}

int num_colors(const IMG_report& image) {
    return image.colors == nullptr ? 0 : image.num_colors;
}

std::vector<std::uint8_t> header_of(const IMG_report& image) {
    XWDFileHeader h{};
    h.header_size = header_bytes + static_cast<std::uint32_t>(std::strlen(image.info)) + 1;
    h.pixmap_depth = u32(image.depth);
    h.pixmap_width = h.window_width = u32(image.width);
    h.pixmap_height = h.window_height = u32(image.height);
    h.byte_order = h.bitmap_bit_order = u32(image.byte_order);
    h.bits_per_pixel = u32(image.bits_pixel);
    h.bytes_per_line = u32(image.bytes_line);
    h.visual_class = image.color_type == 0 ? true_color : pseudo_color;
    h.red_mask = image.red;
    h.green_mask = image.grn;
    h.blue_mask = image.blu;
    h.colormap_entries = h.ncolors = u32(num_colors(image));
    std::vector<std::uint8_t> bytes;
    for (const Field field : fields) {
        put_be(&bytes, h.*field, 4);
    }
    return bytes;
}

std::vector<std::uint8_t> colors_of(const IMG_report& image) {
    constexpr std::uint32_t all_parts = 7;
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < num_colors(image); ++i) {
        const IMG_color& c = image.colors[i];
        put_be(&bytes, u32(i), 4);
        put_be(&bytes, 0, 4);
        for (const float part : {c.red, c.grn, c.blu}) {
            const auto value = std::lround(std::clamp(part, 0.0F, 1.0F) * 65535.0F);
            put_be(&bytes, static_cast<std::uint32_t>(value), 2);
        }
        put_be(&bytes, all_parts << 8, 2);
    }
    return bytes;
}

bool write_bytes(std::FILE* file, const void* data, std::size_t n) {
    return n == 0 || (std::fwrite(data, 1, n, file) == n && std::fflush(file) == 0);
}

// --- Reading --------------------------------------------------------------------

bool read_header(std::FILE* file, XWDFileHeader* h) {
    std::array<unsigned char, header_bytes> bytes{};
    if (!IMG_read_head(file, bytes.data(), bytes.size())) {
        return false;
    }
    ByteReader reader(bytes);
    for (const Field field : fields) {
        h->*field = reader.u32be();
    }
    return true;
}

// The name, cut at the size of `info`.
bool read_name(std::FILE* file, std::uint32_t length, IMG_report* image) {
    std::size_t used = 0;
    for (std::uint32_t i = 0; i < length; ++i) {
        const int c = std::getc(file);
        if (c == EOF) {
            return false;
        }
        if (used + 1 < sizeof image->info) {
            image->info[used++] = static_cast<char>(c);
        }
    }
    image->info[used] = '\0';
    return true;
}

bool by_planes(const XWDFileHeader& h) {
    return h.pixmap_format != z_pixmap;
}

std::uint64_t pixel_bytes(const XWDFileHeader& h) {
    return std::uint64_t{h.pixmap_height} * h.bytes_per_line * (by_planes(h) ? h.pixmap_depth : 1);
}

// Bytes of a colour record: the file's length decides.
std::uint32_t record_size(std::FILE* file, const XWDFileHeader& h) {
    const long here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0) {
        return color_bytes; // a pipe
    }
    const auto rest = static_cast<std::uint64_t>(std::ftell(file) - here);
    std::fseek(file, here, SEEK_SET);
    const bool is_short = rest == std::uint64_t{short_color_bytes} * h.ncolors + pixel_bytes(h);
    return is_short ? short_color_bytes : color_bytes;
}

// The place of a record in the table for one component: direct colour has a
// table for each.
std::uint32_t place_of(std::uint32_t pixel, std::uint32_t mask) {
    return mask == 0 ? pixel : (pixel & mask) >> std::countr_zero(mask);
}

// A record whose pixel lies outside the table is passed over.
bool read_colors(std::FILE* file, const XWDFileHeader& h, IMG_report* image) {
    const std::uint32_t count = h.ncolors;
    if (count > static_cast<std::uint32_t>(img_most_colors) ||
        (count > 0 && IMG_alloc_colors(image, static_cast<int>(count)) == 0)) {
        return false;
    }
    const bool direct = h.visual_class == direct_color;
    const std::uint32_t size = record_size(file, h);
    for (std::uint32_t i = 0; i < count; ++i) {
        std::array<unsigned char, color_bytes> record{};
        if (std::fread(record.data(), 1, size, file) != size) {
            return false;
        }
        ByteReader reader(record);
        const std::uint32_t pixel = reader.u32be();
        reader.skip(size - short_color_bytes);
        const auto take = [&](std::uint32_t mask, float IMG_color::*component) {
            const std::uint32_t at = place_of(pixel, direct ? mask : 0);
            const float level = static_cast<float>(reader.u16be()) / 65535.0F;
            if (at < count) {
                image->colors[at].*component = level;
            }
        };
        take(h.red_mask, &IMG_color::red);
        take(h.green_mask, &IMG_color::grn);
        take(h.blue_mask, &IMG_color::blu);
    }
    return true;
}

// Whether a row of the file holds `width` pixels, and all is of a size at all.
bool sound(const XWDFileHeader& h) {
    constexpr std::uint32_t low_24_bits = 0xFFFFFF; // where the masks of a record lie
    const std::uint32_t bits = by_planes(h) ? 1 : h.bits_per_pixel;
    const bool unit = h.bitmap_unit == 8 || h.bitmap_unit == 16 || h.bitmap_unit == 32;
    return h.pixmap_width >= 1 && h.pixmap_width <= most_side && h.pixmap_height >= 1 &&
           h.pixmap_height <= most_side && h.pixmap_format <= z_pixmap && bits >= 1 && bits <= 32 &&
           h.pixmap_depth >= 1 && h.pixmap_depth <= (by_planes(h) ? 24 : bits) &&
           h.byte_order <= 1 && h.bytes_per_line <= img_most_bytes &&
           (h.red_mask | h.green_mask | h.blue_mask) <= low_24_bits && (bits > 1 || unit) &&
           std::uint64_t{h.bytes_per_line} * 8 >= std::uint64_t{h.pixmap_width} * bits;
}

void take_header(const XWDFileHeader& h, IMG_report* image) {
    image->width = static_cast<int>(h.pixmap_width);
    image->height = static_cast<int>(h.pixmap_height);
    image->byte_order = static_cast<int>(h.byte_order);
    image->depth = static_cast<int>(h.pixmap_depth);
    image->bytes_line = static_cast<int>(h.bytes_per_line);
    image->bits_pixel = static_cast<int>(h.bits_per_pixel);
    if (h.bits_per_pixel == 8) { // a byte a pixel, however few of its bits count
        image->depth = 8;
    }
    // Direct colour without a table says by its masks alone what is meant. A capture
    // of direct colour is written as class 3 with masks, which tell it from a table.
    const bool masked =
        h.visual_class == true_color || (h.visual_class == direct_color && h.ncolors == 0);
    image->color_type = masked ? 0 : 1;
    image->red = h.red_mask;
    image->grn = h.green_mask;
    image->blu = h.blue_mask;
}

// Bit `x` of a row of single bits, in the order of the server that wrote it.
unsigned bit_of(const unsigned char* row, std::uint32_t x, const XWDFileHeader& h) {
    const bool swapped = (h.byte_order != 0) != (h.bitmap_bit_order != 0);
    const std::uint32_t byte = x / 8 ^ (swapped ? h.bitmap_unit / 8 - 1 : 0);
    const std::uint32_t at = byte < h.bytes_per_line ? byte : x / 8;
    return row[at] >> (h.bitmap_bit_order == 0 ? x % 8 : 7 - x % 8) & 1U;
}

// Planes of single bits become pixels of one bit, of a byte, or of four.
bool read_planes(std::FILE* file, const XWDFileHeader& h, IMG_report* image) {
    const bool single = h.pixmap_depth == 1;
    const int bytes = h.pixmap_depth <= 8 ? 1 : 4;
    image->bits_pixel = single ? 1 : 8 * bytes;
    image->depth = single ? 1 : bytes == 1 ? 8 : 24;
    image->byte_order = 0;
    image->bytes_line = single ? (image->width + 7) / 8 : image->width * bytes;
    if (IMG_alloc(image) == 0) {
        return false;
    }
    std::vector<unsigned char> row(h.bytes_per_line);
    for (std::uint32_t plane = h.pixmap_depth; plane-- > 0;) {
        for (std::uint32_t y = 0; y < h.pixmap_height; ++y) {
            if (std::fread(row.data(), 1, row.size(), file) != row.size()) {
                return false;
            }
            unsigned char* out = image->data.get() + std::size_t(image->bytes_line) * y;
            for (std::uint32_t x = 0; x < h.pixmap_width; ++x) {
                const unsigned bit = bit_of(row.data(), x, h);
                const std::size_t at = single ? x / 8 : std::size_t{x} * bytes + plane / 8;
                out[at] = static_cast<unsigned char>(out[at] | bit << (single ? x % 8 : plane % 8));
            }
        }
    }
    return true;
}

// Four bits a pixel: the high nibble comes first in a record.
void swap_nibbles(IMG_report* image) {
    const std::size_t size = std::size_t(image->bytes_line) * image->height;
    std::for_each_n(image->data.get(), size, [](unsigned char& byte) {
        byte = static_cast<unsigned char>(byte << 4 | byte >> 4);
    });
}

} // namespace

int XWD_encode(const char* filename, const IMG_report& image, const IMG_look& /*look*/) {
    OutputPtr file(open_output(filename, false));
    if (!file) {
        return fail("Unable to open dump file\n");
    }
    const auto header = header_of(image);
    if (!write_bytes(file.get(), header.data(), header.size())) {
        return fail("Unable to write dump file header\n");
    }
    if (!write_bytes(file.get(), image.info, std::strlen(image.info) + 1)) {
        return fail("Unable to write window name to dump file.\n");
    }
    const auto colors = colors_of(image);
    if (!write_bytes(file.get(), colors.data(), colors.size())) {
        return fail("Unable to write color map to dump file.\n");
    }
    const std::size_t size =
        image.bytes_line > 0 && image.height > 0 ? std::size_t(image.bytes_line) * image.height : 0;
    if (image.data == nullptr || !write_bytes(file.get(), image.data.get(), size)) {
        return fail("Unable to write to XWD file.\n");
    }
    return close_output(file.release()) == 0 ? 1 : fail("Unable to write to XWD file.\n");
}

int XWD_write(const char* filename, IMG_report* image) {
    return XWD_encode(filename, *image, {});
}

int XWD_read(const char* filename, IMG_report* image, int /*type*/) {
    const FILE_ptr file(FILE_open(filename, "rb"));
    if (!file) {
        return fail("Unable to open dump file\n");
    }
    XWDFileHeader h{};
    if (!read_header(file.get(), &h)) {
        return fail("Unable to read dump file header\n");
    }
    if (h.file_version != XWDFileHeader{}.file_version) {
        return fail("XWD file format version mismatch\n");
    }
    if (h.header_size < header_bytes) {
        return fail("XWD header size is too small.\n");
    }
    if (h.pixmap_depth > u32(image->depth)) {
        std::fprintf(stderr, "Incorrect depth: %u > %d\n", h.pixmap_depth, image->depth);
        return 0;
    }
    if (!read_name(file.get(), h.header_size - header_bytes, image)) {
        return fail("Unable to read window name from dump file.\n");
    }
    if (!read_colors(file.get(), h, image)) {
        return fail("Unable to read color map from dump file.\n");
    }
    if (!sound(h)) {
        return fail("Unable to read pixmap from dump file.\n");
    }
    take_header(h, image);
    if (by_planes(h) || h.bits_per_pixel == 1) {
        return read_planes(file.get(), h, image)
                   ? 1
                   : fail(image->data == nullptr ? "Unable to allocate data buffer.\n"
                                                 : "Unable to read pixmap from dump file.\n");
    }
    if (IMG_alloc_unset(image) == 0) {
        return fail("Unable to allocate data buffer.\n");
    }
    const std::size_t size = std::size_t(image->bytes_line) * image->height;
    if (std::fread(image->data.get(), 1, size, file.get()) != size) {
        return fail("Unable to read pixmap from dump file.\n");
    }
    if (h.bits_per_pixel == 4 && h.byte_order == 0) {
        swap_nibbles(image);
    }
    return 1;
}
