// gks_zoom.cpp: the pixel zoom of the window: what is on show is replicated, not
// drawn again. State: the magnification, where it begins, and a copy of a still
// picture from before the zoom. A frame is magnified each time it is shown.

#include "gks_zoom.h"

#include "gks_x11.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int max_zoom = 1024;

struct Zoom {
    int zoom = 1;
    int zoom_x = 0; // centre of the part on show, pixels of the picture as drawn
    int zoom_y = 0;
    float left = 0.0F; // its first pixel; in parts of one after a second zoom
    float top = 0.0F;
    Pixmap base_image = 0; // base pixmap from before the zoom
};
Zoom zoomed;

struct ImageDeleter {
    void operator()(XImage* image) const { XDestroyImage(image); }
};
using ImagePtr = std::unique_ptr<XImage, ImageDeleter>;

// --- Replication of one row ---------------------------------------------------

template <std::size_t bytes>
void stretch(const unsigned char* from, unsigned char* to, int width, int f) {
    for (int x = 0; x < width; from += bytes) {
        for (const int end = std::min(x + f, width); x < end; ++x, to += bytes) {
            std::memcpy(to, from, bytes);
        }
    }
}

// Pixels smaller than a byte. `swap` is what the number of a byte is xored with
// when the bytes of a unit run against its bits.
struct BitOrder {
    bool low_first;
    int swap;
};

template <int bits> int shift_of(int x, BitOrder order) {
    const int shift = x * bits % 8;
    return order.low_first ? shift : 8 - bits - shift;
}

template <int bits>
void stretch_bits(const unsigned char* from, unsigned char* to, int first, int width, int f,
                  BitOrder order) {
    constexpr unsigned mask = (1U << bits) - 1;
    for (int x = 0; x < width; ++first) {
        const unsigned pixel =
            from[(first * bits / 8) ^ order.swap] >> shift_of<bits>(first, order) & mask;
        for (const int end = std::min(x + f, width); x < end; ++x) {
            unsigned char& byte = to[(x * bits / 8) ^ order.swap];
            const int shift = shift_of<bits>(x, order);
            byte = static_cast<unsigned char>((byte & ~(mask << shift)) | pixel << shift);
        }
    }
}

void stretch_row(const XImage& image, const unsigned char* from, unsigned char* to, int ox, int f) {
    const int width = image.width;
    switch (image.bits_per_pixel) {
    case 32:
        return stretch<4>(from + std::ptrdiff_t{4} * ox, to, width, f);
    case 24:
        return stretch<3>(from + std::ptrdiff_t{3} * ox, to, width, f);
    case 16:
        return stretch<2>(from + std::ptrdiff_t{2} * ox, to, width, f);
    case 8:
        return stretch<1>(from + ox, to, width, f);
    case 4:
        return stretch_bits<4>(from, to, ox, width, f, {image.byte_order == LSBFirst, 0});
    default: {
        const bool straight = image.byte_order == image.bitmap_bit_order;
        const int swap = straight ? 0 : image.bitmap_unit / 8 - 1;
        stretch_bits<1>(from, to, ox, width, f, {image.bitmap_bit_order == LSBFirst, swap});
    }
    }
}

// --- The steps of a zoom ------------------------------------------------------

// The magnification that `factor` asks for; 0 when there is none such.
int new_zoom(int zoom, int factor) {
    const long wanted = factor == -1  ? zoom
                        : factor < -1 ? -static_cast<long>(factor) * zoom
                                      : factor;
    if (wanted > max_zoom) {
        MESS_print(mess_warn, "gzoom: Cannot zoom past 1024x\n");
        return 0;
    }
    return wanted < 1 ? 0 : static_cast<int>(wanted);
}

// What a still picture returns to.
void keep_base_image(int width, int height) {
    Display* display = gget_display();
    const auto w = static_cast<unsigned>(width);
    const auto h = static_cast<unsigned>(height);
    zoomed.base_image =
        XCreatePixmap(display, gget_base_window(), w, h, static_cast<unsigned>(gget_win_depth()));
    XCopyArea(display, gget_base_window(), zoomed.base_image, gget_root_gc(), 0, 0, w, h, 0, 0);
}

// The picture that a zoom starts from.
struct Source {
    Pixmap pixmap;
    bool drawn; // as it was drawn, not magnified
};

// A frame keeps its picture as it was drawn. A still picture is magnified where
// it is: a further zoom goes by what is on show.
Source source_of(int ind, int factor) {
    if (gget_num_images() > 0) {
        return {gget_frame_id(ind), true};
    }
    if (zoomed.base_image != 0 && factor > 0) {
        return {zoomed.base_image, true};
    }
    return {gget_base_window(), zoomed.zoom == 1};
}

// Centre along an axis in pixels of the source; `click` -1 keeps the old one.
int source_centre(bool drawn, int click, int centre, int size) {
    if (!drawn) {
        return click == -1 ? size / 2 : click;
    }
    if (click == -1) {
        return centre;
    }
    return zoomed.zoom == 1 ? click : centre + (click - size / 2) / zoomed.zoom;
}

// Magnifies `source` to `zoom` about (cx, cy) and puts it into the base pixmap.
bool put_magnified(const Source& source, int cx, int cy, int zoom) {
    Display* display = gget_display();
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    const auto w = static_cast<unsigned>(width);
    const auto h = static_cast<unsigned>(height);
    const ImagePtr image(XGetImage(display, source.pixmap, 0, 0, w, h, AllPlanes, ZPixmap));
    if (!image) {
        return false;
    }
    const int before = source.drawn ? 1 : zoomed.zoom;
    const int f = zoom / before;
    const int ox = gzoom_origin(width, cx, f);
    const int oy = gzoom_origin(height, cy, f);
    gmagnify(*image, ox, oy, f);
    XPutImage(display, gget_base_window(), gget_root_gc(), image.get(), 0, 0, 0, 0, w, h);
    const auto scale = static_cast<float>(before);
    zoomed.zoom = zoom;
    zoomed.left = (source.drawn ? 0.0F : zoomed.left) + static_cast<float>(ox) / scale;
    zoomed.top = (source.drawn ? 0.0F : zoomed.top) + static_cast<float>(oy) / scale;
    zoomed.zoom_x = static_cast<int>(zoomed.left) + width / zoom / 2;
    zoomed.zoom_y = static_cast<int>(zoomed.top) + height / zoom / 2;
    return true;
}

} // namespace

int gzoom_origin(int size, int centre, int f) {
    const int shown = size / f;
    int origin = std::max(centre - shown / 2, 0);
    if (shown + origin > size) {
        origin = size - (size + 1) / f;
    }
    const int begun = (size + f - 1) / f; // with the pixel that is shown in part
    return std::clamp(origin, 0, size - begun);
}

void gmagnify(XImage& image, int ox, int oy, int f) {
    constexpr std::array sizes = {32, 24, 16, 8, 4, 1};
    if (std::find(sizes.begin(), sizes.end(), image.bits_per_pixel) == sizes.end()) {
        return;
    }
    const auto row = static_cast<std::size_t>(image.bytes_per_line);
    auto* to = reinterpret_cast<unsigned char*>(image.data);
    const std::vector<unsigned char> source(to, to + row * image.height);
    const unsigned char* from = source.data() + row * oy;
    for (int y = 0; y < image.height; from += row) {
        const unsigned char* first = to;
        stretch_row(image, from, to, ox, f);
        to += row;
        ++y;
        for (const int end = std::min(y + f - 1, image.height); y < end; ++y, to += row) {
            std::memcpy(to, first, row);
        }
    }
}

int gzoom(int ind, int x, int y, int factor, int flag) {
    const bool still = gget_num_images() == 0;
    const bool nothing_to_renew = flag != 0 && (zoomed.zoom == 1 || still);
    if (!gtype_is_WIN() || gget_base_window() == 0 || nothing_to_renew) {
        return 0;
    }
    const int zoom = new_zoom(zoomed.zoom, factor);
    if (zoom <= 1) {
        return zoom == 1 ? gunzoom() : 0;
    }
    const Source source = source_of(ind, factor);
    if (source.pixmap == 0) {
        return 0;
    }
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    gflush_fill();
    if (still && zoomed.zoom == 1) {
        keep_base_image(width, height);
    }
    const int cx = source_centre(source.drawn, x, zoomed.zoom_x, width);
    const int cy = source_centre(source.drawn, y, zoomed.zoom_y, height);
    if (!put_magnified(source, cx, cy, zoom)) {
        return 0;
    }
    gupdate_window();
    return 1;
}

int gunzoom() {
    if (!gtype_is_WIN() || zoomed.zoom == 1) {
        return 0;
    }
    const Zoom before = zoomed;
    zoomed = {};
    if (before.base_image == 0) {
        return gdisplay_frame(frame_current);
    }
    int width = 0;
    int height = 0;
    gget_win_size(&width, &height);
    XCopyArea(gget_display(), before.base_image, gget_base_window(), gget_root_gc(), 0, 0,
              static_cast<unsigned>(width), static_cast<unsigned>(height), 0, 0);
    XFreePixmap(gget_display(), before.base_image);
    return gupdate_window();
}

int greset_zoom() {
    if (zoomed.base_image != 0 && gget_display() != nullptr) {
        XFreePixmap(gget_display(), zoomed.base_image);
    }
    zoomed = {};
    return 0;
}

int gget_zoom() {
    return zoomed.zoom;
}

float xZ_p(float x) {
    return zoomed.left + x / static_cast<float>(zoomed.zoom);
}

float yZ_p(float y) {
    return zoomed.top + y / static_cast<float>(zoomed.zoom);
}

// --- What the frames ask ------------------------------------------------------

bool XDisplay::is_magnified() const {
    return zoomed.zoom > 1;
}

bool XDisplay::show_magnified(int frame) {
    constexpr int old_centre = -1;
    constexpr int old_factor = -1;
    constexpr int renew = 1;
    return gzoom(frame, old_centre, old_centre, old_factor, renew) != 0;
}

void XDisplay::end_magnifying() {
    greset_zoom();
}
