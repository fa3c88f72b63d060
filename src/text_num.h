// text_num.h: numbers out of untrusted text. Values are held within the range
// of their type, and a float is always finite.
#pragma once

// The number at the start of a text, 0 if there is none.
int text_int(const char* text);
float text_float(const char* text);

// Cursor forms: on success they store the value, move `*text` behind what was
// read and return true; otherwise nothing changes. Blanks in front of a
// number are passed over.
bool take_int(const char** text, int* value);
bool take_float(const char** text, float* value);
// One given character, in either case.
bool take_char(const char** text, char c);
// Up to `width` hexadecimal (base 16) or decimal digits, no blanks.
bool take_digits(const char** text, int width, int base, int* value);

// A float cut to a whole number; what is not in range counts as the limit,
// what is no number as 0.
int trunc_int(float value);
