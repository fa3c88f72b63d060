// gks_evnt.cpp: events and interaction.

#include "gks_x11.h"

int ginit_event(int) {
    return 0;
}
int gcheck_event() {
    return 0;
}
int gwait_event() {
    return 0;
}
int ghold(int) {
    return 0;
}
int gset_input_mode(int) {
    return 0;
}
int gget_input_mode() {
    return 0;
}
int gis_mapped() {
    return 0;
}
int gset_mouse_callback(Gmouse_func*) {
    return 0;
}
int gset_rubber_band(int) {
    return 0;
}
int gset_rubber_band_points(const Gpt*, int, int) {
    return 0;
}
int gset_rubber_band_limits(const Gpt*) {
    return 0;
}
int gset_refresh_callback(int, Grefresh_func*) {
    return 0;
}
int gprocess_x11_event(XEvent*) {
    return 0;
}
