// A symbol file; each of its words is drawn as a symbol and as a cloud cover.
#include "wx_symb.h"

#include "map.h"
#include "maptran.h"
#include "plot_session.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <cstdint>
#include <sstream>
#include <string>

namespace {

int open_output() {
    const int id = open_bare_page("p,/dev/null");
    RES_put("file_path", "/nonexistent");
    return id;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int id = open_output();
    static const TempDir dir;
    static unsigned count = 0;
    if (id < 0 || size < 2) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data), size);
    // A file that was read is kept: each run names its own.
    const std::string name = dir.rewrite("f" + std::to_string(count++ % 100), text);
    WX_symb(1, 2, "", 3);
    WX_symb_file("none");
    WX_symb_file(name.c_str());
    WX_symb_file(name.c_str());
    GPH_text_align(data[0] % 4, data[1] % 6);
    std::istringstream words(text);
    int symbols = 0;
    for (std::string word; symbols < 200 && words >> word; ++symbols) {
        WX_symb(1, 2, word.c_str(), 3);
        WX_cloud(1, 2, 3, word[0]);
    }
    return 0;
}
