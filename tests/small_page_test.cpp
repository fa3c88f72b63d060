// Small pages of the PostScript device show what plain ones show, at the dots that
// they are for: both are rendered and compared dot by dot.
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_storm.h"
#include "ps_page.h"
#include "run_program.h"

#include "zyrgks.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

// The dots of a page, three bytes each; empty without a renderer.
std::string rendered(const std::string& page, int dpi) {
    const std::string command =
        "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -sPAPERSIZE=letter -r" +
        std::to_string(dpi) + " -o - '" + page + "' 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string all;
    std::vector<char> piece(1 << 20);
    for (std::size_t n = 0; (n = std::fread(piece.data(), 1, piece.size(), pipe.get())) > 0;) {
        all.append(piece.data(), n);
    }
    return all;
}

bool has_renderer() {
    return std::system("gs --version >/dev/null 2>&1") == 0;
}

// Of a hundred dots that have ink on the first page, how many differ on the second.
double different(const std::string& first, const std::string& second, int dpi) {
    const std::string a = rendered(first, dpi);
    const std::string b = rendered(second, dpi);
    if (a.size() != b.size() || a.empty()) {
        return 100.0;
    }
    const std::string white(3000, '\xff');
    long ink = 0;
    long differ = 0;
    const auto count = [&](std::size_t from, std::size_t size) {
        for (std::size_t i = from; i < from + size; i += 3) {
            ink += std::memcmp(&a[i], white.data(), 3) != 0 ? 1 : 0;
            differ += std::memcmp(&a[i], &b[i], 3) != 0 ? 1 : 0;
        }
    };
    for (std::size_t i = a.size() % 3; i < a.size();) { // after the head
        const std::size_t size = std::min(a.size() - i, white.size());
        if (std::memcmp(&a[i], &b[i], size) != 0 || std::memcmp(&a[i], white.data(), size) != 0) {
            count(i, size);
        }
        i += size;
    }
    return ink == 0 ? 100.0 : 100.0 * static_cast<double>(differ) / static_cast<double>(ink);
}

std::string as_text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

class SmallPage : public testing::Test {
protected:
    void SetUp() override {
        if (access(ZYR_PROGRAM, X_OK) != 0 || !has_renderer()) {
            GTEST_SKIP() << "no program, or no gs";
        }
        for (const auto& [name, bytes] : nids_samples()) {
            dir.write(name, as_text(bytes));
        }
    }
    // The larger samples take a while to make: the first plot that wants one does.
    void make(const std::string& plot) const {
        struct Sample {
            const char* name;
            Bytes (*make)();
        };
        for (const auto& [name, bytes] : {
                 Sample{"storm",    [] { return nids_sample_storm(94); }                 },
                 Sample{"super",    [] { return nids_sample_storm(153); }                },
                 Sample{"volume",   [] { return lev2_volume(lev2_sample(31, 1), false); }},
                 Sample{"mosaic",   [] { return nowrad_sample('C', 4); }                 },
                 Sample{"kavouras", [] { return kavrad_sample(true); }                   },
        }) {
            if (plot.find(name) != std::string::npos && access(file(name).c_str(), R_OK) != 0) {
                dir.write(name, as_text(bytes()));
            }
        }
    }
    // Runs the program on a page, for each of the plots; false if one fails.
    bool draw(const std::string& name, const std::string& device,
              const std::vector<std::string>& plots) const {
        std::string plus;
        for (const std::string& plot : plots) {
            make(plot);
            ProgramCall call;
            call.env = {
                {"zyrdefault", ZYR_SOURCE_DIR "/etc"}
            };
            call.directory = dir.path();
            std::istringstream words("-me error -inp " + plot + " -de p," + plus + name + device);
            for (std::string word; words >> word;) {
                call.args.push_back(word);
            }
            if (run_program(ZYR_PROGRAM, call).code != 0) {
                return false;
            }
            plus = "+";
        }
        return true;
    }
    std::string file(const std::string& name) const { return dir.path() + "/" + name; }
    // A plot on a plain page and on a small one, with device options.
    void compare(const std::string& device, const std::vector<std::string>& plots, int dpi = 100) {
        const std::string note = device + " " + plots[0];
        const std::string small = ",small=" + std::to_string(dpi);
        ASSERT_TRUE(draw("plain", device, plots)) << note;
        ASSERT_TRUE(draw("small", device + small, plots)) << note;
        EXPECT_LT(different(file("plain"), file("small"), dpi), 0.5) << note;
        const std::string plain = read_text(file("plain"));
        if (plain.size() > 1000000) {
            EXPECT_LT(read_text(file("small")).size(), plain.size() / 12) << note;
        }
    }

    TempDir dir;
};

} // namespace

TEST_F(SmallPage, ShowsTheDotsOfHalfAMillionFigures) {
    compare(",color", {"nids super"}, 300);
    EXPECT_LT(read_text(file("small")).size(), 300000U);
}

TEST_F(SmallPage, ShowsEveryKindOfProduct) {
    for (const char* plot :
         {"nids raster", "nids wind", "nids symbols", "nids storms -va all", "nids radial raster",
          "nids storm -pd lamb:30:-97:30:60,35.3,-97.3,301,201,.004,.004",
          "nids digital -pd ll,35.3,-97.3,301,201,.01,.01",
          "nids storm -pd ps,35.3,-97.3,301,201,.0008,.0008", "lev2 volume",
          "lev2 volume -va vel -pp pat=3", "nowrad mosaic -pd us",
          "kavrad kavouras -pd ps,40,-95,301,201,.1,.1"}) {
        compare(",color", {plot});
    }
}

TEST_F(SmallPage, IsAnyPageOfTheDevice) {
    struct Row {
        const char* device;
        std::vector<std::string> plots;
    };
    for (const Row& row : {
             Row{"",                   {"nids storm -pp psrev,bar"}                     },
             Row{",color,eps,port",    {"nids storm -pp fullab,lalo=2:1:1:1"}           },
             Row{",color,scale=.5,a4", {"nids storm -pp site,dist=50:100"}              },
             Row{",port,sz=8.5x11",    {"nids raster -pp inv -mf zyr.map:red:wi=2:st=3"}},
             Row{",color,lwidth=4",
                 {"nids raster -ge P2x2+0+0", "nids storm -ge P2x2+1+0",
                  "nids raster -ge P2x2+1+1"}                                           },
    }) {
        compare(row.device, row.plots);
    }
}

// Small and plain plots on one page, the figures of one after another: what crosses
// itself, dents, dots and lines without area, patterns, colours that change.
TEST_F(SmallPage, FiguresOfAnyShape) {
    const auto figures = [] {
        for (int i = 1; i < 7; ++i) {
            const Gcolr_rep rep = {.12F * static_cast<float>(i), .5F,
                                   .9F - .1F * static_cast<float>(i)};
            gset_colr_rep(1, i, &rep);
        }
        gset_fill_int_style(GSOLID);
        const auto fill = [](const std::vector<Gpt>& points, int color) {
            gset_fill_colr_ind(color);
            gfill_area(static_cast<int>(points.size()), points.data());
        };
        struct Area {
            int color;
            const char* points;
        };
        for (const Area& area : {
                 Area{2,   ".1 .1 .2 .2 .2 .1 .1 .2 .1 .1"    }, // crosses itself
                 Area{3,   ".3 .1 .4 .3 .5 .1 .4 .15"         }, // dented
                 Area{4,   ".6 .1 .7 .3 .8 .1"                },
                 Area{5,   ".2 .5 .2 .5 .2 .5 .2 .5"          }, // a dot
                 Area{6,   ".1 .5 .1 .7 .1 .7 .1 .5"          }, // a line
                 Area{505, "0 .6 0 .62 .9 .62 .9 .6 0 .6"     },
                 Area{-1,  ".1 .59 .9 .61 .9 .63 .1 .6 .1 .59"},
        }) {
            std::istringstream in(area.points);
            std::vector<Gpt> points;
            for (Gpt p; in >> p.x >> p.y;) {
                points.push_back(p);
            }
            fill(points, area.color);
        }
        const std::vector<Gpt> line = {
            {.1F, .8F },
            {.9F, .85F}
        };
        for (const float size : {.01F, .002F}) { // large and small ones over one another
            for (int i = 0; i < 2000; ++i) {
                const float x = .3F + size * static_cast<float>(i % 50);
                const float y = .3F + .57F * size * static_cast<float>(i / 50);
                const float w = (i / 300 % 2 == 0 ? 1.2F : -.9F) * size; // turns both ways
                const float right = x + 1.05F * size;
                fill(
                    {
                        {x,     y           },
                        {x,     y + w       },
                        {right, y + w * 1.2F},
                        {right, y           },
                        {x,     y           }
                },
                    i * 7 % 5 % 4 + 1);
            }
            gset_fill_print_solid(1); // from here on, not of what is there
            gpolyline(2, line.data());
            fill(
                {
                    line[0], {.1F,  .9F},
                     {.15F, .9F},
                     {.15F, .8F}
            },
                4);
            gset_fill_print_solid(0);
            const Gcolr_rep rep = {.2F, .9F, .4F};
            gset_colr_rep(1, 2, &rep);
        }
        gset_line_colr_ind(3);
        gset_linewidth(5.0F);
        gset_linetype(4);
        gpolyline(2, line.data());
        gpolymarker(2, line.data());
    };
    for (const std::string& options : {std::string("color"), std::string()}) {
        std::string pages[2];
        for (const int small : {0, 1}) {
            PsPage page(options + (small != 0 ? ",small" : ",nosmall"));
            figures();
            pages[small] = page.whole();
            gps_set_colorPS(0);
            dir.write(small != 0 ? "small" : "plain", pages[small]);
        }
        gps_set_small(0);
        EXPECT_LT(different(file("plain"), file("small"), 300), 0.5) << options;
        EXPECT_TRUE(pages[1].starts_with("%!PS-Adobe-3.0\n%%LanguageLevel: 3\n"));
        const std::string data = text_between(pages[1], "{currentfile", "~>");
        std::istringstream lines(data);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_TRUE(line.size() <= 75 && !line.starts_with('%')) << line;
            EXPECT_EQ(std::ranges::count_if(line, [](char c) { return c < ' ' || c > 'z'; }), 0);
        }
    }
}
