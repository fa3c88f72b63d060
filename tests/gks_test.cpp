// Kernel: phases, transformations, primitives and attributes as PostScript.

#include "gks.h"
#include "gks_pipe.h"
#include "ps_page.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::array<Gpt, 5> cell = {
    {{0.0F, 0.0F}, {0.5F, 0.0F}, {0.5F, 1.0F}, {0.0F, 1.0F}, {0.0F, 0.0F}}
};

std::string report_of(const std::function<void()>& call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

// What is drawn on a page whose unit square is 575 points wide, at the left.
std::string drawn(const std::function<void()>& draw, const char* options = "") {
    gps_set_base_width(1.0F);
    PsPage page(options);
    draw();
    gps_set_colorPS(0);
    return page.drawn();
}

} // namespace

// --- Phases -------------------------------------------------------------------

TEST(Kernel, ClosedKernelRefusesAndReports) {
    constexpr Gcolr_rep rep{};
    const std::vector<std::function<int()>> calls = {
        [] { return gpolyline(5, cell.data()); }, [] { return gtext(cell.data(), "text"); },
        [] { return gset_linewidth(2); }, [] { return gset_fill_int_style(GPAT); },
        [&] { return gset_colr_rep(1, 2, &rep); }};
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
    const std::vector<std::pair<std::function<int()>, const char*>> cases = {
        {[] { return gpolyline(1, cell.data()); }, "gpolyline: invalid number of points: 1"          },
        {[] { return gset_line_colr_ind(257); },   "gset_line_colr_ind: invalid color index: 257"    },
        {[=] { return gset_linewidth(nan); },      "gset_linewidth: invalid line width: nan"         },
        {[] { return gset_linetype(-1); },         "gset_linetype: invalid line type: -1"            },
        {[] { return gset_fill_style_ind(20); },   "gset_fill_style_ind: invalid style index: 20"    },
        {[] { return gsel_norm_tran(6); },         "gsel_norm_tran: invalid transformation number: 6"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(report_of([&row] { EXPECT_EQ(row.first(), -1); }),
                  std::string(row.second) + "\n\n");
    }
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

TEST(Transformations, ANewViewportIsClipped) {
    PsPage page;
    const Glim vp = {0.2F, 0.6F, 0.1F, 0.3F};
    gset_vp(0, &vp);
    const std::string text = page.drawn();
    EXPECT_NE(text.find("np\n114.90 57.40 mv\n114.90 172.60 ln\n345.10 172.60 ln"),
              std::string::npos)
        << text;
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
    const auto seen = [](const Gpt& a, const Gpt& b) {
        const std::array pts = {a, b};
        gpolyline(2, pts.data());
        gfill_area(2, pts.data());
        return gpts_in_win(2, pts.data());
    };
    EXPECT_EQ(seen({-1.0F, 0.2F}, {-0.1F, 0.8F}), 0);
    EXPECT_EQ(gpts_in_win(0, nullptr), 0);
    gmessage(1, "none yet");
    EXPECT_EQ(seen({-1.0F, 0.2F}, {0.0F, 0.8F}), 1) << "on the edge";
    EXPECT_EQ(seen({-1.0F, 0.5F}, {0.5F, 2.0F}), 1) << "its box alone meets";
    EXPECT_TRUE(page.drawn().starts_with("%%Message: none yet\n%%PL:2\n"));
}

// --- Primitives as PostScript -------------------------------------------------

TEST(Primitives, RegionsAndMessages) {
    const Glim lim = {0.0F, 0.2F, 0.0F, 0.4F};
    EXPECT_EQ(drawn([&] { gclear_region(&lim); }),
              "%%CLR\nnp\n0.00 0.00 mv\n115.00 0.00 ln\n115.00 230.00 ln\n0.00 230.00 ln\ncp\n"
              "1 setgray\nfill\n");
    EXPECT_EQ(drawn([] { gmessage(1, "a\nshowpage"); }), // no text becomes a command
              "%%Message: a showpage\n");
}

// At a size of 14.4 points, of which a half is 7.
TEST(Primitives, MarkerShapes) {
    struct Case {
        int type;
        int paths, lines;
        const char* first;
    };
    for (const Case& c : {
             Case{2,  2, 2,  "108.00 230.00 mv\n122.00 230.00 ln\nstroke"},
             Case{3,  4, 4,  "108.00 230.00 mv"                          },
             Case{4,  1, 12, "108.00 230.00 mv"                          },
             Case{5,  2, 2,  "108.00 223.00 mv\n122.00 237.00 ln\nstroke"},
             Case{6,  1, 4,  "108.00 237.00 mv"                          },
             Case{7,  1, 3,  "108.00 237.00 mv"                          },
             Case{8,  1, 0,  "115.00 230.00 mv"                          },
             Case{9,  1, 3,  "108.00 223.00 mv"                          },
             Case{10, 0, 0,  ""                                          }
    }) {
        const std::string text = drawn([&] {
            gset_marker_type(c.type);
            gset_marker_size(2.0F);
            GPH_mark(0.2F, 0.4F);
        });
        EXPECT_TRUE(text.starts_with("%%PM:1\n" + std::string(c.paths > 0 ? "np\n" : "") + c.first))
            << text;
        EXPECT_EQ(count_text(text, "stroke\n"), c.paths) << c.type;
        EXPECT_EQ(count_text(text, " ln\n"), c.lines) << c.type;
    }
}

TEST(Primitives, StateIsWrittenOnChangeAlone) {
    const auto state = [](const char* options, const std::function<void()>& draw) {
        std::string all;
        std::istringstream rows(drawn(draw, options));
        for (std::string row; std::getline(rows, row);) {
            if (row.find("set") != std::string::npos || row.ends_with("lw"))
                all += row + "\n";
        }
        return all;
    };
    const auto line = [](int color, float width) {
        gset_line_colr_ind(color);
        gset_linewidth(width);
        GPH_line(0.0F, 0.0F, 1.0F, 1.0F);
    };
    const auto fill = [](int color) {
        gset_fill_colr_ind(color);
        gfill_area(5, cell.data());
    };
    EXPECT_EQ(state("color",
                    [&] {
                        GPH_set_color(4, 1.0F, 0.5F, 0.0F);
                        line(4, 1);
                        fill(4);
                        fill(504);
                        line(4, 1);
                    }),
              "1.00 0.50 0.00 setrgbcolor\n1 setgray\n1.00 0.50 0.00 setrgbcolor\n");
    EXPECT_EQ(state("", // print colours act on fills too
                    [&] {
                        fill(507);
                        fill(-1);
                        gset_fill_print_solid(1);
                        fill(-1);
                        fill(-1);
                        gset_fill_print_solid(0);
                    }),
              ".7 setgray\n1 setgray\n0 setgray\n0 setgray\n");
    EXPECT_EQ(state("lwidth=3.7", // whole dots; three widths of the print colours
                    [&] {
                        line(1, 1); // not the one dot of the heading
                        line(1, 2);
                        line(502, 1);
                        line(502, 1);
                        line(504, 2); // 2 * 2: in force already
                    }),
              "3.0 dot lw\n6.0 dot lw\n12 dot lw\n1 setgray\n");
    EXPECT_EQ(state("",
                    [&] {
                        for (const int type : {2, 2, 3, 4, 5, 6, 1}) {
                            gset_linetype(type);
                            line(1, 1);
                        }
                    }),
              "[6] 0 setdash\n[3 6] 0 setdash\n[6 6 3 6] 0 setdash\n[2] 0 setdash\n[] 0 setdash\n");
    EXPECT_EQ(state("", // fills alone are turned over
                    [&] {
                        gps_set_reverse(1);
                        GPH_set_color(4, 1.0F, 0.0F, 0.0F);
                        gps_set_reverse(0);
                        fill(4);
                        line(4, 1);
                    }),
              "0.667 setgray\n0 setgray\n");
    EXPECT_EQ(state("", // an attribute record: -1 sets no colour, a pattern prints nothing
                    [&] {
                        Gattribs attrib;
                        ATTRIB_parse("4:w3:s2", &attrib);
                        GPH_line_attr(&attrib);
                        line(1, 3);
                        ATTRIB_parse("none:fi=hat", &attrib);
                        GPH_fill_attr(&attrib);
                        fill(1);
                        GPH_line_attr(nullptr);
                        line(1, 1);
                    }),
              "3.0 dot lw\n[6] 0 setdash\n1.0 dot lw\n[] 0 setdash\n");
}

TEST(Primitives, ArgumentsBeyondAllBoundsStaySafe) {
    const float inf = std::numeric_limits<float>::infinity();
    const std::array<Gpt, 3> wild = {
        {{inf, -inf}, {std::nanf(""), 0.0F}, {1e38F, -1e38F}}
    };
    const std::string text = drawn([&] {
        gpolyline(3, wild.data());
        gfill_area(3, wild.data());
        gset_marker_size(1e38F);
        gpolymarker(3, wild.data());
        GPH_text_attr(nullptr, 1e38F);
        gset_expan(1e38F);
        gset_space(-inf);
        GPH_printf(inf, 0.0F, "%s", std::string(300, 'W').c_str());
    });
    for (const char* word : {"nan mv", "nan ln", "inf mv", "inf ln"})
        EXPECT_EQ(text.find(word), std::string::npos) << word;
}
