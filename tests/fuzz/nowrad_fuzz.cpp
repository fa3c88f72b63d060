// A NOWRad file: the header, and every packet of every line.
#include "nowrad.h"

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    std::FILE* file = size > 0 ? fmemopen(const_cast<std::uint8_t*>(data), size, "rb") : nullptr;
    if (file == nullptr) {
        return 0;
    }
    NOWRad_info info;
    NOWRad_header(file, &info);
    NOWRad_packet packet;
    int number = 0;
    for (int twice = 0; twice < 2; ++twice) {
        while (NOWRad_line(file, &number) != 0) {
            while (NOWRad_get_packet(file, &packet) != 0) {
            }
        }
        NOWRad_rewind(file);
    }
    (void)std::fclose(file);
    return 0;
}
