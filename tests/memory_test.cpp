// The display in memory shows what a window of the same size shows, to the last pixel.
#include "gks.h"
#include "gks_raster.h"
#include "image_sample.h"
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_storm.h"
#include "rcm_writer.h"
#include "rrwds_writer.h"
#include "summary_writer.h"
#include "zyrresrc.h"

#include "memory_twin.h"
#include "plot_window.h"

#include <array>
#include <random>

namespace {

constexpr int num_pens = 8;

// --- Figures of the kernel ----------------------------------------------------------

std::mt19937 random_bits;
float pick(float low, float high) {
    return low + (high - low) * static_cast<float>(random_bits() % 4096) / 4096.0F;
}

// About a place, near and far corners alike; often closed, or with a corner twice.
std::vector<Gpt> some_points(int n, float reach) {
    const Gpt centre = {pick(0.0F, 1.0F), pick(0.0F, 1.0F)};
    std::vector<Gpt> points;
    for (int i = 0; i < n; ++i) {
        points.push_back({centre.x + pick(-reach, reach), centre.y + pick(-reach, reach)});
    }
    if (n % 3 == 0) {
        points.back() = points.front();
    }
    if (n % 5 == 0) {
        points[1] = points[0];
    }
    return points;
}

void lines(int type, float width) {
    gset_linetype(type);
    gset_linewidth(width);
    for (int i = 0; i < 60; ++i) {
        const auto points =
            some_points(2 + i % 9, i % 4 == 0 ? 2.0F : 0.01F * static_cast<float>(1 + i % 7));
        gset_line_colr_ind(1 + i % (num_pens - 1));
        gpolyline(static_cast<int>(points.size()), points.data());
    }
}

void areas(int pattern, float /*width*/) {
    gset_fill_int_style(pattern < 0 ? GSOLID : GPAT);
    gset_fill_style_ind(std::max(pattern, 0));
    for (int i = 0; i < 300; ++i) {
        const int n = i % 10 == 0 ? 40 : 3 + i % 6;
        const auto points = some_points(n, i % 9 == 0 ? 1.5F : i % 2 == 0 ? 0.004F : 0.05F);
        gset_fill_colr_ind(1 + i % (num_pens - 1));
        gfill_area(n, points.data());
    }
}

void markers(int type, float width) {
    gset_marker_type(type);
    gset_marker_width(width);
    for (int i = 0; i < 40; ++i) {
        const auto points = some_points(4, 0.6F);
        gset_marker_colr_ind(1 + i % (num_pens - 1));
        gset_marker_size(pick(0.05F, 4.0F));
        gpolymarker(4, points.data());
    }
}

void texts(int font, float width) {
    const Gfontprec chosen = {font, GSTROKE_PREC};
    gset_fontprec(&chosen);
    gset_text_width(width);
    for (int i = 0; i < 20; ++i) {
        const Gpt at = {pick(-0.1F, 0.9F), pick(0.0F, 1.0F)};
        const Gpt up = {pick(-1.0F, 1.0F), i % 3 == 0 ? pick(-1.0F, 1.0F) : 1.0F};
        gset_text_colr_ind(1 + i % (num_pens - 1));
        gset_char_ht(pick(0.01F, 0.1F));
        gset_char_up_vec(&up);
        gset_font_drop(i % 5);
        gtext(&at, "Wind 45 kts @#&gy");
    }
    gset_font_drop(0);
}

void frames(int /*number*/, float /*width*/) {
    lines(1, 0.0F);
    gselect_frame(gcreate_frame(0));
    areas(-1, 0.0F);
    const Glim hole = {0.2F, 0.5F, 0.3F, 0.8F};
    gclear_region(&hole);
    gdisplay_frame(0);
}

struct Figures {
    const char* name;
    void (*draw)(int, float);
    int first, last; // numbers to draw it with
    int widths;      // how many of the widths below
};
constexpr std::array widths = {0.0F, 1.0F, 2.0F, 3.0F, 6.0F};

Picture draw_figures(const char* conn, const Figures& figures, int number, float width) {
    random_bits.seed(static_cast<unsigned>(number) + 100);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    gset_image_run(1);
    gset_geometry("300x220");
    gset_background("steelblue");
    gopen_gks(nullptr, 0);
    if (gopen_ws(1, conn, ws_window) != 0) {
        return {};
    }
    for (int i = 0; i < num_pens; ++i) {
        const Gcolr_rep rep = {static_cast<float>(i % 2), static_cast<float>(i / 2 % 2),
                               0.3F + 0.1F * static_cast<float>(i / 4)};
        gset_colr_rep(1, i, &rep);
    }
    const Glim view = {0.1F, 0.9F, 0.1F, 0.7F};
    gset_vp(2, &view);
    gsel_norm_tran(2);
    figures.draw(number, width);
    IMG_report image;
    Picture picture;
    if (gget_image(&image) != 0) {
        picture = picture_of_record(image);
    }
    gclose_ws(1);
    gclose_gks();
    return picture;
}

TEST(Memory, FiguresHaveThePixelsOfAWindow) {
    const XServer server(24, 640, 512);
    if (!server.works()) {
        ASSERT_EQ(std::getenv("ZYR_NEED_DISPLAY"), nullptr) << "Xvfb does not start";
        GTEST_SKIP() << "no Xvfb";
    }
    const XUser keeps_the_server(server);
    const Figures table[] = {
        {"lines",   lines,   1,  5,  5},
        {"areas",   areas,   -1, 19, 1},
        {"markers", markers, 1,  9,  3},
        {"texts",   texts,   1,  4,  4},
        {"frames",  frames,  0,  0,  1},
    };
    int compared = 0;
    int drawn = 0;
    for (const Figures& row : table) {
        for (int number = row.first; number <= row.last; ++number) {
            for (int i = 0; i < row.widths; ++i) {
                const float width = widths[i];
                const Picture window = draw_figures(server.name().c_str(), row, number, width);
                const Picture memory = draw_figures("memory", row, number, width);
                ASSERT_EQ(memory.width, 300) << row.name << number;
                drawn += memory.colors() > 3 ? 1 : 0;
                EXPECT_EQ(pixels_that_differ(window, memory), 0)
                    << row.name << " " << number << " width " << width;
                ++compared;
            }
        }
    }
    EXPECT_EQ(drawn, compared - 1); // one pattern is empty
}

// --- The program ----------------------------------------------------------------------

class MemoryTest : public MemoryTwin {
protected:
    void write_all(const std::vector<std::pair<std::string, Bytes>>& samples,
                   const std::string& before = "") const {
        for (const auto& [name, bytes] : samples) {
            write(before + name, bytes);
        }
    }
    // Products of every kind; mosaics, messages and summaries; an image and bulletins.
    void write_everything() const {
        write_all(nids_samples());
        write("storm", nids_sample_storm());
        write("disc", disc_product(7));
        write("volume", lev2_volume(lev2_sample(31, 90), false));
        write_all(nowrad_samples(), "now_");
        write_all(kavrad_samples(), "kav_");
        write("rrwds", rrwds_sample());
        write("rcm", rcm_sample(false));
        write("packets", rcm_sample(true));
        write_all(summary_samples());
        IMG_report image = image_sample({});
        ASSERT_EQ(GIF_write((dir.path() + "/relief.gif").c_str(), &image), 1);
    }
};

// Where no display answers, and where the text names it, whatever the plot. Kinds of
// files and projections take turns, so that each kind meets several of these.
TEST_F(MemoryTest, PlotsArePixelForPixelThoseOfTheWindow) {
    write_everything();
    const std::string place = ",35.3,-97.3,41,31,.1,.1 ";
    struct Row {
        std::string args;
        const char* kind = "png";
        int frames = 1;
    };
    const Row rows[] = {
  // Level III: every kind of packet, then views of one product.
        {"radial -pd lamb:30:-97:30:60,35.3,-97.3,8,6,.1,.13"           },
        {"digital -pd ps:90:-80,35.3,-97.3,8,6,.1,.1"                   },
        {"raster -pd merc,35.3,-97.3,9,6,.1,.1 -pl value"               },
        {"precip -pd ortho,35.3,-97.3,81,61,.1,.1"                      },
        {"wind -fl modern"                                              },
        {"storms -pd gnom" + place                                      },
        {"tracks -pd sat" + place                                       },
        {"symbols -pd moll" + place                                     },
        {"disc -pd ll,35.3,-97.3,41,31,.02,.02"                         },
        {"raster -va comp,track"                                        },
        {"raster -va comp,hail -pd ll" + place + "-ps 2"                },
        {"storm"                                                        },
        {"storm -cof auto -pp fitlab"                                   },
        {"storm -cof 0:dash,20:dot,40:chain -ln 3"                      },
        {"storm -pp inv -pd us"                                         },
        {"storm -pp full -ba navy -pd lamb" + place                     },
        {"storm -pp fullab,font=italic -pd sat" + place                 },
        {"storm -pp vp_size=2x2+1+0,lalo=1:2 -pd lamaz" + place         },
        {"storm -pp vp_size=.5x.4+.2+.3,shadow -pd moll" + place        },
        {"storm -mf lalo:.5:.5,st,co,riv -pd ortho" + place             },
        {"storm -mf=-im:relief.gif::20:30,if:relief.gif:black:130:99,us"},
        {"storm -mf im:relief.gif:red:5:-20 -pd merc" + place           },
        {"storm -dr sum"                                                },
        {"storm -dr text,bord -font greek -pp site,dist=60"             },
 // The four kinds of image, and a picture for each of several files.
        {"storm -pd us -ba steelblue -pp gif_inter",                      "gif"},
        {"raster -pd ll" + place,                                                               "gif"},
        {"storm -mf=-im:relief.gif","xwd"},
        {"raster -pp inv",                                      "xwd"},
        {"storm",                                                               "img"},
        {"radial storm raster digital -ho 0",                     "png", 4},
        {"storm disc -pp refresh -pd lamb" + place,                                                         "gif", 2},
 // The other formats.
        {"-inp lev2 volume"                                                              },
        {"-inp lev2 volume -va vel -pd gnom" + place                                     },
        {"-inp lev2 volume -va spect -cof auto -pd merc" + place                                                              },
        {"-inp nowrad now_latlon -pd ps,36,-95,13,9,.5,.5" },
        {"-inp nowrad now_latlon -pd lamaz,36,-95,41,31,.2,.2"                                                              },
        {"-inp nowrad now_lambert -pd us -pp run=9"},
        {"-inp nowrad now_lambert -pd ll,38,-95,61,41,.5,.5"                         },
        {"-inp kavrad kav_coarse -pd us"},
        {"-inp kavrad kav_coarse -pd sat,38,-95,61,41,.5,.5"                                                             },
        {"-inp rrwds rrwds"},
        {"-inp rrwds rrwds -pd moll" + place + "-pp clutter"                                                              },
        {"-inp rcmsite rcm -id TLX -va comp"                                     },
        {"-inp rcmsite packets -id TLX -va comp -pd ortho" + place                                                              },
        {"-inp mdr mdr.rad -pd us -va pr_tt" },
        {"-inp mdr mdr.rad -pd gnom,38,-95,61,41,.5,.5 -va echtop -pl lcf"                                                              },
        {"-inp mdr rcm.rad -pd us -va id"},
        {"-inp mdr station.nc -pd us -va stat -pl lcf"                         },
        {"-inp mdr report.nc -pd ll,38,-95,61,41,.6,.6 -va city -pp site,dist=20"},
 // Fonts and looks that are left.
        {"digital -cof auto -pd lamb:-30:20:-30:-60,-35,20,41,31,.2,.3 -mf fi:world.lst"                                                             },
        {"storm -fl roman -pp fitlab"},
        {"storm -fl romanb -pp bar=20:60"                                                              },
        {"storm -fl script -la ul:%b,lc:Norman -pp inv"                                     },
        {"storm -fl bold -cot red:wi=3:dash -pp nobar"                                                              },
        {"storm -cof 20:0:pat=3,30:1:pat=9,40:2:hatch=4 -in 5" },
        {"tracks -va track -mf mf:none,st:wi=4:dot -pd us"                                                              },
    };
    for (const Row& row : rows) {
        draw_twins(row.args, row.kind, row.frames);
    }
    EXPECT_GE(plots, 60);
    // A display that does not answer is not spoken of.
    const ProgramRun named = run("storm -de d,memory -of png@named.png", "");
    const ProgramRun fallen = run("storm -de d -of png@fallen.png", ":nowhere");
    EXPECT_EQ(fallen.err, named.err);
    const Picture fell = read_picture(dir.path() + "/fallen.png"); // the file has its time
    EXPECT_GT(fell.colors(), 3);
    EXPECT_EQ(fell, read_picture(dir.path() + "/named.png"));
}

TEST_F(MemoryTest, SizesAndWhatIsNotAskedForAreHeld) {
    write("disc", disc_product(4));
    struct Row {
        const char* args;
        int code;
        int width; // 0: no picture
        const char* err;
    };
    constexpr Row rows[] = {
        {"-ge 0x0",          0, 640,  ""                                    },
        {"-ge 1x1",          0, 2,    ""                                    },
        {"-ge 9000x20",      0, 8192, "gopen_ws: window size cut to 8192\n" },
        {"-ge 4294967296x9", 0, 8192, "gopen_ws: window size cut to 8192\n" },
        {"-ge nosize",       0, 640,  "gopen_ws: invalid geometry: nosize\n"},
    };
    for (const Row& row : rows) {
        std::filesystem::remove(dir.path() + "/a.png");
        const ProgramRun done =
            run(std::string("disc -me warn -de d,memory -of png@a.png ") + row.args, "");
        EXPECT_EQ(done.code, row.code) << row.args << done.err;
        EXPECT_NE(done.err.find(row.err), std::string::npos) << row.args << done.err;
        EXPECT_EQ(read_png(dir.path() + "/a.png").width, row.width) << row.args;
    }
    const ProgramRun none = run("disc -de d,memory", "");
    EXPECT_EQ(none.code, 4) << none.err;
    EXPECT_NE(none.err.find("needs an image"), std::string::npos) << none.err;
}

// As a script at night calls it: nothing in the environment, at the root, with a home
// that takes no file, and several at once.
TEST_F(MemoryTest, ScriptsHaveAPicture) {
    write("storm", nids_sample_storm());
    const std::string product = dir.path() + "/storm";
    const std::string draw = " -inp nids -fp " ZYR_SOURCE_DIR "/etc -de d,memory -of png=";
    const auto shell = [](const std::string& command) {
        return run_program("/bin/sh",
                           {
                               .args = {"-c",                                      command},
                                 .env = {                                         },
                                 .input = "", .directory = "/"
        });
    };
    const std::string call = "env -i " ZYR_PROGRAM + draw;
    const std::string end = " " + product + " </dev/null";
    ProgramRun done = shell("cd / && " + call + dir.path() + "/bare.png" + end);
    EXPECT_EQ(done.code, 0) << done.err;
    const std::string picture = read_text(dir.path() + "/bare.png");
    ASSERT_NE(picture, "");
    // In /proc not even root can make a file.
    done = shell("HOME=/proc " ZYR_PROGRAM + draw + dir.path() + "/home.png" + end);
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_GE(read_picture(dir.path() + "/home.png").colors(), 4);
    done = shell("for i in 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19; do " + call +
                 dir.path() + "/p$i.png" + end + " >/dev/null || echo failed $i >&2 & done; wait");
    EXPECT_EQ(done.err, "");
    const Picture bare = read_picture(dir.path() + "/bare.png");
    for (int i = 0; i < 20; ++i) {
        const Picture one = read_picture(dir.path() + "/p" + std::to_string(i) + ".png");
        EXPECT_EQ(pixels_that_differ(bare, one), 0) << i;
    }
    // More memory than there is: a message and 4.
#ifndef ZYR_SANITIZED // which reserve terabytes of addresses
    done =
        shell("ulimit -v 150000; cd " + dir.path() + " && " + call + "big.png -ge 8192x8192" + end);
    EXPECT_EQ(done.code, 4);
    EXPECT_NE(done.err, "");
    EXPECT_FALSE(std::filesystem::exists(dir.path() + "/big.png"));
#endif
}

// What is drawn in one go over the sides is the area and the line about it.
TEST(Raster, AreasOfFourCornersAreFilledWithTheirOutline) {
    constexpr int side = 40;
    std::mt19937 random(5);
    const auto within = [&random](int low, int high) {
        return static_cast<std::int16_t>(low + static_cast<int>(random() % unsigned(high - low)));
    };
    const Gbox clip = {3, 2, side - 2, side - 4};
    for (int i = 0; i < 60000; ++i) {
        const int size = 1 + i % 12 * (i % 12) / 4;
        const int x = within(0, side);
        const int y = within(0, side);
        Gquad quad{};
        for (Gpixel& p : quad) {
            p = {within(x - size, x + size), within(y - size, y + size)};
        }
        std::vector<std::uint32_t> one(side * side);
        std::vector<std::uint32_t> two(side * side);
        graster_quad({one.data(), side, clip}, 1, quad);
        const std::array<Gpixel, 5> points = {quad[0], quad[1], quad[2], quad[3], quad[0]};
        graster_area({two.data(), side, clip}, {1, nullptr}, points);
        graster_lines({two.data(), side, clip}, {1, nullptr}, {0, false, nullptr}, points);
        ASSERT_EQ(one, two) << quad[0].x << ',' << quad[0].y << ' ' << quad[1].x << ',' << quad[1].y
                            << ' ' << quad[2].x << ',' << quad[2].y << ' ' << quad[3].x << ','
                            << quad[3].y;
    }
}

// Nothing keeps the frames: their number has no bound.
TEST_F(MemoryTest, ManyFilesHaveAPictureEach) {
    constexpr int files = 140;
    std::string args;
    for (int i = 0; i < files; ++i) {
        const std::string name = "f" + std::to_string(i);
        write(name, disc_product(1 + i % 15, i % 60));
        args += name + " ";
    }
    const ProgramRun done = run(args + "-ge 64x64 -dr sum -de d,memory -of png@%i.png", "");
    EXPECT_EQ(done.code, 0) << done.err;
    std::vector<Picture> pictures;
    for (int i = 0; i < files; ++i) {
        std::array<char, 16> name{};
        std::snprintf(name.data(), name.size(), "/%02d.png", i);
        pictures.push_back(read_png(dir.path() + name.data()));
        ASSERT_EQ(pictures.back().width, 64) << i;
        // A level comes again after fifteen files; its neighbours have other colours.
        if (i >= 15) {
            EXPECT_EQ(pixels_that_differ(pictures[i], pictures[i - 15]), 0) << i;
        }
        if (i >= 1) {
            EXPECT_GT(pixels_that_differ(pictures[i], pictures[i - 1]), 0) << i;
        }
    }
}

} // namespace
