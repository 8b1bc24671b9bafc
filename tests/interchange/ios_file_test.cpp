// Exports of the phone app, and their dates in the computer's time zone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "interchange/parsers.h"

namespace zorvel {
namespace {

using namespace std::chrono;
using testing::ElementsAre;
using testing::IsEmpty;

// The process's time zone, for as long as this lives. Rules are spelled out (POSIX), so that no
// time zone database is needed. The C library is not told: the program must call tzset().
constexpr const char* easternZone = "EST5EDT,M3.2.0,M11.1.0";
constexpr const char* lordHoweZone = "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0";

class Zone {
  public:
    explicit Zone(const char* rules) {
        if (const char* before = std::getenv("TZ")) before_ = before;
        setenv("TZ", rules, 1);
    }
    ~Zone() {
        if (before_) {
            setenv("TZ", before_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

  private:
    std::optional<std::string> before_;
};

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
        {"Mar 5,  2016 3:42 PM", pieces},
        {"Mar 5, 2016 3:42\u202FPM", pieces},
        {"mar 5, 2016 3:42 PM", month + std::string("mar")},
        {"March x, y z w", month + std::string("March")},
        {"Mar , 2016 3:42 PM", day},
        {"Mar 5, , 3:42 PM", yearLine},
        {"Mar 5, 9223372036854775808 3 PM", yearLine},
        {"Mar 5, 2016 3 x", time},
        {"Mar 5, 2016 3:42:10 PM", time},
        {"Mar 5, 2016 3,:x pm", hour},
        {"Mar 5, 2016 3:x pm", meridiem},
        {"Mar 5, 2016 3: PM", ""},
        {"Mar 5, 2016 3:60 PM", ""},
        {"Mar 5, 2016 3:-1 PM", ""},
        {"Mar 5, 2016 24:00 AM", ""},
        {"Mar 5, 2016 -1:00 AM", ""},
        {"Mar 5, 2016 9223372036854775807:00 PM", ""},
        {"Mar 5, 2016 3:9223372036854775807 PM", ""},
        {"Apr 31, 2016 3:42 PM", ""},
        {"Feb 29, 1900 3:42 PM", ""},
        {"Mar 9223372036854775807, 2016 3:42 PM", ""},
        {"Mar 5, 9223372036854775807 3:42 PM", ""},
        {"Jan 6 -290484 0:1 PM", ""},
        {"Jan 6 294484 0:1 PM", ""},
        {"Mar 5, -9223372036854775808 3:42 PM", ""},
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

std::string header(const std::string& taxa) {
    return "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\"," + taxa + "\n";
}

std::string line(const std::string& tail, const std::string& date = "Mar 5, 2016 3:42 PM") {
    return "\"North\",\"" + date + "\",\"wet\"," + tail + "\n";
}

std::vector<std::string> taxaOf(const MockCensus& census) {
    std::vector<std::string> texts;
    for (const MockTaxon& taxon : census.taxa) {
        texts.push_back(taxon.name.str() + "=" + std::to_string(taxon.abundance));
    }
    return texts;
}

TEST(ParseIOSFile, WholeRecords) {
    const Zone zone(easternZone);
    const auto parsed = parseIOSFile(
        header("\"Abies \"alba\"\",\" Picea, wet\",\"\",Larix") +
        "\"No\"rth\",\"Mar 5, 2016 3:42 PM\",\"wet, cold\",47.61,-122.33,4,0,7,-3\n"
        "\"\",\"Dec 31, 20\"15 12:00 AM\",\"\",1e2,-inf, 1 2 ,+3,-0,9223372036854775807\n"
        "\"None\",\"Dec 31, 2015 12:00 AM\",\"\",0,0,0,0,0,0\n"
        "lost for want of a line break");
    ASSERT_TRUE(parsed.value);
    EXPECT_THAT(parsed.consoleLines, IsEmpty());
    ASSERT_EQ(parsed.value->size(), 3U);
    const MockCensus& first = (*parsed.value)[0];
    EXPECT_EQ(first.name, "North");
    EXPECT_EQ(first.notes, "wet, cold");
    EXPECT_EQ(first.latitude, 47.61);
    EXPECT_EQ(first.longitude, -122.33);
    EXPECT_EQ(first.timeStamp, TimeStamp(std::chrono::seconds(1457210520)));
    EXPECT_THAT(taxaOf(first), ElementsAre("Abies alba=4", "=7"));
    const MockCensus& second = (*parsed.value)[1];
    EXPECT_EQ(second.name, "");
    EXPECT_EQ(second.notes, "");
    EXPECT_EQ(second.latitude, 100);
    EXPECT_EQ(second.longitude, -std::numeric_limits<double>::infinity());
    EXPECT_THAT(taxaOf(second),
                ElementsAre("Abies alba=12", " Picea, wet=3", "Larix=9223372036854775807"));
    EXPECT_THAT(taxaOf((*parsed.value)[2]), IsEmpty());
}

TEST(ParseIOSFile, FilesWithoutCensuses) {
    for (const std::string& text : {header("\"A\""), header("\"A\"") + "lost line"}) {
        const auto parsed = parseIOSFile(text);
        ASSERT_TRUE(parsed.value);
        EXPECT_THAT(*parsed.value, IsEmpty());
        EXPECT_THAT(parsed.consoleLines, IsEmpty());
    }
}

TEST(ParseIOSFile, ProblemsWithTheirPlace) {
    const Zone zone("UTC0");
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
    struct Row {
        const char* what;
        std::string text;
        std::vector<std::string> lines;
        std::size_t line;
        std::size_t cell;
    };
    const std::vector<Row> rows = {
        {"empty", "", {"WARNING: fewer than six components on first line"}, 1, 0},
        {"five header cells",
         "\"a\",\"b\",\"c\",\"d\",\"e\"\n" + good,
         {"WARNING: fewer than six components on first line"},
         1,
         0},
        {"no line break", top.substr(0, top.size() - 1), {"WARNING: no data lines detected"}, 0, 0},
        {"three pieces", top + "\"North\",\"wet\",1,2,4,5\n", {items}, 2, 0},
        {"five pieces", top + "\"x\"," + good, {items}, 2, 0},
        {"an empty line", top + good + "\n" + good, {items}, 3, 0},
        {"a wrong month",
         top + good + line("1,2,4,5", "mar 5, 2016 3:42 PM"),
         {"WARNING: unexpected string for month: mar", date},
         3,
         2},
        {"a day that is not", top + line("1,2,4,5", "Apr 31, 2016 3:42 PM"), {date}, 2, 2},
        {"two values", top + line("1,2"), {few}, 2, 0},
        {"the date comes first",
         top + line("1,2", ""),
         {"WARNING: incorrect number of components in date", date},
         2,
         2},
        {"latitude", top + line("N47,W122,4,5"), {latitude}, 2, 4},
        {"space before the longitude", top + line("1, 2,4,5"), {longitude}, 2, 5},
        {"the longitude comes before the count", top + line("1,x,4"), {longitude}, 2, 5},
        {"too few species", top + line("1,2,x"), {species}, 2, 0},
        {"too many species", top + line("1,2,x,5,6"), {species}, 2, 0},
        {"a decimal", top + line("1,2,4,2.5"), {abundance}, 2, 7},
        {"an empty abundance", top + line("1,2,,5"), {abundance}, 2, 6},
        {"a tab", top + line("1,2,4,\t5"), {abundance}, 2, 7},
        {"too large", top + line("1,2,4,9223372036854775808"), {abundance}, 2, 7},
    };
    for (const Row& row : rows) {
        const auto parsed = parseIOSFile(row.text);
        EXPECT_FALSE(parsed.value) << row.what;
        EXPECT_EQ(parsed.consoleLines, row.lines) << row.what;
        EXPECT_EQ(parsed.place.line, row.line) << row.what;
        EXPECT_EQ(parsed.place.cell, row.cell) << row.what;
    }
}

TEST(ParseIOSFile, CarriageReturnsMakeEmptyLinesOfWhichTheAdviceTells) {
    const Zone zone("UTC0");
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
TEST(ParseIOSFile, HostileTextsTakeNoLongTime) {
    const Zone zone("UTC0");
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
