// gks_meta_read.cpp: plays a text metafile on the workstation that is open. No
// state.
//
// The file is a stream of words: a keyword, then its numbers, wherever the lines
// end. A word that is no keyword hides the rest of its line. The file is not
// trusted: numbers are finite, figures hold the points that are there, whatever
// their count says, and a record that does not scan is left out.

#include "gks.h"
#include "gks_meta.h"
#include "gks_tran.h"
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

    // Next character, end_of_file behind the last.
    int peek() {
        if (at == held) {
            at = 0;
            held = std::fread(buf.data(), 1, buf.size(), file);
        }
        return at < held ? static_cast<unsigned char>(buf[at]) : end_of_file;
    }
    void skip() { ++at; }
    void skip_line() {
        for (int c = peek(); c != end_of_file && c != '\n'; c = peek())
            skip();
    }
    void skip_blanks(std::string_view blanks = " \t\r\n\v\f") {
        while (is_one_of(blanks))
            skip();
    }
    // The characters up to one of `stop`, at most `N` - 1.
    template <std::size_t N>
    std::string_view take_until(std::string_view stop, std::array<char, N>* out) {
        std::size_t n = 0;
        while (n + 1 < N && peek() != end_of_file && !is_one_of(stop))
            (*out)[n++] = take();
        (*out)[n] = '\0';
        return {out->data(), n};
    }
    bool integer(int* value) {
        const char* text = number("+-0123456789");
        return take_int(&text, value);
    }
    // A comma may stand in front of it.
    bool real(float* value) {
        if (peek() == ',')
            skip();
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
        while (n + 1 < digits.size() && is_one_of(characters))
            digits[n++] = take();
        digits[n] = '\0';
        return digits.data();
    }

    std::FILE* file;
    std::array<char, 4096> buf{};
    std::size_t at = 0;
    std::size_t held = 0;
    std::array<char, 64> digits{};
};

enum class Rec {
    dropped,
    vp,
    win,
    tran,
    polyline,
    fill_area,
    polymarker,
    text,
    color,
    line_color,
    line_width,
    line_type,
    marker_color,
    marker_size,
    marker_width,
    marker_type,
    fill_color,
    fill_style,
    fill_pattern,
    text_color,
    text_height,
    text_expan,
    text_width,
    text_space,
    text_char_space,
    text_up,
    text_align,
    text_font
};

// A record: whole numbers, then others. A count and points, and a position and
// a text, are read on behind them.
struct Keyword {
    std::string_view word;
    Rec rec;
    int integers, reals;
};
constexpr std::array keywords = {
    Keyword{"WS_WIN",  Rec::dropped,         1, 4},
    Keyword{"VP",      Rec::vp,              1, 4},
    Keyword{"WIN",     Rec::win,             1, 4},
    Keyword{"TR",      Rec::tran,            1, 0},
    Keyword{"PL",      Rec::polyline,        1, 0},
    Keyword{"FA",      Rec::fill_area,       1, 0},
    Keyword{"PM",      Rec::polymarker,      1, 0},
    Keyword{"TE",      Rec::text,            0, 2},
    Keyword{"CLR",     Rec::color,           2, 3},
    Keyword{"PL_CLR",  Rec::line_color,      1, 0},
    Keyword{"PL_LW",   Rec::line_width,      0, 1},
    Keyword{"PL_TYPE", Rec::line_type,       1, 0},
    Keyword{"PM_CLR",  Rec::marker_color,    1, 0},
    Keyword{"PM_SIZE", Rec::marker_size,     0, 1},
    Keyword{"PM_WDTH", Rec::marker_width,    0, 1},
    Keyword{"PM_TYPE", Rec::marker_type,     1, 0},
    Keyword{"FA_CLR",  Rec::fill_color,      1, 0},
    Keyword{"FA_INT",  Rec::fill_style,      1, 0},
    Keyword{"FA_ST",   Rec::fill_pattern,    1, 0},
    Keyword{"TE_CLR",  Rec::text_color,      1, 0},
    Keyword{"TE_HGHT", Rec::text_height,     0, 1},
    Keyword{"TE_EXP",  Rec::text_expan,      0, 1},
    Keyword{"TE_WDTH", Rec::text_width,      0, 1},
    Keyword{"TE_SPC",  Rec::text_space,      0, 1},
    Keyword{"TE_CSPC", Rec::text_char_space, 0, 1},
    Keyword{"TE_UP",   Rec::text_up,         0, 2},
    Keyword{"TE_ALGN", Rec::text_align,      2, 0},
    Keyword{"TE_FNT",  Rec::text_font,       2, 0},
};

struct Numbers {
    std::array<int, 2> n{};
    std::array<float, 4> f{};
};

bool read_numbers(Source* source, const Keyword& keyword, Numbers* numbers) {
    for (int i = 0; i < keyword.integers; ++i) {
        if (!source->integer(&numbers->n[i]))
            return false;
    }
    for (int i = 0; i < keyword.reals; ++i) {
        if (!source->real(&numbers->f[i]))
            return false;
    }
    return true;
}

// Attributes and transformations.
void play_setter(Rec rec, const Numbers& v) {
    const int n = v.n[0];
    const float f = v.f[0];
    const Glim lim = {v.f[0], v.f[2], v.f[1], v.f[3]};
    const Gpt up = {v.f[0], v.f[1]};
    const Gcolr_rep rep = {v.f[0], v.f[1], v.f[2]};
    const Gtext_align align = {static_cast<Gtext_hor>(n), static_cast<Gtext_ver>(v.n[1])};
    const Gfontprec font = {n, static_cast<Gtext_prec>(v.n[1])};
    switch (rec) {
    case Rec::vp:
        gset_vp(n, &lim);
        break;
    case Rec::win:
        gset_win(n, &lim);
        break;
    case Rec::tran:
        gsel_norm_tran(n);
        break;
    case Rec::color:
        gset_colr_rep(1, v.n[1], &rep);
        break;
    case Rec::line_color:
        gset_line_colr_ind(n);
        break;
    case Rec::line_width:
        gset_linewidth(f);
        break;
    case Rec::line_type:
        gset_linetype(n);
        break;
    case Rec::marker_color:
        gset_marker_colr_ind(n);
        break;
    case Rec::marker_size:
        gset_marker_size(f);
        break;
    case Rec::marker_width:
        gset_marker_width(f);
        break;
    case Rec::marker_type:
        gset_marker_type(n);
        break;
    case Rec::fill_color:
        gset_fill_colr_ind(n);
        break;
    case Rec::fill_style:
        gset_fill_int_style(n);
        break;
    case Rec::fill_pattern:
        gset_fill_style_ind(n);
        break;
    case Rec::text_color:
        gset_text_colr_ind(n);
        break;
    case Rec::text_height:
        gset_char_ht(f);
        break;
    case Rec::text_expan:
        gset_expan(f);
        break;
    case Rec::text_width:
        gset_text_width(f);
        break;
    case Rec::text_space:
        gset_space(f);
        break;
    case Rec::text_char_space:
        gset_char_space(f);
        break;
    case Rec::text_up:
        gset_char_up_vec(&up);
        break;
    case Rec::text_align:
        gset_text_align(&align);
        break;
    case Rec::text_font:
        gset_fontprec(&font);
        break;
    default:
        break; // read and dropped
    }
}

// The points as far as they are there.
void play_points(Source* source, Rec rec, int count, std::vector<Gpt>* points) {
    points->clear();
    Gpt pt{};
    for (int i = 0; i < count && source->point(&pt); ++i)
        points->push_back(pt);
    const int n = static_cast<int>(points->size());
    if (n == 0)
        return;
    if (rec == Rec::polyline)
        gpolyline(n, points->data());
    else if (rec == Rec::fill_area)
        gfill_area(n, points->data());
    else
        gpolymarker(n, points->data());
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
        if (word.empty())
            return;
        const auto* keyword = std::find_if(keywords.begin(), keywords.end(),
                                           [&](const Keyword& row) { return row.word == word; });
        Numbers numbers;
        if (keyword == keywords.end())
            source.skip_line();
        else if (!read_numbers(&source, *keyword, &numbers))
            continue; // what follows may be the next record
        else if (keyword->rec == Rec::text)
            play_text(&source, {numbers.f[0], numbers.f[1]});
        else if (keyword->rec >= Rec::polyline && keyword->rec <= Rec::polymarker)
            play_points(&source, keyword->rec, numbers.n[0], &points);
        else
            play_setter(keyword->rec, numbers);
    }
}

// Colours of the device's table, by index.
std::array<Gcolr_rep, num_colrs> table_colors() {
    std::array<Gcolr_rep, num_colrs> colors{};
    for (int i = 0; i < num_colrs; ++i)
        gget_color_rgb(i, &colors[i].red, &colors[i].green, &colors[i].blue);
    return colors;
}

void restore_colors(const std::array<Gcolr_rep, num_colrs>& before) {
    const auto after = table_colors();
    for (int i = 0; i < num_colrs; ++i) {
        const Gcolr_rep& old = before[i];
        if (old.red != after[i].red || old.green != after[i].green || old.blue != after[i].blue)
            gset_colr_rep(gget_ws_id(), i, &old);
    }
}

} // namespace

int gread_metafile(const char* filename) {
    if (gchk_open("gread_metafile") != 0)
        return -1;
    // An empty name would be standard input.
    const FILE_ptr file(*filename == '\0' ? nullptr : FILE_open(filename, "r"));
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
