// nids_tables: the rows of the NIDS products.
#include "nids_tables.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

// --- Labels that several codes share ------------------------------------------

constexpr char base_refl[] = "Base reflectivity (Dbz)";
constexpr char base_vel[] = "Base velocity (knt)";
constexpr char base_width[] = "Base spectrum width (knt)";
constexpr char comp_refl[] = "Comp reflectivity (Dbz)";
constexpr char composite[] = "Composite reflectivity (Dbz)";
constexpr char storm_vel[] = "Stm rel mn rad velocity (knt)";
constexpr char vert_liquid[] = "Vert int liquid (kg/m^3)";
constexpr char winter_refl[] = "Winter reflectivity (Dbz)";
constexpr char rain_1h[] = "Sfc 1 hr rainfall acc. (in)";
constexpr char rain_3h[] = "Sfc 3 hr rainfall acc. (in)";
constexpr char rain_storm[] = "Sfc storm total rainfall acc. (in)";
constexpr char precip_1h[] = "Sfc 1 hr precipitation (in)";
constexpr char precip_12z[] = "Sfc precipitation since 12Z (in)";
constexpr char precip_24h[] = "Sfc 24 hr precipitation (in)";

// --- Levels and colours ---------------------------------------------------------

constexpr char reflectivity[] =
    "-100:off,5:blue,10:lblue,15:cyan,20:lcyan,25:green,30:lgreen,35:brown,40:yellow,45:red,"
    "50:lred,55:magenta,60:lmagenta,65:dgray,70:lgray,75:white";
constexpr char wind_profile[] = "lblue,lcyan,lgreen,yellow,lred";
constexpr char storm_precip[] =
    "0.01:blue,.1:lblue,.2:cyan,.5:lcyan,.8:green,1.0:lgreen,1.2:brown,1.5:yellow,1.8:red,"
    "2.0:lred,2.5:magenta,3.0:lmagenta,4.0:dgray,6.0:lgray,8.0:white";
constexpr char storm_velocity[] =
    "-50:lblue,-40:cyan,-30:lcyan,-22:green,-10:lgreen,-5:dgray,-1:off,0:lgray,5:yellow,"
    "10:brown,22:lred,30:red,40:lmagenta,50:magenta";
constexpr char liquid_tops[] =
    "-100:off,0:blue,5:lblue,10:cyan,15:lcyan,20:green,25:lgreen,30:brown,35:yellow,40:red,"
    "45:lred,50:magenta,55:lmagenta,60:dgray,65:lgray,70:white";
constexpr char velocity[] =
    "-70:blue,-63:lblue,-49:cyan,-35:lcyan,-25:green,-19:lgreen,-9:dgray,0:off,1:lgray,"
    "10:yellow,20:brown,26:lred,36:red,50:lmagenta,64:magenta";
constexpr char diff_reflectivity[] =
    "-7.0:blue,-6.3:lblue,-4.9:cyan,-3.5:lcyan,-2.5:green,-1.9:lgreen,-.9:dgray,0:off,"
    ".1:lgray,1.0:yellow,2.0:brown,2.6:lred,3.6:red,5.0:lmagenta,6.4:magenta";
constexpr char accumulation[] =
    "-100:off,.01:blue,.05:lblue,.1:cyan,.25:lcyan,.5:green,.75:lgreen,1:brown,1.25:yellow,"
    "1.5:red,2:lred,2.5:magenta,3:lmagenta,4:dgray,6:lgray,8:white";
constexpr char hydrometeor[] =
    "-100:off,10:magenta,20:lmagenta,30:cyan,40:blue,50:lblue,60:dgreen,70:green,80:lgreen,"
    "90:lcyan,100:red,140:dgray,150:lgray";
constexpr char correlation[] =
    "-200:off,-1.:blue,-.8:lblue,-.6:cyan,-.4:lcyan,-.2:green,0:yellow,.2:brown,.4:lred,"
    ".6:red,.8:lmagenta,1.:magenta";

// --- Parameters -----------------------------------------------------------------

constexpr NidsParams with_elev = {.elev = NidsElev::shown};
constexpr NidsParams accum = {.factor = 0.1, .decimals = 1};
constexpr NidsParams min_max = {
    .elev = NidsElev::shown, .nmax = 4, .max = 5, .show = NidsExtremes::min_max};
constexpr NidsParams min_max_tenths = {.elev = NidsElev::shown,
                                       .nmax = 4,
                                       .max = 5,
                                       .factor = 0.1,
                                       .show = NidsExtremes::min_max,
                                       .decimals = 1};
constexpr NidsParams min_max_correl = {.elev = NidsElev::shown,
                                       .nmax = 4,
                                       .max = 5,
                                       .factor = 0.00333,
                                       .show = NidsExtremes::min_max,
                                       .decimals = 1};
constexpr NidsParams min_max_accum = {
    .nmax = 7, .factor = 0.01, .show = NidsExtremes::min_max, .decimals = 2};

// --- Products -------------------------------------------------------------------

constexpr NidsProduct no_facts;

// The formatter would give each member a line of its own.
// clang-format off
constexpr NidsProduct products[] = {
    {.code = 6, .mosaic = "WARP Comp reflectivity (Dbz)", .cell_km = 4.0F},
    {.code = 16, .label = base_refl, .bin_nmi = 0.54F, .range_nmi = 124.0F, .params = with_elev},
    {.code = 17, .label = base_refl, .bin_nmi = 1.08F, .range_nmi = 248.0F, .params = with_elev},
    {.code = 18, .label = base_refl, .bin_nmi = 2.16F, .range_nmi = 248.0F, .params = with_elev},
    {.code = 19, .label = base_refl, .bin_nmi = 0.54F, .range_nmi = 124.0F, .params = with_elev},
    {.code = 20, .label = base_refl, .bin_nmi = 1.08F, .range_nmi = 248.0F, .params = with_elev},
    {.code = 21, .label = base_refl, .bin_nmi = 2.16F, .range_nmi = 248.0F, .params = with_elev},
    {.code = 22, .label = base_vel, .bin_nmi = 0.135F, .range_nmi = 31.0F, .colors = velocity,
     .params = min_max},
    {.code = 23, .label = base_vel, .bin_nmi = 0.27F, .range_nmi = 62.0F, .colors = velocity,
     .params = min_max},
    {.code = 24, .label = base_vel, .bin_nmi = 0.54F, .range_nmi = 124.0F, .colors = velocity,
     .params = min_max},
    {.code = 25, .label = base_vel, .bin_nmi = 0.135F, .range_nmi = 31.0F, .colors = velocity,
     .params = min_max},
    {.code = 26, .label = base_vel, .bin_nmi = 0.27F, .range_nmi = 62.0F, .colors = velocity,
     .params = min_max},
    {.code = 27, .label = base_vel, .bin_nmi = 0.54F, .range_nmi = 124.0F, .colors = velocity,
     .params = min_max},
    {.code = 28, .label = base_width, .bin_nmi = 0.135F, .range_nmi = 31.0F, .mosaic = composite},
    {.code = 29, .label = base_width, .bin_nmi = 0.27F, .range_nmi = 62.0F, .mosaic = composite},
    {.code = 30, .label = base_width, .bin_nmi = 0.54F, .range_nmi = 124.0F, .mosaic = composite,
     .cell_km = 4.0F, .params = {.elev = NidsElev::stored}},
    {.code = 31, .mosaic = composite},
    {.code = 32, .label = "Digital hyb reflectivity (Dbz)", .bin_nmi = 0.54F, .range_nmi = 124.0F,
     .mosaic = composite, .scale = NidsScale::tenths, .colors = reflectivity, .compressed = true},
    {.code = 33, .last = 34, .mosaic = composite},
    {.code = 35, .label = comp_refl, .bin_nmi = 0.54F, .range_nmi = 124.0F, .mosaic = composite},
    {.code = 36, .label = comp_refl, .bin_nmi = 2.16F, .range_nmi = 248.0F, .mosaic = composite},
    {.code = 37, .label = comp_refl, .bin_nmi = 0.54F, .range_nmi = 124.0F, .mosaic = composite},
    {.code = 38, .label = comp_refl, .bin_nmi = 2.16F, .range_nmi = 248.0F, .mosaic = composite},
    {.code = 39, .last = 40, .mosaic = composite},
    {.code = 41, .label = "Echo tops (1000 ft)", .bin_nmi = 2.16F, .range_nmi = 124.0F,
     .mosaic = composite},
    {.code = 42, .last = 47, .mosaic = composite},
    {.code = 48, .label = "VAD wind profile (knt)", .bin_nmi = 512.0F, .range_nmi = 1.0F,
     .mosaic = composite, .colors = wind_profile, .map = NidsMap::display, .barb_levels = true,
     .show_range = false},
    {.code = 49, .last = 54, .mosaic = composite},
    {.code = 55, .label = storm_vel, .bin_nmi = 0.27F, .range_nmi = 27.0F, .mosaic = composite,
     .colors = storm_velocity, .params = min_max, .extra = NidsExtra::storm, .show_range = false},
    {.code = 56, .label = storm_vel, .bin_nmi = 0.54F, .range_nmi = 124.0F, .mosaic = composite,
     .colors = storm_velocity, .params = min_max, .extra = NidsExtra::storm, .show_range = false},
    {.code = 57, .label = "Vert int liquid (kg/m^3)", .bin_nmi = 2.16F, .range_nmi = 124.0F,
     .mosaic = composite},
    {.code = 58, .mosaic = composite, .table = NidsTable::tracks},
    {.code = 59, .mosaic = composite, .table = NidsTable::hail},
    {.code = 60, .mosaic = composite},
    {.code = 61, .mosaic = composite, .table = NidsTable::vortices},
    {.code = 62, .mosaic = composite, .trends = true},
    {.code = 63, .last = 64, .mosaic = composite, .extra = NidsExtra::layer},
    {.code = 65, .label = "Layer 1 comp refl (max Dbz)", .bin_nmi = 2.16F, .range_nmi = 124.0F,
     .mosaic = composite, .extra = NidsExtra::layer},
    {.code = 66, .label = "Layer 2 comp refl (max Dbz)", .bin_nmi = 2.16F, .range_nmi = 124.0F,
     .extra = NidsExtra::layer},
    {.code = 67, .label = "Comp refl APR (Dbz)", .bin_nmi = 2.16F, .range_nmi = 248.0F},
    {.code = 78, .label = rain_1h, .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum},
    {.code = 79, .label = rain_3h, .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum},
    {.code = 80, .label = rain_storm, .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum,
     .extra = NidsExtra::start_p5},
    {.code = 81, .label = "Digital precip array (in)", .bin_nmi = 0.047596F, .range_nmi = 124.0F,
     .scale = NidsScale::thousandths, .colors = storm_precip, .params = accum,
     .map = NidsMap::precip_grid, .decibel = true},
    {.code = 89, .extra = NidsExtra::layer},
    {.code = 90, .label = "Layer 3 comp refl (max Dbz)", .bin_nmi = 2.16F, .range_nmi = 124.0F,
     .mosaic = precip_1h, .cell_km = 4.0F, .extra = NidsExtra::layer},
    {.code = 91, .mosaic = precip_1h, .cell_km = 8.0F},
    {.code = 94, .label = base_refl, .bin_nmi = 0.54F, .range_nmi = 248.0F,
     .scale = NidsScale::tenths, .colors = reflectivity, .params = with_elev, .compressed = true},
    {.code = 95, .mosaic = "Echo tops (ft)", .cell_km = 4.0F},
    {.code = 96, .mosaic = "Echo tops (ft)", .cell_km = 8.0F},
    {.code = 99, .label = base_vel, .bin_nmi = 0.135F, .range_nmi = 124.0F,
     .scale = NidsScale::knots, .colors = velocity, .params = min_max, .compressed = true},
    {.code = 101, .mosaic = precip_12z, .cell_km = 4.0F},
    {.code = 102, .mosaic = precip_24h, .cell_km = 4.0F},
    {.code = 103, .mosaic = composite, .cell_km = 4.0F},
    {.code = 104, .mosaic = composite},
    {.code = 105, .mosaic = precip_12z, .cell_km = 2.0F},
    {.code = 106, .mosaic = precip_24h, .cell_km = 2.0F},
    {.code = 107, .mosaic = precip_12z, .cell_km = 8.0F},
    {.code = 108, .mosaic = precip_24h, .cell_km = 8.0F},
    {.code = 134, .label = "Digital vert int liquid (kg/m^3)", .bin_nmi = 0.54F,
     .range_nmi = 248.0F, .scale = NidsScale::liquid, .colors = liquid_tops, .compressed = true},
    {.code = 135, .label = "Enh Echo tops (1000 ft)", .bin_nmi = 0.54F, .range_nmi = 186.0F,
     .scale = NidsScale::tops, .colors = liquid_tops, .compressed = true},
    {.code = 137, .mosaic = base_refl, .cell_km = 2.0F},
    {.code = 138, .label = "Digital storm precip (in)", .bin_nmi = 1.08F, .range_nmi = 124.0F,
     .mosaic = base_refl, .cell_km = 2.0F, .scale = NidsScale::hundredths, .colors = storm_precip,
     .params = {.factor = 0.01, .decimals = 2}, .extra = NidsExtra::start_p1, .compressed = true},
    {.code = 139, .last = 140, .mosaic = base_refl, .cell_km = 2.0F},
    {.code = 141, .label = "Mesocyclone detection", .bin_nmi = 0.54F, .range_nmi = 124.0F,
     .mosaic = base_refl, .cell_km = 4.0F, .table = NidsTable::mesocyclones},
    {.code = 142, .mosaic = base_refl, .cell_km = 8.0F},
    {.code = 143, .last = 144, .mosaic = base_refl},
    {.code = 148, .mosaic = vert_liquid, .cell_km = 4.0F},
    {.code = 149, .mosaic = vert_liquid, .cell_km = 8.0F},
    {.code = 153, .label = base_refl, .bin_nmi = 0.135F, .range_nmi = 248.0F,
     .scale = NidsScale::tenths, .colors = reflectivity, .params = with_elev, .compressed = true},
    {.code = 154, .label = base_vel, .bin_nmi = 0.135F, .range_nmi = 124.0F,
     .scale = NidsScale::knots, .colors = velocity, .params = min_max, .compressed = true},
    {.code = 158, .colors = diff_reflectivity, .params = min_max_tenths},
    {.code = 159, .label = "Digital diff refl (dBZ)", .bin_nmi = 0.135F, .range_nmi = 162.0F,
     .scale = NidsScale::floats, .colors = diff_reflectivity, .params = min_max_tenths,
     .compressed = true},
    {.code = 161, .label = "Digital correl coeff", .bin_nmi = 0.135F, .range_nmi = 162.0F,
     .scale = NidsScale::floats, .colors = correlation, .params = min_max_correl,
     .compressed = true},
    {.code = 163, .label = "Digital spec diff phase (Deg/km)", .bin_nmi = 0.135F,
     .range_nmi = 124.0F, .scale = NidsScale::floats, .colors = correlation, .params = with_elev,
     .compressed = true},
    {.code = 165, .label = "Digital hydro class", .bin_nmi = 0.135F, .range_nmi = 162.0F,
     .scale = NidsScale::floats, .colors = hydrometeor,
     .params = {.elev = NidsElev::shown, .show = NidsExtremes::none}, .compressed = true},
    {.code = 166, .label = "Melting layer", .bin_nmi = 0.135F, .range_nmi = 124.0F},
    {.code = 169, .label = "1 hr accum", .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum},
    {.code = 170, .label = "Digital accum array (in)", .bin_nmi = 0.135F, .range_nmi = 124.0F,
     .scale = NidsScale::floats, .colors = accumulation, .params = accum, .divisor = 100.0F,
     .compressed = true},
    {.code = 171, .label = "Storm total accum", .bin_nmi = 1.08F, .range_nmi = 124.0F,
     .colors = accumulation, .params = accum, .divisor = 100.0F, .extra = NidsExtra::start_p1},
    {.code = 172, .label = "Digital storm total accum (in)", .bin_nmi = 0.135F, .range_nmi = 124.0F,
     .scale = NidsScale::floats, .colors = accumulation, .params = accum, .divisor = 100.0F,
     .extra = NidsExtra::start_p1, .compressed = true},
    {.code = 173, .scale = NidsScale::floats, .colors = accumulation, .params = accum,
     .divisor = 100.0F, .compressed = true},
    {.code = 174, .label = "Digital 1 hr diff accum (in)", .bin_nmi = 0.135F, .range_nmi = 124.0F,
     .scale = NidsScale::floats, .colors = accumulation, .params = accum, .divisor = 100.0F,
     .compressed = true},
    {.code = 175, .label = "Digital storm total diff accum (in)", .bin_nmi = 0.135F,
     .range_nmi = 124.0F, .scale = NidsScale::floats, .colors = accumulation,
     .params = min_max_accum, .divisor = 100.0F, .extra = NidsExtra::start_p1, .compressed = true},
    {.code = 176, .label = "Digital instant prec rate (in/hr)", .bin_nmi = 0.135F,
     .range_nmi = 124.0F, .scale = NidsScale::floats, .colors = accumulation, .compressed = true},
    {.code = 177, .label = "Hybrid hydro class", .bin_nmi = 0.135F, .range_nmi = 124.0F,
     .scale = NidsScale::floats, .colors = hydrometeor, .params = {.show = NidsExtremes::none},
     .compressed = true},
    {.code = 180, .label = base_refl, .bin_nmi = 0.08F, .range_nmi = 48.0F, .mosaic = base_refl,
     .cell_km = 2.0F, .scale = NidsScale::tenths, .colors = reflectivity, .params = with_elev,
     .compressed = true},
    {.code = 181, .label = base_refl, .bin_nmi = 0.08F, .range_nmi = 48.0F, .params = with_elev},
    {.code = 182, .label = base_vel, .bin_nmi = 0.08F, .range_nmi = 48.0F,
     .scale = NidsScale::tenths, .colors = velocity, .params = min_max, .compressed = true},
    {.code = 186, .label = base_refl, .bin_nmi = 0.16F, .range_nmi = 224.0F,
     .scale = NidsScale::fixed, .colors = reflectivity, .compressed = true},
    {.code = 199, .mosaic = winter_refl, .cell_km = 1.0F},
    {.code = 200, .mosaic = winter_refl, .cell_km = 2.0F},
    {.code = 201, .cell_km = 4.0F},
    {.code = 202, .cell_km = 8.0F},
    {.code = 203, .mosaic = "Reflectivity at Lowest Alt (Dbz)", .cell_km = 1.0F},
    {.code = 209, .mosaic = vert_liquid, .cell_km = 1.0F},
    {.code = 210, .mosaic = "Echo tops-18dBZ (ft)", .cell_km = 1.0F},
    {.code = 211, .mosaic = composite, .cell_km = 1.0F},
    {.code = 212, .mosaic = "Echo tops-30dBZ (ft)", .cell_km = 1.0F},
    {.code = 220, .label = rain_1h, .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum},
    {.code = 221, .label = rain_3h, .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum},
    {.code = 222, .label = rain_storm, .bin_nmi = 1.08F, .range_nmi = 124.0F, .params = accum,
     .extra = NidsExtra::start_p5},
};
// clang-format on

constexpr int last_of(const NidsProduct& product) {
    return product.last != 0 ? product.last : product.code;
}

constexpr bool sorted() {
    for (std::size_t i = 0; i < std::size(products); ++i) {
        if (last_of(products[i]) < products[i].code ||
            (i > 0 && products[i].code <= last_of(products[i - 1]))) {
            return false;
        }
    }
    return true;
}
static_assert(sorted());

} // namespace

const NidsProduct& nids_product(int code) {
    const auto* row = std::find_if(std::begin(products), std::end(products), [code](const auto& p) {
        return code >= p.code && code <= last_of(p);
    });
    return row != std::end(products) ? *row : no_facts;
}
