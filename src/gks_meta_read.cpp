// gks_meta_read.cpp: plays a text metafile on the workstation that is open. No
// state.
//
// The file is a stream of words: a keyword, then its numbers, wherever the lines
// end. A word that is no keyword hides the rest of its line. The file is not
// trusted: numbers are finite, figures hold the points that are there, whatever
// their count says, and a record that does not scan is left out.

#include "gks.h"
#include "gks_attr.h"
#include "gks_meta.h"
#include "zyr.h"

#include "files.h"
#include "text_num.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

constexpr int word_size = 9;
constexpr int text_size = 100;

// The file as characters. Every call but peek() goes on.
class Source {
public:
    explicit Source(std::FILE* stream) : file(stream) {}

    // Next character, end_of_file after the last.
    int peek() {
        if (at == held) {
            at = 0;
            held = std::fread(buf.data(), 1, buf.size(), file);
        }
        return at < held ? static_cast<unsigned char>(buf[at]) : end_of_file;
    }
    void skip() { ++at; }
    void skip_line() {
        for (int c = peek(); c != end_of_file && c != '\n'; c = peek()) {
            skip();
        }
    }
    void skip_blanks(std::string_view blanks = " \t\r\n\v\f") {
        while (is_one_of(blanks)) {
            skip();
        }
    }
    // The characters up to one of `stop`, at most `N` - 1.
    template <std::size_t N>
    std::string_view take_until(std::string_view stop, std::array<char, N>* out) {
        std::size_t n = 0;
        while (n + 1 < N && peek() != end_of_file && !is_one_of(stop)) {
            (*out)[n++] = take();
        }
        (*out)[n] = '\0';
        return {out->data(), n};
    }
    bool integer(int* value) {
        const char* text = number("+-0123456789");
        return take_int(&text, value);
    }
    // A comma may be before it.
    bool real(float* value) {
        if (peek() == ',') {
            skip();
        }
        const char* text = number("+-.0123456789eE");
        return take_float(&text, value);
    }
    bool point(Gpt* pt) { return real(&pt->x) && real(&pt->y); }

    static constexpr int end_of_file = -1;

private:
    bool is_one_of(std::string_view set) {
        const int c = peek();
        return c != end_of_file && set.find(static_cast<char>(c)) != std::string_view::npos;
    }
    char take() {
        const int c = peek();
        skip();
        return static_cast<char>(c);
    }
    const char* number(std::string_view characters) {
        skip_blanks();
        std::size_t n = 0;
        while (n + 1 < digits.size() && is_one_of(characters)) {
            digits[n++] = take();
        }
        digits[n] = '\0';
        return digits.data();
    }

    std::FILE* file;
    std::array<char, 4096> buf{};
    std::size_t at = 0;
    std::size_t held = 0;
    std::array<char, 64> digits{};
};

// The figures, whose records are no settings: a count and points, or a position
// and a text.
enum class Figure { none, polyline, fill_area, polymarker, text };

struct Keyword {
    std::string_view word;
    Figure figure;
    Gcounts counts; // of the numbers at its beginning
};
constexpr std::array figures = {
    Keyword{"PL", Figure::polyline,   {1, 0}},
    Keyword{"FA", Figure::fill_area,  {1, 0}},
    Keyword{"PM", Figure::polymarker, {1, 0}},
    Keyword{"TE", Figure::text,       {0, 2}},
};

bool read_values(Source* source, const Gcounts& counts, Gvalues* values) {
    for (int i = 0; i < counts.integers; ++i) {
        if (!source->integer(&values->n[i])) {
            return false;
        }
    }
    for (int i = 0; i < counts.reals; ++i) {
        if (!source->real(&values->f[i])) {
            return false;
        }
    }
    return true;
}

// The points as far as they are there.
void play_points(Source* source, Figure figure, int count, std::vector<Gpt>* points) {
    points->clear();
    Gpt pt{};
    for (int i = 0; i < count && source->point(&pt); ++i) {
        points->push_back(pt);
    }
    const int n = static_cast<int>(points->size());
    if (n == 0) {
        return;
    }
    if (figure == Figure::polyline) {
        gpolyline(n, points->data());
    } else if (figure == Figure::fill_area) {
        gfill_area(n, points->data());
    } else {
        gpolymarker(n, points->data());
    }
}

void play_text(Source* source, const Gpt& pos) {
    std::array<char, text_size + 1> text{};
    source->skip_blanks(" \t");
    source->take_until("\r\n", &text);
    source->skip_line();
    gtext(&pos, text.data());
}

void play(std::FILE* file) {
    Source source(file);
    std::array<char, word_size + 1> buf{};
    std::vector<Gpt> points;
    source.skip_line();
    for (;;) {
        source.skip_blanks();
        const std::string_view word = source.take_until(" \t\r\n\v\f", &buf);
        if (word.empty()) {
            return;
        }
        const auto* keyword = std::find_if(figures.begin(), figures.end(),
                                           [&](const Keyword& row) { return row.word == word; });
        const Figure figure = keyword != figures.end() ? keyword->figure : Figure::none;
        const Gattribute* attribute = gfind_attribute(word);
        Gvalues values;
        if (figure == Figure::none && attribute == nullptr) {
            source.skip_line();
        } else if (!read_values(&source,
                                attribute != nullptr ? gcount_values(*attribute) : keyword->counts,
                                &values)) {
            continue; // what follows may be the next record
        } else if (figure == Figure::text) {
            play_text(&source, {values.f[0], values.f[1]});
        } else if (figure != Figure::none) {
            play_points(&source, figure, values.n[0], &points);
        } else if (attribute->read == Gread::play) {
            gplay_attribute(*attribute, values);
        }
    }
}

// Colours of the device's table, by index.
std::array<Gcolr_rep, num_colrs> table_colors() {
    std::array<Gcolr_rep, num_colrs> colors{};
    for (int i = 0; i < num_colrs; ++i) {
        gget_color_rgb(i, &colors[i].red, &colors[i].green, &colors[i].blue);
    }
    return colors;
}

void restore_colors(const std::array<Gcolr_rep, num_colrs>& before) {
    const auto after = table_colors();
    for (int i = 0; i < num_colrs; ++i) {
        const Gcolr_rep& old = before[i];
        if (old.red != after[i].red || old.green != after[i].green || old.blue != after[i].blue) {
            gset_colr_rep(gget_ws_id(), i, &old);
        }
    }
}

} // namespace

int gread_metafile(const char* filename) {
    if (gchk_open("gread_metafile") != 0) {
        return -1;
    }
    // An empty name would be standard input.
    const FILE_ptr file(*filename == '\0' ? nullptr : FILE_open_bounded(filename));
    if (!file) {
        MESS_print(mess_warn, "gread_metafile: Unable to open image file: %s\n", filename);
        return -1;
    }
    if (gmeta_is_output(file.get()) != 0) { // it would never end
        MESS_print(mess_warn, "gread_metafile: File is being written: %s\n", filename);
        return -1;
    }
    play(file.get());
    return 0;
}

int goverlay_metafile(const char* filename) {
    const auto colors = table_colors();
    ghold_state(Ghold::keep);
    const int status = gread_metafile(filename);
    restore_colors(colors);
    ghold_state(Ghold::restore);
    gput_state(); // the device follows
    return status;
}
