// Map projections: published points, there and back, points without image.
#include "maptran.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>

namespace {

constexpr float nan_f = std::numeric_limits<float>::quiet_NaN();
constexpr float inf_f = std::numeric_limits<float>::infinity();
constexpr double R = 63.7122;
constexpr double to_rad = M_PI / 180.0;

Domain make(int proj, float plat, float plon, float p0 = missing_f, float p1 = missing_f,
            int ellipse = 0) {
    Domain d;
    d.proj = proj;
    d.plat = d.clat = plat;
    d.plon = d.clon = plon;
    d.param[0] = p0;
    d.param[1] = p1;
    d.ellipse = ellipse;
    d.nx = 25;
    d.ny = 17;
    d.dx = d.dy = 1.2F;
    return d;
}
void use(const Domain& d) {
    MAP_domain(&d);
}

struct Point {
    float a = 0.0F, b = 0.0F;
    int result = -5;
    bool operator==(const Point&) const = default;
};
constexpr Point no_point{missing_f, missing_f, 0};
Point tran(float lat, float lon) {
    Point p;
    p.result = MAP_tran(lat, lon, &p.a, &p.b);
    return p;
}
Point untran(float x, float y) {
    Point p;
    p.result = MAP_untran(x, y, &p.a, &p.b);
    return p;
}
MAP_limits limits() {
    MAP_limits lim;
    MAP_get_limits(&lim);
    return lim;
}

// Angle between two places, degrees.
double apart(float lat1, float lon1, float lat2, float lon2) {
    const double dlat = std::sin((lat1 - static_cast<double>(lat2)) * to_rad / 2.0);
    const double dlon = std::sin((lon1 - static_cast<double>(lon2)) * to_rad / 2.0);
    const double h = dlat * dlat + std::cos(lat1 * to_rad) * std::cos(lat2 * to_rad) * dlon * dlon;
    return 2.0 * std::asin(std::sqrt(h)) / to_rad;
}

// Random numbers from a fixed sequence.
struct Dice {
    std::mt19937 random{7};
    float between(float lo, float hi) {
        return std::uniform_real_distribution<float>(lo, hi)(random);
    }
    // A third of them any bits at all.
    float any() {
        const float wild = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        return random() % 3 == 0 ? wild : between(-200, 200);
    }
};

// A domain of the code, and the southern half of the time its mirror image.
Domain random_domain(int proj, bool south, Dice& dice) {
    const float lat = dice.between(0, 90) * (south ? -1.0F : 1.0F), lon = dice.between(-180, 180);
    return proj == 9   ? make(9, 0, lon, 421.64F, south, 1) // in the south by scan angles
           : proj == 4 ? make(4, lat, lon, dice.between(15, 45), dice.between(46, 70))
                       : make(proj, lat, lon);
}

} // namespace

// Numerical examples of Snyder, USGS Professional Paper 1395 (sphere), two grids
// of NCEP Office Note 388, and the example of the GOES-R product users' guide
// (ellipsoid; its angles turned to the order of axes here). Coordinates are those
// of the second point less those of the first, in `unit`.
TEST(Maptran, PublishedPoints) {
    constexpr float u = missing_f;
    const struct {
        const char* name;
        int proj;
        float plat, plon, p0, p1, lat0, lon0, lat, lon;
        double unit, x, y, tolerance;
    } rows[] = {
        {"Mercator",     3, 0,  -180, u,       u,  0,      -180,      35,         -75,         R,           1.8325957,  0.6528366,  2e-7},
        {"conic",        4, 23, -96,  33,      45, 23,     -96,       35,         -75,         R,           0.2966785,  0.2462112,  3e-7},
        {"orthographic", 5, 40, -100, u,       u,  40,     -100,      30,         -110,        R,           -0.1503837, -0.1651911, 2e-7},
        {"gnomonic",     6, 40, -100, u,       u,  40,     -100,      30,         -110,        R,           -0.1542826, -0.1694739, 2e-7},
        {"oval",         7, 0,  -90,  u,       u,  0,      -90,       -50,        -75,         R / M_SQRT2, 0.1788845,  -0.9208758, 2e-7},
        {"equal-area",   8, 40, -100, u,       u,  40,     -100,      -20,        100,         R / 3,       -4.2339303, 4.0257775,  2e-6},
        {"grid 5",       1, 90, -105, u,       u,  90,     0,         7.647F,     -133.443F,   1.905,       -26,        -48,        5e-4},
        {"view",         9, 0,  -75,  421.64F, 1,  0,      -75,       33.846162F, -84.690932F, 421.64,      -0.0241617,
         0.0953123,                                                                                                                 6e-7},
        {"211",          4, 25, -95,  25,      25, 12.19F, -133.459F, 57.29F,     -49.385F,    0.812705,    92,         64,         2e-3},
    };
    for (const auto& row : rows) {
        use(make(row.proj, row.plat, row.plon, row.p0, row.p1, 1));
        const Point p0 = tran(row.lat0, row.lon0);
        const Point p = tran(row.lat, row.lon);
        EXPECT_NEAR((p.a - p0.a * 1.0) / row.unit, row.x, row.tolerance) << row.name;
        EXPECT_NEAR((p.b - p0.b * 1.0) / row.unit, row.y, row.tolerance) << row.name;
    }
}

TEST(Maptran, ThereAndBack) {
    // Latitudes (mirrored in the south), the cosine of the largest distance
    // from the reference point, and the largest angle that single precision
    // costs, degrees: near an edge one step of a float is a long way.
    const struct {
        int proj;
        float lat_lo, lat_hi, cos_limit;
        double tolerance;
    } rows[] = {
        {1, -74, 90, -1,    3e-5},
        {2, -90, 90, -1,    2e-5},
        {3, -89, 89, -1,    3e-5},
        {4, -80, 89, -1,    1e-4},
        {5, -90, 90, 0.1F,  3e-4},
        {6, -90, 90, 0.1F,  3e-4},
        {7, -89, 89, -1,    4e-4},
        {8, -90, 90, -0.9F, 1e-4},
        {9, -70, 70, 0.3F,  3e-4},
    };
    Dice dice;
    for (const auto& row : rows) {
        double worst = 0.0;
        for (int i = 0; i < 20000; ++i) {
            const bool south = i % 2 == 1;
            const Domain d = random_domain(row.proj, south, dice);
            const float lat = dice.between(row.lat_lo, row.lat_hi) * (south ? -1.0F : 1.0F);
            const float lon = dice.between(-180, 180);
            use(d);
            if (std::cos(apart(d.plat, d.plon, lat, lon) * to_rad) > row.cos_limit) {
                const Point p = tran(lat, lon);
                const Point q = untran(p.a, p.b);
                worst = std::max(worst, p.result + q.result == 2 ? apart(lat, lon, q.a, q.b) : 360);
            }
        }
        EXPECT_LT(worst, row.tolerance) << row.proj;
    }
    // The inverse of the spherical satellite view is exact at its centre alone.
    use(make(9, 0, 10, 421.64F));
    EXPECT_EQ(untran(0, 0), (Point{0, 10, 1}));
    const Point p = tran(30, 20);
    EXPECT_LT(apart(30, 20, untran(p.a, p.b).a, untran(p.a, p.b).b), 1.0);
}

TEST(Maptran, DiagramsThereAndBack) {
    const MAP_limits page{0.1F, 0.9F, 0.2F, 0.8F};
    MAP_set_view(&page);
    for (const int proj : {20, 22, 23, 24, 25, 40, 41, 42, 43, 44, 99}) {
        Domain d = make(proj, 10, 1000);
        d.dx = 40;
        d.dy = -800;
        use(d);
        const Point p = tran(12.5F, 700);
        const Point q = untran(p.a, p.b);
        EXPECT_EQ(p.result + q.result, 2) << proj;
        EXPECT_NEAR(q.a, 12.5, 1e-3) << proj;
        EXPECT_NEAR(q.b, 700, 0.02) << proj;
    }
    // Isotherms of a skew-T run at 45 degrees on the page.
    Domain skewt = make(40, -30, 1000);
    skewt.dx = 60;
    skewt.dy = -900;
    use(skewt);
    const Point low = tran(0, 1000), high = tran(0, 500);
    EXPECT_NEAR((high.a - low.a) / 60 * 0.8, (high.b - low.b) / std::log(10.0) * 0.6, 1e-5);
}

TEST(Maptran, PointsWithoutImage) {
    const struct {
        const char* name;
        int proj;
        float plat;
        bool back;
        float first, second;
    } rows[] = {
        {"far side",         5,  40, false, -40,       170      },
        {"beyond the disc",  5,  40, true,  60,        60       },
        {"horizon",          6,  0,  false, 0,         90       },
        {"beyond the oval",  7,  0,  true,  0,         64       },
        {"antipode",         8,  0,  false, 0,         180      },
        {"beyond the disc",  8,  40, true,  100,       100      },
        {"behind the limb",  9,  0,  false, 0,         85       },
        {"beside the earth", 9,  0,  true,  70,        0        },
        {"no latitude",      1,  90, false, nan_f,     0        },
        {"no longitude",     2,  0,  false, 0,         inf_f    },
        {"missing",          1,  90, false, missing_f, missing_f},
        {"missing",          4,  40, true,  missing_f, missing_f},
        {"no pressure",      22, 0,  false, 10,        0        },
        {"below zero",       41, 0,  true,  10,        3        },
    };
    for (const auto& row : rows) {
        use(make(row.proj, row.plat, 0));
        EXPECT_EQ(row.back ? untran(row.first, row.second) : tran(row.first, row.second), no_point)
            << row.name;
    }
    use(make(4, 40, 0, 30, -30)); // parallels that make no cone
    EXPECT_EQ(tran(40, 0), no_point);
}

TEST(Maptran, AnyLongitude) {
    for (int proj = 1; proj <= 9; ++proj) {
        use(make(proj, proj == 9 ? 0.0F : 10.0F, -160));
        EXPECT_EQ(tran(20, 190), tran(20, -170)) << proj;
        EXPECT_EQ(tran(20, -170.0F + 360000.0F), tran(20, -170)) << proj;
    }
}

TEST(Maptran, HeldAtTheEdges) {
    use(make(1, 90, 0));
    EXPECT_NEAR(tran(90, 0).b, 0, 1e-6);
    EXPECT_EQ(tran(-80, 30), tran(-75, 30));
    EXPECT_NEAR(MAP_factor(60, 0), 1.0, 5e-4);
    EXPECT_EQ(MAP_factor(0, 0), 1.866F);
    use(make(3, 0, -100));
    EXPECT_EQ(tran(90, 0), tran(89.9F, 0));
    EXPECT_NEAR(tran(0, 80.5F).a, -179.5 * R * to_rad, 1e-4); // past the other edge
    use(make(5, 0, 0));
    EXPECT_EQ(tran(0, 90).result, 1); // the rim
    use(make(8, 35, -98));
    EXPECT_EQ(untran(0, 0), (Point{35, -98, 0}));
}

TEST(Maptran, DomainAndLimits) {
    Domain d = make(2, missing_f, missing_f);
    d.clat = 40;
    d.clon = -100;
    d.dx = d.dy = 1.5F;
    use(d); // the centre is the reference point
    const MAP_limits lim = limits();
    EXPECT_TRUE(lim.x_min == -18.0F && lim.y_max == 52.0F);
    EXPECT_TRUE(MAP_in_domain(-18, 52) == 1 && MAP_in_domain(-18.1F, 40) == 0);
    EXPECT_TRUE(MAP_in_grid_domain(-22.5F, 40) == 1 && MAP_in_grid_domain(0, 56.6F) == 0);
    Point g;
    g.result = MAP_grid_untran(lim.x_max, lim.y_min, &g.a, &g.b);
    EXPECT_EQ(g, (Point{24, 16, 0}));
    g.result = MAP_grid_tran(missing_f, 1, &g.a, &g.b);
    EXPECT_EQ(g, (Point{missing_f, missing_f, -1}));
    for (const int proj : {20, 24, 25}) {
        use(make(proj, 5, 7));
        EXPECT_EQ(limits().x_max, 30) << proj;
        EXPECT_EQ(limits().y_max, proj == 25 ? 10 : 24) << proj;
    }
}

// Two maps side by side answer as each does alone, and leave the current one be.
TEST(Maptran, MapsAreValues) {
    use(make(3, 0, 0));
    const Map own = map_make(make(4, 40, -96, 33, 45));
    const Map plot = map_make(make(9, 0, -75, 421.64F, 1));
    for (const float lat : {20.0F, 35.0F}) {
        Point a, b;
        a.result = own.tran(lat, -80, &a.a, &a.b);
        b.result = plot.tran(lat, -80, &b.a, &b.b);
        const float turned = own.dir_adj(30, a.a, a.b), scale = own.factor(lat);
        EXPECT_EQ(MAP_get_proj(), 3);
        use(own.domain);
        EXPECT_EQ(tran(lat, -80), a);
        EXPECT_EQ(MAP_dir_adj(30, a.a, a.b), turned);
        EXPECT_EQ(MAP_factor(lat, 0), scale);
        use(plot.domain);
        EXPECT_EQ(tran(lat, -80), b);
        EXPECT_EQ(limits().x_max, plot.limits.x_max);
        use(make(3, 0, 0));
    }
}

// Swapping the code keeps the limits; null means no projection.
TEST(Maptran, OtherCode) {
    use(make(2, 40, -100));
    const float x_min = limits().x_min;
    MAP_proj(1);
    EXPECT_TRUE(MAP_factor(0, 0) == 1.866F && limits().x_min == x_min);
    MAP_proj(2);
    EXPECT_EQ(tran(40, -100), (Point{0, 40, 1}));
    EXPECT_EQ(MAP_domain(nullptr), -1);
    EXPECT_EQ(tran(12, 34), (Point{12, 34, 1}));
}

// A step of 20 km by MAP_offset points where MAP_dir_adj says, has the length that
// MAP_factor says, and on polar maps a direction that MAP_dir reads.
TEST(Maptran, Directions) {
    const struct {
        int proj;
        float plat, plon, p0, p1, lat, lon;
    } rows[] = {
        {1, 90,  -105, missing_f, missing_f, 40,  -80},
        {1, -90, 20,   missing_f, missing_f, -35, 50 },
        {4, 40,  -96,  33,        45,        45,  -70},
        {9, 0,   -75,  421.64F,   1,         35,  -75},
    };
    for (const auto& row : rows) {
        use(make(row.proj, row.plat, row.plon, row.p0, row.p1, 1));
        const Point p = tran(row.lat, row.lon);
        const double length = MAP_factor(std::fabs(row.lat), 0) * 0.2;
        for (const float dir : {0.0F, 60.0F, 135.0F, -90.0F}) {
            Point q;
            EXPECT_EQ(MAP_offset(p.a, p.b, dir, 20, &q.a, &q.b), 1);
            const double plot = std::atan2(q.a - p.a, q.b - p.b);
            EXPECT_GT(std::cos(plot - MAP_dir_adj(dir, p.a, p.b) * to_rad), 0.9999) << dir;
            const double back = std::cos((MAP_dir(p.a, p.b, q.a, q.b) - dir) * to_rad);
            const double error = std::hypot(q.a - p.a, q.b - p.b) - length;
            EXPECT_TRUE(row.proj != 1 || back > 0.9999) << dir;
            EXPECT_TRUE(row.proj == 9 || std::fabs(error) < 1e-3) << dir;
        }
    }
    EXPECT_EQ(MAP_dir_adj(0, 80, 0), missing_f); // beside the earth
    use(make(4, -40, 20, 33, 45, 1));            // a southern cone stands on its tip
    EXPECT_NEAR(MAP_dir_adj(100, 10, 10), 55, 1e-3);
}

// Whatever bits come in, only numbers go out.
TEST(Maptran, NeverInfinite) {
    Dice dice;
    for (int i = 0; i < 60000; ++i) {
        Domain d = make(i % 46, dice.any(), dice.any(), dice.any(), dice.any());
        d.clat = dice.any();
        d.clon = dice.any();
        d.dx = dice.any();
        d.ny = static_cast<int>(dice.random());
        d.ellipse = i / 46 % 2;
        use(d);
        const Point p = tran(dice.any(), dice.any());
        const Point q = untran(dice.any(), dice.any());
        Point o;
        MAP_offset(dice.any(), dice.any(), dice.any(), dice.any(), &o.a, &o.b);
        const MAP_limits lim = limits();
        const double sum = std::fabs(p.a * 1.0) + std::fabs(p.b) + q.a + q.b + o.a + o.b +
                           lim.x_min + lim.x_max + lim.y_min + lim.y_max +
                           MAP_dir_adj(dice.any(), dice.any(), dice.any()) +
                           MAP_dir(dice.any(), dice.any(), dice.any(), dice.any());
        ASSERT_TRUE(std::isfinite(sum)) << "code " << d.proj;
    }
}
