// gks_img.cpp: the picture of the window as an image record, from which every
// image file is written. Owns nothing. Needs a display and its draw window;
// what lies images over the plot is in gks_overlay.cpp.

#include "gks_x11.h"
#include "zyrimg.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>

namespace {

struct ImageEnd {
    void operator()(XImage* image) const { XDestroyImage(image); }
};
using XImage_ptr = std::unique_ptr<XImage, ImageEnd>;

constexpr unsigned long low_24_bits = 0xffffff;

// Size of the picture: the window's, within the drawable that holds it, which
// is smaller as long as the program has not seen that the window has grown.
bool picture_size(const XWindowAttributes& window, int* width, int* height) {
    Window root = 0;
    int x = 0;
    int y = 0;
    unsigned w = 0;
    unsigned h = 0;
    unsigned border = 0;
    unsigned depth = 0;
    if (XGetGeometry(gget_display(), gget_draw_window(), &root, &x, &y, &w, &h, &border, &depth) ==
        0)
        return false;
    *width = std::min(window.width, static_cast<int>(w));
    *height = std::min(window.height, static_cast<int>(h));
    return true;
}

void take_name(IMG_report* image) {
    char* name = nullptr;
    if (XFetchName(gget_display(), gget_root_window(), &name) == 0 || name == nullptr) {
        copy_text(image->info, sizeof image->info, "xwdump");
        return;
    }
    copy_text(image->info, sizeof image->info, name);
    XFree(name);
}

// Lays pixels of less than a byte anew: servers keep four bits in a nibble of
// either order or in a byte, and single bits in either order. A record has the
// high nibble first, and the lowest bit first.
bool pack_small_pixels(IMG_report* image, XImage* ximage) {
    const bool nibbles = ximage->depth == 4;
    const int per_word = nibbles ? 8 : 32;
    image->bits_pixel = image->depth;
    image->byte_order = nibbles ? 1 : 0;
    image->bytes_line = (image->width + per_word - 1) / per_word * 4;
    if (IMG_alloc(image) == 0)
        return false;
    for (int y = 0; y < image->height; ++y) {
        unsigned char* row = image->data + static_cast<std::size_t>(y) * image->bytes_line;
        for (int x = 0; x < image->width; ++x) {
            const auto pixel = static_cast<unsigned>(XGetPixel(ximage, x, y));
            const int byte = nibbles ? x / 2 : x / 8;
            const unsigned bits =
                nibbles ? (pixel & 15U) << (x % 2 == 0 ? 4 : 0) : (pixel & 1U) << (x % 8);
            row[byte] = static_cast<unsigned char>(row[byte] | bits);
        }
    }
    return true;
}

// Eight bits of a component out of a pixel.
unsigned component(unsigned long pixel, unsigned long mask) {
    const int shift = std::countr_zero(mask);
    const unsigned long most = mask >> shift;
    return static_cast<unsigned>(((pixel & mask) >> shift) * 255 / most);
}

// Ten bits a component come down to eight: a record of 32-bit pixels has its
// colours in the lower three bytes.
bool narrow_pixels(IMG_report* image, XImage* ximage) {
    image->depth = 24;
    image->bits_pixel = 32;
    image->byte_order = 0;
    image->bytes_line = image->width * 4;
    if (IMG_alloc(image) == 0)
        return false;
    unsigned char* out = image->data;
    for (int y = 0; y < image->height; ++y) {
        for (int x = 0; x < image->width; ++x, out += 4) {
            const unsigned long pixel = XGetPixel(ximage, x, y);
            out[0] = static_cast<unsigned char>(component(pixel, ximage->blue_mask));
            out[1] = static_cast<unsigned char>(component(pixel, ximage->green_mask));
            out[2] = static_cast<unsigned char>(component(pixel, ximage->red_mask));
        }
    }
    image->red = 0xff0000;
    image->grn = 0xff00;
    image->blu = 0xff;
    return true;
}

bool take_pixels(IMG_report* image, XImage* ximage) {
    image->bits_pixel = ximage->bits_per_pixel;
    image->bytes_line = ximage->bytes_per_line;
    image->byte_order = ximage->byte_order;
    image->depth = ximage->depth;
    image->red = static_cast<unsigned>(ximage->red_mask);
    image->grn = static_cast<unsigned>(ximage->green_mask);
    image->blu = static_cast<unsigned>(ximage->blue_mask);
    if (ximage->depth == 1 || ximage->depth == 4)
        return pack_small_pixels(image, ximage);
    const bool has_masks =
        ximage->red_mask != 0 && ximage->green_mask != 0 && ximage->blue_mask != 0;
    if (has_masks && ximage->red_mask > low_24_bits)
        return narrow_pixels(image, ximage);
    if (IMG_alloc(image) == 0)
        return false;
    std::memcpy(image->data, ximage->data,
                static_cast<std::size_t>(image->height) * image->bytes_line);
    return true;
}

// The lowest bit of a mask per entry, back to 0 when it passes the mask.
void step_component(unsigned long* part, unsigned long mask) {
    *part += mask & (~mask + 1);
    if (*part > mask)
        *part = 0;
}

// The pixel of each entry of a colour map.
void number_entries(const Visual& visual, int count, XColor* entries) {
    unsigned long red = 0;
    unsigned long grn = 0;
    unsigned long blu = 0;
    for (int i = 0; i < count; ++i) {
        entries[i].pixel =
            visual.c_class == DirectColor ? red | grn | blu : static_cast<unsigned long>(i);
        step_component(&red, visual.red_mask);
        step_component(&grn, visual.green_mask);
        step_component(&blu, visual.blue_mask);
    }
}

float color_value(unsigned short component) {
    constexpr float full = 65535.0F;
    constexpr float nearly_full = 0.99F;
    const float value = static_cast<float>(component) / full;
    return value > nearly_full ? 1.0F : value;
}

// The colour table of the window. Without memory for it there is a picture all
// the same.
void take_table(IMG_report* image, const XWindowAttributes& window) {
    const int count = window.visual->map_entries;
    image->color_type = 1;
    const std::unique_ptr<XColor[]> entries(new (std::nothrow) XColor[count]);
    if (entries == nullptr) {
        MESS_print(mess_warn, "gget_image: Unable to allocate memory for Xcolors\n");
        return;
    }
    if (IMG_alloc_colors(image, count) == 0) {
        MESS_print(mess_warn, "gget_image: Unable to allocate memory for colors\n");
        return;
    }
    number_entries(*window.visual, count, entries.get());
    XQueryColors(gget_display(), window.colormap, entries.get(), count);
    for (int i = 0; i < count; ++i)
        image->colors[i] = {color_value(entries[i].red), color_value(entries[i].green),
                            color_value(entries[i].blue)};
}

void take_colors(IMG_report* image, const XWindowAttributes& window) {
    image->num_colors = 0;
    image->color_type = 0;
    if (window.colormap != None && window.visual->c_class != TrueColor)
        take_table(image, window);
}

// The server tells the masks of a window's pixels, not those of a pixmap's.
void complete_masks(XImage* ximage, const Visual& visual) {
    if (ximage->red_mask != 0)
        return;
    ximage->red_mask = visual.red_mask;
    ximage->green_mask = visual.green_mask;
    ximage->blue_mask = visual.blue_mask;
}

} // namespace

int gget_image(IMG_report* image) {
    IMG_init(image);
    Display* display = gget_display();
    if (display == nullptr || gget_draw_window() == 0)
        return 0;
    gflush_fill();

    gtrap_errors(0);
    XWindowAttributes window{};
    const bool found = XGetWindowAttributes(display, gget_root_window(), &window) != 0 &&
                       picture_size(window, &image->width, &image->height);
    if (gtrap_errors(1) != 0 || !found) {
        MESS_print(mess_warn, "gget_image: Can't get target window attributes\n");
        return 0;
    }
    take_name(image);

    gtrap_errors(0);
    const XImage_ptr ximage(XGetImage(display, gget_draw_window(), 0, 0,
                                      static_cast<unsigned>(image->width),
                                      static_cast<unsigned>(image->height), AllPlanes, ZPixmap));
    if (gtrap_errors(1) != 0 || ximage == nullptr) {
        MESS_print(mess_warn, "gget_image: Unable to get image at %dx%d+%d+%d\n", image->width,
                   image->height, 0, 0);
        return 0;
    }
    complete_masks(ximage.get(), *window.visual);
    if (!take_pixels(image, ximage.get())) {
        MESS_print(mess_warn, "gget_image: Unable to allocate data buffer.\n");
        return 0;
    }
    take_colors(image, window);
    XFlush(display);
    return 1;
}
