// gks_img.cpp: pictures between the window and image records.

#include "gks_x11.h"

int gget_image(IMG_report*) {
    return 0;
}
int gread_image_file(const char*, IMG_report*) {
    return 0;
}
int goverlay_image_file(const char*, const char*, int, int) {
    return 0;
}
int goverlay_image(IMG_report*, const char*, int, int) {
    return 0;
}
int gsetup_image_colors(IMG_report*, long) {
    return 0;
}
int gset_ximage_params(IMG_report*, XImage*) {
    return 0;
}
