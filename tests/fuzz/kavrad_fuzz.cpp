// A KAVRAD file: the header, and every packet of every line.
#include "kavrad.h"

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    std::FILE* file = size > 0 ? fmemopen(const_cast<std::uint8_t*>(data), size, "rb") : nullptr;
    if (file == nullptr) {
        return 0;
    }
    KAVRAD_info info;
    KAVRAD_header(file, &info);
    KAVRAD_packet packet;
    for (int twice = 0; twice < 2; ++twice) {
        while (KAVRAD_get_packet(file, &packet) != 0) {
        }
        KAVRAD_rewind(file);
    }
    (void)std::fclose(file);
    return 0;
}
