// Animated GIF files: every picture of them, put together by another reader, is the
// one that was given, or that a still image shows of the same frame.
#include "gif_loop.h"
#include "image_view.h"
#include "plot_window.h"

#include <cstring>
#include <functional>

#ifdef ZYR_HAVE_GIFLIB
#include <gif_lib.h>
#endif

namespace {

#ifdef ZYR_HAVE_GIFLIB
struct Shot {
    Picture picture;
    int delay = 0;
    int width = 0; // of the part that was written
    int height = 0;
};
struct Film {
    std::vector<Shot> shots;
    int repeats = -1; // -1: no word of it
};

constexpr std::uint32_t see_through = 0x1000000;

void put(const SavedImage& image, const ColorMapObject& map, int transparent, Picture& canvas) {
    const GifImageDesc& d = image.ImageDesc;
    for (int i = 0; i < d.Width * d.Height; ++i) {
        const int index = image.RasterBits[i];
        if (index != transparent) {
            const GifColorType c = map.Colors[index];
            canvas.rgb[static_cast<std::size_t>((d.Top + i / d.Width) * canvas.width + d.Left +
                                                i % d.Width)] =
                static_cast<std::uint32_t>(c.Red << 16 | c.Green << 8 | c.Blue);
        }
    }
}

// By giflib; without pictures if it finds a fault.
Film film_of(const std::string& name) {
    Film film;
    int error = 0;
    GifFileType* gif = DGifOpenFileName(name.c_str(), &error);
    if (gif == nullptr) {
        return film;
    }
    const bool sound = DGifSlurp(gif) == GIF_OK;
    Picture canvas{gif->SWidth, gif->SHeight, {}};
    canvas.rgb.assign(static_cast<std::size_t>(gif->SWidth) * gif->SHeight, see_through);
    for (int i = 0; sound && i < gif->ImageCount; ++i) {
        const SavedImage& image = gif->SavedImages[i];
        for (int b = 0; b + 1 < image.ExtensionBlockCount; ++b) {
            const ExtensionBlock& block = image.ExtensionBlocks[b];
            if (block.Function == APPLICATION_EXT_FUNC_CODE &&
                std::memcmp(block.Bytes, "NETSCAPE2.0", 11) == 0) {
                film.repeats = (&block)[1].Bytes[1] | (&block)[1].Bytes[2] << 8;
            }
        }
        GraphicsControlBlock control{};
        DGifSavedExtensionToGCB(gif, i, &control);
        const GifImageDesc& d = image.ImageDesc;
        put(image, d.ColorMap != nullptr ? *d.ColorMap : *gif->SColorMap, control.TransparentColor,
            canvas);
        film.shots.push_back({canvas, control.DelayTime, d.Width, d.Height});
        if (control.DisposalMode == DISPOSE_BACKGROUND) {
            canvas.rgb.assign(canvas.rgb.size(), see_through);
        }
    }
    DGifCloseFile(gif, &error);
    return film;
}

using Paint = std::function<std::uint32_t(int x, int y)>;

Picture painted(int width, int height, const Paint& paint) {
    Picture picture{width, height, {}};
    for (int i = 0; i < width * height; ++i) {
        picture.rgb.push_back(paint(i % width, i / width));
    }
    return picture;
}

int add(const std::string& name, const Picture& picture) {
    IMG_report image;
    image.width = picture.width;
    image.height = picture.height;
    image.depth = 24;
    image.bits_pixel = 32;
    image.bytes_line = 4 * picture.width;
    image.byte_order = 0;
    image.red = 0xFF0000;
    image.grn = 0xFF00;
    image.blu = 0xFF;
    IMG_alloc(&image);
    std::memcpy(image.data.get(), picture.rgb.data(), picture.rgb.size() * 4);
    return GIF_add_frame(name.c_str(), image, {0x202020, ""});
}

constexpr int width = 90;
constexpr int height = 70;

std::vector<Picture> frames() {
    const auto coarse = [](int x, int y) {
        return 0x202020U + static_cast<std::uint32_t>(x / 9 % 4 * 0x300000 + y / 7 % 5 * 0x2800);
    };
    const auto mark = [&](int x, int y) {
        return x >= 20 && x < 45 && y >= 30 && y < 41 ? 0xFF8000U + x % 3U : coarse(x, y);
    };
    const auto many = [&](int x, int y) { // 240 colours that are new
        return y < 12 && x < 20 ? static_cast<std::uint32_t>(0x400000 + y * 20 + x) : mark(x, y);
    };
    std::vector<Picture> all;
    for (const Paint& paint :
         {Paint(coarse), Paint(mark), Paint(mark), Paint(many), Paint(coarse)}) {
        all.push_back(painted(width, height, paint));
    }
    return all;
}

int biggest_step(const Picture& a, const Picture& b) {
    int most = 0;
    for (std::size_t i = 0; i < a.rgb.size(); ++i) {
        for (const int shift : {0, 8, 16}) {
            most = std::max(most, std::abs(static_cast<int>(a.rgb[i] >> shift & 255U) -
                                           static_cast<int>(b.rgb[i] >> shift & 255U)));
        }
    }
    return most;
}
#endif

class GifLoop : public PlotWindow {
protected:
    std::string file(const std::string& name) const { return dir.path() + "/" + name; }
};

} // namespace

#ifdef ZYR_HAVE_GIFLIB
TEST_F(GifLoop, HoldsThePicturesGiven) {
    struct Row {
        int interlaced, transparent, plays;
        const char* output; // in front of the name
    };
    constexpr Row rows[] = {
        {0, 0, 0, ""      },
        {1, 0, 1, ""      },
        {0, 0, 5, "|cat >"},
        {1, 1, 0, ""      },
    };
    for (const Row& row : rows) {
        std::vector<Picture> given = frames();
        if (row.transparent != 0) {
            given.erase(given.begin() + 3); // has more colours than one palette, as a whole
        }
        GIF_interlace(row.interlaced);
        GIF_transparent(row.transparent);
        ASSERT_TRUE(GIF_set_pace(.3F, 1.25F) && GIF_set_plays(row.plays));
        // A file that was read is not written again.
        const std::string name = file("loop" + std::to_string(&row - std::begin(rows)) + ".gif");
        for (const Picture& picture : given) {
            ASSERT_EQ(add(row.output + name, picture), 1);
        }
        ASSERT_EQ(GIF_end_frames(), 1);
        GIF_interlace(0);
        GIF_transparent(0);
        const Film film = film_of(name);
        ASSERT_EQ(film.shots.size(), given.size());
        EXPECT_EQ(film.repeats, row.plays == 1 ? -1 : std::max(row.plays - 1, 0));
        for (std::size_t i = 0; i < given.size(); ++i) {
            Picture expected = given[i];
            for (std::uint32_t& pixel : expected.rgb) {
                pixel = row.transparent != 0 && pixel == 0x202020 ? see_through : pixel;
            }
            EXPECT_EQ(film.shots[i].picture, expected)
                << i << " of " << name << " " << row.interlaced << row.transparent;
            EXPECT_EQ(film.shots[i].delay, i + 1 < given.size() ? 30 : 125);
        }
        if (row.transparent == 0) { // what changed alone
            EXPECT_EQ(film.shots[1].width * 1000 + film.shots[1].height, 25011);
            EXPECT_EQ(film.shots[2].width * film.shots[2].height, 1);
        }
        IMG_report image;
        EXPECT_EQ(GIF_read(name.c_str(), &image, 0), 1);
        if (row.transparent == 0) {
            EXPECT_EQ(picture_of_record(image), given[0]);
        }
    }
}

// More colours in one picture than a palette holds.
TEST_F(GifLoop, TakesTheNearestOfTooManyColors) {
    const Picture wide = painted(100, 80, [](int x, int y) {
        return static_cast<std::uint32_t>(x * 2 << 16 | y * 3 << 8 | (x + y));
    });
    const Picture plain = painted(100, 80, [](int, int) { return 0xFFFFFFU; });
    for (const Picture& picture : {plain, wide, plain}) {
        EXPECT_EQ(add(file("wide.gif"), picture), 1);
    }
    ASSERT_EQ(GIF_end_frames(), 1);
    const Film film = film_of(file("wide.gif"));
    ASSERT_EQ(film.shots.size(), 3U);
    EXPECT_EQ(film.shots[0].picture, plain);
    EXPECT_EQ(film.shots[2].picture, plain);
    EXPECT_LT(biggest_step(film.shots[1].picture, wide), 240);
    EXPECT_GT(biggest_step(film.shots[1].picture, plain), 240);
    EXPECT_EQ(film.shots[1].picture.rgb[37], wide.rgb[37]); // the first ones are exact
}

TEST_F(GifLoop, LeavesTheOldFileWhenItIsNotWhole) {
    const std::vector<Picture> given = frames();
    dir.write("loop.gif", "old");
    EXPECT_EQ(GIF_end_frames(), 0);
    EXPECT_EQ(add(file("loop.gif"), given[0]), 1);
    EXPECT_EQ(add(file("loop.gif"), painted(width - 1, height, [](int, int) { return 0U; })), 0);
    EXPECT_TRUE(GIF_has_frames());
    EXPECT_EQ(GIF_end_frames(), 0);
    EXPECT_EQ(read_text(file("loop.gif")), "old");
    for (const bool first :
         {true, false}) { // a picture is lost before the file was opened, or after
        if (first) {
            GIF_lose_frame();
        }
        EXPECT_EQ(add(file("loop.gif"), given[0]), 1);
        if (!first) {
            GIF_lose_frame();
        }
        EXPECT_EQ(GIF_end_frames(), 0);
        EXPECT_EQ(read_text(file("loop.gif")), "old");
    }
    EXPECT_EQ(GIF_end_frames(), 0); // and the next one is none the worse
    EXPECT_EQ(add(file("next.gif"), given[0]), 1);
    EXPECT_EQ(GIF_end_frames(), 1);
    for (const char* name : {"/dev/full", "|exit 3", "/proc/none.gif"}) {
        const bool opened = add(name, given[0]) == 1;
        EXPECT_EQ(GIF_end_frames(), 0) << name << opened;
        EXPECT_FALSE(GIF_has_frames());
    }
    EXPECT_FALSE(GIF_set_pace(-1.0F, 0.0F) || GIF_set_pace(0.1F, 1e9F) || GIF_set_plays(-1));
}

// The program's own frames, in memory and in a window.
TEST_F(GifLoop, ShowsTheFramesOfARun) {
    for (const int radius : {4, 9, 6}) {
        write("disc" + std::to_string(radius), disc_product(radius));
    }
    const std::string files = " disc4 disc9 disc6 -ge 403x301 -cof auto -pp nolooptitle,";
    for (const char* device : {"-de d,memory", "-de d"}) {
        const std::string args = std::string("-ba -me warn ") + device + files;
        ASSERT_EQ(launch(args + "agif=loop.gif,gif_delay=.2")->wait().code, 0);
        ASSERT_EQ(launch(args + "png=%i.png")->wait().code, 0);
        const Film film = film_of(file("loop.gif"));
        ASSERT_EQ(film.shots.size(), 3U) << device;
        EXPECT_EQ(film.repeats, 0);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(film.shots[i].picture, read_png(file("0" + std::to_string(i) + ".png"))) << i;
            EXPECT_EQ(film.shots[i].delay, i < 2 ? 20 : 40);
        }
    }
    const ProgramRun full = launch("-ba -me warn -de d,memory" + files + "agif=/dev/full")->wait();
    EXPECT_EQ(full.code, 4);
    EXPECT_NE(full.err.find("PLT_dump: Unable to write GIF file: /dev/full\n"), std::string::npos)
        << full.err;
    EXPECT_NE(launch("-ba -me warn -de d,memory" + files + "agif,gif_delay=x")
                  ->wait()
                  .err.find("plot_param: No delay: x\n"),
              std::string::npos);
    EXPECT_EQ(film_of(file("zyr_loop.gif")).shots.size(), 3U);
}
#endif
