// cty_tool.cpp: single lookups in a station file, the hash table of the
// stations of a picture, and selection strings. State: that table, how its
// stations are named, and the caller's own record beside each of them.
#include "zyrcty.h"

#include "files.h"
#include "maptran.h"
#include "no_memory.h"
#include "state_keeper.h"
#include "table.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr int no_wmo = 99999;
constexpr std::size_t key_size = 24;
constexpr int default_priority = 10;
constexpr int most_block_bytes = 1 << 20; // of a caller's record

struct Picture {
    TAB_table table;           // stations of the picture
    int store = 0;             // its kind, 0: none
    int id_type = 0;           // how stations are named, see CTY_set_id_type
    int block_size = 0;        // bytes of the caller's record, 0: none
    CTY_enter enter = nullptr; // fills it
};
Picture picture;
std::string missing_file; // the one that was reported last

// --- Table of the picture ----------------------------------------------------

bool is_buoy(const CTY_data& city) {
    return std::strcmp(city.region, "B_") == 0;
}

bool has_id(const CTY_data& city) {
    return city.id[0] != '-';
}

void make_wmo_key(const CTY_data& city, char (&key)[key_size]) {
    std::snprintf(key, sizeof key, is_buoy(city) ? "b%05d" : "%05d", city.wmo);
}

// The identifier that a plot shows, by `id_type`.
void make_shown_id(const CTY_data& city, int id_type, const char* wmo_key, char* out,
                   std::size_t size) {
    char text[key_size] = "";
    copy_text(text, sizeof text, city.id);
    if (id_type == 1) {
        copy_text(text, sizeof text, city.wmo == no_wmo ? city.id : wmo_key);
    } else if (!has_id(city)) {
        if (id_type == 2 && !is_buoy(city)) {
            wmo_to_id(text, city.wmo);
        } else {
            copy_text(text, sizeof text, wmo_key);
        }
    }
    copy_text(out, size, text);
}

// Frees the callers' records with the table.
void clear_table(Picture& s) {
    for (void* record = TAB_first(&s.table); record != nullptr; record = TAB_next(&s.table)) {
        std::free(s.store == cty_full ? static_cast<stat_FULL_data*>(record)->ptr
                                      : static_cast<stat_XY_data*>(record)->ptr);
    }
    TAB_clear(&s.table);
    s.store = 0;
}

void* make_block(const Picture& s, const CTY_data& city) {
    if (s.block_size <= 0) {
        return nullptr;
    }
    void* block = ZYR_need(std::calloc(1, static_cast<std::size_t>(s.block_size)));
    if (s.enter != nullptr) {
        s.enter(&city, block);
    }
    return block;
}

// Enters a station of the picture. Returns 0, or -1 without memory.
int enter_station(Picture& s, const CTY_data& city, float x, float y) {
    char wmo_key[key_size];
    make_wmo_key(city, wmo_key);
    void* block = make_block(s, city);
    int status = 0;
    if (s.store == cty_full) {
        const stat_FULL_data record{city, block};
        status = TAB_enter(&s.table, &record, city.id, wmo_key);
    } else {
        stat_XY_data record{{}, block};
        make_shown_id(city, s.id_type, wmo_key, record.city.id, sizeof record.city.id);
        record.city.wmo = city.wmo;
        record.city.x = x;
        record.city.y = y;
        record.city.el = city.el;
        record.city.pr = city.prior;
        char place[key_size];
        std::snprintf(place, sizeof place, "%5.0f%6.0f", static_cast<double>(city.lat) * 10,
                      static_cast<double>(city.lon) * 10);
        status = s.store == cty_xy ? TAB_enter(&s.table, &record, city.id, wmo_key)
                                   : TAB_enter(&s.table, &record, city.id, wmo_key, place);
    }
    if (status != 0) {
        std::free(block);
    }
    return status;
}

// The selection strings of the resource `identifier`; "all" selects nothing.
struct Selection {
    TextList ids = RES_items("identifier");
    int count = ids.count() == 1 && stricmp(ids[0], "all") == 0 ? 0 : ids.count();
};

bool all_digits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), is_digit);
}

// The record of an identifier, by the key that its form stands for.
const void* find_station(const Picture& s, const char* id) {
    const std::string_view text = id;
    if ((text.size() == 5 && all_digits(text)) || (text.size() == 6 && text[0] == 'b')) {
        return TAB_search(&s.table, 2, id);
    }
    if (text.size() == 5 && std::isupper(static_cast<unsigned char>(text[0])) != 0 &&
        all_digits(text.substr(2))) {
        int number = -1;
        char key[key_size];
        id_to_wmo(id, &number);
        std::snprintf(key, sizeof key, "%5.5d", number);
        return TAB_search(&s.table, 2, key);
    }
    return TAB_search(&s.table, 1, id);
}

// --- Selection strings ---------------------------------------------------------

enum class Test { name, state, country, id, radius, priority, lat, lon, elevation, wmo };

struct Keyword {
    const char* text;
    Test test;
    char op; // '=', '<' or '>'; ':' when the value is the next part
};
constexpr Keyword keywords[] = {
    {"Name=", Test::name,      '='},
    {"ST=",   Test::state,     '='},
    {"CN=",   Test::country,   '='},
    {"ID=",   Test::id,        '='},
    {"RA<",   Test::radius,    '<'},
    {"P=",    Test::priority,  '='},
    {"P<",    Test::priority,  '<'},
    {"P>",    Test::priority,  '>'},
    {"Lat=",  Test::lat,       '='},
    {"Lat<",  Test::lat,       '<'},
    {"Lat>",  Test::lat,       '>'},
    {"Lon=",  Test::lon,       '='},
    {"Lon<",  Test::lon,       '<'},
    {"Lon>",  Test::lon,       '>'},
    {"Elev=", Test::elevation, '='},
    {"Elev<", Test::elevation, '<'},
    {"Elev>", Test::elevation, '>'},
    {"WMO=",  Test::wmo,       '='},
    {"WMO<",  Test::wmo,       '<'},
    {"WMO>",  Test::wmo,       '>'},
    {"ST:",   Test::state,     ':'},
    {"CN:",   Test::country,   ':'},
};

// The keyword that a string begins with, or null.
const Keyword* find_keyword(const char* text) {
    for (const Keyword& k : keywords) {
        if (begins(text, k.text)) {
            return &k;
        }
    }
    return nullptr;
}

// Moves `at` past the next colon, or to the end of the text.
void next_part(const char*& at) {
    at += std::strcspn(at, ":");
    at += *at == ':' ? 1 : 0;
}

bool same_text(std::string_view a, const char* b) {
    return a.size() == std::strlen(b) && strnicmp(a.data(), b, static_cast<int>(a.size())) == 0;
}

bool is_wmo_text(std::string_view text, int wmo) {
    char number[key_size];
    std::snprintf(number, sizeof number, "%5.5d", wmo);
    return same_text(text, number);
}

bool in_state(std::string_view value, const CTY_data& city) {
    if (value.size() == 5) {
        char both[key_size];
        std::snprintf(both, sizeof both, "%2s_%2s", city.state, city.region);
        return same_text(value, both);
    }
    return value.size() == 2 && same_text(value, city.state);
}

bool compare(float own, const char* value, char op) {
    float limit = 0.0F;
    if (!take_real(&value, &limit)) {
        return false;
    }
    return op == '<' ? own <= limit : op == '>' ? own >= limit : own == limit;
}

// "RA<" r:lat:lon; takes the two parts after the radius.
bool in_radius(const char*& at, const char* value, const CTY_data& city) {
    float radius = 0.0F;
    float place[2] = {0, 0};
    bool read = take_real(&value, &radius);
    for (float& p : place) {
        const char* part = at;
        read = read && *at != '\0' && take_real(&part, &p);
        next_part(at);
    }
    return read && calc_earth_dist(place[0], place[1], city.lat, city.lon) <= radius;
}

// Tests the part at `at` and moves `at` past it.
bool part_holds(const char*& at, const CTY_data& city) {
    const Keyword* k = find_keyword(at);
    if (k == nullptr) {
        return false;
    }
    const char* const part = at;
    const char* value = at + std::strlen(k->text);
    if (k->op == ':') {
        at = value;
    }
    next_part(at);
    const std::string_view text(value, std::strcspn(value, ":"));
    switch (k->test) {
    case Test::name: {
        // The first character after the sign is an opening mark.
        const std::size_t length = std::strcspn(part, ":");
        return length <= 6 || strnicmp(city.name, part + 6, static_cast<int>(length - 6)) == 0;
    }
    case Test::state:
        return in_state(text, city);
    case Test::country:
        return same_text(text, city.region);
    case Test::id:
        return same_text(text, city.id);
    case Test::radius:
        return in_radius(at, value, city);
    case Test::priority:
        return compare(static_cast<float>(city.prior), value, k->op);
    case Test::lat:
        return compare(city.lat, value, k->op);
    case Test::lon:
        return compare(city.lon, value, k->op);
    case Test::elevation:
        return compare(city.el, value, k->op);
    case Test::wmo:
        return k->op == '=' ? is_wmo_text(text, city.wmo)
                            : compare(static_cast<float>(city.wmo), value, k->op);
    }
    return false;
}

bool string_fits(const char* text, const CTY_data& city) {
    const char* at = text;
    bool holds = *at != '\0';
    while (holds && *at != '\0') {
        holds = part_holds(at, city);
    }
    const std::string_view whole = text;
    return holds || (whole.size() == 5 && is_wmo_text(whole, city.wmo)) ||
           same_text(whole, city.id) ||
           (whole.size() >= 5 && strnicmp(city.name, text, static_cast<int>(whole.size())) == 0);
}

} // namespace

void CTY_tell_missing(const char* name) {
    if (missing_file == name) {
        return;
    }
    missing_file = name;
    MESS_print(mess_warn, "CTY_open_file: Database file not found: %s\n", name);
    FILE_tell_nearest("CTY_open_file", RES_get("file_path"), name);
}

int CTY_open_file(const char* city_file, int* num_stats) {
    const char* name = RES_get("city_file");
    if (name == nullptr || *name == '\0') {
        name = city_file != nullptr && *city_file != '\0' ? city_file : "sao.cty";
    }
    if (num_stats != nullptr) {
        *num_stats = 0;
    }
    if (stricmp(name, "none") == 0) {
        return -1;
    }
    char path[file_name_size];
    FILE_add_path(RES_get("file_path"), name, path);
    const int fd = CTY_open(path, 0, 0);
    if (fd == -1) {
        CTY_tell_missing(name);
    } else if (num_stats != nullptr) {
        *num_stats = CTY_estimate(path);
    }
    return fd;
}

int CTY_get(const char* city_file, const char* id, CTY_data* data) {
    if (id == nullptr || data == nullptr) {
        return 0;
    }
    const int fd = CTY_open_file(city_file, nullptr);
    if (fd == -1) {
        return 0;
    }
    MESS_print(mess_mess, "Searching the city database file for: %s ...\n", id);
    CTY_data city;
    int fields = 0;
    int found = 0;
    while (found == 0 && (fields = CTY_read(fd, &city)) != -1) {
        char wmo[key_size];
        std::snprintf(wmo, sizeof wmo, "%05d", city.wmo);
        if (fields >= cty_fields &&
            (stricmp(id, city.id) == 0 || stricmp(id, city.name) == 0 || stricmp(id, wmo) == 0)) {
            *data = city;
            found = 1;
        }
    }
    CTY_close(fd);
    return found;
}

int CTY_get_loc(const char* city_file, const char* id, float* lat, float* lon) {
    CTY_data city;
    if (CTY_get(city_file, id, &city) == 0) {
        return 0;
    }
    *lat = city.lat;
    *lon = city.lon;
    return 1;
}

int CTY_get_prior() {
    int prior = default_priority;
    RES_getval("stat_prior", &prior, CV_int);
    return prior;
}

int CTY_set_id_type(int type) {
    picture.id_type = type;
    return 0;
}

int CTY_data_size(int size) {
    picture.block_size = std::clamp(size, 0, most_block_bytes);
    return 0;
}

int CTY_enter_func(CTY_enter func) {
    picture.enter = func;
    return 0;
}

int CTY_store(const char* city_file, int type, const Domain* domain, int prior) {
    if (type < cty_full || type > cty_xy_pos) {
        return 0;
    }
    int count = 0;
    const int fd = CTY_open_file(city_file, &count);
    if (fd == -1) {
        return 0;
    }
    clear_table(picture);
    MAP_domain(domain);
    MESS_print(mess_mess, "Reading the city database file...\n");
    const Selection selection;
    const int limit = is_set(prior) ? prior : CTY_get_prior();
    const std::size_t size = type == cty_full ? sizeof(stat_FULL_data) : sizeof(stat_XY_data);
    int status = TAB_create(&picture.table, std::max(count, 1), static_cast<int>(size),
                            type == cty_xy_pos ? 3 : 2);
    picture.store = status == 0 ? type : 0;
    CTY_data city;
    int fields = 0;
    while (status == 0 && (fields = CTY_read(fd, &city)) != -1) {
        float x = 0;
        float y = 0;
        if (fields < cty_fields || city.prior > limit ||
            CTY_data_cmp(selection.count, selection.ids.begin(), &city) == -1 ||
            MAP_tran(city.lat, city.lon, &x, &y) == 0 || MAP_in_grid_domain(x, y) == 0) {
            continue;
        }
        status = enter_station(picture, city, x, y);
    }
    CTY_close(fd);
    return status == 0 ? 1 : 0;
}

int CTY_search(const char* id, void* data) {
    if (id == nullptr || picture.store == 0) {
        return 0;
    }
    const void* found = find_station(picture, id);
    if (found == nullptr) {
        return 0;
    }
    if (data != nullptr) {
        if (picture.store == cty_full) {
            *static_cast<stat_FULL_data*>(data) = *static_cast<const stat_FULL_data*>(found);
        } else {
            *static_cast<stat_XY_data*>(data) = *static_cast<const stat_XY_data*>(found);
        }
    }
    return 1;
}

int CTY_data_cmp(int numid, const char* const* ids, const CTY_data* data) {
    if (numid <= 0 || ids == nullptr) {
        return 1;
    }
    for (int i = 0; data != nullptr && i < numid; ++i) {
        if (ids[i] != nullptr && string_fits(ids[i], *data)) {
            return i;
        }
    }
    return -1;
}

int CTY_ids_cmp(int numid, const char* const* ids, const char* id) {
    if (numid <= 0 || ids == nullptr) {
        return 1;
    }
    for (int i = 0; i < numid; ++i) {
        if (ids[i] != nullptr &&
            (find_keyword(ids[i]) != nullptr || (id != nullptr && stricmp(ids[i], id) == 0))) {
            return 1;
        }
    }
    return 0;
}

void keep_cty_tool(StateKeeper& keeper) {
    keeper.close_by([] { clear_table(picture); });
    keeper.keep(picture.id_type);
    keeper.keep(picture.block_size);
    keeper.keep(picture.enter);
}
