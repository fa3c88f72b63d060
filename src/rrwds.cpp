// rrwds: reader and plotter of RRWDS images. A header of 12 bytes:
//
//   offset  size  field
//   0       3     site
//   3       1     bit 7: range 100 nautical miles, else 200
//   5       1     hour, tens in bits 6 and 7, ones in bits 2 to 5
//   6       1     minute, tens in bits 4 to 6, ones in 0 to 3; bit 7: the elevation is negative
//   8       2     elevation: tens in bits 0 to 2; ones in bits 4 to 7, tenths in 0 to 3
//   10      1     day, tens and ones of four bits
//   11      1     month, the same
//
// then for each degree from north a record of 80 bytes, which holds from byte 4
// on 200 levels of 3 bits, from the site outward, eight in three bytes with the
// low bits first. State: the open file and its header, its date label, the
// words of `plot_param`, the run over the files (rad_run).
#include "rrwds.h"

#include "cont.h"
#include "data_file.h"
#include "date.h"
#include "file_kind.h"
#include "files.h"
#include "map.h"
#include "maptran.h"
#include "nids_plt.h"
#include "nids_wedge.h"
#include "plt_tally.h"
#include "plt_tool.h"
#include "rad_fill.h"
#include "rad_key.h"
#include "rad_run.h"
#include "region.h"
#include "state_keeper.h"
#include "units.h"
#include "zyrcty.h"
#include "zyrgks.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string_view>

namespace {

constexpr std::size_t header_size = 12;
constexpr std::size_t record_size = 80;
constexpr std::size_t levels_at = 4; // in a record
constexpr int azimuths = 360;
constexpr int bins = 200;
constexpr double overlap_deg = 0.1; // by which a radial covers the next one's edge
constexpr char colors[] = "None,Blue,Cyan,Green,Yellow,Red,Magenta,Off";
constexpr int plot_levels = 52; // plot type: filled, with the key of levels

struct State {
    std::FILE* ifile = nullptr;
    char name[file_name_size] = "";
    NIDS_info rrwds_info;
    char datim[date_label_size] = "";
    Domain own; // of the open file
    RadWords words;
    RadRun run;
};
State state;

// Tens and ones of four bits each.
int two_digits(std::uint8_t b) {
    return (b & 15) + (b >> 4) * 10;
}

float bin_nmi() {
    return state.rrwds_info.domain.dx;
}

const Domain* take_file() {
    const std::string_view label = state.rrwds_info.info;
    PLT_tally& tally = PLT_get_tally();
    tally.product = label;
    tally.site = label.substr(label.find_last_of(' ') + 1);
    tally.elev = state.rrwds_info.elev;
    tally.lat = state.rrwds_info.domain.clat;
    tally.lon = state.rrwds_info.domain.clon;
    DATE_make_label(&state.rrwds_info.date, state.datim);
    state.own = {};
    RRWDS_domain(&state.own);
    return &state.own;
}

int plot_frame() {
    MAP_draw(map_under);
    RRWDS_plot_data();
    MAP_draw(map_over | map_plain);
    GPH_trans(tran_map);
    // The header has no year: the time is that of the file's name.
    rad_draw_watches(state.run.file_date);
    PLT_labels();
    RAD_draw_bar();
    return 0;
}

int plot_nextfile();

constexpr RadPlotter plotter = {
    RRWDS_plot_param, RRWDS_open_file, RRWDS_close_file, take_file,
    plot_frame,       RRWDS_callback,  RRWDS_plot,       plot_nextfile,
};

int plot_nextfile() {
    return rad_plot_nextfile(plotter, state.run);
}

// The level of a bin: bits 3 i to 3 i + 2 of the record's stream of bits.
int level_of(const std::array<std::uint8_t, record_size>& record, int bin) {
    const auto bit = static_cast<std::size_t>(bin) * 3;
    const std::size_t at = levels_at + bit / 8;
    const unsigned pair = record[at] | (at + 1 < record_size ? record[at + 1] << 8U : 0U);
    return static_cast<int>(pair >> (bit % 8) & 7U);
}

void set_colors() {
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    CONT_set_quantity(nullptr);
    CONT_set_fill_colors(colors, 0);
    CONT_set_type(plot_levels);
    CONT_set_base(-0.5F);
    CONT_set_intrvl(1.0F);
}

// One radial, `azimuth` degrees from north.
void draw_radial(const std::array<std::uint8_t, record_size>& record, int azimuth, Gpt site,
                 double step) {
    const double from = MAP_dir_adj(static_cast<float>(azimuth), site.x, site.y) * deg_to_rad;
    const double to = from + (1.0 + overlap_deg) * deg_to_rad;
    WEDGE_info wedge;
    wedge.dx1 = step * std::sin(from);
    wedge.dy1 = step * std::cos(from);
    wedge.dx2 = step * std::sin(to);
    wedge.dy2 = step * std::cos(to);
    std::array<Gpt, 5> corners{};
    corners.fill(site);
    for (int bin = 0; bin < bins; ++bin) {
        const float distance = static_cast<float>(bin + 1) * bin_nmi();
        const bool clutter = distance < static_cast<float>(state.words.clutter);
        NIDS_plot_WEDGE(corners.data(), &wedge, 1.0F,
                        clutter ? 0.0F : static_cast<float>(level_of(record, bin)));
    }
}

// Length of a bin on the plot. Bins go by the third parameter of a Lambert picture alone:
// one that names none draws them at a scale of 1, whatever the scale of its cone.
double bin_step() {
    const Domain& site = state.rrwds_info.domain;
    const Domain& plot = MAP_current().domain;
    const bool no_scale = plot.proj == proj_lambert && !is_set(plot.param[2]);
    const float factor = no_scale ? 1.0F : MAP_factor(site.clat, site.clon);
    return factor * (bin_nmi() * km_per_nmi) / 100.0;
}

void draw_radials(Gpt site) {
    const double step = bin_step();
    if (!rad_is_place(site) || !std::isfinite(step)) {
        return;
    }
    std::array<std::uint8_t, record_size> record{};
    for (int azimuth = 0; azimuth < azimuths; ++azimuth) {
        if (std::fread(record.data(), 1, record.size(), state.ifile) != record.size()) {
            MESS_print(mess_warn, "RRWDS_plot_data: The file ends at azimuth %d: %s\n", azimuth,
                       state.name);
            return;
        }
        draw_radial(record, azimuth, site, step);
    }
}

} // namespace

int RRWDS_set_date(const Date* datim) {
    rad_set_date(state.run, datim);
    return 0;
}

int RRWDS_get_header(std::FILE* ifile, NIDS_info* info) {
    *info = {};
    DOM_init(&info->domain);
    std::array<std::uint8_t, header_size> b{};
    if (ifile == nullptr || std::fread(b.data(), 1, b.size(), ifile) != b.size()) {
        return 0;
    }
    const int near = b[3] >> 7;
    MESS_print(mess_debug, "RANGE: %d\n", near);
    info->range = near != 0 ? 100.0F : 200.0F;
    info->date.hour = (b[5] >> 2 & 15) + (b[5] >> 6) * 10;
    info->date.min = (b[6] & 15) + (b[6] >> 4 & 7) * 10;
    info->date.day = two_digits(b[10]);
    info->date.month = two_digits(b[11]);
    const float elev =
        static_cast<float>(b[9] & 15) / 10.0F + static_cast<float>((b[9] >> 4) + (b[8] & 7) * 10);
    info->elev = (b[6] & 0x80) != 0 ? -elev : elev;

    char site[4] = "";
    for (std::size_t i = 0; i < 3; ++i) {
        const bool plain = b[i] > ' ' && b[i] < 0x7F;
        site[i] = plain ? static_cast<char>(b[i]) : '\0';
    }
    std::snprintf(info->info, sizeof info->info, "Reflectivity for %s", site);
    std::snprintf(info->misc, sizeof info->misc, "Range: %3.0f Elev:%2.1f",
                  static_cast<double>(info->range), static_cast<double>(info->elev));
    info->domain.nx = info->domain.ny = 2 * bins;
    info->domain.dx = info->domain.dy = info->range / static_cast<float>(bins);

    CTY_data city;
    if (CTY_get("rad.cty", site, &city) == 0) {
        MESS_print(mess_warn, "RRWDS_get_header: Station not found\n");
        return -1;
    }
    // A name or a number may have fitted in place of the identifier.
    if (stricmp(city.id, site) == 0) {
        info->domain.clat = city.lat;
        info->domain.clon = city.lon;
    }
    return 1;
}

int RRWDS_open_file(const char* filename) {
    copy_text(state.name, sizeof state.name, filename);
    state.ifile = FILE_open_data(filename);
    std::array<std::uint8_t, 512> area{};
    const auto head =
        state.ifile != nullptr ? FILE_head(state.ifile, area) : std::span<const std::uint8_t>();
    const int header = RRWDS_get_header(state.ifile, &state.rrwds_info);
    if (header == 0) {
        MESS_print(mess_warn, "RRWDS_open_file: Unable to open file:%s\n", filename);
    }
    if (state.ifile != nullptr && is_other_kind(head, "rrwds")) {
        tell_file_kind("RRWDS_open_file", head);
    }
    if (header != 1) {
        RRWDS_close_file();
        const bool redraw = gchk_graphics() != 0; // keeps the picture
        if (header == -1 && FILE_get_num_file() == 0 && !redraw) {
            PLT_exit(end_station);
        }
        return 0;
    }
    take_file();
    FILE_get_date(&state.run.file_date);
    rad_fill_date(state.run, state.rrwds_info.date);
    const Domain& domain = state.rrwds_info.domain;
    MESS_print(mess_mess, "Product type: %s\n", state.rrwds_info.info);
    MESS_print(mess_mess, "Product date: %s\n", state.datim);
    MESS_print(mess_mess, "Product location: %5.2f %5.2f\n", static_cast<double>(domain.clat),
               static_cast<double>(domain.clon));
    if (CONT_get_bar() != -2) {
        CONT_set_bar(1);
    }
    rad_check_variable(state.run, "an RRWDS image");
    return 1;
}

int RRWDS_rewind_file() {
    if (state.ifile == nullptr) {
        return 0;
    }
    std::rewind(state.ifile); // a packed file goes back to its start alone
    std::array<std::uint8_t, header_size> header{};
    return std::fread(header.data(), 1, header.size(), state.ifile) == header.size() ? 1 : 0;
}

int RRWDS_close_file() {
    if (state.ifile == nullptr) {
        return 0;
    }
    FILE_close(state.ifile);
    state.ifile = nullptr;
    return 1;
}

int RRWDS_domain(Domain* domain) {
    if (is_set(domain->proj)) {
        return -1;
    }
    const Domain& site = state.rrwds_info.domain;
    DOM_init(domain);
    domain->proj = proj_pstereo;
    domain->clat = site.clat;
    domain->clon = domain->plon = site.clon;
    domain->nx = site.nx * 3 / 2 + 1;
    domain->ny = site.ny + 1;
    domain->dx = domain->dy =
        static_cast<float>(map_stereo_factor(site.clat) * (bin_nmi() * km_per_nmi) / 100.0);
    MESS_print(mess_debug, "Domain: ");
    DOM_print(mess_debug, domain);
    return 0;
}

int RRWDS_plot(Domain* domain) {
    const bool redraw = rad_open_session(plotter, state.run, state.words, domain);
    return rad_plot_files(plotter, state.run, domain, redraw);
}

int RRWDS_plot_data() {
    const NIDS_info& info = state.rrwds_info;
    PLT_set_callback(RRWDS_callback);
    Gpt site{missing_f, missing_f};
    if (MAP_tran(info.domain.clat, info.domain.clon, &site.x, &site.y) == 0) {
        site = {missing_f, missing_f};
    }
    GPH_trans(tran_map);
    PLT_label_up_left(info.info);
    PLT_label_up_right(state.datim);
    PLT_label_low_right(info.misc);
    set_colors();
    rad_check_view(state.run, map_make(state.own), MAP_current(), state.name);
    PLT_mess("RRWDS Data");
    draw_radials(site);
    Gattribs data;
    ATTRIB_init(&data);
    ATTRIB_get("color_data", rad_plain_color(), &data);
    GPH_line_attr(&data);
    GPH_mark_attr(&data, 1.0F);
    gset_marker_type(2);
    rad_draw_site(state.words, data, info.domain.clat, info.domain.clon);
    return 0;
}

int RRWDS_plot_param() {
    return rad_decode_words([](const char* word) { rad_take_word(state.words, word); });
}

void RRWDS_callback(int, const char* str, float x, float y) {
    const NIDS_info& info = state.rrwds_info;
    NIDS_print_loc_elev(str, x, y, info.domain.clat, info.domain.clon, info.elev);
    PLT_plot_zoom(str, x, y);
    PLT_plot_resize(str, x, y);
    RAD_flash_levels(str, x, y);
}

void keep_rrwds(StateKeeper& keeper) {
    keeper.close_by([] { RRWDS_close_file(); });
    keeper.keep(state);
}
