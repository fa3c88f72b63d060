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
};

// A tornado vortex signature or a mesocyclone.
struct RCM_mark {
    char id[3] = "";
    float x = missing_f;
    float y = missing_f;
};

// A level of the winds above the site.
struct RCM_vad {
    int hgt = missing; // hundreds of feet
    int dir = missing; // degrees
    int spd = missing; // knots
    int rms = 0;       // error, knots; 0 for a letter that is none
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
