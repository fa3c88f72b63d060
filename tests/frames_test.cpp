// Several files as frames of a loop, and what zoom makes of a picture: what the
// user does, and what the window then shows.
#include "nids_plt.h"
#include "plot_session.h"

#include "files.h"
#include "zyrgks.h"

#include "plot_window.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <tuple>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::array<const char*, 4> files = {"d0", "d1", "d2", "d3"};
constexpr const char* plain = " -dr sum,text";

struct Place {
    float lat = 0, lon = 0, distance = 0;
};

// The last position that the program has printed.
Place last_place(const std::string& out) {
    Place place;
    const std::size_t at = out.rfind("Lat:");
    if (at == out.npos || std::sscanf(out.c_str() + at, "Lat: %f Lon: %f Dist: %fnm", &place.lat,
                                      &place.lon, &place.distance) != 3)
        ADD_FAILURE() << "no position in: " << out;
    return place;
}

class FramesTest : public PlotWindow {
protected:
    void SetUp() override {
        PlotWindow::SetUp();
        int level = 3;
        for (const char* name : files) {
            write(name, disc_product(level, 30 + level));
            level += 3;
        }
    }
    // Starts a loop and stops it at frame 0.
    void start_stopped(const std::string& args = "d0 d1 d2 d3",
                       const std::map<std::string, std::string>& env = {}) {
        start(args + " -ti T -me mess" + plain, env);
        user->key(XK_l, alt);
        constexpr int longest_ms = 1400; // that a frame of a running loop stays
        std::string before;
        while (before != user->title(window)) {
            before = user->title(window);
            usleep(1000 * longest_ms);
        }
        for (int i = 0; i < 4 && user->title(window) != "T [0]"; ++i) {
            user->key(XK_bracketright, alt);
            settle();
        }
        ASSERT_EQ(user->title(window), "T [0]");
    }
    // Each file alone in a window.
    std::vector<Picture> pictures() {
        std::vector<Picture> all;
        for (const char* name : files)
            all.push_back(picture_of(name + std::string(plain)));
        return all;
    }
    // What the program prints for a pixel of the window.
    Place place_at(int x, int y) {
        user->point(window, x, y);
        user->key(XK_v, alt);
        settle();
        return last_place(program->out());
    }
    // Is this frame on show, in title and picture?
    void expect_frame(int number, const Picture& expected, const char* note) {
        ASSERT_TRUE(has_title("T [" + std::to_string(number) + "]"))
            << note << " " << user->title(window);
        ASSERT_TRUE(shows(expected)) << note;
    }
};

} // namespace

TEST_F(FramesTest, StepsThroughFrames) {
    const std::vector<Picture> each = pictures();
    ASSERT_GT(pixels_that_differ(each[0], each[1]), 1000);
    start_stopped();
    for (std::size_t i = 0; i <= 4; ++i) { // and from the last to the first
        expect_frame(static_cast<int>(i % 4), each[i % 4], "forward");
        user->key(XK_bracketright, alt);
    }
    expect_frame(1, each[1], "forward");
    user->click(1);
    expect_frame(0, each[0], "back");
    user->key(XK_bracketleft, alt);
    expect_frame(3, each[3], "from the first to the last");
    user->key(XK_bracketleft, alt);
    expect_frame(2, each[2], "back");
    user->cover(window);
    expect_frame(2, each[2], "covered");
    user->key(XK_d, alt); // frame 3 takes the place of 2
    expect_frame(2, each[3], "deleted");
    user->key(XK_d, alt); // the last: the one before it comes on show
    expect_frame(1, each[1], "deleted at the end");
    const int pixmaps = user->resources(window).at("PIXMAP");
    user->key(XK_d, alt);
    expect_frame(0, each[0], "deleted all but one");
    EXPECT_EQ(user->resources(window).at("PIXMAP"), pixmaps - 1);
    user->key(XK_d, alt);
    settle();
    user->key(XK_bracketright, alt); // there is nothing to go to
    leave();
}

TEST_F(FramesTest, LoopRunsAndRests) {
    using Clock = std::chrono::steady_clock;
    start(std::string("d0 d1 d2 d3 -ti T") + plain);
    std::map<std::string, double> shortest; // stay of each frame
    std::string order;
    std::string title = user->title(window);
    auto since = Clock::now();
    int changes = -1; // the first stay is not whole
    wait_until([&] {
        const std::string now = user->title(window);
        if (now != title) {
            const std::chrono::duration<double> stay = Clock::now() - since;
            since = Clock::now();
            if (++changes > 0) {
                const auto row = shortest.emplace(title, stay.count()).first;
                row->second = std::min(row->second, stay.count());
                order += title.substr(2);
            }
            title = now;
        }
        return changes == 8;
    });
    EXPECT_NE(std::string("[0][1][2][3][0][1][2][3][0][1][2][3]").find(order), order.npos) << order;
    for (const auto& [name, stay] : shortest) {
        EXPECT_GT(stay, name == "T [3]" ? 0.95 : 0.45) << name;
        EXPECT_LT(stay, name == "T [3]" ? 1.45 : 0.95) << name;
    }
    for (int i = 0; i < 9; ++i)
        user->key(XK_bracketright, alt); // no delay at all
    settle();
    title = user->title(window);
    changes = 0;
    since = Clock::now();
    while (Clock::now() - since < std::chrono::seconds(4)) {
        const std::string now = user->title(window);
        changes += now != title ? 1 : 0;
        title = now;
    }
    EXPECT_GT(changes, 4);
    EXPECT_LT(changes, 16) << "a second on the last frame, 0.05 on each other";
    user->iconify(window); // a hidden loop stands still
    settle();
    title = user->title(window);
    user->map(window);
    EXPECT_TRUE(wait_until([&] { return user->title(window) != title; }, 10));
    leave();
}

TEST_F(FramesTest, FramesByHour) {
    std::vector<Picture> each;
    for (const int minute : {10, 20, 30}) {
        const std::string name = "2019052022" + std::to_string(minute);
        write(name + ".nids", disc_product(minute / 3, minute));
        each.push_back(picture_of(name + ".nids" + plain));
    }
    start_stopped("201905202230 -nh -0:20,0:10", {
                                                     {"zyrcurtime", "201905202240"}
    });
    for (int i = 0; i <= 3; ++i) {
        expect_frame(i % 3, each[static_cast<std::size_t>(i % 3)], "by hour");
        user->key(XK_bracketright, alt);
        settle();
    }
    leave();
}

TEST_F(FramesTest, TooManyFilesAreToldOf) {
    std::string args;
    for (int i = 0; i < 129; ++i) {
        const std::string name = "f" + std::to_string(i);
        write(name, disc_product(1 + i % 15));
        args += name + " ";
    }
    start("d0 -ge 80x60 -dr sum");
    const int others = user->resources(window).at("PIXMAP");
    leave();
    start(args + "-ge 80x60 -dr sum -ti T -pp nolooptitle");
    EXPECT_EQ(user->title(window), "T");
    EXPECT_EQ(user->resources(window).at("PIXMAP"), others + 128);
    EXPECT_EQ(program->err(), "A loop holds 128 frames: 1 more files are left out\n");
    leave();
}

TEST_F(FramesTest, PixelZoom) {
    start(std::string("d2 -ti T -me mess") + plain);
    const Picture whole = picture();
    const Place site = place_at(320, 256);
    EXPECT_NEAR(site.lat, 35.333, 0.05);
    EXPECT_NEAR(site.lon, -97.278, 0.05);
    EXPECT_LT(site.distance, 2);
    const Place before = place_at(300, 200);
    user->key(XK_z, alt);
    const Place after = place_at(320, 256); // what has come into the middle
    EXPECT_NEAR(after.lat, before.lat, 0.03);
    EXPECT_NEAR(after.lon, before.lon, 0.03);
    const Picture twice = picture();
    EXPECT_NE(twice, whole);
    user->cover(window);
    EXPECT_TRUE(shows(twice));
    for (int i = 0; i < 10; ++i)
        user->key(XK_z, alt);
    EXPECT_TRUE(said("gzoom: Cannot zoom past 1024x\n"));
    EXPECT_EQ(picture().colors(), 1);
    user->key(XK_u, alt);
    EXPECT_TRUE(shows(whole));
    user->key(XK_z, alt);
    settle();
    user->key(XK_r, alt); // drawn again, as a whole
    EXPECT_TRUE(shows(whole));
    leave();
}

TEST_F(FramesTest, RectangleZoomsIntoTheMap) {
    start("d2 -me mess");
    const Picture whole = picture();
    const auto drag = [&](int x0, int y0, int x1, int y1) {
        const Picture before = user->look(window);
        user->point(window, x0, y0);
        user->press(1, shift);
        settle();
        user->point(window, x1, y1);
        settle();
        EXPECT_GT(pixels_that_differ(user->look(window), before), 100) << "the band";
        user->release(1);
        settle();
    };
    const Place middle = place_at(320, 230);
    const Place corner = place_at(220, 160);
    drag(220, 160, 420, 300);
    EXPECT_TRUE(said("New domain: pstereo:35.333:")) << program->out();
    // The picture is one and a half times as wide as high: its height decides.
    const double scale = static_cast<double>(whole.width) / 691 * 460 / (300 - 160);
    for (const auto& [before, after] : std::initializer_list<std::array<Place, 2>>{
             {middle, place_at(320,                         256)                               },
             {corner,
              place_at(320 - static_cast<int>(100 * scale), 256 - static_cast<int>(70 * scale))}
    }) {
        EXPECT_NEAR(after.lat, before.lat, 0.025);
        EXPECT_NEAR(after.lon, before.lon, 0.025);
    }
    const Picture part = picture();
    drag(300, 200, 350, 240); // further in
    EXPECT_NE(user->look(window), part);
    user->key(XK_r, alt);
    settle();
    EXPECT_NE(user->look(window), part);
    user->key(XK_u, alt);
    EXPECT_TRUE(shows(whole)) << "back to the first domain at once";
    drag(420, 300, 220, 160); // the other way round
    EXPECT_TRUE(shows(part));
    drag(300, 200, 400, 203); // a slip of the hand, whose band goes
    EXPECT_TRUE(shows(part));
    EXPECT_EQ(count_text(program->out(), "New domain:"), 3);
    leave();
}

// The newest file comes in as the last frame and pushes the first one out, which
// a minute's refresh asks for in the program.
TEST_F(FramesTest, RefreshMovesTheLoopOn) {
    const auto file = [&](int minute, int level) {
        write("2019052022" + std::to_string(minute), disc_product(level, minute));
    };
    file(10, 3);
    file(20, 6);
    ASSERT_TRUE(open_plot_session("d," + server->name()));
    window = user->find_window();
    setenv("zyrcurtime", "201905202230", 1);
    RES_put("data_path", dir.path().c_str());
    RES_put("num_hour", "-0:10,0:10");
    FILE_set_name("@%D/%Y%m%d%h%10n");
    RES_put("filename", (dir.path() + "/201905202220").c_str());
    char name[file_name_size];
    FILE_get_file("", name);
    NIDS_set_date(nullptr);
    Domain domain = mercator_domain();
    ASSERT_EQ(NIDS_plot(&domain), 0); // as a redraw, which leaves the session open
    ASSERT_EQ(gget_num_images(), 2);
    const auto frame = [&](int number) {
        gdisplay_frame(number);
        gsync();
        return user->look(window);
    };
    const Picture first = frame(0);
    const Picture second = frame(1);
    ASSERT_GT(pixels_that_differ(first, second), 1000);
    NIDS_plot_nextfile();
    EXPECT_EQ(frame(0), first) << "nothing new";
    file(30, 9);
    NIDS_plot_nextfile();
    EXPECT_EQ(gget_num_images(), 2);
    EXPECT_EQ(frame(0), second);
    const Picture third = frame(1);
    EXPECT_GT(pixels_that_differ(third, second), 1000);
    EXPECT_GT(pixels_that_differ(third, first), 1000);
    PLT_set_dump(1, ""); // no hold at the end
    PLT_close();
}

// Files that come through pipes hold a plot of frames where the user can act.
TEST_F(FramesTest, PlotIsServedWhileItRuns) {
    const Picture first = picture_of("d0" + std::string(plain));
    for (const char* pipe : {"p1", "p2"})
        ASSERT_EQ(mkfifo((dir.path() + "/" + pipe).c_str(), 0600), 0);
    const auto feed = [&](const char* pipe, int level) {
        const Bytes bytes = disc_product(level, 50);
        std::ofstream(dir.path() + "/" + pipe) << std::string(bytes.begin(), bytes.end());
    };
    const std::string args = "d0 p1 p2 -ti T -me mess" + std::string(plain);
    start(args); // waits for p1
    EXPECT_TRUE(shows(first));
    user->key(XK_q, alt);  // keys before the hold are dropped
    user->send(window, 2); // an attached program asks for a frame, which waits
    feed("p1", 6);
    EXPECT_TRUE(has_title("T [1]")) << "the plot has gone on to p2";
    EXPECT_NE(user->look(window), first);
    feed("p2", 9);
    EXPECT_TRUE(has_title("T [3]")) << "three pictures and the frame asked for";
    user->close(window);
    EXPECT_EQ(program->wait().code, 0);

    start(args);
    user->close(window);
    feed("p1", 6);
    EXPECT_TRUE(has_title("T [1]"));
    settle();
    EXPECT_FALSE(program->ended()) << "in the middle of its plot";
    feed("p2", 9);
    const ProgramRun run = program->wait();
    EXPECT_EQ(std::make_tuple(run.code, run.timed_out), std::make_tuple(0, false)) << run.err;
}

// A feed that cleans up takes the file away while its picture is looked at.
TEST_F(FramesTest, PictureOutlivesItsFile) {
    constexpr const char* note = "No file can be read any more: the picture is kept\n";
    start("d2 -me print,warn" + std::string(plain));
    const Picture whole = picture();
    const Place middle = place_at(320, 256);
    std::filesystem::rename(dir.path() + "/d2", dir.path() + "/gone");
    int said_times = 0;
    const auto kept = [&](const char* how) {
        settle();
        EXPECT_TRUE(shows(whole)) << how;
        EXPECT_EQ(count_text(program->err(), note), ++said_times) << how << program->err();
    };
    user->key(XK_r, alt);
    kept("drawn again");
    user->point(window, 220, 160);
    user->press(1, shift);
    settle();
    user->point(window, 420, 300);
    user->release(1);
    kept("zoomed");
    EXPECT_NEAR(place_at(320, 256).lat, middle.lat, 0.01) << "its map, too";
    user->key(XK_u, alt); // there is no zoom to leave
    user->resize(window, 700, 600);
    settle();
    EXPECT_EQ(count_text(program->err(), note), ++said_times);
    const Picture larger = picture();
    int differ = 0;
    for (int y = 0; y < whole.height; ++y)
        for (int x = 0; x < whole.width; ++x)
            differ += larger.at(x, y) != whole.at(x, y) ? 1 : 0;
    EXPECT_EQ(differ, 0) << "in the corner of a larger window";
    std::filesystem::rename(dir.path() + "/gone", dir.path() + "/d2");
    user->resize(window, 640, 512);
    EXPECT_TRUE(shows(whole)) << "the file is back";
    leave();

    start_stopped();
    const Picture first = picture();
    for (const char* name : files)
        std::filesystem::remove(dir.path() + "/" + name);
    user->key(XK_r, alt);
    settle();
    expect_frame(0, first, "a loop");
    user->key(XK_bracketright, alt);
    EXPECT_TRUE(has_title("T [1]"));
    leave();
}

// Pictures of what is on show, by key.
TEST_F(FramesTest, KeysWriteImages) {
    start_stopped();
    user->key(XK_bracketright, alt);
    user->key(XK_g, alt);
    EXPECT_TRUE(said("Created GIF file: T-01.gif\n")) << program->out() << program->err();
    user->key(XK_l, alt);
    user->key(XK_x, alt);
    EXPECT_TRUE(said("T-03.xwd\n")) << program->out() << program->err();
    leave();
    EXPECT_TRUE(read_text(dir.path() + "/T-01.gif").starts_with("GIF8"));
    for (const char* name : {"T-00.xwd", "T-01.xwd", "T-02.xwd", "T-03.xwd"})
        EXPECT_GT(read_text(dir.path() + "/" + name).size(), 640U * 512U) << name;
}
