// Radar Coded Messages: what is decoded of written messages, whole and damaged,
// and what the plotter draws of them.
#include "memory_file.h"
#include "nids_page.h"
#include "rarep.h"
#include "rcm_writer.h"

#include "gks.h"
#include "map_proj.h"
#include "zyrcty.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Report = std::unique_ptr<RCM_report>;

struct Close {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

// Every message of a file, up to the result that ends it.
std::vector<std::pair<int, Report>> read_all(const Bytes& bytes) {
    MESS_set(0, 0);
    const MemoryFile file(bytes);
    const std::unique_ptr<std::FILE, Close> stream(std::fopen(file.name(), "rb"));
    std::vector<std::pair<int, Report>> all;
    do {
        all.emplace_back(0, std::make_unique<RCM_report>());
        all.back().first = RCM_read_site(stream.get(), all.back().second.get());
    } while (all.back().first >= 0);
    return all;
}

Report read_one(const Bytes& bytes, int wanted = 1) {
    auto all = read_all(bytes);
    EXPECT_EQ(all.front().first, wanted);
    return std::move(all.front().second);
}

Report decode_text(const std::string& text, int wanted = 1) {
    const std::string message = "RCMTLX\n" + std::string(100, '-') + "1234 ROBUU 0001 " + text;
    return read_one({message.begin(), message.end()}, wanted);
}

std::string show_number(float v) {
    return is_set(v) ? std::to_string(static_cast<int>(v)) : "-";
}

template <std::size_t N> std::string show(const char* head, const RCM_mark (&marks)[N], int num) {
    std::string text;
    for (int i = 0; i < num; ++i) {
        text += std::string(head) + marks[i].id + "@" + show_number(marks[i].x) + "," +
                show_number(marks[i].y) + " ";
    }
    return text;
}

// All that a report says but its echoes.
std::string show(const RCM_report& r) {
    const Date& d = r.date;
    std::string text = std::string(r.id) + " ";
    for (const int number :
         {r.num, d.year, d.month, d.day, d.hour, d.min, r.mode, r.status, r.maxt}) {
        text += (is_set(number) ? std::to_string(number) : "-") + " ";
    }
    text += show_number(r.maxt_x) + "," + show_number(r.maxt_y) + " ";
    for (int i = 0; i < r.num_storm; ++i) {
        const RCM_storm& s = r.storm[i];
        text += std::string("C") + s.id + "@" + show_number(s.x) + "," + show_number(s.y);
        for (const int number : {s.dir, s.spd, s.hgt, s.hail}) {
            text += ":" + (is_set(number) ? std::to_string(number) : "-");
        }
        text += " ";
    }
    text += show("T", r.tvs, r.num_tvs) + show("M", r.meso, r.num_meso);
    for (int i = 0; i < r.num_vad; ++i) {
        const RCM_vad& v = r.vad[i];
        text += "V" + std::to_string(v.hgt) + ":" + std::to_string(v.rms) + ":" +
                std::to_string(v.dir) + ":" + std::to_string(v.spd) + " ";
    }
    return text;
}

// "column,row=level" of each cell with one.
std::string echoes(const RCM_report& r) {
    std::string text;
    for (int row = 0; row < rcm_cells; ++row) {
        for (int column = 0; column < rcm_cells; ++column) {
            if (r.echo[column][row] != rcm_no_report) {
                text += std::to_string(column) + "," + std::to_string(row) + "=" +
                        std::to_string(r.echo[column][row]) + " ";
            }
        }
    }
    return text;
}

Report random_report(std::mt19937& random) {
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    const auto coordinate = [&] { return static_cast<float>(below(rcm_cells)); };
    Report report = rcm_blank();
    const int grain = 1 + below(60);
    const int cover = below(4);
    int level = rcm_no_report;
    for (int row = 0; row < 12; ++row) {
        for (auto& column : report->echo) {
            if (below(static_cast<unsigned>(grain)) == 0) {
                level = below(4) < cover ? below(10) : rcm_no_report;
            }
            column[row * 9] = static_cast<signed char>(level);
        }
    }
    report->num = below(1000);
    report->date.min = below(60);
    report->date.year = 1950 + below(100);
    report->mode = 1 + below(2);
    report->maxt = below(700);
    report->maxt_x = coordinate();
    report->maxt_y = coordinate();
    report->num_storm = below(rcm_max_storms + 1);
    for (int i = 0; i < report->num_storm; ++i) {
        report->storm[i] = {"",         coordinate(), coordinate(), below(999),
                            below(361), below(99),    below(4) - 1};
        std::snprintf(report->storm[i].id, 3, "%c%c", 'A' + i % 26, "0 "[i / 26]);
        report->storm[i].id[i / 26 == 1 ? 1 : 2] = '\0';
    }
    report->num_tvs = below(rcm_max_tvs + 1);
    for (int i = 0; i < report->num_tvs; ++i) {
        report->tvs[i] = {"01", coordinate(), coordinate()};
    }
    report->num_meso = below(rcm_max_mesos + 1);
    for (int i = 0; i < report->num_meso; ++i) {
        report->meso[i] = {"7", coordinate(), coordinate()};
    }
    report->num_vad = below(rcm_max_vad + 1);
    for (int i = 0; i < report->num_vad; ++i) {
        constexpr int errors[] = {2, 4, 6, 8, 10, 12, 15};
        report->vad[i] = {10 * i, below(361), below(200), errors[below(7)]};
    }
    return report;
}

// What holds of any report, however damaged its message is.
void expect_bounded(const RCM_report& r, const std::string& note) {
    const auto within = [](int v, int most) { return v >= 0 && v <= most; };
    const auto place = [](float x, float y) {
        return (!is_set(x) && !is_set(y)) || (x >= 0 && x < rcm_cells && y >= 0 && y < rcm_cells);
    };
    EXPECT_TRUE(within(r.num_storm, rcm_max_storms) && within(r.num_tvs, rcm_max_tvs) &&
                within(r.num_meso, rcm_max_mesos) && within(r.num_vad, rcm_max_vad))
        << note;
    EXPECT_TRUE(place(r.maxt_x, r.maxt_y)) << note;
    for (const RCM_storm& storm : r.storm) {
        EXPECT_TRUE(place(storm.x, storm.y)) << note;
    }
    for (const auto& column : r.echo) {
        EXPECT_TRUE(std::all_of(std::begin(column), std::end(column), [](int level) {
            return level >= -1 && level <= 9;
        })) << note;
    }
    EXPECT_TRUE(!is_set(r.lat) || std::abs(r.lat) <= 90.0F) << note;
}

const std::string head = "/NEXRAA 0001 2005192231 UNEDITED ";
const std::string begun = "TLX 1 2019 5 20 22 31 ";

} // namespace

TEST(RcmRead, EveryReportComesBack) {
    std::mt19937 random(7);
    for (int i = 0; i < 60; ++i) {
        const Report report = random_report(random);
        const bool packets = i % 2 == 1;
        const Report read = read_one(rcm_message(*report, packets));
        EXPECT_EQ(show(*read), show(*report)) << i;
        EXPECT_EQ(std::memcmp(read->echo, report->echo, sizeof read->echo), 0)
            << i << "\n"
            << echoes(*read) << "\n"
            << echoes(*report);
        EXPECT_NEAR(read->lat, packets ? 35.333F : missing_f, 0.001);
        EXPECT_NEAR(read->lon, packets ? -97.278F : missing_f, 0.001);
        EXPECT_NEAR(read->elev, packets ? 390.1F : missing_f, 0.2);
    }
}

TEST(RcmRead, Segments) {
    const std::vector<std::pair<const char*, const char*>> rows = {
        {"AAA3C",            "0,0=3 1,0=3 2,0=3 3,0=3 "               },
        {"AAA3A",            "0,0=3 1,0=3 "                           },
        {"ABD1,BAG0",        "4,3=1 1,6=0 "                           },
        {"AAAC2B",           "0,0=2 1,0=2 2,0=2 "                     }, // no level to repeat
        {"ZZP12Z",           "103,103=1 "                             }, // to the last column alone
        {"ZYP89A9",          "99,103=8 100,103=9 101,103=9 102,103=9 "},
        {"AAA1 2  A , AAB4", "0,0=1 1,0=2 2,0=2 0,1=4 "               },
        {"AAA1\r\t2,AAB3",   "0,0=1 1,0=2 0,1=3 "                     },
        {"AB1,A9,AAB5",      "0,1=5 "                                 }, // no cells
        {"AAA1;AAB5",        "0,0=1 "                                 }, // the list ends
        {"AaA1,AAB5",        ""                                       },
        {"",                 ""                                       },
    };
    for (const auto& [list, cells] : rows) {
        const Report report = decode_text(head + "/NI0009:" + list + " /MT100:AAA");
        EXPECT_EQ(echoes(*report), cells) << list;
        EXPECT_EQ(report->maxt, 100) << list;
    }
}

TEST(RcmRead, Sections) {
    std::string many = "/NCEN41: ";
    std::string heights = "/NEXRCC 0001 2005192231 /NCEN45: ";
    for (int i = 0; i < 45; ++i) {
        const std::string id =
            "C" + std::string(1, static_cast<char>('A' + i / 10)) + std::to_string(i % 10) + "AAA ";
        many += id + "200010,";
        heights += id + "S" + std::to_string(100 + i) + "HN,";
    }
    struct Row {
        std::string text;
        std::string report;
    };
    const Row rows[] = {
        {head,                                                                              begun + "- 0 - -,- "                                                                },
        {head + "/MDCLAR /SC12 /NI0000: /MT310:QKH ",                                       begun + "2 0 310 41,67 "                                                            },
        {head + "/MDWHAT /SC /MT310:Q1H",                                                   begun + "- 0 310 -,- "                                                              },
        {"/NEXRAA 0001 2005192231 RADNE /MDCLAR ",                                          begun + "2 1 - -,- "                                                                },
        {"/NEXRAA 0001 2005192231 EDITED RADOM ",                                           begun + "- 2 - -,- "                                                                },
        {"/NEXRAA 0001 0101512231 ",                                                        "TLX 1 1951 1 1 22 31 - 0 - -,- "                                                   },
        {"/NEXRAA 0001 0113192231 /MDPCPN ",                                                "TLX 1 - - - - - 1 0 - -,- "                                                        }, // no month
        {"/NEXRAA x /MDPCPN ",                                                              "TLX - - - - - - 1 0 - -,- "                                                        },
        {head + "/XX 1 /MDPCPN /YY /MT050:AAA ",                                            begun + "1 0 50 0,0 "                                                               },
        {head + "/MTNONE /NCEN01: CA1ABD 240030 ",                                          begun + "- 0 - -,- CA1@4,3:240:30:-:0 "                                             },
 // An identifier of one letter, and one that part C alone names.
        {head + "/NCEN03: CA0AAA 240030,CD1AAA 250031,CG2AAA 260032 /NEXRCC 0001 2005192231 "
                "/NTVS00: /NMES00: /NCEN03: CA0AAA CD1AAA S369HP,CG2AAA S350",     begun + "- 0 - -,- CA0@0,0:240:30:-:0 CD1@0,0:250:31:369:1 CG2@0,0:260:32:350:0 "   },
        {head + "/NCEN02: CN AAA 240030,CW AAA 250031 /NEXRCC 0001 2005192231 "
                "/NTVS01: TVS1 ABD /NMES00: /NCEN02: CN AAA S350HH,CB2AAA S120HU", begun + "- 0 - -,- CN@0,0:240:30:350:2 CW@0,0:250:31:-:0 CB2@-,-:-:-:120:-1 T1@4,3 "},
        {head + "/NEXRBB 0001 2005192231 020B227038,030X224042 /ENDBB",
         begun + "- 0 - -,- V20:4:227:38 V30:0:224:42 "                                                                                                                         },
    };
    for (const Row& row : rows) {
        EXPECT_EQ(show(*decode_text(row.text)), row.report) << row.text;
    }
    // Parts B and C are found after centroids beyond the fortieth.
    const Report full = decode_text(head + many + "/ENDAA " + heights);
    EXPECT_EQ(full->num_storm, rcm_max_storms);
    EXPECT_EQ(full->storm[39].hgt, 139);
    for (const char* text : {"", "/NEXRBB 0001 2005192231 020B227038", "/NEXR"}) {
        EXPECT_EQ(show(*decode_text(text, 0)), "TLX - - - - - - - - - -,- ") << text;
    }
}

TEST(RcmRead, FilesOfSeveralSites) {
    const auto all = read_all(rcm_region_sample());
    std::string sites;
    for (const auto& [result, report] : all) {
        sites += std::string(report->id) + ":" + std::to_string(result) + " ";
    }
    EXPECT_EQ(sites, "FDR:1 TLX:1 INX:1 VNX:1 :-1 ");
    EXPECT_EQ(read_all({}).front().first, -1);
    // Nothing of one message stays in the next.
    const Bytes none = rcm_samples()[2].second;
    Bytes both = rcm_sample(false);
    both.insert(both.end(), none.begin(), none.end());
    EXPECT_EQ(echoes(*read_all(both)[1].second), "");
    EXPECT_EQ(show(*read_all(both)[1].second), show(*read_one(none)));
    // A packet form without its text.
    Bytes packets = rcm_samples()[1].second;
    const std::string text = "1234";
    packets.resize(static_cast<std::size_t>(
        std::search(packets.begin(), packets.end(), text.begin(), text.end()) - packets.begin() -
        4));
    EXPECT_NEAR(read_one(packets, 0)->lat, 35.333, 0.001);
}

TEST(RcmRead, DamagedMessagesStayBounded) {
    std::mt19937 random(3);
    for (const auto& [name, whole] : rcm_samples()) {
        for (std::size_t at = 0; at < whole.size(); ++at) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at));
            Bytes changed = whole;
            changed[at] = static_cast<std::uint8_t>(random());
            for (const auto& [result, report] : read_all(changed)) {
                expect_bounded(*report, name + " " + std::to_string(at));
            }
            for (const auto& [result, report] : read_all(cut)) {
                expect_bounded(*report, name + " cut " + std::to_string(at));
            }
        }
    }
}

// Every radar's grid has the radar in the box "MM", whose edges are grid lines.
TEST(RcmGrid, TheSiteIsInItsBox) {
    MESS_set(0, 0);
    RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    const int fd = CTY_open_file("rad.cty", nullptr);
    CTY_data city;
    int sites = 0;
    while (CTY_read(fd, &city) >= 0) {
        if (std::strlen(city.id) != 3 || city.lat < 20) {
            continue;
        }
        ++sites;
        float x = 0;
        float y = 0;
        ASSERT_EQ(RCM_grid_corner(city.lat, city.lon, &x, &y), 1) << city.id;
        Domain domain;
        RCM_site_domain(city.lat, city.lon, &domain);
        const Map map = map_make(domain);
        Gpt site{};
        map.tran(city.lat, city.lon, &site.x, &site.y);
        const double column = (site.x - x) / domain.dx;
        const double row = (y - site.y) / domain.dy;
        EXPECT_TRUE(column > 47.99 && column < 52.01 && row > 47.99 && row < 52.01)
            << city.id << " " << column << " " << row;
    }
    EXPECT_GT(sites, 100);
    CTY_close(fd);
}

// --- Plots ------------------------------------------------------------------------

namespace {

class RcmPlot : public RadarPlot {
protected:
    RcmPlot() : RadarPlot(rcm_samples()) {
        write("storm", rcm_sample(false));
        write("region", rcm_region_sample());
    }
    [[nodiscard]] NidsPage page(const std::string& args) const {
        return nids_page(dir, "-pp nobar " + args, "rcmsite");
    }
};

// Cells of the levels that are drawn.
int drawn_cells(const RCM_report& r) {
    int count = 0;
    for (const auto& column : r.echo) {
        count += static_cast<int>(std::count_if(std::begin(column), std::end(column),
                                                [](int level) { return level > 0 && level < 7; }));
    }
    return count;
}

} // namespace

TEST_F(RcmPlot, CellsAndMarks) {
    const int cells = drawn_cells(*read_one(rcm_samples()[0].second));
    const int tlx = drawn_cells(*read_one(rcm_sample(false)));
    ASSERT_GT(tlx, 100);
    struct Row {
        int figures, marks;
        const char* args;
    };
    const Row rows[] = {
        {cells,     0, "-dr sum,data,text -id TLX ./text"                                       },
        {cells,     4, "-dr sum,data,text -id tlx -va comp ./text"                              },
        {cells,     5, "-dr sum,data,text -id KTLX -va comp -pp site,nobar ./packets"           },
        {0,         4, "-dr data -id TLX -va comp ./text"                                       },
        {cells,     0, "-dr sum -id TLX -va comp ./text"                                        },
        {cells,     4, "-dr sum,data -id TLX -va comp -pd lc:40:-97,36,-97,101,101,.1,.1 ./text"},
        {tlx,       0, "-dr sum -id TLX ./region"                                               },
        {0,         0, "-dr sum,data -id TLX -va comp ./no_echoes"                              },
        {0,         0, "-dr sum,data -id TLX -va comp ./maintenance"                            },
        {cells + 6, 0, "-dr sum,text -pp bar -id TLX ./text"                                    },
    };
    for (const Row& row : rows) {
        const std::string args = row.args;
        const NidsPage got = nids_page(
            dir, (args.find("-pp") == std::string::npos ? "-pp nobar " : "") + args, "rcmsite");
        EXPECT_EQ(got.run.code, 0) << row.args << got.run.err;
        EXPECT_EQ(got.run.err, "") << row.args;
        EXPECT_EQ(got.figures(), row.figures) << row.args;
        EXPECT_EQ(count_text(got.text, "\n%%PM:"), row.marks) << row.args;
    }
}

// 7 and 8 stand for what is beyond the range of levels.
TEST_F(RcmPlot, LevelsThatAreDrawn) {
    const auto report = rcm_blank();
    for (int level = 0; level <= 8; ++level) {
        report->echo[40 + level][50] = static_cast<signed char>(level);
    }
    write("levels", rcm_message(*report, false));
    EXPECT_EQ(page("-dr sum -id TLX ./levels").figures(), 6);
}

TEST_F(RcmPlot, SitesThatAreNotThere) {
    const NidsPage other = page("-id OUN ./region");
    EXPECT_EQ(other.run.code, 10);
    EXPECT_EQ(other.run.err, "RCM_open_file: No message of OUN in file:./region\n"
                             "RCM_open_file: It has those of FDR, TLX, INX, VNX\n");
    write("html", {'<', 'h', 't', 'm', 'l', '>'});
    const NidsPage html = page("-id TLX ./html");
    EXPECT_EQ(html.run.code, 10);
    EXPECT_NE(html.run.err.find("No Radar Coded Message in file:./html\n"), std::string::npos);
    EXPECT_NE(html.run.err.find("a web page"), std::string::npos);
    EXPECT_EQ(page("-id TLX ./none").run.code, 10);

    // The place comes from the message, where that has one.
    auto report = rcm_storm_report("QQX", 40.0F, -100.0F);
    report->echo[50][50] = 3;
    write("packets_qqx", rcm_message(*report, true));
    write("text_qqx", rcm_message(*report, false));
    const NidsPage placed = page("-id QQX -dr sum ./packets_qqx");
    EXPECT_NE(placed.run.err.find("Site not in rad.cty: QQX, plotted at 40.00 -100.00 of its"),
              std::string::npos)
        << placed.run.err;
    EXPECT_GT(placed.figures(), 0);
    EXPECT_NE(page("-id QQX -dr sum ./text_qqx").run.err.find("plotted at 0.00 0.00\n"),
              std::string::npos);
}

TEST_F(RcmPlot, FilesOfARun) {
    Bytes cut = rcm_samples()[0].second;
    cut.resize(180); // before the tag of its first part
    write("cut", cut);
    const int cells = page("-dr sum -id TLX ./text").figures();
    const NidsPage three = page("-dr sum,text -id TLX ./text ./cut ./storm ./html ./text");
    EXPECT_EQ(three.run.code, 0) << three.run.err;
    EXPECT_EQ(three.figures(), 2 * cells + page("-dr sum -id TLX ./storm").figures());
    EXPECT_EQ(count_text(three.text, " 2231Z 20 MAY 19\n"), 3);
    EXPECT_NE(three.run.err.find("The message of TLX is damaged:./cut\n"), std::string::npos)
        << three.run.err;
    // A file without the site leaves no frame.
    write("other", rcm_message(*rcm_storm_report("FDR", 34.4F, -99.0F), false));
    const NidsPage two = page("-dr sum,text -id TLX ./text ./other ./text");
    EXPECT_EQ(two.figures(), 2 * cells);
    EXPECT_EQ(count_text(two.text, " RCM Base Reflectivity\n"), 2);
    expect_piped(page("-id TLX ./text"), "text", "-pp nobar -id TLX", "rcmsite");
}

TEST_F(RcmPlot, AsksForTheSite) {
    struct Row {
        const char* answers;
        int code;
        int asked;
    };
    const Row rows[] = {
        {"tlx\n",                0,  1},
        {"T\n123\nktlx\n",       0,  3},
        {"exit\n",               0,  1},
        {"",                     0,  1},
        {"1\n2\n3\n4\n5\ntlx\n", 10, 5},
    };
    for (const Row& row : rows) {
        ProgramCall call;
        call.args = {"-inp", "rcmsite", "-fp", ZYR_SOURCE_DIR "/etc", "-de", "p,page.ps", "./text"};
        call.directory = dir.path();
        call.input = row.answers;
        const ProgramRun run = run_program(ZYR_PROGRAM, call);
        EXPECT_EQ(run.code, row.code) << row.answers << run.err;
        EXPECT_EQ(count_text(run.out, "Enter station to be used in the analysis: "), row.asked)
            << row.answers;
    }
}

TEST_F(RcmPlot, GoldenPages) {
    const std::string args = "-dr sum,data,text -va comp -id TLX ";
    expect_golden(page(args + "-pp site,dist=50,nobar ./text"), "rcm_text");
    expect_golden(page(args + "-pd ll:0:-97.3,35.3,-97.3,41,41,.2,.15 ./packets"), "rcm_packets");
}
