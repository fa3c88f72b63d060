// Kernel: phases, transformations, primitives and attributes as PostScript.

#include "gks.h"
#include "gks_tran.h"
#include "ps_page.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

constexpr std::array<Gpt, 5> cell = {
    {{0.0F, 0.0F}, {0.5F, 0.0F}, {0.5F, 1.0F}, {0.0F, 1.0F}, {0.0F, 0.0F}}
};

std::string report_of(const std::function<void()>& call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

} // namespace

// --- Phases -------------------------------------------------------------------

TEST(Kernel, ClosedKernelRefusesAndReports) {
    const std::array<std::function<int()>, 5> calls = {
        {
         [] { return gpolyline(5, cell.data()); },
         [] { return gtext(cell.data(), "text"); },
         [] { return gset_linewidth(2); },
         [] { return gset_fill_int_style(GPAT); },
         [] {
                const Gcolr_rep rep{};
                return gset_colr_rep(1, 2, &rep);
            }, }
    };
    gopen_gks(nullptr, 0); // a place to report to, but no workstation
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_NE(report_of([&] { EXPECT_EQ(calls[i](), -1) << i; }).find(": GKS not opened\n\n"),
                  std::string::npos)
            << i;
    }
    EXPECT_EQ(gset_fill_colr_ind(1), 0) << "unchanged: not even looked at";
    EXPECT_EQ(gclose_ws(1), -1);
    gclose_gks();
    EXPECT_EQ(report_of([] { gpolyline(1, cell.data()); }), "");
}

TEST(Kernel, BadValuesLeaveTheOldStateAndName) {
    const PsPage page;
    const auto nan = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        std::function<int()> call;
        const char* report;
    };
    const std::array<Case, 6> cases = {
        {
         {[] { return gpolyline(1, cell.data()); },
             "gpolyline: invalid number of points: 1\n\n"},
         {[] { return gset_line_colr_ind(257); },
             "gset_line_colr_ind: invalid color index: 257\n\n"},
         {[=] { return gset_linewidth(nan); }, "gset_linewidth: invalid line width: nan\n\n"},
         {[] { return gset_linetype(-1); }, "gset_linetype: invalid line type: -1\n\n"},
         {[] { return gset_fill_style_ind(20); },
             "gset_fill_style_ind: invalid style index: 20\n\n"},
         {[] { return gsel_norm_tran(6); },
             "gsel_norm_tran: invalid transformation number: 6\n\n"},
         }
    };
    for (const Case& c : cases)
        EXPECT_EQ(report_of([&] { EXPECT_EQ(c.call(), -1); }), c.report);
    EXPECT_EQ(gget_line_colr(), 1);
    int err = 0;
    int n = -1;
    ginq_cur_norm_tran_num(&err, &n);
    EXPECT_EQ(n, 0);
}

// --- Transformations ----------------------------------------------------------

TEST(Transformations, PipelineClampAndInverse) {
    const PsPage page; // 756 by 576 points
    const Glim wkwn = {0.0F, 1.0F, 0.0F, 0.5F};
    const Glim vp = {0.2F, 0.6F, 0.1F, 0.3F};
    const Glim win = {-10.0F, 10.0F, 0.0F, 20.0F};
    gset_ws_win(1, &wkwn);
    gset_vp(2, &vp);
    gset_win(2, &win);
    gsel_norm_tran(2);
    EXPECT_FLOAT_EQ(xW_NDC(0.0F), 0.4F);
    EXPECT_FLOAT_EQ(yW_NDC(20.0F), 0.3F);
    EXPECT_FLOAT_EQ(xW_ps(0.0F), 0.4F * 755.0F);
    EXPECT_FLOAT_EQ(yW_ps(20.0F), 0.3F * 755.0F);
    EXPECT_FLOAT_EQ(yW_p(20.0F), 0.2F * 755.0F) << "pixels count from the top";
    EXPECT_NEAR(xp_W(xW_p(3.0F)), 3.0F, 1e-4);
    EXPECT_NEAR(yp_W(yW_p(3.0F)), 3.0F, 1e-4);
    EXPECT_EQ(xW_p(1e9F), 30000.0F);
    EXPECT_EQ(xW_ps(-1e9F), -100000.0F);
    EXPECT_EQ(xW_ps(std::nanf("")), -100000.0F);
    const Gpipe& pipe = gget_pipe();
    EXPECT_EQ(pipe_x(pipe, 1.7F), xNDC_ps(xW_NDC(1.7F)));
    EXPECT_EQ(pipe_y(pipe, 1.7F), yNDC_ps(yW_NDC(1.7F)));
    // Transformation 1 is still the unit square, window and viewport.
    EXPECT_FLOAT_EQ(xW_trans(0.0F, 2, 1), 0.4F);
    EXPECT_NEAR(yW_trans(0.3F, 1, 2), 20.0F, 1e-4);
    gset_win_size(378, 576);
    EXPECT_FLOAT_EQ(xW_ps(0.0F), 0.4F * 377.0F) << "a new size keeps the windows";
}

TEST(Transformations, ClipRectangles) {
    gset_win_type(ws_window);
    gset_xsize(640, 512);
    ginit_tran(0);
    const Glim screen = {0.0F, 1.0F, 0.0F, 511.0F / 639.0F};
    gset_ws_win(1, &screen);
    const Glim vp = {0.1F, 0.9F, 0.1F, 0.7F};
    gset_vp(0, &vp);
    Gclip_rect clip{};
    gget_xviewport(&clip);
    EXPECT_EQ(clip.x, 64);       // 63.9
    EXPECT_EQ(clip.width, 512);  // to 575.1, far edge included
    EXPECT_EQ(clip.y, 64);       // 63.7
    EXPECT_EQ(clip.height, 384); // to 447.1
    Grectangle rect{};
    gget_gviewport(&rect);
    EXPECT_EQ(rect.height, 384);
    gset_win_type(ws_postscript);
    gget_gviewport(&rect);
    EXPECT_EQ(rect.x, 63);
    EXPECT_EQ(rect.y, 63); // from the bottom
    EXPECT_EQ(rect.width, 513);
    const Glim empty = {0.5F, 0.5F, 0.5F, 0.5F};
    gset_vp(0, &empty); // no scale, no crash
    EXPECT_TRUE(std::isfinite(xp_W(1.0F)));
}

TEST(Transformations, OnlyFiguresWhollyToOneSideAreDropped) {
    PsPage page;
    const std::array<Gpt, 2> left = {
        {{-1.0F, 0.2F}, {-0.1F, 0.8F}}
    };
    const std::array<Gpt, 2> edge = {
        {{-1.0F, 0.2F}, {0.0F, 0.8F}}
    };
    const std::array<Gpt, 2> corner = {
        {{-1.0F, 0.5F}, {0.5F, 2.0F}}
    }; // box alone meets
    EXPECT_EQ(gpts_in_win(2, left.data()), 0);
    EXPECT_EQ(gpts_in_win(2, edge.data()), 1);
    EXPECT_EQ(gpts_in_win(2, corner.data()), 1);
    EXPECT_EQ(gpts_in_win(0, nullptr), 0);
    gpolyline(2, left.data());
    gfill_area(2, left.data());
    EXPECT_EQ(page.drawn(), "");
}

// --- Primitives as PostScript -------------------------------------------------

// The unit square is 575 points wide at the left of the page.
TEST(Primitives, GoldenText) {
    const auto drawn = [](auto draw) {
        PsPage page;
        const Gcolr_rep black{};
        gset_colr_rep(1, 1, &black);
        draw();
        return page.drawn();
    };
    const auto cross = [] {
        gset_marker_type(5);
        gset_marker_size(1.0F); // 7.2 points: half a size is 3
        GPH_mark(0.2F, 0.4F);
    };
    EXPECT_EQ(drawn(cross), "%%PM:1\nnp\n112.00 227.00 mv\n118.00 233.00 ln\nstroke\n"
                            "np\n118.00 227.00 mv\n112.00 233.00 ln\nstroke\n");
    const Glim lim = {0.0F, 0.2F, 0.0F, 0.4F};
    EXPECT_EQ(drawn([&] { gclear_region(&lim); }),
              "%%CLR\nnp\n0.00 0.00 mv\n115.00 0.00 ln\n115.00 230.00 ln\n0.00 230.00 ln\ncp\n"
              "1 setgray\nfill\n");
    EXPECT_EQ(drawn([] { gmessage(1, "a\nshowpage"); }), // no text becomes a command
              "%%Message: a showpage\n");
}

TEST(Primitives, MarkerShapes) {
    struct Case {
        int type;
        int paths, lines;
        const char* first;
    };
    for (const Case& c : {
             Case{2,  2, 2,  "108.00 230.00 mv"},
             Case{3,  4, 4,  "108.00 230.00 mv"},
             Case{4,  1, 12, "108.00 230.00 mv"},
             Case{6,  1, 4,  "108.00 237.00 mv"},
             Case{7,  1, 3,  "108.00 237.00 mv"},
             Case{8,  1, 0,  "115.00 230.00 mv"},
             Case{9,  1, 3,  "108.00 223.00 mv"},
             Case{10, 0, 0,  ""                }  // unknown: no figure, no error
    }) {
        PsPage page;
        gset_marker_type(c.type);
        gset_marker_size(2.0F);
        GPH_mark(0.2F, 0.4F);
        const std::string text = page.drawn();
        EXPECT_EQ(count_text(text, "stroke\n"), c.paths) << c.type;
        EXPECT_EQ(count_text(text, " ln\n"), c.lines) << c.type;
        EXPECT_NE(text.find(c.first), std::string::npos) << text;
    }
}

TEST(Primitives, StateIsWrittenOnChangeAlone) {
    struct Case {
        const char* options;
        std::function<void()> draw;
        const char* text; // without the paths
    };
    const auto line = [] { GPH_line(0.0F, 0.0F, 1.0F, 1.0F); };
    const auto fill = [] { gfill_area(5, cell.data()); };
    const std::array<Case, 6> cases = {
        {
         {"color",
             [&] {
                 GPH_set_color(4, 1.0F, 0.5F, 0.0F);
                 gset_line_colr_ind(4);
                 gset_fill_colr_ind(4);
                 line();
                 fill();
                 gset_fill_colr_ind(504);
                 fill();
                 line();
             },
             "1.00 0.50 0.00 setrgbcolor\n1 setgray\n1.00 0.50 0.00 setrgbcolor\n"},
         {"", // print colours act on fills too
             [&] {
                 gset_fill_colr_ind(507);
                 fill();
                 gset_fill_colr_ind(-1);
                 fill();
                 gset_fill_print_solid(1);
                 fill();
                 fill();
                 gset_fill_print_solid(0);
             },
             ".7 setgray\n1 setgray\n0 setgray\n0 setgray\n"},
         {"lwidth=3.7", // whole dots; three widths of the print colours
             [&] {
                 line(); // width 1: not the one dot of the heading
                 gset_linewidth(2.0F);
                 line();
                 gset_line_colr_ind(502);
                 gset_linewidth(1.0F);
                 line();
                 line();
                 gset_line_colr_ind(504);
                 gset_linewidth(2.0F); // 2 * 2: in force already
                 line();
             },
             "3.0 dot lw\n6.0 dot lw\n12 dot lw\n1 setgray\n"},
         {"",
             [&] {
                 for (const int type : {2, 2, 3, 4, 5, 6, 1}) {
                     gset_linetype(type);
                     line();
                 }
             },
             "[6] 0 setdash\n[3 6] 0 setdash\n[6 6 3 6] 0 setdash\n[2] 0 setdash\n[] 0 setdash\n"},
         {"",
             [&] {
                 gps_set_reverse(1); // fills alone are turned over
                 GPH_set_color(4, 1.0F, 0.0F, 0.0F);
                 gps_set_reverse(0);
                 gset_fill_colr_ind(4);
                 fill();
             },
             "0.667 setgray\n"},
         {"", // an attribute record: -1 sets no colour, a pattern prints nothing
             [&] {
                 Gattribs attrib;
                 ATTRIB_parse("4:w3:s2", &attrib);
                 GPH_line_attr(&attrib);
                 line();
                 ATTRIB_parse("none:fi=hat", &attrib);
                 GPH_fill_attr(&attrib);
                 fill();
                 GPH_line_attr(nullptr);
                 line();
             },
             "3.0 dot lw\n[6] 0 setdash\n1.0 dot lw\n[] 0 setdash\n"},
         }
    };
    for (const Case& c : cases) {
        gps_set_base_width(1.0F);
        PsPage page(c.options);
        const Gcolr_rep black{};
        gset_colr_rep(1, 1, &black);
        c.draw();
        std::string state;
        std::string rest = page.drawn();
        while (!rest.empty()) {
            const std::string row = rest.substr(0, rest.find('\n') + 1);
            rest.erase(0, row.size());
            if (row.find("set") != std::string::npos || row.find("lw") != std::string::npos)
                state += row;
        }
        EXPECT_EQ(state, c.text) << c.options;
        gps_set_colorPS(0);
    }
}

TEST(Primitives, ArgumentsBeyondAllBoundsStaySafe) {
    PsPage page;
    const float inf = std::numeric_limits<float>::infinity();
    const std::array<Gpt, 3> wild = {
        {{inf, -inf}, {std::nanf(""), 0.0F}, {1e38F, -1e38F}}
    };
    gpolyline(3, wild.data());
    gfill_area(3, wild.data());
    gset_marker_size(1e38F);
    gpolymarker(3, wild.data());
    GPH_text_attr(nullptr, 1e38F);
    gset_expan(1e38F);
    gset_space(-inf);
    GPH_printf(inf, 0.0F, "%s", std::string(300, 'W').c_str());
    const std::string text = page.drawn();
    for (const char* word : {"nan mv", "nan ln", "inf mv", "inf ln"})
        EXPECT_EQ(text.find(word), std::string::npos) << word;
}
