// gks_zoom.cpp: the pixel zoom.

#include "gks_x11.h"

int gzoom(int, int, int, int, int) {
    return 0;
}
int gunzoom() {
    return 0;
}
int greset_zoom() {
    return 0;
}
int gget_zoom() {
    return 1;
}
float xZ_p(float x) {
    return x;
}
float yZ_p(float y) {
    return y;
}
