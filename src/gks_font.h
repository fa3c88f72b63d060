// gks_font.h: a stroke font in memory, and its file.
//
// The file is plain text: whitespace-separated numbers. If the first is 255,
// only numbers follow; otherwise it and the word after it are passed over,
// and a word (a label) is after every 255 of the stroke data.
//
//   stroke data  byte values: pairs (x, y) and marks. First byte of a pair:
//                0 to 127 draw to (x, y); 128 to 253 move to (value - 128, y);
//                255 end of a glyph, 254 end of the data, both without y
//   index        256 numbers: for each character code the place of its first
//                pair in the stored bytes, -1 for none
//
// Units: baseline 35, capitals to 140, cell 0 to 160.
#pragma once

#include <array>
#include <string_view>

struct Gfont {
    std::array<unsigned char, 15000> db{};    // strokes
    int size = 0;                             // bytes of `db` in use
    std::array<int, 256> index = no_glyphs(); // first pair of a code, -1 none
    std::array<unsigned char, 256> width{};   // largest x of a code, 40 for a blank

    static constexpr std::array<int, 256> no_glyphs() noexcept {
        std::array<int, 256> none{};
        none.fill(-1);
        return none;
    }
};

// A font without glyphs.
void gclear_font(Gfont* font);

// Reads a font file's text. Returns 0; -1 for a file that is no font, is cut
// short or holds more than 15000 bytes of strokes: the font then has no glyphs.
int gparse_font(std::string_view text, Gfont* font);

// One step through a glyph. `*place` starts at an index and moves on.
struct Gstroke {
    int x, y;
    bool down; // draw, not move
};
// False at the end of the glyph.
bool gnext_stroke(const Gfont& font, int* place, Gstroke* stroke);
