// gks_x11.cpp: the display workstations: a window of the program's own, and a
// drawable of a window that another program keeps.

#include "gks_x11.h"

Display* gget_display() {
    return nullptr;
}
int gget_screen() {
    return 0;
}
Visual* gget_visual() {
    return nullptr;
}
Window gget_root_window() {
    return 0;
}
Pixmap gget_base_window() {
    return 0;
}
int gset_base_window(Pixmap) {
    return 0;
}
Drawable gget_draw_window() {
    return 0;
}
int gset_draw_window(Drawable) {
    return 0;
}
GC gget_root_gc() {
    return nullptr;
}
unsigned long gget_red_mask() {
    return 0;
}
unsigned long gget_grn_mask() {
    return 0;
}
unsigned long gget_blu_mask() {
    return 0;
}
unsigned long gget_fore_pixel() {
    return 0;
}
unsigned long gget_back_pixel() {
    return 0;
}
int gget_num_error() {
    return 0;
}
int gtrap_errors(int) {
    return 0;
}
int gopen_window(const char*) {
    return -1;
}
int gopen_pixmap(const char*) {
    return -1;
}
int gclose_display() {
    return 0;
}
int gset_geometry(const char*) {
    return 0;
}
int gset_iconic(int) {
    return 0;
}
int gset_fixed_size() {
    return 0;
}
int gset_icon_bitmap(const unsigned char*) {
    return 0;
}
int gset_pix_mode(int) {
    return 0;
}
int gget_pix_mode() {
    return 0;
}
int gget_root_size(int*, int*) {
    return 0;
}
int gresize_window(int, int) {
    return 0;
}
int gupdate_window() {
    return -1;
}
int gclear_window_region(const Glim*) {
    return 0;
}
int gsync() {
    return 0;
}
int gbell(int) {
    return 0;
}
int gset_win_title_extra(const char*) {
    return -1;
}
int gget_win_title_extra(char*) {
    return -1;
}
int gset_cursor(int) {
    return 0;
}
int gset_cursor_type(int) {
    return 0;
}
int gget_cursor_type() {
    return 0;
}
