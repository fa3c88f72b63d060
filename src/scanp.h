// scanp.h: a scanner for column-oriented text with a format language in the
// style of scanf and a cursor that stays in the text from call to call.
//
// A format is a sequence of blanks (one or more white characters, all passed
// over), directives, and other characters, which must be in the text. A
// directive is % [*] [<] [width] [!missing!] conversion:
//   *        recognise but do not store; takes no argument
//   <        the width is a maximum; without it the field is exactly that wide
//   !text!   an empty field with this text in its place has the missing value
//   d D      integer (int*); D inside a column that may hold blanks
//   f F      number (float*); F inside a column that may hold blanks
//   N A      digits, letters (char*, as all that follow)
//   s S      up to white space; up to the width or the end
//   c        characters, exactly 1 without a width; no terminator is stored
//   w W      white space; W stops at a line feed
//   [set]    characters of the set; ^ negates, /A any letter, /N any digit, // a slash
//   (a|b|c)  the first alternative that the text begins with; %<( may fail
//   n        nothing; stores the offset within this scan (int*)
// A text field holds at most 79 characters: pass buffers of 80 bytes.
#pragma once

struct parse_param {
    char* ptr = nullptr; // the text, not copied
    int length = 0;
    int off = 0;      // where the next scan starts
    int len = 0;      // characters consumed by the last scan
    int assigned = 0; // items stored by the last scan
    int matched = 0;  // items recognised by the last scan
    int done = 0;     // 1 if the last scan reached the end of its format
};

// Start on a text, which stays the caller's. A null text counts as empty.
void scanp_set(parse_param* param, char* text);
// One scan from `off`, which stays. Returns `matched`; -1 for an empty format
// or at the end of the text.
int scanp(parse_param* param, const char* format, ...);
// Move on past what the last scan consumed, to an offset, or by a count. The
// cursor never leaves the text. Return the new offset.
int scanp_inc(parse_param* param);
int scanp_off(parse_param* param, int offset);
int scanp_inc_off(parse_param* param, int count);
// The text at the cursor; the character `index` places after it, 0 outside the text.
char* scanp_str(const parse_param* param);
char scanp_char(const parse_param* param, int index);
// Every character `from` after the cursor becomes `to`, in the caller's text.
// Returns how many did.
int scanp_replace(parse_param* param, char from, char to);
