// geometry_text.h: the area of a page that a plot may use, out of the text of the
// geometry resource.
#pragma once

#include "gks.h"

// Fractions of a page.
struct Gpanel {
    float width = 1.0F;
    float height = 1.0F;
    float x = 0.0F;
    float y = 0.0F;
};

// A length cut to whole units. Fractions and inches come in single precision, which
// may leave a whole number just short of itself: that number is meant.
int whole_units(double length);

// "wxh+x+y": fractions of the page, or with w above 1 a grid of
// w columns and h rows and the cell x, y in it, row 0 at the top. What is not
// given keeps its start value. Returns whether all four numbers were given.
bool read_panel(const char* text, Gpanel* panel);
// Whether any part of the panel lies on the page.
bool is_on_page(const Gpanel& panel);
// The panel of a page, in the units of the page. Its fractions count from the corner
// of the sheet: the page's own offset is that of a plot without a panel.
Grectangle panel_area(const Gpanel& panel, const Grectangle& page);
// "wxh+x+y", "wxh" or "+x+y", each number times `unit`; an offset is from the
// page's own. What is not given stays as in `page`; half an offset says nothing at all.
Grectangle unit_area(const char* text, const Grectangle& page, float unit);
// Sets size and offset of the workstation from a text of either form, a panel
// beginning with "P"; a null or empty one sets the page. An area in which
// nothing can be drawn gives a warning and is left at the page.
void set_page_area(const char* text, const Grectangle& page, float unit);
