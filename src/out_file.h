// out_file.h: the output of a file device, a text grid or an image: a file, the
// end of a file, or a command; and what the texts of file devices share.
//
// A plain file is written beside its name, and takes the name when it is whole:
// until close_output the old file stays, and it stays for good when the run
// fails, is stopped by a signal or ends without closing. Devices, FIFOs,
// standard output, commands and the ends of files are written straight.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

// The first field of the connection text, else the first of the environment
// variables that is set, else `otherwise`.
void output_name(const char* conn_id, std::initializer_list<const char*> environment,
                 const char* otherwise, char* name, std::size_t size);
// Opens a file, "|command", or standard output; `append` writes after what a
// file holds. Missing directories are made. Null on failure, with a message
// only where the file is an input of the run. At most four are open at a time.
[[nodiscard]] std::FILE* open_output(const char* name, bool append);
// Takes the first of `ends` that a plain file ends with off it, and returns that;
// empty if it ends with none. "~" in the name is resolved.
[[nodiscard]] std::string_view take_end_off(const char* name,
                                            std::initializer_list<std::string_view> ends);
// Completes an output. Returns 0; -1 if something could not be written or the
// command failed; 1 if the output was given up. The old file stays but for 0.
[[nodiscard]] int close_output(std::FILE* file);
// From now on no output takes the name of one of another picture of the run: to be
// called before each picture. open_output then gives null after a message.
void claim_outputs();
// Takes a name for the picture under way, as open_output does. False after a message.
[[nodiscard]] bool claim_output(const char* name);
// Closes an output that is not whole: the old file stays.
void discard_output(std::FILE* file);
// Names the output that could not be opened or written last, and why: the line
// after a device's own. Nothing where that was said already.
void explain_output(const char* routine);
// A run that fails keeps nothing of what is open: close_output then gives 1.
void give_up_outputs();

// An output that is discarded unless it is released to close_output.
struct DiscardOutput {
    void operator()(std::FILE* file) const { discard_output(file); }
};
using OutputPtr = std::unique_ptr<std::FILE, DiscardOutput>;

// Gives the fields of a text split at commas to `take`, from `first` on; warns of
// each that it refuses. Empty fields, and a null text, say nothing.
void take_options(const char* text, int first, bool (*take)(const char* option));
// When an output is made: now, or what the variable SOURCE_DATE_EPOCH says, so that
// the same picture has the same bytes. creation_date: as ctime writes it, with its line
// end.
std::time_t creation_time();
std::string creation_date();
// One line: control characters in it become blanks, so that no text of a plot is
// taken for something else. Cut at `most` characters, at most 511. Nothing
// without a file.
[[gnu::format(printf, 3, 0)]] void put_line(std::FILE* file, std::size_t most, const char* format,
                                            std::va_list args);
