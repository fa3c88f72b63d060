// zyr.h: what every module shares: the missing value, text sizes, the two
// records that travel everywhere (Date, Domain), and the widely used calls of
// the program frame: flags, messages, strings, system services and menus.
#pragma once

#include <cstddef>
#include <cstdio>

// --- Missing value and sizes ------------------------------------------------

// "Not set" in flags, records, coordinates, table indexes and list positions.
constexpr int missing = -9999;
constexpr float missing_f = -9999.0F;

constexpr bool is_set(int v) {
    return v != missing;
}
constexpr bool is_set(float v) {
    return v != missing_f;
}

// Sizes of text buffers, the closing zero included.
constexpr std::size_t file_name_size = 160;
constexpr std::size_t res_name_size = 50;
constexpr std::size_t res_value_size = 200;

// --- Shared records ---------------------------------------------------------

// A moment in UTC. Any field may be `missing` (unknown); the file layer also
// keeps negative hours and minutes in it as steps.
struct Date {
    int year = missing;  // full year, such as 1999
    int month = missing; // 1 to 12
    int day = missing;   // 1 to 31
    int jday = missing;  // day of the year, 1 to 366
    int wday = missing;  // day of the week, 0 = Sunday
    int hour = missing;  // 0 to 23
    int min = missing;   // 0 to 59
    int sec = missing;   // 0 to 59

    bool operator==(const Date&) const = default;
};

// Where a picture lies on the earth and how large it is. The numbers get
// their meaning from the projection (maptran.h).
struct Domain {
    int proj = missing;     // projection code
    float plat = missing_f; // pole or reference latitude, degrees
    float plon = missing_f; // pole or reference longitude, degrees, east positive
    float param[5] = {missing_f, missing_f, missing_f, missing_f, missing_f};
    float clat = missing_f; // latitude of the centre, degrees
    float clon = missing_f; // longitude of the centre, degrees
    float dx = missing_f;   // grid spacing: 100 km on earth projections, degrees on latlon
    float dy = missing_f;
    int nx = missing; // grid points
    int ny = missing;
    int ellipse = 0; // 0 sphere, 1 ellipsoid
};

// --- Flags (flag.cpp) -------------------------------------------------------

// Program-wide switches 0 to 29, all `missing` until set.
constexpr int flag_device = 2;      // output device type
constexpr int flag_domain = 5;      // result of the last domain decode
constexpr int flag_def_time = 6;    // default time code of variable selection
constexpr int flag_def_ltype = 7;   // default level type
constexpr int flag_def_level = 8;   // default level
constexpr int flag_plot_type = 11;  // plot type
constexpr int flag_input = 14;      // input file type
constexpr int flag_file_param = 15; // what to do with an output file that exists
constexpr int flag_raw_conv = 16;   // 0 raw, 1 converted source
constexpr int flag_format = 17;     // source file format
constexpr int flag_batch = 19;      // above 0: batch mode
constexpr int flag_help = 20;       // above 0: help asked

// Numbers outside 0 to 29: the getters return 0, the setters -1.
int FLAG_get(int n);
long FLAG_getl(int n);
int FLAG_set(int n, int value);
int FLAG_setl(int n, long value);
int FLAG_reset(int value);
int FLAG_resetl(long value);
int FLAG_batch();
int FLAG_set_batch(int value);
int FLAG_help();

// Components of a plot, of the resource `draw`.
enum FLAG_part : int {
    part_text = 0, // any of the six labels
    part_up_left,
    part_up_center,
    part_up_right,
    part_low_left,
    part_low_center,
    part_low_right,
    part_data,
    part_map,
    part_grid,
    part_summary,
    part_border,
    part_any // anything at all
};
int FLAG_setplot(int index, int value);
int FLAG_getplot(int index);
int FLAG_resetplot(int value);

// --- Version (version.cpp) --------------------------------------------------

const char* ZYR_version();

// --- Messages (mess.cpp) ----------------------------------------------------

// Level groups of MESS_print.
constexpr unsigned mess_print = 0xF;  // what a user must see
constexpr unsigned mess_error = 0x30; // errors, to standard error
constexpr unsigned mess_warn = 0xC0;  // warnings, to standard error
constexpr unsigned mess_mess = 0xF00; // progress
constexpr unsigned mess_debug = 0xF0000000;

// printf-style output to screen and log. Returns 1 when the text reached the
// screen, 0 when it was filtered or went to a log alone.
[[gnu::format(printf, 2, 3)]] int MESS_print(unsigned level, const char* format, ...);
int MESS_print_prog(const char* title);
int MESS_set_str(const char* text);
int MESS_set(int mode, unsigned mask);
int MESS_check(unsigned level);
int MESS_check_set();
int MESS_set_page(int mode);
int MESS_hold(unsigned level, const char* text);

// How a log is opened and closed, and what stamps its lines with the time.
// Messages are below files and dates, so the program hands these in.
struct MESS_log_tools {
    std::FILE* (*open)(const char* name, const char* mode) = std::fopen;
    int (*close)(std::FILE* stream) = std::fclose;
    char* (*stamp)(char* text) = nullptr; // `text` holds date_label_size characters
};
void MESS_set_log_tools(const MESS_log_tools& tools);
// What is to be done before a message goes to the screen; null: nothing.
void MESS_set_before(void (*before)());

// --- Strings (string.cpp) ---------------------------------------------------

// Splits `text` at `delimiter`; trailing delimiters are dropped. `*array`
// points at `*count` fields in one private copy; free with
// free_parsed_array. Returns 0; -1 with a null array for a null or empty text.
int parse_string(const char* text, char delimiter, int* count, char*** array);
void free_parsed_array(int count, char** array);
int stricmp(const char* a, const char* b);
int strnicmp(const char* a, const char* b, int n);
int searchstr(char** array, int count, const char* text);
int fill_string(char* text, char a, char b);
int strip_string(char* text, char c);
int wstrim_string(char* text);
int trim_string(char* text);
int trim_cr_string(char* text);
int strip_spaces(char* text);
int strip_escape(char* text);
int up_string(char* text);
int low_string(char* text);
int string_is_num(const char* text);
int string_is_alpha(const char* text);
int string_is_blank(const char* text);
int string_is_float(const char* text);
// Writes a contour label with significant digits; `format` holds
// "width.decimals.least decimals". `buffer` holds at least 40 characters.
int set_num(char* buffer, const char* format, float value);

// The one bounded copy: `size` is that of the buffer; always ends in a zero.
// Returns 0; -1 if the text was cut.
int copy_text(char* out, std::size_t size, const char* text);

// --- System services (system.cpp) -------------------------------------------

// What a run may end with besides 0.
enum ZYR_end : int {
    end_batch = 1, // no way into the background
    end_memory = 3,
    end_output = 4,   // no device, or an output that is not whole
    end_loop = 7,     // the loop window does not answer
    end_file = 10,    // no file that can be read
    end_station = 11, // a station that is not known
    end_domain = 43
};
// The one exit of the program.
[[noreturn]] void ZYR_exit(int code);
int ZYR_back_proc();
int ZYR_sleep(float seconds);
void ZYR_init_time();
float ZYR_elapse_time();
// Prompts: print at level 15, read a line, obey "set" and "exit", ask again
// while there is nothing to read. End of input ends the program with 0.
char* ZYR_promptl(const char* prompt, char* buffer);
char* ZYR_prompts(const char* prompt, char* buffer, int length);
float ZYR_promptf(const char* prompt);
int ZYR_promptd(const char* prompt);
int ZYR_set_command(const char* text);

// --- Menus (menu.cpp) -------------------------------------------------------

// One row of a terminal menu. Entry 0 is the way back; a null name ends it.
struct MENU_item {
    const char* name; // a first character '-' marks a separator line
    const char* abbr;
    int index;    // what a choice of this entry returns
    int disp[10]; // disp[menu_num] 1: shown in that menu
};

// `flag` bits: 1 offers the exit, 2 the way back, 4 help.
int MENU_print(const char* title, const MENU_item* menu, int menu_num, int flag);
// Returns the entry's index, 0 way back, -1 exit, missing for any other text.
// `string` (at least 81 characters) takes the abbreviation or what was typed.
int MENU_process(const char* title, const MENU_item* menu, int menu_num, const char* prompt,
                 char* string, int flag);
