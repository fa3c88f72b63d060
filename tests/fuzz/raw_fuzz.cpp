// A raw file, drawn as an overlay and as a plot of its own; its first line is
// also the field and format behind its name.
#include "zyrraw.h"

#include "map.h"
#include "maptran.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <cstdint>
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int id = open_output();
    static const TempDir dir;
    if (id < 0 || size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string first = text.substr(0, text.find('\n'));
    // Resources and files of the machine are not for a fuzzer to name.
    if (text.find("f=") != std::string::npos || text.find("F=") != std::string::npos) {
        return 0;
    }
    const std::string name = dir.write("a.raw", text);
    constexpr int codes[] = {proj_pstereo, proj_latlon,   proj_lambert,
                             proj_xlogp,   proj_category, proj_pixel};
    Domain domain;
    domain.proj = codes[data[0] % 6];
    domain.clat = 39;
    domain.clon = -97;
    domain.nx = domain.ny = 5;
    domain.dx = domain.dy = 5;
    MAP_setup(&domain);
    RAW_plot_file(name.c_str(), 0);
    RAW_plot_file((name + "-" + first).c_str(), 1);
    RAW_plot_file((name + ":" + first).c_str(), 0);
    return 0;
}
