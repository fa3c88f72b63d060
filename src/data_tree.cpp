// data_tree: finds the data tree of the program without being told, from where
// the program itself lies. No state.
#include "data_tree.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr const char* fixed_places[] = {".", "/home/zyr/etc", "/usr/local/zyr/etc"};
constexpr const char* beside_program[] = {"../zyr/etc", "../share/zyrrad"};

// Directory of the running program, empty where the system does not say.
fs::path program_directory() {
    std::error_code failed;
    return fs::read_symlink("/proc/self/exe", failed).parent_path();
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

std::vector<std::string> data_tree_search() {
    std::vector<std::string> places(std::begin(fixed_places), std::end(fixed_places));
    const auto add = [&places](const fs::path& place) {
        const std::string name = place.lexically_normal().string();
        if (!name.empty() && std::find(places.begin(), places.end(), name) == places.end()) {
            places.push_back(name);
        }
    };
    const fs::path directory = program_directory();
    if (!directory.empty()) {
        for (const char* place : beside_program) {
            add(directory / place);
        }
        add(source_tree(directory));
    }
    return places;
}
