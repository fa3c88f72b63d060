// img_kind: the table of image kinds, and the reader that goes by it. No state.
// A kind is its row here and a module that reads and writes it.
#include "img_kind.h"

#include "img_pixel.h"

#include "files.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr std::array<IMG_kind, 5> kinds = {
    {
     {2, "gif", "GIF", "GIF", "zyr.gif", true, false, false, 0, "GIF", GIF_read, GIF_encode},
     {5, "agif", "GIF", "GIF", "zyr.gif", true, true, false, 0, "GIF", GIF_read, GIF_encode},
     {4, "png", "PNG", "PNG", "zyr.png", true, false, false, 1, "PNG", PNG_read, PNG_encode},
     {3, "img", "IMG", "IMG", "zyr.xwd", false, false, true, 0, "ZYR", IMG_read_zyr, IMG_encode},
     {1, "xwd", "XWD", "xdump", "zyr.xwd", false, false, false, 0, "", XWD_read, XWD_encode},
     }
};
static_assert(*kinds.back().magic == '\0', "what no other kind knows goes to the last");

constexpr std::size_t head_size = 6;

} // namespace

std::span<const IMG_kind> IMG_kinds() {
    return kinds;
}

const IMG_kind* IMG_find_dump(int dump) {
    const auto* row = std::find_if(kinds.begin(), kinds.end(),
                                   [&](const IMG_kind& kind) { return kind.dump == dump; });
    return row == kinds.end() ? nullptr : row;
}

const IMG_kind* IMG_find_word(const char* text) {
    const auto* row = std::find_if(kinds.begin(), kinds.end(),
                                   [&](const IMG_kind& kind) { return begins(text, kind.word); });
    return row == kinds.end() ? nullptr : row;
}

int IMG_read_any(const char* filename, IMG_report* image, int type, int depth) {
    std::array<unsigned char, head_size> head{};
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
    const auto* kind = std::find_if(kinds.begin(), kinds.end(), [&](const IMG_kind& row) {
        return std::memcmp(head.data() + row.magic_at, row.magic, std::strlen(row.magic)) == 0;
    });
    IMG_init(image);
    image->depth = depth;
    const int result = kind->read(filename, image, type);
    if (result == 0) {
        IMG_free(image);
    }
    return result;
}
