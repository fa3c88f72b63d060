// A run over a list of inputs: each picture is the one that a run of its own makes,
// whatever came before it, and no name in a list does anything but name a file.
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_writer.h"
#include "rcm_writer.h"
#include "run_program.h"
#include "summary_writer.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <random>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Texts = std::map<std::string, std::string>;

std::string as_text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

class List : public testing::Test {
protected:
    void SetUp() override {
        if (access(ZYR_PROGRAM, X_OK) != 0) {
            GTEST_SKIP() << "no program was built";
        }
        for (const auto& [name, bytes] : nids_samples()) {
            if (name == "radial") {
                radial = as_text(bytes);
            }
        }
    }
    ProgramRun run(std::vector<std::string> args, const std::string& input = "",
                   const std::string& etc = ZYR_SOURCE_DIR "/etc") const {
        ProgramCall call;
        call.env = {
            {"zyrdefault",        etc         },
            {"SOURCE_DATE_EPOCH", "1500000000"}
        };
        call.directory = dir.path();
        call.args = {"-inp", "auto", "-me", "warn"};
        call.args.insert(call.args.end(), args.begin(), args.end());
        call.input = input;
        call.timeout_s = 120;
        return run_program(ZYR_PROGRAM, call);
    }
    // A picture with as little as there is to draw.
    ProgramRun run_small(std::vector<std::string> args, const std::string& input) const {
        args.insert(args.end(), {"-ge", "60x40", "--files-from", "-"});
        return run(args, input);
    }
    std::string file(const std::string& name) const { return dir.path() + "/" + name; }
    Texts all(const std::string& directory) const {
        Texts texts;
        for (const auto& entry : fs::directory_iterator(file(directory))) {
            texts[entry.path().filename()] = read_text(entry.path());
        }
        return texts;
    }

    TempDir dir;
    std::string radial;
};

} // namespace

TEST_F(List, EachPictureIsThatOfARunOfItsOwn) {
    // clang-format off
    std::map<std::string, std::string> inputs = {
        {"nothing.n", std::string(500, 'x')                              },
        {"cut.n",     radial.substr(0, radial.size() / 2)                },
        {"head.n",    radial.substr(0, 150)                              },
        {"lev2.v",    as_text(lev2_volume(lev2_sample(31, 2), true))     },
        {"old.v",     as_text(lev2_volume(lev2_sample(1, 2), false))     },
        {"cut.v",     as_text(lev2_volume(lev2_sample(31, 2), true)).substr(0, 900)},
    };
    // clang-format on
    const auto add = [&](const char* kind, const auto& samples, std::size_t most) {
        for (const auto& [name, bytes] : samples) {
            if (most-- == 0) {
                break;
            }
            inputs[name + "." + kind] = as_text(bytes);
        }
    };
    add("n", nids_samples(), 9);
    add("w", nowrad_samples(), 2);
    add("k", kavrad_samples(), 2);
    add("m", rcm_samples(), 2);
    add("s", summary_samples(), 3);
    std::vector<std::string> names;
    for (const auto& [name, text] : inputs) {
        dir.write(name, text);
        names.insert(names.end(), {name, name}); // after itself, and after others
    }
    std::shuffle(names.begin(), names.end(), std::mt19937(5));
    std::string list;
    for (const std::string& name : names) {
        list += name + "\n";
    }
    struct Row {
        const char* ending;
        std::vector<std::string> args;
    };
    // clang-format off
    const Row rows[] = {
        {"png", {"-pd", "us", "-cof", "auto", "-pp", "fitlab,site,dist", "-id", "TLX", "-ge", "200x160"}},
        {"ps", {"-pd", "lamb:30:-97:30:60,35.3,-97.5,81,61,.1,.1", "-pp", "pscolor", "-mf", "-", "-va", "model"}},
    };
    // clang-format on
    for (const Row& row : rows) {
        const auto plot = [&](const std::string& output, const std::vector<std::string>& more,
                              const std::string& input = "") {
            std::vector<std::string> args = row.args;
            const bool image = std::string(row.ending) == "png";
            args.insert(args.end(), {"-de", image ? "d,memory" : "p," + output});
            args.insert(args.end(), {"-of", image ? "png@" + output : "none"});
            args.insert(args.end(), more.begin(), more.end());
            return run(args, input);
        };
        const std::string ending = row.ending;
        const ProgramRun listed = plot(ending + "/%i." + ending, {"--files-from", "-"}, list);
        EXPECT_EQ(listed.code, 10);
        Texts own; // by input; one that asks for more than a name has none
        for (const auto& [name, text] : inputs) {
            plot("own." + ending, {"./" + name});
            if (fs::exists(file("own." + ending))) {
                own[name] = read_text(file("own." + ending));
                fs::remove(file("own." + ending));
            }
        }
        int drawn = 0;
        for (std::size_t i = 0; i < names.size(); ++i) {
            char number[32];
            std::snprintf(number, sizeof number, "/%06zu.", i + 1);
            const std::string picture = file(ending + number + ending);
            ASSERT_EQ(fs::exists(picture), own.contains(names[i])) << names[i];
            if (own.contains(names[i])) {
                EXPECT_TRUE(read_text(picture) == own[names[i]]) << picture << " " << names[i];
                ++drawn;
            }
        }
        EXPECT_GT(drawn, 30);
        EXPECT_NE(listed.out.find(std::to_string(drawn) + " drawn"), std::string::npos)
            << listed.out;
        EXPECT_EQ(listed.err.find('\r'), std::string::npos); // no terminal, no progress
    }
}

TEST_F(List, NamesAreNothingButNames) {
    // clang-format off
    const std::string plain[] = {"a b",  "|touch done", "la",  "exit", "std", "-", "a,b:c#d",
                                 "%f%i", "*",           "@me", "list", "~x",  "-inp"};
    // clang-format on
    std::string lines;
    std::string zeros;
    for (const std::string& name : plain) {
        dir.write(name, radial);
        lines += name + "\r\n\n";
        zeros += name + std::string(1, '\0');
    }
    dir.write("two\nlines", radial);
    fs::create_directory(file("sub"));
    ASSERT_EQ(mkfifo(file("fifo").c_str(), 0600), 0);
    const std::string bad =
        "missing\nsub\nfifo\n/dev/zero\n|touch done2\n./la\n" + std::string(100000, 'y') + "\n";
    const auto names = static_cast<long>(std::size(plain));
    const auto counts = [](long inputs, long drawn, long failed) {
        return std::to_string(inputs) + " inputs: " + std::to_string(drawn) + " drawn, 0 of them " +
               "empty, " + std::to_string(failed) + " failed";
    };
    struct Row {
        std::string list, counts;
        int code;
    };
    // clang-format off
    const Row rows[] = {
        {lines, counts(names, names, 0), 0},
        {zeros + "two\nlines", counts(names + 1, names, 1), 10},
        {bad + "la", counts(8, 1, 7), 10}, // "./la" is read again: its picture would be lost
        {"", counts(0, 0, 0), 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        fs::remove_all(file("out"));
        const std::string key = &row == &rows[2] ? "out/%f.png" : "out/%f-%i.png";
        const ProgramRun done = run_small({"-of", "png@" + key}, row.list);
        EXPECT_EQ(done.code, row.code) << done.err;
        EXPECT_EQ(done.out.substr(0, row.counts.size()), row.counts) << done.err;
    }
    EXPECT_FALSE(fs::exists(file("done")) || fs::exists(file("done2")));
    // Without a name of its own a picture would take the one before it away.
    for (const char* output : {"png@x.png", "png@100%%", "png@|cat >%f", "x"}) {
        EXPECT_EQ(run_small({"-of", output}, lines).code, 10) << output;
    }
    for (const char* output : {"p,|cat >%f", "w,,%f", "p,x.ps"}) {
        EXPECT_EQ(run_small({"-de", output}, lines).code, 10) << output;
    }
    for (const char* list : {"/dev/zero", "sub", "no_list"}) {
        EXPECT_EQ(run({"-of", "png@%f.png", "--files-from", list}).code, 10) << list;
    }
}

TEST_F(List, ResumesAndStops) {
    for (const char* name : {"a", "b", "c"}) {
        dir.write(name, radial);
    }
    dir.write("bad", "no radar file");
    const auto ages = [&](const char* name, int hours) {
        fs::last_write_time(file(name),
                            fs::file_time_type::clock::now() - std::chrono::hours(hours));
    };
    for (const char* name : {"a", "b", "c"}) {
        ages(name, 3);
    }
    const std::pair<const char*, const char*> outputs[] = {
        {"-of", "png@out/%f.png"},
        {"-de", "p,out/%f.ps"   }
    };
    for (const auto& [option, output] : outputs) {
        fs::remove_all(file("out"));
        std::vector<std::string> args = {option, output, "--stop"};
        EXPECT_EQ(run_small(args, "a\nbad\nb\nc\n").code, 10);
        ASSERT_EQ(all("out").size(), 1U); // ended at the first failure
        args.back() = "--resume";
        const std::string first = all("out").begin()->first;
        ages(("out/" + first).c_str(), 2);
        const ProgramRun second = run_small(args, "a\nbad\nb\n");
        EXPECT_NE(second.out.find("3 inputs: 1 drawn, 0 of them empty, 1 failed, 1 were there"),
                  std::string::npos)
            << second.out;
        ages("a", 1); // newer than its picture
        const ProgramRun third = run_small(args, "a\nb\nc\n");
        EXPECT_EQ(third.code, 0);
        EXPECT_NE(third.out.find(" 2 drawn"), std::string::npos) << third.out;
        EXPECT_EQ(all("out").size(), 3U);
        ages("a", 3);
    }
}

TEST_F(List, ReadsMapsFontsAndTablesOnce) {
    fs::copy(ZYR_SOURCE_DIR "/etc", file("etc"), fs::copy_options::recursive);
    std::string list;
    for (int i = 0; i < 5; ++i) {
        list += dir.write("in" + std::to_string(i), radial) + "\n";
    }
    dir.write("list", list);
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(watch, file("etc").c_str(), IN_OPEN), 0);
    EXPECT_EQ(run({"-of", "png@%f.png", "--files-from", "list"}, "", file("etc")).code, 0);
    Texts opened; // a mark for each time
    alignas(inotify_event) std::array<char, 65536> events{};
    for (ssize_t size = 0; (size = read(watch, events.data(), events.size())) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
            opened[event->len > 0 ? event->name : ""] += '+';
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
    }
    close(watch);
    EXPECT_EQ(opened["modern.fnt"], "+");
    EXPECT_EQ(opened["zyr.clr"], "+");
    int maps = 0;
    for (const auto& [name, times] : opened) {
        EXPECT_EQ(times, "+") << name;
        maps += name.ends_with(".map") ? 1 : 0;
    }
    EXPECT_GT(maps, 0);
}

TEST_F(List, ShowsItsProgressOnATerminal) {
    std::string list;
    for (int i = 0; i < 30; ++i) {
        list += dir.write("in" + std::to_string(i), radial) + "\n";
    }
    dir.write("list", list);
    ProgramCall call;
    call.directory = dir.path();
    call.env = {
        {"zyrdefault", ZYR_SOURCE_DIR "/etc"}
    };
    call.args = {"-qec", ZYR_PROGRAM " -inp nids -of png@%f.png --files-from list", "/dev/null"};
    const ProgramRun shown = run_program("/usr/bin/script", call);
    EXPECT_EQ(shown.code, 0) << shown.out << shown.err;
    EXPECT_NE(shown.out.find(" of 30 ["), std::string::npos) << shown.out;
    EXPECT_NE(shown.out.find("/s 0:"), std::string::npos);
    EXPECT_NE(shown.out.find("\r\033[K30 inputs: 30 drawn"), std::string::npos) << shown.out;
}
