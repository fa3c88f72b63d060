// nids_plt.h: the NIDS plotter: one frame for each selected product.
#pragma once

#include "zyr.h"

#include <cstdio>

struct NIDS_info;

// Takes the reference date of the file selection; null: the file's date.
int NIDS_set_date(const Date* datim);
// Draws the selected products; called again for a zoom or a resize. A domain
// whose `proj` is not set takes that of the first product. Returns 0; ends the
// program with 10 when a single file does not open.
int NIDS_plot(Domain* domain);
// One frame of the open product.
int NIDS_plot_frame();
// Shows the newest file when there is a newer one than on show.
int NIDS_plot_nextfile();
// Colours and symbology block of the open product.
int NIDS_plot_summary();
// Site, range rings. Returns 0; -1 when the component "data" is off.
int NIDS_plot_data();
// Decodes this plotter's words of `plot_param`.
int NIDS_plot_param();
// 1 when `out_file` asks for a text grid file; its convention is then set.
int NIDS_grd_out_file();
void NIDS_callback(int type, const char* str, float x, float y);
// On the event "v-Alt" reports position, distance from the site (degrees) and
// beam height at the antenna's elevation (degrees). Returns 0, otherwise -1.
int NIDS_print_loc_elev(const char* str, float x, float y, float slat, float slon, float selev);

// The product file. NIDS_open_file returns 1; 0 with a message when the file
// does not open or is no product. The others return 0 with no file open.
int NIDS_open_file(const char* filename);
int NIDS_rewind_file();
int NIDS_close_file();
int NIDS_print_info();
