// The NIDS plotter on the collection of real products, where it lies beside
// the tree: every page is whole and holds one figure for each bin or piece of a
// row that the decoded packets and the level tables say is drawn.
#include "nids.h"
#include "nids_draw.h"
#include "run_program.h"

#include "cont.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <regex>
#include <vector>

namespace {

// Figures of the page so far, counted from the packets.
struct Count {
    FILE* file;
    const NIDS_info& info;
    long figures = 0;

    static bool drawn(float value) {
        Gattribs attrib;
        CONT_get_fill_attrib(value, &attrib);
        return attrib.color != -1;
    }
    void runs(bool raster) {
        NIDS_data data;
        while (NIDS_get_data(file, &data) > 0) {
            const bool precip = info.code == 81 && data.val != missing_f;
            if (drawn(precip ? std::pow(10.0F, data.val / 10) / 100 : data.val)) {
                figures += std::lround(raster ? std::ceil(data.run / 10) : data.run);
            }
        }
    }
    void packet(int type) {
        float angle = 0;
        float width = 0;
        NIDS_wind_data wind;
        NIDS_text_data text;
        NIDS_vector_data vector;
        switch (type) {
        case 0xAF1F:
        case 16:
            while (NIDS_get_radial(file, &angle, &width) > 0) {
                runs(false);
            }
            break;
        case 0xBA0F:
        case 0xBA07:
        case 17:
            while (NIDS_get_rastor(file) > 0) {
                runs(true);
            }
            break;
        case 4: // a flag for each 50 knots
            while (NIDS_get_wind(file, &wind) > 0) {
                figures += drawn(wind.val) ? static_cast<long>((wind.spd + 2.01F) / 50) : 0;
            }
            break;
        case 7:
        case 10:
            while (NIDS_get_vector(file, &vector) > 0) {
            }
            break;
        case 1:
        case 8:
            NIDS_get_text(file, &text);
            break;
        default:
            break;
        }
    }
};

long count_figures(const std::string& name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "rb"), std::fclose);
    NIDS_info info;
    if (file == nullptr || NIDS_get_header(file.get(), &info) == 0) {
        return -1;
    }
    NIDS_set_colors(info);
    Count count{file.get(), info};
    int type = info.type;
    for (int status = NIDS_packet_status(); status > 0; status = NIDS_packet(file.get(), &type)) {
        count.packet(type);
    }
    return count.figures;
}

} // namespace

TEST(NidsReal, EveryProductIsDrawnWhole) {
    const std::string data = ZYR_REAL_DATA "/nids";
    if (!std::filesystem::exists(data) || !std::filesystem::exists(ZYR_PROGRAM)) {
        GTEST_SKIP() << "no real products or no program";
    }
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_conv_data("none", nullptr, CV_mess);
    CLR_read_table(nullptr);
    const TempDir dir;
    int products = 0;
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
        const std::string name = std::filesystem::absolute(entry.path());
        ProgramCall call;
        call.args = {"-inp", "nids",  "-de", "p,page.ps",     "-fp", ZYR_SOURCE_DIR "/etc",
                     "-pp",  "nobar", "-dr", "sum,text,data", name};
        call.directory = dir.path();
        const ProgramRun run = run_program(ZYR_PROGRAM, call);
        const long expected = count_figures(name);
        EXPECT_EQ(run.code, expected < 0 ? 10 : 0) << name << "\n" << run.err;
        const std::string page = read_text(dir.path() + "/page.ps");
        const auto lines = [&](const std::string& line) {
            long count = 0;
            for (auto at = page.find(line); at != std::string::npos; at = page.find(line, at + 1)) {
                count++;
            }
            return count;
        };
        EXPECT_EQ(lines("\n%%FA:"), std::max(expected, 0L)) << name;
        EXPECT_EQ(lines("\nfill\n"), std::max(expected, 0L)) << name;
        EXPECT_TRUE(page.ends_with("showpage\nend\n%%EOF\n")) << name;
        EXPECT_EQ(lines("nan") + lines("inf "), 0) << name;
        products++;
    }
    EXPECT_GT(products, 0);
}
