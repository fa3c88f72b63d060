// gks_loop.cpp: frames and events as a workstation without a window answers
// them: every picture goes straight into the file. No state.

#include "gks.h"

int gcreate_frame(int /*ind*/) {
    return 0;
}

int gselect_frame(int /*ind*/) {
    return -1;
}

int gdisplay_frame(int /*ind*/) {
    return -1;
}

int gget_num_images() {
    return 0;
}

int gget_cur_frame() {
    return -1;
}

int gset_looping(int /*value*/) {
    return 0;
}

int gcheck_event() {
    return 0;
}

int gupdate_window() {
    return -1;
}
