// map.cpp: the map layer of a picture: a list of entries, each under its own
// conditions, that draw map databases, grids and other files over or under the
// data. State: the list in use, the default attributes, and what the walk of
// the list knows. MAP_setup must be called before anything is drawn.
#include "map.h"

#include "files.h"
#include "maptran.h"
#include "plt_tool.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"
#include "zyr.h"
#include "zyrgks.h"
#include "zyrraw.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t entry_size = 256; // of one word of a map list

// What region blocks have come to, in the order of a list.
enum class Blocks {
    none,    // no block yet: entries are drawn
    missed,  // blocks, but none that matches: entries are skipped
    matched, // in the block that matches
    done     // after it: nothing is drawn to the end of the list
};

struct State {
    char map_name[250] = ""; // map list, empty: chosen by the domain
    char format[40] = "";    // default attributes of databases
    int over = map_plain;    // bits of the MAP_draw that runs
    int fill_cont = 0;       // 1: databases take `color_cmap`
    Blocks blocks = Blocks::none;
    bool told_no_image = false;          // of a file device, warned of once
    char not_found[file_name_size] = ""; // the database last reported
};
State state;

const char* get_or_null(const char* resource) {
    const char* text = RES_get(resource);
    return text == nullptr || *text == '\0' ? nullptr : text;
}

FILE_ptr open_on_path(const char* path_resource, const char* name) {
    char path[file_name_size];
    FILE_add_path(RES_get(path_resource), name, path);
    return FILE_ptr(FILE_open_bounded(path));
}

// --- Conditions ------------------------------------------------------------------

struct Condition {
    const char* word;
    char other;    // begins a second limit of the other kind, 0: none
    bool at_least; // skipped below the number; else above it
};
constexpr Condition conditions[] = {
    {"s+", '\0', true },
    {">",  '<',  true },
    {"s-", '\0', false},
    {"<",  '>',  false},
    {"s+", '\0', true },
    {">",  '\0', true },
};

bool passes(float height, float limit, bool at_least) {
    return at_least ? height >= limit : height <= limit;
}

// Moves `*entry` past its conditions. False if one of them, or a condition
// without a colon after it, leaves the entry out.
bool conditions_hold(const char** entry, float height) {
    for (const Condition& c : conditions) {
        if (!begins(*entry, c.word)) {
            continue;
        }
        const char* at = *entry + std::strlen(c.word);
        float limit = 0;
        bool holds = !take_float(&at, &limit) || passes(height, limit, c.at_least);
        if (c.other != '\0' && *at == c.other) {
            ++at;
            holds = (!take_float(&at, &limit) || passes(height, limit, !c.at_least)) && holds;
        }
        const char* colon = std::strchr(at, ':');
        if (!holds || colon == nullptr) {
            return false;
        }
        *entry = colon + 1;
    }
    return true;
}

// "[lat1,lat2,lon1,lon2,height]": whether the picture lies in the block. Fewer
// than four numbers always fit.
bool in_block(const char* text) {
    float box[5] = {0, 0, 0, 0, 1000};
    int n = 0;
    for (const char* at = text + 1; n < 5 && take_float(&at, &box[n]); ++n) {
        at += *at == ',' ? 1 : 0;
    }
    if (n < 4) {
        return true;
    }
    const auto lat = std::minmax(box[0], box[1]);
    const auto lon = std::minmax(box[2], box[3]);
    const float clat = MAP_get_clat();
    const float clon = MAP_get_clon();
    return clat >= lat.first && clat <= lat.second && clon >= lon.first && clon <= lon.second &&
           MAP_get_vert() <= box[4];
}

void enter_block(const char* text) {
    if (state.blocks == Blocks::matched || state.blocks == Blocks::done) {
        state.blocks = Blocks::done;
    } else {
        state.blocks = in_block(text) ? Blocks::matched : Blocks::missed;
    }
}

// --- Entries ---------------------------------------------------------------------

// Grids in the colour given; the text is as high as on the map's own grid.
int draw_grid(const Gattribs& attr, float dlat, float dlon) {
    GPH_line_attr(&attr);
    GPH_text_attr(&attr, is_map_proj(MAP_get_proj()) ? MAP_get_vert() * 0.018F : 0.015F);
    if (attr.color == -1) {
        return -1;
    }
    MAP_lines(dlat, dlon);
    return 0;
}

// "lalo:DLAT:DLON:ATTRIBUTES", from the character after the word.
int lalo_entry(const char* text) {
    constexpr float default_step = 5;
    constexpr int dashed = 4;
    const char* at = *text == '\0' ? text : text + 1;
    float dlat = default_step;
    const bool given = take_float(&at, &dlat);
    float dlon = dlat;
    const char* second = at + 1;
    if (given && *at == ':' && take_float(&second, &dlon)) {
        at = second;
    }
    PLT_mess("Map-lalo: %.1f,%.1f", static_cast<double>(dlat), static_cast<double>(dlon));
    Gattribs attr;
    attr.style = dashed;
    if (*at == ':') {
        ATTRIB_parse(at + 1, &attr);
    } else {
        ATTRIB_get("color_line", "magenta:s4", &attr);
    }
    return draw_grid(attr, dlat, dlon);
}

// Attributes of a database entry: its own, or the default ones.
Gattribs database_attributes(const char* own) {
    Gattribs attr;
    if (own != nullptr) {
        ATTRIB_parse(own, &attr);
    } else if (state.format[0] != '\0') {
        ATTRIB_parse(state.format, &attr);
    } else if (state.fill_cont == 0) {
        ATTRIB_get("color_map", "red", &attr);
    } else {
        ATTRIB_get("color_cmap", "black", &attr);
    }
    return attr;
}

int database_entry(const char* entry) {
    char name[file_name_size];
    const char* colon = std::strchr(entry, ':');
    const std::size_t length =
        colon == nullptr ? std::strlen(entry) : static_cast<std::size_t>(colon - entry);
    copy_text(name, std::min(sizeof name, length + 1), entry);
    GPH_line_attr(nullptr);
    GPH_fill_attr(nullptr);
    PLT_mess("Map: %s", name);
    const Gattribs attr = database_attributes(colon == nullptr ? nullptr : colon + 1);
    GPH_line_attr(&attr);
    const bool fill = is_set(attr.fill_pat);
    if (fill) {
        GPH_fill_attr(&attr);
    }
    const FILE_ptr file = name[0] == '\0' ? nullptr : open_on_path("file_path", name);
    if (!file) {
        if (std::strcmp(name, state.not_found) != 0) { // a list may name it thousands of times
            MESS_print(mess_warn, "MAP_process: Map file not found: %s\n", name);
            FILE_tell_nearest("MAP_process", RES_get("file_path"), name);
            copy_text(state.not_found, sizeof state.not_found, name);
        }
        return -1;
    }
    if (attr.color == -1) {
        return -1;
    }
    MAP_set_fill(fill ? 1 : 0);
    const int status = MAP_map(file.get());
    MAP_set_fill(0);
    if (status == map_no_database) {
        MESS_print(mess_warn,
                   "MAP_process: No map database: %s; a list of maps is named as fi:%s\n", name,
                   name);
    } else if (status == -1) {
        MESS_print(mess_warn, "MAP_process: Map file ends early: %s\n", name);
    }
    return 0;
}

// An image entry after its word: the file and, split at colons, the colour
// that is not drawn, which may be empty, and the place.
struct ImageEntry {
    char name[file_name_size] = "";
    char background[50] = "";
    int x = 0;
    int y = 0;
};

// Copies the text up to the next colon. Returns the place after that.
const char* take_field(const char* text, char* out, std::size_t size) {
    const std::size_t length = std::strcspn(text, ":");
    copy_text(out, std::min(size, length + 1), text);
    return text + length + (text[length] == ':' ? 1 : 0);
}

ImageEntry read_image_entry(const char* text) {
    ImageEntry entry;
    const char* at = take_field(text, entry.name, sizeof entry.name);
    at = take_field(at, entry.background, sizeof entry.background);
    float x = 0;
    float y = 0;
    if (take_float(&at, &x) && *at == ':') {
        take_float(&++at, &y);
    }
    constexpr float far = 30000; // beyond any window
    entry.x = static_cast<int>(std::clamp(x, -far, far));
    entry.y = static_cast<int>(std::clamp(y, -far, far));
    return entry;
}

// "im:" on the map and "if:" on the page lay an image over the picture.
int image_entry(const char* text, int transformation) {
    const ImageEntry entry = read_image_entry(text);
    PLT_mess("Map-image: %s", entry.name);
    if (!gtype_is_WIN_PIX()) {
        if (!state.told_no_image) {
            MESS_print(mess_warn, "MAP_process: Images are drawn in a window alone: %s\n",
                       entry.name);
        }
        state.told_no_image = true;
        return -1;
    }
    char path[file_name_size];
    FILE_add_path(RES_get("image_path"), entry.name, path);
    if (entry.name[0] == '\0' || FILE_exist(path) == 0) {
        MESS_print(mess_warn, "MAP_process: Image file not found: %s\n", entry.name);
        return -1;
    }
    gsel_norm_tran(transformation);
    const int drawn = goverlay_image_file(path, entry.background, entry.x, entry.y);
    gsel_norm_tran(tran_map);
    if (drawn == 0) {
        MESS_print(mess_warn, "MAP_process: Unable to draw image: %s\n", path);
        return -1;
    }
    return 0;
}

// A metafile brings its own transformations.
int metafile_entry(const char* file) {
    PLT_mess("Map-metafile: %s", file);
    return goverlay_metafile(file);
}

// A raw file sets levels of its own, which the plot about it does not see. The
// terminal is no file to lay over a map.
int rawfile_entry(const char* file) {
    PLT_mess("Map-rawfile: %s", file);
    if (FILE_is_stdio(file) != 0) {
        return -1;
    }
    RAW_plot_file(file, 0);
    return 0;
}

int draw_entry(const char* entry) {
    if (begins(entry, "im:")) {
        return image_entry(entry + std::strlen("im:"), tran_map);
    }
    if (begins(entry, "if:")) {
        return image_entry(entry + std::strlen("if:"), tran_page);
    }
    if (begins(entry, "mf:")) {
        return metafile_entry(entry + std::strlen("mf:"));
    }
    if (begins(entry, "rf:")) {
        return rawfile_entry(entry + std::strlen("rf:"));
    }
    if (begins(entry, "lalo")) {
        return lalo_entry(entry + std::strlen("lalo"));
    }
    return database_entry(entry);
}

// --- Lists -----------------------------------------------------------------------

bool is_control(char c) {
    return std::iscntrl(static_cast<unsigned char>(c)) != 0;
}

// The blocks of a file end with it: what follows its name in the setting, such as
// points over the map, is drawn whatever the file's last block was.
void process_list_file(const char* name) {
    const FILE_ptr file = open_on_path("file_path", name);
    const unsigned level =
        (state.over & map_plain) != 0 ? mess_warn : 0; // in one of a frame's passes
    if (!file) {
        if (level != 0) {
            MESS_print(level, "MAP_draw: Unable to open map list file: %s\n", name);
            FILE_tell_nearest("MAP_draw", RES_get("file_path"), name);
        }
        return;
    }
    constexpr std::size_t most = 10000;
    char word[entry_size];
    std::vector<std::string> words; // nothing is drawn of a file that is no list
    bool whole = true;
    while (whole && std::fscanf(file.get(), "%255s", word) == 1) {
        words.emplace_back(word);
        whole = words.size() <= most &&
                std::none_of(words.back().begin(), words.back().end(), is_control);
    }
    if (!whole) {
        MESS_print(level, "MAP_draw: No map list, or one that is too long: %s\n", name);
        return;
    }
    for (const std::string& entry : words) {
        // A command comes from the user, not out of a file.
        if (entry[0] == '|' || entry.find(":|") != std::string::npos) {
            MESS_print(level, "MAP_draw: Command refused: %s in map list: %s\n", entry.c_str(),
                       name);
            continue;
        }
        MAP_process(entry.c_str());
    }
}

void process_list(const char* list) {
    const TextList entries(list, ',');
    state.blocks = Blocks::none;
    for (const char* entry : entries) {
        if (begins(entry, "fi:")) {
            const Blocks blocks = state.blocks;
            process_list_file(entry + std::strlen("fi:"));
            state.blocks = blocks;
        } else {
            MAP_process(entry);
        }
    }
}

// The list for a domain without any: one file serves North America, two the
// world.
const char* list_of_domain() {
    constexpr float continent = 75;
    const float lat = MAP_get_clat();
    const float lon = MAP_get_clon();
    const bool america =
        lat > 25 && lat < 80 && lon > -160 && lon < -65 && MAP_get_vert() < continent;
    return america ? "zyr.map" : "cont.map,country.map";
}

// The grid of the plot parameter "lalo".
void draw_plot_grid() {
    float lat = 0;
    float lon = 0;
    MAP_get_latlon(&lat, &lon);
    if (!(lat > 0)) {
        return;
    }
    const bool is_map = is_map_proj(MAP_get_proj());
    Gattribs attr;
    ATTRIB_get("color_line", is_map ? "magenta:s4" : "red", &attr);
    draw_grid(attr, lat, lon);
}

} // namespace

int MAP_setup(const Domain* domain) {
    MAP_domain(domain);
    MAP_limits limits;
    MAP_get_limits(&limits);
    const Glim window{limits.x_min, limits.x_max, limits.y_min, limits.y_max};
    gset_win(tran_map, &window);
    gsel_norm_tran(tran_map);
    return 0;
}

int MAP_draw(int flag) {
    if (FLAG_getplot(part_map) == 0) {
        return -1;
    }
    state.over = flag;
    gsel_norm_tran(tran_map);
    GPH_line_attr(nullptr);
    GPH_text_font(nullptr);
    const char* list = get_or_null("map_file");
    if (list == nullptr) {
        list = state.map_name[0] != '\0' ? state.map_name : list_of_domain();
    }
    process_list(list);
    draw_plot_grid();
    return 0;
}

int MAP_process(const char* str) {
    if (str == nullptr || *str == '\0') {
        return -1;
    }
    const int bit = *str == '-' ? map_under : *str == '+' ? map_over : map_plain;
    if ((state.over & bit) == 0) {
        return -1;
    }
    const char* entry = bit == map_plain ? str : str + 1;
    if (*entry == '[') {
        enter_block(entry);
        return -1;
    }
    if (state.blocks == Blocks::missed || state.blocks == Blocks::done) {
        return -1;
    }
    if (!conditions_hold(&entry, MAP_get_vert())) {
        return -1;
    }
    return draw_entry(entry);
}

int MAP_fill_cont(int value) {
    state.fill_cont = value;
    return 0;
}

int MAP_file(const char* file) {
    return copy_text(state.map_name, sizeof state.map_name, file == nullptr ? "" : file);
}

int MAP_set_format(const char* str) {
    return copy_text(state.format, sizeof state.format, str == nullptr ? "" : str);
}

void keep_map(StateKeeper& keeper) {
    keeper.keep(state);
}
