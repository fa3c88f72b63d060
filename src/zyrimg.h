// zyrimg.h: pictures in memory and as files. Screen captures go out through an
// IMG_report and image files come in through one. Calls return 1, or 0 after a
// message (some failures of PNG files are silent: the caller names the file). A
// reader clears the record first; one that fails may leave pixels and colours in
// it. A first line that begins "** " is passed over. Writers leave the record as
// it is.
#pragma once

#include "zyr.h"

#include <memory>
#include <string>
#include <vector>

struct IMG_color {
    float red, grn, blu; // 0.0 to 1.0
};

// Origin of a picture: field `source`.
constexpr int img_native = 50; // a native image file

// All of a picture but its memory.
struct IMG_fields {
    int source = 0;
    int type = 0;
    int version = 0;
    char datim[50] = ""; // date and time label
    Date date;
    char info[75] = "";        // description or window name
    int width = 0, height = 0; // pixels
    int depth = 0;             // significant bits of a pixel
    float xres = 0, yres = 0;  // resolution
    float xoff = 0, yoff = 0;  // offset
    int bits_pixel = 0;        // bits a pixel takes in `data`
    int bytes_line = 0;        // bytes a row takes, padding included
    int byte_order = 1;        // 0 least, 1 most significant byte first
    int color_type = 0;        // 0 true colour with masks, 1 indexed
    int num_colors = 0;        // entries of `colors`
    unsigned red = 0, grn = 0; // masks of a true colour pixel; all 0, and no
    unsigned blu = 0;          // colour table: pixels are grey levels
    int trans_color = -1;      // transparent colour, -1 none
    Domain domain;             // location on the earth, `proj` missing: none
};

// A line of text that a kind with room for it (PNG) keeps under a key.
struct IMG_text {
    std::string key;
    std::string text;
};

// Pixels are the record's own, or lent by who owns them for longer than the record lasts.
struct IMG_pixels_free {
    bool lent = false;
    void operator()(unsigned char* pixels) const {
        if (!lent) {
            delete[] pixels;
        }
    }
};
using IMG_pixels = std::unique_ptr<unsigned char[], IMG_pixels_free>;

struct IMG_report : IMG_fields {
    std::unique_ptr<IMG_color[]> colors;
    IMG_pixels data;             // height * bytes_line bytes
    std::vector<IMG_text> texts; // of a captured picture, for its file
};

// Most bytes of pixels, and pixels, that a file may ask for.
constexpr std::size_t img_most_bytes = std::size_t{128} << 20;
constexpr std::size_t img_most_pixels = std::size_t{64} << 20;
constexpr int img_most_colors = 65536;

// --- Record (img_tool.cpp) ------------------------------------------------------

// Clears a record and gives its memory back.
int IMG_init(IMG_report* image);
// Gives the memory of a record back before its end.
int IMG_free(IMG_report* image);
// A copy with its own pixels and colours; 0 and no pixels when memory is short.
int IMG_copy(IMG_report* dest, const IMG_report* src);
int IMG_print(int level, const IMG_report* image);
// New pixels of height * bytes_line bytes, all 0, in the place of the old; 0
// when the size is none, or above the ceiling, or memory is short.
int IMG_alloc(IMG_report* image);
// The same for one who writes them all: their values are not set.
int IMG_alloc_unset(IMG_report* image);
int IMG_alloc_colors(IMG_report* image, int count); // black, img_most_colors at most

// --- Formats --------------------------------------------------------------------
// Readers whose `type` is 1 give the header alone where they can.

// Native files (img_native.cpp). `type` 1 of the writer compresses.
int IMG_read_zyr(const char* filename, IMG_report* image, int type);
int IMG_write(const char* filename, IMG_report* image, int type);
// Seconds that the reader of a compressed file waits for it to grow, 10 at start.
int IMG_set_patience(int tries);

int GIF_read(const char* filename, IMG_report* image, int type);
int GIF_interlace(int value);   // 1: interlaced output
int GIF_transparent(int value); // 1: the background is transparent

int PNG_read(const char* filename, IMG_report* image, int type);

// Messages of this module (xdump.cpp) go to standard error. `depth` of the
// record on entry is the largest depth allowed.
int XWD_read(const char* filename, IMG_report* image, int type);
int XWD_write(const char* filename, IMG_report* image);

// --- Images and the window (gks_img.cpp) ----------------------------------------

// Reads any kind of image file. Without a window a header may be of any depth.
int IMG_read(const char* filename, IMG_report* image, int type);
// The background of the window is transparent, its title that of the file.
int GIF_write(const char* filename, IMG_report* image);
int PNG_write(const char* filename, IMG_report* image);
// Capture the window or the current frame, and write it.
int GIF_dump(const char* filename);
int PNG_dump(const char* filename);
int XWD_dump(const char* filename);

// --- Images and the plot (plt_tool.cpp) -----------------------------------------

// The same as a native file, with the label of the plot and its place on the earth.
int IMG_dump(const char* filename);
