// Dates: seconds and back, repairs, days of the year, labels with and without
// a zone.
#include "date.h"

#include "zyr.h"

#include <gtest/gtest.h>

#include <string>

namespace {

Date date_of(int year, int month, int day, int hour = missing, int min = missing) {
    return {.year = year, .month = month, .day = day, .hour = hour, .min = min};
}

std::string label_of(const Date& date) {
    char text[date_label_size];
    EXPECT_EQ(DATE_make_label(&date, text), 0);
    return text;
}

TEST(Dates, SecondsAndRepairs) {
    struct Row {
        int year, month, day, hour, min;
        long seconds;
        int year_after, month_after, day_after, hour_after, min_after;
    };
    const Row rows[] = {
        {1970,    1,       1,       0,       0,       0,          1970, 1,  1,  0,  0 },
        {1972,    3,       1,       0,       0,       68256000,   1972, 3,  1,  0,  0 },
        {1972,    2,       29,      0,       0,       68169600,   1972, 2,  29, 0,  0 },
        {99,      12,      31,      23,      59,      946684740,  1999, 12, 31, 23, 59},
        {49,      1,       1,       0,       0,       2493072000, 2049, 1,  1,  0,  0 },
        {150,     1,       1,       0,       0,       2524608000, 2050, 1,  1,  0,  0 },
        {missing, missing, missing, missing, missing, 315532800,  1980, 1,  1,  0,  0 },
        {2000,    13,      32,      24,      60,      946684800,  2000, 1,  1,  0,  0 },
        {2000,    1,       0,       0,       0,       946598400,  2000, 1,  0,  0,  0 }, // day 0 stands
        {2100,    3,       1,       0,       0,       4107628800, 2100, 3,  1,  0,  0 }, // a leap year here
    };
    for (const Row& row : rows) {
        Date date = date_of(row.year, row.month, row.day, row.hour, row.min);
        EXPECT_EQ(DATE_num_sec(&date), row.seconds) << row.seconds;
        EXPECT_EQ(date.year, row.year_after) << row.seconds;
        EXPECT_EQ(date.month, row.month_after) << row.seconds;
        EXPECT_EQ(date.day, row.day_after) << row.seconds;
        EXPECT_EQ(date.hour, row.hour_after) << row.seconds;
        EXPECT_EQ(date.min, row.min_after) << row.seconds;
        EXPECT_EQ(date.sec, 0) << row.seconds;
    }
    // Every day from 1970 to 2099 goes there and back.
    for (std::time_t day = 0; day < 4102444800; day += 86400) {
        Date date;
        ASSERT_EQ(DATE_get_gmdate(&day, &date), 0);
        ASSERT_EQ(DATE_num_sec(&date), day);
        int month = 0;
        int mday = 0;
        int jday = 0;
        DATE_julian_monday(date.year, date.jday, &month, &mday);
        DATE_monday_julian(date.year, date.month, date.day, &jday);
        ASSERT_EQ(month * 100 + mday, date.month * 100 + date.day) << day;
        ASSERT_EQ(jday, date.jday) << day;
        ASSERT_EQ(date.wday, (day / 86400 + 4) % 7);
    }
    const std::time_t beyond = 9223372036854775807;
    Date date = date_of(2000, 1, 1);
    EXPECT_EQ(DATE_get_gmdate(&beyond, &date), -1);
    EXPECT_EQ(date.year, missing);
}

TEST(Dates, DaysOutOfRange) {
    struct Row {
        int year, jday, month, day;
    };
    const Row rows[] = {
        {2001, 60,  3,  1 },
        {2000, 60,  2,  29},
        {2001, 0,   1,  1 },
        {2001, 999, 12, 31},
        {2000, 366, 12, 31},
        {1900, 60,  3,  1 }
    };
    for (const Row& row : rows) {
        int month = 0;
        int day = 0;
        DATE_julian_monday(row.year, row.jday, &month, &day);
        EXPECT_EQ(month, row.month) << row.jday;
        EXPECT_EQ(day, row.day) << row.jday;
    }
    int jday = 0;
    DATE_monday_julian(2001, 99, 5, &jday);
    EXPECT_EQ(jday, 339);
    const Date* shared = DATE_to_struct(2001, 2, 3, 4, 5);
    EXPECT_EQ(shared->sec, 0);
    EXPECT_EQ(DATE_to_struct(2002, 2, 3, 4, 5), shared);
    EXPECT_EQ(shared->year, 2002);
}

TEST(Dates, Labels) {
    EXPECT_EQ(label_of(date_of(1999, missing, missing)), "99");
    EXPECT_EQ(label_of(date_of(1999, 12, missing)), "DEC 99");
    EXPECT_EQ(label_of(date_of(1999, 12, 25)), "25 DEC 99");
    EXPECT_EQ(label_of(date_of(1999, 12, 5, 6)), "06Z  5 DEC 99");
    EXPECT_EQ(label_of(date_of(1999, 12, 25, 12, 30)), "1230Z 25 DEC 99");
    EXPECT_EQ(label_of(date_of(-7, 13, 40, 30, 70)), "0000Z  1 JAN 80");
    EXPECT_EQ(DATE_make_label(nullptr, nullptr), -1);
}

TEST(Dates, ValidTimesAndForecasts) {
    struct Row {
        int fhour;
        Date date;
        const char* expected;
    };
    const Row rows[] = {
        {6,                   date_of(1999, 12,   31,                           20),         "2Z SAT  1 JAN 00"},
        {12006,                   date_of(1999,                           12, 31, 20),          "2Z SAT  1 JAN 00"},
        {missing, date_of(1999,             12,           31,                           20,               30), "20Z FRI 31 DEC 99"},
        {900,                 date_of(1999,                          12,           31,             20),        "20Z FRI 31 DEC 99"},
        {24,                 date_of(1999,  12,31),"SAT  1 JAN 00"},
    };
    for (const Row& row : rows) {
        char text[date_label_size];
        DATE_make_label_valid_time(row.fhour, &row.date, text);
        EXPECT_STREQ(text, row.expected) << row.fhour;
    }
    struct Length {
        int fhour, flag;
        const char* expected;
    };
    const Length lengths[] = {
        {0,       0, ""       },
        {missing, 1, ""       },
        {6,       0, "6 hour" },
        {84,      0, "3.5 day"},
        {72,      0, "3 day"  },
        {803,     0, "3 day"  },
        {902,     0, "2 month"},
        {24,      0, "24 hour"},
        {24,      1, "1 day"  },
        {36,      1, "1.5 day"},
        {18,      1, "18 hour"},
        {66,      0, "66 hour"}
    };
    for (const Length& row : lengths) {
        char text[date_label_size];
        EXPECT_STREQ(DATE_fhour_label(text, row.fhour, row.flag), row.expected) << row.fhour;
    }
}

TEST(Dates, LabelsReadBack) {
    struct Row {
        const char* text;
        int year, month, day, hour, min, sec;
    };
    const Row rows[] = {
        {"12Z 25 DEC 99",            1999,  12, 25,      12,      missing, missing},
        {"radar at 1230Z 25 dec 05", 2005,  12, 25,      12,      30,      missing},
        {"at  930Z  5 MAY 99",       1999,  5,  5,       9,       30,      missing},
        {"x 12:30:45Z 25 JUL 99",    1999,  7,  25,      12,      30,      45     },
        {"valid 06Z 25 AUG 49",      2049,  8,  25,      6,       missing, missing},
        {"12Z 25 Jan 99",            1999,  0,  25,      12,      missing, missing},
        {"no label",                 -6099, 0,  missing, missing, missing, missing},
        {"",                         -6099, 0,  missing, missing, missing, missing},
    };
    for (const Row& row : rows) {
        Date date = date_of(1, 1, 1, 1, 1);
        EXPECT_EQ(DATE_decode_label(row.text, &date), 0);
        EXPECT_EQ(date.year, row.year) << row.text;
        EXPECT_EQ(date.month, row.month) << row.text;
        EXPECT_EQ(date.day, row.day) << row.text;
        EXPECT_EQ(date.hour, row.hour) << row.text;
        EXPECT_EQ(date.min, row.min) << row.text;
        EXPECT_EQ(date.sec, row.sec) << row.text;
    }
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(DATE_decode_month(DATE_month(month)), month);
        EXPECT_EQ(DATE_decode_month(DATE_month_lower(month)), month);
    }
    EXPECT_EQ(DATE_decode_month("J"), 0);
    EXPECT_EQ(DATE_decode_month("Feb"), 2);
    EXPECT_STREQ(DATE_month(13), "");
    Date date;
    EXPECT_EQ(DATE_decode_seq("201005011", &date), 0);
    EXPECT_EQ(date.year * 10000 + date.month * 100 + date.day, 20100501);
    EXPECT_EQ(date.hour, 1);
    EXPECT_EQ(date.min, missing);
    EXPECT_EQ(DATE_decode_seq(nullptr, &date), -1);
}

// The last case: a zone stays for the run.
TEST(Dates, LabelsInAZone) {
    DATE_set_TZ("-CST:-6");
    EXPECT_EQ(DATE_get_tz_off(), -21600);
    EXPECT_STREQ(DATE_get_tz_str(), " CST");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 0, 30)), "6:30 PM CST [0030Z] 31 DEC 99");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 6, 5)), "12:05 AM CST [0605Z]  1 JAN 00");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 18, 5)), "12:05 PM CST [1805Z]  1 JAN 00");
    // An unknown hour gets one: the moment is known once it has been moved.
    EXPECT_EQ(label_of(date_of(2000, 1, 1)), "6:00 PM CST [0000Z] 31 DEC 99");
    DATE_set_TZ("+EASTERN:5.5");
    EXPECT_STREQ(DATE_get_tz_str(), " EAST");
    EXPECT_EQ(DATE_get_tz_off(), -21600); // no offset is read behind five letters
    DATE_set_TZ("+UT:0");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 11)), "11 AM UT  1 JAN 00");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 12)), "12 PM UT  1 JAN 00");
    DATE_set_TZ("X:1e30"); // no offset that a clock can have
    EXPECT_EQ(DATE_get_tz_off(), 0);
    EXPECT_EQ(DATE_set_TZ(nullptr), -1);
}

} // namespace
