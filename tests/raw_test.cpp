// Raw files: types, headers, rows and values, and the names they go by.
#include "zyrraw.h"

#include "feed_stdin.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

std::string number(float value) {
    std::ostringstream out;
    out << value;
    return is_set(value) ? out.str() : "-";
}

// One reading: "id lat,lon field a,b text {format}".
std::string show(const RAW_report& report) {
    return std::string(report.id) + " " + number(report.lat) + "," + number(report.lon) + " " +
           (is_set(report.type) ? std::to_string(report.type) : "-") + " " +
           number(report.value[0]) + "," + number(report.value[1]) + " [" + report.data + "]" +
           (report.format[0] != '\0' ? "{" + std::string(report.format) + "}" : "");
}

// Everything that is wanted of a file, a reading a line.
std::string readings(const std::string& text, const char* selector) {
    const TempDir dir;
    const std::string name = dir.write("a.raw", text);
    int type = 0;
    const int fd = RAW_open(name.c_str(), raw_read_access, &type);
    RAW_info info;
    RAW_getinfo(fd, &info);
    RAW_report report;
    std::string all;
    const bool each = selector == RAW_selector(raw_each);
    int row = 0;
    for (int calls = 0; calls < 1000; ++calls) {
        const int result = RAW_read(fd, &report, selector, &row);
        if (result == -1) {
            break;
        }
        all += result == 1 ? show(report) + "\n" : "";
        row += each && result == 1 ? 0 : 1;
    }
    RAW_close(fd);
    return all;
}

std::string header(const std::string& fields) {
    return "ZYRRAW\n1200Z 23 NOV 26\n!Some_data\n" + fields + "\n$ rest of the line\n";
}

struct Row {
    const char* note;
    std::string file;
    const char* selector; // null: each value
    std::string expected;
};

TEST(Raw, Readings) {
    const std::string three = header("id lat lon\ntemp:Temp_C:%3.1f:ul wind");
    const Row rows[] = {
        {"three position columns",               three + " OKC 35.5 -97.6 5,10:co=red clear:tx\n", nullptr,
         "OKC 35.5,-97.6 3 5,10 [5,10]{%3.1f:ul:co=red}\nOKC 35.5,-97.6 4 -,- [clear]{tx}\n"                                                                              },
        {"a row without values, and two places", three + "A 1 2\r\nB - 3 -\nC 1 x 7\n",            nullptr,
         "A 1,2 - -,- []\nB -,3 3 -,- []{%3.1f:ul}\nC -,- 3 7,- [7]{%3.1f:ul}\n"                                                                                          },
        {"one position column",                  header("id p temp") + "A 850 3\nB 700 -.5e1\n",   nullptr,
         "A 850,- 2 3,- [3]\nB 700,- 2 -5,- [-.5e1]\n"                                                                                                                    },
        {"exactly id lat lon",                   header("id lat lon") + "A 1 2\n",                 nullptr,
         "A -,- 1 1,- [1]\nA -,- 2 2,- [2]\n"                                                                                                                             },
        {"no field list",                        "ZYR\n\nplain\nA 1 2 3 x=+4.5\n",                 nullptr,
         "A 1,2 3 3,- [3]\nA 1,2 4 -,- [+4.5]\n"                                                                                                                          },
        {"no header, and a first row with Z",    "ZQX 1 2 3\nA 4 5 -,\n",                          nullptr,
         "ZQX 1,2 3 3,- [3]\nA 4,5 3 -,- [-,]\n"                                                                                                                          },
        {"what is no number is text",            "A 1 2 3x 4,y 1e99 nan -inf 0x10 - \n",           nullptr,
         "A 1,2 3 3,- [3x]\nA 1,2 4 4,- [4,y]\nA 1,2 5 -,- [1e99]\nA 1,2 6 -,- [nan]\n"
         "A 1,2 7 -,- [-inf]\nA 1,2 8 0,- [0x10]\nA 1,2 9 -,- []\n"                                                                                                       },
        {"the data end at an empty line",        "A 1 2 3\n\nB 1 2 3\n",                           nullptr,                           "A 1,2 3 3,- [3]\n"                 },
        {"by place",                             three + "A 1 2 3 4\nB 5 6 7\nC 8 9 1 2\n",        RAW_selector(raw_first_value + 1),
         "A 1,2 4 4,- [4]\nC 8,9 4 2,- [2]\n"                                                                                                                             },
        {"by name",                              three + "A 1 2 3 4\nB 5 6 7 8\n",                 "WIND",                            "A 1,2 4 4,- [4]\nB 5,6 4 8,- [8]\n"},
        {"by name=value",                        "A 1 2 t=3 gust=4:ul\nB 5 6 gust=7,8\n",          "gust",
         "A 1,2 10 4,- [4]{ul}\nB 5,6 6 7,8 [7,8]\n"                                                                                                                      },
        {"a position column",                    three + "A 1 2 3\n",                              "lon",                             "A 1,2 2 2,- [2]\n"                 },
        {"the identifier",                       three + "72357 1 2 3\n",                          RAW_selector(raw_ident),
         "72357 1,2 0 72357,- [72357]\n"                                                                                                                                  },
        {"an absent name",                       three + "A 1 2 3\n",                              "rain",                            ""                                  },
        {"sizes",                                "A 1 2 " + std::string(500,                       'x') + "\n" + std::string(50,      'i') + " 1 2 3\n",
         nullptr, "A 1,2 3 -,- [" + std::string(29, 'x') + "]\n" + std::string(29, 'i') +
             " 1,2 3 3,- [3]\n"},
        {"no rows",      three,                         nullptr,                            ""                                                               },
        {"cut in the field list",                            "ZYRRAW\n\n!x\nid lat",                                             nullptr,                                                 ""                     },
        {"nothing","",nullptr,""},
    };
    for (const Row& row : rows) {
        const char* selector = row.selector != nullptr ? row.selector : RAW_selector(raw_each);
        EXPECT_EQ(readings(row.file, selector), row.expected) << row.note;
    }
}

// Rows by number, back and forth, and several readings of one row.
TEST(Raw, RowsByNumber) {
    const TempDir dir;
    int type = 0;
    const int fd = RAW_open(dir.write("a", header("id lat lon t u") + "A 1 1 1 2\nB 1 1 3 4\n"
                                                                      "C 1 1 5 6\n")
                                .c_str(),
                            raw_read_access, &type);
    EXPECT_EQ(type, raw_type_file);
    RAW_report report;
    std::string seen;
    for (const int row : {1, 1, 2, 0, 0, 2, 5, 1}) {
        const int result = RAW_read(fd, &report, row == 2 ? "u" : "t", &row);
        seen += result == 1 ? std::string(report.id) + report.data + " " : "- ";
    }
    EXPECT_EQ(seen, "B3 B3 C6 A1 A1 C6 - B3 ");
    RAW_info info;
    EXPECT_EQ(RAW_getinfo(fd, &info), 0);
    EXPECT_STREQ(info.info, "Some_data");
    EXPECT_EQ(info.date.day, 23);
    EXPECT_EQ(RAW_get_field_ind(fd, "U"), 4);
    EXPECT_EQ(RAW_get_field_ind(fd, "id"), 0);
    EXPECT_EQ(RAW_get_field_ind(fd, RAW_selector(11)), 4);
    EXPECT_STREQ(RAW_get_field_name(fd, RAW_selector(11)), "u");
    EXPECT_EQ(RAW_get_field_name(fd, RAW_selector(raw_each)), nullptr);
    EXPECT_EQ(RAW_get_field_info(fd, "t"), nullptr);
    EXPECT_EQ(RAW_close(fd), 0);
    EXPECT_EQ(RAW_close(fd), -1);
    EXPECT_EQ(RAW_read(fd, &report, "t", &fd), 0);
}

TEST(Raw, FiveFilesAtATime) {
    const TempDir dir;
    const std::string name = dir.write("a", "A 1 2 3\n");
    int type = 0;
    for (int i = 0; i < raw_max_files; ++i) {
        EXPECT_EQ(RAW_open(name.c_str(), raw_read_access, &type), i);
    }
    EXPECT_EQ(type, raw_type_plain);
    EXPECT_EQ(RAW_open(name.c_str(), raw_read_access, &type), -1);
    RAW_close(3);
    type = 7;
    EXPECT_EQ(RAW_open(name.c_str(), raw_read_access, &type), -1);
    type = 2;
    EXPECT_EQ(RAW_open(name.c_str(), raw_read_access, &type), 3);
    EXPECT_EQ(type, raw_type_file);
    EXPECT_EQ(RAW_chktype((dir.path() + "/absent").c_str()), -1);
    EXPECT_EQ(RAW_chktype("|echo ZYR"), -1);
}

// A device without end, and a header without line ends.
TEST(Raw, FilesWithoutEnd) {
    EXPECT_EQ(RAW_chktype("/dev/zero"), raw_type_plain);
    EXPECT_EQ(readings(header(std::string(3000000, 'x')) + "A 1 2\n", RAW_selector(raw_ident)),
              "A -,- 0 -,- [A]\n");
    EXPECT_EQ(readings("ZYR" + std::string(3000000, '\0'), RAW_selector(raw_each)), "");
}

TEST(Raw, StandardInput) {
    feed_stdin("A 1 2 3\nB 4 5 6\n");
    int type = 0;
    const int fd = RAW_open("stdn", raw_read_access, &type);
    RAW_report report;
    std::string seen;
    for (const int row : {0, 1, 2}) {
        seen += RAW_read(fd, &report, RAW_selector(raw_first_value), &row) == 1 ? report.data : "-";
    }
    EXPECT_EQ(seen, "36-");
}

// File name, field and format of one text.
TEST(Raw, Names) {
    const TempDir dir;
    const TempDir other;
    dir.write("a.raw", "A 1 2 3 4\n");
    dir.write("b-2.raw", "A 1 2 3 4\n");
    other.write("c:d", "A 1 2 3 4\n");
    RES_put("file_path", dir.path().c_str());
    RES_put("raw_path", other.path().c_str());
    const struct {
        const char* name;
        const char* expected; // result, selector and format
    } rows[] = {
        {"a.raw",             "0 1 -"       },
        {"a.raw-3:co=blue",   "0 13 co=blue"},
        {"a.raw-temp",        "0 temp -"    },
        {"a.raw:fm=a:b-c",    "0 1 fm=a:b-c"},
        {"b-2.raw-temp:ul",   "0 temp ul"   },
        {"c:d:ul",            "0 1 ul"      },
        {"a.raw-65",          "0 75 -"      },
        {"a.raw-66",          "-1 0 -"      },
        {"a.raw-99999999999", "-1 0 -"      },
        {"absent-x:y",        "-1 x y"      },
        {"|cat",              "-1 1 -"      },
    };
    for (const auto& row : rows) {
        const char* field = nullptr;
        const char* format = nullptr;
        testing::internal::CaptureStderr();
        const int fd = RAW_file_open(row.name, &field, &format, raw_read_access);
        EXPECT_EQ(count_text(testing::internal::GetCapturedStderr(),
                             "RAW_file_open: Unable to open file:"),
                  fd < 0 ? 1 : 0);
        RAW_close(fd);
        std::string selector = field == nullptr ? "0" : "";
        for (int i = 0; field != nullptr && i < raw_selectors; ++i) {
            selector = field == RAW_selector(i) ? std::to_string(i) : selector;
        }
        selector = selector.empty() ? field : selector;
        EXPECT_EQ(std::to_string(fd) + " " + selector + " " + (format != nullptr ? format : "-"),
                  row.expected)
            << row.name;
    }
}

} // namespace
