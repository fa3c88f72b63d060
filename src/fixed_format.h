// fixed_format.h: the printf conversions "%.0f", "%3.2f" and "%f", which write every
// coordinate of a picture, some ten times as fast.
#pragma once

// Room that any float needs: sign, 39 digits, zero.
constexpr int fixed0_size = 48;

// Writes `value` without decimals, as format_fixed2 does with two: "-0" is one of them.
char* format_fixed0(char* out, float value);

// Room that any float needs: sign, 39 digits, point, 2 decimals.
constexpr int fixed2_size = 48;

// Writes `value` with two decimals, rounded as printf rounds (exact value,
// ties to the even digit), without a closing zero. `out` has room for
// fixed2_size characters. Returns the end of the text. Every float gives the
// bytes of snprintf, infinity and NaN included.
char* format_fixed2(char* out, float value);

// Room that any float needs: sign, 39 digits, point, 6 decimals, zero.
constexpr int fixed6_size = 48;

// The same for "%f", six decimals.
char* format_fixed6(char* out, float value);
