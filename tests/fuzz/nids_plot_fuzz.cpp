// Fuzz target: a NIDS product from its wrapper to the page; one of odd size also
// by the format's own document. The seeds are some of those of nids_fuzz.
#include "nids_plt.h"

#include "data_file.h"
#include "files.h"
#include "map.h"
#include "memory_file.h"
#include "nids_probe.h"
#include "plot_session.h"
#include "state_keeper.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool open_session() {
    RES_put("variable", "comp,track,table,model");
    return open_plot_session("p,/dev/null");
}

// Draws the open product by these words of plot_param; those of the input before are
// gone.
void plot(const char* name, const char* words) {
    static const StateKeeper keeper = [] {
        StateKeeper plotter;
        keep_nids_plt(plotter);
        return plotter;
    }();
    keeper.restore();
    RES_put_again("plot_param", words);
    NIDS_plot_param();
    if (NIDS_open_file(name) != 0) {
        Domain domain = mercator_domain();
        MAP_setup(&domain);
        NIDS_plot_frame();
    }
    NIDS_close_file();
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
    plot(file.name(), "site,dist,storms");
    if (size % 2 != 0) {
        plot(file.name(), "exact,strong,numplt1,clutter9");
    }
    ask(file.name());
    return 0;
}
