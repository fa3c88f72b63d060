// Fuzz target: a NIDS product from its wrapper to the page.
#include "nids_plt.h"

#include "data_file.h"
#include "files.h"
#include "map.h"
#include "memory_file.h"
#include "nids_probe.h"
#include "plot_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool open_session() {
    RES_put("plot_param", "site,dist,storms");
    RES_put("variable", "comp,track,table,model");
    return open_plot_session("p,/dev/null") && NIDS_plot_param() == 0;
}

// What lies under the pointer, some way off the site.
void ask(const char* name) {
    const FILE_ptr file(FILE_open_data(name));
    NIDS_info info;
    if (file == nullptr || NIDS_get_header(file.get(), &info) == 0) {
        return;
    }
    NIDS_frame frame;
    frame.ifile = file.get();
    frame.info = &info;
    frame.own = map_make(info.domain);
    frame.own.tran(info.domain.clat, info.domain.clon, &frame.site.x, &frame.site.y);
    nids_value_at(frame, {frame.site.x + 0.3F, frame.site.y - 0.2F});
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
    ask(file.name());
    return 0;
}
