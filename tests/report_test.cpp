// The account that a run gives of its pictures, read by another program's JSON.
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_writer.h"
#include "rcm_writer.h"
#include "run_program.h"
#include "summary_writer.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

class Account : public testing::Test {
protected:
    void SetUp() override {
        if (access(ZYR_PROGRAM, X_OK) != 0) {
            GTEST_SKIP() << "no program was built";
        }
        for (const auto& samples : {nids_samples(), lev2_samples(), nowrad_samples(),
                                    kavrad_samples(), rcm_samples(), summary_samples()}) {
            for (const auto& [name, bytes] : samples) {
                dir.write("in/" + name, {bytes.begin(), bytes.end()});
            }
        }
        NidsSample bare;
        bare.code = 19;
        bare.layers = {nids_radial_packet(0xAF1F, 24, {Bytes{0xF0}})};
        const Bytes message = nids_message(bare);
        dir.write("bare", {message.begin(), message.end()});
        dir.write("in/a \"name\"\\ \t\xC3\xA4\xFF", "no radar file");
    }
    ProgramRun run(std::vector<std::string> args) const {
        ProgramCall call;
        call.env = {
            {"zyrdefault", ZYR_SOURCE_DIR "/etc"}
        };
        call.directory = dir.path();
        args.insert(args.begin(), {"-me", "warn", "-ge", "120x100", "-id", "TLX"});
        call.args = args;
        call.timeout_s = 120;
        return run_program(ZYR_PROGRAM, call);
    }
    // The members of the lines of a report, by a program of Python.
    std::string ask(const std::string& report, const std::string& expression) const {
        ProgramCall call;
        call.directory = dir.path();
        call.args = {"-c", "import json,sys\n"
                           "for l in open('" +
                               report +
                               "'):\n r = json.loads(l)\n"
                               " print(" +
                               expression + ")"};
        const ProgramRun done = run_program("/usr/bin/env", python(call));
        EXPECT_EQ(done.code, 0) << done.err;
        return done.out;
    }
    // The number of lines that the schema agrees with.
    std::string lines_of(const std::string& report) const {
        ProgramCall call;
        call.directory = dir.path();
        call.args = {ZYR_SOURCE_DIR "/tools/check_report.py",
                     ZYR_SOURCE_DIR "/doc/report.schema.json", report};
        const ProgramRun done = run_program("/usr/bin/env", python(call));
        return done.out + done.err;
    }

    TempDir dir;

private:
    static ProgramCall python(ProgramCall call) {
        call.args.insert(call.args.begin(), "python3");
        return call;
    }
};

TEST_F(Account, OfABatchRunHasOneLine) {
    const ProgramRun done =
        run({"-ba", "-inp", "nids", "-de", "p,batch.ps", "--report", "r.json", "in/radial"});
    EXPECT_EQ(done.code, 0) << done.err;
    usleep(300000); // what goes on in the background has ended, too
    EXPECT_EQ(ask("r.json", "r['output']"), "batch.ps\n");
}

} // namespace

TEST_F(Account, EachInputHasALineThatAgreesWithTheSchema) {
    std::string list;
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.path() + "/in")) {
        if (entry.is_regular_file()) {
            list += entry.path().string() + '\0';
            ++count;
        }
    }
    dir.write("list", list + "missing");
    run({"-inp", "auto", "-pd", "us", "-va", "model", "-of", "png@out/%i.png", "--report", "report",
         "--files-from", "list"});
    EXPECT_EQ(lines_of("report"), std::to_string(count + 1) + "\n");
    EXPECT_NE(ask("report", "r['input'] if r['exit'] else ''").find("missing"), std::string::npos);
    // Sizes are those of the files.
    EXPECT_EQ(ask("report", "__import__('os').path.getsize(r['output']) - r['size'] if 'output' in "
                            "r else 0")
                  .find_first_not_of("0\n"),
              std::string::npos);
}

TEST_F(Account, SaysWhatWasDrawn) {
    struct Row {
        std::vector<std::string> args;
        const char* members;
        const char* said;
        int code;
    };
    // clang-format off
    const Row rows[] = {
        {{"-inp", "nids", "-de", "p,a.ps", "in/radial"},
         "[r.get(k) for k in ('product','code','angle','site','time','radials','missing','out_of_range','max','output','exit')]",
         "['Base reflectivity (Dbz)', 19, 0.0, 'KTLX', '2019-05-20T22:31:24Z', 4, 0, 0, 75.0, 'a.ps', 0]\n", 0},
        {{"-inp", "auto", "-de", "p,a.ps", "in/generic_plain"},
         "[r.get(k) for k in ('moment','cut','angle','radials','missing','min','max')]",
         "['ref', 1, 0.5, 2, 358, 2.0, 45.0]\n", 0},
        {{"-inp", "auto", "-de", "p,a.ps", "-pp", "exact", "in/radial"},
         "[r.get(k) for k in ('radials','missing')]", "[4, 0]\n", 0},
        {{"-inp", "auto", "-de", "p,a.ps", "-pp", "exact", "in/generic_plain"},
         "[r.get(k) for k in ('radials','missing')]", "[2, 358]\n", 0},
        {{"-inp", "nids", "-of", "png@%i.png", "in/radial", "nothing", "in/raster"},
         "[r.get(k) for k in ('input','output','exit')]",
         "['in/radial', '00.png', 0]\n['./nothing', None, 10]\n['in/raster', '01.png', 0]\n", 0},
        {{"-inp", "auto", "-de", "p,a.ps", "in/radial", "-dr", "labels", "-pp", "empty=9"},
         "[r['figures'], r['exit']]", "[0, 0]\n", 9},
        {{"-inp", "nids", "-of", "png@%i.png", "in/radial", "bare", "-pp", "empty=9"},
         "[r['figures'] > 0, r['exit']]", "[True, 0]\n[False, 0]\n", 0},
        {{"-inp", "auto", "-de", "p,a.ps", "in/radial", "-pp", "empty=9"},
         "r['figures'] > 0", "True\n", 0},
        {{"-inp", "auto", "-de", "p,a.ps", "nothing", "-pp", "empty=9"},
         "[r['input'], r['exit']]", "['nothing', 10]\n", 10},
        {{"-inp", "nids", "-de", "p,/dev/full", "in/radial"},
         "r['exit']", "4\n", 4},
    };
    // clang-format on
    for (const Row& row : rows) {
        std::vector<std::string> args = row.args;
        args.insert(args.end(), {"--report", "report"});
        EXPECT_EQ(run(args).code, row.code) << row.said;
        EXPECT_EQ(ask("report", row.members), row.said);
    }
    // What is no report stays; the lines of a run that goes on come after those of before.
    const std::string product = read_text(dir.path() + "/in/radial");
    EXPECT_EQ(run({"-inp", "nids", "-de", "p,a.ps", "--report", "in/radial", "in/raster"}).code, 4);
    EXPECT_TRUE(read_text(dir.path() + "/in/radial") == product);
    dir.write("list", "in/radial\n");
    for (int i = 0; i < 2; ++i) {
        run({"-inp", "nids", "-de", "p,%f.ps", "--report", "lines", "--resume", "--files-from",
             "list"});
    }
    EXPECT_EQ(ask("lines", "r.get('there')"), "None\nTrue\n");
    const ProgramRun piped = run({"-inp", "nids", "-de", "p,a.ps", "--report", "-", "in/radial"});
    EXPECT_TRUE(piped.out.starts_with("{\"input\": \"in/radial\"")) << piped.out;
    EXPECT_EQ(count_text(piped.out, "\n"), 1);
}
