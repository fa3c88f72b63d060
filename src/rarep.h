// rarep.h: what radar stations report beside their images: the Radar Coded
// Message of one site, its decoder and its plotter.
#pragma once

#include "zyr.h"

#include <cstdio>

// --- Radar Coded Messages: records --------------------------------------------

constexpr int rcm_cells = 104; // columns and rows of a site's grid
constexpr int rcm_no_report = -1;

constexpr int rcm_max_storms = 40;
constexpr int rcm_max_tvs = 10;
constexpr int rcm_max_mesos = 20;
constexpr int rcm_max_vad = 20;

enum { rcm_mode_precipitation = 1, rcm_mode_clear_air = 2 };
// A station of a summary's list may also be "not available".
enum {
    rcm_status_unavailable = -1,
    rcm_status_normal = 0,
    rcm_status_no_echoes = 1,
    rcm_status_maintenance = 2
};
enum { rcm_hail_unknown = -1, rcm_hail_none = 0, rcm_hail_probable = 1, rcm_hail_positive = 2 };

// A centroid. Places are column and row of the site's grid, the cell's middle
// half a step farther; in a summary's list they are latitude and longitude.
struct RCM_storm {
    char id[3] = "";
    float x = missing_f;
    float y = missing_f;
    int hgt = missing; // hundreds of feet, as the message has it
    int dir = missing; // degrees
    int spd = missing; // knots
    int hail = rcm_hail_none;

    bool operator==(const RCM_storm&) const = default;
};

// A tornado vortex signature or a mesocyclone.
struct RCM_mark {
    char id[3] = "";
    float x = missing_f;
    float y = missing_f;

    bool operator==(const RCM_mark&) const = default;
};

// A level of the winds above the site.
struct RCM_vad {
    int hgt = missing; // hundreds of feet
    int dir = missing; // degrees
    int spd = missing; // knots
    int rms = 0;       // error, knots; 0 for a letter that is none

    bool operator==(const RCM_vad&) const = default;
};

struct RCM_report {
    char id[5] = "";                        // site
    int num = missing;                      // of the site, as the message has it
    float lat = missing_f;                  // site, in the packet form
    float lon = missing_f;                  //
    float elev = missing_f;                 // metres
    Date date;                              // year to minute are set
    int mode = missing;                     // rcm_mode_...
    int status = missing;                   // rcm_status_...
    signed char echo[rcm_cells][rcm_cells]; // level by column and row, north row first
    int maxt = missing;                     // highest top, hundreds of feet
    float maxt_x = missing_f;               // its place
    float maxt_y = missing_f;               //
    RCM_storm storm[rcm_max_storms];        //
    int num_storm = 0;                      //
    RCM_mark tvs[rcm_max_tvs];              //
    int num_tvs = 0;                        //
    RCM_mark meso[rcm_max_mesos];           //
    int num_meso = 0;                       //
    RCM_vad vad[rcm_max_vad];               //
    int num_vad = 0;                        //

    bool operator==(const RCM_report&) const = default;
};

// --- Radar Coded Messages: decoder (rcm_read.cpp) -----------------------------

// Sets everything to unset, with no report in every cell. Returns 0.
int RCM_init(RCM_report* report);
// Decodes the next message of a file, which is left after it. What a message
// lacks or does not say readably stays unset.
// Returns 1; 0 for a message without its text or its part A; -1 at the end of
// the file.
int RCM_read_site(std::FILE* ifile, RCM_report* report);
// Prints a report at a level of messages. Returns 0.
int RCM_print(unsigned level, const RCM_report* report);

// --- Radar Coded Messages: plotter (rcm_plt.cpp) ------------------------------

// Reference date of the file selection; null: the file's date. Returns 0.
int RCM_set_date(const Date* datim);
// The site wanted: the resource `identifier`, else by asking. Returns 0; ends the
// program with 10 after five answers that are no site.
int RCM_prompt_id();
// Returns 1; 0 after a message when the file does not open.
int RCM_open_file(const char* filename);
// These return 1; 0 when no file is open.
int RCM_rewind_file();
int RCM_close_file();
// The whole plot on `domain`, or about the site where its `proj` is not set.
// Returns 0; ends the program with 10 when no file has a message of the site.
int RCM_plot(Domain* domain);
// One frame of the message at hand. Returns 0.
int RCM_plot_frame();
// Its echoes. Returns 0; -1 when they are switched off.
int RCM_plot_summary();
// The site, its rings, and what `variable` asks for: "comp" for centroids,
// mesocyclones and vortices, "watch". Returns 0; -1 when they are switched off.
int RCM_plot_data(const RCM_report* report);
// Shows the file of a minute after the last one, if it has a newer message.
// Returns 0.
int RCM_plot_nextfile();
// Takes the words of `plot_param`. Returns 0.
int RCM_plot_param();
void RCM_callback(int type, const char* str, float x, float y);
// Upper left corner of a site's grid on the polar map of all sites, whose boxes
// are four cells wide. Returns 1; 0 when there is none.
int RCM_grid_corner(float lat, float lon, float* x, float* y);
// Gives a domain the projection and the cells of a site's grid.
void RCM_site_domain(float lat, float lon, Domain* domain);
