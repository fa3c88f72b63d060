// HPGL workstation: commands of every kernel call, options, outputs; whole pages
// against golden files, and the PostScript page's picture at the same places.
//
// `cmake --build --preset release --target update-golden` writes the golden
// files anew (tests/data/golden); look at the rendered pages before committing.

#include "gks.h"
#include "nids_page.h"
#include "out_file.h"
#include "ps_page.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <array>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr const char* page_1 = "IW 10,10,7621,7621;\n"; // the clip of the opening

// A plain page of 100 by 100 plotter units for each unit of the window.
class HpglPage : public FilePage {
public:
    explicit HpglPage(const std::string& options = "nopcl", const std::string& mode = "")
        : FilePage(ws_hpgl, options, mode) {
        const Glim page = {0.0F, 76.11F, 0.0F, 76.11F};
        gset_win(0, &page);
    }
    // What was drawn since the opening alone.
    std::string drawn() {
        std::string text = whole();
        const std::size_t begin = text.find(page_1);
        text.erase(0, begin == std::string::npos ? 0 : begin + std::string(page_1).size());
        return text.substr(0, text.find("SP;PG;"));
    }
};

std::vector<Gpt> diagonal(int n) {
    std::vector<Gpt> points;
    for (int i = 0; i < n; ++i) {
        points.push_back({static_cast<float>(i), static_cast<float>(2 * i)});
    }
    return points;
}

void line(int n) {
    gpolyline(n, diagonal(n).data());
}

void area(int color) {
    const std::array<Gpt, 3> corners = {
        {{1, 1}, {3, 1}, {3, 2}}
    };
    gset_fill_colr_ind(color);
    gfill_area(3, corners.data());
}

void grey(int ind, float level) {
    const Gcolr_rep rep = {level, level, level};
    gset_colr_rep(1, ind, &rep);
}

// --- Pages of products ----------------------------------------------------------

// Runs the program on a sample, with a font whose every letter is one stem, so
// that no golden page rests on a font.
class HpglProduct : public RadarPlot {
protected:
    HpglProduct() : RadarPlot(nids_samples()) {
        std::string font = "255 128 35 0 140 255 254\n";
        for (int code = 0; code < 256; ++code) {
            font += code == ' ' ? "-1 " : "1 ";
        }
        dir.write("stem.fnt", font);
        defaults = dir.write("stem.def", "*.font_list " + dir.path() + "/stem.fnt\n");
    }
    std::string page(const std::string& device, const std::string& args, bool stem = true,
                     int code = 0) {
        ProgramCall call;
        std::istringstream words("-inp nids -de " + device + " -fp " ZYR_SOURCE_DIR "/etc " + args);
        for (std::string word; words >> word;) {
            call.args.push_back(word);
        }
        call.directory = dir.path();
        call.env = env;
        if (stem) {
            call.env["zyrdefault"] = defaults;
        }
        const ProgramRun run = run_program(ZYR_PROGRAM, call);
        EXPECT_EQ(run.code, code) << args << run.err;
        return read_text(dir.path() + "/page");
    }
    std::string defaults;
    std::map<std::string, std::string> env;
};

// A step of the pen over the page, and the number of areas before it.
struct Step {
    double x, y;
    bool down;
    int areas;
};

// A pen that is lifted and put down at its place draws on.
void add(std::vector<Step>* steps, const Step& step) {
    if (!step.down && !steps->empty() && steps->back().x == step.x && steps->back().y == step.y) {
        return;
    }
    steps->push_back(step);
}

// The paths of a PostScript page; those of the clip are left out.
std::vector<Step> ps_steps(const std::string& text) {
    std::vector<Step> steps;
    std::istringstream lines(text);
    int areas = 0;
    bool clip = false;
    for (std::string line; std::getline(lines, line);) {
        clip = line == "initclip" || (clip && line != "clip");
        areas += line == "fill" ? 1 : 0;
        double x = 0.0;
        double y = 0.0;
        std::string op;
        if (!clip && std::istringstream(line) >> x >> y >> op && (op == "mv" || op == "ln")) {
            add(&steps, {x, y, op == "ln", areas});
        }
    }
    return steps;
}

std::vector<Step> hpgl_steps(const std::string& text) {
    std::vector<Step> steps;
    std::istringstream commands(text);
    int areas = 0;
    for (std::string command; std::getline(commands, command, ';');) {
        command.erase(0, command.find_first_not_of('\n'));
        areas += command == "FP" ? 1 : 0;
        double x = 0.0;
        double y = 0.0;
        char comma = 0;
        const bool down = command.starts_with("PD");
        if ((down || command.starts_with("PU")) &&
            std::istringstream(command.substr(2)) >> x >> comma >> y) {
            add(&steps, {x, y, down, areas});
        }
    }
    return steps;
}

} // namespace

TEST(Hpgl, CommandsOfEveryCall) {
    struct Row {
        const char* note;
        std::string commands;
        std::function<void()> draw;
    };
    for (const Row& row : {
             Row{"ten points end in two line ends",
                 "PU10,10;PD110,210;PD210,410;PD310,610;PD410,810;PD510,1010;PD610,1210;"
                 "PD710,1410;PD810,1610;PD910,1810;\n\n",                                                                       [] { line(10); }},
             Row{"eleven in one",                                                   "PD910,1810;\nPD1010,2010;\n",              [] { line(11); }},
             Row{"widths 0 and 1 are one",                                          "PU10,10;PD110,210;\nPU10,10;PD110,210;\n",
                 [] {
                     gset_linewidth(0.0F);
                     line(2);
                     gset_linewidth(1.0F);
                     line(2);
                 }                                                                                                                              },
             Row{"width and type, once",
                 "PW0.5;\nLT5,8,1;\nPU10,10;PD110,210;\nPU10,10;PD110,210;\n",                                                  [] {
                     gset_linewidth(2.5F);
                     gset_linetype(3);
                     line(2);
                     line(2);
                 }                                                },
             Row{"a type that has no command is kept",
                 "PU10,10;PD110,210;\nLT;\nPU10,10;PD110,210;\n",                                                               [] {
                     gset_linetype(9);
                     line(2);
                     gset_linetype(1);
                     line(2);
                 }                                                             },
             Row{"print colours screen and widen",
                 "PW0.8;\nSV1,30;\nPU10,10;PD110,210;\nPW0.4;\nSV1,0;\nPU10,10;PD110,210;\n"
                 "PW0.2;\nSV;\nPU10,10;PD110,210;\n",                                                                           [] {
                     for (const int color : {508, 504, 7}) {
                         gset_line_colr_ind(color);
                         line(2);
                     }
                 }                                                                         },
             Row{"bold",                                                            "PW0.6;\nPU10,10;PD110,210;\n",
                 [] {
                     gset_line_print_bold(3);
                     line(2);
                     gset_line_print_bold(1);
                 }                                                                                                                              },
             Row{"a fill of a grey is written once, a pattern is solid",
                 "FT10,75;\nPU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n"
                 "PU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n"
                 "FT10,0;\nPU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n"
                 "FT10,30;\nPU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n"
                 "FT10,100;\nPU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n",                                                  [] {
                     grey(4, 0.25F);
                     grey(5, 0.25F);
                     area(4);
                     gset_fill_int_style(GPAT);
                     area(5);
                     area(-1);
                     area(507);
                     area(500);
                 }                                                },
             Row{"solid fills say so each time",
                 "FT1;\nPU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n"
                 "FT1;\nPU110,110;PM0;PD310,110;PD310,210;PM1;PM2;FP;\n",                                                       [] {
                     gset_fill_print_solid(1);
                     area(4);
                     area(5);
                     gset_fill_print_solid(0);
                 }                                                     },
             Row{"a plus of size 2: half of 203 units, cut; a point draws nothing",
                 "PU109,410;PD311,410;\nPU210,511;PD210,309;\nPU210,410;\n",                                                    [] {
                     const Gpt at = {2, 4};
                     gset_marker_size(2.0F);
                     for (const int type : {2, 8, 10}) {
                         gset_marker_type(type);
                         gpolymarker(1, &at);
                     }
                 }                                                  },
             Row{"clip",                                                            "IW 10,10,10159,7621;\n",
                 [] {
                     const Glim wide = {0.0F, 1.3335F, 0.0F, 1.0F};
                     gset_vp(0, &wide);
                 }                                                                                                                              },
             Row{"nothing",                                                         "",
                 [] {
                     const Glim lim = {1, 2, 1, 2};
                     gclear_region(&lim);
                     gmessage(1, "a message; IN;");
                 }                                                                                                                              },
    }) {
        const std::string drawn = in_child([&] {
            HpglPage page;
            row.draw();
            return page.drawn();
        });
        if (std::string(row.note) == "eleven in one") {
            EXPECT_TRUE(drawn.ends_with(row.commands)) << drawn;
        } else {
            EXPECT_EQ(drawn, row.commands) << row.note;
        }
    }
}

TEST(Hpgl, OptionsHeadAndArea) {
    const std::string usual = "10150x7612+10+10";
    const std::string pcl = "\033E\033%1B\033&l1O\n";
    const std::string begin = "IN;SP1;PA;\n";
    const std::string state = "PW0.2;SV;LT;\n";
    struct Row {
        std::string environment, options, geometry, head, area;
    };
    for (const Row& row : std::vector<Row>{
             {"",              "",                  "",              pcl + begin + state,                    usual                },
             {"nopcl",         "",                  "",              begin + state,                          usual                },
             {"nopcl",         "PCL",               "",              pcl + begin + state,                    usual                },
             {"",              "lj",                "",              pcl + begin + "RO90;\n" + state,        usual                },
             {"",              "lj,port",           "",              pcl + begin + "RO90;\nRO90;\n" + state, usual                },
             {"port",          "land,nopcl",        "",              begin + state,                          usual                },
             {"",              "nopcl,rot=180",     "",              begin + "RO180;\n" + state,             usual                },
             {"",              "nopcl,rot:270",     "",              begin + "RO270;\n" + state,             usual                },
             {"",              "nopcl,rot=45",      "",              begin + state,                          usual                },
             {"",              "nopcl,lwidth=0.75", "",              begin + "PW0.8;SV;LT;\n",               usual                },
             {"",              "nopcl,a4",          "",              begin + state,                          "11357x7876+10+10"   },
             {"letter",        "nopcl,sz=11x17",    "",              begin + state,                          "10657x16747+10+10"  },
             {"",              "nopcl,sz=16.3x8",   "",              begin + state,                          "16037x7612+10+10"   },
             {"nopcl,roll=36", "",                  "",              begin + state,                          "36032x23345+10+10"  },
             {"",              "nopcl",             "P2x2+1+0",      begin + state,                          "5075x3806+5075+3806"},
             {"",              "nopcl",             "400x300+10+20", begin + state,                          "4060x3045+111+213"  },
             {"",              "nopcl",             "400x300",       begin + state,                          "4060x3045+10+10"    },
             {"",              "nopcl",             "+10+20",        begin + state,                          "10150x7612+111+213" },
    }) {
        const std::string got = in_child([&] {
            setenv("zyrhp_param", row.environment.c_str(), 1);
            if (!row.geometry.empty()) {
                setenv("zyrhp_geometry", row.geometry.c_str(), 1);
            }
            FilePage page(ws_hpgl, row.options);
            const auto [w, h, x, y] = device_area();
            const std::string text = page.whole();
            const bool plain = row.head.starts_with("IN");
            return text.substr(0, text.find("IW ")) + std::to_string(w) + "x" + std::to_string(h) +
                   "+" + std::to_string(x) + "+" + std::to_string(y) +
                   (text.ends_with(plain ? "SP;PG;\n" : "SP;PG;\n\033%0A\033E") ? "" : " end");
        });
        EXPECT_EQ(got, row.head + row.area) << row.environment << " " << row.options;
    }
}

TEST(Hpgl, WrongOptionsAreReported) {
    for (const char* option :
         {"roll=36", "sz=0x8", "sz=120x8", "lwidth=-1", "rot", "rot=45", "eps"}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(HpglPage(option).drawn(), "") << option;
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  std::string("gopen_ws: invalid option: ") + option + "\n");
    }
}

// The run has said what went wrong.
TEST(Hpgl, GivenUpPageSaysNothing) {
    FilePage page(ws_hpgl, "nopcl");
    line(2);
    give_up_outputs();
    testing::internal::CaptureStderr();
    EXPECT_EQ(page.whole(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Hpgl, ScaleIsOfAllCoordinates) {
    HpglPage page("nopcl,scale=0.5");
    line(2);
    EXPECT_NE(page.drawn().find("PU5,5;PD55,105;\n"), std::string::npos);
    ghpgl_set_scale(1.0F);
}

TEST(Hpgl, AppendsWithoutHeadAndEnd) {
    const TempDir dir;
    const std::string name = dir.write("page.hpgl", "before\n");
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    ASSERT_EQ(gopen_gks(nullptr, 0) + gopen_ws(1, ("+" + name + ",lj,port").c_str(), ws_hpgl), 0);
    area(0); // what the earlier plot filled with is not known
    EXPECT_EQ(gclose_ws(1), 0);
    EXPECT_EQ(read_text(name).substr(0, read_text(name).find("PU")),
              std::string("before\nPW0.2;SV;LT;\n") + page_1 + "FT10,100;\n");
    EXPECT_EQ(gopen_ws(1, (name + "/page").c_str(), ws_hpgl), -1);
}

TEST(Hpgl, NumbersAreTheSameInEveryLocale) {
    const auto numbers = [] {
        return in_child([] {
            HpglPage page;
            ghpgl_set_base_width(0.3F);
            gset_linewidth(2.5F);
            line(12);
            return page.whole();
        });
    };
    const std::string plain = numbers();
    const TempDir dir; // few systems have a locale with a decimal comma at hand
    const std::string make = "localedef -i de_DE -f UTF-8 " + dir.path() + "/comma >/dev/null 2>&1";
    setenv("LOCPATH", dir.path().c_str(), 1);
    if (std::system(make.c_str()) != 0 || std::setlocale(LC_ALL, "comma") == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma can be made";
    }
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(numbers(), plain);
}

TEST_F(HpglProduct, GoldenPages) {
    const std::vector<std::array<std::string, 3>> rows = {
  // golden file, sample, options
        {"hpgl_radial",  "radial",  "-dr data,sum,bord -pp site,dist=50:100"},
        {"hpgl_digital", "digital", "-dr sum,text"                          },
        {"hpgl_raster",  "raster",  "-dr sum -pp nobar"                     },
        {"hpgl_precip",  "precip",  "-dr sum -pp nobar -cof=-60:5:8"        },
        {"hpgl_wind",    "wind",    "-dr sum"                               },
        {"hpgl_symbols", "symbols", "-dr sum,bord"                          },
    };
    for (const auto& [name, sample, options] : rows) {
        const std::string text = page("q,page,nopcl", "./" + sample + " " + options);
        const std::string golden = ZYR_SOURCE_DIR "/tests/data/golden/" + name + ".hpgl";
        if (std::getenv("ZYR_UPDATE_GOLDEN") != nullptr) {
            write_text(golden, text);
        }
        EXPECT_EQ(text, read_text(golden)) << name;
    }
}

// Pages of one size in both devices. Their shapes, in whole units, differ by less
// than four units at the upper edge.
TEST_F(HpglProduct, EveryPlaceIsThatOfThePostScriptPage) {
    constexpr double factor = 10656.0 / 755.0;
    for (const std::string sample : {"radial", "digital", "raster", "precip", "wind", "symbols"}) {
        const std::string args = "./" + sample + " -dr sum,text,map,bord -mf lalo";
        const std::vector<Step> ps = ps_steps(page("p,page", args, false));
        const std::vector<Step> hpgl = hpgl_steps(page("q,page,sz=11x8.5", args, false));
        ASSERT_EQ(hpgl.size(), ps.size()) << sample;
        ASSERT_GT(ps.size(), 500U) << sample;
        double worst = 0.0;
        for (std::size_t i = 0; i < ps.size(); ++i) {
            ASSERT_EQ(hpgl[i].down, ps[i].down) << sample << " step " << i;
            ASSERT_EQ(hpgl[i].areas, ps[i].areas) << sample << " step " << i;
            worst = std::max({worst, std::fabs(hpgl[i].x - (ps[i].x * factor + 10.0)),
                              std::fabs(hpgl[i].y - (ps[i].y * factor + 10.0))});
        }
        EXPECT_LT(worst, 10.0) << sample;
    }
}

TEST_F(HpglProduct, OutputsAndFaults) {
    const std::string args = "./raster -dr sum -pp nobar";
    const std::string alone = page("q,page", args);
    EXPECT_EQ(page("q,|cat>page", args), alone);
    env["zyrprint"] = "HPGL";
    EXPECT_EQ(page("p,page", args), alone);
    env["zyrhp_out"] = "page";
    EXPECT_EQ(page("h", args), alone);
    env.clear();
    const std::string end = "SP;PG;\n\033%0A\033E"; // a plotter draws nothing after it
    const std::string both = page("q,+page,nopcl", args);
    EXPECT_TRUE(both.starts_with(alone.substr(0, alone.size() - end.size()) + "PW0.2;SV;LT;\nIW "));
    EXPECT_TRUE(both.ends_with(end));
    page("q,/dev/full", args, true, 4);
    page("q,raster/page", args, true, 4);
}

TEST_F(HpglProduct, Hp2xxShowsThePage) {
    if (std::system("hp2xx -h >/dev/null 2>&1; test $? -ne 127") != 0) {
        GTEST_SKIP() << "hp2xx is not installed";
    }
    for (const std::string form : {"", ",nopcl", ",lj"}) {
        page("q,page" + form, "./radial -dr sum,text,bord", false);
        const std::string image = dir.path() + "/page.pbm";
        const std::string command =
            "hp2xx -q -m pbm -d 50 -f " + image + " " + dir.path() + "/page";
        EXPECT_EQ(std::system((command + " >/dev/null 2>&1").c_str()), 0) << form;
        const std::string bits = read_text(image);
        ASSERT_TRUE(bits.starts_with("P")) << form;
        EXPECT_GT(bits.size(), 10000U) << form;
    }
}
