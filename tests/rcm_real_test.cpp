// Real Radar Coded Messages, where they lie beside the tree.
#include "nids_page.h"
#include "rarep.h"

#include "date.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

TEST(RcmReal, CellsMarksAndLabels) {
    struct Row {
        const char* file;
        const char* id;
        std::array<int, 6> levels;
        std::array<int, 3> marks; // storms, vortices, mesocyclones
        const char* label;
    };
    const Row rows[] = {
        {"KOUN_SDUS44_RCMTLX_201305202016",
         "TLX",  {66, 31, 17, 31, 22, 24},
         {12, 4, 6},
         "2017Z 20 MAY 13"},
        {"KLSX_SDUS43_RCMLSX_202112110244",
         "KLSX", {141, 173, 63, 40, 38, 11},
         {12, 1, 3},
         "0245Z 11 DEC 21"},
    };
    MESS_set(0, 0);
    const TempDir dir;
    for (const Row& row : rows) {
        const std::string name = ZYR_REAL_DATA "/rcm/" + std::string(row.file);
        if (!std::filesystem::exists(name)) {
            GTEST_SKIP() << "no collection of real messages";
        }
        const auto report = std::make_unique<RCM_report>();
        std::FILE* file = std::fopen(name.c_str(), "rb");
        EXPECT_EQ(RCM_read_site(file, report.get()), 1);
        EXPECT_EQ(RCM_read_site(file, std::make_unique<RCM_report>().get()), -1);
        (void)std::fclose(file);
        std::array<int, 6> levels{};
        int above_0 = 0;
        for (const auto& column : report->echo) {
            for (const int level : column) {
                above_0 += level > 0 ? 1 : 0;
                if (level > 0 && level <= 6) {
                    ++levels[level - 1];
                }
            }
        }
        EXPECT_EQ(levels, row.levels) << row.file;
        EXPECT_EQ((std::array{report->num_storm, report->num_tvs, report->num_meso}), row.marks);
        const std::string text = read_text(name);
        EXPECT_EQ(above_0, std::stoi(text.substr(text.find("/NI") + 3))) << row.file;

        const NidsPage page = nids_page(
            dir, "-dr sum,data,text -pp nobar -va comp -id " + std::string(row.id) + " " + name,
            "rcmsite");
        EXPECT_EQ(page.run.code, 0) << page.run.err;
        EXPECT_EQ(page.run.err, "") << row.file;
        int cells = 0;
        for (const int count : levels) {
            cells += count;
        }
        // The flags of the barbs are figures, too.
        const auto flags = std::count_if(report->storm, report->storm + report->num_storm,
                                         [](const RCM_storm& s) { return s.spd >= 48; });
        EXPECT_EQ(page.figures(), cells + flags) << row.file;
        EXPECT_EQ(count_text(page.text, "\n%%PM:"), row.marks[0] + row.marks[1] + row.marks[2]);
        EXPECT_EQ(count_text(page.text, row.label), 1) << row.file;
    }
}
