// Fuzz target: a NIDS product from its wrapper to the page, on a domain of
// another projection, so that every corner goes through both transformations.
#include "nids_plt.h"

#include "map.h"
#include "plt_tool.h"
#include "region.h"
#include "zyrresrc.h"

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

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
    const int fd = memfd_create("product", 0);
    if (write(fd, data, size) == static_cast<ssize_t>(size)) {
        const std::string name = "/proc/self/fd/" + std::to_string(fd);
        if (NIDS_open_file(name.c_str()) != 0) {
            Domain domain;
            DOM_decode("merc,35.3,-97.3,41,31,.1,.1", &domain);
            MAP_setup(&domain);
            NIDS_plot_frame();
        }
        NIDS_close_file();
    }
    close(fd);
    return 0;
}
