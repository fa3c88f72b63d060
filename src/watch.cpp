// watch: watch boxes. The bulletins ("AWW") say a watch's number, type, times,
// an axis between two stations, its half width, and the same axis once more in
// aviation units:
//
//   SPC AWW 211858
//   WW 53 SEVERE TSTM OK TX 211900Z - 220200Z
//   AXIS..75 STATUTE MILES EAST AND WEST OF LINE..
//   25NNW FSI/FORT SILL OK/ - 25ESE ABI/ABILENE TX/
//   ..AVIATION COORDS.. 65NM E/W /52WSW OKC - 32ESE ABI/
//   REPLACES WW 52..OK TX
//
// State: the watches in force and the style of their labels. The station
// database must be found along `file_path`.
#include "watch.h"

#include "date.h"
#include "files.h"
#include "gks.h"
#include "map.h"
#include "map_wrap.h"
#include "maptran.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"
#include "units.h"
#include "wx_tool.h"
#include "zyrcty.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t most_watches = 20;
constexpr std::size_t longest_file = 16UL << 20U;
constexpr std::size_t word_size = 80;
constexpr int hours_back = 9;
constexpr float most_km = 2000.0F; // a width or distance beyond is none
constexpr unsigned mess_watch = 0xF0000;
constexpr unsigned mess_detail = 0xF00000;
constexpr const char* station_file = "sao.cty";

enum class Axis : std::uint8_t { unknown, either, east, north };

// An end of the axis: a place off a station.
struct End {
    char id[4] = "";
    char dir[5] = "";                       // bearing in letters
    float lat = missing_f, lon = missing_f; // of the station, degrees
    float ang = 0.0F;                       // bearing from the station, degrees
    float dist = 0.0F;                      // km
};

struct Watch {
    int num = 0;
    char type[15] = ""; // "SEVERE" or "TORNADO"
    Date sdate, edate;
    long start = 0, end = 0; // seconds since 1970; end 0: not in force
    float width = missing_f; // half width, km
    Axis w_dir = Axis::unknown;
    std::array<End, 4> ends; // 0, 1 of the line; 2, 3 of the aviation line
};

struct State {
    std::array<Watch, most_watches> watches;
    std::size_t num_watch = 0;
    int slabel = 0;
    bool refused = false; // a watch beyond the table was reported
};
State state;

// --- Text of a bulletin -------------------------------------------------------

// A cursor over a bulletin; past its end it gives nothing.
class Text {
public:
    explicit Text(std::string_view text) : text_(text) {}

    [[nodiscard]] bool at_end() const { return at_ >= text_.size(); }
    [[nodiscard]] char peek() const { return at_end() ? '\0' : text_[at_]; }
    void skip_space() {
        while (!at_end() && is_blank(text_[at_])) {
            ++at_;
        }
    }
    // The next word, empty at the end.
    std::string_view word(std::size_t most = word_size - 1) {
        skip_space();
        const std::size_t begin = at_;
        while (!at_end() && at_ - begin < most && !is_blank(text_[at_])) {
            ++at_;
        }
        return text_.substr(begin, at_ - begin);
    }
    // Text up to one of `stops`, which is left.
    std::string_view up_to(std::string_view stops) {
        const std::size_t begin = at_;
        at_ = std::min(text_.find_first_of(stops, at_), text_.size());
        return text_.substr(begin, at_ - begin);
    }
    // Goes to the place after `what`; false, without a move, when it does not come.
    bool after(std::string_view what) {
        const std::size_t found = text_.find(what, at_);
        if (found == std::string_view::npos) {
            return false;
        }
        at_ = found + what.size();
        return true;
    }
    bool take(std::string_view what) {
        skip_space();
        if (!text_.substr(at_).starts_with(what)) {
            return false;
        }
        at_ += what.size();
        return true;
    }
    // A whole number of at most `width` digits.
    bool number(int* value, std::size_t width = 9) {
        skip_space();
        return take(text_.substr(at_, width), value,
                    [](std::string_view* text, int* number) { return take_plain(text, number); });
    }
    // A number from 0 on, with or without a fraction.
    bool real(float* value) {
        skip_space();
        return take(text_.substr(at_), value, [](std::string_view* text, float* number) {
            return take_plain(text, number, std::chars_format::fixed);
        });
    }

private:
    // What `read` takes of a piece at the cursor, unless it is below 0.
    template <typename T, typename Read> bool take(std::string_view piece, T* value, Read read) {
        const std::size_t before = piece.size();
        if (!read(&piece, value) || *value < 0) {
            return false;
        }
        at_ += before - piece.size();
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

// A date and time of a bulletin: day, hour and minute of two digits each.
struct DayTime {
    int day = 0, hour = 0, min = 0;
};

bool take_day_time(Text& text, DayTime* time) {
    return text.number(&time->day, 2) && text.number(&time->hour, 2) &&
           text.number(&time->min, 2) && time->day >= 1 && time->day <= 31 && time->hour <= 24 &&
           time->min <= 59;
}

// That day in the month which brings it nearest to a reference: bulletins name
// no month.
long seconds_of(const DayTime& time, long reference, Date* date) {
    const std::time_t at = reference;
    Date base;
    DATE_get_gmdate(&at, &base);
    long best = 0;
    for (int shift = -1; shift <= 1; ++shift) {
        const int month = base.year * 12 + base.month - 1 + shift;
        Date tried = *DATE_to_struct(month / 12, month % 12 + 1, time.day, time.hour, time.min);
        const std::time_t seconds = DATE_num_sec(&tried);
        DATE_get_gmdate(&seconds, &tried);
        const bool exists = tried.day == time.day || time.hour == 24;
        if (exists && (best == 0 || std::abs(seconds - reference) < std::abs(best - reference))) {
            best = seconds;
            *date = tried;
        }
    }
    return best;
}

void copy_word(char* out, std::size_t size, std::string_view word) {
    copy_text(out, size, std::string(word).c_str());
}

// --- Places -------------------------------------------------------------------

// "45WNW OLU", "45 WNW OLU" or a station alone.
End read_place(std::string_view words, float unit_km) {
    End end;
    Text text(words);
    int distance = 0;
    if (text.number(&distance)) {
        copy_word(end.dir, sizeof end.dir, text.word(4));
        const float dist = static_cast<float>(distance) * unit_km;
        const float ang = dir_decode(end.dir);
        // A bearing that is none leaves the station itself.
        if (is_set(ang)) {
            end.ang = ang;
            end.dist = dist;
        }
        if (!(dist <= most_km)) {
            return {};
        }
    }
    copy_word(end.id, sizeof end.id, text.word(3));
    return end;
}

void print_ends(const char* what, const End& from, const End& to) {
    MESS_print(mess_detail, "%s: %1.0f%s %s to ", what, static_cast<double>(from.dist), from.dir,
               from.id);
    MESS_print(mess_detail, "%1.0f%s %s\n", static_cast<double>(to.dist), to.dir, to.id);
}

// "10W PIA/PEORIA IL/ - ": the place, and the name of its station passed over.
End read_line_end(Text& text) {
    text.skip_space();
    const End end = read_place(text.up_to("/\n"), km_per_mile_f);
    if (text.take("/")) {
        text.up_to("/");
        text.take("/");
    }
    text.take("-");
    return end;
}

void read_line(Text text, Watch* watch) {
    if (!text.after("LINE..")) {
        return;
    }
    watch->ends[0] = read_line_end(text);
    watch->ends[1] = read_line_end(text);
    print_ends("Location", watch->ends[0], watch->ends[1]);
}

// "COORDS.. 65NM E/W /52WSW OKC - 32ESE ABI/"
void read_aviation(Text text, Watch* watch) {
    if (!text.after("COORDS")) {
        return;
    }
    text.up_to(" \t\r\n"); // the dots, if any
    text.word();           // the width
    if (text.word() == "EITHER") {
        text.word(); // "SIDE"
    }
    if (!text.take("/")) {
        return;
    }
    watch->ends[2] = read_place(text.up_to("-/"), km_per_nmi_f);
    if (text.take("-")) {
        watch->ends[3] = read_place(text.up_to("-/\n"), km_per_nmi_f);
    }
    print_ends("Aviation location", watch->ends[2], watch->ends[3]);
}

// "AXIS..75 STATUTE MILES EAST AND WEST OF LINE.."
bool read_axis(Text& text, Watch* watch) {
    float miles = 0.0F;
    if (!text.after("AXIS..") || !text.real(&miles)) {
        return false;
    }
    text.word(); // "STATUTE"
    text.word(); // "MILES"
    const std::string_view side = text.word();
    watch->w_dir = side == "EITHER"  ? Axis::either
                   : side == "EAST"  ? Axis::east
                   : side == "NORTH" ? Axis::north
                                     : Axis::unknown;
    watch->width = miles * km_per_mile_f;
    MESS_print(mess_detail, "   Width:%1.0f %.*s ", static_cast<double>(watch->width),
               static_cast<int>(side.size()), side.data());
    return watch->width <= most_km;
}

// --- Bulletins ----------------------------------------------------------------

Watch* find_watch(int num) {
    Watch* found = nullptr;
    for (std::size_t i = 0; i < state.num_watch; ++i) {
        if (state.watches[i].num == num) {
            found = &state.watches[i];
        }
    }
    return found;
}

void end_watches(int num) {
    for (std::size_t i = 0; i < state.num_watch; ++i) {
        if (state.watches[i].num == num) {
            state.watches[i].end = 0;
        }
    }
}

// "REPLACES WW 152..OK TX"
void read_replaced(Text text, const Watch& watch, long cur_time) {
    while (text.after("REPLACES")) {
        int num = 0;
        if (!text.take("WW") || !text.number(&num)) {
            continue;
        }
        MESS_print(mess_watch, "   Replaces %d at %2.2d %2.2d:%2.2d\n", num, watch.sdate.day,
                   watch.sdate.hour, watch.sdate.min);
        if (watch.start < cur_time) {
            end_watches(num);
        }
    }
}

void keep_watch(const Watch& watch, bool valid) {
    Watch* record = find_watch(watch.num);
    if (record == nullptr && !valid) {
        return;
    }
    if (record == nullptr && state.num_watch == most_watches) {
        if (!state.refused) {
            MESS_print(mess_warn, "WATCH_decode_file: More than %zu watches, left out is %d\n",
                       most_watches, watch.num);
            state.refused = true;
        }
        return;
    }
    if (record == nullptr) {
        record = &state.watches[state.num_watch++];
    }
    *record = watch;
    // A correction may move the times.
    record->end = valid ? watch.end : 0;
}

void print_times(const Watch& watch) {
    const Date& from = watch.sdate;
    const Date& to = watch.edate;
    MESS_print(mess_detail, "Beg: %2.2d/%2.2d/%2.2d %2.2d:%2.2d ", from.year, from.month, from.day,
               from.hour, from.min);
    MESS_print(mess_detail, "End: %2.2d/%2.2d/%2.2d %2.2d:%2.2d ", to.year, to.month, to.day,
               to.hour, to.min);
}

// One bulletin, from after its "AWW" to before the next.
void read_bulletin(Text text, long reference, long cur_time) {
    Watch watch;
    DayTime time;
    Date issued;
    if (!take_day_time(text, &time)) {
        return;
    }
    const long issue = seconds_of(time, reference, &issued);
    if (text.word() == "COR") {
        text.word();
    }
    if (!text.number(&watch.num)) {
        return;
    }
    copy_word(watch.type, sizeof watch.type, text.word(sizeof watch.type - 1));
    MESS_print(mess_watch, "Watch: %d %s : ", watch.num, watch.type);
    if (std::strcmp(watch.type, "TEST") == 0) {
        MESS_print(mess_watch, "NOT VALID\n");
        return;
    }
    if (std::strcmp(watch.type, "SEVERE") == 0) {
        text.word(); // "TSTM"
    }
    Text next = text;
    if (next.word().starts_with("CANCELLED")) {
        MESS_print(mess_watch, "Cancelled at %2.2d %2.2d:%2.2d\n", issued.day, issued.hour,
                   issued.min);
        if (issue < cur_time) {
            end_watches(watch.num);
        }
        return;
    }
    text.up_to("0123"); // states
    DayTime last;
    if (!take_day_time(text, &time) || !text.take("Z") || !text.take("-") ||
        !take_day_time(text, &last)) {
        MESS_print(mess_watch, "NOT VALID\n");
        return;
    }
    watch.start = seconds_of(time, reference, &watch.sdate);
    watch.end = seconds_of(last, watch.start, &watch.edate);
    const bool valid = watch.start <= cur_time && cur_time <= watch.end;
    MESS_print(mess_watch, valid ? "VALID\n" : "NOT VALID\n");
    print_times(watch);
    if (read_axis(text, &watch)) {
        read_line(text, &watch);
        read_aviation(text, &watch);
        keep_watch(watch, valid);
    }
    read_replaced(text, watch, cur_time);
}

// All bulletins of a text: each begins after a word "AWW".
void read_bulletins(std::string_view text, long reference, long cur_time) {
    constexpr std::string_view mark = "AWW";
    const auto next_mark = [text, mark](std::size_t from) {
        for (std::size_t at = text.find(mark, from); at != std::string_view::npos;
             at = text.find(mark, at + 1)) {
            const bool starts = at == 0 || is_blank(text[at - 1]);
            const std::size_t end = at + mark.size();
            if (starts && end < text.size() && is_blank(text[end])) {
                return at;
            }
        }
        return text.size();
    };
    for (std::size_t at = next_mark(0); at < text.size();) {
        const std::size_t begin = at + mark.size();
        at = next_mark(begin);
        read_bulletin(Text(text.substr(begin, at - begin)), reference, cur_time);
    }
}

// --- Files --------------------------------------------------------------------

// The text of a file, what is beyond the longest cut. False if it does not open.
bool read_text_file(const char* filename, std::string* text) {
    const FILE_ptr file(FILE_open(filename, "r"));
    if (!file) {
        return false;
    }
    std::array<char, 8192> block{};
    while (text->size() < longest_file) {
        const std::size_t got = std::fread(block.data(), 1, block.size(), file.get());
        if (got == 0) {
            break;
        }
        text->append(block.data(), got);
    }
    return true;
}

int read_watch_file(const char* filename, const Date* datim, long cur_time) {
    std::string text;
    if (FILE_is_stdio(filename) != 0 || !read_text_file(filename, &text)) {
        return 0;
    }
    MESS_print(mess_mess, "Reading watch file: %s\n", filename);
    Date date;
    FILE_get_date(&date);
    if (!is_set(date.year) || !is_set(date.month) || !is_set(date.day)) {
        date = *datim;
    }
    read_bulletins(text, DATE_num_sec(&date), cur_time);
    return 1;
}

// --- Stations -----------------------------------------------------------------

void place_station(const CTY_data& city) {
    const char* id = city.id + (std::strlen(city.id) == 4 && city.id[0] == 'K' ? 1 : 0);
    for (std::size_t i = 0; i < state.num_watch; ++i) {
        for (End& end : state.watches[i].ends) {
            if (std::strcmp(end.id, id) == 0) {
                end.lat = city.lat;
                end.lon = city.lon;
            }
        }
    }
}

// An end whose station is not known is that of the aviation line.
void settle_end(Watch& watch, std::size_t which) {
    End& end = watch.ends[which];
    const End& other = watch.ends[which + 2];
    if (is_set(end.lat)) {
        return;
    }
    MESS_print(mess_warn, "WATCH_decode_file: Station %zu not found: %s in watch %d\n", which + 1,
               end.id, watch.num);
    if (is_set(other.lat)) {
        MESS_print(mess_mess, "Using: %s\n", other.id);
        end = other;
    } else {
        const char* const first = which == 0 ? " 1" : "";
        MESS_print(mess_warn, "WATCH_decode_file: Station%s not found: %s in watch %d\n", first,
                   other.id, watch.num);
    }
}

// Finds the stations of all watches. Returns 1; 0 without the database.
int find_stations() {
    if (state.num_watch == 0) {
        return 1;
    }
    char path[file_name_size] = "";
    FILE_add_path(RES_get("file_path"), station_file, path);
    const int city_fd = CTY_open(path, 0, 0);
    if (city_fd < 0) {
        MESS_print(mess_warn, "WATCH_decode_file: City database file not found\n");
        return 0;
    }
    for (std::size_t i = 0; i < state.num_watch; ++i) {
        for (End& end : state.watches[i].ends) {
            end.lat = end.lon = missing_f;
        }
    }
    CTY_data city;
    for (int fields = CTY_read(city_fd, &city); fields >= 0; fields = CTY_read(city_fd, &city)) {
        if (fields >= cty_fields && city.id[0] != '\0') {
            place_station(city);
        }
    }
    CTY_close(city_fd);
    for (std::size_t i = 0; i < state.num_watch; ++i) {
        if (state.watches[i].end != 0) {
            settle_end(state.watches[i], 0);
            settle_end(state.watches[i], 1);
        }
    }
    return 1;
}

// --- Drawing ------------------------------------------------------------------

struct Looks {
    Gattribs text, severe, tornado;
};

// False when nothing is to be drawn.
bool take_looks(Looks* looks) {
    ATTRIB_init(&looks->text);
    ATTRIB_get("color_data", gget_inverse() != 0 ? "black" : "white", &looks->text);
    looks->text.fill_pat = missing;
    looks->severe = looks->text;
    looks->tornado = looks->text;
    const TextList colors = RES_items("color_watch");
    if (colors.count() > 0) {
        // Of the text they keep no more than a color that they do not name.
        Gattribs plain;
        plain.color = looks->text.color;
        looks->severe = looks->tornado = plain;
        ATTRIB_parse(colors[0], &looks->severe);
        ATTRIB_parse(colors[colors.count() > 1 ? 1 : 0], &looks->tornado);
    }
    return FLAG_getplot(part_data) != 0 && looks->text.color != -1;
}

// The place of an end on the plot. False if it has none.
bool place_of(const End& end, Gpt* at) {
    float x = missing_f;
    float y = missing_f;
    return is_set(end.lat) && MAP_tran(end.lat, end.lon, &x, &y) == 1 &&
           MAP_offset(x, y, end.ang, end.dist, &at->x, &at->y) == 1 && is_set(at->x);
}

// Corners of the box, the first once more at the end. False if one has no image.
bool corners_of(const Watch& watch, const Gpt& a, const Gpt& b, std::array<Gpt, 5>* corners) {
    // Directions of the first and the second corner from an end.
    float first = 0.0F;
    float second = 180.0F;
    if (watch.w_dir == Axis::unknown) {
        return false;
    }
    if (watch.w_dir == Axis::east) {
        first = 270.0F;
        second = 90.0F;
    } else if (watch.w_dir == Axis::either) {
        const float dir = MAP_dir(a.x, a.y, b.x, b.y);
        first = dir - 90.0F;
        second = dir + 90.0F;
    }
    const auto corner = [&watch](const Gpt& from, float dir, Gpt* to) {
        return MAP_offset(from.x, from.y, dir, watch.width, &to->x, &to->y) == 1 && is_set(to->x);
    };
    std::array<Gpt, 5>& c = *corners;
    if (!corner(a, first, &c[0]) || !corner(a, second, &c[1]) || !corner(b, second, &c[2]) ||
        !corner(b, first, &c[3])) {
        return false;
    }
    c[4] = c[0];
    return true;
}

std::string end_in_words(const Watch& watch) {
    char text[40 + date_label_size] = "";
    const char* zone = DATE_get_tz_str();
    const int hour = (watch.edate.hour + 24 + DATE_get_tz_off() / 3600) % 24;
    if (hour == 0) {
        std::snprintf(text, sizeof text, "to 12 AM %s", zone);
    } else if (hour < 12) {
        std::snprintf(text, sizeof text, "to %d AM %s", hour, zone);
    } else {
        std::snprintf(text, sizeof text, "to %d PM %s", hour == 12 ? 12 : hour - 12, zone);
    }
    return text;
}

void draw_label(const Watch& watch, float x, float y, float scale) {
    const bool severe = watch.type[0] == 'S';
    const float unit = scale * MAP_get_vert();
    if (state.slabel != 0) {
        GPH_printf(x, y + 0.01F * unit, "%s", severe ? "SEV TSTORM WATCH" : "TORNADO WATCH");
        GPH_printf(x, y - 0.01F * unit, "%s", end_in_words(watch).c_str());
        return;
    }
    GPH_printf(x, y + 0.01F * unit, "%c%d", watch.type[0], watch.num);
    GPH_printf(x, y - 0.01F * unit, "to %dZ", watch.edate.hour);
}

// Brings a point to the side of the map's edge on which `from` is.
Gpt beside(const MapEdge& edge, const Gpt& from, Gpt point) {
    point.x += edge.slanted ? 0.0F : map_wrap_shift(edge, from, point, edge.gap);
    return point;
}

// A box over the edge of the map is drawn on either side of it.
void draw_box(const MapEdge& edge, std::array<Gpt, 5> box, bool fill) {
    const auto draw = [&box, fill] {
        if (fill) {
            gfill_area(static_cast<int>(box.size()), box.data());
        } else {
            gpolyline(static_cast<int>(box.size()), box.data());
        }
    };
    float over = 0.0F;
    for (Gpt& corner : box) {
        const Gpt moved = beside(edge, box[0], corner);
        over = moved.x != corner.x ? moved.x - corner.x : over;
        corner = moved;
    }
    draw();
    if (over != 0.0F) {
        for (Gpt& corner : box) {
            corner.x -= std::copysign(map_wrap_width(edge, corner.y), over);
        }
        draw();
    }
}

void draw_watch(const Watch& watch, const Looks& looks, float scale) {
    const Gattribs& look = watch.type[0] == 'S' ? looks.severe : looks.tornado;
    Gpt a{};
    Gpt b{};
    std::array<Gpt, 5> corners{};
    if (look.color == -1 || !place_of(watch.ends[0], &a) || !place_of(watch.ends[1], &b)) {
        return;
    }
    const MapEdge& edge = MAP_current().row->edge;
    b = beside(edge, a, b);
    if (!corners_of(watch, a, b, &corners)) {
        return;
    }
    GPH_line_attr(nullptr); // those of the watch before it are not this one's
    gset_text_width(0.0F);
    GPH_line_attr(&look);
    GPH_fill_attr(&look);
    GPH_text_attr(is_set(look.fill_pat) ? &looks.text : &look, scale * MAP_get_vert() * 0.018F);
    draw_box(edge, corners, look.fill_pat >= 0);
    Gpt middle = {(a.x + b.x) / 2.0F, (a.y + b.y) / 2.0F};
    const float width = map_wrap_width(edge, middle.y);
    if (!edge.slanted && std::fabs(middle.x) > width / 2.0F) {
        middle.x -= std::copysign(width, middle.x);
    }
    draw_label(watch, middle.x, middle.y, scale);
}

} // namespace

bool WATCH_wanted() {
    const TextList words = RES_items("variable");
    const bool wanted = std::any_of(words.begin(), words.end(),
                                    [](const char* word) { return stricmp(word, "watch") == 0; });
    return wanted;
}

int WATCH_decode(const Date* datim) {
    state.num_watch = 0;
    state.refused = false;
    Date date = *datim;
    const long cur_time = DATE_num_sec(&date);
    Date kept;
    FILE_get_date(&kept);
    FILE_save_name_conv();
    int found = 0;
    if (FILE_set_name("wat_dat") != 0) {
        char name[file_name_size] = "";
        for (long off = -(hours_back * 3600 + 1);
             FILE_set_date_off(&date, static_cast<int>(off), name) <= 0; off += FILE_get_offset()) {
            const int read = read_watch_file(name, &date, cur_time);
            if (read == 0) {
                MESS_print(mess_detail, "WATCH_decode_file: file not found: %s\n", name);
            }
            found += read;
        }
        if (found == 0) {
            MESS_print(mess_warn,
                       "WATCH_decode: No file of watches in the %d hours before, the last:%s\n",
                       hours_back, name);
        }
    }
    FILE_restore_name_conv();
    FILE_put_date(&kept);
    find_stations();
    return found > 0 ? 0 : -1;
}

int WATCH_decode_file(const char* filename, const Date* datim, long cur_time) {
    if (read_watch_file(filename, datim, cur_time) == 0) {
        MESS_print(mess_warn, "WATCH_decode_file: file not found: %s\n", filename);
        return 0;
    }
    return find_stations();
}

int WATCH_plot() {
    Looks looks;
    if (!take_looks(&looks)) {
        return 0;
    }
    float scale = 1.0F;
    RES_getval("plot_scale", &scale, CV_float);
    GPH_text_align(GCENTER_HOR, GHALF_VERT);
    for (std::size_t i = 0; i < state.num_watch; ++i) {
        if (state.watches[i].end != 0) {
            draw_watch(state.watches[i], looks, scale);
        }
    }
    GPH_line_attr(nullptr);
    GPH_fill_attr(nullptr);
    return 0;
}

int WATCH_set_label(int type) {
    state.slabel = type;
    return 0;
}

void keep_watch(StateKeeper& keeper) {
    keeper.keep(state);
}
