// A station file; its first line is also taken as selection strings and as the
// identifier to look for.
#include "zyrcty.h"

#include "maptran.h"
#include "zyrresrc.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

namespace {

std::string scratch_file() {
    MESS_set(0, 0);
    return "/tmp/zyrcty_fuzz." + std::to_string(getpid());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string name = scratch_file();
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) {
        return 0;
    }
    (void)std::fwrite(data, 1, size, file);
    (void)std::fclose(file);
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string first = text.substr(0, text.find('\n'));
    RES_put("identifier", first.c_str());
    Domain domain;
    domain.proj = proj_pstereo;
    domain.clat = 35;
    domain.clon = -97;
    domain.nx = domain.ny = 25;
    domain.dx = domain.dy = 2;
    CTY_data city;
    CTY_info info;
    if (CTY_open(nullptr, 0, missing) != -1 || CTY_rewind(-1) != -1 ||
        CTY_getinfo(-1, &info) != -1) {
        std::abort();
    }
    const int fd = CTY_open(name.c_str(), 0, missing);
    CTY_getinfo(fd, &info);
    while (CTY_read(fd, &city) != -1) {
    }
    CTY_rewind(fd);
    CTY_close(fd);
    CTY_get(name.c_str(), first.c_str(), &city);
    for (int type = cty_full; type <= cty_xy_pos; ++type) {
        CTY_set_id_type(type - 1);
        CTY_store(name.c_str(), type, &domain, missing);
        CTY_search(first.c_str(), nullptr);
    }
    (void)std::remove(name.c_str());
    return 0;
}
