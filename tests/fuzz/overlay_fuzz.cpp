// An image file laid over the plot, on displays with a colour map and with masks.
// The first byte chooses the display, the second the place and the background, and
// whether it is an entry of a map list. The seeds are made by
// `make_sample --overlay-seeds tests/fuzz/seeds/overlay_fuzz`.
// Does nothing where there is no Xvfb.
#include "gks.h"
#include "map.h"
#include "memory_file.h"
#include "zyr.h"
#include "zyrimg.h"
#include "zyrresrc.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "x_server.h" // after the others: Xlib's macros hide names of theirs

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::array<int, 3> depths = {24, 16, 8};

struct Screens {
    std::array<std::unique_ptr<XServer>, depths.size()> servers;
    int open = -1; // that the workstation is on
};

Screens& screens() {
    static Screens all = [] {
        MESS_set(0, 0);
        IMG_set_patience(0);
        gset_color_finder([](const char* name, Gcolr_rep*) { return *name == 'w' ? 1 : -1; });
        RES_put("file_path", ZYR_SOURCE_DIR "/etc");
        RES_put("geometry", "60x40");
        FLAG_resetplot(1);
        gopen_gks(nullptr, 0);
        return Screens{};
    }();
    return all;
}

// Whether the window is on the display of that number.
bool use_screen(int number) {
    Screens& all = screens();
    if (all.open == number) {
        return true;
    }
    auto& server = all.servers[static_cast<std::size_t>(number)];
    if (server == nullptr) {
        server = std::make_unique<XServer>(depths[static_cast<std::size_t>(number)], 100, 80);
    }
    if (all.open >= 0) {
        gclose_ws(1);
    }
    all.open = server->works() && gopen_ws(1, server->name().c_str(), ws_window) == 0 ? number : -1;
    return all.open == number;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    IMG_report nothing;
    if (screens().open < 0 && (goverlay_image_file("/dev/null/none", "", 0, 0) != 0 ||
                               goverlay_image(&nothing, "", 0, 0) != 0)) {
        std::abort(); // no window yet
    }
    if (size < 2 || !use_screen(data[0] % static_cast<int>(depths.size()))) {
        return 0;
    }
    constexpr std::array<const char*, 4> backgrounds = {"", "white", "#00FF00", "no colour"};
    if (goverlay_image(&nothing, "", 0, 0) != 0 ||
        goverlay_image_file("/dev/null/none", "", 0, 0) != 0) {
        std::abort();
    }
    const MemoryFile file({data + 2, data + size});
    const int place = (data[1] - 128) * (data[1] % 16 == 15 ? 1000 : 1);
    const char* background = backgrounds[data[1] % backgrounds.size()];
    goverlay_image_file(file.name(), background, place, place / 2);
    const std::string entry = (data[0] < 128 ? "if:" : "im:") + std::string(file.name()) + ":" +
                              background + ":" + std::to_string(place) + ":9";
    RES_put_again("map_file", (entry + ",im:none").c_str());
    MAP_draw(map_plain);
    return 0;
}
