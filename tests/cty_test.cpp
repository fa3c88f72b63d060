// Station database: the file's lines, single lookups, selection strings, the
// table of a picture, and the shipped files.
#include "zyrcty.h"

#include "maptran.h"
#include "region.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

const char* const lines = "Oklahoma_City        OK US OKC   *3*  35.3886  -97.6003  397 72353\n"
                          "\n"
                          "29_Palms             CA US TNP   4   34.1322 -115.9461 9999 99999 7\n"
                          "Broken               TX US BRK   1   32.0000\n"
                          "Gulf_Buoy            -- B_ -     2*  33.0000  -95.0000    0 42001\n"
                          "A_name_of_more_than_twenty_letters OK US XXX 1 35 -97 0 1\n"
                          "Tulsa                OK US TUL   2   36.1984  -95.8881  206 01234";

class Cty : public testing::Test {
protected:
    void SetUp() override {
        MESS_set(0, mess_warn | mess_error);
        directory_.write("test.cty", lines);
        RES_put("file_path", directory_.path().c_str());
    }
    TempDir directory_;
};

std::string found(const char* id) {
    CTY_data city;
    return CTY_get("test.cty", id, &city) == 1 ? city.id : "none";
}

int store(int type, int prior) {
    Domain plains;
    DOM_decode("35,-97,0.5", &plains);
    return CTY_store("test.cty", type, &plains, prior);
}

} // namespace

TEST_F(Cty, Lines) {
    const int fd = CTY_open((directory_.path() + "/test.cty").c_str(), 0, 0);
    CTY_data city;
    for (int turn = 0; turn < 2; ++turn) {
        for (const int count : {9, 10, 6, 9, 5, 9, -1}) {
            EXPECT_EQ(CTY_read(fd, &city), count) << city.name;
        }
        EXPECT_EQ(CTY_rewind(fd), 0);
    }
    CTY_info info;
    EXPECT_EQ(CTY_getinfo(fd, &info), 0);
    EXPECT_EQ(info.num_stats, static_cast<int>(std::string(lines).size() / 59));
    EXPECT_EQ(CTY_close(fd) + CTY_read(fd, &city), -1);
}

TEST_F(Cty, Lookup) {
    std::istringstream rows("okc OKC Oklahoma_city OKC 72353 OKC 01234 TUL 1234 none BRK none "
                            "29_palms TNP");
    for (std::string id, station; rows >> id >> station;) {
        EXPECT_EQ(found(id.c_str()), station) << id;
    }
    CTY_data city;
    ASSERT_EQ(CTY_get("test.cty", "TNP", &city), 1);
    EXPECT_TRUE(city.el == missing_f && city.num == 7 && city.mos == ' ');
    ASSERT_EQ(CTY_get("test.cty", "OKC", &city), 1);
    EXPECT_TRUE(city.prior == 3 && city.num == 0 && city.mos == '*' && city.ua == '*');
}

TEST_F(Cty, FileOfTheResource) {
    testing::internal::CaptureStderr();
    float lat = 1, lon = 2;
    EXPECT_EQ(CTY_get_loc("gone.cty", "OKC", &lat, &lon), 0);
    EXPECT_EQ(CTY_store("gone.cty", cty_xy, nullptr, 3), 0);
    RES_put("city_file", "NONE");
    EXPECT_EQ(found("OKC"), "none");
    RES_put("city_file", "test.cty");
    EXPECT_EQ(lat, 1);
    EXPECT_EQ(CTY_get_loc("gone.cty", "OKC", &lat, &lon), 1);
    const std::string warning = "CTY_open_file: Database file not found: gone.cty\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), warning) << "once for a file";
}

TEST_F(Cty, SelectionStrings) {
    CTY_data okc;
    ASSERT_EQ(CTY_get("test.cty", "OKC", &okc), 1);
    const char* const fitting[] = {
        "ST=ok ST=OK_US:P<3 ST:OK:CN:US P=3 ID=okc RA<100:35.2:-97.4 Name='Okla 72353 okc oklah "
        "Lat>35:Lat<35.5:Lon=-97.6003 WMO=72353",
        "ST=OK_CA CN=US:P<2 P>4 P< RA<100:36.2:-96.4 RA<100:35.2:-97.4:ST=TX RA<100:35.2 okla OK "
        "Elev>397:Elev<396 Name='Tul WMO>72000:WMO<72352"};
    for (const int fits : {0, -1}) {
        std::istringstream rows(fitting[-fits]);
        for (std::string row; rows >> row;) {
            const char* text = row.c_str();
            EXPECT_EQ(CTY_data_cmp(1, &text, &okc), fits) << row;
        }
    }
    const char* ids[] = {"P=1", "tul", "ST=OK", nullptr};
    EXPECT_EQ(CTY_data_cmp(4, ids, &okc), 2);
    EXPECT_EQ(CTY_ids_cmp(2, ids + 1, "OKC"), 1);
}

TEST_F(Cty, TableOfThePicture) {
    // Kind of identifier, what is looked up, what is shown; 29 Palms lies outside.
    std::istringstream rows("0 OKC OKC 1 OKC 72353 2 OKC OKC 0 72353 OKC 0 b42001 b42001 "
                            "2 b42001 b42001 0 TNP none 0 K2353 OKC 0 okc none 1 TUL 01234");
    int type = 0;
    for (std::string id, shown; rows >> type >> id >> shown;) {
        CTY_set_id_type(type);
        ASSERT_EQ(store(cty_xy_pos, missing), 1);
        stat_XY_data data;
        const bool is_there = CTY_search(id.c_str(), &data) == 1;
        EXPECT_EQ(is_there ? std::string(data.city.id) : "none", shown) << type << ' ' << id;
    }
    stat_XY_data okc;
    float x = 0, y = 0;
    ASSERT_EQ(CTY_search("OKC", &okc), 1);
    MAP_tran(35.3886F, -97.6003F, &x, &y);
    EXPECT_TRUE(okc.city.x == x && okc.city.y == y && okc.ptr == nullptr);
}

TEST_F(Cty, TableWithSelectionAndOwnRecord) {
    RES_put("identifier", "P<2,72353");
    CTY_data_size(sizeof(int));
    CTY_enter_func([](const CTY_data* city, void* block) {
        *static_cast<int*>(block) = city->prior;
        return 0;
    });
    for (const int limit : {3, 2}) {
        ASSERT_EQ(store(cty_full, limit), 1);
        stat_FULL_data full;
        EXPECT_EQ(CTY_search("OKC", &full), limit - 2);
        ASSERT_EQ(CTY_search("TUL", &full), 1);
        EXPECT_STREQ(full.city.name, "Tulsa");
        EXPECT_EQ(*static_cast<int*>(full.ptr), 2);
    }
}

TEST_F(Cty, ShippedFiles) {
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    RES_put("city_file", nullptr);
    // File, stations, one of them and where it is.
    std::istringstream rows(
        "rad.cty 424 TLX 35.3334 -97.2778 390 rad.cty 424 ktlx 35.3334 -97.2778 "
        "390 sao.cty 3948 72565 39.8617 -104.673 1640");
    float lat = 0, lon = 0, el = 0;
    std::size_t count = 0;
    for (std::string file, id; rows >> file >> count >> id >> lat >> lon >> el;) {
        int estimate = 0;
        const int fd = CTY_open_file(file.c_str(), &estimate);
        std::set<std::string> ids;
        CTY_data city;
        while (CTY_read(fd, &city) >= cty_fields) {
            ids.insert(city.id);
        }
        EXPECT_EQ(ids.size(), count) << file;
        EXPECT_GE(estimate, static_cast<int>(count));
        ASSERT_EQ(CTY_get(file.c_str(), id.c_str(), &city), 1) << id;
        EXPECT_TRUE(city.lat == lat && city.lon == lon && city.el == el) << id;
    }
}
