// img_kind.h: the kinds of image files as a table, from which reading, dumps,
// keys of the window and words of the command line follow.
#pragma once

#include "zyrimg.h"

#include <cstddef>
#include <cstdint>
#include <span>

// What a writer has to know beside the pixels.
struct IMG_look {
    std::uint32_t background = 0; // pixel value that may become transparent
    const char* title = "";
};

// Inner writers: 1, or 0 with or without a message.
int GIF_encode(const char* filename, const IMG_report& image, const IMG_look& look);
int PNG_encode(const char* filename, const IMG_report& image, const IMG_look& look);
int XWD_encode(const char* filename, const IMG_report& image, const IMG_look& look);
int IMG_encode(const char* filename, const IMG_report& image, const IMG_look& look);

struct IMG_kind {
    int dump;              // number of the kind for PLT_set_dump
    const char* word;      // of `plot_param`; the end of a name that a key gives
    const char* name;      // in messages
    const char* dump_name; // in messages about the dump of a plot
    const char* file_name; // of a dump without a name of its own
    bool out_file;         // the list of output files takes the word
    bool frames;           // one file holds all pictures of a run
    bool placed;           // keeps the place on the earth, and the plot's label
    std::size_t magic_at;  // where a file says its kind, and how; empty: it does not
    const char* magic;
    int (*read)(const char* filename, IMG_report* image, int type);
    int (*write)(const char* filename, const IMG_report& image, const IMG_look& look);
};

std::span<const IMG_kind> IMG_kinds();
// Null without such a kind.
const IMG_kind* IMG_find_dump(int dump);
// The kind whose word begins a text, whatever the case; null if none does.
const IMG_kind* IMG_find_word(const char* text);
// Reads a file by the kind that it says it is. `depth` is the largest that can
// be shown.
int IMG_read_any(const char* filename, IMG_report* image, int type, int depth);
