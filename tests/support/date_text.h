// date_text.h: dates from their parts and back to one line, for tables of tests.
#pragma once

#include "zyr.h"

#include <string>

inline Date date_of(int year, int month, int day, int hour = missing, int min = missing) {
    return {.year = year, .month = month, .day = day, .hour = hour, .min = min};
}

// "year month day hour min", "-" for an unknown part.
inline std::string text_of(const Date& date) {
    std::string text;
    for (const int part : {date.year, date.month, date.day, date.hour, date.min}) {
        text += (text.empty() ? "" : " ") + (is_set(part) ? std::to_string(part) : "-");
    }
    return text;
}
