#include "base/time_stamp.h"

#include <time.h>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace zorvel {
namespace {

constexpr std::int64_t secondsPerDay = 86400;

bool isWithin(std::int64_t value, std::int64_t first, std::int64_t last) {
    return first <= value && value <= last;
}

// Days from 1 January 1970; absent for a day that the calendar does not have. Years beyond those of
// std::chrono are reached in eras of 400 years, which all have the same days.
std::optional<std::int64_t> daysFromEpoch(std::int64_t year, std::int64_t month, std::int64_t day) {
    constexpr std::int64_t yearsPerEra = 400;
    constexpr std::int64_t daysPerEra = 146097;
    if (!isWithin(month, 1, 12) || !isWithin(day, 1, 31)) return std::nullopt;
    const std::int64_t eras = year / yearsPerEra;
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(year % yearsPerEra)),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day)));
    if (!date.ok()) return std::nullopt;
    return std::chrono::sys_days(date).time_since_epoch().count() + eras * daysPerEra;
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
    if (!isWithin(clock.year, -farthestYear, farthestYear) || !isWithin(clock.hour, 0, 23) ||
        !isWithin(clock.minute, 0, 59)) {
        return std::nullopt;
    }
    const auto days = daysFromEpoch(clock.year, clock.month, clock.day);
    if (!days) return std::nullopt;
    tzset();  // the zone as it is now: localtime_r need not look
    const auto moment =
        momentShowing(*days * secondsPerDay + clock.hour * 3600 + clock.minute * 60);
    if (!moment) return std::nullopt;
    return TimeStamp(std::chrono::seconds(*moment));
}

std::string isoLocalText(TimeStamp time) {
    // In seconds, since the first and last time stamps leave no room for an offset.
    const std::time_t seconds =
        std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    const std::time_t east = zoneOffset(seconds).value_or(0) / 60;  // minutes
    const std::time_t shown = seconds + 60 * east;
    std::tm clock{};
    gmtime_r(&shown, &clock);
    const int year = clock.tm_year + 1900;
    constexpr std::int64_t perSecond = 1'000'000;
    const std::int64_t count = time.time_since_epoch().count();
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%s%04d-%02d-%02dT%02d:%02d:%02d.%06d",
                  year < 0 ? "-" : (year > 9999 ? "+" : ""), std::abs(year), clock.tm_mon + 1,
                  clock.tm_mday, clock.tm_hour, clock.tm_min, clock.tm_sec,
                  static_cast<int>((count % perSecond + perSecond) % perSecond));
    std::string iso = text.data();
    iso.erase(iso.find_last_not_of('0') + 1);
    if (iso.ends_with('.')) iso.pop_back();
    std::snprintf(text.data(), text.size(), "%c%02d:%02d", east < 0 ? '-' : '+',
                  static_cast<int>(std::abs(east) / 60), static_cast<int>(std::abs(east) % 60));
    return iso + text.data();
}

}  // namespace zorvel
