// Keys, buttons, the pointer and messages, from the server to the plotter's
// callback: the kernel runs in the test, the user acts through the server.
#include "gks.h"
#include "zyr.h"

#include <gtest/gtest.h>

#include "gks_x11.h"
#include "x_server.h"

#include <array>
#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

namespace {

struct Heard {
    int type;
    std::string name;
    float x, y;
    int cursor;
};
std::vector<Heard> heard;
const XUser* refresh_user = nullptr;
int refreshes = 0;

// A modifier pressed alone has no name of its own.
void hear(int type, const char* name, float x, float y) {
    if (*name != '\0' && *name != '-')
        heard.push_back({type, name, x, y, gget_cursor_type()});
    if (std::string(name).ends_with("P-Shft"))
        gset_rubber_band(2);
}

void leave_at_second() {
    if (++refreshes == 2)
        refresh_user->key(XK_Return);
}

void draw_triangle() {
    constexpr Gpt corners[] = {
        {10, 10},
        {90, 20},
        {30, 70}
    };
    gfill_area(3, corners);
}

class EventsTest : public testing::Test {
protected:
    void SetUp() override {
        if (!server.works()) {
            ASSERT_EQ(std::getenv("ZYR_NEED_DISPLAY"), nullptr) << "Xvfb does not start";
            GTEST_SKIP() << "no Xvfb";
        }
        user = std::make_unique<XUser>(server);
        gset_geometry("400x320+20+20");
        ASSERT_EQ(gopen_gks(nullptr, 0), 0);
        ASSERT_EQ(gopen_ws(1, server.name().c_str(), ws_window), 0);
        gactivate_ws(1);
        const Glim page = {0, 1, 0, 0.8F};
        gset_ws_win(1, &page);
        gset_vp(tran_map, &page);
        const Glim world = {0, 100, 0, 80}; // a unit is four pixels
        gset_win(tran_map, &world);
        gsel_norm_tran(tran_map);
        constexpr Gcolr_rep yellow = {1, 1, 0};
        gset_colr_rep(1, 1, &yellow);
        gset_fill_colr_ind(1);
        draw_triangle();
        gupdate_window();
        window = gget_root_window();
        gset_mouse_callback(hear);
        heard.clear();
        user->point(window, 200, 160);
        serve();
    }
    void TearDown() override {
        if (window != 0) {
            EXPECT_EQ(gget_num_error(), 0);
            gset_refresh_callback(0, nullptr);
            gset_mouse_callback(nullptr);
            gclose_ws(1);
            gclose_gks();
        }
    }
    // Everything that the user has done reaches the kernel.
    static void serve() {
        gsync();
        gcheck_event();
        gsync();
    }
    // Three frames, the middle one on show.
    static void three_frames(int looping) {
        gdelete_all_frames();
        ginit_loop();
        for (int i = 0; i < 3; ++i)
            gcreate_frame(i);
        ginc_loop_delay(0.5F - gget_loop_delay());
        gset_looping(looping);
        gdisplay_frame(1);
    }

    XServer server;
    std::unique_ptr<XUser> user;
    Window window = 0;
};

} // namespace

TEST_F(EventsTest, KeysAndButtons) {
    struct Row {
        KeySym sym; // 1 to 3: a button
        unsigned modifiers;
        int looping;
        const char* name; // of the key or the press
        // Afterwards: the frame on show, and so on.
        int frame, loops;
        double delay;
        int frames, goes_on;
    };
    const Row rows[] = {
        {XK_Return,       no_modifier,     0, "Ret",            1, 0, 0.5, 3, 0},
        {XK_Return,       shift | control, 1, "Ret-Shft-Cntrl", 1, 1, 0.5, 3, 0},
        {XK_q,            alt,             0, "q-Alt",          1, 0, 0.5, 3, 0},
        {XK_q,            no_modifier,     0, "q",              1, 0, 0.5, 3, 1},
        {XK_l,            alt,             0, "l-Alt",          1, 1, 0.5, 3, 1},
        {XK_l,            alt,             1, "l-Alt",          1, 0, 0.5, 3, 1},
        {XK_bracketright, alt,             0, "]-Alt",          2, 0, 0.5, 3, 1},
        {XK_bracketright, alt,             1, "]-Alt",          1, 1, 0.4, 3, 1},
        {XK_bracketleft,  alt,             0, "[-Alt",          0, 0, 0.5, 3, 1},
        {XK_bracketleft,  alt,             1, "[-Alt",          1, 1, 0.6, 3, 1},
        {XK_bracketleft,  no_modifier,     1, "[",              1, 1, 0.5, 3, 1},
        {XK_d,            alt,             0, "d-Alt",          1, 0, 0.5, 2, 1},
        {XK_v,            alt | shift,     0, "V-Alt-Shft",     1, 0, 0.5, 3, 1},
        {1,               no_modifier,     0, "B1-P",           0, 0, 0.5, 3, 1},
        {3,               no_modifier,     0, "B3-P",           2, 0, 0.5, 3, 1},
        {2,               no_modifier,     0, "B2-P",           1, 1, 0.5, 3, 1},
        {1,               control,         1, "B1-P-Cntrl",     1, 1, 0.6, 3, 1},
        {2,               no_modifier,     1, "B2-P",           1, 0, 0.5, 3, 1},
        {3,               no_modifier,     1, "B3-P",           1, 1, 0.4, 3, 1},
        {1,               alt,             1, "B1-P-Alt",       1, 1, 0.5, 3, 1},
        {3,               alt,             0, "B3-P-Alt",       1, 0, 0.5, 3, 1},
    };
    for (const Row& row : rows) {
        three_frames(row.looping);
        gset_input_mode(1);
        heard.clear();
        const bool is_button = row.sym <= 3;
        if (is_button)
            user->click(static_cast<unsigned>(row.sym), row.modifiers);
        else
            user->key(row.sym, row.modifiers);
        const int cursor = gget_cursor_type();
        serve();
        const auto note = std::string(row.name) + std::to_string(row.looping);
        ASSERT_EQ(heard.size(), is_button ? 2U : 1U) << note;
        const Heard& first = heard[0];
        EXPECT_EQ(std::tie(first.name, first.type, first.cursor),
                  std::make_tuple(row.name, is_button ? 3 : 2, cursor_number_ptr));
        std::string last = row.name;
        if (is_button)
            last.replace(3, 1, "R");
        EXPECT_EQ(heard.back().name, last) << note;
        EXPECT_NEAR(xW_p(first.x), 200, 0.01) << note;
        EXPECT_NEAR(yW_p(first.y), 160, 0.01) << note;
        EXPECT_EQ(gget_cursor_type() == cursor, row.loops == row.looping) << note;
        EXPECT_EQ(
            (std::array{gget_cur_frame(), gget_looping(), gget_num_images(), gget_input_mode()}),
            (std::array{row.frame, row.loops, row.frames, row.goes_on}))
            << note;
        EXPECT_NEAR(gget_loop_delay(), row.delay, 1e-5) << note;
        EXPECT_EQ(user->title(window), "X11 Graph [" + std::to_string(row.frame) + "]") << note;
    }
}

// Keys of before the hold are dropped; a button waits for it.
TEST_F(EventsTest, NothingReachesThePlotterInAPlot) {
    gset_input_mode(0);
    user->key(XK_q, alt);
    user->click(1);
    user->resize(window, 300, 240);
    serve();
    EXPECT_TRUE(heard.empty());
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    EXPECT_EQ(width, 400) << "the plot under way keeps its pixmap";
    gset_input_mode(1);
    serve();
    ASSERT_EQ(heard.size(), 1U) << "the click was on a page that is gone";
    EXPECT_EQ(std::tie(heard[0].name, heard[0].x, heard[0].y), std::make_tuple("size", 300, 240));
    gget_win_size(&width, &height);
    EXPECT_EQ(width, 300);
}

TEST_F(EventsTest, BandFollowsThePointer) {
    constexpr Gpt limits[] = {
        {10, 20},
        {60, 70}
    };
    constexpr Gpt corners[] = {
        {40, 40},
        {20, 30},
        {50, 25}
    };
    struct Row {
        int kind, constraint;
        bool limited;
        int x, y; // reported, pixels
        int most; // pixels that the band covers
    };
    constexpr Row rows[] = {
        {1, 0, false, 340, 300, 300},
        {1, 0, true,  340, 300, 300}, // the band is held back, not the
  // pointer
        {2, 0, false, 340, 300, 900},
        {3, 0, false, 340, 300, 600},
        {3, 0, true,  240, 240, 600},
        {3, 1, false, 160, 300, 600},
        {3, 2, false, 340, 160, 600},
    };
    gset_input_mode(1);
    const Picture before = user->look(window);
    for (const Row& row : rows) {
        const std::string note = std::to_string(row.kind) + std::to_string(row.constraint);
        user->point(window, 160, 160);
        gset_rubber_band_points(corners, 3, row.constraint);
        user->press(1, control); // without Shift the callback begins no band
        serve();
        gset_rubber_band_points(corners, 3, row.constraint);
        gset_rubber_band(row.kind);
        if (row.limited)
            gset_rubber_band_limits(limits);
        for (const int x : {180, 220, 300, 330}) {
            user->point(window, x, 290);
            serve();
            const int covered = pixels_that_differ(user->look(window), before);
            EXPECT_GT(covered, 20) << note;
            EXPECT_LT(covered, row.most) << note << ": a trail is left behind";
        }
        user->point(window, 340, 300);
        heard.clear();
        user->release(1);
        serve();
        ASSERT_EQ(heard.size(), 1U) << note;
        EXPECT_NEAR(xW_p(heard[0].x), row.x, 1.01) << note;
        EXPECT_NEAR(yW_p(heard[0].y), row.y, 1.01) << note;
        gupdate_window();
        EXPECT_EQ(user->look(window), before) << note << ": drawn into the picture";
        user->point(window, 100, 100);
        serve();
        EXPECT_EQ(user->look(window), before) << note << ": goes on after the release";
    }
}

TEST_F(EventsTest, ExposuresAreServedOnce) {
    const Picture before = user->look(window);
    for (int i = 0; i < 20; ++i)
        XClearArea(user->display(), window, 10 * i, 10 * i, 100, 50, True);
    XSync(user->display(), False);
    EXPECT_GT(pixels_that_differ(user->look(window), before), 1000);
    gsync();
    const unsigned long first = XNextRequest(gget_display());
    gcheck_event();
    EXPECT_LE(XNextRequest(gget_display()) - first, 3U) << "a copy and the wait for it";
    EXPECT_EQ(user->look(window), before);
}

// A program that is attached to this window asks for its next frame: the pixmap
// that it knows stays the newest.
TEST_F(EventsTest, MessagesOfAttachedPrograms) {
    gset_input_mode(1);
    const Pixmap known = gget_base_window();
    const std::string title = user->title(window);
    const Picture picture = user->look(window);
    user->send(window, 2);
    serve();
    EXPECT_EQ(gget_num_images(), 1);
    EXPECT_EQ(gget_looping(), 1);
    EXPECT_EQ(gget_frame_id(0), known);
    EXPECT_NE(gget_base_window(), known);
    EXPECT_EQ(user->title(window), title) << "the mark of the request is gone";
    gcopy_frame(0, frame_base); // as if drawn by the other program
    gset_draw_window(known);
    draw_triangle();
    gset_draw_window(0);
    for (int n = 1; n <= 3; ++n) {
        user->send(window, 2);
        serve();
        ASSERT_EQ(gget_num_images(), n + 1);
        EXPECT_EQ(gget_frame_id(n), known);
        gdisplay_frame(n - 1);
        EXPECT_EQ(user->look(window) == picture, n == 1) << "only the first was drawn";
        EXPECT_EQ(gget_input_mode(), 1);
    }
    user->send(window, 9);
    serve();
    EXPECT_EQ(gget_input_mode(), 0);
    gset_input_mode(1);
    user->close(window); // with the window manager's button
    serve();
    EXPECT_EQ(gget_input_mode(), 0);
}

// A held window is left with Return, and looked after by the clock until then.
TEST_F(EventsTest, HoldRefreshesByTheClock) {
    refresh_user = user.get();
    refreshes = 0;
    gset_refresh_callback(1, leave_at_second);
    const std::clock_t used = std::clock();
    ZYR_init_time();
    EXPECT_EQ(ghold(1), 0);
    EXPECT_NEAR(ZYR_elapse_time(), 2, 0.7);
    EXPECT_EQ(refreshes, 2);
    EXPECT_LT(static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC, 0.2);
    EXPECT_EQ(gget_cursor_type(), cursor_number_x);
}

// Each pixel on show is that of the picture where positions say it is.
TEST_F(EventsTest, ZoomShowsWhatPositionsTell) {
    const Picture drawn = user->look(window);
    const auto misplaced = [&](const Picture& picture) {
        const Picture shown = user->look(window);
        int wrong = 0;
        for (int y = 0; y < shown.height; ++y) {
            for (int x = 0; x < shown.width; ++x) {
                const auto from_x = static_cast<int>(xZ_p(static_cast<float>(x)));
                const auto from_y = static_cast<int>(yZ_p(static_cast<float>(y)));
                wrong += shown.at(x, y) != picture.at(from_x, from_y) ? 1 : 0;
            }
        }
        return wrong;
    };
    // A still picture, twice. Showing it again does not magnify it further.
    gset_input_mode(1);
    for (const int zoom : {2, 4}) {
        user->point(window, 130, 150);
        user->key(XK_z, alt);
        serve();
        EXPECT_EQ(gget_zoom(), zoom);
        EXPECT_NEAR(xZ_p(200), zoom == 2 ? 130 : 95, 1) << "the pointer is the middle";
        EXPECT_NEAR(yZ_p(160), zoom == 2 ? 150 : 145, 1);
        EXPECT_EQ(misplaced(drawn), 0) << zoom;
        user->click(1);
        serve();
        EXPECT_EQ(misplaced(drawn), 0) << zoom << ": after a step without frames";
    }
    heard.clear();
    user->key(XK_u, alt);
    user->key(XK_u, alt);
    serve();
    EXPECT_EQ(user->look(window), drawn);
    EXPECT_EQ(heard.size(), 1U) << "the first served the zoom, the plotter hears of the second";

    // Frames, the triangle in the last one alone: the zoom stays from one to the next.
    three_frames(0);
    gselect_frame(2);
    draw_triangle();
    user->point(window, 130, 150);
    user->key(XK_z, alt);
    serve();
    EXPECT_EQ(user->look(window).colors(), 1) << "the frame on show is empty";
    user->click(3);
    user->key(XK_z, alt);
    serve();
    EXPECT_EQ(gget_cur_frame(), 2);
    EXPECT_EQ(misplaced(drawn), 0);
    gunzoom();
    EXPECT_EQ(user->look(window), drawn);
}

TEST_F(EventsTest, FramesAreDeletedAndTheLastOnePauses) {
    three_frames(0);
    const float pause = gget_frame_delay(2);
    EXPECT_GT(pause, gget_frame_delay(1));
    EXPECT_EQ(gdelete_frame(frame_last), 1);
    EXPECT_EQ(gget_frame_delay(1), pause);
    EXPECT_EQ(gget_frame_delay(2), gget_loop_delay());
    EXPECT_EQ(gselect_frame(0), 0);
    EXPECT_EQ(gdelete_frame(0), 1);
    EXPECT_EQ(gget_draw_window(), gget_base_window()) << "nothing is drawn into what is gone";
    const Pixmap only = gget_frame_id(0);
    EXPECT_EQ(gdelete_frame(0), 1);
    EXPECT_EQ(gget_num_images(), 0);
    EXPECT_EQ(gget_frame_id(0), only) << "serves the next frame";
    EXPECT_EQ(gdelete_frame(max_frames), 0);
    for (int i = 0; i < max_frames; ++i)
        ASSERT_EQ(gcreate_frame(-1), i);
    EXPECT_EQ(gcreate_frame(-1), -1) << "the table is full";
    EXPECT_EQ(gget_num_images(), max_frames);
}
