// rad_run.h: what the plotters of radar files have in common: words of
// `plot_param`, the run over the selected files with a frame for each, the
// refresh, and the mark and range rings of a site.
//
// A plotter owns a RadRun and describes itself in a RadPlotter. Its plot routine,
// which is also called for a zoom or a resize, calls rad_open_session and then
// rad_plot_files; its refresh routine calls rad_plot_nextfile.
#pragma once

#include "files.h"
#include "map_proj.h"
#include "near_word.h"
#include "plt_tool.h"
#include "rad_fill.h"
#include "zyr.h"
#include "zyrgks.h"

#include <array>
#include <cstddef>
#include <cstdint>

// --- Words of plot_param ------------------------------------------------------

struct RadWords {
    int site = 0;                 // mark the site
    int graph = 0;                // draw the graphic block
    int clutter = 0;              // bins near the site that are left out
    int refresh = 0;              // look for newer files every 60 seconds
    std::array<float, 4> rings{}; // range rings, nautical miles; none when the first is 0
    int exact = 0;                // values and places by the formats' own documents
    char folded[40] = "";         // colour of range folded bins then; empty: not said
};

// Hands each word of the resource to a plotter. Returns 0.
int rad_decode_words(void (*decode_word)(const char* word));
// Takes a word that these plotters share. Returns whether it was one.
bool rad_take_word(RadWords& words, const char* word);
// Adds the words that these plotters know.
void rad_add_words(KnownWords* known);
// What range folded bins of this value are drawn with when the words ask for exact
// values; else nothing. `listed` is whether the levels of the frame may have an entry
// of their own for them, which then counts unless the word names a colour.
RadFolded rad_folded(const RadWords& words, float value, bool listed);
// The number after `length` letters of a word and one character; 0 for none.
double rad_word_number(const char* word, std::size_t length);
int rad_word_int(const char* word, std::size_t length); // cut, and to 1e9 in size

// --- The run ------------------------------------------------------------------

struct RadPlotter {
    int (*decode)();                   // takes the plotter's words of `plot_param`
    int (*open)(const char* filename); // 1; 0 with a message when it does not open
    int (*close)();
    // Takes what the open file says before its data, in the zone of the
    // session. Gives the file's own domain, whose `proj` may be unset.
    const Domain* (*begin)();
    int (*frame)(); // draws a frame of the open file
    PLT_mouse_func* callback;
    PLT_domain_func* plot;     // zoom and resize
    PLT_refresh_func* refresh; //
    bool has_key = false;      // in place of a bar, of which it needs none to be on
};

struct RadRun {
    Date base_date;                         // reference date of the file selection
    Date file_date;                         // date of the file, filled from the data where unset
    char probed[file_name_size] = "";       // name of the first file while it is open, else empty
    bool kept = false;                      // a redraw found no file: the picture stays on show
    bool told_away = false;                 // that the domain shows nothing of the data
    bool told_variable = false;             // of a variable that the plotter has none of
    char failed[file_name_size] = "";       // name of the first file if it can't be read
    int absent = 0;                         // files of a span of hours that are not there
    char first_absent[file_name_size] = ""; // name of the first of them
    bool in_session = false;                // the session was opened
    bool refresh = false;                   // newer files are looked for
    std::int64_t fsecs = 0; // time of the file shown last, on a multiple of the file step
};

// Takes the reference date; null: the file's date.
void rad_set_date(RadRun& run, const Date* date);
// Gives the parts of the file's date that are not known those of its data.
void rad_fill_date(RadRun& run, const Date& date);

// Opens the session for the first file, or prepares the open one for a redraw. A
// domain whose `proj` is not set takes the first file's own. A first file that
// can't be read leaves the session closed: a run without any that can writes no
// page. Returns whether this is a redraw.
bool rad_open_session(const RadPlotter& plotter, RadRun& run, const RadWords& words,
                      Domain* domain);
// Draws the selected files, in a session that is opened for the first that can be
// read, and closes the session unless this is a redraw.
// Returns 0; -1 for a redraw that keeps the picture, as no file can be read any
// more; ends the program with 10 when no file opens at first.
int rad_plot_files(const RadPlotter& plotter, RadRun& run, Domain* domain, bool redraw);
// Shows the newest file, as the last frame, when there is a newer one than on
// show. Returns 0.
int rad_plot_nextfile(const RadPlotter& plotter, RadRun& run);
// Shows a file as the last frame; the oldest one goes. False when it does not
// open.
bool rad_show_next(const RadPlotter& plotter, RadRun& run, const char* name);

// --- Parts of a frame ---------------------------------------------------------

// Reports, once a run and not after a zoom, a picture that shows no place of the
// map of its data. `name` is the data's file.
void rad_check_view(RadRun& run, const Map& own, const Map& plot, const char* name);
// Warns, once, of an item of `variable` where there is none but the watches. `what`
// is the picture, with its article.
void rad_check_variable(RadRun& run, const char* what);
// The colour bar, unless it is refused.
void rad_draw_bar();
// Mark and range rings of a site at its image on the plot, in the line and
// marker attributes in force, which are those of `look`; none in no colour.
void rad_draw_site(const RadWords& words, const Gattribs& look, float lat, float lon);
// The watch boxes in force at a time, when `variable` asks for them.
void rad_draw_watches(const Date& date);
// The colour of texts and marks that no resource names.
const char* rad_plain_color();
