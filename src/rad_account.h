// rad_account.h: what a run says of its pictures: a line of JSON each, as
// doc/report.schema.json has it, and whether all of them were empty.
//
// A plot of an input begins with RAD_begin_account, and ends with RAD_end_account, or,
// where it ends early, with RAD_close_account.
#pragma once

// Opens what --report names: a file, or "-" for standard output. False after a message.
// Without that option nothing is written.
bool RAD_open_account();
// Whether the account needs the end of the plot: lines are written, or "empty=" is set.
bool RAD_keeps_account();
// A picture of an input begins: its tally is empty.
void RAD_begin_account(const char* input);
// It is drawn, or has failed with the code. Its line is written once the output is.
void RAD_end_account(int code);
// The plot is over, and with it its pages. Writes what is left, with the code of the
// plot: a line of the input if no picture began.
void RAD_close_account(const char* input, int code);
// The pictures of the run, and those of them without any figure of data.
long RAD_num_pictures();
long RAD_num_empty();
// The exit code of a run: the one that "empty=" gives where all pictures are empty.
int RAD_exit_code(int code);
