#include "interchange/local_time.h"

#include <time.h>

#include <array>

namespace zorvel {
namespace {

constexpr std::int64_t secondsPerDay = 86400;

bool isLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

std::int64_t daysInMonth(std::int64_t year, std::int64_t month) {
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

bool exists(const WallClock& clock) {
    return clock.month >= 1 && clock.month <= 12 && clock.day >= 1 &&
           clock.day <= daysInMonth(clock.year, clock.month) && clock.hour >= 0 &&
           clock.hour <= 23 && clock.minute >= 0 && clock.minute <= 59;
}

// Days from 1 January 1970: years counted from March, so that a leap day ends its year, in eras of
// 400 years of 146,097 days.
std::int64_t daysFromEpoch(std::int64_t year, std::int64_t month, std::int64_t day) {
    constexpr std::int64_t daysPerEra = 146097;
    constexpr std::int64_t fromMarchOfYearZero = 719468;
    if (month <= 2) --year;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * ((month + 9) % 12) + 2) / 5 + day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * daysPerEra + dayOfEra - fromMarchOfYearZero;
}

// Seconds by which the zone's clocks are ahead of universal time at that moment.
std::optional<std::int64_t> zoneOffset(std::int64_t moment) {
    const time_t time = moment;
    tm local{};
    if (!localtime_r(&time, &local)) return std::nullopt;
    return local.tm_gmtoff;
}

// The moment at which the zone's clocks show `shown` (seconds as if in universal time).
std::optional<std::int64_t> momentShowing(std::int64_t shown) {
    // No zone is a day away from universal time: these offsets hold before and after any change
    // that could matter.
    const std::optional<std::int64_t> before = zoneOffset(shown - secondsPerDay);
    const std::optional<std::int64_t> after = zoneOffset(shown + secondsPerDay);
    if (!before || !after) return std::nullopt;
    const std::int64_t early = shown - *before;
    const std::int64_t late = shown - *after;
    const bool earlyFits = zoneOffset(early) == before;
    const bool lateFits = zoneOffset(late) == after;
    if (earlyFits && lateFits) return early < late ? early : late;
    // Where neither fits, the time was skipped: the old offset lands as far past the gap.
    return lateFits ? late : early;
}

}  // namespace

std::optional<TimeStamp> localTime(const WallClock& clock) {
    // Microseconds from 1970 in 64 bits reach from the year -290308 to 294247.
    constexpr std::int64_t farthestYear = 290000;
    if (clock.year < -farthestYear || clock.year > farthestYear || !exists(clock)) {
        return std::nullopt;
    }
    tzset();  // the zone as it is now: localtime_r need not look
    const std::int64_t days = daysFromEpoch(clock.year, clock.month, clock.day);
    const auto moment = momentShowing(days * secondsPerDay + clock.hour * 3600 + clock.minute * 60);
    if (!moment) return std::nullopt;
    return TimeStamp(std::chrono::seconds(*moment));
}

}  // namespace zorvel
