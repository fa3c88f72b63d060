// res_window.h: the link to a running loop window.
#pragma once

#include "zyrresrc.h"

// Connects to the window of that number (the text after the "#" of a search-list
// item) and exchanges the settings of the table: the window's values win, ours
// fill its gaps. A window that is not there gives a warning.
void RES_link_window(const char* number, const RES_defobj* def_table);
// Passes a setting on to the connected window, if there is one.
void RES_show_window(const char* def, const char* value);
// Ends the connection, if there is one.
void RES_leave_window();
