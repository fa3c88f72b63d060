// gks_loop.cpp: frames and looping.

#include "gks_x11.h"

int ginit_loop() {
    return 0;
}
int gcreate_frame(int) {
    return 0;
}
int gclear_frame(int) {
    return 0;
}
int gselect_frame(int) {
    return -1;
}
int gdisplay_frame(int) {
    return -1;
}
int gswitch_frame(int, int) {
    return 0;
}
int gcopy_frame(int, int) {
    return 0;
}
int gdelete_frame(int) {
    return 0;
}
int gdelete_all_frames() {
    return 0;
}
int gget_num_images() {
    return 0;
}
int gget_cur_frame() {
    return -1;
}
int gset_looping(int) {
    return 0;
}
int gget_looping() {
    return 0;
}
int gtoggle_loop(int) {
    return 0;
}
int gset_loop_direct(int) {
    return 0;
}
int gget_loop_direct() {
    return 1;
}
int gset_loop_title(int) {
    return 0;
}
int gset_loop_delay(float, int) {
    return 0;
}
int ginc_loop_delay(float) {
    return 0;
}
float gget_loop_delay() {
    return 0.5F;
}
float gget_frame_delay(int) {
    return 0.5F;
}
int ginc_frame(int) {
    return -1;
}
int gloop_sleep() {
    return -1;
}
int gset_image_data(int, const unsigned char*, int) {
    return 0;
}
int gget_image_data(int, unsigned char*) {
    return 0;
}
Pixmap gget_frame_id(int) {
    return 0;
}
int gset_frame_id(int, Pixmap) {
    return 0;
}
