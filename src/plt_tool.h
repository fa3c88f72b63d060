// plt_tool.h: the plot session around every picture: opening and closing the
// workstation, the viewport, the six label positions, image dumps and the
// redraws that zoom, resize and refresh ask of a plotter.
//
// Order of calls of a plotter: PLT_open, the PLT_set_... callbacks, MAP_setup;
// for each frame the drawing, PLT_labels and PLT_dump; at last PLT_close.
#pragma once

#include "near_word.h"
#include "zyr.h"

#include <cstddef>
#include <string>

struct Glim;

// What a plotter registers. A mouse callback gets the kind of event (2 key or
// window size, 3 button), its name and a position in world coordinates.
using PLT_mouse_func = void(int type, const char* event, float x, float y);
using PLT_domain_func = int(Domain* domain);
using PLT_refresh_func = int();

// --- Session (plt_tool.cpp, viewport in plt_view.cpp, words in plt_parm.cpp) --

// Reads `plot_param` and opens the workstation with a viewport of the given
// aspect (width by height). Returns 0; -1, with nothing opened, when every
// component is switched off or the plot type is 99.
int PLT_open(float aspect);
// A new page on the open workstation. Returns as PLT_open.
int PLT_reset(float aspect);
// A further panel on the page; an aspect of 0 keeps the shape of the panel.
int PLT_panel(float aspect);
// Moves to the background in batch mode, lets the user look at a window and
// ends the session. Returns 0; -1 with plot type 99. Ends the program with 4
// when not all of what was asked for could be written. In batch mode the program
// goes to the background: with a window before it waits, else at the very end.
int PLT_close();
// Closes the graphics, keeps no output that is not whole, and ends the program.
[[noreturn]] void PLT_exit(int code);
// Notes that an output could not be written: PLT_close ends the program with 4.
void PLT_lost_output();
// Announces a stage of the drawing on the workstation's status line.
[[gnu::format(printf, 1, 2)]] int PLT_mess(const char* format, ...);

// Margins about the viewport as fractions of the panel: one for bottom and
// top, or left, right, bottom, top. They take effect at the next opening.
int PLT_set_view_offset(float offset);
int PLT_set_view_offsets(float left, float right, float bottom, float top);
float PLT_get_view_offset();
// Begins the viewport anew with the margins. Returns its place, where the opening
// of a page or panel puts the viewport in use.
Glim* PLT_start_view();
// The viewport in use, in coordinates of transformation 1.
int PLT_get_view(Glim* view);
// Whether a frame is drawn about the viewport (1 at start).
int PLT_border(int value);
int PLT_get_border();
// 1: labels are inside the viewport.
int PLT_set_full_lab(int value);
int PLT_get_full_lab();
// 1: the lower right label and the colour bar keep clear of each other, and the
// numbers of the bar of the panel's edge ("fitlab").
int PLT_set_fit_lab(int value);
int PLT_get_fit_lab();
// How many times the picture was zoomed by its domain.
int PLT_get_zoom();

// Decodes the words of `plot_param` that belong to every plot, and the image
// kinds in `out_file`. PLT_open calls it.
int PLT_param_decode();
// Adds the words of `plot_param` that it takes.
void PLT_add_param_words(KnownWords* known);
// Panel "WxH+X+Y". Returns 0; -1 when the four numbers are not all there.
int PLT_panel_decode(const char* text);

// Words of `plot_param` that are asked for later: by the plot session, header files and
// gridded fields.
struct PLT_settings {
    int headers = 1;                     // "nohdr" 0: no header files
    int grid_factor = missing;           // "gridx"
    int max_bad = missing;               // "max_bad"
    int empty_code = 0;                  // "empty": exit code of a run without any echo
    char grid_format[40] = "";           // "grdfmt"
    int dump = 0;                        // kind of image dump
    char dump_file[file_name_size] = ""; // its name convention
    bool place = false;                  // each image has files beside it that say where it lies
};
const PLT_settings& PLT_get_settings();

// Whether a loop has room for frame number `frame`: only a window's is bounded.
bool PLT_has_room(int frame);
// Reports how many files found no room in the loop; 0 reports nothing.
void PLT_tell_left_out(int files);
// Warns of several pictures on the one page of a file device.
void PLT_tell_overlaid(int pictures);

// Image dump after each frame: kind 0 none, 1 XWD, 2 GIF, 3 native image,
// 4 PNG, and the convention that names it (null or empty: the kind's own).
int PLT_set_dump(int type, const char* filename);
// The input of a frame: the key %f in the name of a dump is its name without
// directory and ending. PLT_shift_data_files: the oldest frame has gone.
void PLT_set_data_file(int frame, const char* name);
void PLT_shift_data_files();
// A run over a list. PLT_set_number: the number of the picture, the key %i of images
// and pages, whose names then have the other keys, too. PLT_output_pattern: the name of
// the output before its keys are replaced, once plot_param is decoded; PLT_name_output:
// after, once the header of the input is read.
void PLT_set_number(const char* number);
std::string PLT_output_pattern();
bool PLT_has_dump(); // an image is asked for
std::string PLT_name_output();
// With `resume` set: whether the picture of an input is there and newer than that, once
// its header is read.
void PLT_set_resume(bool resume);
bool PLT_has_picture(const char* input);
// Date of the data in the picture: date keys in the name of a dump take from it
// what the name of the file does not say. Null: not known.
void PLT_set_data_date(const Date* date);
// Writes the dump of a frame (-4: of all frames). Returns 0; -1 without one.
int PLT_dump(int frame);

// --- Redraws (plt_evnt.cpp) ---------------------------------------------------

int PLT_set_callback(PLT_mouse_func* func);
int PLT_set_zoom_func(PLT_domain_func* func);
int PLT_set_resize_func(PLT_domain_func* func);
int PLT_set_refresh_func(int seconds, PLT_refresh_func* func);
// Steps of a plotter's mouse callback. Each looks at the event's name and
// returns 0 if it acted, otherwise -1.
int PLT_plot_zoom(const char* event, float x, float y);
int PLT_plot_resize(const char* event, float x, float y);
int PLT_print_location(const char* event, float x, float y);
// Calls the plotter's refresh function.
void PLT_plot_refresh();

// --- Labels (plt_labl.cpp) ----------------------------------------------------

// Positions of labels.
enum PLT_label_position { up_left, up_center, up_right, low_left, low_center, low_right };
constexpr int plt_positions = 6;
constexpr int plt_overlays = 6; // lines 0 to 5 of a position
constexpr std::size_t plt_label_size = 70;

// Empties all lines.
int PLT_init_labels();
// The number of lines in use is raised to `ind`; a negative value sets it.
int PLT_set_num_overlay(int ind);
int PLT_get_num_over();
// The line that label calls write (5 at most), and the offset of line 0.
int PLT_set_overlay(int ind);
int PLT_set_overlay_base(int ind);
int PLT_get_overlay_base();
// Begins the next line. Returns its number; -1 when there are no more.
int PLT_next_overlay();
// Style: negative one line with the overlays appended, otherwise a line each.
int PLT_set_label_type(int type);
int PLT_get_label_type();
// Text of a line; null outside the table.
char* PLT_get_label(int lab, int over);

// Set the text of a position. Return 0; -1 when the text does not fit.
int PLT_label_up_left(const char* text);
int PLT_label_up_center(const char* text);
int PLT_label_up_right(const char* text);
int PLT_label_low_left(const char* text);
int PLT_label_low_center(const char* text);
int PLT_label_low_right(const char* text);
int PLT_label_strcpy(int lab, const char* text);
int PLT_label_strcat(int lab, const char* text);

// Date and forecast time of the label codes.
int PLT_label_date(const Date* date);
int PLT_label_for_time(long fhour);
// Expands the codes of `form` into `text`, which holds plt_label_size bytes.
int PLT_label_format(const char* form, char* text);
// Whether the letter after "%" is a label code.
bool PLT_is_label_code(char code);
// Left end of the lower right labels as PLT_labels would write them beside no
// bar; the viewport's right edge when there are none.
float PLT_low_right_begin();
// Draws border and labels. Returns 0; -1 when there is no room for labels.
int PLT_labels();
