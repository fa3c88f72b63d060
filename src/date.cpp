// date.cpp: conversion between `Date` and seconds since 1970, the display
// zone, and the text forms of dates. Owns the zone, set once at start, and the
// record that DATE_to_struct hands out.
#include "date.h"

#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

// Days before each month, and those of the year.
constexpr std::array<int, 13> num_day = {0,   31,  59,  90,  120, 151, 181,
                                         212, 243, 273, 304, 334, 365};
constexpr std::array<int, 13> num_day_leap = {0,   31,  60,  91,  121, 152, 182,
                                              213, 244, 274, 305, 335, 366};

constexpr long minute_sec = 60;
constexpr long hour_sec = 3600;
constexpr long day_sec = 86400;
constexpr int repair_year = 1980;
constexpr std::size_t zone_letters = 4; // of a name that are kept
constexpr float max_zone_hours = 10000.0F;

struct Zone {
    int tz_off = 0;           // seconds to add to UTC for display
    int tz_pm = 0;            // 0 24-hour form; 1 12-hour form; -1 the same with UTC in brackets
    char tz_str[7] = "Z";     // suffix of a time text
    Date shared = {.sec = 0}; // record of DATE_to_struct
};
Zone zone;

const std::array<int, 13>& days_before(int year) {
    return DATE_is_leap(year) != 0 ? num_day_leap : num_day;
}

int century(int year) {
    if (year < 50) {
        year += 2000;
    }
    return year < 200 ? year + 1900 : year;
}

// `value` if it lies in the range, else `repaired`.
int in_range(int value, int low, int high, int repaired) {
    return value >= low && value <= high ? value : repaired;
}

int label_year(const Date& date) {
    return (date.year < 0 ? repair_year : date.year) % 100;
}

// The hour (and minute, unless unknown) of a time text in the zone's form. The
// 24-hour form has a leading zero only if `padded`.
void time_text(char* text, const Date& date, const Date& utc, bool padded) {
    const bool has_min = is_set(date.min);
    const int hour = in_range(date.hour, 0, 23, 0);
    const int min = in_range(date.min, 0, 59, 0);
    if (zone.tz_pm == 0) {
        if (has_min) {
            std::snprintf(text, date_label_size, "%2.2d%2.2d%s", hour, min, zone.tz_str);
        } else {
            std::snprintf(text, date_label_size, padded ? "%2.2d%s" : "%d%s", hour, zone.tz_str);
        }
        return;
    }
    const int clock = hour % 12 == 0 ? 12 : hour % 12;
    const char* half = hour >= 12 ? "PM" : "AM";
    char brackets[20] = "";
    const int utc_hour = in_range(utc.hour, 0, 23, 0);
    if (zone.tz_pm < 0 && has_min) {
        std::snprintf(brackets, sizeof brackets, " [%2.2d%2.2dZ]", utc_hour,
                      in_range(utc.min, 0, 59, 0));
    } else if (zone.tz_pm < 0) {
        std::snprintf(brackets, sizeof brackets, " [%2.2dZ]", utc_hour);
    }
    if (has_min) {
        std::snprintf(text, date_label_size, "%d:%2.2d %s%s%s", clock, min, half, zone.tz_str,
                      brackets);
    } else {
        std::snprintf(text, date_label_size, "%d %s%s%s", clock, half, zone.tz_str, brackets);
    }
}

// One form of a label: the fields in their order, with the separator that
// follows each; the month text and the year close every form.
struct LabelForm {
    int from_end;       // where the scan begins, counted from the end; 0: at the start
    const char* fields; // h hour, n minute, s second, d day
    const char* marks;  // character after each field; ' ' stands for any or no blank
};
constexpr LabelForm label_forms[] = {
    {0,  "hd",   "Z "  },
    {15, "hnd",  " Z " },
    {19, "hnsd", "::Z "},
    {13, "hd",   "Z "  },
};

int* field_of(Date* date, char name) {
    switch (name) {
    case 'h':
        return &date->hour;
    case 'n':
        return &date->min;
    case 's':
        return &date->sec;
    default:
        return &date->day;
    }
}

// Reads `text` in one form. Returns true, with the fields and the month text
// stored, only if all of it was there.
bool read_form(const char* text, const LabelForm& form, Date* date, char (&month)[4]) {
    Date found;
    for (int i = 0; form.fields[i] != '\0'; ++i) {
        if (scan_int(&text, 2, field_of(&found, form.fields[i])) == 0) {
            return false;
        }
        if (form.marks[i] != ' ' && *text++ != form.marks[i]) {
            return false;
        }
    }
    skip_blanks(&text);
    std::size_t n = 0;
    for (; n < 3 && std::isgraph(static_cast<unsigned char>(*text)) != 0; ++text) {
        month[n++] = *text;
    }
    month[n] = '\0';
    if (n == 0 || scan_int(&text, 2, &found.year) == 0) {
        return false;
    }
    *date = found;
    return true;
}

// The offset after the ":" of a zone's text; false without one that a clock can have.
bool zone_hours(const char* text, float* hours) {
    const std::size_t name = std::min(std::strcspn(text, ":"), zone_letters);
    if (name == 0 || text[name] != ':') {
        return false;
    }
    const char* number = text + name + 1;
    return take_float(&number, hours) && std::abs(*hours) <= max_zone_hours;
}

} // namespace

void DATE_init(Date* date) {
    *date = Date{};
}

int DATE_print(unsigned level, const Date* date) {
    return MESS_print(level, "%d/%d/%d %2.2d:%2.2d:%2.2d\n", date->year, date->month, date->day,
                      date->hour, date->min, date->sec);
}

const char* DATE_month(int month) {
    return month < 1 || month > 12 ? "" : months[month - 1];
}

const char* DATE_month_lower(int month) {
    return month < 1 || month > 12 ? "" : months_lc[month - 1];
}

int DATE_is_leap(int year) {
    if (year % 100 == 0 && year % 400 != 0) {
        return 0;
    }
    return year % 4 == 0 ? 1 : 0;
}

std::time_t DATE_get_time(std::time_t* now) {
    return std::time(now);
}

int DATE_get_gmdate(const std::time_t* time, Date* date) {
    const std::time_t moment = time == nullptr ? DATE_get_time(nullptr) : *time;
    std::tm tm{};
    if (gmtime_r(&moment, &tm) == nullptr || tm.tm_year > 2000000000) {
        DATE_init(date);
        return -1;
    }
    *date = Date{.year = tm.tm_year + 1900,
                 .month = tm.tm_mon + 1,
                 .day = tm.tm_mday,
                 .jday = tm.tm_yday + 1,
                 .wday = tm.tm_wday,
                 .hour = tm.tm_hour,
                 .min = tm.tm_min,
                 .sec = tm.tm_sec};
    return 0;
}

long DATE_num_sec(Date* date) {
    date->year = century(date->year < 0 ? repair_year : date->year);
    date->month = in_range(date->month, 1, 12, 1);
    date->day = in_range(date->day, 0, 31, 1);
    date->hour = in_range(date->hour, 0, 23, 0);
    date->min = in_range(date->min, 0, 59, 0);
    date->sec = in_range(date->sec, 0, 59, 0);

    const int y = date->year - 1900;
    long leap_days = y / 4 - 17;
    if (date->month < 3 && y % 4 == 0) {
        --leap_days;
    }
    const long days =
        date->day - 1L + num_day[date->month - 1] + 365L * (date->year - 1970L) + leap_days;
    return date->sec + minute_sec * date->min + hour_sec * date->hour + day_sec * days;
}

int DATE_julian_monday(int year, int jday, int* month, int* day) {
    const std::array<int, 13>& table = days_before(year);
    jday = std::clamp(jday, 1, table[12]);
    const auto found = std::lower_bound(table.begin(), table.end(), jday);
    *month = static_cast<int>(found - table.begin());
    *day = jday - *(found - 1);
    return 0;
}

int DATE_monday_julian(int year, int month, int day, int* jday) {
    *jday = days_before(year)[std::clamp(month, 1, 12) - 1] + day;
    return 0;
}

Date* DATE_to_struct(int year, int month, int day, int hour, int min) {
    Date& date = zone.shared;
    date.year = year;
    date.month = month;
    date.day = day;
    date.hour = hour;
    date.min = min;
    date.sec = 0;
    return &date;
}

int DATE_set_TZ(const char* text) {
    if (text == nullptr) {
        return -1;
    }
    zone.tz_str[0] = ' ';
    if (*text == '-' || *text == '+') {
        zone.tz_pm = *text == '-' ? -1 : 1;
        ++text;
    }
    const std::size_t name = std::min(std::strcspn(text, ":"), zone_letters);
    if (name == 0) {
        return 0;
    }
    std::memcpy(zone.tz_str + 1, text, name);
    zone.tz_str[1 + name] = '\0';
    float hours = 0.0F;
    if (zone_hours(text, &hours)) {
        zone.tz_off = static_cast<int>(3600.0F * hours);
    }
    return 0;
}

int DATE_is_TZ(const char* text) {
    text += *text == '-' || *text == '+' ? 1 : 0;
    float hours = 0.0F;
    const std::string_view name(text, std::strcspn(text, ":"));
    return zone_hours(text, &hours) || name == "UTC" || name == "UT" || name == "GMT" || name == "Z"
               ? 1
               : 0;
}

int DATE_get_tz_off() {
    return zone.tz_off;
}

const char* DATE_get_tz_str() {
    return zone.tz_str;
}

char* DATE_get_current_str(char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    Date now;
    DATE_get_gmdate(nullptr, &now);
    std::snprintf(text, date_label_size, "%2.2d %s %2.2d  %2.2d:%2.2d:%2.2dZ", now.year % 100,
                  DATE_month(now.month), now.day, now.hour, now.min, now.sec);
    return text;
}

int DATE_make_label(const Date* date, char* text) {
    if (text == nullptr) {
        return -1;
    }
    Date tdate = *date;
    Date udate = *date;
    if (zone.tz_off != 0) {
        std::time_t seconds = DATE_num_sec(&tdate);
        DATE_get_gmdate(&seconds, &udate);
        seconds += zone.tz_off;
        DATE_get_gmdate(&seconds, &tdate);
    }
    const int year = label_year(tdate);
    const char* month = DATE_month(in_range(tdate.month, 1, 12, 1));
    const int day = in_range(tdate.day, 0, 31, 1);
    if (!is_set(tdate.month)) {
        std::snprintf(text, date_label_size, "%2.2d", year);
    } else if (!is_set(tdate.day)) {
        std::snprintf(text, date_label_size, "%3s %2.2d", month, year);
    } else if (!is_set(tdate.hour)) {
        std::snprintf(text, date_label_size, "%2d %3s %2.2d", day, month, year);
    } else {
        char clock[date_label_size];
        time_text(clock, tdate, udate, true);
        std::snprintf(text, date_label_size, "%.31s %2d %3s %2.2d", clock, day, month, year);
    }
    return 0;
}

int DATE_make_label_valid_time(int fhour, const Date* date, char* text) {
    if (text == nullptr) {
        return -1;
    }
    Date udate = *date;
    udate.hour = in_range(udate.hour, 0, 23, 0);
    udate.day = in_range(udate.day, 1, 31, 1);
    udate.month = in_range(udate.month, 1, 12, 1);
    udate.year = udate.year < 0 ? repair_year : udate.year;
    udate.min = is_set(udate.min) ? udate.min : 0;

    int hours = is_set(fhour) ? fhour % 1000 : 0;
    if (hours == 900 || hours == 800) {
        hours = 0;
    }
    std::time_t seconds = DATE_num_sec(&udate) + hour_sec * hours;
    DATE_get_gmdate(&seconds, &udate);
    seconds += zone.tz_off;
    Date tdate;
    DATE_get_gmdate(&seconds, &tdate);

    char day[date_label_size];
    std::snprintf(day, sizeof day, "%3s %2d %3s %2.2d", day_of_week[in_range(tdate.wday, 0, 6, 0)],
                  tdate.day, DATE_month(tdate.month), label_year(tdate));
    if (!is_set(date->hour)) {
        return copy_text(text, date_label_size, day);
    }
    char clock[date_label_size];
    tdate.min = missing;
    time_text(clock, tdate, udate, false);
    std::snprintf(text, date_label_size, "%.31s %.30s", clock, day);
    return 0;
}

char* DATE_fhour_label(char* text, int fhour, int flag) {
    if (text == nullptr) {
        return nullptr;
    }
    const bool days = fhour > 60 || (flag != 0 && fhour >= 12);
    if (fhour >= 901) {
        std::snprintf(text, date_label_size, "%d month", fhour - 900);
    } else if (fhour >= 801) {
        std::snprintf(text, date_label_size, "%d day", fhour - 800);
    } else if (days && fhour % 24 == 0) {
        std::snprintf(text, date_label_size, "%d day", fhour / 24);
    } else if (days && fhour % 24 == 12) {
        std::snprintf(text, date_label_size, "%d.5 day", fhour / 24);
    } else if (fhour != 0 && is_set(fhour)) {
        std::snprintf(text, date_label_size, "%d hour", fhour);
    } else {
        text[0] = '\0';
    }
    return text;
}

int DATE_decode_label(const char* text, Date* date) {
    DATE_init(date);
    char month[4] = "";
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    for (const LabelForm& form : label_forms) {
        const auto from_end = static_cast<std::size_t>(form.from_end);
        if (length == 0 || from_end > length) {
            continue;
        }
        const char* start = from_end == 0 ? text : text + length - from_end;
        if (!read_form(start, form, date, month)) {
            continue;
        }
        if (form.from_end == 15 && *start == ' ') {
            // A blank in place of the first digit: the hour has one digit.
            scan_int(&start, 1, &date->hour);
            scan_int(&start, 2, &date->min);
        }
        break;
    }
    date->year = century(date->year);
    date->month = DATE_decode_month(month);
    return 0;
}

int DATE_decode_month(const char* text) {
    if (text == nullptr || *text == '\0') {
        return 0;
    }
    // Rows in order of their tests; an empty `other` decides by the first letter.
    struct Row {
        char first, other;
        int place, month;
    };
    constexpr Row rows[] = {
        {'F', 0,   0, 2 },
        {'S', 0,   0, 9 },
        {'O', 0,   0, 10},
        {'N', 0,   0, 11},
        {'D', 0,   0, 12},
        {'J', 'A', 1, 1 },
        {'J', 'N', 2, 6 },
        {'J', 'L', 2, 7 },
        {'M', 'R', 2, 3 },
        {'M', 'Y', 2, 5 },
        {'A', 'R', 2, 4 },
        {'A', 'G', 2, 8 }
    };
    const char letter[3] = {text[0], text[1], text[1] == '\0' ? '\0' : text[2]};
    const int small = letter[0] >= 'a' && letter[0] <= 'z' ? 'a' - 'A' : 0;
    for (const Row& row : rows) {
        if (letter[0] == row.first + small &&
            (row.other == 0 || letter[row.place] == row.other + small)) {
            return row.month;
        }
    }
    return 0;
}

int DATE_decode_seq(const char* text, Date* date) {
    if (text == nullptr) {
        return -1;
    }
    int* const fields[] = {&date->year, &date->month, &date->day, &date->hour, &date->min};
    int width = 4;
    for (int* field : fields) {
        if (scan_int(&text, width, field) == 0) {
            break;
        }
        width = 2;
    }
    return 0;
}

void keep_date(StateKeeper& keeper) {
    keeper.keep(zone);
}
