// wx_symb.h: small weather pictures: the symbols of a symbol file, by name, and
// the cloud cover of a station plot. They are drawn in world coordinates, in the
// line and fill attributes in force.
//
// A symbol file is a list of words: a name of up to 14 characters; paths, each
// of up to 20 points "x,y" and a word: one that begins with "F" fills the path,
// any other draws it; and a "$" that closes the entry. Coordinates are fractions
// of the symbol's size from its lower left corner. At most 100 entries.
#pragma once

// Chooses the symbol file, found along `file_path`; null: "wx.smb".
// Returns 0; -1 if it is chosen already or cannot be opened, with a warning the
// first time.
int WX_symb_file(const char* file);

// Draws the first symbol whose whole name is how the text begins, in any case,
// aligned to the point as texts are (GPH_text_align).
//   size  world units
// Returns 1; 0 with nothing drawn.
int WX_symb(float x, float y, const char* str, float size);

// Draws a cloud cover: "0" to "9" eighths, or its letter.
//   rad  radius, world units
int WX_cloud(float x_center, float y_center, float rad, char cover);
