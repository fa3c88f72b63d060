// near_word.h: words that settings may hold, and the one of them that is nearest
// to what was typed.
#pragma once

#include <string_view>
#include <vector>

// A word that some part of the program knows.
struct KnownWord {
    const char* text;
    bool prefix = false; // a value may follow
};
using KnownWords = std::vector<KnownWord>;

// Is the word, or its beginning where a value may follow, in the list? In any case.
bool is_known_word(const KnownWords& words, std::string_view typed);
// The word of the list that takes the fewest changes (a letter added, left out,
// replaced, or two swapped) to become `typed`; empty for an empty list. A value
// after "=" or ":" does not count.
std::string_view nearest_word(const KnownWords& words, std::string_view typed);
// The same, but empty when that takes a change for more than a third of the
// letters, those of a common ending such as ".map" aside: then it is another word.
std::string_view close_word(const KnownWords& words, std::string_view typed);
