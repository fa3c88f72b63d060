// name_tmpl.cpp: the template language of file names: matching what a user
// typed, building the name of a date, and the pattern that lists all names.
// No state.
#include "name_tmpl.h"

#include "date.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string_view>
#include <utility>

namespace {

constexpr int max_number = 9999; // of a directive
constexpr long max_step = 2000000000;
constexpr unsigned mess_trace = 0x80000000;

struct PathRow {
    char letter;
    const char* resource;
};
constexpr PathRow path_rows[] = {
    {'C', "con_path"  },
    {'D', "data_path" },
    {'F', "file_path" },
    {'R', "raw_path"  },
    {'G', "grid_path" },
    {'W', "watch_path"},
    {'I', "image_path"},
    {'T', "text_path" },
    {'M', "model_path"},
    {'S', "sat_path"  },
};

// Date fields: how wide they are, what lists them and what an unknown one is
// built as. `unit` is the seconds of one step, 0 for a field that sets no step;
// `least` and `most` are what a date holds there.
struct FieldRow {
    char letter;
    int width;
    const char* glob;
    const char* unknown;
    int Date::*field;
    int unit;
    int least, most;
};
constexpr FieldRow field_rows[] = {
    {'Y', 4, "?[0-9]??", "0000", &Date::year,  0,     0, 9999},
    {'y', 2, "[0-9]?",   "00",   &Date::year,  0,     0, 99  },
    {'m', 2, "[0-9]?",   "00",   &Date::month, 0,     1, 12  },
    {'b', 3, "?[a-z]?",  "xxx",  &Date::month, 0,     1, 12  },
    {'d', 2, "[0-9]?",   "00",   &Date::day,   86400, 1, 31  },
    {'j', 3, "?[0-9]?",  "000",  &Date::day,   86400, 1, 366 },
    {'h', 2, "[0-9]?",   "00",   &Date::hour,  3600,  0, 23  },
    {'n', 2, "[0-9]?",   "00",   &Date::min,   60,    0, 59  },
};

template <class Row, std::size_t N> const Row* find_row(const Row (&rows)[N], char letter) {
    const Row* found =
        std::find_if(rows, rows + N, [=](const Row& r) { return r.letter == letter; });
    return found == rows + N ? nullptr : found;
}

struct Directive {
    char letter = '\0';
    int n = 1;
    bool has_n = false;
    std::string_view name; // between braces, for letter '{'
};

// Reads the directive after a "%" and returns what follows it.
const char* read_directive(const char* at, Directive* directive) {
    if (is_digit(*at)) {
        scan_int(&at, any_width, &directive->n);
        directive->n = std::clamp(directive->n, 1, max_number);
        directive->has_n = true;
    }
    directive->letter = *at;
    if (*at == '\0') {
        return at;
    }
    ++at;
    if (directive->letter == '{') {
        const std::size_t length = std::strcspn(at, "}");
        directive->name = std::string_view(at, length);
        at += length + (at[length] == '}' ? 1 : 0);
    }
    return at;
}

// A name being written.
struct Writer {
    NameResult& result;
    std::size_t length = 0;

    void put(std::string_view text) {
        const std::size_t room = sizeof result.name - 1 - length;
        result.cut = result.cut || text.size() > room;
        const std::size_t n = std::min(room, text.size());
        std::memcpy(result.name + length, text.data(), n);
        length += n;
        result.name[length] = '\0';
    }
    void put(char c) { put(std::string_view(&c, 1)); }
    void number(int width, int value) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%*.*d", width, width, value);
        put(digits);
    }
};

std::string_view key_text(const NameSource& source, const Directive& directive) {
    std::string_view key = source.keys->text[static_cast<unsigned char>(directive.letter)];
    if (key.empty() && directive.letter == 'f') {
        key = source.keys->file;
    }
    return directive.has_n ? key.substr(0, static_cast<std::size_t>(directive.n)) : key;
}

const char* resource_text(const NameSource& source, const char* name, const char* absent) {
    const char* value = source.resource(name);
    return value == nullptr ? absent : value;
}

std::string_view resource_named(const NameSource& source, std::string_view name) {
    char text[res_name_size];
    std::snprintf(text, sizeof text, "%.*s", static_cast<int>(name.size()), name.data());
    return resource_text(source, text, "");
}

// --- Matching a name that is whole ----------------------------------------------

// A whole name against an open template: what is open, and the path, is any text
// that makes the rest fit. A place that did not fit is not tried again.
class OpenMatcher {
public:
    explicit OpenMatcher(const NameSource& source_in) : source(source_in) {}

    bool run(const char* conv, const char* in) {
        if (*conv == '\0') {
            return *in == '\0';
        }
        if (!tried.emplace(conv, in).second) {
            return false;
        }
        if (*conv == '{' || *conv == '}') {
            return run(conv + 1, in);
        }
        if (*conv != '%') {
            return *conv == *in && run(conv + 1, in + 1);
        }
        Directive directive;
        conv = read_directive(conv + 1, &directive);
        if (const FieldRow* field = find_row(field_rows, directive.letter)) {
            return take_field(*field, conv, in);
        }
        if (find_row(path_rows, directive.letter) != nullptr) {
            return take_any(conv, in, true);
        }
        const std::string_view text = text_of(directive);
        if (!text.empty() || directive.letter == '{') {
            return std::string_view(in).starts_with(text) && run(conv, in + text.size());
        }
        if (directive.has_n) {
            const auto n = static_cast<std::size_t>(directive.n);
            return std::strcspn(in, "/") >= n && run(conv, in + n);
        }
        return take_any(conv, in, false);
    }

    Date date; // of the name

private:
    const NameSource& source;
    std::set<std::pair<const char*, const char*>> tried;

    // Empty: any text.
    std::string_view text_of(const Directive& directive) const {
        switch (directive.letter) {
        case '%':
            return "%";
        case 'e':
            return source.ext;
        case '*':
            return {};
        case '{':
            return resource_named(source, directive.name);
        default:
            return key_text(source, directive);
        }
    }

    bool take_any(const char* conv, const char* in, bool slashes) {
        for (;; ++in) {
            if (run(conv, in)) {
                return true;
            }
            if (*in == '\0' || (*in == '/' && !slashes)) {
                return false;
            }
        }
    }

    bool take_field(const FieldRow& row, const char* conv, const char* in) {
        const auto width = static_cast<std::size_t>(row.width);
        const std::string digits(in, std::min(width, std::strlen(in)));
        const char* at = digits.c_str();
        int value = 0;
        if (row.letter == 'b') {
            value = DATE_decode_month(at);
        } else if (std::strspn(at, "0123456789") < width || scan_int(&at, row.width, &value) == 0 ||
                   value > row.most) {
            return false;
        }
        if (digits.size() < width || value < row.least || !run(conv, in + width)) {
            return false;
        }
        if (row.letter == 'y') {
            value += value < 50 ? 2000 : 1900;
        }
        if (row.letter == 'j') { // what follows is taken first, the year is not
            day_of_year = value;
        } else {
            date.*row.field = value;
        }
        if (is_set(day_of_year) && is_set(date.year)) {
            DATE_julian_monday(date.year, day_of_year, &date.month, &date.day);
        }
        return true;
    }

    int day_of_year = missing;
};

// --- Matching a typed name ----------------------------------------------------

// How far the matching is.
enum Where {
    at_start = 0,
    behind_path = 1,
    behind_date = 2,
    input_ended = 3,
};

class Matcher {
public:
    Matcher(const NameSource& source_in, const char* typed)
        : source(source_in), conv(source_in.conv), in(typed),
          plain(std::strchr(typed, '/') == nullptr), open(name_is_open(conv)),
          bare(open && is_bare(typed)), out{result} {
        result.date = source.set;
        copy_text(result.ext, sizeof result.ext, source.ext);
    }

    NameResult run() {
        const char* const typed = in;
        if (open && take_whole()) {
            return result;
        }
        while (*conv != '\0' && !done) {
            MESS_print(mess_trace, "FILES:%s:%s:%s:%s:%s:%d\n", source.conv, typed, conv, in,
                       result.name, where);
            step();
        }
        MESS_print(mess_trace, "FILES:%s:%s:%d\n", typed, result.name, where);
        return result;
    }

private:
    const NameSource& source;
    const char* conv; // rest of the template
    const char* in;   // rest of the input
    bool plain;       // the input names no directory
    bool open;        // the template holds "%*"
    bool bare;        // the input is the digits of a date for such a template
    bool braces = false;
    bool done = false;
    int where = at_start;
    NameResult result;
    Writer out;

    // A name that the whole template fits is what it is, in the template's path.
    bool take_whole() {
        const bool full = *in == '/' || *in == '.' || *in == '~';
        const std::string name = full ? in : std::string("./") + in;
        OpenMatcher matcher(source);
        if (!matcher.run(conv, name.c_str())) {
            return false;
        }
        for (const FieldRow& row : field_rows) {
            if (is_set(matcher.date.*row.field)) {
                result.date.*row.field = matcher.date.*row.field;
            }
        }
        Directive first;
        if (!full && *conv == '%') {
            read_directive(conv + 1, &first);
            if (const PathRow* path = find_row(path_rows, first.letter)) {
                out.put(resource_text(source, path->resource, "."));
                out.put('/');
            }
        }
        out.put(in);
        for (const char* at = conv; *at != '\0';) {
            Directive directive;
            at = *at == '%' ? read_directive(at + 1, &directive) : at + 1;
            const FieldRow* row = find_row(field_rows, directive.letter);
            if (row != nullptr && row->unit != 0) {
                record_step(*row, directive.n);
            }
        }
        return true;
    }

    static bool is_bare(const char* text) {
        const char* const slash = std::strrchr(text, '/');
        text = slash == nullptr ? text : slash + 1;
        return text[std::strspn(text, "0123456789_")] == '\0';
    }

    // Takes what remains of the input as it is, and ends.
    void rest() {
        out.put(in);
        done = true;
    }

    void pass(std::size_t n) { in += std::min(n, std::strlen(in)); }

    void step() {
        const char c = *conv;
        if (c == '%') {
            Directive directive;
            conv = read_directive(conv + 1, &directive);
            apply(directive);
        } else if (c == '}' && braces) {
            braces = false;
            where = behind_path;
            ++conv;
        } else if (braces) {
            out.put(c);
            ++conv;
        } else if (c == '{') {
            braces = true;
            ++conv;
        } else if (c == '*') {
            rest();
        } else {
            literal(c);
        }
    }

    void literal(char c) {
        const bool same = *in == c;
        if (bare && where == behind_date && !same && *in != '\0') {
            out.put(c); // between the digits
            ++conv;
            return;
        }
        if (where > at_start && *in == '\0') {
            where = input_ended;
        }
        if (!same && *in != '\0' && where > behind_path) {
            return rest();
        }
        if (!same && where == at_start) {
            return rest();
        }
        out.put(c);
        ++conv;
        if (same || where > behind_path || plain) {
            pass(1);
        }
    }

    void apply(const Directive& directive) {
        const FieldRow* field = find_row(field_rows, directive.letter);
        if (field != nullptr) {
            date_field(*field, directive.n);
            return;
        }
        const PathRow* path = find_row(path_rows, directive.letter);
        if (path != nullptr) {
            place_path(path->resource);
            return;
        }
        switch (directive.letter) {
        case '\0':
            break;
        case '%':
            out.put('%');
            if (*in == '%') {
                pass(1);
            }
            break;
        case 'e':
            extension();
            break;
        case '*':
            any_text();
            break;
        default: {
            const std::string_view key = key_text(source, directive);
            if (key.empty()) {
                return open ? any_text() : rest();
            }
            out.put(key);
            pass(key.size());
            break;
        }
        }
    }

    void date_field(const FieldRow& row, int n) {
        const std::size_t width = std::min(static_cast<std::size_t>(row.width), std::strlen(in));
        const std::string digits(in, width);
        where = behind_date;
        int value = 0;
        const char* at = digits.c_str();
        if (row.letter == 'b') {
            value = DATE_decode_month(at);
            if (value == 0) {
                return rest();
            }
        } else if (scan_int(&at, row.width, &value) == 0) {
            return rest();
        }
        out.put(digits);
        pass(width);
        store(row, value);
        if (row.unit != 0) {
            record_step(row, n);
        }
    }

    void store(const FieldRow& row, int value) {
        if (row.letter == 'j') {
            DATE_julian_monday(result.date.year, value, &result.date.month, &result.date.day);
            return;
        }
        if (row.letter == 'y') {
            value += value < 50 ? 2000 : 1900;
        }
        result.date.*row.field = value;
    }

    void record_step(const FieldRow& row, int n) {
        const int set = source.set.*row.field;
        if (is_set(set) && set < 0) {
            result.late_off = static_cast<int>(std::min(-1L * set * row.unit, max_step));
        } else if (!is_set(result.late_off) || result.late_off > n * row.unit) {
            result.late_off = n * row.unit;
        }
    }

    // The path of the resource; or, for a full name, its own: the part in
    // front of as many separators as the template still holds.
    void place_path(const char* resource) {
        where = behind_path;
        if (*in != '/' && *in != '.' && *in != '~') {
            out.put(resource_text(source, resource, "."));
            if (*conv == '/') {
                out.put('/');
                ++conv;
            }
            return;
        }
        const std::string_view templ = conv;
        auto count = std::count_if(templ.begin(), templ.end(),
                                   [](char c) { return c == '/' || c == '\\' || c == ':'; });
        if (count == 0) {
            return;
        }
        const std::string_view name = in;
        std::size_t cut = std::string_view::npos;
        for (std::size_t i = name.size(); i-- > 0 && count > 0;) {
            if (name[i] == '/' || (name[i] == ':' && i == 1)) {
                cut = i;
                --count;
            }
        }
        if (cut == std::string_view::npos) {
            return rest(); // no directory to keep: the name is taken as it is
        }
        out.put(name.substr(0, cut));
        in += cut;
    }

    // Text that the template leaves open: names that hold all of it were matched
    // by match_open, so this is a date typed alone, or none of the template.
    void any_text() {
        if (bare && where < behind_date) {
            return skip_to_date();
        }
        rest();
    }

    void skip_to_date() {
        while (*conv != '\0') {
            const char* const at = conv;
            Directive directive;
            conv = *at == '%' ? read_directive(at + 1, &directive) : at + 1;
            if (find_row(field_rows, directive.letter) != nullptr) {
                conv = at;
                return;
            }
        }
    }

    void extension() {
        if (open) {
            return any_text();
        }
        const std::string follows(conv, std::strcspn(conv, "%{}*"));
        const char* hit = follows.empty() ? nullptr : std::strstr(in, follows.c_str());
        if (result.ext[0] != '\0') {
            out.put(result.ext);
            in = hit == nullptr ? in : hit;
            return;
        }
        if (hit == nullptr) {
            return rest();
        }
        const std::string found(in, hit);
        out.put(found);
        copy_text(result.ext, sizeof result.ext, found.c_str());
        in = hit;
    }
};

// --- Building the name of a date ----------------------------------------------

// Adds text to a pattern, in quotes that no character of it can leave. Only a
// "~" with a user name in front of the whole pattern is left to the shell.
void quote(std::string& pattern, std::string_view text) {
    if (pattern.empty() && !text.empty() && text[0] == '~') {
        std::size_t n = 1;
        while (n < text.size() && std::isalnum(static_cast<unsigned char>(text[n])) != 0) {
            ++n;
        }
        pattern = text.substr(0, n);
        text.remove_prefix(n);
    }
    if (text.empty()) {
        return;
    }
    pattern += '\'';
    for (const char c : text) {
        if (c == '\'') {
            pattern += "'\\''";
        } else {
            pattern += c;
        }
    }
    pattern += '\'';
}

class Builder {
public:
    Builder(const NameSource& source_in, const Date& date_in, const Date& start)
        : source(source_in), date(date_in), out{result} {
        result.date = start;
        copy_text(result.ext, sizeof result.ext, source.ext);
    }

    NameResult run() {
        for (const char* at = source.conv; *at != '\0';) {
            const char c = *at++;
            if (c == '%') {
                Directive directive;
                at = read_directive(at, &directive);
                apply(directive);
            } else if (c != '{' && c != '}') {
                put_literal(c == ' ' ? '_' : c);
            }
        }
        // What a key or a setting says makes no command of a name.
        if (*result.name == '|' && !command) {
            copy_text(result.name, sizeof result.name, ("./" + std::string(result.name)).c_str());
        }
        return result;
    }

private:
    const NameSource& source;
    const Date& date;
    NameResult result;
    Writer out;
    const bool command = *source.conv == '|';
    const bool open = name_is_open(source.conv); // what is not known is any text

    void put_literal(char c) {
        if (source.glob && std::strchr("*?[\\", c) != nullptr) {
            out.put('\\');
        }
        out.put(c);
    }

    // Text from a setting or a key: in a command it is one word for the shell.
    void put_text(std::string_view text) {
        std::string word;
        if (source.glob) {
            std::for_each(text.begin(), text.end(), [this](char c) { put_literal(c); });
            return;
        }
        if (command) {
            quote(word, text);
            text = word;
        }
        out.put(text);
    }

    void apply(const Directive& directive) {
        const FieldRow* field = find_row(field_rows, directive.letter);
        if (field != nullptr) {
            date_field(*field, directive.n);
            return;
        }
        const PathRow* path = find_row(path_rows, directive.letter);
        if (path != nullptr) {
            put_text(*source.path != '\0' ? source.path
                                          : resource_text(source, path->resource, "."));
            return;
        }
        switch (directive.letter) {
        case '\0':
            break;
        case '%':
            out.put('%');
            break;
        case 'e':
            put_or_open(source.ext, "", directive);
            break;
        case '*':
            put_or_open("", "", directive);
            break;
        case '{':
            put_text(*source.path != '\0' ? source.path : resource_named(source, directive.name));
            break;
        default:
            put_or_open(key_text(source, directive), "0", directive);
            break;
        }
    }

    // A text; in its absence what stands for it, in a pattern any text.
    void put_or_open(std::string_view text, const char* absent, const Directive& directive) {
        if (!text.empty() || !open) {
            put_text(text.empty() ? absent : text);
        } else {
            out.put(directive.has_n ? std::string(static_cast<std::size_t>(directive.n), '?')
                                    : std::string("*"));
        }
    }

    // The value of a field, missing if it is unknown: what the user fixed, else
    // the date's, rounded by the directive's number or by the user's step.
    int value_of(const FieldRow& row, int n) const {
        const int set = source.set.*row.field;
        if (is_set(set) && set >= 0) {
            const bool clock = row.letter == 'h' || row.letter == 'n';
            return clock ? set - set % n : set;
        }
        int value = date.*row.field;
        if (value < 0) {
            return missing;
        }
        if (!is_set(set) || row.unit == 0) {
            // Of a two-digit year only the two digits are rounded.
            const int digits = row.letter == 'y' ? value % 100 : value;
            return value - digits % n;
        }
        const int step = std::min(-(set + 1), max_number * 100) + 1;
        if (row.unit == 86400) {
            return value - value % step;
        }
        const int multiple = std::max(step % 100, 1);
        return value - value % multiple + step / 100;
    }

    void record_step(const FieldRow& row, int n) {
        const int set = source.set.*row.field;
        if (is_set(set) && set < 0) {
            const long step = -1L * set;
            const long units = row.unit == 86400 ? step : std::max(step % 100, 1L);
            result.late_off = static_cast<int>(std::min(units * row.unit, max_step));
        } else if (!is_set(result.late_off) || result.late_off > n * row.unit) {
            result.late_off = n * row.unit;
        }
    }

    void date_field(const FieldRow& row, int n) {
        const int value = value_of(row, n);
        result.date.*row.field = value;
        if (!is_set(value)) {
            out.put(open ? std::string(static_cast<std::size_t>(row.width), '?')
                         : std::string(row.unknown));
        } else if (row.letter == 'b') {
            const char* month = DATE_month_lower(value);
            out.put(*month == '\0' ? row.unknown : month);
        } else if (row.letter == 'j') {
            int jday = 0;
            DATE_monday_julian(date.year, date.month, std::min(value, max_number), &jday);
            result.date.month = date.month;
            out.number(row.width, jday);
        } else {
            out.number(row.width, row.letter == 'y' ? value % 100 : value);
        }
        if (row.unit != 0) {
            record_step(row, n);
        }
    }
};

// --- The pattern of all names ---------------------------------------------------

void list_directive(std::string& pattern, const NameSource& source, const Directive& directive) {
    const FieldRow* field = find_row(field_rows, directive.letter);
    const PathRow* path = find_row(path_rows, directive.letter);
    if (field != nullptr) {
        pattern += field->glob;
    } else if (path != nullptr) {
        quote(pattern, resource_text(source, path->resource, "."));
    } else if (directive.letter == '%') {
        quote(pattern, "%");
    } else if (directive.letter == 'e') {
        if (*source.ext == '\0') {
            pattern += '*';
        }
        quote(pattern, source.ext);
    } else if (directive.letter != '\0') {
        const std::string_view key = key_text(source, directive);
        if (key.empty() && directive.has_n) {
            pattern.append(static_cast<std::size_t>(std::min(directive.n, 99)), '?');
        } else if (key.empty()) {
            pattern += '*';
        }
        quote(pattern, key);
        quote(pattern, directive.name);
    }
}

} // namespace

NameResult match_name(const NameSource& source, const char* typed) {
    return Matcher(source, typed).run();
}

NameResult build_name(const NameSource& source, const Date& date, const Date& start) {
    return Builder(source, date, start).run();
}

bool name_is_open(const char* conv) {
    for (const char* at = conv; *at != '\0';) {
        Directive directive;
        at = *at == '%' ? read_directive(at + 1, &directive) : at + 1;
        if (directive.letter == '*') {
            return true;
        }
    }
    return false;
}

std::string list_pattern(const NameSource& source) {
    std::string pattern;
    std::string plain; // literal text, quoted in one piece
    for (const char* at = source.conv; *at != '\0';) {
        const char c = *at++;
        if (c == '%') {
            quote(pattern, std::exchange(plain, {}));
            Directive directive;
            at = read_directive(at, &directive);
            list_directive(pattern, source, directive);
        } else if (c == '*') {
            quote(pattern, std::exchange(plain, {}));
            pattern += '*';
        } else if (c != '{' && c != '}') {
            plain += c;
        }
    }
    quote(pattern, plain);
    return pattern;
}

std::string path_of_name(const char* conv, const char* name) {
    const std::string_view templ = conv;
    auto count = std::count_if(templ.begin(), templ.end(), [](char c) { return c == '/'; }) +
                 (templ.size() > 1 && templ[1] == ':' ? 1 : 0);
    if (count == 0) {
        return {};
    }
    const std::string_view text = name;
    for (std::size_t i = text.size(); i-- > 0;) {
        const bool separator = text[i] == '/' || (text[i] == ':' && i == 1);
        if (separator && --count == 0) {
            return std::string(text.substr(0, i));
        }
    }
    return {};
}
