// What a run leaves on the disk: pages that are whole or the ones of before, and
// no page for a file that is none. Each row is a run of the program.
#include "lev2_writer.h"
#include "nids_writer.h"
#include "run_program.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* old_page = "the page of yesterday\n";

class Outputs : public testing::Test {
protected:
    void SetUp() override {
        if (access(ZYR_PROGRAM, X_OK) != 0) {
            GTEST_SKIP() << "no program was built";
        }
        for (const auto& [name, bytes] : nids_samples()) {
            if (name == "radial" || name == "raster") {
                dir.write(name, {bytes.begin(), bytes.end()});
            }
        }
        dir.write("old", old_page);
    }
    ProgramCall call(const std::string& args, const std::string& input = "nids") const {
        ProgramCall made;
        made.env = {
            {"zyrdefault", ZYR_SOURCE_DIR "/etc"}
        };
        made.directory = dir.path();
        std::istringstream words("-me warn -inp " + input + " " + args);
        for (std::string word; words >> word;) {
            made.args.push_back(word);
        }
        return made;
    }
    ProgramRun run(const std::string& args, const std::string& input = "nids") const {
        return run_program(ZYR_PROGRAM, call(args, input));
    }
    // By a shell with a limit on the size of files, as on a full disk.
    ProgramRun run_limited(const std::string& args) const {
        ProgramCall made = call("");
        made.args = {"-c", "ulimit -f 4; " ZYR_PROGRAM " -me warn -inp nids " + args};
        return run_program("/bin/bash", made);
    }
    std::string text(const std::string& name) const { return read_text(file(name)); }
    std::string file(const std::string& name) const { return dir.path() + "/" + name; }
    std::string bytes_of(const std::string& name) const { return text(name); }
    // Files that a run has not finished.
    int unfinished() const {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(dir.path())) {
            count += entry.path().filename().string().starts_with(".zyr") ? 1 : 0;
        }
        return count;
    }
    void expect_old(const std::string& args) const {
        EXPECT_EQ(text("old"), old_page) << args;
        EXPECT_EQ(unfinished(), 0) << args;
    }

    TempDir dir;
};

std::string as_text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::string noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 12345;
    for (char& c : bytes) {
        state = state * 1664525U + 1013904223U;
        c = static_cast<char>(state >> 24);
    }
    return bytes;
}

} // namespace

TEST_F(Outputs, FilesOfAnotherKindLeaveThePage) {
    const Lev2Volume volume = lev2_sample(31, 1);
    const std::string product = text("radial");
    const std::string plain = as_text(lev2_volume(volume, false));
    const std::string packed = as_text(lev2_gzip(lev2_volume(volume, true)));
    const std::string netcdf = std::string("CDF\x01\0\0\0\0", 8) + std::string(200, '\0');
    const std::string bzip2 = "BZh91AY&SY" + noise(500);
    const std::string zeros(300, '\0');
    const std::string cut = product.substr(0, 60); // short of its radar
    NidsSample beyond;
    beyond.lat = 95000;
    const auto looks = [](const std::string& kind) { return " It looks like " + kind + "\n"; };
    const std::string none = ", which no -inp reads";
    const std::string mdr = ", read with -inp mdr";
    const std::string unknown = " Its bytes are of no kind that is known\n";
    struct Row {
        const char* input;
        std::string bytes;
        std::string said; // after the line that names the file
    };
    const Row rows[] = {
        {"nids",  "\n<!DOCTYPE HTML><html>Gone</html>\n", looks("a web page (HTML)" + none)               },
        {"nids",  plain,                                  looks("a Level II volume, read with -inp lev2") },
        {"nids",  packed,                                 looks("a Level II volume, read with -inp lev2z")},
        {"lev2",  product,                                looks("a NIDS product, read with -inp nids")    },
        {"lev2z", "Not Found\n",                          looks("a text file" + none)                     },
        {"lev2z", "",                                     looks("an empty file" + none)                   },
        {"nids",  netcdf,                                 looks("a netCDF file" + mdr)                    },
        {"nids",  "\x89HDF\r\n\x1a\n",                    looks("a netCDF or HDF5 file" + mdr)            },
        {"nids",  bzip2,                                  looks("a file packed by bzip2" + none)          },
        {"nids",  zeros,                                  unknown                                         },
        {"nids",  noise(5000),                            unknown                                         },
        {"lev2",  noise(5000),                            unknown                                         },
        {"nids",  cut,                                    unknown                                         },
        {"nids",  as_text(nids_message(beyond)),          unknown                                         },
    };
    for (const Row& row : rows) {
        const std::string routine =
            std::string(row.input) == "nids" ? "NIDS_open_file:" : "LEV2_open_file:";
        dir.write("given", row.bytes);
        const ProgramRun result = run("-de p,old given", row.input);
        EXPECT_EQ(result.code, 10) << row.said;
        EXPECT_EQ(result.err, routine + " Unable to read file:given\n" + routine + row.said);
        expect_old(row.said);
        run("-de p,new given ./none", row.input);
        EXPECT_FALSE(fs::exists(file("new"))) << row.said;
    }
}

TEST_F(Outputs, PackedFilesAreRead) {
    const auto page = [this](const char* args) {
        const ProgramRun result = run(std::string("-de p,page -dr sum ") + args);
        EXPECT_EQ(result.code, 0) << args << result.err;
        const std::string whole = text("page");
        return whole.substr(whole.find("%%EndComments"));
    };
    const std::string product = text("radial");
    const std::string packed = as_text(lev2_gzip({product.begin(), product.end()}));
    dir.write("packed", packed);
    dir.write("torn", packed.substr(0, packed.size() - 30));
    const std::string expected = page("radial");
    EXPECT_EQ(page("packed"), expected);
    ProgramCall piped = call("-de p,page -dr sum -");
    for (const std::string& bytes : {product, packed}) {
        piped.input = bytes;
        EXPECT_EQ(run_program(ZYR_PROGRAM, piped).code, 0);
        EXPECT_EQ(text("page").substr(text("page").find("%%EndComments")), expected);
    }
    EXPECT_EQ(run("-de p,page torn").err,
              "NIDS_plot_summary: The product is damaged or not whole:torn\n");
}

// The first file that can be read opens the page.
TEST_F(Outputs, AFileThatCannotBeReadIsPassedOver) {
    dir.write("page.html", "<html>\n");
    EXPECT_EQ(run("-de p,one radial").code, 0);
    EXPECT_EQ(run("-de p,two ./page.html ./none ./radial").code, 0);
    const auto drawn = [this](const char* name) {
        return text(name).substr(text(name).find("%%EndComments"));
    };
    EXPECT_EQ(drawn("one"), drawn("two"));
}

TEST_F(Outputs, OutputsThatFailLeaveThePage) {
    struct Row {
        const char* args;
        int code;
        const char* err; // part of it
    };
    const Row rows[] = {
        {"-de p,old radial",                                          4,  "gps_close_file: unable to write postscript file"},
        {"-de m,old radial",                                          4,  "gmeta_close_file: unable to write metafile"     },
        {"-de m,old,cgm radial",                                      4,  "gmeta_close_file: unable to write metafile"     },
        {"-de p,/dev/null -of zyr=@/dev/full raster",                 4,  "NIDS_plot: Unable to write grid file"           },
        {"-de p,old,small radial",                                    4,  "gps_close_file: unable to write postscript file"},
        {"-ba -de p,old radial",                                      4,  "gps_close_file: unable to write postscript file"},
        {"-ba -de p,/dev/full radial",                                4,  "gps_close_file: unable to write postscript file"},
        {"-de p,old ./gone",                                          10, "Unable to open file:./gone"                     },
        {"-de 'p,|head -c 9 >part' radial",                           4,  "gps_close_file: unable to write"                },
        {"-de 'p,|cat >part; exit 3' radial",                         4,  "gps_close_file: unable to write"                },
        {"-de 'p,-' radial | head -c 9 >part; exit ${PIPESTATUS[0]}", 4,  "gps_close_file"                                 },
    };
    for (const Row& row : rows) {
        const ProgramRun result = run_limited(row.args);
        EXPECT_EQ(result.code, row.code) << row.args << result.err;
        EXPECT_NE(result.err.find(row.err), std::string::npos) << row.args << result.err;
        expect_old(row.args);
    }
    EXPECT_EQ(run("-de p,old radial").code, 0);
    EXPECT_TRUE(text("old").ends_with("%%EOF\n"));
}

// A run that waits for its second file.
TEST_F(Outputs, SignalsLeaveThePage) {
    ASSERT_EQ(mkfifo(file("fifo").c_str(), 0600), 0);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1}) {
        RunningProgram program(ZYR_PROGRAM, call("-de p,old radial fifo"));
        constexpr int tries = 2000; // of 10 ms
        for (int i = 0; i < tries && unfinished() == 0; ++i) {
            usleep(10000);
        }
        EXPECT_EQ(unfinished(), 1);
        kill(program.pid(), signal);
        EXPECT_EQ(program.wait().code, 128 + signal);
        expect_old(std::to_string(signal));
    }
}

TEST_F(Outputs, AnOutputIsNoInput) {
    fs::create_symlink("radial", file("link"));
    const std::string radial = text("radial");
    const std::string raster = text("raster");
    const ProgramRun twice = run("-de p,twin -of zyr=@twin raster");
    EXPECT_EQ(twice.code, 4);
    EXPECT_NE(twice.err.find("open_output: Another output has this name: twin\n"),
              std::string::npos)
        << twice.err;
    EXPECT_TRUE(text("twin").ends_with("%%EOF\n"));
    for (const char* args : {"-de p,radial radial", "-de p,+radial ./radial", "-de p,link radial",
                             "-de m,raster radial raster", "-de p,x -of zyr=@raster raster",
                             "-de p,radial -cu -nc ./conv"}) {
        dir.write("conv", "nids radial - 0\n");
        const ProgramRun result = run(args);
        EXPECT_EQ(result.code, 4) << args << result.err;
        EXPECT_NE(result.err.find("is an input of the run: "), std::string::npos) << result.err;
        EXPECT_TRUE(text("radial") == radial && text("raster") == raster) << args;
        EXPECT_EQ(unfinished(), 0);
    }
    for (const char* log : {"fi=", "-fi=", "dfi="}) { // messages go nowhere then
        const ProgramRun result = run("-me=" + std::string(log) + "radial -de p,x radial");
        EXPECT_NE(result.err.find("Unable to open log file: radial\n"), std::string::npos) << log;
        EXPECT_TRUE(text("radial") == radial) << log;
    }
}

// The kind of a file stays: its mode, a link, a device.
TEST_F(Outputs, AWholePageTakesTheName) {
    chmod(file("old").c_str(), 0640);
    fs::create_symlink("old", file("link"));
    EXPECT_EQ(run("-de p,link radial").code, 0);
    EXPECT_TRUE(text("old").ends_with("%%EOF\n"));
    EXPECT_TRUE(fs::is_symlink(file("link")));
    struct stat info {};
    stat(file("old").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
    EXPECT_EQ(run("-de p,sub/dir/new radial").code, 0);
    stat(file("sub/dir/new").c_str(), &info);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(info.st_mode & 0777U, 0666U & ~mask);
}

// Panels: each further plot comes before the end of the page that the first made.
TEST_F(Outputs, PlotsAddedToAPageShareIt) {
    struct Row {
        const char* device;
        const char* begin; // of a page, and
        const char* end;
        const char* plot; // of each plot
    };
    for (const Row& row : {
             Row{"p", "dict begin", "%%End of plot\nsaveobj restore\nshowpage\nend\n%%EOF\n",
                 "%%ZYR Plot"                                                                             },
             Row{"p", "EPSF-3.0",   "%%End of plot\nshowpage\n%%EOF\n",                       "%%ZYR Plot"},
             Row{"q", "IN;SP1;",    "SP;PG;\n\033%0A\033E",                                   "SV;LT;"    },
    }) {
        const std::string device = std::string("-de ") + row.device + ",";
        const std::string eps = std::string(row.begin).starts_with("EPS") ? ",eps " : " ";
        const std::string add = device + "+page" + eps;
        EXPECT_EQ(run(device + "page" + eps + "-ge P2x2+0+0 radial").code, 0);
        const std::string first = text("page");
        EXPECT_EQ(run(add + "-ge P2x2+1+0 raster").code, 0);
        EXPECT_EQ(run(add + "-ge P2x2+0+1 radial").err, "");
        EXPECT_EQ(run(add + "./none").code, 10);
        const std::string page = text("page");
        const std::string end = row.end;
        EXPECT_TRUE(page.starts_with(first.substr(0, first.size() - end.size())));
        EXPECT_TRUE(page.ends_with(end)) << page.substr(page.size() - 90);
        for (const auto& [part, times] :
             {std::pair(row.begin, 1), std::pair(row.end + end.find('\n') + 1, 1),
              std::pair(row.plot, 3)}) {
            EXPECT_EQ(count_text(page, part), times) << part;
        }
        fs::remove(file("new"));
        EXPECT_EQ(run(device + "+new radial").err, "gopen_ws: No page to add to: new, the first "
                                                   "plot of a page is written without +\n");
    }
}

// The data tree beside a program that nobody tells where it is.
TEST_F(Outputs, TheDataTreeIsFound) {
    const auto colors = [this](const std::string& program) {
        ProgramCall made = call("-de p,page -pp pscolor -dr text -cot red radial");
        made.env = {
            {"zyrdefault", "unset"}
        };
        const ProgramRun result = run_program(program, made);
        EXPECT_EQ(result.code, 0);
        const std::string page = text("page");
        const bool colored =
            count_text(page, " setrgbcolor") >
            count_text(page, "0 0 0 setrgbcolor") + count_text(page, "0.00 0.00 0.00 setrgbcolor");
        return std::string(colored ? "1" : "0") +
               (result.err.find("RES_init: No data tree") == std::string::npos ? "" : " told");
    };
    EXPECT_EQ(colors(ZYR_PROGRAM), "1"); // built inside its source tree
    fs::create_directories(file("prefix/bin"));
    fs::copy(ZYR_PROGRAM, file("prefix/bin/zyrrad"));
    if (!fs::exists("/usr/local/zyr/etc")) {
        EXPECT_EQ(colors(file("prefix/bin/zyrrad")), "0 told");
    }
    fs::create_directories(file("prefix/share"));
    fs::create_symlink(ZYR_SOURCE_DIR "/etc", file("prefix/share/zyrrad"));
    EXPECT_EQ(colors(file("prefix/bin/zyrrad")), "1");
    fs::rename(file("prefix/share"), file("prefix/gone"));
    fs::create_directories(file("prefix/zyr"));
    fs::create_symlink(ZYR_SOURCE_DIR "/etc", file("prefix/zyr/etc"));
    EXPECT_EQ(colors(file("prefix/bin/zyrrad")), "1");
}

// The same where the system does not say which program runs: the name that it was
// started by, with a directory or along PATH.
TEST_F(Outputs, TheDataTreeIsFoundWithoutProc) {
#ifdef ZYR_SANITIZED
    GTEST_SKIP() << "a sanitizer reads /proc itself";
#endif
    fs::create_directories(file("prefix/bin"));
    fs::copy(ZYR_PROGRAM, file("prefix/bin/zyrrad"));
    fs::create_directories(file("prefix/share"));
    fs::create_symlink(ZYR_SOURCE_DIR "/etc", file("prefix/share/zyrrad"));
    fs::create_symlink("prefix/bin/zyrrad", file("link"));
    for (const char* program : {"prefix/bin/zyrrad", "./link", "PATH=/none:prefix/bin zyrrad"}) {
        ProgramCall hidden;
        hidden.directory = dir.path();
        hidden.env = {
            {"zyrdefault", "unset"}
        };
        hidden.args = {"-m", "sh", "-c",
                       "mount -t tmpfs none /proc || exit 99; " + std::string(program) +
                           " -inp nids -me warn -de p,page radial"};
        const ProgramRun result = run_program("/usr/bin/unshare", hidden);
        if (result.code == 99 || result.err.find("unshare") != std::string::npos) {
            GTEST_SKIP() << "no namespace of its own: " << result.err;
        }
        EXPECT_EQ(result.code, 0) << program;
        EXPECT_EQ(result.err, "") << program;
    }
}

// A command comes from the user alone: each of these would make the file "ran".
TEST_F(Outputs, NothingButTheUserRunsACommand) {
    dir.write("list", "mf:|touch<ran\nmf:|touch${IFS}ran\n|touch${IFS}ran\n");
    dir.write("conv", "nids |touch${IFS}ran - 0\nlev2 radial - 0\n");
    dir.write("reg", "xx x 1 fi:|touch${IFS}ran:xx\n");
    dir.write("fonts", "m |touch${IFS}ran\n");
    dir.write("|touch ran", text("radial"));
    struct Row {
        const char* args;
        int code;
        const char* err; // part of it
    };
    const Row rows[] = {
        {"-mf fi:./list -de p,page radial",  0,
         "MAP_draw: Command refused: mf:|touch<ran in map list: ./list\n"               },
        {"-nc ./conv -cu -de p,page",        10,
         "FILE_set_name: A naming convention runs no command, refused: nids |touch"     },
        {"-pd ./reg:xx -de p,page radial",   0,
         "DOM_search_file: A region runs no command, refused: fi:|touch"                },
        {"-fl fi:./fonts -de p,page radial", 0,  "gsetup_fonts: Command refused: |touch"},
    };
    for (const Row& row : rows) {
        const ProgramRun result = run(row.args);
        EXPECT_EQ(result.code, row.code) << row.args << result.err;
        EXPECT_NE(result.err.find(row.err), std::string::npos) << row.args << result.err;
        EXPECT_FALSE(fs::exists(file("ran"))) << row.args;
    }
    ProgramCall met; // a shell's "*"
    for (const char* args : {"--info", "-inp auto -de p,page", "-de p,page"}) {
        met = call(args);
        met.args.emplace_back("|touch ran");
        EXPECT_EQ(run_program(ZYR_PROGRAM, met).code, 0) << args;
        EXPECT_FALSE(fs::exists(file("ran"))) << args;
    }
    met.args.back() = "|cat radial; touch ran"; // the user's own
    EXPECT_EQ(run_program(ZYR_PROGRAM, met).code, 0);
    EXPECT_TRUE(fs::exists(file("ran")));
}

TEST_F(Outputs, WhatIsEndlessOrHugeEnds) {
    for (const char* args : {"/dev/zero#1", "radial#9223372036854775807"}) {
        EXPECT_EQ(run(std::string("-de p,old ") + args).code, 10) << args;
        expect_old(args);
    }
    // Files that are none of their kind: said once, and nothing drawn of them.
    dir.write("few", "mf:|none\ny\ny\n");
    std::string many;
    for (int i = 0; i < 20000; ++i) {
        many += "y\n";
    }
    dir.write("many", many);
    const auto lines = [this] { return count_text(text("page"), " ln\n"); };
    run("-de p,page -dr sum,data,map -mf none radial");
    const int bare = lines();
    for (const auto& [args, said] : std::initializer_list<std::pair<const char*, const char*>>{
             {"-mf /dev/urandom", "MAP_process: No map database: /dev/urandom;"     },
             {"-mf /dev/zero",    "MAP_process: No map database: /dev/zero;"        },
             {"-mf ./radial",     "MAP_process: No map database: ./radial;"         },
             {"-mf ./many",       "MAP_process: No map database: ./many;"           },
             {"-mf fi:/dev/zero", "FILE_open_text: Text ends, a line has 1 MB: "    },
             {"-mf fi:./few",     "MAP_draw: Command refused: mf:|none in map list:"},
             {"-mf fi:./many",    "MAP_draw: No map list, or one that is too long: "},
             {"-mf fi:./few",     "MAP_process: Map file not found: y\n"            },
             {"-nc ./many",       "FILE_set_name: More than 10000 lines: ./many\n"  },
    }) {
        const ProgramRun got = run(args + std::string(" -de p,page -dr sum,data,map radial"));
        EXPECT_EQ(got.code, 0) << args;
        EXPECT_EQ(count_text(got.err, said), 1) << args << got.err.substr(0, 2000);
        if (args[1] == 'm') {
            EXPECT_EQ(lines(), bare) << args;
        }
    }
}

// Few bytes may ask for any number of figures: they are cut, and told. What is
// written stays under the bound.
TEST_F(Outputs, FiguresOfAProductAreBounded) {
    const auto many = [](const Bytes& packet, int times) {
        Bytes all;
        for (int i = 0; i < times; ++i) {
            all.insert(all.end(), packet.begin(), packet.end());
        }
        return all;
    };
    const auto packet = [](int code, const std::vector<int>& words) {
        Bytes all = nids_words({code, static_cast<int>(2 * words.size())});
        for (const int word : words) {
            const Bytes one = nids_words({word});
            all.insert(all.end(), one.begin(), one.end());
        }
        return all;
    };
    std::vector<int> winds;
    for (int i = 0; i < 3200; ++i) {
        winds.insert(winds.end(), {3, 100 + i % 50, 200, 270, 32767});
    }
    const Bytes wind = packet(4, winds);
    const Bytes runs =
        nids_radial_packet(0xAF1F, 15 * 460, std::vector<Bytes>(360, Bytes(460, 0xF5)));
    const Bytes letters = nids_text_packet(8, 0, 20, 30, std::string(70, 'W'));
    struct Row {
        const char* name;
        int code;
        Bytes layer;
        std::vector<Bytes> pages;
    };
    const std::vector<Bytes> none;
    const Bytes line = packet(7, {10, 20, 30, 400});
    std::vector<Row> rows;
    rows.push_back({"runs", 19, many(runs, 4), none});
    rows.push_back({"barbs", 48, many(wind, 70), none});
    rows.push_back({"texts", 16, many(letters, 16000), none});
    rows.push_back({"pages", 62, line, std::vector<Bytes>(70, wind)});
    constexpr long most = 256L << 20;
    for (const Row& row : rows) {
        NidsSample sample;
        sample.code = row.code;
        sample.thres = {0x8002, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
        sample.layers = {row.layer};
        sample.pages = row.pages;
        const Bytes bytes = nids_message(sample);
        dir.write("many", as_text(bytes));
        ProgramCall made = call("-va table -dr sum,data many");
        made.args.insert(made.args.end(), {"-de", "p,|wc -c >size"});
        made.timeout_s = 300;
        const ProgramRun run = run_program(ZYR_PROGRAM, made);
        EXPECT_EQ(run.code, 4) << row.name << run.err;
        EXPECT_EQ(count_text(run.err, "NIDS_plot: More figures than any product has, cut: "), 1)
            << row.name << run.err;
        EXPECT_LT(std::stol("0" + text("size")), most) << row.name;
    }
}
