// One allocation of a run fails: a message and 4, and no picture; or, where a
// library does without, the same picture. The whole walk, by hand:
//   ZYR_FAIL_STEP=1 ctest -R no_memory_test
#include "lev2_writer.h"
#include "nids_writer.h"
#include "run_program.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <unistd.h>

namespace {

#ifdef ZYR_FAIL_ALLOC
constexpr const char* preload = ZYR_FAIL_ALLOC;
#else
constexpr const char* preload = ""; // a sanitizer has an allocator of its own
#endif

ProgramRun run_with(const TempDir& dir, const std::string& args, const char* variable, int value) {
    ProgramCall call;
    call.directory = dir.path();
    call.env = {
        {"zyrdefault",       ZYR_SOURCE_DIR "/etc"},
        {"zyrcurtime",       "201905202230"       },
        {"LD_PRELOAD",       preload              },
        {"ZYR_FAIL_PROGRAM", "zyrrad"             },
        {variable,           std::to_string(value)}
    };
    std::istringstream words("-me warn -de p,page.ps " + args);
    call.args = {std::istream_iterator<std::string>(words), {}};
    return run_program(ZYR_PROGRAM, call);
}

// The page without its date; empty without a page.
std::string page_of(const TempDir& dir) {
    const std::string name = dir.path() + "/page.ps";
    return access(name.c_str(), F_OK) != 0
               ? ""
               : std::regex_replace(read_text(name), std::regex("%%CreationDate[^\n]*\n"), "");
}

std::ptrdiff_t files_in(const TempDir& dir) {
    return std::distance(std::filesystem::directory_iterator(dir.path()), {});
}

} // namespace

TEST(Memory, OneFailureLosesNothingInSilence) {
    if (*preload == '\0' || access(ZYR_PROGRAM, X_OK) != 0) {
        GTEST_SKIP() << "no program, or one that a sanitizer watches";
    }
    const char* chosen = std::getenv("ZYR_FAIL_STEP");
    const int step =
        chosen == nullptr ? 17 : std::max(1, std::atoi(chosen)); // NOLINT(cert-err34-c)
    const TempDir dir;
    for (const auto& [name, bytes] : nids_samples()) {
        if (name == "radial" || name == "zlib") {
            dir.write(name, {bytes.begin(), bytes.end()});
        }
    }
    std::vector<std::string> runs{"-inp nids -mf usa.lst -pp site radial"};
    if (access((dir.path() + "/zlib").c_str(), F_OK) == 0) {
        runs.emplace_back("-inp nids zlib");
    }
    for (const std::string& args : runs) {
        std::smatch found;
        const ProgramRun whole = run_with(dir, args, "ZYR_FAIL_COUNT", 1);
        ASSERT_TRUE(std::regex_search(whole.err, found, std::regex("allocations: ([0-9]+)")))
            << whole.err;
        const int count = std::stoi(found[1]);
        EXPECT_GT(count, 300) << args; // or the library counts nothing
        const std::string page = page_of(dir);
        ASSERT_FALSE(page.empty());
        std::filesystem::remove(dir.path() + "/page.ps");
        const std::ptrdiff_t before = files_in(dir);
        int stopped = 0;
        for (int at = 1; at <= count; at += step) {
            const ProgramRun run = run_with(dir, args, "ZYR_FAIL_AT", at);
            const std::string left = page_of(dir);
            if (run.code == 4) {
                ++stopped;
                EXPECT_FALSE(run.err.empty()) << args << ", allocation " << at;
                EXPECT_EQ(files_in(dir), before) << args << ", allocation " << at;
            } else {
                EXPECT_EQ(run.code, 0) << args << ", allocation " << at << "\n" << run.err;
                EXPECT_TRUE(left == page) << args << ", allocation " << at << "\n" << run.err;
            }
            std::filesystem::remove(dir.path() + "/page.ps");
        }
        EXPECT_GT(stopped, count / step / 2) << args;
    }
}
