// text_scan.h: what a text begins with.
#pragma once

#include "zyr.h"

#include <cstring>

inline bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
inline bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
// A blank, a tab or a line's end, but no other white space.
inline bool is_white(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
// White space of any kind.
inline bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
inline void skip_blanks(const char** text) {
    while (is_blank(**text)) {
        ++*text;
    }
}

// Whether `text` begins with `word`, letters in either case.
inline bool begins(const char* text, const char* word) {
    return strnicmp(text, word, static_cast<int>(std::strlen(word))) == 0;
}
// The same, letters as they are.
inline bool begins_exactly(const char* text, const char* word) {
    return std::strncmp(text, word, std::strlen(word)) == 0;
}
