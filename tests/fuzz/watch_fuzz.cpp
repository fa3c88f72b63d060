// Watch bulletins: any bytes as a file of them, at a time of its own, drawn about Oklahoma.
#include "map.h"
#include "maptran.h"
#include "plot_session.h"
#include "region.h"
#include "run_program.h"
#include "watch.h"

#include "zyr.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int open_output(const char* watch_path) {
    RES_put("watch_path", watch_path);
    RES_put("color_watch", "lblue:wi=2,red:fp=hat");
    return open_bare_page("p,/dev/null");
}

// Around Oklahoma, or with the edge of the map there.
void plot_on(const char* text) {
    Domain domain;
    DOM_decode(text, &domain);
    MAP_setup(&domain);
    WATCH_plot();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const int id = open_output(dir.path().c_str());
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string name = dir.rewrite("2013052020.wat", text);
    const Date late = {2013, 5, 25, missing, missing, 22, 0, 0}; // without a file
    WATCH_decode(&late);
    WATCH_decode_file("/nonexistent", &late, 0);
    const Date date = {2013, 5, 20, missing, missing, 22, 0, 0};
    if (id >= 0) {
        WATCH_decode(&date);
        WATCH_set_label(size % 2 == 0 ? 1 : 0);
        plot_on("ps,35,-97,25,25,1,1");
        plot_on("ll:0:82.4,36,-87,61,41,.5,.5");
    }
    WATCH_decode_file(name.c_str(), &date, 1369087200L);
    return 0;
}
