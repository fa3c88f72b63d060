// rad_info: looks into radar files without plotting them: the lines of --info,
// and the kind of a file for "-inp auto". No state; the readers keep theirs.
#include "rad_info.h"

#include "data_file.h"
#include "file_kind.h"
#include "files.h"
#include "json_text.h"
#include "kavrad.h"
#include "lev2.h"
#include "nids.h"
#include "nids_impl.h"
#include "nids_tables.h"
#include "nowrad.h"
#include "rad_sites.h"
#include "rarep.h"
#include "rrwds.h"
#include "zyrcty.h"
#include "zyrrad.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* auto_word = "auto";

struct Range {
    float low = missing_f, high = missing_f;
    void widen(float value) {
        low = is_set(low) ? std::min(low, value) : value;
        high = is_set(high) ? std::max(high, value) : value;
    }
};

struct Cut {
    LEV2_cut walked;
    std::array<Range, lev2_moments> values;
};

struct Report {
    std::string file;
    std::string input; // word of `input`; empty: not known
    std::string kind;  // in words
    std::string product;
    int code = missing; // of a product
    std::string site;
    Date date;
    float lat = missing_f, lon = missing_f;
    int vcp = missing;
    float elev = missing_f;
    Range values; // of a product
    std::vector<Cut> cuts;
};

// --- Reading ------------------------------------------------------------------

// The extremes of products whose document has them otherwise than the parameter line
// of the picture.
struct Extremes {
    int code;
    int low, high; // which parameter; 0: none
    double factor;
};
constexpr Extremes documented[] = {
    {163, 4, 5, 0.05 },
    {174, 7, 4, 0.1  },
    {175, 7, 4, 0.1  },
    {176, 0, 4, 0.001},
};

Range extremes_of(const NIDS_info& info, const NidsProdDesc& desc) {
    const NidsParams& params = nids_product(info.code).params;
    Range values;
    const auto* row = std::find_if(std::begin(documented), std::end(documented),
                                   [&](const Extremes& r) { return r.code == info.code; });
    if (row != std::end(documented)) {
        const auto value = [&](int which) {
            return which == 0 ? missing_f
                              : static_cast<float>(static_cast<std::int16_t>(
                                                       desc.p[static_cast<std::size_t>(which)]) *
                                                   row->factor);
        };
        values.low = value(row->low);
        values.high = value(row->high);
    } else if (params.show != NidsExtremes::none) {
        values.high = info.max;
        values.low = params.show == NidsExtremes::min_max ? info.nmax : missing_f;
    }
    return values;
}

void read_nids(std::FILE* file, const RadSites& sites, Report* report) {
    NIDS_info info;
    if (NIDS_get_header(file, &info) == 0) {
        return;
    }
    const NidsParams& params = nids_product(info.code).params;
    const bool mosaic = info.src > nids_max_site;
    report->product = info.info;
    report->code = info.code;
    report->date = info.date;
    // A product that is no map has its radar's place in the description alone.
    const NidsProdDesc& desc = nids_header().pr_desc;
    report->lat = static_cast<float>(desc.lat) / 1000.0F;
    report->lon = static_cast<float>(desc.lon) / 1000.0F;
    report->site = mosaic ? "" : RAD_site_at(sites, report->lat, report->lon);
    report->vcp = desc.vol_cov_pat;
    if (params.elev != NidsElev::none) {
        report->elev = info.elev;
    }
    if (!mosaic && nids_product(info.code).label != nullptr) {
        report->values = extremes_of(info, desc);
    }
}

// The moments of the radial at hand.
void read_moments(Cut* cut) {
    for (int type = 0; type < lev2_moments; ++type) {
        if (LEV2_set_data_type(type) == 0) {
            continue;
        }
        const LEV2_gates& gates = LEV2_get_gates();
        unsigned least = ~0U;
        unsigned most = 0;
        for (int i = 0; i < gates.count; ++i) {
            const unsigned word = gates.word(i);
            if (word >= gates.first_value) {
                least = std::min(least, word);
                most = std::max(most, word);
            }
        }
        if (most > 0) {
            cut->values[static_cast<std::size_t>(type)].widen(gates.value(least));
            cut->values[static_cast<std::size_t>(type)].widen(gates.value(most));
        }
    }
}

void read_lev2(const std::string& name, bool packed, Report* report) {
    LEV2_set_compress(packed ? 1 : 0);
    if (lev2_open_volume(name.c_str()) == 0) {
        return;
    }
    LEV2_info info;
    LEV2_get_header(&info);
    report->site = info.id;
    report->date = info.date;
    report->lat = info.lat;
    report->lon = info.lon;
    LEV2_data data;
    while (LEV2_get_block(&data) != 0) {
        if (data.type == lev2_radial_fixed || data.type == lev2_radial_generic) {
            report->vcp = data.cov_patt;
            auto cut = std::find_if(report->cuts.begin(), report->cuts.end(), [&](const Cut& row) {
                return row.walked.num == data.elev_num;
            });
            if (cut == report->cuts.end() && report->cuts.size() < lev2_max_cuts) {
                cut = report->cuts.insert(cut, Cut{});
                cut->walked.num = data.elev_num;
            }
            if (cut != report->cuts.end()) {
                read_moments(&*cut);
            }
        }
        LEV2_next_block();
    }
    for (const LEV2_cut& walked : LEV2_get_cuts()) {
        for (Cut& cut : report->cuts) {
            if (cut.walked.num == walked.num) {
                cut.walked = walked;
            }
        }
    }
    LEV2_close_file();
}

void take_domain(const Domain& domain, Report* report) {
    report->lat = domain.clat;
    report->lon = domain.clon;
}

void read_nowrad(std::FILE* file, Report* report) {
    NOWRad_info info;
    NOWRad_header(file, &info);
    report->product = info.label;
    report->date = info.date;
    take_domain(info.domain, report);
    int line = 0;
    NOWRad_packet packet;
    while (NOWRad_line(file, &line) != 0) {
        while (NOWRad_get_packet(file, &packet) != 0) {
            if (packet.value > 0.0F) {
                report->values.widen(packet.value);
            }
        }
    }
}

void read_kavrad(std::FILE* file, Report* report) {
    KAVRAD_info info;
    KAVRAD_header(file, &info);
    report->product = info.label;
    report->date = info.date;
    take_domain(info.domain, report);
    KAVRAD_packet packet;
    while (KAVRAD_get_packet(file, &packet) != 0) {
        if (packet.run != 0 && packet.value > 0.0F) {
            report->values.widen(packet.value);
        }
    }
}

void read_rrwds(std::FILE* file, Report* report) {
    NIDS_info info;
    RRWDS_get_header(file, &info);
    report->product = info.info;
    report->date = info.date;
    report->elev = info.elev;
    const std::string label = info.info;
    report->site = label.substr(label.find_last_of(' ') + 1);
    take_domain(info.domain, report);
}

// The first message; the label names the sites of all.
void read_rcm(std::FILE* file, const RadSites& sites, Report* report) {
    constexpr int most_sites = 20; // in the label
    const auto message = std::make_unique<RCM_report>();
    std::string others;
    for (int count = 0; count < most_sites && RCM_read_site(file, message.get()) >= 0; ++count) {
        if (count > 0) {
            others += (others.empty() ? "s, also of " : ", ") + std::string(message->id);
            continue;
        }
        report->site = message->id;
        report->date = message->date;
        report->lat = message->lat;
        report->lon = message->lon;
        for (const CTY_data& city : sites) {
            if (report->site == city.id) {
                report->lat = city.lat;
                report->lon = city.lon;
            }
        }
    }
    report->product = "Radar Coded Message" + others;
}

// The date and the number of reports; -inp names their kind.
void read_summary(const char* name, Report* report) {
    const auto info = std::make_unique<RAD_info>();
    int type = 0;
    const int fd = RAD_open(name, 0, &type);
    if (fd >= 0 && RAD_getinfo(fd, info.get()) == 0) {
        const bool rcm = info->type == rad_rcm;
        RAD_rewind(fd);
        MDR_report digitised;
        const auto message = std::make_unique<RCM_report>();
        int count = 0;
        while (rcm ? RCM_read(fd, message.get(), 1, nullptr) == 1
                   : MDR_read(fd, &digitised, 1, &count) == 0) {
            ++count;
        }
        report->input = rcm ? "rcm" : "mdr";
        report->product = "Radar summary of " + std::to_string(count) +
                          (rcm ? " Radar Coded Messages" : " reports of digitised radar");
        report->date = info->date;
    }
    RAD_close(fd);
}

Report look_into(const char* name, const RadSites& sites) {
    Report report;
    report.file = name;
    const FILE_ptr file(FILE_open_data(name));
    if (!file) {
        MESS_print(mess_error, "RAD_print_files: Unable to open file:%s\n", name);
        FILE_explain(name);
        report.kind = "no file";
        return report;
    }
    std::array<std::uint8_t, 4096> area{};
    const FileKind kind = file_kind(FILE_head(file.get(), area));
    report.kind = kind.name != nullptr ? kind.name : "of no kind that is known";
    report.input = kind.input != nullptr ? kind.input : "";
    if (report.input == "nids") {
        read_nids(file.get(), sites, &report);
    } else if (report.input == "lev2" || report.input == "lev2z") {
        read_lev2(name, report.input == "lev2z", &report);
    } else if (report.input == "nowrad") {
        read_nowrad(file.get(), &report);
    } else if (report.input == "kavrad") {
        read_kavrad(file.get(), &report);
    } else if (report.input == "rrwds") {
        read_rrwds(file.get(), &report);
    } else if (report.input == "rcmsite") {
        read_rcm(file.get(), sites, &report);
    } else if (report.input == "mdr") {
        read_summary(name, &report);
    }
    return report;
}

// --- Writing ------------------------------------------------------------------

std::string list_of(const std::vector<std::string>& items) {
    std::string out = "[";
    for (const std::string& item : items) {
        out += (out.size() > 1 ? ", " : "") + item;
    }
    return out + "]";
}

std::string json_of(const Report& report) {
    JsonObject object;
    object.text("file", report.file);
    object.text("kind", report.kind);
    object.text("input", report.input);
    object.text("product", report.product);
    object.count("code", report.code);
    object.text("site", report.site);
    object.text("time", iso_time(report.date));
    object.real("lat", report.lat, 4);
    object.real("lon", report.lon, 4);
    object.count("vcp", report.vcp);
    object.real("elevation", report.elev, 2);
    object.real("min", report.values.low, 2);
    object.real("max", report.values.high, 2);
    std::vector<std::string> cuts;
    for (const Cut& cut : report.cuts) {
        JsonObject row;
        row.count("scan", cut.walked.num);
        row.real("elevation", cut.walked.angle, 2);
        row.count("radials", cut.walked.radials);
        std::vector<std::string> moments;
        for (std::size_t i = 0; i < lev2_names.size(); ++i) {
            if (cut.walked.moments[i] > 0) {
                JsonObject moment;
                moment.text("name", lev2_names[i].name);
                moment.real("min", cut.values[i].low, 2);
                moment.real("max", cut.values[i].high, 2);
                moments.push_back(moment.str());
            }
        }
        row.raw("moments", list_of(moments));
        cuts.push_back(row.str());
    }
    if (!cuts.empty()) {
        object.raw("cuts", list_of(cuts));
    }
    return object.str();
}

// "0.5 reflectivity -20.0 to 63.5, velocity ...".
std::string cut_text(const Cut& cut) {
    std::string text =
        "scan " + std::to_string(cut.walked.num) + " " + json_number(cut.walked.angle, 1) + " deg";
    for (std::size_t i = 0; i < lev2_names.size(); ++i) {
        if (cut.walked.moments[i] > 0) {
            text += std::string(", ") + lev2_names[i].name;
            if (json_is_known(cut.values[i].low)) {
                const int decimals = lev2_names[i].decimals;
                text += " " + json_number(cut.values[i].low, decimals) + " to " +
                        json_number(cut.values[i].high, decimals);
            }
        }
    }
    return text;
}

// Time first, so that lines of several runs sort too.
std::string line_of(const Report& report) {
    const std::string time = iso_time(report.date);
    std::string line = time.empty() ? "-                   " : time;
    line += "  " + (report.site.empty() ? std::string("-   ") : report.site);
    line += "  " + report.file + ": ";
    line += report.product.empty() ? report.kind : report.product;
    if (is_set(report.code)) {
        line += " [" + std::to_string(report.code) + "]";
    }
    if (json_is_known(report.lat)) {
        line += "; " + json_number(report.lat, 2) + " " + json_number(report.lon, 2);
    }
    if (is_set(report.vcp)) {
        line += "; VCP " + std::to_string(report.vcp);
    }
    if (json_is_known(report.elev)) {
        line += "; " + json_number(report.elev, 1) + " deg";
    }
    if (json_is_known(report.values.high)) {
        line += json_is_known(report.values.low) ? "; " + json_number(report.values.low, 1) + " to "
                                                 : std::string("; up to ");
        line += json_number(report.values.high, 1);
    }
    for (const Cut& cut : report.cuts) {
        line += "; " + cut_text(cut);
    }
    return line;
}

} // namespace

int RAD_print_files(int count, const char* const* files, bool json) {
    if (MESS_check_set() == 0) {
        MESS_set(0, mess_print | mess_error | mess_warn); // the progress of searches is no answer
    }
    const RadSites sites = RAD_read_sites();
    std::vector<Report> reports;
    int known = 0;
    for (int i = 0; i < count; ++i) {
        reports.push_back(look_into(files[i], sites));
        known += reports.back().input.empty() ? 0 : 1;
    }
    std::stable_sort(reports.begin(), reports.end(), [](const Report& a, const Report& b) {
        return iso_time(a.date) < iso_time(b.date);
    });
    for (const Report& report : reports) {
        MESS_print(mess_print, "%s\n", (json ? json_of(report) : line_of(report)).c_str());
    }
    return known > 0 ? 0 : -1;
}

int RAD_find_input() {
    const char* input = RES_get("input");
    if (input == nullptr || stricmp(input, auto_word) != 0) {
        return 0;
    }
    const TextList files = RES_items("filename");
    const std::string name = files.count() > 0 ? files[0] : "";
    if (name.empty() || FILE_is_stdio(name.c_str()) != 0) {
        MESS_print(mess_error, "zyrrad: -inp auto needs the name of a file\n");
        return -1;
    }
    const FILE_ptr file(FILE_open_data(name.c_str()));
    if (!file) {
        MESS_print(mess_error, "zyrrad: Unable to open file: %s\n", name.c_str());
        FILE_explain(name.c_str());
        return -1;
    }
    std::array<std::uint8_t, 4096> area{};
    const std::span<const std::uint8_t> head = FILE_head(file.get(), area);
    const FileKind kind = file_kind(head);
    if (kind.input == nullptr) {
        MESS_print(mess_error, "zyrrad: No radar file: %s\n", name.c_str());
        tell_file_kind("zyrrad", head);
        return -1;
    }
    RES_put("input", kind.input);
    return 0;
}
