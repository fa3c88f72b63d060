// Radar Coded Messages: every message of a file, and how it is printed.
#include "rarep.h"

#include <cstdint>
#include <cstdio>
#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    std::FILE* file = size > 0 ? fmemopen(const_cast<std::uint8_t*>(data), size, "rb") : nullptr;
    if (file == nullptr) {
        return 0;
    }
    const auto report = std::make_unique<RCM_report>();
    while (RCM_read_site(file, report.get()) >= 0) {
        RCM_print(mess_mess, report.get());
    }
    (void)std::fclose(file);
    return 0;
}
