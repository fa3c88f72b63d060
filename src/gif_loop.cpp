// gif_loop: animated GIF files. A picture is written as it comes: the rectangle that
// differs from the one before, in which what stays is transparent. Owns the file that
// is being written, the picture on show and the palette of all pictures, which grows
// with them and is written into its place at the end, with the delay of the last one;
// so is all of a file that cannot be written twice at one place, from a temporary one.
// A picture whose new colours have no room there gets a palette of its own; of more
// than 255 in one picture the others become the nearest of these.
//
// File as written, numbers least significant byte first:
//   6, 7  "GIF89a", width, height, 0xF7: a table of 256 colours, 0, 0
//   768   the colours, red, green, blue; 0 is the transparent one
//   19    unless it is shown once: 0x21 0xFF 11 "NETSCAPE2.0" 3 1, repeats, 0
//   each picture:
//   8     0x21 0xF9 4, what happens to it after its time * 4 + 1, delay in hundredths
//         of a second, 0, 0
//   10    0x2C, left, top, width, height, 64 if interlaced, 0x87 with a table
//   768   with one: its colours
//   ...   code size, sub-blocks, an empty one
//   1     0x3B

#include "gif_loop.h"

#include "gif_parts.h"
#include "img_pixel.h"

#include "out_file.h"
#include "state_keeper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr int no_color = 0;                    // the transparent index
constexpr long colors_at = 13;                 // place of the table in the file
constexpr std::uint32_t nothing = 0xFFFFFFFFU; // no pixel's colour

// --- Palettes -------------------------------------------------------------------

// Up to 255 colours, and the place of each.
class Palette {
public:
    // Place of a colour, from 1; 0 where it has none and there is no room.
    int place(std::uint32_t color) {
        const std::size_t slot = find(color);
        if (places_[slot] == 0 && count_ < img_palette_size) {
            colors_[slot] = color;
            places_[slot] = static_cast<std::uint8_t>(count_);
            list_[static_cast<std::size_t>(count_++)] = color;
        }
        return places_[slot];
    }
    // Place of the colour that comes nearest.
    [[nodiscard]] int nearest(std::uint32_t color) const {
        const auto distance = [color](std::uint32_t other) {
            int sum = 0;
            for (const int shift : {0, 8, 16}) {
                const int step = static_cast<int>(color >> shift & 0xFF) -
                                 static_cast<int>(other >> shift & 0xFF);
                sum += step * step;
            }
            return sum;
        };
        int best = 1;
        for (int i = 2; i < count_; ++i) {
            if (distance(list_[static_cast<std::size_t>(i)]) <
                distance(list_[static_cast<std::size_t>(best)])) {
                best = i;
            }
        }
        return best;
    }
    void write(std::FILE* file) const {
        GIF_bytes table;
        for (const std::uint32_t color : list_) {
            table.u8(color >> 16 & 0xFF).u8(color >> 8 & 0xFF).u8(color & 0xFF);
        }
        table.write(file);
    }

private:
    static constexpr int table_bits = 10;
    static constexpr std::size_t table_size = std::size_t{1} << table_bits;

    [[nodiscard]] std::size_t find(std::uint32_t color) const {
        std::size_t slot = (color * 2654435761U) >> (32 - table_bits);
        while (places_[slot] != 0 && colors_[slot] != color) {
            slot = (slot + 1) % table_size;
        }
        return slot;
    }

    int count_ = 1; // with the transparent one
    std::array<std::uint32_t, img_palette_size> list_{};
    std::array<std::uint32_t, table_size> colors_{};
    std::array<std::uint8_t, table_size> places_{};
};

// --- State ----------------------------------------------------------------------

struct Pace {
    int delay = 50; // hundredths of a second
    int pause = 100;
    int plays = 0; // 0: for ever
};
Pace pace;

struct Loop {
    std::FILE* output = nullptr;
    std::FILE* file = nullptr; // where it is written: the output, or a temporary file
    int width = 0, height = 0;
    Palette palette;
    std::vector<std::uint32_t> shown; // colours of the picture before
    long last_delay = 0;              // place of the delay of the last picture
    bool lacks = false;               // a picture could not be added
};
Loop loop;

void give_up() {
    if (loop.file != loop.output && loop.file != nullptr) {
        std::fclose(loop.file);
    }
    discard_output(loop.output);
    loop = {};
}

// --- A picture ------------------------------------------------------------------

struct Rectangle {
    int left, top, width, height;
};

// The colours of all pixels, as 0xRRGGBB; `back` for those of the background.
std::vector<std::uint32_t> colors_of(const IMG_report& image, const IMG_look& look,
                                     std::uint32_t* back) {
    const IMG_coloring coloring(image);
    const auto color = [&coloring](std::uint32_t value) {
        const IMG_rgb c = coloring(value);
        return std::uint32_t{c.red} << 16 | std::uint32_t{c.grn} << 8 | c.blu;
    };
    *back = color(look.background);
    const auto width = static_cast<std::size_t>(image.width);
    std::vector<std::uint32_t> all(width * static_cast<std::size_t>(image.height));
    for (int row = 0; row < image.height; ++row) {
        std::uint32_t* const line = all.data() + width * static_cast<std::size_t>(row);
        IMG_row_values(image, row, image.width, line);
        for (std::size_t x = 0; x < width;) { // by runs of one value
            const std::uint32_t value = line[x];
            const std::uint32_t shown = color(value);
            for (; x < width && line[x] == value; ++x) {
                line[x] = shown;
            }
        }
    }
    return all;
}

// Where a picture differs from the one before; a single pixel if it does not.
Rectangle changed(const std::vector<std::uint32_t>& now) {
    const auto width = static_cast<std::size_t>(loop.width);
    Rectangle found = {loop.width, 0, 0, 0};
    int right = 0;
    bool any = false;
    for (int y = 0; y < loop.height; ++y) {
        const auto* const a = now.data() + width * static_cast<std::size_t>(y);
        const auto* const b = loop.shown.data() + width * static_cast<std::size_t>(y);
        if (std::memcmp(a, b, width * sizeof *a) == 0) {
            continue;
        }
        const auto first = static_cast<int>(std::mismatch(a, a + width, b).first - a);
        int last = loop.width - 1;
        while (a[last] == b[last]) {
            --last;
        }
        found.top = any ? found.top : y;
        any = true;
        found.height = y - found.top + 1;
        found.left = std::min(found.left, first);
        right = std::max(right, last);
    }
    found.width = right - found.left + 1;
    return any ? found : Rectangle{0, 0, 1, 1};
}

// The indexes of a rectangle of a picture.
struct Indexed {
    std::vector<std::uint8_t> index;
    bool whole = true; // all colours have a place
    int most = 0;      // largest index
};
Indexed index_of(const std::vector<std::uint32_t>& now, const std::vector<std::uint32_t>& before,
                 const Rectangle& part, Palette& palette) {
    Indexed out;
    out.index.reserve(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height));
    for (int y = part.top; y < part.top + part.height; ++y) {
        for (int x = part.left; x < part.left + part.width; ++x) {
            const std::size_t at =
                static_cast<std::size_t>(loop.width) * static_cast<std::size_t>(y) +
                static_cast<std::size_t>(x);
            int place = no_color;
            if (now[at] != before[at]) {
                place = palette.place(now[at]);
                if (place == no_color) {
                    out.whole = false;
                    place = palette.nearest(now[at]);
                }
            }
            out.most = std::max(out.most, place);
            out.index.push_back(static_cast<std::uint8_t>(place));
        }
    }
    return out;
}

void write_part(const Rectangle& part, const Indexed& picture, const Palette* own) {
    constexpr int stays = 1;
    constexpr int goes = 2; // to the background, which shows through
    GIF_bytes head;
    head.u8(0x21).u8(0xF9).u8(4).u8((GIF_is_transparent() ? goes : stays) * 4 + 1);
    head.u16(pace.delay).u8(no_color).u8(0);
    head.u8(0x2C).u16(part.left).u16(part.top).u16(part.width).u16(part.height);
    head.u8((GIF_is_interlaced() ? 0x40 : 0) + (own != nullptr ? 0x87 : 0));
    constexpr long delay_at = 4;
    loop.last_delay = std::ftell(loop.file) + delay_at;
    head.write(loop.file);
    if (own != nullptr) {
        own->write(loop.file);
    }
    GIF_put_pixels(loop.file, part.width, part.height, picture.index.data(),
                   GIF_index_bits(picture.most + 1));
}

void write_head() {
    GIF_bytes head;
    head.u16(loop.width).u16(loop.height).u8(0xF7).u8(0).u8(0);
    std::fputs("GIF89a", loop.file);
    head.write(loop.file);
    loop.palette.write(loop.file);
    if (pace.plays != 1) {
        std::fputs("\x21\xFF\x0BNETSCAPE2.0", loop.file);
        GIF_bytes().u8(3).u8(1).u16(pace.plays == 0 ? 0 : pace.plays - 1).u8(0).write(loop.file);
    }
}

bool open_loop(const char* filename, const IMG_report& image) {
    loop.output = open_output(filename, false);
    if (loop.output == nullptr) {
        MESS_print(mess_warn, "Unable to open GIF file\n");
        return false;
    }
    const bool seeks = std::fseek(loop.output, 0, SEEK_CUR) == 0;
    loop.file = seeks ? loop.output : std::tmpfile();
    loop.width = image.width;
    loop.height = image.height;
    if (loop.file == nullptr) {
        return false;
    }
    write_head();
    return true;
}

void add(std::vector<std::uint32_t> now, std::uint32_t back) {
    const Rectangle all = {0, 0, loop.width, loop.height};
    if (loop.shown.empty() || GIF_is_transparent()) {
        // What was there before is gone; the background stays so where it is transparent.
        loop.shown.assign(now.size(), GIF_is_transparent() ? back : nothing);
    }
    const Rectangle part = GIF_is_transparent() ? all : changed(now);
    const Palette palette = loop.palette;
    Indexed picture = index_of(now, loop.shown, part, loop.palette);
    if (!picture.whole) {
        loop.palette = palette;
        Palette own;
        picture = index_of(now, loop.shown, part, own);
        write_part(part, picture, &own);
    } else {
        write_part(part, picture, nullptr);
    }
    loop.shown = std::move(now);
}

// The whole of a temporary file into the output.
void copy_file() {
    std::array<char, 1 << 14> piece{};
    std::rewind(loop.file);
    for (std::size_t n = 0; (n = std::fread(piece.data(), 1, piece.size(), loop.file)) > 0;) {
        std::fwrite(piece.data(), 1, n, loop.output);
    }
}

bool to_hundredths(float seconds, int* hundredths) {
    constexpr float most = 655.0F;
    if (!(seconds >= 0.0F && seconds <= most)) {
        return false;
    }
    *hundredths = static_cast<int>(std::lround(seconds * 100.0F));
    return true;
}

} // namespace

bool GIF_set_pace(float delay, float pause) {
    Pace wanted = pace;
    if (!to_hundredths(delay, &wanted.delay) || !to_hundredths(pause, &wanted.pause)) {
        return false;
    }
    pace = wanted;
    return true;
}

bool GIF_set_plays(int plays) {
    constexpr int most = 65536;
    if (plays < 0 || plays > most) {
        return false;
    }
    pace.plays = plays;
    return true;
}

int GIF_add_frame(const char* filename, const IMG_report& image, const IMG_look& look) {
    if (image.width > gif_most_side || image.height > gif_most_side) {
        MESS_print(mess_warn, "GIF_write: Image is too large: %dx%d\n", image.width, image.height);
        return 0;
    }
    if (!IMG_is_sound(image, "GIF_write")) {
        return 0;
    }
    if (loop.output == nullptr && !open_loop(filename, image)) {
        give_up();
        return 0;
    }
    if (image.width != loop.width || image.height != loop.height) {
        MESS_print(mess_warn, "GIF_write: The pictures differ in size: %dx%d, %dx%d\n", loop.width,
                   loop.height, image.width, image.height);
        loop.lacks = true;
        return 0;
    }
    std::uint32_t back = 0;
    std::vector<std::uint32_t> now = colors_of(image, look, &back);
    add(std::move(now), back);
    return std::ferror(loop.file) == 0 ? 1 : 0;
}

void GIF_lose_frame() {
    loop.lacks = true;
}

bool GIF_has_frames() {
    return loop.output != nullptr;
}

int GIF_end_frames() {
    if (loop.output == nullptr) {
        loop = {};
        return 0;
    }
    std::FILE* const file = loop.file;
    std::putc(0x3B, file);
    if (std::fseek(file, colors_at, SEEK_SET) == 0) {
        loop.palette.write(file);
    }
    if (std::fseek(file, loop.last_delay, SEEK_SET) == 0) {
        GIF_bytes().u16(pace.pause).write(file);
    }
    std::fflush(file);
    const bool written = std::ferror(file) == 0 && !loop.lacks;
    if (file != loop.output) {
        copy_file();
    }
    if (!written) {
        give_up();
        return 0;
    }
    if (file != loop.output) {
        std::fclose(file);
    }
    std::FILE* const output = loop.output;
    loop = {};
    return close_output(output) == 0 ? 1 : 0;
}

void keep_gif_loop(StateKeeper& keeper) {
    keeper.close_by([] {
        if (loop.output != nullptr) { // of a run that ended early
            give_up();
        }
        loop = {};
    });
    keeper.keep(pace);
}
