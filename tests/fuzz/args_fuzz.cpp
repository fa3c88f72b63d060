// A command line: a word a line, one of the form "zyrNAME=VALUE" of the environment; after
// a line "==" the defaults file. Words that open a log or a pipe are left out.
#include "files.h"
#include "region.h"
#include "res_list.h"
#include "res_table.h"
#include "run_program.h"
#include "state_keeper.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr auto res_key = res_listed<true>();
constexpr auto res_pos = res_listed<false>();

bool is_safe(std::string text) {
    low_string(text.data());
    return text.find("log") == std::string::npos && text.find('|') == std::string::npos &&
           text.find("var") == std::string::npos && text.find('/') == std::string::npos;
}

// What a run reads is put into its environment, and out of it afterwards.
struct Environment {
    std::vector<std::string> names;

    bool take(const std::string& word) {
        const std::size_t equals = word.find('=');
        if (!word.starts_with("zyr") || equals == std::string::npos) {
            return false;
        }
        names.push_back(word.substr(0, equals));
        setenv(names.back().c_str(), word.c_str() + equals + 1, 1);
        return true;
    }
    ~Environment() {
        for (const std::string& name : names) {
            unsetenv(name.c_str());
        }
    }
};

void start(std::vector<std::string> words) {
    std::vector<char*> argv;
    argv.reserve(words.size());
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    RES_init(static_cast<int>(argv.size()), argv.data(), res_key.data(), res_pos.data());
}

// Starts that leave no other: in a directory that is not the user's, without any
// defaults, and with those of the data tree. Each has a process of its own.
void start_elsewhere(const TempDir& dir) {
    dir.write("place/zyr.cfg", "Zyr.label: |date\n" + std::string(100000, '\n'));
    struct Start {
        const char* places; // null: not set
        std::vector<std::string> words;
    };
    for (const Start& one : std::initializer_list<Start>{
             {":.",    {"zyrrad"}                    },
             {"/none", {"zyrrad"}                    },
             {nullptr, {"zyrrad"}                    },
             {nullptr, {"zyrrad", "-default", "none"}},
    }) {
        const pid_t child = fork();
        if (child == 0) {
            const bool there = chdir((dir.path() + "/place").c_str()) == 0;
            if (one.places != nullptr) {
                setenv("zyrdefault", one.places, 1);
            }
            start(one.words);
            _exit(there ? 0 : 1);
        }
        int status = 1;
        if (waitpid(child, &status, 0) != child || status != 0) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const StateKeeper first = [] {
        MESS_set(0, 0);
        RES_set_actions({.hour = FILE_set_time, .domain = DOM_decode});
        start_elsewhere(dir);
        StateKeeper keeper;
        keep_date(keeper);
        keep_files(keeper);
        keep_flag(keeper);
        keep_region(keeper);
        return keeper;
    }();
    const std::string all(reinterpret_cast<const char*>(data), size);
    constexpr std::size_t longest = 2000; // of a line that a person types
    const std::size_t cut = std::min(all.find("==\n"), all.size());
    if (cut > longest || !is_safe(all)) {
        return 0;
    }
    first.restore();
    MESS_set(0, 0);
    std::string file = dir.rewrite("zyr.cfg", cut < all.size() ? all.substr(cut + 3) : "");
    std::vector<std::string> words = {"zyrrad"};
    Environment environment;
    environment.take("zyrdefault=" + dir.path() + (size % 4 == 0 ? ":none:+tag:#7" : ""));
    std::istringstream lines(all.substr(0, cut));
    for (std::string word; std::getline(lines, word);) {
        if (!environment.take(word)) {
            words.push_back(word == "DIR" ? dir.path() : word);
        }
    }
    start(words);
    MESS_set(0, 0);
    for (const res_obj* entry = RES_first(); entry != nullptr; entry = entry->next) {
        if (RES_get(entry->name) == nullptr) {
            std::abort();
        }
    }
    RES_is_typed("region");
    RES_list();
    RES_unknown_keys();
    RES_unknown_options();
    return 0;
}
