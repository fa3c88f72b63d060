// rcm_writer: the text and the packets of Radar Coded Messages.
#include "rcm_writer.h"

#include "map_proj.h"
#include "storm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <numbers>

namespace {

constexpr std::size_t columns = 70; // of a line of the text
constexpr float feet_per_metre = 1.0F / 0.3048F;
constexpr double km_per_degree = 111.2;
constexpr float tlx_lat = 35.3334F;
constexpr float tlx_lon = -97.2778F;

[[gnu::format(printf, 1, 2)]] std::string form(const char* format, ...) {
    std::array<char, 200> text{};
    std::va_list args;
    va_start(args, format);
    // va_start above has made the list; the analyzer does not follow it.
    std::vsnprintf(text.data(), text.size(), format, // NOLINT(clang-analyzer-valist.Uninitialized)
                   args);
    va_end(args);
    return text.data();
}

// Fills the line up.
void end_line(std::string* text) {
    text->append((columns - text->size() % columns) % columns, ' ');
}

std::string cell_name(int column, int row) {
    const auto letter = [](int n) { return static_cast<char>('A' + n); };
    return {letter(row / 4), letter(column / 4), letter(column % 4 * 4 + row % 4)};
}

std::string cell_name(float x, float y) {
    return is_set(x) ? cell_name(static_cast<int>(x), static_cast<int>(y)) : "---";
}

// The levels of a row from a column on, up to the first cell without one.
std::string segment(const RCM_report& report, int row, int* column) {
    std::string text = cell_name(*column, row);
    while (*column < rcm_cells && report.echo[*column][row] != rcm_no_report) {
        const auto level = report.echo[*column][row];
        int same = 0;
        while (*column < rcm_cells && report.echo[*column][row] == level && same <= 26) {
            ++*column;
            ++same;
        }
        text += std::to_string(level);
        if (same > 1) {
            text += static_cast<char>('A' + same - 2);
        }
    }
    return text;
}

// A blank goes where a line would end within a segment; the name of its cell is
// not split.
void add_wrapped(const std::string& part, std::string* text) {
    for (const char c : part) {
        const bool starts = text->ends_with(',') || text->ends_with(':');
        if (starts && text->size() % columns > columns - 4) {
            end_line(text);
        } else if (text->size() % columns == columns - 1) {
            text->push_back(' ');
        }
        text->push_back(c);
    }
}

std::string echo_list(const RCM_report& report) {
    std::string list;
    int above_0 = 0;
    for (int row = 0; row < rcm_cells; ++row) {
        for (int column = 0; column < rcm_cells; ++column) {
            if (report.echo[column][row] == rcm_no_report) {
                continue;
            }
            for (int at = column; at < rcm_cells && report.echo[at][row] != rcm_no_report; ++at) {
                above_0 += report.echo[at][row] > 0 ? 1 : 0;
            }
            list += (list.empty() ? "" : ",") + segment(report, row, &column);
        }
    }
    return form("/NI%04d:", above_0) + list;
}

std::string part_a(const RCM_report& report, const std::string& stamp) {
    std::string text = form("1234 ROBUU %04d ", report.num);
    end_line(&text);
    text += "/NEXRAA " + stamp + "UNEDITED ";
    text += report.status == rcm_status_no_echoes     ? "RADNE "
            : report.status == rcm_status_maintenance ? "RADOM "
                                                      : "";
    end_line(&text);
    if (is_set(report.mode)) {
        text += report.mode == rcm_mode_clear_air ? "/MDCLAR /SC " : "/MDPCPN /SC ";
    }
    if (report.status == rcm_status_normal) {
        add_wrapped(echo_list(report), &text);
    }
    end_line(&text);
    if (is_set(report.maxt)) {
        text += form("/MT%03d:", report.maxt) + cell_name(report.maxt_x, report.maxt_y);
        end_line(&text);
    }
    std::string list;
    int count = 0;
    for (int i = 0; i < report.num_storm; ++i) {
        const RCM_storm& storm = report.storm[i];
        if (is_set(storm.x)) {
            list += form("%sC%-2s%s %03d%03d", list.empty() ? "" : ",", storm.id,
                         cell_name(storm.x, storm.y).c_str(), storm.dir, storm.spd);
            ++count;
        }
    }
    text += form("/NCEN%02d: ", count) + list;
    end_line(&text);
    text += "/ENDAA ";
    end_line(&text);
    return text;
}

std::string part_b(const RCM_report& report, const std::string& stamp) {
    std::string text = "/NEXRBB " + stamp;
    end_line(&text);
    for (int i = 0; i < report.num_vad; ++i) {
        const RCM_vad& wind = report.vad[i];
        const char error = wind.rms == 15 ? 'G' : static_cast<char>('A' + (wind.rms - 2) / 2);
        text += form("%s%03d%c%03d%03d", i == 0 ? "" : ",", wind.hgt, error, wind.dir, wind.spd);
    }
    end_line(&text);
    text += "/ENDBB ";
    end_line(&text);
    return text;
}

std::string marks(const char* head, const char* word, const RCM_mark* list, int count) {
    std::string text = form("/%s%02d: ", head, count);
    for (int i = 0; i < count; ++i) {
        text +=
            form("%s%s%-2s", i == 0 ? "" : ",", word, list[i].id) + cell_name(list[i].x, list[i].y);
    }
    end_line(&text);
    return text;
}

std::string part_c(const RCM_report& report, const std::string& stamp) {
    std::string text = "/NEXRCC " + stamp;
    end_line(&text);
    text += marks("NTVS", "TVS", report.tvs, report.num_tvs);
    text += marks("NMES", "M", report.meso, report.num_meso);
    text += form("/NCEN%02d: ", report.num_storm);
    for (int i = 0; i < report.num_storm; ++i) {
        const RCM_storm& storm = report.storm[i];
        text += form("%sC%-2s%s S%03dH%c", i == 0 ? "" : ",", storm.id,
                     is_set(storm.x) ? cell_name(storm.x, storm.y).c_str() : "AAA", storm.hgt,
                     "UNPH"[storm.hail - rcm_hail_unknown]);
    }
    end_line(&text);
    return text;
}

void add_packet(unsigned type, std::string text, Bytes* out) {
    text.append(text.size() % 2, ' ');
    const std::size_t halfwords = (text.size() + 4) / 2;
    for (const std::size_t number : {halfwords & 0x0FFFU, std::size_t{type}}) {
        out->push_back(static_cast<std::uint8_t>(number >> 8));
        out->push_back(static_cast<std::uint8_t>(number));
    }
    out->insert(out->end(), text.begin(), text.end());
}

// --- The storm --------------------------------------------------------------------

int level_of(float dbz) {
    constexpr float least[] = {15, 30, 40, 45, 50, 55};
    return static_cast<int>(
        std::count_if(std::begin(least), std::end(least), [&](float l) { return dbz >= l; }));
}

struct Place {
    float lat = missing_f, lon = missing_f;
    [[nodiscard]] float east_of(float from) const {
        return static_cast<float>((lon - from) * km_per_degree *
                                  std::cos(lat * std::numbers::pi / 180.0));
    }
    [[nodiscard]] float north_of(float from) const {
        return static_cast<float>((lat - from) * km_per_degree);
    }
};

// What a site sees in its cells.
struct View {
    std::array<std::array<float, rcm_cells>, rcm_cells> dbz{};  // by column and row
    std::array<std::array<float, rcm_cells>, rcm_cells> away{}; // km from the mesocyclone
};

View look(float lat, float lon, RCM_report* report) {
    constexpr double full_km = 230.0;
    constexpr double far_km = 460.0;
    View view;
    Domain domain;
    RCM_site_domain(lat, lon, &domain);
    const Map map = map_make(domain);
    float x = 0;
    float y = 0;
    RCM_grid_corner(lat, lon, &x, &y);
    for (int column = 0; column < rcm_cells; ++column) {
        for (int row = 0; row < rcm_cells; ++row) {
            Place place;
            map.untran(x + domain.dx * (static_cast<float>(column) + 0.5F),
                       y - domain.dy * (static_cast<float>(row) + 0.5F), &place.lat, &place.lon);
            const float east = place.east_of(tlx_lon);
            const float north = place.north_of(tlx_lat);
            const double range = std::hypot(place.east_of(lon), place.north_of(lat));
            const float dbz = range < far_km ? storm_dbz(east, north) : -30.0F;
            const int level = level_of(dbz);
            const bool far = range >= full_km; // two levels for echoes beyond the range
            if (level > 0 && (!far || level > 1)) {
                report->echo[column][row] = static_cast<signed char>(!far        ? level
                                                                     : level > 3 ? 8
                                                                                 : 7);
            }
            view.dbz[column][row] = far ? -30.0F : dbz;
            view.away[column][row] = storm_mesocyclone_km(east, north);
        }
    }
    return view;
}

// The strongest cells that are no neighbours.
void add_centroids(const View& view, RCM_report* report) {
    constexpr int most = 8;
    constexpr int apart = 4;
    while (report->num_storm < most) {
        int best_column = -1;
        int best_row = -1;
        float best = 45.0F;
        for (int column = 0; column < rcm_cells; ++column) {
            for (int row = 0; row < rcm_cells; ++row) {
                const bool near = std::any_of(
                    report->storm, report->storm + report->num_storm, [&](const RCM_storm& storm) {
                        return std::abs(storm.x - static_cast<float>(column)) < apart &&
                               std::abs(storm.y - static_cast<float>(row)) < apart;
                    });
                if (!near && view.dbz[column][row] > best) {
                    best = view.dbz[column][row];
                    best_column = column;
                    best_row = row;
                }
            }
        }
        if (best_column < 0) {
            return;
        }
        RCM_storm& storm = report->storm[report->num_storm];
        storm.id[0] = static_cast<char>('A' + report->num_storm * 3 % 26);
        storm.id[1] = static_cast<char>('0' + report->num_storm % 10);
        storm.id[2] = '\0';
        storm.x = static_cast<float>(best_column);
        storm.y = static_cast<float>(best_row);
        storm.hgt = static_cast<int>(best * 6.5F);
        storm.dir = 235 + report->num_storm % 3 * 5;
        storm.spd = 30 + report->num_storm % 4 * 5;
        storm.hail = best > 60.0F   ? rcm_hail_positive
                     : best > 54.0F ? rcm_hail_probable
                                    : rcm_hail_none;
        ++report->num_storm;
    }
}

void add_mesocyclone(const View& view, RCM_report* report) {
    float best = 30.0F;
    for (int column = 0; column < rcm_cells; ++column) {
        for (int row = 0; row < rcm_cells; ++row) {
            if (view.away[column][row] < best) {
                best = view.away[column][row];
                report->meso[0].x = static_cast<float>(column);
                report->meso[0].y = static_cast<float>(row);
                report->num_meso = 1;
            }
        }
    }
    if (report->num_meso == 1) {
        copy_text(report->meso[0].id, sizeof report->meso[0].id, "07");
        report->tvs[0] = report->meso[0];
        copy_text(report->tvs[0].id, sizeof report->tvs[0].id, "01");
        report->num_tvs = 1;
    }
}

} // namespace

std::unique_ptr<RCM_report> rcm_blank() {
    auto report = std::make_unique<RCM_report>();
    RCM_init(report.get());
    copy_text(report->id, sizeof report->id, "TLX");
    report->num = 1;
    report->date.year = 2019;
    report->date.month = 5;
    report->date.day = 20;
    report->date.hour = 22;
    report->date.min = 31;
    report->lat = tlx_lat;
    report->lon = tlx_lon;
    report->elev = 390.0F;
    report->mode = rcm_mode_precipitation;
    report->status = rcm_status_normal;
    return report;
}

std::string rcm_text(const RCM_report& report) {
    const Date& date = report.date;
    const std::string stamp = form("%04d %02d%02d%02d%02d%02d ", report.num, date.day, date.month,
                                   date.year % 100, date.hour, date.min);
    return part_a(report, stamp) + part_b(report, stamp) + part_c(report, stamp);
}

Bytes rcm_message(const RCM_report& report, bool packets) {
    const Date& date = report.date;
    const std::string head =
        form("SDUS44 KOUN %02d%02d%02d\r\r\nRCM%s\r\r\n", date.day, date.hour, date.min, report.id);
    Bytes out(head.begin(), head.end());
    if (packets) {
        add_packet(0x0101, form("%3d", report.num), &out);
        add_packet(0x0110,
                   form("01%8.3f%10.3f%4.0f%04d%02d%02d%02d%02d", static_cast<double>(report.lat),
                        static_cast<double>(report.lon),
                        static_cast<double>(report.elev * feet_per_metre), date.year, date.month,
                        date.day, date.hour, date.min),
                   &out);
        add_packet(0x0410, "passed over", &out);
        add_packet(0x0504, rcm_text(report), &out);
    } else {
        // Of the line: a NUL, and line feeds before the hundredth byte.
        for (int i = 0; i < 148; ++i) {
            out.push_back(static_cast<std::uint8_t>(i % 37 == 10 && i < 90 ? '\n' : i % 5 * 51));
        }
        const std::string text = rcm_text(report);
        out.insert(out.end(), text.begin(), text.end());
    }
    out.push_back('\n');
    return out;
}

std::unique_ptr<RCM_report> rcm_storm_report(const char* id, float lat, float lon) {
    auto report = rcm_blank();
    copy_text(report->id, sizeof report->id, id);
    report->lat = lat;
    report->lon = lon;
    const View view = look(lat, lon, report.get());
    add_centroids(view, report.get());
    add_mesocyclone(view, report.get());
    if (report->num_storm > 0) {
        report->maxt = report->storm[0].hgt + 30;
        report->maxt_x = report->storm[0].x;
        report->maxt_y = report->storm[0].y;
    }
    for (int i = 0; i < 12; ++i) {
        report->vad[report->num_vad++] = {(i + 2) * 10, 170 + 6 * i, 20 + 4 * i,
                                          i % 8 == 6 ? 15 : i % 8 * 2 + (i % 8 == 7 ? 0 : 2)};
    }
    return report;
}

Bytes rcm_sample(bool packets) {
    return rcm_message(*rcm_storm_report("TLX", tlx_lat, tlx_lon), packets);
}

Bytes rcm_region_sample() {
    struct Site {
        const char* id;
        float lat, lon;
        bool packets;
    };
    constexpr Site sites[] = {
        {"FDR", 34.3622F, -98.9764F, false},
        {"TLX", tlx_lat,  tlx_lon,   true },
        {"INX", 36.1751F, -95.5642F, false},
        {"VNX", 36.7408F, -98.1278F, true },
    };
    Bytes all;
    for (const Site& site : sites) {
        const Bytes one = rcm_message(*rcm_storm_report(site.id, site.lat, site.lon), site.packets);
        all.insert(all.end(), one.begin(), one.end());
    }
    return all;
}

std::vector<std::pair<std::string, Bytes>> rcm_samples() {
    std::vector<std::pair<std::string, Bytes>> all;
    auto some = rcm_blank();
    for (int column = 40; column < 60; ++column) {
        some->echo[column][50] = static_cast<signed char>(column / 4 % 9);
        some->echo[70][column] = 3;
    }
    some->maxt = 420;
    some->maxt_x = 44;
    some->maxt_y = 50;
    some->vad[0] = {20, 190, 25, 4};
    some->num_vad = 1;
    some->storm[0] = {"A0", 44, 50, 420, 240, 30, rcm_hail_positive};
    some->storm[1] = {"N", 48, 52, 300, 230, 25, rcm_hail_unknown};
    some->num_storm = 2;
    some->tvs[0] = {"01", 45, 51};
    some->meso[0] = {"07", 45, 51};
    some->num_tvs = some->num_meso = 1;
    all.emplace_back("text", rcm_message(*some, false));
    all.emplace_back("packets", rcm_message(*some, true));
    auto none = rcm_blank();
    none->status = rcm_status_no_echoes;
    none->mode = rcm_mode_clear_air;
    all.emplace_back("no_echoes", rcm_message(*none, false));
    none->status = rcm_status_maintenance;
    all.emplace_back("maintenance", rcm_message(*none, true));
    return all;
}
