// The plot session: parameters, label texts and their places, zoom by events.
#include "plt_tool.h"

#include "cont.h"
#include "gks.h"
#include "map.h"
#include "maptran.h"
#include "region.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

// A PostScript session whose file is read back when it is closed.
class Plot : public testing::Test {
protected:
    void SetUp() override {
        RES_put("file_path", ZYR_SOURCE_DIR "/etc");
        RES_put("device", ("p," + file_).c_str());
        RES_conv_data("none,error", nullptr, CV_mess);
        FLAG_resetplot(1);
    }
    std::string page() { return read_text(file_); }
    // Positions of the texts on the page, by text.
    std::map<std::string, Gpt> texts() {
        std::map<std::string, Gpt> found;
        std::istringstream in(page());
        for (std::string line; std::getline(in, line);) {
            Gpt at{};
            int n = 0;
            if (std::sscanf(line.c_str(), "%%%%TE:%f %f %n", &at.x, &at.y, &n) == 2) { // NOLINT
                found[line.substr(static_cast<std::size_t>(n))] = at;
            }
        }
        return found;
    }

private:
    TempDir dir_;
    std::string file_ = dir_.path() + "/page.ps";
};

} // namespace

TEST(Label, OverlaysTakeLinesOrAreAppended) {
    EXPECT_EQ(PLT_label_up_left("first"), 0);
    EXPECT_EQ(PLT_label_up_left(std::string(70, 'x').c_str()), -1) << "69 characters fit";
    EXPECT_STREQ(PLT_get_label(up_left, 0), "first");
    EXPECT_EQ(PLT_next_overlay(), 1);
    PLT_label_up_left("second");
    EXPECT_STREQ(PLT_get_label(up_left, 1), "second");

    PLT_init_labels();
    PLT_set_overlay(0);
    PLT_label_low_right("first");
    PLT_set_label_type(-1);
    EXPECT_EQ(PLT_next_overlay(), 1);
    EXPECT_EQ(PLT_get_label_type(), -2);
    PLT_label_low_right("second");
    EXPECT_STREQ(PLT_get_label(low_right, 0), "first second");
    PLT_label_low_right(std::string(55, 'y').c_str());
    EXPECT_STREQ(PLT_get_label(low_right, 0), "first second") << "5 and 55 characters pass 59";
    PLT_label_low_right(std::string(54, 'y').c_str());
    EXPECT_EQ(std::string(PLT_get_label(low_right, 0)), "first " + std::string(54, 'y'));
}

TEST(Label, OverlayCountsStayInTheTable) {
    PLT_set_overlay(99);
    EXPECT_EQ(PLT_get_num_over(), 5);
    EXPECT_EQ(PLT_label_up_right("last"), 0);
    EXPECT_EQ(PLT_next_overlay(), 6);
    EXPECT_EQ(PLT_next_overlay(), -1);
    EXPECT_EQ(PLT_label_up_right("beyond"), -1);
    PLT_set_overlay(-3);
    EXPECT_EQ(PLT_label_up_right("none"), -1);
    EXPECT_EQ(PLT_get_label(6, 0), nullptr);
    PLT_set_num_overlay(2);
    EXPECT_EQ(PLT_get_num_over(), 6);
    PLT_set_num_overlay(-2);
    EXPECT_EQ(PLT_get_num_over(), 2);
    EXPECT_STREQ(PLT_get_label(up_right, 5), "last");
}

TEST(Label, CodesExpand) {
    char text[plt_label_size];
    PLT_label_format("%D", text);
    EXPECT_STREQ(text, "0000Z  0 JAN 00") << "a zero date";
    Date date{2015, 1, 2, 2, 5, 3, 4, 5};
    PLT_label_date(&date);
    PLT_label_for_time(6);
    const std::vector<std::pair<const char*, const char*>> rows = {
        {"a_b",       "a b"             },
        {"%y%m%d",    "150102"          },
        {"%b.",       "JAN."            },
        {"%h:%n",     "03:04"           },
        {"%D",        "0304Z  2 JAN 15" },
        {"%f",        "6 hour"          },
        {"100%% %q%", "100% "           },
        {"%V",        "9Z FRI  2 JAN 15"},
        {"%W",        "FRI  2 JAN 15"   },
    };
    for (const auto& [form, expected] : rows) {
        PLT_label_format(form, text);
        EXPECT_STREQ(text, expected) << form;
    }
}

namespace {

void decode(const char* words) {
    RES_put("plot_param", words);
    PLT_param_decode();
}

} // namespace

TEST(Parameters, WordsReachTheirModules) {
    using Values = std::vector<int>;
    const PLT_settings& kept = PLT_get_settings();
    decode("full,bar,over=1:3,lalo=10,loc_pr=2,loc_pr,inv,shadow=0,bogus,newer,idx,=");
    float lat = 0;
    float lon = 0;
    MAP_get_latlon(&lat, &lon);
    EXPECT_EQ(lat + lon, 20.0F) << "one step serves both";
    EXPECT_EQ(
        (Values{PLT_get_full_lab(), CONT_get_bar(), PLT_get_overlay_base(), PLT_get_num_over(),
                DOM_get_loc_prior(), gget_inverse(), gget_font_drop(), gget_pix_mode()}),
        (Values{0, 2, 1, 3, 2, 1, 4, 0}));
    decode("FULLAB,NoBar,shadow=2,gridx3,grdfmt:%f,max_bad,nohdr,kill,rwclr,nolcmap,nolooptitle");
    EXPECT_STREQ(kept.grid_format, "%f");
    EXPECT_EQ((Values{PLT_get_full_lab(), CONT_get_bar(), gget_font_drop(), kept.grid_factor,
                      kept.max_bad, gget_pix_mode(), kept.headers}),
              (Values{1, -2, 2, 3, 5, 9, 0}));
    decode("shadow=999999");
    EXPECT_EQ(gget_font_drop(), 1000) << "a window holds no more";
}

TEST(Parameters, PanelsAreCellsOrFractions) {
    const std::vector<std::pair<const char*, std::array<float, 4>>> panels = {
        {"vp_size=3x1+2+0",      {2 / 3.0F, 1, 0, 1}  },
        {"vp_size:2x2+1+0",      {.5F, 1, .5F, 1}     },
        {"vp_size:2x3+1",        {.5F, 1, .5F, 1}     }, // not all four: the panel stays
        {"vp_size=.5x.25+.1+.2", {.1F, .6F, .2F, .45F}},
    };
    for (const auto& [word, limits] : panels) {
        decode(word);
        Glim size{};
        GPH_get_view_size(&size);
        const std::array<float, 4> got = {size.x_min, size.x_max, size.y_min, size.y_max};
        for (std::size_t i = 0; i < got.size(); i++) {
            EXPECT_FLOAT_EQ(got[i], limits[i]) << word << ", limit " << i;
        }
    }
}

TEST_F(Plot, NothingToDrawOpensNothing) {
    FLAG_setplot(12, 0);
    EXPECT_EQ(PLT_open(1.0F), -1);
    FLAG_setplot(12, 1);
    FLAG_set(flag_plot_type, 99);
    EXPECT_EQ(PLT_open(1.0F), -1);
    EXPECT_EQ(PLT_close(), -1);
    EXPECT_EQ(gchk_graphics(), 0);
    EXPECT_EQ(page(), "");
}

TEST_F(Plot, LabelsStandAboutTheViewport) {
    RES_put("label", "uc:mid_%%,lr1:two");
    CONT_set_bar(0);
    ASSERT_EQ(PLT_open(1.0F), 0);
    PLT_set_num_overlay(2);
    PLT_label_up_left("UL");
    PLT_label_up_center("gone");
    PLT_label_low_left("LL");
    PLT_label_low_right("LR");
    PLT_set_overlay(1);
    PLT_label_up_left("UL1");
    EXPECT_EQ(PLT_labels(), 0);
    Glim view{};
    Glim size{};
    PLT_get_view(&view);
    GPH_get_view_size(&size);
    PLT_close();
    const auto found = texts();
    ASSERT_EQ(found.size(), 6U);
    const float step = (view.y_min - size.y_min) / 2;
    const auto expect = [&](const char* text, float x, float y) {
        ASSERT_TRUE(found.contains(text)) << text;
        EXPECT_NEAR(found.at(text).x, x, 1e-4) << text;
        EXPECT_NEAR(found.at(text).y, y, 1e-4) << text;
    };
    const float inset = 0.01F * (view.x_max - view.x_min);
    expect("UL", view.x_min + inset, view.y_max + 0.2F * step);
    expect("UL1", view.x_min + inset, view.y_max + 1.2F * step);
    expect("mid %", (view.x_min + view.x_max) / 2, view.y_max + 0.2F * step);
    expect("LL", view.x_min + inset, view.y_min - 1.2F * step);
    expect("LR", view.x_max - inset, view.y_min - 1.2F * step);
    expect("two", view.x_max - inset, view.y_min - 0.2F * step);
}

TEST_F(Plot, LabelsYieldToBarRoomAndSwitches) {
    struct Row {
        const char* param;
        int bar, result;
        std::vector<std::string> texts;
    };
    FLAG_setplot(3, 0);
    const std::vector<Row> rows = {
        {"none",   1, 0,  {"LR", "UL"}      }, // the bar stands in the place of LL
        {"none",   0, 0,  {"LL", "LR", "UL"}},
        {"full",   0, -1, {}                },
        {"fullab", 0, 0,  {"LL", "LR", "UL"}},
    };
    for (const Row& row : rows) {
        RES_put("plot_param", row.param);
        CONT_set_bar(row.bar);
        ASSERT_EQ(PLT_open(756.0F / 576.0F), 0);
        PLT_label_up_left("UL");
        PLT_label_up_right("UR");
        PLT_label_low_left("LL");
        PLT_label_low_right("LR");
        EXPECT_EQ(PLT_labels(), row.result) << row.param;
        PLT_close();
        std::vector<std::string> names;
        for (const auto& [text, at] : texts()) {
            names.push_back(text);
            if (row.param == std::string("fullab")) {
                EXPECT_TRUE(at.y > 0.0F && at.y < 576.0F / 756.0F) << text;
            }
        }
        EXPECT_EQ(names, row.texts) << row.param << ", bar " << row.bar;
        EXPECT_NE(page().find("%%PL:5"), std::string::npos) << "the border, " << row.param;
    }
}

TEST_F(Plot, DumpsThatCannotBeWrittenAreReported) {
    RES_put("out_file", "gif=picture_%i.gif");
    EXPECT_EQ(PLT_dump(0), -1);
    ASSERT_EQ(PLT_open(1.0F), 0);
    RES_conv_data("warn", nullptr, CV_mess);
    testing::internal::CaptureStderr();
    EXPECT_EQ(PLT_dump(0), 0);
    PLT_set_dump(1, nullptr);
    EXPECT_EQ(PLT_dump(0), 0);
    PLT_close();
    const std::string out = testing::internal::GetCapturedStderr();
    EXPECT_NE(out.find("PLT_dump: Unable to write GIF file: picture_win.gif\n"), std::string::npos)
        << out;
    EXPECT_NE(out.find("PLT_dump: Unable to write xdump file: zyr"), std::string::npos) << out;
}

namespace {

Domain drawn;
int draws = 0;
int draw(Domain* domain) {
    drawn = *domain;
    draws++;
    return 0;
}
int refresh() {
    draws += 100;
    return 0;
}

} // namespace

TEST_F(Plot, EventsZoomResizeAndRefresh) {
    ASSERT_EQ(PLT_open(1.0F), 0);
    Domain domain;
    DOM_init(&domain);
    ASSERT_EQ(DOM_decode("ps:-97,39,-97,11,6,1,1", &domain), 1);
    MAP_setup(&domain);
    PLT_set_zoom_func(draw);
    PLT_set_resize_func(draw);
    PLT_set_refresh_func(60, refresh);
    float cx = 0;
    float cy = 0;
    MAP_tran_center(&cx, &cy);

    PLT_plot_zoom("B1-P-Shft", cx, cy);
    EXPECT_EQ(PLT_plot_zoom("B1-R", cx, cy + 1), -1) << "no area";
    EXPECT_EQ(PLT_plot_zoom("B1-R-Shft", cx + 2, cy - 2), 0);
    EXPECT_EQ(draws, 1);
    EXPECT_EQ(PLT_get_zoom(), 1);
    EXPECT_FLOAT_EQ(drawn.dx, 0.4F) << "2 over 5 steps, the larger of both";
    EXPECT_FLOAT_EQ(drawn.dy, 0.4F);
    float x = 0;
    float y = 0;
    MAP_tran(drawn.clat, drawn.clon, &x, &y);
    EXPECT_NEAR(x, cx + 1, 1e-3);
    EXPECT_NEAR(y, cy - 1, 1e-3);
    EXPECT_EQ(PLT_plot_zoom("B1-R", cx, cy), -1) << "no rectangle was begun";

    MAP_setup(&drawn);
    EXPECT_EQ(PLT_plot_resize("size", 700, 500), 0);
    EXPECT_FLOAT_EQ(drawn.dx, 0.4F);
    EXPECT_EQ(PLT_plot_zoom("u-Alt", 0, 0), 0);
    EXPECT_EQ(PLT_get_zoom(), 0);
    EXPECT_FLOAT_EQ(drawn.dx, 1.0F);
    EXPECT_FLOAT_EQ(drawn.clat, 39.0F);
    EXPECT_EQ(PLT_plot_zoom("u-Alt", 0, 0), -1);
    EXPECT_EQ(PLT_plot_zoom("r-Alt", 0, 0), 0);
    PLT_plot_refresh();
    EXPECT_EQ(draws, 104);

    // A diagram's domain is a corner with its extent in data values.
    ASSERT_EQ(DOM_decode("vert,-40,1000,2,2,80,-900", &domain), 1);
    MAP_setup(&domain);
    float x1 = 0;
    float y1 = 0;
    MAP_tran(-10, 500, &x, &y);
    MAP_tran(10, 300, &x1, &y1);
    PLT_plot_zoom("B1-P-Shft", x1, y);
    PLT_plot_zoom("B1-R", x, y1);
    EXPECT_NEAR(drawn.clat, -10, 1e-3);
    EXPECT_NEAR(drawn.clon, 500, 1e-2);
    EXPECT_NEAR(drawn.dx, 20, 1e-3);
    EXPECT_NEAR(drawn.dy, -200, 1e-2);
    PLT_close();
}
