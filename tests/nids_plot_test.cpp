// The NIDS plotter on small made products: whole pages against golden files,
// figure counts, the text grid file, location readout, and damaged products.
//
// `cmake --build --preset release --target update-golden` writes the golden
// files anew (tests/data/golden); look at the rendered pages before committing.
#include "nids_plt.h"

#include "nids.h"
#include "nids_draw.h"
#include "nids_writer.h"
#include "run_program.h"

#include "cont.h"
#include "map.h"
#include "maptran.h"
#include "plt_tool.h"
#include "region.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace {

std::string sample_text(const std::string& name) {
    for (const auto& [sample, bytes] : nids_samples()) {
        if (sample == name) {
            return {bytes.begin(), bytes.end()};
        }
    }
    ADD_FAILURE() << "no sample " << name;
    return "";
}

// A page drawn by the program, without the line that changes from run to run
// and without the strokes of texts, which are the font's.
struct Page {
    ProgramRun run;
    std::string text;
    [[nodiscard]] int figures() const {
        int count = 0;
        for (auto at = text.find("%%FA:"); at != std::string::npos;
             at = text.find("%%FA:", at + 1)) {
            count++;
        }
        return count;
    }
};

Page plot(const TempDir& dir, const std::string& file, const std::vector<std::string>& options) {
    ProgramCall call;
    call.args = {"-inp", "nids", "-de", "p,page.ps", "-fp", ZYR_SOURCE_DIR "/etc", file};
    call.args.insert(call.args.end(), options.begin(), options.end());
    call.env = {
        {"zyrcurtime", "201905202235"}
    };
    call.directory = dir.path();
    Page page{run_program(ZYR_PROGRAM, call), ""};
    std::istringstream lines(read_text(dir.path() + "/page.ps"));
    bool in_text = false;
    for (std::string line; std::getline(lines, line);) {
        in_text = line.starts_with("%%TE") || (in_text && !line.starts_with("%%"));
        if (!line.starts_with("%%CreationDate") && (!in_text || line.starts_with("%%TE"))) {
            page.text += line + "\n";
        }
    }
    return page;
}

class Program : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(ZYR_PROGRAM)) {
            GTEST_SKIP() << "no program was built";
        }
    }
};

} // namespace

TEST_F(Program, GoldenPages) {
    struct Row {
        const char* golden;
        const char* sample;
        std::vector<std::string> options;
    };
    const std::vector<Row> rows = {
        {"nids_radial",   "radial",  {"-dr", "data,sum,bord", "-pp", "site,dist=50:100"}                 },
        {"nids_digital",  "digital", {"-dr", "sum,text"}                                                 },
        {"nids_raster",   "raster",  {"-dr", "sum", "-pp", "nobar"}                                      },
        {"nids_precip",   "precip",  {"-dr", "sum", "-pp", "nobar"}                                      },
        {"nids_wind",     "wind",    {"-dr", "sum"}                                                      },
        {"nids_symbols",  "symbols", {"-dr", "sum", "-pp", "nobar"}                                      },
        {"nids_mercator",
         "radial",                   {"-dr", "sum", "-pp", "nobar", "-pd", "merc,35.3,-97.3,41,31,.1,.1"}},
    };
    for (const Row& row : rows) {
        const TempDir dir;
        dir.write("product", sample_text(row.sample));
        const Page page = plot(dir, "./product", row.options);
        EXPECT_EQ(page.run.code, 0) << row.golden << "\n" << page.run.err;
        const std::string golden =
            std::string(ZYR_SOURCE_DIR "/tests/data/golden/") + row.golden + ".ps";
        if (std::getenv("ZYR_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(golden) << page.text;
        }
        EXPECT_EQ(page.text, read_text(golden)) << row.golden;
    }
}

TEST_F(Program, FiguresFollowTheOptions) {
    struct Row {
        const char* sample;
        std::vector<std::string> options;
        int figures;
        const char* note;
    };
    // The radial sample: runs of 15 (off), 9 at 20; 15 at 25, 9 at 45; none; 8 and 15 at 70.
    const std::string plain = "nobar";
    const std::vector<Row> rows = {
        {"radial",  {"-pp", plain},                                 9 + 15 + 9 + 8 + 15, "a figure a bin"                   },
        {"radial",  {"-pp", plain + ",clutter"},                    0,                   "24 bins lie within the default 25"},
        {"radial",  {"-pp", plain + ",clutter:18"},                 6 + 0 + 6 + 0 + 5,   "a run crosses the limit"          },
        {"radial",  {"-pp", plain + ",clutter,noclutter"},          56,                  "the last word counts"             },
        {"radial",  {"-pp", plain, "-dr", "data,map,text"},         0,                   "no summary"                       },
        {"digital", {"-pp", plain},                                 8 * 4,               "levels 0 to 66 are below 5 dBZ"   },
        {"raster",
         {"-pp", plain},
         1 + 1 + 1 + 1,
         "runs in pieces of 10 cells, two of them beside the page"                                                          },
        {"raster",
         {"-pp", plain, "-pd", "merc,35.3,-97.3,41,31,.1,.1"},
         15 + 5 + 3 + 9 + 4,
         "a figure a cell on another projection"                                                                            },
        {"radial",  {"-pp", plain, "-pd", "ps,-35,80,41,31,.1,.1"}, 0,                   "elsewhere"                        },
    };
    for (const Row& row : rows) {
        const TempDir dir;
        dir.write("product", sample_text(row.sample));
        std::vector<std::string> options = row.options;
        if (options.size() < 3 || options[2] != "-dr") {
            options.insert(options.end(), {"-dr", "sum"});
        }
        const Page page = plot(dir, "./product", options);
        EXPECT_EQ(page.run.code, 0) << row.note;
        EXPECT_EQ(page.figures(), row.figures) << row.sample << ": " << row.note;
    }
}

TEST_F(Program, SeveralFilesAreOneSequence) {
    const TempDir dir;
    dir.write("first", sample_text("radial"));
    dir.write("second", sample_text("digital"));
    dir.write("refused", "R3");
    struct Row {
        std::vector<std::string> files;
        int code, figures;
        const char* message;
    };
    const std::vector<Row> rows = {
        {{"./first", "./second"},  0,  56 + 32, ""                                               },
        {{"./missing", "./first"}, 0,  56,      "NIDS_open_file: Unable to open file:./missing\n"},
        {{"./missing"},            10, 0,       "NIDS_open_file: Unable to open file:./missing\n"},
        {{"./refused"},            10, 0,       "NIDS_open_file: Unable to read file:./refused\n"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> options(row.files.begin() + 1, row.files.end());
        options.insert(options.end(), {"-dr", "sum", "-pp", "nobar"});
        const Page page = plot(dir, row.files[0], options);
        EXPECT_EQ(page.run.code, row.code) << row.files[0];
        EXPECT_EQ(page.figures(), row.figures) << row.files[0];
        EXPECT_NE(page.run.err.find(row.message), std::string::npos) << page.run.err;
    }
}

TEST_F(Program, WritesTheTextGridFile) {
    const TempDir dir;
    dir.write("product", sample_text("precip"));
    EXPECT_EQ(plot(dir, "./product", {"-of", "zyr:@./grid.txt", "-dr", "sum"}).run.code, 0);
    std::istringstream lines(read_text(dir.path() + "/grid.txt"));
    std::vector<std::string> line;
    for (std::string text; std::getline(lines, text);) {
        line.push_back(text);
    }
    ASSERT_EQ(line.size(), 4U + 131 + 131);
    EXPECT_EQ(line[0], "ZYRGRID");
    EXPECT_EQ(line[1], "2231Z 20 MAY 19");
    EXPECT_EQ(line[2], "Digital precip array (in)");
    EXPECT_EQ(line[3], "PS:-105.000000 35.333000 -97.278000 0.047596 0.047596 2 2");
    EXPECT_EQ(line[4], "0.002512") << "level 0: -6 dB, 10^(v / 10) / 100";
    EXPECT_EQ(line[4 + 100], "-9999.000000") << "level 255";
    EXPECT_EQ(line[4 + 131], "0.007943") << "level 40: -1 dB";
}

// --- In one process -------------------------------------------------------------

namespace {

void open_session() {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("device", "p,/dev/null");
    RES_conv_data("none", nullptr, CV_mess);
    FLAG_resetplot(1);
    FLAG_setplot(0, 0); // no texts
    FLAG_setplot(8, 0); // and no map
    ASSERT_EQ(PLT_open(1.5F), 0);
}

// Draws a product as the plotter does, whatever its bytes.
int draw_bytes(const Bytes& bytes, const TempDir& dir) {
    const std::string file = dir.write("product", {bytes.begin(), bytes.end()});
    if (NIDS_open_file(file.c_str()) == 0) {
        NIDS_close_file();
        return 0;
    }
    Domain domain;
    DOM_decode("merc,35.3,-97.3,41,31,.1,.1", &domain);
    MAP_setup(&domain);
    NIDS_plot_frame();
    NIDS_close_file();
    return 1;
}

} // namespace

TEST(NidsDamaged, CutChangedAndNoise) {
    open_session();
    const TempDir dir;
    std::mt19937 random(20190520);
    int opened = 0;
    for (const auto& [name, bytes] : nids_samples()) {
        for (std::size_t cut = 0; cut < bytes.size(); cut++) {
            opened += draw_bytes({bytes.begin(), bytes.begin() + static_cast<long>(cut)}, dir);
            Bytes changed = bytes;
            changed[cut] = static_cast<std::uint8_t>(random());
            opened += draw_bytes(changed, dir);
        }
    }
    EXPECT_GT(opened, 1000);
    Bytes noise(3000);
    for (int i = 0; i < 50; i++) {
        for (auto& byte : noise) {
            byte = static_cast<std::uint8_t>(random());
        }
        draw_bytes(noise, dir);
    }
    PLT_close();
}

TEST(NidsColors, FollowTheCodeAndForgetTheFrameBefore) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_conv_data("none", nullptr, CV_mess);
    CLR_read_table(nullptr);
    struct Row {
        int code;
        float value;
        const char* color;
    };
    const std::vector<Row> rows = {
        {94,  -100,      "off"   },
        {94,  5,         "blue"  },
        {94,  4.99F,     "off"   },
        {94,  99,        "white" },
        {48,  3,         "lblue" },
        {48,  17,        "lred"  },
        {19,  5,         "blue"  },
        {19,  -1,        "off"   },
        {27,  0.5F,      "off"   },
        {154, -71,       "off"   },
        {154, -70,       "blue"  },
        {56,  -1,        "off"   },
        {134, 0,         "blue"  },
        {165, 140,       "dgray" },
        {161, 0,         "yellow"},
        {159, -.9F,      "dgray" },
        {172, .01F,      "blue"  },
        {138, 0,         "off"   },
        {177, 60,        "dgreen"},
        {48,  0,         "lblue" },
        {37,  missing_f, "off"   },
        {186, 75,        "white" },
    };
    for (const Row& row : rows) {
        NIDS_info info;
        info.code = row.code;
        for (int i = 0; i < nids_num_thres; i++) {
            info.thres[i] = i == 0 ? -100.0F : static_cast<float>(5 * i);
        }
        NIDS_set_colors(info);
        NIDS_fills fills;
        const Gattribs* attrib = fills.get(row.value);
        EXPECT_EQ(attrib == nullptr ? -1 : attrib->color, CLR_get_ind(row.color))
            << row.code << ": " << row.value;
        EXPECT_EQ(fills.get(row.value) == nullptr, attrib == nullptr) << "asked again";
        EXPECT_EQ(CONT_get_type(), 15);
    }
}

TEST(NidsReadout, DistanceAndBeamHeight) {
    Domain domain;
    RES_conv_data("print", nullptr, CV_mess);
    ASSERT_EQ(DOM_decode("ps:-97,60,-97,11,11,1,1", &domain), 1);
    MAP_domain(&domain);
    float x = 0;
    float y = 0;
    MAP_tran(60, -97, &x, &y);
    EXPECT_EQ(NIDS_print_loc_elev("q", x, y, 60, -97, 0), -1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(NIDS_print_loc_elev("v-Alt", x, y + 1, 60, -97, 0.5F), 0);
    // 100 km at 0.5 degrees: 0.873 km of slope and 0.785 km of curvature.
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Lat:  60.90 Lon: -97.00 Dist:  54.0nm Alt:  5437ft\n");
}
