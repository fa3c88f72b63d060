// tools.h: reading lines and integers, byte order, small arithmetic and
// station numbers.
#pragma once

#include <cstdio>

// --- Lines of a stream -------------------------------------------------------

// Longest line that fgetline gives.
constexpr int line_length = 160;

// A line without its end. `buffer` holds line_length + 1 bytes; the rest of a
// longer line is passed over. Returns the length, -1 at the end of the stream.
int fgetline(std::FILE* stream, char* buffer);
// The same with a limit of `n` characters: `buffer` holds n + 1 bytes.
int fgetnline(std::FILE* stream, char* buffer, int n);
// The same, returning 1, or 0 for an empty line, or -1 at the end.
int fgetstring(std::FILE* stream, char* buffer, int n);
// Passes the rest of a line. Returns 0, -1 at the end of the stream.
int fskipline(std::FILE* stream);

// --- Byte order --------------------------------------------------------------

// Says what a file holds: 1 big-endian, 2 little-endian, 0 always reverse, -1
// never. Returns whether items will be reversed.
int swap_setup(int order);
// Reverse items of four (long) or two (short) bytes in place, if need be.
// Return 0; -1 if they stay as they are.
int swap_long(void* data);
int swap_short(void* data);
int swap_longs(void* data, int count);
int swap_shorts(void* data, int count);
// Read one item and bring it into the order of the host. Return the items read, 1 or 0.
int fread_long_swap(void* data, std::FILE* stream);
int fread_short_swap(void* data, std::FILE* stream);

// --- Arithmetic --------------------------------------------------------------

// A float packed with two significant digits: hundreds hold the decimal
// exponent (10 more if it is negative), the rest the mantissa, 10 to 99. The
// code of a negative value is negative; 0 gives 0.
int float2int(float value);
// The straight line through (x1, y1) and (x2, y2) at x; y1 if x1 equals x2.
float linear_interp(float x, float x1, float x2, float y1, float y2);
// Great circle distance in km between two points in degrees (haversine
// formula on a sphere of radius 6371.2 km).
float calc_earth_dist(float lat1, float lon1, float lat2, float lon2);

// --- Station numbers ---------------------------------------------------------

// Identifier of a WMO block and station number: prefix letters of the range
// that holds it and its last digits; five digits where no range does. `buffer`
// holds 12 bytes. Returns `buffer`.
char* wmo_to_id(char* buffer, int number);
// The number of an identifier: five digits, or a letter pair with three
// digits. Returns 1; 0, with `*number` -1 or 99999, if it is none. Several
// prefixes share a block, so the way back is as exact as the table.
int id_to_wmo(const char* identifier, int* number);
