// What --info says of files, and the kind of a file found from its bytes.
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_page.h"
#include "rcm_writer.h"
#include "reference.h"
#include "rrwds_writer.h"
#include "summary_writer.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

class Info : public RadarPlot {
protected:
    Info() : RadarPlot(nids_samples()) {
        write("volume", lev2_samples()[0].second);
        write("now", nowrad_samples()[0].second);
        write("kav", kavrad_samples()[0].second);
        write("rrwds", rrwds_file({}, [](int, int bin) { return bin % 7; }));
        write("rcm", rcm_samples()[0].second);
        write("region", rcm_region_sample());
        for (const auto& [name, bytes] : summary_samples()) {
            write(name, bytes);
        }
        dir.write("page", "<html><body>Not found</body></html>");
        dir.write("status", "NXUS63 KDDC 171000\r\r\nGSMDDC\r\r\n" + std::string("\0\2", 2) +
                                std::string(16, '\0') + "\xFF\xFF" + std::string(20, '\0'));
        dir.write("with \"quotes\"\x01", "");
    }

    [[nodiscard]] ProgramRun info(std::vector<std::string> args) const {
        ProgramCall call;
        call.args = {"-fp", ZYR_SOURCE_DIR "/etc", "--info"};
        call.args.insert(call.args.end(), args.begin(), args.end());
        call.directory = dir.path();
        return run_program(ZYR_PROGRAM, call);
    }
};

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// Whether a text is one JSON value: braces, strings and commas in their places.
bool is_json(const std::string& text) {
    std::string open;
    bool in_string = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (static_cast<unsigned char>(c) < 0x20) {
            return false;
        }
        if (in_string) {
            i += c == '\\' ? 1 : 0;
            in_string = c != '"';
        } else if (c == '"') {
            in_string = true;
        } else if (c == '{' || c == '[') {
            open += c == '{' ? '}' : ']';
        } else if (c == '}' || c == ']') {
            if (open.empty() || open.back() != c) {
                return false;
            }
            open.pop_back();
        }
    }
    return open.empty() && !in_string;
}

} // namespace

TEST_F(Info, OneLineAFileInTheOrderOfTimes) {
    const ProgramRun run = info({"rrwds", "volume", "radial", "now", "kav", "page"});
    EXPECT_EQ(run.code, 0) << run.err;
    const std::vector<std::string> lines = lines_of(run.out);
    ASSERT_EQ(lines.size(), 6U) << run.out;
    EXPECT_TRUE(std::is_sorted(lines.begin() + 2, lines.end(),
                               [](const std::string& a, const std::string& b) {
                                   return a.substr(0, 20) < b.substr(0, 20);
                               }));
    // Without a time first: RRWDS has no year.
    const char* wanted[] = {
        "rrwds: Reflectivity for TLX; 35.33 -97.28; 0.5 deg",
        "page: a web page (HTML)",
        "2019-05-20T22:30:00Z  -     now: NOWRad Radar Master Composite (Dbz)",
        "kav: KAV Radar Master Grid; 39.00 -96.00; 40.0 to 50.0",
        "2019-05-20T22:31:24Z  ",
        "2019-05-20T22:31:24Z  ",
    };
    for (std::size_t i = 0; i < std::size(wanted); ++i) {
        EXPECT_NE(lines[i].find(wanted[i]), std::string::npos) << lines[i] << " " << wanted[i];
    }
    EXPECT_NE(run.out.find("KTLX  radial: Base reflectivity (Dbz) [19]"), std::string::npos)
        << run.out;
    EXPECT_NE(
        info({"region"})
            .out.find("FDR  region: Radar Coded Messages, also of TLX, INX, VNX; 34.36 -98.98"),
        std::string::npos)
        << info({"region"}).out;
    EXPECT_NE(run.out.find("scan 1 0.5 deg, reflectivity"), std::string::npos) << run.out;
    EXPECT_NE(info({"status"}).out.find("status: a NIDS status message\n"), std::string::npos);
    const std::string time = "2019-05-20T22:35:00Z  -     ";
    EXPECT_EQ(info({"mdr.rad", "rcm.rad", "station.nc", "report.nc"}).out,
              time + "mdr.rad: Radar summary of 78 reports of digitised radar\n" + time +
                  "rcm.rad: Radar summary of 78 Radar Coded Messages\n" + time +
                  "station.nc: Radar summary of 3 reports of digitised radar\n" + time +
                  "report.nc: Radar summary of 3 reports of digitised radar\n");
}

TEST_F(Info, JsonCanBeReadAgain) {
    const ProgramRun run = info({"volume", "--json", "radial", "with \"quotes\"\x01", "missing"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_NE(run.err.find("Unable to open file:missing"), std::string::npos) << run.err;
    int objects = 0;
    for (const std::string& line : lines_of(run.out)) {
        objects += is_json(line) ? 1 : 0;
        if (json_text(line, "file") == "radial") {
            EXPECT_EQ(json_number(line, "code"), 19);
            EXPECT_EQ(json_text(line, "input"), "nids");
            EXPECT_EQ(json_text(line, "site"), "KTLX");
            EXPECT_EQ(json_text(line, "time"), "2019-05-20T22:31:24Z");
        }
        if (json_text(line, "file") == "volume") {
            EXPECT_EQ(json_number(line, "scan"), 1) << line;
            EXPECT_NE(line.find("\"name\": \"reflectivity\""), std::string::npos) << line;
        }
    }
    EXPECT_EQ(objects, 4) << run.out;
    EXPECT_NE(run.out.find(R"("with \"quotes\"\u0001")"), std::string::npos) << run.out;
    EXPECT_EQ(info({"page"}).code, 10);
    EXPECT_EQ(info({"--json"}).code, 10);
}

// A disk that is full cuts an answer short.
TEST_F(Info, AnAnswerIsWhole) {
    for (const char* args : {"--version", "-h", "--list projections", "--info radial"}) {
        ProgramCall call;
        call.args = {"-c", std::string(ZYR_PROGRAM " ") + args + " >/dev/full"};
        call.directory = dir.path();
        const ProgramRun run = run_program("/bin/sh", call);
        EXPECT_EQ(run.code, 4) << args << run.err;
        EXPECT_NE(run.err.find("Unable to write to standard output\n"), std::string::npos);
    }
}

TEST_F(Info, TheKindOfAFileIsFound) {
    const std::vector<std::pair<const char*, const char*>> rows = {
        {"radial", "nids"   },
        {"volume", "lev2z"  },
        {"now",    "nowrad" },
        {"kav",    "kavrad" },
        {"rrwds",  "rrwds"  },
        {"rcm",    "rcmsite"},
    };
    for (const auto& [file, input] : rows) {
        const std::string args = std::string("-dr sum -id TLX -pd ps,36,-97,41,31,.2,.2 ./") + file;
        const NidsPage found = nids_page(dir, args, "auto");
        const NidsPage told = nids_page(dir, args, input);
        EXPECT_EQ(found.run.code, 0) << file << found.run.err;
        EXPECT_EQ(golden_text(found.text), golden_text(told.text)) << file;
    }
    const NidsPage page = nids_page(dir, "./page", "auto");
    EXPECT_EQ(page.run.code, 10);
    EXPECT_NE(page.run.err.find("It looks like a web page (HTML)"), std::string::npos)
        << page.run.err;
    EXPECT_EQ(nids_page(dir, "-", "auto").run.code, 10);
    EXPECT_EQ(nids_page(dir, "./missing", "auto").run.code, 10);
}

// Codes, places and times of real products are those of an independent decoder.
TEST_F(Info, RealProducts) {
    std::vector<std::string> files;
    std::vector<std::string> references;
    const bool there =
        each_reference("nids/", [&](const std::string& path, const std::string& line) {
            files.push_back(real_data + path);
            references.push_back(line);
        });
    if (!there) {
        GTEST_SKIP() << "no real files beside the tree";
    }
    std::vector<std::string> args = {"--json"};
    args.insert(args.end(), files.begin(), files.end());
    int compared = 0;
    int extremes = 0;
    for (const std::string& line : lines_of(info(args).out)) {
        const auto at = std::find(files.begin(), files.end(), json_text(line, "file"));
        ASSERT_NE(at, files.end()) << line;
        const std::string& wanted = references[static_cast<std::size_t>(at - files.begin())];
        EXPECT_TRUE(is_json(line)) << line;
        if (json_number(line, "code") == missing) {
            continue; // a status message
        }
        ++compared;
        EXPECT_EQ(json_number(line, "code"), json_number(wanted, "code")) << *at;
        EXPECT_EQ(json_number(line, "vcp"), json_number(wanted, "vcp")) << *at;
        EXPECT_NEAR(json_number(line, "lat"), json_number(wanted, "lat"), 1e-3) << *at;
        EXPECT_NEAR(json_number(line, "lon"), json_number(wanted, "lon"), 1e-3) << *at;
        const std::string time = json_text(wanted, "volume_time");
        EXPECT_EQ(json_text(line, "time"), time.substr(0, 10) + "T" + time.substr(11) + "Z") << *at;
        const std::string head = wanted.substr(0, wanted.find("\"layers\""));
        for (const char* key : {"min", "max"}) {
            const double known = json_number(head, key);
            const double told = json_number(line, key);
            const bool small = known > 1000; // tops in feet, rates in thousandths of an inch
            if (known != missing && told != missing) {
                ++extremes;
                EXPECT_NEAR(told, small ? known / 1000 : known, .011) << *at << key;
            }
        }
    }
    EXPECT_GT(extremes, 150);
    EXPECT_GT(compared, 200);
}
