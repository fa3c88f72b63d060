// rad_run: the run of a plotter over the selected radar files: the session is
// opened for the first one, each file becomes a frame, and a refresh shows the
// newest. It keeps nothing: a run's state is the plotter's (RadRun). The
// resources must be read and the first file chosen.
#include "rad_run.h"

#include "cont.h"
#include "date.h"
#include "map.h"
#include "maptran.h"
#include "plt_tally.h"
#include "rad_account.h"
#include "rad_probe.h"
#include "region.h"
#include "text_list.h"
#include "text_num.h"
#include "units.h"
#include "watch.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr float default_ring_nmi = 100.0F;
constexpr int default_clutter = 25;
constexpr int refresh_seconds = 60;

// --- Words of plot_param ------------------------------------------------------

void set_rings(RadWords& words, const char* word) {
    constexpr std::size_t length = 4; // of "dist"
    if (std::strlen(word) == length) {
        words.rings[0] = default_ring_nmi;
        return;
    }
    const char* at = word + length + 1;
    for (float& ring : words.rings) {
        float value = 0.0F;
        if (!take_real(&at, &value)) {
            return;
        }
        ring = std::isfinite(value) ? value : 0.0F;
        if (!take_char(&at, ':')) {
            return;
        }
    }
}

void set_clutter(RadWords& words, const char* word) {
    constexpr std::size_t length = 7; // of "clutter"
    words.clutter = std::strlen(word) == length ? default_clutter : rad_word_int(word, length);
}

constexpr char folded_color[] = "purple"; // which no list of levels has

// A word and what it stores.
struct Switch {
    const char* word;
    int RadWords::*field;
    int value;
};
constexpr std::array<Switch, 7> switches = {
    {
     {"site", &RadWords::site, 1},
     {"nograph", &RadWords::graph, 0},
     {"graph", &RadWords::graph, 1},
     {"refresh", &RadWords::refresh, 1},
     {"noclutter", &RadWords::clutter, 0},
     {"exact", &RadWords::exact, 1},
     {"noexact", &RadWords::exact, 0},
     }
};

// --- Files --------------------------------------------------------------------

// Cuts seconds down to a multiple of the step between files.
std::int64_t on_file_step(std::int64_t seconds) {
    const std::int64_t step = std::max<std::int64_t>(FILE_get_late_off(), 1);
    return seconds / step * step;
}

void fill_unset(int& field, int value) {
    if (!is_set(field)) {
        field = value;
    }
}

// A file's own domain serves a request without one.
bool take_own_domain(const Domain& own, Domain* domain) {
    if (is_set(domain->proj) || !is_set(own.proj)) {
        return false;
    }
    *domain = own;
    return true;
}

// Takes a name out of `kept` if it is that of a file; whether it was.
bool take_name(char* kept, const char* name) {
    const bool same = *kept != '\0' && std::strcmp(kept, name) == 0;
    *kept = '\0';
    return same;
}

// Opens a file of the walk. The first one was tried already, and is open after
// its header or reported: a standard stream can be read but once, and half of
// its unpacking would be done twice.
// The next file of the run. Those that a span of hours names and nobody has
// written are only counted.
bool next_file(RadRun& run, char* name) {
    while (FILE_get_next(name) != 0) {
        if (FILE_is_span() == 0 || FILE_exist(name) != 0) {
            return true;
        }
        if (run.absent++ == 0) {
            copy_text(run.first_absent, sizeof run.first_absent, name);
        }
    }
    return false;
}

void tell_absent(RadRun& run) {
    if (run.absent > 0) {
        MESS_print(mess_warn, "%d files of the hours asked for are missing, the first: %s\n",
                   run.absent, run.first_absent);
    }
    run.absent = 0;
}

bool open_next(const RadPlotter& plotter, RadRun& run, const char* name) {
    // A date that was typed in part leads to one name, and itself is another.
    const bool failed = *run.failed != '\0';
    if (take_name(run.failed, name) ||
        (failed && FILE_get_num_file() == 0 && FILE_exist(name) == 0)) {
        return false;
    }
    if (!take_name(run.probed, name)) {
        plotter.close();
        RAD_begin_account(name);
        if (plotter.open(name) == 0) {
            FILE_explain(name);
            plotter.close();
            return false;
        }
    }
    if (!plotter.has_key && CONT_get_bar() != -2) { // the session may have refused it since
        CONT_set_bar(1);
    }
    return true;
}

// Opens the session for the open file.
void begin_session(const RadPlotter& plotter, RadRun& run, const char* name, Domain* domain) {
    take_own_domain(*plotter.begin(), domain);
    PLT_set_data_file(0, name);
    if (PLT_has_picture(name)) {
        ZYR_exit(0);
    }
    run.in_session = true;
    PLT_open(DOM_aspect(domain));
    PLT_set_callback(plotter.callback);
    PLT_set_zoom_func(plotter.plot);
    PLT_set_resize_func(plotter.plot);
    if (run.refresh) {
        PLT_set_refresh_func(refresh_seconds, plotter.refresh);
    }
}

void set_up_map(Domain* domain) {
    MAP_setup(domain);
    MAP_fill_cont(0);
}

// Draws the file `name` as frame number `frame`; false if it does not open.
bool plot_file(const RadPlotter& plotter, RadRun& run, const char* name, int frame,
               Domain* domain) {
    if (!open_next(plotter, run, name)) {
        RAD_end_account(end_file);
        return false;
    }
    if (!run.in_session) {
        begin_session(plotter, run, name, domain);
        set_up_map(domain);
    }
    Date date;
    FILE_get_date(&date);
    run.fsecs = on_file_step(DATE_num_sec(&date));
    if (take_own_domain(*plotter.begin(), domain)) {
        PLT_panel(DOM_aspect(domain));
        MAP_setup(domain);
    }
    const bool several = FILE_get_num_file() != 0;
    if (several) {
        gselect_frame(gcreate_frame(frame));
    }
    PLT_set_data_file(frame, name);
    rad_note_source(frame, name);
    plotter.frame();
    plotter.close();
    if (several) {
        gdisplay_frame(frame);
    }
    PLT_dump(frame);
    RAD_end_account(PLT_has_dump() && PLT_get_tally().outputs.empty() ? end_output : 0);
    return true;
}

// Looks for a file to redraw before anything on show is cleared. The one found
// stays open for its turn.
bool find_readable(const RadPlotter& plotter, RadRun& run) {
    char name[file_name_size] = "";
    FILE_first(&run.base_date);
    run.absent = 0;
    while (next_file(run, name)) {
        plotter.close();
        if (plotter.open(name) != 0) {
            copy_text(run.probed, sizeof run.probed, name);
            return true;
        }
    }
    MESS_print(mess_warn, "No file can be read any more: the picture is kept\n");
    return false;
}

// Makes room for a new picture: the oldest frame goes and the last one becomes
// empty. Returns the number of frames.
int shift_frames() {
    const int frames = gget_num_images();
    if (frames < 1) {
        // A new page begins the redraw list anew, too: it would grow by a picture
        // with each refresh.
        Domain domain;
        MAP_get_domain(&domain);
        PLT_reset(DOM_aspect(&domain));
        MAP_setup(&domain);
        return 0;
    }
    for (int i = 0; i < frames - 1; ++i) {
        gcopy_frame(i, i + 1);
        rad_shift_source(i);
    }
    gselect_frame(gcreate_frame(frames - 1));
    return frames;
}

} // namespace

int rad_decode_words(void (*decode_word)(const char* word)) {
    const TextList words = RES_items("plot_param");
    for (const char* word : words) {
        decode_word(word);
    }
    return 0;
}

bool rad_take_word(RadWords& words, const char* word) {
    for (const Switch& row : switches) {
        if (stricmp(word, row.word) == 0) {
            words.*row.field = row.value;
            return true;
        }
    }
    if (strnicmp(word, "dist", 4) == 0) {
        set_rings(words, word);
    } else if (stricmp(word, "nodist") == 0) {
        words.rings[0] = 0.0F;
    } else if (stricmp(word, "slabel") == 0) {
        WATCH_set_label(1);
    } else if (strnicmp(word, "clutter", 7) == 0) {
        set_clutter(words, word);
    } else if (strnicmp(word, "exact=", 6) == 0) {
        words.exact = 1;
        copy_text(words.folded, sizeof words.folded, word + 6);
    } else {
        return false;
    }
    return true;
}

void rad_add_words(KnownWords* known) {
    for (const Switch& row : switches) {
        known->push_back({row.word});
    }
    for (const KnownWord& word : {
             KnownWord{"dist",   true},
             {"nodist"},
             {"clutter",    true    },
             {"range",    true},
             {"exact=",    true    }
    }) {
        known->push_back(word);
    }
}

RadFolded rad_folded(const RadWords& words, float value, bool listed) {
    RadFolded folded;
    if (words.exact == 0) {
        return folded;
    }
    const bool named = words.folded[0] != '\0';
    if (listed && !named && CONT_get_values(nullptr) > 0) {
        CONT_get_fill_attrib(value, &folded.look);
        if (folded.look.color >= 0) {
            folded.value = value;
            return folded;
        }
    }
    ATTRIB_init(&folded.look);
    ATTRIB_parse(named ? words.folded : folded_color, &folded.look);
    folded.value = value;
    return folded;
}

double rad_word_number(const char* word, std::size_t length) {
    double number = 0.0;
    if (std::strlen(word) > length) {
        const char* at = word + length + 1;
        take_real(&at, &number);
    }
    return number;
}

int rad_word_int(const char* word, std::size_t length) {
    const double number = rad_word_number(word, length);
    return std::isnan(number) ? 0 : static_cast<int>(std::clamp(number, -1.0e9, 1.0e9));
}

void rad_set_date(RadRun& run, const Date* date) {
    if (date == nullptr) {
        FILE_get_date(&run.base_date);
    } else {
        run.base_date = *date;
    }
}

void rad_fill_date(RadRun& run, const Date& date) {
    PLT_set_data_date(&date);
    fill_unset(run.file_date.year, date.year);
    fill_unset(run.file_date.month, date.month);
    fill_unset(run.file_date.day, date.day);
    fill_unset(run.file_date.hour, date.hour);
    fill_unset(run.file_date.min, date.min);
}

bool rad_open_session(const RadPlotter& plotter, RadRun& run, const RadWords& words,
                      Domain* domain) {
    if (gchk_graphics() != 0) {
        run.in_session = true;
        run.kept = !find_readable(plotter, run);
        if (!run.kept) {
            PLT_reset(DOM_aspect(domain));
        }
        run.told_away = true; // an empty corner was chosen by eye
        return true;
    }
    plotter.decode();
    run.refresh = words.refresh != 0;
    char name[file_name_size] = "";
    FILE_set_date(&run.base_date, name);
    FILE_first(&run.base_date); // is the file one of a span, and not there?
    const bool absent = FILE_is_span() != 0 && FILE_exist(name) == 0;
    RAD_begin_account(name);
    const bool opened = !absent && plotter.open(name) != 0;
    char* const kept = opened ? run.probed : run.failed;
    copy_text(kept, file_name_size, name);
    if (opened) {
        begin_session(plotter, run, name, domain);
    } else {
        FILE_explain(name);
        plotter.close();
    }
    return false;
}

int rad_plot_files(const RadPlotter& plotter, RadRun& run, Domain* domain, bool redraw) {
    if (redraw && run.kept) {
        return -1;
    }
    if (run.in_session) {
        set_up_map(domain);
    }
    FILE_first(&run.base_date);
    rad_forget_sources();
    char name[file_name_size] = "";
    int left_out = 0;
    int frame = 0;
    run.absent = 0;
    while (next_file(run, name)) {
        if (!PLT_has_room(frame)) {
            ++left_out;
        } else if (plot_file(plotter, run, name, frame, domain)) {
            ++frame;
        } else if (FILE_get_num_file() == 0 && !redraw) {
            PLT_exit(end_file);
        }
    }
    tell_absent(run);
    if (frame == 0 && !redraw) { // of several files none opens
        PLT_exit(end_file);
    }
    PLT_tell_overlaid(frame);
    PLT_tell_left_out(left_out);
    if (FILE_get_num_file() != 0) {
        gset_looping(1);
    }
    if (!redraw) {
        PLT_close();
    }
    return 0;
}

int rad_plot_nextfile(const RadPlotter& plotter, RadRun& run) {
    char name[file_name_size] = "";
    const std::int64_t seconds = FILE_set_current(nullptr, name);
    MESS_print(mess_debug, "File: %d %s\n", static_cast<int>(seconds), name);
    if (seconds != run.fsecs && rad_show_next(plotter, run, name)) {
        rad_set_date(run, nullptr);
        run.fsecs = seconds;
    }
    return 0;
}

bool rad_show_next(const RadPlotter& plotter, RadRun& run, const char* name) {
    if (!open_next(plotter, run, name)) {
        return false;
    }
    const int frames = shift_frames();
    if (frames > 1) {
        PLT_shift_data_files();
    }
    PLT_set_data_file(std::max(frames - 1, 0), name);
    rad_note_source(std::max(frames - 1, 0), name);
    plotter.begin();
    plotter.frame();
    plotter.close();
    if (frames > 0) {
        gdisplay_frame(frames - 1);
    }
    return true;
}

void rad_check_view(RadRun& run, const Map& own, const Map& plot, const char* name) {
    if (run.told_away || map_meets(own, plot)) {
        return;
    }
    run.told_away = true;
    MESS_print(mess_warn,
               "The plot domain about %.2f %.2f shows nothing of the data about %.2f %.2f:%s\n",
               plot.domain.clat, plot.domain.clon, own.domain.clat, own.domain.clon, name);
    constexpr float near_deg = 20.0F;
    const auto near = [](float a, float b) { return std::fabs(a - b) < near_deg; };
    if (own.domain.clon < 0.0F && near(plot.domain.clon, -own.domain.clon) &&
        near(plot.domain.clat, own.domain.clat)) {
        MESS_print(mess_warn, "Longitudes in the west are negative\n");
    } else if (near(plot.domain.clat, own.domain.clon) && near(plot.domain.clon, own.domain.clat)) {
        MESS_print(mess_warn, "The latitude comes before the longitude\n");
    }
}

void rad_check_variable(RadRun& run, const char* what) {
    const KnownWords known = {{"watch"}, {"none"}, {"def"}};
    for (const char* word : RES_items("variable")) {
        if (run.told_variable || *word == '\0' || is_known_word(known, word)) {
            continue;
        }
        run.told_variable = true;
        const std::string nearest(close_word(known, word));
        MESS_print(mess_warn, "variable: Nothing of %s: %s, its own data are drawn%s%s\n", what,
                   word, nearest.empty() ? "" : "; the nearest is ", nearest.c_str());
    }
}

void rad_draw_bar() {
    if (CONT_get_bar() > 0) {
        GPH_trans(tran_page);
        CONT_draw_bar(1, "");
        GPH_trans(tran_map);
    }
}

void rad_draw_site(const RadWords& words, const Gattribs& look, float lat, float lon) {
    if (look.color == -1) {
        return;
    }
    float x = missing_f;
    float y = missing_f;
    if (MAP_tran(lat, lon, &x, &y) == 0) {
        return;
    }
    if (words.site != 0) {
        GPH_mark(x, y);
    }
    for (std::size_t i = 0; words.rings[0] != 0.0F && i < words.rings.size(); ++i) {
        if (words.rings[i] != 0.0F) {
            MAP_draw_circle(x, y, words.rings[i] * km_per_nmi_f);
        }
    }
}

void rad_draw_watches(const Date& date) {
    if (WATCH_wanted()) {
        WATCH_decode(&date);
        WATCH_plot();
    }
}

const char* rad_plain_color() {
    return gget_inverse() != 0 ? "black" : "white";
}
