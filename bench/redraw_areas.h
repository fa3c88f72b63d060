// redraw_areas.h: what a plot put into the window, for a bare client to draw again.
#pragma once

#include "bare_client.h"
#include "gks_pix.h"
#include "gks_x11.h"
#include "run_program.h"
#include "zyrgks.h"

#include <cstdlib>
#include <fstream>
#include <string>

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
