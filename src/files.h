// files.h: file access, paths, naming conventions, and the selection of files
// by name, date and age.
//
// Order of a run: FILE_set_name, FILE_get_file (which settles the file name,
// its date and the time step), the reader's set-date routine, FILE_set_date,
// FILE_first, then FILE_get_next until it gives 0.
//
// Every buffer for a file name holds file_name_size bytes. A name that would
// be longer is cut, with a warning.
#pragma once

#include "zyr.h"

#include <cstdio>
#include <memory>

// --- Files and paths (files.cpp) ---------------------------------------------

// The empty text, "-", "std" and "stdn" (any case) stand for a standard stream.
int FILE_is_stdio(const char* name);
// 1 if the first character is "/", "." or "~".
int FILE_fullpath(const char* name);
// These expand a leading "~".
int FILE_exist(const char* name);  // 1 if it can be found, or is a standard stream
int FILE_is_dir(const char* name); // 1 for a directory
long FILE_size(const char* name);  // bytes, -1 if there is no such file
int FILE_delete(const char* name); // 0, or -1
// 1 for a file that FILE_open has opened for reading: no output may replace it.
int FILE_is_input(const char* name);
// A file that was made just now is none, though it may bear the number of one
// that is gone.
void FILE_note_new(std::FILE* file);
// Opens a file; a standard stream name gives standard input or output, and a
// name that begins with "|" a pipe to the rest of it. For writing, missing
// directories are made first. Null on failure: the caller words the error.
[[nodiscard]] std::FILE* FILE_open(const char* name, const char* mode);
// Closes what FILE_open gave: pipes are waited for, standard streams stay
// open. Returns 0, or -1 (a pipe: the status of its command).
int FILE_close(std::FILE* stream);

struct FILE_closer {
    void operator()(std::FILE* stream) const { FILE_close(stream); }
};
using FILE_ptr = std::unique_ptr<std::FILE, FILE_closer>;

// Opens a text to be read, one that a user may name: it ends after 64 MB, with a
// warning, so that a device or a pipe without end does, too. The stream may have
// no descriptor.
std::FILE* FILE_open_text(const char* name);
// The same for what is no text: a plain file is read whole, whatever its size.
std::FILE* FILE_open_bounded(const char* name);

// From now on what these two read from plain files stays in memory, so that a run of
// many pictures reads maps, fonts and tables once. A file that has changed is read again.
void FILE_keep_read();

// Appends "/" unless the text is empty or ends with one.
char* FILE_add_path_delim(char* path);
// `file` after `path` (null: none); `file` alone if it is a standard stream
// or a full path. `out` may be `file`. Returns `out`.
char* FILE_add_path(const char* path, const char* file, char* out);
// After the message that a file does not open: says in a line of its own that it is
// a directory or not to be read, or names the one beside it that is spelt nearest.
// Nothing where none is near.
void FILE_tell_nearest(const char* routine, const char* path, const char* file);
// Replaces a leading "~" or "~user" by that home directory. `out` may be `in`.
char* FILE_add_user_path(const char* in, char* out);
// Makes the directories of a path, all parts but the last `drop`. Returns 1 if
// the parent was there, else 0.
int FILE_make_dir(const char* path, int drop);
// What to do about an output file that may exist: 0 refused, 1 overwrite, 2
// append, 3 use. Asks the user unless `file_param` or batch mode answers; mode
// 2 offers to append, mode 1 does not, any other is refused.
int FILE_overwrite(const char* name, int mode);

// --- Naming conventions (files.cpp) -------------------------------------------

// Takes the convention of an input kind from the naming-convention file. Key
// suffixes (":x=text") set template keys; "@template" is its own template.
// Returns 1; 0 for "none" and for a kind that has to be its own template.
int FILE_set_name(const char* kind);
// The same for a kind that may be a file's own name: no line that is but its beginning
// fits it.
int FILE_set_whole_name(const char* kind);
// One level of saved convention and file name.
void FILE_save_name_conv();
void FILE_restore_name_conv();
void FILE_set_late_off(int seconds);
int FILE_get_late_off(); // smallest time step of the template, or missing
int FILE_get_offset();   // the same, 100000 if there is none
void FILE_set_min_size(int bytes);
// Template keys: at most 29 characters (the buffer holds 30), blanks as "_".
void FILE_set_key(char c, const char* text);
char* FILE_get_key(char c, char* buffer);
// The text of %f where the user set none: an input's name, longer than a key's.
void FILE_set_file_key(const char* text);
// The current file name, as one the user gave.
void FILE_set_filename(const char* text);
// Copies it, if a buffer is given, and returns it.
const char* FILE_get_filename(char* buffer);
void FILE_set_time(const Date* date); // clock values and steps of `hour`
void FILE_get_date(Date* date);       // date of the current file
void FILE_put_date(const Date* date); // puts it back after names of other files

// --- Selection (file_sel.cpp) ------------------------------------------------

// Settles the first file: from `filename`, from `current`, in batch mode the
// latest, else by asking. Returns 1 if it exists, 0 if a given name does not;
// ends the program with 10 when none can be had. `outfile` may be null.
int FILE_get_file(const char* prompt, char* outfile);
// How typed names are read: 0 a date after "#", 1 extra text after "#", "-",
// "+" or ":" (FILE_get_ext_info, which begins with that mark).
void FILE_set_type(int type);
const char* FILE_get_ext_info();
// Adds, to the message about a data file that does not open, why: a directory, no
// permission, extra text that was cut off what the user typed, the name of an
// output, another spelling.
void FILE_explain(const char* name);
// A typed name or request to a full name; takes the file date from it. Returns 0.
int FILE_set_file(const char* file, char* out_file);
// The name of a date (null: of the current file date). Returns 0; 1 when there
// was nothing to build.
int FILE_set_date(const Date* date, char* out_file);
// The same by the header template of the convention; -1, with an empty text,
// if it has none.
int FILE_set_header_date(const Date* date, char* out_file);
// A request ("[#date][offset][la[#tries]][offset]"; null: "la") to a name.
// Returns its time, seconds since 1970, rounded down to the time step.
long FILE_set_current(const char* request, char* filename);
// What of a request is none, from there on; empty if all of it can be read.
const char* FILE_request_rest(const char* request);
// Whether a typed name is a request: it begins with "la" or "cu", or "#".
bool FILE_is_request(const char* name);
// The name of a date plus seconds. Returns offset / step.
int FILE_set_date_off(const Date* date, int offset, char* out_file);
// Shows the files of the convention on the terminal.
void FILE_list_file();

// Sequence of files for a plotter.
int FILE_num_hour(); // seconds of `num_hour`, negative back in time
int FILE_get_skip(); // seconds between frames that `num_hour` wants
void FILE_first(const Date* date);
int FILE_get_next(char* file); // 1 and a name; 0 at the end
int FILE_is_span();            // 1 if the names are those of a span of hours
int FILE_get_num_file();       // not 0 for several frames
// Move one step from the start of the run and give that name. Return 1.
int FILE_next_file(char* file);
int FILE_prev_file(char* file);
int FILE_get_nsecs(); // offset of the next frame from the first date
void FILE_set_nsecs(int seconds);
