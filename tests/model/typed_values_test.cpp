#include "model/typed_values.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

namespace zorvel {
namespace {

TEST(TypedValues, Abundances) {
    constexpr std::int64_t refused = -1;
    struct Row {
        const char* typed;
        std::int64_t value;
        const char* reason;  // a word of it, where refused
    };
    const std::vector<Row> rows = {
        {"12", 12, ""},
        {" 007\t", 7, ""},
        {"+3", 3, ""},
        {"-0", 0, ""},
        {"\u00A05\u00A0", 5, ""},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max(), ""},
        {"9223372036854775808", refused, "larger"},
        {"-1", refused, "0 or more"},
        {"-9223372036854775809", refused, "0 or more"},
        {"", refused, "whole"},
        {"-", refused, "whole"},
        {"1.5", refused, "whole"},
        {"2,0", refused, "whole"},
        {"1 000", refused, "whole"},
        {"1e3", refused, "whole"},
        {"0x10", refused, "whole"},
        {"\u0661", refused, "whole"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        const auto value = parseTypedAbundance(row.typed);
        EXPECT_EQ(value ? value.value() : refused, row.value);
        if (value) continue;
        EXPECT_NE(std::string(value.problem()).find(row.reason), std::string::npos);
    }
}

TEST(TypedValues, Coordinates) {
    constexpr double refused = 999;
    struct Row {
        const char* typed;
        double latitude;
        double longitude;
    };
    const std::vector<Row> rows = {
        {"48.25", 48.25, 48.25},
        {"48,25", 48.25, 48.25},
        {" -48,25 ", -48.25, -48.25},
        {"\u221248.25", -48.25, -48.25},
        {"90", 90, 90},
        {"90.0000001", refused, 90.0000001},
        {"-180", refused, -180},
        {"180.5", refused, refused},
        {"48\u00B0", 48, 48},
        {"48\u00B015'", 48.25, 48.25},
        {"48\u00B0 15\u2032 36\u2033", 48.26, 48.26},
        {"48 15 36", 48.26, 48.26},
        {"48\u00B0 15' 36''", 48.26, 48.26},
        {"48\u00B0 15,6'", 48.26, 48.26},
        {"48\u00B0 15' 36\" N", 48.26, refused},
        {"s 48 30", -48.5, refused},
        {"16.5W", refused, -16.5},
        {"16.5 E", refused, 16.5},
        {"-16.5 W", refused, refused},
        {"48\u00B0 60'", refused, refused},
        {"48.5\u00B0 15'", refused, refused},
        {"48,25,1", refused, refused},
        {"1 2 3 4", refused, refused},
        {"1e1", refused, refused},
        {"nan", refused, refused},
        {"inf", refused, refused},
        {"", refused, refused},
        {"N", refused, refused},
        {"--4", refused, refused},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        const auto latitude = parseTypedLatitude(row.typed);
        EXPECT_NEAR(latitude ? latitude.value() : refused, row.latitude, 1e-12);
        const auto longitude = parseTypedLongitude(row.typed);
        EXPECT_NEAR(longitude ? longitude.value() : refused, row.longitude, 1e-12);
    }
}

class TypedTimes : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "Europe/Vienna", 1);
        tzset();
    }
    void TearDown() override {
        unsetenv("TZ");
        tzset();
    }
};

TEST_F(TypedTimes, ReadAndShown) {
    struct Row {
        const char* typed;
        const char* shown;  // empty: refused
    };
    const std::vector<Row> rows = {
        {"2024-05-31", "2024-05-31 00:00"},
        {" 2024-5-1 9:05 ", "2024-05-01 09:05"},
        {"2024-05-31T14:05:09", "2024-05-31 14:05:09"},
        {"2024-05-31 14:05:09.250", "2024-05-31 14:05:09.25"},
        {"2024-05-31 14:05:10", "2024-05-31 14:05:10"},
        {"2024-05-31 14:05:00.000001", "2024-05-31 14:05:00.000001"},
        {"0044-03-15 12:00", "0044-03-15 12:00"},
        {"1969-12-31 23:59:59.5", "1969-12-31 23:59:59.5"},
        {"2024-02-30", ""},
        {"2024-13-01", ""},
        {"2024-05-31 24:00", ""},
        {"2024-05-31 14:60", ""},
        {"2024-05-31 14:05:60", ""},
        {"2024-05-31 14:05:09.", ""},
        {"2024-05-31 14:05 h", ""},
        {"2024-05-31 ", "2024-05-31 00:00"},
        {"31.5.2024", ""},
        {"24-05-31", ""},
        {"today", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        const auto time = parseTypedTime(row.typed);
        const std::string shown = time && time.value() ? typedTimeText(*time.value()) : "";
        EXPECT_EQ(shown, row.shown);
    }
}

TEST_F(TypedTimes, InTheZoneOfTheComputer) {
    const auto summer = parseTypedTime("2024-07-01 14:00");
    ASSERT_TRUE(summer && summer.value());
    EXPECT_EQ(*summer.value(), TimeStamp(std::chrono::sys_days(std::chrono::year(2024) / 7 / 1) +
                                         std::chrono::hours(12)));
    EXPECT_EQ(typedTimeText(TimeStamp::min()).substr(0, 8), "-290308-");
    EXPECT_EQ(typedTimeText(TimeStamp::max()).substr(0, 7), "294247-");
    const auto none = parseTypedTime(" ");
    ASSERT_TRUE(none);
    EXPECT_FALSE(none.value());
}

}  // namespace
}  // namespace zorvel
