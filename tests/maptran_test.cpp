// Map projections: published points, there and back, points without image.
#include "maptran.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr float nan_f = std::numeric_limits<float>::quiet_NaN();
constexpr float inf_f = std::numeric_limits<float>::infinity();
constexpr double R = 63.7122;

Domain make(int proj, float plat, float plon, float p0 = missing_f, float p1 = missing_f) {
    Domain d;
    d.proj = proj;
    d.plat = d.clat = plat;
    d.plon = d.clon = plon;
    d.param[0] = p0;
    d.param[1] = p1;
    d.nx = 25;
    d.ny = 17;
    d.dx = d.dy = 1.2F;
    return d;
}

struct Point {
    float a = 0.0F, b = 0.0F;
    int result = -5;
};
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

// Angle between two places, degrees.
double apart(float lat1, float lon1, float lat2, float lon2) {
    const double r = M_PI / 180.0;
    const double dlat = std::sin((lat1 - static_cast<double>(lat2)) * r / 2.0);
    const double dlon = std::sin((lon1 - static_cast<double>(lon2)) * r / 2.0);
    const double h = dlat * dlat + std::cos(lat1 * r) * std::cos(lat2 * r) * dlon * dlon;
    return 2.0 * std::asin(std::sqrt(h)) / r;
}

} // namespace

// Numerical examples of Snyder, USGS Professional Paper 1395 (sphere), and two
// grids of NCEP Office Note 388. Coordinates are those of the second point less
// those of the first, in units of `unit`.
TEST(Maptran, PublishedPoints) {
    constexpr float u = missing_f;
    const struct {
        const char* name;
        int proj;
        float plat, plon, p0, p1, lat0, lon0, lat, lon;
        double unit, x, y, tolerance;
    } rows[] = {
        {"Mercator",     3, 0,  -180, u,  u,  0,      -180,      35,     -75,       R,           1.8325957,  0.6528366,  2e-7},
        {"conic",        4, 23, -96,  33, 45, 23,     -96,       35,     -75,       R,           0.2966785,  0.2462112,  3e-7},
        {"orthographic", 5, 40, -100, u,  u,  40,     -100,      30,     -110,      R,           -0.1503837, -0.1651911, 2e-7},
        {"gnomonic",     6, 40, -100, u,  u,  40,     -100,      30,     -110,      R,           -0.1542826, -0.1694739, 2e-7},
        {"oval",         7, 0,  -90,  u,  u,  0,      -90,       -50,    -75,       R / M_SQRT2, 0.1788845,  -0.9208758, 2e-7},
        {"equal-area",   8, 40, -100, u,  u,  40,     -100,      -20,    100,       R / 3,       -4.2339303, 4.0257775,  2e-6},
        {"grid 5",       1, 90, -105, u,  u,  90,     0,         7.647F, -133.443F, 1.905,       -26,        -48,        5e-4},
        {"grid 211",     4, 25, -95,  25, 25, 12.19F, -133.459F, 57.29F, -49.385F,  0.812705,    92,         64,
         2e-3                                                                                                                },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Domain d = make(row.proj, row.plat, row.plon, row.p0, row.p1);
        ASSERT_EQ(MAP_domain(&d), 0);
        const Point p0 = tran(row.lat0, row.lon0);
        const Point p = tran(row.lat, row.lon);
        EXPECT_EQ(p.result, 1);
        EXPECT_NEAR((static_cast<double>(p.a) - p0.a) / row.unit, row.x, row.tolerance);
        EXPECT_NEAR((static_cast<double>(p.b) - p0.b) / row.unit, row.y, row.tolerance);
    }
}

// The geostationary view against the line of sight in space.
TEST(Maptran, SatelliteSeesEllipsoid) {
    Domain d = make(9, 0, -75, 421.64F, 1);
    d.ellipse = 1;
    MAP_domain(&d);
    const double lat = 33.846162 * M_PI / 180.0;
    const double lon = 9.690932 * M_PI / 180.0; // west of the satellite
    const double a = 63.78137;
    const double b = 63.56752;
    const double n = a * a / std::hypot(a * std::cos(lat), b * std::sin(lat));
    const double out = n * std::cos(lat);
    const double up = n * b * b / (a * a) * std::sin(lat);
    const double ahead = 421.64 - out * std::cos(lon);
    const double aside = -out * std::sin(lon);
    const Point p = tran(33.846162F, -84.690932F);
    EXPECT_NEAR(p.a / 421.64, std::atan2(aside, ahead), 3e-7);
    EXPECT_NEAR(p.b / 421.64, std::atan2(up, std::hypot(aside, ahead)), 3e-7);
}

TEST(Maptran, ThereAndBack) {
    // Places nearer than `cos_limit` to the edge of the visible part, or beyond
    // the latitudes, are left out: one float step there is a long way.
    const struct {
        int proj;
        float lat_lo, lat_hi, cos_limit;
        double tolerance; // degrees
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
    std::mt19937 random(7);
    const auto between = [&](float lo, float hi) {
        return std::uniform_real_distribution<float>(lo, hi)(random);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.proj);
        double worst = 0.0;
        for (int i = 0; i < 20000; i++) {
            const bool south = i % 2 == 1;
            Domain d = make(row.proj, between(0, 90), between(-180, 180));
            if (row.proj == 4) {
                d.param[0] = between(15, 45);
                d.param[1] = i % 3 == 0 ? d.param[0] : between(46, 70);
            } else if (row.proj == 9) {
                d.plat = d.clat = 0;
                d.ellipse = 1;
                d.param[0] = 421.64F;
                d.param[1] = static_cast<float>(i % 3 == 0);
            }
            d.plat = south ? -d.plat : d.plat;
            if (row.proj == 4 && south && d.param[0] == d.param[1]) {
                d.param[1] += 1; // a tangent cone stands in the north
            }
            MAP_domain(&d);
            const float lat = between(row.lat_lo, row.lat_hi) * (south ? -1.0F : 1.0F);
            const float lon = between(-180, 180);
            if (std::cos(apart(d.plat, d.plon, lat, lon) * M_PI / 180.0) < row.cos_limit) {
                continue;
            }
            const Point p = tran(lat, lon);
            const Point q = untran(p.a, p.b);
            ASSERT_TRUE(p.result == 1 && q.result == 1) << d.plat << " " << lat << " " << lon;
            worst = std::max(worst, apart(lat, lon, q.a, q.b));
        }
        EXPECT_LT(worst, row.tolerance);
    }
    // The inverse of the spherical satellite view is exact at its centre alone.
    const Domain sphere = make(9, 0, 10, 421.64F);
    MAP_domain(&sphere);
    EXPECT_EQ(apart(0, 10, untran(0, 0).a, untran(0, 0).b), 0.0);
    const Point p = tran(30, 20);
    EXPECT_LT(apart(30, 20, untran(p.a, p.b).a, untran(p.a, p.b).b), 1.0);
}

TEST(Maptran, DiagramsThereAndBack) {
    const MAP_limits page{0.1F, 0.9F, 0.2F, 0.8F};
    MAP_set_view(&page);
    for (const int proj : {20, 22, 23, 24, 25, 40, 41, 42, 43, 44, 99}) {
        SCOPED_TRACE(proj);
        Domain d = make(proj, 10, 1000);
        d.dx = 40;
        d.dy = -800;
        MAP_domain(&d);
        const Point p = tran(12.5F, 700);
        const Point q = untran(p.a, p.b);
        EXPECT_EQ(p.result + q.result, 2);
        EXPECT_NEAR(q.a, 12.5, 1e-3);
        EXPECT_NEAR(q.b, 700, 0.02);
    }
    const Domain skewt = [] {
        Domain d = make(40, -30, 1000);
        d.dx = 60;
        d.dy = -900;
        return d;
    }();
    MAP_domain(&skewt);
    MAP_limits lim;
    MAP_get_limits(&lim);
    // On the page an isotherm rises at 45 degrees.
    const double across = (tran(0, 500).a - tran(0, 1000).a) * 0.8 / (lim.x_max - lim.x_min);
    const double up = (tran(0, 500).b - tran(0, 1000).b) * 0.6 / (lim.y_max - lim.y_min);
    EXPECT_NEAR(across, up * 0.6 / 0.8 * 0.8 / 0.6, 1e-5);
}

TEST(Maptran, PointsWithoutImage) {
    const struct {
        const char* name;
        int proj;
        float plat, plon;
        bool back;
        float first, second;
    } rows[] = {
        {"far side",         5,  40, -100, false, -40,       80       },
        {"beyond the disc",  5,  40, -100, true,  60,        60       },
        {"gnomonic horizon", 6,  0,  0,    false, 0,         90       },
        {"beyond the oval",  7,  0,  0,    true,  0,         64       },
        {"antipode",         8,  0,  0,    false, 0,         180      },
        {"beyond the disc",  8,  40, 0,    true,  100,       100      },
        {"behind the limb",  9,  0,  -75,  false, 0,         10       },
        {"beside the earth", 9,  0,  -75,  true,  70,        0        },
        {"no latitude",      1,  90, 0,    false, nan_f,     0        },
        {"no longitude",     2,  0,  0,    false, 0,         inf_f    },
        {"missing",          1,  90, 0,    false, missing_f, missing_f},
        {"missing",          4,  40, 0,    true,  missing_f, missing_f},
        {"no pressure",      22, 0,  0,    false, 10,        0        },
        {"below zero",       41, 0,  0,    true,  10,        3        },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Domain d = make(row.proj, row.plat, row.plon);
        MAP_domain(&d);
        const Point p = row.back ? untran(row.first, row.second) : tran(row.first, row.second);
        EXPECT_EQ(p.result, 0);
        EXPECT_EQ(p.a, missing_f);
        EXPECT_EQ(p.b, missing_f);
    }
    const Domain no_cone = make(4, 40, 0, 30, -30);
    MAP_domain(&no_cone);
    EXPECT_EQ(tran(40, 0).result, 0);
}

TEST(Maptran, HeldAndWrapped) {
    for (int proj = 1; proj <= 9; proj++) {
        const Domain d = make(proj, proj == 9 ? 0.0F : 10.0F, -160);
        MAP_domain(&d);
        for (const float lon : {190.0F, -530.0F, -170.0F + 360000.0F}) {
            EXPECT_EQ(tran(20, lon).a, tran(20, -170).a) << proj;
            EXPECT_EQ(tran(20, lon).b, tran(20, -170).b) << proj;
        }
    }
    const Domain polar = make(1, 90, 0);
    MAP_domain(&polar);
    EXPECT_FLOAT_EQ(tran(90, 0).a, 0);
    EXPECT_FLOAT_EQ(tran(-80, 30).b, tran(-75, 30).b);
    EXPECT_NEAR(MAP_factor(60, 0), 1.0, 5e-4);
    EXPECT_FLOAT_EQ(MAP_factor(0, 0), 1.866F);
    const Domain merc = make(3, 0, -100);
    MAP_domain(&merc);
    EXPECT_EQ(tran(90, 0).b, tran(89.9F, 0).b);
    EXPECT_NEAR(tran(0, 80.5F).a, -179.5 * R * M_PI / 180, 1e-4); // past the other edge
    const Domain equator = make(5, 0, 0);
    MAP_domain(&equator);
    EXPECT_EQ(tran(0, 90).result, 1); // the rim
    const Domain az = make(8, 35, -98);
    MAP_domain(&az);
    const Point centre = untran(0, 0);
    EXPECT_EQ(centre.result, 0);
    EXPECT_EQ(centre.a, 35);
    EXPECT_EQ(centre.b, -98);
}

TEST(Maptran, DomainAndLimits) {
    Domain d = make(2, missing_f, missing_f);
    d.clat = 40;
    d.clon = -100;
    MAP_domain(&d);
    MAP_limits lim;
    MAP_get_limits(&lim);
    EXPECT_NEAR(lim.x_min, -14.4, 1e-5); // the centre is the reference point
    EXPECT_NEAR(lim.y_max, 49.6, 1e-5);
    EXPECT_EQ(MAP_in_domain(lim.x_min, lim.y_max), 1);
    EXPECT_EQ(MAP_in_domain(lim.x_min - 0.1F, 40), 0);
    EXPECT_EQ(MAP_in_grid_domain(lim.x_min - 3.5F, 40), 1);
    EXPECT_EQ(MAP_in_grid_domain(0, lim.y_max + 3.7F), 0);
    float gx = 0;
    float gy = 0;
    EXPECT_EQ(MAP_grid_untran(lim.x_max, lim.y_min, &gx, &gy), 0);
    EXPECT_NEAR(gx, 24, 1e-4);
    EXPECT_NEAR(gy, 16, 1e-4);
    EXPECT_EQ(MAP_grid_tran(missing_f, 1, &gx, &gy), -1);
    EXPECT_EQ(gy, missing_f);
    // Swapping the code keeps the limits; null means no projection.
    MAP_proj(1);
    EXPECT_NEAR(MAP_factor(0, 0), 1.866, 1e-6);
    MAP_proj(2);
    EXPECT_EQ(tran(40, -100).a, 0);
    EXPECT_EQ(MAP_domain(nullptr), -1);
    EXPECT_EQ(tran(12, 34).b, 34);
    EXPECT_EQ(MAP_in_domain(1e6F, 0), 1);
    for (const int proj : {20, 24, 25}) {
        d = make(proj, 5, 7);
        MAP_domain(&d);
        MAP_get_limits(&lim);
        EXPECT_EQ(lim.x_max, 30) << proj;
        EXPECT_EQ(lim.y_min, proj == 25 ? -7 : 7) << proj;
        EXPECT_EQ(lim.y_max, proj == 25 ? 10 : 24) << proj;
    }
}

// A step of 20 km by MAP_offset points where MAP_dir_adj says, has the length
// that MAP_factor says, and MAP_dir reads its direction back.
TEST(Maptran, Directions) {
    const struct {
        int proj;
        float plat, plon, p0, p1, lat, lon;
        bool length, back;
    } rows[] = {
        {1, 90,  -105, missing_f, missing_f, 40,  -80, true,  true },
        {1, -90, 20,   missing_f, missing_f, -35, 50,  false, true },
        {4, 40,  -96,  33,        45,        45,  -70, false, false},
    };
    for (const auto& row : rows) {
        const Domain d = make(row.proj, row.plat, row.plon, row.p0, row.p1);
        MAP_domain(&d);
        const Point p = tran(row.lat, row.lon);
        for (const float dir : {0.0F, 60.0F, 135.0F, 270.0F}) {
            SCOPED_TRACE(testing::Message() << row.proj << " " << row.lat << " " << dir);
            Point q;
            EXPECT_EQ(MAP_offset(p.a, p.b, dir, 20, &q.a, &q.b), 1);
            const double plot = std::atan2(q.a - p.a, q.b - p.b);
            const double wanted = MAP_dir_adj(dir, p.a, p.b) * M_PI / 180;
            EXPECT_NEAR(std::sin(plot - wanted), 0, 0.01);
            EXPECT_GT(std::cos(plot - wanted), 0);
            if (row.length) {
                EXPECT_NEAR(std::hypot(q.a - p.a, q.b - p.b), MAP_factor(row.lat, 0) * 0.2, 1e-3);
            }
            if (row.back) {
                const double got = MAP_dir(p.a, p.b, q.a, q.b) * M_PI / 180;
                EXPECT_NEAR(std::sin(got - dir * M_PI / 180), 0, 0.01);
            }
        }
    }
    Domain sat = make(9, 0, -75);
    sat.ellipse = 1;
    MAP_domain(&sat);
    const Point p = tran(35, -75);
    EXPECT_NEAR(MAP_dir_adj(0, p.a, p.b), 0, 0.5);
    EXPECT_EQ(MAP_dir_adj(0, 80, 0), missing_f);
}

// Whatever bits come in, only numbers go out.
TEST(Maptran, NeverInfinite) {
    std::mt19937 random(11);
    const auto any = [&] {
        const float wild = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        return random() % 3 == 0 ? wild : static_cast<float>(random() % 4000) / 10.0F - 200.0F;
    };
    for (int i = 0; i < 60000; i++) {
        Domain d = make(static_cast<int>(random() % 46), any(), any(), any(), any());
        d.clat = any();
        d.clon = any();
        d.dx = any();
        d.ny = static_cast<int>(random());
        d.ellipse = static_cast<int>(random() % 2);
        MAP_domain(&d);
        MAP_limits lim;
        MAP_get_limits(&lim);
        Point p = tran(any(), any());
        Point q = untran(any(), any());
        Point o{0, 0, 0};
        MAP_offset(any(), any(), any(), any(), &o.a, &o.b);
        for (const float v :
             {lim.x_min, lim.x_max, lim.y_min, lim.y_max, p.a, p.b, q.a, q.b, o.a, o.b,
              MAP_dir_adj(any(), any(), any()), MAP_dir(any(), any(), any(), any())}) {
            ASSERT_TRUE(std::isfinite(v)) << "code " << d.proj;
        }
    }
}
