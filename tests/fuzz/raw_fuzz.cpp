// A raw file, drawn as an overlay and as a plot of its own; its first line is also the
// field and format after its name. After a line "==" there are plot_param, plot_format,
// con_base and con_interval.
#include "zyrraw.h"

#include "map.h"
#include "maptran.h"
#include "plot_session.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

constexpr const char* stations =
    "Oklahoma_City        OK US OKC   1    35.3931  -97.6007  390 72353\n";

const TempDir& dir() {
    static const TempDir own;
    return own;
}

int open_output() {
    const int id = open_bare_page("p,/dev/null");
    dir().write("sao.cty", stations);
    RES_put("file_path", dir().path().c_str());
    RAW_attribs plain;
    RAW_init_attrib(&plain);
    RAW_set_attribs(&plain);
    return id;
}

// Returns the settings' place.
std::size_t take_settings(const std::string& all) {
    const std::size_t cut = std::min(all.find("==\n"), all.size());
    std::istringstream lines(cut < all.size() ? all.substr(cut + 3) : "");
    for (const char* name : {"plot_param", "plot_format", "con_base", "con_interval"}) {
        std::string line;
        std::getline(lines, line);
        RES_put_again(name, line.substr(0, 199).c_str());
    }
    RAW_check_format("plot_format", RES_get("plot_format"));
    return cut;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int id = open_output();
    if (id < 0 || size == 0) {
        return 0;
    }
    const std::string all(reinterpret_cast<const char*>(data), size);
    const std::string text = all.substr(0, take_settings(all));
    const std::string first = text.substr(0, text.find('\n'));
    // Resources and files of the machine are not for a fuzzer to name.
    if (all.find("f=") != std::string::npos || all.find("F=") != std::string::npos) {
        return 0;
    }
    const std::string name = dir().rewrite("a.raw", text);
    constexpr int codes[] = {proj_pstereo, proj_latlon,   proj_lambert,
                             proj_xlogp,   proj_category, proj_pixel};
    Domain domain;
    domain.proj = codes[data[0] % 6];
    domain.clat = 39;
    domain.clon = -97;
    domain.nx = domain.ny = 5;
    domain.dx = domain.dy = 5;
    MAP_setup(&domain);
    RAW_plot_file(name.c_str(), 0);
    RAW_plot_file((name + "-" + first).c_str(), 1);
    RAW_plot_file((name + ":" + first).c_str(), 0);
    for (const char* field : {"-t", "-1", "-70:ul", "-"}) {
        RAW_plot_file((name + field).c_str(), 1);
    }
    int type = 0;
    const int fd = RAW_open(name.c_str(), raw_read_access, &type);
    RAW_info info;
    RAW_getinfo(fd, &info);
    RAW_get_field_info(fd, "w");
    RAW_report report;
    constexpr int most = 100;
    const char* const selectors[] = {
        RAW_selector(raw_ident),
        RAW_selector(raw_first_value),
        RAW_selector(raw_first_value - 1),
        RAW_selector(raw_each),
        "t",
        "none",
    };
    for (const char* wanted : selectors) {
        for (int i = 0; i < most && RAW_read(fd, &report, wanted, &i) != -1; ++i) {
        }
        RAW_rewind(fd);
    }
    RAW_dec_line(fd, 0, &report, first.c_str());
    RAW_close(fd);
    int row = 0; // calls with the handle of a file that is closed
    RAW_getinfo(fd, &info);
    RAW_get_field_ind(fd, "t");
    RAW_read(fd, &report, "t", &row);
    RAW_rewind(fd);
    RAW_close(fd);
    for (const char* other : {"/nonexistent/a.raw", "|none", "/tmp"}) {
        int none = 0;
        RAW_chktype(other);
        if (RAW_open(other, raw_read_access, &none) != -1) {
            std::abort();
        }
    }
    int wrong = 7;
    RAW_open(name.c_str(), raw_read_access, &wrong);
    const int out = RAW_open(name.c_str(), raw_append_access, &type);
    RAW_read(out, &report, "t", &row);
    RAW_close(out);
    return 0;
}
