// gks_meta.cpp: the metafile workstation.

#include "gks.h"

int gmeta_open_ws(const char*) {
    return -1;
}
std::FILE* gmeta_open_file(const char*) {
    return nullptr;
}
int gmeta_init_file() {
    return 0;
}
int gmeta_close_file() {
    return -1;
}
int gmeta_set_type(int) {
    return 0;
}
int gmeta_get_type() {
    return 0;
}
int gmeta_printf(const char*, ...) {
    return 0;
}
int gmeta_points(const char*, int, const Gpt*, int) {
    return 0;
}
int gread_metafile(const char*) {
    return -1;
}
int gcgm_control(int, int, int, int) {
    return 0;
}
int gcgm_point(float, float) {
    return 0;
}
int gcgm_ps_point(float, float) {
    return 0;
}
int gcgm_polyline(int, const Gpt*) {
    return 0;
}
int gcgm_set_clip(float, float, float, float) {
    return 0;
}
