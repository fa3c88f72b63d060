// The arithmetic of the loop and of the pixel zoom, and the frame table without
// a display.
#include <gtest/gtest.h>

#include "gks.h"
#include "gks_loop.h"
#include "gks_zoom.h" // after gtest: Xlib's macros hide names of its

#include <algorithm>
#include <array>
#include <vector>

#include <X11/Xutil.h>

namespace {

TEST(NextFrame, TurnsAtTheEndsOfTheRange) {
    struct Row {
        int cur, step, first, last, direct;
        int expected, new_direct;
        const char* note;
    };
    constexpr Row rows[] = {
        {1, 0,  0, 4, 1, 2, 1, "forward"                          },
        {4, 0,  0, 4, 1, 0, 1, "forward from the last frame"      },
        {0, 0,  0, 4, 0, 4, 0, "backward from the first frame"    },
        {0, -1, 0, 4, 1, 4, 1, "a step back from the first frame" },
        {4, 0,  0, 4, 3, 3, 2, "rocking turns without repeating"  },
        {0, 0,  0, 4, 2, 1, 3, "rocking turns at the first frame" },
        {2, 0,  0, 4, 2, 1, 2, "rocking on its way back"          },
        {1, 0,  0, 1, 3, 0, 2, "rocking between two frames"       },
        {0, 0,  0, 0, 3, 0, 3, "rocking on a single frame"        },
        {3, 0,  1, 3, 1, 1, 1, "a range within the frames"        },
        {2, 9,  0, 4, 1, 0, 1, "a step far beyond the last frame" },
        {2, -9, 0, 4, 2, 1, 3, "a step far before the first frame"},
    };
    for (const Row& row : rows) {
        int direct = row.direct;
        EXPECT_EQ(gnext_frame(row.cur, row.step, row.first, row.last, &direct), row.expected)
            << row.note;
        EXPECT_EQ(direct, row.new_direct) << row.note;
    }
}

TEST(LoopDelay, StepsAreFineForShortDelays) {
    // Delay, step when slower, step when faster.
    constexpr float rows[][3] = {
        {0.5F,  0.1F,  -0.1F },
        {0.1F,  0.1F,  -0.05F}, // not the same step back
        {0.05F, 0.05F, -0.05F},
        {0.0F,  0.05F, -0.05F}
    };
    for (const auto& [delay, slower, faster] : rows) {
        EXPECT_FLOAT_EQ(gloop_delay_step(delay, true), slower) << delay;
        EXPECT_FLOAT_EQ(gloop_delay_step(delay, false), faster) << delay;
    }
}

TEST(ZoomOrigin, KeepsThePartWithinThePicture) {
    struct Row {
        int size, centre, f, expected;
        const char* note;
    };
    constexpr Row rows[] = {
        {640, 320, 2,    160, "about the middle"              },
        {640, 10,  2,    0,   "held at the near edge"         },
        {640, 630, 2,    320, "held at the far edge"          },
        {641, 640, 2,    320, "odd size: half a pixel is left"},
        {642, 641, 4,    481, "no column beyond the picture"  },
        {640, 639, 1024, 639, "one pixel fills the window"    },
    };
    for (const Row& row : rows)
        EXPECT_EQ(gzoom_origin(row.size, row.centre, row.f), row.expected) << row.note;
}

// Every pixel of the magnified image is the one of the source that covers it.
TEST(Magnify, ReplicatesPixelsOfEverySizeAndOrder) {
    constexpr int width = 37;
    constexpr int height = 11;
    for (int kind = 0; kind < 24; ++kind) {
        XImage image{};
        image.width = width;
        image.height = height;
        image.format = ZPixmap;
        image.byte_order = (kind & 1) != 0 ? MSBFirst : LSBFirst;
        image.bitmap_bit_order = (kind & 2) != 0 ? MSBFirst : LSBFirst;
        image.bitmap_unit = 32;
        image.bitmap_pad = 32;
        image.bits_per_pixel = std::array{1, 4, 8, 16, 24, 32}[kind / 4];
        image.depth = std::min(image.bits_per_pixel, 24);
        image.bytes_per_line = (width * image.bits_per_pixel + 31) / 32 * 4;
        std::vector<char> data(static_cast<std::size_t>(image.bytes_per_line * height));
        image.data = data.data();
        ASSERT_NE(XInitImage(&image), 0);
        const unsigned long mask = (1UL << image.depth) - 1;
        const auto color = [mask](int x, int y) {
            return static_cast<unsigned long>(x * 2654435 + y * 40503 + 7 * (x ^ y)) & mask;
        };
        for (const int f : {2, 3, 8}) {
            for (int i = 0; i < width * height; ++i)
                XPutPixel(&image, i % width, i / width, color(i % width, i / width));
            const int ox = gzoom_origin(width, 21, f);
            const int oy = gzoom_origin(height, 9, f);
            gmagnify(image, ox, oy, f);
            int wrong = 0;
            for (int i = 0; i < width * height; ++i) {
                const int x = i % width;
                const int y = i / width;
                wrong += XGetPixel(&image, x, y) != color(ox + x / f, oy + y / f) ? 1 : 0;
            }
            EXPECT_EQ(wrong, 0) << "kind " << kind << ", factor " << f;
        }
    }
}

TEST(Frames, WithoutAWindowChangeNothing) {
    EXPECT_EQ(gcreate_frame(-1), 0);
    EXPECT_EQ(gselect_frame(0), -1);
    EXPECT_EQ(gdisplay_frame(0), -1);
    EXPECT_EQ(gdelete_frame(0), 0);
    EXPECT_EQ(gget_num_images(), 0);
    EXPECT_EQ(ginc_frame(1), -1);
    EXPECT_EQ(gzoom(frame_current, 5, 5, -2, 0), 0);
    EXPECT_EQ(gget_zoom(), 1);
    EXPECT_FLOAT_EQ(xZ_p(17.0F), 17.0F);
}

TEST(Frames, KeepASmallBlockOfDataAndRefuseALongerOne) {
    std::vector<unsigned char> data(frame_data_size + 1, 7);
    EXPECT_EQ(gset_image_data(127, data.data(), frame_data_size), 0);
    EXPECT_EQ(gset_image_data(127, data.data(), frame_data_size + 1), -1);
    EXPECT_EQ(gset_image_data(max_frames, data.data(), 1), -1);
    EXPECT_EQ(gset_image_data(0, data.data(), -1), -1);
    std::vector<unsigned char> back(frame_data_size);
    EXPECT_EQ(gget_image_data(127, back.data()), frame_data_size);
    EXPECT_EQ(back[frame_data_size - 1], 7);
    EXPECT_EQ(gset_loop_delay(2.0F, 127), 1);
    EXPECT_EQ(gset_loop_delay(2.0F, max_frames), 0);
    EXPECT_FLOAT_EQ(gget_frame_delay(127), 2.0F);
}

} // namespace
