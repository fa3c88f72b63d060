// lev2_walk.h: the walk of a Level II volume as a plotter does it.
#pragma once

#include "lev2.h"
#include "memory_file.h"

// Opens a file and calls `record(data)` for each record at hand. Returns the
// number of records; -1 when the file does not open.
template <typename Record> int lev2_walk(const char* name, LEV2_info& info, Record record) {
    if (LEV2_open_file(name) != 1) {
        return -1;
    }
    LEV2_get_header(&info);
    int records = 0;
    LEV2_data data;
    for (; LEV2_get_block(&data) == 1; LEV2_next_block()) {
        record(data);
        ++records;
    }
    LEV2_close_file();
    return records;
}
