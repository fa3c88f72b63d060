// nids_page.h: a page of a radar file, drawn by the program itself with the data
// files of the source tree, and the golden file of a page.
#pragma once

#include "nids_writer.h"
#include "run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct NidsPage {
    ProgramRun run;
    std::string text; // the PostScript file
    [[nodiscard]] int figures() const { return count_text(text, "\n%%FA:"); }
};

// `args`: files and options, split at blanks. `input`: the kind of file. `bytes`:
// what comes through standard input.
inline NidsPage nids_page(const TempDir& dir, const std::string& args,
                          const std::string& input = "nids", const std::string& bytes = "") {
    ProgramCall call;
    std::istringstream words("-inp " + input + " -de p,page.ps -fp " ZYR_SOURCE_DIR "/etc " + args);
    for (std::string word; words >> word;) {
        call.args.push_back(word);
    }
    call.directory = dir.path();
    call.input = bytes;
    // A run that draws nothing leaves the page of the one before.
    std::filesystem::remove(dir.path() + "/page.ps");
    NidsPage page{run_program(ZYR_PROGRAM, call), ""};
    page.text = read_text(dir.path() + "/page.ps");
    return page;
}

// The first figure of a page, in points.
inline std::vector<std::array<double, 2>> first_figure(const std::string& page) {
    std::istringstream lines(page.substr(std::min(page.find("%%FA:5"), page.size())));
    std::vector<std::array<double, 2>> corners;
    for (std::string line; std::getline(lines, line) && line != "cp";) {
        std::array<double, 2> at{};
        if (std::sscanf(line.c_str(), "%lf %lf", at.data(), at.data() + 1) == 2) {
            corners.push_back(at);
        }
    }
    return corners;
}

// What a golden file keeps of a page: all but the line that changes from run to
// run and the strokes of texts, which are the font's.
inline std::string golden_text(const std::string& page) {
    std::istringstream lines(page);
    std::string text;
    bool in_text = false;
    for (std::string line; std::getline(lines, line);) {
        in_text = line.starts_with("%%TE") || (in_text && !line.starts_with("%%"));
        if (!line.starts_with("%%CreationDate") && (!in_text || line.starts_with("%%TE"))) {
            text += line + "\n";
        }
    }
    return text;
}

// Compares a page with its golden file, or writes that anew when the environment
// says so.
inline void expect_golden(const NidsPage& page, const std::string& name) {
    const std::string golden = ZYR_SOURCE_DIR "/tests/data/golden/" + name + ".ps";
    EXPECT_EQ(page.run.code, 0) << name << "\n" << page.run.err;
    if (std::getenv("ZYR_UPDATE_GOLDEN") != nullptr) {
        std::ofstream(golden) << golden_text(page.text);
    }
    EXPECT_EQ(golden_text(page.text), read_text(golden)) << name;
}

// Tests of the program in a directory that holds written samples by their names.
class RadarPlot : public testing::Test {
protected:
    explicit RadarPlot(const std::vector<std::pair<std::string, Bytes>>& samples) {
        for (const auto& [name, bytes] : samples) {
            write(name, bytes);
        }
    }
    void SetUp() override {
        if (!std::filesystem::exists(ZYR_PROGRAM)) {
            GTEST_SKIP() << "no program was built";
        }
    }
    void write(const std::string& name, const Bytes& bytes) const {
        dir.write(name, {bytes.begin(), bytes.end()});
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        return read_text(dir.path() + "/" + name);
    }
    // A page of a file that comes through standard input equals this one.
    void expect_piped(const NidsPage& page, const std::string& name, const std::string& args,
                      const std::string& input) const {
        const NidsPage piped = nids_page(dir, args + " -", input, read(name));
        EXPECT_EQ(piped.run.code, 0) << piped.run.err;
        EXPECT_EQ(golden_text(piped.text), golden_text(page.text));
    }

    TempDir dir;
};
