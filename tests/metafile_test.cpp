// Metafiles and the redraw list: what calls write, what a reader makes of it.

#include "cgm_walk.h"
#include "gks.h"
#include "gks_pipe.h"
#include "ps_ink.h"
#include "ps_page.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

constexpr std::array<Gpt, 8> octet = {
    {{0, 0}, {1, 0}, {2, 0.5F}, {3, 1}, {3, 2}, {2, 2.25F}, {1, 2}, {0, 0}}
};
constexpr const char* awkward_text = "FA 1\nTE 0,0 x\x1b";

// Sets every attribute, and draws every primitive before and after.
void draw() {
    const Glim vp = {0.25F, 0.75F, 0.125F, 0.5F};
    const Glim win = {-1, 3, -1, 4};
    const Gcolr_rep blue = {0, 0.25F, 1};
    const Gpt at = {0.5F, 1};
    gset_vp(2, &vp);
    gset_win(2, &win);
    gset_colr_rep(1, 7, &blue);
    gpolyline(2, octet.data());
    gsel_norm_tran(2);
    gset_line_colr_ind(7);
    gset_linewidth(3);
    gset_linetype(4);
    gpolyline(8, octet.data());
    gset_fill_colr_ind(7);
    gset_fill_int_style(GPAT);
    gset_fill_style_ind(5);
    gfill_area(5, octet.data());
    gset_fill_style_ind(1);
    gset_fill_int_style(GSOLID);
    gfill_area(8, octet.data());
    gset_marker_colr_ind(7);
    gset_marker_size(0.5F);
    gset_marker_type(6);
    gset_marker_width(2);
    gpolymarker(4, octet.data());
    gset_text_colr_ind(7);
    gset_char_ht(0.25F);
    gset_expan(1.5F);
    gset_text_width(2);
    gset_space(0.5F);
    const Gtext_align centre = {GCENTER_HOR, GHALF_VERT};
    gset_text_align(&centre);
    const Gpt right = {1, 0};
    const Gpt up = {0, 1};
    gset_char_up_vec(&right);
    gtext(&at, "turned");
    gset_char_up_vec(&up);
    gset_char_space(1);
    const Gfontprec font = {2, GSTROKE_PREC};
    gset_fontprec(&font);
    gtext(&at, "two");
}

class MetaPage : public FilePage {
public:
    explicit MetaPage(const std::string& form = "zyr") : FilePage(ws_metafile, form) {}
    // What stands after the state at the opening.
    std::string drawn() {
        constexpr std::string_view last = "TE_FNT 1 2\n";
        const std::string text = whole();
        return text.substr(text.find(last) + last.size());
    }
};

// What a metafile of this text, played on a metafile, writes to that.
std::string played(const std::string& text) {
    const std::string path = temp_name("in.meta");
    write_text(path, text);
    MetaPage page;
    EXPECT_EQ(gread_metafile(path.c_str()), 0);
    std::filesystem::remove(path);
    return page.drawn();
}

} // namespace

TEST(Metafile, GoldenOfEveryCall) {
    const std::string golden = ZYR_SOURCE_DIR "/tests/data/golden/calls.meta";
    gset_win_title("A title");
    MetaPage page;
    draw();
    const Glim region = {0, 1, 0, 2};
    gclear_region(&region);
    gtext(octet.data(), awkward_text);
    gmessage(1, awkward_text);
    const Glim half = {0, 0.5F, 0, 1};
    gset_ws_win(1, &half);
    gset_ws_vp(1, &half);
    gsel_norm_tran(2); // in force: no record
    std::string text = page.whole();
    const std::size_t date = text.find("#CreationDate");
    text.erase(date, text.find('\n', date) + 1 - date);
    if (std::getenv("ZYR_UPDATE_GOLDEN") != nullptr)
        write_text(golden, text);
    EXPECT_EQ(text, read_text(golden));
}

TEST(Metafile, PlaysAsItWasDrawnAndLeavesThePageAsItWas) {
    const std::string path = temp_name("drawn.meta");
    {
        MetaPage page;
        draw();
        write_text(path, page.whole());
    }
    const auto behind = [] {
        gpolyline(8, octet.data());
        gfill_area(8, octet.data());
        gpolymarker(4, octet.data());
        gtext(octet.data(), "behind");
    };
    const auto page_with = [&](bool file) {
        PsPage page("color");
        const Glim win = {-2, 5, -2, 5};
        const Gcolr_rep red = {1, 0, 0};
        gset_win(3, &win);
        gset_colr_rep(1, 7, &red);
        gset_line_colr_ind(7);
        gsel_norm_tran(3);
        behind();
        EXPECT_EQ(file ? goverlay_metafile(path.c_str()) : 0, 0);
        behind();
        return ps_ink(page.whole());
    };
    const auto drawn = [] {
        PsPage page("color");
        draw();
        return ps_ink(page.whole());
    }();
    EXPECT_GT(drawn.size(), 40U);
    auto expected = page_with(false);
    const auto middle = expected.begin() + static_cast<std::ptrdiff_t>(expected.size() / 2);
    expected.insert(middle, drawn.begin(), drawn.end());
    EXPECT_EQ(page_with(true), expected);
    std::filesystem::remove(path);
}

TEST(Metafile, ReaderTakesWhatIsThere) {
    const std::string x(150, 'x');
    EXPECT_EQ(played(""), "");
    EXPECT_EQ(played("ZYRMETA"), "");
    EXPECT_EQ(played("first line\nPL_TYPE 2\n#PL_TYPE 3\nME PL_TYPE 4\nWS_WIN 1 9 9 9 9\n"
                     "CLR_REG 1 2 3 4\nPL_TYPE 5"),
              "PL_TYPE 2\nPL_TYPE 5\n");
    EXPECT_EQ(played("\nPL 2000000000 0,0 1,1 1,0.5"),
              "PL 3 0.000000,0.000000 1.000000,1.000000 1.000000,0.500000 \n");
    EXPECT_EQ(played("\nPL 3 0,0 1,1 nan,0 0,1\nPL_TYPE 2"),
              "PL 2 0.000000,0.000000 1.000000,1.000000 \nPL_TYPE 2\n");
    EXPECT_EQ(played("\nFA -3 0,0 1,1 1,0\nPM 0 PL_TYPE 2\nPL_TYPE 3"), "PL_TYPE 2\nPL_TYPE 3\n");
    EXPECT_EQ(played("\nPL_LW 1e999\nPL_LW inf\nPL_LW -1\nPL_LW 2\nTR 6\nTR -1\nVP 6 0 0 1 1\n"
                     "VP 1 0 0 1\nTR 1"),
              "PL_LW 2.000000\nTR 1\n");
    EXPECT_EQ(played("\nPM 4 0,0 1,0 1,1 0,1 \n   PL_TYPE\n 2\nPL_TYPEPL_TYPE 3\nPL_TYPE 4"),
              "PM 4 0.000000,0.000000 1.000000,0.000000 1.000000,1.000000 0.000000,1.000000 \n   "
              "PL_TYPE 2\nPL_TYPE 4\n");
    EXPECT_EQ(played("\nTE 0,1 " + x + "\nTE 0,1 \nTE 0,1   a b \r\nTE 0\nPL_TYPE 2"),
              "TE 0.000000,1.000000 " + x.substr(50) + "\nTE 0.000000,1.000000 a b \nPL_TYPE 2\n");
    EXPECT_EQ(played("\nZYRMETA\n#Title: PL_TYPE 2\nTE_UP 0,0\nTE_UP 1,0\nTE_UP 0,1"),
              "TE_UP 1.000000,0.000000\nTE_UP 0.000000,1.000000\n");
}

TEST(Metafile, FilesThatCannotBePlayed) {
    const FilePage page(ws_metafile, "zyr", "+");
    const std::string closed = "gread_metafile: Unable to open image file: ";
    for (const auto& [name, report] : std::map<std::string, std::string>{
             {"/none",   closed + "/none\n"                                          },
             {"",        closed + "\n"                                               },
             {page.path, "gread_metafile: File is being written: " + page.path + "\n"}
    }) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(gread_metafile(name.c_str()), -1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), report);
    }
}

TEST(Metafile, NamesFormsAndAreas) {
    const std::string named = temp_name("named");
    setenv("zyrmeta_out", named.c_str(), 1);
    struct Row {
        const char *conn, *geometry;
        std::array<int, 4> area;
        const char* begin; // of the file
    };
    const char* text = "ZYRMETA\n#Title";
    for (const Row& row : {
             Row{"",         "",         {1000, 800, 0, 0},     text                },
             Row{",CGM",     "8x4",      {800, 400, 0, 0},      "\0\x20\x10\x22\0\1"},
             Row{",cgm,zyr", "8x4+1-2",  {800, 400, 100, -200}, text                },
             Row{"",         "+1+2",     {1000, 800, 100, 200}, text                },
             Row{"",         "p2x4+1+0", {500, 200, 500, 600},  text                },
    }) {
        RES_put("geometry", row.geometry);
        EXPECT_EQ(gmeta_open_ws(row.conn), 0);
        EXPECT_EQ(device_area(), row.area) << row.conn << row.geometry;
        EXPECT_EQ(gmeta_close_file(), 0);
        EXPECT_EQ(gmeta_close_file(), -1);
        gmeta_set_type(0);
        EXPECT_EQ(std::memcmp(read_text(named).data(), row.begin, 6), 0) << row.conn;
    }
    RES_put("geometry", "");
    unsetenv("zyrmeta_out");
    std::filesystem::remove(named);
}

// A line that is longer than an element goes on; coordinates have 16 bits.
TEST(BinaryMetafile, HoldsLinesAndClipsAlone) {
    constexpr std::size_t most = 8191;
    std::vector<Gpt> line(20000, Gpt{1, 0});
    line[9000] = {0.5F, 1.0e6F};
    line.back() = {0, -1.0e6F};
    MetaPage page("cgm");
    draw();
    gsel_norm_tran(0);
    gpolyline(static_cast<int>(line.size()), line.data());
    const CgmFile file = read_cgm(page.whole());
    EXPECT_EQ(file.fault, "");
    EXPECT_EQ(file.frame(), "0,1 1,1 1,2 1,11 1,9 2,6 0,3 0,4 0,5 0,2 ");
    EXPECT_EQ(file.all({1, 2})[0].data, "\12ZYRCGM-1.0");
    EXPECT_EQ(file.all({2, 6})[0].points()[1], (std::pair{10000, 8000}));
    const auto clips = file.all({3, 5});
    const CgmPoints clip = clips[clips.size() - 2].points();
    EXPECT_EQ(clip[0], (std::pair{199, 99}));
    EXPECT_EQ(clip[1], (std::pair{599, 399}));
    const auto lines = file.all({4, 1});
    ASSERT_EQ(lines.size(), 2U + 3U);
    EXPECT_EQ(file.elements.size(), 10 + clips.size() + lines.size());
    EXPECT_EQ(lines[0].points()[1], (std::pair{799, 0}));
    EXPECT_EQ(lines[1].points()[2], (std::pair{499, 189})) << "cut, not rounded";
    EXPECT_EQ(lines[2].points(), CgmPoints(most, {799, 0}));
    EXPECT_EQ(lines[3].points()[9000 - (most - 1)], (std::pair{399, 32767}));
    EXPECT_EQ(lines[4].points().size(), line.size() - 2 * (most - 1));
    EXPECT_EQ(lines[4].points().back(), (std::pair{0, -32767}));
}

// The polygons of a full product in at most one and a half times their bytes.
TEST(RedrawList, HoldsAProductAndGivesItBack) {
    constexpr std::size_t polygons = 165600;
    constexpr int bytes = 40; // five points
    gset_redraw(1);
    gclear_objs();
    for (std::size_t i = 0; i < polygons; ++i)
        ASSERT_NE(gnew_obj(obj_fill_area, 5, bytes, octet.data()), nullptr);
    EXPECT_LT(gget_objs_bytes(), polygons * (bytes + 32) * 3 / 2);
    gclear_objs();
    EXPECT_EQ(gget_objs_bytes(), 0U);
    EXPECT_EQ(gset_redraw(0), 1);
    EXPECT_EQ(gnew_obj(obj_linetype, 2, 0, nullptr), nullptr);
    EXPECT_EQ(gget_objs_bytes(), 0U);
}

#ifndef ZYR_SANITIZED // it reserves more than any limit
TEST(RedrawList, EndsWithTheMemory) {
    gopen_gks(nullptr, 0);
    gset_redraw(1);
    gclear_objs();
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlimit most = {pages * 4096 + (std::size_t{32} << 20), RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &most), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(gnew_obj(obj_polyline, 9, std::numeric_limits<int>::max(), nullptr), nullptr);
    EXPECT_NE(gnew_obj(obj_polyline, 2, 16, octet.data()), nullptr) << "one figure is left out";
    int n = 0;
    while (gnew_obj(obj_polyline, 8, sizeof octet, octet.data()) != nullptr)
        ++n;
    EXPECT_GT(n, 100000);
    EXPECT_EQ(gnew_obj(obj_polyline, 2, 16, octet.data()), nullptr) << "the list has ended";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "newobj: data malloc error\n\nnewobj: malloc error\n\n");
    gclear_objs();
    EXPECT_NE(gnew_obj(obj_polyline, 2, 16, octet.data()), nullptr);
}
#endif
