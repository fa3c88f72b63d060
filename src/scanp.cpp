// scanp.cpp: the format scanner. The cursor and the text are the caller's; no
// state here and no allocation in a scan.
#include "scanp.h"

#include "text_num.h"
#include "text_scan.h"
#include "tools.h"
#include "zyr.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <string_view>

namespace {

constexpr int field_size = 80; // of the buffer of a stored field
constexpr int widest = 999;    // a field without a width
constexpr unsigned trace = 0x80000000;

// A directive of the format, as read from it.
struct Directive {
    bool skip = false;    // "*"
    bool at_most = false; // "<"
    int width = 0;        // 0: none
    bool has_marker = false;
    std::string_view marker; // the missing marker
    char conversion = '\0';
    std::string_view inside; // of "[...]" or "(...)"

    bool exact() const { return width > 0 && !at_most; }
    // Most characters of the field. A stored one goes through the field buffer.
    int limit() const {
        const int wanted = width > 0 ? width : widest;
        return skip ? wanted : std::min(wanted, field_size - 1);
    }
};

// The text between `at` and the closing character, which is passed over too.
std::string_view bracketed(const char** at, char close) {
    const char* from = *at;
    const char* end = std::strchr(from, close);
    if (end == nullptr) {
        end = from + std::strlen(from);
        *at = end;
    } else {
        *at = end + 1;
    }
    return {from, static_cast<std::size_t>(end - from)};
}

// The set ends at a "]" that no "/" protects.
std::string_view bracketed_set(const char** at) {
    const char* from = *at;
    const char* end = from;
    while (*end != '\0' && *end != ']') {
        end += end[0] == '/' && end[1] != '\0' ? 2 : 1;
    }
    *at = *end == ']' ? end + 1 : end;
    return {from, static_cast<std::size_t>(end - from)};
}

Directive read_directive(const char** format) {
    Directive d;
    const char* at = *format;
    if (*at == '*') {
        d.skip = true;
        ++at;
    }
    if (*at == '<') {
        d.at_most = true;
        ++at;
    }
    if (is_digit(*at)) {
        scan_int(&at, any_width, &d.width);
    }
    if (*at == '!') {
        ++at;
        d.has_marker = true;
        d.marker = bracketed(&at, '!');
    }
    d.conversion = *at;
    at += *at == '\0' ? 0 : 1;
    if (d.conversion == '[') {
        d.inside = bracketed_set(&at);
    } else if (d.conversion == '(') {
        d.inside = bracketed(&at, ')');
    }
    *format = at;
    return d;
}

bool in_set(std::string_view set, char c) {
    const bool negated = set.starts_with('^');
    set.remove_prefix(negated ? 1 : 0);
    for (std::size_t i = 0; i < set.size(); ++i) {
        bool hit = set[i] == c;
        if (set[i] == '/' && i + 1 < set.size()) {
            ++i;
            hit = set[i] == 'A' ? is_letter(c) : set[i] == 'N' ? is_digit(c) : set[i] == c;
        }
        if (hit) {
            return !negated;
        }
    }
    return negated;
}

bool text_fits(const Directive& d, char c) {
    switch (d.conversion) {
    case 'N':
        return is_digit(c);
    case 'A':
        return is_letter(c);
    case 's':
        return !is_white(c);
    case 'w':
        return is_white(c);
    case 'W':
        return is_white(c) && c != '\n';
    case '[':
        return in_set(d.inside, c);
    default: // S, c
        return true;
    }
}

// Characters at the start of `text` that pass a test.
template <class Test> std::size_t run_of(std::string_view text, Test test) {
    const auto end = std::find_if_not(text.begin(), text.end(), test);
    return static_cast<std::size_t>(end - text.begin());
}

// Length of the number that `text` begins with, 0 if it holds no digit.
std::size_t number_length(std::string_view text, bool is_float) {
    std::size_t n = text.starts_with('-') ? 1 : 0;
    std::size_t digits = run_of(text.substr(n), is_digit);
    n += digits;
    if (is_float && n < text.size() && text[n] == '.') {
        const std::size_t decimals = run_of(text.substr(n + 1), is_digit);
        n += 1 + decimals;
        digits += decimals;
    }
    if (digits == 0) {
        return 0;
    }
    if (is_float && n < text.size() && (text[n] == 'e' || text[n] == 'E')) {
        std::size_t sign = n + 1;
        sign += sign < text.size() && (text[sign] == '-' || text[sign] == '+') ? 1 : 0;
        const std::size_t exponent = sign < text.size() ? run_of(text.substr(sign), is_digit) : 0;
        n = exponent > 0 ? sign + exponent : n;
    }
    return n;
}

// One scan: how far it is in the text, and where results go.
class Scan {
public:
    Scan(parse_param* param_in, va_list* args_in)
        : param(param_in), args(args_in),
          text(param_in->ptr + param_in->off,
               static_cast<std::size_t>(param_in->length - param_in->off)) {}

    // Obeys a format to its end or to the first failure.
    void run(const char* format) {
        const char* at = format;
        bool going = true;
        while (going && *at != '\0') {
            going = element(&at);
            MESS_print(trace, "     :%s:%.50s:\n", at, text.data());
        }
        param->done = going ? 1 : 0;
        MESS_print(trace, "SCANP:%.50s:%s:%d:%d:%d:%d:%d\n", param->ptr + param->off, format,
                   param->off, param->len, param->assigned, param->matched, param->done);
    }

private:
    parse_param* param;
    va_list* args;
    std::string_view text; // what is left

    template <class Pointer> Pointer next_argument() {
        // scanp has started the list; the analyzer does not follow the pointer.
        return va_arg(*args, Pointer); // NOLINT(clang-analyzer-valist.Uninitialized)
    }

    void consume(std::size_t n) {
        text.remove_prefix(n);
        param->len += static_cast<int>(n);
    }

    bool element(const char** format) {
        const char c = *(*format)++;
        if (c == ' ') {
            const std::size_t blanks = run_of(text, is_white);
            consume(blanks);
            return blanks > 0;
        }
        if (c != '%') {
            return literal(c);
        }
        const Directive d = read_directive(format);
        switch (d.conversion) {
        case '%':
            return literal('%');
        case 'n':
            store_int(d, param->len);
            ++param->matched;
            return true;
        case 'd':
        case 'D':
        case 'f':
        case 'F':
            return number(d);
        case 'N':
        case 'A':
        case 's':
        case 'S':
        case 'c':
        case 'w':
        case 'W':
        case '[':
            return text_field(d);
        case '(':
            return alternatives(d);
        default:
            return false;
        }
    }

    bool literal(char c) {
        if (!text.starts_with(c)) {
            return false;
        }
        consume(1);
        return true;
    }

    void store_int(const Directive& d, int value) {
        if (!d.skip) {
            *next_argument<int*>() = value;
            ++param->assigned;
        }
    }

    // Stores a text with its end; `%c` without.
    void store_text(const Directive& d, std::string_view value) {
        if (d.skip) {
            return;
        }
        char* out = next_argument<char*>();
        const std::size_t n = std::min<std::size_t>(value.size(), field_size - 1);
        std::copy_n(value.data(), n, out);
        if (d.conversion != 'c') {
            out[n] = '\0';
        }
        ++param->assigned;
    }

    void store_number(const Directive& d, std::string_view digits, bool is_float) {
        if (d.skip) {
            return;
        }
        char buffer[field_size];
        buffer[digits.copy(buffer, field_size - 1)] = '\0';
        if (is_float) {
            float number = 0.0F;
            const char* at = buffer;
            take_real(&at, &number);
            *next_argument<float*>() = number;
            ++param->assigned;
            return;
        }
        int value = 0;
        const char* at = buffer;
        scan_int(&at, any_width, &value);
        store_int(d, value);
    }

    void store_missing(const Directive& d, bool is_float) {
        if (!is_float) {
            store_int(d, missing);
        } else if (!d.skip) {
            *next_argument<float*>() = missing_f;
            ++param->assigned;
        }
    }

    bool number(const Directive& d) {
        const bool is_float = d.conversion == 'f' || d.conversion == 'F';
        const bool column = d.conversion == 'D' || d.conversion == 'F';
        const std::string_view field = text.substr(0, static_cast<std::size_t>(d.limit()));
        const auto blank = [](char c) { return c == ' '; };
        const std::size_t before = column ? run_of(field, blank) : 0;
        const std::size_t digits = number_length(field.substr(before), is_float);
        std::size_t filled = before + digits;
        filled += column ? run_of(field.substr(filled), blank) : 0;
        if (digits == 0 && d.has_marker) {
            const std::string_view marker = d.marker.substr(0, static_cast<std::size_t>(d.limit()));
            if (!marker.empty() && text.starts_with(marker)) {
                ++param->matched;
                store_missing(d, is_float);
                consume(marker.size());
            } else if (!d.skip) {
                next_argument<void*>(); // the next element has the next argument
            }
            return true;
        }
        if (digits == 0 || (d.exact() && filled != static_cast<std::size_t>(d.limit()))) {
            return false;
        }
        ++param->matched;
        store_number(d, field.substr(before, digits), is_float);
        consume(filled);
        return true;
    }

    bool text_field(Directive d) {
        if (d.conversion == 'c' && d.width == 0) {
            d.width = 1;
        }
        const auto limit = static_cast<std::size_t>(d.limit());
        const std::size_t n =
            run_of(text.substr(0, limit), [&d](char c) { return text_fits(d, c); });
        if (n == 0 || (d.exact() && n != limit)) {
            return false;
        }
        ++param->matched;
        store_text(d, text.substr(0, n));
        consume(n);
        return true;
    }

    bool alternatives(const Directive& d) {
        std::string_view left = d.inside;
        while (!left.empty() && left[0] != '|') {
            const std::string_view one = left.substr(0, left.find('|'));
            if (text.starts_with(one)) {
                ++param->matched;
                store_text(d, one);
                consume(one.size());
                return true;
            }
            left.remove_prefix(std::min(one.size() + 1, left.size()));
        }
        if (d.at_most && d.width == 0) {
            ++param->matched;
            if (!d.skip) {
                next_argument<void*>();
            }
            return true;
        }
        if (!d.has_marker) {
            return false;
        }
        ++param->matched;
        store_text(d, "");
        const auto differ =
            std::mismatch(text.begin(), text.end(), d.marker.begin(), d.marker.end());
        consume(static_cast<std::size_t>(differ.first - text.begin()));
        return true;
    }
};

} // namespace

void scanp_set(parse_param* param, char* text) {
    *param = parse_param{};
    param->ptr = text;
    param->length = text == nullptr ? 0 : static_cast<int>(std::strlen(text));
}

int scanp(parse_param* param, const char* format, ...) {
    param->len = 0;
    param->assigned = 0;
    param->matched = 0;
    param->done = 0;
    if (format == nullptr || *format == '\0' || param->off >= param->length) {
        return -1;
    }
    va_list args;
    va_start(args, format);
    Scan(param, &args).run(format);
    va_end(args);
    return param->matched;
}

int scanp_inc(parse_param* param) {
    return scanp_inc_off(param, param->len);
}

int scanp_off(parse_param* param, int offset) {
    param->off = std::clamp(offset, 0, param->length);
    return param->off;
}

int scanp_inc_off(parse_param* param, int count) {
    const long offset = static_cast<long>(param->off) + count;
    return scanp_off(param, static_cast<int>(std::clamp<long>(offset, 0, param->length)));
}

char* scanp_str(const parse_param* param) {
    return param->ptr + param->off;
}

char scanp_char(const parse_param* param, int index) {
    const long at = static_cast<long>(param->off) + index;
    return at < 0 || at >= param->length ? '\0' : param->ptr[at];
}

int scanp_replace(parse_param* param, char from, char to) {
    int count = 0;
    for (int i = param->off; i < param->length; ++i) {
        if (param->ptr[i] == from) {
            param->ptr[i] = to;
            ++count;
        }
    }
    return count;
}
