// cdf.h: the little that is asked of netCDF files, classic and netCDF-4, through
// libnetcdf. The library is loaded when the first file is opened, so that a run
// that meets none starts without it.
#pragma once

#include <cstddef>
#include <cstdio>

constexpr int cdf_max_dims = 10; // of a variable

// Opens a file that is at its start; it is read whole, 16 MB at most, and
// may come unpacked or through a pipe. `name` is for messages. The file becomes the current
// one. Returns its number; -1 after a message when there is no library or the
// file is damaged.
int CDF_open(std::FILE* file, const char* name);
int CDF_close(int fd);   // 0, -1 for a file that is not open
void CDF_set_fd(int fd); // makes a file the current one

// 1: what the library refuses is printed as a warning; otherwise it is not.
void CDF_print_errors(int val);

// Numbers of a dimension and a variable of the current file; -1: there is none.
int CDF_get_dim(const char* name);
int CDF_get_var(const char* name);
// Size of a dimension; -1 asks for the record dimension, of which no more is
// told than the file has room for. Returns -1 without such a dimension.
long CDF_get_dim_size(int dim);
// The dimensions of a variable, outermost first: cdf_max_dims numbers.
// Returns how many; -1 for no variable or too many.
int CDF_get_var_dims(int var, int* dims);
// A text attribute of the file. Returns 0, -1 with an empty text.
int CDF_get_glob_att(const char* name, char* text, std::size_t size);

// Where the next reading starts along each dimension of a variable and how far
// it goes: `ndim` values of type int. What is not named starts at 0 and is 1 long.
void CDF_set_pos(int ndim, ...);
void CDF_set_range(int ndim, ...);

// These read from that place and return 0; -1 with the output unchanged, but an
// empty text, where there is no such value. A range ends with its dimension.
int CDF_get_str(int var, char* text, std::size_t size);
int CDF_get_byte(int var, signed char* value);
int CDF_get_number(int var, float* value);
// Fills `values`, which holds `size` of them, in the variable's order.
int CDF_get_byte_array(int var, signed char* values, std::size_t size);
