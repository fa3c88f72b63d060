// ps_ink.h: a PostScript page as what is painted: one text for each path that is
// stroked or filled, with all that is in force for it.
#pragma once

#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

inline bool ends_with_word(const std::string& line, const std::string& word) {
    return line == word || line.ends_with(" " + word);
}

inline std::vector<std::string> ps_ink(const std::string& page) {
    std::vector<std::string> ink;
    std::string color, width, dashes, clip, path;
    std::istringstream in(page);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("%"))
            continue;
        if (ends_with_word(line, "setrgbcolor") || ends_with_word(line, "setgray"))
            color = line;
        else if (ends_with_word(line, "lw"))
            width = " width " + std::to_string(std::strtod(line.c_str(), nullptr)) + " ";
        else if (ends_with_word(line, "setdash"))
            dashes = line;
        else if (line == "np")
            path.clear();
        else if (ends_with_word(line, "mv") || ends_with_word(line, "ln"))
            path += line + "; ";
        else if (line == "clip")
            clip = std::exchange(path, "");
        else if ((line == "stroke" && !path.empty()) || line == "fill") {
            std::string& all = ink.emplace_back(line);
            const std::string pen = line == "fill" ? "" : width + dashes;
            for (const std::string& part :
                 {std::string(" "), color, pen, std::string(" | "), clip, std::string("| "), path})
                all += part;
        }
    }
    return ink;
}
