// Every other radar format as a user has it on the screen and on a page: frames, zoom,
// sizes, newer files, panels, parts of the plot, a damaged file among good ones.
#include "mosaic_writer.h"
#include "rcm_writer.h"
#include "rrwds_writer.h"
#include "summary_writer.h"

#include "image_view.h"
#include "nids_page.h"
#include "plot_window.h"

#include <algorithm>
#include <filesystem>

namespace {

// Minutes become seconds; a sanitizer lets nothing come before it.
#ifdef ZYR_FAST_CLOCK
constexpr const char* fast_clock = ZYR_FAST_CLOCK;
#else
constexpr const char* fast_clock = "";
#endif

// The echoes of a file: a level (1 to 6) north-east of KTLX, in a place that goes by it.
int level_at(double east, double north, int level) {
    return east > 0.1 * level && east < 0.1 * level + 1 && north > 0 && north < 0.2 * level ? level
                                                                                            : 0;
}

Bytes nowrad(int minute, int level) {
    NowradImage image = nowrad_latlon(40, 60, -97.3, 37.3, 0.1, 0.07);
    image.title = "NOWrad Master       22:" + std::to_string(minute) + " 20-MAY-2019";
    return nowrad_file(image, [level](int row, int column) {
        return 2 * level_at((column - 30) * 0.07, (20 - row) * 0.1, level);
    });
}

Bytes kavrad(int minute, int level) {
    KavradImage image;
    image.date = "22" + std::to_string(minute) + "00200519";
    return kavrad_file(image, [level](int row, int column) {
        const double lat = 39 + (1440 - row) * 0.0171874;
        const int echo = level_at((column - 1280) * 0.0257812 + 1.3, lat - 35.3, level);
        return echo == 0 ? 16 : 2 * echo;
    });
}

Bytes rrwds(int minute, int level) {
    RrwdsImage image;
    image.min = minute;
    return rrwds_file(image, [level](int azimuth, int bin) {
        return azimuth > 10 * level && azimuth < 90 && bin > 20 && bin < 100 ? level : 0;
    });
}

Bytes rcm(int minute, int level) {
    const auto report = rcm_blank();
    report->date.min = minute;
    for (int column = 52; column < 75; ++column) {
        for (int row = 25 + 2 * level; row < 50; ++row) {
            report->echo[column][row] = static_cast<signed char>(level);
        }
    }
    return rcm_message(*report, false);
}

Bytes summary(int minute, int level) {
    return summary_mdr(
        [level](int row, int column) {
            return row > 54 - level && row < 58 && column > 57 && column < 61 + level ? level : 0;
        },
        {"TLX LINE TRW++ + 450,235045 L2532 C2435 *"},
        "ZYRRAD\n22" + std::to_string(minute) + "Z 20 MAY 19\n");
}

struct Format {
    const char* name;
    const char* args;
    Bytes (*file)(int minute, int level);
    std::size_t cut;    // bytes of a file of which nothing can be drawn
    const char* damage; // what is said of it
    int bar;            // boxes of the bar or the key
    bool key;           // it is there without the echoes, too
    const char* date;   // label of the first file
};

constexpr Format formats[] = {
    {"nowrad", "-inp nowrad",                   nowrad,  60,   "",                  15, false, "2230Z 20 MAY 19"},
    {"kavrad", "-inp kavrad",                   kavrad,  2048, "",                  15, false, "2230Z 20 MAY 19"},
    {"rrwds",  "-inp rrwds",                    rrwds,   12,   "ends at azimuth 0", 6,  true,  "2230Z 20 MAY 80"},
    {"rcm",    "-inp rcmsite -id TLX -va comp", rcm,     180,  "is damaged",        6,  true,  "2230Z 20 MAY 19"},
    {"mdr",    "-inp mdr -va city::text",       summary, 23,   "No grid of levels", 6,  false,
     "2230Z 20 MAY 19"                                                                                          },
};

void PrintTo(const Format& format, std::ostream* out) {
    *out << format.name;
}

class RadarWindow : public testing::WithParamInterface<Format>, public PlotWindow {
protected:
    void SetUp() override {
        PlotWindow::SetUp();
        put(30, 2);
        Bytes cut = GetParam().file(31, 6);
        cut.resize(GetParam().cut);
        write("cut", cut);
        dir.write("conventions", "nowrad %D/%Y%m%d%h%n - 0\nkavrad %D/%Y%m%d%h%n - 0\n"
                                 "rrwds %D/%Y%m%d%h%n - 0\nrcm_dat %D/%Y%m%d%h%n - 0\n"
                                 "rad_raw %D/%Y%m%d%h%n - 0\nwat_dat %W/%Y%m%d%h.wat - 0\n");
    }
    void put(int minute, int level) const {
        write("2019052022" + std::to_string(minute), GetParam().file(minute, level));
    }
    [[nodiscard]] static std::string with(const std::string& args) {
        return std::string(GetParam().args) + " -pd ps,35.3,-97.3,61,41,.08,.09 -mf none " + args;
    }
    NidsPage page(const std::string& args) {
        ProgramRun run = launch(with("-de p,page.ps " + args))->wait();
        return {run, read_text(dir.path() + "/page.ps")};
    }
};

} // namespace

TEST_P(RadarWindow, LivesAsThatOfAProduct) {
    const std::string first = with("./201905202230 -ti T ");
    const Picture one = picture_of(first);
    const Picture small = picture_of(first + "-ge 420x333");
    put(31, 5);
    const Picture two = picture_of(with("./201905202231 -ti T"));
    ASSERT_GT(pixels_that_differ(one, two), 500);
    start(first + "./201905202231"); // frames
    user->key(XK_l, alt);
    settle();
    const Picture stopped = picture();
    EXPECT_TRUE(stopped == one || stopped == two);
    user->key(XK_bracketright, alt);
    EXPECT_TRUE(shows(stopped == one ? two : one));
    leave();

    std::filesystem::remove(dir.path() + "/201905202231");
    start(with("201905202230 -pp refresh -ti T"), {
                                                      {"zyrcurtime",  "201905202231"             },
                                                      {"zyrnameconv", dir.path() + "/conventions"},
                                                      {"zyrdata",     dir.path()                 },
                                                      {"LD_PRELOAD",  fast_clock                 }
    });
    EXPECT_TRUE(shows(one));
    user->resize(window, 420, 333);
    EXPECT_TRUE(shows(small));
    user->resize(window, 640, 512);
    EXPECT_TRUE(shows(one));
    user->point(window, 320, 160);
    user->press(1, shift);
    settle();
    user->point(window, 480, 256);
    user->release(1);
    settle();
    EXPECT_GT(pixels_that_differ(user->look(window), one), 500) << "zoomed";
    user->key(XK_u, alt);
    EXPECT_TRUE(shows(one));
    // Those of coded messages are looked for minute by minute.
    const Bytes newer = GetParam().file(31, 5);
    for (int minute = 59; minute > 30; --minute) {
        write("2019052022" + std::to_string(minute), newer);
    }
    if (*fast_clock != '\0') {
        EXPECT_TRUE(shows(two)) << "newer";
    }
    leave();
}

TEST_P(RadarWindow, PartsPanelsAndDamage) {
    const Format& format = GetParam();
    put(31, 5);
    const std::string one = "./201905202230 ";
    const std::string two = "./201905202231 ";
    const int echoes = page("-dr sum -pp nobar " + one).figures();
    const int others = page("-dr sum -pp nobar " + two).figures();
    ASSERT_GT(std::min(echoes, others), 8);
    EXPECT_EQ(page("-dr sum,text " + one).figures(), echoes + format.bar);
    // The key of a summary goes with the texts, a bar with the echoes.
    const bool silent = format.args == std::string(formats[4].args);
    EXPECT_EQ(page("-dr sum " + one).figures(), echoes + (silent ? 0 : format.bar));
    EXPECT_EQ(page("-dr map " + one).figures(), format.key ? format.bar : 0);
    EXPECT_EQ(page("-dr text,bord -pp nobar " + one).figures(), 0);
    // What cannot be read between two that can shows nothing of either.
    const NidsPage three = page("-dr sum,text -pp nobar " + one + "./cut " + two);
    EXPECT_EQ(three.run.code, 0);
    EXPECT_EQ(three.figures(), echoes + others);
    EXPECT_NE(three.run.err.find(format.damage), std::string::npos) << three.run.err;
    EXPECT_EQ(count_text(three.text, std::string(" ") + format.date + "\n"), 1);

    // In batch the same picture as in a window; a panel keeps the rest of it empty.
    const auto shot = [&](const std::string& args) {
        const ProgramRun run = launch(with("-ba -of png=./shot.png " + args + one))->wait();
        EXPECT_EQ(run.code, 0) << run.err;
        return read_png(dir.path() + "/shot.png");
    };
    EXPECT_EQ(shot(""), picture_of(with(one)));
    const Picture panel = shot("-pp vp_size=2x2+1+0 ");
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < panel.height; ++y) {
        for (int x = 0; x < panel.width; ++x) {
            // The first number of a bar reaches out by half its width.
            const bool quarter = x >= panel.width / 2 - 5 && y <= panel.height / 2;
            (quarter ? inside : outside) += panel.at(x, y) != 0 ? 1 : 0;
        }
    }
    EXPECT_GT(inside, 1000);
    EXPECT_EQ(outside, 0);

    // The name of an image and the watches go by the time of the data.
    write("plain", format.file(30, 2));
    launch(with("-ba -of png=./at_%m%d%h%n.png ./plain"))->wait();
    EXPECT_TRUE(std::filesystem::exists(dir.path() + "/at_05202230.png"));
    dir.write("2019052022.wat", "SPC AWW 202158\nWW 9 TORNADO OK 202200Z - 202300Z\n"
                                "AXIS..60 STATUTE MILES EAST AND WEST OF LINE..\n"
                                "30N OKC/OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n"
                                "..AVIATION COORDS.. 50NM E/W /26N OKC - 17S ADM/\n");
    const NidsPage warned =
        page("-dr sum,data -nc ./conventions -wp . -dp . -va watch 201905202230");
    EXPECT_EQ(count_text(warned.text, " T9\n"), 1) << warned.run.err;
}

INSTANTIATE_TEST_SUITE_P(Formats, RadarWindow, testing::ValuesIn(formats),
                         [](const auto& row) { return std::string(row.param.name); });
