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

void expect_lim(const Glim& got, const Glim& want) {
    EXPECT_NEAR(got.x_min, want.x_min, 1e-6);
    EXPECT_NEAR(got.x_max, want.x_max, 1e-6);
    EXPECT_NEAR(got.y_min, want.y_min, 1e-6);
    EXPECT_NEAR(got.y_max, want.y_max, 1e-6);
}

std::string report_of(const std::function<void()>& call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

void expect_exit(Gws_type type, const char* name, const char* text) {
    int ws_id = 0;
    EXPECT_EXIT(GPH_begin(&ws_id, name, &type), testing::ExitedWithCode(4), text);
}

} // namespace

// --- Phases -------------------------------------------------------------------

TEST(Kernel, ClosedKernelRefusesAndReports) {
    const std::array<std::function<int()>, 16> calls = {
        {
         [] { return gpolyline(5, cell.data()); },
         [] { return gpolymarker(5, cell.data()); },
         [] { return gtext(cell.data(), "text"); },
         [] { return gset_line_colr_ind(2); },
         [] { return gset_linewidth(2); },
         [] { return gset_linetype(2); },
         [] { return gset_fill_colr_ind(2); },
         [] { return gset_fill_int_style(GPAT); },
         [] { return gset_fill_style_ind(2); },
         [] { return gset_marker_size(2); },
         [] { return gset_marker_width(2); },
         [] { return gset_char_ht(2); },
         [] { return gset_text_width(2); },
         [] { return gset_expan(2); },
         [] { return gset_text_colr_ind(2); },
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
    const std::array<Case, 11> cases = {
        {
         {[] { return gpolyline(1, cell.data()); },
             "gpolyline: invalid number of points: 1\n\n"},
         {[] { return gset_line_colr_ind(257); },
             "gset_line_colr_ind: invalid color index: 257\n\n"},
         {[] { return gset_fill_colr_ind(499); },
             "gset_fill_colr_ind: invalid color index: 499\n\n"},
         {[] { return gset_linewidth(-1); },
             "gset_linewidth: invalid line width: -1.000000\n\n"},
         {[=] { return gset_linewidth(nan); }, "gset_linewidth: invalid line width: nan\n\n"},
         {[] { return gset_linetype(-1); }, "gset_linetype: invalid line type: -1\n\n"},
         {[] { return gset_fill_style_ind(20); },
             "gset_fill_style_ind: invalid style index: 20\n\n"},
         {[] { return gset_marker_size(-2); },
             "gset_marker_size: invalid marker size: -2.000000\n\n"},
         {[] { return gset_char_ht(-2); },
             "gset_char_ht: invalid character height: -2.000000\n\n"},
         {[] { return gset_expan(-2); }, "gset_expan: invalid expansion factor: -2.000000\n\n"},
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

TEST(Kernel, DevicesThatCannotOpenEndWithFour) {
    expect_exit(ws_window, "", "this build has no window device");
    expect_exit(ws_pixmap, "", "this build has no window device");
    expect_exit(ws_metafile, "/dev/null/x.meta", "gopen_ws: unable to open metafile\n\n");
    expect_exit(ws_hpgl, "", "gopen_ws: unable to open HPGL file\n\n");
    expect_exit(ws_postscript, "/dev/null/x.ps", "gopen_ws: unable to open postscript file\n\n");
    setenv("zyrprint", "HPGL", 1);
    expect_exit(ws_postscript, "", "unable to open HPGL file");
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

TEST(Transformations, Aspect) {
    const Glim in = {1.0F, 3.0F, 1.0F, 2.0F};
    struct Case {
        Gaspect asp;
        Gcenter center;
        Glim want;
    };
    for (const Case& c : {
             Case{{1, 1}, {2, 2}, {1.5F, 2.5F, 1.0F, 2.0F}  },
             Case{{4, 1}, {2, 2}, {1.0F, 3.0F, 1.25F, 1.75F}},
             Case{{1, 1}, {3, 3}, {2.0F, 3.0F, 1.0F, 2.0F}  },
             Case{{1, 1}, {1, 0}, {0.0F, 1.0F, 0.0F, 1.0F}  }
    }) {
        Glim out{};
        gset_aspect(&in, &out, c.asp, c.center);
        expect_lim(out, c.want);
    }
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

TEST(Panel, PageSizesAndMargins) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    const std::string device = "p," + temp_name("panel.ps");
    RES_put("device", device.c_str());
    FLAG_set(flag_device, missing);
    constexpr float yvp = 575.0F / 755.0F;
    int ws_id = 0;
    Gws_type type = ws_none;
    Glim area = {0.0F, 0.0F, 0.04F, 0.04F};
    GPH_setup(&ws_id, &type, 1.0F, &area);
    EXPECT_EQ(type, ws_postscript);
    const float side = 0.92F * yvp; // square, centred in what the margins leave
    expect_lim(area, {0.5F - side / 2, 0.5F + side / 2, 0.04F * yvp, 0.96F * yvp});
    Glim got{};
    GPH_get_view(tran_map, &got);
    expect_lim(got, area);
    GPH_get_win(tran_page, &got);
    expect_lim(got, {0.0F, 1.0F, 0.0F, yvp});
    // The upper right quarter; a ratio of 0 takes the panel's own shape.
    GPH_set_view_size(0.5F, 0.5F, 0.5F, 0.5F);
    area = {0.0F, 0.0F, 0.0F, 0.0F};
    GPH_panel(&ws_id, &type, 0.0F, &area);
    expect_lim(area, {0.5F, 1.0F, yvp / 2, yvp});
    GPH_get_view_size(&got);
    expect_lim(got, area);
    // The table's colours have been handed over.
    Gcolr_rep rep{};
    gget_color_rgb(CLR_get_ind("yellow"), &rep.red, &rep.green, &rep.blue);
    EXPECT_EQ(rep.green, 1.0F);
    GPH_begin(&ws_id, "elsewhere.ps", &type); // keeps the workstation
    EXPECT_EQ(GPH_hold(ws_id), 0);
    GPH_end(ws_id);
    EXPECT_EQ(FLAG_get(flag_device), ws_postscript);
    EXPECT_NE(read_text(temp_name("panel.ps")).find("%%EOF"), std::string::npos);
    std::remove(temp_name("panel.ps").c_str());
}

// --- Primitives as PostScript -------------------------------------------------

TEST(Primitives, GoldenText) {
    // The unit square is 575 points wide at the left of the page.
    struct Case {
        std::function<void()> draw;
        const char* text;
    };
    const std::array<Case, 8> cases = {
        {
         {[] { GPH_line(0.0F, 0.0F, 0.5F, 1.0F); },
             "%%PL:2\nnp\n0.00 0.00 mv\n287.50 575.00 ln\nstroke\n"},
         {[] { gfill_area(5, cell.data()); },
             "%%FA:5\nnp\n0.00 0.00 mv\n287.50 0.00 ln\n287.50 575.00 ln\n0.00 575.00 ln\n"
             "0.00 0.00 ln\ncp\nfill\n"},
         {[] {
                 gset_fill_int_style(GPAT); // patterns do not print
                 gfill_area(5, cell.data());
             },
             ""},
         {[] { GPH_mark(0.2F, 0.4F); },
             "%%PM:1\nnp\n115.00 230.00 mv\n116.00 230.00 ln\n116.00 231.00 ln\n115.00 231.00 ln\n"
             "115.00 230.00 ln\nstroke\n"},
         {[] {
                 gset_marker_type(5);
                 gset_marker_size(1.0F); // 7.2 points: half a size is 3
                 GPH_mark(0.2F, 0.4F);
             },
             "%%PM:1\nnp\n112.00 227.00 mv\n118.00 233.00 ln\nstroke\nnp\n118.00 227.00 mv\n"
             "112.00 233.00 ln\nstroke\n"},
         {[] {
                 gset_marker_type(10); // unknown: no figure, no error
                 GPH_mark(0.2F, 0.4F);
             },
             "%%PM:1\n"},
         {[] {
                 const Glim lim = {0.0F, 0.2F, 0.0F, 0.4F};
                 gclear_region(&lim);
             },
             "%%CLR\nnp\n0.00 0.00 mv\n115.00 0.00 ln\n115.00 230.00 ln\n0.00 230.00 ln\ncp\n"
             "1 setgray\nfill\n"},
         {[] {
                 const Glim vp = {0.0F, 0.2F, 0.0F, 0.4F};
                 gset_vp(2, &vp); // not current: no clip
                 gsel_norm_tran(2);
                 gsel_norm_tran(2);          // current: nothing
                 gmessage(1, "a\nshowpage"); // no text becomes a command
             },
             "initclip\nnp\n-0.10 -0.10 mv\n-0.10 230.10 ln\n115.10 230.10 ln\n115.10 -0.10 "
             "ln\ncp\n"
             "clip\n%%Message: a showpage\n"},
         }
    };
    for (const Case& c : cases) {
        PsPage page;
        Gcolr_rep black{};
        gset_colr_rep(1, 1, &black);
        c.draw();
        EXPECT_EQ(page.drawn(), c.text);
    }
}

TEST(Primitives, MarkerShapes) {
    struct Case {
        int type;
        int paths, lines;
        const char* first;
    };
    for (const Case& c : {
             Case{2, 2, 2,  "108.00 230.00 mv"},
             Case{3, 4, 4,  "108.00 230.00 mv"},
             Case{4, 1, 12, "108.00 230.00 mv"},
             Case{6, 1, 4,  "108.00 237.00 mv"},
             Case{7, 1, 3,  "108.00 237.00 mv"},
             Case{8, 1, 0,  "115.00 230.00 mv"},
             Case{9, 1, 3,  "108.00 223.00 mv"}
    }) {
        PsPage page;
        gset_marker_type(c.type);
        gset_marker_size(2.0F);
        GPH_mark(0.2F, 0.4F);
        const std::string text = page.drawn();
        const auto count = [&text](const std::string& what) {
            int n = 0;
            for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
                ++n;
            return n;
        };
        EXPECT_EQ(count("stroke\n"), c.paths) << c.type;
        EXPECT_EQ(count(" ln\n"), c.lines) << c.type;
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
    const std::array<Case, 9> cases = {
        {
         {"", // lines print black, fills grey
             [&] {
                 GPH_set_color(4, 1.0F, 0.0F, 0.0F);
                 gset_line_colr_ind(4);
                 gset_fill_colr_ind(4);
                 line();
                 fill();
                 fill();
                 line();
             },
             "0.333 setgray\n0 setgray\n"},
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
             "6.0 dot lw\n12 dot lw\n1 setgray\n"},
         {"",
             [&] {
                 gset_linewidth(0.0F); // counts as 1
                 line();
                 gset_line_print_bold(2);
                 gset_linewidth(1.0F);
                 line();
                 gset_line_print_bold(-5);
                 line();
             },
             "2.0 dot lw\n1.0 dot lw\n"},
         {"",
             [&] {
                 for (const int type : {2, 2, 3, 4, 5, 6, 1}) {
                     gset_linetype(type);
                     line();
                 }
             },
             "[6] 0 setdash\n[3 6] 0 setdash\n[6 6 3 6] 0 setdash\n[2] 0 setdash\n[] 0 setdash\n"},
         {"", // grey 0.7 for print, then the colour's own
             [&] {
                 gset_line_colr_ind(506);
                 line();
                 gset_line_colr_ind(3);
                 line();
             },
             ".7 setgray\n0 setgray\n"},
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
        PsPage page(c.options);
        gps_set_base_width(std::string(c.options).starts_with("lw") ? 3.0F : 1.0F);
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
