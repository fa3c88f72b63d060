// A Radar Coded Message in a window: a redraw, a refresh, and a file that goes.
#include "plot_session.h"
#include "rarep.h"
#include "rcm_writer.h"

#include "files.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include "plot_window.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

class RcmWindow : public PlotWindow {
protected:
    // A message whose echoes have one level, in a file of its minute.
    void file(int minute, int level, int told_minute) const {
        const auto report = rcm_blank();
        report->date.min = told_minute;
        for (int column = 40; column < 64; ++column) {
            for (int row = 40 + level; row < 64; ++row) {
                report->echo[column][row] = static_cast<signed char>(level);
            }
        }
        write("2019052022" + std::to_string(minute), rcm_message(*report, false));
    }
};

} // namespace

TEST_F(RcmWindow, RedrawAndRefresh) {
    file(30, 2, 30);
    ASSERT_TRUE(open_plot_session("d," + server->name()));
    window = user->find_window();
    setenv("zyrcurtime", "201905202240", 1);
    RES_put("data_path", dir.path().c_str());
    RES_put("identifier", "TLX");
    RES_put("variable", "comp");
    FILE_set_name("@%D/%Y%m%d%h%n");
    RES_put("filename", (dir.path() + "/201905202230").c_str());
    char name[file_name_size];
    FILE_get_file("", name);
    RCM_set_date(nullptr);
    ASSERT_EQ(RCM_prompt_id(), 0);
    Domain domain;
    RCM_site_domain(35.33F, -97.28F, &domain);
    const auto look = [&] {
        gupdate_window();
        gsync();
        return user->look(window);
    };
    ASSERT_EQ(RCM_plot(&domain), 0); // as a redraw, which leaves the session open
    const Picture first = look();
    ASSERT_EQ(RCM_plot(&domain), 0);
    EXPECT_EQ(look(), first) << "the same once more";

    // A step is a minute; files are looked for at that distance.
    const int next = FILE_get_nsecs() + 60;
    ASSERT_EQ(next % 60, 0);
    RCM_plot_nextfile();
    EXPECT_EQ(look(), first) << "no file";
    file(30 + next / 60 + 1, 5, 30);
    RCM_plot_nextfile();
    EXPECT_EQ(look(), first) << "the message of before";
    file(30 + next / 60 + 2, 5, 38);
    RCM_plot_nextfile();
    const Picture second = look();
    EXPECT_GT(pixels_that_differ(first, second), 1000);

    // A redraw without a file keeps what is on show.
    std::filesystem::remove(dir.path() + "/201905202230");
    EXPECT_EQ(RCM_plot(&domain), -1);
    EXPECT_EQ(look(), second);
    PLT_set_dump(1, ""); // no hold at the end
    PLT_close();
}

// Files as frames, zoom and the colours of the bar, as the user meets them.
TEST_F(RcmWindow, FramesOfARun) {
    file(30, 2, 30);
    file(40, 5, 40);
    const std::string args = "-inp rcmsite -id TLX -dr sum,text -ti T ";
    const Picture one = picture_of(args + "./201905202230");
    const Picture two = picture_of(args + "./201905202240");
    ASSERT_GT(pixels_that_differ(one, two), 1000);
    start(args + "./201905202230 ./201905202240");
    user->key(XK_l, alt); // stops the loop
    settle();
    const Picture stopped = picture();
    EXPECT_TRUE(stopped == one || stopped == two);
}
