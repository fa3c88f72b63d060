// res_table.cpp: searches the definition table of the settings and fills rows
// from it. It keeps nothing.
#include "res_table.h"

#include <algorithm>

const ResRow* res_find_row(res_type type) {
    const auto* row = std::find_if(std::begin(res_rows), std::end(res_rows),
                                   [&](const ResRow& r) { return r.type == type; });
    return row == std::end(res_rows) ? nullptr : row;
}

int RES_fill_obj(RES_defobj* row, const char* def, const char* env, RES_cmd cmd, DEF_convert cvt,
                 void* out, int* num) {
    *row = {def, env, cmd, cvt, out, num};
    return 0;
}

int RES_enter(RES_defobj* row, res_type type) {
    if (const ResRow* known = res_find_row(type)) {
        return RES_fill_obj(row, known->def, known->env, known->cmd, known->cvt, nullptr, nullptr);
    }
    MESS_print(mess_print, "%d\n", type);
    return RES_fill_obj(row, "", "", {}, CV_none, nullptr, nullptr);
}
