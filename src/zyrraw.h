// zyrraw.h: raw data files, the plain text form of point data, and the one
// place that draws a labelled item on a map.
#pragma once

#include "tools.h"
#include "zyr.h"
#include "zyrgks.h"

#include <cstddef>
#include <cstdio>

// --- Raw files (raw_read.cpp) -----------------------------------------------
//
//   ZYRRAW                     the magic; any first line that begins with Z
//                              and is no data row
//   date label
//   !description               "!": a field list follows
//   id lat lon                 words name:description:format, "_" for a blank,
//   temp:Temperature:ul:co=red up to one that begins with "$"
//   $
//   OKC 35.4 -97.6 21.5        rows: identifier, position, values
//
// Position columns: latitude and longitude where the list has more than three
// fields of which the second is "lat" or "x"; a level where it has more than
// two of which the second is "p" or "pres"; else none. Without a field list a
// row is identifier, latitude, longitude, values. A file without the magic has
// no header and is of type 99.
//
// A value is "-" (missing), a number, two numbers with a comma between, or a
// word; ":" and a plot format may follow, and "name=" may come first.

constexpr int raw_type_file = 1;
constexpr int raw_type_plain = 99;
constexpr int raw_max_files = 5;
constexpr int raw_max_fields = 75;
constexpr int raw_line_length = 400; // the rest of a longer row is dropped

constexpr int raw_read_access = 0;
constexpr int raw_write_access = 1;
constexpr int raw_append_access = 2;

struct RAW_report {
    char id[30] = {};
    int type = missing; // field of the value, counted with the position columns
    int wmo = missing;  // of an identifier longer than 4 characters
    float lat = missing_f;
    float lon = missing_f;
    float elev = missing_f;
    int prior = missing;
    float value[2] = {missing_f, missing_f};
    char data[30] = {}; // the value's text; empty: missing
    char format[40] = {};
};

struct RAW_info {
    char datim[50] = {}; // date label
    char info[50] = {};  // description
    char file[20] = {};  // not in the header: empty
    char* cmdline = nullptr;
    Date date;
    int num_stat = 0;
};

// One open file.
struct RAW_file {
    std::FILE* file = nullptr;
    char name[file_name_size] = {};
    int fd = -1;
    int type = missing;
    int access = raw_read_access;
    int num = 0;       // the line in hand, counted from 0
    int ind = 0;       // offset of the next value; 0 no line in progress, -1 used up
    int cur_field = 0; // field of the last value
    int num_field = 0; // of the field list; 0: there is none
    int field_off = 3; // leading columns that are position columns
    char field[raw_max_fields][20] = {};
    char field_info[raw_max_fields][60] = {};
    char field_fmt[raw_max_fields][40] = {};
    int field_ind[raw_max_fields] = {}; // offsets of the leading columns
    bool is_input = false;              // standard input: no way back
    bool in_hand = false;               // `line` holds row `num`
    bool ended = false;                 // no row follows
    std::size_t bytes = 0;              // read from the file
    char line[raw_line_length + 1] = {};
};

// What is wanted of a row, as `rep_type` of RAW_read: raw_each each value in
// turn, raw_ident the identifier, raw_value(n) value n after the position
// columns; or the name of a field, or of a "name=value" in the row.
char* RAW_selector(int number);
constexpr int raw_each = 1;
constexpr int raw_ident = 2;
constexpr int raw_first_value = 10; // of value 0
constexpr int raw_selectors = 76;   // numbers below

// 1 for a raw file, 99 for plain rows, -1 if it cannot be opened.
int RAW_chktype(const char* filename);
// Opens a file: "", "-" and "std" standard input or output, "stdn" the same of
// type 99.
//   f_type  in: 0 to be found, 1, 2 (read as 1), 99; out: the type
// Returns a handle; -1 with five files open or on any failure.
int RAW_open(const char* filename, int f_access, int* f_type);
// Reads the header; nothing of a type 99 file. Returns 0, -1 for no handle.
int RAW_getinfo(int raw_fd, RAW_info* info);
// Place of a field in a row, the identifier's being 0; missing if there is none.
// `field`: a selector.
int RAW_get_field_ind(int raw_fd, const char* field);
// Name of a field, in the list or as it was asked for; null for a number without one.
const char* RAW_get_field_name(int raw_fd, const char* field);
// Description of a field, or null.
const char* RAW_get_field_info(int raw_fd, const char* field);
// Reads from row *statnum, counted from 0; the caller moves on.
// Returns 1 with a value, or with a position alone; 0 with none (of a row read
// value by value: it is finished) and for no handle; -1 at the end.
int RAW_read(int raw_fd, RAW_report* report, const char* rep_type, const int* statnum);
// Decodes one value with the default format of field `ind`. Returns 0.
int RAW_dec_line(int raw_fd, int ind, RAW_report* report, const char* str);
// Back to the first row; a type 99 file and standard input stay. Returns 0 or -1.
int RAW_rewind(int raw_fd);
int RAW_close(int raw_fd);

// --- Names of raw files and items to plot (raw_tool.cpp) ---------------------

// Opens "NAME", "NAME-FIELD", "NAME:FORMAT" or "NAME-FIELD:FORMAT" along
// `file_path`, then `raw_path`.
//   ind  out: selector; raw_each without a field
//   fmt  out: format, or null
// Both stay valid until the next call. Returns the handle; -1 with a warning.
int RAW_file_open(const char* file, const char** ind, const char** fmt, int mode);

// One item to plot.
struct RAW_data {
    float x = missing_f; // plot coordinates
    float y = missing_f;
    int type = missing; // VAR_dec_type
    Gattribs attr;
    char format[80] = {};
    char data[40] = {};
    float value[2] = {missing_f, missing_f};
};

// Clear all of an item, or its values and text alone. Return 0.
int RAW_data_init(RAW_data* data);
int RAW_data_init_val(RAW_data* data);

// --- Plotting (raw_plt.cpp) ---------------------------------------------------

// The look of items.
struct RAW_attribs {
    Gattribs attrib;
    float intrvl = missing_f; // contour interval that selects a colour
    float scale = 1.0F;       // of text and offsets
    float base = 0.0F;        // contour base
    float min = missing_f;    // values outside are not drawn
    float max = missing_f;
    int type = 1;
    char symbol[40] = {}; // symbol file
    char text[10] = {};   // fixed text
    char format[60] = {}; // number format
    int bar = missing;    // baseline of a vertical bar
    int marker = 0;       // fixed marker; raw_cloud_marker a cloud circle
    int hor = 2;          // text alignment
    int vert = 3;
    float x = 0.0F; // offset, in heights of the window
    float y = 0.0F;
    int line = 0; // 1: join to the last point
    int skip = 1; // plot every n-th record
};
constexpr int raw_cloud_marker = 1001;

int RAW_init_attrib(RAW_attribs* attr);
// Starts a plot or an overlay: settings of `plot_param`, `plot_format`,
// `con_base` and `con_interval` over the attributes and scale given, in
// transformation 2. It sets levels and colours anew. Returns 0; -1 with nothing
// to draw.
int RAW_plot_init(const Gattribs* attrib, float sc);
// Applies a record to the kernel. Returns 0; -1 for a colour that draws nothing.
int RAW_set_attribs(const RAW_attribs* attr);
// Lays a format over a record: parts split at colons, a number format ("%4.1f"),
// a type word, a position ("ul" ... "lr"), or a prefix and a value ("co=red").
// Returns the type that it names, 0 for none.
int RAW_parse_format(RAW_attribs* attr, const char* fmt);
// Warns of the parts of a format that say nothing. `what` names where it comes from.
void RAW_check_format(const char* what, const char* format);
// Draws one item. Returns 0, -1 with nothing drawn.
int RAW_plot_data(const RAW_data* data);
// Draws a file: `label` 0 as an overlay of the map, else as a plot of its own
// with labels. Returns 0.
int RAW_plot_file(const char* file, int label);
