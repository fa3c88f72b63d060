// rad_files.h: a run over a list of inputs, one picture each, in one process.
//
// A list is a file, or "-" for standard input: names with a line end or a zero byte
// after each. They are names of plain files and nothing else: no requests, no commands,
// no streams. Every picture starts from the state that the settings leave, and so is
// the one that a run of its own makes. Outputs take their names from the keys of
// image names ("%f", "%i", dates), pages too.
#pragma once

// Whether a list is asked for (--files-from).
bool RAD_wants_list();
// Plots each input of the list by `plot`, which takes the one that the resource
// `filename` has and returns the exit code. With --resume an input is passed over whose
// picture is newer than itself, with --stop the first failure ends the run. Shows its
// progress where standard error is a terminal, and a summary. Returns the highest of
// the exit codes.
int RAD_plot_list(int (*plot)());
