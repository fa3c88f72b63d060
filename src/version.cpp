// version.cpp: the program's version text, for every module. It keeps nothing.
// The number comes from the build.
#include "zyr.h"

const char* ZYR_version() {
    return ZYR_VERSION "-LINUX-X11";
}
