// gks_font.cpp: reads stroke fonts. No state; gks_text.cpp holds the font.

#include "gks_font.h"
#include "text_num.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr int end_of_glyph = 255;
constexpr int end_of_data = 254;
constexpr int pen_up = 128;
constexpr int blank_width = 40;

// Words of the file.
class Words {
public:
    explicit Words(std::string_view all) : rest(all) {}

    std::string_view next() {
        const auto is_space = [](char c) {
            return std::isspace(static_cast<unsigned char>(c)) != 0;
        };
        const auto begin = std::find_if_not(rest.begin(), rest.end(), is_space);
        const auto end = std::find_if(begin, rest.end(), is_space);
        const std::string_view word(begin, end);
        rest = std::string_view(end, rest.end());
        return word;
    }
    bool number(int* value) {
        std::string_view word = next();
        return take_plain(&word, value) && word.empty();
    }

private:
    std::string_view rest;
};

bool is_byte(int v) {
    return v >= 0 && v <= 255;
}

bool store(Gfont* font, int value) {
    if (!is_byte(value) || font->size >= static_cast<int>(font->db.size())) {
        return false;
    }
    font->db[font->size++] = static_cast<unsigned char>(value);
    return true;
}

// The stroke data up to and with its end mark, which is stored as the end of
// a glyph: so every glyph that begins inside the data also ends there.
bool read_strokes(Words* words, Gfont* font) {
    int value = 0;
    if (!words->number(&value)) {
        return false;
    }
    const bool labels = value != end_of_glyph;
    if (labels) {
        words->next();
    } else if (!store(font, value)) {
        return false;
    }
    for (;;) {
        if (!words->number(&value)) {
            return false;
        }
        if (value == end_of_data) {
            return store(font, end_of_glyph);
        }
        if (!store(font, value)) {
            return false;
        }
        if (value == end_of_glyph) {
            if (labels) {
                words->next();
            }
        } else if (!words->number(&value) || !store(font, value)) {
            return false;
        }
    }
}

unsigned char glyph_width(const Gfont& font, int place) {
    int width = 0;
    Gstroke stroke{};
    while (gnext_stroke(font, &place, &stroke)) {
        width = std::max(width, stroke.x);
    }
    return static_cast<unsigned char>(width);
}

bool read_index(Words* words, Gfont* font) {
    for (std::size_t code = 0; code < font->index.size(); ++code) {
        int place = 0;
        if (!words->number(&place)) {
            return false;
        }
        if (place < 0 || place >= font->size) {
            continue;
        }
        font->index[code] = place;
        font->width[code] = glyph_width(*font, place);
    }
    font->width[' '] = blank_width;
    return true;
}

} // namespace

void gclear_font(Gfont* font) {
    *font = {};
}

int gparse_font(std::string_view text, Gfont* font) {
    gclear_font(font);
    Words words(text);
    if (read_strokes(&words, font) && read_index(&words, font)) {
        return 0;
    }
    gclear_font(font);
    return -1;
}

bool gnext_stroke(const Gfont& font, int* place, Gstroke* stroke) {
    if (*place < 0 || *place + 1 >= font.size) {
        return false;
    }
    const int x = font.db[*place];
    if (x >= end_of_data) {
        return false;
    }
    stroke->down = x < pen_up;
    stroke->x = stroke->down ? x : x - pen_up;
    stroke->y = font.db[*place + 1];
    *place += 2;
    return true;
}
