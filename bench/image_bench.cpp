// How long image files of a capture of 1280 x 1024 pixels take: the palette
// alone; GIF coding and decoding, and the same by giflib, if the bench was built
// with it; PNG writing, and the same rows by libpng alone. Times are the best of
// several, taken in turns.
#include "gif_lzw.h"
#include "image_sample.h"
#include "img_pixel.h"
#include "memory_file.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#ifdef ZYR_HAVE_GIFLIB
#include <gif_lib.h>
#endif
#include <png.h>

namespace {

constexpr int width = 1280;
constexpr int height = 1024;
constexpr std::size_t pixels = std::size_t{width} * height;

// Of the processor, so that other programs count little.
template <class F> double milliseconds(F&& work) {
    const std::clock_t start = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

constexpr int rounds = 15;

template <class F> double best_of(F&& work) {
    double best = 1e9;
    for (int i = 0; i < rounds; ++i) {
        best = std::min(best, milliseconds(work));
    }
    return best;
}

// In turns, so that a busy machine slows both.
template <class F, class G>
void compare(const char* what, F&& ours, const char* whose, G&& theirs) {
    double best = 1e9;
    double other = 1e9;
    for (int i = 0; i < rounds; ++i) {
        best = std::min(best, milliseconds(ours));
        other = std::min(other, milliseconds(theirs));
    }
    std::printf("  %s %.1f ms  %s %.1f ms  ratio %.2f\n", what, best, whose, other, best / other);
}

struct File {
    std::FILE* stream = std::tmpfile();
    File() = default;
    ~File() {
        if (stream != nullptr) {
            std::fclose(stream);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
};

// --- GIF ------------------------------------------------------------------------

constexpr int code_size = 8;

void encode(std::FILE* file, const std::vector<std::uint8_t>& index) {
    std::rewind(file);
    GIF_begin_code(file, code_size);
    for (std::size_t at = 0; at < pixels; at += width) {
        GIF_put_code({index.data() + at, width});
    }
    GIF_end_code();
    std::putc(0, file);
    std::fflush(file);
}

void take(void* to, std::span<const std::uint8_t> part) {
    auto*& at = *static_cast<std::uint8_t**>(to);
    at = std::copy(part.begin(), part.end(), at);
}

void decode(std::FILE* file, std::vector<std::uint8_t>* out) {
    std::rewind(file);
    std::uint8_t* at = out->data();
    GIF_decode(file, code_size, take, &at);
}

#ifdef ZYR_HAVE_GIFLIB
int write_bytes(GifFileType* gif, const GifByteType* data, int n) {
    return static_cast<int>(
        std::fwrite(data, 1, static_cast<std::size_t>(n), static_cast<std::FILE*>(gif->UserData)));
}
int read_bytes(GifFileType* gif, GifByteType* data, int n) {
    return static_cast<int>(
        std::fread(data, 1, static_cast<std::size_t>(n), static_cast<std::FILE*>(gif->UserData)));
}

void giflib_encode(std::FILE* file, std::vector<std::uint8_t>* index) {
    std::rewind(file);
    int error = 0;
    GifFileType* gif = EGifOpen(file, write_bytes, &error);
    ColorMapObject* map = GifMakeMapObject(img_palette_size, nullptr);
    EGifPutScreenDesc(gif, width, height, 8, 0, map);
    EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr);
    for (std::size_t at = 0; at < pixels; at += width) {
        EGifPutLine(gif, index->data() + at, width);
    }
    EGifCloseFile(gif, &error);
    GifFreeMapObject(map);
    std::fflush(file);
}

void giflib_decode(std::FILE* file, std::vector<std::uint8_t>* out) {
    std::rewind(file);
    int error = 0;
    GifFileType* gif = DGifOpen(file, read_bytes, &error);
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    DGifGetRecordType(gif, &type);
    DGifGetImageDesc(gif);
    for (std::size_t at = 0; at < pixels; at += width) {
        DGifGetLine(gif, out->data() + at, width);
    }
    DGifCloseFile(gif, &error);
}
#endif

void bench_gif(const IMG_indexed& picture) {
    std::vector<std::uint8_t> index = picture.index;
    std::vector<std::uint8_t> out(pixels);
    const File ours;
    const auto code = [&] { encode(ours.stream, index); };
    const auto read = [&] { decode(ours.stream, &out); };
#ifdef ZYR_HAVE_GIFLIB
    const File other;
    std::vector<std::uint8_t> same = index; // giflib writes over what it takes
    compare("GIF coding", code, "giflib", [&] { giflib_encode(other.stream, &same); });
    compare("GIF decoding", read, "giflib", [&] { giflib_decode(other.stream, &same); });
#else
    const double coding = best_of(code);
    std::printf("  GIF coding %.1f ms  decoding %.1f ms  (built without giflib)\n", coding,
                best_of(read));
#endif
    if (out != index) {
        std::printf("  GIF pixels differ\n");
    }
}

// --- PNG ------------------------------------------------------------------------

void libpng_write(std::FILE* file, png_bytepp rows, png_colorp palette) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) == 0) { // NOLINT(cert-err52-cpp): the library's way
        std::rewind(file);
        png_init_io(png, file);
        png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_PLTE(png, info, palette, img_palette_size);
        png_write_info(png, info);
        png_write_image(png, rows);
        png_write_end(png, info);
    }
    png_destroy_write_struct(&png, &info);
}

void bench_png(IMG_report* image, IMG_indexed picture) {
    const MemoryFile ours({});
    const File other;
    std::vector<png_bytep> rows;
    for (std::size_t at = 0; at < pixels; at += width) {
        rows.push_back(picture.index.data() + at);
    }
    std::array<png_color, img_palette_size> palette{};
    compare(
        "PNG writing", [&] { PNG_write(ours.name(), image); }, "libpng alone",
        [&] { libpng_write(other.stream, rows.data(), palette.data()); });
}

} // namespace

int main() {
    for (const int colors : {16, 256, 4000}) {
        IMG_report image = image_sample({width, height, 24, 32, colors});
        IMG_indexed picture;
        std::printf("%d colors\n", colors);
        std::printf("  palette %.1f ms\n", best_of([&] { IMG_make_indexed(image, 0, &picture); }));
        bench_gif(picture);
        bench_png(&image, picture);
    }
    return EXIT_SUCCESS;
}
