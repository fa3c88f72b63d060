// text_num.h: numbers out of untrusted text. Values are held within the range
// of their type, and a float is always finite.
//
// Three kinds of reader, all of which move past what they took:
//   take_...   a field of a setting or a text file: blanks before it are passed over,
//              a sign may come first, "0x1p3" and "1e3" are floats
//   take_plain the same without blanks and without "+", for forms that are fixed
//   take_digits, scan_int  a field of a given width
#pragma once

#include <charconv>
#include <cstdint>
#include <string_view>

// The number at the start of a text, 0 if there is none.
int text_int(const char* text);
float text_float(const char* text);

// Whether the whole of a text is a finite number.
bool is_number(const char* text);

// Cursor forms: on success they store the value, move `*text` past what was read and
// return true; otherwise nothing changes.
bool take_int(const char** text, int* value);
bool take_long(const char** text, long* value, int base = 10);
bool take_float(const char** text, float* value);
// What the library reads as a number, "inf" and "nan" among it, and infinity where it is
// out of range: for callers that look at what they get.
bool take_real(const char** text, float* value);
bool take_real(const char** text, double* value);
// A number out of range is none, nor is a float that is not finite. "inf" and "nan" are
// no numbers either.
bool take_plain(std::string_view* text, int* value);
bool take_plain(std::string_view* text, std::int64_t* value);
bool take_plain(std::string_view* text, float* value,
                std::chars_format format = std::chars_format::general);
// One given character, in either case.
bool take_char(const char** text, char c);
// Up to `width` hexadecimal (base 16) or decimal digits, no blanks.
bool take_digits(const char** text, int width, int base, int* value);
// Reads an integer as scanf's "%d" does: blanks, then a sign and digits, of these at most
// `width` characters. Returns 1; 0, with nothing changed, when no digit is there.
int scan_int(const char** text, int width, int* value);
constexpr int any_width = 999;

// A float cut to a whole number; what is not in range counts as the limit,
// what is no number as 0.
int trunc_int(float value);
