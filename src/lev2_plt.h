// lev2_plt.h: the Level II plotter: one scan of one moment for each selected
// volume. The reader is in lev2.h.
#pragma once

#include "zyr.h"

// Takes the reference date of the file selection; null: the file's date.
int LEV2_set_date(const Date* datim);
// Draws the selected volumes; called again for a zoom or a resize. A domain
// whose `proj` is not set takes that of the first volume. Returns 0; ends the
// program with 10 when a single file does not open.
int LEV2_plot(Domain* domain);
// One frame of the open volume, whose header was read.
int LEV2_plot_frame();
// Shows the newest file when there is a newer one than on show.
int LEV2_plot_nextfile();
// The moment and scan that `variable` names, with site mark, range rings and
// labels. A picture that stays empty says why in a warning. Returns 0.
int LEV2_plot_summary();
// Decodes this plotter's words of `plot_param`.
int LEV2_plot_param();
void LEV2_callback(int type, const char* str, float x, float y);
// Begins a new line of messages.
int LEV2_print_info();
