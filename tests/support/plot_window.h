// plot_window.h: the program with its window on an X server of the test's own.
#pragma once

#include "nids_writer.h"
#include "run_program.h"

#include <gtest/gtest.h>

#include "x_server.h"

#include <cstdlib>
#include <sstream>

// A product whose bins all have one level, 1 to 15: a disc of one colour in the
// middle of the picture. The minute tells it apart from others by its date, too.
inline Bytes disc_product(int level, int minute = 31) {
    NidsSample sample;
    sample.code = 19;
    sample.seconds = (22 * 60 + minute) * 60;
    sample.thres = {0x8002, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
    Bytes runs(16, static_cast<std::uint8_t>(0xF0 | level)); // of 15 bins
    runs.back() = static_cast<std::uint8_t>(0x50 | level);
    sample.layers.push_back(nids_radial_packet(0xAF1F, 230, std::vector<Bytes>(8, runs)));
    return nids_wrapped("SD", nids_message(sample));
}

class PlotWindow : public testing::Test {
protected:
    void SetUp() override { use_server(24); }
    void TearDown() override {
        if (program != nullptr) {
            EXPECT_EQ(program->err().find("X11 error"), std::string::npos) << program->err();
        }
    }
    // Everything from here on happens on a server of this depth.
    void use_server(int depth, int visual_class = -1) {
        program.reset();
        user.reset();
        server = std::make_unique<XServer>(depth, 1024, 800, visual_class);
        if (!server->works()) {
            ASSERT_EQ(std::getenv("ZYR_NEED_DISPLAY"), nullptr) << "Xvfb does not start";
            GTEST_SKIP() << "no Xvfb";
        }
        user = std::make_unique<XUser>(*server);
    }
    void write(const std::string& name, const Bytes& bytes) const {
        dir.write(name, {bytes.begin(), bytes.end()});
    }
    // `args` are split at blanks.
    std::unique_ptr<RunningProgram> launch(const std::string& args,
                                           const std::map<std::string, std::string>& env = {}) {
        ProgramCall call;
        call.env = env;
        call.env.try_emplace("DISPLAY", server->name());
        call.env.try_emplace("zyrdefault", ZYR_SOURCE_DIR "/etc");
        call.directory = dir.path();
        std::istringstream words("-inp nids " + args);
        for (std::string word; words >> word;)
            call.args.push_back(word);
        return std::make_unique<RunningProgram>(ZYR_PROGRAM, call);
    }
    // Starts the program and waits for its picture; the pointer is in the window.
    void start(const std::string& args, const std::map<std::string, std::string>& env = {}) {
        program = launch(args, env);
        window = user->find_window();
        ASSERT_NE(window, 0U) << args << "\n" << program->err();
        ASSERT_TRUE(settle() && !program->ended()) << args << "\n" << program->wait().err;
        user->point(window, 5, 5);
    }
    bool settle() const { return user->settle(program->pid()); }
    // The picture when the program rests.
    Picture picture() const {
        settle();
        return user->look(window);
    }
    // A run made only for its picture.
    Picture picture_of(const std::string& args,
                       const std::map<std::string, std::string>& env = {}) {
        start(args, env);
        Picture all = picture();
        leave();
        return all;
    }
    bool shows(const Picture& expected) const {
        return wait_until([&] { return user->look(window) == expected; }, 5);
    }
    bool has_title(const std::string& expected) const {
        return wait_until([&] { return user->title(window) == expected; }, 5);
    }
    // The colour of the disc: near its middle, away from the site.
    std::uint32_t disc() const {
        const Picture now = user->look(window);
        return now.width < 40 ? 0 : now.at(now.width / 2 + 12, now.height / 2 + 12);
    }
    void leave(int code = 0) {
        user->key(XK_Return);
        const ProgramRun run = program->wait();
        EXPECT_FALSE(run.timed_out);
        EXPECT_EQ(run.code, code) << run.err;
        EXPECT_EQ(run.err.find("X11 error"), std::string::npos) << run.err;
    }
    bool said(const std::string& text) const {
        return wait_until([&] { return (program->out() + program->err()).find(text) != text.npos; },
                          5);
    }

    TempDir dir;
    std::unique_ptr<XServer> server;
    std::unique_ptr<XUser> user;
    std::unique_ptr<RunningProgram> program;
    Window window = 0;
};
