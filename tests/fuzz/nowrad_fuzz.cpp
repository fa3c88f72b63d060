// A NOWRad file: the header, and every packet of every line, and its picture.
#include "nowrad.h"

#include "files.h"
#include "map.h"
#include "memory_file.h"
#include "plot_session.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// On a domain of another projection than the file's, then asked by the user.
void draw(const std::vector<std::uint8_t>& bytes) {
    static const bool opened = open_plot_session("p,/dev/null");
    RES_put_again("plot_param", bytes.size() % 2 == 0 ? "" : "run=2,site");
    if (!opened || NOWRad_open_file("/dev/null/none") != 0) {
        std::abort();
    }
    const MemoryFile file(bytes);
    FILE_set_filename(file.name());
    NOWRad_set_date(nullptr);
    Domain domain = mercator_domain();
    NOWRad_plot_param();
    NOWRad_plot(&domain); // with the session open: a redraw
    if (NOWRad_open_file(file.name()) == 1) {
        MAP_setup(&domain);
        NOWRad_plot_summary();
        NOWRad_rewind_file();
    }
    NOWRad_close_file();
    NOWRad_close_file(); // is closed
    NOWRad_callback(0, "", 0.5F, 0.5F);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    std::FILE* file = size > 0 ? fmemopen(const_cast<std::uint8_t*>(data), size, "rb") : nullptr;
    if (file == nullptr) {
        return 0;
    }
    NOWRad_info info;
    NOWRad_header(file, &info);
    NOWRad_packet packet;
    int number = 0;
    for (int twice = 0; twice < 2; ++twice) {
        while (NOWRad_line(file, &number) != 0) {
            while (NOWRad_get_packet(file, &packet) != 0) {
            }
        }
        NOWRad_rewind(file);
    }
    (void)std::fclose(file);
    draw({data, data + size});
    return 0;
}
