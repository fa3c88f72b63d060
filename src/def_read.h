// def_read.h: defaults files. A file is a list of "key value" lines with
// conditional blocks; a key is a pattern against program and resource name.
#pragma once

#include "zyrresrc.h"

// A line of a defaults file and its closing zero; the size of a key buffer.
constexpr std::size_t def_line_size = 250;

// Opens a defaults file in place of any open one. Null or empty: ".zyrdef".
// A directory: the first that exists in it of "zyr.cfg", ".zyrdef", "Zyr.res".
// Returns 0; -1 if it does not open.
int DEF_open(const char* name);
int DEF_close();
// Name of the open file.
const char* DEF_file();

// The next live setting: `key` (def_line_size) in lower case without a closing
// ":", `value` (def_value_size; a longer one is cut, with a warning).
// Returns 1; -1 at the end of the file, with no file open or with a null key.
int DEF_get(char* key, char* value);

// Takes the program name (RES_get_progname) into the full names of resources.
int DEF_prog();
// A title in place of the program name; with a leading "+", after it.
int DEF_name(const char* text);
int DEF_clr_tag();
// Defines a tag for IF and ELIF. Returns 0; -1 at the limit of 10.
int DEF_tag(const char* text);

// 1 if "program.resource" fits the pattern, in which `*` is any run of characters.
int DEF_cmp(const char* resource, const char* pattern);
// 1 if the pattern's last part, taken as a resource name, fits the pattern.
int DEF_valid(const char* pattern);
// The text after the last "." or `*`; `out` (res_name_size) gets 49 characters
// of it, with a warning if that cuts it. Returns 1; 0 if there is none.
int DEF_parse_name(const char* pattern, char* out);

// Looks for a resource in the environment: "zyr" program "." resource, the
// row's own variable, "zyr" resource. `value` has def_value_size characters.
// Returns 1 if there is one.
int DEF_env(const char* resource, const char* env, char* value);

// Directory (with its "/") of the last "zyr.cfg" that was opened, or empty.
const char* DEF_cfg_dir();
