// The display in memory shows what a window of the same size shows, to the last pixel.
#include "gks.h"
#include "image_view.h"
#include "nids_storm.h"
#include "plot_window.h"
#include "zyrresrc.h"

#include <array>
#include <filesystem>
#include <random>

namespace {

constexpr int num_pens = 8;

// --- Figures of the kernel ----------------------------------------------------------

std::mt19937 random_bits;
float pick(float low, float high) {
    return low + (high - low) * static_cast<float>(random_bits() % 4096) / 4096.0F;
}

// About a place, near and far corners alike; often closed, or with a corner twice.
std::vector<Gpt> some_points(int n, float reach) {
    const Gpt centre = {pick(0.0F, 1.0F), pick(0.0F, 1.0F)};
    std::vector<Gpt> points;
    for (int i = 0; i < n; ++i) {
        points.push_back({centre.x + pick(-reach, reach), centre.y + pick(-reach, reach)});
    }
    if (n % 3 == 0) {
        points.back() = points.front();
    }
    if (n % 5 == 0) {
        points[1] = points[0];
    }
    return points;
}

void lines(int type, float width) {
    gset_linetype(type);
    gset_linewidth(width);
    for (int i = 0; i < 60; ++i) {
        const auto points =
            some_points(2 + i % 9, i % 4 == 0 ? 2.0F : 0.01F * static_cast<float>(1 + i % 7));
        gset_line_colr_ind(1 + i % (num_pens - 1));
        gpolyline(static_cast<int>(points.size()), points.data());
    }
}

void areas(int pattern, float /*width*/) {
    gset_fill_int_style(pattern < 0 ? GSOLID : GPAT);
    gset_fill_style_ind(std::max(pattern, 0));
    for (int i = 0; i < 300; ++i) {
        const int n = i % 10 == 0 ? 40 : 3 + i % 6;
        const auto points = some_points(n, i % 9 == 0 ? 1.5F : i % 2 == 0 ? 0.004F : 0.05F);
        gset_fill_colr_ind(1 + i % (num_pens - 1));
        gfill_area(n, points.data());
    }
}

void markers(int type, float width) {
    gset_marker_type(type);
    gset_marker_width(width);
    for (int i = 0; i < 40; ++i) {
        const auto points = some_points(4, 0.6F);
        gset_marker_colr_ind(1 + i % (num_pens - 1));
        gset_marker_size(pick(0.05F, 4.0F));
        gpolymarker(4, points.data());
    }
}

void texts(int font, float width) {
    const Gfontprec chosen = {font, GSTROKE_PREC};
    gset_fontprec(&chosen);
    gset_text_width(width);
    for (int i = 0; i < 20; ++i) {
        const Gpt at = {pick(-0.1F, 0.9F), pick(0.0F, 1.0F)};
        const Gpt up = {pick(-1.0F, 1.0F), i % 3 == 0 ? pick(-1.0F, 1.0F) : 1.0F};
        gset_text_colr_ind(1 + i % (num_pens - 1));
        gset_char_ht(pick(0.01F, 0.1F));
        gset_char_up_vec(&up);
        gset_font_drop(i % 5);
        gtext(&at, "Wind 45 kts @#&gy");
    }
    gset_font_drop(0);
}

void frames(int /*number*/, float /*width*/) {
    lines(1, 0.0F);
    gselect_frame(gcreate_frame(0));
    areas(-1, 0.0F);
    const Glim hole = {0.2F, 0.5F, 0.3F, 0.8F};
    gclear_region(&hole);
    gdisplay_frame(0);
}

struct Figures {
    const char* name;
    void (*draw)(int, float);
    int first, last; // numbers to draw it with
    int widths;      // how many of the widths below
};
constexpr std::array widths = {0.0F, 1.0F, 2.0F, 3.0F, 6.0F};

Picture draw_figures(const char* conn, const Figures& figures, int number, float width) {
    random_bits.seed(static_cast<unsigned>(number) + 100);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    gset_image_run(1);
    gset_geometry("300x220");
    gset_background("steelblue");
    gopen_gks(nullptr, 0);
    if (gopen_ws(1, conn, ws_window) != 0) {
        return {};
    }
    for (int i = 0; i < num_pens; ++i) {
        const Gcolr_rep rep = {static_cast<float>(i % 2), static_cast<float>(i / 2 % 2),
                               0.3F + 0.1F * static_cast<float>(i / 4)};
        gset_colr_rep(1, i, &rep);
    }
    const Glim view = {0.1F, 0.9F, 0.1F, 0.7F};
    gset_vp(2, &view);
    gsel_norm_tran(2);
    figures.draw(number, width);
    IMG_report image;
    Picture picture;
    if (gget_image(&image) != 0) {
        picture = picture_of_record(image);
    }
    gclose_ws(1);
    gclose_gks();
    return picture;
}

TEST(Memory, FiguresHaveThePixelsOfAWindow) {
    const XServer server(24, 640, 512);
    if (!server.works()) {
        ASSERT_EQ(std::getenv("ZYR_NEED_DISPLAY"), nullptr) << "Xvfb does not start";
        GTEST_SKIP() << "no Xvfb";
    }
    const XUser keeps_the_server(server);
    const Figures table[] = {
        {"lines",   lines,   1,  5,  5},
        {"areas",   areas,   -1, 19, 1},
        {"markers", markers, 1,  9,  3},
        {"texts",   texts,   1,  4,  4},
        {"frames",  frames,  0,  0,  1},
    };
    int compared = 0;
    int drawn = 0;
    for (const Figures& row : table) {
        for (int number = row.first; number <= row.last; ++number) {
            for (int i = 0; i < row.widths; ++i) {
                const float width = widths[i];
                const Picture window = draw_figures(server.name().c_str(), row, number, width);
                const Picture memory = draw_figures("memory", row, number, width);
                ASSERT_EQ(memory.width, 300) << row.name << number;
                drawn += memory.colors() > 3 ? 1 : 0;
                EXPECT_EQ(pixels_that_differ(window, memory), 0)
                    << row.name << " " << number << " width " << width;
                ++compared;
            }
        }
    }
    EXPECT_EQ(drawn, compared - 1); // one pattern is empty
}

// --- The program ----------------------------------------------------------------------

class MemoryTest : public PlotWindow {
protected:
    ProgramRun run(const std::string& args, const std::string& display) {
        return launch(args,
                      {
                          {"DISPLAY", display}
        })
            ->wait();
    }
};

// Where no display answers, and where the text names it, whatever the plot.
TEST_F(MemoryTest, PlotsArePixelForPixelThoseOfTheWindow) {
    write("disc", disc_product(4));
    const Bytes storm = nids_sample_storm();
    write("storm", storm);
    const char* rows[] = {
        "storm",
        "storm -cof auto -pp fitlab -ge 801x403+5+5",
        "storm -pp inv -pd us",
        "storm -pd ll,35.3,-97.3,41,31,.1,.1 -ba navy",
        "storm -pd merc,35.3,-97.3,41,31,.1,.1",
        "storm -pd lamb,35.3,-97.3,41,31,.1,.1 -pp full",
        "storm -pd sat,35.3,-97.3,41,31,.1,.1",
        "disc -mf lalo,st,co",
    };
    for (const std::string row : rows) {
        const ProgramRun shown = run(row + " -de d -of png@x.png", server->name());
        const ProgramRun named = run(row + " -de d,memory -of png@m.png", server->name());
        const ProgramRun fallen = run(row + " -de d -of png@f.png", ":nowhere");
        EXPECT_EQ(shown.code, 0) << row << shown.err;
        EXPECT_EQ(named.code, 0) << row << named.err;
        EXPECT_EQ(fallen.code, 0) << row << fallen.err;
        EXPECT_EQ(named.err, shown.err) << row;
        EXPECT_EQ(fallen.err, shown.err) << row;
        const Picture seen = read_png(dir.path() + "/x.png");
        ASSERT_GT(seen.width, 0) << row;
        EXPECT_EQ(pixels_that_differ(seen, read_png(dir.path() + "/m.png")), 0) << row;
        EXPECT_EQ(pixels_that_differ(seen, read_png(dir.path() + "/f.png")), 0) << row;
    }
}

TEST_F(MemoryTest, SizesAndWhatIsNotAskedForAreHeld) {
    write("disc", disc_product(4));
    struct Row {
        const char* args;
        int code;
        int width; // 0: no picture
        const char* err;
    };
    constexpr Row rows[] = {
        {"-ge 0x0",          0, 640,  ""                                    },
        {"-ge 1x1",          0, 2,    ""                                    },
        {"-ge 9000x20",      0, 8192, "gopen_ws: window size cut to 8192\n" },
        {"-ge 4294967296x9", 0, 8192, "gopen_ws: window size cut to 8192\n" },
        {"-ge nosize",       0, 640,  "gopen_ws: invalid geometry: nosize\n"},
    };
    for (const Row& row : rows) {
        std::filesystem::remove(dir.path() + "/a.png");
        const ProgramRun done =
            run(std::string("disc -me warn -de d,memory -of png@a.png ") + row.args, "");
        EXPECT_EQ(done.code, row.code) << row.args << done.err;
        EXPECT_NE(done.err.find(row.err), std::string::npos) << row.args << done.err;
        EXPECT_EQ(read_png(dir.path() + "/a.png").width, row.width) << row.args;
    }
    const ProgramRun none = run("disc -de d,memory", "");
    EXPECT_EQ(none.code, 4) << none.err;
    EXPECT_NE(none.err.find("needs an image"), std::string::npos) << none.err;
}

// Nothing keeps the frames: their number has no bound.
TEST_F(MemoryTest, ManyFilesHaveAPictureEach) {
    constexpr int files = 140;
    std::string args;
    for (int i = 0; i < files; ++i) {
        const std::string name = "f" + std::to_string(i);
        write(name, disc_product(1 + i % 15, i % 60));
        args += name + " ";
    }
    const ProgramRun done = run(args + "-ge 64x64 -dr none,data -de d,memory -of png@%i.png", "");
    EXPECT_EQ(done.code, 0) << done.err;
    for (const int i : {0, 1, 127, 128, files - 1}) {
        std::array<char, 16> name{};
        std::snprintf(name.data(), name.size(), "/%02d.png", i);
        EXPECT_EQ(read_png(dir.path() + name.data()).width, 64) << i;
    }
}

} // namespace
