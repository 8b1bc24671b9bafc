// What the user types, beside the value that is stored or a part of the reason to refuse it.
#include "model/typed_values.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "tests/support/extreme_values.h"

namespace zorvel {
namespace {

using namespace std::string_view_literals;

// Absent for a reason that holds the words.
template <class T>
std::optional<T> valueOf(const Typed<T>& typed, std::string_view words) {
    if (typed) return typed.value();
    EXPECT_NE(std::string_view(typed.problem()).find(words), std::string_view::npos)
        << typed.problem() << " lacks " << words;
    return std::nullopt;
}

TEST(TypedValues, Names) {
    struct Row {
        std::string_view typed;
        std::optional<std::string> stored;
    };
    for (const Row& row : {
             Row{"  Abies  alba\t", "Abies  alba"}, Row{" \t\r\n\u00A0\u3000", std::nullopt},
             Row{"\0\x7F"sv, std::nullopt},
             Row{"Abies\r\nalba\nvar.\u2028x\u0085y", "Abies alba var. x y"},
             Row{"a\0b\x1F\x63\u009Fd"sv, "a b c d"},
             Row{"\u2003\u00C9chinops\u00A0e\u0301\u3000", "\u00C9chinops\u00A0e\u0301"},
             Row{"\u00A0\u0100", "\u0100"},  // bytes C4 80 at the end
             Row{"caf\xC2", "caf\xC2"},      // not UTF-8
         }) {
        EXPECT_EQ(typedName(row.typed), row.stored) << row.typed;
    }
}

TEST(TypedValues, AbundancesAndSampleSizes) {
    using Value = std::optional<std::int64_t>;
    struct Row {
        const char* typed;
        Value abundance;
        const char* why;  // of no abundance
        Value size;
    };
    const Value none;
    for (const Row& row : {
             Row{"12", 12, "", 12}, Row{"+3", 3, "", 3}, Row{"-0", 0, "", 0},
             Row{" 007\t", 7, "", none}, Row{"\u00A05\u00A0", 5, "", none},
             Row{"9223372036854775807", most, "", most},
             Row{"9223372036854775808", none, "larger", none}, Row{"-1", none, "0 or more", -1},
             Row{"-9223372036854775808", none, "0 or more", least},
             Row{"-9223372036854775809", none, "0 or more", none}, Row{"", none, "whole", none},
             Row{"-", none, "whole", none}, Row{"+-5", none, "whole", none},
             Row{"1.5", none, "whole", none}, Row{"99999999999999999999x", none, "whole", none},
             Row{"\u0661", none, "whole", none},  // a digit of another script
         }) {
        SCOPED_TRACE(row.typed);
        EXPECT_EQ(valueOf(parseTypedAbundance(row.typed), row.why), row.abundance);
        const bool isLarge = std::string_view(row.typed).size() > 18;
        EXPECT_EQ(valueOf(parseTypedSampleSize(row.typed), isLarge ? "" : "whole"), row.size);
    }
    EXPECT_STREQ(parseTypedSampleSize("9223372036854775808").problem(),
                 "This number is too large.");
}

TEST(TypedValues, QuotasUnderEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    const struct {
        const char* typed;
        std::optional<double> quota;
        const char* why = "decimal point";
    } rows[] = {
        {"0.8", 0.8},  {"+.75", 0.75},    {"1.", 1},
        {"1E-1", 0.1}, {"-3", -3},        {"0x1p-1", 0.5},
        {"1e-400", 0}, {"1e308", 1e308},  {"1e400", {}, "too large"},
        {"", {}},      {"e5", {}},        {"1e", {}},
        {"-+1", {}},   {" 0.8", {}},      {"0,8", {}},
        {"80%", {}},   {"-infinity", {}}, {"nan", {}},
        {"0.8f", {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(valueOf(parseTypedQuota(row.typed), row.why), row.quota) << row.typed;
    }
    EXPECT_FALSE(parseTypedQuota("0.8\0"sv));
    std::setlocale(LC_ALL, before.c_str());
}

TEST(TypedValues, Coordinates) {
    constexpr double refused = 999;
    const struct {
        const char* typed;
        double latitude;
        double longitude;
    } rows[] = {
        {" -48,25 ", -48.25, -48.25},
        {"\u221248.25", -48.25, -48.25},
        {"90", 90, 90},
        {"90.0000001", refused, 90.0000001},
        {"-180", refused, -180},
        {"180.5", refused, refused},
        {"48\u00B015'", 48.25, 48.25},
        {"48\u00B0 15\u2032 36\u2033", 48.26, 48.26},
        {"48 15 36", 48.26, 48.26},
        {"48\u00B0 15' 36''", 48.26, 48.26},
        {"48\u00B0 15,6'", 48.26, 48.26},
        {"48\u00B0 15' 36\" N", 48.26, refused},
        {"s 48 30", -48.5, refused},
        {"16.5W", refused, -16.5},
        {"-16.5 W", refused, refused},
        {"48\u00B0 60'", refused, refused},
        {"48.5\u00B0 15'", refused, refused},
        {"48,25,1", refused, refused},
        {"1 2 3 4", refused, refused},
        {"1e1", refused, refused},
        {"", refused, refused},
        {"--4", refused, refused},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typed);
        const auto latitude = valueOf(parseTypedLatitude(row.typed), "A latitude");
        EXPECT_NEAR(latitude.value_or(refused), row.latitude, 1e-12);
        const auto longitude = valueOf(parseTypedLongitude(row.typed), "A longitude");
        EXPECT_NEAR(longitude.value_or(refused), row.longitude, 1e-12);
    }
}

TEST(TypedValues, TimesInTheZoneOfTheComputer) {
    setenv("TZ", "Europe/Vienna", 1);
    tzset();
    struct Row {
        const char* typed;
        const char* shown;  // or why it is refused
        bool refused = false;
    };
    const std::vector<Row> rows = {
        {"2024-05-31 ", "2024-05-31 00:00"},
        {" 2024-5-1 9:05 ", "2024-05-01 09:05"},
        {"2024-05-31T14:05:10", "2024-05-31 14:05:10"},
        {"2024-05-31 14:05:09.250", "2024-05-31 14:05:09.25"},
        {"2024-05-31 14:05:00.000001", "2024-05-31 14:05:00.000001"},
        {"0044-03-15 12:00", "0044-03-15 12:00"},
        {"1969-12-31 23:59:59.5", "1969-12-31 23:59:59.5"},
        {"2024-02-30", "no such day", true},
        {"2024-05-31 24:00", "no such day", true},
        {"2024-05-31 14:05:60", "year, month and day", true},
        {"2024-05-31 14:05:09.", "year, month and day", true},
        {"2024-05-31 14:05 h", "year, month and day", true},
        {"31.5.2024", "year, month and day", true},
        {"24-05-31", "year, month and day", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        const auto time = valueOf(parseTypedTime(row.typed), row.shown);
        ASSERT_EQ(time.has_value(), !row.refused);
        if (time) {
            EXPECT_EQ(typedTimeText(**time), row.shown);
        }
    }
    EXPECT_EQ(
        valueOf(parseTypedTime("2024-07-01 14:00"), ""),
        TimeStamp(std::chrono::sys_days(std::chrono::year(2024) / 7 / 1) + std::chrono::hours(12)));
    EXPECT_EQ(typedTimeText(TimeStamp::min()).substr(0, 8), "-290308-");
    EXPECT_EQ(typedTimeText(TimeStamp::max()).substr(0, 7), "294247-");
    const auto none = parseTypedTime(" ");
    EXPECT_TRUE(none && !none.value());
    unsetenv("TZ");
    tzset();
}

}  // namespace
}  // namespace zorvel
