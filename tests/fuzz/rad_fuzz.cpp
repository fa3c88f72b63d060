// Texts of radar summaries: the grid and the reports of both kinds.
#include "zyrrad.h"

#include "memory_file.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    if (size > 0 && (*data == 'C' || *data == 0x89)) {
        return 0; // netCDF has a target of its own
    }
    const MemoryFile file({data, data + size});
    int type = 0;
    const int fd = RAD_open(file.name(), 0, &type);
    static RAD_info info;
    RAD_getinfo(fd, &info);
    RAD_rewind(fd);
    MDR_report mdr;
    for (int i = 0; MDR_read(fd, &mdr, 0, &i) == 0; ++i) {
    }
    RAD_rewind(fd);
    RCM_report rcm;
    while (RCM_read(fd, &rcm, 0, nullptr) == 1) {
    }
    RAD_close(fd);
    return 0;
}
