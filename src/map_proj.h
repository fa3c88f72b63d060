// map_proj.h: a map as a value: what a domain means in plot coordinates, and
// the facts of each projection, a row of one table. Nothing here is a state:
// two maps side by side need no switching to and fro.
//
// A new projection is a file proj_NAME.cpp with its formulas, their names in
// proj.h, and a row of the table in map_proj.cpp.
#pragma once

#include "zyr.h"

#include <array>
#include <span>

// Projection codes of `Domain::proj`. Codes 1 to 9 are maps.
enum {
    proj_pstereo = 1,
    proj_latlon = 2,
    proj_merc = 3,
    proj_lambert = 4,
    proj_ortho = 5,
    proj_gnomonic = 6,
    proj_mollweide = 7,
    proj_lambert_az = 8,
    proj_satellite = 9,
    proj_xy = 20,
    proj_xz = 21,
    proj_xlogp = 22,
    proj_hodograph = 23,
    proj_category = 24,
    proj_xp = 25,
    proj_skewt = 40,
    proj_stuve = 41,
    proj_emagram = 42,
    proj_tephigram = 43,
    proj_rot_tephigram = 44,
    proj_zoom = 50,
    proj_size = 51,
    proj_pixel = 99
};

// Whether a code is a map of the earth.
constexpr bool is_map_proj(int proj) {
    return proj >= 1 && proj <= 9;
}

// A window of plot coordinates.
struct MAP_limits {
    float x_min = 0.0F;
    float x_max = 0.0F;
    float y_min = 0.0F;
    float y_max = 0.0F;
};

// A pair of coordinates, or the news that there is none.
struct MapPair {
    double first = 0.0;
    double second = 0.0;
    bool ok = true;
};
constexpr MapPair map_nowhere{0.0, 0.0, false};

constexpr MapPair operator*(const MapPair& a, const MapPair& b) {
    return {a.first * b.first, a.second * b.second, a.ok && b.ok};
}

struct Map;

// --- Projections ------------------------------------------------------------

// Where a map of the earth is cut open: one place has an image on either side.
struct MapEdge {
    double width = 0.0;       // between the two images in x; 0: no such edge
    double half_height = 0.0; // of an elliptic map, whose width ends at that y; 0: others
    float gap = 0.0F;         // points of a contour farther apart in x lie on either side
    float limit = 0.0F;       // largest x of the map; 0: not needed
    float side = 0.0F;        // points beyond this x lie at the edge
    bool slanted = false;     // the edge is no vertical: the other image is elsewhere
    float tear = 0.0F;        // distance no line can have: its ends are one place; 0: none
};

// What follows the word of a projection in grid and image files.
enum class MapNumbers { none, own_plon, cone, orbit };

// Which extents of a zoomed diagram are plot distances, not data values.
enum class MapZoom { data, plot_x, plot };

// The facts of a projection. Functions that are null: see each.
struct Projection {
    int code = missing;
    MapNumbers numbers = MapNumbers::none; // that follow the file word
    const char* name = "";                 // as DOM_print writes it
    std::array<const char*, 3> words = {}; // that begin a domain string; '=': the whole word
    const char* file_word = "";            // in grid and image files; empty: it has none
    void (*take)(Map&) = nullptr;          // parameters of a new domain
    void (*derive)(Map&) = nullptr;        // constants, after a change of what they depend on
    void (*set_limits)(Map&) = nullptr;    // null: about the centre, as on maps
    // Image of latitude and longitude, and back; null: no formula.
    MapPair (*forward)(const Map&, double lat, double lon) = nullptr;
    MapPair (*inverse)(const Map&, double x, double y) = nullptr;
    // The image as a product of what follows from the latitude and what follows
    // from the longitude, for nets of points; null: it is none.
    MapPair (*by_lat)(const Map&, double lat) = nullptr;
    MapPair (*by_lon)(const Map&, double lon) = nullptr;
    float (*factor)(const Map&, double lat) = nullptr;                     // map scale; null: 1
    float (*dir_adj)(const Map&, float dir, float x, float y) = nullptr;   // null: unchanged
    float (*dir)(const Map&, double plot_dir, float x, float y) = nullptr; // null: unchanged
    MapEdge edge = {};
    bool meridians_meet = false;     // in a point, so that they end before it
    bool centre_is_no_image = false; // the inverse gives the centre, but reports none
    int second_step = 0;             // of a diagram's grid: up, down; 0: as the extent
    bool numbered = true;            // whether a diagram's first axis bears numbers
    MapZoom zoom = MapZoom::data;
};

// Row of a code; of one that nobody knows, a row without formulas. The list is
// in the order in which words are tried.
const Projection& map_projection(int code) noexcept;
std::span<const Projection> map_projections() noexcept;

// --- Maps -------------------------------------------------------------------

// Where a satellite is, in 100 km from the earth's centre, and what follows
// from it and from the equator's radius.
struct MapOrbit {
    static constexpr float start = 421.64F; // before any domain
    static constexpr float equator = 63.78137F;
    float rad = start;
    float rad2 = start * start;
    float rad4 = start * start * start * start;
    float rad2_earth2 = start * start - equator * equator;
    float earth_ratio = 63.7122F / start;
    bool scan_angles = false; // the plot has scan angles in place of tangents
};

// A domain made ready for transformation.
struct Map {
    Domain domain; // with `plat` and `plon` set
    MAP_limits limits;
    MAP_limits view; // viewport of the page, for diagrams that slant
    const Projection* row = &map_projection(missing);

    // Parameters, kept until a domain with the same code brings others.
    float tlat1 = 30.0F; // true latitudes, degrees
    float tlat2 = 60.0F;
    MapOrbit orbit;

    // Derived for the code: cone constant, slant or axis scales; radius
    // constant; hemisphere.
    float xfactor = missing_f;
    float yfactor = missing_f;
    float mult = missing_f;
    float scale = 1.0F;    // 1 north, -1 south
    double sin_lat0 = 0.0; // sine and cosine of the reference latitude
    double cos_lat0 = 1.0;

    // Takes a domain, an unset `plat` or `plon` from its centre. The others
    // change the code, the reference point or the viewport alone; the limits stay.
    void take(const Domain& dom);
    void set_code(int code);
    void set_reference(float lat, float lon);
    void set_view(const MAP_limits& page);
    void set_limits();

    // As MAP_tran and MAP_untran (maptran.h).
    int tran(float lat, float lon, float* x, float* y) const;
    int untran(float x, float y, float* lat, float* lon) const;
    // The two halves of the image where the projection has them, and the image
    // they make, which is that of tran to the last bit.
    [[nodiscard]] bool has_halves() const { return row->by_lat != nullptr; }
    [[nodiscard]] MapPair lat_half(float lat) const;
    [[nodiscard]] MapPair lon_half(float lon) const;
    static int join(const MapPair& lat, const MapPair& lon, float* x, float* y);
    // Position on the domain's grid, 0, 0 at the upper left, to plot point and
    // back. Return 1; 0 with both outputs missing where MAP_grid_tran gives -1.
    int grid_tran(float gx, float gy, float* x, float* y) const;
    int grid_untran(float x, float y, float* gx, float* gy) const;
    // As MAP_offset, MAP_factor, MAP_dir_adj and MAP_dir.
    int offset(float xi, float yi, float dir, float km, float* xf, float* yf) const;
    [[nodiscard]] float factor(float lat) const;
    [[nodiscard]] float dir_adj(float dir, float x, float y) const;
    [[nodiscard]] float dir(float x1, float y1, float x2, float y2) const;
    // Whether a plot point lies in the limits, widened by a number of grid
    // steps; true without projection.
    [[nodiscard]] bool shows(float x, float y, double steps = 0.0) const;
};

// The map of a domain.
Map map_make(const Domain& domain);

// Whether the windows of two maps show a place in common, by points spread over
// both; true where that has no meaning.
bool map_meets(const Map& a, const Map& b);

// Map scale of polar stereographic maps, whatever map is about.
float map_stereo_factor(double lat);
