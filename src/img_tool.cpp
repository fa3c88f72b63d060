// img_tool: the image record: clearing, copying, printing. No state. The formats
// are in img_native, gif, png and xdump, their table in img_kind.
#include "zyrimg.h"

#include "no_memory.h"
#include "region.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

std::size_t num_bytes(const IMG_report& image) {
    return static_cast<std::size_t>(image.bytes_line) * static_cast<std::size_t>(image.height);
}

} // namespace

int IMG_init(IMG_report* image) {
    *image = {};
    DOM_init(&image->domain);
    return 0;
}

int IMG_free(IMG_report* image) {
    image->data = nullptr;
    image->colors = nullptr;
    image->num_colors = 0;
    return 0;
}

int IMG_alloc(IMG_report* image) {
    if (IMG_alloc_unset(image) == 0) {
        return 0;
    }
    std::memset(image->data.get(), 0, num_bytes(*image));
    return 1;
}

int IMG_alloc_unset(IMG_report* image) {
    image->data = nullptr;
    if (image->width < 1 || image->height < 1 || image->bytes_line < 1 ||
        num_bytes(*image) > img_most_bytes ||
        static_cast<std::size_t>(image->width) * static_cast<std::size_t>(image->height) >
            img_most_pixels) {
        return 0;
    }
    const ZYR_own_report report;
    image->data = IMG_pixels(new (std::nothrow) unsigned char[num_bytes(*image)]);
    return image->data != nullptr ? 1 : 0;
}

int IMG_alloc_colors(IMG_report* image, int count) {
    const bool possible = count > 0 && count <= img_most_colors;
    const ZYR_own_report report;
    image->colors.reset(possible ? new (std::nothrow) IMG_color[static_cast<std::size_t>(count)]()
                                 : nullptr);
    image->num_colors = image->colors != nullptr ? count : 0;
    return image->colors != nullptr ? 1 : 0;
}

int IMG_copy(IMG_report* dest, const IMG_report* src) {
    IMG_free(dest);
    static_cast<IMG_fields&>(*dest) = *src;
    dest->num_colors = 0;
    if (src->colors != nullptr) {
        if (IMG_alloc_colors(dest, src->num_colors) == 0) {
            return 0;
        }
        std::copy_n(src->colors.get(), src->num_colors, dest->colors.get());
    }
    if (src->data != nullptr) {
        if (IMG_alloc(dest) == 0) {
            IMG_free(dest);
            return 0;
        }
        std::memcpy(dest->data.get(), src->data.get(), num_bytes(*src));
    }
    return 1;
}

int IMG_print(int level, const IMG_report* image) {
    const auto mask = static_cast<unsigned>(level);
    MESS_print(mask, "Image: %s\n", image->info);
    MESS_print(mask, "Date: %s\n", image->datim);
    MESS_print(mask, "Size: %d %d Depth: %d Bits: %d Line: %d Order: %d\n", image->width,
               image->height, image->depth, image->bits_pixel, image->bytes_line,
               image->byte_order);
    MESS_print(mask, "Color type: %d Colors: %d Masks: %x %x %x Transparent: %d\n",
               image->color_type, image->num_colors, image->red, image->grn, image->blu,
               image->trans_color);
    MESS_print(mask, "Domain: ");
    return DOM_print(mask, &image->domain);
}
