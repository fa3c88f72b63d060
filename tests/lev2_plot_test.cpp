// The Level II plotter on small written volumes: whole pages against golden
// files, the place of each gate, figure counts, labels, and why a picture stays
// empty.
//
// `cmake --build --preset release --target update-golden` writes the golden
// files anew (tests/data/golden); look at the rendered pages before committing.
#include "lev2_writer.h"
#include "nids_page.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

// Scan 1, clear air: reflectivity of -100, -90, -32, 4.5, 5, 17, 50 and 94.5 in
// each of two radials. Scan 2: velocity of -100, -90, -63.5, 0, 1, 35.5 and 63 in
// one of its two radials, and spectrum width in the other.
Bytes two_scans() {
    const Lev2Moment refl = {
        "REF", 2125, 250, 8, 2.0F, 66.0F, {0, 1, 2, 75, 76, 100, 166, 255}
    };
    const Lev2Moment vel = {
        "VEL", 0, 250, 8, 2.0F, 129.0F, {0, 1, 2, 129, 131, 200, 255}
    };
    Lev2Moment width = vel;
    width.name = "SW ";
    Bytes records = lev2_other(2);
    for (int scan = 1; scan <= 2; ++scan) {
        for (int i = 0; i < 2; ++i) {
            Lev2Radial radial;
            radial.az = 30.0F + 90.0F * static_cast<float>(i);
            radial.half_degree = true;
            radial.elev_num = scan;
            radial.elev = scan == 1 ? 0.5F : 1.5F;
            radial.vcp = scan == 1 ? 32 : 21;
            radial.moments = {scan == 1 ? refl : i == 0 ? vel : width};
            records = nids_join({records, lev2_radial(radial)});
        }
    }
    Lev2Volume volume;
    volume.units = {records};
    return lev2_volume(volume, true);
}

class Lev2Plot : public RadarPlot {
protected:
    Lev2Plot() : RadarPlot(lev2_samples()) { write("volume", two_scans()); }
};

} // namespace

TEST_F(Lev2Plot, GoldenPages) {
    expect_golden(
        nids_page(dir, "./fixed_plain -dr sum,text,bord -pp range=10,site,dist=2:4", "lev2"),
        "lev2_refl");
    expect_golden(nids_page(dir,
                            "./generic_bzip2 -dr sum -pp nobar -va vel2 "
                            "-pd merc,35.3,-97.3,41,31,.01,.01",
                            "lev2z"),
                  "lev2_vel");
}

// On the volume's own domain, 3 * range steps of `dx` are as wide as the page. A
// gate is `dx` times its length in km, the first one a hundredth of its
// distance. A radial is a degree wide about its azimuth. Exactly, the distance is that
// of the gate's centre, along the ground, and the radial half a degree wide.
TEST_F(Lev2Plot, GatesHaveTheirPlace) {
    constexpr double page_width = 755.0;
    constexpr int range = 5;
    constexpr double degree = std::numbers::pi / 180;
    const double factor = (1 + std::sin(60 * degree)) / (1 + std::sin(35.333 * degree));
    const double dx = factor * 0.54 * 1.852 / 100;
    const double points = page_width / (3 * range * dx);
    struct Row {
        const char* variable;
        double first_km, gate, elevation;
        bool exact;
    };
    for (const Row& row : std::vector<Row>{
             {"REF1", 2.125, 4, 0.5, false},
             {"vel2", 0,     2, 1.5, false},
             {"REF1", 2.125, 1, 0.5, true },
             {"vel2", 0,     1, 1.5, true }, // range folded
    }) {
        const NidsPage page = nids_page(dir,
                                        std::string("./volume -dr sum -pp nobar,range=5") +
                                            (row.exact ? ",exact -va " : " -va ") + row.variable,
                                        "lev2z");
        const auto corners = first_figure(page.text);
        ASSERT_EQ(corners.size(), 5U) << row.variable << page.run.err;
        const double step =
            row.exact ? 0.25 * std::cos(row.elevation * degree) * factor / 100 : 0.25 * dx;
        const double first = row.exact ? (row.first_km / 0.25 - 0.5) * step : row.first_km / 100;
        const double near = (first + row.gate * step) * points;
        const double far = near + step * points;
        const double half = row.exact ? 0.25 : 0.5;
        const std::array<std::array<double, 2>, 5> expected = {
  // distance, azimuth
            {{near, 30 - half},
             {far, 30 - half},
             {far, 30 + half + 0.01},
             {near, 30 + half + 0.01},
             {near, 30 - half}}
        };
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const double azimuth = expected[i][1] * degree;
            const double tolerance = row.exact ? 0.1 : 0.02; // two metres
            EXPECT_NEAR(corners[i][0], 377.5 + expected[i][0] * std::sin(azimuth), tolerance);
            EXPECT_NEAR(corners[i][1], 287.5 + expected[i][0] * std::cos(azimuth), tolerance);
        }
    }
}

TEST_F(Lev2Plot, FiguresLabelsAndWarnings) {
    struct Row {
        const char* args;
        int figures;
        const char* label;   // lower right
        const char* warning; // the only one
    };
    const std::vector<Row> rows = {
        {"",                            8,  "Md=cl Sc=1 El=0.5 Mx=94",            ""                                        },
        {"-va REF2",                    0,  "Md=pr Sc=2 El=0.0 Mx=-100",
         "Scan 2 (El=1.5) has no reflectivity, scans that have it: 1"                                                       },
        {"-va vel2",                    4,  "Md=pr Sc=2 El=1.5 Rng=-64,63",       ""                                        },
        {"-va spect2",                  4,  "Md=pr Sc=2 El=1.5 Rng=-64,63",       ""                                        },
        {"-va kdp1",                    8,  "Md=cl Sc=1 El=0.5 Mx=94",            "Unknown variable:kdp1, drawn is \"ref1\""},
        {"-va zdr1",                    0,  "Md=pr Sc=1 El=0.0 Rng=100.0,-100.0",
         "Scan 1 (El=0.5) has no differential reflectivity, nor has any other"                                              },
        {"-va ref0",                    0,  "Md=pr Sc=0 El=0.0 Mx=-100",          "There is no scan 0, the volume has 1-2"  },
        {"-va vel",                     4,  "Md=pr Sc=2 El=1.5 Rng=-64,63",       "No scan is named, drawn is \"vel2\""     },
        {"-va watch,kdp,VEL2,ref",      4,  "Md=pr Sc=2 El=1.5 Rng=-64,63",       ""                                        },
        {"-va watch",                   8,  "Md=cl Sc=1 El=0.5 Mx=94",            ""                                        },
        {"-pp nobar,range=9,clutter=5", 6,  "Md=cl Sc=1 El=0.5 Mx=94",            ""                                        },
        {"-pp nobar,range=9,clutter",   0,  "Md=cl Sc=1 El=0.5 Mx=94",
         "Scan 1 has no echo beyond the 25 gates of \"clutter\""                                                            },
        {"-cof 100:red,110:blue",       0,  "Md=cl Sc=1 El=0.5 Mx=94",
         "Scan 1 has no value that is drawn, the largest is 94.5"                                                           },
        {"-pd ps,-35,80,41,31,.1,.1",   0,  "Md=cl Sc=1 El=0.5 Mx=94",
         "Scan 1 lies outside the plot domain"                                                                              },
        {"-dr bord",                    0,  "",                                   ""                                        },
        {"./volume",                    16, "Md=cl Sc=1 El=0.5 Mx=94",            ""                                        },
    };
    for (const Row& row : rows) {
        const NidsPage page = nids_page(
            dir, std::string("./volume -me warn -dr sum,text -pp nobar,range=9 ") + row.args,
            "lev2z");
        const std::string label = *row.label == '\0' ? "" : std::string(row.label) + "\n";
        std::string warning =
            *row.warning == '\0' ? "" : std::string("LEV2_plot: ") + row.warning + "\n";
        if (std::string(row.args).find("watch") != std::string::npos) {
            warning += "WATCH_decode: No file of watches in the 9 hours before, the last:"
                       "./2019052100.wat\n";
        }
        EXPECT_EQ(page.run.code, 0) << row.args;
        EXPECT_EQ(page.figures(), row.figures) << row.args;
        EXPECT_EQ(count_text(page.text, "Md="), *row.label == '\0' ? 0 : row.figures > 8 ? 2 : 1);
        EXPECT_NE(page.text.find(label), std::string::npos) << row.args << " " << row.label;
        const char* overlaid = "A page has no frames: 2 pictures lie over one another\n";
        EXPECT_EQ(page.run.err, row.figures > 8 ? overlaid : warning) << row.args;
    }
}

// A low cut that the volume takes again, and one above: by angle and repetition. Each has a
// largest value of its own, 42 and two for each scan.
TEST_F(Lev2Plot, CutsByMeaning) {
    Bytes records;
    const std::array<float, 5> angles = {0.53F, 0.48F, 1.3F, 0.51F, 2.4F};
    for (int scan = 1; scan <= 5; ++scan) {
        const Lev2Moment refl = {
            "REF", 2125, 250, 8, 2.0F, 66.0F, {100, 150 + 4 * scan}
        };
        Lev2Moment vel = refl;
        vel.name = "VEL";
        Lev2Radial radial;
        radial.elev_num = scan;
        radial.elev = angles[static_cast<std::size_t>(scan - 1)];
        radial.moments = {refl};
        if (scan != 1) {
            radial.moments.push_back(vel);
        }
        records = nids_join({records, lev2_radial(radial)});
    }
    Lev2Volume volume;
    volume.units = {records};
    write("cuts", lev2_volume(volume, true));
    struct Row {
        const char* variable;
        int scan;
        const char* warning;
    };
    const Row rows[] = {
        {"ref@0.5",       1, ""                                       },
        {"ref@0.5:last",  4, ""                                       },
        {"ref@0.5:2",     2, ""                                       },
        {"ref@0.4:9",     4, "takes this cut 3 times, drawn is scan 4"},
        {"vel@0.5",       2, ""                                       }, // scan 1 has none
        {"VEL@1",         3, ""                                       },
        {"ref@max",       5, ""                                       },
        {"watch,vel@min", 2, ""                                       },
        {"vel@60",        5, ""                                       },
        {"vel2",          2, ""                                       },
        {"vel@high",      2, "No angle in the variable:vel@high"      },
        {"spect@0.5",     1, "spectrum width"                         }, // nowhere
    };
    for (const Row& row : rows) {
        const NidsPage page = nids_page(
            dir, std::string("./cuts -me warn -dr sum,text -pp nobar -va ") + row.variable,
            "lev2z");
        EXPECT_EQ(page.run.code, 0) << row.variable;
        EXPECT_NE(page.text.find("Sc=" + std::to_string(row.scan) + " "), std::string::npos)
            << row.variable << page.run.err;
        const std::string most = std::to_string(42 + 2 * row.scan) + "\n";
        EXPECT_EQ(count_text(page.text, "=" + most) + count_text(page.text, "," + most),
                  std::string(row.warning) == "spectrum width" ? 0 : 1)
            << row.variable;
        EXPECT_NE(page.run.err.find(row.warning), std::string::npos) << page.run.err;
    }
}

// Damage after the scan wanted is not met, except where all records are to be seen
// or other scans to be named.
TEST_F(Lev2Plot, AVolumeIsReadToTheEndOfTheScan) {
    Bytes volume = lev2_volume(lev2_units({1, 1, 1, 2, 2, 2}, {false, false, false}), true);
    write("whole", volume);
    std::size_t at = lev2_header({}).size();
    for (int unit = 0; unit < 5; ++unit) {
        at += 4 + (volume[at + 2] * 256U + volume[at + 3]);
    }
    volume[at + 40] ^= 0xFF; // in the second unit of scan 2
    write("broken", volume);
    const struct {
        const char* options;
        bool met, same;
    } rows[] = {
        {" -va ref1 -me mess",    false, true },
        {" -va ref -me mess",     false, true },
        {" -va ref1 -me debug",   true,  true },
        {" -va ref2 -me mess",    true,  false},
        {" -va vel1 -me mess",    true,  true },
        {" -va ref@max -me warn", true,  true },
    };
    for (const auto& row : rows) {
        const std::string options = std::string(" -dr sum,text -pp nobar,range=9") + row.options;
        const NidsPage page = nids_page(dir, "./broken" + options, "lev2z");
        EXPECT_EQ(count_text(page.run.err, "damaged or not whole"), row.met ? 1 : 0) << row.options;
        EXPECT_EQ(count_text(page.run.out, "Read to the end of scan 1, \"--info\" lists all\n"),
                  row.met ? 0 : 1)
            << page.run.out;
        EXPECT_EQ(golden_text(page.text) ==
                      golden_text(nids_page(dir, "./whole" + options, "lev2z").text),
                  row.same)
            << row.options;
        EXPECT_EQ(page.figures() > 0, row.options[5] == 'r');
    }
}

// However a volume comes, its page is the same; only what the user said about
// it is set right. The list of its scans is for the asking.
TEST_F(Lev2Plot, EveryWayInGivesTheSamePage) {
    const std::string options = " -dr sum,text -pp range=9 -va vel2 -me ";
    const NidsPage page = nids_page(dir, "./volume" + options + "mess", "lev2z");
    EXPECT_NE(page.run.out.find("El#=1 El=0.5 Az=30.0 Ptr="), std::string::npos) << page.run.out;
    EXPECT_EQ(count_text(page.run.out, "El#="), 2) << "one line for each scan";
    EXPECT_NE(page.run.out.find("\nScan 2: El=1.5 2 radials: velocity, spectrum width\n"),
              std::string::npos);
    const NidsPage other = nids_page(dir, "./volume" + options + "warn", "lev2");
    EXPECT_EQ(other.run.err, "LEV2_get_header: A compressed file, read as \"lev2z\":./volume\n");
    EXPECT_EQ(golden_text(other.text), golden_text(page.text));
    expect_piped(page, "volume", options + "warn", "lev2z");
    EXPECT_EQ(nids_page(dir, "./none", "lev2").run.code, 10);
}
