// A map database in either form, drawn on the projection that the first byte
// chooses, of the whole earth or of a small part of it.
#include "map.h"
#include "maptran.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <cstdint>
#include <cstdio>

namespace {

int open_output() {
    MESS_set(0, 0);
    RES_put("device", "p,/dev/null");
    int id = 0;
    Gws_type type = ws_none;
    Glim offset{};
    GPH_setup(&id, &type, 1.5F, &offset);
    return id;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int id = open_output();
    if (size < 2) {
        return id < 0 ? -1 : 0;
    }
    Domain domain;
    domain.proj = data[0] % 10;
    domain.clat = data[0] % 3 == 0 ? -90.0F : 40.0F;
    domain.clon = data[0] < 128 ? -97.0F : 180.0F;
    domain.nx = domain.ny = 25;
    domain.dx = domain.dy = (data[0] & 32U) != 0 ? 0.1F : 5.0F;
    MAP_setup(&domain);
    MAP_set_fill(data[0] >> 4 & 1);
    std::FILE* file = fmemopen(const_cast<std::uint8_t*>(data + 1), size - 1, "rb");
    if (file != nullptr) {
        MAP_map(file);
        (void)std::fclose(file);
    }
    return 0;
}
