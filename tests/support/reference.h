// reference.h: what an independent decoder found in the real files that lie
// beside the tree (reference.jsonl, one line of JSON a file).
#pragma once

#include "zyr.h"

#include <cstdlib>
#include <fstream>
#include <string>

constexpr char real_data[] = ZYR_REAL_DATA "/";

// The number, or the text, after a key, searched from `from` on; `missing`, or
// empty, for none.
inline double json_number(const std::string& json, const std::string& key, std::size_t from = 0) {
    const std::size_t at = json.find("\"" + key + "\": ", from);
    return at == std::string::npos ? missing
                                   : std::strtod(json.c_str() + at + key.size() + 4, nullptr);
}
inline std::string json_text(const std::string& json, const std::string& key) {
    const std::size_t at = json.find("\"" + key + "\": \"");
    const std::size_t begin = at == std::string::npos ? json.size() : at + key.size() + 5;
    return json.substr(begin, json.find('"', begin) - begin);
}

// Calls `check(path, line)` for the files of a directory. Returns whether there
// is a reference.
template <typename Check> bool each_reference(const std::string& directory, Check check) {
    std::ifstream reference(real_data + std::string("reference.jsonl"));
    for (std::string line; std::getline(reference, line);) {
        const std::string path = json_text(line, "path");
        if (path.starts_with(directory)) {
            check(path, line);
        }
    }
    return reference.eof();
}
