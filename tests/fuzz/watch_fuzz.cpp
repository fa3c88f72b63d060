// Watch bulletins: any bytes as a file of them, at a time of its own.
#include "watch.h"

#include "memory_file.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    const MemoryFile file(std::vector<std::uint8_t>(data, data + size));
    const Date date = {2013, 5, 20, missing, missing, 12, 0, 0};
    WATCH_decode_file(file.name(), &date, 1369087200L);
    return 0;
}
