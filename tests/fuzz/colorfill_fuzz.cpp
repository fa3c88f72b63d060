// Level and colour lists, level files and the contour words of plot_param.
// The first byte says which: "f" a level file, "v" and "m" one of
// velocity in knots and metres a second, "p" plot_param, else a list.
#include "cont.h"
#include "cont_state.h"
#include "zyrresrc.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// A file of this process, gone when the object goes.
struct LevelFile {
    std::string name = "/tmp/colorfill_" + std::to_string(getpid()) + ".lev";

    explicit LevelFile(const std::string& text) {
        std::FILE* file = std::fopen(name.c_str(), "w");
        if (file != nullptr) {
            std::fwrite(text.data(), 1, text.size(), file);
            std::fclose(file);
        }
    }
    ~LevelFile() { std::remove(name.c_str()); }
    LevelFile(const LevelFile&) = delete;
    LevelFile& operator=(const LevelFile&) = delete;
};

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    CLR_read_table(nullptr);
    cont::state() = cont::State();
    CONT_init();
    if (size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    CONT_set_quantity(data[0] == 'v' ? "velocity" : data[0] == 'm' ? "velocity_ms" : nullptr);
    if (data[0] == 'f' || data[0] == 'v' || data[0] == 'm') {
        const LevelFile file(text);
        CONT_set_fill_colors(file.name.c_str(), 1);
    } else if (data[0] == 'p') {
        RES_put("plot_param", text.c_str());
        CONT_param_decode();
        CONT_set_fill_colors("red-blue,green", 1);
    } else {
        CONT_set_fill_colors(text.c_str(), 1);
    }
    const cont::State& s = cont::state();
    require(s.color_num <= cont_max_steps && s.num_cont <= cont_max_steps);
    require(s.color_num < 0 || s.fill_attrib[s.color_num].color == -2);
    for (const char(&label)[cont_label_size] : s.cont_label) {
        require(label[cont_label_size - 1] == '\0');
    }
    for (const float value : {-1e38F, -7.5F, 0.0F, 0.1F, 12.0F, 1e38F, missing_f}) {
        Gattribs attrib;
        CONT_get_fill_attrib(value, &attrib);
        require(attrib.color >= -1);
    }
    CONT_set_range(100.0F, -100.0F);
    CONT_set_cont_ext(nullptr);
    return 0;
}
