// gks_text: text as strokes of a font of the program's own. Owns the text
// attributes, the list of fonts and the one font in memory. gsetup_fonts (from
// gopen_ws) makes the list and reads the first font; ginit_plot resets the
// attributes, but neither font nor shadow. A display has a pen that follows the
// attributes, and may take a font of its server.

#include "gks_attr.h"
#include "gks_font.h"
#include "gks_pipe.h"
#include "gks_pix.h"
#include "text_num.h"
#include "zyr.h"

#include "files.h"
#include "state_keeper.h"
#include "text_scan.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

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
    // A metafile holds another up vector than these: nothing is laid out there,
    // so its vector only goes to the file.
    bool up_elsewhere = false;
};
TextState state;
TextState state_aside; // while a replay runs

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
    int in_memory = 1; // place in the list that `font` was read for
    int aside_in_memory = 1;
    std::vector<Gpen_step> steps;     // of the glyph that is drawn
    std::vector<std::string> unknown; // names that were warned of
};
FontState font_state;

// Opens a file along `file_path`; an empty name would be standard input.
FILE_ptr open_along_path(const char* name) {
    if (*name == '\0') {
        return nullptr;
    }
    std::array<char, file_name_size> path{};
    return FILE_ptr(FILE_open_text(FILE_add_path(RES_get("file_path"), name, path.data())));
}

// --- Font list and font files -------------------------------------------------

void add_font(std::string_view abbr, std::string_view name) {
    if (font_state.num_fonts >= static_cast<int>(font_state.fonts.size())) {
        return;
    }
    FontEntry& entry = font_state.fonts[font_state.num_fonts++];
    entry = {};
    abbr.copy(entry.abbr.data(), entry.abbr.size() - 1);
    name.copy(entry.name.data(), entry.name.size() - 1);
}

// A command comes from the user alone. Returns whether a text from elsewhere is one.
bool is_foreign_command(const char* place, std::string_view text) {
    if (text.find('|') == std::string_view::npos) {
        return false;
    }
    MESS_print(mess_warn, "gsetup_fonts: Command refused: %.*s in %s\n",
               static_cast<int>(text.size()), text.data(), place);
    return true;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(space);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(space) - begin + 1);
}

// A list file that was asked for: short names and file names, word by word.
void read_given_list(std::FILE* file) {
    constexpr int most = 10;
    std::array<char, 200> abbr{};
    std::array<char, 200> name{};
    for (int i = 0; i < most && std::fscanf(file, "%199s %199s", abbr.data(), name.data()) == 2;
         ++i) {
        if (!is_foreign_command("the font list", name.data())) {
            add_font(abbr.data(), name.data());
        }
    }
}

// The list file of the system: one font a line, a short name and the rest of the
// line.
void read_default_list(std::FILE* file) {
    std::array<char, 200> line{};
    for (std::size_t i = 0;
         i < font_state.fonts.size() && std::fgets(line.data(), line.size(), file) != nullptr;
         ++i) {
        const std::string_view text = trimmed(line.data());
        const std::size_t split = text.find_first_of(" \t");
        if (split == std::string_view::npos) {
            continue;
        }
        const std::string_view name = trimmed(text.substr(split));
        if (!is_foreign_command("zyr.fnl", name)) {
            add_font(text.substr(0, split), name);
        }
    }
}

int setup_list() {
    const char* text = font_state.font_list.data();
    if (*text == '\0') {
        text = RES_get("font_list");
    }
    font_state.num_fonts = 0;
    if (text == nullptr || *text == '\0') {
        text = gdraw_default("font_list");
        if (text != nullptr && is_foreign_command("the X defaults", text)) {
            text = nullptr;
        }
    }
    if (text == nullptr || *text == '\0') {
        if (const FILE_ptr file = open_along_path("zyr.fnl")) {
            read_default_list(file.get());
        }
        return 0;
    }
    if (strnicmp(text, "fi:", 3) == 0) {
        const FILE_ptr file = open_along_path(text + 3);
        if (!file) {
            MESS_print(mess_warn, "gsetup_fonts: unable to load font list file: %s\n", text + 3);
            FILE_tell_nearest("gsetup_fonts", RES_get("file_path"), text + 3);
            return -1;
        }
        read_given_list(file.get());
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
    while ((n = std::fread(block.data(), 1, block.size(), file)) > 0 && text->size() <= most) {
        text->append(block.data(), n);
    }
    return text->size() <= most;
}

// A font of the window server; a file device has none.
int read_server_font(const char* name) {
    if (gdraw_load_font(name) == 0) {
        return 0;
    }
    MESS_print(mess_warn, "read_font: unable to load font: %s\n", name);
    return -1;
}

int read_font(const char* name) {
    if (gchk_graphics() == 0) {
        return -1;
    }
    gclear_font(&font_state.font);
    gdraw_free_font();
    if (*name == '#') {
        return read_server_font(name + 1);
    }
    const FILE_ptr file = open_along_path(name);
    std::string text;
    if (!file || !read_file(file.get(), &text) || gparse_font(text, &font_state.font) != 0) {
        MESS_print(mess_warn, "read_font: unable to load font file: %s\n", name);
        if (!file) {
            FILE_tell_nearest("read_font", RES_get("file_path"), name);
        }
        return -1;
    }
    return 0;
}

int read_listed_font(int ind) {
    font_state.in_memory = ind;
    const bool listed = ind >= 1 && ind <= font_state.num_fonts;
    return read_font(listed ? font_state.fonts[ind - 1].name.data() : "modern.fnt");
}

// A name that the list lacks, once, as every text asks for its font.
void warn_font(const char* name) {
    constexpr std::size_t most = 50;
    std::vector<std::string>& unknown = font_state.unknown;
    if (*name == '\0' || font_state.num_fonts == 0 || unknown.size() == most ||
        std::find(unknown.begin(), unknown.end(), name) != unknown.end()) {
        return;
    }
    unknown.emplace_back(name);
    KnownWords words;
    for (int i = 0; i < font_state.num_fonts; ++i) {
        words.push_back({font_state.fonts[i].abbr.data()});
    }
    MESS_print(mess_warn,
               "gget_font_index: Unknown font: %s, the nearest is %s, the first is taken\n", name,
               std::string(nearest_word(words, name)).c_str());
}

// --- Layout -------------------------------------------------------------------

// Letter width in font units.
float letter_width(unsigned char c) {
    if (state.text_char_space > 0.0F) {
        return 100.0F * state.text_char_space;
    }
    return static_cast<float>(font_state.font.width[c]);
}

// From one letter to the next.
float letter_step(unsigned char c) {
    if (state.text_char_space > 0.0F) {
        return (100.0F * state.text_space + 100.0F) * state.text_char_space;
    }
    return 100.0F * state.text_space + static_cast<float>(font_state.font.width[c]);
}

int sum(int a, float b) {
    return trunc_int(static_cast<float>(a) + b);
}

int total_width(std::string_view text) {
    int width = 0;
    for (const char c : text.substr(0, text.size() - 1)) {
        width = sum(width, letter_step(static_cast<unsigned char>(c)));
    }
    width = sum(width, letter_width(static_cast<unsigned char>(text.back())));
    return trunc_int(static_cast<float>(width) * state.text_expan);
}

// World units of a font unit.
float unit_of(float height) {
    return height / 105.0F;
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

// Where a string is, and how far it has come.
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

// Draws the strokes of a glyph on a display.
class ShownStroke {
public:
    void move(const Gpt& p) {
        flush();
        add(p);
    }
    void line(const Gpt& p) {
        add(p);
        if (n < longest) {
            return;
        }
        flush();
        points[0] = points[longest - 1];
        n = 1;
    }
    void flush() {
        if (n > 1) {
            gdraw_lines(Gpen::text, n, points.data());
        }
        n = 0;
    }

private:
    static constexpr int longest = 30;
    void add(const Gpt& p) { points[n++] = pixel_of(p); }
    std::array<Gpixel, longest> points{};
    int n = 0;
};

int show_glyph(int n, const Gpen_step* steps) {
    ShownStroke stroke;
    for (int i = 0; i < n; ++i) {
        if (steps[i].down) {
            stroke.line(steps[i].at);
        } else {
            stroke.move(steps[i].at);
        }
    }
    stroke.flush();
    return 0;
}

int draw_glyph(const Layout& layout, int place) {
    std::vector<Gpen_step>& steps = font_state.steps;
    steps.clear();
    Gstroke s{};
    // A damaged glyph may begin with the pen down: it has no point to draw from.
    while (gnext_stroke(font_state.font, &place, &s)) {
        steps.push_back({glyph_point(layout, s), s.down && !steps.empty()});
    }
    const int n = static_cast<int>(steps.size());
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_glyph(n, steps.data());
    case Gdevice::postscript:
        return gps_glyph(n, steps.data());
    case Gdevice::hpgl:
        return ghpgl_glyph(n, steps.data());
    case Gdevice::metafile: // holds the string
    case Gdevice::none:
        return 0;
    }
    return 0;
}

int draw_text(const Gpt& pos, std::string_view text) {
    Layout layout = {pos, unit_of(state.text_height), start_x(total_width(text)), start_y()};
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        const int place = font_state.font.index[code];
        if (place < 0 && code != ' ') {
            continue;
        }
        if (place >= 0) {
            draw_glyph(layout, place);
        }
        layout.xo = sum(layout.xo, letter_step(code) * state.text_expan);
    }
    return 0;
}

// Draws by `draw(k)`: the shadow in black, moved by k pixels, and then the text.
template <typename Draw> void with_shadow(Draw draw) {
    if (font_state.drop_shadow > 0) {
        gdraw_set_black(Gpen::text);
        for (int k = 0; k < font_state.drop_shadow; ++k) {
            draw(k);
        }
        gdraw_set_color(Gpen::text, state.text_color);
    }
    draw(0);
}

// A string in a font of the server, which neither scales nor turns.
void show_server_text(const Gpt& pos, std::string_view text, const Gstring_size& size) {
    int dx = 0;
    if (state.horiz_align == GCENTER_HOR) {
        dx = -size.width / 2;
    } else if (state.horiz_align == GRIGHT_HOR) {
        dx = -size.width;
    }
    int dy = 0;
    if (state.vert_align == GTOP_VERT || state.vert_align == GCAP_VERT) {
        dy = size.ascent;
    } else if (state.vert_align == GHALF_VERT) {
        dy = size.ascent / 2;
    } else if (state.vert_align == GBOTTOM_VERT) {
        dy = -size.descent;
    }
    const Gpixel at = pixel_of(pos);
    with_shadow([&](int k) { gdraw_string(at.x + dx + k, at.y + dy + k, text); });
}

int show_text(const Gpt& pos, const char* str) {
    const std::string_view text = str;
    const int length = static_cast<int>(text.size());
    char* kept = gnew_obj(obj_text, 1, static_cast<int>(sizeof pos) + length + 1, nullptr);
    if (kept != nullptr) {
        std::memcpy(kept, &pos, sizeof pos);
        std::memcpy(kept + sizeof pos, str, text.size() + 1);
    }
    Gstring_size size{};
    if (gdraw_measure(text, &size)) {
        show_server_text(pos, text, size);
        return 0;
    }
    // A pixel in world units.
    const float dx = 1.0F / (xW_p(pos.x + 1.0F) - xW_p(pos.x));
    const float dy = 1.0F / (yW_p(pos.y + 1.0F) - yW_p(pos.y));
    with_shadow([&](int k) {
        const auto step = static_cast<float>(k);
        draw_text(k == 0 ? pos : Gpt{pos.x + step * dx, pos.y + step * dy}, text);
    });
    return 0;
}

// Attributes that no setter is given, so that each next one counts.
TextState unknown_state() {
    TextState unknown;
    unknown.text_color = missing_index;
    unknown.text_width = -1.0F;
    unknown.text_height = -1.0F;
    unknown.text_expan = -1.0F;
    unknown.text_space = missing_f;
    unknown.text_char_space = missing_f;
    unknown.horiz_align = static_cast<Gtext_hor>(missing_index);
    unknown.vert_align = static_cast<Gtext_ver>(missing_index);
    unknown.upx = missing_f;
    unknown.upy = missing_f;
    unknown.font_ind = missing_index;
    return unknown;
}

// The checks that all setters of a size share.
bool valid_size(const char* func, const char* what, float value) {
    if (gchk_open(func) != 0) {
        return false;
    }
    if (std::isfinite(value) && value >= 0.0F) {
        return true;
    }
    gerr_printf(func, "invalid %s: %f\n", what, static_cast<double>(value));
    return false;
}

} // namespace

int gtext(const Gpt* pos, const char* str) {
    if (gchk_open("gtext") != 0) {
        return -1;
    }
    if (*str == '\0') {
        return 0;
    }
    switch (gget_device()) {
    case Gdevice::window:
    case Gdevice::pixmap:
        return show_text(*pos, str);
    case Gdevice::metafile:
        return gmeta_text(*pos, str);
    case Gdevice::postscript:
        gps_begin_text(*pos, str, state.text_color, state.text_width);
        return draw_text(*pos, str);
    case Gdevice::hpgl:
        ghpgl_begin_text(state.text_color, state.text_width);
        return draw_text(*pos, str);
    case Gdevice::none:
        return 0;
    }
    return 0;
}

float gtext_width(const char* str, float height) {
    if (gchk_open("gtext_width") != 0 || *str == '\0') {
        return 0.0F;
    }
    return static_cast<float>(total_width(str)) * unit_of(height);
}

int gset_text_colr_ind(int ind) {
    if (gchk_colr("gset_text_colr_ind", &ind) != 0) {
        return -1;
    }
    if (ind == state.text_color) {
        return 0;
    }
    state.text_color = ind;
    if (grecord(obj_text_colr, ind)) {
        gdraw_set_color(Gpen::text, ind);
    }
    return 0;
}

int gset_char_ht(float height) {
    if (height == state.text_height) {
        return 0;
    }
    if (!valid_size("gset_char_ht", "character height", height)) {
        return -1;
    }
    state.text_height = height;
    grecord(obj_char_ht, height);
    return 0;
}

int gset_expan(float factor) {
    if (factor == state.text_expan) {
        return 0;
    }
    if (!valid_size("gset_expan", "expansion factor", factor)) {
        return -1;
    }
    state.text_expan = factor;
    grecord(obj_expan, factor);
    return 0;
}

int gset_text_width(float width) {
    if (width == state.text_width) {
        return 0;
    }
    if (!valid_size("gset_text_width", "text width", width)) {
        return -1;
    }
    state.text_width = gkept_width(width);
    if (grecord(obj_text_width, width)) {
        gdraw_set_width(Gpen::text, width);
    }
    return 0;
}

int gset_space(float space) {
    if (space == state.text_space) {
        return 0;
    }
    if (gchk_open("gset_space") != 0) {
        return -1;
    }
    state.text_space = space;
    grecord(obj_space, space);
    return 0;
}

int gset_char_space(float space) {
    if (space == state.text_char_space) {
        return 0;
    }
    if (gchk_open("gset_char_space") != 0) {
        return -1;
    }
    state.text_char_space = space;
    grecord(obj_char_space, space);
    return 0;
}

int gset_char_up_vec(const Gpt* up) {
    const bool same = up->x == state.upx && up->y == state.upy;
    if (same && !state.up_elsewhere) {
        return 0;
    }
    if (gchk_open("gset_char_up_vec") != 0) {
        return -1;
    }
    const float length = std::hypot(up->x, up->y);
    if (!std::isfinite(length) || length == 0.0F) {
        return -1; // it points nowhere
    }
    grecord(obj_char_up, *up);
    if (gtype_is_META()) {
        state.up_elsewhere = !same;
        return 0;
    }
    state.upx = up->x / length;
    state.upy = up->y / length;
    return 0;
}

int gset_text_align(const Gtext_align* align) {
    if (align->hor == state.horiz_align && align->ver == state.vert_align) {
        return 0;
    }
    if (gchk_open("gset_text_align") != 0) {
        return -1;
    }
    state.horiz_align = align->hor;
    state.vert_align = align->ver;
    grecord(obj_text_align, *align);
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
    if (font->font == state.font_ind) {
        return 0;
    }
    if (gchk_open("gset_fontprec") != 0) {
        return -1;
    }
    state.font_ind = font->font;
    grecord(obj_fontprec, *font);
    if (gtype_is_META() || font_state.num_fonts == 0) {
        return 0;
    }
    if (font->font < 1 || font->font > font_state.num_fonts) {
        MESS_print(mess_warn, "gset_fontprec: invalid font id: %d\n", font->font);
        return -1;
    }
    return read_listed_font(font->font);
}

int gset_font_list(const char* list) {
    copy_text(font_state.font_list.data(), font_state.font_list.size(), list);
    return 0;
}

int gsetup_fonts() {
    setup_list();
    return read_listed_font(state.font_ind);
}

int gget_font_index(const char* name) {
    if (is_digit(*name)) {
        return text_int(name);
    }
    for (int i = 0; i < font_state.num_fonts; ++i) {
        if (stricmp(font_state.fonts[i].abbr.data(), name) == 0) {
            return i + 1;
        }
    }
    warn_font(name);
    return 1;
}

int gset_font_drop(int depth) {
    constexpr int most_pixels = 1000; // each is a copy of the text
    font_state.drop_shadow = std::min(depth, most_pixels);
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

int ginit_text(int type) {
    gdraw_init_pen(Gpen::text, type);
    return 0;
}

void gput_text_state() {
    const TextState now = state;
    state = unknown_state();
    if (gget_color_ind(now.text_color) != -1) {
        gset_text_colr_ind(now.text_color);
    } else { // without a pixel no setter takes it
        gnew_obj(obj_text_colr, now.text_color, 0, nullptr);
    }
    gset_text_width(now.text_width);
    gset_char_ht(now.text_height);
    gset_expan(now.text_expan);
    gset_space(now.text_space);
    gset_char_space(now.text_char_space);
    const Gtext_align align = {now.horiz_align, now.vert_align};
    gset_text_align(&align);
    const Gpt up = {now.upx, now.upy};
    gset_char_up_vec(&up);
    const Gfontprec font = {now.font_ind, GSTROKE_PREC};
    if (gtype_is_META()) {
        gset_fontprec(&font);
    } else {
        gnew_obj(obj_fontprec, 1, sizeof font, &font); // the font in memory stays
    }
    state = now; // also what a setter refused
}

void ghold_text_state(Ghold what) {
    if (what == Ghold::restore) {
        state = state_aside;
        if (font_state.in_memory != font_state.aside_in_memory) {
            read_listed_font(font_state.aside_in_memory);
        }
        return;
    }
    state_aside = state;
    font_state.aside_in_memory = font_state.in_memory;
    if (what == Ghold::begin) {
        state = unknown_state();
    }
}

void keep_gks_text(StateKeeper& keeper) {
    keeper.keep(state);
    keeper.keep(state_aside);
    keeper.keep(font_state);
}
