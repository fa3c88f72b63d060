// Texts of settings: each line is "name=value". They are checked for what cannot be
// read, taken as a plotter takes them, and drawn as the labels of a page; each value is
// also converted in every way, and read as a time, a zone, a date and an area.
#include "cont.h"
#include "date.h"
#include "files.h"
#include "geometry_text.h"
#include "gks.h"
#include "plot_session.h"
#include "rad_check.h"
#include "rad_values.h"
#include "state_keeper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::array names = {
    "batch",      "city_file",  "con_base",  "con_interval", "current",     "device",
    "draw",       "file_param", "filename",  "geometry",     "grid_domain", "hour",
    "icon",       "label",      "num_hour",  "out_file",     "output",      "plot_format",
    "plot_param", "plot_scale", "plot_type", "stat_prior",
};

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// "var" asks the user for a domain's centre.
bool asks(std::string text) {
    low_string(text.data());
    return text.find("var") != std::string::npos;
}

const StateKeeper& open_session() {
    static const StateKeeper keeper = [] {
        require(open_plot_session("p,/dev/null"));
        RES_set_actions({[](const Date* /*date*/) {}, DOM_decode});
        StateKeeper first;
        keep_cont(first);
        keep_date(first);
        keep_file_sel(first);
        keep_files(first);
        keep_flag(first);
        keep_gif(first);
        keep_gif_loop(first);
        keep_gks_text(first);
        keep_gph_tool(first);
        keep_map_lines(first);
        keep_plt_labl(first);
        keep_plt_parm(first);
        keep_region(first);
        return first;
    }();
    return keeper;
}

// Of a day in leap year February, with a forecast of as many hours as the text is long.
void draw_labels(std::size_t hours) {
    const Date date = *DATE_to_struct(2024, 2, 29, 23, 59);
    PLT_init_labels();
    PLT_label_date(hours % 5 == 0 ? nullptr : &date);
    PLT_label_for_time(static_cast<long>(hours * hours));
    for (const int type : {0, -1}) {
        PLT_set_label_type(type);
        for (const auto put : {PLT_label_up_left, PLT_label_up_center, PLT_label_up_right,
                               PLT_label_low_left, PLT_label_low_center, PLT_label_low_right}) {
            put("a label");
        }
        PLT_labels();
        PLT_next_overlay();
    }
    std::array<char, plt_label_size> text{};
    PLT_label_format(RES_get("label"), text.data());
    require(std::isfinite(PLT_low_right_begin()) && PLT_get_label_type() == -2);
    require(PLT_label_strcpy(0, nullptr) == -1 && PLT_label_strcat(-1, "") == -1);
    require(PLT_get_label(0, 0) != nullptr && PLT_get_label(-1, 0) == nullptr);
    require(PLT_get_num_over() <= plt_overlays && PLT_get_overlay_base() < plt_overlays);
}

template <typename T> void convert(const char* value, DEF_convert cvt, T out) {
    RES_conv_data(value, &out, cvt);
    RES_conv_data(nullptr, &out, cvt);
}

void convert_all(const char* value) {
    convert(value, CV_bool, missing);
    convert(value, CV_int, missing);
    convert(value, CV_short, short{0});
    convert(value, CV_long, 0L);
    convert(value, CV_color, 0L);
    convert(value, CV_float, missing_f);
    convert(value, CV_string, value);
    convert(value, CV_device, value);
    convert(value, CV_strcpy, std::array<char, def_value_size>{});
    convert(value, CV_domain, Domain{});
    char* path = nullptr;
    if (RES_conv_data(value, &path, CV_path) == 1) {
        require(*path == '\0' || path[std::strlen(path) - 1] == '/');
        delete[] path;
    }
    convert(value, CV_region, Domain{});
    for (const DEF_convert cvt : {CV_hour, CV_file_param, CV_plot_type, CV_draw, CV_none, CV_help,
                                  CV_batch, CV_strings, CV_int}) {
        RES_conv_data(value, nullptr, cvt);
        KnownWords words;
        RES_add_words(cvt, &words);
    }
}

void read_as_time(const char* value) {
    DATE_set_TZ(value);
    require(std::strlen(DATE_get_tz_str()) < date_label_size);
    require(std::abs(DATE_get_tz_off()) < 1000000000);
    std::array<char, date_label_size> now{};
    require(DATE_get_current_str(now.data()) != nullptr && DATE_set_TZ(nullptr) == -1);
    for (const auto decode : {DATE_decode_label, DATE_decode_seq}) {
        Date date;
        decode(value, &date);
        std::array<char, date_label_size> text{};
        DATE_make_label(&date, text.data());
        for (const int hours : {0, 18, 48, 60, 812, 900, date.min}) {
            DATE_fhour_label(text.data(), hours, 0);
            DATE_fhour_label(text.data(), hours, 1);
            DATE_make_label_valid_time(hours, &date, text.data());
        }
        DATE_print(mess_print, &date);
        const std::time_t seconds = DATE_num_sec(&date);
        Date again;
        DATE_get_gmdate(&seconds, &again);
        const bool leap_years_hold = date.year > 1900 && date.year < 2100;
        require(!leap_years_hold || DATE_num_sec(&again) == seconds);
    }
    Date none;
    require(DATE_make_label(&none, nullptr) == -1 && DATE_decode_seq(nullptr, &none) == -1);
    require(DATE_make_label_valid_time(0, &none, nullptr) == -1);
    require(DATE_fhour_label(nullptr, 0, 0) == nullptr && DATE_get_current_str(nullptr) == nullptr);
    DATE_decode_month(value);
    DATE_is_TZ(value);
}

void read_as_area(const char* value) {
    Gpanel panel;
    read_panel(value, &panel);
    const Grectangle page{0, 0, 800, 600};
    set_page_area(value, page, 1.5F);
    set_page_area(("P" + std::string(value)).c_str(), page, 1.5F);
    PLT_panel_decode(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const StateKeeper& first = open_session();
    first.restore();
    for (const char* name : names) {
        RES_put_again(name, "");
    }
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (asks(text)) {
        return 0;
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t cut = std::min(line.find('='), line.size());
        const auto* name = std::find(names.begin(), names.end(), line.substr(0, cut));
        if (name == names.end()) {
            continue;
        }
        const std::string value = line.substr(std::min(cut + 1, line.size())).substr(0, 199);
        RES_put_again(*name, value.c_str());
        convert_all(value.c_str());
        read_as_time(value.c_str());
        read_as_area(value.c_str());
    }
    first.restore();
    RAD_check_settings();
    PLT_param_decode();
    CONT_param_decode();
    draw_labels(size);
    PLT_get_settings();
    CONT_set_bar(1);
    CONT_set_fill_colors("0:red,10:blue,20:green", 1);
    CONT_draw_bar(1, "");
    FLAG_resetplot(1);
    draw_labels(size + 7);
    return 0;
}
