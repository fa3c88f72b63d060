// rad_item.h: the variables that reports of radar summaries have (MDR_get_data and
// RCM_get_data of zyrrad.h give their values).
#pragma once

// Whether a variable selected asks for watches, which are no part of a report.
bool rad_is_watch(int index);
// From here on the symbols of sites in clear air are left out.
void rad_leave_out_clear();
// Warns, once a run, of a variable selected that this kind of reports (rad_mdr,
// rad_rcm) lacks.
void rad_check_names(int type);
