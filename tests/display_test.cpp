// The kernel at a display: each test opens a workstation on an X server of its
// own in this process, and a second connection looks at what is there.
#include <gtest/gtest.h>

#include "gks.h"
#include "zyr.h"
#include "zyrresrc.h"

#include "gks_evnt.h"
#include "gks_x11.h" // after gtest: Xlib's macros hide names of its
#include "x_server.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::uint32_t black = 0;
constexpr std::uint32_t red = 0xff0000;
constexpr std::uint32_t green = 0x00ff00;
constexpr std::uint32_t blue = 0x0000ff;

void set_color(int ind, std::uint32_t rgb) {
    const auto part = [&](int shift) { return static_cast<float>(rgb >> shift & 255U) / 255.0F; };
    const Gcolr_rep rep = {part(16), part(8), part(0)};
    EXPECT_EQ(gset_colr_rep(1, ind, &rep), 0);
}

void fill(float x0, float y0, float x1, float y1, int color) {
    gset_fill_colr_ind(color);
    const Gpt pts[] = {
        {x0, y0},
        {x1, y0},
        {x1, y1},
        {x0, y1},
        {x0, y0}
    };
    EXPECT_EQ(gfill_area(5, pts), 0);
}

class AtDisplay : public testing::Test {
protected:
    explicit AtDisplay(int depth = 24) : server(std::make_unique<XServer>(depth)) {}
    void SetUp() override {
        if (!server->works())
            GTEST_SKIP() << "no X server";
        user = std::make_unique<XUser>(*server);
        for (const char* name : {"zyrwindow", "WINDOW", "zyrinverse", "zyrlocal_cmap"})
            unsetenv(name);
        gset_rw_colors(1); // a display without writable cells has put it off for good
        gset_background("");
        gset_geometry("");
        gopen_gks(nullptr, 10000);
    }
    int open(Gws_type type = ws_window, const std::string& rest = "") const {
        return gopen_ws(1, (server->name() + rest).c_str(), type);
    }
    // The window, after all that was drawn has reached it.
    Picture shown() const {
        gupdate_window();
        gsync();
        return user->look(user->find_window());
    }
    void TearDown() override {
        gclose_ws(1);
        gclose_gks();
    }
    std::unique_ptr<XServer> server;
    std::unique_ptr<XUser> user;
};

// --- Pictures and colours -------------------------------------------------------

class Depths : public testing::WithParamInterface<int>, public AtDisplay {
protected:
    Depths() : AtDisplay(GetParam()) {}
};

TEST_P(Depths, ColorsReachTheScreen) {
    gset_background("#204060");
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(gget_win_depth(), GetParam());
    EXPECT_EQ(gset_fill_colr_ind(7), -1) << "has no colour yet";
    EXPECT_EQ(gget_fill_colr(), 1);
    set_color(1, green);
    set_color(7, red);
    fill(0.25F, 0.25F, 0.5F, 0.5F, 7);
    fill(0.6F, 0.25F, 0.8F, 0.5F, 505); // a print colour stands for 1
    const int before = gget_color_ind(7);
    set_color(7, red);
    EXPECT_EQ(gget_color_ind(7), before);
    set_color(7, blue); // what was drawn, and then what is
    fill(0.25F, 0.6F, 0.5F, 0.8F, 7);
    const Picture picture = shown();
    ASSERT_EQ(picture.width, 640);
    ASSERT_EQ(picture.height, 512);
    const bool writable = GetParam() == 8;
    const std::uint32_t kept = GetParam() == 16 ? 0xf8fcf8 : 0xffffff;
    const std::array<std::uint32_t, 4> seen = {picture.at(192, 320), picture.at(358, 320),
                                               picture.at(192, 150), picture.at(5, 5)};
    const std::array<std::uint32_t, 4> expected = {writable ? blue : red, green, blue, 0x204060};
    for (std::size_t i = 0; i < seen.size(); ++i)
        EXPECT_EQ(seen[i], expected[i] & kept) << i;
    int grn = 0;
    int rest = 0;
    gget_color_rgb256(-1, &rest, &grn, &rest);
    EXPECT_NEAR(grn, 0x40, 8);
}

INSTANTIATE_TEST_SUITE_P(Screens, Depths, testing::Values(8, 16, 24));

TEST_F(AtDisplay, AnAreaHeldBackComesInItsTurn) {
    ASSERT_EQ(open(), 0);
    set_color(1, green);
    set_color(2, red);
    const Glim left = {0.1F, 0.3F, 0.1F, 0.3F};
    const Glim clip = {0.0F, 0.45F, 0.0F, 1.0F};
    fill(0.1F, 0.1F, 0.3F, 0.3F, 1);
    gclear_region(&left); // over an area still held
    fill(0.4F, 0.1F, 0.5F, 0.3F, 1);
    fill(0.4F, 0.1F, 0.5F, 0.3F, 2); // hides its twin
    gset_vp(1, &clip);
    gset_win(1, &clip);
    gsel_norm_tran(1); // from here on the right half of the pair is out of reach
    fill(0.4F, 0.1F, 0.5F, 0.3F, 1);
    gset_fill_int_style(GPAT); // lets what is below shine through
    gset_fill_style_ind(10);
    fill(0.4F, 0.1F, 0.5F, 0.3F, 2);
    const Picture picture = shown();
    const auto at = [&](float x, float y) {
        return picture.at(static_cast<int>(x * 511), static_cast<int>((1.0F - y) * 511));
    };
    EXPECT_EQ(at(0.2F, 0.2F), black);
    EXPECT_EQ(at(0.42F, 0.2F), green);
    EXPECT_EQ(at(0.48F, 0.2F), red);
    EXPECT_EQ(gclear_ws(1, 1), 0) << "sets the style again before its pattern";
}

// --- Window -----------------------------------------------------------------------

TEST_F(AtDisplay, GeometryIsHeldWithinWhatAServerCanKeep) {
    struct Row {
        const char* text;
        int x, y, width, height;
        const char* message;
    };
    constexpr Row rows[] = {
        {"300x200-0-10", 1024 - 300, 800 - 200 - 10, 300,  200, ""                                 },
        {"300x200+7",    100,        100,            300,  200, ""                                 },
        {"+7+9",         7,          9,              640,  512, ""                                 },
        {"0x0",          100,        100,            640,  512, ""                                 },
        {"99999x30",     100,        100,            8192, 30,  "gopen_ws: window size cut to 8192"},
        {"-5x-5",        100,        100,            640,  512, "invalid geometry: -5x-5"          },
        {"300",          100,        100,            640,  512, ""                                 },
    };
    RES_conv_data("warn", nullptr, CV_mess);
    for (const Row& row : rows) {
        gset_geometry(row.text);
        testing::internal::CaptureStderr();
        ASSERT_EQ(open(), 0) << row.text;
        XWindowAttributes is{};
        XGetWindowAttributes(user->display(), user->find_window(), &is);
        EXPECT_EQ((std::array{is.x, is.y, is.width, is.height}),
                  (std::array{row.x, row.y, row.width, row.height}))
            << row.text;
        gclose_ws(1);
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_NE(said.find(row.message), std::string::npos) << row.text << said;
    }
    EXPECT_EQ(gget_num_error(), 0);
}

TEST_F(AtDisplay, TitleIsAChannel) {
    EXPECT_EQ(gset_win_title("Radar_of_today"), -1) << "no window yet";
    ASSERT_EQ(open(), 0);
    const Window window = user->find_window();
    const auto title = [&] {
        gsync(); // a title is sent, and not waited for
        return user->title(window);
    };
    EXPECT_EQ(title(), "Radar of today");
    EXPECT_EQ(user->icon_title(window), "Radar of today");
    char extra[60];
    EXPECT_EQ(gset_win_title_extra("[3]"), 0);
    EXPECT_EQ(title(), "Radar of today [3]");
    EXPECT_EQ(gget_win_title_extra(extra), 0);
    EXPECT_STREQ(extra, "[3]");
    EXPECT_EQ(gset_win_title("new"), 0);
    gget_win_title_extra(extra);
    EXPECT_STREQ(extra, "");
}

TEST_F(AtDisplay, IconIsABitmap) {
    ASSERT_EQ(open(), 0);
    gsync();
    Display* display = user->display();
    const std::unique_ptr<XWMHints, int (*)(void*)> hints(XGetWMHints(display, user->find_window()),
                                                          XFree);
    ASSERT_NE(hints, nullptr);
    XImage* icon = XGetImage(display, hints->icon_pixmap, 0, 0, 48, 48, 1, XYPixmap);
    ASSERT_NE(icon, nullptr);
    std::string rows; // every third pixel: ink is 0
    for (const int y : {0, 4, 23, 24})
        for (int x = 0; x < 48; x += 3)
            rows += XGetPixel(icon, x, y) == 0 ? '#' : '.';
    XDestroyImage(icon);
    EXPECT_EQ(rows, "................"
                    "....#.#.#.###..."
                    "...#.........#.."
                    ".##############.");
}

TEST_F(AtDisplay, ResizingKeepsThePicture) {
    ASSERT_EQ(open(), 0);
    set_color(1, green);
    fill(0.0F, 0.9F, 0.1F, 1.0F, 1);
    const Window window = user->find_window();
    gupdate_window();
    const auto held = user->resources(window);
    EXPECT_EQ(gresize_window(-1, -1), 0) << "as before";
    user->resize(window, 700, 300);
    EXPECT_EQ(gresize_window(-1, -1), 1);
    EXPECT_EQ(gresize_window(800, 400), 1);
    EXPECT_EQ(gresize_window(-1, -1), 0) << "its own doing";
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    EXPECT_EQ(width * 1000 + height, 800400);
    const Picture picture = shown();
    EXPECT_EQ(picture.at(20, 20), green) << picture;
    EXPECT_EQ(picture.at(790, 390), black) << "new room is cleared";
    fill(0.9F, 0.0F, 1.0F, 0.1F, 1);
    EXPECT_EQ(shown().at(395, 395), green) << "the square takes the new height";
    EXPECT_EQ(user->resources(window), held) << "nothing is left behind";
}

// --- The window of another program --------------------------------------------------

TEST_F(AtDisplay, WhatCannotBeOpenedIsReported) {
    struct Row {
        Gws_type type;
        std::string conn;
        const char* message;
    };
    const Row rows[] = {
        {ws_window, ":nowhere",
         "gopen_ws: unable to connect to display\n"
         "gopen_ws: display: :nowhere; a page needs none: -de p,FILE; nor do images: -of "
         "png=FILE\n"                                                                       },
        {ws_pixmap, server->name(),            "gopen_ws: window parameters not specified\n"},
        {ws_pixmap, server->name() + ",",      "gopen_ws: window id not specified\n"        },
        {ws_pixmap, server->name() + ",0x",    "gopen_ws: window id not specified\n"        },
        {ws_pixmap, server->name() + ",0:9x9", "gopen_ws: window id not specified\n"        },
        {ws_pixmap, server->name() + ",w77",   "gopen_ws: unable to open window id file\n"  },
        {ws_pixmap, server->name() + ",99999", "gopen_ws: unable to open window\n"          },
    };
    RES_conv_data("warn", nullptr, CV_mess);
    for (const Row& row : rows) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(gopen_ws(1, row.conn.c_str(), row.type), -1) << row.conn;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), row.message) << row.conn;
        EXPECT_EQ(gchk_graphics(), 0);
        EXPECT_EQ(gclear_ws(1, 1), 0) << "nothing is left to draw on";
    }
    ASSERT_EQ(open(), 0) << "a later opening is none the worse";
}

// A server that takes the connection and says nothing.
TEST(Display, ThatDoesNotAnswerEndsTheRun) {
    const int silent = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int number = 200;
    do {
        place.sin_port = htons(static_cast<std::uint16_t>(6000 + ++number));
    } while (bind(silent, reinterpret_cast<sockaddr*>(&place), sizeof place) != 0 && number < 300);
    ASSERT_EQ(listen(silent, 1), 0);
    const std::string name = "127.0.0.1:" + std::to_string(number);
    gset_display_patience(1);
    EXPECT_EXIT(gopen_ws(1, name.c_str(), ws_window), testing::ExitedWithCode(4),
                "gopen_ws: the display does not answer");
    close(silent);
}

// One that falls silent later, where no window is looked at.
TEST_F(AtDisplay, ThatFallsSilentEndsARunOfImages) {
    const auto wait = [&] {
        gset_image_run(1);
        const int opened = open();
        gset_display_patience(1);
        kill(server->pid(), SIGSTOP);
        std::exit(opened != 0 ? 1 : gsync());
    };
    EXPECT_EXIT(wait(), testing::ExitedWithCode(4), "gopen_ws: the display does not answer");
    kill(server->pid(), SIGCONT);
}

// One that falls silent while a window is held, at its first key.
TEST_F(AtDisplay, ThatFallsSilentAtAKeyEndsTheRun) {
    const auto wait = [&] {
        const int opened = open();
        gset_display_patience(1);
        ginput().input_mode = input_hold;
        XEvent event{};
        event.xkey.type = KeyPress;
        event.xkey.display = gget_display();
        event.xkey.keycode = 40;
        kill(server->pid(), SIGSTOP);
        std::exit(opened != 0 ? 1 : gprocess_x11_event(&event));
    };
    EXPECT_EXIT(wait(), testing::ExitedWithCode(4), "gopen_ws: the display does not answer");
    kill(server->pid(), SIGCONT);
}

TEST_F(AtDisplay, ErrorsOfTheServerEndTheRun) {
    RES_conv_data("warn", nullptr, CV_mess);
    const Pixmap pixmap =
        XCreatePixmap(user->display(), DefaultRootWindow(user->display()), 90, 90, 24);
    XSync(user->display(), False);
    const std::string id = "," + std::to_string(pixmap) + ":90x90";
    const auto draw_on_nothing = [&] {
        const XUser other(*server);
        if (open(ws_pixmap, id) != 0)
            return;
        XFreePixmap(other.display(), pixmap);
        XSync(other.display(), False);
        set_color(1, green);
        for (int i = 0; i < 40; ++i)
            fill(0.1F, 0.1F, 0.2F, static_cast<float>(i) * 0.02F, 1);
        gsync();
    };
    EXPECT_EXIT(draw_on_nothing(), testing::ExitedWithCode(4),
                "X11 error: BadDrawable.* in X_(.|\n)*too many errors");
}

} // namespace
