// text_list.h: the fields of a text, and the memory that holds them.
#pragma once

#include "zyr.h"

class TextList {
public:
    // The fields of `text` between delimiters; none for a null or empty text.
    TextList(const char* text, char delimiter) { parse_string(text, delimiter, &count_, &array_); }
    // Takes over what parse_string made.
    TextList(int count, char** array) : count_(array == nullptr ? 0 : count), array_(array) {}
    TextList(const TextList&) = delete;
    TextList& operator=(const TextList&) = delete;
    ~TextList() { free_parsed_array(count_, array_); }

    [[nodiscard]] int count() const { return array_ == nullptr ? 0 : count_; }
    [[nodiscard]] const char* operator[](int i) const { return array_[i]; }
    [[nodiscard]] char** begin() const { return array_; }
    [[nodiscard]] char** end() const { return array_ + count(); }

private:
    int count_ = 0;
    char** array_ = nullptr;
};
