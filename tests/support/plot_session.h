// plot_session.h: a plot session in this process, on a page without map lines.
#pragma once

#include "plt_tool.h"
#include "region.h"
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

// A domain about the site of the written samples, of another projection than
// theirs: every corner goes through both transformations.
inline Domain mercator_domain() {
    Domain domain;
    DOM_decode("merc,35.3,-97.3,41,31,.1,.1", &domain);
    return domain;
}
