// wx_symb.cpp: weather symbols and cloud cover (wx_symb.h). State: the symbol
// files read so far, each once, and which one is chosen: station plots take
// several in turn for every station.
#include "wx_symb.h"

#include "files.h"
#include "state_keeper.h"
#include "text_num.h"
#include "zyr.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr unsigned file_warning = 0x40;
constexpr const char* default_file = "wx.smb";
constexpr std::size_t max_symbols = 100;
constexpr std::size_t max_points = 20; // of a path
constexpr std::size_t name_length = 14;
constexpr std::size_t most_bytes = std::size_t{1} << 20; // of a symbol file
constexpr std::size_t max_files = 32;

struct Path {
    std::size_t first = 0; // point
    std::size_t count = 0;
    bool fill = false;
};

struct Symbol {
    std::string name;
    std::vector<Path> paths;
};

struct SymbolFile {
    std::string name; // as chosen
    bool open = false;
    std::vector<Symbol> symbols;
    std::vector<Gpt> points; // of all paths, fractions of the size
};

struct State {
    std::vector<std::unique_ptr<SymbolFile>> files;
    const SymbolFile* chosen = nullptr;
};
State state;

// --- Symbol files -----------------------------------------------------------------

// The words of a file one after the other, for as long as it may be.
class WordReader {
public:
    explicit WordReader(std::FILE* stream) : stream_(stream) {}
    bool next(std::string* word) {
        word->clear();
        int c = get();
        while (c != EOF && std::isspace(c) != 0) {
            c = get();
        }
        for (; c != EOF && std::isspace(c) == 0; c = get()) {
            *word += static_cast<char>(c);
        }
        return !word->empty();
    }

private:
    int get() { return used_++ < most_bytes ? std::fgetc(stream_) : EOF; }
    std::FILE* stream_;
    std::size_t used_ = 0;
};

bool read_point(const std::string& word, Gpt* point) {
    const char* at = word.c_str();
    return take_float(&at, &point->x) && take_char(&at, ',') && take_float(&at, &point->y);
}

// Ends the paths that began at point `first` with their word.
void end_paths(SymbolFile* file, Symbol* symbol, std::size_t first, bool fill) {
    for (std::size_t count = 0; first < file->points.size(); first += count) {
        count = std::min(file->points.size() - first, max_points);
        if (count > 1) {
            symbol->paths.push_back({first, count, fill});
        }
    }
}

// One entry after its name. Returns false at the end of the file.
bool read_symbol(WordReader& words, SymbolFile* file, Symbol* symbol) {
    std::string word;
    std::size_t first = file->points.size();
    while (words.next(&word)) {
        Gpt point{};
        if (word[0] == '$') {
            end_paths(file, symbol, first, false);
            return true;
        }
        if (read_point(word, &point)) {
            file->points.push_back(point);
        } else {
            end_paths(file, symbol, first, word[0] == 'F');
            first = file->points.size();
        }
    }
    end_paths(file, symbol, first, false);
    return false;
}

void read_symbols(WordReader words, SymbolFile* file) {
    std::string name;
    bool more = true;
    while (more && words.next(&name)) {
        if (file->symbols.size() == max_symbols) {
            MESS_print(mess_warn, "WX_symb: More than %d symbols in %s, the rest is left out\n",
                       static_cast<int>(max_symbols), file->name.c_str());
            return;
        }
        Symbol symbol;
        // A name that is too long never fits: it keeps its place without one.
        symbol.name = name.size() <= name_length ? name : "";
        more = read_symbol(words, file, &symbol);
        file->symbols.push_back(std::move(symbol));
    }
}

std::unique_ptr<SymbolFile> load(const char* name) {
    auto file = std::make_unique<SymbolFile>();
    file->name = name;
    char path[file_name_size] = "";
    FILE_add_path(RES_get("file_path"), name, path);
    const bool refused =
        *name == '\0' || path[0] == '|' || FILE_is_stdio(path) != 0 || FILE_is_dir(path) == 1;
    const FILE_ptr stream(refused ? nullptr : FILE_open(path, "r"));
    file->open = stream != nullptr;
    if (stream) {
        read_symbols(WordReader(stream.get()), file.get());
    } else {
        MESS_print(file_warning, "WX_symb_file: Unable to open file: %s\n", path);
    }
    return file;
}

const SymbolFile* find_file(const char* name) {
    for (const auto& file : state.files) {
        if (stricmp(file->name.c_str(), name) == 0) {
            return file.get();
        }
    }
    if (state.files.size() == max_files) {
        state.files.clear();
        state.chosen = nullptr;
    }
    state.files.push_back(load(name));
    return state.files.back().get();
}

const Symbol* find_symbol(const SymbolFile& file, const char* text) {
    for (const Symbol& symbol : file.symbols) {
        if (!symbol.name.empty() &&
            strnicmp(symbol.name.c_str(), text, static_cast<int>(symbol.name.size())) == 0) {
            return &symbol;
        }
    }
    return nullptr;
}

// Lower left corner of a symbol that is aligned to a point.
Gpt corner(float x, float y, float size) {
    int hor = 0;
    int vert = 0;
    GPH_get_text_align(&hor, &vert);
    const float left = hor == GRIGHT_HOR ? size : hor == GCENTER_HOR ? size / 2.0F : 0.0F;
    const float below = vert == GTOP_VERT || vert == GCAP_VERT ? size
                        : vert == GHALF_VERT                   ? size / 2.0F
                                                               : 0.0F;
    return {x - left, y - below};
}

// --- Cloud cover ------------------------------------------------------------------

constexpr int circle_points = 13; // at 30 degree steps, the first again at the end

// Cosine and sine of i * 30 degrees.
constexpr float half = 0.5F;
constexpr float sqrt3_2 = 0.8660254F;
constexpr float cosines[12] = {1.0F,  sqrt3_2,  half,  0.0F, -half, -sqrt3_2,
                               -1.0F, -sqrt3_2, -half, 0.0F, half,  sqrt3_2};

struct Circle {
    float x, y, r;

    [[nodiscard]] Gpt at(float fx, float fy) const { return {x + fx * r, y + fy * r}; }
    // A point of the rim, by steps of 30 degrees from the right, counterclockwise.
    [[nodiscard]] Gpt rim(int step) const {
        const int i = ((step % 12) + 12) % 12;
        return at(cosines[i], cosines[(i + 9) % 12]);
    }
    void outline() const {
        Gpt points[circle_points];
        for (int i = 0; i < circle_points; ++i) {
            points[i] = rim(i);
        }
        gpolyline(circle_points, points);
    }
    void line(Gpt from, Gpt to) const {
        const Gpt points[2] = {from, to};
        gpolyline(2, points);
    }
    // The rim from one step to another, then the centre if asked for, filled.
    void fill(int from, int to, bool through_center) const {
        Gpt points[circle_points + 2];
        int n = 0;
        for (int i = from; i <= to; ++i) {
            points[n++] = rim(i);
        }
        if (through_center) {
            points[n++] = {x, y};
        }
        points[n++] = rim(from);
        gset_fill_int_style(1);
        gfill_area(n, points);
    }
    // Seven eighths: what is left and right of a band.
    void fill_but_band() const {
        constexpr float fx = 0.25881904F; // sine of 15 degrees
        constexpr float fy = 0.9659258F;
        gset_fill_int_style(1);
        const Gpt east[8] = {at(fx, -fy), rim(-2), rim(-1),    rim(0),
                             rim(1),      rim(2),  at(fx, fy), at(fx, -fy)};
        gfill_area(8, east);
        const Gpt west[8] = {at(-fx, fy), rim(4), rim(5),       rim(6),
                             rim(7),      rim(8), at(-fx, -fy), at(-fx, fy)};
        gfill_area(8, west);
    }
    void cross() const {
        constexpr float d = 0.70710677F;
        line(at(-d, -d), at(d, d));
        line(at(-d, d), at(d, -d));
    }
    void letter_m() const {
        constexpr float d = 0.7F;
        const Gpt points[5] = {
            at(-d, -d), at(-d, d), {x, y},
                at(d, d), at(d, -d)
        };
        gpolyline(5, points);
    }
};

} // namespace

int WX_symb_file(const char* file) {
    const char* name = file != nullptr ? file : default_file;
    if (state.chosen != nullptr && stricmp(state.chosen->name.c_str(), name) == 0) {
        return -1;
    }
    state.chosen = find_file(name);
    return state.chosen->open ? 0 : -1;
}

int WX_symb(float x, float y, const char* str, float size) {
    if (state.chosen == nullptr) {
        WX_symb_file(nullptr);
    }
    if (*str == '\0' || *str == ' ' || state.chosen == nullptr) {
        return 0;
    }
    const Symbol* symbol = find_symbol(*state.chosen, str);
    if (symbol == nullptr) {
        return 0;
    }
    const Gpt origin = corner(x, y, size);
    for (const Path& path : symbol->paths) {
        Gpt points[max_points];
        for (std::size_t i = 0; i < path.count; ++i) {
            const Gpt& point = state.chosen->points[path.first + i];
            points[i] = {point.x * size + origin.x, point.y * size + origin.y};
        }
        if (path.fill) {
            gfill_area(static_cast<int>(path.count), points);
        } else {
            gpolyline(static_cast<int>(path.count), points);
        }
    }
    return 1;
}

int WX_cloud(float x_center, float y_center, float rad, char cover) {
    const Circle c{x_center, y_center, rad};
    if (cover != '8' && cover != 'O') {
        c.outline();
    }
    switch (cover) {
    case '0':
    case 'C':
    case 'b':
    case 'o':
    case 's':
    case 'x':
        break;
    case '1':
    case 'F':
        c.line(c.rim(3), c.rim(-3));
        break;
    case '3':
        c.line({c.x, c.y}, c.rim(-3));
        [[fallthrough]];
    case '2':
    case 'S':
        c.fill(0, 3, true);
        break;
    case '5':
        c.line({c.x, c.y}, c.rim(6));
        [[fallthrough]];
    case '4':
        c.fill(-3, 3, false);
        break;
    case '6':
    case 'B':
        c.fill(-6, 3, true);
        break;
    case '7':
        c.fill_but_band();
        break;
    case '8':
    case 'O':
        c.fill(0, 11, false);
        break;
    case '9':
    case 'X':
        c.cross();
        break;
    default:
        c.letter_m();
    }
    return 0;
}

void keep_wx_symb(StateKeeper& keeper) {
    keeper.keep(state.chosen);
}
