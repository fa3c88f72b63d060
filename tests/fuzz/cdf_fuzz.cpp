// Radar summaries in netCDF, classic and in HDF5: the check of the header, the
// library, the reports.
#include "zyrrad.h"

#include "cdf.h"
#include "memory_file.h"

#include <array>
#include <cstdint>
#include <cstdio>

#ifdef ZYR_SANITIZED
// What the libraries keep of a damaged netCDF-4 file is theirs.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libhdf5\nleak:libnetcdf\n";
}
#endif

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    if (size < 4 || (data[0] != 'C' && data[0] != 0x89)) {
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
    // What summaries do not ask for, or not in this way.
    std::array<int, cdf_max_dims> dims{};
    std::array<char, 9> text{};
    std::array<signed char, 4> bytes{};
    float number = 0;
    CDF_print_errors(1);
    for (const char* name : {"none", "region", "config", "station", "mdr_x", "azimuth"}) {
        const int var = CDF_get_var(name);
        CDF_get_dim_size(CDF_get_dim(name));
        CDF_get_var_dims(var, dims.data());
        CDF_get_glob_att(name, text.data(), text.size());
        CDF_set_pos(0);
        CDF_get_str(var, text.data(), text.size());
        CDF_get_byte(var, bytes.data());
        CDF_get_byte_array(var, bytes.data(), bytes.size());
        CDF_get_number(var, &number);
    }
    RAD_close(fd);
    CDF_close(fd);
    CDF_get_glob_att("none", text.data(), text.size()); // of no file
    CDF_open(nullptr, "");
    static bool once = false; // 16 MB are read
    if (std::FILE* endless = once ? nullptr : std::fopen("/dev/zero", "rb")) {
        once = true;
        CDF_open(endless, "");
        (void)std::fclose(endless);
    }
    return 0;
}
