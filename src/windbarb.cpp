// windbarb.cpp: wind barbs, arrows and storm tracks. Owns no state; draws with
// the attributes and the transformation in force, and the map variants ask
// the current domain for the direction.
#include "windbarb.h"

#include "gks.h"
#include "maptran.h"
#include "units.h"
#include "zyr.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float top_speed = 300.0F;

// Fractions of the staff.
constexpr double spacing = 0.12;
constexpr double full_length = 0.5;
constexpr double half_length = 0.25;

// A staff from the point, with the sine and cosine of its direction.
struct Staff {
    double x, y, size, s, c;

    // The point at a fraction of the staff, moved to the right of it (looking
    // along it to its end) by a part of its length.
    Gpt at(double fraction, double sideways = 0.0) const {
        return {static_cast<float>(x + size * (fraction * s + sideways * c)),
                static_cast<float>(y + size * (fraction * c - sideways * s))};
    }
};

void line(const Gpt& from, const Gpt& to) {
    const Gpt pts[] = {from, to};
    gpolyline(2, pts);
}

void half_barb(const Staff& staff, double place) {
    line(staff.at(0.88 - spacing * place), staff.at(0.94 - spacing * place, half_length));
}

void flag(const Staff& staff, int place) {
    const Gpt foot = staff.at(1.0 - spacing * place);
    const Gpt pts[] = {foot, staff.at(1.0 - spacing * place, full_length),
                       staff.at(0.88 - spacing * place), foot};
    gfill_area(4, pts);
    gpolyline(4, pts);
}

bool no_wind(float dir, float spd) {
    return !is_set(dir) || !is_set(spd) || spd == 0.0F || !std::isfinite(dir) ||
           !std::isfinite(spd);
}

// Where the wind goes, as a unit vector.
struct Heading {
    double u, v;
};

Heading heading(float dir) {
    const double angle = static_cast<double>(dir) * deg_to_rad;
    return {-std::sin(angle), -std::cos(angle)};
}

Gpt point(double x, double y) {
    return {static_cast<float>(x), static_cast<float>(y)};
}

// The two lines of an arrow's head at the tip; (au, av) is its length along
// the arrow.
void arrow_head(double tx, double ty, double au, double av) {
    const Gpt tip = point(tx, ty);
    line(tip, point(tx - au + av, ty - av - au));
    line(tip, point(tx - au - av, ty - av + au));
}

} // namespace

int WIND_barb(float x, float y, float dir, float spd, float size, float offset) {
    if (no_wind(dir, spd)) {
        return -1;
    }
    const double angle = static_cast<double>(dir) * deg_to_rad;
    const Staff staff = {x, y, size, std::sin(angle), std::cos(angle)};
    gset_fill_int_style(GSOLID);
    line({static_cast<float>(x + static_cast<double>(offset) * staff.s),
          static_cast<float>(y + static_cast<double>(offset) * staff.c)},
         staff.at(1.0));

    const double knots = static_cast<double>(std::clamp(spd, -top_speed, top_speed)) + 0.01;
    const int flags = static_cast<int>(std::floor((knots + 2.0) / 50.0));
    const double rest = knots - 50.0 * flags;
    const int halves = static_cast<int>(std::floor((rest + 2.0) / 5.0));
    const int barbs = static_cast<int>(std::floor((rest + 2.0) / 10.0));
    const bool half = halves % 2 != 0;
    if (half && barbs == 0 && flags == 0) {
        half_barb(staff, 0.0);
        return 0;
    }
    for (int i = 0; i < flags; ++i) {
        flag(staff, i);
    }
    const int first = flags == 0 ? -1 : flags;
    for (int j = 0; j < barbs; ++j) {
        const double place = spacing * (first + j);
        line(staff.at(0.88 - place), staff.at(1.0 - place, full_length));
    }
    if (half) {
        half_barb(staff, first + barbs);
    }
    return 0;
}

int WIND_barb_map(float x, float y, float dir, float spd, float size, float offset) {
    return WIND_barb(x, y, is_set(dir) ? MAP_dir_adj(dir, x, y) : dir, spd, size, offset);
}

int WIND_vect(float x, float y, float dir, float spd, float size, float arrow) {
    if (no_wind(dir, spd)) {
        return -1;
    }
    const Heading to = heading(dir);
    const double u = to.u * spd;
    const double v = to.v * spd;
    const double tx = x + size * u;
    const double ty = y + size * v;
    line({x, y}, point(tx, ty));
    if (arrow > 0.0F) {
        const double a = 0.2 * arrow * size;
        arrow_head(tx, ty, a * u, a * v);
    }
    return 0;
}

int WIND_vect_map(float x, float y, float dir, float spd, float size, float arrow) {
    return WIND_vect(x, y, is_set(dir) ? MAP_dir_adj(dir, x, y) : dir, spd, size, arrow);
}

int WIND_track(float x, float y, float dir, float spd, float arrow, int maj, int /*min*/) {
    if (no_wind(dir, spd)) {
        return -1;
    }
    const Heading to = heading(dir);
    const double tx = x + spd * to.u;
    const double ty = y + spd * to.v;
    line({x, y}, point(tx, ty));

    const double half = 0.2 * arrow;
    for (int i = 0; i < maj; ++i) {
        const double along = static_cast<double>(spd) / maj * i;
        const double mx = x + along * to.u;
        const double my = y + along * to.v;
        line(point(mx - half * to.v, my + half * to.u), point(mx + half * to.v, my - half * to.u));
    }
    if (arrow > 0.0F) {
        arrow_head(tx, ty, half * to.u, half * to.v);
    }
    return 0;
}
