// map_proj: the table of projections, and maps: domains made ready, so that a
// point costs only its own trigonometry. No state.
#include "map_proj.h"

#include "proj.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace proj;

constexpr double km_per_degree = 111.195;

// By the image of a point 1 km away.
float dir_by_image(const Map& m, float dir, float x, float y) {
    float x2 = missing_f;
    float y2 = missing_f;
    if (m.offset(x, y, dir, 1.0F, &x2, &y2) == 0) {
        return missing_f;
    }
    return to_float(atan2_deg(static_cast<double>(x2) - x, static_cast<double>(y2) - y));
}

// The first word that fits decides: "lamb" hides "la" for "lambaz", "polar" is
// the map.
constexpr Projection rows[] = {
    {.code = proj_latlon,
     .name = "latlon",
     .words = {"ll", "lat"},
     .file_word = "LL",
     .forward = latlon,
     .inverse = latlon_inverse,
     .by_lat = latlon_lat,
     .by_lon = latlon_lon,
     .edge = {.width = 360.0, .gap = 50.0F, .limit = 180.0F, .side = 150.0F}},
    {.code = proj_pstereo,
     .numbers = MapNumbers::own_plon,
     .name = "pstereo",
     .words = {"polar", "ps"},
     .file_word = "PS",
     .take = take_stereo,
     .derive = derive_stereo,
     .forward = stereo,
     .inverse = stereo_inverse,
     .by_lat = stereo_lat,
     .by_lon = stereo_lon,
     .factor = stereo_factor,
     .dir_adj = stereo_dir_adj,
     .dir = stereo_dir,
     .meridians_meet = true},
    {.code = proj_satellite,
     .numbers = MapNumbers::orbit,
     .name = "sat",
     .words = {"sat"},
     .file_word = "SAT",
     .take = take_satellite,
     .derive = derive_satellite,
     .forward = satellite,
     .inverse = satellite_inverse,
     .dir_adj = dir_by_image,
     .meridians_meet = true},
    {.code = proj_lambert,
     .numbers = MapNumbers::cone,
     .name = "lamb",
     .words = {"lamb", "lc"},
     .file_word = "LC",
     .take = take_lambert,
     .derive = derive_lambert,
     .forward = lambert,
     .inverse = lambert_inverse,
     .by_lat = lambert_lat,
     .by_lon = lambert_lon,
     .factor = lambert_factor,
     .dir_adj = lambert_dir_adj,
     // Its width carries the end of a line out of the picture.
     .edge = {.width = 1000.0, .gap = 50.0F, .slanted = true},
     .meridians_meet = true},
    {.code = proj_lambert_az,
     .name = "lambaz",
     .words = {"la"},
     .forward = lambert_az,
     .inverse = lambert_az_inverse,
     // The antipode of the centre is the whole rim: a step across it would
     // cross the picture.
     .edge = {.tear = earth_rad},
     .centre_is_no_image = true},
    {.code = proj_gnomonic,
     .name = "gnom",
     .words = {"gn"},
     .forward = gnomonic,
     .inverse = gnomonic_inverse},
    {.code = proj_ortho,
     .name = "ortho",
     .words = {"or"},
     .derive = derive_ortho,
     .forward = ortho,
     .inverse = ortho_inverse},
    {.code = proj_mollweide,
     .name = "moll",
     .words = {"mo"},
     .forward = mollweide,
     .inverse = mollweide_inverse,
     .edge = {.width = 254.852, .half_height = 63.713, .gap = 10.0F}},
    {.code = proj_merc,
     .name = "merc",
     .words = {"me"},
     .file_word = "ME",
     .forward = mercator,
     .inverse = mercator_inverse,
     .by_lat = mercator_lat,
     .by_lon = mercator_lon,
     .edge = {.width = 400.31555892808814, .gap = 50.0F, .limit = 200.1603F, .side = 150.0F}},
    {.code = proj_pixel,
     .name = "pixel",
     .words = {"pix"},
     .set_limits = corner_limits,
     .forward = pixel,
     .inverse = pixel,
     .second_step = 1},
    {.code = proj_xy,
     .name = "xy",
     .words = {"xy"},
     .derive = derive_axes,
     .set_limits = axes_limits,
     .forward = axes,
     .inverse = axes_inverse,
     .second_step = 1},
    {.code = proj_xz,                                                .name = "xz",                                                        .set_limits = corner_limits                                                                    },
    {.code = proj_xlogp,
     .name = "xlogp",
     .words = {"xlogy", "xlogp", "vert"},
     .set_limits = corner_limits,
     .forward = log_pressure,
     .inverse = log_pressure_inverse,
     .second_step = -1},
    {.code = proj_category,
     .name = "cat",
     .words = {"cat"},
     .derive = derive_axes,
     .set_limits = axes_limits,
     .forward = axes,
     .inverse = axes_inverse,
     .second_step = 1,
     .numbered = false},
    {.code = proj_skewt,
     .name = "skewt",
     .words = {"skewt", "therm"},
     .derive = derive_skewt,
     .set_limits = skewt_limits,
     .forward = skewt,
     .inverse = skewt_inverse,
     .zoom = MapZoom::plot_x},
    {.code = proj_emagram,
     .name = "ema",
     .words = {"ema"},
     .set_limits = corner_limits,
     .forward = log_pressure,
     .inverse = log_pressure_inverse},
    {.code = proj_tephigram,
     .words = {"teph"},
     .set_limits = thermo_limits,
     .forward = tephigram,
     .inverse = tephigram_inverse},
    {.code = proj_rot_tephigram,
     .words = {"rteph"},
     .set_limits = thermo_limits,
     .forward = thermo,
     .inverse = thermo_inverse},
    {.code = proj_stuve,
     .name = "stuve",
     .words = {"stuve"},
     .set_limits = corner_limits,
     .forward = stuve,
     .inverse = stuve_inverse,
     .second_step = -1},
    {.code = proj_hodograph,
     .name = "polar",
     .words = {"hodo"},
     .set_limits = hodograph_limits,
     .forward = hodograph,
     .inverse = hodograph_inverse,
     .zoom = MapZoom::plot},
    {.code = proj_xp,
     .words = {"=xp"},
     .derive = derive_axes,
     .set_limits = xp_limits,
     .forward = xp,
     .inverse = xp_inverse},
    {.code = proj_zoom,                                                         .name = "zoom",                                                         .words = {"zoom"},                                                                            .set_limits = corner_limits},
    {.code = proj_size,                                                  .words = {"size"},                                                    .set_limits = corner_limits       },
};

// Without projection the pair is the place on the plot.
constexpr Projection no_projection = {.set_limits = corner_limits, .forward = same};
constexpr Projection unknown = {.code = -1, .set_limits = corner_limits};

// Any longitude to -180 to 180; the remainder is exact.
double wrap_lon(double lon) {
    return turn_once(std::fabs(lon) > 180.0 ? std::fmod(lon, 360.0) : lon);
}

// Stores a pair, or two missing values if there is none or a number of it is
// none. Returns 1 or 0.
int store(const MapPair& p, float* first, float* second) {
    const bool ok = p.ok && fits_float(p.first) && fits_float(p.second);
    *first = ok ? static_cast<float>(p.first) : missing_f;
    *second = ok ? static_cast<float>(p.second) : missing_f;
    return ok ? 1 : 0;
}

// Whether two inputs are numbers; on a map a missing one is no place.
bool usable(bool on_map, float first, float second) {
    if (!std::isfinite(first) || !std::isfinite(second)) {
        return false;
    }
    return !on_map || (is_set(first) && is_set(second));
}

// Fills the derived values for the current code.
void derive(Map& m) {
    m.xfactor = missing_f;
    m.yfactor = missing_f;
    m.mult = missing_f;
    m.scale = 1.0F;
    if (m.row->derive != nullptr) {
        m.row->derive(m);
    }
    m.sin_lat0 = sin_deg(m.domain.plat);
    m.cos_lat0 = cos_deg(m.domain.plat);
}

// A map lies about the image of its centre.
void centre_limits(Map& m) {
    const Domain& d = m.domain;
    float cx = missing_f;
    float cy = missing_f;
    m.tran(d.clat, d.clon, &cx, &cy);
    const double half_x = d.dx * (d.nx - 1.0) / 2.0;
    const double half_y = d.dy * (d.ny - 1.0) / 2.0;
    m.limits = {to_float(cx - half_x), to_float(cx + half_x), to_float(cy - half_y),
                to_float(cy + half_y)};
}

// Place `km` from a place in the direction `dir`, on a plane of degrees.
MapPair step_on_earth(float lat, float lon, double dir, double km) {
    return {lat + km * cos_deg(dir) / km_per_degree,
            lon + km * sin_deg(dir) / (km_per_degree * cos_deg(lat))};
}

// Whether a point of the window of one map, the edges included, lies in that of
// another.
bool reaches(const Map& from, const Map& to) {
    constexpr int steps = 8;
    const MAP_limits& w = from.limits;
    for (int i = 0; i <= steps; ++i) {
        for (int j = 0; j <= steps; ++j) {
            float lat = missing_f, lon = missing_f;
            float x = missing_f, y = missing_f;
            from.untran(w.x_min + (w.x_max - w.x_min) * static_cast<float>(i) / steps,
                        w.y_min + (w.y_max - w.y_min) * static_cast<float>(j) / steps, &lat, &lon);
            if (to.tran(lat, lon, &x, &y) == 1 && to.shows(x, y)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

// --- Projections ----------------------------------------------------------------

const Projection& map_projection(int code) noexcept {
    if (!is_set(code)) {
        return no_projection;
    }
    const auto* row = std::find_if(std::begin(rows), std::end(rows),
                                   [code](const Projection& r) { return r.code == code; });
    return row != std::end(rows) ? *row : unknown;
}

std::span<const Projection> map_projections() noexcept {
    return rows;
}

// --- The domain -----------------------------------------------------------------

Map map_make(const Domain& domain) {
    Map m;
    m.take(domain);
    return m;
}

void Map::take(const Domain& dom) {
    domain = dom;
    if (!is_set(domain.plat)) {
        domain.plat = domain.clat;
    }
    if (!is_set(domain.plon)) {
        domain.plon = domain.clon;
    }
    row = &map_projection(domain.proj);
    if (row->take != nullptr) {
        row->take(*this);
    }
    derive(*this);
    set_limits();
}

void Map::set_code(int code) {
    domain.proj = code;
    row = &map_projection(code);
    derive(*this);
}

void Map::set_reference(float lat, float lon) {
    domain.plat = lat;
    domain.plon = lon;
    derive(*this);
}

void Map::set_view(const MAP_limits& page) {
    view = page;
    derive(*this);
}

void Map::set_limits() {
    if (row->set_limits == nullptr) {
        centre_limits(*this);
        return;
    }
    row->set_limits(*this);
    derive(*this); // the slant follows the limits
}

// --- Transformation -------------------------------------------------------------

int Map::tran(float lat, float lon, float* x, float* y) const {
    if (row->forward == nullptr) {
        return 1;
    }
    const bool on_map = is_map_proj(row->code);
    if (!usable(on_map, lat, lon)) {
        return store(map_nowhere, x, y);
    }
    return store(row->forward(*this, lat, on_map ? wrap_lon(lon) : lon), x, y);
}

MapPair Map::lat_half(float lat) const {
    return std::isfinite(lat) && is_set(lat) ? row->by_lat(*this, lat) : map_nowhere;
}

MapPair Map::lon_half(float lon) const {
    return std::isfinite(lon) && is_set(lon) ? row->by_lon(*this, wrap_lon(lon)) : map_nowhere;
}

int Map::join(const MapPair& lat, const MapPair& lon, float* x, float* y) {
    return store(lat * lon, x, y);
}

int Map::untran(float x, float y, float* lat, float* lon) const {
    if (row->inverse == nullptr) {
        return 1;
    }
    if (!usable(is_map_proj(row->code), x, y)) {
        return store(map_nowhere, lat, lon);
    }
    const int result = store(row->inverse(*this, x, y), lat, lon);
    return row->centre_is_no_image && length(x, y) < on_point ? 0 : result;
}

bool Map::shows(float x, float y, double steps) const {
    const double margin_x = steps * domain.dx;
    const double margin_y = steps * domain.dy;
    return !is_set(domain.proj) || (x >= limits.x_min - margin_x && x <= limits.x_max + margin_x &&
                                    y >= limits.y_min - margin_y && y <= limits.y_max + margin_y);
}

int Map::grid_tran(float gx, float gy, float* x, float* y) const {
    const MapPair p{static_cast<double>(domain.dx) * gx + limits.x_min,
                    limits.y_max - static_cast<double>(domain.dy) * gy};
    return store(is_set(gx) ? p : map_nowhere, x, y);
}

int Map::grid_untran(float x, float y, float* gx, float* gy) const {
    const MapPair p{(static_cast<double>(x) - limits.x_min) / domain.dx,
                    (static_cast<double>(limits.y_max) - y) / domain.dy};
    return store(is_set(x) ? p : map_nowhere, gx, gy);
}

bool map_meets(const Map& a, const Map& b) {
    if (a.row->forward == nullptr || b.row->forward == nullptr) {
        return true;
    }
    if (is_map_proj(a.row->code) != is_map_proj(b.row->code)) {
        return false; // a diagram and the earth
    }
    return reaches(a, b) || reaches(b, a);
}

// --- Directions and distances ---------------------------------------------------

int Map::offset(float xi, float yi, float dir, float km, float* xf, float* yf) const {
    // The result of the inverse is no test: it is 0 at the centre of a Lambert
    // azimuthal domain. A point that lies nowhere comes back missing.
    float lat = missing_f;
    float lon = missing_f;
    untran(xi, yi, &lat, &lon);
    if (!is_set(lat) || !is_set(lon)) {
        return store(map_nowhere, xf, yf);
    }
    const MapPair end = step_on_earth(lat, lon, dir, km);
    return tran(to_float(end.first), to_float(end.second), xf, yf);
}

float Map::factor(float lat) const {
    return row->factor != nullptr ? row->factor(*this, lat) : 1.0F;
}

float Map::dir_adj(float dir, float x, float y) const {
    return row->dir_adj != nullptr ? row->dir_adj(*this, dir, x, y) : to_float(dir);
}

float Map::dir(float x1, float y1, float x2, float y2) const {
    const double a = atan2_deg(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1);
    return row->dir != nullptr ? row->dir(*this, a, x1, y1) : to_float(a);
}
