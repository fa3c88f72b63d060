// rad_cdf: netCDF files of radar summaries, type 11 with a dimension "station" and
// type 12 with a dimension "report". No state.
#include "rad_read.h"

#include "cdf.h"
#include "date.h"
#include "text_num.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>

namespace {

constexpr int mdr_columns = 120;
constexpr int mdr_rows = 90;
constexpr int most_level = 11; // type 12: these and above are no report
constexpr std::size_t string_size = 12;
constexpr float nmi_per_km = 0.53996F;
constexpr float knots_per_ms = 1.944F;
constexpr float feet_per_m = 3.2808F;
constexpr int most_places = 4; // dimensions of a variable that are looked at

// Where a value lies: the numbers along the dimensions of these names.
struct Index {
    const char* dim;
    int pos;
    int range = 1;
};

using Indexes = std::initializer_list<Index>;

// Sets the place of the next reading of a variable, whose dimensions may come in any
// order. Texts reach along the dimensions that are not named.
void set_place(int var, Indexes indexes) {
    std::array<int, cdf_max_dims> dims{};
    std::array<int, cdf_max_dims> pos{};
    std::array<int, cdf_max_dims> range{};
    range.fill(static_cast<int>(string_size) - 1);
    const int count = CDF_get_var_dims(var, dims.data());
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        for (const Index& index : indexes) {
            if (CDF_get_dim(index.dim) == dims[at]) {
                pos[at] = index.pos;
                range[at] = index.range;
            }
        }
    }
    CDF_set_pos(most_places, pos[0], pos[1], pos[2], pos[3]);
    CDF_set_range(most_places, range[0], range[1], range[2], range[3]);
}

void get_str(const char* name, Indexes indexes, char* text, std::size_t size) {
    const int var = CDF_get_var(name);
    set_place(var, indexes);
    std::array<char, string_size> value{};
    CDF_get_str(var, value.data(), value.size());
    trim_string(value.data());
    copy_text(text, size, value.data());
}

// A number; `value` stays where there is none, which files say by a fill value far
// outside of what is measured.
bool get_float(const char* name, Indexes indexes, float* value) {
    const int var = CDF_get_var(name);
    set_place(var, indexes);
    float number = missing_f;
    constexpr float most = 1.0e9F;
    if (CDF_get_number(var, &number) != 0 || !(number > missing_f && number < most)) {
        return false;
    }
    *value = number;
    return true;
}

void get_int(const char* name, Indexes indexes, int* value) {
    float number = missing_f;
    if (get_float(name, indexes, &number)) {
        *value = trunc_int(number);
    }
}

int get_count(const char* name, Indexes indexes, int most) {
    int count = 0;
    get_int(name, indexes, &count);
    return std::clamp(count, 0, most);
}

// The grid of a variable, whichever way it lies.
int get_grid(const char* name, int type, RAD_info* info) {
    const int var = CDF_get_var(name);
    std::array<int, cdf_max_dims> dims{};
    const int count = CDF_get_var_dims(var, dims.data());
    const int x = CDF_get_dim("mdr_x");
    const int y = CDF_get_dim("mdr_y");
    if (count != 2 || std::min(x, y) < 0 || dims[0] + dims[1] != x + y ||
        (dims[0] != x && dims[0] != y)) {
        return -1;
    }
    const int nx = static_cast<int>(std::clamp(CDF_get_dim_size(x), 0L, long{mdr_columns}));
    const int ny = static_cast<int>(std::clamp(CDF_get_dim_size(y), 0L, long{mdr_rows}));
    std::array<signed char, static_cast<std::size_t>(mdr_columns) * mdr_rows> levels{};
    set_place(var, {
                       {"mdr_x", 0, nx},
                       {"mdr_y", 0, ny}
    });
    if (CDF_get_byte_array(var, levels.data(), levels.size()) != 0) {
        return -1;
    }
    const bool rows_first = dims[0] == y;
    for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            const int at = rows_first ? j * nx + i : i * ny + j;
            const auto level = int{levels[static_cast<std::size_t>(at)]};
            rad_put_level(info, i, j, type == rad_type_report && level >= most_level ? -1 : level);
        }
    }
    return 0;
}

void read_station_report(MDR_report* report, int n) {
    const Index at = {"station", n};
    get_str("region", {at}, report->region, sizeof report->region);
    get_float("mdr_x", {at}, &report->x);
    get_float("mdr_y", {at}, &report->y);
    get_int("type", {at}, &report->type);
    get_str("config", {at}, report->config, sizeof report->config);
    std::array<char, string_size> prec{};
    get_str("prec",
            {
                at, {"reports", 0}
    },
            prec.data(), prec.size());
    const char* text = prec.data();
    rad_take_precipitation(&text, &report->prec[0]);
    report->numprec = report->prec[0].type[0] != ' ' ? 1 : 0;
    get_str("trend", {at}, report->trend, sizeof report->trend);
    for (int i = 0; i < mdr_max_move; ++i) {
        MDR_move& move = report->move[i];
        const Index item = {"reports", i};
        std::array<char, string_size> type{};
        get_str("move_type", {at, item}, type.data(), type.size());
        move.type = type[0] != '\0' ? type[0] : ' ';
        get_int("move_dir", {at, item}, &move.dir);
        get_int("move_spd", {at, item}, &move.spd);
    }
    MDR_tops& tops = report->tops[0];
    get_int("max_tops", {at}, &tops.h);
    get_int("max_tops_dir", {at}, &tops.dir);
    get_int("max_tops_rad", {at}, &tops.rad);
}

// The text of a kind of precipitation, by its bits.
void name_precipitation(int bits, MDR_prec* prec) {
    std::string text;
    text += (bits & RA_THUNDERSTORM) != 0 ? "T" : "";
    text += (bits & RA_FREEZING) != 0 ? "Z" : "";
    text += (bits & RA_RAIN) != 0 ? "R" : "";
    text += (bits & 3) == RA_SNOW ? "S" : "";
    text += (bits & RA_ICE_PELLETS) != 0 ? "IP" : "";
    text += (bits & 7) > RA_ICE_PELLETS ? "L" : "";
    text += (bits & RA_SHOWER) != 0 ? "W" : "";
    copy_text(prec->type, sizeof prec->type, text.empty() ? " " : text.c_str());
}

void read_precipitation(MDR_report* report, Index at) {
    const int covers = get_count("ncover", {at}, mdr_max_prec);
    for (int i = 0; i < covers; ++i) {
        const Index cover = {"maxcover", i};
        const int types = get_count("nprecip", {at, cover}, mdr_max_prec);
        for (int j = 0; j < types && report->numprec < mdr_max_prec; ++j) {
            MDR_prec& prec = report->prec[report->numprec++];
            const Index type = {"maxprecip", j};
            int bits = 0;
            if (j == 0) {
                get_int("coverage", {at, cover}, &prec.area_cov);
            }
            get_int("precip_type", {at, cover, type}, &bits);
            name_precipitation(bits, &prec);
            get_int("intensity", {at, cover, type}, &prec.intens);
        }
    }
}

// A length of the file in nautical miles.
int miles(float km) {
    return trunc_int(km * nmi_per_km);
}

void read_places(MDR_report* report, Index at) {
    const int places = get_count("nazran", {at}, mdr_max_loc);
    int n = 0;
    for (; n < places; ++n) {
        float azimuth = missing_f;
        float range = missing_f;
        if (get_float("azimuth",
                      {
                          at, {"maxazran", n}
        },
                      &azimuth) &&
            get_float("range", {at, {"maxazran", n}}, &range)) {
            report->loc[n] = {trunc_int(azimuth + 0.01F), miles(range)};
        }
    }
    float width = missing_f;
    if (n < mdr_max_loc &&
        get_count("nwidth",
                  {
                      at
    },
                  1) > 0 &&
        get_float("width", {at, {"maxwidth", 0}}, &width)) {
        report->loc[n] = {missing, miles(width)};
    }
    float height = missing_f;
    if (get_count("nheight",
                  {
                      at
    },
                  1) > 0 &&
        get_float("height", {at, {"maxheight", 0}}, &height)) {
        MDR_tops& top = report->tops[0]; // at the first place, whether it counts or not
        top.h = trunc_int((1.0F + height) * feet_per_m) / 100;
        float azimuth = missing_f;
        float range = missing_f;
        if (get_float("azimuth",
                      {
                          at, {"maxazran", 0}
        },
                      &azimuth) &&
            get_float("range", {at, {"maxazran", 0}}, &range)) {
            top.dir = trunc_int(azimuth);
            top.rad = miles(range);
        }
    }
}

constexpr const char* station_status[] = {"", "NE", "OM", "NA"};
constexpr const char* objects[] = {"", "AREA", "LINE", "CELL"};
constexpr const char* trends[] = {" ", "+", "-", "NC", "NEW"};

// The row of a table, or its first for a number that it lacks.
template <std::size_t N> const char* row_of(const char* const (&table)[N], int number) {
    return table[number >= 0 && number < static_cast<int>(N) ? number : 0];
}

void read_coded_report(MDR_report* report, int n) {
    const Index at = {"report", n};
    get_int("rpt_time", {at}, &report->time);
    get_int("radar_type", {at}, &report->type);
    const int status = get_count("opstat", {at}, most_level);
    const int object = get_count("object", {at}, most_level);
    const char* config = row_of(objects, object);
    copy_text(report->config, sizeof report->config,
              *config != '\0' ? config : row_of(station_status, status));
    read_precipitation(report, at);
    copy_text(report->trend, sizeof report->trend,
              row_of(trends, get_count("trend",
                                       {
                                           at, {"maxcover",  0},
                                            {"maxprecip", 0}
    },
                                       most_level)));
    read_places(report, at);
    const int moves = get_count("nmove", {at}, mdr_max_move);
    for (int i = 0; i < moves; ++i) {
        MDR_move& move = report->move[i];
        move.type = report->config[0] != '\0' ? report->config[0] : ' ';
        float speed = missing_f;
        get_int("move_dir",
                {
                    at, {"maxmove", i}
        },
                &move.dir);
        if (get_float("move_speed",
                      {
                          at, {"maxmove", i}
        },
                      &speed)) {
            move.spd = trunc_int((speed + 0.1F) * knots_per_ms);
        }
    }
}

} // namespace

int rad_cdf_info(int fd, int type, RAD_info* info, long* reports) {
    CDF_set_fd(fd);
    CDF_print_errors(0);
    *reports = CDF_get_dim_size(-1);
    if (*reports < 0) { // of a copy whose dimension has a fixed size
        const int dim = CDF_get_dim(type == rad_type_station ? "station" : "report");
        *reports = dim < 0 ? 0 : CDF_get_dim_size(dim);
    }
    *reports = std::max(*reports, 0L);
    info->type = rad_mdr;
    if (type == rad_type_station) {
        CDF_get_glob_att("datetime", info->datim, sizeof info->datim);
        rad_decode_label(info);
        return get_grid("summary", type, info);
    }
    std::array<char, 17> time{};
    const int var = CDF_get_var("mdr_time");
    set_place(var, {
                       {"time_len", 0, 16}
    });
    CDF_get_str(var, time.data(), time.size());
    if (DATE_decode_seq(time.data(), &info->date) == 0 && is_set(info->date.year)) {
        std::array<char, date_label_size> label{};
        DATE_make_label(&info->date, label.data());
        copy_text(info->datim, sizeof info->datim, label.data());
    }
    return get_grid("mdr", type, info);
}

void rad_cdf_report(int fd, int type, MDR_report* report, int rep_type, int n) {
    CDF_set_fd(fd);
    get_str("id",
            {
                {type == rad_type_station ? "station" : "report", n}
    },
            report->id, sizeof report->id);
    if (rep_type == 0) {
        if (type == rad_type_station) {
            read_station_report(report, n);
        } else {
            read_coded_report(report, n);
        }
    }
}
