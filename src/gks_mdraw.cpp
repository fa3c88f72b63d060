// gks_mdraw: the display in memory, for pictures that become image files: no window,
// no events, no server. Owns its pictures and the look of its pens; what is drawn is
// worked out in gks_raster. gopen_memory opens it, gclose_display ends it.
//
// It shows what a window of the same size shows on a screen of 24 bits.

#include "gks_draw.h"
#include "gks_pixels.h"
#include "gks_raster.h"
#include "gks_state.h"
#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::uint32_t white = 0xFFFFFF;
constexpr std::uint32_t black = 0;
constexpr int num_pens = 4;

struct Picture {
    int width = 0;
    int height = 0;
    std::unique_ptr<std::uint32_t[]> pixels; // [height][width], as 0xRRGGBB
};

struct Pen {
    bool made = false;
    std::uint32_t pixel = white;
    int width = 0;
};

struct Memory {
    std::vector<Picture> pictures; // number 1 is the first
    std::array<Pen, num_pens> pens{};
    bool dashed = false; // the line pen
    Gdash dash = {
        2, {4, 4}
    };          // as a server begins
    int fill_style = GSOLID; // the fill pen
    int fill_pattern = -1;   // none yet
    Gbox clip{};
    int redraw = 1; // of the redraw list before
};
Memory memory;

Pen& pen_of(Gpen pen) {
    return memory.pens[static_cast<std::size_t>(pen)];
}

Picture* picture_of(Gpicture id) {
    return id > 0 && id <= memory.pictures.size() ? &memory.pictures[id - 1] : nullptr;
}

Gbox whole(const Picture& picture) {
    return {0, 0, picture.width, picture.height};
}

// Where both are.
Gbox common(const Gbox& a, const Gbox& b) {
    return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

Gbox box_of(const Grectangle& rect) {
    return {rect.x, rect.y, rect.x + rect.width, rect.y + rect.height};
}

std::uint32_t pixel_of_index(int ind) {
    return static_cast<std::uint32_t>(gget_color_ind(ind)) & white;
}

// The picture in force, under the clip; without pixels there is nothing to draw on.
Gcanvas canvas() {
    Picture* picture = picture_of(gget_draw_window());
    if (picture == nullptr) {
        return {nullptr, 0, {}};
    }
    const Gbox clip = common(whole(*picture), memory.clip);
    const bool empty = clip.x1 >= clip.x2 || clip.y1 >= clip.y2;
    return {empty ? nullptr : picture->pixels.get(), picture->width, clip};
}

const std::array<unsigned char, pattern_size>* pattern_in_force() {
    return memory.fill_style == GPAT && memory.fill_pattern >= 0
               ? &gfill_pattern(memory.fill_pattern)
               : nullptr;
}

// --- Colours by name --------------------------------------------------------------

struct Named_color {
    const char* name; // small letters, no blanks
    std::uint32_t rgb;
};

// What servers call them. Greys with a number are worked out.
constexpr Named_color named_colors[] = {
    {"aliceblue",            0xF0F8FF},
    {"antiquewhite",         0xFAEBD7},
    {"aquamarine",           0x7FFFD4},
    {"azure",                0xF0FFFF},
    {"beige",                0xF5F5DC},
    {"bisque",               0xFFE4C4},
    {"black",                0x000000},
    {"blanchedalmond",       0xFFEBCD},
    {"blue",                 0x0000FF},
    {"blueviolet",           0x8A2BE2},
    {"brown",                0xA52A2A},
    {"burlywood",            0xDEB887},
    {"cadetblue",            0x5F9EA0},
    {"chartreuse",           0x7FFF00},
    {"chocolate",            0xD2691E},
    {"coral",                0xFF7F50},
    {"cornflowerblue",       0x6495ED},
    {"cornsilk",             0xFFF8DC},
    {"cyan",                 0x00FFFF},
    {"darkblue",             0x00008B},
    {"darkcyan",             0x008B8B},
    {"darkgoldenrod",        0xB8860B},
    {"darkgray",             0xA9A9A9},
    {"darkgreen",            0x006400},
    {"darkgrey",             0xA9A9A9},
    {"darkkhaki",            0xBDB76B},
    {"darkmagenta",          0x8B008B},
    {"darkolivegreen",       0x556B2F},
    {"darkorange",           0xFF8C00},
    {"darkorchid",           0x9932CC},
    {"darkred",              0x8B0000},
    {"darksalmon",           0xE9967A},
    {"darkseagreen",         0x8FBC8F},
    {"darkslateblue",        0x483D8B},
    {"darkslategray",        0x2F4F4F},
    {"darkslategrey",        0x2F4F4F},
    {"darkturquoise",        0x00CED1},
    {"darkviolet",           0x9400D3},
    {"deeppink",             0xFF1493},
    {"deepskyblue",          0x00BFFF},
    {"dimgray",              0x696969},
    {"dimgrey",              0x696969},
    {"dodgerblue",           0x1E90FF},
    {"firebrick",            0xB22222},
    {"floralwhite",          0xFFFAF0},
    {"forestgreen",          0x228B22},
    {"gainsboro",            0xDCDCDC},
    {"ghostwhite",           0xF8F8FF},
    {"gold",                 0xFFD700},
    {"goldenrod",            0xDAA520},
    {"gray",                 0xBEBEBE},
    {"green",                0x00FF00},
    {"greenyellow",          0xADFF2F},
    {"grey",                 0xBEBEBE},
    {"honeydew",             0xF0FFF0},
    {"hotpink",              0xFF69B4},
    {"indianred",            0xCD5C5C},
    {"ivory",                0xFFFFF0},
    {"khaki",                0xF0E68C},
    {"lavender",             0xE6E6FA},
    {"lavenderblush",        0xFFF0F5},
    {"lawngreen",            0x7CFC00},
    {"lemonchiffon",         0xFFFACD},
    {"lightblue",            0xADD8E6},
    {"lightcoral",           0xF08080},
    {"lightcyan",            0xE0FFFF},
    {"lightgoldenrod",       0xEEDD82},
    {"lightgoldenrodyellow", 0xFAFAD2},
    {"lightgray",            0xD3D3D3},
    {"lightgreen",           0x90EE90},
    {"lightgrey",            0xD3D3D3},
    {"lightpink",            0xFFB6C1},
    {"lightsalmon",          0xFFA07A},
    {"lightseagreen",        0x20B2AA},
    {"lightskyblue",         0x87CEFA},
    {"lightslateblue",       0x8470FF},
    {"lightslategray",       0x778899},
    {"lightslategrey",       0x778899},
    {"lightsteelblue",       0xB0C4DE},
    {"lightyellow",          0xFFFFE0},
    {"limegreen",            0x32CD32},
    {"linen",                0xFAF0E6},
    {"magenta",              0xFF00FF},
    {"maroon",               0xB03060},
    {"mediumaquamarine",     0x66CDAA},
    {"mediumblue",           0x0000CD},
    {"mediumorchid",         0xBA55D3},
    {"mediumpurple",         0x9370DB},
    {"mediumseagreen",       0x3CB371},
    {"mediumslateblue",      0x7B68EE},
    {"mediumspringgreen",    0x00FA9A},
    {"mediumturquoise",      0x48D1CC},
    {"mediumvioletred",      0xC71585},
    {"midnightblue",         0x191970},
    {"mintcream",            0xF5FFFA},
    {"mistyrose",            0xFFE4E1},
    {"moccasin",             0xFFE4B5},
    {"navajowhite",          0xFFDEAD},
    {"navy",                 0x000080},
    {"navyblue",             0x000080},
    {"oldlace",              0xFDF5E6},
    {"olivedrab",            0x6B8E23},
    {"orange",               0xFFA500},
    {"orangered",            0xFF4500},
    {"orchid",               0xDA70D6},
    {"palegoldenrod",        0xEEE8AA},
    {"palegreen",            0x98FB98},
    {"paleturquoise",        0xAFEEEE},
    {"palevioletred",        0xDB7093},
    {"papayawhip",           0xFFEFD5},
    {"peachpuff",            0xFFDAB9},
    {"peru",                 0xCD853F},
    {"pink",                 0xFFC0CB},
    {"plum",                 0xDDA0DD},
    {"powderblue",           0xB0E0E6},
    {"purple",               0xA020F0},
    {"red",                  0xFF0000},
    {"rosybrown",            0xBC8F8F},
    {"royalblue",            0x4169E1},
    {"saddlebrown",          0x8B4513},
    {"salmon",               0xFA8072},
    {"sandybrown",           0xF4A460},
    {"seagreen",             0x2E8B57},
    {"seashell",             0xFFF5EE},
    {"sienna",               0xA0522D},
    {"skyblue",              0x87CEEB},
    {"slateblue",            0x6A5ACD},
    {"slategray",            0x708090},
    {"slategrey",            0x708090},
    {"snow",                 0xFFFAFA},
    {"springgreen",          0x00FF7F},
    {"steelblue",            0x4682B4},
    {"tan",                  0xD2B48C},
    {"thistle",              0xD8BFD8},
    {"tomato",               0xFF6347},
    {"turquoise",            0x40E0D0},
    {"violet",               0xEE82EE},
    {"violetred",            0xD02090},
    {"wheat",                0xF5DEB3},
    {"white",                0xFFFFFF},
    {"whitesmoke",           0xF5F5F5},
    {"yellow",               0xFFFF00},
    {"yellowgreen",          0x9ACD32},
};

Gcolr_levels levels_of_rgb(std::uint32_t rgb) {
    constexpr unsigned both_bytes = 0x101;
    const auto part = [rgb](int shift) {
        return static_cast<std::uint16_t>((rgb >> shift & 0xFF) * both_bytes);
    };
    return {part(16), part(8), part(0)};
}

// Hexadecimal digits alone, 1 to 4 of them.
bool read_hex(std::string_view text, unsigned* value) {
    constexpr int most = 4;
    const std::string digits(text);
    const char* at = digits.c_str();
    int number = 0;
    const bool read = take_digits(&at, most, 16, &number) && at == digits.c_str() + digits.size();
    *value = static_cast<unsigned>(number);
    return read;
}

// "#rgb" to "#rrrrggggbbbb": the digits are the upper ones of a component.
bool parse_digits(std::string_view text, Gcolr_levels* levels) {
    const std::size_t n = text.size() / 3;
    std::array<unsigned, 3> part{};
    if (n * 3 != text.size()) {
        return false;
    }
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (!read_hex(text.substr(i * n, n), &part[i])) {
            return false;
        }
        part[i] <<= 16 - 4 * n;
    }
    *levels = {static_cast<std::uint16_t>(part[0]), static_cast<std::uint16_t>(part[1]),
               static_cast<std::uint16_t>(part[2])};
    return true;
}

// "r/g/b": fractions of the most that the digits hold.
bool parse_fractions(std::string_view text, Gcolr_levels* levels) {
    constexpr unsigned full = 0xFFFF;
    std::array<unsigned, 3> part{};
    for (std::size_t i = 0; i < part.size(); ++i) {
        const std::size_t end = i + 1 < part.size() ? text.find('/') : text.size();
        if (end == text.npos || !read_hex(text.substr(0, end), &part[i])) {
            return false;
        }
        part[i] = part[i] * full / ((1U << 4 * end) - 1);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    *levels = {static_cast<std::uint16_t>(part[0]), static_cast<std::uint16_t>(part[1]),
               static_cast<std::uint16_t>(part[2])};
    return true;
}

bool parse_name(std::string_view text, Gcolr_levels* levels) {
    std::string name;
    for (const char c : text) {
        if (c != ' ') {
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    const auto* row = std::find_if(std::begin(named_colors), std::end(named_colors),
                                   [&](const Named_color& color) { return name == color.name; });
    if (row != std::end(named_colors)) {
        *levels = levels_of_rgb(row->rgb);
        return true;
    }
    const bool grey = name.starts_with("gray") || name.starts_with("grey");
    const char* at = name.c_str() + (grey ? 4 : 0);
    int percent = 0;
    if (!grey || !take_int(&at, &percent) || *at != '\0' || percent < 0 || percent > 100) {
        return false;
    }
    const auto level = static_cast<std::uint32_t>((percent * 255 + 50) / 100);
    *levels = levels_of_rgb(level * 0x10101);
    return true;
}

// --- The side of gks_draw.h -------------------------------------------------------

class MemoryDisplay final : public Gdisplay {
public:
    [[nodiscard]] bool has_pen(Gpen pen) const override { return pen_of(pen).made; }
    void init_pen(Gpen pen, int /*type*/) override {
        pen_of(pen).made = true;
        pen_of(pen).pixel = white;
        if (pen == Gpen::fill) {
            memory.fill_style = GSOLID;
        }
    }
    void reset_pens() override {
        for (Pen& pen : memory.pens) {
            pen.width = 0;
        }
        memory.dashed = false;
    }
    void set_color(Gpen pen, int ind) override { pen_of(pen).pixel = pixel_of_index(ind); }
    void set_black(Gpen pen) override { pen_of(pen).pixel = black; }
    void set_width(Gpen pen, int width) override { pen_of(pen).width = width; }
    void set_dash(int type) override {
        memory.dashed = type != 1;
        const Gdash dash = gline_dash(type);
        if (dash.count > 0) {
            memory.dash = dash;
        }
    }
    void set_fill_style(int style, int pattern) override {
        if (style == GSOLID || style == GPAT) {
            memory.fill_style = style;
        }
        if (style == GPAT && pattern >= 0) {
            memory.fill_pattern = pattern;
        }
    }
    void set_clip(const Gclip_rect& rect) override {
        memory.clip = {rect.x, rect.y, rect.x + rect.width, rect.y + rect.height};
    }

    void point(Gpen pen, Gpixel at) override {
        const Gcanvas on = canvas();
        if (on.pixels != nullptr) {
            graster_point(on, {pen_of(pen).pixel, nullptr}, at);
        }
    }
    void lines(Gpen pen, int n, const Gpixel* points) override {
        const Gcanvas on = canvas();
        if (on.pixels == nullptr || n < 2) {
            return;
        }
        const bool dashed = pen == Gpen::line && memory.dashed;
        const Gstroke stroke = {pen_of(pen).width, pen == Gpen::text,
                                dashed ? &memory.dash : nullptr};
        graster_lines(on, {pen_of(pen).pixel, nullptr}, stroke,
                      {points, static_cast<std::size_t>(n)});
    }
    void area(int n, const Gpixel* points, int color) override {
        const Gcanvas on = canvas();
        if (on.pixels == nullptr || n < 1) {
            return;
        }
        const Gink ink = {pixel_of_index(color), pattern_in_force()};
        graster_outlined(on, ink, {points, static_cast<std::size_t>(n)});
    }

    void quads(std::span<const Gcolored_quad> quads) override {
        const Gcanvas on = canvas();
        if (on.pixels == nullptr) {
            return;
        }
        int color = missing;
        std::uint32_t pixel = black;
        for (const Gcolored_quad& quad : quads) {
            if (quad.color != color) {
                color = quad.color;
                pixel = pixel_of_index(color);
            }
            graster_quad(on, pixel, quad.corners);
        }
    }

    Gpicture make_picture(int width, int height) override;
    void free_picture(Gpicture picture) override;
    void fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel) override;
    void copy_picture(Gpicture from, Gpicture to, const Grectangle& rect) override;
    int put_image(IMG_report* image, long trans, int x, int y) override;
    int take_image(IMG_report* image, bool lent) override;
    [[nodiscard]] bool keeps_frames() const override { return false; }

    void show() override {}
    void blank() override {}
    void flush() override {}
    void sync() override {}
    void close() override;

    bool parse_color(const char* text, Gcolr_levels* levels) override {
        const std::string_view name(text);
        if (name.starts_with('#')) {
            return parse_digits(name.substr(1), levels);
        }
        return strnicmp(text, "rgb:", 4) == 0 ? parse_fractions(name.substr(4), levels)
                                              : parse_name(name, levels);
    }
    // Its colours are true: there are no cells.
    bool take_cell(int* /*pixel*/) override { return false; }
    void store_cell(int /*pixel*/, const Gcolr_levels& /*levels*/) override {}
    int share_pixel(const Gcolr_levels& /*levels*/, int otherwise) override { return otherwise; }
    int share_levels(Gcolr_levels* /*levels*/) override { return 0; }
    Gcolr_levels screen_levels(bool is_white) override {
        return levels_of_rgb(is_white ? white : black);
    }
    // Nor has it settings or fonts of a server.
    const char* default_of(const char* /*name*/) override { return nullptr; }
    int load_font(const char* /*name*/) override { return -1; }
    void free_font() override {}
    bool measure(std::string_view /*text*/, Gstring_size* /*size*/) override { return false; }
    void string(int /*x*/, int /*y*/, std::string_view /*text*/) override {}
};
MemoryDisplay display;

Gpicture MemoryDisplay::make_picture(int width, int height) {
    const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    Picture made = {width, height,
                    std::unique_ptr<std::uint32_t[]>(new (std::nothrow) std::uint32_t[size])};
    if (made.pixels == nullptr) {
        return 0;
    }
    const auto free = std::find_if(memory.pictures.begin(), memory.pictures.end(),
                                   [](const Picture& p) { return p.pixels == nullptr; });
    const auto at = free - memory.pictures.begin();
    if (free == memory.pictures.end()) {
        memory.pictures.push_back(std::move(made));
    } else {
        *free = std::move(made);
    }
    const Gpicture id = static_cast<Gpicture>(at) + 1;
    fill_picture(id, {0, 0, width, height}, gget_back_pixel());
    return id;
}

void MemoryDisplay::free_picture(Gpicture picture) {
    Picture* found = picture_of(picture);
    if (found != nullptr) {
        *found = {};
    }
}

void MemoryDisplay::fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel) {
    Picture* to = picture_of(picture);
    if (to == nullptr) {
        return;
    }
    const Gbox box = common(whole(*to), box_of(rect));
    const auto value = static_cast<std::uint32_t>(pixel) & white;
    for (int y = box.y1; y < box.y2 && box.x1 < box.x2; ++y) {
        std::uint32_t* row = to->pixels.get() + static_cast<std::ptrdiff_t>(y) * to->width;
        std::fill(row + box.x1, row + box.x2, value);
    }
}

void MemoryDisplay::copy_picture(Gpicture from, Gpicture to, const Grectangle& rect) {
    const Picture* source = picture_of(from);
    Picture* target = picture_of(to);
    if (source == nullptr || target == nullptr || source == target) {
        return;
    }
    const Gbox box = common(common(whole(*source), whole(*target)), box_of(rect));
    for (int y = box.y1; y < box.y2 && box.x1 < box.x2; ++y) {
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * source->width;
        std::copy(source->pixels.get() + at + box.x1, source->pixels.get() + at + box.x2,
                  target->pixels.get() + static_cast<std::ptrdiff_t>(y) * target->width + box.x1);
    }
}

int MemoryDisplay::put_image(IMG_report* image, long trans, int x, int y) {
    Picture* to = picture_of(gget_draw_window());
    if (to == nullptr || !gimage_is_readable(*image)) {
        return 0;
    }
    const Gbox box = common(whole(*to), {x, y, x + image->width, y + image->height});
    const std::uint32_t clear = static_cast<std::uint32_t>(trans) & white;
    const Gimage_pixels pixels(*image);
    std::vector<std::uint32_t> from;
    for (int row = box.y1; row < box.y2; ++row) {
        pixels.row(row - y, &from);
        std::uint32_t* out = to->pixels.get() + static_cast<std::ptrdiff_t>(row) * to->width;
        for (int column = box.x1; column < box.x2; ++column) {
            const std::uint32_t value = from[column - x] & white;
            if (value != clear) {
                out[column] = value;
            }
        }
    }
    return 1;
}

int MemoryDisplay::take_image(IMG_report* image, bool lent) {
    const Picture* from = picture_of(gget_draw_window());
    if (from == nullptr) {
        return 0;
    }
    image->width = std::min(gscreen().root_width, from->width);
    image->height = std::min(gscreen().root_height, from->height);
    image->depth = gscreen().depth;
    image->bits_pixel = 32;
    image->bytes_line = image->width * 4;
    image->byte_order = std::endian::native == std::endian::big ? 1 : 0;
    image->red = static_cast<unsigned>(gget_red_mask());
    image->grn = static_cast<unsigned>(gget_grn_mask());
    image->blu = static_cast<unsigned>(gget_blu_mask());
    image->num_colors = 0;
    image->color_type = 0;
    // A window's name has the number of the frame on show.
    std::array<char, sizeof image->info> name{};
    if (gget_num_images() > 0) {
        std::snprintf(name.data(), name.size(), "%s [%d]", gget_win_title(), gget_cur_frame());
    } else {
        std::snprintf(name.data(), name.size(), "%s", gget_win_title());
    }
    copy_text(image->info, sizeof image->info, name.data());
    if (lent && image->width == from->width) {
        image->data =
            IMG_pixels(reinterpret_cast<unsigned char*>(from->pixels.get()), IMG_pixels_free{true});
        return 1;
    }
    if (IMG_alloc_unset(image) == 0) {
        MESS_print(mess_warn, "gget_image: Unable to allocate data buffer.\n");
        return 0;
    }
    for (int y = 0; y < image->height; ++y) {
        std::memcpy(image->data.get() + static_cast<std::size_t>(y) * image->bytes_line,
                    from->pixels.get() + static_cast<std::ptrdiff_t>(y) * from->width,
                    static_cast<std::size_t>(image->bytes_line));
    }
    return 1;
}

void MemoryDisplay::close() {
    gdelete_all_frames();
    gforget_pixels(false);
    gset_redraw(memory.redraw);
    memory = {};
}

// --- Size -------------------------------------------------------------------------

struct Size {
    int width, height;
};

// A side out of a text; moves the text to after its digits. Held within an int.
int read_side(const char** text) {
    int value = 0;
    take_int(text, &value);
    return std::clamp(value, 0, max_side + 1);
}

// "WxH", a place after it being nothing to this display. False if it is neither
// a size nor a place.
bool read_geometry(const char* text, Size* size) {
    if (*text == '=') {
        ++text;
    }
    if (*text == '+' || *text == '-') {
        return true;
    }
    if (!is_digit(*text)) {
        return false;
    }
    const int width = read_side(&text);
    if ((*text != 'x' && *text != 'X') || !is_digit(text[1])) {
        return false;
    }
    ++text;
    *size = {width, read_side(&text)};
    return *text == '\0' || *text == '+' || *text == '-';
}

Size wanted_size() {
    Size size{};
    gget_win_size(&size.width, &size.height);
    size = {gwindow_side(size.width, default_width), gwindow_side(size.height, default_height)};
    const char* text = gchosen_geometry();
    if (text == nullptr || *text == '\0') {
        return size;
    }
    Size given{};
    if (!read_geometry(text, &given)) {
        MESS_print(mess_warn, "gopen_ws: invalid geometry: %s\n", text);
        return size;
    }
    if (std::max(given.width, given.height) > max_side) {
        MESS_print(mess_warn, "gopen_ws: window size cut to %d\n", max_side);
    }
    return {gwindow_side(given.width, size.width), gwindow_side(given.height, size.height)};
}

} // namespace

bool gnames_memory(const char* conn_id) {
    constexpr std::string_view word = "memory";
    constexpr int length = static_cast<int>(word.size());
    return conn_id != nullptr && strnicmp(conn_id, word.data(), length) == 0 &&
           (conn_id[length] == '\0' || conn_id[length] == ',');
}

int gopen_memory() {
    if (!gis_image_run()) {
        MESS_print(mess_warn,
                   "gopen_ws: the display in memory needs an image to write: -of png@FILE\n");
        return -1;
    }
    if (std::getenv("zyrinverse") != nullptr) {
        gset_inverse(1);
    }
    const Size size = wanted_size();
    memory = {};
    gdraw_use(&display);
    Gscreen& screen = gscreen();
    screen.depth = 24;
    screen.true_color = true;
    screen.red_mask = 0xFF0000;
    screen.grn_mask = 0xFF00;
    screen.blu_mask = 0xFF;
    screen.fore_colr = white;
    screen.back_colr = black;
    if (gget_inverse() != 0) {
        std::swap(screen.fore_colr, screen.back_colr);
    }
    screen.root_width = size.width;
    screen.root_height = size.height;
    screen.base_window = display.make_picture(size.width, size.height);
    if (screen.base_window == 0) {
        MESS_print(mess_warn, "gopen_ws: no memory for a picture of %dx%d\n", size.width,
                   size.height);
        gdraw_use(nullptr);
        memory = {};
        return -1;
    }
    screen.draw_window = screen.base_window;
    gset_win_type(ws_window);
    gset_xsize(size.width, size.height);
    gforget_pixels(true);
    // There are no events, and the image is all that is kept of the plot.
    gset_cache(0);
    memory.redraw = gset_redraw(0);
    return 0;
}

void keep_gks_mdraw(StateKeeper& keeper) {
    keeper.close_by([] { memory.pictures.clear(); });
    keeper.keep(memory.pens);
    keeper.keep(memory.dashed);
    keeper.keep(memory.dash);
    keeper.keep(memory.fill_style);
    keeper.keep(memory.fill_pattern);
    keeper.keep(memory.clip);
    keeper.keep(memory.redraw);
}
