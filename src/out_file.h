// out_file.h: the output of a file device: a file, the end of a file, or a
// command; and what the texts of such devices share.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <string>

// The first field of the connection text, else the first of the environment
// variables that is set, else `otherwise`.
void output_name(const char* conn_id, std::initializer_list<const char*> environment,
                 const char* otherwise, char* name, std::size_t size);
// Opens a file, "|command", or standard output; `append` writes behind what a
// file holds. Null on failure. One such output is open at a time.
std::FILE* open_output(const char* name, bool append);
// Returns 0; -1 if something could not be written.
int close_output(std::FILE* file);

// Gives the fields of a text split at commas to `take`, from `first` on; warns of
// each that it refuses. Empty fields, and a null text, say nothing.
void take_options(const char* text, int first, bool (*take)(const char* option));
// Now, as ctime writes it, with its line end.
std::string creation_date();
// One line: control characters in it become blanks, so that no text of a plot is
// taken for something else. Cut at `most` characters, at most 511. Nothing
// without a file.
[[gnu::format(printf, 3, 0)]] void put_line(std::FILE* file, std::size_t most, const char* format,
                                            std::va_list args);
