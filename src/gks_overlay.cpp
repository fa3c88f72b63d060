// gks_overlay: lays an image over the plot, its background transparent, on
// displays of any depth. Owns nothing. Needs a display and its draw window;
// pictures of the window are taken in gks_img.cpp. The record as its file gave it
// becomes one of pixels of this display, which the display puts in its place.

#include "gks_overlay.h"

#include "gks_draw.h"
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

constexpr int small_depth = 8; // displays up to it have a colour map
constexpr int table_size = 256;

// --- Pixels of a record ---------------------------------------------------------

struct Masks {
    Pixel red, grn, blu;
};
constexpr Masks usual_masks = {0xff0000, 0xff00, 0xff};

Masks display_masks() {
    return {static_cast<Pixel>(gget_red_mask()), static_cast<Pixel>(gget_grn_mask()),
            static_cast<Pixel>(gget_blu_mask())};
}

bool same(const Masks& a, const Masks& b) {
    return a.red == b.red && a.grn == b.grn && a.blu == b.blu;
}

// What a pixel's value means.
enum class Meaning {
    index,  // an entry of the table
    direct, // an entry for each component, under masks
    gray,   // a level
    masked  // components under masks
};

Meaning meaning_of(const IMG_report& image) {
    if (IMG_is_direct(image)) {
        return Meaning::direct;
    }
    if (image.color_type == 1 && image.num_colors > 0 && image.colors != nullptr &&
        image.depth <= 16) {
        return Meaning::index;
    }
    const bool has_masks = (image.red | image.grn | image.blu) != 0;
    return has_masks || image.depth > 16 ? Meaning::masked : Meaning::gray;
}

Masks masks_of(const IMG_report& image) {
    return (image.red | image.grn | image.blu) != 0 ? Masks{image.red, image.grn, image.blu}
                                                    : usual_masks;
}

// --- Colours of a record --------------------------------------------------------

float masked_component(Pixel value, Pixel mask) {
    if (mask == 0) {
        return 0.0F;
    }
    const int shift = std::countr_zero(mask);
    return static_cast<float>((value & mask) >> shift) / static_cast<float>(mask >> shift);
}

// The entry of a component under its mask; beyond the table it is entry 0.
const IMG_color& entry(const IMG_report& image, Pixel value, Pixel mask) {
    const Pixel at = mask == 0 ? 0 : (value & mask) >> std::countr_zero(mask);
    return image.colors[at < static_cast<Pixel>(image.num_colors) ? at : 0];
}

// A value beyond the table is entry 0.
IMG_color color_of(const IMG_report& image, Pixel value) {
    const Masks masks = masks_of(image);
    switch (meaning_of(image)) {
    case Meaning::index:
        return image.colors[value < static_cast<Pixel>(image.num_colors) ? value : 0];
    case Meaning::direct:
        return {entry(image, value, masks.red).red, entry(image, value, masks.grn).grn,
                entry(image, value, masks.blu).blu};
    case Meaning::masked:
        return {masked_component(value, masks.red), masked_component(value, masks.grn),
                masked_component(value, masks.blu)};
    case Meaning::gray:
        break;
    }
    const auto most = static_cast<float>((Pixel{1} << image.depth) - 1);
    const float level = static_cast<float>(value) / most;
    return {level, level, level};
}

// --- Pixels of a display with masks ---------------------------------------------

// A component under its mask: rounded at eight bits, where it then is what the
// file says, and cut to fewer.
Pixel under_mask(float component, Pixel mask) {
    if (mask == 0) {
        return 0;
    }
    constexpr Pixel byte = 0xff;
    const int shift = std::countr_zero(mask);
    const Pixel most = mask >> shift;
    constexpr float cut = 0.001F; // keeps a whole number from falling short
    const float level = std::clamp(component, 0.0F, 1.0F) * static_cast<float>(most);
    return static_cast<Pixel>(level + (most >= byte ? 0.5F : cut)) << shift;
}

Pixel pixel_of_color(const IMG_color& color, const Masks& masks) {
    return under_mask(color.red, masks.red) | under_mask(color.grn, masks.grn) |
           under_mask(color.blu, masks.blu);
}

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
// goes to one of a few steps. `key` tells the resulting colours apart.
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
            IMG_color color = color_of(image, value);
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
    if (image.colors != nullptr) {
        if (IMG_alloc_colors(part, image.num_colors) == 0) {
            return false;
        }
        std::copy_n(image.colors.get(), image.num_colors, part->colors.get());
    }
    if (IMG_alloc(part) == 0) {
        return false;
    }
    const std::size_t size = static_cast<std::size_t>(part->height) * image.bytes_line;
    std::memcpy(part->data.get(), image.data.get(), size);
    return true;
}

} // namespace

bool gimage_is_readable(const IMG_report& image) {
    return image.data != nullptr && image.width > 0 && image.height > 0 && image.depth > 0 &&
           IMG_line_pixels(image) >= image.width;
}

Gimage_pixels::Gimage_pixels(const IMG_report& image)
    : image_(&image),
      unchanged_(gget_win_depth() <= small_depth ||
                 (meaning_of(image) == Meaning::masked && same(masks_of(image), display_masks()))) {
    const bool tabled = !unchanged_ && image.depth <= small_depth;
    for (Pixel value = 0; tabled && value < table_.size(); ++value) {
        table_[value] = convert(value);
    }
}

void Gimage_pixels::row(int y, std::vector<std::uint32_t>* out) const {
    out->resize(static_cast<std::size_t>(image_->width));
    IMG_row_values(*image_, y, image_->width, out->data());
    if (unchanged_) {
        return;
    }
    for (Pixel& value : *out) {
        value = image_->depth <= small_depth ? table_[value % table_.size()] : convert(value);
    }
}

// A grey level goes to all components on a display of 16 bits too: the level in
// both bytes would show green and blue.
std::uint32_t Gimage_pixels::convert(std::uint32_t value) const {
    return pixel_of_color(color_of(*image_, value), display_masks());
}

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
    if (image->depth == small_depth && meaning_of(*image) == Meaning::gray) {
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
