// The window as a user has it on the screen: what it shows, how it lives through
// what happens to it, and how it ends.
#include "plot_window.h"
#include "x_proxy.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <tuple>

namespace {

constexpr const char* plain = " -dr sum,text ";

class WindowTest : public PlotWindow {
protected:
    void SetUp() override {
        PlotWindow::SetUp();
        write("disc", disc_product(9));
        for (const auto& [name, bytes] : nids_samples())
            write(name, bytes);
    }
    ProgramRun end_of(const std::string& args, const std::map<std::string, std::string>& env = {}) {
        return launch(args, env)->wait();
    }
};

// Are two colours as near as a server of 16 bits keeps them?
bool near(std::uint32_t a, std::uint32_t b) {
    constexpr int step = 8; // of five bits a component
    for (const unsigned shift : {0U, 8U, 16U}) {
        const int one = static_cast<int>(a >> shift & 255U);
        const int other = static_cast<int>(b >> shift & 255U);
        if (std::abs(one - other) > step)
            return false;
    }
    return true;
}

long resident_kb(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/statm");
    long pages = 0;
    file >> pages >> pages;
    return pages * 4;
}

} // namespace

TEST_F(WindowTest, KeepsItsPicture) {
    const Picture small = picture_of("disc -ge 420x333");
    start("disc");
    const Picture whole = picture();
    EXPECT_EQ(std::tie(whole.width, whole.height), std::make_tuple(640, 512));
    EXPECT_GT(whole.colors(), 8) << "disc, bar, maps and texts";
    user->cover(window);
    EXPECT_TRUE(shows(whole)) << "another window went away";
    user->iconify(window);
    settle();
    user->map(window);
    EXPECT_TRUE(shows(whole)) << "an icon again opened";
    user->resize(window, 420, 333);
    EXPECT_TRUE(shows(small)) << "drawn for the new size";
    user->resize(window, 640, 512);
    EXPECT_TRUE(shows(whole)) << "and for the old one";
    leave();
}

// The same picture from every event order: a size that comes while the program
// draws is taken after the plot.
TEST_F(WindowTest, ManySizesEndInTheLast) {
    const Picture expected = picture_of("disc -ge 500x400");
    start("disc");
    for (int width = 300; width <= 500; width += 4)
        user->resize(window, width, width * 4 / 5);
    EXPECT_TRUE(shows(expected));
    user->resize(window, 1, 1); // no room for anything
    settle();
    user->resize(window, 500, 400);
    EXPECT_TRUE(shows(expected));
    user->point(window, 5, 5);
    leave();
}

TEST_F(WindowTest, SizeAndLook) {
    constexpr std::uint32_t black = 0;
    constexpr std::uint32_t white = 0xFFFFFF;
    struct Row {
        const char* args;
        const char* env; // set to a word, or none
        int width, height;
        std::uint32_t corner;
        bool own_map; // of colours
    };
    constexpr Row rows[] = {
        {"",                  "",              640, 512, black, false},
        {"-ge 400x300+17+23", "",              400, 300, black, false},
        {"-pp inv",           "",              640, 512, white, false},
        {"",                  "zyrinverse",    640, 512, white, false},
        {"-pp lcmap",         "",              640, 512, black, true },
        {"",                  "zyrlocal_cmap", 640, 512, black, true },
    };
    Display* display = user->display();
    for (const Row& row : rows) {
        std::map<std::string, std::string> env;
        if (*row.env != '\0')
            env[row.env] = "on";
        start(std::string("disc ") + row.args + plain, env);
        const std::string note = std::string(row.args) + row.env;
        const Picture shown = picture();
        XWindowAttributes is{};
        XGetWindowAttributes(display, window, &is);
        EXPECT_EQ(std::tie(shown.width, shown.height), std::tie(row.width, row.height)) << note;
        EXPECT_EQ(shown.at(1, 1), row.corner) << note;
        EXPECT_EQ(is.colormap != DefaultColormap(display, DefaultScreen(display)), row.own_map)
            << note;
        leave();
    }
}

// Keys by their meaning, whatever is locked, and the ways that a window goes.
TEST_F(WindowTest, EndsWithItsWindow) {
    start("disc" + std::string(plain));
    user->key(XK_Caps_Lock);
    user->point(window, 300, 200);
    user->key(XK_v, alt);
    EXPECT_TRUE(said("Lat:")) << "Caps Lock changes no key";
    user->key(XK_KP_Enter);
    ProgramRun run = program->wait();
    EXPECT_EQ(std::tie(run.code, run.timed_out), std::make_tuple(0, false));
    user->key(XK_Caps_Lock);
    write("next", disc_product(3, 40));
    for (const char* files : {"disc", "disc next"}) { // a still picture and a loop
        start(files + std::string(plain) + " -me mess");
        XDestroyWindow(user->display(), window);
        XSync(user->display(), False);
        run = program->wait();
        EXPECT_EQ(std::tie(run.code, run.timed_out), std::make_tuple(0, false)) << files;
        EXPECT_EQ(run.err, "") << files;
    }
}

// The keys stand over the picture until the next one, and leave it as it is.
TEST_F(WindowTest, ShowsItsKeys) {
    write("next", disc_product(3, 40));
    start("disc" + std::string(plain));
    const Picture whole = picture();
    user->key(XK_F1);
    const Picture help = picture();
    EXPECT_GT(pixels_that_differ(help, whole), 20000);
    EXPECT_EQ(help.at(5, 5), whole.at(5, 5));
    user->cover(window);
    EXPECT_TRUE(shows(help));
    user->key(XK_Return); // takes them away and no more
    EXPECT_TRUE(shows(whole));
    user->key(XK_F1);
    settle();
    user->click(1);
    EXPECT_TRUE(shows(whole));
    user->key(XK_F1);
    user->resize(window, 200, 100);
    settle();
    user->key(XK_F1);
    user->key(XK_F1);
    EXPECT_TRUE(said("start or stop the loop")) << "no room: printed";
    user->key(XK_F1);
    user->resize(window, 640, 512);
    EXPECT_TRUE(shows(whole));
    user->point(window, 5, 5);
    leave();
    start("disc next" + std::string(plain)); // a loop runs on below
    user->key(XK_F1);
    const auto row = [](const Picture& from) {
        const auto first = from.rgb.begin() + 256 * from.width + 200;
        return std::vector<std::uint32_t>(first, first + 240);
    };
    EXPECT_TRUE(wait_until([&] { return row(user->look(window)) == row(help); }, 5));
    const std::string title = user->title(window);
    EXPECT_TRUE(wait_until([&] { return user->title(window) != title; }, 5));
    EXPECT_EQ(row(user->look(window)), row(help));
    user->close(window);
    EXPECT_EQ(program->wait().code, 0);
}

// Titles as window managers old and new read them.
TEST_F(WindowTest, TitlesOfAnyScript) {
    struct Row {
        const char* title;
        const char* name; // as Latin-1; empty: it has characters of its own
        const char* utf8;
    };
    constexpr Row rows[] = {
        {"Z\xC3\xBCrich",            "Z\xFCrich", "Z\xC3\xBCrich"           },
        {"\xE5\xA4\xA9\xE6\xB0\x97", "",          "\xE5\xA4\xA9\xE6\xB0\x97"},
        {"Z\xFCrich",                "Z\xFCrich", "Z\xC3\xBCrich"           }, // of a Latin-1 terminal
    };
    Display* display = user->display();
    const auto property = [&](const char* name, const char* type) {
        Atom is = None;
        int bits = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, 99, False,
                           XInternAtom(display, type, False), &is, &bits, &count, &left, &data);
        std::string text(reinterpret_cast<char*>(data), count);
        XFree(data);
        return text;
    };
    for (const Row& row : rows) {
        start("disc -ti " + std::string(row.title) + plain);
        EXPECT_EQ(property("WM_NAME", "STRING"), row.name) << row.title;
        EXPECT_EQ(property("WM_ICON_NAME", "STRING"), row.name) << row.title;
        EXPECT_EQ(property("_NET_WM_NAME", "UTF8_STRING"), row.utf8) << row.title;
        leave();
    }
}

TEST_F(WindowTest, FaultsOfTheServer) {
    struct Row {
        const char* args;
        const char* display;
        std::string err;
    };
    const auto refused = [](const std::string& display) {
        return "gopen_ws: unable to connect to display\ngopen_ws: display: " + display +
               "; a page needs none: -de p,FILE; nor do images: -of png=FILE\n"
               "GPH_begin: Error opening workstation\n";
    };
    for (const Row& row : std::initializer_list<Row>{
             {"disc",              ":64321", refused(":64321")            },
             {"disc -de d,:64321", "",       refused(":64321")            },
             {"disc -de d",        "unset",  refused("DISPLAY is not set")}
    }) {
        std::map<std::string, std::string> env;
        if (*row.display != '\0')
            env["DISPLAY"] = row.display;
        const ProgramRun run = end_of(row.args, env);
        EXPECT_EQ(run.code, 4) << row.args;
        EXPECT_EQ(run.err, row.err) << row.args;
    }
    // The connection text comes before the environment.
    start("disc -de d," + server->name(), {
                                              {"DISPLAY", ":64321"}
    });
    leave();
    start("disc");
    server->stop();
    const ProgramRun run = program->wait();
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.err, "Fatal X11 Error\n");
    user->abandon();
}

// A picture has the same colours whatever the server's pixels are like.
TEST_F(WindowTest, DepthsAgree) {
    const Picture full = picture_of("digital" + std::string(plain));
    ASSERT_GT(full.colors(), 6);
    for (const int depth : {16, 8}) {
        for (const char* words : {"", " -pp norwclr", " -pp lcmap"}) {
            use_server(depth);
            const Picture other = picture_of("digital" + std::string(plain) + words);
            ASSERT_EQ(other.rgb.size(), full.rgb.size());
            const auto differ =
                std::mismatch(full.rgb.begin(), full.rgb.end(), other.rgb.begin(), near);
            EXPECT_EQ(other.colors(), full.colors());
            EXPECT_EQ(differ.first, full.rgb.end())
                << depth << words << " at " << differ.first - full.rgb.begin() << std::hex << " "
                << *differ.first << " " << *differ.second;
        }
    }
}

// Over a far connection every answer that is waited for is time without a picture.
TEST_F(WindowTest, WaitsForFewAnswers) {
    for (const char* args : {"disc", "digital -pp site", "disc -pp inv -cof 5:pa=3,20:pa=2"}) {
        const Picture near_by = picture_of(args);
        const XProxy proxy(*server);
        start(args, {
                        {"DISPLAY", proxy.name()}
        });
        EXPECT_EQ(picture(), near_by) << args;
        EXPECT_GT(proxy.replies(), 4) << "those that opening a display takes";
        user->close(window);
        EXPECT_EQ(program->wait().code, 0);
        EXPECT_LE(proxy.replies(), 12) << args;
    }
}

TEST_F(WindowTest, ReplotsHoldNothingBack) {
    start("disc -ge 120x90 -dr sum,text");
    const Picture before = picture();
    user->key(XK_r, alt);
    settle();
    const auto held = user->resources(window);
    ASSERT_GE(held.at("PIXMAP"), 1);
    [[maybe_unused]] const long memory_kb = resident_kb(program->pid());
    constexpr int replots = 1000;
    for (int i = 0; i < replots; ++i)
        user->key(XK_r, alt);
    EXPECT_EQ(picture(), before);
    EXPECT_EQ(user->resources(window), held);
    user->resize(window, 121, 91); // new pixmaps for old ones
    settle();
    EXPECT_EQ(user->resources(window), held);
#ifndef ZYR_SANITIZED
    EXPECT_LT(resident_kb(program->pid()) - memory_kb, 1000);
#endif
    leave();
}
