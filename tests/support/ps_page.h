// ps_page.h: workstations that write into a file of the test's own, whose text
// can be taken.
#pragma once

#include "gks.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

inline void write_text(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// A name in the temporary directory that other test processes do not use.
inline std::string temp_name(const std::string& name) {
    return std::filesystem::temp_directory_path() / (std::to_string(getpid()) + name);
}

// The lines between the one that begins with `from` and the next that begins
// with `to`.
inline std::string text_between(const std::string& text, const std::string& from,
                                const std::string& to) {
    std::istringstream in(text);
    std::string out;
    bool inside = false;
    for (std::string line; std::getline(in, line);) {
        if (inside && line.starts_with(to))
            break;
        if (inside)
            out += line + "\n";
        inside = inside || line.starts_with(from);
    }
    return out;
}

// Width, height and offset of the area that a device opens.
inline std::array<int, 4> device_area() {
    std::array<int, 4> area{};
    gget_win_size(&area[0], &area[1]);
    gget_win_offset(&area[2], &area[3]);
    return area;
}

// A file device with its own file, which goes with the object.
class FilePage {
public:
    // `conn` stands after the name, `mode` in front of it.
    FilePage(Gws_type type, const std::string& conn, const std::string& mode = "")
        : path(temp_name("page")) {
        for (const char* name :
             {"zyrprint", "zyrps_param", "zyrps_geometry", "PSGEOMETRY", "PSCOLOR"})
            unsetenv(name);
        RES_put("file_path", ZYR_SOURCE_DIR "/etc");
        gopen_gks(nullptr, 0);
        gopen_ws(1, (mode + path + "," + conn).c_str(), type);
    }
    ~FilePage() {
        whole();
        std::filesystem::remove(path);
    }
    FilePage(const FilePage&) = delete;
    FilePage& operator=(const FilePage&) = delete;
    // Closes the workstation and returns the whole file.
    std::string whole() {
        gclose_ws(1);
        gclose_gks();
        return read_text(path);
    }
    const std::string path;
};

class PsPage : public FilePage {
public:
    // With `append` the name begins with "+".
    explicit PsPage(const std::string& options = "", bool append = false)
        : FilePage(ws_postscript, options, append ? "+" : "") {
        gmessage(1, "drawing");
    }
    // What was drawn since the opening alone.
    std::string drawn() { return text_between(whole(), "%%Message: drawing", "%%End of plot"); }
};
