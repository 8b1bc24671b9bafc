#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "base/time_stamp.h"
#include "interchange/parsers.h"
#include "zone.h"

namespace zorvel {
namespace {

using namespace std::chrono;

TimeStamp utc(int y, unsigned m, unsigned d, int h = 0, int min = 0) {
    return sys_days(year(y) / static_cast<int>(m) / static_cast<int>(d)) + hours(h) + minutes(min);
}

TEST(ParseIOSDate, ReadsTheClockOfTheZone) {
    struct Row {
        const char* zone;
        const char* text;
        TimeStamp time;
    };
    const std::vector<Row> rows = {
        {"UTC0", "Mar 5, 2016 3:42 PM", utc(2016, 3, 5, 15, 42)},
        {"UTC0", "Mar 5 2016 3:42 PM", utc(2016, 3, 5, 15, 42)},
        {"UTC0", "Mar ,+05,, ,20,16 +3:042 PM", utc(2016, 3, 5, 15, 42)},
        {"UTC0", "Dec 31, 1969 12:05 AM", utc(1969, 12, 31, 0, 5)},
        {"UTC0", "Jan 1, 2016 12:05 PM", utc(2016, 1, 1, 12, 5)},
        {"UTC0", "Jan 1, 2016 11:59 PM", utc(2016, 1, 1, 23, 59)},
        {"UTC0", "Jan 1, 2016 0:00 AM", utc(2016, 1, 1)},
        {"UTC0", "Jan 1, 2016 0:00 PM", utc(2016, 1, 1, 12)},
        {"UTC0", "Jan 1, 2016 23:10 AM", utc(2016, 1, 1, 23, 10)},
        {"UTC0", "Jan 1, 2016 -12:10 PM", utc(2016, 1, 1, 0, 10)},
        {"UTC0", "Feb 29, 2016 1:00 AM", utc(2016, 2, 29, 1)},
        {"UTC0", "Feb 29, 2000 1:00 AM", utc(2000, 2, 29, 1)},
        {"UTC0", "Jan 1, 1 1:00 AM", utc(1, 1, 1, 1)},
        {"UTC0", "Feb 29, 0 1:00 AM", utc(0, 2, 29, 1)},
        {"UTC0", "Mar 1, -5 1:00 AM", utc(-5, 3, 1, 1)},
        {"UTC0", "Jan 1, 99999 0:00 AM", utc(-1, 1, 1) + days(100000LL / 400 * 146097)},
        {easternZone, "Mar 5, 2016 3:42 PM", utc(2016, 3, 5, 20, 42)},
        {easternZone, "Jul 5, 2016 3:42 PM", utc(2016, 7, 5, 19, 42)},
        // Skipped: 2:30 is 3:30 of the new time.
        {easternZone, "Mar 13, 2016 1:59 AM", utc(2016, 3, 13, 6, 59)},
        {easternZone, "Mar 13, 2016 2:30 AM", utc(2016, 3, 13, 7, 30)},
        {easternZone, "Mar 13, 2016 3:00 AM", utc(2016, 3, 13, 7, 0)},
        // Twice: the first.
        {easternZone, "Nov 6, 2016 12:59 AM", utc(2016, 11, 6, 4, 59)},
        {easternZone, "Nov 6, 2016 1:30 AM", utc(2016, 11, 6, 5, 30)},
        {easternZone, "Nov 6, 2016 2:00 AM", utc(2016, 11, 6, 7, 0)},
        {lordHoweZone, "Oct 2, 2016 2:10 AM", utc(2016, 10, 1, 15, 40)},
        {lordHoweZone, "Apr 3, 2016 1:40 AM", utc(2016, 4, 2, 14, 40)},
        {"LINT-14", "Jan 1, 2016 0:10 AM", utc(2015, 12, 31, 10, 10)},
    };
    for (const Row& row : rows) {
        const Zone zone(row.zone);
        const Parsed<TimeStamp> date = parseIOSDate(row.text);
        ASSERT_TRUE(date.value) << row.text;
        EXPECT_EQ(*date.value, row.time) << row.zone << " " << row.text;
        EXPECT_TRUE(date.consoleLines.empty());
    }
}

TEST(ParseIOSDate, MessagesInTheirOrder) {
    const Zone zone("UTC0");
    const char* const pieces = "WARNING: incorrect number of components in date";
    const char* const month = "WARNING: unexpected string for month: ";
    const char* const day = "WARNING: unable to extract day";
    const char* const yearLine = "WARNING: unable to extract day year";
    const char* const time = "WARNING time does not have two parts";
    const char* const hour = "WARNING: could not extract hour";
    const char* const meridiem = "WARNING: neither AM nor PM";
    struct Row {
        std::string text;
        std::string line;  // empty: none
    };
    const std::vector<Row> rows = {
        {"", pieces},
        {"Mar 5, 2016 15:42", pieces},
        {"Mar 5,  2016 3:42 PM", pieces},
        {"Mar 5, 2016 3:42 PM ", pieces},
        {"Mar 5, 2016 3:42\u202FPM", pieces},
        {"mar 5, 2016 3:42 PM", month + std::string("mar")},
        {" 5, 2016 3:42 PM", month},
        {"March x, y z w", month + std::string("March")},
        {"Mar , 2016 3:42 PM", day},
        {"Mar 5. x 3:42 PM", day},
        {"Mar 5, , 3:42 PM", yearLine},
        {"Mar 5, 9223372036854775808 3 PM", yearLine},
        {"Mar 5, 2016 3 x", time},
        {"Mar 5, 2016 3:42:10 PM", time},
        {"Mar 5, 2016 :42 PM", hour},
        {"Mar 5, 2016 3,:x pm", hour},
        {"Mar 5, 2016 3:x pm", meridiem},
        {"Mar 5, 2016 3: PM", ""},
        {"Mar 5, 2016 3:4,2 PM", ""},
        {"Mar 5, 2016 3:60 PM", ""},
        {"Mar 5, 2016 3:-1 PM", ""},
        {"Mar 5, 2016 13:00 PM", ""},
        {"Mar 5, 2016 24:00 AM", ""},
        {"Mar 5, 2016 -1:00 AM", ""},
        {"Mar 5, 2016 9223372036854775807:00 PM", ""},
        {"Mar 5, 2016 -9223372036854775808:00 PM", ""},
        {"Mar 5, 2016 3:9223372036854775807 PM", ""},
        {"Mar 0, 2016 3:42 PM", ""},
        {"Mar 32, 2016 3:42 PM", ""},
        {"Apr 31, 2016 3:42 PM", ""},
        {"Feb 29, 2015 3:42 PM", ""},
        {"Feb 29, 1900 3:42 PM", ""},
        {"Mar 9223372036854775807, 2016 3:42 PM", ""},
        {"Mar 5, 9223372036854775807 3:42 PM", ""},
        {"Jan 6 -290484 0:1 PM", ""},
        {"Jan 6 294484 0:1 PM", ""},
        {"Mar 5, -9223372036854775808 3:42 PM", ""},
        {"Mar 5, 300000 3:42 PM", ""},
    };
    for (const Row& row : rows) {
        const Parsed<TimeStamp> date = parseIOSDate(row.text);
        EXPECT_FALSE(date.value) << row.text;
        const std::vector<std::string> lines =
            row.line.empty() ? std::vector<std::string>{} : std::vector<std::string>{row.line};
        EXPECT_EQ(date.consoleLines, lines) << row.text;
    }
}

TEST(LocalTime, EveryDayOfTheCalendarHasItsPlace) {
    const Zone zone("UTC0");
    std::mt19937 random(1);
    for (int i = 0; i < 20'000; ++i) {
        const sys_days day{days(static_cast<int>(random() % 22'000'000) - 11'000'000)};
        const year_month_day date(day);
        const auto local =
            localTime({int(date.year()), unsigned(date.month()), unsigned(date.day()), 23, 59});
        ASSERT_EQ(local, TimeStamp(day + hours(23) + minutes(59))) << int(date.year());
        const auto next = static_cast<int>(unsigned(date.day())) + 1;
        const bool exists = (date.year() / date.month() / next).ok();
        ASSERT_EQ(localTime({int(date.year()), unsigned(date.month()), next}).has_value(), exists);
    }
}

TEST(LocalTime, ShowsTheSameClockThroughTheSystem) {
    for (const char* rules : {easternZone, lordHoweZone, "CET-1CEST,M3.5.0,M10.5.0/3"}) {
        const Zone zone(rules);
        tzset();
        // Each quarter of an hour of a year, as the system shows it, leads back to itself, save
        // where the clock shows the same twice.
        const TimeStamp start = utc(2016, 1, 1);
        int earlier = 0;
        for (int quarter = 0; quarter < 366 * 96; ++quarter) {
            const TimeStamp moment = start + minutes(15 * quarter);
            const time_t seconds =
                duration_cast<std::chrono::seconds>(moment.time_since_epoch()).count();
            tm shown{};
            localtime_r(&seconds, &shown);
            const auto back = localTime({shown.tm_year + 1900, shown.tm_mon + 1, shown.tm_mday,
                                         shown.tm_hour, shown.tm_min});
            ASSERT_TRUE(back && *back <= moment) << quarter;
            earlier += *back != moment;
        }
        EXPECT_EQ(earlier, rules == lordHoweZone ? 2 : 4) << rules;
    }
}

TEST(LocalTime, ManyThreadsReadOneZone) {
    const Zone zone(easternZone);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 2000; ++round) {
                EXPECT_EQ(parseIOSDate("Mar 13, 2016 2:30 AM").value, utc(2016, 3, 13, 7, 30));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace zorvel
