// gks_obj.cpp: the redraw list.

#include "gks.h"

int ginit_objs() {
    return 0;
}
char* gnew_obj(int, int, int, const void*) {
    return nullptr;
}
int gclear_objs() {
    return 0;
}
int gset_cache(int) {
    return 0;
}
int gget_cache() {
    return 0;
}
int gset_redraw(int) {
    return 0;
}
int gget_redraw() {
    return 0;
}
int gobj_redraw_funcs(const drawobj*) {
    return 0;
}
int gobj_print_meta() {
    return 0;
}
