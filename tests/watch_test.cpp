// Watch boxes: bulletins in the forms in which they come, the watches in force
// at a time, and where their boxes lie.
#include "watch.h"

#include "date.h"
#include "figure_page.h"
#include "files.h"
#include "nids_page.h"
#include "region.h"
#include "wx_tool.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr double deg = 3.14159265358979 / 180.0;

// A bulletin of 20 May 2013; the axis runs north to south through 97 west.
std::string
bulletin(const std::string& heading, const std::string& times,
         const std::string& rest = "AXIS..60 STATUTE MILES EAST AND WEST OF LINE..\n"
                                   "30N OKC/OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n"
                                   "..AVIATION COORDS.. 50NM E/W /26N OKC - 17S ADM/\n") {
    return "WWUS30 KWNS\nSAW5\nSPC AWW " + heading + " " + times + "\n" + rest + "\n";
}

long seconds(int year, int month, int day, int hour, int min = 0) {
    return DATE_num_sec(DATE_to_struct(year, month, day, hour, min));
}

// A map of degrees, so that figures come out as longitude and latitude.
Domain degrees() {
    Domain domain;
    DOM_decode("ll:0:0,36,-97,61,41,.5,.5", &domain);
    return domain;
}

struct Drawn {
    int result = 0;
    std::vector<std::vector<Gpt>> boxes; // corners, the first once more
    std::string labels;                  // one after the other, with "|"
};

// What a file of bulletins, dated 20 May 2013 12Z unless told, draws at a time.
Drawn drawn(const std::string& text, long cur_time, int month = 5, int day = 20,
            const Domain& domain = degrees()) {
    const TempDir dir;
    dir.write("watches", text);
    FigurePage page(domain, ZYR_SOURCE_DIR);
    const Date date = *DATE_to_struct(2013, month, day, 12, 0);
    Drawn all;
    WATCH_decode(&date); // of an empty directory: forgets what was
    all.result = WATCH_decode_file((dir.path() + "/watches").c_str(), &date, cur_time);
    WATCH_plot();
    page.read(2);
    for (const Figure& figure : page.figures) {
        all.boxes.push_back(figure.points);
    }
    for (const FigureText& label : page.texts) {
        all.labels += label.text + "|";
    }
    return all;
}

double km_between(const Gpt& a, const Gpt& b) {
    const double x = (a.x - b.x) * std::cos((a.y + b.y) / 2 * deg);
    return std::hypot(x, a.y - b.y) * 111.19;
}

const std::string day_times = "WW 53 SEVERE TSTM OK TX 201900Z - 210200Z";
const long during = seconds(2013, 5, 20, 22);

} // namespace

TEST(Watch, WhatIsInForce) {
    const std::string severe = bulletin("201858", day_times);
    const std::string other = bulletin("201930", "WW 54 TORNADO OK 201940Z - 210300Z");
    const auto with = [](const std::string& axis) { return bulletin("201858", day_times, axis); };
    const std::string north = "AXIS..40 STATUTE MILES NORTH AND SOUTH OF LINE..\n";
    std::string crlf;
    for (const char c : severe) {
        crlf += c == '\n' ? "\r\r\n" : std::string(1, c);
    }
    struct Row {
        const char* note;
        std::string text;
        std::string labels;
        int hour = 22; // of the 20th
    };
    const std::vector<Row> rows = {
        {"one",                                        severe,                                                                  "S53|to 2Z|"                                                   },
        {"line ends of a wire",                        crlf,                                                                    "S53|to 2Z|"                                                   },
        {"not yet",                                    severe,                                                                  "",                                                              18},
        {"at its first minute",                                            severe,                                                                                               "S53|to 2Z|",                                                                                                             19},
        {"two",                                          severe + other,                                                                                                                 "S53|to 2Z|T54|to 3Z|"                                                               },
        {"no watch at all",                      "SPC WW 011802\nSEVERE THUNDERSTORM WATCH NUMBER 205\nAWW\n",""},
        {"a test",                                          bulletin("201858",                                                                                                                                     "WW 53 TEST SEVERE TSTM 201900Z - 210200Z"),                                                                                                                                                                                                                                 ""},
        {"cancelled", severe + bulletin("202100","WW 53 SEVERE TSTM CANCELLED",""), ""},
        {"cancelled later",                  severe + bulletin("202330",                                                                                                                           "WW 53 SEVERE TSTM CANCELLED",                                                                                                                                                                                                                                                                                                                                                                                                                       ""),
         "S53|to 2Z|"},
        {"corrected",                                            severe + bulletin("201910 COR",                                                                                                   "WW 53 SEVERE TSTM OK 201900Z - 210400Z"),
         "S53|to 4Z|"},
        {"corrected to have ended",
         severe + bulletin("201910 COR",                                                                                                          "WW 53 SEVERE TSTM OK 201900Z - 202100Z"),                                                                                                                                                                         ""},
        {"read twice",severe + severe,"S53|to 2Z|"                                                                                                                                                                          },
        {"replaced",                    severe + other + "REPLACES WW 53..OK TX\n",                                                                                        "T54|to 3Z|"    },
        {"replaced, but not begun",                                            severe + other + "REPLACES WW 53..OK TX\n",                                                                                                        "S53|to 2Z|",                                                                                                                                                                                      19},
        {"line on the next word",
         with("AXIS..60 STATUTE MILES EITHER SIDE OF LINE..30N OKC/"
              "OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n"),
         "S53|to 2Z|"},
        {"stations alone",                                            with(north + "OKC/OKLAHOMA CITY OK/ - TUL/TULSA OK/\n"),                                                                                           "S53|to 2Z|"                                                                },
        {"one end",                                          with(north + "OKC/OKLAHOMA CITY OK/ - 20S QQQ/NOWHERE OK/\n"),                                                                                                                 ""},
        {"no width",                                 with("AXIS..WIDE STATUTE MILES NORTH AND SOUTH OF LINE..\n"),                                                                                                        ""                                                                                                                                                                                                                      },
        {"no side",
         with("AXIS..60 STATUTE MILES ALL ROUND THE LINE..\n"
              "30N OKC/OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n"),
         ""   },
    };
    for (const Row& row : rows) {
        const Drawn all = drawn(row.text, seconds(2013, 5, 20, row.hour));
        EXPECT_EQ(all.labels, row.labels) << row.note;
        EXPECT_EQ(all.boxes.size() * 2,
                  static_cast<std::size_t>(std::count(row.labels.begin(), row.labels.end(), '|')))
            << row.note;
        EXPECT_EQ(all.result, 1) << row.note;
    }
}

// Day numbers go to the month nearest to the file's, over both ends of it.
TEST(Watch, MonthsAndTheEndOfTheYear) {
    const std::string first = bulletin("010100", "WW 7 TORNADO OK 010200Z - 010800Z");
    EXPECT_EQ(drawn(first, seconds(2014, 1, 1, 3), 12, 31).labels, "T7|to 8Z|");
    EXPECT_EQ(drawn(first, seconds(2013, 12, 1, 3), 12, 31).labels, "");
    const std::string last = bulletin("312200", "WW 8 TORNADO OK 312300Z - 010500Z");
    EXPECT_EQ(drawn(last, seconds(2013, 6, 1, 2), 6, 1).labels, "T8|to 5Z|");
}

// Distances are statute miles on the line, nautical miles on the aviation line.
TEST(Watch, BoxesLieAsTheirAxisSays) {
    const Gpt okc = {-97.6007F, 35.3931F};
    const Gpt adm = {-97.0196F, 34.3043F};
    const auto box = [](const std::string& line) {
        const Drawn all = drawn(bulletin("201858", day_times, line), during);
        EXPECT_EQ(all.boxes.size(), 1U) << line;
        return all.boxes.empty() ? std::vector<Gpt>(5) : all.boxes[0];
    };
    const auto expect = [](const Gpt& corner, const Gpt& from, double north_km, double east_km,
                           const char* note) {
        const double lat = from.y + north_km / 111.19;
        const Gpt wanted = {static_cast<float>(from.x + east_km / 111.19 / std::cos(lat * deg)),
                            static_cast<float>(lat)};
        EXPECT_LT(km_between(corner, wanted), 4.0) << note << " " << corner.x << " " << corner.y;
    };
    constexpr double mile = 1.60934;
    constexpr double nmi = 1.852;
    const std::string east = "AXIS..60 STATUTE MILES EAST AND WEST OF LINE..\n";
    std::vector<Gpt> c = box(east + "30N OKC/OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n");
    expect(c[0], okc, 30 * mile, -60 * mile, "west of the first end");
    expect(c[1], okc, 30 * mile, 60 * mile, "east of the first end");
    expect(c[2], adm, -20 * mile, 60 * mile, "east of the second end");
    expect(c[3], adm, -20 * mile, -60 * mile, "west of the second end");
    EXPECT_LT(km_between(c[4], c[0]), 0.1);
    // A station that is known in the aviation line only brings its bearing.
    c = box(east + "30N QQQ/OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n"
                   "..AVIATION COORDS.. 52NM E/W /26N OKC - 17S ADM/\n");
    expect(c[0], okc, 26 * nmi, -60 * mile, "aviation");
    c = box(east + "30N QQQ/OKLAHOMA CITY OK/ - 20S ADM/ARDMORE OK/\n"
                   "..AVIATION COORDS 52NM E/W /26N OKC - 17S ADM/\n");
    expect(c[0], okc, 26 * nmi, -60 * mile, "aviation without dots");
    c = box("AXIS..40 STATUTE MILES NORTH AND SOUTH OF LINE..\n"
            "OKC/OKLAHOMA CITY OK/ - 10E ADM/ARDMORE OK/\n");
    expect(c[0], okc, 40 * mile, 0, "north of the first end");
    expect(c[2], adm, -40 * mile, 10 * mile, "south of the second end");
    // To either side of a line along a meridian.
    c = box("AXIS..50.0 STATUTE MILES EITHER SIDE OF LINE..\n"
            "OKC/OKLAHOMA CITY OK/ - 90S OKC/OKLAHOMA CITY OK/\n");
    expect(c[0], okc, 0, 50 * mile, "left, looking south");
    expect(c[2], okc, -90 * mile, -50 * mile, "right of the other end");
}

// A box about the edge of the map, here through its station, lies on both sides of it
// and not across the map between them.
TEST(Watch, OverTheEdgeOfTheMap) {
    for (const char* axis :
         {"AXIS..60 STATUTE MILES EAST AND WEST OF LINE..\n30N OKC/OKC OK/ - 20S OKC/OKC OK/\n",
          "AXIS..60 STATUTE MILES EITHER SIDE OF LINE..\n60W OKC/OKC OK/ - 60E OKC/OKC OK/\n"}) {
        for (const int clon : {-107, -87}) {
            Domain domain;
            DOM_decode(("ll:0:82.4,36," + std::to_string(clon) + ",61,41,.5,.5").c_str(), &domain);
            const Drawn all = drawn(bulletin("201858", day_times, axis), during, 5, 20, domain);
            ASSERT_EQ(all.boxes.size(), 1U) << axis << clon; // the other is out of the page
            for (const Gpt& corner : all.boxes[0]) {
                EXPECT_NEAR(corner.x, clon < -97 ? 180.0 : -180.0, 1.5) << axis << clon;
                EXPECT_NEAR(corner.y, 35.4, 1.5) << axis << clon;
            }
        }
    }
}

// The bulletins' own outline is the judge.
TEST(Watch, RealBulletinsLieOnTheirOutlines) {
    const std::string path = ZYR_REAL_DATA "/watch";
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no real bulletins beside the tree";
    }
    int boxes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        const std::string text = read_text(entry.path());
        int day = 0;
        int hour = 0;
        int min = 0;
        const std::size_t outline = text.find("LAT...LON ");
        const std::size_t times = text.find("Z - ");
        if (outline == std::string::npos || times == std::string::npos) {
            EXPECT_EQ(drawn(text, during).labels, "") << entry.path();
            continue;
        }
        std::sscanf(text.c_str() + times - 6, "%2d%2d%2d", &day, &hour, &min);
        const Drawn all = drawn(text, seconds(2013, 5, day, hour, min) + 600, 5, day);
        ASSERT_EQ(all.boxes.size(), 1U) << entry.path();
        ++boxes;
        for (int i = 0; i < 4; ++i) {
            int lat = 0;
            int lon = 0;
            std::sscanf(text.c_str() + outline + 10 + i * 9, "%4d%4d", &lat, &lon);
            // A longitude of 100 degrees and more has lost its first digit.
            const float west = static_cast<float>(lon < 5000 ? lon + 10000 : lon) / 100.0F;
            const Gpt wanted = {-west, static_cast<float>(lat) / 100.0F};
            double nearest = 1e9;
            for (const Gpt& corner : all.boxes[0]) {
                nearest = std::min(nearest, km_between(corner, wanted));
            }
            EXPECT_LT(nearest, 25.0) << entry.path() << " corner " << i;
        }
    }
    EXPECT_EQ(boxes, 4);
}

// Ten megabytes of bulletins without an end, of words without one, and of stations,
// and bulletins cut at every byte: what is whole counts.
TEST(Watch, HostileTexts) {
    const std::string good = bulletin("201858", day_times);
    constexpr std::size_t size = 10'000'000;
    const auto many = [&](const std::string& part) {
        std::string all;
        for (all.reserve(size + part.size()); all.size() < size;) {
            all += part;
        }
        return all;
    };
    const std::string head = "SPC AWW 201858\n" + day_times + "\n";
    for (const std::string& text :
         {std::string(size, 'A'), many("AWW 201858 WW 1 "), head + many("AXIS.."),
          head + "AXIS..60 STATUTE MILES EAST AND WEST OF LINE.." + many("30N"), many(head)}) {
        EXPECT_EQ(drawn(text + "\n" + good, during).labels, "S53|to 2Z|") << text.substr(0, 99);
    }
    const TempDir dir;
    const Date date = *DATE_to_struct(2013, 5, 20, 12, 0);
    MESS_set(0, 0);
    for (std::size_t length = 0; length < good.size(); ++length) {
        const std::string name = dir.write("cut", good.substr(0, length));
        EXPECT_EQ(WATCH_decode_file(name.c_str(), &date, during), 1) << length;
    }
}

TEST(Watch, TableIsFullAfterTwenty) {
    std::string text;
    for (int i = 1; i <= 21; ++i) {
        text += bulletin("201858", "WW " + std::to_string(i) + " TORNADO OK 201900Z - 210200Z");
    }
    const Drawn all = drawn(text, during);
    EXPECT_EQ(all.boxes.size(), 20U);
    EXPECT_TRUE(all.labels.ends_with("|T20|to 2Z|")) << all.labels;
}

TEST(Watch, LabelsInWords) {
    WATCH_set_label(1);
    const auto label = [](const char* zone, int end) {
        DATE_set_TZ(zone);
        char times[60] = "";
        std::snprintf(times, sizeof times, "WW 5 TORNADO OK 201000Z - 20%02d00Z", end);
        return drawn(bulletin("200900", times), seconds(2013, 5, 20, 10)).labels;
    };
    const std::string title = "TORNADO WATCH|to ";
    EXPECT_TRUE(label("EST:-5", 12).starts_with(title + "7 AM")) << label("EST:-5", 12);
    EXPECT_TRUE(label("EST:-5", 17).starts_with(title + "12 PM"));
    EXPECT_TRUE(label("EST:-5", 20).starts_with(title + "3 PM"));
    EXPECT_TRUE(label("MSK:+4", 20).starts_with(title + "12 AM"));
}

TEST(Watch, CompassPoints) {
    EXPECT_EQ(dir_decode("N"), 0.0F);
    EXPECT_EQ(dir_decode("ESE"), 112.5F);
    EXPECT_EQ(dir_decode("NNW"), 337.5F);
    for (const char* none : {"", "nne", "NNNE", "NN"}) {
        EXPECT_EQ(dir_decode(none), missing_f) << none;
    }
}

namespace {

class WatchPlot : public RadarPlot {
protected:
    WatchPlot() : RadarPlot(nids_samples()) {}
};

} // namespace

// Each frame has the watches of its own time, on every plotter and in any place
// of the list; the frames' files are found as without.
TEST_F(WatchPlot, OverAProductForItsTime) {
    const NidsPage plain = nids_page(dir, "-dr sum,data -pp nobar ./radial");
    const NidsPage none = nids_page(dir, "-dr sum,data -pp nobar -va watch ./radial");
    EXPECT_EQ(none.run.code, 0);
    EXPECT_NE(none.run.err.find("No file of watches"), std::string::npos) << none.run.err;
    EXPECT_EQ(count_text(none.text, "%%TE"), count_text(plain.text, "%%TE"));

    ASSERT_NE(plain.run.out.find("Product date: 2231Z 20 MAY 19"), std::string::npos);
    const char* times = "WW 9 TORNADO OK 202200Z - 202300Z";
    dir.write("watches.txt", bulletin("010000", times));
    dir.write("name_conv", "wat_dat %W/watches.txt - 0\nnids_dat %D/%Y%m%d%h%n - 0\n");
    const std::string args =
        "-nc " + dir.path() + "/name_conv -wp . -dr sum,data -pp nobar -cowa yellow,red ";
    for (const char* list : {"watch", "none,Watch"}) {
        const NidsPage page = nids_page(dir, args + "-va " + list + " ./radial ./digital");
        EXPECT_EQ(page.run.code, 0) << page.run.err;
        EXPECT_EQ(count_text(page.text, " T9\n"), 2) << list << page.run.err;
    } // Neither the data's width nor that of the watch before counts for a box of its own look.
    dir.write("watches.txt", bulletin("010000", "WW 8 SEVERE TSTM OK 202200Z - 202300Z") +
                                 bulletin("010000", times));
    const std::string page = nids_page(dir, "-nc " + dir.path() +
                                                "/name_conv -wp . -dr data -pp pscolor,nobar -va "
                                                "watch -cod white:wi=7 -cowa red:wi=3,yellow "
                                                "./radial")
                                 .text;
    const std::size_t second = page.find(" to 23Z", page.find(" S8\n"));
    EXPECT_NE(second, std::string::npos);
    EXPECT_EQ(count_text(page, "\n3.0 dot lw"), 1);
    EXPECT_LT(page.find("\n1.0 dot lw", second), page.find(" T9\n", second));
    EXPECT_EQ(page.find("\n3.0 dot lw", second), std::string::npos);
}
