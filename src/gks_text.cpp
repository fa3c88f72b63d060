// gks_text.cpp: text as strokes of a font of the program's own. Owns the text
// attributes, the list of fonts and the one font in memory. gsetup_fonts (from
// gopen_ws) makes the list and reads the first font; ginit_plot resets the
// attributes, but neither font nor shadow.

#include "gks.h"
#include "gks_font.h"
#include "text_num.h"
#include "zyr.h"

#include "files.h"
#include "zyrresrc.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>

namespace {

struct TextState {
    int text_color = 1;
    float text_width = 1.0F;
    float text_height = 0.01F; // of capitals, world units
    float text_expan = 1.0F;
    float text_space = 0.25F;     // between letters, hundreds of font units
    float text_char_space = 0.0F; // above 0: fixed pitch
    Gtext_hor horiz_align = GNORMAL_HOR;
    Gtext_ver vert_align = GNORMAL_VERT;
    float upx = 0.0F; // up vector, of length 1
    float upy = 1.0F;
    int font_ind = 1; // place in the list, from 1
};
TextState state;

struct FontEntry {
    std::array<char, 10> abbr{};
    std::array<char, 100> name{};
};

struct FontState {
    std::array<FontEntry, 40> fonts{};
    int num_fonts = 0;
    std::array<char, 80> font_list{}; // given by gset_font_list
    int drop_shadow = 0;              // pixels
    Gfont font{};
};
FontState font_state;

// Opens a file along `file_path`; an empty name would be standard input.
FILE_ptr open_along_path(const char* name) {
    if (*name == '\0')
        return nullptr;
    std::array<char, file_name_size> path{};
    return FILE_ptr(FILE_open(FILE_add_path(RES_get("file_path"), name, path.data()), "r"));
}

// --- Font list and font files -------------------------------------------------

void add_font(std::string_view abbr, std::string_view name) {
    if (font_state.num_fonts >= static_cast<int>(font_state.fonts.size()))
        return;
    FontEntry& entry = font_state.fonts[font_state.num_fonts++];
    entry = {};
    abbr.copy(entry.abbr.data(), entry.abbr.size() - 1);
    name.copy(entry.name.data(), entry.name.size() - 1);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(space);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(space) - begin + 1);
}

// One font a line: short name and file name.
void read_font_list(std::FILE* file, int most) {
    std::array<char, 200> line{};
    for (int i = 0; i < most && std::fgets(line.data(), line.size(), file) != nullptr; ++i) {
        const std::string_view text = trimmed(line.data());
        const std::size_t split = text.find_first_of(" \t");
        if (split == std::string_view::npos)
            continue;
        add_font(text.substr(0, split), trimmed(text.substr(split)));
    }
}

int setup_list() {
    constexpr int most_in_given_list = 10;
    const char* text = font_state.font_list.data();
    if (*text == '\0')
        text = RES_get("font_list");
    font_state.num_fonts = 0;
    if (text == nullptr || *text == '\0') {
        if (const FILE_ptr file = open_along_path("zyr.fnl"))
            read_font_list(file.get(), static_cast<int>(font_state.fonts.size()));
        return 0;
    }
    if (strnicmp(text, "fi:", 3) == 0) {
        const FILE_ptr file = open_along_path(text + 3);
        if (!file) {
            MESS_print(mess_warn, "gsetup_fonts: unable to load font list file: %s\n", text + 3);
            return -1;
        }
        read_font_list(file.get(), most_in_given_list);
        return 0;
    }
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        add_font("", trimmed(rest.substr(0, comma)));
        rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
    }
    return 0;
}

// The whole file, or nothing if it is longer than any font can be.
bool read_file(std::FILE* file, std::string* text) {
    constexpr std::size_t most = 200000;
    std::array<char, 4096> block{};
    std::size_t n = 0;
    while ((n = std::fread(block.data(), 1, block.size(), file)) > 0 && text->size() <= most)
        text->append(block.data(), n);
    return text->size() <= most;
}

int read_font(const char* name) {
    if (gchk_graphics() == 0)
        return -1;
    gclear_font(&font_state.font);
    if (*name == '#') { // a font of the window server
        MESS_print(mess_warn, "read_font: unable to load font: %s\n", name + 1);
        return -1;
    }
    const FILE_ptr file = open_along_path(name);
    std::string text;
    if (!file || !read_file(file.get(), &text) || gparse_font(text, &font_state.font) != 0) {
        MESS_print(mess_warn, "read_font: unable to load font file: %s\n", name);
        return -1;
    }
    return 0;
}

// --- Layout -------------------------------------------------------------------

// Letter width in font units.
float letter_width(unsigned char c) {
    if (state.text_char_space > 0.0F)
        return 100.0F * state.text_char_space;
    return static_cast<float>(font_state.font.width[c]);
}

// From one letter to the next.
float letter_step(unsigned char c) {
    if (state.text_char_space > 0.0F)
        return (100.0F * state.text_space + 100.0F) * state.text_char_space;
    return 100.0F * state.text_space + static_cast<float>(font_state.font.width[c]);
}

int sum(int a, float b) {
    return trunc_int(static_cast<float>(a) + b);
}

int total_width(std::string_view text) {
    int width = 0;
    for (const char c : text.substr(0, text.size() - 1))
        width = sum(width, letter_step(static_cast<unsigned char>(c)));
    width = sum(width, letter_width(static_cast<unsigned char>(text.back())));
    return trunc_int(static_cast<float>(width) * state.text_expan);
}

int start_x(int width) {
    switch (state.horiz_align) {
    case GCENTER_HOR:
        return -width / 2;
    case GRIGHT_HOR:
        return -width;
    default:
        return 0;
    }
}

int start_y() {
    switch (state.vert_align) {
    case GTOP_VERT:
        return -160;
    case GCAP_VERT:
        return -140;
    case GHALF_VERT:
        return -85;
    case GBOTTOM_VERT:
        return 0;
    default:
        return -35;
    }
}

// Where a string stands, and how far it has come.
struct Layout {
    Gpt at;     // world
    float unit; // world units of a font unit
    int xo, yo; // font units
};

Gpt glyph_point(const Layout& layout, const Gstroke& s) {
    const float fx =
        layout.unit * (state.text_expan * static_cast<float>(s.x) + static_cast<float>(layout.xo));
    const float fy = layout.unit * static_cast<float>(s.y + layout.yo);
    return {layout.at.x + state.upy * fx + state.upx * fy,
            layout.at.y - state.upx * fx + state.upy * fy};
}

// One glyph as PostScript paths.
void print_glyph(const Layout& layout, int place) {
    constexpr int longest_stroke = 30;
    int points = 0; // of the stroke under way
    Gstroke s{};
    gps_printf("np\n");
    while (gnext_stroke(font_state.font, &place, &s)) {
        const Gpt p = glyph_point(layout, s);
        // A damaged glyph may begin with the pen down: it has no point to
        // draw from.
        if (!s.down || points == 0) {
            if (points > 1)
                gps_printf("stroke\nnp\n");
            gps_move(p.x, p.y);
            points = 1;
            continue;
        }
        gps_line(p.x, p.y);
        if (++points == longest_stroke) {
            gps_printf("stroke\nnp\n");
            gps_move(p.x, p.y);
            points = 1;
        }
    }
    gps_printf("stroke\n");
}

void draw_text(const Gpt& pos, std::string_view text) {
    Layout layout = {pos, state.text_height / 105.0F, start_x(total_width(text)), start_y()};
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        const int place = font_state.font.index[code];
        if (place < 0 && code != ' ')
            continue;
        if (place >= 0 && gtype_is_PS())
            print_glyph(layout, place);
        layout.xo = sum(layout.xo, letter_step(code) * state.text_expan);
    }
}

// The checks that all setters of a size share.
bool valid_size(const char* func, const char* what, float value) {
    if (gchk_open(func) != 0)
        return false;
    if (std::isfinite(value) && value >= 0.0F)
        return true;
    gerr_printf(func, "invalid %s: %f\n", what, static_cast<double>(value));
    return false;
}

} // namespace

int gtext(const Gpt* pos, const char* str) {
    if (gchk_open("gtext") != 0)
        return -1;
    if (*str == '\0')
        return 0;
    if (gtype_is_PS()) {
        gps_comment("%%%%TE:%f %f %s", static_cast<double>(pos->x), static_cast<double>(pos->y),
                    str);
        gps_set_width(state.text_color, state.text_width);
        gps_set_color(state.text_color);
        gps_set_type(1);
    }
    draw_text(*pos, str);
    return 0;
}

int gset_text_colr_ind(int ind) {
    if (gchk_colr("gset_text_colr_ind", ind) != 0)
        return -1;
    state.text_color = ind;
    return 0;
}

int gset_char_ht(float height) {
    if (height == state.text_height)
        return 0;
    if (!valid_size("gset_char_ht", "character height", height))
        return -1;
    state.text_height = height;
    return 0;
}

int gset_expan(float factor) {
    if (factor == state.text_expan)
        return 0;
    if (!valid_size("gset_expan", "expansion factor", factor))
        return -1;
    state.text_expan = factor;
    return 0;
}

int gset_text_width(float width) {
    if (width == state.text_width)
        return 0;
    if (!valid_size("gset_text_width", "text width", width))
        return -1;
    state.text_width = gtype_is_PS() && width == 0.0F ? 1.0F : width;
    return 0;
}

int gset_space(float space) {
    if (space == state.text_space)
        return 0;
    if (gchk_open("gset_space") != 0)
        return -1;
    state.text_space = space;
    return 0;
}

int gset_char_space(float space) {
    if (space == state.text_char_space)
        return 0;
    if (gchk_open("gset_char_space") != 0)
        return -1;
    state.text_char_space = space;
    return 0;
}

int gset_char_up_vec(const Gpt* up) {
    if (up->x == state.upx && up->y == state.upy)
        return 0;
    if (gchk_open("gset_char_up_vec") != 0)
        return -1;
    const float length = std::hypot(up->x, up->y);
    if (!std::isfinite(length) || length == 0.0F)
        return -1; // it points nowhere
    state.upx = up->x / length;
    state.upy = up->y / length;
    return 0;
}

int gset_text_align(const Gtext_align* align) {
    if (align->hor == state.horiz_align && align->ver == state.vert_align)
        return 0;
    if (gchk_open("gset_text_align") != 0)
        return -1;
    state.horiz_align = align->hor;
    state.vert_align = align->ver;
    return 0;
}

int ginq_text_align(int* err, Gtext_align* align) {
    *align = {state.horiz_align, state.vert_align};
    *err = 0;
    return 0;
}

int gset_text_path(int /*path*/) {
    return 0;
}

int gset_fontprec(const Gfontprec* font) {
    if (font->font == state.font_ind)
        return 0;
    if (gchk_open("gset_fontprec") != 0)
        return -1;
    state.font_ind = font->font;
    if (font_state.num_fonts == 0)
        return 0;
    if (font->font < 1 || font->font > font_state.num_fonts) {
        MESS_print(mess_warn, "gset_fontprec: invalid font id: %d\n", font->font);
        return -1;
    }
    return read_font(font_state.fonts[font->font - 1].name.data());
}

int gset_font_list(const char* list) {
    copy_text(font_state.font_list.data(), font_state.font_list.size(), list);
    return 0;
}

int gsetup_fonts() {
    setup_list();
    const int ind = state.font_ind;
    if (ind < 1 || ind > font_state.num_fonts)
        return read_font("modern.fnt");
    return read_font(font_state.fonts[ind - 1].name.data());
}

int gget_font_index(const char* name) {
    if (std::isdigit(static_cast<unsigned char>(*name)) != 0)
        return text_int(name);
    for (int i = 0; i < font_state.num_fonts; ++i) {
        if (stricmp(font_state.fonts[i].abbr.data(), name) == 0)
            return i + 1;
    }
    return 1;
}

int gset_font_drop(int depth) {
    font_state.drop_shadow = depth;
    return 0;
}

int gget_font_drop() {
    return font_state.drop_shadow;
}

int gget_text_colr() {
    return state.text_color;
}

int greset_text() {
    state = {};
    return 0;
}
