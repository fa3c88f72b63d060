// zyrrad.h: radar summaries: a national grid of echo levels and a list of
// station reports, made from bulletins of manually digitised radar (MDR) or from
// Radar Coded Messages (RCM). Their files (rad_read.cpp) and their plot
// (rad_plt.cpp).
#pragma once

#include "rarep.h"
#include "zyr.h"

#include <cstddef>

struct CTY_locate;
struct RAW_data;
struct VAR_data;

// --- Files (rad_read.cpp) -----------------------------------------------------

// Types of files.
constexpr int rad_type_raw = 1;      // bulletins as they came; the grid alone is read
constexpr int rad_type_text = 2;     // a date line, then bulletins
constexpr int rad_type_zyrrad = 3;   // the same after a line "ZYRRAD"
constexpr int rad_type_station = 11; // netCDF with a dimension "station"
constexpr int rad_type_report = 12;  // netCDF with a dimension "report"

constexpr int rad_columns = 480; // of the grid's array
constexpr int rad_rows = 360;

// Kinds of summaries.
constexpr int rad_mdr = 1;
constexpr int rad_rcm = 2;

struct RAD_info {
    char datim[40] = "";                        // date label of the file
    char* cmdline = nullptr;                    // not read
    Date date;                                  //
    int type = missing;                         // rad_mdr, rad_rcm
    signed char summary[rad_columns][rad_rows]; // level by column and row, north row first
};

// Kind of radar of an MDR report.
enum {
    RA_STANDARD,
    RA_PPINE,
    RA_PPIOM,
    RA_PPINA,
    RA_ROBEPS,
    RA_ARNO,
    RA_RHINO,
    RA_DVIPNO,
    RA_CP,
    RA_STC,
    RA_MAG,
    RA_NS
};
// Precipitation: a kind in the low bits, and what is added to it.
enum {
    RA_RAIN = 1,
    RA_HAIL = 2,
    RA_SNOW = 3,
    RA_ICE_PELLETS = 4,
    RA_DRIZZLE = 5,
    RA_SHOWER = 32,
    RA_THUNDERSTORM = 64,
    RA_FREEZING = 128
};
enum { RA_INCREASING = 1, RA_DECREASING, RA_NO_CHANGE, RA_NEW };
// What a report is about.
enum {
    RA_NO_OBJ,
    RA_AREA,
    RA_LINE,
    RA_CELL,
    RA_LAYER,
    RA_SPIRAL_BAND,
    RA_FINE_LINE,
    RA_EYE,
    RA_CENTER,
    RA_MAXTOP,
    RA_UMAXTOP,
    RA_TOP,
    RA_HOOK,
    RA_HAIL_OBJ,
    RA_LEWP,
    RA_VAULT,
    RA_BWER = RA_VAULT,
    RA_BASE,
    RA_MALF,
    RA_PALF,
    RA_MLTLVL
};

constexpr int mdr_max_prec = 3;
constexpr int mdr_max_loc = 5;
constexpr int mdr_max_move = 3;

struct MDR_prec {
    int area_cov = 0;   // tenths of the area
    char type[5] = " "; // letters, a blank for none
    int intens = 0;     // 1 light to 6 extreme, 9 unknown, 0 not said
};
struct MDR_loc {
    int dir = missing; // degrees
    int rad = missing; // nautical miles
};
struct MDR_move {
    char type = ' ';   // A area, L line, C cell
    int dir = missing; // degrees
    int spd = missing; // knots
};
struct MDR_tops {
    int h = missing; // hundreds of feet
    int dir = missing;
    int rad = missing; // nautical miles
};

// A station's report. What it does not say is empty or unset.
struct MDR_report {
    char id[11] = "";
    char region[11] = "";
    float x = missing_f; // place on the grid, in netCDF files of type 11
    float y = missing_f;
    int type = missing;   // RA_STANDARD ...
    int time = missing;   // of the report, as the file has it
    char config[10] = ""; // AREA, LINE, CELL; NA, NE, OM without echoes
    MDR_prec prec[mdr_max_prec];
    int numprec = 0; // in use, in netCDF files
    char trend[4] = " ";
    MDR_loc loc[mdr_max_loc];
    MDR_move move[mdr_max_move];
    MDR_tops tops[1];
    char rem[20] = ""; // remarks; not read
};

// Type of a file; -1 when it does not open or is none.
int RAD_chktype(const char* filename);
// Opens a file to be read.
//   f_access  0: summaries are not written
//   f_type    in: 0 to be found, or the type; out: the type
// Returns a number for the other calls; -1 on failure, with a message when the
// file is one but cannot be read.
int RAD_open(const char* filename, int f_access, int* f_type);
// What the file that RAD_open refused last begins with goes to a message.
void RAD_tell_kind(const char* routine);
// Reads date and grid, which are emptied first. Returns 0; -1 when there is no grid.
int RAD_getinfo(int cvt_fd, RAD_info* info);
// To the first report. Returns 0, -1 for no open file.
int RAD_rewind(int cvt_fd);
int RAD_close(int cvt_fd);
// Reads report number *statnum (from 0; netCDF: -1 the one after the last
// read). rep_type 1: the station's name alone. Returns 0; -1 after the last one
// and for files without reports of this kind.
int MDR_read(int cvt_fd, MDR_report* report, int rep_type, const int* statnum);
// Reads the next record of a list. Places are latitude (x) and longitude (y).
// Returns 1; -1 after the last one.
int RCM_read(int cvt_fd, RCM_report* report, int rep_type, const int* statnum);

// --- Plot (rad_plt.cpp) -------------------------------------------------------

// Reference date of the file selection; null: the file's date. Returns 0.
int RAD_set_date(const Date* datim);
// Opens a file and reads its grid. Returns 1; 0 after a message.
int RAD_open_file(const char* filename);
int RAD_rewind_file();
int RAD_close_file();
// The whole plot on a domain.
int RAD_plot(Domain* domain);
// A frame of the open file.
int RAD_plot_frame();
// 1: the variables are asked for anew. Returns 0.
int RAD_set_prompt_variable(int val);
// Selects the variables: the resource `variable`, else by a menu. To be called in
// a loop; plot while the result is not 0. The end of the input ends the program.
int RAD_prompt_variable();
// The grid as coloured areas, with the key. Returns 0; -1 when it is switched off.
int RAD_plot_summary();
// The reports. Returns 0; -1 when they are switched off.
int RAD_plot_data();
// The next report and its station on the plot. Returns 1; 0 for a station that
// is not in the picture, -1 after the last one.
int MDR_read_report(MDR_report* report, CTY_locate* data);
int RCM_read_report(RCM_report* report, CTY_locate* data);
// What a variable shows of a report: values or text, and the place where it
// differs from the station's. Returns 1; 0 for an unknown name.
int MDR_get_data(const MDR_report* report, const VAR_data* var, RAW_data* data);
// The same for item `ind` of a variable. Returns 0, too, after the last item.
int RCM_get_data(const RCM_report* report, int ind, const VAR_data* var, RAW_data* data);
int RAD_draw_label();
int RAD_plot_nextfile();
int RAD_plot_param();
void RAD_callback(int type, const char* str, float x, float y);
