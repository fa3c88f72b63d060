// Radar summaries in netCDF: the check of the header, the library, the reports.
#include "zyrrad.h"

#include "memory_file.h"

#include <algorithm>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    if (size < 4 || data[0] != 'C') {
        return 0; // texts have a target of their own
    }
    const MemoryFile file({data, data + size});
    int type = 0;
    const int fd = RAD_open(file.name(), 0, &type);
    static RAD_info info;
    RAD_getinfo(fd, &info);
    RAD_rewind(fd);
    MDR_report report;
    constexpr int most = 200; // of many alike
    for (int i = 0; i < most && MDR_read(fd, &report, 0, &i) == 0; ++i) {
    }
    RAD_close(fd);
    return 0;
}
