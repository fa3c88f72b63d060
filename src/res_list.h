// res_list.h: the entries of the resource database, for the modules that fill it.
#pragma once

#include "zyrresrc.h"

#include <cstddef>

// One resource. Texts are owned and live as long as the run.
struct res_obj {
    int index = missing; // row of the definition table
    char* name = nullptr;
    char* data = nullptr;       // null: given without a value
    std::size_t length = 0;     // of `data`
    std::size_t room = 0;       // what `data` can hold; RES_append leaves some to grow
    mutable bool given = false; // a caller holds the address of `data`
    DEF_convert cvt = CV_none;
    res_obj* next = nullptr;
};

// The entries in the order of first mention; null if there is none.
const res_obj* RES_first();
