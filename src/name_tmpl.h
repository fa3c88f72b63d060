// name_tmpl.h: the template language of file names, as functions of their
// arguments. A template is literal text with directives (% [number] letter):
//   Y y m b d j h n   date fields: year, two digits of it, month, its letters,
//                     day, day of the year, hour, minute; a number rounds the
//                     value down to its multiples
//   e                 the extension text
//   C D F R G W I T M S   a path resource, "." if it is absent
//   {name}            the value of a resource
//   %                 a "%"
//   *                 any text, or as many characters as the number says: such a
//                     template is looked up (name_find.h), and there a key or an
//                     extension that is not set is any text, too
//   any other         a key; a number takes its first characters
// Text in braces is put out without being compared when a typed name is
// matched; a blank is built as "_"; "*" ends the matching of a typed name.
#pragma once

#include "zyr.h"

#include <string>

struct NameKeys {
    char text[256][30] = {};        // by the key character
    char file[file_name_size] = ""; // of %f, unless text['f'] is set: an input's name is long
};

// What a template draws on. All pointers are the caller's and never null.
struct NameSource {
    const char* conv = ""; // the template
    const NameKeys* keys = nullptr;
    const char* ext = "";  // text of %e
    const char* path = ""; // if not empty: stands for every path when building
    // Date parts fixed by the user. A negative day, hour or minute is a step:
    // day -N; hour or minute -(100 a + b): multiples of b, and a more.
    Date set;
    const char* (*resource)(const char* name) = nullptr; // a setting, or null
    bool glob = false; // build a pattern of glob(3), with its own signs quoted
};

struct NameResult {
    char name[file_name_size] = "";
    bool cut = false; // the name did not fit and was cut
    char ext[20] = "";
    Date date;              // of the name
    int late_off = missing; // smallest time step, seconds
};

// What a typed name means: the full name, its date (starting from `set`) and
// the extension, as far as it fits the template; the rest as typed.
NameResult match_name(const NameSource& source, const char* typed);
// The name for a date. Fields of `set` go first; unknown ones give zeros. The
// result's date is `start` with the fields that the template holds.
NameResult build_name(const NameSource& source, const Date& date, const Date& start);
// Whether a template holds "%*", so that its names are looked up.
bool name_is_open(const char* conv);
// A pattern of shell words for all names of the template: only its globs are
// outside quotes.
std::string list_pattern(const NameSource& source);
// The part of a full name in front of as many "/" (and a ":" at place 1) as
// the template holds; empty if the name has fewer, or the template none.
std::string path_of_name(const char* conv, const char* name);
