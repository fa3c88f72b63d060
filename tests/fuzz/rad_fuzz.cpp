// Texts of radar summaries: the grid and the reports of both kinds.
#include "zyrrad.h"

#include "memory_file.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    if (size > 0 && (*data == 'C' || *data == 0x89)) {
        return 0; // netCDF has a target of its own
    }
    const MemoryFile file({data, data + size});
    int type = RAD_chktype(file.name());
    RAD_open(file.name(), 0, &type); // closed by the next
    const int fd = RAD_open(file.name(), 0, &type);
    RAD_tell_kind("fuzz");
    static RAD_info info;
    if (size == 0 && (RAD_open("/dev/null/none", 0, &type) >= 0 || RAD_getinfo(-1, &info) == 0)) {
        std::abort();
    }
    RAD_getinfo(fd, &info);
    RAD_rewind(fd);
    MDR_report mdr;
    int number = 0;
    for (; MDR_read(fd, &mdr, 0, &number) == 0; ++number) {
    }
    for (const int again : {0, number + 1}) { // back, and past the end
        MDR_read(fd, &mdr, 0, &again);
    }
    RAD_rewind(fd);
    RCM_report rcm;
    while (RCM_read(fd, &rcm, 0, nullptr) == 1) {
    }
    RAD_close(fd);
    return 0;
}
