// nids_page.h: a page of a radar file, drawn by the program itself with the data
// files of the source tree.
#pragma once

#include "run_program.h"

#include <sstream>
#include <string>

struct NidsPage {
    ProgramRun run;
    std::string text; // the PostScript file
    [[nodiscard]] int figures() const { return count_text(text, "\n%%FA:"); }
};

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

// `args`: files and options, split at blanks. `input`: the kind of file.
inline NidsPage nids_page(const TempDir& dir, const std::string& args,
                          const std::string& input = "nids") {
    ProgramCall call;
    std::istringstream words("-inp " + input + " -de p,page.ps -fp " ZYR_SOURCE_DIR "/etc " + args);
    for (std::string word; words >> word;) {
        call.args.push_back(word);
    }
    call.directory = dir.path();
    NidsPage page{run_program(ZYR_PROGRAM, call), ""};
    page.text = read_text(dir.path() + "/page.ps");
    return page;
}
