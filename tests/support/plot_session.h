// plot_session.h: a plot session in this process, on a page without map lines.
#pragma once

#include "maptran.h"
#include "plt_tool.h"
#include "region.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <string>

// Returns whether it opened; files of the source tree are found then.
inline bool open_plot_session(const std::string& device) {
    constexpr int item_map = 8;
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", device.c_str());
    MESS_set(0, 0);
    FLAG_resetplot(1);
    FLAG_setplot(item_map, 0);
    return PLT_open(1.5F) == 0;
}

// The same without the session, for what draws by itself. Its workstation, below 0 if
// it did not open.
inline int open_bare_page(const std::string& device) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", device.c_str());
    MESS_set(0, 0);
    int id = 0;
    Gws_type type = ws_none;
    Glim offset{};
    GPH_setup(&id, &type, 1.5F, &offset);
    FLAG_resetplot(1);
    return id;
}

// A domain about the site of the written samples, of another projection than
// theirs: every corner goes through both transformations.
inline Domain mercator_domain() {
    Domain domain;
    DOM_decode("merc,35.3,-97.3,41,31,.1,.1", &domain);
    return domain;
}
