// An RRWDS image, from its header to the page.
#include "rrwds.h"

#include "files.h"
#include "memory_file.h"
#include "plot_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool opened = open_plot_session("p,/dev/null");
    const MemoryFile file({data, data + size});
    FILE_set_filename(file.name());
    RRWDS_set_date(nullptr);
    Domain domain;
    DOM_init(&domain);
    Domain elsewhere = mercator_domain();
    RRWDS_domain(&elsewhere);
    RRWDS_plot_param();
    RRWDS_plot(&domain); // with the session open: a redraw
    if (RRWDS_open_file(file.name()) == 1) {
        RRWDS_rewind_file();
        RRWDS_callback(0, "", 0.5F, 0.5F);
    }
    RRWDS_close_file();
    RRWDS_rewind_file();
    return 0;
}
