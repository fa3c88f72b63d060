// img_tool: the image record: clearing, copying, reading a file of any kind, and
// the dump of the window as a native image. No state. The native format is in
// img_native, the other formats in gif, png and xdump.
#include "img_pixel.h"

#include "files.h"
#include "gks.h"
#include "maptran.h"
#include "plt_tool.h"
#include "region.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace {

std::size_t num_bytes(const IMG_report& image) {
    return static_cast<std::size_t>(image.bytes_line) * static_cast<std::size_t>(image.height);
}

// How the bytes behind a possible note line tell the kind.
struct Kind {
    std::size_t at;
    const char* text;
    int (*read)(const char* filename, IMG_report* image, int type);
};
constexpr Kind kinds[] = {
    {0, "GIF", GIF_read    },
    {1, "PNG", PNG_read    },
    {0, "ZYR", IMG_read_zyr},
};

// A picture laid out on the domain of the plot lies on the earth.
void locate(IMG_report* image) {
    constexpr float largest_offset = 0.7F;
    if (PLT_get_view_offset() > largest_offset) {
        return;
    }
    Domain& d = image->domain;
    MAP_get_domain(&d);
    if (is_set(d.proj) && d.nx != image->width) {
        d.dx =
            d.dx * static_cast<float>(d.nx - 1) / static_cast<float>(std::max(image->width - 1, 1));
        d.dy = d.dy * static_cast<float>(d.ny - 1) /
               static_cast<float>(std::max(image->height - 1, 1));
        d.nx = image->width;
        d.ny = image->height;
    }
}

const char* label_text(int lab) {
    const char* text = PLT_get_label(lab, 0);
    return text != nullptr ? text : "";
}

} // namespace

int IMG_init(IMG_report* image) {
    *image = {};
    DOM_init(&image->domain);
    return 0;
}

int IMG_free(IMG_report* image) {
    delete[] image->data;
    delete[] image->colors;
    image->data = nullptr;
    image->colors = nullptr;
    image->num_colors = 0;
    return 0;
}

int IMG_alloc(IMG_report* image) {
    delete[] image->data;
    image->data = nullptr;
    if (image->width < 1 || image->height < 1 || image->bytes_line < 1 ||
        num_bytes(*image) > img_most_bytes ||
        static_cast<std::size_t>(image->width) * static_cast<std::size_t>(image->height) >
            img_most_pixels) {
        return 0;
    }
    image->data = new (std::nothrow) unsigned char[num_bytes(*image)]();
    return image->data != nullptr ? 1 : 0;
}

int IMG_alloc_colors(IMG_report* image, int count) {
    delete[] image->colors;
    const bool possible = count > 0 && count <= img_most_colors;
    image->colors =
        possible ? new (std::nothrow) IMG_color[static_cast<std::size_t>(count)]() : nullptr;
    image->num_colors = image->colors != nullptr ? count : 0;
    return image->colors != nullptr ? 1 : 0;
}

int IMG_copy(IMG_report* dest, const IMG_report* src) {
    *dest = *src;
    dest->data = nullptr;
    dest->colors = nullptr;
    dest->num_colors = 0;
    if (src->colors != nullptr) {
        if (IMG_alloc_colors(dest, src->num_colors) == 0) {
            return 0;
        }
        std::copy_n(src->colors, src->num_colors, dest->colors);
    }
    if (src->data != nullptr) {
        if (IMG_alloc(dest) == 0) {
            IMG_free(dest);
            return 0;
        }
        std::memcpy(dest->data, src->data, num_bytes(*src));
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

int IMG_read(const char* filename, IMG_report* image, int type) {
    constexpr int any_depth = 32;
    std::array<unsigned char, 6> head{};
    {
        const FILE_ptr file(FILE_open(filename, "rb"));
        if (!file) {
            MESS_print(mess_warn, "IMG_read: Unable to open image file: %s\n", filename);
            return 0;
        }
        if (!IMG_read_head(file.get(), head.data(), head.size())) {
            head.fill(0); // the reader of last resort says what is wrong
        }
    }
    IMG_init(image);
    image->depth = gget_win_depth();
    if (type == 1 && image->depth == 0) {
        image->depth = any_depth;
    }
    const auto* kind = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& row) {
        return std::memcmp(head.data() + row.at, row.text, std::strlen(row.text)) == 0;
    });
    auto* const read = kind != std::end(kinds) ? kind->read : XWD_read;
    const int result = read(filename, image, type);
    if (result == 0) {
        IMG_free(image);
    }
    return result;
}

int IMG_dump(const char* filename) {
    IMG_report image;
    int result = 0;
    if (gget_image(&image) != 0) {
        locate(&image);
        std::array<char, 2 * sizeof image.info> info{};
        std::snprintf(info.data(), info.size(), "%s [%s]", label_text(0), label_text(5));
        copy_text(image.info, sizeof image.info, info.data());
        copy_text(image.datim, sizeof image.datim, label_text(2));
        result = IMG_write(filename, &image, 0);
    }
    IMG_free(&image);
    return result;
}
