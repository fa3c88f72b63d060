// A text metafile laid over a page, which must have its state back afterwards.

#include "gks.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

// Number and limits of the current transformation.
std::string page() {
    int n = 0;
    int err = 0;
    Gtran tran{};
    ginq_cur_norm_tran_num(&err, &n);
    ginq_norm_tran(n, &err, &tran);
    std::string text = std::to_string(n);
    for (const Glim& lim : {tran.win, tran.vp}) {
        for (const float value : {lim.x_min, lim.x_max, lim.y_min, lim.y_max}) {
            text += " " + std::to_string(value);
        }
    }
    return text;
}

int open_output() {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    gopen_gks(nullptr, 0);
    gopen_ws(1, "/dev/null,color", ws_postscript);
    const Glim window = {-3.0F, 4.0F, 30.0F, 50.0F};
    gset_win(tran_map, &window);
    gsel_norm_tran(tran_map);
    return memfd_create("metafile", 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = open_output();
    if (ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) {
        return -1;
    }
    const std::string before = page();
    goverlay_metafile(("/proc/self/fd/" + std::to_string(fd)).c_str());
    if (page() != before) {
        std::abort();
    }
    return 0;
}
