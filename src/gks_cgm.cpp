// gks_cgm: the binary metafile of ISO 8632-3: one picture of polylines and clip
// rectangles. State: the file, which gks_meta opens and closes; while that holds text
// there is none here, and nothing is written.
//
// An element has a header of 16 bits: class (4 bits), id (7 bits) and length in
// bytes (5 bits). A length of 31 says that 16 more bits hold the true one.
// Parameters are big-endian and padded to an even number of bytes.

#include "gks.h"
#include "gks_meta.h"
#include "state_keeper.h"
#include "text_num.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

constexpr int long_form = 31;
constexpr int point_size = 4;
// The top bit of a long length says that the element goes on.
constexpr int most_points = 0x7fff / point_size;

// Largest coordinates of a page.
constexpr float vdc_width = 10000.0F;
constexpr float vdc_height = 8000.0F;

constexpr std::array<unsigned char, 12> description = {10,  'Z', 'Y', 'R', 'C', 'G',
                                                       'M', '-', '1', '.', '0', 0};
// One entry: all that a drawing needs besides the required elements.
constexpr std::array<unsigned char, 4> element_list = {0xff, 0xff, 0, 1};
constexpr std::array<unsigned char, 2> max_colour = {0xff, 0};

std::FILE* out_file = nullptr;

template <std::size_t N> void put(const std::array<unsigned char, N>& bytes) {
    if (out_file != nullptr) {
        fwrite_unlocked(bytes.data(), 1, bytes.size(), out_file);
    }
}

void put_coordinate(float value) {
    constexpr int limit = 0x7fff;
    const auto n = static_cast<std::uint16_t>(std::clamp(trunc_int(value), -limit, limit));
    put(std::array{static_cast<unsigned char>(n >> 8), static_cast<unsigned char>(n & 0xff)});
}

} // namespace

void gcgm_write_to(std::FILE* file) {
    out_file = file;
}

int gcgm_control(int maj, int min, int len, int param) {
    put(std::array{static_cast<unsigned char>(maj * 16 + min / 8),
                   static_cast<unsigned char>((min * 32 + len) & 0xff)});
    if (param > 0 || len == long_form) {
        put(std::array{static_cast<unsigned char>(param >> 8),
                       static_cast<unsigned char>(param & 0xff)});
    }
    return 0;
}

void gcgm_begin() {
    gcgm_control(0, 1, 0, 0); // BEGIN METAFILE
    gcgm_control(1, 1, 2, 1); // METAFILE VERSION
    gcgm_control(1, 2, 11, 0);
    put(description);
    gcgm_control(1, 11, 6, 1);
    put(element_list);
    gcgm_control(1, 9, 1, 0);
    put(max_colour);
    gcgm_control(2, 6, 8, 0); // VDC EXTENT
    gcgm_ps_point(0.0F, 0.0F);
    gcgm_ps_point(vdc_width, vdc_height);
    gcgm_control(0, 3, 0, 0); // BEGIN PICTURE
    gcgm_control(0, 4, 0, 0); // BEGIN PICTURE BODY
}

// Readers need the END METAFILE after the picture's end: the standard knows no
// file without it.
void gcgm_end() {
    gcgm_control(0, 5, 0, 0); // END PICTURE
    gcgm_control(0, 2, 0, 0); // END METAFILE
}

int gcgm_point(float x, float y) {
    return gcgm_ps_point(xW_ps(x), yW_ps(y));
}

int gcgm_ps_point(float x, float y) {
    put_coordinate(x);
    put_coordinate(y);
    return 0;
}

int gcgm_polyline(int n, const Gpt* pts) {
    if (out_file == nullptr) {
        return 0;
    }
    // A line that is longer than an element goes on in the next one.
    for (int first = 0; first + 1 < n; first += most_points - 1) {
        const int count = std::min(n - first, most_points);
        gcgm_control(4, 1, long_form, count * point_size);
        for (int i = first; i < first + count; ++i) {
            gcgm_point(pts[i].x, pts[i].y);
        }
    }
    return 0;
}

int gcgm_set_clip(float x0, float y0, float x1, float y1) {
    gcgm_control(3, 5, 8, 0); // CLIP RECTANGLE
    gcgm_ps_point(x0, y0);
    gcgm_ps_point(x1, y1);
    return 0;
}

int gcgm_set_color(int /*ind*/) {
    return 0;
}

int gcgm_set_fill_color(int /*ind*/) {
    return 0;
}

int gcgm_set_width(int /*ind*/, float /*width*/) {
    return 0;
}

int gcgm_set_type(int /*type*/) {
    return 0;
}

void keep_gks_cgm(StateKeeper& keeper) {
    keeper.keep(out_file);
}
