// var_tool.h: what a user asks to be drawn: the text of the resource `variable`
// as a table of records, the variable files that give names to longer texts,
// and the menu of such a file.
//
//   text        a,b            a list
//               f(a,b)         a function of items
//               g{a,b}         a group
//               v<a,b>         a vector
//               a[u:t:f]       settings: units, type, format
//   item        [time:level:]name[:units[:type][:format]]
//
// An item without a time and level takes those of the item that encloses it.
// A name that the variable file defines stands for its definition; one that
// begins with "+" or "#" is never looked up. A "\" makes the next mark plain.
//
// Time code: kind * 1000000 + start * 1000 + end, in hours; a plain forecast
// hour is the end alone. Kinds: 2 range, 3 average, 4 accumulation, 5
// difference, 6 maximum, 7 minimum, 13 and 23 averages, 18 variance.
// Level code: a level type as in GRIB edition 1 and its value; the value of a
// layer packs both ends as one * 1000 + other.
#pragma once

#include "near_word.h"
#include "zyr.h"

#include <cstddef>

// Size of the text that VAR_make_datalevel writes.
constexpr std::size_t var_label_size = 100;

// How a time or level was obtained.
constexpr int var_stat_none = 0;      // the text is no such thing
constexpr int var_stat_inherited = 1; // from the enclosing item or the flags
constexpr int var_stat_given = 2;     // named by the text

// What an item inherits from the item that encloses it.
struct VAR_base {
    int type;  // data type code
    int tstat; // status of the time
    int time;  // time code
    int lstat; // status of the level
    int ltype; // level type
    int level; // level value
};

// The stack of enclosing items, at most 10 deep. While it is empty, the
// defaults are flags 6 (time), 7 and 8 (level type and value).
// push: 0; -1 when it is full. pop: 0; -1 when it is empty.
int VAR_base_push(const VAR_base& base);
int VAR_base_pop();
// Data type of the innermost item; missing while the stack is empty.
int VAR_base_type();

// Time code of a word such as "h12", "d2", "anal", "h12-6acc" or "".
//   time  out: the code; untouched when the status is 0
// Returns a status: 2 given, 1 inherited, 0 not a time.
int VAR_dec_time(const char* text, int* time);

// Level code of a word such as "500", "p850-500", "sfc", "1000ft".
//   ltype, level  out; as they were when the text says nothing and nothing is
//                 inherited
// Returns a status: 2 given, 1 inherited.
int VAR_dec_level(const char* text, int* ltype, int* level);

// Label of a time and a level, such as "6 hour acc 500 mb".
//   text  out: var_label_size characters
// Returns 0; -1 for a level type without a text (the time is still written).
int VAR_make_datalevel(int time, int ltype, int level, char* text);

// --- The table of variables ---------------------------------------------------

constexpr int var_max = 60;
constexpr std::size_t var_name_size = 20;
constexpr std::size_t var_format_size = 101;

// Data types that are asked for by number; VAR_dec_type has the words.
constexpr int var_type_data = 1;
constexpr int var_type_value = 2;
constexpr int var_type_text = 3;
constexpr int var_type_mark = 4;
constexpr int var_type_map = 6;
constexpr int var_type_frame = 7;
constexpr int var_type_panel = 8;
constexpr int var_type_grid = 10;
constexpr int var_type_cont = 11;
constexpr int var_type_lcont = 12;
constexpr int var_type_gvalue = 17;
constexpr int var_type_wind = 20;
constexpr int var_type_vect = 21;
constexpr int var_type_barb = 22;
constexpr int var_type_track = 23;
constexpr int var_type_plot = 30;
constexpr int var_type_cloud = 31;
constexpr int var_type_wbarb = 32;
constexpr int var_type_cbarb = 33;
constexpr int var_type_dbarb = 34;
constexpr int var_type_vbarb = 35;
constexpr int var_type_symb = 36;
constexpr int var_type_line = 37;
constexpr int var_type_const = 40;

// Roles, the last digit of `flag` of what is no plain variable.
constexpr int var_role_function = 2;
constexpr int var_role_layout = 4;
constexpr int var_role_group = 5;
constexpr int var_role_vector = 6;
constexpr int var_role_second = 8; // second record of a vector function

struct VAR_data {
    int type = missing;
    char name[var_name_size] = {}; // as in variable.lup; its full name if given as a number
    char units[15] = {};           // to convert to; empty: the default
    int var[5] = {missing, missing, missing, missing, missing}; // of variable.lup
    int tstat = var_stat_none;
    int time = missing;
    char tunits[5] = {};
    int lstat = var_stat_none;
    int ltype = missing;
    int level = missing;
    char lunits[5] = {};
    char format[var_format_size] = {};
    int flag = missing; // 10 * function depth + role, or + group depth of a plain variable
};

// Decodes a text into the table, which it replaces. A text "fi:FILE:..." names
// its own variable file; `file` null: the one that is open, if any. What nests deeper than 9
// levels, definitions included, or lies beyond 60 records is left out with a warning. Returns 1 if
// there is a record, else 0.
int VAR_setup(const char* file, const char* text);
VAR_data* VAR_get_vars();
int VAR_get_num();
const char* VAR_get_name(int index); // empty outside the table
// 1 for a record that names a top item; 0 for types that are no plot of their
// own: layout items, grids, contours and winds.
int VAR_is_LABEL(int index);
int VAR_is_type_PLOT(int index);

// Data type of a keyword such as "mark" or "wx"; -1 for any other text.
int VAR_dec_type(const char* text);
// Word of a data type; "----" for any other code.
const char* VAR_print_type(int code);
// One record, at the debug level.
void VAR_print(const VAR_data* var);

// Long name of a variable number (its abbreviation at a label type below 0),
// "v%d" for an unknown one, with units " (%s)" after it.
//   buffer  out: var_label_size characters
char* VAR_str(char* buffer, int number, const char* units);
// Label of record `index`: time, level, name with units, and at a label type
// of 1 " - " and the format.
//   text  out: at most 69 characters
// Returns 0; -1 for an index outside the table.
int VAR_make_var_form_datatype(int index, char* text);

// --- Variable files (var_file.cpp) --------------------------------------------
//
//   field  form          content of a line
//   1      word          abbreviation; a first "#" makes the line a comment
//   2      word          menu text, "_" for a blank
//   3      word          1 shown in the menu, 0 hidden, or a condition
//   4      rest of line  definition, a variable text; a "\" at the end goes on
//                        in the next line
//
// A condition is a list of alternatives, split at ",", each of tests joined by
// "&": "mo=" the model, "ft=" the default time (flag 6), "le=" the default
// level (flag 8), each with a pattern for the whole of that text: "|" between
// choices, a first "~" negates one, "?" or "." any character, "*" any run,
// "[a-z]" a set.

// Opens along `file_path`; null or empty: the program's name and ".var".
// Returns 1, 0 with a warning.
int VAR_open_file(const char* name);
// Definition of a name (case counts), blanks removed; it lasts until another file
// is opened. Returns 1; 0, with `definition` null, if there is none.
int VAR_lookup(const char* name, const char** definition);
// Adds the names that the open file defines; they last as long as it is open.
void VAR_add_names(KnownWords* words);
// Fills the menu from the open file. Returns the number of entries after the
// way back, at most 49.
int VAR_read_menu();
// Asks for an entry; in batch mode the first one, or "def". Returns as
// MENU_process does. `text` holds at least 81 characters.
int VAR_menu(const char* title, const char* prompt, char* text, int flag);
int VAR_print_file();
// Whether a condition holds. 1 or 0.
int VAR_menu_display(const char* condition);

// Name of the model or network that menu conditions test, at most 19
// characters.
int VAR_set_model_str(const char* text);
const char* VAR_get_model_str();

// A line of variable.lup: "n,n,n,n,n abbr long name".
struct VAR_desc {
    int ind[5] = {missing, missing, missing, missing, missing};
    char name[50] = {};
    char abbr[10] = {};
};
// Rows of variable.lup, read on first need. Null if there is none.
const VAR_desc* VAR_find_number(int number);
const VAR_desc* VAR_find_abbr(const char* abbr);
