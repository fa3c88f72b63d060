// rad_item: what the reports of radar summaries give to be plotted, by the names of
// variables. State: whether sites in clear air are left out, and whether a name that
// nobody knows was reported.
#include "rad_item.h"

#include "maptran.h"
#include "near_word.h"
#include "state_keeper.h"
#include "units.h"
#include "var_tool.h"
#include "zyrrad.h"
#include "zyrraw.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

namespace {

struct State {
    bool noclar = false; // leave out the symbols of sites in clear air
    bool told = false;   // of a variable that nobody knows
};
State state;

bool is_blank_text(const char* text) {
    return text[0] == '\0' || text[0] == ' ';
}

// The part of a variable's name that says what is shown.
std::string value_name(const VAR_data& var) {
    return {var.name, std::strcspn(var.name, "-")};
}

bool is_name(const std::string& name, const char* word) {
    return stricmp(name.c_str(), word) == 0;
}

constexpr const char* mdr_names[] = {"city",   "stat",   "pr_typ", "pr_tt",
                                     "pr_tnd", "echtop", "pr_amv", "pr_cmv"};
constexpr const char* rcm_names[] = {"city", "stat", "mode", "echotop", "tvs", "meso",
                                     "id",   "top",  "hail", "mvmt",    "spd"};

template <std::size_t N> void check_names(const char* const (&names)[N]) {
    for (int i = 0; i < VAR_get_num() && !state.told; ++i) {
        const std::string name = value_name(VAR_get_vars()[i]);
        const bool known =
            rad_is_watch(i) || std::any_of(std::begin(names), std::end(names),
                                           [&](const char* word) { return is_name(name, word); });
        if (known) {
            continue;
        }
        KnownWords words;
        for (const char* word : names) {
            words.push_back({word});
        }
        MESS_print(mess_warn, "variable: Nothing of this kind of reports: %s, the nearest is %s\n",
                   name.c_str(), std::string(nearest_word(words, name)).c_str());
        state.told = true;
    }
}

void set_text(RAW_data* data, const char* text) {
    copy_text(data->data, sizeof data->data, text);
}

void set_values(RAW_data* data, int first, int second = missing) {
    data->value[0] = static_cast<float>(first);
    data->value[1] = static_cast<float>(second);
}

struct Mark {
    int number;
    const char* text;
};

// The text of a number; `other` for one that the table lacks.
template <std::size_t N>
const char* text_of(const Mark (&table)[N], int number, const char* other = "") {
    for (const Mark& row : table) {
        if (row.number == number) {
            return row.text;
        }
    }
    return other;
}

constexpr Mark intensities[] = {
    {1, "-" },
    {3, "+" },
    {4, "++"},
    {5, "x" },
    {6, "xx"},
    {9, "u" },
};

// A type with the mark of its trend.
std::string type_and_trend(const MDR_report& report) {
    const std::string trend = report.trend;
    std::string text = report.prec[0].type;
    if (trend == "+") {
        return text + "/";
    }
    if (trend == "-") {
        return text + "\\";
    }
    if (trend == "NC") {
        return text + "-";
    }
    if (trend == "NEW") {
        return text + "*";
    }
    return is_blank_text(report.trend) ? text : text + trend;
}

// The place and the text of the highest top. One without a place is that of the
// station, with a mark.
void get_top(const MDR_tops& top, RAW_data* data) {
    const int dir = is_set(top.dir) ? top.dir : 0;
    const int rad = is_set(top.rad) ? top.rad : 0;
    float x = data->x;
    float y = data->y;
    if (MAP_offset(data->x, data->y, static_cast<float>(dir),
                   static_cast<float>(rad) * km_per_nmi_f, &x, &y) == 0) {
        return;
    }
    data->x = x;
    data->y = y;
    std::snprintf(data->data, sizeof data->data, dir == 0 && rad == 0 ? "%d*" : "%d", top.h);
}

// The last movement of one of these types.
void get_move(const MDR_report& report, std::string_view types, RAW_data* data) {
    for (const MDR_move& move : report.move) {
        if (types.find(move.type) != types.npos && is_set(move.dir) && is_set(move.spd)) {
            set_values(data, move.dir, move.spd);
        }
    }
}

constexpr Mark rcm_states[] = {
    {rcm_status_unavailable, "NA"},
    {rcm_status_no_echoes,   "NE"},
    {rcm_status_maintenance, "OM"},
};
constexpr Mark rcm_modes[] = {
    {rcm_mode_precipitation, "P"},
    {rcm_mode_clear_air,     "C"},
};
constexpr Mark hails[] = {
    {rcm_hail_probable, "+"},
    {rcm_hail_positive, "*"},
};

// Puts an item at its latitude and longitude; one without leaves it out.
void put_place(float lat, float lon, RAW_data* data) {
    float x = missing_f;
    float y = missing_f;
    const bool known = is_set(lat) && is_set(lon) && MAP_tran(lat, lon, &x, &y) != 0;
    data->x = known ? x : missing_f;
    data->y = known ? y : missing_f;
}

int get_mark(const RCM_mark* list, int count, int ind, const char* text, RAW_data* data) {
    if (ind >= count) {
        return 0;
    }
    put_place(list[ind].x, list[ind].y, data);
    set_values(data, 1);
    set_text(data, text);
    return 1;
}

void get_storm(const RCM_storm& storm, const std::string& name, RAW_data* data) {
    put_place(storm.x, storm.y, data);
    if (is_name(name, "id")) {
        set_values(data, 1);
        set_text(data, storm.id);
    } else if (is_name(name, "top")) {
        set_values(data, storm.hgt);
    } else if (is_name(name, "hail")) {
        if (storm.hail > 0) {
            set_values(data, storm.hail);
            set_text(data, text_of(hails, storm.hail));
        }
    } else if (is_name(name, "mvmt")) {
        if (is_set(storm.dir) && is_set(storm.spd)) {
            set_values(data, storm.dir, storm.spd);
        }
    } else { // spd
        set_values(data, storm.spd);
    }
}

} // namespace

bool rad_is_watch(int index) {
    return stricmp(VAR_get_name(index), "watch") == 0;
}

void rad_leave_out_clear() {
    state.noclar = true;
}

void rad_check_names(int type) {
    if (type == rad_mdr) {
        check_names(mdr_names);
    } else {
        check_names(rcm_names);
    }
}

int MDR_get_data(const MDR_report* report, const VAR_data* var, RAW_data* data) {
    const std::string name = value_name(*var);
    const MDR_prec& prec = report->prec[0];
    if (is_name(name, "city")) {
        set_text(data, report->id);
    } else if (is_name(name, "stat")) {
        for (const char* status : {"NA", "NE", "OM"}) {
            if (std::strcmp(report->config, status) == 0) {
                set_text(data, status);
            }
        }
    } else if (is_name(name, "pr_typ")) {
        if (!is_blank_text(prec.type)) {
            set_text(data, (std::string(prec.type) + text_of(intensities, prec.intens)).c_str());
        }
    } else if (is_name(name, "pr_tt")) {
        if (!is_blank_text(prec.type)) {
            set_text(data, type_and_trend(*report).c_str());
        }
    } else if (is_name(name, "pr_tnd")) {
        if (!is_blank_text(report->trend)) {
            set_text(data, report->trend);
        }
    } else if (is_name(name, "echtop")) {
        if (is_set(report->tops[0].h)) {
            get_top(report->tops[0], data);
        }
    } else if (is_name(name, "pr_amv")) {
        get_move(*report, "AL", data);
    } else if (is_name(name, "pr_cmv")) {
        get_move(*report, "C", data);
    } else {
        return 0;
    }
    return 1;
}

int RCM_get_data(const RCM_report* report, int ind, const VAR_data* var, RAW_data* data) {
    const std::string name = value_name(*var);
    const bool left_out = state.noclar && report->mode == rcm_mode_clear_air;
    const bool top = is_name(name, "echotop");
    bool single = true; // of a report, not one of a list
    const char* text = "";
    if (is_name(name, "city")) {
        text = report->id;
    } else if (is_name(name, "stat")) {
        text = text_of(rcm_states, report->status);
    } else if (is_name(name, "mode")) {
        text = text_of(rcm_modes, report->mode);
    } else {
        single = top;
    }
    if (single) {
        if (ind > 0) {
            return 0;
        }
        if (!top) {
            set_text(data, text);
        } else if (!left_out && is_set(report->maxt)) {
            put_place(report->maxt_x, report->maxt_y, data);
            set_values(data, report->maxt);
        }
        return 1;
    }
    const bool known = std::any_of(std::begin(rcm_names), std::end(rcm_names),
                                   [&](const char* word) { return is_name(name, word); });
    if (!known || left_out) {
        return known ? 1 : 0;
    }
    if (is_name(name, "tvs")) {
        return get_mark(report->tvs, report->num_tvs, ind, "T", data);
    }
    if (is_name(name, "meso")) {
        return get_mark(report->meso, report->num_meso, ind, "M", data);
    }
    if (ind >= report->num_storm) {
        return 0;
    }
    get_storm(report->storm[ind], name, data);
    return 1;
}

void keep_rad_item(StateKeeper& keeper) {
    keeper.keep(state);
}
