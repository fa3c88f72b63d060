// png: PNG files, written from a capture as 256-colour pictures and read for an
// overlay. libpng does the format. No state.
//
// libpng reports an error by a jump back into the routine that called
// setjmp; those routines own nothing and hold nothing that has a destructor.
#include "img_kind.h"
#include "img_pixel.h"

#include "files.h"
#include "no_memory.h"
#include "out_file.h"

#include <array>
#include <csetjmp>
#include <cstdlib>
#include <ctime>
#include <vector>

#include <png.h>
#include <zlib.h>

namespace {

constexpr int signature_size = 8;

void silent_warning(png_structp, png_const_charp) {}

[[noreturn]] void jump_back(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

// For libpng, which takes its way through jump_back when there is none.
void* take_memory(png_structp, png_alloc_size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr) {
        ZYR_note_no_memory();
    }
    return block;
}

void free_memory(png_structp, void* block) {
    std::free(block);
}

// --- Writing --------------------------------------------------------------------

struct Writer {
    Writer()
        : png(png_create_write_struct_2(PNG_LIBPNG_VER_STRING, nullptr, jump_back, silent_warning,
                                        nullptr, take_memory, free_memory)),
          info(png == nullptr ? nullptr : png_create_info_struct(png)) {}
    ~Writer() { png_destroy_write_struct(&png, &info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    png_structp png;
    png_infop info;
};

struct TextLine {
    std::array<char, 16> key;
    std::array<char, 80> text;
};

// What the writer puts into the file, in the words of libpng.
struct WriteJob {
    std::FILE* file;
    png_uint_32 width, height;
    std::array<png_color, img_palette_size> palette;
    std::vector<png_text> text;
    png_bytepp rows;
};

// Packs a row by its runs alone. Pictures of radar are runs of one colour: of eleven
// of them, products of 16 and 256 levels, with maps, of 640 by 512 and 1280 by 1024,
// libpng takes
//
//   level 1   15.1 ms, 544 KB      level 6   71.6 ms, 372 KB
//   level 2   16.9 ms, 507 KB      level 9    660 ms, 343 KB
//   level 4   23.5 ms, 442 KB      runs      13.0 ms, 441 KB
void pack_by_runs(png_structp png) {
    png_set_compression_level(png, 1);
    png_set_compression_strategy(png, Z_RLE);
}

bool write_png(png_structp png, png_infop info, WriteJob* job) {
    if (setjmp(png_jmpbuf(png)) != 0) { // NOLINT(cert-err52-cpp): the library's way
        return false;
    }
    png_init_io(png, job->file);
    pack_by_runs(png);
    png_set_IHDR(png, info, job->width, job->height, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, job->palette.data(), img_palette_size);
    png_set_text(png, info, job->text.data(), static_cast<int>(job->text.size()));
    png_write_info(png, info);
    png_write_image(png, job->rows);
    png_write_end(png, info);
    return true;
}

std::array<TextLine, 3> text_lines(const char* title) {
    std::array<TextLine, 3> lines{
        {{{"Title"}, {}}, {{"Software"}, {"ZYR - Sky Foundry v5.0"}}, {{"Creation Time"}, {}}}
    };
    copy_text(lines[0].text.data(), lines[0].text.size(), title);
    const std::time_t now = creation_time();
    std::tm utc{};
    if (gmtime_r(&now, &utc) != nullptr) {
        std::strftime(lines[2].text.data(), lines[2].text.size(), "%d %b %Y %H:%M:%S GMT", &utc);
    }
    return lines;
}

png_text plain_text(char* key, char* text) {
    png_text line{};
    line.compression = PNG_TEXT_COMPRESSION_NONE;
    line.key = key;
    line.text = text;
    return line;
}

// --- Reading --------------------------------------------------------------------

struct Reader {
    Reader()
        : png(png_create_read_struct_2(PNG_LIBPNG_VER_STRING, nullptr, jump_back, silent_warning,
                                       nullptr, take_memory, free_memory)),
          info(png == nullptr ? nullptr : png_create_info_struct(png)) {}
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    png_structp png;
    png_infop info;
};

struct Header {
    png_uint_32 width, height;
    int bit_depth, color_type, passes;
    std::size_t row_bytes;
    int num_palette;
    png_colorp palette; // libpng's own
};

// Up to the pixels. Grey with alpha comes as colour, 16 bits as 8; the alpha
// byte is before the colour, where a 32-bit pixel has nothing.
bool read_header(png_structp png, png_infop info, std::FILE* file, Header* h) {
    if (setjmp(png_jmpbuf(png)) != 0) { // NOLINT(cert-err52-cpp): the library's way
        return false;
    }
    // Texts, profiles and the like are passed over: their sizes are the file's word.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_init_io(png, file);
    png_set_sig_bytes(png, signature_size);
    png_read_info(png, info);
    png_get_IHDR(png, info, &h->width, &h->height, &h->bit_depth, &h->color_type, nullptr, nullptr,
                 nullptr);
    if (h->bit_depth == 16) {
        png_set_strip_16(png);
    }
    if (h->bit_depth == 1) {
        png_set_packswap(png); // the lowest bit of a byte first
    }
    if (h->color_type == PNG_COLOR_TYPE_GRAY_ALPHA) {
        png_set_gray_to_rgb(png);
    }
    if ((h->color_type & PNG_COLOR_MASK_ALPHA) != 0) {
        png_set_swap_alpha(png);
    }
    h->passes = png_set_interlace_handling(png);
    png_get_PLTE(png, info, &h->palette, &h->num_palette);
    png_read_update_info(png, info);
    h->row_bytes = png_get_rowbytes(png, info);
    return true;
}

bool read_rows(png_structp png, png_infop info, const Header& h, unsigned char* data) {
    if (setjmp(png_jmpbuf(png)) != 0) { // NOLINT(cert-err52-cpp): the library's way
        return false;
    }
    for (int pass = 0; pass < h.passes; ++pass) {
        for (png_uint_32 row = 0; row < h.height; ++row) {
            png_read_row(png, data + h.row_bytes * row, nullptr);
        }
    }
    png_read_end(png, info);
    return true;
}

void take_header(const Header& h, IMG_report* image) {
    copy_text(image->info, sizeof image->info, "PNG");
    image->width = static_cast<int>(h.width);
    image->height = static_cast<int>(h.height);
    image->bytes_line = static_cast<int>(h.row_bytes);
    image->byte_order = 1;
    const int bits = h.bit_depth == 16 ? 8 : h.bit_depth;
    const bool palette = h.color_type == PNG_COLOR_TYPE_PALETTE;
    if (palette || h.color_type == PNG_COLOR_TYPE_GRAY) {
        image->depth = bits;
        image->bits_pixel = bits;
    } else {
        image->depth = 3 * bits;
        image->bits_pixel = 8 * image->bytes_line / image->width;
        image->red = 0xFF0000;
        image->grn = 0xFF00;
        image->blu = 0xFF;
    }
    image->color_type = palette ? 1 : 0;
}

bool take_palette(const Header& h, IMG_report* image) {
    if (h.color_type != PNG_COLOR_TYPE_PALETTE) {
        return true;
    }
    if (h.palette == nullptr || IMG_alloc_colors(image, h.num_palette) == 0) {
        return false;
    }
    for (int i = 0; i < h.num_palette; ++i) {
        const png_color& c = h.palette[i];
        image->colors[i] = {static_cast<float>(c.red) / 255.0F,
                            static_cast<float>(c.green) / 255.0F,
                            static_cast<float>(c.blue) / 255.0F};
    }
    return true;
}

} // namespace

int PNG_encode(const char* filename, const IMG_report& image, const IMG_look& look) {
    if (!IMG_is_sound(image, "PNG_write")) {
        return 0;
    }
    OutputPtr file(open_output(filename, false));
    if (!file) {
        MESS_print(mess_warn, "Unable to open PNG file\n");
        return 0;
    }
    IMG_indexed picture;
    if (!IMG_make_indexed(image, look.background, &picture)) {
        return 0;
    }
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<std::size_t>(image.height));
    for (int row = 0; row < image.height; ++row) {
        rows.push_back(picture.index.data() + static_cast<std::size_t>(image.width) * row);
    }
    std::array<TextLine, 3> lines = text_lines(look.title);
    WriteJob job{};
    job.file = file.get();
    job.width = static_cast<png_uint_32>(image.width);
    job.height = static_cast<png_uint_32>(image.height);
    job.rows = rows.data();
    for (int i = 0; i < img_palette_size; ++i) {
        const IMG_rgb c = picture.color[i];
        job.palette[i] = {c.red, c.grn, c.blu};
    }
    for (TextLine& line : lines) {
        job.text.push_back(plain_text(line.key.data(), line.text.data()));
    }
    std::vector<IMG_text> texts = image.texts; // libpng asks for text that it might change
    for (IMG_text& line : texts) {
        job.text.push_back(plain_text(line.key.data(), line.text.data()));
    }
    const Writer writer;
    const bool written = writer.info != nullptr && write_png(writer.png, writer.info, &job);
    return written && close_output(file.release()) == 0 ? 1 : 0;
}

int PNG_read(const char* filename, IMG_report* image, int type) {
    IMG_init(image);
    const FILE_ptr file(FILE_open(filename, "rb"));
    std::array<unsigned char, signature_size> signature{};
    if (!file || !IMG_read_head(file.get(), signature.data(), signature.size()) ||
        png_sig_cmp(signature.data(), 0, signature.size()) != 0) {
        return 0;
    }
    const Reader reader;
    Header header{};
    if (reader.info == nullptr || !read_header(reader.png, reader.info, file.get(), &header) ||
        header.row_bytes > img_most_bytes) {
        return 0;
    }
    take_header(header, image);
    if (type == 1) {
        return 1;
    }
    if (!take_palette(header, image)) {
        return 0;
    }
    if (IMG_alloc(image) == 0) {
        MESS_print(mess_warn, "Unable to allocate data buffer.\n");
        return 0;
    }
    return read_rows(reader.png, reader.info, header, image->data.get()) ? 1 : 0;
}
