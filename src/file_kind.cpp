// file_kind: distinguishes files by their first bytes: those that a plotter reads,
// and those that a failed download or a mistyped name brings. No state.
#include "file_kind.h"

#include "nids.h"
#include "zyr.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

using namespace std::string_view_literals;

struct Mark {
    std::size_t at;
    std::string_view bytes;
    FileKind kind;
};

// The first that fits counts.
constexpr Mark marks[] = {
    {0,   "\x00\xF0\x09"sv,     {"a NOWrad mosaic", "nowrad"}            },
    {28,  "BZh"sv,              {"a Level II volume", "lev2z"}           },
    {0,   "AR2V"sv,             {"a Level II volume", "lev2"}            },
    {0,   "ARCHIVE2"sv,         {"a Level II volume", "lev2"}            },
    {4,   "BZ"sv,               {"a piece of a Level II volume", "lev2z"}},
    {0,   "BZh"sv,              {"a file packed by bzip2", nullptr}      },
    {0,   "\x1F\x8B"sv,         {"a file packed by gzip twice", nullptr} },
    {0,   "\x1F\x9D"sv,         {"a file packed by compress", nullptr}   },
    {0,
     "\xFD"
     "7zXZ"sv,                  {"a file packed by xz", nullptr}         },
    {0,   "\x28\xB5\x2F\xFD"sv, {"a file packed by zstd", nullptr}       },
    {0,   "PK\x03\x04"sv,       {"a zip archive", nullptr}               },
    {257, "ustar"sv,            {"a tar archive", nullptr}               },
    {0,   "CDF\x01"sv,          {"a netCDF file", "mdr"}                 },
    {0,   "CDF\x02"sv,          {"a netCDF file", "mdr"}                 },
    {0,   "CDF\x05"sv,          {"a netCDF file", "mdr"}                 },
    {0,   "\x89HDF"sv,          {"a netCDF or HDF5 file", "mdr"}         },
    {0,   "ZYRRAD"sv,           {"a radar summary", "mdr"}               },
    {0,   "GRIB"sv,             {"a GRIB file", nullptr}                 },
    {0,   "BUFR"sv,             {"a BUFR file", nullptr}                 },
    {0,   "\x89PNG"sv,          {"a PNG picture", nullptr}               },
    {0,   "GIF8"sv,             {"a GIF picture", nullptr}               },
    {0,   "\xFF\xD8\xFF"sv,     {"a JPEG picture", nullptr}              },
    {0,   "%!PS"sv,             {"a PostScript page", nullptr}           },
    {0,   "%PDF"sv,             {"a PDF file", nullptr}                  },
    {0,   "ZYRMETA"sv,          {"a metafile of this program", nullptr}  },
    {0,   "ZYRIMG"sv,           {"a native image", nullptr}              },
    {0,
     "\x7F"
     "ELF"sv,                   {"a program", nullptr}                   },
};

std::string_view as_text(std::span<const std::uint8_t> head) {
    return {reinterpret_cast<const char*>(head.data()), head.size()};
}

bool starts(std::string_view text, std::string_view word) {
    return text.size() >= word.size() &&
           std::equal(word.begin(), word.end(), text.begin(), [](char a, char b) {
               return a == std::tolower(static_cast<unsigned char>(b));
           });
}

// Markup after blanks and a byte order mark.
FileKind markup(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (starts(text, "<!doctype html") || starts(text, "<html")) {
        return {"a web page (HTML)", nullptr};
    }
    return starts(text, "<?xml") || starts(text, "<!") ? FileKind{"an XML file", nullptr}
                                                       : FileKind{nullptr, nullptr};
}

// Bulletins come between control characters of the lines that carried them.
bool is_text(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char c) {
        constexpr std::string_view framing = "\x01\x03\x1E";
        return c >= ' '
                   ? c != 0x7F
                   : std::isspace(c) != 0 || framing.find(static_cast<char>(c)) != framing.npos;
    });
}

// A line "RCM" and three or four letters near the start. Its body may look like a
// NIDS product.
bool is_rcm(std::string_view text) {
    constexpr std::size_t heading = 100;
    constexpr std::string_view word = "RCM";
    const auto letter = [&](std::size_t at) {
        return at < text.size() && std::isupper(static_cast<unsigned char>(text[at])) != 0;
    };
    for (std::size_t at = text.find(word); at < heading; at = text.find(word, at + 1)) {
        std::size_t end = at + word.size();
        while (letter(end)) {
            ++end;
        }
        const std::size_t letters = end - at - word.size();
        const bool line = at == 0 || text[at - 1] == '\n';
        const bool ends = end < text.size() && (text[end] == '\r' || text[end] == '\n');
        if (line && ends && letters >= 3 && letters <= 4) {
            return true;
        }
    }
    return false;
}

// The record of a KAVRAD mosaic: a date of columns with digits or blanks, and a
// resolution. It has no mark.
bool is_kavrad(std::string_view text) {
    constexpr std::size_t record = 1996;
    if (text.size() < record + 52) {
        return false;
    }
    const std::string_view date = text.substr(record + 16, 12);
    const bool digits = std::all_of(
        date.begin(), date.end(), [](unsigned char c) { return c == ' ' || std::isdigit(c) != 0; });
    return digits && std::any_of(date.begin(), date.end(),
                                 [](unsigned char c) { return std::isdigit(c) != 0; });
}

// The header of an RRWDS image: three letters, times in tens and ones.
bool is_rrwds(std::span<const std::uint8_t> head) {
    const auto two_digits = [](std::uint8_t b, int most) {
        const int value = (b >> 4) * 10 + (b & 15);
        return (b & 15) < 10 && value >= 1 && value <= most;
    };
    return head.size() >= 12 + 80 &&
           std::all_of(head.begin(), head.begin() + 3,
                       [](std::uint8_t c) { return std::isupper(c) != 0; }) &&
           two_digits(head[10], 31) && two_digits(head[11], 12) && (head[9] & 15) < 10 &&
           (head[6] & 15) < 10;
}

// Code 2: the general status of a radar, in the form of a product, at the start or
// after the two lines of a bulletin.
bool is_status(std::span<const std::uint8_t> head) {
    constexpr int lines = 2;
    constexpr std::size_t longest = 80;
    const std::string_view text = as_text(head);
    std::size_t at = 0;
    for (int line = 0; line < lines && is_text(text.substr(at, 1)); ++line) {
        const std::size_t end = text.substr(0, at + longest).find('\n', at);
        at = end == text.npos ? at : end + 1;
    }
    const auto status = head.subspan(at);
    return status.size() > 20 && status[0] == 0 && status[1] == 2 && status[18] == 0xFF &&
           status[19] == 0xFF;
}

} // namespace

FileKind file_kind(std::span<const std::uint8_t> head) {
    const std::string_view text = as_text(head);
    if (text.empty()) {
        return {"an empty file", nullptr};
    }
    for (const Mark& mark : marks) {
        if (text.size() >= mark.at && text.substr(mark.at).starts_with(mark.bytes)) {
            return mark.kind;
        }
    }
    if (is_rcm(text)) {
        return {"a Radar Coded Message", "rcmsite", false};
    }
    if (NIDS_is_product(head) != 0) {
        return {"a NIDS product", "nids"};
    }
    if (is_status(head)) {
        return {"a NIDS status message", nullptr, false};
    }
    if (const FileKind kind = markup(text); kind.name != nullptr) {
        return kind;
    }
    if (is_text(text)) {
        return {"a text file", nullptr, false};
    }
    return is_rrwds(head)    ? FileKind{"an RRWDS image", "rrwds", false}
           : is_kavrad(text) ? FileKind{"a KAVRAD mosaic", "kavrad", false}
                             : FileKind{nullptr, nullptr, false};
}

bool is_other_kind(std::span<const std::uint8_t> head, const char* input) {
    const FileKind kind = file_kind(head);
    return kind.sure && (kind.input == nullptr || std::strcmp(kind.input, input) != 0);
}

void tell_file_kind(const char* routine, std::span<const std::uint8_t> head) {
    const FileKind kind = file_kind(head);
    if (kind.name == nullptr) {
        MESS_print(mess_error, "%s: Its bytes are of no kind that is known\n", routine);
    } else if (kind.input == nullptr) {
        MESS_print(mess_error, "%s: It looks like %s, which no -inp reads\n", routine, kind.name);
    } else {
        MESS_print(mess_error, "%s: It looks like %s, read with -inp %s\n", routine, kind.name,
                   kind.input);
    }
}
