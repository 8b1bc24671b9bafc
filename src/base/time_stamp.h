// A point in absolute time, and how to get there from a wall clock in the computer's time zone. Any
// thread; the environment is read, never changed.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace zorvel {

using TimeStamp = std::chrono::sys_time<std::chrono::microseconds>;

// A wall-clock time of the Gregorian calendar, extended backwards before its introduction; year 0
// is the year before year 1. Any 64-bit values.
struct WallClock {
    std::int64_t year = 0;
    std::int64_t month = 1;  // 1 to 12
    std::int64_t day = 1;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
};

// A time that the zone skips moves forward by what was skipped; of a time that it has twice, the
// first. Absent for a day, hour or minute that the calendar does not have, and for years beyond
// what a TimeStamp holds (about 290,000 either way).
std::optional<TimeStamp> localTime(const WallClock& clock);

// ISO 8601 in the computer's time zone with its offset then, as "2016-03-05T15:42:00+01:00";
// decimals of the second if there are any. An offset with seconds, as before standard time, is cut
// to whole minutes, and the clock time with it, so that the instant is right. Years past 9999 take
// a plus sign and more digits, those before 0 a minus sign.
std::string isoLocalText(TimeStamp time);

}  // namespace zorvel
