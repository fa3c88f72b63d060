// Radar summaries: what the readers give of written files, and what the plotter
// draws of it.
#include "summary_writer.h"
#include "zyrrad.h"

#include "cdf.h"
#include "cont.h"
#include "figure_page.h"
#include "memory_file.h"
#include "nids_page.h"
#include "region.h"
#include "var_tool.h"
#include "zyrcty.h"
#include "zyrgks.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#ifdef ZYR_SANITIZED
// What the libraries keep of a damaged netCDF-4 file is theirs.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libhdf5\nleak:libnetcdf\n";
}
#endif

namespace {

Bytes bytes_of(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string number(float value) {
    char text[30];
    std::snprintf(text, sizeof text, "%.4g", static_cast<double>(value));
    return is_set(value) ? text : "-";
}
std::string number(int value) {
    return is_set(value) ? std::to_string(value) : "-";
}

std::string show(const MDR_report& r) {
    std::string text = std::string(r.id) + "|" + r.config + "|";
    for (const MDR_prec& prec : r.prec) {
        text += std::strcmp(prec.type, " ") != 0 ? prec.type + std::to_string(prec.intens) +
                                                       (prec.area_cov != 0 ? "c" : "") + "|"
                                                 : "";
    }
    text += std::string(r.trend) + "|" + number(r.tops[0].h) + "," + number(r.tops[0].dir) + "," +
            number(r.tops[0].rad);
    for (const MDR_move& move : r.move) {
        text += move.type != ' '
                    ? std::string("|") + move.type + number(move.dir) + "," + number(move.spd)
                    : "";
    }
    for (const MDR_loc& loc : r.loc) {
        text += is_set(loc.rad) ? "|@" + number(loc.dir) + "," + number(loc.rad) : "";
    }
    return text;
}

std::string show(const RCM_report& r) {
    std::string text = std::string(r.id) + " " + number(r.num) + " m" + number(r.mode) + " s" +
                       number(r.status) + " Z" + number(r.maxt) + "," + number(r.maxt_x) + "," +
                       number(r.maxt_y);
    for (int i = 0; i < r.num_tvs; ++i) {
        text += std::string(" T") + r.tvs[i].id + "," + number(r.tvs[i].x);
    }
    for (int i = 0; i < r.num_meso; ++i) {
        text += std::string(" M") + r.meso[i].id + "," + number(r.meso[i].y);
    }
    for (int i = 0; i < r.num_storm; ++i) {
        const RCM_storm& s = r.storm[i];
        text += std::string(" S") + s.id + "," + number(s.x) + "," + number(s.dir) + "," +
                number(s.spd) + "," + number(s.hgt) + "," + number(s.hail);
    }
    return text;
}

// What a file gives.
struct Read {
    int type = 0;
    int result = 0;
    RAD_info info;
    std::vector<std::string> reports;
};

Read read_file(const std::string& name) {
    Read read;
    MESS_set(0, 0);
    const int fd = RAD_open(name.c_str(), 0, &read.type);
    if (fd < 0) {
        read.type = -1;
        return read;
    }
    read.result = RAD_getinfo(fd, &read.info);
    RAD_rewind(fd);
    MDR_report mdr;
    for (int i = 0; MDR_read(fd, &mdr, 0, &i) == 0; ++i) {
        read.reports.push_back(show(mdr));
    }
    RAD_rewind(fd);
    RCM_report rcm;
    while (RCM_read(fd, &rcm, 0, nullptr) == 1) {
        read.reports.push_back(show(rcm));
    }
    EXPECT_EQ(RAD_close(fd), 0);
    return read;
}

Read read_bytes(const Bytes& bytes) {
    const MemoryFile file(bytes);
    return read_file(file.name());
}

Read read_text_file(const std::string& text) {
    return read_bytes(bytes_of(text));
}

// The levels other than 0, as "column,row:level ".
std::string levels(const RAD_info& info) {
    std::string text;
    for (int row = 0; row < rad_rows; ++row) {
        for (int column = 0; column < rad_columns; ++column) {
            const int level = info.summary[column][row];
            text += level != 0 ? std::to_string(column) + "," + std::to_string(row) + ":" +
                                     std::to_string(level) + " "
                               : "";
        }
    }
    return text;
}

int none(int, int) {
    return 0;
}

const std::string head = "ZYRRAD\n2235Z 20 MAY 19\n";

} // namespace

TEST(Summary, EveryGridComesBack) {
    std::mt19937 random(9);
    for (int i = 0; i < 4; ++i) {
        const auto grain = 1 + random() % 30;
        std::vector<int> cells(449UL * 353UL);
        for (int& cell : cells) {
            cell = random() % grain == 0 ? static_cast<int>(random() % 7) : 0;
        }
        const auto level = [&](int row, int column) { return cells[row * 449 + column]; };
        const struct {
            int type, kind, nx, ny;
            Bytes bytes;
        } files[] = {
            {3,                 rad_mdr, 120, 90,                      summary_mdr(level, {})                                   },
            {2,                 rad_mdr, 120, 90,                      summary_mdr(level, {},                                     "1235Z 20 MAY 19\n")},
            {1,                 rad_mdr,                        120,    90, summary_mdr(level,             {},                                  "* bulletins\n")},
            {3, rad_rcm,        449,           353,                           summary_rcm(level,                                  {})                         },
            {11,              rad_mdr,                     120,                       90,                          netcdf_classic(summary_stations(level,i % 2 != 0))},
            {12,     rad_mdr,            120,              90,                          netcdf_classic(summary_reports(level,                                           i % 2 != 0))                                                                                          },
        };
        for (const auto& file : files) {
            const Read read = read_bytes(file.bytes);
            ASSERT_EQ(read.type, file.type);
            EXPECT_EQ(read.result, 0);
            EXPECT_EQ(read.info.type, file.kind);
            const int first = file.type <= 3 && file.kind == rad_mdr ? 1 : 0; // row of the text
            for (int row = 0; row < rad_rows; ++row) {
                for (int column = 0; column < rad_columns; ++column) {
                    const bool in = row >= first && row < file.ny && column < file.nx;
                    ASSERT_EQ(read.info.summary[column][row], in ? level(row, column) : 0)
                        << file.type << " " << column << "," << row;
                }
            }
        }
    }
}

TEST(Summary, GridsOfTexts) {
    const std::pair<const char*, const char*> rows[] = {
        {"SDUS1\n+ 01 081\n44\n+\n99\n",                               "81,2:4 82,2:4 "      },
        {"SDUS1\n9\n+ 01 081\n4 5a\n*\n9\n",                           "81,2:4 83,2:5 "      },
        {"SDUS1\n+ 3\n1\nSDUS2\n+ 0 5\n2\n3",                          "5,1:2 5,2:3 0,4:1 "  },
        {"+ 01 081\n44\n",                                             ""                    },
        {"SDUS1\n+ 358 478\n123\n456\n",                               "478,359:1 479,359:2 "},
        {"SDUS1\n+ 2147483647 1\n1\n+\nSDUS1\n+ -9 -9\n12345678912\n",
         "0,0:2 1,0:3 2,0:4 3,0:5 4,0:6 5,0:7 6,0:8 7,0:9 8,0:1 9,0:2 "                      },
        {"RCM\n+5\n17<\n=B0\n2\n+999\n6\n*\n+7\n3\n",
         "0,5:1 1,5:1 2,5:6 3,5:1 4,5:6 6,5:2 0,359:6 "                                      },
        {"RCM\n+-4\n3\n",                                              "0,0:3 "              },
    };
    for (const auto& [text, expected] : rows) {
        const Read read = read_text_file(head + text);
        EXPECT_EQ(levels(read.info), expected) << text;
        EXPECT_EQ(read.result, *expected != '\0' ? 0 : -1) << text;
    }
    // A line counts up to 80 characters; the grid of one file is not that of the next.
    const Read wide = read_text_file(head + "SDUS1\n+ 1 0\n" + std::string(100, '2') + "\n3\n");
    EXPECT_EQ(wide.info.summary[79][2] * 10 + wide.info.summary[80][2], 20);
    EXPECT_EQ(wide.info.summary[0][3], 3);
    EXPECT_EQ(levels(read_text_file(head).info), "");
}

TEST(Summary, TypesAndDates) {
    const struct {
        const char* text;
        int type;
        const char* date; // day, hour and minute
    } rows[] = {
        {"ZYRRAD\n2215Z 20 MAY 19\n", 3,  "20 22 15"},
        {"ZYRRAD\n22Z 20 MAY 19\n",   3,  "20 22 35"},
        {"Wagic\n22Z 20 MAY 19\n",    3,  "20 22 35"},
        {" 2215Z 02 JAN 99\n",        2,  "2 22 15" },
        {"0915Z 20 MAY 19\n",         2,  "20 9 15" },
        {"12 monkeys\n",              2,  "- - -"   },
        {"* 2215Z 20 MAY 19\n",       1,  "- - -"   },
        {"3015Z 20 MAY 19\n",         -1, "- - -"   },
        {"ZYRRAW\n",                  -1, "- - -"   },
        {"CDE",                       -1, "- - -"   },
        {"",                          -1, "- - -"   },
        {"<html>",                    -1, "- - -"   },
        {"CDF\x01",                   -1, "- - -"   },
        {"\211HDF\r\n\032\n",         -1, "- - -"   },
    };
    for (const auto& row : rows) {
        const Read read = read_text_file(row.text);
        EXPECT_EQ(read.type, row.type) << row.text;
        const Date& date = read.info.date;
        EXPECT_EQ(number(date.day) + " " + number(date.hour) + " " + number(date.min), row.date)
            << row.text;
    }
    EXPECT_EQ(RAD_chktype("/no/such/file"), -1);
    const MemoryFile nc(netcdf_classic(summary_reports(none)));
    EXPECT_EQ(RAD_chktype(nc.name()), 12);
}

// Whatever a line lacks, cuts or has too much of, the next one is whole.
TEST(Summary, ReportsOfTexts) {
    const std::string next = "DDC|AREA|RW1|NEW|230,0,0|A240,20";
    const std::pair<const char*, const char*> rows[] = {
        {"TLX LINE TRW++ + 450,235045 L2532 C2435 *",                             "TLX|LINE|TRW4|+|450,235,45|L250,32|C240,35"},
        {"TLX LINE TRWXX NC 450,235045 L 2532 *",                                 "TLX|LINE|TRW6|NC|450,235,45|L250,32"       },
        {"TLX NE * * * * * *",                                                    "TLX|NE| |-,-,-"                            },
        {"TLX",                                                                   "TLX|| |-,-,-"                              },
        {"TLX NA",                                                                "TLX|NA| |-,-,-"                            },
        {"TLX CELL RW",                                                           "TLX|CELL|RW0| |-,-,-"                      },
        {"TLX CELL RWU -",                                                        "TLX|CELL|RW9|-|-,-,-"                      },
        {"TLX CELL RW NEW 450",                                                   "TLX|CELL|RW0|NEW|450,-,-"                  },
        {"TLX CELL RW NEW 450,23",                                                "TLX|CELL|RW0|NEW|450,23,-"                 },
        {"TLX CELL RW NEW 450,235045 C",                                          "TLX|CELL|RW0|NEW|450,235,45|C-,-"          },
        {"TLX CELL RW NEW 450,235045 C25",                                        "TLX|CELL|RW0|NEW|450,235,45|C250,-"        },
        {"TLX CELL RW NEW * * * C2510",                                           "TLX|CELL|RW0|NEW|-,-,-|C250,10"            },
        {"TLX CELL RW NEW 1,235045 A1010 A1111 A1212 A1313",
         "TLX|CELL|RW0|NEW|1,235,45|A100,10|A110,11|A120,12"                                                                  },
        {"TWELVELETTERS CONFIGURATION TRWSZLPAI++++ NEWER 99999999999,9999999 Q",
         "TWELVELETT|CONFIGURA|TRWS0|NEW|2147483647,999,999|Q-,-"                                                             },
        {"TLX LINE 12 34 56 78 90",                                               "TLX|LINE|12|34,-,-|560,78|90,-"            },
    };
    const std::string tail = "DDC AREA RW- NEW 230,000000 A2420 * *\n";
    for (const auto& [line, expected] : rows) {
        const std::string list = head + "SDXX STATION\n" + line + "\n" + tail;
        const Read read = read_text_file(list);
        ASSERT_EQ(read.reports.size(), 2U) << line;
        EXPECT_EQ(read.reports[0], expected) << line;
        EXPECT_EQ(read.reports[1], next) << line;
    }
    const Read blank = read_text_file(head + "SDXX STATION\r\n\n  \nTLX NE\r\n" + tail);
    EXPECT_EQ(blank.reports, (std::vector<std::string>{"TLX|NE| |-,-,-", next}));
    EXPECT_TRUE(read_text_file("*\nSDXX STATION\n" + tail).reports.empty()) << "the grid alone";
    // Any report, by its number, and the name alone.
    const MemoryFile file(bytes_of(head + "SDXX STATION\nAAA NE\n" + tail + "CCC NE"));
    int type = 0;
    const int fd = RAD_open(file.name(), 0, &type);
    RAD_rewind(fd);
    std::string seen;
    for (const int n : {2, 0, 1, 1, 3}) {
        MDR_report report;
        const int status = MDR_read(fd, &report, 1, &n);
        seen += std::to_string(status) + report.id + report.config + " ";
    }
    EXPECT_EQ(seen, "0CCC 0AAA 0DDC 0DDC -1 ");
    RAD_close(fd);
}

TEST(Summary, RecordsOfRcmLists) {
    const std::string next = "DDC 4 m2 s1 Z-,-,-";
    const std::pair<const char*, const char*> rows[] = {
        {"** TLX 3 PCPN\nZ 450 35.10 -97.20\nT 1 35 -97\nM 2 35 -98.5\nS A1 35.2 -97 240 35 450 "
         "2\n",                                              "TLX 3 m1 s0 Z450,35.1,-97.2 T1,35 M2,-98.5 SA1,35.2,240,35,450,2"},
        {"** BNA 3\n",                                                "BNA 3 m- s0 Z-,-,-"                                              },
        {"** TLX 3 NA\n",                                             "TLX 3 m- s-1 Z-,-,-"                                             },
        {"** KTLXX 3 OM CLAR\nZ\n",                                   "KTLX 3 m2 s2 Z-,-,-"                                             },
        {"**\nZ 450\n",                                               " - m- s0 Z450,-,-"                                               },
        {"** TLX PCPN\nT 123 35\nS A1\n",                             "TLX - m1 s0 Z-,-,- T12,35 SA1,-,-,-,-,0"                         },
        {"** TLX 3\nS A1 35.2 -97 240\nZZZ 9\nQ\n* Z 1\nZ 450 1 2\n",
         "TLX 3 m- s0 Z-,-,- SA1,35.2,240,-,-,0"                                                                                        },
        {"** TLX 3\nZ 1e99 nan inf\n",                                "TLX 3 m- s0 Z1,-,-"                                              },
    };
    const std::string tail = "** DDC 4 CLAR NE\n";
    for (const auto& [text, expected] : rows) {
        const Read read = read_text_file(head + "RCM\n+1\n2\n" + text + tail);
        ASSERT_EQ(read.reports.size(), 2U) << text;
        EXPECT_EQ(read.reports[0], expected) << text;
        EXPECT_EQ(read.reports[1], next) << text;
    }
    std::string many = head + "RCM\n** TLX 3\n";
    for (int i = 0; i < 50; ++i) {
        many += "S A1 1 1 1 1 1 1\nT 1 1 1\nM 1 1 1\n";
    }
    const Read read = read_text_file(many);
    ASSERT_EQ(read.reports.size(), 1U);
    EXPECT_EQ(std::count(read.reports[0].begin(), read.reports[0].end(), 'S'), 40);
    EXPECT_EQ(std::count(read.reports[0].begin(), read.reports[0].end(), 'T'), 10 + 1);
    EXPECT_EQ(std::count(read.reports[0].begin(), read.reports[0].end(), 'M'), 20);
}

TEST(Summary, ReportsOfNetcdf) {
    const std::vector<std::string> stations = {"TLX|LINE|TRW4|+|450,235,45|L250,32|C240,35",
                                               "DDC|AREA|RW1|NC|230,0,0|A230,20", "ICT|NE||-,-,-"};
    Read read = read_bytes(netcdf_classic(summary_stations(none)));
    EXPECT_EQ(read.reports, stations);
    EXPECT_STREQ(read.info.datim, summary_date);
    EXPECT_EQ(read.info.date.hour, 22);
    read = read_bytes(netcdf_classic(summary_reports(none)));
    EXPECT_EQ(read.reports,
              (std::vector<std::string>{"TLX|LINE|TRW4c|+|450,235,45|L250,32|@235,45|@200,21|@-,10",
                                        "DDC|AREA|ZRS1c|NC|-,-,-|@90,10", "ICT|NE| |-,-,-"}));
    EXPECT_EQ(read.info.date.min, 35);
    // The top has the first place, whether it counts as one or not.
    NcFile placeless = summary_reports(none);
    std::find_if(placeless.vars.begin(), placeless.vars.end(), [](const NcVar& var) {
        return var.name == "nazran";
    })->values = {0, 1, 0};
    EXPECT_EQ(read_bytes(netcdf_classic(placeless)).reports[0],
              "TLX|LINE|TRW4c|+|450,235,45|L250,32|@-,10");
    // A file that lacks any one of its variables or dimensions gives the others.
    for (const bool station : {true, false}) {
        const NcFile whole = station ? summary_stations(none) : summary_reports(none);
        for (std::size_t i = 0; i < whole.vars.size(); ++i) {
            NcFile file = whole;
            file.vars.erase(file.vars.begin() + static_cast<std::ptrdiff_t>(i));
            EXPECT_EQ(read_bytes(netcdf_classic(file)).reports.size(), 3U) << whole.vars[i].name;
            file = whole;
            file.vars[i].type = file.vars[i].type == 'c' ? 'b' : 'c';
            EXPECT_EQ(read_bytes(netcdf_classic(file)).reports.size(), 3U) << whole.vars[i].name;
        }
    }
}

// Cut and changed files end in a message or in what could be read.
TEST(Summary, DamagedFiles) {
    std::mt19937 random(3);
    for (const bool netcdf : {false, true}) {
        for (const auto& [name, bytes] : summary_seeds(netcdf)) {
            for (std::size_t size = 0; size < bytes.size(); ++size) {
                const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
                EXPECT_LE(read_bytes(cut).reports.size(), 40U) << name << size;
                Bytes changed = bytes;
                changed[size] = static_cast<std::uint8_t>(random());
                EXPECT_LE(read_bytes(changed).reports.size(), bytes.size()) << name << size;
            }
        }
    }
}

TEST(Summary, HeadersClaimMoreThanThereIs) {
    const Bytes whole = netcdf_classic(summary_stations(none));
    Bytes many = whole;
    std::fill(many.begin() + 4, many.begin() + 8, 0xFE); // records
    EXPECT_LE(read_bytes(many).reports.size(), 3U);
    for (const std::size_t at : {12UL, 16UL, 40UL}) { // counts of a list, of a name and a size
        Bytes large = whole;
        std::fill_n(large.begin() + static_cast<std::ptrdiff_t>(at), 4, 0x7F);
        EXPECT_LE(read_bytes(large).reports.size(), 3U) << at;
    }
}

// The other kind of netCDF file, made by another program, reads the same; what is
// changed in it is found by its sums.
TEST(Summary, Netcdf4) {
    if (std::system("command -v nccopy >/dev/null") != 0) {
        GTEST_SKIP() << "no nccopy";
    }
    const auto level = [](int row, int column) { return (row * column) % 7; };
    const TempDir dir;
    for (const bool turned : {false, true}) {
        const Bytes classic = netcdf_classic(summary_stations(level, turned));
        const std::string name = dir.write("classic", {classic.begin(), classic.end()});
        const std::string other = dir.path() + "/other";
        ASSERT_EQ(std::system(("nccopy -k nc4 " + name + " " + other).c_str()), 0);
        const Read read = read_file(other);
        EXPECT_EQ(read.type, 11);
        EXPECT_EQ(read.reports, read_file(name).reports);
        EXPECT_EQ(levels(read.info), levels(read_file(name).info));
        const std::string whole = read_text(other);
        std::mt19937 random(7);
        for (int i = 0; i < 60; ++i) {
            Bytes changed(whole.begin(), whole.end());
            changed[random() % 6000] ^= static_cast<std::uint8_t>(1 + random() % 255);
            EXPECT_LE(read_bytes(changed).reports.size(), whole.size());
        }
    }
}

// --- The plot ---------------------------------------------------------------------

namespace {

const std::string few_reports =
    "SDXX STATION\nTLX LINE TRW++ + 450,235045 L2532 C2435 *\n"
    "QQQ LINE TRWXX - 600,235045 L2532 * *\n"
    "DDC AREA RW- NC 230,000000 A2420 * *\nICT NE * * * * * *\nAMA NA\n";
const std::string few_records =
    "** TLX 3 PCPN\nZ 450 35.10 -97.20\nT 1 35.0 -97.3\nM 2 35.4 -98.5\n"
    "S A1 35.2 -97.9 240 35 450 2\nS B2 36.2 -97.1 250 30 380 1\nS C3 34.2 -97.1 250 30 380 0\n"
    "** DDC 4 CLAR\nZ 120 37.7 -100.2\nS D4 37.7 -100.2 240 20 120 0\n** ICT 5 CLAR NE\n";

class SummaryPlot : public RadarPlot {
protected:
    SummaryPlot()
        : RadarPlot({
              {"mdr",                                         bytes_of(head + "SDUS41\n+ 50 055\n112\n134\n+\n" + few_reports)},
              {"rcm",
               bytes_of(head + "RCM\n+209\n" + std::string(80,                                                                  '0') + "\n" + std::string(80, '0') +
                        "\n" + std::string(60, '0') + "123456\n+210\n" + std::string(80, '0') +
                        "\n" + std::string(80, '0') + "\n" + std::string(60, '0') + "114411\n" +
                        few_records)},
              {"empty", bytes_of(head)                        },
              {"junk",                 bytes_of("<html>no summary</html>")                                             },
    }) {}

    [[nodiscard]] NidsPage page(const std::string& args, const std::string& input = "",
                                const std::string& kind = "mdr") const {
        return nids_page(dir, "-dr sum,data,text -pd ps,36,-98,21,15,.4,.4 " + args, kind, input);
    }
    // The texts of the page: those of the plot, then labels and key.
    [[nodiscard]] static std::string texts(const NidsPage& page) {
        std::istringstream lines(page.text);
        std::string all;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("%%TE:")) { // the place comes first
                all += line.substr(line.find(' ', line.find(' ', 6) + 1) + 1) + " ";
            }
        }
        return all;
    }
};

} // namespace

TEST_F(SummaryPlot, GoldenPages) {
    const auto level = [](int row, int column) {
        return row / 3 == 17 && column / 4 == 14 ? 1 + row % 3 : 0;
    };
    write("station.nc", netcdf_classic(summary_stations(level)));
    write("report.nc", netcdf_classic(summary_reports(level)));
    expect_golden(page("-va model ./mdr"), "summary_mdr");
    expect_golden(page("-va storm,rtops,rstat ./rcm", "", "rcm"), "summary_rcm");
    expect_golden(page("-va model ./station.nc"), "summary_station");
    expect_golden(page("-va model ./report.nc"), "summary_report");
    expect_piped(page("-va model ./report.nc"), "report.nc",
                 "-dr sum,data,text -pd ps,36,-98,21,15,.4,.4 -va model", "mdr");
    expect_piped(page("-va model ./mdr"), "mdr",
                 "-dr sum,data,text -pd ps,36,-98,21,15,.4,.4 -va model", "mdr");
}

// The outer edge of a lone block of level 4 lies where 0.5 of its way is gone.
TEST(SummaryGrid, EdgesLieBetweenCells) {
    const MemoryFile file(bytes_of(head + "SDUS1\n+ 01 081\n44\n44\n+\n"));
    Domain domain;
    DOM_init(&domain);
    domain.proj = 1;
    domain.plat = 90.0F;
    domain.plon = -105.0F;
    domain.clat = 40.02738F;
    domain.clon = -96.1069F;
    domain.dx = domain.dy = 0.47596F;
    domain.nx = 120;
    domain.ny = 90;
    FigurePage page(domain, ZYR_SOURCE_DIR);
    ASSERT_EQ(RAD_open_file(file.name()), 1);
    EXPECT_EQ(RAD_plot_summary(), 0);
    Gattribs fill;
    for (const auto& [value, color] : {
             std::pair{0.0F, -1                    },
             {1.0F, CLR_get_ind("blue")   },
             {6.0F, CLR_get_ind("magenta")}
    }) {
        CONT_get_fill_attrib(value, &fill);
        EXPECT_EQ(fill.color, color) << value;
    }
    RAD_close_file();
    page.read(3);
    double area = 0;
    Glim box = {1e9F, -1e9F, 1e9F, -1e9F};
    for (const Figure& figure : page.areas()) {
        if (figure.points[0].x < 0 || figure.points[0].y < 0) {
            continue; // the key
        }
        area += polygon_area(figure.points);
        for (const Gpt& p : figure.points) {
            box = {std::min(box.x_min, p.x), std::max(box.x_max, p.x), std::min(box.y_min, p.y),
                   std::max(box.y_max, p.y)};
        }
    }
    EXPECT_NEAR(box.x_min, 81 - 0.875, 0.02);
    EXPECT_NEAR(box.x_max, 82 + 0.875, 0.02);
    EXPECT_NEAR(box.y_max, 89 - 2 + 0.875, 0.02); // rows count from below
    EXPECT_NEAR(box.y_min, 89 - 3 - 0.875, 0.02);
    EXPECT_GT(area, 1 + 4 * 0.875);
}

TEST_F(SummaryPlot, WhatVariablesShow) {
    // The texts of the data, one after the other.
    const char* const mdr = " ./mdr";
    const char* const rcm = " ./rcm";
    for (const auto& [args, file, expected] : std::initializer_list<std::array<const char*, 3>>{
             {"-va city::text",                     mdr, "TLX DDC ICT AMA "     },
             {"-va stat::text",                     mdr, "NE NA "               },
             {"-va pr_typ::text",                   mdr, "TRW++ RW- "           },
             {"-va pr_tt::text",                    mdr, "TRW/ RW- "            },
             {"-va pr_tnd-x::text",                 mdr, "+ NC "                },
             {"-va echtop::text",                   mdr, "450 230* "            },
             {"-va what::text,city::text",          mdr, ""                     },
             {"-va city::text,what::text",          mdr, "TLX DDC ICT AMA "     },
             {"-va mode::text",                     rcm, "P C C "               },
             {"-va stat::text",                     rcm, "NE "                  },
             {"-va echotop:::%1.0f",                rcm, "450 120 "             },
             {"-va id::text",                       rcm, "A1 B2 C3 D4 "         },
             {"-va id::text -pp numplt=2",          rcm, "A1 B2 D4 "            },
             {"-va id::text -pp numplt=0",          rcm, ""                     },
             {"-va city::text,id::text -pp noclar", rcm, "TLX A1 B2 C3 DDC ICT "},
             {"-va hail::text",                     rcm, "* + "                 },
             {"-va meso::text,tvs::text",           rcm, "M T "                 },
             {"-va top:::%1.0f",                    rcm, "450 380 380 120 "     },
             {"-va spd:::%1.0f",                    rcm, "35 30 30 20 "         },
    }) {
        const NidsPage got =
            page(std::string("-dr data ") + args + file, "", file == mdr ? "mdr" : "rcm");
        EXPECT_EQ(got.run.code, 0) << args << got.run.err;
        EXPECT_EQ(texts(got), expected) << args;
        EXPECT_EQ(got.run.err.find("the nearest is") != std::string::npos,
                  std::strstr(args, "what") != nullptr)
            << args << got.run.err;
    }
}

TEST_F(SummaryPlot, SequencesAndWords) {
    const auto count = [](const NidsPage& got) { return got.figures(); };
    const int one = count(page("-va city -pp nobar ./mdr"));
    const int other = count(page("-va city -pp nobar ./rcm"));
    EXPECT_GT(std::min(one, other), 5);
    EXPECT_EQ(count(page("-va city ./mdr")), one + 6) << "the key";
    // What cannot be read between two that can shows nothing, nor does an empty one.
    const NidsPage three = page("-va city -pp nobar ./mdr ./junk ./empty ./rcm");
    EXPECT_EQ(three.run.code, 0) << three.run.err;
    EXPECT_EQ(count(three), one + other);
    EXPECT_NE(three.run.err.find("Unable to open file:./junk"), std::string::npos);
    EXPECT_NE(three.run.err.find("No grid of levels"), std::string::npos) << three.run.err;
    EXPECT_EQ(page("-va city ./junk").run.code, 10);
    EXPECT_EQ(count(page("-va city -dr data ./mdr")), 0);
    // Levels 8 and 9 are drawn as 1.
    write("ones", bytes_of(head + "SDUS41\n+ 50 055\n11\n11\n+\n"));
    write("others", bytes_of(head + "SDUS41\n+ 50 055\n89\n91\n+\n"));
    EXPECT_EQ(golden_text(page("-va city -pp pscolor ./others").text),
              golden_text(page("-va city -pp pscolor ./ones").text));
    // Circles, of 10 nautical miles at least, and marks.
    const auto ink = [&](const char* args) {
        return page(std::string("-va city -dr data ./mdr ") + args).text.size();
    };
    EXPECT_EQ(ink("-pp dist=5"), ink("-pp dist=10"));
    EXPECT_EQ(ink("-pp dist"), ink("-pp dist:100"));
    EXPECT_GT(ink("-pp dist"), ink("-pp dist=100,nodist"));
    EXPECT_GT(ink("-pp site"), ink(""));
}

// A file of many reports ends in a page of bounded size, a message and 4.
TEST_F(SummaryPlot, PagesAreBounded) {
    std::string many = head + "SDUS41\n+ 50 055\n1\n+\nSDXX STATION\n";
    for (int i = 0; i < 41000; ++i) {
        many += "TLX NE\n";
    }
    write("many", bytes_of(many));
    const NidsPage got = page("-va city::text -dr data ./many");
    EXPECT_EQ(got.run.code, 4);
    EXPECT_NE(got.run.err.find("More than 40000 items"), std::string::npos) << got.run.err;
    EXPECT_EQ(count_text(got.text, "%%TE:"), got.text.empty() ? 0 : 40000);
}

TEST_F(SummaryPlot, Menus) {
    struct Row {
        const char* args;
        const char* input;
        const char* shown;
        int pages; // that were made
    };
    for (const Row& row : std::initializer_list<Row>{
             {"./mdr",          "model\n0\n",   "Station model",         1},
             {"./mdr",          "1\n1\n-1\n",   "Reports",               2},
             {"./mdr",          "",             "End of input",          0},
             {"./mdr",          "exit\n",       "Variable Menu",         0},
             {"./mdr",          "city::text\n", "End of input",          1},
             {"-va city ./mdr", "",             "Date: 2235Z 20 MAY 19", 1},
    }) {
        const NidsPage got = page(row.args, row.input);
        EXPECT_EQ(got.run.code, 0) << row.input << got.run.err;
        EXPECT_NE(got.run.out.find(row.shown), std::string::npos) << row.input << got.run.out;
        EXPECT_EQ(count_text(got.run.out, "Created Postscript file"), row.pages) << row.input;
    }
    EXPECT_EQ(page("-ba ./mdr").run.code, 0);
    EXPECT_EQ(page("./rcm", "0\n", "rcm").run.out.find("Station model"), std::string::npos)
        << "the menu is that of the kind of reports";
}
