// near_word.cpp: which of the known words a mistyped one is nearest to. It keeps
// nothing.
#include "near_word.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace {

constexpr std::size_t longest = 63; // letters that are compared

char lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

bool same(char a, char b) {
    return lower(a) == lower(b);
}

// Edit distance with swaps of neighbours (optimal string alignment), row by row.
int changes(std::string_view a, std::string_view b) {
    using Row = std::array<int, longest + 1>;
    Row before{};
    Row last{};
    Row row{};
    for (std::size_t j = 0; j <= b.size(); ++j) {
        last[j] = static_cast<int>(j);
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int replaced = last[j - 1] + (same(a[i - 1], b[j - 1]) ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && same(a[i - 1], b[j - 2]) && same(a[i - 2], b[j - 1])) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before = last;
        last = row;
    }
    return last[b.size()];
}

std::size_t same_beginning(std::string_view a, std::string_view b) {
    std::size_t n = 0;
    while (n < a.size() && n < b.size() && same(a[n], b[n])) {
        ++n;
    }
    return n;
}

struct Nearest {
    std::string_view word;
    int changes = static_cast<int>(2 * longest);
};

Nearest search(const KnownWords& words, std::string_view typed) {
    typed = typed.substr(0, longest);
    Nearest nearest;
    std::size_t begins = 0;
    for (const KnownWord& word : words) {
        const std::string_view text = std::string_view(word.text).substr(0, longest);
        const int count = changes(text, typed);
        const std::size_t beginning = same_beginning(text, typed);
        // Of equal ones that which begins as it was typed: "gren" is "green", not "grey".
        if (count < nearest.changes || (count == nearest.changes && beginning > begins)) {
            nearest = {word.text, count};
            begins = beginning;
        }
    }
    return nearest;
}

} // namespace

bool is_known_word(const KnownWords& words, std::string_view typed) {
    return std::any_of(words.begin(), words.end(), [typed](const KnownWord& word) {
        const std::string_view text = word.text;
        return same_beginning(text, typed) == text.size() &&
               (word.prefix || typed.size() == text.size());
    });
}

std::string_view nearest_word(const KnownWords& words, std::string_view typed) {
    return search(words, typed.substr(0, typed.find_first_of("=:"))).word;
}

std::string_view close_word(const KnownWords& words, std::string_view typed) {
    const Nearest nearest = search(words, typed);
    std::size_t length = std::max(typed.size(), nearest.word.size());
    const std::size_t point = typed.rfind('.');
    if (point != std::string_view::npos && nearest.word.ends_with(typed.substr(point))) {
        length -= typed.size() - point;
    }
    return 3 * static_cast<std::size_t>(nearest.changes) <= length ? nearest.word : "";
}
