// gif: GIF files, written from a capture and read for an overlay. State: the
// settings of the writer. The LZW coder is in gif_lzw, the palette in
// img_pixel.
//
// File as written, numbers least significant byte first:
//   6     "GIF89a"
//   2, 2  width, height
//   1     0x80 + (bits - 1) * 16 + (bits - 1): global table, resolution, size
//   1, 1  background index 0, aspect 0
//   3 n   n = 2^bits colours: red, green, blue
//   8     transparent output alone: graphic control block
//   11    0x2C, left 0, top 0, width, height, 64 if interlaced, code size
//   ...   sub-blocks, an empty one, 0x3B
#include "gif_lzw.h"
#include "gif_parts.h"
#include "img_kind.h"
#include "img_pixel.h"

#include "files.h"
#include "out_file.h"
#include "state_keeper.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

namespace {

struct Settings {
    int use_inter = 0; // interlaced output
    int trans = 0;     // transparent background
};
Settings settings;

// Rows of an interlaced picture, pass by pass.
struct Pass {
    int first, step;
};
constexpr std::array<Pass, 4> passes = {
    {{0, 8}, {4, 8}, {2, 4}, {1, 2}}
};

// --- Writing --------------------------------------------------------------------

void write_header(std::FILE* file, const IMG_report& image, const IMG_indexed& picture, int bits) {
    std::fputs("GIF89a", file);
    GIF_bytes head;
    head.u16(image.width).u16(image.height).u8(0x80 + (bits - 1) * 16 + (bits - 1)).u8(0).u8(0);
    for (int i = 0; i < 1 << bits; ++i) {
        const IMG_rgb c = picture.color[i];
        head.u8(c.red).u8(c.grn).u8(c.blu);
    }
    if (settings.trans != 0) {
        constexpr int delay = 10;
        // Without a pixel of the background nothing is transparent.
        const bool there = picture.trans >= 0;
        head.u8(0x21).u8(0xF9).u8(4).u8(there ? 1 : 0).u16(delay);
        head.u8(there ? picture.trans : 0).u8(0);
    }
    head.u8(0x2C).u16(0).u16(0).u16(image.width).u16(image.height).u8(settings.use_inter * 64);
    head.write(file);
}

// --- Reading --------------------------------------------------------------------

// Where the decoded pixels go: rows of the image's rectangle on the screen.
struct Canvas {
    IMG_report* image;
    int left, top, width, height; // of the rectangle
    bool interlaced;
    int pass, row, column; // next pixel
};

void next_row(Canvas* c) {
    c->column = 0;
    if (!c->interlaced) {
        ++c->row;
        return;
    }
    c->row += passes[c->pass].step;
    while (c->row >= c->height && c->pass + 1 < static_cast<int>(passes.size())) {
        c->row = passes[++c->pass].first;
    }
}

void take_pixels(void* to, std::span<const std::uint8_t> pixels) {
    auto* c = static_cast<Canvas*>(to);
    while (!pixels.empty() && c->row < c->height) {
        const auto n = std::min<std::size_t>(pixels.size(), c->width - c->column);
        const int y = c->top + c->row;
        const int x = c->left + c->column;
        const int held = std::min(static_cast<int>(n), c->image->width - x);
        if (y < c->image->height && held > 0) {
            std::memcpy(c->image->data.get() + std::size_t(c->image->bytes_line) * y + x,
                        pixels.data(), static_cast<std::size_t>(held));
        }
        c->column += static_cast<int>(n);
        pixels = pixels.subspan(n);
        if (c->column == c->width) {
            next_row(c);
        }
    }
}

int u16(const unsigned char* p) {
    return p[0] | p[1] << 8;
}

bool read_bytes(std::FILE* file, unsigned char* out, std::size_t n) {
    return std::fread(out, 1, n, file) == n;
}

bool read_table(std::FILE* file, int count, IMG_report* image) {
    std::array<unsigned char, std::size_t{3} * img_palette_size> table{};
    if (!read_bytes(file, table.data(), std::size_t{3} * count)) {
        return false;
    }
    if (image->colors != nullptr) {
        return true; // a table of the image alone, beside that of the file
    }
    if (IMG_alloc_colors(image, count) == 0) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const unsigned char* c = &table[std::size_t{3} * i];
        image->colors[i] = {static_cast<float>(c[0]) / 255.0F, static_cast<float>(c[1]) / 255.0F,
                            static_cast<float>(c[2]) / 255.0F};
    }
    return true;
}

// The blocks of an extension, up to the empty one. Tells the transparent index.
bool skip_extension(std::FILE* file, IMG_report* image) {
    constexpr int graphic_control = 0xF9;
    const int label = std::getc(file);
    MESS_print(mess_debug, "GIF extension: %d\n", label);
    std::array<unsigned char, 256> block{};
    bool first = true;
    for (int size = std::getc(file); size != 0; size = std::getc(file)) {
        if (size < 0 || !read_bytes(file, block.data(), static_cast<std::size_t>(size))) {
            return false;
        }
        if (first && label == graphic_control && size >= 4 && (block[0] & 1) != 0) {
            image->trans_color = block[3];
        }
        first = false;
    }
    return true;
}

// Up to the first image descriptor, read after its label.
bool find_image(std::FILE* file, IMG_report* image, Canvas* canvas) {
    constexpr int extension = 0x21;
    constexpr int descriptor = 0x2C;
    constexpr int trailer = 0x3B;
    int label = std::getc(file);
    while (label != descriptor) {
        if (label < 0 || label == trailer || (label == extension && !skip_extension(file, image))) {
            return false;
        }
        label = std::getc(file);
    }
    std::array<unsigned char, 9> d{};
    if (!read_bytes(file, d.data(), d.size())) {
        return false;
    }
    const int flags = d[8];
    *canvas = {image, u16(&d[0]), u16(&d[2]), u16(&d[4]), u16(&d[6]), (flags & 0x40) != 0, 0, 0, 0};
    MESS_print(mess_debug, "GIF image: %d %d %d %d %d\n", canvas->left, canvas->top, canvas->width,
               canvas->height, flags);
    return (flags & 0x80) == 0 || read_table(file, 2 << (flags & 7), image);
}

int damaged(const char* filename) {
    MESS_print(mess_warn, "GIF_read: Damaged file: %s\n", filename);
    return 0;
}

} // namespace

int GIF_interlace(int value) {
    settings.use_inter = value != 0 ? 1 : 0;
    return 0;
}

int GIF_transparent(int value) {
    settings.trans = value != 0 ? 1 : 0;
    return 0;
}

bool GIF_is_interlaced() {
    return settings.use_inter != 0;
}

bool GIF_is_transparent() {
    return settings.trans != 0;
}

int GIF_index_bits(int count) {
    return std::max(1, static_cast<int>(std::bit_width(static_cast<unsigned>(count - 1))));
}

void GIF_put_pixels(std::FILE* file, int width, int height, const std::uint8_t* index, int bits) {
    const int code_size = std::max(bits, 2);
    const auto length = static_cast<std::size_t>(width);
    const auto put_row = [&](int row) {
        GIF_put_code({index + length * static_cast<std::size_t>(row), length});
    };
    std::putc(code_size, file);
    GIF_begin_code(file, code_size);
    if (settings.use_inter == 0) {
        for (int row = 0; row < height; ++row) {
            put_row(row);
        }
    } else {
        for (const Pass& pass : passes) { // a pass without rows writes nothing
            for (int row = pass.first; row < height; row += pass.step) {
                put_row(row);
            }
        }
    }
    GIF_end_code();
    std::putc(0, file);
}

int GIF_encode(const char* filename, const IMG_report& image, const IMG_look& look) {
    if (image.width > gif_most_side || image.height > gif_most_side) {
        MESS_print(mess_warn, "GIF_write: Image is too large: %dx%d\n", image.width, image.height);
        return 0;
    }
    if (!IMG_is_sound(image, "GIF_write")) {
        return 0;
    }
    OutputPtr file(open_output(filename, false));
    if (!file) {
        MESS_print(mess_warn, "Unable to open GIF file\n");
        return 0;
    }
    IMG_indexed picture;
    if (!IMG_make_indexed(image, look.background, &picture)) {
        return 0;
    }
    const int bits = GIF_index_bits(picture.num_color);
    write_header(file.get(), image, picture, bits);
    GIF_put_pixels(file.get(), image.width, image.height, picture.index.data(), bits);
    std::putc(0x3B, file.get());
    return close_output(file.release()) == 0 ? 1 : 0;
}

int GIF_read(const char* filename, IMG_report* image, int type) {
    IMG_init(image);
    const FILE_ptr file(FILE_open(filename, "rb"));
    if (!file) {
        MESS_print(mess_warn, "GIF_read: Unable to open file\n");
        return 0;
    }
    std::array<unsigned char, 6> magic{};
    std::array<unsigned char, 7> screen{};
    if (!IMG_read_head(file.get(), magic.data(), magic.size()) ||
        std::memcmp(magic.data(), "GIF", 3) != 0) {
        MESS_print(mess_warn, "GIF_read: Not a GIF file\n");
        return 0;
    }
    if (!read_bytes(file.get(), screen.data(), screen.size())) {
        return damaged(filename);
    }
    const int flags = screen[4];
    const int num_colors = 2 << (flags & 7);
    image->width = u16(&screen[0]);
    image->height = u16(&screen[2]);
    image->num_colors = num_colors;
    image->depth = 8;
    image->bits_pixel = 8;
    image->bytes_line = image->width;
    image->color_type = 1;
    copy_text(image->info, sizeof image->info, "GIF");
    if (type == 1) {
        return 1;
    }
    image->num_colors = 0;
    Canvas canvas{};
    if ((flags & 0x80) != 0 && !read_table(file.get(), num_colors, image)) {
        return damaged(filename);
    }
    if (IMG_alloc(image) == 0) {
        MESS_print(mess_warn, "Unable to allocate data buffer.\n");
        return 0;
    }
    if (!find_image(file.get(), image, &canvas)) {
        return damaged(filename);
    }
    const int code_size = std::getc(file.get());
    constexpr int most_bits = 8;
    if (code_size < 2 || code_size > most_bits || canvas.width == 0 ||
        !GIF_decode(file.get(), code_size, take_pixels, &canvas)) {
        return damaged(filename);
    }
    if (canvas.row < canvas.height) {
        MESS_print(mess_warn, "GIF_read: Pixels are missing: %s\n", filename);
    }
    return 1;
}

void keep_gif(StateKeeper& keeper) {
    keeper.keep(settings);
}
