// nids_tables.h: what is known of each NIDS product code: one row a product,
// with everything that depends on the code as a member.
#pragma once

// How the 16 threshold halfwords t0 to t15 are read, and how a level b of 256
// becomes a value with the thresholds v0, v1 ... read from them.
enum class NidsScale {
    levels,     // 16 coded levels; v0 + b * v1
    tenths,     // v0 = t0 / 10, v1 = t1 / 10, v2 = t2; v0 + b * v1
    knots,      // the same in m/s, turned into knots
    hundredths, // t0 / 100, t1 / 100, t2; v0 + b * v1
    thousandths,
    liquid, // 16-bit floats: linear below a level, exponential from it on
    tops,   // data mask, scale, offset: (b AND v0) / v1 - v2
    floats, // v0, v2 are 32-bit floats: (b - v2) / v0
    fixed   // -32 + b * 0.5, whatever the file holds
};

enum class NidsElev { none, stored, shown };
enum class NidsExtremes { none, max, min_max };

// What the product parameters p3 to p10 hold.
struct NidsParams {
    NidsElev elev = NidsElev::none;        // p3 is the elevation in tenths of a degree
    int nmax = 0, max = 4;                 // which parameter is the extreme; 0: none
    double factor = 1.0;                   // turns it into the product's unit
    NidsExtremes show = NidsExtremes::max; // in the parameter line
    int decimals = 0;
};

// Part of the parameter line that few products have.
enum class NidsExtra {
    none,
    start_p5, // begin of the accumulation, date p5 and minutes p6
    start_p1, // the same in p1 and p2
    storm,    // storm motion p9 and p8, tenths
    layer     // layer limits p5 and p6
};

// The map of a product of one radar.
enum class NidsMap {
    site,       // polar stereographic about the radar
    display,    // none: a page of 512 by 512 pixels
    precip_grid // the national grid of precipitation processing
};

// How the storms are laid out on the pages of the graphic block.
enum class NidsTable {
    list,   // a line each
    tracks, // a column each, of tracking, hail, vortex and mesocyclone products
    hail,
    vortices,
    mesocyclones
};

struct NidsProduct {
    int code = 0;
    int last = 0; // of a range of codes; 0: `code` alone
    // Of one radar.
    const char* label = nullptr; // null: none
    float bin_nmi = 0;           // length of a bin; of a display its pixels; 0: not known
    float range_nmi = 0;
    // Of several radars under the same code.
    const char* mosaic = nullptr; // label, null: none
    float cell_km = 0;            // 0: the length of a bin is taken

    NidsScale scale = NidsScale::levels;
    const char* colors = nullptr; // null: the thresholds are the levels
    NidsParams params{};
    float divisor = 1; // of the values of a digital radial
    NidsExtra extra = NidsExtra::none;
    NidsMap map = NidsMap::site;
    NidsTable table = NidsTable::list;
    bool decibel = false;     // cells are decibels of 0.01 inch
    bool barb_levels = false; // levels 0, 4 ... 16 for the colours
    bool show_range = true;   // in the parameter line
    bool trends = false;      // packets of cell trends at the offset of the graphic block
    bool compressed = false;  // the symbology block may be bzip2-compressed
};

// The row of a code; one without facts where the code is not known.
const NidsProduct& nids_product(int code);
