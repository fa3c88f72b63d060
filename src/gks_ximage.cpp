// gks_ximage: images between records and an X server: the capture of what is
// drawn, and a record put over it. Owns nothing.
//
// An image that is put goes through two more forms: the pixels of this display, as
// an X image; and a bitmap that has a bit for each pixel to be drawn.

#include "gks_disp.h"
#include "gks_pixels.h"
#include "gks_x11.h"
#include "img_pixel.h"
#include "no_memory.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace {

using Pixel = std::uint32_t;

// --- Capture --------------------------------------------------------------------

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
        0) {
        return false;
    }
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

// How the pixels of the server come into a record.
enum class Taking {
    rows,   // as they are
    packed, // a nibble or a bit each
    narrow  // eight bits a component
};

Taking taking_of(const XImage& ximage) {
    if (ximage.depth == 1 || ximage.depth == 4) {
        return Taking::packed;
    }
    const bool has_masks = ximage.red_mask != 0 && ximage.green_mask != 0 && ximage.blue_mask != 0;
    return has_masks && ximage.red_mask > low_24_bits ? Taking::narrow : Taking::rows;
}

// The record's fields and its memory, by the first strip of the picture.
bool lay_out(IMG_report* image, const XImage& ximage) {
    image->depth = ximage.depth;
    image->bits_pixel = ximage.bits_per_pixel;
    image->bytes_line = ximage.bytes_per_line;
    image->byte_order = ximage.byte_order;
    image->red = static_cast<unsigned>(ximage.red_mask);
    image->grn = static_cast<unsigned>(ximage.green_mask);
    image->blu = static_cast<unsigned>(ximage.blue_mask);
    switch (taking_of(ximage)) {
    case Taking::packed:
        image->bits_pixel = ximage.depth;
        image->byte_order = ximage.depth == 4 ? 1 : 0;
        image->bytes_line = (image->width * ximage.depth + 31) / 32 * 4;
        break;
    case Taking::narrow:
        image->depth = 24;
        image->bits_pixel = 32;
        image->byte_order = 0;
        image->bytes_line = image->width * 4;
        image->red = 0xff0000;
        image->grn = 0xff00;
        image->blu = 0xff;
        break;
    case Taking::rows:
        break;
    }
    return IMG_alloc(image) != 0;
}

// Servers keep four bits in a nibble of either order or in a byte, and single
// bits in either order. A record has the high nibble and the lowest bit first.
void pack_row(XImage* ximage, int y, unsigned char* out) {
    const bool nibbles = ximage->depth == 4;
    for (int x = 0; x < ximage->width; ++x) {
        const auto pixel = static_cast<unsigned>(XGetPixel(ximage, x, y));
        unsigned char& byte = out[nibbles ? x / 2 : x / 8];
        const unsigned bits =
            nibbles ? (pixel & 15U) << (x % 2 == 0 ? 4 : 0) : (pixel & 1U) << (x % 8);
        byte = static_cast<unsigned char>(byte | bits);
    }
}

// Eight bits of a component out of a pixel.
unsigned char component(unsigned long pixel, unsigned long mask) {
    const int shift = std::countr_zero(mask);
    return static_cast<unsigned char>(((pixel & mask) >> shift) * 255 / (mask >> shift));
}

// A record of 32-bit pixels has its colours in the lower three bytes.
void narrow_row(XImage* ximage, int y, unsigned char* out) {
    for (int x = 0; x < ximage->width; ++x, out += 4) {
        const unsigned long pixel = XGetPixel(ximage, x, y);
        out[0] = component(pixel, ximage->blue_mask);
        out[1] = component(pixel, ximage->green_mask);
        out[2] = component(pixel, ximage->red_mask);
    }
}

// The rows of a strip into the record, from row `top` on.
void take_strip(IMG_report* image, XImage* ximage, int top) {
    const Taking taking = taking_of(*ximage);
    unsigned char* out = image->data.get() + static_cast<std::size_t>(top) * image->bytes_line;
    if (taking == Taking::rows) {
        std::memcpy(out, ximage->data,
                    static_cast<std::size_t>(ximage->height) * image->bytes_line);
        return;
    }
    for (int y = 0; y < ximage->height; ++y, out += image->bytes_line) {
        if (taking == Taking::packed) {
            pack_row(ximage, y, out);
        } else {
            narrow_row(ximage, y, out);
        }
    }
}

// The server gives the masks of a window's pixels, not those of a pixmap's.
void complete_masks(XImage* ximage, const Visual& visual) {
    if (ximage->red_mask != 0) {
        return;
    }
    ximage->red_mask = visual.red_mask;
    ximage->green_mask = visual.green_mask;
    ximage->blue_mask = visual.blue_mask;
}

enum class Failure { none, no_image, no_memory };

// All pixels, a strip at a time: a server takes 20 times as long, and more, for
// a reply of several megabytes.
Failure take_pixels(IMG_report* image, const Visual& visual) {
    constexpr int strip_pixels = 1 << 18; // a megabyte
    const int most_rows = std::max(1, strip_pixels / std::max(1, image->width));
    for (int top = 0; top < image->height; top += most_rows) {
        const int rows = std::min(most_rows, image->height - top);
        const Gdisplay_watch watch(gis_image_run());
        const XImage_ptr strip(XGetImage(gget_display(), gget_draw_window(), 0, top,
                                         static_cast<unsigned>(image->width),
                                         static_cast<unsigned>(rows), AllPlanes, ZPixmap));
        if (strip == nullptr) {
            return Failure::no_image;
        }
        complete_masks(strip.get(), visual);
        if (top == 0 && !lay_out(image, *strip)) {
            return Failure::no_memory;
        }
        take_strip(image, strip.get(), top);
    }
    return Failure::none;
}

// The lowest bit of a mask per entry, back to 0 when it passes the mask.
void step_component(unsigned long* part, unsigned long mask) {
    *part += mask & (~mask + 1);
    if (*part > mask) {
        *part = 0;
    }
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
    const ZYR_own_report report;
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
    for (int i = 0; i < count; ++i) {
        image->colors[i] = {color_value(entries[i].red), color_value(entries[i].green),
                            color_value(entries[i].blue)};
    }
}

void take_colors(IMG_report* image, const XWindowAttributes& window) {
    image->num_colors = 0;
    image->color_type = 0;
    if (window.colormap != None && window.visual->c_class != TrueColor) {
        take_table(image, window);
    }
}

// --- Images put over the plot -----------------------------------------------------

// The bits of a pixel that count.
Pixel display_planes() {
    const int depth = gget_win_depth();
    return depth >= 32 ? ~Pixel{0} : (Pixel{1} << depth) - 1;
}

// The record's bytes are laid out as those of such an X image.
bool fits(const IMG_report& image, const XImage& ximage) {
    const int bits = image.bits_pixel;
    const bool order = bits == 8 || (image.byte_order == 1) == (ximage.byte_order == MSBFirst);
    return bits >= 8 && bits == ximage.bits_per_pixel && order;
}

void fill_ximage(const IMG_report& image, const Gimage_pixels& pixels, XImage* ximage) {
    const bool direct =
        ximage->bits_per_pixel == 32 &&
        (ximage->byte_order == MSBFirst) == (std::endian::native == std::endian::big);
    std::vector<Pixel> row;
    for (int y = 0; y < image.height; ++y) {
        pixels.row(y, &row);
        if (direct) {
            char* out = ximage->data + static_cast<std::size_t>(y) * ximage->bytes_per_line;
            std::memcpy(out, row.data(), row.size() * sizeof(Pixel));
            continue;
        }
        for (int x = 0; x < image.width; ++x) {
            XPutPixel(ximage, x, y, row[x]);
        }
    }
}

// A bitmap of the pixels that differ from the transparent one.
Pixmap make_mask(XImage* ximage, long trans) {
    const Pixel planes = display_planes();
    const Pixel clear = static_cast<Pixel>(trans) & planes;
    const std::size_t row_size = (static_cast<std::size_t>(ximage->width) + 7) / 8;
    const std::size_t size = row_size * ximage->height;
    const std::unique_ptr<char[]> bits(new (std::nothrow) char[size]());
    if (bits == nullptr) {
        return 0;
    }
    for (int y = 0; y < ximage->height; ++y) {
        char* row = bits.get() + static_cast<std::size_t>(y) * row_size;
        for (int x = 0; x < ximage->width; ++x) {
            if ((static_cast<Pixel>(XGetPixel(ximage, x, y)) & planes) != clear) {
                row[x / 8] = static_cast<char>(row[x / 8] | 1 << x % 8);
            }
        }
    }
    return XCreateBitmapFromData(gget_display(), gget_draw_window(), bits.get(),
                                 static_cast<unsigned>(ximage->width),
                                 static_cast<unsigned>(ximage->height));
}

void put_masked(XImage* ximage, long trans, int x, int y) {
    const Pixmap mask = make_mask(ximage, trans);
    if (mask == 0) {
        return;
    }
    Display* display = gget_display();
    XSetClipMask(display, gget_root_gc(), mask);
    XSetClipOrigin(display, gget_root_gc(), x, y);
    XPutImage(display, gget_draw_window(), gget_root_gc(), ximage, 0, 0, x, y,
              static_cast<unsigned>(ximage->width), static_cast<unsigned>(ximage->height));
    XSetClipMask(display, gget_root_gc(), None);
    XFreePixmap(display, mask);
}

} // namespace

int XDisplay::take_image(IMG_report* image, bool /*lent*/) {
    Display* display = gget_display();
    gtrap_errors(0);
    XWindowAttributes window{};
    const bool found = XGetWindowAttributes(display, gget_root_window(), &window) != 0 &&
                       window.visual != nullptr && // null without memory
                       picture_size(window, &image->width, &image->height);
    if (gtrap_errors(1) != 0 || !found) {
        MESS_print(mess_warn, "gget_image: Can't get target window attributes\n");
        return 0;
    }
    take_name(image);

    gtrap_errors(0);
    const Failure failure = take_pixels(image, *window.visual);
    if (gtrap_errors(1) != 0 || failure == Failure::no_image) {
        MESS_print(mess_warn, "gget_image: Unable to get image at %dx%d+%d+%d\n", image->width,
                   image->height, 0, 0);
        IMG_free(image);
        return 0;
    }
    if (failure == Failure::no_memory) {
        MESS_print(mess_warn, "gget_image: Unable to allocate data buffer.\n");
        return 0;
    }
    take_colors(image, window);
    XFlush(display);
    return 1;
}

int gset_ximage_params(IMG_report* image, XImage* ximage) {
    if (gget_display() == nullptr || !gimage_is_readable(*image)) {
        return 0;
    }
    XImage* made = XCreateImage(
        gget_display(), gget_visual(), static_cast<unsigned>(gget_win_depth()), ZPixmap, 0, nullptr,
        static_cast<unsigned>(image->width), static_cast<unsigned>(image->height), 32, 0);
    if (made == nullptr) {
        return 0;
    }
    *ximage = *made;
    XDestroyImage(made);
    const Gimage_pixels pixels(*image);
    if (pixels.unchanged() && fits(*image, *ximage)) {
        ximage->data = reinterpret_cast<char*>(image->data.get());
        ximage->bytes_per_line = image->bytes_line;
        return 1;
    }
    const std::size_t size = static_cast<std::size_t>(ximage->bytes_per_line) * image->height;
    ximage->data = new (std::nothrow) char[size]();
    if (ximage->data == nullptr) {
        return 0;
    }
    fill_ximage(*image, pixels, ximage);
    return 1;
}

int XDisplay::put_image(IMG_report* image, long trans, int x, int y) {
    XImage ximage{};
    if (gset_ximage_params(image, &ximage) == 0) {
        return 0;
    }
    put_masked(&ximage, trans, x, y);
    if (ximage.data != reinterpret_cast<char*>(image->data.get())) {
        delete[] ximage.data;
    }
    return 1;
}
