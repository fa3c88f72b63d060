// Dates: seconds and back, repairs, days of the year, labels with and without
// a zone.
#include "date.h"

#include "date_text.h"
#include "zyr.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string label_of(const Date& date) {
    char text[date_label_size];
    EXPECT_EQ(DATE_make_label(&date, text), 0);
    return text;
}

TEST(Dates, SecondsAndRepairs) {
    struct Row {
        int year, month, day, hour, min;
        long seconds;
        const char* repaired;
    };
    const Row rows[] = {
        {1970,    1,       1,       0,       0,       0,          "1970 1 1 0 0"    },
        {1972,    2,       29,      0,       0,       68169600,   "1972 2 29 0 0"   },
        {99,      12,      31,      23,      59,      946684740,  "1999 12 31 23 59"},
        {49,      1,       1,       0,       0,       2493072000, "2049 1 1 0 0"    },
        {missing, missing, missing, missing, missing, 315532800,  "1980 1 1 0 0"    },
        {2000,    13,      32,      24,      60,      946684800,  "2000 1 1 0 0"    },
        {2000,    1,       0,       0,       0,       946598400,  "2000 1 0 0 0"    }, // day 0 stands
        {2100,    3,       1,       0,       0,       4107628800, "2100 3 1 0 0"    }, // a leap year here
    };
    for (const Row& row : rows) {
        Date date = date_of(row.year, row.month, row.day, row.hour, row.min);
        EXPECT_EQ(DATE_num_sec(&date), row.seconds) << row.repaired;
        EXPECT_EQ(text_of(date), row.repaired);
    }
    const std::time_t beyond = 9223372036854775807;
    Date date = date_of(2000, 1, 1);
    EXPECT_EQ(DATE_get_gmdate(&beyond, &date), -1);
    EXPECT_EQ(text_of(date), "- - - - -");
}

TEST(Dates, EveryDayThereAndBack) {
    constexpr std::time_t one_day = 86400;
    for (std::time_t day = 0; day < 4102444800L; day += one_day) {
        Date date;
        DATE_get_gmdate(&day, &date);
        int month = 0;
        int mday = 0;
        int jday = 0;
        DATE_julian_monday(date.year, date.jday, &month, &mday);
        DATE_monday_julian(date.year, date.month, date.day, &jday);
        ASSERT_EQ(DATE_num_sec(&date), day);
        ASSERT_EQ(month * 100 + mday, date.month * 100 + date.day) << day;
        ASSERT_EQ(jday, date.jday) << day;
        ASSERT_EQ(date.wday, (day / one_day + 4) % 7) << day;
    }
}

TEST(Dates, DaysOutOfRange) {
    int month = 0;
    int day = 0;
    for (const auto& [jday, expected] : {std::pair(0, 101), std::pair(999, 1231)}) {
        DATE_julian_monday(2001, jday, &month, &day);
        EXPECT_EQ(month * 100 + day, expected);
    }
    DATE_monday_julian(2001, 99, 5, &day);
    EXPECT_EQ(day, 339);
    const Date* shared = DATE_to_struct(2001, 2, 3, 4, 5);
    EXPECT_EQ(DATE_to_struct(2002, 2, 3, 4, 5), shared);
    EXPECT_EQ(text_of(*shared) + ":" + std::to_string(shared->sec), "2002 2 3 4 5:0");
}

TEST(Dates, Labels) {
    EXPECT_EQ(label_of(date_of(1999, missing, missing)), "99");
    EXPECT_EQ(label_of(date_of(1999, 12, missing)), "DEC 99");
    EXPECT_EQ(label_of(date_of(1999, 12, 5, 6)), "06Z  5 DEC 99");
    EXPECT_EQ(label_of(date_of(1999, 12, 0, 12, 30)), "1230Z  0 DEC 99"); // day 0 stands
    EXPECT_EQ(label_of(date_of(-7, 13, 40, 30, 70)), "0000Z  1 JAN 80");
    EXPECT_EQ(DATE_make_label(nullptr, nullptr), -1);
}

TEST(Dates, ValidTimesAndForecasts) {
    const auto valid = [](int fhour, int hour, int min = missing) {
        const Date date = date_of(1999, 12, 31, hour, min);
        char text[date_label_size];
        DATE_make_label_valid_time(fhour, &date, text);
        return std::string(text);
    };
    EXPECT_EQ(valid(6, 20), "2Z SAT  1 JAN 00");
    EXPECT_EQ(valid(12006, 20), "2Z SAT  1 JAN 00"); // the last three digits count
    EXPECT_EQ(valid(900, 20), "20Z FRI 31 DEC 99");
    EXPECT_EQ(valid(24, missing), "SAT  1 JAN 00");
    const auto length = [](int fhour, int flag) {
        char text[date_label_size];
        return std::string(DATE_fhour_label(text, fhour, flag)) + ';';
    };
    EXPECT_EQ(length(0, 0) + length(missing, 1) + length(6, 0) + length(24, 0) + length(66, 0),
              ";;6 hour;24 hour;66 hour;");
    EXPECT_EQ(length(84, 0) + length(72, 0) + length(803, 0) + length(902, 0),
              "3.5 day;3 day;3 day;2 month;");
}

TEST(Dates, LabelsReadBack) {
    const auto read = [](const char* text) {
        Date date = date_of(1, 1, 1, 1, 1);
        EXPECT_EQ(DATE_decode_label(text, &date), 0);
        return text_of(date);
    };
    EXPECT_EQ(read("radar at 1230Z 25 dec 05"), "2005 12 25 12 30");
    EXPECT_EQ(read("at  930Z  5 MAY 99"), "1999 5 5 9 30");
    EXPECT_EQ(read("valid 06Z 25 AUG 49"), "2049 8 25 6 -");
    EXPECT_EQ(read("12Z 25 Jan 99"), "1999 0 25 12 -");
    EXPECT_EQ(read(""), "-6099 0 - - -");
    Date date;
    DATE_decode_label("x 12:30:45Z 25 JUL 99", &date);
    EXPECT_EQ(text_of(date) + ":" + std::to_string(date.sec), "1999 7 25 12 30:45");
}

TEST(Dates, DigitsAndMonthTexts) {
    Date date;
    EXPECT_EQ(DATE_decode_seq("201005011", &date), 0);
    EXPECT_EQ(text_of(date), "2010 5 1 1 -");
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(DATE_decode_month(DATE_month(month)), month);
        EXPECT_EQ(DATE_decode_month(DATE_month_lower(month)), month);
    }
    EXPECT_STREQ(DATE_month(13), "");
}

// The last case: a zone stays for the run.
TEST(Dates, LabelsInAZone) {
    DATE_set_TZ("-CST:-6");
    EXPECT_EQ(DATE_get_tz_off(), -21600);
    EXPECT_STREQ(DATE_get_tz_str(), " CST");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 0, 30)), "6:30 PM CST [0030Z] 31 DEC 99");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 6, 5)), "12:05 AM CST [0605Z]  1 JAN 00");
    // An unknown hour gets one: the moment is known once it has been moved.
    EXPECT_EQ(label_of(date_of(2000, 1, 1)), "6:00 PM CST [0000Z] 31 DEC 99");
    DATE_set_TZ("+EASTERN:5.5");
    EXPECT_STREQ(DATE_get_tz_str(), " EAST");
    EXPECT_EQ(DATE_get_tz_off(), -21600); // no offset is read after five letters
    DATE_set_TZ("+UT:0");
    EXPECT_EQ(label_of(date_of(2000, 1, 1, 12)), "12 PM UT  1 JAN 00");
    DATE_set_TZ("X:1e30"); // no offset that a clock can have
    EXPECT_EQ(DATE_get_tz_off(), 0);
    EXPECT_EQ(DATE_set_TZ(nullptr), -1);
}

} // namespace
