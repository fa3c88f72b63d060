// One entry of a map list after another, as the words of a text. No file can be
// found, so that the language alone is at work.
#include "map.h"
#include "maptran.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <cstdint>
#include <cstdio>
#include <string>

namespace {

int open_output() {
    MESS_set(0, 0);
    RES_put("device", "p,/dev/null");
    RES_put("file_path", "/nonexistent");
    int id = 0;
    Gws_type type = ws_none;
    Glim offset{};
    GPH_setup(&id, &type, 1.5F, &offset);
    FLAG_resetplot(1);
    return id;
}

// A file that exists, or a pipe, is not for a fuzzer to open.
bool is_safe(const std::string& text) {
    return text.find_first_of("/|~.") == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int id = open_output();
    if (id < 0 || size < 2) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    if (!is_safe(text)) {
        return 0;
    }
    constexpr int codes[] = {proj_pstereo, proj_latlon, proj_lambert, proj_xy, proj_xlogp};
    Domain domain;
    domain.proj = codes[data[0] % 5];
    domain.clat = 39;
    domain.clon = 97;
    domain.nx = domain.ny = 5;
    domain.dx = domain.dy = 5;
    MAP_setup(&domain);
    RES_put("map_file", text.c_str());
    MAP_draw(data[0] % 8);
    return 0;
}
