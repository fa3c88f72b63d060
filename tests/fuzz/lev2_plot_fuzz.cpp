// Fuzz target: a Level II volume from its header to the page, each moment.
#include "lev2_plt.h"

#include "files.h"
#include "memory_file.h"
#include "plot_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool open_session() {
    RES_put("plot_param", "site,dist");
    return open_plot_session("p,/dev/null") && LEV2_plot_param() == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool opened = open_session();
    const MemoryFile file({data, data + size});
    for (const char* variable : {"ref1", "vel2", "spect2", "zdr", "phi1", "rho1", "cfp1"}) {
        RES_put("variable", variable);
        FILE_set_filename(file.name());
        LEV2_set_date(nullptr);
        Domain domain = mercator_domain();
        LEV2_plot(&domain); // with the session open: a redraw
    }
    return 0;
}
