// feed_stdin.h: answers to the prompts of the program under test.
#pragma once

#include "run_program.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

// The end of standard input ends the program with 0, as a test that passed ends:
// a test that leaves in its middle fails instead. A child may leave.
inline pid_t fed_process = 0;

inline int fail_when_left() {
    fed_process = getpid();
    return std::atexit([] {
        if (getpid() == fed_process &&
            testing::UnitTest::GetInstance()->current_test_info() != nullptr) {
            static_cast<void>(std::fputs("The program left in the middle of a test\n", stderr));
            _exit(1);
        }
    });
}

// Text in place of standard input.
inline void feed_stdin(const std::string& text) {
    EXPECT_EQ(fail_when_left(), 0);
    const TempDir dir;
    if (std::freopen(dir.write("stdin", text).c_str(), "r", stdin) == nullptr) {
        std::abort();
    }
}
