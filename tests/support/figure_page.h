// figure_page.h: a plot page in a PostScript file that a test draws on and then
// reads back as lines, areas and texts in world coordinates.
#pragma once

#include "gks.h"
#include "zyr.h"

#include <string>
#include <vector>

struct Figure {
    bool filled = false;
    std::string color; // name in the colour table, or the file's numbers
    std::vector<Gpt> points;
};

struct FigureText {
    Gpt pos = {}; // world coordinates of the transformation in force
    std::string text;
};

class FigurePage {
public:
    // Opens the page with this domain current and its map window selected.
    // `source_dir` is the source tree, whose colours and fonts are taken.
    FigurePage(const Domain& domain, const std::string& source_dir);
    // Closes the page. Figures come in coordinates of transformation `tran`.
    void read(int tran);
    // Puts the window of transformation 2 in place.
    void window(const Glim& lim);

    std::vector<Figure> figures;
    std::vector<FigureText> texts;
    std::vector<std::string> messages; // of the status line

    // The lines, or the areas, of a colour; "" for all.
    std::vector<Figure> lines(const std::string& color = "") const { return pick(false, color); }
    std::vector<Figure> areas(const std::string& color = "") const { return pick(true, color); }

private:
    std::vector<Figure> pick(bool filled, const std::string& color) const;
    std::string name_;
};

// Area of a closed polygon.
double polygon_area(const std::vector<Gpt>& points);
// "(x,y) (x,y)" with two decimals, to compare and to print.
std::string show(const std::vector<Gpt>& points);
