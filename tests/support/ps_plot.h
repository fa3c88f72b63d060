// ps_plot.h: draws on a domain into a PostScript file and reads it back as
// lines of points.
#pragma once

#include "gks.h"
#include "zyr.h"

#include <functional>
#include <string>
#include <vector>

using PsLine = std::vector<Gpt>;

struct PsPicture {
    std::vector<PsLine> lines; // points of the device
    std::vector<PsLine> fills;
    std::vector<std::string> messages; // what went to the status line
    Glim window{};                     // the map window in plot coordinates
    Glim device{};                     // and on the page

    // Device point to plot coordinates.
    Gpt plot(const Gpt& p) const;
    // Length of the part of a segment in the map window, in parts of its width.
    double visible(const Gpt& a, const Gpt& b) const;
    // The longest such part of all lines.
    double longest() const;
};

PsPicture ps_plot(const Domain& domain, const std::function<void()>& draw);
