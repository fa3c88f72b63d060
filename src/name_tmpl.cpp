// name_tmpl.cpp: the template language of file names: matching what a user
// typed, building the name of a date, and the pattern that lists all names.
// No state.
#include "name_tmpl.h"

#include "date.h"
#include "tools.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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
// built as. `unit` is the seconds of one step, 0 for a field that sets no step.
struct FieldRow {
    char letter;
    int width;
    const char* glob;
    const char* unknown;
    int Date::*field;
    int unit;
};
constexpr FieldRow field_rows[] = {
    {'Y', 4, "?[0-9]??", "0000", &Date::year,  0    },
    {'y', 2, "[0-9]?",   "00",   &Date::year,  0    },
    {'m', 2, "[0-9]?",   "00",   &Date::month, 0    },
    {'b', 3, "?[a-z]?",  "xxx",  &Date::month, 0    },
    {'d', 2, "[0-9]?",   "00",   &Date::day,   86400},
    {'j', 3, "?[0-9]?",  "000",  &Date::day,   86400},
    {'h', 2, "[0-9]?",   "00",   &Date::hour,  3600 },
    {'n', 2, "[0-9]?",   "00",   &Date::min,   60   },
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

// Reads the directive behind a "%" and returns what follows it.
const char* read_directive(const char* at, Directive* directive) {
    if (std::isdigit(static_cast<unsigned char>(*at)) != 0) {
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
    const std::string_view key = source.keys->text[static_cast<unsigned char>(directive.letter)];
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
          plain(std::strchr(typed, '/') == nullptr), out{result} {
        result.date = source.set;
        copy_text(result.ext, sizeof result.ext, source.ext);
    }

    NameResult run() {
        const char* const typed = in;
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
    bool braces = false;
    bool done = false;
    int where = at_start;
    NameResult result;
    Writer out;

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
        default: {
            const std::string_view key = key_text(source, directive);
            if (key.empty()) {
                return rest();
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

    void extension() {
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
                out.put(c == ' ' ? '_' : c);
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

    // Text from a setting or a key: in a command it is one word for the shell.
    void put_text(std::string_view text) {
        std::string word;
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
            put_text(source.ext);
            break;
        case '{':
            put_text(*source.path != '\0' ? source.path : resource_named(source, directive.name));
            break;
        default: {
            const std::string_view key = key_text(source, directive);
            put_text(key.empty() ? "0" : key);
            break;
        }
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
            out.put(row.unknown);
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
