// var_tool.h: the time and level of a variable as integer codes: from the
// short words of a variable text, and back to label text.
//
// Time code: kind * 1000000 + start * 1000 + end, in hours; a plain forecast
// hour is the end alone. Kinds: 2 range, 3 average, 4 accumulation, 5
// difference, 6 maximum, 7 minimum, 13 and 23 averages, 18 variance.
// Level code: a level type as in GRIB edition 1 and its value; the value of a
// layer packs both ends as one * 1000 + other.
#pragma once

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

// Name of the model or network that menu conditions test, at most 19
// characters.
int VAR_set_model_str(const char* text);
const char* VAR_get_model_str();
