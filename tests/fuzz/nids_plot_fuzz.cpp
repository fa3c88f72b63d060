// Fuzz target: a NIDS product from its wrapper to the page.
#include "nids_plt.h"

#include "map.h"
#include "memory_file.h"
#include "plot_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool open_session() {
    RES_put("plot_param", "site,dist,storms");
    RES_put("variable", "comp,track,table,model");
    return open_plot_session("p,/dev/null") && NIDS_plot_param() == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool opened = open_session();
    const MemoryFile file({data, data + size});
    if (NIDS_open_file(file.name()) != 0) {
        Domain domain = mercator_domain();
        MAP_setup(&domain);
        NIDS_plot_frame();
    }
    NIDS_close_file();
    return 0;
}
