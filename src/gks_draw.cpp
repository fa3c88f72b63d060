// gks_draw: the calls of gks_draw.h, on whichever side is in force. Owns what
// every display has (Gscreen), the area held back, dashes and patterns.
//
// A display shows the last area only when it must (gflush_fill): an area with
// the same corners in pixels hides it, and fine radials fall on the same pixels
// again and again. On a display with masks the pixel of a colour is worked out
// here: no server is asked.

#include "gks_draw.h"

#include "gks_pipe.h"
#include "state_keeper.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace {

constexpr int first_dashed = 2;
constexpr std::array<Gdash, 4> dashes = {
    {
     {2, {6, 6}},
     {2, {3, 6}},
     {4, {6, 6, 3, 6}},
     {2, {2, 2}},
     }
};

// From full through hatches; from 10 on a ramp of density.
constexpr std::array<std::array<unsigned char, pattern_size>, num_patterns> bitmap = {
    {
     {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff},
     {0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55},
     {0x55, 0x00, 0x55, 0x00, 0x55, 0x00, 0x55, 0x00},
     {0x24, 0x11, 0x82, 0x48, 0x42, 0x11, 0x28, 0x84},
     {0x33, 0x33, 0x00, 0x00, 0xcc, 0xcc, 0x00, 0x00},
     {0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33},
     {0x03, 0x06, 0x0c, 0x18, 0x30, 0x60, 0xc0, 0x81},
     {0x81, 0xc0, 0x60, 0x30, 0x18, 0x0c, 0x06, 0x03},
     {0xff, 0xff, 0x00, 0x00, 0xff, 0xff, 0x00, 0x00},
     {0xc3, 0x66, 0x3c, 0x18, 0x3c, 0x66, 0xc3, 0x81},
     {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
     {0x40, 0x10, 0x20, 0x01, 0x00, 0x04, 0x08, 0x02},
     {0x08, 0xa0, 0x44, 0x11, 0x22, 0x10, 0x81, 0x44},
     {0x45, 0x28, 0x94, 0x43, 0x50, 0x09, 0x52, 0xa8},
     {0x19, 0xca, 0x34, 0x1a, 0xe1, 0x32, 0xa5, 0xcc},
     {0x55, 0xdc, 0x3b, 0xe2, 0x97, 0xaa, 0x65, 0x3e},
     {0x7a, 0xe5, 0x5f, 0xab, 0xf5, 0xeb, 0x5e, 0xb5},
     {0xfe, 0xbb, 0xf5, 0x6f, 0xfe, 0xd7, 0xbd, 0xeb},
     {0xfd, 0xff, 0xef, 0x7f, 0xdf, 0xfe, 0xf7, 0xaf},
     {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff},
     }
};

struct Draw {
    Gdisplay* side = nullptr; // null: no display is open
    Gscreen screen;

    // The area held back; `held` 0: none.
    int held = 0; // points
    int held_color = 0;
    std::array<Gpixel, 5> points{};
};
Draw draw;

bool same_point(Gpixel a, Gpixel b) {
    return a.x == b.x && a.y == b.y;
}

// Whether an area covers all of the one held back: by the same points; or that one is a
// bin smaller than a pixel, of two corners with nothing between, and they are corners of
// the next bin as well.
bool hides_held(int n, const Gpixel* points) {
    const auto& held = draw.points;
    if (draw.held != n) {
        return false;
    }
    if (n == 5 && same_point(held[0], held[1]) && same_point(held[2], held[3]) &&
        same_point(held[4], held[0]) && std::abs(held[0].x - held[3].x) < 2 &&
        std::abs(held[0].y - held[3].y) < 2) {
        return same_point(points[0], held[0]) && same_point(points[3], held[3]);
    }
    return std::equal(points, points + n, held.begin(), same_point);
}

bool has_pen(Gpen pen) {
    return draw.side != nullptr && draw.side->has_pen(pen);
}

// A component of 16 bits in its place in a pixel.
unsigned long masked(unsigned value, unsigned long mask) {
    if (mask == 0) {
        return 0;
    }
    const int bits = std::min(std::popcount(mask), 16);
    return static_cast<unsigned long>(value >> (16 - bits)) << std::countr_zero(mask);
}

unsigned long masked_pixel(const Gcolr_levels& levels) {
    return gget_color_rgb_Xval(levels.red, levels.grn, levels.blu);
}

// What a server says of a pixel's component.
std::uint16_t shown_component(unsigned long pixel, unsigned long mask) {
    if (mask == 0) {
        return 0;
    }
    const unsigned long most = mask >> std::countr_zero(mask);
    return static_cast<std::uint16_t>(((pixel & mask) >> std::countr_zero(mask)) * 0xFFFF / most);
}

Gcolr_levels shown_levels(unsigned long pixel) {
    return {shown_component(pixel, draw.screen.red_mask),
            shown_component(pixel, draw.screen.grn_mask),
            shown_component(pixel, draw.screen.blu_mask)};
}

} // namespace

// --- Facts that every display draws by -----------------------------------------

Gdash gline_dash(int type) {
    const int row = type - first_dashed;
    return row >= 0 && row < static_cast<int>(dashes.size()) ? dashes[row] : Gdash{};
}

const std::array<unsigned char, pattern_size>& gfill_pattern(int ind) {
    return bitmap[ind];
}

// --- The display that is open ---------------------------------------------------

void gdraw_use(Gdisplay* side) {
    draw = {};
    draw.side = side;
}

Gscreen& gscreen() {
    return draw.screen;
}

bool gdraw_is_open() {
    return draw.side != nullptr;
}

int gwindow_side(int side, int usual) {
    return side <= 0 ? usual : std::clamp(side, min_side, max_side);
}

int gclose_display() {
    if (draw.side == nullptr) {
        return 0;
    }
    gflush_fill();
    draw.side->close();
    gdraw_use(nullptr);
    return 0;
}

Gpicture gget_base_window() {
    return draw.screen.base_window;
}

int gset_base_window(Gpicture id) {
    gflush_fill();
    draw.screen.base_window = id;
    return 0;
}

Gpicture gget_draw_window() {
    return draw.screen.draw_window;
}

int gset_draw_window(Gpicture id) {
    gflush_fill();
    draw.screen.draw_window = id != 0 ? id : draw.screen.base_window;
    return 0;
}

unsigned long gget_red_mask() {
    return draw.screen.red_mask;
}

unsigned long gget_grn_mask() {
    return draw.screen.grn_mask;
}

unsigned long gget_blu_mask() {
    return draw.screen.blu_mask;
}

unsigned long gget_fore_pixel() {
    return draw.screen.fore_colr;
}

unsigned long gget_back_pixel() {
    return draw.screen.back_colr;
}

int gget_win_depth() {
    constexpr int file_depth = 10; // marks that no display is in use
    return draw.side != nullptr ? draw.screen.depth : file_depth;
}

int gget_root_size(int* width, int* height) {
    *width = draw.screen.root_width;
    *height = draw.screen.root_height;
    return draw.side != nullptr ? 0 : -1;
}

int gupdate_window() {
    if (draw.side == nullptr || draw.screen.base_window == 0) {
        return -1;
    }
    gflush_fill();
    draw.side->show();
    return gflush();
}

int gclear_window() {
    if (draw.screen.base_window == 0) {
        return -1;
    }
    gdraw_fill_picture(draw.screen.base_window,
                       {0, 0, draw.screen.root_width, draw.screen.root_height},
                       static_cast<unsigned long>(gget_color_ind(-1)));
    return 0;
}

int gflush() {
    gflush_fill();
    if (draw.side != nullptr) {
        draw.side->flush();
    }
    return 0;
}

int gsync() {
    gflush_fill();
    if (draw.side != nullptr) {
        draw.side->sync();
    }
    return 0;
}

void gdraw_blank() {
    if (draw.side != nullptr) {
        draw.side->blank();
    }
}

bool gdraw_is_magnified() {
    return draw.side != nullptr && draw.side->is_magnified();
}

bool gdraw_show_magnified(int frame) {
    return draw.side != nullptr && draw.side->show_magnified(frame);
}

void gdraw_end_magnifying() {
    if (draw.side != nullptr) {
        draw.side->end_magnifying();
    }
}

// --- Pens -----------------------------------------------------------------------

bool gdraw_ready() {
    return has_pen(Gpen::fill);
}

void gdraw_init_pen(Gpen pen, int type) {
    if (draw.side == nullptr || type < 0 || type > 1) {
        return;
    }
    gflush_fill();
    draw.side->init_pen(pen, type);
    Gclip_rect clip{};
    gget_xviewport(&clip);
    gdraw_set_clip(clip);
}

void gdraw_reset_pens() {
    gflush_fill();
    if (draw.side != nullptr) {
        draw.side->reset_pens();
    }
}

void gdraw_set_color(Gpen pen, int ind) {
    if (has_pen(pen)) {
        draw.side->set_color(pen, ind);
    }
}

void gdraw_set_black(Gpen pen) {
    if (has_pen(pen)) {
        draw.side->set_black(pen);
    }
}

void gdraw_set_width(Gpen pen, float width) {
    if (has_pen(pen)) {
        draw.side->set_width(pen, static_cast<int>(hold_within(width, pixel_limit)));
    }
}

void gdraw_set_dash(int type) {
    if (has_pen(Gpen::line)) {
        draw.side->set_dash(type);
    }
}

void gdraw_set_fill_style(int style, int pattern) {
    gflush_fill();
    if (has_pen(Gpen::fill)) {
        draw.side->set_fill_style(style, pattern);
    }
}

void gdraw_set_clip(const Gclip_rect& rect) {
    gflush_fill();
    if (draw.side != nullptr) {
        draw.side->set_clip(rect);
    }
}

// --- Figures --------------------------------------------------------------------

void gdraw_point(Gpen pen, Gpixel at) {
    gflush_fill();
    if (has_pen(pen)) {
        draw.side->point(pen, at);
    }
}

void gdraw_lines(Gpen pen, int n, const Gpixel* points) {
    gflush_fill();
    if (has_pen(pen)) {
        draw.side->lines(pen, n, points);
    }
}

void gdraw_area(int n, const Gpixel* points, int color, bool solid) {
    if (!has_pen(Gpen::fill)) {
        return;
    }
    if (!solid || !hides_held(n, points)) {
        gflush_fill();
    }
    if (!solid || n > static_cast<int>(draw.points.size())) {
        draw.side->area(n, points, color);
        return;
    }
    std::copy_n(points, n, draw.points.begin());
    draw.held = n;
    draw.held_color = color;
}

void gdraw_quads(std::span<const Gcolored_quad> quads) {
    gflush_fill();
    if (has_pen(Gpen::fill)) {
        draw.side->quads(quads);
    }
}

void Gdisplay::quads(std::span<const Gcolored_quad> quads) {
    for (const auto& [p, color] : quads) {
        const std::array<Gpixel, 5> closed = {p[0], p[1], p[2], p[3], p[0]};
        area(static_cast<int>(closed.size()), closed.data(), color);
    }
}

void gflush_fill() {
    const int n = draw.held;
    draw.held = 0;
    if (n > 0) {
        draw.side->area(n, draw.points.data(), draw.held_color);
    }
}

void gdraw_clear(const Grectangle& rect) {
    gdraw_fill_picture(draw.screen.draw_window, rect,
                       static_cast<unsigned long>(gget_color_ind(-1)));
}

// --- Pictures -------------------------------------------------------------------

Gpicture gdraw_make_picture(int width, int height) {
    return draw.side != nullptr ? draw.side->make_picture(width, height) : 0;
}

void gdraw_free_picture(Gpicture picture) {
    gflush_fill();
    if (draw.side != nullptr) {
        draw.side->free_picture(picture);
    }
}

void gdraw_fill_picture(Gpicture picture, const Grectangle& rect, unsigned long pixel) {
    gflush_fill();
    if (draw.side != nullptr && rect.width > 0 && rect.height > 0) {
        draw.side->fill_picture(picture, rect, pixel);
    }
}

void gdraw_copy_picture(Gpicture from, Gpicture to, const Grectangle& rect) {
    gflush_fill();
    if (draw.side != nullptr) {
        draw.side->copy_picture(from, to, rect);
    }
}

int gdraw_put_image(IMG_report* image, long trans, int x, int y) {
    gflush_fill();
    return draw.side != nullptr ? draw.side->put_image(image, trans, x, y) : 0;
}

int gdraw_take_image(IMG_report* image, bool lent) {
    gflush_fill();
    return draw.side != nullptr ? draw.side->take_image(image, lent) : 0;
}

bool gkeeps_frames() {
    return draw.side == nullptr || draw.side->keeps_frames();
}

// --- Texts in a font of the server ----------------------------------------------

int gdraw_load_font(const char* name) {
    return has_pen(Gpen::text) ? draw.side->load_font(name) : -1;
}

void gdraw_free_font() {
    if (draw.side != nullptr) {
        draw.side->free_font();
    }
}

bool gdraw_measure(std::string_view text, Gstring_size* size) {
    return draw.side != nullptr && draw.side->measure(text, size);
}

void gdraw_string(int x, int y, std::string_view text) {
    gflush_fill();
    if (has_pen(Gpen::text)) {
        draw.side->string(x, y, text);
    }
}

// --- Colours --------------------------------------------------------------------

bool gdraw_take_cell(int* pixel) {
    return !draw.screen.true_color && draw.side != nullptr && draw.side->take_cell(pixel);
}

void gdraw_store_cell(int pixel, const Gcolr_levels& levels) {
    if (draw.side != nullptr) {
        draw.side->store_cell(pixel, levels);
    }
}

int gdraw_share_pixel(const Gcolr_levels& levels, int otherwise) {
    if (draw.screen.true_color) {
        return static_cast<int>(masked_pixel(levels));
    }
    return draw.side != nullptr ? draw.side->share_pixel(levels, otherwise) : otherwise;
}

int gdraw_share_levels(Gcolr_levels* levels) {
    if (draw.screen.true_color) {
        const unsigned long pixel = masked_pixel(*levels);
        *levels = shown_levels(pixel);
        return static_cast<int>(pixel);
    }
    return draw.side != nullptr ? draw.side->share_levels(levels) : 0;
}

Gcolr_levels gdraw_screen_levels(bool white) {
    if (draw.screen.true_color || draw.side == nullptr) { // black and white are what they are
        return white ? Gcolr_levels{0xFFFF, 0xFFFF, 0xFFFF} : Gcolr_levels{};
    }
    return draw.side->screen_levels(white);
}

bool gdraw_parse_color(const char* text, Gcolr_levels* levels) {
    return draw.side != nullptr && draw.side->parse_color(text, levels);
}

unsigned long gget_color_rgb_Xval(unsigned red, unsigned grn, unsigned blu) {
    return masked(red, draw.screen.red_mask) | masked(grn, draw.screen.grn_mask) |
           masked(blu, draw.screen.blu_mask);
}

const char* gdraw_default(const char* name) {
    return draw.side != nullptr ? draw.side->default_of(name) : nullptr;
}

void keep_gks_draw(StateKeeper& keeper) {
    keeper.keep(draw);
}
