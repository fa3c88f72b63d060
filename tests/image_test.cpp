// Image files: every layout of pixels through every writer and reader, checked
// by other decoders where there are some, and files that are damaged.
#include "figure_page.h"
#include "gks.h"
#include "image_sample.h"
#include "img_pixel.h"
#include "maptran.h"
#include "memory_file.h"
#include "region.h"
#include "run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <fstream>
#include <thread>

#include <png.h>
#include <sys/resource.h>
#include <zlib.h>
#ifdef ZYR_HAVE_GIFLIB
#include <gif_lib.h>
#endif

namespace {

using Bytes = std::vector<std::uint8_t>;
using Picture = std::vector<std::uint32_t>; // 0xrrggbb, row by row

Bytes bytes_of(const std::string& text) {
    return {text.begin(), text.end()};
}

struct Freed : IMG_report {
    Freed() = default;
    explicit Freed(const IMG_report& image) : IMG_report(image) {}
    ~Freed() { IMG_free(this); }
    Freed(const Freed&) = delete;
    Freed& operator=(const Freed&) = delete;
};

constexpr ImageSample samples[] = {
    {1,   1,   24, 32, 2,    0},
    {37,  29,  24, 32, 16,   0},
    {37,  29,  24, 32, 16,   1},
    {130, 90,  24, 32, 256,  0},
    {130, 90,  24, 32, 1000, 0}, // the excess becomes the first colour
    {37,  4,   24, 24, 16,   0}, // interlaced: passes without rows
    {301, 211, 24, 24, 200,  1}, // the table of codes fills up and is cleared
    {37,  29,  16, 16, 40,   0},
    {37,  3,   16, 16, 40,   1},
    {37,  29,  8,  8,  256,  0},
    {400, 300, 8,  8,  256,  0},
    {37,  29,  4,  4,  16,   0},
    {37,  29,  1,  1,  2,    0},
    {9,   2,   1,  1,  1,    0},
};

std::string name_of(const ImageSample& s) {
    return std::to_string(s.width) + "x" + std::to_string(s.height) + " depth " +
           std::to_string(s.depth) + " bits " + std::to_string(s.bits_pixel) + " colors " +
           std::to_string(s.colors) + " order " + std::to_string(s.byte_order);
}

bool is_padded(const ImageSample& sample, const IMG_report& image) {
    return image.bytes_line * 8 / sample.bits_pixel > sample.width;
}

// What a file of at most 256 colours shows. Padding counts as value 0.
Picture shown(const ImageSample& sample, const IMG_report& image) {
    const bool padded = is_padded(sample, image);
    std::vector<std::uint32_t> table;
    const auto place = [&](std::uint32_t value) {
        const auto at = std::find(table.begin(), table.end(), value);
        if (at == table.end() && table.size() < 256) {
            table.push_back(value);
            return table.size() - 1;
        }
        return at == table.end() ? 0 : static_cast<std::size_t>(at - table.begin());
    };
    Picture out;
    for (int y = 0; y < sample.height; y++) {
        for (int x = 0; x < sample.width; x++) {
            const int color = image_color_at(sample, x, y);
            const bool first = place(image_value(sample, color)) == 0;
            out.push_back(image_rgb(sample, first ? image_color_at(sample, 0, 0) : color));
        }
        if (padded) {
            place(0);
        }
    }
    return out;
}

bool has_background(const ImageSample& sample, const IMG_report& image) {
    bool found = is_padded(sample, image);
    for (int i = 0; i < sample.width * sample.height; i++) {
        found = found || image_color_at(sample, i % sample.width, i / sample.width) == 0;
    }
    return found;
}

Picture picture_of(const IMG_report& image) {
    const IMG_coloring coloring(image);
    std::vector<std::uint32_t> values(static_cast<std::size_t>(image.width));
    Picture out;
    for (int y = 0; y < image.height; y++) {
        IMG_row_values(image, y, image.width, values.data());
        for (const std::uint32_t value : values) {
            const IMG_rgb c = coloring(value);
            out.push_back(static_cast<std::uint32_t>(c.red << 16 | c.grn << 8 | c.blu));
        }
    }
    return out;
}

Picture read_back(const std::string& name) {
    Freed image;
    return IMG_read(name.c_str(), &image, 0) == 1 ? picture_of(image) : Picture{};
}

// By libpng.
Picture png_picture(const char* name) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&png, name) == 0) {
        return {};
    }
    png.format = PNG_FORMAT_RGBA;
    Bytes rgba(PNG_IMAGE_SIZE(png));
    png_image_finish_read(&png, nullptr, rgba.data(), 0, nullptr);
    Picture out;
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        out.push_back(static_cast<std::uint32_t>(rgba[i] << 16 | rgba[i + 1] << 8 | rgba[i + 2]));
    }
    return out;
}

#ifdef ZYR_HAVE_GIFLIB
struct GifView {
    Picture picture;
    int transparent = -1;
    bool interlaced = false;
    int entries = 0;
};

GifView giflib_view(const char* name) {
    GifView view;
    int error = 0;
    GifFileType* gif = DGifOpenFileName(name, &error);
    if (gif == nullptr) {
        return view;
    }
    if (DGifSlurp(gif) == GIF_OK && gif->ImageCount == 1) {
        const SavedImage& image = gif->SavedImages[0];
        view.interlaced = image.ImageDesc.Interlace;
        view.entries = gif->SColorMap->ColorCount;
        for (int i = 0; i < gif->SWidth * gif->SHeight; i++) {
            const GifColorType c = gif->SColorMap->Colors[image.RasterBits[i]];
            view.picture.push_back(static_cast<std::uint32_t>(c.Red << 16 | c.Green << 8 | c.Blue));
        }
        GraphicsControlBlock control{};
        if (DGifSavedExtensionToGCB(gif, 0, &control) == GIF_OK) {
            view.transparent = control.TransparentColor;
        }
    }
    DGifCloseFile(gif, &error);
    return view;
}
#endif

class Image : public testing::Test {
protected:
    Image() {
        MESS_set(0, 0);
        IMG_set_patience(0);
    }
};

} // namespace

TEST_F(Image, EveryLayoutGoesThroughPaletteFiles) {
    Domain domain{};
    DOM_init(&domain);
    const FigurePage page(domain, ZYR_SOURCE_DIR); // its background is pixel 0
    const MemoryFile file({});
    for (const ImageSample& sample : samples) {
        SCOPED_TRACE(name_of(sample));
        Freed image(image_sample(sample));
        const Picture expected = shown(sample, image);
        ASSERT_EQ(PNG_write(file.name(), &image), 1);
        EXPECT_EQ(png_picture(file.name()), expected);
        EXPECT_EQ(read_back(file.name()), expected);
        for (const int way : {0, 1, 2, 3}) {
            SCOPED_TRACE(way);
            GIF_interlace(way & 1);
            GIF_transparent(way >> 1);
            ASSERT_EQ(GIF_write(file.name(), &image), 1);
            EXPECT_EQ(read_back(file.name()), expected);
#ifdef ZYR_HAVE_GIFLIB
            const GifView view = giflib_view(file.name());
            EXPECT_EQ(view.picture, expected);
            EXPECT_EQ(view.interlaced, (way & 1) != 0);
            EXPECT_GE(view.entries, 2);
            EXPECT_EQ(view.transparent >= 0, way >> 1 != 0 && has_background(sample, image));
#endif
        }
    }
}

TEST_F(Image, WindowDumpsKeepPixelsAndColors) {
    const MemoryFile file({});
    for (const ImageSample& sample : samples) {
        SCOPED_TRACE(name_of(sample));
        Freed image(image_sample(sample));
        ASSERT_EQ(XWD_write(file.name(), &image), 1);
        const Bytes bytes = file.bytes();
        const auto field = [&](std::size_t at) {
            return static_cast<int>(static_cast<unsigned>(bytes[at]) << 24 | bytes[at + 1] << 16 |
                                    bytes[at + 2] << 8 | bytes[at + 3]);
        };
        const auto name = std::strlen(image.info) + 1;
        const std::size_t colors = 100 + name;
        const std::size_t data = colors + 16 * static_cast<std::size_t>(image.num_colors);
        std::string fields;
        for (std::size_t at = 0; at < 100; at += 4) {
            fields += std::to_string(field(at)) + " ";
        }
        char expected[300];
        std::snprintf(expected, sizeof expected,
                      "%zu 7 2 %d %d %d 0 %d 32 %d 32 %d %d %d %u %u %u 8 %d %d %d %d 0 0 0 ",
                      colors, sample.depth, sample.width, sample.height, sample.byte_order,
                      sample.byte_order, sample.bits_pixel, image.bytes_line,
                      sample.depth > 8 ? 4 : 3, image.red, image.grn, image.blu, image.num_colors,
                      image.num_colors, sample.width, sample.height);
        EXPECT_EQ(fields, expected);
        ASSERT_EQ(bytes.size(), data + static_cast<std::size_t>(image.bytes_line * sample.height));
        EXPECT_EQ(std::memcmp(&bytes[100], image.info, name), 0);
        EXPECT_EQ(std::memcmp(&bytes[data], image.data, bytes.size() - data), 0);
        Freed back;
        back.depth = 32;
        ASSERT_EQ(XWD_read(file.name(), &back, 0), 1);
        EXPECT_STREQ(back.info, image.info);
        EXPECT_EQ(picture_of(back), picture_of(image));
        Freed shallow;
        shallow.depth = sample.depth - 1;
        testing::internal::CaptureStderr();
        EXPECT_EQ(XWD_read(file.name(), &shallow, 0), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Incorrect depth: " + std::to_string(sample.depth) + " > " +
                      std::to_string(sample.depth - 1) + "\n");
    }
}

TEST_F(Image, NativeFilesKeepGreyLevels) {
    const MemoryFile file({});
    for (const ImageSample& sample : samples) {
        SCOPED_TRACE(name_of(sample));
        Freed image(image_sample(sample));
        Bytes grey;
        for (int i = 0; i < sample.width * sample.height; i++) {
            const std::uint32_t v =
                image_value(sample, image_color_at(sample, i % sample.width, i / sample.width));
            const std::uint32_t mean = ((v >> 16) + (v >> 8 & 0xFF) + (v & 0xFF)) / 3;
            grey.push_back(static_cast<std::uint8_t>(sample.bits_pixel == 32 ? mean : v));
        }
        for (const int packed : {0, 1}) {
            ASSERT_EQ(IMG_write(file.name(), &image, packed), 1);
            Freed back;
            ASSERT_EQ(IMG_read(file.name(), &back, 0), 1);
            ASSERT_EQ(back.bytes_line * back.height, static_cast<int>(grey.size()));
            EXPECT_EQ(Bytes(back.data, back.data + grey.size()), grey) << packed;
            EXPECT_EQ(back.source, img_native);
            EXPECT_STREQ(back.info, image.info);
        }
    }
}

TEST_F(Image, NativeFilesKeepTheProjection) {
    struct Row {
        int proj;
        float plat, plon, param0;
        const char* line;
        bool keeps_plon;
    };
    const float none = missing_f;
    const Row rows[] = {
        {missing,        none, none, none, "3 2\n",                                       true },
        {proj_latlon,    none, none, none, "LL ",                                         true },
        {proj_merc,      none, none, none, "ME ",                                         true },
        {proj_pstereo,   none, none, none, "PS ",                                         true },
        {proj_pstereo,   none, -97,  none, "PS ",                                         false},
        {proj_pstereo,   none, -105, none, "PS:-105.000000 ",                             true },
        {proj_lambert,   none, none, none, "LC ",                                         true },
        {proj_lambert,   none, -95,  none, "LC:-95.000000 ",                              true },
        {proj_lambert,   25,   -95,  33,   "LC:25.000000:-95.000000:33.000000:2.000000:", true },
        {proj_satellite, 0,    -75,  none, "SAT:0.000000:-75.000000 ",                    true },
        {proj_satellite, 0,    -75,  6.6F, "SAT:0.000000:-75.000000:6.600000 ",           true },
    };
    const MemoryFile file({});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        Freed image(image_sample({3, 2, 8, 8, 4, 0}));
        copy_text(image.datim, sizeof image.datim, "1230Z 25 DEC 99");
        copy_text(image.info, sizeof image.info, "two\nlines");
        Domain d;
        d.proj = row.proj;
        d.plat = row.plat;
        d.plon = row.plon;
        d.param[0] = row.param0;
        if (is_set(row.param0) && row.proj == proj_lambert) {
            d.param[1] = 2;
            d.param[2] = 3;
        }
        if (is_set(row.proj)) {
            d.clat = 35;
            d.clon = -97;
            d.dx = d.dy = 0.5F;
        }
        d.nx = 3;
        d.ny = 2;
        image.domain = d;
        ASSERT_EQ(IMG_write(file.name(), &image, 0), 1);
        const Bytes bytes = file.bytes();
        const std::string text(bytes.begin(), bytes.end());
        const std::string head = "ZYRIMG\n1230Z 25 DEC 99\ntwo lines\n";
        EXPECT_EQ(text.rfind(head + row.line, 0), 0U) << text.substr(0, 120);
        Freed back;
        ASSERT_EQ(IMG_read(file.name(), &back, 0), 1);
        EXPECT_EQ(back.date.year, 1999);
        if (!row.keeps_plon) {
            d.plon = missing_f;
        }
        EXPECT_EQ(DOM_comp(&back.domain, &d), 1);
        EXPECT_EQ(back.domain.plon, d.plon);
        EXPECT_EQ(back.width * 10 + back.height, 32);
    }
}

TEST_F(Image, NativeHeadersOfOtherProgramsAreRead) {
    const TempDir dir;
    const std::string pixels = "abcdef";
    const std::string other = dir.write("pixels", pixels);
    const std::string volume(1024, 'v');
    const std::string counts("..\x09\x02....", 8);
    const std::string lines = "\n\n\n";
    const std::string files[] = {
        "** sent by a friend\nZYRIMG\n\n\n3 2\n" + pixels,
        "ZYRIMG3\r\n\r\n\r\n3 2\r\n" + pixels,
        "ZYRIMG4\n\n\nps,35,-97,3,2,0.5,0.5\n" + pixels,
        "ZYRIMG*\n\n\n3 2\n" + other + "\n",
        "ZYRIMGV\n\n\n3 2\n" + volume + pixels,
        "ZYRIMGCV\n\n\n3 2\n" + volume + counts + pixels,
        "ZYRIMG\n\n\n35.0 -97.0 0.5 0.5 3 2\n" + pixels,
    };
    for (const std::string& text : files) {
        const MemoryFile file(bytes_of(text));
        Freed image;
        ASSERT_EQ(IMG_read(file.name(), &image, 0), 1) << text;
        EXPECT_EQ(std::string(image.data, image.data + image.bytes_line * image.height), pixels)
            << text;
        EXPECT_EQ(image.width, 3);
    }
}

TEST_F(Image, NativeFileMayStillGrow) {
    IMG_set_patience(10);
    Freed image(image_sample({400, 100, 8, 8, 200, 0}));
    MemoryFile whole({});
    ASSERT_EQ(IMG_write(whole.name(), &image, 1), 1);
    const Bytes bytes = whole.bytes();
    const auto half = bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2);
    MemoryFile growing(Bytes(bytes.begin(), half));
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        growing.add(Bytes(half, bytes.end()));
    });
    Freed back;
    EXPECT_EQ(IMG_read(growing.name(), &back, 0), 1);
    writer.join();
    EXPECT_EQ(picture_of(back).size(), 40000U);
    EXPECT_EQ(std::memcmp(back.data, image.data, 40000), 0);
}

namespace {

// A file by libpng of any kind, with random samples.
Bytes make_png(int color_type, int bit_depth, int interlace) {
    constexpr int width = 21;
    constexpr int height = 13;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    Bytes out;
    png_set_write_fn(
        png, &out,
        [](png_structp p, png_bytep data, std::size_t n) {
            auto* to = static_cast<Bytes*>(png_get_io_ptr(p));
            to->insert(to->end(), data, data + n);
        },
        nullptr);
    png_set_IHDR(png, info, width, height, bit_depth, color_type, interlace,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> palette;
    for (int i = 0; i < 1 << std::min(bit_depth, 8); i++) {
        palette.push_back({static_cast<png_byte>(i * 7), static_cast<png_byte>(255 - i), 9});
    }
    if (color_type == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    }
    png_write_info(png, info);
    const std::size_t row_bytes = png_get_rowbytes(png, info);
    Bytes data(row_bytes * height);
    std::uint32_t seed = 1;
    for (std::uint8_t& byte : data) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    std::vector<png_bytep> rows;
    for (int y = 0; y < height; y++) {
        rows.push_back(data.data() + row_bytes * y);
    }
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return out;
}

} // namespace

TEST_F(Image, EveryKindOfPngIsRead) {
    const std::vector<std::pair<int, std::vector<int>>> kinds = {
        {PNG_COLOR_TYPE_GRAY,       {1, 2, 4, 8, 16}},
        {PNG_COLOR_TYPE_PALETTE,    {1, 2, 4, 8}    },
        {PNG_COLOR_TYPE_RGB,        {8, 16}         },
        {PNG_COLOR_TYPE_RGB_ALPHA,  {8, 16}         },
        {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}         },
    };
    for (const auto& [type, depths] : kinds) {
        for (const int depth : depths) {
            for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
                SCOPED_TRACE(std::to_string(type) + " " + std::to_string(depth));
                const MemoryFile file(make_png(type, depth, interlace));
                Freed image;
                ASSERT_EQ(IMG_read(file.name(), &image, 0), 1);
                const bool one = type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_PALETTE;
                EXPECT_EQ(image.depth, std::min(depth, 8) * (one ? 1 : 3));
                EXPECT_EQ(image.bits_pixel, (type & PNG_COLOR_MASK_ALPHA) != 0 ? 32 : image.depth);
                if (depth < 16 && (type & PNG_COLOR_MASK_ALPHA) == 0) {
                    EXPECT_EQ(picture_of(image), png_picture(file.name()));
                }
            }
        }
    }
}

TEST_F(Image, RowsMayBeLong) {
    const MemoryFile file({});
    Freed image(image_sample({70000, 1, 8, 8, 4, 0}));
    EXPECT_EQ(GIF_write(file.name(), &image), 0);
    EXPECT_TRUE(file.bytes().empty());
    ASSERT_EQ(PNG_write(file.name(), &image), 1);
    EXPECT_EQ(read_back(file.name()), png_picture(file.name()));
}

TEST_F(Image, PngFilesSayWhatTheyAre) {
    setenv("TZ", "EST5EDT", 1);
    const MemoryFile file({});
    Freed image(image_sample({5, 4, 24, 32, 2, 0}));
    ASSERT_EQ(PNG_write(file.name(), &image), 1);
    const Bytes bytes = file.bytes();
    std::string chunks;
    std::vector<std::string> texts;
    for (std::size_t at = 8; at + 8 <= bytes.size();) {
        const std::size_t size = static_cast<std::size_t>(bytes[at + 2] << 8 | bytes[at + 3]);
        const std::string kind(&bytes[at + 4], &bytes[at + 8]);
        chunks += kind + " ";
        if (kind == "tEXt") {
            texts.emplace_back(&bytes[at + 8], &bytes[at + 8 + size]);
        }
        if (kind == "PLTE") {
            EXPECT_EQ(size, 768U);
        }
        at += 12 + size;
    }
    EXPECT_EQ(chunks, "IHDR PLTE tEXt tEXt tEXt IDAT IEND ");
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0].substr(0, 5), "Title");
    EXPECT_EQ(texts[1], std::string("Software\0ZYR - Sky Foundry v5.0", 31));
    std::time_t now = std::time(nullptr);
    char today[20];
    std::strftime(today, sizeof today, "%d %b %Y %H", std::gmtime(&now));
    EXPECT_EQ(texts[2].substr(0, 28), std::string("Creation Time\0", 14) + today);
    EXPECT_EQ(texts[2].substr(texts[2].size() - 4), " GMT");
}

namespace {

std::string little(int value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
}

std::string gif_file(int width, int height, const std::string& codes) {
    const std::string size = little(width) + little(height);
    return "GIF89a" + size + std::string("\x80\0\0abcdef", 9) + std::string(",\0\0\0\0", 5) + size +
           std::string("\0\x02", 2) + static_cast<char>(codes.size()) + codes +
           std::string("\0;", 2);
}

std::string xwd_file(const std::vector<std::pair<std::size_t, std::uint32_t>>& changes) {
    const MemoryFile file({});
    Freed image(image_sample({6, 5, 8, 8, 4, 0}));
    XWD_write(file.name(), &image);
    Bytes bytes = file.bytes();
    for (const auto& [at, value] : changes) {
        for (std::size_t i = 0; i < 4; i++) {
            bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
        }
    }
    return {bytes.begin(), bytes.end()};
}

std::string png_bomb() {
    Bytes png = make_png(PNG_COLOR_TYPE_RGB, 8, 0);
    png[18] = png[22] = 0xEA; // 60,000 by 60,000
    const auto crc = static_cast<std::uint32_t>(crc32(0, &png[12], 17));
    for (std::size_t i = 0; i < 4; i++) {
        png[29 + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
    }
    return {png.begin(), png.end()};
}

} // namespace

TEST_F(Image, HostileFilesAreRefused) {
    const TempDir dir;
    const std::string mark = dir.path() + "/mark";
    const std::string command = "|touch${IFS}" + mark;
    const std::pair<std::string, std::string> rows[] = {
        {"",                                       "Unable to read dump file header\n"                    },
        {gif_file(65535,                           65535,                                                   "\x04"), "Unable to allocate data buffer.\n"},
        {gif_file(0,     5,                                                            "\x04"), "Unable to allocate data buffer.\n"},
        {gif_file(2,                                   2,                        "\x07"), "GIF_read: Damaged file: "},
        {gif_file(2,                                        2,                                                                                      "\xC4\x01"), "GIF_read: Damaged file: "},
        {"GIF89a" + std::string(7,                                 '\1'),                                       "GIF_read: Damaged file: "},
        {"ZYRIMG\n\n\n65535 65535\n",                               "IMG_read_zyr: Invalid image size: "                                             },
        {"ZYRIMG\n\n\n-3 -2\nabcdef",              "IMG_read_zyr: Invalid image size: "                                                                    },
        {"ZYRIMG\n\n\nPS nan 0 1 1 3 2\nabcdef",   "IMG_read_zyr: Invalid image size: "},
        {"ZYRIMG4\n\n\nfi:" + command + "\n",              "IMG_read_zyr: Invalid image size: "  },
        {"ZYRIMG4\n\n\n" + command + ":A,3,2,1\n",              "IMG_read_zyr: Invalid image size: "                   },
        {"ZYRIMG4\n\n\nvar\n",   "IMG_read_zyr: Invalid image size: "                   },
        {"ZYRIMG*\n\n\n3 2\n" + command + "\n",      "Unable to open: |touch"           },
        {"ZYRIM2\n", "IMG_read_zyr: Invalid image type\n"      },
        {png_bomb(),                     "Unable to allocate data buffer.\n"                                     },
        {xwd_file({{4, 8}}),    "XWD file format version mismatch\n"                             },
        {xwd_file({{0, 99}}),                               "XWD header size is too small.\n"                                                 },
        {xwd_file({{0, 0xFFFFFFFF}}),                               "Unable to read window name from dump"                              },
        {xwd_file({{76, 0xFFFFFFFF}}),                       "Unable to read color map from dump"                                      },
        {xwd_file({{48, 5}}),                      "Unable to read pixmap from dump file"             },
        {xwd_file({{20, 60000}, {48, 60000}}),              "Unable to allocate data buffer.\n"},
    };
    MESS_set(0, mess_warn);
    for (const auto& [text, message] : rows) {
        const MemoryFile file(bytes_of(text));
        Freed image;
        testing::internal::CaptureStderr();
        EXPECT_EQ(IMG_read(file.name(), &image, 0), 0) << message;
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_NE(said.find(message), std::string::npos) << said;
        EXPECT_EQ(image.data, nullptr);
    }
    EXPECT_FALSE(std::ifstream(mark).good());
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 256 * 1024);
}

TEST_F(Image, FilesMayBeCutAnywhere) {
    testing::internal::CaptureStderr();
    for (const char* kind : {"gif", "png", "xwd", "native"}) {
        for (const auto& [name, bytes] : image_samples(kind)) {
            for (std::size_t n = 0; n < bytes.size(); n++) {
                const MemoryFile file(
                    Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n)));
                Freed image;
                const int result = IMG_read(file.name(), &image, 0);
                EXPECT_EQ(result == 1, image.data != nullptr) << name << " " << n;
            }
        }
    }
    testing::internal::GetCapturedStderr();
}
