// Exports of the phone app, and their dates in the computer's time zone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "interchange/parsers.h"
#include "shown.h"

namespace zorvel {
namespace {

using namespace std::chrono;
using testing::ElementsAre;
using testing::IsEmpty;

// Rules are spelled out (POSIX), so that no time zone database is needed.
constexpr const char* easternZone = "EST5EDT,M3.2.0,M11.1.0";
constexpr const char* lordHoweZone = "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0";

// The C library is not told of a change of the zone: the program must call tzset().
class PhoneApp : public testing::Test {
  protected:
    PhoneApp() { setZone("UTC0"); }
    ~PhoneApp() override {
        unsetenv("TZ");
        tzset();
    }
    static void setZone(const char* rules) { setenv("TZ", rules, 1); }
};

TimeStamp utc(int y, unsigned m, unsigned d, int h = 0, int min = 0) {
    return sys_days(year(y) / static_cast<int>(m) / static_cast<int>(d)) + hours(h) + minutes(min);
}

TEST_F(PhoneApp, DateReadsTheClockOfTheZone) {
    const struct {
        const char* zone;
        const char* text;
        TimeStamp time;
    } rows[] = {
        {"UTC0", "Mar 5, 2016 3:42 PM", utc(2016, 3, 5, 15, 42)},
        {"UTC0", "Mar ,+05,, ,20,16 +3:042 PM", utc(2016, 3, 5, 15, 42)},
        {"UTC0", "Dec 31, 1969 12:05 AM", utc(1969, 12, 31, 0, 5)},
        {"UTC0", "Jan 1, 2016 12:05 PM", utc(2016, 1, 1, 12, 5)},
        {"UTC0", "Jan 1, 2016 0:00 AM", utc(2016, 1, 1)},
        {"UTC0", "Jan 1, 2016 0:00 PM", utc(2016, 1, 1, 12)},
        {"UTC0", "Jan 1, 2016 23:10 AM", utc(2016, 1, 1, 23, 10)},
        {"UTC0", "Jan 1, 2016 -12:10 PM", utc(2016, 1, 1, 0, 10)},
        {"UTC0", "Feb 29, 2016 1:00 AM", utc(2016, 2, 29, 1)},
        {"UTC0", "Jan 1, 1 1:00 AM", utc(1, 1, 1, 1)},
        {"UTC0", "Feb 29, 0 1:00 AM", utc(0, 2, 29, 1)},
        {"UTC0", "Mar 1, -5 1:00 AM", utc(-5, 3, 1, 1)},
        {"UTC0", "Jan 1, 99999 0:00 AM", utc(-1, 1, 1) + days(100000LL / 400 * 146097)},
        {easternZone, "Mar 5, 2016 3:42 PM", utc(2016, 3, 5, 20, 42)},
        // Skipped: 2:30 is 3:30 of the new time.
        {easternZone, "Mar 13, 2016 2:30 AM", utc(2016, 3, 13, 7, 30)},
        // Twice: the first.
        {easternZone, "Nov 6, 2016 12:59 AM", utc(2016, 11, 6, 4, 59)},
        {easternZone, "Nov 6, 2016 1:30 AM", utc(2016, 11, 6, 5, 30)},
        {easternZone, "Nov 6, 2016 2:00 AM", utc(2016, 11, 6, 7, 0)},
        {lordHoweZone, "Oct 2, 2016 2:10 AM", utc(2016, 10, 1, 15, 40)},
        {lordHoweZone, "Apr 3, 2016 1:40 AM", utc(2016, 4, 2, 14, 40)},
        {"LINT-14", "Jan 1, 2016 0:10 AM", utc(2015, 12, 31, 10, 10)},
    };
    for (const auto& row : rows) {
        setZone(row.zone);
        const Parsed<TimeStamp> date = parseIOSDate(row.text);
        ASSERT_TRUE(date.value) << row.text;
        EXPECT_EQ(*date.value, row.time) << row.zone << " " << row.text;
        EXPECT_TRUE(date.consoleLines.empty());
    }
}

TEST_F(PhoneApp, DateMessagesInTheirOrder) {
    const std::string pieces = "WARNING: incorrect number of components in date";
    const std::string yearLine = "WARNING: unable to extract day year";
    const std::string time = "WARNING time does not have two parts";
    const std::pair<const char*, std::string> rows[] = {
        {"", pieces},
        {"Mar 5,  2016 3:42 PM", pieces},
        {"Mar 5, 2016 3:42\u202FPM", pieces},
        {"mar 5, 2016 3:42 PM", "WARNING: unexpected string for month: mar"},
        {"March x, y z w", "WARNING: unexpected string for month: March"},
        {"Mar , 2016 3:42 PM", "WARNING: unable to extract day"},
        {"Mar 5, , 3:42 PM", yearLine},
        {"Mar 5, 9223372036854775808 3 PM", yearLine},
        {"Mar 5, 2016 3 x", time},
        {"Mar 5, 2016 3:42:10 PM", time},
        {"Mar 5, 2016 3,:x pm", "WARNING: could not extract hour"},
        {"Mar 5, 2016 3:x pm", "WARNING: neither AM nor PM"}};
    for (const auto& [text, message] : rows) {
        const Parsed<TimeStamp> date = parseIOSDate(text);
        EXPECT_FALSE(date.value) << text;
        EXPECT_THAT(date.consoleLines, ElementsAre(message)) << text;
    }
    // Not on the clock or in the calendar, or beyond the range of time stamps.
    for (const char* text :
         {"Mar 5, 2016 3: PM", "Mar 5, 2016 3:60 PM", "Mar 5, 2016 3:-1 PM", "Mar 5, 2016 24:00 AM",
          "Mar 5, 2016 -1:00 AM", "Mar 5, 2016 9223372036854775807:00 PM",
          "Mar 5, 2016 3:9223372036854775807 PM", "Apr 31, 2016 3:42 PM", "Feb 29, 1900 3:42 PM",
          "Mar 9223372036854775807, 2016 3:42 PM", "Mar 5, 9223372036854775807 3:42 PM",
          "Jan 6 -290484 0:1 PM", "Jan 6 294484 0:1 PM", "Mar 5, -9223372036854775808 3:42 PM"}) {
        const Parsed<TimeStamp> date = parseIOSDate(text);
        EXPECT_FALSE(date.value || !date.consoleLines.empty()) << text;
    }
}

TEST_F(PhoneApp, LocalTimeEveryDayOfTheCalendarHasItsPlace) {
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

TEST_F(PhoneApp, LocalTimeShowsTheSameClockThroughTheSystem) {
    for (const char* rules : {easternZone, lordHoweZone, "CET-1CEST,M3.5.0,M10.5.0/3"}) {
        setZone(rules);
        tzset();
        // Each quarter of an hour of a year, as the system shows it, leads back to itself, except
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

std::string header(const std::string& taxa) {
    return "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\"," + taxa + "\n";
}

std::string line(const std::string& tail, const std::string& date = "Mar 5, 2016 3:42 PM") {
    return "\"North\",\"" + date + "\",\"wet\"," + tail + "\n";
}

TEST_F(PhoneApp, WholeRecords) {
    setZone(easternZone);
    const std::string taxa = header("\"Abies \"alba\"\",\" Picea, wet\",\"\",Larix");
    const auto parsed = parseIOSFile(
        taxa +
        "\"No\"rth\",\"Mar 5, 2016 3:42 PM\",\"wet, cold\",47.61,-122.33,4,0,7,-3\n"
        "\"\",\"Dec 31, 20\"15 12:00 AM\",\"\",1e2,-inf, 1 2 ,+3,-0,9223372036854775807\n"
        "\"None\",\"Dec 31, 2015 12:00 AM\",\"\",0,0,0,0,0,0\n"
        "lost for want of a line break");
    EXPECT_EQ(shown(parsed),
              "North: Abies alba=4 =7 [47.61,-122.33] [wet, cold] [dated]; "
              ": Abies alba=12  Picea, wet=3 Larix=9223372036854775807 [100,-inf] [dated]; "
              "None: [dated]");
    EXPECT_EQ(parsed.value->front().timeStamp, TimeStamp(std::chrono::seconds(1457210520)));
    EXPECT_EQ(shown(parseIOSFile(taxa)) + shown(parseIOSFile(taxa + "lost line")), "");
}

TEST_F(PhoneApp, ProblemsWithTheirPlace) {
    const std::string good = line("1,2,4,5");
    const std::string top = header("\"A\",\"B\"");
    const std::string items = "WARNING: incorrect number of items in data line";
    const std::string date = "WARNING: could not create date";
    const std::string few = "WARNING: too few numerial components";
    const std::string species =
        "WARNING: number of species in sample doesn't equal the expected number of species";
    const std::string latitude = "WARNING: non-numerical value of latitude";
    const std::string longitude = "WARNING: non-numerical value of longitude";
    const std::string abundance = "WARNING: non-integer abundance detected";
    const std::pair<std::string, std::string> rows[] = {
        {"", "1:0 | WARNING: fewer than six components on first line"},
        {"\"a\",\"b\",\"c\",\"d\",\"e\"\n" + good,
         "1:0 | WARNING: fewer than six components on first line"},
        {top.substr(0, top.size() - 1), "0:0 | WARNING: no data lines detected"},
        {top + "\"North\",\"wet\",1,2,4,5\n", "2:0 | " + items},
        {top + "\"x\"," + good, "2:0 | " + items},
        {top + good + "\n" + good, "3:0 | " + items},
        {top + good + line("1,2,4,5", "mar 5, 2016 3:42 PM"),
         "3:2 | WARNING: unexpected string for month: mar | " + date},
        {top + line("1,2,4,5", "Apr 31, 2016 3:42 PM"), "2:2 | " + date},
        {top + line("1,2"), "2:0 | " + few},
        // The date comes first, then the longitude, then the count.
        {top + line("1,2", ""), "2:2 | WARNING: incorrect number of components in date | " + date},
        {top + line("N47,W122,4,5"), "2:4 | " + latitude},
        {top + line("1, 2,4,5"), "2:5 | " + longitude},
        {top + line("1,x,4"), "2:5 | " + longitude},
        {top + line("1,2,x"), "2:0 | " + species},
        {top + line("1,2,x,5,6"), "2:0 | " + species},
        {top + line("1,2,4,2.5"), "2:7 | " + abundance},
        {top + line("1,2,,5"), "2:6 | " + abundance},
        {top + line("1,2,4,\t5"), "2:7 | " + abundance},
        {top + line("1,2,4,9223372036854775808"), "2:7 | " + abundance},
    };
    for (const auto& [text, problem] : rows)
        EXPECT_EQ(shown(parseIOSFile(text)), "none @" + problem) << text;
}

TEST_F(PhoneApp, AdviceNamesCarriageReturnsAndEmptyLines) {
    std::string text = header("\"A\"") + line("1,2,4");
    EXPECT_NE(parseIOSFile(text + "\n\n").advice.find("line is empty"), std::string::npos);
    EXPECT_EQ(parseIOSFile(text + "North\n").advice, "");
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
        text.replace(at, 1, "\r\n");
    }
    const auto parsed = parseIOSFile(text);
    EXPECT_THAT(parsed.consoleLines,
                ElementsAre("WARNING: incorrect number of items in data line"));
    EXPECT_NE(parsed.advice.find("CR LF"), std::string::npos);
}

// A form that is quadratic would need hours.
TEST_F(PhoneApp, HostileTextsTakeLinearTime) {
    constexpr std::size_t many = 300'000;
    std::string taxa = "\"A\"";
    std::string tail = "1,2,0";
    for (std::size_t i = 1; i < many; ++i) {
        taxa += ",\"\"";
        tail += ",0";
    }
    EXPECT_THAT(parseIOSFile(header(taxa) + line(tail)).value.value().front().taxa, IsEmpty());
    const std::string top = header("\"A\"");
    const std::string quotes(10 * many, '"');
    for (const std::string& text : {quotes, top + quotes + "\n", top + std::string(many, '\n'),
                                    top + line("1,2," + std::string(10 * many, ' '))}) {
        EXPECT_FALSE(parseIOSFile(text).value);
    }
}

}  // namespace
}  // namespace zorvel
