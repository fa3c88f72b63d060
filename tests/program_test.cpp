// The program as a user runs it: a clean environment, the defaults file of the
// source tree, small products. What it says, how it ends, what it draws.
#include "nids_page.h"
#include "nids_writer.h"
#include "res_table.h"
#include "run_program.h"
#include "zyr.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

// Runs in a directory that holds some sample products; the page
// goes to "page.ps" unless `args` names a device.
class ProgramTest : public testing::Test {
protected:
    void SetUp() override {
        if (access(ZYR_PROGRAM, X_OK) != 0) {
            GTEST_SKIP() << "no program was built";
        }
        for (const auto& [name, bytes] : nids_samples()) {
            if (name == "radial" || name == "raster" || name == "precip") {
                dir.write(name, {bytes.begin(), bytes.end()});
                dir.write(name + "_cut", {bytes.begin(), bytes.end() - 9});
            }
        }
    }
    // `args` are split at blanks. The clock stands at 22:30 on 20 May 2019.
    ProgramRun run(const std::string& args, const std::string& input = "",
                   const std::map<std::string, std::string>& env = {}) {
        unlink(file("page.ps").c_str());
        ProgramCall call;
        call.env = env;
        call.env.try_emplace("zyrdefault", ZYR_SOURCE_DIR "/etc");
        call.env.try_emplace("zyrcurtime", "201905202230");
        call.input = input;
        call.directory = dir.path();
        std::istringstream words("-inp nids " + args);
        for (std::string word; words >> word;) {
            call.args.push_back(word);
        }
        ProgramRun result = run_program(ZYR_PROGRAM, call);
        EXPECT_FALSE(result.timed_out) << args;
        page = read_text(file("page.ps"));
        return result;
    }
    std::string file(const std::string& name) const { return dir.path() + "/" + name; }
    int count(const std::string& part) const { return count_text(page, part); }
    // Is the text among those of the page?
    bool shows(const std::string& text) const { return count(" " + text + "\n") > 0; }

    TempDir dir;
    std::string page;
};

constexpr const char* no_window =
    "gopen_ws: unable to connect to display\n"
    "gopen_ws: display: DISPLAY is not set; a page needs none: -de p,FILE; nor do images: "
    "-of png=FILE\nGPH_begin: Error opening workstation\n";

// With the data tree but none of its settings, the device among them.
constexpr const char* no_defaults = "radial -default=none -fp " ZYR_SOURCE_DIR "/etc";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string without_date(const std::string& text) {
    const std::size_t at = text.find("%%CreationDate");
    return at == std::string::npos ? text : std::string(text).erase(at, text.find('\n', at) - at);
}

} // namespace

TEST_F(ProgramTest, HelpComesBeforeAllElse) {
    std::string help = read_text(ZYR_SOURCE_DIR "/tests/data/golden/help.txt");
    help.replace(help.find("VERSION"), 7, ZYR_version());
    for (const char* args : {"-h", "none -inp lev2 -de z,none/x -me what -me out2 -pd bad -help"}) {
        const ProgramRun result = run(args);
        EXPECT_EQ(result.out, help) << args;
        EXPECT_EQ(result.err, "") << args;
        EXPECT_EQ(result.code, 0) << args;
    }
}

// Tables of what there is: a line that each must hold, and what asks for it.
TEST_F(ProgramTest, ListsWhatThereIs) {
    for (const auto& [kind, line] : std::initializer_list<std::array<const char*, 2>>{
             {"products",    "\n94\tBase reflectivity (Dbz)\n"                    },
             {"regions",     "\nne\tNew_England\t1\t42,-76,0.9\n"                 },
             {"colours",     "\tred\t0.800\t0.000\t0.000\n"                       },
             {"fonts",       "\nroman\troman.fnt\n"                               },
             {"stations",    "\nAmarillo\tTX\tUS\tAMA\t1\t35.2333"                },
             {"projections", "\n1\tpstereo\tpolar,ps\n"                           },
             {"variables",   "\nvel\tLevel II\n"                                  },
             {"options",     "\n-pd\tplot_domain\tzyrdomain\tOutput plot domain\n"}
    }) {
        const ProgramRun result = run(std::string("--list ") + kind);
        EXPECT_TRUE(has("\n" + result.out, line)) << kind << "\n" << result.out.substr(0, 500);
        EXPECT_EQ(result.code, 0) << kind;
    }
    ProgramCall call;
    call.args = {"--version"};
    const ProgramRun version = run_program(ZYR_PROGRAM, call);
    EXPECT_EQ(version.out, std::string("zyrrad ") + ZYR_version() + "\n");
}

// Faults in the settings: what is said, and what is drawn all the same. With a
// hidden colour every bin is a figure, and the bar has one box; the labels of
// the bar have the colour of the text.
TEST_F(ProgramTest, PlotGoesOnAfterAFault) {
    struct Row {
        const char* args;
        const char* drawn; // figures of data and bar, texts, whether these have strokes
        std::string err;   // all of it
    };
    const auto domain = [](const std::string& fault) {
        return "DOM_decode: Invalid plot domain\n" + fault + ": the data's own domain is taken\n";
    };
    constexpr const char* colour = "CLR_get_ind: Unknown color: nocolour, the nearest is none\n";
    for (const Row& row : std::initializer_list<Row>{
             {"",                                      "71 11 1", ""                                                   },
             {"-pd nonsense,x",                        "71 11 1", domain("\"nonsense,x\" is no domain")                },
             {"-pd nonsense",                          "71 11 1", domain("\"nonsense\" is no region")                  },
             {"-pd -97,35,.3",                         "71 11 1", domain("\"-97,35,.3\" has a latitude beyond 90")     },
             {"-pd ps,35,-97,25,17,0,0",               "71 11 1",
              domain("\"ps,35,-97,25,17,0,0\" has no extent")                                                          },
             {"-pd -35,80,.3",                         "15 11 1",
              "The plot domain about -35.00 80.00 shows nothing of the data about 35.33 "
              "-97.28:radial\n"                                                                                        },
             {"-cof 5:nocolour,20:red",                "42 5 1",  colour                                               },
             {"-cof 5:nocolour,30:red",                "18 5 1",  colour                                               },
             {"-cot nocolour",                         "71 0 0",  colour                                               },
             {"-cof nofile",                           "71 11 1",
              "CONT_set_fill_colors: Unable to read contour level file: nofile\n"
              "CONT_set_fill_colors: The product's own colors are taken\n"                                             },
             {"-fl fi:gone",                           "71 11 1", "gsetup_fonts: unable to load font list file: gone\n"},
             {"-fl gone.fnt",                          "71 11 0", "read_font: unable to load font file: gone.fnt\n"    },
             {"-ct gone.clr",                          "71 11 1",
              "CLR_read_table: Unable to open color table: " ZYR_SOURCE_DIR "/etc/gone.clr\n"
              "CLR_read_table: The default color table is taken: zyr.clr\n"                                            },
             {"-dr map,sum,text -mf gone.map,fi:gone", "71 11 1",
              "MAP_process: Map file not found: gone.map\n"
              "MAP_draw: Unable to open map list file: gone\n"                                                         },
    }) {
        const ProgramRun result = run(std::string("radial -de p,page.ps -dr sum,text ") + row.args);
        EXPECT_EQ(result.code, 0) << row.args;
        EXPECT_EQ(result.err, row.err) << row.args;
        // Every stroke of a letter is a path of its own.
        const char* strokes = count("\nstroke\n") > 40 ? " 1" : " 0";
        EXPECT_EQ(std::to_string(count("\n%%FA")) + " " + std::to_string(count("\n%%TE")) + strokes,
                  row.drawn)
            << row.args;
        EXPECT_TRUE(page.ends_with("%%EOF\n")) << row.args;
    }
}

TEST_F(ProgramTest, FaultsThatEndTheRun) {
    struct Row {
        const char* args;
        int code;
        std::string err; // all of it
    };
    const std::string closed = "GPH_begin: Error opening workstation\n";
    const std::string no_dir = "gopen_ws: radial/x: Not a directory\n";
    for (const Row& row : std::initializer_list<Row>{
             {"gone lost -de p,page.ps",      10,
              "NIDS_open_file: Unable to open file:./gone\n"
              "NIDS_open_file: Unable to open file:./lost\n"                                    },
             {"radial -de p,/dev/full",       4,
              "gps_close_file: unable to write postscript file\n\ngps_close_file: /dev/full: No "
              "space left on device\n"                                                          },
             {"gone -de p,page.ps",           10, "NIDS_open_file: Unable to open file:./gone\n"},
             {"-cu -1 -de p,page.ps",         10, "File not found: ./201905202130.nids\n"       },
             {"-ba",                          10, "File not found: ./201905201411.nids\n"       }, // the 500 minutes before
             {"radial -ba",                   4,  no_window                                     },
             {"radial -de d",                 4,  no_window                                     },
             {"radial -de w",                 4,  no_window                                     },
             {"radial -de m,radial/x",        4,
              "gopen_ws: unable to open metafile\n\n" + no_dir + closed                         },
             {"radial -de q,radial/x",        4,
              "gopen_ws: unable to open HPGL file\n\n" + no_dir + closed                        },
             {"radial -de q,/dev/full",       4,
              "ghpgl_close_file: unable to write HPGL file\n\nghpgl_close_file: /dev/full: No "
              "space left on device\n"                                                          },
             {"radial -de p,radial/x",        4,
              "gopen_ws: unable to open postscript file\n\n" + no_dir + closed                  },
             {"radial -inp= -pd us -va def",  10,
              "Unable to open file:./radial\nRAD_open_file: It looks like a NIDS product, read "
              "with -inp nids\n"                                                                },
             {"gone -inp rcn -pd us -va def", 10,
              "input: Unknown word: rcn, the nearest is rcm\nUnable to open file:./gone\n"      },
             {"radial_cut -de p,x",           0,
              "NIDS_plot_summary: The product is damaged or not whole:radial_cut\n"             },
             {"radial -dr any -de p,x",       0,
              "draw: Unknown word: any, the nearest is all\nPLT_open: Nothing to draw: any\n"   },
    }) {
        const ProgramRun result = run(row.args);
        EXPECT_EQ(result.code, row.code) << row.args;
        EXPECT_EQ(result.err, row.err) << row.args;
    }
}

TEST_F(ProgramTest, SourcesOfSettingsHaveRanks) {
    const std::string low = dir.write("low", "*.label ul:low\n*.plot_param nobar\n*.own low\n");
    const std::string high = dir.write("high", "*.label ul:high\n");
    dir.write(".zyrdef", "*.label ul:own\n");
    const std::string both = std::string(low).append(":").append(high);
    const std::string args = "radial -de p,page.ps -fp " ZYR_SOURCE_DIR "/etc -dr text";
    // Search list, environment, more arguments, and the label on the page.
    const std::vector<std::array<std::string, 4>> rows = {
        {"/none", "",       "",                "Base reflectivity (Dbz)"},
        {"",      "",       "",                "own"                    },
        {low,     "",       "",                "low"                    },
        {both,    "",       "",                "high"                   },
        {both,    "",       " -default=/none", "Base reflectivity (Dbz)"},
        {low,     "ul:env", "",                "env"                    },
        {low,     "ul:env", " -la ul:arg",     "arg"                    },
    };
    for (const auto& [search, label, more, shown] : rows) {
        std::map<std::string, std::string> env;
        env["zyrdefault"] = search;
        env[label.empty() ? "none" : "zyrlabel"] = label;
        EXPECT_EQ(run(args + more, "", env).code, 0);
        EXPECT_TRUE(shows(shown)) << search << label << more;
    }
}

TEST_F(ProgramTest, PromptsEndOrGoOn) {
    dir.write("201905202230.nids", read_text(file("radial")));
    struct Row {
        const char* args;
        const char* input;
        int code;
        const char* out;
        const char* err;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"list",          "",                                                         0,  "201905202230.nids\n",                     ""                        },
             {"",              "exit\n",                                                   0,  "Enter the NIDS filename: ",               ""                        },
             {"",              "",                                                         0,  "\nEnd of input, leaving the program\n",   ""                        },
             {"",              "a\nb\nc\nd\n./radial\n",                                   10, "filename: ",
              "File not found: ./a\nFile not found: ./b\nFile not found: ./c\n"
              "File not found: ./d\n"                                                                                                                               },
             {"-de p,page.ps", "la\n",                                                     0,  "Current filename: ./201905202230.nids\n", ""                        },
             {"-de p,page.ps", "set\nset label=ul:Typed by hand\ngone\n\nset\n./radial\n", 0,
              "List of available files:\n./201905202230.nids\n",                                                                          "File not found: ./gone\n"},
             {no_defaults,     "Exit now\n",                                               0,  "Display (D) or Postscript (P): ",         ""                        },
             {no_defaults,     "P\n",                                                      0,  "Creating: zyr.ps\n",                      ""                        },
             {no_defaults,     "\nD\n",                                                    4,  "(P): Display (D)",                        no_window                 }
    }) {
        const ProgramRun result = run(row.args, row.input);
        EXPECT_EQ(result.code, row.code) << row.args << row.input;
        EXPECT_TRUE(has(result.out, row.out)) << row.input << "\n" << result.out;
        EXPECT_EQ(result.err, row.err) << row.args << row.input;
        EXPECT_EQ(shows("Typed by hand"), has(row.input, "Typed"));
    }
}

// What files a request leads to, by the labels on the page: Base reflectivity
// at 22:20, Comp reflectivity at 22:25, Digital precip at 22:30.
TEST_F(ProgramTest, RequestsFindTheirFiles) {
    dir.write("data/201905202220.nids", read_text(file("radial")));
    dir.write("data/201905202225.nids", read_text(file("raster")));
    dir.write("data/201905202230.nids", read_text(file("precip")));
    for (const auto& [request, expected] : std::initializer_list<std::array<const char*, 2>>{
             {"-cu",                        "D"  },
             {"-cu la-0:10",                "B"  },
             {"-ho :25 -cu",                "C"  },
             {"201905202225",               "C"  },
             {"201905202230 -nh -0:10,0:5", "BCD"},
             {"201905202220 -nh 0:7",       "BC" }, // a step a minute; most have no file
             {"201905202220 -nh 0:10,0:10", "BD" },
             {"./radial ./gone ./raster",   "BC" },
             {"-cu la ./raster",            "C"  }  // a named file comes before
    }) {
        run(std::string("-dp data -de p,page.ps -dr sum,text ") + request);
        std::string labels;
        for (auto at = page.find("%%TE"); at < page.size(); at = page.find("%%TE", at + 1)) {
            const char first = page[page.find(' ', page.find(' ', at) + 1) + 1];
            labels += std::strchr("BCD", first) != nullptr ? std::string(1, first) : "";
        }
        EXPECT_EQ(labels, expected) << request;
        EXPECT_EQ(count("%!PS") + count("%%EOF\n"), 2) << request;
    }
}

// The page is whole when the program comes back.
TEST_F(ProgramTest, BatchGivesTheSamePage) {
    ASSERT_EQ(run("radial raster -de p,page.ps").code, 0);
    const std::string expected = without_date(page);
    ASSERT_GT(expected.size(), 10000U);
    for (const char* device : {"p,page.ps", "p,|cat>page.ps"}) {
        const ProgramRun result = run(std::string("-ba radial raster -de ") + device);
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.out + result.err,
                  "A page has no frames: 2 pictures lie over one another\n")
            << "errors and warnings alone";
        EXPECT_EQ(without_date(read_text(file("page.ps"))), expected) << device;
    }
    const std::string command = "cd " + dir.path() +
                                " && zyrdefault=" ZYR_SOURCE_DIR "/etc " ZYR_PROGRAM
                                " -inp nids -ba radial raster -de p,- >out.ps";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(without_date(read_text(file("out.ps"))), expected);
}

namespace {

// An entry of the manual begins with the option and goes on with the resource
// and its environment variable. `manual` is without backslashes.
bool documents(const std::string& manual, const RES_defobj& row) {
    const std::string names = std::string("\nfB") + row.def + "fR, fB" + row.env + "fR.";
    const std::string option = row.cmd.text;
    for (const std::string& head : {"\n.TP\n.BI -" + option + " ", "\n.TP\n.B -" + option + "\n"}) {
        const std::size_t at = manual.find(head);
        if (at != std::string::npos) {
            return has(manual.substr(at, manual.find("\n.TP", at + 1) - at), names);
        }
    }
    return false;
}

} // namespace

TEST(Manual, NamesEveryOption) {
    std::string manual = read_text(ZYR_SOURCE_DIR "/doc/zyrrad.1");
    std::erase(manual, '\\');
    std::string unnamed;
    for (const res_type type : res_listed<true>()) {
        RES_defobj row;
        if (type != RES_null && RES_enter(&row, type) == 0) {
            unnamed += documents(manual, row) ? "" : std::string(row.def) + " ";
        }
    }
    EXPECT_EQ(unnamed, "");
}
