// nids_probe: the value of a NIDS product at a place. The packets are walked as they
// are drawn, so that what is shown is what lies on top. No state of its own.
#include "nids_probe.h"

#include "nids_impl.h"
#include "nids_tables.h"
#include "rad_probe.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <string_view>

namespace {

constexpr int level_folded = 1; // of 256, in products of single sweeps

// Words of coded levels that are no numbers, by their low byte.
constexpr const char* level_words[] = {"",   "",   "",   "RF", "BI", "GC", "IC", "GR", "WS",
                                       "DS", "RA", "HR", "BD", "HA", "UK", "LH", "GH"};
constexpr int flag_word = 0x8000;
constexpr int flag_more = 0x0800; // the level means more than its number, or less
constexpr int flag_less = 0x0400;

// Classes of hydrometeors by their value / 10; none for 0 and 13.
constexpr const char* class_names[] = {"",   "BI", "GC", "IC", "DS", "WS", "RA", "HR",
                                       "BD", "GR", "HA", "LH", "GH", "",   "UK", "RF"};

bool has_classes(int code) {
    return code == 165 || code == 177;
}

// Whether level 1 of 256 says that the echo may be of another trip.
bool has_folded_level(int code) {
    constexpr int codes[] = {94, 99, 153, 154, 155, 159, 161, 163, 180, 182, 186};
    return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

std::string class_text(float value) {
    const float index = value / 10.0F;
    const bool is_class = index >= 0 && index < static_cast<float>(std::size(class_names)) &&
                          index == std::floor(index);
    return is_class ? class_names[static_cast<std::size_t>(index)] : "";
}

// A level of 16. `hundreds` of a run that counts them apart are in the value.
std::string coded_text(const NIDS_info& info, int level, float value) {
    const int coded = nids_header().pr_desc.thres[static_cast<std::size_t>(level & 15)];
    if ((coded & flag_word) != 0) {
        const auto word = static_cast<std::size_t>(coded & 0xFF);
        return word < std::size(level_words) ? level_words[word] : "";
    }
    constexpr float hint = 0.01F; // by which the decoded value is more or less
    const char* sign = "";
    if ((coded & flag_more) != 0) {
        sign = ">";
        value -= hint;
    } else if ((coded & flag_less) != 0) {
        sign = "<";
        value += hint;
    }
    return sign + rad_number_text(value) + rad_unit_text(info.info);
}

bool is_digital(int packet) {
    return packet == nids_packet_dig_radial || packet == nids_packet_dig_precip;
}

struct Probe {
    const NIDS_frame& frame;
    Gpt at;
    std::string text; // of what lies on top so far

    void take(int packet, float value) {
        const std::string told = nids_level_text(*frame.info, packet, NIDS_get_level(), value);
        if (!told.empty()) { // what has no value is not drawn over another
            text = told;
        }
    }
    // The runs of an open radial or row, of which one may hold the figure.
    void take_runs(int packet, int figure) {
        int first = 0;
        NIDS_data data;
        while (NIDS_get_data(frame.ifile, &data) > 0) {
            const int run = static_cast<int>(data.run);
            if (figure >= first && figure - first < run) {
                take(packet, nids_cell_value(frame, data.val));
            }
            first += run;
        }
    }
};

} // namespace

std::string nids_level_text(const NIDS_info& info, int packet, int level, float value) {
    if (!is_digital(packet) && nids_product(info.code).scale == NidsScale::levels) {
        return coded_text(info, level, value);
    }
    if (value == nids_folded ||
        (is_digital(packet) && level == level_folded && has_folded_level(info.code))) {
        return "RF";
    }
    if (!is_set(value) || (is_digital(packet) && level == 0)) {
        return "";
    }
    if (has_classes(info.code)) {
        return class_text(value);
    }
    return rad_number_text(value) + rad_unit_text(info.info);
}

std::string nids_value_at(const NIDS_frame& frame, Gpt at) {
    Probe probe{frame, at, ""};
    int type = frame.info->type;
    for (int status = NIDS_packet_status(); status > 0; status = NIDS_packet(frame.ifile, &type)) {
        if (type == nids_packet_raster_alt) {
            type = nids_packet_raster;
        }
        switch (type) {
        case nids_packet_radial:
        case nids_packet_dig_radial: {
            RadFan fan(frame.own, frame.info->domain.clat, frame.info->domain.clon);
            float sangle = 0;
            float dangle = 0;
            while (NIDS_get_radial(frame.ifile, &sangle, &dangle) > 0) {
                const int bin = rad_figure_at(nids_radial_edges(frame, fan, sangle, dangle), at);
                probe.take_runs(type, bin < frame.clutter_rad ? -1 : bin);
            }
            break;
        }
        case nids_packet_raster:
        case nids_packet_dig_precip:
            for (int row = 0; NIDS_get_rastor(frame.ifile) > 0; ++row) {
                probe.take_runs(type, rad_figure_at(nids_row_edges(frame, row), at));
            }
            break;
        default:
            nids_pass_packet(frame.ifile, type);
            break;
        }
    }
    return probe.text;
}
