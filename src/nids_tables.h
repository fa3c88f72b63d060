// nids_tables.h: what is known of each NIDS product code. A table is sorted by
// code and its ranges do not overlap, so that a code has one row or none.
#pragma once

#include <cstddef>

// --- Label, bin length and range --------------------------------------------

// Products of one radar.
struct NidsRadarRow {
    int first, last;
    const char* label; // null: none
    float res_nmi;     // length of a bin; for the display of code 48 its pixels
    float range_nmi;
};

constexpr NidsRadarRow nids_radar_products[] = {
    {16,  16,  "Base reflectivity (Dbz)",             0.54F,     124.0F},
    {17,  17,  "Base reflectivity (Dbz)",             1.08F,     248.0F},
    {18,  18,  "Base reflectivity (Dbz)",             2.16F,     248.0F},
    {19,  19,  "Base reflectivity (Dbz)",             0.54F,     124.0F},
    {20,  20,  "Base reflectivity (Dbz)",             1.08F,     248.0F},
    {21,  21,  "Base reflectivity (Dbz)",             2.16F,     248.0F},
    {22,  22,  "Base velocity (knt)",                 0.135F,    31.0F },
    {23,  23,  "Base velocity (knt)",                 0.27F,     62.0F },
    {24,  24,  "Base velocity (knt)",                 0.54F,     124.0F},
    {25,  25,  "Base velocity (knt)",                 0.135F,    31.0F },
    {26,  26,  "Base velocity (knt)",                 0.27F,     62.0F },
    {27,  27,  "Base velocity (knt)",                 0.54F,     124.0F},
    {28,  28,  "Base spectrum width (knt)",           0.135F,    31.0F },
    {29,  29,  "Base spectrum width (knt)",           0.27F,     62.0F },
    {30,  30,  "Base spectrum width (knt)",           0.54F,     124.0F},
    {32,  32,  "Digital hyb reflectivity (Dbz)",      0.54F,     124.0F},
    {35,  35,  "Comp reflectivity (Dbz)",             0.54F,     124.0F},
    {36,  36,  "Comp reflectivity (Dbz)",             2.16F,     248.0F},
    {37,  37,  "Comp reflectivity (Dbz)",             0.54F,     124.0F},
    {38,  38,  "Comp reflectivity (Dbz)",             2.16F,     248.0F},
    {41,  41,  "Echo tops (1000 ft)",                 2.16F,     124.0F},
    {48,  48,  "VAD wind profile (knt)",              512.0F,    1.0F  },
    {55,  55,  "Stm rel mn rad velocity (knt)",       0.27F,     27.0F },
    {56,  56,  "Stm rel mn rad velocity (knt)",       0.54F,     124.0F},
    {57,  57,  "Vert int liquid (kg/m^3)",            2.16F,     124.0F},
    {65,  65,  "Layer 1 comp refl (max Dbz)",         2.16F,     124.0F},
    {66,  66,  "Layer 2 comp refl (max Dbz)",         2.16F,     124.0F},
    {67,  67,  "Comp refl APR (Dbz)",                 2.16F,     248.0F},
    {78,  78,  "Sfc 1 hr rainfall acc. (in)",         1.08F,     124.0F},
    {79,  79,  "Sfc 3 hr rainfall acc. (in)",         1.08F,     124.0F},
    {80,  80,  "Sfc storm total rainfall acc. (in)",  1.08F,     124.0F},
    {81,  81,  "Digital precip array (in)",           0.047596F, 124.0F},
    {90,  90,  "Layer 3 comp refl (max Dbz)",         2.16F,     124.0F},
    {94,  94,  "Base reflectivity (Dbz)",             0.54F,     248.0F},
    {99,  99,  "Base velocity (knt)",                 0.135F,    124.0F},
    {134, 134, "Digital vert int liquid (kg/m^3)",    0.54F,     248.0F},
    {135, 135, "Enh Echo tops (1000 ft)",             0.54F,     186.0F},
    {138, 138, "Digital storm precip (in)",           1.08F,     124.0F},
    {141, 141, "Mesocyclone detection",               0.54F,     124.0F},
    {153, 153, "Base reflectivity (Dbz)",             0.135F,    248.0F},
    {154, 154, "Base velocity (knt)",                 0.135F,    124.0F},
    {159, 159, "Digital diff refl (dBZ)",             0.135F,    162.0F},
    {161, 161, "Digital correl coeff",                0.135F,    162.0F},
    {163, 163, "Digital spec diff phase (Deg/km)",    0.135F,    124.0F},
    {165, 165, "Digital hydro class",                 0.135F,    162.0F},
    {166, 166, "Melting layer",                       0.135F,    124.0F},
    {169, 169, "1 hr accum",                          1.08F,     124.0F},
    {170, 170, "Digital accum array (in)",            0.135F,    124.0F},
    {171, 171, "Storm total accum",                   1.08F,     124.0F},
    {172, 172, "Digital storm total accum (in)",      0.135F,    124.0F},
    {174, 174, "Digital 1 hr diff accum (in)",        0.135F,    124.0F},
    {175, 175, "Digital storm total diff accum (in)", 0.135F,    124.0F},
    {176, 176, "Digital instant prec rate (in/hr)",   0.135F,    124.0F},
    {177, 177, "Hybrid hydro class",                  0.135F,    124.0F},
    {180, 181, "Base reflectivity (Dbz)",             0.08F,     48.0F },
    {182, 182, "Base velocity (knt)",                 0.08F,     48.0F },
    {186, 186, "Base reflectivity (Dbz)",             0.16F,     224.0F},
    {220, 220, "Sfc 1 hr rainfall acc. (in)",         1.08F,     124.0F},
    {221, 221, "Sfc 3 hr rainfall acc. (in)",         1.08F,     124.0F},
    {222, 222, "Sfc storm total rainfall acc. (in)",  1.08F,     124.0F},
};

// Products made of several radars.
struct NidsCompositeRow {
    int first, last;
    const char* label; // null: none
    float cell_km;     // 0: the length in the radar table is taken
};

constexpr NidsCompositeRow nids_composite_products[] = {
    {6,   6,   "WARP Comp reflectivity (Dbz)",     4.0F},
    {28,  29,  "Composite reflectivity (Dbz)",     0.0F},
    {30,  30,  "Composite reflectivity (Dbz)",     4.0F},
    {31,  65,  "Composite reflectivity (Dbz)",     0.0F},
    {90,  90,  "Sfc 1 hr precipitation (in)",      4.0F},
    {91,  91,  "Sfc 1 hr precipitation (in)",      8.0F},
    {95,  95,  "Echo tops (ft)",                   4.0F},
    {96,  96,  "Echo tops (ft)",                   8.0F},
    {101, 101, "Sfc precipitation since 12Z (in)", 4.0F},
    {102, 102, "Sfc 24 hr precipitation (in)",     4.0F},
    {103, 103, "Composite reflectivity (Dbz)",     4.0F},
    {104, 104, "Composite reflectivity (Dbz)",     0.0F},
    {105, 105, "Sfc precipitation since 12Z (in)", 2.0F},
    {106, 106, "Sfc 24 hr precipitation (in)",     2.0F},
    {107, 107, "Sfc precipitation since 12Z (in)", 8.0F},
    {108, 108, "Sfc 24 hr precipitation (in)",     8.0F},
    {137, 140, "Base reflectivity (Dbz)",          2.0F},
    {141, 141, "Base reflectivity (Dbz)",          4.0F},
    {142, 142, "Base reflectivity (Dbz)",          8.0F},
    {143, 144, "Base reflectivity (Dbz)",          0.0F},
    {148, 148, "Vert int liquid (kg/m^3)",         4.0F},
    {149, 149, "Vert int liquid (kg/m^3)",         8.0F},
    {180, 180, "Base reflectivity (Dbz)",          2.0F},
    {199, 199, "Winter reflectivity (Dbz)",        1.0F},
    {200, 200, "Winter reflectivity (Dbz)",        2.0F},
    {201, 201, nullptr,                            4.0F},
    {202, 202, nullptr,                            8.0F},
    {203, 203, "Reflectivity at Lowest Alt (Dbz)", 1.0F},
    {209, 209, "Vert int liquid (kg/m^3)",         1.0F},
    {210, 210, "Echo tops-18dBZ (ft)",             1.0F},
    {211, 211, "Composite reflectivity (Dbz)",     1.0F},
    {212, 212, "Echo tops-30dBZ (ft)",             1.0F},
};

// --- Thresholds and levels --------------------------------------------------

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
    floats  // v0, v2 are 32-bit floats: (b - v2) / v0
};

struct NidsScaleRow {
    int first, last;
    NidsScale scale;
};

constexpr NidsScaleRow nids_scales[] = {
    {32,  32,  NidsScale::tenths     },
    {81,  81,  NidsScale::thousandths},
    {94,  94,  NidsScale::tenths     },
    {99,  99,  NidsScale::knots      },
    {134, 134, NidsScale::liquid     },
    {135, 135, NidsScale::tops       },
    {138, 138, NidsScale::hundredths },
    {153, 153, NidsScale::tenths     },
    {154, 154, NidsScale::knots      },
    {159, 159, NidsScale::floats     },
    {161, 161, NidsScale::floats     },
    {163, 163, NidsScale::floats     },
    {165, 165, NidsScale::floats     },
    {170, 170, NidsScale::floats     },
    {172, 177, NidsScale::floats     },
    {180, 180, NidsScale::tenths     },
    {182, 182, NidsScale::tenths     },
};

// --- Product parameters -----------------------------------------------------

enum class NidsElev { none, stored, shown };
enum class NidsExtremes { none, max, min_max };

// What the product parameters of a code hold.
struct NidsParamRow {
    int first, last;
    NidsElev elev;     // p3 is the elevation in tenths of a degree
    int nmax, max;     // which parameter is the extreme; 0: none
    double factor;     // turns it into the product's unit
    NidsExtremes show; // in the parameter line
    int decimals;
};

constexpr NidsParamRow nids_other_params = {0, 0, NidsElev::none, 0, 4, 1.0, NidsExtremes::max, 0};

constexpr NidsParamRow nids_params[] = {
    {16,  21,  NidsElev::shown,  0, 4, 1.0,     NidsExtremes::max,     0},
    {22,  27,  NidsElev::shown,  4, 5, 1.0,     NidsExtremes::min_max, 0},
    {30,  30,  NidsElev::stored, 0, 4, 1.0,     NidsExtremes::max,     0},
    {55,  56,  NidsElev::shown,  4, 5, 1.0,     NidsExtremes::min_max, 0},
    {78,  81,  NidsElev::none,   0, 4, 0.1,     NidsExtremes::max,     1},
    {94,  94,  NidsElev::shown,  0, 4, 1.0,     NidsExtremes::max,     0},
    {99,  99,  NidsElev::shown,  4, 5, 1.0,     NidsExtremes::min_max, 0},
    {138, 138, NidsElev::none,   0, 4, 0.01,    NidsExtremes::max,     2},
    {153, 153, NidsElev::shown,  0, 4, 1.0,     NidsExtremes::max,     0},
    {154, 154, NidsElev::shown,  4, 5, 1.0,     NidsExtremes::min_max, 0},
    {158, 159, NidsElev::shown,  4, 5, 0.1,     NidsExtremes::min_max, 1},
    {161, 161, NidsElev::shown,  4, 5, 0.00333, NidsExtremes::min_max, 1},
    {163, 163, NidsElev::shown,  0, 4, 1.0,     NidsExtremes::max,     0},
    {165, 165, NidsElev::shown,  0, 4, 1.0,     NidsExtremes::none,    0},
    {169, 174, NidsElev::none,   0, 4, 0.1,     NidsExtremes::max,     1},
    {175, 175, NidsElev::none,   7, 4, 0.01,    NidsExtremes::min_max, 2},
    {177, 177, NidsElev::none,   0, 4, 1.0,     NidsExtremes::none,    0},
    {180, 181, NidsElev::shown,  0, 4, 1.0,     NidsExtremes::max,     0},
    {182, 182, NidsElev::shown,  4, 5, 1.0,     NidsExtremes::min_max, 0},
    {220, 222, NidsElev::none,   0, 4, 0.1,     NidsExtremes::max,     1},
};

// Parts of the parameter line that few codes have.
enum class NidsExtra {
    start_p5, // begin of the accumulation, date p5 and minutes p6
    start_p1, // the same in p1 and p2
    storm,    // storm motion p9 and p8, tenths
    layer     // layer limits p5 and p6
};

struct NidsExtraRow {
    int first, last;
    NidsExtra extra;
};

constexpr NidsExtraRow nids_extras[] = {
    {55,  56,  NidsExtra::storm   },
    {63,  66,  NidsExtra::layer   },
    {80,  80,  NidsExtra::start_p5},
    {89,  90,  NidsExtra::layer   },
    {138, 138, NidsExtra::start_p1},
    {171, 172, NidsExtra::start_p1},
    {175, 175, NidsExtra::start_p1},
    {222, 222, NidsExtra::start_p5},
};

// Codes whose symbology block may be bzip2-compressed.
struct NidsCodeRow {
    int first, last;
};

constexpr NidsCodeRow nids_compressed[] = {
    {32,  32 },
    {94,  94 },
    {99,  99 },
    {134, 135},
    {138, 138},
    {153, 154},
    {159, 159},
    {161, 161},
    {163, 163},
    {165, 165},
    {170, 170},
    {172, 177},
    {180, 180},
    {182, 182},
    {186, 186},
};

// --- Search -----------------------------------------------------------------

// The row of a code; null if there is none.
template <typename Row, std::size_t N>
constexpr const Row* nids_row(const Row (&rows)[N], int code) {
    for (const Row& row : rows) {
        if (code >= row.first && code <= row.last) {
            return &row;
        }
    }
    return nullptr;
}

template <typename Row, std::size_t N> constexpr bool nids_sorted(const Row (&rows)[N]) {
    for (std::size_t i = 0; i < N; i++) {
        if (rows[i].first > rows[i].last || (i > 0 && rows[i].first <= rows[i - 1].last)) {
            return false;
        }
    }
    return true;
}
static_assert(nids_sorted(nids_radar_products) && nids_sorted(nids_composite_products));
static_assert(nids_sorted(nids_scales) && nids_sorted(nids_params));
static_assert(nids_sorted(nids_extras) && nids_sorted(nids_compressed));
