// gks_meta.h: what the two forms of a metafile and its reader share.
#pragma once

#include "gks_attr.h"

#include <cstddef>
#include <cstdio>

constexpr int meta_text = 0;
constexpr int meta_cgm = 1;

// A setting as a line: its word and its values.
struct Gword {
    Gobj code{};
    std::string_view word; // empty: not in a metafile
    Gcounts counts{};
    bool is_point = false; // its two numbers have a comma between them
};
void gmeta_attribute(const Gword& attribute, const Gvalues& values);
// 1 if `file` is the metafile that is being written.
int gmeta_is_output(std::FILE* file);

// Where a binary metafile goes; null while there is none.
void gcgm_write_to(std::FILE* file);
// Everything in front of the first polyline of a binary metafile, and after
// the last.
void gcgm_begin();
void gcgm_end();
