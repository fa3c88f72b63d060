// version.cpp: the program's version text, for every module. It keeps nothing.
#include "zyr.h"

const char* ZYR_version() {
    return "5.60.2-LINUX-X11";
}
