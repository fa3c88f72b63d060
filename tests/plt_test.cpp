// The plot session: parameters, label texts and their places, zoom by events.
#include "plt_tool.h"

#include "cont.h"
#include "figure_page.h"
#include "gks.h"
#include "map.h"
#include "maptran.h"
#include "region.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace {

Domain decoded(const char* text) {
    Domain domain;
    DOM_init(&domain);
    EXPECT_EQ(DOM_decode(text, &domain), 1) << text;
    return domain;
}

void decode(const char* words) {
    RES_put("plot_param", words);
    PLT_param_decode();
}

// Positions of the texts on a page that is closed here, by text.
std::map<std::string, Gpt> texts(FigurePage* page) {
    page->read(tran_page);
    std::map<std::string, Gpt> found;
    for (const FigureText& text : page->texts) {
        found[text.text] = text.pos;
    }
    return found;
}

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
    PLT_label_format("%D|%b.", text);
    EXPECT_STREQ(text, "0000Z  0 JAN 00|   .") << "a zero date";
    Date date{2015, 1, 2, 2, 5, 3, 4, 5};
    PLT_label_date(&date);
    PLT_label_for_time(6);
    PLT_label_format("a_b|%y%m%d|%b.|%h:%n|100%% %q%", text);
    EXPECT_STREQ(text, "a b|150102|JAN.|03:04|100% ");
    PLT_label_format("%D|%V|%W|%f", text);
    EXPECT_STREQ(text, "0304Z  2 JAN 15|9Z FRI  2 JAN 15|FRI  2 JAN 15|6 hour");
}

TEST(Parameters, WordsReachTheirModules) {
    using Values = std::vector<int>;
    const PLT_settings& kept = PLT_get_settings();
    decode("full,bar,over=1:3,lalo=10:nan:nan,loc_pr=2,loc_pr,inv,shadow=0,bogus,newer,idx,=");
    float lat = 0;
    float lon = 0;
    MAP_get_latlon(&lat, &lon);
    EXPECT_EQ(lat + lon, 20.0F) << "one step serves both";
    EXPECT_EQ(
        (Values{PLT_get_full_lab(), CONT_get_bar(), PLT_get_overlay_base(), PLT_get_num_over(),
                DOM_get_loc_prior(), gget_inverse(), gget_font_drop(), gget_pix_mode()}),
        (Values{0, 2, 1, 3, 2, 1, 4, 0}));
    decode(
        "FULLAB,NoBar,shadow=99999,gridx3,grdfmt:%f,max_bad,nohdr,kill,rwclr,nolcmap,nolooptitle");
    EXPECT_STREQ(kept.grid_format, "%f");
    EXPECT_EQ((Values{PLT_get_full_lab(), CONT_get_bar(), gget_font_drop(), kept.grid_factor,
                      kept.max_bad, gget_pix_mode(), kept.headers}),
              (Values{1, -2, 1000, 3, 5, 9, 0}));
}

TEST(Parameters, PanelsAreCellsOrFractions) {
    const std::pair<const char*, const char*> panels[] = {
        {"vp_size=3x1+2+0",      "0.67 1.00 0.00 1.00"},
        {"vp_size:2x2+1+0",      "0.50 1.00 0.50 1.00"},
        {"vp_size:2x3+1",        "0.50 1.00 0.50 1.00"}, // not all four: the panel stays
        {"vp_size:0x.5+0+0",     "0.50 1.00 0.50 1.00"}, // and so without an area
        {"vp_size:nanx1+0+0",    "0.50 1.00 0.50 1.00"},
        {"vp_size=.5x.25+.1+.2", "0.10 0.60 0.20 0.45"},
    };
    for (const auto& [word, limits] : panels) {
        decode(word);
        Glim size{};
        GPH_get_view_size(&size);
        char text[80];
        std::snprintf(text, sizeof text, "%.2f %.2f %.2f %.2f", size.x_min, size.x_max, size.y_min,
                      size.y_max);
        EXPECT_STREQ(text, limits) << word;
    }
}

TEST(Plot, NothingToDrawOpensNothing) {
    RES_put("device", "p,/dev/null");
    FLAG_setplot(12, 0);
    EXPECT_EQ(PLT_open(1.0F), -1);
    FLAG_setplot(12, 1);
    FLAG_set(flag_plot_type, 99);
    EXPECT_EQ(PLT_open(1.0F), -1);
    EXPECT_EQ(PLT_close(), -1);
    EXPECT_EQ(gchk_graphics(), 0);
}

TEST(Plot, LabelsStandAboutTheViewport) {
    RES_put("label", "uc:mid_%%,lr1:two");
    CONT_set_bar(0);
    FigurePage page(decoded("ps:-97,39,-97,11,11,1,1"), ZYR_SOURCE_DIR);
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
    const float step = (view.y_min - size.y_min) / 2;
    const float inset = 0.01F * (view.x_max - view.x_min);
    const float above = view.y_max + 0.2F * step;
    const float below = view.y_min - 0.2F * step;
    const auto found = texts(&page);
    EXPECT_EQ(found.size(), 6U);
    const auto expect = [&found](const char* text, float x, float y) {
        ASSERT_TRUE(found.contains(text)) << text;
        EXPECT_NEAR(found.at(text).x, x, 1e-4) << text;
        EXPECT_NEAR(found.at(text).y, y, 1e-4) << text;
    };
    expect("UL", view.x_min + inset, above);
    expect("UL1", view.x_min + inset, above + step);
    expect("mid %", (view.x_min + view.x_max) / 2, above);
    expect("LL", view.x_min + inset, below - step);
    expect("LR", view.x_max - inset, below - step);
    expect("two", view.x_max - inset, below);
}

TEST(Plot, LabelsYieldToBarRoomAndSwitches) {
    struct Row {
        const char* param;
        int bar, result;
        std::string texts;
    };
    const std::vector<Row> rows = {
        {"none",   1, 0,  "LR UL "   }, // the bar stands in the place of LL
        {"none",   0, 0,  "LL LR UL "},
        {"full",   0, -1, ""         },
        {"fullab", 0, 0,  "LL LR UL "},
    };
    for (const Row& row : rows) {
        FigurePage page(decoded("ps:-97,39,-97,22,17,1,1"), ZYR_SOURCE_DIR); // the page's shape
        FLAG_setplot(3, 0);
        decode(row.param);
        PLT_reset(756.0F / 576.0F);
        CONT_set_bar(row.bar);
        PLT_label_up_left("UL");
        PLT_label_up_right("UR");
        PLT_label_low_left("LL");
        PLT_label_low_right("LR");
        EXPECT_EQ(PLT_labels(), row.result) << row.param;
        std::string names;
        for (const auto& [text, at] : texts(&page)) {
            names += text + " ";
            EXPECT_TRUE(row.param != std::string("fullab") || (at.y > 0 && at.y < 576.0F / 756));
        }
        EXPECT_EQ(names, row.texts) << row.param << ", bar " << row.bar;
        ASSERT_EQ(page.figures.size(), 1U) << row.param;
        EXPECT_EQ(page.figures[0].points.size(), 5U) << "the border";
    }
}

TEST(Plot, DumpsThatCannotBeWrittenAreReported) {
    RES_put("out_file", "gif=picture_%i.gif");
    EXPECT_EQ(PLT_dump(0), -1);
    FigurePage page(decoded("ps:-97,39,-97,11,11,1,1"), ZYR_SOURCE_DIR);
    RES_conv_data("warn", nullptr, CV_mess);
    testing::internal::CaptureStderr();
    EXPECT_EQ(PLT_dump(0), 0);
    PLT_set_dump(1, nullptr);
    EXPECT_EQ(PLT_dump(0), 0);
    const std::string out = testing::internal::GetCapturedStderr();
    EXPECT_NE(out.find("PLT_dump: Unable to write GIF file: picture_win.gif\n"), std::string::npos)
        << out;
    EXPECT_NE(out.find("PLT_dump: Unable to write xdump file: zyr"), std::string::npos) << out;
    EXPECT_EXIT(page.read(tran_page), testing::ExitedWithCode(4), "") << "a script must notice";
}

namespace {

Domain drawn;
int draws = 0;
int draw(Domain* domain) {
    drawn = *domain;
    ++draws;
    return 0;
}
int refresh() {
    draws += 100;
    return 0;
}

} // namespace

TEST(Plot, EventsZoomResizeAndRefresh) {
    FigurePage page(decoded("ps:-97,39,-97,11,6,1,1"), ZYR_SOURCE_DIR);
    PLT_set_zoom_func(draw);
    PLT_set_resize_func(draw);
    PLT_set_refresh_func(60, refresh);
    float cx = 0;
    float cy = 0;
    MAP_tran_center(&cx, &cy);

    PLT_plot_zoom("B1-P-Shft", cx, cy);
    EXPECT_EQ(PLT_plot_zoom("B1-R", cx, cy + 1), -1) << "no area";
    EXPECT_EQ(PLT_plot_zoom("B1-R-Shft", cx + 2, cy - 2), 0);
    EXPECT_TRUE(draws == 1 && PLT_get_zoom() == 1);
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
    EXPECT_TRUE(PLT_get_zoom() == 0 && drawn.dx == 1.0F && drawn.clat == 39.0F);
    EXPECT_EQ(PLT_plot_zoom("u-Alt", 0, 0), -1);
    EXPECT_EQ(PLT_plot_zoom("r-Alt", 0, 0), 0);
    PLT_plot_refresh();
    EXPECT_EQ(draws, 104);

    // A diagram's domain is a corner with its extent in data values.
    const Domain diagram = decoded("vert,-40,1000,2,2,80,-900");
    MAP_setup(&diagram);
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
    page.read(tran_page);
}
