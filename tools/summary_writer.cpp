// summary_writer: the bytes of radar summaries, and those of the mosaics' evening.
#include "summary_writer.h"

#include "map_proj.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <numbers>

namespace {

struct Site {
    const char* id;
    float lat, lon;
};
constexpr Site sites[] = {
    {"ABR", 45.46F, -98.41F },
    {"ABX", 35.15F, -106.82F},
    {"AKQ", 36.98F, -77.01F },
    {"AMA", 35.23F, -101.71F},
    {"AMX", 25.61F, -80.41F },
    {"APX", 44.91F, -84.72F },
    {"ARX", 43.82F, -91.19F },
    {"ATX", 48.19F, -122.50F},
    {"BBX", 39.50F, -121.63F},
    {"BGM", 42.20F, -75.98F },
    {"BHX", 40.50F, -124.29F},
    {"BIS", 46.77F, -100.76F},
    {"BLX", 45.85F, -108.61F},
    {"BRO", 25.92F, -97.42F },
    {"BUF", 42.95F, -78.74F },
    {"CBW", 46.04F, -67.81F },
    {"CBX", 43.49F, -116.24F},
    {"CLX", 32.66F, -81.04F },
    {"CXX", 44.51F, -73.17F },
    {"DDC", 37.76F, -99.97F },
    {"DFX", 29.27F, -100.28F},
    {"DLH", 46.84F, -92.21F },
    {"DMX", 41.73F, -93.72F },
    {"DTX", 42.70F, -83.47F },
    {"EAX", 38.81F, -94.26F },
    {"EOX", 31.46F, -85.46F },
    {"EPZ", 31.87F, -106.70F},
    {"ESX", 35.70F, -114.89F},
    {"EWX", 29.70F, -98.03F },
    {"FCX", 37.02F, -80.27F },
    {"FFC", 33.36F, -84.57F },
    {"FSD", 43.59F, -96.73F },
    {"FTG", 39.79F, -104.55F},
    {"FWS", 32.57F, -97.30F },
    {"GGW", 48.21F, -106.62F},
    {"GJX", 39.06F, -108.21F},
    {"GLD", 39.37F, -101.70F},
    {"GRB", 44.50F, -88.11F },
    {"GSP", 34.88F, -82.22F },
    {"GWX", 33.90F, -88.33F },
    {"GYX", 43.89F, -70.26F },
    {"HGX", 29.47F, -95.08F },
    {"HPX", 36.74F, -87.29F },
    {"ICT", 37.65F, -97.44F },
    {"ICX", 37.59F, -112.86F},
    {"ILN", 39.42F, -83.82F },
    {"IWA", 33.29F, -111.67F},
    {"JAX", 30.48F, -81.70F },
    {"LNX", 41.96F, -100.58F},
    {"LOT", 41.60F, -88.08F },
    {"LRX", 40.74F, -116.80F},
    {"LSX", 38.70F, -90.68F },
    {"LTX", 33.99F, -78.43F },
    {"LWX", 38.98F, -77.49F },
    {"LZK", 34.84F, -92.26F },
    {"MPX", 44.85F, -93.57F },
    {"MQT", 46.53F, -87.55F },
    {"MSX", 47.04F, -113.99F},
    {"MTX", 41.26F, -112.45F},
    {"MUX", 37.16F, -121.90F},
    {"MVX", 47.53F, -97.33F },
    {"NKX", 32.92F, -117.04F},
    {"OAX", 41.32F, -96.37F },
    {"OHX", 36.25F, -86.56F },
    {"OKX", 40.87F, -72.86F },
    {"OTX", 47.68F, -117.63F},
    {"PBZ", 40.53F, -80.22F },
    {"PDT", 45.69F, -118.85F},
    {"POE", 31.16F, -92.98F },
    {"RIW", 43.07F, -108.48F},
    {"RTX", 45.72F, -122.97F},
    {"SJT", 31.37F, -100.49F},
    {"TBW", 27.71F, -82.40F },
    {"TLX", 35.33F, -97.28F },
    {"UDX", 44.12F, -102.83F},
    {"VTX", 34.41F, -119.18F},
    {"YUX", 32.50F, -114.66F},
    {"LIX", 30.34F, -89.83F },
};

constexpr int mdr_nx = 120, mdr_ny = 90;
constexpr int rcm_nx = 449, rcm_ny = 353;
constexpr int block_width = 80; // columns of a line
constexpr double deg = std::numbers::pi / 180.0;

void append(Bytes& out, const std::string& text) {
    out.insert(out.end(), text.begin(), text.end());
}

[[gnu::format(printf, 1, 2)]] std::string form(const char* format, ...) {
    std::array<char, 120> text{};
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text.data(), text.size(), format, // NOLINT(clang-analyzer-valist.Uninitialized)
                   values);
    va_end(values);
    return text.data();
}

int level_of(float dbz) {
    constexpr float least[] = {18, 30, 40, 45, 50, 55}; // dBZ of levels 1 to 6
    int level = 0;
    for (const float limit : least) {
        level += dbz >= limit ? 1 : 0;
    }
    return level;
}

// The evening's levels on the grid of a summary.
MosaicCell weather(bool rcm) {
    Domain domain;
    domain.proj = proj_pstereo;
    domain.plat = 90.0F;
    domain.plon = -105.0F;
    domain.clat = rcm ? 39.71121F : 40.02738F;
    domain.clon = rcm ? -97.09452F : -96.1069F;
    domain.nx = rcm ? rcm_nx : mdr_nx;
    domain.ny = rcm ? rcm_ny : mdr_ny;
    domain.dx = domain.dy = rcm ? 0.11899F : 0.47596F;
    const Map map = map_make(domain);
    return [map](int row, int column) {
        const Domain& d = map.domain;
        const float x = map.limits.x_min + static_cast<float>(column) * d.dx;
        const float y = map.limits.y_max - static_cast<float>(row) * d.dy;
        float lat = 0;
        float lon = 0;
        return map.untran(x, y, &lat, &lon) != 0 ? level_of(mosaic_dbz(lat, lon)) : 0;
    };
}

// The strongest echo within some 200 km of a site, and where it lies.
struct Peak {
    float dbz = -1.0F;
    double lat = 0, lon = 0;
    int bearing = 0, range = 0; // degrees, nautical miles
};
Peak peak_near(const Site& site) {
    Peak peak;
    for (int bearing = 0; bearing < 360; bearing += 15) {
        for (int range = 10; range <= 110; range += 20) {
            const double lat = site.lat + range / 60.0 * std::cos(bearing * deg);
            const double lon =
                site.lon + range / 60.0 * std::sin(bearing * deg) / std::cos(site.lat * deg);
            const float dbz = mosaic_dbz(lat, lon);
            if (dbz > peak.dbz) {
                peak = {dbz, lat, lon, bearing, range};
            }
        }
    }
    return peak;
}

std::string mdr_report(const Site& site, int number) {
    const Peak peak = peak_near(site);
    if (peak.dbz < 18.0F) {
        const char* status = number % 11 == 0 ? "NA" : number % 13 == 0 ? "OM" : "NE";
        return std::string(site.id) + " " + status + " * * * * * *";
    }
    const bool storms = peak.dbz >= 40.0F;
    constexpr const char* marks[] = {"", "-", "", "+", "++", "X", "XX"};
    constexpr const char* trends[] = {"+", "NC", "-", "NEW"};
    return form("%s %s %s%s %s %d,%03d%03d %c2425 %s *", site.id,
                storms       ? "LINE"
                : number % 3 ? "AREA"
                             : "CELL",
                storms          ? "TRW"
                : site.lat > 44 ? "S"
                                : "RW",
                marks[level_of(peak.dbz)], trends[number % 4], static_cast<int>(peak.dbz * 9.0F),
                peak.bearing, peak.range, storms ? 'L' : 'A', storms ? "C2638" : "*");
}

std::string rcm_record(const Site& site, int number) {
    const Peak peak = peak_near(site);
    std::string record =
        form("** %s %d %s%s\n", site.id, number, peak.dbz >= 18.0F ? "PCPN" : "CLAR",
             number % 17 == 0   ? " OM"
             : peak.dbz < 18.0F ? " NE"
                                : "");
    if (peak.dbz >= 18.0F) {
        record += form("Z %d %.2f %.2f\n", static_cast<int>(peak.dbz * 9.0F), peak.lat, peak.lon);
    }
    if (peak.dbz >= 45.0F) {
        record += form("M 1 %.2f %.2f\n", peak.lat - 0.1, peak.lon - 0.1);
        record += form("S A%d %.2f %.2f 240 35 %d %d\n", number % 10, peak.lat, peak.lon,
                       static_cast<int>(peak.dbz * 9.0F), number % 3);
    }
    if (peak.dbz >= 52.0F) {
        record += form("T 1 %.2f %.2f\n", peak.lat - 0.15, peak.lon);
    }
    return record;
}

// --- Bytes of netCDF ----------------------------------------------------------------

void word(Bytes& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

void pad(Bytes& out) {
    out.resize((out.size() + 3) / 4 * 4);
}

void nc_name(Bytes& out, const std::string& name) {
    word(out, static_cast<std::uint32_t>(name.size()));
    append(out, name);
    pad(out);
}

void list_head(Bytes& out, std::uint32_t tag, std::size_t count) {
    word(out, count > 0 ? tag : 0);
    word(out, static_cast<std::uint32_t>(count));
}

struct NcType {
    char letter;
    std::uint32_t code;
    std::size_t size;
};
constexpr NcType nc_types[] = {
    {'b', 1, 1},
    {'c', 2, 1},
    {'i', 4, 4},
    {'f', 5, 4},
};

const NcType& nc_type(char letter) {
    return *std::find_if(std::begin(nc_types), std::end(nc_types),
                         [letter](const NcType& row) { return row.letter == letter; });
}

void nc_value(Bytes& out, const NcVar& var, std::size_t at) {
    const double number = at < var.values.size() ? var.values[at] : 0.0;
    if (var.type == 'c') {
        out.push_back(at < var.text.size() ? static_cast<std::uint8_t>(var.text[at]) : 0);
    } else if (var.type == 'b') {
        out.push_back(static_cast<std::uint8_t>(static_cast<int>(number)));
    } else if (var.type == 'i') {
        word(out, static_cast<std::uint32_t>(static_cast<int>(number)));
    } else {
        const auto value = static_cast<float>(number);
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        word(out, bits);
    }
}

bool is_record(const NcFile& file, const NcVar& var) {
    return !var.dims.empty() && file.dims[static_cast<std::size_t>(var.dims[0])].second == 0;
}

// Values of a variable, of one record where it has records.
std::size_t nc_count(const NcFile& file, const NcVar& var) {
    std::size_t count = 1;
    for (const int dim : var.dims) {
        const int size = file.dims[static_cast<std::size_t>(dim)].second;
        count *= size > 0 ? static_cast<std::size_t>(size) : 1;
    }
    return count;
}

std::size_t nc_bytes(const NcFile& file, const NcVar& var) {
    return (nc_count(file, var) * nc_type(var.type).size + 3) / 4 * 4;
}

// The header with these offsets of the variables.
Bytes nc_header(const NcFile& file, const std::vector<std::size_t>& begins) {
    Bytes out = {'C', 'D', 'F', 1};
    word(out, static_cast<std::uint32_t>(file.records));
    list_head(out, 10, file.dims.size());
    for (const auto& [name, size] : file.dims) {
        nc_name(out, name);
        word(out, static_cast<std::uint32_t>(size));
    }
    list_head(out, 12, file.atts.size());
    for (const auto& [name, text] : file.atts) {
        nc_name(out, name);
        word(out, 2);
        nc_name(out, text); // a count, and the text
    }
    list_head(out, 11, file.vars.size());
    for (std::size_t i = 0; i < file.vars.size(); ++i) {
        const NcVar& var = file.vars[i];
        nc_name(out, var.name);
        word(out, static_cast<std::uint32_t>(var.dims.size()));
        for (const int dim : var.dims) {
            word(out, static_cast<std::uint32_t>(dim));
        }
        list_head(out, 12, 0);
        word(out, nc_type(var.type).code);
        word(out, static_cast<std::uint32_t>(nc_bytes(file, var)));
        word(out, static_cast<std::uint32_t>(begins[i]));
    }
    return out;
}

std::string columns(const std::vector<std::string>& texts, std::size_t width) {
    std::string all;
    for (std::string text : texts) {
        text.resize(width, '\0');
        all += text;
    }
    return all;
}

NcVar nc_text(const char* name, std::vector<int> dims, const std::vector<std::string>& texts,
              std::size_t width) {
    return {name, std::move(dims), 'c', {}, columns(texts, width)};
}

NcVar nc_numbers(const char* name, std::vector<int> dims, char type, std::vector<double> values) {
    return {name, std::move(dims), type, std::move(values), ""};
}

// Levels over dimensions 1 (x) and 2 (y).
NcVar nc_levels(const char* name, const MosaicCell& level, bool turned) {
    std::vector<double> values;
    const int outer = turned ? mdr_nx : mdr_ny;
    const int inner = turned ? mdr_ny : mdr_nx;
    for (int i = 0; i < outer; ++i) {
        for (int j = 0; j < inner; ++j) {
            values.push_back(turned ? level(j, i) : level(i, j));
        }
    }
    return nc_numbers(name, turned ? std::vector{1, 2} : std::vector{2, 1}, 'b', std::move(values));
}

} // namespace

Bytes summary_mdr(const MosaicCell& level, const std::vector<std::string>& reports,
                  const std::string& first) {
    Bytes out;
    append(out, first);
    for (int left = 0; left < mdr_nx; left += block_width) {
        append(out, form("SDUS41 KWBC 202235\n+ 00 %03d\n", left));
        for (int row = 1; row < mdr_ny; ++row) {
            std::string line;
            for (int i = left; i < std::min(left + block_width, mdr_nx); ++i) {
                line += static_cast<char>('0' + level(row, i));
            }
            append(out, line + "\n");
        }
        append(out, "+\n");
    }
    append(out, "SDXX STATION\n");
    for (const std::string& report : reports) {
        append(out, report + "\n");
    }
    return out;
}

Bytes summary_rcm(const MosaicCell& level, const std::vector<std::string>& records,
                  const std::string& first) {
    Bytes out;
    append(out, first + "RCM\n");
    for (int row = 0; row < rcm_ny; ++row) {
        std::string line;
        for (int i = 0; i < rcm_nx; ++i) {
            line += static_cast<char>('0' + level(row, i));
        }
        line.resize(line.find_last_not_of('0') + 1);
        if (line.empty()) {
            continue;
        }
        append(out, form("+%03d\n", row));
        for (std::size_t at = 0; at < line.size(); at += block_width) {
            append(out, line.substr(at, block_width) + "\n");
        }
    }
    for (const std::string& record : records) {
        append(out, record);
    }
    return out;
}

Bytes netcdf_classic(const NcFile& file) {
    std::vector<std::size_t> begins(file.vars.size());
    std::size_t at = nc_header(file, begins).size();
    for (const bool records : {false, true}) {
        for (std::size_t i = 0; i < file.vars.size(); ++i) {
            if (is_record(file, file.vars[i]) == records) {
                begins[i] = at;
                at += nc_bytes(file, file.vars[i]);
            }
        }
    }
    Bytes out = nc_header(file, begins);
    const auto put = [&](const NcVar& var, std::size_t record) {
        const std::size_t count = nc_count(file, var);
        for (std::size_t i = 0; i < count; ++i) {
            nc_value(out, var, record * count + i);
        }
        pad(out);
    };
    for (const NcVar& var : file.vars) {
        if (!is_record(file, var)) {
            put(var, 0);
        }
    }
    for (int record = 0; record < file.records; ++record) {
        for (const NcVar& var : file.vars) {
            if (is_record(file, var)) {
                put(var, static_cast<std::size_t>(record));
            }
        }
    }
    return out;
}

NcFile summary_stations(const MosaicCell& level, bool turned) {
    NcFile file;
    file.dims = {
        {"station",    0     },
        {"mdr_x",      mdr_nx},
        {"mdr_y",      mdr_ny},
        {"string_len", 11    },
        {"reports",    3     }
    };
    file.atts = {
        {"missing_val_c", "*"         },
        {"datetime",      summary_date}
    };
    file.records = 3;
    const std::vector<int> text = {0, 3};
    const std::vector<int> moves = {0, 4};
    file.vars = {
        nc_levels("summary", level, turned),
        nc_text("id", text, {"TLX", "DDC", "ICT"}, 11),
        nc_text("region", text, {"SP", "SP", "MW"}, 11),
        nc_numbers("mdr_x", {0}, 'f', {57, 52, 56}),
        nc_numbers("mdr_y", {0}, 'f', {52, 46, 46}),
        nc_numbers("type", {0}, 'i', {0, 0, 3}),
        nc_text("config", text, {"LINE", "AREA", "NE"}, 11),
        nc_text("prec", text, {"TRW++", "RW-", "*"}, 11),
        nc_text("trend", text, {"+", "NC", ""}, 11),
        nc_text("move_type", moves, {"LC", "A", ""}, 3),
        nc_numbers("move_dir", moves, 'i', {250, 240, -9999, 230, -9999, -9999}),
        nc_numbers("move_spd", moves, 'i', {32, 35, -9999, 20, -9999, -9999}),
        nc_numbers("max_tops", {0}, 'i', {450, 230, -9999}),
        nc_numbers("max_tops_dir", {0}, 'i', {235, 0, -9999}),
        nc_numbers("max_tops_rad", {0}, 'i', {45, 0, -9999}),
    };
    return file;
}

NcFile summary_reports(const MosaicCell& level, bool turned) {
    NcFile file;
    file.dims = {
        {"report",    0     },
        {"mdr_x",     mdr_nx},
        {"mdr_y",     mdr_ny},
        {"id_len",    4     },
        {"time_len",  16    },
        {"maxprecip", 2     },
        {"maxcover",  2     },
        {"maxazran",  4     },
        {"maxwidth",  1     },
        {"maxmove",   2     },
        {"maxheight", 1     }
    };
    file.records = 3;
    const std::vector<int> one = {0};
    file.vars = {
        nc_text("mdr_time", {4}, {"201905202235"}, 16),
        nc_levels("mdr", level, turned),
        nc_text("id", {0, 3}, {"TLX", "DDC", "ICT"}, 4),
        nc_numbers("rpt_time", one, 'i', {2235, 2230, 2235}),
        nc_numbers("opstat", one, 'i', {0, 2, 1}),
        nc_numbers("object", one, 'i', {2, 1, 0}),
        nc_numbers("ncover", one, 'i', {1, 1, 0}),
        nc_numbers("coverage", {0, 6}, 'i', {7, 0, 3}),
        nc_numbers("nprecip", {0, 6}, 'i', {2, 0, 1}),
        nc_numbers("precip_type", {0, 6, 5}, 'i', {97, 2, 0, 0, 131}), // TRW, hail; snow
        nc_numbers("intensity", {0, 6, 5}, 'i', {4, 9, 0, 0, 1}),
        nc_numbers("trend", one, 'i', {1, 3, 0}),
        nc_numbers("nazran", one, 'i', {2, 1, 0}),
        nc_numbers("azimuth", {0, 7}, 'f', {235, 200, 0, 0, 90}),
        nc_numbers("range", {0, 7}, 'f', {83.4, 40, 0, 0, 20}),
        nc_numbers("nwidth", one, 'i', {1}),
        nc_numbers("width", {0, 8}, 'f', {18.6}),
        nc_numbers("nmove", one, 'i', {1, 0, 0}),
        nc_numbers("move_dir", {0, 9}, 'f', {250}),
        nc_numbers("move_speed", {0, 9}, 'f', {16.4}),
        nc_numbers("nheight", one, 'i', {1, 0, 0}),
        nc_numbers("height", {0, 10}, 'f', {13716}),
    };
    return file;
}

Bytes summary_sample(bool rcm) {
    std::vector<std::string> list;
    int number = 0;
    for (const Site& site : sites) {
        ++number;
        list.push_back(rcm ? rcm_record(site, number) : mdr_report(site, number));
    }
    return rcm ? summary_rcm(weather(true), list) : summary_mdr(weather(false), list);
}

std::vector<std::pair<std::string, Bytes>> summary_samples() {
    const MosaicCell level = weather(false);
    return {
        {"mdr.rad",    summary_sample(false)                  },
        {"rcm.rad",    summary_sample(true)                   },
        {"station.nc", netcdf_classic(summary_stations(level))},
        {"report.nc",  netcdf_classic(summary_reports(level)) },
    };
}

std::vector<std::pair<std::string, Bytes>> summary_seeds(bool netcdf) {
    if (netcdf) {
        const auto level = [](int row, int column) { return (row * column) % 7; };
        std::vector<std::pair<std::string, Bytes>> all;
        for (const bool station : {true, false}) {
            NcFile file = station ? summary_stations(level, true) : summary_reports(level);
            file.dims[1].second = 5; // a small grid
            file.dims[2].second = 4;
            const std::string name = station ? "station" : "report";
            all.emplace_back(name, netcdf_classic(file));
            Bytes cut = all.back().second;
            cut.resize(cut.size() * 2 / 3);
            all.emplace_back(name + "_cut", cut);
            file.records = 1000000;
            Bytes many = netcdf_classic(station ? summary_stations(level) : summary_reports(level));
            many[4] = many[5] = 0xFF;
            many.resize(900);
            all.emplace_back(name + "_many", many);
        }
        return all;
    }
    const std::string date = "12Z 01 JAN 99\n";
    const auto bytes = [](const std::string& text) { return Bytes(text.begin(), text.end()); };
    const std::string mdr = "SDUS41\n+ 01 081\n12\n3489\n+\n* \nSDUS41\n+ 88 118\n123\n4\n5\n*\n"
                            "SDXX STATION\nTLX LINE TRW++ + 450,235045 L2532 C2435 A1020\n"
                            "DDC AREA RW- NEW 230,000000 * * *\n\nICT NA\nTRWSZLPAI long_long_word "
                            "TRWSZLPAIXX longer 12345678901,999999 Z9999\nQ";
    const std::string rcm =
        "RCM\n+002\n12345678:;<=>?@AB\n66\n+400\n1\n** TLX 3 PCPN\n"
        "Z 450 35.1 -97.2\nT 1 35 -97\nM 2 35 -98\nS A1 35.2 -97.4 240 35 450 2\n"
        "** ICT 4 CLAR OM\nZ\nS\n*\n** AMA NA\nT 1\nZ 1e99 1e99 nan\n";
    return {
        {"mdr",       bytes("ZYRRAD\n" + date + mdr)                 },
        {"mdr_plain", bytes(date + mdr)                              },
        {"mdr_raw",   bytes("*\n" + mdr)                             },
        {"rcm",       bytes("ZYRRAD\n" + date + rcm)                 },
        {"rcm_plain", bytes("0" + date + rcm)                        },
        {"both",      bytes("ZYRRAD\n" + date + mdr + "\n" + rcm)    },
        {"empty",     bytes("ZYRRAD\n")                              },
        {"numbers",   bytes(" \nSDUS\n+ 2147483647 -2147483648\n1\n")},
        {"high",      bytes("1\nRCM\n+99999999999\n123\n**\n")       },
    };
}
