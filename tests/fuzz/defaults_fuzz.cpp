// Defaults files: the input is read as one, with its tags and blocks, and each
// setting goes on as the resource database takes it.
#include "def_read.h"
#include "zyrresrc.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// A file of this process, gone when the object goes.
struct DefaultsFile {
    std::string name = "/tmp/defaults_" + std::to_string(getpid()) + ".def";

    DefaultsFile(const std::uint8_t* data, std::size_t size) {
        static std::size_t open_blocks = 0; // at most, that the input before left
        std::FILE* file = std::fopen(name.c_str(), "w");
        if (file != nullptr) {
            for (; open_blocks > 0; --open_blocks) {
                std::fputs("END\n", file);
            }
            open_blocks = size / 5; // "IF a\n"
            std::fwrite(data, 1, size, file);
            std::fclose(file);
        }
    }
    ~DefaultsFile() { std::remove(name.c_str()); }
    DefaultsFile(const DefaultsFile&) = delete;
    DefaultsFile& operator=(const DefaultsFile&) = delete;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    std::array<char, 8> program{"zyrrad"};
    char* argv[] = {program.data(), nullptr};
    RES_setCL(1, argv);
    DEF_prog();
    DEF_name(std::string(200, 'x').c_str());
    DEF_name(size % 3 == 0 ? "+title" : size % 3 == 1 ? "title" : "");
    DEF_clr_tag();
    DEF_tag("site");
    std::array<char, def_line_size> key{};
    std::array<char, def_value_size> value{};
    DEF_open("/proc/self"); // a directory without such a file
    DEF_get(key.data(), value.data());
    const DefaultsFile file(data, size);
    DEF_open(file.name.c_str());
    std::array<char, res_name_size> name{};
    while (DEF_get(key.data(), value.data()) == 1) {
        if (std::strlen(key.data()) >= key.size() || std::strlen(value.data()) >= value.size()) {
            std::abort();
        }
        // One name takes every value: the list of resources is never freed.
        if (DEF_cmp("plot_param", key.data()) == 1 ||
            (DEF_valid(key.data()) == 1 && DEF_parse_name(key.data(), name.data()) == 1)) {
            RES_put("plot_param", value.data());
            if (std::strcmp(RES_get("plot_param"), value.data()) != 0) {
                std::abort();
            }
        }
    }
    DEF_close();
    DEF_env(name.data(), "PATH", value.data());
    DEF_env(name.data(), nullptr, value.data());
    if (DEF_file() != file.name || *DEF_cfg_dir() != '\0') {
        std::abort();
    }
    return 0;
}
