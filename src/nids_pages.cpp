// nids_pages: the graphic block of a NIDS product. Its pages are drawn on a grid
// of 512 by 512 over the plot; the storms of their tables are plotted on the map
// by the variables selected (var_tool). Of its own it keeps how the last list was
// headed, since the pages of a product may go on without a header.
#include "nids_pages.h"

#include "cont.h"
#include "map.h"
#include "nids_draw.h"
#include "nids_report.h"
#include "plt_tally.h"
#include "rad_fill.h"
#include "rad_storm.h"
#include "region.h"
#include "state_keeper.h"
#include "units.h"
#include "var_tool.h"
#include "windbarb.h"
#include "zyrraw.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr float page_shift = 50.0F; // a page lies below the one before it
constexpr float page_text = 7.0F;   // heights on the page
constexpr float page_barb = 20.0F;
constexpr float text_expan = 0.85F; // 80 columns fit the page
constexpr float mark_scale = 1.5F;

struct State {
    NidsList list = NidsList::none; // header of the table met last
};
State state;

// --- Symbols of a storm -------------------------------------------------------

// Attributes of what is drawn for a storm, as they are for a line of the page.
void set_attributes(const Gattribs& data) {
    GPH_line_attr(&data);
    GPH_fill_attr(&data);
    GPH_mark_attr(&data, mark_scale);
}

// What the storm is warned of, how it moves, its name and its top.
void draw_composite(const NIDS_page_frame& frame, const NIDS_report& storm, Gpt p) {
    constexpr int mark_plus = 2;
    constexpr int mark_star = 3;
    constexpr int mark_circle = 4;
    constexpr int mark_cross = 5;
    constexpr int mark_triangle = 9; // on its tip
    set_attributes(frame.data);
    if (storm.shail >= 50) {
        rad_draw_mark(p, CLR_get_ind("green"), storm.shail >= 75 ? mark_star : mark_cross);
    }
    if (storm.meso != 0) {
        rad_draw_mark(p, CLR_get_ind("yellow"), mark_circle);
    }
    if (storm.tvs != 0) {
        rad_draw_mark(p, CLR_get_ind("red"), mark_triangle);
    }
    if (storm.shail < 50 && storm.meso == 0 && storm.tvs == 0) {
        rad_draw_mark(p, frame.data.color < 0 ? -1 : rad_white(frame.data), mark_plus);
    }
    // Only the lists have a column of tops.
    char top[16] = "";
    if (storm.tops > 0 || nids_product(frame.info->code).table == NidsTable::list) {
        std::snprintf(top, sizeof top, "%.0f", static_cast<double>(storm.tops));
    }
    const float dir = is_set(storm.dir) ? frame.plot.dir_adj(storm.dir, p.x, p.y) : missing_f;
    rad_draw_storm(p, frame.data, {storm.id, dir, storm.spd, top});
}

// Where the storm goes in two hours.
void draw_track(const NIDS_page_frame& frame, const NIDS_report& storm, Gpt p) {
    if (!is_set(storm.dir) || storm.spd <= 0 || frame.data.color < 0) {
        return;
    }
    set_attributes(frame.data);
    const double length =
        2.0 * frame.plot.factor(frame.info->domain.clat) * (storm.spd * km_per_nmi) / 100.0;
    WIND_track(p.x, p.y, frame.plot.dir_adj(storm.dir, p.x, p.y), static_cast<float>(length),
               frame.scale * 0.1F * MAP_get_vert(), 4, 0);
}

// --- Values of a storm ----------------------------------------------------------

// Numbers that are plotted where they are above 0.
struct Number {
    const char* name;
    float NIDS_report::*value;
};
constexpr Number numbers[] = {
    {"hsize", &NIDS_report::hsize    },
    {"vil",   &NIDS_report::vil      },
    {"dbzm",  &NIDS_report::max_dbz  },
    {"dbzht", &NIDS_report::max_dbz_z},
    {"top",   &NIDS_report::tops     },
    {"dir",   &NIDS_report::dir      },
    {"spd",   &NIDS_report::spd      },
};

void set_text(RAW_data* data, const char* text) {
    copy_text(data->data, sizeof data->data, text);
}

void set_flag(RAW_data* data, int flag, const char* text) {
    if (flag != 0) {
        data->value[0] = 1.0F;
        set_text(data, text);
    }
}

void set_percent(RAW_data* data, int percent) {
    if (percent > 0) {
        data->value[0] = static_cast<float>(percent);
        set_text(data, percent > 75 ? "*" : percent > 50 ? "X" : "");
    }
}

// A value of the storm at its place. Whether there was one to be drawn.
bool draw_value(const NIDS_report& storm, const VAR_data& var, Gpt p) {
    RAW_data item;
    RAW_data_init(&item);
    item.x = p.x;
    item.y = p.y;
    NIDS_get_plot_data(&storm, &var, &item);
    item.type = var.type;
    copy_text(item.format, sizeof item.format, var.format);
    const bool there = item.data[0] != '\0' || is_set(item.value[0]);
    return RAW_plot_data(&item) == 0 && there;
}

// Draws a storm by each of the variables. Whether one of them drew anything.
bool draw_storm(const NIDS_page_frame& frame, const NIDS_report& storm) {
    const Domain& own = frame.info->domain;
    Gpt site{missing_f, missing_f};
    Gpt p{missing_f, missing_f};
    const auto km = static_cast<float>(storm.rad * km_per_nmi);
    if (frame.plot.tran(own.clat, own.clon, &site.x, &site.y) == 0 ||
        frame.plot.offset(site.x, site.y, storm.ang, km, &p.x, &p.y) == 0 || !rad_is_place(p)) {
        return false;
    }
    bool any = false;
    for (int i = 0; i < VAR_get_num(); ++i) {
        const char* name = VAR_get_name(i);
        if (stricmp(name, "comp") == 0) {
            if (frame.symbols) {
                draw_composite(frame, storm, p);
            }
            any = true;
        } else if (stricmp(name, "track") == 0) {
            if (frame.symbols) {
                draw_track(frame, storm, p);
            }
            any = true;
        } else if (stricmp(name, "table") != 0 && stricmp(name, "watch") != 0) {
            any = draw_value(storm, VAR_get_vars()[i], p) || any;
        }
    }
    return any;
}

// --- The walk of the pages ------------------------------------------------------

struct Walk {
    const NIDS_page_frame& frame;
    NidsTable table;
    Map grid;         // of a page
    int page = 0;     // pages before this one
    int storms = 0;   // met so far
    bool any = false; // is drawn
    long room = rad_most_figures;
    NidsColumns columns{};
    Gattribs text; // attributes of the lines of text

    explicit Walk(const NIDS_page_frame& f)
        : frame(f), table(nids_product(f.info->code).table), text(f.data) {
        Domain domain;
        DOM_init(&domain);
        domain.proj = proj_pixel;
        domain.clat = domain.clon = 0;
        domain.dx = domain.dy = 511;
        domain.nx = domain.ny = 512;
        grid = map_make(domain);
        text.expan = text_expan;
    }
    // What is drawn next lies on the page, or on the plot again.
    void select_page() const {
        if (frame.pages) {
            MAP_setup(&grid.domain);
        }
    }
    void select_plot() const {
        if (frame.pages) {
            MAP_setup(&frame.plot.domain);
        }
    }
};

// Image of a place on a page.
Gpt image(const Walk& walk, float x, float y) {
    Gpt p{missing_f, missing_f};
    if (walk.grid.tran(x, y, &p.x, &p.y) == 0) {
        p = {missing_f, missing_f};
    }
    return p;
}

void draw_vectors(Walk& walk) {
    const float shift = page_shift * static_cast<float>(walk.page);
    NIDS_vector_data vector;
    GPH_line_attr(&walk.frame.grid);
    for (; walk.room > 0 && NIDS_get_vector(walk.frame.ifile, &vector) > 0; --walk.room) {
        const Gpt from = image(walk, vector.x1, vector.y1 + shift);
        const Gpt to = image(walk, vector.x2, vector.y2 + shift);
        if (walk.frame.pages && walk.frame.grid.color >= 0 && rad_is_place(from) &&
            rad_is_place(to)) {
            GPH_line(from.x, from.y, to.x, to.y);
            ++PLT_get_tally().figures;
        }
    }
}

void draw_winds(Walk& walk) {
    NIDS_wind_data wind;
    for (; walk.room > 0 && NIDS_get_wind(walk.frame.ifile, &wind) > 0;
         walk.room -= nids_barb_strokes) {
        const Gpt p = image(walk, wind.x, wind.y);
        Gattribs attrib;
        CONT_get_fill_attrib(wind.val, &attrib);
        if (walk.frame.pages && attrib.color >= 0 && rad_is_place(p)) {
            GPH_fill_attr(&attrib);
            GPH_line_attr(&attrib);
            WIND_barb(p.x, p.y, wind.dir, wind.spd, page_barb, 0.0F);
            ++PLT_get_tally().figures;
        }
    }
}

// Counts a storm, and draws it if it is among those wanted.
void take_storm(Walk& walk, const NIDS_report& storm) {
    const NIDS_page_frame& frame = walk.frame;
    ++walk.storms;
    const bool among = frame.num_plt != 0 && walk.storms <= frame.num_plt;
    const bool strong = frame.strong && nids_is_strong(storm);
    if (among || strong || (frame.num_plt == 0 && !frame.strong)) {
        constexpr long strokes = 60; // of symbol, texts and track
        walk.room -= strokes;
        walk.select_plot();
        walk.any = draw_storm(frame, storm) || walk.any;
        walk.select_page();
    }
}

void take_text(Walk& walk) {
    NIDS_text_data text;
    if (NIDS_get_text(walk.frame.ifile, &text) < 1) {
        return;
    }
    const Gpt p = image(walk, text.x, text.y + page_shift * static_cast<float>(walk.page));
    if (walk.frame.pages && walk.text.color >= 0 && rad_is_place(p)) {
        GPH_line_attr(&walk.text);
        GPH_text_attr(&walk.text, page_text);
        GPH_text_align(GLEFT_HOR, GCAP_VERT);
        gset_char_space(1.0F);
        gtext(&p, text.data);
        ++PLT_get_tally().figures;
        gset_char_space(0.0F);
        walk.room -= nids_text_strokes(text.data);
        walk.any = true;
    }
    MESS_print(mess_mess, "%s\n", text.data);
    NIDS_report storm;
    nids_column_line(walk.table, text.data, &walk.columns);
    if (walk.table == NidsTable::list && nids_list_line(text.data, &state.list, &storm)) {
        take_storm(walk, storm);
    }
}

void walk_page(Walk& walk) {
    walk.columns = {};
    int type = 0;
    while (walk.room > 0 && NIDS_packet(walk.frame.ifile, &type) > 0) {
        switch (type) {
        case nids_packet_vector:
        case nids_packet_vector_val:
            draw_vectors(walk);
            break;
        case nids_packet_wind:
            draw_winds(walk);
            break;
        case nids_packet_text:
        case nids_packet_text_val:
            take_text(walk);
            break;
        default:
            if (NIDS_is_symbol(type) != 0) { // none has its place on a page
                NIDS_symbol symbol;
                while (NIDS_get_symbol(walk.frame.ifile, &symbol) > 0) {
                }
            }
            break;
        }
    }
    for (const NIDS_report& storm : walk.columns) {
        if (nids_has_place(storm)) {
            take_storm(walk, storm);
        }
    }
    ++walk.page;
}

} // namespace

int NIDS_draw_pages(const NIDS_page_frame& frame) {
    if (NIDS_graphic(frame.ifile) == 0) {
        return 0;
    }
    Walk walk(frame);
    walk.select_page();
    while (walk.room > 0 && NIDS_graphic_layer(frame.ifile) != 0) {
        walk_page(walk);
    }
    walk.select_plot();
    if (walk.room <= 0) {
        nids_report_flood(*frame.info);
    }
    return walk.any ? 1 : 0;
}

int NIDS_get_plot_data(const NIDS_report* report, const VAR_data* var, RAW_data* data) {
    RAW_data_init_val(data);
    const std::string name(var->name, std::strcspn(var->name, "-"));
    const auto is = [&name](const char* word) { return stricmp(name.c_str(), word) == 0; };
    if (is("id")) {
        set_text(data, report->id);
    } else if (is("tvs")) {
        set_flag(data, report->tvs, "TVS");
    } else if (is("meso")) {
        set_flag(data, report->meso, "MESO");
    } else if (is("posh")) {
        set_percent(data, report->shail);
    } else if (is("poh")) {
        set_percent(data, report->hail);
    } else if ((is("mvmt") || is("track")) && report->spd > 0) {
        data->value[0] = report->dir;
        data->value[1] = report->spd;
    }
    for (const Number& row : numbers) {
        if (is(row.name) && report->*row.value > 0) {
            data->value[0] = report->*row.value;
        }
    }
    return 0;
}

void keep_nids_pages(StateKeeper& keeper) {
    keeper.keep(state);
}
