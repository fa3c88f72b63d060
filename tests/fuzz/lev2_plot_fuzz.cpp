// Fuzz target: a Level II volume from its header to the page, each moment, on a
// domain of another projection, so that every corner goes through both
// transformations.
#include "lev2_plt.h"

#include "files.h"
#include "lev2_walk.h"
#include "plt_tool.h"
#include "region.h"
#include "zyrresrc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool open_session() {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", "p,/dev/null");
    RES_put("plot_param", "site,dist");
    MESS_set(0, 0);
    FLAG_resetplot(1);
    FLAG_setplot(8, 0);
    return PLT_open(1.5F) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool opened = open_session();
    const MemoryFile file({data, data + size});
    for (const char* variable : {"ref1", "vel2", "spect2"}) {
        RES_put("variable", variable);
        FILE_set_filename(file.name());
        LEV2_set_date(nullptr);
        Domain domain;
        DOM_decode("merc,35.3,-97.3,41,31,.1,.1", &domain);
        LEV2_plot(&domain); // with the session open: a redraw
    }
    return 0;
}
