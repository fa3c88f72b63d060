// Pictures that say where they lie: GDAL finds the place of a point on the earth in
// the picture, where the picture shows a mark at it.
#include "image_view.h"
#include "nids_page.h"

#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Point {
    const char* lat_lon;
    const char* lon_lat;
    std::uint32_t color; // of its mark in the picture
};
constexpr Point points[] = {
    {"35.3 -97.3", "-97.3 35.3", 0xCC0000},
    {"35.8 -98.9", "-98.9 35.8", 0x008C00},
    {"34.5 -96.0", "-96.0 34.5", 0x0000CC},
};

// The middle of all pixels of a colour, counted as GDAL does, from the corner of
// the picture.
std::pair<double, double> middle(const Picture& picture, std::uint32_t color) {
    double x = 0.0, y = 0.0, count = 0.0;
    for (std::size_t i = 0; i < picture.rgb.size(); ++i) {
        if (picture.rgb[i] == color) {
            x += static_cast<double>(i % static_cast<std::size_t>(picture.width)) + 0.5;
            y += static_cast<double>(i / static_cast<std::size_t>(picture.width)) + 0.5;
            ++count;
        }
    }
    return {x / count, y / count};
}

class Georef : public RadarPlot {
protected:
    Georef() : RadarPlot(nids_samples()) {
        std::string raw = "ZYRRAW\n1800Z 02 JAN 26\n!Points\nid lat lon mark\n$\n";
        const char* const names[] = {"red", "green", "blue"};
        for (std::size_t i = 0; i < std::size(points); ++i) {
            raw += "P " + std::string(points[i].lat_lon) + " plus:mark:co=" + names[i] + "\n";
        }
        dir.write("points.raw", raw);
    }
    ProgramRun draw(const std::string& domain, const std::string& words) {
        return nids_page(dir, "-de d,memory -dr data,map -cod none -mf rf:./points.raw -pp nobar," +
                                  words + " -pd " + domain + " ./precip")
            .run;
    }
    std::string read(const std::string& name) { return read_text(dir.path() + "/" + name); }
    ProgramRun tool(const std::string& name, const std::vector<std::string>& args,
                    const std::string& input) {
        return run_program("/usr/bin/" + name,
                           {.args = args, .env = {}, .input = input, .directory = dir.path()});
    }
};

} // namespace

TEST_F(Georef, GdalFindsThePoints) {
    if (access("/usr/bin/gdaltransform", X_OK) != 0) {
        GTEST_SKIP() << "gdal-bin is not installed";
    }
    for (const char* domain : {
             "ps:90:-97.6,35.35,-97.6,301,201,.021,.02",
             "ps:90:-90:45,35.35,-97.6,301,201,.021,.02",
             "lamb:30:-97:30:60,35.3,-97.5,301,201,.02,.02",
             "lamb:40:-90:40:40,35.3,-97.5,301,201,.02,.02",
             "merc,35.3,-97.5,301,201,.02,.023",
             "ll,35.3,-97.5,301,201,.02,.02",
             "gn:36.3:-96.5,35.3,-97.5,301,201,.02,.02",
             "or:20:-80,35.3,-97.5,301,201,.02,.02",
             "la,35.3,-97.5,301,201,.02,.02",
             "moll:0:-80,35.3,-97.5,301,201,.02,.02",
         }) {
        EXPECT_EQ(draw(domain, "png=map.png,georef").code, 0) << domain;
        const Picture picture = read_png(dir.path() + "/map.png");
        for (const Point& point : points) {
            const ProgramRun found =
                tool("gdaltransform", {"-i", "-t_srs", "EPSG:4326", "-output_xy", "map.png"},
                     point.lon_lat);
            double x = -1.0, y = -1.0;
            std::istringstream(found.out) >> x >> y;
            const auto [mark_x, mark_y] = middle(picture, point.color);
            // Half a pixel is the mark's own rounding; GDAL's sums take the rest.
            EXPECT_NEAR(x, mark_x, 0.501) << domain << " " << point.lon_lat << found.err;
            EXPECT_NEAR(y, mark_y, 0.501) << domain << " " << point.lon_lat;
        }
    }
    const ProgramRun info = tool("gdalinfo", {"map.png"}, "");
    EXPECT_NE(info.out.find("Mollweide"), std::string::npos) << info.out << info.err;
}

// Names of the files, the texts of the picture, and the domain that draws it again.
TEST_F(Georef, Files) {
    EXPECT_EQ(draw("lamb:30:-97:30:60,35.3,-97.5,301,201,.02,.02", "png=a.b/map,georef").code, 0);
    EXPECT_EQ(read("a.b/map.prj").substr(0, 24), "PROJCS[\"unnamed\",GEOGCS[");
    EXPECT_NE(read("a.b/map.aux.xml").find("<SRS>PROJCS[&quot;"), std::string::npos);
    std::istringstream world(read("a.b/map.wld"));
    std::vector<double> numbers;
    for (double number = 0.0; world >> number;) {
        numbers.push_back(number);
    }
    ASSERT_EQ(numbers.size(), 6U);
    EXPECT_NEAR(numbers[0], 301.0 / 640.0 * 2000.0, 3.0);
    EXPECT_LT(numbers[3], 0.0);

    const std::string png = read("a.b/map");
    const std::string key = std::string("tEXtDomain") + '\0';
    const std::size_t at = png.find(key);
    ASSERT_NE(at, std::string::npos);
    std::string domain = png.substr(at + key.size());
    domain.resize(domain.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789.,:-"));
    EXPECT_EQ(draw(domain, "png=again.png").code, 0) << domain;
    const Picture first = read_png(dir.path() + "/a.b/map");
    const Picture again = read_png(dir.path() + "/again.png");
    for (const Point& point : points) {
        EXPECT_NEAR(middle(first, point.color).first, middle(again, point.color).first, 1.01);
        EXPECT_NEAR(middle(first, point.color).second, middle(again, point.color).second, 1.01);
    }

    EXPECT_EQ(draw("ll,35.3,-97.5,301,201,.02,.02", "gif=map.gif,georef").code, 0);
    EXPECT_EQ(read("map.gfw").substr(0, 4), "0.00");
    EXPECT_EQ(read("map.prj").substr(0, 7), "GEOGCS[");

    // What can't be said is no failure; what can't be written is one.
    ProgramRun run = draw("sat:0:-90,35.3,-97.5,301,201,.02,.02", "png=sat.png,georef");
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.err.find("No projection file for a map of this kind (sat): sat.png\n"),
              std::string::npos)
        << run.err;
    EXPECT_NE(read("sat.png"), "");
    EXPECT_EQ(mkdir((dir.path() + "/full.pgw").c_str(), 0700), 0);
    run = draw("ll,35.3,-97.5,301,201,.02,.02", "png=full.png,georef");
    EXPECT_EQ(run.code, 4);
    EXPECT_NE(run.err.find("IMG_write_place: Unable to write file: full.pgw\n"), std::string::npos)
        << run.err;
}
