// Pictures between the window and files: what an image dump writes is what the
// window shows, and what lies in an image file is laid over the plot.
#include "gks.h"
#include "image_view.h"
#include "plot_window.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>

#include <png.h>

namespace {

constexpr std::initializer_list<int> depths = {24, 16, 8};

// By the kind's own reader: there is no display that would bound the depth.
Picture read_picture(const std::string& name, const std::string& kind) {
    if (kind == "png")
        return read_png(name);
    IMG_report image;
    image.depth = 32;
    const int status = kind == "gif"   ? GIF_read(name.c_str(), &image, 0)
                       : kind == "xwd" ? XWD_read(name.c_str(), &image, 0)
                                       : IMG_read_zyr(name.c_str(), &image, 0);
    return status != 0 ? picture_of_record(image) : Picture{};
}

// A colour map's components above 0.99 count as full.
Picture as_captured(Picture picture, int depth) {
    for (std::uint32_t& pixel : picture.rgb) {
        for (const unsigned shift : {0U, 8U, 16U})
            if (depth == 8 && (pixel >> shift & 255U) > 252)
                pixel |= 255U << shift;
    }
    return picture;
}

Picture averages(Picture picture) {
    for (std::uint32_t& pixel : picture.rgb)
        pixel = ((pixel >> 16U) + (pixel >> 8U & 255U) + (pixel & 255U)) / 3 * 0x10101;
    return picture;
}

// --- Images to be laid over a plot ----------------------------------------------

constexpr std::uint32_t colors[] = {0, 0xFFFFFF, 0xFF0000, 0x7FFF00, 0x00FFFF, 0xFF00FF};

std::uint8_t pattern(int x, int y, int bits) {
    const int count = bits == 1 ? 2 : static_cast<int>(std::size(colors));
    return static_cast<std::uint8_t>((x / 3 + y / 2) % count);
}

std::uint32_t gray(int x, int y) {
    return 40U * pattern(x, y, 8) + 15U;
}

// Greys of 16 bits, of which the upper eight count.
void write_gray_png(const std::string& name, int width, int height) {
    std::vector<png_uint_16> data;
    for (int i = 0; i < width * height; ++i)
        data.push_back(static_cast<png_uint_16>(gray(i % width, i / width) << 8U | 0x37U));
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(width);
    png.height = static_cast<png_uint_32>(height);
    png.format = PNG_FORMAT_LINEAR_Y;
    ASSERT_NE(png_image_write_to_file(&png, name.c_str(), 0, data.data(), 0, nullptr), 0);
    EXPECT_EQ(read_text(name).substr(24, 2), std::string("\x10\0", 2)) << "bits, and grey";
}

// A picture of 24 bits, or of a palette with 8, 4 or 1 bits a pixel: as few as its
// colours need.
void write_png(const std::string& name, int bits, int width, int height) {
    constexpr int many = 17; // more than four bits count
    std::array<png_byte, std::size_t{3} * many> palette{};
    for (std::size_t i = 0; i < 3 * std::size(colors); ++i)
        palette[i] = static_cast<png_byte>(colors[i / 3] >> (16 - 8 * (i % 3)));
    std::vector<png_byte> data;
    for (int i = 0; i < width * height; ++i) {
        const std::uint8_t index = pattern(i % width, i / width, bits);
        const auto first = palette.begin() + 3 * index;
        if (bits == 24)
            data.insert(data.end(), first, first + 3);
        else
            data.push_back(index);
    }
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(width);
    png.height = static_cast<png_uint_32>(height);
    png.format = bits == 24 ? PNG_FORMAT_RGB : PNG_FORMAT_RGB_COLORMAP;
    png.colormap_entries = bits == 8 ? many : bits == 4 ? std::size(colors) : 2;
    ASSERT_NE(png_image_write_to_file(&png, name.c_str(), 0, data.data(), 0, palette.data()), 0);
    EXPECT_EQ(read_text(name).at(24), bits == 24 ? 8 : bits) << "a sample's bits, by the header";
}

// Pixels beyond the table, which all are its entry 0.
void write_xwd_beyond(const std::string& name, int width, int height) {
    IMG_report image;
    image.width = width;
    image.height = height;
    image.depth = image.bits_pixel = 8;
    image.bytes_line = width;
    image.color_type = 1;
    IMG_alloc_colors(&image, 2);
    image.colors[0] = {1.0F, 0.0F, 0.0F};
    IMG_alloc(&image);
    std::memset(image.data.get(), 200, static_cast<std::size_t>(width) * height);
    XWD_write(name.c_str(), &image);
}

class CaptureTest : public PlotWindow {
protected:
    void SetUp() override {
        PlotWindow::SetUp();
        write("disc", disc_product(9));
        write("other", disc_product(4, 32));
    }
    ProgramRun dump(const std::string& args) { return launch("-ba -me warn " + args)->wait(); }
    std::string file(const std::string& name) const { return dir.path() + "/" + name; }
};

} // namespace

TEST_F(CaptureTest, FilesAgreeWithTheWindow) {
    struct Row {
        const char* kind;
        const char* option;
        int depth; // 0: all
    };
    constexpr Row rows[] = {
        {"png", "-pp full,png=shot.png",     0 },
        {"gif", "-pp full,gif=shot.gif",     0 },
        {"xwd", "-pp full,xwd=shot.xwd",     0 },
        {"img", "-pp full,img=shot.img",     24},
        {"png", "-pp full -of png=shot.png", 24},
        {"gif", "-pp full -of gif=shot.gif", 24},
    };
    constexpr std::pair<int, int> servers[] = {
        {24, -1         },
        {16, -1         },
        {8,  -1         },
        {8,  DirectColor}
    };
    for (const auto& [depth, visual_class] : servers) {
        use_server(depth, visual_class);
        const Picture seen = as_captured(picture_of("disc -ge 403x301 -pp full"), depth);
        ASSERT_GT(seen.colors(), 8);
        for (const Row& row : rows) {
            if (row.depth != 0 && row.depth != depth)
                continue;
            const std::string name = file(std::string("shot.") + row.kind);
            std::remove(name.c_str());
            const ProgramRun run = dump(std::string("disc -ge 403x301 ") + row.option);
            EXPECT_EQ(run.code, 0);
            EXPECT_EQ(run.err, "");
            const Picture written = read_picture(name, row.kind);
            const Picture expected = row.kind == std::string("img") ? averages(seen) : seen;
            EXPECT_EQ(pixels_that_differ(written, expected), 0) << depth << " " << row.option;
        }
    }
}

TEST_F(CaptureTest, EachFrameHasItsFile) {
    const Picture first = picture_of("disc");
    const Picture second = picture_of("other");
    ASSERT_NE(first, second);
    EXPECT_EQ(dump("disc other -ip shots -ti Two_files -pp png=%p_%i.png").err, "");
    EXPECT_EQ(read_png(file("shots/Two_files_00.png")), first);
    EXPECT_EQ(read_png(file("shots/Two_files_01.png")), second);
    EXPECT_EQ(dump("disc -pp png").err, "");
    EXPECT_EQ(read_png(file("zyr_win.png")), first) << "without a name or frames";
}

// A name's date keys take the file's date as its name says it, and the rest from
// the product.
TEST_F(CaptureTest, NamesTakeTheDateOfTheProduct) {
    write("20180102.nids", disc_product(9));
    for (const char* args : {"disc other -pp png=%Y%m%d_%h%n.png",
                             "20180102.nids -if @%Y%m%d.nids -pp png=%y%m%d_%h%n.png"}) {
        EXPECT_EQ(dump(args).err, "") << args;
    }
    for (const char* name : {"20190520_2231.png", "20190520_2232.png", "180102_2231.png"}) {
        EXPECT_TRUE(std::filesystem::exists(file(name))) << name;
    }
}

TEST_F(CaptureTest, ImagesLieOverThePlot) {
    struct Row {
        int bits; // 0: an XWD file whose pixels are beyond its table; 16: greys
        int width, height, x, y;
        const char* kind;
        const char* rest;    // of the entry, after the file
        std::uint32_t clear; // the colour that is not drawn
    };
    // The picture fills the window of 401 by 301. One picture holds them all,
    // each over those before it.
    constexpr Row rows[] = {
        {24, 20,  14,  0,   0,   "im", "",                    0       },
        {24, 500, 160, 0,   150, "im", ":#FF0000:0:150",      0xFF0000},
        {24, 20,  14,  30,  40,  "if", ":black:30:40",        0       },
        {8,  20,  14,  371, 47,  "im", ":chartreuse:-10:47",  0x7FFF00},
        {8,  20,  14,  -5,  286, "im", "::-386:-1",           0       },
        {4,  21,  15,  100, 277, "im", ":white:100:-9",       0xFFFFFF},
        {4,  21,  15,  395, 295, "im", ":#00FFFF:395:295",    0x00FFFF},
        {1,  19,  15,  7,   8,   "im", "::7:8",               0       },
        {1,  19,  15,  9,   199, "im", ":white:9:199",        0xFFFFFF},
        {8,  20,  14,  -99, -99, "im", "::99999999:99999999", 0       },
        {0,  20,  14,  5,   66,  "im", "::5:66",              0       },
        {16, 25,  14,  60,  66,  "im", "::60:66",             0       },
    };
    std::string list = "s+9999:none";
    for (const Row& row : rows) {
        std::string name = std::to_string(&row - rows);
        if (row.bits == 0)
            write_xwd_beyond(file(name), row.width, row.height);
        else if (row.bits == 16)
            write_gray_png(file(name), row.width, row.height);
        else
            write_png(file(name), row.bits, row.width, row.height);
        list.append(",").append(row.kind).append(":").append(name).append(row.rest);
    }
    std::replace(list.begin(), list.end(), ',', ' ');
    dir.write("images.lst", list);
    const std::string plot =
        "disc -ge 401x301 -dr sum,map -pp full -pd ps,35.35,-97.6,401,301,.01,.01 -mf ";
    for (const int depth : depths) {
        use_server(depth);
        Picture expected = picture_of(plot + "s+9999:none");
        ASSERT_GT(expected.colors(), 1);
        for (const Row& row : rows) {
            if (row.bits == 16 && depth == 8)
                continue; // without a table they are pixels of the display
            for (int y = std::max(0, -row.y); y < std::min(row.height, 301 - row.y); ++y) {
                for (int x = std::max(0, -row.x); x < std::min(row.width, 401 - row.x); ++x) {
                    const std::uint32_t pixel = row.bits == 0    ? 0xFF0000
                                                : row.bits == 16 ? gray(x, y) * 0x10101
                                                                 : colors[pattern(x, y, row.bits)];
                    if (pixel != row.clear)
                        expected.rgb[(row.y + y) * 401 + row.x + x] = pixel;
                }
            }
        }
        for (std::uint32_t& pixel : expected.rgb)
            pixel &= depth == 16 ? 0xF8FCF8 : 0xFFFFFF;
        if (depth == 8) // its last entry is the greys
            dir.write("images.lst", list.substr(0, list.rfind(' ')));
        const Picture seen = picture_of(plot + "fi:" + file("images.lst"));
        EXPECT_EQ(pixels_that_differ(seen, expected), 0) << depth;
    }
}

// With margins the map is smaller than the page: "if:" counts from the page's
// corners, "im:" from the map's.
TEST_F(CaptureTest, ImagesArePlacedOnThePageOrOnTheMap) {
    constexpr int width = 20;
    constexpr int height = 14;
    write_png(file("i.png"), 24, width, height);
    const auto place_of = [&](const std::string& kind, int x, int y) {
        const Picture seen =
            picture_of("disc -ge 401x301 -dr sum,map -mf " + kind +
                       ":i.png:black:" + std::to_string(x) + ":" + std::to_string(y));
        const auto fits = [&](int left, int top) {
            for (int i = 0; i < width * height; ++i) {
                const std::uint32_t pixel = colors[pattern(i % width, i / width, 24)];
                const int at = (top + i / width) * seen.width + left + i % width;
                if (pixel != 0 && seen.rgb[at] != pixel)
                    return false;
            }
            return true;
        };
        for (int i = 0; i < (seen.width - width) * (seen.height - height); ++i) {
            const int left = i % (seen.width - width);
            const int top = i / (seen.width - width);
            if (fits(left, top))
                return std::pair{left, top};
        }
        return std::pair{-1, -1};
    };
    EXPECT_EQ(place_of("if", 3, 5), (std::pair{3, 5}));
    EXPECT_EQ(place_of("if", -7, -9), (std::pair{401 - width - 7, 301 - height - 9}));
    constexpr int margin = 17; // 0.04 of the width, 16.04 pixels, above and below
    EXPECT_EQ(place_of("im", 3, 5), (std::pair{3, 5 + margin}));
    EXPECT_EQ(place_of("im", -7, -9), (std::pair{401 - width - 7, 301 - height - 9 - margin}));
}

// Records of any layout, true or false about themselves, at any place.
TEST_F(CaptureTest, OddRecordsAreDrawnOrRefused) {
    constexpr int layouts[] = {1, 2, 3, 4, 8, 15, 16, 24, 32, 48, 0, -5};
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    ASSERT_EQ(gopen_gks(nullptr, 0), 0);
    for (const int depth : depths) {
        use_server(depth);
        ASSERT_EQ(gopen_ws(1, server->name().c_str(), ws_window), 0);
        std::mt19937 random(7);
        const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
        int drawn = 0;
        for (int i = 0; i < 200; ++i) {
            IMG_report image;
            image.width = below(900);
            image.height = below(60);
            image.depth = layouts[below(std::size(layouts))];
            image.bits_pixel = below(3) == 0 ? 32 : image.depth;
            image.bytes_line = image.width * std::max(image.bits_pixel, 1) / 8 + below(5);
            image.byte_order = below(2);
            image.red = below(2) == 0 ? 0xFF0000U : static_cast<unsigned>(random());
            if (below(2) == 0)
                IMG_alloc_colors(&image, 1 + below(300));
            if (IMG_alloc(&image) != 0) {
                std::generate_n(image.data.get(), image.bytes_line * image.height, random);
                const int x = static_cast<int>(random());
                drawn += goverlay_image(&image, "", below(2) == 0 ? x : x % 500, x % 300);
            }
        }
        EXPECT_GT(drawn, 50);
        gclose_ws(1);
    }
}

// No picture and no image: the plot is made all the same.
TEST_F(CaptureTest, WhatCannotBeDoneIsTold) {
    dir.write("torn.png", std::string("\x89PNG\r\n\x1a\n", 8) + "torn");
    struct Row {
        const char* args;
        std::string_view err;
    };
    constexpr Row rows[] = {
        {"-ba disc -pp png=shot.png -mf im:none.png,lalo",
         "MAP_process: Image file not found: none.png\n"                                                                        },
        {"-ba disc -pp png=shot.png -mf im:torn.png,lalo",
         "MAP_process: Unable to draw image: torn.png\n"                                                                        },
        {"-de p,o.ps disc -mf im:i.png,im:i.png,lalo",
         "MAP_process: Images are drawn in a window alone: i.png\n"                                                             },
        {"-de p,o.ps disc -pp png=o.png",                  "PLT_dump: Images are taken of a window alone\n"
                                          "PLT_dump: Unable to write PNG file: o.png\n"},
        {"-ba disc -of png=|false",                        "PLT_dump: Unable to write PNG file: |false\n"
                                    "PLT_dump: |false: the command failed\n"                 },
        {"-ba disc -pp img=|true",                         // more than a pipe holds
         "PLT_dump: Unable to write IMG file: |true\n"
         "PLT_dump: |true: it was not written whole\n"                                        },
        {"-ba disc -pp gif=/proc/o.gif",
         "Unable to open GIF file\nPLT_dump: Unable to write GIF file: /proc/o.gif\n"
         "PLT_dump: /proc/o.gif: No such file or directory\n"                                                                   },
    };
    for (const Row& row : rows) {
        const ProgramRun run = launch(std::string("-me warn ") + row.args)->wait();
        const bool lost = row.err.find("Unable to write") != std::string_view::npos;
        EXPECT_EQ(run.code, lost ? 4 : 0) << row.args;
        EXPECT_EQ(run.err, row.err) << row.args;
    }
}

// The script that needs no display, beside the program as it is installed.
TEST_F(CaptureTest, ZyrshotMakesPicturesWithoutADisplay) {
    const std::string script = file("zyrshot");
    std::filesystem::copy(ZYR_SOURCE_DIR "/scripts/zyrshot", script);
    std::filesystem::create_symlink(ZYR_PROGRAM, file("zyrrad"));
    const Picture seen = picture_of("disc -ge 403x301 -cof auto -pp full");
    for (const char* copy : {"d/disc.nids.gz", "201905202230.nids", "radar.png"}) {
        dir.write(copy, read_text(file("disc")));
    }
    struct Row {
        const char* args;
        int code;
        const char* written; // empty: nothing
        const char* err;     // begins so
    };
    constexpr Row rows[] = {
        {"-s 403x301 disc a.png -- -pp full",                   0,  "a.png",              ""                                },
        {"-s 403x301 disc a.gif -- -pp full",                   0,  "a.gif",              ""                                },
        {"-s 403x301 -a disc other m.gif -- -pp full",          0,  "m.gif",              ""                                },
        {"-a disc other m.png",                                 2,  "",                   "zyrshot: an animation ends in"   },
        {"-s 403x301 other disc %i.png -- -pp full",            0,  "01.png",             ""                                },
        {"-s 403x301 other d/disc.nids.gz n%f.png -- -pp full", 0,  "ndisc.png",          ""                                },
        {"-s 403x301 la l.png -- -pp full",                     0,  "l.png",              ""                                },
        {"-s 403x301 -cu la#2 cu%f.gif -- -pp full",            0,  "cu201905202230.gif", ""                                },
        {"disc disc same%f.png",                                4,  "",                   "zyrshot: samedisc.png is that of"},
        {"radar.png radar.png",                                 4,  "",                   "zyrshot: the picture is an input"},
        {"none a.png",                                          10, "",                   "NIDS_open_file: Unable to"       },
        {"disc a.jpg",                                          2,  "",                   "zyrshot: no .png or .gif"        },
        {"-s 403 disc a.png",                                   2,  "",                   "zyrshot: no size: 403\n"         },
        {"disc other a.png",                                    2,  "",                   "zyrshot: several files need"     },
        {"disc none/a.png",                                     1,  "",                   "zyrshot: no such directory"      },
        {"-x disc a.png",                                       2,  "",                   "zyrshot: unknown option: -x"     },
    };
    std::vector<std::unique_ptr<RunningProgram>> running; // all at once
    for (const Row& row : rows) {
        ProgramCall call;
        call.env["zyrdefault"] = ZYR_SOURCE_DIR "/etc";
        call.env["zyrcurtime"] = "201905202231";
        call.directory = dir.path();
        std::istringstream words(row.args);
        for (std::string word; words >> word;)
            call.args.push_back(word);
        running.push_back(std::make_unique<RunningProgram>(script, call));
    }
    for (const Row& row : rows) {
        const ProgramRun run = running[&row - rows]->wait();
        EXPECT_EQ(run.code, row.code) << row.args << run.err;
        EXPECT_EQ(run.err.substr(0, std::strlen(row.err)), row.err) << row.args;
        EXPECT_EQ(run.err.empty(), row.code == 0) << row.args << run.err;
        const std::string name = row.written;
        if (!name.empty()) {
            EXPECT_EQ(read_picture(file(name), name.substr(name.size() - 3)), seen) << row.args;
        }
    }
    EXPECT_EQ(read_text(file("radar.png")), read_text(file("disc")));
}

// More files than a loop holds, and a disk without room for the picture.
TEST_F(CaptureTest, ZyrshotWritesAllAndSaysWhatItCannot) {
    const std::string script = file("zyrshot");
    std::filesystem::copy(ZYR_SOURCE_DIR "/scripts/zyrshot", script);
    std::filesystem::create_symlink(ZYR_PROGRAM, file("zyrrad"));
    const auto shoot = [&](std::vector<std::string> args) {
        ProgramCall call;
        call.env["zyrdefault"] = ZYR_SOURCE_DIR "/etc";
        call.env["PATH"] = file("bin") + ":/usr/bin:/bin";
        call.directory = dir.path();
        call.args = std::move(args);
        return RunningProgram(script, call).wait();
    };
    std::vector<std::string> many(max_frames + 2, "disc");
    many.insert(many.begin(), {"-s", "40x30"});
    many.emplace_back("n%i.png");
    const ProgramRun all = shoot(many);
    EXPECT_EQ(all.code, 0) << all.err;
    EXPECT_TRUE(std::filesystem::exists(file("n000.png"))); // as wide as the last one needs
    EXPECT_TRUE(std::filesystem::exists(file("n129.png")));

    std::filesystem::permissions(
        dir.write("bin/cp", "#!/bin/sh\nhead -c 9 \"$2\" >\"$3\"\nexit 1\n"),
        std::filesystem::perms::owner_all);
    dir.write("to/old.png", "old");
    const ProgramRun full = shoot({"disc", "to/old.png"});
    EXPECT_EQ(full.code, 1);
    EXPECT_EQ(read_text(file("to/old.png")), "old");
    const auto entries = std::filesystem::directory_iterator(file("to"));
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
    const std::size_t at = full.err.find("/tmp/zyrshot.");
    ASSERT_NE(at, std::string::npos) << full.err;
    const std::string kept = full.err.substr(at, full.err.find('\n', at) - at);
    EXPECT_EQ(read_png(kept + "/win=disc.png").width, 1024);
    std::filesystem::remove_all(kept);
}
