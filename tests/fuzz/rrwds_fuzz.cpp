// An RRWDS image: the header, with its station.
#include "rrwds.h"

#include "zyrresrc.h"

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    std::FILE* file = size > 0 ? fmemopen(const_cast<std::uint8_t*>(data), size, "rb") : nullptr;
    if (file == nullptr) {
        return 0;
    }
    NIDS_info info;
    RRWDS_get_header(file, &info);
    (void)std::fclose(file);
    return 0;
}
