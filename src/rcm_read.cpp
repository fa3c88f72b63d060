// rcm_read: decodes Radar Coded Messages. No state.
//
// A file holds messages of several sites. A message opens with a line "RCM" and
// the site; its body follows, in one of two forms:
//
//   plain    bytes of the line that carried it, then the text, from "1234" on
//   packets  each with a head of four bytes and the text from byte 4 on:
//
//     offset  size  field
//     0       2     low 12 bits: length in halfwords, the head included
//     2       2     type
//
//     type    content, in this order
//     0x0101  number of the message, 3 digits
//     0x0110  the site: 2 digits, latitude (8), longitude (10), elevation in feet
//             (4); then year (4), month, day, hour, minute (2 each); optional
//     0x0410  passed over; optional
//     0x0104  passed over; optional
//     0x0504  the text
//
// The text has three parts of sections that open with "/" and a tag:
//
//   /NEXRAA 0001 2005132017 UNEDITED   site number; day, month, year, hour, minute
//   /MDPCPN                            mode: PCPN or CLAR
//   /SC                                passed over
//   /NI0003:AAA3C,ABD12                cells above 0; cell names, each with levels to the east
//   /MT620:QKH                         highest top, hundreds of feet, and its cell
//   /NCEN01:CM0MMC 226016              centroids: identifier, cell, direction, speed
//   /NEXRBB 0001 2005132017 020B158018 winds: hundreds of feet, error, direction, speed
//   /NEXRCC 0001 2005132017
//   /NTVS01:TVS01MLP                   vortices: identifier, cell
//   /NMES01:M13MMH                     mesocyclones: identifier, cell
//   /NCEN01:CM0MMC S193HP              height, hail: Unknown, None, Probable, Hail
//
// The letters of a cell name are boxes of four by four cells, row and column,
// and the cell in its box, column by column. A digit is a level of a cell; a
// letter repeats it, A once.
#include "rarep.h"

#include "byte_reader.h"
#include "date.h"
#include "scanp.h"
#include "text_scan.h"
#include "units.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t least_body = 100; // bytes; line feeds before are part of it
constexpr std::size_t longest_line = 5000;
constexpr std::size_t longest_search = 64U << 20; // bytes of a file without a message

constexpr unsigned packet_number = 0x0101;
constexpr unsigned packet_site = 0x0110;
constexpr unsigned packet_passed[] = {0x0410, 0x0104};
constexpr unsigned packet_text = 0x0504;
constexpr std::size_t packet_head = 4;

bool is_upper(char c) {
    return c >= 'A' && c <= 'Z';
}

// --- Lines ----------------------------------------------------------------------

// The lines of a file, up to a limit that ends a device or a pipe without end.
class Lines {
public:
    explicit Lines(std::FILE* file) : file_(file) {}

    // The next line without its line feed; what is too long is dropped. False at
    // the end.
    bool next(std::string* line) {
        line->clear();
        int c = get();
        if (c == EOF) {
            return false;
        }
        for (; c != EOF && c != '\n'; c = get()) {
            if (line->size() < longest_line) {
                line->push_back(static_cast<char>(c));
            }
        }
        return true;
    }

private:
    int get() {
        if (left_ == 0) {
            return EOF;
        }
        if (--left_ == 0) {
            MESS_print(mess_warn, "RCM_read_site: No message in 64 MB: the rest is left\n");
            return EOF;
        }
        return std::getc(file_);
    }

    std::FILE* file_;
    std::size_t left_ = longest_search;
};

// Takes the site of a line that opens a message.
bool take_heading(std::string_view line, RCM_report* report) {
    constexpr std::string_view word = "RCM";
    constexpr std::string_view blanks = " \t\r\v\f";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    if (line.size() < word.size() ||
        strnicmp(std::string(line.substr(0, word.size())).c_str(), word.data(), 3) != 0) {
        return false;
    }
    line.remove_prefix(word.size());
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    std::size_t size = 0;
    while (size < line.size() && size < sizeof report->id - 1 && line[size] > ' ' &&
           line[size] < 0x7F) {
        report->id[size] = line[size];
        ++size;
    }
    report->id[size] = '\0';
    return true;
}

// --- Text of a message ------------------------------------------------------------

// The text and a cursor in it.
class Message {
public:
    explicit Message(std::string text) : text_(std::move(text)) {
        std::replace(text_.begin(), text_.end(), '\0', ' ');
        scanp_set(&cursor_, text_.data());
    }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    // Scans one format and moves on if all of its items are there; what stands
    // after the last one need not be.
    template <class... Out> bool take(const char* format, Out*... out) {
        const auto items = std::count(format, format + std::strlen(format), '%');
        if (scanp(&cursor_, format, out...) < items) {
            return false;
        }
        scanp_inc(&cursor_);
        return true;
    }

    // Moves on to a tag if it is somewhere; before the part ends, if asked.
    bool reach(std::string_view tag, bool within_part = true) {
        const std::string_view text = rest();
        const std::size_t end =
            within_part ? std::min(text.find("/END"), text.find("/NEXR")) : std::string_view::npos;
        const std::size_t at = text.substr(0, end).find(tag);
        if (at == std::string_view::npos) {
            return false;
        }
        skip(at);
        return true;
    }

    // Scans the section of a tag. One that does not scan is passed over, as is
    // what is before it.
    template <class... Out> bool section(const char* tag, const char* format, Out*... out) {
        return reach(tag) && take(format, out...);
    }

    [[nodiscard]] std::string_view rest() const {
        return std::string_view(text_).substr(
            std::min(static_cast<std::size_t>(cursor_.off), text_.size()));
    }
    void skip(std::size_t count) { scanp_inc_off(&cursor_, static_cast<int>(count)); }
    // Moves over commas and white space.
    void skip_gap() {
        const std::string_view text = rest();
        const auto* end = std::find_if_not(text.begin(), text.end(),
                                           [](char c) { return c == ',' || is_white(c); });
        skip(static_cast<std::size_t>(end - text.begin()));
    }

private:
    std::string text_;
    parse_param cursor_;
};

struct Cell {
    int column = rcm_cells, row = 0; // outside the grid
    [[nodiscard]] bool is_one() const { return column < rcm_cells; }
};

// The cell of a name, outside the grid when that is none.
Cell cell_of(std::string_view name) {
    if (name.size() != 3 || !std::all_of(name.begin(), name.end(), is_upper)) {
        return {};
    }
    const int inside = name[2] - 'A';
    return {(name[1] - 'A') * 4 + inside / 4, (name[0] - 'A') * 4 + inside % 4};
}

void take_place(const char* name, float* x, float* y) {
    const Cell cell = cell_of(name);
    if (cell.is_one()) {
        *x = static_cast<float>(cell.column);
        *y = static_cast<float>(cell.row);
    }
}

// Two characters as they are, without blanks.
void take_id(const char* two, char (&id)[3]) {
    std::size_t size = 0;
    for (const char* at = two; *at != '\0' && size < sizeof id - 1; ++at) {
        if (*at > ' ' && *at < 0x7F) {
            id[size++] = *at;
        }
    }
    id[size] = '\0';
}

// Takes a date that can be one.
void take_date(Date found, Date* date) {
    if (found.year >= 0 && found.year < 200) {
        found.year += found.year < 50 ? 2000 : 1900;
    }
    const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
    if (within(found.month, 1, 12) && within(found.day, 1, 31) && within(found.hour, 0, 23) &&
        within(found.min, 0, 59) && found.year >= 0) {
        *date = found;
    }
}

// --- Part A -----------------------------------------------------------------------

// One segment, a cell name and the levels from there to the east. Returns its
// length.
std::size_t take_segment(std::string_view text, RCM_report* report) {
    std::size_t at = 0;
    while (at < 3 && at < text.size() && is_upper(text[at])) {
        ++at;
    }
    Cell cell = cell_of(text.substr(0, at));
    int level = rcm_no_report;
    for (; at < text.size(); ++at) {
        const char symbol = text[at];
        int count = 0;
        if (is_digit(symbol)) {
            level = symbol - '0';
            count = 1;
        } else if (is_upper(symbol)) {
            count = level == rcm_no_report ? 0 : symbol - 'A' + 1;
        } else if (!is_white(symbol)) {
            break;
        }
        for (; count > 0 && cell.is_one(); --count) {
            report->echo[cell.column++][cell.row] = static_cast<signed char>(level);
        }
    }
    return at;
}

void take_echoes(Message& message, RCM_report* report) {
    message.skip_gap();
    while (!message.rest().empty() && is_upper(message.rest().front())) {
        message.skip(take_segment(message.rest(), report));
        message.skip_gap();
    }
}

void take_top(Message& message, RCM_report* report) {
    char cell[4] = "";
    if (message.section("/MT", "%*(/MT)%d:%3s ", &report->maxt, cell)) {
        take_place(cell, &report->maxt_x, &report->maxt_y);
    }
}

void take_centroids(Message& message, RCM_report* report) {
    int count = 0;
    if (!message.section("/NCEN", "%*(/NCEN)%d: ", &count)) {
        return;
    }
    message.skip_gap();
    while (report->num_storm < rcm_max_storms) {
        RCM_storm storm;
        char id[4] = "";
        char cell[4] = "";
        if (!message.take("%*(C)%2S%3s %3d%3d, ", id, cell, &storm.dir, &storm.spd)) {
            return;
        }
        message.skip_gap();
        take_id(id, storm.id);
        take_place(cell, &storm.x, &storm.y);
        report->storm[report->num_storm++] = storm;
    }
}

// Returns 0 when the text does not have the part.
int take_part_a(Message& message, RCM_report* report) {
    if (!message.reach("/NEXRAA", false) || !message.take("%*(/NEXRAA) ")) {
        return 0;
    }
    Date date;
    if (message.take("%d %2D%2D%2D%2D%2D ", &report->num, &date.day, &date.month, &date.year,
                     &date.hour, &date.min)) {
        take_date(date, &report->date);
    }
    report->status = rcm_status_normal;
    message.take("%*(EDITED|UNEDITED) ");
    if (message.take("%*(RADNE) ")) {
        report->status = rcm_status_no_echoes;
    }
    if (message.take("%*(RADOM) ")) {
        report->status = rcm_status_maintenance;
    }
    char mode[5] = "";
    if (message.section("/MD", "%*(/MD)%4s ", mode)) {
        const bool clear = stricmp(mode, "CLAR") == 0;
        report->mode = clear                        ? rcm_mode_clear_air
                       : stricmp(mode, "PCPN") == 0 ? rcm_mode_precipitation
                                                    : missing;
    }
    int cells = 0;
    if (message.section("/NI", "%*(/NI)%d: ", &cells)) {
        take_echoes(message, report);
    }
    take_top(message, report);
    take_centroids(message, report);
    return 1;
}

// --- Parts B and C ------------------------------------------------------------------

int wind_error(char letter) {
    constexpr int errors[] = {2, 4, 6, 8, 10, 12, 15}; // knots, of A to G
    return letter >= 'A' && letter <= 'G' ? errors[letter - 'A'] : 0;
}

void take_part_b(Message& message, RCM_report* report) {
    if (!message.reach("/NEXRBB", false) || !message.take("%*(/NEXRBB) %*d %*d ")) {
        return;
    }
    while (report->num_vad < rcm_max_vad) {
        message.skip_gap();
        RCM_vad wind;
        char letter = '\0';
        if (!message.take("%d%c%3d%3d, ", &wind.hgt, &letter, &wind.dir, &wind.spd)) {
            return;
        }
        wind.rms = wind_error(letter);
        report->vad[report->num_vad++] = wind;
    }
}

// A list of identifiers and cells; `entry` is the format of one.
template <std::size_t N>
void take_marks(Message& message, const char* entry, RCM_mark (&marks)[N], int* num) {
    while (*num < static_cast<int>(N)) {
        message.skip_gap();
        char id[4] = "";
        char cell[4] = "";
        if (!message.take(entry, id, cell)) {
            return;
        }
        RCM_mark& mark = marks[(*num)++];
        take_id(id, mark.id);
        take_place(cell, &mark.x, &mark.y);
    }
}

// The storm of an identifier, a new one if need be; null when there is no room.
RCM_storm* find_storm(const char (&id)[3], RCM_report* report) {
    RCM_storm* const end = report->storm + report->num_storm;
    RCM_storm* const found = std::find_if(
        report->storm, end, [&](const RCM_storm& storm) { return std::strcmp(storm.id, id) == 0; });
    if (found != end) {
        return found;
    }
    if (report->num_storm >= rcm_max_storms) {
        return nullptr;
    }
    ++report->num_storm;
    copy_text(end->id, sizeof end->id, id);
    return end;
}

void take_hail(char letter, RCM_storm* storm) {
    constexpr std::string_view letters = "UNPH"; // from rcm_hail_unknown on
    const std::size_t at = letters.find(letter);
    if (at != std::string_view::npos) {
        storm->hail = rcm_hail_unknown + static_cast<int>(at);
    }
}

// Heights and hail of centroids.
void take_heights(Message& message, RCM_report* report) {
    int count = 0;
    if (!message.section("/NCEN", "%*(/NCEN)%d: ", &count)) {
        return;
    }
    for (int i = 0; i < count; ++i) {
        message.skip_gap();
        char two[4] = "";
        char cell[4] = "";
        if (!message.take("%*(C)%2S%3s ", two, cell)) {
            return;
        }
        char id[3] = "";
        take_id(two, id);
        RCM_storm* storm = find_storm(id, report);
        int height = missing;
        char hail = '\0';
        // What was met of a height that is cut stays; one that is missing takes nothing
        // from the next centroid.
        const bool whole = message.take("%*(S)%3d%*(H)%c, ", &height, &hail);
        if (storm != nullptr && is_set(height)) {
            storm->hgt = height;
        }
        if (storm != nullptr && whole) {
            take_hail(hail, storm);
        }
    }
}

void take_part_c(Message& message, RCM_report* report) {
    if (!message.reach("/NEXRCC", false) || !message.take("%*(/NEXRCC) %*d %*d ")) {
        return;
    }
    int count = 0;
    if (message.section("/NTVS", "%*(/NTVS)%d: ", &count)) {
        take_marks(message, "%*(TVS)%2S%3s, ", report->tvs, &report->num_tvs);
    }
    if (message.section("/NMES", "%*(/NMES)%d: ", &count)) {
        take_marks(message, "%*(M)%2S%3s, ", report->meso, &report->num_meso);
    }
    take_heights(message, report);
}

int take_text(std::string_view text, RCM_report* report) {
    Message message{std::string(text)};
    if (take_part_a(message, report) == 0) {
        return 0;
    }
    take_part_b(message, report);
    take_part_c(message, report);
    message.skip_gap();
    MESS_print(mess_debug, "LEFT: %-20.20s\n", std::string(message.rest().substr(0, 20)).c_str());
    return 1;
}

// --- Packets --------------------------------------------------------------------------

// Takes the first packet off the bytes if it is of a type; `text` gets what
// follows its head.
bool take_packet(std::string_view* bytes, unsigned type, std::string_view* text) {
    ByteReader head({reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()});
    const unsigned mark = head.u16be();
    const unsigned found = head.u16be();
    const std::size_t length = std::size_t{mark & 0x0FFFU} * 2;
    if (!head.ok() || found != type || length < packet_head) {
        return false;
    }
    MESS_print(mess_debug, "PKT: %X %X %d %X\n", mark >> 8, mark & 0xFFU, static_cast<int>(length),
               found);
    *text = bytes->substr(packet_head, length - packet_head);
    bytes->remove_prefix(std::min(length, bytes->size()));
    return true;
}

bool are_packets(std::string_view body) {
    return body.size() >= packet_head && body[2] == 1 && body[3] == 1;
}

void take_site(std::string_view text, RCM_report* report) {
    Message site{std::string(text)};
    float lat = missing_f;
    float lon = missing_f;
    if (!site.take("%*2D%8F%10F%4F", &lat, &lon, &report->elev)) {
        return;
    }
    report->elev *= is_set(report->elev) ? m_per_foot_f : 1.0F;
    if (std::abs(lat) <= 90.0F && std::abs(lon) <= 360.0F) {
        report->lat = lat;
        report->lon = lon;
    }
    MESS_print(mess_debug, "LOC: %.3f %.3f %.0f \n", static_cast<double>(report->lat),
               static_cast<double>(report->lon), static_cast<double>(report->elev));
    Date date;
    if (site.take("%4D%2D%2D%2D%2D", &date.year, &date.month, &date.day, &date.hour, &date.min)) {
        take_date(date, &report->date);
    }
}

// Returns 0 without a text.
int take_packets(std::string_view body, RCM_report* report) {
    std::string_view text;
    if (take_packet(&body, packet_number, &text)) {
        Message(std::string(text)).take("%3d", &report->num);
    }
    if (take_packet(&body, packet_site, &text)) {
        take_site(text, report);
    }
    for (const unsigned type : packet_passed) {
        take_packet(&body, type, &text);
    }
    // A length that is damaged does not cut the text.
    const std::string_view last = body;
    return take_packet(&body, packet_text, &text) ? take_text(last.substr(packet_head), report) : 0;
}

} // namespace

int RCM_init(RCM_report* report) {
    *report = RCM_report{};
    std::memset(report->echo, rcm_no_report, sizeof report->echo);
    return 0;
}

int RCM_read_site(std::FILE* ifile, RCM_report* report) {
    RCM_init(report);
    if (ifile == nullptr) {
        return -1;
    }
    Lines lines(ifile);
    std::string line;
    do {
        if (!lines.next(&line)) {
            return -1;
        }
    } while (!take_heading(line, report));
    std::string body;
    lines.next(&body);
    while (body.size() < least_body && lines.next(&line)) {
        body.append("\n").append(line, 0, longest_line - 2 - body.size());
    }
    if (are_packets(body)) {
        return take_packets(body, report);
    }
    const std::size_t start = body.find("1234");
    return start == std::string::npos ? 0 : take_text(std::string_view(body).substr(start), report);
}

int RCM_print(unsigned level, const RCM_report* report) {
    char date[date_label_size] = "";
    DATE_make_label(&report->date, date);
    MESS_print(level, "ID: %s\n", report->id);
    MESS_print(level, "Num: %d\n", report->num);
    MESS_print(level, "Loc: %.3f %.3f\n", static_cast<double>(report->lat),
               static_cast<double>(report->lon));
    MESS_print(level, "Date: %s\n", date);
    if (report->status == rcm_status_no_echoes) {
        MESS_print(level, "Status: no echos\n");
    } else if (report->status == rcm_status_maintenance) {
        MESS_print(level, "Status: out for maintenance\n");
    }
    MESS_print(level, "Max Top: %d %3.0f,%3.0f\n", report->maxt,
               static_cast<double>(report->maxt_x), static_cast<double>(report->maxt_y));
    const auto marks = [level](const char* word, std::span<const RCM_mark> list) {
        for (const RCM_mark& mark : list) {
            MESS_print(level, "%s %2s %3.0f,%3.0f\n", word, mark.id, static_cast<double>(mark.x),
                       static_cast<double>(mark.y));
        }
    };
    marks("TVS: ", {report->tvs, static_cast<std::size_t>(report->num_tvs)});
    marks("MESO:", {report->meso, static_cast<std::size_t>(report->num_meso)});
    for (int i = 0; i < report->num_storm; ++i) {
        const RCM_storm& storm = report->storm[i];
        MESS_print(level, "STRM: %2s %3.0f,%3.0f %3.3d-%3.3d %3d %d\n", storm.id,
                   static_cast<double>(storm.x), static_cast<double>(storm.y), storm.dir, storm.spd,
                   storm.hgt, storm.hail);
    }
    return 0;
}
