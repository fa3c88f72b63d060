// A map list as a setting and, after a line "==", a file "list" that it may name as a
// list, a database, a raw file or a metafile. No other file can be found.
#include "map.h"
#include "maptran.h"
#include "plot_session.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace {

const TempDir& dir() {
    static const TempDir own;
    return own;
}

int open_output() {
    const int id = open_bare_page("p,/dev/null");
    RES_put("file_path", dir().path().c_str());
    RES_put("raw_path", dir().path().c_str());
    return id;
}

// A file that exists, or a pipe, is not for a fuzzer to open; nor is a resource that a
// raw file names for it to print.
bool is_safe(const std::string& text, const std::string& list) {
    return text.find_first_of("/|~.") == std::string::npos && list.find('/') == std::string::npos &&
           list.find("f=") == std::string::npos && list.find("F=") == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int id = open_output();
    if (id < 0 || size < 2) {
        return 0;
    }
    const std::string all(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::size_t cut = std::min(all.find("==\n"), all.size());
    const std::string text = all.substr(0, cut);
    const std::string list = cut < all.size() ? all.substr(cut + 3) : "";
    if (!is_safe(text, list)) {
        return 0;
    }
    dir().rewrite("list", list);
    constexpr int codes[] = {proj_pstereo, proj_latlon, proj_lambert, proj_xy, proj_xlogp};
    Domain domain;
    domain.proj = codes[data[0] % 5];
    domain.clat = 39;
    domain.clon = 97;
    domain.nx = domain.ny = 5;
    domain.dx = domain.dy = 5;
    MAP_setup(&domain);
    RES_put_again("map_file", text.c_str());
    MAP_file(data[0] < 128 ? nullptr : "fi:list");
    MAP_latlon(static_cast<float>(data[0] % 3 * 10), 15, 0, 0);
    MAP_fill_cont(data[0] / 8 % 2);
    MAP_set_format(data[0] < 64 ? "" : "blue:w2");
    MAP_draw(data[0] % 8);
    return 0;
}
