// data_tree: finds the data tree of the program without being told, from where
// the program itself lies. No state.
#include "data_tree.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* fixed_places[] = {".", "/home/zyr/etc", "/usr/local/zyr/etc"};
constexpr const char* beside_program[] = {"../zyr/etc", "../share/zyrrad"};

// The program that a shell finds by the name: a path as it is, else in a directory of
// PATH; empty if there is none.
fs::path find_program(const std::string& typed) {
    if (typed.find('/') != std::string::npos) {
        return typed;
    }
    const char* search = std::getenv("PATH");
    std::string_view rest = search != nullptr ? search : "";
    while (!typed.empty() && !rest.empty()) {
        const std::string_view one = rest.substr(0, rest.find(':'));
        fs::path program = fs::path(one.empty() ? "." : one) / typed;
        std::error_code failed;
        if (fs::is_regular_file(program, failed) && access(program.c_str(), X_OK) == 0) {
            return program;
        }
        rest.remove_prefix(std::min(one.size() + 1, rest.size()));
    }
    return {};
}

// Directory of the running program; empty where neither the system nor the name that it
// was started by says which it is.
fs::path program_directory(const char* typed) {
    std::error_code failed;
    const fs::path running = fs::read_symlink("/proc/self/exe", failed);
    if (!running.empty()) {
        return running.parent_path();
    }
    const fs::path program = find_program(typed != nullptr ? typed : "");
    return program.empty() ? program : fs::canonical(program, failed).parent_path();
}

// The "etc" of the source tree above a directory; empty if there is none.
fs::path source_tree(fs::path directory) {
    constexpr int levels = 4; // such as build/release and what is built into it
    std::error_code failed;
    for (int i = 0; i < levels && directory.has_relative_path(); ++i) {
        if (fs::exists(directory / "etc/zyr.cfg", failed) &&
            fs::exists(directory / "zyrrad.cpp", failed)) {
            return directory / "etc";
        }
        directory = directory.parent_path();
    }
    return {};
}

} // namespace

std::vector<std::string> data_tree_search(const char* program) {
    std::vector<std::string> places(std::begin(fixed_places), std::end(fixed_places));
    const auto add = [&places](const fs::path& place) {
        const std::string name = place.lexically_normal().string();
        if (!name.empty() && std::find(places.begin(), places.end(), name) == places.end()) {
            places.push_back(name);
        }
    };
    const fs::path directory = program_directory(program);
    if (!directory.empty()) {
        for (const char* place : beside_program) {
            add(directory / place);
        }
        add(source_tree(directory));
    }
    return places;
}
