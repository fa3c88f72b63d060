// date.h: moments, seconds since 1970, the display zone and the text forms of
// dates. Everything is UTC; only the label routines apply the display zone.
#pragma once

#include "zyr.h"

#include <array>
#include <cstddef>
#include <ctime>

constexpr std::array<const char*, 12> months = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
constexpr std::array<const char*, 12> months_lc = {"jan", "feb", "mar", "apr", "may", "jun",
                                                   "jul", "aug", "sep", "oct", "nov", "dec"};
constexpr std::array<const char*, 7> day_of_week = {"SUN", "MON", "TUE", "WED",
                                                    "THU", "FRI", "SAT"};

// What a caller's buffer must hold for any label or time text of this module.
constexpr std::size_t date_label_size = 64;

// All eight fields unknown.
void DATE_init(Date* date);
// "year/month/day hh:mm:ss" on a line at a message level. Returns the result of MESS_print.
int DATE_print(unsigned level, const Date* date);
// Month text in capitals or small letters; the empty text outside 1 to 12.
const char* DATE_month(int month);
const char* DATE_month_lower(int month);
// Gregorian rule: 1 for a leap year, else 0.
int DATE_is_leap(int year);

// Current system time; stored too, if an address is given.
std::time_t DATE_get_time(std::time_t* now);
// All eight fields of a time (null: now). Returns 0; -1, with all fields
// unknown, for a time beyond the calendar.
int DATE_get_gmdate(const std::time_t* time, Date* date);
// Seconds since 1970. Repairs the record in place first: a negative year
// becomes 1980, two digits get their century, fields out of range their lowest
// value. Every fourth year is a leap year, which holds from 1901 to 2099.
long DATE_num_sec(Date* date);
// Day of the year to month and day, and back; a month is forced into 1 to 12,
// a day of the year into that year. Both return 0.
int DATE_julian_monday(int year, int jday, int* month, int* day);
int DATE_monday_julian(int year, int month, int day, int* jday);
// One shared record with these fields and second 0: copy it before the next
// call. The days of year and week stay as they were.
Date* DATE_to_struct(int year, int month, int day, int hour, int min);

// Display zone from "[-|+]name:hours": a sign asks for the 12-hour form, "-"
// for the UTC time in brackets after it. A text without hours leaves the
// offset as it was. Returns 0; -1 for a null text.
int DATE_set_TZ(const char* text);
// 1 if the text names a zone whose offset is known: it has hours, or is UTC.
int DATE_is_TZ(const char* text);
int DATE_get_tz_off();         // seconds to add to UTC
const char* DATE_get_tz_str(); // suffix of a time, "Z" at the start

// Texts. Each buffer holds date_label_size characters; a null buffer gives -1
// (a null pointer where the buffer is returned).
char* DATE_get_current_str(char* text);
// Standard label, such as "1230Z 25 DEC 99"; shorter when fields are unknown.
int DATE_make_label(const Date* date, char* text);
// Label of the time a forecast is valid for. `fhour` is a decimal composite
// whose last three digits are hours (800 and 900 count as 0).
int DATE_make_label_valid_time(int fhour, const Date* date, char* text);
// Length of a forecast ("6 hour", "3.5 day", "2 month"), the empty text for
// none; a non-zero flag counts half days from 12 hours on.
char* DATE_fhour_label(char* text, int fhour, int flag);
// Reads a UTC label back, also after other text. Returns 0; a text that is no
// label leaves the fields unknown, the month 0 and the year -6099.
int DATE_decode_label(const char* text, Date* date);
// 1 to 12; 0 for a text that is no month in one case ("Jan" is none).
int DATE_decode_month(const char* text);
// Digits by position: year (4), month, day, hour, minute (2 each). What is not
// there is left alone. Returns 0; -1 for a null text.
int DATE_decode_seq(const char* text, Date* date);
