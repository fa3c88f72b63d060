// A file of any kind as --info and "-inp auto" see it. The seeds are some of those of
// the readers, and the first bytes of files that none of them reads.
#include "rad_info.h"

#include "data_file.h"
#include "files.h"
#include "memory_file.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef ZYR_SANITIZED
// What the libraries keep of a damaged netCDF-4 file is theirs.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libhdf5\nleak:libnetcdf\n";
}
#endif

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// All bytes are there again after going back, which is all that a stream can.
void read_twice(const char* name) {
    const FILE_ptr file(FILE_open_data(name));
    const auto pass = [&file] {
        std::array<char, 1000> bytes{};
        std::size_t all = 0;
        std::size_t n = 0;
        do {
            n = std::fread(bytes.data(), 1, bytes.size(), file.get());
            all += n;
        } while (n > 0);
        return all;
    };
    const std::size_t all = pass();
    std::fseek(file.get(), 1, SEEK_END);
    std::rewind(file.get());
    if (std::ftell(file.get()) != 0 || pass() != all) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    const MemoryFile file({data, data + size});
    const std::array<const char*, 2> files = {file.name(), "/dev/null/none"};
    const int count = size % 8 == 0 ? 2 : 1; // each of them reads the sites first
    RAD_print_files(count, files.data(), size % 2 == 0);
    read_twice(file.name());
    for (const char* name : {files[1], "", files[0]}) {
        RES_put_again("input", "auto");
        RES_put_again("filename", name);
        const bool found = RAD_find_input() == 0;
        if (found == (std::strcmp(RES_get("input"), "auto") == 0)) {
            std::abort();
        }
    }
    return 0;
}
