// gks_overlay: lays an image over the plot, its background transparent, on
// displays of any depth. Owns nothing. Needs a display and its draw window;
// pictures of the window are taken in gks_img.cpp. The record as its file gave it
// becomes one of pixels of this display, which the display puts in its place.

#include "gks_draw.h"
#include "gks_pixels.h"
#include "img_pixel.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace {

using Pixel = std::uint32_t;

constexpr int table_size = 256;

// --- Pixels of a display with a colour map --------------------------------------

// A shared cell: the table's next free index would be a cell that the plot
// stores its next colour in.
long shared_pixel(const IMG_color& color) {
    constexpr float full = 65535.0F;
    const auto part = [](float value) {
        return static_cast<std::uint16_t>(std::clamp(value, 0.0F, 1.0F) * full);
    };
    constexpr int refused = -1;
    const int pixel =
        gdraw_share_pixel({part(color.red), part(color.grn), part(color.blu)}, refused);
    if (pixel != refused) {
        return pixel;
    }
    return galloc_colr(-1, color.red, color.grn, color.blu); // the map is full
}

// Gives each colour of an image a pixel when it first turns up.
class Palette {
public:
    explicit Palette(long trans) : trans_(trans) { pixels_.fill(-1); }

    unsigned char pixel(Pixel key, const IMG_color& color) {
        long& pixel = pixels_[key];
        const int trans = static_cast<int>(trans_);
        if (pixel < 0) {
            pixel = gis_color_near(color.red, color.grn, color.blu, trans, 1) != 0
                        ? trans_
                        : shared_pixel(color);
        }
        return static_cast<unsigned char>(pixel);
    }

private:
    long trans_;
    std::array<long, table_size> pixels_{};
};

// A colour map has no room for all colours of a deep image: each component
// goes to one of a few steps. `key` distinguishes the resulting colours.
IMG_color to_steps(const IMG_color& color, Pixel* key) {
    const int steps = gget_win_depth() == small_depth ? 5 : 2;
    const auto top = static_cast<float>(steps - 1);
    *key = 0;
    const auto step = [&](float component) {
        const auto level = static_cast<Pixel>(std::lround(std::clamp(component, 0.0F, 1.0F) * top));
        *key = *key * static_cast<Pixel>(steps) + level;
        return static_cast<float>(level) / top;
    };
    const float red = step(color.red);
    const float grn = step(color.grn);
    const float blu = step(color.blu);
    return {red, grn, blu};
}

// The colours of all pixels of an image as pixels of this display.
void map_pixels(const IMG_report& image, long trans, unsigned char* out) {
    Palette palette(trans);
    std::vector<Pixel> row(static_cast<std::size_t>(image.width));
    for (int y = 0; y < image.height; ++y) {
        IMG_row_values(image, y, image.width, row.data());
        for (const Pixel value : row) {
            Pixel key = value % table_size;
            IMG_color color = gimage_color(image, value);
            if (image.depth > small_depth) {
                color = to_steps(color, &key);
            }
            *out++ = palette.pixel(key, color);
        }
    }
}

// --- Background and place -------------------------------------------------------

// The pixel that is not drawn: that of a colour name, or of the background.
long transparent_pixel(const char* background) {
    if (background == nullptr || *background == '\0') {
        return gget_color_ind(-1);
    }
    const int ind = gfind_color(background, nullptr);
    if (ind >= 0) {
        return gget_color_ind(ind);
    }
    Gcolr_levels color{};
    if (!gdraw_parse_color(background, &color)) {
        MESS_print(mess_warn, "goverlay_image: invalid color: %s\n", background);
        return gget_color_ind(-1);
    }
    return gdraw_share_pixel(color, 0);
}

constexpr int far_away = 30000; // places of a server have 16 bits

// From the near edge of the viewport, or with a negative distance from the far
// one.
int place(int start, int size, int image_size, int distance) {
    distance = std::clamp(distance, -far_away, far_away);
    return distance >= 0 ? start + distance : start + size - image_size + distance;
}

// The part of an image that can be seen, at the top left. False without memory.
bool copy_part(const IMG_report& image, int width, int height, IMG_report* part) {
    static_cast<IMG_fields&>(*part) = image;
    part->width = std::min(image.width, width);
    part->height = std::min(image.height, height);
    const bool has_colors = image.colors != nullptr;
    if ((has_colors && IMG_alloc_colors(part, image.num_colors) == 0) || IMG_alloc(part) == 0) {
        return false;
    }
    if (has_colors) {
        std::copy_n(image.colors.get(), image.num_colors, part->colors.get());
    }
    const std::size_t size = static_cast<std::size_t>(part->height) * image.bytes_line;
    std::memcpy(part->data.get(), image.data.get(), size);
    return true;
}

} // namespace

int goverlay_image_file(const char* filename, const char* background, int x, int y) {
    if (!gdraw_is_open() || gget_draw_window() == 0) {
        return 0;
    }
    IMG_report image;
    if (gread_image_file(filename, &image) == 0) {
        return 0;
    }
    return goverlay_image(&image, background, x, y);
}

int gsetup_image_colors(IMG_report* image, long trans) {
    if (!gdraw_is_open() || gget_win_depth() > small_depth || !gimage_is_readable(*image)) {
        return 0;
    }
    if (image->depth == small_depth && gimage_is_gray(*image)) {
        return 1; // pixels already
    }
    IMG_report mapped;
    mapped.width = image->width;
    mapped.height = image->height;
    mapped.bytes_line = image->width;
    if (IMG_alloc(&mapped) == 0) {
        return 0;
    }
    map_pixels(*image, trans, mapped.data.get());
    image->depth = small_depth;
    image->bits_pixel = small_depth;
    image->bytes_line = image->width;
    image->data = std::move(mapped.data);
    return 1;
}

int goverlay_image(IMG_report* image, const char* background, int x, int y) {
    if (!gdraw_is_open() || gget_draw_window() == 0) {
        return 0;
    }
    if (!gimage_is_readable(*image)) {
        MESS_print(mess_warn, "goverlay_image: Pixels of depth %d cannot be shown\n", image->depth);
        return 0;
    }
    gflush_fill();
    const long trans = transparent_pixel(background);
    Gclip_rect view{};
    gget_xviewport(&view);
    const int left = place(view.x, view.width, image->width, x);
    const int top = place(view.y, view.height, image->height, y);
    if (std::max(std::abs(left), std::abs(top)) > far_away) {
        return 1; // nothing of it can be seen
    }
    IMG_report part;
    if (!copy_part(*image, view.width, view.height, &part)) {
        return 0;
    }
    gsetup_image_colors(&part, trans);
    return gdraw_put_image(&part, trans, left, top);
}
