// gks_pixels: the pixels of an image record as those of the open display: what a
// value means, its colour, and the pixel of that under the display's masks. Owns
// nothing.

#include "gks_pixels.h"

#include "gks_draw.h"
#include "img_pixel.h"

#include <algorithm>
#include <bit>

namespace {

using Pixel = std::uint32_t;

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

} // namespace

bool gimage_is_readable(const IMG_report& image) {
    return image.data != nullptr && image.width > 0 && image.height > 0 && image.depth > 0 &&
           IMG_line_pixels(image) >= image.width;
}

bool gimage_is_gray(const IMG_report& image) {
    return meaning_of(image) == Meaning::gray;
}

IMG_color gimage_color(const IMG_report& image, std::uint32_t value) {
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
    return pixel_of_color(gimage_color(*image_, value), display_masks());
}
