// res_help.cpp: the help, printed from the definition table. It keeps nothing.
#include "res_table.h"

namespace {

void help_more(const ResRow& row) {
    switch (row.more) {
    case HelpMore::none:
        break;
    case HelpMore::levels:
        MESS_print(mess_print,
                   "               none,print,error,warn,mess,out1,*out2,out3,out4,debug\n");
        break;
    case HelpMore::domain:
    case HelpMore::region:
        MESS_print(mess_print, "             %s\n", row.help);
        MESS_print(mess_print, "               region=predefined region:\n");
        MESS_print(mess_print, "                  us,ne,at,se,mw,sp,nw,sw,etc\n");
        MESS_print(
            mess_print,
            "               proj=projection, clat=central latitude, clon=central longitude,\n");
        MESS_print(mess_print,
                   "               nx,ny=number of gridpoints and dx,dy=grid spacing\n");
        if (row.more == HelpMore::region) {
            MESS_print(mess_print, "               us,ne,at,se,mw,sp,nw,sw,var\n");
        }
        break;
    case HelpMore::output:
        MESS_print(mess_print, "               agif=name: the frames as one animated GIF\n");
        break;
    case HelpMore::device:
        MESS_print(mess_print, "               p,name,small: a page small enough to mail\n");
        break;
    }
}

} // namespace

int RES_help_print(const char* name, const res_type* res_key, const res_type* res_pos) {
    MESS_print(mess_print, "%s syntax (version:%s)\n", name, ZYR_version());
    MESS_print(mess_print, "   %s [options...]\n", name);
    MESS_print(mess_print, "Keyed options...\n");
    MESS_print(mess_print, " %-10s  Resource/defaults file name\n", "-df file");
    MESS_print(mess_print, " %-10s  Program name\n", "-na name");
    for (; *res_key != RES_null; ++res_key) {
        RES_help_item(*res_key);
    }
    MESS_print(mess_print, "Positional options...\n");
    for (; *res_pos != RES_null; ++res_pos) {
        RES_help_item(*res_pos);
    }
    return 0;
}

int RES_help_item(res_type type) {
    const ResRow* row = res_find_row(type);
    if (row == nullptr || row->argument == nullptr) {
        return 0;
    }
    // A domain's argument is long: its text is on a line of its own.
    const bool own_line = row->more == HelpMore::domain || row->more == HelpMore::region;
    MESS_print(mess_print, " %-10s  %s\n", row->argument, own_line ? "" : row->help);
    help_more(*row);
    return 1;
}
