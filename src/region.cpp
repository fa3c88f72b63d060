// region.cpp: where a picture lies. A domain comes as text: from the
// resources `plot_domain` and `region`, from a line of a region file, or typed
// at the region prompt. A domain string is a list of fields; its shape is given
// by their number and kind, the first shape of the table that fits wins.
//
// State: the region menu (built-in rows until a region file was read), the two
// station priorities, and whether the prompt is still to be shown.
#include "region.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "files.h"
#include "map_proj.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"
#include "zyrcty.h"
#include "zyrresrc.h"

namespace {

constexpr const char* default_file = "zyr.reg";
constexpr const char* not_a_domain = "is no domain";
constexpr int menu_rows = 23;
constexpr int file_rows = 20; // rows 1 to 19 may come from a file
constexpr int max_depth = 10; // regions that name regions

// Size and spacing where a domain string gives none.
constexpr int common_nx = 25;
constexpr int common_ny = 17;
constexpr float common_step = 1.2F;

// --- Tables -----------------------------------------------------------------

// What a shape leaves open and what is filled in for it.
enum class Spacing { given, square, common }; // as read; dy = dx; the common step
enum class Size { given, common };            // as read; the common counts
enum class Proj { given, stereo };            // as read; polar stereographic
struct Shape {
    const char* text;
    int kinds[8];
    Proj proj;
    Size size;
    Spacing spacing;
};
constexpr Shape size_shape = {
    "proj,nx,ny", {dom_proj, dom_nx, dom_ny},
     Proj::given, Size::given, Spacing::given
};
constexpr Shape shapes[] = {
    {"proj,plon,clat,clon,nx,ny,dx,dy",
     {dom_proj, dom_plon, dom_clat, dom_clon, dom_nx, dom_ny, dom_dx, dom_dy},
     Proj::given,
     Size::given,
     Spacing::given                                                                                                       },
    {"proj,clat,clon,nx,ny,dx,dy",
     {dom_proj, dom_clat, dom_clon, dom_nx, dom_ny, dom_dx, dom_dy},
     Proj::given,
     Size::given,
     Spacing::given                                                                                                       },
    {"proj,plon,clat,clon,dx,dy",
     {dom_proj, dom_plon, dom_clat, dom_clon, dom_dx, dom_dy},
     Proj::given,
     Size::common,
     Spacing::given                                                                                                       },
    {"proj,clat,clon,nx,ny,dx",
     {dom_proj, dom_clat, dom_clon, dom_nx, dom_ny, dom_dx},
     Proj::given,
     Size::given,
     Spacing::square                                                                                                      },
    {"clat,clon,nx,ny,dx,dy",
     {dom_clat, dom_clon, dom_nx, dom_ny, dom_dx, dom_dy},
     Proj::stereo,
     Size::given,
     Spacing::given                                                                                                       },
    {"proj,clat,clon,dx,dy",
     {dom_proj, dom_clat, dom_clon, dom_dx, dom_dy},
     Proj::given,
     Size::common,
     Spacing::given                                                                                                       },
    {"clat,clon,nx,ny,dx",
     {dom_clat, dom_clon, dom_nx, dom_ny, dom_dx},
     Proj::stereo,
     Size::given,
     Spacing::square                                                                                                      },
    {"proj,clat,clon,dx",
     {dom_proj, dom_clat, dom_clon, dom_dx},
     Proj::given,
     Size::common,
     Spacing::square                                                                                                      },
    {"clat,clon,nx,ny",
     {dom_clat, dom_clon, dom_nx, dom_ny},
     Proj::stereo,
     Size::given,
     Spacing::common                                                                                                      },
    {"clat,clon,dx",                    {dom_clat, dom_clon, dom_dx},          Proj::stereo, Size::common, Spacing::square},
    {"proj,clat,clon",                  {dom_proj, dom_clat, dom_clon},        Proj::given,  Size::common, Spacing::common},
    {"clat,clon",                       {dom_clat, dom_clon},                  Proj::stereo, Size::common, Spacing::common},
    {"id:###",                          {dom_station},                         Proj::stereo, Size::common, Spacing::common},
    {"reg:REG",                         {dom_region},                          Proj::given,  Size::given,  Spacing::given },
};

struct Region {
    const char* word;
    float clat, clon, step;
};
constexpr Region regions[] = {
    {"us", 39.0F, -97.0F,  2.3F},
    {"ne", 42.0F, -76.0F,  0.9F},
    {"at", 37.0F, -82.0F,  0.9F},
    {"se", 31.0F, -88.0F,  1.1F},
    {"mw", 43.0F, -93.0F,  1.1F},
    {"sp", 32.5F, -100.0F, 1.2F},
    {"nw", 44.0F, -112.0F, 1.0F},
    {"sw", 37.0F, -112.0F, 1.0F},
};

// Lower bounds of the height of a picture for the priorities 1 to 5.
constexpr float prior_heights[] = {50.0F, 25.0F, 12.5F, 6.25F, 3.0F};

// --- State --------------------------------------------------------------------

struct Regions {
    int priority = 3;
    int loc_prior = 4;
    int prompt_region = 1; // 0: DOM_prompt_region has given its one domain
    int num_regs = 0;      // row after the last one read from a file, 0: none read
    int menu_type = 0;     // display column of the menu
    int depth = 0;         // decodes under way
    bool wiped = false;    // the built-in rows are gone
    // File that the menu came from.
    std::array<char, file_name_size> menu_file{"zyr.reg"};
    std::array<std::array<char, 21>, menu_rows> names{};
    std::array<std::array<char, 6>, menu_rows> abbrs{};
    std::array<MENU_item, menu_rows> menu{
        {
         {"Return to previous menu", "back", 0, {1}},
         {"Contiguous US", "us", 1, {1}},
         {"New England", "ne", 1, {1}},
         {"Atlantic", "at", 1, {1}},
         {"Southeastern", "se", 1, {1}},
         {"Midwestern", "mw", 1, {1}},
         {"Southern Plains", "sp", 1, {1}},
         {"Northwestern", "nw", 1, {1}},
         {"Southwestern", "sw", 1, {1}},
         {"Variable", "var", 1, {1}},
         }
    };
};
Regions state;

// --- Text ---------------------------------------------------------------------

// --- Region files ---------------------------------------------------------------

// Opens a region file along `file_path`. Only a regular file will do: a domain
// string may come out of an image file and must not start a command or wait on
// a terminal.
bool is_plain(const char* name) {
    struct stat info = {};
    return stat(name, &info) == 0 && S_ISREG(info.st_mode);
}

FILE_ptr open_region_file(const char* name) {
    char full[file_name_size] = "";
    FILE_ptr file;
    if (name[0] != '|' && FILE_is_stdio(name) == 0 && std::strlen(name) < file_name_size) {
        FILE_add_path(RES_get("file_path"), name, full);
        file.reset(FILE_open_text(full));
    }
    struct stat info = {};
    const int fd = file ? fileno(file.get()) : -1; // none where the text is bounded
    if (file && (fd >= 0 ? fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) : !is_plain(full))) {
        file.reset();
    }
    if (!file) {
        MESS_print(mess_debug, "Unable to open region file: %s\n", full[0] != '\0' ? full : name);
    }
    return file;
}

// Reads the next word, across lines, and cuts it to the buffer. Returns false
// at the end of the file.
bool read_word(std::FILE* file, char* word, int size) {
    int c = std::getc(file);
    while (c != EOF && std::isspace(c) != 0) {
        c = std::getc(file);
    }
    int length = 0;
    for (; c != EOF && std::isspace(c) == 0; c = std::getc(file)) {
        if (length + 1 < size) {
            word[length++] = static_cast<char>(c);
        }
    }
    word[length] = '\0';
    return length > 0;
}

// A line of a region file as the menu and the list see it: four words.
struct FileRow {
    char abbr[dom_string_size] = "";
    char name[dom_string_size] = "";
    int shown = 0;
};

bool read_row(std::FILE* file, FileRow* row) {
    char word[dom_string_size] = "";
    if (!read_word(file, row->abbr, dom_string_size) ||
        !read_word(file, row->name, dom_string_size)) {
        return false;
    }
    row->shown = 0;
    if (read_word(file, word, dom_string_size)) {
        const char* at = word;
        scan_int(&at, any_width, &row->shown);
        read_word(file, word, dom_string_size); // the domain string
    }
    return true;
}

// --- Fields of a domain string ----------------------------------------------------

bool fit_proj(const char* field, Domain* domain) {
    const TextList words(field, ':');
    const int count = words.count();
    domain->proj = count > 0 ? DOM_proj_str(words[0]) : -1;
    if (domain->proj == -1) {
        domain->proj = proj_pstereo;
        return false;
    }
    if (count == 2) {
        domain->plon = text_float(words[1]);
        return true;
    }
    int i = 1;
    if (i < count && std::strcmp(words[i], "e") == 0) {
        domain->ellipse = 1;
        ++i;
    }
    if (i < count) {
        domain->plat = text_float(words[i++]);
    }
    if (i < count) {
        domain->plon = text_float(words[i++]);
    }
    for (int k = 0; k < 4 && i < count; ++k, ++i) {
        if (words[i][0] != '\0') {
            domain->param[k] = text_float(words[i]);
        }
    }
    return true;
}

// "id:STATION" or "id:FILE:STATION".
bool fit_station(const char* field, Domain* domain) {
    if (!begins(field, "id:")) {
        return false;
    }
    const char* station = field + 3;
    const char* colon = std::strchr(station, ':');
    if (colon == nullptr) {
        return CTY_get_loc(nullptr, station, &domain->clat, &domain->clon) == 1;
    }
    char file[file_name_size] = "";
    const auto length = static_cast<std::size_t>(colon - station);
    if (length >= sizeof(file)) {
        return false;
    }
    std::memcpy(file, station, length);
    return CTY_get_loc(file, colon + 1, &domain->clat, &domain->clon) == 1;
}

bool decode_nested(const char* text, Domain* domain) {
    return DOM_decode(text, domain) > 0;
}

// "fi:FILE", "FILE:ABBREVIATION", "FILE:" (reads the menu alone) or a word.
bool fit_region(const char* field, Domain* domain) {
    char text[dom_string_size] = "";
    if (std::strncmp(field, "id:", 3) == 0) {
        return false;
    }
    if (begins(field, "fi:")) {
        return DOM_search_file(field + 3, nullptr, text) == 1 && decode_nested(text, domain);
    }
    if (const char* colon = std::strchr(field, ':'); colon != nullptr) {
        char file[file_name_size] = "";
        const auto length = static_cast<std::size_t>(colon - field);
        if (length >= sizeof(file)) {
            return false;
        }
        std::memcpy(file, field, length);
        if (colon[1] == '\0') {
            return DOM_read_menu(file) == 1;
        }
        return DOM_search_file(file, colon + 1, text) == 1 && decode_nested(text, domain);
    }
    if (DOM_search_file(default_file, field, text) == 1) {
        return decode_nested(text, domain);
    }
    DOM_get_def_region(field, domain);
    return true;
}

// An empty number field fits and leaves the value unset.
bool fit_float(const char* field, float* value) {
    return field[0] == '\0' || take_float(&field, value);
}
bool fit_int(const char* field, int* value) {
    return field[0] == '\0' || scan_int(&field, any_width, value) == 1;
}

bool fit_field(int kind, const char* field, Domain* domain) {
    switch (kind) {
    case dom_proj:
        return fit_proj(field, domain);
    case dom_plon:
        return fit_float(field, &domain->plon);
    case dom_station:
        return fit_station(field, domain);
    case dom_clat:
        return fit_float(field, &domain->clat);
    case dom_clon:
        return fit_float(field, &domain->clon);
    case dom_nx:
        return fit_int(field, &domain->nx);
    case dom_ny:
        return fit_int(field, &domain->ny);
    case dom_dx:
        return fit_float(field, &domain->dx);
    case dom_dy:
        return fit_float(field, &domain->dy);
    case dom_region:
        return fit_region(field, domain);
    default:
        return false;
    }
}

// --- Decoding ---------------------------------------------------------------------

void set_common(Domain* domain) {
    domain->nx = common_nx;
    domain->ny = common_ny;
    domain->dx = common_step;
    domain->dy = common_step;
}

// Fills in what the shape left open.
void complete(const Shape& shape, Domain* domain) {
    const float first = domain->clat;
    const float second = domain->clon;
    if (shape.proj == Proj::stereo) {
        domain->proj = proj_pstereo;
    }
    if (shape.size == Size::common) {
        domain->nx = common_nx;
        domain->ny = common_ny;
    }
    if (shape.spacing == Spacing::square) {
        domain->dy = domain->dx;
    } else if (shape.spacing == Spacing::common) {
        const bool zoom = shape.proj == Proj::given && domain->proj == proj_zoom;
        domain->dx = zoom ? 1.0F : common_step;
        domain->dy = domain->dx;
    }
    // "proj,clat,clon" with a word such as "sizes" gives the counts.
    if (shape.proj == Proj::given && shape.spacing == Spacing::common &&
        domain->proj == proj_size) {
        domain->dx = missing_f;
        domain->dy = missing_f;
        domain->nx = trunc_int(first);
        domain->ny = trunc_int(second);
        domain->clat = missing_f;
        domain->clon = missing_f;
    }
}

bool try_shape(const Shape& shape, const TextList& fields, Domain* domain) {
    const int* k = shape.kinds;
    if (DOM_set_params(fields.count(), fields.begin(), domain, k[0], k[1], k[2], k[3], k[4], k[5],
                       k[6], k[7]) != 0) {
        return false;
    }
    MESS_print(mess_debug, "%2d %s\n", 0, shape.text);
    complete(shape, domain);
    return true;
}

int decode_fields(const TextList& fields, Domain* domain) {
    if (fields.count() > 0 && std::strcmp(fields[0], "size") == 0 &&
        try_shape(size_shape, fields, domain)) {
        return dom_by_value;
    }
    for (const Shape& shape : shapes) {
        if (shape.kinds[0] == dom_station && fields.count() == 1 && begins(fields[0], "id:")) {
            continue; // the shape before this one has looked for it
        }
        if (try_shape(shape, fields, domain)) {
            return shape.kinds[0] == dom_region ? dom_by_region : dom_by_value;
        }
    }
    return dom_invalid;
}

int decode(const char* str, Domain* domain) {
    if (str == nullptr || str[0] == '\0' || stricmp(str, "miss") == 0) {
        return missing;
    }
    if (state.depth >= max_depth) {
        return dom_invalid;
    }
    ++state.depth;
    const TextList fields(str, ',');
    MESS_print(mess_debug, "******** PARSING DOMAIN: %d %s\n", fields.count(), str);
    const int result = decode_fields(fields, domain);
    --state.depth;
    if (result == dom_invalid && state.depth == 0) {
        MESS_print(mess_warn, "DOM_decode: Invalid plot domain\n");
    }
    FILE_set_key('r', str);
    DOM_set_base_prior(static_cast<float>((domain->ny - 1.0) * domain->dy));
    return result;
}

// --- Domains of plots ---------------------------------------------------------------

// What keeps a picture from being laid out on the domain; null: nothing.
const char* fault_of(const Domain& d) {
    if (d.proj == -1) {
        return "is no region";
    }
    if (!is_set(d.proj) || map_projection(d.proj).forward == nullptr) {
        return "has no projection to plot on";
    }
    if (!is_set(d.clat) || !is_set(d.clon)) {
        return "has no centre";
    }
    if (!is_map_proj(d.proj)) {
        return nullptr;
    }
    if (std::abs(d.clat) > 90.0F) { // the two in the wrong order, as a rule
        return "has a latitude beyond 90";
    }
    return d.nx > 1 && d.ny > 1 && d.dx > 0.0F && d.dy > 0.0F ? nullptr : "has no extent";
}

// Whether a decoded text named a menu file alone and gave no domain.
bool is_menu_only(int result, const Domain& domain) {
    return result == dom_by_region && !is_set(domain.proj);
}

// After the message: the region, or the projection, that is spelt nearest.
void tell_nearest_region(const char* text) {
    std::vector<std::array<std::string, 2>> names; // as typed, as offered
    const bool single = std::strchr(text, ',') == nullptr;
    const FILE_ptr in = single ? open_region_file(default_file) : nullptr;
    FileRow row;
    while (in && read_row(in.get(), &row)) {
        names.push_back({row.abbr, row.abbr});
        names.push_back({row.name, row.abbr});
    }
    for (const Projection& one : map_projections()) {
        for (const char* word : one.words) {
            if (!single && word != nullptr && is_map_proj(one.code)) {
                word += *word == '=' ? 1 : 0;
                names.push_back({word, word});
                names.push_back({one.name, word});
            }
        }
    }
    KnownWords words;
    for (const auto& name : names) {
        words.push_back({name[0].c_str()});
    }
    const std::string nearest(close_word(words, std::string_view(text, std::strcspn(text, ","))));
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const auto& name) { return name[0] == nearest; });
    if (!nearest.empty() && found != names.end()) {
        MESS_print(mess_warn, "DOM_decode: The nearest %s is %s\n",
                   single ? "region" : "projection", (*found)[1].c_str());
    }
}

// Decodes for a plot that can take the domain of its data: the record is
// cleared unless it can be plotted.
int decode_optional(const char* text, Domain* domain) {
    const int result = DOM_decode(text, domain);
    const char* fault = result == dom_invalid ? not_a_domain : fault_of(*domain);
    if (result > 0 && fault == nullptr) {
        return result;
    }
    const bool menu_only = is_menu_only(result, *domain);
    DOM_init(domain);
    if (menu_only || !is_set(result)) {
        return menu_only ? 0 : result;
    }
    if (result != dom_invalid) {
        MESS_print(mess_warn, "DOM_decode: Invalid plot domain\n");
    }
    MESS_print(mess_warn, "\"%s\" %s: the data's own domain is taken\n", text, fault);
    if (result == dom_invalid || std::strchr(text, ',') == nullptr) {
        tell_nearest_region(text);
    }
    return dom_invalid;
}

// Decodes for a plot that must have a domain: ends the program on a bad one.
int decode_required(const char* text, Domain* domain) {
    DOM_init(domain);
    const int result = DOM_decode(text, domain);
    if (is_menu_only(result, *domain)) {
        return 0;
    }
    const char* fault = result == dom_invalid ? not_a_domain : fault_of(*domain);
    if (is_set(result) && fault != nullptr) {
        MESS_print(mess_error, "Invalid domain\n");
        MESS_print(mess_error, "\"%s\" %s\n", text, fault);
        if (result == dom_invalid || std::strchr(text, ',') == nullptr) {
            tell_nearest_region(text);
        }
        ZYR_exit(end_domain);
    }
    state.prompt_region = 0;
    return result;
}

int prompt_menu(Domain* domain) {
    char answer[dom_string_size] = "";
    for (int attempt = 0; attempt < 5; ++attempt) {
        const int choice = MENU_process("\n        Region Menu\n", state.menu.data(),
                                        state.menu_type, "Enter the region: ", answer, 3);
        if (stricmp(answer, "list") == 0) {
            DOM_print_file(state.menu_file.data());
            continue;
        }
        if (choice == -1) {
            ZYR_exit(0);
        }
        if (choice == 0) {
            return 0;
        }
        DOM_init(domain);
        const int result = DOM_decode(answer, domain);
        if (is_menu_only(result, *domain)) {
            continue; // the next turn shows the menu just read
        }
        if (result == dom_invalid || (result > 0 && fault_of(*domain) != nullptr)) {
            MESS_print(mess_warn, "Invalid domain\n");
            continue;
        }
        return result;
    }
    return -1;
}

void need_menu() {
    if (state.num_regs == 0) {
        DOM_read_menu(default_file);
    }
}

// The reference point in force: an unset one is the centre.
float plat_of(const Domain& d) {
    return is_set(d.plat) ? d.plat : d.clat;
}
float plon_of(const Domain& d) {
    return is_set(d.plon) ? d.plon : d.clon;
}

// ":%f" for each number.
std::string colon_numbers(std::initializer_list<float> numbers) {
    std::string text;
    for (const float number : numbers) {
        char field[64];
        std::snprintf(field, sizeof field, ":%f", static_cast<double>(number));
        text += field;
    }
    return text;
}

// What follows the projection word of a file.
std::string file_numbers(MapNumbers numbers, const Domain& d) {
    switch (numbers) {
    case MapNumbers::own_plon:
        return is_set(d.plon) && d.plon != d.clon ? colon_numbers({d.plon}) : "";
    case MapNumbers::cone:
        if (is_set(d.param[0])) {
            return colon_numbers({d.plat, d.plon, d.param[0], d.param[1], d.param[2]});
        }
        return is_set(d.plon) ? colon_numbers({d.plon}) : "";
    case MapNumbers::orbit:
        return colon_numbers({d.plat, d.plon}) +
               (is_set(d.param[0]) ? colon_numbers({d.param[0]}) : "");
    case MapNumbers::none:
        break;
    }
    return "";
}

// Whether a text begins with a word of a projection's row; null: no word.
bool fits_word(const char* text, const char* word) {
    if (word == nullptr) {
        return false;
    }
    return *word == '=' ? stricmp(text, word + 1) == 0 : begins(text, word);
}

} // namespace

// --- The record -------------------------------------------------------------------------

int DOM_init(Domain* domain) {
    *domain = Domain{};
    return 0;
}

int DOM_proj_str(const char* proj) {
    if (proj == nullptr) {
        return -1;
    }
    if (stricmp(proj, "miss") == 0) {
        return missing;
    }
    for (const Projection& row : map_projections()) {
        if (std::any_of(row.words.begin(), row.words.end(),
                        [proj](const char* word) { return fits_word(proj, word); })) {
            return row.code;
        }
    }
    return -1;
}

int DOM_comp(const Domain* dom1, const Domain* dom2) {
    const bool same = dom1->clat == dom2->clat && dom1->clon == dom2->clon &&
                      dom1->dx == dom2->dx && dom1->dy == dom2->dy && dom1->nx == dom2->nx &&
                      dom1->ny == dom2->ny;
    return same && DOM_comp_proj(dom1, dom2) == 1 ? 1 : 0;
}

int DOM_comp_proj(const Domain* dom1, const Domain* dom2) {
    for (int i = 0; i < 5; ++i) {
        if (dom1->param[i] != dom2->param[i]) {
            return 0;
        }
    }
    return dom1->proj == dom2->proj && dom1->ellipse == dom2->ellipse &&
                   plat_of(*dom1) == plat_of(*dom2) && plon_of(*dom1) == plon_of(*dom2)
               ? 1
               : 0;
}

float DOM_aspect(const Domain* domain) {
    if (domain->nx > 1 && domain->ny > 1) {
        return static_cast<float>((domain->nx - 1.0) / (domain->ny - 1.0));
    }
    return 1.0F;
}

int DOM_print(unsigned level, const Domain* domain) {
    if (MESS_check(level) == 0) {
        return 0;
    }
    char fields[300] = "";
    int length = 0;
    for (const float value :
         {domain->plat, domain->plon, domain->param[0], domain->param[1], domain->param[2]}) {
        char* at = fields + length;
        const std::size_t room = sizeof(fields) - length;
        length +=
            is_set(value) ? std::snprintf(at, room, ":%3.3f", value) : std::snprintf(at, room, ":");
    }
    MESS_print(level, "%s%s%s,%3.3f,%3.3f,%d,%d,%4.4f,%4.4f\n", map_projection(domain->proj).name,
               domain->ellipse != 0 ? ":e" : "", fields, domain->clat, domain->clon, domain->nx,
               domain->ny, domain->dx, domain->dy);
    return 1;
}

// --- Domain strings -----------------------------------------------------------------------

int DOM_decode(const char* str, Domain* domain) {
    const int result = decode(str, domain);
    FLAG_set(flag_domain, result);
    return result;
}

void DOM_check_text(const char* resource, const char* text) {
    // A file alone ("usa.reg:") is a menu and "var" a question: both are for prompts.
    if (*text == '\0' || text[std::strlen(text) - 1] == ':' || stricmp(text, "var") == 0) {
        return;
    }
    const Regions kept = state; // nothing is selected by looking
    const int flag = FLAG_get(flag_domain);
    char key[file_name_size] = "";
    FILE_get_key('r', key);
    Domain domain;
    state.depth = 1; // the message of a plot's domain is for those
    const int result = decode(text, &domain);
    FLAG_set(flag_domain, flag);
    FILE_set_key('r', key);
    state = kept;
    const char* fault = result == dom_invalid ? not_a_domain : fault_of(domain);
    if (is_set(result) && fault != nullptr) {
        MESS_print(mess_warn, "%s: No domain: \"%s\" %s, it is left out\n", resource, text, fault);
        if (result == dom_invalid || std::strchr(text, ',') == nullptr) {
            tell_nearest_region(text);
        }
    }
}

int DOM_set_params(int paramc, char** paramv, Domain* domain, int i1, int i2, int i3, int i4,
                   int i5, int i6, int i7, int i8) {
    std::array<int, 9> kinds{i1, i2, i3, i4, i5, i6, i7, i8, dom_end};
    int count = 0;
    while (kinds[count] != dom_end) {
        ++count;
    }
    // A station field takes the place of the pair clat,clon.
    for (int i = 0; i + 1 < count && i < paramc; ++i) {
        if (kinds[i] == dom_clat && kinds[i + 1] == dom_clon && begins(paramv[i], "id:")) {
            kinds[i] = dom_station;
            std::copy(kinds.begin() + i + 2, kinds.end(), kinds.begin() + i + 1);
            --count;
        }
    }
    if (count != paramc) {
        return -1;
    }
    DOM_init(domain);
    if (paramc > 0 && (stricmp(paramv[0], "miss") == 0 || stricmp(paramv[0], "none") == 0)) {
        return 0;
    }
    for (int i = 0; i < count; ++i) {
        if (!fit_field(kinds[i], paramv[i], domain)) {
            return kinds[i];
        }
    }
    if (kinds[0] == dom_region) {
        FLAG_set(flag_domain, dom_by_region);
    }
    return 0;
}

int DOM_get_def_region(const char* region, Domain* domain) {
    DOM_init(domain);
    set_common(domain);
    const bool ask = stricmp(region, "var") == 0;
    if (ask) {
        domain->clat = ZYR_promptf("Enter the central latitude: ");
        domain->clon = ZYR_promptf("Enter the central longitude: ");
    }
    for (const Region& row : regions) {
        if (stricmp(region, row.word) == 0) {
            domain->clat = row.clat;
            domain->clon = row.clon;
            domain->dx = row.step;
            domain->dy = row.step;
        }
    }
    if (!ask && !is_set(domain->clat)) {
        domain->proj = -1;
        FLAG_set(flag_domain, dom_invalid);
        return 0;
    }
    domain->proj = proj_pstereo;
    domain->plon = domain->clon;
    FLAG_set(flag_domain, dom_by_region);
    return 1;
}

// --- The region file ------------------------------------------------------------------------

int DOM_read_menu(const char* file) {
    if (!state.wiped) {
        state.wiped = true;
        for (int i = 1; i < file_rows; ++i) {
            state.menu[i].name = nullptr;
            state.menu[i].abbr = nullptr;
            state.menu[i].disp[state.menu_type] = 0;
        }
    }
    const FILE_ptr in = open_region_file(file);
    if (!in) {
        return 0;
    }
    copy_text(state.menu_file.data(), state.menu_file.size(), file);
    int row = 1;
    FileRow line;
    while (row < file_rows && read_row(in.get(), &line)) {
        if (line.shown == 0) {
            continue;
        }
        // A longer word is cut.
        copy_text(state.abbrs[row].data(), state.abbrs[row].size(), line.abbr);
        copy_text(state.names[row].data(), state.names[row].size(), line.name);
        fill_string(state.names[row].data(), '_', ' ');
        MENU_item& item = state.menu[row];
        item.name = state.names[row].data();
        item.abbr = state.abbrs[row].data();
        item.index = row;
        item.disp[state.menu_type] = 1;
        ++row;
    }
    state.num_regs = row;
    state.menu[row].name = nullptr;
    return 1;
}

int DOM_search_file(const char* file, const char* str, char* domstr) {
    const FILE_ptr in = open_region_file(file);
    if (!in) {
        return 0;
    }
    char line[dom_string_size] = "";
    while (fgetnline(in.get(), line, dom_string_size - 1) > 0) {
        if (line[0] == '#') {
            continue;
        }
        char abbr[dom_string_size] = "";
        char text[dom_string_size] = "";
        const int count =
            std::sscanf(line, "%500s %*s %*d %500s", abbr, text); // NOLINT(cert-err34-c)
        if (count < 1) {
            return 0;
        }
        if (count == 1 || str == nullptr || stricmp(abbr, str) == 0) {
            const char* found = count == 1 ? abbr : text;
            if (std::strchr(found, '|') != nullptr) {
                MESS_print(mess_warn, "DOM_search_file: A region runs no command, refused: %s\n",
                           found);
                return 0;
            }
            copy_text(domstr, dom_string_size, found);
            return 1;
        }
    }
    return 0;
}

int DOM_print_file(const char* file) {
    const FILE_ptr in = open_region_file(file);
    if (!in) {
        return 0;
    }
    MESS_print(mess_print, " Abbr    Description\n");
    FileRow row;
    while (read_row(in.get(), &row)) {
        MESS_print(mess_print, "%-8s %-50s\n", row.abbr, row.name);
    }
    return 1;
}

// --- The domain of a plot -----------------------------------------------------------------

int DOM_get_region(Domain* domain, int flag) {
    DOM_init(domain);
    const char* text = flag == 1 || flag == 3 || flag == 4 ? RES_get("plot_domain") : nullptr;
    if (text == nullptr) {
        text = RES_get("region");
    }
    if (text != nullptr) {
        return decode_optional(text, domain);
    }
    if (flag != 4) {
        return 0;
    }
    need_menu();
    return decode_optional(state.menu[1].abbr, domain);
}

int DOM_prompt_region(Domain* domain, int flag) {
    if (state.prompt_region == 0) {
        return 0;
    }
    const char* plot_domain = flag == 1 ? RES_get("plot_domain") : nullptr;
    for (const char* text : {plot_domain, RES_get("region")}) {
        const int result = text != nullptr ? decode_required(text, domain) : 0;
        if (result > 0) {
            return result;
        }
    }
    need_menu();
    if (FLAG_batch() > 0) {
        const int result = decode_required(state.menu[1].abbr, domain);
        state.prompt_region = 0;
        return result;
    }
    return prompt_menu(domain);
}

// --- Priorities ------------------------------------------------------------------------------

int DOM_set_base_prior(float size) {
    int prior = 1;
    for (const float height : prior_heights) {
        prior += size > height ? 0 : 1;
    }
    const char* text = RES_get("stat_prior");
    if (text != nullptr) {
        const bool signed_step = text[0] == '+' || text[0] == '-';
        const char digit = signed_step ? text[1] : text[0];
        if (digit >= '0' && digit <= '9') {
            const int number = digit - '0';
            prior = !signed_step ? number : (text[0] == '+' ? prior + number : prior - number);
        }
    }
    state.priority = prior;
    return prior;
}

int DOM_set_prior(int prior) {
    state.priority = prior;
    return 0;
}

int DOM_get_prior() {
    return state.priority;
}

int DOM_set_loc_prior(int prior) {
    state.loc_prior = prior;
    return 0;
}

int DOM_get_loc_prior() {
    return state.loc_prior;
}

std::string DOM_proj_word(const Domain* domain) {
    const Domain& d = *domain;
    const Projection& row = map_projection(d.proj);
    return *row.file_word == '\0' ? "" : row.file_word + file_numbers(row.numbers, d) + " ";
}

void keep_region(StateKeeper& keeper) {
    keeper.keep(state);
}
