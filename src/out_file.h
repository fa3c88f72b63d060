// out_file.h: the output of a file device: a file, the end of a file, or a
// command.
#pragma once

#include <cstddef>
#include <cstdio>
#include <initializer_list>

// The first field of the connection text, else the first of the environment
// variables that is set, else `otherwise`.
void output_name(const char* conn_id, std::initializer_list<const char*> environment,
                 const char* otherwise, char* name, std::size_t size);
// Opens a file, "|command", or standard output; `append` writes behind what a
// file holds. Null on failure. One such output is open at a time.
std::FILE* open_output(const char* name, bool append);
// Returns 0; -1 if something could not be written.
int close_output(std::FILE* file);
