// Short runs that draw into the window of another program: how they find it,
// what part of it they take, and how they ask for frames.
#include "plot_window.h"

#include "gks.h"
#include "gks_x11.h"

#include <array>
#include <filesystem>

#include <unistd.h>

namespace {

constexpr const char* plain = " -dr sum,text";

class PixmapTest : public PlotWindow {
protected:
    void SetUp() override {
        PlotWindow::SetUp();
        write("disc", disc_product(5));
        write("other", disc_product(11, 40));
    }
    // A run that draws and ends; `during` is called again and again until then.
    ProgramRun draw(
        const std::string& args, const std::map<std::string, std::string>& env,
        const std::function<void()>& during = [] {}) {
        program = launch(args + plain, env);
        wait_until([&] {
            during();
            return program->ended();
        });
        during();
        return program->wait();
    }
    void expect_drawn(const std::string& args, const std::map<std::string, std::string>& env = {}) {
        const ProgramRun run = draw(args, env);
        EXPECT_EQ(run.code, 0) << args;
        EXPECT_EQ(run.err, "") << args;
    }
};

// The part of a picture from (x, y) on.
Picture part_of(const Picture& from, int x, int y, int width, int height) {
    Picture part{width, height, {}};
    for (int row = y; row < y + height; ++row) {
        const auto first = from.rgb.begin() + row * from.width + x;
        part.rgb.insert(part.rgb.end(), first, first + width);
    }
    return part;
}

} // namespace

TEST_F(PixmapTest, WindowIsFoundByItsId) {
    const Picture expected = picture_of(std::string("disc") + plain);
    const LoopWindow loop(*user, 640, 512);
    // A directory of data files that has id files, too.
    for (const auto& entry : std::filesystem::directory_iterator(ZYR_SOURCE_DIR "/etc"))
        std::filesystem::create_symlink(entry.path(), dir.path() / entry.path().filename());
    dir.write("zyrloop.3", loop.id_decimal() + "\n");
    dir.write("zyrloop.win", loop.id_hexadecimal() + " and more");
    dir.write("named", loop.id_with_window());
    const std::string path = " -fp " + dir.path();
    struct Row {
        std::string args;
        std::map<std::string, std::string> env;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"-de w,," + loop.id_decimal(),                       {}                                                    },
             {"-de w,," + loop.id_hexadecimal(),                   {}                                                    },
             {"-de w,," + loop.id_with_window(),                   {}                                                    },
             {"-de w,,w3" + path,                                  {}                                                    },
             {"-de w,,W" + path,                                   {}                                                    },
             {"-de w,,named" + path,                               {}                                                    },
             {"-de w",                                             {{"zyrwindow", loop.id_decimal()}, {"WINDOW", "gone"}}},
             {"-de w",                                             {{"WINDOW", loop.id_decimal()}}                       },
             {"-de w," + server->name() + "," + loop.id_decimal(), {{"DISPLAY", ":64321"}}                               }
    }) {
        loop.fill(0);
        expect_drawn("disc " + row.args, row.env);
        EXPECT_EQ(loop.look(), expected) << row.args;
    }
    loop.fill(0xFF);
    expect_drawn("disc -pp clear -de w,," + loop.id_decimal());
    EXPECT_EQ(loop.look(), expected) << "cleared first";
}

TEST_F(PixmapTest, PanelsTakeAPart) {
    const auto alone = [&](const char* size) {
        return picture_of(std::string("disc -ge ") + size + plain);
    };
    const Picture whole = alone("640x512");
    const Picture quarter = alone("320x256");
    const Picture small = alone("200x150");
    const Picture eighth = alone("80x512");
    const Picture least = alone("5x2");
    struct Row {
        const char* geometry;
        int x, y;
        const Picture& shown;
    };
    const LoopWindow loop(*user, 640, 512);
    const std::string id = loop.id_decimal();
    for (const Row& row : std::initializer_list<Row>{
             {"P2x2+1+0",      320, 0,   quarter},
             {"p2x2+0+1",      0,   256, quarter},
             {"200x150+30+40", 30,  40,  small  },
             {"200x150",       0,   0,   small  },
             {"P20x1+2+0",     160, 0,   eighth },
             {"P1xinf+0+inf",  0,   0,   whole  },
             {"5x1",           0,   0,   least  }
    }) {
        constexpr std::uint32_t blue = 0x0000FF;
        loop.fill(blue);
        const bool sized = std::string(row.geometry).find("inf") == std::string::npos;
        const ProgramRun run = draw("disc -pp clear -de w,," + id + " -ge " + row.geometry, {});
        EXPECT_EQ(run.code, 0) << row.geometry;
        EXPECT_EQ(run.err.empty(), sized) << row.geometry << run.err; // else a warning
        const Picture all = loop.look();
        EXPECT_EQ(part_of(all, row.x, row.y, row.shown.width, row.shown.height), row.shown)
            << row.geometry;
        const auto untouched = std::count(all.rgb.begin(), all.rgb.end(), blue);
        EXPECT_EQ(untouched, 640 * 512 - row.shown.width * row.shown.height) << row.geometry;
    }
}

// The title of a window is its owner's text, whoever that is.
TEST_F(PixmapTest, TitlesNameNoCommand) {
    struct Row {
        const char* title;
        const char* word;  // of plot_param
        const char* image; // that is written
    };
    constexpr Row rows[] = {
        {"|touch pwned",        "png=%p.png",         "_touch_pwned.png"          },
        {"../up",               "png=%p.png",         "_._up.png"                 },
        {"a';touch pwned;'",    "png=|cat>pic_%p",    "pic_a__touch_pwned__"      },
        {"$(touch pwned)`:`&x", "png=|cat>pic_%p.at", "pic___touch_pwned_____x.at"},
    };
    const LoopWindow loop(*user, 640, 512);
    for (const Row& row : rows) {
        XStoreName(user->display(), loop.window(), row.title);
        XSync(user->display(), False);
        draw("disc -de w,," + loop.id_with_window() + " -pp " + row.word, {});
        EXPECT_TRUE(std::filesystem::exists(dir.path() + "/" + row.image))
            << row.title << program->out() << program->err();
        EXPECT_FALSE(std::filesystem::exists(dir.path() + "/pwned")) << row.title;
    }
}

TEST_F(PixmapTest, RequestsToTheOwner) {
    const Picture expected = picture_of(std::string("disc") + plain);
    struct Row {
        const char* words;
        std::vector<int> codes;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"",          {} },
             {" -pp new",  {2}},
             {" -pp kill", {9}}
    }) {
        LoopWindow loop(*user, 640, 512);
        std::vector<int> codes;
        const auto serve = [&] {
            const std::vector<int> more = loop.serve([&] {
                usleep(500000); // more than twice between two looks at the title
                EXPECT_EQ(loop.look().colors(), 1) << "it did not wait for its frame";
            });
            codes.insert(codes.end(), more.begin(), more.end());
        };
        const ProgramRun run = draw("disc -de w,," + loop.id_with_window() + row.words, {}, serve);
        EXPECT_EQ(run.code, 0) << row.words << run.err;
        EXPECT_EQ(codes, row.codes) << row.words;
        EXPECT_EQ(loop.look(), expected) << row.words;
    }
}

// This program's window on one side, short runs of it on the other.
TEST_F(PixmapTest, RunsMakeTheFramesOfALoop) {
    const std::array<Picture, 2> expected = {picture_of(std::string("disc") + plain),
                                             picture_of(std::string("other") + plain)};
    gset_geometry("640x512");
    gset_win_title("Loop");
    ASSERT_EQ(gopen_gks(nullptr, 0), 0);
    ASSERT_EQ(gopen_ws(1, server->name().c_str(), ws_window), 0);
    gactivate_ws(1);
    gset_input_mode(1);
    const auto serve = [] {
        gsync();
        gcheck_event();
    };
    const std::string id = "+" + std::to_string(gget_root_window()) + ":" +
                           std::to_string(gget_base_window()) + ":640x512";
    for (int i = 0; i < 3; ++i) {
        const std::string file = i == 1 ? "other" : "disc";
        const ProgramRun run = draw(file + " -pp new -de w,," + id, {}, serve);
        ASSERT_EQ(run.code, 0) << run.err;
        ASSERT_EQ(gget_num_images(), i + 1);
    }
    for (int i = 0; i < 3; ++i) {
        gdisplay_frame(i);
        gsync();
        EXPECT_EQ(user->look(gget_root_window()), expected[i == 1 ? 1 : 0]) << i;
        EXPECT_EQ(user->title(gget_root_window()), "Loop [" + std::to_string(i) + "]");
    }
    EXPECT_EQ(gget_input_mode(), 1);
    EXPECT_EQ(draw("disc -pp kill -de w,," + id, {}, serve).code, 0);
    EXPECT_EQ(gget_input_mode(), 0) << "the hold is to end";
    EXPECT_EQ(gget_num_error(), 0);
    gclose_ws(1);
    gclose_gks();
}
