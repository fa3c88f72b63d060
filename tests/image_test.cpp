// Image files: every layout of pixels through every writer and reader, checked
// by other decoders where there are some, and files that are damaged.
#include "figure_page.h"
#include "gks.h"
#include "image_sample.h"
#include "image_view.h"
#include "maptran.h"
#include "memory_file.h"
#include "region.h"
#include "run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include <png.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <zlib.h>
#ifdef ZYR_HAVE_GIFLIB
#include <gif_lib.h>
#endif

namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

Bytes bytes_of(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string text_of(const MemoryFile& file) {
    const Bytes bytes = file.bytes();
    return {bytes.begin(), bytes.end()};
}

// The most significant byte first.
std::string big(std::int64_t value, int bytes) {
    std::string out;
    while (bytes-- > 0) {
        out += static_cast<char>(value >> 8 * bytes);
    }
    return out;
}

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
    {37,  29,  4,  4,  16,   1}, // the high bits first
    {37,  29,  1,  1,  2,    0},
    {9,   2,   1,  1,  1,    0},
};

int color_at(const ImageSample& sample, int i) {
    return image_color_at(sample, i % sample.width, i / sample.width);
}

// What a file of at most 256 colours shows. Padding counts as value 0, which is
// the background.
Picture shown(const ImageSample& sample, const IMG_report& image, bool* has_background) {
    const bool padded = image.bytes_line * 8 / sample.bits_pixel > sample.width;
    std::vector<std::uint32_t> table;
    const auto has_place = [&](std::uint32_t value) {
        const bool known = std::find(table.begin(), table.end(), value) != table.end();
        if (!known && table.size() < 256) {
            table.push_back(value);
        }
        return known || table.back() == value;
    };
    Picture out{sample.width, sample.height, {}};
    for (int i = 0; i < sample.width * sample.height; ++i) {
        const int color = color_at(sample, i);
        const bool placed = has_place(image_value(sample, color));
        out.rgb.push_back(image_rgb(sample, placed ? color : color_at(sample, 0)));
        if (padded && (i + 1) % sample.width == 0) {
            has_place(0);
        }
    }
    *has_background = std::find(table.begin(), table.end(), 0U) != table.end();
    return out;
}

Picture read_back(const std::string& name) {
    IMG_report image;
    return IMG_read(name.c_str(), &image, 0) == 1 ? picture_of_record(image) : Picture{};
}

#ifdef ZYR_HAVE_GIFLIB
struct GifView {
    Picture picture;
    int transparent = -1;
    bool interlaced = false;
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
        view.picture = {gif->SWidth, gif->SHeight, {}};
        view.interlaced = image.ImageDesc.Interlace;
        for (int i = 0; i < gif->SWidth * gif->SHeight; ++i) {
            const GifColorType c = gif->SColorMap->Colors[image.RasterBits[i]];
            view.picture.rgb.push_back(
                static_cast<std::uint32_t>(c.Red << 16 | c.Green << 8 | c.Blue));
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

// A file by libpng of any kind, with random samples.
void make_png(const MemoryFile& file, int color_type, int bit_depth, int interlace) {
    constexpr int width = 21;
    constexpr int height = 13;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    std::FILE* out = std::fopen(file.name(), "wb");
    png_init_io(png, out);
    png_set_IHDR(png, info, width, height, bit_depth, color_type, interlace,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (color_type == PNG_COLOR_TYPE_PALETTE) {
        std::vector<png_color> palette;
        for (int i = 0; i < 1 << bit_depth; ++i) {
            palette.push_back({static_cast<png_byte>(i * 7), static_cast<png_byte>(255 - i), 9});
        }
        png_set_PLTE(png, info, palette.data(), 1 << bit_depth);
    }
    png_write_info(png, info);
    Bytes row(png_get_rowbytes(png, info));
    for (int pass = png_set_interlace_handling(png); pass > 0; --pass) {
        std::mt19937 random; // the same rows in each pass
        for (int y = 0; y < height; ++y) {
            std::generate(row.begin(), row.end(), [&] { return random() & 0xFF; });
            png_write_row(png, row.data());
        }
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(out);
}

// The size in four bytes stands before the codes.
std::string gif_file(const std::string& size_and_codes) {
    const std::string size = size_and_codes.substr(0, 4);
    const std::string codes = size_and_codes.substr(4);
    return "GIF89a" + size + "\x80\0\0abcdef,\0\0\0\0"s + size + "\0\x02"s +
           static_cast<char>(codes.size()) + codes + "\0;"s;
}

std::string png_bomb() {
    const MemoryFile file({});
    make_png(file, PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_NONE);
    Bytes png = file.bytes();
    png[18] = png[22] = 0xEA; // 60,000 by 60,000
    const std::string sum = big(static_cast<std::int64_t>(crc32(0, &png[12], 17)), 4);
    std::copy(sum.begin(), sum.end(), &png[29]);
    return {png.begin(), png.end()};
}

void expect_refused(const std::string& text, const std::string& message) {
    const MemoryFile file(bytes_of(text));
    IMG_report image;
    testing::internal::CaptureStderr();
    EXPECT_EQ(IMG_read(file.name(), &image, 0), 0) << message;
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find(message), std::string::npos) << said;
    EXPECT_EQ(image.data, nullptr);
}

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
        SCOPED_TRACE("sample " + std::to_string(&sample - samples));
        IMG_report image = image_sample(sample);
        bool has_background = false;
        Picture expected = shown(sample, image, &has_background);
        for (const int way : {0, 1, 2, 3}) {
            SCOPED_TRACE(way);
            GIF_interlace(way & 1);
            GIF_transparent(way >> 1);
            ASSERT_EQ(GIF_write(file.name(), &image), 1);
            EXPECT_EQ(read_back(file.name()), expected);
            IMG_report back;
            ASSERT_EQ(GIF_read(file.name(), &back, 0), 1);
#ifdef ZYR_HAVE_GIFLIB
            const GifView view = giflib_view(file.name());
            EXPECT_EQ(view.picture, expected);
            EXPECT_EQ(view.interlaced, (way & 1) != 0);
            EXPECT_EQ(view.transparent >= 0, way >> 1 != 0 && has_background);
            EXPECT_EQ(back.trans_color, view.transparent);
#endif
        }
        for (const int by_table : {0, 1}) {
            if (sample.depth == 24 && by_table == 1) { // of each component, upside down
                image.color_type = 1;
                IMG_alloc_colors(&image, 256);
                for (int i = 0; i < 256; ++i) {
                    const float level = static_cast<float>(255 - i) / 255.0F;
                    image.colors[i] = {level, level, level};
                }
                for (std::uint32_t& color : expected.rgb) {
                    color ^= 0xFFFFFF;
                }
            }
            ASSERT_EQ(PNG_write(file.name(), &image), 1);
            EXPECT_EQ(read_png(file.name()), expected);
            EXPECT_EQ(read_back(file.name()), expected);
        }
    }
}

TEST_F(Image, WindowDumpsKeepPixelsAndColors) {
    const MemoryFile file({});
    for (const ImageSample& sample : samples) {
        SCOPED_TRACE("sample " + std::to_string(&sample - samples));
        IMG_report image = image_sample(sample);
        ASSERT_EQ(XWD_write(file.name(), &image), 1);
        const auto [w, h, depth, bits, colors, order] = sample;
        const std::string name = image.info + "\0"s;
        const int head = 100 + static_cast<int>(name.size());
        const int line = image.bytes_line;
        const int table = image.num_colors;
        const int kind = depth > 8 ? 4 : 3;
        const std::int64_t fields[] = {head,      7,         2,         depth, w,     h,     0,
                                       order,     32,        order,     32,    bits,  line,  kind,
                                       image.red, image.grn, image.blu, 8,     table, table, w,
                                       h,         0,         0,         0};
        std::string expected;
        for (const std::int64_t field : fields) {
            expected += big(field, 4);
        }
        expected += name;
        for (int i = 0; i < table; ++i) {
            const std::uint32_t rgb = image_rgb(sample, i);
            expected += big(i, 4) + big(0, 4);
            for (const int shift : {16, 8, 0}) {
                expected += big((rgb >> shift & 0xFF) * 0x101, 2);
            }
            expected += big(0x700, 2);
        }
        expected.append(image.data.get(), image.data.get() + image.bytes_line * h);
        EXPECT_TRUE(text_of(file) == expected);
        IMG_report back;
        back.depth = 32;
        ASSERT_EQ(XWD_read(file.name(), &back, 0), 1);
        EXPECT_STREQ(back.info, image.info);
        EXPECT_EQ(picture_of_record(back), picture_of_record(image));
        gset_win_type(ws_none); // a header may be of any depth then
        EXPECT_EQ(IMG_read(file.name(), &back, 1), 1);
        IMG_report shallow;
        shallow.depth = depth - 1;
        testing::internal::CaptureStderr();
        EXPECT_EQ(XWD_read(file.name(), &shallow, 0), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Incorrect depth: " + std::to_string(depth) + " > " + std::to_string(depth - 1) +
                      "\n");
    }
}

// Files that xwd, ImageMagick and Netpbm made of one picture, whose diagonals have
// seven colours.
TEST_F(Image, WindowDumpsOfOtherProgramsAreRead) {
    constexpr std::uint32_t colors[] = {0xFF0000, 0xFF00, 0xFF, 0xFFFFFF, 0, 0xFF8010, 0x204060};
    struct Row {
        const char* file;
        std::uint32_t bits; // of a colour that it keeps
        const char* note;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"xwd8",     0xFFFFFF, "a table of short records"               },
             {"xwd8d",    0xFFFFFF, "a table for each component"             },
             {"xwd8d_xy", 0xFFFFFF, "the same by planes"                     },
             {"xwd8s_xy", 0,        "one table, for all that it has masks"   },
             {"xwd16",    0xF8FCF8, "masks, with a table that goes without"  },
             {"xwd16_xy", 0xF8FCF8, "the same by planes"                     },
             {"xwd24",    0xFFFFFF, "masks"                                  },
             {"im_true",  0xFFFFFF, "masks without a table, in direct colour"},
             {"im_pal",   0xFFFFFF, "lines of seven bytes"                   },
             {"np",       0xFFFFFF, "a table that is shorter than promised"  },
    }) {
        IMG_report image;
        image.depth = 32;
        const std::string name = ZYR_SOURCE_DIR "/tests/fuzz/seeds/xwd_fuzz/"s + row.file;
        ASSERT_EQ(XWD_read(name.c_str(), &image, 0), 1) << row.file;
        Picture expected{7, 5, {}};
        for (int i = 0; i < 35; ++i) {
            expected.rgb.push_back(colors[(i % 7 + i / 7) % 7] & row.bits);
        }
        Picture seen = picture_of_record(image);
        for (std::uint32_t& pixel : seen.rgb) {
            pixel &= row.bits;
        }
        EXPECT_EQ(seen, expected) << row.file << ": " << row.note;
    }
    IMG_report bits;
    bits.depth = 1;
    ASSERT_EQ(XWD_read(ZYR_SOURCE_DIR "/tests/fuzz/seeds/xwd_fuzz/np_bit", &bits, 0), 1);
    std::string shown;
    for (const std::uint32_t pixel : picture_of_record(bits).rgb) {
        shown += pixel != 0 ? '#' : '.';
    }
    EXPECT_EQ(shown, ".#.#.#."
                     "#.#.#.."
                     ".#.#..#"
                     "#.#..#."
                     "....#.#");
}

TEST_F(Image, NativeFilesKeepGreyLevels) {
    const MemoryFile file({});
    for (const ImageSample& sample : samples) {
        SCOPED_TRACE("sample " + std::to_string(&sample - samples));
        IMG_report image = image_sample(sample);
        Bytes grey;
        for (int i = 0; i < sample.width * sample.height; ++i) {
            const std::uint32_t v = image_value(sample, color_at(sample, i));
            const std::uint32_t mean = ((v >> 16) + (v >> 8 & 0xFF) + (v & 0xFF)) / 3;
            grey.push_back(static_cast<std::uint8_t>(sample.bits_pixel == 32 ? mean : v));
        }
        for (const int packed : {0, 1}) {
            ASSERT_EQ(IMG_write(file.name(), &image, packed), 1);
            IMG_report back;
            ASSERT_EQ(IMG_read(file.name(), &back, 0), 1);
            EXPECT_EQ(Bytes(back.data.get(), back.data.get() + back.bytes_line * back.height), grey)
                << packed;
            EXPECT_EQ(back.source, img_native);
            EXPECT_STREQ(back.info, image.info);
        }
    }
}

TEST_F(Image, NativeFilesKeepTheProjection) {
    struct Row {
        const char* word;
        int proj;
        float plat, plon, param0;
    };
    const float none = missing_f;
    for (const Row& row : std::initializer_list<Row>{
             {"",                                                     missing,        none, none, none},
             {"LL ",                                                  proj_latlon,    none, none, none},
             {"ME ",                                                  proj_merc,      none, none, none},
             {"PS ",                                                  proj_pstereo,   none, none, none},
             {"PS:-105.000000 ",                                      proj_pstereo,   none, -105, none},
             {"LC ",                                                  proj_lambert,   none, none, none},
             {"LC:-95.000000 ",                                       proj_lambert,   none, -95,  none},
             {"LC:25.000000:-95.000000:33.000000:2.000000:3.000000 ", proj_lambert,   25,   -95,  33  },
             {"SAT:0.000000:-75.000000 ",                             proj_satellite, 0,    -75,  none},
             {"SAT:0.000000:-75.000000:6.600000 ",                    proj_satellite, 0,    -75,  6.6F},
    }) {
        const bool located = is_set(row.proj);
        const std::string text = "ZYRIMG\n1230Z 25 DEC 99\ntwo lines\n"s + row.word +
                                 (located ? "35.000000 -97.000000 0.500000 0.250000 " : "") +
                                 "3 2\nabcdef";
        const MemoryFile file(bytes_of(text));
        IMG_report image;
        ASSERT_EQ(IMG_read(file.name(), &image, 0), 1) << text;
        Domain& d = image.domain;
        EXPECT_EQ((std::array{d.plat, d.plon, d.param[0], d.clat, d.dx}),
                  (std::array{row.plat, row.plon, row.param0, located ? 35 : none,
                              located ? 0.5F : none}))
            << text;
        EXPECT_EQ(d.proj, row.proj) << text;
        EXPECT_EQ(image.date.year, 1999);
        copy_text(image.info, sizeof image.info, "two\nlines");
        if (d.proj == proj_pstereo && !is_set(d.plon)) {
            d.plon = d.clon; // goes without saying
        }
        ASSERT_EQ(IMG_write(file.name(), &image, 0), 1);
        EXPECT_EQ(text_of(file), text);
    }
}

TEST_F(Image, NativeHeadersOfOtherProgramsAreRead) {
    const std::string pixels = "abcdef";
    const std::string volume(1024, 'v');
    for (const std::string& text : {
             "** sent by a friend\nZYRIMG\n\n\n3 2\n" + pixels,
             "ZYRIMG3\r\n\r\n\r\n3 2\r\n" + pixels,
             "ZYRIMG4\n\n\nps,35,-97,3,2,0.5,0.5\n" + pixels,
             "ZYRIMGV\n\n\n3 2\n" + volume + pixels,
             "ZYRIMGCV\n\n\n3 2\n" + volume + "..\x09\x02...." + pixels,
             "ZYRIMG\n\n\n35.0 -97.0 0.5 0.5 3 2\n" + pixels,
         }) {
        const MemoryFile file(bytes_of(text));
        IMG_report image;
        ASSERT_EQ(IMG_read(file.name(), &image, 0), 1) << text;
        EXPECT_EQ(std::string(image.data.get(), image.data.get() + image.bytes_line * image.height),
                  pixels)
            << text;
        EXPECT_EQ(image.width, 3);
    }
}

// Pixels in a file of their own come from a plain file beside the image, and from
// nothing else that a name may mean.
TEST_F(Image, NativeFilesReadPixelsFromAPlainFileBesideThem) {
    const TempDir dir;
    const TempDir elsewhere;
    const std::string secret = elsewhere.write("secret", "abcdef");
    dir.write("pixels", "abcdef");
    ASSERT_EQ(mkfifo((dir.path() + "/fifo").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", dir.path() + "/device");
    std::filesystem::create_directory(dir.path() + "/directory");
    MESS_set(0, mess_warn);
    for (const std::string& name :
         {"pixels"s, "fifo"s, "device"s, "directory"s, "none"s, "."s, secret,
          "../" + secret.substr(secret.find_last_of('/', secret.rfind('/') - 1) + 1),
          "|touch${IFS}mark"s, "-"s, std::string(158, 'x')}) {
        const std::string file = dir.write("i.img", "ZYRIMG*\n\n\n3 2\n" + name + "\n");
        IMG_report image;
        testing::internal::CaptureStderr();
        EXPECT_EQ(IMG_read(file.c_str(), &image, 0), name == "pixels" ? 1 : 0) << name;
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  name == "pixels" ? "" : "Unable to open: " + name + "\n");
    }
    EXPECT_FALSE(std::ifstream("mark").good());
}

TEST_F(Image, NativeFileMayStillGrow) {
    IMG_set_patience(10);
    IMG_report image = image_sample({400, 100, 8, 8, 200, 0});
    MemoryFile whole({});
    ASSERT_EQ(IMG_write(whole.name(), &image, 1), 1);
    const Bytes bytes = whole.bytes();
    const auto half = bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2);
    MemoryFile growing(Bytes(bytes.begin(), half));
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        growing.add(Bytes(half, bytes.end()));
    });
    IMG_report back;
    EXPECT_EQ(IMG_read(growing.name(), &back, 0), 1);
    writer.join();
    EXPECT_EQ(back.width * back.height, 40000);
    EXPECT_EQ(std::memcmp(back.data.get(), image.data.get(), 40000), 0);
}

TEST_F(Image, EveryKindOfPngIsRead) {
    const MemoryFile file({});
    for (const int type : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_PALETTE, PNG_COLOR_TYPE_RGB,
                           PNG_COLOR_TYPE_RGB_ALPHA, PNG_COLOR_TYPE_GRAY_ALPHA}) {
        const bool one = type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_PALETTE;
        const bool alpha = (type & PNG_COLOR_MASK_ALPHA) != 0;
        for (const int depth : {1, 2, 4, 8, 16}) {
            if (type == PNG_COLOR_TYPE_PALETTE ? depth == 16 : !one && depth < 8) {
                continue; // no such files
            }
            for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
                SCOPED_TRACE(std::to_string(type) + " " + std::to_string(depth));
                make_png(file, type, depth, interlace);
                IMG_report image;
                ASSERT_EQ(IMG_read(file.name(), &image, 0), 1);
                EXPECT_EQ(image.depth, std::min(depth, 8) * (one ? 1 : 3));
                EXPECT_EQ(image.bits_pixel, alpha ? 32 : image.depth);
                if (depth < 16 && !alpha) {
                    EXPECT_EQ(picture_of_record(image), read_png(file.name()));
                }
            }
        }
    }
}

// A table of the image alone serves where the file has none; beside that of the
// file it is passed over.
TEST_F(Image, GifFilesMayBringATableOfTheImage) {
    const std::string file_table = "\xFF\0\0\0\xFF\0"s;    // red, green
    const std::string own_table = "\0\0\xFF\xFF\xFF\xFF"s; // blue, white
    const std::string size = "\2\0\1\0"s;
    const std::string pixels = "\2\2\x44\x0A\0;"s; // 0 and 1
    struct Row {
        std::string tables[2]; // of the file, of the image
        std::vector<std::uint32_t> rgb;
    };
    for (const Row& row : std::initializer_list<Row>{
             {{"", own_table},         {0xFF, 0xFFFFFF}  },
             {{file_table, own_table}, {0xFF0000, 0xFF00}},
             {{file_table, ""},        {0xFF0000, 0xFF00}},
    }) {
        const auto flag = [](const std::string& table) { return table.empty() ? "\0"s : "\x80"s; };
        const auto& [of_file, of_image] = row.tables;
        const MemoryFile file(bytes_of("GIF89a" + size + flag(of_file) + "\0\0"s + of_file + ","s +
                                       "\0\0\0\0"s + size + flag(of_image) + of_image + pixels));
        EXPECT_EQ(read_back(file.name()).rgb, row.rgb) << of_file.size() << " " << of_image.size();
    }
}

TEST_F(Image, PngFilesMayBeWideAndSayWhatTheyAre) {
    setenv("TZ", "EST5EDT", 1);
    const MemoryFile file({});
    IMG_report image = image_sample({70000, 1, 8, 8, 4, 0});
    EXPECT_EQ(GIF_write(file.name(), &image), 0);
    EXPECT_TRUE(file.bytes().empty());
    ASSERT_EQ(PNG_write(file.name(), &image), 1);
    EXPECT_EQ(read_back(file.name()), read_png(file.name()));
    const std::string text = text_of(file);
    std::time_t now = std::time(nullptr);
    char today[20];
    std::strftime(today, sizeof today, "%d %b %Y %H", std::gmtime(&now));
    std::size_t at = 0;
    for (const std::string& part :
         {"\0\0\3\0PLTE"s, "tEXtTitle\0"s, "\0\0\0\x1FtEXtSoftware\0ZYR - Sky Foundry v5.0"s,
          "tEXtCreation Time\0"s + today, " GMT"s, "IDAT"s}) {
        at = text.find(part, at);
        ASSERT_NE(at, std::string::npos) << part;
    }
}

TEST_F(Image, HostileFilesAreRefused) {
    const TempDir dir;
    const std::string mark = dir.path() + "/mark";
    const std::string command = "|touch${IFS}" + mark;
    const std::string short_of_memory = "Unable to allocate data buffer.\n";
    MESS_set(0, mess_warn);
    expect_refused("", "Unable to read dump file header\n");
    for (const char* text : {"\xFF\xFF\xFF\xFF\x04", "\0\0\5\0\x04"}) {
        expect_refused(gif_file({text, 5}), short_of_memory);
    }
    expect_refused(png_bomb(), short_of_memory);
    for (const std::string& text :
         {gif_file("\2\0\2\0\x07"s), gif_file("\2\0\2\0\xC4\x01"s), "GIF89a\1\1\1\1\1\1\1"s}) {
        expect_refused(text, "GIF_read: Damaged file: ");
    }
    for (const std::string& text :
         {"\n\n\n65535 65535\n"s, "\n\n\n-3 -2\nabcdef"s, "\n\n\nPS nan 0 1 1 3 2\nabcdef"s,
          "4\n\n\nfi:" + command + "\n", "4\n\n\n" + command + ":A,3,2,1\n", "4\n\n\nvar\n"s}) {
        expect_refused("ZYRIMG" + text, "IMG_read_zyr: Invalid image size: ");
    }
    expect_refused("ZYRIMG*\n\n\n3 2\n" + command + "\n", "Unable to open: |touch");
    expect_refused("ZYRIM2\n", "IMG_read_zyr: Invalid image type\n");
    struct Row {
        std::size_t at;
        std::uint32_t value;
        std::string message;
    };
    const MemoryFile file({});
    IMG_report image = image_sample({6, 5, 8, 8, 4, 0});
    XWD_write(file.name(), &image);
    for (const Row& row : std::initializer_list<Row>{
             {4,  8,          "XWD file format version mismatch\n"  },
             {0,  99,         "XWD header size is too small.\n"     },
             {0,  0xFFFFFFFF, "Unable to read window name from dump"},
             {76, 0xFFFFFFFF, "Unable to read color map from dump"  },
             {48, 5,          "Unable to read pixmap from dump file"},
             {48, 0x7FFFFFF,  short_of_memory                       },
    }) {
        expect_refused(text_of(file).replace(row.at, 4, big(row.value, 4)), row.message);
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
            for (std::size_t n = 0; n < bytes.size(); ++n) {
                const MemoryFile file(
                    Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n)));
                IMG_report image;
                const int result = IMG_read(file.name(), &image, 0);
                EXPECT_EQ(result == 1, image.data != nullptr) << name << " " << n;
            }
        }
    }
    testing::internal::GetCapturedStderr();
}
