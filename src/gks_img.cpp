// gks_img: the picture of the window as an image record, from which every
// image file is written, and what readers and writers of image files ask of the
// window. Owns nothing. A capture needs a display and its draw window; what lies
// images over the plot is in gks_overlay.cpp, the capture itself is the display's.

#include "gif_loop.h"
#include "gks_draw.h"
#include "img_kind.h"

#include <algorithm>

namespace {

// The row of a writer.
const IMG_kind& kind_of(decltype(IMG_kind::write) writer) {
    return *std::ranges::find(IMG_kinds(), writer, &IMG_kind::write);
}

IMG_look look_now() {
    return {static_cast<std::uint32_t>(gget_color_ind(-1)), gget_win_title()};
}

int take_image(IMG_report* image, bool lent) {
    IMG_init(image);
    return gget_draw_window() != 0 ? gdraw_take_image(image, lent) : 0;
}

} // namespace

int gget_image(IMG_report* image) {
    return take_image(image, false);
}

// --- Files ----------------------------------------------------------------------

int gwrite_image(const IMG_kind& kind, const char* filename, const IMG_report& image) {
    return kind.write(filename, image, look_now());
}

int gdump_image(const IMG_kind& kind, const char* filename, void (*describe)(IMG_report* image)) {
    IMG_report image;
    if (take_image(&image, true) == 0) {
        return 0;
    }
    if (describe != nullptr) {
        describe(&image);
    }
    return gwrite_image(kind, filename, image);
}

int gadd_image(const char* filename, void (*describe)(IMG_report* image)) {
    IMG_report image;
    if (take_image(&image, true) == 0) {
        return 0;
    }
    if (describe != nullptr) {
        describe(&image);
    }
    return GIF_add_frame(filename, image, look_now());
}

int gread_image_file(const char* filename, IMG_report* image) {
    return IMG_read(filename, image, 0);
}

int IMG_read(const char* filename, IMG_report* image, int type) {
    constexpr int any_depth = 32;
    const bool any = type == 1 && gget_device() == Gdevice::none;
    return IMG_read_any(filename, image, type, any ? any_depth : gget_win_depth());
}

int GIF_write(const char* filename, IMG_report* image) {
    return gwrite_image(kind_of(GIF_encode), filename, *image);
}

int PNG_write(const char* filename, IMG_report* image) {
    return gwrite_image(kind_of(PNG_encode), filename, *image);
}

int GIF_dump(const char* filename) {
    return gdump_image(kind_of(GIF_encode), filename, nullptr);
}

int PNG_dump(const char* filename) {
    return gdump_image(kind_of(PNG_encode), filename, nullptr);
}

int XWD_dump(const char* filename) {
    return gdump_image(kind_of(XWD_encode), filename, nullptr);
}
