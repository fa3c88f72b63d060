// redraw_areas.h: a display for the data of a product, and what a plot put into the window, for a
// bare client to draw again.
#pragma once

#include "bare_client.h"
#include "files.h"
#include "gks_pix.h"
#include "gks_x11.h"
#include "map.h"
#include "nids.h"
#include "plt_tool.h"
#include "region.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <cstdlib>
#include <fstream>
#include <string>

// Opens the display that the settings name for the data of a product alone: no texts, no
// maps, no bar. Returns the area of the product.
inline Domain open_data_alone(const std::string& product) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("plot_param", "nobar");
    RES_conv_data("none", nullptr, CV_mess);
    FLAG_resetplot(1);
    for (const int item : {0, 8}) {
        FLAG_setplot(item, 0);
    }
    NIDS_info info;
    std::FILE* file = FILE_open(product.c_str(), "r");
    NIDS_get_header(file, &info);
    FILE_close(file);
    PLT_open(DOM_aspect(&info.domain));
    return info.domain;
}

// The areas of the plot that the redraw list holds, in pixels.
inline Polygons redraw_areas() {
    const TempDir dir;
    const std::string name = dir.path() + "/list";
    setenv("METAOUT", name.c_str(), 1);
    gobj_print_meta();
    Polygons all;
    std::ifstream in(name);
    unsigned long color = 0;
    for (std::string word; in >> word;) {
        int n = 0;
        if (word == "TR" && in >> n) {
            gsel_norm_tran(n);
        } else if (word == "FA_CLR" && in >> n) {
            color = static_cast<unsigned long>(gget_color_ind(n));
            ++all.records;
        } else if (word == "FA" && in >> n) {
            Gpt at{};
            char comma = 0;
            for (int i = 0; i < n && in >> at.x >> comma >> at.y; ++i) {
                const Gpixel pixel = pixel_of(at);
                all.points.push_back({pixel.x, pixel.y});
            }
            all.counts.push_back(n);
            all.pixels.push_back(color);
            ++all.records;
        }
    }
    return all;
}
