// One allocation of a run fails, out of its first thousand: a message and 4 (3 in
// the plotter of summaries), and no picture or a whole one; or, where a library does
// without, the same picture. The whole walk, by hand:
//   ZYR_FAIL_STEP=1 ctest -R no_memory_test
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_writer.h"
#include "rcm_writer.h"
#include "rrwds_writer.h"
#include "run_program.h"
#include "summary_writer.h"
#include "x_server.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <regex>
#include <unistd.h>

namespace {

#ifdef ZYR_FAIL_ALLOC
constexpr const char* preload = ZYR_FAIL_ALLOC;
#else
constexpr const char* preload = ""; // a sanitizer has an allocator of its own
#endif

struct Row {
    const char* name; // of the input
    const char* args;
    const char* output;
    int code;   // at most
    int faster; // how much coarser the steps are: of what costs more, or is much the same
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.args;
}

constexpr const char* page = "-de p,out -pd ps,36,-98,21,15,.4,.4 -mf fi:usa.lst ";
constexpr Row rows[] = {
    {"radial",            "-inp nids -de p,out -mf fi:usa.lst -pp site ",               "out",     4, 1},
    {"zlib",              "-inp nids -de p,out ",                                       "out",     4, 2},
    {"symbols",           "-inp nids -va storms,watch -de p,out -mf rf:radars.raw:id ", "out",     4, 3},
    {"KTLX20190520_2231", "-inp lev2 -de p,out ",                                       "out",     4, 4},
    {"nowrad",            "-inp nowrad ",                                               nullptr,   4, 3},
    {"kavrad",            "-inp kavrad ",                                               nullptr,   4, 4},
    {"rrwds",             "-inp rrwds ",                                                nullptr,   4, 4},
    {"rcmsite",           "-inp rcmsite -id TLX ",                                      nullptr,   4, 3},
    {"mdr",               "-inp mdr -va model ",                                        nullptr,   3, 2},
    {"rcm",               "-inp rcm -va storm ",                                        nullptr,   3, 4},
    {"report",            "-inp mdr -va model ",                                        nullptr,   3, 3},
    {"radial",            "-inp nids -of png=out.png ",                                 "out.png", 4, 3},
    {"radial",            "-inp nids -de m,out ",                                       "out",     4, 5},
    {"radial",            "-inp nids -de h,out ",                                       "out",     4, 5},
    {"radial",            "-inp nids -de m,out,cgm ",                                   "out",     4, 5},
    {"radial",            "-inp nids -de d -pp xwd=out.xwd ",                           "out.xwd", 4, 5},
    {"radial",            "-inp nids -de d -pp img=out.img ",                           "out.img", 4, 5},
    {"radial",            "-inp nids -of gif=out.gif ",                                 "out.gif", 4, 5}, // at a display
};

class NoMemory : public testing::TestWithParam<Row> {
protected:
    void SetUp() override {
        if (*preload == '\0' || access(ZYR_PROGRAM, X_OK) != 0) {
            GTEST_SKIP() << "no program, or one that a sanitizer watches";
        }
        write_input(GetParam().name);
        if (std::strstr(GetParam().args, "gif") != nullptr) {
            server = std::make_unique<XServer>();
            if (!server->works()) {
                GTEST_SKIP() << "no X server";
            }
        }
    }
    void write_input(const std::string& name) const {
        const auto write = [&](const Bytes& bytes) {
            dir.write(name, {bytes.begin(), bytes.end()});
        };
        for (const auto& [sample, bytes] : nids_samples()) {
            if (name == sample) {
                write(bytes);
            }
        }
        for (const auto& [sample, bytes] : summary_samples()) {
            if (sample.starts_with(name + ".")) {
                write(bytes);
            }
        }
        if (name.starts_with("KTLX")) { // by a name that is looked up
            write(lev2_volume(lev2_sample(31), true));
        } else if (name == "nowrad") {
            write(nowrad_samples().front().second);
        } else if (name == "kavrad") {
            write(kavrad_samples().front().second);
        } else if (name == "rrwds") {
            write(rrwds_file({}, [](int azimuth, int bin) { return (azimuth + bin) / 9 % 8; }));
        } else if (name == "rcmsite") {
            write(rcm_sample(false));
        }
        if (!std::filesystem::exists(dir.path() + "/" + name)) {
            GTEST_SKIP() << "no library to write it: " << name;
        }
    }
    [[nodiscard]] ProgramRun run_with(const char* variable, int value) const {
        const Row& row = GetParam();
        ProgramCall call;
        call.directory = dir.path();
        call.env = {
            {"zyrdefault",        ZYR_SOURCE_DIR "/etc"       },
            {"zyrcurtime",        "201905202230"              },
            {"SOURCE_DATE_EPOCH", "0"                         },
            {"DISPLAY",           server ? server->name() : ""},
            {"LD_PRELOAD",        preload                     },
            {"ZYR_FAIL_PROGRAM",  "zyrrad"                    },
            {variable,            std::to_string(value)       }
        };
        call.timeout_s = 60;
        std::istringstream words(std::string("-me warn ") + row.args +
                                 (row.output == nullptr ? page : "") + "./" + row.name);
        call.args = {std::istream_iterator<std::string>(words), {}};
        return run_program(ZYR_PROGRAM, call);
    }
    // The picture; empty without one.
    [[nodiscard]] std::string picture() const {
        const char* output = GetParam().output;
        const std::string name = dir.path() + "/" + (output == nullptr ? "out" : output);
        if (access(name.c_str(), F_OK) != 0) {
            return "";
        }
        const std::string text = read_text(name);
        std::filesystem::remove(name);
        return text;
    }
    [[nodiscard]] std::ptrdiff_t files() const {
        return std::distance(std::filesystem::directory_iterator(dir.path()), {});
    }

    TempDir dir;
    std::unique_ptr<XServer> server;
};

} // namespace

TEST_P(NoMemory, LosesNothingInSilence) {
    const char* chosen = std::getenv("ZYR_FAIL_STEP");
    const int step = chosen == nullptr ? 19 * GetParam().faster
                                       : std::max(1, std::atoi(chosen)); // NOLINT(cert-err34-c)
    const std::ptrdiff_t before = files();
    std::smatch found;
    const ProgramRun whole = run_with("ZYR_FAIL_COUNT", 1);
    ASSERT_TRUE(std::regex_search(whole.err, found, std::regex("allocations: ([0-9]+)")))
        << whole.err;
    const int count = std::min(1000, std::stoi(found[1]));
    EXPECT_GT(count, 300); // or the library counts nothing
    const std::string good = picture();
    ASSERT_FALSE(good.empty()) << whole.err;
    const std::string said = whole.err.substr(0, whole.err.find("allocations: "));
    int stopped = 0;
    for (int at = 1; at <= count; at += step) {
        const ProgramRun run = run_with("ZYR_FAIL_AT", at);
        const std::string left = picture();
        EXPECT_TRUE(left.empty() ? run.code != 0 : left == good) << "allocation " << at << run.err;
        EXPECT_EQ(files(), before) << "allocation " << at;
        EXPECT_TRUE(run.code != 0 || run.err == said) << "allocation " << at << run.err;
        if (run.code != 0) {
            ++stopped;
            EXPECT_TRUE(run.code == 4 || run.code == GetParam().code)
                << "allocation " << at << ": " << run.code << run.err;
            EXPECT_FALSE(run.err.empty()) << "allocation " << at;
        }
    }
    EXPECT_GT(stopped, count / step / 2);
}

INSTANTIATE_TEST_SUITE_P(Outputs, NoMemory, testing::ValuesIn(rows), [](const auto& row) {
    return row.param.name + std::to_string(row.index);
});
