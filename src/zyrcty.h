// zyrcty.h: the station database: a text file of places with identifier,
// position, height and plotting priority. Radar sites are in "rad.cty",
// surface stations in "sao.cty".
#pragma once

#include "zyr.h"

// --- Records ----------------------------------------------------------------

// One line of the station file.
struct CTY_data {
    char name[21] = "";  // place, '_' for a blank
    char state[3] = "";  // state code, "--" if none
    char region[3] = ""; // country code
    char id[10] = "";    // identifier; a first '-' means that there is none
    int prior = 0;       // plotting priority, smaller is more important
    char mos = ' ';      // '*': the station has MOS data
    char ua = ' ';       // '*': the station has upper air data
    float lat = 0;       // degrees, north positive
    float lon = 0;       // degrees, east positive
    float el = 0;        // metres above sea level, missing_f if unknown
    int wmo = 99999;     // WMO block and station number, 99999 means none
    int num = 0;         // extra number
};

// A station of the picture: what is needed to plot on it.
struct CTY_locate {
    char id[11] = ""; // displayed identifier, see CTY_set_id_type
    int wmo = 99999;  // WMO number
    float x = 0;      // plot coordinates
    float y = 0;
    float el = 0; // metres, missing_f if unknown
    int pr = 0;   // priority
};

// What the table of the picture holds, and what CTY_search gives back: the
// station, then the caller's own record or null.
struct stat_FULL_data {
    CTY_data city;
    void* ptr = nullptr;
};
struct stat_XY_data {
    CTY_locate city;
    void* ptr = nullptr;
};

// Kinds of tables that CTY_store builds.
constexpr int cty_full = 1;   // stat_FULL_data; keys: identifier, WMO number
constexpr int cty_xy = 2;     // stat_XY_data; the same keys
constexpr int cty_xy_pos = 3; // stat_XY_data; also the position

// About an open station file.
struct CTY_info {
    char name[file_name_size] = ""; // as it was opened
    int num_stats = 0;              // number of stations, estimated from the size
};

// --- Station file (cty_read.cpp) --------------------------------------------

// One station file is open at a time; opening another closes it.
// CTY_open: the name is taken as it is. f_access 0 reads, 1 writes; f_type is
// carried and not used. Returns the descriptor, or -1.
int CTY_open(const char* filename, int f_access, int f_type);
// These return 0, or -1 for a descriptor that is not the open one.
int CTY_rewind(int city_fd);
int CTY_close(int city_fd);
int CTY_getinfo(int city_fd, CTY_info* info);
// Reads one line: 10 fields, or 9, which leave `num` 0. Returns the number of
// fields read (below cty_fields: a damaged line, the other fields are as at
// start), or -1 at the end of the file or with no file.
int CTY_read(int city_fd, CTY_data* city);
// Number of stations in a file, estimated from its size; at most 4000, which
// is also the answer for a pipe.
int CTY_estimate(const char* filename);

// Fields of a whole line; the tenth may be absent.
constexpr int cty_fields = 9;

// --- Lookups and the table of the picture (cty_tool.cpp) --------------------

// Opens the station file: `city_file`, or "sao.cty" if that is null or empty;
// the resource `city_file` takes the place of both. Files are found along
// `file_path`. *num_stats (may be null) takes the estimated count, at most
// 4000. Returns the descriptor; -1 after the warning "CTY_open_file: Database
// file not found: %s\n", or in silence when the name is "none".
int CTY_open_file(const char* city_file, int* num_stats);
// The warning of it, once for a file: every lookup asks for that.
void CTY_tell_missing(const char* name);

// First station whose identifier, name or five-digit WMO number is `id`, in
// any case. Both return 1, or 0 with the outputs unchanged.
int CTY_get(const char* city_file, const char* id, CTY_data* data);
int CTY_get_loc(const char* city_file, const char* id, float* lat, float* lon);

// The resource `stat_prior`, or 10.
int CTY_get_prior();

// How CTY_store names stations: 0 identifier, or the WMO number without one;
// 1 WMO number, or the identifier without one; 2 identifier, or the
// abbreviation of the WMO number. Returns 0.
int CTY_set_id_type(int type);

// The caller's own record beside each station of the next CTY_store: its size
// in bytes (0: none), and the function that fills it (its first byte is 0
// before). Return 0.
using CTY_enter = int (*)(const CTY_data* city, void* block);
int CTY_data_size(int size);
int CTY_enter_func(CTY_enter func);

// Builds the table of the stations in the picture of `domain` (made the
// current domain) and up to 3 grid lengths about it, with a priority of at
// most `prior` (missing: CTY_get_prior), limited by the selection strings of
// the resource `identifier`. `type` is one of the kinds above. Returns 1; 0
// for another kind, if the file cannot be opened, or without memory.
int CTY_store(const char* city_file, int type, const Domain* domain, int prior);

// Looks `id` up in that table: five digits, or six characters that begin with
// 'b', as a WMO number; five characters that begin with an upper-case letter
// and end in three digits through id_to_wmo; anything else as an identifier.
// `data` (may be null) takes a stat_FULL_data
// for cty_full, else a stat_XY_data. Returns 1 if found, else 0.
int CTY_search(const char* id, void* data);

// Tests a station against selection strings such as "ST=OK:P<3" or
// "RA<100:35.2:-97.4"; all parts of a string must hold. Returns the index of
// the first string that fits, -1 if none does, 1 with an empty list.
int CTY_data_cmp(int numid, const char* const* ids, const CTY_data* data);

// Quick test on the identifier alone: 1 if the list is empty, names `id`, or
// cannot be decided so; else 0.
int CTY_ids_cmp(int numid, const char* const* ids, const char* id);
