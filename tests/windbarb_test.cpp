// Wind barbs, arrows and tracks: the figures that reach the page.
#include "windbarb.h"

#include "figure_page.h"
#include "maptran.h"
#include "region.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace {

// What `draw` puts on a page of 20 by 20 units: "A" and the points of an
// area, "L" and those of a line.
template <class Draw> std::string drawn(Draw draw) {
    Domain stereo;
    DOM_decode("ps:90:-97,40,-97,21,21,1,1", &stereo);
    FigurePage page(stereo, ZYR_SOURCE_DIR);
    page.window({0.0F, 20.0F, 0.0F, 20.0F});
    draw();
    page.read(tran_map);
    std::string all;
    for (const Figure& figure : page.figures) {
        all += (figure.filled ? "A" : "L") + show(figure.points) + "\n";
    }
    return all;
}

// A staff of 10 from (5, 5) straight up: a fraction f lies at y = 5 + 10 f and
// the barbs point to larger x.
TEST(Windbarb, BarbsByspeed) {
    const std::string flag = "A(5.00,15.00) (10.00,15.00) (5.00,13.80) (5.00,15.00)\n"
                             "L(5.00,15.00) (10.00,15.00) (5.00,13.80) (5.00,15.00)\n";
    const struct {
        float spd;
        std::string figures;
    } rows[] = {
        {1,    ""                                                                },
        {2.9F, ""                                                                },
        {3,    "L(5.00,13.80) (7.50,14.40)\n"                                    },
        {7.9F, "L(5.00,13.80) (7.50,14.40)\n"                                    },
        {8,    "L(5.00,15.00) (10.00,16.20)\n"                                   },
        {15,   "L(5.00,15.00) (10.00,16.20)\nL(5.00,13.80) (7.50,14.40)\n"       },
        {48,   flag                                                              },
        {65,   flag + "L(5.00,12.60) (10.00,13.80)\nL(5.00,11.40) (7.50,12.00)\n"},
    };
    const std::string staff = "L(5.00,5.00) (5.00,15.00)\n";
    for (const auto& row : rows) {
        const auto draw = [&] { EXPECT_EQ(WIND_barb(5, 5, 0, row.spd, 10, 0), 0); };
        EXPECT_EQ(drawn(draw), staff + row.figures) << row.spd;
    }
    // Above 300 knots: as 300, six flags; and the staff begins at its offset.
    const auto strong = drawn([] { WIND_barb(5, 5, 30, 999, 10, 2); });
    EXPECT_EQ(strong, drawn([] { WIND_barb(5, 5, 390, 300, 10, 2); }));
    EXPECT_EQ(std::count(strong.begin(), strong.end(), 'A'), 6);
    EXPECT_EQ(strong.substr(0, strong.find('\n')), "L(6.00,6.73) (10.00,13.66)");
}

TEST(Windbarb, NothingForCalmAndMissing) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    for (const auto& [dir, spd] : std::initializer_list<std::pair<float, float>>{
             {90,        0        },
             {missing_f, 5        },
             {90,        missing_f},
             {nan,       5        },
             {90,        nan      }
    }) {
        const auto draw = [dir = dir, spd = spd] {
            const int results =
                WIND_barb(5, 5, dir, spd, 10, 0) + WIND_barb_map(5, 5, dir, spd, 10, 0) +
                WIND_vect(5, 5, dir, spd, 1, 1) + WIND_vect_map(5, 5, dir, spd, 1, 1) +
                WIND_track(5, 5, dir, spd, 1, 4, 0);
            EXPECT_EQ(results, -5);
        };
        EXPECT_EQ(drawn(draw), "") << dir << " " << spd;
    }
}

TEST(Windbarb, ArrowsAndTracks) {
    // From the west, 4 units of speed at size 2: a tip 8 to the right; the
    // head reaches back 0.2 * 0.5 of it.
    EXPECT_EQ(
        drawn([] { WIND_vect(5, 5, 270, 4, 2, 0.5F); }),
        "L(5.00,5.00) (13.00,5.00)\nL(13.00,5.00) (12.20,4.20)\nL(13.00,5.00) (12.20,5.80)\n");
    EXPECT_EQ(drawn([] { WIND_vect(5, 5, 0, 1, 2, 0); }), "L(5.00,5.00) (5.00,3.00)\n");
    EXPECT_EQ(drawn([] { WIND_track(5, 5, 270, 8, 2, 4, 0); }),
              "L(5.00,5.00) (13.00,5.00)\n"
              "L(5.00,5.40) (5.00,4.60)\nL(7.00,5.40) (7.00,4.60)\n"
              "L(9.00,5.40) (9.00,4.60)\nL(11.00,5.40) (11.00,4.60)\n"
              "L(13.00,5.00) (12.60,4.60)\nL(13.00,5.00) (12.60,5.40)\n");
}

// On a polar stereographic map north leans away from the reference longitude.
TEST(Windbarb, MapTurnsTheDirection) {
    const auto turned = drawn([] { WIND_barb_map(5, -5, 0, 20, 10, 0); });
    EXPECT_EQ(turned, drawn([] { WIND_barb(5, -5, -45, 20, 10, 0); }));
    EXPECT_NE(turned, drawn([] { WIND_barb(5, -5, 0, 20, 10, 0); }));
    EXPECT_EQ(drawn([] { WIND_vect_map(5, -5, 180, 5, 1, 1); }),
              drawn([] { WIND_vect(5, -5, 135, 5, 1, 1); }));
}

} // namespace
