#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include "cli/iso_time.h"

namespace zorvel::test {
namespace {

// Zones by their rules, so that no zone database is needed.
TEST(IsoTime, FollowsTheZone) {
    constexpr const char* utc = "UTC0";
    constexpr const char* central = "CET-1CEST,M3.5.0,M10.5.0/3";
    struct Row {
        const char* zone;
        std::int64_t microseconds;
        const char* text;
    };
    const Row rows[] = {
        {utc, 0, "1970-01-01T00:00:00+00:00"},
        {utc, -1, "1969-12-31T23:59:59.999999+00:00"},
        {utc, 1'500'000, "1970-01-01T00:00:01.5+00:00"},
        {utc, 253'402'300'800'000'000, "+10000-01-01T00:00:00+00:00"},
        {utc, std::numeric_limits<std::int64_t>::max(), "+294247-01-10T04:00:54.775807+00:00"},
        {utc, std::numeric_limits<std::int64_t>::min(), "-290308-12-21T19:59:05.224192+00:00"},
        {central, std::numeric_limits<std::int64_t>::max(), "+294247-01-10T05:00:54.775807+01:00"},
        {utc, -62'167'219'200'000'000 - 86'400'000'000, "-0001-12-31T00:00:00+00:00"},
        {central, 1'457'188'920'000'000, "2016-03-05T15:42:00+01:00"},
        {central, 1'467'324'300'000'000, "2016-07-01T00:05:00+02:00"},
        {"NST3:30NDT,M3.2.0,M11.1.0", 0, "1969-12-31T20:30:00-03:30"},
        // 53 minutes 28 seconds before Greenwich, cut to the minute.
        {"LMT0:53:28", 0, "1969-12-31T23:07:00-00:53"},
    };
    for (const Row& row : rows) {
        setenv("TZ", row.zone, 1);
        tzset();
        EXPECT_EQ(cli::isoLocalTime(TimeStamp(std::chrono::microseconds(row.microseconds))),
                  row.text)
            << row.zone;
    }
    unsetenv("TZ");
    tzset();
}

}  // namespace
}  // namespace zorvel::test
