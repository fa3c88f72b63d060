// zyrresrc.h: the resource database. Every setting of the program is a
// resource: a name with a text value. The list is filled at the start from
// defaults files, a running loop window, environment variables and the
// command line, and answers RES_get and its relatives from then on.
#pragma once

#include "near_word.h"
#include "text_list.h"
#include "zyr.h"

#include <string>
#include <vector>

// --- Vocabulary -------------------------------------------------------------

// All known resources. A program picks its own by listing them.
enum res_type {
    RES_null = 0, // closes a list
    RES_help,
    RES_batch,
    RES_message,
    RES_file_path,
    RES_data_path,
    RES_con_path,
    RES_grid_path,
    RES_raw_path,
    RES_image_path,
    RES_watch_path,
    RES_text_path,
    RES_model_path,
    RES_city_file,
    RES_map_file,
    RES_inputg,
    RES_output,
    RES_name_conv,
    RES_in_file,
    RES_out_file,
    RES_file_param,
    RES_current,
    RES_hour,
    RES_num_hour,
    RES_identifier,
    RES_plot_domain,
    RES_grid_domain,
    RES_region,
    RES_stat_prior,
    RES_variable,
    RES_plot_type,
    RES_plot_scale,
    RES_plot_format,
    RES_plot_param,
    RES_draw,
    RES_label,
    RES_con_interval,
    RES_con_base,
    RES_font_list,
    RES_color_table,
    RES_color_text,
    RES_color_data,
    RES_color_map,
    RES_color_grid,
    RES_color_line,
    RES_color_wind,
    RES_color_watch,
    RES_color_cmap,
    RES_color_cont,
    RES_color_fill,
    RES_color_label,
    RES_color_clabel,
    RES_device,
    RES_title,
    RES_icon,
    RES_background,
    RES_geometry,
    RES_filenames,
    // Known, but not listed by this program.
    RES_ingestor,
    RES_in_files,
    RES_input,
    RES_bull_file,
    RES_log_file,
    RES_decode_hour,
    RES_model,
    RES_grid_type,
    RES_grid_num,
    RES_product,
    RES_forecast,
    RES_state,
    RES_time,
    RES_level,
    RES_object_param,
    RES_parameter,
    RES_table,
    RES_color_front,
    RES_color_cloud,
    RES_color_wx,
    RES_color_pop,
    RES_color_sound,
    RES_color_therm,
    RES_color_thrmtxt,
    RES_color_hodo,
    RES_color_hodtxt,
    RES_window_num,
    RES_command,
    RES_commands,
    RES_filename,
    RES_values,
    // Names of the wider suite that have no row.
    RES_age,
    RES_bin_path,
    RES_color_cgrid,
    RES_color_conts,
    RES_color_echo,
    RES_color_labels,
    RES_color_rep,
    RES_con_bases,
    RES_con_intervals,
    RES_data_src,
    RES_default,
    RES_identifiers,
    RES_identifierp,
    RES_ingest_port,
    RES_labels,
    RES_name,
    RES_num_grid,
    RES_out_files,
    RES_plot_range,
    RES_plot_types,
    RES_position,
    RES_program,
    RES_read_conf,
    RES_save_param,
    RES_unit,
    RES_sat_path,
};

// A value of up to 200 characters and its closing zero.
constexpr std::size_t def_value_size = 201;

// How a value's text is converted, and what `out` of RES_getval points at.
enum DEF_convert {
    CV_none = 0,
    CV_bool = 1,        // int
    CV_int = 2,         // int
    CV_short = 3,       // short
    CV_long = 4,        // long
    CV_float = 5,       // float
    CV_string = 6,      // const char*
    CV_strcpy = 7,      // char[def_value_size]; longer values are cut
    CV_path = 8,        // char*
    CV_mess = 9,        // no out; sets the message level
    CV_draw = 10,       // no out; sets the plot switches
    CV_current = 11,    // read as text
    CV_hour = 12,       // no out; fixes parts of the file date
    CV_region = 13,     // Domain
    CV_name = 14,       // read as text
    CV_ingestor = 15,   // read as text
    CV_file_param = 16, // no out; sets flag 15
    CV_device = 17,     // const char*; also sets flag 2
    CV_plot_type = 18,  // no out; sets flag 11
    CV_color = 19,      // long
    CV_domain = 20,     // Domain
    CV_strings = 21,    // read as text, items split at newlines
    CV_batch = 22,      // no out; sets flag 19
    CV_help = 23,       // no out; sets flag 20
};

// An option's abbreviation without its dash or, for a row of positional
// arguments, the position: 1 the first, 10 the row that takes all of them.
struct RES_cmd {
    const char* text = nullptr;
    int position = 0;

    constexpr RES_cmd() = default;
    constexpr RES_cmd(const char* option) : text(option) {}
    constexpr RES_cmd(int place) : position(place) {}
};

// One row of a definition table.
struct RES_defobj {
    const char* def = nullptr; // resource name; null ends the table, empty skips the row
    const char* env = nullptr; // environment variable
    RES_cmd cmd;
    DEF_convert cvt = CV_none;
    void* out = nullptr; // where the final conversion stores; may be null
    int* num = nullptr;  // count for CV_strings; may be null
};

// --- Start ------------------------------------------------------------------

// Conversions whose work lies above the settings: the program hands them in
// before RES_init. Without one, its resource is read as text.
struct RES_actions {
    void (*hour)(const Date* date) = nullptr;               // CV_hour: parts of the file date
    int (*domain)(const char* text, Domain* out) = nullptr; // CV_region, CV_domain
};
void RES_set_actions(const RES_actions& actions);

// The whole start-up: resets the flags, builds the definition table from the
// two lists (each closed by RES_null), merges all sources and applies the
// conversions with side effects. If nothing sets `file_path`, it becomes the
// directory in which the last "zyr.cfg" of the search list was found. Returns 1.
int RES_init(int argc, char** argv, const res_type* res_key, const res_type* res_pos);

// The merge. From lowest to highest rank: defaults files in list order, a
// loop window, the environment, the command line. `res_class` has no effect.
// Returns 0.
int RES_decode(const char* progname, const char* res_class, int argc, char** argv,
               const RES_defobj* def_table);

// Options of the command line that no row fits, as they were typed.
const std::vector<std::string>& RES_unknown_options();
// Whether the option of a resource was given on the command line.
bool RES_is_typed(const char* name);
// Settings of defaults files that no row fits.
const std::vector<std::string>& RES_unknown_keys();

int RES_fill_obj(RES_defobj* row, const char* def, const char* env, RES_cmd cmd, DEF_convert cvt,
                 void* out, int* num);
// Fills a row from the fixed vocabulary. A type without a row gives an empty
// `def` and prints its number on standard output. Returns 0.
int RES_enter(RES_defobj* row, res_type type);

void RES_setCL(int argc, char** argv);
// argv[0]; null before RES_setCL.
const char* RES_get_prog();
// The text of argv[0] after its last "/". `buffer` holds at least
// file_name_size characters; null: new memory. Returns the text.
char* RES_get_progname(char* buffer);

// --- The list ---------------------------------------------------------------

// Creates the entry of that name, or replaces its value, index and
// conversion. `index` is the row or `missing`; null data is "no value".
// Texts once stored stay valid for the run. Returns 0; -1 without memory.
int RES_new(int index, const char* name, const char* data, DEF_convert cvt);
// As RES_new for a new entry; to an existing one it appends a newline and the data.
int RES_append(int index, const char* name, const char* data, DEF_convert cvt);
int RES_put(const char* name, const char* value);
// As RES_put, once nobody holds a value of that name any more: the old one goes.
int RES_put_again(const char* name, const char* value);

// The value; the empty text if the resource has no value; null if absent.
const char* RES_get(const char* name);
// RES_conv_data on the value; 0 if the resource is absent or `out` is null.
int RES_getval(const char* name, void* out, DEF_convert cvt);
// The items of a value, split at newlines for CV_strings, else at commas.
// Free with free_parsed_array. Returns the count, 0 if absent.
int RES_getvals(const char* name, int* count, char*** array);
// The same, to be read in a loop.
TextList RES_items(const char* name);
// Prints every entry at level 8.
int RES_list();

// Converts `value` (may be null) into `out`, or acts by it. Returns 1; 0 if
// the value is null or `out` is null where one is needed. A text that cannot
// be converted leaves `out` as it was.
int RES_conv_data(const char* value, void* out, DEF_convert cvt);
// Date fields that the text of `hour` names; a negative hour or minute is a step.
Date RES_dec_hour(const char* text);
// Whether a text is a word of on or off.
bool RES_is_switch(const char* text);
// Adds the words that a conversion with a list of words takes.
void RES_add_words(DEF_convert cvt, KnownWords* known);
// Device type (flag 2) from the first letter of a `device` value.
int RES_set_device(const char* text);

// --- Help -------------------------------------------------------------------

int RES_help_print(const char* name, const res_type* res_key, const res_type* res_pos);
int RES_help_item(res_type type);
