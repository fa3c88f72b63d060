// nids_page.h: a page of a NIDS product, drawn by the program itself with the
// data files of the source tree.
#pragma once

#include "run_program.h"

#include <sstream>
#include <string>

inline int count_text(const std::string& text, const std::string& part) {
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        count++;
    }
    return count;
}

struct NidsPage {
    ProgramRun run;
    std::string text; // the PostScript file
    [[nodiscard]] int figures() const { return count_text(text, "\n%%FA:"); }
};

// `args`: files and options, split at blanks.
inline NidsPage nids_page(const TempDir& dir, const std::string& args) {
    ProgramCall call;
    std::istringstream words("-inp nids -de p,page.ps -fp " ZYR_SOURCE_DIR "/etc " + args);
    for (std::string word; words >> word;) {
        call.args.push_back(word);
    }
    call.directory = dir.path();
    NidsPage page{run_program(ZYR_PROGRAM, call), ""};
    page.text = read_text(dir.path() + "/page.ps");
    return page;
}
